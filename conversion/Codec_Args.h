// The codec tables of the argument builder: the encoder options for each codec label that the preset
// catalogue can hold. Labels compare exactly and case-sensitively; an unknown label gives "".
#pragma once

#include <QString>

#include <cstdint>

namespace morvane {

// bitDepth picks the sample format of the PCM labels ("8 bit" ... "32 bit").
QString audioCodecArgs(const QString& label, const QString& bitDepth);

// outWidth x outHeight picks the DV target; outputFormat the options of "Uncompressed" and the tag of
// "H.265/HEVC".
QString videoCodecArgs(const QString& label, std::int32_t outWidth, std::int32_t outHeight,
                       const QString& outputFormat);

} // namespace morvane
