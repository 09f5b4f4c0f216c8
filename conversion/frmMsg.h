// The completion window: the conversion went well, and the output can be opened. Modal; Escape and
// "Close" end it. "Open output folder" ends it and asks the host to open the output, which knows
// whether that is the merged file or the output folder.
#pragma once

#include <QDialog>

class QLabel;
class QPushButton;

namespace morvane {

class frmMsg : public QDialog {
    Q_OBJECT
public:
    explicit frmMsg(QWidget* parent = nullptr);

    QLabel* lbl_ConversionCompleted() const { return m_completed; }
    QPushButton* Cmd_Msg(int index) const { return m_buttons[index == 1 ? 1 : 0]; }

signals:
    void openOutputRequested();

private:
    QLabel* m_completed = nullptr;
    QPushButton* m_buttons[2] = {nullptr, nullptr};
};

} // namespace morvane
