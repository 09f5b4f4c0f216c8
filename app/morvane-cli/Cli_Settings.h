// Changes of single output values on the command line, made through the preset settings as a click or
// a typed number would make them, so that every dependent list follows and locks hold.
#pragma once

#include "FormatSetting.h"
#include "OutputBrowser.h"

#include <QString>

namespace morvane {

// The field names --set takes, for the help text.
QString Cli_SetFields();
// Sets one field; "" on success, else why not (an unknown field, a value the preset does not offer,
// listed with the values it does, or a value the preset locks). A number beyond the preset's limits
// is set to the nearest limit, and `clamped` then says so; otherwise it is left empty.
QString Cli_ApplySet(FormatSetting& settings, const QString& field, const QString& value, QString& clamped);
// Applies a row of the preset table as the browser applies it: its values into the settings, and the
// panel of its maker, which decides what the conversion keeps of the streams.
void Cli_ApplyPreset(FormatSetting& settings, OutputBrowser& browser, const CatalogueTable& presets,
                     qsizetype row);

} // namespace morvane
