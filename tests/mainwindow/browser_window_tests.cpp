// The main window as a user drives it: load, add files through the dialog, the state of the buttons,
// a conversion started, paused, resumed and stopped with the real engine, removal by keys, the close
// and the termination signal; and the output choice on it: the panels and their group buttons, the
// device makers, the remembered preset per button, favorites, the search, the preset settings window,
// the rename menus, the lock while a job runs and the theme switch. Dialogs are answered through the
// window's seams; modal windows by a script that waits for them.
#include "../core/TempHome.h"
#include "../core/WaitFor.h"

#include "EditWidgets.h"
#include "Effects_Mods.h"
#include "FileListView.h"
#include "FileList_Mods.h"
#include "FileViewMain.h"
#include "Folders_Mods.h"
#include "Globals.h"
#include "MediaPlayer_Mod.h"
#include "MpvPlayer.h"
#include "Open_Folder.h"
#include "OutputBrowserView.h"
#include "Registry_Mod.h"
#include "Report_List.h"
#include "Skin_Icons.h"
#include "Skin_Theme.h"
#include "Sub_Main.h"
#include "VideoSurface.h"
#include "frmEditVideo.h"
#include "frmFormatSetting.h"
#include "frmMain.h"
#include "frmMain_Host.h"
#include "frmPlayer.h"
#include "frmReportList.h"
#include "mMain.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QSystemTrayIcon>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <gtest/gtest.h>

using namespace morvane;

namespace {

// Runs the script on the next modal window that opens (checked every 20 ms, for 10 s at most).
void whenModal(std::function<void(QWidget*)> script, QWidget* notThis = nullptr) {
    auto* timer = new QTimer;
    auto started = std::make_shared<QElapsedTimer>();
    started->start();
    QObject::connect(timer, &QTimer::timeout, [timer, started, notThis, script = std::move(script)] {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal && modal != notThis && modal->isVisible()) {
            timer->stop();
            timer->deleteLater();
            script(modal);
        } else if (started->elapsed() > 10000) {
            timer->stop();
            timer->deleteLater();
            ADD_FAILURE() << "no modal window opened";
        }
    });
    timer->start(20);
}

template <typename T>
T* child(QWidget* parent, const QString& name) {
    T* found = parent->findChild<T*>(name);
    EXPECT_NE(found, nullptr) << name.toStdString();
    return found;
}

QStringList presetTexts(QComboBox* box) {
    QStringList texts;
    for (int i = 0; i < box->count(); ++i)
        texts << box->itemText(i);
    return texts;
}

int buttonOf(OutputBrowserView* view, int panel, const QString& caption) {
    for (int i = 0; i < view->groupButtonCount(panel); ++i)
        if (view->groupButton(panel, i)->toolTip() == caption) return i;
    return -1;
}

bool makeClip(const QString& path, int seconds, const QString& size) {
    QProcess ffmpeg;
    ffmpeg.start("ffmpeg", {"-nostdin", "-loglevel", "error", "-y", "-f", "lavfi", "-i",
                            QStringLiteral("testsrc2=size=%1:rate=25:duration=%2").arg(size).arg(seconds),
                            "-f", "lavfi", "-i",
                            QStringLiteral("sine=frequency=440:sample_rate=44100:duration=%1").arg(seconds),
                            "-c:v", "mpeg4", "-c:a", "aac", "-shortest", path});
    return ffmpeg.waitForFinished(60000) && ffmpeg.exitStatus() == QProcess::NormalExit &&
           ffmpeg.exitCode() == 0;
}

} // namespace

class MainWindow : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(Sub_Main());
        ASSERT_TRUE(media.isValid());
        Path_Output = home.make("out");
        Write_Setting(REGISTRY_PRODUCT, QStringLiteral("OutputPath"), Path_Output);
        Set_MessageHandler([this](const QString& text, int, const QString& title, const QString&) {
            messages << text;
            titled << title + ": " + text;
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
        Theme_SetSheetRoot(QStringLiteral(":/skin/"));
        Closing = false;
    }

    // A loaded window whose start-up timer has run.
    std::unique_ptr<frmMain> loadedWindow() {
        MpvPlayerOptions silent;
        silent.audioOutput = QStringLiteral("null");
        auto w = std::make_unique<frmMain>(seams, nullptr, nullptr, std::make_unique<MpvPlayer>(silent));
        w->Form_Load();
        w->resize(1200, 800);
        w->show();
        EXPECT_TRUE(waitFor([&] { return w->startUpDone(); }, 5000));
        return w;
    }

    QString clip(const QString& name, int seconds = 1, const QString& size = QStringLiteral("160x120")) {
        const QString path = media.filePath(name);
        EXPECT_TRUE(makeClip(path, seconds, size));
        return path;
    }

    // Picks the files in the Add dialog; true once the list holds that many rows.
    [[nodiscard]] bool add(frmMain& w, const QStringList& files) {
        nextChoice = files;
        w.button(Btn_Add)->click();
        return waitFor([&] { return w.table().rows() == files.size(); }, 20000);
    }
    // Adds clip1.mp4 ... of a second each through the dialog.
    void addClips(frmMain& w, int count) {
        QStringList files;
        for (int i = 0; i < count; ++i)
            files << clip(QStringLiteral("clip%1.mp4").arg(i + 1));
        ASSERT_TRUE(add(w, files));
    }
    // A queue of one 20 s clip converting, with its first output file begun.
    void startLongRun(frmMain& w, const QString& source) {
        ASSERT_TRUE(add(w, {source}));
        w.button(Btn_Convert)->click();
        ASSERT_EQ(w.converter().Get_ConversionState(), Conversion_Converting);
        const QDir out(Path_Output);
        ASSERT_TRUE(
            waitFor([&] { return !out.entryList({"*.part"}, QDir::Files | QDir::Hidden).isEmpty(); }, 10000));
    }

    TempHome home;
    QTemporaryDir media;
    MainSeams seams;
    QStringList nextChoice;
    QStringList dialogFilters, messages, titled, launched;
    QList<int> exits;
    int completions = 0;
    int closeDialogs = 0;
    int closeChoice = 0;
};

class BrowserWindow : public MainWindow {};

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
    const QString a = clip(QStringLiteral("a.mp4"));
    ASSERT_TRUE(add(*w, {a, clip(QStringLiteral("b.mp4")), a}));
    const QString thumb0 = w->table().text(0, FileCol::Thumbnail);
    ASSERT_TRUE(QFileInfo::exists(thumb0));

    QTableView* view = w->fileList()->view();
    view->setFocus();
    w->table().selectRow(0);
    QTest::keyClick(view, Qt::Key_Delete);
    EXPECT_EQ(w->table().rows(), 2);
    EXPECT_FALSE(QFileInfo::exists(thumb0));
    EXPECT_EQ(w->table().footer(FileCol::Name), QStringLiteral(" 2 files"));

    QTest::keyClick(view, Qt::Key_Delete, Qt::ShiftModifier);
    EXPECT_EQ(w->table().rows(), 0);
    EXPECT_EQ(w->table().footer(FileCol::Name), QStringLiteral(" 0 file"));
    EXPECT_FALSE(w->button(Btn_Convert)->isEnabled());
    EXPECT_TRUE(w->fileList()->dropHintVisible());
    EXPECT_EQ(w->infoValue(Info_FrameSize)->text(), QString());
}

TEST_F(MainWindow, ConvertPauseResumeAndStopFromTheButtons) {
    auto w = loadedWindow();
    // Long enough clips that the queue is still running when the buttons are pressed.
    ASSERT_TRUE(add(*w, {clip(QStringLiteral("first.mp4"), 20, QStringLiteral("640x360")),
                         clip(QStringLiteral("second.mp4"), 20, QStringLiteral("640x360"))}));

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
    EXPECT_EQ(w->table().text(0, FileCol::Status), QStringLiteral("Canceled!"));
    EXPECT_EQ(w->table().text(1, FileCol::Status), QStringLiteral("Canceled!"));
    EXPECT_TRUE(w->table().headerData(FileCol::Status, Qt::Horizontal).toString().isEmpty());
    EXPECT_TRUE(w->button(Btn_Add)->isEnabled());
    EXPECT_TRUE(w->button(Btn_Convert)->isEnabled());
    EXPECT_FALSE(w->button(Btn_Stop)->isEnabled());
    EXPECT_TRUE(w->outputPath()->isEnabled());
    EXPECT_EQ(completions, 0);
    for (int r = 0; r < 2; ++r)
        EXPECT_FALSE(QFileInfo::exists(w->table().text(r, FileCol::ConvertedFileName)));
}

TEST_F(MainWindow, ChoosingTheOutputFolderWritesTheSetting) {
    seams.chooseFolder = [this](const QString&) { return home.make("picked").chopped(1); };
    auto w = loadedWindow();
    w->button(Btn_BrowseOutput)->click();
    EXPECT_EQ(w->outputPath()->text(), home.path() + QStringLiteral("/picked/"));
    EXPECT_EQ(Read_Setting(REGISTRY_PRODUCT, QStringLiteral("OutputPath")),
              home.path() + QStringLiteral("/picked/"));
    EXPECT_EQ(w->converter().Txt_OutputPath, w->outputPath()->text());

    // An emptied box never hides where the files go: leaving it, or Open, shows the folder in use.
    for (const auto& leave : std::initializer_list<std::function<void()>>{
             [&] { emit w->outputPath()->editingFinished(); }, [&] { w->button(Btn_OpenOutput)->click(); }}) {
        w->outputPath()->setText(QStringLiteral("  "));
        leave();
        EXPECT_EQ(w->outputPath()->text(), Default_OutputFolder());
        EXPECT_FALSE(w->outputPath()->text().isEmpty());
    }
}

// Every way out ends the program once and leaves no half-written output. The menu's Exit (Ctrl+Q)
// never asks where to go, but ends a running queue only after the terminate question; the close box's
// Escape keeps the queue running; a tray remembered on a desktop without one (offscreen has none) closes
// rather than leaving a window with no way out; the termination signal asks nothing.
TEST_F(MainWindow, EveryWayOutEndsOnceAndLeavesNoPartialOutput) {
    ASSERT_FALSE(QSystemTrayIcon::isSystemTrayAvailable());
    const QString source = clip(QStringLiteral("long.mp4"), 20, QStringLiteral("640x360"));
    const QStringList asked{
        QStringLiteral("Conversion is not completed!\nAre you sure you want to terminate it ?")};
    const auto exitEntry = [](frmMain& w) {
        QAction* entry = w.findChild<QAction*>(QStringLiteral("mnuExit"));
        ASSERT_NE(entry, nullptr);
        EXPECT_EQ(entry->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Q));
        entry->trigger();
    };
    struct Case {
        const char* how;
        bool converting;
        std::function<void(frmMain&)> leave;
        int closeDialogs;
        QStringList questions;
    };
    const Case cases[] = {
        {"Exit while idle", false, exitEntry, 0, {}},
        {"Exit while converting", true, exitEntry, 0, asked},
        {"tray remembered, no tray",
         false,
         [](frmMain& w) {
             Close_Event = 1;
             Close_DontAsk = true;
             EXPECT_TRUE(w.close());
             EXPECT_FALSE(w.tray().In_Tray);
         },
         0,
         {}},
        {"close box: Escape, then Exit and Yes", true,
         [this](frmMain& w) {
             closeChoice = 0;
             EXPECT_FALSE(w.close());
             EXPECT_EQ(w.converter().Get_ConversionState(), Conversion_Converting);
             closeChoice = 2;
             EXPECT_TRUE(w.close());
         },
         2, asked},
        {"termination signal",
         true,
         [](frmMain& w) {
             w.Watch_TerminationSignals();
             ::raise(SIGTERM);
         },
         0,
         {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.how);
        exits.clear();
        messages.clear();
        closeDialogs = 0;
        Closing = false;
        auto w = loadedWindow();
        Close_Event = 0; // after the load, which reads them from the settings
        Close_DontAsk = false;
        if (c.converting) {
            ASSERT_NO_FATAL_FAILURE(startLongRun(*w, source));
        }
        c.leave(*w);
        EXPECT_TRUE(waitFor([&] { return !exits.isEmpty(); }, 3000));
        EXPECT_EQ(exits, QList<int>{0});
        EXPECT_TRUE(Closing);
        EXPECT_EQ(closeDialogs, c.closeDialogs);
        EXPECT_EQ(messages, c.questions) << messages.join('|').toStdString();
        const QStringList left = QDir(Path_Output).entryList(QDir::Files | QDir::Hidden);
        EXPECT_TRUE(left.isEmpty()) << left.join(' ').toStdString();
        if (c.converting) {
            EXPECT_EQ(w->table().text(0, FileCol::Status).trimmed(), QStringLiteral("Canceled!"));
        }
    }
}

// The getting-started hint comes once after the start and goes with Add; the command channel's overlay
// and the note at a batch's end share the window's popups; the note's link opens the output folder.
TEST_F(MainWindow, PopupsComeAndGoWithTheirCauses) {
    auto w = loadedWindow();
    ASSERT_TRUE(waitFor([&] { return w->tagPopup().isShowing(); }, 3000));
    nextChoice.clear(); // the dialog is cancelled
    w->button(Btn_Add)->click();
    EXPECT_FALSE(w->tagPopup().isShowing());

    const QString picture = media.filePath(QStringLiteral("overlay.png"));
    QImage(64, 48, QImage::Format_RGB32).save(picture);
    w->Mailbox_Changed(QStringLiteral("@ImageOverlay:%1/3000/100/slide").arg(picture));
    EXPECT_TRUE(w->tagPopup().isShowing());
    EXPECT_EQ(w->tagPopup().props().Animation, 2);
    w->Mailbox_Changed(QStringLiteral("@ImageOverlay:%1/3000/100/fade").arg(media.filePath("none.png")));
    EXPECT_FALSE(w->tagPopup().isShowing()) << "a missing picture shows nothing";

    w->conversionHost().Show_Popup(250, 5000, 255);
    ASSERT_TRUE(w->donePopup().isShowing());
    launched.clear();
    emit w->donePopup().linkActivated(kOpenOutputLink);
    EXPECT_FALSE(w->donePopup().isShowing());
    ASSERT_EQ(launched.size(), 1);
    EXPECT_TRUE(launched.first().contains(QDir::cleanPath(Path_Output))) << launched.first().toStdString();
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

TEST_F(BrowserWindow, PanelsGroupsAndPresetsFollowTheClicks) {
    auto w = loadedWindow();
    OutputBrowserView* view = w->browserView();
    FormatSetting& settings = w->settings();

    // The first panel is open with its remembered group pressed, and its first preset applied.
    EXPECT_TRUE(view->panelButton(Panel_VideoFormats)->isChecked());
    ASSERT_GT(view->groupButtonCount(Panel_VideoFormats), 20);
    EXPECT_TRUE(view->groupButton(Panel_VideoFormats, 0)->isChecked());
    EXPECT_FALSE(view->groupButton(Panel_VideoFormats, 0)->icon().isNull());
    EXPECT_GT(view->presetList()->count(), 0);
    EXPECT_EQ(view->presetList()->currentText(), w->catalogue().Cmd_OutputPreset.selectedText());

    // Each panel shows its own strip, built from the preset table.
    for (int panel : {Panel_Devices, Panel_AudioFormats, Panel_WebFormats, Panel_VideoFormats}) {
        view->panelButton(panel)->click();
        EXPECT_EQ(w->browser().PanelActive, panel);
        EXPECT_EQ(view->groupButtonCount(panel), w->browser().strips.at(panel).buttons.size());
        EXPECT_TRUE(view->strip(panel)->isVisible());
    }

    // A group press fills the preset list and applies the remembered preset to the settings.
    const int avi = buttonOf(view, Panel_VideoFormats, QStringLiteral("AVI"));
    ASSERT_GE(avi, 0);
    view->groupButton(Panel_VideoFormats, avi)->click();
    EXPECT_TRUE(view->groupButton(Panel_VideoFormats, avi)->isChecked());
    EXPECT_FALSE(view->groupButton(Panel_VideoFormats, 0)->isChecked());
    for (const QString& name : presetTexts(view->presetList()))
        EXPECT_TRUE(name.startsWith(QStringLiteral("AVI")) || name == QStringLiteral("[Custom]"))
            << name.toStdString();
    EXPECT_EQ(settings.Txt_Keyword, QStringLiteral("AVI"));

    // Picking a preset applies it; the button remembers it across panels.
    const int pick = view->presetList()->count() - 1;
    view->choosePreset(pick);
    EXPECT_EQ(settings.Txt_ID, view->presetList()->itemData(pick).toString());
    const QString picked = view->presetList()->currentText();
    view->panelButton(Panel_AudioFormats)->click();
    EXPECT_EQ(settings.Txt_Maker, QStringLiteral("AudioFormat"));
    view->panelButton(Panel_VideoFormats)->click();
    EXPECT_EQ(view->presetList()->currentText(), picked);
    EXPECT_EQ(w->browser().PresetIndexVideo.at(static_cast<size_t>(avi)), pick);
    // A second press on the pressed button changes nothing.
    view->choosePreset(0);
    view->groupButton(Panel_VideoFormats, avi)->click();
    EXPECT_EQ(view->presetList()->currentIndex(), 0);

    // GIF cannot be merged: the box goes and is cleared; other groups bring it back.
    w->mergeBox()->setChecked(true);
    view->groupButton(Panel_VideoFormats, buttonOf(view, Panel_VideoFormats, QStringLiteral("GIF")))->click();
    EXPECT_FALSE(w->mergeBox()->isVisibleTo(w.get()));
    EXPECT_FALSE(w->mergeBox()->isChecked());
    view->groupButton(Panel_VideoFormats, 0)->click();
    EXPECT_TRUE(w->mergeBox()->isVisibleTo(w.get()));

    // Devices: another maker rebuilds the strip and opens its first group.
    view->panelButton(Panel_Devices)->click();
    EXPECT_TRUE(view->makerList()->isVisible());
    const int samsung = view->makerList()->findText(QStringLiteral("Samsung"));
    view->chooseMaker(samsung);
    EXPECT_EQ(w->browser().MakerIndex, samsung);
    EXPECT_TRUE(view->groupButton(Panel_Devices, 0)->isChecked());
    EXPECT_EQ(view->groupButton(Panel_Devices, 0)->toolTip(),
              w->browser().strips[Panel_Devices].buttons[0].caption);
    EXPECT_EQ(settings.Txt_Maker, QStringLiteral("Samsung"));
    for (std::int16_t index : w->browser().PresetIndexDevice)
        EXPECT_EQ(index, 1);

    // A long strip scrolls to the pressed button when its panel opens.
    view->panelButton(Panel_VideoFormats)->click();
    const int last = view->groupButtonCount(Panel_VideoFormats) - 1;
    view->groupButton(Panel_VideoFormats, last)->click();
    view->panelButton(Panel_WebFormats)->click();
    view->panelButton(Panel_VideoFormats)->click();
    QApplication::processEvents();
    QScrollArea* strip = view->strip(Panel_VideoFormats);
    const QRect shown(strip->horizontalScrollBar()->value(), 0, strip->viewport()->width(), 1);
    EXPECT_TRUE(shown.contains(view->groupButton(Panel_VideoFormats, last)->geometry().right() - 5, 0));
}

TEST_F(BrowserWindow, FavoritesAddAndRemoveUpToTheLimit) {
    auto w = loadedWindow();
    addClips(*w, 1);
    OutputBrowserView* view = w->browserView();
    QPushButton* toggle = w->button(Btn_Favorite);

    // No favorites: the message takes the strip's place and converting is off even with a file.
    view->panelButton(Panel_Favorites)->click();
    EXPECT_TRUE(view->favoritesMessage()->isVisible());
    EXPECT_FALSE(view->presetList()->isVisible());
    for (int index : {Btn_Settings, Btn_Favorite, Btn_Search})
        EXPECT_FALSE(w->button(index)->isVisible()) << index;
    EXPECT_FALSE(w->button(Btn_Convert)->isEnabled());

    // Another panel: converting is back; the star adds the selected preset.
    view->panelButton(Panel_WebFormats)->click();
    EXPECT_TRUE(w->button(Btn_Convert)->isEnabled());
    EXPECT_EQ(toggle->toolTip(), QStringLiteral("Add to favorites tab"));
    const QString first = view->presetList()->currentText();
    toggle->click();
    EXPECT_EQ(toggle->toolTip(), QStringLiteral("Remove from favorites tab"));
    EXPECT_TRUE(QFileInfo::exists(Folder_UserFavorite + File_UserFavorite));
    view->panelButton(Panel_Favorites)->click();
    EXPECT_FALSE(view->favoritesMessage()->isVisible());
    EXPECT_EQ(view->groupButtonCount(Panel_Favorites), 1);
    EXPECT_EQ(presetTexts(view->presetList()).count(first), 1);
    EXPECT_TRUE(w->button(Btn_Convert)->isEnabled());

    // Fill up to the limit from the video groups: the oldest gives way, the count stays.
    view->panelButton(Panel_VideoFormats)->click();
    int added = 1;
    for (int button = 0; added < FAVORITE_MAX + 1 && button < view->groupButtonCount(Panel_VideoFormats);
         ++button) {
        view->groupButton(Panel_VideoFormats, button)->click();
        for (int i = 0; i < view->presetList()->count() && added < FAVORITE_MAX + 1; ++i) {
            view->choosePreset(i);
            if (toggle->toolTip() != QStringLiteral("Add to favorites tab")) continue;
            toggle->click();
            ++added;
        }
    }
    EXPECT_EQ(w->catalogue().ReportControl_FavoritesMain.rowCount(), FAVORITE_MAX);
    view->panelButton(Panel_Favorites)->click();
    EXPECT_EQ(presetTexts(view->presetList()).count(first), 0) << "the oldest favorite stays";

    // Removing in the favorites panel redraws it; the last one leaves the message.
    while (w->catalogue().ReportControl_FavoritesMain.rowCount() > 0) {
        const int before = static_cast<int>(w->catalogue().ReportControl_FavoritesMain.rowCount());
        toggle->click();
        ASSERT_EQ(w->catalogue().ReportControl_FavoritesMain.rowCount(), before - 1);
    }
    EXPECT_TRUE(view->favoritesMessage()->isVisible());
    EXPECT_FALSE(w->button(Btn_Convert)->isEnabled());
}

TEST_F(BrowserWindow, SearchBringsTheBrowserToADevicePreset) {
    auto w = loadedWindow();
    whenModal([&](QWidget* dialog) {
        QTest::keyClicks(child<QLineEdit>(dialog, QStringLiteral("Txt_Search")),
                         QStringLiteral("galaxy tab"));
        child<QPushButton>(dialog, QStringLiteral("Cmd_Panels_0"))->click();
    });
    w->button(Btn_Search)->click();
    OutputBrowserView* view = w->browserView();
    EXPECT_EQ(w->browser().PanelActive, Panel_Devices);
    EXPECT_TRUE(view->panelButton(Panel_Devices)->isChecked());
    EXPECT_EQ(view->makerList()->currentText(), QStringLiteral("Samsung"));
    const int checked = static_cast<int>(w->browser().strips[Panel_Devices].checkedButton());
    ASSERT_GE(checked, 0);
    EXPECT_EQ(view->groupButton(Panel_Devices, checked)->toolTip(), QStringLiteral("Galaxy Tab"));
    EXPECT_TRUE(view->presetList()->currentText().contains(QStringLiteral("Galaxy Tab"), Qt::CaseInsensitive))
        << view->presetList()->currentText().toStdString();
    EXPECT_EQ(w->settings().Txt_Keyword, QStringLiteral("Galaxy Tab"));

    // Escape closes without a choice.
    whenModal([](QWidget* dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
    w->button(Btn_Search)->click();
    EXPECT_EQ(w->browser().PanelActive, Panel_Devices);
}

TEST_F(BrowserWindow, SettingsWindowSavesAUserPresetThatTheBrowserOffers) {
    auto w = loadedWindow();
    OutputBrowserView* view = w->browserView();
    view->groupButton(Panel_VideoFormats, buttonOf(view, Panel_VideoFormats, QStringLiteral("MKV")))->click();
    const int before = view->presetList()->count();

    whenModal([&](QWidget* settingsDialog) {
        // A new preset through the name window, then keep the changes.
        whenModal(
            [](QWidget* nameDialog) {
                auto* box = child<QLineEdit>(nameDialog, QStringLiteral("Txt_PresetName"));
                QTest::keyClicks(box, QStringLiteral("My MKV"));
                QTest::keyClick(box, Qt::Key_Return);
            },
            settingsDialog);
        child<QPushButton>(settingsDialog, QStringLiteral("Cmd_PanelList_1"))->click();
        child<QPushButton>(settingsDialog, QStringLiteral("Cmd_Panel_1"))->click();
    });
    w->button(Btn_Settings)->click();

    ASSERT_EQ(view->presetList()->count(), before + 1);
    EXPECT_TRUE(presetTexts(view->presetList()).contains(QStringLiteral("My MKV")));
    EXPECT_TRUE(QFileInfo::exists(Folder_UserPreset + File_UserPreset));
    const int mine = view->presetList()->findText(QStringLiteral("My MKV"));
    view->choosePreset(mine);
    EXPECT_TRUE(w->settings().Txt_ID.startsWith(QStringLiteral("User-")));

    // Deleted there, it leaves the main list at once, even when the window then closes without keeping.
    whenModal([&](QWidget* settingsDialog) {
        child<QPushButton>(settingsDialog, QStringLiteral("Cmd_PanelList_0"))->click();
        child<QPushButton>(settingsDialog, QStringLiteral("Cmd_Panel_0"))->click();
    });
    w->button(Btn_Settings)->click();
    EXPECT_EQ(view->presetList()->count(), before);
    EXPECT_FALSE(w->settings().Txt_ID.startsWith(QStringLiteral("User-")));
    // The window stays, since its fields are the output parameters.
    EXPECT_NE(w->settingsWindow(), nullptr);
    EXPECT_FALSE(w->settingsWindow()->isVisible());
}

// A queue run to its end: every row done in the preset picked in the browser, the completion shown
// once; then the output folder opens in the file manager, a missing one offered for creation first.
TEST_F(BrowserWindow, AFinishedQueueWritesThePickedPresetAndShowsTheCompletionOnce) {
    auto w = loadedWindow();
    addClips(*w, 2);
    OutputBrowserView* view = w->browserView();
    view->panelButton(Panel_AudioFormats)->click();
    const int mp3 = buttonOf(view, Panel_AudioFormats, QStringLiteral("MP3"));
    ASSERT_GE(mp3, 0);
    view->groupButton(Panel_AudioFormats, mp3)->click();
    view->choosePreset(0);
    EXPECT_EQ(w->settings().Combo_OutputFile[List_AudioCodec].selectedText(), QStringLiteral("MP3"));

    w->button(Btn_Convert)->click();
    ASSERT_TRUE(waitFor([&] { return w->converter().Get_ConversionState() == Conversion_Idle; }, 60000));
    ASSERT_EQ(completions, 1) << messages.join('\n').toStdString();
    EXPECT_FALSE(w->totalBar()->isVisible());
    EXPECT_EQ(w->button(Btn_Convert)->text(), QStringLiteral("Convert Now"));
    EXPECT_EQ(QDir(Path_Output).entryList(QDir::Files).size(), 2);
    for (int r = 0; r < 2; ++r) {
        EXPECT_EQ(w->table().text(r, FileCol::Status), QStringLiteral("Done"));
        const QString output = w->table().text(r, FileCol::ConvertedFileName);
        EXPECT_EQ(QFileInfo(output).suffix().toLower(), QStringLiteral("mp3"));
        QProcess probe;
        probe.start("ffprobe",
                    {"-v", "error", "-show_entries", "stream=codec_name", "-of", "csv=p=0", output});
        ASSERT_TRUE(probe.waitForFinished(30000));
        EXPECT_EQ(QString::fromUtf8(probe.readAllStandardOutput()).trimmed(), QStringLiteral("mp3"));
    }

    w->button(Btn_OpenOutput)->click();
    EXPECT_EQ(launched.last(), Path_Output);
    const QString missing = home.path() + QStringLiteral("/not/there/");
    w->outputPath()->setText(missing);
    w->button(Btn_OpenOutput)->click();
    EXPECT_TRUE(messages.last().startsWith(QStringLiteral("Folder  '") + missing +
                                           QStringLiteral("'  does not exist.")));
    EXPECT_TRUE(QFileInfo(missing).isDir());
}

TEST_F(BrowserWindow, ARunningJobLocksTheBrowserAndTheSettings) {
    auto w = loadedWindow();
    addClips(*w, 1);
    OutputBrowserView* view = w->browserView();
    w->Set_MainState(MainState_Converting, true);
    EXPECT_FALSE(view->groupButton(Panel_VideoFormats, 1)->isEnabled());
    EXPECT_FALSE(view->presetList()->isEnabled());
    EXPECT_FALSE(view->makerList()->isEnabled());
    EXPECT_FALSE(w->button(Btn_Settings)->isEnabled());
    EXPECT_FALSE(
        w->settingsWindow()->findChild<QComboBox*>(QStringLiteral("Combo_OutputFile_0"))->isEnabled());
    view->pressPanel(Panel_AudioFormats);
    EXPECT_EQ(w->browser().PanelActive, Panel_VideoFormats);
    EXPECT_TRUE(view->panelButton(Panel_VideoFormats)->isChecked());

    w->Set_MainState(MainState_Ready, true);
    EXPECT_TRUE(view->groupButton(Panel_VideoFormats, 1)->isEnabled());
    EXPECT_TRUE(view->presetList()->isEnabled());
    EXPECT_TRUE(
        w->settingsWindow()->findChild<QComboBox*>(QStringLiteral("Combo_OutputFile_0"))->isEnabled());
    view->pressPanel(Panel_AudioFormats);
    EXPECT_EQ(w->browser().PanelActive, Panel_AudioFormats);
}

TEST_F(BrowserWindow, RenameMenusRunOnTheList) {
    auto w = loadedWindow();
    addClips(*w, 2);
    EXPECT_TRUE(w->button(Btn_Rename)->isVisible());
    QMenu* menu = w->renameMenu();
    const auto run = [&](int index) {
        QAction* a = menu->findChild<QAction*>(QStringLiteral("mnuRenameAll2_%1").arg(index));
        ASSERT_NE(a, nullptr) << index;
        a->trigger();
    };
    run(4);
    EXPECT_EQ(w->table().text(0, FileCol::Name), QStringLiteral("CLIP1"));
    whenModal([](QWidget* dialog) {
        QTest::keyClicks(child<QLineEdit>(dialog, QStringLiteral("Txt_AddBefore")), QStringLiteral("new_"));
        child<QPushButton>(dialog, QStringLiteral("Cmd_Panel_1"))->click();
    });
    run(7);
    EXPECT_EQ(w->table().text(1, FileCol::Name), QStringLiteral("new_CLIP2"));
    run(11);
    EXPECT_EQ(w->table().text(0, FileCol::Name), QStringLiteral("clip1"));
    EXPECT_EQ(w->table().text(1, FileCol::Name), QStringLiteral("clip2"));

    // The list's menu holds the single rename and the submenu.
    EXPECT_NE(w->fileListMenu()->findChild<QAction*>(QStringLiteral("mnuFileList_8")), nullptr);
    w->table().setSelectedRows({1});
    whenModal([](QWidget* dialog) {
        auto* box = child<QLineEdit>(dialog, QStringLiteral("Txt_AddNew"));
        box->selectAll();
        QTest::keyClicks(box, QStringLiteral("holiday"));
        QTest::keyClick(box, Qt::Key_Return);
    });
    w->mnuFileList_Click(8);
    EXPECT_EQ(w->table().text(1, FileCol::Name), QStringLiteral("holiday"));
}

TEST_F(BrowserWindow, ThemeSwitchRestylesAndKeepsTheChoice) {
    auto w = loadedWindow();
    addClips(*w, 1);
    ASSERT_EQ(Theme_No, 2);
    ASSERT_EQ(Apply_Theme(*qApp, Theme_No), Theme_Ok); // as the program does at start
    QAction* light = w->themeMenu()->findChild<QAction*>(QStringLiteral("mnutheme_1"));
    QAction* dark = w->themeMenu()->findChild<QAction*>(QStringLiteral("mnutheme_2"));
    ASSERT_TRUE(light && dark);
    EXPECT_TRUE(dark->isChecked());
    const QString darkSheet = qApp->styleSheet();
    EXPECT_FALSE(darkSheet.isEmpty());

    // A name edited under Dark is white; the switch makes it readable on the light ground.
    w->table().setColor(0, FileCol::Name, 0xFFFFFF);
    OutputBrowserView* view = w->browserView();
    const int pressed = static_cast<int>(w->browser().strips[Panel_VideoFormats].checkedButton());
    const QImage darkPicture = view->groupButton(Panel_VideoFormats, 0)->icon().pixmap(44, 44).toImage();

    light->trigger();
    EXPECT_EQ(Theme_No, 1);
    EXPECT_TRUE(light->isChecked());
    EXPECT_FALSE(dark->isChecked());
    EXPECT_NE(qApp->styleSheet(), darkSheet);
    EXPECT_GT(qApp->palette().color(QPalette::Window).lightness(), 200);
    EXPECT_EQ(w->table().color(0, FileCol::Name), 0);
    EXPECT_EQ(static_cast<int>(w->browser().strips[Panel_VideoFormats].checkedButton()), pressed);
    EXPECT_TRUE(view->groupButton(Panel_VideoFormats, pressed)->isChecked());
    EXPECT_NE(view->groupButton(Panel_VideoFormats, 0)->icon().pixmap(44, 44).toImage(), darkPicture);
    EXPECT_TRUE(messages.isEmpty()) << messages.join('\n').toStdString();
    // Every button picture follows, the settings window's and the folder buttons' among them.
    for (const char* name :
         {"Cmd_FileListView_5", "Cmd_FileListView_7", "Cmd_PanelList_1", "Cmd_PanelList_0"}) {
        auto* button = w->findChild<QAbstractButton*>(QLatin1String(name));
        ASSERT_NE(button, nullptr) << name;
        const QString role = button->property("skinRole").toString();
        ASSERT_FALSE(role.isEmpty()) << name;
        EXPECT_EQ(button->icon().cacheKey(), Skin_Icon(role).cacheKey()) << name;
    }

    // The checked theme again: nothing happens.
    const QString lightSheet = qApp->styleSheet();
    light->trigger();
    EXPECT_EQ(qApp->styleSheet(), lightSheet);
    EXPECT_TRUE(light->isChecked());

    // Sheets that cannot be found: the palette switches and the user is told.
    Theme_SetSheetRoot(home.make("nothing-here"));
    dark->trigger();
    EXPECT_EQ(Theme_No, 2);
    ASSERT_EQ(titled.size(), 1);
    EXPECT_EQ(titled.first(), QStringLiteral("Sorry!: Missing or corrupted resource files.\n"
                                             "Please re-install the program to solve this problem."));
    EXPECT_LT(qApp->palette().color(QPalette::Window).lightness(), 100);

    Theme_SetSheetRoot(QStringLiteral(":/skin/"));
    Theme_ShowFailure(Apply_Theme(*qApp, 2));
    EXPECT_EQ(messages.size(), 1);
}

// The preview plays its row in the player window: by the button, Space, the menu and a double
// click; the window plays, seeks, mutes, goes full screen and back, takes a snapshot, and the flag that
// keeps the encoder's handlers still is up only while it is open.
TEST_F(MainWindow, ThePreviewPlaysItsRowInThePlayerWindow) {
    const QString pictures = home.make("snaps");
    QStringList played;
    frmMain* main = nullptr;
    seams.playerWindow = [&](frmPlayer& p) {
        played << p.model().fileName;
        EXPECT_TRUE(PlayerWindowOpen);
        if (played.size() > 1) { // the window's first press of Play, then it closes
            EXPECT_TRUE(waitFor([&] { return !p.model().timers.WaitToPlay; }, 3000));
            return;
        }
        PlayerWindow& m = p.model();
        ASSERT_TRUE(waitFor([&] { return m.buttons.playTag == "Pause" && p.playBar()->isEnabled(); }, 5000));
        ASSERT_TRUE(waitFor([&] { return p.picPreview()->framesShown() > 0; }, 5000));
        EXPECT_EQ(p.timeLabel()->parentWidget(), p.panel());
        p.button(0)->click(); // pause
        EXPECT_EQ(m.buttons.playImage, "img_player_play");
        m.ProgressBar_Play_Change(m.panel.barMax / 2); // seek to the middle, half a second
        ASSERT_TRUE(
            waitFor([&] { return p.timeLabel()->property("tag").toString() == "00:00:00.500"; }, 3000))
            << p.timeLabel()->property("tag").toString().toStdString();
        p.button(2)->click();
        EXPECT_TRUE(main->media().player().Mute());
        p.picPreview()->doubleClicked();
        EXPECT_TRUE(m.fullScreen);
        EXPECT_EQ(p.playerMenu()->actions().value(0)->text(), "Exit full screen");
        p.picPreview()->doubleClicked();
        EXPECT_EQ(p.playerMenu()->actions().value(0)->text(), "Full Screen");
        m.saveDialog = [&](const QString& name, const QString&, int& index) {
            index = 2;
            return pictures + name;
        };
        p.button(4)->click();
        EXPECT_TRUE(QFileInfo::exists(pictures + "Snapshot-00.00.00.500.jpg"))
            << messages.join('|').toStdString();
    };
    auto w = loadedWindow();
    main = w.get();
    addClips(*w, 2);
    w->fileList()->view()->selectRow(0);
    ASSERT_TRUE(waitFor([&] { return w->playPreviewButton()->isVisible(); }, 2000));
    w->playPreviewButton()->click();
    EXPECT_FALSE(PlayerWindowOpen);
    EXPECT_EQ(Path_Capture, pictures);

    QTest::keyClick(w->fileList()->view(), Qt::Key_Space);
    w->previewMenu()->actions().value(0)->trigger();
    QTableView* view = w->fileList()->view();
    const QRect format = view->visualRect(view->model()->index(0, 2));
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, format.center());
    EXPECT_EQ(played.size(), 4);
    EXPECT_EQ(played.value(0), nextChoice.value(0));
    EXPECT_EQ(played.filter(nextChoice.value(0)).size(), 4);

    // A file that went away: its name and "File not found!", and the window closes cleanly.
    w->fileList()->view()->selectRow(1);
    ASSERT_TRUE(QFile::remove(nextChoice.value(1)));
    messages.clear();
    w->playPreviewButton()->click();
    EXPECT_EQ(messages, QStringList{nextChoice.value(1) + "\nFile not found!"});
    EXPECT_FALSE(PlayerWindowOpen);
}

// A row edited as a user would: trimmed to 2 s .. 5 s, cut to 4:3 with the crop rectangle's handles,
// set into the 16:9 preset by "PanScan" and toned by "Sepia"; the output shows exactly that. The edit
// window opens for one selected row only.
TEST_F(MainWindow, AnEditedRowConvertsAsItsPreviewShowed) {
    // White with red bars at both sides (cut by the crop) and a blue band at the top (cut by PanScan).
    const QString source = media.filePath(QStringLiteral("edit.mp4"));
    QProcess ffmpeg;
    ffmpeg.start("ffmpeg",
                 {"-nostdin", "-loglevel", "error", "-y", "-f", "lavfi", "-i",
                  "color=c=white:s=320x180:r=25:d=8,drawbox=x=0:y=0:w=40:h=180:c=red:t=fill,"
                  "drawbox=x=280:y=0:w=40:h=180:c=red:t=fill,drawbox=x=0:y=0:w=320:h=12:c=blue:t=fill",
                  "-c:v", "mpeg4", "-q:v", "2", source});
    ASSERT_TRUE(ffmpeg.waitForFinished(60000) && ffmpeg.exitCode() == 0);

    int opened = 0;
    seams.editWindow = [&](frmEditVideo& e) {
        ++opened;
        EditVideo& m = e.model();
        ASSERT_TRUE(waitFor([&] { return m.Activated && !m.timers.WaitToPlay; }, 5000));
        m.trim.TrimStart = 2'000'000;
        m.trim.TrimEnd = 5'000'000;
        m.trim.Set_TrimPoints(m.trim.BarMax / 4, m.trim.BarMax * 5 / 8, true, false, false);
        EXPECT_EQ(m.trim.lbl_SelectedTimeTag, "3.00");

        e.tabButton(1)->click();
        const QRect picture = e.preview()->pictureRect();
        ASSERT_EQ(picture.size(), QSize(640, 360));
        const auto drag = [&](QPoint from, QPoint to) {
            QTest::mousePress(e.preview(), Qt::LeftButton, {}, picture.topLeft() + from);
            for (int i = 1; i <= 4; ++i)
                QTest::mouseMove(e.preview(), picture.topLeft() + from + (to - from) * i / 4);
            QTest::mouseRelease(e.preview(), Qt::LeftButton, {}, picture.topLeft() + to);
        };
        drag({0, 180}, {80, 180});    // the left edge's handle
        drag({640, 180}, {560, 180}); // the right edge's handle
        EXPECT_EQ(m.crop.Crop_Canves, QRect(80, 0, 480, 360));
        e.aspectButton(4)->click();
        e.tabButton(2)->click();
        e.effectButton(static_cast<int>(EffectButtonCaptions().indexOf("Sepia")))->click();
        EXPECT_TRUE(m.effects.Txt_EffectsStr.startsWith("Sepia")) << m.effects.Txt_EffectsStr.toStdString();
        // The live picture, once a frame is drawn: the crop's middle, warm, filling the frame.
        ASSERT_TRUE(waitFor([&] { return !m.Pic_Preview[2].isNull(); }, 5000));
        const QColor live = m.Pic_Preview[2].pixelColor(4, m.Pic_Preview[2].height() / 2);
        EXPECT_GT(live.red(), live.blue() + 20);
        EXPECT_GT(live.green(), 150) << "the red bar is cut away";
        e.panelButton(0)->click();
    };
    auto w = loadedWindow();
    ASSERT_TRUE(add(*w, {source, clip(QStringLiteral("other.mp4"))}));
    w->table().setSelectedRows({0, 1});
    w->button(Btn_Edit)->click();
    EXPECT_EQ(opened, 0) << "two rows: the button does nothing";
    w->table().setSelectedRows({0});
    QApplication::setActiveWindow(w.get());
    QTest::keyClick(w->fileList()->view(), Qt::Key_E, Qt::ControlModifier);
    ASSERT_EQ(opened, 1);
    EXPECT_FALSE(EditWindowOpen);

    const FileViewMain& t = w->table();
    EXPECT_EQ(t.editMark(0), kEditMarkImage);
    EXPECT_EQ(t.editMark(1), 0);
    EXPECT_EQ(t.text(0, FileCol::TrimStartLow) + "-" + t.text(0, FileCol::TrimEndLow), "2000000-5000000");
    EXPECT_EQ(t.text(0, FileCol::CropLeft) + "," + t.text(0, FileCol::CropRight), "40,40");
    EXPECT_EQ(t.text(0, FileCol::NewAspectRatio), "PanScan");
    EXPECT_EQ(t.text(0, FileCol::Duration), "00:00:03");

    w->table().setSelectedRows({0, 1});
    w->button(Btn_Convert)->click();
    ASSERT_TRUE(waitFor([&] { return w->converter().Get_ConversionState() == Conversion_Idle; }, 90000));
    const QString output = t.text(0, FileCol::ConvertedFileName);
    ASSERT_TRUE(QFileInfo::exists(output)) << messages.join('|').toStdString();

    QProcess probe;
    probe.start("ffprobe", {"-v", "error", "-select_streams", "v:0", "-count_frames", "-show_entries",
                            "stream=width,height,nb_read_frames,r_frame_rate", "-of", "csv=p=0", output});
    ASSERT_TRUE(probe.waitForFinished(30000));
    const QStringList fields = QString::fromUtf8(probe.readAllStandardOutput()).trimmed().split(',');
    ASSERT_EQ(fields.size(), 4) << fields.join(',').toStdString();
    EXPECT_EQ(fields[0] + "x" + fields[1], "1280x720");
    const QStringList rate = fields[2].split('/');
    const double seconds = fields[3].toDouble() * rate.value(1).toDouble() / rate.value(0).toDouble();
    EXPECT_NEAR(seconds, 3.0, rate.value(1).toDouble() / rate.value(0).toDouble() + 1e-6);

    const QString still = media.filePath(QStringLiteral("still.png"));
    QProcess grab;
    grab.start("ffmpeg",
               {"-nostdin", "-loglevel", "error", "-y", "-ss", "1", "-i", output, "-frames:v", "1", still});
    ASSERT_TRUE(grab.waitForFinished(30000));
    const QImage frame(still);
    ASSERT_EQ(frame.size(), QSize(1280, 720));
    // Every corner and the middle: the white middle of the crop in sepia, no red bar, no blue band.
    for (const QPoint at :
         {QPoint(8, 8), QPoint(1271, 8), QPoint(8, 711), QPoint(1271, 711), QPoint(640, 360)}) {
        const QColor c = frame.pixelColor(at);
        EXPECT_GT(c.red(), 200) << at.x() << ',' << at.y();
        EXPECT_GT(c.red(), c.green()) << at.x() << ',' << at.y();
        EXPECT_GT(c.green(), c.blue() + 15) << at.x() << ',' << at.y();
    }
}

// Local files dropped on the window are imported, other links passed over; the disc button's menu
// starts with the folder choice, whose folder without titles is said to hold no DVD video.
TEST_F(MainWindow, DropsAndTheDiscMenuImport) {
    QString chosenDisc;
    seams.chooseDiscFolder = [&](const QString&) { return chosenDisc; };
    auto w = loadedWindow();
    const QString a = clip(QStringLiteral("dropped a.mp4"));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(a), QUrl(QStringLiteral("https://example.org/x.mp4"))});
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(w.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(w.get(), &drop);
    ASSERT_TRUE(waitFor([&] { return w->table().rows() == 1; }, 20000));
    EXPECT_EQ(w->table().text(0, FileCol::FileName), QStringLiteral("dropped a.mp4"));

    w->button(Btn_Disc)->click();
    const QList<QAction*> entries = w->discMenu()->actions();
    ASSERT_FALSE(entries.isEmpty());
    EXPECT_EQ(entries.first()->text(), QStringLiteral("Load DVD Folder..."));
    chosenDisc = home.make("not-a-disc");
    messages.clear();
    entries.first()->trigger();
    EXPECT_EQ(messages, QStringList{QStringLiteral("There is no DVD video source.")});
    w->discMenu()->close();
    EXPECT_EQ(w->table().rows(), 1);
}
