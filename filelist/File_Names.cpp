#include "File_Names.h"

#include <QFileInfo>

namespace morvane {

QString File_BaseName(const QString& path) {
    return QFileInfo(path).completeBaseName();
}

QString File_ExtensionName(const QString& path) {
    return QFileInfo(path).suffix();
}

QString File_ParentFolder(const QString& path) {
    QString folder = QFileInfo(path).absolutePath();
    if (!folder.endsWith(QLatin1Char('/'))) folder += QLatin1Char('/');
    return folder;
}

QString File_ReportName(const QString& path) {
    return File_BaseName(path) + QLatin1Char('.') + File_ExtensionName(path);
}

} // namespace morvane
