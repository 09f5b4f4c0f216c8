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
    frmRename_Replace replace;
    frmRename_AddBefore before;
    frmRename_AddAfter after;
    frmRename_Rename rename;
    // The list's own rename box turns the name into a file name as well.
    FileViewMain table;
    addRow(table, QStringLiteral("clip"), QStringLiteral("clip.mkv"));
    FileListView list(table);
    list.show();
    list.startRename(0);
    auto* inPlace = qobject_cast<QLineEdit*>(list.view()->indexWidget(table.index(0, FileCol::Name)));
    ASSERT_NE(inPlace, nullptr);
    for (QLineEdit* box : {replace.Txt_Find(), replace.Txt_Replace(), before.Txt_AddBefore(),
                           after.Txt_AddAfter(), rename.Txt_AddNew(), inPlace}) {
        SCOPED_TRACE(box->objectName().toStdString());
        box->window()->show();
        box->clear();
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

// Enter takes a whole number and leaves no number for anything else; Cancel takes nothing.
TEST(RenameBoxes, NumberBoxTakesDigitsAndOneLeadingMinusAndEnterTakesTheNumber) {
    struct Case {
        const char* before;
        int from, length; // the caret, or the selection typed over
        const char* input;
        bool pasted;
        std::int32_t number; // taken by Enter: a refused character left in would make it -1
    };
    // A key typed over a selection is judged against the box without it; editing keys always pass.
    const Case cases[] = {
        {"", 0, 0, "a-1-2x3 .,+", false, -123},
        {"-12", 0, 0, "-", false, -12},
        {"12", 2, 0, "-", false, 12},
        {"123", 1, 1, "-", false, 123},
        {"-12", 0, 2, "-", false, -2},
        {"456", 1, 0, "\b9", false, 956},
        {"", 0, 0, "-", false, -1},
        {"", 0, 0, "0", false, 0},
        {"", 0, 0, "99999999999", false, -1},
        // Pasted text keeps to the same rule as typed text.
        {"", 0, 0, "4-5a6", true, 456},
        {"456", 0, 0, "-7", true, -7456},
        {"-7456", 2, 0, "-8", true, -78456},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.before) + " + " + c.input);
        Rename_FirstNumber = -1; // as Rename All leaves it
        frmRename_Numbers dialog;
        dialog.show();
        QLineEdit* box = dialog.Txt_Number();
        box->setText(QLatin1String(c.before));
        box->setSelection(c.from, c.length);
        if (c.length == 0) box->setCursorPosition(c.from);
        if (c.pasted)
            paste(box, QLatin1String(c.input));
        else
            QTest::keyClicks(box, QLatin1String(c.input));
        QTest::keyClick(box, Qt::Key_Return);
        EXPECT_FALSE(dialog.isVisible());
        EXPECT_EQ(Rename_FirstNumber, c.number);
    }

    frmRename_Numbers cancelled;
    cancelled.show();
    QTest::keyClicks(cancelled.Txt_Number(), QStringLiteral("9"));
    QTest::mouseClick(cancelled.Cmd_Panel(0), Qt::LeftButton);
    EXPECT_EQ(Rename_FirstNumber, -1);
}

// OK and Enter take the trimmed text, Cancel and Escape change nothing; Replace alone keeps Enter
// for its boxes.
TEST(RenameWindows, RenameAllAsksTheUserWhereItNeedsTo) {
    QWidget owner;
    owner.show();
    FileViewMain table;
    addRow(table, QStringLiteral("summer trip"), QStringLiteral("trip.mkv"));
    addRow(table, QStringLiteral("BEACH  day"), QStringLiteral("beach.mp4"));
    addRow(table, QStringLiteral("x"), QStringLiteral("clip3.avi"));
    RenameWindows windows(&owner);
    User user(&owner);

    // Types into the named box (which proves the right dialog came) and leaves.
    enum Leave { Cancel, Ok, Enter, Escape };
    const auto answer = [](const char* box, const char* text, Leave leave) {
        return [box, text, leave](QDialog& d) {
            ASSERT_NE(boxOf(d, box), nullptr);
            type(boxOf(d, box), QLatin1String(text));
            if (leave == Enter || leave == Escape)
                QTest::keyClick(boxOf(d, box), leave == Enter ? Qt::Key_Return : Qt::Key_Escape);
            else
                QTest::mouseClick(panelOf(d, leave), Qt::LeftButton);
        };
    };
    const auto replace = [](const char* find, const char* with, Leave leave) {
        return [find, with, leave](QDialog& d) {
            type(boxOf(d, "Txt_Find"), QLatin1String(find));
            type(boxOf(d, "Txt_Replace"), QLatin1String(with));
            for (const char* box : {"Txt_Find", "Txt_Replace"}) {
                QTest::keyClick(boxOf(d, box), Qt::Key_Return);
                QTest::keyClick(boxOf(d, box), Qt::Key_Enter, Qt::KeypadModifier);
            }
            EXPECT_TRUE(d.isVisible());
            QTest::mouseClick(panelOf(d, leave), Qt::LeftButton);
        };
    };
    struct Step {
        int operation;
        std::function<void(QDialog&)> answer; // empty: no dialog comes up
        QStringList expected;
    };
    const Step steps[] = {
        {1, {}, {"Summer Trip", "Beach  Day", "X"}},
        {3, {}, {"summer trip", "beach  day", "x"}},
        {6, answer("Txt_AddBefore", "  new_:", Ok), {"new_summer trip", "new_beach  day", "new_x"}},
        {6, answer("Txt_AddBefore", "zzz", Cancel), {"new_summer trip", "new_beach  day", "new_x"}},
        {7, answer("Txt_AddAfter", "_v2?", Enter), {"new_summer trip_v2", "new_beach  day_v2", "new_x_v2"}},
        {7, answer("Txt_AddAfter", "zzz", Escape), {"new_summer trip_v2", "new_beach  day_v2", "new_x_v2"}},
        {8, replace("NEW_", " the_ ", Ok), {"the_summer trip_v2", "the_beach  day_v2", "the_x_v2"}},
        {8, replace("SUMMER", "", Cancel), {"the_summer trip_v2", "the_beach  day_v2", "the_x_v2"}},
        // A name replaced by nothing falls back to the source's base name.
        {8, replace("the_X_v2", "", Ok), {"the_summer trip_v2", "the_beach  day_v2", "clip3"}},
        {5, answer("Txt_Number", "5", Enter), {"5", "6", "7"}},
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
    EXPECT_EQ(ran, QList<int>({1, 2, 3, 4, 5, 6, 7, 8, 9, -8})); // separators run nothing
}
