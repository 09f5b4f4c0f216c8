#include "Cli_TestPresets.h"

#include "Cli_Settings.h"
#include "Diagnose_Mod.h"
#include "Globals.h"
#include "Preset_Mods.h"

#include <QDir>

namespace morvane {

namespace {

class PresetBench final : public DiagnoseHost {
public:
    PresetBench(const CliPresetTest& test, const QString& folder) : t(test), m_folder(folder) {}

    void StartTesting() override {
        QDir().mkpath(m_folder);
        t.converter.Start();
    }
    int Get_ConversionState() override { return t.converter.Get_ConversionState(); }
    bool Test_Cancelled() override { return t.interrupted(); }
    void Stop_Testing() override { t.converter.Stop(); }
    int Record_Count() override { return t.table.rows(); }
    QString Record_Status(int row) override { return t.table.text(row, FileCol::Status); }
    QList<qsizetype> Preset_Rows() override { return t.rows; }
    void Preset_Apply(qsizetype row) override {
        m_row = row;
        Cli_ApplyPreset(t.settings, t.browser, t.catalogue.ReportControl_PresetMain, row);
        t.live(QStringLiteral("testing %1 of %2: ").arg(++m_step).arg(t.rows.size()) + Preset_Name());
    }
    FormatSetting& Settings() override { return t.settings; }
    QString Preset_Name() override {
        return Cell_Get(t.catalogue.ReportControl_PresetMain, m_row, QStringLiteral("Name"));
    }
    void Test_Failed(const QString& name, const QList<DiagnoseValue>& values) override {
        (void)values; // the row says which preset; the encoder's message says more than its values
        const QStringList lines =
            t.table.text(0, FileCol::ErrMsg).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        const QString reason = lines.isEmpty() ? QStringLiteral("Unsuccessful!") : lines.first().simplified();
        t.out(name + QStringLiteral("   ") + reason);
    }
    void Step_Ended() override { QDir(m_folder).removeRecursively(); }

private:
    const CliPresetTest& t;
    QString m_folder;
    qsizetype m_row = 0;
    int m_step = 0;
};

} // namespace

int Cli_TestPresets(const CliPresetTest& test) {
    const QString folder = Folder_Temp + QStringLiteral("preset-test/");
    if (!QDir().mkpath(folder)) {
        test.err(QStringLiteral("cannot make the test folder ") + folder);
        return 1;
    }
    test.converter.Txt_OutputPath = folder;
    PresetBench bench(test, folder);
    const DiagnoseSummary summary = Diagnose_Run(bench, Test_Preset);
    QDir(folder).removeRecursively();
    test.live(QString());
    test.out(QStringLiteral("%1 of %2 presets failed").arg(summary.failed).arg(summary.steps));
    if (summary.cancelled) test.err(QStringLiteral("stopped"));
    return summary.failed == 0 && !summary.cancelled ? 0 : 1;
}

} // namespace morvane
