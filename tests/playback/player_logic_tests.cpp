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
    struct Step {
        std::int64_t opened; // -2: no Opened before the position
        std::int64_t position;
        int barBefore;
        QString total, time, tag;
        int bar;
    } steps[] = {
        // A duration the file does not tell is 0, and positions then leave the bar alone.
        {-1, 2'500'000, 37, "00:00:00", "00:00:02", "00:00:02.500", 37},
        {10'000'000, 2'500'000, 0, "00:00:10", "00:00:02", "00:00:02.500", 50},
        {10'000'000, 9'999'999, 0, "00:00:10", "00:00:09", "00:00:09.999", 199},
        {-2, 0, 77, "00:00:10", "00:00:00", "00:00:00.000", 77}, // time 0 leaves the bar alone
    };
    for (const Step& s : steps) {
        if (s.opened != -2) {
            media.Opened(s.opened);
            EXPECT_EQ(panel.barMax, 200);
            EXPECT_EQ(panel.barValue, 0);
            EXPECT_EQ(panel.lbl_PlayTime, "00:00:00");
        }
        panel.barValue = s.barBefore;
        media.Position(s.position);
        EXPECT_EQ(panel.lbl_PlayTotal, s.total) << s.position;
        EXPECT_EQ(panel.lbl_PlayTime, s.time);
        EXPECT_EQ(panel.lbl_PlayTimeTag, s.tag);
        EXPECT_EQ(panel.barValue, s.bar) << s.position;
        EXPECT_EQ(media.PlayPosition, s.position);
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
    struct Case {
        bool edit, player;
        int state;
        int editStops, playerStops;
    } cases[] = {
        {true, false, PlayerState_EndOfStream, 1, 0}, {false, true, PlayerState_EndOfStream, 0, 1},
        {true, true, PlayerState_EndedByError, 1, 0}, {false, false, PlayerState_EndOfStream, 0, 0},
        {false, true, PlayerState_Paused, 0, 0},      {false, true, PlayerState_Stopped, 0, 0},
    };
    fake.surface = &surface;
    for (const Case& c : cases) {
        int editStops = 0, playerStops = 0;
        media.EditWindow_StopPlayer = [&] { ++editStops; };
        media.PlayerWindow_StopPlayer = [&] { ++playerStops; };
        EditWindowOpen = c.edit;
        PlayerWindowOpen = c.player;
        const int redraws = fake.redraws;
        media.State(c.state);
        EXPECT_EQ(editStops, c.editStops) << c.state;
        EXPECT_EQ(playerStops, c.playerStops) << c.state;
        const bool ended = c.state == PlayerState_EndOfStream || c.state == PlayerState_EndedByError;
        EXPECT_EQ(fake.redraws - redraws, ended ? 1 : 0) << "the picture is repainted at the end only";
    }
}

TEST_F(PlayerLogic, CommandModes) {
    PlayerOptions o;
    o.FileName = "/clips/a.mkv";
    o.Position = 1'500'000;
    fake.ready = false;
    media.Player_Command(PlayerMode_Start, o); // no frame yet: opens at the position
    EXPECT_EQ(fake.calls, QStringList({"init", "open /clips/a.mkv 1500000"}));
    fake.frame = QImage(8, 8, QImage::Format_RGB32);
    for (auto [mode, call] : {std::pair<int, const char*>{PlayerMode_Start, "toggle"},
                              {PlayerMode_TogglePause, "toggle"},
                              {PlayerMode_Step, "step"},
                              {PlayerMode_Stop, "stop"}}) {
        fake.calls.clear();
        media.Player_Command(mode, o);
        EXPECT_EQ(fake.calls, QStringList{call}) << mode;
    }
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
    const QString clip = home.path() + "/a.mkv";
    QFile(clip).open(QIODevice::WriteOnly);
    PlayerButtons b;
    PlayerOptions o;
    o.FileName = home.path() + "/gone.mkv";
    EXPECT_FALSE(PlayPause_Click(media, b, o));
    EXPECT_EQ(messages.value(0), "Player|48|" + o.FileName + "\nFile not found!");
    fake.error = "a.mkv\nunrecognized file format";
    o.FileName = clip;
    EXPECT_FALSE(PlayPause_Click(media, b, o));
    EXPECT_EQ(messages.value(1), "Player|48|a.mkv\nunrecognized file format");
    EXPECT_EQ(b.playTag, "Play");

    fake.error.clear();
    struct Press {
        QString tag, image;
        int flag;
    } presses[] = {
        {"Pause", "img_player_pause", 0}, // opened and playing
        {"Pause", "img_player_play", 0},  // paused
        {"Pause", "img_player_pause", 1}, // resumed
    };
    for (const Press& p : presses) {
        EXPECT_TRUE(PlayPause_Click(media, b, o));
        EXPECT_EQ(b.playTag, p.tag);
        EXPECT_EQ(b.playImage, p.image);
        EXPECT_EQ(media.PlayerFlag, p.flag);
    }
    EXPECT_TRUE(b.stopEnabled);
    panel.barValue = 120;
    panel.lbl_PlayTime = "00:01:00";
    Stop_Click(media, b);
    EXPECT_EQ(b.playTag, "Play");
    EXPECT_FALSE(b.stopEnabled);
    EXPECT_EQ(media.PlayerFlag, 2);
    EXPECT_EQ(panel.barValue, 0);
    EXPECT_EQ(panel.lbl_PlayTimeTag, "00:00:00.000");

    // Mute and the volume slider share the button's tag; unmuting at 0 raises the volume.
    struct Step {
        int volume; // -1: press Mute instead
        QString tag;
        bool mute;
        int level;
    } steps[] = {{-1, "Off", true, 100}, {-1, "On", false, 100}, {0, "Off", false, 0},
                 {-1, "On", false, 100}, {40, "On", false, 40},  {250, "On", false, 100}};
    for (const Step& s : steps) {
        if (s.volume < 0)
            Mute_Click(media, b);
        else
            Volume_Change(media, b, s.volume);
        EXPECT_EQ(b.muteTag, s.tag) << s.volume;
        EXPECT_EQ(fake.mute, s.mute) << s.volume;
        EXPECT_EQ(fake.volume, s.level) << s.volume;
        EXPECT_EQ(b.volume, s.level);
    }
}

TEST_F(PlayerLogic, PanelHidesWhileTheCursorRestsInFullScreen) {
    PlayerWindow w(media);
    bool full = false;
    w.setFullScreen = [&](bool f) { full = f; };
    w.Layout(1080, 60);
    EXPECT_EQ(w.panelTop, 1020);
    w.Toggle_FullScreen();
    EXPECT_TRUE(full && w.timers.GetMousePosition);
    EXPECT_EQ(w.mnuFullScreenCaption, "Exit full screen");
    EXPECT_EQ(w.fullScreenImage, "img_exit_fullscreen");

    w.Timer_GetMousePosition_Tick({10, 10}); // first reading: a move
    EXPECT_FALSE(w.timers.HidePanel);
    w.Timer_GetMousePosition_Tick({10, 10});
    EXPECT_TRUE(w.timers.HidePanel);
    w.Timer_HidePanel_Tick();
    EXPECT_FALSE(w.captionVisible);
    EXPECT_TRUE(w.timers.Motion);
    EXPECT_FALSE(w.timers.HidePanel);
    int ticks = 0;
    while (w.timers.Motion && ticks < 1000) {
        w.Timer_Motion_Tick();
        ++ticks;
    }
    EXPECT_EQ(ticks, 30) << "60 pixels in steps of 2";
    EXPECT_EQ(w.panelTop, 1080);
    w.Timer_Motion_Tick();
    EXPECT_EQ(w.panelTop, 1080) << "never past the bottom";

    w.Timer_GetMousePosition_Tick({11, 10}); // a move brings everything back at once
    EXPECT_TRUE(w.captionVisible);
    EXPECT_EQ(w.panelTop, 1020);
    EXPECT_FALSE(w.timers.Motion || w.timers.HidePanel);
    w.Timer_GetMousePosition_Tick({11, 10});
    w.Timer_HidePanel_Tick();
    w.Timer_Motion_Tick();
    w.Toggle_FullScreen(); // back to the window mid-slide: the panel is whole again
    EXPECT_FALSE(full || w.timers.GetMousePosition || w.timers.Motion);
    EXPECT_TRUE(w.captionVisible);
    EXPECT_EQ(w.panelTop, 1020);
    EXPECT_EQ(w.mnuFullScreenCaption, "Full Screen");
    EXPECT_EQ(w.fullScreenImage, "img_fullscreen");
}

TEST_F(PlayerLogic, SnapshotsOfEachTypeNamedByThePosition) {
    TempHome home;
    Folder_Temp = home.make("work");
    REGISTRY_PRODUCT = "MorvaneTest/PlayerLogic";
    const QString pictures = home.make("Pictures");
    Path_Capture = pictures;
    fake.frame = QImage(64, 48, QImage::Format_RGB32);
    fake.frame.fill(QColor(200, 40, 30));
    fake.state = PlayerState_Paused;

    PlayerWindow w(media);
    QString offered;
    int filter = 0;
    QString answer;
    w.saveDialog = [&](const QString& name, const QString& folder, int& index) {
        offered = folder + name;
        index = filter;
        return answer;
    };
    w.Form_Load();
    media.Opened(10'000'000);
    media.Position(2'500'000);
    const QString saves = home.make("saves");
    for (filter = 1; filter <= 5; ++filter) {
        answer = saves + "Snapshot-00.00.02.500";
        w.Cmd_Player_Click(4);
        EXPECT_EQ(offered, (filter == 1 ? pictures : saves) + "Snapshot-00.00.02.500");
        const QString file = answer + QStringList{".png", ".jpg", ".gif", ".bmp", ".tif"}[filter - 1];
        ASSERT_TRUE(QFile::exists(file)) << file.toStdString() << messages.join(';').toStdString();
        EXPECT_TRUE(filter == 5 || QImageReader(file).size() == QSize(64, 48)) << filter;
        EXPECT_EQ(Path_Capture, saves);
    }
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
    EXPECT_EQ(Snapshot_Name("01:02:03.040"), "Snapshot-01.02.03.040");
}

} // namespace
} // namespace morvane
