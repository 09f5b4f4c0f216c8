// The slider control's logic without a widget: its properties and their stored form, the value rule,
// the knob's place on the rail and the mouse handling of a drag. Slider_Ctrl holds the pictures and
// passes their pixel sizes in; tests drive the model alone. Main thread only.
//
// Geometry: the rail runs the whole length of the control along the orientation, centred across at
// the rail picture's thickness. The knob travels from the rail's start over (rail length - knob
// length) pixels and is centred across. Min may be above Max: the range then runs backwards along the
// rail (a vertical slider with its highest value at the top). Sizes are clamped to kMaxPixels, so the
// 64-bit products of a full 32-bit range and a travel cannot overflow.
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>
#include <QVariantMap>
#include <Qt>

#include <functional>

namespace morvane {

class Slider_Model {
public:
    static constexpr int kInvalidPropertyValue = 380;  // the run-time error of a refused set
    static constexpr quint32 kFaceColour = 0x8000000F; // the system face colour
    static constexpr int kHorizontal = 0;
    static constexpr int kVertical = 1;
    static constexpr int kMaxPixels = 16777215; // a widget's largest size

    // The control's events, in its order, then the tip window's requests (knob in control pixels).
    // Handlers left empty are skipped; a handler may set properties again.
    struct EventHandlers {
        std::function<void()> Click, MinReached, MaxReached, Change;
        std::function<void(Qt::MouseButton)> MouseDown, MouseUp;
        std::function<void(const QString&text, const QRect&knob)> TipShow, TipMove;
        std::function<void()> TipHide;
    };
    EventHandlers Events;

    Slider_Model() = default;

    // ---- Properties. The picture properties are names (skin roles or file names); the widget
    // resolves them.
    bool Enabled() const { return m_enabled; }
    void setEnabled(bool enabled); // off ends a running drag without MouseUp
    quint32 BackColor() const { return m_backColor; }
    void setBackColor(quint32 colour) { m_backColor = colour; }
    qint16 MousePointer() const { return m_mousePointer; }
    void setMousePointer(qint16 pointer) { m_mousePointer = pointer; }
    QString MouseIcon() const { return m_mouseIcon; }
    void setMouseIcon(const QString& name) { m_mouseIcon = name; }
    int Max() const { return m_max; }
    void setMax(int max) { setRange(m_min, max); }
    int Min() const { return m_min; }
    void setMin(int min) { setRange(min, m_max); }
    // Both ends at once; a value left outside moves to the nearer end through the set path.
    void setRange(int min, int max);
    int Value() const { return m_value; }
    // 0, or kInvalidPropertyValue when outside Min..Max (nothing changes then).
    int setValue(int value);
    int Orientation() const { return m_orientation; }
    int setOrientation(int orientation); // 0 or 1, else kInvalidPropertyValue
    bool vertical() const { return m_orientation == kVertical; }
    int RailStyle() const { return m_railStyle; }
    void setRailStyle(int style);
    QString SliderImage() const { return m_sliderImage; }
    void setSliderImage(const QString& name) { m_sliderImage = name; }
    QString RailImage() const { return m_railImage; }
    void setRailImage(const QString& name) { m_railImage = name; }
    bool ShowValueTip() const { return m_showValueTip; }
    void setShowValueTip(bool show);

    // Moves the value by whole steps towards Max (negative: towards Min), stopping at the ends.
    void stepBy(qint64 steps);

    // ---- Stored properties, keyed by the lower-case names, plus "_extentx" and "_extenty" (the size
    // in hundredths of a millimetre at 96 dots per inch). Booleans are written as -1 and 0. Reading
    // takes the defaults for missing or unusable entries and raises no event.
    void InitProperties();
    void ReadProperties(const QVariantMap& bag);
    QVariantMap WriteProperties() const;

    // ---- Geometry, in control pixels. Each setter lays out again and places the knob from the value.
    QSize controlSize() const { return m_size; }
    void setControlSize(QSize size);
    QSize knobSize() const { return m_knobSize; }
    void setKnobSize(QSize size);
    QSize railSize() const { return m_railSize; } // empty across: the control's thickness
    void setRailSize(QSize size);
    QRect railRect() const;
    QRect knobRect() const;
    int travel() const; // 0 when the rail is not longer than the knob
    int knobOffsetOf(qint64 value) const;
    int valueAtOffset(qint64 offset) const;

    // ---- Mouse, in control pixels.
    void mousePress(QPoint pos, Qt::MouseButton button);
    void mouseMove(QPoint pos);
    void mouseRelease(QPoint pos, Qt::MouseButton button);
    bool dragging() const { return m_dragging; }
    // Ends a running drag without MouseUp (the control was hidden or disabled under the pointer).
    void cancelDrag();
    bool tipShown() const { return m_tipShown; }

private:
    void placeKnob();
    void moveKnobTo(QPoint pos);
    void hideTip();
    int lowest() const { return m_min < m_max ? m_min : m_max; }
    int highest() const { return m_min < m_max ? m_max : m_min; }
    int railStart() const;

    bool m_enabled = true;
    quint32 m_backColor = kFaceColour;
    qint16 m_mousePointer = 0;
    QString m_mouseIcon;
    int m_max = 10;
    int m_min = 0;
    int m_value = 0;
    int m_orientation = kVertical;
    int m_railStyle = 0;
    QString m_sliderImage;
    QString m_railImage;
    bool m_showValueTip = true;

    QSize m_size{0, 0};
    QSize m_knobSize{0, 0};
    QSize m_railSize{0, 0};
    int m_knobOffset = 0; // from the rail's start along the orientation
    bool m_dragging = false;
    bool m_tipShown = false;
    QPoint m_grip; // the pointer's offset inside the knob during a drag
};

} // namespace morvane
