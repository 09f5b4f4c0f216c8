// The conversion controller against a fake encoder and a fake main window: the button state, the
// preparation of the queue, the events in the orders a real engine can raise them, and progress.
#include "ConversionFakes.h"

#include "Globals.h"
#include "Registry_Mod.h"
#include "Report_List.h"
#include "mMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace morvane;

namespace {

class RecordingSink : public ReportSink {
public:
    void Show_Report(const ReportForm& form) override { forms.append(form); }
    QList<ReportForm> forms;
};

void touch(const QString& path) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write("x");
}

class JobTest : public ::testing::Test {
protected:
    JobTest() {
        Output_NameMode = 1;
        converter.Txt_OutputPath = dir.path() + "/out/";
        Set_MessageHandler([this](const QString& text, int flags, const QString& title, const QString&) {
            messages << QStringLiteral("%1|%2|").arg(title).arg(flags) + text;
            return ID_OK;
        });
        Set_ReportSink(&sink);
        const std::pair<int, const char*> lists[] = {
            {List_VideoCodec, "H.264"},      {List_FrameSize, "Original"}, {List_FrameRate, "Original"},
            {List_Extension, "mp4"},         {List_AudioCodec, "AAC"},     {List_SampleRate, "44100 Hz"},
            {List_AudioBitrate, "128 kbps"}, {List_SampleSize, "16 bit"},  {List_Aspect, "Original"},
            {List_VideoBitrate, "Smart Fit"}};
        for (const auto& [list, text] : lists)
            setList(list, {text});
        setList(List_Channels, {"Mono", "Stereo"}, 1);
        settings.Txt_OutputVideoWidth.text = "0";
        settings.Txt_OutputVideoHeight.text = "0";
        settings.Radio_Quality = Quality_High;
    }
    ~JobTest() override {
        Set_MessageHandler(nullptr);
        Set_ReportSink(nullptr);
        EditWindowOpen = PlayerWindowOpen = Closing = Test_Running = false;
        Output_NameMode = 1;
    }

    void setList(int list, const QStringList& texts, qsizetype selected = 0) {
        ValueList& values = settings.Combo_OutputFile.at(static_cast<std::size_t>(list));
        values.clear();
        for (const QString& text : texts)
            values.addItem(text);
        values.select(selected);
    }

    // Rows named clip1, clip2 ... of 160 x 120 sources in the temporary folder.
    void addRows(int count, const QString& name = QString()) {
        for (int i = 0; i < count; ++i) {
            const int r = table.addRow();
            table.setText(r, FileCol::Name, name.isEmpty() ? QStringLiteral("clip%1").arg(r + 1) : name);
            table.setText(r, FileCol::Format, "avi");
            table.setText(r, FileCol::FileName, QStringLiteral("src%1.avi").arg(r + 1));
            table.setText(r, FileCol::FilePath, dir.path() + "/");
            table.setLong(r, FileCol::VideoWidth, 160);
            table.setLong(r, FileCol::VideoHeight, 120);
            table.setLong(r, FileCol::VideoFrameRateNumerator, 25);
            table.setText(r, FileCol::VideoSampleAspectRatio, "1.33");
            table.setText(r, FileCol::NewAspectRatio, "Original");
            table.setLong(r, FileCol::CropWidth, 160);
            table.setLong(r, FileCol::CropHeight, 120);
            table.setText(r, FileCol::PadColor, "black");
        }
    }
    // A new run from the idle button, as the next press of Convert makes it.
    void restart() {
        converter.Set_ConvertButton(Conversion_Idle);
        converter.Start();
    }
    QString status(int row) const { return table.text(row, FileCol::Status); }
    QString output(int row) const { return table.text(row, FileCol::ConvertedFileName); }
    // Starts a queue of `count` rows and touches every output, as a run would leave them.
    void startWithOutputs(int count) {
        addRows(count);
        converter.Start();
        ASSERT_EQ(converter.Get_ConversionState(), Conversion_Converting);
        for (int r = 0; r < count; ++r)
            touch(output(r));
    }

    QTemporaryDir dir;
    FileViewMain table;
    Catalogue catalogue;
    FormatSetting settings{catalogue};
    OutputBrowser browser{catalogue, settings};
    FakeEncoder encoder;
    FakeHost host;
    VideoConverter converter{table, settings, browser, encoder, host, false};
    QStringList messages;
    RecordingSink sink;
};

} // namespace

// ---- The button and the preparation

TEST_F(JobTest, ButtonTagIsTheStateThroughStartPauseResume) {
    converter.Set_ConvertButton(Conversion_Idle);
    EXPECT_EQ(converter.Get_ConversionState(), Conversion_Idle);
    addRows(2);

    converter.Cmd_ConvertPressed();
    EXPECT_EQ(converter.Cmd_Convert.Tag, "1");
    EXPECT_EQ(converter.Cmd_Convert.Caption, "Pause");
    EXPECT_EQ(converter.Cmd_Convert.Width, 2980);
    EXPECT_EQ(converter.Cmd_Convert.Icon, 7);
    EXPECT_TRUE(converter.Timer_ConversionElapsed());

    converter.Cmd_ConvertPressed();
    EXPECT_EQ(converter.Get_ConversionState(), Conversion_Paused);
    EXPECT_EQ(converter.Cmd_Convert.Caption, "Resume");
    EXPECT_EQ(converter.Cmd_Convert.Icon, 34);
    EXPECT_FALSE(converter.Timer_ConversionElapsed());

    converter.Cmd_ConvertPressed();
    EXPECT_EQ(converter.Get_ConversionState(), Conversion_Converting);
    EXPECT_TRUE(converter.Timer_ConversionElapsed());
    EXPECT_EQ(encoder.calls.mid(encoder.calls.size() - 2), QStringList({"Pause", "Resume"}));

    // The tag is read, not a shadow copy: a tag written elsewhere is the state.
    converter.Cmd_Convert.Tag = "2";
    EXPECT_EQ(converter.Get_ConversionState(), Conversion_Paused);
    converter.Cmd_Convert.Tag = "x";
    EXPECT_EQ(converter.Get_ConversionState(), Conversion_Idle);
    converter.Set_ConvertButton(Conversion_Idle);
    EXPECT_EQ(converter.Cmd_Convert.Caption, "Convert Now");
    EXPECT_EQ(converter.Cmd_Convert.Width, 4110);
    EXPECT_EQ(converter.Cmd_Convert.Icon, 5);
}

TEST_F(JobTest, StartPreparesEveryRowInOrderAndRuns) {
    addRows(2);
    table.setText(0, FileCol::TrimStartLow, "2500000");
    table.setText(0, FileCol::TrimStartHigh, "0");
    table.setText(1, FileCol::Status, "Unsuccessful!");
    table.setText(1, FileCol::ErrMsg, "old failure");
    converter.Preview_Enabled = false;
    host.acceptDrops = true;

    converter.Start();

    const QString out = dir.path() + "/out/";
    EXPECT_TRUE(QFileInfo(out).isDir()); // the output folder is made
    EXPECT_EQ(
        encoder.calls,
        QStringList({"Stop 0", "ClearTasks", "Preview 0", "AddInput " + dir.path() + "/src1.avi| -ss 2.5",
                     "AddOutput 0 " + out + "clip1.MP4", "AddInput " + dir.path() + "/src2.avi|",
                     "AddOutput 1 " + out + "clip2.MP4", "Start 0"}));
    EXPECT_TRUE(encoder.tasks.at(0).arguments.startsWith("-VideoOutputHook "));
    EXPECT_EQ(output(1), out + "clip2.MP4");
    EXPECT_EQ(status(1), "");
    EXPECT_EQ(table.text(1, FileCol::ErrMsg), "");
    EXPECT_EQ(table.icon(1), 12);
    EXPECT_EQ(host.events.filter(QRegularExpression("^(wait|step|state)")),
              QStringList({"wait 1 Preparing for conversion...", "step 1 of 2 files", "step 2 of 2 files",
                           "wait closed", "state 1 1"}));
    EXPECT_FALSE(host.acceptDrops); // refused until the queue ends
    EXPECT_EQ(converter.ProgressBar_Total.Maximum, 200);
    EXPECT_TRUE(converter.ProgressBar_Total.Visible);
    EXPECT_EQ(converter.Elapsed_Seconds, 0);
}

TEST_F(JobTest, ThreadModeDecidesTheTasksAtOnce) {
    struct Case {
        bool mode;
        const char* count;
        const char* start;
    };
    const Case cases[] = {
        {false, "4", "Start 0"}, {true, "3", "Start 3"}, {true, "abc", "Start 1"}, {true, "", "Start 1"}};
    addRows(1);
    for (const Case& c : cases) {
        converter.chkThreadMode = c.mode;
        converter.txtThreadCount = c.count;
        restart();
        EXPECT_EQ(encoder.calls.last(), c.start) << c.count;
    }
}

TEST_F(JobTest, OutputFolderThatCannotBeMadeLeavesIdleAndAnEmptyOneIsShown) {
    addRows(1);
    converter.Txt_OutputPath = dir.path() + "/missing/deeper/";
    host.acceptDrops = false;
    converter.Start();
    EXPECT_EQ(converter.Get_ConversionState(), Conversion_Idle);
    EXPECT_TRUE(host.events.contains("focus output"));
    EXPECT_TRUE(host.acceptDrops);
    EXPECT_TRUE(encoder.calls.isEmpty());
    ASSERT_EQ(messages.size(), 1);
    EXPECT_TRUE(messages.first().startsWith("Attention!|48|The ")) << messages.first().toStdString();
    EXPECT_TRUE(messages.first().endsWith(".")) << messages.first().toStdString();
    EXPECT_TRUE(messages.first().contains(dir.path() + "/missing")) << messages.first().toStdString();
    EXPECT_TRUE(host.events.filter("output ").isEmpty()); // a typed folder is shown as typed

    // An empty box runs into the default folder, and the window is told which, so that it shows it.
    converter.Txt_OutputPath = "  ";
    converter.Start();
    const QStringList shown = host.events.filter("output ");
    ASSERT_EQ(shown.size(), 1);
    EXPECT_EQ(shown.first(), "output " + converter.Txt_OutputPath);
    EXPECT_FALSE(converter.Txt_OutputPath.trimmed().isEmpty());
}

TEST_F(JobTest, CancelDuringRowThreeOfFiveLeavesNoTasks) {
    addRows(5);
    host.onWaitStep = [this](int value) {
        if (value == 2) converter.Wait_CancelPressed();
    };
    converter.Start();
    EXPECT_EQ(encoder.calls.filter("AddOutput").size(), 3);
    EXPECT_FALSE(encoder.calls.contains("Start 0"));
    EXPECT_EQ(encoder.calls.last(), "ClearTasks");
    EXPECT_EQ(encoder.TaskCount(), 0);
    EXPECT_EQ(converter.Get_ConversionState(), Conversion_Idle);
    EXPECT_EQ(host.mainState, 0);
    EXPECT_FALSE(converter.ProgressBar_Total.Visible);
    EXPECT_TRUE(host.acceptDrops);
    EXPECT_FALSE(converter.Timer_ConversionElapsed());
    for (int r = 0; r < 5; ++r)
        EXPECT_EQ(status(r), "") << r; // no row converted
}

TEST_F(JobTest, RowsThatCannotBeQueuedGoToTheReportAndTheOthersRun) {
    for (const bool atInput : {true, false}) {
        SCOPED_TRACE(atInput ? "AddInput" : "AddOutput");
        table.clearRows();
        encoder.calls.clear();
        sink.forms.clear();
        addRows(3);
        encoder.failInputAt = atInput ? 2 : -1;
        encoder.failOutputAt = atInput ? -1 : 2;
        encoder.error = "Invalid value '0' for option '-r'";
        restart();
        // No message stops the batch: rows 1 and 3 are queued as tasks 0 and 1, and Start runs.
        EXPECT_TRUE(messages.isEmpty());
        EXPECT_EQ(encoder.TaskCount(), 2);
        EXPECT_EQ(encoder.calls.filter("AddOutput").last(), "AddOutput 1 " + dir.path() + "/out/clip3.MP4");
        EXPECT_EQ(encoder.calls.last(), "Start 0");
        EXPECT_EQ(status(1), "Unsuccessful! ");
        EXPECT_EQ(table.icon(1), 11);
        // Task numbers map back to their rows.
        encoder.progress(1, 500, 1000);
        EXPECT_EQ(table.progress(2).percent, 50);
        encoder.terminate(0, true);
        encoder.terminate(1, true);
        encoder.terminate(-1, false);
        EXPECT_EQ(status(0), "Done");
        EXPECT_EQ(status(2), "Done");
        ASSERT_EQ(sink.forms.size(), 1);
        ASSERT_EQ(sink.forms.at(0).entries.size(), 1);
        EXPECT_EQ(sink.forms.at(0).entries.at(0).text, "src2.avi");
        EXPECT_EQ(sink.forms.at(0).entries.at(0).second, encoder.error);
        encoder.failInputAt = encoder.failOutputAt = -1;
    }
}

// ---- Output names

TEST_F(JobTest, OutputNamesNeverMeetTheirSourceEachOtherOrAFileTheUserKeeps) {
    addRows(2, "same");
    // A camera file converted into its own folder: the output's name is the source's own.
    addRows(1, "CAM_0001");
    const int cam = 2;
    table.setText(cam, FileCol::FileName, "CAM_0001.MP4");
    table.setText(cam, FileCol::FilePath, dir.path() + "/out/");
    QDir().mkpath(dir.path() + "/out");
    touch(dir.path() + "/out/CAM_0001.MP4");
    const QString taken = dir.path() + "/out/same.MP4";
    touch(taken);

    struct Case {
        int nameMode;
        QStringList outputs;
        bool overwrite;
    };
    const QString out = dir.path() + "/out/";
    const Case cases[] = {
        // Renaming passes over the file on disk and over the name the batch gave out already.
        {1, {out + "same_(new).MP4", out + "same_(new_1).MP4", out + "CAM_0001_(new).MP4"}, false},
        // Overwriting replaces the older file, but never twice in one batch and never the source.
        {0, {taken, out + "same_(new).MP4", out + "CAM_0001_(new).MP4"}, true},
    };
    for (const Case& c : cases) {
        Output_NameMode = c.nameMode;
        restart();
        EXPECT_EQ(QStringList({output(0), output(1), output(2)}), c.outputs) << c.nameMode;
        EXPECT_EQ(encoder.overwrite, c.overwrite);
        QStringList planned;
        for (const VideoConverter::RowJob& job : converter.Prepare_All())
            planned << job.outputPath;
        EXPECT_EQ(planned, c.outputs) << "the dry run plans the same names";
    }

    // A name taken while the task ran: the engine's landing place goes into the row.
    encoder.landed[1] = out + "same_(new_7).MP4";
    encoder.terminate(1, true);
    EXPECT_EQ(output(1), out + "same_(new_7).MP4");

    // M4R: the encoder writes .M4A under a name of ours, never over a file; the column keeps .M4R
    // and the end of the task moves it there.
    table.removeRows({2});
    setList(List_Extension, {"m4r"});
    restart();
    const QString wanted = out + "same.M4R";
    const QString written = out + "same.M4A";
    EXPECT_EQ(output(0), wanted);
    EXPECT_EQ(encoder.tasks.at(0).output, written);
    EXPECT_FALSE(encoder.overwrite);
    touch(written);
    encoder.terminate(0, true);
    EXPECT_EQ(status(0), "Done");
    EXPECT_TRUE(QFileInfo::exists(wanted));
    EXPECT_FALSE(QFileInfo::exists(written));

    // No .M4A to move: only that row fails, with the system's words.
    encoder.terminate(1, true);
    EXPECT_EQ(status(1), "Unsuccessful!");
    EXPECT_FALSE(table.text(1, FileCol::ErrMsg).isEmpty());
    EXPECT_EQ(table.icon(1), 11);
}

// ---- Events

TEST_F(JobTest, QueueOfThreeEndsDoneWithTheCompletionWindow) {
    startWithOutputs(3);
    host.events.clear();
    for (int task = 0; task < 3; ++task) {
        encoder.progress(task, 500000, 1000000);
        EXPECT_EQ(converter.Current_Job, task);
        encoder.terminate(task, true);
        EXPECT_EQ(status(task), "Done");
    }
    EXPECT_EQ(converter.Progress_Base, 300);
    // Each end selects the next row; the last one selects none.
    EXPECT_EQ(host.events.filter("info"), QStringList({"info 1", "info 2"}));
    EXPECT_EQ(table.selectedRows(), QList<int>({2}));

    encoder.terminate(-1, false);
    EXPECT_EQ(converter.Get_ConversionState(), Conversion_Idle);
    EXPECT_EQ(converter.Current_Job, -1);
    EXPECT_FALSE(converter.ProgressBar_Total.Visible);
    EXPECT_EQ(converter.ProgressBar_Total.Scrolling, Scrolling_Normal);
    EXPECT_FALSE(converter.Timer_ConversionElapsed());
    EXPECT_EQ(converter.Status_Header, "");
    EXPECT_TRUE(host.acceptDrops);
    EXPECT_EQ(host.mainState, 0);
    EXPECT_TRUE(host.events.contains("completion"));
    EXPECT_TRUE(sink.forms.isEmpty());
    EXPECT_EQ(encoder.calls.last(), "ClearTasks");
    for (int r = 0; r < 3; ++r)
        EXPECT_TRUE(QFileInfo::exists(output(r)));
}

TEST_F(JobTest, WindowTrayAndShutdownDecideWhatTheEndShows) {
    struct Case {
        int windowState;
        bool tray;
        int shutdown;
        QStringList expected;
    };
    const QString tip = "tray tip Conversion is completed! - " + PRODUCT_NAME;
    const QList<Case> cases = {
        {Window_Maximized, false, 0, {"completion"}},
        {Window_Minimized, false, 0, {"popup 250 5000 255"}},
        {Window_Normal, true, 0, {"popup 250 5000 255", "tray stop", "tray done", tip}},
        // A shutdown after the queue shows nothing and goes through the host.
        {Window_Normal, true, 1, {"shutdown shutdown -s -t 30 -c \"Conversion is completed !\"", "unload"}},
    };
    addRows(1);
    for (const Case& c : cases) {
        converter.Shutdown_After = c.shutdown;
        restart();
        host.windowState = c.windowState;
        host.trayAnimating = c.tray;
        host.events.clear();
        encoder.terminate(0, true);
        encoder.terminate(-1, false);
        EXPECT_EQ(host.events.filter(QRegularExpression("^(completion|popup|tray|shutdown|unload)")),
                  c.expected)
            << host.events.join('|').toStdString();
        EXPECT_TRUE(sink.forms.isEmpty());
    }
}

TEST_F(JobTest, StopCancelsTheUnfinishedRowsAndDeletesNoFile) {
    for (const bool merging : {false, true}) {
        SCOPED_TRACE(merging ? "merging" : "not merging");
        table.clearRows();
        browser.mergeChecked = merging;
        // Files under every output name: the finished rows' outputs, and older files of the user's
        // under the names of the rows that never finished (the engine leaves nothing of those).
        startWithOutputs(5);
        encoder.progress(0, 100, 1000);
        encoder.terminate(0, true);
        encoder.progress(1, 100, 1000);
        encoder.progress(3, 100, 1000); // two at once: task 3 finishes before task 1
        encoder.terminate(3, true);
        encoder.progress(1, 500, 1000);
        encoder.duringStop = [this] {
            encoder.terminate(1, false);
            encoder.terminate(-1, false);
        };
        host.events.clear();
        converter.Stop();

        EXPECT_TRUE(converter.Stop_Requested);
        const QStringList expected = {"Done", "Canceled!", "Canceled!", "Done", "Canceled!"};
        for (int r = 0; r < 5; ++r) {
            EXPECT_EQ(status(r), expected.at(r)) << r;
            EXPECT_TRUE(QFileInfo::exists(output(r))) << r;
        }
        EXPECT_EQ(table.icon(2), 13);
        EXPECT_EQ(converter.Get_ConversionState(), Conversion_Idle);
        EXPECT_TRUE(converter.Cmd_Convert.Enabled);
        EXPECT_TRUE(converter.Cmd_StopEnabled);
        EXPECT_EQ(converter.ProgressBar_Total.Value, 0);
        EXPECT_EQ(converter.Current_Job, -1);
        EXPECT_FALSE(converter.Timer_ConversionElapsed());
        EXPECT_EQ(converter.Status_Header, "");
        EXPECT_EQ(table.selectedRows(), QList<int>({1}));
        // A stopped queue ends quietly.
        EXPECT_FALSE(host.events.contains("completion"));
        EXPECT_TRUE(sink.forms.isEmpty());
        EXPECT_TRUE(encoder.calls.contains("Stop 1"));
        encoder.duringStop = nullptr;
    }
}

TEST_F(JobTest, TheTwoStoppingFailuresStopTheQueueWithTheirMessage) {
    struct Case {
        const char* words;
        QString message;
    };
    const QList<Case> cases = {
        {"writing 'x.mp4': No space left on device (28)",
         "Attention!|48|The disk in the destination folder is full.\n\n\"" + dir.path() + "/out/\""},
        {"Invalid data found when processing input",
         "Attention!|48|Please change the format parameters or use one of the preset profiles."},
    };
    addRows(3);
    for (const Case& c : cases) {
        messages.clear();
        restart();
        encoder.calls.clear();
        encoder.progress(0, 100, 1000);
        encoder.terminate(0, true);
        encoder.progress(1, 100, 1000);
        // The real engine delivers the queue's end inside Stop(true): the row still reads failed then.
        encoder.duringStop = [this] { encoder.terminate(-1, false); };
        sink.forms.clear();
        encoder.terminate(1, false, true, c.words);

        EXPECT_EQ(encoder.calls.first(), "Stop 1");
        EXPECT_EQ(messages, QStringList({c.message}));
        EXPECT_EQ(converter.Get_ConversionState(), Conversion_Idle);
        // The stop marks the failed row canceled, which empties its failure text again.
        EXPECT_EQ(status(0), "Done");
        EXPECT_EQ(status(1), "Canceled!");
        EXPECT_EQ(table.text(1, FileCol::ErrMsg), "");
        EXPECT_EQ(table.selectedRows(), QList<int>({1}));
        ASSERT_EQ(sink.forms.size(), 1);
        ASSERT_EQ(sink.forms.at(0).entries.size(), 1);
        EXPECT_EQ(sink.forms.at(0).entries.at(0).second, QString::fromLatin1(c.words));
        EXPECT_FALSE(host.events.contains("completion"));
    }
}

// A failure that does not stop the queue lets it run on and end in the report, with the window
// brought back for it. A merge with a hole is worthless: it is skipped, and this run's pieces go, but
// only those (the failed row's name may hold a file of the user's).
TEST_F(JobTest, OtherFailuresLetTheQueueRunOnAndEndInTheReport) {
    int merges = 0;
    converter.Merge_Requested = [&merges] {
        ++merges;
        return true;
    };
    for (const bool merging : {false, true}) {
        SCOPED_TRACE(merging ? "merging" : "not merging");
        table.clearRows();
        sink.forms.clear();
        host.events.clear();
        browser.mergeChecked = merging;
        startWithOutputs(3);
        host.windowState = Window_Minimized;
        converter.Timer_ConversionElapsed_Tick();
        encoder.terminate(0, true);
        encoder.progress(1, 100, 1000);
        encoder.terminate(1, false, true, "Conversion failed: broken stream");
        EXPECT_EQ(status(1), "Unsuccessful!");
        EXPECT_EQ(table.text(1, FileCol::ErrMsg), "Conversion failed: broken stream");
        EXPECT_FALSE(converter.Timer_ConversionElapsed());
        EXPECT_EQ(converter.Status_Header, "");
        EXPECT_FALSE(encoder.calls.contains("Stop 1"));
        EXPECT_EQ(converter.Get_ConversionState(), Conversion_Converting);

        encoder.progress(2, 100, 1000);
        encoder.terminate(2, true);
        encoder.terminate(-1, false);
        ASSERT_EQ(sink.forms.size(), 1);
        EXPECT_EQ(sink.forms.at(0).caption, "Conversion Reports");
        EXPECT_EQ(sink.forms.at(0).message, "Can not convert these files!");
        ASSERT_EQ(sink.forms.at(0).entries.size(), 1);
        EXPECT_EQ(sink.forms.at(0).entries.at(0).text, "src2.avi");
        EXPECT_EQ(sink.forms.at(0).entries.at(0).second, "Conversion failed: broken stream");
        EXPECT_FALSE(host.events.contains("completion"));
        EXPECT_EQ(host.windowState, Window_Normal);
        EXPECT_EQ(merges, 0);
        EXPECT_EQ(QFileInfo::exists(output(0)), !merging);
        EXPECT_TRUE(QFileInfo::exists(output(1)));
        EXPECT_EQ(QFileInfo::exists(output(2)), !merging);
    }
}

TEST_F(JobTest, MergeRunsAfterAGoodQueueAndItsFailureEndsQuietly) {
    browser.mergeChecked = true;
    bool mergeResult = true;
    QStringList order;
    converter.Merge_Requested = [&] {
        order << "merge";
        return mergeResult;
    };
    addRows(2);
    for (bool result : {true, false}) {
        mergeResult = result;
        host.events.clear();
        restart();
        EXPECT_TRUE(encoder.tasks.at(0).arguments.contains("scale=160:120")) << "merge takes row 0's size";
        encoder.terminate(0, true);
        encoder.terminate(1, true);
        encoder.terminate(-1, false);
        EXPECT_EQ(host.events.contains("completion"), result);
    }
    EXPECT_EQ(order, QStringList({"merge", "merge"}));
}

TEST_F(JobTest, GuardedEventsStandStillAndEndsWaitForTheWindowToClose) {
    startWithOutputs(2);
    int task = 0;
    for (bool* flag : {&EditWindowOpen, &PlayerWindowOpen}) {
        *flag = true;
        encoder.progress(task, 500, 1000);
        encoder.terminate(task++, true);
        converter.Release_HeldEvents(); // still open: nothing moves
        EXPECT_EQ(status(0), "");
        EXPECT_EQ(converter.Get_ConversionState(), Conversion_Converting);
        *flag = false;
    }
    converter.Release_HeldEvents(); // closed: the ends are handled in their order
    EXPECT_NE(status(0), "");
    EXPECT_NE(status(1), "");
    // Closing drops events for good.
    Closing = true;
    encoder.terminate(-1, false);
    Closing = false;
    converter.Release_HeldEvents();
    EXPECT_EQ(converter.Get_ConversionState(), Conversion_Converting);
    encoder.terminate(-1, false);
    EXPECT_EQ(converter.Get_ConversionState(), Conversion_Idle);
    host.events.clear();
    startWithOutputs(2);

    // A diagnostics run ends the queue and stops there.
    Test_Running = true;
    encoder.terminate(0, true);
    encoder.terminate(1, false, true, "broken");
    encoder.terminate(-1, false);
    EXPECT_EQ(converter.Get_ConversionState(), Conversion_Idle);
    EXPECT_TRUE(sink.forms.isEmpty());
    EXPECT_FALSE(host.events.contains("completion"));
}

// ---- Progress

TEST_F(JobTest, ProgressDrawsTheCellAndTheTotal) {
    startWithOutputs(4);
    encoder.progress(0, 500000, 1000000);
    EXPECT_EQ(table.progress(0).percent, 50);
    EXPECT_TRUE(table.text(0, FileCol::Status).contains(">50%</TextBlock>"));
    EXPECT_EQ(converter.ProgressBar_Total.Value, 50);
    EXPECT_EQ(converter.ProgressBar_Total.Text, "13%"); // 12.5: halves go up, not to even

    encoder.terminate(0, true);
    encoder.progress(1, 1000000, 2000000);
    EXPECT_EQ(converter.ProgressBar_Total.Value, 150);
    EXPECT_EQ(converter.ProgressBar_Total.Maximum, 400);
    EXPECT_EQ(converter.ProgressBar_Total.Text, "38%"); // 37.5 rounds up

    // Beyond the end: the cell says 99 and the bar stays.
    encoder.progress(1, 3000000, 2000000);
    EXPECT_EQ(table.progress(1).percent, 99);
    EXPECT_EQ(converter.ProgressBar_Total.Value, 150);

    // Unknown duration: 0 percent, bar untouched, and the running icon isn't advanced.
    const int icon = table.icon(1);
    encoder.progress(1, 1000000, 0);
    EXPECT_EQ(table.progress(1).percent, 0);
    EXPECT_EQ(converter.ProgressBar_Total.Value, 150);
    EXPECT_EQ(table.icon(1), icon);

    // While idle, events change nothing.
    converter.Set_ConvertButton(Conversion_Idle);
    encoder.progress(2, 500000, 1000000);
    EXPECT_EQ(converter.Current_Job, 1);
    EXPECT_EQ(table.progress(2).percent, 0);
}

TEST_F(JobTest, SilentEncoderTurnsTheBarIntoAMarquee) {
    startWithOutputs(1);
    // No progress yet: however long, no marquee.
    for (int i = 0; i < 5; ++i)
        converter.Timer_ConversionElapsed_Tick();
    EXPECT_EQ(converter.ProgressBar_Total.Scrolling, Scrolling_Normal);

    encoder.progress(0, 100000, 1000000);
    converter.Timer_ConversionElapsed_Tick();
    EXPECT_EQ(converter.ProgressBar_Total.Scrolling, Scrolling_Normal);
    converter.Timer_ConversionElapsed_Tick();
    EXPECT_EQ(converter.ProgressBar_Total.Scrolling, Scrolling_Marquee);
    EXPECT_EQ(converter.ProgressBar_Total.Text, "Processing...");

    encoder.progress(0, 200000, 1000000);
    EXPECT_EQ(converter.ProgressBar_Total.Text, "20%");
    converter.Timer_ConversionElapsed_Tick();
    EXPECT_EQ(converter.ProgressBar_Total.Scrolling, Scrolling_Normal);
}

TEST_F(JobTest, ElapsedTimeCountsTicksAndHoldsWhilePaused) {
    startWithOutputs(1);
    for (int i = 0; i < 59; ++i)
        converter.Timer_ConversionElapsed_Tick();
    EXPECT_EQ(converter.Status_Header, "Elapsed: 00:00:59");
    converter.Pause();
    EXPECT_FALSE(converter.Timer_ConversionElapsed());
    converter.Resume();
    converter.Timer_ConversionElapsed_Tick();
    EXPECT_EQ(converter.Status_Header, "Elapsed: 00:01:00");
    for (int i = 60; i < 3600; ++i)
        converter.Timer_ConversionElapsed_Tick();
    EXPECT_EQ(converter.Status_Header, "Elapsed: 01:00:00");
    // A new run starts again from nothing.
    restart();
    converter.Timer_ConversionElapsed_Tick();
    EXPECT_EQ(converter.Status_Header, "Elapsed: 00:00:01");
}

TEST_F(JobTest, EachTaskGetsTheEffectsOfItsOwnRow) {
    addRows(3);
    table.setText(1, FileCol::Filters, "Invert:255,");
    table.setText(2, FileCol::Filters, "FlipH,");
    encoder.failInputAt = 1; // row 0 cannot be queued: task numbers and rows part ways
    table.selectRow(0);
    converter.Start();
    ASSERT_EQ(encoder.tasks.size(), 2u);
    EXPECT_TRUE(encoder.hookActive(0));
    EXPECT_TRUE(encoder.hookActive(1));
    EXPECT_FALSE(encoder.hookActive(2)); // a task the queue does not know
    // Neither an edit made while converting nor the panel moving on with the queue reaches a task's
    // frames.
    table.setText(1, FileCol::Filters, "");
    encoder.terminate(1, true);
    const auto run = [&](int task) {
        // One row of two pixels: blue-ish then red-ish.
        std::vector<std::uint8_t> px = {10, 20, 30, 255, 200, 100, 50, 255};
        encoder.videoHook(HookFrame{task, 0, 2, 1, 8, px.data()});
        return px;
    };
    EXPECT_EQ(run(0), (std::vector<std::uint8_t>{245, 235, 225, 255, 55, 155, 205, 255}));
    EXPECT_EQ(run(1), (std::vector<std::uint8_t>{200, 100, 50, 255, 10, 20, 30, 255}));

    // The next run takes the lists afresh; a row without effects lets its frames skip the hook.
    encoder.failInputAt = -1;
    restart();
    EXPECT_FALSE(encoder.hookActive(0));
    EXPECT_FALSE(encoder.hookActive(1));
    EXPECT_TRUE(encoder.hookActive(2));
}
