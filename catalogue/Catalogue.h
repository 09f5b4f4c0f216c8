// The catalogue the main window owns for the whole run: the format, preset and favorites tables and
// the preset list under the browser. Main thread only.
#pragma once

#include "CatalogueTable.h"
#include "ValueList.h"

namespace morvane {

struct Catalogue {
    CatalogueTable ReportControl_FormatMain;
    CatalogueTable ReportControl_PresetMain;
    CatalogueTable ReportControl_FavoritesMain;
    // The presets of the open group, names with their IDs as item data.
    ValueList Cmd_OutputPreset;
};

} // namespace morvane
