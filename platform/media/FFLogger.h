// FFmpeg's log as Qt events: every av_log line of the process, from any thread, reaches OnLog on the
// thread that owns the logger. One logger at a time receives the lines; while none exists FFmpeg
// prints to standard error as usual.
#pragma once

#include <QObject>
#include <QString>

#include <atomic>

namespace morvane {

class FFLogger : public QObject {
    Q_OBJECT
public:
    explicit FFLogger(QObject* parent = nullptr);
    ~FFLogger() override;

    // 0 quiet, 1 panic, 2 fatal, 3 error, 4 warning, 5 info, 6 verbose, 7 debug, 8 trace.
    int LogLevel() const { return m_logLevel; }
    void SetLogLevel(int level) { m_logLevel = level; }
    bool Active() const { return m_active; }
    void SetActive(bool active) { m_active = active; }

    // The task whose lines the calling thread writes from now on (-1: none). Used by the engine.
    static void SetThreadTask(int task);

signals:
    // task: the task number or -1; level: FFmpeg's (AV_LOG_ERROR 16, AV_LOG_INFO 32...); one line,
    // without its line break.
    void OnLog(int task, int level, const QString& line);

private:
    static void callback(void* avcl, int level, const char* fmt, va_list vl);

    std::atomic<int> m_logLevel{5};
    std::atomic<bool> m_active{true};
};

} // namespace morvane
