#include "OutputBrowser.h"

#include "Globals.h"
#include "Preset_Mods.h"
#include "Table_Files.h"
#include "mMain.h"

#include <QDir>

#include <algorithm>

namespace morvane {

namespace {

const QString kCustomName = QStringLiteral("[%Custom%]");

// Image numbers of the strips' pictures, by panel.
constexpr std::array<int, 5> kImageBase = {1000, 3000, 2000, 4000, 5000};

QString panelOwnMaker(int panel) {
    switch (panel) {
    case Panel_VideoFormats:
        return QStringLiteral("VideoFormat");
    case Panel_AudioFormats:
        return QStringLiteral("AudioFormat");
    case Panel_WebFormats:
        return QStringLiteral("WebFormat");
    default:
        return QString();
    }
}

struct GroupEntry {
    QString keyword;
    QString thumbnail;
    QString maker;
};

// Keywords in the order of their first row, each once (compared ignoring case).
QList<GroupEntry> collectGroups(const CatalogueTable& table, const std::function<bool(qsizetype)>& take) {
    QList<GroupEntry> groups;
    QString seen = QStringLiteral("|");
    for (qsizetype row = 1; row <= table.rowCount(); ++row) {
        if (!take(row)) continue;
        const QString keyword = Trim_Spaces(Cell_Get(table, row, QStringLiteral("Keyword")));
        if (seen.contains(QLatin1Char('|') + keyword + QLatin1Char('|'), Qt::CaseInsensitive)) continue;
        seen += keyword + QLatin1Char('|');
        groups.append({keyword, Cell_Get(table, row, QStringLiteral("Thumbnail")),
                       Trim_Spaces(Cell_Get(table, row, QStringLiteral("Maker")))});
    }
    return groups;
}

} // namespace

qsizetype ButtonStrip::checkedButton() const {
    for (qsizetype i = 0; i < buttons.size(); ++i)
        if (buttons.at(i).checked) return i;
    return -1;
}

OutputBrowser::OutputBrowser(Catalogue& catalogue, FormatSetting& settings)
    : m_catalogue(catalogue), m_settings(settings) {
    for (int i = 0; i <= 12; ++i)
        PresetIndexVideo.at(static_cast<size_t>(i)) = 1;
    PresetIndexVideo[3] = 4;
    for (int i = 0; i <= 10; ++i) {
        PresetIndexDevice.at(static_cast<size_t>(i)) = 1;
        PresetIndexAudio.at(static_cast<size_t>(i)) = 1;
    }
    PresetIndexAudio[4] = 0;
    for (int i = 0; i <= 3; ++i)
        PresetIndexWeb.at(static_cast<size_t>(i)) = 2;
    for (const char* maker : {"Apple", "Samsung", "BlackBerry", "HTC", "Nokia", "Google", "LG", "Sony",
                              "Microsoft", "Motorola", "Archos", "Game", "Others"})
        ListBox_MakerNames.addItem(QLatin1String(maker));
    ListBox_MakerNames.select(0);
    m_settings.presetsRemoved = [this] { Favorites_Refresh(); };
    m_settings.presetChosen = [this](qsizetype index) { rememberPreset(index); };
}

std::int16_t& OutputBrowser::storedButton(int panel) {
    static std::int16_t none = 0; // the favorites panel keeps no stored button
    switch (panel) {
    case Panel_VideoFormats:
        return ButtonVideo;
    case Panel_Devices:
        return ButtonDevice;
    case Panel_AudioFormats:
        return ButtonAudio;
    case Panel_WebFormats:
        return ButtonWeb;
    default:
        none = 0;
        return none;
    }
}

std::array<std::int16_t, OutputBrowser::PresetIndexSize>* OutputBrowser::presetIndexes(int panel) {
    switch (panel) {
    case Panel_VideoFormats:
        return &PresetIndexVideo;
    case Panel_Devices:
        return &PresetIndexDevice;
    case Panel_AudioFormats:
        return &PresetIndexAudio;
    case Panel_WebFormats:
        return &PresetIndexWeb;
    default:
        return nullptr;
    }
}

QString OutputBrowser::panelMaker(int panel, qsizetype button) const {
    if (panel == Panel_Devices) return Trim_Spaces(ListBox_MakerNames.selectedText());
    if (panel == Panel_Favorites) {
        const ButtonStrip& strip = strips[Panel_Favorites];
        return button >= 0 && button < strip.buttons.size() ? strip.buttons.at(button).maker : QString();
    }
    return panelOwnMaker(panel);
}

void OutputBrowser::resetStrip(int panel) {
    ButtonStrip& strip = strips.at(static_cast<size_t>(panel));
    strip.buttons.clear();
    strip.totalWidth = 0;
    strip.offset = 0;
}

void OutputBrowser::addButton(int panel, const QString& caption, const QString& picture,
                              const QString& maker) {
    ButtonStrip& strip = strips.at(static_cast<size_t>(panel));
    StripButton button;
    button.caption = caption;
    button.picture = picture;
    button.fontSize = caption.size() < 13 ? 10 : 8;
    button.imageNumber = kImageBase.at(static_cast<size_t>(panel)) + static_cast<int>(strip.buttons.size());
    button.maker = maker;
    strip.buttons.append(button);
    strip.totalWidth += ButtonWidth + 13;
}

void OutputBrowser::Panel_BuildButtons(int panel, const QString& maker) {
    if (panel < Panel_VideoFormats || panel > Panel_WebFormats) return;
    const CatalogueTable& presets = m_catalogue.ReportControl_PresetMain;
    const QList<GroupEntry> groups = collectGroups(presets, [&](qsizetype row) {
        return Trim_Spaces(Cell_Get(presets, row, QStringLiteral("Maker"))) == maker;
    });
    resetStrip(panel);
    for (const GroupEntry& group : groups)
        if (!group.keyword.isEmpty()) addButton(panel, group.keyword, group.thumbnail, QString());
}

void OutputBrowser::Group_Open(int panel, qsizetype button) {
    const ButtonStrip& strip = strips.at(static_cast<size_t>(panel));
    if (button < 0 || button >= strip.buttons.size() || strip.buttons.at(button).checked) return;
    openGroup(panel, button);
}

void OutputBrowser::openGroup(int panel, qsizetype button) {
    ButtonStrip& strip = strips.at(static_cast<size_t>(panel));
    if (button < 0 || button >= strip.buttons.size()) return;
    for (StripButton& each : strip.buttons)
        each.checked = false;
    strip.buttons[button].checked = true;

    m_groupPanel = panel;
    ValueList& list = m_catalogue.Cmd_OutputPreset;
    list.clear();
    LastCaption = strip.buttons.at(button).caption;
    // The favorites panel lists the favorites of the group, the others every preset of it.
    const CatalogueTable& table = panel == Panel_Favorites ? m_catalogue.ReportControl_FavoritesMain
                                                           : m_catalogue.ReportControl_PresetMain;
    List_FillByGroup(table, panelMaker(panel, button), LastCaption, list);

    if (panel == Panel_Favorites) {
        presetChanged(0);
    } else {
        storedButton(panel) = static_cast<std::int16_t>(button);
        // Only 31 buttons of a strip remember their preset; past that the press ends here.
        if (button >= PresetIndexSize) return;
        presetChanged(presetIndexes(panel)->at(static_cast<size_t>(button)));
    }
    m_settings.PresetList_Fill(LastCaption, panel);

    if (panel == Panel_VideoFormats || panel == Panel_Favorites) {
        // GIF and SWF outputs cannot be joined into one file.
        const bool unmergeable = LastCaption == QLatin1String("GIF") || LastCaption == QLatin1String("SWF");
        mergeVisible = !unmergeable;
        if (unmergeable) mergeChecked = false;
    }
}

void OutputBrowser::presetChanged(qsizetype index) {
    ValueList& list = m_catalogue.Cmd_OutputPreset;
    if (index < 0 || index >= list.count()) {
        list.select(-1); // an index beyond the list leaves it without a selection
        return;
    }
    list.select(index);
    m_settings.Preset_Apply(
        Row_Find(m_catalogue.ReportControl_PresetMain, QStringLiteral("ID"), list.selectedData()));
    rememberPreset(index);
}

void OutputBrowser::rememberPreset(qsizetype index) {
    // Remembered for the group that is open: the open panel's, unless a search is on its way to another.
    if (m_groupPanel == Panel_Favorites || index < 0) return;
    const std::int16_t button = storedButton(m_groupPanel);
    if (button >= 0 && button < PresetIndexSize)
        presetIndexes(m_groupPanel)->at(static_cast<size_t>(button)) = static_cast<std::int16_t>(index);
}

void OutputBrowser::makerChanged(qsizetype index) {
    if (index < 0 || index >= ListBox_MakerNames.count()) return;
    // The buttons now stand for other groups.
    PresetIndexDevice.fill(1);
    MakerIndex = static_cast<std::int16_t>(index);
    ListBox_MakerNames.select(index);
    Panel_BuildButtons(Panel_Devices, Trim_Spaces(ListBox_MakerNames.selectedText()));
    openGroup(Panel_Devices, 0);
}

void OutputBrowser::scrollToChecked(int panel) {
    ButtonStrip& strip = strips.at(static_cast<size_t>(panel));
    const qsizetype checked = strip.checkedButton();
    if (checked < 0) return;
    const int right = static_cast<int>(checked + 1) * ButtonWidth;
    const int lacking = right + strip.offset - stripVisibleWidth;
    if (lacking > 0)
        strip.offset = std::max(strip.offset - lacking, -std::max(0, strip.totalWidth - stripVisibleWidth));
}

void OutputBrowser::Panel_Show(int panel) {
    if (!m_catalogue.Cmd_OutputPreset.enabled) return; // locked while a conversion runs
    presetListVisible = true;
    mergeVisible = true;
    settingsEnabled = true;
    favoritesMessageVisible = false;
    if (fileListHasRecords && fileListHasRecords()) convertEnabled = true;
    PanelActive = panel;
    if (panel == Panel_Favorites) {
        if (m_catalogue.ReportControl_FavoritesMain.rowCount() == 0 ||
            strips[Panel_Favorites].buttons.isEmpty()) {
            favoritesMessageVisible = true;
            presetListVisible = false;
            convertEnabled = false;
            return;
        }
        openGroup(Panel_Favorites, 0);
        return;
    }
    if (panel == Panel_Devices) ListBox_MakerNames.select(MakerIndex);
    openGroup(panel, storedButton(panel));
    scrollToChecked(panel);
}

bool OutputBrowser::Preset_Select(const QString& name, const QString& maker, const QString& keyword) {
    const auto fail = [] {
        Show_Message(QStringLiteral("There are no results to display!"), MB_OK | MB_ICONINFORMATION,
                     QString());
        return false;
    };
    int panel = Panel_Devices;
    if (maker == QLatin1String("VideoFormat"))
        panel = Panel_VideoFormats;
    else if (maker == QLatin1String("AudioFormat"))
        panel = Panel_AudioFormats;
    else if (maker == QLatin1String("WebFormat"))
        panel = Panel_WebFormats;

    if (panel == Panel_Devices) {
        const qsizetype makerIndex = ListBox_MakerNames.indexOf(maker);
        if (makerIndex < 0) return fail();
        if (makerIndex != ListBox_MakerNames.selectedIndex()) makerChanged(makerIndex);
    }
    const ButtonStrip& strip = strips.at(static_cast<size_t>(panel));
    for (qsizetype i = 0; i < strip.buttons.size(); ++i) {
        storedButton(panel) = static_cast<std::int16_t>(i); // with no match the last one tried stays
        if (strip.buttons.at(i).caption == keyword) break;
    }
    Panel_Show(panel);
    const qsizetype index = m_catalogue.Cmd_OutputPreset.indexOf(name);
    if (index < 0) return fail();
    presetChanged(index);
    m_settings.presetListSelected = index;
    return true;
}

void OutputBrowser::Favorite_Add(qsizetype presetRow) {
    CatalogueTable& favorites = m_catalogue.ReportControl_FavoritesMain;
    const CatalogueTable& presets = m_catalogue.ReportControl_PresetMain;
    if (favorites.rowCount() >= FAVORITE_MAX && favorites.rowCount() > 0) {
        favorites.setSelectedRow(favorites.rowCount() - 1); // the oldest gives way
        Table_RemoveSelected(favorites, false);
    }
    if (favorites.rowCount() > 0) {
        favorites.setSelectedRow(0);
        Row_AddChecked(favorites, presets, 2);
    } else {
        Row_AddChecked(favorites, presets, 0);
    }
    // Newest first; a refused add overwrites the first favorite, as it always has.
    for (qsizetype column = 0; column < presets.columnCount(); ++column)
        favorites.setCell(0, column, presets.cell(presetRow - 1, column));
    favorites.refresh();
}

void OutputBrowser::Favorite_Remove(qsizetype favoriteRow) {
    CatalogueTable& favorites = m_catalogue.ReportControl_FavoritesMain;
    favorites.setSelectedRow(favoriteRow - 1);
    Table_RemoveSelected(favorites, false);
}

void OutputBrowser::Favorites_Refresh() {
    CatalogueTable& favorites = m_catalogue.ReportControl_FavoritesMain;
    resetStrip(Panel_Favorites);
    if (favorites.rowCount() == 0) return;
    for (qsizetype row = favorites.rowCount(); row >= 1; --row)
        if (Row_Find(m_catalogue.ReportControl_PresetMain, QStringLiteral("ID"),
                     Cell_Get(favorites, row, QStringLiteral("ID"))) == 0)
            Favorite_Remove(row);
    const QList<GroupEntry> groups = collectGroups(favorites, [](qsizetype) { return true; });
    for (const GroupEntry& group : groups)
        if (!group.keyword.isEmpty()) addButton(Panel_Favorites, group.keyword, group.thumbnail, group.maker);
}

void OutputBrowser::favoriteToggle() {
    CatalogueTable& favorites = m_catalogue.ReportControl_FavoritesMain;
    const CatalogueTable& presets = m_catalogue.ReportControl_PresetMain;
    if (!Folder_UserFavorite.isEmpty() && !QDir(Folder_UserFavorite).exists())
        QDir().mkpath(Folder_UserFavorite);
    if (favorites.columnCount() == 0) Table_CopyColumns(favorites, presets);
    const QString id = m_catalogue.Cmd_OutputPreset.selectedData();
    if (id.isEmpty()) return;
    const qsizetype favoriteRow = Row_Find(favorites, QStringLiteral("ID"), id);
    if (favoriteRow == 0) {
        const qsizetype presetRow = Row_Find(presets, QStringLiteral("ID"), id);
        if (presetRow == 0) return;
        Favorite_Add(presetRow);
        m_settings.favoriteInTable = true;
        m_settings.favoriteToolTip = QStringLiteral("Remove from favorites tab");
    } else {
        Favorite_Remove(favoriteRow);
        m_settings.favoriteInTable = false;
        m_settings.favoriteToolTip = QStringLiteral("Add to favorites tab");
    }
    Table_SaveFile(favorites, Folder_UserFavorite + File_UserFavorite, true);
    Favorites_Refresh();
    if (PanelActive == Panel_Favorites) Panel_Show(Panel_Favorites);
}

void Search_Fill(const CatalogueTable& presetTable, const QString& query, CatalogueTable& view) {
    if (view.columnCount() == 0)
        for (const char* column : {"Preset", "Maker", "Keyword"})
            view.addColumn(QLatin1String(column), 200);
    view.clearRecords();
    if (Trim_Spaces(query).isEmpty()) return;
    for (qsizetype row = 1; row <= presetTable.rowCount(); ++row) {
        const QString name = Cell_Get(presetTable, row, QStringLiteral("Name"));
        const QString keyword = Cell_Get(presetTable, row, QStringLiteral("Keyword"));
        const QString maker = Cell_Get(presetTable, row, QStringLiteral("Maker"));
        if (name == kCustomName || !(name + keyword + maker).contains(query, Qt::CaseInsensitive)) continue;
        const qsizetype added = view.addRecord();
        view.setCell(added, 0, name);
        view.setCell(added, 1, maker);
        view.setCell(added, 2, keyword);
    }
    view.refresh();
    if (view.rowCount() > 0) view.setSelectedRow(0);
}

QString Search_CountText(qsizetype count) {
    return QString::number(count) + (count == 1 ? QStringLiteral(" preset") : QStringLiteral(" presets"));
}

} // namespace morvane
