// The main window: the file list, the input information panel, the output choice and the
// conversion controls. A thin view: the rows live in FileViewMain, the output parameters in
// FormatSetting and OutputBrowser, the queue in VideoConverter; the window applies the state rule,
// dispatches the button array and runs the closing conversation.
//
// Every dialog that the window opens goes through MainSeams, so that tests answer them without a
// screen. Main thread only.
#pragma once

#include "CMD_MediaConvert.h"
#include "Catalogue.h"
#include "DVD_Mods.h"
#include "EncoderEngine.h"
#include "FFDecoder.h"
#include "FFPlayer.h"
#include "FileViewMain.h"
#include "FormatSetting.h"
#include "Import_Files.h"
#include "Input_FileInfo.h"
#include "Launcher_Entry.h"
#include "Main_State.h"
#include "OutputBrowser.h"
#include "PopupTray_Mod.h"
#include "PopupWindow.h"
#include "VideoConverter_Mods.h"
#include "frmDiagnose.h"
#include "frmWait.h"

#include <QGuiApplication>
#include <QMainWindow>
#include <QPointer>
#include <QTimer>

#include <array>
#include <functional>
#include <memory>

class QAction;
class QCheckBox;
class QLabel;
class QLineEdit;
class QSystemTrayIcon;
class QMenu;
class QProgressBar;
class QPushButton;
class QToolButton;

namespace morvane {

class FileListView;
class MediaPlayer;
class frmPlayer;
class frmEditVideo;
class frmReportList;
class frmFormatSetting;
class OutputBrowserView;

// The dialogs of the main window. Empty members open the real windows.
struct MainSeams {
    std::function<QStringList(const OpenDialogRequest&)> openFiles; // the Add dialog
    std::function<QString(const QString& start)> chooseFolder;      // button 7; "" is Cancel
    std::function<void()> closeDialog;                              // frmClose
    std::function<void()> completion;                               // frmMsg
    std::function<void()> preferences;                              // frmPreferences
    std::function<void()> about;                                    // frmAbout
    std::function<void(int code)> exitProcess;                      // the hard end of Form_Unload
    // The player window, shown; without it the window runs modally until it closes.
    std::function<void(frmPlayer& window)> playerWindow;
    // "Load DVD Folder...": "" is Cancel.
    std::function<QString(const QString& start)> chooseDiscFolder;
    // The edit window, shown; likewise.
    std::function<void(frmEditVideo& window)> editWindow;
    bool tagHint = true; // the getting-started hint a moment after the start
};

class frmMain : public QMainWindow {
    Q_OBJECT
public:
    // Without an engine the FFmpeg engine serves; without a decoder, the FFmpeg reader; without a
    // player, libmpv.
    explicit frmMain(MainSeams seams = {}, std::unique_ptr<EncoderEngine> engine = {},
                     std::unique_ptr<FFDecoder> decoder = {}, std::unique_ptr<FFPlayer> player = {},
                     QWidget* parent = nullptr);
    ~frmMain() override;

    // The load sequence; the command line's first argument (may be empty) is imported by
    // Timer_StartUp.
    void Form_Load(const QStringList& arguments = {});

    // ---- The state rule and the panels.
    void Set_MainState(int state, bool enable);
    int Get_ConversionState() const { return m_converter->Get_ConversionState(); }
    void Show_InputFileInfo(int row);
    int Info_Row = 0;

    // ---- The button array and the menus.
    void Cmd_FileListView_Click(int index);
    void mnuMenu_Click(int index);
    void mnuFileList_Click(int index);
    // The preview's Play button: the row of the information panel in the player window.
    void Cmd_PlayPreview_Click();
    // Button 8: the edit window on the one selected row; with none or several it does nothing.
    void Cmd_Edit_Click();
    // To the tray and back (the close conversation, the tray's menu, a second start); without a tray on
    // the desktop the window stays.
    void Tray_Toggle();
    const TrayState& tray() const { return m_tray; }
    PopupWindow& tagPopup() { return *m_tagPopup; }
    PopupWindow& donePopup() { return *m_donePopup; }
    ConversionHost& conversionHost();
    QSystemTrayIcon* trayIcon() const { return TrayIcon; }

    // The command channel's mailbox: a text handed over by a second start or a sibling program. The
    // window comes to the front; a text other than blanks runs as a command.
    void Mailbox_Changed(const QString& received);
    QString TxtCommand_LoadingTime;

    // Button 13: the disc menu, built afresh from the drives; an entry imports its titles.
    void Cmd_Disc_Click();
    void mnuDisc_Click(int index);
    QMenu* discMenu() const { return mnuDiscs; }
    // The theme menu: 1 Light, 2 Dark.
    void mnutheme_Click(int index);

    // ---- The diagnostics test bench (frmMain_Diagnose.cpp).
    // The menu's "Diagnostics...": the bench, made on the first call, shown and brought to the front.
    void Cmd_Diagnose_Click();
    // The press on Convert, as the user's.
    void StartTesting();
    // A line of the encoder's log for the bench's log pane; dropped while the bench is not shown.
    void Diagnose_Log(const QString& text);
    frmDiagnose* diagnoseWindow() const { return m_diagnose; }

    // ---- Closing.
    bool Form_QueryUnload();
    void Form_Unload();
    // SIGINT and SIGTERM from now on end the program as Exit does during a conversion: the tasks
    // stop, their unfinished outputs go, the program quits. For one window per process.
    void Watch_TerminationSignals();

    // ---- For tests and the front end: the models and controls behind the window.
    FileViewMain& table() { return m_table; }
    VideoConverter& converter() { return *m_converter; }
    FormatSetting& settings() { return m_settings; }
    OutputBrowser& browser() { return m_browser; }
    Catalogue& catalogue() { return m_catalogue; }
    FileListView* fileList() const { return m_list; }
    QPushButton* button(int index) const;
    QLineEdit* outputPath() const { return Txt_OutputPath; }
    QCheckBox* mergeBox() const { return Chk_Merge; }
    QProgressBar* totalBar() const { return ProgressBar_Total; }
    QLabel* infoValue(int entry) const { return lbl_InputFileValue.at(entry); }
    QLabel* preview() const { return picPreview; }
    QToolButton* playPreviewButton() const { return Cmd_PlayPreview; }
    QMenu* previewMenu() const { return mnuPreview; }
    MediaPlayer& media() { return *m_media; }
    OutputBrowserView* browserView() const { return m_browserView; }
    frmFormatSetting* settingsWindow() const { return m_settingsWindow; }
    QMenu* fileListMenu() const { return mnuFileList; }
    QMenu* renameMenu() const { return mnuRenameAll2; }
    QMenu* themeMenu() const { return mnutheme; }
    frmReportList* reportWindow() const { return m_report; }
    QMenu* menu() const { return mnuMenu; }
    QAction* menuEntry(int index) const;
    frmWait* waitWindow() const { return m_wait; }
    bool startUpDone() const { return m_startUpDone; }
    bool trayRequested() const { return m_trayRequested; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    class Host;
    friend class Host;

    void buildWindow();
    QWidget* buildToolbar();
    QWidget* buildInfoPanel();
    QWidget* buildOutputPanel();
    QWidget* buildBottomBar();
    void buildMenus();
    void setupConnections();

    void Timer_StartUp_Tick();
    void Timer_ConversionElapsed_Tick();
    void Set_ConvertButton(int state);
    void syncConversionViews();
    void applyMainState(const MainStateView& view);
    void importFiles(const QString& path);
    void removeSelected();
    void removeAll();
    void chooseOutputFolder();
    void openOutputFolder();
    void openFinishedOutput(); // the merged file selected, else the output folder
    void fillBlankOutput();
    void drawThumbnail(); // the shown row's picture at the picture box's size
    bool eventFilter(QObject* watched, QEvent* event) override;
    static constexpr int kPreviewHeight = 180;
    void showCompletion();
    void loadBrowser();
    void browserChanged();
    void showPresetSettings();
    void showSearch();
    void toggleFavorite();
    void renameAll(int operation);
    void reloadIcons();
    void showPreferences();
    void showAbout();
    void contextMenu(const QPoint& globalPos);

    MainSeams m_seams;
    std::unique_ptr<EncoderEngine> m_engine;
    std::unique_ptr<FFDecoder> m_decoder;
    std::unique_ptr<FFPlayer> FFPlayer1;  // the one player: preview, edit window, player window
    std::unique_ptr<MediaPlayer> m_media; // the player's logic over it
    Catalogue m_catalogue;
    FormatSetting m_settings{m_catalogue};
    OutputBrowser m_browser{m_catalogue, m_settings};
    FileViewMain m_table;
    std::unique_ptr<Host> m_host;
    // Top-level popups without a parent, so that the done note shows while the window hides in the
    // tray. The hint and the command channel's overlay share one.
    std::unique_ptr<PopupWindow> m_tagPopup = std::make_unique<PopupWindow>();
    std::unique_ptr<PopupWindow> m_donePopup = std::make_unique<PopupWindow>();
    QTimer Timer_Tags;
    std::unique_ptr<VideoConverter> m_converter;
    std::unique_ptr<EncoderListener> m_events; // forwards to the converter, then refreshes the views
    MergePipeline m_merge;

    FileListView* m_list = nullptr;
    std::array<QPushButton*, Btn_Count> Cmd_FileListView{};
    QLineEdit* Txt_OutputPath = nullptr;
    QCheckBox* Chk_Merge = nullptr;
    QProgressBar* ProgressBar_Total = nullptr;
    QLabel* picPreview = nullptr;
    std::array<QLabel*, kInfoEntries> lbl_InputFileValue{};
    QToolButton* Cmd_PlayPreview = nullptr;
    OutputBrowserView* m_browserView = nullptr;
    frmFormatSetting* m_settingsWindow = nullptr; // created once: its fields are the output parameters
    QMenu* mnuMenu = nullptr;
    QMenu* mnuFileList = nullptr;
    QMenu* mnuRenameAll = nullptr;
    QMenu* mnuRenameAll2 = nullptr;
    QMenu* mnutheme = nullptr;
    QMenu* mnuPreview = nullptr;
    QMenu* mnuDiscs = nullptr;
    TrayState m_tray;
    LauncherEntry m_launcher{QGuiApplication::desktopFileName().isEmpty()
                                 ? QStringLiteral("org.morvane.Morvane")
                                 : QGuiApplication::desktopFileName()};
    QSystemTrayIcon* TrayIcon = nullptr; // made on the first trip to the tray
    QMenu* mnuTrays = nullptr;
    QTimer Timer_TrayIcon;
    bool m_exitRequested = false; // the tray's Exit, or a tray choice with no tray to go to
    TrayHost trayHost();
    void showTray();
    QList<DiscMenuEntry> m_discMenu;
    std::array<QAction*, 15> m_menuEntries{};
    QPointer<frmWait> m_wait;
    QPointer<frmDiagnose> m_diagnose;
    frmReportList* m_report = nullptr;

    QTimer Timer_StartUp;
    QTimer Timer_ConversionElapsed;
    bool m_startUpDone = false;
    bool m_trayRequested = false;
    bool m_unloaded = false;
    int m_mainState = MainState_Empty;
    bool m_mainEnable = false;
};

} // namespace morvane
