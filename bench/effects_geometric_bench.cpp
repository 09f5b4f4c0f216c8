// The geometric effects at 1280x720 on one thread, maps cached: each call after the first only
// remaps. Twirl, Swirl, FishEye, Waves and PolarCoordinates must stay within 6 ms a frame.
#include "Effects_Geometric.h"

#include <benchmark/benchmark.h>
#include <opencv2/core.hpp>

#include <cstdint>
#include <vector>

namespace {

using namespace morvane::imaging;
using Effect = void (*)(const Frame&);

// A picture-like frame: soft gradients with some edges, rows padded as a decoder's would be.
struct BenchFrame {
    static constexpr int kWidth = 1280, kHeight = 720, kStride = kWidth * 4 + 64;
    std::vector<std::uint8_t> bytes = std::vector<std::uint8_t>(std::size_t{kStride} * kHeight);
    BenchFrame() {
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x) {
                std::uint8_t* p = bytes.data() + std::size_t{kStride} * y + x * 4;
                p[0] = static_cast<std::uint8_t>(x / 5);
                p[1] = static_cast<std::uint8_t>(y / 3);
                p[2] = static_cast<std::uint8_t>(((x / 40 + y / 40) % 2) ? 200 : 60);
                p[3] = 255;
            }
    }
    Frame frame() { return Frame{bytes.data(), kWidth, kHeight, kStride}; }
};

void Run(benchmark::State& state, Effect effect) {
    cv::setNumThreads(1);
    BenchFrame frame;
    effect(frame.frame()); // builds and caches the map
    for (auto _ : state) {
        effect(frame.frame());
        benchmark::DoNotOptimize(frame.bytes.data());
        benchmark::ClobberMemory();
    }
}

#define GEOMETRIC(name, ...)                                                                                 \
    BENCHMARK_CAPTURE(                                                                                       \
        Run, name, +[](const Frame& f) { __VA_ARGS__; })                                                     \
        ->Unit(benchmark::kMillisecond)

GEOMETRIC(Flip, Flip(f, f.width, f.height, true, false));
GEOMETRIC(Twirl_timed, Twirl(f, 50));
GEOMETRIC(TwirlEx, TwirlEx(f, 180, 80));
GEOMETRIC(Swirl_timed, Swirl(f, 100));
GEOMETRIC(FishEye_timed, FishEye(f));
GEOMETRIC(FishEyeEx, FishEyeEx(f, 128));
GEOMETRIC(Waves_timed, Waves(f, 10, 1, 3));
GEOMETRIC(CircularWaves, CircularWaves(f, 10, 5));
GEOMETRIC(CircularWavesEx, CircularWavesEx(f, 10, 5));
GEOMETRIC(BlockWaves, BlockWaves(f, 10, 5, 1));
GEOMETRIC(PolarCoordinates_timed, PolarCoordinates(f, 0));
GEOMETRIC(Cilindrical, Cilindrical(f, 15));
GEOMETRIC(Roll, Roll(f));
GEOMETRIC(Melt, Melt(f, 1));
GEOMETRIC(Caricature, Caricature(f));
GEOMETRIC(FourCorners, FourCorners(f));
GEOMETRIC(Canvas, Canvas(f, 320));
GEOMETRIC(Tile, Tile(f, 50, 50, 8));
GEOMETRIC(Shift, Shift(f, 20, 1));
GEOMETRIC(RainDrops, RainDrops(f, 50, 50, 50, 1));

// A new seed every frame: the seeded maps are built afresh each time.
GEOMETRIC(Melt_new_seed_each_frame, static std::uint32_t seed = 0; Melt(f, ++seed));
GEOMETRIC(RainDrops_new_seed_each_frame, static std::uint32_t seed = 0; RainDrops(f, 50, 50, 50, ++seed));

} // namespace
