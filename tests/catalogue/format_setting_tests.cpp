#include "CatalogueTestKit.h"
#include "FormatSetting.h"

#include <gtest/gtest.h>

using namespace morvane;
using namespace morvane::testkit;

namespace {

class FormatSettingTest : public ::testing::Test {
protected:
    void SetUp() override {
        addRows(
            catalogue.ReportControl_FormatMain, kFormatColumns,
            {"MP4//H.264//#//UseFrameLib//UseFPSLib//UseAspectRatioLib//mp4;m4v;//1920//1080//50000//#//#//#",
             "MP4//#//AAC//#//#//#//#//0//0//0//22050 Hz;44100 Hz;48000 Hz;//Mono;Stereo;//16 bit;",
             "MP4//#//MP3//#//#//#//#//0//0//0//44100 Hz;48000 Hz;//Stereo;//16 bit;",
             "MP3//No Video//#//-;//Original;//-;//mp3;//0//0//0//#//#//#",
             "MP3//#//MP3//#//#//#//#//0//0//0//8000 Hz;44100 Hz;//Mono;Stereo;//16 bit;",
             "GIF//Uncompressed//No Audio//UseFrameLib//10 fps;//Original;//gif;//800//600//0//#//#//#"});
        addRows(catalogue.ReportControl_PresetMain, kPresetColumns,
                {"1//MP4 HD//MP4//MP4//VideoFormat//Video//mp4.png//hd.png//No//H.264//AAC//1280//720//"
                 "30 fps//High//Smart Fit//mp4//16:9//44100 Hz//Stereo//16 bit//128 kbps",
                 "2//Phone//MP4//MP4//VideoFormat//Video//mp4.png//ph.png//No//H.264//AAC//#720//480//"
                 "25 fps//#Standard//1500//mp4//4:3//48000 Hz//Stereo//16 bit//160 kbps",
                 "3//MP3 128//MP3//MP3//AudioFormat//Audio//mp3.png//mp3.png//No//No Video//MP3//0//0//"
                 "Original//High//0//mp3//Original//44100 Hz//Stereo//16 bit//128 kbps",
                 "User-1//Mine//MP4//MP4//VideoFormat//Video//mp4.png//u.png//Yes//H.264//MP3//0//0//"
                 "Original//Standard//Smart Fit//m4v//Original//48000 Hz//Stereo//16 bit//192 kbps",
                 "5//GIF small//GIF//GIF//VideoFormat//Video//gif.png//gif.png//No//Uncompressed//No Audio//"
                 "320//240//10 fps//High//Smart Fit//gif//Original////////"});
        // The browser has opened the MP4 group.
        List_FillByGroup(catalogue.ReportControl_PresetMain, "VideoFormat", "MP4",
                         catalogue.Cmd_OutputPreset);
        catalogue.Cmd_OutputPreset.select(0);
        settings.PresetList_Fill("MP4", 0);
    }

    QString text(int list) const {
        return settings.Combo_OutputFile.at(static_cast<size_t>(list)).selectedText();
    }
    bool enabled(int list) const { return settings.Combo_OutputFile.at(static_cast<size_t>(list)).enabled; }
    QString preset(qsizetype row, const char* column) const {
        return Cell_Get(catalogue.ReportControl_PresetMain, row, QLatin1String(column));
    }
    qsizetype rows() const { return catalogue.ReportControl_PresetMain.rowCount(); }

    Catalogue catalogue;
    FormatSetting settings{catalogue};
    MessageLog log;
};

} // namespace

TEST_F(FormatSettingTest, ApplyingAPresetSetsLimitsAndEstimateAndWritesNothingBack) {
    settings.PresetList_Select(0);
    // The shipped suite checks every list's value for every preset; here what follows from them.
    EXPECT_FALSE(settings.Txt_OutputVideoWidth.visible); // "1280 x 720" is offered
    EXPECT_EQ(settings.Radio_Quality, Quality_High);
    EXPECT_TRUE(settings.qualityEnabled);
    EXPECT_EQ(settings.Txt_OutputVideoBitrate.text, "7741");  // 1280 x 720 x 30 x 4 x 0.07 / 1000
    EXPECT_EQ(settings.Txt_OutputVideoBitrate.minimum, 1290); // 1280 x 720 x 20 x 1 x 0.07 / 1000
    EXPECT_EQ(settings.Txt_OutputVideoBitrate.maximum, 50000);
    EXPECT_EQ(settings.Txt_OutputVideoWidth.maximum, 1920);
    EXPECT_EQ(settings.Combo_OutputFile[List_AudioBitrate].count(), 14);
    EXPECT_EQ(settings.Txt_Keyword, "MP4");
    EXPECT_FALSE(settings.deleteEnabled); // a built-in preset
    // Applying changes nothing in the row.
    EXPECT_EQ(preset(1, "VideoBitrate"), "Smart Fit");
    EXPECT_FALSE(settings.PresetList.at(0).changed);
}

TEST_F(FormatSettingTest, LockMarksDisableTheirControlsAndSurviveStores) {
    settings.PresetList_Select(1); // "Phone": width and quality locked
    EXPECT_FALSE(settings.Txt_OutputVideoWidth.enabled);
    EXPECT_TRUE(settings.Txt_OutputVideoHeight.enabled);
    EXPECT_FALSE(enabled(List_FrameSize)); // follows the width box
    EXPECT_TRUE(enabled(List_FrameRate));
    EXPECT_EQ(settings.Radio_Quality, Quality_Standard);
    EXPECT_FALSE(settings.qualityEnabled);

    // "Custom" shows the boxes, and the locked one stays disabled.
    settings.selectListValue(List_FrameSize, "Custom", 0);
    EXPECT_TRUE(settings.Txt_OutputVideoWidth.visible);
    EXPECT_FALSE(settings.Txt_OutputVideoWidth.enabled);

    // A live change stores the fields, and the locked cell keeps its mark.
    settings.selectListValue(List_FrameRate, "24 fps", 0);
    EXPECT_EQ(preset(2, "FPS"), "24 fps");
    EXPECT_EQ(preset(2, "Width"), "#720");
    EXPECT_EQ(preset(2, "QualityLevel"), "#Standard");
    EXPECT_TRUE(settings.PresetList.at(1).changed);
    settings.setQuality(Quality_High); // the radios are locked
    EXPECT_EQ(settings.Radio_Quality, Quality_Standard);
}

TEST_F(FormatSettingTest, LiveChangesRecomputeAndStore) {
    settings.PresetList_Select(0);
    const qsizetype small = settings.Combo_OutputFile[List_FrameSize].indexOf("640 x 360");
    ASSERT_GE(small, 0);
    settings.selectListIndex(List_FrameSize, small);
    EXPECT_EQ(settings.Txt_OutputVideoWidth.text, "640");
    EXPECT_EQ(settings.Txt_OutputVideoHeight.text, "360");
    EXPECT_EQ(text(List_VideoBitrate), "Smart Fit");
    EXPECT_EQ(settings.Txt_OutputVideoBitrate.text, "1935");
    EXPECT_EQ(preset(1, "Width"), "640");
    EXPECT_EQ(preset(1, "VideoBitrate"), "Smart Fit");
    EXPECT_TRUE(settings.PresetList.at(0).changed);

    settings.setQuality(Quality_SmallSize); // already "Smart Fit": the estimate still follows
    EXPECT_EQ(settings.Txt_OutputVideoBitrate.text, "484");
    EXPECT_EQ(preset(1, "QualityLevel"), "SmallSize");

    // A fixed rate that the new size no longer offers falls back to "Smart Fit".
    settings.selectListValue(List_VideoBitrate, "3000 kbps", 0);
    EXPECT_EQ(settings.Txt_OutputVideoBitrate.text, "3000");
    EXPECT_EQ(preset(1, "VideoBitrate"), "3000");
    settings.selectListValue(List_FrameSize, "160 x 120", 0);
    EXPECT_EQ(text(List_VideoBitrate), "Smart Fit");

    // Boxes take digits only and never pass the limit; leaving them recomputes "Smart Fit".
    settings.selectListValue(List_FrameSize, "Custom", 0);
    settings.boxChanged(settings.Txt_OutputVideoWidth, "5x000");
    EXPECT_EQ(settings.Txt_OutputVideoWidth.text, "1920");
    settings.boxChanged(settings.Txt_OutputVideoHeight, "1080");
    settings.boxLeft(settings.Txt_OutputVideoHeight);
    EXPECT_EQ(settings.Txt_OutputVideoBitrate.text, "4355"); // 1920 x 1080 x 30 x 1 x 0.07 / 1000
    settings.spinPressed(settings.Txt_OutputVideoHeight, 1);
    EXPECT_EQ(settings.Txt_OutputVideoHeight.text, "1080");

    // Another audio codec keeps the rate, layout and size, and picks the row's bitrate again.
    settings.selectListValue(List_AudioCodec, "MP3", 0);
    EXPECT_EQ(text(List_SampleRate), "44100 Hz");
    EXPECT_EQ(text(List_Channels), "Stereo");
    EXPECT_EQ(text(List_AudioBitrate), "128 kbps");
    EXPECT_EQ(settings.Combo_OutputFile[List_AudioBitrate].items().first().text, "96 kbps");
    EXPECT_EQ(preset(1, "AudioCodec"), "MP3");
}

TEST_F(FormatSettingTest, NoVideoOrNoAudioDisablesThatSide) {
    const struct {
        qsizetype row;
        int codecList;
        const char* codec;
        QList<int> off;
        int on;
    } cases[] = {
        {3,
         List_VideoCodec,
         "No Video",
         {List_FrameSize, List_FrameRate, List_Extension, List_Aspect, List_VideoBitrate},
         List_SampleRate},
        // GIF also has no bitrate limit, so no video bitrate to choose either.
        {5,
         List_AudioCodec,
         "No Audio",
         {List_SampleRate, List_AudioBitrate, List_Channels, List_SampleSize},
         List_FrameSize},
    };
    for (const auto& c : cases) {
        settings.Preset_Apply(c.row);
        EXPECT_EQ(text(c.codecList), c.codec);
        for (const int list : c.off)
            EXPECT_FALSE(enabled(list)) << c.row << " " << list;
        EXPECT_TRUE(enabled(c.on)) << c.row;
        EXPECT_EQ(text(List_VideoBitrate), "-") << c.row;
        EXPECT_EQ(settings.Combo_OutputFile[List_VideoBitrate].count(), 1) << c.row;
        EXPECT_FALSE(settings.Txt_OutputVideoBitrate.visible) << c.row;
    }
}

// The window suite drives rename, delete and the questions' texts; here the rows that a new preset
// writes or replaces.
TEST_F(FormatSettingTest, NewPresetsCarryTheValuesWithoutLocks) {
    QString reply = "Mine 2";
    settings.askPresetName = [&](const QString&, const QString&) { return reply; };
    settings.PresetList_Select(1);
    settings.newPreset();
    ASSERT_EQ(rows(), 6);
    EXPECT_TRUE(preset(6, "ID").startsWith("User-"));
    EXPECT_EQ(preset(6, "Name"), "Mine 2");
    EXPECT_EQ(preset(6, "Removable"), "Yes");
    EXPECT_EQ(preset(6, "Width"), "720");
    EXPECT_EQ(preset(6, "QualityLevel"), "Standard");
    EXPECT_EQ(preset(6, "VideoBitrate"), "1500");
    EXPECT_EQ(settings.PresetList.at(settings.presetListSelected).name, "Mine 2");
    EXPECT_TRUE(settings.deleteEnabled);
    EXPECT_TRUE(settings.qualityEnabled);
    EXPECT_EQ(settings.lbl_TotalPreset, "4 presets");

    // A built-in name is no conflict; a user preset's name asks, No keeps everything, Yes replaces
    // the row under its ID; an empty answer cancels.
    const struct {
        const char* name;
        int answer;
        qsizetype rowsAfter;
        qsizetype questions;
    } cases[] = {{"MP4 HD", ID_YES, 7, 0}, {"Mine", ID_NO, 7, 1}, {"Mine", ID_YES, 7, 2}, {"", ID_YES, 7, 2}};
    for (const auto& c : cases) {
        reply = c.name;
        log.answer = c.answer;
        settings.newPreset();
        EXPECT_EQ(rows(), c.rowsAfter) << c.name << c.answer;
        EXPECT_EQ(log.lines.size(), c.questions) << c.name << c.answer;
    }
    EXPECT_EQ(preset(4, "ID"), "User-1");
    EXPECT_EQ(preset(4, "AudioCodec"), "AAC");
}

// The shared size library offers each codec only the sizes its bounds hold.
TEST_F(FormatSettingTest, TheSizeLibraryFollowsTheCodecsBounds) {
    addRows(
        catalogue.ReportControl_FormatMain, {},
        {"MP4//H.265/HEVC//#//UseFrameLib//UseFPSLib//UseAspectRatioLib//mp4;//3840//2160//30000//#//#//#"});
    settings.PresetList_Select(0);
    const struct {
        const char *codec, *size;
        bool offered;
    } cases[] = {
        {"H.264", "1080 x 1920", false}, {"H.264", "Custom", true}, {"H.265/HEVC", "1080 x 1920", true}};
    for (const auto& c : cases) {
        settings.selectListValue(List_VideoCodec, c.codec, 0);
        EXPECT_EQ(settings.Combo_OutputFile[List_FrameSize].indexOf(c.size) >= 0, c.offered)
            << c.codec << " " << c.size;
    }
}

TEST_F(FormatSettingTest, AnotherVideoCodecKeepsTheRowsOtherValues) {
    addRows(catalogue.ReportControl_FormatMain, {},
            {"MP4//MPEG4 (DivX/Xvid compatible)//#//UseFrameLib//UseFPSLib//UseAspectRatioLib//mp4;//1280//"
             "720//8000//#//#//#"});
    settings.PresetList_Select(0);
    for (int round = 0; round < 3; ++round) {
        settings.selectListValue(List_VideoCodec, round % 2 == 0 ? "MPEG4 (DivX/Xvid compatible)" : "H.264",
                                 0);
        settings.selectListValue(List_AudioCodec, round % 2 == 0 ? "MP3" : "AAC", 0);
        EXPECT_EQ(text(List_AudioBitrate), "128 kbps") << round;
        EXPECT_EQ(preset(1, "AudioBitrate"), "128 kbps") << round;
        EXPECT_EQ(text(List_FrameRate), "30 fps") << round;
    }
    EXPECT_EQ(preset(1, "VideoCodec"), "MPEG4 (DivX/Xvid compatible)");
    EXPECT_EQ(preset(1, "FileExtention"), "mp4");
}

// The floor of the bitrate spinner belongs to the size being applied, never to the preset before it.
TEST_F(FormatSettingTest, TheBitrateFloorFollowsTheAppliedSize) {
    const struct {
        qsizetype before;
        qsizetype row;
        int floor;
    } cases[] = {{1, 2, 484}, {2, 1, 1290}, {1, 4, 564}}; // 720 x 480, 1280 x 720, "Original"
    for (const auto& c : cases) {
        settings.Preset_Apply(c.before);
        settings.Preset_Apply(c.row);
        EXPECT_EQ(settings.Txt_OutputVideoBitrate.minimum, c.floor) << c.before << " then " << c.row;
    }
}

// A number typed under "Custom" comes back as "Custom" with that number; a ladder value as itself.
TEST_F(FormatSettingTest, AStoredBitrateComesBackAsItWasChosen) {
    const struct {
        const char* typed;
        const char* shown;
    } cases[] = {{"2500", "Custom"}, {"3000", "3000 kbps"}};
    for (const auto& c : cases) {
        settings.PresetList_Select(0);
        settings.selectListValue(List_VideoBitrate, "Custom", 0);
        settings.boxChanged(settings.Txt_OutputVideoBitrate, c.typed);
        settings.boxLeft(settings.Txt_OutputVideoBitrate);
        ASSERT_EQ(preset(1, "VideoBitrate"), c.typed);
        settings.PresetList_Select(1);
        settings.PresetList_Select(0);
        EXPECT_EQ(text(List_VideoBitrate), c.shown) << c.typed;
        EXPECT_EQ(settings.Txt_OutputVideoBitrate.text, c.typed);
    }
}

// A deleted preset leaves the browser's list too; the choice there moves on and is applied.
TEST_F(FormatSettingTest, DeletingAPresetTakesItOutOfTheMainList) {
    catalogue.Cmd_OutputPreset.select(2); // "Mine"
    settings.PresetList_Fill("MP4", 0);
    settings.PresetList_Select(2);
    settings.deletePreset();
    QStringList names;
    for (const ValueListItem& item : catalogue.Cmd_OutputPreset.items())
        names << item.text;
    EXPECT_EQ(names, QStringList({"MP4 HD", "Phone"}));
    EXPECT_EQ(catalogue.Cmd_OutputPreset.selectedText(), "Phone");
    EXPECT_EQ(settings.PresetList.at(settings.presetListSelected).name, "Phone");
    EXPECT_EQ(settings.Txt_ID, "2");
}
