// The tray's state: to the tray idle and busy, the nine frames with the total in the tip, the done
// icon, back from the tray clearing the settings, the reset.
#include "PopupTray_Mod.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <map>

using namespace morvane;

namespace {

struct Desk {
    int state = 0;
    QStringList calls;
    std::map<QString, QString> settings;
    TrayHost host() {
        TrayHost h;
        h.title = QStringLiteral("Morvane");
        h.conversionState = [this] { return state; };
        h.progressText = [] { return QStringLiteral("42%"); };
        h.closeTagPopup = [this] { calls << "close tag"; };
        h.windowHandle = [] { return QStringLiteral("4711"); };
        h.mailbox = [] { return QStringLiteral("/run/user/1000/morvane.sock"); };
        h.writeSetting = [this](const QString& key, const QString& value) { settings[key] = value; };
        h.minimizeToTray = [this] { calls << "hide"; };
        h.maximizeFromTray = [this] { calls << "show"; };
        return h;
    }
};

} // namespace

TEST(Tray, ToTheTrayAndBackIdleOrBusy) {
    for (const int state : {0, 1, 2}) {
        Desk desk;
        desk.state = state;
        TrayState tray;
        Tray_Toggle(tray, desk.host());
        EXPECT_TRUE(tray.In_Tray);
        EXPECT_EQ(tray.Icon, "tray_idle");
        EXPECT_EQ(tray.Text, "Morvane");
        EXPECT_EQ(tray.Timer_TrayIcon, state != 0) << state; // idle: no turning icon
        EXPECT_EQ(desk.calls, (QStringList{"close tag", "hide"}));
        // A second start finds the hidden window through these.
        EXPECT_EQ(desk.settings["WinTagInfo"], "4711");
        EXPECT_EQ(desk.settings["WinInfo"], "/run/user/1000/morvane.sock");

        Tray_Toggle(tray, desk.host());
        EXPECT_FALSE(tray.In_Tray);
        EXPECT_FALSE(tray.Timer_TrayIcon);
        EXPECT_TRUE(tray.Icon.isEmpty());
        EXPECT_EQ(desk.calls.last(), "show");
        EXPECT_TRUE(desk.settings["WinTagInfo"].isEmpty() && desk.settings["WinInfo"].isEmpty());
    }
}

TEST(Tray, NineFramesTurnWithTheTotalThenTheDoneIconAndTheReset) {
    Desk desk;
    desk.state = 1;
    TrayState tray;
    Tray_Toggle(tray, desk.host());
    QStringList icons;
    for (int i = 0; i < 11; ++i) {
        Tray_Tick(tray, desk.host());
        icons << tray.Icon;
    }
    // Frame 10 never shows: after 9 comes 1.
    EXPECT_EQ(icons.join(','), "tray1,tray2,tray3,tray4,tray5,tray6,tray7,tray8,tray9,tray1,tray2");
    EXPECT_EQ(tray.Text, "Morvane 42%");
    tray.Tray_Frame = 32767; // a counter past its range starts again too
    Tray_Tick(tray, desk.host());
    EXPECT_EQ(tray.Icon, "tray1");

    Tray_Tick(tray, desk.host(), QStringLiteral("tray_done"));
    EXPECT_EQ(tray.Icon, "tray_done");
    EXPECT_EQ(tray.Tray_Frame, 1);
    Tray_Reset(tray, QStringLiteral("Morvane"));
    EXPECT_FALSE(tray.In_Tray || tray.Timer_TrayIcon);
    EXPECT_TRUE(tray.Icon.isEmpty());
    EXPECT_EQ(tray.Tray_Frame, 0);
    EXPECT_EQ(tray.Text, "Morvane");
}
