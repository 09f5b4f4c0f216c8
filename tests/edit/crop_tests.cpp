// The Crop tab's model and the preview drawing: scaling between preview and source, the rectangle and
// its drag, the aspect buttons, the labels, where the picture lands for each aspect, and the pixels.
#include "CheckedMath.h"
#include "Crop_Mods.h"
#include "Make_EncoderArgs.h"
#include "Preview_Frame.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <tuple>
#include <vector>

using namespace morvane;

namespace {

// A 320 x 180 preview with the rectangle at (40, 20, 240, 140).
CropFrame Framed() {
    CropFrame c(320, 180);
    c.Set_CropRect(20, 20, 40, 40);
    return c;
}

} // namespace

TEST(CropScale, RoundsHalfToEvenBothWays) {
    struct Case {
        int a, b, v, expected;
    };
    const Case toSource[] = {{1280, 1920, 1, 2},   {1280, 1920, 3, 4}, {1280, 1920, 5, 8},
                             {1280, 1920, -3, -4}, {320, 1920, 7, 42}, {300, 1920, 0, 0}};
    for (const Case& c : toSource)
        EXPECT_EQ(Scale_ToSource(c.a, c.b, c.v), c.expected) << c.a << ' ' << c.v;
    const Case toPreview[] = {{1920, 1280, 3, 2}, {1920, 1280, 2, 1}, {640, 320, 5, 2}, {640, 320, 7, 4}};
    for (const Case& c : toPreview)
        EXPECT_EQ(Scale_ToPreview(c.a, c.b, c.v), c.expected) << c.a << ' ' << c.v;
    EXPECT_THROW(Scale_ToSource(0, 1920, 5), RunTimeError);
    EXPECT_THROW(Scale_ToPreview(0, 320, 5), RunTimeError);
    EXPECT_THROW(Scale_ToPreview(1920, 0, 5), RunTimeError);
}

TEST(CropScale, ColumnsBackAndForthSettleAfterOneRound) {
    struct Case {
        int source, preview, stored, restored, saved;
    };
    const Case cases[] = {
        {1280, 320, 2, 0, 0},  // half a preview pixel rounds to even: the margin goes
        {1280, 320, 3, 1, 4},  // moves by one
        {1280, 320, 10, 2, 8}, // 2.5 preview pixels round down
        {1920, 300, 100, 16, 102}, {1920, 300, 13, 2, 13}, {720, 320, 9, 4, 9},
    };
    for (const Case& c : cases) {
        CropFrame f(c.preview, c.preview);
        ASSERT_TRUE(f.Restore_CropRect(c.source, c.source, {c.stored, c.stored, c.stored, c.stored, 0, 0}));
        EXPECT_EQ(f.CropTop, c.restored) << c.source << '/' << c.preview << ' ' << c.stored;
        EXPECT_EQ(f.Crop_Canves.width(), c.preview - 2 * c.restored);
        const StoredCrop once = *f.Stored_Crop(c.source, c.source);
        EXPECT_EQ(once.Left, c.saved);
        EXPECT_EQ(once.Bottom, c.saved);
        // Opening the item again must not drift further.
        ASSERT_TRUE(f.Restore_CropRect(c.source, c.source, once));
        EXPECT_EQ(f.Stored_Crop(c.source, c.source)->Right, c.saved);
    }
    CropFrame f = Framed();
    EXPECT_FALSE(f.Restore_CropRect(0, 1080, {1, 1, 1, 1, 0, 0}));
    EXPECT_EQ(f.Crop_Canves, QRect(40, 20, 240, 140));
    EXPECT_FALSE(CropFrame().Stored_Crop(1920, 1080));
}

TEST(CropRect, MarginsPlaceRectangleHandlesAndLines) {
    struct Case {
        int top, bottom, left, right;
        QRect rect;
    };
    const Case cases[] = {
        {0, 0, 0, 0, {0, 0, 320, 180}},
        {20, 20, 40, 40, {40, 20, 240, 140}},
        {5, 30, 0, 101, {0, 5, 219, 145}},
    };
    for (const Case& c : cases) {
        CropFrame f(320, 180);
        f.Set_CropRect(c.top, c.bottom, c.left, c.right);
        EXPECT_EQ(f.Crop_Canves, c.rect);
        EXPECT_EQ((std::array{f.CropTop, f.CropBottom, f.CropLeft, f.CropRight}),
                  (std::array{c.top, c.bottom, c.left, c.right}));
        const int l = c.rect.x(), t = c.rect.y(), r = l + c.rect.width(), b = t + c.rect.height();
        const int mx = l + c.rect.width() / 2, my = t + c.rect.height() / 2;
        const QPoint centres[9] = {{l, t},  {mx, t}, {r, t},  {r, my}, {r, b},
                                   {mx, b}, {l, b},  {l, my}, {mx, my}};
        for (int i = 0; i < 9; ++i) {
            const QRect& h = f.Crop_Point[static_cast<std::size_t>(i)];
            EXPECT_EQ(h.size(), QSize(CropFrame::kHandleSize, CropFrame::kHandleSize));
            EXPECT_EQ(h.topLeft() + QPoint(CropFrame::kHandleSize / 2, CropFrame::kHandleSize / 2),
                      centres[i])
                << "handle " << i;
        }
        EXPECT_EQ(f.Line_Top.united(f.Line_Bottom).united(f.Line_Left).united(f.Line_Right), c.rect);
        EXPECT_EQ(f.Line_Bottom.bottom(), b - 1);
        EXPECT_EQ(f.Line_Right.right(), r - 1);
    }
    // Four zero margins: the stored crop is the whole source and the encoder is given no crop.
    CropFrame full(320, 180);
    const StoredCrop s = *full.Stored_Crop(1920, 1080);
    EXPECT_EQ(s.Width, 1920);
    EXPECT_EQ(s.Height, 1080);
    EXPECT_EQ(Make_CropFilter(1920, 1080, s.Top, s.Bottom, s.Left, s.Right), QString());
}

TEST(CropDrag, HandlesMoveTheirEdgesUpToBoundOrOppositeEdge) {
    struct Case {
        int handle, dx, dy;
        QRect expected;
    };
    const int m = CropFrame::kMinSide;
    const Case cases[] = {
        {CropFrame::TopLeft, -10, -5, {30, 15, 250, 145}},
        {CropFrame::TopLeft, -100, -100, {0, 0, 280, 160}},       // both bounds
        {CropFrame::TopLeft, 500, 500, {280 - m, 160 - m, m, m}}, // stops at the opposite edges
        {CropFrame::TopMid, 50, 10, {40, 30, 240, 130}},          // x ignored
        {CropFrame::TopRight, 10, -30, {40, 0, 250, 160}},
        {CropFrame::RightMid, 100, 40, {40, 20, 280, 140}},
        {CropFrame::BottomRight, -300, -300, {40, 20, m, m}},
        {CropFrame::BottomMid, 50, 5, {40, 20, 240, 145}},
        {CropFrame::BottomLeft, 10, 100, {50, 20, 230, 160}},
        {CropFrame::LeftMid, -60, 3, {0, 20, 280, 140}},
    };
    for (const Case& c : cases) {
        CropFrame f = Framed();
        f.Crop_Point_MouseDown(c.handle, 4, 4);
        f.Crop_Point_MouseMove(c.handle, 4 + c.dx, 4 + c.dy);
        EXPECT_EQ(f.Crop_Canves, c.expected) << "handle " << c.handle << " by " << c.dx << ',' << c.dy;
        EXPECT_EQ(f.CropLeft + f.Crop_Canves.width() + f.CropRight, 320);
        EXPECT_EQ(f.CropTop + f.Crop_Canves.height() + f.CropBottom, 180);
        EXPECT_TRUE(f.Dirty);
    }
}

TEST(CropDrag, RectangleStaysInsideAtItsSize) {
    struct Case {
        int handle, dx, dy;
        QPoint expected;
    };
    const Case cases[] = {
        {CropFrame::kWholeRect, 30, 10, {70, 30}},   {CropFrame::kWholeRect, 500, -500, {80, 0}},
        {CropFrame::kWholeRect, -500, 500, {0, 40}}, {CropFrame::Centre, -15, 7, {25, 27}},
        {CropFrame::Centre, 1000, 1000, {80, 40}},
    };
    for (const Case& c : cases) {
        CropFrame f = Framed();
        if (c.handle == CropFrame::kWholeRect) {
            f.Crop_Canves_MouseDown(100, 50);
            f.Crop_Canves_MouseMove(100 + c.dx, 50 + c.dy);
        } else {
            f.Crop_Point_MouseDown(c.handle, 4, 4);
            f.Crop_Point_MouseMove(c.handle, 4 + c.dx, 4 + c.dy);
        }
        EXPECT_EQ(f.Crop_Canves, QRect(c.expected, QSize(240, 140))) << c.dx << ',' << c.dy;
        EXPECT_EQ(f.CropRight, 320 - 240 - c.expected.x());
        EXPECT_EQ(f.Crop_Point[CropFrame::TopLeft].topLeft(), c.expected - QPoint(4, 4));
    }
    // A rectangle wider than the bounds (restored from another preview) is held at the left bound.
    CropFrame wide(320, 180);
    wide.Set_CropRect(0, 0, 10, -20);
    wide.Crop_Canves_MouseDown(0, 0);
    wide.Crop_Canves_MouseMove(5, 0);
    EXPECT_EQ(wide.Crop_Canves, QRect(0, 0, 330, 180));
}

TEST(CropDrag, MovesCountOnlyWhileTheButtonIsDown) {
    CropFrame f = Framed();
    const QRect start = f.Crop_Canves;
    f.Crop_Canves_MouseMove(50, 50); // hover
    EXPECT_EQ(f.Crop_Canves, start);
    EXPECT_FALSE(f.Dirty);
    f.Crop_Point_MouseDown(CropFrame::TopLeft, 0, 0);
    for (const int index : {CropFrame::kPlaceOnly, -2, 9}) {
        f.Drag_CropHandle(index, 30, 30);
        EXPECT_EQ(f.Crop_Canves, start) << index;
    }
    f.Crop_Point_MouseMove(CropFrame::TopLeft, 10, 0);
    EXPECT_EQ(f.Crop_Canves.x(), 50);
    f.MouseUp();
    f.Crop_Point_MouseMove(CropFrame::TopLeft, 30, 0);
    EXPECT_EQ(f.Crop_Canves.x(), 50);
}

TEST(CropAspect, ButtonsSetModeWordAndHighlightResetGoesBackToOriginal) {
    const std::tuple<int, int, const char*> cases[] = {{0, kAspectOriginal, "Original"},
                                                       {1, kAspect169, "16:9"},
                                                       {2, kAspect43, "4:3"},
                                                       {3, kAspectFull, "FullScreen"},
                                                       {4, kAspectPanScan, "PanScan"}};
    const QRect shape(10, 20, 300, 200);
    for (const auto& [index, mode, word] : cases) {
        CropFrame f = Framed();
        f.Cmd_AspectRatio_Click(index);
        f.Cmd_AspectRatio_Click(5); // outside the row: nothing
        f.Cmd_AspectRatio_Click(-1);
        EXPECT_EQ(f.AspectMode, mode);
        EXPECT_EQ(f.AspectText, word);
        for (int i = 0; i < 5; ++i)
            EXPECT_EQ(f.AspectButtonColour[static_cast<std::size_t>(i)],
                      i == index ? CropFrame::kHighlightColour : CropFrame::kFaceColour);
        EXPECT_EQ(f.PreviewFrameRect(shape, QSize(320, 180)), index == 0 ? QRect(0, 0, 320, 180) : shape);

        f.DeinterlaceOn = false;
        f.Cmd_Reset1();
        EXPECT_EQ(f.Crop_Canves, QRect(0, 0, 320, 180));
        EXPECT_EQ(f.CropLeft + f.CropRight + f.CropTop + f.CropBottom, 0);
        EXPECT_EQ(f.AspectMode, kAspectOriginal);
        EXPECT_EQ(f.AspectText, "Original");
        EXPECT_EQ(f.AspectButtonColour,
                  (std::array{CropFrame::kHighlightColour, CropFrame::kFaceColour, CropFrame::kFaceColour,
                              CropFrame::kFaceColour, CropFrame::kFaceColour}));
        EXPECT_TRUE(f.HandlesVisible && f.DeinterlaceOn && f.Dirty);
    }
}

TEST(CropInfo, LabelsInSourcePixels) {
    struct Case {
        int sourceW, sourceH, top, bottom, left, right, pad;
        const char *lTop, *lButtom, *lLeft, *lRight, *size, *lPad;
    };
    // clang-format off
    const Case cases[] = {
        {1920, 1080, 10, 5, 20, 0, 0,
         "Top : 60", "Buttom : 30", "Left : 120", "Right : 0", "1800 x 990", "Pad : 0"},
        {720, 576, 1, 3, 7, 2, -12, // rounded halves go to even: 2.25 x 2 = 4.5 gives 4
         "Top : 3",  "Buttom : 10", "Left : 16",  "Right : 4", "700 x 563",  "Pad : -12"},
    };
    // clang-format on
    for (const Case& c : cases) {
        CropFrame f(320, 180);
        f.Set_CropRect(c.top, c.bottom, c.left, c.right);
        f.PadTop = f.PadBottom = f.PadLeft = f.PadRight = c.pad;
        const CropInfo info = *f.Timer_GetCropInfo(c.sourceW, c.sourceH);
        EXPECT_EQ(info.lbl_Top, c.lTop);
        EXPECT_EQ(info.lbl_Buttom, c.lButtom);
        EXPECT_EQ(info.lbl_Left, c.lLeft);
        EXPECT_EQ(info.lbl_Right, c.lRight);
        EXPECT_EQ(info.Txt_CropSize, c.size);
        for (const QString* pad :
             {&info.lbl_PadTop, &info.lbl_PadButtom, &info.lbl_PadLeft, &info.lbl_PadRight})
            EXPECT_EQ(*pad, c.lPad);
    }
    EXPECT_FALSE(CropFrame().Timer_GetCropInfo(1920, 1080)); // no preview yet
}

TEST(PreviewLayout, FitAndAspectModes) {
    // A 1280 x 720 frame under a 320 x 180 preview: four frame pixels to a preview pixel.
    struct Case {
        const char* what;
        QRect crop; // preview pixels
        QSize output;
        int mode;
        float aspect;
        QRect picture;
        int padTop, padLeft;
    };
    const QRect cut(40, 0, 240, 180), whole(0, 0, 320, 180); // a 4:3 cut of the 16:9 frame, and all of it
    const QSize out(448, 252);
    // clang-format off
    const Case cases[] = {
        {"fit: pillar box",         cut, out, kAspectOriginal, 0,     {56, 0, 336, 252}, 0, 160},
        {"1.85 keeps the fit",      cut, out, kAspectOriginal, 1.85f, {56, 0, 336, 252}, 0, 160},
        {"1.78 fills",              cut, out, kAspectOriginal, 1.78f, {0, 0, 448, 252},  0, 0},
        {"1.77 fills",              cut, out, kAspectOriginal, 1.77f, {0, 0, 448, 252},  0, 0},
        {"16/9 is no 1.78",         cut, out, kAspectOriginal, 16.0f / 9, {56, 0, 336, 252}, 0, 160},
        {"1.33 is 4:3",             cut, out, kAspectOriginal, 1.33f, {64, 0, 320, 252}, 0, 192},
        {"16:9 stretches",          cut, out, kAspect169,      1.33f, {0, 0, 448, 252},  0, 0},
        {"FullScreen stretches",    cut, out, kAspectFull,     0,     {0, 0, 448, 252},  0, 0},
        {"4:3: 5 x (700 div 7)",    cut, {700, 394}, kAspect43, 0,    {100, 0, 500, 394}, 0, 192},
        {"4:3: 5 x (450 div 7)",    cut, {450, 252}, kAspect43, 0,    {65, 0, 320, 252},  0, 195},
        {"letter box",              whole, {320, 240}, kAspectOriginal, 0, {0, 30, 320, 180}, 120, 0},
        {"portrait cut", {100, 10, 90, 160}, out, kAspectOriginal, 0, {153, 0, 142, 252},  0, 388},
        // Pan and scan cuts instead of padding: negative pads, halves rounded towards zero.
        {"PanScan, wide picture",   whole, {320, 240}, kAspectPanScan, 0, {-53, 0, 427, 240}, 0, -159},
        {"PanScan, narrow picture", cut, out, kAspectPanScan,  0,     {0, -42, 448, 336}, -90, 0},
    };
    // clang-format on
    for (const Case& c : cases) {
        const PreviewInput in{{320, 180}, c.crop.size(), c.crop.x(), c.crop.y(), c.output, c.mode, c.aspect};
        const std::optional<PreviewLayout> l = Layout_PreviewFrame({1280, 720}, in);
        ASSERT_TRUE(l) << c.what;
        EXPECT_EQ(l->Picture, c.picture) << c.what;
        EXPECT_EQ(l->Source, QRect(c.crop.topLeft() * 4, c.crop.size() * 4)) << c.what;
        EXPECT_EQ((std::array{l->PadTop, l->PadBottom, l->PadLeft, l->PadRight}),
                  (std::array{c.padTop, c.padTop, c.padLeft, c.padLeft}))
            << c.what;
    }
    // Nothing to fit: no layout rather than a division by zero.
    const std::pair<QSize, QSize> empties[] = {
        {{0, 180}, out}, {{0, 0}, out}, {{320, 180}, {448, 0}}, {{320, 180}, {0, 252}}};
    for (const auto& [crop, output] : empties)
        EXPECT_FALSE(Layout_PreviewFrame({1280, 720}, {{320, 180}, crop, 0, 0, output, kAspectOriginal, 0}))
            << crop.width() << 'x' << crop.height() << " in " << output.width() << 'x' << output.height();
}

namespace {

// 128 x 96 of 16 px blocks, each of its own colour.
QRgb B(int bx, int by) {
    return qRgb(20 + 30 * bx, 20 + 40 * by, 200);
}
QRgb Inverted(QRgb c) {
    return qRgb(255 - qRed(c), 255 - qGreen(c), 255 - qBlue(c));
}
const QRgb kBlack = qRgb(0, 0, 0);
QImage Pattern() {
    QImage img(128, 96, QImage::Format_RGB32);
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x)
            img.setPixel(x, y, B(x / 16, y / 16));
    return img;
}
bool Near(QRgb a, QRgb b) {
    return std::abs(qRed(a) - qRed(b)) <= 2 && std::abs(qGreen(a) - qGreen(b)) <= 2 &&
           std::abs(qBlue(a) - qBlue(b)) <= 2;
}

} // namespace

TEST(PreviewDraw, CutLandsWhereTheLayoutSaysWithEffectsOnThePictureOnly) {
    struct Case {
        const char* what;
        int shrink; // the preview is the frame's size divided by this
        QSize output;
        int mode;
        const char* effects;
        std::vector<std::pair<QPoint, QRgb>> probes;
    };
    // The cut is frame (32, 16) to (96, 80) in every case; the probes sit inside blocks.
    // clang-format off
    const Case cases[] = {
        {"twice the size", 1, {128, 128}, kAspectOriginal, "",
         {{{16, 16}, B(2, 1)}, {{112, 112}, B(5, 4)}, {{48, 80}, B(3, 3)}}},
        {"preview half the frame", 2, {128, 128}, kAspectOriginal, "",
         {{{16, 16}, B(2, 1)}, {{112, 112}, B(5, 4)}, {{48, 80}, B(3, 3)}}},
        {"pillar box", 1, {128, 64}, kAspectOriginal, "",
         {{{40, 8}, B(2, 1)}, {{88, 56}, B(5, 4)}, {{10, 30}, kBlack}, {{120, 30}, kBlack}}},
        {"stretched", 1, {256, 128}, kAspect169, "", {{{32, 16}, B(2, 1)}, {{224, 112}, B(5, 4)}}},
        {"inverted, pads stay black", 1, {128, 64}, kAspectOriginal, "Invert:255,",
         {{{40, 8}, Inverted(B(2, 1))}, {{10, 30}, kBlack}, {{120, 30}, kBlack}}},
        {"flipped within the picture", 1, {128, 64}, kAspectOriginal, "FlipH,",
         {{{40, 8}, B(5, 1)}, {{88, 56}, B(2, 4)}, {{10, 30}, kBlack}}},
    };
    // clang-format on
    const QImage frame = Pattern();
    for (const Case& c : cases) {
        const int k = c.shrink;
        CropFrame crop(128 / k, 96 / k);
        crop.Set_CropRect(16 / k, 16 / k, 32 / k, 32 / k);
        crop.AspectMode = c.mode;
        QImage out;
        ASSERT_TRUE(Draw_PreviewFrame(crop, frame, c.output, 0, c.effects, out)) << c.what;
        ASSERT_EQ(out.size(), c.output);
        ASSERT_EQ(out.format(), QImage::Format_RGB32);
        for (const auto& [at, want] : c.probes)
            EXPECT_TRUE(Near(out.pixel(at), want)) << c.what << " at " << at.x() << ',' << at.y() << ": "
                                                   << std::hex << out.pixel(at) << " instead of " << want;
    }
}

TEST(PreviewDraw, TickKeepsPadsOrDrawsNothing) {
    QImage hd(1280, 720, QImage::Format_RGB32);
    hd.fill(Qt::gray);
    QImage out(10, 10, QImage::Format_RGB32);
    out.fill(Qt::red);
    const QImage before = out.copy();

    CropFrame crop(320, 180);
    crop.PadTop = crop.PadLeft = 7;
    // A stopped player gives no frame; a rectangle without width cuts nothing. Neither draws.
    EXPECT_FALSE(Draw_PreviewFrame(crop, QImage(), QSize(320, 240), 0, "", out));
    CropFrame empty(320, 180);
    empty.Set_CropRect(0, 0, 160, 160);
    EXPECT_FALSE(Draw_PreviewFrame(empty, hd, QSize(320, 240), 0, "", out));
    EXPECT_EQ(out, before);
    EXPECT_EQ(crop.PadTop, 7);

    crop.Cmd_AspectRatio_Click(4); // PanScan of a wide picture into a 4:3 frame cuts left and right
    ASSERT_TRUE(Draw_PreviewFrame(crop, hd, QSize(320, 240), 0, "", out));
    EXPECT_EQ((std::array{crop.PadTop, crop.PadBottom, crop.PadLeft, crop.PadRight}),
              (std::array{0, 0, -159, -159}));
    EXPECT_EQ(crop.Timer_GetCropInfo(1280, 720)->lbl_PadLeft, "Pad : -159");
    crop.Cmd_AspectRatio_Click(0);
    ASSERT_TRUE(Draw_PreviewFrame(crop, hd, QSize(320, 240), 0, "", out));
    EXPECT_EQ((std::array{crop.PadTop, crop.PadLeft}), (std::array{120, 0}));
}

TEST(ThumbNail, NamesAndPictures) {
    const std::pair<const char*, const char*> names[] = {{"Glowing Edges", "img_Glowing_Edges.bmp"},
                                                         {"Sepia", "img_Sepia.bmp"},
                                                         {"Gray Scale ", "img_Gray_Scale_.bmp"},
                                                         {" a  b", "img__a__b.bmp"}};
    for (const auto& [caption, file] : names)
        EXPECT_EQ(ThumbNail_FileName(caption), file);

    const QImage source = Pattern();
    const QImage inverted = Render_ThumbNail(source, "Invert:255,");
    EXPECT_EQ(source, Pattern()); // the tool's source picture is kept for the next effect
    EXPECT_EQ(inverted.pixel(20, 20), Inverted(B(1, 1)));
    EXPECT_EQ(Render_ThumbNail(source, ""), source);
}
