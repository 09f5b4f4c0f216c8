// The effect list text and the tables behind the effect controls. Main thread; pure functions and
// constant data.
//
// An effect list is "token,token," where a token is a name with values ("Mosaic:5", "FlipV"); the
// order of the tokens is the order in which the frame goes through them.
#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace morvane {

// The list with `token` put in: it replaces the first element whose name the token contains (any
// case), or is added at the end; a token beginning with "-" removes that element instead. Never fails
// on any text.
QString Update_EffectsText(const QString& list, const QString& token);

// A value of a token as a whole number: rounded to the nearest, ties to even; nothing when the text is
// no number.
std::optional<int> EffectValueOf(const QString& text);

// One parameter control of an effect: a slider, a check box or a colour picker.
struct EffectParam {
    enum Kind { Slider, CheckBox, Colour } kind = Slider;
    int min = 0, max = 0; // sliders
    qint64 value = 0;     // the default: slider position, check value, or colour (R + 256 G + 65536 B)
    // Mirror's range is the preview's width and its default half of it.
    bool previewWidth = false;
};

struct EffectRow {
    QString name;
    std::vector<EffectParam> params; // in the order of the token's values
    QString rail;                    // the sliders' rail picture; "" for the default
};

// The parameters of every effect the frames know; nothing for a name without a row.
const EffectRow* EffectRowOf(const QString& name);
const std::vector<EffectRow>& EffectRows();

// The captions of the 18 effect buttons, and the longer choice list, in their order.
const QStringList& EffectButtonCaptions();
const QStringList& Cmb_EffectsList();

// The token an effect gets with every control at its default: "Mosaic:5", "Sepia".
QString DefaultEffectToken(const QString& name, int previewWidth);

// The named filters of the player: the text as the table holds it ("lutyuv=\"u=128:v=128\""); nothing
// for a name not in the table. The name is trimmed and compared exactly.
std::optional<QString> PlayFilterText(const QString& name);

} // namespace morvane
