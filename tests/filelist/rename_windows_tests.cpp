#include "FileListView.h"
#include "NameRows.h"
#include "frmRename.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

using namespace morvane;

namespace {

QLineEdit* boxOf(const QWidget& dialog, const char* name) {
    return dialog.findChild<QLineEdit*>(QLatin1String(name));
}

QPushButton* panelOf(const QWidget& dialog, int index) {
    return dialog.findChild<QPushButton*>(QStringLiteral("Cmd_Panel_%1").arg(index));
}

// Paste as the user does, through the clipboard and the key sequence.
void paste(QLineEdit* box, const QString& text) {
    QGuiApplication::clipboard()->setText(text);
    QTest::keySequence(box, QKeySequence::Paste);
}

void type(QLineEdit* box, const QString& text) {
    QTest::keyClick(box, Qt::Key_End);
    QTest::keyClicks(box, text);
}

// Sits in front of the rename dialogs that come up modally: each script answers the next one, in turn.
// A dialog that nobody expected, or that a script leaves open, is cancelled so that a fault can't hang.
class User : public QObject {
public:
    explicit User(QWidget* owner) : m_owner(owner) {
        connect(&m_poll, &QTimer::timeout, this, &User::poll);
        m_poll.start(5);
    }
    ~User() override { EXPECT_TRUE(m_scripts.isEmpty()) << "dialogs that never came up"; }

    void answers(std::function<void(QDialog&)> script) { m_scripts.append(std::move(script)); }
    QStringList seen;

private:
    void poll() {
        auto* dialog = qobject_cast<RenameDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr || !dialog->isVisible()) return;
        seen.append(dialog->objectName());
        EXPECT_EQ(dialog->parentWidget(), m_owner);
        if (!m_scripts.isEmpty()) m_scripts.takeFirst()(*dialog);
        if (dialog->isVisible()) {
            ADD_FAILURE() << dialog->objectName().toStdString() << " left open";
            dialog->reject();
        }
    }

    QWidget* m_owner;
    QTimer m_poll;
    QList<std::function<void(QDialog&)>> m_scripts;
};

} // namespace

TEST(RenameBoxes, FileNameBoxesDropTheNineCharactersTypedOrPasted) {
    Rename_FindText = Rename_ReplaceText = Rename_Prefix = Rename_Suffix = Rename_NewName = QString();
    frmRename_Replace replace;
    frmRename_AddBefore before;
    frmRename_AddAfter after;
    frmRename_Rename rename;
    for (QLineEdit* box : {replace.Txt_Find(), replace.Txt_Replace(), before.Txt_AddBefore(),
                           after.Txt_AddAfter(), rename.Txt_AddNew()}) {
        SCOPED_TRACE(box->objectName().toStdString());
        box->window()->show();
        QTest::keyClicks(box, QStringLiteral("a\"b*c/d:e<f>g?h\\i|j k.-_(1)"));
        EXPECT_EQ(box->text(), QStringLiteral("abcdefghij k.-_(1)"));

        // Pasted into the middle: the characters go and the caret stays after what was kept.
        box->setText(QStringLiteral("abcd"));
        box->setCursorPosition(2);
        paste(box, QStringLiteral("1:2\"*/:<>?\\|3"));
        QTest::keyClick(box, Qt::Key_Z);
        EXPECT_EQ(box->text(), QStringLiteral("ab123zcd"));
    }
}

TEST(RenameBoxes, NumberBoxTakesDigitsAndOneLeadingMinus) {
    frmRename_Numbers dialog;
    dialog.show();
    QLineEdit* box = dialog.Txt_Number();
    QTest::keyClicks(box, QStringLiteral("a-1-2x3 .,+"));
    EXPECT_EQ(box->text(), QStringLiteral("-123"));

    box->setText(QStringLiteral("12"));
    QTest::keyClick(box, Qt::Key_Home);
    QTest::keyClick(box, Qt::Key_Minus);
    QTest::keyClick(box, Qt::Key_Home);
    QTest::keyClick(box, Qt::Key_Minus); // the box has one already
    QTest::keyClick(box, Qt::Key_End);
    QTest::keyClick(box, Qt::Key_Minus);
    EXPECT_EQ(box->text(), QStringLiteral("-12"));

    // Typed over a selection: allowed where the selection starts the box.
    box->selectAll();
    QTest::keyClick(box, Qt::Key_Minus);
    EXPECT_EQ(box->text(), QStringLiteral("-"));
    box->setText(QStringLiteral("123"));
    box->setSelection(1, 1);
    QTest::keyClick(box, Qt::Key_Minus);
    EXPECT_EQ(box->text(), QStringLiteral("123"));

    // Pasted text keeps to the same rule as typed text.
    box->clear();
    paste(box, QStringLiteral("4-5a6"));
    EXPECT_EQ(box->text(), QStringLiteral("456"));
    box->setCursorPosition(0);
    paste(box, QStringLiteral("-7"));
    paste(box, QStringLiteral("-8"));
    QTest::keyClick(box, Qt::Key_9);
    QTest::keyClick(box, Qt::Key_Delete); // editing keys are no characters to refuse
    QTest::keyClick(box, Qt::Key_Backspace);
    EXPECT_EQ(box->text(), QStringLiteral("-7856"));
}

TEST(RenameDialogs, OkTakesTheTrimmedTextCancelAndEscapeDropIt) {
    // Each dialog opens with "old" in its value; the user types " x " after it and leaves one way.
    enum Leave { Cancel, Ok, Enter, Escape };
    struct Case {
        std::function<QDialog*()> make;
        QString* value;
        Leave leave;
        QString expected;
    };
    const auto before = [] { return new frmRename_AddBefore; };
    const auto after = [] { return new frmRename_AddAfter; };
    const auto rename = [] { return new frmRename_Rename; };
    const Case cases[] = {
        {before, &Rename_Prefix, Ok, "old x"},    {before, &Rename_Prefix, Enter, "old x"},
        {before, &Rename_Prefix, Cancel, ""},     {after, &Rename_Suffix, Enter, "old x"},
        {after, &Rename_Suffix, Escape, ""},      {rename, &Rename_NewName, Enter, "old x"},
        {rename, &Rename_NewName, Cancel, "old"}, {rename, &Rename_NewName, Escape, "old"},
    };
    for (const Case& c : cases) {
        *c.value = QStringLiteral("old");
        const std::unique_ptr<QDialog> d(c.make());
        SCOPED_TRACE(d->objectName().toStdString() + " " + std::to_string(c.leave));
        d->show();
        auto* box = d->findChild<QLineEdit*>();
        EXPECT_EQ(box->text(), QStringLiteral("old"));
        type(box, QStringLiteral(" x "));
        if (c.leave == Cancel || c.leave == Ok) QTest::mouseClick(panelOf(*d, c.leave), Qt::LeftButton);
        if (c.leave == Enter) QTest::keyClick(box, Qt::Key_Return);
        if (c.leave == Escape) QTest::keyClick(box, Qt::Key_Escape);
        EXPECT_FALSE(d->isVisible());
        EXPECT_EQ(*c.value, c.expected);
    }

    // Replace: Enter in either box, keypad Enter too, leaves the dialog open and the values alone.
    Rename_FindText = QStringLiteral("f");
    Rename_ReplaceText = QStringLiteral("r");
    frmRename_Replace d;
    d.show();
    for (QLineEdit* box : {d.Txt_Find(), d.Txt_Replace()}) {
        type(box, QStringLiteral(" A "));
        QTest::keyClick(box, Qt::Key_Return);
        QTest::keyClick(box, Qt::Key_Enter, Qt::KeypadModifier);
    }
    EXPECT_TRUE(d.isVisible());
    EXPECT_EQ(Rename_FindText, QStringLiteral("f"));
    QTest::mouseClick(d.Cmd_Panel(1), Qt::LeftButton);
    EXPECT_FALSE(d.isVisible());
    EXPECT_EQ(Rename_FindText + Rename_ReplaceText, QStringLiteral("f Ar A"));
    frmRename_Replace cancelled;
    cancelled.show();
    QTest::keyClick(cancelled.Txt_Replace(), Qt::Key_Escape);
    EXPECT_EQ(Rename_FindText + Rename_ReplaceText, QString());
}

TEST(RenameDialogs, NumbersTakeOnlyAWholeNumber) {
    struct Case {
        std::int32_t before;
        const char* typed;
        std::int32_t after;
    };
    const Case cases[] = {{-1, "5", 5}, {-1, "  007", 7}, {-1, "-3", -3},        {-1, "-", -1},
                          {7, "-", 7},  {7, "", 7},       {7, "99999999999", 7}, {-1, "0", 0}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.typed);
        Rename_FirstNumber = c.before;
        frmRename_Numbers d;
        d.show();
        d.Txt_Number()->clear();
        QTest::keyClicks(d.Txt_Number(), QLatin1String(c.typed));
        QTest::keyClick(d.Txt_Number(), Qt::Key_Return);
        EXPECT_FALSE(d.isVisible());
        EXPECT_EQ(Rename_FirstNumber, c.after);
    }
    Rename_FirstNumber = 4;
    frmRename_Numbers d;
    EXPECT_EQ(d.Txt_Number()->text(), QStringLiteral("4"));
    d.show();
    QTest::mouseClick(d.Cmd_Panel(0), Qt::LeftButton);
    EXPECT_EQ(Rename_FirstNumber, -1);
}

TEST(RenameWindows, RenameAllAsksTheUserWhereItNeedsTo) {
    QWidget owner;
    owner.show();
    FileViewMain table;
    addRow(table, QStringLiteral("summer trip"), QStringLiteral("trip.mkv"));
    addRow(table, QStringLiteral("BEACH  day"), QStringLiteral("beach.mp4"));
    addRow(table, QStringLiteral("x"), QStringLiteral("clip3.avi"));
    RenameWindows windows(&owner);
    User user(&owner);

    // Types into the named box (which proves the right dialog came) and presses Cmd_Panel.
    const auto answer = [](const char* box, const char* text, int button) {
        return [box, text, button](QDialog& d) {
            ASSERT_NE(boxOf(d, box), nullptr);
            QTest::keyClicks(boxOf(d, box), QLatin1String(text));
            QTest::keyClick(boxOf(d, box), Qt::Key_Return); // does nothing in Replace, so press too
            if (d.isVisible()) QTest::mouseClick(panelOf(d, button), Qt::LeftButton);
        };
    };
    struct Step {
        int operation;
        std::function<void(QDialog&)> answer; // empty: no dialog comes up
        QStringList expected;
    };
    const Step steps[] = {
        {1, {}, {"Summer Trip", "Beach  Day", "X"}},
        {2, {}, {"Summer trip", "Beach  day", "X"}},
        {4, {}, {"SUMMER TRIP", "BEACH  DAY", "X"}},
        {3, {}, {"summer trip", "beach  day", "x"}},
        {6, answer("Txt_AddBefore", "  new_:", 1), {"new_summer trip", "new_beach  day", "new_x"}},
        {7, answer("Txt_AddAfter", "_v2?", 1), {"new_summer trip_v2", "new_beach  day_v2", "new_x_v2"}},
        {8, answer("Txt_Find", "NEW_", 1), {"summer trip_v2", "beach  day_v2", "x_v2"}},
        {8, answer("Txt_Find", "SUMMER", 0), {"summer trip_v2", "beach  day_v2", "x_v2"}},
        // A name replaced by nothing falls back to the source's base name.
        {8, answer("Txt_Find", "X_v2", 1), {"summer trip_v2", "beach  day_v2", "clip3"}},
        {5, answer("Txt_Number", "5", 1), {"5", "6", "7"}},
        {5, answer("Txt_Number", "-", 1), {"5", "6", "7"}},
        {9, {}, {"trip", "beach", "clip3"}},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.operation);
        user.seen.clear();
        if (step.answer) user.answers(step.answer);
        Rename_All(table, step.operation, FileCol::Name, windows);
        EXPECT_EQ(names(table), step.expected);
        EXPECT_EQ(user.seen.size(), step.answer ? 1 : 0);
    }
    for (int r = 0; r < table.rows(); ++r)
        EXPECT_EQ(table.text(r, FileCol::CropTop), QStringLiteral("8"));
}

TEST(RenameWindows, SingleRenameOffersTheNameAndTakesTheTypedOne) {
    QWidget owner;
    owner.show();
    FileViewMain table;
    addRow(table, QStringLiteral("one"), QStringLiteral("one.mkv"));
    addRow(table, QStringLiteral("two"), QStringLiteral("two.mkv"));
    table.selectRow(1);
    RenameWindows windows(&owner);
    User user(&owner);

    // The name comes up selected, so typing replaces it; then Cancel.
    user.answers([](QDialog& d) {
        EXPECT_EQ(boxOf(d, "Txt_AddNew")->selectedText(), QStringLiteral("two"));
        QTest::keyClicks(boxOf(d, "Txt_AddNew"), QStringLiteral("holiday:2024"));
        QTest::keyClick(boxOf(d, "Txt_AddNew"), Qt::Key_Return);
    });
    user.answers([](QDialog& d) {
        QTest::keyClicks(boxOf(d, "Txt_AddNew"), QStringLiteral("zzz"));
        QTest::mouseClick(panelOf(d, 0), Qt::LeftButton);
    });
    for (int i = 0; i < 2; ++i) {
        Rename_Selected(table, windows);
        EXPECT_EQ(names(table), QStringList({"one", "holiday2024"}));
    }
    EXPECT_EQ(user.seen, QStringList({"frmRename_Rename", "frmRename_Rename"}));
}

TEST(RenameMenu, ItemsMapToTheirOperations) {
    QWidget owner;
    QList<int> ran;
    QMenu* menu =
        Build_RenameMenu(&owner, QStringLiteral("mnuRenameAll"), [&ran](int op) { ran.append(op); });
    Build_RenameMenu(&owner, QStringLiteral("mnuRenameAll2"), [&ran](int op) { ran.append(-op); });
    EXPECT_EQ(menu->parent(), &owner);

    const QStringList captions{
        "Capitalize Each Word", "Sentence case.",    "lowercase",  "UPPERCASE", "Numbers (1,2,3...)...", "",
        "Add before name...",   "Add after name...", "Replace...", "",          "Reset all changes"};
    ASSERT_EQ(menu->actions().size(), 11);
    for (int index = 1; index <= 11; ++index) {
        SCOPED_TRACE(index);
        auto* action = owner.findChild<QAction*>(QStringLiteral("mnuRenameAll_%1").arg(index));
        ASSERT_EQ(action, menu->actions()[index - 1]);
        EXPECT_EQ(action->isSeparator(), index == 6 || index == 10);
        EXPECT_EQ(action->text(), captions[index - 1]);
        action->trigger();
    }
    owner.findChild<QAction*>(QStringLiteral("mnuRenameAll2_9"))->trigger();
    EXPECT_EQ(ran, QList<int>({1, 2, 3, 4, 5, 6, 7, 8, 9, -8}));
    for (int index : {-1, 0, 6, 10, 12})
        EXPECT_EQ(RenameMenu_Operation(index), 0) << index;
}

TEST(RenameInPlace, ListEditorRefusesTheNineCharacters) {
    FileViewMain table;
    addRow(table, QStringLiteral("clip"), QStringLiteral("clip.mkv"));
    FileListView list(table);
    list.resize(700, 300);
    list.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&list));
    table.selectRow(0);
    list.startRename(0);
    auto* editor = qobject_cast<QLineEdit*>(list.view()->indexWidget(table.index(0, FileCol::Name)));
    ASSERT_NE(editor, nullptr);
    QTest::keyClicks(editor, QStringLiteral("new:name?"));
    paste(editor, QStringLiteral(" <2>\"*/:<>?\\|"));
    EXPECT_EQ(editor->text(), QStringLiteral("newname 2"));
    QTest::keyClick(editor, Qt::Key_Return);
    QApplication::processEvents();
    EXPECT_EQ(table.text(0, FileCol::Name), QStringLiteral("newname 2"));
}
