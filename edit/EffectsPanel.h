// The Effect and Adjust tabs of the edit window as a model: the effect list text (Txt_EffectsStr),
// the three adjust sliders and the flips, the 18 effect buttons, the five rows of parameter controls
// and the play filter. The window shows these fields and calls the handlers; tests drive them without
// a window. Main thread only.
//
// Controls behave as the window's do: setting a slider to a new value raises its change handler, to
// the same value raises nothing; every user handler sets Dirty.
#pragma once

#include <QString>

#include <array>
#include <optional>

namespace morvane {

class EffectsPanel {
public:
    static constexpr int kSelectedColour = 33023;      // a selected effect button and its label
    static constexpr int kUnselectedColour = 14737632; // an effect button that is not selected
    static inline const QString kNotReady = QStringLiteral("Not Ready");
    static constexpr int kButtons = 18;
    static constexpr int kValueRows = 5;

    struct Slider {
        int Min = 0, Max = 0, Value = 0;
        QString Tag = kNotReady;
        bool Visible = false;
        QString RailImage, SliderImage;
    };
    struct CheckBox {
        int Value = 0;
        QString Tag = kNotReady;
        bool Visible = false;
    };
    struct ColorPicker {
        qint64 Color = 0;
        QString Tag = kNotReady;
        bool Visible = false;
    };

    explicit EffectsPanel(int labelBackColour = kUnselectedColour);

    QString Txt_EffectsStr;
    bool Dirty = false;

    // ---- Adjust tab: Brightness, Contrast, Saturation.
    std::array<int, 3> Slider_Adjust{0, 100, 0};
    std::array<QString, 3> lbl_AdjustValue{QStringLiteral("0"), QStringLiteral("0"), QStringLiteral("0")};
    static int AdjustMin(int index);
    static int AdjustMax(int index);
    // A user or the program moves the slider; a new value raises Slider_Adjust_Change. Clamped.
    void SetAdjust(int index, int value);
    void Slider_Adjust_Change(int index);
    // 0 FlipV, 1 FlipH, 2 Flip-VH toggle their token; other indexes only set Dirty.
    void Cmd_Adjust_Click(int index);
    // 2: the Adjust tab to neutral and no flips; 3: the selected effect's first slider to its default.
    void Cmd_Reset(int index);

    // ---- Effect tab.
    std::array<int, kButtons> ButtonBackColour{};
    std::array<int, kButtons> LabelBackColour{};
    // The selected button, found by its colour as there is no other record; -1 for none.
    int SelectedButton() const;
    // Colours button k as selected and nothing else (the window's opening mark).
    void MarkButtonSelected(int k);
    void EffectButton_Click(int k);
    void Cmb_Effects_Click(const QString& name, int previewWidth);

    std::array<Slider, kValueRows> EffectValues_Slider;
    std::array<CheckBox, kValueRows> EffectValues_CheckBox;
    std::array<ColorPicker, kValueRows> EffectValues_ColorPicker;
    std::array<QString, kValueRows> lbl_EffectValue;
    bool lbl_EffectValue0_Visible = true;
    QString EffectValues_GroupBox_Caption;
    bool EffectValues_GroupBox_Visible = false;
    bool Pic_EffectValueBG_Visible = false;

    // The user's moves on the parameter controls; ignored while the control is not in use.
    void SetEffectSlider(int i, int value);
    void SetEffectCheckBox(int i, int value);
    void SetEffectColor(int i, qint64 colour);

    // Lays out the parameter controls of the effect; returns the group caption. `previewWidth` is
    // Mirror's range; the effects read sizes in pixels for imaging::kReferenceWidth, so the window
    // passes that, whatever its preview's size, and the output looks as the preview.
    QString Setup_EffectControls(const QString& name, int previewWidth);
    // Puts the effect's token, built from the controls in use, into the list.
    void Emit_EffectToken(const QString& name);

    // Restores the controls from a stored list. False when a value the controls need is no number: the
    // window then says the file " is not editable!".
    bool Apply_EffectsText(const QString& list);

    // The filter text for the player when `name` is a named play filter (quotes removed); the text as
    // the table holds it becomes PlayFilter. Nothing for another name.
    std::optional<QString> Apply_PlayFilter(const QString& name);
    QString PlayFilter;

private:
    void effectValueEvent();
    void selectButtonColours(int k, bool selected);
    int m_labelBackColour;
    int m_previewWidth = 0;
};

} // namespace morvane
