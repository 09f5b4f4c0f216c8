// The player window: plays one file of the list in a frameless window of its own, with full screen, a
// control panel that slides away while the cursor rests, seeking, volume, stream choice and
// snapshots. The logic is PlayerWindow; this view lays out the controls, turns the model's timer
// flags into timers and forwards the user's actions. Main thread only.
#pragma once

#include "PlayerWindow.h"

#include <QDialog>
#include <QTimer>

#include <array>

class QComboBox;
class QLabel;
class QMenu;
class QSlider;
class QToolButton;

namespace morvane {

class Slider_Ctrl;
class VideoSurface;

class frmPlayer : public QDialog {
    Q_OBJECT
public:
    // `media` is the program's one player; the window owns it until it closes. The caller sets
    // model().openFolder for the snapshot folder entry.
    frmPlayer(MediaPlayer& media, const QString& file, float aspect, QWidget* parent = nullptr);
    ~frmPlayer() override;

    PlayerWindow& model() { return m_model; }
    VideoSurface* picPreview() const { return m_preview; }
    QToolButton* button(int index) const { return Cmd_Player.at(static_cast<std::size_t>(index)); }
    QSlider* playBar() const { return ProgressBar_Play; }
    Slider_Ctrl* volumeSlider() const { return Slider_MPVolume; }
    QWidget* panel() const { return PicMainPanel; }
    QWidget* caption() const { return Pic_FormCaption; }
    QMenu* playerMenu() const { return mnuPlayers; }
    QComboBox* streamCombo(int index) const {
        return Combo_AudioSubTitle.at(static_cast<std::size_t>(index));
    }
    QLabel* timeLabel() const { return lbl_PlayTime; }

protected:
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildWindow();
    void setupConnections();
    void layoutControls();
    void showModel();
    void syncTimers();
    void fillStreams();
    QString chooseSnapshotFile(const QString& name, const QString& folder, int& filterIndex);

    MediaPlayer& m_media;
    PlayerWindow m_model;
    bool m_unloaded = false;
    QRect m_normalGeometry; // the window's place before full screen

    QWidget* Pic_FormCaption = nullptr;
    QLabel* lbl_FileName = nullptr;
    VideoSurface* m_preview = nullptr;
    QWidget* PicMainPanel = nullptr;
    std::array<QToolButton*, 5> Cmd_Player{};
    QToolButton* m_fullScreenButton = nullptr;
    QToolButton* m_closeButton = nullptr;
    QSlider* ProgressBar_Play = nullptr;
    QLabel* lbl_PlayTime = nullptr;
    QLabel* lbl_PlayTotal = nullptr;
    Slider_Ctrl* Slider_MPVolume = nullptr;
    std::array<QComboBox*, 2> Combo_AudioSubTitle{};
    QMenu* mnuPlayers = nullptr;
    QAction* m_fullScreenEntry = nullptr;

    QTimer Timer_WaitToPlay;
    QTimer Timer_GetMousePosition;
    QTimer Timer_HidePanel;
    QTimer Timer_Motion;
};

} // namespace morvane
