#include "OutputBrowserView.h"

#include "Group_Pictures.h"
#include "Registry_Mod.h"
#include "Skin_Icons.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWheelEvent>

namespace morvane {

namespace {

constexpr int kButtonHeight = 92;
constexpr int kPictureSize = 44;
const char* const kPanelCaptions[] = {"Video Formats", "Devices", "Audio Formats", "Web Formats",
                                      "Favorites"};

QPushButton* makeIconButton(const QString& name, const QString& role, const QString& tip) {
    auto* b = new QPushButton;
    b->setObjectName(name);
    b->setIcon(Skin_Icon(role));
    b->setIconSize(QSize(20, 20));
    b->setToolTip(tip);
    b->setFixedSize(36, 32);
    return b;
}

// Captions that do not fit on one line break at the blank nearest the middle.
QString fittedCaption(const QString& caption, const QFont& font) {
    const QFontMetrics metrics(font);
    if (metrics.horizontalAdvance(caption) <= OutputBrowser::ButtonWidth - 10) return caption;
    const qsizetype middle = caption.size() / 2;
    qsizetype best = -1;
    for (qsizetype i = 0; i < caption.size(); ++i)
        if (caption.at(i) == QLatin1Char(' ') && (best < 0 || qAbs(i - middle) < qAbs(best - middle)))
            best = i;
    if (best < 0) return caption;
    QString wrapped = caption;
    wrapped[best] = QLatin1Char('\n');
    return wrapped;
}

} // namespace

OutputBrowserView::OutputBrowserView(OutputBrowser& browser, Catalogue& catalogue, FormatSetting& settings,
                                     QWidget* parent)
    : QWidget(parent), m_browser(browser), m_catalogue(catalogue), m_settings(settings) {
    setObjectName(QStringLiteral("Pic_Output"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(buildPanelBar());
    auto* body = new QWidget;
    body->setObjectName(QStringLiteral("PicPanel_OutputFormat"));
    body->setAttribute(Qt::WA_StyledBackground); // the theme draws the panel's ground
    auto* bodyColumn = new QVBoxLayout(body);
    bodyColumn->setContentsMargins(10, 8, 10, 10);
    bodyColumn->setSpacing(8);
    bodyColumn->addWidget(buildStrips());
    bodyColumn->addWidget(buildPresetRow());
    column->addWidget(body);
}

QWidget* OutputBrowserView::buildPanelBar() {
    auto* bar = new QWidget;
    bar->setObjectName(QStringLiteral("Pic_PanelBar"));
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(2);
    m_panelGroup = new QButtonGroup(this);
    m_panelGroup->setExclusive(true);
    for (int i = 0; i < 5; ++i) {
        auto* b = new QPushButton(QString::fromLatin1(kPanelCaptions[i]));
        b->setObjectName(QStringLiteral("Cmd_PanelOutput_%1").arg(i));
        b->setProperty("panelTab", true);
        b->setCheckable(true);
        b->setMinimumHeight(32);
        b->setCursor(Qt::PointingHandCursor);
        if (i == Panel_Favorites) b->setIcon(Skin_Icon(QStringLiteral("img_favorite_on")));
        m_panelGroup->addButton(b, i);
        row->addWidget(b, 1);
        Cmd_PanelOutput.at(static_cast<size_t>(i)) = b;
        connect(b, &QPushButton::clicked, this, [this, i] { pressPanel(i); });
    }
    return bar;
}

QWidget* OutputBrowserView::buildStrips() {
    m_stack = new QStackedWidget;
    m_stack->setFixedHeight(kButtonHeight + 18);
    for (int panel = 0; panel < 5; ++panel) {
        auto* area = new QScrollArea;
        area->setObjectName(QStringLiteral("Resizer_%1").arg(panel));
        area->setFrameShape(QFrame::NoFrame);
        area->setWidgetResizable(true);
        area->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
        area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        auto* holder = new QWidget;
        holder->setObjectName(QStringLiteral("StripHolder"));
        auto* row = new QHBoxLayout(holder);
        row->setContentsMargins(0, 0, 0, 0);
        row->setSpacing(0); // buttons stand edge to edge, as the scroll rule counts them
        row->addStretch(1);
        area->setWidget(holder);
        area->viewport()->installEventFilter(this);
        connect(area->horizontalScrollBar(), &QScrollBar::valueChanged, this, [this, panel](int value) {
            if (!m_redrawing) m_browser.strips.at(static_cast<size_t>(panel)).offset = -value;
        });
        m_strips.at(static_cast<size_t>(panel)) = area;

        QWidget* page = area;
        if (panel == Panel_Devices) {
            page = new QWidget;
            auto* pageRow = new QHBoxLayout(page);
            pageRow->setContentsMargins(0, 0, 0, 0);
            pageRow->setSpacing(10);
            auto* makerColumn = new QVBoxLayout;
            auto* makerTitle = new QLabel(QStringLiteral("Maker"));
            makerTitle->setObjectName(QStringLiteral("lbl_MakerTitle"));
            ListBox_MakerNames = new QComboBox;
            ListBox_MakerNames->setObjectName(QStringLiteral("ListBox_MakerNames"));
            ListBox_MakerNames->setMinimumWidth(130);
            for (const ValueListItem& maker : m_browser.ListBox_MakerNames.items())
                ListBox_MakerNames->addItem(maker.text);
            connect(ListBox_MakerNames, &QComboBox::activated, this, &OutputBrowserView::chooseMaker);
            makerColumn->addStretch(1);
            makerColumn->addWidget(makerTitle);
            makerColumn->addWidget(ListBox_MakerNames);
            makerColumn->addStretch(1);
            pageRow->addLayout(makerColumn);
            pageRow->addWidget(area, 1);
        } else if (panel == Panel_Favorites) {
            page = new QWidget;
            auto* pageRow = new QHBoxLayout(page);
            pageRow->setContentsMargins(0, 0, 0, 0);
            Pic_FavMsg = new QLabel;
            Pic_FavMsg->setObjectName(QStringLiteral("Pic_FavMsg"));
            Pic_FavMsg->setAlignment(Qt::AlignCenter);
            Pic_FavMsg->setWordWrap(true);
            Pic_FavMsg->setTextFormat(Qt::RichText);
            pageRow->addWidget(Pic_FavMsg, 1);
            pageRow->addWidget(area, 1);
            m_favoritesStrip = area;
        }
        m_stack->addWidget(page);
    }
    reloadTheme();
    return m_stack;
}

QWidget* OutputBrowserView::buildPresetRow() {
    auto* rowWidget = new QWidget;
    auto* row = new QHBoxLayout(rowWidget);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    lbl_PresetTitle = new QLabel(QStringLiteral("Preset:"));
    lbl_PresetTitle->setObjectName(QStringLiteral("lbl_PresetTitle"));
    QFont bold = lbl_PresetTitle->font();
    bold.setBold(true);
    lbl_PresetTitle->setFont(bold);
    row->addWidget(lbl_PresetTitle);

    Cmd_OutputPreset = new QComboBox;
    Cmd_OutputPreset->setObjectName(QStringLiteral("Cmd_OutputPreset"));
    Cmd_OutputPreset->setMinimumWidth(340);
    Cmd_OutputPreset->setMaxVisibleItems(20);
    connect(Cmd_OutputPreset, &QComboBox::activated, this, &OutputBrowserView::choosePreset);
    row->addWidget(Cmd_OutputPreset, 2);

    m_favoriteButton =
        makeIconButton(QStringLiteral("Cmd_FileListView_10"), QStringLiteral("img_favorite_off"),
                       QStringLiteral("Add to favorites tab"));
    m_settingsButton = makeIconButton(QStringLiteral("Cmd_FileListView_6"), QStringLiteral("img_setting"),
                                      QStringLiteral("Preset settings"));
    m_searchButton = makeIconButton(QStringLiteral("Cmd_FileListView_12"),
                                    QStringLiteral("img_search_format"), QStringLiteral("Search presets"));
    row->addWidget(m_favoriteButton);
    row->addWidget(m_settingsButton);
    row->addWidget(m_searchButton);

    lbl_PresetSummary = new QLabel;
    lbl_PresetSummary->setObjectName(QStringLiteral("lbl_PresetSummary"));
    lbl_PresetSummary->setForegroundRole(QPalette::PlaceholderText);
    row->addWidget(lbl_PresetSummary, 1);
    // An empty favorites panel hides the row; its place is kept, so that the window does not jump.
    for (QWidget* w : {static_cast<QWidget*>(lbl_PresetTitle), static_cast<QWidget*>(Cmd_OutputPreset),
                       static_cast<QWidget*>(lbl_PresetSummary), static_cast<QWidget*>(m_favoriteButton),
                       static_cast<QWidget*>(m_settingsButton), static_cast<QWidget*>(m_searchButton)}) {
        QSizePolicy policy = w->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        w->setSizePolicy(policy);
    }
    return rowWidget;
}

QToolButton* OutputBrowserView::groupButton(int panel, int button) const {
    const QList<QToolButton*>& list = m_buttons.at(static_cast<size_t>(panel));
    return button >= 0 && button < list.size() ? list.at(button) : nullptr;
}

int OutputBrowserView::groupButtonCount(int panel) const {
    return static_cast<int>(m_buttons.at(static_cast<size_t>(panel)).size());
}

void OutputBrowserView::rebuildStrip(int panel) {
    QScrollArea* area = m_strips.at(static_cast<size_t>(panel));
    auto* row = static_cast<QHBoxLayout*>(area->widget()->layout());
    QList<QToolButton*>& list = m_buttons.at(static_cast<size_t>(panel));
    qDeleteAll(list);
    list.clear();
    const ButtonStrip& strip = m_browser.strips.at(static_cast<size_t>(panel));
    QStringList built;
    for (qsizetype i = 0; i < strip.buttons.size(); ++i) {
        const StripButton& model = strip.buttons.at(i);
        auto* b = new QToolButton;
        b->setObjectName(QStringLiteral("GroupButton"));
        b->setCheckable(true);
        b->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
        b->setFixedSize(OutputBrowser::ButtonWidth, kButtonHeight);
        b->setIconSize(QSize(kPictureSize, kPictureSize));
        b->setCursor(Qt::PointingHandCursor);
        QFont font = b->font();
        font.setPointSize(model.fontSize);
        b->setFont(font);
        b->setText(fittedCaption(model.caption, font));
        b->setToolTip(model.caption);
        b->setIcon(QIcon(Group_Picture(model.picture, QSize(kPictureSize, kPictureSize))));
        const int index = static_cast<int>(i);
        connect(b, &QToolButton::clicked, this, [this, panel, index] { pressGroup(panel, index); });
        row->insertWidget(static_cast<int>(i), b);
        list.append(b);
        built << model.caption + QLatin1Char('|') + model.picture;
    }
    m_builtGroups.at(static_cast<size_t>(panel)) = built;
}

void OutputBrowserView::redrawStrip(int panel) {
    const ButtonStrip& strip = m_browser.strips.at(static_cast<size_t>(panel));
    QStringList groups;
    for (const StripButton& b : strip.buttons)
        groups << b.caption + QLatin1Char('|') + b.picture;
    if (groups != m_builtGroups.at(static_cast<size_t>(panel))) rebuildStrip(panel);
    const QList<QToolButton*>& list = m_buttons.at(static_cast<size_t>(panel));
    for (qsizetype i = 0; i < list.size() && i < strip.buttons.size(); ++i) {
        list.at(i)->setChecked(strip.buttons.at(i).checked);
        list.at(i)->setEnabled(m_groupEnabled);
    }
    QScrollArea* area = m_strips.at(static_cast<size_t>(panel));
    area->widget()->adjustSize();
    area->horizontalScrollBar()->setValue(-strip.offset);
}

void OutputBrowserView::redraw() {
    m_redrawing = true;
    const int active = m_browser.PanelActive;
    for (int i = 0; i < 5; ++i)
        Cmd_PanelOutput.at(static_cast<size_t>(i))->setChecked(i == active);
    m_stack->setCurrentIndex(active);
    m_browser.stripVisibleWidth = m_strips.at(static_cast<size_t>(active))->viewport()->width();
    for (int panel = 0; panel < 5; ++panel)
        redrawStrip(panel);

    const int maker = static_cast<int>(m_browser.ListBox_MakerNames.selectedIndex());
    if (maker >= 0) ListBox_MakerNames->setCurrentIndex(maker);

    const bool favoritesEmpty = m_browser.favoritesMessageVisible;
    Pic_FavMsg->setVisible(favoritesEmpty);
    m_favoritesStrip->setVisible(!favoritesEmpty);

    const ValueList& presets = m_catalogue.Cmd_OutputPreset;
    Cmd_OutputPreset->clear();
    for (const ValueListItem& item : presets.items())
        Cmd_OutputPreset->addItem(item.text, item.data);
    Cmd_OutputPreset->setCurrentIndex(static_cast<int>(presets.selectedIndex()));
    Cmd_OutputPreset->setEnabled(m_groupEnabled);

    const bool listVisible = m_browser.presetListVisible;
    for (QWidget* w : {static_cast<QWidget*>(lbl_PresetTitle), static_cast<QWidget*>(Cmd_OutputPreset),
                       static_cast<QWidget*>(lbl_PresetSummary), static_cast<QWidget*>(m_favoriteButton),
                       static_cast<QWidget*>(m_settingsButton), static_cast<QWidget*>(m_searchButton)})
        w->setVisible(listVisible);

    m_favoriteButton->setIcon(Skin_Icon(m_settings.favoriteInTable ? QStringLiteral("img_favorite_on")
                                                                   : QStringLiteral("img_favorite_off")));
    m_favoriteButton->setToolTip(m_settings.favoriteToolTip);

    QStringList parts;
    for (int list : {List_Extension, List_VideoCodec, List_FrameSize, List_AudioCodec}) {
        const QString text =
            m_settings.Combo_OutputFile.at(static_cast<size_t>(list)).selectedText().trimmed();
        if (!text.isEmpty() && text != QLatin1String("-")) parts << text;
    }
    lbl_PresetSummary->setText(parts.join(QStringLiteral("  ·  ")));
    m_redrawing = false;
}

void OutputBrowserView::reloadTheme() {
    const bool dark = Theme_No != 1;
    Pic_FavMsg->setText(
        QStringLiteral("<span style='font-size:15pt; color:%1'>&#9733;</span><br>"
                       "No favorites yet. Pick a preset in another tab and press the star beside the preset "
                       "list to keep it here.")
            .arg(dark ? QStringLiteral("#f5c242") : QStringLiteral("#e0a800")));
    for (int panel = 0; panel < 5; ++panel) {
        const ButtonStrip& strip = m_browser.strips.at(static_cast<size_t>(panel));
        const QList<QToolButton*>& list = m_buttons.at(static_cast<size_t>(panel));
        for (qsizetype i = 0; i < list.size() && i < strip.buttons.size(); ++i)
            list.at(i)->setIcon(
                QIcon(Group_Picture(strip.buttons.at(i).picture, QSize(kPictureSize, kPictureSize))));
    }
    if (m_favoriteButton) {
        Cmd_PanelOutput.at(Panel_Favorites)->setIcon(Skin_Icon(QStringLiteral("img_favorite_on")));
        m_settingsButton->setIcon(Skin_Icon(QStringLiteral("img_setting")));
        m_searchButton->setIcon(Skin_Icon(QStringLiteral("img_search_format")));
        m_favoriteButton->setIcon(Skin_Icon(m_settings.favoriteInTable ? QStringLiteral("img_favorite_on")
                                                                       : QStringLiteral("img_favorite_off")));
    }
}

void OutputBrowserView::setGroupEnabled(bool on) {
    m_groupEnabled = on;
    m_catalogue.Cmd_OutputPreset.enabled = on; // the model's lock: no panel opens while a job runs
    for (const QList<QToolButton*>& list : m_buttons)
        for (QToolButton* b : list)
            b->setEnabled(on);
    Cmd_OutputPreset->setEnabled(on);
}

void OutputBrowserView::setMakerEnabled(bool on) {
    m_browser.ListBox_MakerNames.enabled = on;
    ListBox_MakerNames->setEnabled(on);
}

void OutputBrowserView::pressPanel(int panel) {
    if (panel < 0 || panel > 4) return;
    // Locked while a conversion runs: the bar keeps showing the open panel.
    if (m_catalogue.Cmd_OutputPreset.enabled) {
        m_browser.stripVisibleWidth = m_strips.at(static_cast<size_t>(panel))->viewport()->width();
        m_browser.Panel_Show(panel);
    }
    afterAction();
}

void OutputBrowserView::pressGroup(int panel, int button) {
    if (!m_groupEnabled) return;
    m_browser.Group_Open(panel, button);
    afterAction();
}

void OutputBrowserView::chooseMaker(int index) {
    if (!m_browser.ListBox_MakerNames.enabled) return;
    if (index == m_browser.ListBox_MakerNames.selectedIndex() && index == m_browser.MakerIndex) return;
    m_browser.makerChanged(index);
    afterAction();
}

void OutputBrowserView::choosePreset(int index) {
    if (!m_groupEnabled) return;
    m_browser.presetChanged(index);
    afterAction();
}

void OutputBrowserView::afterAction() {
    redraw();
    emit browserChanged();
}

void OutputBrowserView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (m_stack) {
        const int active = m_browser.PanelActive;
        m_browser.stripVisibleWidth = m_strips.at(static_cast<size_t>(active))->viewport()->width();
    }
}

// A mouse wheel over a strip scrolls it sideways.
bool OutputBrowserView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Wheel) {
        for (QScrollArea* area : m_strips) {
            if (area->viewport() != watched) continue;
            auto* wheel = static_cast<QWheelEvent*>(event);
            const int delta =
                wheel->angleDelta().y() != 0 ? wheel->angleDelta().y() : wheel->angleDelta().x();
            QScrollBar* bar = area->horizontalScrollBar();
            bar->setValue(bar->value() - delta);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace morvane
