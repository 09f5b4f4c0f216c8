// The main window's handlers: the button array, the menus, the list's events, closing, and what the
// import and the converter ask of the window.

#include "Close_Main.h"
#include "DragDrop_Mod.h"
#include "FFPlayer.h"
#include "FileListView.h"
#include "FileList_Mods.h"
#include "Folders_Mods.h"
#include "Globals.h"
#include "Group_Pictures.h"
#include "Instance_Channel.h"
#include "Open_Folder.h"
#include "OutputBrowserView.h"
#include "Output_Names.h"
#include "Preset_Mods.h"
#include "Registry_Mod.h"
#include "Skin_Icons.h"
#include "Skin_Theme.h"
#include "Update_Check.h"
#include "Window_Timers.h"
#include "frmAbout.h"
#include "frmClose.h"
#include "frmFormatSetting.h"
#include "frmMain.h"
#include "frmMain_Host.h"
#include "frmMsg.h"
#include "frmPreferences.h"
#include "frmProperties.h"
#include "frmRename.h"
#include "frmReportList.h"
#include "frmSearch.h"
#include "frmWait.h"
#include "mMain.h"

#include <QAbstractButton>
#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QShortcut>
#include <QSocketNotifier>
#include <QSystemTrayIcon>
#include <QTableView>
#include <QToolButton>
#include <QUrl>

#include <csignal>

#include <sys/socket.h>
#include <unistd.h>

namespace morvane {

// ---- Connections and menus.

void frmMain::buildMenus() {
    struct Entry {
        int index;
        const char* text;
        bool checkable;
    };
    const Entry entries[] = {
        {1, "Help", false},        {6, "Visit Home Page", false},     {7, "Check for Updates...", false},
        {9, "Show Preview", true}, {10, "Shut Down When Done", true}, {13, "Preferences...", false},
        {14, "About", false},
    };
    for (const Entry& e : entries) {
        if (e.index == 9 || e.index == 13) mnuMenu->addSeparator();
        QAction* a = mnuMenu->addAction(QString::fromLatin1(e.text));
        a->setCheckable(e.checkable);
        m_menuEntries[e.index] = a;
        connect(a, &QAction::triggered, this, [this, i = e.index] { mnuMenu_Click(i); });
    }
    m_menuEntries[13]->setShortcut(QKeySequence::Preferences);
    addAction(m_menuEntries[13]);
    // The test bench stands with the tools, before About.
    auto* diagnose = new QAction(QStringLiteral("Diagnostics..."), this);
    diagnose->setObjectName(QStringLiteral("Cmd_Diagnose"));
    mnuMenu->insertAction(m_menuEntries[14], diagnose);
    connect(diagnose, &QAction::triggered, this, &frmMain::Cmd_Diagnose_Click);

    // The theme menu, the current theme checked.
    mnuMenu->addSeparator();
    mnutheme = mnuMenu->addMenu(QStringLiteral("Theme"));
    mnutheme->setObjectName(QStringLiteral("mnutheme"));
    auto* themes = new QActionGroup(this);
    themes->setExclusive(true);
    for (auto [index, text] : {std::pair{1, "Light"}, std::pair{2, "Dark"}}) {
        QAction* a = mnutheme->addAction(QString::fromLatin1(text));
        a->setObjectName(QStringLiteral("mnutheme_%1").arg(index));
        a->setCheckable(true);
        themes->addAction(a);
        connect(a, &QAction::triggered, this, [this, i = index] { mnutheme_Click(i); });
    }

    // Exit always ends the program, whatever the close box is set to do (the tray, or asking).
    mnuMenu->addSeparator();
    QAction* exitEntry = mnuMenu->addAction(QStringLiteral("Exit"));
    exitEntry->setObjectName(QStringLiteral("mnuExit"));
    exitEntry->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    addAction(exitEntry);
    connect(exitEntry, &QAction::triggered, this, [this] {
        m_exitRequested = true;
        close();
    });

    const auto runRename = [this](int operation) { renameAll(operation); };
    mnuRenameAll = Build_RenameMenu(this, QStringLiteral("mnuRenameAll"), runRename);
    mnuRenameAll->setTitle(QStringLiteral("Rename All"));
    mnuRenameAll2 = Build_RenameMenu(this, QStringLiteral("mnuRenameAll2"), runRename);

    // The list's context menu; its item indexes count the separators.
    mnuFileList = new QMenu(this);
    const std::pair<int, const char*> listEntries[] = {
        {1, "Open file location..."}, {3, "Edit..."}, {5, "Remove"}, {6, "Remove All"}, {8, "Rename..."},
        {11, "Properties..."}};
    for (auto [index, text] : listEntries) {
        if (index == 3 || index == 5 || index == 8 || index == 11) mnuFileList->addSeparator();
        QAction* a = mnuFileList->addAction(QString::fromLatin1(text));
        a->setObjectName(QStringLiteral("mnuFileList_%1").arg(index));
        connect(a, &QAction::triggered, this, [this, i = index] { mnuFileList_Click(i); });
    }
    QAction* renameAll = mnuFileList->addMenu(mnuRenameAll);
    renameAll->setObjectName(QStringLiteral("mnuFileList_9"));
    // "Rename All" stands with the renames, before the properties.
    mnuFileList->removeAction(renameAll);
    mnuFileList->insertAction(mnuFileList->actions().at(mnuFileList->actions().size() - 2), renameAll);

    mnuPreview = new QMenu(this);
    QAction* play = mnuPreview->addAction(QStringLiteral("Play"));
    play->setObjectName(QStringLiteral("mnuPreview_1"));
    connect(play, &QAction::triggered, this, [this] { Cmd_PlayPreview_Click(); });
    QAction* edit = mnuPreview->addAction(QStringLiteral("Edit..."));
    edit->setObjectName(QStringLiteral("mnuPreview_2"));
    connect(edit, &QAction::triggered, this, [this] { Cmd_FileListView_Click(Btn_Edit); });
    mnuPreview->addSeparator();
    QAction* remove = mnuPreview->addAction(QStringLiteral("Remove"));
    connect(remove, &QAction::triggered, this, [this] { Cmd_FileListView_Click(Btn_Remove); });
    QAction* open = mnuPreview->addAction(QStringLiteral("Open file location..."));
    connect(open, &QAction::triggered, this, [this] { mnuFileList_Click(1); });
    mnuDiscs = new QMenu(this);
    mnuDiscs->setObjectName(QStringLiteral("mnuDiscs"));

    mnuPreview->addSeparator();
    QAction* properties = mnuPreview->addAction(QStringLiteral("Properties..."));
    properties->setObjectName(QStringLiteral("mnuPreview_7"));
    connect(properties, &QAction::triggered, this, [this] { mnuFileList_Click(11); });
}

void frmMain::setupConnections() {
    for (int i = 0; i < Btn_Count; ++i)
        if (Cmd_FileListView[i])
            connect(Cmd_FileListView[i], &QPushButton::clicked, this,
                    [this, i] { Cmd_FileListView_Click(i); });
    connect(&Timer_StartUp, &QTimer::timeout, this, &frmMain::Timer_StartUp_Tick);
    // Once, a moment after the start: the getting-started hint, for a list that is still empty.
    Timer_Tags.setSingleShot(true);
    Timer_Tags.setInterval(1000);
    connect(&Timer_Tags, &QTimer::timeout, this, [this] {
        if (m_table.rows() == 0 && isVisible() && !m_tray.In_Tray) Show_TagHint(*m_tagPopup, frameGeometry());
    });
    connect(m_donePopup.get(), &PopupWindow::linkActivated, this, [this](int id) {
        if (id != kOpenOutputLink) return;
        m_donePopup->closePopup();
        openFinishedOutput();
    });
    connect(&Timer_ConversionElapsed, &QTimer::timeout, this, &frmMain::Timer_ConversionElapsed_Tick);

    connect(m_list, &FileListView::removeRequested, this, [this] { Cmd_FileListView_Click(Btn_Remove); });
    connect(m_list, &FileListView::removeAllRequested, this,
            [this] { Cmd_FileListView_Click(Btn_RemoveAll); });
    connect(m_list, &FileListView::rowShown, this, [this](int row) { Show_InputFileInfo(row); });
    connect(m_list, &FileListView::contextMenuRequested, this, &frmMain::contextMenu);
    connect(m_list, &FileListView::playRequested, this, &frmMain::Cmd_PlayPreview_Click);
    connect(Cmd_PlayPreview, &QToolButton::clicked, this, &frmMain::Cmd_PlayPreview_Click);
    connect(picPreview, &QLabel::customContextMenuRequested, this, [this](const QPoint& at) {
        if (Get_ConversionState() == Conversion_Idle && m_table.rows() > 0)
            mnuPreview->popup(picPreview->mapToGlobal(at));
    });

    connect(Txt_OutputPath, &QLineEdit::textChanged, this,
            [this](const QString& text) { m_converter->Txt_OutputPath = text; });
    connect(Txt_OutputPath, &QLineEdit::editingFinished, this, &frmMain::fillBlankOutput);
    connect(Chk_Merge, &QCheckBox::toggled, this, [this](bool on) { m_browser.mergeChecked = on; });
    connect(m_browserView, &OutputBrowserView::browserChanged, this, &frmMain::browserChanged);
    connect(m_settingsWindow, &frmFormatSetting::presetsSaved, this, [this] { m_browserView->redraw(); });

    // Keyboard: add, select all and start, beside the list's own Delete and Shift+Delete.
    auto* add = new QShortcut(QKeySequence::Open, this);
    connect(add, &QShortcut::activated, this, [this] {
        if (Cmd_FileListView[Btn_Add]->isEnabled()) Cmd_FileListView_Click(Btn_Add);
    });
    auto* start = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_Return), this);
    connect(start, &QShortcut::activated, this, [this] {
        if (Cmd_FileListView[Btn_Convert]->isEnabled()) Cmd_FileListView_Click(Btn_Convert);
    });
    auto* edit = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_E), this);
    connect(edit, &QShortcut::activated, this, [this] {
        if (Cmd_FileListView[Btn_Edit]->isEnabled()) Cmd_FileListView_Click(Btn_Edit);
    });
    auto* selectAll = new QShortcut(QKeySequence::SelectAll, this);
    connect(selectAll, &QShortcut::activated, this, [this] {
        if (m_table.rows() == 0 || Txt_OutputPath->hasFocus()) return;
        QList<int> all;
        for (int r = 0; r < m_table.rows(); ++r)
            all << r;
        m_table.setSelectedRows(all);
    });
}

// ---- The button array.

void frmMain::Cmd_FileListView_Click(int index) {
    switch (index) {
    case Btn_Add:
        if (Get_ConversionState() != Conversion_Idle) return;
        m_tagPopup->closePopup();
        importFiles(QString());
        m_list->setDropHintVisible(false);
        break;
    case Btn_Remove:
        if (Get_ConversionState() == Conversion_Idle) removeSelected();
        break;
    case Btn_RemoveAll:
        if (Get_ConversionState() == Conversion_Idle) removeAll();
        break;
    case Btn_Convert:
        m_converter->Cmd_ConvertPressed();
        syncConversionViews();
        break;
    case Btn_Stop:
        if (Get_ConversionState() == Conversion_Idle) return;
        m_converter->Stop();
        syncConversionViews();
        break;
    case Btn_OpenOutput:
        openOutputFolder();
        break;
    case Btn_BrowseOutput:
        chooseOutputFolder();
        break;
    case Btn_Settings:
        showPresetSettings();
        break;
    case Btn_Favorite:
        toggleFavorite();
        break;
    case Btn_Search:
        showSearch();
        break;
    case Btn_Edit:
        Cmd_Edit_Click();
        break;
    case Btn_Disc:
        Cmd_Disc_Click();
        break;
    case Btn_Rename:
        if (Get_ConversionState() != Conversion_Idle) return;
        mnuRenameAll2->popup(
            Cmd_FileListView[Btn_Rename]->mapToGlobal(QPoint(0, Cmd_FileListView[Btn_Rename]->height())));
        break;
    default: // the editor and the disc bring the rest
        break;
    }
}

void frmMain::importFiles(const QString& path) {
    Import_Files(*m_host, m_table, path, *m_decoder, *m_host);
    syncConversionViews();
}

void frmMain::removeSelected() {
    if (m_table.rows() == 0) return;
    Remove_Selected(m_table);
    Update_Totals(m_table);
    if (m_table.selectedRows().isEmpty()) Show_InputFileInfo(-1);
    if (m_table.rows() == 0) Set_MainState(MainState_Empty, false);
}

void frmMain::removeAll() {
    if (m_table.rows() == 0) return;
    Remove_All(m_table);
    Update_Totals(m_table);
    Show_InputFileInfo(-1);
    Set_MainState(MainState_Empty, false);
}

void frmMain::chooseOutputFolder() {
    const QString start = Txt_OutputPath->text();
    const QString chosen =
        m_seams.chooseFolder
            ? m_seams.chooseFolder(start)
            : QFileDialog::getExistingDirectory(this, QStringLiteral("Choose the output folder"), start);
    if (chosen.trimmed().isEmpty()) return;
    QString folder = QDir::cleanPath(chosen);
    if (!folder.endsWith(QLatin1Char('/'))) folder += QLatin1Char('/');
    Txt_OutputPath->setText(folder);
    Path_Output = folder;
    Write_Setting(REGISTRY_PRODUCT, QStringLiteral("OutputPath"), folder);
}

// An empty box would hide where the files go: it shows the folder that a conversion would use.
void frmMain::fillBlankOutput() {
    if (Trim_Spaces(Txt_OutputPath->text()).isEmpty()) Txt_OutputPath->setText(Default_OutputFolder());
}

void frmMain::openOutputFolder() {
    fillBlankOutput();
    Open_Folder(this, Txt_OutputPath->text(), false, true);
}

// frmMsg's first button: the merged file selected in its folder, else the output folder.
void frmMain::showCompletion() {
    if (m_seams.completion) {
        m_seams.completion();
        return;
    }
    frmMsg dialog(this);
    connect(&dialog, &frmMsg::openOutputRequested, this, &frmMain::openFinishedOutput);
    dialog.exec();
}

void frmMain::openFinishedOutput() {
    if (Chk_Merge->isChecked() && !m_merge.Merge_OutputPath.isEmpty())
        Open_Folder(this, m_merge.Merge_OutputPath, true, false);
    else
        Open_Folder(this, Txt_OutputPath->text(), false, false);
}

// ---- The output choice: the browser, the preset settings, favorites and search.

// The strips of the four panels, then the open panel with its remembered group pressed.
void frmMain::loadBrowser() {
    m_browser.Panel_BuildButtons(Panel_VideoFormats, QStringLiteral("VideoFormat"));
    m_browser.Panel_BuildButtons(Panel_AudioFormats, QStringLiteral("AudioFormat"));
    m_browser.Panel_BuildButtons(Panel_WebFormats, QStringLiteral("WebFormat"));
    m_browser.ListBox_MakerNames.select(m_browser.MakerIndex);
    m_browser.Panel_BuildButtons(Panel_Devices, Trim_Spaces(m_browser.ListBox_MakerNames.selectedText()));
    m_browser.Favorites_Refresh();
    if (m_browser.PanelActive < Panel_VideoFormats || m_browser.PanelActive > Panel_Favorites)
        m_browser.PanelActive = Panel_VideoFormats;
    m_browser.Panel_Show(m_browser.PanelActive);
    m_browserView->redraw();
    browserChanged();
}

// The controls around the browser that its rules switch: the merge box and the convert button.
void frmMain::browserChanged() {
    Chk_Merge->setVisible(m_browser.mergeVisible);
    if (!m_browser.mergeChecked && Chk_Merge->isChecked()) Chk_Merge->setChecked(false);
    if (Get_ConversionState() != Conversion_Idle) return;
    Cmd_FileListView[Btn_Settings]->setEnabled(m_browser.settingsEnabled &&
                                               !m_browser.favoritesMessageVisible);
    if (m_browser.favoritesMessageVisible)
        Cmd_FileListView[Btn_Convert]->setEnabled(false);
    else if (m_table.rows() > 0)
        Cmd_FileListView[Btn_Convert]->setEnabled(true);
}

void frmMain::showPresetSettings() {
    if (Get_ConversionState() != Conversion_Idle || m_catalogue.Cmd_OutputPreset.count() == 0) return;
    m_settingsWindow->showModal();
    m_browserView->redraw();
    browserChanged();
}

void frmMain::showSearch() {
    if (Get_ConversionState() != Conversion_Idle) return;
    frmSearch dialog(
        m_catalogue.ReportControl_PresetMain,
        [this](const QString& name, const QString& maker, const QString& keyword) {
            return m_browser.Preset_Select(name, maker, keyword);
        },
        this);
    dialog.exec();
    m_browserView->redraw();
    browserChanged();
}

void frmMain::toggleFavorite() {
    if (Get_ConversionState() != Conversion_Idle) return;
    m_browser.favoriteToggle();
    m_browserView->redraw();
    browserChanged();
}

void frmMain::mnutheme_Click(int index) {
    if (index == Theme_No || (index != 1 && index != 2)) return; // the checked theme: nothing at all
    Theme_No = index;
    const QList<QAction*> items = mnutheme->actions();
    for (QAction* a : items)
        a->setChecked(a->objectName() == QStringLiteral("mnutheme_%1").arg(index));
    const int result = Apply_Theme(*qApp, Theme_No);
    Group_ClearCache();
    reloadIcons();
    // The format panels are rebuilt with the theme's pictures; the open groups stay pressed.
    for (auto [panel, maker] :
         {std::pair{Panel_VideoFormats, "VideoFormat"}, std::pair{Panel_AudioFormats, "AudioFormat"},
          std::pair{Panel_WebFormats, "WebFormat"}}) {
        const qsizetype checked = m_browser.strips.at(static_cast<size_t>(panel)).checkedButton();
        m_browser.Panel_BuildButtons(panel, QString::fromLatin1(maker));
        ButtonStrip& strip = m_browser.strips.at(static_cast<size_t>(panel));
        if (checked >= 0 && checked < strip.buttons.size()) strip.buttons[checked].checked = true;
    }
    m_browserView->reloadTheme();
    m_browserView->redraw();
    m_settingsWindow->redraw();
    Theme_ShowFailure(result);
}

void frmMain::renameAll(int operation) {
    if (operation == 0 || Get_ConversionState() != Conversion_Idle) return;
    RenameWindows dialogs(this);
    Rename_All(m_table, operation, 1, dialogs);
}

// Pictures by role and the list's text colours follow the theme.
void frmMain::reloadIcons() {
    const QList<QAbstractButton*> buttons = findChildren<QAbstractButton*>();
    for (QAbstractButton* b : buttons) {
        const QString role = b->property("skinRole").toString();
        if (!role.isEmpty()) b->setIcon(Skin_Icon(role));
    }
    m_list->setDropHint(Skin_Picture(QStringLiteral("img_dragmedia"), QSize(320, 200)));
    const std::int32_t themeColor = Theme_No == 2 ? 0xFFFFFF : 0;
    for (int row = 0; row < m_table.rows(); ++row)
        for (int column : {FileCol::Name, FileCol::Status}) {
            const std::int32_t color = m_table.color(row, column);
            if (color == 0 || color == 0xFFFFFF) m_table.setColor(row, column, themeColor);
        }
    m_table.redraw();
    syncConversionViews();
}

// ---- Menus.

void frmMain::mnuMenu_Click(int index) {
    switch (index) {
    case 1:
    case 6:
        QDesktopServices::openUrl(QUrl(LINK_HOMEPAGE1));
        break;
    case 7: // answers when the page has answered, or after 10 s; the window never waits
        Update_Run(this, UpdateTrigger::Menu);
        break;
    case 9: {
        // The check has already turned with the click.
        const bool on = m_menuEntries[9]->isChecked();
        picPreview->clear();
        m_engine->SetPreviewEnabled(on);
        m_converter->Preview_Enabled = on;
        break;
    }
    case 10:
        m_converter->Shutdown_After = m_menuEntries[10]->isChecked() ? 1 : 0;
        break;
    case 13:
        showPreferences();
        break;
    case 14:
        showAbout();
        break;
    default:
        break;
    }
}

void frmMain::showPreferences() {
    if (m_seams.preferences) {
        m_seams.preferences();
        return;
    }
    frmPreferences dialog(this);
    dialog.exec();
}

void frmMain::showAbout() {
    if (m_seams.about) {
        m_seams.about();
        return;
    }
    frmAbout dialog(this);
    dialog.exec();
}

void frmMain::mnuFileList_Click(int index) {
    switch (index) {
    case 1: {
        const QList<int>& selected = m_table.selectedRows();
        if (selected.isEmpty()) return;
        const int row = selected.first();
        Open_Folder(this, m_table.text(row, FileCol::FilePath) + m_table.text(row, FileCol::FileName), true,
                    false);
        break;
    }
    case 3:
        Cmd_FileListView_Click(Btn_Edit);
        break;
    case 5:
        Cmd_FileListView_Click(Btn_Remove);
        break;
    case 6:
        Cmd_FileListView_Click(Btn_RemoveAll);
        break;
    case 8: {
        if (m_table.selectedRows().isEmpty()) return;
        RenameWindows dialogs(this);
        Rename_Selected(m_table, dialogs);
        break;
    }
    case 11: {
        const QList<int>& selected = m_table.selectedRows();
        if (selected.isEmpty()) return;
        Show_Properties(this, m_table, selected.first(),
                        [this](const QString& path) { Open_Folder(this, path, true, false); });
        break;
    }
    default:
        break;
    }
}

void frmMain::contextMenu(const QPoint& globalPos) {
    if (Get_ConversionState() != Conversion_Idle) return;
    mnuFileList->popup(globalPos);
}

// ---- Closing.

bool frmMain::Form_QueryUnload() {
    CloseSeams s;
    s.conversionState = [this] { return Get_ConversionState(); };
    s.pressConvert = [this] { Cmd_FileListView_Click(Btn_Convert); };
    s.showCloseDialog = [this] {
        if (m_seams.closeDialog) {
            m_seams.closeDialog();
            return;
        }
        frmClose dialog(this);
        dialog.exec();
    };
    s.goToTray = [this] {
        m_trayRequested = true;
        // With no tray to go to, the remembered choice would leave a window that cannot be closed.
        if (QSystemTrayIcon::isSystemTrayAvailable())
            Tray_Toggle();
        else
            m_exitRequested = true;
    };
    s.letMessagesThrough = [] { QCoreApplication::processEvents(); };
    s.shutdownAfter = m_converter->Shutdown_After;
    if (!m_exitRequested && morvane::Form_QueryUnload(s)) return true;
    if (!m_exitRequested) return false;
    // Exit from the menu or the tray, or a tray choice with no tray to go to: the program ends, but
    // a running conversion only when the user says so, as the close box's exit asks.
    m_exitRequested = Get_ConversionState() == Conversion_Idle ||
                      Show_Message(QString::fromLatin1(kTerminateQuestion), MB_YESNO | MB_ICONQUESTION,
                                   QString()) == ID_YES;
    return m_exitRequested;
}

void frmMain::Form_Unload() {
    Timer_GetActiveForm_Stop();
    Timer_Tags.stop();
    m_tagPopup->closePopup();
    m_donePopup->closePopup();
    Timer_TrayIcon.stop();
    if (TrayIcon) TrayIcon->hide();
    if (m_unloaded) return;
    m_unloaded = true;
    Clear_TempPictures();
    setAcceptDrops(false);
    Write_Setting(REGISTRY_PRODUCT, QStringLiteral("WinTagInfo"), QString());
    Write_Setting(REGISTRY_PRODUCT, QStringLiteral("WinInfo"), QString());

    // A running queue ends as the Stop button ends it: the unfinished outputs go, the finished stay,
    // the rows say so. A merge ends through its own cancel (m_unloaded above).
    if (Get_ConversionState() != Conversion_Idle && !m_merge.Timer_FFmpeg) m_converter->Stop();
    Closing = true; // late events change nothing from here on
    auto* wait = new frmWait(this, 2);
    wait->setAttribute(Qt::WA_DeleteOnClose);
    wait->show();
    QCoreApplication::processEvents();
    m_engine->Stop(true);
    wait->close();

    QCoreApplication::processEvents();
    m_engine->ClearTasks();
    QCoreApplication::processEvents();
    m_merge.Merge_Reset(QString());
    FFPlayer1->Release();

    Timer_StartUp.stop();
    Timer_ConversionElapsed.stop();
    m_report->hide();

    if (m_seams.exitProcess)
        m_seams.exitProcess(0);
    else
        QCoreApplication::exit(0);
}

namespace {
// The handler only writes a byte; the window thread reads it.
int g_signalPipe[2] = {-1, -1};

void onTerminationSignal(int) {
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(g_signalPipe[1], &byte, 1);
}
} // namespace

void frmMain::Watch_TerminationSignals() {
    if (g_signalPipe[0] < 0 && ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, g_signalPipe) != 0)
        return;
    auto* notifier = new QSocketNotifier(g_signalPipe[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
        char byte = 0;
        [[maybe_unused]] const ssize_t got = ::read(g_signalPipe[0], &byte, 1);
        notifier->setEnabled(false);
        Form_Unload();
    });
    struct sigaction action {};
    action.sa_handler = onTerminationSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

void frmMain::closeEvent(QCloseEvent* event) {
    if (m_unloaded) {
        event->accept();
        return;
    }
    if (Form_QueryUnload()) {
        Form_Unload();
        event->accept();
    } else {
        event->ignore();
    }
}

// ---- Host.

void frmMain::Host::Show_OutputPath(const QString& folder) {
    w.Txt_OutputPath->setText(folder);
}

void frmMain::Host::Focus_OutputPath() {
    w.Txt_OutputPath->selectAll();
    w.Txt_OutputPath->setFocus();
}

void frmMain::Host::Focus_List() {
    w.m_list->view()->setFocus();
}

void frmMain::Host::Scroll_ToRow(int row) {
    if (row >= 0 && row < w.m_table.rows()) w.m_list->view()->scrollTo(w.m_table.index(row, FileCol::Name));
}

void frmMain::Host::Clear_Preview() {
    w.picPreview->clear();
}

void frmMain::Host::Show_PreviewBitmap(int width, int height, const QByteArray& bgra) {
    if (width <= 0 || height <= 0 || bgra.size() < static_cast<qsizetype>(width) * height * 4) return;
    const QImage frame(reinterpret_cast<const uchar*>(bgra.constData()), width, height, width * 4,
                       QImage::Format_RGB32);
    w.picPreview->setPixmap(QPixmap::fromImage(
        frame.scaled(w.picPreview->size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation)));
}

void frmMain::Host::openWait(int mode) {
    if (w.m_wait) w.m_wait->close();
    Wait_Mode = mode;
    w.m_wait = new frmWait(&w, mode);
    w.m_wait->setAttribute(Qt::WA_DeleteOnClose);
}

void frmMain::Host::Wait_Show(int maximum, const QString& caption) {
    openWait(kWaitMode_Import);
    w.m_wait->setCaption(caption);
    w.m_wait->setMaximum(maximum);
    QObject::connect(w.m_wait, &frmWait::cancelPressed, &w, [this] { w.m_converter->Wait_CancelPressed(); });
    w.m_wait->show();
}

void frmMain::Host::Wait_Step(const QString& countText, int value) {
    if (!w.m_wait) return;
    w.m_wait->setFileNo(countText);
    w.m_wait->setValue(value);
}

void frmMain::Host::Wait_Close() {
    if (w.m_wait) w.m_wait->close();
}

void frmMain::Host::Wait_Show(int maximum) {
    openWait(kWaitMode_Import);
    w.m_wait->setCaption(QStringLiteral("Adding files..."));
    w.m_wait->setMaximum(maximum);
    QObject::connect(w.m_wait, &frmWait::cancelPressed, &w, [this] { Wait_CancelPressed(*this); });
    w.m_wait->show();
}

void frmMain::Host::Wait_Step(const QString& fileNo, const QString& file, int value) {
    if (!w.m_wait) return;
    w.m_wait->setFileNo(fileNo);
    w.m_wait->setFile(file);
    w.m_wait->setValue(value);
}

void frmMain::Host::Merge_Wait(bool show) {
    if (!show) {
        Wait_Close();
        return;
    }
    openWait(3);
    QObject::connect(w.m_wait, &frmWait::cancelPressed, &w, [this] { w.m_merge.Cancel(); });
    w.m_wait->show();
}

void frmMain::Host::Set_MainState(int state) {
    // The import's -1 is "the list has items".
    if (state == -1)
        w.Set_MainState(MainState_Ready, true);
    else
        w.Set_MainState(state, false);
}

int frmMain::Host::Window_State() {
    if (w.isMinimized()) return Window_Minimized;
    return w.isMaximized() ? Window_Maximized : Window_Normal;
}

void frmMain::Host::Set_WindowState(int state) {
    if (state == Window_Minimized)
        w.showMinimized();
    else if (state == Window_Maximized)
        w.showMaximized();
    else
        w.showNormal();
}

void frmMain::Host::Show_Completion() {
    w.showCompletion();
}

void frmMain::Host::Run_Shutdown(const QString& command) {
    (void)command; // the words of another system; here the desktop's own power-off in a minute
    QProcess::startDetached(QStringLiteral("shutdown"), {QStringLiteral("-h"), QStringLiteral("+1"),
                                                         QStringLiteral("Conversion is completed !")});
}

void frmMain::Host::Unload_Main() {
    w.close();
}

bool frmMain::Host::Main_Enabled() {
    return w.isEnabled() && !EditWindowOpen && !PlayerWindowOpen && !QApplication::activeModalWidget();
}

int frmMain::Host::Get_ConversionState() {
    return w.Get_ConversionState();
}

QList<PresetRow> frmMain::Host::Preset_Rows() {
    return morvane::Preset_Rows(w.m_catalogue.ReportControl_PresetMain);
}

bool frmMain::Host::Preset_Select(const QString& name, const QString& maker, const QString& keyword) {
    const bool chosen = w.m_browser.Preset_Select(name, maker, keyword);
    w.m_browserView->redraw();
    w.browserChanged();
    return chosen;
}

void frmMain::Host::Import_File(const QString& path) {
    w.importFiles(path);
}

void frmMain::Host::Remove_All() {
    morvane::Remove_All(w.m_table);
}

void frmMain::Host::Update_Totals() {
    morvane::Update_Totals(w.m_table);
}

int frmMain::Host::Row_Count() {
    return w.m_table.rows();
}

void frmMain::Host::Select_FirstRow() {
    if (w.m_table.rows() > 0) w.m_table.setSelectedRows({0});
}

quint64 frmMain::Host::Active_WindowHandle() {
    QWidget* active = QApplication::activeWindow();
    return active ? static_cast<quint64>(active->winId()) : 0;
}

bool frmMain::Host::Is_Converting() {
    return w.Get_ConversionState() != Conversion_Idle;
}

void frmMain::Host::Set_DropHintVisible(bool visible) {
    w.m_list->setDropHintVisible(visible);
}

QString frmMain::Host::Browse_Folder(const QString& startFolder) {
    if (w.m_seams.chooseDiscFolder) return w.m_seams.chooseDiscFolder(startFolder);
    return QFileDialog::getExistingDirectory(&w, QStringLiteral("Choose a DVD folder (VIDEO_TS)"),
                                             startFolder);
}

// ---- Tray.

TrayHost frmMain::trayHost() {
    TrayHost h;
    h.title = windowTitle();
    h.conversionState = [this] { return Get_ConversionState(); };
    h.progressText = [this] { return ProgressBar_Total ? ProgressBar_Total->text() : QString(); };
    h.closeTagPopup = [this] { m_tagPopup->closePopup(); };
    h.windowHandle = [this] { return QString::number(winId()); };
    h.mailbox = [] { return Instance_Channel::Socket_Path(Instance_Channel::Program_Name()); };
    h.writeSetting = [](const QString& key, const QString& value) {
        Write_Setting(REGISTRY_PRODUCT, key, value);
    };
    h.minimizeToTray = [this] { hide(); };
    h.maximizeFromTray = [this] {
        showNormal();
        raise();
        activateWindow();
    };
    return h;
}

void frmMain::Tray_Toggle() {
    if (!m_tray.In_Tray && !QSystemTrayIcon::isSystemTrayAvailable()) return;
    if (!TrayIcon) {
        TrayIcon = new QSystemTrayIcon(this);
        mnuTrays = new QMenu(this);
        mnuTrays->setObjectName(QStringLiteral("mnuTrays"));
        connect(mnuTrays->addAction(QStringLiteral("Show Window")), &QAction::triggered, this, [this] {
            if (m_tray.In_Tray) Tray_Toggle();
        });
        connect(mnuTrays->addAction(QStringLiteral("Show Conversion Preview")), &QAction::triggered, this,
                [this] {
                    if (m_tray.In_Tray) Tray_Toggle();
                    if (Info_Row >= 0) Show_InputFileInfo(Info_Row);
                });
        mnuTrays->addSeparator();
        connect(mnuTrays->addAction(QStringLiteral("Exit")), &QAction::triggered, this, [this] {
            if (m_tray.In_Tray) Tray_Toggle();
            m_exitRequested = true;
            close();
        });
        TrayIcon->setContextMenu(mnuTrays);
        connect(TrayIcon, &QSystemTrayIcon::activated, this,
                [this](QSystemTrayIcon::ActivationReason reason) {
                    if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
                        Tray_Toggle();
                });
        Timer_TrayIcon.setInterval(250);
        connect(&Timer_TrayIcon, &QTimer::timeout, this, [this] {
            morvane::Tray_Tick(m_tray, trayHost());
            showTray();
        });
    }
    morvane::Tray_Toggle(m_tray, trayHost());
    showTray();
}

void frmMain::showTray() {
    if (!TrayIcon) return;
    const QString& icon = m_tray.Icon;
    if (icon.isEmpty()) {
        TrayIcon->hide();
    } else {
        if (icon == QLatin1String("tray_idle"))
            TrayIcon->setIcon(Skin_Icon(QStringLiteral("img_convert")));
        else if (icon == QLatin1String("tray_done"))
            TrayIcon->setIcon(Skin_StateIcon(10));
        else if (icon.startsWith(QLatin1String("tray")))
            TrayIcon->setIcon(Skin_StateIcon(icon.mid(4).toInt()));
        TrayIcon->setToolTip(m_tray.Text);
        TrayIcon->show();
    }
    Sync_Timers({{&Timer_TrayIcon, m_tray.Timer_TrayIcon}}, true);
}

void frmMain::Host::Tray_StopAnimation() {
    w.m_tray.Timer_TrayIcon = false;
    w.showTray();
}

void frmMain::Host::Restore_FromTray() {
    if (w.m_tray.In_Tray) w.Tray_Toggle();
}

void frmMain::Host::Tray_SetTip(const QString& tip) {
    w.m_tray.Text = tip.isEmpty() ? w.windowTitle() : tip;
    w.showTray();
}

void frmMain::Host::Tray_SetDoneIcon() {
    w.m_tray.Tray_Frame = 0;
    Tray_Tick(w.m_tray, w.trayHost(), QStringLiteral("tray_done"));
    w.showTray();
}

// ---- Drops and discs.

void frmMain::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData() && Drag_Accepts(*event->mimeData(), *m_host)) event->acceptProposedAction();
}

void frmMain::dragMoveEvent(QDragMoveEvent* event) {
    if (event->mimeData() && Drag_Accepts(*event->mimeData(), *m_host)) event->acceptProposedAction();
}

void frmMain::dropEvent(QDropEvent* event) {
    if (!event->mimeData() || !Drag_Accepts(*event->mimeData(), *m_host)) return;
    const QStringList paths = Drop_LocalPaths(*event->mimeData());
    event->acceptProposedAction();
    // Queued: the import runs for a while with its own wait window, and the file manager should have
    // its answer at once.
    QMetaObject::invokeMethod(
        this,
        [this, paths] {
            if (On_DropFiles(paths, m_table, *m_decoder, *m_host)) syncConversionViews();
        },
        Qt::QueuedConnection);
}

void frmMain::Cmd_Disc_Click() {
    if (Get_ConversionState() != Conversion_Idle) return;
    mnuDiscs->clear();
    m_discMenu = Update_DiscMenu();
    for (int i = 0; i < m_discMenu.size(); ++i) {
        QAction* a = mnuDiscs->addAction(m_discMenu.at(i).caption);
        a->setObjectName(QStringLiteral("mnuDisc_%1").arg(i));
        connect(a, &QAction::triggered, this, [this, i] { mnuDisc_Click(i); });
    }
    QPushButton* button = Cmd_FileListView[Btn_Disc];
    mnuDiscs->popup(button->mapToGlobal(QPoint(0, button->height())));
}

void frmMain::mnuDisc_Click(int index) {
    if (index < 0 || index >= m_discMenu.size() || Get_ConversionState() != Conversion_Idle) return;
    const DiscChoice result = Run_DiscChoice(m_discMenu.at(index), *m_host, m_table, *m_decoder, *m_host);
    if (result == DiscChoice::NoSource || result == DiscChoice::Imported) m_list->setDropHintVisible(false);
    syncConversionViews();
}

QStringList frmMain::Host::Show_Open(const OpenDialogRequest& request) {
    if (w.m_seams.openFiles) return w.m_seams.openFiles(request);
    QFileDialog dialog(&w, QStringLiteral("Add video files"), request.initialDir);
    dialog.setFileMode(QFileDialog::ExistingFiles);
    const QStringList filters = Qt_DialogFilter(request.filter).split(QStringLiteral(";;"));
    dialog.setNameFilters(filters);
    if (request.filterIndex >= 1 && request.filterIndex <= filters.size())
        dialog.selectNameFilter(filters.at(request.filterIndex - 1));
    if (dialog.exec() != QDialog::Accepted) return {};
    return dialog.selectedFiles();
}

ConversionHost& frmMain::conversionHost() {
    return *m_host;
}

} // namespace morvane
