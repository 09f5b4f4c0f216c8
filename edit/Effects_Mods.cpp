#include "Effects_Mods.h"

#include "Effect_Chain.h"

namespace morvane {

QString Update_EffectsText(const QString& list, const QString& token) {
    const bool removal = token.startsWith(QLatin1Char('-'));
    if (list.trimmed().isEmpty()) return removal ? QString() : token + QLatin1Char(',');
    QString s = list;
    if (!s.endsWith(QLatin1Char(','))) s += QLatin1Char(',');
    QStringList elements = s.split(QLatin1Char(','));
    bool matched = false;
    for (QString& element : elements) {
        if (element.trimmed().isEmpty()) continue;
        const qsizetype colon = element.indexOf(QLatin1Char(':'));
        const QString name = (colon < 0 ? element : element.left(colon)).trimmed();
        // Containment, not equality: a new "SmartBlur:20" takes the place of an old "Blur".
        if (token.contains(name, Qt::CaseInsensitive)) {
            element = removal ? QString() : token;
            matched = true;
            break;
        }
    }
    if (!matched) return removal ? s : s + token;
    QString result;
    for (const QString& element : elements)
        if (!element.trimmed().isEmpty()) result += element + QLatin1Char(',');
    return result;
}

std::optional<int> EffectValueOf(const QString& text) {
    const std::optional<long> v = imaging::EffectValue(text.toStdString());
    if (!v) return std::nullopt;
    return static_cast<int>(*v);
}

namespace {

constexpr qint64 kWhite = 16777215, kBlack = 0;

EffectParam S(int min, int max, int value) {
    return {EffectParam::Slider, min, max, value, false};
}
EffectParam Check(int value) {
    return {EffectParam::CheckBox, 0, 0, value, false};
}
EffectParam Col(qint64 colour) {
    return {EffectParam::Colour, 0, 0, colour, false};
}
EffectParam WidthSlider() {
    return {EffectParam::Slider, 0, 0, 0, true};
}

const QString kRail3 = QStringLiteral("img_sliderrail_3.jpg");

} // namespace

const std::vector<EffectRow>& EffectRows() {
    static const std::vector<EffectRow> rows = [] {
        std::vector<EffectRow> r = {
            {"Sepia", {}, {}},
            {"Mosaic", {S(0, 50, 5)}, {}},
            {"Hue", {S(0, 360, 180)}, kRail3},
            {"StretchHistogram", {S(0, 20, 0)}, {}},
            {"RainDrops", {S(1, 100, 30), S(1, 100, 30), S(1, 100, 30)}, {}},
            {"FrostGlass", {S(0, 3, 3)}, {}},
            {"PolarCoordinates", {}, {}},
            {"WebColors", {}, {}},
            {"SoftnerBlur", {}, {}},
            {"SmartBlur", {S(0, 50, 20)}, {}},
            {"Roll", {}, {}},
            {"Caricature", {}, {}},
            {"FourCorners", {}, {}},
            {"Make3D", {S(1, 10, 6)}, {}},
            {"Relief", {}, {}},
            {"Blur", {}, {}},
            {"FishEye", {}, {}},
            {"Melt", {}, {}},
            {"Solarize", {}, {}},
            {"Diffuse", {}, {}},
            {"ReduceTo8Colors", {}, {}},
            {"AntiAlias", {}, {}},
            {"Sharpening", {S(0, 70, 20)}, {}},
            {"Gray Scale", {}, {}},
            {"Invert", {S(0, 255, 255)}, {}},
            {"ReduceColors", {S(0, 255, 0)}, {}},
            {"Stamp", {S(0, 128, 60)}, {}},
            {"BackDropRemoval", {S(0, 255, 0), Col(kWhite), Col(kBlack)}, {}},
            {"AmbientLight", {S(0, 255, 255)}, {}},
            {"Tone", {S(0, 255, 0)}, {}},
            {"BackDropRemovalEx", {S(0, 255, 0), Col(kWhite), Col(kBlack)}, {}},
            {"Rock", {S(0, 10, 5)}, {}},
            {"Emboss", {S(0, 255, 128)}, {}},
            {"Noise", {S(-255, 255, 50)}, {}},
            {"Shift", {S(0, 255, 0)}, {}},
            {"Twirl", {S(-100, 100, 0)}, {}},
            {"Swirl", {S(-255, 255, 0)}, {}},
            {"Glowing Edges", {S(0, 6, 4), S(1, 3, 2)}, {}},
            {"Mirror", {WidthSlider()}, {}},
            {"Waves", {S(0, 25, 0), Check(1), S(0, 25, 0)}, {}},
            {"DetectBorders", {S(0, 128, 0), Col(kWhite), Col(kBlack)}, {}},
            {"Saturation", {S(-255, 255, 0)}, {}},
            {"Find Edges", {S(0, 6, 4), S(1, 3, 2)}, {}},
            {"AdvancedBlur", {S(0, 10, 0), Check(1), S(0, 50, 25)}, {}},
            {"MotionBlur", {S(0, 360, 0), S(1, 50, 15)}, {}},
            {"ColorBalance", {S(-255, 255, 0), S(-255, 255, 0), S(-255, 255, 0)}, {}},
            {"Fragment", {S(0, 50, 0)}, {}},
            {"FarBlur", {S(0, 50, 0)}, {}},
            {"RadialBlur", {S(0, 30, 0)}, {}},
            {"ZoomBlur", {S(0, 200, 0)}, {}},
            {"Fog", {S(0, 127, 0)}, {}},
            {"MediumTones", {S(0, 255, 128)}, {}},
            {"CircularWaves", {S(0, 20, 0), S(0, 20, 0)}, {}},
            {"CircularWavesEx", {S(0, 20, 0), S(0, 20, 0)}, {}},
            {"OilPaint", {S(0, 255, 0), S(0, 255, 0)}, {}},
            {"NotePaper", {S(0, 255, 128), Col(kWhite), Col(kBlack)}, {}},
            {"FishEyeEx", {S(-255, 255, 128)}, {}},
            {"Cilindrical", {S(-30, 30, 0)}, {}},
            {"UnsharpMask", {S(0, 15, 0)}, {}},
            {"BlockWaves", {S(0, 20, 0), S(0, 10, 0)}, {}},
            {"TwirlEx", {S(-360, 360, 0), S(-360, 360, 0)}, {}},
            {"Metal", {S(0, 100, 0), S(0, 255, 4)}, {}},
            {"Gold", {S(0, 255, 4), S(0, 255, 0)}, {}},
            {"Ice", {S(0, 255, 4), S(0, 255, 0)}, {}},
            {"RandomicalPoints", {S(2, 100, 5), Col(kWhite)}, {}},
            {"Brightness", {S(-255, 255, 0)}, {}},
            {"Contrast", {S(0, 255, 100)}, {}},
            {"Gamma", {S(0, 255, 25)}, {}},
            {"FlipV", {}, {}},
            {"FlipH", {}, {}},
            {"Flip-VH", {}, {}},
            {"Tile", {S(50, 100, 50)}, {}},
            {"Night Vision", {}, {}},
            {"Color Filter", {S(0, 300, 0)}, kRail3},
        };
        return r;
    }();
    return rows;
}

const EffectRow* EffectRowOf(const QString& name) {
    for (const EffectRow& row : EffectRows())
        if (row.name == name) return &row;
    return nullptr;
}

const QStringList& EffectButtonCaptions() {
    static const QStringList captions = {
        "Noise",        "Solarize", "Find Edges",    "Diffuse",      "Hue",    "Stamp",
        "Metal",        "Rock",     "Glowing Edges", "Night Vision", "Invert", "Blur",
        "Color Filter", "Emboss",   "Mosaic",        "Gray Scale",   "Sepia",  "None"};
    return captions;
}

const QStringList& Cmb_EffectsList() {
    static const QStringList names = {"None",
                                      "Sepia",
                                      "Mosaic",
                                      "AntiAlias",
                                      "Diffuse",
                                      "Solarize",
                                      "Melt",
                                      "FishEye",
                                      "Relief",
                                      "Make3D",
                                      "FourCorners",
                                      "Caricature",
                                      "Roll",
                                      "WebColors",
                                      "PolarCoordinates",
                                      "RainDrops",
                                      "Sharpening",
                                      "Blur",
                                      "SoftnerBlur",
                                      "SmartBlur",
                                      "AdvancedBlur",
                                      "MotionBlur",
                                      "FarBlur",
                                      "RadialBlur",
                                      "ZoomBlur",
                                      "Gray Scale",
                                      "Invert",
                                      "Stamp",
                                      "AmbientLight",
                                      "Tone",
                                      "Rock",
                                      "Emboss",
                                      "Glowing Edges",
                                      "Shift",
                                      "Twirl",
                                      "Swirl",
                                      "Neon",
                                      "Mirror",
                                      "Waves",
                                      "DetectBorders",
                                      "Saturation",
                                      "Find Edges",
                                      "Hue",
                                      "AlphaBlend",
                                      "ColorBalance",
                                      "Fragment",
                                      "Fog",
                                      "MediumTones",
                                      "CircularWaves",
                                      "CircularWavesEx",
                                      "OilPaint",
                                      "NotePaper",
                                      "FishEyeEx",
                                      "Cilindrical",
                                      "UnsharpMask",
                                      "BlockWaves",
                                      "BlendMode",
                                      "TwirlEx",
                                      "GlassBlendMode",
                                      "Metal",
                                      "Gold",
                                      "Ice",
                                      "RandomicalPoints",
                                      "Tile",
                                      "Brightness",
                                      "Contrast",
                                      "Gamma",
                                      "ReduceTo8Colors",
                                      "ReduceColors",
                                      "FlipV",
                                      "FlipH",
                                      "Flip-VH"};
    return names;
}

QString DefaultEffectToken(const QString& name, int previewWidth) {
    QString token = name;
    if (const EffectRow* row = EffectRowOf(name))
        for (const EffectParam& p : row->params)
            token += QLatin1Char(':') + QString::number(p.previewWidth ? previewWidth / 2 : p.value);
    return token;
}

std::optional<QString> PlayFilterText(const QString& name) {
    static const std::vector<std::pair<QString, QString>> table = {
        {"None", ""},
        {"Flip Vertical", "vflip"},
        {"Flip Horizontal", "hflip"},
        {"Negative", "negate"},
        {"Burn", "mp=eq2=1.0:2:0.5"},
        {"Grey Scale", "lutyuv=\"u=128:v=128\""},
        {"Alien", "swapuv"},
        {"Sepia", "lutyuv=\"y=1*clipval:u=90:v=145\""},
        {"Hue", "hue=h=90:s=1"},
        {"Gamma", "lutyuv=y=gammaval(0.5)"},
        {"Blur", "boxblur=6:6"},
        {"Retro", "lutrgb=\"b=70\""},
        {"Rotate -90", "transpose=1"},
        {"Rotate 90", "transpose=2,transpose=2"},
    };
    const QString key = name.trimmed();
    for (const auto& [n, text] : table)
        if (n == key) return text;
    return std::nullopt;
}

} // namespace morvane
