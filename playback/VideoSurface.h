// A widget that shows the player's picture: the player renders at the widget's size in device pixels,
// letterboxed to the display aspect, and the widget paints the frame as it comes. Black when there is
// no picture. Main thread only.
#pragma once

#include "FFPlayer.h"

#include <QWidget>

namespace morvane {

class VideoSurface : public QWidget, public PlayerSurface {
    Q_OBJECT
public:
    explicit VideoSurface(QWidget* parent = nullptr);
    ~VideoSurface() override;

    // The player to tell of size changes, so that a paused picture is drawn again at the new size.
    void setPlayer(FFPlayer* player) { m_player = player; }
    const QImage& frame() const { return m_frame; }
    int framesShown() const { return m_frames; }

    QSize surfaceSize() const override;
    void presentFrame(const QImage& frame) override;
    void clearFrame() override;

signals:
    void doubleClicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    FFPlayer* m_player = nullptr;
    QImage m_frame; // shares the player's buffer: valid until the next present
    int m_frames = 0;
};

} // namespace morvane
