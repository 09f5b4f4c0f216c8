#include "frmRename.h"

#include "mMain.h"

#include <QAction>
#include <QEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>

namespace morvane {

namespace {

constexpr int kBoxWidth = 260;

// Keeps what the box's key filter would have let through, had the text been typed from the start.
// The rules depend only on what stands before a character, so the kept part of a prefix is the
// prefix of the kept text.
QString keptText(const QString& text, bool number) {
    QString kept;
    kept.reserve(text.size());
    for (const QChar c : text) {
        int code = c.unicode();
        if (number) {
            if (c.category() == QChar::Other_Control) continue; // backspace passes the filter as a key only
            Filter_NumberKey(code, kept, static_cast<int>(kept.size()));
        } else {
            Filter_FileNameKey(code);
        }
        if (code != 0) kept += c;
    }
    return kept;
}

class BoxFilter : public QObject {
public:
    BoxFilter(QLineEdit* box, bool number) : QObject(box), m_box(box), m_number(number) {
        box->installEventFilter(this);
        // Paste, drop and input methods arrive as edits, not keys.
        connect(box, &QLineEdit::textEdited, this, &BoxFilter::clean);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched != m_box || event->type() != QEvent::KeyPress) return false;
        const auto* key = static_cast<QKeyEvent*>(event);
        const QString typed = key->text();
        // Control characters (backspace, delete) and shortcuts are the box's own business; what a
        // shortcut inserts (paste) comes back as an edit.
        if (typed.size() != 1 || typed.at(0).category() == QChar::Other_Control) return false;
        if (key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return false;
        int code = typed.at(0).unicode();
        if (m_number) {
            // The typed key replaces the selection, so the rule looks at the box without it.
            QString rest = m_box->text();
            int caret = m_box->cursorPosition();
            if (m_box->hasSelectedText()) {
                caret = m_box->selectionStart();
                rest.remove(caret, m_box->selectionLength());
            }
            Filter_NumberKey(code, rest, caret);
        } else {
            Filter_FileNameKey(code);
        }
        return code == 0;
    }

private:
    void clean() {
        const QString text = m_box->text();
        const QString kept = keptText(text, m_number);
        if (kept == text) return;
        const int caret = static_cast<int>(keptText(text.left(m_box->cursorPosition()), m_number).size());
        m_box->setText(kept);
        m_box->setCursorPosition(caret);
    }

    QLineEdit* m_box;
    bool m_number;
};

template <typename Dialog>
void showModal(QWidget* parent) {
    Dialog dialog(parent);
    dialog.exec();
}

} // namespace

void installFileNameFilter(QLineEdit* box) {
    new BoxFilter(box, false);
}

void installNumberFilter(QLineEdit* box) {
    new BoxFilter(box, true);
}

RenameDialog::RenameDialog(const char* name, const QString& title, const QList<Box>& boxes, bool enterIsOk,
                           QWidget* parent)
    : QDialog(parent) {
    setObjectName(QLatin1String(name));
    setWindowTitle(title);
    setModal(true);

    auto* layout = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    layout->addLayout(form);
    for (const Box& entry : boxes) {
        auto* edit = new QLineEdit(this);
        edit->setObjectName(QLatin1String(entry.name));
        edit->setMinimumWidth(kBoxWidth);
        if (entry.kind == BoxKind::Number)
            installNumberFilter(edit);
        else
            installFileNameFilter(edit);
        if (enterIsOk) connect(edit, &QLineEdit::returnPressed, this, &RenameDialog::ok);
        form->addRow(entry.label, edit);
        m_boxes.append(edit);
    }

    auto* panel = new QHBoxLayout;
    panel->addStretch(1);
    const char* captions[] = {"Cancel", "OK"};
    for (int i = 0; i < 2; ++i) {
        m_panel[i] = new QPushButton(QLatin1String(captions[i]), this);
        m_panel[i]->setObjectName(QStringLiteral("Cmd_Panel_%1").arg(i));
        // No default button: otherwise the dialog would turn Enter in a box into a click.
        m_panel[i]->setAutoDefault(false);
        panel->addWidget(m_panel[i]);
    }
    layout->addLayout(panel);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    connect(m_panel[0], &QPushButton::clicked, this, &RenameDialog::reject);
    connect(m_panel[1], &QPushButton::clicked, this, &RenameDialog::ok);
    if (!m_boxes.isEmpty()) m_boxes.first()->setFocus();
}

QString RenameDialog::boxValue(int index) const {
    return Trim_Spaces(box(index)->text());
}

void RenameDialog::ok() {
    takeValues();
    accept();
}

void RenameDialog::reject() {
    dropValues();
    QDialog::reject();
}

frmRename_Replace::frmRename_Replace(QWidget* parent)
    : RenameDialog("frmRename_Replace", QStringLiteral("Replace"),
                   {{"Txt_Find", QStringLiteral("Find:"), BoxKind::FileName},
                    {"Txt_Replace", QStringLiteral("Replace with:"), BoxKind::FileName}},
                   false, parent) {
    Txt_Find()->setText(Rename_FindText);
    Txt_Replace()->setText(Rename_ReplaceText);
}

void frmRename_Replace::takeValues() {
    Rename_FindText = boxValue(0);
    Rename_ReplaceText = boxValue(1);
}

void frmRename_Replace::dropValues() {
    Rename_FindText.clear();
    Rename_ReplaceText.clear();
}

frmRename_AddBefore::frmRename_AddBefore(QWidget* parent)
    : RenameDialog("frmRename_AddBefore", QStringLiteral("Add before name"),
                   {{"Txt_AddBefore", QStringLiteral("Text to add:"), BoxKind::FileName}}, true, parent) {
    Txt_AddBefore()->setText(Rename_Prefix);
}

void frmRename_AddBefore::takeValues() {
    Rename_Prefix = boxValue(0);
}

void frmRename_AddBefore::dropValues() {
    Rename_Prefix.clear();
}

frmRename_AddAfter::frmRename_AddAfter(QWidget* parent)
    : RenameDialog("frmRename_AddAfter", QStringLiteral("Add after name"),
                   {{"Txt_AddAfter", QStringLiteral("Text to add:"), BoxKind::FileName}}, true, parent) {
    Txt_AddAfter()->setText(Rename_Suffix);
}

void frmRename_AddAfter::takeValues() {
    Rename_Suffix = boxValue(0);
}

void frmRename_AddAfter::dropValues() {
    Rename_Suffix.clear();
}

frmRename_Rename::frmRename_Rename(QWidget* parent)
    : RenameDialog("frmRename_Rename", QStringLiteral("Rename"),
                   {{"Txt_AddNew", QStringLiteral("New name:"), BoxKind::FileName}}, true, parent) {
    Txt_AddNew()->setText(Rename_NewName);
    Txt_AddNew()->selectAll();
}

void frmRename_Rename::takeValues() {
    Rename_NewName = boxValue(0);
}

void frmRename_Rename::dropValues() {}

frmRename_Numbers::frmRename_Numbers(QWidget* parent)
    : RenameDialog("frmRename_Numbers", QStringLiteral("Numbers"),
                   {{"Txt_Number", QStringLiteral("Start with:"), BoxKind::Number}}, true, parent) {
    if (Rename_FirstNumber >= 0) Txt_Number()->setText(QString::number(Rename_FirstNumber));
}

void frmRename_Numbers::takeValues() {
    bool ok = false;
    const int number = boxValue(0).toInt(&ok);
    if (ok) Rename_FirstNumber = number;
}

void frmRename_Numbers::dropValues() {
    Rename_FirstNumber = -1;
}

void RenameWindows::Show_Replace() {
    showModal<frmRename_Replace>(m_parent);
}

void RenameWindows::Show_AddBefore() {
    showModal<frmRename_AddBefore>(m_parent);
}

void RenameWindows::Show_AddAfter() {
    showModal<frmRename_AddAfter>(m_parent);
}

void RenameWindows::Show_Numbers() {
    showModal<frmRename_Numbers>(m_parent);
}

void RenameWindows::Show_Rename() {
    showModal<frmRename_Rename>(m_parent);
}

int RenameMenu_Operation(int itemIndex) {
    switch (itemIndex) {
    case 1:
        return Rename_Capitalize;
    case 2:
        return Rename_Sentence;
    case 3:
        return Rename_Lower;
    case 4:
        return Rename_Upper;
    case 5:
        return Rename_Numbers;
    case 7:
        return Rename_AddBefore;
    case 8:
        return Rename_AddAfter;
    case 9:
        return Rename_Replace;
    case 11:
        return Rename_Reset;
    default:
        return 0;
    }
}

QMenu* Build_RenameMenu(QWidget* parent, const QString& objectName, std::function<void(int operation)> run) {
    auto* menu = new QMenu(QStringLiteral("Rename All"), parent);
    menu->setObjectName(objectName);
    // Item 1 first; nullptr marks a separator.
    const char* captions[] = {"Capitalize Each Word",
                              "Sentence case.",
                              "lowercase",
                              "UPPERCASE",
                              "Numbers (1,2,3...)...",
                              nullptr,
                              "Add before name...",
                              "Add after name...",
                              "Replace...",
                              nullptr,
                              "Reset all changes"};
    int index = 0;
    for (const char* caption : captions) {
        ++index;
        QAction* action = caption != nullptr ? menu->addAction(QLatin1String(caption)) : menu->addSeparator();
        action->setObjectName(objectName + QLatin1Char('_') + QString::number(index));
        const int operation = RenameMenu_Operation(index);
        if (operation != 0)
            QObject::connect(action, &QAction::triggered, menu, [run, operation] { run(operation); });
    }
    return menu;
}

} // namespace morvane
