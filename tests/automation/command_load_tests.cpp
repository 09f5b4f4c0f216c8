// The channel's orders against a host that writes down what it is asked, with the replies read back
// from their files.
#include "Command_Load.h"
#include "Import_Files.h"
#include "mMain.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

using namespace morvane;

namespace {

class FakeHost : public CommandHost {
public:
    int conversionState = 0;
    bool enabled = true;
    int rows = 0;
    QStringList log;
    QList<PresetRow> presets = {
        {"VideoFormat", "MP4", "MP4 ", "MP4 - H.264"}, {"AudioFormat", "MP3", "MP3", "MP3 - 128 kbps"},
        {"WebFormat", "FLV", "YouTube", "YouTube HD"}, {"Apple", "MP4", "iPhone", " iPhone 15 "},
        {"Samsung", "MP4", "Galaxy", "[%Custom%]"},    {"Samsung", "MP4", "Galaxy", "iPhone 15"},
        {"VideoFormat ", "AVI", "AVI", "Padded maker"}};

    int Get_ConversionState() override { return conversionState; }
    bool Main_Enabled() override { return enabled; }
    QList<PresetRow> Preset_Rows() override { return presets; }
    bool Preset_Select(const QString& name, const QString& maker, const QString& keyword) override {
        return log << "Select:" + name + "|" + maker + "|" + keyword, true;
    }
    void Import_File(const QString& path) override { log << "Import:" + path, ++rows; }
    void Remove_All() override { log << "RemoveAll", rows = 0; }
    void Update_Totals() override { log << "Totals"; }
    int Row_Count() override { return rows; }
    void Select_FirstRow() override { log << "First"; }
    void Show_InputFileInfo(int row) override { log << "Info:" + QString::number(row); }
    void Set_MainState(int state) override { log << "State:" + QString::number(state); }
    void Focus_Table() override { log << "Focus"; }
    quint64 Main_WindowHandle() override { return 4242; }
    quint64 Active_WindowHandle() override { return 777; }
    void Hide_DragDrop() override { log << "HideDrop"; }
    void Show_TagPopup(const QString& image, const QString& show, const QString& animate,
                       const QString& effect) override {
        log << "Popup:" + image + "|" + show + "|" + animate + "|" + effect;
    }
    void Yield() override { log << "Yield"; }
};

const QStringList kSelected = {"State:-1", "First", "Info:0", "Focus"};
QStringList imported(const QString& path) {
    return QStringList{"Import:" + path, "Totals"} + kSelected;
}

QByteArray read(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<none>");
}
void write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (file.open(QIODevice::WriteOnly)) file.write(bytes);
}

class CommandLoad : public testing::Test {
protected:
    void SetUp() override {
        Path_ExportData = dir.filePath("data.txt");
        Path_ExportDone = dir.filePath("done.txt");
        Set_MessageHandler([this](const QString& text, int flags, const QString& title, const QString&) {
            messages << title + "|" + QString::number(flags) + "|" + text;
            return int(ID_OK);
        });
    }
    void TearDown() override { Set_MessageHandler(nullptr); }

    QTemporaryDir dir;
    FakeHost host;
    QStringList messages;
};

const QByteArray kOld = "an older, longer reply\r\nof two lines\r\n";

TEST_F(CommandLoad, EachOrderWithItsRepliesAndCalls) {
    struct Case {
        QString text;
        QStringList log = {};
        QByteArray data = kOld; // the data file afterwards
        bool done = false;      // the done marker written
        bool refused = false;
        int rows = 0; // in the list before
        int busy = 0; // 1 or 2 converting, -1 the main window disabled
        bool argsKept = false;
    };
    const Case cases[] = {
        {.text = "@InputFormat", .data = Supported_Extensions.toUtf8() + "\r\n"},
        {.text = "@OutputFormat",
         .data = "MP4\r\nMP3\r\nYouTube\r\n iPhone 15 \r\niPhone 15\r\nPadded maker\r\n"},
        {.text = "@hWnd", .log = {"Yield"}, .data = "4242\r\n"},
        {.text = "@inputformat"},
        {.text = "@Unknown"},
        {.text = "@RemoveAll",
         .log = {"RemoveAll", "Totals", "Info:-1", "State:2", "Yield"},
         .done = true,
         .rows = 3},
        {.text = "/v/a.mp4", .log = imported("/v/a.mp4")},
        {.text = "\"/v/b c.MKV\"", .log = imported("/v/b c.MKV")},
        {.text = "@AddFile:\"/v/a.mp4\"", .log = imported("/v/a.mp4"), .done = true},
        {.text = "@addfile:/v/a.Mp4", .log = imported("/v/a.Mp4"), .done = true},
        {.text = "/v.d/noext", .log = {"State:2"}, .refused = true},
        {.text = "/v/a.txt", .log = kSelected, .refused = true, .rows = 2},
        {.text = "@AddFile:/v/a.txt", .log = {"State:2"}, .done = true, .refused = true},
        {.text = "@AddFile:", .log = {"State:2"}, .done = true, .refused = true},
        // Busy: dropped whole, with no reply and the arguments left for later.
        {.text = "@AddFile:/v/a.mp4", .busy = 1},
        {.text = "@RemoveAll", .rows = 1, .busy = 2},
        {.text = "@hWnd", .busy = -1},
        {.text = "/v/a.txt", .busy = -1},
        // The first row of that name gives maker and keyword; an unknown name goes to the browser,
        // which tells the user.
        {.text = "@SetOutput:MP4 - H.264", .log = {"Select:MP4 - H.264|VideoFormat|MP4"}},
        {.text = "@setoutput: iPhone 15", .log = {"Select:iPhone 15|Apple|iPhone"}},
        {.text = "@SetOutput:mp4 - h.264", .log = {"Select:mp4 - h.264||"}},
        // The popup ends the order, before any file named after it.
        {.text = "@ImageOverlay:/home/u/pic.png/3000/500/fade",
         .log = {"HideDrop", "Popup:/home/u/pic.png|3000|500|fade"},
         .argsKept = true},
        {.text = "@ImageOverlay:pic.png/1/2", .log = {"HideDrop"}, .argsKept = true},
        {.text = "@imageoverlay:p.png/1/2/fade@AddFile:a.mp4",
         .log = {"HideDrop", "Popup:p.png|1|2|fade@AddFile:a.mp4"},
         .argsKept = true},
    };
    const QString refused = kRefusedTitle + "|48|" + kRefusedText;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        write(Path_ExportData, kOld);
        QFile::remove(Path_ExportDone);
        Parse_CommandLine({"/v/first.mp4"});
        host.log.clear();
        messages.clear();
        host.rows = c.rows;
        host.conversionState = std::max(c.busy, 0);
        host.enabled = c.busy != -1;
        Process_Command(c.text, host);
        EXPECT_EQ(host.log, c.log);
        EXPECT_EQ(read(Path_ExportData), c.data);
        EXPECT_EQ(read(Path_ExportDone), c.done ? QByteArray() : QByteArray("<none>"));
        EXPECT_EQ(messages, c.refused ? QStringList{refused} : QStringList());
        EXPECT_EQ(Command_Arguments.size(), c.argsKept || c.busy ? 1 : 0);
    }
}

TEST_F(CommandLoad, ExportPathsTakeTheWholeTextLessTheirOwnPrefix) {
    // Relative paths land in the working folder, where these odd names can be made.
    const QString previous = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(dir.path()));
    struct Case {
        QString text, data, done;
    };
    const Case cases[] = {
        {"@ExportDataPath:d.txt", "d.txt", "done.txt"},
        {"@exportdonepath:m.txt", "data.txt", "m.txt"},
        {"@ExportDataPath:d@ExportDonePath:e", "d@ExportDonePath:e", "@ExportDataPath:de"},
        {"@ExportDataPath:a@EXPORTDATAPATH:b", "ab", "done.txt"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        Path_ExportData = "data.txt";
        Path_ExportDone = "done.txt";
        write(c.data, kOld);
        write(c.done, kOld);
        Process_Command(c.text, host);
        EXPECT_EQ(Path_ExportData, c.data);
        EXPECT_EQ(Path_ExportDone, c.done);
        // A file that a prefix named is emptied; the other keeps what it had.
        EXPECT_EQ(read(c.data), c.data == "data.txt" ? kOld : QByteArray());
        EXPECT_EQ(read(c.done), c.done == "done.txt" ? kOld : QByteArray());
    }
    EXPECT_TRUE(host.log.isEmpty());
    QDir::setCurrent(previous);
}

TEST_F(CommandLoad, ActiveWindowIsWrittenByALaterTickWhileItsHostLives) {
    const auto tick = [] {
        QElapsedTimer clock;
        for (clock.start(); clock.elapsed() < kActiveFormInterval + 200;)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    };
    Process_Command("@ActivehWnd", host);
    EXPECT_FALSE(QFile::exists(Path_ExportData));
    tick();
    EXPECT_EQ(read(Path_ExportData), "777\r\n");
    QFile::remove(Path_ExportData);
    Process_Command("@ActivehWnd", *std::make_unique<FakeHost>()); // a host gone before the tick
    tick();
    EXPECT_FALSE(QFile::exists(Path_ExportData));
}

TEST_F(CommandLoad, StartUpRunsTheFirstArgumentOnce) {
    EXPECT_EQ(Parse_CommandLine({"/v/a.mp4", "/v/b.mp4"}), 2);
    EXPECT_TRUE(Command_StartUp(host));
    EXPECT_EQ(host.log, imported("/v/a.mp4"));
    EXPECT_FALSE(Command_StartUp(host));
}

} // namespace
