#include "Preferences_Form.h"

#include "Registry_Mod.h"

namespace morvane {

PreferencesForm Preferences_Load() {
    PreferencesForm form;
    form.checkUpdates = Update_Active;
    form.optClose = 2;
    if (Close_DontAsk) {
        if (Close_Event == 1)
            form.optClose = 0;
        else if (Close_Event == 2)
            form.optClose = 1;
    }
    form.optConversion = Output_NameMode == 0 ? 0 : 1;
    return form;
}

void Preferences_Apply(const PreferencesForm& form) {
    Update_Active = form.checkUpdates;
    switch (form.optClose) {
    case 0:
        Close_Event = 1;
        Close_DontAsk = true;
        break;
    case 1:
        Close_Event = 2;
        Close_DontAsk = true;
        break;
    default:
        Close_Event = 0;
        Close_DontAsk = false;
        break;
    }
    Output_NameMode = form.optConversion == 0 ? 0 : 1;
    Save_Settings();
}

PreferencesForm Preferences_Default() {
    return PreferencesForm{true, 2, 1};
}

} // namespace morvane
