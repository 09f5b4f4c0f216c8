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

// Files over TableFile_MaxBytes are refused.
void Table_LoadFile(CatalogueTable& table, const QString& path, int mode, bool enciphered);
// Writes every record; cells and column names lose their leading and trailing spaces. The file is
// replaced whole or not at all: a failed save keeps the previous file.
void Table_SaveFile(const CatalogueTable& table, const QString& path, bool enciphered);
// Writes the header and only the records whose cell "Removable" is exactly "Yes".
void Table_SaveUserRows(const CatalogueTable& table, const QString& path, bool enciphered);

// Loads a file that the program wrote itself, all or nothing: every line must decipher (when
// enciphered) to quoted fields joined by commas, every record has as many fields as the header, and
// in append mode the header no more than the table has columns. "" when loaded; else why not (with
// the line number), the table untouched and nothing shown, so that the caller decides what to do.
QString Table_LoadWhole(CatalogueTable& table, const QString& path, int mode, bool enciphered);

} // namespace morvane
