// The properties window of one item of the file list: the thumbnail, the source path, and the rows
// of File_Properties.h on three tabs (the file, its streams, its tags). Modal; it reads the row once
// when it is built and changes nothing. Main thread only.
#pragma once

#include "File_Properties.h"

#include <QDialog>
#include <QList>

#include <functional>

class QLabel;
class QLineEdit;
class QPushButton;
class QTabWidget;

namespace morvane {

class frmProperties : public QDialog {
    Q_OBJECT
public:
    // What "Open File Location" runs with the source path. The main window passes its shell helper,
    // so that the file manager comes up over it; without one the desktop opens the folder.
    using OpenLocation = std::function<void(const QString& path)>;

    frmProperties(const FileViewMain& table, int row, QWidget* parent = nullptr);

    void setOpenLocation(OpenLocation open) { m_openLocation = std::move(open); }

    QLabel* picPreview() const { return m_picPreview; }
    QLineEdit* Txt_FileName() const { return m_fileName; }
    QLabel* lbl_Title() const { return m_title; }
    QLabel* lbl_Titles(int index) const { return m_captions.value(index); }
    QLabel* lbl_Infos(int index) const { return m_values.value(index); }
    QTabWidget* TabControl1() const { return m_tabs; }
    QPushButton* Cmd_Properties(int index) const { return m_buttons[index == 1 ? 1 : 0]; }

private:
    QWidget* buildTab(const PropertyTexts& values, int first, int last);
    void openLocation();

    QLabel* m_picPreview = nullptr;
    QLineEdit* m_fileName = nullptr;
    QLabel* m_title = nullptr;
    QList<QLabel*> m_captions;
    QList<QLabel*> m_values;
    QTabWidget* m_tabs = nullptr;
    QPushButton* m_buttons[2] = {nullptr, nullptr};
    OpenLocation m_openLocation;
};

// The one call of the list's and the picture's "Properties..." items: the row's window, modal over
// parent. A row out of range opens nothing.
void Show_Properties(QWidget* parent, const FileViewMain& table, int row,
                     frmProperties::OpenLocation openLocation = {});

} // namespace morvane
