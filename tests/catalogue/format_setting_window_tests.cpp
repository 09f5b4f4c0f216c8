// The preset settings window and the name dialog, driven as a user drives them, over the shipped
// catalogue: the browser opens a group, the window shows it, and every click reaches the model.

#include "../core/TempHome.h"

#include "Catalogue_Load.h"
#include "Encrypt_Mod.h"
#include "Globals.h"
#include "OutputBrowser.h"
#include "Preset_Mods.h"
#include "Registry_Mod.h"
#include "frmFormatSetting.h"
#include "frmNewPreset.h"
#include "mMain.h"

#include <QApplication>
#include <QComboBox>
#include <QFileInfo>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <gtest/gtest.h>

#include <memory>
#include <ostream>

// Readable QString values in failure messages; file-local, as other suites of this program may add theirs.
static void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

using namespace morvane;

namespace {

// Answers the next modal name dialog: types the name and presses Enter, or Escape for "".
void answerName(const QString& name, QString* title = nullptr, int attempts = 200) {
    QTimer::singleShot(10, [=] {
        auto* dialog = qobject_cast<frmNewPreset*>(QApplication::activeModalWidget());
        if (dialog == nullptr) {
            if (attempts > 0) return answerName(name, title, attempts - 1);
            ADD_FAILURE() << "no name dialog came up";
            return;
        }
        if (title != nullptr) *title = dialog->windowTitle() + "/" + dialog->findChild<QLabel*>()->text();
        auto* box = dialog->findChild<QLineEdit*>("Txt_PresetName");
        QTest::keyClicks(box, name);
        QTest::keyClick(box, name.isEmpty() ? Qt::Key_Escape : Qt::Key_Return);
    });
}

class SettingsWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        Catalogue_Passphrase = QString::fromLatin1(Catalogue_PassphraseText);
        Folder_Temp = home.make("temp");
        Folder_UserPreset = home.path() + "/user/presets/";
        File_UserPreset = "UserPreset.dat";
        Folder_UserFavorite = home.path() + "/user/favorites/";
        File_UserFavorite = "Favorites.dat";
        Set_MessageHandler([this](const QString& text, int, const QString& title, const QString&) {
            questions << title + ": " + text;
            return answer;
        });
        Catalogue_Load(catalogue);
        browser.Panel_BuildButtons(Panel_VideoFormats, "VideoFormat");
        browser.Panel_BuildButtons(Panel_AudioFormats, "AudioFormat");
        browser.Panel_BuildButtons(Panel_Devices, "Apple");
        window = std::make_unique<frmFormatSetting>(catalogue, settings, nullptr);
    }
    void TearDown() override {
        window.reset();
        Set_MessageHandler(nullptr);
    }

    // A press on the panel's group button with this caption and a pick in the main preset list; then,
    // unless told otherwise, the same row as the window's activation selects it.
    void openGroup(int panel, const QString& caption, qsizetype preset = 0, bool activate = true) {
        browser.Panel_Show(panel);
        const QList<StripButton>& buttons = browser.strips.at(static_cast<size_t>(panel)).buttons;
        for (qsizetype i = 0; i < buttons.size(); ++i)
            if (buttons.at(i).caption == caption) browser.Group_Open(panel, i);
        browser.presetChanged(preset);
        if (activate) settings.PresetList_Select(preset);
        window->redraw();
    }

    template <class T>
    T* control(const QString& name) {
        T* found = window->findChild<T*>(name);
        EXPECT_NE(found, nullptr) << name.toStdString();
        return found;
    }
    QComboBox* list(int index) { return control<QComboBox>(QString("Combo_OutputFile_%1").arg(index)); }
    QLineEdit* box(const char* name) { return control<QLineEdit>(QString("Txt_OutputVideo") + name); }
    QToolButton* arrow(const char* name, const char* role) {
        return control<QWidget>(QString("UpDown_OutputVideo") + name)->findChild<QToolButton*>(role);
    }
    QTableWidget* presetTable() { return control<QTableWidget>("PresetList"); }
    // A choice in a list's drop-down, only possible while the list is enabled.
    void choose(int index, const QString& text) {
        QComboBox* combo = list(index);
        ASSERT_TRUE(combo->isEnabled()) << index;
        const int item = combo->findText(text);
        ASSERT_GE(item, 0) << text.toStdString();
        combo->setCurrentIndex(item);
        emit combo->activated(item);
    }
    void leave(QLineEdit* edit) {
        QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
        QApplication::sendEvent(edit, &out);
    }
    bool shown(QWidget* widget) { return widget->isVisibleTo(window.get()); }
    QString cell(qsizetype row, const char* column) {
        return Cell_Get(catalogue.ReportControl_PresetMain, row, column);
    }
    qsizetype rowOf(const QString& name) {
        return Row_Find(catalogue.ReportControl_PresetMain, "Name", name);
    }

    TempHome home;
    Catalogue catalogue;
    FormatSetting settings{catalogue};
    OutputBrowser browser{catalogue, settings};
    std::unique_ptr<frmFormatSetting> window;
    QStringList questions;
    int answer = ID_YES;
};

} // namespace

TEST_F(SettingsWindowTest, ActivationShowsTheMainListChoiceAndRowsDriveTheLists) {
    openGroup(Panel_VideoFormats, "MP4", 3, false);
    QSignalSpy closed(window.get(), &frmFormatSetting::closedWithoutSaving);
    QTimer::singleShot(0, [&] {
        EXPECT_EQ(window->windowTitle(), "MP4 Presets - Setting");
        EXPECT_EQ(control<QGroupBox>("Frame_PresetList")->title(), "MP4 Presets");
        EXPECT_EQ(control<QLabel>("lbl_TotalPreset")->text(),
                  QString::number(catalogue.Cmd_OutputPreset.count()) + " presets");
        EXPECT_EQ(presetTable()->currentRow(), 3);
        EXPECT_EQ(list(List_FrameSize)->currentText(), "854 x 480");
        EXPECT_TRUE(control<QRadioButton>("Radio_Quality_1")->isChecked());
        EXPECT_TRUE(shown(control<QPushButton>("Cmd_PanelList_1")));
        // A pick in the window applies that row; no redraw writes anything back into a row.
        presetTable()->selectRow(0);
        EXPECT_EQ(list(List_VideoCodec)->currentText(), "H.264");
        EXPECT_EQ(list(List_FrameSize)->currentText(), "1920 x 1080");
        EXPECT_TRUE(control<QRadioButton>("Radio_Quality_0")->isChecked());
        EXPECT_FALSE(shown(box("Width")));
        for (const PresetListRow& row : settings.PresetList)
            EXPECT_FALSE(row.changed) << row.name.toStdString();
        QTest::keyClick(window.get(), Qt::Key_Escape);
    });
    EXPECT_EQ(window->showModal(), QDialog::Rejected);
    EXPECT_EQ(closed.count(), 1);
    // Closing without keeping leaves the fields on the row picked in the window ...
    EXPECT_EQ(settings.Txt_ID, "VF-MP4-01");
    // ... but the next activation follows the main list again.
    QTimer::singleShot(0, [&] { control<QPushButton>("Cmd_Panel_0")->click(); });
    window->showModal();
    EXPECT_EQ(settings.Txt_ID, "VF-MP4-04");
    EXPECT_FALSE(QFileInfo::exists(Folder_UserPreset + File_UserPreset));
}

TEST_F(SettingsWindowTest, SizeBoxesFollowTheFrameSizeAndClampAtOnce) {
    openGroup(Panel_VideoFormats, "MP4", 1);
    QLineEdit* width = box("Width");
    choose(List_FrameSize, "Custom");
    EXPECT_TRUE(shown(width) && shown(box("Height")) && shown(control<QLabel>("lbl_OutputVideoSize")));
    EXPECT_TRUE(width->isEnabled());

    width->clear();
    QTest::keyClicks(width, "5a-0");
    EXPECT_EQ(width->text(), "50"); // digits only
    QTest::keyClicks(width, "00");
    EXPECT_EQ(width->text(), "1920"); // above the codec's maximum
    EXPECT_EQ(cell(rowOf("MP4 - H.264 HD 720p"), "Width"), "1920");
    arrow("Width", "Up")->click();
    EXPECT_EQ(width->text(), "1920");
    arrow("Width", "Down")->click();
    EXPECT_EQ(width->text(), "1919");
    EXPECT_EQ(cell(rowOf("MP4 - H.264 HD 720p"), "Width"), "1919");

    // Leaving a box under "Smart Fit" recomputes the bitrate for the new size.
    ASSERT_EQ(list(List_VideoBitrate)->currentText(), "Smart Fit");
    const QString before = settings.Txt_OutputVideoBitrate.text;
    QLineEdit* height = box("Height");
    height->clear();
    QTest::keyClicks(height, "200");
    leave(height);
    EXPECT_NE(box("Bitrate")->text(), before);
    EXPECT_EQ(box("Bitrate")->text(), settings.Txt_OutputVideoBitrate.text);

    choose(List_FrameSize, "Original");
    EXPECT_FALSE(shown(width));
    EXPECT_EQ(width->text(), "0");

    // Another codec brings its own limits.
    choose(List_VideoCodec, "MPEG4 (DivX/Xvid compatible)");
    EXPECT_EQ(settings.Txt_OutputVideoBitrate.maximum, 15000);
    EXPECT_EQ(list(List_VideoCodec)->currentText(), "MPEG4 (DivX/Xvid compatible)");
}

TEST_F(SettingsWindowTest, SmartFitFollowsQualityAndCustomShowsTheBitrateBox) {
    openGroup(Panel_VideoFormats, "MP4", 0);
    QLineEdit* bitrate = box("Bitrate");
    ASSERT_EQ(list(List_VideoBitrate)->currentText(), "Smart Fit");
    EXPECT_FALSE(shown(bitrate));
    const int high = bitrate->text().toInt();
    control<QRadioButton>("Radio_Quality_2")->click();
    const int small = bitrate->text().toInt();
    EXPECT_LT(small, high);
    EXPECT_EQ(cell(rowOf("MP4 - H.264 Full HD 1080p"), "QualityLevel"), "SmallSize");

    choose(List_VideoBitrate, "Custom");
    EXPECT_TRUE(shown(bitrate) && bitrate->isEnabled() && shown(control<QLabel>("lbl_OutputVideoBitrate")));
    bitrate->clear();
    QTest::keyClicks(bitrate, "999999");
    EXPECT_EQ(bitrate->text(), "30000");

    // A quality press goes back to "Smart Fit" with the estimate of the new quality.
    control<QRadioButton>("Radio_Quality_0")->click();
    EXPECT_EQ(list(List_VideoBitrate)->currentText(), "Smart Fit");
    EXPECT_FALSE(shown(bitrate));
    EXPECT_EQ(bitrate->text().toInt(), high);

    // An audio format has no video bitrate at all.
    openGroup(Panel_AudioFormats, "MP3", 0);
    EXPECT_EQ(list(List_VideoBitrate)->currentText(), "-");
    EXPECT_FALSE(shown(bitrate));
    EXPECT_FALSE(shown(arrow("Bitrate", "Up")->parentWidget()));
}

TEST_F(SettingsWindowTest, GroupBRespectsLocksAndNoVideo) {
    openGroup(Panel_VideoFormats, "MPEG-1", 0); // width, height and frame rate fixed by the preset
    EXPECT_FALSE(box("Width")->isEnabled());
    EXPECT_FALSE(list(List_FrameSize)->isEnabled());
    EXPECT_FALSE(list(List_FrameRate)->isEnabled());
    EXPECT_TRUE(list(List_VideoCodec)->isEnabled());
    settings.selectListValue(List_FrameSize, "Custom", 0);
    window->redraw();
    EXPECT_TRUE(shown(box("Width")));
    EXPECT_FALSE(box("Width")->isEnabled());
    arrow("Width", "Up")->click();
    EXPECT_EQ(box("Width")->text(), "352");

    window->Set_GroupBEnabled(false);
    for (int i = 0; i < 11; ++i)
        EXPECT_FALSE(list(i)->isEnabled()) << i;
    for (int i = 0; i < 12; ++i)
        EXPECT_FALSE(control<QLabel>(QString("lbl_OutputFileTitle_%1").arg(i))->isEnabled()) << i;
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(control<QRadioButton>(QString("Radio_Quality_%1").arg(i))->isEnabled());
    for (const char* name : {"Width", "Height", "Bitrate"}) {
        EXPECT_FALSE(box(name)->isEnabled()) << name;
        EXPECT_FALSE(arrow(name, "Up")->parentWidget()->isEnabled()) << name;
    }
    window->Set_GroupBEnabled(true);
    EXPECT_TRUE(list(List_VideoCodec)->isEnabled());
    EXPECT_TRUE(list(List_AudioCodec)->isEnabled());
    EXPECT_TRUE(control<QRadioButton>("Radio_Quality_0")->isEnabled());
    EXPECT_FALSE(list(List_FrameRate)->isEnabled());
    EXPECT_FALSE(box("Width")->isEnabled());

    openGroup(Panel_AudioFormats, "MP3", 0);
    window->Set_GroupBEnabled(false);
    window->Set_GroupBEnabled(true);
    for (const int video : {List_FrameSize, List_FrameRate, List_Extension, List_Aspect, List_VideoBitrate})
        EXPECT_FALSE(list(video)->isEnabled()) << video;
    EXPECT_TRUE(list(List_SampleRate)->isEnabled());
}

TEST_F(SettingsWindowTest, NewRenameAndDeleteUserPresets) {
    openGroup(Panel_VideoFormats, "MP4", 1);
    QTableWidget* table = presetTable();
    const int builtIn = table->rowCount();
    auto* remove = control<QPushButton>("Cmd_PanelList_0");
    auto* rename = control<QAction>("mnuList_3");
    EXPECT_FALSE(remove->isEnabled());
    EXPECT_FALSE(rename->isEnabled());

    QString asked;
    answerName("", &asked);
    control<QPushButton>("Cmd_PanelList_1")->click();
    EXPECT_EQ(asked, "New Preset/Name");
    EXPECT_EQ(table->rowCount(), builtIn);

    answerName("Mine");
    control<QPushButton>("Cmd_PanelList_1")->click();
    ASSERT_EQ(table->rowCount(), builtIn + 1);
    EXPECT_EQ(table->currentRow(), builtIn);
    EXPECT_EQ(table->item(builtIn, 0)->text(), "Mine");
    EXPECT_TRUE(table->item(builtIn, 1)->text().startsWith("User-"));
    EXPECT_EQ(control<QLabel>("lbl_TotalPreset")->text(), QString::number(builtIn + 1) + " presets");
    EXPECT_TRUE(remove->isEnabled() && rename->isEnabled());
    EXPECT_EQ(cell(rowOf("Mine"), "Width"), "1280");
    // User rows stand out in a colour of the theme.
    Theme_No = 1;
    window->redraw();
    const QBrush light = table->item(builtIn, 0)->foreground();
    Theme_No = 2;
    window->redraw();
    EXPECT_NE(table->item(builtIn, 0)->foreground(), light);
    EXPECT_EQ(table->item(0, 0)->foreground().style(), Qt::NoBrush);

    answerName("Renamed", &asked);
    rename->trigger();
    EXPECT_EQ(asked, "Rename Preset/New Name");
    EXPECT_EQ(table->item(builtIn, 0)->text(), "Renamed");
    EXPECT_NE(rowOf("Renamed"), 0);

    // A user preset of that name is asked about; a built-in one is not.
    answer = ID_NO;
    answerName("Renamed");
    control<QPushButton>("Cmd_PanelList_1")->click();
    EXPECT_EQ(questions.value(0), "Confirmation: The preset 'Renamed' already exists, replace it ?");
    EXPECT_EQ(table->rowCount(), builtIn + 1);
    answerName("MP4 - H.264 HD 720p");
    control<QPushButton>("Cmd_PanelList_1")->click();
    EXPECT_EQ(questions.size(), 1);
    EXPECT_EQ(table->rowCount(), builtIn + 2);

    table->selectRow(builtIn);
    remove->click();
    EXPECT_EQ(questions.value(1), "Delete: Are you sure you want to delete 'Renamed' preset ?");
    EXPECT_EQ(table->rowCount(), builtIn + 2);
    answer = ID_YES;
    remove->click();
    EXPECT_EQ(table->rowCount(), builtIn + 1);
    EXPECT_EQ(rowOf("Renamed"), 0);
    EXPECT_FALSE(remove->isEnabled());
}

TEST_F(SettingsWindowTest, KeepingWritesTheUserFileAndRefillsTheMainList) {
    openGroup(Panel_VideoFormats, "MP4", 0);
    QSignalSpy saved(window.get(), &frmFormatSetting::presetsSaved);
    QTimer::singleShot(0, [&] {
        answerName("Kept");
        control<QPushButton>("Cmd_PanelList_1")->click();
        control<QPushButton>("Cmd_Panel_1")->click();
    });
    EXPECT_EQ(window->showModal(), QDialog::Accepted);
    EXPECT_EQ(saved.count(), 1);
    EXPECT_EQ(catalogue.Cmd_OutputPreset.selectedText(), "Kept");
    ASSERT_TRUE(QFileInfo::exists(Folder_UserPreset + File_UserPreset));
    Catalogue reloaded;
    Catalogue_Load(reloaded);
    EXPECT_NE(Row_Find(reloaded.ReportControl_PresetMain, "Name", "Kept"), 0);

    // Device groups take no new presets.
    openGroup(Panel_Devices, "iPhone", 0);
    EXPECT_EQ(window->windowTitle(), "iPhone Presets - Setting");
    EXPECT_FALSE(shown(control<QPushButton>("Cmd_PanelList_0")));
    EXPECT_FALSE(shown(control<QPushButton>("Cmd_PanelList_1")));
}

TEST(NewPresetDialog, AcceptFollowsTheBoxAndEnterEscapeAnswer) {
    frmNewPreset dialog("New Preset", "Name");
    dialog.show();
    auto* box = dialog.findChild<QLineEdit*>("Txt_PresetName");
    auto* accept = dialog.findChild<QPushButton*>("Cmd_Panel_1");
    EXPECT_FALSE(accept->isEnabled());
    QTest::keyClicks(box, "   ");
    QTest::qWait(250);
    EXPECT_FALSE(accept->isEnabled());
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_TRUE(dialog.isVisible()); // blanks are no name
    QTest::keyClicks(box, "Clip ");
    EXPECT_TRUE(QTest::qWaitFor([&] { return accept->isEnabled(); }, 1000));
    box->clear();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !accept->isEnabled(); }, 1000));
    QTest::keyClicks(box, "Clip");
    QTest::keyClick(box, Qt::Key_Escape);
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
    EXPECT_EQ(dialog.NewPresetName(), "");

    frmNewPreset named("Rename Preset", "New Name");
    EXPECT_EQ(named.findChild<QLabel*>()->text(), "New Name");
    named.show();
    QTest::keyClicks(named.findChild<QLineEdit*>(), " Holiday");
    QTest::keyClick(named.findChild<QLineEdit*>(), Qt::Key_Enter);
    EXPECT_EQ(named.result(), QDialog::Accepted);
    EXPECT_EQ(named.NewPresetName(), " Holiday");
}
