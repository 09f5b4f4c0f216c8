// The command channel: orders that arrive as one text each, from the command line, from a second
// start of the program, or from a sibling program, and whose replies are files on disk. The main
// window stands behind CommandHost. Main thread only; no order queues behind a running one here,
// the transport (Instance_Channel) does that.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace morvane {

class CatalogueTable;

// The four cells of a preset table row that the channel reads, as they stand in the table.
struct PresetRow {
    QString Maker;
    QString Format;
    QString Keyword;
    QString Name;
};

// The rows of ReportControl_PresetMain, first to last, for CommandHost::Preset_Rows.
QList<PresetRow> Preset_Rows(const CatalogueTable& presets);

// What the channel asks of the main window.
class CommandHost {
public:
    // Stops a pending Timer_GetActiveForm tick that would reach this host.
    virtual ~CommandHost();

    virtual int Get_ConversionState() = 0; // 0 idle
    virtual bool Main_Enabled() = 0;

    virtual QList<PresetRow> Preset_Rows() = 0;
    // The browser's Preset_Select; it tells the user itself when it fails.
    virtual bool Preset_Select(const QString& name, const QString& maker, const QString& keyword) = 0;

    // Import_Files of one path into FileViewMain (no dialog: the path is never empty here).
    virtual void Import_File(const QString& path) = 0;
    virtual void Remove_All() = 0;
    virtual void Update_Totals() = 0;
    virtual int Row_Count() = 0;
    virtual void Select_FirstRow() = 0;
    virtual void Show_InputFileInfo(int row) = 0;
    virtual void Set_MainState(int state) = 0; // -1 the list has items, 2 the list is empty
    virtual void Focus_Table() = 0;

    // Window ids as numbers; 0 when there is no active window.
    virtual quint64 Main_WindowHandle() = 0;
    virtual quint64 Active_WindowHandle() = 0;

    virtual void Hide_DragDrop() = 0;
    virtual void Show_TagPopup(const QString& imagePath, const QString& showDelay,
                               const QString& animateDelay, const QString& effect) = 0;

    // Lets queued events through, as the channel does between steps.
    virtual void Yield();
};

// The arguments behind the program name. The first one is run by Command_StartUp; any command
// clears them, so that a later start-up tick finds nothing.
inline QStringList Command_Arguments;
int Parse_CommandLine(const QStringList& arguments);

// Where the data replies and the done marker go; set by the channel's own commands, kept for the
// life of the process.
inline QString Path_ExportData;
inline QString Path_ExportDone;

// The title and text of the box that refuses a path.
inline const QString kRefusedTitle = QStringLiteral("Can not open file");
inline const QString kRefusedText =
    QStringLiteral("Plase check if the file format supported and listed in our website.\r\n\r\nThank you.");

// Delay of the tick that answers "@ActivehWnd", in milliseconds.
inline constexpr int kActiveFormInterval = 300;

// Runs one order: a command that begins with "@", or else a path to import. Dropped without a reply
// while a conversion runs or the main window is disabled.
void Process_Command(const QString& text, CommandHost& host);

// The start-up tick's part: runs the first argument and returns true, or returns false when there
// is none (the caller then brings its window to the front instead).
bool Command_StartUp(CommandHost& host);

// Drops a pending "@ActivehWnd" reply; the main window calls it when it closes.
void Timer_GetActiveForm_Stop();

} // namespace morvane
