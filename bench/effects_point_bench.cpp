// The point effects at 1280x720 BGRA on one thread, each with the parameters a user would pick.
#include "Effects_Point.h"

#include <benchmark/benchmark.h>
#include <opencv2/core.hpp>

#include <cstdint>
#include <functional>
#include <vector>

using namespace morvane::imaging;

namespace {

constexpr int kWidth = 1280, kHeight = 720;

// Gradients with a little texture, so that every table and channel sees varied values.
std::vector<std::uint8_t> PatternFrame() {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(kWidth) * kHeight * 4);
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            std::uint8_t* p = &bytes[(static_cast<std::size_t>(y) * kWidth + x) * 4];
            p[0] = static_cast<std::uint8_t>(x * 255 / (kWidth - 1));
            p[1] = static_cast<std::uint8_t>(y * 255 / (kHeight - 1));
            p[2] = static_cast<std::uint8_t>((x + y) * 7 + ((x * y) & 31));
            p[3] = 255;
        }
    return bytes;
}

// Every run starts from the pattern again: effects repeated on their own output would drift to
// flat frames, and some (StretchHistogram) would then have nothing to do.
void Run(benchmark::State& state, const std::function<void(const Frame&)>& effect) {
    cv::setNumThreads(1);
    const std::vector<std::uint8_t> pattern = PatternFrame();
    std::vector<std::uint8_t> bytes = pattern;
    const Frame f{bytes.data(), kWidth, kHeight, kWidth * 4};
    for (auto _ : state) {
        state.PauseTiming();
        bytes = pattern;
        state.ResumeTiming();
        effect(f);
        benchmark::DoNotOptimize(bytes.data());
        benchmark::ClobberMemory();
    }
}

#define POINT_BENCH(name, call)                                                                              \
    void BM_##name(benchmark::State& state) {                                                                \
        Run(state, [](const Frame& f) { call; });                                                            \
    }                                                                                                        \
    BENCHMARK(BM_##name)->Unit(benchmark::kMillisecond)

POINT_BENCH(Invert, Invert(f, 255));
POINT_BENCH(InvertHalf, Invert(f, 128));
POINT_BENCH(Brightness, Brightness(f, 40));
POINT_BENCH(Contrast, Contrast(f, 1.2f, 1.2f, 1.2f));
POINT_BENCH(Saturation, Saturation(f, 60));
POINT_BENCH(Sepia, Sepia(f));
POINT_BENCH(Hue, Hue(f, 90));
POINT_BENCH(Gamma, Gamma(f, 1.5f));
POINT_BENCH(Noise, ColorRandomize(f, 50, 7));
POINT_BENCH(NoiseGrey, ColorRandomize(f, -50, 7));
POINT_BENCH(GrayScale, GrayScale(f, 0));
POINT_BENCH(ColorBalance, ColorBalance(f, 20, 0, -20));
POINT_BENCH(Solarize, Solarize(f, -1));
POINT_BENCH(ReduceTo8Colors, ReduceTo8Colors(f));
POINT_BENCH(ReduceColors, ReduceColors(f, 128));
POINT_BENCH(WebColors, WebColors(f));
POINT_BENCH(AmbientLight, AmbientLight(f, 4, 255));
POINT_BENCH(Tone, Tone(f, 4, 255));
POINT_BENCH(MediumTones, MediumTones(f, 160));
POINT_BENCH(StretchHistogram, StretchHistogram(f, 7, 1.0));
POINT_BENCH(Fog, Fog(f, 64));
POINT_BENCH(Metallic, Metallic(f, 64, 0, 2));
POINT_BENCH(BackDropRemoval, BackDropRemoval(f, 0x00FF00, 0x0000FF, 40));
POINT_BENCH(BackDropRemovalEx, BackDropRemovalEx(f, 0x00FF00, 0x0000FF, 40, -1, -1, -1, 0));

} // namespace
