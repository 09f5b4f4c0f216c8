// The file list of the main window: a table view over FileViewMain that shows columns 0 to 4, a
// footer strip under it with the totals of Update_Totals, and the drop hint over the empty table.
//
// The model stays the truth: its selectedRows() is what the logic reads, and this view keeps the
// model's selection and its own in step both ways. The view answers the model's cell rectangles, so
// Set_RowProgress measures real cells. Key and mouse actions that the host carries out come out as
// signals; the in-place rename of column 1 is done here.
//
// Main thread only. The table is not owned and must outlive the view.
#pragma once

#include "FileViewMain.h"

#include <QIcon>
#include <QPixmap>
#include <QPoint>
#include <QWidget>

#include <functional>

class QLabel;
class QTableView;

namespace morvane {

class FileTable;
class FileListDelegate;
class DropHint;

class FileListView : public QWidget {
    Q_OBJECT
public:
    explicit FileListView(FileViewMain& table, QWidget* parent = nullptr);
    ~FileListView() override;

    QTableView* view() const;
    // The strip under the table; its labels "footerName" and "footerDuration" sit under columns 1 and 3.
    QWidget* footerStrip() const;

    // True when no conversion runs (Get_ConversionState() == 0). Without one, always idle.
    void setIdleTest(std::function<bool()> idle);
    // Images 1 to 13 of the state column. Without one, the column stays blank.
    void setStateIcons(std::function<QIcon(int image)> icons);

    // Pic_DragDrop: shown over the table while it is asked for and the table has no rows. While it
    // shows, the table's header, scroll bars and the footer strip are hidden.
    void setDropHint(const QPixmap& picture);
    void setDropHintVisible(bool visible);
    bool dropHintVisible() const;

    // The in-place rename of a row's Name, as a double click on it starts it.
    void startRename(int row);

signals:
    void removeRequested();                             // Delete, idle, no modifier
    void removeAllRequested();                          // Shift+Delete, idle
    void playRequested();                               // Space while idle; double click off the Name
    void contextMenuRequested(const QPoint& globalPos); // right click on a row while idle
    void rowShown(int row);                             // selection became exactly this row while idle

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    friend class FileTable;

    bool idle() const;
    bool handleKey(int key, Qt::KeyboardModifiers modifiers);
    void handleDoubleClick(int row, int column);
    void handleContextMenu(const QPoint& globalPos);

    void setupConnections();
    void viewSelectionChanged();
    void modelSelectionChanged();
    void selectionChanged();
    void placeFooters();
    void updateFooters();
    void updateDropHint();

    FileViewMain& m_table;
    FileTable* m_view = nullptr;
    FileListDelegate* m_delegate = nullptr;
    QWidget* m_footer = nullptr;
    QLabel* m_footerName = nullptr;
    QLabel* m_footerDuration = nullptr;
    DropHint* m_hint = nullptr;
    std::function<bool()> m_idle;
    bool m_hintWanted = false;
    bool m_syncing = false;      // one side of the selection is being made to follow the other
    bool m_rowsChanging = false; // rows go or come: both sides fix their own selection
};

} // namespace morvane
