#include "FileViewMain.h"

#include "CheckedMath.h"
#include "File_Names.h"
#include "Folders_Mods.h"
#include "Registry_Mod.h"
#include "mMain.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace morvane {

namespace {

constexpr int kDefaultRowHeight = 20;
constexpr int kCycleFirst = 1;
constexpr int kCycleLast = 10;

constexpr std::array<FileColumnInfo, FileCol::Count> kColumns = {{
    {" ", 22, CellKind::Icon},
    {"Name", 300, CellKind::Text},
    {"Format", 80, CellKind::Text},
    {"Duration", 100, CellKind::Text},
    {"", 150, CellKind::Text},
    {"SrcDuration", 0, CellKind::Text},
    {"FileName", 0, CellKind::Text},
    {"FilePath", 0, CellKind::Text},
    {"FileSize", 0, CellKind::Long},
    {"FileDuration", 0, CellKind::Long},
    {"VideoStream", 0, CellKind::Bool},
    {"AudioStream", 0, CellKind::Bool},
    {"SubtitleStream", 0, CellKind::Bool},
    {"SubtitleCount", 0, CellKind::Long},
    {"VideoStreamCount", 0, CellKind::Long},
    {"VideoCodecName", 0, CellKind::Text},
    {"VideoWidth", 0, CellKind::Long},
    {"VideoHeight", 0, CellKind::Long},
    {"VideoBitRate", 0, CellKind::Long},
    {"VideoFrameRateNumerator", 0, CellKind::Long},
    {"VideoSampleAspectRatio", 0, CellKind::Text},
    {"VideoDurationLow", 0, CellKind::Long},
    {"VideoLanguage", 0, CellKind::Text},
    {"AudioStreamCount", 0, CellKind::Long},
    {"AudioCodecName", 0, CellKind::Text},
    {"AudioBitRate", 0, CellKind::Long},
    {"AudioSampleRate", 0, CellKind::Long},
    {"AudioChannels", 0, CellKind::Long},
    {"AudioDurationLow", 0, CellKind::Long},
    {"AudioLanguage", 0, CellKind::Text},
    {"FileTitle", 0, CellKind::Text},
    {"FileComment", 0, CellKind::Text},
    {"FileAuthor", 0, CellKind::Text},
    {"FileAlbum", 0, CellKind::Text},
    {"FileYear", 0, CellKind::Long},
    {"FileTrack", 0, CellKind::Long},
    {"FileGenre", 0, CellKind::Text},
    {"FileCopyright", 0, CellKind::Text},
    {"Trim StartLow", 0, CellKind::Text},
    {"Trim StartHigh", 0, CellKind::Text},
    {"Trim EndLow", 0, CellKind::Text},
    {"Trim EndHigh", 0, CellKind::Text},
    {"Crop Top", 0, CellKind::Text},
    {"Crop Bottom", 0, CellKind::Text},
    {"Crop Left", 0, CellKind::Text},
    {"Crop Right", 0, CellKind::Text},
    {"Pad Top", 0, CellKind::Text},
    {"Pad Bottom", 0, CellKind::Text},
    {"Pad Left", 0, CellKind::Text},
    {"Pad Right", 0, CellKind::Text},
    {"Pad Color", 0, CellKind::Text},
    {"Crop Width", 0, CellKind::Long},
    {"Crop Height", 0, CellKind::Long},
    {"Filters", 0, CellKind::Text},
    {"Deinterlacing", 0, CellKind::Text},
    {"ConvertedFileName", 0, CellKind::Text},
    {"FileExt", 0, CellKind::Text},
    {"NewAspectRatio", 0, CellKind::Text},
    {"FileDurationLow", 0, CellKind::Text},
    {"FileDurationHigh", 0, CellKind::Text},
    {"Thumbnail", 0, CellKind::Text},
    {"ErrMsg", 0, CellKind::Text},
}};

QVariant emptyValue(int column) {
    switch (kColumns[static_cast<std::size_t>(column)].kind) {
    case CellKind::Long:
        return QVariant::fromValue<qint32>(0);
    case CellKind::Bool:
        return QVariant(false);
    default:
        return QVariant(QString());
    }
}

std::int32_t wordOf(const QString& text) {
    bool ok = false;
    const int value = Trim_Spaces(text).toInt(&ok);
    return ok ? value : 0;
}

} // namespace

const FileColumnInfo& File_ColumnInfo(int column) {
    return kColumns[static_cast<std::size_t>(std::clamp(column, 0, FileCol::Count - 1))];
}

QString State_IconName(int image) {
    if (image >= kCycleFirst && image < kCycleLast) return QStringLiteral("converting-%1").arg(image);
    switch (image) {
    case 10:
        return QStringLiteral("done");
    case 11:
        return QStringLiteral("failed");
    case 12:
        return QStringLiteral("ready");
    case 13:
        return QStringLiteral("canceled");
    case 14:
        return QStringLiteral("edited");
    default:
        return QString();
    }
}

FileViewMain::FileViewMain(QObject* parent) : QAbstractTableModel(parent) {}

bool FileViewMain::valid(int row, int column) const {
    return row >= 0 && row < rows() && column >= 0 && column < FileCol::Count;
}

void FileViewMain::changed(int row, int column) {
    const QModelIndex at = index(row, column);
    emit dataChanged(at, at);
}

int FileViewMain::addRow() {
    const int r = rows();
    beginInsertRows(QModelIndex(), r, r);
    FileRow fresh;
    for (int c = 0; c < FileCol::Count; ++c)
        fresh.cells[static_cast<std::size_t>(c)].value = emptyValue(c);
    m_rows.append(std::move(fresh));
    endInsertRows();
    return r;
}

void FileViewMain::removeRows(QList<int> rowNumbers) {
    std::sort(rowNumbers.begin(), rowNumbers.end(), std::greater<>());
    rowNumbers.erase(std::unique(rowNumbers.begin(), rowNumbers.end()), rowNumbers.end());
    for (int r : rowNumbers) {
        if (r < 0 || r >= rows()) continue;
        beginRemoveRows(QModelIndex(), r, r);
        m_rows.removeAt(r);
        endRemoveRows();
    }
    // Removed rows leave the selection; the rows below them move up.
    QList<int> kept;
    for (int s : m_selected) {
        if (rowNumbers.contains(s)) continue;
        const auto above = std::count_if(rowNumbers.begin(), rowNumbers.end(), [s](int r) { return r < s; });
        kept.append(s - static_cast<int>(above));
    }
    m_selected = kept;
}

void FileViewMain::clearRows() {
    beginResetModel();
    m_rows.clear();
    m_selected.clear();
    endResetModel();
}

QString FileViewMain::text(int row, int column) const {
    if (!valid(row, column)) return QString();
    const QVariant& value = m_rows.at(row).cells[static_cast<std::size_t>(column)].value;
    if (value.typeId() == QMetaType::Bool) return value.toBool() ? QStringLiteral("-1") : QStringLiteral("0");
    return value.toString();
}

QString FileViewMain::second(int row, int column) const {
    return valid(row, column) ? m_rows.at(row).cells[static_cast<std::size_t>(column)].second : QString();
}

std::int32_t FileViewMain::longValue(int row, int column) const {
    return wordOf(text(row, column));
}

bool FileViewMain::boolValue(int row, int column) const {
    if (!valid(row, column)) return false;
    const QVariant& value = m_rows.at(row).cells[static_cast<std::size_t>(column)].value;
    if (value.typeId() == QMetaType::Bool) return value.toBool();
    return wordOf(value.toString()) != 0;
}

std::int32_t FileViewMain::color(int row, int column) const {
    return valid(row, column) ? m_rows.at(row).cells[static_cast<std::size_t>(column)].color : kDefaultColor;
}

int FileViewMain::icon(int row) const {
    return valid(row, 0) ? m_rows.at(row).icon : 0;
}

RowProgress FileViewMain::progress(int row) const {
    return valid(row, 0) ? m_rows.at(row).progress : RowProgress{};
}

void FileViewMain::setText(int row, int column, const QString& text) {
    if (!valid(row, column)) return;
    FileRow& r = m_rows[row];
    r.cells[static_cast<std::size_t>(column)].value = text;
    if (column == FileCol::Status) r.progress = RowProgress{};
    changed(row, column);
}

void FileViewMain::setSecond(int row, int column, const QString& text) {
    if (!valid(row, column)) return;
    m_rows[row].cells[static_cast<std::size_t>(column)].second = text;
}

void FileViewMain::setLong(int row, int column, std::int32_t value) {
    if (!valid(row, column)) return;
    m_rows[row].cells[static_cast<std::size_t>(column)].value = QVariant::fromValue<qint32>(value);
    changed(row, column);
}

void FileViewMain::setBool(int row, int column, bool value) {
    if (!valid(row, column)) return;
    m_rows[row].cells[static_cast<std::size_t>(column)].value = QVariant(value);
    changed(row, column);
}

void FileViewMain::setColor(int row, int column, std::int32_t color) {
    if (!valid(row, column)) return;
    m_rows[row].cells[static_cast<std::size_t>(column)].color = color;
    changed(row, column);
}

void FileViewMain::setIcon(int row, int image) {
    if (!valid(row, 0)) return;
    m_rows[row].icon = image;
    changed(row, FileCol::Icon);
}

int FileViewMain::editMark(int row) const {
    return valid(row, 0) ? m_rows.at(row).editMark : 0;
}

void FileViewMain::setEditMark(int row, int image) {
    if (!valid(row, 0)) return;
    m_rows[row].editMark = image;
    changed(row, FileCol::Duration);
}

void FileViewMain::setProgress(int row, const RowProgress& progress) {
    if (!valid(row, 0)) return;
    m_rows[row].progress = progress;
    changed(row, FileCol::Status);
}

std::int64_t FileViewMain::timePair(int row, int lowColumn, int highColumn) const {
    return Time_FromPair(wordOf(text(row, lowColumn)), wordOf(text(row, highColumn)));
}

void FileViewMain::setTimePair(int row, int lowColumn, int highColumn, std::int64_t microseconds) {
    setText(row, lowColumn, QString::number(Time_Low(microseconds)));
    setText(row, highColumn, QString::number(Time_High(microseconds)));
}

void FileViewMain::setSelectedRows(QList<int> rowNumbers) {
    std::sort(rowNumbers.begin(), rowNumbers.end());
    rowNumbers.erase(std::unique(rowNumbers.begin(), rowNumbers.end()), rowNumbers.end());
    rowNumbers.removeIf([this](int r) { return r < 0 || r >= rows(); });
    m_selected = rowNumbers;
    if (m_selectionObserver) m_selectionObserver();
}

QString FileViewMain::footer(int column) const {
    return column >= 0 && column < FileCol::Count ? m_footers[static_cast<std::size_t>(column)] : QString();
}

void FileViewMain::setFooter(int column, const QString& text) {
    if (column < 0 || column >= FileCol::Count) return;
    m_footers[static_cast<std::size_t>(column)] = text;
    emit headerDataChanged(Qt::Horizontal, column, column);
}

void FileViewMain::setHeaderCaption(int column, const QString& caption) {
    if (column < 0 || column >= FileCol::Count) return;
    m_captions.insert(column, caption);
    emit headerDataChanged(Qt::Horizontal, column, column);
}

void FileViewMain::setCellRectProvider(std::function<CellRect(int, int)> provider) {
    m_cellRect = std::move(provider);
}

CellRect FileViewMain::cellRect(int row, int column) const {
    if (m_cellRect) return m_cellRect(row, column);
    return CellRect{0, 0, File_ColumnInfo(column).width, kDefaultRowHeight};
}

void FileViewMain::populate() {
    ++m_populateCount;
    emit layoutAboutToBeChanged();
    emit layoutChanged();
}

void FileViewMain::redraw() {
    ++m_redrawCount;
    if (rows() > 0) emit dataChanged(index(0, 0), index(rows() - 1, FileCol::Count - 1));
}

int FileViewMain::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows();
}

int FileViewMain::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : FileCol::Count;
}

QVariant FileViewMain::data(const QModelIndex& index, int role) const {
    const int r = index.row();
    const int c = index.column();
    if (!index.isValid() || !valid(r, c)) return {};
    const FileRow& item = m_rows.at(r);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return c == FileCol::Icon ? QVariant() : QVariant(text(r, c));
    case Qt::TextAlignmentRole:
        return c == FileCol::Icon ? QVariant(Qt::AlignCenter) : QVariant();
    case IconRole:
        if (c == FileCol::Duration) return item.editMark;
        return c == FileCol::Icon ? QVariant(item.icon) : QVariant();
    case IconNameRole:
        return c == FileCol::Icon ? QVariant(State_IconName(item.icon)) : QVariant();
    case ColorRole:
        return item.cells[static_cast<std::size_t>(c)].color;
    case ProgressActiveRole:
        return item.progress.active;
    case ProgressPercentRole:
        return item.progress.percent;
    case ProgressBarWidthRole:
        return item.progress.barWidth;
    case ProgressCellWidthRole:
        return item.progress.cellWidth;
    case ProgressHeightRole:
        return item.progress.height;
    default:
        return {};
    }
}

bool FileViewMain::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (role != Qt::EditRole || index.column() != FileCol::Name || !valid(index.row(), index.column()))
        return false;
    setText(index.row(), FileCol::Name, value.toString());
    End_NameEdit(*this, index.row(), Theme_No);
    return true;
}

QVariant FileViewMain::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= FileCol::Count) return {};
    if (role == Qt::DisplayRole)
        return m_captions.contains(section) ? m_captions.value(section)
                                            : QString::fromLatin1(File_ColumnInfo(section).caption);
    if (role == Qt::SizeHintRole) return File_ColumnInfo(section).width;
    return {};
}

Qt::ItemFlags FileViewMain::flags(const QModelIndex& index) const {
    Qt::ItemFlags result = QAbstractTableModel::flags(index);
    if (m_editing && index.column() == FileCol::Name) result |= Qt::ItemIsEditable;
    return result;
}

void Set_RowState(FileViewMain& table, int row, bool show, int state) {
    if (row == -1) return;
    if (!show) {
        table.setIcon(row, 0);
        table.populate();
        table.redraw();
        return;
    }
    if (state == State_Converting) {
        if (Icon_Cycle == 0 || Icon_Cycle == kCycleLast) Icon_Cycle = kCycleFirst;
        table.setIcon(row, Icon_Cycle);
        ++Icon_Cycle;
        table.redraw();
        return;
    }
    Icon_Cycle = kCycleFirst;
    const std::int32_t nameColor = table.color(row, FileCol::Name);
    switch (state) {
    case State_Ready:
        table.setIcon(row, 12);
        table.setText(row, FileCol::Status, QString());
        table.setColor(row, FileCol::Status, nameColor);
        table.setText(row, FileCol::ErrMsg, QString());
        break;
    case State_Done:
        table.setIcon(row, 10);
        table.setText(row, FileCol::Status, QStringLiteral("Done"));
        table.setColor(row, FileCol::Status, nameColor);
        table.setText(row, FileCol::ErrMsg, QString());
        break;
    case State_Failed:
        table.setIcon(row, 11);
        table.setText(row, FileCol::Status, QStringLiteral("Unsuccessful!"));
        table.setColor(row, FileCol::Status, kColorRed);
        break;
    case State_Canceled:
        table.setIcon(row, 13);
        table.setText(row, FileCol::Status, QStringLiteral("Canceled!"));
        table.setColor(row, FileCol::Status, kColorRed);
        table.setText(row, FileCol::ErrMsg, QString());
        break;
    default:
        break;
    }
    table.redraw();
}

QString Progress_Markup(int percent, int barWidth, int height) {
    // The missing blank before the outer BorderBrush is what the table's mark-up parser expects.
    return QStringLiteral("<Border Padding='0' Height='") + QString::number(height) +
           QStringLiteral("' BorderThickness='0'BorderBrush='#ebebeb'><Border Width='") +
           QString::number(barWidth) +
           QStringLiteral("' BorderBrush='#007AFF' BorderThickness='0' HorizontalAlignment='Left' "
                          "VerticalAlignment='Center'><Border.Background><LinearGradientBrush "
                          "StartPoint='0,0' EndPoint='1,0'><GradientStop Color='#007AFF' Offset='0'/>"
                          "<GradientStop Color='#007AFF' Offset='1'/></LinearGradientBrush>"
                          "</Border.Background><TextBlock FontWeight='Bold' VerticalAlignment='Center' "
                          "HorizontalAlignment='Center' Foreground='White'>") +
           QString::number(percent) + QStringLiteral("%</TextBlock></Border></Border>");
}

void Set_RowProgress(FileViewMain& table, int row, int column, int percent) {
    if (row == -1 || column == -1) return;
    if (row < 0 || row >= table.rows() || column < 0 || column >= FileCol::Count) return;
    const CellRect rect = table.cellRect(row, column);
    const int width = rect.right - rect.left + 2;
    const int height = rect.bottom - rect.top - 2;
    // Integer part of the product in double, the order of the original arithmetic.
    const int bar = static_cast<int>(std::floor(static_cast<double>(percent) / 100.0 * width));
    table.setText(row, column, Progress_Markup(percent, bar, height));
    if (column == FileCol::Status) table.setProgress(row, RowProgress{true, percent, bar, width, height});
    table.redraw();
}

void Update_Totals(FileViewMain& table) {
    std::int32_t total = 0;
    for (int r = 0; r < table.rows(); ++r) {
        const QString seconds = Trim_Spaces(table.text(r, FileCol::SrcDuration));
        if (seconds.isEmpty()) continue;
        // Each row is rounded on its own; a row that is no number or would overflow is skipped.
        try {
            total = addChecked(total, roundToInt32(textToNumber(seconds)));
        } catch (const RunTimeError&) {
        }
    }
    const int count = table.rows();
    table.setFooter(FileCol::Name, QStringLiteral(" ") + QString::number(count) +
                                       (count < 2 ? QStringLiteral(" file") : QStringLiteral(" files")));
    table.setFooter(FileCol::Duration, Format_Seconds(total, false));
}

void Remove_Selected(FileViewMain& table) {
    if (table.rows() == 0) return;
    const QList<int> selected = table.selectedRows();
    // The walk's bound is the row count, not the selection's size; steps past the selection do nothing.
    for (int i = 0; i < table.rows(); ++i) {
        if (i >= selected.size()) continue;
        const QString thumbnail = table.text(selected.at(i), FileCol::Thumbnail);
        if (!thumbnail.isEmpty()) Delete_File(thumbnail);
    }
    table.removeRows(selected);
    Yield_Events();
    table.redraw();
}

void Remove_All(FileViewMain& table) {
    if (table.rows() == 0) return;
    for (int r = 0; r < table.rows(); ++r) {
        const QString thumbnail = table.text(r, FileCol::Thumbnail);
        if (!thumbnail.isEmpty()) Delete_File(thumbnail);
    }
    table.clearRows();
    Yield_Events();
    table.redraw();
}

namespace {
void restoreNameColor(FileViewMain& table, int row, int themeNo) {
    table.setColor(row, FileCol::Name, themeNo == 2 ? 0xFFFFFF : 0);
}
} // namespace

void Begin_NameEdit(FileViewMain& table, int row) {
    table.setColor(row, FileCol::Name, 0);
}

void End_NameEdit(FileViewMain& table, int row, int themeNo) {
    if (Trim_Spaces(table.text(row, FileCol::Name)).isEmpty())
        table.setText(row, FileCol::Name,
                      File_BaseName(table.text(row, FileCol::FilePath) + table.text(row, FileCol::FileName)));
    restoreNameColor(table, row, themeNo);
}

void Cancel_NameEdit(FileViewMain& table, int row, int themeNo) {
    restoreNameColor(table, row, themeNo);
}

void Yield_Events() {
    if (QCoreApplication::instance() != nullptr) QCoreApplication::processEvents();
}

} // namespace morvane
