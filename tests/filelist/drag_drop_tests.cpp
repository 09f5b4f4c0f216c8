#include "../core/TempHome.h"
#include "DragDrop_Mod.h"
#include "FakeDecoder.h"
#include "Globals.h"
#include "mMain.h"

#include <QDir>
#include <QFile>
#include <QMimeData>
#include <QProcess>
#include <QStandardPaths>
#include <QSysInfo>

#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <stdexcept>

#include <gtest/gtest.h>

using namespace morvane;

namespace {

struct DropRecorder : DropHost {
    bool converting = false;
    QString cancelAt; // Cancel is pressed while this counter text shows
    std::function<void()> onStep;
    QStringList events, steps;
    bool Is_Converting() override { return converting; }
    void Close_TagPopup() override { events << "tag closed"; }
    void Set_DropHintVisible(bool on) override { events << (on ? "hint on" : "hint off"); }
    void Set_MainEnabled(bool on) override { events << (on ? "enable" : "disable"); }
    void Set_MainState(int s) override { events << QStringLiteral("state %1").arg(s); }
    void Show_InputFileInfo(int) override {}
    void Wait_Show(int maximum) override { events << QStringLiteral("wait %1").arg(maximum); }
    void Wait_Close() override { events << "wait closed"; }
    void Wait_Step(const QString& fileNo, const QString&, int) override {
        steps << fileNo;
        if (fileNo == cancelAt) Wait_CancelPressed(*this);
        if (onStep) onStep();
    }
};

class Drop : public ::testing::Test {
protected:
    void SetUp() override { Folder_Temp = home.make(QStringLiteral("temp")); }
    void TearDown() override {
        for (const QString& path : locked)
            ::chmod(QFile::encodeName(path).constData(), 0755);
        Set_MessageHandler(nullptr);
        Report_Clear();
    }
    QString put(const QString& relative, const QString& from = QString()) {
        const QString path = home.path() + '/' + relative;
        QDir().mkpath(path.section('/', 0, -2));
        from.isEmpty() ? QFile(path).open(QIODevice::WriteOnly) : QFile::copy(from, path);
        return path;
    }
    // False when permissions don't bite (root).
    bool lock(const QString& path) {
        locked << path;
        ::chmod(QFile::encodeName(path).constData(), 0);
        return ::access(QFile::encodeName(path).constData(), R_OK) != 0;
    }
    // The rows' names, then the report's lines.
    QString result() const {
        QStringList rows, lines;
        for (int r = 0; r < table.rows(); ++r)
            rows << table.text(r, FileCol::Name);
        for (const ReportEntry& e : Report_Entries())
            lines << e.text + " | " + e.second;
        return rows.join(',') + "\n" + lines.join('\n');
    }

    TempHome home;
    QStringList locked;
    DropRecorder host;
    FakeDecoder decoder;
    FileViewMain table;
};

} // namespace

TEST(DropUris, OnlyLocalFilesComeThroughDecoded) {
    const struct {
        const char* data;
        QStringList paths;
    } cases[] = {
        {"file:///v/a.mp4\r\nfile:///v/b.mkv\r\n", {"/v/a.mp4", "/v/b.mkv"}},
        {"# from the file manager\r\nfile:///v/My%20Clip%20.mp4", {"/v/My Clip .mp4"}},
        {"file:///v/%C3%A9t%C3%A9%20%E6%98%A0%E7%94%BB.mp4", {QStringLiteral("/v/été 映画.mp4")}},
        {"file:///v/100%25%20a%23b.mp4", {"/v/100% a#b.mp4"}},
        {"file://localhost/v/a.mp4", {"/v/a.mp4"}},
        {"http://example.com/a.mp4\nsftp://host/v/a.mp4\nfile://elsewhere/v/a.mp4\nsmb://nas/a.mp4", {}},
        {"/v/not-a-uri.mp4\n\n", {}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Drop_LocalPaths(QByteArray(c.data)), c.paths) << c.data;
        QMimeData mime; // the same data through Qt's own reading of the format
        mime.setData(QStringLiteral("text/uri-list"), c.data);
        EXPECT_EQ(Drop_LocalPaths(mime), c.paths) << c.data;
    }
    // Raw UTF-8, as some senders write it, and this machine named as the host.
    EXPECT_EQ(Drop_LocalPaths(QStringLiteral("file:///v/été.mp4").toUtf8()), QStringList{"/v/été.mp4"});
    const QUrl named(QStringLiteral("file://%1/v/a.mp4").arg(QSysInfo::machineHostName()));
    EXPECT_EQ(Drop_LocalPaths(QList<QUrl>{named}), QStringList{"/v/a.mp4"});
}

TEST_F(Drop, RealClipsImportDepthFirstAndLockedNamesAreReported) {
    const QString ffmpeg = QStandardPaths::findExecutable(QStringLiteral("ffmpeg"));
    if (ffmpeg.isEmpty()) GTEST_SKIP() << "no ffmpeg program";
    const QString clip = home.path() + QStringLiteral("/clip.mp4");
    QProcess make;
    make.start(ffmpeg, {"-v", "error", "-y", "-f", "lavfi", "-i", "testsrc2=size=64x48:rate=25:duration=1",
                        "-c:v", "mpeg4", clip});
    ASSERT_TRUE(make.waitForFinished(60000) && make.exitCode() == 0);
    for (const char* name : {"d/y.mkv", "d/.hidden.mp4", "d/sub/a.mp4", "d/sub/deeper/c.MP4", "d/Z/d.avi",
                             "d/locked/x.mp4", "d/secret.mp4", "one.webm"})
        put(QLatin1String(name), clip);
    QFile::link(QStringLiteral(".."), home.path() + QStringLiteral("/d/sub/up")); // a loop back up
    const bool bites = lock(home.path() + "/d/secret.mp4") && lock(home.path() + "/d/locked");

    // The folder's own files ("y" too) before its sub folders, in case-blind order; the loop walked once.
    const std::unique_ptr<FFDecoder> real = Make_FFDecoder();
    EXPECT_TRUE(On_DropFiles({home.path() + "/d", home.path() + "/one.webm"}, table, *real, host));
    EXPECT_EQ(result(),
              bites ? ".hidden,y,a,c,d,one\nsecret.mp4 | Permission denied\n" + home.path() +
                          "/d/locked/ | Permission denied"
                    : QStringLiteral(".hidden,secret,y,x,a,c,d,one\n")); // root reads what is locked
    const int found = bites ? 6 : 7;
    EXPECT_EQ(host.steps.mid(found - 1, 2).join(','),
              QStringLiteral("Total File: %1,0 of %2 files").arg(found).arg(found + 1));
    EXPECT_EQ(host.events.join(','), QStringLiteral("tag closed,disable,wait 0,wait %1,wait closed,enable,"
                                                    "state -1,hint off,tag closed")
                                         .arg(found + 1));
}

TEST_F(Drop, WhatRefusedCancelledAndOddDropsLeave) {
    for (const char* name : {"in/x.mp4", "odd/a.txt", "odd/noext"})
        put(QLatin1String(name));
    const QString fifo = home.path() + QStringLiteral("/odd/pipe.mp4"); // a probe would block on it
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0644), 0);
    for (int i = 1; i <= 10; ++i)
        put(QStringLiteral("tree/%1%2.mp4").arg(i > 5 ? "sub/" : "").arg(i, 2, 10, QLatin1Char('0')));
    const struct {
        QStringList paths; // below the home, as "~" in the result
        bool converting;
        const char *cancelAt, *result, *lastEvents;
    } cases[] = {
        {{"in/x.mp4"}, true, "", nullptr, ""},
        {{""}, false, "", nullptr, ""},
        {{"odd/", "gone.mp4"},
         false,
         "",
         "\npipe.mp4 | Not a regular file\ngone.mp4 | File not found!\n"
         "~/odd/a.txt | File format not supported!\n~/odd/noext | File format not supported!",
         "enable,state 2,hint off,tag closed"},
        {{"tree"}, false, "Total File: 3", "\n", "wait closed,enable,hint off,tag closed"},
        {{"tree"}, false, "2 of 10 files", "01,02\n", "enable,state -1,hint off,tag closed"},
        {{"tree"}, false, "", "01,02,03,04,05,06,07,08,09,10\n", "enable,state -1,hint off,tag closed"},
    };
    for (const auto& c : cases) {
        host = DropRecorder{};
        host.converting = c.converting;
        host.cancelAt = QLatin1String(c.cancelAt);
        table.clearRows();
        Report_Clear();
        QStringList paths;
        for (const QString& p : c.paths)
            paths << (p.isEmpty() ? p : home.path() + '/' + p);
        EXPECT_EQ(On_DropFiles(paths, table, decoder, host), c.result != nullptr) << c.cancelAt;
        EXPECT_EQ(result(), QString(c.result ? c.result : "\n").replace('~', home.path())) << c.cancelAt;
        EXPECT_EQ(host.events.mid(qMax(0, host.events.size() - 4)).join(','), c.lastEvents) << c.cancelAt;
    }
    EXPECT_EQ(decoder.opens, 12); // the tree's ten and two, never the refused or unusable names
    for (int i = 1; i <= 10; ++i) // every file of the walk moved the counter on
        EXPECT_EQ(host.steps.at(i - 1), QStringLiteral("Total File: %1").arg(i));
}

TEST_F(Drop, ADropInHandTurnsOthersAwayAndAFailureGivesTheWindowBack) {
    const QString clipPath = put(QStringLiteral("in/x.mp4"));
    QMimeData mime;
    mime.setUrls({QUrl::fromLocalFile(clipPath)});
    bool second = true, accepted = true;
    host.onStep = [&] {
        second = On_DropFiles({clipPath}, table, decoder, host);
        accepted = Drag_Accepts(mime, host);
    };
    EXPECT_TRUE(On_DropFiles({home.path() + "/in"}, table, decoder, host));
    EXPECT_FALSE(second || accepted);
    EXPECT_EQ(table.rows(), 1); // the first goes on
    EXPECT_TRUE(Drag_Accepts(mime, host));
    host.converting = true;
    EXPECT_FALSE(Drag_Accepts(mime, host));

    // A failure inside is shown, and leaves neither the window disabled nor the drop busy.
    QString shown;
    Set_MessageHandler([&](const QString& text, int, const QString& title, const QString&) {
        shown = title + ": " + text;
        return 1;
    });
    host = DropRecorder{};
    host.onStep = [] { throw std::runtime_error("disk gone"); };
    EXPECT_TRUE(On_DropFiles({home.path() + "/in"}, table, decoder, host));
    EXPECT_EQ(shown, "Drag and Drop: disk gone");
    EXPECT_EQ(host.events.last(2), (QStringList{"wait closed", "enable"}));
    EXPECT_TRUE(On_DropFiles({clipPath}, table, decoder, host)); // not left busy
}
