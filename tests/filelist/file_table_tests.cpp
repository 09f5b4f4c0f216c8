#include "FileViewMain.h"
#include "Globals.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <tuple>

using namespace morvane;

namespace {

// A table of n rows whose Name colour is set, as a themed list would have it.
void addRows(FileViewMain& table, int n) {
    for (int i = 0; i < n; ++i) {
        const int r = table.addRow();
        table.setText(r, FileCol::Name, QStringLiteral("clip%1").arg(r));
        table.setColor(r, FileCol::Name, 0xFFFFFF);
    }
}

QList<bool> existing(const QStringList& paths) {
    QList<bool> out;
    for (const QString& p : paths)
        out.append(QFile::exists(p));
    return out;
}

// A table of n rows, each with a thumbnail file of its own in dir.
QStringList addRowsWithThumbnails(FileViewMain& table, const QTemporaryDir& dir, int n) {
    addRows(table, n);
    QStringList thumbs;
    for (int r = 0; r < n; ++r) {
        thumbs.append(dir.filePath(QStringLiteral("t%1.bmp").arg(r)));
        QFile(thumbs.last()).open(QIODevice::WriteOnly);
        table.setText(r, FileCol::Thumbnail, thumbs.last());
    }
    return thumbs;
}

} // namespace

TEST(FileTable, RowStatesSetIconCaptionColourAndErrorText) {
    struct Case {
        int state;
        int icon;
        const char* caption;
        std::int32_t color; // -2: Name's colour
        bool errorKept;
    };
    const Case cases[] = {
        {State_Ready, 12, "", -2, false},
        {State_Done, 10, "Done", -2, false},
        {State_Failed, 11, "Unsuccessful!", kColorRed, true},
        {State_Canceled, 13, "Canceled!", kColorRed, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.state);
        FileViewMain table;
        addRows(table, 1);
        table.setText(0, FileCol::Status, QStringLiteral("42%"));
        table.setText(0, FileCol::ErrMsg, QStringLiteral("Conversion failed"));
        const int redraws = table.redrawCount();
        Set_RowState(table, 0, true, c.state);
        EXPECT_EQ(table.icon(0), c.icon);
        EXPECT_EQ(table.text(0, FileCol::Status), QString::fromLatin1(c.caption));
        EXPECT_EQ(table.color(0, FileCol::Status), c.color == -2 ? 0xFFFFFF : c.color);
        EXPECT_EQ(table.text(0, FileCol::ErrMsg),
                  c.errorKept ? QStringLiteral("Conversion failed") : QString());
        EXPECT_GT(table.redrawCount(), redraws);
    }

    // Hidden, only the icon goes and the list is filled again; row -1 is no row at all.
    FileViewMain table;
    addRows(table, 1);
    Set_RowState(table, 0, true, State_Done);
    const int populates = table.populateCount();
    Set_RowState(table, 0, false, State_Done);
    EXPECT_EQ(table.icon(0), 0);
    EXPECT_EQ(table.text(0, FileCol::Status), QStringLiteral("Done"));
    EXPECT_EQ(table.populateCount(), populates + 1);
    const int redraws = table.redrawCount();
    Set_RowState(table, -1, true, State_Failed);
    Set_RowState(table, -1, false, State_Failed);
    EXPECT_EQ(table.redrawCount(), redraws);
}

TEST(FileTable, ConvertingCyclesImagesOneToNineAndOtherStatesRestart) {
    FileViewMain table;
    addRows(table, 2);
    Icon_Cycle = 0;
    QList<int> seen;
    for (int i = 0; i < 11; ++i) {
        Set_RowState(table, 0, true, State_Converting);
        seen.append(table.icon(0));
    }
    EXPECT_EQ(seen, (QList<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 1, 2}));
    EXPECT_EQ(table.text(0, FileCol::Status), QString()); // the caption isn't touched

    Set_RowState(table, 1, true, State_Done);
    EXPECT_EQ(Icon_Cycle, 1);
    Set_RowState(table, 0, true, State_Converting);
    EXPECT_EQ(table.icon(0), 1);
    EXPECT_EQ(State_IconName(1), QStringLiteral("converting-1"));
    EXPECT_EQ(State_IconName(12), QStringLiteral("ready"));
    EXPECT_EQ(State_IconName(0), QString());
}

TEST(FileTable, ProgressMarkupAndBarData) {
    FileViewMain table;
    addRows(table, 2);
    // Without a view the cell is the column's 150 pixels by 20: W = 152, H = 18.
    Set_RowProgress(table, 0, FileCol::Status, 0);
    EXPECT_EQ(table.text(0, FileCol::Status),
              QStringLiteral(
                  "<Border Padding='0' Height='18' BorderThickness='0'BorderBrush='#ebebeb'>"
                  "<Border Width='0' BorderBrush='#007AFF' BorderThickness='0' HorizontalAlignment='Left' "
                  "VerticalAlignment='Center'><Border.Background><LinearGradientBrush StartPoint='0,0' "
                  "EndPoint='1,0'><GradientStop Color='#007AFF' Offset='0'/><GradientStop Color='#007AFF' "
                  "Offset='1'/></LinearGradientBrush></Border.Background><TextBlock FontWeight='Bold' "
                  "VerticalAlignment='Center' HorizontalAlignment='Center' Foreground='White'>0%</TextBlock>"
                  "</Border></Border>"));

    table.setCellRectProvider([](int, int) { return CellRect{400, 22, 498, 44}; });
    struct Case {
        int percent;
        int bar;
    };
    // W = 100: the product is taken in doubles, so 29 % of 100 is 28.999... and gives 28.
    for (const Case c : {Case{50, 50}, Case{29, 28}, Case{100, 100}, Case{1, 1}}) {
        Set_RowProgress(table, 1, FileCol::Status, c.percent);
        const RowProgress p = table.progress(1);
        EXPECT_TRUE(p.active);
        EXPECT_EQ(p.barWidth, c.bar) << c.percent;
        EXPECT_EQ(p.cellWidth, 100);
        EXPECT_EQ(p.height, 20);
        EXPECT_TRUE(table.text(1, FileCol::Status).contains(QStringLiteral("<Border Width='%1'").arg(c.bar)));
        EXPECT_TRUE(
            table.text(1, FileCol::Status).contains(QStringLiteral(">%1%</TextBlock>").arg(c.percent)));
    }
    Set_RowState(table, 1, true, State_Done);
    EXPECT_FALSE(table.progress(1).active);

    const QString before = table.text(0, FileCol::Status);
    Set_RowProgress(table, -1, FileCol::Status, 50);
    Set_RowProgress(table, 0, -1, 50);
    EXPECT_EQ(table.text(0, FileCol::Status), before);
}

TEST(FileTable, TotalsRoundEachRowAndCountFiles) {
    // 2.50 counts as 2 and 1.50 as 2, so the sum is not round(4.0); a blank length is skipped.
    const std::tuple<QStringList, const char*, const char*> cases[] = {
        {{}, " 0 file", "00:00:00"},
        {{"1.50"}, " 1 file", "00:00:02"},
        {{"1.50", "2.50", "  ", "3661.4"}, " 4 files", "01:01:05"},
    };
    for (const auto& [seconds, files, length] : cases) {
        FileViewMain table;
        addRows(table, static_cast<int>(seconds.size()));
        for (int r = 0; r < table.rows(); ++r)
            table.setText(r, FileCol::SrcDuration, seconds.at(r));
        Update_Totals(table);
        EXPECT_EQ(table.footer(FileCol::Name), QLatin1String(files));
        EXPECT_EQ(table.footer(FileCol::Duration), QLatin1String(length));
    }
}

TEST(FileTable, RemovingRowsDeletesTheirOwnThumbnailsAndMovesTheSelection) {
    // Five rows with a thumbnail file each; row 3 names a file already gone and row 4 names none.
    struct Case {
        QList<int> selected;
        bool all;
        QStringList left;
        QList<bool> kept;
    };
    const Case cases[] = {
        {{3, 0, 2}, false, {"clip1", "clip4"}, {false, true, false, true, true}},
        {{2}, true, {}, {false, false, false, true, true}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.all);
        QTemporaryDir dir;
        FileViewMain table;
        const QStringList thumbs = addRowsWithThumbnails(table, dir, 5);
        table.setText(3, FileCol::Thumbnail, dir.filePath(QStringLiteral("gone.bmp")));
        table.setText(4, FileCol::Thumbnail, QString());
        table.setSelectedRows(c.selected);
        c.all ? Remove_All(table) : Remove_Selected(table);
        QStringList left;
        for (int r = 0; r < table.rows(); ++r)
            left.append(table.text(r, FileCol::Name));
        EXPECT_EQ(left, c.left);
        EXPECT_EQ(table.rowCount(), c.left.size());
        EXPECT_EQ(existing(thumbs), c.kept);
        EXPECT_TRUE(table.selectedRows().isEmpty());
        Remove_All(table);
        Remove_Selected(table); // an empty table returns at once
    }

    // Rows out of range are never selected; rows removed above the selection move it up.
    FileViewMain table;
    addRows(table, 5);
    table.setSelectedRows({4, 1, 9, -1});
    EXPECT_EQ(table.selectedRows(), (QList<int>{1, 4}));
    table.removeRows({0, 2});
    EXPECT_EQ(table.selectedRows(), (QList<int>{0, 2}));
    EXPECT_EQ(table.text(2, FileCol::Name), QStringLiteral("clip4"));
}

TEST(FileTable, TimePairsKeepSignedWordsAndRebuild) {
    FileViewMain table;
    addRows(table, 1);
    struct Case {
        std::int64_t micros;
        const char* low;
        const char* high;
    };
    const Case cases[] = {
        {0, "0", "0"},
        {7000000, "7000000", "0"},
        {3000000000LL, "-1294967296", "0"}, // a low word above 2^31 - 1 is stored negative
        {5000000000LL, "705032704", "1"},
        {-1, "-1", "-1"},
        {std::numeric_limits<std::int64_t>::min(), "0", "-2147483648"},
    };
    for (const Case& c : cases) {
        table.setTimePair(0, FileCol::TrimEndLow, FileCol::TrimEndHigh, c.micros);
        EXPECT_EQ(table.text(0, FileCol::TrimEndLow), QLatin1String(c.low));
        EXPECT_EQ(table.text(0, FileCol::TrimEndHigh), QLatin1String(c.high));
        EXPECT_EQ(table.timePair(0, FileCol::TrimEndLow, FileCol::TrimEndHigh), c.micros);
    }
}

TEST(FileTable, CellKindsAndViewInterface) {
    FileViewMain table;
    addRows(table, 1);
    EXPECT_EQ(table.columnCount(), 62);
    EXPECT_EQ(table.headerData(4, Qt::Horizontal).toString(), QString());
    EXPECT_EQ(table.headerData(38, Qt::Horizontal).toString(), QStringLiteral("Trim StartLow"));
    EXPECT_EQ(File_ColumnInfo(FileCol::Name).width, 300);
    EXPECT_EQ(File_ColumnInfo(FileCol::Thumbnail).width, 0);

    // Fresh cells are empty of their kind.
    EXPECT_EQ(table.text(0, FileCol::FileSize), QStringLiteral("0"));
    EXPECT_EQ(table.text(0, FileCol::VideoStream), QStringLiteral("0"));
    EXPECT_EQ(table.text(0, FileCol::Filters), QString());

    table.setLong(0, FileCol::VideoWidth, -1920);
    table.setBool(0, FileCol::AudioStream, true);
    EXPECT_EQ(table.text(0, FileCol::VideoWidth), QStringLiteral("-1920"));
    EXPECT_EQ(table.longValue(0, FileCol::VideoWidth), -1920);
    EXPECT_EQ(table.text(0, FileCol::AudioStream), QStringLiteral("-1"));
    EXPECT_TRUE(table.boolValue(0, FileCol::AudioStream));
    EXPECT_EQ(table.data(table.index(0, FileCol::VideoWidth)).toString(), QStringLiteral("-1920"));
    EXPECT_EQ(table.text(5, FileCol::Name), QString());   // out of range reads empty
    table.setText(5, FileCol::Name, QStringLiteral("x")); // and writes nowhere

    Set_RowState(table, 0, true, State_Ready);
    EXPECT_EQ(table.data(table.index(0, 0), FileViewMain::IconNameRole).toString(), QStringLiteral("ready"));
}

TEST(FileTable, InPlaceRenameToBlanksRestoresSourceName) {
    FileViewMain table;
    addRows(table, 1);
    table.setText(0, FileCol::FilePath, QStringLiteral("/media/videos/"));
    table.setText(0, FileCol::FileName, QStringLiteral("holiday.2019.mkv"));

    EXPECT_FALSE(table.flags(table.index(0, FileCol::Name)) & Qt::ItemIsEditable);
    table.setEditing(true);
    EXPECT_TRUE(table.flags(table.index(0, FileCol::Name)) & Qt::ItemIsEditable);
    EXPECT_FALSE(table.flags(table.index(0, FileCol::Format)) & Qt::ItemIsEditable);

    Begin_NameEdit(table, 0);
    EXPECT_EQ(table.color(0, FileCol::Name), 0);
    table.setText(0, FileCol::Name, QStringLiteral("   "));
    End_NameEdit(table, 0, 2);
    EXPECT_EQ(table.text(0, FileCol::Name), QStringLiteral("holiday.2019"));
    EXPECT_EQ(table.color(0, FileCol::Name), 0xFFFFFF);

    table.setText(0, FileCol::Name, QStringLiteral("kept"));
    End_NameEdit(table, 0, 1);
    EXPECT_EQ(table.text(0, FileCol::Name), QStringLiteral("kept"));
    EXPECT_EQ(table.color(0, FileCol::Name), 0);
}
