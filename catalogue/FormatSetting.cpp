#include "FormatSetting.h"

#include "Bitrate_Rules.h"
#include "Globals.h"
#include "Library_List.h"
#include "Preset_Mods.h"
#include "Table_Files.h"
#include "mMain.h"

#include <QDir>

#include <algorithm>

namespace morvane {

namespace {

const QString kOriginal = QStringLiteral("Original");
const QString kCustom = QStringLiteral("Custom");
const QString kSmartFit = QStringLiteral("Smart Fit");
const QString kSizeSeparator = QStringLiteral(" x ");

int numberOf(const QString& text) {
    bool ok = false;
    const int value = Trim_Spaces(text).toInt(&ok);
    return ok ? value : 0;
}

// A list cell, or the value library that the cell names instead.
QString listSource(const QString& cell, const char* libraryMark, int libraryKind) {
    return cell == QLatin1String(libraryMark) ? Library_List(libraryKind) : cell;
}

// The entries of a size list that fit within the bounds; "Original", "Custom" and the like stay.
// A size beyond them would only be clamped by the spinners into a different picture.
QString sizesWithin(const QString& list, int maxWidth, int maxHeight) {
    QString kept;
    for (const QString& item : Split_SemicolonList(list)) {
        const QStringList sides = item.split(kSizeSeparator);
        if (sides.size() == 2 && (numberOf(sides.at(0)) > maxWidth || numberOf(sides.at(1)) > maxHeight))
            continue;
        kept += item + QLatin1Char(';');
    }
    return kept;
}

} // namespace

QString Quality_Text(int radio) {
    switch (radio) {
    case Quality_High:
        return QStringLiteral("High");
    case Quality_Standard:
        return QStringLiteral("Standard");
    case Quality_SmallSize:
        return QStringLiteral("SmallSize");
    default:
        return QString();
    }
}

FormatSetting::FormatSetting(Catalogue& catalogue) : m_catalogue(catalogue) {}

int FormatSetting::widthValue() const {
    return numberOf(Txt_OutputVideoWidth.text);
}
int FormatSetting::heightValue() const {
    return numberOf(Txt_OutputVideoHeight.text);
}
int FormatSetting::bitrateValue() const {
    return numberOf(Txt_OutputVideoBitrate.text);
}

// ---- Lists

void FormatSetting::selectListValue(int list, const QString& value, int fallback) {
    ValueList& target = Combo_OutputFile.at(static_cast<size_t>(list));
    const qsizetype before = target.selectedIndex();
    List_Select(target, value, fallback);
    m_locked.at(static_cast<size_t>(list)) = !target.enabled;
    // Like a click, only a selection that moved raises the change.
    if (target.selectedIndex() != before)
        dispatchChange(list);
    else
        afterListChange();
}

void FormatSetting::selectListIndex(int list, qsizetype index) {
    ValueList& target = Combo_OutputFile.at(static_cast<size_t>(list));
    if (!target.enabled || index == target.selectedIndex()) return;
    target.select(index);
    dispatchChange(list);
}

void FormatSetting::dispatchChange(int list) {
    switch (list) {
    case List_VideoCodec:
        videoCodecChanged();
        break;
    case List_FrameSize:
        frameSizeChanged();
        break;
    case List_FrameRate:
        if (SettingsLive) bitrateRebuild();
        break;
    case List_AudioCodec:
        audioCodecChanged();
        break;
    case List_SampleRate:
    case List_Channels:
    case List_SampleSize:
        if (SettingsLive) audioBitrateRefill();
        break;
    case List_VideoBitrate:
        videoBitrateChanged();
        break;
    default:
        break;
    }
    afterListChange();
}

qsizetype FormatSetting::formatRowOf(int list) const {
    return numberOf(Combo_OutputFile.at(static_cast<size_t>(list)).selectedData());
}

void FormatSetting::videoCodecChanged() {
    const QString size = Txt_OutputVideoWidth.text + kSizeSeparator + Txt_OutputVideoHeight.text;
    const QString rate = Combo_OutputFile[List_FrameRate].selectedText();
    const QString extension = Combo_OutputFile[List_Extension].selectedText();
    const QString aspect = Combo_OutputFile[List_Aspect].selectedText();

    const CatalogueTable& formats = m_catalogue.ReportControl_FormatMain;
    const qsizetype row = formatRowOf(List_VideoCodec);
    List_Fill(listSource(Cell_Get(formats, row, QStringLiteral("FPS")), "UseFPSLib", 2),
              Combo_OutputFile[List_FrameRate]);
    List_FillFromRow(formats, row, QStringLiteral("FileExtention"), Combo_OutputFile[List_Extension]);
    List_Fill(listSource(Cell_Get(formats, row, QStringLiteral("AspectRatio")), "UseAspectRatioLib", 3),
              Combo_OutputFile[List_Aspect]);
    const int maxWidth = numberOf(Cell_Get(formats, row, QStringLiteral("MaxWidth")));
    const int maxHeight = numberOf(Cell_Get(formats, row, QStringLiteral("MaxHeight")));
    const QString sizes = Cell_Get(formats, row, QStringLiteral("FrameSize"));
    // The library serves formats of every bound; a row's own list is taken as written.
    List_Fill(sizes == QLatin1String("UseFrameLib") ? sizesWithin(Library_List(1), maxWidth, maxHeight)
                                                    : sizes,
              Combo_OutputFile[List_FrameSize]);

    Txt_OutputVideoWidth.minimum = 0;
    Txt_OutputVideoHeight.minimum = 0;
    Txt_OutputVideoWidth.maximum = maxWidth;
    Txt_OutputVideoHeight.maximum = maxHeight;
    Txt_OutputVideoBitrate.maximum = numberOf(Cell_Get(formats, row, QStringLiteral("MaxVideoBitrate")));
    Txt_OutputVideoBitrate.minimum =
        Bitrate_Lower(widthValue(), heightValue(), Txt_OutputVideoBitrate.maximum);
    raiseToMinimum(Txt_OutputVideoBitrate);

    if (!SettingsLive) return;
    // The row takes the final state once, when this change ends, not at each step on the way.
    ++m_heldStores;
    selectListValue(List_FrameRate, rate, 0);
    selectListValue(List_Extension, extension, 0);
    selectListValue(List_Aspect, aspect, 0);
    if (size == QStringLiteral("0 x 0"))
        selectListValue(List_FrameSize, kOriginal, 0);
    else
        selectListValue(List_FrameSize, size, 1);
    --m_heldStores;
}

void FormatSetting::frameSizeChanged() {
    const QString size = Combo_OutputFile[List_FrameSize].selectedText();
    if (size == kOriginal) {
        setSpin(Txt_OutputVideoWidth, 0);
        setSpin(Txt_OutputVideoHeight, 0);
        setSizeBoxesVisible(false);
    } else if (size == kCustom) {
        setSizeBoxesVisible(true);
    } else if (!size.isEmpty() && size != QLatin1String("-")) {
        const QStringList sides = size.split(kSizeSeparator);
        setSpin(Txt_OutputVideoWidth, numberOf(sides.value(0)));
        setSpin(Txt_OutputVideoHeight, numberOf(sides.value(1)));
        setSizeBoxesVisible(false);
    }
    if (SettingsLive) bitrateRebuild();
}

void FormatSetting::bitrateRebuild() {
    const QString remembered = Combo_OutputFile[List_VideoBitrate].selectedText();
    const int upper = Txt_OutputVideoBitrate.maximum;
    List_Fill(VideoBitrate_List(widthValue(), heightValue(), upper), Combo_OutputFile[List_VideoBitrate]);
    selectListValue(List_VideoBitrate, remembered, 0);
    Txt_OutputVideoBitrate.minimum = Bitrate_Lower(widthValue(), heightValue(), upper);
    raiseToMinimum(Txt_OutputVideoBitrate);
}

void FormatSetting::audioCodecChanged() {
    const QString rate = Combo_OutputFile[List_SampleRate].selectedText();
    const QString channels = Combo_OutputFile[List_Channels].selectedText();
    const QString size = Combo_OutputFile[List_SampleSize].selectedText();
    const CatalogueTable& formats = m_catalogue.ReportControl_FormatMain;
    const qsizetype row = formatRowOf(List_AudioCodec);
    List_FillFromRow(formats, row, QStringLiteral("SampleRate"), Combo_OutputFile[List_SampleRate]);
    List_FillFromRow(formats, row, QStringLiteral("Channels"), Combo_OutputFile[List_Channels]);
    List_FillFromRow(formats, row, QStringLiteral("AudioSize"), Combo_OutputFile[List_SampleSize]);
    if (!SettingsLive) return;
    // Each reselection refills the bitrates once more; the row keeps its bitrate until the end, so
    // that every refill picks it again where the new lists offer it.
    ++m_heldStores;
    selectListValue(List_SampleRate, rate, 1);
    selectListValue(List_Channels, channels, 1);
    selectListValue(List_SampleSize, size, 1);
    audioBitrateRefill();
    --m_heldStores;
}

void FormatSetting::audioBitrateRefill() {
    List_Fill(AudioBitrate_List(Combo_OutputFile[List_AudioCodec].selectedText(),
                                Combo_OutputFile[List_SampleRate].selectedText(),
                                Combo_OutputFile[List_Channels].selectedText(),
                                Combo_OutputFile[List_SampleSize].selectedText()),
              Combo_OutputFile[List_AudioBitrate]);
    selectListValue(
        List_AudioBitrate,
        Cell_Get(m_catalogue.ReportControl_PresetMain, m_appliedRow, QStringLiteral("AudioBitrate")), 1);
}

void FormatSetting::videoBitrateChanged() {
    const QString choice = Combo_OutputFile[List_VideoBitrate].selectedText();
    int factor = 0;
    if (Radio_Quality == Quality_High)
        factor = 4;
    else if (Radio_Quality == Quality_Standard)
        factor = 2;
    else if (Radio_Quality == Quality_SmallSize)
        factor = 1;
    if (choice == kSmartFit) {
        setSpin(Txt_OutputVideoBitrate,
                Auto_VideoBitrate(widthValue(), heightValue(),
                                  Combo_OutputFile[List_FrameRate].selectedText(), factor, 1));
        Txt_OutputVideoBitrate.visible = false;
    } else if (choice == kCustom) {
        Txt_OutputVideoBitrate.visible = true;
    } else if (choice == QLatin1String("-")) {
        Txt_OutputVideoBitrate.visible = false;
    } else if (!choice.isEmpty()) {
        setSpin(Txt_OutputVideoBitrate, numberOf(QString(choice).remove(QStringLiteral(" kbps"))));
        Txt_OutputVideoBitrate.visible = false;
    }
    raiseToMinimum(Txt_OutputVideoBitrate);
}

void FormatSetting::afterListChange() {
    if (SettingsLive) markAndStore();
    const bool noVideo = Combo_OutputFile[List_VideoCodec].selectedText() == QLatin1String("No Video");
    for (const int list : {List_FrameSize, List_FrameRate, List_Extension, List_Aspect, List_VideoBitrate})
        Combo_OutputFile.at(static_cast<size_t>(list)).enabled =
            !noVideo && !m_locked.at(static_cast<size_t>(list));
    const bool noAudio = Combo_OutputFile[List_AudioCodec].selectedText() == QLatin1String("No Audio");
    for (const int list : {List_SampleRate, List_AudioBitrate, List_Channels, List_SampleSize})
        Combo_OutputFile.at(static_cast<size_t>(list)).enabled =
            !noAudio && !m_locked.at(static_cast<size_t>(list));
}

void FormatSetting::markAndStore() {
    if (m_heldStores > 0) return;
    if (presetListSelected >= 0 && presetListSelected < PresetList.size())
        PresetList[presetListSelected].changed = true;
    Row_StoreFields();
}

// ---- Quality and boxes

void FormatSetting::setQuality(int radio) {
    if (!qualityEnabled) return;
    Radio_Quality = radio;
    if (!SettingsLive || Combo_OutputFile[List_VideoCodec].selectedText() == QLatin1String("No Video"))
        return;
    ValueList& bitrates = Combo_OutputFile[List_VideoBitrate];
    const qsizetype before = bitrates.selectedIndex();
    selectListValue(List_VideoBitrate, kSmartFit, 0);
    // Already on "Smart Fit": the estimate still follows the new quality.
    if (bitrates.selectedIndex() == before) dispatchChange(List_VideoBitrate);
}

void FormatSetting::setSpin(SpinField& box, int value) {
    if (box.maximum >= box.minimum)
        value = std::clamp(value, box.minimum, std::max(box.maximum, box.minimum));
    box.text = QString::number(value);
}

void FormatSetting::raiseToMinimum(SpinField& box) {
    if (numberOf(box.text) < box.minimum) box.text = QString::number(box.minimum);
}

void FormatSetting::setSizeBoxesVisible(bool visible) {
    Txt_OutputVideoWidth.visible = visible;
    Txt_OutputVideoHeight.visible = visible;
}

void FormatSetting::boxChanged(SpinField& box, const QString& text) {
    if (!box.enabled) return;
    QString digits;
    for (const QChar c : text)
        if (c.isDigit()) digits += c; // the boxes take digits only
    box.text = numberOf(digits) > box.maximum ? QString::number(box.maximum) : digits;
    if (SettingsLive) markAndStore();
}

void FormatSetting::boxLeft(SpinField& box) {
    const QString before = box.text;
    setSpin(box, numberOf(box.text));
    if ((&box == &Txt_OutputVideoWidth || &box == &Txt_OutputVideoHeight) &&
        Combo_OutputFile[List_VideoBitrate].selectedText() == kSmartFit)
        videoBitrateChanged();
    // The spinner writes its number into the box, which stores the row like any typed change.
    if (SettingsLive && box.text != before) markAndStore();
}

void FormatSetting::spinPressed(SpinField& box, int step) {
    if (!box.enabled) return;
    const QString before = box.text;
    setSpin(box, numberOf(box.text) + step);
    if (Combo_OutputFile[List_VideoBitrate].selectedText() == kSmartFit) videoBitrateChanged();
    if (SettingsLive && box.text != before) markAndStore();
}

// ---- Presets

void FormatSetting::Preset_Apply(qsizetype row) {
    SettingsLive = false;
    const CatalogueTable& presets = m_catalogue.ReportControl_PresetMain;
    if (row != 0 && row <= presets.rowCount()) {
        m_appliedRow = row;
        const auto cell = [&](const char* column) { return Cell_Get(presets, row, QLatin1String(column)); };
        for (ValueList& list : Combo_OutputFile)
            list.clear();
        m_locked.fill(false);

        const QString format = cell("Format");
        List_FillCodecs(m_catalogue.ReportControl_FormatMain, format, QStringLiteral("VideoCodec"),
                        Combo_OutputFile[List_VideoCodec]);
        List_FillCodecs(m_catalogue.ReportControl_FormatMain, format, QStringLiteral("AudioCodec"),
                        Combo_OutputFile[List_AudioCodec]);
        selectListValue(List_VideoCodec, cell("VideoCodec"), 0);
        selectListValue(List_AudioCodec, cell("AudioCodec"), 0);

        Spin_Set(cell("Width"), Txt_OutputVideoWidth);
        Spin_Set(cell("Height"), Txt_OutputVideoHeight);
        const QString size = Txt_OutputVideoWidth.text + kSizeSeparator + Txt_OutputVideoHeight.text;
        if (size == QStringLiteral("0 x 0"))
            selectListValue(List_FrameSize, kOriginal, 0);
        else
            selectListValue(List_FrameSize, size, 1);
        // The size list follows the width box, whatever the list's own mark said.
        m_locked[List_FrameSize] = !Txt_OutputVideoWidth.enabled;
        afterListChange();
        // The codec set the floor while the boxes still held the previous preset's size.
        Txt_OutputVideoBitrate.minimum =
            Bitrate_Lower(widthValue(), heightValue(), Txt_OutputVideoBitrate.maximum);

        Txt_Format = format;
        Txt_Keyword = cell("Keyword");
        Txt_Maker = cell("Maker");
        Txt_Type = cell("Type");
        Txt_Thumbnail = cell("Thumbnail");
        Txt_Image = cell("Image");
        Txt_ID = cell("ID");

        selectListValue(List_FrameRate, cell("FPS"), 0);

        QString quality = cell("QualityLevel");
        qualityEnabled = !quality.contains(QLatin1Char('#'));
        quality.remove(QLatin1Char('#'));
        Radio_Quality = Quality_None;
        for (const int radio : {Quality_High, Quality_Standard, Quality_SmallSize})
            if (quality == Quality_Text(radio)) Radio_Quality = radio;

        const QString bitrateCell = cell("VideoBitrate");
        const QString bitrate = QString(bitrateCell).remove(QLatin1Char('#'));
        ValueList& bitrates = Combo_OutputFile[List_VideoBitrate];
        if (bitrate == kSmartFit) {
            List_Fill(VideoBitrate_List(widthValue(), heightValue(), Txt_OutputVideoBitrate.maximum),
                      bitrates);
            selectListValue(List_VideoBitrate, bitrateCell, 0);
        } else if (bitrate == QLatin1String("0")) {
            List_Fill(VideoBitrate_List(0, 0, 0), bitrates);
            selectListValue(List_VideoBitrate, bitrateCell, 0);
        } else {
            List_Fill(VideoBitrate_List(widthValue(), heightValue(), Txt_OutputVideoBitrate.maximum),
                      bitrates);
            // A number off the ladder was typed under "Custom" (the list's last item): it stays so.
            selectListValue(List_VideoBitrate, bitrateCell + QStringLiteral(" kbps"), 1);
            Spin_Set(bitrateCell, Txt_OutputVideoBitrate);
        }

        selectListValue(List_Extension, cell("FileExtention"), 0);
        selectListValue(List_Aspect, cell("AspectRatio"), 0);
        selectListValue(List_SampleRate, cell("SampleRate"), 1);
        selectListValue(List_Channels, cell("Channels"), 1);
        selectListValue(List_SampleSize, cell("AudioSize"), 1);
        List_Fill(AudioBitrate_List(Combo_OutputFile[List_AudioCodec].selectedText(),
                                    Combo_OutputFile[List_SampleRate].selectedText(),
                                    Combo_OutputFile[List_Channels].selectedText(),
                                    Combo_OutputFile[List_SampleSize].selectedText()),
                  Combo_OutputFile[List_AudioBitrate]);
        selectListValue(List_AudioBitrate, cell("AudioBitrate"), 1);

        favoriteInTable =
            Row_Find(m_catalogue.ReportControl_FavoritesMain, QStringLiteral("ID"), cell("ID")) != 0;
        favoriteToolTip = favoriteInTable ? QStringLiteral("Remove from favorites tab")
                                          : QStringLiteral("Add to favorites tab");
    }
    SettingsLive = true;
}

qsizetype FormatSetting::selectedPresetRow() const {
    if (presetListSelected < 0 || presetListSelected >= PresetList.size()) return 0;
    return Row_Find(m_catalogue.ReportControl_PresetMain, QStringLiteral("ID"),
                    PresetList.at(presetListSelected).id);
}

void FormatSetting::storeValues(qsizetype row, bool plain) {
    CatalogueTable& presets = m_catalogue.ReportControl_PresetMain;
    // Plain writes drop any lock mark; otherwise each value keeps the mark of the cell it replaces.
    const auto store = [&](const char* column, const QString& value) {
        Cell_Set(presets, row, QLatin1String(column), value, plain, plain);
    };
    const auto text = [&](int list) { return Combo_OutputFile.at(static_cast<size_t>(list)).selectedText(); };
    store("QualityLevel", Quality_Text(Radio_Quality));
    store("VideoCodec", text(List_VideoCodec));
    store("FPS", text(List_FrameRate));
    store("Width", Txt_OutputVideoWidth.text);
    store("Height", Txt_OutputVideoHeight.text);
    store("VideoBitrate", text(List_VideoBitrate) == kSmartFit ? kSmartFit : Txt_OutputVideoBitrate.text);
    store("AspectRatio", text(List_Aspect));
    store("FileExtention", text(List_Extension));
    store("AudioCodec", text(List_AudioCodec));
    store("SampleRate", text(List_SampleRate));
    store("AudioBitrate", text(List_AudioBitrate));
    store("Channels", text(List_Channels));
    store("AudioSize", text(List_SampleSize));
}

void FormatSetting::Row_StoreFields() {
    const qsizetype row = selectedPresetRow();
    if (row != 0) storeValues(row, false);
}

void FormatSetting::refreshPresetListLabels() {
    const qsizetype count = PresetList.size();
    lbl_TotalPreset =
        QString::number(count) + (count == 1 ? QStringLiteral(" preset") : QStringLiteral(" presets"));
    for (PresetListRow& entry : PresetList)
        entry.userRow =
            Cell_Get(m_catalogue.ReportControl_PresetMain,
                     Row_Find(m_catalogue.ReportControl_PresetMain, QStringLiteral("ID"), entry.id),
                     QStringLiteral("Removable")) == QLatin1String("Yes");
}

void FormatSetting::PresetList_Fill(const QString& keyword, int panel) {
    PresetList.clear();
    for (const ValueListItem& item : m_catalogue.Cmd_OutputPreset.items())
        PresetList.append({item.text, item.data, false, false});
    refreshPresetListLabels();
    panelListButtonsVisible = panel != 1 && panel != 4;
    windowTitle = keyword + QStringLiteral(" Presets - Setting");
    groupTitle = keyword + QStringLiteral(" Presets");
    const qsizetype selected = m_catalogue.Cmd_OutputPreset.selectedIndex();
    presetListSelected = selected < PresetList.size() ? selected : -1;
}

void FormatSetting::PresetList_Select(qsizetype index) {
    if (index < 0 || index >= PresetList.size()) return;
    presetListSelected = index;
    const qsizetype row = selectedPresetRow();
    const bool userRow = Cell_Get(m_catalogue.ReportControl_PresetMain, row, QStringLiteral("Removable")) ==
                         QLatin1String("Yes");
    deleteEnabled = userRow;
    renameEnabled = userRow;
    Preset_Apply(row);
}

void FormatSetting::newPreset() {
    const QString name =
        askPresetName ? askPresetName(QStringLiteral("New Preset"), QStringLiteral("Name")) : QString();
    if (name.isEmpty()) return;
    CatalogueTable& presets = m_catalogue.ReportControl_PresetMain;
    qsizetype target = 0;
    qsizetype listIndex = -1;
    for (qsizetype i = 0; i < PresetList.size(); ++i) {
        if (PresetList.at(i).name != name) continue;
        const qsizetype row = Row_Find(presets, QStringLiteral("ID"), PresetList.at(i).id);
        // A built-in preset of the same name is no conflict: the name is used twice.
        if (Cell_Get(presets, row, QStringLiteral("Removable")) != QLatin1String("Yes")) continue;
        if (Show_Message(QStringLiteral("The preset '") + name +
                             QStringLiteral("' already exists, replace it ?"),
                         MB_YESNO | MB_ICONQUESTION, QStringLiteral("Confirmation")) != ID_YES)
            return;
        target = row;
        listIndex = i;
        break;
    }
    QString id = Cell_Get(presets, target, QStringLiteral("ID"));
    if (target == 0) {
        id = QStringLiteral("User-") + Row_NewId();
        PresetList.append({name, id, true, false});
        listIndex = PresetList.size() - 1;
        target = presets.addRecord() + 1;
        Cell_Set(presets, target, QStringLiteral("Name"), name, true, true);
    }
    storeValues(target, true);
    const auto put = [&](const char* column, const QString& value) {
        Cell_Set(presets, target, QLatin1String(column), value, true, true);
    };
    put("Format", Txt_Format);
    put("Keyword", Txt_Keyword);
    put("Maker", Txt_Maker);
    put("Type", Txt_Type);
    put("Thumbnail", Txt_Thumbnail);
    put("Image", Txt_Image);
    put("ID", id);
    put("Removable", QStringLiteral("Yes"));
    refreshPresetListLabels();
    PresetList_Select(listIndex);
}

void FormatSetting::renamePreset() {
    if (presetListSelected < 0 || presetListSelected >= PresetList.size()) return;
    const QString name = askPresetName
                             ? askPresetName(QStringLiteral("Rename Preset"), QStringLiteral("New Name"))
                             : QString();
    if (name.isEmpty()) return;
    const qsizetype row = selectedPresetRow();
    PresetList[presetListSelected].name = name;
    Cell_Set(m_catalogue.ReportControl_PresetMain, row, QStringLiteral("Name"), name, false, false);
    refreshPresetListLabels();
}

void FormatSetting::deletePreset() {
    if (presetListSelected < 0 || presetListSelected >= PresetList.size()) return;
    const QString name = PresetList.at(presetListSelected).name;
    if (Show_Message(QStringLiteral("Are you sure you want to delete '") + name +
                         QStringLiteral("' preset ?"),
                     MB_YESNO | MB_ICONQUESTION, QStringLiteral("Delete")) != ID_YES)
        return;
    CatalogueTable& presets = m_catalogue.ReportControl_PresetMain;
    const qsizetype row = selectedPresetRow();
    if (row != 0) {
        presets.setSelectedRow(row - 1);
        Table_RemoveSelected(presets, false);
    }
    if (presetsRemoved) presetsRemoved();
    dropFromMainList(PresetList.at(presetListSelected).id);
    PresetList.removeAt(presetListSelected);
    presetListSelected = -1;
    deleteEnabled = false;
    renameEnabled = false;
    refreshPresetListLabels();
    // As at a group press, the settings follow the main list's choice, which may have moved on.
    const QString chosen = m_catalogue.Cmd_OutputPreset.selectedData();
    for (qsizetype i = 0; i < PresetList.size() && !chosen.isEmpty(); ++i)
        if (PresetList.at(i).id == chosen) {
            PresetList_Select(i);
            break;
        }
}

void FormatSetting::dropFromMainList(const QString& id) {
    ValueList& main = m_catalogue.Cmd_OutputPreset;
    QList<ValueListItem> kept;
    qsizetype selected = -1; // a deleted choice passes to the item after it, or to the last
    for (qsizetype i = 0; i < main.count(); ++i) {
        if (i == main.selectedIndex()) selected = kept.size();
        if (main.items().at(i).data != id) kept.append(main.items().at(i));
    }
    main.clear();
    for (const ValueListItem& item : kept)
        main.addItem(item.text, item.data);
    main.select(std::min(selected, main.count() - 1));
    if (presetChosen) presetChosen(main.selectedIndex());
}

void FormatSetting::Cmd_Panel(int index) {
    if (index == 0) {
        Preset_Apply(selectedPresetRow());
        return;
    }
    ValueList& presets = m_catalogue.Cmd_OutputPreset;
    presets.clear();
    for (const PresetListRow& entry : PresetList)
        presets.addItem(entry.name, entry.id);
    presets.select(presetListSelected);
    if (presetChosen) presetChosen(presets.selectedIndex());
    const QString folder = Folder_UserPreset;
    if (!folder.isEmpty() && !QDir(folder).exists()) QDir().mkpath(folder);
    Table_SaveUserRows(m_catalogue.ReportControl_PresetMain, Folder_UserPreset + File_UserPreset, true);
}

} // namespace morvane
