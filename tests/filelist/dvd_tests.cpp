// The DVD source over fake mount tables and device folders, and over VIDEO_TS folders of MPEG-PS
// title files that the ffmpeg program makes at test time.
#include "DVD_Mods.h"
#include "DragDrop_Mod.h"
#include "Globals.h"
#include "Report_List.h"
#include "mMain.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <tuple>

using namespace morvane;

namespace {

struct Host : ImportHost, DiscFolderDialog {
    QString answer;
    QStringList log;
    QString Browse_Folder(const QString& start) override {
        log.append("asked:" + start);
        return answer;
    }
    void Set_MainState(int s) override { log.append(QStringLiteral("state:%1").arg(s)); }
    void Show_InputFileInfo(int) override {}
    void Wait_Step(const QString& fileNo, const QString&, int) override { log.append("wait:" + fileNo); }
};

const QString kNoSource = "msg:There is no DVD video source.|64|Information";
const QString kNotReady = "msg:Please make sure you have inserted a DVD disc in your DVD-ROM.|64|Information";

class Dvd : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        const QString ffmpeg = QStandardPaths::findExecutable(QStringLiteral("ffmpeg"));
        clips = std::make_unique<QTemporaryDir>();
        // Titles with mp2 and AC-3 sound, and one under a second, as a still menu is.
        const char* const kinds[][3] = {
            {"title", "1.5", "mp2"}, {"ac3", "1.5", "ac3"}, {"short", "0.4", "mp2"}};
        for (const auto& [kind, seconds, audio] : kinds) {
            QProcess p;
            p.start(ffmpeg, {"-v", "error", "-y", "-f", "lavfi", "-i",
                             QStringLiteral("testsrc2=size=64x48:rate=25:duration=") + seconds, "-f", "lavfi",
                             "-i", QStringLiteral("sine=duration=") + seconds, "-c:v", "mpeg2video", "-c:a",
                             audio, "-f", "vob", clips->filePath(kind)});
            if (ffmpeg.isEmpty() || !p.waitForFinished(60000) || p.exitCode() != 0) return;
        }
        QFile junk(clips->filePath("junk"));
        haveClips = junk.open(QIODevice::WriteOnly) && junk.write("not a video\n") > 0;
    }
    static void TearDownTestSuite() { clips.reset(); }
    void SetUp() override {
        if (!haveClips) GTEST_SKIP() << "no ffmpeg program to make the title files";
        Folder_Temp = home.filePath(QStringLiteral("temp/"));
        QDir().mkpath(Folder_Temp);
        List_DragDrop.clear();
        Set_MessageHandler([this](const QString& text, int flags, const QString& title, const QString&) {
            host.log.append(QStringLiteral("msg:%1|%2|%3").arg(text).arg(flags).arg(title));
            return ID_OK;
        });
    }
    void TearDown() override { Set_MessageHandler(nullptr); }

    // "folder/NAME=kind": a copy of a clip (title, ac3, short, junk), an empty file without one.
    void put(const QString& spec) {
        const QString path = home.filePath(spec.section('=', 0, 0)),
                      clip = clips->filePath(spec.section('=', 1));
        QDir().mkpath(QFileInfo(path).path());
        QFileInfo(clip).isFile() ? QFile::copy(clip, path) : QFile(path).open(QIODevice::WriteOnly);
    }

    // Runs a menu entry over a fresh list and tells what came of it, paths relative to the home.
    QString choose(const DiscMenuEntry& entry, const QString& answer, const DiscPaths& paths = {}) {
        host = Host{};
        host.answer = answer.isEmpty() ? QString() : home.filePath(answer);
        Report_Clear();
        Path_LastDisc = home.filePath(QStringLiteral("start/"));
        FileViewMain table;
        const int result = int(Run_DiscChoice(entry, host, table, *decoder, host, paths));
        QStringList out{QStringList{"NotReady", "Cancelled", "NoSource", "Imported"}.at(result)};
        out += host.log;
        for (int r = 0; r < table.rows(); ++r)
            out.append("row:" + table.text(r, FileCol::Name));
        for (const ReportEntry& e : Report_Entries())
            out.append("report:" + e.text);
        out.append("last:" + Path_LastDisc);
        return out.join(' ').replace(home.path() + '/', QString());
    }

    static inline std::unique_ptr<QTemporaryDir> clips;
    static inline bool haveClips = false;
    QTemporaryDir home;
    Host host;
    std::unique_ptr<FFDecoder> decoder = Make_FFDecoder();
};

} // namespace

TEST_F(Dvd, ChosenFolderListsItsTitlesAndImportsThemInDiscMode) {
    // Files to make in the folder, the folder chosen, what comes of it. Title sets come before the
    // video manager; menus and titles under a second fall away silently, an unreadable title is
    // reported, and what isn't a .vob file is never listed.
    const char* const cases[][3] = {
        {"dvd/VIDEO_TS/ VIDEO_TS.VOB=title VIDEO_TS.IFO= VTS_02_1.VOB=ac3 VTS_01_0.VOB=short "
         "VTS_01_1.VOB=title VTS_03_1.VOB=short VTS_04_1.VOB=junk VTS_05_1.VOB/x= VTS_06_1.VOB.part=",
         "dvd",
         "Imported asked:start/ wait:0 of 5 files wait:1 of 5 files wait:2 of 5 files "
         "wait:3 of 5 files wait:4 of 5 files state:-1 row:VTS_01_1 row:VTS_02_1 "
         "report:VTS_04_1.VOB last:dvd/VIDEO_TS/"},
        {"mgr/VIDEO_TS/ VIDEO_TS.VOB=title VIDEO_TS.IFO= VTS_01_0.IFO=", "mgr/VIDEO_TS",
         "Imported asked:start/ state:-1 row:VIDEO_TS last:mgr/VIDEO_TS/"},
        {"lc/video_ts/ video_ts.vob=title vts_02_1.vob=ac3 VTS_01_1.VOB=title", "lc",
         "Imported asked:start/ wait:0 of 2 files wait:1 of 2 files state:-1 row:VTS_01_1 row:vts_02_1 "
         "last:lc/video_ts/"},
        {"menu/VIDEO_TS/ VTS_01_0.VOB=short", "menu", "Imported asked:start/ state:2 last:menu/VIDEO_TS/"},
        {"bare/ VIDEO_TS/VIDEO_TS.IFO= VIDEO_TS.VOB=", "bare",
         "NoSource asked:start/ msg:There is no DVD video source.|64|Information last:bare/VIDEO_TS/"},
        {"", "", "Cancelled asked:start/ last:start/"},
    };
    for (const auto& [files, answer, outcome] : cases) {
        const QStringList names = QString(files).split(' ');
        for (const QString& f : names.mid(1))
            put(names.first() + f);
        EXPECT_EQ(choose({kLoadDvdFolder, true, {}}, answer).toStdString(), outcome);
    }
}

TEST_F(Dvd, MenuListsOpticalMediaAndDrivesAsTheyAreWhenChosen) {
    for (const char* f : {"dev/sr0=", "dev/sr1=", "dev/sr10=", "dev/sda=", "dev/srx=", "dev/disk/by-label/",
                          "disc/video_ts/VTS_01_1.VOB=title", "empty disc/README.TXT="})
        put(f);
    QFile::link("../../sr0", home.filePath("dev/disk/by-label/Holiday\\x202019"));
    QFile::link("../../loop0", home.filePath("dev/disk/by-label/DATA"));
    const DiscPaths paths{home.filePath("mounts"), home.filePath("dev")};
    const auto mount = [&](const QString& text) {
        QFile f(paths.mounts);
        f.open(QIODevice::WriteOnly | QIODevice::Truncate);
        f.write(QString(text).replace("%1", home.path()).toUtf8());
    };
    mount("/dev/sda1 / ext4 rw 0 0\ntmpfs /tmp tmpfs rw 0 0\n/dev/sdb1 /media/usb vfat rw 0 0\n"
          "/dev/sr0 %1/disc iso9660 ro 0 0\n/dev/sr0 /mnt/again iso9660 ro 0 0\n"
          "/dev/loop0 /mnt/image\\040one udf ro 0 0\n/dev/sr1 /media/odd ext4 ro 0 0\n");
    const QList<DiscMenuEntry> menu = Update_DiscMenu(paths);
    QStringList captions;
    for (const DiscMenuEntry& e : menu)
        captions.append(e.caption);
    EXPECT_EQ(captions.join(',').replace(home.path(), "~").toStdString(),
              "Load DVD Folder...,~/disc (Holiday 2019),/mnt/image one (DATA),/dev/sr1,/dev/sr10");
    EXPECT_TRUE(menu[0].loadFolder);
    EXPECT_EQ(Update_DiscMenu({home.filePath("none"), home.filePath("none")}).size(), 1);

    // The drives are looked at again when an entry is chosen: mount table, device taken away, entry.
    const std::tuple<const char*, const char*, int, QString> steps[] = {
        {"/dev/sr0 %1/disc iso9660 ro 0 0", "", 1, "Imported state:-1 row:VTS_01_1 last:start/"},
        {"", "", 1, "NotReady " + kNotReady + " last:start/"}, // ejected since the menu came up
        {"/dev/sr1 %1/empty\\040disc udf ro 0 0", "", 3, "NoSource " + kNoSource + " last:start/"},
        {"", "", 3, "NotReady " + kNotReady + " last:start/"},
        {"", "dev/sr10", 4, "Cancelled asked:start/ last:start/"}, // a drive gone: a folder is asked
        {"", "", 2, "Cancelled asked:start/ last:start/"},         // the image was unmounted
    };
    for (const auto& [mounts, gone, entry, outcome] : steps) {
        mount(mounts);
        if (*gone) QFile::remove(home.filePath(gone));
        EXPECT_EQ(choose(menu[entry], QString(), paths).toStdString(), outcome.toStdString()) << entry;
    }
}
