// The answer of a check asked for from the menu when no newer version is known. Modal.
#pragma once

#include <QDialog>

class QLabel;
class QPushButton;

namespace morvane {

class frmNoUpdates : public QDialog {
    Q_OBJECT
public:
    explicit frmNoUpdates(QWidget* parent = nullptr);

    QLabel* lbl_Msg() const { return m_label; }
    QPushButton* Cmd_OK() const { return m_ok; }

private:
    QLabel* m_label = nullptr;
    QPushButton* m_ok = nullptr;
};

} // namespace morvane
