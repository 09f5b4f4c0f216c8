// The DVD source: the disc menu's entries (a folder choice and the optical drives), the listing of a
// disc's title files, and their import in disc mode. No menu navigation and no decryption: only the
// title files that can be read become rows. The drives come from the mount table and the device
// folder, both given by path so that tests can feed fake ones; the folder choice comes through an
// interface. Main thread only.
#pragma once

#include "FFDecoder.h"
#include "FileViewMain.h"
#include "Import_Files.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace morvane {

inline const QString kLoadDvdFolder = QStringLiteral("Load DVD Folder...");
inline const QString kNoDvdSourceText = QStringLiteral("There is no DVD video source.");
inline const QString kInsertDvdText =
    QStringLiteral("Please make sure you have inserted a DVD disc in your DVD-ROM.");

// Where the drives are looked up.
struct DiscPaths {
    QString mounts = QStringLiteral("/proc/self/mounts");
    QString devices = QStringLiteral("/dev"); // sr* nodes and disk/by-label links
};

// A mounted optical medium (an iso9660 or udf file system, a drive's disc or a mounted image), or an
// optical drive (/dev/sr*) with nothing mounted, which counts as not ready.
struct DiscDrive {
    QString device;     // "/dev/sr0", as the mount table names it
    QString mountPoint; // "" when not ready
    QString label;      // volume label, "" when it has none
    bool ready() const { return !mountPoint.isEmpty(); }
};

// Mounted media in the mount table's order (one per device), then the drives without media in
// device order. A missing mount table or device folder gives no drives from it.
QList<DiscDrive> List_DiscDrives(const DiscPaths& paths = {});

// One entry of the disc menu.
struct DiscMenuEntry {
    QString caption;
    bool loadFolder = false; // "Load DVD Folder...": choose a folder
    DiscDrive drive;         // the drive as it was when the menu was built
};

// The disc menu, read anew before it pops up: "Load DVD Folder..." first, then one entry per drive.
// A ready drive shows its mount point and label ("/media/ann/DISC (Holiday 2019)"; the label is left
// out when the mount point already ends in it), a drive without media its device ("/dev/sr0").
QList<DiscMenuEntry> Update_DiscMenu(const DiscPaths& paths = {});

// The hidden listing of title files: a folder and the names found in it.
struct DVDFileList {
    QString path;
    QStringList items;
};

// Lists the title set files ("VTS_*.vob") of the folder, or when there are none its video manager
// ("VIDEO_*.vob"). Names match in any case, as discs mount with upper- or lower-case names, and come
// sorted the same way; a folder that can't be read lists nothing.
void List_DiscFiles(const QString& folder, DVDFileList& box);

// The "VIDEO_TS" folder (in any case) inside the folder, with a trailing "/", or "" without one.
QString Find_VideoTS(const QString& folder);

// The folder choice of "Load DVD Folder...": the chosen folder, "" for Cancel.
class DiscFolderDialog {
public:
    virtual ~DiscFolderDialog() = default;
    virtual QString Browse_Folder(const QString& startFolder) = 0;
};

// The import of a listing: the loop of Import_Files over the listed files in their order, with the
// probe in disc mode, so that menus and empty titles (under a second) fall away without a report
// line. One file goes without the wait window; with several, the counter starts at "0 of N files".
// Names still in the drop's refused list (List_DragDrop) go into the report with "File format not
// supported!".
void Import_FromDisc(const DVDFileList& files, FileViewMain& table, FFDecoder& decoder, ImportHost& host);

// How a choice of the disc menu ended. After NoSource and Imported the main window closes its tag
// popup and hides the drop hint.
enum class DiscChoice { NotReady, Cancelled, NoSource, Imported };

// Runs one entry of the disc menu. A drive that is still there lists its VIDEO_TS folder, or says
// that no disc is in it; "Load DVD Folder...", and a drive gone since the menu was built, ask for a
// folder (starting at Path_LastDisc, which keeps the choice, or its VIDEO_TS folder when it has one).
// An empty listing says that there is no DVD video source; otherwise the files are imported.
DiscChoice Run_DiscChoice(const DiscMenuEntry& entry, DiscFolderDialog& dialog, FileViewMain& table,
                          FFDecoder& decoder, ImportHost& host, const DiscPaths& paths = {});

} // namespace morvane
