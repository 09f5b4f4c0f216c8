// The main window.
#pragma once

#include <QMainWindow>

namespace morvane {

class frmMain : public QMainWindow {
    Q_OBJECT
public:
    explicit frmMain(QWidget* parent = nullptr);
};

} // namespace morvane
