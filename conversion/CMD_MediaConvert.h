// The merge of finished pieces into one file: the ffmpeg program runs as a child with the concat
// demuxer and stream copy, its standard error goes to result.txt, and a 500 ms poll of that file
// decides between finished, failed and still working. Only our own child is ever ended.
// Main thread only; the child is the only thing that runs beside it.
#pragma once

#include "FileViewMain.h"

#include <QProcess>
#include <QString>

#include <cstdint>
#include <functional>
#include <memory>

namespace morvane {

class MergePipeline {
public:
    MergePipeline();
    ~MergePipeline();
    MergePipeline(const MergePipeline&) = delete;
    MergePipeline& operator=(const MergePipeline&) = delete;

    QString Merge_TempFolder;
    QString Merge_FFmpegPath; // the system's ffmpeg program
    QString Merge_ListFile;
    QString Merge_ResultFile;
    QString Merge_OutputPath;
    QString Merge_ResultText;
    QString Merge_Time;
    QString Merge_ErrorText;
    bool Merge_Failed = false;
    bool Merge_Finished = false;
    std::int16_t Merge_IdleTicks = 0;
    bool Timer_FFmpeg = false; // the 500 ms poll is on

    // Waits the given milliseconds with the event loop running (a timer, no spinning); tests replace it.
    std::function<void(int milliseconds)> waitStep;
    // Asked at every poll: true ends the merge as the wait window's Cancel does (a terminal's Ctrl-C).
    std::function<bool()> cancelRequested;
    // The wait window of the merge ("Finalizing Progress..."), shown and closed through the host.
    std::function<void(bool show)> showWait;
    // After each poll, with Merge_ResultText and Merge_Time read: the diagnostics window shows them.
    std::function<void()> ticked;

    void Merge_SetPaths();
    void Merge_AddFile(const QString& path);
    void Merge_Reset(const QString& keepPath);
    bool Merge_Run(const QString& target, const QString& inputOptions, const QString& outputOptions);
    void Merge_Poll();
    bool Merge_ChildRunning();
    void Merge_KillChild();
    void Merge_DeleteParts();
    void Timer_FFmpeg_Tick();
    void Cancel();

    // The whole merge after a queue whose rows all ended "Done": true when the queue goes on as
    // usual (merged, or passed over with fewer than two pieces), false after a message.
    bool Merge_All(FileViewMain& table, const QString& outputFolder, int outputPanel);

private:
    std::unique_ptr<QProcess> m_child;
};

// The list file line of one piece: file 'path', with quotes in the path escaped for the demuxer.
QString Merge_ListLine(const QString& path);

// Creates an empty file "<folder>temp<n>.<extension>" under a name that no file held, n from 1 to
// 1000 at random first; "" when none can be made.
QString Merge_FreshTarget(const QString& folder, const QString& extension);

} // namespace morvane
