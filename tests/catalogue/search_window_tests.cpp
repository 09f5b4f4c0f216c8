// The preset search window as a user drives it: typing, clearing, choosing a hit by every road, leaving
// without a choice; and a chosen device preset bringing a real browser over the shipped catalogue there.

#include "Catalogue_Load.h"
#include "Encrypt_Mod.h"
#include "FormatSetting.h"
#include "Globals.h"
#include "OutputBrowser.h"
#include "Preset_Mods.h"
#include "Skin_Icons.h"
#include "frmSearch.h"
#include "mMain.h"

#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <gtest/gtest.h>

#include <memory>

using namespace morvane;

namespace {

struct Call {
    QString name, maker, keyword;
};

class SearchWindow : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* column : {"Name", "Keyword", "Maker", "Removable"})
            presets.addColumn(QLatin1String(column), 200);
        // Cells with blanks around them (" iPhone 15 "), as hand-edited and user rows may have.
        const QStringList rows[] = {
            {"MP4 SD", "MP4", "VideoFormat"},       {"MP4 HD", "MP4", "VideoFormat"},
            {"[%Custom%]", "MP4", "VideoFormat"},   {"AVI SD", "AVI", "VideoFormat"},
            {" iPhone 15 ", " iPhone", "Apple "},   {"Galaxy S24", "Galaxy", "Samsung"},
            {"MP3 128", "MP3", "AudioFormat"},      {"[%Custom%]", "MP3", "AudioFormat"},
            {"My own", "MP4", "VideoFormat", "Yes"}};
        for (const QStringList& cells : rows) {
            const qsizetype row = presets.addRecord();
            for (qsizetype column = 0; column < cells.size(); ++column)
                presets.setCell(row, column, cells.at(column));
        }
        open();
    }

    // A fresh window, with the query typed when one is given.
    void open(const char* query = nullptr) {
        calls.clear();
        dialog = std::make_unique<frmSearch>(presets,
                                             [this](const QString& n, const QString& m, const QString& k) {
                                                 calls.push_back({n, m, k});
                                                 return answer;
                                             });
        box = dialog->findChild<QLineEdit*>("Txt_Search");
        clear = dialog->findChild<QToolButton*>("Cmd_Search");
        view = dialog->findChild<QTableView*>("View_Found");
        count = dialog->findChild<QLabel*>("lbl_TotalPreset");
        ok = dialog->findChild<QPushButton*>("Cmd_Panels_0");
        close = dialog->findChild<QPushButton*>("Cmd_Panels_1");
        ASSERT_TRUE(box && clear && view && count && ok && close);
        ASSERT_TRUE(dialog->findChild<QTimer*>("Timer_OK_Button"));
        dialog->show();
        if (query) QTest::keyClicks(box, query);
    }

    QStringList shownColumn(int column) const {
        QStringList out;
        for (int row = 0; row < view->model()->rowCount(); ++row)
            out << view->model()->index(row, column).data().toString();
        return out;
    }
    int selectedRow() const {
        const QModelIndexList rows = view->selectionModel()->selectedRows();
        return rows.size() == 1 ? rows.first().row() : -1;
    }
    bool showsPicture(const char* role) const {
        return clear->icon().cacheKey() == Skin_Icon(QLatin1String(role)).cacheKey();
    }
    void type(const QString& text) {
        box->clear();
        QTest::keyClicks(box, text);
    }
    void expectClosedWith(const Call& expected) {
        EXPECT_FALSE(dialog->isVisible());
        EXPECT_EQ(dialog->result(), QDialog::Accepted);
        ASSERT_EQ(calls.size(), 1u);
        EXPECT_EQ(calls.front().name, expected.name);
        EXPECT_EQ(calls.front().maker, expected.maker);
        EXPECT_EQ(calls.front().keyword, expected.keyword);
    }
    void expectClosedWithoutChoice() {
        EXPECT_FALSE(dialog->isVisible());
        EXPECT_EQ(dialog->result(), QDialog::Rejected);
        EXPECT_TRUE(calls.empty());
    }

    CatalogueTable presets;
    std::unique_ptr<frmSearch> dialog;
    std::vector<Call> calls;
    bool answer = true;
    QLineEdit* box = nullptr;
    QToolButton* clear = nullptr;
    QTableView* view = nullptr;
    QLabel* count = nullptr;
    QPushButton* ok = nullptr;
    QPushButton* close = nullptr;
};

} // namespace

TEST_F(SearchWindow, ResultsFollowEveryKeystroke) {
    EXPECT_EQ(dialog->focusWidget(), box);
    EXPECT_EQ(count->text(), "0 presets");
    EXPECT_FALSE(ok->isEnabled());
    EXPECT_FALSE(clear->isEnabled());
    EXPECT_TRUE(showsPicture("img_search"));
    const QStringList headers = {"Preset", "Maker", "Keyword"};
    for (int column = 0; column < 3; ++column)
        EXPECT_EQ(view->model()->headerData(column, Qt::Horizontal).toString(), headers.at(column));

    QTest::keyClicks(box, "mp");
    EXPECT_EQ(shownColumn(0), QStringList({"MP4 SD", "MP4 HD", "MP3 128", "My own"}));
    QTest::keyClicks(box, "4");
    EXPECT_EQ(shownColumn(0), QStringList({"MP4 SD", "MP4 HD", "My own"})); // never the custom rows
    EXPECT_EQ(count->text(), "3 presets");
    EXPECT_EQ(selectedRow(), 0);
    EXPECT_TRUE(ok->isEnabled());
    EXPECT_TRUE(clear->isEnabled());
    EXPECT_TRUE(showsPicture("img_search_remove"));

    QTest::keyClicks(box, "x");
    EXPECT_EQ(view->model()->rowCount(), 0);
    EXPECT_EQ(count->text(), "0 presets");
    EXPECT_FALSE(ok->isEnabled());
    QTest::keyClick(box, Qt::Key_Return); // no hit, nothing to choose
    EXPECT_TRUE(dialog->isVisible());
    QTest::keyClick(box, Qt::Key_Backspace);
    EXPECT_EQ(count->text(), "3 presets");
    EXPECT_EQ(selectedRow(), 0);

    // The maker is part of what is searched, and a query may run across two fields.
    type("videoformat");
    EXPECT_EQ(shownColumn(0), QStringList({"MP4 SD", "MP4 HD", "AVI SD", "My own"}));
    EXPECT_EQ(shownColumn(1), QStringList(4, "VideoFormat"));
    type("sdavi");
    EXPECT_EQ(shownColumn(0), QStringList({"AVI SD"}));
    EXPECT_EQ(count->text(), "1 preset");
    EXPECT_EQ(shownColumn(2), QStringList({"AVI"}));

    // The query is taken as typed: a blank after "sd" matches no seam.
    type("sd ");
    EXPECT_EQ(count->text(), "0 presets");

    // Blanks alone count as no query, yet there is something to clear.
    type("   ");
    EXPECT_EQ(view->model()->rowCount(), 0);
    EXPECT_EQ(count->text(), "0 presets");
    EXPECT_FALSE(ok->isEnabled());
    EXPECT_TRUE(clear->isEnabled());
    EXPECT_TRUE(showsPicture("img_search_remove"));
}

TEST_F(SearchWindow, ClearButtonEmptiesTheBoxAndTheResults) {
    QTest::keyClicks(box, "galaxy");
    ASSERT_EQ(count->text(), "1 preset");
    QTest::mouseClick(clear, Qt::LeftButton);
    EXPECT_TRUE(box->text().isEmpty());
    EXPECT_EQ(view->model()->rowCount(), 0);
    EXPECT_EQ(count->text(), "0 presets");
    EXPECT_FALSE(clear->isEnabled());
    EXPECT_TRUE(showsPicture("img_search"));
    EXPECT_FALSE(ok->isEnabled());
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_TRUE(calls.empty());
    // Typing again brings the other picture back.
    QTest::keyClicks(box, "g");
    EXPECT_TRUE(showsPicture("img_search_remove"));
}

TEST_F(SearchWindow, EveryRoadOfChoosingPassesTheTrimmedHitAndCloses) {
    const Call iphone{"iPhone 15", "Apple", "iPhone"};

    QTest::keyClicks(box, "iphone");
    QTest::mouseClick(ok, Qt::LeftButton);
    expectClosedWith(iphone);

    open("iphone");
    QTest::keyClick(box, Qt::Key_Return);
    expectClosedWith(iphone);

    open("iphone");
    view->setFocus();
    QTest::keyClick(view, Qt::Key_Enter);
    expectClosedWith(iphone);

    // The arrows in the box walk the hits; Enter then takes the one walked to.
    open("sd");
    QTest::keyClick(box, Qt::Key_Down);
    EXPECT_EQ(selectedRow(), 1);
    EXPECT_EQ(box->text(), "sd");
    QTest::keyClick(box, Qt::Key_Return);
    expectClosedWith({"AVI SD", "VideoFormat", "AVI"});

    open("mp4");
    const QRect second = view->visualRect(view->model()->index(1, 0));
    ASSERT_TRUE(second.isValid());
    // A real double click starts with a press and release; the test library sends only the last event.
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, second.center());
    EXPECT_TRUE(dialog->isVisible()); // one click only selects
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, second.center());
    expectClosedWith({"MP4 HD", "VideoFormat", "MP4"});

    // A user preset stands among the others; a refusal by the browser still closes the window.
    open("own");
    answer = false;
    QTest::mouseClick(ok, Qt::LeftButton);
    expectClosedWith({"My own", "VideoFormat", "MP4"});
}

TEST_F(SearchWindow, EscapeAndCloseLeaveWithoutAChoice) {
    // With the selection taken away Enter and Select have nothing to pass on.
    QTest::keyClicks(box, "mp4");
    view->clearSelection();
    view->setFocus();
    QTest::keyClick(view, Qt::Key_Return);
    QTest::mouseClick(ok, Qt::LeftButton);
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_TRUE(calls.empty());
    QTest::keyClick(box, Qt::Key_Escape);
    expectClosedWithoutChoice();

    open("mp4");
    view->setFocus();
    QTest::keyClick(view, Qt::Key_Escape);
    expectClosedWithoutChoice();

    open("mp4");
    QTest::mouseClick(close, Qt::LeftButton);
    expectClosedWithoutChoice();
}

// ---- Over the shipped catalogue, with the real browser.

TEST(SearchWindowBrowser, ChosenDevicePresetOpensItsMakerAndGroup) {
    QTemporaryDir dir;
    Catalogue_Passphrase = QString::fromLatin1(Catalogue_PassphraseText);
    Folder_Temp = dir.filePath("temp/");
    Folder_UserPreset = dir.filePath("user/presets/");
    File_UserPreset = "UserPreset.dat";
    Folder_UserFavorite = dir.filePath("user/favorites/");
    File_UserFavorite = "Favorites.dat";
    QDir().mkpath(Folder_Temp);
    QStringList messages;
    Set_MessageHandler([&messages](const QString& text, int, const QString&, const QString&) {
        messages << text;
        return ID_OK;
    });

    Catalogue catalogue;
    Catalogue_Load(catalogue);
    ASSERT_GT(catalogue.ReportControl_PresetMain.rowCount(), 300);
    FormatSetting settings(catalogue);
    OutputBrowser browser(catalogue, settings);
    browser.Panel_BuildButtons(Panel_VideoFormats, "VideoFormat");
    browser.Panel_BuildButtons(Panel_AudioFormats, "AudioFormat");
    browser.Panel_BuildButtons(Panel_WebFormats, "WebFormat");
    browser.Panel_BuildButtons(Panel_Devices, "Apple");
    browser.Panel_Show(Panel_VideoFormats);
    ASSERT_EQ(browser.PanelActive, Panel_VideoFormats);

    const QString wanted = "Galaxy Tab 7.0 (1024 x 600)";
    frmSearch dialog(catalogue.ReportControl_PresetMain,
                     [&browser](const QString& name, const QString& maker, const QString& keyword) {
                         return browser.Preset_Select(name, maker, keyword);
                     });
    dialog.show();
    auto* box = dialog.findChild<QLineEdit*>("Txt_Search");
    auto* view = dialog.findChild<QTableView*>("View_Found");
    ASSERT_TRUE(box && view);
    QTest::keyClicks(box, "tab 7.0");
    ASSERT_EQ(dialog.found().rowCount(), 1);
    EXPECT_EQ(dialog.found().cell(0, 0), wanted);
    view->setFocus();
    QTest::keyClick(view, Qt::Key_Return);

    EXPECT_FALSE(dialog.isVisible());
    EXPECT_TRUE(messages.isEmpty()) << messages.join('\n').toStdString();
    EXPECT_EQ(browser.PanelActive, Panel_Devices);
    EXPECT_EQ(browser.ListBox_MakerNames.selectedText(), "Samsung");
    const ButtonStrip& devices = browser.strips[Panel_Devices];
    ASSERT_GE(devices.checkedButton(), 0);
    EXPECT_EQ(devices.buttons.at(devices.checkedButton()).caption, "Galaxy Tab");
    EXPECT_EQ(catalogue.Cmd_OutputPreset.selectedText(), wanted);
    EXPECT_EQ(settings.Txt_Maker, "Samsung");
    EXPECT_EQ(settings.Txt_Keyword, "Galaxy Tab");
    Set_MessageHandler(nullptr);
}
