// The preset search window as a user drives it: typing, clearing, choosing a hit by every road, leaving
// without a choice. The main window's suite takes a chosen device preset on to the real browser.

#include "Skin_Icons.h"
#include "frmSearch.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

using namespace morvane;

namespace {

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
                                                 calls << n << m << k;
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

    CatalogueTable presets;
    std::unique_ptr<frmSearch> dialog;
    QStringList calls; // name, maker and keyword of each hit passed on
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
    EXPECT_TRUE(calls.isEmpty());
    // Typing again brings the other picture back.
    QTest::keyClicks(box, "g");
    EXPECT_TRUE(showsPicture("img_search_remove"));
}

// Every road out of the window: the hit passed on, trimmed, closes it accepted; the others leave without.
TEST_F(SearchWindow, EveryRoadOutPassesTheTrimmedHitOrNothing) {
    const auto click = [](QWidget* widget) { QTest::mouseClick(widget, Qt::LeftButton); };
    const auto key = [](QWidget* widget, Qt::Key pressed) {
        widget->setFocus();
        QTest::keyClick(widget, pressed);
    };
    const QStringList iphone = {"iPhone 15", "Apple", "iPhone"};
    const struct {
        const char* query;
        std::function<void()> act;
        QStringList passed; // name, maker, keyword; empty when nothing may be passed on
    } roads[] = {
        {"iphone", [&] { click(ok); }, iphone},
        {"iphone", [&] { key(box, Qt::Key_Return); }, iphone},
        {"iphone", [&] { key(view, Qt::Key_Enter); }, iphone},
        // The arrows in the box walk the hits; Enter then takes the one walked to.
        {"sd",
         [&] {
             QTest::keyClick(box, Qt::Key_Down);
             EXPECT_EQ(selectedRow(), 1);
             EXPECT_EQ(box->text(), "sd");
             QTest::keyClick(box, Qt::Key_Return);
         },
         {"AVI SD", "VideoFormat", "AVI"}},
        // One click only selects. A real double click starts with a press and release; the test
        // library sends only the last event.
        {"mp4",
         [&] {
             const QPoint second = view->visualRect(view->model()->index(1, 0)).center();
             QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, second);
             EXPECT_TRUE(dialog->isVisible());
             QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, second);
         },
         {"MP4 HD", "VideoFormat", "MP4"}},
        // A user preset stands among the others; a refusal by the browser still closes the window.
        {"own",
         [&] {
             answer = false;
             click(ok);
         },
         {"My own", "VideoFormat", "MP4"}},
        // With the selection taken away Enter and Select have nothing to pass on.
        {"mp4",
         [&] {
             view->clearSelection();
             key(view, Qt::Key_Return);
             click(ok);
             EXPECT_TRUE(dialog->isVisible());
             key(box, Qt::Key_Escape);
         },
         {}},
        {"mp4", [&] { key(view, Qt::Key_Escape); }, {}},
        {"mp4", [&] { click(close); }, {}},
    };
    for (const auto& road : roads) {
        open(road.query);
        road.act();
        EXPECT_FALSE(dialog->isVisible());
        EXPECT_EQ(dialog->result(), road.passed.isEmpty() ? QDialog::Rejected : QDialog::Accepted);
        EXPECT_EQ(calls, road.passed);
    }
}
