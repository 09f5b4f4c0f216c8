// The player window's logic apart from its widgets: the buttons, full screen, the control panel that
// slides away while the cursor rests in full screen, seeking by the bar, snapshots, opening and
// closing. The window shows this state and forwards its events here; the four timers are flags that
// the window turns into real timers, so that tests tick them by hand. Main thread only.
#pragma once

#include "MediaPlayer_Mod.h"

#include <QPoint>
#include <QString>

#include <functional>

namespace morvane {

class PlayerWindow {
public:
    explicit PlayerWindow(MediaPlayer& media);
    ~PlayerWindow();
    PlayerWindow(const PlayerWindow&) = delete;
    PlayerWindow& operator=(const PlayerWindow&) = delete;

    // ---- What the window is opened on.
    QString fileName;
    float aspect = 0; // item column 20
    PlayerSurface* surface = nullptr;

    // ---- State the window shows.
    PlayerButtons buttons;
    PlayPanel panel;
    bool fullScreen = false;
    QString mnuFullScreenCaption = QStringLiteral("Full Screen");
    QString fullScreenImage = QStringLiteral("img_fullscreen");
    bool captionVisible = true;
    int panelTop = 0;    // PicMainPanel's top
    int panelHome = 0;   // its top while shown
    int panelTarget = 0; // where the slide ends: below the window's bottom
    QList<PlayerTrack> tracks;

    struct Timers {
        bool WaitToPlay = false;
        bool GetMousePosition = false;
        bool HidePanel = false;
        bool Motion = false;
    } timers;

    // ---- What the window does for the logic. Empty members do nothing.
    // The save dialog: filter index in and out, "" for Cancel.
    std::function<QString(const QString& name, const QString& folder, int& filterIndex)> saveDialog;
    std::function<void(const QString& folder)> openFolder;
    std::function<void()> closeWindow;
    std::function<void(bool full)> setFullScreen;
    std::function<void()> changed; // anything above changed

    // ---- Opening and closing.
    void Form_Load();
    void Timer_WaitToPlay_Tick();
    void Form_Unload();

    // ---- Buttons, menu, bar, volume, streams.
    void Cmd_Player_Click(int index);
    void Toggle_FullScreen();
    void mnuSnapShot_Click();
    void ProgressBar_Play_Change(int value);
    void Slider_MPVolume_Change(int value);
    void Combo_AudioSubTitle_Click(int combo, const QString& text);

    // ---- Layout and the sliding panel.
    void Layout(int windowHeight, int panelHeight);
    void Timer_GetMousePosition_Tick(QPoint cursor);
    void Timer_HidePanel_Tick();
    void Timer_Motion_Tick();
    void Show_Panel();
    void Hide_Panel();

    // The end of the stream, routed here by the player's State event.
    void PlayerWindow_StopPlayer() { Cmd_Player_Click(1); }

private:
    PlayerOptions options() const;
    void snapshot();
    void notify();

    MediaPlayer& m_media;
    QPoint m_lastCursor{-1, -1};
    int m_panelHeight = 0;
};

} // namespace morvane
