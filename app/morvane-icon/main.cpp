// Renders the program's scalable icon at one size into a PNG: the build makes the hicolor theme's
// fixed sizes from the one drawing, so that they never drift from it.
//
// morvane-icon SVG SIZE OUT.png    exit 0 done, 1 unreadable drawing or unwritable output, 2 usage

#include <QImage>
#include <QPainter>
#include <QSaveFile>
#include <QString>
#include <QSvgRenderer>

#include <cstdio>

namespace {

int fail(const QString& text, int status) {
    std::fprintf(stderr, "morvane-icon: %s\n", qPrintable(text));
    return status;
}

} // namespace

int main(int argc, char* argv[]) {
    if (argc != 4) return fail(QStringLiteral("usage: morvane-icon SVG SIZE OUT.png"), 2);
    const QString svg = QString::fromLocal8Bit(argv[1]);
    const QString out = QString::fromLocal8Bit(argv[3]);
    bool ok = false;
    const int size = QString::fromLatin1(argv[2]).toInt(&ok);
    if (!ok || size < 1 || size > 4096) return fail(QStringLiteral("size must be 1 to 4096 pixels"), 2);

    QSvgRenderer renderer(svg);
    if (!renderer.isValid()) return fail(QStringLiteral("cannot read the drawing '%1'").arg(svg), 1);

    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        renderer.render(&painter, QRectF(0, 0, size, size));
    }

    // Whole or not at all: a make that stops half way must not leave a broken icon looking new.
    QSaveFile file(out);
    if (!file.open(QIODevice::WriteOnly) || !image.save(&file, "PNG") || !file.commit())
        return fail(QStringLiteral("cannot write '%1': %2").arg(out, file.errorString()), 1);
    return 0;
}
