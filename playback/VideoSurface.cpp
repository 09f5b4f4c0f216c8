#include "VideoSurface.h"

#include <QMouseEvent>
#include <QPainter>

namespace morvane {

VideoSurface::VideoSurface(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAutoFillBackground(false);
}

VideoSurface::~VideoSurface() {
    // The player must not draw into a surface that is gone.
    if (m_player && m_player->VideoWindow() == this) m_player->setVideoWindow(nullptr);
}

QSize VideoSurface::surfaceSize() const {
    const qreal ratio = devicePixelRatioF();
    return QSize(qRound(width() * ratio), qRound(height() * ratio));
}

void VideoSurface::presentFrame(const QImage& frame) {
    m_frame = frame;
    ++m_frames;
    update();
}

void VideoSurface::clearFrame() {
    m_frame = QImage();
    update();
}

void VideoSurface::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (m_frame.isNull()) {
        painter.fillRect(rect(), Qt::black);
        return;
    }
    // The frame was rendered for this size; during a resize it may lag a frame behind, so it is
    // scaled until the next one comes.
    if (m_frame.size() == surfaceSize()) {
        QImage shown = m_frame;
        shown.setDevicePixelRatio(devicePixelRatioF());
        painter.drawImage(QPoint(0, 0), shown);
    } else {
        painter.fillRect(rect(), Qt::black);
        painter.drawImage(rect(), m_frame);
    }
}

void VideoSurface::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (m_player && m_player->VideoWindow() == this) m_player->Redraw();
}

void VideoSurface::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) emit doubleClicked();
}

} // namespace morvane
