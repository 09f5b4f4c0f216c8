// The preferences window: update check, what closing the main window does, and how existing output
// files are treated. Modal; "Close" writes and saves, "Cancel" and Escape leave the settings as they
// were, "Default" only resets the controls. The values live in Preferences_Form.
#pragma once

#include "Preferences_Form.h"

#include <QDialog>

class QButtonGroup;
class QCheckBox;
class QPushButton;
class QRadioButton;

namespace morvane {

class frmPreferences : public QDialog {
    Q_OBJECT
public:
    explicit frmPreferences(QWidget* parent = nullptr);

    // The controls' current values, and setting the controls from values.
    PreferencesForm values() const;
    void showValues(const PreferencesForm& form);

    QCheckBox* Chk_CheckUpdates() const { return m_checkUpdates; }
    QRadioButton* Opt_Close(int index) const;
    QRadioButton* Opt_Conversion(int index) const;
    QPushButton* Cmd_Panels(int index) const { return m_panels[qBound(0, index, 2)]; }

private:
    void setupConnections();

    QCheckBox* m_checkUpdates = nullptr;
    QButtonGroup* m_close = nullptr;
    QButtonGroup* m_conversion = nullptr;
    QPushButton* m_panels[3] = {nullptr, nullptr, nullptr};
};

} // namespace morvane
