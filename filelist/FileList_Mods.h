// Probing: one path into one complete row of the file table, or into one line of the failure
// report. The decoder is handed in, so that tests can put a fake in its place. Main thread only.
#pragma once

#include "FFDecoder.h"
#include "FileViewMain.h"

#include <QString>

namespace morvane {

// Size of the hidden picture that thumbnails are drawn into, which is the thumbnail's size.
inline constexpr int kThumbnailWidth = 160;
inline constexpr int kThumbnailHeight = 120;
// Whole seconds into the file where the thumbnail is taken, when the file is that long.
inline constexpr int kThumbnailSecond = 7;

// Probe mode of the disc import: titles shorter than one second fall away without a report line.
inline constexpr int kFillMode_Disc = 2;

// The text from the first "(" on, trimmed, less a leading "(" and a trailing ")"; a text without a
// bracket as it stands. "h264 (Main)" gives "Main".
QString Strip_Brackets(const QString& text);

// Appends one row for an accepted source, or one report line for a refused one (none in disc mode
// for a title under a second). Afterwards the table's last row, old or new, is set Ready.
void Fill_Item(const QString& path, int mode, FileViewMain& table, FFDecoder& decoder);

} // namespace morvane
