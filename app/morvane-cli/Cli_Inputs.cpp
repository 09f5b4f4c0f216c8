#include "Cli_Inputs.h"

#include "Import_Files.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

namespace morvane {

QString Cli_UnreadableReason(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    struct stat info {};
    if (::stat(name.constData(), &info) != 0) return QString::fromLocal8Bit(std::strerror(errno));
    const int wanted = S_ISDIR(info.st_mode) ? R_OK | X_OK : R_OK;
    if (::access(name.constData(), wanted) != 0) return QString::fromLocal8Bit(std::strerror(errno));
    return QString();
}

CliInputs Cli_CollectInputs(const QStringList& inputs) {
    CliInputs result;
    for (const QString& input : inputs) {
        const QString reason = Cli_UnreadableReason(input);
        if (!reason.isEmpty()) {
            result.refused.append({input, reason});
            continue;
        }
        const QFileInfo info(input);
        if (!info.isDir()) {
            if (Is_SupportedName(input))
                result.files << info.absoluteFilePath();
            else
                result.skipped << input;
            continue;
        }
        QStringList found;
        QDirIterator walk(input, QDir::Files | QDir::AllDirs | QDir::NoDotAndDotDot,
                          QDirIterator::Subdirectories);
        while (walk.hasNext()) {
            const QString path = walk.next();
            const bool folder = walk.fileInfo().isDir();
            if (!folder && !Is_SupportedName(path)) continue;
            const QString refusal = Cli_UnreadableReason(path);
            if (!refusal.isEmpty())
                result.refused.append({path, refusal});
            else if (!folder)
                found << QFileInfo(path).absoluteFilePath();
        }
        found.sort();
        result.files << found;
    }
    return result;
}

} // namespace morvane
