// Whole-file reads and writes for table files, shared by the catalogue and the table tool, which
// links nothing else of the catalogue. A read refuses a file too large to be a table; a write goes
// to a temporary file beside the target, is flushed to the disk and renamed into place, so that a
// failure (a full disk, a folder without room or rights) leaves any earlier file whole.
// Any thread; no state.
#pragma once

#include <QByteArray>
#include <QString>

namespace morvane {

// The largest table file taken in. The shipped catalogue is a few hundred kilobytes; anything near
// this is not a table, and reading it whole would only exhaust memory.
inline constexpr qint64 TableFile_MaxBytes = 64 * 1024 * 1024;

// Reads the whole file. "" on success, else why not, in words the caller puts behind the file's name
// ("Permission denied", "the file is larger than 64 MiB ...").
QString Read_TableBytes(const QString& path, QByteArray& bytes);

// Replaces the file's contents with `bytes`, all or nothing. A link is followed and the file it names
// is replaced, keeping its permissions. An existing target that is no regular file (a device, a
// pipe) is written directly: there is nothing there to keep. "" on success, else the system's words.
QString Write_TableBytes(const QString& path, const QByteArray& bytes);

} // namespace morvane
