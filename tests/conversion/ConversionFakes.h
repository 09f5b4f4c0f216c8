// Stand-ins for the encoder and the main window: both record what the controller asks of them, and
// the encoder lets a test raise its events in any order.
#pragma once

#include "EncoderEngine.h"
#include "VideoConverter_Mods.h"

#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace morvane {

class FakeEncoder : public EncoderEngine {
public:
    struct Task {
        QString input, options, output, arguments;
        bool removed = false;
    };

    int AddInput(const QString& path, const QString& options) override {
        calls << "AddInput " + path + "|" + options;
        if (++m_inputs == failInputAt) {
            m_lastError = error;
            return -1;
        }
        tasks.push_back({path, options, {}, {}, false});
        return static_cast<int>(tasks.size()) - 1;
    }
    int AddOutput(int task, const QString& path, const QString& arguments) override {
        calls << QStringLiteral("AddOutput %1 ").arg(task) + path;
        if (++m_outputs == failOutputAt) {
            m_lastError = error;
            return -2;
        }
        tasks.at(static_cast<std::size_t>(task)).output = path;
        tasks.at(static_cast<std::size_t>(task)).arguments = arguments;
        return 0;
    }
    void RemoveInput(int task) override {
        calls << QStringLiteral("RemoveInput %1").arg(task);
        if (task == static_cast<int>(tasks.size()) - 1)
            tasks.pop_back();
        else
            tasks.at(static_cast<std::size_t>(task)).removed = true;
    }
    bool Start(int tasksAtOnce) override {
        calls << QStringLiteral("Start %1").arg(tasksAtOnce);
        return true;
    }
    void Pause() override { calls << "Pause"; }
    void Resume() override { calls << "Resume"; }
    void Stop(bool wait) override {
        calls << QStringLiteral("Stop %1").arg(wait ? 1 : 0);
        if (wait && duringStop) duringStop();
    }
    void ClearTasks() override {
        calls << "ClearTasks";
        tasks.clear();
        m_inputs = m_outputs = 0;
    }
    QString LastErrorMessage() const override { return m_lastError; }
    int TaskCount() const override {
        int n = 0;
        for (const Task& t : tasks)
            n += t.removed ? 0 : 1;
        return n;
    }
    void SetPreviewEnabled(bool enabled) override { calls << QStringLiteral("Preview %1").arg(enabled); }
    void SetVideoHook(VideoHook hook) override { videoHook = std::move(hook); }
    void SetVideoHookActive(VideoHookActive active) override { hookActive = std::move(active); }
    void SetOverwrite(bool value) override { overwrite = value; }
    QString LandedPath(int task) const override { return landed.value(task); }
    VideoHook videoHook;
    bool overwrite = false;
    QMap<int, QString> landed; // where a test says a task's output landed
    VideoHookActive hookActive;

    void progress(int task, qint64 position, qint64 duration) {
        Listener()->OnProgress(task, position, duration);
    }
    void terminate(int task, bool finished, bool failed = false, const QString& message = QString()) {
        Listener()->OnTerminate(task, finished, failed, message);
    }

    QStringList calls;
    std::vector<Task> tasks;
    int failInputAt = -1;  // the n-th AddInput (from 1) since ClearTasks fails
    int failOutputAt = -1; // the n-th AddOutput (from 1) since ClearTasks fails
    QString error;
    std::function<void()> duringStop; // runs inside Stop(true), as queued events would

private:
    QString m_lastError;
    int m_inputs = 0;
    int m_outputs = 0;
};

class FakeHost : public ConversionHost {
public:
    void Set_MainState(int state, bool enable) override {
        events << QStringLiteral("state %1 %2").arg(state).arg(enable);
        mainState = state;
    }
    void Show_InputFileInfo(int row) override { events << QStringLiteral("info %1").arg(row); }
    void Set_AcceptDrops(bool accept) override { acceptDrops = accept; }
    void Focus_OutputPath() override { events << "focus output"; }
    void Show_OutputPath(const QString& folder) override { events << "output " + folder; }
    void Wait_Show(int maximum, const QString& caption) override {
        events << QStringLiteral("wait %1 ").arg(maximum) + caption;
        waitOpen = true;
    }
    void Wait_Step(const QString& countText, int value) override {
        events << "step " + countText;
        if (onWaitStep) onWaitStep(value);
    }
    void Wait_Close() override {
        events << "wait closed";
        waitOpen = false;
    }
    int Window_State() override { return windowState; }
    void Set_WindowState(int state) override { windowState = state; }
    bool Tray_Animating() override { return trayAnimating; }
    void Tray_StopAnimation() override {
        events << "tray stop";
        trayAnimating = false;
    }
    void Tray_SetTip(const QString& tip) override { events << "tray tip " + tip; }
    void Tray_SetDoneIcon() override { events << "tray done"; }
    void Restore_FromTray() override { events << "restore"; }
    void Show_Completion() override { events << "completion"; }
    void Show_Popup(int a, int b, int c) override {
        events << QStringLiteral("popup %1 %2 %3").arg(a).arg(b).arg(c);
    }
    void Run_Shutdown(const QString& command) override { events << "shutdown " + command; }
    void Unload_Main() override { events << "unload"; }

    QStringList events;
    int mainState = -1;
    bool acceptDrops = true;
    bool waitOpen = false;
    int windowState = Window_Normal;
    bool trayAnimating = false;
    std::function<void(int)> onWaitStep;
};

} // namespace morvane
