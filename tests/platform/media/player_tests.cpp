// The playing layer on clips that the ffmpeg program makes: events, pause, seek, step, end of
// stream, frame grabs against ffmpeg's own decode, filters, tracks, volume, the surface, bad input.
#include "MpvPlayer.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

namespace morvane {
namespace {

bool spinUntil(const std::function<bool()>& condition, int ms = 5000) {
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.elapsed() > ms) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
}

struct Recorder : FFPlayerEvents {
    std::vector<std::int64_t> opened, positions;
    std::vector<int> states;
    void Opened(std::int64_t d) override { opened.push_back(d); }
    void Position(std::int64_t t) override { positions.push_back(t); }
    void State(int s) override { states.push_back(s); }
    bool sawState(int s) const { return std::find(states.begin(), states.end(), s) != states.end(); }
};

struct Surface : PlayerSurface {
    QSize size{160, 90};
    QImage last;
    int frames = 0, clears = 0;
    QSize surfaceSize() const override { return size; }
    void presentFrame(const QImage& frame) override {
        last = frame.copy();
        ++frames;
    }
    void clearFrame() override { ++clears; }
};

class PlayerTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        dir = std::make_unique<QTemporaryDir>();
        const QString d = dir->path() + '/';
        // Colour bars with two audio tracks, 25 fps, 4 s; lossless so that colours survive.
        run({"-f",          "lavfi", "-i",       "smptebars=size=320x240:rate=25:duration=4",
             "-f",          "lavfi", "-i",       "sine=frequency=440:duration=4",
             "-f",          "lavfi", "-i",       "sine=frequency=880:duration=4",
             "-map",        "0",     "-map",     "1",
             "-map",        "2",     "-c:v",     "libx264",
             "-qp",         "0",     "-pix_fmt", "yuv444p",
             "-g",          "25",    "-c:a",     "aac",
             d + "bars.mkv"});
        run({"-f", "lavfi", "-i", "sine=duration=2", d + "sound.m4a"});
        run({"-f", "lavfi", "-i", "testsrc2=size=3840x2160:rate=5:duration=1", "-c:v", "libx264", "-preset",
             "ultrafast", "-pix_fmt", "yuv420p", d + "uhd.mp4"});
        QFile bars(d + "bars.mkv");
        ASSERT_TRUE(bars.open(QIODevice::ReadOnly));
        const QByteArray bytes = bars.readAll();
        write(d + "cut.mkv", bytes.left(bytes.size() / 3));
        write(d + "notes.mp4", QByteArray("these are notes, not a film\n").repeated(50));
        write(d + "empty.mp4", {});
    }
    static void TearDownTestSuite() { dir.reset(); }
    static void run(QStringList args) {
        QProcess ffmpeg;
        ffmpeg.start("ffmpeg", QStringList{"-nostdin", "-loglevel", "error", "-y"} + args);
        ASSERT_TRUE(ffmpeg.waitForFinished(60000)) << args.join(' ').toStdString();
        ASSERT_EQ(ffmpeg.exitCode(), 0) << ffmpeg.readAllStandardError().toStdString();
    }
    static void write(const QString& path, const QByteArray& bytes) {
        QFile f(path);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    }
    static QString clip(const char* name) { return dir->path() + '/' + name; }

    void SetUp() override {
        MpvPlayerOptions options;
        options.audioOutput = "null";
        player = std::make_unique<MpvPlayer>(options);
        ASSERT_TRUE(player->Initialize(false, {})) << player->LastError().toStdString();
        player->setEvents(&events);
    }
    void openPaused(const char* name, std::int64_t at = 0) {
        player->Open(clip(name), at, false);
        ASSERT_EQ(player->LastError(), "");
        player->TogglePause();
        ASSERT_TRUE(spinUntil([&] { return player->PlayState() == PlayerState_Paused; }));
        ASSERT_TRUE(spinUntil([&] { return !player->GetFrame().isNull(); }));
    }
    // Runs a seek or a step and gives the position that the player reports once it has settled: no
    // new position for 150 ms.
    std::int64_t positionAfter(const std::function<void()>& action) {
        events.positions.clear();
        action();
        spinUntil([&] { return !events.positions.empty(); });
        std::size_t seen = 0;
        QElapsedTimer quiet;
        quiet.start();
        spinUntil([&] {
            if (events.positions.size() != seen) {
                seen = events.positions.size();
                quiet.restart();
            }
            return quiet.elapsed() > 150;
        });
        return player->PositionUs();
    }

    static std::unique_ptr<QTemporaryDir> dir;
    Recorder events;
    std::unique_ptr<MpvPlayer> player;
};
std::unique_ptr<QTemporaryDir> PlayerTest::dir;

TEST_F(PlayerTest, PlaysPausesResumesAndStopsWithItsEvents) {
    player->Open(clip("bars.mkv"), 0, false);
    EXPECT_EQ(player->LastError(), "");
    ASSERT_EQ(events.opened.size(), 1u);
    EXPECT_NEAR(events.opened[0], 4'000'000, 100'000);
    EXPECT_EQ(player->FrameWidth(), 320);
    EXPECT_EQ(player->FrameHeight(), 240);
    ASSERT_TRUE(spinUntil([&] { return events.positions.size() >= 5; }));
    EXPECT_TRUE(std::is_sorted(events.positions.begin(), events.positions.end()));
    EXPECT_GT(events.positions.back(), events.positions.front());
    EXPECT_EQ(player->PlayState(), PlayerState_Playing);

    player->TogglePause();
    ASSERT_TRUE(spinUntil([&] { return events.sawState(PlayerState_Paused); }));
    EXPECT_EQ(player->PlayState(), PlayerState_Paused);
    spinUntil([] { return false; }, 100);
    const std::int64_t held = player->PositionUs();
    spinUntil([] { return false; }, 200);
    EXPECT_EQ(player->PositionUs(), held) << "a paused player does not move";

    player->TogglePause();
    ASSERT_TRUE(spinUntil([&] { return player->PositionUs() > held; }));
    EXPECT_EQ(player->PlayState(), PlayerState_Playing);

    player->Stop(true);
    ASSERT_TRUE(spinUntil([&] { return events.states.back() == PlayerState_Stopped; }));
    EXPECT_EQ(player->PlayState(), PlayerState_Stopped);
    EXPECT_TRUE(player->GetFrame().isNull()) << "no frame when stopped";
    EXPECT_EQ(player->FrameWidth(), 0);
}

TEST_F(PlayerTest, SeeksAndStepsToTheFrame) {
    openPaused("bars.mkv");
    const std::int64_t frame = 40'000; // 25 fps
    for (std::int64_t target : {2'000'000LL, 520'000LL, 3'480'000LL, 0LL}) {
        EXPECT_LE(std::abs(positionAfter([&] { player->Seek(target); }) - target), frame) << target;
        EXPECT_EQ(player->PlayState(), PlayerState_Paused) << "a seek keeps the pause";
    }
    const std::int64_t before = positionAfter([&] { player->Seek(1'000'000); });
    EXPECT_NEAR(positionAfter([&] { player->Step(); }) - before, frame, 1000);
    EXPECT_EQ(player->PlayState(), PlayerState_Paused);
}

TEST_F(PlayerTest, EndOfStreamIsReportedAndTheLastFrameKept) {
    player->Open(clip("bars.mkv"), 3'700'000, false);
    ASSERT_TRUE(spinUntil([&] { return events.sawState(PlayerState_EndOfStream); }));
    EXPECT_EQ(player->PlayState(), PlayerState_Ended);
    EXPECT_FALSE(player->GetFrame().isNull());
    // Play at the end starts again from the beginning.
    player->TogglePause();
    ASSERT_TRUE(spinUntil([&] { return player->PlayState() == PlayerState_Playing; }));
    ASSERT_TRUE(spinUntil([&] { return player->PositionUs() >= 0 && player->PositionUs() < 1'000'000; }));
}

// The bars as ffmpeg decodes them, in BGRA.
QImage ffmpegFrame(const QString& path, const QString& filter) {
    QProcess ffmpeg;
    QStringList args{"-nostdin", "-loglevel", "error", "-i", path, "-frames:v", "1"};
    if (!filter.isEmpty()) args << "-vf" << filter;
    ffmpeg.start("ffmpeg", args + QStringList{"-f", "rawvideo", "-pix_fmt", "bgra", "-"});
    ffmpeg.waitForFinished(30000);
    const QByteArray raw = ffmpeg.readAllStandardOutput();
    if (raw.size() != 320 * 240 * 4) return {};
    return QImage(reinterpret_cast<const uchar*>(raw.constData()), 320, 240, QImage::Format_ARGB32).copy();
}

TEST_F(PlayerTest, GrabbedFramesMatchTheBarsWithAndWithoutAFilter) {
    openPaused("bars.mkv");
    for (const QString& filter : {QString(), QStringLiteral("hflip")}) {
        SCOPED_TRACE(filter.toStdString());
        player->setVideoFilter(filter);
        EXPECT_EQ(player->LastError(), "");
        EXPECT_EQ(player->VideoFilter(), filter);
        positionAfter([&] { player->Seek(0); });
        QImage grab;
        ASSERT_TRUE(spinUntil([&] {
            grab = player->GetFrame();
            return !grab.isNull() && (filter.isEmpty() ||
                                      grab.pixel(20, 60) != ffmpegFrame(clip("bars.mkv"), {}).pixel(20, 60));
        }));
        ASSERT_EQ(grab.size(), QSize(320, 240));
        const QImage expected = ffmpegFrame(clip("bars.mkv"), filter);
        ASSERT_FALSE(expected.isNull());
        for (int x = 20; x < 320; x += 45) { // the centre of each of the seven bars
            const QColor got = grab.pixelColor(x, 60), want = expected.pixelColor(x, 60);
            EXPECT_NEAR(got.red(), want.red(), 6) << x;
            EXPECT_NEAR(got.green(), want.green(), 6) << x;
            EXPECT_NEAR(got.blue(), want.blue(), 6) << x;
        }
    }
    // A chain the engine cannot build is refused with its words, and the picture stays unfiltered.
    player->setVideoFilter("nosuchfilter=3");
    EXPECT_NE(player->LastError(), "");
    EXPECT_EQ(player->VideoFilter(), "");
}

TEST_F(PlayerTest, TracksVolumeAndMute) {
    openPaused("bars.mkv");
    const QList<PlayerTrack> tracks = player->Tracks();
    ASSERT_EQ(tracks.size(), 2);
    EXPECT_TRUE(tracks[0].audio && tracks[1].audio);
    EXPECT_TRUE(tracks[1].title.startsWith("2: ")) << tracks[1].title.toStdString();
    EXPECT_EQ(player->AudioStream(), 1);
    player->setAudioStream(2);
    EXPECT_EQ(player->AudioStream(), 2);
    player->setAudioStream(-1);
    EXPECT_EQ(player->AudioStream(), -1);
    for (auto [set, want] : {std::pair<int, int>{30, 30}, {0, 0}, {250, 100}, {-5, 0}}) {
        player->setVolume(static_cast<std::int16_t>(set));
        EXPECT_EQ(player->Volume(), want) << set;
    }
    player->setMute(true);
    EXPECT_TRUE(player->Mute());
    player->setMute(false);
    EXPECT_FALSE(player->Mute());
}

TEST_F(PlayerTest, TheSurfaceGetsFramesAtItsSizeWithTheAspectAsked) {
    Surface surface;
    player->setVideoWindow(&surface);
    openPaused("bars.mkv");
    ASSERT_TRUE(spinUntil([&] { return surface.frames > 0 && qGray(surface.last.pixel(80, 30)) > 40; }));
    EXPECT_EQ(surface.last.size(), QSize(160, 90));
    // 4:3 in a 16:9 surface: black bars at the sides, picture in the middle.
    EXPECT_EQ(qGray(surface.last.pixel(2, 45)), 0);

    player->setAspect(16.0f / 9.0f);
    surface.size = QSize(320, 180);
    player->Redraw();
    ASSERT_TRUE(spinUntil(
        [&] { return surface.last.size() == QSize(320, 180) && qGray(surface.last.pixel(3, 45)) > 40; }));

    player->Stop(true);
    ASSERT_TRUE(spinUntil([&] { return surface.clears > 0; }));
    player->setVideoWindow(nullptr);
}

TEST_F(PlayerTest, BadInputGivesItsReasonOrPlaysWithoutHanging) {
    struct Case {
        const char* name;
        bool opens;
        bool picture;
    } cases[] = {
        {"missing.mp4", false, false}, {"notes.mp4", false, false}, {"empty.mp4", false, false},
        {"cut.mkv", true, true},       {"sound.m4a", true, false},  {"uhd.mp4", true, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        events = Recorder();
        QElapsedTimer clock;
        clock.start();
        player->Open(clip(c.name), 0, false);
        EXPECT_LT(clock.elapsed(), 3500);
        if (!c.opens) {
            EXPECT_TRUE(player->LastError().startsWith(c.name)) << player->LastError().toStdString();
            EXPECT_TRUE(events.sawState(PlayerState_EndedByError));
            EXPECT_EQ(player->PlayState(), PlayerState_Stopped);
            continue;
        }
        EXPECT_EQ(player->LastError(), "");
        ASSERT_EQ(events.opened.size(), 1u);
        ASSERT_TRUE(spinUntil([&] { return !events.positions.empty(); }));
        const bool picture = spinUntil([&] { return !player->GetFrame().isNull(); }, c.picture ? 5000 : 500);
        EXPECT_EQ(picture, c.picture);
        // A truncated file plays to where it stops and ends like any other.
        const bool truncated = QByteArray(c.name) == "cut.mkv";
        EXPECT_TRUE(!truncated || spinUntil([&] { return events.sawState(PlayerState_EndOfStream); }));
        player->Stop(true);
    }
    // Released with a file open and frames on their way: nothing is left running.
    player->Open(clip("bars.mkv"), 0, false);
    player->Release();
    EXPECT_FALSE(player->IsReady());
    player->Open(clip("bars.mkv"), 0, false);
    EXPECT_NE(player->LastError(), "");
}

} // namespace
} // namespace morvane

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
