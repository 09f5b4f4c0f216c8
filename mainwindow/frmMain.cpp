#include "frmMain.h"
#include "Update_Check.h"

#include "Catalogue_Load.h"
#include "Command_Load.h"
#include "FFEncoderEngine.h"
#include "FileListView.h"
#include "FileList_Mods.h"
#include "Globals.h"
#include "MediaPlayer_Mod.h"
#include "MpvPlayer.h"
#include "Open_Folder.h"
#include "OutputBrowserView.h"
#include "Registry_Mod.h"
#include "Skin_Icons.h"
#include "frmEditVideo.h"
#include "frmFormatSetting.h"
#include "frmMain_Host.h"
#include "frmPlayer.h"
#include "frmReportList.h"
#include "frmWait.h"
#include "mMain.h"

#include <algorithm>

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QEvent>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QSplitter>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>

namespace morvane {

namespace {

// The converter's events reach the views through this: the converter first, then a refresh.
class EventRelay : public EncoderListener {
public:
    EventRelay(EncoderListener& target, std::function<void()> after)
        : m_target(target), m_after(std::move(after)) {}
    void OnProgress(int task, qint64 positionUs, qint64 durationUs) override {
        m_target.OnProgress(task, positionUs, durationUs);
        m_after();
    }
    void OnTerminate(int task, bool finished, bool failed, const QString& message) override {
        m_target.OnTerminate(task, finished, failed, message);
        m_after();
    }
    void OnPreviewBitmap(int task, int width, int height, const QByteArray& bgra) override {
        m_target.OnPreviewBitmap(task, width, height, bgra);
    }

private:
    EncoderListener& m_target;
    std::function<void()> m_after;
};

// Twips of the button widths, at the usual 15 twips to a pixel.
int twipsToPixels(int twips) {
    return twips / 15;
}

QPushButton* makeButton(const QString& text, const QString& role, const QString& tip) {
    auto* button = new QPushButton(text);
    if (!role.isEmpty()) button->setIcon(Skin_Icon(role));
    button->setProperty("skinRole", role); // the icon is loaded again after a theme switch
    button->setToolTip(tip);
    button->setIconSize(QSize(20, 20));
    button->setCursor(Qt::PointingHandCursor);
    return button;
}

QFrame* makePanel(const QString& name) {
    auto* panel = new QFrame;
    panel->setObjectName(name);
    panel->setFrameShape(QFrame::StyledPanel);
    return panel;
}

} // namespace

frmMain::frmMain(MainSeams seams, std::unique_ptr<EncoderEngine> engine, std::unique_ptr<FFDecoder> decoder,
                 std::unique_ptr<FFPlayer> player, QWidget* parent)
    : QMainWindow(parent), m_seams(std::move(seams)), m_engine(std::move(engine)),
      m_decoder(std::move(decoder)), FFPlayer1(std::move(player)) {
    if (!m_engine) m_engine = std::make_unique<FFEncoderEngine>();
    if (!m_decoder) m_decoder = Make_FFDecoder();
    if (!FFPlayer1) FFPlayer1 = std::make_unique<MpvPlayer>();
    m_media = std::make_unique<MediaPlayer>(*FFPlayer1);
    m_host = std::make_unique<Host>(*this);
    m_converter = std::make_unique<VideoConverter>(m_table, m_settings, m_browser, *m_engine, *m_host, false);
    m_events = std::make_unique<EventRelay>(*m_converter, [this] { syncConversionViews(); });
    m_engine->SetListener(m_events.get());
    m_browser.fileListHasRecords = [this] { return m_table.rows() > 0; };
    // Closing the program during a merge ends the merge: its pieces stay, its half-joined file goes.
    m_merge.cancelRequested = [this] { return m_unloaded; };
    m_merge.showWait = [this](bool show) { m_host->Merge_Wait(show); };
    m_converter->Merge_Requested = [this] {
        return m_merge.Merge_All(m_table, m_converter->Output_Folder(), m_browser.PanelActive);
    };

    Timer_StartUp.setInterval(200);
    Timer_StartUp.setSingleShot(true);
    Timer_ConversionElapsed.setInterval(1000);

    buildWindow();
    buildMenus();
    setupConnections();
    m_report = new frmReportList(this);
    Set_ReportSink(m_report);
}

frmMain::~frmMain() {
    Set_ReportSink(nullptr);
    m_engine->SetListener(nullptr);
    m_engine->Stop(true);
    // The views hold the models by reference, and members die before the base class deletes its
    // children: the views go first.
    delete takeCentralWidget();
    delete m_settingsWindow;
    delete m_report;
    delete m_wait;
}

// ---- Layout.

void frmMain::buildWindow() {
    setObjectName(QStringLiteral("frmMain"));
    setMinimumSize(960, 640);
    resize(1280, 800);

    auto* central = new QWidget;
    auto* outer = new QVBoxLayout(central);
    outer->setContentsMargins(12, 10, 12, 12);
    outer->setSpacing(10);
    outer->addWidget(buildToolbar());

    m_list = new FileListView(m_table);
    m_list->setObjectName(QStringLiteral("FileViewMain"));
    m_list->setIdleTest([this] { return Get_ConversionState() == Conversion_Idle; });
    m_list->setStateIcons([](int image) { return Skin_StateIcon(image); });
    m_list->setDropHint(Skin_Picture(QStringLiteral("img_dragmedia"), QSize(320, 200)));

    auto* split = new QSplitter(Qt::Horizontal);
    split->addWidget(m_list);
    split->addWidget(buildInfoPanel());
    split->setStretchFactor(0, 1);
    split->setStretchFactor(1, 0);
    split->setChildrenCollapsible(false);
    split->setSizes({900, 320});
    outer->addWidget(split, 1);
    outer->addWidget(buildOutputPanel());
    outer->addWidget(buildBottomBar());
    setCentralWidget(central);
}

QWidget* frmMain::buildToolbar() {
    auto* bar = new QWidget;
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(6);
    struct Def {
        int index;
        const char* text;
        const char* role;
        const char* tip;
    };
    const Def defs[] = {
        {Btn_Add, "Add Files", "img_addfile", "Add video files to the list (Ctrl+O)"},
        {Btn_Remove, "Remove", "img_removefile", "Remove the selected files (Delete)"},
        {Btn_RemoveAll, "Clear", "img_clearall", "Remove all files (Shift+Delete)"},
        {Btn_Edit, "Edit", "img_edit", "Trim, crop, adjust and add effects to the selected file (Ctrl+E)"},
        {Btn_Disc, "DVD", "img_add_dvd", "Add the titles of a DVD"},
        {Btn_Rename, "Rename", "img_rename_all", "Rename the output files"},
    };
    for (const Def& d : defs) {
        QPushButton* b =
            makeButton(QString::fromLatin1(d.text), QString::fromLatin1(d.role), QString::fromLatin1(d.tip));
        b->setObjectName(QStringLiteral("Cmd_FileListView_%1").arg(d.index));
        Cmd_FileListView[d.index] = b;
        row->addWidget(b);
    }
    row->addStretch(1);

    auto* menuButton = new QToolButton;
    menuButton->setObjectName(QStringLiteral("Cmd_Menu"));
    menuButton->setIcon(Skin_Icon(QStringLiteral("img_menu")));
    menuButton->setProperty("skinRole", QStringLiteral("img_menu"));
    menuButton->setIconSize(QSize(22, 22));
    menuButton->setToolTip(QStringLiteral("Menu"));
    menuButton->setPopupMode(QToolButton::InstantPopup);
    menuButton->setAutoRaise(true);
    mnuMenu = new QMenu(this);
    menuButton->setMenu(mnuMenu);
    row->addWidget(menuButton);
    return bar;
}

QWidget* frmMain::buildInfoPanel() {
    QFrame* panel = makePanel(QStringLiteral("Pic_InputInfo"));
    panel->setMinimumWidth(280);
    auto* column = new QVBoxLayout(panel);
    column->setContentsMargins(12, 12, 12, 12);
    column->setSpacing(8);

    picPreview = new QLabel;
    picPreview->setObjectName(QStringLiteral("picPreview"));
    picPreview->setAlignment(Qt::AlignCenter);
    picPreview->setFixedHeight(kPreviewHeight);
    picPreview->setMinimumWidth(240);
    panel->installEventFilter(this); // the picture gives way on a short window
    picPreview->setStyleSheet(
        QStringLiteral("QLabel#picPreview { background: #1e1e1e; border-radius: 6px; }"));
    picPreview->setContextMenuPolicy(Qt::CustomContextMenu);
    column->addWidget(picPreview);

    Cmd_PlayPreview = new QToolButton(picPreview);
    Cmd_PlayPreview->setObjectName(QStringLiteral("Cmd_PlayPreview"));
    Cmd_PlayPreview->setIcon(Skin_Icon(QStringLiteral("img_player_play")));
    Cmd_PlayPreview->setProperty("skinRole", QStringLiteral("img_player_play"));
    Cmd_PlayPreview->setIconSize(QSize(32, 32));
    Cmd_PlayPreview->setAutoRaise(true);
    Cmd_PlayPreview->hide();

    auto* title = new QLabel(QStringLiteral("Input file"));
    QFont titleFont = title->font();
    titleFont.setBold(true);
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.1);
    title->setFont(titleFont);
    column->addWidget(title);

    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(12);
    grid->setVerticalSpacing(5);
    for (int i = 0; i < kInfoEntries; ++i) {
        auto* caption = new QLabel(Info_Captions()[i]);
        caption->setForegroundRole(QPalette::PlaceholderText);
        auto* value = new QLabel;
        value->setObjectName(QStringLiteral("lbl_InputFileValue_%1").arg(i));
        value->setTextInteractionFlags(Qt::TextSelectableByMouse);
        value->setWordWrap(i == Info_FileName);
        value->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        lbl_InputFileValue[i] = value;
        grid->addWidget(caption, i, 0, Qt::AlignTop);
        grid->addWidget(value, i, 1);
    }
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(kInfoEntries, 1);
    // On a short window the rows scroll rather than run into each other and the picture.
    auto* rows = new QWidget;
    rows->setObjectName(QStringLiteral("Pic_InputInfoRows"));
    rows->setLayout(grid);
    grid->setContentsMargins(0, 0, 0, 0);
    auto* scroll = new QScrollArea;
    scroll->setObjectName(QStringLiteral("Scroll_InputInfo"));
    scroll->setWidget(rows);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->viewport()->setAutoFillBackground(false);
    rows->setAutoFillBackground(false);
    column->addWidget(scroll, 1);
    return panel;
}

QWidget* frmMain::buildOutputPanel() {
    m_browserView = new OutputBrowserView(m_browser, m_catalogue, m_settings);
    Cmd_FileListView[Btn_Settings] = m_browserView->settingsButton();
    Cmd_FileListView[Btn_Favorite] = m_browserView->favoriteButton();
    Cmd_FileListView[Btn_Search] = m_browserView->searchButton();
    m_settingsWindow = new frmFormatSetting(m_catalogue, m_settings, this);
    return m_browserView;
}

QWidget* frmMain::buildBottomBar() {
    auto* bar = new QWidget;
    auto* grid = new QGridLayout(bar);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(8);

    grid->addWidget(new QLabel(QStringLiteral("Output folder:")), 0, 0);
    Txt_OutputPath = new QLineEdit;
    Txt_OutputPath->setObjectName(QStringLiteral("Txt_OutputPath"));
    Txt_OutputPath->setClearButtonEnabled(false);
    grid->addWidget(Txt_OutputPath, 0, 1);
    Cmd_FileListView[Btn_BrowseOutput] = makeButton(QStringLiteral("Browse..."), QStringLiteral("img_browse"),
                                                    QStringLiteral("Choose the output folder"));
    Cmd_FileListView[Btn_OpenOutput] = makeButton(QStringLiteral("Open"), QStringLiteral("img_browse"),
                                                  QStringLiteral("Open the output folder"));
    auto* folderButtons = new QHBoxLayout;
    folderButtons->addWidget(Cmd_FileListView[Btn_BrowseOutput]);
    folderButtons->addWidget(Cmd_FileListView[Btn_OpenOutput]);
    grid->addLayout(folderButtons, 0, 2);

    Chk_Merge = new QCheckBox(QStringLiteral("Merge into one file"));
    Chk_Merge->setObjectName(QStringLiteral("Chk_Merge"));
    grid->addWidget(Chk_Merge, 1, 0);
    ProgressBar_Total = new QProgressBar;
    ProgressBar_Total->setObjectName(QStringLiteral("ProgressBar_Total"));
    ProgressBar_Total->setTextVisible(true);
    ProgressBar_Total->setMinimumHeight(28);
    ProgressBar_Total->hide();
    grid->addWidget(ProgressBar_Total, 1, 1);

    Cmd_FileListView[Btn_Stop] =
        makeButton(QStringLiteral("Stop"), QStringLiteral("img_stop"), QStringLiteral("Stop the conversion"));
    Cmd_FileListView[Btn_Convert] = makeButton(QStringLiteral("Convert Now"), QString(),
                                               QStringLiteral("Convert all files (Ctrl+Return)"));
    Cmd_FileListView[Btn_Convert]->setDefault(true);
    Cmd_FileListView[Btn_Convert]->setMinimumHeight(40);
    Cmd_FileListView[Btn_Stop]->setMinimumHeight(40);
    QFont big = Cmd_FileListView[Btn_Convert]->font();
    big.setBold(true);
    big.setPointSizeF(big.pointSizeF() * 1.15);
    Cmd_FileListView[Btn_Convert]->setFont(big);
    Cmd_FileListView[Btn_Convert]->setStyleSheet(QStringLiteral(
        "QPushButton { background: #007AFF; color: white; border-radius: 6px; padding: 6px 18px; }"
        "QPushButton:disabled { background: #9cc6f5; color: #eef5ff; }"
        "QPushButton:hover { background: #1a88ff; }"));
    auto* runButtons = new QHBoxLayout;
    runButtons->addWidget(Cmd_FileListView[Btn_Stop]);
    runButtons->addWidget(Cmd_FileListView[Btn_Convert]);
    grid->addLayout(runButtons, 1, 2);
    grid->setColumnStretch(1, 1);

    for (int index : {Btn_BrowseOutput, Btn_OpenOutput, Btn_Stop, Btn_Convert})
        Cmd_FileListView[index]->setObjectName(QStringLiteral("Cmd_FileListView_%1").arg(index));
    return bar;
}

QPushButton* frmMain::button(int index) const {
    return index >= 0 && index < Btn_Count ? Cmd_FileListView[index] : nullptr;
}

QAction* frmMain::menuEntry(int index) const {
    return index >= 0 && index < static_cast<int>(m_menuEntries.size()) ? m_menuEntries[index] : nullptr;
}

// ---- Load.

void frmMain::Form_Load(const QStringList& arguments) {
    Parse_CommandLine(arguments);
    setWindowTitle(COMPANY_NAME + QLatin1Char(' ') + PRODUCT_NAME);
    Load_Settings();
    const QList<QAction*> themes = mnutheme->actions();
    for (QAction* a : themes)
        a->setChecked(a->objectName() == QStringLiteral("mnutheme_%1").arg(Theme_No));
    Txt_OutputPath->setText(Path_Output);
    m_converter->Txt_OutputPath = Path_Output;
    fillBlankOutput();

    // In the background: the window never waits on the network, and frmUpdates comes up only if a
    // newer version is known and nothing else is on screen.
    Update_Run(this, UpdateTrigger::Start);

    Catalogue_Load(m_catalogue);
    Set_MainState(MainState_Empty, false);

    m_menuEntries[9]->trigger(); // the preview starts on: entry 9 toggles it from off
    loadBrowser();
    Show_InputFileInfo(-1);

    Test_Running = false;
    Write_Setting(REGISTRY_PRODUCT, QStringLiteral("WinTagInfo"), QString());
    Write_Setting(REGISTRY_PRODUCT, QStringLiteral("WinInfo"), QString());

    Set_ConvertButton(Conversion_Idle);
    Msg_Trail.clear();
    m_converter->Shutdown_After = 0;
    Closing = false;
    m_list->setDropHintVisible(false);
    setAcceptDrops(true);

    Cmd_FileListView[Btn_Add]->setEnabled(false);
    Timer_StartUp.start();
}

void frmMain::Timer_StartUp_Tick() {
    Timer_StartUp.stop();
    if (!Command_StartUp(*m_host)) {
        // A moment on top brings the window to the front.
        raise();
        activateWindow();
        QCoreApplication::processEvents();
    }
    Cmd_FileListView[Btn_Add]->setEnabled(true);
    m_startUpDone = true;
    if (m_seams.tagHint) Timer_Tags.start();
}

// ---- State.

void frmMain::Set_MainState(int state, bool enable) {
    m_mainState = state;
    m_mainEnable = enable;
    MainStateContext context;
    context.favoritesPanelOpen = m_browser.PanelActive == Panel_Favorites;
    context.favoritesEmpty = m_catalogue.ReportControl_FavoritesMain.rowCount() == 0;
    applyMainState(Main_StateRule(state, enable, context));
}

void frmMain::applyMainState(const MainStateView& v) {
    for (int entry : {1, 6, 7, 13})
        if (m_menuEntries[entry]) m_menuEntries[entry]->setEnabled(v.menuGroup);
    m_list->setDropHintVisible(v.dragDropVisible);
    for (int i = 0; i < Btn_Count; ++i)
        if (Cmd_FileListView[i] && v.buttons[i]) Cmd_FileListView[i]->setEnabled(*v.buttons[i]);
    if (v.groupA) {
        m_browserView->setGroupEnabled(*v.groupA);
        Txt_OutputPath->setEnabled(*v.groupA);
        Chk_Merge->setEnabled(*v.groupA);
    }
    if (v.groupB) m_settingsWindow->Set_GroupBEnabled(*v.groupB);
    m_browserView->setMakerEnabled(v.makerNames);
    m_list->setEnabled(v.fileView);
    ProgressBar_Total->setEnabled(v.progressTotal);
    syncConversionViews();
}

void frmMain::Set_ConvertButton(int state) {
    m_converter->Set_ConvertButton(state);
    syncConversionViews();
}

void frmMain::syncConversionViews() {
    const ConvertButton& c = m_converter->Cmd_Convert;
    QPushButton* convert = Cmd_FileListView[Btn_Convert];
    convert->setText(c.Caption);
    convert->setIcon(Skin_StoreIcon(c.Icon));
    convert->setFixedWidth(twipsToPixels(c.Width));
    if (!c.Enabled) convert->setEnabled(false);
    if (!m_converter->Cmd_StopEnabled) Cmd_FileListView[Btn_Stop]->setEnabled(false);

    const TotalProgressBar& t = m_converter->ProgressBar_Total;
    ProgressBar_Total->setVisible(t.Visible);
    if (t.Scrolling == Scrolling_Marquee) {
        ProgressBar_Total->setRange(0, 0);
    } else {
        ProgressBar_Total->setRange(0, std::max(t.Maximum, 1));
        ProgressBar_Total->setValue(std::clamp(t.Value, 0, std::max(t.Maximum, 1)));
    }
    ProgressBar_Total->setFormat(t.Text);
    m_table.setHeaderCaption(FileCol::Status, m_converter->Status_Header);
    const int percent =
        t.Maximum > 0 ? static_cast<int>(100LL * std::clamp(t.Value, 0, t.Maximum) / t.Maximum) : 0;
    m_launcher.Update(Get_ConversionState(), percent);

    // The timer of the header follows the converter's switch.
    if (m_converter->Timer_ConversionElapsed() != Timer_ConversionElapsed.isActive()) {
        if (m_converter->Timer_ConversionElapsed())
            Timer_ConversionElapsed.start();
        else
            Timer_ConversionElapsed.stop();
    }
}

void frmMain::Timer_ConversionElapsed_Tick() {
    if (!m_converter->Timer_ConversionElapsed()) {
        Timer_ConversionElapsed.stop();
        return;
    }
    m_converter->Timer_ConversionElapsed_Tick();
    syncConversionViews();
}

void frmMain::Show_InputFileInfo(int row) {
    const InfoTexts texts = row < 0 ? Info_Empty() : Info_Texts(m_table, row);
    for (int i = 0; i < kInfoEntries; ++i) {
        lbl_InputFileValue[i]->setText(texts[i]);
        lbl_InputFileValue[i]->setToolTip(texts[i]);
    }
    if (row < 0) {
        Info_Row = 0;
        Cmd_PlayPreview->hide();
        picPreview->clear();
        return;
    }
    Info_Row = row;
    Cmd_PlayPreview->setVisible(Get_ConversionState() == Conversion_Idle);
    drawThumbnail();
}

void frmMain::drawThumbnail() {
    const QPixmap picture(Info_Row < m_table.rows() ? m_table.text(Info_Row, FileCol::Thumbnail) : QString());
    if (picture.isNull())
        picPreview->clear();
    else
        picPreview->setPixmap(
            picture.scaled(picPreview->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
    Cmd_PlayPreview->move((picPreview->width() - Cmd_PlayPreview->sizeHint().width()) / 2,
                          (picPreview->height() - Cmd_PlayPreview->sizeHint().height()) / 2);
}

bool frmMain::eventFilter(QObject* watched, QEvent* event) {
    // Half of the information panel for the picture, within 90 .. 180 pixels.
    if (event->type() == QEvent::Resize && watched == picPreview->parentWidget()) {
        const int height = std::clamp(static_cast<QWidget*>(watched)->height() / 2, 90, kPreviewHeight);
        if (height != picPreview->height()) {
            picPreview->setFixedHeight(height);
            if (!picPreview->pixmap().isNull()) drawThumbnail();
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

namespace {
// A modal window, or under a test's seam the window shown for the seam to drive, then closed.
template <class Window>
void runModal(Window& window, const std::function<void(Window&)>& seam) {
    if (seam) {
        window.show();
        seam(window);
        window.close();
    } else {
        window.exec();
    }
}
} // namespace

void frmMain::Cmd_PlayPreview_Click() {
    if (Get_ConversionState() != Conversion_Idle || PlayerWindowOpen || EditWindowOpen) return;
    if (Info_Row < 0 || Info_Row >= m_table.rows()) return;
    const QString file =
        m_table.text(Info_Row, FileCol::FilePath) + m_table.text(Info_Row, FileCol::FileName);
    const float aspect = m_table.text(Info_Row, FileCol::VideoSampleAspectRatio).toFloat();
    PlayerWindowOpen = true;
    {
        frmPlayer window(*m_media, file, aspect, this);
        window.model().openFolder = [this](const QString& folder) {
            Open_Folder(this, folder, false, false);
        };
        runModal(window, m_seams.playerWindow);
    }
    PlayerWindowOpen = false;
    activateWindow();
    // What the encoder said while the window was open is handled now.
    m_converter->Release_HeldEvents();
    syncConversionViews();
}

void frmMain::Mailbox_Changed(const QString& received) {
    if (received.isEmpty()) return;
    const QString text = Trim_Spaces(received);
    if (m_tray.In_Tray) Tray_Toggle();
    if (isMinimized()) showNormal();
    // On top for the while of the order, so that its messages and the list are seen.
    const bool wasOnTop = windowFlags().testFlag(Qt::WindowStaysOnTopHint);
    raise();
    activateWindow();
    QCoreApplication::processEvents();
    if (!text.isEmpty()) {
        TxtCommand_LoadingTime = text;
        Process_Command(text, *m_host);
        syncConversionViews();
    }
    QCoreApplication::processEvents();
    if (!wasOnTop) activateWindow();
}

void frmMain::Cmd_Edit_Click() {
    if (Get_ConversionState() != Conversion_Idle || PlayerWindowOpen || EditWindowOpen) return;
    const QList<int> selected = m_table.selectedRows();
    if (selected.size() != 1) return;
    const int row = selected.first();
    EditWindowOpen = true;
    {
        frmEditVideo window(m_table, *m_media, row, this);
        runModal(window, m_seams.editWindow);
    }
    EditWindowOpen = false;
    activateWindow();
    m_converter->Release_HeldEvents();
    if (row < m_table.rows()) {
        m_table.setSelectedRows({row});
        Show_InputFileInfo(row);
    }
    syncConversionViews();
}

} // namespace morvane
