// The desktop program: runs the start sequence, then lives on the main window's event loop.

#include "Globals.h"
#include "Instance_Channel.h"
#include "PopupWindow.h"
#include "Registry_Mod.h"
#include "Skin_Icons.h"
#include "Skin_Theme.h"
#include "Sub_Main.h"
#include "frmMain.h"
#include "mMain.h"

#include <QApplication>
#include <QMessageBox>

using namespace morvane;

namespace {

int showMessageBox(const QString& text, int flags, const QString& title, const QString& detail) {
    QMessageBox box;
    box.setWindowTitle(title.isEmpty() ? PRODUCT_NAME : title);
    box.setText(text);
    if (!detail.isEmpty()) box.setInformativeText(detail);
    switch (flags & 0x70) {
    case MB_ICONCRITICAL:
        box.setIcon(QMessageBox::Critical);
        break;
    case MB_ICONQUESTION:
        box.setIcon(QMessageBox::Question);
        break;
    case MB_ICONEXCLAMATION:
        box.setIcon(QMessageBox::Warning);
        break;
    case MB_ICONINFORMATION:
        box.setIcon(QMessageBox::Information);
        break;
    default:
        break;
    }
    switch (flags & 7) {
    case MB_OKCANCEL:
        box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
        break;
    case MB_YESNOCANCEL:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        break;
    case MB_YESNO:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        break;
    default:
        box.setStandardButtons(QMessageBox::Ok);
        break;
    }
    switch (box.exec()) {
    case QMessageBox::Cancel:
        return ID_CANCEL;
    case QMessageBox::Yes:
        return ID_YES;
    case QMessageBox::No:
        return ID_NO;
    default:
        return ID_OK;
    }
}

} // namespace

int main(int argc, char* argv[]) {
    QApplication app(argc, argv);
    Set_MessageHandler(showMessageBox);
    if (!Sub_Main()) return 1;
    QApplication::setApplicationName(PRODUCT_NAME);
    QApplication::setOrganizationName(COMPANY_NAME);
    QApplication::setApplicationVersion(PRODUCT_VERSION);
    // Wayland names the window's program by this, so that the dock shows the installed entry's icon.
    QApplication::setDesktopFileName(QStringLiteral("org.morvane.Morvane"));
    QApplication::setWindowIcon(Skin_Icon(QStringLiteral("img_convert")));

    // The theme is known only from the settings; the window reads them again as it loads.
    Load_Settings();
    Theme_ShowFailure(Apply_Theme(app, Theme_No));

    // A second start hands its first argument to the running program, which shows its window and
    // runs it, and ends here; the first start listens for such hand-overs.
    const QStringList arguments = QApplication::arguments().mid(1);
    Instance_Channel channel({});
    if (channel.Find_PrevInstance(Instance_Channel::Program_Name(), arguments.value(0))) return 0;

    // The start picture closes by itself; nothing waits on it.
    PopupWindow splash;
    Show_Splash(splash);

    frmMain window;
    channel.setHandler([&window](const QString& text) { window.Mailbox_Changed(text); });
    window.Form_Load(arguments);
    window.Watch_TerminationSignals();
    window.show();
    return QApplication::exec();
}
