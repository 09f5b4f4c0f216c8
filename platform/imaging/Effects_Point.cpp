#include "Effects_Point.h"

#include <opencv2/core.hpp>
#include <opencv2/core/hal/intrin.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <vector>

namespace morvane::imaging {

namespace {

using Table = std::array<std::uint8_t, 256>;

// Rec. 601 luma weights, the ones photo editors use for "grey".
constexpr double kLumaR = 0.299, kLumaG = 0.587, kLumaB = 0.114;

// A float parameter clamped to its range; NaN gives the neutral value.
float ClampF(float v, float lo, float hi, float neutral) {
    return std::isnan(v) ? neutral : std::min(hi, std::max(lo, v));
}

Table TableOf(auto fn) {
    Table t{};
    for (int v = 0; v < 256; ++v)
        t[v] = Sat8(static_cast<int>(std::lround(fn(v))));
    return t;
}

void ApplyTables(const Frame& f, const Table& b, const Table& g, const Table& r) {
    ApplyChannelLuts(f, b.data(), g.data(), r.data());
}

// ---- Affine colour maps: out = M * (b, g, r) + offset, per pixel, in fixed point ----

// M's rows and columns in B, G, R order.
struct Affine {
    double m[3][3];
    double offset[3];
};

// Q13 coefficients: up to ±4 fits 16 bits. The bias carries the offset plus the rounding half in
// units of 64 (it is paired with a constant 64 in the dot products), i.e. a 1/128 level resolution.
constexpr int kShift = 13;
struct FixedAffine {
    std::int16_t m[3][3];
    std::int16_t bias[3];
};

std::int16_t Q13(double v) {
    return static_cast<std::int16_t>(Clamp(std::lround(v * (1 << kShift)), -32767L, 32767L));
}

// Each coefficient is within half a Q13 unit, so a row's error over 0..255 stays far below half a
// level: greys through a row that sums to one come out exactly as they went in.
FixedAffine ToFixed(const Affine& a) {
    FixedAffine q{};
    for (int row = 0; row < 3; ++row) {
        for (int col = 0; col < 3; ++col)
            q.m[row][col] = Q13(a.m[row][col]);
        q.bias[row] =
            static_cast<std::int16_t>(Clamp(std::lround((a.offset[row] + 0.5) * 128), -32767L, 32767L));
    }
    return q;
}

int MapOne(const FixedAffine& q, int row, int b, int g, int r) {
    return Sat8((q.m[row][0] * b + q.m[row][1] * g + q.m[row][2] * r + q.bias[row] * 64) >> kShift);
}

#if CV_SIMD128
std::int32_t PairOf(int lo, int hi) {
    return static_cast<std::int32_t>(static_cast<std::uint16_t>(lo) | static_cast<std::uint32_t>(hi) << 16);
}
#endif

// cv::transform would do this, but for four 8-bit channels it runs a scalar float loop (~4.5 ms a 720p
// frame); 16-bit dot products over 16 pixels at a time take a fraction of a millisecond.
void ApplyAffine(const Frame& f, const Affine& a) {
    if (!f.Valid()) return;
    const FixedAffine q = ToFixed(a);
#if CV_SIMD128
    cv::v_int16x8 kBG[3], kR1[3];
    for (int c = 0; c < 3; ++c) {
        kBG[c] = cv::v_reinterpret_as_s16(cv::v_setall_s32(PairOf(q.m[c][0], q.m[c][1])));
        kR1[c] = cv::v_reinterpret_as_s16(cv::v_setall_s32(PairOf(q.m[c][2], q.bias[c])));
    }
    const cv::v_int16x8 k64 = cv::v_setall_s16(64);
#endif
    for (int y = 0; y < f.height; ++y) {
        std::uint8_t* p = f.bits + static_cast<std::ptrdiff_t>(y) * f.stride;
        int x = 0;
#if CV_SIMD128
        for (; x + 16 <= f.width; x += 16, p += 64) {
            cv::v_uint8x16 b, g, r, alpha;
            cv::v_load_deinterleave(p, b, g, r, alpha);
            cv::v_uint16x8 b0, b1, g0, g1, r0, r1;
            cv::v_expand(b, b0, b1);
            cv::v_expand(g, g0, g1);
            cv::v_expand(r, r0, r1);
            // (b, g) and (r, 64) pairs per pixel, so that two dot products give a whole channel.
            cv::v_int16x8 bg[4], r1s[4];
            cv::v_zip(cv::v_reinterpret_as_s16(b0), cv::v_reinterpret_as_s16(g0), bg[0], bg[1]);
            cv::v_zip(cv::v_reinterpret_as_s16(b1), cv::v_reinterpret_as_s16(g1), bg[2], bg[3]);
            cv::v_zip(cv::v_reinterpret_as_s16(r0), k64, r1s[0], r1s[1]);
            cv::v_zip(cv::v_reinterpret_as_s16(r1), k64, r1s[2], r1s[3]);
            const auto channel = [&](int c) {
                const auto part = [&](int i) {
                    return cv::v_shr<kShift>(cv::v_dotprod(bg[i], kBG[c]) + cv::v_dotprod(r1s[i], kR1[c]));
                };
                return cv::v_pack_u(cv::v_pack(part(0), part(1)), cv::v_pack(part(2), part(3)));
            };
            cv::v_store_interleave(p, channel(0), channel(1), channel(2), alpha);
        }
#endif
        for (; x < f.width; ++x, p += 4) {
            const int b = p[0], g = p[1], r = p[2];
            for (int c = 0; c < 3; ++c)
                p[c] = static_cast<std::uint8_t>(MapOne(q, c, b, g, r));
        }
    }
}

// Every output channel a multiple of the luma plus an offset: a tinted monochrome.
Affine TintedLuma(const double (&scale)[3], const double (&offset)[3]) {
    Affine a{};
    for (int c = 0; c < 3; ++c) {
        a.m[c][0] = scale[c] * kLumaB, a.m[c][1] = scale[c] * kLumaG, a.m[c][2] = scale[c] * kLumaR;
        a.offset[c] = offset[c];
    }
    return a;
}

// The same map blended with the identity: 0 leaves the picture, 1 is the map alone.
Affine BlendWithIdentity(Affine a, double weight) {
    for (int row = 0; row < 3; ++row) {
        for (int col = 0; col < 3; ++col)
            a.m[row][col] = a.m[row][col] * weight + (row == col ? 1 - weight : 0);
        a.offset[row] *= weight;
    }
    return a;
}

// ---- Channel tables ----

// A light's colour (R, G, B) for AmbientLight's modes.
constexpr double kLights[][3] = {
    {255, 255, 255}, // 0 white
    {255, 188, 120}, // 1 candlelight
    {212, 228, 255}, // 2 cool daylight
    {210, 255, 210}, // 3 green
    {255, 228, 186}, // 4 warm white
    {255, 170, 160}, // 5 sunset
};
// A tone's colour (R, G, B) for Tone's modes.
constexpr double kTones[][3] = {
    {170, 130, 95},  // 0 sepia brown
    {200, 160, 60},  // 1 gold
    {110, 160, 110}, // 2 green
    {190, 120, 130}, // 3 rose
    {110, 140, 190}, // 4 cool blue
    {150, 120, 190}, // 5 violet
};

} // namespace

void Brightness(const Frame& f, int amount) {
    if (!f.Valid()) return;
    amount = Clamp(amount, -255, 255);
    cv::Mat m = MatOf(f);
    // Saturating SIMD arithmetic; a zero for the fourth byte keeps it.
    const int a = std::abs(amount);
    if (amount > 0) cv::add(m, cv::Scalar(a, a, a, 0), m);
    if (amount < 0) cv::subtract(m, cv::Scalar(a, a, a, 0), m);
}

void Contrast(const Frame& f, float red, float green, float blue) {
    const double k[3] = {ClampF(blue, 0, 2.55f, 1), ClampF(green, 0, 2.55f, 1), ClampF(red, 0, 2.55f, 1)};
    if (k[0] == 1 && k[1] == 1 && k[2] == 1) return;
    Affine a{};
    for (int c = 0; c < 3; ++c)
        a.m[c][c] = k[c], a.offset[c] = 127.5 * (1 - k[c]);
    ApplyAffine(f, a);
}

void Saturation(const Frame& f, int amount) {
    amount = Clamp(amount, -255, 255);
    if (amount == 0) return;
    // Each pixel moved away from (or towards) its own grey: s * colour + (1 - s) * luma.
    const double s = 1 + amount / 255.0;
    const double w[3] = {kLumaB, kLumaG, kLumaR};
    Affine a{};
    for (int row = 0; row < 3; ++row)
        for (int col = 0; col < 3; ++col)
            a.m[row][col] = (row == col ? s : 0) + (1 - s) * w[col];
    ApplyAffine(f, a);
}

void Gamma(const Frame& f, float gamma) {
    const double g = ClampF(gamma, 0.05f, 10, 1);
    if (g == 1) return;
    const Table t = TableOf([g](int v) { return 255 * std::pow(v / 255.0, 1 / g); });
    ApplyLut(f, t.data());
}

void Invert(const Frame& f, int amount) {
    if (!f.Valid()) return;
    amount = Clamp(amount, 0, 255);
    if (amount == 0) return;
    if (amount == 255) {
        cv::Mat m = MatOf(f);
        cv::bitwise_xor(m, cv::Scalar(255, 255, 255, 0), m);
        return;
    }
    // v + (255 - 2v) * t: a straight line from v to its negative.
    const double t = amount / 255.0;
    Affine a{};
    for (int c = 0; c < 3; ++c)
        a.m[c][c] = 1 - 2 * t, a.offset[c] = 255 * t;
    ApplyAffine(f, a);
}

void GrayScale(const Frame& f, int /*mode*/) {
    ApplyAffine(f, TintedLuma({1, 1, 1}, {0, 0, 0}));
}

void Sepia(const Frame& f) {
    // Luma toned brown: at mid grey about (148, 123, 90), white turns cream, black a very dark brown.
    ApplyAffine(f, TintedLuma({0.80, 0.96, 1.08}, {-12, 0, 10}));
}

void Hue(const Frame& f, int degrees) {
    degrees = Clamp(degrees, 0, 360);
    if (degrees % 360 == 0) return;
    // A rotation about the grey axis (1, 1, 1): greys stay, the mean of R, G and B is kept, and 120
    // degrees turns pure red into pure green, 240 into pure blue.
    const double th = degrees * std::numbers::pi / 180, c = std::cos(th), s = std::sin(th) / std::sqrt(3.0);
    const double d = c + (1 - c) / 3, plus = (1 - c) / 3 + s, minus = (1 - c) / 3 - s;
    // Rows and columns in B, G, R order: R' = d R + minus G + plus B, G' = plus R + d G + minus B, ...
    const Affine a{{{d, plus, minus}, {minus, d, plus}, {plus, minus, d}}, {0, 0, 0}};
    ApplyAffine(f, a);
}

void ColorBalance(const Frame& f, int red, int green, int blue) {
    red = Clamp(red, -255, 255), green = Clamp(green, -255, 255), blue = Clamp(blue, -255, 255);
    if (red == 0 && green == 0 && blue == 0) return;
    const auto add = [](int k) { return TableOf([k](int v) { return v + k; }); };
    ApplyTables(f, add(blue), add(green), add(red));
}

void ColorRandomize(const Frame& f, int amount, std::uint32_t seed) {
    if (!f.Valid()) return;
    amount = Clamp(amount, -255, 255);
    if (amount == 0) return;
    const bool grey = amount < 0;
    const int strength = std::abs(amount);
    // Random numbers per pixel cost too much for a frame's budget, so one strip of grain (8192 pixels
    // plus a row) is drawn per call and each row reads it from its own random offset: rows start at
    // unrelated places, so the repeats never line up into a visible pattern.
    constexpr int kOffsets = 8192;
    const int stripPx = kOffsets + f.width;
    std::vector<std::int16_t> strip(static_cast<std::size_t>(stripPx) * 4, 0);
    Random rng(seed);
    std::uint32_t bits = 0;
    int bitsLeft = 0;
    const auto grain = [&] { // triangular in [-strength, strength]: the difference of two random bytes
        if (bitsLeft == 0) bits = rng.Next(), bitsLeft = 2;
        const int d = static_cast<int>(bits & 255) - static_cast<int>((bits >> 8) & 255);
        bits >>= 16, --bitsLeft;
        return static_cast<std::int16_t>((d * strength + (d < 0 ? -127 : 127)) / 255);
    };
    for (std::size_t i = 0; i < strip.size(); i += 4) {
        strip[i] = grain();
        strip[i + 1] = grey ? strip[i] : grain();
        strip[i + 2] = grey ? strip[i] : grain(); // strip[i + 3], the fourth byte's, stays 0
    }
    // One pass per row adding the grain with saturation; no OpenCV call adds a signed 16-bit row to
    // an 8-bit one without converting the whole frame.
    const int rowBytes = f.width * 4;
    for (int y = 0; y < f.height; ++y) {
        std::uint8_t* p = f.bits + static_cast<std::ptrdiff_t>(y) * f.stride;
        const std::int16_t* n = strip.data() + static_cast<std::size_t>(rng.Range(0, kOffsets - 1)) * 4;
        int i = 0;
#if CV_SIMD128
        for (; i + 16 <= rowBytes; i += 16) {
            cv::v_uint16x8 lo, hi;
            cv::v_expand(cv::v_load(p + i), lo, hi);
            const cv::v_int16x8 a = cv::v_reinterpret_as_s16(lo) + cv::v_load(n + i);
            const cv::v_int16x8 b = cv::v_reinterpret_as_s16(hi) + cv::v_load(n + i + 8);
            cv::v_store(p + i, cv::v_pack_u(a, b));
        }
#endif
        for (; i < rowBytes; ++i)
            p[i] = Sat8(p[i] + n[i]);
    }
}

void Solarize(const Frame& f, int threshold) {
    if (threshold == -1) threshold = 128;
    threshold = Clamp(threshold, 0, 255);
    if (threshold == 255) return;
    const Table t = TableOf([threshold](int v) { return v > threshold ? 255 - v : v; });
    ApplyTables(f, t, t, t);
}

void ReduceTo8Colors(const Frame& f) {
    const Table t = TableOf([](int v) { return v >= 128 ? 255 : 0; });
    ApplyTables(f, t, t, t);
}

void ReduceColors(const Frame& f, int amount) {
    amount = Clamp(amount, 0, 255);
    if (amount == 0) return;
    // Levels fall geometrically, 256 to 2, so the slider's middle (about 22 levels) is still useful.
    const int levels = std::max(2, static_cast<int>(std::lround(256 * std::pow(128.0, -amount / 255.0))));
    const Table t = TableOf([levels](int v) { return (v * levels / 256) * 255.0 / (levels - 1); });
    ApplyTables(f, t, t, t);
}

void WebColors(const Frame& f) {
    const Table t = TableOf([](int v) { return (v + 25) / 51 * 51; });
    ApplyTables(f, t, t, t);
}

void AmbientLight(const Frame& f, int mode, int amount) {
    mode = Clamp(mode, 0, static_cast<int>(std::size(kLights)) - 1);
    amount = Clamp(amount, 0, 255);
    if (amount == 0) return;
    // Lit by the light: each channel scaled by the light's colour, then the light screened in at a
    // seventh of its strength, as the fill it gives the shadows.
    const double w = amount / 255.0;
    Table t[3];
    for (int c = 0; c < 3; ++c) {
        const double light = kLights[mode][2 - c] / 255.0, fill = light / 7;
        t[c] = TableOf([&](int v) {
            const double lit = v / 255.0 * light, target = 1 - (1 - lit) * (1 - fill);
            return v + (255 * target - v) * w;
        });
    }
    ApplyTables(f, t[0], t[1], t[2]);
}

void Tone(const Frame& f, int mode, int amount) {
    mode = Clamp(mode, 0, static_cast<int>(std::size(kTones)) - 1);
    amount = Clamp(amount, 0, 255);
    if (amount == 0) return;
    // The tone's colour scaled to the pixel's luma: mid grey becomes the tone itself.
    const double* tone = kTones[mode];
    const double toneLuma = kLumaR * tone[0] + kLumaG * tone[1] + kLumaB * tone[2];
    const double scale[3] = {tone[2] / toneLuma, tone[1] / toneLuma, tone[0] / toneLuma};
    ApplyAffine(f, BlendWithIdentity(TintedLuma(scale, {0, 0, 0}), amount / 255.0));
}

void MediumTones(const Frame& f, int level) {
    level = Clamp(level, 0, 255);
    if (level == 128) return;
    // A power curve, exponent 2.5 at 0 down to 0.4 at 255; the ends of the range stay where they are.
    const double p = std::pow(2.0, (128 - level) / 96.0);
    const Table t = TableOf([p](int v) { return 255 * std::pow(v / 255.0, p); });
    ApplyTables(f, t, t, t);
}

void StretchHistogram(const Frame& f, int channels, double clipPercent) {
    if (!f.Valid()) return;
    channels = Clamp(channels, 0, 7);
    clipPercent = std::isnan(clipPercent) ? 0 : Clamp(clipPercent, 0.0, 20.0);
    if (channels == 0) return;
    // One pass counts all three channels; cv::calcHist would take a pass per channel.
    std::array<std::array<std::int64_t, 256>, 3> hist{};
    for (int y = 0; y < f.height; ++y) {
        const std::uint8_t* p = f.bits + static_cast<std::ptrdiff_t>(y) * f.stride;
        for (int x = 0; x < f.width; ++x, p += 4)
            ++hist[0][p[0]], ++hist[1][p[1]], ++hist[2][p[2]];
    }
    const auto clip = static_cast<std::int64_t>(static_cast<double>(f.width) * f.height * clipPercent / 100);
    Table t[3];
    bool changes = false;
    for (int c = 0; c < 3; ++c) {
        int low = 0, high = 255;
        for (std::int64_t seen = hist[c][0]; seen <= clip && low < 255;)
            seen += hist[c][++low];
        for (std::int64_t seen = hist[c][255]; seen <= clip && high > 0;)
            seen += hist[c][--high];
        const bool stretch = (channels & (1 << c)) && high > low && (low > 0 || high < 255);
        changes = changes || stretch;
        t[c] = TableOf([&](int v) { return stretch ? (v - low) * 255.0 / (high - low) : v; });
    }
    if (changes) ApplyTables(f, t[0], t[1], t[2]);
}

void Fog(const Frame& f, int amount) {
    amount = Clamp(amount, 0, 127);
    if (amount == 0) return;
    // Blended towards a slightly cool light grey, at most half way: shadows lift, contrast fades.
    const double w = amount / 255.0;
    const auto towards = [w](double haze) { return TableOf([=](int v) { return v + (haze - v) * w; }); };
    ApplyTables(f, towards(236), towards(232), towards(228));
}

void Metallic(const Frame& f, int level, int shift, int kind) {
    if (!f.Valid()) return;
    level = Clamp(level, 0, 255), shift = Clamp(shift, 0, 255), kind = Clamp(kind, 1, 3);
    // Shadow, body and highlight colours (R, G, B) of each metal.
    constexpr double kRamps[3][3][3] = {
        {{24, 24, 28}, {150, 150, 156}, {250, 250, 252}}, // metal
        {{60, 38, 6}, {212, 172, 56}, {255, 246, 205}},   // gold
        {{10, 30, 62}, {120, 182, 232}, {236, 250, 255}}, // ice
    };
    const auto& ramp = kRamps[kind - 1];
    // Luma folded through a cosine: 1 to 4 cycles over black..white, its phase set by `shift`.
    const double cycles = 1 + 3 * level / 255.0, phase = shift / 255.0;
    Table t[3];
    for (int c = 0; c < 3; ++c)
        t[c] = TableOf([&](int v) {
            const double w = 0.5 - 0.5 * std::cos(2 * std::numbers::pi * (cycles * v / 255.0 + phase));
            const int ch = 2 - c;
            return w < 0.7 ? ramp[0][ch] + (ramp[1][ch] - ramp[0][ch]) * w / 0.7
                           : ramp[1][ch] + (ramp[2][ch] - ramp[1][ch]) * (w - 0.7) / 0.3;
        });
    // Grey first, so that each channel's table reads the luma.
    GrayScale(f, 0);
    ApplyTables(f, t[0], t[1], t[2]);
}

void BackDropRemoval(const Frame& f, std::uint32_t backdrop, std::uint32_t replacement, int tolerance) {
    BackDropRemovalEx(f, backdrop, replacement, tolerance, 0, -1, -1, 0);
}

void BackDropRemovalEx(const Frame& f, std::uint32_t backdrop, std::uint32_t replacement, int tolerance,
                       int a, int /*b*/, int /*c*/, int /*d*/) {
    if (!f.Valid()) return;
    tolerance = Clamp(tolerance, 0, 255);
    const int soft = a < 0 ? std::max(8, tolerance / 4) : std::min(a, 255);
    const Bgr key = BgrOf(backdrop), with = BgrOf(replacement);
    // One pass measuring each pixel's distance and blending; cv::inRange gives only a hard mask, and
    // setTo would overwrite the fourth byte.
    for (int y = 0; y < f.height; ++y) {
        std::uint8_t* p = f.bits + static_cast<std::ptrdiff_t>(y) * f.stride;
        for (int x = 0; x < f.width; ++x, p += 4) {
            const int dist =
                std::max({std::abs(p[0] - key.b), std::abs(p[1] - key.g), std::abs(p[2] - key.r)});
            if (dist > tolerance + soft) continue;
            // Weight of the replacement in 1/256: whole within the tolerance, fading over the soft edge.
            const int w = dist <= tolerance ? 256 : (tolerance + soft - dist) * 256 / soft;
            p[0] = static_cast<std::uint8_t>(p[0] + ((with.b - p[0]) * w) / 256);
            p[1] = static_cast<std::uint8_t>(p[1] + ((with.g - p[1]) * w) / 256);
            p[2] = static_cast<std::uint8_t>(p[2] + ((with.r - p[2]) * w) / 256);
        }
    }
}

} // namespace morvane::imaging
