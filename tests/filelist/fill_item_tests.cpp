#include "FakeDecoder.h"
#include "FileList_Mods.h"
#include "Globals.h"
#include "Report_List.h"

#include <QDir>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <vector>

#include <limits>

using namespace morvane;

namespace {

constexpr std::int32_t kNoValue = std::numeric_limits<std::int32_t>::min();

FakeMedia seconds(double s) {
    FakeMedia m;
    const auto micros = static_cast<std::int64_t>(s * 1000000.0);
    m.durationLow = static_cast<std::int32_t>(static_cast<std::uint32_t>(micros));
    m.durationHigh = static_cast<std::int32_t>(micros >> 32);
    return m;
}

class FillItem : public ::testing::Test {
protected:
    void SetUp() override {
        Folder_Temp = temp.path() + QLatin1Char('/');
        Report_Clear();
    }
    void TearDown() override { Report_Clear(); }

    // Probes one file with the given profile; returns the number of bitmaps left in Folder_Temp.
    void fill(const FakeMedia& media, const QString& path = QStringLiteral("/videos/clip.final.mp4"),
              int mode = 0) {
        decoder.media.insert(path, media);
        Fill_Item(path, mode, table, decoder);
    }
    QStringList cells(std::initializer_list<int> columns, int row = 0) const {
        QStringList texts;
        for (int c : columns)
            texts.append(table.text(row, c));
        return texts;
    }
    int thumbnails() const {
        return static_cast<int>(QDir(temp.path()).entryList({QStringLiteral("*.bmp")}, QDir::Files).size());
    }

    QTemporaryDir temp;
    FakeDecoder decoder;
    FileViewMain table;
};

} // namespace

TEST_F(FillItem, AcceptedFileFillsEveryColumn) {
    FakeMedia m = seconds(3725.5); // 1:02:05.5
    m.sizeLow = 123456;
    m.subtitle = 2;
    m.subtitleCount = 1;
    m.videoBitRate = 800000;
    m.rateNum = 30000;
    m.rateDen = 1001;
    m.videoDurationLow = 99;
    m.videoLanguage = QStringLiteral("eng");
    m.audioDurationLow = 98;
    m.audioLanguage = QStringLiteral("fre");
    m.title = QStringLiteral("T");
    m.author = QStringLiteral("A");
    m.year = 2019;
    m.track = 3;
    fill(m);

    ASSERT_EQ(table.rows(), 1);
    EXPECT_TRUE(Report_Entries().isEmpty());
    using namespace FileCol;
    EXPECT_EQ(
        cells({Name, Format, Duration, Status, SrcDuration, FileName, FilePath, FileSize, SubtitleCount}),
        (QStringList{"clip.final", "MP4", "01:02:05", "", "3725.50", "clip.final.mp4", "/videos/", "123456",
                     "1"}));
    EXPECT_EQ(table.second(0, SrcDuration), QStringLiteral("3725.50"));
    EXPECT_EQ(table.longValue(0, FileDuration), m.durationLow);
    EXPECT_TRUE(table.boolValue(0, VideoStream) && table.boolValue(0, AudioStream) &&
                table.boolValue(0, SubtitleStream));
    EXPECT_EQ(cells({VideoCodecName, VideoWidth, VideoHeight, VideoBitRate, VideoFrameRateNumerator,
                     VideoSampleAspectRatio, VideoDurationLow, VideoLanguage}),
              (QStringList{"H.264 / AVC / MPEG-4 AVC / MPEG-4 part 10", "160", "120", "800000", "29", "1.33",
                           "99", "eng"}));
    EXPECT_EQ(cells({AudioCodecName, AudioSampleRate, AudioChannels, AudioDurationLow, AudioLanguage}),
              (QStringList{"AAC (Advanced Audio Coding)", "44100", "2", "98", "fre"}));
    EXPECT_EQ(cells({FileTitle, FileAuthor, FileYear, FileTrack}), (QStringList{"T", "A", "2019", "3"}));

    // Nothing trimmed: the end is the whole length, its low word above 2^31 - 1 stored negative.
    EXPECT_EQ(cells({TrimStartLow, TrimStartHigh, TrimEndLow}), (QStringList{"0", "0", "-569467296"}));
    EXPECT_EQ(table.timePair(0, TrimEndLow, TrimEndHigh), 3725500000LL);
    EXPECT_EQ(table.timePair(0, FileDurationLow, FileDurationHigh), 3725500000LL);
    for (int c = CropTop; c <= PadColor; ++c)
        EXPECT_EQ(table.text(0, c), QStringLiteral("0")) << c;
    EXPECT_EQ(cells({CropWidth, CropHeight, Filters, Deinterlacing, FileExt, NewAspectRatio, ErrMsg}),
              (QStringList{"160", "120", "", "1", "MP4", "Original", ""}));
    EXPECT_EQ(table.icon(0), 12); // Ready
    EXPECT_EQ(decoder.opens, 1);
    EXPECT_EQ(decoder.closes, 1);
}

TEST_F(FillItem, ThumbnailIsABitmapOfTheDrawnFrame) {
    fill(seconds(2.0));
    ASSERT_EQ(table.rows(), 1);
    const QString thumb = table.text(0, FileCol::Thumbnail);
    ASSERT_TRUE(thumb.startsWith(Folder_Temp + QStringLiteral("thumbnail_")));
    EXPECT_TRUE(thumb.endsWith(QStringLiteral(".bmp")));
    const QString id = thumb.mid(Folder_Temp.size() + 10).chopped(4);
    ASSERT_EQ(id.size(), 9);
    EXPECT_EQ(id.left(2), id.right(2));

    QImage image;
    ASSERT_TRUE(image.load(thumb, "BMP"));
    EXPECT_EQ(image.size(), QSize(kThumbnailWidth, kThumbnailHeight));
    EXPECT_EQ(image.pixel(5, 5) & 0xFFFFFF, 0x3366CCu); // the fake's B, G, R bytes
    EXPECT_TRUE(decoder.frameDecoding);
}

TEST_F(FillItem, FrameRateIsTheTruncatedQuotientUnlessUnknown) {
    struct Case {
        std::int32_t num, den;
        const char* cell;
    };
    const Case cases[] = {{25, 1, "25"}, {24000, 1001, "23"}, {30000, 1001, "29"},
                          {-1, 0, "-1"}, {50, 2, "25"},       {-30, 7, "-4"}};
    for (const Case& c : cases) {
        FakeMedia m = seconds(1);
        m.rateNum = c.num;
        m.rateDen = c.den;
        fill(m);
        EXPECT_EQ(table.text(table.rows() - 1, FileCol::VideoFrameRateNumerator), QLatin1String(c.cell))
            << c.num << "/" << c.den;
    }
    EXPECT_TRUE(Report_Entries().isEmpty());
}

TEST_F(FillItem, RefusedFilesLeaveNoRowAndOneReportLine) {
    struct Case {
        const char* what;
        FakeMedia media;
        const char* expected;
    };
    FakeMedia cantOpen;
    cantOpen.opens = false;
    cantOpen.error = QStringLiteral("  Invalid data found when processing input ");
    FakeMedia silent;
    silent.opens = false;
    FakeMedia audioOnly = seconds(5);
    audioOnly.video = -1;
    audioOnly.audio = 0;
    audioOnly.error = QStringLiteral("Stream not found");
    FakeMedia noRate = seconds(5);
    noRate.rateNum = 0;
    FakeMedia emptyBrackets = seconds(5);
    emptyBrackets.videoCodec = QStringLiteral("h264 ()");

    const Case cases[] = {
        {"open fails", cantOpen, "Invalid data found when processing input"},
        {"open fails without words", silent, ""},
        {"no video", audioOnly, "Stream not found"},
        {"unknown frame rate", noRate, ""},
        {"codec text empty after the cut", emptyBrackets, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Report_Clear();
        decoder.opens = decoder.closes = 0;
        fill(c.media, QStringLiteral("/videos/song.mp3"));
        EXPECT_EQ(table.rows(), 0);
        ASSERT_EQ(Report_Entries().size(), 1);
        EXPECT_EQ(Report_Entries()[0].text, QStringLiteral("song.mp3"));
        EXPECT_EQ(Report_Entries()[0].second, QLatin1String(c.expected));
        EXPECT_EQ(decoder.closes, c.media.opens ? 1 : 0);
        EXPECT_EQ(thumbnails(), 0);
    }
}

TEST_F(FillItem, DiscModeDropsTitlesUnderASecondQuietly) {
    fill(seconds(0.9), QStringLiteral("/dvd/VIDEO_TS/VTS_01_0.VOB"), kFillMode_Disc);
    EXPECT_EQ(table.rows(), 0);
    EXPECT_TRUE(Report_Entries().isEmpty());
    EXPECT_EQ(decoder.closes, 1);

    FakeMedia noValue;
    noValue.durationHigh = kNoValue;
    fill(noValue, QStringLiteral("/dvd/VIDEO_TS/VTS_01_0.VOB"), kFillMode_Disc);
    EXPECT_EQ(table.rows(), 0);

    fill(seconds(1.0), QStringLiteral("/dvd/VIDEO_TS/VTS_01_1.VOB"), kFillMode_Disc);
    EXPECT_EQ(table.rows(), 1);
    fill(seconds(0.5), QStringLiteral("/videos/short.mp4"), 0); // other modes keep short files
    EXPECT_EQ(table.rows(), 2);
    EXPECT_TRUE(Report_Entries().isEmpty());
}

TEST_F(FillItem, TheRoundedLengthPicksTheThumbnailFrameAndFrameProblemsLeaveNone) {
    // 7 s in once the rounded length reaches 7 s, else the first frame; a length of -1 reads no frame.
    FakeMedia noValue, minusOne, undecodable = seconds(10), undrawable = seconds(10);
    noValue.durationHigh = kNoValue;
    minusOne.durationLow = minusOne.durationHigh = -1;
    undecodable.decodes = false;
    undrawable.draws = false;
    const struct {
        FakeMedia media;
        bool seeks, thumbnail;
        const char* cells; // the first of Duration, SrcDuration, TrimEndLow, TrimEndHigh, FileDuration
    } cases[] = {
        {seconds(6.4), false, true, ""},
        {seconds(6.5), false, true, ""}, // ties to even
        {seconds(6.6), true, true, ""},
        {seconds(7.0), true, true, ""},
        {seconds(120), true, true, ""},
        // No value is a length of 0; the file's duration cell keeps the low word as read.
        {noValue, false, true, "00:00:00|0.00|0|0|0"},
        {minusOne, false, false, "00:00:00"},
        {undecodable, true, false, ""},
        {undrawable, true, false, ""},
    };
    using namespace FileCol;
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.media.durationHigh << ":" << c.media.durationLow);
        decoder.seeks.clear();
        table.clearRows();
        fill(c.media);
        ASSERT_EQ(table.rows(), 1);
        // Two empty QLists compare through memcmp(nullptr, ...), which the sanitizer rejects.
        EXPECT_EQ(std::vector<std::int64_t>(decoder.seeks.begin(), decoder.seeks.end()),
                  c.seeks ? std::vector<std::int64_t>{7000000} : std::vector<std::int64_t>{});
        EXPECT_EQ(!table.text(0, Thumbnail).isEmpty(), c.thumbnail);
        const QStringList wanted = QString::fromLatin1(c.cells).split('|', Qt::SkipEmptyParts);
        EXPECT_EQ(cells({Duration, SrcDuration, TrimEndLow, TrimEndHigh, FileDuration}).mid(0, wanted.size()),
                  wanted);
    }
    EXPECT_EQ(thumbnails(), 6); // none for the frames that failed
    EXPECT_TRUE(Report_Entries().isEmpty());
}

TEST_F(FillItem, RunTimeErrorKeepsThePartialRowAndReportsItsDescription) {
    FakeMedia zeroDenominator = seconds(3);
    zeroDenominator.rateDen = 0;
    fill(zeroDenominator);
    ASSERT_EQ(table.rows(), 1);
    EXPECT_EQ(table.text(0, FileCol::Name), QStringLiteral("clip.final"));
    ASSERT_EQ(Report_Entries().size(), 1);
    EXPECT_EQ(Report_Entries()[0].second, QStringLiteral("Division by zero"));
    EXPECT_EQ(decoder.closes, 1);

    // An unwritable temporary folder fails the thumbnail's save the same way.
    Report_Clear();
    Folder_Temp = temp.path() + QStringLiteral("/missing/");
    FakeMedia words = seconds(3);
    words.error = QStringLiteral("decoder words");
    fill(words);
    EXPECT_EQ(table.rows(), 2);
    ASSERT_EQ(Report_Entries().size(), 1);
    EXPECT_EQ(Report_Entries()[0].second, QStringLiteral("decoder words")); // the decoder's text wins
    EXPECT_EQ(decoder.closes, 2);
}

TEST_F(FillItem, LastRowIsSetReadyEvenWhenThisFileAddedNone) {
    FakeMedia bad;
    bad.opens = false;
    fill(bad); // empty table: row -1, nothing happens
    EXPECT_EQ(table.rows(), 0);

    fill(seconds(2));
    Set_RowState(table, 0, true, State_Done);
    EXPECT_EQ(table.text(0, FileCol::Status), QStringLiteral("Done"));
    fill(bad);
    EXPECT_EQ(table.text(0, FileCol::Status), QString());
    EXPECT_EQ(table.icon(0), 12);
}

TEST(StripBrackets, CutsFromTheFirstOpeningToTheLastClosingBracket) {
    struct Case {
        const char* in;
        const char* out;
    };
    const Case cases[] = {
        {"h264 (Main)", "Main"},
        {"h264", "h264"},
        {"", ""},
        {"aac (AAC (Advanced Audio Coding))", "AAC (Advanced Audio Coding)"},
        {"a (b) c (d)", "b) c (d"},
        {"mpeg4 (Simple Profile", "Simple Profile"},
        {"x (  )", "  "},
        {"(", ""},
        {"name (", ""},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Strip_Brackets(QLatin1String(c.in)), QLatin1String(c.out)) << c.in;
}
