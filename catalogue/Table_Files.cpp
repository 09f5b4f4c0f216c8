#include "Table_Files.h"

#include "Encrypt_Mod.h"
#include "Table_Io.h"
#include "mMain.h"

#include <QStringList>

#include <algorithm>

namespace morvane {

namespace {

const QString kSeparator = QStringLiteral("\",");

void reportFailure(const QString& description) {
    Show_Message(description, MB_OK | MB_ICONCRITICAL, QString());
}

// Lines ended by CR LF or a bare LF; a final line end adds no line.
QStringList splitLines(const QString& text) {
    QStringList lines;
    qsizetype position = 0;
    while (position < text.size()) {
        qsizetype end = text.indexOf(QLatin1Char('\n'), position);
        if (end < 0) end = text.size();
        QString line = text.mid(position, end - position);
        if (line.endsWith(QLatin1Char('\r'))) line.chop(1);
        lines << line;
        position = end + 1;
    }
    return lines;
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
    if (table.columnCount() == 0) {
        reportFailure(QStringLiteral("Cannot write '%1': the table has no columns").arg(path));
        return;
    }
    QByteArray contents;
    const auto addLine = [&](const QString& plain) {
        contents += (enciphered ? Line_Encipher(plain) : plain).toUtf8() + "\r\n";
    };
    QStringList names;
    for (const CatalogueColumn& column : table.columns())
        names.append(column.name);
    addLine(joinFields(names));
    const qsizetype removable = table.columnIndex(QStringLiteral("Removable"));
    for (qsizetype row = 0; row < table.rowCount(); ++row) {
        if (userRowsOnly && table.cell(row, removable) != QLatin1String("Yes")) continue;
        addLine(joinFields(table.records().at(row)));
    }
    const QString error = Write_TableBytes(path, contents);
    if (!error.isEmpty()) reportFailure(QStringLiteral("Cannot write '%1': %2").arg(path, error));
}

bool isHexLine(const QString& line) {
    const auto isHexDigit = [](QChar c) {
        const char16_t u = c.unicode();
        return (u >= '0' && u <= '9') || (u >= 'A' && u <= 'F') || (u >= 'a' && u <= 'f');
    };
    return !line.isEmpty() && line.size() % 2 == 0 && std::all_of(line.cbegin(), line.cend(), isHexDigit);
}

// What Table_SaveFile writes: every piece between the separators opens with a quote, the last one
// also closes with one.
bool isQuotedFields(const QString& line) {
    if (line.size() < 2 || !line.endsWith(QLatin1Char('"'))) return false;
    const QStringList pieces = line.split(kSeparator);
    return std::all_of(pieces.cbegin(), pieces.cend(),
                       [](const QString& piece) { return piece.startsWith(QLatin1Char('"')); });
}

} // namespace

void Table_LoadFile(CatalogueTable& table, const QString& path, int mode, bool enciphered) {
    if (mode == TableLoad_Replace) table.clear();
    QByteArray bytes;
    const QString error = Read_TableBytes(path, bytes);
    if (!error.isEmpty()) {
        reportFailure(QStringLiteral("Cannot read '%1': %2").arg(path, error));
        return;
    }
    const QStringList lines = splitLines(QString::fromUtf8(bytes));
    if (lines.isEmpty()) {
        reportFailure(QStringLiteral("Cannot read '%1': input past end of file").arg(path));
        return;
    }
    for (qsizetype lineNumber = 0; lineNumber < lines.size(); ++lineNumber) {
        const QStringList pieces =
            splitFields(enciphered ? Line_Decipher(lines.at(lineNumber)) : lines.at(lineNumber));
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

QString Table_LoadWhole(CatalogueTable& table, const QString& path, int mode, bool enciphered) {
    QByteArray bytes;
    const QString error = Read_TableBytes(path, bytes);
    if (!error.isEmpty()) return error;
    const QStringList lines = splitLines(QString::fromUtf8(bytes));
    if (lines.isEmpty()) return QStringLiteral("the file is empty");

    QList<QStringList> rows;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        QString line = lines.at(i);
        if (enciphered) {
            StopProcessing = false;
            if (isHexLine(line)) line = Line_Decipher(line);
            if (!isHexLine(lines.at(i)) || StopProcessing)
                return QStringLiteral("line %1 does not decipher").arg(i + 1);
        }
        if (!isQuotedFields(line)) return QStringLiteral("line %1 is not a list of quoted fields").arg(i + 1);
        rows << splitFields(line);
        if (rows.last().size() != rows.first().size())
            return QStringLiteral("line %1 has %2 fields, the header has %3")
                .arg(i + 1)
                .arg(rows.last().size())
                .arg(rows.first().size());
    }
    if (mode == TableLoad_Append && rows.first().size() > table.columnCount())
        return QStringLiteral("the file has %1 columns, the table has %2")
            .arg(rows.first().size())
            .arg(table.columnCount());

    if (mode == TableLoad_Replace) {
        table.clear();
        for (qsizetype i = 0; i < rows.first().size(); ++i)
            table.addColumn(rows.first().at(i), i == 0 ? 600 : 200);
    }
    for (qsizetype r = 1; r < rows.size(); ++r) {
        const qsizetype row = table.addRecord();
        for (qsizetype i = 0; i < rows.at(r).size(); ++i)
            table.setCell(row, i, rows.at(r).at(i));
    }
    table.refresh();
    return QString();
}

} // namespace morvane
