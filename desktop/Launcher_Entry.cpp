#include "Launcher_Entry.h"

#include <QDBusConnection>
#include <QFileInfo>
#include <QVariantMap>

#include <algorithm>
#include <utility>

namespace morvane {

QDBusMessage LauncherEntry_Message(const QString& desktopId, const LauncherProgress& progress) {
    // The docks match the signal by the application's URI; the object path is free, one per program.
    QDBusMessage message = QDBusMessage::createSignal(QStringLiteral("/org/morvane/LauncherEntry"),
                                                      QStringLiteral("com.canonical.Unity.LauncherEntry"),
                                                      QStringLiteral("Update"));
    const QVariantMap properties{
        {QStringLiteral("progress"), std::clamp(progress.percent, 0, 100) / 100.0},
        {QStringLiteral("progress-visible"), progress.visible},
    };
    message << QStringLiteral("application://%1.desktop").arg(desktopId) << properties;
    return message;
}

LauncherEntry::LauncherEntry(QString desktopId, Sender sender)
    : m_desktopId(std::move(desktopId)), m_send(std::move(sender)) {
    if (!m_send)
        m_send = [](const QDBusMessage& message) {
            // Without a bus address libdbus may try to start a bus of its own; a signal is not worth a
            // daemon.
            const QString runtimeBus = qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/bus");
            if (!qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS") && !QFileInfo::exists(runtimeBus))
                return false;
            QDBusConnection bus = QDBusConnection::sessionBus();
            return bus.isConnected() && bus.send(message);
        };
}

void LauncherEntry::Update(int conversionState, int percent) {
    LauncherProgress now;
    now.visible = conversionState != 0;
    now.percent = now.visible ? std::clamp(percent, 0, 100) : 0;
    // Nothing to clear on a launcher that was never told of a run.
    if (m_last ? *m_last == now : !now.visible) return;
    m_last = now;
    m_send(LauncherEntry_Message(m_desktopId, now));
}

} // namespace morvane
