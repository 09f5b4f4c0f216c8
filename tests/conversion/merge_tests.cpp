// The merge of finished pieces: the poll's reading of the child's output, and real joins with the
// ffmpeg program.
#include "CMD_MediaConvert.h"
#include "FFDecoder.h"
#include "Globals.h"
#include "mMain.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

using namespace morvane;

namespace {

class MergeTest : public ::testing::Test {
protected:
    void SetUp() override {
        Folder_Temp = dir.filePath("temp") + '/';
        QDir().mkpath(Folder_Temp);
        merge.Merge_SetPaths();
        merge.waitStep = [](int) {
            QCoreApplication::processEvents();
            QThread::msleep(20);
        };
        Set_MessageHandler([this](const QString& text, int, const QString&, const QString&) {
            messages << text;
            return ID_OK;
        });
    }
    void TearDown() override { Set_MessageHandler(nullptr); }

    void writeResult(const QByteArray& text) {
        QFile file(merge.Merge_ResultFile);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(text);
    }
    bool makeClip(const QString& path, const char* size) {
        QProcess ffmpeg;
        ffmpeg.start("ffmpeg", {"-nostdin", "-loglevel", "error", "-y", "-f", "lavfi", "-i",
                                QString("testsrc2=size=%1:rate=25:duration=1").arg(size), "-f", "lavfi", "-i",
                                "sine=duration=1", "-c:v", "mpeg4", "-c:a", "aac", "-shortest", path});
        return ffmpeg.waitForFinished(60000) && ffmpeg.exitCode() == 0;
    }
    // Rows that ended "Done", with their outputs as the pieces.
    void addDoneRows(const QStringList& pieces) {
        for (const QString& piece : pieces) {
            const int row = table.addRow();
            table.setText(row, FileCol::Status, "Done");
            table.setText(row, FileCol::ConvertedFileName, piece);
        }
    }

    QTemporaryDir dir;
    MergePipeline merge;
    FileViewMain table;
    QStringList messages;
};

} // namespace

TEST_F(MergeTest, ListLinesQuoteForTheDemuxer) {
    EXPECT_EQ(Merge_ListLine("/v/a b.mp4"), "file '/v/a b.mp4'");
    EXPECT_EQ(Merge_ListLine("/v/it's.mp4"), "file '/v/it'\\''s.mp4'");
}

TEST_F(MergeTest, PollReadsProgressSuccessAndSilence) {
    // Progress: the tail after the last line feed, blanks behind "=" folded.
    writeResult(
        "Input #0, concat\nframe=   12 fps=0.0 q=-1.0 size=     256kB time=00:00:00.48 bitrate=  42kbits/s\r"
        "frame=   25 fps=0.0 q=-1.0 size=     512kB time=00:00:01.00 bitrate=  42kbits/s\r");
    merge.Merge_IdleTicks = 4;
    merge.Merge_Poll();
    EXPECT_EQ(merge.Merge_Time, "00:00:01.00");
    EXPECT_EQ(merge.Merge_IdleTicks, 0);
    EXPECT_FALSE(merge.Merge_Finished);
    EXPECT_TRUE(merge.Merge_ResultText.startsWith("frame=12 fps=0.0"));

    // The summary's percent word is the mark of success.
    writeResult("frame=25 time=00:00:01.00\rvideo:120kB audio:16kB subtitle:0kB other streams:0kB global "
                "headers:0kB muxing overhead: 1.234%\n");
    merge.Merge_Poll();
    EXPECT_TRUE(merge.Merge_Finished);

    // No child, no progress: failed after ten silent counts, two a poll.
    writeResult("concat: Impossible to open 'x.mp4'\n");
    merge.Merge_Finished = false;
    merge.Merge_IdleTicks = 0;
    int polls = 0;
    while (!merge.Merge_Failed && polls < 20) {
        merge.Merge_Poll();
        ++polls;
    }
    EXPECT_EQ(polls, 5);
    merge.Merge_Failed = false;
    merge.Merge_Poll(); // at ten the text itself becomes the error
    EXPECT_TRUE(merge.Merge_Failed);
    EXPECT_EQ(merge.Merge_ErrorText, "concat: Impossible to open 'x.mp4'");

    // A missing result file changes nothing.
    QFile::remove(merge.Merge_ResultFile);
    merge.Merge_Failed = false;
    merge.Merge_Poll();
    EXPECT_FALSE(merge.Merge_Failed);
}

TEST_F(MergeTest, JoinsPiecesIntoTheFirstRowsName) {
    QStringList pieces;
    for (const char* name : {"one piece.mp4", "two.mp4", "it's three.mp4"}) {
        pieces << dir.filePath(name);
        ASSERT_TRUE(makeClip(pieces.last(), "160x120"));
    }
    addDoneRows(pieces);
    // Files of the user's under every name the temporary target could draw: none is touched.
    QStringList users;
    for (int n = 1; n <= 1000; ++n) {
        users << dir.filePath(QStringLiteral("temp%1.MP4").arg(n));
        QFile file(users.last());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("mine");
    }
    const auto usersIntact = [&] {
        for (const QString& user : users) {
            QFile file(user);
            if (!file.open(QIODevice::ReadOnly) || file.readAll() != "mine") return false;
        }
        return QDir(dir.path()).entryList({"temp*"}, QDir::Files).size() == users.size();
    };

    // Ctrl-C of a terminal during the merge: it ends, and every piece stays.
    merge.cancelRequested = [] { return true; };
    EXPECT_FALSE(merge.Merge_All(table, dir.path() + '/', 0));
    EXPECT_EQ(messages, QStringList({"Operation has been cancelled!"}));
    for (const QString& piece : pieces)
        EXPECT_TRUE(QFileInfo::exists(piece)) << piece.toStdString();
    EXPECT_TRUE(usersIntact());
    messages.clear();
    merge.cancelRequested = nullptr;

    ASSERT_TRUE(merge.Merge_All(table, dir.path() + '/', 0));
    EXPECT_TRUE(messages.isEmpty()) << messages.join('\n').toStdString();
    EXPECT_TRUE(usersIntact());
    // The first piece still stood when the name was chosen, so the joined file takes the next free one.
    const QString joined = dir.filePath("one piece_(new).mp4");
    EXPECT_EQ(merge.Merge_OutputPath, joined);
    for (const QString& piece : pieces)
        EXPECT_FALSE(QFileInfo::exists(piece)) << piece.toStdString();
    EXPECT_FALSE(QFileInfo::exists(merge.Merge_ListFile));
    const std::unique_ptr<FFDecoder> decoder = Make_FFDecoder();
    ASSERT_TRUE(decoder->OpenFile(joined, ""));
    const double seconds =
        Time_ToSeconds(Time_FromPair(decoder->GetFileInfoDurationLow(), decoder->GetFileInfoDurationHigh()));
    EXPECT_NEAR(seconds, 3.0, 0.1);
    decoder->CloseFile();
}

TEST_F(MergeTest, OnePieceOrBrokenPieces) {
    const QString only = dir.filePath("only.mp4");
    ASSERT_TRUE(makeClip(only, "160x120"));
    addDoneRows({only});
    EXPECT_TRUE(merge.Merge_All(table, dir.path() + '/', 0));
    EXPECT_TRUE(QFileInfo::exists(only)); // nothing to join: the piece stays
    EXPECT_EQ(merge.Merge_OutputPath, "");
    EXPECT_TRUE(QDir(dir.path()).entryList({"temp*"}, QDir::Files).isEmpty());

    // Pieces that are no media: the child gives up, the user is told, the pieces stay.
    FileViewMain broken;
    QStringList junk;
    for (const char* name : {"a.mp4", "b.mp4"}) {
        junk << dir.filePath(name);
        QFile file(junk.last());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("not a video");
    }
    table.clearRows();
    addDoneRows(junk);
    EXPECT_FALSE(merge.Merge_All(table, dir.path() + '/', 0));
    EXPECT_EQ(messages, QStringList({"The operation is canceled! Please try again."}));
    for (const QString& piece : junk)
        EXPECT_TRUE(QFileInfo::exists(piece));
    EXPECT_TRUE(QDir(dir.path()).entryList({"temp*"}, QDir::Files).isEmpty());
}
