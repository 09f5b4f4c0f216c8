#include "Skin_Icons.h"

#include "Registry_Mod.h"

#include <QCoreApplication>
#include <QHash>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>

namespace morvane {

namespace {

// Colour of a glyph. Fg and Muted follow the theme; the others are the same in both.
enum class Tone { Fg, Muted, Accent, Red, Green, Orange, Twitter, Facebook, Google };

QColor toneColor(Tone tone, int theme) {
    switch (tone) {
    case Tone::Fg:
        return theme == 1 ? QColor(0x3c, 0x3c, 0x3c) : QColor(0xe6, 0xe6, 0xe6);
    case Tone::Muted:
        return theme == 1 ? QColor(0x8a, 0x8a, 0x8a) : QColor(0x9a, 0x9a, 0x9a);
    case Tone::Accent:
        return QColor(0x00, 0x7a, 0xff);
    case Tone::Red:
        return QColor(0xd9, 0x30, 0x25);
    case Tone::Green:
        return QColor(0x2e, 0x9d, 0x4f);
    case Tone::Orange:
        return QColor(0xf2, 0x99, 0x00);
    case Tone::Twitter:
        return QColor(0x1d, 0xa1, 0xf2);
    case Tone::Facebook:
        return QColor(0x18, 0x77, 0xf2);
    case Tone::Google:
        return QColor(0xdb, 0x44, 0x37);
    }
    return Qt::gray;
}

// Glyph bodies are SVG on a 24 x 24 grid, stroked with %1 (the tone) at width 2 by default; %2 is the
// white that marks sit in on solid shapes.
#define DOC "<path d='M13 3H6a1 1 0 0 0-1 1v16a1 1 0 0 0 1 1h12a1 1 0 0 0 1-1V9z'/><path d='M13 3v6h6'/>"
#define CARD "<rect x='3' y='3' width='18' height='18' rx='3'/>"
#define PLAY "<path d='M7 4v16l13-8z' fill='%1'/>"
#define STOP "<rect x='5' y='5' width='14' height='14' rx='2' fill='%1' stroke='none'/>"
#define PAUSE                                                                                                \
    "<rect x='5.5' y='4' width='4.5' height='16' rx='1' fill='%1' stroke='none'/>"                           \
    "<rect x='14' y='4' width='4.5' height='16' rx='1' fill='%1' stroke='none'/>"
#define CHECK "<path d='M5 12.5l4.5 4.5L19 7'/>"
#define SPEAKER "<path d='M3 9h3.5L12 4.5v15L6.5 15H3z' fill='%1'/>"
#define VOL_ON SPEAKER "<path d='M15.5 9a4 4 0 0 1 0 6M18 6a8 8 0 0 1 0 12'/>"
#define VOL_OFF SPEAKER "<path d='M16 9l6 6M22 9l-6 6'/>"
#define SCISSORS                                                                                             \
    "<circle cx='6' cy='7' r='3'/><circle cx='6' cy='17' r='3'/><path d='M8.5 8.7L20 18M8.5 15.3L20 6'/>"
#define SPARKLE                                                                                              \
    "<path d='M10 3l1.8 5.2L17 10l-5.2 1.8L10 17l-1.8-5.2L3 10l5.2-1.8z'/><path d='M18 14v6M15 17h6'/>"
#define CROP "<path d='M6 2v16h16'/><path d='M2 6h12v12'/>"
#define SLIDERS                                                                                              \
    "<path d='M3 6h18M3 12h18M3 18h18'/><circle cx='9' cy='6' r='2.5' fill='%1'/>"                           \
    "<circle cx='16' cy='12' r='2.5' fill='%1'/><circle cx='7' cy='18' r='2.5' fill='%1'/>"
#define RAIL "<rect x='1' y='10' width='22' height='4' rx='2' fill='%1' stroke='none'"
#define STAR                                                                                                 \
    "<path d='M12 3l2.35 6.26 6.69.3-5.24 4.18 1.78 6.45L12 16.5l-5.58 3.69 1.78-6.45-5.24-4.18 6.69-.3z'"
#define MAGNIFIER "<circle cx='10' cy='10' r='7'/><path d='M15 15l6 6'/>"
#define BADGE "<rect x='2' y='2' width='20' height='20' rx='5' fill='%1' stroke='none'/>"

struct Glyph {
    const char* role;
    const char* themeName; // freedesktop name, or nullptr where only our drawing fits
    Tone tone;
    const char* svg;
};

// The skin's image list, in its order.
constexpr Glyph kGlyphs[] = {
    {"img_addfile", "list-add", Tone::Fg, DOC "<path d='M12 12v6M9 15h6'/>"},
    {"img_removefile", "list-remove", Tone::Fg, DOC "<path d='M9 15h6'/>"},
    {"img_clearall", "edit-clear-all", Tone::Fg,
     "<path d='M4 7h16M9 7V4h6v3M6 7l1 13a1 1 0 0 0 1 1h8a1 1 0 0 0 1-1l1-13M10 11v6M14 11v6'/>"},
    {"img_add_dvd", "media-optical", Tone::Fg,
     "<circle cx='12' cy='12' r='9'/><circle cx='12' cy='12' r='2.5'/><path d='M7 10a5 5 0 0 1 3-3'/>"},
    {"img_edit", "document-edit|edit-entry", Tone::Fg,
     "<path d='M4 20l1-5L16 4l4 4L9 19z'/><path d='M14 6l4 4'/>"},
    {"img_rename_all", "edit-rename", Tone::Fg,
     "<rect x='2' y='7' width='13' height='10' rx='2'/><path d='M6 12h5M19 5v14M17 5h4M17 19h4'/>"},
    {"img_arrowdown", "go-down", Tone::Fg, "<path d='M6 9l6 6 6-6'/>"},
    {"img_list_icons", nullptr, Tone::Fg,
     "<path d='M10 6h11M10 12h11M10 18h11'/><circle cx='5' cy='6' r='1.5' fill='%1'/>"
     "<circle cx='5' cy='12' r='1.5' fill='%1'/><circle cx='5' cy='18' r='1.5' fill='%1'/>"},
    {"img_dragmedia", nullptr, Tone::Fg,
     "<rect x='3' y='3' width='18' height='18' rx='3' stroke-dasharray='3 2.5'/>"
     "<path d='M12 7v9M8.5 12.5L12 16l3.5-3.5'/>"},
    {"img_convert", nullptr, Tone::Accent,
     "<path d='M20 11a8 8 0 0 0-14.5-4.5M4 13a8 8 0 0 0 14.5 4.5'/><path d='M5 3v4h4M19 21v-4h-4'/>"},
    {"img_stop", nullptr, Tone::Red, STOP},
    {"img_pause", nullptr, Tone::Fg, PAUSE},
    {"img_resume", nullptr, Tone::Accent, PLAY},
    {"img_continue", nullptr, Tone::Accent, "<path d='M5 4v16'/><path d='M10 4v16l11-8z' fill='%1'/>"},
    {"img_completed", nullptr, Tone::Accent,
     "<circle cx='12' cy='12' r='10' fill='%1' stroke='none'/><path d='M7 12.5l3.5 3.5L17 9' stroke='%2'/>"},
    {"img_browse", "folder-open", Tone::Fg,
     "<path d='M3 6a1 1 0 0 1 1-1h5l2 2h9a1 1 0 0 1 1 1v10a1 1 0 0 1-1 1H4a1 1 0 0 1-1-1z'/>"},
    {"img_warning", "dialog-warning", Tone::Red,
     "<path d='M12 3L2 20h20z'/><path d='M12 9.5v4'/><circle cx='12' cy='16.8' r='0.4' fill='%1'/>"},
    {"img_analyzer", nullptr, Tone::Fg, "<path d='M4 10v4M8 6v12M12 9v6M16 4v16M20 10v4'/>"},
    {"img_small_check", nullptr, Tone::Accent, CHECK},
    {"img_orange_check", nullptr, Tone::Orange, CHECK},
    {"img_player_play", "media-playback-start", Tone::Accent, PLAY},
    {"img_player_stop", "media-playback-stop", Tone::Fg, STOP},
    {"img_player_pause", "media-playback-pause", Tone::Fg, PAUSE},
    {"img_player_capture", "camera-photo", Tone::Fg,
     "<path d='M3 8a1 1 0 0 1 1-1h3l2-3h6l2 3h3a1 1 0 0 1 1 1v11a1 1 0 0 1-1 1H4a1 1 0 0 1-1-1z'/>"
     "<circle cx='12' cy='13' r='4'/>"},
    {"img_player_capture_menu", nullptr, Tone::Fg,
     "<path d='M2 9h3l1.5-2h5L13 9h3v9H2z'/><circle cx='9' cy='13.5' r='2.3'/><path d='M18 11l2.5 2.5L23 "
     "11'/>"},
    {"img_player_vol_on", "audio-volume-high", Tone::Fg, VOL_ON},
    {"img_player_vol_off", "audio-volume-muted", Tone::Fg, VOL_OFF},
    {"img_play_preview", nullptr, Tone::Fg,
     "<circle cx='12' cy='12' r='10'/><path d='M10 8v8l6-4z' fill='%1'/>"},
    {"img_fullscreen", "view-fullscreen", Tone::Fg, "<path d='M4 9V4h5M15 4h5v5M20 15v5h-5M9 20H4v-5'/>"},
    {"img_exit_fullscreen", "view-restore", Tone::Fg, "<path d='M9 4v5H4M20 9h-5V4M15 20v-5h5M4 15h5v5'/>"},
    {"img_playericon", nullptr, Tone::Accent,
     "<rect x='2' y='5' width='20' height='14' rx='2'/>"
     "<path d='M6 5v14M18 5v14M2 9.5h4M2 14.5h4M18 9.5h4M18 14.5h4'/><path d='M10.5 9.5v5l4-2.5z' "
     "fill='%1'/>"},
    {"img_vol_on", "audio-volume-high", Tone::Fg, VOL_ON},
    {"img_vol_off", "audio-volume-muted", Tone::Fg, VOL_OFF},
    {"img_trim_gray", nullptr, Tone::Muted, SCISSORS},
    {"img_trim_selected", nullptr, Tone::Accent, SCISSORS},
    {"img_effect_gray", nullptr, Tone::Muted, SPARKLE},
    {"img_effect_selected", nullptr, Tone::Accent, SPARKLE},
    {"img_crop_gray", nullptr, Tone::Muted, CROP},
    {"img_crop_selected", nullptr, Tone::Accent, CROP},
    {"img_adjust_gray", nullptr, Tone::Muted, SLIDERS},
    {"img_adjust_selected", nullptr, Tone::Accent, SLIDERS},
    {"img_adjust_flipv", "object-flip-vertical", Tone::Fg,
     "<path d='M3 12h18' stroke-dasharray='2 2.5'/><path d='M6 9l6-6 6 6z'/><path d='M6 15l6 6 6-6z' "
     "fill='%1'/>"},
    {"img_adjust_fliph", "object-flip-horizontal", Tone::Fg,
     "<path d='M12 3v18' stroke-dasharray='2 2.5'/><path d='M9 6l-6 6 6 6z'/><path d='M15 6l6 6-6 6z' "
     "fill='%1'/>"},
    {"img_adjust_rotate", "object-rotate-right", Tone::Fg,
     "<rect x='3' y='11' width='10' height='10' rx='1'/><path d='M8 5h4a7 7 0 0 1 7 7v1.5'/>"
     "<path d='M16 11l3 3 3-3'/>"},
    {"img_trim_play_selected", nullptr, Tone::Accent, PLAY},
    {"img_trim_left", nullptr, Tone::Accent, "<path d='M8 3h7v4h-3v10h3v4H8z' fill='%1'/>"},
    {"img_trim_right", nullptr, Tone::Accent, "<path d='M16 3H9v4h3v10H9v4h7z' fill='%1'/>"},
    {"img_sliderrail_1", nullptr, Tone::Accent, RAIL "/>"},
    {"img_sliderrail_3", nullptr, Tone::Muted, RAIL "/>"},
    {"img_silderrail_4", nullptr, Tone::Accent, RAIL " fill-opacity='0.4'/>"},
    {"img_sliderimage1", nullptr, Tone::Fg, "<circle cx='12' cy='12' r='7' fill='%1' stroke='none'/>"},
    {"img_sliderimage2", nullptr, Tone::Accent,
     "<circle cx='12' cy='12' r='8' fill='%1' stroke='none'/><circle cx='12' cy='12' r='3' fill='%2' "
     "stroke='none'/>"},
    {"img_favorite_on", nullptr, Tone::Orange, STAR " fill='%1'/>"},
    {"img_favorite_off", nullptr, Tone::Fg, STAR "/>"},
    {"img_add_preset", nullptr, Tone::Fg, CARD "<path d='M12 8v8M8 12h8'/>"},
    {"img_remove_preset", nullptr, Tone::Fg, CARD "<path d='M8 12h8'/>"},
    {"img_search_format", nullptr, Tone::Fg, MAGNIFIER "<path d='M8.5 7.5v5l4-2.5z' fill='%1'/>"},
    {"img_search", "edit-find", Tone::Fg, MAGNIFIER},
    {"img_search_remove", "edit-clear", Tone::Fg,
     "<circle cx='12' cy='12' r='9'/><path d='M9 9l6 6M15 9l-6 6'/>"},
    {"img_menu", "open-menu", Tone::Fg, "<path d='M4 6h16M4 12h16M4 18h16'/>"},
    {"img_setting", "preferences-system", Tone::Fg,
     "<circle cx='12' cy='12' r='3'/><circle cx='12' cy='12' r='6.5'/>"
     "<path d='M12 2.5v4M12 17.5v4M2.5 12h4M17.5 12h4M5.3 5.3l2.8 2.8M15.9 15.9l2.8 2.8M5.3 18.7l2.8-2.8"
     "M15.9 8.1l2.8-2.8' stroke-width='3' stroke-linecap='butt'/>"},
    {"img_update", "system-software-update", Tone::Fg,
     "<circle cx='12' cy='12' r='9'/><path d='M12 7v9M8.5 12.5L12 16l3.5-3.5'/>"},
    {"img_closeform", "window-close", Tone::Fg, "<path d='M6 6l12 12M18 6L6 18'/>"},
    {"img_close_tray", nullptr, Tone::Fg,
     "<path d='M4 14v5a1 1 0 0 0 1 1h14a1 1 0 0 0 1-1v-5'/><path d='M12 3v11M8 10l4 4 4-4'/>"},
    {"img_close_exit", "application-exit", Tone::Fg, "<path d='M12 3v9'/><path d='M7 6a8 8 0 1 0 10 0'/>"},
    {"img_switch_on", nullptr, Tone::Accent,
     "<rect x='2' y='7' width='20' height='10' rx='5' fill='%1' stroke='none'/>"
     "<circle cx='17' cy='12' r='3.5' fill='%2' stroke='none'/>"},
    {"img_switch_off", nullptr, Tone::Muted,
     "<rect x='2' y='7' width='20' height='10' rx='5'/><circle cx='7' cy='12' r='2.5' fill='%1' "
     "stroke='none'/>"},
    {"img_tag_gettingstarted", nullptr, Tone::Accent,
     "<path d='M9 18h6M10 21h4'/>"
     "<path d='M8.5 14.5a6 6 0 1 1 7 0c-.6.5-1 1.2-1 2v.5h-5v-.5c0-.8-.4-1.5-1-2z'/>"},
    {"img_tw", nullptr, Tone::Twitter, BADGE "<path d='M10 6v9a3 3 0 0 0 3 3h2M7.5 10H15' stroke='%2'/>"},
    {"img_fb", nullptr, Tone::Facebook,
     BADGE "<path d='M15.5 6H14a2.5 2.5 0 0 0-2.5 2.5V21M8.5 12h6' stroke='%2'/>"},
    {"img_gplus", nullptr, Tone::Google,
     BADGE "<path d='M11.97 9.53A3.5 3.5 0 1 0 13 12h-3M17 9v5M14.5 11.5h5' stroke='%2'/>"},
};

constexpr Glyph kLock = {
    "lock", nullptr, Tone::Fg,
    "<rect x='5' y='10' width='14' height='11' rx='2'/><path d='M8 10V7a4 4 0 0 1 8 0v3'/>"
    "<circle cx='12' cy='15.5' r='0.8' fill='%1'/>"};
constexpr Glyph kPlaceholder = {"", nullptr, Tone::Muted,
                                "<rect x='4' y='4' width='16' height='16' rx='3' stroke-dasharray='3 3'/>"
                                "<circle cx='12' cy='12' r='1.5' fill='%1' stroke='none'/>"};

const Glyph* findGlyph(const QString& role) {
    for (const Glyph& g : kGlyphs)
        if (role == QLatin1String(g.role)) return &g;
    return nullptr;
}

QByteArray svgOf(const QString& body, Tone tone) {
    const QString doc =
        QStringLiteral("<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 24 24' width='24' "
                       "height='24'><g fill='none' stroke='%1' stroke-width='2' "
                       "stroke-linecap='round' stroke-linejoin='round'>") +
        body + QStringLiteral("</g></svg>");
    return QString(doc)
        .replace(QLatin1String("%1"), toneColor(tone, Theme_No).name())
        .replace(QLatin1String("%2"), QLatin1String("#ffffff"))
        .toUtf8();
}

// The drawing fitted into size with its aspect kept, centred, on a transparent ground.
QPixmap renderSvg(const QByteArray& svg, QSize size) {
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QSvgRenderer renderer(svg);
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter);
    return pixmap;
}

QIcon iconOf(const QByteArray& svg, std::initializer_list<int> sizes = {16, 24, 32, 48, 64}) {
    QIcon icon;
    for (int s : sizes)
        icon.addPixmap(renderSvg(svg, QSize(s, s)));
    return icon;
}

// A theme icon is taken only when it stands out from the ground of our theme: icon themes made for a
// light desktop (Adwaita's grey glyphs) vanish on the dark one, and the other way round. The measure is
// the mean lightness difference to the ground, weighted by coverage.
bool readableOnTheme(const QIcon& icon) {
    const QImage image = icon.pixmap(32).toImage().convertToFormat(QImage::Format_ARGB32);
    const double ground = Theme_No == 1 ? 0.96 : 0.17;
    double contrast = 0, coverage = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QRgb px = image.pixel(x, y);
            const double alpha = qAlpha(px) / 255.0;
            contrast += alpha * std::abs(qGray(px) / 255.0 - ground);
            coverage += alpha;
        }
    return coverage >= 16 && contrast / coverage >= 0.25;
}

QIcon themeIcon(const char* names) {
    if (!names) return {};
    for (const QString& name : QString::fromLatin1(names).split(QLatin1Char('|'))) {
        if (!QIcon::hasThemeIcon(name)) continue;
        QIcon icon = QIcon::fromTheme(name);
        if (!icon.isNull() && readableOnTheme(icon)) return icon;
    }
    return {};
}

struct CachedIcon {
    QIcon icon;
    bool themed = false;
};

QHash<QString, CachedIcon>& cache() {
    static QHash<QString, CachedIcon> icons;
    static const bool cleanOnExit = [] {
        // Pixmaps must go before the application object does.
        qAddPostRoutine(Skin_ClearCache);
        return true;
    }();
    (void)cleanOnExit;
    return icons;
}

QString cacheKey(const QString& name) {
    return name + QLatin1Char('#') + QString::number(Theme_No);
}

CachedIcon& cachedIcon(const QString& role) {
    auto& icons = cache();
    const QString key = cacheKey(role);
    auto it = icons.find(key);
    if (it != icons.end()) return *it;
    const Glyph* glyph = findGlyph(role);
    if (!glyph) glyph = &kPlaceholder;
    CachedIcon entry{themeIcon(glyph->themeName), true};
    if (entry.icon.isNull()) entry = {iconOf(svgOf(QLatin1String(glyph->svg), glyph->tone)), false};
    return *icons.insert(key, entry);
}

QIcon cachedGlyph(const QString& key, const QString& body, Tone tone) {
    auto& icons = cache();
    const QString fullKey = cacheKey(key);
    auto it = icons.find(fullKey);
    if (it == icons.end()) it = icons.insert(fullKey, {iconOf(svgOf(body, tone), {16, 24, 32}), false});
    return it->icon;
}

// The drop hint: a dashed frame round a film strip, with an arrow dropping into it.
QPixmap dragMediaPicture(QSize size) {
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF area(0, 0, size.width(), size.height());
    const qreal m = std::min(area.width(), area.height());
    const qreal pen = std::max<qreal>(1.5, m / 90);
    const QColor fg = toneColor(Tone::Fg, Theme_No);
    const QColor frame = toneColor(Tone::Muted, Theme_No);

    QPen dashed(frame, pen, Qt::DashLine, Qt::RoundCap, Qt::RoundJoin);
    dashed.setDashPattern({4, 3});
    p.setPen(dashed);
    const qreal inset = pen * 2;
    p.drawRoundedRect(area.adjusted(inset, inset, -inset, -inset), m * 0.06, m * 0.06);

    // The film strip: a frame with sprocket holes top and bottom and a play mark inside.
    const QPointF c = area.center() + QPointF(0, m * 0.1);
    const QRectF film(c.x() - m * 0.2, c.y() - m * 0.13, m * 0.4, m * 0.26);
    p.setPen(QPen(fg, pen * 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(Qt::NoBrush);
    p.drawRoundedRect(film, m * 0.025, m * 0.025);
    p.setPen(Qt::NoPen);
    p.setBrush(fg);
    const qreal hole = m * 0.03;
    for (int i = 0; i < 5; ++i) {
        const qreal x = film.left() + film.width() * (i + 0.5) / 5 - hole / 2;
        p.drawRect(QRectF(x, film.top() + hole * 0.8, hole, hole));
        p.drawRect(QRectF(x, film.bottom() - hole * 1.8, hole, hole));
    }
    const QColor accent = toneColor(Tone::Accent, Theme_No);
    p.setBrush(accent);
    const qreal t = m * 0.055;
    p.drawPolygon(QPolygonF({QPointF(c.x() - t * 0.7, c.y() - t), QPointF(c.x() - t * 0.7, c.y() + t),
                             QPointF(c.x() + t, c.y())}));

    // The arrow, pointing down into the strip.
    p.setPen(QPen(accent, pen * 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(Qt::NoBrush);
    const qreal tipY = film.top() - m * 0.05;
    p.drawLine(QPointF(c.x(), tipY - m * 0.2), QPointF(c.x(), tipY));
    const qreal head = m * 0.07;
    p.drawPolyline(QPolygonF(
        {QPointF(c.x() - head, tipY - head), QPointF(c.x(), tipY), QPointF(c.x() + head, tipY - head)}));
    return pixmap;
}

} // namespace

QStringList Skin_Roles() {
    QStringList roles;
    for (const Glyph& g : kGlyphs)
        roles << QLatin1String(g.role);
    return roles;
}

QIcon Skin_Icon(const QString& role) {
    return cachedIcon(role).icon;
}

QPixmap Skin_Picture(const QString& role, QSize size) {
    if (size.isEmpty()) return {};
    if (role == QLatin1String("img_dragmedia")) return dragMediaPicture(size);
    const CachedIcon& entry = cachedIcon(role);
    if (!entry.themed) {
        const Glyph* glyph = findGlyph(role);
        if (!glyph) glyph = &kPlaceholder;
        return renderSvg(svgOf(QLatin1String(glyph->svg), glyph->tone), size);
    }
    // Theme icons come at their own sizes; fit the nearest one.
    const QPixmap nearest = entry.icon.pixmap(size);
    if (nearest.size() == size) return nearest;
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    const QPixmap scaled = nearest.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    p.drawPixmap((size.width() - scaled.width()) / 2, (size.height() - scaled.height()) / 2, scaled);
    return pixmap;
}

QIcon Skin_StateIcon(int image) {
    if (image >= 1 && image <= 9) {
        // One turn of a quarter arc over the nine frames, on a faint track.
        const QString body =
            QStringLiteral("<circle cx='12' cy='12' r='8' stroke-opacity='0.25' stroke-width='2.5'/>"
                           "<path d='M12 4a8 8 0 0 1 8 8' stroke-width='2.5' transform='rotate(") +
            QString::number(40 * (image - 1)) + QStringLiteral(" 12 12)'/>");
        return cachedGlyph(QStringLiteral("state%1").arg(image), body, Tone::Accent);
    }
    switch (image) {
    case 10:
        return cachedGlyph(QStringLiteral("state10"),
                           QStringLiteral("<circle cx='12' cy='12' r='9' fill='%1' stroke='none'/>"
                                          "<path d='M7.5 12.5l3 3 6-6.5' stroke='%2'/>"),
                           Tone::Green);
    case 11:
        return cachedGlyph(QStringLiteral("state11"),
                           QStringLiteral("<circle cx='12' cy='12' r='9' fill='%1' stroke='none'/>"
                                          "<path d='M8.5 8.5l7 7M15.5 8.5l-7 7' stroke='%2'/>"),
                           Tone::Red);
    case 12:
        return cachedGlyph(QStringLiteral("state12"),
                           QStringLiteral("<circle cx='12' cy='12' r='7'/><path d='M12 8.5V12l2.5 1.5'/>"),
                           Tone::Muted);
    case 13:
        return cachedGlyph(QStringLiteral("state13"),
                           QStringLiteral("<circle cx='12' cy='12' r='8.5'/><path d='M6 6l12 12'/>"),
                           Tone::Orange);
    case 14: // the edit mark: a pencil
        return cachedGlyph(
            QStringLiteral("state14"),
            QStringLiteral("<path d='M5 19l1-4L15.5 5.5l3 3L9 18z'/><path d='M13.5 7.5l3 3'/>"),
            Tone::Accent);
    default:
        return {};
    }
}

QIcon Skin_StoreIcon(int number) {
    switch (number) {
    case 5:
        return Skin_Icon(QStringLiteral("img_convert"));
    case 7:
        return Skin_Icon(QStringLiteral("img_pause"));
    case 34:
        return Skin_Icon(QStringLiteral("img_resume"));
    case 10:
        return Skin_Icon(QStringLiteral("img_warning"));
    case 41:
        return cachedGlyph(QStringLiteral("store41"), QLatin1String(kLock.svg), kLock.tone);
    default:
        return Skin_Icon(QString());
    }
}

void Skin_ClearCache() {
    cache().clear();
}

} // namespace morvane
