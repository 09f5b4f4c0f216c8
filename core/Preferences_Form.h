// The values of the preferences window, apart from the window: read from the settings globals,
// written back to them and saved. Main thread only.
#pragma once

namespace morvane {

struct PreferencesForm {
    bool checkUpdates = true;
    int optClose = 2;      // 0 minimise to the tray, 1 exit, 2 always ask
    int optConversion = 1; // 0 overwrite existing file, 1 rename automatically
};

// What the window shows for the current settings. A stored choice only counts when "don't ask"
// is set; otherwise the window offers "Always ask me".
PreferencesForm Preferences_Load();

// Writes the values to the settings globals and saves them.
void Preferences_Apply(const PreferencesForm& form);

// The controls' reset values; nothing is written.
PreferencesForm Preferences_Default();

} // namespace morvane
