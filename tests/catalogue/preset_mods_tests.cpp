#include "Preset_Mods.h"
#include "mMain.h"

#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

using namespace morvane;

namespace {

CatalogueTable makeTable(const QStringList& columns, const QList<QStringList>& rows) {
    CatalogueTable table;
    for (const QString& name : columns)
        table.addColumn(name, 200);
    for (const QStringList& cells : rows) {
        const qsizetype row = table.addRecord();
        for (qsizetype i = 0; i < cells.size(); ++i)
            table.setCell(row, i, cells.at(i));
    }
    return table;
}

QStringList texts(const ValueList& list) {
    QStringList out;
    for (const ValueListItem& item : list.items())
        out << item.text;
    return out;
}

// Answers every question with the given button and records what was asked.
struct ScriptedAnswers {
    explicit ScriptedAnswers(int answer) {
        Set_MessageHandler([this, answer](const QString& text, int flags, const QString&, const QString&) {
            asked << text;
            lastFlags = flags;
            return answer;
        });
    }
    ~ScriptedAnswers() { Set_MessageHandler(nullptr); }
    QStringList asked;
    int lastFlags = 0;
};

} // namespace

TEST(PresetMods, CellAccessByColumnName) {
    CatalogueTable table =
        makeTable({"ID", "Width", "Name", "width"}, {{"1", "#720", "A", "640"}, {"2", "0", "B", ""}});
    EXPECT_EQ(Cell_Get(table, 1, "ID"), "1");
    EXPECT_EQ(Cell_Get(table, 2, "name"), "B");    // names compared ignoring case
    EXPECT_EQ(Cell_Get(table, 1, "WIDTH"), "640"); // of two columns with one name the last wins
    EXPECT_EQ(Cell_Get(table, 1, "Height"), "");
    EXPECT_EQ(Cell_Get(table, 0, "ID"), "");
    EXPECT_EQ(Cell_Get(table, 3, "ID"), "");

    // Without forceMark the lock of the old value stays; with it, markWanted false means a mark.
    CatalogueTable locks = makeTable({"Width", "Height"}, {{"#720", "480"}});
    Cell_Set(locks, 1, "Width", "1280", false, false);
    Cell_Set(locks, 1, "Height", "720", false, true);
    EXPECT_EQ(locks.records().at(0), QStringList({"#1280", "720"}));
    Cell_Set(locks, 1, "Width", "1280", true, true);
    Cell_Set(locks, 1, "Height", "720", true, false);
    EXPECT_EQ(locks.records().at(0), QStringList({"1280", "#720"}));
    Cell_Set(locks, 1, "Depth", "1", true, false);
    Cell_Set(locks, 2, "Width", "1", true, false);
    EXPECT_EQ(locks.records().at(0), QStringList({"1280", "#720"}));
    EXPECT_EQ(locks.rowCount(), 1);

    EXPECT_EQ(Row_Find(table, "Name", "B"), 2);
    EXPECT_EQ(Row_Find(table, "name", "b"), 0); // values compared exactly
    EXPECT_EQ(Row_Find(table, "Nothing", "B"), 0);
}

TEST(PresetMods, RowsFromSlashText) {
    CatalogueTable table = makeTable({"A", "B", "C"}, {{"#x", "y", "#z"}});
    Row_AddFromText(table, " 1 // two//3 ", 0, true, 0);
    ASSERT_EQ(table.rowCount(), 2);
    EXPECT_EQ(table.records().at(1), QStringList({"1", "two", "3"}));

    Row_AddFromText(table, "p//q", 1, false, 1); // fills row 1, keeping its locks
    EXPECT_EQ(table.records().at(0), QStringList({"#p", "q", "#z"}));
    Row_AddFromText(table, "p//q", 1, true, 1);
    EXPECT_EQ(table.records().at(0), QStringList({"p", "q", "#z"}));

    // Fields past the last column are dropped; a missing row changes nothing.
    Row_AddFromText(table, "a//b//c//d//e", 0, true, 0);
    EXPECT_EQ(table.records().at(2), QStringList({"a", "b", "c"}));
    Row_AddFromText(table, "zz", 1, true, 9);
    EXPECT_EQ(table.rowCount(), 3);
}

TEST(PresetMods, NewIdsRepeatTheirHexDigitsAtBothEnds) {
    const QRegularExpression form(QStringLiteral("^([0-9A-F]{2})(\\d{5})([0-9A-F]{2})$"));
    QSet<QString> seen;
    for (int i = 0; i < 2000; ++i) {
        const QString id = Row_NewId();
        const QRegularExpressionMatch m = form.match(id);
        ASSERT_TRUE(m.hasMatch()) << id.toStdString();
        EXPECT_EQ(m.captured(1), m.captured(3));
        const int b = m.captured(1).toInt(nullptr, 16);
        EXPECT_GE(b, 20);
        EXPECT_LE(b, 220);
        EXPECT_GE(m.captured(2).toInt(), 1);
        EXPECT_LE(m.captured(2).toInt(), 32701);
        seen.insert(id);
    }
    EXPECT_GT(seen.size(), 1900); // ids drawn in one tick still differ
}

TEST(PresetMods, TableRowsWithQuestions) {
    const CatalogueTable source =
        makeTable({"ID", "Name", "Format"}, {{"1", "Phone", "MP4"}, {"2", "Tablet", "MP4"}});
    CatalogueTable copy = makeTable({"Old"}, {{"x"}});
    Table_CopyColumns(copy, source);
    EXPECT_EQ(copy.columnCount(), 3);
    EXPECT_EQ(copy.rowCount(), 0);
    EXPECT_EQ(copy.columns().at(1).name, "Name");

    CatalogueTable table = source;
    {
        ScriptedAnswers no(ID_NO);
        Table_ClearRows(table, true);
        EXPECT_EQ(no.asked, QStringList({"Are you sure you want to clear all data?"}));
        EXPECT_EQ(no.lastFlags, MB_YESNO | MB_ICONQUESTION);
        EXPECT_EQ(table.rowCount(), 2);
        table.setSelectedRow(1);
        Table_RemoveSelected(table, true);
        EXPECT_EQ(no.asked.last(), "Are you sure you want to remove selected row?");
        EXPECT_EQ(table.rowCount(), 2);
    }
    {
        ScriptedAnswers yes(ID_YES);
        Table_RemoveSelected(table, true);
        EXPECT_EQ(table.rowCount(), 1);
        EXPECT_EQ(table.cell(0, 1), "Phone");
        EXPECT_EQ(table.selectedRow(), -1);
        Table_RemoveSelected(table, true); // nothing selected: no question
        Table_ClearRows(table, true);
        EXPECT_EQ(table.rowCount(), 0);
        Table_ClearRows(table, true); // empty: no question either
        EXPECT_EQ(yes.asked.size(), 2);
    }
}

TEST(PresetMods, RowAddCheckedRefusesEmptyFormats) {
    CatalogueTable favorites =
        makeTable({"ID", "Name", "Format"}, {{"1", "Old", "AVI"}, {"2", "Older", "AVI"}});
    {
        ScriptedAnswers ok(ID_OK);
        const CatalogueTable broken =
            makeTable({"ID", "Name", "Format"}, {{"1", "Phone", "MP4"}, {"2", "Tablet", "  "}});
        EXPECT_EQ(Row_AddChecked(favorites, broken, 0), 0);
        EXPECT_EQ(ok.asked, QStringList({"'Tablet' is empty!"}));
        EXPECT_EQ(ok.lastFlags & MB_ICONEXCLAMATION, MB_ICONEXCLAMATION);
        EXPECT_EQ(favorites.rowCount(), 2);
    }
    const CatalogueTable good = makeTable({"ID", "Name", "Format"}, {{"1", "Phone", "MP4"}});
    EXPECT_EQ(Row_AddChecked(favorites, good, 0), 3);
    favorites.setSelectedRow(1);
    EXPECT_EQ(Row_AddChecked(favorites, good, 2), 2); // before the selected row
    EXPECT_EQ(favorites.cell(2, 1), "Older");
    EXPECT_EQ(favorites.selectedRow(), 2); // the selection stays on its record
    favorites.setSelectedRow(-1);
    EXPECT_EQ(Row_AddChecked(favorites, good, 2), 1); // nothing selected: at the top
    EXPECT_EQ(favorites.rowCount(), 5);
}

TEST(PresetMods, SemicolonListsAndListFilling) {
    struct Case {
        const char* text;
        QStringList items;
    };
    const Case cases[] = {
        {"a;b;c;", {"a", "b", "c"}},
        {"a;b;c", {"a", "b"}},
        {"#a;b#;", {"a", "b"}},
        {"#", {}},
        {"", {}},
        {";", {""}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Split_SemicolonList(QString::fromLatin1(c.text)), c.items) << c.text;

    const CatalogueTable presets =
        makeTable({"ID", "Name", "Keyword", "Maker"}, {{"10", "iPhone", "Apple", "Apple"},
                                                       {"11", "[%Custom%]", "Apple", "Apple"},
                                                       {"12", "iPad", "Apple", "Apple"},
                                                       {"13", "[%Custom%]", "Apple", "Apple"},
                                                       {"14", "Other", "apple", "Apple"},
                                                       {"15", "MP4 HD", "MP4", "VideoFormat"}});
    ValueList list;
    List_FillByGroup(presets, "Apple", "Apple", list);
    EXPECT_EQ(texts(list), QStringList({"iPhone", "[Custom]", "iPad"}));
    EXPECT_EQ(list.items().at(1).data, "11");

    const CatalogueTable formats =
        makeTable({"Format", "VideoCodec", "AudioCodec", "FPS"}, {{" MP4 ", "H.264", "AAC", "UseFPSLib"},
                                                                  {"MP4", "#", "MP3", "25 fps;30 fps;"},
                                                                  {"AVI", "Xvid MPEG4", "MP3", "#"},
                                                                  {"MP3", "#", "MP3", "#"}});
    List_FillCodecs(formats, "MP4", "VideoCodec", list);
    EXPECT_EQ(texts(list), QStringList({"H.264"}));
    EXPECT_EQ(list.items().at(0).data, "1");
    List_FillCodecs(formats, "MP4 ", "AudioCodec", list);
    EXPECT_EQ(texts(list), QStringList({"AAC", "MP3"}));
    EXPECT_EQ(list.items().at(1).data, "2");
    List_FillCodecs(formats, "MP3", "VideoCodec", list);
    EXPECT_EQ(list.count(), 0);
    List_FillFromRow(formats, 2, "FPS", list);
    EXPECT_EQ(texts(list), QStringList({"25 fps", "30 fps"}));
    List_FillFromRow(formats, 3, "FPS", list);
    EXPECT_EQ(list.count(), 0);
}

TEST(PresetMods, SelectingValuesWithLocksAndFallbacks) {
    ValueList list;
    List_Fill("Original;720 x 480;1280 x 720;", list);
    List_Select(list, "#720 x 480", 0);
    EXPECT_EQ(list.selectedText(), "720 x 480");
    EXPECT_FALSE(list.enabled);
    List_Select(list, "1280 x 720", 0);
    EXPECT_EQ(list.selectedText(), "1280 x 720");
    EXPECT_TRUE(list.enabled);
    // A value the list does not hold is lost to the fallback, silently.
    List_Select(list, "1920 x 1080", 0);
    EXPECT_EQ(list.selectedText(), "Original");
    List_Select(list, "#1920 x 1080", 1);
    EXPECT_EQ(list.selectedText(), "1280 x 720");
    EXPECT_FALSE(list.enabled);
    ValueList empty;
    List_Select(empty, "x", 1);
    EXPECT_EQ(empty.selectedIndex(), -1);

    SpinField width;
    Spin_Set("#720", width);
    EXPECT_EQ(width.text, "720");
    EXPECT_FALSE(width.enabled);
    Spin_Set("-", width);
    EXPECT_EQ(width.text, "0");
    EXPECT_TRUE(width.enabled);
    Spin_Set("#-", width);
    EXPECT_EQ(width.text, "0");
    EXPECT_FALSE(width.enabled);
}
