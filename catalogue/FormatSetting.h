// The current output parameters: the value lists, boxes and quality choice of the preset settings,
// kept as a model that the argument builder reads whether or not the settings window is shown, and
// the preset list of the open group with new, rename and delete of user presets.
//
// Selecting in a list runs that list's change handler, as a click would; handlers keep the dependent
// lists consistent and, while SettingsLive, write every change back into the preset row at once.
// Main thread only.
#pragma once

#include "Catalogue.h"
#include "ValueList.h"

#include <QList>
#include <QString>

#include <array>
#include <functional>

namespace morvane {

// Indexes of Combo_OutputFile.
enum OutputList : int {
    List_VideoCodec = 0,
    List_FrameSize = 1,
    List_FrameRate = 2,
    List_Extension = 3,
    List_AudioCodec = 4,
    List_SampleRate = 5,
    List_AudioBitrate = 6,
    List_Channels = 7,
    List_SampleSize = 8,
    List_Aspect = 9,
    List_VideoBitrate = 10,
};

// Indexes of Radio_Quality; -1 is no choice.
enum QualityRadio : int { Quality_None = -1, Quality_High = 0, Quality_Standard = 1, Quality_SmallSize = 2 };

struct PresetListRow {
    QString name;
    QString id;
    bool userRow = false; // shown in the theme's colour for user presets
    bool changed = false; // a value was changed through the settings
};

class FormatSetting {
public:
    explicit FormatSetting(Catalogue& catalogue);

    std::array<ValueList, 11> Combo_OutputFile;
    SpinField Txt_OutputVideoWidth;
    SpinField Txt_OutputVideoHeight;
    SpinField Txt_OutputVideoBitrate;
    int Radio_Quality = Quality_None;
    bool qualityEnabled = true;
    QString Txt_ID, Txt_Format, Txt_Keyword, Txt_Maker, Txt_Type, Txt_Thumbnail, Txt_Image;

    QList<PresetListRow> PresetList;
    qsizetype presetListSelected = -1;
    QString lbl_TotalPreset;
    QString windowTitle;
    QString groupTitle;
    bool panelListButtonsVisible = true; // delete and new
    bool deleteEnabled = false;
    bool renameEnabled = false;

    // The favorites toggle of the main window, as the last applied preset leaves it.
    bool favoriteInTable = false;
    QString favoriteToolTip = QStringLiteral("Add to favorites tab");

    // False while values are loaded: handlers then only keep the lists consistent.
    bool SettingsLive = true;

    // Asks for a preset name (title, label); "" means cancelled. Tests and windows supply it.
    std::function<QString(const QString& title, const QString& label)> askPresetName;
    // Runs after a preset was deleted, so that favorites that lost their preset go (the favorites strip).
    std::function<void()> presetsRemoved;
    // Runs when the settings set the main list's choice (OK, or a delete), with its index, so that the
    // browser remembers it for the open button as it does a pick in that list.
    std::function<void(qsizetype index)> presetChosen;

    // ---- The lists, as the user or the program selects in them.
    void selectListValue(int list, const QString& value, int fallback); // through List_Select
    void selectListIndex(int list, qsizetype index);                    // a click

    // ---- Quality, boxes and spinners.
    void setQuality(int radio);
    void boxChanged(SpinField& box, const QString& text);
    void boxLeft(SpinField& box);
    void spinPressed(SpinField& box, int step);

    // ---- Presets.
    void Preset_Apply(qsizetype row);
    void Row_StoreFields();
    // Copies the browser's preset list in, for the panel that is open (0 to 4).
    void PresetList_Fill(const QString& keyword, int panel);
    void PresetList_Select(qsizetype index);
    void newPreset();
    void renamePreset();
    void deletePreset();
    void Cmd_Panel(int index);

    // Numbers of the boxes, 0 for an empty or odd text.
    int widthValue() const;
    int heightValue() const;
    int bitrateValue() const;

private:
    void dispatchChange(int list);
    void videoCodecChanged();
    void frameSizeChanged();
    void bitrateRebuild();
    void audioCodecChanged();
    void audioBitrateRefill();
    void videoBitrateChanged();
    void afterListChange();
    void markAndStore();
    void storeValues(qsizetype row, bool plain);
    void setSpin(SpinField& box, int value);
    void raiseToMinimum(SpinField& box);
    void setSizeBoxesVisible(bool visible);
    void refreshPresetListLabels();
    void dropFromMainList(const QString& id);
    qsizetype selectedPresetRow() const;
    qsizetype formatRowOf(int list) const;

    Catalogue& m_catalogue;
    std::array<bool, 11> m_locked{}; // a lock mark of the applied preset keeps the list disabled
    qsizetype m_appliedRow = 0;
    int m_heldStores = 0; // while above 0, changes reach the row only when the outer change ends
};

// "High", "Standard", "SmallSize", or "" for no choice.
QString Quality_Text(int radio);

} // namespace morvane
