// The point effects: frame shape and foreign bytes kept, neutral values, known pixel results, clamped
// parameters, seeded grain and the sequences the effect list builds from them.
#include "EffectTestKit.h"
#include "Effects_Point.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

using namespace morvane::imaging;
using testkit::TestFrame;

namespace {

struct Named {
    std::string name;
    std::function<void(const Frame&)> apply;
};
// A call on `f` and its own text as the name the failures show.
#define E(call) (Named{#call, [](const Frame& f) { call; }})

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN(), kInf = std::numeric_limits<float>::infinity();

// Every effect of the family, with parameters that change the pattern frame.
// clang-format off
const std::vector<Named> kEffects = {
    E(Brightness(f, -40)),         E(Contrast(f, 1.5f, 0.5f, 2.0f)),  E(Saturation(f, 200)),
    E(Gamma(f, 0.6f)),             E(Invert(f, 255)),                 E(Invert(f, 100)),
    E(GrayScale(f, 0)),            E(Sepia(f)),                       E(Hue(f, 77)),
    E(ColorBalance(f, 30, -60, 90)), E(ColorRandomize(f, 80, 3)),     E(Solarize(f, -1)),
    E(ReduceTo8Colors(f)),         E(ReduceColors(f, 150)),           E(WebColors(f)),
    E(AmbientLight(f, 4, 255)),    E(Tone(f, 4, 200)),                E(MediumTones(f, 40)),
    E(StretchHistogram(f, 7, 5)),  E(Fog(f, 100)),                    E(Metallic(f, 90, 40, 2)),
    E(BackDropRemoval(f, 0x808080, 0x00FF00, 90)),
    E(BackDropRemovalEx(f, 0x808080, 0x00FF00, 60, -1, -1, -1, 0))};
// clang-format on

} // namespace

TEST(PointEffects, KeepSizeAlphaAndPaddingAndIgnoreInvalidFrames) {
    for (const Named& e : kEffects)
        for (const auto [w, h, padding] : {std::array{1, 1, 0}, {3, 2, 0}, {17, 9, 12}, {35, 4, 4}}) {
            SCOPED_TRACE(e.name + " " + std::to_string(w) + "x" + std::to_string(h));
            TestFrame t(w, h, padding);
            for (int i = 0; i < w * h; ++i)
                t.at(i % w, i / w)[3] = static_cast<std::uint8_t>(i * 29);
            e.apply(t.frame());
            EXPECT_TRUE(t.PaddingIntact());
            for (int i = 0; i < w * h; ++i)
                ASSERT_EQ(t.at(i % w, i / w)[3], static_cast<std::uint8_t>(i * 29));

            TestFrame bad(4, 3);
            const auto before = bad.bytes;
            for (const Frame f : {Frame{nullptr, 4, 3, 16}, Frame{bad.bytes.data(), 0, 3, 16},
                                  Frame{bad.bytes.data(), 4, 0, 16}, Frame{bad.bytes.data(), 4, 3, 15}})
                e.apply(f);
            EXPECT_EQ(bad.bytes, before);
        }
}

// Equal pixels give equal results wherever they sit, the vectorised part of a row and its tail alike.
TEST(PointEffects, MapEqualPixelsEqually) {
    for (const Named& e : kEffects) {
        if (e.name.starts_with("ColorRandomize")) continue;
        for (const auto& c :
             {std::array<std::uint8_t, 3>{0, 0, 0}, {255, 255, 255}, {200, 30, 90}, {17, 240, 128}}) {
            SCOPED_TRACE(e.name + " on " + std::to_string(c[0] + 256 * c[1] + 65536 * c[2]));
            TestFrame t(37, 2, 8);
            t.Fill(c[0], c[1], c[2]);
            e.apply(t.frame());
            for (int i = 0; i < t.width * t.height; ++i)
                ASSERT_EQ(t.Px(i % t.width, i / t.width), t.Px(0, 0)) << i;
        }
    }
}

TEST(PointEffects, NeutralParameterLeavesFrameUnchanged) {
    for (const Named& e :
         {E(Brightness(f, 0)), E(Contrast(f, 1, 1, 1)), E(Contrast(f, kNaN, kNaN, kNaN)), E(Saturation(f, 0)),
          E(Gamma(f, 1)), E(Gamma(f, kNaN)), E(Invert(f, 0)), E(Hue(f, 0)), E(Hue(f, 360)),
          E(ColorBalance(f, 0, 0, 0)), E(ColorRandomize(f, 0, 9)), E(Solarize(f, 255)), E(ReduceColors(f, 0)),
          E(AmbientLight(f, 4, 0)), E(Tone(f, 4, 0)), E(MediumTones(f, 128)), E(StretchHistogram(f, 0, 5)),
          E(Fog(f, 0))}) {
        SCOPED_TRACE(e.name);
        TestFrame t(33, 7, 4), original(33, 7, 4);
        e.apply(t.frame());
        EXPECT_EQ(t.Pixels(), original.Pixels());
    }
}

// Two input pixels (B, G, R, B, G, R) and what they must become, within a tolerance.
TEST(PointEffects, KnownPixelResults) {
    struct Case {
        Named effect;
        std::array<int, 6> in, out;
        int tolerance;
    };
    const Case cases[] = {
        {E(Invert(f, 255)), {0, 100, 255, 7, 128, 250}, {255, 155, 0, 248, 127, 5}, 0},
        {E(Invert(f, 128)), {0, 255, 128, 0, 0, 0}, {128, 127, 128, 128, 128, 128}, 1},
        {E(GrayScale(f, 0)), {0, 0, 255, 255, 0, 0}, {76, 76, 76, 29, 29, 29}, 1},
        {E(GrayScale(f, 0)), {0, 255, 0, 255, 255, 255}, {150, 150, 150, 255, 255, 255}, 1},
        {E(Brightness(f, 40)), {10, 100, 250, 0, 0, 0}, {50, 140, 255, 40, 40, 40}, 0},
        {E(Brightness(f, -40)), {10, 100, 250, 255, 255, 255}, {0, 60, 210, 215, 215, 215}, 0},
        {E(Brightness(f, 9999)), {0, 1, 200, 3, 3, 3}, {255, 255, 255, 255, 255, 255}, 0},
        {E(Contrast(f, 0, 0, 0)), {0, 90, 255, 5, 5, 5}, {128, 128, 128, 128, 128, 128}, 0},
        {E(Contrast(f, 2, 2, 2)), {100, 128, 200, 0, 255, 160}, {72, 128, 255, 0, 255, 192}, 1},
        {E(Gamma(f, 1.5f)), {64, 0, 255, 128, 128, 128}, {102, 0, 255, 161, 161, 161}, 1},
        {E(Gamma(f, 0)), {128, 250, 255, 0, 0, 0}, {0, 172, 255, 0, 0, 0}, 1},
        {E(Gamma(f, -3)), {128, 250, 255, 0, 0, 0}, {0, 172, 255, 0, 0, 0}, 1},
        {E(Hue(f, 120)), {0, 0, 255, 90, 90, 90}, {0, 255, 0, 90, 90, 90}, 1},
        {E(Hue(f, 240)), {0, 0, 255, 0, 200, 0}, {255, 0, 0, 0, 0, 200}, 1},
        {E(Saturation(f, -255)), {0, 0, 255, 40, 40, 40}, {76, 76, 76, 40, 40, 40}, 1},
        {E(ColorBalance(f, -255, 0, -255)), {100, 150, 200, 255, 0, 255}, {0, 150, 0, 0, 0, 0}, 0},
        {E(Solarize(f, -1)), {200, 100, 128, 129, 255, 0}, {55, 100, 128, 126, 0, 0}, 0},
        {E(ReduceTo8Colors(f)), {100, 128, 200, 127, 0, 255}, {0, 255, 255, 0, 0, 255}, 0},
        {E(ReduceColors(f, 255)), {100, 128, 200, 127, 0, 255}, {0, 255, 255, 0, 0, 255}, 0},
        {E(WebColors(f)), {0, 26, 130, 25, 230, 255}, {0, 51, 153, 0, 255, 255}, 0},
        {E(StretchHistogram(f, 7, 0)), {50, 60, 70, 150, 160, 170}, {0, 0, 0, 255, 255, 255}, 0},
        {E(StretchHistogram(f, 1, 0)), {50, 60, 70, 150, 160, 170}, {0, 60, 70, 255, 160, 170}, 0},
        {E(BackDropRemoval(f, 0x0000FF, 0xFF0000, 10)), {5, 0, 250, 30, 0, 255}, {255, 0, 0, 30, 0, 255}, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.effect.name);
        TestFrame t(2, 1, 4);
        t.Set(0, 0, c.in[0], c.in[1], c.in[2]);
        t.Set(1, 0, c.in[3], c.in[4], c.in[5]);
        c.effect.apply(t.frame());
        for (int i = 0; i < 6; ++i)
            EXPECT_NEAR(t.Px(i / 3, 0)[i % 3], c.out[i], c.tolerance) << "value " << i;
    }
}

TEST(PointEffects, OutOfRangeParametersActAsTheNearestEnd) {
    // clang-format off
    const std::pair<Named, Named> cases[] = {
        {E(Brightness(f, INT_MAX)), E(Brightness(f, 255))}, {E(Brightness(f, INT_MIN)), E(Brightness(f, -255))},
        {E(Contrast(f, kInf, -kInf, 9)), E(Contrast(f, 2.55f, 0, 2.55f))},
        {E(Saturation(f, INT_MAX)), E(Saturation(f, 255))}, {E(Invert(f, 300)), E(Invert(f, 255))},
        {E(Gamma(f, 1e30f)), E(Gamma(f, 10))},              {E(Gamma(f, -kInf)), E(Gamma(f, 0.05f))},
        {E(Hue(f, 1000)), E(Hue(f, 360))},                  {E(Hue(f, -90)), E(Hue(f, 0))},
        {E(ColorBalance(f, INT_MIN, 999, 256)), E(ColorBalance(f, -255, 255, 255))},
        {E(ColorRandomize(f, INT_MIN, 5)), E(ColorRandomize(f, -255, 5))},
        {E(Solarize(f, -50)), E(Solarize(f, 0))},           {E(ReduceColors(f, 999)), E(ReduceColors(f, 255))},
        {E(AmbientLight(f, 99, 999)), E(AmbientLight(f, 5, 255))}, {E(Tone(f, -7, 300)), E(Tone(f, 0, 255))},
        {E(MediumTones(f, INT_MAX)), E(MediumTones(f, 255))}, {E(Fog(f, 500)), E(Fog(f, 127))},
        {E(StretchHistogram(f, 99, 1e300)), E(StretchHistogram(f, 7, 20))},
        {E(StretchHistogram(f, 7, std::nan(""))), E(StretchHistogram(f, 7, 0))},
        {E(Metallic(f, 999, -5, 7)), E(Metallic(f, 255, 0, 3))},
        {E(BackDropRemoval(f, 0, 0xFF, 999)), E(BackDropRemoval(f, 0, 0xFF, 255))}};
    // clang-format on
    for (const auto& [wild, end] : cases) {
        SCOPED_TRACE(wild.name);
        TestFrame a(19, 5, 4), b(19, 5, 4);
        wild.apply(a.frame());
        end.apply(b.frame());
        EXPECT_EQ(a.Pixels(), b.Pixels());
    }
}

// Per seed the same grain every time, other grain for another seed; centred, of about the asked
// strength, grey when asked, and no two rows alike.
TEST(PointEffects, NoiseIsSeededGrain) {
    for (const int amount : {25, 50, -50, -100}) {
        SCOPED_TRACE(amount);
        const auto grained = [amount](std::uint32_t seed) {
            TestFrame t(301, 40, 4);
            t.Fill(128, 128, 128);
            ColorRandomize(t.frame(), amount, seed);
            return t;
        };
        TestFrame a = grained(1), again = grained(1), other = grained(2);
        EXPECT_EQ(a.Pixels(), again.Pixels());
        EXPECT_NE(a.Pixels(), other.Pixels());
        double sum = 0, squares = 0;
        int greyPixels = 0;
        for (int y = 0; y < a.height; ++y)
            for (int x = 0; x < a.width; ++x) {
                const auto p = a.Px(x, y);
                greyPixels += p[0] == p[1] && p[1] == p[2];
                sum += p[1] - 128, squares += (p[1] - 128) * (p[1] - 128);
            }
        const double n = a.width * a.height, mean = sum / n, sd = std::sqrt(squares / n - mean * mean);
        const double expectedSd = std::abs(amount) / std::sqrt(6.0);
        EXPECT_NEAR(mean, 0, 1.5);
        EXPECT_NEAR(sd, expectedSd, expectedSd * 0.15);
        EXPECT_EQ(greyPixels > n / 2, amount < 0) << greyPixels << " grey pixels";
        for (int y = 1; y < a.height; ++y)
            EXPECT_FALSE(a.Px(100, y - 1) == a.Px(100, y) && a.Px(200, y - 1) == a.Px(200, y) &&
                         a.Px(300, y - 1) == a.Px(300, y));
    }
}

// The channel order a tint must give on greys: sepia, gold and warm light warm, blue tone and ice cool.
TEST(PointEffects, TintsOrderTheChannels) {
    // clang-format off
    const std::pair<Named, bool> cases[] = {
        {E(Sepia(f)), true},                {E(Tone(f, 0, 255)), true},      {E(Tone(f, 4, 255)), false},
        {E(AmbientLight(f, 4, 255)), true}, {E(Metallic(f, 0, 0, 2)), true}, {E(Metallic(f, 0, 0, 3)), false}};
    // clang-format on
    for (const auto& [effect, warm] : cases)
        for (const std::uint8_t grey : {64, 128, 200}) {
            SCOPED_TRACE(effect.name + " " + std::to_string(grey));
            TestFrame t(1, 1);
            t.Fill(grey, grey, grey);
            effect.apply(t.frame());
            const auto p = t.Px(0, 0); // B, G, R
            if (warm)
                EXPECT_TRUE(p[2] > p[1] && p[1] > p[0]) << p[2] << " " << p[1] << " " << p[0];
            else
                EXPECT_TRUE(p[0] > p[1] && p[1] > p[2]) << p[2] << " " << p[1] << " " << p[0];
        }
}

// The effect list's compositions: Night Vision green, grainy and brighter; Color Filter red turned.
TEST(PointEffects, DispatcherSequencesLookRight) {
    const auto nightVision = [](int grain) {
        TestFrame t(64, 32);
        Gamma(t.frame(), 2.08f);
        ColorRandomize(t.frame(), grain, 11);
        ColorBalance(t.frame(), -255, 0, -255);
        return t;
    };
    TestFrame t = nightVision(25), smooth = nightVision(0), original(64, 32);
    double green = 0, luma = 0;
    int grainy = 0;
    for (int y = 0; y < t.height; ++y)
        for (int x = 0; x < t.width; ++x) {
            const auto p = t.Px(x, y), o = original.Px(x, y);
            ASSERT_EQ(p[0] + p[2], 0);
            green += p[1], luma += 0.114 * o[0] + 0.587 * o[1] + 0.299 * o[2];
            grainy += p[1] != smooth.Px(x, y)[1];
        }
    EXPECT_GT(green, luma * 1.2);
    EXPECT_GT(grainy, t.width * t.height * 3 / 4);

    for (const auto& [degrees, b, g, r] :
         {std::array<int, 4>{120, 0, 200, 0}, {240, 200, 0, 0}, {60, 0, 133, 133}}) {
        SCOPED_TRACE(degrees);
        TestFrame red(1, 1);
        red.Fill(90, 40, 200);
        ColorBalance(red.frame(), 0, -255, -255);
        Hue(red.frame(), degrees);
        EXPECT_EQ(red.Px(0, 0), (std::array<int, 4>{b, g, r, 255}));
    }
}
