// The window side of the batch rename: the five small modal dialogs that hand their results to the
// process-wide values of Output_Names.h, the RenameDialogs that opens them over a parent window, the
// "Rename All" menu, and the key filters of their text boxes (also used by the list's in-place rename).
//
// Every dialog has Cmd_Panel 0 (Cancel) and 1 (OK). OK writes the trimmed box into its value and
// closes; Cancel, Escape and the close box empty the value (the single rename keeps it) and close.
// Enter in a box is OK, except in frmRename_Replace, where it does nothing.
//
// Main thread only.
#pragma once

#include "Output_Names.h"

#include <QDialog>
#include <QList>
#include <QString>

#include <functional>

class QLineEdit;
class QMenu;
class QPushButton;

namespace morvane {

// The file name boxes drop the nine characters that Filter_FileNameKey refuses; the number box lets
// through digits and a leading minus (Filter_NumberKey). Typed keys and pasted or dropped text alike.
// The filter lives as a child of the box.
void installFileNameFilter(QLineEdit* box);
void installNumberFilter(QLineEdit* box);

// What the five dialogs share: their boxes one under the other with a label each, then the panel.
class RenameDialog : public QDialog {
    Q_OBJECT
public:
    QPushButton* Cmd_Panel(int index) const { return m_panel[index == 1 ? 1 : 0]; }

    // Escape, the close box and Cancel.
    void reject() override;

protected:
    enum class BoxKind { FileName, Number };
    struct Box {
        const char* name;
        QString label;
        BoxKind kind;
    };

    RenameDialog(const char* name, const QString& title, const QList<Box>& boxes, bool enterIsOk,
                 QWidget* parent);

    QLineEdit* box(int index) const { return m_boxes.at(index); }
    // The box as OK reads it.
    QString boxValue(int index) const;

    virtual void takeValues() = 0;
    virtual void dropValues() = 0;

private:
    void ok();

    QList<QLineEdit*> m_boxes;
    QPushButton* m_panel[2] = {nullptr, nullptr};
};

// Rename_FindText and Rename_ReplaceText; Cancel empties both.
class frmRename_Replace : public RenameDialog {
    Q_OBJECT
public:
    explicit frmRename_Replace(QWidget* parent = nullptr);
    QLineEdit* Txt_Find() const { return box(0); }
    QLineEdit* Txt_Replace() const { return box(1); }

protected:
    void takeValues() override;
    void dropValues() override;
};

// Rename_Prefix.
class frmRename_AddBefore : public RenameDialog {
    Q_OBJECT
public:
    explicit frmRename_AddBefore(QWidget* parent = nullptr);
    QLineEdit* Txt_AddBefore() const { return box(0); }

protected:
    void takeValues() override;
    void dropValues() override;
};

// Rename_Suffix.
class frmRename_AddAfter : public RenameDialog {
    Q_OBJECT
public:
    explicit frmRename_AddAfter(QWidget* parent = nullptr);
    QLineEdit* Txt_AddAfter() const { return box(0); }

protected:
    void takeValues() override;
    void dropValues() override;
};

// Rename_NewName, shown in the box on opening; Cancel leaves it as it was.
class frmRename_Rename : public RenameDialog {
    Q_OBJECT
public:
    explicit frmRename_Rename(QWidget* parent = nullptr);
    QLineEdit* Txt_AddNew() const { return box(0); }

protected:
    void takeValues() override;
    void dropValues() override;
};

// Rename_FirstNumber; Cancel sets -1. A box that is no number (blank, a lone minus) leaves the value.
class frmRename_Numbers : public RenameDialog {
    Q_OBJECT
public:
    explicit frmRename_Numbers(QWidget* parent = nullptr);
    QLineEdit* Txt_Number() const { return box(0); }

protected:
    void takeValues() override;
    void dropValues() override;
};

// Opens each dialog modally over the parent window.
class RenameWindows : public RenameDialogs {
public:
    explicit RenameWindows(QWidget* parent) : m_parent(parent) {}
    void Show_Replace() override;
    void Show_AddBefore() override;
    void Show_AddAfter() override;
    void Show_Numbers() override;
    void Show_Rename() override;

private:
    QWidget* m_parent;
};

// The operation of Rename_All that a menu item runs; 0 for the separators (6 and 10) and unknown items.
int RenameMenu_Operation(int itemIndex);

// The "Rename All" menu: items 1 to 11 (separators included), the action of item i named
// "<objectName>_<i>". Choosing an item calls run with its operation. The menu is a child of parent.
QMenu* Build_RenameMenu(QWidget* parent, const QString& objectName, std::function<void(int operation)> run);

} // namespace morvane
