#include "CatalogueTable.h"
#include "Encrypt_Mod.h"
#include "Table_Files.h"
#include "mMain.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace morvane;

namespace {

class TableFilesTest : public ::testing::Test {
protected:
    void SetUp() override {
        Catalogue_Passphrase = QString::fromLatin1(Catalogue_PassphraseText);
        Set_MessageHandler([this](const QString& text, int flags, const QString& title, const QString&) {
            messages << text;
            EXPECT_EQ(flags & MB_ICONCRITICAL, MB_ICONCRITICAL);
            EXPECT_EQ(title, "");
            return ID_OK;
        });
    }
    void TearDown() override { Set_MessageHandler(nullptr); }

    QString path(const char* name) const { return dir.filePath(QLatin1String(name)); }
    void writeRaw(const QString& file, const QByteArray& bytes) const {
        QFile out(file);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(bytes);
    }
    QByteArray readRaw(const QString& file) const {
        QFile in(file);
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    }
    static QStringList columnNames(const CatalogueTable& table) {
        QStringList names;
        for (const CatalogueColumn& column : table.columns())
            names << column.name;
        return names;
    }
    static CatalogueTable presetTable() {
        CatalogueTable table;
        table.addColumn("ID", 600);
        table.addColumn("Name", 200);
        table.addColumn("Removable", 200);
        return table;
    }
    static void addRow(CatalogueTable& table, const QStringList& cells) {
        const qsizetype row = table.addRecord();
        for (qsizetype i = 0; i < cells.size(); ++i)
            table.setCell(row, i, cells.at(i));
    }

    QTemporaryDir dir;
    QStringList messages;
};

} // namespace

TEST_F(TableFilesTest, SaveAndLoadRoundTripInBothForms) {
    for (const bool enciphered : {true, false}) {
        CatalogueTable table = presetTable();
        addRow(table, {"1", "Phone, 720p", "No"});
        addRow(table, {"  2 ", "  padded  ", "Yes"});
        addRow(table, {"3", "", ""});
        addRow(table, {"4", QString::fromUtf8("Caf\xc3\xa9 \xe2\x80\x94 HD"), "No"});
        Table_SaveFile(table, path("t.dat"), enciphered);

        CatalogueTable loaded;
        Table_LoadFile(loaded, path("t.dat"), TableLoad_Replace, enciphered);
        EXPECT_TRUE(messages.isEmpty()) << messages.join('\n').toStdString();
        EXPECT_EQ(columnNames(loaded), QStringList({"ID", "Name", "Removable"}));
        EXPECT_EQ(loaded.columns().at(0).width, 600);
        EXPECT_EQ(loaded.columns().at(1).width, 200);
        ASSERT_EQ(loaded.rowCount(), 4);
        EXPECT_EQ(loaded.records().at(0), QStringList({"1", "Phone, 720p", "No"})); // comma survives
        EXPECT_EQ(loaded.records().at(1), QStringList({"2", "padded", "Yes"}));     // spaces lost at save
        EXPECT_EQ(loaded.records().at(2), QStringList({"3", "", ""}));
        EXPECT_EQ(loaded.cell(3, 1), QString::fromUtf8("Caf\xc3\xa9 \xe2\x80\x94 HD"));
        EXPECT_EQ(loaded.refreshCount(), 1);
    }
    // Plain form on disk: quoted fields, commas between, CR LF behind every line.
    EXPECT_TRUE(readRaw(path("t.dat"))
                    .startsWith("\"ID\",\"Name\",\"Removable\"\r\n\"1\",\"Phone, 720p\",\"No\"\r\n"));
}

TEST_F(TableFilesTest, EncipheredLinesAreHexOfTheTextAndItsTrailer) {
    CatalogueTable table = presetTable();
    addRow(table, {"1", "A", "Yes"});
    Table_SaveFile(table, path("e.dat"), true);
    const QList<QByteArray> lines = readRaw(path("e.dat")).split('\n');
    ASSERT_EQ(lines.size(), 3); // two lines and the empty rest behind the last line end
    const QByteArray header = "\"ID\",\"Name\",\"Removable\"";
    EXPECT_EQ(lines.at(0).size(), 2 * (header.size() + 8) + 1); // + the CR
    EXPECT_TRUE(lines.at(0).endsWith('\r'));
    EXPECT_EQ(QString::fromLatin1(lines.at(0).trimmed()).toUpper(),
              QString::fromLatin1(lines.at(0).trimmed()));
    EXPECT_EQ(Line_Decipher(QString::fromLatin1(lines.at(0).trimmed())), QString::fromLatin1(header));
}

TEST_F(TableFilesTest, QuotesInsideFieldsAreLostOrSplitTheLine) {
    writeRaw(path("q.txt"),
             "\"A\",\"B\",\"C\"\r\n\"say \"hi\" now\",\"x\",\"y\"\r\n\"one\",two\",\"three\"\r\n");
    CatalogueTable table;
    Table_LoadFile(table, path("q.txt"), TableLoad_Replace, false);
    ASSERT_EQ(table.rowCount(), 2);
    EXPECT_EQ(table.records().at(0), QStringList({"say hi now", "x", "y"}));
    // A quote followed by a comma inside a field makes two fields; later ones move right.
    EXPECT_EQ(table.records().at(1), QStringList({"one", "two", "three"}));
    writeRaw(path("q2.txt"), "\"A\",\"B\",\"C\"\r\n\"a\"\",b\",\"c\"\r\n");
    Table_LoadFile(table, path("q2.txt"), TableLoad_Replace, false);
    ASSERT_EQ(table.rowCount(), 1);
    EXPECT_EQ(table.records().at(0), QStringList({"a", "b", "c"}));
    EXPECT_TRUE(messages.isEmpty());
}

TEST_F(TableFilesTest, ShortAndBlankLinesAndHeaderOnlyFiles) {
    // Pieces are not trimmed on reading; a short line leaves the other cells empty; a blank line is
    // a record of empty cells; a file without a last line end reads the same.
    writeRaw(path("s.txt"), "\"A\",\"B\",\"C\"\r\n\r\n\" x \"\n\"p\",\"q\"");
    CatalogueTable table;
    Table_LoadFile(table, path("s.txt"), TableLoad_Replace, false);
    ASSERT_EQ(table.rowCount(), 3);
    EXPECT_EQ(table.records().at(0), QStringList({"", "", ""}));
    EXPECT_EQ(table.records().at(1), QStringList({" x ", "", ""}));
    EXPECT_EQ(table.records().at(2), QStringList({"p", "q", ""}));

    writeRaw(path("h.txt"), "\"A\",\"B\"\r\n");
    Table_LoadFile(table, path("h.txt"), TableLoad_Replace, false);
    EXPECT_EQ(columnNames(table), QStringList({"A", "B"}));
    EXPECT_EQ(table.rowCount(), 0);
    Table_LoadFile(table, path("h.txt"), TableLoad_Append, false);
    EXPECT_EQ(columnNames(table), QStringList({"A", "B"}));
    EXPECT_EQ(table.rowCount(), 0);
    EXPECT_TRUE(messages.isEmpty());
}

TEST_F(TableFilesTest, AppendFillsExistingColumnsByPosition) {
    CatalogueTable table = presetTable();
    addRow(table, {"1", "Built-in", "No"});
    // A user file written under other column names still fills by position.
    CatalogueTable user;
    user.addColumn("Other", 600);
    user.addColumn("Names", 200);
    addRow(user, {"User-1", "Mine"});
    Table_SaveFile(user, path("u.dat"), true);
    Table_LoadFile(table, path("u.dat"), TableLoad_Append, true);
    EXPECT_EQ(columnNames(table), QStringList({"ID", "Name", "Removable"}));
    ASSERT_EQ(table.rowCount(), 2);
    EXPECT_EQ(table.records().at(1), QStringList({"User-1", "Mine", ""}));
    EXPECT_TRUE(messages.isEmpty());
}

TEST_F(TableFilesTest, UserRowsAreOnlyThoseMarkedRemovable) {
    CatalogueTable table = presetTable();
    addRow(table, {"1", "Built-in", "No"});
    addRow(table, {"User-1", "Mine", "Yes"});
    addRow(table, {"User-2", "Lower case", "yes"});
    addRow(table, {"User-3", "Spaced", " Yes"});
    addRow(table, {"User-4", "Also mine", "Yes"});
    Table_SaveUserRows(table, path("user.dat"), true);
    CatalogueTable loaded;
    Table_LoadFile(loaded, path("user.dat"), TableLoad_Replace, true);
    ASSERT_EQ(loaded.rowCount(), 2);
    EXPECT_EQ(loaded.cell(0, 0), "User-1");
    EXPECT_EQ(loaded.cell(1, 0), "User-4");
    EXPECT_TRUE(messages.isEmpty());
}

TEST_F(TableFilesTest, FailuresAreShownAndKeepWhatWasRead) {
    CatalogueTable table = presetTable();
    addRow(table, {"1", "kept?", "No"});

    // Missing file: the message names it; replace mode has already emptied the table.
    Table_LoadFile(table, path("missing.dat"), TableLoad_Replace, true);
    ASSERT_EQ(messages.size(), 1);
    EXPECT_TRUE(messages.last().contains("missing.dat"));
    EXPECT_TRUE(messages.last().contains("No such file"));
    EXPECT_EQ(table.columnCount(), 0);

    // An empty file is a failure, not an empty table.
    writeRaw(path("empty.dat"), "");
    Table_LoadFile(table, path("empty.dat"), TableLoad_Replace, true);
    ASSERT_EQ(messages.size(), 2);
    EXPECT_TRUE(messages.last().contains("past end of file"));

    // More fields than columns: rows before stay, the broken record keeps what fitted, no refresh.
    writeRaw(path("wide.txt"), "\"A\",\"B\"\r\n\"1\",\"2\"\r\n\"3\",\"4\",\"5\"\r\n\"6\",\"7\"\r\n");
    CatalogueTable wide;
    Table_LoadFile(wide, path("wide.txt"), TableLoad_Replace, false);
    ASSERT_EQ(messages.size(), 3);
    EXPECT_TRUE(messages.last().contains("line 3"));
    ASSERT_EQ(wide.rowCount(), 2);
    EXPECT_EQ(wide.records().at(1), QStringList({"3", "4"}));
    EXPECT_EQ(wide.refreshCount(), 0);

    // Appending to a table without columns fails at the first record.
    CatalogueTable bare;
    Table_LoadFile(bare, path("wide.txt"), TableLoad_Append, false);
    EXPECT_EQ(messages.size(), 4);
    EXPECT_EQ(bare.columnCount(), 0);

    // Saving a table without columns fails after the file was opened, which emptied it.
    writeRaw(path("old.dat"), "previous contents");
    Table_SaveFile(CatalogueTable(), path("old.dat"), true);
    EXPECT_EQ(messages.size(), 5);
    EXPECT_EQ(readRaw(path("old.dat")), "");

    // A folder where the file should be cannot be written or read.
    QDir().mkpath(path("folder.dat"));
    Table_SaveFile(presetTable(), path("folder.dat"), true);
    Table_LoadFile(table, path("folder.dat"), TableLoad_Replace, true);
    EXPECT_EQ(messages.size(), 7);
}

TEST_F(TableFilesTest, LinesThatDoNotDecipherBecomeGarbledRecords) {
    CatalogueTable table = presetTable();
    Table_SaveFile(table, path("g.dat"), true);
    QByteArray bytes = readRaw(path("g.dat"));
    bytes += "0123456789ABCDEF0123456789ABCDEF\r\nZZZZ\r\n\r\nABC\r\n";
    writeRaw(path("g.dat"), bytes);
    CatalogueTable loaded;
    Table_LoadFile(loaded, path("g.dat"), TableLoad_Replace, true);
    EXPECT_EQ(columnNames(loaded), QStringList({"ID", "Name", "Removable"}));
    // Each bad line gives one record, whatever the garble; nothing crashes, nothing is refused.
    EXPECT_EQ(loaded.rowCount(), 4);
    EXPECT_EQ(loaded.records().at(2), QStringList({"", "", ""}));
    EXPECT_EQ(loaded.records().at(3), QStringList({"", "", ""}));
}
