#include "Cli_Progress.h"

#include "mMain.h"

#include <QtGlobal>

#include <cmath>
#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

namespace morvane {

PositionTap::PositionTap(EncoderEngine& engine, EncoderListener& next) : m_engine(engine), m_next(next) {
    m_engine.SetListener(this);
}

PositionTap::~PositionTap() {
    if (m_engine.Listener() == this) m_engine.SetListener(&m_next);
}

void PositionTap::OnProgress(int task, qint64 positionUs, qint64 durationUs) {
    if (task >= 0 && durationUs > 0) {
        Position& at = m_tasks[task];
        at.position = qBound<qint64>(0, positionUs, durationUs);
        at.duration = durationUs;
    }
    m_next.OnProgress(task, positionUs, durationUs);
}

void PositionTap::OnTerminate(int task, bool finished, bool failed, const QString& message) {
    if (task >= 0) {
        Position& at = m_tasks[task];
        at.ended = true;
        if (finished) at.position = at.duration;
    }
    m_next.OnTerminate(task, finished, failed, message);
}

void PositionTap::OnPreviewBitmap(int task, int width, int height, const QByteArray& bgra) {
    m_next.OnPreviewBitmap(task, width, height, bgra);
}

double PositionTap::convertedSeconds() const {
    qint64 microseconds = 0;
    for (const Position& at : m_tasks)
        microseconds += at.position;
    return static_cast<double>(microseconds) / 1e6;
}

double PositionTap::runFraction() const {
    const int tasks = m_engine.TaskCount();
    if (tasks <= 0) return 0;
    double sum = 0;
    for (const Position& at : m_tasks)
        sum += at.ended ? 1.0 : (at.duration > 0 ? static_cast<double>(at.position) / at.duration : 0.0);
    return qBound(0.0, sum / tasks, 1.0);
}

CliTerminal::CliTerminal() : m_terminal(isatty(STDERR_FILENO) != 0) {}

void CliTerminal::line(const QString& text) {
    if (!m_live.isEmpty()) std::fputs("\r\033[K", stderr);
    std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
    draw();
}

void CliTerminal::live(const QString& text) {
    if (!m_terminal) return;
    // A line wider than the terminal wraps, and the carriage return then redraws only its tail.
    winsize size{};
    const int columns = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1 ? size.ws_col : 80;
    m_live = text.left(columns - 1);
    if (!m_live.isEmpty()) std::fputs("\r\033[K", stderr);
    draw();
}

void CliTerminal::endLive() {
    if (!m_live.isEmpty()) std::fputs("\r\033[K", stderr);
    m_live.clear();
    std::fflush(stderr);
}

void CliTerminal::draw() {
    if (!m_live.isEmpty()) std::fputs(m_live.toLocal8Bit().constData(), stderr);
    std::fflush(stderr);
}

ProgressPrinter::ProgressPrinter(const FileViewMain& table, const PositionTap& tap, CliTerminal& terminal)
    : m_table(table), m_tap(tap), m_terminal(terminal) {
    m_clock.start();
    m_shown.fill(-1, table.rows());
    // What the rows say now (a row refused while the queue was prepared) is no news.
    for (int r = 0; r < table.rows(); ++r)
        m_status.append(table.text(r, FileCol::Status).trimmed());
}

namespace {
// A row's last word: a fast file can end between two looks without ever showing progress.
bool hasEnded(const QString& status) {
    return status == QLatin1String("Done") || status == QLatin1String("Unsuccessful!") ||
           status == QLatin1String("Canceled!");
}
} // namespace

void ProgressPrinter::update() {
    const int count = m_table.rows();
    const int total = qRound(m_tap.runFraction() * 100);
    for (int r = 0; r < count; ++r) {
        const RowProgress progress = m_table.progress(r);
        const QString status = m_table.text(r, FileCol::Status).trimmed();
        const QString prefix =
            QStringLiteral("[%1/%2] %3 ").arg(r + 1).arg(count).arg(m_table.text(r, FileCol::FileName));
        if (progress.active) {
            const int step = m_terminal.isTerminal() ? progress.percent : progress.percent / 10 * 10;
            if (step != m_shown[r] && !m_terminal.isTerminal())
                m_terminal.line(prefix +
                                QStringLiteral("%1%  total %2%  %3")
                                    .arg(step)
                                    .arg(total)
                                    .arg(Format_Seconds(static_cast<int>(m_clock.elapsed() / 1000), false)));
            m_shown[r] = step;
        } else if (hasEnded(status) && status != m_status[r]) {
            m_terminal.line(prefix + status); // the row's final word
        }
        m_status[r] = status;
    }
    if (m_terminal.isTerminal() && m_clock.elapsed() - m_drawnAt >= 250) {
        m_drawnAt = m_clock.elapsed();
        m_terminal.live(liveText());
    }
}

QString ProgressPrinter::liveText() const {
    const double fraction = m_tap.runFraction();
    const double seconds = static_cast<double>(m_clock.elapsed()) / 1000.0;
    const int filled = static_cast<int>(fraction * 20);
    int ended = 0;
    for (int r = 0; r < m_table.rows(); ++r)
        if (hasEnded(m_table.text(r, FileCol::Status).trimmed())) ++ended;
    QString text = QStringLiteral("[") + QString(filled, QLatin1Char('#')) +
                   QString(20 - filled, QLatin1Char('-')) +
                   QStringLiteral("] %1%").arg(static_cast<int>(fraction * 100), 3);
    // Speed and time left only once there is something to measure them by.
    if (seconds >= 1 && m_tap.convertedSeconds() > 0)
        text += QStringLiteral("  %1x").arg(m_tap.convertedSeconds() / seconds, 0, 'f', 1);
    if (seconds >= 1 && fraction > 0.001)
        text += QStringLiteral("  %1 left")
                    .arg(Format_Seconds(static_cast<int>(std::lround(seconds * (1 - fraction) / fraction)),
                                        false));
    return text + QStringLiteral("  %1 of %2 files ended").arg(ended).arg(m_table.rows());
}

} // namespace morvane
