#include "Popup_Mods.h"

#include <QRegularExpression>

#include <algorithm>

namespace morvane {

namespace {

// The hint stands below the title bar and the toolbar, its left edge under the Add Files button.
constexpr QPoint kHintOffset(12, 88);
// The done note keeps a little air to the screen's corner.
constexpr int kCornerMargin = 12;

// Old colour values are 0x00BBGGRR.
QColor fromBgr(quint32 bgr) {
    return QColor(int(bgr & 0xff), int((bgr >> 8) & 0xff), int((bgr >> 16) & 0xff));
}

} // namespace

int clampTransparency(int transparency) {
    return std::clamp(transparency, 0, kPopupOpaque);
}

int clampDelay(const QString& text) {
    static const QRegularExpression number(QStringLiteral("^([+-]?)([0-9]+)$"));
    const QRegularExpressionMatch m = number.match(text.trimmed());
    if (!m.hasMatch() || m.captured(1) == QLatin1String("-")) return 0;
    bool ok = false;
    const qulonglong value = m.captured(2).toULongLong(&ok);
    // Too many digits for any integer is still a huge delay, not junk.
    if (!ok || value > qulonglong(kPopupMaxDelay)) return kPopupMaxDelay;
    return int(value);
}

int effectFromWord(int previous, const QString& word) {
    static const char* const kWords[] = {"none", "fade", "slide", "unfold"};
    const QString w = word.trimmed();
    for (int i = 0; i < 4; ++i)
        if (w.compare(QLatin1String(kWords[i]), Qt::CaseInsensitive) == 0) return i;
    return previous;
}

QPoint keepOnScreen(const QRect& wanted, const QRect& screen) {
    const int x = std::max(screen.left(), std::min(wanted.left(), screen.right() + 1 - wanted.width()));
    const int y = std::max(screen.top(), std::min(wanted.top(), screen.bottom() + 1 - wanted.height()));
    return {x, y};
}

QSize splashSize() {
    return {579, 403};
}

PopupProps splashProps(const QRect& screen, const QString& picturePath) {
    PopupProps p;
    p.Transparency = 200;
    p.ShowDelay = 5000;
    p.AnimateDelay = 0;
    p.Animation = Popup_None;
    p.Size = splashSize();
    QRect r({}, p.Size);
    r.moveCenter(screen.center());
    p.Position = keepOnScreen(r, screen);
    p.Picture = picturePath;
    return p;
}

QSize tagHintSize() {
    return {360, 112};
}

PopupProps tagHintProps(const QRect& mainFrame, const QRect& screen, const QString& picturePath) {
    PopupProps p;
    p.Transparency = 200;
    p.ShowDelay = 5000;
    p.AnimateDelay = 250;
    p.Animation = Popup_Fade;
    p.Size = tagHintSize();
    p.Position = keepOnScreen(QRect(mainFrame.topLeft() + kHintOffset, p.Size), screen);
    p.Picture = picturePath;
    return p;
}

PopupProps tagPopupProps(const PopupProps& previous, QSize imageSize, const QRect& screen,
                         const QString& showDelay, const QString& animateDelay, const QString& effect) {
    PopupProps p;
    p.Transparency = kPopupOpaque;
    p.ShowDelay = clampDelay(showDelay);
    p.AnimateDelay = clampDelay(animateDelay);
    p.Animation = effectFromWord(previous.Animation, effect);
    if (imageSize.isEmpty()) return p;
    // Scaled down only: a small image keeps its pixels, a large one fits the screen whole.
    p.Size = imageSize.width() > screen.width() || imageSize.height() > screen.height()
                 ? imageSize.scaled(screen.size(), Qt::KeepAspectRatio).expandedTo({1, 1})
                 : imageSize;
    // Centred on the screen: the other program names no place, and the middle is where it is seen.
    QRect r({}, p.Size);
    r.moveCenter(screen.center());
    p.Position = keepOnScreen(r, screen);
    return p;
}

PopupProps donePopupProps(int animateDelay, int showDelay, int transparency, const QRect& screen) {
    PopupProps p;
    p.Transparency = clampTransparency(transparency);
    p.ShowDelay = std::clamp(showDelay, 0, kPopupMaxDelay);
    p.AnimateDelay = std::clamp(animateDelay, 0, kPopupMaxDelay);
    p.Animation = Popup_Slide;
    p.Size = QSize(270, 100);
    p.Position = keepOnScreen(QRect(screen.right() + 1 - kCornerMargin - p.Size.width(),
                                    screen.bottom() + 1 - kCornerMargin - p.Size.height(), p.Size.width(),
                                    p.Size.height()),
                              screen);
    p.Items = {
        {.Text = QStringLiteral("Conversion is completed !"),
         .Left = 80,
         .Top = 35,
         .Right = 250,
         .Bottom = 55},
        // The list's done state icon.
        {.Icon = 10, .IconSize = QSize(48, 48), .Left = 12, .Top = 20, .Right = 12, .Bottom = 27},
        // The colour is stored in BGR order, 0xFF0000: blue on screen.
        {.Text = QStringLiteral("Open output folder..."),
         .Left = 80,
         .Top = 65,
         .Right = 250,
         .Bottom = 105,
         .Color = fromBgr(0xFF0000),
         .Id = kOpenOutputLink},
    };
    return p;
}

} // namespace morvane
