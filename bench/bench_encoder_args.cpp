// Cost of one argument build; job preparation runs it once per list item.
#include "Make_EncoderArgs.h"

#include <benchmark/benchmark.h>

namespace {

morvane::EncoderParams typicalRecord() {
    morvane::EncoderParams p;
    p.SrcWidth = 1280;
    p.SrcHeight = 720;
    p.SrcFrameRate = 25;
    p.SrcAspect = QStringLiteral("1.78");
    p.OutWidth = 1280;
    p.OutHeight = 720;
    p.FrameRateText = QStringLiteral("25 fps");
    p.AspectMode = QStringLiteral("Original");
    p.VideoCodec = QStringLiteral("H.264");
    p.VideoBitrate = QStringLiteral("2000");
    p.Quality = 2;
    p.AudioCodec = QStringLiteral("MP3");
    p.Format = QStringLiteral("MP4");
    p.Channels = 1;
    p.AudioBitrate = QStringLiteral("128");
    p.SampleRate = QStringLiteral("44100");
    p.BitDepth = QStringLiteral("16 bit");
    p.CropTop = 8;
    p.CropBottom = 8;
    p.CropLeft = 16;
    p.CropRight = 16;
    p.EditedWidth = 1248;
    p.EditedHeight = 704;
    p.PadTop = 8;
    p.PadBottom = 8;
    p.PadLeft = 16;
    p.PadRight = 16;
    p.PadColor = QStringLiteral("black");
    p.TrimStartLow = QStringLiteral("1500000");
    p.TrimStartHigh = QStringLiteral("0");
    p.TrimEndLow = QStringLiteral("61500000");
    p.TrimEndHigh = QStringLiteral("0");
    p.Deinterlace = QStringLiteral("1");
    return p;
}

void BM_MakeEncoderArgs(benchmark::State& state) {
    const morvane::EncoderParams record = typicalRecord();
    if (morvane::Make_EncoderArgs(record) == QLatin1String("-1"))
        state.SkipWithError("the record builds no arguments");
    for (auto _ : state) {
        QString args = morvane::Make_EncoderArgs(record);
        benchmark::DoNotOptimize(args);
    }
}
BENCHMARK(BM_MakeEncoderArgs);

} // namespace

BENCHMARK_MAIN();
