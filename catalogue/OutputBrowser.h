// The output browser: five panels (Video Formats, Devices, Audio Formats, Web Formats, Favorites),
// each a strip of group buttons over the preset table, the preset list of the open group, the
// preset chosen last under every button, the favorites and the merge check box rule. A window
// draws the strips and lists from this state and calls the handlers. Main thread only.
#pragma once

#include "Catalogue.h"
#include "FormatSetting.h"
#include "ValueList.h"

#include <QList>
#include <QString>

#include <array>
#include <cstdint>
#include <functional>

namespace morvane {

enum BrowserPanel : int {
    Panel_VideoFormats = 0,
    Panel_Devices = 1,
    Panel_AudioFormats = 2,
    Panel_WebFormats = 3,
    Panel_Favorites = 4
};

struct StripButton {
    QString caption;
    QString picture;   // the Thumbnail identifier of the group
    int fontSize = 10; // 8 for captions of 13 characters or more
    int imageNumber = 0;
    QString maker; // favorites only: the group's maker
    bool checked = false;
};

struct ButtonStrip {
    QList<StripButton> buttons;
    int totalWidth = 0;
    int offset = 0; // scroll offset of the strip, 0 or negative
    qsizetype checkedButton() const;
};

class OutputBrowser {
public:
    static constexpr int ButtonWidth = 96; // layout only: the strip's width grows by this plus 13
    static constexpr int PresetIndexSize = 31;

    OutputBrowser(Catalogue& catalogue, FormatSetting& settings);

    int PanelActive = Panel_VideoFormats;
    std::int16_t ButtonVideo = 0;
    std::int16_t ButtonDevice = 0;
    std::int16_t ButtonAudio = 0;
    std::int16_t ButtonWeb = 0;
    std::int16_t MakerIndex = 0;
    std::array<std::int16_t, PresetIndexSize> PresetIndexVideo{};
    std::array<std::int16_t, PresetIndexSize> PresetIndexDevice{};
    std::array<std::int16_t, PresetIndexSize> PresetIndexAudio{};
    std::array<std::int16_t, PresetIndexSize> PresetIndexWeb{};
    QString LastCaption;

    ValueList ListBox_MakerNames;
    std::array<ButtonStrip, 5> strips;
    int stripVisibleWidth = 640; // set by the view

    // The controls around the browser that its rules switch.
    bool mergeVisible = true; // Chk_Merge
    bool mergeChecked = false;
    bool presetListVisible = true; // the list, its titles and the settings, favorites and search buttons
    bool settingsEnabled = true;
    bool favoritesMessageVisible = false; // Pic_FavMsg over an empty favorites panel
    bool convertEnabled = false;
    // Whether the file list has rows, asked when a panel opens.
    std::function<bool()> fileListHasRecords;

    // ---- Strips and groups.
    void Panel_BuildButtons(int panel, const QString& maker);
    // A press on a group button; a press on the checked one does nothing.
    void Group_Open(int panel, qsizetype button);
    void makerChanged(qsizetype index);
    void Panel_Show(int panel);
    // The preset list's selection changed: the preset is applied and remembered for its button.
    void presetChanged(qsizetype index);
    // Brings the browser to a preset; false (after telling the user) when it cannot.
    bool Preset_Select(const QString& name, const QString& maker, const QString& keyword);

    // ---- Favorites.
    void favoriteToggle();
    void Favorite_Add(qsizetype presetRow);
    void Favorite_Remove(qsizetype favoriteRow);
    void Favorites_Refresh();

    // The maker of the open panel's group (the panel's own, the device maker, or the button's tag).
    QString panelMaker(int panel, qsizetype button) const;

private:
    void openGroup(int panel, qsizetype button);
    void rememberPreset(qsizetype index);
    void resetStrip(int panel);
    void addButton(int panel, const QString& caption, const QString& picture, const QString& maker);
    void scrollToChecked(int panel);
    std::int16_t& storedButton(int panel);
    std::array<std::int16_t, PresetIndexSize>* presetIndexes(int panel);

    Catalogue& m_catalogue;
    FormatSetting& m_settings;
    int m_groupPanel = Panel_VideoFormats; // the panel whose group fills the preset list
};

// Rows of the preset table whose Name, Keyword and Maker, joined, hold the query (case ignored);
// "[%Custom%]" rows never. The view gets the columns "Preset", "Maker", "Keyword".
void Search_Fill(const CatalogueTable& presetTable, const QString& query, CatalogueTable& view);
QString Search_CountText(qsizetype count);

} // namespace morvane
