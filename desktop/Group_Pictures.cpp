#include "Group_Pictures.h"

#include "Registry_Mod.h"

#include <QFont>
#include <QFontMetricsF>
#include <QHash>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>

#include <algorithm>

namespace morvane {

namespace {

// Film, Wave, Screen and Upright (a screen held on end, for vertical video) are the tiles of the
// format panels; the rest are device silhouettes.
enum class Shape {
    Film,
    Wave,
    Screen,
    Upright,
    Phone,
    KeyPhone,
    Tablet,
    TV,
    Monitor,
    Laptop,
    Player,
    Box,
    Stick,
    Gamepad,
    Handheld,
    Disc,
    Generic
};

struct Group {
    const char* id;
    Shape shape;
    const char* label; // "\n" breaks it into lines
    unsigned colour;   // 0: the family's colour
};

constexpr unsigned kVideoColour = 0x2f6fd6;
constexpr unsigned kAudioColour = 0x8e44ad;
constexpr unsigned kWebColour = 0xd9452b;
constexpr unsigned kDeviceColour = 0x13977c;

// In the order of the shipped catalogue, which is the order of the strips.
constexpr Group kGroups[] = {
    {"fmt_mp4", Shape::Film, "MP4", 0},
    {"fmt_avi", Shape::Film, "AVI", 0},
    {"fmt_wmv", Shape::Film, "WMV", 0},
    {"fmt_mkv", Shape::Film, "MKV", 0},
    {"fmt_mov", Shape::Film, "MOV", 0},
    {"fmt_flv", Shape::Film, "FLV", 0},
    {"fmt_mpeg1", Shape::Film, "MPEG\n1", 0},
    {"fmt_mpeg2", Shape::Film, "MPEG\n2", 0},
    {"fmt_vob", Shape::Film, "VOB", 0},
    {"fmt_3gp", Shape::Film, "3GP", 0},
    {"fmt_3g2", Shape::Film, "3G2", 0},
    {"fmt_webm", Shape::Film, "WebM", 0},
    {"fmt_ogv", Shape::Film, "OGV", 0},
    {"fmt_dv", Shape::Film, "DV", 0},
    {"fmt_m4v", Shape::Film, "M4V", 0},
    {"fmt_asf", Shape::Film, "ASF", 0},
    {"fmt_ts", Shape::Film, "TS", 0},
    {"fmt_m2ts", Shape::Film, "M2TS", 0},
    {"fmt_mjpeg", Shape::Film, "MJPEG", 0},
    {"fmt_xvid", Shape::Film, "Xvid", 0},
    {"fmt_divx", Shape::Film, "DivX", 0},
    {"fmt_gif", Shape::Film, "GIF", 0},
    {"fmt_swf", Shape::Film, "SWF", 0},
    {"fmt_rm", Shape::Film, "RM", 0},
    {"dev_iphone", Shape::Phone, "iPhone", 0},
    {"dev_ipad", Shape::Tablet, "iPad", 0},
    {"dev_ipod", Shape::Player, "iPod", 0},
    {"dev_appletv", Shape::Box, "Apple", 0},
    {"dev_mac", Shape::Monitor, "Mac", 0},
    {"dev_galaxys", Shape::Phone, "Galaxy", 0},
    {"dev_galaxynote", Shape::Phone, "Note", 0},
    {"dev_galaxytab", Shape::Tablet, "Tab", 0},
    {"dev_samsungtv", Shape::TV, "Samsung", 0},
    {"dev_samsungphone", Shape::Phone, "Samsung", 0},
    {"dev_bbz10", Shape::Phone, "Z10", 0},
    {"dev_bbbold", Shape::KeyPhone, "Bold", 0},
    {"dev_bbtorch", Shape::KeyPhone, "Torch", 0},
    {"dev_playbook", Shape::Tablet, "PlayBook", 0},
    {"dev_htcone", Shape::Phone, "One", 0},
    {"dev_htcdesire", Shape::Phone, "Desire", 0},
    {"dev_htcsensation", Shape::Phone, "Sense", 0},
    {"dev_htcwp", Shape::Phone, "HTC WP", 0},
    {"dev_lumia", Shape::Phone, "Lumia", 0},
    {"dev_nokian", Shape::Phone, "N", 0},
    {"dev_nokiaphone", Shape::KeyPhone, "Nokia", 0},
    {"dev_nokiaandroid", Shape::Phone, "Nokia", 0},
    {"dev_pixel", Shape::Phone, "Pixel", 0},
    {"dev_nexus", Shape::Phone, "Nexus", 0},
    {"dev_chromecast", Shape::Stick, "Cast", 0},
    {"dev_lgg", Shape::Phone, "LG G", 0},
    {"dev_lgoptimus", Shape::Phone, "Optimus", 0},
    {"dev_lgtv", Shape::TV, "LG", 0},
    {"dev_xperia", Shape::Phone, "Xperia", 0},
    {"dev_playstation", Shape::Gamepad, "PS", 0},
    {"dev_walkman", Shape::Player, "Walkman", 0},
    {"dev_bravia", Shape::TV, "Bravia", 0},
    {"dev_surface", Shape::Tablet, "Surface", 0},
    {"dev_windowsphone", Shape::Phone, "WP", 0},
    {"dev_zune", Shape::Player, "Zune", 0},
    {"dev_windowspc", Shape::Laptop, "PC", 0},
    {"dev_motog", Shape::Phone, "Moto G", 0},
    {"dev_motox", Shape::Phone, "Moto X", 0},
    {"dev_droid", Shape::Phone, "Droid", 0},
    {"dev_razr", Shape::KeyPhone, "RAZR", 0},
    {"dev_archostablet", Shape::Tablet, "Archos", 0},
    {"dev_archosplayer", Shape::Player, "Archos", 0},
    {"dev_psp", Shape::Handheld, "PSP", 0},
    {"dev_psvita", Shape::Handheld, "Vita", 0},
    {"dev_xbox", Shape::Gamepad, "Xbox", 0},
    {"dev_nintendo", Shape::Handheld, "Nintendo", 0},
    {"dev_kindle", Shape::Tablet, "Kindle", 0},
    {"dev_nook", Shape::Tablet, "Nook", 0},
    {"dev_roku", Shape::Box, "Roku", 0},
    {"dev_dvdplayer", Shape::Disc, "DVD", 0},
    {"dev_zen", Shape::Player, "Zen", 0},
    {"dev_sansa", Shape::Player, "Sansa", 0},
    {"dev_smarttv", Shape::TV, "Smart", 0},
    {"aud_mp3", Shape::Wave, "MP3", 0},
    {"aud_wma", Shape::Wave, "WMA", 0},
    {"aud_wav", Shape::Wave, "WAV", 0},
    {"aud_aac", Shape::Wave, "AAC", 0},
    {"aud_flac", Shape::Wave, "FLAC", 0},
    {"aud_ogg", Shape::Wave, "OGG", 0},
    {"aud_m4a", Shape::Wave, "M4A", 0},
    {"aud_ac3", Shape::Wave, "AC3", 0},
    {"aud_mp2", Shape::Wave, "MP2", 0},
    {"aud_aiff", Shape::Wave, "AIFF", 0},
    {"aud_au", Shape::Wave, "AU", 0},
    {"aud_m4b", Shape::Wave, "M4B", 0},
    {"aud_m4r", Shape::Wave, "M4R", 0},
    {"aud_mka", Shape::Wave, "MKA", 0},
    {"aud_oga", Shape::Wave, "OGA", 0},
    {"aud_opus", Shape::Wave, "OPUS", 0},
    {"aud_webm", Shape::Wave, "WebM", 0},
    {"web_youtube", Shape::Screen, "YouTube", 0xe62117},
    {"web_facebook", Shape::Screen, "Facebook", 0x1877f2},
    {"web_vimeo", Shape::Screen, "Vimeo", 0x1a9fd0},
    {"web_html5webm", Shape::Screen, "HTML5\nWebM", 0xe34f26},
    {"web_html5mp4", Shape::Screen, "HTML5\nMP4", 0xe34f26},
    {"web_html5ogv", Shape::Screen, "HTML5\nOGV", 0xe34f26},
    {"web_twitter", Shape::Screen, "Twitter", 0x1d8fd6},
    {"web_instagram", Shape::Screen, "Instagram", 0xc13584},
    {"web_dailymotion", Shape::Screen, "DM", 0x0066dc},
    {"web_flash", Shape::Screen, "Flash", 0},
    {"web_vertical", Shape::Upright, "9:16", 0},
};

const Group* findGroup(const QString& id) {
    for (const Group& group : kGroups)
        if (id == QLatin1String(group.id)) return &group;
    return nullptr;
}

QString normalisedId(const QString& thumbnail) {
    QString id = thumbnail.trimmed().toLower();
    const qsizetype dot = id.lastIndexOf(QLatin1Char('.'));
    if (dot > 0) id.truncate(dot);
    return id;
}

// The label of an unknown identifier: up to three letters or digits after its family prefix.
QString genericLabel(const QString& id) {
    const qsizetype bar = id.indexOf(QLatin1Char('_'));
    const QString name = bar >= 0 && bar + 1 < id.size() ? id.mid(bar + 1) : id;
    QString letters;
    for (const QChar ch : name) {
        if (ch.isLetterOrNumber()) letters += ch.toUpper();
        if (letters.size() == 3) break;
    }
    return letters.isEmpty() ? QStringLiteral("?") : letters;
}

unsigned familyColour(Shape shape) {
    switch (shape) {
    case Shape::Film:
        return kVideoColour;
    case Shape::Wave:
        return kAudioColour;
    case Shape::Screen:
    case Shape::Upright:
        return kWebColour;
    case Shape::Generic:
        return 0x8c8c8c;
    default:
        return kDeviceColour;
    }
}

// The colours of one picture. Tiles keep their hue in both themes; the device bodies and the holes of
// the film take the foreground and the ground of the theme.
struct Palette {
    QColor fill;
    QColor edge;
    QColor body;
    QColor holes;
    QColor label = Qt::white;
};

Palette paletteFor(Shape shape, unsigned colour, int theme) {
    const bool light = theme == 1;
    const QColor base(QRgb(colour != 0 ? colour : familyColour(shape)));
    Palette palette;
    if (shape == Shape::Generic) {
        palette.fill = light ? QColor(0x9a, 0x9a, 0x9a) : QColor(0x5c, 0x5c, 0x5c);
        palette.edge = light ? QColor(0x7a, 0x7a, 0x7a) : QColor(0x80, 0x80, 0x80);
    } else {
        palette.fill = light ? base : base.lighter(115);
        palette.edge = light ? base.darker(130) : base.lighter(150);
    }
    palette.body = light ? QColor(0x4a, 0x4a, 0x4a) : QColor(0xd2, 0xd2, 0xd2);
    palette.holes = light ? QColor(0xff, 0xff, 0xff, 235) : QColor(0x1e, 0x1e, 0x1e, 235);
    return palette;
}

// Drawings are laid out on a unit square, centred in the picture at the size of its smaller side.
struct Canvas {
    QPointF origin;
    qreal side = 0;

    QRectF r(qreal x, qreal y, qreal w, qreal h) const {
        return {origin.x() + x * side, origin.y() + y * side, w * side, h * side};
    }
    QPointF p(qreal x, qreal y) const { return {origin.x() + x * side, origin.y() + y * side}; }
    qreal len(qreal v) const { return v * side; }
};

void fillRounded(QPainter& painter, const QRectF& rect, qreal radius, const QColor& fill,
                 const QColor& edge = QColor()) {
    painter.setPen(edge.isValid() ? QPen(edge, std::max<qreal>(1.0, rect.height() / 40.0)) : QPen(Qt::NoPen));
    painter.setBrush(fill);
    painter.drawRoundedRect(rect, radius, radius);
}

void fillEllipse(QPainter& painter, const Canvas& c, qreal cx, qreal cy, qreal radius, const QColor& fill) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawEllipse(c.p(cx, cy), c.len(radius), c.len(radius));
}

void fillPolygon(QPainter& painter, const Canvas& c, std::initializer_list<QPointF> points,
                 const QColor& fill) {
    QPolygonF polygon;
    for (const QPointF& point : points)
        polygon << c.p(point.x(), point.y());
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawPolygon(polygon);
}

// The largest bold text that fits the box, down to a floor below which small pictures just clip.
void drawLabel(QPainter& painter, const QRectF& box, const QString& text, const QColor& colour, qreal maxPx) {
    const QStringList lines = text.split(QLatin1Char('\n'));
    QFont font;
    font.setBold(true);
    int px = std::max(5, static_cast<int>(maxPx));
    for (; px > 5; --px) {
        font.setPixelSize(px);
        const QFontMetricsF metrics(font);
        bool fits = metrics.height() * static_cast<qreal>(lines.size()) <= box.height() + 0.5;
        for (const QString& line : lines)
            fits = fits && metrics.horizontalAdvance(line) <= box.width();
        if (fits) break;
    }
    font.setPixelSize(px);
    painter.setFont(font);
    painter.setPen(colour);
    painter.drawText(box, Qt::AlignCenter, text);
}

void drawSignal(QPainter& painter, const Canvas& c, qreal cx, qreal cy, const QColor& colour) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colour, c.len(0.05), Qt::SolidLine, Qt::RoundCap));
    for (const qreal radius : {0.11, 0.21})
        painter.drawArc(c.r(cx - radius, cy - radius, 2 * radius, 2 * radius), 55 * 16, 70 * 16);
}

void drawCross(QPainter& painter, const Canvas& c, qreal cx, qreal cy, qreal arm, const QColor& colour) {
    const qreal thick = arm * 0.7;
    fillRounded(painter, c.r(cx - arm, cy - thick / 2, 2 * arm, thick), 0, colour);
    fillRounded(painter, c.r(cx - thick / 2, cy - arm, thick, 2 * arm), 0, colour);
}

void drawFilm(QPainter& painter, const Canvas& c, const Palette& pal, const QString& label) {
    fillRounded(painter, c.r(0.06, 0.12, 0.88, 0.76), c.len(0.08), pal.fill, pal.edge);
    for (int i = 0; i < 5; ++i) {
        const qreal x = 0.13 + 0.16 * i;
        fillRounded(painter, c.r(x, 0.17, 0.10, 0.07), c.len(0.02), pal.holes);
        fillRounded(painter, c.r(x, 0.76, 0.10, 0.07), c.len(0.02), pal.holes);
    }
    drawLabel(painter, c.r(0.10, 0.27, 0.80, 0.46), label, pal.label, c.len(0.30));
}

void drawWave(QPainter& painter, const Canvas& c, const Palette& pal, const QString& label) {
    fillRounded(painter, c.r(0.06, 0.06, 0.88, 0.88), c.len(0.14), pal.fill, pal.edge);
    QColor bar = pal.label;
    bar.setAlpha(150);
    constexpr qreal heights[] = {0.08, 0.18, 0.28, 0.14, 0.24, 0.12, 0.06};
    for (int i = 0; i < 7; ++i) {
        const qreal h = heights[i];
        fillRounded(painter, c.r(0.18 + 0.10 * i - 0.03, 0.72 - h / 2, 0.06, h), c.len(0.03), bar);
    }
    drawLabel(painter, c.r(0.10, 0.12, 0.80, 0.44), label, pal.label, c.len(0.30));
}

void drawScreen(QPainter& painter, const Canvas& c, const Palette& pal, const QString& label) {
    fillRounded(painter, c.r(0.45, 0.72, 0.10, 0.10), 0, pal.body);
    fillRounded(painter, c.r(0.28, 0.81, 0.44, 0.07), c.len(0.035), pal.body);
    fillRounded(painter, c.r(0.06, 0.08, 0.88, 0.66), c.len(0.07), pal.fill, pal.edge);
    fillPolygon(painter, c, {{0.44, 0.14}, {0.44, 0.32}, {0.59, 0.23}}, pal.label);
    drawLabel(painter, c.r(0.10, 0.34, 0.80, 0.37), label, pal.label, c.len(0.26));
}

void drawUpright(QPainter& painter, const Canvas& c, const Palette& pal, const QString& label) {
    fillRounded(painter, c.r(0.22, 0.04, 0.56, 0.92), c.len(0.08), pal.fill, pal.edge);
    fillRounded(painter, c.r(0.42, 0.08, 0.16, 0.03), c.len(0.015), pal.holes);
    fillPolygon(painter, c, {{0.43, 0.22}, {0.43, 0.42}, {0.60, 0.32}}, pal.label);
    drawLabel(painter, c.r(0.25, 0.52, 0.50, 0.30), label, pal.label, c.len(0.22));
}

void drawDeviceBody(QPainter& painter, const Canvas& c, Shape shape, const QColor& body,
                    const QColor& screen) {
    switch (shape) {
    case Shape::Phone:
        fillRounded(painter, c.r(0.31, 0.02, 0.38, 0.72), c.len(0.07), body);
        fillRounded(painter, c.r(0.35, 0.09, 0.30, 0.52), c.len(0.02), screen);
        break;
    case Shape::KeyPhone:
        fillRounded(painter, c.r(0.29, 0.02, 0.42, 0.72), c.len(0.06), body);
        fillRounded(painter, c.r(0.34, 0.07, 0.32, 0.26), c.len(0.02), screen);
        for (int col = 0; col < 3; ++col)
            for (int row = 0; row < 3; ++row)
                fillEllipse(painter, c, 0.40 + 0.10 * col, 0.42 + 0.085 * row, 0.028, screen);
        break;
    case Shape::Tablet:
        fillRounded(painter, c.r(0.14, 0.04, 0.72, 0.66), c.len(0.06), body);
        fillRounded(painter, c.r(0.20, 0.10, 0.60, 0.54), c.len(0.02), screen);
        break;
    case Shape::TV:
        fillRounded(painter, c.r(0.46, 0.59, 0.08, 0.06), 0, body);
        fillRounded(painter, c.r(0.30, 0.64, 0.40, 0.05), c.len(0.02), body);
        fillRounded(painter, c.r(0.05, 0.06, 0.90, 0.54), c.len(0.03), body);
        fillRounded(painter, c.r(0.09, 0.10, 0.82, 0.46), 0, screen);
        break;
    case Shape::Monitor:
        fillPolygon(painter, c, {{0.43, 0.58}, {0.57, 0.58}, {0.61, 0.69}, {0.39, 0.69}}, body);
        fillRounded(painter, c.r(0.10, 0.03, 0.80, 0.56), c.len(0.04), body);
        fillRounded(painter, c.r(0.14, 0.07, 0.72, 0.40), c.len(0.01), screen);
        break;
    case Shape::Laptop:
        fillRounded(painter, c.r(0.17, 0.08, 0.66, 0.48), c.len(0.03), body);
        fillRounded(painter, c.r(0.21, 0.12, 0.58, 0.40), 0, screen);
        fillPolygon(painter, c, {{0.07, 0.58}, {0.93, 0.58}, {0.89, 0.66}, {0.11, 0.66}}, body);
        break;
    case Shape::Player:
        fillRounded(painter, c.r(0.30, 0.02, 0.40, 0.70), c.len(0.07), body);
        fillRounded(painter, c.r(0.35, 0.08, 0.30, 0.24), c.len(0.02), screen);
        fillEllipse(painter, c, 0.50, 0.49, 0.12, screen);
        fillEllipse(painter, c, 0.50, 0.49, 0.045, body);
        break;
    case Shape::Box:
        drawSignal(painter, c, 0.50, 0.33, screen);
        fillRounded(painter, c.r(0.12, 0.38, 0.76, 0.24), c.len(0.05), body);
        fillEllipse(painter, c, 0.77, 0.50, 0.03, screen);
        break;
    case Shape::Stick:
        drawSignal(painter, c, 0.41, 0.35, screen);
        fillRounded(painter, c.r(0.16, 0.40, 0.50, 0.20), c.len(0.07), body);
        fillRounded(painter, c.r(0.64, 0.44, 0.18, 0.12), c.len(0.02), body);
        fillRounded(painter, c.r(0.70, 0.47, 0.10, 0.06), 0, screen);
        break;
    case Shape::Gamepad: {
        QPainterPath pad;
        pad.setFillRule(Qt::WindingFill);
        pad.addRoundedRect(c.r(0.10, 0.20, 0.80, 0.30), c.len(0.14), c.len(0.14));
        pad.addEllipse(c.r(0.10, 0.32, 0.28, 0.34));
        pad.addEllipse(c.r(0.62, 0.32, 0.28, 0.34));
        painter.setPen(Qt::NoPen);
        painter.setBrush(body);
        painter.drawPath(pad);
        drawCross(painter, c, 0.27, 0.36, 0.07, screen);
        fillEllipse(painter, c, 0.67, 0.32, 0.035, screen);
        fillEllipse(painter, c, 0.76, 0.40, 0.035, screen);
        break;
    }
    case Shape::Handheld:
        fillRounded(painter, c.r(0.04, 0.16, 0.92, 0.46), c.len(0.2), body);
        fillRounded(painter, c.r(0.29, 0.22, 0.42, 0.34), c.len(0.02), screen);
        drawCross(painter, c, 0.16, 0.39, 0.06, screen);
        fillEllipse(painter, c, 0.80, 0.34, 0.03, screen);
        fillEllipse(painter, c, 0.86, 0.43, 0.03, screen);
        break;
    case Shape::Disc:
        fillEllipse(painter, c, 0.50, 0.30, 0.26, screen);
        fillEllipse(painter, c, 0.50, 0.30, 0.06, body);
        fillRounded(painter, c.r(0.08, 0.50, 0.84, 0.17), c.len(0.04), body);
        fillRounded(painter, c.r(0.20, 0.575, 0.36, 0.025), 0, screen);
        break;
    default:
        break;
    }
}

void drawGeneric(QPainter& painter, const Canvas& c, const Palette& pal, const QString& label) {
    fillRounded(painter, c.r(0.08, 0.08, 0.84, 0.84), c.len(0.14), pal.fill, pal.edge);
    drawLabel(painter, c.r(0.14, 0.25, 0.72, 0.50), label, pal.label, c.len(0.34));
}

QPixmap drawPicture(const QString& id, QSize size, int theme) {
    const Group* group = findGroup(id);
    const Shape shape = group ? group->shape : Shape::Generic;
    const QString label = group ? QString::fromUtf8(group->label) : genericLabel(id);
    const Palette pal = paletteFor(shape, group ? group->colour : 0, theme);

    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    Canvas c;
    c.side = std::min(size.width(), size.height());
    c.origin = QPointF((size.width() - c.side) / 2.0, (size.height() - c.side) / 2.0);

    switch (shape) {
    case Shape::Film:
        drawFilm(painter, c, pal, label);
        break;
    case Shape::Wave:
        drawWave(painter, c, pal, label);
        break;
    case Shape::Screen:
        drawScreen(painter, c, pal, label);
        break;
    case Shape::Upright:
        drawUpright(painter, c, pal, label);
        break;
    case Shape::Generic:
        drawGeneric(painter, c, pal, label);
        break;
    default:
        // A silhouette over a name badge; the badge overlaps its foot so that tall devices keep their size.
        drawDeviceBody(painter, c, shape, pal.body, pal.fill);
        fillRounded(painter, c.r(0.04, 0.70, 0.92, 0.27), c.len(0.135), pal.fill, pal.edge);
        drawLabel(painter, c.r(0.09, 0.71, 0.82, 0.25), label, pal.label, c.len(0.22));
        break;
    }
    painter.end();
    return QPixmap::fromImage(image);
}

QHash<QString, QPixmap>& cache() {
    static QHash<QString, QPixmap> pictures;
    return pictures;
}

} // namespace

QPixmap Group_Picture(const QString& thumbnail, QSize size) {
    if (size.isEmpty()) return QPixmap();
    const QString id = normalisedId(thumbnail);
    const QString key =
        QStringLiteral("%1#%2x%3#%4").arg(id).arg(size.width()).arg(size.height()).arg(Theme_No);
    auto& pictures = cache();
    const auto found = pictures.constFind(key);
    if (found != pictures.cend()) return found.value();
    const QPixmap picture = drawPicture(id, size, Theme_No);
    pictures.insert(key, picture);
    return picture;
}

QStringList Group_PictureIds() {
    QStringList ids;
    for (const Group& group : kGroups)
        ids << QLatin1String(group.id);
    return ids;
}

void Group_ClearCache() {
    cache().clear();
}

} // namespace morvane
