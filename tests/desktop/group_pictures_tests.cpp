#include "Group_Pictures.h"
#include "Registry_Mod.h"

#include <QByteArray>
#include <QColor>
#include <QFile>
#include <QHash>
#include <QImage>
#include <QSet>

#include <gtest/gtest.h>

using namespace morvane;

namespace {

// The distinct Thumbnail cells of the shipped preset table, in table order.
QStringList shippedThumbnails() {
    QFile file(QStringLiteral(MORVANE_SOURCE_DIR "/data/preset.txt"));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) return {};
    const auto fields = [](const QString& line) {
        QString text = line.trimmed();
        if (text.startsWith('"')) text = text.mid(1);
        if (text.endsWith('"')) text.chop(1);
        return text.split(QStringLiteral("\",\""));
    };
    const qsizetype column = fields(QString::fromUtf8(file.readLine())).indexOf("Thumbnail");
    if (column < 0) return {};
    QStringList ids;
    while (!file.atEnd()) {
        const QString id = fields(QString::fromUtf8(file.readLine())).value(column);
        if (!id.isEmpty() && !ids.contains(id)) ids << id;
    }
    return ids;
}

QByteArray pixels(const QPixmap& picture) {
    const QImage image = picture.toImage().convertToFormat(QImage::Format_ARGB32);
    return QByteArray(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes());
}

// The most frequent opaque colour: the ground of a tile or a badge.
QColor dominantColour(const QPixmap& picture) {
    const QImage image = picture.toImage().convertToFormat(QImage::Format_ARGB32);
    QHash<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(image.pixel(x, y)) == 255) ++counts[image.pixel(x, y)];
    QRgb best = 0;
    int most = 0;
    for (auto it = counts.cbegin(); it != counts.cend(); ++it)
        if (it.value() > most) {
            most = it.value();
            best = it.key();
        }
    return QColor::fromRgba(best);
}

class GroupPictures : public ::testing::Test {
protected:
    void SetUp() override {
        savedTheme = Theme_No;
        Theme_No = 1;
        Group_ClearCache();
    }
    void TearDown() override {
        Theme_No = savedTheme;
        Group_ClearCache();
    }
    int savedTheme = 2;
};

} // namespace

TEST_F(GroupPictures, EveryShippedThumbnailIsDrawnAtTheAskedSize) {
    const QStringList shipped = shippedThumbnails();
    ASSERT_GE(shipped.size(), 100) << "data/preset.txt not found or not parsed";
    const QStringList known = Group_PictureIds();
    EXPECT_EQ(QSet<QString>(known.cbegin(), known.cend()).size(), known.size()) << "repeated identifier";
    for (const QString& id : shipped) {
        EXPECT_TRUE(known.contains(id)) << id.toStdString();
        for (const QSize size : {QSize(48, 48), QSize(96, 64), QSize(20, 30)}) {
            const QPixmap picture = Group_Picture(id, size);
            ASSERT_FALSE(picture.isNull()) << id.toStdString();
            EXPECT_EQ(picture.size(), size) << id.toStdString();
            EXPECT_NE(pixels(picture), pixels(Group_Picture("zzz_" + id, size)))
                << "generic for " << id.toStdString();
        }
    }
    EXPECT_TRUE(Group_Picture("fmt_mp4", QSize(0, 48)).isNull());
    EXPECT_TRUE(Group_Picture("fmt_mp4", QSize(-1, -1)).isNull());
}

TEST_F(GroupPictures, EveryIdentifierLooksDifferentInEitherTheme) {
    const QStringList ids = Group_PictureIds();
    for (const int theme : {1, 2}) {
        Theme_No = theme;
        for (const QSize size : {QSize(48, 48), QSize(96, 64)}) {
            QHash<QByteArray, QString> seen;
            for (const QString& id : ids) {
                const QByteArray image = pixels(Group_Picture(id, size));
                EXPECT_FALSE(seen.contains(image))
                    << id.toStdString() << " looks like " << seen.value(image).toStdString();
                seen.insert(image, id);
            }
        }
    }
    for (const QString& id : ids) {
        Theme_No = 1;
        const QByteArray light = pixels(Group_Picture(id, QSize(48, 48)));
        Theme_No = 2;
        EXPECT_NE(light, pixels(Group_Picture(id, QSize(48, 48)))) << id.toStdString();
    }
}

TEST_F(GroupPictures, UnknownIdentifiersGetANeutralTileByTheirFirstLetters) {
    const QSize size(48, 48);
    for (const char* id : {"", "   ", "_", "xyz", "dev_brandnewphone", "fmt_", "??"}) {
        const QPixmap picture = Group_Picture(QLatin1String(id), size);
        ASSERT_FALSE(picture.isNull()) << id;
        EXPECT_EQ(picture.size(), size);
        EXPECT_LT(dominantColour(picture).hsvSaturation(), 30) << id;
    }
    // The letters after the family prefix make the tile; the rest of the identifier does not.
    EXPECT_EQ(pixels(Group_Picture("zzz_abc", size)), pixels(Group_Picture("qqq_abcdef", size)));
    EXPECT_NE(pixels(Group_Picture("zzz_abc", size)), pixels(Group_Picture("zzz_xyz", size)));
    // Known families keep their colour.
    for (const char* id : {"fmt_mp4", "aud_mp3", "web_flash", "dev_iphone"})
        EXPECT_GT(dominantColour(Group_Picture(QLatin1String(id), size)).hsvSaturation(), 100) << id;

    // A thumbnail written as a file name, or in other case, still finds its drawing.
    const QByteArray mp4 = pixels(Group_Picture("fmt_mp4", size));
    EXPECT_EQ(pixels(Group_Picture("fmt_mp4.png", size)), mp4);
    EXPECT_EQ(pixels(Group_Picture(" FMT_MP4 ", size)), mp4);
}

TEST_F(GroupPictures, CacheFollowsTheTheme) {
    const QPixmap first = Group_Picture("dev_galaxytab", QSize(64, 64));
    EXPECT_EQ(Group_Picture("dev_galaxytab", QSize(64, 64)).cacheKey(), first.cacheKey());
    EXPECT_NE(Group_Picture("dev_galaxytab", QSize(64, 48)).cacheKey(), first.cacheKey());

    Theme_No = 2;
    const QPixmap dark = Group_Picture("dev_galaxytab", QSize(64, 64));
    EXPECT_NE(dark.cacheKey(), first.cacheKey());
    EXPECT_NE(pixels(dark), pixels(first));
    Theme_No = 1;
    EXPECT_EQ(Group_Picture("dev_galaxytab", QSize(64, 64)).cacheKey(), first.cacheKey());

    Group_ClearCache();
    const QPixmap redrawn = Group_Picture("dev_galaxytab", QSize(64, 64));
    EXPECT_NE(redrawn.cacheKey(), first.cacheKey());
    EXPECT_EQ(pixels(redrawn), pixels(first));
}
