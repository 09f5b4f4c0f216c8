// The closing conversation of the main window: with a conversion running it pauses the queue while
// the user decides, and resumes it unless the user really ends the program. The window, the queue
// and the dialogs are reached through CloseSeams, so the whole conversation runs without a window.
// Main thread only.
#pragma once

#include <functional>

namespace morvane {

struct CloseSeams {
    std::function<int()> conversionState;  // 0 idle, 1 converting, 2 paused
    std::function<void()> pressConvert;    // button 3: pauses a running queue, resumes a paused one
    std::function<void()> showCloseDialog; // frmClose, modal; leaves Close_Event and Close_DontAsk
    std::function<void()> goToTray;
    std::function<void()> letMessagesThrough;
    int shutdownAfter = 0; // Shutdown_After: a close after the queue's shutdown asks nothing
};

// Form_QueryUnload: true lets the close go on (Form_Unload follows), false refuses it.
bool Form_QueryUnload(const CloseSeams& seams);

inline constexpr const char* kTerminateQuestion =
    "Conversion is not completed!\nAre you sure you want to terminate it ?";

} // namespace morvane
