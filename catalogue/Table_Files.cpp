#include "Table_Files.h"

#include "Encrypt_Mod.h"
#include "mMain.h"

#include <QFile>
#include <QStringList>

namespace morvane {

namespace {

const QString kSeparator = QStringLiteral("\",");

void reportFailure(const QString& description) {
    Show_Message(description, MB_OK | MB_ICONCRITICAL, QString());
}

// Splits on the two characters quote-comma, then drops every remaining quote from each piece, so
// that a comma inside a field survives and a quote inside one does not.
QStringList splitFields(const QString& line) {
    QStringList pieces = line.split(kSeparator);
    for (QString& piece : pieces)
        piece.remove(QLatin1Char('"'));
    return pieces;
}

QString joinFields(const QStringList& cells) {
    QString line;
    for (const QString& cell : cells)
        line += QLatin1Char('"') + Trim_Spaces(cell) + QStringLiteral("\",");
    line.chop(1);
    return line;
}

void saveRows(const CatalogueTable& table, const QString& path, bool enciphered, bool userRowsOnly) {
    QFile file(path);
    // Opening for output empties the file: a failure later leaves it as far as it was written.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        reportFailure(QStringLiteral("Cannot write '%1': %2").arg(path, file.errorString()));
        return;
    }
    if (table.columnCount() == 0) {
        reportFailure(QStringLiteral("Cannot write '%1': the table has no columns").arg(path));
        return;
    }
    const auto writeLine = [&](const QString& plain) {
        const QString line = enciphered ? Line_Encipher(plain) : plain;
        const QByteArray bytes = line.toUtf8() + "\r\n";
        return file.write(bytes) == bytes.size();
    };
    QStringList names;
    for (const CatalogueColumn& column : table.columns())
        names.append(column.name);
    bool ok = writeLine(joinFields(names));
    const qsizetype removable = table.columnIndex(QStringLiteral("Removable"));
    for (qsizetype row = 0; ok && row < table.rowCount(); ++row) {
        if (userRowsOnly && table.cell(row, removable) != QLatin1String("Yes")) continue;
        ok = writeLine(joinFields(table.records().at(row)));
    }
    if (ok && file.flush()) return;
    reportFailure(QStringLiteral("Cannot write '%1': %2").arg(path, file.errorString()));
}

} // namespace

void Table_LoadFile(CatalogueTable& table, const QString& path, int mode, bool enciphered) {
    if (mode == TableLoad_Replace) table.clear();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        reportFailure(QStringLiteral("Cannot read '%1': %2").arg(path, file.errorString()));
        return;
    }
    const QString text = QString::fromUtf8(file.readAll());
    file.close();
    if (text.isEmpty()) {
        reportFailure(QStringLiteral("Cannot read '%1': input past end of file").arg(path));
        return;
    }
    qsizetype position = 0;
    for (int lineNumber = 0; position < text.size(); ++lineNumber) {
        qsizetype end = text.indexOf(QLatin1Char('\n'), position);
        if (end < 0) end = text.size();
        QString line = text.mid(position, end - position);
        if (line.endsWith(QLatin1Char('\r'))) line.chop(1);
        position = end + 1;
        if (enciphered) line = Line_Decipher(line);
        const QStringList pieces = splitFields(line);
        if (lineNumber == 0) {
            if (mode == TableLoad_Replace)
                for (qsizetype i = 0; i < pieces.size(); ++i)
                    table.addColumn(pieces.at(i), i == 0 ? 600 : 200);
            continue;
        }
        const qsizetype row = table.addRecord();
        for (qsizetype i = 0; i < pieces.size(); ++i) {
            if (i >= table.columnCount()) {
                // The record filled so far and the rows before it stay; the table is not refreshed.
                reportFailure(
                    QStringLiteral("Cannot read '%1': line %2 has %3 fields, but the table has %4 columns")
                        .arg(path)
                        .arg(lineNumber + 1)
                        .arg(pieces.size())
                        .arg(table.columnCount()));
                return;
            }
            table.setCell(row, i, pieces.at(i));
        }
    }
    table.refresh();
}

void Table_SaveFile(const CatalogueTable& table, const QString& path, bool enciphered) {
    saveRows(table, path, enciphered, false);
}

void Table_SaveUserRows(const CatalogueTable& table, const QString& path, bool enciphered) {
    saveRows(table, path, enciphered, true);
}

} // namespace morvane
