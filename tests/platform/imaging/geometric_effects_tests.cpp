// Geometric effects: frame shape and row padding kept, neutral values, mirror relations, the map cache
// and the seeded effects.
#include "EffectTestKit.h"
#include "Effects_Geometric.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace morvane::imaging {
namespace {

using testkit::MaxColourDiff;
using testkit::TestFrame;
using Effect = std::function<void(const Frame&)>;
using Named = std::pair<std::string, Effect>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr int kHuge = std::numeric_limits<int>::max(), kTiny = std::numeric_limits<int>::min();

// Smooth gradients (the kit's pattern without its fast-changing red): resampling a fraction of a
// pixel off changes them by a level at most.
TestFrame Smooth(int w, int h) {
    TestFrame t(w, h, 8);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            t.at(x, y)[2] = static_cast<std::uint8_t>((x + y) * 255 / (w + h - 2));
    return t;
}

TestFrame Applied(TestFrame t, const Effect& e) {
    e(t.frame());
    return t;
}

TestFrame Mirrored(TestFrame t, bool leftRight) {
    return Applied(t, [&](const Frame& f) { Flip(f, 1, 1, leftRight, !leftRight); });
}

const std::vector<Named>& EveryEffect() {
    static const std::vector<Named> all = {
        {"Flip", [](const Frame& f) { Flip(f, f.width, f.height, true, true); }},
        {"Twirl", [](const Frame& f) { Twirl(f, 50); }},
        {"TwirlEx", [](const Frame& f) { TwirlEx(f, 120, 60); }},
        {"Swirl", [](const Frame& f) { Swirl(f, -100); }},
        {"FishEye", [](const Frame& f) { FishEye(f); }},
        {"FishEyeEx", [](const Frame& f) { FishEyeEx(f, 128), FishEyeEx(f, -200); }},
        {"Waves", [](const Frame& f) { Waves(f, 10, 1, 3), Waves(f, 25, 0, 0); }},
        {"CircularWaves", [](const Frame& f) { CircularWaves(f, 10, 5), CircularWavesEx(f, 20, 0); }},
        {"BlockWaves", [](const Frame& f) { BlockWaves(f, 10, 5, 1); }},
        {"PolarCoordinates", [](const Frame& f) { PolarCoordinates(f, 0), PolarCoordinates(f, 1); }},
        {"Cilindrical", [](const Frame& f) { Cilindrical(f, 15), Cilindrical(f, -30); }},
        {"Roll", [](const Frame& f) { Roll(f); }},
        {"Melt", [](const Frame& f) { Melt(f, 7); }},
        {"Caricature", [](const Frame& f) { Caricature(f); }},
        {"FourCorners", [](const Frame& f) { FourCorners(f); }},
        {"Canvas", [](const Frame& f) { Canvas(f, 200); }},
        {"Tile", [](const Frame& f) { Tile(f, 50, 50, 8); }},
        {"Shift", [](const Frame& f) { Shift(f, 40, 3); }},
        {"RainDrops", [](const Frame& f) { RainDrops(f, 30, 50, 80, 5); }},
        // Out of range: clamped, never a crash.
        {"out of range",
         [](const Frame& f) {
             Twirl(f, kHuge), TwirlEx(f, kNaN, -INFINITY), TwirlEx(f, -1e9, 1e-300), Swirl(f, kTiny);
             FishEyeEx(f, -INFINITY), Waves(f, kHuge, -1, 255), CircularWavesEx(f, kHuge, kTiny);
             BlockWaves(f, kHuge, kHuge, kTiny), PolarCoordinates(f, kTiny), Cilindrical(f, INFINITY);
             Canvas(f, kHuge), Shift(f, kHuge, 0xFFFFFFFFu), RainDrops(f, kHuge, kHuge, kTiny, 1);
         }},
        {"Tile out of range", [](const Frame& f) { Tile(f, kTiny, kHuge, kHuge); }}};
    return all;
}

TEST(GeometricEffects, KeepShapeAndPaddingAndIgnoreInvalidFrames) {
    for (const auto& [name, run] : EveryEffect()) {
        for (auto [w, h, pad] : {std::array{1, 1, 0}, {3, 2, 4}, {17, 9, 12}, {40, 23, 4}}) {
            TestFrame t(w, h, pad);
            run(t.frame());
            EXPECT_TRUE(t.PaddingIntact()) << name << " " << w << "x" << h;
        }
        TestFrame t(6, 4, 4);
        const auto before = t.bytes;
        for (Frame bad : {Frame{nullptr, 6, 4, 28}, Frame{t.bytes.data(), 0, 4, 28},
                          Frame{t.bytes.data(), 6, -1, 28}, Frame{t.bytes.data(), 6, 4, 23}})
            run(bad);
        EXPECT_EQ(t.bytes, before) << name;
    }
}

TEST(GeometricEffects, NeutralValuesLeaveTheFrameAlone) {
    const std::vector<Named> neutral = {
        {"Flip", [](const Frame& f) { Flip(f, f.width, f.height, false, false), Flip(f, 0, 1, true, true); }},
        {"Twirl", [](const Frame& f) { Twirl(f, 0), Swirl(f, 0), TwirlEx(f, 0, 50), TwirlEx(f, kNaN, 0); }},
        {"FishEyeEx", [](const Frame& f) { FishEyeEx(f, 0), FishEyeEx(f, kNaN); }},
        {"Waves",
         [](const Frame& f) { Waves(f, 0, 1, 5), CircularWaves(f, 0, 5), CircularWavesEx(f, -3, 5); }},
        {"BlockWaves", [](const Frame& f) { BlockWaves(f, 0, 5, 1); }},
        {"Cilindrical", [](const Frame& f) { Cilindrical(f, 0), Cilindrical(f, kNaN); }},
        {"Canvas at either edge", [](const Frame& f) { Canvas(f, 0), Canvas(f, kReferenceWidth); }},
        {"Tile without gap", [](const Frame& f) { Tile(f, 50, 50, 0); }},
        {"Shift", [](const Frame& f) { Shift(f, 0, 9); }}};
    for (const auto& [name, run] : neutral) {
        const TestFrame before(33, 20, 4);
        EXPECT_EQ(Applied(before, run).bytes, before.bytes) << name;
    }
}

// Pixels whose source is known; a source of (-1, -1) leaves the pixel out.
TEST(GeometricEffects, KnownPixelsComeFromTheirPlace) {
    using Source = std::function<std::pair<int, int>(int x, int y)>;
    using Case = std::tuple<std::string, int, int, Effect, Source>;
    auto flip = [](bool h, bool v) {
        return Case{"Flip " + std::to_string(h) + std::to_string(v), 3, 2,
                    [=](const Frame& f) { Flip(f, 3, 2, h, v); },
                    [=](int x, int y) {
                        return std::pair{h ? 2 - x : x, v ? 1 - y : y};
                    }};
    };
    // The mirror axis is in reference pixels: 160 of 640 is a quarter of any width.
    auto canvas = [](int w, int axis) {
        return Case{"Canvas " + std::to_string(w), w, 2, [](const Frame& f) { Canvas(f, 160); },
                    [=](int x, int y) {
                        return std::pair{(x / axis) % 2 ? axis - 1 - x % axis : x % axis, y};
                    }};
    };
    // A quarter and three quarters down a 20 pixel wave, rows move the whole amplitude, mirrored at the
    // edges.
    const Source waveRows = [](int x, int y) {
        const int to = y == 5 ? x + 10 : x - 10;
        return y % 10 != 5 ? std::pair{-1, -1} : std::pair{to < 0 ? -1 - to : to >= 640 ? 1279 - to : to, y};
    };
    const std::vector<Case> cases = {
        flip(true, false),
        flip(false, true),
        flip(true, true),
        canvas(64, 16),
        canvas(100, 25),
        canvas(1280, 320),
        {"Flip twice", 3, 2, [](const Frame& f) { Flip(f, 3, 2, true, true), Flip(f, 3, 2, true, true); },
         [](int x, int y) {
             return std::pair{x, y};
         }},
        {"Waves", 640, 16, [](const Frame& f) { Waves(f, 10, 1, 1); }, waveRows}};
    for (const auto& [name, w, h, run, from] : cases) {
        TestFrame before(w, h, 4), after = Applied(before, run);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                const auto [fx, fy] = from(x, y);
                if (fx >= 0) {
                    ASSERT_EQ(after.Px(x, y), before.Px(fx, fy)) << name << " at " << x << "," << y;
                }
            }
    }
}

// Effects built symmetric about the middle commute with the mirror; the swirls come out turning the
// other way. Even widths: an odd one would put the polar seam on the middle column.
TEST(GeometricEffects, MirroredFrameGivesMirroredResult) {
    // Name, the effect (sense -1 on the mirrored frame), and whether the mirror is left-right.
    const std::vector<std::tuple<std::string, std::function<void(const Frame&, int)>, bool>> cases = {
        {"Twirl", [](const Frame& f, int sense) { Twirl(f, 60 * sense); }, true},
        {"Swirl", [](const Frame& f, int sense) { Swirl(f, 100 * sense); }, false},
        {"TwirlEx", [](const Frame& f, int sense) { TwirlEx(f, -200 * sense, 70); }, true},
        {"FishEye", [](const Frame& f, int) { FishEye(f); }, true},
        {"FishEye", [](const Frame& f, int) { FishEye(f); }, false},
        {"FishEyeEx", [](const Frame& f, int) { FishEyeEx(f, -255); }, false},
        {"Caricature", [](const Frame& f, int) { Caricature(f); }, true},
        {"CircularWavesEx", [](const Frame& f, int) { CircularWavesEx(f, 20, 3); }, false},
        {"PolarCoordinates", [](const Frame& f, int) { PolarCoordinates(f, 0); }, true},
        {"PolarCoordinates back", [](const Frame& f, int) { PolarCoordinates(f, 1); }, true},
        {"Cilindrical", [](const Frame& f, int) { Cilindrical(f, 20); }, true},
        {"Cilindrical concave", [](const Frame& f, int) { Cilindrical(f, -20); }, true},
        {"FourCorners", [](const Frame& f, int) { FourCorners(f); }, false}};
    const TestFrame frame = Smooth(60, 34);
    for (const auto& [name, run, leftRight] : cases) {
        const TestFrame viaMirror = Applied(Mirrored(frame, leftRight), [&](const Frame& f) { run(f, -1); });
        const TestFrame mirrored = Mirrored(Applied(frame, [&](const Frame& f) { run(f, 1); }), leftRight);
        EXPECT_LE(MaxColourDiff(viaMirror, mirrored), 2)
            << name << (leftRight ? " left-right" : " top-bottom");
        EXPECT_GT(MaxColourDiff(mirrored, Mirrored(frame, leftRight)), 10) << name << " changed nothing";
    }
}

TEST(GeometricEffects, CentreOfTheLensesAndSwirlsStays) {
    const std::vector<Named> centred = {{"Twirl", [](const Frame& f) { Twirl(f, 100); }},
                                        {"Swirl", [](const Frame& f) { Swirl(f, 255); }},
                                        {"TwirlEx", [](const Frame& f) { TwirlEx(f, 360, 10); }},
                                        {"FishEye", [](const Frame& f) { FishEye(f); }},
                                        {"FishEyeEx", [](const Frame& f) { FishEyeEx(f, 255); }},
                                        {"Caricature", [](const Frame& f) { Caricature(f); }},
                                        {"CircularWaves", [](const Frame& f) { CircularWaves(f, 20, 1); }}};
    TestFrame frame = Smooth(41, 27);
    frame.Set(20, 13, 1, 2, 3);
    for (const auto& [name, run] : centred) {
        TestFrame after = Applied(frame, run);
        EXPECT_EQ(after.Px(20, 13), frame.Px(20, 13)) << name;
        EXPECT_NE(after.Pixels(), frame.Pixels()) << name;
    }
}

// Nothing from outside the picture creeps in, except behind tiles and behind a rolled-up page (whose
// roll is also shaded).
TEST(GeometricEffects, OneColourStaysOneColourSaveWhatLiesBehind) {
    for (const auto& [name, run] : EveryEffect()) {
        TestFrame t(48, 30, 4);
        t.Fill(40, 160, 220);
        run(t.frame());
        const bool showsBehind = name.starts_with("Tile") || name == "Roll";
        int behind = 0, other = 0;
        for (int y = 0; y < t.height; ++y)
            for (int x = 0; x < t.width; ++x) {
                const auto p = t.Px(x, y);
                behind += p == std::array{0, 0, 0, 255};
                other += p != std::array{40, 160, 220, 255} && p != std::array{0, 0, 0, 255};
            }
        EXPECT_TRUE(other == 0 || name == "Roll") << name;
        EXPECT_EQ(behind > 0, showsBehind) << name;
    }
}

// Moves along one axis leave a picture that only changes along the other one as it was.
TEST(GeometricEffects, MovesStayOnTheirAxis) {
    // Name, the effect, and whether it moves rows sideways (so that a frame of uniform rows is kept).
    const std::vector<std::tuple<std::string, Effect, bool>> cases = {
        {"Waves rows", [](const Frame& f) { Waves(f, 20, 1, 2); }, true},
        {"Waves columns", [](const Frame& f) { Waves(f, 20, 0, 2); }, false},
        {"Shift", [](const Frame& f) { Shift(f, 100, 4); }, true},
        {"Cilindrical", [](const Frame& f) { Cilindrical(f, 30); }, true},
        {"Canvas", [](const Frame& f) { Canvas(f, 100); }, true},
        {"Melt", [](const Frame& f) { Melt(f, 11); }, false}};
    for (const auto& [name, run, rowsMove] : cases) {
        TestFrame t(64, 40, 4);
        for (int y = 0; y < t.height; ++y)
            for (int x = 0; x < t.width; ++x) {
                const auto v = static_cast<std::uint8_t>((rowsMove ? y : x) * 6);
                t.Set(x, y, v, static_cast<std::uint8_t>(255 - v), 99);
            }
        const TestFrame before = t;
        run(t.frame());
        EXPECT_EQ(t.bytes, before.bytes) << name;
        // And the same effect does move a picture that changes along its axis.
        EXPECT_NE(Applied(Smooth(64, 40), run).Pixels(), Smooth(64, 40).Pixels()) << name;
    }
}

// Each call's result on a fresh thread (no cached maps) is what the same call gives here amid calls
// of other parameters and sizes, more than the cache holds, twice over.
TEST(GeometricEffects, CachedMapsFollowParametersAndSizes) {
    const std::vector<Effect> effects = {
        [](const Frame& f) { Twirl(f, 50); }, [](const Frame& f) { Twirl(f, -20); },
        [](const Frame& f) { Waves(f, 5, 1, 3); }, [](const Frame& f) { Waves(f, 5, 0, 3); },
        [](const Frame& f) { Tile(f, 60, 50, 8); }};
    std::vector<std::pair<TestFrame, Effect>> calls;
    for (auto [w, h] : {std::pair{41, 27}, {64, 36}, {17, 9}})
        for (const Effect& e : effects)
            calls.emplace_back(Smooth(w, h), e);
    std::vector<std::vector<std::uint8_t>> fresh;
    for (const auto& [frame, run] : calls)
        std::thread([&] { fresh.push_back(Applied(frame, run).bytes); }).join();
    for (int pass = 0; pass < 2; ++pass)
        for (std::size_t i = 0; i < calls.size(); ++i)
            EXPECT_EQ(Applied(calls[i].first, calls[i].second).bytes, fresh[i])
                << "call " << i << " pass " << pass;
}

TEST(GeometricEffects, SeededEffectsRepeatForTheirSeed) {
    const std::vector<std::pair<std::string, std::function<void(const Frame&, std::uint32_t)>>> seeded = {
        {"Melt", [](const Frame& f, std::uint32_t s) { Melt(f, s); }},
        {"Shift", [](const Frame& f, std::uint32_t s) { Shift(f, 60, s); }},
        {"RainDrops", [](const Frame& f, std::uint32_t s) { RainDrops(f, 40, 60, 90, s); }}};
    const TestFrame frame = Smooth(96, 54);
    for (const auto& [name, run] : seeded) {
        auto with = [&](std::uint32_t seed) {
            return Applied(frame, [&](const Frame& f) { run(f, seed); }).bytes;
        };
        const auto first = with(1);
        EXPECT_NE(with(2), first) << name;
        EXPECT_EQ(with(1), first) << name;
    }
}

} // namespace
} // namespace morvane::imaging
