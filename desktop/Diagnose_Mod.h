// The diagnostics test bench: the conversion of the first listed file run again and again, one step
// per preset or per item of the preset settings' lists, every failed combination written down. A
// step sets its values, presses Convert, lets events through until the queue is idle, and with
// exactly one listed file reads that file's status. Headless: the window and the terminal front end
// each supply a DiagnoseHost. Main thread only; Test_Running is true for the whole of a run.
#pragma once

#include "FormatSetting.h"

#include <QList>
#include <QString>

namespace morvane {

enum DiagnoseTest : int { Test_AudioAll = 0, Test_Preset = 1, Test_VideoCodecOnly = 2 };

// One value of a step, written as "label:value".
struct DiagnoseValue {
    QString label;
    QString value;
    bool operator==(const DiagnoseValue&) const = default;
};

class DiagnoseHost {
public:
    virtual ~DiagnoseHost() = default;

    // The press on the convert button, as the user's.
    virtual void StartTesting() = 0;
    virtual int Get_ConversionState() = 0;
    // Lets waiting events through, blocking a few milliseconds at most; called until the queue is idle.
    virtual void Wait_Events();
    // True once the run must end: its window closed, the program closing, a stop signal.
    virtual bool Test_Cancelled() { return false; }
    // A cancelled run's conversion is stopped through this, once, then waited for as usual.
    virtual void Stop_Testing() {}

    // The file list.
    virtual int Record_Count() = 0;
    virtual QString Record_Status(int row) = 0;

    // The preset table's rows to step through (1-based, first to last), and applying one.
    virtual QList<qsizetype> Preset_Rows() = 0;
    virtual void Preset_Apply(qsizetype row) = 0;
    // The preset settings whose lists a run steps through.
    virtual FormatSetting& Settings() = 0;
    // The Name of the preset the settings hold.
    virtual QString Preset_Name() = 0;

    // A step whose file ended "Unsuccessful!".
    virtual void Test_Failed(const QString& name, const QList<DiagnoseValue>& values) = 0;
    // After every step's check, failed or not; the terminal removes the step's output here.
    virtual void Step_Ended() {}
};

struct DiagnoseSummary {
    int steps = 0;
    int failed = 0;
    bool cancelled = false;
};

// Runs one of the three tests to its end or until the host cancels. The settings keep the values of
// the last step.
DiagnoseSummary Diagnose_Run(DiagnoseHost& host, int test);

// The result box's line: the name, three blanks, the values as "label:value" three blanks apart, CR LF.
QString Diagnose_ResultLine(const QString& name, const QList<DiagnoseValue>& values);

} // namespace morvane
