// The properties of one item of the file list as the texts its window shows: what the file system
// says of the source (type, size, times, attributes) and what the probe left in the row's cells. No
// widgets: the window only lays these out. Reads the table and the disk and changes nothing.
// Main thread only, as the table is.
#pragma once

#include "FileViewMain.h"

#include <QDateTime>
#include <QString>

#include <array>

namespace morvane {

// The value rows, in the window's order: the file, its streams, then its tags.
enum PropertyEntry : int {
    Prop_Name = 0,
    Prop_Extension,
    Prop_Type,
    Prop_Size,
    Prop_Created,
    Prop_Accessed,
    Prop_Modified,
    Prop_Attributes,
    Prop_Duration,
    Prop_VideoCodec,
    Prop_FrameSize,
    Prop_VideoBitRate,
    Prop_FrameRate,
    Prop_Aspect,
    Prop_AudioCodec,
    Prop_AudioBitRate,
    Prop_SampleRate,
    Prop_Channels,
    Prop_Title,
    Prop_Comment,
    Prop_Author,
    Prop_Album,
    Prop_Year,
    Prop_Track,
    Prop_Genre,
    Prop_Copyright,
    Prop_Count
};

using PropertyTexts = std::array<QString, Prop_Count>;

// "Name :", "Extension :" ... in entry order; the video and audio rows share "Codec :" and "Bit Rate :".
const PropertyTexts& Property_Captions();

struct FileProperties {
    QString fileName;  // column 6
    QString path;      // column 7 + column 6
    QString thumbnail; // column 60, "" when the probe drew no picture
    PropertyTexts values;
};

// A row out of range gives empty paths and every value "Not Available". A source that is gone
// leaves the rows that the file system fills (type to attributes) "Not Available"; the rest comes
// from the row. A stream the row hasn't got shows "Not Available" in all its rows.
FileProperties Read_Properties(const FileViewMain& table, int row);

// The texts that mean "nothing known" once trimmed: "", "0", "x", "-1 x -1", "-1", "1:1".
bool Is_NotAvailable(const QString& text);

// Bytes below 1024 as "n bytes", else the unit (kB to YB, steps of 1024) where the number keeps three
// significant digits: "1.00 kB", "10.0 kB", "100 kB". A text that is no number gives "".
QString Format_FileSize(const QString& value);
QString Format_FileSize(qint64 bytes);

// "Tuesday, March 05, 2024, 02:07:09 PM", in English; "" for an invalid time.
QString Format_FileTime(const QDateTime& time);

// A short description by extension ("MPEG-4 video"), or the extension in capitals and " File".
QString File_TypeText(const QString& path);

// "Hidden" (a leading dot), "Read-only" (the mode bits that apply to this user forbid writing) or
// else "Normal", then the permission bits ("rw-r--r--") and "Owner: name", joined by ", ".
// "" when the file can't be read.
QString File_Attributes(const QString& path);

} // namespace morvane
