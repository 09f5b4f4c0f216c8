// One tick of the edit window's live preview at 720p: the player's current frame taken (GetFrame) and
// drawn into the 640x360 picture with a crop, an aspect and an effect list, as the window's timer does
// every 33 ms while a file plays.
//
//   bench_edit_preview [CLIP]   (without CLIP a 1280x720 clip is made in the temporary folder)
#include "MpvPlayer.h"
#include "Preview_Frame.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QThread>

#include <benchmark/benchmark.h>

#include <memory>

using namespace morvane;

namespace {

QString g_clip;

QImage PatternFrame() {
    QImage frame(1280, 720, QImage::Format_RGB32);
    for (int y = 0; y < frame.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(frame.scanLine(y));
        for (int x = 0; x < frame.width(); ++x)
            row[x] = qRgb(x * 255 / 1279, y * 255 / 719, (x + y) * 7 + ((x * y) & 31));
    }
    return frame;
}

// A 4:3 cut of a 16:9 frame, shown as "PanScan" in the 16:9 picture: the usual edited case, and the
// one that scales the most.
PreviewInput Input() {
    PreviewInput in;
    in.PreviewSize = QSize(640, 360);
    in.CropSize = QSize(480, 360);
    in.CropLeft = 80;
    in.OutputSize = QSize(640, 360);
    in.AspectMode = kAspectPanScan;
    in.PlayerAspect = 1.78f;
    return in;
}

void BM_DrawPreviewFrame(benchmark::State& state, const char* effects) {
    const QImage frame = PatternFrame();
    const PreviewInput in = Input();
    QImage output;
    for (auto _ : state) {
        Draw_PreviewFrame(frame, in, QString::fromLatin1(effects), output);
        benchmark::DoNotOptimize(output.constBits());
    }
}
BENCHMARK_CAPTURE(BM_DrawPreviewFrame, none, "")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_DrawPreviewFrame, sepia, "Sepia,")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_DrawPreviewFrame, adjust_and_flip, "Brightness:40,Contrast:120,FlipH,")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_DrawPreviewFrame, mosaic, "Mosaic:5,")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_DrawPreviewFrame, twirl, "Twirl:50,")->Unit(benchmark::kMillisecond);

// The player's current frame of a paused 720p file, as the timer asks for it.
void BM_GetFrame(benchmark::State& state) {
    MpvPlayerOptions options;
    options.audioOutput = QStringLiteral("null");
    MpvPlayer player(options);
    if (!player.Initialize(false, {})) {
        state.SkipWithError(qPrintable(player.LastError()));
        return;
    }
    player.Open(g_clip, 1'000'000, false);
    player.TogglePause();
    QImage frame;
    for (int i = 0; i < 250 && frame.isNull(); ++i) {
        QThread::msleep(20);
        QCoreApplication::processEvents();
        frame = player.GetFrame();
    }
    if (frame.isNull()) {
        state.SkipWithError("no frame");
        return;
    }
    for (auto _ : state) {
        frame = player.GetFrame();
        benchmark::DoNotOptimize(frame.constBits());
    }
    state.counters["width"] = frame.width();
    player.Release();
}
BENCHMARK(BM_GetFrame)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    g_clip = argc > 1 ? QString::fromLocal8Bit(argv[1])
                      : QDir::temp().filePath(QStringLiteral("edit-preview-720p.mp4"));
    if (!QFile::exists(g_clip)) {
        QProcess ffmpeg;
        ffmpeg.start(QStringLiteral("ffmpeg"), {"-nostdin", "-loglevel", "error", "-y", "-f", "lavfi", "-i",
                                                "testsrc2=size=1280x720:rate=30:duration=5", "-c:v",
                                                "libx264", "-pix_fmt", "yuv420p", g_clip});
        if (!ffmpeg.waitForFinished(120000) || ffmpeg.exitCode() != 0) return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
