// Slider_Ctrl: the program's own slider, a rail picture with a knob picture on it and an integer
// value (the volume, adjustment and effect sliders). The rules live in Slider_Model; this widget keeps
// the pictures, paints, shows the value tip and turns the model's events into signals. Main thread
// only.
//
// Pictures come by skin role or by file name ("img_sliderrail_3.jpg" is the role "img_sliderrail_3")
// and are drawn at the control's size: the knob as a square of the control's thickness, the rail along
// the whole length. A QPixmap given instead keeps its own size; it has no name, so the stored
// properties do not carry it. Enabled is QWidget's own flag.
//
// RailStyle 0 draws the rail picture over the whole rail; 1 draws a groove and the picture only from
// the start to the knob, as a level. Without a rail picture the groove and level take palette colours.
#pragma once

#include "Slider_Model.h"

#include <QPixmap>
#include <QVariantMap>
#include <QWidget>

namespace morvane {

class frmSliderCtrl;

class Slider_Ctrl : public QWidget {
    Q_OBJECT
public:
    explicit Slider_Ctrl(QWidget* parent = nullptr);

    quint32 BackColor() const { return m_model.BackColor(); }
    void setBackColor(quint32 colour);
    qint16 MousePointer() const { return m_model.MousePointer(); }
    void setMousePointer(qint16 pointer); // 0 the default, 1..15 the standard shapes, 99 MouseIcon
    QPixmap MouseIcon() const { return m_icon.shown; }
    void setMouseIcon(const QString& name);
    void setMouseIcon(const QPixmap& picture);
    int Max() const { return m_model.Max(); }
    void setMax(int max);
    int Min() const { return m_model.Min(); }
    void setMin(int min);
    void setRange(int min, int max);
    int Value() const { return m_model.Value(); }
    bool setValue(int value); // false, and nothing changes, outside Min..Max
    int Orientation() const { return m_model.Orientation(); }
    bool setOrientation(int orientation); // 0 horizontal, 1 vertical; false for anything else
    int RailStyle() const { return m_model.RailStyle(); }
    void setRailStyle(int style);
    QPixmap SliderImage() const { return m_knob.shown; }
    void setSliderImage(const QString& name);
    void setSliderImage(const QPixmap& picture);
    QPixmap RailImage() const { return m_rail.shown; }
    void setRailImage(const QString& name);
    void setRailImage(const QPixmap& picture);
    bool ShowValueTip() const { return m_model.ShowValueTip(); }
    void setShowValueTip(bool show);

    // The stored properties (see Slider_Model); reading also resizes the control to the stored extent.
    void InitProperties();
    void ReadProperties(const QVariantMap& bag);
    QVariantMap WriteProperties() const;

    const Slider_Model& model() const { return m_model; }
    frmSliderCtrl* tipWindow() const { return m_tip; } // nullptr unless a drag shows it

    QSize sizeHint() const override;

signals:
    void Click();
    void MinReached();
    void MaxReached();
    void Change();
    void MouseDown(Qt::MouseButton button);
    void MouseUp(Qt::MouseButton button);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    struct Picture {
        QString role;  // drawn again at each layout when set
        QPixmap given; // else drawn at its own size
        QPixmap shown;
    };

    void setupEvents();
    void relayout();
    void applyPointer();
    void showTip(const QString& text, const QRect& knob);
    void hideTip();

    Slider_Model m_model;
    Picture m_knob, m_rail, m_icon;
    frmSliderCtrl* m_tip = nullptr; // a child; deleted when the drag ends
    int m_wheelRest = 0;            // wheel turns short of one step
};

} // namespace morvane
