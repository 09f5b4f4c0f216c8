#include "Encrypt_Mod.h"
#include "Globals.h"
#include "OutputBrowser.h"
#include "Preset_Mods.h"
#include "Table_Files.h"
#include "mMain.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace morvane;

namespace {

const QStringList kPresetColumns = {
    "ID",         "Name",     "Format",       "Keyword",      "Maker",         "Type",
    "Thumbnail",  "Image",    "Removable",    "VideoCodec",   "AudioCodec",    "Width",
    "Height",     "FPS",      "QualityLevel", "VideoBitrate", "FileExtention", "AspectRatio",
    "SampleRate", "Channels", "AudioSize",    "AudioBitrate"};

QStringList presetRow(const QString& id, const QString& name, const QString& keyword, const QString& maker,
                      const QString& removable = "No") {
    return {id,        name,        "MP4",   keyword, maker,      "Video",  keyword.toLower() + ".png",
            "",        removable,   "H.264", "AAC",   "640",      "360",    "25 fps",
            "High",    "Smart Fit", "mp4",   "16:9",  "44100 Hz", "Stereo", "16 bit",
            "128 kbps"};
}

void addPresets(CatalogueTable& presets, const QList<QStringList>& rows) {
    if (presets.columnCount() == 0)
        for (const QString& column : kPresetColumns)
            presets.addColumn(column, 200);
    for (const QStringList& row : rows) {
        const qsizetype added = presets.addRecord();
        for (qsizetype i = 0; i < row.size(); ++i)
            presets.setCell(added, i, row.at(i));
    }
}

class BrowserTest : public ::testing::Test {
protected:
    void SetUp() override {
        Catalogue_Passphrase = QString::fromLatin1(Catalogue_PassphraseText);
        Folder_UserFavorite = dir.filePath("favorites/");
        File_UserFavorite = "favorites.dat";
        FAVORITE_MAX = 3;
        CatalogueTable& formats = catalogue.ReportControl_FormatMain;
        for (const char* column :
             {"Format", "VideoCodec", "AudioCodec", "FrameSize", "FPS", "AspectRatio", "FileExtention",
              "MaxWidth", "MaxHeight", "MaxVideoBitrate", "SampleRate", "Channels", "AudioSize"})
            formats.addColumn(QLatin1String(column), 200);
        Row_AddFromText(
            formats,
            "MP4//H.264//#//UseFrameLib//UseFPSLib//UseAspectRatioLib//mp4;//1920//1080//50000//#//#//#", 0,
            true, 0);
        Row_AddFromText(formats, "MP4//#//AAC//#//#//#//#//0//0//0//44100 Hz;//Stereo;//16 bit;", 0, true, 0);

        addPresets(catalogue.ReportControl_PresetMain,
                   {
                       presetRow("v1", "MP4 SD", "MP4", "VideoFormat"),
                       presetRow("v2", "MP4 HD", "MP4", "VideoFormat"),
                       presetRow("v3", "[%Custom%]", "MP4", "VideoFormat"),
                       presetRow("v4", "AVI SD", "AVI", "VideoFormat"),
                       presetRow("v5", "MP4 Phone", "mp4", "VideoFormat"), // same group, other case
                       presetRow("v6", "GIF small", "GIF", "VideoFormat"),
                       presetRow("v7", "gif lower", "gif", "VideoFormat"),
                       presetRow("v8", "Long one", "Windows Media Video", "VideoFormat"),
                       presetRow("d1", "iPhone 15", "iPhone", "Apple"),
                       presetRow("d2", "iPhone 14", "iPhone", "Apple"),
                       presetRow("d3", "iPad", "iPad", "Apple"),
                       presetRow("d4", "Galaxy S24", "Galaxy", "Samsung"),
                       presetRow("d5", "GIF on phone", "GIF", "Samsung"),
                       presetRow("a1", "MP3 128", "MP3", "AudioFormat"),
                       presetRow("u1", "My own", "MP4", "VideoFormat", "Yes"),
                   });
        for (int panel : {Panel_VideoFormats, Panel_AudioFormats})
            browser.Panel_BuildButtons(panel, panel == Panel_VideoFormats ? "VideoFormat" : "AudioFormat");
        browser.Panel_BuildButtons(Panel_Devices, "Apple");
        Set_MessageHandler([this](const QString& text, int, const QString&, const QString&) {
            messages << text;
            return ID_YES;
        });
    }
    void TearDown() override { Set_MessageHandler(nullptr); }

    QStringList captions(int panel) const {
        QStringList out;
        for (const StripButton& button : browser.strips.at(static_cast<size_t>(panel)).buttons)
            out << button.caption;
        return out;
    }
    QStringList listTexts() const {
        QStringList out;
        for (const ValueListItem& item : catalogue.Cmd_OutputPreset.items())
            out << item.text;
        return out;
    }

    QTemporaryDir dir;
    Catalogue catalogue;
    FormatSetting settings{catalogue};
    OutputBrowser browser{catalogue, settings};
    QStringList messages;
};

} // namespace

TEST_F(BrowserTest, StripsFollowTheTableOrderOncePerKeyword) {
    EXPECT_EQ(captions(Panel_VideoFormats), QStringList({"MP4", "AVI", "GIF", "Windows Media Video"}));
    const ButtonStrip& strip = browser.strips[Panel_VideoFormats];
    EXPECT_EQ(strip.buttons.at(0).fontSize, 10);
    EXPECT_EQ(strip.buttons.at(3).fontSize, 8); // 13 characters or more
    EXPECT_EQ(strip.buttons.at(2).imageNumber, 1002);
    EXPECT_EQ(strip.buttons.at(0).picture, "mp4.png");
    EXPECT_EQ(strip.totalWidth, 4 * (OutputBrowser::ButtonWidth + 13));
    EXPECT_EQ(captions(Panel_AudioFormats), QStringList({"MP3"}));
    EXPECT_EQ(browser.strips[Panel_AudioFormats].buttons.at(0).imageNumber, 2000);
    EXPECT_EQ(captions(Panel_Devices), QStringList({"iPhone", "iPad"}));
    EXPECT_EQ(browser.ListBox_MakerNames.count(), 13);
    EXPECT_EQ(browser.ListBox_MakerNames.items().at(11).text, "Game");
    EXPECT_EQ(browser.PresetIndexVideo[3], 4);
    EXPECT_EQ(browser.PresetIndexAudio[4], 0);
    EXPECT_EQ(browser.PresetIndexWeb[3], 2);
    EXPECT_EQ(browser.PresetIndexWeb[4], 0);
}

TEST_F(BrowserTest, GroupsOpenWithTheirRememberedPreset) {
    browser.Panel_Show(Panel_VideoFormats);
    EXPECT_EQ(listTexts(),
              QStringList({"MP4 SD", "MP4 HD", "[Custom]", "My own"})); // "mp4" is another keyword
    EXPECT_EQ(catalogue.Cmd_OutputPreset.selectedText(), "MP4 HD");     // remembered index 1
    EXPECT_EQ(settings.Txt_Keyword, "MP4");
    EXPECT_EQ(settings.PresetList.size(), 4);
    EXPECT_EQ(settings.windowTitle, "MP4 Presets - Setting");
    EXPECT_EQ(browser.LastCaption, "MP4");

    browser.presetChanged(3);
    EXPECT_EQ(browser.PresetIndexVideo[0], 3);
    browser.Group_Open(Panel_VideoFormats, 0); // already checked: nothing at all
    EXPECT_EQ(catalogue.Cmd_OutputPreset.selectedText(), "My own");

    browser.Group_Open(Panel_VideoFormats, 1);
    EXPECT_EQ(listTexts(), QStringList({"AVI SD"}));
    EXPECT_EQ(catalogue.Cmd_OutputPreset.selectedIndex(), -1); // remembered 1 lies beyond the list
    EXPECT_EQ(browser.ButtonVideo, 1);
    browser.Panel_Show(Panel_AudioFormats);
    browser.Panel_Show(Panel_VideoFormats);
    EXPECT_EQ(browser.strips[Panel_VideoFormats].checkedButton(), 1);
    browser.Group_Open(Panel_VideoFormats, 0);
    EXPECT_EQ(catalogue.Cmd_OutputPreset.selectedText(), "My own");

    // A locked browser (a conversion runs) does not change panels.
    catalogue.Cmd_OutputPreset.enabled = false;
    browser.Panel_Show(Panel_AudioFormats);
    EXPECT_EQ(browser.PanelActive, Panel_VideoFormats);
}

TEST_F(BrowserTest, MergeCheckBoxRuleByPanelAndCaption) {
    browser.Panel_Show(Panel_VideoFormats);
    browser.mergeChecked = true;
    browser.Group_Open(Panel_VideoFormats, 2); // "GIF"
    EXPECT_FALSE(browser.mergeVisible);
    EXPECT_FALSE(browser.mergeChecked);
    browser.Group_Open(Panel_VideoFormats, 0);
    EXPECT_TRUE(browser.mergeVisible);

    // "gif" is another caption; the rule compares exactly.
    browser.Panel_BuildButtons(Panel_VideoFormats, "VideoFormat");
    catalogue.ReportControl_PresetMain.setCell(6, 3, "gif ");
    browser.mergeChecked = true;
    browser.Preset_Select("gif lower", "VideoFormat", "GIF");
    EXPECT_FALSE(browser.mergeVisible);

    // Devices never hide it, even for "GIF".
    browser.mergeChecked = true;
    browser.makerChanged(1); // Samsung
    EXPECT_EQ(captions(Panel_Devices), QStringList({"Galaxy", "GIF"}));
    browser.Group_Open(Panel_Devices, 1);
    EXPECT_TRUE(browser.mergeChecked);
}

TEST_F(BrowserTest, MakerChangeResetsTheRememberedIndexes) {
    browser.Panel_Show(Panel_Devices);
    EXPECT_EQ(catalogue.Cmd_OutputPreset.selectedText(), "iPhone 14");
    browser.presetChanged(0);
    EXPECT_EQ(browser.PresetIndexDevice[0], 0);
    browser.makerChanged(1);
    EXPECT_EQ(browser.MakerIndex, 1);
    EXPECT_EQ(browser.PresetIndexDevice[5], 1);
    EXPECT_EQ(listTexts(), QStringList({"Galaxy S24"}));
    EXPECT_EQ(catalogue.Cmd_OutputPreset.selectedIndex(), -1); // index 1 of a one-item list
    browser.makerChanged(0);
    EXPECT_EQ(catalogue.Cmd_OutputPreset.selectedText(), "iPhone 14");
}

TEST_F(BrowserTest, OnlyThirtyOneButtonsRememberTheirPreset) {
    for (int i = 0; i < 32; ++i)
        addPresets(catalogue.ReportControl_PresetMain,
                   {presetRow(QString("w%1").arg(i), QString("Site %1").arg(i), QString("Site%1").arg(i),
                              "WebFormat")});
    browser.Panel_BuildButtons(Panel_WebFormats, "WebFormat");
    ASSERT_EQ(browser.strips[Panel_WebFormats].buttons.size(), 32);
    browser.PanelActive = Panel_WebFormats;
    browser.Group_Open(Panel_WebFormats, 31);
    EXPECT_EQ(listTexts(), QStringList({"Site 31"}));
    EXPECT_EQ(browser.ButtonWeb, 31);
    EXPECT_EQ(catalogue.Cmd_OutputPreset.selectedIndex(), -1);
    browser.presetChanged(0); // applied, but nothing to remember it in
    EXPECT_EQ(catalogue.Cmd_OutputPreset.selectedText(), "Site 31");
}

TEST_F(BrowserTest, PresetSelectBringsTheBrowserThere) {
    browser.Panel_Show(Panel_VideoFormats);
    EXPECT_TRUE(browser.Preset_Select("MP3 128", "AudioFormat", "MP3"));
    EXPECT_EQ(browser.PanelActive, Panel_AudioFormats);
    EXPECT_EQ(catalogue.Cmd_OutputPreset.selectedText(), "MP3 128");
    EXPECT_EQ(settings.Txt_Maker, "AudioFormat");

    EXPECT_TRUE(browser.Preset_Select("Galaxy S24", "Samsung", "Galaxy"));
    EXPECT_EQ(browser.PanelActive, Panel_Devices);
    EXPECT_EQ(browser.ListBox_MakerNames.selectedText(), "Samsung");
    EXPECT_EQ(catalogue.Cmd_OutputPreset.selectedText(), "Galaxy S24");
    EXPECT_EQ(browser.PresetIndexDevice[0], 0);
    EXPECT_TRUE(messages.isEmpty());

    EXPECT_FALSE(browser.Preset_Select("Nothing", "VideoFormat", "MP4"));
    EXPECT_FALSE(browser.Preset_Select("Lumia", "Nokia phones", "Lumia"));
    EXPECT_EQ(messages,
              QStringList({"There are no results to display!", "There are no results to display!"}));
}

TEST_F(BrowserTest, FavoritesToggleSaveAndRefresh) {
    browser.Panel_Show(Panel_Favorites);
    EXPECT_TRUE(browser.favoritesMessageVisible);
    EXPECT_FALSE(browser.presetListVisible);
    EXPECT_FALSE(browser.convertEnabled);

    browser.Panel_Show(Panel_VideoFormats); // "MP4 HD"
    browser.favoriteToggle();
    EXPECT_TRUE(settings.favoriteInTable);
    EXPECT_EQ(settings.favoriteToolTip, "Remove from favorites tab");
    EXPECT_TRUE(QFileInfo::exists(Folder_UserFavorite + File_UserFavorite));
    EXPECT_EQ(catalogue.ReportControl_FavoritesMain.columnCount(), kPresetColumns.size());
    const CatalogueTable& presets = catalogue.ReportControl_PresetMain;
    for (const char* name : {"iPhone 15", "MP3 128", "My own"}) {
        const qsizetype row = Row_Find(presets, "Name", QLatin1String(name));
        ASSERT_TRUE(
            browser.Preset_Select(name, Cell_Get(presets, row, "Maker"), Cell_Get(presets, row, "Keyword")));
        browser.favoriteToggle();
    }
    // At the limit the oldest gives way; newest first.
    const CatalogueTable& favorites = catalogue.ReportControl_FavoritesMain;
    ASSERT_EQ(favorites.rowCount(), 3);
    EXPECT_EQ(Cell_Get(favorites, 1, "Name"), "My own");
    EXPECT_EQ(Cell_Get(favorites, 3, "Name"), "iPhone 15");
    EXPECT_EQ(Row_Find(favorites, "Name", "MP4 HD"), 0);

    // The saved file loads back to the same rows.
    CatalogueTable saved;
    Table_LoadFile(saved, Folder_UserFavorite + File_UserFavorite, TableLoad_Replace, true);
    EXPECT_EQ(saved.records(), favorites.records());

    // The strip: one button per keyword, with the maker in its tag.
    EXPECT_EQ(captions(Panel_Favorites), QStringList({"MP4", "MP3", "iPhone"}));
    EXPECT_EQ(browser.strips[Panel_Favorites].buttons.at(2).maker, "Apple");
    EXPECT_EQ(browser.strips[Panel_Favorites].buttons.at(1).imageNumber, 5001);
    browser.Panel_Show(Panel_Favorites);
    EXPECT_FALSE(browser.favoritesMessageVisible);
    // The favorites panel offers the group's favorites only.
    EXPECT_EQ(listTexts(), QStringList({"My own"}));
    EXPECT_EQ(catalogue.Cmd_OutputPreset.selectedIndex(), 0);

    // A favorite whose preset is deleted goes at the next refresh.
    settings.PresetList_Fill("MP4", Panel_VideoFormats);
    settings.PresetList_Select(3);
    settings.deletePreset();
    EXPECT_EQ(Row_Find(favorites, "ID", "u1"), 0);
    EXPECT_EQ(favorites.rowCount(), 2);

    // Toggling a favorite off.
    ASSERT_TRUE(browser.Preset_Select("MP3 128", "AudioFormat", "MP3"));
    browser.favoriteToggle();
    EXPECT_EQ(settings.favoriteToolTip, "Add to favorites tab");
    EXPECT_EQ(favorites.rowCount(), 1);
}

TEST(PresetSearch, FillsLiveAndSkipsPlaceholders) {
    CatalogueTable presets;
    addPresets(presets, {presetRow("1", "MP4 HD", "MP4", "VideoFormat"),
                         presetRow("2", "[%Custom%]", "MP4", "VideoFormat"),
                         presetRow("3", "iPhone", "Phones", "Apple"),
                         presetRow("4", "Mine", "MP4", "VideoFormat", "Yes")});
    CatalogueTable view;
    Search_Fill(presets, "videoformat", view);
    ASSERT_EQ(view.rowCount(), 2);
    EXPECT_EQ(view.records().at(0), QStringList({"MP4 HD", "VideoFormat", "MP4"}));
    EXPECT_EQ(view.records().at(1).at(0), "Mine");
    EXPECT_EQ(view.selectedRow(), 0);
    Search_Fill(presets, "neph", view); // across the seam of Name and Keyword: "iPhone" + "Phones"
    EXPECT_EQ(view.rowCount(), 1);
    Search_Fill(presets, "   ", view);
    EXPECT_EQ(view.rowCount(), 0);
    Search_Fill(presets, " hd", view); // the query itself is not trimmed
    EXPECT_EQ(view.rowCount(), 1);
    for (const auto& [count, text] : {std::pair{1, "1 preset"}, {0, "0 presets"}, {7, "7 presets"}})
        EXPECT_EQ(Search_CountText(count), text);
}

TEST_F(BrowserTest, ASearchForADeviceLeavesTheOpenPanelsMemoryAlone) {
    browser.Panel_Show(Panel_VideoFormats);
    browser.presetChanged(0);
    ASSERT_EQ(browser.PresetIndexVideo[0], 0);
    ASSERT_TRUE(browser.Preset_Select("Galaxy S24", "Samsung", "Galaxy"));
    EXPECT_EQ(browser.PresetIndexVideo[0], 0);
    browser.Panel_Show(Panel_VideoFormats);
    EXPECT_EQ(catalogue.Cmd_OutputPreset.selectedText(), "MP4 SD");
}
