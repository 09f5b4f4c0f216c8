// The diagnostics test bench: three test runs over the first listed file with their failures in one
// pane, the encoder's log in the other, and the merge child's last line and time. A thin view over
// Diagnose_Run; the host (the main window) does the converting. Not modal: the main window and its
// list stay usable, so a run guards against a second one and a close only asks the run to end.
// Main thread only.
#pragma once

#include "Diagnose_Mod.h"

#include <QWidget>

#include <array>
#include <memory>

class QCheckBox;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace morvane {

class frmDiagnose : public QWidget {
    Q_OBJECT
public:
    frmDiagnose(std::unique_ptr<DiagnoseHost> host, QWidget* parent = nullptr);
    ~frmDiagnose() override;

    // 0 "Test Audio All", 1 "Test Preset", 2 "Test Video Codec Only". Returns when the run has ended;
    // a press while one runs does nothing.
    void Cmd_Test_Click(int index);
    // A line of the encoder's log, kept only with "Encoder log" ticked.
    void Diagnose_Log(const QString& text);
    // A failed step's line (ending in CR LF) added to the result box.
    void Add_Result(const QString& line);
    // The merge child's last progress line and time.
    void Show_ResultLine(const QString& line, const QString& time);

    bool Running() const { return m_running; }
    // Set by closing the window: the run ends after its current step.
    bool Cancel_Requested() const { return m_cancel; }

    QPushButton* Cmd_Test(int index) const { return m_tests.at(static_cast<size_t>(index)); }
    QCheckBox* Chk_Test() const { return m_chkTest; }
    QPlainTextEdit* Txt_TestResult() const { return m_result; }
    QCheckBox* Chk_EngLog() const { return m_chkLog; }
    QPlainTextEdit* txtLog() const { return m_log; }
    QPushButton* Cmd_ClearLog() const { return m_clearLog; }
    QLineEdit* Txt_Filter() const { return m_filter; }
    QPlainTextEdit* txt_EventsLog() const { return m_events; }
    QLineEdit* Txt_ResultLine() const { return m_resultLine; }
    QLineEdit* Txt_Time() const { return m_time; }
    QPushButton* Command1() const { return m_command1; }
    QLineEdit* Text1() const { return m_text1; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void setupConnections();

    std::unique_ptr<DiagnoseHost> m_host;
    bool m_running = false;
    bool m_cancel = false;

    std::array<QPushButton*, 3> m_tests{};
    QCheckBox* m_chkTest = nullptr;
    QPlainTextEdit* m_result = nullptr;
    QCheckBox* m_chkLog = nullptr;
    QPlainTextEdit* m_log = nullptr;
    QPushButton* m_clearLog = nullptr;
    QLineEdit* m_filter = nullptr;
    QPlainTextEdit* m_events = nullptr;
    QLineEdit* m_resultLine = nullptr;
    QLineEdit* m_time = nullptr;
    QPushButton* m_command1 = nullptr;
    QLineEdit* m_text1 = nullptr;
};

} // namespace morvane
