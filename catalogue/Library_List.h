// Value libraries of the preset settings, the file type filters of the open and save dialogs, and
// the display labels of the information panels. Pure functions over constant tables; any thread.
#pragma once

#include <QString>

namespace morvane {

// Entries of a value library (1 frame sizes, 2 frame rates, 3 aspect ratios), each closed by ";".
// Any other kind gives "".
QString Library_List(int kind);

// Filter texts of the file dialogs: pairs of a description and a pattern, separated by "|".
QString Filter_Video();
QString Filter_Image();
// A filter text of the form above in the form of Qt's file dialogs: "Description (*.a *.b)" per row,
// joined by ";;".
QString Qt_DialogFilter(const QString& windowsFilter);

// "-1" and "0" stand as given; otherwise whole kilobits ("128000" reads "128 kbps"). A value that
// is no number gives "".
QString Bitrate_Label(const QString& value);
// "1 Channel (Mono)", "2 Channels (Stereo)", "6 Channels"; "-1" and "0" stand as given.
QString Channels_Label(const QString& value);
// The aspect decimal text as a ratio to 1 with its common name where it has one.
QString Aspect_Label(const QString& value);

} // namespace morvane
