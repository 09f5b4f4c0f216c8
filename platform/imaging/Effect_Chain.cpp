#include "Effect_Chain.h"

#include "Effects_Area.h"
#include "Effects_Geometric.h"
#include "Effects_Point.h"

#include <cfenv>
#include <cmath>
#include <cstdlib>
#include <exception>
#include <limits>
#include <optional>

namespace morvane::imaging {

namespace {

// The values of one token, P1 first, each rounded to the nearest integer with ties to even.
using Values = std::vector<long>;

struct Row {
    std::string_view name;
    int values; // how many of P1, P2 ... the call needs
    void (*run)(const Frame&, const Values&, std::uint32_t seed);
};

// The colour pickers' numbers pass through as they are; a negative one means nothing sensible.
std::uint32_t Colour(long v) {
    return static_cast<std::uint32_t>(std::max(0L, v)) & 0xFFFFFFu;
}
int I(long v) {
    return static_cast<int>(v);
} // values are already within 32 bits
float Div(long v, float by) {
    return static_cast<float>(v) / by;
}

// Every name the chain knows, with the call it makes. Names compare exactly, case included.
const Row kTable[] = {
    {"Sepia", 0, [](const Frame& f, const Values&, std::uint32_t) { Sepia(f); }},
    {"Mosaic", 1, [](const Frame& f, const Values& p, std::uint32_t) { Mosaic(f, I(p[0])); }},
    {"Hue", 1, [](const Frame& f, const Values& p, std::uint32_t) { Hue(f, I(p[0])); }},
    {"StretchHistogram", 1,
     [](const Frame& f, const Values& p, std::uint32_t) { StretchHistogram(f, 7, static_cast<double>(p[0])); }},
    // Drops and drips keep their places from frame to frame (seed 0), so that they stay put while the
    // video plays and their maps are made once; grain and scatter change with every frame.
    {"RainDrops", 3,
     [](const Frame& f, const Values& p, std::uint32_t) { RainDrops(f, I(p[0]), I(p[1]), I(p[2]), 0); }},
    {"FrostGlass", 1, [](const Frame& f, const Values& p, std::uint32_t s) { FrostGlass(f, I(p[0]), s); }},
    {"PolarCoordinates", 0, [](const Frame& f, const Values&, std::uint32_t) { PolarCoordinates(f, 0); }},
    {"WebColors", 0, [](const Frame& f, const Values&, std::uint32_t) { WebColors(f); }},
    {"SoftnerBlur", 0, [](const Frame& f, const Values&, std::uint32_t) { SoftnerBlur(f); }},
    {"SmartBlur", 1, [](const Frame& f, const Values& p, std::uint32_t) { SmartBlur(f, I(p[0])); }},
    {"Roll", 0, [](const Frame& f, const Values&, std::uint32_t) { Roll(f); }},
    {"Caricature", 0, [](const Frame& f, const Values&, std::uint32_t) { Caricature(f); }},
    {"FourCorners", 0, [](const Frame& f, const Values&, std::uint32_t) { FourCorners(f); }},
    {"Make3D", 1, [](const Frame& f, const Values& p, std::uint32_t) { Make3DEffect(f, I(p[0])); }},
    {"Relief", 0, [](const Frame& f, const Values&, std::uint32_t) { Relief(f); }},
    {"Blur", 0, [](const Frame& f, const Values&, std::uint32_t) { Blur(f); }},
    {"FishEye", 0, [](const Frame& f, const Values&, std::uint32_t) { FishEye(f); }},
    {"Melt", 0, [](const Frame& f, const Values&, std::uint32_t) { Melt(f, 0); }},
    {"Solarize", 0, [](const Frame& f, const Values&, std::uint32_t) { Solarize(f, -1); }},
    {"Diffuse", 0, [](const Frame& f, const Values&, std::uint32_t s) { Diffuse(f, s); }},
    {"ReduceTo8Colors", 0, [](const Frame& f, const Values&, std::uint32_t) { ReduceTo8Colors(f); }},
    {"AntiAlias", 0, [](const Frame& f, const Values&, std::uint32_t) { AntiAlias(f, 50); }},
    {"Sharpening", 1, [](const Frame& f, const Values& p, std::uint32_t) { Sharpening(f, Div(p[0], 100)); }},
    {"Gray Scale", 0, [](const Frame& f, const Values&, std::uint32_t) { GrayScale(f, 0); }},
    {"Invert", 1, [](const Frame& f, const Values& p, std::uint32_t) { Invert(f, I(p[0])); }},
    {"ReduceColors", 1, [](const Frame& f, const Values& p, std::uint32_t) { ReduceColors(f, I(p[0])); }},
    {"Stamp", 1, [](const Frame& f, const Values& p, std::uint32_t) { Stamp(f, I(p[0])); }},
    {"BackDropRemoval", 3,
     [](const Frame& f, const Values& p, std::uint32_t) {
         BackDropRemoval(f, Colour(p[1]), Colour(p[2]), I(p[0]));
     }},
    {"AmbientLight", 1, [](const Frame& f, const Values& p, std::uint32_t) { AmbientLight(f, 4, I(p[0])); }},
    {"Tone", 1, [](const Frame& f, const Values& p, std::uint32_t) { Tone(f, 4, I(p[0])); }},
    {"BackDropRemovalEx", 3,
     [](const Frame& f, const Values& p, std::uint32_t) {
         BackDropRemovalEx(f, Colour(p[1]), Colour(p[2]), I(p[0]), -1, -1, -1, 0);
     }},
    {"Rock", 1, [](const Frame& f, const Values& p, std::uint32_t) { Rock(f, I(p[0])); }},
    {"Emboss", 1, [](const Frame& f, const Values& p, std::uint32_t) { Emboss(f, Div(p[0], 100)); }},
    {"Noise", 1, [](const Frame& f, const Values& p, std::uint32_t s) { ColorRandomize(f, I(p[0]), s); }},
    {"Shift", 1, [](const Frame& f, const Values& p, std::uint32_t s) { Shift(f, I(p[0]), s); }},
    {"Twirl", 1, [](const Frame& f, const Values& p, std::uint32_t) { Twirl(f, I(p[0])); }},
    {"Swirl", 1, [](const Frame& f, const Values& p, std::uint32_t) { Swirl(f, I(p[0])); }},
    {"Glowing Edges", 2, [](const Frame& f, const Values& p, std::uint32_t) { Neon(f, I(p[0]), I(p[1])); }},
    {"Mirror", 1, [](const Frame& f, const Values& p, std::uint32_t) { Canvas(f, I(p[0])); }},
    {"Waves", 3,
     [](const Frame& f, const Values& p, std::uint32_t) {
         Waves(f, I(p[0]), I(p[1]), static_cast<std::uint8_t>(p[2] != 0));
     }},
    {"DetectBorders", 3,
     [](const Frame& f, const Values& p, std::uint32_t) {
         DetectBorders(f, I(p[0]), Colour(p[1]), Colour(p[2]));
     }},
    {"Saturation", 1, [](const Frame& f, const Values& p, std::uint32_t) { Saturation(f, I(p[0])); }},
    {"Find Edges", 2, [](const Frame& f, const Values& p, std::uint32_t) { FindEdges(f, I(p[0]), I(p[1])); }},
    {"AdvancedBlur", 3,
     [](const Frame& f, const Values& p, std::uint32_t) {
         AdvancedBlur(f, I(p[0]), static_cast<std::int16_t>(p[1]), p[2] != 0);
     }},
    {"MotionBlur", 2,
     [](const Frame& f, const Values& p, std::uint32_t) { MotionBlur(f, static_cast<double>(p[0]), I(p[1])); }},
    {"ColorBalance", 3,
     [](const Frame& f, const Values& p, std::uint32_t) { ColorBalance(f, I(p[0]), I(p[1]), I(p[2])); }},
    {"Fragment", 1, [](const Frame& f, const Values& p, std::uint32_t) { Fragment(f, I(p[0])); }},
    {"FarBlur", 1, [](const Frame& f, const Values& p, std::uint32_t) { FarBlur(f, I(p[0])); }},
    {"RadialBlur", 1, [](const Frame& f, const Values& p, std::uint32_t) { RadialBlur(f, I(p[0])); }},
    {"ZoomBlur", 1, [](const Frame& f, const Values& p, std::uint32_t) { ZoomBlur(f, I(p[0])); }},
    {"Fog", 1, [](const Frame& f, const Values& p, std::uint32_t) { Fog(f, I(p[0])); }},
    {"MediumTones", 1, [](const Frame& f, const Values& p, std::uint32_t) { MediumTones(f, I(p[0])); }},
    {"CircularWaves", 2,
     [](const Frame& f, const Values& p, std::uint32_t) { CircularWaves(f, I(p[0]), I(p[1])); }},
    {"CircularWavesEx", 2,
     [](const Frame& f, const Values& p, std::uint32_t) { CircularWavesEx(f, I(p[0]), I(p[1])); }},
    {"OilPaint", 2,
     [](const Frame& f, const Values& p, std::uint32_t) {
         // P1 / 50 rounded like every other value: to the nearest, ties to even.
         OilPaint(f, static_cast<int>(std::nearbyint(static_cast<double>(p[0]) / 50.0)), I(p[1]));
     }},
    {"NotePaper", 3,
     [](const Frame& f, const Values& p, std::uint32_t) {
         NotePaper(f, I(p[0]), 2, 20, 1, Colour(p[1]), Colour(p[2]));
     }},
    {"FishEyeEx", 1, [](const Frame& f, const Values& p, std::uint32_t) { FishEyeEx(f, static_cast<double>(p[0])); }},
    {"Cilindrical", 1,
     [](const Frame& f, const Values& p, std::uint32_t) { Cilindrical(f, static_cast<double>(p[0])); }},
    {"UnsharpMask", 1,
     [](const Frame& f, const Values& p, std::uint32_t) { UnsharpMask(f, 2, static_cast<double>(Div(p[0], 2))); }},
    {"BlockWaves", 2, [](const Frame& f, const Values& p, std::uint32_t) { BlockWaves(f, I(p[0]), I(p[1]), 1); }},
    {"TwirlEx", 2,
     [](const Frame& f, const Values& p, std::uint32_t) {
         TwirlEx(f, static_cast<double>(p[0]), static_cast<double>(p[1]));
     }},
    {"Metal", 2, [](const Frame& f, const Values& p, std::uint32_t) { Metallic(f, I(p[0]), I(p[1]), 1); }},
    {"Gold", 2, [](const Frame& f, const Values& p, std::uint32_t) { Metallic(f, I(p[0]), I(p[1]), 2); }},
    {"Ice", 2, [](const Frame& f, const Values& p, std::uint32_t) { Metallic(f, I(p[0]), I(p[1]), 3); }},
    {"RandomicalPoints", 2,
     [](const Frame& f, const Values& p, std::uint32_t s) { RandomicalPoints(f, I(p[0]), Colour(p[1]), s); }},
    {"Brightness", 1, [](const Frame& f, const Values& p, std::uint32_t) { Brightness(f, I(p[0])); }},
    {"Contrast", 1,
     [](const Frame& f, const Values& p, std::uint32_t) {
         Contrast(f, Div(p[0], 100), Div(p[0], 100), Div(p[0], 100));
     }},
    {"Gamma", 1, [](const Frame& f, const Values& p, std::uint32_t) { Gamma(f, Div(p[0], 25)); }},
    {"FlipV", 0, [](const Frame& f, const Values&, std::uint32_t) { Flip(f, f.width, f.height, false, true); }},
    {"FlipH", 0, [](const Frame& f, const Values&, std::uint32_t) { Flip(f, f.width, f.height, true, false); }},
    {"Flip-VH", 0, [](const Frame& f, const Values&, std::uint32_t) { Flip(f, f.width, f.height, true, true); }},
    {"Tile", 1, [](const Frame& f, const Values& p, std::uint32_t) { Tile(f, I(p[0]), I(p[0]), 8); }},
    {"Night Vision", 0,
     [](const Frame& f, const Values&, std::uint32_t s) {
         Gamma(f, 52.0f / 25.0f);
         ColorRandomize(f, 25, s);
         ColorBalance(f, -255, 0, -255);
     }},
    {"Color Filter", 1,
     [](const Frame& f, const Values& p, std::uint32_t) {
         ColorBalance(f, 0, -255, -255);
         Hue(f, I(p[0]));
     }},
};

const Row* Find(std::string_view name) {
    for (const Row& row : kTable)
        if (row.name == name) return &row;
    return nullptr;
}

std::string_view Trim(std::string_view s) {
    const auto first = s.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return {};
    return s.substr(first, s.find_last_not_of(" \t\r\n") - first + 1);
}

} // namespace

std::optional<long> EffectValue(std::string_view text) {
    const std::string s(Trim(text));
    if (s.empty() || s.find_first_not_of("+-.0123456789eE") != std::string::npos) return std::nullopt;
    char* end = nullptr;
    const double d = std::strtod(s.c_str(), &end);
    if (end != s.c_str() + s.size() || !std::isfinite(d)) return std::nullopt;
    const int mode = std::fegetround();
    std::fesetround(FE_TONEAREST);
    const double r = std::nearbyint(d);
    std::fesetround(mode);
    if (r < std::numeric_limits<std::int32_t>::min() || r > std::numeric_limits<std::int32_t>::max())
        return std::nullopt;
    return static_cast<long>(r);
}

namespace {

std::vector<std::string_view> Split(std::string_view s, char at) {
    std::vector<std::string_view> parts;
    std::size_t from = 0;
    while (true) {
        const std::size_t i = s.find(at, from);
        parts.push_back(s.substr(from, i == std::string_view::npos ? std::string_view::npos : i - from));
        if (i == std::string_view::npos) return parts;
        from = i + 1;
    }
}

} // namespace

ChainResult Run_EffectChain(const Frame& frame, std::string_view list, std::uint32_t seed) {
    ChainResult result;
    if (Trim(list).empty()) return result;
    std::string copy(list);
    if (copy.back() != ',') copy += ',';
    const bool drawing = frame.Valid();
    Values values;
    for (const std::string_view element : Split(copy, ',')) {
        if (Trim(element).empty()) continue;
        const std::vector<std::string_view> parts = Split(element, ':');
        const std::string_view name = parts.size() == 1 ? Trim(element) : parts[0];
        const Row* row = Find(name);
        if (!row) {
            result.unknown.emplace_back(name);
            continue;
        }
        values.clear();
        bool bad = static_cast<int>(parts.size()) - 1 < row->values; // a value the call needs is missing
        for (int i = 1; !bad && i <= row->values; ++i) {
            const std::optional<long> v = EffectValue(parts[static_cast<std::size_t>(i)]);
            bad = !v;
            if (v) values.push_back(*v);
        }
        // AdvancedBlur takes its second value as a 16-bit number: a larger one does not fit.
        if (!bad && row->name == "AdvancedBlur")
            bad = values[1] < std::numeric_limits<std::int16_t>::min() ||
                  values[1] > std::numeric_limits<std::int16_t>::max();
        if (bad) {
            // The frame keeps what the effects before this one did.
            result.complete = false;
            result.badToken = std::string(Trim(element));
            return result;
        }
        if (!drawing) continue;
        try {
            row->run(frame, values, seed);
        } catch (const std::exception& e) {
            // An effect that cannot run on this frame (OpenCV refuses, memory runs out) leaves it as
            // it is and the chain goes on: a conversion never ends over one effect.
            result.failed.emplace_back(std::string(row->name) + ": " + e.what());
        }
    }
    return result;
}

const std::vector<std::string_view>& ChainEffectNames() {
    static const std::vector<std::string_view> names = [] {
        std::vector<std::string_view> all;
        for (const Row& row : kTable)
            all.push_back(row.name);
        return all;
    }();
    return names;
}

} // namespace morvane::imaging
