// FFEncoder behind the EncoderEngine interface: operations pass straight through and the encoder's
// signals reach the listener. Main thread only, like the encoder it owns.
#pragma once

#include "EncoderEngine.h"
#include "FFEncoder.h"

namespace morvane {

class FFEncoderEngine : public EncoderEngine {
public:
    FFEncoderEngine();
    ~FFEncoderEngine() override = default;
    FFEncoderEngine(const FFEncoderEngine&) = delete;
    FFEncoderEngine& operator=(const FFEncoderEngine&) = delete;

    int AddInput(const QString& path, const QString& options) override {
        return m_encoder.AddInput(path, options);
    }
    int AddOutput(int task, const QString& path, const QString& arguments) override {
        return m_encoder.AddOutput(task, path, arguments);
    }
    void RemoveInput(int task) override { m_encoder.RemoveInput(task); }
    bool Start(int tasksAtOnce) override { return m_encoder.Start(tasksAtOnce); }
    void Pause() override { m_encoder.Pause(); }
    void Resume() override { m_encoder.Resume(); }
    void Stop(bool wait) override { m_encoder.Stop(wait); }
    void ClearTasks() override { m_encoder.ClearTasks(); }
    QString LastErrorMessage() const override { return m_encoder.LastErrorMessage(); }
    int TaskCount() const override { return m_encoder.TaskCount(); }
    void SetPreviewEnabled(bool enabled) override { m_encoder.SetPreviewEnabled(enabled); }
    void SetVideoHook(VideoHook hook) override { m_encoder.SetVideoHook(std::move(hook)); }
    void SetVideoHookActive(VideoHookActive active) override {
        m_encoder.SetVideoHookActive(std::move(active));
    }
    void SetOverwrite(bool overwrite) override { m_encoder.SetOverwrite(overwrite); }
    QString LandedPath(int task) const override { return m_encoder.LandedPath(task); }

    // For the settings that only the real engine has (RunMode, ProgressInterval).
    FFEncoder& encoder() { return m_encoder; }

private:
    FFEncoder m_encoder;
};

} // namespace morvane
