#include "Codec_Args.h"

#include <array>
#include <utility>

namespace morvane {

namespace {

using Row = std::pair<const char*, const char*>;

const char* lookUp(const QString& label, const auto& table) {
    for (const auto& [name, args] : table)
        if (label == QLatin1String(name)) return args;
    return nullptr;
}

// The 8-, 16-, 24- and 32-bit sample formats of one PCM byte order.
QString pcmArgs(const QString& bitDepth, const std::array<Row, 4>& formats) {
    const char* args = lookUp(bitDepth, formats);
    return args ? QString::fromLatin1(args) : QString();
}

} // namespace

QString audioCodecArgs(const QString& label, const QString& bitDepth) {
    static const std::array<Row, 17> table = {{
        {"MPEG-2/4", " -acodec libfaac"},
        {"AAC", " -acodec aac"},
        {"MP3", " -acodec libmp3lame"},
        {"MP2", " -acodec mp2"},
        {"Ogg Vorbis", " -acodec libvorbis"},
        {"IMA ADPCM", " -acodec adpcm_ima_wav"},
        {"IMA_ADPCM", " -acodec adpcm_ima_wav"},
        {"AMR ACELP", " -acodec libopencore_amrnb"},
        {"CCITT A-law", " -acodec pcm_alaw"},
        {"CCITT u-law", " -acodec pcm_mulaw"},
        {"AC3", " -acodec ac3"},
        {"WMA", " -acodec wmav2"},
        // RealAudio goes through the AC3 encoder on purpose.
        {"RealAudio 3.0 (dnet)", " -acodec ac3"},
        {"Microsoft ADPCM", " -acodec adpcm_ms"},
        {"FLAC", " -acodec flac"},
        {"MS GSM 6.10", " -acodec libgsm_ms"},
        {"Opus", " -acodec libopus"},
    }};
    if (const char* args = lookUp(label, table)) return QString::fromLatin1(args);
    if (label == QLatin1String("PCM little-endian"))
        return pcmArgs(bitDepth, {{{"8 bit", " -acodec pcm_u8"},
                                   {"16 bit", " -acodec pcm_s16le"},
                                   {"24 bit", " -acodec pcm_s24le"},
                                   {"32 bit", " -acodec pcm_s32le"}}});
    if (label == QLatin1String("PCM big-endian"))
        return pcmArgs(bitDepth, {{{"8 bit", " -acodec pcm_s8"},
                                   {"16 bit", " -acodec pcm_s16be"},
                                   {"24 bit", " -acodec pcm_s24be"},
                                   {"32 bit", " -acodec pcm_s32be"}}});
    return QString();
}

QString videoCodecArgs(const QString& label, std::int32_t outWidth, std::int32_t outHeight,
                       const QString& outputFormat) {
    static const std::array<Row, 21> table = {{
        {"MPEG-1", " -vcodec mpeg1video"},
        {"MPEG-2", " -vcodec mpeg2video"},
        {"MPEG4 (DivX/Xvid compatible)", " -pix_fmt yuvj420p -vcodec mpeg4"},
        {"H.263 FLV Video", " -vcodec flv"},
        {"H.264", " -vcodec libx264"},
        {"IBM Motion JPEG", " -vcodec mjpeg"},
        {"Sorenson Video 1", " -vcodec svq1"},
        {"Intel ITU H.263", " -vcodec h263p"},
        {"H.263", " -vcodec h263"},
        {"VP8", " -vcodec libvpx"},
        {"Huffman Lossless", " -vcodec huffyuv"},
        {"Microsoft MPEG4 V2", " -vcodec msmpeg4v2"},
        {"Microsoft MPEG4 V3", " -vcodec msmpeg4v3"},
        {"Xvid MPEG4", " -vcodec mpeg4 -vtag xvid"},
        {"DivX MPEG4", " -vcodec mpeg4 -vtag DivX"},
        {"RealVideo", " -vcodec rv20"},
        {"Windows Media Video V7", " -vcodec wmv1"},
        {"Windows Media Video V8", " -vcodec wmv2"},
        {"Theora", " -vcodec libtheora"},
        // Row threading keeps both cores busy. Speed 4 of the good-quality mode: with libvpx 1.12 it
        // proved faster than 5, and it keeps more detail.
        {"VP9", " -vcodec libvpx-vp9 -deadline good -cpu-used 4 -row-mt 1"},
        // Speed 8 of 0 to 13: about real time for 1080p on two cores.
        {"AV1", " -vcodec libsvtav1 -preset 8"},
    }};
    if (const char* args = lookUp(label, table)) return QString::fromLatin1(args);
    if (label == QLatin1String("H.265/HEVC")) {
        // Apple's players take HEVC in the MPEG-4 family only under the hvc1 tag; Matroska has no tags.
        const bool isoFamily = outputFormat == QLatin1String("MP4") || outputFormat == QLatin1String("MOV") ||
                               outputFormat == QLatin1String("M4V");
        return isoFamily ? QStringLiteral(" -vcodec libx265 -vtag hvc1") : QStringLiteral(" -vcodec libx265");
    }
    if (label == QLatin1String("DV - Digital Video Format")) {
        // DV has two frame sizes, one per television standard; any other size has no DV target.
        const QString size = QString::number(outWidth) + QStringLiteral(" x ") + QString::number(outHeight);
        if (size == QLatin1String("720 x 480")) return QStringLiteral(" -target ntsc-dv -vcodec dvvideo");
        if (size == QLatin1String("720 x 576")) return QStringLiteral(" -target pal-dv -vcodec dvvideo");
        return QString();
    }
    if (label == QLatin1String("Uncompressed")) {
        QString args;
        if (outputFormat == QLatin1String("GIF")) args += QStringLiteral(" -pix_fmt rgb24");
        if (outputFormat == QLatin1String("AVI")) args += QStringLiteral(" -vcodec rawvideo");
        return args;
    }
    return QString();
}

} // namespace morvane
