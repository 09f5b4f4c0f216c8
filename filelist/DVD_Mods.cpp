#include "DVD_Mods.h"

#include "DragDrop_Mod.h"
#include "FileList_Mods.h"
#include "Globals.h"
#include "Report_List.h"
#include "mMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <cctype>
#include <optional>
#include <utility>

namespace morvane {

namespace {

bool isOctal(char c) {
    return c >= '0' && c <= '7';
}

// The mount table writes space, tab, newline and backslash inside a field as "\ooo".
QString decodeMountField(const QByteArray& field) {
    QByteArray out;
    for (qsizetype i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size() && isOctal(field[i + 1]) && isOctal(field[i + 2]) &&
            isOctal(field[i + 3])) {
            out.append(static_cast<char>(((field[i + 1] - '0') << 6) | ((field[i + 2] - '0') << 3) |
                                         (field[i + 3] - '0')));
            i += 3;
        } else {
            out.append(field[i]);
        }
    }
    return QString::fromUtf8(out);
}

// udev names its label links with every unsafe byte as "\xHH".
QString decodeLabel(const QString& name) {
    const QByteArray in = name.toUtf8();
    QByteArray out;
    for (qsizetype i = 0; i < in.size(); ++i) {
        if (in[i] == '\\' && i + 3 < in.size() && in[i + 1] == 'x' &&
            std::isxdigit(static_cast<unsigned char>(in[i + 2])) &&
            std::isxdigit(static_cast<unsigned char>(in[i + 3]))) {
            out.append(static_cast<char>(in.mid(i + 2, 2).toInt(nullptr, 16)));
            i += 3;
        } else {
            out.append(in[i]);
        }
    }
    return QString::fromUtf8(out);
}

// The label whose link in disk/by-label points at the device, or "".
QString labelOf(const QString& device, const QDir& devices) {
    if (!device.startsWith(QLatin1String("/dev/"))) return QString();
    const QString node = QDir::cleanPath(device.mid(5));
    const QDir labels(devices.filePath(QStringLiteral("disk/by-label")));
    for (const QFileInfo& link : labels.entryInfoList(QDir::Files | QDir::System, QDir::Name)) {
        if (link.isSymLink() && devices.relativeFilePath(link.symLinkTarget()) == node)
            return decodeLabel(link.fileName());
    }
    return QString();
}

bool isOpticalFileSystem(const QByteArray& type) {
    return type == "iso9660" || type == "udf";
}

QString withSlash(const QString& folder) {
    return folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/');
}

// Names in the folder that match the pattern in any case, sorted the same way; files only.
QStringList filesMatching(const QString& folder, const QString& pattern) {
    QDir dir(folder);
    dir.setFilter(QDir::Files);
    dir.setNameFilters({pattern});
    dir.setSorting(QDir::Name | QDir::IgnoreCase);
    return dir.entryList();
}

} // namespace

QList<DiscDrive> List_DiscDrives(const DiscPaths& paths) {
    const QDir devices(paths.devices);
    QList<DiscDrive> drives;
    QStringList mountedDevices; // of optical file systems only: a drive mounted otherwise isn't ready

    QFile mounts(paths.mounts);
    if (mounts.open(QIODevice::ReadOnly)) {
        // A proc file reports no size, so it is read to its end rather than by size.
        for (const QByteArray& line : mounts.readAll().split('\n')) {
            const QList<QByteArray> fields = line.split(' ');
            if (fields.size() < 3 || !isOpticalFileSystem(fields[2])) continue;
            const QString device = decodeMountField(fields[0]);
            if (mountedDevices.contains(device)) continue; // the same disc mounted twice
            mountedDevices.append(device);
            drives.append({device, decodeMountField(fields[1]), labelOf(device, devices)});
        }
    }

    // Drives without media, sr0 before sr2 before sr10.
    static const QRegularExpression driveName(QStringLiteral("^sr\\d+$"));
    QStringList idle;
    for (const QString& name : devices.entryList({QStringLiteral("sr*")}, QDir::Files | QDir::System)) {
        if (driveName.match(name).hasMatch() && !mountedDevices.contains(QStringLiteral("/dev/") + name))
            idle.append(name);
    }
    std::sort(idle.begin(), idle.end(),
              [](const QString& a, const QString& b) { return a.mid(2).toInt() < b.mid(2).toInt(); });
    for (const QString& name : idle)
        drives.append({QStringLiteral("/dev/") + name, QString(), QString()});
    return drives;
}

QList<DiscMenuEntry> Update_DiscMenu(const DiscPaths& paths) {
    QList<DiscMenuEntry> entries{{kLoadDvdFolder, true, {}}};
    for (const DiscDrive& drive : List_DiscDrives(paths)) {
        QString caption = drive.ready() ? drive.mountPoint : drive.device;
        if (drive.ready() && !drive.label.isEmpty() && QFileInfo(drive.mountPoint).fileName() != drive.label)
            caption += QStringLiteral(" (") + drive.label + QLatin1Char(')');
        entries.append({caption, false, drive});
    }
    return entries;
}

void List_DiscFiles(const QString& folder, DVDFileList& box) {
    box.path = folder;
    box.items = filesMatching(folder, QStringLiteral("VTS_*.vob"));
    if (box.items.isEmpty()) box.items = filesMatching(folder, QStringLiteral("VIDEO_*.vob"));
}

QString Find_VideoTS(const QString& folder) {
    const QStringList found =
        QDir(folder).entryList({QStringLiteral("VIDEO_TS")}, QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    return found.isEmpty() ? QString() : withSlash(folder) + found.first() + QLatin1Char('/');
}

void Import_FromDisc(const DVDFileList& files, FileViewMain& table, FFDecoder& decoder, ImportHost& host) {
    if (!host.LibraryLoaded() && !host.LoadLibrary(Folder_Libs)) {
        Show_Message(host.LibraryErrorMessage(), MB_ICONCRITICAL, QString());
        return;
    }

    Yield_Events();
    const QDir folder(files.path);
    const int count = static_cast<int>(files.items.size());
    Wait_Cancel = false;
    bool waitShown = false;
    if (count == 1) {
        Fill_Item(folder.filePath(files.items.first()), kFillMode_Disc, table, decoder);
    } else if (count > 1) {
        host.Set_MainEnabled(false);
        Wait_Mode = kWaitMode_Import;
        host.Wait_Show(count);
        waitShown = true;
        for (int i = 0; i < count; ++i) {
            const QString& name = files.items.at(i);
            const QString path = folder.filePath(name);
            // The listing may be stale: a disc ejected or a folder changed while earlier titles ran.
            if (!QFileInfo(path).isFile()) {
                Report_Add(name, QStringLiteral("File not found!"));
                continue;
            }
            host.Wait_Step(Wait_FileNoText(i, count), name, i);
            if (Wait_Cancel) break;
            Fill_Item(path, kFillMode_Disc, table, decoder);
        }
        table.redraw();
    }

    for (const QString& name : std::as_const(List_DragDrop))
        Report_Add(name, kDropRefusedText);

    if (waitShown) {
        host.Wait_Close();
        Yield_Events();
        host.Set_MainEnabled(true);
    }

    Import_Finish(table, host);
}

DiscChoice Run_DiscChoice(const DiscMenuEntry& entry, DiscFolderDialog& dialog, FileViewMain& table,
                          FFDecoder& decoder, ImportHost& host, const DiscPaths& paths) {
    DVDFileList files;

    // The drive is looked up again: a disc may have come or gone since the menu was built.
    std::optional<DiscDrive> drive;
    if (!entry.loadFolder) {
        for (const DiscDrive& now : List_DiscDrives(paths)) {
            if (now.device == entry.drive.device) drive = now;
        }
    }

    if (drive) {
        if (!drive->ready()) {
            Show_Message(kInsertDvdText, MB_ICONINFORMATION, QStringLiteral("Information"));
            return DiscChoice::NotReady;
        }
        const QString videoTs = Find_VideoTS(drive->mountPoint);
        List_DiscFiles(
            videoTs.isEmpty() ? withSlash(drive->mountPoint) + QStringLiteral("VIDEO_TS/") : videoTs, files);
    } else {
        const QString chosen = dialog.Browse_Folder(Path_LastDisc);
        Yield_Events();
        if (chosen.isEmpty()) return DiscChoice::Cancelled;
        Path_LastDisc = withSlash(chosen);
        const QString videoTs = Find_VideoTS(Path_LastDisc);
        if (!videoTs.isEmpty()) Path_LastDisc = videoTs;
        List_DiscFiles(Path_LastDisc, files);
    }

    if (files.items.isEmpty()) {
        Show_Message(kNoDvdSourceText, MB_ICONINFORMATION, QStringLiteral("Information"));
        return DiscChoice::NoSource;
    }
    Import_FromDisc(files, table, decoder, host);
    return DiscChoice::Imported;
}

} // namespace morvane
