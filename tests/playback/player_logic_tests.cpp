// The player's logic on a fake playing layer: the labels and the bar that the events keep, the end of
// the stream reaching its owner, the command modes, the buttons, the player window's panel and full
// screen, and snapshots.
#include "../core/TempHome.h"
#include "FakePlayer.h"
#include "Globals.h"
#include "MediaPlayer_Mod.h"
#include "PlayerWindow.h"
#include "Registry_Mod.h"
#include "mMain.h"

#include <QDir>
#include <QImageReader>

#include <gtest/gtest.h>

namespace morvane {
namespace {

struct NullSurface : PlayerSurface {
    QSize surfaceSize() const override { return {4, 4}; }
    void presentFrame(const QImage&) override {}
    void clearFrame() override {}
};

class PlayerLogic : public testing::Test {
protected:
    void SetUp() override {
        EditWindowOpen = PlayerWindowOpen = false;
        Set_MessageHandler([this](const QString& text, int flags, const QString& title, const QString&) {
            messages << QString("%1|%2|%3").arg(title).arg(flags).arg(text);
            return ID_OK;
        });
        media.PlayerOwnerForm = &panel;
        media.LetEventsRun = [this] { ++eventRuns; };
        panel.barWidth = 200;
    }
    void TearDown() override {
        Set_MessageHandler({});
        EditWindowOpen = PlayerWindowOpen = false;
    }
    NullSurface surface;
    FakePlayer fake;
    MediaPlayer media{fake};
    PlayPanel panel;
    QStringList messages;
    int eventRuns = 0;
};

TEST_F(PlayerLogic, EventsKeepTheLabelsAndTheBar) {
    // Opened (-2: none) starts over on a bar as wide as the control; a known duration and a time
    // past 0 move the bar.
    const auto shown = [&] {
        return QStringList({panel.lbl_PlayTotal, panel.lbl_PlayTime, panel.lbl_PlayTimeTag,
                            QString::number(panel.barValue)})
            .join(' ');
    };
    const std::tuple<std::int64_t, std::int64_t, int, const char*> steps[] = {
        {-1, 2'500'000, 37, "00:00:00 00:00:02 00:00:02.500 37"}, // a duration the file does not tell is 0
        {10'000'000, 2'500'000, 0, "00:00:10 00:00:02 00:00:02.500 50"},
        {10'000'000, 9'999'999, 0, "00:00:10 00:00:09 00:00:09.999 199"},
        {-2, 0, 77, "00:00:10 00:00:00 00:00:00.000 77"},
    };
    for (const auto& [opened, position, barBefore, expected] : steps) {
        if (opened != -2) {
            panel.lbl_PlayTime = panel.lbl_PlayTimeTag = "x";
            panel.barValue = 5;
            media.Opened(opened);
            EXPECT_EQ(shown().section(' ', 1), "00:00:00 00:00:00.000 0");
            EXPECT_EQ(panel.barMax, 200);
        }
        panel.barValue = barBefore;
        media.Position(position);
        EXPECT_EQ(shown(), expected);
        EXPECT_FALSE(media.BarGuard);
    }
    // The user's bar seeks in proportion; the program's own change does not.
    media.Seek_Preview(100);
    EXPECT_EQ(fake.seekedTo, 5'000'000);
    fake.seekedTo = -1;
    media.BarGuard = true;
    media.Seek_Preview(150);
    EXPECT_EQ(fake.seekedTo, -1);
}

TEST_F(PlayerLogic, EndOfStreamReachesTheWindowThatOwnsThePlayer) {
    // Edit window open, player window open, the event; which window stops, and whether the picture is
    // drawn again.
    const std::tuple<bool, bool, int, const char*> cases[] = {
        {true, false, PlayerState_EndOfStream, "edit redraw"},
        {false, true, PlayerState_EndOfStream, "player redraw"},
        {true, true, PlayerState_EndedByError, "edit redraw"},
        {false, false, PlayerState_EndOfStream, "redraw"},
        {false, true, PlayerState_Paused, ""},
        {false, true, PlayerState_Stopped, ""},
    };
    fake.surface = &surface;
    for (const auto& [edit, player, state, expected] : cases) {
        QString seen;
        media.EditWindow_StopPlayer = [&] { seen += "edit "; };
        media.PlayerWindow_StopPlayer = [&] { seen += "player "; };
        EditWindowOpen = edit;
        PlayerWindowOpen = player;
        const int redraws = fake.redraws;
        media.State(state);
        EXPECT_EQ((seen + (fake.redraws > redraws ? "redraw" : "")).trimmed(), expected) << state;
    }
}

TEST_F(PlayerLogic, CommandModes) {
    PlayerOptions o;
    o.FileName = "/clips/a.mkv";
    o.Position = 1'500'000;
    fake.ready = false;
    media.Player_Command(PlayerMode_Start, o); // no frame yet: opens at the position
    EXPECT_EQ(fake.calls, QStringList({"init", "open /clips/a.mkv 1500000"}));
    fake.frame = QImage(8, 8, QImage::Format_RGB32); // a frame: Start only toggles the pause
    fake.calls.clear();
    for (const int mode : {PlayerMode_Start, PlayerMode_TogglePause, PlayerMode_Step, PlayerMode_Stop})
        media.Player_Command(mode, o);
    EXPECT_EQ(fake.calls, QStringList({"toggle", "toggle", "step", "stop"}));
    EXPECT_EQ(eventRuns, 1) << "a stop lets the events run";
    // An engine that does not start: its words under "Player" with the critical icon, nothing opened.
    fake.ready = fake.initWorks = false;
    fake.calls.clear();
    media.Player_Command(PlayerMode_OpenAndPlay, o);
    EXPECT_EQ(fake.calls, QStringList{"init"});
    EXPECT_EQ(messages, QStringList{"Player|16|no engine here"});
}

TEST_F(PlayerLogic, PlayPauseStopMuteAndVolume) {
    TempHome home;
    PlayerButtons b;
    PlayerOptions o;
    // The Play button's tag and picture, whether Stop is enabled, the player's flag.
    const auto buttons = [&] {
        return QStringLiteral("%1 %2 %3 %4")
            .arg(b.playTag, b.playImage, b.stopEnabled ? "stop" : "-")
            .arg(media.PlayerFlag);
    };
    // A file gone from disk, then one the player cannot open: a message each, nothing plays.
    o.FileName = home.path() + "/gone.mkv";
    EXPECT_FALSE(PlayPause_Click(media, b, o));
    o.FileName = home.path() + "/a.mkv";
    QFile(o.FileName).open(QIODevice::WriteOnly);
    fake.error = "a.mkv\nunrecognized file format";
    EXPECT_FALSE(PlayPause_Click(media, b, o));
    EXPECT_EQ(messages, QStringList({"Player|48|" + home.path() + "/gone.mkv\nFile not found!",
                                     "Player|48|a.mkv\nunrecognized file format"}));
    EXPECT_EQ(buttons(), "Play img_player_play - 2");

    fake.error.clear();
    for (const char* pressed : {"Pause img_player_pause stop 0", // opened and playing
                                "Pause img_player_play stop 0",  // paused
                                "Pause img_player_pause stop 1"}) {
        EXPECT_TRUE(PlayPause_Click(media, b, o));
        EXPECT_EQ(buttons(), pressed);
    }
    panel.barValue = 120;
    panel.lbl_PlayTime = panel.lbl_PlayTimeTag = "x";
    Stop_Click(media, b);
    EXPECT_EQ(buttons(), "Play img_player_play - 2");
    EXPECT_EQ(QStringList({panel.lbl_PlayTime, panel.lbl_PlayTimeTag, QString::number(panel.barValue)}),
              QStringList({"00:00:00", "00:00:00.000", "0"}));

    // Mute (-1) and the volume slider share the button; unmuting at 0 raises the volume to the top.
    const std::pair<int, const char*> steps[] = {
        {-1, "Off img_vol_off muted 100 100"}, {-1, "On img_vol_on - 100 100"},
        {0, "Off img_vol_off - 0 0"},          {-1, "On img_vol_on - 100 100"},
        {40, "On img_vol_on - 40 40"},         {250, "On img_vol_on - 100 100"},
    };
    for (const auto& [volume, expected] : steps) {
        volume < 0 ? Mute_Click(media, b) : Volume_Change(media, b, volume);
        EXPECT_EQ(QStringLiteral("%1 %2 %3 %4 %5")
                      .arg(b.muteTag, b.muteImage, fake.mute ? "muted" : "-")
                      .arg(fake.volume)
                      .arg(b.volume),
                  expected)
            << volume;
    }
}

TEST_F(PlayerLogic, PanelSlidesAwayWhileTheCursorRestsInFullScreen) {
    PlayerWindow w(media);
    bool full = false;
    w.setFullScreen = [&](bool f) { full = f; };
    w.Layout(1080, 60);
    // F full screen on or off, Cx the cursor timer's tick at x, H the hide timer's, Sn n slide ticks.
    // clang-format off
    const std::pair<const char*, const char*> steps[] = {
        {"F",   "full 1020 caption C"},
        {"C10", "full 1020 caption C"},  // the first reading is a move
        {"C10", "full 1020 caption CH"},
        {"H",   "full 1020 CS"},
        {"S29", "full 1078 CS"},         // 2 pixels a tick
        {"S1",  "full 1080 C"},
        {"S1",  "full 1080 C"},          // never past the bottom
        {"C11", "full 1020 caption C"},  // a move brings everything back at once
        {"C11", "full 1020 caption CH"},
        {"H",   "full 1020 CS"},
        {"S1",  "full 1022 CS"},
        {"F",   "window 1020 caption "}, // a window never keeps a hidden panel
    };
    // clang-format on
    for (const auto& [step, expected] : steps) {
        const int n = QString(step).mid(1).toInt();
        if (step[0] == 'F') w.Toggle_FullScreen();
        if (step[0] == 'C') w.Timer_GetMousePosition_Tick({n, 10});
        if (step[0] == 'H') w.Timer_HidePanel_Tick();
        for (int i = 0; step[0] == 'S' && i < n; ++i)
            w.Timer_Motion_Tick();
        EXPECT_EQ(QStringLiteral("%1 %2 %3%4%5%6")
                      .arg(full ? "full" : "window")
                      .arg(w.panelTop)
                      .arg(w.captionVisible ? "caption " : "", w.timers.GetMousePosition ? "C" : "",
                           w.timers.HidePanel ? "H" : "", w.timers.Motion ? "S" : ""),
                  expected)
            << step;
    }
    EXPECT_EQ(QStringList({w.mnuFullScreenCaption, w.fullScreenImage}),
              QStringList({"Full Screen", "img_fullscreen"}));
    w.Toggle_FullScreen();
    EXPECT_EQ(QStringList({w.mnuFullScreenCaption, w.fullScreenImage}),
              QStringList({"Exit full screen", "img_exit_fullscreen"}));
}

TEST_F(PlayerLogic, SnapshotsOfEachTypeNamedByThePosition) {
    TempHome home;
    Folder_Temp = home.make("work");
    REGISTRY_PRODUCT = "MorvaneTest/PlayerLogic";
    const QString pictures = home.make("Pictures"), saves = home.make("saves");
    Path_Capture = pictures;
    fake.frame = QImage(64, 48, QImage::Format_RGB32);
    fake.frame.fill(QColor(200, 40, 30));
    fake.state = PlayerState_Paused;

    PlayerWindow w(media);
    QString offered, answer;
    int filter = 0;
    w.saveDialog = [&](const QString& name, const QString& folder, int& index) {
        offered = folder + name;
        index = filter;
        return answer;
    };
    w.Form_Load();
    media.Opened(10'000'000);
    media.Position(2'500'000);
    // The filter gives the type; the folder saved to is offered next and kept in the settings.
    for (filter = 1; filter <= 5; ++filter) {
        answer = saves + "Snapshot-00.00.02.500";
        w.Cmd_Player_Click(4);
        EXPECT_EQ(offered, (filter == 1 ? pictures : saves) + "Snapshot-00.00.02.500");
        const QString file = answer + QStringList{".png", ".jpg", ".gif", ".bmp", ".tif"}[filter - 1];
        ASSERT_TRUE(QFile::exists(file)) << file.toStdString() << messages.join(';').toStdString();
        EXPECT_TRUE(filter == 5 || QImageReader(file).size() == QSize(64, 48)) << filter;
    }
    EXPECT_EQ(Path_Capture, saves);
    EXPECT_EQ(Read_Setting(REGISTRY_PRODUCT, "CapturePath"), saves);
    EXPECT_TRUE(QDir(Folder_Temp).entryList(QDir::Files).isEmpty()) << "the temporary picture goes";

    answer.clear(); // Cancel: nothing saved, the capture folder as it was
    const int files = QDir(saves).count();
    w.Cmd_Player_Click(4);
    EXPECT_EQ(QDir(saves).count(), files);
    EXPECT_EQ(Path_Capture, saves);
    EXPECT_TRUE(messages.isEmpty());

    fake.state = PlayerState_Stopped; // no picture: a message, no dialog, no file
    offered.clear();
    w.Cmd_Player_Click(4);
    EXPECT_EQ(offered, "");
    EXPECT_EQ(messages, QStringList{"Player|48|There is no picture to capture."});
}

} // namespace
} // namespace morvane
