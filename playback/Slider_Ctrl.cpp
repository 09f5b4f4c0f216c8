#include "Slider_Ctrl.h"

#include "Skin_Icons.h"
#include "frmSliderCtrl.h"

#include <QFileInfo>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTransform>
#include <QWheelEvent>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <utility>

namespace morvane {

namespace {

constexpr int kPlainKnob = 16; // the palette knob's largest side
constexpr int kGroove = 4;     // the palette groove's thickness
constexpr int kIconSize = 32;  // a MouseIcon drawn from a role
constexpr qreal kDisabledOpacity = 0.4;
constexpr int kCustomPointer = 99;

// By MousePointer 0..15 (0 leaves the cursor to the parent); 4, an icon, shows the arrow.
constexpr Qt::CursorShape kPointers[] = {
    Qt::ArrowCursor,     Qt::ArrowCursor,   Qt::CrossCursor,     Qt::IBeamCursor,
    Qt::ArrowCursor,     Qt::SizeAllCursor, Qt::SizeBDiagCursor, Qt::SizeVerCursor,
    Qt::SizeFDiagCursor, Qt::SizeHorCursor, Qt::UpArrowCursor,   Qt::WaitCursor,
    Qt::ForbiddenCursor, Qt::BusyCursor,    Qt::WhatsThisCursor, Qt::SizeAllCursor,
};

QString roleOf(const QString& name) {
    return QFileInfo(name).completeBaseName();
}

// System colours by index, as stored with the top bit set; any other index is the window's colour.
constexpr std::pair<quint32, QPalette::ColorRole> kSystemColours[] = {
    {5, QPalette::Base},        {8, QPalette::WindowText},
    {13, QPalette::Highlight},  {14, QPalette::HighlightedText},
    {18, QPalette::ButtonText},
};

// A colour as stored: 0x00BBGGRR, or a system colour.
QColor colourOf(quint32 colour, const QPalette& palette) {
    if (!(colour & 0x80000000u)) return QColor(colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF);
    for (const auto& [index, role] : kSystemColours)
        if (index == (colour & 0xFF)) return palette.color(role);
    return palette.color(QPalette::Window);
}

// A rounded bar of the groove's thickness down the middle of `r`.
void drawGroove(QPainter& p, const QRect& r, bool vertical, const QColor& colour) {
    const qreal thick = std::min<qreal>(kGroove, vertical ? r.width() : r.height());
    const QRectF bar = vertical ? QRectF(r.x() + (r.width() - thick) / 2, r.y(), thick, r.height())
                                : QRectF(r.x(), r.y() + (r.height() - thick) / 2, r.width(), thick);
    p.setPen(Qt::NoPen);
    p.setBrush(colour);
    p.drawRoundedRect(bar, thick / 2, thick / 2);
}

// A rail picture along `r`: its two end halves stay as drawn and the column between them is
// stretched, so that rounded ends keep their shape at any length.
void drawRail(QPainter& p, const QRect& r, const QPixmap& picture, bool vertical) {
    const qreal length = vertical ? r.height() : r.width();
    const QSizeF logical = picture.deviceIndependentSize();
    const qreal source = vertical ? picture.height() : picture.width(); // in the picture's pixels
    const qreal scale = source / (vertical ? logical.height() : logical.width());
    const qreal cap = std::min(source / scale, length) / 2;
    const qreal sourceCap = std::min(cap * scale, (source - 1) / 2); // leave a middle column
    // Pieces along the rail as (target start, target length, source start, source length).
    const qreal pieces[3][4] = {{0, cap, 0, sourceCap},
                                {cap, length - 2 * cap, sourceCap, source - 2 * sourceCap},
                                {length - cap, cap, source - sourceCap, sourceCap}};
    for (const auto& [at, size, from, span] : pieces) {
        if (size <= 0 || span <= 0) continue;
        if (vertical)
            p.drawPixmap(QRectF(r.x(), r.y() + at, r.width(), size), picture,
                         QRectF(0, from, picture.width(), span));
        else
            p.drawPixmap(QRectF(r.x() + at, r.y(), size, r.height()), picture,
                         QRectF(from, 0, span, picture.height()));
    }
}

} // namespace

Slider_Ctrl::Slider_Ctrl(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("Slider_Ctrl"));
    setFocusPolicy(Qt::StrongFocus);
    setupEvents();
    relayout();
}

void Slider_Ctrl::setupEvents() {
    Slider_Model::EventHandlers& e = m_model.Events;
    e.Click = [this] { emit Click(); };
    e.MinReached = [this] { emit MinReached(); };
    e.MaxReached = [this] { emit MaxReached(); };
    e.Change = [this] {
        update();
        emit Change();
    };
    e.MouseDown = [this](Qt::MouseButton button) { emit MouseDown(button); };
    e.MouseUp = [this](Qt::MouseButton button) { emit MouseUp(button); };
    e.TipShow = e.TipMove = [this](const QString& text, const QRect& knob) { showTip(text, knob); };
    e.TipHide = [this] { hideTip(); };
}

// ---- Properties.

void Slider_Ctrl::setBackColor(quint32 colour) {
    m_model.setBackColor(colour);
    update();
}

void Slider_Ctrl::setMousePointer(qint16 pointer) {
    m_model.setMousePointer(pointer);
    applyPointer();
}

void Slider_Ctrl::setMouseIcon(const QString& name) {
    m_model.setMouseIcon(name);
    m_icon = {roleOf(name), {}, {}};
    if (!m_icon.role.isEmpty()) m_icon.shown = Skin_Picture(m_icon.role, QSize(kIconSize, kIconSize));
    applyPointer();
}

void Slider_Ctrl::setMouseIcon(const QPixmap& picture) {
    m_model.setMouseIcon({});
    m_icon = {{}, picture, picture};
    applyPointer();
}

void Slider_Ctrl::setMax(int max) {
    m_model.setMax(max);
    update();
}

void Slider_Ctrl::setMin(int min) {
    m_model.setMin(min);
    update();
}

void Slider_Ctrl::setRange(int min, int max) {
    m_model.setRange(min, max);
    update();
}

bool Slider_Ctrl::setValue(int value) {
    return m_model.setValue(value) == 0;
}

bool Slider_Ctrl::setOrientation(int orientation) {
    if (m_model.setOrientation(orientation) != 0) return false;
    updateGeometry();
    relayout();
    return true;
}

void Slider_Ctrl::setRailStyle(int style) {
    m_model.setRailStyle(style);
    update();
}

void Slider_Ctrl::setSliderImage(const QString& name) {
    m_model.setSliderImage(name);
    m_knob = {roleOf(name), {}, {}};
    relayout();
}

void Slider_Ctrl::setSliderImage(const QPixmap& picture) {
    m_model.setSliderImage({});
    m_knob = {{}, picture, {}};
    relayout();
}

void Slider_Ctrl::setRailImage(const QString& name) {
    m_model.setRailImage(name);
    m_rail = {roleOf(name), {}, {}};
    relayout();
}

void Slider_Ctrl::setRailImage(const QPixmap& picture) {
    m_model.setRailImage({});
    m_rail = {{}, picture, {}};
    relayout();
}

void Slider_Ctrl::setShowValueTip(bool show) {
    m_model.setShowValueTip(show);
}

// ---- Stored properties.

void Slider_Ctrl::InitProperties() {
    m_model.InitProperties();
    m_knob = m_rail = m_icon = {};
    QWidget::setEnabled(true);
    applyPointer();
    updateGeometry();
    relayout();
}

void Slider_Ctrl::ReadProperties(const QVariantMap& bag) {
    m_model.setControlSize(size()); // kept when the bag has no extent
    m_model.ReadProperties(bag);
    QWidget::setEnabled(m_model.Enabled());
    m_knob = {roleOf(m_model.SliderImage()), {}, {}};
    m_rail = {roleOf(m_model.RailImage()), {}, {}};
    setMouseIcon(m_model.MouseIcon());
    resize(m_model.controlSize());
    updateGeometry();
    relayout();
}

QVariantMap Slider_Ctrl::WriteProperties() const {
    QVariantMap bag = m_model.WriteProperties();
    // The model follows the effective state; the form keeps the control's own flag.
    bag[QStringLiteral("enabled")] = testAttribute(Qt::WA_ForceDisabled) ? 0 : -1;
    return bag;
}

QSize Slider_Ctrl::sizeHint() const {
    return m_model.vertical() ? QSize(24, 120) : QSize(120, 24);
}

// ---- Layout and painting.

void Slider_Ctrl::relayout() {
    const bool vertical = m_model.vertical();
    const int thickness = std::max(1, vertical ? width() : height());
    m_model.setControlSize(size());

    QSize knob;
    if (!m_knob.role.isEmpty()) {
        knob = QSize(thickness, thickness);
        m_knob.shown = Skin_Picture(m_knob.role, knob);
    } else if (!m_knob.given.isNull()) {
        m_knob.shown = m_knob.given;
        knob = m_knob.given.deviceIndependentSize().toSize();
    } else {
        m_knob.shown = {};
        const int side = std::min(thickness, kPlainKnob);
        knob = QSize(side, side);
    }
    m_model.setKnobSize(knob);

    QSize rail; // empty: the control's whole thickness
    if (!m_rail.role.isEmpty()) {
        // Skin rails are square drawings lying down; a vertical slider stands them up. drawRail
        // stretches them to the length.
        const QPixmap lying = Skin_Picture(m_rail.role, QSize(thickness, thickness));
        m_rail.shown = vertical && !lying.isNull() ? lying.transformed(QTransform().rotate(90)) : lying;
    } else if (!m_rail.given.isNull()) {
        m_rail.shown = m_rail.given;
        rail = m_rail.given.deviceIndependentSize().toSize();
    } else {
        m_rail.shown = {};
        rail = QSize(kGroove, kGroove);
    }
    m_model.setRailSize(rail);
    update();
}

void Slider_Ctrl::applyPointer() {
    const int pointer = m_model.MousePointer();
    if (pointer == kCustomPointer && !m_icon.shown.isNull())
        setCursor(QCursor(m_icon.shown));
    else if (pointer >= 1 && pointer < static_cast<int>(std::size(kPointers)))
        setCursor(kPointers[pointer]);
    else
        unsetCursor();
}

void Slider_Ctrl::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    // The face colour is the window's own: leave it to the parent, which may follow a style sheet.
    if (m_model.BackColor() != Slider_Model::kFaceColour)
        p.fillRect(rect(), colourOf(m_model.BackColor(), palette()));
    if (!isEnabled()) p.setOpacity(kDisabledOpacity);

    const bool vertical = m_model.vertical();
    const QRect rail = m_model.railRect();
    const QRect knob = m_model.knobRect();
    const bool level = m_model.RailStyle() == 1;
    QRect filled = rail;
    if (vertical)
        filled.setBottom(knob.center().y());
    else
        filled.setRight(knob.center().x());

    if (m_rail.shown.isNull() || level) drawGroove(p, rail, vertical, palette().color(QPalette::Mid));
    if (!m_rail.shown.isNull()) {
        if (level) p.setClipRect(filled);
        drawRail(p, rail, m_rail.shown, vertical);
        p.setClipping(false);
    } else if (level) {
        drawGroove(p, filled, vertical, palette().color(QPalette::Highlight));
    }

    if (!m_knob.shown.isNull()) {
        p.drawPixmap(knob, m_knob.shown);
    } else {
        p.setPen(palette().color(QPalette::Dark));
        p.setBrush(palette().color(hasFocus() ? QPalette::Highlight : QPalette::Button));
        p.drawEllipse(QRectF(knob).adjusted(0.5, 0.5, -0.5, -0.5));
    }
}

void Slider_Ctrl::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    relayout();
}

void Slider_Ctrl::changeEvent(QEvent* event) {
    if (event->type() == QEvent::EnabledChange) {
        m_model.setEnabled(isEnabled());
        update();
    }
    QWidget::changeEvent(event);
}

void Slider_Ctrl::hideEvent(QHideEvent* event) {
    m_model.cancelDrag();
    QWidget::hideEvent(event);
}

// ---- Tip.

void Slider_Ctrl::showTip(const QString& text, const QRect& knob) {
    if (!m_tip) m_tip = new frmSliderCtrl(this);
    m_tip->Show_Value(text, QRect(mapToGlobal(knob.topLeft()), knob.size()),
                      m_model.vertical() ? Qt::Vertical : Qt::Horizontal);
}

void Slider_Ctrl::hideTip() {
    delete m_tip;
    m_tip = nullptr;
}

// ---- Input. Keys and the wheel go through the same set path as the mouse.

void Slider_Ctrl::mousePressEvent(QMouseEvent* event) {
    m_model.mousePress(event->position().toPoint(), event->button());
    update();
}

void Slider_Ctrl::mouseMoveEvent(QMouseEvent* event) {
    if (!m_model.dragging()) return QWidget::mouseMoveEvent(event);
    m_model.mouseMove(event->position().toPoint());
    update();
}

void Slider_Ctrl::mouseReleaseEvent(QMouseEvent* event) {
    m_model.mouseRelease(event->position().toPoint(), event->button());
    update();
}

void Slider_Ctrl::keyPressEvent(QKeyEvent* event) {
    if (m_model.dragging()) return QWidget::keyPressEvent(event);
    const qint64 page = std::max<qint64>(1, std::llabs(qint64{Max()} - Min()) / 10);
    switch (event->key()) {
    case Qt::Key_Right:
    case Qt::Key_Down:
        m_model.stepBy(1);
        break;
    case Qt::Key_Left:
    case Qt::Key_Up:
        m_model.stepBy(-1);
        break;
    case Qt::Key_PageDown:
        m_model.stepBy(page);
        break;
    case Qt::Key_PageUp:
        m_model.stepBy(-page);
        break;
    case Qt::Key_Home:
        m_model.setValue(Min());
        break;
    case Qt::Key_End:
        m_model.setValue(Max());
        break;
    default:
        return QWidget::keyPressEvent(event);
    }
}

void Slider_Ctrl::wheelEvent(QWheelEvent* event) {
    if (m_model.dragging()) return;
    const QPoint turn = event->angleDelta();
    m_wheelRest += turn.y() != 0 ? turn.y() : turn.x();
    const int steps = m_wheelRest / 120;
    m_wheelRest %= 120;
    // Up moves a vertical knob up and a horizontal one to the right, whichever way the range runs.
    if (steps != 0) m_model.stepBy(m_model.vertical() ? -steps : steps);
}

} // namespace morvane
