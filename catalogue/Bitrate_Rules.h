// Bitrate rules of the preset settings: the video bitrate estimate, the bounds and the selectable
// ladder of video bitrates, and the audio bitrate lists by codec, sample rate, channels and sample
// size. Pure functions of their arguments over constant tables; any thread.
#pragma once

#include <QString>

#include <cstdint>

namespace morvane {

// Estimated video bitrate of a frame size at a frame rate text ("25 fps", "29.97 fps", "Original",
// "-") and a quality factor (4, 2, 1, or 0 when none is chosen). Kilobits per second when unit is 1,
// bits per second otherwise. Any run-time error (a rate text that is no number, the 32-bit overflow
// of width x height x fps x factor) gives 1500.
std::int32_t Auto_VideoBitrate(std::int32_t width, std::int32_t height, const QString& rateText,
                               std::int32_t quality, std::int32_t unit);

// Bounds of the video bitrate ladder for a frame size, in kbps.
std::int32_t Bitrate_Upper(std::int32_t width, std::int32_t height, std::int32_t maxRate);
std::int32_t Bitrate_Lower(std::int32_t width, std::int32_t height, std::int32_t maxRate);

// ";"-list of the selectable video bitrates: "-;" for a maxRate of 0, otherwise "Smart Fit;", the
// ladder values within the bounds as "N kbps;", and "Custom;".
QString VideoBitrate_List(std::int32_t width, std::int32_t height, std::int32_t maxRate);

// ";"-list of the audio bitrates; the arguments are the texts of the selected list items ("MP3",
// "44100 Hz", "Stereo", "16 bit"). A combination without a rule gives "".
QString AudioBitrate_List(const QString& codec, const QString& sampleRate, const QString& channels,
                          const QString& sampleSize);

} // namespace morvane
