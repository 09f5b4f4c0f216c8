// Table files: a header line of column names, then one line per record; each field in double quotes,
// fields joined by commas, lines ended by CR LF, text in UTF-8. In an enciphered file every line as a
// whole goes through the line cipher. No escaping, no version, no checksum.
//
// The routines never fail to their caller: a failure is shown through Show_Message (critical icon,
// empty title) and the routine returns. Main thread only.
#pragma once

#include "CatalogueTable.h"

#include <QString>

namespace morvane {

enum TableLoadMode : int {
    TableLoad_Replace = 0, // columns from the file's header, records replaced
    TableLoad_Append = 1   // the file's header is skipped, records appended to the existing columns
};

void Table_LoadFile(CatalogueTable& table, const QString& path, int mode, bool enciphered);
// Writes every record; cells and column names lose their leading and trailing spaces.
void Table_SaveFile(const CatalogueTable& table, const QString& path, bool enciphered);
// Writes the header and only the records whose cell "Removable" is exactly "Yes".
void Table_SaveUserRows(const CatalogueTable& table, const QString& path, bool enciphered);

} // namespace morvane
