// The program's life in the notification area, apart from the icon widget: going to the tray and
// back, the icon turning through nine frames while a conversion runs with the total in its tip, the
// done icon at the end. The window shows TrayState through a status icon and turns Timer_TrayIcon
// into a timer; tests drive it without a desktop. Main thread only.
#pragma once

#include <QString>

#include <cstdint>
#include <functional>

namespace morvane {

struct TrayState {
    bool In_Tray = false;
    std::int16_t Tray_Frame = 0;
    bool Timer_TrayIcon = false;
    // The icon shown: "" for none, "tray_idle", "tray1" .. "tray9", or a picture given by path.
    QString Icon;
    QString Text; // the tip
};

// What going to the tray and back does to the window. Empty members do nothing.
struct TrayHost {
    QString title;                         // the application's title, the idle tip
    std::function<int()> conversionState;  // 0 idle
    std::function<QString()> progressText; // ProgressBar_Total's text, "42%"
    std::function<void()> closeTagPopup;   // the hint or overlay, when showing
    std::function<QString()> windowHandle; // the main window's id, as text
    std::function<QString()> mailbox;      // where a second start finds this program
    std::function<void(const QString& key, const QString& value)> writeSetting;
    std::function<void()> minimizeToTray;   // hide the window
    std::function<void()> maximizeFromTray; // show it again, in front
};

// To the tray when not there, back otherwise. Going: the hint closes, WinTagInfo and WinInfo keep the
// window and its mailbox for a second start, the idle icon with the title, and the timer only while a
// conversion runs. Coming back: the window shows, the timer stops, the icon goes, the settings empty.
void Tray_Toggle(TrayState& tray, const TrayHost& host);
// One tick of Timer_TrayIcon. Without a path the next of the nine frames (frame 10 never shows) and
// the title with the total in the tip; with a path (the batch has ended) that picture.
void Tray_Tick(TrayState& tray, const TrayHost& host, const QString& iconPath = {});
void Tray_Reset(TrayState& tray, const QString& title);

} // namespace morvane
