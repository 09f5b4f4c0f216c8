#include "CatalogueTable.h"
#include "Catalogue_Load.h"
#include "Encrypt_Mod.h"
#include "Globals.h"
#include "Table_Files.h"
#include "Table_Io.h"
#include "mMain.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>

using namespace morvane;

namespace {

// Writes past `bytes` fail as on a full disk (EFBIG instead of ENOSPC), for the whole process.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &m_old);
        rlimit limit = m_old;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &m_old);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_old{};
    void (*m_handler)(int) = SIG_DFL;
};

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
        if (enciphered) {
            // Each line is the upper-case hex of its text and an 8-byte trailer, behind it a CR LF.
            const QList<QByteArray> lines = readRaw(path("t.dat")).split('\n');
            ASSERT_EQ(lines.size(), 6); // the header, four rows and the empty rest behind the last end
            const QByteArray header = "\"ID\",\"Name\",\"Removable\"";
            EXPECT_EQ(lines.at(0).size(), 2 * (header.size() + 8) + 1);
            EXPECT_TRUE(lines.at(0).endsWith('\r'));
            const QString hex = QString::fromLatin1(lines.at(0).trimmed());
            EXPECT_EQ(hex.toUpper(), hex);
            EXPECT_EQ(Line_Decipher(hex), QString::fromLatin1(header));
        }

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

TEST_F(TableFilesTest, PlainLinesReadAsTheyStandQuotesAndAll) {
    // Pieces are not trimmed on reading; a short line leaves the other cells empty; a blank line is a
    // record of empty cells; a file without a last line end reads the same. Quotes inside a field are
    // lost, and a quote followed by a comma makes two fields: later ones move right.
    const std::pair<QByteArray, QList<QStringList>> cases[] = {
        {"\"A\",\"B\",\"C\"\r\n\r\n\" x \"\n\"p\",\"q\"", {{"", "", ""}, {" x ", "", ""}, {"p", "q", ""}}},
        {"\"A\",\"B\",\"C\"\r\n\"say \"hi\" now\",\"x\",\"y\"\r\n\"one\",two\",\"three\"\r\n",
         {{"say hi now", "x", "y"}, {"one", "two", "three"}}},
        {"\"A\",\"B\",\"C\"\r\n\"a\"\",b\",\"c\"\r\n", {{"a", "b", "c"}}},
        {"\"A\",\"B\"\r\n", {}},
    };
    CatalogueTable table;
    for (const auto& [bytes, records] : cases) {
        writeRaw(path("p.txt"), bytes);
        Table_LoadFile(table, path("p.txt"), TableLoad_Replace, false);
        EXPECT_EQ(table.records(), records) << bytes.constData();
    }
    // A header alone appended to its own columns changes nothing.
    Table_LoadFile(table, path("p.txt"), TableLoad_Append, false);
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

    // A folder where the file should be cannot be written or read.
    QDir().mkpath(path("folder.dat"));
    Table_SaveFile(presetTable(), path("folder.dat"), true);
    Table_LoadFile(table, path("folder.dat"), TableLoad_Replace, true);
    EXPECT_EQ(messages.size(), 6);
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

TEST_F(TableFilesTest, AFailedSaveKeepsThePreviousFileWhole) {
    CatalogueTable big = presetTable();
    for (int i = 0; i < 100; ++i)
        addRow(big, {QString::number(i), "A preset with a long enough name", "Yes"});
    const struct {
        const char* what;
        CatalogueTable table;
        bool fullDisk;
    } cases[] = {{"no columns", CatalogueTable(), false}, {"full disk", big, true}};
    for (const auto& c : cases) {
        QTemporaryDir folder;
        const QString file = folder.filePath("user.dat");
        writeRaw(file, "previous contents");
        messages.clear();
        {
            const FileSizeLimit limit(c.fullDisk ? 4096 : RLIM_INFINITY);
            Table_SaveFile(c.table, file, true);
            Table_SaveUserRows(c.table, file, true);
        }
        EXPECT_EQ(messages.size(), 2) << c.what;
        EXPECT_TRUE(messages.value(0).contains(file)) << c.what;
        EXPECT_EQ(readRaw(file), "previous contents") << c.what;
        EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList({"user.dat"})) << c.what;
    }
}

TEST_F(TableFilesTest, FilesOverTheSizeLimitAreRefusedByName) {
    QFile huge(path("huge.dat"));
    ASSERT_TRUE(huge.open(QIODevice::WriteOnly));
    ASSERT_TRUE(huge.resize(TableFile_MaxBytes + 1)); // sparse: no disk space used
    huge.close();
    CatalogueTable table = presetTable();
    Table_LoadFile(table, path("huge.dat"), TableLoad_Append, true);
    ASSERT_EQ(messages.size(), 1);
    EXPECT_TRUE(messages.last().contains(path("huge.dat")));
    EXPECT_TRUE(messages.last().contains("larger than 64 MiB")) << messages.last().toStdString();
    EXPECT_TRUE(Table_LoadWhole(table, path("huge.dat"), TableLoad_Append, true).contains("64 MiB"));
    EXPECT_EQ(table.rowCount(), 0);
}

TEST_F(TableFilesTest, WholeLoadRefusesDamagedFilesAndTakesGoodOnesAsBefore) {
    CatalogueTable user = presetTable();
    addRow(user, {"User-1", "Mine, 720p", "Yes"});
    addRow(user, {"User-2", "", "Yes"});
    Table_SaveFile(user, path("good.dat"), true);
    const QByteArray good = readRaw(path("good.dat"));
    const QList<QByteArray> lines = good.split('\n');
    const auto enciphered = [](const char* text) {
        return Line_Encipher(QString::fromUtf8(text)).toLatin1();
    };
    const struct {
        const char* what;
        QByteArray bytes;
        int mode;
        const char* problem;
    } cases[] = {
        {"empty", "", TableLoad_Append, "the file is empty"},
        {"not hex", lines.at(0) + "\nZZZZ\r\n", TableLoad_Append, "line 2 does not decipher"},
        {"hex of nothing", lines.at(0) + "\n0123456789ABCDEF0123456789ABCDEF\r\n", TableLoad_Append,
         "line 2 does not decipher"},
        {"blank line", lines.at(0) + "\n\r\n" + lines.at(1), TableLoad_Append, "line 2 does not decipher"},
        {"no quotes", lines.at(0) + "\n" + enciphered("User-3,Plain") + "\r\n", TableLoad_Replace,
         "line 2 is not a list of quoted fields"},
        {"half quoted", enciphered("\"ID\",Name\"") + "\r\n", TableLoad_Replace,
         "line 1 is not a list of quoted fields"},
        {"short record", lines.at(0) + "\n" + enciphered("\"User-3\",\"x\"") + "\r\n", TableLoad_Replace,
         "line 2 has 2 fields, the header has 3"},
        {"wider than the table", enciphered("\"A\",\"B\",\"C\",\"D\"") + "\r\n", TableLoad_Append,
         "the file has 4 columns, the table has 3"},
    };
    for (const auto& c : cases) {
        writeRaw(path("bad.dat"), c.bytes);
        CatalogueTable table = presetTable();
        addRow(table, {"1", "Built-in", "No"});
        EXPECT_EQ(Table_LoadWhole(table, path("bad.dat"), c.mode, true), c.problem) << c.what;
        EXPECT_EQ(columnNames(table), QStringList({"ID", "Name", "Removable"})) << c.what;
        EXPECT_EQ(table.rowCount(), 1) << c.what;
    }
    // A good file gives the same table as the ordinary load, in both modes.
    for (const int mode : {TableLoad_Replace, TableLoad_Append}) {
        CatalogueTable whole = presetTable();
        CatalogueTable ordinary = presetTable();
        EXPECT_EQ(Table_LoadWhole(whole, path("good.dat"), mode, true), "");
        Table_LoadFile(ordinary, path("good.dat"), mode, true);
        EXPECT_EQ(columnNames(whole), columnNames(ordinary));
        EXPECT_EQ(whole.records(), ordinary.records());
        EXPECT_EQ(whole.refreshCount(), 1);
    }
    EXPECT_TRUE(messages.isEmpty());
}

TEST_F(TableFilesTest, DamagedUserFilesAreLeftOutWithACopyKept) {
    Folder_Temp = path("temp/");
    Folder_UserPreset = path("presets/");
    File_UserPreset = "UserPreset.dat";
    Folder_UserFavorite = path("favorites/");
    File_UserFavorite = "Favorites.dat";
    QDir().mkpath(Folder_UserPreset);
    QDir().mkpath(Folder_UserFavorite);
    Set_MessageHandler([this](const QString& text, int, const QString&, const QString&) {
        messages << text;
        return ID_OK;
    });
    Catalogue clean;
    Catalogue_Load(clean);
    ASSERT_TRUE(messages.isEmpty());

    const QString presets = Folder_UserPreset + File_UserPreset;
    const QString favorites = Folder_UserFavorite + File_UserFavorite;
    Table_SaveFile(clean.ReportControl_PresetMain, favorites, true);
    const QByteArray damaged = readRaw(favorites).split('\n').at(0) + "\nGARBAGE\r\n";
    writeRaw(presets, damaged);
    writeRaw(favorites, damaged);
    writeRaw(presets + ".corrupt-19990101-000000", "an older copy");
    for (int start = 0; start < 2; ++start) {
        messages.clear();
        Catalogue catalogue;
        Catalogue_Load(catalogue);
        ASSERT_EQ(messages.size(), 2);
        EXPECT_TRUE(messages.at(0).contains(presets + "' cannot be loaded (line 2 does not decipher)"))
            << messages.at(0).toStdString();
        EXPECT_TRUE(messages.at(1).contains(favorites));
        // The built-in rows load as without the files; no blank rows, no favorites.
        EXPECT_EQ(catalogue.ReportControl_PresetMain.records(), clean.ReportControl_PresetMain.records());
        EXPECT_EQ(catalogue.ReportControl_FavoritesMain.rowCount(), 0);
        // One copy of each, the same bytes, beside the file that stays; older copies untouched.
        const QStringList copies = QDir(Folder_UserPreset).entryList({"UserPreset.dat.corrupt-*"});
        ASSERT_EQ(copies.size(), 2) << copies.join(' ').toStdString();
        EXPECT_EQ(readRaw(Folder_UserPreset + copies.at(0)), "an older copy");
        EXPECT_EQ(readRaw(Folder_UserPreset + copies.at(1)), damaged);
        EXPECT_TRUE(messages.at(0).contains(Folder_UserPreset + copies.at(1)));
        EXPECT_EQ(QDir(Folder_UserFavorite).entryList({"Favorites.dat.corrupt-*"}).size(), 1);
        EXPECT_EQ(readRaw(presets), damaged);
    }
}
