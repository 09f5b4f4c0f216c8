#include "frmPlayer.h"

#include "Globals.h"
#include "Image_Convert.h"
#include "Library_List.h"
#include "Skin_Icons.h"
#include "Slider_Ctrl.h"
#include "VideoSurface.h"
#include "Window_Timers.h"

#include <QApplication>
#include <QComboBox>
#include <QCursor>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QScreen>
#include <QSignalBlocker>
#include <QSlider>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWindow>

namespace morvane {

namespace {

constexpr int kCaptionHeight = 30;
constexpr int kPanelHeight = 72;
constexpr int kBarSteps = 1000; // the play bar's travel when the window has no width yet

// A play bar that jumps to where it is clicked, as players do, and reports that as a user's move.
class PlayBar : public QSlider {
public:
    explicit PlayBar(QWidget* parent) : QSlider(Qt::Horizontal, parent) {}

protected:
    void mousePressEvent(QMouseEvent* event) override {
        if (event->button() == Qt::LeftButton && isEnabled()) {
            const int value =
                QStyle::sliderValueFromPosition(minimum(), maximum(), qRound(event->position().x()), width());
            setSliderPosition(value);
            emit sliderMoved(value);
        }
        QSlider::mousePressEvent(event);
    }
};

QToolButton* makeButton(QWidget* parent, const QString& name, const QString& tip) {
    auto* b = new QToolButton(parent);
    b->setObjectName(name);
    b->setToolTip(tip);
    b->setAutoRaise(true);
    b->setIconSize(QSize(24, 24));
    b->setFocusPolicy(Qt::NoFocus);
    return b;
}

} // namespace

frmPlayer::frmPlayer(MediaPlayer& media, const QString& file, float aspect, QWidget* parent)
    : QDialog(parent, Qt::Window | Qt::FramelessWindowHint), m_media(media), m_model(media) {
    setObjectName(QStringLiteral("frmPlayer"));
    setWindowTitle(QFileInfo(file).fileName());
    m_model.fileName = file;
    m_model.aspect = aspect;
    buildWindow();
    m_model.surface = m_preview;
    m_media.player().setVideoWindow(m_preview);
    m_preview->setPlayer(&m_media.player());
    m_model.panel.barWidth = kBarSteps;
    m_model.saveDialog = [this](const QString& name, const QString& folder, int& index) {
        return chooseSnapshotFile(name, folder, index);
    };
    m_model.closeWindow = [this] { close(); };
    m_model.setFullScreen = [this](bool full) {
        // The geometry is set as well, for desktops whose window manager does not take the full
        // screen state (or where there is none).
        if (full) {
            m_normalGeometry = geometry();
            showFullScreen();
            if (QScreen* s = screen()) setGeometry(s->geometry());
        } else {
            showNormal();
            if (m_normalGeometry.isValid()) setGeometry(m_normalGeometry);
        }
        layoutControls();
    };
    m_model.changed = [this] { showModel(); };
    m_model.panel.changed = [this] { showModel(); };
    setupConnections();
    m_model.Form_Load();
}

frmPlayer::~frmPlayer() {
    if (!m_unloaded) {
        m_unloaded = true;
        m_model.Form_Unload();
    }
    m_media.player().setVideoWindow(nullptr);
}

void frmPlayer::buildWindow() {
    setMinimumSize(480, 320);
    setStyleSheet(QStringLiteral("#frmPlayer { background: black; }"
                                 "#Pic_FormCaption, #PicMainPanel { background: rgba(24, 24, 24, 235); }"
                                 "#Pic_FormCaption QLabel, #PicMainPanel QLabel { color: #e8e8e8; }"
                                 "#PicMainPanel QComboBox { min-width: 90px; }"));

    m_preview = new VideoSurface(this);
    m_preview->setObjectName(QStringLiteral("picPreview"));
    m_preview->setContextMenuPolicy(Qt::CustomContextMenu);
    m_preview->setMouseTracking(true);

    Pic_FormCaption = new QWidget(this);
    Pic_FormCaption->setObjectName(QStringLiteral("Pic_FormCaption"));
    Pic_FormCaption->setAttribute(Qt::WA_StyledBackground);
    auto* captionRow = new QHBoxLayout(Pic_FormCaption);
    captionRow->setContentsMargins(10, 0, 4, 0);
    lbl_FileName = new QLabel(QFileInfo(m_model.fileName).fileName(), Pic_FormCaption);
    lbl_FileName->setObjectName(QStringLiteral("lbl_FileName"));
    captionRow->addWidget(lbl_FileName, 1);
    m_closeButton = makeButton(Pic_FormCaption, QStringLiteral("Cmd_Player_3"), tr("Close"));
    m_closeButton->setIcon(Skin_Icon(QStringLiteral("img_closeform")));
    m_closeButton->setIconSize(QSize(16, 16));
    captionRow->addWidget(m_closeButton);
    Cmd_Player[3] = m_closeButton;

    PicMainPanel = new QWidget(this);
    PicMainPanel->setObjectName(QStringLiteral("PicMainPanel"));
    PicMainPanel->setAttribute(Qt::WA_StyledBackground);
    auto* panelRows = new QVBoxLayout(PicMainPanel);
    panelRows->setContentsMargins(10, 6, 10, 4);
    panelRows->setSpacing(2);
    ProgressBar_Play = new PlayBar(PicMainPanel);
    ProgressBar_Play->setObjectName(QStringLiteral("ProgressBar_Play"));
    ProgressBar_Play->setRange(0, kBarSteps);
    ProgressBar_Play->setEnabled(false);
    ProgressBar_Play->setFocusPolicy(Qt::NoFocus);
    panelRows->addWidget(ProgressBar_Play);

    auto* controls = new QHBoxLayout;
    controls->setSpacing(4);
    panelRows->addLayout(controls);
    Cmd_Player[0] = makeButton(PicMainPanel, QStringLiteral("Cmd_Player_0"), tr("Play / Pause (Space)"));
    Cmd_Player[1] = makeButton(PicMainPanel, QStringLiteral("Cmd_Player_1"), tr("Stop"));
    Cmd_Player[1]->setIcon(Skin_Icon(QStringLiteral("img_player_stop")));
    controls->addWidget(Cmd_Player[0]);
    controls->addWidget(Cmd_Player[1]);
    lbl_PlayTime = new QLabel(QStringLiteral("00:00:00"), PicMainPanel);
    lbl_PlayTime->setObjectName(QStringLiteral("lbl_PlayTime"));
    lbl_PlayTotal = new QLabel(QStringLiteral("00:00:00"), PicMainPanel);
    lbl_PlayTotal->setObjectName(QStringLiteral("lbl_PlayTotal"));
    controls->addSpacing(6);
    controls->addWidget(lbl_PlayTime);
    controls->addWidget(new QLabel(QStringLiteral("/"), PicMainPanel));
    controls->addWidget(lbl_PlayTotal);
    controls->addStretch(1);
    for (std::size_t i = 0; i < Combo_AudioSubTitle.size(); ++i) {
        auto* combo = new QComboBox(PicMainPanel);
        combo->setObjectName(QStringLiteral("Combo_AudioSubTitle_%1").arg(i));
        combo->setToolTip(i == 0 ? tr("Audio track") : tr("Subtitles"));
        combo->setFocusPolicy(Qt::NoFocus);
        combo->setSizeAdjustPolicy(QComboBox::AdjustToContents);
        combo->hide();
        controls->addWidget(combo);
        Combo_AudioSubTitle[i] = combo;
    }
    Cmd_Player[4] = makeButton(PicMainPanel, QStringLiteral("Cmd_Player_4"), tr("Snapshot"));
    Cmd_Player[4]->setIcon(Skin_Icon(QStringLiteral("img_player_capture")));
    Cmd_Player[2] = makeButton(PicMainPanel, QStringLiteral("Cmd_Player_2"), tr("Mute"));
    controls->addWidget(Cmd_Player[4]);
    controls->addWidget(Cmd_Player[2]);
    Slider_MPVolume = new Slider_Ctrl(PicMainPanel);
    Slider_MPVolume->setObjectName(QStringLiteral("Slider_MPVolume"));
    Slider_MPVolume->setOrientation(0);
    Slider_MPVolume->setRange(0, m_model.buttons.volumeMax);
    Slider_MPVolume->setValue(m_model.buttons.volume);
    Slider_MPVolume->setFixedSize(100, 24);
    controls->addWidget(Slider_MPVolume);
    m_fullScreenButton = makeButton(PicMainPanel, QStringLiteral("Cmd_FullScreen"), tr("Full Screen"));
    controls->addWidget(m_fullScreenButton);

    mnuPlayers = new QMenu(this);
    mnuPlayers->setObjectName(QStringLiteral("mnuPlayers"));
    m_fullScreenEntry = mnuPlayers->addAction(m_model.mnuFullScreenCaption);
    m_fullScreenEntry->setObjectName(QStringLiteral("mnuPlayer_1"));
    mnuPlayers->addSeparator();
    QMenu* mnuSnapShots = mnuPlayers->addMenu(tr("Snapshot"));
    mnuSnapShots->setObjectName(QStringLiteral("mnuSnapShots"));
    QAction* take = mnuSnapShots->addAction(tr("Take Snapshot..."));
    connect(take, &QAction::triggered, this, [this] { m_model.Cmd_Player_Click(4); });
    QAction* folder = mnuSnapShots->addAction(tr("Open Snapshot Folder"));
    folder->setObjectName(QStringLiteral("mnuSnapShot"));
    connect(folder, &QAction::triggered, this, [this] { m_model.mnuSnapShot_Click(); });
    mnuPlayers->addSeparator();
    QAction* closeEntry = mnuPlayers->addAction(tr("Close"));
    connect(closeEntry, &QAction::triggered, this, &QWidget::close);

    // A size that suits the picture: the file's aspect within most of the screen.
    const QRect screen = this->screen() ? this->screen()->availableGeometry() : QRect(0, 0, 1280, 800);
    const float shape = m_model.aspect > 0 ? m_model.aspect : 16.0f / 9.0f;
    int w = std::min(960, screen.width() * 3 / 4);
    int h = qRound(w / shape) + kCaptionHeight + kPanelHeight;
    if (h > screen.height() * 3 / 4) {
        h = screen.height() * 3 / 4;
        w = std::max(minimumWidth(), qRound((h - kCaptionHeight - kPanelHeight) * shape));
    }
    resize(w, h);
}

void frmPlayer::setupConnections() {
    for (std::size_t i = 0; i < Cmd_Player.size(); ++i)
        connect(Cmd_Player[i], &QToolButton::clicked, this,
                [this, i] { m_model.Cmd_Player_Click(static_cast<int>(i)); });
    connect(m_fullScreenButton, &QToolButton::clicked, this, [this] { m_model.Toggle_FullScreen(); });
    connect(m_fullScreenEntry, &QAction::triggered, this, [this] { m_model.Toggle_FullScreen(); });
    connect(m_preview, &VideoSurface::doubleClicked, this, [this] { m_model.Toggle_FullScreen(); });
    connect(m_preview, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& at) { mnuPlayers->popup(m_preview->mapToGlobal(at)); });
    connect(ProgressBar_Play, &QSlider::sliderMoved, this,
            [this](int value) { m_model.ProgressBar_Play_Change(value); });
    connect(Slider_MPVolume, &Slider_Ctrl::Change, this,
            [this] { m_model.Slider_MPVolume_Change(Slider_MPVolume->Value()); });
    connect(Combo_AudioSubTitle[0], &QComboBox::activated, this,
            [this] { m_model.Combo_AudioSubTitle_Click(0, Combo_AudioSubTitle[0]->currentText()); });
    connect(Combo_AudioSubTitle[1], &QComboBox::activated, this, [this](int index) {
        if (index == 0)
            m_media.player().setSubtitleStream(-1);
        else
            m_model.Combo_AudioSubTitle_Click(1, Combo_AudioSubTitle[1]->currentText());
    });
    for (QWidget* w : {static_cast<QWidget*>(Pic_FormCaption), static_cast<QWidget*>(lbl_FileName)})
        w->installEventFilter(this);

    const std::pair<QTimer*, int> timers[] = {{&Timer_WaitToPlay, 100},
                                              {&Timer_GetMousePosition, 300},
                                              {&Timer_HidePanel, 2500},
                                              {&Timer_Motion, 10}};
    for (auto [timer, interval] : timers)
        timer->setInterval(interval);
    connect(&Timer_WaitToPlay, &QTimer::timeout, this, [this] {
        m_model.Timer_WaitToPlay_Tick();
        fillStreams();
    });
    connect(&Timer_GetMousePosition, &QTimer::timeout, this,
            [this] { m_model.Timer_GetMousePosition_Tick(QCursor::pos()); });
    connect(&Timer_HidePanel, &QTimer::timeout, this, [this] { m_model.Timer_HidePanel_Tick(); });
    connect(&Timer_Motion, &QTimer::timeout, this, [this] { m_model.Timer_Motion_Tick(); });
}

bool frmPlayer::eventFilter(QObject* watched, QEvent* event) {
    if (watched == Pic_FormCaption || watched == lbl_FileName) {
        if (event->type() == QEvent::MouseButtonDblClick) {
            m_model.Toggle_FullScreen();
            return true;
        }
        // A press on the caption moves the window, as a title bar does.
        if (event->type() == QEvent::MouseButtonPress && !m_model.fullScreen &&
            static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton && windowHandle()) {
            windowHandle()->startSystemMove();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void frmPlayer::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Space:
        m_model.Cmd_Player_Click(0);
        return;
    case Qt::Key_F:
        m_model.Toggle_FullScreen();
        return;
    case Qt::Key_Escape:
        if (m_model.fullScreen)
            m_model.Toggle_FullScreen();
        else
            close();
        return;
    default:
        QDialog::keyPressEvent(event);
    }
}

void frmPlayer::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    layoutControls();
    syncTimers();
}

void frmPlayer::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    layoutControls();
}

void frmPlayer::layoutControls() {
    const int w = width(), h = height();
    m_model.Layout(h, kPanelHeight);
    Pic_FormCaption->setGeometry(0, 0, w, kCaptionHeight);
    // In a window the picture sits between caption and panel; at full screen it takes the whole
    // screen and the two lie over it.
    if (m_model.fullScreen)
        m_preview->setGeometry(0, 0, w, h);
    else
        m_preview->setGeometry(0, kCaptionHeight, w, h - kCaptionHeight - kPanelHeight);
    showModel();
}

void frmPlayer::showModel() {
    const PlayPanel& p = m_model.panel;
    const PlayerButtons& b = m_model.buttons;
    lbl_PlayTime->setText(p.lbl_PlayTime);
    lbl_PlayTime->setProperty("tag", p.lbl_PlayTimeTag);
    lbl_PlayTotal->setText(p.lbl_PlayTotal);
    {
        const QSignalBlocker block(ProgressBar_Play);
        if (ProgressBar_Play->maximum() != p.barMax) ProgressBar_Play->setRange(0, p.barMax);
        if (!ProgressBar_Play->isSliderDown()) ProgressBar_Play->setValue(p.barValue);
    }
    ProgressBar_Play->setEnabled(b.stopEnabled);
    Cmd_Player[0]->setIcon(Skin_Icon(b.playImage));
    Cmd_Player[0]->setProperty("tag", b.playTag);
    Cmd_Player[1]->setEnabled(b.stopEnabled);
    Cmd_Player[2]->setIcon(Skin_Icon(b.muteImage));
    Cmd_Player[2]->setProperty("tag", b.muteTag);
    if (Slider_MPVolume->Value() != b.volume) Slider_MPVolume->setValue(b.volume);
    m_fullScreenEntry->setText(m_model.mnuFullScreenCaption);
    m_fullScreenButton->setIcon(Skin_Icon(m_model.fullScreenImage));
    m_fullScreenButton->setToolTip(m_model.mnuFullScreenCaption);
    Pic_FormCaption->setVisible(m_model.captionVisible);
    PicMainPanel->setGeometry(0, m_model.panelTop, width(), kPanelHeight);
    PicMainPanel->raise();
    Pic_FormCaption->raise();
    // At full screen the cursor goes with the panel, and comes back with it.
    m_preview->setCursor(m_model.fullScreen && !m_model.captionVisible ? Qt::BlankCursor : Qt::ArrowCursor);
    syncTimers();
}

void frmPlayer::syncTimers() {
    Sync_Timers({{&Timer_WaitToPlay, m_model.timers.WaitToPlay},
                 {&Timer_GetMousePosition, m_model.timers.GetMousePosition},
                 {&Timer_HidePanel, m_model.timers.HidePanel},
                 {&Timer_Motion, m_model.timers.Motion}},
                isVisible());
}

void frmPlayer::fillStreams() {
    QComboBox* audio = Combo_AudioSubTitle[0];
    QComboBox* subtitles = Combo_AudioSubTitle[1];
    audio->clear();
    subtitles->clear();
    subtitles->addItem(tr("No subtitles"));
    const int current = m_media.player().AudioStream();
    for (const PlayerTrack& t : m_model.tracks) {
        QComboBox* combo = t.audio ? audio : subtitles;
        combo->addItem(t.title);
        if (t.audio && t.id == current) audio->setCurrentIndex(audio->count() - 1);
    }
    audio->setVisible(audio->count() > 1);
    subtitles->setVisible(subtitles->count() > 1);
}

QString frmPlayer::chooseSnapshotFile(const QString& name, const QString& folder, int& filterIndex) {
    const QStringList filters = Qt_DialogFilter(Filter_Image()).split(QStringLiteral(";;"));
    QString selected = filters.value(std::max(filterIndex, 1) - 1);
    // With the type's extension, so that the dialog does not take the milliseconds for one.
    const QString start = QDir(folder.isEmpty() ? QDir::homePath() : folder)
                              .filePath(name + ImageTypeExtension(std::max(filterIndex, 1)));
    const QString chosen = QFileDialog::getSaveFileName(this, tr("Save Snapshot"), start,
                                                        filters.join(QStringLiteral(";;")), &selected);
    filterIndex = static_cast<int>(filters.indexOf(selected)) + 1;
    return chosen;
}

void frmPlayer::closeEvent(QCloseEvent* event) {
    if (!m_unloaded) {
        m_unloaded = true;
        m_model.Form_Unload();
    }
    QDialog::closeEvent(event);
}

} // namespace morvane
