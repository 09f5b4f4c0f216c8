// The popups: each use's properties, effect words and delay texts, placing on small and large screens,
// the done note's link, closing by time and early, and the uses showing without their files.
#include "../core/WaitFor.h"

#include "Globals.h"
#include "PopupWindow.h"
#include "Skin_Theme.h"

#include <QFile>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <array>

using namespace morvane;

namespace {

const QRect kScreen(0, 0, 1920, 1080);

void click(QWidget& w, QPoint at) {
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, at, w.mapToGlobal(at), Qt::LeftButton,
                          type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&w, &event);
    }
}

} // namespace

TEST(Popup, EachUseHasItsProperties) {
    const struct {
        const char* use;
        PopupProps props;
        int expected[4]; // transparency, show delay, animate delay, animation
        QRect place;
    } cases[] = {
        {"splash", splashProps(kScreen, "/t/tmp0001.png"), {200, 5000, 0, Popup_None}, {670, 338, 579, 403}},
        {"hint", tagHintProps({100, 50, 1280, 800}, kScreen, {}), {200, 5000, 250, 1}, {112, 138, 360, 112}},
        {"overlay",
         tagPopupProps({}, {640, 480}, kScreen, "5000", " 250 ", "FADE"),
         {255, 5000, 250, 1},
         {640, 300, 640, 480}},
        {"done", donePopupProps(250, 5000, 255, kScreen), {255, 5000, 250, 2}, {1638, 968, 270, 100}},
        {"done 300", donePopupProps(250, 5000, 300, kScreen), {255, 5000, 250, 2}, {1638, 968, 270, 100}},
    };
    for (const auto& c : cases) {
        const PopupProps& p = c.props;
        EXPECT_EQ((std::array{p.Transparency, p.ShowDelay, p.AnimateDelay, p.Animation}),
                  (std::array{c.expected[0], c.expected[1], c.expected[2], c.expected[3]}))
            << c.use;
        EXPECT_EQ(QRect(p.Position, p.Size), c.place) << c.use;
    }
}

TEST(Popup, EffectWordsIgnoreCaseAndUnknownKeepsTheLast) {
    const struct {
        int previous;
        const char* word;
        int expected;
    } cases[] = {{3, "none", 0},   {0, "fade", 1}, {0, "Slide", 2}, {0, "UNFOLD", 3},
                 {2, " fade ", 1}, {2, "zoom", 2}, {3, "", 3},      {1, "fades", 1}};
    for (const auto& c : cases)
        EXPECT_EQ(effectFromWord(c.previous, c.word), c.expected) << c.word;
    EXPECT_EQ(tagPopupProps(splashProps(kScreen, {}), {10, 10}, kScreen, "1", "1", "spin").Animation, 0);
}

TEST(Popup, DelayTextsClampToTenMinutes) {
    const struct {
        const char* text;
        int expected;
    } cases[] = {{"5000", 5000}, {" 250 ", 250}, {"+7", 7},          {"", 0},
                 {"   ", 0},     {"-5", 0},      {"600001", 600000}, {"99999999999999999999999", 600000},
                 {"abc", 0},     {"12ms", 0},    {"2.5", 0},         {"0x10", 0}};
    for (const auto& c : cases)
        EXPECT_EQ(clampDelay(c.text), c.expected) << c.text;
}

TEST(Popup, PlacesStayOnSmallAndLargeScreens) {
    const QRect screens[] = {
        {0, 0, 800, 600}, {1920, 0, 1366, 768}, {0, 0, 3840, 2160}, {-1280, 200, 1280, 1024}};
    for (const QRect& s : screens) {
        // Main windows anywhere, even half off the screen.
        for (const QPoint main :
             {s.topLeft(), s.bottomRight() - QPoint(200, 100), s.topLeft() - QPoint(500, 300)}) {
            const PopupProps p = tagHintProps(QRect(main, QSize(1280, 800)), s, {});
            EXPECT_TRUE(s.contains(QRect(p.Position, p.Size))) << s.x() << "," << main.x();
        }
        for (const QSize image : {QSize(320, 240), QSize(4000, 3000), QSize(200, 5000)}) {
            const PopupProps p = tagPopupProps({}, image, s, "1", "1", "none");
            EXPECT_TRUE(s.contains(QRect(p.Position, p.Size))) << s.width() << "x" << image.width();
            EXPECT_NEAR(double(p.Size.width()) / p.Size.height(), double(image.width()) / image.height(),
                        0.02);
            EXPECT_TRUE(p.Size == image || p.Size.width() == s.width() || p.Size.height() == s.height());
        }
        const PopupProps done = donePopupProps(250, 5000, 255, s);
        EXPECT_TRUE(s.contains(QRect(done.Position, done.Size)));
        EXPECT_GT(done.Position.x() + done.Size.width(), s.right() - 20); // the bottom-right corner
        EXPECT_GT(done.Position.y() + done.Size.height(), s.bottom() - 20);
        EXPECT_TRUE(s.contains(QRect(splashProps(s, {}).Position, splashSize())));
    }
    EXPECT_TRUE(tagPopupProps({}, {}, kScreen, "1", "1", "none").Size.isEmpty());
}

TEST(Popup, DoneNoteShowsItsItemsAndItsLinkReportsSix) {
    PopupWindow popup;
    QSignalSpy links(&popup, &PopupWindow::linkActivated);
    Show_DonePopup(popup, 0, 5000, 255);
    ASSERT_TRUE(popup.isShowing());
    const std::vector<PopupItem>& items = popup.props().Items;
    ASSERT_EQ(items.size(), 3u);
    EXPECT_EQ(items[0].Text, "Conversion is completed !");
    EXPECT_EQ(items[0].rect(), QRect(80, 35, 170, 20));
    EXPECT_EQ(items[1].Icon, 10);
    EXPECT_EQ(items[1].IconSize, QSize(48, 48));
    EXPECT_EQ(items[2].Text, "Open output folder...");
    EXPECT_EQ(items[2].Color, QColor(Qt::blue));
    EXPECT_EQ(items[2].Id, kOpenOutputLink);
    EXPECT_FALSE(popup.grab().isNull());

    click(popup, {100, 75});
    ASSERT_EQ(links.count(), 1);
    EXPECT_EQ(links.first().first().toInt(), 6);
    EXPECT_TRUE(popup.isShowing()); // the link leaves the note up
    click(popup, {20, 90});
    EXPECT_EQ(popup.state(), Popup_Hidden);
    EXPECT_EQ(links.count(), 1);
}

TEST(Popup, ClosesByTimeWithEveryAnimationAndEarlyOnRequest) {
    for (const int animation : {Popup_None, Popup_Fade, Popup_Slide, Popup_Unfold}) {
        PopupWindow popup;
        QSignalSpy closed(&popup, &PopupWindow::closed);
        PopupProps p = tagPopupProps({}, {40, 30}, kScreen, "50", "10", {});
        p.Animation = animation;
        p.Image = QImage(40, 30, QImage::Format_RGB32);
        p.Image.fill(Qt::darkCyan);
        popup.showPopup(p);
        EXPECT_EQ(popup.state(), Popup_Showing) << animation;
        EXPECT_TRUE(popup.isVisible());
        EXPECT_TRUE(waitFor([&] { return !popup.isVisible(); }, 1000)) << animation;
        EXPECT_EQ(popup.state(), Popup_Hidden);
        EXPECT_EQ(closed.count(), 1);
        EXPECT_DOUBLE_EQ(popup.progress(), animation == Popup_None ? 1.0 : 0.0);

        p.ShowDelay = 60000;
        popup.showPopup(p);
        popup.closePopup();
        EXPECT_FALSE(popup.isVisible());
        EXPECT_EQ(closed.count(), 2);
        popup.showPopup(p);
        popup.close(); // the owner's plain close counts too
        EXPECT_EQ(popup.state(), Popup_Hidden);
    }
}

TEST(Popup, OverlayOfABadImageShowsNothingAndTheOthersNeedNoFiles) {
    QTemporaryDir dir;
    QFile junk(dir.filePath("junk.png"));
    ASSERT_TRUE(junk.open(QIODevice::WriteOnly) && junk.write("not an image") > 0);
    junk.close();
    PopupWindow popup;
    for (const QString& path : {dir.filePath("missing.png"), junk.fileName(), dir.path(), QString()}) {
        EXPECT_FALSE(Show_TagPopup(popup, path, "5000", "250", "fade")) << path.toStdString();
        EXPECT_FALSE(popup.isShowing());
    }
    const QString image = dir.filePath("big.png");
    QImage wide(5000, 100, QImage::Format_RGB32);
    wide.fill(Qt::darkCyan);
    ASSERT_TRUE(wide.save(image));
    EXPECT_TRUE(Show_TagPopup(popup, image, "x", "-1", "unfold"));
    EXPECT_TRUE(popup.isShowing());
    EXPECT_EQ(popup.windowOpacity(), 1.0);

    // The splash goes through the temporary folder, or from memory when it cannot be written.
    for (const QString& temp : {dir.path() + "/", dir.path() + "/none/"}) {
        Folder_Temp = temp;
        PopupWindow splash;
        Show_Splash(splash);
        EXPECT_TRUE(splash.isShowing());
        EXPECT_EQ(splash.size(), QSize(579, 403));
        EXPECT_NEAR(splash.windowOpacity(), 200 / 255.0, 1e-6);
        EXPECT_EQ(QFile::exists(temp + "tmp0001.png"), temp == dir.path() + "/");
    }
    Folder_Temp.clear();
    Folder_Skin = dir.path() + "/";
    PopupWindow hint;
    Show_TagHint(hint, {0, 0, 1280, 800});
    EXPECT_TRUE(hint.isShowing());
    EXPECT_EQ(hint.size(), QSize(360, 112));
    Folder_Skin.clear();
}
