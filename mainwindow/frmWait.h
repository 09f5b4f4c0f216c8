// The wait window of imports, preparation, closing and the merge. A separate top-level window owned
// by the main window and shown without blocking; while it is up the main window is disabled, the
// wait window itself stays usable. The mode (0..5) picks which labels, which bar style and whether
// Cancel is shown. Main thread only.
#pragma once

#include <QDialog>
#include <QString>

class QLabel;
class QProgressBar;
class QPushButton;

namespace morvane {

class frmWait : public QDialog {
    Q_OBJECT
public:
    frmWait(QWidget* mainWindow, int mode);
    ~frmWait() override;

    int mode() const { return m_mode; }
    // True when the bar runs as a busy bar (no amount); setMaximum and setValue then do nothing.
    bool isBusy() const { return m_busy; }

    void setCaption(const QString& caption);
    void setFileNo(const QString& text);
    void setFile(const QString& text);
    void setMaximum(int maximum);
    void setValue(int value);

    QLabel* lbl_WaitFile() const { return m_waitFile; }
    QLabel* lbl_WaitFileNo() const { return m_waitFileNo; }
    QProgressBar* ProgressBar1() const { return m_bar; }
    QPushButton* Cmd_Cancel() const { return m_cancel; }

signals:
    void cancelPressed();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void applyMode();
    void setMainEnabled(bool enabled);

    QWidget* m_main = nullptr; // cleared when the main window goes first
    int m_mode = 0;
    bool m_busy = true;
    bool m_mainDisabled = false;
    QLabel* m_waitFile = nullptr;
    QLabel* m_waitFileNo = nullptr;
    QProgressBar* m_bar = nullptr;
    QPushButton* m_cancel = nullptr;
};

} // namespace morvane
