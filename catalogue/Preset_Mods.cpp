#include "Preset_Mods.h"

#include "mMain.h"

#include <QDateTime>
#include <QRandomGenerator>

namespace morvane {

namespace {

const QString kLock = QStringLiteral("#");
const QString kCustomName = QStringLiteral("[%Custom%]");

qsizetype lastColumnNamed(const CatalogueTable& table, const QString& columnName) {
    const QString wanted = columnName.toUpper();
    qsizetype found = -1;
    for (qsizetype i = 0; i < table.columnCount(); ++i)
        if (table.columns().at(i).name.toUpper() == wanted) found = i;
    return found;
}

bool validRow(const CatalogueTable& table, qsizetype row) {
    return row >= 1 && row <= table.rowCount();
}

// The value as it goes into a cell that held `present`, keeping its lock.
QString inheritLock(const QString& present, const QString& value) {
    return present.startsWith(kLock) ? kLock + value : value;
}

} // namespace

QString Cell_Get(const CatalogueTable& table, qsizetype row, const QString& columnName) {
    const qsizetype column = lastColumnNamed(table, columnName);
    if (column < 0 || !validRow(table, row)) return QString();
    return table.cell(row - 1, column);
}

void Cell_Set(CatalogueTable& table, qsizetype row, const QString& columnName, const QString& value,
              bool forceMark, bool markWanted) {
    const qsizetype column = lastColumnNamed(table, columnName);
    if (column < 0 || !validRow(table, row)) return;
    QString text;
    if (forceMark)
        text = markWanted ? value : kLock + value;
    else
        text = inheritLock(table.cell(row - 1, column), value);
    table.setCell(row - 1, column, text);
    table.refresh();
}

qsizetype Row_Find(const CatalogueTable& table, const QString& columnName, const QString& value) {
    const qsizetype column = lastColumnNamed(table, columnName);
    if (column < 0) return 0;
    for (qsizetype i = 0; i < table.rowCount(); ++i)
        if (table.cell(i, column) == value) return i + 1;
    return 0;
}

void Row_AddFromText(CatalogueTable& table, const QString& text, int mode, bool plainFlag, qsizetype row) {
    qsizetype index = -1;
    if (mode == 0)
        index = table.addRecord();
    else if (mode == 1 && validRow(table, row))
        index = row - 1;
    if (index < 0) return;
    const QStringList fields = text.split(QStringLiteral("//"));
    // A field beyond the last column ends the routine; the fields before it stay written.
    for (qsizetype i = 0; i < fields.size() && i < table.columnCount(); ++i) {
        const QString field = Trim_Spaces(fields.at(i));
        table.setCell(index, i, plainFlag ? field : inheritLock(table.cell(index, i), field));
    }
    table.refresh();
}

QString Row_NewId() {
    // Seeded from the clock once; a fresh seed per call would repeat ids within one clock tick.
    static QRandomGenerator generator(static_cast<quint32>(QDateTime::currentMSecsSinceEpoch()));
    const auto draw = [](double scale, double offset) {
        return static_cast<int>(Round_HalfEven(generator.generateDouble() * scale + offset));
    };
    const int a = draw(32700.0, 1.0);
    const int b = draw(200.0, 20.0);
    draw(200.0, 20.0); // drawn and not used: the id repeats b at both ends by design
    const QString hexB = QString::number(b, 16).toUpper();
    return hexB + QStringLiteral("%1").arg(a, 5, 10, QLatin1Char('0')) + hexB;
}

void Table_CopyColumns(CatalogueTable& target, const CatalogueTable& source) {
    target.clear();
    for (const CatalogueColumn& column : source.columns())
        target.addColumn(column.name, column.width);
    target.refresh();
}

void Table_ClearRows(CatalogueTable& table, bool ask) {
    if (table.rowCount() == 0) return;
    if (ask && Show_Message(QStringLiteral("Are you sure you want to clear all data?"),
                            MB_YESNO | MB_ICONQUESTION, QString()) != ID_YES)
        return;
    table.clearRecords();
    table.refresh();
}

void Table_RemoveSelected(CatalogueTable& table, bool ask) {
    const qsizetype selected = table.selectedRow();
    if (selected < 0) return;
    if (ask && Show_Message(QStringLiteral("Are you sure you want to remove selected row?"),
                            MB_YESNO | MB_ICONQUESTION, QString()) != ID_YES)
        return;
    table.removeRecord(selected);
    table.refresh();
}

qsizetype Row_AddChecked(CatalogueTable& target, const CatalogueTable& source, int mode) {
    for (qsizetype i = 0; i < source.rowCount(); ++i) {
        if (Trim_Spaces(source.cell(i, 2)).isEmpty()) {
            Show_Message(QStringLiteral("'") + source.cell(i, 1) + QStringLiteral("' is empty!"),
                         MB_OK | MB_ICONEXCLAMATION, QString());
            return 0;
        }
    }
    qsizetype index = -1;
    if (mode == 0)
        index = target.addRecord();
    else if (mode == 2)
        index = target.insertRecord(target.selectedRow() < 0 ? 0 : target.selectedRow());
    return index < 0 ? 0 : index + 1;
}

QStringList Split_SemicolonList(const QString& listText) {
    QStringList items = listText.split(QLatin1Char(';'));
    items.removeLast(); // what follows the last ";" is no item
    for (QString& item : items)
        item.remove(kLock);
    return items;
}

void List_FillByGroup(const CatalogueTable& table, const QString& maker, const QString& keyword,
                      ValueList& list) {
    bool customListed = false;
    for (qsizetype row = 1; row <= table.rowCount(); ++row) {
        if (Cell_Get(table, row, QStringLiteral("Keyword")) != keyword ||
            Cell_Get(table, row, QStringLiteral("Maker")) != maker)
            continue;
        const QString name = Cell_Get(table, row, QStringLiteral("Name"));
        const QString id = Cell_Get(table, row, QStringLiteral("ID"));
        if (name == kCustomName) {
            if (!customListed) list.addItem(QStringLiteral("[Custom]"), id);
            customListed = true;
        } else {
            list.addItem(name, id);
        }
    }
}

void List_FillCodecs(const CatalogueTable& formatTable, const QString& formatKey, const QString& columnName,
                     ValueList& list) {
    list.clear();
    const QString key = Trim_Spaces(formatKey);
    for (qsizetype row = 1; row <= formatTable.rowCount(); ++row) {
        if (Trim_Spaces(Cell_Get(formatTable, row, QStringLiteral("Format"))) != key) continue;
        const QString codec = Cell_Get(formatTable, row, columnName);
        if (codec != kLock) list.addItem(codec, QString::number(row));
    }
}

void List_FillFromRow(const CatalogueTable& formatTable, qsizetype row, const QString& columnName,
                      ValueList& list) {
    List_Fill(Cell_Get(formatTable, row, columnName), list);
}

void List_Fill(const QString& listText, ValueList& list) {
    list.clear();
    for (const QString& item : Split_SemicolonList(listText))
        list.addItem(item);
}

void List_Select(ValueList& list, const QString& value, int fallback) {
    QString wanted = value;
    list.enabled = !wanted.startsWith(kLock);
    wanted.remove(kLock);
    const qsizetype index = list.indexOf(wanted);
    if (index >= 0)
        list.select(index);
    else
        list.select(fallback == 1 ? list.count() - 1 : 0);
}

void Spin_Set(const QString& value, SpinField& field) {
    QString number = value;
    field.enabled = !number.startsWith(kLock);
    number.remove(kLock);
    field.text = number == QLatin1String("-") ? QStringLiteral("0") : number;
}

} // namespace morvane
