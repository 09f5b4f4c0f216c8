// Probing clips that the ffmpeg program makes at test time, through the FFmpeg-based reader.
#include "FFDecoder.h"
#include "FileList_Mods.h"
#include "Globals.h"
#include "Report_List.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace morvane;

namespace {

bool makeClip(const QString& ffmpeg, const QStringList& args) {
    QProcess process;
    process.start(ffmpeg, QStringList{"-v", "error", "-y"} + args);
    return process.waitForFinished(60000) && process.exitCode() == 0;
}

} // namespace

TEST(RealMedia, ClipsGiveRowsAndBadFilesGiveReportLines) {
    const QString ffmpeg = QStandardPaths::findExecutable(QStringLiteral("ffmpeg"));
    if (ffmpeg.isEmpty()) GTEST_SKIP() << "no ffmpeg program";
    QTemporaryDir dir;
    Folder_Temp = dir.filePath(QStringLiteral("temp")) + QLatin1Char('/');
    QDir().mkpath(Folder_Temp);
    const QString shortClip = dir.filePath(QStringLiteral("short.mp4"));
    const QString longClip = dir.filePath(QStringLiteral("long.mkv"));
    const QString audioOnly = dir.filePath(QStringLiteral("tone.wav"));
    const QString textFile = dir.filePath(QStringLiteral("notes.mp4"));
    ASSERT_TRUE(
        makeClip(ffmpeg, {"-f", "lavfi", "-i", "testsrc2=size=160x120:rate=25:duration=2", "-f", "lavfi",
                          "-i", "sine=duration=2", "-c:v", "mpeg4", "-c:a", "aac", "-shortest", shortClip}));
    ASSERT_TRUE(makeClip(ffmpeg, {"-f", "lavfi", "-i", "testsrc2=size=160x120:rate=25:duration=8", "-c:v",
                                  "mpeg4", longClip}));
    ASSERT_TRUE(makeClip(ffmpeg, {"-f", "lavfi", "-i", "sine=duration=1", audioOnly}));
    QFile text(textFile);
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("not a video\n");
    text.close();

    Report_Clear();
    FileViewMain table;
    const std::unique_ptr<FFDecoder> decoder = Make_FFDecoder();
    for (const QString& path :
         {shortClip, longClip, audioOnly, textFile, dir.filePath(QStringLiteral("gone.mp4"))})
        Fill_Item(path, 0, table, *decoder);

    ASSERT_EQ(table.rows(), 2);
    EXPECT_EQ(table.text(0, FileCol::Name), QStringLiteral("short"));
    EXPECT_EQ(table.text(0, FileCol::Duration), QStringLiteral("00:00:02"));
    EXPECT_EQ(table.text(0, FileCol::VideoWidth), QStringLiteral("160"));
    EXPECT_EQ(table.text(0, FileCol::VideoFrameRateNumerator), QStringLiteral("25"));
    EXPECT_EQ(table.text(0, FileCol::VideoSampleAspectRatio), QStringLiteral("1.33"));
    EXPECT_TRUE(table.boolValue(0, FileCol::AudioStream));
    EXPECT_EQ(table.text(1, FileCol::Duration), QStringLiteral("00:00:08"));
    EXPECT_FALSE(table.boolValue(1, FileCol::AudioStream));
    for (int r = 0; r < 2; ++r) {
        QImage thumb;
        EXPECT_TRUE(thumb.load(table.text(r, FileCol::Thumbnail), "BMP")) << r;
    }

    ASSERT_EQ(Report_Entries().size(), 3);
    EXPECT_EQ(Report_Entries()[0].text, QStringLiteral("tone.wav"));
    EXPECT_EQ(Report_Entries()[1].text, QStringLiteral("notes.mp4"));
    EXPECT_FALSE(Report_Entries()[1].second.isEmpty());
    EXPECT_EQ(Report_Entries()[2].text, QStringLiteral("gone.mp4"));
    EXPECT_FALSE(Report_Entries()[2].second.isEmpty());
    Report_Clear();
}

TEST(RealMedia, UnknownLengthsStillsAndBrokenFiles) {
    const QString ffmpeg = QStandardPaths::findExecutable(QStringLiteral("ffmpeg"));
    if (ffmpeg.isEmpty()) GTEST_SKIP() << "no ffmpeg program";
    QTemporaryDir dir;
    Folder_Temp = dir.filePath(QStringLiteral("temp")) + QLatin1Char('/');
    QDir().mkpath(Folder_Temp);
    const QString raw = dir.filePath(QStringLiteral("camera.h264"));
    const QString still = dir.filePath(QStringLiteral("still.png"));
    const QString whole = dir.filePath(QStringLiteral("whole.mp4"));
    const QString truncated = dir.filePath(QStringLiteral("cut.mp4"));
    const QString empty = dir.filePath(QStringLiteral("empty.mp4"));
    ASSERT_TRUE(makeClip(ffmpeg, {"-f", "lavfi", "-i", "testsrc2=size=160x120:rate=25:duration=1", "-c:v",
                                  "libx264", "-f", "h264", raw}));
    ASSERT_TRUE(makeClip(
        ffmpeg, {"-f", "lavfi", "-i", "testsrc2=size=160x120:rate=25:duration=1", "-frames:v", "1", still}));
    ASSERT_TRUE(makeClip(
        ffmpeg, {"-f", "lavfi", "-i", "testsrc2=size=160x120:rate=25:duration=2", "-c:v", "mpeg4", whole}));
    QFile source(whole);
    ASSERT_TRUE(source.open(QIODevice::ReadOnly));
    QFile cut(truncated);
    ASSERT_TRUE(cut.open(QIODevice::WriteOnly));
    cut.write(source.read(1500)); // the header promises more than the file holds
    cut.close();
    QFile zero(empty);
    ASSERT_TRUE(zero.open(QIODevice::WriteOnly));
    zero.close();

    Report_Clear();
    FileViewMain table;
    const std::unique_ptr<FFDecoder> decoder = Make_FFDecoder();
    for (const QString& path : {raw, still, truncated, empty})
        Fill_Item(path, 0, table, *decoder);

    // A stream without a known length still becomes a row, at zero length, with its first frame.
    ASSERT_GE(table.rows(), 1);
    EXPECT_EQ(table.text(0, FileCol::Name), QStringLiteral("camera"));
    EXPECT_EQ(table.text(0, FileCol::Duration), QStringLiteral("00:00:00"));
    EXPECT_EQ(table.text(0, FileCol::SrcDuration), QStringLiteral("0.00"));
    QImage thumb;
    EXPECT_TRUE(thumb.load(table.text(0, FileCol::Thumbnail), "BMP"));
    // Whatever a still picture gives, it is a row or a report line, never both and never a crash.
    const bool stillIsRow = table.rows() == 2;
    QStringList reported;
    for (const ReportEntry& entry : Report_Entries())
        reported << entry.text;
    EXPECT_EQ(reported.contains(QStringLiteral("still.png")), !stillIsRow);
    EXPECT_TRUE(reported.contains(QStringLiteral("cut.mp4")));
    EXPECT_TRUE(reported.contains(QStringLiteral("empty.mp4")));
    for (const ReportEntry& entry : Report_Entries()) {
        if (entry.text == QStringLiteral("empty.mp4")) {
            EXPECT_EQ(entry.second, QStringLiteral("Invalid data found when processing input"));
        }
    }
    Report_Clear();
}
