#include "Work_Folder.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cstdlib>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace morvane {

namespace {

const QString kLockName = QStringLiteral(".lock");
QString g_folder; // the open folder, "" when none
int g_lock = -1;  // held for the life of the process

// A folder whose lock anyone can take belongs to no live process.
void removeStale(const QDir& shared) {
    const QStringList runs = shared.entryList({QStringLiteral("run-*")}, QDir::Dirs | QDir::Hidden);
    for (const QString& name : runs) {
        const QString folder = shared.absoluteFilePath(name);
        const int fd = ::open(QFile::encodeName(folder + QLatin1Char('/') + kLockName).constData(),
                              O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
        if (fd < 0) {
            // No lock file: made by a process that died before it took one, long ago by now, or one
            // starting this very moment. Only an old one goes.
            const QFileInfo info(folder);
            if (info.lastModified().secsTo(QDateTime::currentDateTime()) > 3600)
                QDir(folder).removeRecursively();
            continue;
        }
        if (flock(fd, LOCK_EX | LOCK_NB) == 0) QDir(folder).removeRecursively();
        ::close(fd);
    }
}

} // namespace

QString Work_Folder_Open(const QString& sharedTemp) {
    if (!g_folder.isEmpty()) return g_folder;
    QDir shared(sharedTemp);
    if (!shared.mkpath(QStringLiteral("."))) return QString();
    removeStale(shared);
    for (int attempt = 0; attempt < 8; ++attempt) {
        const QString name = QStringLiteral("run-%1-%2")
                                 .arg(QCoreApplication::applicationPid())
                                 .arg(QRandomGenerator::global()->generate(), 8, 16, QLatin1Char('0'));
        if (!shared.mkdir(name)) continue; // taken: another tag
        const QString folder = shared.absoluteFilePath(name) + QLatin1Char('/');
        g_lock = ::open(QFile::encodeName(folder + kLockName).constData(),
                        O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (g_lock >= 0) flock(g_lock, LOCK_EX | LOCK_NB);
        g_folder = folder;
        static const bool atExit = (std::atexit(Work_Folder_Close), true);
        (void)atExit;
        return g_folder;
    }
    return QString();
}

void Work_Folder_Close() {
    if (g_folder.isEmpty()) return;
    QDir(g_folder).removeRecursively();
    g_folder.clear();
    if (g_lock >= 0) ::close(g_lock);
    g_lock = -1;
}

} // namespace morvane
