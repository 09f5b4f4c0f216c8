// Still pictures written by type: the player's snapshots as PNG, JPEG, GIF, BMP or TIFF. Qt's own
// writer serves a type wherever this Qt has one; GIF, which Qt only reads, and TIFF without Qt's extra
// plugin go through libavcodec. The target appears whole or not at all: the file is written beside it
// under a temporary name and renamed into place, so a failure leaves an existing target as it was.
// Any thread may call these, the main thread included: calls share no state and never touch the
// caller's picture. Two calls naming the same target race, and the last rename wins.
#pragma once

#include <QImage>
#include <QString>

namespace morvane {

// The types by number, in the order the save dialog's image filters list them.
enum ImageType : int { Image_Png = 1, Image_Jpeg = 2, Image_Gif = 3, Image_Bmp = 4, Image_Tiff = 5 };

struct [[nodiscard]] ImageConvertResult {
    bool ok = false;
    QString error; // empty on success; otherwise "writing '<file>': <cause>" or "reading '<file>': ..."
};

// Writes `image` as a picture of `type` to `targetPath`, replacing a file of that name. PNG and TIFF
// keep transparency; the other types show the picture laid over white. JPEG is written at quality 80,
// GIF with at most 256 colours (dithered when the picture has more).
ImageConvertResult ImageConvert1(const QImage& image, int type, const QString& targetPath);
// The same for a picture file, read by its content: the player saves its frame as a temporary BMP
// and converts that. The source is left alone.
ImageConvertResult ImageConvert1(const QString& sourcePath, int type, const QString& targetPath);

// ".png", ".jpg", ".gif", ".bmp" or ".tif" for the types 1 to 5; "" for any other number.
QString ImageTypeExtension(int type);
// The type picked by a save dialog's image filter: filter n is type n. 0 for an index with no type.
int ImageTypeOfFilter(int filterIndex);

} // namespace morvane
