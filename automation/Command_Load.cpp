#include "Command_Load.h"

#include "CatalogueTable.h"
#include "Import_Files.h"
#include "Preset_Mods.h"
#include "mMain.h"

#include <QCoreApplication>
#include <QFile>
#include <QPointer>
#include <QSaveFile>
#include <QTimer>

namespace morvane {

namespace {

const QString kExportDataPath = QStringLiteral("@ExportDataPath:");
const QString kExportDonePath = QStringLiteral("@ExportDonePath:");
const QString kSetOutput = QStringLiteral("@SetOutput:");
const QString kImageOverlay = QStringLiteral("@ImageOverlay:");
const QString kAddFile = QStringLiteral("@AddFile:");

// The pending "@ActivehWnd" reply and the host it asks.
QPointer<QTimer> activeFormTimer;
CommandHost* activeFormHost = nullptr;

// Replaces the file with these lines, each closed by CR LF. Written beside it and renamed into place,
// so that a sibling polling the file never reads half a list. Errors are ignored: an empty or
// unreachable path simply gets no reply.
void writeLines(const QString& path, const QStringList& lines) {
    if (path.isEmpty()) return;
    QSaveFile file(path);
    file.setDirectWriteFallback(true);
    if (!file.open(QIODevice::WriteOnly)) return;
    for (const QString& line : lines)
        file.write(line.toUtf8() + "\r\n");
    file.commit();
}

// Creates the file, or empties it when it exists.
void writeEmpty(const QString& path) {
    if (path.isEmpty()) return;
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate)) file.close();
}

bool holds(const QString& text, const QString& prefix) {
    return text.contains(prefix, Qt::CaseInsensitive);
}

// The whole text less every occurrence of the prefix, in any case.
QString rest(const QString& text, const QString& prefix) {
    return QString(text).replace(prefix, QString(), Qt::CaseInsensitive);
}

QStringList outputFormats(const QList<PresetRow>& rows) {
    QStringList lines;
    for (const PresetRow& row : rows) {
        if (row.Maker == QLatin1String("VideoFormat") || row.Maker == QLatin1String("AudioFormat"))
            lines.append(row.Format);
        else if (row.Maker == QLatin1String("WebFormat"))
            lines.append(row.Keyword);
        else if (row.Name != QLatin1String("[%Custom%]"))
            lines.append(row.Name);
    }
    return lines;
}

// The first preset row of that name gives the maker and keyword the browser needs. An unknown name
// still goes to Preset_Select, which tells the user that nothing was found.
void selectOutput(const QString& name, CommandHost& host) {
    const QString wanted = Trim_Spaces(name);
    const QList<PresetRow> rows = host.Preset_Rows();
    for (const PresetRow& row : rows) {
        if (Trim_Spaces(row.Name) != wanted) continue;
        host.Preset_Select(wanted, Trim_Spaces(row.Maker), Trim_Spaces(row.Keyword));
        return;
    }
    host.Preset_Select(wanted, QString(), QString());
}

// "image/show/animate/effect". The image path may hold slashes of its own on this system, so the
// three values are taken from the right and the path is what stands before them.
void imageOverlay(const QString& values, CommandHost& host) {
    QStringList parts = values.split(QLatin1Char('/'));
    host.Hide_DragDrop();
    if (parts.size() < 4) return;
    const QString effect = parts.takeLast();
    const QString animateDelay = parts.takeLast();
    const QString showDelay = parts.takeLast();
    host.Show_TagPopup(parts.join(QLatin1Char('/')), showDelay, animateDelay, effect);
}

void selectFirst(CommandHost& host) {
    host.Set_MainState(-1);
    host.Select_FirstRow();
    host.Show_InputFileInfo(0);
    host.Focus_Table();
}

void addPath(QString path, CommandHost& host) {
    path.remove(QLatin1Char('"'));
    if (Is_SupportedName(path)) {
        host.Import_File(path);
        host.Update_Totals();
        if (host.Row_Count() > 0) selectFirst(host);
        return;
    }
    Show_Message(kRefusedText, MB_OK | MB_ICONEXCLAMATION, kRefusedTitle);
    if (host.Row_Count() > 0)
        selectFirst(host);
    else
        host.Set_MainState(2);
}

void activeFormTick() {
    if (activeFormHost) writeLines(Path_ExportData, {QString::number(activeFormHost->Active_WindowHandle())});
    activeFormHost = nullptr;
}

void startActiveFormTimer(CommandHost& host) {
    if (!QCoreApplication::instance()) return;
    if (!activeFormTimer) {
        activeFormTimer = new QTimer(QCoreApplication::instance());
        activeFormTimer->setSingleShot(true);
        activeFormTimer->setInterval(kActiveFormInterval);
        QObject::connect(activeFormTimer, &QTimer::timeout, activeFormTimer, &activeFormTick);
    }
    activeFormHost = &host;
    activeFormTimer->start();
}

} // namespace

CommandHost::~CommandHost() {
    if (activeFormHost == this) Timer_GetActiveForm_Stop();
}

void CommandHost::Yield() {
    QCoreApplication::processEvents();
}

QList<PresetRow> Preset_Rows(const CatalogueTable& presets) {
    QList<PresetRow> rows;
    rows.reserve(presets.rowCount());
    for (qsizetype row = 1; row <= presets.rowCount(); ++row) {
        rows.append({Cell_Get(presets, row, QStringLiteral("Maker")),
                     Cell_Get(presets, row, QStringLiteral("Format")),
                     Cell_Get(presets, row, QStringLiteral("Keyword")),
                     Cell_Get(presets, row, QStringLiteral("Name"))});
    }
    return rows;
}

int Parse_CommandLine(const QStringList& arguments) {
    Command_Arguments = arguments;
    return static_cast<int>(Command_Arguments.size());
}

void Process_Command(const QString& order, CommandHost& host) {
    // Orders don't queue: one that comes while the program is busy is lost, and its sender sees no reply.
    if (host.Get_ConversionState() != 0 || !host.Main_Enabled()) return;
    // A copy: the caller's text may change while this order yields, say when it was an argument.
    const QString text = order;

    if (text.startsWith(QLatin1Char('@'))) {
        if (text == QLatin1String("@InputFormat")) {
            writeLines(Path_ExportData, {Supported_Extensions});
        } else if (text == QLatin1String("@OutputFormat")) {
            writeLines(Path_ExportData, outputFormats(host.Preset_Rows()));
        } else if (text == QLatin1String("@RemoveAll")) {
            host.Remove_All();
            host.Update_Totals();
            host.Show_InputFileInfo(-1);
            host.Set_MainState(2);
            host.Yield();
            writeEmpty(Path_ExportDone);
        } else if (text == QLatin1String("@hWnd")) {
            host.Yield();
            writeLines(Path_ExportData, {QString::number(host.Main_WindowHandle())});
        } else if (text == QLatin1String("@ActivehWnd")) {
            host.Yield();
            startActiveFormTimer(host);
        }

        // Every prefix is looked for in the untouched text, so one text may carry several orders.
        if (holds(text, kExportDataPath)) {
            Path_ExportData = rest(text, kExportDataPath);
            writeEmpty(Path_ExportData);
        }
        if (holds(text, kExportDonePath)) {
            Path_ExportDone = rest(text, kExportDonePath);
            writeEmpty(Path_ExportDone);
        }
        if (holds(text, kSetOutput)) selectOutput(rest(text, kSetOutput), host);
        if (holds(text, kImageOverlay)) {
            // The popup leaves the arguments as they are.
            imageOverlay(rest(text, kImageOverlay), host);
            return;
        }
        if (holds(text, kAddFile)) {
            addPath(rest(text, kAddFile), host);
            writeEmpty(Path_ExportDone);
        }
    } else {
        addPath(text, host);
    }

    Command_Arguments.clear();
}

bool Command_StartUp(CommandHost& host) {
    if (Command_Arguments.isEmpty()) return false;
    Process_Command(Command_Arguments.first(), host);
    return true;
}

void Timer_GetActiveForm_Stop() {
    if (activeFormTimer) activeFormTimer->stop();
    activeFormHost = nullptr;
}

} // namespace morvane
