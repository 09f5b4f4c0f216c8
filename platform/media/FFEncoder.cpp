#include "FFEncoder.h"

#include "FFLogger.h"
#include "Transcoder.h"

#include <QCoreApplication>
#include <QMetaObject>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace morvane {

struct FFEncoder::Task {
    TranscodeJob job;
    bool hasOutput = false;
    bool removed = false;
    QString landedPath; // set when the task's end is delivered
};

// What one Start hands to its workers; immutable but for the counters and the control.
struct FFEncoder::Run {
    std::vector<std::pair<int, TranscodeJob>> jobs; // task number, job
    VideoHook hook;
    VideoHookActive hookActive;
    int progressInterval = 400;
    int codecThreads = 0;
    TaskControl control;
    std::atomic<std::size_t> next{0};
    std::atomic<int> active{0};
    // Workers that have not yet posted their last event; Stop waits on it.
    std::mutex doneMutex;
    std::condition_variable done;
};

FFEncoder::FFEncoder(QObject* parent) : QObject(parent) {}

FFEncoder::~FFEncoder() {
    if (m_run) m_run->control.stop();
    joinWorkers();
}

int FFEncoder::AddInput(const QString& path, const QString& options) {
    auto task = std::make_unique<Task>();
    std::string error;
    if (path.isEmpty()) {
        m_lastError = QStringLiteral("No input file given");
        return -1;
    }
    if (!Parse_InputOptions(options.toStdString(), task->job.input, error)) {
        m_lastError = QString::fromStdString(error);
        return -1;
    }
    task->job.inputPath = path.toStdString();
    m_tasks.push_back(std::move(task));
    return static_cast<int>(m_tasks.size()) - 1;
}

int FFEncoder::AddOutput(int task, const QString& path, const QString& arguments) {
    if (task < 0 || task >= static_cast<int>(m_tasks.size()) || m_tasks[task]->removed) {
        m_lastError = QStringLiteral("No task %1").arg(task);
        return -1;
    }
    EncoderOptions options;
    std::string error;
    if (!Parse_EncoderOptions(arguments.toStdString(), options, error) ||
        !Check_Output(path.toStdString(), options, error)) {
        m_lastError = QString::fromStdString(error);
        return -2;
    }
    Task& t = *m_tasks[task];
    const std::string output = path.toStdString();
    const FileIdentity existing = File_Identity(output);
    if (existing.sameFileAs(File_Identity(t.job.inputPath))) {
        m_lastError = QStringLiteral("Output file '%1' is the input file itself").arg(path);
        return -3;
    }
    t.job.outputPath = output;
    t.job.options = std::move(options);
    t.job.replaceable = m_overwrite ? existing : FileIdentity{};
    t.hasOutput = true;
    return 0;
}

void FFEncoder::RemoveInput(int task) {
    if (task < 0 || task >= static_cast<int>(m_tasks.size())) return;
    // Dropping the last keeps numbers dense; one in the middle is marked so that later numbers stand.
    if (task == static_cast<int>(m_tasks.size()) - 1)
        m_tasks.pop_back();
    else
        m_tasks[task]->removed = true;
}

int FFEncoder::TaskCount() const {
    int n = 0;
    for (const auto& t : m_tasks)
        n += t->removed ? 0 : 1;
    return n;
}

bool FFEncoder::Start(int tasksAtOnce) {
    if (m_running) return false;
    joinWorkers();
    auto run = std::make_shared<Run>();
    for (std::size_t i = 0; i < m_tasks.size(); ++i)
        if (m_tasks[i]->hasOutput && !m_tasks[i]->removed)
            run->jobs.emplace_back(static_cast<int>(i), m_tasks[i]->job);
    run->hook = m_hook;
    run->hookActive = m_hookActive;
    run->progressInterval = m_progressInterval;
    m_run = run;
    m_running = true;

    const int workers =
        std::min<int>(std::clamp(tasksAtOnce, 1, kMaxThreads), static_cast<int>(run->jobs.size()));
    if (workers == 0) {
        postQueueEnd();
        return true;
    }
    run->codecThreads = m_codecThreads;
    if (run->codecThreads == 0 && workers > 1)
        run->codecThreads =
            std::clamp(static_cast<int>(std::thread::hardware_concurrency()) / workers, 1, kMaxThreads);
    run->active = workers;
    for (int i = 0; i < workers; ++i)
        m_workers.emplace_back([this, run] { workerLoop(run); });
    return true;
}

void FFEncoder::workerLoop(std::shared_ptr<Run> run) {
    while (true) {
        const std::size_t k = run->next++;
        if (k >= run->jobs.size()) break;
        const int task = run->jobs[k].first;
        TranscodeResult result;
        if (!run->control.stopped()) {
            FFLogger::SetThreadTask(task);
            TranscodeCallbacks cb;
            cb.task = task;
            cb.hook = run->hook;
            cb.hookActive = run->hookActive;
            cb.progressIntervalMs = run->progressInterval;
            cb.codecThreads = run->codecThreads;
            cb.progress = [this, task](std::int64_t pos, std::int64_t dur) {
                QMetaObject::invokeMethod(
                    this, [this, task, pos, dur] { emit OnProgress(task, pos, dur); }, Qt::QueuedConnection);
            };
            cb.previewEnabled = &m_previewEnabled;
            cb.preview = [this, task](int w, int h, int stride, const std::uint8_t* bits) {
                QByteArray bgra(reinterpret_cast<const char*>(bits), static_cast<qsizetype>(stride) * h);
                QMetaObject::invokeMethod(
                    this, [this, task, w, h, bgra] { emit OnPreviewBitmap(task, w, h, bgra); },
                    Qt::QueuedConnection);
            };
            result = Run_Transcode(run->jobs[k].second, run->control, cb);
            FFLogger::SetThreadTask(-1);
        }
        QMetaObject::invokeMethod(
            this,
            [this, task, result] {
                if (task < static_cast<int>(m_tasks.size()))
                    m_tasks[task]->landedPath = QString::fromStdString(result.landedPath);
                emit OnTerminate(task, result.finished, result.failed,
                                 QString::fromStdString(result.message));
            },
            Qt::QueuedConnection);
    }
    // Every other worker has posted its last event before its decrement, so -1 comes after them all.
    std::lock_guard lock(run->doneMutex);
    if (--run->active == 0) postQueueEnd();
    run->done.notify_all();
}

void FFEncoder::postQueueEnd() {
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_running = false;
            emit OnTerminate(-1, false, false, QString());
        },
        Qt::QueuedConnection);
}

void FFEncoder::Pause() {
    if (m_run) m_run->control.pause();
}

void FFEncoder::Resume() {
    if (m_run) m_run->control.resume();
}

void FFEncoder::Stop(bool wait) {
    if (!m_run) return;
    const std::shared_ptr<Run> run = m_run;
    run->control.stop();
    if (!wait) return;
    // Tasks notice the stop within a frame; meanwhile the window is repainted rather than frozen.
    while (true) {
        {
            std::unique_lock lock(run->doneMutex);
            if (run->done.wait_for(lock, std::chrono::milliseconds(20), [&] { return run->active == 0; }))
                break;
        }
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    }
    joinWorkers();
    // Deliver what the workers posted, so that the handlers have run when Stop returns.
    QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
}

QString FFEncoder::LandedPath(int task) const {
    if (task < 0 || task >= static_cast<int>(m_tasks.size())) return QString();
    const Task& t = *m_tasks[task];
    return t.landedPath.isEmpty() ? QString::fromStdString(t.job.outputPath) : t.landedPath;
}

void FFEncoder::ClearTasks() {
    if (m_running) Stop(true);
    m_tasks.clear();
}

void FFEncoder::joinWorkers() {
    for (std::thread& t : m_workers)
        if (t.joinable()) t.join();
    m_workers.clear();
}

} // namespace morvane
