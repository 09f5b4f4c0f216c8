// The Crop tab of the edit window as a model: the rubber-band rectangle (Crop_Canves) over the preview,
// its nine handles and four edge lines, the drag that moves them, the margins and pads, and the aspect
// buttons. The window draws these fields and forwards its mouse events; tests drive them without a
// window. Main thread only.
//
// Units: the rectangle, the bounds and the Crop margins are preview pixels (picPreview's scale size);
// the pads and everything stored in the item's columns are source pixels.
#pragma once

#include <QRect>
#include <QString>

#include <array>
#include <cstdint>
#include <optional>

namespace morvane {

// (S / P) x v, rounded to the nearest, ties to even: a preview extent v of P pixels in a source of S.
// Throws RunTimeError when P is 0 or the result leaves 32 bits.
std::int32_t Scale_ToSource(std::int32_t P, std::int32_t S, std::int32_t v);
// v / (S / P), rounded the same way: the way back. Throws RunTimeError when S or P is 0.
std::int32_t Scale_ToPreview(std::int32_t S, std::int32_t P, std::int32_t v);

// One aspect button: the mode it sets and the word stored in the item. The modes are numbered apart
// from the buttons' order, and both numberings are stored, so neither may change.
struct AspectButton {
    std::int32_t mode;
    const char* word;
};
inline constexpr std::array<AspectButton, 5> kAspectButtons{{
    {3, "Original"},
    {0, "16:9"},
    {1, "4:3"},
    {2, "FullScreen"},
    {4, "PanScan"},
}};
// AspectMode values.
enum : std::int32_t {
    kAspect169 = 0,
    kAspect43 = 1,
    kAspectFull = 2,
    kAspectOriginal = 3,
    kAspectPanScan = 4
};

// The crop margins, the rectangle's size and the pads in source pixels, as the item's columns hold them.
struct StoredCrop {
    std::int32_t Top = 0, Bottom = 0, Left = 0, Right = 0; // columns 42 to 45
    std::int32_t Width = 0, Height = 0;                    // columns 51, 52
};

// The texts of the info labels under the preview.
struct CropInfo {
    QString lbl_Top, lbl_Buttom, lbl_Left, lbl_Right;
    QString Txt_CropSize;
    QString lbl_PadTop, lbl_PadButtom, lbl_PadLeft, lbl_PadRight;
};

class CropFrame {
public:
    // The handles are a finger's width on a touchpad and still small beside a 320 px preview.
    static constexpr int kHandleSize = 8;
    static constexpr int kLineWidth = 2;
    static constexpr int kLineColour = 65535;       // yellow (R + 256 G + 65536 B): visible on most video
    static constexpr int kHandleColour = 65535;     // the handles match the lines
    static constexpr int kMinSide = kHandleSize;    // a handle drag stops this far from the opposite edge
    static constexpr int kHighlightColour = 752895; // the pressed aspect button
    static constexpr int kFaceColour = -1;          // the other buttons: the style's own face colour

    // Handle indexes: clockwise from the top-left corner, then the centre.
    enum Handle { TopLeft, TopMid, TopRight, RightMid, BottomRight, BottomMid, BottomLeft, LeftMid, Centre };
    // The index Drag_CropHandle takes for the rectangle itself (the same as the centre handle, which
    // moves it too), and the one that only places handles and lines.
    static constexpr int kWholeRect = 8;
    static constexpr int kPlaceOnly = -1;

    CropFrame() = default;
    // A preview of that scale size, the rectangle covering all of it.
    CropFrame(int previewWidth, int previewHeight);

    // ---- The rectangle and what is drawn around it, in preview pixels.
    QRect Crop_Canves;
    std::array<QRect, 9> Crop_Point{};
    QRect Line_Top, Line_Bottom, Line_Left, Line_Right;
    bool HandlesVisible = false;

    // The rectangle's limits; right and bottom are the preview's scale width and height.
    std::int32_t BoundLeft = 0, BoundTop = 0, BoundRight = 0, BoundBottom = 0;
    void Set_Bounds(int previewWidth, int previewHeight);

    // ---- Drag state.
    int DragStartX = 0, DragStartY = 0;
    bool Dragging = false;

    // ---- Margins between rectangle and bounds (preview pixels) and the pads that the last drawn
    // preview frame left (source pixels, negative when the picture is cut instead).
    std::int32_t CropTop = 0, CropBottom = 0, CropLeft = 0, CropRight = 0;
    std::int32_t PadTop = 0, PadBottom = 0, PadLeft = 0, PadRight = 0;

    // ---- Aspect.
    std::int32_t AspectMode = kAspectOriginal;
    QString AspectText = QStringLiteral("Original");
    std::array<int, kAspectButtons.size()> AspectButtonColour{kHighlightColour, kFaceColour, kFaceColour,
                                                              kFaceColour, kFaceColour};

    // The deinterlace switch as this tab leaves it: the reset turns it on. The window's check box, the
    // player's switch and the switch picture follow it.
    bool DeinterlaceOn = true;
    // A user handler ran since the window last cleared it.
    bool Dirty = false;

    // Places the rectangle from margins in preview pixels, then its handles and lines.
    void Set_CropRect(std::int32_t top, std::int32_t bottom, std::int32_t left, std::int32_t right);
    void Show_CropHandles(bool visible) { HandlesVisible = visible; }

    // The mouse on the rectangle or on a handle. Positions are in preview pixels relative to the item
    // under the mouse (the rectangle or the handle), as the item's own mouse events give them; so the
    // drag moves by pointer minus start, and the item moves with the pointer.
    void Crop_Canves_MouseDown(int x, int y);
    void Crop_Canves_MouseMove(int x, int y) { Drag_CropHandle(kWholeRect, x, y); }
    void Crop_Point_MouseDown(int index, int x, int y);
    void Crop_Point_MouseMove(int index, int x, int y) { Drag_CropHandle(index, x, y); }
    void MouseUp() { Dragging = false; }

    // While dragging, handle 0 to 7 moves its edges (each kept within its bound and kMinSide from the
    // opposite edge) and 8 moves the whole rectangle, kept within the bounds at its size. In every case
    // the handles and lines are placed on the rectangle and the margins taken from it.
    void Drag_CropHandle(int index, int x, int y);

    // Aspect button i (0 to 4): its colours, AspectMode and AspectText. Other indexes do nothing.
    void Cmd_AspectRatio_Click(int i);
    // Where the preview's output frame (Pic_PreviewFrame) goes inside the preview: on the output shape,
    // or over the whole preview for "Original". Its size is the SW x SH that the drawing fills.
    QRect PreviewFrameRect(const QRect& outputShape, const QSize& preview) const;

    // Cmd_Reset 1: the rectangle over the whole preview, "Original", deinterlace on.
    void Cmd_Reset1();

    // The rectangle from the item's margin columns (source pixels; Width and Height are not read).
    // False, and nothing changed, when the source or the preview has no size.
    bool Restore_CropRect(int sourceWidth, int sourceHeight, const StoredCrop& columns);
    // The margins and size for the item's columns; nothing when the preview has no size.
    std::optional<StoredCrop> Stored_Crop(int sourceWidth, int sourceHeight) const;
    // Timer_GetCropInfo's texts; nothing when the preview has no size (the labels keep their text).
    std::optional<CropInfo> Timer_GetCropInfo(int sourceWidth, int sourceHeight) const;

private:
    void placeHandles();
    void takeMargins();
    void dragEdges(int index, int dx, int dy);
    void dragWhole(int dx, int dy);
};

} // namespace morvane
