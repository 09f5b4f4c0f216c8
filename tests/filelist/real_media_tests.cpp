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
