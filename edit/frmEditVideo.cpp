#include "frmEditVideo.h"

#include "EditWidgets.h"
#include "Effects_Mods.h"
#include "Globals.h"
#include "Image_Frame.h"
#include "Preview_Frame.h"
#include "Skin_Icons.h"
#include "Slider_Ctrl.h"
#include "Window_Timers.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLinearGradient>
#include <QPainter>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace morvane {

namespace {

constexpr int kPanelWidth = 330;
const char* const kTabCaptions[] = {"Trim", "Crop", "Effect", "Adjust"};
const char* const kTabRoles[] = {"trim", "crop", "effect", "adjust"};
const char* const kFlipWords[] = {"FlipV", "FlipH", "Flip-VH"};
const char* const kAdjustCaptions[] = {"Brightness", "Contrast", "Saturation"};

QToolButton* toolButton(QWidget* parent, const QString& name, const QString& text, const QString& tip = {}) {
    auto* b = new QToolButton(parent);
    b->setObjectName(name);
    b->setText(text);
    b->setToolTip(tip.isEmpty() ? text : tip);
    b->setFocusPolicy(Qt::NoFocus);
    return b;
}

QPushButton* pushButton(QWidget* parent, const QString& name, const QString& text) {
    auto* b = new QPushButton(text, parent);
    b->setObjectName(name);
    b->setFocusPolicy(Qt::NoFocus);
    return b;
}

// A list's tokens by name: whether the flip stands in it as a token of its own.
bool hasToken(const QString& list, const QString& name) {
    for (const QString& element : list.split(QLatin1Char(',')))
        if (element.section(QLatin1Char(':'), 0, 0).trimmed() == name) return true;
    return false;
}

} // namespace

QImage Effect_SamplePicture(QSize size) {
    QImage picture(size, QImage::Format_RGB32);
    QPainter p(&picture);
    const QColor bars[] = {Qt::white, Qt::yellow, Qt::cyan, Qt::green, Qt::magenta, Qt::red, Qt::blue};
    const int n = static_cast<int>(std::size(bars));
    for (int i = 0; i < n; ++i)
        p.fillRect(QRect(i * size.width() / n, 0, (i + 1) * size.width() / n - i * size.width() / n,
                         size.height() * 2 / 3),
                   bars[i]);
    QLinearGradient ramp(0, 0, size.width(), 0);
    ramp.setColorAt(0, Qt::black);
    ramp.setColorAt(1, Qt::white);
    p.fillRect(QRect(0, size.height() * 2 / 3, size.width(), size.height() - size.height() * 2 / 3), ramp);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(Qt::black, std::max(1, size.width() / 40)));
    p.setBrush(QColor(255, 140, 0));
    p.drawEllipse(QPointF(size.width() * 0.3, size.height() * 0.38), size.width() * 0.14,
                  size.width() * 0.14);
    p.drawLine(QPointF(size.width() * 0.55, size.height() * 0.1),
               QPointF(size.width() * 0.9, size.height() * 0.6));
    return picture;
}

frmEditVideo::frmEditVideo(FileViewMain& table, MediaPlayer& media, int row, QWidget* parent)
    : QDialog(parent), m_model(table, media, row) {
    setObjectName(QStringLiteral("frmEditVideo"));
    setWindowTitle(tr("Edit"));
    // The chosen tab, aspect, effect and flips stand out whatever the theme does with tool buttons.
    setStyleSheet(QStringLiteral("QToolButton:checked { background: palette(highlight); "
                                 "color: palette(highlighted-text); border-radius: 3px; }"));
    // One position of the trim bar for each pixel of it.
    m_model.trim.BarLeft = 0;
    m_model.trim.BarMax = TrimBarView::travelFor(kPreviewWidth);

    auto* tabRow = new QHBoxLayout;
    tabRow->setSpacing(4);
    for (std::size_t i = 0; i < Cmd_Tab.size(); ++i) {
        Cmd_Tab[i] = toolButton(this, QStringLiteral("Cmd_Tab_%1").arg(i), tr(kTabCaptions[i]));
        Cmd_Tab[i]->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        Cmd_Tab[i]->setCheckable(true);
        Cmd_Tab[i]->setAutoExclusive(true);
        Cmd_Tab[i]->setIconSize(QSize(20, 20));
        Cmd_Tab[i]->setMinimumWidth(90);
        tabRow->addWidget(Cmd_Tab[i]);
    }
    tabRow->addStretch(1);

    m_preview = new EditPreview(m_model, this);
    m_preview->setFixedSize(kPreviewWidth, kPreviewHeight);
    m_trimBar = new TrimBarView(m_model, this);
    m_trimBar->setFixedWidth(kPreviewWidth);

    m_tabs = new QStackedWidget(this);
    m_tabs->setFixedWidth(kPanelWidth);
    m_tabs->addWidget(buildTrimTab());
    m_tabs->addWidget(buildCropTab());
    m_tabs->addWidget(buildEffectTab());
    m_tabs->addWidget(buildAdjustTab());

    auto* left = new QVBoxLayout;
    left->addWidget(m_preview);
    left->addWidget(m_trimBar);
    left->addWidget(buildPlayerRow());
    left->addStretch(1);
    auto* body = new QHBoxLayout;
    body->addLayout(left);
    body->addWidget(m_tabs, 1);

    auto* bottom = new QHBoxLayout;
    bottom->addStretch(1);
    Cmd_Panels[0] = pushButton(this, QStringLiteral("Cmd_Panels_0"), tr("OK"));
    Cmd_Panels[1] = pushButton(this, QStringLiteral("Cmd_Panels_1"), tr("Cancel"));
    Cmd_Panels[0]->setDefault(true);
    for (QPushButton* b : Cmd_Panels) {
        b->setMinimumWidth(100);
        bottom->addWidget(b);
    }

    auto* rows = new QVBoxLayout(this);
    rows->addLayout(tabRow);
    rows->addLayout(body);
    rows->addLayout(bottom);

    makeEffectPictures();
    for (const QString& name : Cmb_EffectsList())
        Cmb_Effects->addItem(name);
    for (QComboBox* combo : Combo_AudioSubTitle)
        for (int i = -1; i <= 10; ++i)
            combo->addItem(QString::number(i));

    m_model.closeWindow = [this] { QMetaObject::invokeMethod(this, &QWidget::close, Qt::QueuedConnection); };
    m_model.changed = [this] { showModel(); };
    m_model.pictureChanged = [this] { showPicture(); };
    m_preview->changedByUser = [this] { showModel(); };
    m_trimBar->changedByUser = [this] { showModel(); };
    setupConnections();
    m_model.Form_Load(QSize(kPreviewWidth, kPreviewHeight));
}

frmEditVideo::~frmEditVideo() {
    m_model.Form_Unload();
}

QWidget* frmEditVideo::buildTrimTab() {
    auto* page = new QWidget;
    page->setObjectName(QStringLiteral("Pic_TrimCanves"));
    auto* grid = new QGridLayout(page);
    Txt_TrimStartTime = new QLabel(QStringLiteral("00:00:00"), page);
    Txt_TrimEndTime = new QLabel(QStringLiteral("00:00:00"), page);
    lbl_SelectedTime = new QLabel(QStringLiteral("00:00:00"), page);
    for (QLabel* l : {Txt_TrimStartTime, Txt_TrimEndTime, lbl_SelectedTime})
        l->setStyleSheet(QStringLiteral("font-size: 15px; font-weight: 600;"));
    Cmd_TrimStartTime[1] = toolButton(page, QStringLiteral("Cmd_TrimStartTime_1"), QStringLiteral("-0.1s"));
    Cmd_TrimStartTime[0] = toolButton(page, QStringLiteral("Cmd_TrimStartTime_0"), QStringLiteral("+0.1s"));
    Cmd_TrimEndTime[1] = toolButton(page, QStringLiteral("Cmd_TrimEndTime_1"), QStringLiteral("-1s"));
    Cmd_TrimEndTime[0] = toolButton(page, QStringLiteral("Cmd_TrimEndTime_0"), QStringLiteral("+1s"));
    const char* const trimCaptions[] = {"Set Start", "Set End", "Play Selection", "Next Frame",
                                        "Previous Frame"};
    for (std::size_t i = 0; i < Cmd_Trim.size(); ++i)
        Cmd_Trim[i] = pushButton(page, QStringLiteral("Cmd_Trim_%1").arg(i), tr(trimCaptions[i]));
    Cmd_Trim[2]->setIcon(Skin_Icon(QStringLiteral("img_trim_play_selected")));
    grid->addWidget(new QLabel(tr("Start time"), page), 0, 0, 1, 4);
    grid->addWidget(Txt_TrimStartTime, 1, 0);
    grid->addWidget(Cmd_TrimStartTime[1], 1, 1);
    grid->addWidget(Cmd_TrimStartTime[0], 1, 2);
    grid->addWidget(Cmd_Trim[0], 1, 3);
    grid->addWidget(new QLabel(tr("End time"), page), 2, 0, 1, 4);
    grid->addWidget(Txt_TrimEndTime, 3, 0);
    grid->addWidget(Cmd_TrimEndTime[1], 3, 1);
    grid->addWidget(Cmd_TrimEndTime[0], 3, 2);
    grid->addWidget(Cmd_Trim[1], 3, 3);
    grid->addWidget(new QLabel(tr("Selected length"), page), 4, 0, 1, 2);
    grid->addWidget(lbl_SelectedTime, 4, 2, 1, 2);
    grid->addWidget(Cmd_Trim[4], 5, 0, 1, 2);
    grid->addWidget(Cmd_Trim[3], 5, 2, 1, 2);
    grid->addWidget(Cmd_Trim[2], 6, 0, 1, 4);
    Cmd_Reset[0] = pushButton(page, QStringLiteral("Cmd_Reset_0"), tr("Reset"));
    grid->setRowStretch(7, 1);
    grid->addWidget(Cmd_Reset[0], 8, 3);
    return page;
}

QWidget* frmEditVideo::buildCropTab() {
    auto* page = new QWidget;
    page->setObjectName(QStringLiteral("Pic_CropCanves"));
    auto* grid = new QGridLayout(page);
    auto* aspects = new QHBoxLayout;
    aspects->setSpacing(2);
    for (std::size_t i = 0; i < Cmd_AspectRatio.size(); ++i) {
        Cmd_AspectRatio[i] = toolButton(page, QStringLiteral("Cmd_AspectRatio_%1").arg(i),
                                        QString::fromLatin1(kAspectButtons[i].word));
        Cmd_AspectRatio[i]->setCheckable(true);
        Cmd_AspectRatio[i]->setAutoExclusive(true);
        aspects->addWidget(Cmd_AspectRatio[i]);
    }
    grid->addWidget(new QLabel(tr("Output frame"), page), 0, 0, 1, 2);
    grid->addLayout(aspects, 1, 0, 1, 2);
    Pic_CropOutput = new QLabel(page);
    Pic_CropOutput->setObjectName(QStringLiteral("Pic_Preview_1"));
    Pic_CropOutput->setFixedSize(288, 162);
    Pic_CropOutput->setStyleSheet(QStringLiteral("background: black;"));
    grid->addWidget(Pic_CropOutput, 2, 0, 1, 2, Qt::AlignHCenter);
    Txt_CropOriginalSize = new QLabel(page);
    Txt_CropSize = new QLabel(page);
    grid->addWidget(new QLabel(tr("Original size"), page), 3, 0);
    grid->addWidget(Txt_CropOriginalSize, 3, 1);
    grid->addWidget(new QLabel(tr("Crop size"), page), 4, 0);
    grid->addWidget(Txt_CropSize, 4, 1);
    for (std::size_t i = 0; i < lbl_Crop.size(); ++i) {
        lbl_Crop[i] = new QLabel(page);
        lbl_Pad[i] = new QLabel(page);
        grid->addWidget(lbl_Crop[i], 5 + static_cast<int>(i), 0);
        grid->addWidget(lbl_Pad[i], 5 + static_cast<int>(i), 1);
    }
    auto* deinterlace = new QHBoxLayout;
    Chk_Deinterlace = new QCheckBox(tr("Deinterlace"), page);
    Chk_Deinterlace->setObjectName(QStringLiteral("Chk_Deinterlace"));
    Switch_Deinterlace = toolButton(page, QStringLiteral("Switch_Deinterlace"), QString(), tr("Deinterlace"));
    Switch_Deinterlace->setIconSize(QSize(36, 20));
    Switch_Deinterlace->setAutoRaise(true);
    deinterlace->addWidget(Switch_Deinterlace);
    deinterlace->addWidget(Chk_Deinterlace);
    deinterlace->addStretch(1);
    grid->addLayout(deinterlace, 9, 0, 1, 2);
    grid->setRowStretch(10, 1);
    Cmd_Reset[1] = pushButton(page, QStringLiteral("Cmd_Reset_1"), tr("Reset"));
    grid->addWidget(Cmd_Reset[1], 11, 1, Qt::AlignRight);
    return page;
}

QWidget* frmEditVideo::buildEffectTab() {
    auto* page = new QWidget;
    page->setObjectName(QStringLiteral("Pic_EffectCanves"));
    auto* rows = new QVBoxLayout(page);
    auto* grid = new QGridLayout;
    grid->setSpacing(2);
    const QStringList& captions = EffectButtonCaptions();
    for (std::size_t i = 0; i < Pic_EffectButton.size(); ++i) {
        auto* b = toolButton(page, QStringLiteral("Pic_EffectButton_%1").arg(i),
                             captions.value(static_cast<int>(i)));
        b->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
        b->setIconSize(QSize(64, 40));
        b->setFixedSize(104, 66);
        b->setCheckable(true);
        b->setAutoExclusive(true);
        Pic_EffectButton[i] = b;
        grid->addWidget(b, static_cast<int>(i) / 3, static_cast<int>(i) % 3);
    }
    rows->addLayout(grid);
    Cmb_Effects = new QComboBox(page);
    Cmb_Effects->setObjectName(QStringLiteral("Cmb_Effects"));
    Cmb_Effects->setToolTip(tr("All effects: a choice here replaces the list"));
    rows->addWidget(Cmb_Effects);
    EffectValues_GroupBox = new QGroupBox(page);
    EffectValues_GroupBox->setObjectName(QStringLiteral("EffectValues_GroupBox"));
    auto* values = new QGridLayout(EffectValues_GroupBox);
    for (std::size_t i = 0; i < EffectsPanel::kValueRows; ++i) {
        const int r = static_cast<int>(i);
        lbl_EffectValue[i] = new QLabel(EffectValues_GroupBox);
        lbl_EffectValue[i]->setMinimumWidth(34);
        EffectValues_Slider[i] = new Slider_Ctrl(EffectValues_GroupBox);
        EffectValues_Slider[i]->setObjectName(QStringLiteral("EffectValues_Slider_%1").arg(i));
        EffectValues_Slider[i]->setOrientation(0);
        EffectValues_Slider[i]->setFixedHeight(22);
        EffectValues_CheckBox[i] = new QCheckBox(EffectValues_GroupBox);
        EffectValues_ColorPicker[i] =
            toolButton(EffectValues_GroupBox, QStringLiteral("EffectValues_ColorPicker_%1").arg(i), QString(),
                       tr("Colour"));
        EffectValues_ColorPicker[i]->setFixedSize(36, 20);
        values->addWidget(EffectValues_Slider[i], r, 0);
        values->addWidget(lbl_EffectValue[i], r, 1);
        values->addWidget(EffectValues_CheckBox[i], r, 2);
        values->addWidget(EffectValues_ColorPicker[i], r, 3);
    }
    rows->addWidget(EffectValues_GroupBox);
    rows->addStretch(1);
    Cmd_Reset[3] = pushButton(page, QStringLiteral("Cmd_Reset_3"), tr("Reset"));
    rows->addWidget(Cmd_Reset[3], 0, Qt::AlignRight);
    return page;
}

QWidget* frmEditVideo::buildAdjustTab() {
    auto* page = new QWidget;
    page->setObjectName(QStringLiteral("Pic_AdjustCanves"));
    auto* grid = new QGridLayout(page);
    for (std::size_t i = 0; i < Slider_Adjust.size(); ++i) {
        const int r = static_cast<int>(i) * 2;
        grid->addWidget(new QLabel(tr(kAdjustCaptions[i]), page), r, 0);
        lbl_AdjustValue[i] = new QLabel(page);
        lbl_AdjustValue[i]->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        grid->addWidget(lbl_AdjustValue[i], r, 2);
        auto* s = new Slider_Ctrl(page);
        s->setObjectName(QStringLiteral("Slider_Adjust_%1").arg(i));
        s->setOrientation(0);
        s->setRailImage(QStringLiteral("img_sliderrail_1.jpg"));
        s->setSliderImage(QStringLiteral("img_sliderimage2.jpg"));
        s->setRange(EffectsPanel::AdjustMin(static_cast<int>(i)),
                    EffectsPanel::AdjustMax(static_cast<int>(i)));
        s->setValue(m_model.effects.Slider_Adjust[i]);
        s->setFixedHeight(24);
        Slider_Adjust[i] = s;
        grid->addWidget(s, r + 1, 0, 1, 3);
    }
    auto* flips = new QHBoxLayout;
    const char* const flipCaptions[] = {"Flip Vertical", "Flip Horizontal", "Rotate 180"};
    const char* const flipRoles[] = {"img_adjust_flipv", "img_adjust_fliph", "img_adjust_rotate"};
    for (std::size_t i = 0; i < Cmd_Adjust.size(); ++i) {
        Cmd_Adjust[i] = toolButton(page, QStringLiteral("Cmd_Adjust_%1").arg(i), tr(flipCaptions[i]));
        Cmd_Adjust[i]->setIcon(Skin_Icon(QString::fromLatin1(flipRoles[i])));
        Cmd_Adjust[i]->setIconSize(QSize(28, 28));
        Cmd_Adjust[i]->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
        Cmd_Adjust[i]->setCheckable(true); // shows whether the flip is on
        Cmd_Adjust[i]->setMinimumWidth(96);
        flips->addWidget(Cmd_Adjust[i]);
    }
    grid->addLayout(flips, 6, 0, 1, 3);
    grid->setRowStretch(7, 1);
    Cmd_ApplyToAll = pushButton(page, QStringLiteral("Cmd_ApplyToAll"), tr("Apply to All"));
    Cmd_Reset[2] = pushButton(page, QStringLiteral("Cmd_Reset_2"), tr("Reset"));
    grid->addWidget(Cmd_ApplyToAll, 8, 0);
    grid->addWidget(Cmd_Reset[2], 8, 2);
    return page;
}

QWidget* frmEditVideo::buildPlayerRow() {
    auto* row = new QWidget(this);
    auto* h = new QHBoxLayout(row);
    h->setContentsMargins(0, 0, 0, 0);
    const char* const tips[] = {"Play / Pause (Space)", "Stop", "Mute"};
    for (std::size_t i = 0; i < Cmd_Player.size(); ++i) {
        Cmd_Player[i] = toolButton(row, QStringLiteral("Cmd_Player_%1").arg(i), QString(), tr(tips[i]));
        Cmd_Player[i]->setIconSize(QSize(22, 22));
        Cmd_Player[i]->setAutoRaise(true);
    }
    Cmd_Player[1]->setIcon(Skin_Icon(QStringLiteral("img_player_stop")));
    h->addWidget(Cmd_Player[0]);
    h->addWidget(Cmd_Player[1]);
    lbl_PlayTime = new QLabel(QStringLiteral("00:00:00"), row);
    lbl_PlayTotal = new QLabel(QStringLiteral("00:00:00"), row);
    h->addWidget(lbl_PlayTime);
    h->addWidget(new QLabel(QStringLiteral("/"), row));
    h->addWidget(lbl_PlayTotal);
    h->addStretch(1);
    const char* const comboTips[] = {"Audio stream", "Subtitle stream"};
    for (std::size_t i = 0; i < Combo_AudioSubTitle.size(); ++i) {
        Combo_AudioSubTitle[i] = new QComboBox(row);
        Combo_AudioSubTitle[i]->setObjectName(QStringLiteral("Combo_AudioSubTitle_%1").arg(i));
        Combo_AudioSubTitle[i]->setToolTip(tr(comboTips[i]));
        h->addWidget(new QLabel(i == 0 ? tr("Audio") : tr("Subtitle"), row));
        h->addWidget(Combo_AudioSubTitle[i]);
    }
    h->addWidget(Cmd_Player[2]);
    Slider_MPVolume = new Slider_Ctrl(row);
    Slider_MPVolume->setObjectName(QStringLiteral("Slider_MPVolume"));
    Slider_MPVolume->setOrientation(0);
    Slider_MPVolume->setRailImage(QStringLiteral("img_silderrail_4.jpg"));
    Slider_MPVolume->setSliderImage(QStringLiteral("img_sliderimage1.jpg"));
    Slider_MPVolume->setRange(0, m_model.buttons.volumeMax);
    Slider_MPVolume->setValue(m_model.buttons.volumeMax);
    Slider_MPVolume->setFixedSize(90, 22);
    h->addWidget(Slider_MPVolume);
    return row;
}

void frmEditVideo::makeEffectPictures() {
    const QImage sample = Effect_SamplePicture(QSize(128, 80));
    const QStringList& captions = EffectButtonCaptions();
    for (std::size_t i = 0; i < Pic_EffectButton.size(); ++i) {
        const QString name = captions.value(static_cast<int>(i)).trimmed();
        const QString token = DefaultEffectToken(name, imaging::kReferenceWidth);
        const QImage picture = name == QLatin1String("None") || token.isEmpty()
                                   ? sample
                                   : Render_ThumbNail(sample, token + QLatin1Char(','));
        Pic_EffectButton[i]->setIcon(QPixmap::fromImage(picture));
    }
}

void frmEditVideo::setupConnections() {
    EditVideo& m = m_model;
    for (std::size_t i = 0; i < Cmd_Tab.size(); ++i)
        connect(Cmd_Tab[i], &QToolButton::clicked, this, [&m, i] { m.Cmd_Tab_Click(static_cast<int>(i)); });
    connect(Cmd_Panels[0], &QPushButton::clicked, this, [&m] { m.Cmd_Panels_Click(0); });
    connect(Cmd_Panels[1], &QPushButton::clicked, this, [&m] { m.Cmd_Panels_Click(1); });
    for (std::size_t i = 0; i < Cmd_Reset.size(); ++i)
        connect(Cmd_Reset[i], &QPushButton::clicked, this,
                [&m, i] { m.Cmd_Reset_Click(static_cast<int>(i)); });
    for (std::size_t i = 0; i < Cmd_Player.size(); ++i)
        connect(Cmd_Player[i], &QToolButton::clicked, this,
                [&m, i] { m.Cmd_Player_Click(static_cast<int>(i)); });
    connect(Slider_MPVolume, &Slider_Ctrl::Change, this,
            [this] { m_model.Slider_MPVolume_Change(Slider_MPVolume->Value()); });
    for (std::size_t i = 0; i < Combo_AudioSubTitle.size(); ++i)
        connect(Combo_AudioSubTitle[i], &QComboBox::activated, this, [this, i] {
            m_model.Combo_AudioSubTitle_Click(static_cast<int>(i), Combo_AudioSubTitle[i]->currentText());
        });

    // Trim.
    for (std::size_t i = 0; i < Cmd_Trim.size(); ++i)
        connect(Cmd_Trim[i], &QPushButton::clicked, this, [this, i] {
            m_model.trim.Cmd_Trim_Click(static_cast<int>(i));
            showModel();
        });
    for (int i = 0; i < 2; ++i) {
        connect(Cmd_TrimStartTime[static_cast<std::size_t>(i)], &QToolButton::clicked, this, [this, i] {
            m_model.trim.Cmd_TrimStartTime_Click(i);
            showModel();
        });
        connect(Cmd_TrimEndTime[static_cast<std::size_t>(i)], &QToolButton::clicked, this, [this, i] {
            m_model.trim.Cmd_TrimEndTime_Click(i);
            showModel();
        });
    }

    // Crop.
    for (std::size_t i = 0; i < Cmd_AspectRatio.size(); ++i)
        connect(Cmd_AspectRatio[i], &QToolButton::clicked, this,
                [&m, i] { m.Cmd_AspectRatio_Click(static_cast<int>(i)); });
    connect(Chk_Deinterlace, &QCheckBox::clicked, this,
            [this](bool on) { m_model.Chk_Deinterlace_Click(on ? 1 : 0); });
    connect(Switch_Deinterlace, &QToolButton::clicked, this,
            [this] { m_model.Chk_Deinterlace_Click(m_model.Chk_Deinterlace == 1 ? 0 : 1); });

    // Effects.
    for (std::size_t i = 0; i < Pic_EffectButton.size(); ++i)
        connect(Pic_EffectButton[i], &QToolButton::clicked, this, [this, i] {
            m_model.effects.EffectButton_Click(static_cast<int>(i));
            showModel();
        });
    connect(Cmb_Effects, &QComboBox::activated, this, [this] {
        m_model.effects.Cmb_Effects_Click(Cmb_Effects->currentText(), imaging::kReferenceWidth);
        showModel();
    });
    for (std::size_t i = 0; i < EffectsPanel::kValueRows; ++i) {
        const int r = static_cast<int>(i);
        connect(EffectValues_Slider[i], &Slider_Ctrl::Change, this, [this, r, i] {
            m_model.effects.SetEffectSlider(r, EffectValues_Slider[i]->Value());
            showModel();
        });
        connect(EffectValues_CheckBox[i], &QCheckBox::clicked, this, [this, r](bool on) {
            m_model.effects.SetEffectCheckBox(r, on ? 1 : 0);
            showModel();
        });
        connect(EffectValues_ColorPicker[i], &QToolButton::clicked, this, [this, r] { pickColour(r); });
    }

    // Adjust.
    for (std::size_t i = 0; i < Slider_Adjust.size(); ++i)
        connect(Slider_Adjust[i], &Slider_Ctrl::Change, this, [this, i] {
            m_model.effects.SetAdjust(static_cast<int>(i), Slider_Adjust[i]->Value());
            showModel();
        });
    for (std::size_t i = 0; i < Cmd_Adjust.size(); ++i)
        connect(Cmd_Adjust[i], &QToolButton::clicked, this, [this, i] {
            m_model.effects.Cmd_Adjust_Click(static_cast<int>(i));
            showModel();
        });
    connect(Cmd_ApplyToAll, &QPushButton::clicked, this, [&m] { m.Cmd_ApplyToAll_Click(); });

    const std::pair<QTimer*, int> timers[] = {{&Timer_WaitToPlay, 100},
                                              {&Timer_GetPreview, 33},
                                              {&Timer_GetCropInfo, 200},
                                              {&Timer_PlaySelected, 50}};
    for (auto [timer, interval] : timers)
        timer->setInterval(interval);
    connect(&Timer_WaitToPlay, &QTimer::timeout, this, [this] { m_model.Timer_WaitToPlay_Tick(); });
    connect(&Timer_GetPreview, &QTimer::timeout, this, [this] { m_model.Timer_GetPreview_Tick(); });
    connect(&Timer_GetCropInfo, &QTimer::timeout, this, [this] {
        m_model.Timer_GetCropInfo_Tick();
        showModel();
    });
    connect(&Timer_PlaySelected, &QTimer::timeout, this, [this] {
        m_model.trim.Timer_PlaySelected_Tick();
        showModel();
    });
}

void frmEditVideo::pickColour(int row) {
    const auto u = static_cast<std::size_t>(row);
    const QColor chosen =
        QColorDialog::getColor(Rgb_Colour(m_model.effects.EffectValues_ColorPicker[u].Color), this);
    if (!chosen.isValid()) return;
    m_model.effects.SetEffectColor(row, chosen.red() + 256 * chosen.green() + 65536 * chosen.blue());
    showModel();
}

void frmEditVideo::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!m_activated) {
        m_activated = true;
        m_model.Form_Activate();
    }
    showModel();
}

void frmEditVideo::closeEvent(QCloseEvent* event) {
    if (!m_closing) {
        m_closing = true;
        m_model.Form_QueryUnload();
    }
    QDialog::closeEvent(event);
}

void frmEditVideo::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space) {
        m_model.Cmd_Player_Click(0);
        return;
    }
    if (event->key() == Qt::Key_Escape) {
        close(); // asks to save a change, as the window's close does
        return;
    }
    QDialog::keyPressEvent(event);
}

void frmEditVideo::syncTimers() {
    Sync_Timers({{&Timer_WaitToPlay, m_model.timers.WaitToPlay},
                 {&Timer_GetPreview, m_model.timers.GetPreview},
                 {&Timer_GetCropInfo, m_model.timers.GetCropInfo},
                 {&Timer_PlaySelected, m_model.trim.Timer_PlaySelected}},
                isVisible());
}

void frmEditVideo::showModel() {
    const EditVideo& m = m_model;
    const int tab = m.CurrentTab;
    for (std::size_t i = 0; i < Cmd_Tab.size(); ++i) {
        const bool on = static_cast<int>(i) == tab;
        Cmd_Tab[i]->setChecked(on);
        Cmd_Tab[i]->setIcon(Skin_Icon(
            QStringLiteral("img_%1_%2")
                .arg(QLatin1String(kTabRoles[i]), on ? QStringLiteral("selected") : QStringLiteral("gray"))));
    }
    m_tabs->setCurrentIndex(tab);

    // Player row.
    const PlayerButtons& b = m.buttons;
    Cmd_Player[0]->setIcon(Skin_Icon(b.playImage));
    Cmd_Player[0]->setProperty("tag", b.playTag);
    Cmd_Player[1]->setEnabled(m.playControlsEnabled);
    Cmd_Player[2]->setIcon(Skin_Icon(b.muteImage));
    Cmd_Player[2]->setProperty("tag", b.muteTag);
    if (Slider_MPVolume->Value() != b.volume) Slider_MPVolume->setValue(b.volume);
    m_trimBar->setEnabled(m.playControlsEnabled);

    // Trim.
    const TrimBar& t = m.trim;
    Txt_TrimStartTime->setText(t.Txt_TrimStartTime.isEmpty() ? QStringLiteral("00:00:00")
                                                             : t.Txt_TrimStartTime);
    Txt_TrimEndTime->setText(t.Txt_TrimEndTime.isEmpty() ? QStringLiteral("00:00:00") : t.Txt_TrimEndTime);
    lbl_SelectedTime->setText(t.lbl_SelectedTime);
    for (int i : {0, 1})
        Cmd_Trim[static_cast<std::size_t>(i)]->setEnabled(m.playControlsEnabled);

    // Crop.
    const CropFrame& c = m.crop;
    for (std::size_t i = 0; i < Cmd_AspectRatio.size(); ++i)
        Cmd_AspectRatio[i]->setChecked(c.AspectButtonColour[i] == CropFrame::kHighlightColour);
    Txt_CropOriginalSize->setText(m.Txt_CropOriginalSize);
    const CropInfo& info = m.cropInfo;
    Txt_CropSize->setText(info.Txt_CropSize);
    const QString crops[] = {info.lbl_Top, info.lbl_Buttom, info.lbl_Left, info.lbl_Right};
    const QString pads[] = {info.lbl_PadTop, info.lbl_PadButtom, info.lbl_PadLeft, info.lbl_PadRight};
    for (std::size_t i = 0; i < lbl_Crop.size(); ++i) {
        lbl_Crop[i]->setText(crops[i]);
        lbl_Pad[i]->setText(pads[i]);
    }
    Chk_Deinterlace->setChecked(m.Chk_Deinterlace == 1);
    Switch_Deinterlace->setIcon(Skin_Icon(m.Switch_DeinterlaceImage));

    // Effects.
    const EffectsPanel& e = m.effects;
    const int selected = e.SelectedButton();
    for (std::size_t i = 0; i < Pic_EffectButton.size(); ++i)
        Pic_EffectButton[i]->setChecked(static_cast<int>(i) == selected);
    EffectValues_GroupBox->setTitle(e.EffectValues_GroupBox_Caption);
    bool anyValue = false;
    for (std::size_t i = 0; i < EffectsPanel::kValueRows; ++i) {
        const EffectsPanel::Slider& s = e.EffectValues_Slider[i];
        Slider_Ctrl* slider = EffectValues_Slider[i];
        if (s.Visible) {
            const QSignalBlocker block(slider);
            slider->setRange(s.Min, std::max(s.Min, s.Max));
            slider->setValue(std::clamp(s.Value, s.Min, std::max(s.Min, s.Max)));
        }
        slider->setVisible(s.Visible);
        lbl_EffectValue[i]->setVisible(s.Visible && (i != 0 || e.lbl_EffectValue0_Visible));
        lbl_EffectValue[i]->setText(e.lbl_EffectValue[i]);
        EffectValues_CheckBox[i]->setVisible(e.EffectValues_CheckBox[i].Visible);
        EffectValues_CheckBox[i]->setChecked(e.EffectValues_CheckBox[i].Value == 1);
        EffectValues_ColorPicker[i]->setVisible(e.EffectValues_ColorPicker[i].Visible);
        // A style sheet set again restyles the button even when it is the same: only on a change.
        const QString swatch =
            QStringLiteral("background: %1;").arg(Rgb_Colour(e.EffectValues_ColorPicker[i].Color).name());
        if (EffectValues_ColorPicker[i]->styleSheet() != swatch)
            EffectValues_ColorPicker[i]->setStyleSheet(swatch);
        anyValue = anyValue || s.Visible || e.EffectValues_CheckBox[i].Visible ||
                   e.EffectValues_ColorPicker[i].Visible;
    }
    EffectValues_GroupBox->setVisible(anyValue);

    // Adjust.
    for (std::size_t i = 0; i < Slider_Adjust.size(); ++i) {
        if (Slider_Adjust[i]->Value() != e.Slider_Adjust[i]) {
            const QSignalBlocker block(Slider_Adjust[i]);
            Slider_Adjust[i]->setValue(e.Slider_Adjust[i]);
        }
        lbl_AdjustValue[i]->setText(e.lbl_AdjustValue[i]);
    }
    for (std::size_t i = 0; i < Cmd_Adjust.size(); ++i)
        Cmd_Adjust[i]->setChecked(hasToken(e.Txt_EffectsStr, QString::fromLatin1(kFlipWords[i])));

    showPicture();
    syncTimers();
}

void frmEditVideo::showPicture() {
    const EditVideo& m = m_model;
    lbl_PlayTime->setText(m.trim.lbl_PlayTime);
    lbl_PlayTotal->setText(m.panel.lbl_PlayTotal);
    m_trimBar->update();
    if (m.CurrentTab == 1) {
        const QImage& output = m.Pic_Preview[1];
        Pic_CropOutput->setPixmap(
            output.isNull() ? QPixmap()
                            : QPixmap::fromImage(output.scaled(Pic_CropOutput->size(), Qt::KeepAspectRatio,
                                                               Qt::SmoothTransformation)));
    }
    m_preview->update();
}

} // namespace morvane
