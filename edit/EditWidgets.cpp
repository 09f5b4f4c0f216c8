#include "EditWidgets.h"

#include "EditVideo.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace morvane {

namespace {

constexpr int kRectangle = 9;

} // namespace

QColor Rgb_Colour(qint64 rgb) {
    return QColor(static_cast<int>(rgb & 0xff), static_cast<int>((rgb >> 8) & 0xff),
                  static_cast<int>((rgb >> 16) & 0xff));
}

// ---- EditPreview.

EditPreview::EditPreview(EditVideo& model, QWidget* parent) : QWidget(parent), m_model(model) {
    setObjectName(QStringLiteral("picPreview_BG"));
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

QRect EditPreview::pictureRect() const {
    const QSize p = m_model.previewSize;
    return {(width() - p.width()) / 2, (height() - p.height()) / 2, p.width(), p.height()};
}

void EditPreview::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const CropFrame& crop = m_model.crop;
    if (m_model.CurrentTab != 1) {
        const QImage& picture = m_model.Pic_Preview[static_cast<std::size_t>(m_model.CurrentTab)];
        if (!picture.isNull()) painter.drawImage(m_model.previewFrame.topLeft(), picture);
        return;
    }
    // The Crop tab: the whole frame with what falls outside the rectangle dimmed.
    const QRect picture = pictureRect();
    if (!m_model.Pic_CaptureTmp.isNull()) painter.drawImage(picture, m_model.Pic_CaptureTmp);
    const QRect cut = crop.Crop_Canves.translated(picture.topLeft());
    QRegion outside(picture);
    outside -= QRegion(cut);
    painter.setClipRegion(outside);
    painter.fillRect(picture, QColor(0, 0, 0, 150));
    painter.setClipping(false);
    if (!crop.HandlesVisible) return;
    const QColor line = Rgb_Colour(CropFrame::kLineColour);
    for (const QRect& r : {crop.Line_Top, crop.Line_Bottom, crop.Line_Left, crop.Line_Right})
        painter.fillRect(r.translated(picture.topLeft()), line);
    painter.setPen(Qt::black);
    painter.setBrush(Rgb_Colour(CropFrame::kHandleColour));
    for (const QRect& r : crop.Crop_Point)
        painter.drawRect(r.translated(picture.topLeft()).adjusted(0, 0, -1, -1));
}

int EditPreview::handleAt(QPoint local) const {
    const CropFrame& crop = m_model.crop;
    // The corners before the edges, so that a small rectangle stays resizable at its corners.
    for (int i : {0, 2, 4, 6, 1, 3, 5, 7, 8})
        if (crop.Crop_Point[static_cast<std::size_t>(i)].adjusted(-3, -3, 3, 3).contains(local)) return i;
    return crop.Crop_Canves.contains(local) ? kRectangle : -1;
}

void EditPreview::updateCursor(QPoint at) {
    static const Qt::CursorShape shapes[] = {
        Qt::SizeFDiagCursor, Qt::SizeVerCursor,   Qt::SizeBDiagCursor, Qt::SizeHorCursor, Qt::SizeFDiagCursor,
        Qt::SizeVerCursor,   Qt::SizeBDiagCursor, Qt::SizeHorCursor,   Qt::SizeAllCursor, Qt::SizeAllCursor};
    const int h = m_model.CurrentTab == 1 && m_model.crop.HandlesVisible ? handleAt(at) : -1;
    setCursor(h >= 0 ? shapes[h] : Qt::ArrowCursor);
}

void EditPreview::mousePressEvent(QMouseEvent* event) {
    if (m_model.CurrentTab != 1 || !m_model.crop.HandlesVisible || event->button() != Qt::LeftButton) return;
    const QPoint local = event->position().toPoint() - pictureRect().topLeft();
    const int h = handleAt(local);
    if (h < 0) return;
    CropFrame& crop = m_model.crop;
    m_dragged = h;
    const QRect& item = h == kRectangle ? crop.Crop_Canves : crop.Crop_Point[static_cast<std::size_t>(h)];
    if (h == kRectangle)
        crop.Crop_Canves_MouseDown(local.x() - item.x(), local.y() - item.y());
    else
        crop.Crop_Point_MouseDown(h, local.x() - item.x(), local.y() - item.y());
}

void EditPreview::mouseMoveEvent(QMouseEvent* event) {
    const QPoint local = event->position().toPoint() - pictureRect().topLeft();
    CropFrame& crop = m_model.crop;
    if (m_dragged < 0 || !crop.Dragging) {
        updateCursor(local);
        return;
    }
    // Positions are taken inside the dragged item, which follows the pointer.
    const bool whole = m_dragged == kRectangle;
    const QRect& origin = whole ? crop.Crop_Canves : crop.Crop_Point[static_cast<std::size_t>(m_dragged)];
    crop.Drag_CropHandle(whole ? CropFrame::kWholeRect : m_dragged, local.x() - origin.x(),
                         local.y() - origin.y());
    if (changedByUser) changedByUser();
    update();
}

void EditPreview::mouseReleaseEvent(QMouseEvent*) {
    if (m_dragged >= 0) m_model.crop.MouseUp();
    m_dragged = -1;
}

// ---- TrimBarView.

namespace {
constexpr int kBarHeight = 34;
}

TrimBarView::TrimBarView(EditVideo& model, QWidget* parent) : QWidget(parent), m_model(model) {
    setObjectName(QStringLiteral("ProgressBar_Play"));
    setFixedHeight(kBarHeight);
    setMouseTracking(true);
}

int TrimBarView::travelFor(int width) {
    return std::max(1, width - 2 * TrimBar::kHandleWidth);
}

bool TrimBarView::handlesShown() const {
    return m_model.CurrentTab == 0;
}

void TrimBarView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const TrimBar& trim = m_model.trim;
    const QPalette& pal = palette();
    const int mid = height() / 2;
    const QRect groove(trim.BarLeft, mid - 3, trim.BarMax + TrimBar::kHandleWidth, 6);
    painter.setPen(Qt::NoPen);
    painter.setBrush(pal.color(QPalette::Mid));
    painter.drawRoundedRect(groove, 3, 3);
    const bool enabled = m_model.playControlsEnabled;
    if (handlesShown()) {
        QColor range = pal.color(QPalette::Highlight);
        range.setAlpha(enabled ? 170 : 90);
        painter.setBrush(range);
        painter.drawRect(QRect(trim.Trim_Range.Left, mid - 5, trim.Trim_Range.Width, 10));
        // The handles: a bracket each, opening towards the selection.
        QColor handle = pal.color(QPalette::Highlight);
        if (!enabled) handle.setAlpha(120);
        for (std::size_t i = 0; i < 2; ++i) {
            const TrimBar::Handle& h = trim.TrimPoint_Image[i];
            const QRect r(h.Left, 3, h.Width, height() - 6);
            painter.setBrush(handle);
            painter.drawRoundedRect(r, 2, 2);
            painter.setBrush(pal.color(QPalette::HighlightedText));
            const int lip = i == 0 ? r.right() - 3 : r.left() + 1;
            painter.drawRect(QRect(lip, r.top() + 5, 2, r.height() - 10));
        }
    }
    // The play position, between the handles' room.
    const int x = trim.BarLeft + TrimBar::kHandleWidth / 2 + trim.BarValue;
    painter.setBrush(enabled ? pal.color(QPalette::Text) : pal.color(QPalette::Mid));
    painter.drawRect(QRect(x - 1, 4, 3, height() - 8));
}

void TrimBarView::mousePressEvent(QMouseEvent* event) {
    if (!m_model.playControlsEnabled || event->button() != Qt::LeftButton) return;
    const int x = qRound(event->position().x());
    m_lastX = x;
    if (handlesShown()) {
        for (int i = 1; i >= 0; --i) {
            const TrimBar::Handle& h = m_model.trim.TrimPoint_Image[static_cast<std::size_t>(i)];
            if (x >= h.Left && x < h.Left + h.Width) {
                m_dragged = i;
                m_model.trim.TrimPoint_MouseDown(i);
                if (changedByUser) changedByUser();
                return;
            }
        }
    }
    m_dragged = 2;
    mouseMoveEvent(event);
}

void TrimBarView::mouseMoveEvent(QMouseEvent* event) {
    if (m_dragged < 0 || !(event->buttons() & Qt::LeftButton)) return;
    TrimBar& trim = m_model.trim;
    const int x = qRound(event->position().x());
    if (m_dragged == 2) {
        const int value = std::clamp(x - trim.BarLeft - TrimBar::kHandleWidth / 2, trim.BarMin, trim.BarMax);
        if (value != trim.BarValue) trim.ProgressBar_Play_Change(value);
    } else {
        trim.TrimPoint_MouseMove(m_dragged, x - m_lastX);
    }
    m_lastX = x;
    if (changedByUser) changedByUser();
    update();
}

void TrimBarView::mouseReleaseEvent(QMouseEvent*) {
    if (m_dragged == 0 || m_dragged == 1) {
        m_model.trim.TrimPoint_MouseUp(m_dragged);
        if (changedByUser) changedByUser();
    }
    m_dragged = -1;
}

} // namespace morvane
