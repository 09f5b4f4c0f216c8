#include "Preview_Frame.h"

#include "CheckedMath.h"
#include "Effect_Chain.h"
#include "Make_EncoderArgs.h"

#include <QPainter>

namespace morvane {

PreviewInput PreviewInputOf(const CropFrame& crop, QSize outputSize, float playerAspect) {
    PreviewInput in;
    in.PreviewSize = QSize(crop.BoundRight, crop.BoundBottom);
    in.CropSize = crop.Crop_Canves.size();
    in.CropLeft = crop.CropLeft;
    in.CropTop = crop.CropTop;
    in.OutputSize = outputSize;
    in.AspectMode = crop.AspectMode;
    in.PlayerAspect = playerAspect;
    return in;
}

std::optional<PreviewLayout> Layout_PreviewFrame(QSize frame, const PreviewInput& in) {
    try {
        const std::int32_t SW = in.OutputSize.width(), SH = in.OutputSize.height();
        // The cut in frame pixels.
        const std::int32_t cw = Scale_ToSource(in.PreviewSize.width(), frame.width(), in.CropSize.width());
        const std::int32_t ch = Scale_ToSource(in.PreviewSize.height(), frame.height(), in.CropSize.height());

        // Fit the cut into the output, keeping its shape.
        std::int32_t W = 0, H = 0;
        if (cw >= ch) {
            W = SW;
            H = Fit_Size(cw, ch, W, -1);
        }
        if (H > SH || cw < ch) {
            H = SH;
            W = Fit_Size(cw, ch, -1, H);
        }

        // 5/7 of a 16:9 output frame is its 4:3 share, kept in whole pixels.
        const std::int32_t fourThirds = 5 * (SW / 7);
        switch (in.AspectMode) {
        case kAspect169:
        case kAspectFull:
            W = SW;
            H = SH;
            break;
        case kAspect43:
            W = fourThirds;
            H = SH;
            break;
        case kAspectOriginal:
            // The player holds the aspect as a single, read from text: only these exact values match.
            if (in.PlayerAspect == 1.78f || in.PlayerAspect == 1.77f) {
                W = SW;
                H = SH;
            } else if (in.PlayerAspect == 1.33f) {
                W = fourThirds;
                H = SH;
            }
            break;
        case kAspectPanScan:
            // Grow until the frame is filled; what reaches past it is cut.
            if (H < SH) {
                H = SH;
                W = Fit_Size(cw, ch, -1, H);
            } else {
                W = SW;
                H = Fit_Size(cw, ch, W, -1);
            }
            break;
        default:
            break;
        }

        PreviewLayout out;
        out.Picture = QRect((SW - W) / 2, (SH - H) / 2, W, H);
        out.Source = QRect(Scale_ToSource(in.PreviewSize.width(), frame.width(), in.CropLeft),
                           Scale_ToSource(in.PreviewSize.height(), frame.height(), in.CropTop), cw, ch);
        out.PadTop = Scale_ToSource(H, ch, (SH - H) / 2);
        out.PadBottom = out.PadTop;
        out.PadLeft = Scale_ToSource(W, cw, (SW - W) / 2);
        out.PadRight = out.PadLeft;
        return out;
    } catch (const RunTimeError&) {
        return std::nullopt;
    }
}

std::optional<PreviewLayout> Draw_PreviewFrame(const QImage& frame, const PreviewInput& in,
                                               const QString& effects, QImage& output, std::uint32_t seed) {
    if (frame.isNull()) return std::nullopt;
    const std::optional<PreviewLayout> layout = Layout_PreviewFrame(frame.size(), in);
    if (!layout) return std::nullopt;

    if (output.size() != in.OutputSize || output.format() != QImage::Format_RGB32)
        output = QImage(in.OutputSize, QImage::Format_RGB32);
    if (output.isNull()) return std::nullopt; // no memory for the output
    output.fill(Qt::black);
    {
        QPainter painter(&output);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(QRectF(layout->Picture), frame, QRectF(layout->Source));
    }

    // The effects run over the visible picture as a frame of its own; the black around it stays black.
    const QRect visible = layout->Picture & output.rect();
    if (!visible.isEmpty()) {
        const int stride = static_cast<int>(output.bytesPerLine());
        std::uint8_t* bits = output.bits() + visible.y() * stride + visible.x() * 4;
        imaging::Run_EffectChain(imaging::Frame{bits, visible.width(), visible.height(), stride},
                                 effects.toStdString(), seed);
    }
    return layout;
}

bool Draw_PreviewFrame(CropFrame& crop, const QImage& frame, QSize outputSize, float playerAspect,
                       const QString& effects, QImage& output, std::uint32_t seed) {
    const std::optional<PreviewLayout> layout =
        Draw_PreviewFrame(frame, PreviewInputOf(crop, outputSize, playerAspect), effects, output, seed);
    if (!layout) return false;
    crop.PadTop = layout->PadTop;
    crop.PadBottom = layout->PadBottom;
    crop.PadLeft = layout->PadLeft;
    crop.PadRight = layout->PadRight;
    return true;
}

QImage Render_ThumbNail(const QImage& source, const QString& effects) {
    QImage picture = source.convertToFormat(QImage::Format_RGB32);
    if (picture.isNull()) return picture;
    // bits() detaches: the chain writes in place and the source stays as it is.
    imaging::Run_EffectChain(imaging::Frame{picture.bits(), picture.width(), picture.height(),
                                            static_cast<int>(picture.bytesPerLine())},
                             effects.toStdString());
    return picture;
}

QString ThumbNail_FileName(const QString& caption) {
    return QStringLiteral("img_") + QString(caption).replace(QLatin1Char(' '), QLatin1Char('_')) +
           QStringLiteral(".bmp");
}

} // namespace morvane
