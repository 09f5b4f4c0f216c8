// What a terminal run shows while it converts. Standard error carries lines of their own and, on a
// terminal, one live line under them that is redrawn in place: the whole run's percentage, its speed
// against real time and the time left. Elsewhere (a log, a pipe) each file's progress is a plain line
// every 10 %. Main thread only.
#pragma once

#include "EncoderEngine.h"
#include "FileViewMain.h"

#include <QElapsedTimer>
#include <QHash>
#include <QString>

namespace morvane {

// Stands between the engine and the controller, passing every event on and keeping each task's
// position, so that the run's speed is known in media seconds per second.
class PositionTap : public EncoderListener {
public:
    PositionTap(EncoderEngine& engine, EncoderListener& next);
    ~PositionTap() override;
    PositionTap(const PositionTap&) = delete;
    PositionTap& operator=(const PositionTap&) = delete;

    void OnProgress(int task, qint64 positionUs, qint64 durationUs) override;
    void OnTerminate(int task, bool finished, bool failed, const QString& message) override;
    void OnPreviewBitmap(int task, int width, int height, const QByteArray& bgra) override;

    double convertedSeconds() const; // media converted so far, over all tasks
    double runFraction() const;      // 0 to 1, every task counted alike

private:
    struct Position {
        qint64 position = 0;
        qint64 duration = 0;
        bool ended = false;
    };
    EncoderEngine& m_engine;
    EncoderListener& m_next;
    QHash<int, Position> m_tasks;
};

// Standard error for the run: ordinary lines, and on a terminal the live line kept under them.
class CliTerminal {
public:
    CliTerminal();
    bool isTerminal() const { return m_terminal; }
    void line(const QString& text);
    void live(const QString& text);
    void endLive();

private:
    void draw();
    bool m_terminal;
    QString m_live;
};

class ProgressPrinter {
public:
    ProgressPrinter(const FileViewMain& table, const PositionTap& tap, CliTerminal& terminal);
    // Called often; prints only what changed.
    void update();

private:
    QString liveText() const;

    const FileViewMain& m_table;
    const PositionTap& m_tap;
    CliTerminal& m_terminal;
    QElapsedTimer m_clock;
    QList<int> m_shown; // the last step printed per row, -1 none
    QStringList m_status;
    qint64 m_drawnAt = -1000;
};

} // namespace morvane
