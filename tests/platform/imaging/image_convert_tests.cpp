// Pictures written by type and read back: sizes, pixel formats, transparency, the file entry point,
// the named target replaced, and failures that name the file and leave the folder as it was.
#include "Image_Convert.h"

#include <QDir>
#include <QImageReader>
#include <QPainter>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <cstdint>
#include <memory>

using namespace morvane;

namespace {

enum Fill { Flat, Smooth, SeeThrough };

// Eight blocks, four across and two down: at odd sizes rows and columns differ, so a wrong stride or
// channel order shows. Smooth adds gradients, more colours than GIF holds. SeeThrough gives alphas from
// clear to opaque; laid over white they give exact colours, as all channels are 0 or 255 where it counts.
QImage Blocks(int w, int h, Fill fill = Flat) {
    static const QRgb kColours[] = {0xffffffff, 0xffffff00, 0xff00ffff, 0xff00ff00,
                                    0xffff00ff, 0xffff0000, 0xff0000ff, 0xff202020};
    static const QRgb kAlphas[] = {255, 128, 0, 64, 255, 200, 30, 0};
    QImage image(w, h, QImage::Format_ARGB32);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const int block = x * 4 / w + y * 2 / h * 4;
            const QRgb c = kColours[block];
            reinterpret_cast<QRgb*>(image.scanLine(y))[x] =
                fill == Smooth       ? qRgb(qRed(c) * 3 / 4 + x * 63 / w, qGreen(c) * 3 / 4 + y * 63 / h,
                                            qBlue(c) * 3 / 4 + (x + y) % 64)
                : fill == SeeThrough ? (c & 0xffffff) | kAlphas[block] << 24
                                     : c;
        }
    return image;
}

bool Put(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

template <class T, void (*Free)(T**)>
struct Freer {
    void operator()(T* p) const { Free(&p); }
};
template <class T, void (*Free)(T**)>
using Owned = std::unique_ptr<T, Freer<T, Free>>;

// Qt's reader where this Qt has one; otherwise (TIFF) the picture as libavcodec decodes it.
QImage ReadBack(const QString& path) {
    QImageReader reader(path);
    if (reader.canRead()) return reader.read().convertToFormat(QImage::Format_ARGB32);
    QFile file(path);
    QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    const AVCodec* codec = avcodec_find_decoder(AV_CODEC_ID_TIFF);
    const Owned<AVCodecContext, avcodec_free_context> ctx(avcodec_alloc_context3(codec));
    const Owned<AVPacket, av_packet_free> packet(av_packet_alloc());
    const Owned<AVFrame, av_frame_free> frame(av_frame_alloc());
    packet->data = reinterpret_cast<std::uint8_t*>(bytes.data()); // borrowed: the decoder takes a copy
    packet->size = static_cast<int>(bytes.size());
    if (avcodec_open2(ctx.get(), codec, nullptr) < 0 || avcodec_send_packet(ctx.get(), packet.get()) < 0 ||
        avcodec_receive_frame(ctx.get(), frame.get()) < 0)
        return {};
    const bool alpha = frame->format == AV_PIX_FMT_RGBA; // else RGB24: what the writer gives
    return QImage(frame->data[0], frame->width, frame->height, frame->linesize[0],
                  alpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888)
        .convertToFormat(QImage::Format_ARGB32);
}

// The largest difference of a channel between the mean colours of the blocks' middles, where JPEG's
// and GIF's losses average out. Blocks under 16 pixels are left out: JPEG blends them together.
int WorstBlock(const QImage& a, const QImage& b) {
    const int w = a.width() / 4, h = a.height() / 2;
    int worst = 0;
    for (int i = 0; i < 8 && w >= 16 && h >= 16; ++i) {
        const QRect middle(i % 4 * w + w / 4, i / 4 * h + h / 4, w / 2, h / 2);
        const auto mean = [&](const QImage& m) {
            return m.copy(middle).scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).pixel(0, 0);
        };
        const QRgb u = mean(a), v = mean(b);
        for (const int shift : {16, 8, 0}) // red, green, blue
            worst = std::max(worst, std::abs(int(u >> shift & 255) - int(v >> shift & 255)));
    }
    return worst;
}

} // namespace

TEST(ImageConvert, WritesEveryTypeAtAnySizePixelFormatAndTransparency) {
    using F = QImage;
    const struct {
        int w, h;
        QImage::Format format = F::Format_RGB32;
        Fill fill = Flat;
        bool viaFile = false; // converted from a BMP file, as the player does
    } shapes[] = {
        // clang-format off
        {1, 1}, {3, 5}, {130, 66}, {4000, 3000},
        {130, 66, F::Format_Grayscale8}, {130, 66, F::Format_Grayscale16}, {130, 66, F::Format_RGB16},
        {130, 66, F::Format_Indexed8}, {130, 66, F::Format_Mono}, {130, 66, F::Format_RGB888},
        {130, 66, F::Format_RGBA64}, {130, 66, F::Format_RGBA32FPx4}, {301, 203, F::Format_RGB32, Smooth},
        {3, 5, F::Format_ARGB32, SeeThrough}, {96, 64, F::Format_ARGB32, SeeThrough},
        {96, 64, F::Format_RGBA64, SeeThrough}, {65, 33, F::Format_RGB32, Flat, true},
        {3, 5, F::Format_RGB32, Smooth, true},
        // clang-format on
    };
    for (int type = Image_Png; type <= Image_Tiff; ++type)
        for (const auto& c : shapes) {
            SCOPED_TRACE(testing::Message()
                         << "type " << type << " " << c.w << "x" << c.h << " format " << c.format << " fill "
                         << c.fill << (c.viaFile ? " from file" : ""));
            // The target exists already: the user chose to replace it.
            QTemporaryDir dir;
            const QString name = "shot" + ImageTypeExtension(type), target = dir.filePath(name);
            const QImage source = Blocks(c.w, c.h, c.fill).convertToFormat(c.format);
            ASSERT_TRUE(Put(target, "old") && (!c.viaFile || source.save(dir.filePath("t.bmp"))));
            const ImageConvertResult r = c.viaFile ? ImageConvert1(dir.filePath("t.bmp"), type, target)
                                                   : ImageConvert1(source, type, target);
            ASSERT_TRUE(r.ok && r.error.isEmpty()) << r.error.toStdString();
            EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden).join(' '),
                      c.viaFile ? name + " t.bmp" : name);
            // PNG and TIFF keep transparency; the others show the picture as it looks over white.
            QImage expected = source.convertToFormat(QImage::Format_ARGB32);
            if (c.fill == SeeThrough && type != Image_Png && type != Image_Tiff) {
                expected.fill(Qt::white);
                QPainter(&expected).drawImage(0, 0, source.convertToFormat(QImage::Format_ARGB32));
            }
            const QImage back = ReadBack(target);
            ASSERT_EQ(back.size(), source.size());
            if (type == Image_Jpeg || (type == Image_Gif && c.fill == Smooth))
                EXPECT_LE(WorstBlock(back, expected), 8);
            else
                EXPECT_TRUE(back == expected);
        }
}

TEST(ImageConvert, FailuresNameTheFileAndLeaveTheFolderAsItWas) {
    QTemporaryDir dir;
    const QString locked = dir.filePath("locked"), notes = dir.filePath("notes.bmp"),
                  shot = dir.filePath("shot.png"), gone = dir.filePath("gone.bmp"),
                  lockedGif = locked + "/a.gif", goneTif = dir.filePath("gone/a.tif");
    // Only root writes in the folder and nobody in "locked"; the existing "shot.png" must survive.
    ASSERT_TRUE(QDir(dir.path()).mkdir("locked") && Put(notes, "no picture here") && Put(shot, "old"));
    ASSERT_EQ(chmod(QFile::encodeName(dir.path()), 0755) | chmod(QFile::encodeName(locked), 0555), 0);
    const QImage image = Blocks(5, 3);
    // clang-format off
    const struct {
        const char* what;
        QImage image;
        QString source; // converted instead of the image when given
        int type;
        QString target, named, cause;
    } cases[] = {
        {"unwritable folder",    image, {},    3, lockedGif, lockedGif, "Permission denied"},
        {"missing folder",       image, {},    5, goneTif,   goneTif,   "No such file"},
        {"target is a folder",   image, {},    1, locked,    locked,    ""},
        {"missing source",       {},    gone,  1, shot,      gone,      "No such file"},
        {"source not a picture", {},    notes, 1, shot,      notes,     ""},
        {"type 0",               image, {},    0, shot,      shot,      "unknown picture type 0"},
        {"type 6 from a file",   {},    notes, 6, shot,      shot,      "unknown picture type 6"},
        {"empty picture",        {},    {},    2, shot,      shot,      "empty"},
        {"no target name",       image, {},    4, {},        {},        "no file name"},
        {"too wide for GIF",     Blocks(65536, 1), {}, 3, shot, shot,   "65535"},
    };
    // clang-format on
    // What a stray or a rewritten file would change: the names in both folders, the old target's size.
    const auto contents = [&] {
        const auto all = QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot;
        return QDir(dir.path()).entryList(all) + QDir(locked).entryList(all)
               << QString::number(QFile(shot).size());
    };
    const bool root = geteuid() == 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const QStringList before = contents();
        // Root writes into any folder: each case runs as an ordinary user.
        ASSERT_TRUE(!root || seteuid(65534) == 0);
        const ImageConvertResult r = c.source.isEmpty() ? ImageConvert1(c.image, c.type, c.target)
                                                        : ImageConvert1(c.source, c.type, c.target);
        ASSERT_TRUE(!root || seteuid(0) == 0);
        EXPECT_FALSE(r.ok);
        EXPECT_TRUE(r.error.contains("'" + c.named + "'") && r.error.contains(c.cause))
            << r.error.toStdString();
        EXPECT_EQ(contents(), before);
    }
}

TEST(ImageConvert, ExtensionsAndFilterIndexesFollowTheTypeNumbers) {
    const std::pair<int, const char*> cases[] = {{-1, ""},    {0, ""},     {1, ".png"}, {2, ".jpg"},
                                                 {3, ".gif"}, {4, ".bmp"}, {5, ".tif"}, {6, ""}};
    for (const auto& [type, extension] : cases) {
        EXPECT_EQ(ImageTypeExtension(type), extension) << type;
        EXPECT_EQ(ImageTypeOfFilter(type), *extension ? type : 0) << type;
    }
}
