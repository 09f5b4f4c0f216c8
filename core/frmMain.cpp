#include "frmMain.h"

namespace morvane {

frmMain::frmMain(QWidget* parent) : QMainWindow(parent) {}

} // namespace morvane
