#include "CatalogueTestKit.h"
#include "OutputBrowser.h"
#include "Table_Files.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace morvane;
using namespace morvane::testkit;

namespace {

QString presetRow(const QString& id, const QString& name, const QString& keyword, const QString& maker,
                  const QString& removable = "No") {
    return QStringList{
        id,        name,        "MP4",   keyword, maker,      "Video",  keyword.toLower() + ".png",
        "",        removable,   "H.264", "AAC",   "640",      "360",    "25 fps",
        "High",    "Smart Fit", "mp4",   "16:9",  "44100 Hz", "Stereo", "16 bit",
        "128 kbps"}
        .join("//");
}

class BrowserTest : public ::testing::Test {
protected:
    void SetUp() override {
        pointFolders(dir.path());
        FAVORITE_MAX = 3;
        addRows(catalogue.ReportControl_FormatMain, kFormatColumns,
                {"MP4//H.264//#//UseFrameLib//UseFPSLib//UseAspectRatioLib//mp4;//1920//1080//50000//#//#//#",
                 "MP4//#//AAC//#//#//#//#//0//0//0//44100 Hz;//Stereo;//16 bit;"});
        addRows(catalogue.ReportControl_PresetMain, kPresetColumns,
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
        browser.Panel_BuildButtons(Panel_VideoFormats, "VideoFormat");
        browser.Panel_BuildButtons(Panel_AudioFormats, "AudioFormat");
        browser.Panel_BuildButtons(Panel_Devices, "Apple");
    }

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
    QString selected() const { return catalogue.Cmd_OutputPreset.selectedText(); }

    QTemporaryDir dir;
    MessageLog log;
    Catalogue catalogue;
    FormatSetting settings{catalogue};
    OutputBrowser browser{catalogue, settings};
};

} // namespace

TEST_F(BrowserTest, StripsFollowTheTableOrderOncePerKeyword) {
    EXPECT_EQ(captions(Panel_VideoFormats), QStringList({"MP4", "AVI", "GIF", "Windows Media Video"}));
    const ButtonStrip& strip = browser.strips[Panel_VideoFormats];
    EXPECT_EQ(strip.buttons.at(0).fontSize, 10);
    EXPECT_EQ(strip.buttons.at(3).fontSize, 8); // 13 characters or more
    EXPECT_EQ(strip.buttons.at(2).imageNumber, 1002);
    EXPECT_EQ(strip.buttons.at(0).picture, "mp4.png");
    EXPECT_EQ(captions(Panel_AudioFormats), QStringList({"MP3"}));
    EXPECT_EQ(browser.strips[Panel_AudioFormats].buttons.at(0).imageNumber, 2000);
    EXPECT_EQ(captions(Panel_Devices), QStringList({"iPhone", "iPad"}));
    // The presets a button opens with before the user picks any.
    EXPECT_EQ(browser.PresetIndexVideo[3], 4);
    EXPECT_EQ(browser.PresetIndexAudio[4], 0);
    EXPECT_EQ(browser.PresetIndexWeb[3], 2);
    EXPECT_EQ(browser.PresetIndexWeb[4], 0);
}

TEST_F(BrowserTest, GroupsOpenWithTheirRememberedPreset) {
    browser.Panel_Show(Panel_VideoFormats);
    EXPECT_EQ(listTexts(),
              QStringList({"MP4 SD", "MP4 HD", "[Custom]", "My own"})); // "mp4" is another keyword
    EXPECT_EQ(selected(), "MP4 HD");                                    // remembered index 1
    EXPECT_EQ(settings.Txt_Keyword, "MP4");
    EXPECT_EQ(settings.PresetList.size(), 4);
    EXPECT_EQ(settings.windowTitle, "MP4 Presets - Setting");

    browser.presetChanged(3);
    browser.Group_Open(Panel_VideoFormats, 0); // already checked: nothing at all
    EXPECT_EQ(selected(), "My own");

    browser.Group_Open(Panel_VideoFormats, 1);
    EXPECT_EQ(listTexts(), QStringList({"AVI SD"}));
    EXPECT_EQ(catalogue.Cmd_OutputPreset.selectedIndex(), -1); // remembered 1 lies beyond the list
    browser.Panel_Show(Panel_AudioFormats);
    browser.Panel_Show(Panel_VideoFormats);
    EXPECT_EQ(browser.strips[Panel_VideoFormats].checkedButton(), 1);
    browser.Group_Open(Panel_VideoFormats, 0);
    EXPECT_EQ(selected(), "My own");

    // A change of maker makes every device button remember index 1 again.
    browser.Panel_Show(Panel_Devices);
    EXPECT_EQ(selected(), "iPhone 14");
    browser.presetChanged(0);
    browser.makerChanged(1);
    EXPECT_EQ(listTexts(), QStringList({"Galaxy S24"}));
    EXPECT_EQ(catalogue.Cmd_OutputPreset.selectedIndex(), -1); // index 1 of a one-item list
    browser.makerChanged(0);
    EXPECT_EQ(selected(), "iPhone 14");

    // A locked browser (a conversion runs) does not change panels.
    catalogue.Cmd_OutputPreset.enabled = false;
    browser.Panel_Show(Panel_AudioFormats);
    EXPECT_EQ(browser.PanelActive, Panel_Devices);
}

// A preset picked in the settings and kept with OK is the one its button opens with later.
TEST_F(BrowserTest, APresetKeptInTheSettingsIsRememberedForItsButton) {
    browser.Panel_Show(Panel_VideoFormats); // "MP4 HD"
    settings.PresetList_Select(3);          // "My own"
    settings.Cmd_Panel(1);
    browser.Group_Open(Panel_VideoFormats, 1);
    browser.Group_Open(Panel_VideoFormats, 0);
    EXPECT_EQ(selected(), "My own");
    EXPECT_EQ(settings.Txt_ID, "u1");
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

TEST_F(BrowserTest, OnlyThirtyOneButtonsRememberTheirPreset) {
    for (int i = 0; i < 32; ++i)
        addRows(catalogue.ReportControl_PresetMain, {},
                {presetRow(QString("w%1").arg(i), QString("Site %1").arg(i), QString("Site%1").arg(i),
                           "WebFormat")});
    browser.Panel_BuildButtons(Panel_WebFormats, "WebFormat");
    ASSERT_EQ(browser.strips[Panel_WebFormats].buttons.size(), 32);
    browser.PanelActive = Panel_WebFormats;
    browser.Group_Open(Panel_WebFormats, 31);
    EXPECT_EQ(listTexts(), QStringList({"Site 31"}));
    EXPECT_EQ(catalogue.Cmd_OutputPreset.selectedIndex(), -1);
    browser.presetChanged(0); // applied, but nothing to remember it in
    EXPECT_EQ(selected(), "Site 31");
}

TEST_F(BrowserTest, PresetSelectBringsTheBrowserThere) {
    browser.Panel_Show(Panel_VideoFormats);
    browser.presetChanged(0);
    EXPECT_TRUE(browser.Preset_Select("MP3 128", "AudioFormat", "MP3"));
    EXPECT_EQ(browser.PanelActive, Panel_AudioFormats);
    EXPECT_EQ(selected(), "MP3 128");
    EXPECT_EQ(settings.Txt_Maker, "AudioFormat");

    EXPECT_TRUE(browser.Preset_Select("Galaxy S24", "Samsung", "Galaxy"));
    EXPECT_EQ(browser.PanelActive, Panel_Devices);
    EXPECT_EQ(browser.ListBox_MakerNames.selectedText(), "Samsung");
    EXPECT_EQ(selected(), "Galaxy S24");
    EXPECT_TRUE(log.lines.isEmpty());
    // The video panel still remembers its own pick.
    browser.Panel_Show(Panel_VideoFormats);
    EXPECT_EQ(selected(), "MP4 SD");

    EXPECT_FALSE(browser.Preset_Select("Nothing", "VideoFormat", "MP4"));
    EXPECT_FALSE(browser.Preset_Select("Lumia", "Nokia phones", "Lumia"));
    EXPECT_EQ(log.lines,
              QStringList({"There are no results to display!", "There are no results to display!"}));
}

TEST_F(BrowserTest, FavoritesToggleSaveAndRefresh) {
    browser.Panel_Show(Panel_Favorites);
    EXPECT_TRUE(browser.favoritesMessageVisible);
    EXPECT_FALSE(browser.presetListVisible);
    EXPECT_FALSE(browser.convertEnabled);

    browser.Panel_Show(Panel_VideoFormats); // "MP4 HD"
    browser.favoriteToggle();
    EXPECT_EQ(settings.favoriteToolTip, "Remove from favorites tab");
    for (const auto& [name, maker, keyword] : {std::tuple{"iPhone 15", "Apple", "iPhone"},
                                               {"MP3 128", "AudioFormat", "MP3"},
                                               {"My own", "VideoFormat", "MP4"}}) {
        ASSERT_TRUE(browser.Preset_Select(name, maker, keyword));
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
    addRows(presets, kPresetColumns,
            {presetRow("1", "MP4 HD", "MP4", "VideoFormat"),
             presetRow("2", "[%Custom%]", "MP4", "VideoFormat"), presetRow("3", "iPhone", "Phones", "Apple"),
             presetRow("4", "Mine", "MP4", "VideoFormat", "Yes")});
    CatalogueTable view;
    Search_Fill(presets, "videoformat", view);
    ASSERT_EQ(view.rowCount(), 2);
    EXPECT_EQ(view.records().at(0), QStringList({"MP4 HD", "VideoFormat", "MP4"}));
    EXPECT_EQ(view.records().at(1).at(0), "Mine");
    EXPECT_EQ(view.selectedRow(), 0);
    // "neph" lies across the seam of Name and Keyword ("iPhone" + "Phones"); the query is not trimmed.
    for (const auto& [query, count] : {std::pair{"neph", 1}, {"   ", 0}, {" hd", 1}}) {
        Search_Fill(presets, query, view);
        EXPECT_EQ(view.rowCount(), count) << query;
    }
    for (const auto& [count, text] : {std::pair{1, "1 preset"}, {0, "0 presets"}, {7, "7 presets"}})
        EXPECT_EQ(Search_CountText(count), text);
}
