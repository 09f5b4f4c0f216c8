// The encoder engine: a queue of conversion tasks, each one input file and one output file with the
// argument text of the builder, run on worker threads.
//
// Owned and called on one thread (the main thread), which must run a Qt event loop: the events
// OnProgress and OnTerminate are queued to it and arrive in the order they happened, each task's
// OnTerminate before the final OnTerminate(-1). The video hook runs on the worker threads.
//
// Numbers follow the control it replaces: AddInput returns the task number (from 0), AddOutput 0, and
// both a negative number on failure with LastErrorMessage() saying why.
#pragma once

#include "EncoderHook.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace morvane {

class TaskControl;
struct TranscodeJob;

class FFEncoder : public QObject {
    Q_OBJECT
public:
    explicit FFEncoder(QObject* parent = nullptr);
    ~FFEncoder() override; // stops and waits for running tasks; undelivered events are dropped

    // The libraries are linked in: these answer true at once.
    bool LoadLibrary() { return true; }
    bool LibraryLoaded() const { return true; }
    bool UnloadLibrary() { return true; }

    // `options` holds the input seek (" -ss 12.5") or is empty.
    int AddInput(const QString& path, const QString& options);
    // Reads `arguments` and checks the container and the encoders. A task added while the queue runs
    // waits for the next Start. An output that is its own input is refused. A file already under the
    // name is replaced by the finished output only with SetOverwrite(true); otherwise, or when another
    // file takes the name while the task runs, the output goes to the next free name (LandedPath).
    int AddOutput(int task, const QString& path, const QString& arguments);
    // Takes back the task, which then neither runs nor counts.
    void RemoveInput(int task);

    // Runs every task with an output, `tasksAtOnce` at a time (0 means 1). Returns at once; false if
    // already running.
    bool Start(int tasksAtOnce);
    void Pause(); // running tasks hold between packets
    void Resume();
    // Ends every task: each reports finished and failed both false, and leaves no output behind. With
    // `wait`, returns when all have ended and their OnTerminate events, the final one included, have
    // been delivered; meanwhile the event loop runs (user input held back), so windows stay painted.
    void Stop(bool wait);
    void ClearTasks(); // stops with wait first if running
    void Release() { Stop(true); }

    // Called for each output frame when the argument text holds "-VideoOutputHook". Set while idle.
    void SetVideoHook(VideoHook hook) { m_hook = std::move(hook); }
    // Asked before each frame; false skips the hook and its conversions for that frame.
    void SetVideoHookActive(VideoHookActive active) { m_hookActive = std::move(active); }

    // Whether files already under the output names of tasks added from now on may be replaced.
    void SetOverwrite(bool overwrite) { m_overwrite = overwrite; }
    // Where the finished output of a task is: its output path, or the free name it had to take. Valid
    // from the task's OnTerminate until ClearTasks.
    QString LandedPath(int task) const;

    QString LastErrorMessage() const { return m_lastError; }
    int TaskCount() const;
    bool IsRunning() const { return m_running; }
    // May change while tasks run.
    bool PreviewEnabled() const { return m_previewEnabled; }
    void SetPreviewEnabled(bool enabled) { m_previewEnabled = enabled; }
    int RunMode() const { return m_runMode; }
    void SetRunMode(int mode) { m_runMode = mode; }
    int ProgressInterval() const { return m_progressInterval; }
    void SetProgressInterval(int ms) { m_progressInterval = ms > 0 ? ms : 400; }
    // Threads of each decoder and encoder of a task; 0 (the default) shares the cores out among the
    // tasks that run at once. Takes effect at the next Start.
    void SetCodecThreads(int threads) { m_codecThreads = std::clamp(threads, 0, kMaxThreads); }

    // No more tasks run at once, and no codec gets more threads, than this.
    static constexpr int kMaxThreads = 16;

signals:
    void OnProgress(int task, qint64 positionUs, qint64 durationUs);
    // task -1: the queue has ended.
    void OnTerminate(int task, bool finished, bool failed, const QString& message);
    // A few times a second while PreviewEnabled: an output frame, after the hook, at most 160 pixels
    // wide, as packed 32-bit BGRA rows (bytes per row: width x 4).
    void OnPreviewBitmap(int task, int width, int height, const QByteArray& bgra);

private:
    // The final event of the queue (task -1), queued behind every task's own.
    void postQueueEnd();
    struct Task;
    struct Run;
    void workerLoop(std::shared_ptr<Run> run);
    void joinWorkers();

    std::vector<std::unique_ptr<Task>> m_tasks;
    std::shared_ptr<Run> m_run;         // the current or last run, shared with its workers
    std::vector<std::thread> m_workers; // joined on the owning thread only
    VideoHook m_hook;
    VideoHookActive m_hookActive;
    QString m_lastError;
    bool m_overwrite = false;
    bool m_running = false;                    // true from Start until the final OnTerminate is delivered
    std::atomic<bool> m_previewEnabled{false}; // read by the workers
    int m_runMode = 0;
    int m_progressInterval = 400;
    int m_codecThreads = 0;
};

} // namespace morvane
