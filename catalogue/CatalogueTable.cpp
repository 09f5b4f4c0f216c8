#include "CatalogueTable.h"

namespace morvane {

void CatalogueTable::addColumn(const QString& name, int width) {
    m_columns.append({name, width});
    for (QStringList& record : m_records)
        record.append(QString());
}

qsizetype CatalogueTable::addRecord() {
    return insertRecord(m_records.size());
}

qsizetype CatalogueTable::insertRecord(qsizetype index) {
    if (index < 0 || index > m_records.size()) index = m_records.size();
    QStringList record;
    record.reserve(m_columns.size());
    for (qsizetype i = 0; i < m_columns.size(); ++i)
        record.append(QString());
    m_records.insert(index, std::move(record));
    if (m_selectedRow >= index) ++m_selectedRow;
    return index;
}

void CatalogueTable::setCell(qsizetype row, qsizetype column, const QString& text) {
    if (row < 0 || row >= m_records.size() || column < 0 || column >= m_columns.size()) return;
    m_records[row][column] = text;
}

QString CatalogueTable::cell(qsizetype row, qsizetype column) const {
    if (row < 0 || row >= m_records.size() || column < 0 || column >= m_columns.size()) return QString();
    return m_records.at(row).at(column);
}

qsizetype CatalogueTable::columnIndex(const QString& name) const {
    for (qsizetype i = 0; i < m_columns.size(); ++i)
        if (m_columns.at(i).name.compare(name, Qt::CaseInsensitive) == 0) return i;
    return -1;
}

void CatalogueTable::removeRecord(qsizetype row) {
    if (row < 0 || row >= m_records.size()) return;
    m_records.removeAt(row);
    if (m_selectedRow == row)
        m_selectedRow = -1;
    else if (m_selectedRow > row)
        --m_selectedRow;
}

void CatalogueTable::clearRecords() {
    m_records.clear();
    m_selectedRow = -1;
}

void CatalogueTable::clear() {
    m_columns.clear();
    clearRecords();
}

} // namespace morvane
