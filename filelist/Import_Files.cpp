#include "Import_Files.h"

#include "FileList_Mods.h"
#include "File_Names.h"
#include "Folders_Mods.h"
#include "Globals.h"
#include "Library_List.h"
#include "Registry_Mod.h"
#include "Report_List.h"
#include "mMain.h"

#include <QFileInfo>

#include <cerrno>

namespace morvane {

namespace {

// The first row of the dialog's filter; the catalogue holds the others in order.
constexpr const char* kAllSupportedRow =
    "All Supported Video Files|*.3gp;*.3gpp;*.3gp2;*.3g2;*.3gpp2;*.avi;*.ivf;*.div;*.divx;*.mts;*.m2ts;*.dv;"
    "*.vob;*.flv;*.f4v;*.flc;*.fli;*.m4v;*.mkv;*.mpg;*.mpeg;*.mpa;*.dat;*.mp4;*.mxf;*.dvr-ms;*.nsv;*.ogv;"
    "*.mov;*.qt;*.rm;*.rmvb;*.h264;*.tivo;*.ts;*.tp;*.trp;*.vro;*.wmv;*.asf;*.wtv;*.webm;*.amv;|";

} // namespace

bool Is_SupportedName(const QString& name) {
    const QString extension = File_ExtensionName(name).toLower();
    if (extension.isEmpty()) return false;
    return Supported_Extensions.contains(QLatin1Char('|') + extension + QLatin1Char('|'),
                                         Qt::CaseInsensitive);
}

QString Import_DialogFilter() {
    return QString::fromLatin1(kAllSupportedRow) + Filter_Video();
}

void Wait_CancelPressed(ImportHost& host) {
    Wait_Cancel = true;
    host.Set_MainEnabled(true);
}

QString Wait_FileNoText(int index, int count) {
    return QString::number(index) + QStringLiteral(" of ") + QString::number(count) +
           QStringLiteral(" files");
}

void Import_Finish(FileViewMain& table, ImportHost& host) {
    Update_Totals(table);
    if (table.rows() > 0) {
        host.Set_MainState(-1);
        table.selectRow(0);
        host.Show_InputFileInfo(table.selectedRows().first());
        host.Focus_Table();
    } else {
        host.Set_MainState(2);
    }

    host.Refresh_Main();
    Yield_Events();
    Report_Show(QStringLiteral("Failed"), QStringLiteral("Failed to import files!"));
}

void Import_Files(FileDialog& dialog, FileViewMain& table, const QString& path, FFDecoder& decoder,
                  ImportHost& host) {
    QStringList chosen;
    if (Trim_Spaces(path).isEmpty()) {
        OpenDialogRequest request;
        request.filter = Import_DialogFilter();
        request.initialDir = Path_Input;
        chosen = dialog.Show_Open(request);
        Yield_Events();
        if (chosen.isEmpty() || chosen.first().isEmpty()) return;
    } else {
        chosen = QStringList{path};
    }
    const QString fileName = chosen.first();

    Write_Setting(REGISTRY_PRODUCT, QStringLiteral("InputPath"), File_ParentFolder(fileName));

    if (!host.LibraryLoaded() && !host.LoadLibrary(Folder_Libs)) {
        Show_Message(host.LibraryErrorMessage(), MB_ICONCRITICAL, QString());
        return;
    }

    Yield_Events();
    QStringList entries;
    for (const QString& entry : chosen) {
        const QString trimmed = Trim_Spaces(entry);
        if (trimmed.isEmpty()) break;
        // The array has no room past its last entry: the import ends with the list as it stands.
        if (entries.size() == kImportMaxEntries) return;
        entries.append(trimmed);
    }

    Wait_Cancel = false;
    bool waitShown = false;
    if (entries.size() == 1) {
        Fill_Item(entries.first(), 0, table, decoder);
    } else if (entries.size() > 1) {
        const int count = static_cast<int>(entries.size());
        host.Set_MainEnabled(false);
        Wait_Mode = kWaitMode_Import;
        host.Wait_Show(count);
        waitShown = true;
        for (int i = 1; i <= count; ++i) {
            const QString& entry = entries.at(i - 1);
            if (!QFileInfo(entry).isFile()) {
                // A missing file keeps its short word; one in a folder we may not enter says why.
                const int error = Path_UnreadableError(entry);
                Report_Add(File_ReportName(entry), error == 0 || error == ENOENT
                                                       ? QStringLiteral("File not found!")
                                                       : Path_UnreadableReason(entry));
                continue;
            }
            host.Wait_Step(Wait_FileNoText(i, count), File_ReportName(entry), i);
            if (Wait_Cancel) break;
            Fill_Item(entry, 0, table, decoder);
        }
    }

    table.redraw();
    Yield_Events();
    if (waitShown) {
        host.Wait_Close();
        Yield_Events();
        host.Set_MainEnabled(true);
    }

    Import_Finish(table, host);
    Path_Input = fileName;
}

} // namespace morvane
