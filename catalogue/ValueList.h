// The state of the value controls that the catalogue fills: a list of texts with item data, one
// selection and an enabled flag, and a number box with its spinner. Windows show these; they hold
// nothing of their own. Main thread only.
#pragma once

#include <QList>
#include <QString>

namespace morvane {

struct ValueListItem {
    QString text;
    QString data; // item data: a row ID or a row number, as text
};

class ValueList {
public:
    const QList<ValueListItem>& items() const { return m_items; }
    qsizetype count() const { return m_items.size(); }
    void clear();
    void addItem(const QString& text, const QString& data = QString());
    // Index of the first item with exactly this text, or -1.
    qsizetype indexOf(const QString& text) const;

    qsizetype selectedIndex() const { return m_selected; }
    // Out of range clears the selection.
    void select(qsizetype index);
    // The selected item's text, "" with nothing selected.
    QString selectedText() const;
    QString selectedData() const;

    bool enabled = true;
    bool visible = true;

private:
    QList<ValueListItem> m_items;
    qsizetype m_selected = -1;
};

// A number box with its spinner: the box's text, the spinner's limits, one enabled flag for both.
struct SpinField {
    QString text;
    int minimum = 0;
    int maximum = 0;
    bool enabled = true;
    bool visible = true;
};

} // namespace morvane
