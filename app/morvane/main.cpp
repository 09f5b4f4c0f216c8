// The desktop program: runs the start sequence, then lives on the main window's event loop.

#include "Globals.h"
#include "Registry_Mod.h"
#include "Sub_Main.h"
#include "mMain.h"

#include <QApplication>
#include <QLabel>
#include <QMainWindow>
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
    Msg_Trail.clear();
    Load_Settings();

    // The main window grows with the file list, catalogue and conversion; for now it is the frame.
    QMainWindow frmMain;
    frmMain.setWindowTitle(PRODUCT_NAME);
    auto* placeholder = new QLabel(QStringLiteral("Add video files to convert them."), &frmMain);
    placeholder->setAlignment(Qt::AlignCenter);
    frmMain.setCentralWidget(placeholder);
    frmMain.resize(1280, 800);
    frmMain.show();
    return QApplication::exec();
}
