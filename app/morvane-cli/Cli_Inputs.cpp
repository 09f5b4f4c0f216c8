#include "Cli_Inputs.h"

#include "Folders_Mods.h"
#include "Import_Files.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace morvane {

CliInputs Cli_CollectInputs(const QStringList& inputs) {
    CliInputs result;
    for (const QString& input : inputs) {
        const QString reason = Path_UnreadableReason(input);
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
            const QString refusal = Path_UnreadableReason(path);
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
