#include "Bitrate_Rules.h"

#include "CheckedMath.h"
#include "mMain.h"

#include <algorithm>
#include <array>

namespace morvane {

namespace {

constexpr std::array<std::int32_t, 25> kVideoLadder = {
    16,   32,   64,   96,   128,  256,   384,   512,   768,   900,   1000,  1200, 1500,
    2000, 3000, 4000, 6000, 8000, 10000, 12000, 15000, 30000, 35000, 40000, 50000};

// Audio lists L1 to L38; index 0 stands for the empty list.
constexpr std::array<const char*, 39> kAudioLists = {
    "",
    "8 kbps;16 kbps;24 kbps;32 kbps;40 kbps;48 kbps;",
    "8 kbps;16 kbps;24 kbps;32 kbps;40 kbps;48 kbps;56 kbps;64 kbps;",
    "8 kbps;16 kbps;24 kbps;32 kbps;40 kbps;48 kbps;56 kbps;64 kbps;80 kbps;96 kbps;",
    "8 kbps;16 kbps;24 kbps;32 kbps;40 kbps;48 kbps;56 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;",
    "8 kbps;16 kbps;24 kbps;32 kbps;40 kbps;48 kbps;56 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;144 "
    "kbps;",
    "8 kbps;16 kbps;24 kbps;32 kbps;40 kbps;48 kbps;56 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;144 "
    "kbps;160 kbps;",
    "16 kbps;32 kbps;48 kbps;64 kbps;80 kbps;96 kbps;",
    "16 kbps;32 kbps;48 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;",
    "16 kbps;32 kbps;48 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;192 kbps;",
    "16 kbps;32 kbps;48 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;192 kbps;224 kbps;256 kbps;",
    "16 kbps;32 kbps;48 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;192 kbps;224 kbps;256 "
    "kbps;288 kbps;",
    "16 kbps;32 kbps;48 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;192 kbps;224 kbps;256 "
    "kbps;288 kbps;320 kbps;",
    "48 kbps;96 kbps;144 kbps;192 kbps;240 kbps;288 kbps;",
    "48 kbps;96 kbps;144 kbps;192 kbps;240 kbps;288 kbps;336 kbps;384 kbps;",
    "48 kbps;96 kbps;144 kbps;192 kbps;240 kbps;288 kbps;336 kbps;384 kbps;480 kbps;576 kbps;",
    "48 kbps;96 kbps;144 kbps;192 kbps;240 kbps;288 kbps;336 kbps;384 kbps;480 kbps;576 kbps;672 kbps;768 "
    "kbps;",
    "48 kbps;96 kbps;144 kbps;192 kbps;240 kbps;288 kbps;336 kbps;384 kbps;480 kbps;576 kbps;672 kbps;768 "
    "kbps;864 kbps;",
    "48 kbps;96 kbps;144 kbps;192 kbps;240 kbps;288 kbps;336 kbps;384 kbps;480 kbps;576 kbps;672 kbps;768 "
    "kbps;864 kbps;960 kbps;",
    "16 kbps;24 kbps;32 kbps;40 kbps;48 kbps;56 kbps;64 kbps;80 kbps;",
    "24 kbps;32 kbps;40 kbps;48 kbps;56 kbps;64 kbps;80 kbps;",
    "32 kbps;40 kbps;48 kbps;56 kbps;64 kbps;80 kbps;",
    "32 kbps;40 kbps;48 kbps;56 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;144 kbps;160 kbps;",
    "48 kbps;56 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;144 kbps;160 kbps;",
    "32 kbps;48 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;",
    "48 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;",
    "64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;",
    "64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;192 kbps;224 kbps;256 kbps;288 kbps;320 kbps;",
    "96 kbps;112 kbps;128 kbps;160 kbps;192 kbps;224 kbps;256 kbps;288 kbps;320 kbps;",
    "32 kbps;48 kbps;56 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;",
    "64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;192 kbps;224 kbps;256 kbps;320 kbps;",
    "8 kbps;16 kbps;24 kbps;32 kbps;40 kbps;",
    "16 kbps;24 kbps;32 kbps;40 kbps;48 kbps;",
    "16 kbps;24 kbps;32 kbps;40 kbps;48 kbps;56 kbps;64 kbps;80 kbps;96 kbps;",
    "16 kbps;32 kbps;48 kbps;64 kbps;80 kbps;",
    "32 kbps;48 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;192 kbps;",
    "48 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;192 kbps;224 kbps;256 kbps;288 kbps;320 "
    "kbps;",
    "32 kbps;48 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;192 kbps;224 kbps;256 kbps;288 "
    "kbps;320 kbps;",
    "4.75 kbps;5.15 kbps;5.90 kbps;6.70 kbps;7.40 kbps;7.95 kbps;10.2 kbps;12.2 kbps;",
};

constexpr std::array<const char*, 9> kSampleRates = {"8000 Hz",  "11025 Hz", "12000 Hz",
                                                     "16000 Hz", "22050 Hz", "24000 Hz",
                                                     "32000 Hz", "44100 Hz", "48000 Hz"};

// One row of the grid of lists: the codecs it serves, a channel layout, and a list number per sample
// rate in the order of kSampleRates.
struct GridRow {
    std::array<const char*, 2> codecs; // nullptr where a row serves one codec
    const char* channels;
    std::array<int, 9> lists;
};

const std::array<GridRow, 9>& grid() {
    static const std::array<GridRow, 9> rows = {{
        {{"MPEG-2/4", "AAC"}, "Mono", {1, 2, 2, 3, 4, 5, 6, 6, 6}},
        {{"MPEG-2/4", "AAC"}, "Stereo", {7, 8, 8, 9, 10, 11, 12, 12, 12}},
        {{"MPEG-2/4", nullptr}, "5.1 Surround", {13, 14, 14, 15, 16, 17, 18, 18, 18}},
        {{"MP3", "AC3"}, "Mono", {19, 20, 20, 20, 21, 21, 22, 23, 23}},
        {{"MP3", "AC3"}, "Stereo", {24, 25, 25, 25, 26, 26, 27, 28, 28}},
        // MP2 has no bitrates below 22050 Hz.
        {{"MP2", nullptr}, "Mono", {0, 0, 0, 0, 21, 21, 29, 29, 29}},
        {{"MP2", nullptr}, "Stereo", {0, 0, 0, 0, 26, 26, 30, 30, 30}},
        // Ogg Vorbis deliberately offers more at 16000 Hz than at 22050 Hz.
        {{"Ogg Vorbis", nullptr}, "Mono", {31, 32, 32, 33, 19, 19, 22, 22, 22}},
        {{"Ogg Vorbis", nullptr}, "Stereo", {34, 7, 7, 35, 24, 24, 36, 36, 36}},
    }};
    return rows;
}

// Index of the sample rate text in kSampleRates, or -1.
int rateIndex(const QString& sampleRate) {
    for (std::size_t i = 0; i < kSampleRates.size(); ++i)
        if (sampleRate == QLatin1String(kSampleRates[i])) return static_cast<int>(i);
    return -1;
}

// The per-rate factor of a rate table, 0 for a rate outside it.
int byRate(const QString& sampleRate, const std::array<int, 9>& factors) {
    const int index = rateIndex(sampleRate);
    return index < 0 ? 0 : factors[static_cast<std::size_t>(index)];
}

int channelCount(const QString& channels) {
    if (channels == QLatin1String("Mono")) return 1;
    if (channels == QLatin1String("Stereo")) return 2;
    if (channels == QLatin1String("5.1 Surround")) return 6;
    return 0;
}

int sampleBytes(const QString& sampleSize) {
    if (sampleSize == QLatin1String("8 bit")) return 1;
    if (sampleSize == QLatin1String("16 bit")) return 2;
    if (sampleSize == QLatin1String("24 bit")) return 3;
    if (sampleSize == QLatin1String("32 bit")) return 4;
    return 0;
}

// Kilobits per second of one channel of 8-bit PCM, and of IMA ADPCM, per sample rate.
constexpr std::array<int, 9> kPcmFactor = {64, 88, 96, 128, 176, 192, 256, 352, 384};
constexpr std::array<int, 9> kImaFactor = {32, 44, 44, 64, 88, 88, 128, 176, 176};

QString singleItem(int kbps) {
    return QString::number(kbps) + QStringLiteral(" kbps;");
}

// The fixed table of Microsoft ADPCM and IMA_ADPCM; 325 at 44100 Hz stereo is the required value.
QString adpcmTable(const QString& sampleRate, const QString& channels) {
    static const std::array<const char*, 4> rates = {"8000 Hz", "11025 Hz", "22050 Hz", "44100 Hz"};
    static const std::array<const char*, 4> mono = {"32 kbps;", "44 kbps;", "88 kbps;", "176 kbps;"};
    static const std::array<const char*, 4> stereo = {"64 kbps;", "88 kbps;", "176 kbps;", "325 kbps;"};
    const bool isMono = channels == QLatin1String("Mono");
    if (!isMono && channels != QLatin1String("Stereo")) return QString();
    for (std::size_t i = 0; i < rates.size(); ++i)
        if (sampleRate == QLatin1String(rates[i])) return QString::fromLatin1(isMono ? mono[i] : stereo[i]);
    return QString();
}

// Opus is offered at 48000 Hz alone, the rate it always decodes at; other rates get no bitrates.
QString opusList(const QString& sampleRate, const QString& channels) {
    if (sampleRate != QLatin1String("48000 Hz")) return QString();
    if (channels == QLatin1String("Mono")) return QStringLiteral("32 kbps;48 kbps;64 kbps;96 kbps;128 kbps;");
    if (channels == QLatin1String("Stereo"))
        return QStringLiteral("32 kbps;48 kbps;64 kbps;96 kbps;128 kbps;160 kbps;192 kbps;256 kbps;");
    return QString();
}

} // namespace

std::int32_t Auto_VideoBitrate(std::int32_t width, std::int32_t height, const QString& rateText,
                               std::int32_t quality, std::int32_t unit) {
    try {
        std::int32_t fps = 24;
        if (rateText != QLatin1String("Original") && rateText != QLatin1String("-")) {
            QString number = rateText;
            number.remove(QStringLiteral(" fps"), Qt::CaseInsensitive);
            fps = textToInt32(number);
        }
        std::int32_t factor = quality;
        if (width < 500) factor = addChecked(factor, 2);
        // Multiplied in this order, so that an intermediate overflow counts as well.
        const std::int32_t pixels = mulChecked(mulChecked(mulChecked(width, height), fps), factor);
        std::int32_t rate = roundToInt32(pixels * 0.07);
        if (unit == 1) rate = roundToInt32(rate / 1000.0);
        return rate;
    } catch (const RunTimeError&) {
        return 1500;
    }
}

std::int32_t Bitrate_Upper(std::int32_t width, std::int32_t height, std::int32_t maxRate) {
    if (width == 0 && height == 0) return maxRate;
    return std::min(maxRate, Auto_VideoBitrate(width, height, QStringLiteral("60"), 4, 1));
}

std::int32_t Bitrate_Lower(std::int32_t width, std::int32_t height, std::int32_t maxRate) {
    if (width == 0 && height == 0) {
        width = 720;
        height = 560;
    }
    const std::int32_t estimate = Auto_VideoBitrate(width, height, QStringLiteral("20"), 1, 1);
    return maxRate <= estimate ? 0 : estimate;
}

QString VideoBitrate_List(std::int32_t width, std::int32_t height, std::int32_t maxRate) {
    if (maxRate == 0) return QStringLiteral("-;");
    const std::int32_t upper = Bitrate_Upper(width, height, maxRate);
    const std::int32_t lower = Bitrate_Lower(width, height, maxRate);
    QString list = QStringLiteral("Smart Fit;");
    for (const std::int32_t value : kVideoLadder)
        if (value <= upper && value >= lower) list += singleItem(value);
    return list + QStringLiteral("Custom;");
}

QString AudioBitrate_List(const QString& codec, const QString& sampleRate, const QString& channels,
                          const QString& sampleSize) {
    const QString name = Trim_Spaces(codec);

    for (const GridRow& row : grid()) {
        const bool served = std::any_of(row.codecs.begin(), row.codecs.end(), [&](const char* c) {
            return c != nullptr && name == QLatin1String(c);
        });
        if (!served || channels != QLatin1String(row.channels)) continue;
        const int index = rateIndex(sampleRate);
        return index < 0
                   ? QString()
                   : QString::fromLatin1(
                         kAudioLists[static_cast<std::size_t>(row.lists[static_cast<std::size_t>(index)])]);
    }

    if (name == QLatin1String("RealAudio 3.0 (dnet)") || name == QLatin1String("WMA"))
        return QString::fromLatin1(kAudioLists[37]);
    if (name == QLatin1String("AMR ACELP")) return QString::fromLatin1(kAudioLists[38]);
    if (name == QLatin1String("MS GSM 6.10")) return QStringLiteral("13 kbps;");
    if (name == QLatin1String("FLAC")) return QStringLiteral("768 kbps;");
    if (name == QLatin1String("Opus")) return opusList(sampleRate, channels);
    if (name == QLatin1String("No Audio"))
        return sampleRate == QLatin1String("-") ? QStringLiteral("-;") : QString();
    if (name == QLatin1String("PCM little-endian") || name == QLatin1String("PCM big-endian"))
        return singleItem(sampleBytes(sampleSize) * byRate(sampleRate, kPcmFactor) * channelCount(channels));
    if (name == QLatin1String("CCITT A-law") || name == QLatin1String("CCITT u-law"))
        return singleItem(byRate(sampleRate, kPcmFactor) * channelCount(channels));
    if (name == QLatin1String("IMA ADPCM"))
        return singleItem(byRate(sampleRate, kImaFactor) * channelCount(channels));
    if (name == QLatin1String("Microsoft ADPCM") || name == QLatin1String("IMA_ADPCM"))
        return adpcmTable(sampleRate, channels);
    return QString();
}

} // namespace morvane
