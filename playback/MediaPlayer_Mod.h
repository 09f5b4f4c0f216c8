// The shared player as the windows use it: Player_Command with its modes, the handlers of the
// player's events that keep the owner's time labels and play bar, the end-of-stream routing to the
// window that owns the player, and the snapshot helper.
//
// One MediaPlayer wraps the one FFPlayer of the program; the main window's preview, the edit window
// and the player window take turns with it (EditWindowOpen, PlayerWindowOpen). Main thread only.
#pragma once

#include "FFPlayer.h"

#include <QString>

#include <cstdint>
#include <functional>

namespace morvane {

// What a caller hands to Player_Command.
struct PlayerOptions {
    QString OverlayText; // always ""
    QString FileName;
    std::int64_t Position = 0;
    PlayerSurface* WindowHandle = nullptr; // where the picture goes; none plays without drawing
    float Aspect = 0;                      // item column 20; 0 keeps the file's own
    std::int16_t VolumeByRef = 100;
    int AudioStream = -1;    // -1 keeps the player's choice
    int SubtitleStream = -1; // -1 is none
    bool ShowVideo = true;
    std::int32_t WindowMode = 0; // 0, 1, 2: kept for callers; the picture is drawn the same way
    std::int32_t ScaleMode = 0;  // 0, 1, 2: likewise
};

enum PlayerMode : int {
    PlayerMode_OpenAndPlay = -1,
    PlayerMode_Start = 0,
    PlayerMode_TogglePause = 1,
    PlayerMode_Stop = 2,
    PlayerMode_Step = 3,
};

// The labels and the play bar of the window that owns the player. The view fills barWidth and the
// preview's size, shows the texts, and calls changed() to learn of a new state.
struct PlayPanel {
    QString lbl_PlayTime = QStringLiteral("00:00:00");
    QString lbl_PlayTimeTag = QStringLiteral("00:00:00.000");
    QString lbl_PlayTotal = QStringLiteral("00:00:00");
    int barMax = 100;
    int barValue = 0;
    int barWidth = 100; // ProgressBar_Play's width, its maximum after Opened
    int previewWidth = 0;
    int previewHeight = 0;
    std::function<void()> changed;
};

class MediaPlayer : public FFPlayerEvents {
public:
    explicit MediaPlayer(FFPlayer& player);
    ~MediaPlayer() override;
    MediaPlayer(const MediaPlayer&) = delete;
    MediaPlayer& operator=(const MediaPlayer&) = delete;

    FFPlayer& player() { return m_player; }

    // Runs a mode of PlayerMode. Messages go through Show_Message under "Player".
    void Player_Command(int mode, const PlayerOptions& options);

    // A change of the play bar: seeks unless the change is the program's own (BarGuard).
    void Seek_Preview(int barValue);
    // Puts the bar back to 0 and the time label to "00:00:00", as a stop does.
    void Reset_Panel();

    // ---- The events.
    void Opened(std::int64_t durationUs) override;
    void Position(std::int64_t timeUs) override;
    void State(int state) override;

    // -1 while opening, 0 after start and after pausing, 1 after resuming, 2 after stop.
    std::int32_t PlayerFlag = 2;
    // True while the program itself sets the play bar.
    bool BarGuard = false;
    std::int64_t ClipDuration = 0;
    std::int64_t PlayPosition = 0;
    PlayPanel* PlayerOwnerForm = nullptr;
    // The owners' answers to the end of the stream.
    std::function<void()> EditWindow_StopPlayer;
    std::function<void()> PlayerWindow_StopPlayer;
    // "Let events run" after a stop; the event loop by default, a no-op in tests that drive events.
    std::function<void()> LetEventsRun;

private:
    void panelChanged();
    FFPlayer& m_player;
};

// The Play and Pause, Stop and Mute buttons and the volume slider, as both windows have them. The
// tags are the buttons' states; the images are skin roles.
struct PlayerButtons {
    QString playTag = QStringLiteral("Play"); // Cmd_Player 0: "Play" until a file runs, then "Pause"
    QString playImage = QStringLiteral("img_player_play");
    bool stopEnabled = false;               // Cmd_Player 1, and the play bar with it
    QString muteTag = QStringLiteral("On"); // Cmd_Player 2
    QString muteImage = QStringLiteral("img_vol_on");
    int volume = 100; // Slider_MPVolume
    int volumeMax = 100;
};

// Cmd_Player 0. A missing file gives its name, a line break and "File not found!"; a file that does
// not open gives the player's words. False when nothing plays after it.
bool PlayPause_Click(MediaPlayer& media, PlayerButtons& buttons, const PlayerOptions& options);
// Cmd_Player 1: stops, and the buttons and the panel go back to their start.
void Stop_Click(MediaPlayer& media, PlayerButtons& buttons);
// Cmd_Player 2. Unmuting a slider at 0 raises it to its maximum.
void Mute_Click(MediaPlayer& media, PlayerButtons& buttons);
// A change of Slider_MPVolume.
void Volume_Change(MediaPlayer& media, PlayerButtons& buttons, int value);

// Combo_AudioSubTitle: 0 chooses the audio stream, 1 the subtitle stream, by the number the entry
// begins with ("2: eng, aac" or "2"). A subtitle stream takes effect from a new start at the same place.
void AudioSubTitle_Choose(MediaPlayer& media, const PlayerOptions& options, int combo, const QString& text);

// "Snapshot-" and the position shown, each ":" made "." ("Snapshot-00.01.02.500").
QString Snapshot_Name(const QString& playTimeTag);
// Saves a frame of the player (GetFrame, taken when the user asked) into `target` in the type of
// the save dialog's filter index: 1 PNG, 2 JPEG (quality 80), 3 GIF, 4 BMP, 5 TIFF. The frame goes
// first to a temporary BMP in `tempFolder`, which is removed whatever happens. False with the reason
// in `error` when there is no frame or the file cannot be written; the target is then left as it was.
bool Save_Snapshot(const QImage& frame, int type, const QString& target, const QString& tempFolder,
                   QString* error);

} // namespace morvane
