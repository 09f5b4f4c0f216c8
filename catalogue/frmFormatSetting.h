// The preset settings window: a view of FormatSetting. Every user action calls the model and then
// redraws every control from it, so the window keeps no state of its own beyond Group B, the switch
// that the main window's state rule throws while a conversion runs. Created once by the main window
// and kept for the run. Main thread only.
#pragma once

#include "Catalogue.h"
#include "FormatSetting.h"

#include <QDialog>

#include <array>
#include <functional>

class QAction;
class QButtonGroup;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QRadioButton;
class QTableWidget;

namespace morvane {

class UpDownControl;

class frmFormatSetting : public QDialog {
    Q_OBJECT
public:
    frmFormatSetting(Catalogue& catalogue, FormatSetting& settings, QWidget* parent = nullptr);
    ~frmFormatSetting() override;

    // Group B: the lists, their titles, the quality radios, the boxes and their spinners. A control
    // is enabled only when both the model and Group B allow it.
    void Set_GroupBEnabled(bool on);
    bool groupBEnabled() const { return m_groupB; }

    // Selects the row of the main list's selection, redraws and runs the dialog modally.
    int showModal();
    // Draws every control from the model; for callers that changed the model behind the window.
    void redraw();

    // Keep (Cmd_Panel 1) and close without keeping (Cmd_Panel 0, also Escape and the close box).
    void accept() override;
    void reject() override;

signals:
    void presetsSaved();
    void closedWithoutSaving();

private:
    struct NumberField {
        SpinField* field = nullptr;
        QLineEdit* box = nullptr;
        UpDownControl* spinner = nullptr;
        QLabel* label = nullptr; // the caption beside the box, shown and enabled with it
    };

    void buildControls();
    void setupConnections();
    QWidget* buildVideoBox();
    QWidget* buildAudioBox();
    QWidget* buildPresetBox();
    QComboBox* makeList(int list);
    NumberField makeNumberField(SpinField& field, const QString& name, const QString& caption);
    void connectNumberField(const NumberField& number);
    // Runs a user's change on the model and redraws; ignored while drawing or closing.
    void userAction(const std::function<void()>& change);
    void redrawPresetList();
    void redrawNumberField(const NumberField& number);
    void showListMenu(const QPoint& position);

    Catalogue& m_catalogue;
    FormatSetting& m_settings;
    bool m_groupB = true;
    bool m_redrawing = false;
    bool m_closing = false;
    bool m_askInstalled = false;

    std::array<QComboBox*, 11> m_lists{};
    std::array<QLabel*, 12> m_listTitles{}; // one per list, the last for the quality radios
    NumberField m_width, m_height, m_bitrate;
    QButtonGroup* m_quality = nullptr;
    std::array<QRadioButton*, 3> m_qualityRadios{};
    QGroupBox* m_presetBox = nullptr;
    QTableWidget* m_presetList = nullptr;
    QLabel* m_totalPreset = nullptr;
    QPushButton* m_delete = nullptr;
    QPushButton* m_new = nullptr;
    QMenu* m_listMenu = nullptr;
    QAction* m_menuDelete = nullptr;
    QAction* m_menuRename = nullptr;
    QPushButton* m_close = nullptr;
    QPushButton* m_keep = nullptr;
};

} // namespace morvane
