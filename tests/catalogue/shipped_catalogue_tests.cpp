// The shipped catalogue as the program loads it: the start-up load order, and the integrity of the
// built-in rows (every preset reaches the settings whole and gives an argument text that this
// machine's FFmpeg can encode).

#include "CatalogueTestKit.h"

#include "Bitrate_Rules.h"
#include "Catalogue_Load.h"
#include "FormatSetting.h"
#include "Make_EncoderArgs.h"
#include "OutputBrowser.h"
#include "Table_Files.h"

#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

using namespace morvane;
using namespace morvane::testkit;

namespace {

const QString kCustom = QStringLiteral("[%Custom%]");
const QStringList kMakers = {"Apple", "Samsung",   "BlackBerry", "HTC",    "Nokia", "Google", "LG",
                             "Sony",  "Microsoft", "Motorola",   "Archos", "Game",  "Others"};

// The user files in a temporary folder, and the messages shown meanwhile.
struct Sandbox {
    Sandbox() { pointFolders(dir.path()); }
    QTemporaryDir dir;
    MessageLog log;
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
        sandbox = std::make_unique<Sandbox>();
        catalogue = std::make_unique<Catalogue>();
        Catalogue_Load(*catalogue);
        loadMessages = sandbox->log.lines;
    }
    static void TearDownTestSuite() {
        catalogue.reset();
        sandbox.reset();
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

    static std::unique_ptr<Sandbox> sandbox;
    static std::unique_ptr<Catalogue> catalogue;
    static QStringList loadMessages;
};

std::unique_ptr<Sandbox> ShippedCatalogue::sandbox;
std::unique_ptr<Catalogue> ShippedCatalogue::catalogue;
QStringList ShippedCatalogue::loadMessages;

} // namespace

// Runs before the shared load below, whose folders it would otherwise take away.
TEST(CatalogueLoad, UserPresetsFollowTheBuiltInRowsAndFavoritesLoad) {
    Sandbox sandbox;
    Catalogue first;
    Catalogue_Load(first);
    CatalogueTable& presets = first.ReportControl_PresetMain;
    const qsizetype builtIn = presets.rowCount();
    addRows(presets, {}, {presets.records().first().join("//")});
    Cell_Set(presets, builtIn + 1, "ID", "User-7A01237A", true, true);
    Cell_Set(presets, builtIn + 1, "Name", "My phone", true, true);
    Cell_Set(presets, builtIn + 1, "Removable", "Yes", true, true);
    QDir().mkpath(Folder_UserPreset);
    Table_SaveUserRows(presets, Folder_UserPreset + File_UserPreset, true);
    CatalogueTable& favorites = first.ReportControl_FavoritesMain;
    Table_CopyColumns(favorites, presets);
    addRows(favorites, {}, {presets.records().at(2).join("//")});
    QDir().mkpath(Folder_UserFavorite);
    Table_SaveFile(favorites, Folder_UserFavorite + File_UserFavorite, true);

    Catalogue catalogue;
    Catalogue_Load(catalogue);
    EXPECT_TRUE(sandbox.log.lines.isEmpty()) << sandbox.log.lines.join('\n').toStdString();
    const CatalogueTable& loaded = catalogue.ReportControl_PresetMain;
    ASSERT_EQ(loaded.rowCount(), builtIn + 1);
    EXPECT_EQ(Cell_Get(loaded, builtIn + 1, "ID"), "User-7A01237A");
    EXPECT_EQ(Cell_Get(loaded, builtIn + 1, "Name"), "My phone");
    EXPECT_EQ(Cell_Get(loaded, builtIn + 1, "VideoCodec"), Cell_Get(loaded, 1, "VideoCodec"));
    ASSERT_EQ(catalogue.ReportControl_FavoritesMain.rowCount(), 1);
    EXPECT_EQ(Cell_Get(catalogue.ReportControl_FavoritesMain, 1, "ID"), Cell_Get(loaded, 3, "ID"));
}

TEST_F(ShippedCatalogue, LoadsQuietlyOnceOverAndLeavesNoFilesBehind) {
    EXPECT_TRUE(loadMessages.isEmpty()) << loadMessages.join('\n').toStdString();
    EXPECT_GT(formats().rowCount(), 100);
    EXPECT_GT(presets().rowCount(), 300);
    for (const char* file : {"format.dat", "preset.dat"})
        EXPECT_FALSE(QFileInfo::exists(Folder_Temp + file)) << file;
    EXPECT_EQ(catalogue->ReportControl_FavoritesMain.rowCount(), 0); // no favorites file yet
    // A second load replaces the shipped rows instead of doubling them.
    const qsizetype rows = presets().rowCount();
    Catalogue_Load(*catalogue);
    EXPECT_EQ(presets().rowCount(), rows);
}

TEST_F(ShippedCatalogue, RowsAreBuiltInWithUniqueIdsOnAPanelAndOneCustomRowPerGroup) {
    const QStringList makers = kMakers + QStringList{"VideoFormat", "AudioFormat", "WebFormat"};
    QSet<QString> ids;
    QHash<QString, int> customRows;
    for (qsizetype row = 1; row <= presets().rowCount(); ++row) {
        const QString id = preset(row, "ID");
        EXPECT_FALSE(id.isEmpty()) << row;
        EXPECT_FALSE(id.startsWith("User-")) << id.toStdString();
        EXPECT_FALSE(ids.contains(id)) << "repeated " << id.toStdString();
        ids.insert(id);
        EXPECT_EQ(preset(row, "Removable"), "No") << id.toStdString();
        EXPECT_TRUE(makers.contains(preset(row, "Maker"))) << id.toStdString();
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

// The settings offer a codec in a container where players take it, never elsewhere; and no format
// allows a bitrate that the builder's 16-bit guard would write as 200 kbps.
TEST_F(ShippedCatalogue, ContainersOfferTodaysCodecsWhereTheyPlayWithinTheGuard) {
    const struct {
        const char *codec, *column;
        QStringList offeredIn, notIn;
    } cases[] = {{"H.265/HEVC", "VideoCodec", {"MP4", "MKV", "MOV"}, {"WebM", "AVI", "FLV"}},
                 {"VP9", "VideoCodec", {"WebM", "MKV", "MP4"}, {"MOV", "AVI"}},
                 {"AV1", "VideoCodec", {"WebM", "MKV", "MP4"}, {"MOV", "AVI"}},
                 {"Opus", "AudioCodec", {"WebM", "MKV", "OGG", "OPUS"}, {"MP4", "MOV", "AVI", "M4A"}}};
    for (const auto& c : cases)
        for (const QString& format : c.offeredIn + c.notIn) {
            ValueList offered;
            List_FillCodecs(formats(), format, c.column, offered);
            EXPECT_EQ(offered.indexOf(c.codec) >= 0, c.offeredIn.contains(format)) << format.toStdString();
        }
    for (qsizetype row = 1; row <= formats().rowCount(); ++row)
        EXPECT_LE(Cell_Get(formats(), row, "MaxVideoBitrate").toInt(), 32767) << row;
}

TEST_F(ShippedCatalogue, EveryPresetReachesTheSettingsAndEncodes) {
    const QSet<QString> encoders = ffmpegEncoders();
    if (encoders.isEmpty()) ADD_FAILURE() << "the ffmpeg program could not list its encoders";
    static const QRegularExpression encoderOption(QStringLiteral(" -[av]codec (\\S+)"));
    // The preset column that each list shows, in the order of the lists; frame size and video bitrate
    // have their own checks below.
    const char* const shownFrom[] = {"VideoCodec", nullptr,       "FPS",          "FileExtention",
                                     "AudioCodec", "SampleRate",  "AudioBitrate", "Channels",
                                     "AudioSize",  "AspectRatio", nullptr};

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
        for (int list = List_VideoCodec; list <= List_VideoBitrate; ++list) {
            const char* column = shownFrom[list];
            const QString cell = column == nullptr ? QString() : preset(row, column);
            if (column != nullptr && listText(list) != unmarked(cell))
                fail(QString(column) + " " + cell + " shows " + listText(list));
            if (cell.startsWith('#') && settings.Combo_OutputFile.at(static_cast<size_t>(list)).enabled)
                fail(QString(column) + " is locked but enabled");
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

        const QString bitrate = unmarked(preset(row, "VideoBitrate"));
        const bool fixed = bitrate != "Smart Fit" && bitrate != "0";
        const QString bitrateText = fixed ? bitrate + " kbps" : bitrate == "0" ? "-" : bitrate;
        if (listText(List_VideoBitrate) != bitrateText ||
            (fixed && settings.bitrateValue() != bitrate.toInt()))
            fail("video bitrate " + bitrate + " shows " + listText(List_VideoBitrate));

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

        QStringList wanted;
        if (audioCodec != "No Audio") {
            const QString channels = unmarked(preset(row, "Channels"));
            wanted << " -ac " +
                          QString(channels == "Mono"     ? "1"
                                  : channels == "Stereo" ? "2"
                                                         : "6") +
                          " "
                   << " -ar " + params.SampleRate + " "
                   << " -acodec ";
        }
        if (videoCodec != "No Video") {
            wanted << (width == 0 && height == 0 ? QStringLiteral(" scale=640:360")
                                                 : QStringLiteral(" scale=%1:%2").arg(width).arg(height));
            if (params.Format != "GIF") wanted << " -vcodec "; // a GIF leaves the encoder to the format
        }
        for (const QString& part : wanted)
            if (!args.contains(part)) fail("no '" + part.trimmed() + "' in " + args);
        // The builder writes a bitrate past its 16-bit guard as 200 kbps; no preset may reach it.
        if (videoCodec != "No Video" && args.contains(" -vb 200k ") && bitrate != "200")
            fail("the video bitrate falls into the 16-bit guard: " + args);
        for (const QRegularExpressionMatch& match : encoderOption.globalMatch(args)) {
            // The engine runs the retired libfaac name on the native AAC encoder.
            const QString name = match.captured(1) == "libfaac" ? "aac" : match.captured(1);
            if (!encoders.isEmpty() && !encoders.contains(name)) fail("encoder " + name + " is missing");
        }
    }
    EXPECT_TRUE(failures.isEmpty()) << failures.size() << " failures:\n" << failures.join('\n').toStdString();
}

// A frame size in a preset's name, as "SVCD NTSC (480 x 480)", is the size it applies and shows; a
// picture height, as "HD 720p", the height it applies; a rate, as "1080p 60 fps", the rate it shows.
TEST_F(ShippedCatalogue, ASizeInAPresetsNameIsTheSizeItApplies) {
    static const QRegularExpression sizeInName(QStringLiteral("(\\d+) x (\\d+)"));
    static const QRegularExpression heightInName(QStringLiteral("\\b(\\d{3,4})p\\b"));
    static const QRegularExpression rateInName(QStringLiteral("\\b\\d+ fps\\b"));
    FormatSetting settings(*catalogue);
    QStringList failures;
    for (qsizetype row = 1; row <= presets().rowCount(); ++row) {
        const QString name = preset(row, "Name");
        const QRegularExpressionMatch named = sizeInName.match(name);
        const QRegularExpressionMatch height = heightInName.match(name);
        const QRegularExpressionMatch rate = rateInName.match(name);
        if (!named.hasMatch() && !height.hasMatch() && !rate.hasMatch()) continue;
        settings.Preset_Apply(row);
        const QString applied =
            QStringLiteral("%1 x %2").arg(settings.widthValue()).arg(settings.heightValue());
        const QString shown = settings.Combo_OutputFile[List_FrameSize].selectedText();
        if (named.hasMatch() && (applied != named.captured(0) || shown != named.captured(0)))
            failures << name + ": applies " + applied + ", shows " + shown;
        if (height.hasMatch() && settings.heightValue() != height.captured(1).toInt())
            failures << name + ": applies " + applied;
        const QString shownRate = settings.Combo_OutputFile[List_FrameRate].selectedText();
        if (rate.hasMatch() && shownRate != rate.captured(0)) failures << name + ": shows " + shownRate;
    }
    EXPECT_TRUE(failures.isEmpty()) << failures.join('\n').toStdString();
}

// Every panel offers its groups and every maker its devices; the preset each button remembers before
// the user has chosen any opens a real preset, and after a change of maker every button remembers
// index 1, so every device group offers two presets.
TEST_F(ShippedCatalogue, PanelsOfferTheirGroupsAndEachOpensARealPreset) {
    FormatSetting settings(*catalogue);
    OutputBrowser browser(*catalogue, settings);
    const auto checkStrip = [&](int panel,
                                const std::array<std::int16_t, OutputBrowser::PresetIndexSize>& initial,
                                const QString& label, qsizetype least) {
        browser.PanelActive = panel;
        const ButtonStrip& strip = browser.strips.at(static_cast<size_t>(panel));
        EXPECT_GE(strip.buttons.size(), least) << label.toStdString();
        EXPECT_LE(strip.buttons.size(), OutputBrowser::PresetIndexSize) << label.toStdString();
        for (qsizetype button = 0;
             button < std::min<qsizetype>(strip.buttons.size(), OutputBrowser::PresetIndexSize); ++button) {
            browser.Group_Open(panel, button);
            const ValueList& list = catalogue->Cmd_OutputPreset;
            const std::string where = (label + " " + strip.buttons.at(button).caption).toStdString();
            EXPECT_EQ(list.selectedIndex(), initial.at(static_cast<size_t>(button))) << where;
            EXPECT_NE(list.selectedText(), "[Custom]") << where;
            EXPECT_EQ(settings.Txt_ID, list.selectedData()) << where;
        }
    };

    const struct {
        int panel;
        QString maker;
        std::array<std::int16_t, OutputBrowser::PresetIndexSize> initial;
        QStringList groups; // groups that must be there
        qsizetype least;    // and at least this many in all
    } panels[] = {{Panel_VideoFormats,
                   "VideoFormat",
                   browser.PresetIndexVideo,
                   {"MP4", "AVI", "WMV", "MKV", "MOV", "FLV", "MPEG-2", "3GP", "WebM", "GIF", "SWF"},
                   20},
                  {Panel_AudioFormats,
                   "AudioFormat",
                   browser.PresetIndexAudio,
                   {"MP3", "AAC", "M4A", "WAV", "WMA", "OGG", "FLAC"},
                   11},
                  {Panel_WebFormats, "WebFormat", browser.PresetIndexWeb, {}, 4},
                  {Panel_Devices, kMakers.first(), browser.PresetIndexDevice, {}, 2}};
    for (const auto& p : panels) {
        browser.Panel_BuildButtons(p.panel, p.maker);
        const QStringList shown = captions(browser, p.panel);
        for (const QString& group : p.groups)
            EXPECT_TRUE(shown.contains(group)) << group.toStdString();
        checkStrip(p.panel, p.initial, p.maker, p.least);
    }
    QStringList makers;
    for (const ValueListItem& item : browser.ListBox_MakerNames.items())
        makers << item.text;
    EXPECT_EQ(makers, kMakers);
    for (qsizetype maker = 1; maker < kMakers.size(); ++maker) {
        browser.makerChanged(maker);
        checkStrip(Panel_Devices, browser.PresetIndexDevice, kMakers.at(maker), 2);
    }
}
