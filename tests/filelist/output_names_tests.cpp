#include "NameRows.h"
#include "Output_Names.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace morvane;

namespace {

void touch(const QString& path) {
    QFile file(path);
    file.open(QIODevice::WriteOnly);
}

struct ScriptedDialogs : RenameDialogs {
    QString find, replace, prefix, suffix, newName;
    std::int32_t number = -1;
    bool cancelRename = false;
    QStringList opened;
    void Show_Replace() override {
        opened.append("replace");
        Rename_FindText = find;
        Rename_ReplaceText = replace;
    }
    void Show_AddBefore() override {
        opened.append("before");
        Rename_Prefix = prefix;
    }
    void Show_AddAfter() override {
        opened.append("after");
        Rename_Suffix = suffix;
    }
    void Show_Numbers() override {
        opened.append("numbers");
        Rename_FirstNumber = number;
    }
    void Show_Rename() override {
        opened.append("rename:" + Rename_NewName);
        if (!cancelRename) Rename_NewName = newName;
    }
};

} // namespace

TEST(OutputNames, UniqueNameWalksTheTemplate) {
    QTemporaryDir dir;
    const QString a = dir.filePath(QStringLiteral("a.mp4"));
    EXPECT_EQ(Unique_OutputName(a), a); // free as it stands
    const QStringList expected = {a, dir.filePath(QStringLiteral("a_(new).mp4")),
                                  dir.filePath(QStringLiteral("a_(new_1).mp4")),
                                  dir.filePath(QStringLiteral("a_(new_2).mp4"))};
    for (int i = 0; i < 3; ++i) {
        touch(expected[i]);
        EXPECT_EQ(Unique_OutputName(a), expected[i + 1]);
    }
    // A gap is reused: only the first free name counts.
    QFile::remove(expected[2]);
    EXPECT_EQ(Unique_OutputName(a), expected[2]);

    const QString missing = dir.filePath(QStringLiteral("no/such/folder/a.mp4"));
    EXPECT_EQ(Unique_OutputName(missing), missing);

    const QString dotted = dir.filePath(QStringLiteral("my.clip.mkv"));
    touch(dotted);
    EXPECT_EQ(Unique_OutputName(dotted), dir.filePath(QStringLiteral("my.clip_(new).mkv")));
}

TEST(OutputNames, ReplaceExtensionKeepsFolderAndDottedBase) {
    EXPECT_EQ(Replace_Extension(QStringLiteral("/out/my.clip.avi"), QStringLiteral("mp4")),
              QStringLiteral("/out/my.clip.mp4"));
    EXPECT_EQ(Replace_Extension(QStringLiteral("/out/noext"), QStringLiteral("webm")),
              QStringLiteral("/out/noext.webm"));
}

TEST(OutputNames, RenameAllOperations) {
    struct Case {
        int operation;
        const char* before;
        const char* after;
    };
    ScriptedDialogs dialogs;
    dialogs.prefix = QStringLiteral("new-");
    dialogs.suffix = QStringLiteral("-HD");
    dialogs.find = QStringLiteral("CLIP");
    dialogs.replace = QStringLiteral("film");
    const Case cases[] = {
        {Rename_Capitalize, "  hello  wORLD  ", "Hello  World"},
        {Rename_Capitalize, "", ""},
        {Rename_Sentence, "hELLO World", "Hello world"},
        {Rename_Sentence, "", ""},
        {Rename_Lower, "MiXeD Ä", "mixed ä"},
        {Rename_Upper, "MiXeD", "MIXED"},
        {Rename_AddBefore, "x", "new-x"},
        {Rename_AddAfter, "x", "x-HD"},
        {Rename_Replace, "my Clip clip", "my film film"},
        {Rename_Replace, "clip", "source"}, // blank after the replace: the source's name
        {Rename_Reset, "anything", "source"},
        {0, "same", "same"},
    };
    for (const Case& c : cases) {
        FileViewMain table;
        addRow(table, QString::fromUtf8(c.before), QStringLiteral("source.mov"));
        dialogs.replace =
            QLatin1String(c.before) == QLatin1String("clip") ? QString() : QStringLiteral("film");
        Rename_All(table, c.operation, FileCol::Name, dialogs);
        EXPECT_EQ(table.text(0, FileCol::Name), QString::fromUtf8(c.after)) << c.operation << " " << c.before;
        EXPECT_EQ(table.text(0, FileCol::CropTop), QStringLiteral("8")); // edit values untouched
    }
}

TEST(OutputNames, DialogsOpenFirstAndEmptyAnswersChangeNothing) {
    ScriptedDialogs dialogs;
    FileViewMain empty;
    Rename_All(empty, Rename_Numbers, FileCol::Name, dialogs);
    EXPECT_EQ(dialogs.opened, QStringList{"numbers"}); // opened even with no rows

    FileViewMain table;
    addRow(table, QStringLiteral("b"), QStringLiteral("b.mp4"));
    addRow(table, QStringLiteral("a"), QStringLiteral("a.mp4"));
    addRow(table, QStringLiteral("c"), QStringLiteral("c.mp4"));
    Rename_Prefix = QStringLiteral("stale");
    for (int op : {Rename_AddBefore, Rename_AddAfter, Rename_Replace, Rename_Numbers})
        Rename_All(table, op, FileCol::Name, dialogs);
    EXPECT_EQ(names(table), (QStringList{"b", "a", "c"}));

    dialogs.number = 5;
    Rename_All(table, Rename_Numbers, FileCol::Name, dialogs);
    EXPECT_EQ(names(table), (QStringList{"5", "6", "7"})); // table order
    dialogs.number = 0;
    Rename_All(table, Rename_Numbers, FileCol::Name, dialogs);
    EXPECT_EQ(names(table), (QStringList{"0", "1", "2"}));
    Rename_All(table, Rename_Reset, FileCol::Name, dialogs);
    EXPECT_EQ(names(table), (QStringList{"b", "a", "c"}));
}

TEST(OutputNames, SingleRenameOfTheFirstSelectedRow) {
    ScriptedDialogs dialogs;
    FileViewMain table;
    addRow(table, QStringLiteral("one"), QStringLiteral("one.mp4"));
    addRow(table, QStringLiteral("two"), QStringLiteral("two.mp4"));
    table.setSelectedRows({1});
    dialogs.newName = QStringLiteral("second");
    Rename_Selected(table, dialogs);
    EXPECT_EQ(dialogs.opened, QStringList{"rename:two"});
    EXPECT_EQ(names(table), (QStringList{"one", "second"}));

    dialogs.newName = QStringLiteral("   ");
    Rename_Selected(table, dialogs);
    EXPECT_EQ(names(table), (QStringList{"one", "second"}));

    table.clearSelection();
    Rename_Selected(table, dialogs); // nothing selected: nothing asked
    EXPECT_EQ(dialogs.opened.size(), 2);
}
