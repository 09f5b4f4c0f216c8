// The test bench opened from the main window's menu and run with the real engine on a generated clip.
extern "C" {
#include <libavutil/log.h>
}

#include "../core/TempHome.h"
#include "../core/WaitFor.h"

#include "FileViewMain.h"
#include "Globals.h"
#include "MpvPlayer.h"
#include "Registry_Mod.h"
#include "Sub_Main.h"
#include "frmMain.h"
#include "mMain.h"

#include <QAction>
#include <QCheckBox>
#include <QDir>
#include <QMenu>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

using namespace morvane;

TEST(DiagnoseWindow, OpensFromTheMenuRunsEachVideoCodecWithTheEncoderLogAndStopsWhenClosed) {
    TempHome home;
    QTemporaryDir media;
    ASSERT_TRUE(Sub_Main());
    Path_Output = home.make("out");
    Write_Setting(REGISTRY_PRODUCT, QStringLiteral("OutputPath"), Path_Output);
    Set_MessageHandler([](const QString&, int, const QString&, const QString&) { return ID_OK; });
    const QString clip = media.filePath("clip.mp4");
    ASSERT_EQ(
        QProcess::execute("ffmpeg", {"-nostdin", "-loglevel", "error", "-y", "-f", "lavfi", "-i",
                                     "testsrc2=size=160x120:rate=25:duration=1", "-c:v", "mpeg4", clip}),
        0);

    MainSeams seams;
    seams.openFiles = [&](const OpenDialogRequest&) { return QStringList{clip}; };
    seams.completion = [] {};
    MpvPlayerOptions silent;
    silent.audioOutput = QStringLiteral("null");
    frmMain w(seams, nullptr, nullptr, std::make_unique<MpvPlayer>(silent));
    w.Form_Load();
    w.show();
    ASSERT_TRUE(waitFor([&] { return w.startUpDone(); }, 5000));
    w.button(Btn_Add)->click();
    ASSERT_TRUE(waitFor([&] { return w.table().rows() == 1; }, 10000));

    // The entry stands before About.
    const QList<QAction*> entries = w.menu()->actions();
    const qsizetype at = entries.indexOf(w.findChild<QAction*>("Cmd_Diagnose"));
    ASSERT_GE(at, 0);
    EXPECT_EQ(entries.at(at)->text(), "Diagnostics...");
    EXPECT_EQ(entries.value(at + 1), w.menuEntry(14));
    entries.at(at)->trigger();
    frmDiagnose* bench = w.diagnoseWindow();
    ASSERT_NE(bench, nullptr);
    EXPECT_TRUE(bench->isVisible());

    const int level = av_log_get_level();
    av_log_set_level(AV_LOG_INFO);
    bench->Chk_EngLog()->setChecked(true);
    bench->Cmd_Test(2)->click();
    QApplication::processEvents(); // the last log lines
    av_log_set_level(level);
    EXPECT_FALSE(Test_Running);
    EXPECT_EQ(w.Get_ConversionState(), 0);
    EXPECT_EQ(bench->Txt_TestResult()->toPlainText(), "");
    EXPECT_FALSE(bench->txtLog()->toPlainText().isEmpty());
    const ValueList& codecs = w.settings().Combo_OutputFile[List_VideoCodec];
    EXPECT_EQ(codecs.selectedIndex(), codecs.count() - 1); // the last tested value stays
    const QStringList outputs = QDir(Path_Output).entryList(QDir::Files);
    EXPECT_EQ(outputs.size(), codecs.count()) << outputs.join(' ').toStdString();

    // Closed while the first preset converts: the loop ends there, through the main window's Stop.
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [&] {
        if (w.Get_ConversionState() != 0) bench->close();
    });
    closer.start(1);
    bench->Cmd_Test(1)->click();
    closer.stop();
    EXPECT_FALSE(bench->isVisible());
    EXPECT_FALSE(bench->Running());
    EXPECT_FALSE(Test_Running);
    EXPECT_EQ(w.Get_ConversionState(), 0);
    EXPECT_EQ(QDir(Path_Output).entryList(QDir::Files).size(), outputs.size());
    Set_MessageHandler(nullptr);
}
