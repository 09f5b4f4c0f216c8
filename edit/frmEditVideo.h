// The edit window: one row of the list trimmed, cropped, framed, adjusted and given effects, with the
// player's picture shown live as the output will show it. The logic is EditVideo and its tab models;
// this view lays out the controls, shows their state, turns the model's timer flags into timers and
// forwards the user's actions. Modal; main thread only.
#pragma once

#include "EditVideo.h"

#include <QDialog>
#include <QTimer>

#include <array>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QPushButton;
class QStackedWidget;
class QToolButton;

namespace morvane {

class EditPreview;
class Slider_Ctrl;
class TrimBarView;

class frmEditVideo : public QDialog {
    Q_OBJECT
public:
    // `row` of `table` is edited with the program's one player. EditWindowOpen is the caller's to set
    // before the window shows; the window clears it when it unloads.
    frmEditVideo(FileViewMain& table, MediaPlayer& media, int row, QWidget* parent = nullptr);
    ~frmEditVideo() override;

    EditVideo& model() { return m_model; }
    QToolButton* tabButton(int index) const { return Cmd_Tab.at(static_cast<std::size_t>(index)); }
    QPushButton* panelButton(int index) const { return Cmd_Panels.at(static_cast<std::size_t>(index)); }
    QToolButton* effectButton(int index) const {
        return Pic_EffectButton.at(static_cast<std::size_t>(index));
    }
    QToolButton* aspectButton(int index) const { return Cmd_AspectRatio.at(static_cast<std::size_t>(index)); }
    Slider_Ctrl* adjustSlider(int index) const { return Slider_Adjust.at(static_cast<std::size_t>(index)); }
    QComboBox* effectChoice() const { return Cmb_Effects; }
    EditPreview* preview() const { return m_preview; }
    TrimBarView* trimBar() const { return m_trimBar; }

    // The picture area's size: the output's 16:9 frame.
    static constexpr int kPreviewWidth = 640;
    static constexpr int kPreviewHeight = 360;

protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QWidget* buildTrimTab();
    QWidget* buildCropTab();
    QWidget* buildEffectTab();
    QWidget* buildAdjustTab();
    QWidget* buildPlayerRow();
    void setupConnections();
    void showModel();
    void syncTimers();
    void showPicture(); // the picture, the position and the times only
    void makeEffectPictures();
    void pickColour(int row);

    EditVideo m_model;
    bool m_activated = false;
    bool m_closing = false;

    std::array<QToolButton*, EditVideo::kTabs> Cmd_Tab{};
    QStackedWidget* m_tabs = nullptr;
    EditPreview* m_preview = nullptr;
    TrimBarView* m_trimBar = nullptr;
    std::array<QPushButton*, 2> Cmd_Panels{};
    std::array<QPushButton*, 4> Cmd_Reset{};

    // Player row.
    std::array<QToolButton*, 3> Cmd_Player{};
    QLabel* lbl_PlayTime = nullptr;
    QLabel* lbl_PlayTotal = nullptr;
    Slider_Ctrl* Slider_MPVolume = nullptr;
    std::array<QComboBox*, 2> Combo_AudioSubTitle{};

    // Trim tab.
    QLabel* Txt_TrimStartTime = nullptr;
    QLabel* Txt_TrimEndTime = nullptr;
    QLabel* lbl_SelectedTime = nullptr;
    std::array<QToolButton*, 2> Cmd_TrimStartTime{};
    std::array<QToolButton*, 2> Cmd_TrimEndTime{};
    std::array<QPushButton*, 5> Cmd_Trim{};

    // Crop tab.
    std::array<QToolButton*, 5> Cmd_AspectRatio{};
    QLabel* Txt_CropOriginalSize = nullptr;
    QLabel* Txt_CropSize = nullptr;
    std::array<QLabel*, 4> lbl_Crop{};
    std::array<QLabel*, 4> lbl_Pad{};
    QCheckBox* Chk_Deinterlace = nullptr;
    QToolButton* Switch_Deinterlace = nullptr;
    QLabel* Pic_CropOutput = nullptr;

    // Effect tab.
    std::array<QToolButton*, EffectsPanel::kButtons> Pic_EffectButton{};
    QComboBox* Cmb_Effects = nullptr;
    QGroupBox* EffectValues_GroupBox = nullptr;
    std::array<QLabel*, EffectsPanel::kValueRows> lbl_EffectValue{};
    std::array<Slider_Ctrl*, EffectsPanel::kValueRows> EffectValues_Slider{};
    std::array<QCheckBox*, EffectsPanel::kValueRows> EffectValues_CheckBox{};
    std::array<QToolButton*, EffectsPanel::kValueRows> EffectValues_ColorPicker{};

    // Adjust tab.
    std::array<Slider_Ctrl*, 3> Slider_Adjust{};
    std::array<QLabel*, 3> lbl_AdjustValue{};
    std::array<QToolButton*, 3> Cmd_Adjust{};
    QPushButton* Cmd_ApplyToAll = nullptr;

    QTimer Timer_WaitToPlay;
    QTimer Timer_GetPreview;
    QTimer Timer_GetCropInfo;
    QTimer Timer_PlaySelected;
};

// The sample picture the effect buttons show their effect on: colour bars, a gradient and a few shapes,
// enough for every effect to show what it does.
QImage Effect_SamplePicture(QSize size);

} // namespace morvane
