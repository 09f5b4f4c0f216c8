// The engine never loses a file: outputs appear whole or not at all, never over a file the user did
// not give up, never over their own input; damaged timestamps and stops end tasks promptly.
#include "EncoderTestKit.h"
#include "FFEncoder.h"
#include "Output_File.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>

namespace morvane {
namespace {

const char* kArgs = " -ac 2 -ar 44100 -ab 96k -acodec aac -r 25 -vb 200k -vcodec libx264";

class OutputSafetyTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_dir.isValid());
        m_clip = path("clip.mkv");
        ASSERT_EQ(run("-f lavfi -i testsrc2=size=160x120:rate=25:duration=2 -f lavfi "
                      "-i sine=sample_rate=48000:duration=2 -c:v mpeg4 -c:a pcm_s16le '" +
                      m_clip.toStdString() + "'"),
                  0);
    }
    QString path(const QString& name) const { return m_dir.filePath(name); }
    static int run(const std::string& ffmpegArgs) {
        return std::system(("ffmpeg -nostdin -loglevel error -y " + ffmpegArgs).c_str());
    }
    static void write(const QString& file, const QByteArray& bytes) {
        QFile f(file);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(bytes);
    }
    static QByteArray read(const QString& file) {
        QFile f(file);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
    // Part files left in the folder.
    QStringList parts() const { return QDir(m_dir.path()).entryList({"*.part"}, QDir::Files | QDir::Hidden); }

    QTemporaryDir m_dir;
    QString m_clip;
};

TEST_F(OutputSafetyTest, FinishedOutputsLandWithoutReplacingWhatTheUserKeeps) {
    struct Case {
        const char* name;
        bool overwrite;
        bool existing;         // a file of the user's stands under the name before the run
        bool appearsMeanwhile; // one appears while the task runs
        const char* landsAs;   // "" = the name itself
        bool userFileKept;     // whatever the user had under the name is still there
    };
    const Case cases[] = {
        {"fresh.mp4", false, false, false, "", false},
        {"keep.mp4", false, true, false, "keep_(new).mp4", true},
        {"replace.mp4", true, true, false, "", false},
        {"raced.mp4", true, false, true, "raced_(new).mp4", true},
        {"racedold.mp4", true, true, true, "racedold_(new).mp4", true},
    };
    const std::string longest = std::string(251, 'x') + ".mp4"; // the file system's limit
    std::vector<Case> all(std::begin(cases), std::end(cases));
    all.push_back({longest.c_str(), false, false, false, "", false});
    for (const Case& c : all) {
        SCOPED_TRACE(c.name);
        const QString target = path(c.name);
        if (c.existing) write(target, "the user's file");
        FFEncoder enc;
        Recorder rec(enc);
        enc.SetOverwrite(c.overwrite);
        std::atomic<bool> once{false};
        enc.SetVideoHook([&](const HookFrame&) {
            // Another program takes the name while we convert (a file replaced counts too).
            if (c.appearsMeanwhile && !once.exchange(true)) {
                QFile::remove(target);
                write(target, "appeared meanwhile");
            }
        });
        ASSERT_EQ(enc.AddInput(m_clip, ""), 0);
        ASSERT_EQ(enc.AddOutput(0, target, QString("-VideoOutputHook ") + kArgs), 0);
        enc.Start(1);
        ASSERT_TRUE(rec.waitForEnd());
        ASSERT_TRUE(rec.terminateOf(0)->finished) << rec.terminateOf(0)->message.toStdString();
        const QString landed = *c.landsAs ? path(c.landsAs) : target;
        EXPECT_EQ(enc.LandedPath(0), landed);
        EXPECT_EQ(probe(landed).videoCodec, "h264");
        if (c.userFileKept) {
            EXPECT_TRUE(read(target) == "the user's file" || read(target) == "appeared meanwhile");
        }
        EXPECT_TRUE(parts().isEmpty()) << parts().join(' ').toStdString();
    }
}

TEST_F(OutputSafetyTest, FailedStoppedAndSelfTargetedTasksLeaveEveryFileAsItWas) {
    // An output that is its own input, by its name or through a link, is refused outright.
    const QByteArray source = read(m_clip);
    ASSERT_TRUE(QFile::link(m_clip, path("link.mkv")));
    for (const QString& self : {m_clip, path("link.mkv"), path("./clip.mkv")}) {
        FFEncoder enc;
        enc.SetOverwrite(true);
        ASSERT_EQ(enc.AddInput(m_clip, ""), 0);
        EXPECT_LT(enc.AddOutput(0, self, " -vcodec mpeg4"), 0) << self.toStdString();
        EXPECT_TRUE(enc.LastErrorMessage().contains("input file itself"));
    }
    EXPECT_EQ(read(m_clip), source);

    // A task that fails and one that is stopped midway, each over an older file of the user's.
    write(path("garbage.mkv"), QByteArray(4096, 'x'));
    write(path("failed.mp4"), "older");
    write(path("stopped.mp4"), "older");
    FFEncoder enc;
    Recorder rec(enc);
    enc.SetOverwrite(true);
    std::atomic<int> frames{0};
    enc.SetVideoHook([&](const HookFrame&) {
        ++frames;
        QThread::msleep(30);
    });
    enc.AddInput(path("garbage.mkv"), "");
    enc.AddOutput(0, path("failed.mp4"), kArgs);
    enc.AddInput(m_clip, "");
    enc.AddOutput(1, path("stopped.mp4"), QString("-VideoOutputHook ") + kArgs);
    enc.Start(2);
    for (int i = 0; i < 400 && frames < 3; ++i)
        QThread::msleep(10);
    ASSERT_GE(frames, 3);
    EXPECT_FALSE(parts().isEmpty()); // the running task writes beside its name, not under it
    enc.Stop(true);
    ASSERT_TRUE(rec.ended());
    EXPECT_TRUE(rec.terminateOf(0)->failed);
    EXPECT_FALSE(rec.terminateOf(1)->finished || rec.terminateOf(1)->failed);
    EXPECT_EQ(read(path("failed.mp4")), "older");
    EXPECT_EQ(read(path("stopped.mp4")), "older");
    EXPECT_TRUE(parts().isEmpty()) << parts().join(' ').toStdString();
}

TEST_F(OutputSafetyTest, LeftoversOfDeadRunsGoAndPartsOfLiveOnesStay) {
    // Two leftovers of a killed run, one part that a live run holds, one part of another name.
    const QString dead = path(".out.mp4.0123456789abcdef.part");
    const QString dead2 = path(".out.mp4.fedcba9876543210.part");
    const QString live = path(".out.mp4.00000000000000aa.part");
    const QString other = path(".out.mp4.x.mp4.00000000000000bb.part");
    for (const QString& p : {dead, dead2, live, other})
        write(p, "part");
    const int fd = ::open(live.toUtf8().constData(), O_RDONLY);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(flock(fd, LOCK_EX | LOCK_NB), 0);

    Remove_StaleParts(path("out.mp4").toStdString());
    EXPECT_FALSE(QFile::exists(dead));
    EXPECT_FALSE(QFile::exists(dead2));
    EXPECT_TRUE(QFile::exists(live));
    EXPECT_TRUE(QFile::exists(other));
    ::close(fd);

    EXPECT_EQ(Free_NameCandidate("/a/b.c/clip.final.mp4", 0), "/a/b.c/clip.final_(new).mp4");
    EXPECT_EQ(Free_NameCandidate("/a/clip", 2), "/a/clip_(new_2)");
}

// A transport stream whose bytes were damaged: a few video packets carry timestamps an hour ahead.
bool damageTimestamps(const QString& file, int firstPes, int count) {
    QFile f(file);
    if (!f.open(QIODevice::ReadWrite)) return false;
    QByteArray d = f.readAll();
    const auto rd = [&](int p) {
        const auto b = [&](int i) { return static_cast<std::int64_t>(static_cast<unsigned char>(d[p + i])); };
        return ((b(0) >> 1) & 7) << 30 | b(1) << 22 | (b(2) >> 1) << 15 | b(3) << 7 | (b(4) >> 1);
    };
    const auto wr = [&](int p, std::int64_t v, int prefix) {
        v &= (std::int64_t{1} << 33) - 1;
        d[p] = static_cast<char>(prefix << 4 | ((v >> 30) & 7) << 1 | 1);
        d[p + 1] = static_cast<char>((v >> 22) & 0xff);
        d[p + 2] = static_cast<char>(((v >> 15) & 0x7f) << 1 | 1);
        d[p + 3] = static_cast<char>((v >> 7) & 0xff);
        d[p + 4] = static_cast<char>((v & 0x7f) << 1 | 1);
    };
    const std::int64_t hour = 3600LL * 90000;
    int pes = 0, changed = 0;
    for (int off = 0; off + 188 <= d.size(); off += 188) {
        if (static_cast<unsigned char>(d[off]) != 0x47 || !(d[off + 1] & 0x40)) continue;
        const int afc = (d[off + 3] >> 4) & 3;
        int p = off + 4;
        if (afc & 2) p += 1 + static_cast<unsigned char>(d[p]);
        if (!(afc & 1) || d.mid(p, 4) != QByteArray("\x00\x00\x01\xe0", 4)) continue;
        if (++pes < firstPes || pes >= firstPes + count) continue;
        const int flags = static_cast<unsigned char>(d[p + 7]) >> 6;
        if (flags & 2) wr(p + 9, rd(p + 9) + hour, flags == 3 ? 3 : 2);
        if (flags == 3) wr(p + 14, rd(p + 14) + hour, 1);
        ++changed;
    }
    f.seek(0);
    return f.write(d) == d.size() && changed == count;
}

TEST_F(OutputSafetyTest, DamagedTimestampsConvertToTheInputsLengthAndStopsAnswerAtOnce) {
    const QString ts = path("damaged.ts");
    ASSERT_EQ(run("-f lavfi -i testsrc2=size=160x120:rate=25:duration=4 -f lavfi -i sine=duration=4 "
                  "-c:v mpeg2video -c:a mp2 '" +
                  ts.toStdString() + "'"),
              0);
    ASSERT_TRUE(damageTimestamps(ts, 40, 3));
    {
        FFEncoder enc;
        Recorder rec(enc);
        enc.AddInput(ts, "");
        ASSERT_EQ(enc.AddOutput(0, path("damaged.mp4"), kArgs), 0);
        enc.Start(1);
        ASSERT_TRUE(rec.waitForEnd(30000));
        ASSERT_TRUE(rec.terminateOf(0)->finished) << rec.terminateOf(0)->message.toStdString();
        EXPECT_NEAR(probe(path("damaged.mp4")).duration, 4.0, 0.2);
    }

    // A container that does not allow jumps keeps them, and a gap of an hour is filled frame by frame:
    // progress keeps coming and Stop answers in the middle of it.
    const QString gap = path("gap.mkv");
    ASSERT_EQ(run("-i '" + m_clip.toStdString() +
                  "' -an -c copy -bsf:v \"setts=ts=if(gte(N\\,25)\\,TS+3600000\\,TS)\" '" +
                  gap.toStdString() + "'"),
              0);
    FFEncoder enc;
    Recorder rec(enc);
    enc.SetProgressInterval(50);
    enc.AddInput(gap, "");
    ASSERT_EQ(enc.AddOutput(0, path("gap.avi"), " -an -vcodec mpeg4"), 0);
    enc.Start(1);
    qint64 reached = 0;
    for (int i = 0; i < 200 && reached < 5'000'000; ++i) {
        spin(20);
        for (const Event& e : rec.events)
            if (!e.terminate) reached = std::max(reached, e.position);
    }
    EXPECT_GE(reached, 5'000'000) << "no progress while the gap is filled";
    QElapsedTimer timer;
    timer.start();
    enc.Stop(true);
    EXPECT_LT(timer.elapsed(), 1000);
    EXPECT_TRUE(rec.ended());
    EXPECT_FALSE(QFile::exists(path("gap.avi")));
}

TEST_F(OutputSafetyTest, OddSizedSourcesConvertWithEncodersThatNeedEvenSizes) {
    const QString odd = path("odd.mkv");
    ASSERT_EQ(
        run("-f lavfi -i testsrc2=size=161x121:rate=25:duration=1 -c:v ffv1 '" + odd.toStdString() + "'"), 0);
    FFEncoder enc;
    Recorder rec(enc);
    enc.AddInput(odd, "");
    ASSERT_EQ(enc.AddOutput(0, path("odd.mp4"), " -an -vcodec libx264"), 0);
    enc.Start(1);
    ASSERT_TRUE(rec.waitForEnd());
    ASSERT_TRUE(rec.terminateOf(0)->finished) << rec.terminateOf(0)->message.toStdString();
    const Props p = probe(path("odd.mp4"));
    EXPECT_EQ(p.width, 160);
    EXPECT_EQ(p.height, 120);
}

} // namespace
} // namespace morvane
