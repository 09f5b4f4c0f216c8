// The file item table: one row per media item, 62 cells addressed by column number. Columns 0 to 4
// are what the user sees, 5 to 61 carry the probe result, the edit values and the conversion result.
// Every stage reads and writes cells by number, so the numbers below are the contract.
//
// The rows live here and nowhere else; a QTableView reads them through the QAbstractTableModel
// interface without copies. Main thread only. Nothing here reports errors: a bad row or column is
// skipped, as the list's operations are all "errors ignored".
#pragma once

#include <QAbstractTableModel>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <array>
#include <cstdint>
#include <functional>

namespace morvane {

namespace FileCol {
enum : int {
    Icon = 0,
    Name = 1,
    Format = 2,
    Duration = 3,
    Status = 4,
    SrcDuration = 5,
    FileName = 6,
    FilePath = 7,
    FileSize = 8,
    FileDuration = 9,
    VideoStream = 10,
    AudioStream = 11,
    SubtitleStream = 12,
    SubtitleCount = 13,
    VideoStreamCount = 14,
    VideoCodecName = 15,
    VideoWidth = 16,
    VideoHeight = 17,
    VideoBitRate = 18,
    VideoFrameRateNumerator = 19,
    VideoSampleAspectRatio = 20,
    VideoDurationLow = 21,
    VideoLanguage = 22,
    AudioStreamCount = 23,
    AudioCodecName = 24,
    AudioBitRate = 25,
    AudioSampleRate = 26,
    AudioChannels = 27,
    AudioDurationLow = 28,
    AudioLanguage = 29,
    FileTitle = 30,
    FileComment = 31,
    FileAuthor = 32,
    FileAlbum = 33,
    FileYear = 34,
    FileTrack = 35,
    FileGenre = 36,
    FileCopyright = 37,
    TrimStartLow = 38,
    TrimStartHigh = 39,
    TrimEndLow = 40,
    TrimEndHigh = 41,
    CropTop = 42,
    CropBottom = 43,
    CropLeft = 44,
    CropRight = 45,
    PadTop = 46,
    PadBottom = 47,
    PadLeft = 48,
    PadRight = 49,
    PadColor = 50,
    CropWidth = 51,
    CropHeight = 52,
    Filters = 53,
    Deinterlacing = 54,
    ConvertedFileName = 55,
    FileExt = 56,
    NewAspectRatio = 57,
    FileDurationLow = 58,
    FileDurationHigh = 59,
    Thumbnail = 60,
    ErrMsg = 61,
    Count = 62
};
} // namespace FileCol

enum class CellKind { Icon, Text, Long, Bool };

// Caption (the field name for a hidden column), display width (0 for hidden), kind.
struct FileColumnInfo {
    const char* caption;
    int width;
    CellKind kind;
};
const FileColumnInfo& File_ColumnInfo(int column); // column clamped into 0..61

// Text colours are Windows BGR values (255 is red); -1 leaves the view's own foreground.
inline constexpr std::int32_t kDefaultColor = -1;
inline constexpr std::int32_t kColorRed = 255;

// Row states of Set_RowState, and the images of the state icon.
enum RowState : int {
    State_Converting = 0,
    State_Ready = 1,
    State_Done = 2,
    State_Failed = 3,
    State_Canceled = 4
};
// Role name of an icon image for the view's icon set: "" for 0, "converting-1" .. "converting-9",
// "done" (10), "failed" (11), "ready" (12), "canceled" (13), "edited" (14, the edit mark).
QString State_IconName(int image);

// What a view needs to paint the status cell's progress bar instead of parsing the mark-up.
struct RowProgress {
    bool active = false;
    int percent = 0;
    int barWidth = 0;  // B, in pixels
    int cellWidth = 0; // W, the frame's width
    int height = 0;    // H
};

// A cell rectangle with Windows semantics (right and bottom are one past the last pixel).
struct CellRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};

struct FileCell {
    QVariant value; // QString, qint32 or bool by the column's kind
    QString second; // the second value; only SrcDuration carries one
    std::int32_t color = kDefaultColor;
};

struct FileRow {
    std::array<FileCell, FileCol::Count> cells;
    int icon = 0;     // state image of column 0
    int editMark = 0; // image beside the length in column 3: 14 once the edit window changed the row
    RowProgress progress;
};

class FileViewMain : public QAbstractTableModel {
public:
    // Roles beyond Qt's: the icon image number and its role name, the bar data, the text colour.
    enum Role : int {
        IconRole = Qt::UserRole + 1,
        IconNameRole,
        ProgressPercentRole,
        ProgressBarWidthRole,
        ProgressCellWidthRole,
        ProgressHeightRole,
        ProgressActiveRole,
        ColorRole,
    };

    explicit FileViewMain(QObject* parent = nullptr);

    int rows() const { return static_cast<int>(m_rows.size()); }
    const FileRow& row(int r) const { return m_rows.at(r); }

    // A new row of empty cells at the end; returns its number.
    int addRow();
    void removeRows(QList<int> rowNumbers);
    void clearRows();

    // Text form of any cell: a long as decimal digits, a bool as "-1" or "0", "" out of range.
    QString text(int row, int column) const;
    QString second(int row, int column) const;
    std::int32_t longValue(int row, int column) const; // 0 when the cell holds no number
    bool boolValue(int row, int column) const;
    std::int32_t color(int row, int column) const;
    int icon(int row) const;
    int editMark(int row) const;
    void setEditMark(int row, int image);
    RowProgress progress(int row) const;

    void setText(int row, int column, const QString& text); // a write to Status ends its progress bar
    void setSecond(int row, int column, const QString& text);
    void setLong(int row, int column, std::int32_t value);
    void setBool(int row, int column, bool value);
    void setColor(int row, int column, std::int32_t color);
    void setIcon(int row, int image);
    void setProgress(int row, const RowProgress& progress);

    // A time pair stored as two cells of signed 32-bit decimal words (low first); rebuilt, not added.
    // A word that is no number reads 0.
    std::int64_t timePair(int row, int lowColumn, int highColumn) const;
    void setTimePair(int row, int lowColumn, int highColumn, std::int64_t microseconds);

    // Selection: the selected row numbers in ascending order.
    const QList<int>& selectedRows() const { return m_selected; }
    void setSelectedRows(QList<int> rowNumbers);
    void selectRow(int row) { setSelectedRows({row}); }
    void clearSelection() { setSelectedRows({}); }
    // Told after every setSelectedRows, so that a view can follow the selection that logic sets.
    void setSelectionObserver(std::function<void()> observer) { m_selectionObserver = std::move(observer); }

    QString footer(int column) const;
    void setFooter(int column, const QString& text); // views hear of it through headerDataChanged

    // A caption shown in place of the column's own, such as the elapsed time over the status column.
    void setHeaderCaption(int column, const QString& caption);

    // In-place editing of column 1 (double click on the Name cell switches it on).
    bool editing() const { return m_editing; }
    void setEditing(bool on) { m_editing = on; }

    // The view answers where a cell lies; without one, the cell is the column's width by 20 pixels.
    void setCellRectProvider(std::function<CellRect(int row, int column)> provider);
    CellRect cellRect(int row, int column) const;

    // The report table's "populate" (rows re-read) and "redraw" (cells repainted), counted so that
    // headless callers can see them.
    void populate();
    void redraw();
    int populateCount() const { return m_populateCount; }
    int redrawCount() const { return m_redrawCount; }

    // QAbstractTableModel
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    bool valid(int row, int column) const;
    void changed(int row, int column);

    QList<FileRow> m_rows;
    QList<int> m_selected;
    std::array<QString, FileCol::Count> m_footers;
    std::function<CellRect(int, int)> m_cellRect;
    std::function<void()> m_selectionObserver;
    QHash<int, QString> m_captions;
    bool m_editing = false;
    int m_populateCount = 0;
    int m_redrawCount = 0;
};

// The 16-bit image counter of the Converting state, shared by all rows.
inline std::int16_t Icon_Cycle = 0;

void Set_RowState(FileViewMain& table, int row, bool show, int state);
// The progress mark-up text for percent P in a cell W wide and H high; B is the bar's width.
QString Progress_Markup(int percent, int barWidth, int height);
void Set_RowProgress(FileViewMain& table, int row, int column, int percent);
void Update_Totals(FileViewMain& table);
void Remove_Selected(FileViewMain& table);
void Remove_All(FileViewMain& table);

// In-place rename of column 1: the begin turns the text black for the edit box; the end restores a
// blank name from the source file and, like a cancel, gives back the theme's colour.
void Begin_NameEdit(FileViewMain& table, int row);
void End_NameEdit(FileViewMain& table, int row, int themeNo);
void Cancel_NameEdit(FileViewMain& table, int row, int themeNo);

// Lets the event loop run once, when there is one.
void Yield_Events();

} // namespace morvane
