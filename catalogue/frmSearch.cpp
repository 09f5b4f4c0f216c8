#include "frmSearch.h"

#include "OutputBrowser.h"
#include "Skin_Icons.h"
#include "mMain.h"

#include <QAbstractTableModel>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace morvane {

namespace {

constexpr int kOkButtonInterval = 100; // ms

bool isEnterKey(const QKeyEvent* key) {
    return key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
}

} // namespace

// Shows the hits table; it owns nothing, so every fill is wrapped in a model reset.
class frmSearch::Model : public QAbstractTableModel {
public:
    Model(const CatalogueTable& table, QObject* parent) : QAbstractTableModel(parent), m_table(table) {}

    int rowCount(const QModelIndex& parent = QModelIndex()) const override {
        return parent.isValid() ? 0 : static_cast<int>(m_table.rowCount());
    }
    int columnCount(const QModelIndex& parent = QModelIndex()) const override {
        return parent.isValid() ? 0 : 3;
    }
    QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole)) return {};
        return m_table.cell(index.row(), index.column());
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        static const char* const headers[] = {"Preset", "Maker", "Keyword"};
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section > 2) return {};
        return QString::fromLatin1(headers[section]);
    }
    void beginFill() { beginResetModel(); }
    void endFill() { endResetModel(); }

private:
    const CatalogueTable& m_table;
};

frmSearch::frmSearch(const CatalogueTable& presetTable, SelectFunction select, QWidget* parent)
    : QDialog(parent), m_presetTable(presetTable), m_select(std::move(select)) {
    setObjectName(QStringLiteral("frmSearch"));
    setWindowTitle(QStringLiteral("Search Presets"));
    setModal(true);

    Txt_Search = new QLineEdit(this);
    Txt_Search->setObjectName(QStringLiteral("Txt_Search"));
    Txt_Search->setPlaceholderText(QStringLiteral("Search presets"));
    Txt_Search->installEventFilter(this);

    // The clear button sits inside the box, at its right end.
    Cmd_Search = new QToolButton(Txt_Search);
    Cmd_Search->setObjectName(QStringLiteral("Cmd_Search"));
    Cmd_Search->setAutoRaise(true);
    Cmd_Search->setFocusPolicy(Qt::NoFocus);
    Cmd_Search->setCursor(Qt::ArrowCursor);
    Cmd_Search->setToolTip(QStringLiteral("Clear"));
    Cmd_Search->setIconSize(QSize(16, 16));
    auto* inBox = new QHBoxLayout(Txt_Search);
    inBox->setContentsMargins(0, 0, 2, 0);
    inBox->addStretch();
    inBox->addWidget(Cmd_Search);
    Txt_Search->setTextMargins(0, 0, Cmd_Search->sizeHint().width(), 0);

    m_model = new Model(m_found, this);
    View_Found = new QTableView(this);
    View_Found->setObjectName(QStringLiteral("View_Found"));
    View_Found->setModel(m_model);
    View_Found->setSelectionBehavior(QAbstractItemView::SelectRows);
    View_Found->setSelectionMode(QAbstractItemView::SingleSelection);
    View_Found->setEditTriggers(QAbstractItemView::NoEditTriggers);
    View_Found->setTabKeyNavigation(false);
    View_Found->setAlternatingRowColors(true);
    View_Found->setShowGrid(false);
    View_Found->setWordWrap(false);
    View_Found->verticalHeader()->hide();
    View_Found->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    View_Found->horizontalHeader()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    View_Found->horizontalHeader()->setSectionResizeMode(2, QHeaderView::ResizeToContents);
    View_Found->installEventFilter(this);

    lbl_TotalPreset = new QLabel(this);
    lbl_TotalPreset->setObjectName(QStringLiteral("lbl_TotalPreset"));

    Cmd_Panels[0] = new QPushButton(QStringLiteral("Select"), this);
    Cmd_Panels[0]->setObjectName(QStringLiteral("Cmd_Panels_0"));
    Cmd_Panels[0]->setDefault(true);
    Cmd_Panels[1] = new QPushButton(QStringLiteral("Close"), this);
    Cmd_Panels[1]->setObjectName(QStringLiteral("Cmd_Panels_1"));

    auto* bottom = new QHBoxLayout;
    bottom->addWidget(lbl_TotalPreset);
    bottom->addStretch();
    bottom->addWidget(Cmd_Panels[0]);
    bottom->addWidget(Cmd_Panels[1]);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(Txt_Search);
    layout->addWidget(View_Found, 1);
    layout->addLayout(bottom);
    resize(560, 400);

    Timer_OK_Button = new QTimer(this);
    Timer_OK_Button->setObjectName(QStringLiteral("Timer_OK_Button"));
    Timer_OK_Button->setInterval(kOkButtonInterval);

    setupConnections();
    Txt_Search_Change();
    Timer_OK_Button->start();
    Txt_Search->setFocus();
}

void frmSearch::setupConnections() {
    connect(Txt_Search, &QLineEdit::textChanged, this, &frmSearch::Txt_Search_Change);
    connect(Cmd_Search, &QToolButton::clicked, this, [this] {
        Txt_Search->clear();
        Txt_Search->setFocus();
    });
    connect(View_Found->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        const QModelIndexList rows = View_Found->selectionModel()->selectedRows();
        m_found.setSelectedRow(rows.isEmpty() ? -1 : rows.first().row());
    });
    connect(View_Found, &QTableView::doubleClicked, this,
            [this](const QModelIndex& index) { Accept_Row(index.row()); });
    connect(Cmd_Panels[0], &QPushButton::clicked, this, [this] { Accept_Row(selectedRow()); });
    connect(Cmd_Panels[1], &QPushButton::clicked, this, &QDialog::reject);
    connect(Timer_OK_Button, &QTimer::timeout, this, &frmSearch::Timer_OK_Button_Timer);
}

void frmSearch::Txt_Search_Change() {
    m_model->beginFill();
    Search_Fill(m_presetTable, Txt_Search->text(), m_found);
    const qsizetype first = m_found.selectedRow(); // the reset below clears the view's selection
    m_model->endFill();
    if (first >= 0) View_Found->selectRow(static_cast<int>(first));
    lbl_TotalPreset->setText(Search_CountText(m_found.rowCount()));
    Timer_OK_Button_Timer();
}

void frmSearch::Timer_OK_Button_Timer() {
    Cmd_Panels[0]->setEnabled(m_found.rowCount() > 0);
    const int picture = Txt_Search->text().isEmpty() ? 0 : 1;
    Cmd_Search->setEnabled(picture == 1);
    if (picture == m_searchPicture) return;
    m_searchPicture = picture;
    Cmd_Search->setIcon(
        Skin_Icon(picture == 0 ? QStringLiteral("img_search") : QStringLiteral("img_search_remove")));
}

int frmSearch::selectedRow() const {
    const qsizetype row = m_found.selectedRow();
    return row >= 0 && row < m_found.rowCount() ? static_cast<int>(row) : -1;
}

void frmSearch::Accept_Row(int row) {
    if (m_accepting || row < 0 || row >= m_found.rowCount()) return;
    m_accepting = true; // a second Enter or click while select runs must not choose again
    const QString name = Trim_Spaces(m_found.cell(row, 0));
    const QString maker = Trim_Spaces(m_found.cell(row, 1));
    const QString keyword = Trim_Spaces(m_found.cell(row, 2));
    if (m_select) m_select(name, maker, keyword);
    accept();
    m_accepting = false;
}

bool frmSearch::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || (watched != Txt_Search && watched != View_Found))
        return QDialog::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    // Enter chooses the selected hit from the box as from the list, and never falls through to the
    // dialog's default button, which would choose a second time.
    if (isEnterKey(key)) {
        Accept_Row(selectedRow());
        return true;
    }
    // The arrows walk the hits while typing goes on in the box.
    if (watched == Txt_Search && key->modifiers() == Qt::NoModifier &&
        (key->key() == Qt::Key_Up || key->key() == Qt::Key_Down || key->key() == Qt::Key_PageUp ||
         key->key() == Qt::Key_PageDown)) {
        QCoreApplication::sendEvent(View_Found, event);
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace morvane
