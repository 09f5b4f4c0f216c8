#include "FileListView.h"

#include "Registry_Mod.h"
#include "frmRename.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QItemSelection>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPersistentModelIndex>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>

namespace morvane {

namespace {

constexpr int kVisibleColumns = FileCol::Status + 1;
constexpr int kRowHeight = 26;
constexpr int kIconSize = 16;
constexpr int kFooterIndent = 4;
const QColor kFrameColor(0xeb, 0xeb, 0xeb);
const QColor kBarColor(0x00, 0x7a, 0xff);

// Cell colours are Windows BGR values.
QColor colorFromBgr(std::int32_t bgr) {
    return QColor(bgr & 0xff, (bgr >> 8) & 0xff, (bgr >> 16) & 0xff);
}

// The status cell while its item converts: a light frame, the bar from the left and the percent
// centred over both. The text is white over the bar and takes the bar's colour where the frame
// shows through, so it stays readable at any percent.
void paintProgress(QPainter* painter, const QRect& cell, int percent, int barWidth, QFont font) {
    const QRect frame = cell.adjusted(1, 1, -1, -1);
    const QRect inner = frame.adjusted(1, 1, -1, -1);
    const QRect bar(inner.left(), inner.top(), std::clamp(barWidth, 0, inner.width()), inner.height());
    const QString text = QString::number(percent) + QLatin1Char('%');
    font.setBold(true);

    painter->save();
    painter->fillRect(frame, kFrameColor);
    painter->fillRect(bar, kBarColor);
    painter->setFont(font);
    painter->save();
    painter->setClipRect(bar, Qt::IntersectClip);
    painter->setPen(Qt::white);
    painter->drawText(frame, Qt::AlignCenter, text);
    painter->restore();
    painter->setClipRegion(QRegion(frame).subtracted(QRegion(bar)), Qt::IntersectClip);
    painter->setPen(kBarColor);
    painter->drawText(frame, Qt::AlignCenter, text);
    painter->restore();
}

QList<int> rowsOf(const QItemSelection& selection) {
    QList<int> rows;
    for (const QItemSelectionRange& range : selection)
        for (int r = range.top(); r <= range.bottom(); ++r)
            rows.append(r);
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

} // namespace

// Pic_DragDrop: the picture, scaled down to fit with its aspect kept, and a line of text under it.
class DropHint : public QWidget {
public:
    explicit DropHint(QWidget* parent) : QWidget(parent) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setObjectName(QStringLiteral("dropHint"));
        parent->installEventFilter(this);
    }
    void setPicture(const QPixmap& picture) {
        m_picture = picture;
        update();
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == parent() && event->type() == QEvent::Resize) setGeometry(parentWidget()->rect());
        return false;
    }
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), palette().color(QPalette::Base));
        const QString caption = tr("Drag and drop video files here, or press Add");
        const int lineHeight = fontMetrics().height();
        const QRect area = rect().adjusted(16, 16, -16, -16 - lineHeight - 12);
        int pictureBottom = rect().center().y();
        if (!m_picture.isNull() && area.width() > 0 && area.height() > 0) {
            const QSize natural = m_picture.deviceIndependentSize().toSize();
            QSize size = natural;
            if (size.width() > area.width() || size.height() > area.height())
                size = natural.scaled(area.size(), Qt::KeepAspectRatio);
            QRect target(QPoint(), size);
            target.moveCenter(area.center());
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            painter.drawPixmap(target, m_picture);
            pictureBottom = target.bottom();
        }
        QColor textColor = palette().color(QPalette::Text);
        textColor.setAlphaF(0.6F);
        painter.setPen(textColor);
        painter.drawText(QRect(0, pictureBottom + 12, width(), lineHeight), Qt::AlignHCenter | Qt::AlignTop,
                         caption);
    }

private:
    QPixmap m_picture;
};

// Paints the state icon, the progress bar and the cells' own text colours; makes the Name editor.
class FileListDelegate : public QStyledItemDelegate {
public:
    FileListDelegate(FileViewMain& table, QObject* parent) : QStyledItemDelegate(parent), m_table(table) {}

    std::function<QIcon(int)> icons;
    int editRow() const { return m_editIndex.isValid() ? m_editIndex.row() : -1; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyleOptionViewItem opt = option;
        initStyleOption(&opt, index);
        const QWidget* widget = opt.widget;
        QStyle* style = widget != nullptr ? widget->style() : QApplication::style();

        if (index.column() == FileCol::Icon) {
            opt.text.clear();
            style->drawControl(QStyle::CE_ItemViewItem, &opt, painter, widget);
            const int image = index.data(FileViewMain::IconRole).toInt();
            if (image <= 0 || !icons) return;
            const QIcon icon = icons(image);
            QRect target(0, 0, kIconSize, kIconSize);
            target.moveCenter(opt.rect.center());
            // The running spinner is drawn in the accent colour, which the selection's highlight
            // swallows: a disc in the highlighted text's colour keeps it visible.
            if ((opt.state & QStyle::State_Selected) && image >= 1 && image <= 9) {
                painter->save();
                painter->setRenderHint(QPainter::Antialiasing);
                painter->setPen(Qt::NoPen);
                painter->setBrush(opt.palette.color(QPalette::HighlightedText));
                painter->drawEllipse(QRectF(target).adjusted(-1.5, -1.5, 1.5, 1.5));
                painter->restore();
            }
            icon.paint(painter, target.intersected(opt.rect), Qt::AlignCenter);
            return;
        }
        // The edit mark stands before the length of an edited row.
        if (index.column() == FileCol::Duration && icons) {
            const int mark = index.data(FileViewMain::IconRole).toInt();
            if (mark > 0) {
                opt.icon = icons(mark);
                opt.features |= QStyleOptionViewItem::HasDecoration;
                opt.decorationSize = QSize(kIconSize - 4, kIconSize - 4);
            }
            style->drawControl(QStyle::CE_ItemViewItem, &opt, painter, widget);
            return;
        }
        if (index.column() == FileCol::Status && index.data(FileViewMain::ProgressActiveRole).toBool()) {
            opt.text.clear();
            style->drawControl(QStyle::CE_ItemViewItem, &opt, painter, widget);
            paintProgress(painter, opt.rect, index.data(FileViewMain::ProgressPercentRole).toInt(),
                          index.data(FileViewMain::ProgressBarWidthRole).toInt(), opt.font);
            return;
        }
        const std::int32_t color = index.data(FileViewMain::ColorRole).toInt();
        if (color != kDefaultColor) opt.palette.setColor(QPalette::Text, colorFromBgr(color));
        style->drawControl(QStyle::CE_ItemViewItem, &opt, painter, widget);
    }

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override {
        m_editIndex = index;
        Begin_NameEdit(m_table, index.row());
        QWidget* editor = QStyledItemDelegate::createEditor(parent, option, index);
        // The name becomes a file name: the same characters are refused as in the rename dialogs.
        if (auto* box = qobject_cast<QLineEdit*>(editor)) installFileNameFilter(box);
        return editor;
    }

    // The editor takes the name once: the list is redrawn during a conversion, and a refill would
    // throw away what the user has typed.
    void setEditorData(QWidget* editor, const QModelIndex& index) const override {
        if (editor->property("filled").toBool()) return;
        editor->setProperty("filled", true);
        QStyledItemDelegate::setEditorData(editor, index);
    }

private:
    FileViewMain& m_table;
    mutable QPersistentModelIndex m_editIndex;
};

// The table itself: its keys, double click and context menu go to the list view first.
class FileTable : public QTableView {
public:
    explicit FileTable(FileListView& owner) : QTableView(&owner), m_owner(owner) {}

protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (m_owner.handleKey(event->key(), event->modifiers())) {
            event->accept();
            return;
        }
        QTableView::keyPressEvent(event);
    }

    void mouseDoubleClickEvent(QMouseEvent* event) override {
        QTableView::mouseDoubleClickEvent(event);
        if (event->button() != Qt::LeftButton) return;
        const QModelIndex at = indexAt(event->position().toPoint());
        if (at.isValid()) m_owner.handleDoubleClick(at.row(), at.column());
    }

    void contextMenuEvent(QContextMenuEvent* event) override {
        // The event may come from the viewport or, mapped, from the header: place it by its global point.
        QPoint at = viewport()->mapFromGlobal(event->globalPos());
        QPoint global = event->globalPos();
        if (event->reason() == QContextMenuEvent::Keyboard) {
            at = visualRect(currentIndex()).center();
            global = viewport()->mapToGlobal(at);
        }
        if (!viewport()->rect().contains(at) || !indexAt(at).isValid()) {
            event->ignore();
            return;
        }
        event->accept();
        m_owner.handleContextMenu(global);
    }

private:
    FileListView& m_owner;
};

FileListView::FileListView(FileViewMain& table, QWidget* parent) : QWidget(parent), m_table(table) {
    m_view = new FileTable(*this);
    const auto rowsBegin = [this] { m_rowsChanging = true; };
    connect(&m_table, &QAbstractItemModel::rowsAboutToBeRemoved, this, rowsBegin);
    connect(&m_table, &QAbstractItemModel::rowsAboutToBeInserted, this, rowsBegin);
    connect(&m_table, &QAbstractItemModel::modelAboutToBeReset, this, rowsBegin);
    m_view->setModel(&m_table);
    m_delegate = new FileListDelegate(m_table, m_view);
    m_view->setItemDelegate(m_delegate);

    m_view->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->setShowGrid(false);
    m_view->setAlternatingRowColors(false);
    m_view->setWordWrap(false);
    m_view->setTextElideMode(Qt::ElideRight);
    m_view->setCornerButtonEnabled(false);
    m_view->setTabKeyNavigation(false);
    m_view->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_view->setIconSize(QSize(kIconSize, kIconSize));

    QHeaderView* rowsHeader = m_view->verticalHeader();
    rowsHeader->hide();
    rowsHeader->setMinimumSectionSize(kIconSize);
    rowsHeader->setDefaultSectionSize(kRowHeight);
    rowsHeader->setSectionResizeMode(QHeaderView::Fixed);

    QHeaderView* header = m_view->horizontalHeader();
    header->setMinimumSectionSize(kIconSize);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setHighlightSections(false);
    header->setSectionsClickable(false);
    header->setStretchLastSection(false);
    // The model's size hint is a bare width, which would leave the header no height of its own.
    header->setMinimumHeight(fontMetrics().height() + 10);
    for (int c = 0; c < FileCol::Count; ++c) {
        if (c < kVisibleColumns) {
            header->resizeSection(c, File_ColumnInfo(c).width);
            header->setSectionResizeMode(c, QHeaderView::Interactive);
        } else {
            m_view->setColumnHidden(c, true);
        }
    }
    // The Name takes what the other columns leave, so the list fills the window at any width.
    header->setSectionResizeMode(FileCol::Name, QHeaderView::Stretch);

    m_footer = new QWidget(this);
    m_footer->setObjectName(QStringLiteral("footerStrip"));
    m_footer->setFixedHeight(fontMetrics().height() + 8);
    m_footerName = new QLabel(m_footer);
    m_footerName->setObjectName(QStringLiteral("footerName"));
    m_footerDuration = new QLabel(m_footer);
    m_footerDuration->setObjectName(QStringLiteral("footerDuration"));
    for (QLabel* label : {m_footerName, m_footerDuration}) {
        label->setIndent(kFooterIndent);
        label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    }

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_view, 1);
    layout->addWidget(m_footer);

    m_hint = new DropHint(m_view);
    m_hint->hide();
    m_view->installEventFilter(this);
    m_footer->installEventFilter(this);

    // Set_RowProgress measures the real cell; right and bottom one past the last pixel.
    m_table.setCellRectProvider([this](int row, int column) {
        const QRect r = m_view->visualRect(m_table.index(row, column));
        return CellRect{r.left(), r.top(), r.left() + r.width(), r.top() + r.height()};
    });
    m_table.setSelectionObserver([this] { modelSelectionChanged(); });

    setupConnections();
    updateFooters();
    updateDropHint();
}

FileListView::~FileListView() {
    m_table.setCellRectProvider({});
    m_table.setSelectionObserver({});
    disconnect(&m_table, nullptr, this, nullptr);
    disconnect(m_view->selectionModel(), nullptr, this, nullptr);
    disconnect(m_view->horizontalHeader(), nullptr, this, nullptr);
    disconnect(m_view->horizontalScrollBar(), nullptr, this, nullptr);
    m_view->removeEventFilter(this);
    m_footer->removeEventFilter(this);
}

void FileListView::setupConnections() {
    connect(m_view->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &FileListView::viewSelectionChanged);
    connect(m_delegate, &QAbstractItemDelegate::closeEditor, this,
            [this](QWidget*, QAbstractItemDelegate::EndEditHint hint) {
                if (hint == QAbstractItemDelegate::RevertModelCache)
                    Cancel_NameEdit(m_table, m_delegate->editRow(), Theme_No);
            });

    // While rows go or come both sides fix their own selection; that is no choice of the user's.
    // The view and its selection model hear the model in between these, being connected in between.
    const auto rowsEnd = [this] {
        m_rowsChanging = false;
        updateDropHint();
    };
    connect(&m_table, &QAbstractItemModel::rowsRemoved, this, rowsEnd);
    connect(&m_table, &QAbstractItemModel::rowsInserted, this, rowsEnd);
    connect(&m_table, &QAbstractItemModel::modelReset, this, [this, rowsEnd] {
        rowsEnd();
        updateFooters();
    });
    connect(&m_table, &QAbstractItemModel::headerDataChanged, this, &FileListView::updateFooters);

    QHeaderView* header = m_view->horizontalHeader();
    connect(header, &QHeaderView::sectionResized, this, &FileListView::placeFooters);
    connect(header, &QHeaderView::sectionMoved, this, &FileListView::placeFooters);
    connect(header, &QHeaderView::geometriesChanged, this, &FileListView::placeFooters);
    connect(m_view->horizontalScrollBar(), &QScrollBar::valueChanged, this, &FileListView::placeFooters);
}

QTableView* FileListView::view() const {
    return m_view;
}

QWidget* FileListView::footerStrip() const {
    return m_footer;
}

void FileListView::setIdleTest(std::function<bool()> idle) {
    m_idle = std::move(idle);
}

void FileListView::setStateIcons(std::function<QIcon(int)> icons) {
    m_delegate->icons = std::move(icons);
    m_view->viewport()->update();
}

void FileListView::setDropHint(const QPixmap& picture) {
    m_hint->setPicture(picture);
}

void FileListView::setDropHintVisible(bool visible) {
    m_hintWanted = visible;
    updateDropHint();
}

bool FileListView::dropHintVisible() const {
    return !m_hint->isHidden();
}

bool FileListView::idle() const {
    return !m_idle || m_idle();
}

bool FileListView::handleKey(int key, Qt::KeyboardModifiers modifiers) {
    const Qt::KeyboardModifiers mods = modifiers & ~Qt::KeypadModifier;
    if (key == Qt::Key_Delete) {
        if (!idle()) return true;
        if (mods == Qt::NoModifier)
            emit removeRequested();
        else if (mods == Qt::ShiftModifier)
            emit removeAllRequested();
        return true;
    }
    // Space plays; it never toggles the selection, idle or not.
    if (key == Qt::Key_Space && (mods & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) == 0) {
        if (idle()) emit playRequested();
        return true;
    }
    return false;
}

void FileListView::handleDoubleClick(int row, int column) {
    if (m_table.selectedRows().size() != 1) return;
    if (column == FileCol::Name)
        startRename(row);
    else
        emit playRequested();
}

void FileListView::handleContextMenu(const QPoint& globalPos) {
    m_table.setEditing(false);
    m_table.redraw();
    if (idle()) emit contextMenuRequested(globalPos);
}

void FileListView::startRename(int row) {
    if (row < 0 || row >= m_table.rows()) return;
    m_table.setEditing(true);
    const QModelIndex at = m_table.index(row, FileCol::Name);
    m_view->selectionModel()->setCurrentIndex(at, QItemSelectionModel::NoUpdate);
    m_view->edit(at);
}

void FileListView::viewSelectionChanged() {
    if (m_syncing || m_rowsChanging) return;
    {
        const QScopedValueRollback guard(m_syncing, true);
        m_table.setSelectedRows(rowsOf(m_view->selectionModel()->selection()));
    }
    selectionChanged();
}

void FileListView::modelSelectionChanged() {
    if (m_syncing) return;
    QItemSelectionModel* selection = m_view->selectionModel();
    const QList<int>& rows = m_table.selectedRows();
    if (rowsOf(selection->selection()) == rows) return;
    {
        const QScopedValueRollback guard(m_syncing, true);
        QItemSelection wanted;
        for (int r : rows)
            wanted.merge(QItemSelection(m_table.index(r, 0), m_table.index(r, FileCol::Count - 1)),
                         QItemSelectionModel::Select);
        selection->select(wanted, QItemSelectionModel::ClearAndSelect);
        if (!rows.isEmpty())
            selection->setCurrentIndex(m_table.index(rows.first(), FileCol::Name),
                                       QItemSelectionModel::NoUpdate);
    }
    selectionChanged();
}

void FileListView::selectionChanged() {
    m_table.setEditing(false);
    const QList<int>& rows = m_table.selectedRows();
    if (rows.size() == 1 && idle()) emit rowShown(rows.first());
}

void FileListView::placeFooters() {
    const QHeaderView* header = m_view->horizontalHeader();
    const int left = m_view->viewport()->x();
    const int height = m_footer->height();
    const auto place = [&](QLabel* label, int column) {
        label->setGeometry(left + header->sectionViewportPosition(column), 0, header->sectionSize(column),
                           height);
    };
    place(m_footerName, FileCol::Name);
    place(m_footerDuration, FileCol::Duration);
}

void FileListView::updateFooters() {
    m_footerName->setText(m_table.footer(FileCol::Name));
    m_footerDuration->setText(m_table.footer(FileCol::Duration));
}

void FileListView::updateDropHint() {
    const bool show = m_hintWanted && m_table.rows() == 0;
    m_hint->setGeometry(m_view->rect());
    m_hint->setVisible(show);
    if (show) m_hint->raise();
    m_view->horizontalHeader()->setHidden(show);
    const Qt::ScrollBarPolicy bars = show ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAsNeeded;
    m_view->setHorizontalScrollBarPolicy(bars);
    m_view->setVerticalScrollBarPolicy(bars);
    m_footer->setHidden(show);
}

bool FileListView::eventFilter(QObject* watched, QEvent* event) {
    if ((watched == m_view || watched == m_footer) &&
        (event->type() == QEvent::Resize || event->type() == QEvent::Show))
        placeFooters();
    return QWidget::eventFilter(watched, event);
}

} // namespace morvane
