// The controller over the real engine: generated clips, a shipped preset applied through the
// settings, and the outputs read back with the decoder.
#include "VideoConverter_Mods.h"

#include "CMD_MediaConvert.h"
#include "Catalogue_Load.h"
#include "Encrypt_Mod.h"
#include "FFDecoder.h"
#include "FFEncoderEngine.h"
#include "FileList_Mods.h"
#include "Globals.h"
#include "Preset_Mods.h"
#include "Registry_Mod.h"
#include "Report_List.h"
#include "mMain.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

using namespace morvane;

namespace {

class QuietHost : public ConversionHost {
public:
    void Set_MainState(int state, bool enable) override {
        (void)enable;
        states << state;
    }
    void Show_InputFileInfo(int row) override { (void)row; }
    void Show_Completion() override { ++completions; }
    QList<int> states;
    int completions = 0;
};

bool makeClip(const QString& path, const QString& seconds) {
    QProcess ffmpeg;
    ffmpeg.start("ffmpeg", {"-nostdin", "-loglevel", "error", "-y", "-f", "lavfi", "-i",
                            "testsrc2=size=160x120:rate=25:duration=" + seconds, "-f", "lavfi", "-i",
                            "sine=frequency=440:sample_rate=44100:duration=" + seconds, "-c:v", "mpeg4",
                            "-c:a", "aac", "-shortest", path});
    return ffmpeg.waitForFinished(60000) && ffmpeg.exitStatus() == QProcess::NormalExit &&
           ffmpeg.exitCode() == 0;
}

qsizetype presetRow(const CatalogueTable& presets, const QString& id) {
    for (qsizetype row = 1; row <= presets.rowCount(); ++row)
        if (Cell_Get(presets, row, QStringLiteral("ID")) == id) return row;
    return -1;
}

} // namespace

// Three generated clips in the list and a shipped preset applied: MPEG-4 320 x 240 at 15 fps, AAC
// 22050 Hz stereo.
class ConversionJobMedia : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        Catalogue_Passphrase = QString::fromLatin1(Catalogue_PassphraseText);
        Folder_Temp = dir.filePath("temp/");
        Folder_UserPreset = dir.filePath("user/");
        File_UserPreset = "UserPreset.dat";
        Folder_UserFavorite = dir.filePath("user/");
        File_UserFavorite = "Favorites.dat";
        QDir().mkpath(Folder_Temp);
        Set_MessageHandler([this](const QString& text, int, const QString&, const QString&) {
            messages << text;
            return ID_OK;
        });

        Catalogue_Load(catalogue);
        const qsizetype row = presetRow(catalogue.ReportControl_PresetMain, "VF-MP4-07");
        ASSERT_GT(row, 0);
        settings.Preset_Apply(row); // MPEG-4 320 x 240 at 15 fps, AAC 22050 Hz stereo

        auto decoder = Make_FFDecoder();
        const QStringList lengths = {"1", "2", "1.5"};
        for (int i = 0; i < lengths.size(); ++i) {
            const QString clip = dir.filePath(QStringLiteral("clip%1.mp4").arg(i + 1));
            ASSERT_TRUE(makeClip(clip, lengths.at(i)));
            Fill_Item(clip, 0, table, *decoder);
        }
        ASSERT_EQ(table.rows(), 3);
    }
    void TearDown() override { Set_MessageHandler(nullptr); }

    // Runs the list through the controller and the real engine to the end of the queue.
    void convert() {
        FFEncoderEngine engine;
        VideoConverter converter(table, settings, browser, engine, host, true);
        converter.Txt_OutputPath = dir.filePath("out/");
        if (merging)
            converter.Merge_Requested = [&] {
                return merge.Merge_All(table, converter.Output_Folder(), browser.PanelActive);
            };
        Output_NameMode = overwrite ? 0 : 1;
        converter.chkThreadMode = true;
        converter.txtThreadCount = overwrite ? "1" : "2";
        converter.Start();
        ASSERT_EQ(converter.Get_ConversionState(), Conversion_Converting)
            << messages.join('\n').toStdString();

        QElapsedTimer clock;
        clock.start();
        while (converter.Get_ConversionState() != Conversion_Idle && clock.elapsed() < 120000) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
            QThread::msleep(5);
        }
        ASSERT_EQ(converter.Get_ConversionState(), Conversion_Idle);
        if (!overwrite) {
            EXPECT_TRUE(messages.isEmpty()) << messages.join('\n').toStdString();
            EXPECT_EQ(host.completions, 1);
        }
        EXPECT_FALSE(converter.ProgressBar_Total.Visible);
        EXPECT_FALSE(converter.Timer_ConversionElapsed());
    }

    QTemporaryDir dir;
    QStringList messages;
    Catalogue catalogue;
    FormatSetting settings{catalogue};
    OutputBrowser browser{catalogue, settings};
    FileViewMain table;
    QuietHost host;
    bool merging = false;
    bool overwrite = false;
    MergePipeline merge;
};

TEST_F(ConversionJobMedia, ThreeClipsConvertWithAShippedPreset) {
    convert();
    for (int r = 0; r < 3; ++r) {
        EXPECT_EQ(table.text(r, FileCol::Status), "Done") << table.text(r, FileCol::ErrMsg).toStdString();
        const QString output = table.text(r, FileCol::ConvertedFileName);
        EXPECT_EQ(output, dir.filePath(QStringLiteral("out/clip%1.MP4").arg(r + 1)));
        ASSERT_TRUE(QFileInfo::exists(output)) << output.toStdString();
        auto reader = Make_FFDecoder();
        ASSERT_TRUE(reader->OpenFile(output, QString())) << reader->LastErrorMessage().toStdString();
        const int video = reader->FirstVideoStreamIndex();
        const int audio = reader->FirstAudioStreamIndex();
        EXPECT_TRUE(reader->GetVideoInfosCodecName(video).startsWith("mpeg4"));
        EXPECT_EQ(reader->GetVideoInfosWidth(video), 320);
        EXPECT_EQ(reader->GetVideoInfosHeight(video), 240);
        const int num = reader->GetVideoInfosFrameRateNumerator(video);
        const int den = reader->GetVideoInfosFrameRateDenominator(video);
        ASSERT_GT(den, 0);
        EXPECT_NEAR(static_cast<double>(num) / den, 15.0, 0.01);
        EXPECT_TRUE(reader->GetAudioInfosCodecName(audio).startsWith("aac"));
        EXPECT_EQ(reader->GetAudioInfosSampleRate(audio), 22050);
        EXPECT_EQ(reader->GetAudioInfosChannels(audio), 2);
    }
    Set_MessageHandler(nullptr);
}

TEST_F(ConversionJobMedia, ThreeClipsMergeIntoOneFileOfTheSummedLength) {
    browser.mergeChecked = true;
    merging = true;
    convert();
    EXPECT_EQ(host.completions, 1);
    const QString joined = dir.filePath("out/clip1_(new).MP4");
    EXPECT_EQ(merge.Merge_OutputPath, joined);
    for (int r = 0; r < 3; ++r)
        EXPECT_FALSE(QFileInfo::exists(table.text(r, FileCol::ConvertedFileName))) << r;
    auto reader = Make_FFDecoder();
    ASSERT_TRUE(reader->OpenFile(joined, QString())) << reader->LastErrorMessage().toStdString();
    const double seconds =
        Time_ToSeconds(Time_FromPair(reader->GetFileInfoDurationLow(), reader->GetFileInfoDurationHigh()));
    EXPECT_NEAR(seconds, 4.5, 0.15);
    EXPECT_EQ(reader->GetVideoInfosWidth(reader->FirstVideoStreamIndex()), 320);
}

TEST_F(ConversionJobMedia, AFullDiskStopsTheQueueWithItsMessage) {
    // The second output lands on a device that is always full; overwriting keeps the name.
    QDir().mkpath(dir.filePath("out"));
    ASSERT_TRUE(QFile::link("/dev/full", dir.filePath("out/clip2.MP4")));
    overwrite = true;
    convert();
    ASSERT_FALSE(messages.isEmpty());
    EXPECT_TRUE(messages.last().startsWith("The disk in the destination folder is full."))
        << messages.last().toStdString();
    // The queue stops: the failing row and every row after it are canceled; nothing is deleted (the
    // link was there before the run), and the row that never ran left nothing.
    for (int r = 1; r < 3; ++r)
        EXPECT_EQ(table.text(r, FileCol::Status), "Canceled!") << r;
    EXPECT_TRUE(QFileInfo(dir.filePath("out/clip2.MP4")).isSymLink());
    EXPECT_FALSE(QFileInfo::exists(dir.filePath("out/clip3.MP4")));
    EXPECT_TRUE(QFileInfo::exists("/dev/full"));
    EXPECT_EQ(host.completions, 0);
}
