// The Crop tab's model and the preview drawing: scaling between preview and source, the rectangle and
// its drag, the aspect buttons, the labels, where the picture lands for each aspect, and the pixels.
#include "Crop_Mods.h"
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

// The nine handles (clockwise from the top-left corner, then the centre) and the four lines sit on the
// rectangle, and the margins are what it leaves of the preview.
void ExpectPlacedOn(const CropFrame& f, const QRect& r) {
    const int k = CropFrame::kHandleSize, x = r.x(), y = r.y(), x1 = x + r.width(), y1 = y + r.height();
    const int mx = x + r.width() / 2, my = y + r.height() / 2;
    const QPoint centres[9] = {{x, y},   {mx, y}, {x1, y}, {x1, my}, {x1, y1},
                               {mx, y1}, {x, y1}, {x, my}, {mx, my}};
    for (std::size_t i = 0; i < 9; ++i)
        EXPECT_EQ(f.Crop_Point[i], QRect(centres[i] - QPoint(k / 2, k / 2), QSize(k, k))) << "handle " << i;
    EXPECT_EQ(f.Line_Top.united(f.Line_Bottom).united(f.Line_Left).united(f.Line_Right), r);
    EXPECT_EQ(QPoint(f.Line_Right.right(), f.Line_Bottom.bottom()), QPoint(x1 - 1, y1 - 1));
    EXPECT_EQ(QRect(f.CropLeft, f.CropTop, f.BoundRight - f.CropLeft - f.CropRight,
                    f.BoundBottom - f.CropTop - f.CropBottom),
              r);
}

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

TEST(CropColumns, StoredInSourcePixelsAndSettledAfterOneRound) {
    // The item's margin columns open a rectangle on a 320 x 180 preview, rounding half to even; the
    // labels show the columns it stores, which open the same rectangle again. Each axis scales apart.
    struct Case {
        int sourceW, sourceH;
        StoredCrop columns;
        QRect rect;
        const char* labels;
    };
    // clang-format off
    const Case cases[] = {
        {1920, 1080, {60, 30, 120, 0, 0, 0}, {20, 10, 300, 165},
         "Top : 60|Buttom : 30|Left : 120|Right : 0|1800 x 990"},
        // Halves go to even: a margin of half a preview pixel goes, 2.5 pixels give 2.
        {1280, 720, {2, 10, 10, 3, 0, 0}, {2, 0, 317, 178},
         "Top : 0|Buttom : 8|Left : 8|Right : 4|1268 x 712"},
        // 2.25 x 2 = 4.5 gives 4.
        {720, 576, {3, 10, 16, 4, 0, 0}, {7, 1, 311, 176},
         "Top : 3|Buttom : 10|Left : 16|Right : 4|700 x 563"},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.labels);
        CropFrame f(320, 180);
        ASSERT_TRUE(f.Restore_CropRect(c.sourceW, c.sourceH, c.columns));
        EXPECT_EQ(f.Crop_Canves, c.rect);
        const CropInfo i = *f.Timer_GetCropInfo(c.sourceW, c.sourceH);
        EXPECT_EQ(QStringList({i.lbl_Top, i.lbl_Buttom, i.lbl_Left, i.lbl_Right, i.Txt_CropSize}).join('|'),
                  c.labels);
        ASSERT_TRUE(f.Restore_CropRect(c.sourceW, c.sourceH, *f.Stored_Crop(c.sourceW, c.sourceH)));
        EXPECT_EQ(f.Crop_Canves, c.rect);
    }
    // The pads show as they are. Without a size to scale by nothing is opened or stored.
    CropFrame f = Framed();
    f.PadTop = -12, f.PadBottom = 0, f.PadLeft = 7, f.PadRight = 8;
    const CropInfo i = *f.Timer_GetCropInfo(1920, 1080);
    EXPECT_EQ(QStringList({i.lbl_PadTop, i.lbl_PadButtom, i.lbl_PadLeft, i.lbl_PadRight}),
              QStringList({"Pad : -12", "Pad : 0", "Pad : 7", "Pad : 8"}));
    EXPECT_FALSE(f.Restore_CropRect(0, 1080, {1, 1, 1, 1, 0, 0}));
    EXPECT_EQ(f.Crop_Canves, QRect(40, 20, 240, 140));
    EXPECT_FALSE(CropFrame().Restore_CropRect(1920, 1080, {}));
    EXPECT_FALSE(CropFrame().Timer_GetCropInfo(1920, 1080));
}

TEST(CropDrag, HandlesMoveTheirEdgesAndTheCentreTheRectangleWithinTheBounds) {
    const int m = CropFrame::kMinSide;
    const std::tuple<int, int, int, QRect> cases[] = {
        {CropFrame::TopLeft, -10, -5, {30, 15, 250, 145}},
        {CropFrame::TopLeft, -100, -100, {0, 0, 280, 160}},       // both bounds
        {CropFrame::TopLeft, 500, 500, {280 - m, 160 - m, m, m}}, // stops short of the opposite edges
        {CropFrame::TopMid, 50, 10, {40, 30, 240, 130}},          // x ignored
        {CropFrame::TopRight, 10, -30, {40, 0, 250, 160}},
        {CropFrame::RightMid, 100, 40, {40, 20, 280, 140}},
        {CropFrame::BottomRight, -300, -300, {40, 20, m, m}},
        {CropFrame::BottomMid, 50, 5, {40, 20, 240, 145}},
        {CropFrame::BottomLeft, 10, 100, {50, 20, 230, 160}},
        {CropFrame::LeftMid, -15, 3, {25, 20, 255, 140}}, // y ignored; an odd width
        {CropFrame::Centre, -15, 7, {25, 27, 240, 140}},  // the centre keeps the size
        {CropFrame::Centre, 500, -500, {80, 0, 240, 140}},
        {CropFrame::Centre, -500, 500, {0, 40, 240, 140}},
    };
    for (const auto& [handle, dx, dy, expected] : cases) {
        SCOPED_TRACE(testing::Message() << "handle " << handle << " by " << dx << ',' << dy);
        CropFrame f = Framed();
        f.Crop_Point_MouseMove(handle, 4 + dx, 4 + dy); // a hover moves nothing
        EXPECT_EQ(f.Crop_Canves, QRect(40, 20, 240, 140));
        EXPECT_FALSE(f.Dirty);
        f.Crop_Point_MouseDown(handle, 4, 4);
        f.Crop_Point_MouseMove(handle, 4 + dx, 4 + dy);
        EXPECT_EQ(f.Crop_Canves, expected);
        ExpectPlacedOn(f, expected);
        EXPECT_TRUE(f.Dirty);
        f.MouseUp();
        f.Crop_Point_MouseMove(handle, 4, 4);
        EXPECT_EQ(f.Crop_Canves, expected);
    }
    // A rectangle wider than the bounds (restored from another preview) is held at the left bound; the
    // indexes that only place the handles, or none, move nothing.
    CropFrame wide(320, 180);
    wide.Set_CropRect(0, 0, 10, -20);
    wide.Crop_Canves_MouseDown(0, 0);
    for (const int index : {CropFrame::kPlaceOnly, -2, 9})
        wide.Drag_CropHandle(index, 30, 30);
    EXPECT_EQ(wide.Crop_Canves, QRect(10, 0, 330, 180));
    wide.Crop_Canves_MouseMove(5, 0);
    EXPECT_EQ(wide.Crop_Canves, QRect(0, 0, 330, 180));
}

TEST(CropAspect, ButtonsSetModeWordAndHighlightTheResetGoesBackToOriginal) {
    // The modes are stored and numbered apart from the buttons.
    const std::pair<int, const char*> buttons[] = {
        {kAspectOriginal, "Original"}, {kAspect169, "16:9"},        {kAspect43, "4:3"},
        {kAspectFull, "FullScreen"},   {kAspectPanScan, "PanScan"},
    };
    const auto expectPressed = [&buttons](const CropFrame& f, int pressed) {
        EXPECT_EQ(f.AspectMode, buttons[pressed].first);
        EXPECT_EQ(f.AspectText, buttons[pressed].second);
        for (int i = 0; i < 5; ++i)
            EXPECT_EQ(f.AspectButtonColour[static_cast<std::size_t>(i)],
                      i == pressed ? CropFrame::kHighlightColour : CropFrame::kFaceColour);
    };
    CropFrame f = Framed();
    const QRect shape(10, 20, 300, 200);
    for (const int index : {3, 1, 4, 0, 2}) {
        SCOPED_TRACE(index);
        f.Cmd_AspectRatio_Click(index);
        f.Cmd_AspectRatio_Click(5); // outside the row: nothing
        f.Cmd_AspectRatio_Click(-1);
        expectPressed(f, index);
        EXPECT_EQ(f.PreviewFrameRect(shape, QSize(320, 180)), index == 0 ? QRect(0, 0, 320, 180) : shape);
    }
    f.DeinterlaceOn = f.HandlesVisible = f.Dirty = false;
    f.Cmd_Reset1();
    expectPressed(f, 0);
    EXPECT_EQ(f.Crop_Canves, QRect(0, 0, 320, 180));
    EXPECT_TRUE(f.HandlesVisible && f.DeinterlaceOn && f.Dirty);
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
        {"1.78 fills",              cut, out, kAspectOriginal, 1.78f, {0, 0, 448, 252},  0, 0},
        {"1.77 fills",              cut, out, kAspectOriginal, 1.77f, {0, 0, 448, 252},  0, 0},
        {"16/9 is no 1.78",         cut, out, kAspectOriginal, 16.0f / 9, {56, 0, 336, 252}, 0, 160},
        {"1.33 is 4:3",             cut, out, kAspectOriginal, 1.33f, {64, 0, 320, 252}, 0, 192},
        {"16:9 stretches",          cut, out, kAspect169,      1.33f, {0, 0, 448, 252},  0, 0},
        {"FullScreen stretches",    cut, out, kAspectFull,     0,     {0, 0, 448, 252},  0, 0},
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

TEST(PreviewDraw, CutLandsWhereTheLayoutSaysWithEffectsOnThePictureOnly) {
    struct Case {
        const char* what;
        QSize output;
        int mode;
        const char* effects;
        std::vector<std::pair<QPoint, QRgb>> probes;
        int padLeft; // kept in the crop for the labels; a square cut never pads top and bottom here
    };
    // The cut is frame (32, 16) to (96, 80) in every case; the probes sit inside blocks.
    // clang-format off
    const Case cases[] = {
        {"twice the size", {128, 128}, kAspectOriginal, "",
         {{{16, 16}, B(2, 1)}, {{112, 112}, B(5, 4)}, {{48, 80}, B(3, 3)}}, 0},
        {"pillar box", {128, 64}, kAspectOriginal, "",
         {{{40, 8}, B(2, 1)}, {{88, 56}, B(5, 4)}, {{10, 30}, kBlack}, {{120, 30}, kBlack}}, 32},
        {"stretched", {256, 128}, kAspect169, "", {{{32, 16}, B(2, 1)}, {{224, 112}, B(5, 4)}}, 0},
        {"inverted, pads stay black", {128, 64}, kAspectOriginal, "Invert:255,",
         {{{40, 8}, Inverted(B(2, 1))}, {{10, 30}, kBlack}, {{120, 30}, kBlack}}, 32},
        {"flipped within the picture", {128, 64}, kAspectOriginal, "FlipH,",
         {{{40, 8}, B(5, 1)}, {{88, 56}, B(2, 4)}, {{10, 30}, kBlack}}, 32},
    };
    // clang-format on
    const QImage frame = Pattern();
    for (const Case& c : cases) {
        CropFrame crop(128, 96);
        crop.Set_CropRect(16, 16, 32, 32);
        crop.AspectMode = c.mode;
        crop.PadTop = 7;
        QImage out;
        ASSERT_TRUE(Draw_PreviewFrame(crop, frame, c.output, 0, c.effects, out)) << c.what;
        ASSERT_EQ(out.size(), c.output);
        ASSERT_EQ(out.format(), QImage::Format_RGB32);
        for (const auto& [at, want] : c.probes)
            EXPECT_TRUE(Near(out.pixel(at), want)) << c.what << " at " << at.x() << ',' << at.y() << ": "
                                                   << std::hex << out.pixel(at) << " instead of " << want;
        EXPECT_EQ((std::array{crop.PadTop, crop.PadBottom, crop.PadLeft, crop.PadRight}),
                  (std::array{0, 0, c.padLeft, c.padLeft}))
            << c.what;
    }
    // A stopped player gives no frame, a rectangle without width cuts nothing: neither draws nor pads.
    QImage out(10, 10, QImage::Format_RGB32);
    out.fill(Qt::red);
    const QImage before = out.copy();
    CropFrame crop(128, 96);
    crop.PadTop = 7;
    EXPECT_FALSE(Draw_PreviewFrame(crop, QImage(), QSize(320, 240), 0, "", out));
    crop.Set_CropRect(0, 0, 64, 64);
    EXPECT_FALSE(Draw_PreviewFrame(crop, frame, QSize(320, 240), 0, "", out));
    EXPECT_EQ(out, before);
    EXPECT_EQ(crop.PadTop, 7);
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
