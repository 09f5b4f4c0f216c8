#include "EffectsPanel.h"

#include "Effects_Mods.h"

#include <QStringList>

#include <algorithm>

namespace morvane {

namespace {

const char* const kAdjustNames[3] = {"Brightness", "Contrast", "Saturation"};
constexpr int kAdjustNeutral[3] = {0, 100, 0};
const char* const kFlipWords[3] = {"FlipV", "FlipH", "Flip-VH"};

// The buttons whose first slider is shown in the group box and restored from a stored list, with the
// value Cmd_Reset 3 gives it.
struct ValueButton {
    const char* name;
    int resetValue;
};
constexpr ValueButton kValueButtons[] = {
    {"Color Filter", 0},  {"Emboss", 128}, {"Mosaic", 5}, {"Invert", 255}, {"Metal", 0},      {"Rock", 5},
    {"Glowing Edges", 4}, {"Hue", 180},    {"Stamp", 60}, {"Noise", 50},   {"Find Edges", 4},
};

const ValueButton* ValueButtonOf(const QString& name) {
    for (const ValueButton& b : kValueButtons)
        if (name == QLatin1String(b.name)) return &b;
    return nullptr;
}

constexpr int kNoCheck = 65535; // the working table's "no check box here"
constexpr qint64 kNoColour = -1;

} // namespace

EffectsPanel::EffectsPanel(int labelBackColour) : m_labelBackColour(labelBackColour) {
    ButtonBackColour.fill(kUnselectedColour);
    LabelBackColour.fill(labelBackColour);
}

// ---- Adjust tab.

int EffectsPanel::AdjustMin(int index) {
    return index == 1 ? 0 : -255;
}
int EffectsPanel::AdjustMax(int index) {
    return index == 1 ? 200 : 255;
}

void EffectsPanel::SetAdjust(int index, int value) {
    if (index < 0 || index > 2) return;
    value = std::clamp(value, AdjustMin(index), AdjustMax(index));
    if (Slider_Adjust[static_cast<std::size_t>(index)] == value) return;
    Slider_Adjust[static_cast<std::size_t>(index)] = value;
    Slider_Adjust_Change(index);
}

void EffectsPanel::Slider_Adjust_Change(int index) {
    if (index >= 0 && index <= 2) {
        const auto i = static_cast<std::size_t>(index);
        const int value = Slider_Adjust[i];
        const QString token = (value == kAdjustNeutral[i] ? QStringLiteral("-") : QString()) +
                              QLatin1String(kAdjustNames[i]) + QLatin1Char(':') + QString::number(value);
        Txt_EffectsStr = Update_EffectsText(Txt_EffectsStr, token);
        // Contrast reads as -100..100 around its neutral point.
        lbl_AdjustValue[i] = QString::number(index == 1 ? value - 100 : value);
    }
    Dirty = true;
}

void EffectsPanel::Cmd_Adjust_Click(int index) {
    if (index >= 0 && index <= 2) {
        const QString word = QLatin1String(kFlipWords[index]);
        const bool on = Txt_EffectsStr.contains(word, Qt::CaseInsensitive);
        Txt_EffectsStr = Update_EffectsText(Txt_EffectsStr, on ? QLatin1Char('-') + word : word);
    }
    Dirty = true;
}

void EffectsPanel::Cmd_Reset(int index) {
    if (index == 2) {
        for (int i = 0; i < 3; ++i)
            SetAdjust(i, kAdjustNeutral[i]);
        for (const char* word : kFlipWords)
            Txt_EffectsStr = Update_EffectsText(Txt_EffectsStr, QLatin1Char('-') + QLatin1String(word));
    } else if (index == 3) {
        const int k = SelectedButton();
        if (k >= 0)
            if (const ValueButton* b = ValueButtonOf(EffectButtonCaptions().at(k).trimmed()))
                SetEffectSlider(0, b->resetValue);
    }
    Dirty = true;
}

// ---- Effect buttons.

int EffectsPanel::SelectedButton() const {
    for (int k = 0; k < kButtons; ++k)
        if (ButtonBackColour[static_cast<std::size_t>(k)] == kSelectedColour) return k;
    return -1;
}

void EffectsPanel::selectButtonColours(int k, bool selected) {
    ButtonBackColour[static_cast<std::size_t>(k)] = selected ? kSelectedColour : kUnselectedColour;
    LabelBackColour[static_cast<std::size_t>(k)] = selected ? kSelectedColour : m_labelBackColour;
}

void EffectsPanel::MarkButtonSelected(int k) {
    if (k >= 0 && k < kButtons) selectButtonColours(k, true);
}

void EffectsPanel::EffectButton_Click(int k) {
    if (k < 0 || k >= kButtons) return;
    const QStringList& captions = EffectButtonCaptions();
    // At most one button effect is in the list: the one selected before gives way.
    for (int i = 0; i < kButtons; ++i) {
        if (ButtonBackColour[static_cast<std::size_t>(i)] != kSelectedColour) continue;
        selectButtonColours(i, false);
        Txt_EffectsStr = Update_EffectsText(Txt_EffectsStr, QLatin1Char('-') + captions.at(i).trimmed());
    }
    selectButtonColours(k, true);
    const QString name = captions.at(k).trimmed();
    Dirty = true;
    if (name == QLatin1String("None")) {
        Pic_EffectValueBG_Visible = false;
        Emit_EffectToken(name);
        return;
    }
    Setup_EffectControls(name, m_previewWidth);
    if (ValueButtonOf(name)) {
        EffectValues_GroupBox_Caption = name;
        Pic_EffectValueBG_Visible = true;
    } else {
        Pic_EffectValueBG_Visible = false;
    }
    Emit_EffectToken(name);
}

void EffectsPanel::Cmb_Effects_Click(const QString& name, int previewWidth) {
    m_previewWidth = previewWidth;
    Setup_EffectControls(name, previewWidth);
    Pic_EffectValueBG_Visible = true;
    // The choice list replaces the whole list, adjustments and flips included.
    Txt_EffectsStr.clear();
    Emit_EffectToken(name);
    Dirty = true;
}

// ---- Parameter controls.

QString EffectsPanel::Setup_EffectControls(const QString& name, int previewWidth) {
    struct WorkRow {
        int max = 0, min = 0, value = 0;
        qint64 colour = kNoColour;
        int check = kNoCheck;
        QString rail;
    };
    std::array<WorkRow, kValueRows> work{};
    for (int i = 0; i < kValueRows; ++i) {
        const auto u = static_cast<std::size_t>(i);
        EffectValues_Slider[u].Tag = EffectValues_CheckBox[u].Tag = EffectValues_ColorPicker[u].Tag =
            kNotReady;
        EffectValues_Slider[u].Visible = EffectValues_CheckBox[u].Visible =
            EffectValues_ColorPicker[u].Visible = false;
    }
    EffectValues_GroupBox_Visible = false;

    // The effect's values fill the rows in order: a value moves to the next row when its kind of
    // control is taken there or would come before the last one placed, so that reading the rows back
    // (slider, check box, colour of row 0, then row 1 ...) gives the values in their order.
    if (const EffectRow* row = EffectRowOf(name)) {
        std::size_t r = 0;
        int lastKind = -1;
        for (const EffectParam& p : row->params) {
            if (static_cast<int>(p.kind) <= lastKind) ++r, lastKind = -1;
            if (r >= work.size()) break;
            WorkRow& w = work[r];
            switch (p.kind) {
            case EffectParam::Slider:
                w.min = p.previewWidth ? 0 : p.min;
                w.max = p.previewWidth ? previewWidth : p.max;
                w.value = static_cast<int>(p.previewWidth ? previewWidth / 2 : p.value);
                w.rail = row->rail;
                break;
            case EffectParam::CheckBox:
                w.check = static_cast<int>(p.value);
                break;
            case EffectParam::Colour:
                w.colour = p.value;
                break;
            }
            lastKind = static_cast<int>(p.kind);
        }
    }

    bool any = false;
    for (int i = 0; i < kValueRows; ++i) {
        const auto u = static_cast<std::size_t>(i);
        const WorkRow& w = work[u];
        if (w.min != 0 || w.max != 0) {
            Slider& s = EffectValues_Slider[u];
            s.Min = w.min;
            s.Max = w.max;
            s.Value = w.value; // the tag is still "Not Ready": no token yet
            s.Tag.clear();
            lbl_EffectValue[u] = QString::number(w.value);
            s.Visible = true;
            s.RailImage = w.rail.isEmpty() ? QStringLiteral("img_sliderrail_1.jpg") : w.rail;
            s.SliderImage = QStringLiteral("img_sliderimage2.jpg");
            any = true;
        }
        if (w.check != kNoCheck) {
            EffectValues_CheckBox[u].Value = w.check;
            EffectValues_CheckBox[u].Tag.clear();
            EffectValues_CheckBox[u].Visible = any = true;
        }
        if (w.colour != kNoColour) {
            EffectValues_ColorPicker[u].Color = w.colour;
            EffectValues_ColorPicker[u].Tag.clear();
            EffectValues_ColorPicker[u].Visible = any = true;
        }
    }
    EffectValues_GroupBox_Caption = name;
    EffectValues_GroupBox_Visible = any;
    return name;
}

void EffectsPanel::Emit_EffectToken(const QString& name) {
    if (name == QLatin1String("None")) return;
    QString t;
    for (int i = 0; i < kValueRows; ++i) {
        const auto u = static_cast<std::size_t>(i);
        if (EffectValues_Slider[u].Tag != kNotReady)
            t += QLatin1Char(':') + QString::number(EffectValues_Slider[u].Value);
        if (EffectValues_CheckBox[u].Tag != kNotReady)
            t += QLatin1Char(':') + QString::number(EffectValues_CheckBox[u].Value);
        if (EffectValues_ColorPicker[u].Tag != kNotReady)
            t += QLatin1Char(':') + QString::number(EffectValues_ColorPicker[u].Color);
    }
    Txt_EffectsStr = Update_EffectsText(Txt_EffectsStr, name + t);
    lbl_EffectValue0_Visible = name != QLatin1String("Color Filter");
}

void EffectsPanel::SetEffectSlider(int i, int value) {
    if (i < 0 || i >= kValueRows) return;
    Slider& s = EffectValues_Slider[static_cast<std::size_t>(i)];
    if (s.Tag != kNotReady) value = std::clamp(value, s.Min, std::max(s.Min, s.Max));
    if (s.Value == value) return;
    s.Value = value;
    if (s.Tag == kNotReady) return;
    lbl_EffectValue[static_cast<std::size_t>(i)] = QString::number(value);
    effectValueEvent();
}

void EffectsPanel::SetEffectCheckBox(int i, int value) {
    if (i < 0 || i >= kValueRows) return;
    CheckBox& c = EffectValues_CheckBox[static_cast<std::size_t>(i)];
    if (c.Value == value) return;
    c.Value = value;
    if (c.Tag != kNotReady) effectValueEvent();
}

void EffectsPanel::SetEffectColor(int i, qint64 colour) {
    if (i < 0 || i >= kValueRows) return;
    ColorPicker& c = EffectValues_ColorPicker[static_cast<std::size_t>(i)];
    if (c.Color == colour) return;
    c.Color = colour;
    if (c.Tag != kNotReady) effectValueEvent();
}

void EffectsPanel::effectValueEvent() {
    Emit_EffectToken(EffectValues_GroupBox_Caption);
    Dirty = true;
}

// ---- Restore and play filters.

bool EffectsPanel::Apply_EffectsText(const QString& list) {
    if (list.trimmed().isEmpty()) return true;
    QString copy = list;
    if (!copy.endsWith(QLatin1Char(','))) copy += QLatin1Char(',');
    const QStringList captions = EffectButtonCaptions();
    for (const QString& element : copy.split(QLatin1Char(','))) {
        if (element.trimmed().isEmpty()) continue;
        const QStringList parts = element.split(QLatin1Char(':'));
        const QString name = parts.first().trimmed();
        const int k = captions.indexOf(name);
        if (k >= 0) EffectButton_Click(k);

        // Only the first value is restored; the controls' defaults give the rest.
        const auto first = [&]() -> std::optional<int> {
            return parts.size() > 1 ? EffectValueOf(parts.at(1)) : std::nullopt;
        };
        int adjust = -1;
        for (int i = 0; i < 3; ++i)
            if (name == QLatin1String(kAdjustNames[i])) adjust = i;
        if (adjust >= 0) {
            const std::optional<int> v = first();
            if (!v) return false;
            SetAdjust(adjust, *v);
        } else if (ValueButtonOf(name)) {
            const std::optional<int> v = first();
            if (!v) return false;
            SetEffectSlider(0, *v);
        }
    }
    return true;
}

std::optional<QString> EffectsPanel::Apply_PlayFilter(const QString& name) {
    const std::optional<QString> text = PlayFilterText(name);
    if (!text) return std::nullopt;
    PlayFilter = *text;
    return QString(*text).remove(QLatin1Char('"'));
}

} // namespace morvane
