#include "FileListView.h"
#include "Registry_Mod.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>

#include <gtest/gtest.h>

using namespace morvane;

namespace {

const QColor kBlue(0x00, 0x7a, 0xff);
const QColor kFrame(0xeb, 0xeb, 0xeb);

// A shown list over a table of hand-made rows: "clip0", "clip1" ... from /videos/clipN.mkv.
struct Shown {
    FileViewMain table;
    FileListView list{table};
    bool idle = true;

    explicit Shown(int rows) {
        for (int i = 0; i < rows; ++i) {
            const int r = table.addRow();
            table.setText(r, FileCol::Name, QStringLiteral("clip%1").arg(r));
            table.setText(r, FileCol::FileName, QStringLiteral("clip%1.mkv").arg(r));
            table.setText(r, FileCol::FilePath, QStringLiteral("/videos/"));
            table.setColor(r, FileCol::Name, 0xFFFFFF);
        }
        list.setIdleTest([this] { return idle; });
        list.resize(900, 400);
        list.show();
        list.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&list));
    }

    QTableView* view() const { return list.view(); }
    QWidget* viewport() const { return list.view()->viewport(); }
    QRect cell(int row, int column) const { return view()->visualRect(table.index(row, column)); }
    void click(int row, int column, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(viewport(), Qt::LeftButton, modifiers, cell(row, column).center());
    }
    void doubleClick(int row, int column) {
        click(row, column);
        QTest::mouseDClick(viewport(), Qt::LeftButton, {}, cell(row, column).center());
    }
    void rightClick(QPoint at) {
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, viewport()->mapToGlobal(at));
        QApplication::sendEvent(viewport(), &event);
    }
    QLineEdit* editor(int row) const {
        return qobject_cast<QLineEdit*>(view()->indexWidget(table.index(row, FileCol::Name)));
    }
    QList<int> viewRows() const {
        QList<int> rows;
        for (const QModelIndex& index : view()->selectionModel()->selectedRows())
            rows.append(index.row());
        std::sort(rows.begin(), rows.end());
        return rows;
    }
    QImage picture() const { return viewport()->grab().toImage(); }
};

QColor pixel(const QImage& image, int x, int y) {
    return QColor(image.pixel(x, y));
}

QList<int> rowsOf(const QSignalSpy& shown) {
    QList<int> rows;
    for (const QList<QVariant>& call : shown)
        rows.append(call.at(0).toInt());
    return rows;
}

bool hasPixel(const QImage& image, const QRect& area, const std::function<bool(const QColor&)>& test) {
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            if (test(pixel(image, x, y))) return true;
    return false;
}

} // namespace

TEST(FileListView, ShowsTheFiveColumnsWithTheNameFillingTheWidth) {
    Shown s(2);
    QHeaderView* header = s.view()->horizontalHeader();
    for (int c = 0; c < FileCol::Count; ++c)
        EXPECT_EQ(s.view()->isColumnHidden(c), c > FileCol::Status) << c;
    const int widths[] = {22, 0, 80, 100, 150};
    for (int c : {FileCol::Icon, FileCol::Format, FileCol::Duration, FileCol::Status})
        EXPECT_EQ(header->sectionSize(c), widths[c]) << c;
    // The Name takes the rest.
    EXPECT_EQ(header->length(), s.viewport()->width());
    EXPECT_GT(header->height(), 10);
    EXPECT_TRUE(s.view()->verticalHeader()->isHidden());
    EXPECT_EQ(s.view()->rowHeight(0), 26);

    // The host shows the elapsed time over the status column.
    QSignalSpy headerChanged(&s.table, &QAbstractItemModel::headerDataChanged);
    s.table.setHeaderCaption(FileCol::Status, QStringLiteral("00:01:05"));
    EXPECT_EQ(headerChanged.count(), 1);
    EXPECT_EQ(s.table.headerData(FileCol::Status, Qt::Horizontal).toString(), QStringLiteral("00:01:05"));
    EXPECT_EQ(s.table.headerData(FileCol::Name, Qt::Horizontal).toString(), QStringLiteral("Name"));
}

TEST(FileListView, KeysAndRightClickActOnlyWhileIdle) {
    Shown s(3);
    s.click(1, FileCol::Format);
    QSignalSpy remove(&s.list, &FileListView::removeRequested);
    QSignalSpy removeAll(&s.list, &FileListView::removeAllRequested);
    QSignalSpy play(&s.list, &FileListView::playRequested);
    QSignalSpy menu(&s.list, &FileListView::contextMenuRequested);
    const QPoint onRow = s.cell(1, FileCol::Format).center();
    for (const bool idle : {true, false}) {
        SCOPED_TRACE(idle);
        s.idle = idle;
        QTest::keyClick(s.view(), Qt::Key_Delete);
        QTest::keyClick(s.view(), Qt::Key_Delete, Qt::ShiftModifier);
        QTest::keyClick(s.view(), Qt::Key_Delete, Qt::ControlModifier);
        QTest::keyClick(s.view(), Qt::Key_Space);
        // A right click ends an edit and redraws even while busy.
        s.table.setEditing(true);
        const int redraws = s.table.redrawCount();
        s.rightClick(onRow);
        EXPECT_FALSE(s.table.editing());
        EXPECT_GT(s.table.redrawCount(), redraws);
        EXPECT_EQ(remove.count(), 1);
        EXPECT_EQ(removeAll.count(), 1);
        EXPECT_EQ(play.count(), 1);
        EXPECT_EQ(menu.count(), 1);
        EXPECT_EQ(s.table.selectedRows(), QList<int>{1}); // Space plays, it does not select
    }
    EXPECT_EQ(menu.at(0).at(0).toPoint(), s.viewport()->mapToGlobal(onRow));

    // Below the last row there is no row to act on.
    s.idle = true;
    s.table.setEditing(true);
    s.rightClick(QPoint(onRow.x(), s.viewport()->height() - 5));
    EXPECT_TRUE(s.table.editing());
    EXPECT_EQ(menu.count(), 1);
}

TEST(FileListView, DoubleClickRenamesTheNameInPlaceOrPlays) {
    const int theme = Theme_No;
    Shown s(3);
    QSignalSpy play(&s.list, &FileListView::playRequested);
    struct Case {
        int theme;
        const char* typed;
        Qt::Key leave;
        const char* name;
        int color;
    };
    const Case cases[] = {
        {1, "   ", Qt::Key_Return, "clip0", 0}, // a blank name falls back to the file's
        {2, "holiday", Qt::Key_Return, "holiday", 0xFFFFFF},
        {2, "zzz", Qt::Key_Escape, "before", 0xFFFFFF}, // the colour comes back all the same
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.typed);
        Theme_No = c.theme;
        s.table.setText(0, FileCol::Name, QStringLiteral("before"));
        s.doubleClick(0, FileCol::Name);
        QLineEdit* edit = s.editor(0);
        ASSERT_NE(edit, nullptr);
        EXPECT_TRUE(s.table.editing());
        EXPECT_EQ(edit->selectedText(), QStringLiteral("before"));
        EXPECT_EQ(s.table.color(0, FileCol::Name), 0); // black for the edit box
        edit->setText(QLatin1String(c.typed));
        s.table.redraw(); // progress redraws the list while the user types
        EXPECT_EQ(edit->text(), QLatin1String(c.typed));
        QTest::keyClick(edit, c.leave);
        QApplication::processEvents(); // Return commits through a queued call
        EXPECT_EQ(s.editor(0), nullptr);
        EXPECT_EQ(s.table.text(0, FileCol::Name), QLatin1String(c.name));
        EXPECT_EQ(s.table.color(0, FileCol::Name), c.color);
    }
    EXPECT_EQ(play.count(), 0);

    // Off the Name a double click plays; with two rows selected it does nothing.
    s.doubleClick(2, FileCol::Duration);
    EXPECT_EQ(play.count(), 1);
    EXPECT_EQ(s.editor(2), nullptr);
    s.click(1, FileCol::Name, Qt::ControlModifier);
    QTest::mouseDClick(s.viewport(), Qt::LeftButton, Qt::ControlModifier, s.cell(1, FileCol::Name).center());
    EXPECT_EQ(s.table.selectedRows().size(), 2);
    EXPECT_EQ(s.editor(1), nullptr);
    EXPECT_EQ(play.count(), 1);
    Theme_No = theme;
}

TEST(FileListView, SelectionFollowsBothWaysAndShowsASingleRow) {
    Shown s(4);
    QSignalSpy shown(&s.list, &FileListView::rowShown);

    // Logic to view; an unchanged selection is shown only once.
    s.table.setSelectedRows({3, 1});
    EXPECT_EQ(s.viewRows(), (QList<int>{1, 3}));
    s.table.selectRow(2);
    s.table.selectRow(2);
    EXPECT_EQ(s.viewRows(), QList<int>{2});
    EXPECT_EQ(rowsOf(shown), QList<int>{2});

    // View to logic, with editing switched off on every change; nothing is shown while busy.
    s.table.setEditing(true);
    s.click(0, FileCol::Format);
    EXPECT_EQ(s.table.selectedRows(), QList<int>{0});
    EXPECT_FALSE(s.table.editing());
    s.click(3, FileCol::Format, Qt::ControlModifier);
    EXPECT_EQ(s.table.selectedRows(), (QList<int>{0, 3}));
    s.idle = false;
    s.click(1, FileCol::Format);
    EXPECT_EQ(s.table.selectedRows(), QList<int>{1});
    EXPECT_EQ(rowsOf(shown), (QList<int>{2, 0}));

    // Rows above the selection go: both sides move it up alike.
    s.idle = true;
    s.table.selectRow(3);
    s.table.removeRows({0});
    EXPECT_EQ(s.table.selectedRows(), QList<int>{2});
    EXPECT_EQ(s.viewRows(), QList<int>{2});

    // Removing selected rows is no choice of the user's: nothing is shown half way through.
    s.table.setSelectedRows({0, 2});
    shown.clear();
    Remove_Selected(s.table);
    EXPECT_EQ(s.table.rows(), 1);
    EXPECT_TRUE(s.table.selectedRows().isEmpty());
    EXPECT_TRUE(s.viewRows().isEmpty());
    EXPECT_EQ(shown.count(), 0);
}

TEST(FileListView, StatusAndIconCellsPaintProgressStateAndColours) {
    Shown s(2);
    QHeaderView* header = s.view()->horizontalHeader();

    // The model measures the live cell: W is its width + 2, so a wider column gives a wider bar.
    header->resizeSection(FileCol::Status, 200);
    Set_RowProgress(s.table, 0, FileCol::Status, 60);
    EXPECT_EQ(s.table.progress(0).cellWidth, 202);
    header->resizeSection(FileCol::Status, 150);
    Set_RowProgress(s.table, 0, FileCol::Status, 60);

    QImage image = s.picture();
    QRect cell = s.cell(0, FileCol::Status);
    const int mid = cell.center().y();
    EXPECT_EQ(pixel(image, cell.left() + 2 + 90, mid), kBlue); // the bar, 91 wide
    EXPECT_EQ(pixel(image, cell.left() + 2 + 91, mid), kFrame);
    EXPECT_EQ(pixel(image, cell.left() + 4, cell.top() + 1), kFrame);
    EXPECT_NE(pixel(image, cell.left(), mid), kBlue);                                   // outside the frame
    EXPECT_TRUE(hasPixel(image, cell, [](const QColor& c) { return c == Qt::white; })); // "60%"

    // At 100% the bar is wider than the cell; it stops inside the frame.
    Set_RowProgress(s.table, 0, FileCol::Status, 100);
    image = s.picture();
    EXPECT_EQ(pixel(image, cell.right() - 2, mid), kBlue);
    EXPECT_EQ(pixel(image, cell.right() - 1, mid), kFrame);

    // A failed row's status is red: 255 is a Windows BGR value.
    Set_RowState(s.table, 1, true, State_Failed);
    const auto red = [](const QColor& c) { return c.red() > 200 && c.green() < 80 && c.blue() < 80; };
    EXPECT_TRUE(hasPixel(s.picture(), s.cell(1, FileCol::Status), red));

    // The state icon is centred in column 0, unscaled.
    s.list.setStateIcons([](int state) {
        QPixmap picture(16, 16);
        picture.fill(Qt::transparent);
        QPainter(&picture).fillRect(6, 6, 4, 4, state == 11 ? QColor(Qt::magenta) : kBlue);
        return QIcon(picture);
    });
    const QRect iconCell = s.cell(1, FileCol::Icon);
    image = s.picture();
    EXPECT_EQ(pixel(image, iconCell.center().x(), iconCell.center().y()), QColor(Qt::magenta));
    EXPECT_NE(pixel(image, iconCell.center().x() + 4, iconCell.center().y()), QColor(Qt::magenta));

    // A selected running row keeps its spinner readable on the highlight; other icons need no ground.
    Set_RowState(s.table, 0, true, State_Converting);
    const QPalette palette = s.view()->palette();
    for (const int row : {0, 1}) {
        s.table.setSelectedRows({row});
        QApplication::processEvents();
        const QRect at = s.cell(row, FileCol::Icon);
        EXPECT_EQ(pixel(s.picture(), at.center().x() + 5, at.center().y()),
                  palette.color(row == 0 ? QPalette::HighlightedText : QPalette::Highlight))
            << row;
    }
}

TEST(FileListView, FooterStripShowsTotalsUnderTheirColumns) {
    Shown s(3);
    const QStringList seconds = {QStringLiteral("1.50"), QStringLiteral("60.2"), QStringLiteral("3.4")};
    for (int r = 0; r < 3; ++r)
        s.table.setText(r, FileCol::SrcDuration, seconds.at(r));
    Update_Totals(s.table);
    auto* name = s.list.footerStrip()->findChild<QLabel*>(QStringLiteral("footerName"));
    auto* duration = s.list.footerStrip()->findChild<QLabel*>(QStringLiteral("footerDuration"));
    ASSERT_NE(name, nullptr);
    ASSERT_NE(duration, nullptr);
    EXPECT_EQ(name->text(), QStringLiteral(" 3 files"));
    EXPECT_EQ(duration->text(), QStringLiteral("00:01:05"));

    // The labels stay under their columns through resizes and horizontal scrolling.
    QHeaderView* header = s.view()->horizontalHeader();
    const auto expectUnderColumns = [&] {
        for (const auto& [label, column] :
             {std::pair{name, +FileCol::Name}, {duration, +FileCol::Duration}}) {
            EXPECT_EQ(label->x(), s.viewport()->x() + header->sectionViewportPosition(column)) << column;
            EXPECT_EQ(label->width(), header->sectionSize(column)) << column;
        }
    };
    expectUnderColumns();
    s.list.resize(260, 300);
    QApplication::processEvents();
    header->resizeSection(FileCol::Icon, 60);
    expectUnderColumns();
    s.view()->horizontalScrollBar()->setValue(30);
    ASSERT_EQ(s.view()->horizontalScrollBar()->value(), 30);
    expectUnderColumns();
}

TEST(FileListView, DropHintShowsOnlyOverAnEmptyTableWhenAsked) {
    Shown s(0);
    QPixmap picture(64, 48);
    picture.fill(Qt::darkCyan);
    s.list.setDropHint(picture);
    QHeaderView* header = s.view()->horizontalHeader();
    // The hint, the header and the footer strip take turns; the scroll bars go with the table.
    const auto expectHint = [&](bool shown) {
        EXPECT_EQ(s.list.dropHintVisible(), shown);
        EXPECT_EQ(header->isHidden(), shown);
        EXPECT_EQ(s.list.footerStrip()->isHidden(), shown);
        EXPECT_EQ(s.view()->verticalScrollBarPolicy(),
                  shown ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAsNeeded);
    };
    expectHint(false);
    s.list.setDropHintVisible(true);
    QApplication::processEvents();
    expectHint(true);
    const QImage image = s.view()->grab().toImage();
    const QRect middle = QRect(QPoint(), s.view()->size()).adjusted(0, 0, 0, -40);
    EXPECT_TRUE(hasPixel(image, middle, [](const QColor& c) { return c == QColor(Qt::darkCyan); }));

    // A row arriving takes the hint away; the last one going brings it back while still asked for.
    s.table.addRow();
    expectHint(false);
    Remove_All(s.table);
    expectHint(true);
    s.list.setDropHintVisible(false);
    expectHint(false);
}

TEST(FileListView, TableOutlivesItsView) {
    FileViewMain table;
    table.addRow();
    { FileListView list(table); }
    // The model no longer asks the view: cells fall back to the column's own width.
    Set_RowProgress(table, 0, FileCol::Status, 50);
    EXPECT_EQ(table.progress(0).cellWidth, 152);
    table.selectRow(0);
    EXPECT_EQ(table.selectedRows(), QList<int>{0});
}
