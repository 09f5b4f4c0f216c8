// The tray's state: to the tray idle and busy, the nine frames with the total in the tip, the done
// icon, back from the tray clearing the settings, the reset.
#include "Launcher_Entry.h"
#include "PopupTray_Mod.h"

#include <QDBusArgument>
#include <QDBusMetaType>
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

// The launcher's bar: a signal per change only, none before a run, one to hide it after, and the
// values in the form the docks read.
TEST(LauncherEntryTest, SendsChangesOnlyInTheDocksForm) {
    QList<QDBusMessage> sent;
    LauncherEntry entry(QStringLiteral("org.morvane.Morvane"), [&](const QDBusMessage& m) {
        sent << m;
        return true;
    });
    const struct {
        int state, percent;
        int sentSoFar;
    } steps[] = {{0, 0, 0},   {0, 30, 0}, {1, 0, 1},  {1, 0, 1},
                 {1, 41, 2},  {2, 41, 2}, // paused: the bar stays as it was
                 {1, 250, 3}, {1, -5, 4}, {0, 77, 5}, {0, 0, 5}};
    for (const auto& s : steps) {
        entry.Update(s.state, s.percent);
        EXPECT_EQ(sent.size(), s.sentSoFar) << s.state << ' ' << s.percent;
    }
    const auto properties = [&](int i) { return qdbus_cast<QVariantMap>(sent[i].arguments().at(1)); };
    EXPECT_EQ(sent[1].interface(), QStringLiteral("com.canonical.Unity.LauncherEntry"));
    EXPECT_EQ(sent[1].member(), QStringLiteral("Update"));
    EXPECT_EQ(sent[1].type(), QDBusMessage::SignalMessage);
    EXPECT_EQ(sent[1].arguments().at(0).toString(),
              QStringLiteral("application://org.morvane.Morvane.desktop"));
    EXPECT_DOUBLE_EQ(properties(1).value("progress").toDouble(), 0.41);
    EXPECT_TRUE(properties(1).value("progress-visible").toBool());
    EXPECT_DOUBLE_EQ(properties(2).value("progress").toDouble(), 1.0); // clamped
    EXPECT_DOUBLE_EQ(properties(3).value("progress").toDouble(), 0.0);
    EXPECT_FALSE(properties(4).value("progress-visible").toBool());
}
