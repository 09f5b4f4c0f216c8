#include "Image_Convert.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QImageWriter>
#include <QSaveFile>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/imgutils.h>
#include <libavutil/mem.h>
#include <libavutil/opt.h>
}

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>

namespace morvane {
namespace {

struct TypeInfo {
    const char* extension;
    const char* qtFormat; // the name of Qt's writer
    const char* name;     // for messages
    bool keepsAlpha;
    int quality; // -1: the writer's default
};

constexpr std::array<TypeInfo, 5> kTypes{{
    {".png", "png", "PNG", true, -1},
    {".jpg", "jpeg", "JPEG", false, 80},
    {".gif", "gif", "GIF", false, -1},
    {".bmp", "bmp", "BMP", false, -1},
    {".tif", "tiff", "TIFF", true, -1},
}};

const TypeInfo* InfoOf(int type) {
    return type >= 1 && type <= static_cast<int>(kTypes.size()) ? &kTypes[type - 1] : nullptr;
}

ImageConvertResult Failure(const char* action, const QString& path, const QString& cause) {
    return {false, QStringLiteral("%1 '%2': %3").arg(QLatin1String(action), path, cause)};
}

ImageConvertResult UnknownType(int type, const QString& targetPath) {
    return Failure(
        "writing", targetPath,
        QStringLiteral("unknown picture type %1; the types are 1 to %2").arg(type).arg(kTypes.size()));
}

// The encoded file, or why there is none.
struct Encoded {
    QByteArray bytes;
    QString cause;
};

// The picture as 8-bit RGB for the types without transparency, laid over white: what a viewer shows
// for it, rather than the colours hidden under alpha 0 (often black).
QImage Opaque(const QImage& image) {
    if (!image.hasAlphaChannel()) return image.convertToFormat(QImage::Format_RGB32);
    QImage out = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < out.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(out.scanLine(y));
        for (int x = 0; x < out.width(); ++x) {
            // Premultiplied, so a channel plus the white that shows through never passes 255.
            const int clear = 255 - qAlpha(row[x]);
            row[x] = qRgb(qRed(row[x]) + clear, qGreen(row[x]) + clear, qBlue(row[x]) + clear);
        }
    }
    out.reinterpretAsFormat(QImage::Format_RGB32);
    return out;
}

Encoded EncodeWithQt(const QImage& image, const TypeInfo& info) {
    Encoded out;
    QBuffer buffer(&out.bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, info.qtFormat);
    writer.setQuality(info.quality);
    if (!writer.write(image)) out.cause = writer.errorString();
    return out;
}

// --- libavcodec, for the types this Qt cannot write ---

template <class T, void (*Free)(T**)>
struct Freer {
    void operator()(T* p) const { Free(&p); }
};
template <class T, void (*Free)(T**)>
using Owned = std::unique_ptr<T, Freer<T, Free>>;
using CodecPtr = Owned<AVCodecContext, avcodec_free_context>;
using FramePtr = Owned<AVFrame, av_frame_free>;
using PacketPtr = Owned<AVPacket, av_packet_free>;
struct AvFree {
    void operator()(std::uint8_t* p) const { av_free(p); }
};
// A muxer writing into memory; the memory goes with it. The GIF muxer holds the last packet back
// until the trailer, and only the trailer frees it: a muxer whose header went out gets its trailer.
struct MemoryMuxerFree {
    bool headerWritten = false;
    void operator()(AVFormatContext* c) const {
        if (headerWritten) av_write_trailer(c);
        if (c->pb) {
            std::uint8_t* bytes = nullptr;
            avio_close_dyn_buf(c->pb, &bytes);
            av_free(bytes);
        }
        avformat_free_context(c);
    }
};
using MemoryMuxerPtr = std::unique_ptr<AVFormatContext, MemoryMuxerFree>;

Encoded AvFailure(const TypeInfo& info, int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return {{}, QStringLiteral("encoding %1: %2").arg(QLatin1String(info.name), QString::fromUtf8(text))};
}

// A frame holding a copy of the picture's rows; `format` has the QImage's byte layout.
FramePtr FrameOf(const QImage& image, AVPixelFormat format) {
    FramePtr frame(av_frame_alloc());
    if (!frame) return frame;
    frame->format = format;
    frame->width = image.width();
    frame->height = image.height();
    frame->pts = 0;
    if (av_frame_get_buffer(frame.get(), 0) < 0) return nullptr;
    av_image_copy_plane(frame->data[0], frame->linesize[0], image.constBits(),
                        static_cast<int>(image.bytesPerLine()), image.width() * image.depth() / 8,
                        image.height());
    return frame;
}

// An encoder of `name` for one picture the size and format of `frame`, not yet opened.
CodecPtr NewEncoder(const char* name, const AVFrame& frame) {
    const AVCodec* codec = avcodec_find_encoder_by_name(name);
    CodecPtr ctx(codec ? avcodec_alloc_context3(codec) : nullptr);
    if (!ctx) return ctx;
    ctx->width = frame.width;
    ctx->height = frame.height;
    ctx->pix_fmt = static_cast<AVPixelFormat>(frame.format);
    ctx->time_base = {1, 100};
    ctx->thread_count = 1;
    return ctx;
}

// Sends the one frame and the end of input, and hands each packet to `sink` (an error code back).
template <class Sink>
int EncodeFrame(AVCodecContext* ctx, const AVFrame* frame, Sink sink) {
    PacketPtr packet(av_packet_alloc());
    if (!packet) return AVERROR(ENOMEM);
    for (const AVFrame* input : {frame, static_cast<const AVFrame*>(nullptr)}) {
        int rc = avcodec_send_frame(ctx, input);
        while (rc >= 0) {
            rc = avcodec_receive_packet(ctx, packet.get());
            if (rc >= 0) rc = sink(packet.get());
            av_packet_unref(packet.get());
        }
        if (rc != AVERROR(EAGAIN) && rc != AVERROR_EOF) return rc;
    }
    return 0;
}

Encoded EncodeGif(const QImage& opaque, const TypeInfo& info) {
    if (opaque.width() > 65535 || opaque.height() > 65535)
        return {{}, QStringLiteral("a GIF holds at most 65535 x 65535 pixels")};
    // Qt keeps the exact colours when there are at most 256 and dithers to a colour cube otherwise.
    const QImage indexed = opaque.convertToFormat(QImage::Format_Indexed8);
    const FramePtr frame = FrameOf(indexed, AV_PIX_FMT_PAL8);
    if (!frame) return AvFailure(info, AVERROR(ENOMEM));
    // QRgb and the palette's entries are both 0xAARRGGBB words. The unused entries are opaque too, or
    // the encoder would declare one of them the transparent colour.
    auto* palette = reinterpret_cast<std::uint32_t*>(frame->data[1]);
    const QList<QRgb> table = indexed.colorTable();
    std::fill_n(palette, AVPALETTE_COUNT, 0xFF000000u);
    std::copy_n(table.begin(), std::min<qsizetype>(table.size(), AVPALETTE_COUNT), palette);

    const CodecPtr ctx = NewEncoder("gif", *frame);
    if (!ctx) return {{}, QStringLiteral("this FFmpeg has no GIF encoder")};
    int rc = avcodec_open2(ctx.get(), nullptr, nullptr);
    if (rc < 0) return AvFailure(info, rc);

    // The encoder gives the picture; the muxer adds the file's header and trailer around it.
    AVFormatContext* raw = nullptr;
    rc = avformat_alloc_output_context2(&raw, nullptr, "gif", nullptr);
    MemoryMuxerPtr muxer(raw);
    if (rc < 0) return AvFailure(info, rc);
    AVStream* stream = avformat_new_stream(muxer.get(), nullptr);
    if (!stream) return AvFailure(info, AVERROR(ENOMEM));
    if ((rc = avcodec_parameters_from_context(stream->codecpar, ctx.get())) < 0) return AvFailure(info, rc);
    stream->time_base = ctx->time_base;
    // A still, not an animation: no loop block.
    if ((rc = av_opt_set_int(muxer->priv_data, "loop", -1, 0)) < 0) return AvFailure(info, rc);
    if ((rc = avio_open_dyn_buf(&muxer->pb)) < 0) return AvFailure(info, rc);
    if ((rc = avformat_write_header(muxer.get(), nullptr)) < 0) return AvFailure(info, rc);
    muxer.get_deleter().headerWritten = true;
    rc = EncodeFrame(ctx.get(), frame.get(), [&](AVPacket* packet) {
        packet->stream_index = stream->index;
        av_packet_rescale_ts(packet, ctx->time_base, stream->time_base);
        return av_write_frame(muxer.get(), packet);
    });
    if (rc < 0) return AvFailure(info, rc);
    muxer.get_deleter().headerWritten = false;
    if ((rc = av_write_trailer(muxer.get())) < 0) return AvFailure(info, rc);

    std::uint8_t* bytes = nullptr;
    const int size = avio_close_dyn_buf(muxer->pb, &bytes);
    muxer->pb = nullptr;
    const std::unique_ptr<std::uint8_t, AvFree> owned(bytes);
    return {QByteArray(reinterpret_cast<const char*>(bytes), size), {}};
}

Encoded EncodeTiff(const QImage& image, const TypeInfo& info) {
    // RGBA8888 and RGB888 have the byte order of libav's RGBA and RGB24.
    const bool alpha = image.hasAlphaChannel();
    const FramePtr frame =
        FrameOf(image.convertToFormat(alpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888),
                alpha ? AV_PIX_FMT_RGBA : AV_PIX_FMT_RGB24);
    if (!frame) return AvFailure(info, AVERROR(ENOMEM));
    const CodecPtr ctx = NewEncoder("tiff", *frame);
    if (!ctx) return {{}, QStringLiteral("this FFmpeg has no TIFF encoder")};
    // LZW: lossless, far smaller than the default PackBits on photographs, and read everywhere.
    int rc = av_opt_set(ctx->priv_data, "compression_algo", "lzw", 0);
    if (rc < 0 || (rc = avcodec_open2(ctx.get(), nullptr, nullptr)) < 0) return AvFailure(info, rc);
    // Each packet is a whole TIFF file; there is one.
    Encoded out;
    rc = EncodeFrame(ctx.get(), frame.get(), [&](AVPacket* packet) {
        out.bytes.append(reinterpret_cast<const char*>(packet->data), packet->size);
        return 0;
    });
    return rc < 0 ? AvFailure(info, rc) : out;
}

ImageConvertResult Commit(const QString& targetPath, const QByteArray& bytes) {
    // QSaveFile writes under a fresh temporary name in the target's folder (never an existing file)
    // and renames it over the target on commit; short of that, the temporary file goes.
    QSaveFile file(targetPath);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        return Failure("writing", targetPath, file.errorString());
    return {true, {}};
}

} // namespace

ImageConvertResult ImageConvert1(const QImage& image, int type, const QString& targetPath) {
    const TypeInfo* info = InfoOf(type);
    if (!info) return UnknownType(type, targetPath);
    if (image.isNull()) return Failure("writing", targetPath, QStringLiteral("the picture is empty"));
    if (targetPath.isEmpty()) return Failure("writing", targetPath, QStringLiteral("no file name given"));

    const QImage ready = info->keepsAlpha ? image : Opaque(image);
    if (ready.isNull()) return Failure("writing", targetPath, QStringLiteral("out of memory"));
    Encoded encoded;
    if (QImageWriter::supportedImageFormats().contains(QByteArray(info->qtFormat)))
        encoded = EncodeWithQt(ready, *info);
    else if (type == Image_Gif)
        encoded = EncodeGif(ready, *info);
    else if (type == Image_Tiff)
        encoded = EncodeTiff(ready, *info);
    else
        encoded.cause = QStringLiteral("this system has no %1 writer").arg(QLatin1String(info->name));
    if (!encoded.cause.isEmpty()) return Failure("writing", targetPath, encoded.cause);
    return Commit(targetPath, encoded.bytes);
}

ImageConvertResult ImageConvert1(const QString& sourcePath, int type, const QString& targetPath) {
    if (!InfoOf(type)) return UnknownType(type, targetPath);
    // Opened here rather than by the reader, whose message for any failure to open is "File not found".
    QFile source(sourcePath);
    if (!source.open(QIODevice::ReadOnly)) return Failure("reading", sourcePath, source.errorString());
    QImageReader reader(&source);
    const QImage image = reader.read();
    if (image.isNull()) return Failure("reading", sourcePath, reader.errorString());
    return ImageConvert1(image, type, targetPath);
}

QString ImageTypeExtension(int type) {
    const TypeInfo* info = InfoOf(type);
    return info ? QLatin1String(info->extension) : QString();
}

int ImageTypeOfFilter(int filterIndex) {
    return InfoOf(filterIndex) ? filterIndex : 0;
}

} // namespace morvane
