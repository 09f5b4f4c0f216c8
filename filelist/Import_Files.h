// The import: a choice of files from the open dialog, or one path from the command channel, fed to
// Fill_Item one by one, with a wait window and cancel for several files and the failure report at
// the end. The dialog, the wait window and the main window are reached through interfaces, so that
// a window or a terminal can stand behind them. Main thread only.
#pragma once

#include "FFDecoder.h"
#include "FileViewMain.h"

#include <QString>
#include <QStringList>

namespace morvane {

// Lower-case extensions framed by bars; read by the command channel and the drop.
inline const QString Supported_Extensions = QStringLiteral(
    "|3gp|3gpp|3gp2|3g2|3gpp2|avi|ivf|div|divx|mts|m2ts|dv|vob|flv|f4v|flc|fli|m4v|mkv|mpg|mpeg|mpa|dat|"
    "mp4|mxf|dvr-ms|nsv|ogv|mov|qt|rm|rmvb|h264|tivo|ts|tp|trp|vro|wmv|asf|wtv|webm|amv|");

// True when the name's extension is not empty and stands in Supported_Extensions, case ignored.
bool Is_SupportedName(const QString& name);

// The open dialog's filter: its rows joined in order, each closing with its own "|" but the last.
QString Import_DialogFilter();

// Room of the import's path array; one entry more ends the import.
inline constexpr int kImportMaxEntries = 32000;

// Flags of the open dialog: the file must exist, several may be chosen, no read-only box.
inline constexpr int kImportDialogFlags = 4612;

struct OpenDialogRequest {
    int filterIndex = 1;
    QString filter;
    int flags = kImportDialogFlags;
    int maxFileSize = 80000;
    bool cancelError = false;
    QString fileName;
    QString initialDir;
};

// The multi-selection open dialog. The first path is the dialog's file name; an empty list or an
// empty first path is Cancel.
class FileDialog {
public:
    virtual ~FileDialog() = default;
    virtual QStringList Show_Open(const OpenDialogRequest& request) = 0;
};

// What the import asks of the main window, the wait window and the encoder's library.
class ImportHost {
public:
    virtual ~ImportHost() = default;

    // The encoder's library: loaded already, or loaded now from the folder; its error text.
    virtual bool LibraryLoaded() { return true; }
    virtual bool LoadLibrary(const QString& folder) {
        (void)folder;
        return true;
    }
    virtual QString LibraryErrorMessage() { return QString(); }

    // Main window.
    virtual void Set_MainEnabled(bool enabled) { (void)enabled; }
    virtual void Set_MainState(int state) = 0; // -1 list has items, 2 list empty
    virtual void Show_InputFileInfo(int row) = 0;
    virtual void Focus_Table() {}
    virtual void Refresh_Main() {}

    // Wait window in its import mode (labels, bar and the Cancel button shown).
    virtual void Wait_Show(int maximum) { (void)maximum; }
    virtual void Wait_Step(const QString& fileNo, const QString& file, int value) {
        (void)fileNo;
        (void)file;
        (void)value;
    }
    virtual void Wait_Close() {}
};

// Set by the wait window's Cancel; the import stops before the next file.
inline bool Wait_Cancel = false;

// Wait mode of the import (labels, bar and Cancel shown).
inline constexpr int kWaitMode_Import = 1;
inline int Wait_Mode = 0;

// The wait window's Cancel: sets the flag and gives the main window back.
void Wait_CancelPressed(ImportHost& host);

// The "I of N files" label; the last word stays plural at any count.
QString Wait_FileNoText(int index, int count);

// The end of every import (the dialog's, a drop's, a disc's): totals, the first row shown and focused
// or the empty state, then the failure report when anything failed.
void Import_Finish(FileViewMain& table, ImportHost& host);

void Import_Files(FileDialog& dialog, FileViewMain& table, const QString& path, FFDecoder& decoder,
                  ImportHost& host);

} // namespace morvane
