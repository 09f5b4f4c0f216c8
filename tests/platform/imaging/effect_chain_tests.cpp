// The effect chain: every effect it knows at awkward frame sizes, token order, and how it reads a list.
#include "EffectTestKit.h"
#include "Effect_Chain.h"
#include "Effects_Area.h"
#include "Effects_Geometric.h"
#include "Effects_Point.h"

#include <functional>
#include <string>
#include <thread>

using namespace morvane::imaging;
using morvane::imaging::testkit::MaxColourDiff;
using morvane::imaging::testkit::TestFrame;

namespace {

// Every effect with values that make it do something (the colours as the pickers give them).
std::string Token(std::string_view name) {
    static const std::pair<std::string_view, const char*> values[] = {
        {"Mosaic", ":7"},
        {"Hue", ":90"},
        {"StretchHistogram", ":5"},
        {"RainDrops", ":30:30:30"},
        {"FrostGlass", ":3"},
        {"SmartBlur", ":20"},
        {"Make3D", ":6"},
        {"Sharpening", ":20"},
        {"Invert", ":255"},
        {"ReduceColors", ":200"},
        {"Stamp", ":60"},
        {"AmbientLight", ":255"},
        {"Tone", ":100"},
        {"Rock", ":5"},
        {"Emboss", ":128"},
        {"Noise", ":50"},
        {"Shift", ":20"},
        {"Twirl", ":50"},
        {"Swirl", ":100"},
        {"Glowing Edges", ":4:2"},
        {"Mirror", ":100"},
        {"Waves", ":10:1:3"},
        {"Saturation", ":100"},
        {"Find Edges", ":4:2"},
        {"AdvancedBlur", ":5:1:25"},
        {"MotionBlur", ":45:15"},
        {"ColorBalance", ":50:0:-50"},
        {"Fragment", ":10"},
        {"FarBlur", ":20"},
        {"RadialBlur", ":10"},
        {"ZoomBlur", ":50"},
        {"Fog", ":60"},
        {"MediumTones", ":180"},
        {"CircularWaves", ":10:5"},
        {"CircularWavesEx", ":10:5"},
        {"OilPaint", ":100:0"},
        {"FishEyeEx", ":128"},
        {"Cilindrical", ":15"},
        {"UnsharpMask", ":10"},
        {"BlockWaves", ":10:5"},
        {"TwirlEx", ":180:100"},
        {"Metal", ":50:4"},
        {"Gold", ":4:0"},
        {"Ice", ":4:0"},
        {"Brightness", ":40"},
        {"Contrast", ":150"},
        {"Gamma", ":50"},
        {"Tile", ":75"},
        {"Color Filter", ":120"},
        {"BackDropRemoval", ":40:16777215:0"},
        {"BackDropRemovalEx", ":40:16777215:0"},
        {"DetectBorders", ":40:16777215:0"},
        {"NotePaper", ":128:16777215:0"},
        {"RandomicalPoints", ":5:16777215"},
    };
    for (const auto& [n, v] : values)
        if (n == name) return std::string(name) + v;
    return std::string(name);
}

} // namespace

TEST(EffectChain, EveryEffectKeepsToItsFrameAtAwkwardSizes) {
    // A single pixel, a frame smaller than any kernel, odd sizes, and rows longer than their pixels.
    const TestFrame made[] = {{1, 1}, {3, 2, 4}, {2, 7, 12}, {33, 17, 20}, {1921, 1081, 36}};
    for (const std::string_view name : ChainEffectNames()) {
        const std::string token = Token(name);
        for (const TestFrame& pristine : made) {
            TestFrame a = pristine;
            const ChainResult r = Run_EffectChain(a.frame(), token, 7);
            EXPECT_TRUE(r.complete && r.unknown.empty()) << token;
            EXPECT_TRUE(a.PaddingIntact()) << token << " at " << a.width << "x" << a.height;
            if (a.width > 100) continue; // the small frames show determinism as well, and sooner
            // The same frame with the same seed gives the same result, noise or not.
            TestFrame b = pristine;
            Run_EffectChain(b.frame(), token, 7);
            EXPECT_EQ(a.Pixels(), b.Pixels()) << token << " at " << a.width << "x" << a.height;
        }
    }
}

TEST(EffectChain, EffectsRunInTokenOrderOnEachOthersResult) {
    const auto run = [](const char* list) {
        TestFrame f(2, 1);
        f.Fill(50, 50, 50);
        Run_EffectChain(f.frame(), list);
        return f.Px(1, 0)[0];
    };
    EXPECT_EQ(run("Brightness:100,Invert:255,"), 105); // (50 + 100) inverted
    EXPECT_EQ(run("Invert:255,Brightness:100,"), 255); // 205 + 100, clamped
    EXPECT_EQ(run("Invert:255,Invert:255"), 50);       // no final comma needed
    EXPECT_EQ(run(""), 50);
    EXPECT_EQ(run(" , ,"), 50);
}

TEST(EffectChain, TokensBecomeTheCallsOfTheirEffects) {
    // A list against the same effects called directly on a copy of the frame.
    const std::pair<const char*, std::function<void(const Frame&)>> cases[] = {
        {"Tile:75,", [](const Frame& f) { Tile(f, 75, 75, 8); }},
        {"Emboss:128,", [](const Frame& f) { Emboss(f, 1.28f); }},
        {"Brightness:2.5,", [](const Frame& f) { Brightness(f, 2); }}, // ties go to even
        {"Brightness:3.5,", [](const Frame& f) { Brightness(f, 4); }},
        {"OilPaint:125:0,", [](const Frame& f) { OilPaint(f, 2, 0); }}, // 125 / 50 = 2.5 gives 2
        {"OilPaint:175:9,", [](const Frame& f) { OilPaint(f, 4, 9); }},
        {"UnsharpMask:5,", [](const Frame& f) { UnsharpMask(f, 2, 2.5); }},
        {"Contrast:150,", [](const Frame& f) { Contrast(f, 1.5f, 1.5f, 1.5f); }},
        {"Gamma:50,", [](const Frame& f) { Gamma(f, 2.0f); }},
        {"Waves:10:1:7,", [](const Frame& f) { Waves(f, 10, 1, 1); }}, // the third value is a switch
        {"FlipH,", [](const Frame& f) { Flip(f, f.width, f.height, true, false); }},
        {"Flip-VH,", [](const Frame& f) { Flip(f, f.width, f.height, true, true); }},
        {"Mirror:100,", [](const Frame& f) { Canvas(f, 100); }},
        {"Sepia:5:6,", [](const Frame& f) { Sepia(f); }}, // values it does not need are ignored
        {"Night Vision,",
         [](const Frame& f) {
             Gamma(f, 52.0f / 25.0f);
             ColorRandomize(f, 25, 3);
             ColorBalance(f, -255, 0, -255);
         }},
        {"Color Filter:120,",
         [](const Frame& f) {
             ColorBalance(f, 0, -255, -255);
             Hue(f, 120);
         }},
        // Names compare exactly: these are passed over, the effects around them still run.
        {"Neon,Invert:255,invert:255, Invert:255,", [](const Frame& f) { Invert(f, 255); }},
    };
    for (const auto& [list, direct] : cases) {
        TestFrame a(40, 30), b(40, 30);
        Run_EffectChain(a.frame(), list, 3);
        direct(b.frame());
        EXPECT_EQ(a.Pixels(), b.Pixels()) << list;
    }
    const ChainResult r = Run_EffectChain(Frame{}, "Neon,Invert:255,invert:255, Invert:255,");
    EXPECT_TRUE(r.complete);
    EXPECT_EQ(r.unknown, (std::vector<std::string>{"Neon", "invert", " Invert"}));
}

TEST(EffectChain, ABadNumberEndsTheChainAndKeepsWhatWasDone) {
    const char* lists[] = {"Invert:255,Brightness:abc,Sepia,", "Invert:255,Mosaic,Sepia,",
                           "Invert:255,Mosaic:,Sepia", "Invert:255,Hue:1e99,Sepia,",
                           "Invert:255,AdvancedBlur:1:40000:1,Sepia,"};
    for (const char* list : lists) {
        TestFrame a(8, 6), b(8, 6);
        const ChainResult r = Run_EffectChain(a.frame(), list);
        Invert(b.frame(), 255);
        EXPECT_FALSE(r.complete) << list;
        EXPECT_EQ(a.Pixels(), b.Pixels()) << list;
    }
    EXPECT_EQ(Run_EffectChain(Frame{}, "Sepia,Mosaic:x ,").badToken, "Mosaic:x");
}

TEST(EffectChain, TasksRunTheirChainsSideBySide) {
    // Conversions run one chain per worker thread: cached maps and scratch must not leak between them.
    const char* lists[] = {"Twirl:50,Mosaic:7,", "FishEye,Blur,Noise:40,", "Waves:10:1:3,Emboss:128,",
                           "Swirl:100,OilPaint:100:0,"};
    std::vector<std::vector<std::uint8_t>> alone;
    for (const char* list : lists) {
        TestFrame f(96 + static_cast<int>(alone.size()) * 8, 64);
        Run_EffectChain(f.frame(), list, 5);
        alone.push_back(f.Pixels());
    }
    std::vector<std::thread> threads;
    std::vector<char> same(std::size(lists), 1); // one byte each: threads write side by side
    for (std::size_t t = 0; t < std::size(lists); ++t)
        threads.emplace_back([&, t] {
            for (int round = 0; round < 20; ++round) {
                TestFrame f(96 + static_cast<int>(t) * 8, 64);
                Run_EffectChain(f.frame(), lists[t], 5);
                same[t] = same[t] && f.Pixels() == alone[t];
            }
        });
    for (std::thread& t : threads)
        t.join();
    for (std::size_t t = 0; t < std::size(lists); ++t)
        EXPECT_TRUE(same[t]) << lists[t];
}
