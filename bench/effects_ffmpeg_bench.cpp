// The ffmpeg filters closest to our effects, timed in the same run for comparison: one 1280x720 frame
// through a filter graph on one thread, each in the pixel format the filter works in natively (our
// effects work on BGRA, as the frame hook hands it over).
#include <cstdint> // before libavutil, which needs UINT64_C

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/frame.h>
#include <libavutil/pixdesc.h>
}

#include <benchmark/benchmark.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace {

struct GraphDeleter {
    void operator()(AVFilterGraph* g) const { avfilter_graph_free(&g); }
};
struct FrameDeleter {
    void operator()(AVFrame* f) const { av_frame_free(&f); }
};

class FilterRun {
public:
    FilterRun(const std::string& filter, AVPixelFormat format) : m_graph(avfilter_graph_alloc()) {
        m_graph->nb_threads = 1;
        const std::string args =
            "video_size=1280x720:pix_fmt=" + std::to_string(format) + ":time_base=1/25:pixel_aspect=1/1";
        check(avfilter_graph_create_filter(&m_src, avfilter_get_by_name("buffer"), "in", args.c_str(),
                                           nullptr, m_graph.get()));
        check(avfilter_graph_create_filter(&m_sink, avfilter_get_by_name("buffersink"), "out", nullptr,
                                           nullptr, m_graph.get()));
        AVFilterInOut* outputs = avfilter_inout_alloc();
        AVFilterInOut* inputs = avfilter_inout_alloc();
        outputs->name = av_strdup("in");
        outputs->filter_ctx = m_src;
        inputs->name = av_strdup("out");
        inputs->filter_ctx = m_sink;
        // The sink keeps the filter's own output format: no conversion is timed with the filter.
        const int r = avfilter_graph_parse_ptr(m_graph.get(),
                                               (filter + ",format=" + av_get_pix_fmt_name(format)).c_str(),
                                               &inputs, &outputs, nullptr);
        avfilter_inout_free(&inputs);
        avfilter_inout_free(&outputs);
        check(r);
        check(avfilter_graph_config(m_graph.get(), nullptr));
        m_in.reset(av_frame_alloc());
        m_in->format = format;
        m_in->width = 1280;
        m_in->height = 720;
        check(av_frame_get_buffer(m_in.get(), 0));
        // A pattern with detail everywhere, as a real picture has.
        for (int p = 0; p < 4 && m_in->data[p]; ++p) {
            const int rows = p == 0 || format != AV_PIX_FMT_YUV420P ? 720 : 360;
            for (int y = 0; y < rows; ++y)
                for (int x = 0; x < m_in->linesize[p]; ++x)
                    m_in->data[p][y * m_in->linesize[p] + x] =
                        static_cast<std::uint8_t>((x * 7 + y * 3 + p * 50) & 255);
        }
        m_out.reset(av_frame_alloc());
    }
    void once() {
        m_in->pts = m_pts++;
        check(av_buffersrc_add_frame_flags(m_src, m_in.get(), AV_BUFFERSRC_FLAG_KEEP_REF));
        check(av_buffersink_get_frame(m_sink, m_out.get()));
        av_frame_unref(m_out.get());
    }

private:
    static void check(int r) {
        if (r < 0) throw std::runtime_error("filter graph: error " + std::to_string(r));
    }
    std::unique_ptr<AVFilterGraph, GraphDeleter> m_graph;
    AVFilterContext* m_src = nullptr;
    AVFilterContext* m_sink = nullptr;
    std::unique_ptr<AVFrame, FrameDeleter> m_in, m_out;
    std::int64_t m_pts = 0;
};

void BM_ffmpeg(benchmark::State& state, const char* filter, AVPixelFormat format) {
    FilterRun run(filter, format);
    run.once();
    for (auto _ : state)
        run.once();
}

constexpr AVPixelFormat kYuv = AV_PIX_FMT_YUV420P, kBgra = AV_PIX_FMT_BGRA, kGbr = AV_PIX_FMT_GBRP;

} // namespace

// Point effects.
BENCHMARK_CAPTURE(BM_ffmpeg, negate, "negate", kYuv)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ffmpeg, eq_brightness, "eq=brightness=0.15", kYuv)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ffmpeg, eq_contrast, "eq=contrast=1.2", kYuv)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ffmpeg, eq_saturation, "eq=saturation=1.3", kYuv)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ffmpeg, eq_gamma, "eq=gamma=1.5", kYuv)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ffmpeg, hue, "hue=h=90", kYuv)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ffmpeg, hue_grey, "hue=s=0", kYuv)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ffmpeg, noise, "noise=alls=50:allf=t", kYuv)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ffmpeg, colorchannelmixer_sepia,
                  "colorchannelmixer=.393:.769:.189:0:.349:.686:.168:0:.272:.534:.131", kBgra)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ffmpeg, lutrgb_negate, "lutrgb=r=negval:g=negval:b=negval", kBgra)
    ->Unit(benchmark::kMillisecond);
// Area effects.
BENCHMARK_CAPTURE(BM_ffmpeg, boxblur, "boxblur=2:1", kYuv)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ffmpeg, smartblur, "smartblur=lr=2:ls=1:lt=20", kYuv)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ffmpeg, edgedetect, "edgedetect", kYuv)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ffmpeg, edgedetect_colormix, "edgedetect=mode=colormix", kGbr)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(
    BM_ffmpeg, convolution_emboss,
    "convolution=-2 -1 0 -1 1 1 0 1 2:-2 -1 0 -1 1 1 0 1 2:-2 -1 0 -1 1 1 0 1 2:-2 -1 0 -1 1 1 0 1 2", kBgra)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ffmpeg, unsharp, "unsharp=5:5:1.0", kYuv)->Unit(benchmark::kMillisecond);
// Geometric effects: a lens, a rotation and a warp by maps are the nearest per-pixel resamplers.
BENCHMARK_CAPTURE(BM_ffmpeg, lenscorrection, "lenscorrection=k1=0.3:k2=0.1", kYuv)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ffmpeg, rotate, "rotate=0.3", kYuv)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ffmpeg, hflip, "hflip", kYuv)->Unit(benchmark::kMillisecond);
