// The value tip of a slider drag: a small frameless window with the label lblTip, beside the knob. It
// never takes the focus or the mouse, so the drag goes on underneath it. Main thread only.
#pragma once

#include <QRect>
#include <QWidget>

class QLabel;

namespace morvane {

class frmSliderCtrl : public QWidget {
    Q_OBJECT
public:
    // The owner is the slider; the tip is a window of its own but goes with the slider.
    explicit frmSliderCtrl(QWidget* owner);

    QLabel* lblTip() const { return m_tip; }

    // Shows `text` beside `knob` (global coordinates): above a horizontal knob, right of a vertical
    // one, or on the other side when the screen ends there.
    void Show_Value(const QString& text, const QRect& knob, Qt::Orientation orientation);

private:
    QLabel* m_tip = nullptr;
};

} // namespace morvane
