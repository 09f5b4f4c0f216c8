// The edit window's live preview: where the cut part of the player's frame lands in the output frame
// for the chosen aspect, the pads that this leaves (what the conversion will add or cut), and the
// drawing itself with the effect list applied, so that the preview shows what the output will. Also
// the thumbnail tool's pictures of the effects. Main thread; the layout is a pure function.
#pragma once

#include "Crop_Mods.h"

#include <QImage>
#include <QRect>
#include <QSize>
#include <QString>

#include <cstdint>
#include <optional>

namespace morvane {

// What the drawing needs besides the frame itself.
struct PreviewInput {
    QSize PreviewSize;                      // picPreview's scale size: the crop's bounds
    QSize CropSize;                         // Crop_Canves, preview pixels
    std::int32_t CropLeft = 0, CropTop = 0; // preview pixels; the rectangle's size gives the rest
    QSize OutputSize;                       // SW x SH, the preview's output frame
    std::int32_t AspectMode = kAspectOriginal;
    float PlayerAspect = 0; // the player's Aspect (item column 20)
};
PreviewInput PreviewInputOf(const CropFrame& crop, QSize outputSize, float playerAspect);

struct PreviewLayout {
    QRect Source;  // the cut part of the frame, frame pixels (cw x ch)
    QRect Picture; // where it lands in the output frame; may reach past it for "PanScan"
    std::int32_t PadTop = 0, PadBottom = 0, PadLeft = 0, PadRight = 0; // source pixels
};

// The layout for a frame of that size; nothing when a size on the way is 0 or a number leaves 32 bits.
std::optional<PreviewLayout> Layout_PreviewFrame(QSize frame, const PreviewInput& in);

// Paints the cut part of `frame` (the player's, RGB32) scaled onto the picture's place in `output`,
// which becomes an SW x SH RGB32 image, black around the picture, then runs the effect list over the
// picture. A null frame (stopped player) or a layout that fails draws nothing and leaves `output` as
// it was. `seed` feeds the noise-like effects.
std::optional<PreviewLayout> Draw_PreviewFrame(const QImage& frame, const PreviewInput& in,
                                               const QString& effects, QImage& output,
                                               std::uint32_t seed = 0);

// One tick of the preview timer: draws with the crop's state and keeps the pads in it. False when
// nothing was drawn; the pads then keep their values.
bool Draw_PreviewFrame(CropFrame& crop, const QImage& frame, QSize outputSize, float playerAspect,
                       const QString& effects, QImage& output, std::uint32_t seed = 0);

// The thumbnail tool: a copy of the source picture with the effect list run over it.
QImage Render_ThumbNail(const QImage& source, const QString& effects);
// Its file names: "img_" + caption with "_" for each blank + ".bmp"; kCurrentThumbNail for the list
// as it stands.
QString ThumbNail_FileName(const QString& caption);
inline const QString kCurrentThumbNail = QStringLiteral("img_Current.bmp");

} // namespace morvane
