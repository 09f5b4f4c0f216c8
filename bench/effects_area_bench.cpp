// The area effects on a 1280x720 BGRA frame on one thread, each at its default values. The frame is
// restored before every run (outside the timing), so each run sees the same picture.
#include "Effects_Area.h"

#include <benchmark/benchmark.h>
#include <opencv2/imgproc.hpp>

#include <functional>

using namespace morvane::imaging;

namespace {

// A picture with what video has: smooth gradients, hard-edged shapes, fine text and a little noise.
const cv::Mat& Picture() {
    static const cv::Mat picture = [] {
        cv::Mat m(720, 1280, CV_8UC4);
        for (int y = 0; y < m.rows; ++y)
            for (int x = 0; x < m.cols; ++x)
                m.at<cv::Vec4b>(y, x) =
                    cv::Vec4b(static_cast<std::uint8_t>(x / 5), static_cast<std::uint8_t>(y / 3),
                              static_cast<std::uint8_t>((x + y) / 8), 255);
        for (int i = 0; i < 40; ++i)
            cv::circle(m, cv::Point(37 * i % 1280, 91 * i % 720), 20 + i * 3 % 60,
                       cv::Scalar(i * 53 % 256, i * 97 % 256, i * 29 % 256, 255), i % 3 == 0 ? 3 : cv::FILLED,
                       cv::LINE_AA);
        for (int i = 0; i < 12; ++i)
            cv::putText(m, "Morvane area effects", cv::Point(40, 50 + 55 * i), cv::FONT_HERSHEY_SIMPLEX, 1.2,
                        cv::Scalar(255, 255, 255, 255), 2, cv::LINE_AA);
        cv::Mat noise(m.size(), CV_16SC4);
        cv::randn(noise, cv::Scalar(0, 0, 0, 0), cv::Scalar(4, 4, 4, 0));
        cv::add(m, noise, m, cv::noArray(), CV_8U);
        return m;
    }();
    return picture;
}

void Run(benchmark::State& state, const std::function<void(const Frame&)>& effect) {
    cv::setNumThreads(1);
    cv::Mat frame = Picture().clone();
    const Frame f{frame.data, frame.cols, frame.rows, static_cast<int>(frame.step)};
    for (auto _ : state) {
        state.PauseTiming();
        Picture().copyTo(frame);
        state.ResumeTiming();
        effect(f);
        benchmark::DoNotOptimize(frame.data);
        benchmark::ClobberMemory();
    }
}

} // namespace

#define AREA_BENCH(name, call)                                                                               \
    void BM_##name(benchmark::State& state) {                                                                \
        Run(state, [](const Frame& f) { call; });                                                            \
    }                                                                                                        \
    BENCHMARK(BM_##name)->Unit(benchmark::kMillisecond)

// The seven that must stay within 8 ms.
AREA_BENCH(Blur, Blur(f));
AREA_BENCH(SmartBlur, SmartBlur(f, 20));
AREA_BENCH(FindEdges, FindEdges(f, 4, 2));
AREA_BENCH(Emboss, Emboss(f, 1.28f));
AREA_BENCH(Sharpening, Sharpening(f, 0.2f));
AREA_BENCH(GlowingEdges, Neon(f, 4, 2));
AREA_BENCH(UnsharpMask, UnsharpMask(f, 2, 5.0));
// The rest.
AREA_BENCH(SoftnerBlur, SoftnerBlur(f));
AREA_BENCH(AdvancedBlur, AdvancedBlur(f, 6, 1, true));
AREA_BENCH(MotionBlur, MotionBlur(f, 45, 15));
AREA_BENCH(MotionBlurLevel, MotionBlur(f, 0, 15));
AREA_BENCH(FarBlur, FarBlur(f, 20));
AREA_BENCH(RadialBlur, RadialBlur(f, 10));
AREA_BENCH(ZoomBlur, ZoomBlur(f, 50));
AREA_BENCH(AntiAlias, AntiAlias(f, 50));
AREA_BENCH(Relief, Relief(f));
AREA_BENCH(Stamp, Stamp(f, 60));
AREA_BENCH(Rock, Rock(f, 5));
AREA_BENCH(Make3DEffect, Make3DEffect(f, 6));
AREA_BENCH(OilPaint, OilPaint(f, 2, 0));
AREA_BENCH(Mosaic, Mosaic(f, 5));
AREA_BENCH(Fragment, Fragment(f, 12));
AREA_BENCH(Diffuse, Diffuse(f, 1));
AREA_BENCH(FrostGlass, FrostGlass(f, 3, 1));
AREA_BENCH(DetectBorders, DetectBorders(f, 40, 0xFFFFFF, 0));
AREA_BENCH(NotePaper, NotePaper(f, 128, 2, 20, 1, 0xFFFFFF, 0));
AREA_BENCH(RandomicalPoints, RandomicalPoints(f, 5, 0xFFFFFF, 1));
