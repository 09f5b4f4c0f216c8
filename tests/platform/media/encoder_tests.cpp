// The engine on clips that the ffmpeg program makes at test time; properties read back with libavformat.
#include "EncoderTestKit.h"
#include "FFEncoder.h"
#include "FFLogger.h"
#include "Hook_Convert.h"
#include "LibavHandles.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace morvane {
namespace {

using namespace libav;

// The first picture of a file as RGB24 bytes.
std::vector<std::uint8_t> firstFrameRgb(const QString& path) {
    std::vector<std::uint8_t> rgb;
    AVFormatContext* raw = nullptr;
    if (avformat_open_input(&raw, path.toUtf8().constData(), nullptr, nullptr) < 0) return rgb;
    InputPtr in(raw);
    avformat_find_stream_info(in.get(), nullptr);
    const AVCodec* codec = nullptr;
    const int index = av_find_best_stream(in.get(), AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    if (index < 0) return rgb;
    CodecPtr dec(avcodec_alloc_context3(codec));
    avcodec_parameters_to_context(dec.get(), in->streams[index]->codecpar);
    if (avcodec_open2(dec.get(), codec, nullptr) < 0) return rgb;
    PacketPtr pkt(av_packet_alloc());
    FramePtr frame(av_frame_alloc());
    bool got = false;
    while (!got && av_read_frame(in.get(), pkt.get()) >= 0) {
        if (pkt->stream_index == index && avcodec_send_packet(dec.get(), pkt.get()) >= 0)
            got = avcodec_receive_frame(dec.get(), frame.get()) >= 0;
        av_packet_unref(pkt.get());
    }
    if (!got) {
        avcodec_send_packet(dec.get(), nullptr);
        got = avcodec_receive_frame(dec.get(), frame.get()) >= 0;
    }
    if (!got) return rgb;
    SwsPtr sws(sws_getContext(frame->width, frame->height, static_cast<AVPixelFormat>(frame->format),
                              frame->width, frame->height, AV_PIX_FMT_RGB24, SWS_BICUBIC, nullptr, nullptr,
                              nullptr));
    rgb.resize(static_cast<std::size_t>(frame->width) * frame->height * 3);
    std::uint8_t* dst[4] = {rgb.data(), nullptr, nullptr, nullptr};
    int dstStride[4] = {frame->width * 3, 0, 0, 0};
    sws_scale(sws.get(), frame->data, frame->linesize, 0, frame->height, dst, dstStride);
    return rgb;
}

double cpuSeconds() {
    rusage u{};
    getrusage(RUSAGE_SELF, &u);
    return static_cast<double>(u.ru_utime.tv_sec + u.ru_stime.tv_sec) +
           static_cast<double>(u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6;
}

class EncoderTest : public testing::Test {
protected:
    // Clips are made on first use: under ctest every test runs in a process of its own.
    void SetUp() override {
        if (!s_dir) s_dir = new QTemporaryDir();
        ASSERT_TRUE(s_dir->isValid());
        s_clip = s_dir->filePath("clip.mkv");
        s_longClip = s_dir->filePath("long.mkv");
    }
    static const QString& clip() { return made(s_clip, 2); }
    static const QString& longClip() { return made(s_longClip, 3); }
    static const QString& made(const QString& path, int seconds) {
        if (!QFile::exists(path)) {
            EXPECT_TRUE(makeClip(path, seconds));
        }
        return path;
    }
    static void TearDownTestSuite() {
        delete s_dir;
        s_dir = nullptr;
    }
    // 160x120 at 25 fps with a 440 Hz stereo tone at 48 kHz.
    static bool makeClip(const QString& path, int seconds) {
        const std::string cmd =
            "ffmpeg -nostdin -loglevel error -y -f lavfi -i testsrc2=size=160x120:rate=25:duration=" +
            std::to_string(seconds) +
            " -f lavfi -i sine=frequency=440:sample_rate=48000:duration=" + std::to_string(seconds) +
            " -ac 2 -c:v mpeg4 -q:v 2 -c:a pcm_s16le '" + path.toStdString() + "'";
        return std::system(cmd.c_str()) == 0;
    }
    static QString out(const char* name) { return s_dir->filePath(name); }
    // Queues one task, starts it alone and waits for the queue's end.
    static bool runOne(FFEncoder& enc, Recorder& rec, const QString& input, const QString& inputArgs,
                       const QString& output, const QString& args) {
        enc.AddInput(input, inputArgs);
        const int added = enc.AddOutput(0, output, args);
        EXPECT_EQ(added, 0) << enc.LastErrorMessage().toStdString();
        return added == 0 && enc.Start(1) && rec.waitForEnd();
    }

    static QTemporaryDir* s_dir;
    static QString s_clip;
    static QString s_longClip;
};
QTemporaryDir* EncoderTest::s_dir = nullptr;
QString EncoderTest::s_clip;
QString EncoderTest::s_longClip;

TEST_F(EncoderTest, ConvertsToTheRequestedContainersAndProperties) {
    FFEncoder enc;
    Recorder rec(enc);
    const char* mp4Args =
        R"(-VideoOutputHook  -ac 1 -ar 22050 -ab 64k -acodec aac -r 15 -aspect 16:9 -vb 300k )"
        R"(-vcodec libx264 -t 1.5 -vf "crop=150:110:5:5, scale=128:96")";
    const char* aviArgs = "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.33 "
                          "-vb 500k -pix_fmt yuvj420p -vcodec mpeg4 -vtag xvid -deinterlace";
    const char* dvArgs =
        "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -r 30 -aspect 1.33 -vb 200k -target pal-dv "
        "-vcodec dvvideo -t 1";
    ASSERT_EQ(enc.AddInput(clip(), ""), 0);
    ASSERT_EQ(enc.AddOutput(0, out("a.mp4"), mp4Args), 0) << enc.LastErrorMessage().toStdString();
    ASSERT_EQ(enc.AddInput(clip(), " -ss 0.5"), 1);
    ASSERT_EQ(enc.AddOutput(1, out("b.avi"), aviArgs), 0) << enc.LastErrorMessage().toStdString();
    ASSERT_EQ(enc.AddInput(clip(), ""), 2);
    ASSERT_EQ(enc.AddOutput(2, out("c.dv"), dvArgs), 0) << enc.LastErrorMessage().toStdString();
    ASSERT_TRUE(enc.Start(2));
    ASSERT_TRUE(rec.waitForEnd());
    for (int t = 0; t < 3; ++t) {
        ASSERT_NE(rec.terminateOf(t), nullptr);
        EXPECT_TRUE(rec.terminateOf(t)->finished) << rec.terminateOf(t)->message.toStdString();
    }

    const Props mp4 = probe(out("a.mp4"));
    EXPECT_EQ(mp4.videoCodec, "h264");
    EXPECT_EQ(mp4.width, 128);
    EXPECT_EQ(mp4.height, 96);
    EXPECT_NEAR(mp4.frameRate, 15, 0.01);
    EXPECT_NEAR(mp4.displayAspect, 16.0 / 9, 0.01);
    EXPECT_NEAR(mp4.duration, 1.5, 1.0 / 15);
    EXPECT_EQ(mp4.audioCodec, "aac");
    EXPECT_EQ(mp4.sampleRate, 22050);
    EXPECT_EQ(mp4.channels, 1);

    // Seeked half a second into a 2 s clip; yuvj420p is not an mpeg4 format, the nearest one serves.
    const Props avi = probe(out("b.avi"));
    EXPECT_EQ(avi.videoCodec, "mpeg4");
    EXPECT_EQ(avi.videoTag, 0x64697678u);
    EXPECT_EQ(avi.pixelFormat, "yuv420p");
    EXPECT_EQ(avi.width, 160);
    EXPECT_EQ(avi.height, 120);
    EXPECT_NEAR(avi.frameRate, 25, 0.01);
    EXPECT_NEAR(avi.displayAspect, 1.33, 0.01);
    EXPECT_NEAR(avi.duration, 1.5, 1.0 / 25 + 0.03); // audio frames of MP3 round up the container's end
    EXPECT_EQ(avi.audioCodec, "mp3");
    EXPECT_EQ(avi.sampleRate, 44100);
    EXPECT_EQ(avi.channels, 2);

    // The DV standard overrides the frame rate and the audio of the text.
    const Props dv = probe(out("c.dv"));
    EXPECT_EQ(dv.videoCodec, "dvvideo");
    EXPECT_EQ(dv.width, 720);
    EXPECT_EQ(dv.height, 576);
    EXPECT_EQ(dv.pixelFormat, "yuv420p");
    EXPECT_NEAR(dv.frameRate, 25, 0.01);
    EXPECT_EQ(dv.sampleRate, 48000);
    EXPECT_EQ(dv.channels, 2);
    EXPECT_NEAR(dv.duration, 1.0, 1.0 / 25);
}

double meanDifference(const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b) {
    if (a.size() != b.size() || a.empty()) return 1e9;
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        sum += std::abs(a[i] - b[i]);
    return sum / static_cast<double>(a.size());
}

TEST_F(EncoderTest, SeekStartsAtTheAskedFrameNotTheKeyFrameBeforeIt) {
    // The source has a key frame every 12 frames; 1.04 s is frame 26, two after one.
    const auto reference = [&](const char* at, const char* name) {
        const std::string cmd = "ffmpeg -nostdin -loglevel error -y -ss " + std::string(at) + " -i '" +
                                clip().toStdString() + "' -frames:v 1 '" + out(name).toStdString() + "'";
        EXPECT_EQ(std::system(cmd.c_str()), 0);
        return firstFrameRgb(out(name));
    };
    const auto exact = reference("1.04", "at104.png");
    const auto keyFrame = reference("0.96", "at096.png");
    FFEncoder enc;
    Recorder rec(enc);
    ASSERT_TRUE(
        runOne(enc, rec, clip(), " -ss 1.04", out("seek.avi"), " -an  -r 25 -vb 4000k -vcodec mpeg4 -t 0.2"));
    const auto ours = firstFrameRgb(out("seek.avi"));
    EXPECT_LT(meanDifference(ours, exact), 3.0);
    EXPECT_LT(meanDifference(ours, exact), meanDifference(ours, keyFrame) / 2);
    EXPECT_NEAR(probe(out("seek.avi")).duration, 0.2, 0.04);
}

TEST_F(EncoderTest, HookChangesEveryOutputFrameOnlyWithItsSwitch) {
    const char* tail = R"( -an  -r 25 -aspect 1.33 -vb 4000k -vcodec mpeg4 -t 1)";
    std::atomic<int> calls{0};
    std::atomic<bool> badGeometry{false};
    // Every other frame the hook says it has nothing to do, as with an empty effect list.
    std::atomic<int> asked{0};
    auto run = [&](const QString& output, const QString& args, bool everyOther = false) {
        FFEncoder enc;
        Recorder rec(enc);
        if (everyOther) enc.SetVideoHookActive([&](int task) { return task == 0 && asked++ % 2 == 1; });
        enc.SetVideoHook([&](const HookFrame& f) {
            // Frames come numbered in order, each with its task, so effects can follow their file.
            if (f.width != 160 || f.height != 120 || f.bytesPerLine < f.width * 4 || f.task != 0 ||
                (everyOther ? f.index % 2 != 1 : f.index != calls))
                badGeometry = true;
            ++calls;
            const int w = f.width, h = f.height, stride = f.bytesPerLine;
            std::uint8_t* bits = f.bits;
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w * 4; ++x)
                    if (x % 4 != 3)
                        bits[y * stride + x] = static_cast<std::uint8_t>(255 - bits[y * stride + x]);
        });
        EXPECT_TRUE(runOne(enc, rec, clip(), "", output, args));
        EXPECT_TRUE(rec.terminateOf(0) && rec.terminateOf(0)->finished);
    };
    run(out("plain.avi"), tail);
    EXPECT_EQ(calls, 0);
    run(out("hooked.avi"), QString("-VideoOutputHook ") + tail);
    EXPECT_EQ(calls, 25);
    EXPECT_FALSE(badGeometry);

    const auto plain = firstFrameRgb(out("plain.avi"));
    const auto hooked = firstFrameRgb(out("hooked.avi"));
    ASSERT_EQ(plain.size(), 160u * 120 * 3);
    ASSERT_EQ(hooked.size(), plain.size());
    double error = 0;
    for (std::size_t i = 0; i < plain.size(); ++i)
        error += std::abs(255 - plain[i] - hooked[i]);
    EXPECT_LT(error / plain.size(), 8.0);

    calls = 0;
    run(out("half.avi"), QString("-VideoOutputHook ") + tail, true);
    EXPECT_EQ(asked, 25);
    EXPECT_EQ(calls, 12);
    const auto untouched = firstFrameRgb(out("half.avi")); // frame 0 was skipped
    ASSERT_EQ(untouched.size(), plain.size());
    double difference = 0;
    for (std::size_t i = 0; i < plain.size(); ++i)
        difference += std::abs(plain[i] - untouched[i]);
    EXPECT_LT(difference / plain.size(), 8.0);
}

TEST_F(EncoderTest, PreviewComesOnlyWhileEnabled) {
    struct Preview {
        int task, width, height;
        QByteArray bits;
    };
    for (const bool enabled : {false, true}) {
        FFEncoder enc;
        Recorder rec(enc);
        std::vector<Preview> previews;
        QObject::connect(&enc, &FFEncoder::OnPreviewBitmap,
                         [&](int task, int w, int h, const QByteArray& bits) {
                             previews.push_back({task, w, h, bits});
                         });
        enc.SetPreviewEnabled(enabled);
        // 4:3 pixels shown as 16:9: the preview follows the display shape.
        ASSERT_TRUE(runOne(enc, rec, clip(), "", out("preview.avi"),
                           " -an  -aspect 16:9 -vcodec mpeg4 -vf \" scale=320:240\""));
        if (!enabled) {
            EXPECT_TRUE(previews.empty());
            continue;
        }
        ASSERT_FALSE(previews.empty());
        const Preview& p = previews.front();
        EXPECT_EQ(p.task, 0);
        EXPECT_EQ(p.width, 160);
        EXPECT_EQ(p.height, 90);
        ASSERT_EQ(p.bits.size(), 160 * 90 * 4);
        EXPECT_NE(p.bits.count('\0'), p.bits.size()); // a picture, not an empty buffer
    }
}

TEST_F(EncoderTest, EventsComeInOrderAndEndWithMinusOne) {
    FFEncoder enc;
    enc.SetProgressInterval(1);
    Recorder rec(enc);
    for (int t = 0; t < 3; ++t) {
        ASSERT_EQ(enc.AddInput(clip(), ""), t);
        ASSERT_EQ(enc.AddOutput(t, out(("e" + std::to_string(t) + ".mp4").c_str()),
                                " -ac 2 -ar 44100 -ab 96k -acodec aac -r 25 -vb 200k -vcodec libx264"),
                  0);
    }
    EXPECT_EQ(enc.TaskCount(), 3);
    ASSERT_TRUE(enc.Start(0)); // one at a time
    EXPECT_FALSE(enc.Start(1));
    ASSERT_TRUE(rec.waitForEnd());
    EXPECT_FALSE(enc.IsRunning());

    // One at a time: each task's progress, then its end, in task order; then -1 once.
    int current = 0;
    qint64 lastPosition = -1;
    int terminates = 0;
    for (std::size_t i = 0; i < rec.events.size(); ++i) {
        const Event& e = rec.events[i];
        if (e.terminate && e.task == -1) {
            EXPECT_EQ(i, rec.events.size() - 1);
            continue;
        }
        EXPECT_EQ(e.task, current);
        if (e.terminate) {
            EXPECT_TRUE(e.finished && !e.failed);
            EXPECT_GE(lastPosition, 1960000) << "progress of task " << e.task << " stopped short";
            ++current;
            lastPosition = -1;
            ++terminates;
        } else {
            EXPECT_EQ(e.duration, 2000000);
            EXPECT_GE(e.position, lastPosition);
            lastPosition = e.position;
        }
    }
    EXPECT_EQ(terminates, 3);

    // An empty queue ends at once, with -1 alone.
    enc.ClearTasks();
    EXPECT_EQ(enc.TaskCount(), 0);
    rec.events.clear();
    ASSERT_TRUE(enc.Start(1));
    ASSERT_TRUE(rec.waitForEnd());
    EXPECT_EQ(rec.events.size(), 1u);
}

TEST_F(EncoderTest, PauseHoldsWithoutSpinningAndResumeFinishes) {
    FFEncoder enc;
    Recorder rec(enc);
    std::atomic<int> frames{0};
    enc.SetVideoHook([&](const HookFrame&) { ++frames; });
    enc.AddInput(longClip(), "");
    enc.AddOutput(0, out("paused.mp4"), "-VideoOutputHook  -an  -r 25 -vb 200k -vcodec libx264");
    enc.AddInput(longClip(), "");
    enc.AddOutput(1, out("paused.avi"), "-VideoOutputHook  -an  -r 25 -vb 200k -vcodec mpeg4");
    ASSERT_TRUE(enc.Start(2));
    enc.Pause();
    spin(200);
    const int held = frames;
    const double cpu = cpuSeconds();
    spin(500);
    EXPECT_EQ(frames, held);
    EXPECT_LT(cpuSeconds() - cpu, 0.1);
    EXPECT_EQ(rec.terminateOf(0), nullptr);
    enc.Resume();
    ASSERT_TRUE(rec.waitForEnd());
    EXPECT_EQ(frames, 150);
    EXPECT_TRUE(rec.terminateOf(0)->finished);
    EXPECT_TRUE(rec.terminateOf(1)->finished);
}

TEST_F(EncoderTest, StopEndsRunningAndWaitingTasksPromptly) {
    FFEncoder enc;
    Recorder rec(enc);
    std::atomic<int> frames{0};
    // A slow hook keeps the first task busy long enough to be stopped in the middle.
    enc.SetVideoHook([&](const HookFrame&) {
        ++frames;
        QThread::msleep(20);
    });
    for (int t = 0; t < 2; ++t) {
        enc.AddInput(longClip(), "");
        enc.AddOutput(t, out(("stopped" + std::to_string(t) + ".avi").c_str()),
                      "-VideoOutputHook  -an  -vb 200k -vcodec mpeg4");
    }
    ASSERT_TRUE(enc.Start(1));
    for (int i = 0; i < 2000 && frames < 5; ++i)
        QThread::msleep(5);
    ASSERT_GE(frames, 5);
    enc.Pause(); // a paused task must stop too
    QElapsedTimer timer;
    timer.start();
    enc.Stop(true);
    EXPECT_LT(timer.elapsed(), 1000);
    // Stop with wait delivers the ends before it returns.
    ASSERT_TRUE(rec.ended());
    for (int t = 0; t < 2; ++t) {
        ASSERT_NE(rec.terminateOf(t), nullptr);
        EXPECT_FALSE(rec.terminateOf(t)->finished);
        EXPECT_FALSE(rec.terminateOf(t)->failed);
    }
    EXPECT_LT(frames, 75);
    EXPECT_FALSE(enc.IsRunning());
    // Neither the stopped task nor the one that never began leaves anything under its name.
    EXPECT_FALSE(QFile::exists(out("stopped0.avi")));
    EXPECT_FALSE(QFile::exists(out("stopped1.avi")));
}

// Encoder-private options reach the encoder that knows them: a value it refuses fails the task, as it
// fails the ffmpeg program. (The rows' own values run in the conformance suite.)
TEST_F(EncoderTest, PrivateOptionsReachTheEncoderThatKnowsThem) {
    FFEncoder enc;
    Recorder rec(enc);
    ASSERT_TRUE(
        runOne(enc, rec, clip(), "", out("private.webm"),
               "-ac 2 -ar 48000 -ab 96k -acodec libopus -r 25 -vb 300k -vcodec libsvtav1 -preset 99"));
    EXPECT_TRUE(rec.terminateOf(0)->failed);
    EXPECT_TRUE(rec.terminateOf(0)->message.contains("opening the video encoder 'libsvtav1'"))
        << rec.terminateOf(0)->message.toStdString();
}

TEST_F(EncoderTest, AFailingTaskLeavesTheOthersToFinish) {
    const QString garbage = out("garbage.avi");
    {
        QFile f(garbage);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(QByteArray(4096, 'x'));
    }
    const QString full = out("full.avi");
    QFile::remove(full);
    ASSERT_TRUE(QFile::link("/dev/full", full));

    FFEncoder enc;
    Recorder rec(enc);
    const char* args = " -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -vb 300k -vcodec mpeg4 -t 1";
    const QString inputs[] = {clip(), garbage, clip(), clip()};
    const QString outputs[] = {out("good0.avi"), out("bad.avi"), full, out("good1.avi")};
    for (int t = 0; t < 4; ++t) {
        ASSERT_EQ(enc.AddInput(inputs[t], ""), t);
        ASSERT_EQ(enc.AddOutput(t, outputs[t], args), 0);
    }
    ASSERT_TRUE(enc.Start(2));
    ASSERT_TRUE(rec.waitForEnd());
    EXPECT_TRUE(rec.terminateOf(0)->finished);
    EXPECT_TRUE(rec.terminateOf(3)->finished);
    for (int t : {1, 2}) {
        EXPECT_FALSE(rec.terminateOf(t)->finished);
        EXPECT_TRUE(rec.terminateOf(t)->failed);
    }
    EXPECT_TRUE(rec.terminateOf(1)->message.contains("Invalid data found when processing input"))
        << rec.terminateOf(1)->message.toStdString();
    EXPECT_TRUE(rec.terminateOf(2)->message.contains("No space left on device"))
        << rec.terminateOf(2)->message.toStdString();
    EXPECT_EQ(probe(out("good1.avi")).videoCodec, "mpeg4");
}

TEST_F(EncoderTest, AddOutputRefusesWhatCannotRun) {
    FFEncoder enc;
    EXPECT_TRUE(enc.LoadLibrary() && enc.LibraryLoaded() && enc.UnloadLibrary());
    ASSERT_EQ(enc.AddInput(out("in.mkv"), ""), 0);
    struct Case {
        const char* path;
        const char* args;
        const char* error; // "" when accepted
    };
    const Case cases[] = {
        {"x.mp4", " -ac 1 -ar 8000 -ab 12k -acodec libopencore_amrnb -vcodec libx264",
         "Unknown encoder 'libopencore_amrnb'"},
        {"x.mp4", " -vcodec libmp3lame", "Encoder 'libmp3lame' is not a video encoder"},
        {"x.xyz", " -vcodec mpeg4", "Unable to find a suitable output format for 'PATH'"},
        {"x.mp4", " -vb fast", "Invalid value 'fast' for option '-vb'"},
        {"x.mp4", "-1", "Unexpected argument '-1'"}, // the builder's failure text
        {"x.mp4", " -acodec libfaac -vcodec libx264", ""},
        {"x.avi", " -acodec mp2 -vcodec msmpeg4v3", ""},
        {"x.avi", " -vcodec mpeg4 -vtag DivX", ""},
    };
    for (const Case& c : cases) {
        const int r = enc.AddOutput(0, out(c.path), c.args);
        if (*c.error) {
            EXPECT_LT(r, 0) << c.args;
            EXPECT_EQ(enc.LastErrorMessage(), QString(c.error).replace("PATH", out(c.path))) << c.args;
        } else {
            EXPECT_EQ(r, 0) << c.args << ": " << enc.LastErrorMessage().toStdString();
        }
    }
    EXPECT_LT(enc.AddInput(out("in.mkv"), " -ss soon"), 0);
    EXPECT_EQ(enc.LastErrorMessage(), "Invalid value 'soon' for option '-ss'");
    EXPECT_LT(enc.AddOutput(7, out("x.mp4"), ""), 0);

    // Taking back the last task; one in the middle keeps the numbers of the others.
    ASSERT_EQ(enc.AddInput(out("in.mkv"), ""), 1);
    ASSERT_EQ(enc.AddInput(out("in.mkv"), ""), 2);
    enc.RemoveInput(2);
    EXPECT_EQ(enc.TaskCount(), 2);
    enc.RemoveInput(0);
    EXPECT_EQ(enc.TaskCount(), 1);
    EXPECT_EQ(enc.AddInput(out("in.mkv"), ""), 2);
}

TEST(FFLoggerTest, LinesFromAnyThreadArriveOnTheOwnersThreadWithTheirTask) {
    struct Line {
        int task, level;
        QString text;
        bool onMainThread;
    };
    std::vector<Line> lines;
    FFLogger logger;
    QObject::connect(&logger, &FFLogger::OnLog, [&](int task, int level, const QString& text) {
        lines.push_back({task, level, text, QThread::currentThread() == qApp->thread()});
    });
    std::thread worker([] {
        FFLogger::SetThreadTask(3);
        av_log(nullptr, AV_LOG_ERROR, "disk %s\n", "full");
        av_log(nullptr, AV_LOG_DEBUG, "too fine for level 5\n");
        FFLogger::SetThreadTask(-1);
    });
    worker.join();
    logger.SetActive(false);
    av_log(nullptr, AV_LOG_ERROR, "while inactive\n");
    logger.SetActive(true);
    av_log(nullptr, AV_LOG_WARNING, "main\n");
    spin(50);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].task, 3);
    EXPECT_EQ(lines[0].level, AV_LOG_ERROR);
    EXPECT_EQ(lines[0].text, "disk full");
    EXPECT_TRUE(lines[0].onMainThread);
    EXPECT_EQ(lines[1].task, -1);
    EXPECT_EQ(lines[1].text, "main");
}

TEST_F(EncoderTest, PreviewComesAFewTimesASecond) {
    FFEncoder enc;
    Recorder rec(enc);
    int previews = 0;
    QObject::connect(&enc, &FFEncoder::OnPreviewBitmap,
                     [&](int, int, int, const QByteArray&) { ++previews; });
    // A slow hook stretches 50 frames over more than a second.
    enc.SetVideoHook([](const HookFrame&) { QThread::msleep(25); });
    enc.SetPreviewEnabled(true);
    enc.AddInput(longClip(), "");
    ASSERT_EQ(enc.AddOutput(0, out("previewrate.avi"), "-VideoOutputHook  -an  -vcodec mpeg4 -t 2"), 0);
    QElapsedTimer timer;
    timer.start();
    enc.Start(1);
    ASSERT_TRUE(rec.waitForEnd());
    const double seconds = static_cast<double>(timer.elapsed()) / 1000;
    ASSERT_GT(seconds, 1.0);
    EXPECT_GE(previews / seconds, 2.0) << previews << " in " << seconds << " s";
    EXPECT_LE(previews / seconds, 6.0) << previews << " in " << seconds << " s";
}

TEST_F(EncoderTest, InputWhoseSizeRateAndLayoutChangeMidwayConvertsLikeTheFfmpegProgram) {
    // Two MPEG transport streams joined end to end, as a broadcast recording: the second half has
    // another picture size, sample rate and channel count.
    const std::string a = out("first.ts").toStdString(), b = out("second.ts").toStdString();
    const std::string joined = out("joined.ts").toStdString();
    const std::string make =
        "ffmpeg -nostdin -loglevel error -y -f lavfi -i testsrc2=size=%s:rate=25:duration=1 "
        "-f lavfi -i sine=frequency=440:sample_rate=%d:duration=1 -ac %d -c:v mpeg2video "
        "-c:a mp2 %s '%s'";
    char cmd[1024];
    std::snprintf(cmd, sizeof cmd, make.c_str(), "176x144", 44100, 1, "", a.c_str());
    ASSERT_EQ(std::system(cmd), 0);
    std::snprintf(cmd, sizeof cmd, make.c_str(), "320x240", 48000, 2, "-output_ts_offset 1.4", b.c_str());
    ASSERT_EQ(std::system(cmd), 0);
    ASSERT_EQ(std::system(("cat '" + a + "' '" + b + "' > '" + joined + "'").c_str()), 0);

    const char* args = " -ac 2 -ar 44100 -ab 128k -acodec aac -r 25 -vb 300k -vcodec libx264";
    ASSERT_EQ(std::system(("ffmpeg -nostdin -loglevel error -y -i '" + joined +
                           "' -ac 2 -ar 44100 -b:a 128k -c:a aac -r 25 -b:v 300k -c:v libx264 '" +
                           out("joined_ffmpeg.mp4").toStdString() + "'")
                              .c_str()),
              0);
    FFEncoder enc;
    Recorder rec(enc);
    ASSERT_TRUE(runOne(enc, rec, QString::fromStdString(joined), "", out("joined.mp4"), args));
    ASSERT_TRUE(rec.terminateOf(0)->finished) << rec.terminateOf(0)->message.toStdString();

    const Props ours = probe(out("joined.mp4"));
    const Props theirs = probe(out("joined_ffmpeg.mp4"));
    EXPECT_EQ(ours.width, 176); // the first size holds throughout
    EXPECT_EQ(ours.height, 144);
    EXPECT_EQ(ours.sampleRate, 44100);
    EXPECT_EQ(ours.channels, 2);
    EXPECT_GT(theirs.duration, 2.0);
    EXPECT_NEAR(ours.duration, theirs.duration, 1.0 / 25);
}

// Peak resident memory of this process from the kernel; the peak can be reset (Linux 4.0 and later).
long peakKb() {
    QFile f("/proc/self/status");
    if (!f.open(QIODevice::ReadOnly)) return -1;
    for (const QByteArray& line : f.readAll().split('\n'))
        if (line.startsWith("VmHWM:")) return line.mid(6).trimmed().split(' ').front().toLong();
    return -1;
}

bool resetPeak() {
    QFile f("/proc/self/clear_refs");
    return f.open(QIODevice::WriteOnly) && f.write("5") == 1;
}

TEST_F(EncoderTest, PeakMemoryDoesNotGrowWithTheInputsLength) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP()
        << "the sanitizer's quarantine keeps freed memory resident, so the peak follows the work done";
#endif
    // In this process, the peak reset before each run: a 10 s and a 60 s input through the same job
    // must peak within a few megabytes of each other. Whatever grew with the length (frames queued
    // in the muxer, packets kept, a leak per frame) would show six times over in the long run.
    ASSERT_TRUE(makeClip(out("ten.mkv"), 10));
    ASSERT_TRUE(makeClip(out("sixty.mkv"), 60));
    if (!resetPeak()) GTEST_SKIP() << "this kernel cannot reset the peak resident set";

    const auto peakOf = [&](const QString& input, const QString& output) {
        FFEncoder enc;
        Recorder rec(enc);
        enc.AddInput(input, "");
        EXPECT_EQ(
            enc.AddOutput(0, output,
                          " -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -vb 300k -vcodec libx264"),
            0);
        resetPeak();
        enc.Start(1);
        EXPECT_TRUE(rec.waitForEnd(120000));
        EXPECT_TRUE(rec.terminateOf(0) && rec.terminateOf(0)->finished);
        return peakKb();
    };
    peakOf(clip(), out("warm.mp4")); // the libraries' one-time tables
    const long ten = peakOf(out("ten.mkv"), out("ten.mp4"));
    const long sixty = peakOf(out("sixty.mkv"), out("sixty.mp4"));
    ASSERT_GT(ten, 0);
    EXPECT_LT(sixty - ten, 4 * 1024) << "10 s: " << ten << " kB, 60 s: " << sixty << " kB";
    EXPECT_NEAR(probe(out("sixty.mp4")).duration, 60, 0.1);
}

} // namespace
} // namespace morvane

TEST(HookConvert, BgraComesBackToTheFramesOwnPlanes) {
    // Into BGRA as the hook's round trip goes, back by our own way: a frame without effects must come
    // back as it was, or every file with effects would shift its colours a little. Colours within
    // what RGB can hold, as a decoded picture's are.
    // A width of whole 8-pixel steps, and one with a remainder that the plain loop finishes.
    for (const std::pair<int, int>& size : {std::pair{64, 48}, std::pair{70, 34}}) {
        const int w = size.first, h = size.second;
        morvane::libav::FramePtr yuv(av_frame_alloc()), bgra(av_frame_alloc());
        yuv->format = AV_PIX_FMT_YUV420P, yuv->width = w, yuv->height = h;
        bgra->format = AV_PIX_FMT_BGRA, bgra->width = w, bgra->height = h;
        ASSERT_GE(av_frame_get_buffer(yuv.get(), 0), 0);
        ASSERT_GE(av_frame_get_buffer(bgra.get(), 0), 0);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                yuv->data[0][y * yuv->linesize[0] + x] = static_cast<std::uint8_t>(60 + x + y);
                if (x % 2 == 0 && y % 2 == 0) {
                    yuv->data[1][y / 2 * yuv->linesize[1] + x / 2] = static_cast<std::uint8_t>(100 + x / 2);
                    yuv->data[2][y / 2 * yuv->linesize[2] + x / 2] = static_cast<std::uint8_t>(150 - y / 2);
                }
            }
        SwsContext* to = sws_getContext(w, h, AV_PIX_FMT_YUV420P, w, h, AV_PIX_FMT_BGRA, SWS_BICUBIC, nullptr,
                                        nullptr, nullptr);
        ASSERT_NE(to, nullptr);
        sws_scale(to, yuv->data, yuv->linesize, 0, h, bgra->data, bgra->linesize);
        sws_freeContext(to);
        // Ours and the scaler's own way back, each against the frame as it was.
        morvane::libav::FramePtr ours(av_frame_alloc()), theirs(av_frame_alloc());
        for (AVFrame* f : {ours.get(), theirs.get()}) {
            f->format = AV_PIX_FMT_YUV420P, f->width = w, f->height = h;
            ASSERT_GE(av_frame_get_buffer(f, 0), 0);
        }
        morvane::Bgra_ToYuv420(bgra->data[0], bgra->linesize[0], w, h, ours->data[0], ours->linesize[0],
                               ours->data[1], ours->linesize[1], ours->data[2], ours->linesize[2]);
        SwsContext* back = sws_getContext(w, h, AV_PIX_FMT_BGRA, w, h, AV_PIX_FMT_YUV420P, SWS_BICUBIC,
                                          nullptr, nullptr, nullptr);
        ASSERT_NE(back, nullptr);
        sws_scale(back, bgra->data, bgra->linesize, 0, h, theirs->data, theirs->linesize);
        sws_freeContext(back);
        const auto worst = [&](const AVFrame* f, int p) {
            int d = 0;
            const int pw = p ? w / 2 : w, ph = p ? h / 2 : h;
            for (int y = 1; y < ph - 1; ++y) // the scaler's filter leans on the border rows
                for (int x = 1; x < pw - 1; ++x)
                    d = std::max(d, std::abs(f->data[p][y * f->linesize[p] + x] -
                                             yuv->data[p][y * yuv->linesize[p] + x]));
            return d;
        };
        for (int p = 0; p < 3; ++p) {
            EXPECT_LE(worst(ours.get(), p), std::max(1, worst(theirs.get(), p))) << "plane " << p;
            EXPECT_LE(worst(ours.get(), p), 2) << "plane " << p;
        }
    }
}
