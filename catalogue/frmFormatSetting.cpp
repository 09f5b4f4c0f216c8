#include "frmFormatSetting.h"

#include "Registry_Mod.h"
#include "Skin_Icons.h"
#include "frmNewPreset.h"

#include <QAction>
#include <QButtonGroup>
#include <QComboBox>
#include <QFocusEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QTableWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace morvane {

// The spinner beside a number box: an up and a down arrow, repeating while held.
class UpDownControl : public QWidget {
public:
    UpDownControl(const QString& name, QWidget* parent) : QWidget(parent) {
        setObjectName(name);
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(0);
        for (const auto& [arrow, role] : {std::pair{Qt::UpArrow, "Up"}, std::pair{Qt::DownArrow, "Down"}}) {
            auto* button = new QToolButton(this);
            button->setObjectName(QLatin1String(role));
            button->setArrowType(arrow);
            button->setAutoRepeat(true);
            button->setFixedSize(18, 11);
            layout->addWidget(button);
            connect(button, &QToolButton::clicked, this, [this, arrow] {
                if (pressed) pressed(arrow == Qt::UpArrow ? 1 : -1);
            });
        }
    }
    std::function<void(int step)> pressed;
};

namespace {

// A number box: takes digits only, reports leaving, and lets the arrow keys work its spinner.
class NumberBox : public QLineEdit {
public:
    using QLineEdit::QLineEdit;
    std::function<void()> left;
    std::function<void(int step)> stepped;

protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (stepped && (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down)) {
            stepped(event->key() == Qt::Key_Up ? 1 : -1);
            return;
        }
        const QString typed = event->text();
        if (!typed.isEmpty() && typed.at(0).isPrint() && !typed.at(0).isDigit()) return;
        QLineEdit::keyPressEvent(event);
    }
    void focusOutEvent(QFocusEvent* event) override {
        QLineEdit::focusOutEvent(event);
        if (left) left();
    }
};

const std::array<const char*, 12> kListCaptions = {
    "Video Codec:",   "Frame Size:", "Frame Rate:",  "File Extension:", "Audio Codec:",   "Sample Rate:",
    "Audio Bitrate:", "Channels:",   "Sample Size:", "Aspect Ratio:",   "Video Bitrate:", "Quality:"};

// User presets stand out from the built-in ones in a colour that reads on the theme's ground.
QColor userRowColour() {
    return Theme_No == 1 ? QColor(0x1a, 0x5f, 0xb4) : QColor(0x78, 0xb4, 0xf0);
}

bool sameItems(const QComboBox* combo, const ValueList& list) {
    if (combo->count() != list.count()) return false;
    for (int i = 0; i < combo->count(); ++i) {
        const ValueListItem& item = list.items().at(i);
        if (combo->itemText(i) != item.text || combo->itemData(i).toString() != item.data) return false;
    }
    return true;
}

} // namespace

frmFormatSetting::frmFormatSetting(Catalogue& catalogue, FormatSetting& settings, QWidget* parent)
    : QDialog(parent), m_catalogue(catalogue), m_settings(settings) {
    setObjectName(QStringLiteral("frmFormatSetting"));
    setModal(true);
    buildControls();
    setupConnections();
    if (!m_settings.askPresetName) {
        m_settings.askPresetName = [this](const QString& title, const QString& label) {
            return frmNewPreset::Ask(this, title, label);
        };
        m_askInstalled = true;
    }
    redraw();
}

frmFormatSetting::~frmFormatSetting() {
    m_closing = true;
    if (m_askInstalled) m_settings.askPresetName = nullptr;
    // The controls go while this window is still whole, so that whatever they signal on the way
    // (a box losing the focus) finds the guard above rather than a half-destroyed window.
    while (!children().isEmpty())
        delete children().constFirst();
}

// ---- Building

void frmFormatSetting::buildControls() {
    auto* columns = new QHBoxLayout;
    columns->addWidget(buildVideoBox(), 1);
    columns->addWidget(buildAudioBox(), 1);

    auto* extension = new QHBoxLayout;
    extension->addWidget(m_listTitles[List_Extension] = new QLabel(this));
    extension->addWidget(makeList(List_Extension), 1);
    extension->addStretch(1);

    auto* values = new QVBoxLayout;
    values->addLayout(columns);
    values->addLayout(extension);
    values->addStretch(1);

    auto* top = new QHBoxLayout;
    top->addWidget(buildPresetBox(), 0);
    top->addLayout(values, 1);

    m_keep = new QPushButton(QStringLiteral("OK"), this);
    m_keep->setObjectName(QStringLiteral("Cmd_Panel_1"));
    m_close = new QPushButton(QStringLiteral("Cancel"), this);
    m_close->setObjectName(QStringLiteral("Cmd_Panel_0"));
    auto* panel = new QHBoxLayout;
    panel->addStretch(1);
    panel->addWidget(m_keep);
    panel->addWidget(m_close);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addLayout(panel);

    for (size_t i = 0; i < m_listTitles.size(); ++i) {
        m_listTitles[i]->setText(QLatin1String(kListCaptions[i]));
        m_listTitles[i]->setObjectName(QStringLiteral("lbl_OutputFileTitle_%1").arg(i));
    }
    // Enter in a box must not close the window through a default button.
    for (QPushButton* button : findChildren<QPushButton*>()) {
        button->setAutoDefault(false);
        button->setDefault(false);
    }
}

QWidget* frmFormatSetting::buildVideoBox() {
    auto* box = new QGroupBox(QStringLiteral("Video"), this);
    auto* grid = new QGridLayout(box);
    int line = 0;
    const auto addList = [&](int list) {
        grid->addWidget(m_listTitles.at(static_cast<size_t>(list)) = new QLabel(box), line, 0);
        grid->addWidget(makeList(list), line++, 1);
    };
    const auto addNumbers = [&](QLayout* numbers) {
        auto* holder = new QHBoxLayout;
        holder->addLayout(numbers);
        holder->addStretch(1);
        grid->addLayout(holder, line++, 1);
    };

    addList(List_VideoCodec);
    addList(List_FrameSize);
    m_width = makeNumberField(m_settings.Txt_OutputVideoWidth, QStringLiteral("OutputVideoWidth"), {});
    m_height = makeNumberField(m_settings.Txt_OutputVideoHeight, QStringLiteral("OutputVideoHeight"),
                               QStringLiteral("x"));
    m_height.label->setObjectName(QStringLiteral("lbl_OutputVideoSize"));
    auto* size = new QHBoxLayout;
    size->addWidget(m_width.box);
    size->addWidget(m_width.spinner);
    size->addWidget(m_height.label);
    size->addWidget(m_height.box);
    size->addWidget(m_height.spinner);
    addNumbers(size);

    addList(List_FrameRate);
    addList(List_Aspect);
    addList(List_VideoBitrate);
    m_bitrate = makeNumberField(m_settings.Txt_OutputVideoBitrate, QStringLiteral("OutputVideoBitrate"),
                                QStringLiteral("kbps"));
    m_bitrate.label->setObjectName(QStringLiteral("lbl_OutputVideoBitrate"));
    auto* bitrate = new QHBoxLayout;
    bitrate->addWidget(m_bitrate.box);
    bitrate->addWidget(m_bitrate.spinner);
    bitrate->addWidget(m_bitrate.label);
    addNumbers(bitrate);

    m_quality = new QButtonGroup(this);
    auto* radios = new QHBoxLayout;
    for (int i = 0; i < 3; ++i) {
        auto* radio = new QRadioButton(Quality_Text(i), box);
        radio->setObjectName(QStringLiteral("Radio_Quality_%1").arg(i));
        m_quality->addButton(radio, i);
        radios->addWidget(radio);
        m_qualityRadios.at(static_cast<size_t>(i)) = radio;
    }
    grid->addWidget(m_listTitles[11] = new QLabel(box), line, 0);
    grid->addLayout(radios, line++, 1);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(line, 1);
    return box;
}

QWidget* frmFormatSetting::buildAudioBox() {
    auto* box = new QGroupBox(QStringLiteral("Audio"), this);
    auto* grid = new QGridLayout(box);
    int line = 0;
    for (const int list :
         {List_AudioCodec, List_SampleRate, List_AudioBitrate, List_Channels, List_SampleSize}) {
        grid->addWidget(m_listTitles.at(static_cast<size_t>(list)) = new QLabel(box), line, 0);
        grid->addWidget(makeList(list), line++, 1);
    }
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(line, 1);
    return box;
}

QWidget* frmFormatSetting::buildPresetBox() {
    m_presetBox = new QGroupBox(this);
    m_presetBox->setObjectName(QStringLiteral("Frame_PresetList"));
    m_presetList = new QTableWidget(0, 2, m_presetBox);
    m_presetList->setObjectName(QStringLiteral("PresetList"));
    m_presetList->setHorizontalHeaderLabels({QStringLiteral("Name"), QStringLiteral("ID")});
    m_presetList->setColumnHidden(1, true);
    m_presetList->verticalHeader()->hide();
    m_presetList->horizontalHeader()->setStretchLastSection(true);
    m_presetList->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_presetList->setSelectionMode(QAbstractItemView::SingleSelection);
    m_presetList->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_presetList->setContextMenuPolicy(Qt::CustomContextMenu);
    m_presetList->setMinimumWidth(240);

    m_totalPreset = new QLabel(m_presetBox);
    m_totalPreset->setObjectName(QStringLiteral("lbl_TotalPreset"));
    m_new = new QPushButton(Skin_Icon(QStringLiteral("img_add_preset")), QString(), m_presetBox);
    m_new->setObjectName(QStringLiteral("Cmd_PanelList_1"));
    m_new->setToolTip(QStringLiteral("New preset"));
    m_new->setProperty("skinRole", QStringLiteral("img_add_preset")); // loaded again after a theme switch
    m_delete = new QPushButton(Skin_Icon(QStringLiteral("img_remove_preset")), QString(), m_presetBox);
    m_delete->setObjectName(QStringLiteral("Cmd_PanelList_0"));
    m_delete->setToolTip(QStringLiteral("Delete preset"));
    m_delete->setProperty("skinRole", QStringLiteral("img_remove_preset"));

    m_listMenu = new QMenu(this);
    m_listMenu->setObjectName(QStringLiteral("mnuList"));
    m_menuDelete = m_listMenu->addAction(QStringLiteral("Delete"));
    m_menuDelete->setObjectName(QStringLiteral("mnuList_1"));
    m_listMenu->addSeparator()->setObjectName(QStringLiteral("mnuList_2"));
    m_menuRename = m_listMenu->addAction(QStringLiteral("Rename"));
    m_menuRename->setObjectName(QStringLiteral("mnuList_3"));

    auto* under = new QHBoxLayout;
    under->addWidget(m_totalPreset, 1);
    under->addWidget(m_new);
    under->addWidget(m_delete);
    auto* layout = new QVBoxLayout(m_presetBox);
    layout->addWidget(m_presetList, 1);
    layout->addLayout(under);
    return m_presetBox;
}

QComboBox* frmFormatSetting::makeList(int list) {
    auto* combo = new QComboBox(this);
    combo->setObjectName(QStringLiteral("Combo_OutputFile_%1").arg(list));
    combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    combo->setMinimumContentsLength(12);
    m_lists.at(static_cast<size_t>(list)) = combo;
    return combo;
}

frmFormatSetting::NumberField frmFormatSetting::makeNumberField(SpinField& field, const QString& name,
                                                                const QString& caption) {
    NumberField number;
    number.field = &field;
    auto* box = new NumberBox(this);
    box->setObjectName(QStringLiteral("Txt_") + name);
    box->setFixedWidth(64);
    number.box = box;
    number.spinner = new UpDownControl(QStringLiteral("UpDown_") + name, this);
    if (!caption.isEmpty()) number.label = new QLabel(caption, this);
    return number;
}

// ---- Handlers

void frmFormatSetting::userAction(const std::function<void()>& change) {
    if (m_redrawing || m_closing) return;
    change();
    redraw();
}

void frmFormatSetting::setupConnections() {
    for (int list = 0; list < static_cast<int>(m_lists.size()); ++list)
        connect(m_lists.at(static_cast<size_t>(list)), &QComboBox::activated, this,
                [this, list](int index) { userAction([&] { m_settings.selectListIndex(list, index); }); });
    for (const NumberField* number : {&m_width, &m_height, &m_bitrate})
        connectNumberField(*number);
    connect(m_quality, &QButtonGroup::idClicked, this,
            [this](int radio) { userAction([&] { m_settings.setQuality(radio); }); });

    connect(m_presetList, &QTableWidget::itemSelectionChanged, this, [this] {
        const QList<QTableWidgetItem*> chosen = m_presetList->selectedItems();
        if (chosen.isEmpty()) return;
        const int row = chosen.constFirst()->row();
        userAction([&] { m_settings.PresetList_Select(row); });
    });
    connect(m_presetList, &QTableWidget::customContextMenuRequested, this, &frmFormatSetting::showListMenu);
    connect(m_new, &QPushButton::clicked, this, [this] { userAction([&] { m_settings.newPreset(); }); });
    connect(m_delete, &QPushButton::clicked, this,
            [this] { userAction([&] { m_settings.deletePreset(); }); });
    connect(m_menuDelete, &QAction::triggered, this,
            [this] { userAction([&] { m_settings.deletePreset(); }); });
    connect(m_menuRename, &QAction::triggered, this,
            [this] { userAction([&] { m_settings.renamePreset(); }); });

    connect(m_keep, &QPushButton::clicked, this, &frmFormatSetting::accept);
    connect(m_close, &QPushButton::clicked, this, &frmFormatSetting::reject);
}

void frmFormatSetting::connectNumberField(const NumberField& number) {
    SpinField* field = number.field;
    auto* box = static_cast<NumberBox*>(number.box);
    connect(box, &QLineEdit::textEdited, this,
            [this, field](const QString& text) { userAction([&] { m_settings.boxChanged(*field, text); }); });
    box->left = [this, field] { userAction([&] { m_settings.boxLeft(*field); }); };
    const auto step = [this, field](int by) { userAction([&] { m_settings.spinPressed(*field, by); }); };
    box->stepped = step;
    number.spinner->pressed = step;
}

void frmFormatSetting::showListMenu(const QPoint& position) {
    // Devices and Favorites hide the new and delete buttons only; the menu serves every panel.
    if (m_closing) return;
    if (m_presetList->itemAt(position) == nullptr) return;
    m_listMenu->popup(m_presetList->viewport()->mapToGlobal(position));
}

void frmFormatSetting::accept() {
    if (m_closing) return;
    m_settings.Cmd_Panel(1);
    redraw();
    emit presetsSaved();
    QDialog::accept();
}

void frmFormatSetting::reject() {
    if (m_closing) return;
    m_settings.Cmd_Panel(0);
    redraw();
    emit closedWithoutSaving();
    QDialog::reject();
}

// ---- Public

void frmFormatSetting::Set_GroupBEnabled(bool on) {
    m_groupB = on;
    redraw();
}

int frmFormatSetting::showModal() {
    // The main list's choice wins over a row the user picked here and left without keeping.
    qsizetype row = m_catalogue.Cmd_OutputPreset.selectedIndex();
    if (row < 0 || row >= m_settings.PresetList.size()) row = m_settings.presetListSelected;
    m_settings.PresetList_Select(row);
    redraw();
    return exec();
}

// ---- Drawing

void frmFormatSetting::redraw() {
    if (m_closing || m_redrawing) return;
    m_redrawing = true;
    setWindowTitle(m_settings.windowTitle);
    m_presetBox->setTitle(m_settings.groupTitle);

    for (size_t i = 0; i < m_lists.size(); ++i) {
        QComboBox* combo = m_lists[i];
        const ValueList& list = m_settings.Combo_OutputFile[i];
        const QSignalBlocker quiet(combo);
        if (!sameItems(combo, list)) {
            combo->clear();
            for (const ValueListItem& item : list.items())
                combo->addItem(item.text, item.data);
        }
        combo->setCurrentIndex(static_cast<int>(list.selectedIndex()));
        combo->setEnabled(list.enabled && m_groupB);
        combo->setVisible(list.visible);
    }
    for (QLabel* title : m_listTitles)
        title->setEnabled(m_groupB);
    for (const NumberField* number : {&m_width, &m_height, &m_bitrate})
        redrawNumberField(*number);

    {
        const QSignalBlocker quiet(m_quality);
        // Exclusive groups cannot show "no choice"; drop it for the moment of drawing.
        m_quality->setExclusive(false);
        for (int i = 0; i < 3; ++i) {
            QRadioButton* radio = m_qualityRadios.at(static_cast<size_t>(i));
            radio->setChecked(m_settings.Radio_Quality == i);
            radio->setEnabled(m_settings.qualityEnabled && m_groupB);
        }
        m_quality->setExclusive(true);
    }
    redrawPresetList();
    m_redrawing = false;
}

void frmFormatSetting::redrawNumberField(const NumberField& number) {
    const SpinField& field = *number.field;
    const bool enabled = field.enabled && m_groupB;
    if (number.box->text() != field.text) number.box->setText(field.text);
    for (QWidget* control : {static_cast<QWidget*>(number.box), static_cast<QWidget*>(number.spinner),
                             static_cast<QWidget*>(number.label)}) {
        if (control == nullptr) continue;
        control->setEnabled(enabled);
        control->setVisible(field.visible);
    }
}

void frmFormatSetting::redrawPresetList() {
    const QSignalBlocker quiet(m_presetList);
    const QList<PresetListRow>& rows = m_settings.PresetList;
    m_presetList->setRowCount(static_cast<int>(rows.size()));
    // Items are updated in place: this runs inside the table's own selection handling too.
    const auto put = [this](int line, int column, const QString& text) {
        QTableWidgetItem* item = m_presetList->item(line, column);
        if (item == nullptr) m_presetList->setItem(line, column, item = new QTableWidgetItem);
        if (item->text() != text) item->setText(text);
        return item;
    };
    for (int i = 0; i < m_presetList->rowCount(); ++i) {
        const PresetListRow& row = rows.at(i);
        put(i, 0, row.name)->setForeground(row.userRow ? QBrush(userRowColour()) : QBrush());
        put(i, 1, row.id);
    }
    const qsizetype selected = m_settings.presetListSelected;
    if (selected < 0 || selected >= rows.size()) {
        m_presetList->clearSelection();
    } else {
        m_presetList->selectRow(static_cast<int>(selected));
        m_presetList->scrollToItem(m_presetList->item(static_cast<int>(selected), 0));
    }
    m_totalPreset->setText(m_settings.lbl_TotalPreset);

    const bool buttons = m_settings.panelListButtonsVisible;
    m_new->setVisible(buttons);
    m_delete->setVisible(buttons);
    m_delete->setEnabled(m_settings.deleteEnabled);
    m_menuDelete->setEnabled(m_settings.deleteEnabled);
    m_menuRename->setEnabled(m_settings.renameEnabled);
}

} // namespace morvane
