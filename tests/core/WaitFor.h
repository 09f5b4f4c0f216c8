// Runs the event loop until a condition holds or the time is up, for tests that drive windows.
#pragma once

#include <QApplication>
#include <QElapsedTimer>

#include <functional>

inline bool waitFor(const std::function<bool()>& condition, int milliseconds) {
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.elapsed() > milliseconds) return false;
        QApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return true;
}
