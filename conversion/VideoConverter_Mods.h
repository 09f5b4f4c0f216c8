// The conversion controller: turns the file list and the current output parameters into a queue of
// encoder tasks, runs it (start, pause, resume, stop), follows the encoder's events, and keeps the
// progress displays as state that a window or a terminal shows. Headless: everything the main window
// does is asked of a ConversionHost, messages go through Show_Message, the report through Report_Show.
//
// Main thread only. Encoder events arrive on the same thread and may run inside our own call to the
// encoder's Stop, so every handler reads the flags first; no locks.
#pragma once

#include "EncoderEngine.h"
#include "FileViewMain.h"
#include "FormatSetting.h"
#include "Globals.h"
#include "Hook_OutputFrame.h"
#include "Make_EncoderArgs.h"
#include "OutputBrowser.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QTimer>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace morvane {

enum ConversionState : int { Conversion_Idle = 0, Conversion_Converting = 1, Conversion_Paused = 2 };

// Button 3 of Cmd_FileListView. Its tag is the one record of the conversion state.
struct ConvertButton {
    QString Tag = QStringLiteral("0");
    QString Caption = QStringLiteral("Convert Now");
    int Width = 4110; // twips
    int Icon = 5;     // index in the shared icon store
    bool Enabled = true;
};

// ProgressBar_Total.
enum BarScrolling : int { Scrolling_Normal = 1, Scrolling_Marquee = 2 };
struct TotalProgressBar {
    int Maximum = 100;
    int Value = 0;
    QString Text;
    bool Visible = false;
    int Scrolling = Scrolling_Normal;
};

enum MainWindowState : int { Window_Normal = 0, Window_Minimized = 1, Window_Maximized = 2 };

// What the controller asks of the main window and the desktop around it. The defaults do nothing,
// so that a terminal front end overrides only what it shows.
class ConversionHost {
public:
    virtual ~ConversionHost() = default;

    // The main window's state rule: 0 ready, 1 converting, 2 list empty.
    virtual void Set_MainState(int state, bool enable) = 0;
    // Sets Info_Row and fills the input information panel; -1 empties it.
    virtual void Show_InputFileInfo(int row) = 0;
    virtual void Set_AcceptDrops(bool accept) { (void)accept; }
    virtual void Focus_OutputPath() {} // the whole text of Txt_OutputPath selected, caret in it
    virtual void Show_OutputPath(const QString& folder) { (void)folder; } // the folder an empty box became
    virtual void Focus_List() {}
    virtual void Scroll_ToRow(int row) { (void)row; }
    virtual void Clear_Preview() {}    // picPreview
    virtual void Clear_HookOutput() {} // picHookOutput, repainted
    // A preview frame stretched over picPreview: packed BGRA rows, width x 4 bytes each.
    virtual void Show_PreviewBitmap(int width, int height, const QByteArray& bgra) {
        (void)width;
        (void)height;
        (void)bgra;
    }

    // The wait window in its preparation mode; its Cancel sets Abort_Preparation.
    virtual void Wait_Show(int maximum, const QString& caption) {
        (void)maximum;
        (void)caption;
    }
    virtual void Wait_Step(const QString& countText, int value) {
        (void)countText;
        (void)value;
    }
    virtual void Wait_Close() {}

    // Window and tray, for what follows the end of the queue.
    virtual int Window_State() { return Window_Normal; }
    virtual void Set_WindowState(int state) { (void)state; }
    virtual bool Tray_Animating() { return false; } // Timer_TrayIcon on: the window hides in the tray
    virtual void Tray_StopAnimation() {}
    virtual void Restore_FromTray() {} // the window comes back from the tray
    virtual void Tray_SetTip(const QString& tip) { (void)tip; }
    virtual void Tray_SetDoneIcon() {} // frame counter 0, "tray_done.ico" of the skin folder
    virtual void Show_Completion() {}  // frmMsg, modal
    virtual void Show_Popup(int a, int b, int c) {
        (void)a;
        (void)b;
        (void)c;
    }

    // Shutdown_After 1: runs the command with its window hidden, then the program ends. Tests must
    // replace this; the default does nothing at all.
    virtual void Run_Shutdown(const QString& command) { (void)command; }
    virtual void Unload_Main() {}
};

inline const QString kShutdownCommand = QStringLiteral("shutdown -s -t 30 -c \"Conversion is completed !\"");

class VideoConverter : public EncoderListener {
public:
    // `realTimer` runs Timer_ConversionElapsed on a QTimer; without it the caller ticks by hand.
    VideoConverter(FileViewMain& table, FormatSetting& settings, OutputBrowser& browser,
                   EncoderEngine& encoder, ConversionHost& host, bool realTimer = true);
    ~VideoConverter() override;
    VideoConverter(const VideoConverter&) = delete;
    VideoConverter& operator=(const VideoConverter&) = delete;

    // ---- The button state.
    int Get_ConversionState() const;
    void Set_ConvertButton(int state);

    // ---- Handlers of buttons 3 and 4.
    void Cmd_ConvertPressed(); // Start, Pause or Resume by the state
    void Start();
    void Pause();
    void Resume();
    void Stop();
    // The wait window's Cancel during preparation.
    void Wait_CancelPressed() { Abort_Preparation = true; }

    // ---- The preparation of one row, also for a dry run: the record, the argument text (which also
    // sets Output_Format), the input seek and the output path with the name rule applied.
    struct RowJob {
        EncoderParams params;
        QString arguments;
        QString inputPath;
        QString seek;
        QString outputPath;  // what column 55 holds
        QString encoderPath; // what the encoder writes: the .M4A detour for M4B and M4R
        QString effects;     // the row's effect list, run over each output frame
    };
    // `taken` holds the keys (Path_Key) of the batch's inputs and of the outputs given out before this
    // row; the row's output never takes one of them, nor its own input.
    RowJob Prepare_Row(int row, const QSet<QString>& taken = {}) const;
    // Every row in order, as the queue would get them: no two outputs share a name.
    QList<RowJob> Prepare_All() const;
    // The output folder as typed in Txt_OutputPath, with a separator at its end.
    QString Output_Folder() const;

    // ---- Encoder events.
    void OnProgress(int task, qint64 positionUs, qint64 durationUs) override;
    void OnTerminate(int task, bool finished, bool failed, const QString& message) override;
    void OnPreviewBitmap(int task, int width, int height, const QByteArray& bgra) override;
    // While the edit or the player window is open the handlers stand still: progress and pictures are
    // passed over, and the ends of tasks wait here, so that no file's result is lost. The window's
    // owner calls this when it closes, and they are handled in the order they came.
    void Release_HeldEvents();

    // ---- Timer_ConversionElapsed, every 1000 ms while on.
    void Timer_ConversionElapsed_Tick();
    bool Timer_ConversionElapsed() const { return m_elapsedOn; }

    // The merge, run at the end of a queue with Chk_Merge checked and no failure. Returns false when
    // it ended with a message. Unset, nothing is merged.
    std::function<bool()> Merge_Requested;

    // ---- State that views show.
    ConvertButton Cmd_Convert;   // button 3
    bool Cmd_StopEnabled = true; // button 4
    TotalProgressBar ProgressBar_Total;
    QString Status_Header;  // header of column 4 of the list
    QString Txt_OutputPath; // output folder box
    bool chkThreadMode = false;
    QString txtThreadCount = QStringLiteral("1");

    // ---- Values of the queue.
    std::int32_t Current_Job = -1;
    std::int32_t Progress_Base = 0;
    std::int32_t Elapsed_Seconds = 0;
    std::int16_t Progress_Tick = 0;
    bool Abort_Preparation = false;
    bool Stop_Requested = false;
    bool Preview_Enabled = true;
    int Shutdown_After = 0;

private:
    bool guarded() const { return EditWindowOpen || PlayerWindowOpen || Closing; }
    bool mergeChecked() const;
    QString listText(int list) const;
    int failedRows() const;
    void setElapsedTimer(bool on);
    void letMessagesThrough();
    void closeWait();
    bool prepareQueue();
    void taskEnded(int task, bool finished, bool failed, const QString& message);
    void queueEnded();
    void postConversion();
    // The row of a task: rows that could not be queued have none, so the numbers differ.
    int rowOfTask(int task) const;
    // A row that cannot be converted: it goes into the report and the rest of the batch runs on.
    void rowFailed(int row, const QString& message);

    FileViewMain& m_table;
    FormatSetting& m_settings;
    OutputBrowser& m_browser;
    EncoderEngine& m_encoder;
    ConversionHost& m_host;
    std::unique_ptr<QTimer> m_timer; // only with a real timer
    bool m_elapsedOn = false;
    bool m_waitOpen = false;
    struct HeldEnd {
        int task;
        bool finished, failed;
        QString message;
    };
    std::vector<HeldEnd> m_heldEnds;
    TaskEffects m_taskEffects;   // read by the encoder's worker threads
    std::vector<int> m_taskRows; // by task number
    QSet<int> m_endedRows;       // rows done or failed in this run: a Stop leaves them as they are
};

} // namespace morvane
