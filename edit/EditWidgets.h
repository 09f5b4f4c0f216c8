// The two drawn controls of the edit window: the picture area, which shows the live preview of the
// current tab and, on the Crop tab, the frame with the crop rectangle to drag; and the trim bar, the
// play bar with the two trim handles and the range between them. Both paint their model's state and
// forward the mouse to it. Main thread only.
#pragma once

#include <QColor>
#include <QWidget>

#include <functional>

namespace morvane {

class EditVideo;

// A colour stored as R + 256 G + 65536 B.
QColor Rgb_Colour(qint64 rgb);

class EditPreview : public QWidget {
    Q_OBJECT
public:
    EditPreview(EditVideo& model, QWidget* parent = nullptr);

    // Where picPreview, the frame the crop rectangle lies on, sits in this widget.
    QRect pictureRect() const;
    std::function<void()> changedByUser; // a drag moved the rectangle

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    int handleAt(QPoint local) const; // 0..8 for a handle, 9 for the rectangle, -1 for none
    void updateCursor(QPoint at);

    EditVideo& m_model;
    int m_dragged = -1;
};

class TrimBarView : public QWidget {
    Q_OBJECT
public:
    TrimBarView(EditVideo& model, QWidget* parent = nullptr);

    // The bar's travel for a width: one position per pixel between the handles' room at both ends.
    static int travelFor(int width);
    std::function<void()> changedByUser;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    bool handlesShown() const;

    EditVideo& m_model;
    int m_dragged = -1; // a handle, or 2 for the play position
    int m_lastX = 0;
};

} // namespace morvane
