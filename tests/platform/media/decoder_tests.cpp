// The media reader on real files: clips made by the ffmpeg program once per suite, plus broken and
// odd inputs that must give plain answers and the library's error text.
#include "FFDecoder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <ostream>
#include <utility>
#include <vector>

// Readable QString values in failure messages.
void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

using namespace morvane;

namespace {

constexpr std::int64_t kFrame = 40000; // one frame at 25 fps, microseconds
constexpr std::int32_t kNoValueHigh = static_cast<std::int32_t>(0x80000000u);

std::int64_t joined(std::int32_t low, std::int32_t high) {
    return static_cast<std::int64_t>((static_cast<std::uint64_t>(static_cast<std::uint32_t>(high)) << 32) |
                                     static_cast<std::uint32_t>(low));
}

std::int64_t duration(const FFDecoder& d) {
    return joined(d.GetFileInfoDurationLow(), d.GetFileInfoDurationHigh());
}

// First video, audio and subtitle stream, then how many of each kind.
std::vector<int> layout(const FFDecoder& d) {
    return {d.FirstVideoStreamIndex(), d.FirstAudioStreamIndex(), d.FirstSubtitleStreamIndex(),
            d.VideoStreamCount(),      d.AudioStreamCount(),      d.SubtitleStreamCount()};
}

// Width, height, frame rate and display aspect fraction of a video stream.
std::vector<int> geometry(const FFDecoder& d, int s) {
    return {d.GetVideoInfosWidth(s),
            d.GetVideoInfosHeight(s),
            d.GetVideoInfosFrameRateNumerator(s),
            d.GetVideoInfosFrameRateDenominator(s),
            d.GetVideoInfosDARNumerator(s),
            d.GetVideoInfosDARDenominator(s)};
}

// The position the reader settled on, or none when it refused.
std::optional<std::int64_t> seek(FFDecoder& d, std::int32_t low, std::int32_t high = 0) {
    if (!d.SeekTo(low, high, 0)) return std::nullopt;
    return joined(low, high);
}

struct Picture {
    int width = 0;
    int height = 0;
    int stride = 0;
    std::vector<std::uint8_t> bytes;

    Picture(int w, int h, int padding = 0)
        : width(w), height(h), stride(w * 4 + padding), bytes(static_cast<size_t>(stride) * h, 0xAB) {}
    const std::uint8_t* at(int x, int y) const { return &bytes[static_cast<size_t>(y) * stride + x * 4]; }
    bool isBlack(int x, int y) const {
        const std::uint8_t* p = at(x, y);
        return p[0] == 0 && p[1] == 0 && p[2] == 0 && p[3] == 255;
    }
    bool rowIsBlack(int y) const {
        for (int x = 0; x < width; ++x)
            if (!isBlack(x, y)) return false;
        return true;
    }
    bool columnIsBlack(int x) const {
        for (int y = 0; y < height; ++y)
            if (!isBlack(x, y)) return false;
        return true;
    }
    bool opaque() const {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                if (at(x, y)[3] != 255) return false;
        return true;
    }
    bool paddingUntouched() const {
        for (int y = 0; y < height; ++y)
            for (int i = width * 4; i < stride; ++i)
                if (bytes[static_cast<size_t>(y) * stride + i] != 0xAB) return false;
        return true;
    }
    // Mean absolute difference per byte between two pictures of one size.
    double differenceTo(const Picture& other) const {
        double sum = 0;
        for (int y = 0; y < height; ++y)
            for (int i = 0; i < width * 4; ++i)
                sum += std::abs(int(bytes[static_cast<size_t>(y) * stride + i]) -
                                int(other.bytes[static_cast<size_t>(y) * other.stride + i]));
        return sum / (width * 4.0 * height);
    }
};

class DecoderTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        dir = new QTemporaryDir;
        ASSERT_TRUE(dir->isValid());
        // One ffmpeg run writes every clip: a process start costs more than these tiny encodes.
        const QStringList h264 = {"-c:v", "libx264", "-preset", "veryfast", "-pix_fmt", "yuv420p"};
        const QStringList video = QStringList{"-map", "0:v"} + h264;
        const QStringList sound = {"-map", "1:a", "-c:a", "aac"};
        const QStringList tags = {"-metadata", "title=Night Train",
                                  "-metadata", "artist=The Signals",
                                  "-metadata", "album=Platforms",
                                  "-metadata", "genre=Ambient",
                                  "-metadata", "copyright=2021 Nobody",
                                  "-metadata", "date=2021",
                                  "-metadata", "track=7",
                                  "-metadata", "comment=first take"};
        QStringList arguments = {"-v", "error", "-y"};
        for (const char* source :
             {"testsrc2=size=160x120:rate=25:duration=8", "sine=frequency=440:sample_rate=44100:duration=8",
              "testsrc2=size=320x180:rate=24000/1001:duration=1"})
            arguments += QStringList{"-f", "lavfi", "-i", source};
        arguments << video + sound + tags + QStringList{"-metadata:s:a:0", "language=eng", "-t", "2"}
                  << path("clip2.mp4");
        arguments << video + sound + QStringList{"-t", "8"} << path("clip8.mp4");
        arguments << video + QStringList{"-t", "8", "-movflags", "+faststart"} << path("front.mp4");
        arguments << QStringList{"-map", "2:v"} + h264 + QStringList{"-t", "1"} << path("wide.mp4");
        arguments << video + QStringList{"-vf", "setsar=4/3", "-t", "1"} << path("sar.mp4");
        arguments << sound + QStringList{"-t", "1"} << path("audio.m4a");
        arguments << video + QStringList{"-t", "1", "-f", "h264"} << path("raw.h264");
        arguments << QStringList{"-map", "0:v", "-frames:v", "1"} << path("still.png");
        QProcess ffmpeg;
        ffmpeg.start("ffmpeg", arguments);
        ASSERT_TRUE(ffmpeg.waitForFinished(60000));
        ASSERT_EQ(ffmpeg.exitCode(), 0) << ffmpeg.readAllStandardError().toStdString();

        QFile::copy(path("clip2.mp4"), path("copy.mp4"));
        QFile clip(path("clip2.mp4"));
        ASSERT_TRUE(clip.open(QIODevice::ReadOnly));
        write("truncated.mp4", clip.read(1500));
        write("empty.mp4", {});
        QFile front(path("front.mp4"));
        ASSERT_TRUE(front.open(QIODevice::ReadOnly));
        write("cut.mp4", front.read(front.size() / 3));
        write("text.mp4", "These are notes for the meeting, not a film.\n");
        QDir(dir->path()).mkdir("folder.mp4");
    }
    static void TearDownTestSuite() {
        delete dir;
        dir = nullptr;
    }

    static QString path(const char* name) { return dir->filePath(QString::fromLatin1(name)); }
    static void write(const char* name, const QByteArray& bytes) {
        QFile out(path(name));
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(bytes);
    }

    // Every answer of a reader that holds no file; queries leave the last error as it was.
    static void expectNeutral(FFDecoder& d) {
        const QString error = d.LastErrorMessage();
        EXPECT_EQ(duration(d), 0);
        EXPECT_EQ(layout(d), (std::vector<int>{-1, -1, -1, 0, 0, 0}));
        EXPECT_EQ(geometry(d, 0), (std::vector<int>{0, 0, 0, 0, 0, 0}));
        for (std::int32_t value :
             {d.FileSizeLow(), d.GetFileInfoYear(), d.GetFileInfoTrack(), d.GetAudioInfosSampleRate(0)})
            EXPECT_EQ(value, 0);
        for (const QString& text : {d.GetFileInfoTitle(), d.GetFileInfoAuthor(), d.GetVideoInfosCodecName(0),
                                    d.GetAudioInfosCodecName(0)})
            EXPECT_EQ(text, "");
        EXPECT_FALSE(d.IsVideoStream(0) || d.IsAudioStream(0));
        EXPECT_EQ(d.GetVideoInfosDisplayAspectRatio(0), 0.0f);
        EXPECT_EQ(d.LastErrorMessage(), error);

        d.SetFrameDecoding(true);
        EXPECT_FALSE(d.ReadNextFrame(-1));
        EXPECT_FALSE(seek(d, 7000000));
        Picture picture(16, 12);
        EXPECT_FALSE(d.DrawFrame(picture.bytes.data(), 16, 12, picture.stride, true));
        EXPECT_EQ(d.LastErrorMessage(), "Invalid argument");
    }

    static Picture draw(FFDecoder& d, int width, int height, int padding = 0) {
        Picture picture(width, height, padding);
        EXPECT_TRUE(d.DrawFrame(picture.bytes.data(), width, height, picture.stride, true))
            << d.LastErrorMessage().toStdString();
        return picture;
    }

    static QTemporaryDir* dir;
    std::unique_ptr<FFDecoder> decoder = Make_FFDecoder();
};

QTemporaryDir* DecoderTest::dir = nullptr;

TEST_F(DecoderTest, ProbesClipWithAudioAndTags) {
    FFDecoder& d = *decoder;
    ASSERT_TRUE(d.OpenFile(path("clip2.mp4"), ""));
    EXPECT_EQ(d.LastErrorMessage(), "");
    EXPECT_NEAR(duration(d), 2000000, 2 * kFrame);
    EXPECT_EQ(d.FileSizeLow(), static_cast<std::int32_t>(QFileInfo(path("clip2.mp4")).size()));
    EXPECT_EQ(layout(d), (std::vector<int>{0, 1, -1, 1, 1, 0}));
    EXPECT_TRUE(d.IsVideoStream(0) && d.IsAudioStream(1));
    EXPECT_FALSE(d.IsVideoStream(1) || d.IsSubtitleStream(1));

    EXPECT_EQ(d.GetVideoInfosCodecName(0), "h264 (H.264 / AVC / MPEG-4 AVC / MPEG-4 part 10)");
    EXPECT_EQ(geometry(d, 0), (std::vector<int>{160, 120, 25, 1, 4, 3}));
    EXPECT_GT(d.GetVideoInfosBitRate(0), 0);
    EXPECT_FLOAT_EQ(d.GetVideoInfosDisplayAspectRatio(0), 4.0f / 3.0f);
    EXPECT_NEAR(d.GetVideoInfosDurationLow(0), 2000000, kFrame);
    EXPECT_EQ(d.GetVideoInfosLanguage(0), "und");

    EXPECT_EQ(d.GetAudioInfosCodecName(1), "aac (AAC (Advanced Audio Coding))");
    EXPECT_GT(d.GetAudioInfosBitRate(1), 0);
    EXPECT_EQ(d.GetAudioInfosSampleRate(1), 44100);
    EXPECT_EQ(d.GetAudioInfosChannels(1), 1);
    EXPECT_NEAR(d.GetAudioInfosDurationLow(1), 2000000, 2 * kFrame);
    EXPECT_EQ(d.GetAudioInfosLanguage(1), "eng");

    EXPECT_EQ(
        (QStringList{d.GetFileInfoTitle(), d.GetFileInfoAuthor(), d.GetFileInfoAlbum(), d.GetFileInfoGenre(),
                     d.GetFileInfoCopyright(), d.GetFileInfoComment()}),
        (QStringList{"Night Train", "The Signals", "Platforms", "Ambient", "2021 Nobody", "first take"}));
    EXPECT_EQ(d.GetFileInfoYear(), 2021);
    EXPECT_EQ(d.GetFileInfoTrack(), 7);

    // Streams asked under the wrong kind or out of range answer as absent and say why.
    EXPECT_EQ(d.GetVideoInfosCodecName(1), "");
    EXPECT_EQ(d.LastErrorMessage(), "Stream not found");
    EXPECT_EQ(d.GetAudioInfosCodecName(0), "");
    EXPECT_EQ(d.GetAudioInfosSampleRate(0), 0);
    for (int s : {2, -1})
        EXPECT_EQ(geometry(d, s), (std::vector<int>{0, 0, 0, 0, 0, 0})) << s;
    EXPECT_FALSE(d.IsAudioStream(2) || d.IsVideoStream(-1));

    d.CloseFile();
    expectNeutral(d);
}

TEST_F(DecoderTest, KeepsFractionsAndDisplayAspects) {
    FFDecoder& d = *decoder;
    ASSERT_TRUE(d.OpenFile(path("wide.mp4"), ""));
    EXPECT_EQ(geometry(d, 0), (std::vector<int>{320, 180, 24000, 1001, 16, 9}));
    EXPECT_NEAR(d.GetVideoInfosDisplayAspectRatio(0), 16.0 / 9.0, 1e-6);

    // Reopening without a close replaces the file; non-square samples widen the display aspect.
    ASSERT_TRUE(d.OpenFile(path("sar.mp4"), ""));
    EXPECT_EQ(geometry(d, 0), (std::vector<int>{160, 120, 25, 1, 16, 9}));
    EXPECT_NEAR(d.GetVideoInfosDisplayAspectRatio(0), 16.0 / 9.0, 1e-6);

    // Drawn fitted, the wide picture fills the width of a 4:3 buffer between bars above and below:
    // 160 x 90 from row 15 to 104.
    d.SetFrameDecoding(true);
    ASSERT_TRUE(d.ReadNextFrame(-1));
    const Picture picture = draw(d, 160, 120);
    for (int y : {0, 14, 105, 119})
        EXPECT_TRUE(picture.rowIsBlack(y)) << y;
    for (int y : {15, 60})
        EXPECT_FALSE(picture.rowIsBlack(y)) << y;
    EXPECT_FALSE(picture.columnIsBlack(0));
}

TEST_F(DecoderTest, SeekLandsOnTheFrameAtThePositionAndDrawsFitted) {
    FFDecoder& d = *decoder;
    ASSERT_TRUE(d.OpenFile(path("clip8.mp4"), ""));
    d.SetFrameDecoding(true);

    // The picture at 7 s decoded straight through from the start: frame 175.
    for (int i = 0; i <= 175; ++i)
        ASSERT_TRUE(d.ReadNextFrame(-1)) << i;
    const Picture expected = draw(d, 128, 96);

    const std::optional<std::int64_t> at = seek(d, 7000000);
    ASSERT_TRUE(at) << d.LastErrorMessage().toStdString();
    EXPECT_GE(*at, 7000000);
    EXPECT_LT(*at, 7000000 + kFrame);
    ASSERT_TRUE(d.ReadNextFrame(-1));

    const Picture same = draw(d, 128, 96, 12);
    EXPECT_LT(same.differenceTo(expected), 0.5);
    EXPECT_TRUE(same.opaque());
    EXPECT_TRUE(same.paddingUntouched());
    EXPECT_FALSE(same.rowIsBlack(0) || same.columnIsBlack(0) || same.columnIsBlack(127));

    // A square buffer: 100 x 75 picture, bars of 12 and 13 rows.
    const Picture square = draw(d, 100, 100);
    for (int y : {0, 11, 88, 99})
        EXPECT_TRUE(square.rowIsBlack(y)) << y;
    for (int y : {12, 50, 86})
        EXPECT_FALSE(square.rowIsBlack(y)) << y;
    EXPECT_FALSE(square.columnIsBlack(0));
    EXPECT_TRUE(square.opaque());

    // The next frame follows on; the frame at the start differs from the one at 7 s.
    ASSERT_TRUE(d.ReadNextFrame(-1));
    EXPECT_GT(draw(d, 128, 96).differenceTo(expected), 0.0);
    ASSERT_EQ(seek(d, 0), 0);
    ASSERT_TRUE(d.ReadNextFrame(-1));
    EXPECT_GT(draw(d, 128, 96).differenceTo(expected), 2.0);

    // Odd buffers: tiny, odd and stretched sizes draw; impossible ones are refused.
    Picture one(1, 1);
    EXPECT_TRUE(d.DrawFrame(one.bytes.data(), 1, 1, 4, true));
    Picture odd(37, 3, 3);
    EXPECT_TRUE(d.DrawFrame(odd.bytes.data(), 37, 3, odd.stride, true));
    EXPECT_TRUE(odd.paddingUntouched());
    EXPECT_TRUE(d.DrawFrame(odd.bytes.data(), 37, 3, odd.stride, false));
    struct Bad {
        std::uint8_t* bytes;
        int width, height, stride;
    };
    for (const Bad& b : {Bad{nullptr, 37, 3, odd.stride}, Bad{odd.bytes.data(), 0, 3, odd.stride},
                         Bad{odd.bytes.data(), 37, -3, odd.stride}, Bad{odd.bytes.data(), 37, 3, 37 * 4 - 1},
                         Bad{odd.bytes.data(), 37, 3, -148}})
        EXPECT_FALSE(d.DrawFrame(b.bytes, b.width, b.height, b.stride, true)) << b.width << "x" << b.height;
    EXPECT_EQ(d.LastErrorMessage(), "Invalid argument");

    // Closing drops the last frame with the file.
    d.CloseFile();
    EXPECT_FALSE(d.DrawFrame(one.bytes.data(), 1, 1, 4, true));
}

TEST_F(DecoderTest, ReadsToTheEndAndSeeksPastIt) {
    FFDecoder& d = *decoder;
    ASSERT_TRUE(d.OpenFile(path("clip2.mp4"), ""));
    EXPECT_FALSE(d.ReadNextFrame(-1)); // decoding not prepared yet
    d.SetFrameDecoding(true);
    EXPECT_FALSE(d.ReadNextFrame(1)); // audio is not drawn
    EXPECT_EQ(d.LastErrorMessage(), "Stream not found");
    EXPECT_FALSE(d.ReadNextFrame(5));

    int frames = 0;
    while (d.ReadNextFrame(0) && frames < 1000)
        ++frames;
    EXPECT_EQ(frames, 50);
    EXPECT_EQ(d.LastErrorMessage(), "End of file");
    EXPECT_FALSE(d.ReadNextFrame(-1));
    draw(d, 16, 12); // the last frame stays drawable

    // Past the end the seek settles on the last picture.
    const std::optional<std::int64_t> at = seek(d, 7000000);
    ASSERT_TRUE(at);
    EXPECT_NEAR(*at, 2000000 - kFrame, kFrame / 2);
    EXPECT_TRUE(d.ReadNextFrame(-1));
    EXPECT_FALSE(d.ReadNextFrame(-1));

    EXPECT_FALSE(seek(d, -5, -1));
    EXPECT_FALSE(seek(d, -1, 0x7fffffff));
    EXPECT_EQ(d.LastErrorMessage(), "Invalid argument");
}

TEST_F(DecoderTest, RawStreamAndStillImage) {
    FFDecoder& d = *decoder;
    ASSERT_TRUE(d.OpenFile(path("raw.h264"), "")) << d.LastErrorMessage().toStdString();
    EXPECT_EQ(d.GetFileInfoDurationLow(), 0);
    EXPECT_EQ(d.GetFileInfoDurationHigh(), kNoValueHigh);
    EXPECT_EQ(d.GetVideoInfosCodecName(0), "h264 (H.264 / AVC / MPEG-4 AVC / MPEG-4 part 10)");
    EXPECT_EQ(d.GetVideoInfosFrameRateNumerator(0), 25);
    EXPECT_EQ(d.GetVideoInfosFrameRateDenominator(0), 1);
    EXPECT_EQ(d.GetVideoInfosDurationLow(0), 0);
    EXPECT_EQ(d.GetVideoInfosBitRate(0), 0);
    EXPECT_EQ(d.FileSizeLow(), static_cast<std::int32_t>(QFileInfo(path("raw.h264")).size()));
    d.SetFrameDecoding(true);
    ASSERT_TRUE(d.ReadNextFrame(-1));
    EXPECT_FALSE(draw(d, 160, 120).rowIsBlack(0));

    // The raw stream has no index to seek by; the position is still reached by decoding forward.
    const std::optional<std::int64_t> at = seek(d, 500000);
    ASSERT_TRUE(at) << d.LastErrorMessage().toStdString();
    EXPECT_GE(*at, 500000);
    EXPECT_LT(*at, 500000 + kFrame);
    EXPECT_TRUE(d.ReadNextFrame(-1));

    ASSERT_TRUE(d.OpenFile(path("still.png"), ""));
    EXPECT_EQ(d.GetVideoInfosCodecName(0), "png (PNG (Portable Network Graphics) image)");
    EXPECT_EQ(d.GetVideoInfosWidth(0), 160);
    EXPECT_EQ(d.GetVideoInfosHeight(0), 120);
    EXPECT_EQ(d.FirstAudioStreamIndex(), -1);
    ASSERT_TRUE(d.ReadNextFrame(-1));
    const Picture picture = draw(d, 80, 60);
    EXPECT_FALSE(picture.rowIsBlack(30));
    EXPECT_TRUE(picture.opaque());
    EXPECT_FALSE(d.ReadNextFrame(-1));
}

TEST_F(DecoderTest, SeekInAFileCutShortOfItsIndexSettlesOnTheLastPicture) {
    // The index promises 8 s but the data stops early.
    FFDecoder& d = *decoder;
    ASSERT_TRUE(d.OpenFile(path("cut.mp4"), ""));
    EXPECT_NEAR(duration(d), 8000000, kFrame);
    d.SetFrameDecoding(true);
    const std::optional<std::int64_t> at = seek(d, 7000000);
    ASSERT_TRUE(at);
    EXPECT_LT(*at, 7000000);
    ASSERT_TRUE(d.ReadNextFrame(-1));
    EXPECT_FALSE(draw(d, 40, 30).rowIsBlack(15));
    EXPECT_FALSE(d.ReadNextFrame(-1));
}

TEST_F(DecoderTest, FilesWithoutOneKindOfStreamAnswerAsAbsent) {
    FFDecoder& d = *decoder;
    ASSERT_TRUE(d.OpenFile(path("wide.mp4"), ""));
    EXPECT_EQ(layout(d), (std::vector<int>{0, -1, -1, 1, 0, 0}));
    EXPECT_EQ(d.GetAudioInfosCodecName(d.FirstAudioStreamIndex()), "");

    ASSERT_TRUE(d.OpenFile(path("audio.m4a"), ""));
    EXPECT_EQ(layout(d), (std::vector<int>{-1, 0, -1, 0, 1, 0}));
    EXPECT_EQ(d.GetVideoInfosCodecName(d.FirstVideoStreamIndex()), "");
    EXPECT_EQ(d.LastErrorMessage(), "Stream not found");
    EXPECT_EQ(d.GetVideoInfosFrameRateNumerator(-1), 0);
    EXPECT_EQ(d.GetAudioInfosCodecName(0), "aac (AAC (Advanced Audio Coding))");
    EXPECT_NEAR(duration(d), 1000000, 2 * kFrame);
    d.SetFrameDecoding(true);
    EXPECT_FALSE(d.ReadNextFrame(-1));
    EXPECT_FALSE(seek(d, 0));
    Picture picture(8, 8);
    EXPECT_FALSE(d.DrawFrame(picture.bytes.data(), 8, 8, picture.stride, true));
}

TEST_F(DecoderTest, BadInputsFailWithTheLibraryText) {
    // A file listed, then gone before the probe.
    ASSERT_TRUE(QFileInfo::exists(path("copy.mp4")));
    ASSERT_TRUE(QFile::remove(path("copy.mp4")));

    const std::pair<const char*, const char*> cases[] = {
        {"missing.mp4", "No such file or directory"},
        {"copy.mp4", "No such file or directory"},
        {"folder.mp4", "Is a directory"},
        {"empty.mp4", "Invalid data found when processing input"},
        {"truncated.mp4", "Invalid data found when processing input"},
        {"text.mp4", "Invalid data found when processing input"},
    };
    FFDecoder& d = *decoder;
    expectNeutral(d); // before any open
    for (const auto& [name, message] : cases) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(d.OpenFile(path("clip2.mp4"), "")); // a failed open must not leave the old file
        EXPECT_FALSE(d.OpenFile(path(name), ""));
        EXPECT_EQ(d.LastErrorMessage(), message);
        expectNeutral(d);
    }
    EXPECT_FALSE(d.OpenFile("", ""));
    EXPECT_FALSE(d.LastErrorMessage().isEmpty());

    // The reader recovers: a good file opens after the bad ones and clears the text.
    ASSERT_TRUE(d.OpenFile(path("clip2.mp4"), ""));
    EXPECT_EQ(d.LastErrorMessage(), "");
}

} // namespace
