// The input information panel of the main window: the eleven value texts for one row of the file
// list, in the panel's order. Pure functions of the row's cells.
#pragma once

#include "FileViewMain.h"

#include <QString>

#include <array>

namespace morvane {

inline constexpr int kInfoEntries = 11;

// Entries of lbl_InputFileValue.
enum InfoEntry : int {
    Info_FileName = 0,
    Info_Duration = 1,
    Info_FileSize = 2,
    Info_VideoCodec = 3,
    Info_FrameSize = 4,
    Info_FrameRate = 5,
    Info_VideoBitrate = 6,
    Info_Aspect = 7,
    Info_AudioCodec = 8,
    Info_SampleRate = 9,
    Info_Channels = 10,
};

using InfoTexts = std::array<QString, kInfoEntries>;

// The captions beside the values.
const InfoTexts& Info_Captions();
// The panel with no row: every value empty but the audio codec entry, which reads "-".
InfoTexts Info_Empty();
InfoTexts Info_Texts(const FileViewMain& table, int row);

} // namespace morvane
