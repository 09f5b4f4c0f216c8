#include "CatalogueTable.h"

namespace morvane {

void CatalogueTable::addColumn(const QString& name, int width) {
    m_columns.append({name, width});
    for (QStringList& record : m_records)
        record.append(QString());
}

qsizetype CatalogueTable::addRecord() {
    QStringList record;
    record.reserve(m_columns.size());
    for (qsizetype i = 0; i < m_columns.size(); ++i)
        record.append(QString());
    m_records.append(std::move(record));
    return m_records.size() - 1;
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
    if (row >= 0 && row < m_records.size()) m_records.removeAt(row);
}

void CatalogueTable::clearRecords() {
    m_records.clear();
}

void CatalogueTable::clear() {
    m_columns.clear();
    m_records.clear();
}

} // namespace morvane
