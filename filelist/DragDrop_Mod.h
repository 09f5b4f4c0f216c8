// Files and folders dropped on the main window: the dropped paths are walked (folders depth first),
// split into supported and refused names, and the supported ones imported one by one through
// Fill_Item with the wait window and cancel; refused and unreadable names end in the failure report.
//
// The window only forwards: its drag enter asks Drag_Accepts, its drop turns the data into paths
// with Drop_LocalPaths and hands them to On_DropFiles. On_DropFiles runs a nested event loop (the
// walk and the import yield at every file), so the window should call it from a queued call after
// its drop event has returned, never inside it: the file manager then gets its drop answered at once.
//
// Main thread only. The working lists are module state, as the disc import reads the refused list.
#pragma once

#include "FFDecoder.h"
#include "FileViewMain.h"
#include "Import_Files.h"
#include "Report_List.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

class QMimeData;

namespace morvane {

// First the raw dropped paths, later the refused names (full paths).
inline QStringList List_DragDrop;
// All files found, later only the supported ones.
inline QStringList List_DragTotalFile;
// Folders of the walk that could not be listed, with the system's reason; reported with the refused.
inline QList<ReportEntry> List_DragUnreadable;

inline const QString kDropRefusedText = QStringLiteral("File format not supported!");

// What the drop asks of the main window beyond the import's wants.
class DropHost : public ImportHost {
public:
    // True while a conversion runs or is paused: a drop then changes nothing.
    virtual bool Is_Converting() = 0;
    // Closes the tag popup when it is showing.
    virtual void Close_TagPopup() {}
    // Pic_DragDrop, the hint over the empty table.
    virtual void Set_DropHintVisible(bool visible) { (void)visible; }
};

// Local file paths of a drop's text/uri-list, in order. Only "file" URLs on this machine (no host,
// "localhost" or this machine's name) count; other schemes and remote hosts are left out. The raw
// form takes the data as delivered: lines ending in CR LF, "#" comment lines, percent-encoded names.
QStringList Drop_LocalPaths(const QList<QUrl>& urls);
QStringList Drop_LocalPaths(const QByteArray& uriList);
QStringList Drop_LocalPaths(const QMimeData& data);

// Whether a drag entering the main window is taken: no conversion, no drop in hand, and at least
// one local path in the data.
bool Drag_Accepts(const QMimeData& data, DropHost& host);

// The drop itself. Returns false, with nothing changed, while converting, while an earlier drop is
// still being handled, or with no path. Otherwise runs Add_DragFiles; a failure inside is shown in a
// message titled "Drag and Drop", and the main window is given back in every case.
bool On_DropFiles(const QStringList& paths, FileViewMain& table, FFDecoder& decoder, DropHost& host);

// Walks List_DragDrop into List_DragTotalFile with the wait window up, moves the refused names back
// to List_DragDrop and imports. Ends with the drop hint hidden and the tag popup closed. A cancel
// during the walk ends the drop with nothing imported and nothing reported.
void Add_DragFiles(FileViewMain& table, FFDecoder& decoder, DropHost& host);

// Appends every file under the folder to List_DragTotalFile, hidden ones too: first the folder's own
// files, then each sub folder in turn, names in case-blind order. Each file bumps the wait window's
// "Total File: N" counter and yields. A folder that can't be listed goes to List_DragUnreadable; a
// folder met twice (a link back up the tree) is walked once. False when Wait_Cancel stopped the walk.
bool Scan_Folder(const QString& folder, ImportHost& host);

// Imports List_DragTotalFile as the Add button's import does ("0 of N files" counted from 0), then
// reports List_DragUnreadable and List_DragDrop, clears the lists, closes the wait window and gives
// the main window back. A file that is gone, unreadable or not a regular file is reported, not probed.
void Import_Dropped(FileViewMain& table, FFDecoder& decoder, ImportHost& host);

} // namespace morvane
