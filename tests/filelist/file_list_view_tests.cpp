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

// Return commits through a queued call.
void commit(QLineEdit* editor) {
    QTest::keyClick(editor, Qt::Key_Return);
    QApplication::processEvents();
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
    EXPECT_EQ(header->sectionSize(FileCol::Icon), 22);
    EXPECT_EQ(header->sectionSize(FileCol::Format), 80);
    EXPECT_EQ(header->sectionSize(FileCol::Duration), 100);
    EXPECT_EQ(header->sectionSize(FileCol::Status), 150);
    EXPECT_EQ(header->length(), s.viewport()->width()); // the Name takes the rest
    EXPECT_GT(header->sectionSize(FileCol::Name), 300);
    EXPECT_GT(header->height(), 10);
    EXPECT_TRUE(s.view()->verticalHeader()->isHidden());
    EXPECT_EQ(s.view()->rowHeight(0), 26);

    // The host shows the elapsed time over the status column.
    QSignalSpy headerChanged(&s.table, &QAbstractItemModel::headerDataChanged);
    EXPECT_EQ(s.table.headerData(FileCol::Status, Qt::Horizontal).toString(), QString());
    s.table.setHeaderCaption(FileCol::Status, QStringLiteral("00:01:05"));
    EXPECT_EQ(headerChanged.count(), 1);
    EXPECT_EQ(s.table.headerData(FileCol::Status, Qt::Horizontal).toString(), QStringLiteral("00:01:05"));
    EXPECT_EQ(s.table.headerData(FileCol::Name, Qt::Horizontal).toString(), QStringLiteral("Name"));
}

TEST(FileListView, KeysActOnlyWhileIdle) {
    Shown s(3);
    s.click(1, FileCol::Format);
    QSignalSpy remove(&s.list, &FileListView::removeRequested);
    QSignalSpy removeAll(&s.list, &FileListView::removeAllRequested);
    QSignalSpy play(&s.list, &FileListView::playRequested);

    QTest::keyClick(s.view(), Qt::Key_Delete);
    QTest::keyClick(s.view(), Qt::Key_Delete, Qt::ShiftModifier);
    QTest::keyClick(s.view(), Qt::Key_Delete, Qt::ControlModifier);
    QTest::keyClick(s.view(), Qt::Key_Space);
    EXPECT_EQ(remove.count(), 1);
    EXPECT_EQ(removeAll.count(), 1);
    EXPECT_EQ(play.count(), 1);
    EXPECT_EQ(s.table.selectedRows(), QList<int>{1}); // Space plays, it does not select

    s.idle = false;
    QTest::keyClick(s.view(), Qt::Key_Delete);
    QTest::keyClick(s.view(), Qt::Key_Delete, Qt::ShiftModifier);
    QTest::keyClick(s.view(), Qt::Key_Space);
    EXPECT_EQ(remove.count(), 1);
    EXPECT_EQ(removeAll.count(), 1);
    EXPECT_EQ(play.count(), 1);
}

TEST(FileListView, DoubleClickRenamesTheNameInPlaceOrPlays) {
    const int theme = Theme_No;
    Shown s(3);
    QSignalSpy play(&s.list, &FileListView::playRequested);

    for (int themeNo : {1, 2}) {
        SCOPED_TRACE(themeNo);
        Theme_No = themeNo;
        s.table.setText(0, FileCol::Name, QStringLiteral("before"));
        s.doubleClick(0, FileCol::Name);
        QLineEdit* edit = s.editor(0);
        ASSERT_NE(edit, nullptr);
        EXPECT_TRUE(s.table.editing());
        EXPECT_EQ(edit->selectedText(), QStringLiteral("before"));
        EXPECT_EQ(s.table.color(0, FileCol::Name), 0); // black for the edit box
        edit->setText(QStringLiteral("   "));
        s.table.redraw(); // progress redraws the list while the user types
        EXPECT_EQ(edit->text(), QStringLiteral("   "));
        commit(edit);
        EXPECT_EQ(s.editor(0), nullptr);
        EXPECT_EQ(s.table.text(0, FileCol::Name), QStringLiteral("clip0")); // from 7 + 6
        EXPECT_EQ(s.table.color(0, FileCol::Name), themeNo == 2 ? 0xFFFFFF : 0);
    }

    // A real name is kept; Escape keeps the old one and still gives the colour back.
    Theme_No = 2;
    s.doubleClick(1, FileCol::Name);
    ASSERT_NE(s.editor(1), nullptr);
    QTest::keyClicks(s.editor(1), QStringLiteral("holiday"));
    commit(s.editor(1));
    EXPECT_EQ(s.table.text(1, FileCol::Name), QStringLiteral("holiday"));
    s.doubleClick(1, FileCol::Name);
    ASSERT_NE(s.editor(1), nullptr);
    QTest::keyClicks(s.editor(1), QStringLiteral("zzz"));
    QTest::keyClick(s.editor(1), Qt::Key_Escape);
    EXPECT_EQ(s.editor(1), nullptr);
    EXPECT_EQ(s.table.text(1, FileCol::Name), QStringLiteral("holiday"));
    EXPECT_EQ(s.table.color(1, FileCol::Name), 0xFFFFFF);
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

TEST(FileListView, RightClickSwitchesEditingOffAndAsksForTheMenuWhenIdle) {
    Shown s(2);
    QSignalSpy menu(&s.list, &FileListView::contextMenuRequested);
    const QPoint onRow = s.cell(1, FileCol::Format).center();

    s.idle = false;
    s.table.setEditing(true);
    const int redraws = s.table.redrawCount();
    s.rightClick(onRow);
    EXPECT_FALSE(s.table.editing());
    EXPECT_GT(s.table.redrawCount(), redraws);
    EXPECT_EQ(menu.count(), 0);

    s.idle = true;
    s.rightClick(onRow);
    ASSERT_EQ(menu.count(), 1);
    EXPECT_EQ(menu.at(0).at(0).toPoint(), s.viewport()->mapToGlobal(onRow));

    // Below the last row there is no row to act on.
    s.table.setEditing(true);
    s.rightClick(QPoint(onRow.x(), s.viewport()->height() - 5));
    EXPECT_TRUE(s.table.editing());
    EXPECT_EQ(menu.count(), 1);
}

TEST(FileListView, SelectionFollowsBothWaysAndShowsASingleRow) {
    Shown s(4);
    QSignalSpy shown(&s.list, &FileListView::rowShown);

    // Logic to view.
    s.table.setSelectedRows({3, 1});
    EXPECT_EQ(s.viewRows(), (QList<int>{1, 3}));
    EXPECT_EQ(shown.count(), 0);
    s.table.selectRow(2);
    EXPECT_EQ(s.viewRows(), QList<int>{2});
    ASSERT_EQ(shown.count(), 1);
    EXPECT_EQ(shown.at(0).at(0).toInt(), 2);
    s.table.selectRow(2); // no change, no new showing
    EXPECT_EQ(shown.count(), 1);

    // View to logic, with editing switched off on every change.
    s.table.setEditing(true);
    s.click(0, FileCol::Format);
    EXPECT_EQ(s.table.selectedRows(), QList<int>{0});
    EXPECT_FALSE(s.table.editing());
    ASSERT_EQ(shown.count(), 2);
    EXPECT_EQ(shown.at(1).at(0).toInt(), 0);
    s.click(3, FileCol::Format, Qt::ControlModifier);
    EXPECT_EQ(s.table.selectedRows(), (QList<int>{0, 3}));
    EXPECT_EQ(shown.count(), 2);

    s.idle = false;
    s.click(1, FileCol::Format);
    EXPECT_EQ(s.table.selectedRows(), QList<int>{1});
    EXPECT_EQ(shown.count(), 2);

    // Rows above the selection go: both sides move it up alike.
    s.idle = true;
    s.table.selectRow(3);
    s.table.removeRows({0});
    EXPECT_EQ(s.table.selectedRows(), QList<int>{2});
    EXPECT_EQ(s.viewRows(), QList<int>{2});
    s.table.clearSelection();
    EXPECT_TRUE(s.viewRows().isEmpty());

    // Removing selected rows is no choice of the user's: nothing is shown half way through.
    s.table.setSelectedRows({0, 2});
    const int shownBefore = static_cast<int>(shown.count());
    Remove_Selected(s.table);
    EXPECT_EQ(s.table.rows(), 1);
    EXPECT_TRUE(s.table.selectedRows().isEmpty());
    EXPECT_TRUE(s.viewRows().isEmpty());
    EXPECT_EQ(shown.count(), shownBefore);
}

TEST(FileListView, StatusCellPaintsProgressIconsAndColours) {
    Shown s(2);
    QHeaderView* header = s.view()->horizontalHeader();

    // The model measures the real cell: W is its width + 2, H its height - 2.
    Set_RowProgress(s.table, 0, FileCol::Status, 60);
    EXPECT_EQ(s.table.progress(0).cellWidth, 152);
    EXPECT_EQ(s.table.progress(0).height, 24);
    EXPECT_EQ(s.table.progress(0).barWidth, 91);
    header->resizeSection(FileCol::Status, 200);
    Set_RowProgress(s.table, 0, FileCol::Status, 60);
    EXPECT_EQ(s.table.progress(0).cellWidth, 202);
    header->resizeSection(FileCol::Status, 150);
    Set_RowProgress(s.table, 0, FileCol::Status, 60);

    QImage image = s.picture();
    QRect cell = s.cell(0, FileCol::Status);
    const int mid = cell.center().y();
    EXPECT_EQ(pixel(image, cell.left() + 4, mid), kBlue);             // the bar
    EXPECT_EQ(pixel(image, cell.left() + 4, cell.top() + 1), kFrame); // its frame
    EXPECT_EQ(pixel(image, cell.right() - 4, mid), kFrame);           // beyond the bar
    EXPECT_EQ(pixel(image, cell.left() + 2 + 91, mid), kFrame);       // B wide
    EXPECT_EQ(pixel(image, cell.left() + 2 + 90, mid), kBlue);
    EXPECT_NE(pixel(image, cell.left(), mid), kBlue);                                   // outside the frame
    EXPECT_TRUE(hasPixel(image, cell, [](const QColor& c) { return c == Qt::white; })); // "60%"

    // At 100% the bar is wider than the cell; it stops inside the frame.
    Set_RowProgress(s.table, 0, FileCol::Status, 100);
    image = s.picture();
    EXPECT_EQ(pixel(image, cell.right() - 2, mid), kBlue);
    EXPECT_EQ(pixel(image, cell.right() - 1, mid), kFrame);
    EXPECT_NE(pixel(image, cell.right(), mid), kBlue);

    // A failed row's status is red: 255 is a Windows BGR value.
    Set_RowState(s.table, 1, true, State_Failed);
    image = s.picture();
    cell = s.cell(1, FileCol::Status);
    const auto red = [](const QColor& c) { return c.red() > 200 && c.green() < 80 && c.blue() < 80; };
    const auto blue = [](const QColor& c) { return c.blue() > 200 && c.red() < 80 && c.green() < 80; };
    EXPECT_TRUE(hasPixel(image, cell, red));
    EXPECT_FALSE(hasPixel(image, cell, blue));
    EXPECT_FALSE(s.table.progress(1).active);

    // The state icon is centred in column 0, and only when the host gives icons.
    const QRect iconCell = s.cell(1, FileCol::Icon);
    EXPECT_NE(pixel(image, iconCell.center().x(), iconCell.center().y()), QColor(Qt::magenta));
    s.list.setStateIcons([](int state) {
        QPixmap picture(16, 16);
        picture.fill(state == 11 ? Qt::magenta : Qt::green);
        return QIcon(picture);
    });
    image = s.picture();
    EXPECT_EQ(pixel(image, iconCell.center().x(), iconCell.center().y()), QColor(Qt::magenta));
    EXPECT_NE(pixel(image, iconCell.left(), iconCell.top()), QColor(Qt::magenta));
}

// A selected running row keeps its spinner readable on the highlight; other icons need no ground.
TEST(FileListView, SelectedRunningRowGetsAGroundUnderItsSpinner) {
    Shown s(2);
    s.list.setStateIcons([](int) {
        QPixmap picture(16, 16);
        picture.fill(Qt::transparent);
        QPainter p(&picture);
        p.fillRect(6, 6, 4, 4, QColor(0x00, 0x7a, 0xff));
        return QIcon(picture);
    });
    Set_RowState(s.table, 0, true, State_Converting);
    Set_RowState(s.table, 1, true, State_Done);
    const auto besideTheIcon = [&](int row) {
        const QRect cell = s.cell(row, FileCol::Icon);
        return pixel(s.picture(), cell.center().x() + 5, cell.center().y());
    };
    const QColor highlight = s.view()->palette().color(QPalette::Highlight);
    const QColor ground = s.view()->palette().color(QPalette::HighlightedText);
    s.table.setSelectedRows({0});
    QApplication::processEvents();
    EXPECT_EQ(besideTheIcon(0), ground);
    s.table.setSelectedRows({1});
    QApplication::processEvents();
    EXPECT_EQ(besideTheIcon(1), highlight);
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
    const auto columnX = [&](int column) {
        return s.viewport()->x() + header->sectionViewportPosition(column);
    };
    EXPECT_EQ(name->x(), columnX(FileCol::Name));
    EXPECT_EQ(duration->x(), columnX(FileCol::Duration));
    EXPECT_EQ(duration->width(), header->sectionSize(FileCol::Duration));
    s.list.resize(260, 300);
    QApplication::processEvents();
    const int before = duration->x();
    header->resizeSection(FileCol::Icon, 60);
    EXPECT_EQ(duration->x(), columnX(FileCol::Duration));
    EXPECT_NE(duration->x(), before);
    QScrollBar* bar = s.view()->horizontalScrollBar();
    ASSERT_GT(bar->maximum(), 30);
    const int unscrolled = duration->x();
    bar->setValue(30);
    EXPECT_EQ(duration->x(), unscrolled - 30);

    Remove_All(s.table);
    Update_Totals(s.table);
    EXPECT_EQ(name->text(), QStringLiteral(" 0 file"));
    EXPECT_EQ(duration->text(), QStringLiteral("00:00:00"));
}

TEST(FileListView, DropHintShowsOnlyOverAnEmptyTableWhenAsked) {
    Shown s(0);
    QPixmap picture(64, 48);
    picture.fill(Qt::darkCyan);
    s.list.setDropHint(picture);
    QHeaderView* header = s.view()->horizontalHeader();
    EXPECT_FALSE(s.list.dropHintVisible());
    EXPECT_FALSE(header->isHidden());

    s.list.setDropHintVisible(true);
    QApplication::processEvents();
    EXPECT_TRUE(s.list.dropHintVisible());
    EXPECT_TRUE(header->isHidden());
    EXPECT_EQ(s.view()->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    EXPECT_EQ(s.view()->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    EXPECT_TRUE(s.list.footerStrip()->isHidden());
    const QImage image = s.view()->grab().toImage();
    const QRect middle = QRect(QPoint(), s.view()->size()).adjusted(0, 0, 0, -40);
    EXPECT_TRUE(hasPixel(image, middle, [](const QColor& c) { return c == QColor(Qt::darkCyan); }));

    // A row arriving takes the hint away; the table comes back as it was.
    s.table.addRow();
    EXPECT_FALSE(s.list.dropHintVisible());
    EXPECT_FALSE(header->isHidden());
    EXPECT_EQ(s.view()->verticalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
    EXPECT_FALSE(s.list.footerStrip()->isHidden());
    Remove_All(s.table);
    EXPECT_TRUE(s.list.dropHintVisible()); // still asked for
    s.list.setDropHintVisible(false);
    EXPECT_FALSE(s.list.dropHintVisible());
    EXPECT_FALSE(header->isHidden());
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
