#include "FFLogger.h"

extern "C" {
#include <libavutil/log.h>
}

#include <QMetaObject>

#include <cstdarg>
#include <mutex>

namespace morvane {
namespace {

std::mutex g_mutex;
FFLogger* g_logger = nullptr; // guarded by g_mutex
thread_local int t_task = -1;
thread_local int t_printPrefix = 1;

int avLevel(int logLevel) {
    static const int levels[] = {AV_LOG_QUIET, AV_LOG_PANIC,   AV_LOG_FATAL, AV_LOG_ERROR, AV_LOG_WARNING,
                                 AV_LOG_INFO,  AV_LOG_VERBOSE, AV_LOG_DEBUG, AV_LOG_TRACE};
    if (logLevel < 0) return AV_LOG_QUIET;
    return levels[logLevel > 8 ? 8 : logLevel];
}

} // namespace

FFLogger::FFLogger(QObject* parent) : QObject(parent) {
    std::lock_guard lock(g_mutex);
    g_logger = this;
    av_log_set_callback(&FFLogger::callback);
}

FFLogger::~FFLogger() {
    std::lock_guard lock(g_mutex);
    if (g_logger == this) {
        g_logger = nullptr;
        av_log_set_callback(av_log_default_callback);
    }
}

void FFLogger::SetThreadTask(int task) {
    t_task = task;
}

void FFLogger::callback(void* avcl, int level, const char* fmt, va_list vl) {
    std::lock_guard lock(g_mutex);
    if (!g_logger) {
        av_log_default_callback(avcl, level, fmt, vl);
        return;
    }
    if (!g_logger->m_active || level > avLevel(g_logger->m_logLevel)) return;
    char line[1024];
    av_log_format_line2(avcl, level, fmt, vl, line, sizeof line, &t_printPrefix);
    QString text = QString::fromUtf8(line);
    while (text.endsWith(QLatin1Char('\n')) || text.endsWith(QLatin1Char('\r')))
        text.chop(1);
    if (text.isEmpty()) return;
    FFLogger* logger = g_logger;
    const int task = t_task;
    QMetaObject::invokeMethod(
        logger, [logger, task, level, text] { emit logger->OnLog(task, level, text); }, Qt::QueuedConnection);
}

} // namespace morvane
