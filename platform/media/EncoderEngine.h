// What the conversion queue needs of an encoder: the task operations and the events they raise.
// The real engine is FFEncoder behind FFEncoderEngine; tests put a fake in its place.
//
// Main thread only: operations are called on it and events are delivered on it, each task's
// OnTerminate before the final OnTerminate(-1). Stop(true) may deliver pending events before it
// returns, so a listener must expect OnTerminate to run inside its own call to Stop.
#pragma once

#include "EncoderHook.h"

#include <QByteArray>
#include <QString>

namespace morvane {

class EncoderListener {
public:
    virtual ~EncoderListener() = default;
    virtual void OnProgress(int task, qint64 positionUs, qint64 durationUs) = 0;
    // task -1: the whole queue has ended.
    virtual void OnTerminate(int task, bool finished, bool failed, const QString& message) = 0;
    virtual void OnPreviewBitmap(int task, int width, int height, const QByteArray& bgra) {
        (void)task;
        (void)width;
        (void)height;
        (void)bgra;
    }
};

class EncoderEngine {
public:
    virtual ~EncoderEngine() = default;

    // The task number (from 0), negative on failure with LastErrorMessage() saying why.
    virtual int AddInput(const QString& path, const QString& options) = 0;
    // Negative on failure.
    virtual int AddOutput(int task, const QString& path, const QString& arguments) = 0;
    virtual void RemoveInput(int task) = 0;
    // Runs the queue, `tasksAtOnce` at a time (0 for the default); returns at once.
    virtual bool Start(int tasksAtOnce) = 0;
    virtual void Pause() = 0;
    virtual void Resume() = 0;
    virtual void Stop(bool wait) = 0;
    virtual void ClearTasks() = 0;
    virtual QString LastErrorMessage() const = 0;
    virtual int TaskCount() const = 0;
    virtual void SetPreviewEnabled(bool enabled) = 0;
    // Called on a worker thread for each output frame; set while idle.
    virtual void SetVideoHook(VideoHook hook) = 0;
    // Asked before each frame; false (no effects to run) lets the frame skip the hook's conversions.
    virtual void SetVideoHookActive(VideoHookActive active) = 0;
    // Whether a file already under an output name (added from now on) may be replaced by the
    // finished output. Without it, or when the name is taken while the task runs, the output takes
    // the next free name.
    virtual void SetOverwrite(bool overwrite) = 0;
    // Where a finished task's output landed; "" when it is where AddOutput asked.
    virtual QString LandedPath(int task) const = 0;

    // The one receiver of the events; nullptr drops them.
    void SetListener(EncoderListener* listener) { m_listener = listener; }
    EncoderListener* Listener() const { return m_listener; }

private:
    EncoderListener* m_listener = nullptr;
};

} // namespace morvane
