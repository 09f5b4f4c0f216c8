#include "PopupTray_Mod.h"

namespace morvane {

namespace {
void call(const std::function<void()>& f) {
    if (f) f();
}
} // namespace

void Tray_Toggle(TrayState& tray, const TrayHost& host) {
    if (!tray.In_Tray) {
        call(host.closeTagPopup);
        if (host.writeSetting) {
            host.writeSetting(QStringLiteral("WinTagInfo"),
                              host.windowHandle ? host.windowHandle() : QString());
            host.writeSetting(QStringLiteral("WinInfo"), host.mailbox ? host.mailbox() : QString());
        }
        tray.Icon = QStringLiteral("tray_idle");
        tray.Text = host.title;
        tray.In_Tray = true;
        call(host.minimizeToTray);
        tray.Timer_TrayIcon = host.conversionState && host.conversionState() != 0;
        return;
    }
    call(host.maximizeFromTray);
    tray.In_Tray = false;
    tray.Timer_TrayIcon = false;
    tray.Icon.clear();
    if (host.writeSetting) {
        host.writeSetting(QStringLiteral("WinTagInfo"), QString());
        host.writeSetting(QStringLiteral("WinInfo"), QString());
    }
}

void Tray_Tick(TrayState& tray, const TrayHost& host, const QString& iconPath) {
    if (!iconPath.isEmpty()) {
        tray.Icon = iconPath;
        return;
    }
    tray.Tray_Frame = static_cast<std::int16_t>(tray.Tray_Frame + 1);
    if (tray.Tray_Frame >= 10 || tray.Tray_Frame < 1) tray.Tray_Frame = 1;
    tray.Icon = QStringLiteral("tray%1").arg(tray.Tray_Frame);
    tray.Text = host.title + QLatin1Char(' ') + (host.progressText ? host.progressText() : QString());
}

void Tray_Reset(TrayState& tray, const QString& title) {
    tray.In_Tray = false;
    tray.Text = title;
    tray.Icon.clear();
    tray.Tray_Frame = 0;
    tray.Timer_TrayIcon = false;
}

} // namespace morvane
