#include "DragDrop_Mod.h"

#include "FileList_Mods.h"
#include "File_Names.h"
#include "Folders_Mods.h"
#include "Globals.h"
#include "mMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMimeData>
#include <QSet>
#include <QSysInfo>

#include <sys/stat.h>

#include <cerrno>
#include <exception>
#include <utility>

namespace morvane {

namespace {

// A drop in hand: the walk and the import yield, and a second drop must not reuse the lists.
bool s_dropRunning = false;

bool isThisMachine(const QString& host) {
    return host.isEmpty() || host.compare(QStringLiteral("localhost"), Qt::CaseInsensitive) == 0 ||
           host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0;
}

// Folders are told apart by device and inode, so that a link or a bind mount back up the tree
// can't send the walk round for ever.
using FolderKey = QPair<quint64, quint64>;

bool scanFolder(QString folder, ImportHost& host, QSet<FolderKey>& seen) {
    if (!folder.endsWith(QLatin1Char('/'))) folder += QLatin1Char('/');
    const QString reason = Path_UnreadableReason(folder);
    if (!reason.isEmpty()) {
        List_DragUnreadable.append({folder, reason});
        return true;
    }
    struct stat info {};
    if (::stat(QFile::encodeName(folder).constData(), &info) == 0) {
        const FolderKey key(static_cast<quint64>(info.st_dev), static_cast<quint64>(info.st_ino));
        if (seen.contains(key)) return true;
        seen.insert(key);
    }

    // System brings FIFOs, sockets and dangling links along: every name is taken here, the
    // extension and the import's own test decide later.
    const QFileInfoList entries = QDir(folder).entryInfoList(
        QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System, QDir::Name | QDir::IgnoreCase);
    QStringList folders;
    for (const QFileInfo& entry : entries) {
        if (entry.isDir()) {
            folders.append(entry.fileName());
            continue;
        }
        List_DragTotalFile.append(folder + entry.fileName());
        const int count = static_cast<int>(List_DragTotalFile.size());
        host.Wait_Step(QStringLiteral("Total File: ") + QString::number(count), entry.fileName(), count);
        Yield_Events();
        if (Wait_Cancel) return false;
    }
    for (const QString& name : std::as_const(folders))
        if (!scanFolder(folder + name, host, seen)) return false;
    return true;
}

// Why a file of the list can't be probed, or "" when it can. The probe would block for ever on a
// FIFO and fail with less clear words on the rest.
QString fileUnusableReason(const QString& path) {
    const int error = Path_UnreadableError(path);
    if (error == ENOENT || error == ENOTDIR) return QStringLiteral("File not found!");
    if (error != 0) return Path_UnreadableReason(path);
    if (!QFileInfo(path).isFile()) return QStringLiteral("Not a regular file");
    return QString();
}

void clearLists() {
    List_DragDrop.clear();
    List_DragTotalFile.clear();
    List_DragUnreadable.clear();
}

} // namespace

QStringList Drop_LocalPaths(const QList<QUrl>& urls) {
    QStringList paths;
    for (const QUrl& url : urls) {
        if (!url.isValid() || !url.isLocalFile() || !isThisMachine(url.host())) continue;
        // Not toLocalFile(): it keeps a host, even "localhost", as "//host/..." in front.
        const QString path = url.path(QUrl::FullyDecoded);
        if (path.startsWith(QLatin1Char('/'))) paths.append(path);
    }
    return paths;
}

QStringList Drop_LocalPaths(const QByteArray& uriList) {
    QList<QUrl> urls;
    for (const QByteArray& raw : uriList.split('\n')) {
        const QByteArray line = raw.trimmed(); // names are encoded, so blanks here are the line's
        if (line.isEmpty() || line.startsWith('#')) continue;
        urls.append(QUrl::fromEncoded(line, QUrl::TolerantMode));
    }
    return Drop_LocalPaths(urls);
}

QStringList Drop_LocalPaths(const QMimeData& data) {
    return data.hasUrls() ? Drop_LocalPaths(data.urls()) : QStringList();
}

bool Drag_Accepts(const QMimeData& data, DropHost& host) {
    return !s_dropRunning && !host.Is_Converting() && !Drop_LocalPaths(data).isEmpty();
}

bool On_DropFiles(const QStringList& paths, FileViewMain& table, FFDecoder& decoder, DropHost& host) {
    if (s_dropRunning || host.Is_Converting()) return false;
    QStringList dropped;
    for (const QString& path : paths)
        if (!path.isEmpty()) dropped.append(path);
    if (dropped.isEmpty()) return false;

    s_dropRunning = true;
    try {
        List_DragDrop = dropped;
        Yield_Events();
        Add_DragFiles(table, decoder, host);
    } catch (const std::exception& error) {
        clearLists();
        host.Wait_Close();
        host.Set_MainEnabled(true);
        Show_Message(QString::fromLocal8Bit(error.what()), MB_ICONCRITICAL, QStringLiteral("Drag and Drop"));
    }
    s_dropRunning = false;
    return true;
}

void Add_DragFiles(FileViewMain& table, FFDecoder& decoder, DropHost& host) {
    host.Close_TagPopup();
    List_DragTotalFile.clear();
    List_DragUnreadable.clear();
    host.Set_MainEnabled(false);
    host.Wait_Show(0); // the count is not known before the walk ends: a busy bar
    Wait_Cancel = false;

    bool walked = true;
    for (const QString& entry : std::as_const(List_DragDrop)) {
        if (QFileInfo(entry).isDir()) {
            if (!Scan_Folder(entry, host)) {
                walked = false;
                break;
            }
        } else {
            List_DragTotalFile.append(entry);
        }
    }
    List_DragDrop.clear();
    Yield_Events();

    if (walked) {
        QStringList supported;
        for (const QString& entry : std::as_const(List_DragTotalFile))
            (Is_SupportedName(entry) ? supported : List_DragDrop).append(entry);
        List_DragTotalFile = supported;
        Yield_Events();
    }

    if (walked &&
        !(List_DragTotalFile.isEmpty() && List_DragDrop.isEmpty() && List_DragUnreadable.isEmpty())) {
        Import_Dropped(table, decoder, host);
    } else {
        clearLists();
        host.Wait_Close();
        host.Set_MainEnabled(true);
    }
    host.Set_DropHintVisible(false);
    host.Close_TagPopup();
}

bool Scan_Folder(const QString& folder, ImportHost& host) {
    QSet<FolderKey> seen;
    return scanFolder(folder, host, seen);
}

void Import_Dropped(FileViewMain& table, FFDecoder& decoder, ImportHost& host) {
    if (!host.LibraryLoaded() && !host.LoadLibrary(Folder_Libs)) {
        clearLists();
        host.Wait_Close();
        host.Set_MainEnabled(true);
        Show_Message(host.LibraryErrorMessage(), MB_ICONCRITICAL, QString());
        return;
    }
    Yield_Events();

    Wait_Cancel = false;
    const int count = static_cast<int>(List_DragTotalFile.size());
    if (count > 1) {
        Wait_Mode = kWaitMode_Import;
        host.Wait_Show(count);
    }
    for (int i = 0; i < count; ++i) {
        const QString& entry = List_DragTotalFile.at(i);
        // A name can go or change between the walk and its turn.
        const QString reason = fileUnusableReason(entry);
        if (!reason.isEmpty()) {
            Report_Add(File_ReportName(entry), reason);
            continue;
        }
        if (count > 1) {
            host.Wait_Step(Wait_FileNoText(i, count), File_ReportName(entry), i);
            if (Wait_Cancel) break;
        }
        Fill_Item(entry, 0, table, decoder);
    }
    table.redraw();

    for (const ReportEntry& folder : std::as_const(List_DragUnreadable))
        Report_Add(folder.text, folder.second);
    for (const QString& name : std::as_const(List_DragDrop))
        Report_Add(name, kDropRefusedText);
    clearLists();

    Yield_Events();
    host.Wait_Close();
    Yield_Events();
    host.Set_MainEnabled(true);

    Import_Finish(table, host);
}

} // namespace morvane
