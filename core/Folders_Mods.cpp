#include "Folders_Mods.h"

#include "Globals.h"
#include "Registry_Mod.h"
#include "mMain.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <cerrno>
#include <cstring>

#include <sys/stat.h>

namespace morvane {

namespace {
QString withSeparator(const QString& path) {
    if (path.isEmpty() || path.endsWith(QLatin1Char('/'))) return path;
    return path + QLatin1Char('/');
}

bool folderExists(const QString& path) {
    return !path.isEmpty() && QFileInfo(path).isDir();
}

// The stored folder when it still exists, otherwise the first user folder that the desktop gives.
QString pickFolder(const QString& settingName, std::initializer_list<int> fallbacks) {
    const QString stored = Trim_Spaces(Read_Setting(REGISTRY_PRODUCT, settingName));
    if (folderExists(stored)) return stored;
    for (const int id : fallbacks) {
        const QString folder = Get_SpecialFolder(id);
        if (!folder.isEmpty()) return folder;
    }
    return QString();
}
} // namespace

QString Get_SpecialFolder(int folderId) {
    QString path;
    switch (folderId) {
    case CSIDL_APPDATA:
        // The data home is ours to create, so it counts even before it exists.
        return withSeparator(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
    case CSIDL_PERSONAL:
        path = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
        break;
    case CSIDL_MYVIDEO:
        path = QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
        break;
    case CSIDL_MYPICTURES:
        path = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
        break;
    case CSIDL_DESKTOP:
        path = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
        // A machine without a desktop folder still has a home, the nearest place a user looks.
        if (!folderExists(path)) path = QDir::homePath();
        break;
    default:
        return QString();
    }
    // XDG names folders that many machines never create; an absent folder is no folder.
    return folderExists(path) ? withSeparator(path) : QString();
}

QString Program_Folder() {
    const QString appDir = QCoreApplication::applicationDirPath();
    // Installed: <prefix>/bin/morvane beside <prefix>/share/morvane/. From the build tree: the
    // source's data/ folder, which the build records.
    const QString installed = QDir(appDir).absoluteFilePath(QStringLiteral("../share/morvane"));
    if (!appDir.isEmpty() && QFileInfo(installed).isDir()) return withSeparator(QDir::cleanPath(installed));
#ifdef MORVANE_DATA_DIR
    return withSeparator(QStringLiteral(MORVANE_DATA_DIR));
#else
    return withSeparator(appDir);
#endif
}

void Init_Folders() {
    QDir().mkpath(Folder_Data);
    QDir().mkpath(Folder_Temp);
    Path_Input = pickFolder(QStringLiteral("InputPath"), {CSIDL_MYVIDEO, CSIDL_PERSONAL, CSIDL_DESKTOP});
    Path_LastDisc = Path_Input;
    Path_Output = pickFolder(QStringLiteral("OutputPath"), {CSIDL_MYVIDEO, CSIDL_PERSONAL, CSIDL_DESKTOP});
    Path_Capture =
        pickFolder(QStringLiteral("CapturePath"), {CSIDL_MYPICTURES, CSIDL_PERSONAL, CSIDL_DESKTOP});
}

QString Default_OutputFolder() {
    const QString documents = Get_SpecialFolder(CSIDL_PERSONAL);
    return documents.isEmpty() ? Get_SpecialFolder(CSIDL_DESKTOP) : documents;
}

bool Ensure_OutputFolder(QString& outputBoxText, QString& reason) {
    reason.clear();
    if (Trim_Spaces(outputBoxText).isEmpty()) outputBoxText = Default_OutputFolder();
    const QString folder = Trim_Spaces(outputBoxText);
    if (folder.isEmpty()) {
        reason = QStringLiteral("no output folder is given and there is no documents folder to use");
        return false;
    }
    if (QFileInfo(folder).isDir()) return true;
    if (QFileInfo::exists(folder)) {
        reason = QStringLiteral("the output folder '%1' is a file").arg(folder);
        return false;
    }
    // One level only: a missing parent is the user's mistake to see, not ours to paper over.
    if (::mkdir(QFile::encodeName(folder).constData(), 0777) == 0) return true;
    const int error = errno;
    reason = error == ENOENT
                 ? QStringLiteral("the folder above the output folder '%1' does not exist").arg(folder)
                 : QStringLiteral("cannot make the output folder '%1': %2")
                       .arg(folder, QString::fromLocal8Bit(std::strerror(error)));
    return false;
}

int Path_UnreadableError(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    struct stat info {};
    if (::stat(name.constData(), &info) != 0) return errno;
    const int wanted = S_ISDIR(info.st_mode) ? R_OK | X_OK : R_OK;
    return ::access(name.constData(), wanted) != 0 ? errno : 0;
}

QString Path_UnreadableReason(const QString& path) {
    const int error = Path_UnreadableError(path);
    return error == 0 ? QString() : QString::fromLocal8Bit(std::strerror(error));
}

QString Move_File(const QString& source, const QString& target) {
    QFile file(source);
    if (file.rename(target)) return QString();
    return file.errorString();
}

void Delete_File(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists() && !info.isSymLink()) return;
    QFile file(path);
    // A link goes as it is: changing its permissions would change the file it points to.
    if (!info.isSymLink()) file.setPermissions(file.permissions() | QFileDevice::WriteOwner);
    file.remove();
}

void Clear_TempPictures() {
    if (Folder_Temp.isEmpty()) return;
    const QDir temp(Folder_Temp);
    const QStringList pictures = temp.entryList({QStringLiteral("*.bmp")}, QDir::Files | QDir::Hidden);
    for (const QString& name : pictures)
        Delete_File(temp.absoluteFilePath(name));
}

} // namespace morvane
