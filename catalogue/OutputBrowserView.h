// The output browser on the main window, drawn from OutputBrowser: the bar of five panels, each
// panel's strip of group buttons (the device maker list beside the Devices strip, the favorites
// message over an empty Favorites panel), the preset list of the open group and the favorites,
// settings and search buttons. Every press goes to the model; the view then redraws from it.
// Main thread only.
#pragma once

#include "Catalogue.h"
#include "FormatSetting.h"
#include "OutputBrowser.h"

#include <QWidget>

#include <array>

class QButtonGroup;
class QComboBox;
class QLabel;
class QPushButton;
class QScrollArea;
class QStackedWidget;
class QToolButton;

namespace morvane {

class OutputBrowserView : public QWidget {
    Q_OBJECT
public:
    OutputBrowserView(OutputBrowser& browser, Catalogue& catalogue, FormatSetting& settings,
                      QWidget* parent = nullptr);

    // Redraws every control from the model; strips are rebuilt only when their groups changed.
    void redraw();
    // Rebuilds the pictures and colours after a theme switch.
    void reloadTheme();
    // Group A of the main window's state rule: the strips' buttons and the preset list.
    void setGroupEnabled(bool on);
    void setMakerEnabled(bool on);

    // ---- User actions, also for tests: each acts as the click on its control would.
    void pressPanel(int panel);
    void pressGroup(int panel, int button);
    void chooseMaker(int index);
    void choosePreset(int index);

    // ---- Controls.
    QPushButton* panelButton(int panel) const { return Cmd_PanelOutput.at(static_cast<size_t>(panel)); }
    QToolButton* groupButton(int panel, int button) const;
    int groupButtonCount(int panel) const;
    QScrollArea* strip(int panel) const { return m_strips.at(static_cast<size_t>(panel)); }
    QComboBox* makerList() const { return ListBox_MakerNames; }
    QComboBox* presetList() const { return Cmd_OutputPreset; }
    QLabel* favoritesMessage() const { return Pic_FavMsg; }
    QPushButton* settingsButton() const { return m_settingsButton; }
    QPushButton* favoriteButton() const { return m_favoriteButton; }
    QPushButton* searchButton() const { return m_searchButton; }

signals:
    // A press changed the model's state; the window then follows (merge box, convert button).
    void browserChanged();

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* buildPanelBar();
    QWidget* buildStrips();
    QWidget* buildPresetRow();
    void rebuildStrip(int panel);
    void redrawStrip(int panel);
    void afterAction();

    OutputBrowser& m_browser;
    Catalogue& m_catalogue;
    FormatSetting& m_settings;

    std::array<QPushButton*, 5> Cmd_PanelOutput{};
    QButtonGroup* m_panelGroup = nullptr;
    QStackedWidget* m_stack = nullptr;
    std::array<QScrollArea*, 5> m_strips{};
    std::array<QList<QToolButton*>, 5> m_buttons;
    std::array<QStringList, 5> m_builtGroups; // caption and picture of every built button
    QComboBox* ListBox_MakerNames = nullptr;
    QLabel* Pic_FavMsg = nullptr;
    QWidget* m_favoritesStrip = nullptr;
    QComboBox* Cmd_OutputPreset = nullptr;
    QLabel* lbl_PresetTitle = nullptr;
    QLabel* lbl_PresetSummary = nullptr;
    QPushButton* m_settingsButton = nullptr;
    QPushButton* m_favoriteButton = nullptr;
    QPushButton* m_searchButton = nullptr;
    bool m_groupEnabled = true;
    bool m_redrawing = false;
};

} // namespace morvane
