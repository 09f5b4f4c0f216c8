#include "Encrypt_Data.h"

#include <QStringList>

namespace morvane {

QString Constant_Lookup(const QString& plainBlock, const QString& key) {
    const QString quotedKey = QLatin1Char('"') + key + QLatin1Char('"');
    const QStringList lines =
        plainBlock.split(QStringLiteral("\r\n"), Qt::KeepEmptyParts, Qt::CaseInsensitive);
    for (QString line : lines) {
        // The quotes take part in the search, so only a line that quotes the key as a whole matches,
        // though that may be an earlier line's value.
        if (!line.contains(quotedKey, Qt::CaseInsensitive)) continue;
        line.remove(key, Qt::CaseInsensitive);
        line.remove(QLatin1Char(','));
        line.remove(QLatin1Char('"'));
        return line;
    }
    return QString();
}

} // namespace morvane
