// The close question: minimise to the tray or exit, and whether to ask again. Shown modally; the
// answer goes to Close_Event and Close_DontAsk (Escape and the close box answer "ask again").
#pragma once

#include <QDialog>

class QCheckBox;
class QPushButton;

namespace morvane {

class frmClose : public QDialog {
    Q_OBJECT
public:
    explicit frmClose(QWidget* parent = nullptr);

    QCheckBox* Chk_DontAsk() const { return m_dontAsk; }
    QPushButton* Cmd_Close(int index) const { return m_buttons[index == 1 ? 1 : 0]; }

    // Escape and the close box.
    void reject() override;

private:
    void choose(int event);

    QCheckBox* m_dontAsk = nullptr;
    QPushButton* m_buttons[2] = {nullptr, nullptr};
};

} // namespace morvane
