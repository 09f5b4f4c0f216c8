// Start-up load of the catalogue. The shipped format and preset tables are compiled in enciphered;
// they are written out to the temporary folder, loaded and deleted again at once, so that they lie
// on disk only while the load runs. Then the user's presets are appended behind the built-in rows
// and the favorites are loaded. Main thread only.
#pragma once

#include "Catalogue.h"

#include <QByteArray>

namespace morvane {

// The enciphered table files as the build made them from data/format.txt and data/preset.txt.
QByteArray Shipped_FormatTable();
QByteArray Shipped_PresetTable();

// Needs Folder_Temp, the user preset and favorites paths and Catalogue_Passphrase set. Failures are
// told to the user and never stop the start. A user file that is damaged is left out whole, and a
// copy of it is kept beside it as "<name>.corrupt-YYYYMMDD-HHMMSS".
void Catalogue_Load(Catalogue& catalogue);

} // namespace morvane
