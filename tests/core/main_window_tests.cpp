// The main window as a user drives it: load, add files through the dialog, the state of the
// buttons, a conversion started, paused, resumed and stopped from the buttons with the real engine,
// removal by keys, and the close. Dialogs are answered through the window's seams.
#include "TempHome.h"
#include "WaitFor.h"

#include "FileListView.h"
#include "FileList_Mods.h"
#include "Globals.h"
#include "Open_Folder.h"
#include "OutputBrowserView.h"
#include "Registry_Mod.h"
#include "Report_List.h"
#include "Sub_Main.h"
#include "frmMain.h"
#include "frmMain_Host.h"
#include "frmReportList.h"
#include "mMain.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace morvane;

namespace {

bool makeClip(const QString& path, int seconds, const QString& size = QStringLiteral("160x120")) {
    QProcess ffmpeg;
    ffmpeg.start("ffmpeg", {"-nostdin", "-loglevel", "error", "-y", "-f", "lavfi", "-i",
                            QStringLiteral("testsrc2=size=%1:rate=25:duration=%2").arg(size).arg(seconds),
                            "-f", "lavfi", "-i",
                            QStringLiteral("sine=frequency=440:sample_rate=44100:duration=%1").arg(seconds),
                            "-c:v", "mpeg4", "-c:a", "aac", "-shortest", path});
    return ffmpeg.waitForFinished(60000) && ffmpeg.exitStatus() == QProcess::NormalExit &&
           ffmpeg.exitCode() == 0;
}

QString statusOf(frmMain& w, int row) {
    return w.table().text(row, FileCol::Status);
}

} // namespace

class MainWindow : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(Sub_Main());
        ASSERT_TRUE(media.isValid());
        Path_Output = home.make("out");
        Write_Setting(REGISTRY_PRODUCT, QStringLiteral("OutputPath"), Path_Output);
        Set_MessageHandler([this](const QString& text, int, const QString&, const QString&) {
            messages << text;
            return ID_YES;
        });
        Set_FolderLaunchers({[this](const QString& program, const QStringList& args) {
                                 launched << program + ' ' + args.join(' ');
                                 return true;
                             },
                             [this](const QUrl& url) {
                                 launched << url.toLocalFile();
                                 return true;
                             }});
        seams.openFiles = [this](const OpenDialogRequest& request) {
            dialogFilters << request.filter;
            return nextChoice;
        };
        seams.completion = [this] { ++completions; };
        seams.exitProcess = [this](int code) { exits << code; };
        seams.closeDialog = [this] {
            ++closeDialogs;
            Close_Event = closeChoice;
            Close_DontAsk = false;
        };
    }
    void TearDown() override {
        Set_MessageHandler(nullptr);
        Set_FolderLaunchers({});
        Report_Clear();
    }

    // A loaded window whose start-up timer has run.
    std::unique_ptr<frmMain> loadedWindow() {
        auto w = std::make_unique<frmMain>(seams);
        w->Form_Load();
        w->show();
        EXPECT_TRUE(waitFor([&] { return w->startUpDone(); }, 5000));
        return w;
    }

    QString clip(const QString& name, int seconds, const QString& size = QStringLiteral("160x120")) {
        const QString path = media.filePath(name);
        EXPECT_TRUE(makeClip(path, seconds, size));
        return path;
    }

    TempHome home;
    QTemporaryDir media;
    MainSeams seams;
    QStringList nextChoice;
    QStringList dialogFilters, messages, launched;
    QList<int> exits;
    int completions = 0;
    int closeDialogs = 0;
    int closeChoice = 0;
};

TEST_F(MainWindow, LoadsEmptyAndAddsFilesThroughTheDialog) {
    auto w = loadedWindow();
    EXPECT_EQ(w->windowTitle(), COMPANY_NAME + ' ' + PRODUCT_NAME);
    EXPECT_EQ(w->outputPath()->text(), Path_Output);
    EXPECT_EQ(w->button(Btn_Convert)->text(), QStringLiteral("Convert Now"));
    // Empty list: adding is possible, nothing that needs rows is.
    EXPECT_TRUE(w->button(Btn_Add)->isEnabled());
    EXPECT_FALSE(w->button(Btn_Remove)->isEnabled());
    EXPECT_FALSE(w->button(Btn_Convert)->isEnabled());
    EXPECT_FALSE(w->button(Btn_Stop)->isEnabled());
    EXPECT_TRUE(w->menuEntry(9)->isChecked()); // preview on after load
    EXPECT_GT(w->browserView()->presetList()->count(), 0);
    EXPECT_EQ(w->infoValue(Info_AudioCodec)->text(), QStringLiteral("-"));

    // Cancel changes nothing.
    nextChoice = {};
    w->button(Btn_Add)->click();
    EXPECT_EQ(w->table().rows(), 0);
    ASSERT_EQ(dialogFilters.size(), 1);
    EXPECT_TRUE(dialogFilters.first().startsWith(QStringLiteral("All Supported Video Files|*.3gp;")));

    // Two files, one of them gone: the other is added and the report names the missing one.
    const QString good = clip(QStringLiteral("good clip.mp4"), 2, QStringLiteral("320x240"));
    nextChoice = {good, media.filePath(QStringLiteral("gone.mp4"))};
    w->button(Btn_Add)->click();
    ASSERT_EQ(w->table().rows(), 1);
    EXPECT_EQ(w->table().text(0, FileCol::Name), QStringLiteral("good clip"));
    // The report of the missing one is up and holds the main window until it is closed.
    ASSERT_EQ(Report_Entries().size(), 1);
    EXPECT_EQ(Report_Entries().first().second, QStringLiteral("File not found!"));
    EXPECT_FALSE(w->isEnabled());
    w->reportWindow()->reject();
    EXPECT_TRUE(w->isEnabled());
    EXPECT_TRUE(Report_Entries().isEmpty());
    EXPECT_TRUE(w->button(Btn_Convert)->isEnabled());
    EXPECT_TRUE(w->button(Btn_Remove)->isEnabled());
    EXPECT_EQ(w->table().footer(FileCol::Name), QStringLiteral(" 1 file"));
    EXPECT_EQ(w->infoValue(Info_FrameSize)->text(), QStringLiteral("320 x 240 pixels"));
    EXPECT_EQ(w->infoValue(Info_FrameRate)->text(), QStringLiteral("25 frames/second"));
    EXPECT_EQ(w->infoValue(Info_SampleRate)->text(), QStringLiteral("44100 Hz"));
    EXPECT_FALSE(w->preview()->pixmap().isNull()); // the row's thumbnail
    EXPECT_EQ(Path_Input, good);                   // the dialog's file name, as it stands after a pick
}

TEST_F(MainWindow, DeleteAndShiftDeleteRemoveRowsAndTheirThumbnails) {
    auto w = loadedWindow();
    const QString a = clip(QStringLiteral("a.mp4"), 1);
    const QString b = clip(QStringLiteral("b.mp4"), 1);
    nextChoice = {a, b, a};
    w->button(Btn_Add)->click();
    ASSERT_EQ(w->table().rows(), 3);
    const QString thumb0 = w->table().text(0, FileCol::Thumbnail);
    ASSERT_TRUE(QFileInfo::exists(thumb0));

    QTableView* view = w->fileList()->view();
    view->setFocus();
    w->table().selectRow(0);
    QKeyEvent del(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier);
    QApplication::sendEvent(view, &del);
    EXPECT_EQ(w->table().rows(), 2);
    EXPECT_FALSE(QFileInfo::exists(thumb0));
    EXPECT_EQ(w->table().footer(FileCol::Name), QStringLiteral(" 2 files"));

    QKeyEvent delAll(QEvent::KeyPress, Qt::Key_Delete, Qt::ShiftModifier);
    QApplication::sendEvent(view, &delAll);
    EXPECT_EQ(w->table().rows(), 0);
    EXPECT_EQ(w->table().footer(FileCol::Name), QStringLiteral(" 0 file"));
    EXPECT_FALSE(w->button(Btn_Convert)->isEnabled());
    EXPECT_TRUE(w->fileList()->dropHintVisible());
    EXPECT_EQ(w->infoValue(Info_FrameSize)->text(), QString());
}

TEST_F(MainWindow, ConvertPauseResumeAndStopFromTheButtons) {
    auto w = loadedWindow();
    // Long enough clips that the queue is still running when the buttons are pressed.
    const QString a = clip(QStringLiteral("first.mp4"), 20, QStringLiteral("640x360"));
    const QString b = clip(QStringLiteral("second.mp4"), 20, QStringLiteral("640x360"));
    nextChoice = {a, b};
    w->button(Btn_Add)->click();
    ASSERT_EQ(w->table().rows(), 2);

    w->button(Btn_Convert)->click();
    EXPECT_EQ(w->converter().Get_ConversionState(), Conversion_Converting);
    EXPECT_EQ(w->button(Btn_Convert)->text(), QStringLiteral("Pause"));
    EXPECT_TRUE(w->button(Btn_Stop)->isEnabled());
    EXPECT_FALSE(w->button(Btn_Add)->isEnabled());
    EXPECT_FALSE(w->button(Btn_Remove)->isEnabled());
    EXPECT_FALSE(w->outputPath()->isEnabled());
    EXPECT_TRUE(w->totalBar()->isVisible());

    // Progress reaches the first row's cell and the total bar; the header counts seconds.
    ASSERT_TRUE(waitFor([&] { return w->table().progress(0).active; }, 30000));
    ASSERT_TRUE(waitFor([&] { return !w->converter().Status_Header.isEmpty(); }, 5000));
    EXPECT_TRUE(w->table().headerData(FileCol::Status, Qt::Horizontal).toString().startsWith("Elapsed: "));

    w->button(Btn_Convert)->click();
    EXPECT_EQ(w->converter().Get_ConversionState(), Conversion_Paused);
    EXPECT_EQ(w->button(Btn_Convert)->text(), QStringLiteral("Resume"));
    // Events the workers posted before the pause still arrive; after them nothing moves.
    waitFor([] { return false; }, 500);
    const int percent = w->table().progress(0).percent;
    waitFor([] { return false; }, 900);
    EXPECT_EQ(w->table().progress(0).percent, percent); // held while paused

    w->button(Btn_Convert)->click();
    EXPECT_EQ(w->button(Btn_Convert)->text(), QStringLiteral("Pause"));

    w->button(Btn_Stop)->click();
    EXPECT_EQ(w->converter().Get_ConversionState(), Conversion_Idle);
    EXPECT_EQ(w->button(Btn_Convert)->text(), QStringLiteral("Convert Now"));
    EXPECT_EQ(statusOf(*w, 0), QStringLiteral("Canceled!"));
    EXPECT_EQ(statusOf(*w, 1), QStringLiteral("Canceled!"));
    EXPECT_TRUE(w->table().headerData(FileCol::Status, Qt::Horizontal).toString().isEmpty());
    EXPECT_TRUE(w->button(Btn_Add)->isEnabled());
    EXPECT_TRUE(w->button(Btn_Convert)->isEnabled());
    EXPECT_FALSE(w->button(Btn_Stop)->isEnabled());
    EXPECT_TRUE(w->outputPath()->isEnabled());
    EXPECT_EQ(completions, 0);
    for (int r = 0; r < 2; ++r)
        EXPECT_FALSE(QFileInfo::exists(w->table().text(r, FileCol::ConvertedFileName)));
}

TEST_F(MainWindow, AFinishedQueueShowsTheCompletionAndEveryRowDone) {
    auto w = loadedWindow();
    nextChoice = {clip(QStringLiteral("x.mp4"), 1), clip(QStringLiteral("y.mp4"), 1)};
    w->button(Btn_Add)->click();
    ASSERT_EQ(w->table().rows(), 2);
    w->button(Btn_Convert)->click();
    ASSERT_TRUE(waitFor([&] { return w->converter().Get_ConversionState() == Conversion_Idle; }, 60000));
    EXPECT_EQ(completions, 1);
    for (int r = 0; r < 2; ++r) {
        EXPECT_EQ(statusOf(*w, r), QStringLiteral("Done"));
        EXPECT_TRUE(QFileInfo(w->table().text(r, FileCol::ConvertedFileName)).size() > 0);
    }
    EXPECT_FALSE(w->totalBar()->isVisible());
    EXPECT_EQ(w->button(Btn_Convert)->text(), QStringLiteral("Convert Now"));

    // The output folder opens in the file manager; a missing one is offered for creation first.
    w->button(Btn_OpenOutput)->click();
    EXPECT_EQ(launched.last(), Path_Output);
    const QString missing = home.path() + QStringLiteral("/not/there/");
    w->outputPath()->setText(missing);
    w->button(Btn_OpenOutput)->click();
    EXPECT_TRUE(messages.last().startsWith(QStringLiteral("Folder  '") + missing +
                                           QStringLiteral("'  does not exist.")));
    EXPECT_TRUE(QFileInfo(missing).isDir());
}

TEST_F(MainWindow, ChoosingTheOutputFolderWritesTheSetting) {
    seams.chooseFolder = [this](const QString&) { return home.make("picked").chopped(1); };
    auto w = loadedWindow();
    w->button(Btn_BrowseOutput)->click();
    EXPECT_EQ(w->outputPath()->text(), home.path() + QStringLiteral("/picked/"));
    EXPECT_EQ(Read_Setting(REGISTRY_PRODUCT, QStringLiteral("OutputPath")),
              home.path() + QStringLiteral("/picked/"));
    EXPECT_EQ(w->converter().Txt_OutputPath, w->outputPath()->text());
}

TEST_F(MainWindow, CloseWhileConvertingAsksAndResumes) {
    auto w = loadedWindow();
    nextChoice = {clip(QStringLiteral("long.mp4"), 20, QStringLiteral("640x360"))};
    w->button(Btn_Add)->click();
    w->button(Btn_Convert)->click();
    ASSERT_EQ(w->converter().Get_ConversionState(), Conversion_Converting);

    Close_DontAsk = false;
    closeChoice = 0; // Escape on the dialog
    EXPECT_FALSE(w->close());
    EXPECT_EQ(closeDialogs, 1);
    EXPECT_EQ(w->converter().Get_ConversionState(), Conversion_Converting);

    closeChoice = 2; // Exit, then Yes to the question
    EXPECT_TRUE(w->close());
    EXPECT_EQ(messages.last(),
              QStringLiteral("Conversion is not completed!\nAre you sure you want to terminate it ?"));
    EXPECT_EQ(exits, QList<int>{0});
    EXPECT_TRUE(Closing);
    Closing = false;
}

TEST_F(MainWindow, TerminationSignalEndsTheRunAsExitDoesAndLeavesNoPartialOutput) {
    auto w = loadedWindow();
    w->Watch_TerminationSignals();
    nextChoice = {clip(QStringLiteral("long.mp4"), 20, QStringLiteral("640x360"))};
    w->button(Btn_Add)->click();
    w->button(Btn_Convert)->click();
    ASSERT_EQ(w->converter().Get_ConversionState(), Conversion_Converting);
    const QDir out(Path_Output);
    ASSERT_TRUE(
        waitFor([&] { return !out.entryList({"*.part"}, QDir::Files | QDir::Hidden).isEmpty(); }, 10000));

    ::raise(SIGTERM);
    EXPECT_TRUE(waitFor([&] { return !exits.isEmpty(); }, 3000));
    EXPECT_EQ(exits, QList<int>{0});
    EXPECT_TRUE(out.entryList(QDir::Files | QDir::Hidden).isEmpty())
        << out.entryList(QDir::Files | QDir::Hidden).join(' ').toStdString();
    EXPECT_TRUE(closeDialogs == 0 && messages.isEmpty()); // no question: a signal is no click
    Closing = false;
}

TEST(MainWindowFilter, DialogFilterInQtForm) {
    EXPECT_EQ(Qt_DialogFilter(
                  QStringLiteral("Matroska Video (*.mkv)|*.mkv;|Quick Time Files (*.mov;*.qt)|*.mov;*.qt;")),
              QStringLiteral("Matroska Video (*.mkv);;Quick Time Files (*.mov *.qt)"));
    const QStringList rows = Qt_DialogFilter(Import_DialogFilter()).split(QStringLiteral(";;"));
    EXPECT_EQ(rows.size(), 29);
    EXPECT_TRUE(rows.first().startsWith(QStringLiteral("All Supported Video Files (*.3gp *.3gpp ")));
    EXPECT_EQ(rows.last(), QStringLiteral("WebM Files (*.webm)"));
}
