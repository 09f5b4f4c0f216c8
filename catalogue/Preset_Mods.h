// Access to the catalogue tables and the filling of value lists from them. Rows are 1-based here,
// 0 meaning "no such row", as every caller of these routines counts them. A failing access ends the
// routine with an empty result and never reaches the user. Main thread only.
#pragma once

#include "CatalogueTable.h"
#include "ValueList.h"

#include <QString>

namespace morvane {

// Column names are compared in upper case and the last column of a name wins.
QString Cell_Get(const CatalogueTable& table, qsizetype row, const QString& columnName);
// Without forceMark the value keeps the lock mark of the cell it replaces; with forceMark it gets
// a mark exactly when markWanted is false.
void Cell_Set(CatalogueTable& table, qsizetype row, const QString& columnName, const QString& value,
              bool forceMark, bool markWanted);
// First row whose cell equals the value exactly, case-sensitive; 0 when none.
qsizetype Row_Find(const CatalogueTable& table, const QString& columnName, const QString& value);
// Fields separated by "//", trimmed, into columns 1, 2, 3 ...; mode 0 adds a record, mode 1 fills
// the given row. Without plainFlag each field keeps the lock mark of the cell it replaces.
void Row_AddFromText(CatalogueTable& table, const QString& text, int mode, bool plainFlag, qsizetype row);
// Nine characters: two hex digits, five decimal digits, the same two hex digits again.
QString Row_NewId();

// Target gets the source's columns (names and widths) and no rows.
void Table_CopyColumns(CatalogueTable& target, const CatalogueTable& source);
// With ask, a Yes/No question comes first; No leaves the table as it is.
void Table_ClearRows(CatalogueTable& table, bool ask);
void Table_RemoveSelected(CatalogueTable& table, bool ask);
// Refuses with "'<name>' is empty!" when a source record has an empty third column; otherwise adds
// an empty record (mode 0 at the end, mode 2 before the selected one) and returns its 1-based row.
qsizetype Row_AddChecked(CatalogueTable& target, const CatalogueTable& source, int mode);

// The items of a ";"-list: each closed by ";", what follows the last ";" ignored, "#" removed.
QStringList Split_SemicolonList(const QString& listText);

void List_FillByGroup(const CatalogueTable& table, const QString& maker, const QString& keyword,
                      ValueList& list);
void List_FillCodecs(const CatalogueTable& formatTable, const QString& formatKey, const QString& columnName,
                     ValueList& list);
void List_FillFromRow(const CatalogueTable& formatTable, qsizetype row, const QString& columnName,
                      ValueList& list);
void List_Fill(const QString& listText, ValueList& list);
// A leading "#" disables the list, otherwise it is enabled; the value is selected when the list
// holds it, else fallback 0 selects the first item and 1 the last.
void List_Select(ValueList& list, const QString& value, int fallback);
// The same for a number box: the mark decides enabled, "#" is removed, "-" counts as 0.
void Spin_Set(const QString& value, SpinField& field);

} // namespace morvane
