// Area effects: frames of odd shapes survive every effect with their padding, neutral values change
// nothing, and each effect shows its defining behaviour on frames made here.
#include "EffectTestKit.h"
#include "Effects_Area.h"

#include <climits>
#include <cmath>
#include <functional>
#include <string>

using namespace morvane::imaging;
using namespace morvane::imaging::testkit;

namespace {

struct Named {
    const char* name;
    std::function<void(const Frame&)> run;
};

// Every effect, at its usual values and at values far outside its range.
const std::vector<Named> kEveryEffect = {
    {"Blur", [](const Frame& f) { Blur(f); }},
    {"SoftnerBlur", [](const Frame& f) { SoftnerBlur(f); }},
    {"SmartBlur", [](const Frame& f) { SmartBlur(f, 20); }},
    {"AdvancedBlur", [](const Frame& f) { AdvancedBlur(f, 10, 1, true); }},
    {"AdvancedBlur box", [](const Frame& f) { AdvancedBlur(f, INT_MAX, 0, false); }},
    {"MotionBlur", [](const Frame& f) { MotionBlur(f, 45, 15); }},
    {"MotionBlur far", [](const Frame& f) { MotionBlur(f, -1e300, INT_MAX); }},
    {"FarBlur", [](const Frame& f) { FarBlur(f, 50); }},
    {"RadialBlur", [](const Frame& f) { RadialBlur(f, 30); }},
    {"ZoomBlur", [](const Frame& f) { ZoomBlur(f, 200); }},
    {"AntiAlias", [](const Frame& f) { AntiAlias(f, 50); }},
    {"Sharpening", [](const Frame& f) { Sharpening(f, 0.7f); }},
    {"UnsharpMask", [](const Frame& f) { UnsharpMask(f, INT_MAX, 1e9); }},
    {"FindEdges", [](const Frame& f) { FindEdges(f, 4, 2); }},
    {"Neon", [](const Frame& f) { Neon(f, INT_MIN, INT_MAX); }},
    {"Emboss", [](const Frame& f) { Emboss(f, 1.28f); }},
    {"Relief", [](const Frame& f) { Relief(f); }},
    {"Stamp", [](const Frame& f) { Stamp(f, 60); }},
    {"Rock", [](const Frame& f) { Rock(f, 5); }},
    {"Make3DEffect", [](const Frame& f) { Make3DEffect(f, 10); }},
    {"OilPaint", [](const Frame& f) { OilPaint(f, 5, 8); }},
    {"Mosaic", [](const Frame& f) { Mosaic(f, 99999); }},
    {"Fragment", [](const Frame& f) { Fragment(f, 50); }},
    {"Diffuse", [](const Frame& f) { Diffuse(f, 1); }},
    {"FrostGlass", [](const Frame& f) { FrostGlass(f, 3, 1); }},
    {"DetectBorders", [](const Frame& f) { DetectBorders(f, 40, 0xFFFFFF, 0); }},
    {"NotePaper", [](const Frame& f) { NotePaper(f, 128, 2, 20, 1, 0xFFFFFF, 0); }},
    {"RandomicalPoints", [](const Frame& f) { RandomicalPoints(f, 100, 0xFF, 1); }},
};

// Whether every pixel (B, G, R, A) passes `ok`.
bool Every(TestFrame& t, const std::function<bool(const std::array<int, 4>&)>& ok) {
    for (int y = 0; y < t.height; ++y)
        for (int x = 0; x < t.width; ++x)
            if (!ok(t.Px(x, y))) return false;
    return true;
}

} // namespace

TEST(AreaEffects, WorkOnAnyShapeWithinTheirRows) {
    // Sizes where kernels, blocks and offsets outgrow the frame; a wide, short one scales them up.
    const struct { int width, height, padding; } shapes[] = {{1, 1, 0}, {3, 2, 4}, {17, 9, 12}, {1500, 2, 8}};
    for (const auto& shape : shapes)
        for (const Named& effect : kEveryEffect) {
            TestFrame t(shape.width, shape.height, shape.padding);
            effect.run(t.frame());
            const std::string where = std::string(effect.name) + " at " + std::to_string(shape.width) + "x" +
                                      std::to_string(shape.height);
            EXPECT_TRUE(t.PaddingIntact()) << where;
            EXPECT_TRUE(Every(t, [](const auto& px) { return px[3] == 255; })) << where; // still opaque
        }
}

TEST(AreaEffects, InvalidFramesAreLeftAlone) {
    std::vector<std::uint8_t> bytes(400, 7);
    const Frame invalid[] = {{nullptr, 10, 10, 40},
                             {bytes.data(), 0, 10, 40},
                             {bytes.data(), 10, -1, 40},
                             {bytes.data(), 10, 10, 39}};
    for (const Frame& f : invalid)
        for (const Named& effect : kEveryEffect)
            effect.run(f);
    EXPECT_EQ(std::vector<std::uint8_t>(400, 7), bytes);
}

TEST(AreaEffects, NeutralValuesChangeNothing) {
    const std::vector<Named> neutral = {
        {"SmartBlur -5", [](const Frame& f) { SmartBlur(f, -5); }},
        {"AdvancedBlur 0", [](const Frame& f) { AdvancedBlur(f, 0, 1, true); }},
        {"MotionBlur 1", [](const Frame& f) { MotionBlur(f, 45, 1); }},
        {"MotionBlur -5", [](const Frame& f) { MotionBlur(f, NAN, -5); }},
        {"FarBlur 0", [](const Frame& f) { FarBlur(f, INT_MIN); }},
        {"RadialBlur 0", [](const Frame& f) { RadialBlur(f, 0); }},
        {"ZoomBlur 0", [](const Frame& f) { ZoomBlur(f, -3); }},
        {"AntiAlias 0", [](const Frame& f) { AntiAlias(f, 0); }},
        {"Sharpening 0", [](const Frame& f) { Sharpening(f, 0.0f); }},
        {"Sharpening NaN", [](const Frame& f) { Sharpening(f, NAN); }},
        {"UnsharpMask 0", [](const Frame& f) { UnsharpMask(f, 2, 0.0); }},
        {"OilPaint 0", [](const Frame& f) { OilPaint(f, 0, 40); }},
        {"Mosaic 1", [](const Frame& f) { Mosaic(f, 1); }},
        {"Mosaic 0", [](const Frame& f) { Mosaic(f, -9); }},
        {"Fragment 0", [](const Frame& f) { Fragment(f, 0); }},
        {"FrostGlass 0", [](const Frame& f) { FrostGlass(f, 0, 5); }},
        {"DetectBorders 0", [](const Frame& f) { DetectBorders(f, 0, 0xFF, 0xFF00); }},
    };
    const TestFrame original(640, 48, 8);
    for (const Named& effect : neutral) {
        TestFrame t = original;
        effect.run(t.frame());
        EXPECT_EQ(original.bytes, t.bytes) << effect.name;
    }
}

TEST(AreaEffects, MosaicBlocksTakeTheirMeanColour) {
    const struct {
        int width, height, size, block; // block: ScalePx of size at this width
    } cases[] = {{65, 7, 30, 3}, {40, 5, 99999, 3}, {1280, 9, 5, 10}, {100, 4, 50, 8}};
    for (const auto& c : cases) {
        TestFrame original(c.width, c.height), t = original;
        Mosaic(t.frame(), c.size);
        // Each block, those cut by the edges too, is uniform and its mean, rounded either way.
        for (int by = 0; by < c.height; by += c.block)
            for (int bx = 0; bx < c.width; bx += c.block) {
                const int ex = std::min(bx + c.block, c.width), ey = std::min(by + c.block, c.height);
                const int n = (ex - bx) * (ey - by);
                std::array<int, 3> sum{};
                for (int y = by; y < ey; ++y)
                    for (int x = bx; x < ex; ++x)
                        for (std::size_t ch = 0; ch < 3; ++ch)
                            sum[ch] += original.Px(x, y)[ch];
                for (int y = by; y < ey; ++y)
                    for (int x = bx; x < ex; ++x)
                        for (std::size_t ch = 0; ch < 3; ++ch) // |value - sum / n| <= 1/2, in whole numbers
                            ASSERT_LE(2 * std::abs(t.Px(x, y)[ch] * n - sum[ch]), n)
                                << c.width << " block " << bx << "," << by;
            }
    }
}

TEST(AreaEffects, FlatFramesComeOutFlat) {
    constexpr std::array<int, 4> kSame = {40, 120, 200, 255};
    const struct {
        Named effect;
        std::array<int, 4> flat;
    } cases[] = {
        {{"Blur", [](const Frame& f) { Blur(f); }}, kSame},
        {{"SoftnerBlur", [](const Frame& f) { SoftnerBlur(f); }}, kSame},
        {{"SmartBlur", [](const Frame& f) { SmartBlur(f, 50); }}, kSame},
        {{"AdvancedBlur", [](const Frame& f) { AdvancedBlur(f, 10, 1, true); }}, kSame},
        {{"MotionBlur", [](const Frame& f) { MotionBlur(f, 30, 50); }}, kSame},
        {{"FarBlur", [](const Frame& f) { FarBlur(f, 50); }}, kSame},
        {{"RadialBlur", [](const Frame& f) { RadialBlur(f, 30); }}, kSame},
        {{"ZoomBlur", [](const Frame& f) { ZoomBlur(f, 200); }}, kSame},
        {{"AntiAlias", [](const Frame& f) { AntiAlias(f, 100); }}, kSame},
        {{"Sharpening", [](const Frame& f) { Sharpening(f, 0.7f); }}, kSame},
        {{"UnsharpMask", [](const Frame& f) { UnsharpMask(f, 2, 7.5); }}, kSame},
        {{"Relief", [](const Frame& f) { Relief(f); }}, kSame},
        {{"OilPaint", [](const Frame& f) { OilPaint(f, 5, 0); }}, kSame},
        {{"Mosaic", [](const Frame& f) { Mosaic(f, 50); }}, kSame},
        {{"Fragment", [](const Frame& f) { Fragment(f, 50); }}, kSame},
        {{"FrostGlass", [](const Frame& f) { FrostGlass(f, 3, 9); }}, kSame},
        {{"FindEdges", [](const Frame& f) { FindEdges(f, 4, 2); }}, {255, 255, 255, 255}},
        {{"Neon", [](const Frame& f) { Neon(f, 4, 2); }}, {0, 0, 0, 255}},
        {{"Emboss", [](const Frame& f) { Emboss(f, 1.28f); }}, {128, 128, 128, 255}},
        {{"DetectBorders", [](const Frame& f) { DetectBorders(f, 40, 0xFF, 0xFF0000); }}, {255, 0, 0, 255}},
    };
    for (const auto& c : cases) {
        TestFrame t(700, 30, 4);
        t.Fill(40, 120, 200);
        c.effect.run(t.frame());
        EXPECT_TRUE(Every(t, [&](const auto& px) { return px == c.flat; })) << c.effect.name;
    }
}

TEST(AreaEffects, EdgeEffectsMarkAStep) {
    const Named cases[] = {
        {"FindEdges", [](const Frame& f) { FindEdges(f, 4, 2); }},
        {"Neon", [](const Frame& f) { Neon(f, 4, 2); }},
        {"Emboss", [](const Frame& f) { Emboss(f, 1.28f); }},
        {"DetectBorders", [](const Frame& f) { DetectBorders(f, 40, 0xFF, 0xFF0000); }},
    };
    for (const Named& effect : cases) {
        TestFrame t(900, 20); // dark left half, light right half
        t.Fill(30, 30, 30);
        for (int y = 0; y < t.height; ++y)
            for (int x = 450; x < t.width; ++x)
                t.Set(x, y, 220, 220, 220);
        effect.run(t.frame());
        // At the step the colour differs strongly from that of the flat parts.
        int change = 0;
        for (int x = 446; x < 454; ++x)
            for (std::size_t ch = 0; ch < 3; ++ch)
                change = std::max(change, std::abs(t.Px(x, 10)[ch] - t.Px(100, 10)[ch]));
        EXPECT_GE(change, 100) << effect.name;
        EXPECT_EQ(t.Px(100, 10), t.Px(800, 10)) << effect.name;
    }
}

TEST(AreaEffects, MotionBlurStreaksAlongItsAngle) {
    // A white dot on black: the streak reaches (along) but not (across), 10 pixels from the dot.
    const struct {
        double angle;
        int alongX, alongY, acrossX, acrossY;
    } cases[] = {
        {0, 10, 0, 0, 10}, {90, 0, -10, 10, 0}, {45, 7, -7, 7, 7}, {135, -7, -7, 7, -7}, {-45, 7, 7, 7, -7}};
    for (const auto& c : cases) {
        TestFrame t(400, 100);
        t.Fill(0, 0, 0);
        for (int y = 49; y <= 51; ++y)
            for (int x = 199; x <= 201; ++x)
                t.Set(x, y, 255, 255, 255);
        MotionBlur(t.frame(), c.angle, 50);
        EXPECT_GT(t.Px(200 + c.alongX, 50 + c.alongY)[1], 10) << c.angle;
        EXPECT_EQ(t.Px(200 + c.acrossX, 50 + c.acrossY)[1], 0) << c.angle;
    }
}

TEST(AreaEffects, SeededEffectsRepeatPerSeed) {
    const std::vector<std::function<void(const Frame&, std::uint32_t)>> seeded = {
        [](const Frame& f, std::uint32_t s) { Diffuse(f, s); },
        [](const Frame& f, std::uint32_t s) { FrostGlass(f, 2, s); },
        [](const Frame& f, std::uint32_t s) { RandomicalPoints(f, 5, 0xFFFFFF, s); },
    };
    for (std::size_t i = 0; i < seeded.size(); ++i) {
        TestFrame a(160, 90, 4), b = a, c = a;
        seeded[i](a.frame(), 11);
        seeded[i](b.frame(), 11);
        seeded[i](c.frame(), 12);
        EXPECT_EQ(a.bytes, b.bytes) << i;
        EXPECT_NE(a.bytes, c.bytes) << i;
    }
}

TEST(AreaEffects, OutOfRangeValuesActAsTheNearestLimit) {
    const struct {
        const char* name;
        void (*run)(const Frame&, int);
        int outside, limit;
    } cases[] = {
        {"FarBlur", [](const Frame& f, int v) { FarBlur(f, v); }, 1 << 30, 50},
        {"ZoomBlur", [](const Frame& f, int v) { ZoomBlur(f, v); }, INT_MAX, 200},
        {"Sharpening", [](const Frame& f, int v) { Sharpening(f, v / 100.0f); }, 500, 70},
        {"Emboss", [](const Frame& f, int v) { Emboss(f, v / 100.0f); }, 1 << 30, 255},
        {"OilPaint", [](const Frame& f, int v) { OilPaint(f, v, 51 * v); }, 99, 5},
        {"Stamp", [](const Frame& f, int v) { Stamp(f, v); }, -70, 0},
        {"Make3DEffect", [](const Frame& f, int v) { Make3DEffect(f, v); }, INT_MIN, 1},
        {"NotePaper", [](const Frame& f, int v) { NotePaper(f, 51 * v, 2 * v, 20 * v, v, 0xFFFFFF, 0); }, 99,
         5},
        {"RandomicalPoints", [](const Frame& f, int v) { RandomicalPoints(f, v, 0xFFFFFF, 3); }, INT_MAX,
         100},
    };
    for (const auto& c : cases) {
        TestFrame a(200, 60, 4), b = a;
        c.run(a.frame(), c.outside);
        c.run(b.frame(), c.limit);
        EXPECT_EQ(a.bytes, b.bytes) << c.name;
    }
}
