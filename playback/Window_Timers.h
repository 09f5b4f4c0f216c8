// The windows keep their timers as on/off flags in their models, so that tests tick them by hand; the
// views bring the real timers in line with the flags after every change. Main thread only.
#pragma once

#include <QTimer>

#include <initializer_list>
#include <utility>

namespace morvane {

// Starts the timers whose flag is on (only while the window shows, so that a hidden window's timers
// wait for it) and stops those whose flag is off; a running timer keeps its phase.
inline void Sync_Timers(std::initializer_list<std::pair<QTimer*, bool>> timers, bool windowVisible) {
    for (auto [timer, on] : timers) {
        if (on && !timer->isActive() && windowVisible)
            timer->start();
        else if (!on && timer->isActive())
            timer->stop();
    }
}

} // namespace morvane
