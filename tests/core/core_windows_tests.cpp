#include "TempHome.h"

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
    void SetUp() override {
        REGISTRY_PRODUCT = QStringLiteral("morvane-test/preferences");
        Close_Event = 0;
        Close_DontAsk = false;
        Update_Active = true;
        Output_NameMode = 1;
    }
    void store(const char* key, const char* value) {
        ASSERT_TRUE(Write_Setting(REGISTRY_PRODUCT, QLatin1String(key), QLatin1String(value)));
    }
    QString stored(const char* key) { return Read_Setting(REGISTRY_PRODUCT, QLatin1String(key)); }
    // The settings of the store, as the program finds them at start.
    void storeAndLoad(const char* closeEvent, const char* dontAsk, const char* updates,
                      const char* nameMode) {
        store("CloseEvent", closeEvent);
        store("CloseDontAskMe", dontAsk);
        store("UpdateActive", updates);
        store("OutputFileName", nameMode);
        Load_Settings();
    }
    void expectStored(const char* closeEvent, const char* dontAsk, const char* updates,
                      const char* nameMode) {
        EXPECT_EQ(stored("CloseEvent"), closeEvent);
        EXPECT_EQ(stored("CloseDontAskMe"), dontAsk);
        EXPECT_EQ(stored("UpdateActive"), updates);
        EXPECT_EQ(stored("OutputFileName"), nameMode);
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
        const char* closeEvent; // nullptr: absent
        const char* dontAsk;    // nullptr: absent
        int shown;              // Opt_Close
    };
    const Case cases[] = {
        {"1", "0", 2}, // a choice without "don't ask" is "Always ask me"
        {"1", "-1", 0}, {"2", "-1", 1}, {"2", nullptr, 1},
        {"0", "-1", 2}, {"9", "-1", 2}, {nullptr, nullptr, 2},
    };
    for (const Case& c : cases) {
        TempHome fresh;
        if (c.closeEvent) store("CloseEvent", c.closeEvent);
        if (c.dontAsk) store("CloseDontAskMe", c.dontAsk);
        Load_Settings();
        const frmPreferences window;
        EXPECT_EQ(checkedClose(window), c.shown)
            << (c.closeEvent ? c.closeEvent : "absent") << " / " << (c.dontAsk ? c.dontAsk : "absent");
        EXPECT_EQ(Preferences_Load().optClose, c.shown);
        // Absent values: updates on, rename.
        EXPECT_TRUE(window.Chk_CheckUpdates()->isChecked());
        EXPECT_TRUE(window.Opt_Conversion(1)->isChecked());
    }

    storeAndLoad("0", "0", "0", "0");
    const frmPreferences window;
    EXPECT_FALSE(window.Chk_CheckUpdates()->isChecked());
    EXPECT_TRUE(window.Opt_Conversion(0)->isChecked());
    EXPECT_FALSE(window.Opt_Conversion(1)->isChecked());
}

TEST_F(PreferencesTest, CloseWritesEachChoiceAndSavesIt) {
    struct Case {
        int option;
        int event;
        bool dontAsk;
        const char* storedEvent;
        const char* storedDontAsk;
    };
    const Case cases[] = {{0, 1, true, "1", "-1"}, {1, 2, true, "2", "-1"}, {2, 0, false, "0", "0"}};
    for (const Case& c : cases) {
        storeAndLoad("0", "0", "-1", "1");
        frmPreferences window;
        window.show();
        window.Opt_Close(c.option)->setChecked(true);
        window.Chk_CheckUpdates()->setChecked(false);
        window.Opt_Conversion(0)->setChecked(true);
        window.Cmd_Panels(1)->click();

        EXPECT_FALSE(window.isVisible());
        EXPECT_EQ(window.result(), QDialog::Accepted);
        EXPECT_EQ(Close_Event, c.event) << c.option;
        EXPECT_EQ(Close_DontAsk, c.dontAsk) << c.option;
        EXPECT_FALSE(Update_Active);
        EXPECT_EQ(Output_NameMode, 0);
        expectStored(c.storedEvent, c.storedDontAsk, "0", "0");

        // The next run shows the same choices.
        Load_Settings();
        EXPECT_EQ(checkedClose(frmPreferences()), c.option);
    }
}

TEST_F(PreferencesTest, CancelAndEscapeChangeNothing) {
    for (const bool byEscape : {false, true}) {
        storeAndLoad("2", "-1", "0", "0");
        frmPreferences window;
        window.show();
        window.Opt_Close(2)->setChecked(true);
        window.Chk_CheckUpdates()->setChecked(true);
        window.Opt_Conversion(1)->setChecked(true);
        if (byEscape)
            pressEscape(&window);
        else
            window.Cmd_Panels(0)->click();

        EXPECT_FALSE(window.isVisible());
        EXPECT_EQ(window.result(), QDialog::Rejected);
        EXPECT_EQ(Close_Event, 2);
        EXPECT_TRUE(Close_DontAsk);
        EXPECT_FALSE(Update_Active);
        EXPECT_EQ(Output_NameMode, 0);
        expectStored("2", "-1", "0", "0");
    }
}

TEST_F(PreferencesTest, DefaultResetsTheControlsAndSavesOnlyOnClose) {
    storeAndLoad("1", "-1", "0", "0");
    {
        frmPreferences window;
        window.show();
        window.Cmd_Panels(2)->click();
        EXPECT_TRUE(window.isVisible());
        EXPECT_TRUE(window.Chk_CheckUpdates()->isChecked());
        EXPECT_EQ(checkedClose(window), 2);
        EXPECT_TRUE(window.Opt_Conversion(1)->isChecked());
        EXPECT_EQ(Close_Event, 1);
        EXPECT_TRUE(Close_DontAsk);
        EXPECT_FALSE(Update_Active);
        expectStored("1", "-1", "0", "0");

        window.Cmd_Panels(0)->click();
        expectStored("1", "-1", "0", "0");
    }
    frmPreferences window;
    window.show();
    window.Cmd_Panels(2)->click();
    window.Cmd_Panels(1)->click();
    EXPECT_EQ(Close_Event, 0);
    EXPECT_FALSE(Close_DontAsk);
    EXPECT_TRUE(Update_Active);
    EXPECT_EQ(Output_NameMode, 1);
    expectStored("0", "0", "-1", "1");
}

// --- Wait window ---------------------------------------------------------------------------------

TEST(WaitWindow, EachModeHasItsLook) {
    struct Look {
        int mode;
        bool file;
        const char* fileText; // nullptr: the caller's
        bool fileNo;
        bool cancel;
        bool cancelEnabled;
        bool busy;
    };
    const Look looks[] = {
        {0, true, nullptr, true, true, false, true},
        {1, true, nullptr, true, true, true, false},
        {2, true, "Closing...", false, false, false, true},
        {3, true, "Finalizing Progress...", false, true, true, true},
        {4, false, nullptr, false, true, true, true},
        {5, true, "Loading...", false, false, false, false},
    };
    for (const Look& look : looks) {
        QWidget mainWindow;
        frmWait wait(&mainWindow, look.mode);
        wait.show();
        SCOPED_TRACE(look.mode);
        EXPECT_EQ(wait.lbl_WaitFile()->isVisible(), look.file);
        if (look.fileText) {
            EXPECT_EQ(wait.lbl_WaitFile()->text(), look.fileText);
        }
        EXPECT_EQ(wait.lbl_WaitFileNo()->isVisible(), look.fileNo);
        EXPECT_EQ(wait.Cmd_Cancel()->isVisible(), look.cancel);
        if (look.cancel) {
            EXPECT_EQ(wait.Cmd_Cancel()->isEnabled(), look.cancelEnabled);
        }
        EXPECT_TRUE(wait.ProgressBar1()->isVisible());
        EXPECT_EQ(wait.isBusy(), look.busy);
        EXPECT_EQ(wait.ProgressBar1()->maximum() == 0, look.busy);
    }
}

TEST(WaitWindow, LongPathsAndBusyBarsKeepTheirShape) {
    // A long path keeps the window's width: the label shows less, the tool tip all of it.
    frmWait wait(nullptr, 1);
    const QString path = QStringLiteral("/home/user/Videos/") + QString(300, QLatin1Char('v')) + ".mkv";
    wait.setFile(path);
    EXPECT_LT(wait.lbl_WaitFile()->text().size(), path.size());
    EXPECT_EQ(wait.lbl_WaitFile()->toolTip(), path);

    frmWait closing(nullptr, 2);
    closing.setMaximum(10);
    closing.setValue(3);
    EXPECT_EQ(closing.ProgressBar1()->maximum(), 0);
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
    EXPECT_TRUE(wait->Cmd_Cancel()->isEnabled());
    pressEscape(wait); // no way out but Cancel
    EXPECT_TRUE(wait->isVisible());
    EXPECT_FALSE(mainWindow.isEnabled());
    wait->Cmd_Cancel()->click();
    EXPECT_EQ(cancels, 1);
    EXPECT_TRUE(mainWindow.isEnabled());
    wait->close();
    EXPECT_FALSE(wait->isVisible());
    EXPECT_TRUE(mainWindow.isEnabled());

    // Closed by the host, shown again, then dropped while up.
    wait->show();
    EXPECT_FALSE(mainWindow.isEnabled());
    wait->close();
    EXPECT_TRUE(mainWindow.isEnabled());
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
        int result;
    };
    const Case cases[] = {
        {"tray", true, 1, true, QDialog::Accepted},    {"tray", false, 1, false, QDialog::Accepted},
        {"exit", true, 2, true, QDialog::Accepted},    {"exit", false, 2, false, QDialog::Accepted},
        {"escape", true, 0, false, QDialog::Rejected}, {"closebox", true, 0, false, QDialog::Rejected},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.action) + (c.box ? " checked" : " unchecked"));
        Close_Event = 7;
        Close_DontAsk = !c.dontAsk;
        frmClose window;
        window.show();
        window.Chk_DontAsk()->setChecked(c.box);
        const QString action = QLatin1String(c.action);
        if (action == "tray")
            window.Cmd_Close(0)->click();
        else if (action == "exit")
            window.Cmd_Close(1)->click();
        else if (action == "escape")
            pressEscape(&window);
        else
            window.close();
        EXPECT_FALSE(window.isVisible());
        EXPECT_EQ(window.result(), c.result);
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
