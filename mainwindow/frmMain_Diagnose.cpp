// The main window's side of the diagnostics test bench: the host that converts for its runs, the
// menu entry's window, and the encoder's log and the merge's poll passed on to it.

#include "FFLogger.h"
#include "Globals.h"
#include "Preset_Mods.h"
#include "frmFormatSetting.h"
#include "frmMain.h"

namespace morvane {

namespace {

class MainDiagnoseHost : public DiagnoseHost {
public:
    explicit MainDiagnoseHost(frmMain& window) : w(window) {}

    void StartTesting() override {
        w.settingsWindow()->redraw(); // the step's values, where the user looks for them
        w.StartTesting();
    }
    int Get_ConversionState() override { return w.Get_ConversionState(); }
    // The program closing ignores the encoder's events, so the queue would never be seen to end.
    bool Test_Cancelled() override {
        return Closing || !w.diagnoseWindow() || w.diagnoseWindow()->Cancel_Requested();
    }
    void Stop_Testing() override {
        if (!Closing) w.Cmd_FileListView_Click(Btn_Stop);
    }
    int Record_Count() override { return w.table().rows(); }
    QString Record_Status(int row) override { return w.table().text(row, FileCol::Status); }
    QList<qsizetype> Preset_Rows() override {
        QList<qsizetype> rows;
        for (qsizetype row = 1; row <= w.catalogue().ReportControl_PresetMain.rowCount(); ++row)
            rows << row;
        return rows;
    }
    void Preset_Apply(qsizetype row) override { w.settings().Preset_Apply(row); }
    FormatSetting& Settings() override { return w.settings(); }
    QString Preset_Name() override {
        const CatalogueTable& presets = w.catalogue().ReportControl_PresetMain;
        return Cell_Get(presets, Row_Find(presets, QStringLiteral("ID"), w.settings().Txt_ID),
                        QStringLiteral("Name"));
    }
    void Test_Failed(const QString& name, const QList<DiagnoseValue>& values) override {
        if (frmDiagnose* bench = w.diagnoseWindow()) bench->Add_Result(Diagnose_ResultLine(name, values));
    }

private:
    frmMain& w;
};

} // namespace

void frmMain::Cmd_Diagnose_Click() {
    if (!m_diagnose) {
        m_diagnose = new frmDiagnose(std::make_unique<MainDiagnoseHost>(*this), this);
        // FFmpeg's lines reach the bench while it exists; before, they went to standard error.
        auto* logger = new FFLogger(m_diagnose);
        connect(logger, &FFLogger::OnLog, this,
                [this](int, int, const QString& line) { Diagnose_Log(line); });
        m_merge.ticked = [this] {
            if (m_diagnose && m_diagnose->isVisible())
                m_diagnose->Show_ResultLine(m_merge.Merge_ResultText, m_merge.Merge_Time);
        };
    }
    m_diagnose->show();
    m_diagnose->raise();
    m_diagnose->activateWindow();
}

void frmMain::StartTesting() {
    Cmd_FileListView_Click(Btn_Convert);
}

void frmMain::Diagnose_Log(const QString& text) {
    if (m_diagnose && m_diagnose->isVisible()) m_diagnose->Diagnose_Log(text);
}

} // namespace morvane
