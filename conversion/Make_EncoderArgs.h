// The encoder argument builder: for one list item and the current output preset, the option text in
// the FFmpeg command-line dialect that the encoder takes, plus the helpers it is made of (trim times,
// crop, pad and scale filters, aspect texts, fitted sizes). Pure functions of their arguments apart
// from the two process-wide texts below. Main thread only.
#pragma once

#include "Aspect_Text.h"
#include "Bitrate_Rules.h" // Auto_VideoBitrate belongs to the builder's rules as well
#include "CheckedMath.h"

#include <QString>

#include <cstdint>

namespace morvane {

// Written by Make_EncoderArgs: the output format of the last build (read by the output name logic),
// and the filter chain it assembled (cleared at the start of each build).
inline QString Output_Format;
inline QString Filter_Chain;

// Everything one build needs; job preparation fills it from the item's row and the preset fields.
struct EncoderParams {
    std::int32_t SrcWidth = 0;
    std::int32_t SrcHeight = 0;
    std::int32_t SrcFrameRate = 0;
    QString SrcAspect;          // decimal text, as Aspect_Text stores it
    std::int32_t OutWidth = 0;  // 0 keeps the size
    std::int32_t OutHeight = 0; // 0 keeps the size
    QString FrameRateText;      // "25 fps", "29.97 fps" or "Original"
    QString AspectMode;         // "Original", "16:9", "4:3", "Smart Fit", "FullScreen", "PanScan"
    QString VideoCodec;         // codec label; "No Video" turns video off
    QString VideoBitrate;       // kbps; "" computes it
    std::int32_t Quality = 0;   // 4, 2 or 1
    QString AudioCodec;         // codec label; "No Audio" turns audio off
    QString Format;             // output format, upper case
    std::int32_t Channels = 0;  // list index: 0 mono, 1 stereo, 2 six channels
    QString AudioBitrate;       // kbps, without "kbps"
    QString SampleRate;         // Hz, without "Hz"
    QString BitDepth;           // "8 bit", "16 bit", "24 bit", "32 bit"
    std::int32_t CropTop = 0;
    std::int32_t CropBottom = 0;
    std::int32_t CropLeft = 0;
    std::int32_t CropRight = 0;
    std::int32_t EditedWidth = 0; // picture size left by the edit workspace; the source size until edited
    std::int32_t EditedHeight = 0;
    std::int32_t PadTop = 0; // a negative pad asks for a cut instead
    std::int32_t PadBottom = 0;
    std::int32_t PadLeft = 0;
    std::int32_t PadRight = 0;
    QString PadColor;
    QString ExtraFilter; // appended to the filter chain when not ""
    bool IsMerge = false;
    std::int32_t MergeWidth = 0; // first list item's values when merging, else 0 and ""
    std::int32_t MergeHeight = 0;
    std::int32_t MergeFrameRate = 0;
    QString MergeAspect;
    QString TrimStartLow;  // halves of signed 64-bit microsecond counts as decimal texts;
    QString TrimStartHigh; // a low half of "" or "-1" means not set
    QString TrimEndLow;
    QString TrimEndHigh;
    QString Deinterlace; // "1" asks for deinterlacing
};

// The argument text for one output, or "-1" when a run-time error (division by zero, overflow, a
// frame rate text that is no number) occurs anywhere in the build. Sets Output_Format and
// Filter_Chain.
QString Make_EncoderArgs(const EncoderParams& params);

// " -ss " and the trim start in seconds, an input option; "" when the start is not set or its
// halves are no 32-bit numbers.
QString Make_SeekArgs(const QString& startLow, const QString& startHigh);

// " -t " and end less start in seconds; "" when the end is not set or a half is no 32-bit number.
QString Make_DurationArgs(const QString& startLow, const QString& startHigh, const QString& endLow,
                          const QString& endHigh);

// "crop=w:h:x:y" of a frame, "" when every crop is below 1. Throws RunTimeError on a 32-bit overflow.
QString Make_CropFilter(std::int32_t width, std::int32_t height, std::int32_t top, std::int32_t bottom,
                        std::int32_t left, std::int32_t right);

// "pad=w:h:x:y:colour" of the cropped frame with the pads made even, "" when no even pad reaches 1.
// When any crop is positive, width and height are reduced to the cropped size in place.
// Throws RunTimeError on a 32-bit overflow.
QString Make_PadFilter(std::int32_t& width, std::int32_t& height, std::int32_t cropTop,
                       std::int32_t cropBottom, std::int32_t cropLeft, std::int32_t cropRight,
                       std::int32_t padTop, std::int32_t padBottom, std::int32_t padLeft,
                       std::int32_t padRight, const QString& colour);

// Appends a filter to Filter_Chain, after a "," when the chain is not empty; "" is ignored.
void Add_Filter(const QString& filter);

// The side that keeps the proportion of sourceWidth x sourceHeight: with targetHeight -1 the height
// for targetWidth, with targetWidth -1 (this rule wins when both are -1) the width for targetHeight;
// 0 otherwise. Throws RunTimeError on a division by zero or a result outside 32 bits.
std::int32_t Fit_Size(std::int32_t sourceWidth, std::int32_t sourceHeight, std::int32_t targetWidth,
                      std::int32_t targetHeight);

} // namespace morvane
