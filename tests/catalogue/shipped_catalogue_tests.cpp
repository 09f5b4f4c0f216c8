// The shipped catalogue as the program loads it: the start-up load order, and the integrity of the
// built-in rows (every preset reaches the settings whole and gives an argument text that this
// machine's FFmpeg can encode).

#include "Bitrate_Rules.h"
#include "Catalogue_Load.h"
#include "Encrypt_Mod.h"
#include "FormatSetting.h"
#include "Globals.h"
#include "Make_EncoderArgs.h"
#include "OutputBrowser.h"
#include "Preset_Mods.h"
#include "Table_Files.h"
#include "mMain.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

using namespace morvane;

namespace {

const QString kCustom = QStringLiteral("[%Custom%]");
const QStringList kMakers = {"Apple", "Samsung",   "BlackBerry", "HTC",    "Nokia", "Google", "LG",
                             "Sony",  "Microsoft", "Motorola",   "Archos", "Game",  "Others"};

// Points the catalogue's folders into a temporary folder and records every message of the run.
class CatalogueFolders {
public:
    CatalogueFolders() {
        Catalogue_Passphrase = QString::fromLatin1(Catalogue_PassphraseText);
        Folder_Temp = m_dir.filePath("temp/");
        Folder_UserPreset = m_dir.filePath("user/presets/");
        File_UserPreset = "UserPreset.dat";
        Folder_UserFavorite = m_dir.filePath("user/favorites/");
        File_UserFavorite = "Favorites.dat";
        QDir().mkpath(Folder_Temp);
        Set_MessageHandler([this](const QString& text, int, const QString&, const QString&) {
            messages << text;
            return ID_OK;
        });
    }
    ~CatalogueFolders() { Set_MessageHandler(nullptr); }
    CatalogueFolders(const CatalogueFolders&) = delete;
    CatalogueFolders& operator=(const CatalogueFolders&) = delete;

    QStringList messages;

private:
    QTemporaryDir m_dir;
};

QString unmarked(QString text) {
    return text.remove(QLatin1Char('#'));
}

// Encoder names this FFmpeg build offers, empty when the program cannot be run.
QSet<QString> ffmpegEncoders() {
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"), {QStringLiteral("-hide_banner"), QStringLiteral("-encoders")});
    if (!ffmpeg.waitForFinished(30000) || ffmpeg.exitCode() != 0) return {};
    QSet<QString> names;
    bool inList = false;
    for (const QString& line : QString::fromUtf8(ffmpeg.readAllStandardOutput()).split(QLatin1Char('\n'))) {
        const QStringList fields = line.simplified().split(QLatin1Char(' '));
        if (inList && fields.size() >= 2) names.insert(fields.at(1));
        if (fields.value(0) == QLatin1String("------")) inList = true;
    }
    return names;
}

// The catalogue loaded once through the start-up road, shared by the integrity tests.
class ShippedCatalogue : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        folders = std::make_unique<CatalogueFolders>();
        catalogue = std::make_unique<Catalogue>();
        Catalogue_Load(*catalogue);
        loadMessages = folders->messages;
    }
    static void TearDownTestSuite() {
        catalogue.reset();
        folders.reset();
    }

    static const CatalogueTable& presets() { return catalogue->ReportControl_PresetMain; }
    static const CatalogueTable& formats() { return catalogue->ReportControl_FormatMain; }
    static QString preset(qsizetype row, const char* column) {
        return Cell_Get(presets(), row, QLatin1String(column));
    }

    static QStringList captions(const OutputBrowser& browser, int panel) {
        QStringList out;
        for (const StripButton& button : browser.strips.at(static_cast<size_t>(panel)).buttons)
            out << button.caption;
        return out;
    }

    static std::unique_ptr<CatalogueFolders> folders;
    static std::unique_ptr<Catalogue> catalogue;
    static QStringList loadMessages;
};

std::unique_ptr<CatalogueFolders> ShippedCatalogue::folders;
std::unique_ptr<Catalogue> ShippedCatalogue::catalogue;
QStringList ShippedCatalogue::loadMessages;

} // namespace

// ---- Start-up load order

TEST(CatalogueLoad, ShippedTablesLoadAndLeaveNoFilesBehind) {
    CatalogueFolders folders;
    Catalogue catalogue;
    Catalogue_Load(catalogue);
    EXPECT_TRUE(folders.messages.isEmpty()) << folders.messages.join('\n').toStdString();
    EXPECT_EQ(catalogue.ReportControl_FormatMain.columnCount(), 13);
    EXPECT_EQ(catalogue.ReportControl_PresetMain.columnCount(), 22);
    EXPECT_GT(catalogue.ReportControl_FormatMain.rowCount(), 100);
    EXPECT_GT(catalogue.ReportControl_PresetMain.rowCount(), 300);
    EXPECT_EQ(Cell_Get(catalogue.ReportControl_PresetMain, 1, "FileExtention"), "mp4");
    EXPECT_FALSE(QFileInfo::exists(Folder_Temp + "format.dat"));
    EXPECT_FALSE(QFileInfo::exists(Folder_Temp + "preset.dat"));
    EXPECT_EQ(catalogue.ReportControl_FavoritesMain.columnCount(), 0); // no favorites file yet

    // A second load replaces the shipped rows instead of doubling them.
    const qsizetype rows = catalogue.ReportControl_PresetMain.rowCount();
    Catalogue_Load(catalogue);
    EXPECT_EQ(catalogue.ReportControl_PresetMain.rowCount(), rows);
}

TEST(CatalogueLoad, UserPresetsFollowTheBuiltInRowsAndFavoritesLoad) {
    CatalogueFolders folders;
    qsizetype builtIn = 0;
    {
        Catalogue first;
        Catalogue_Load(first);
        CatalogueTable& presets = first.ReportControl_PresetMain;
        builtIn = presets.rowCount();
        const qsizetype added = presets.addRecord();
        for (qsizetype column = 0; column < presets.columnCount(); ++column)
            presets.setCell(added, column, presets.cell(0, column));
        Cell_Set(presets, added + 1, "ID", "User-7A01237A", true, true);
        Cell_Set(presets, added + 1, "Name", "My phone", true, true);
        Cell_Set(presets, added + 1, "Removable", "Yes", true, true);
        QDir().mkpath(Folder_UserPreset);
        Table_SaveUserRows(presets, Folder_UserPreset + File_UserPreset, true);

        CatalogueTable& favorites = first.ReportControl_FavoritesMain;
        Table_CopyColumns(favorites, presets);
        const qsizetype favorite = favorites.addRecord();
        for (qsizetype column = 0; column < favorites.columnCount(); ++column)
            favorites.setCell(favorite, column, presets.cell(2, column));
        QDir().mkpath(Folder_UserFavorite);
        Table_SaveFile(favorites, Folder_UserFavorite + File_UserFavorite, true);
    }

    Catalogue catalogue;
    Catalogue_Load(catalogue);
    EXPECT_TRUE(folders.messages.isEmpty()) << folders.messages.join('\n').toStdString();
    const CatalogueTable& presets = catalogue.ReportControl_PresetMain;
    ASSERT_EQ(presets.rowCount(), builtIn + 1);
    EXPECT_EQ(Cell_Get(presets, builtIn + 1, "ID"), "User-7A01237A");
    EXPECT_EQ(Cell_Get(presets, builtIn + 1, "Name"), "My phone");
    EXPECT_EQ(Cell_Get(presets, builtIn + 1, "VideoCodec"), Cell_Get(presets, 1, "VideoCodec"));
    EXPECT_EQ(Cell_Get(presets, builtIn, "Removable"), "No");
    EXPECT_EQ(Row_Find(presets, "ID", "User-7A01237A"), builtIn + 1);

    const CatalogueTable& favorites = catalogue.ReportControl_FavoritesMain;
    ASSERT_EQ(favorites.rowCount(), 1);
    EXPECT_EQ(favorites.columnCount(), presets.columnCount());
    EXPECT_EQ(Cell_Get(favorites, 1, "ID"), Cell_Get(presets, 3, "ID"));
}

// ---- Integrity of the shipped rows

TEST_F(ShippedCatalogue, LoadsWithoutAnyMessage) {
    EXPECT_TRUE(loadMessages.isEmpty()) << loadMessages.join('\n').toStdString();
}

TEST_F(ShippedCatalogue, PanelsOfferTheirGroups) {
    FormatSetting settings(*catalogue);
    OutputBrowser browser(*catalogue, settings);
    browser.Panel_BuildButtons(Panel_VideoFormats, "VideoFormat");
    browser.Panel_BuildButtons(Panel_AudioFormats, "AudioFormat");
    browser.Panel_BuildButtons(Panel_WebFormats, "WebFormat");
    const QStringList video = captions(browser, Panel_VideoFormats);
    EXPECT_GE(video.size(), 20);
    EXPECT_LE(video.size(), OutputBrowser::PresetIndexSize);
    for (const char* group :
         {"MP4", "AVI", "WMV", "MKV", "MOV", "FLV", "MPEG-2", "3GP", "WebM", "GIF", "SWF"})
        EXPECT_TRUE(video.contains(QLatin1String(group))) << group;
    const QStringList audio = captions(browser, Panel_AudioFormats);
    EXPECT_GE(audio.size(), 11);
    for (const char* group : {"MP3", "AAC", "M4A", "WAV", "WMA", "OGG", "FLAC"})
        EXPECT_TRUE(audio.contains(QLatin1String(group))) << group;
    EXPECT_GE(captions(browser, Panel_WebFormats).size(), 4);

    ASSERT_EQ(browser.ListBox_MakerNames.count(), kMakers.size());
    for (qsizetype maker = 0; maker < kMakers.size(); ++maker) {
        browser.Panel_BuildButtons(Panel_Devices, kMakers.at(maker));
        EXPECT_GE(captions(browser, Panel_Devices).size(), 2) << kMakers.at(maker).toStdString();
    }

    // Every row belongs to one of the panels.
    QStringList makers = kMakers;
    makers << "VideoFormat"
           << "AudioFormat"
           << "WebFormat";
    for (qsizetype row = 1; row <= presets().rowCount(); ++row)
        EXPECT_TRUE(makers.contains(preset(row, "Maker"))) << preset(row, "ID").toStdString();
}

TEST_F(ShippedCatalogue, RowsAreBuiltInWithUniqueIdsAndOneCustomRowPerGroup) {
    QSet<QString> ids;
    QHash<QString, int> customRows;
    for (qsizetype row = 1; row <= presets().rowCount(); ++row) {
        const QString id = preset(row, "ID");
        EXPECT_FALSE(id.isEmpty()) << row;
        EXPECT_FALSE(id.startsWith("User-")) << id.toStdString();
        EXPECT_FALSE(ids.contains(id)) << "repeated " << id.toStdString();
        ids.insert(id);
        EXPECT_EQ(preset(row, "Removable"), "No") << id.toStdString();
        for (const char* column : {"Name", "Format", "Keyword", "Type", "Thumbnail", "Image"})
            EXPECT_FALSE(preset(row, column).isEmpty()) << id.toStdString() << " " << column;
        const QString group = preset(row, "Maker") + "/" + preset(row, "Keyword");
        customRows[group] += preset(row, "Name") == kCustom ? 1 : 0;
    }
    for (auto it = customRows.cbegin(); it != customRows.cend(); ++it)
        EXPECT_EQ(it.value(), 1) << it.key().toStdString();
}

// The builder takes the channel count from the position in the channels list, and the audio bitrate
// list must exist for every combination a user can pick.
TEST_F(ShippedCatalogue, EveryOfferedAudioChoiceHasBitratesAndChannelsInOrder) {
    const QStringList channelOrder = {"Mono", "Stereo", "5.1 Surround"};
    QStringList failures;
    for (qsizetype row = 1; row <= formats().rowCount(); ++row) {
        const QString codec = Cell_Get(formats(), row, "AudioCodec");
        if (codec == "#") continue;
        const QString where = Cell_Get(formats(), row, "Format") + " " + codec;
        const QStringList channels = Split_SemicolonList(Cell_Get(formats(), row, "Channels"));
        if (codec != "No Audio" && channels != channelOrder.mid(0, channels.size()))
            failures << where + ": channels " + channels.join(',');
        for (const QString& rate : Split_SemicolonList(Cell_Get(formats(), row, "SampleRate")))
            for (const QString& layout : channels)
                for (const QString& size : Split_SemicolonList(Cell_Get(formats(), row, "AudioSize")))
                    if (AudioBitrate_List(codec, rate, layout, size).isEmpty())
                        failures << where + ": " + rate + " " + layout + " " + size;
    }
    EXPECT_TRUE(failures.isEmpty()) << failures.join('\n').toStdString();
}

TEST_F(ShippedCatalogue, EveryPresetReachesTheSettingsAndEncodes) {
    const QSet<QString> encoders = ffmpegEncoders();
    if (encoders.isEmpty()) ADD_FAILURE() << "the ffmpeg program could not list its encoders";
    static const QRegularExpression encoderOption(QStringLiteral(" -[av]codec (\\S+)"));
    const QStringList sizeColumns = {"FPS",        "FileExtention", "AspectRatio",
                                     "SampleRate", "Channels",      "AudioSize"};
    const QList<int> sizeLists = {List_FrameRate,  List_Extension, List_Aspect,
                                  List_SampleRate, List_Channels,  List_SampleSize};

    FormatSetting settings(*catalogue);
    QStringList failures;
    for (qsizetype row = 1; row <= presets().rowCount(); ++row) {
        const QString id = preset(row, "ID");
        const auto fail = [&](const QString& what) { failures << id + ": " + what; };
        const auto listText = [&](int list) {
            return settings.Combo_OutputFile.at(static_cast<size_t>(list)).selectedText();
        };
        settings.Preset_Apply(row);

        // Each value stands selected, and a lock mark disables its control.
        const QString videoCodec = unmarked(preset(row, "VideoCodec"));
        const QString audioCodec = unmarked(preset(row, "AudioCodec"));
        if (listText(List_VideoCodec) != videoCodec) fail("video codec " + listText(List_VideoCodec));
        if (listText(List_AudioCodec) != audioCodec) fail("audio codec " + listText(List_AudioCodec));
        for (qsizetype i = 0; i < sizeColumns.size(); ++i) {
            const QString cell = preset(row, sizeColumns.at(i).toLatin1().constData());
            if (listText(sizeLists.at(i)) != unmarked(cell))
                fail(sizeColumns.at(i) + " " + cell + " shows " + listText(sizeLists.at(i)));
            if (cell.startsWith('#') &&
                settings.Combo_OutputFile.at(static_cast<size_t>(sizeLists.at(i))).enabled)
                fail(sizeColumns.at(i) + " is locked but enabled");
        }
        const int width = unmarked(preset(row, "Width")).toInt();
        const int height = unmarked(preset(row, "Height")).toInt();
        if (settings.widthValue() != width || settings.heightValue() != height)
            fail(QStringLiteral("size %1 x %2").arg(settings.widthValue()).arg(settings.heightValue()));
        const QString sizeText = width == 0 && height == 0 ? (videoCodec == "No Video" ? "-" : "Original")
                                                           : QStringLiteral("%1 x %2").arg(width).arg(height);
        if (listText(List_FrameSize) != sizeText) fail("frame size shows " + listText(List_FrameSize));
        if (preset(row, "Width").startsWith('#') && settings.Txt_OutputVideoWidth.enabled)
            fail("width is locked but enabled");
        if (Quality_Text(settings.Radio_Quality) != unmarked(preset(row, "QualityLevel"))) fail("quality");
        if (listText(List_AudioBitrate) != unmarked(preset(row, "AudioBitrate")))
            fail("audio bitrate " + preset(row, "AudioBitrate") + " shows " + listText(List_AudioBitrate));

        const QString bitrate = unmarked(preset(row, "VideoBitrate"));
        if (bitrate == "Smart Fit" || bitrate == "0") {
            if (listText(List_VideoBitrate) != (bitrate == "0" ? "-" : bitrate))
                fail("video bitrate shows " + listText(List_VideoBitrate));
        } else if (listText(List_VideoBitrate) != bitrate + " kbps" ||
                   settings.bitrateValue() != bitrate.toInt()) {
            fail("video bitrate " + bitrate + " shows " + listText(List_VideoBitrate));
        }

        // The fields as job preparation hands them to the builder, for a 640 x 360 source at 25 fps.
        EncoderParams params;
        params.SrcWidth = params.EditedWidth = 640;
        params.SrcHeight = params.EditedHeight = 360;
        params.SrcFrameRate = 25;
        params.SrcAspect = "1.78";
        params.AspectMode = "Original";
        params.PadColor = "black";
        params.OutWidth = settings.widthValue();
        params.OutHeight = settings.heightValue();
        params.FrameRateText = listText(List_FrameRate);
        params.VideoCodec = listText(List_VideoCodec);
        params.VideoBitrate =
            listText(List_VideoBitrate) == "Smart Fit" ? QString() : settings.Txt_OutputVideoBitrate.text;
        params.Quality = settings.Radio_Quality == Quality_High       ? 4
                         : settings.Radio_Quality == Quality_Standard ? 2
                                                                      : 1;
        params.AudioCodec = listText(List_AudioCodec);
        params.Format = listText(List_Extension).toUpper();
        params.Channels = static_cast<std::int32_t>(settings.Combo_OutputFile[List_Channels].selectedIndex());
        params.AudioBitrate = QString(listText(List_AudioBitrate)).remove("kbps").trimmed();
        params.SampleRate = QString(listText(List_SampleRate)).remove("Hz").trimmed();
        params.BitDepth = listText(List_SampleSize);
        const QString args = Make_EncoderArgs(params);
        if (args == "-1") {
            fail("no argument text");
            continue;
        }

        if (audioCodec != "No Audio") {
            const QString channels = unmarked(preset(row, "Channels"));
            const QString count = channels == "Mono" ? "1" : channels == "Stereo" ? "2" : "6";
            if (!args.contains(" -ac " + count + " ")) fail("channels in " + args);
            if (!args.contains(" -ar " + params.SampleRate + " ")) fail("sample rate in " + args);
            if (!args.contains(" -acodec ")) fail("no audio encoder in " + args);
        }
        if (videoCodec != "No Video") {
            const QString scale = width == 0 && height == 0
                                      ? QStringLiteral(" scale=640:360")
                                      : QStringLiteral(" scale=%1:%2").arg(width).arg(height);
            if (!args.contains(scale)) fail("frame size in " + args);
            // Only a GIF leaves the encoder to the output format.
            if (!args.contains(" -vcodec ") && params.Format != "GIF") fail("no video encoder in " + args);
        }
        for (const QRegularExpressionMatch& match : encoderOption.globalMatch(args)) {
            // The engine runs the retired libfaac name on the native AAC encoder.
            const QString name = match.captured(1) == "libfaac" ? "aac" : match.captured(1);
            if (!encoders.isEmpty() && !encoders.contains(name)) fail("encoder " + name + " is missing");
        }
    }
    EXPECT_TRUE(failures.isEmpty()) << failures.size() << " failures:\n" << failures.join('\n').toStdString();
}

// The remembered preset of each button, before the user has chosen any, opens a real preset.
TEST_F(ShippedCatalogue, InitialRememberedIndexesOpenRealPresets) {
    FormatSetting settings(*catalogue);
    OutputBrowser browser(*catalogue, settings);
    const auto checkStrip = [&](int panel,
                                const std::array<std::int16_t, OutputBrowser::PresetIndexSize>& initial,
                                const QString& label) {
        const ButtonStrip& strip = browser.strips.at(static_cast<size_t>(panel));
        for (qsizetype button = 0; button < strip.buttons.size() && button < OutputBrowser::PresetIndexSize;
             ++button) {
            const std::int16_t index = initial.at(static_cast<size_t>(button));
            browser.Group_Open(panel, button);
            const ValueList& list = catalogue->Cmd_OutputPreset;
            const std::string where = (label + " " + strip.buttons.at(button).caption).toStdString();
            EXPECT_EQ(list.selectedIndex(), index) << where;
            EXPECT_NE(list.selectedText(), "[Custom]") << where;
            EXPECT_EQ(settings.Txt_ID, list.selectedData()) << where;
        }
    };

    const auto video = browser.PresetIndexVideo;
    const auto audio = browser.PresetIndexAudio;
    const auto web = browser.PresetIndexWeb;
    const auto device = browser.PresetIndexDevice;
    browser.Panel_BuildButtons(Panel_VideoFormats, "VideoFormat");
    browser.Panel_BuildButtons(Panel_AudioFormats, "AudioFormat");
    browser.Panel_BuildButtons(Panel_WebFormats, "WebFormat");
    browser.Panel_BuildButtons(Panel_Devices, kMakers.first());
    browser.PanelActive = Panel_VideoFormats;
    checkStrip(Panel_VideoFormats, video, "video");
    browser.PanelActive = Panel_AudioFormats;
    checkStrip(Panel_AudioFormats, audio, "audio");
    browser.PanelActive = Panel_WebFormats;
    checkStrip(Panel_WebFormats, web, "web");
    browser.PanelActive = Panel_Devices;
    checkStrip(Panel_Devices, device, kMakers.first());

    // After a change of maker every button remembers index 1, so every device group offers two presets.
    for (qsizetype maker = 1; maker < kMakers.size(); ++maker) {
        browser.makerChanged(maker);
        const auto reset = browser.PresetIndexDevice;
        checkStrip(Panel_Devices, reset, kMakers.at(maker));
    }
}
