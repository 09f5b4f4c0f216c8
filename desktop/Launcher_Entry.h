// The conversion's progress on the program's launcher in docks and task bars (KDE Plasma, Dash to
// Dock, Plank ...), which read the com.canonical.Unity.LauncherEntry signal from the session bus. A
// desktop without a session bus or without such a dock loses nothing: the signal goes nowhere.
// Main thread only.
#pragma once

#include <QDBusMessage>
#include <QString>

#include <functional>
#include <optional>

namespace morvane {

struct LauncherProgress {
    int percent = 0;      // 0 .. 100
    bool visible = false; // a conversion runs: the launcher shows the bar
    bool operator==(const LauncherProgress&) const = default;
};

// The signal for one state: "application://<desktop id>.desktop" and the properties "progress" (0 to
// 1) and "progress-visible".
QDBusMessage LauncherEntry_Message(const QString& desktopId, const LauncherProgress& progress);

class LauncherEntry {
public:
    using Sender = std::function<bool(const QDBusMessage&)>;
    // An empty sender sends on the session bus.
    explicit LauncherEntry(QString desktopId, Sender sender = {});

    // From the conversion's state (0 idle) and the total percent. Only a change is sent, so the
    // many progress events of a run cost one signal per percent at most.
    void Update(int conversionState, int percent);

private:
    QString m_desktopId;
    Sender m_send;
    std::optional<LauncherProgress> m_last;
};

} // namespace morvane
