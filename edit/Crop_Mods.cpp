#include "Crop_Mods.h"

#include "CheckedMath.h"

#include <algorithm>

namespace morvane {

std::int32_t Scale_ToSource(std::int32_t P, std::int32_t S, std::int32_t v) {
    return roundToInt32(divChecked(S, P) * v);
}

std::int32_t Scale_ToPreview(std::int32_t S, std::int32_t P, std::int32_t v) {
    return roundToInt32(divChecked(v, divChecked(S, P)));
}

CropFrame::CropFrame(int previewWidth, int previewHeight) {
    Set_Bounds(previewWidth, previewHeight);
    Set_CropRect(0, 0, 0, 0);
}

void CropFrame::Set_Bounds(int previewWidth, int previewHeight) {
    BoundLeft = 0;
    BoundTop = 0;
    BoundRight = previewWidth;
    BoundBottom = previewHeight;
}

void CropFrame::Set_CropRect(std::int32_t top, std::int32_t bottom, std::int32_t left, std::int32_t right) {
    Crop_Canves = QRect(left, top, BoundRight - (left + right), BoundBottom - (top + bottom));
    Drag_CropHandle(kPlaceOnly, 0, 0);
}

void CropFrame::Crop_Canves_MouseDown(int x, int y) {
    DragStartX = x;
    DragStartY = y;
    Dragging = true;
    Dirty = true;
}

void CropFrame::Crop_Point_MouseDown(int /*index*/, int x, int y) {
    // Any handle starts the same drag; which edges move is told by the index of each move.
    Crop_Canves_MouseDown(x, y);
}

void CropFrame::Drag_CropHandle(int index, int x, int y) {
    if (index != kPlaceOnly && Dragging && index >= 0 && index <= kWholeRect) {
        if (index == kWholeRect)
            dragWhole(x - DragStartX, y - DragStartY);
        else
            dragEdges(index, x - DragStartX, y - DragStartY);
    }
    placeHandles();
    takeMargins();
}

void CropFrame::dragEdges(int index, int dx, int dy) {
    int l = Crop_Canves.x(), t = Crop_Canves.y();
    int r = l + Crop_Canves.width(), b = t + Crop_Canves.height();
    const bool left = index == TopLeft || index == LeftMid || index == BottomLeft;
    const bool right = index == TopRight || index == RightMid || index == BottomRight;
    const bool top = index == TopLeft || index == TopMid || index == TopRight;
    const bool bottom = index == BottomLeft || index == BottomMid || index == BottomRight;
    // An edge stops kMinSide short of the opposite one; a rectangle already narrower than that may
    // grow but not shrink.
    if (left) l = std::max(BoundLeft, std::min(l + dx, std::max(r - kMinSide, l)));
    if (right) r = std::min(BoundRight, std::max(r + dx, std::min(l + kMinSide, r)));
    if (top) t = std::max(BoundTop, std::min(t + dy, std::max(b - kMinSide, t)));
    if (bottom) b = std::min(BoundBottom, std::max(b + dy, std::min(t + kMinSide, b)));
    Crop_Canves = QRect(l, t, r - l, b - t);
}

void CropFrame::dragWhole(int dx, int dy) {
    const int w = Crop_Canves.width(), h = Crop_Canves.height();
    // Clamped to the far bound first, so that a rectangle larger than the bounds sits at left and top.
    const int l = std::max(BoundLeft, std::min(Crop_Canves.x() + dx, BoundRight - w));
    const int t = std::max(BoundTop, std::min(Crop_Canves.y() + dy, BoundBottom - h));
    Crop_Canves.moveTo(l, t);
}

void CropFrame::placeHandles() {
    const int l = Crop_Canves.x(), t = Crop_Canves.y(), w = Crop_Canves.width(), h = Crop_Canves.height();
    const int r = l + w, b = t + h, mx = l + w / 2, my = t + h / 2;
    const std::array<QPoint, 9> at{
        {{l, t}, {mx, t}, {r, t}, {r, my}, {r, b}, {mx, b}, {l, b}, {l, my}, {mx, my}}};
    for (std::size_t i = 0; i < at.size(); ++i)
        Crop_Point[i] =
            QRect(at[i].x() - kHandleSize / 2, at[i].y() - kHandleSize / 2, kHandleSize, kHandleSize);
    Line_Top = QRect(l, t, w, kLineWidth);
    Line_Bottom = QRect(l, b - kLineWidth, w, kLineWidth);
    Line_Left = QRect(l, t, kLineWidth, h);
    Line_Right = QRect(r - kLineWidth, t, kLineWidth, h);
}

void CropFrame::takeMargins() {
    CropTop = Crop_Canves.y();
    CropBottom = BoundBottom - (Crop_Canves.y() + Crop_Canves.height());
    CropLeft = Crop_Canves.x();
    CropRight = BoundRight - (Crop_Canves.x() + Crop_Canves.width());
}

void CropFrame::Cmd_AspectRatio_Click(int i) {
    if (i < 0 || i >= static_cast<int>(kAspectButtons.size())) return;
    AspectButtonColour.fill(kFaceColour);
    AspectButtonColour[static_cast<std::size_t>(i)] = kHighlightColour;
    AspectMode = kAspectButtons[static_cast<std::size_t>(i)].mode;
    AspectText = QString::fromLatin1(kAspectButtons[static_cast<std::size_t>(i)].word);
    Dirty = true;
}

QRect CropFrame::PreviewFrameRect(const QRect& outputShape, const QSize& preview) const {
    return AspectMode == kAspectOriginal ? QRect(QPoint(0, 0), preview) : outputShape;
}

void CropFrame::Cmd_Reset1() {
    Show_CropHandles(false);
    Set_CropRect(0, 0, 0, 0);
    Cmd_AspectRatio_Click(0);
    Show_CropHandles(true);
    DeinterlaceOn = true;
    Dirty = true;
}

bool CropFrame::Restore_CropRect(int sourceWidth, int sourceHeight, const StoredCrop& columns) {
    try {
        const std::int32_t top = Scale_ToPreview(sourceHeight, BoundBottom, columns.Top);
        const std::int32_t bottom = Scale_ToPreview(sourceHeight, BoundBottom, columns.Bottom);
        const std::int32_t left = Scale_ToPreview(sourceWidth, BoundRight, columns.Left);
        const std::int32_t right = Scale_ToPreview(sourceWidth, BoundRight, columns.Right);
        Set_CropRect(top, bottom, left, right);
        return true;
    } catch (const RunTimeError&) {
        return false;
    }
}

std::optional<StoredCrop> CropFrame::Stored_Crop(int sourceWidth, int sourceHeight) const {
    try {
        StoredCrop s;
        s.Top = Scale_ToSource(BoundBottom, sourceHeight, CropTop);
        s.Bottom = Scale_ToSource(BoundBottom, sourceHeight, CropBottom);
        s.Left = Scale_ToSource(BoundRight, sourceWidth, CropLeft);
        s.Right = Scale_ToSource(BoundRight, sourceWidth, CropRight);
        s.Width = Scale_ToSource(BoundRight, sourceWidth, Crop_Canves.width());
        s.Height = Scale_ToSource(BoundBottom, sourceHeight, Crop_Canves.height());
        return s;
    } catch (const RunTimeError&) {
        return std::nullopt;
    }
}

std::optional<CropInfo> CropFrame::Timer_GetCropInfo(int sourceWidth, int sourceHeight) const {
    const std::optional<StoredCrop> s = Stored_Crop(sourceWidth, sourceHeight);
    if (!s) return std::nullopt;
    const auto n = [](std::int32_t v) { return QString::number(v); };
    CropInfo info;
    info.lbl_Top = QStringLiteral("Top : ") + n(s->Top);
    info.lbl_Buttom = QStringLiteral("Buttom : ") + n(s->Bottom);
    info.lbl_Left = QStringLiteral("Left : ") + n(s->Left);
    info.lbl_Right = QStringLiteral("Right : ") + n(s->Right);
    info.Txt_CropSize = n(s->Width) + QStringLiteral(" x ") + n(s->Height);
    info.lbl_PadTop = QStringLiteral("Pad : ") + n(PadTop);
    info.lbl_PadButtom = QStringLiteral("Pad : ") + n(PadBottom);
    info.lbl_PadLeft = QStringLiteral("Pad : ") + n(PadLeft);
    info.lbl_PadRight = QStringLiteral("Pad : ") + n(PadRight);
    return info;
}

} // namespace morvane
