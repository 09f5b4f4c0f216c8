#include "PopupWindow.h"

#include "Globals.h"
#include "Skin_Icons.h"
#include "Skin_Theme.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QImageReader>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <QScreen>

#include <algorithm>
#include <cmath>
#include <utility>

namespace morvane {

namespace {

QRect availableAround(QPoint point) {
    QScreen* screen = QGuiApplication::screenAt(point);
    if (!screen) screen = QGuiApplication::primaryScreen();
    return screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
}

QRect primaryAvailable() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
}

// Old link colours were chosen for a white ground; on a dark one they keep their hue but get light enough
// to read.
QColor readableOn(const QColor& colour, const QColor& ground) {
    if (ground.lightnessF() >= 0.5 || colour.lightnessF() >= 0.55) return colour;
    return QColor::fromHslF(std::max<float>(0, colour.hslHueF()), colour.hslSaturationF(), 0.72f);
}

QFont sizedFont(qreal pixels, QFont::Weight weight) {
    QFont font = QGuiApplication::font();
    font.setPixelSize(int(std::lround(pixels)));
    font.setWeight(weight);
    return font;
}

} // namespace

// ---- The window.

PopupWindow::PopupWindow(QWidget* parent)
    : QWidget(parent,
              Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::Tool | Qt::WindowDoesNotAcceptFocus),
      m_animation(this, "progress") {
    setObjectName(QStringLiteral("Popup"));
    // A popup never takes the keyboard from what the user types into.
    setAttribute(Qt::WA_ShowWithoutActivating);
    setFocusPolicy(Qt::NoFocus);
    setMouseTracking(true);
    m_animation.setStartValue(0.0);
    m_animation.setEndValue(1.0);
    m_animation.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_animation, &QPropertyAnimation::finished, this, &PopupWindow::animationDone);
    m_stay.setSingleShot(true);
    connect(&m_stay, &QTimer::timeout, this, &PopupWindow::startOut);
}

PopupWindow::~PopupWindow() {
    // The animation is destroyed after this body; its end must not call back into a half-gone window.
    disconnect(&m_animation, nullptr, this, nullptr);
}

void PopupWindow::showPopup(const PopupProps& props) {
    m_animation.stop();
    m_stay.stop();
    m_props = props;
    m_props.Transparency = clampTransparency(props.Transparency);
    m_props.ShowDelay = std::clamp(props.ShowDelay, 0, kPopupMaxDelay);
    m_props.AnimateDelay = std::clamp(props.AnimateDelay, 0, kPopupMaxDelay);

    QImage image = props.Image;
    if (image.isNull() && !props.Picture.isEmpty()) image = QImageReader(props.Picture).read();
    if (m_props.Size.isEmpty()) m_props.Size = image.size();
    if (m_props.Size.isEmpty()) {
        closePopup();
        return;
    }
    m_picture = image.isNull() ? QPixmap()
                               : QPixmap::fromImage(image.size() == m_props.Size
                                                        ? image
                                                        : image.scaled(m_props.Size, Qt::IgnoreAspectRatio,
                                                                       Qt::SmoothTransformation));
    setFixedSize(m_props.Size);
    m_state = Popup_Showing;
    m_out = false;
    m_pressedLink = 0;
    const bool animated = m_props.Animation != Popup_None && m_props.AnimateDelay > 0;
    setProgress(animated ? 0 : 1);
    // Shown again while up: to the front once more.
    if (isVisible())
        raise();
    else
        show();
    update();
    if (!animated) {
        stay();
        return;
    }
    m_animation.setDirection(QAbstractAnimation::Forward);
    m_animation.setDuration(m_props.AnimateDelay);
    m_animation.start();
}

void PopupWindow::closePopup() {
    if (m_state == Popup_Hidden) return;
    m_state = Popup_Hidden;
    m_animation.stop();
    m_stay.stop();
    hide();
    clearMask();
    emit closed();
}

void PopupWindow::setProgress(qreal progress) {
    m_progress = std::clamp<qreal>(progress, 0, 1);
    const qreal opacity = m_props.Transparency / qreal(kPopupOpaque);
    setWindowOpacity(m_props.Animation == Popup_Fade ? opacity * m_progress : opacity);
    if (m_props.Animation == Popup_Slide) {
        const QPoint from = slideStart();
        move(from + (m_props.Position - from) * m_progress);
    } else {
        move(m_props.Position);
    }
    if (m_props.Animation == Popup_Unfold && m_progress < 1)
        // An empty region would mean no mask at all, so the first row shows from the start.
        setMask(QRect(0, 0, width(), std::max(1, int(std::lround(height() * m_progress)))));
    else
        clearMask();
}

// From below the screen's lower edge, so that the popup rises into view; the way out goes back there.
QPoint PopupWindow::slideStart() const {
    QScreen* screen = QGuiApplication::screenAt(QRect(m_props.Position, m_props.Size).center());
    if (!screen) screen = QGuiApplication::primaryScreen();
    const int bottom =
        screen ? screen->geometry().bottom() + 1 : m_props.Position.y() + m_props.Size.height();
    return {m_props.Position.x(), std::max(bottom, m_props.Position.y() + m_props.Size.height())};
}

void PopupWindow::animationDone() {
    if (m_out)
        closePopup();
    else
        stay();
}

void PopupWindow::stay() {
    m_stay.start(m_props.ShowDelay);
}

void PopupWindow::startOut() {
    if (m_props.Animation == Popup_None || m_props.AnimateDelay <= 0) {
        closePopup();
        return;
    }
    m_out = true;
    m_animation.setDirection(QAbstractAnimation::Backward);
    m_animation.start();
}

int PopupWindow::linkAt(QPoint pos) const {
    for (const PopupItem& item : m_props.Items)
        if (item.Id != 0 && item.rect().contains(pos)) return item.Id;
    return 0;
}

void PopupWindow::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    const QColor ground = palette().color(QPalette::Window);
    if (!m_picture.isNull()) {
        p.drawPixmap(0, 0, m_picture);
    } else {
        p.fillRect(rect(), ground);
        p.setPen(palette().color(QPalette::Mid));
        p.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
    }
    for (const PopupItem& item : m_props.Items) {
        if (item.Icon != 0) {
            const QIcon icon = Skin_StateIcon(item.Icon);
            p.drawPixmap(QRect(QPoint(item.Left, item.Top), item.IconSize), icon.pixmap(item.IconSize));
            continue;
        }
        QFont font = this->font();
        font.setUnderline(item.Id != 0);
        p.setFont(font);
        p.setPen(item.Color.isValid() ? readableOn(item.Color, ground)
                                      : palette().color(QPalette::WindowText));
        p.drawText(item.rect(), Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, item.Text);
    }
}

void PopupWindow::mousePressEvent(QMouseEvent* event) {
    m_pressedLink = event->button() == Qt::LeftButton ? linkAt(event->position().toPoint()) : 0;
    event->accept();
}

void PopupWindow::mouseReleaseEvent(QMouseEvent* event) {
    const int link = linkAt(event->position().toPoint());
    const int pressed = std::exchange(m_pressedLink, 0);
    event->accept();
    if (link != 0 && link == pressed && event->button() == Qt::LeftButton)
        emit linkActivated(link);
    else if (link == 0 && pressed == 0)
        closePopup();
}

void PopupWindow::mouseMoveEvent(QMouseEvent* event) {
    setCursor(linkAt(event->position().toPoint()) != 0 ? Qt::PointingHandCursor : Qt::ArrowCursor);
}

void PopupWindow::hideEvent(QHideEvent* event) {
    // Hidden by someone else (QWidget::close, the owner's hide): the timers end with it.
    if (!event->spontaneous()) closePopup();
    QWidget::hideEvent(event);
}

// ---- The pictures.

QImage Splash_Picture(const QString& productName, const QString& version) {
    const QSize size = splashSize();
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::TextAntialiasing);
    const QRectF area(QPointF(0, 0), QSizeF(size));

    // A calm night-blue ground with a soft light from the upper right.
    QLinearGradient ground(area.topLeft(), area.bottomRight());
    ground.setColorAt(0, QColor(0x12, 0x1c, 0x2e));
    ground.setColorAt(1, QColor(0x17, 0x3f, 0x52));
    p.fillRect(area, ground);
    QRadialGradient glow(QPointF(area.width() * 0.82, area.height() * 0.1), area.width() * 0.6);
    glow.setColorAt(0, QColor(0x4c, 0xb8, 0xe0, 70));
    glow.setColorAt(1, QColor(0x4c, 0xb8, 0xe0, 0));
    p.fillRect(area, glow);

    // A film strip running across the lower part, slightly tilted, faint behind the text.
    p.save();
    p.translate(area.width() / 2, area.height() * 0.74);
    p.rotate(-7);
    const qreal stripW = area.width() * 1.4, stripH = 92;
    const QRectF strip(-stripW / 2, -stripH / 2, stripW, stripH);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0, 0, 0, 80));
    p.drawRect(strip);
    p.setBrush(QColor(255, 255, 255, 34));
    for (qreal x = strip.left() + 8; x < strip.right(); x += 22) {
        p.drawRoundedRect(QRectF(x, strip.top() + 6, 11, 8), 2, 2);
        p.drawRoundedRect(QRectF(x, strip.bottom() - 14, 11, 8), 2, 2);
    }
    for (qreal x = strip.left() + 10; x < strip.right(); x += 86) {
        const QRectF frame(x, strip.top() + 20, 76, stripH - 40);
        QLinearGradient shade(frame.topLeft(), frame.bottomRight());
        shade.setColorAt(0, QColor(0x5f, 0xc4, 0xe8, 38));
        shade.setColorAt(1, QColor(0x2a, 0x6f, 0x9a, 18));
        p.setBrush(shade);
        p.setPen(QPen(QColor(255, 255, 255, 40), 1));
        p.drawRoundedRect(frame, 3, 3);
    }
    p.restore();

    // The mark: a rounded tile with a play sign, then the name and what the program does.
    const QRectF mark(48, 108, 76, 76);
    QLinearGradient tile(mark.topLeft(), mark.bottomRight());
    tile.setColorAt(0, QColor(0x4f, 0xc3, 0xf7));
    tile.setColorAt(1, QColor(0x1e, 0x88, 0xc9));
    p.setPen(Qt::NoPen);
    p.setBrush(tile);
    p.drawRoundedRect(mark, 18, 18);
    const QPointF c = mark.center() + QPointF(3, 0);
    p.setBrush(Qt::white);
    p.drawPolygon(QPolygonF({c + QPointF(-12, -16), c + QPointF(-12, 16), c + QPointF(16, 0)}));

    p.setPen(Qt::white);
    p.setFont(sizedFont(46, QFont::DemiBold));
    p.drawText(QRectF(146, 102, area.width() - 170, 60), Qt::AlignLeft | Qt::AlignVCenter, productName);
    p.setPen(QColor(255, 255, 255, 185));
    p.setFont(sizedFont(17, QFont::Normal));
    p.drawText(QRectF(148, 158, area.width() - 170, 30), Qt::AlignLeft | Qt::AlignVCenter,
               QStringLiteral("Video Converter"));

    if (!version.isEmpty()) {
        p.setPen(QColor(255, 255, 255, 150));
        p.setFont(sizedFont(12, QFont::Normal));
        p.drawText(QRectF(24, area.height() - 36, area.width() - 48, 24), Qt::AlignRight | Qt::AlignVCenter,
                   QStringLiteral("Version ") + version);
    }
    p.setPen(QPen(QColor(255, 255, 255, 36), 1));
    p.setBrush(Qt::NoBrush);
    p.drawRect(area.adjusted(0.5, 0.5, -0.5, -0.5));
    return image;
}

QImage TagHint_Picture() {
    const QSize size = tagHintSize();
    const QPalette pal = QGuiApplication::palette();
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(pal.color(QPalette::Window));
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::TextAntialiasing);
    const QRectF area(QPointF(0, 0), QSizeF(size));
    const QColor accent = pal.color(QPalette::Highlight);

    p.fillRect(QRectF(0, 0, 5, area.height()), accent);
    p.setPen(QPen(accent, 1));
    p.drawRect(area.adjusted(0.5, 0.5, -0.5, -0.5));
    p.drawPixmap(22, 34, Skin_Picture(QStringLiteral("img_tag_gettingstarted"), QSize(44, 44)));

    QColor text = pal.color(QPalette::WindowText);
    p.setPen(text);
    p.setFont(sizedFont(16, QFont::DemiBold));
    p.drawText(QRectF(82, 16, area.width() - 100, 26), Qt::AlignLeft | Qt::AlignVCenter,
               QStringLiteral("Start here"));
    text.setAlphaF(0.8f);
    p.setPen(text);
    p.setFont(sizedFont(13, QFont::Normal));
    p.drawText(QRectF(82, 46, area.width() - 100, area.height() - 56),
               Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap,
               QStringLiteral("Click Add Files to choose your videos, or drop them on the list."));
    return image;
}

// ---- The four uses.

void Show_Splash(PopupWindow& popup) {
    const QImage picture =
        Splash_Picture(PRODUCT_NAME.isEmpty() ? QStringLiteral("Morvane") : PRODUCT_NAME, PRODUCT_VERSION);
    const QString path = Folder_Temp.isEmpty() ? QString() : Folder_Temp + QStringLiteral("tmp0001.png");
    PopupProps props = splashProps(primaryAvailable(), path);
    // The start never fails on its picture: when the file cannot be written or read back, the one in
    // memory shows.
    if (!path.isEmpty() && picture.save(path, "PNG")) props.Image = QImageReader(path).read();
    if (props.Image.isNull()) props.Image = picture;
    popup.showPopup(props);
}

void Show_TagHint(PopupWindow& popup, const QRect& mainFrame) {
    const QString file = Folder_Skin + QStringLiteral("img_tag_gettingstarted.png");
    PopupProps props = tagHintProps(mainFrame, availableAround(mainFrame.center()), file);
    if (!Folder_Skin.isEmpty() && QFileInfo(file).isFile()) props.Image = QImageReader(file).read();
    if (props.Image.isNull()) props.Image = TagHint_Picture();
    popup.showPopup(props);
}

bool Show_TagPopup(PopupWindow& popup, const QString& imagePath, const QString& showDelay,
                   const QString& animateDelay, const QString& effect) {
    popup.closePopup();
    if (imagePath.trimmed().isEmpty() || !QFileInfo(imagePath).isFile()) return false;
    QImageReader reader(imagePath);
    reader.setAutoTransform(true);
    const QImage image = reader.read();
    if (image.isNull()) return false;
    PopupProps props =
        tagPopupProps(popup.props(), image.size(), primaryAvailable(), showDelay, animateDelay, effect);
    props.Picture = imagePath;
    props.Image = image;
    popup.showPopup(props);
    return true;
}

void Show_DonePopup(PopupWindow& popup, int animateDelay, int showDelay, int transparency) {
    popup.showPopup(donePopupProps(animateDelay, showDelay, transparency, primaryAvailable()));
}

} // namespace morvane
