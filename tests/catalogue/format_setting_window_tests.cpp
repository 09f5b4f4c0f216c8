// The preset settings window and the name dialog, driven as a user drives them, over the shipped
// catalogue: the browser opens a group, the window shows it, and every click reaches the model.

#include "../core/TempHome.h"
#include "CatalogueTestKit.h"

#include "Catalogue_Load.h"
#include "OutputBrowser.h"
#include "Registry_Mod.h"
#include "frmFormatSetting.h"
#include "frmNewPreset.h"

#include <QApplication>
#include <QComboBox>
#include <QFileInfo>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <gtest/gtest.h>

#include <memory>

using namespace morvane;
using namespace morvane::testkit;

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
        pointFolders(home.path());
        Catalogue_Load(catalogue);
        browser.Panel_BuildButtons(Panel_VideoFormats, "VideoFormat");
        browser.Panel_BuildButtons(Panel_AudioFormats, "AudioFormat");
        browser.Panel_BuildButtons(Panel_Devices, "Apple");
        window = std::make_unique<frmFormatSetting>(catalogue, settings, nullptr);
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
    QPushButton* button(const char* name) { return control<QPushButton>(name); }
    // A choice in a list's drop-down, only possible while the list is enabled.
    void choose(int index, const QString& text) {
        QComboBox* combo = list(index);
        ASSERT_TRUE(combo->isEnabled()) << index;
        const int item = combo->findText(text);
        ASSERT_GE(item, 0) << text.toStdString();
        combo->setCurrentIndex(item);
        emit combo->activated(item);
    }
    void type(QLineEdit* edit, const QString& text) {
        edit->clear();
        QTest::keyClicks(edit, text);
    }
    bool shown(QWidget* widget) { return widget->isVisibleTo(window.get()); }
    QString cell(qsizetype row, const char* column) {
        return Cell_Get(catalogue.ReportControl_PresetMain, row, column);
    }
    qsizetype rowOf(const QString& name) {
        return Row_Find(catalogue.ReportControl_PresetMain, "Name", name);
    }

    TempHome home;
    MessageLog log;
    Catalogue catalogue;
    FormatSetting settings{catalogue};
    OutputBrowser browser{catalogue, settings};
    std::unique_ptr<frmFormatSetting> window;
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
        EXPECT_TRUE(shown(button("Cmd_PanelList_1")));
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
    QTimer::singleShot(0, [&] { button("Cmd_Panel_0")->click(); });
    window->showModal();
    EXPECT_EQ(settings.Txt_ID, "VF-MP4-04");
    EXPECT_FALSE(QFileInfo::exists(Folder_UserPreset + File_UserPreset));
}

TEST_F(SettingsWindowTest, BoxesFollowTheirListsClampAtOnceAndRecompute) {
    openGroup(Panel_VideoFormats, "MP4", 1);
    QLineEdit* width = box("Width");
    QLineEdit* bitrate = box("Bitrate");
    choose(List_FrameSize, "Custom");
    EXPECT_TRUE(shown(width) && shown(box("Height")) && shown(control<QLabel>("lbl_OutputVideoSize")));
    type(width, "5a-000");
    EXPECT_EQ(width->text(), "3840"); // digits only, and no more than the codec's maximum
    arrow("Width", "Down")->click();
    EXPECT_EQ(width->text(), "3839");
    EXPECT_EQ(cell(rowOf("MP4 - H.264 HD 720p"), "Width"), "3839");

    // Leaving a box under "Smart Fit" recomputes the hidden bitrate for the new size.
    ASSERT_EQ(list(List_VideoBitrate)->currentText(), "Smart Fit");
    EXPECT_FALSE(shown(bitrate));
    const QString before = bitrate->text();
    type(box("Height"), "200");
    QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
    QApplication::sendEvent(box("Height"), &out);
    EXPECT_NE(bitrate->text(), before);

    // The quality moves the estimate, and a quality press leaves "Custom" for "Smart Fit" again.
    control<QRadioButton>("Radio_Quality_0")->click();
    const int high = bitrate->text().toInt();
    control<QRadioButton>("Radio_Quality_2")->click();
    EXPECT_LT(bitrate->text().toInt(), high);
    EXPECT_EQ(cell(rowOf("MP4 - H.264 HD 720p"), "QualityLevel"), "SmallSize");
    choose(List_VideoBitrate, "Custom");
    EXPECT_TRUE(shown(bitrate) && bitrate->isEnabled() && shown(control<QLabel>("lbl_OutputVideoBitrate")));
    type(bitrate, "999999");
    EXPECT_EQ(bitrate->text(), "30000");
    control<QRadioButton>("Radio_Quality_0")->click();
    EXPECT_EQ(list(List_VideoBitrate)->currentText(), "Smart Fit");
    EXPECT_FALSE(shown(bitrate));
    EXPECT_EQ(bitrate->text().toInt(), high);

    choose(List_FrameSize, "Original");
    EXPECT_FALSE(shown(width));
    EXPECT_EQ(width->text(), "0");

    // Another codec brings its own limits; an audio format has no video bitrate at all.
    choose(List_VideoCodec, "MPEG4 (DivX/Xvid compatible)");
    EXPECT_EQ(settings.Txt_OutputVideoBitrate.maximum, 15000);
    openGroup(Panel_AudioFormats, "MP3", 0);
    EXPECT_EQ(list(List_VideoBitrate)->currentText(), "-");
    EXPECT_FALSE(shown(bitrate) || shown(arrow("Bitrate", "Up")->parentWidget()));
}

TEST_F(SettingsWindowTest, GroupBRespectsLocksAndNoVideo) {
    openGroup(Panel_VideoFormats, "MPEG-1", 0); // width, height and frame rate fixed by the preset
    EXPECT_FALSE(list(List_FrameSize)->isEnabled());
    settings.selectListValue(List_FrameSize, "Custom", 0);
    window->redraw();
    EXPECT_TRUE(shown(box("Width")));
    arrow("Width", "Up")->click();
    EXPECT_EQ(box("Width")->text(), "352");

    // Switched off, everything goes; switched on, locked and "No Video" controls stay off.
    window->Set_GroupBEnabled(false);
    QList<QWidget*> all;
    for (int i = 0; i < 12; ++i)
        all << control<QLabel>(QString("lbl_OutputFileTitle_%1").arg(i));
    for (int i = 0; i < 11; ++i)
        all << list(i);
    for (int i = 0; i < 3; ++i)
        all << control<QRadioButton>(QString("Radio_Quality_%1").arg(i));
    for (const char* name : {"Width", "Height", "Bitrate"})
        all << box(name) << arrow(name, "Up")->parentWidget();
    for (QWidget* widget : all)
        EXPECT_FALSE(widget->isEnabled()) << widget->objectName().toStdString();
    window->Set_GroupBEnabled(true);
    for (QWidget* on : QList<QWidget*>{list(List_VideoCodec), list(List_AudioCodec),
                                       control<QRadioButton>("Radio_Quality_0")})
        EXPECT_TRUE(on->isEnabled()) << on->objectName().toStdString();
    for (QWidget* off : QList<QWidget*>{list(List_FrameRate), box("Width")})
        EXPECT_FALSE(off->isEnabled()) << off->objectName().toStdString();

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
    QPushButton* remove = button("Cmd_PanelList_0");
    QPushButton* add = button("Cmd_PanelList_1");
    auto* rename = control<QAction>("mnuList_3");
    EXPECT_FALSE(remove->isEnabled() || rename->isEnabled());

    QString asked;
    answerName("", &asked);
    add->click();
    EXPECT_EQ(asked, "New Preset/Name");
    EXPECT_EQ(table->rowCount(), builtIn);

    answerName("Mine");
    add->click();
    ASSERT_EQ(table->rowCount(), builtIn + 1);
    EXPECT_EQ(table->currentRow(), builtIn);
    EXPECT_EQ(table->item(builtIn, 0)->text(), "Mine");
    EXPECT_EQ(control<QLabel>("lbl_TotalPreset")->text(), QString::number(builtIn + 1) + " presets");
    EXPECT_TRUE(remove->isEnabled() && rename->isEnabled());
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

    // The model suite covers which names are asked about; here the questions reach the user.
    log.answer = ID_NO;
    answerName("Renamed");
    add->click();
    remove->click();
    EXPECT_EQ(log.lines, QStringList({"Confirmation: The preset 'Renamed' already exists, replace it ?",
                                      "Delete: Are you sure you want to delete 'Renamed' preset ?"}));
    EXPECT_EQ(table->rowCount(), builtIn + 1);
    log.answer = ID_YES;
    remove->click();
    EXPECT_EQ(table->rowCount(), builtIn);
    EXPECT_EQ(rowOf("Renamed"), 0);
    EXPECT_FALSE(remove->isEnabled());
}

// On Devices the new and delete buttons are hidden, but the list's menu still serves user presets.
TEST_F(SettingsWindowTest, TheListMenuServesUserPresetsOnDevicesToo) {
    CatalogueTable& presets = catalogue.ReportControl_PresetMain;
    addRows(presets, {}, {presets.records().at(Row_Find(presets, "Keyword", "iPhone") - 1).join("//")});
    for (const auto& [column, value] :
         {std::pair{"ID", "User-1"}, {"Name", "My iPhone"}, {"Removable", "Yes"}})
        Cell_Set(presets, presets.rowCount(), column, value, true, true);
    openGroup(Panel_Devices, "iPhone", 0);
    window->show();
    QTableWidget* table = presetTable();
    const int mine = table->rowCount() - 1;
    ASSERT_EQ(table->item(mine, 0)->text(), "My iPhone");
    table->selectRow(mine);
    EXPECT_FALSE(shown(button("Cmd_PanelList_0")));
    emit table->customContextMenuRequested(table->visualItemRect(table->item(mine, 0)).center());
    auto* menu = control<QMenu>("mnuList");
    EXPECT_TRUE(menu->isVisible());
    EXPECT_TRUE(control<QAction>("mnuList_1")->isEnabled() && control<QAction>("mnuList_3")->isEnabled());
    menu->close();
    window->hide();
}

TEST_F(SettingsWindowTest, KeepingWritesTheUserFileAndRefillsTheMainList) {
    openGroup(Panel_VideoFormats, "MP4", 0);
    QSignalSpy saved(window.get(), &frmFormatSetting::presetsSaved);
    QTimer::singleShot(0, [&] {
        answerName("Kept");
        button("Cmd_PanelList_1")->click();
        button("Cmd_Panel_1")->click();
    });
    EXPECT_EQ(window->showModal(), QDialog::Accepted);
    EXPECT_EQ(saved.count(), 1);
    EXPECT_EQ(catalogue.Cmd_OutputPreset.selectedText(), "Kept");
    // The file holds the user row alone: built-in rows saved with it would come back twice.
    Catalogue reloaded;
    Catalogue_Load(reloaded);
    EXPECT_NE(Row_Find(reloaded.ReportControl_PresetMain, "Name", "Kept"), 0);
    EXPECT_EQ(reloaded.ReportControl_PresetMain.rowCount(), catalogue.ReportControl_PresetMain.rowCount());

    // Device groups take no new presets.
    openGroup(Panel_Devices, "iPhone", 0);
    EXPECT_EQ(window->windowTitle(), "iPhone Presets - Setting");
    EXPECT_FALSE(shown(button("Cmd_PanelList_0")) || shown(button("Cmd_PanelList_1")));
}

TEST(NewPresetDialog, AcceptFollowsTheBoxAndTakesTheNameAsTyped) {
    frmNewPreset dialog("New Preset", "Name");
    dialog.show();
    auto* box = dialog.findChild<QLineEdit*>("Txt_PresetName");
    auto* accept = dialog.findChild<QPushButton*>("Cmd_Panel_1");
    QTest::keyClicks(box, "   ");
    QTest::qWait(250);
    EXPECT_FALSE(accept->isEnabled());
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_TRUE(dialog.isVisible()); // blanks are no name
    QTest::keyClicks(box, "Clip");
    EXPECT_TRUE(QTest::qWaitFor([&] { return accept->isEnabled(); }, 1000));
    box->clear();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !accept->isEnabled(); }, 1000));
    QTest::keyClicks(box, " Holiday");
    QTest::keyClick(box, Qt::Key_Enter);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.NewPresetName(), " Holiday");
}
