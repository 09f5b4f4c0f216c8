// The terminal front end: the same catalogue, settings and conversion controller as the desktop
// program, driven from the command line and reporting on standard error.

#include "CMD_MediaConvert.h"
#include "Catalogue_Load.h"
#include "Cli_Inputs.h"
#include "Cli_Options.h"
#include "Cli_Progress.h"
#include "Cli_Settings.h"
#include "Cli_TestPresets.h"
#include "Effect_Chain.h"
#include "FFDecoder.h"
#include "FFEncoderEngine.h"
#include "FFLogger.h"
#include "FileList_Mods.h"
#include "Folders_Mods.h"
#include "Globals.h"
#include "Import_Files.h"
#include "OutputBrowser.h"
#include "Preset_Mods.h"
#include "Registry_Mod.h"
#include "Report_List.h"
#include "Sub_Main.h"
#include "VideoConverter_Mods.h"
#include "mMain.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QThread>

#include <csignal>
#include <cstdio>

#include <signal.h>

using namespace morvane;

namespace {

enum ExitCode : int { Exit_Done = 0, Exit_Failed = 1, Exit_Usage = 2 };

// Set by the stop signals; the run stops as the Stop button stops it, and a merge is cancelled.
volatile std::sig_atomic_t interrupted = 0;

void onStopSignal(int) {
    interrupted = 1;
}

// Ctrl-C, a kill, a closed terminal and Ctrl-\ all end the run cleanly: no half-written output stays.
void catchStopSignals() {
    struct sigaction action {};
    action.sa_handler = onStopSignal;
    sigemptyset(&action.sa_mask);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
        sigaction(number, &action, nullptr);
}

// Standard error, kept apart from the live progress line on a terminal.
CliTerminal& terminal() {
    static CliTerminal instance;
    return instance;
}

void err(const QString& text) {
    terminal().line(text);
}

void out(const QString& text) {
    std::fputs(text.toLocal8Bit().constData(), stdout);
    std::fputc('\n', stdout);
}

// Messages have no one to answer them here: print and take the first button, as a box's default.
int printMessage(const QString& text, int flags, const QString& title, const QString& detail) {
    (void)title;
    err(detail.isEmpty() ? text : text + QStringLiteral(" (") + detail + QLatin1Char(')'));
    switch (flags & 7) {
    case MB_YESNO:
    case MB_YESNOCANCEL:
        return ID_YES;
    default:
        return ID_OK;
    }
}

// The host has no window; the controller's defaults already do nothing for the rest.
class TerminalHost : public ConversionHost {
public:
    void Set_MainState(int state, bool enable) override {
        (void)state;
        (void)enable;
    }
    void Show_InputFileInfo(int row) override { (void)row; }
};

QString presetLine(const CatalogueTable& presets, qsizetype row) {
    return Cell_Get(presets, row, QStringLiteral("Name")) + QStringLiteral(" | ") +
           Cell_Get(presets, row, QStringLiteral("Maker")) + QStringLiteral(" | ") +
           Cell_Get(presets, row, QStringLiteral("Keyword"));
}

bool isCustomRow(const CatalogueTable& presets, qsizetype row) {
    return Cell_Get(presets, row, QStringLiteral("Name")).startsWith(QStringLiteral("[%"));
}

// Rows (1-based) matching the query as the preset search matches them; all rows for no query.
QList<qsizetype> searchRows(const CatalogueTable& presets, const QString& query) {
    QList<qsizetype> rows;
    if (query.trimmed().isEmpty()) {
        for (qsizetype row = 1; row <= presets.rowCount(); ++row)
            if (!isCustomRow(presets, row)) rows << row;
        return rows;
    }
    CatalogueTable view;
    Search_Fill(presets, query, view);
    // The view holds no row numbers; its three texts find the row again.
    for (qsizetype hit = 0; hit < view.rowCount(); ++hit)
        for (qsizetype row = 1; row <= presets.rowCount(); ++row)
            if (Cell_Get(presets, row, QStringLiteral("Name")) == view.cell(hit, 0) &&
                Cell_Get(presets, row, QStringLiteral("Maker")) == view.cell(hit, 1) &&
                Cell_Get(presets, row, QStringLiteral("Keyword")) == view.cell(hit, 2) &&
                !rows.contains(row)) {
                rows << row;
                break;
            }
    return rows;
}

// An exact name wins over the search; anything but one row is the caller's usage error.
QList<qsizetype> resolvePreset(const CatalogueTable& presets, const QString& name) {
    QList<qsizetype> exact;
    for (qsizetype row = 1; row <= presets.rowCount(); ++row)
        if (!isCustomRow(presets, row) &&
            Cell_Get(presets, row, QStringLiteral("Name")).compare(name.trimmed(), Qt::CaseInsensitive) == 0)
            exact << row;
    return exact.isEmpty() ? searchRows(presets, name) : exact;
}

} // namespace

int main(int argc, char* argv[]) {
    QCoreApplication app(argc, argv);
    Set_MessageHandler(printMessage);

    CliOptions options;
    const QString program = QFileInfo(QString::fromLocal8Bit(argv[0])).fileName();
    const QString problem = Cli_Parse(app.arguments().mid(1), options);
    if (!problem.isEmpty()) {
        err(program + QStringLiteral(": ") + problem);
        err(QStringLiteral("Try '") + program + QStringLiteral(" --help'."));
        return Exit_Usage;
    }
    if (options.help) {
        out(Cli_HelpText(program));
        return Exit_Done;
    }
    catchStopSignals();
    // The encoders' own log (settings, statistics) only when asked for; errors always.
    FFLogger logger;
    logger.SetLogLevel(options.verbose ? 5 : 3);
    QObject::connect(&logger, &FFLogger::OnLog, [](int, int, const QString& line) { err(line); });
    if (!Sub_Main()) return Exit_Failed;
    if (options.version) {
        out(PRODUCT_NAME + QLatin1Char(' ') + PRODUCT_VERSION);
        return Exit_Done;
    }
    Load_Settings();

    Catalogue catalogue;
    Catalogue_Load(catalogue);
    const CatalogueTable& presets = catalogue.ReportControl_PresetMain;

    if (options.listPresets) {
        const QList<qsizetype> rows = searchRows(presets, options.listQuery);
        for (qsizetype row : rows)
            out(presetLine(presets, row));
        // A query that finds nothing is answered as an unknown --preset is: a word and status 2.
        if (rows.isEmpty()) err(QStringLiteral("No preset matches \"%1\".").arg(options.listQuery));
        return rows.isEmpty() ? Exit_Usage : Exit_Done;
    }

    // Under test, every preset the query finds; otherwise the one preset named.
    const QList<qsizetype> candidates =
        options.testPresets ? searchRows(presets, options.testQuery) : resolvePreset(presets, options.preset);
    if (options.testPresets ? candidates.isEmpty() : candidates.size() != 1) {
        const QString query = options.testPresets ? options.testQuery : options.preset;
        err(candidates.isEmpty()
                ? QStringLiteral("no preset matches \"%1\"").arg(query)
                : QStringLiteral("\"%1\" matches %2 presets:").arg(query).arg(candidates.size()));
        for (qsizetype row : candidates)
            err(QStringLiteral("  ") + presetLine(presets, row));
        return Exit_Usage;
    }
    const qsizetype presetRow = candidates.first();
    FormatSetting settings{catalogue};
    OutputBrowser browser{catalogue, settings};
    Cli_ApplyPreset(settings, browser, presets, presetRow);
    for (const auto& [field, value] : options.sets) {
        QString clamped;
        const QString refusal = Cli_ApplySet(settings, field, value, clamped);
        if (!refusal.isEmpty()) {
            err(QStringLiteral("--set %1: %2").arg(field, refusal));
            return Exit_Usage;
        }
        if (!clamped.isEmpty()) err(QStringLiteral("--set %1: %2").arg(field, clamped));
    }
    if (!options.effects.trimmed().isEmpty()) {
        // Checked once here, as the frames would meet it: unknown names are passed over, a value that
        // is no number would silently end the effects, so it is refused before anything runs.
        const imaging::ChainResult check =
            imaging::Run_EffectChain(imaging::Frame{}, options.effects.toStdString());
        for (const std::string& name : check.unknown)
            err(QStringLiteral("--effects: unknown effect \"%1\" passed over")
                    .arg(QString::fromStdString(name)));
        if (!check.complete) {
            err(QStringLiteral("--effects: \"%1\" lacks a value or has one that is no number")
                    .arg(QString::fromStdString(check.badToken)));
            return Exit_Usage;
        }
    }
    browser.mergeChecked = options.merge;
    if (!options.testPresets) err(QStringLiteral("preset: ") + presetLine(presets, presetRow));

    // Import: every file probed; refusals land in the report, kept apart because the end of the
    // queue rebuilds the report from the list.
    CliInputs inputs = Cli_CollectInputs(options.inputs);
    if (options.testPresets) inputs.files = inputs.files.mid(0, 1); // the first file only
    for (const QString& path : inputs.skipped)
        err(QStringLiteral("skipped (unsupported type): ") + path);
    FileViewMain table;
    Report_Clear();
    for (const auto& [path, reason] : inputs.refused)
        Report_Add(path, reason);
    {
        auto decoder = Make_FFDecoder();
        for (const QString& path : inputs.files)
            if (!interrupted) Fill_Item(path, 0, table, *decoder);
    }
    for (int r = 0; r < table.rows(); ++r)
        table.setText(r, FileCol::Filters, options.effects);
    const QList<ReportEntry> importFailures = Report_Entries();
    Report_Clear();

    const auto printReport = [&](const QList<ReportEntry>& entries) {
        for (const ReportEntry& entry : entries)
            err(QStringLiteral("failed: ") + entry.text + QStringLiteral(": ") + entry.second.trimmed());
    };

    if (table.rows() == 0) {
        if (importFailures.isEmpty()) err(QStringLiteral("no supported files found"));
        printReport(importFailures);
        return Exit_Failed;
    }

    FFEncoderEngine engine;
    TerminalHost host;
    VideoConverter converter(table, settings, browser, engine, host, true);
    converter.Txt_OutputPath = options.output.isEmpty() ? Path_Output : options.output;
    if (options.nameMode >= 0) Output_NameMode = options.nameMode;
    if (options.parallel > 0) {
        converter.chkThreadMode = true;
        converter.txtThreadCount = QString::number(options.parallel);
    }

    if (options.testPresets) {
        const auto live = [](const QString& text) {
            if (text.isEmpty())
                terminal().endLive();
            else
                terminal().live(text);
        };
        const auto print = [](const QString& text) {
            terminal().endLive(); // standard output must not land behind the live line
            out(text);
        };
        return Cli_TestPresets({catalogue, settings, browser, table, converter, candidates,
                                [] { return interrupted != 0; }, print, err, live});
    }

    if (options.dryRun) {
        // All rows at once, so that the names shown are those a run would give.
        for (const VideoConverter::RowJob& job : converter.Prepare_All()) {
            out(QStringLiteral("input:     ") + job.inputPath);
            out(QStringLiteral("seek:      ") + job.seek);
            out(QStringLiteral("output:    ") + job.outputPath);
            out(QStringLiteral("arguments: ") + job.arguments);
            if (!job.effects.isEmpty()) out(QStringLiteral("effects:   ") + job.effects);
            out(QString());
        }
        printReport(importFailures);
        return importFailures.isEmpty() ? Exit_Done : Exit_Failed;
    }

    if (interrupted) {
        err(QStringLiteral("stopped"));
        return Exit_Failed;
    }
    QString folderProblem;
    if (!Ensure_OutputFolder(converter.Txt_OutputPath, folderProblem)) {
        err(QStringLiteral("cannot convert: ") + folderProblem);
        return Exit_Failed;
    }

    MergePipeline merge;
    if (options.merge) {
        merge.cancelRequested = [] { return interrupted != 0; };
        converter.Merge_Requested = [&] {
            return merge.Merge_All(table, converter.Output_Folder(), browser.PanelActive);
        };
    }

    const PositionTap positions(engine, converter);
    converter.Start();
    if (converter.Get_ConversionState() == Conversion_Idle && !converter.Timer_ConversionElapsed()) {
        // Start refused (its message is printed) or the queue ended at once.
        bool anyDone = false;
        for (int r = 0; r < table.rows(); ++r)
            anyDone = anyDone || table.text(r, FileCol::Status).trimmed() == QLatin1String("Done");
        if (!anyDone) {
            printReport(importFailures + Report_Entries());
            return Exit_Failed;
        }
    }

    ProgressPrinter progress(table, positions, terminal());
    bool stopped = false;
    while (converter.Get_ConversionState() != Conversion_Idle) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        if (interrupted && !stopped) {
            stopped = true;
            terminal().endLive();
            err(QStringLiteral("stopping..."));
            converter.Stop();
        }
        progress.update();
        QThread::msleep(20);
    }
    QCoreApplication::processEvents(); // log lines still queued
    progress.update();
    terminal().endLive();

    int done = 0;
    for (int r = 0; r < table.rows(); ++r)
        if (table.text(r, FileCol::Status).trimmed() == QLatin1String("Done")) ++done;
    const QList<ReportEntry> failures = importFailures + Report_Entries();
    printReport(failures);
    const int notDone = table.rows() - done + static_cast<int>(importFailures.size());
    err(QStringLiteral("%1 done, %2 not done, elapsed %3")
            .arg(done)
            .arg(notDone)
            .arg(Format_Seconds(converter.Elapsed_Seconds, false)));
    stopped = stopped || interrupted;
    if (stopped) err(QStringLiteral("stopped"));
    return notDone == 0 && !stopped ? Exit_Done : Exit_Failed;
}
