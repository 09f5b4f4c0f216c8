#include "Slider_Model.h"

#include <algorithm>
#include <limits>

namespace morvane {

namespace {

// base + num / den rounded to the nearest integer, ties to the even result; den != 0. Rounding the
// whole sum, not the quotient alone, keeps ties even whatever the parity of base.
qint64 addRoundedQuotient(qint64 base, qint64 num, qint64 den) {
    if (den < 0) num = -num, den = -den;
    qint64 q = num / den;
    qint64 r = num % den;
    if (r < 0) --q, r += den; // floor, 0 <= r < den
    qint64 result = base + q;
    if (2 * r > den || (2 * r == den && result % 2 != 0)) ++result;
    return result;
}

QSize clampedSize(QSize size) {
    return {std::clamp(size.width(), 0, Slider_Model::kMaxPixels),
            std::clamp(size.height(), 0, Slider_Model::kMaxPixels)};
}

int himetricOf(int pixels) {
    return static_cast<int>((qint64{pixels} * 2540 + 48) / 96);
}
int pixelsOf(qint64 himetric) {
    return static_cast<int>(std::clamp<qint64>((himetric * 96 + 1270) / 2540, 0, Slider_Model::kMaxPixels));
}

void raise(const std::function<void()>& handler) {
    if (handler) handler();
}

// A whole number of the map within lo..hi, else the fallback.
qint64 integerOf(const QVariantMap& bag, const char* key, qint64 lo, qint64 hi, qint64 fallback) {
    bool ok = false;
    const qint64 n = bag.value(QLatin1String(key)).toLongLong(&ok);
    return ok && n >= lo && n <= hi ? n : fallback;
}

bool booleanOf(const QVariantMap& bag, const char* key, bool fallback) {
    const auto it = bag.constFind(QLatin1String(key));
    return it == bag.cend() ? fallback : it->toBool(); // "0" is false, "-1" and -1 are true
}

QString textOf(const QVariantMap& bag, const char* key) {
    return bag.value(QLatin1String(key)).toString();
}

constexpr qint64 kIntMin = std::numeric_limits<int>::min();
constexpr qint64 kIntMax = std::numeric_limits<int>::max();

} // namespace

// ---- Properties.

void Slider_Model::setEnabled(bool enabled) {
    m_enabled = enabled;
    if (!enabled) cancelDrag();
}

void Slider_Model::setRange(int min, int max) {
    m_min = min;
    m_max = max;
    if (m_value < lowest())
        setValue(lowest());
    else if (m_value > highest())
        setValue(highest());
    placeKnob();
}

int Slider_Model::setValue(int value) {
    if (value < lowest() || value > highest()) return kInvalidPropertyValue;
    if (value == m_value) return 0;
    m_value = value;
    // During a drag the knob follows the pointer, not the rounded value.
    if (!m_dragging) placeKnob();
    raise(Events.Change);
    if (value == m_max) raise(Events.MaxReached);
    if (value == m_min) raise(Events.MinReached);
    return 0;
}

int Slider_Model::setOrientation(int orientation) {
    if (orientation != kHorizontal && orientation != kVertical) return kInvalidPropertyValue;
    m_orientation = orientation;
    placeKnob();
    return 0;
}

void Slider_Model::setRailStyle(int style) {
    m_railStyle = style;
    placeKnob();
}

void Slider_Model::setShowValueTip(bool show) {
    m_showValueTip = show;
    if (!show) hideTip();
}

void Slider_Model::stepBy(qint64 steps) {
    steps = std::clamp<qint64>(steps, -(qint64{1} << 33), qint64{1} << 33);
    const qint64 target = qint64{m_value} + (m_max < m_min ? -steps : steps);
    setValue(static_cast<int>(std::clamp<qint64>(target, lowest(), highest())));
}

// ---- Stored properties.

void Slider_Model::InitProperties() {
    m_enabled = true;
    m_backColor = kFaceColour;
    m_mousePointer = 0;
    m_mouseIcon.clear();
    m_max = 10;
    m_min = 0;
    m_value = 0;
    m_orientation = kVertical;
    m_railStyle = 0;
    m_sliderImage.clear();
    m_railImage.clear();
    m_showValueTip = true;
    placeKnob();
}

void Slider_Model::ReadProperties(const QVariantMap& bag) {
    m_enabled = booleanOf(bag, "enabled", true);
    // Colours are kept signed or unsigned; both are the same 32 bits.
    m_backColor = static_cast<quint32>(integerOf(bag, "backcolor", kIntMin, 0xFFFFFFFFLL, kFaceColour));
    m_mousePointer = static_cast<qint16>(integerOf(bag, "mousepointer", -32768, 32767, 0));
    m_mouseIcon = textOf(bag, "mouseicon");
    m_max = static_cast<int>(integerOf(bag, "max", kIntMin, kIntMax, 10));
    m_min = static_cast<int>(integerOf(bag, "min", kIntMin, kIntMax, 0));
    m_value = static_cast<int>(
        std::clamp(integerOf(bag, "value", kIntMin, kIntMax, 0), qint64{lowest()}, qint64{highest()}));
    m_orientation = static_cast<int>(integerOf(bag, "orientation", kHorizontal, kVertical, kVertical));
    m_railStyle = static_cast<int>(integerOf(bag, "railstyle", kIntMin, kIntMax, 0));
    m_sliderImage = textOf(bag, "sliderimage");
    m_railImage = textOf(bag, "railimage");
    m_showValueTip = booleanOf(bag, "showvaluetip", true);
    const qint64 unset = -1;
    if (const qint64 x = integerOf(bag, "_extentx", 0, kIntMax, unset); x != unset)
        m_size.setWidth(pixelsOf(x));
    if (const qint64 y = integerOf(bag, "_extenty", 0, kIntMax, unset); y != unset)
        m_size.setHeight(pixelsOf(y));
    placeKnob();
}

QVariantMap Slider_Model::WriteProperties() const {
    return {
        {QStringLiteral("enabled"), m_enabled ? -1 : 0},
        {QStringLiteral("backcolor"), m_backColor},
        {QStringLiteral("mousepointer"), int{m_mousePointer}},
        {QStringLiteral("mouseicon"), m_mouseIcon},
        {QStringLiteral("max"), m_max},
        {QStringLiteral("min"), m_min},
        {QStringLiteral("value"), m_value},
        {QStringLiteral("orientation"), m_orientation},
        {QStringLiteral("railstyle"), m_railStyle},
        {QStringLiteral("sliderimage"), m_sliderImage},
        {QStringLiteral("railimage"), m_railImage},
        {QStringLiteral("showvaluetip"), m_showValueTip ? -1 : 0},
        {QStringLiteral("_extentx"), himetricOf(m_size.width())},
        {QStringLiteral("_extenty"), himetricOf(m_size.height())},
    };
}

// ---- Geometry.

void Slider_Model::setControlSize(QSize size) {
    m_size = clampedSize(size);
    placeKnob();
}

void Slider_Model::setKnobSize(QSize size) {
    m_knobSize = clampedSize(size);
    placeKnob();
}

void Slider_Model::setRailSize(QSize size) {
    m_railSize = clampedSize(size);
    placeKnob();
}

QRect Slider_Model::railRect() const {
    const int thickness = vertical() ? m_size.width() : m_size.height();
    const int wanted = vertical() ? m_railSize.width() : m_railSize.height();
    const int across = wanted > 0 && wanted < thickness ? wanted : thickness;
    const int at = (thickness - across) / 2;
    return vertical() ? QRect(at, 0, across, m_size.height()) : QRect(0, at, m_size.width(), across);
}

int Slider_Model::railStart() const {
    const QRect rail = railRect();
    return vertical() ? rail.top() : rail.left();
}

int Slider_Model::travel() const {
    const QRect rail = railRect();
    const int length = vertical() ? rail.height() - m_knobSize.height() : rail.width() - m_knobSize.width();
    return std::max(length, 0);
}

QRect Slider_Model::knobRect() const {
    const int along = railStart() + m_knobOffset;
    if (vertical())
        return {(m_size.width() - m_knobSize.width()) / 2, along, m_knobSize.width(), m_knobSize.height()};
    return {along, (m_size.height() - m_knobSize.height()) / 2, m_knobSize.width(), m_knobSize.height()};
}

int Slider_Model::knobOffsetOf(qint64 value) const {
    const qint64 span = qint64{m_max} - m_min;
    if (span == 0) return 0; // Min == Max: the start, no division
    const qint64 offset = addRoundedQuotient(0, (value - m_min) * travel(), span);
    return static_cast<int>(std::clamp<qint64>(offset, 0, travel()));
}

int Slider_Model::valueAtOffset(qint64 offset) const {
    const qint64 span = qint64{m_max} - m_min;
    const int length = travel();
    // Without a travel every place is the present value; a press must not change it.
    if (span == 0 || length == 0) return m_value;
    return static_cast<int>(addRoundedQuotient(m_min, std::clamp<qint64>(offset, 0, length) * span, length));
}

void Slider_Model::placeKnob() {
    m_knobOffset = knobOffsetOf(m_value);
}

// ---- Mouse.

void Slider_Model::mousePress(QPoint pos, Qt::MouseButton button) {
    if (!m_enabled) return;
    if (button == Qt::LeftButton) {
        const QRect knob = knobRect();
        m_dragging = true;
        if (knob.contains(pos)) {
            m_grip = pos - knob.topLeft();
        } else {
            // Beside the knob: grip it by its middle and bring it under the pointer.
            m_grip = QPoint(knob.width() / 2, knob.height() / 2);
            moveKnobTo(pos);
        }
        if (m_showValueTip && m_dragging && !m_tipShown) {
            m_tipShown = true;
            if (Events.TipShow) Events.TipShow(QString::number(m_value), knobRect());
        }
    }
    if (Events.MouseDown) Events.MouseDown(button);
}

void Slider_Model::mouseMove(QPoint pos) {
    if (m_dragging) moveKnobTo(pos);
}

void Slider_Model::moveKnobTo(QPoint pos) {
    const qint64 along = vertical() ? qint64{pos.y()} - m_grip.y() : qint64{pos.x()} - m_grip.x();
    m_knobOffset = static_cast<int>(std::clamp<qint64>(along - railStart(), 0, travel()));
    setValue(valueAtOffset(m_knobOffset));
    if (m_tipShown && Events.TipMove) Events.TipMove(QString::number(m_value), knobRect());
}

void Slider_Model::mouseRelease(QPoint pos, Qt::MouseButton button) {
    if (!m_enabled) return;
    if (button == Qt::LeftButton && QRect(QPoint(0, 0), m_size).contains(pos)) raise(Events.Click);
    // Only the button that began the drag ends it.
    if (m_dragging && button == Qt::LeftButton) {
        if (Events.MouseUp) Events.MouseUp(button);
        m_dragging = false;
        hideTip();
    }
}

void Slider_Model::cancelDrag() {
    if (!m_dragging) return;
    m_dragging = false;
    hideTip();
    placeKnob();
}

void Slider_Model::hideTip() {
    if (!m_tipShown) return;
    m_tipShown = false;
    raise(Events.TipHide);
}

} // namespace morvane
