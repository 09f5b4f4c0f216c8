// The small name dialog of the preset settings: one box, cancel and accept. The accept button stays
// disabled while the trimmed box is empty; Enter accepts a non-empty name, Escape cancels.
// Main thread only.
#pragma once

#include <QDialog>
#include <QString>
#include <QTimer>

class QKeyEvent;
class QLabel;
class QLineEdit;
class QPushButton;

namespace morvane {

class frmNewPreset : public QDialog {
    Q_OBJECT
public:
    frmNewPreset(const QString& title, const QString& label, QWidget* parent = nullptr);

    // The accepted name as typed; "" until accepted, and after a cancel.
    QString NewPresetName() const { return m_name; }

    // Shows the dialog modally and returns the name, "" on cancel.
    static QString Ask(QWidget* parent, const QString& title, const QString& label);

    void accept() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Timer_CheckEmpty_Timer();
    bool hasName() const;

    QLabel* m_label = nullptr;
    QLineEdit* m_box = nullptr;
    QPushButton* m_cancel = nullptr;
    QPushButton* m_accept = nullptr;
    QTimer m_timer;
    QString m_name;
};

} // namespace morvane
