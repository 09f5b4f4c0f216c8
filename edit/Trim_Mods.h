// The Trim tab of the edit window as a model: the play bar with its two handles and the range between
// them, the start and end times with their captions, the step buttons, playing the selection and the
// handle drag. The window shows these fields, forwards its clicks, drags and the player's position
// here and turns Timer_PlaySelected into a real timer; tests tick it by hand. Main thread only.
//
// Times are signed 64-bit microsecond counts. The time tags are currency text: a decimal with four
// places whose whole unit is 10,000 microseconds, so 1.5 s reads "150.0000".
#pragma once

#include <QString>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>

namespace morvane {

// The player as the Trim tab needs it. The window wires the shared MediaPlayer behind these; tests put
// a fake. Empty members do nothing, and an empty state or flag reads as stopped.
struct TrimHost {
    // The player's states that the tab tells apart, as FFPlayer's PlayerState numbers them.
    static constexpr int kStopped = 0, kPaused = 1, kEnded = 2;

    std::function<int()> playState;              // PlayerState: 0 stopped, 1 paused, 2 ended, else playing
    std::function<void()> pressPlay;             // Cmd_Player 0: Play, or Pause while playing
    std::function<void()> pressStop;             // Cmd_Player 1
    std::function<void(std::int64_t time)> seek; // the player seeks, nothing else moves
    std::function<void()> step;                  // one frame forward
    std::function<void()> letEventsRun;          // pending player events reach Position()
    std::function<std::int32_t()> playerFlag;    // -1 opening, 0 paused, 1 resumed, 2 stopped
};

// A time as currency text, and back; nothing for a text that is not such a decimal.
QString Time_ToCurrencyText(std::int64_t microseconds);
std::optional<std::int64_t> Time_FromCurrencyText(const QString& text);

class TrimBar {
public:
    static constexpr std::int64_t kStartStep = 100000; // 10 units: the start steps by 0.1 s
    static constexpr std::int64_t kEndStep = 1000000;  // 100 units: the end steps by a whole second
    // Wide enough to grab with a mouse on a bar of a few hundred pixels, narrow enough to leave the
    // range between the handles visible.
    static constexpr int kHandleWidth = 10;

    struct Handle {
        int Left = 0;
        int Width = kHandleWidth;
        QString Tag = QStringLiteral("0"); // the last bar position given to it
    };
    struct Range {
        int Left = 0, Width = 0;
    };

    explicit TrimBar(TrimHost host = {});

    // ---- ProgressBar_Play: one position per pixel, so its maximum is its width in pixels.
    int BarLeft = 0; // L, in the same coordinates as the handles
    int BarMin = 0;
    int BarMax = 0;
    int BarValue = 0;
    // True while the program itself moves the bar, so that the move does not seek.
    bool BarGuard = false;

    std::array<Handle, 2> TrimPoint_Image;
    Range Trim_Range;
    QString lbl_SelectedTime = QStringLiteral("00:00:00");
    QString lbl_SelectedTimeTag = QStringLiteral("0"); // seconds, "0.00"; item column 5
    QString lbl_PlayTime = QStringLiteral("00:00:00");
    QString Txt_TrimStartTime, Txt_TrimStartTimeTag;
    QString Txt_TrimEndTime, Txt_TrimEndTimeTag;

    std::int64_t TrimStart = 0, TrimEnd = 0;
    std::int64_t SeekTime = 0;     // where the last seek from the bar or a handle went
    std::int64_t PlayPosition = 0; // the player's last reported position
    std::int64_t ClipDuration = 0;
    std::int32_t BarUnitsPerSecond = 0; // the least gap between the handles: one second of clip
    double CyPerBarUnit = 0;            // hundredths of a second per bar position

    bool Timer_PlaySelected = false;
    bool Dirty = false;

    // The window's first activation: the bar's scale from the clip and the bar's width, then the
    // handles at the stored trim times. False when the clip rounds to no whole second or the bar has no
    // width: the window then says the file " is not editable!". Does not set Dirty.
    bool Setup(std::int64_t clipDuration, int barMax, std::int64_t trimStart, std::int64_t trimEnd);

    // Positions on the bar, -1 leaving that handle where it is. keepTimes leaves TrimStart and TrimEnd
    // alone, mayPush lets one handle push the other away, seek has the player follow the handle.
    void Set_TrimPoints(int start, int end, bool keepTimes, bool mayPush, bool seek);
    // Stops the selection's play; unless the move is the program's own, seeks to the bar position.
    void Seek_Preview(int position);

    // The user moved the bar.
    void ProgressBar_Play_Change(int value);
    // The player's Position event.
    void Position(std::int64_t time);

    // 0 start here, 1 end here, 2 play the selection, 3 one frame on, 4 one frame back.
    void Cmd_Trim_Click(int index);
    // 0 later, 1 earlier.
    void Cmd_TrimStartTime_Click(int index);
    void Cmd_TrimEndTime_Click(int index);
    void Timer_PlaySelected_Tick();

    // The drag of TrimPoint_Image; the window calls move only while the left button is held.
    void TrimPoint_MouseDown(int index);
    void TrimPoint_MouseMove(int index, int dx);
    void TrimPoint_MouseUp(int index);

    // The trim back to the whole clip.
    void Cmd_Reset0();

private:
    int state() const;
    void play();
    void stop();
    void seekPlayer(std::int64_t time);
    bool placeStart(int start, bool keepTimes, bool mayPush, bool seek);
    bool placeEnd(int end, bool keepTimes, bool mayPush, bool seek);
    void showTimes();
    void stepTime(bool startSide, std::int64_t delta);
    void playSelection();
    void seekToStartHandle();
    int barPositionOf(std::int64_t time) const;
    void placeAtTimes();

    TrimHost m_host;
};

} // namespace morvane
