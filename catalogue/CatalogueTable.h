// A catalogue table: ordered named columns and ordered records of text cells. The format, preset and
// favorites tables are of this kind; the meaning of their columns belongs to the catalogue model.
// Main thread only.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace morvane {

struct CatalogueColumn {
    QString name;
    int width = 200; // display width; these tables are never shown, so it carries no meaning
};

class CatalogueTable {
public:
    const QList<CatalogueColumn>& columns() const { return m_columns; }
    const QList<QStringList>& records() const { return m_records; }
    qsizetype columnCount() const { return m_columns.size(); }
    qsizetype rowCount() const { return m_records.size(); }

    void addColumn(const QString& name, int width);
    // A new record with an empty cell for every column; returns its index.
    qsizetype addRecord();
    // The same, placed before the record at index (at the end when index is out of range).
    qsizetype insertRecord(qsizetype index);
    void setCell(qsizetype row, qsizetype column, const QString& text);
    QString cell(qsizetype row, qsizetype column) const;
    // Index of the column of that name, case ignored, or -1.
    qsizetype columnIndex(const QString& name) const;
    void removeRecord(qsizetype row);
    void clearRecords();
    void clear(); // columns and records

    // The selected record, -1 for none; removing records keeps it on a valid record or clears it.
    qsizetype selectedRow() const { return m_selectedRow; }
    void setSelectedRow(qsizetype row) { m_selectedRow = (row >= 0 && row < m_records.size()) ? row : -1; }

    // Counts the loads that ended normally, so that a view knows when to redraw.
    int refreshCount() const { return m_refreshCount; }
    void refresh() { ++m_refreshCount; }

private:
    QList<CatalogueColumn> m_columns;
    QList<QStringList> m_records;
    qsizetype m_selectedRow = -1;
    int m_refreshCount = 0;
};

} // namespace morvane
