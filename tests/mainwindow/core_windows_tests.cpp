#include "../core/TempHome.h"

#include "Globals.h"
#include "Preferences_Form.h"
#include "Registry_Mod.h"
#include "frmAbout.h"
#include "frmClose.h"
#include "frmPreferences.h"
#include "frmWait.h"

#include <QApplication>
#include <QCheckBox>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QSystemTrayIcon>

#include <array>
#include <vector>

#include <gtest/gtest.h>

using namespace morvane;

namespace {

void pressEscape(QWidget* widget) {
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(widget, &press);
}

} // namespace

// --- Preferences ---------------------------------------------------------------------------------

class PreferencesTest : public ::testing::Test {
protected:
    void SetUp() override { REGISTRY_PRODUCT = QStringLiteral("morvane-test/preferences"); }
    static constexpr const char* kKeys[] = {"CloseEvent", "CloseDontAskMe", "UpdateActive", "OutputFileName"};
    using Values = std::array<const char*, 4>;
    void storeAndLoad(const Values& values) {
        for (int i = 0; i < 4; ++i)
            ASSERT_TRUE(Write_Setting(REGISTRY_PRODUCT, QLatin1String(kKeys[i]), QLatin1String(values[i])));
        Load_Settings();
    }
    // The store and the running program agree on the values.
    void expectKept(const Values& values) {
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(Read_Setting(REGISTRY_PRODUCT, QLatin1String(kKeys[i])), values[i]) << kKeys[i];
        EXPECT_EQ(Close_Event, QByteArray(values[0]).toInt());
        EXPECT_EQ(Close_DontAsk, QByteArray(values[1]) == "-1");
        EXPECT_EQ(Update_Active, QByteArray(values[2]) == "-1");
        EXPECT_EQ(Output_NameMode, QByteArray(values[3]).toInt());
    }
    static int checkedClose(const frmPreferences& window) {
        for (int i = 0; i < 3; ++i)
            if (window.Opt_Close(i)->isChecked()) return i;
        return -1;
    }
    TempHome home;
};

TEST_F(PreferencesTest, WindowShowsTheLoadedChoices) {
    struct Case {
        Values stored;
        int close; // Opt_Close
        bool updates;
        int conversion;
    };
    const Case cases[] = {
        {{"1", "0", "0", "0"}, 2, false, 0}, // a choice without "don't ask" is "Always ask me"
        {{"1", "-1", "-1", "1"}, 0, true, 1},
        {{"2", "-1", "0", "1"}, 1, false, 1},
        {{"0", "-1", "-1", "0"}, 2, true, 0},
    };
    for (const Case& c : cases) {
        storeAndLoad(c.stored);
        const frmPreferences window;
        EXPECT_EQ(checkedClose(window), c.close) << c.stored[0] << " / " << c.stored[1];
        EXPECT_EQ(window.Chk_CheckUpdates()->isChecked(), c.updates);
        EXPECT_TRUE(window.Opt_Conversion(c.conversion)->isChecked());
    }
}

// Close saves what the window shows, Default only resets the window, Cancel and Escape change nothing.
TEST_F(PreferencesTest, ButtonsDecideWhatIsSaved) {
    enum Press { Cancel, Close, Default, Escape };
    struct Case {
        int close; // Opt_Close with updates on and renaming; -1: as loaded
        std::vector<Press> presses;
        Values kept;
    };
    const Values before = {"2", "-1", "0", "0"};
    const Case cases[] = {
        {0, {Close}, {"1", "-1", "-1", "1"}},
        {1, {Close}, {"2", "-1", "-1", "1"}},
        {2, {Close}, {"0", "0", "-1", "1"}},
        {0, {Cancel}, before},
        {0, {Escape}, before},
        {-1, {Default, Cancel}, before},
        {-1, {Default, Close}, {"0", "0", "-1", "1"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.close << " " << c.presses.front() << " " << c.presses.size());
        storeAndLoad(before);
        frmPreferences window;
        window.show();
        if (c.close >= 0) {
            window.Opt_Close(c.close)->setChecked(true);
            window.Chk_CheckUpdates()->setChecked(true);
            window.Opt_Conversion(1)->setChecked(true);
        }
        for (const Press press : c.presses) {
            EXPECT_TRUE(window.isVisible());
            if (press == Escape)
                pressEscape(&window);
            else
                window.Cmd_Panels(press)->click();
        }
        EXPECT_FALSE(window.isVisible());
        EXPECT_EQ(window.result(), c.presses.back() == Close ? QDialog::Accepted : QDialog::Rejected);
        expectKept(c.kept);
    }
}

// --- Wait window ---------------------------------------------------------------------------------

TEST(WaitWindow, EachModeHasItsLook) {
    struct Look {
        int mode;
        bool file;
        const char* fileText; // nullptr: the caller's, shortened when long with all of it in the tip
        bool fileNo;
        bool cancel;
        bool cancelEnabled;
        bool busy; // a moving bar that no value stops
    };
    const Look looks[] = {
        {0, true, nullptr, true, true, false, true},
        {1, true, nullptr, true, true, true, false},
        {2, true, "Closing...", false, false, false, true},
        {3, true, "Finalizing Progress...", false, true, true, true},
        {4, false, nullptr, false, true, true, true},
        {5, true, "Loading...", false, false, false, false},
    };
    const QString path = QStringLiteral("/home/user/Videos/") + QString(300, QLatin1Char('v')) + ".mkv";
    for (const Look& look : looks) {
        QWidget mainWindow;
        frmWait wait(&mainWindow, look.mode);
        wait.show();
        SCOPED_TRACE(look.mode);
        EXPECT_EQ(wait.lbl_WaitFile()->isVisible(), look.file);
        if (look.fileText) {
            EXPECT_EQ(wait.lbl_WaitFile()->text(), look.fileText);
        } else {
            wait.setFile(path);
            EXPECT_LT(wait.lbl_WaitFile()->text().size(), path.size());
            EXPECT_EQ(wait.lbl_WaitFile()->toolTip(), path);
        }
        EXPECT_EQ(wait.lbl_WaitFileNo()->isVisible(), look.fileNo);
        EXPECT_EQ(wait.Cmd_Cancel()->isVisible(), look.cancel);
        if (look.cancel) {
            EXPECT_EQ(wait.Cmd_Cancel()->isEnabled(), look.cancelEnabled);
        }
        wait.setMaximum(10);
        wait.setValue(3);
        EXPECT_EQ(wait.ProgressBar1()->maximum(), look.busy ? 0 : 10);
    }
}

TEST(WaitWindow, MainWindowIsDisabledOnlyWhileTheWaitIsUp) {
    QWidget mainWindow;
    mainWindow.show();

    // Cancel gives the main window back at once; the host closes the wait window later.
    auto* wait = new frmWait(&mainWindow, 1);
    int cancels = 0;
    QObject::connect(wait, &frmWait::cancelPressed, [&cancels] { ++cancels; });
    wait->show();
    EXPECT_FALSE(mainWindow.isEnabled());
    EXPECT_TRUE(wait->isEnabled());
    pressEscape(wait); // no way out but Cancel
    EXPECT_TRUE(wait->isVisible());
    EXPECT_FALSE(mainWindow.isEnabled());
    wait->Cmd_Cancel()->click();
    EXPECT_EQ(cancels, 1);
    EXPECT_TRUE(mainWindow.isEnabled());
    wait->close();
    EXPECT_TRUE(mainWindow.isEnabled());

    // Shown again, then dropped while up.
    wait->show();
    EXPECT_FALSE(mainWindow.isEnabled());
    delete wait;
    EXPECT_TRUE(mainWindow.isEnabled());

    // The main window may go first and take its wait window along.
    auto* other = new QWidget;
    auto* owned = new frmWait(other, 2);
    owned->show();
    delete other;
}

// --- Close question ------------------------------------------------------------------------------

TEST(CloseQuestion, ButtonsEscapeAndCloseBoxSetTheAnswer) {
    struct Case {
        const char* action;
        bool box;
        int event;
        bool dontAsk;
    };
    const Case cases[] = {{"tray", true, 1, true},
                          {"exit", true, 2, true},
                          {"exit", false, 2, false},
                          {"escape", true, 0, false},
                          {"closebox", true, 0, false}};
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.action) + (c.box ? " checked" : " unchecked"));
        Close_Event = 7;
        Close_DontAsk = !c.dontAsk;
        frmClose window;
        window.show();
        window.Chk_DontAsk()->setChecked(c.box);
        const QString action = QLatin1String(c.action);
        // Without a tray on the desktop (offscreen has none) the window cannot go there.
        if (action == "tray" && !QSystemTrayIcon::isSystemTrayAvailable()) {
            EXPECT_FALSE(window.Cmd_Close(0)->isEnabled());
            continue;
        }
        if (action == "tray")
            window.Cmd_Close(0)->click();
        else if (action == "exit")
            window.Cmd_Close(1)->click();
        else if (action == "escape")
            pressEscape(&window);
        else
            window.close();
        EXPECT_FALSE(window.isVisible());
        EXPECT_EQ(window.result(), c.event != 0 ? QDialog::Accepted : QDialog::Rejected);
        EXPECT_EQ(Close_Event, c.event);
        EXPECT_EQ(Close_DontAsk, c.dontAsk);
    }
}

// --- About ---------------------------------------------------------------------------------------

TEST(AboutWindow, NamesTheLibrariesInUse) {
    frmAbout window;
    const QString versions = window.lbl_Versions()->text();
    EXPECT_TRUE(versions.contains(QStringLiteral("Qt ") + qVersion())) << versions.toStdString();
    EXPECT_TRUE(versions.contains(QRegularExpression(QStringLiteral("libavformat \\d+\\.\\d+\\.\\d+"))));
    EXPECT_TRUE(versions.contains(QRegularExpression(QStringLiteral("libavcodec \\d+\\.\\d+\\.\\d+"))));

    window.show();
    pressEscape(&window);
    EXPECT_FALSE(window.isVisible());
}
