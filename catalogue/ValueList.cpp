#include "ValueList.h"

namespace morvane {

void ValueList::clear() {
    m_items.clear();
    m_selected = -1;
}

void ValueList::addItem(const QString& text, const QString& data) {
    m_items.append({text, data});
}

qsizetype ValueList::indexOf(const QString& text) const {
    for (qsizetype i = 0; i < m_items.size(); ++i)
        if (m_items.at(i).text == text) return i;
    return -1;
}

void ValueList::select(qsizetype index) {
    m_selected = (index >= 0 && index < m_items.size()) ? index : -1;
}

QString ValueList::selectedText() const {
    return m_selected < 0 ? QString() : m_items.at(m_selected).text;
}

QString ValueList::selectedData() const {
    return m_selected < 0 ? QString() : m_items.at(m_selected).data;
}

} // namespace morvane
