#include "Make_EncoderArgs.h"

#include "Codec_Args.h"
#include "mMain.h"

namespace morvane {

namespace {

QString number(std::int32_t value) {
    return QString::number(value);
}

// Seconds of a microsecond count as the plain decimal text of the time options.
QString secondsText(std::int64_t microseconds) {
    return Format_Double(Time_ToSeconds(microseconds)).replace(QLatin1Char(','), QLatin1Char('.'));
}

bool timeNotSet(const QString& low) {
    return low.isEmpty() || low == QLatin1String("-1");
}

std::int64_t timeFromTexts(const QString& low, const QString& high) {
    return Time_FromPair(textToInt32(low), textToInt32(high));
}

// The build itself; every run-time error leaves it as RunTimeError.
QString buildArgs(EncoderParams p) {
    Filter_Chain.clear();

    std::int32_t frameRate = 0;
    if (p.FrameRateText != QLatin1String("Original")) {
        QString rate = p.FrameRateText;
        rate.remove(QStringLiteral("fps"));
        frameRate = textToInt32(Trim_Spaces(rate));
    } else {
        // A source at 100 fps or more is written at 30 (29.97 rounded).
        frameRate = p.SrcFrameRate >= 100 ? 30 : p.SrcFrameRate;
    }

    QString aspect;
    if (p.AspectMode == QLatin1String("Original")) {
        aspect = p.SrcAspect;
    } else if (p.AspectMode == QLatin1String("16:9") || p.AspectMode == QLatin1String("4:3")) {
        aspect = p.AspectMode;
    } else if (p.AspectMode == QLatin1String("Smart Fit") || p.AspectMode == QLatin1String("FullScreen") ||
               p.AspectMode == QLatin1String("PanScan")) {
        aspect = p.OutWidth == 0 && p.OutHeight == 0 ? Aspect_Ratio(p.EditedWidth, p.EditedHeight)
                                                     : Aspect_Ratio(p.SrcWidth, p.SrcHeight);
    }

    // Merged pieces must share the first item's size, rate and aspect, or the join fails.
    if (p.IsMerge) {
        if (p.OutWidth == 0 || p.OutHeight == 0) {
            p.OutWidth = p.MergeWidth;
            p.OutHeight = p.MergeHeight;
        }
        if (p.FrameRateText == QLatin1String("Original")) frameRate = p.MergeFrameRate;
        if (p.AspectMode == QLatin1String("Original")) aspect = p.MergeAspect;
    }

    const bool hasVideo = p.VideoCodec != QLatin1String("No Video");
    const bool hasAudio = p.AudioCodec != QLatin1String("No Audio");
    Output_Format = p.Format;

    QString args = QStringLiteral("-VideoOutputHook ");

    if (hasAudio) {
        if (p.Channels == 0)
            args += QStringLiteral(" -ac 1");
        else if (p.Channels == 1)
            args += QStringLiteral(" -ac 2");
        else if (p.Channels == 2)
            args += QStringLiteral(" -ac 6");
        args += QStringLiteral(" -ar ") + p.SampleRate;
        args += QStringLiteral(" -ab ") + number(Parse_IntOr(p.AudioBitrate, 64)) + QLatin1Char('k');
        args += audioCodecArgs(p.AudioCodec, p.BitDepth);
    } else {
        args += QStringLiteral(" -an ");
    }

    QString size;
    if (!hasVideo) {
        args += QStringLiteral(" -vn");
    } else {
        size = number(p.OutWidth) + QLatin1Char(':') + number(p.OutHeight);
        if (size == QLatin1String("0:0"))
            size = number(p.EditedWidth) + QLatin1Char(':') + number(p.EditedHeight);
        args += QStringLiteral(" -r ") + number(frameRate);
        args += QStringLiteral(" -aspect ") + aspect;

        std::int32_t bitrate = 0;
        if (!p.VideoBitrate.isEmpty()) {
            bitrate = Parse_IntOr(p.VideoBitrate, 200);
        } else {
            const std::int32_t estimate =
                p.OutWidth != 0 && p.OutHeight != 0
                    ? Auto_VideoBitrate(p.OutWidth, p.OutHeight, p.FrameRateText, p.Quality, 1)
                    : Auto_VideoBitrate(p.SrcWidth, p.SrcHeight, p.FrameRateText, p.Quality, 1);
            // Through the 16-bit guard as well: an estimate above 32767 is written as 200, on purpose.
            bitrate = Parse_IntOr(number(estimate), 200);
        }
        args += QStringLiteral(" -vb ") + number(bitrate) + QLatin1Char('k');
        args += videoCodecArgs(p.VideoCodec, p.OutWidth, p.OutHeight, Output_Format);
        if (p.Deinterlace == QLatin1String("1")) args += QStringLiteral(" -deinterlace");
    }

    args += Make_DurationArgs(p.TrimStartLow, p.TrimStartHigh, p.TrimEndLow, p.TrimEndHigh);

    if (hasVideo) {
        // A negative pad asks to fill the frame by cutting the picture instead: the crop grows on
        // both sides so that the picture keeps the proportion of the source.
        if (p.PadTop < 0 || p.PadBottom < 0) {
            p.PadTop = 0;
            p.PadBottom = 0;
            const std::int32_t width = subChecked(p.SrcWidth, addChecked(p.CropRight, p.CropLeft));
            const std::int32_t wanted = Fit_Size(p.SrcWidth, p.SrcHeight, width, -1);
            const std::int32_t excess =
                subChecked(subChecked(p.SrcHeight, addChecked(p.CropTop, p.CropBottom)), wanted);
            p.CropTop = roundToInt32(excess / 2.0 + p.CropTop);
            p.CropBottom = roundToInt32(excess / 2.0 + p.CropBottom);
        }
        if (p.PadLeft < 0 || p.PadRight < 0) {
            p.PadLeft = 0;
            p.PadRight = 0;
            const std::int32_t height = subChecked(p.SrcHeight, addChecked(p.CropTop, p.CropBottom));
            const std::int32_t wanted = Fit_Size(p.SrcWidth, p.SrcHeight, -1, height);
            const std::int32_t excess =
                subChecked(subChecked(p.SrcWidth, addChecked(p.CropRight, p.CropLeft)), wanted);
            p.CropLeft = roundToInt32(excess / 2.0 + p.CropLeft);
            p.CropRight = roundToInt32(excess / 2.0 + p.CropRight);
        }
        Add_Filter(
            Make_CropFilter(p.SrcWidth, p.SrcHeight, p.CropTop, p.CropBottom, p.CropLeft, p.CropRight));
        Add_Filter(Make_PadFilter(p.SrcWidth, p.SrcHeight, p.CropTop, p.CropBottom, p.CropLeft, p.CropRight,
                                  p.PadTop, p.PadBottom, p.PadLeft, p.PadRight, p.PadColor));
        Add_Filter(QStringLiteral(" scale=") + size);
        if (!p.ExtraFilter.isEmpty()) Add_Filter(p.ExtraFilter);
    }

    if (!Filter_Chain.isEmpty()) args += QStringLiteral(" -vf \"") + Filter_Chain + QLatin1Char('"');
    return args;
}

} // namespace

QString Make_EncoderArgs(const EncoderParams& params) {
    try {
        return buildArgs(params);
    } catch (const RunTimeError&) {
        return QStringLiteral("-1");
    }
}

QString Make_SeekArgs(const QString& startLow, const QString& startHigh) {
    if (timeNotSet(startLow)) return QString();
    try {
        return QStringLiteral(" -ss ") + secondsText(timeFromTexts(startLow, startHigh));
    } catch (const RunTimeError&) {
        return QString();
    }
}

QString Make_DurationArgs(const QString& startLow, const QString& startHigh, const QString& endLow,
                          const QString& endHigh) {
    if (timeNotSet(endLow)) return QString();
    try {
        const std::int64_t start = timeFromTexts(startLow, startHigh);
        const std::int64_t end = timeFromTexts(endLow, endHigh);
        std::int64_t length = 0;
        if (__builtin_sub_overflow(end, start, &length)) throw RunTimeError("overflow");
        return QStringLiteral(" -t ") + secondsText(length);
    } catch (const RunTimeError&) {
        return QString();
    }
}

QString Make_CropFilter(std::int32_t width, std::int32_t height, std::int32_t top, std::int32_t bottom,
                        std::int32_t left, std::int32_t right) {
    // Negative crops are not clamped: only this test keeps them out.
    if (top < 1 && bottom < 1 && left < 1 && right < 1) return QString();
    return QStringLiteral("crop=") + number(subChecked(subChecked(width, left), right)) + QLatin1Char(':') +
           number(subChecked(subChecked(height, top), bottom)) + QLatin1Char(':') + number(left) +
           QLatin1Char(':') + number(top);
}

QString Make_PadFilter(std::int32_t& width, std::int32_t& height, std::int32_t cropTop,
                       std::int32_t cropBottom, std::int32_t cropLeft, std::int32_t cropRight,
                       std::int32_t padTop, std::int32_t padBottom, std::int32_t padLeft,
                       std::int32_t padRight, const QString& colour) {
    if (cropTop > 0 || cropBottom > 0 || cropLeft > 0 || cropRight > 0) {
        width = subChecked(width, addChecked(cropLeft, cropRight));
        height = subChecked(height, addChecked(cropTop, cropBottom));
    }
    // Encoders want even sizes: each pad is halved towards zero and doubled.
    const auto even = [](std::int32_t pad) { return pad / 2 * 2; };
    padTop = even(padTop);
    padBottom = even(padBottom);
    padLeft = even(padLeft);
    padRight = even(padRight);
    if (padTop < 1 && padBottom < 1 && padLeft < 1 && padRight < 1) return QString();
    return QStringLiteral("pad=") + number(addChecked(addChecked(width, padLeft), padRight)) +
           QLatin1Char(':') + number(addChecked(addChecked(height, padTop), padBottom)) + QLatin1Char(':') +
           number(padLeft) + QLatin1Char(':') + number(padTop) + QLatin1Char(':') + colour;
}

void Add_Filter(const QString& filter) {
    if (filter.isEmpty()) return;
    if (Filter_Chain.isEmpty())
        Filter_Chain = filter;
    else
        Filter_Chain += QLatin1Char(',') + filter;
}

} // namespace morvane
