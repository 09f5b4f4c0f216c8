#include "../core/TempHome.h"
#include "FakeDecoder.h"
#include "Globals.h"
#include "Import_Files.h"
#include "Registry_Mod.h"
#include "Report_List.h"
#include "mMain.h"

#include <QFile>

#include <gtest/gtest.h>

using namespace morvane;

namespace {

struct ScriptedDialog : FileDialog {
    QStringList answer;
    QList<OpenDialogRequest> requests;
    QStringList Show_Open(const OpenDialogRequest& request) override {
        requests.append(request);
        return answer;
    }
};

struct RecordingHost : ImportHost {
    QStringList events;
    QStringList fileNos;
    QStringList files;
    bool loaded = true;
    bool loads = true;
    int cancelAtStep = 0; // presses Cancel while this step is shown
    bool LibraryLoaded() override { return loaded; }
    bool LoadLibrary(const QString&) override { return loads; }
    QString LibraryErrorMessage() override { return QStringLiteral("libav missing"); }
    void Set_MainEnabled(bool on) override { events.append(on ? "enable" : "disable"); }
    void Set_MainState(int s) override { events.append(QStringLiteral("state %1").arg(s)); }
    void Show_InputFileInfo(int row) override { events.append(QStringLiteral("info %1").arg(row)); }
    void Wait_Show(int maximum) override { events.append(QStringLiteral("wait %1").arg(maximum)); }
    void Wait_Step(const QString& fileNo, const QString& file, int value) override {
        fileNos.append(fileNo);
        files.append(file);
        if (value == cancelAtStep) Wait_CancelPressed(*this);
    }
    void Wait_Close() override { events.append("wait closed"); }
};

struct RecordingSink : ReportSink {
    QList<ReportForm> shown;
    void Show_Report(const ReportForm& form) override { shown.append(form); }
};

class Import : public ::testing::Test {
protected:
    void SetUp() override {
        REGISTRY_PRODUCT = QStringLiteral("morvane-test/settings");
        Folder_Temp = home.make(QStringLiteral("temp"));
        Path_Input = home.make(QStringLiteral("in"));
        Report_Clear();
        Set_ReportSink(&sink);
    }
    void TearDown() override {
        Set_ReportSink(nullptr);
        Set_MessageHandler(nullptr);
        Report_Clear();
    }
    QString file(const QString& name) {
        const QString path = home.make(QStringLiteral("videos")) + name;
        QFile f(path);
        f.open(QIODevice::WriteOnly);
        return path;
    }
    void run(const QString& path = QString()) { Import_Files(dialog, table, path, decoder, host); }

    TempHome home;
    ScriptedDialog dialog;
    RecordingHost host;
    RecordingSink sink;
    FakeDecoder decoder;
    FileViewMain table;
};

} // namespace

TEST_F(Import, CancelledDialogChangesNothing) {
    const QString before = Path_Input;
    run();
    ASSERT_EQ(dialog.requests.size(), 1);
    const OpenDialogRequest& r = dialog.requests.first();
    EXPECT_EQ(r.filterIndex, 1);
    EXPECT_EQ(r.flags, 4612);
    EXPECT_EQ(r.maxFileSize, 80000);
    EXPECT_EQ(r.initialDir, before);
    EXPECT_EQ(r.filter, Import_DialogFilter());
    EXPECT_TRUE(host.events.isEmpty());
    EXPECT_EQ(Path_Input, before);
    EXPECT_EQ(Read_Setting(REGISTRY_PRODUCT, QStringLiteral("InputPath")), QString());
}

TEST_F(Import, TwoVanishedFilesGiveTwoReportLinesAndNoRows) {
    dialog.answer = {home.path() + QStringLiteral("/gone/a.mp4"),
                     home.path() + QStringLiteral("/gone/b.mkv")};
    run();
    EXPECT_EQ(table.rows(), 0);
    EXPECT_EQ(decoder.opens, 0);
    ASSERT_EQ(sink.shown.size(), 1);
    EXPECT_EQ(sink.shown[0].caption, QStringLiteral("Failed"));
    EXPECT_EQ(sink.shown[0].message, QStringLiteral("Failed to import files!"));
    ASSERT_EQ(sink.shown[0].entries.size(), 2);
    EXPECT_EQ(sink.shown[0].entries[1].text, QStringLiteral("b.mkv"));
    EXPECT_EQ(sink.shown[0].entries[1].second, QStringLiteral("File not found!"));
    EXPECT_EQ(host.events, (QStringList{"disable", "wait 2", "wait closed", "enable", "state 2"}));
    EXPECT_EQ(Read_Setting(REGISTRY_PRODUCT, QStringLiteral("InputPath")),
              home.path() + QStringLiteral("/gone/"));
    EXPECT_EQ(Path_Input, dialog.answer.first()); // a file path until the next start
}

TEST_F(Import, SeveralFilesShowCounterAndSelectTheFirstRow) {
    dialog.answer = {QStringLiteral("  ") + file(QStringLiteral("a.mp4")) + QStringLiteral(" "),
                     file(QStringLiteral("b.avi")), QString(), file(QStringLiteral("ignored.mp4"))};
    decoder.fallback.durationLow = 2000000;
    run();
    EXPECT_EQ(table.rows(), 2); // the empty entry ends the collection
    EXPECT_EQ(host.fileNos, (QStringList{"1 of 2 files", "2 of 2 files"}));
    EXPECT_EQ(host.files, (QStringList{"a.mp4", "b.avi"}));
    EXPECT_EQ(table.selectedRows(), (QList<int>{0}));
    EXPECT_EQ(table.footer(FileCol::Name), QStringLiteral(" 2 files"));
    EXPECT_EQ(table.footer(FileCol::Duration), QStringLiteral("00:00:04"));
    EXPECT_EQ(host.events, (QStringList{"disable", "wait 2", "wait closed", "enable", "state -1", "info 0"}));
    EXPECT_TRUE(sink.shown.isEmpty());
    EXPECT_EQ(Wait_Mode, kWaitMode_Import);
    EXPECT_EQ(Wait_FileNoText(1, 1), QStringLiteral("1 of 1 files"));
}

TEST_F(Import, CancelDuringTheThirdOfTenStopsBeforeItsProbe) {
    for (int i = 1; i <= 10; ++i)
        dialog.answer.append(file(QStringLiteral("f%1.mp4").arg(i)));
    dialog.answer[1] = home.path() + QStringLiteral("/gone/f2.mp4");
    host.cancelAtStep = 3;
    run();
    EXPECT_EQ(decoder.opens, 1); // file 1 only: 2 is gone, 3 sees the flag before its probe
    EXPECT_EQ(table.rows(), 1);
    EXPECT_EQ(host.fileNos.last(), QStringLiteral("3 of 10 files"));
    ASSERT_EQ(sink.shown.size(), 1); // the report still appears
    EXPECT_EQ(sink.shown[0].entries.size(), 1);
    EXPECT_TRUE(Wait_Cancel);
}

TEST_F(Import, SingleFileGoesStraightToTheProbe) {
    decoder.fallback.video = -1;
    decoder.fallback.error = QStringLiteral("Stream not found");
    dialog.answer = {file(QStringLiteral("song.mp3"))};
    run();
    EXPECT_EQ(table.rows(), 0);
    EXPECT_FALSE(host.events.contains(QStringLiteral("wait 1")));
    ASSERT_EQ(sink.shown.size(), 1);
    EXPECT_EQ(sink.shown[0].caption, QStringLiteral("Failed"));
    EXPECT_EQ(sink.shown[0].entries[0].text, QStringLiteral("song.mp3"));
    EXPECT_EQ(sink.shown[0].entries[0].second, QStringLiteral("Stream not found"));

    // A given path skips the dialog and the existence test alike.
    sink.shown.clear();
    Report_Clear();
    decoder.fallback = FakeMedia{};
    decoder.fallback.opens = false;
    decoder.fallback.error = QStringLiteral("No such file or directory");
    run(home.path() + QStringLiteral("/gone/x.mp4"));
    EXPECT_EQ(dialog.requests.size(), 1);
    EXPECT_EQ(decoder.opens, 2);
    ASSERT_EQ(sink.shown.size(), 1);
    EXPECT_EQ(sink.shown[0].entries[0].second, QStringLiteral("No such file or directory"));
}

TEST_F(Import, ProtectedEntryAmongOthersShowsTheProtectedForm) {
    Report_Add(QStringLiteral("old.mp4"), QStringLiteral("left from an earlier import"));
    decoder.fallback.opens = false;
    decoder.fallback.error = QStringLiteral("Invalid data found when processing input");
    dialog.answer = {file(QStringLiteral("disc.vob")), home.path() + QStringLiteral("/gone/x.mp4")};
    run();
    ASSERT_EQ(sink.shown.size(), 1);
    EXPECT_EQ(sink.shown[0].caption, QStringLiteral("DRM Protection"));
    EXPECT_EQ(sink.shown[0].entries.size(), 3);
}

TEST_F(Import, EngineThatWontLoadOrTooManyEntriesStopBeforeAnyProbe) {
    QStringList shown;
    Set_MessageHandler([&](const QString& text, int flags, const QString&, const QString&) {
        shown.append(text + QStringLiteral(" %1").arg(flags));
        return 1;
    });
    host.loaded = false;
    host.loads = false;
    dialog.answer = {file(QStringLiteral("a.mp4"))};
    run();
    EXPECT_EQ(shown, (QStringList{QStringLiteral("libav missing %1").arg(MB_ICONCRITICAL)}));

    // More entries than the array holds end the import.
    host.loaded = true;
    dialog.answer = QStringList(kImportMaxEntries + 1, dialog.answer.first());
    run();
    EXPECT_EQ(decoder.opens, 0);
    EXPECT_EQ(table.rows(), 0);
    EXPECT_TRUE(host.events.isEmpty());
}

TEST(ImportTexts, ExtensionsAndDialogFilterAgree) {
    for (const char* name : {"a.MP4", "/x/y.dvr-ms", "b.webm", "c.d.amv", "e.3gp"})
        EXPECT_TRUE(Is_SupportedName(QLatin1String(name))) << name;
    for (const char* name : {"a", "a.", "a.mp3", "a.p4", "mp4", "a.|mp4", ".hidden"})
        EXPECT_FALSE(Is_SupportedName(QLatin1String(name))) << name;

    const QString filter = Import_DialogFilter();
    EXPECT_TRUE(filter.startsWith(QStringLiteral("All Supported Video Files|*.3gp;*.3gpp;")));
    EXPECT_TRUE(
        filter.contains(QStringLiteral("*.amv;|3GPP Files (*.3gp;*.3gpp)|*.3gp;*.3gpp;|3GPP2 Files")));
    EXPECT_TRUE(filter.endsWith(QStringLiteral("|WebM Files (*.webm)|*.webm;")));
    EXPECT_EQ(filter.count(QLatin1Char('|')), 29 * 2 - 1);

    // The first row's patterns are exactly the supported extensions, in order.
    const QString patterns = filter.section(QLatin1Char('|'), 1, 1);
    QString framed = QStringLiteral("|");
    for (const QString& p : patterns.split(QLatin1Char(';'), Qt::SkipEmptyParts))
        framed += p.mid(2) + QLatin1Char('|');
    EXPECT_EQ(framed, Supported_Extensions);
}
