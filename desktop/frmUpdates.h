// The offer of a newer version: its changes, and a way to the page that has it. Shown modally by the
// update check; the page is opened through the callback it is given.
#pragma once

#include <QDialog>
#include <QUrl>

#include <functional>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace morvane {

class frmUpdates : public QDialog {
    Q_OBJECT
public:
    using PageOpener = std::function<void(const QUrl&)>;

    // message: the changes text, lines ending in CR LF.
    frmUpdates(QWidget* parent, const QString& message, PageOpener openPage);

    QLabel* lbl_UpdateMsg() const { return m_label; }
    QPlainTextEdit* Txt_UpdateMsg() const { return m_text; }
    // 0 closes; 1 opens the page and closes.
    QPushButton* Cmd_Msg(int index) const { return m_buttons[index == 1 ? 1 : 0]; }

private:
    void Cmd_Msg_Click(int index);

    QLabel* m_label = nullptr;
    QPlainTextEdit* m_text = nullptr;
    QPushButton* m_buttons[2] = {nullptr, nullptr};
    PageOpener m_openPage;
};

} // namespace morvane
