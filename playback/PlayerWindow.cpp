#include "PlayerWindow.h"

#include "Globals.h"
#include "Image_Convert.h"
#include "Registry_Mod.h"
#include "mMain.h"

#include <QDir>
#include <QFileInfo>

namespace morvane {

PlayerWindow::PlayerWindow(MediaPlayer& media) : m_media(media) {
    m_media.PlayerWindow_StopPlayer = [this] { PlayerWindow_StopPlayer(); };
}

PlayerWindow::~PlayerWindow() {
    m_media.PlayerWindow_StopPlayer = nullptr;
    if (m_media.PlayerOwnerForm == &panel) m_media.PlayerOwnerForm = nullptr;
}

void PlayerWindow::notify() {
    if (changed) changed();
}

PlayerOptions PlayerWindow::options() const {
    PlayerOptions o;
    o.FileName = fileName;
    o.WindowHandle = surface;
    o.Aspect = aspect;
    o.VolumeByRef = static_cast<std::int16_t>(buttons.volume);
    return o;
}

void PlayerWindow::Form_Load() {
    m_media.PlayerOwnerForm = &panel;
    timers.WaitToPlay = true;
    notify();
}

void PlayerWindow::Timer_WaitToPlay_Tick() {
    m_media.player().setAspect(aspect);
    timers.WaitToPlay = false;
    Cmd_Player_Click(0);
}

void PlayerWindow::Form_Unload() {
    m_media.Player_Command(PlayerMode_Stop, {});
    m_media.player().setVideoWindow(nullptr);
    PlayerWindowOpen = false;
    timers.WaitToPlay = timers.HidePanel = timers.GetMousePosition = timers.Motion = false;
    if (m_media.PlayerOwnerForm == &panel) m_media.PlayerOwnerForm = nullptr;
    notify();
}

void PlayerWindow::Cmd_Player_Click(int index) {
    switch (index) {
    case 0:
        if (PlayPause_Click(m_media, buttons, options())) tracks = m_media.player().Tracks();
        break;
    case 1:
        Stop_Click(m_media, buttons);
        break;
    case 2:
        Mute_Click(m_media, buttons);
        break;
    case 3:
        if (closeWindow) closeWindow();
        return;
    case 4:
        snapshot();
        break;
    default:
        return;
    }
    notify();
}

void PlayerWindow::snapshot() {
    if (!saveDialog) return;
    // The picture of the moment of the press: the film plays on while the dialog is open.
    const QImage frame = m_media.player().GetFrame();
    if (frame.isNull()) {
        Show_Message(QStringLiteral("There is no picture to capture."), MB_ICONEXCLAMATION,
                     QStringLiteral("Player"));
        return;
    }
    int filterIndex = 1;
    const QString chosen = saveDialog(Snapshot_Name(panel.lbl_PlayTimeTag), Path_Capture, filterIndex);
    if (chosen.isEmpty()) return; // cancelled: nothing saved, the capture folder as it was
    const int type = ImageTypeOfFilter(filterIndex) ? ImageTypeOfFilter(filterIndex) : Image_Png;
    QString target = chosen;
    const QString extension = ImageTypeExtension(type);
    if (!target.endsWith(extension, Qt::CaseInsensitive)) target += extension;
    QString error;
    if (!Save_Snapshot(frame, type, target, Folder_Temp, &error)) {
        Show_Message(error, MB_ICONEXCLAMATION, QStringLiteral("Player"));
        return;
    }
    QString folder = QFileInfo(target).absolutePath();
    if (!folder.endsWith(QLatin1Char('/'))) folder += QLatin1Char('/');
    Path_Capture = folder;
    Write_Setting(REGISTRY_PRODUCT, QStringLiteral("CapturePath"), Path_Capture);
}

void PlayerWindow::mnuSnapShot_Click() {
    if (openFolder) openFolder(Path_Capture);
}

void PlayerWindow::Toggle_FullScreen() {
    fullScreen = !fullScreen;
    timers.GetMousePosition = fullScreen;
    mnuFullScreenCaption = fullScreen ? QStringLiteral("Exit full screen") : QStringLiteral("Full Screen");
    fullScreenImage = fullScreen ? QStringLiteral("img_exit_fullscreen") : QStringLiteral("img_fullscreen");
    if (!fullScreen) Show_Panel(); // a window never keeps a hidden panel
    if (setFullScreen) setFullScreen(fullScreen);
    notify();
}

void PlayerWindow::ProgressBar_Play_Change(int value) {
    m_media.Seek_Preview(value);
}

void PlayerWindow::Slider_MPVolume_Change(int value) {
    Volume_Change(m_media, buttons, value);
    notify();
}

void PlayerWindow::Combo_AudioSubTitle_Click(int combo, const QString& text) {
    AudioSubTitle_Choose(m_media, options(), combo, text);
}

void PlayerWindow::Layout(int windowHeight, int panelHeight) {
    m_panelHeight = panelHeight;
    panelHome = windowHeight - panelHeight;
    panelTarget = windowHeight;
    if (!timers.Motion && captionVisible) panelTop = panelHome;
    notify();
}

void PlayerWindow::Timer_GetMousePosition_Tick(QPoint cursor) {
    if (cursor == m_lastCursor) {
        timers.HidePanel = true; // a running timer goes on; it is not started again
    } else {
        m_lastCursor = cursor;
        Show_Panel();
    }
    notify();
}

void PlayerWindow::Timer_HidePanel_Tick() {
    Hide_Panel();
}

void PlayerWindow::Timer_Motion_Tick() {
    panelTop = std::min(panelTop + 2, panelTarget);
    if (panelTop >= panelTarget) timers.Motion = false;
    notify();
}

void PlayerWindow::Show_Panel() {
    panelTop = panelHome;
    captionVisible = true;
    timers.Motion = false;
    timers.HidePanel = false;
    notify();
}

void PlayerWindow::Hide_Panel() {
    captionVisible = false;
    timers.HidePanel = false;
    timers.Motion = true;
    notify();
}

} // namespace morvane
