// The slider: value rules, knob placement, drags and the stored form on the model; the widget driven
// by the mouse end to end.
#include "Slider_Ctrl.h"
#include "Slider_Model.h"
#include "frmSliderCtrl.h"

#include <QApplication>
#include <QLabel>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <sstream>
#include <string>

using namespace morvane;

namespace {

// Events and tip requests as one line: "Change MaxReached Tip10 Down1".
void Record(Slider_Model& m, std::string& log) {
    auto add = [&log](const std::string& word) { log += (log.empty() ? "" : " ") + word; };
    auto& e = m.Events;
    e.Click = [add] { add("Click"); };
    e.MinReached = [add] { add("MinReached"); };
    e.MaxReached = [add] { add("MaxReached"); };
    e.Change = [add] { add("Change"); };
    e.MouseDown = [add](Qt::MouseButton b) { add("Down" + std::to_string(int(b))); };
    e.MouseUp = [add](Qt::MouseButton b) { add("Up" + std::to_string(int(b))); };
    e.TipShow = [add](const QString& text, const QRect&) { add("Tip" + text.toStdString()); };
    e.TipMove = [add](const QString& text, const QRect&) { add("Tip>" + text.toStdString()); };
    e.TipHide = [add] { add("TipHide"); };
}

// The widget's signals in the same words.
void Record(Slider_Ctrl& s, std::string& log) {
    auto add = [&log](const std::string& word) { log += (log.empty() ? "" : " ") + word; };
    QObject::connect(&s, &Slider_Ctrl::Click, [add] { add("Click"); });
    QObject::connect(&s, &Slider_Ctrl::MinReached, [add] { add("MinReached"); });
    QObject::connect(&s, &Slider_Ctrl::MaxReached, [add] { add("MaxReached"); });
    QObject::connect(&s, &Slider_Ctrl::Change, [add] { add("Change"); });
    QObject::connect(&s, &Slider_Ctrl::MouseDown,
                     [add](Qt::MouseButton b) { add("Down" + std::to_string(int(b))); });
    QObject::connect(&s, &Slider_Ctrl::MouseUp,
                     [add](Qt::MouseButton b) { add("Up" + std::to_string(int(b))); });
}

// A rail of `travel` pixels for a 10-pixel knob, 20 pixels thick.
void Shape(Slider_Model& m, int orientation, int travel = 100) {
    m.setOrientation(orientation);
    const bool vertical = orientation == Slider_Model::kVertical;
    m.setControlSize(vertical ? QSize(20, travel + 10) : QSize(travel + 10, 20));
    m.setKnobSize(vertical ? QSize(20, 10) : QSize(10, 20));
}

QPoint Along(int orientation, int at) {
    return orientation == Slider_Model::kVertical ? QPoint(10, at) : QPoint(at, 10);
}

// The stored form as one line of key=value in key order, the extents first.
std::string Stored(const QVariantMap& bag) {
    std::string text;
    for (auto it = bag.cbegin(); it != bag.cend(); ++it)
        text +=
            (text.empty() ? "" : " ") + it.key().toStdString() + '=' + it.value().toString().toStdString();
    return text;
}

} // namespace

TEST(SliderModel, ValueChangesRaiseChangeThenTheEndReached) {
    // From `from` in 0..10 the range becomes min..max, moving a value left outside to the nearer end;
    // then setValue(to), refused outside the range. Knob: its left edge on a 100 px rail.
    struct Case {
        int from, min, max, to, code, after, knob;
        const char* log;
    } cases[] = {
        {0, 0, 10, 5, 0, 5, 50, "Change"},
        {0, 0, 10, 10, 0, 10, 100, "Change MaxReached"},
        {5, 0, 10, 0, 0, 0, 0, "Change MinReached"},
        {5, 0, 10, 5, 0, 5, 50, ""},
        {5, 0, 10, 11, 380, 5, 50, ""},
        {5, 0, 10, -1, 380, 5, 50, ""},
        {5, 10, 0, 10, 0, 10, 0, "Change MinReached"}, // a backward range: Min is the larger end
        {5, 10, 0, 11, 380, 5, 50, ""},
        {0, INT_MIN, INT_MAX, INT_MIN, 0, INT_MIN, 0, "Change MinReached"},
        {8, 0, 5, 11, 380, 5, 100, "Change MaxReached"},
        {2, 3, 10, 11, 380, 3, 0, "Change MinReached"},
        {5, 3, 3, 11, 380, 3, 0, "Change MaxReached MinReached"},
        {5, 0, 100, 101, 380, 5, 5, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.from << " in " << c.min << ".." << c.max << " -> " << c.to);
        Slider_Model m;
        Shape(m, Slider_Model::kHorizontal);
        ASSERT_EQ(m.setValue(c.from), 0);
        std::string log;
        Record(m, log);
        m.setRange(c.min, c.max);
        EXPECT_EQ(m.setValue(c.to), c.code);
        EXPECT_EQ(m.Value(), c.after);
        EXPECT_EQ(m.knobRect().left(), c.knob);
        EXPECT_EQ(log, c.log);
    }
}

TEST(SliderModel, KnobPlaceAndValueMapBothWaysRoundingTiesToEven) {
    // The knob placed from the value; then gripped 5 pixels in, its leading edge carried to `to`.
    struct Case {
        int orientation, min, max, value;
        QSize control, knob;
        QRect placed;
        int to, after;
    } cases[] = {
        {0, 0, 3, 2, {110, 20}, {10, 20}, {67, 0, 10, 20}, 84, 3},   // 66.7 rounds up; 2.52 too
        {0, 0, 10, 5, {110, 30}, {10, 10}, {50, 10, 10, 10}, 25, 2}, // centred across
        {1, 0, 10, 5, {20, 110}, {20, 10}, {0, 50, 20, 10}, 35, 4},
        {1, 10, 0, 7, {20, 110}, {20, 10}, {0, 30, 20, 10}, 25, 8}, // a backward range
        {0, INT_MIN, INT_MAX, 0, {110, 20}, {10, 20}, {50, 0, 10, 20}, 100, INT_MAX},
        {0, INT_MIN, INT_MAX, INT_MAX, {110, 20}, {10, 20}, {100, 0, 10, 20}, 50, 0},
        {0, 0, 10, 5, {8, 20}, {10, 20}, {0, 0, 10, 20}, 50, 5}, // no travel: nothing moves
        {0, 0, 10, 0, {110, 20}, {10, 20}, {0, 0, 10, 20}, 24, 2},
        {0, 0, 10, 0, {110, 20}, {10, 20}, {0, 0, 10, 20}, 26, 3},
        {0, -5, 5, 0, {110, 20}, {10, 20}, {50, 0, 10, 20}, 25, -2},
        {0, -5, 5, 0, {110, 20}, {10, 20}, {50, 0, 10, 20}, 15, -4},
        {0, 0, 1000, 0, {110, 20}, {10, 20}, {0, 0, 10, 20}, 33, 330},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.orientation << " " << c.min << ".." << c.max << " " << c.value);
        Slider_Model m;
        m.setOrientation(c.orientation);
        m.setRange(c.min, c.max);
        m.setValue(c.value);
        m.setControlSize(c.control);
        m.setKnobSize(c.knob);
        EXPECT_EQ(m.knobRect(), c.placed);
        const bool vertical = c.orientation == 1;
        const QPoint grip = c.placed.topLeft() + QPoint(5, 5);
        m.mousePress(grip, Qt::LeftButton);
        m.mouseMove(vertical ? QPoint(grip.x(), c.to + 5) : QPoint(c.to + 5, grip.y()));
        EXPECT_EQ(m.Value(), c.after);
        // The knob stays where the pointer put it, within the travel.
        const int travel =
            vertical ? c.control.height() - c.knob.height() : c.control.width() - c.knob.width();
        EXPECT_EQ(vertical ? m.knobRect().top() : m.knobRect().left(),
                  std::clamp(c.to, 0, std::max(travel, 0)));
    }
}

TEST(SliderModel, MouseDragsTheKnobAndRaisesItsEvents) {
    // P/R press left/right, M move, U/S release left/right, at places along a 100 px rail for 0..10.
    struct Case {
        const char* script;
        int orientation, start;
        bool tip, enabled;
        const char* log;
        int value, knobAt;
    } cases[] = {
        {"P55 M75 U75", 0, 0, true, true, "Change Tip5 Down1 Change Tip>7 Click Up1 TipHide", 7, 70},
        {"P55 M75 U75", 1, 0, true, true, "Change Tip5 Down1 Change Tip>7 Click Up1 TipHide", 7, 70},
        {"P52 M63 U63", 0, 5, true, true, "Tip5 Down1 Change Tip>6 Click Up1 TipHide", 6, 61},
        {"P55 M500 M-300 U-300", 0, 5, true, true,
         "Tip5 Down1 Change MaxReached Tip>10 Change MinReached Tip>0 Up1 TipHide", 0, 0},
        {"P200 U200", 1, 0, true, true, "Change MaxReached Tip10 Down1 Up1 TipHide", 10, 100},
        {"R55 M75 S75", 0, 0, true, true, "Down2", 0, 0},
        {"P5 U5 U5", 0, 0, true, true, "Tip0 Down1 Click Up1 TipHide Click", 0, 0},
        {"P55 M75 U75", 0, 0, false, true, "Change Down1 Change Click Up1", 7, 70},
        {"P55 M75 U75", 0, 0, true, false, "", 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.script << " orientation " << c.orientation);
        Slider_Model m;
        Shape(m, c.orientation);
        m.setValue(c.start);
        m.setShowValueTip(c.tip);
        m.setEnabled(c.enabled);
        std::string log;
        Record(m, log);
        std::istringstream script(c.script);
        char op;
        int at;
        while (script >> op >> at) {
            const QPoint pos = Along(c.orientation, at);
            if (op == 'P' || op == 'R') m.mousePress(pos, op == 'P' ? Qt::LeftButton : Qt::RightButton);
            if (op == 'U' || op == 'S') m.mouseRelease(pos, op == 'U' ? Qt::LeftButton : Qt::RightButton);
            if (op == 'M') m.mouseMove(pos);
        }
        EXPECT_EQ(log, c.log);
        EXPECT_EQ(m.Value(), c.value);
        const QRect knob = m.knobRect();
        EXPECT_EQ(c.orientation == 1 ? knob.top() : knob.left(), c.knobAt);
        EXPECT_FALSE(m.dragging() || m.tipShown());
    }
}

TEST(SliderModel, StoredFormReadsBackWithDefaultsForMissingOrUnusableEntries) {
    // Everything but the extents, as a fresh control has it.
    const std::string defaults = " backcolor=2147483663 enabled=-1 max=10 min=0 mouseicon= mousepointer=0 "
                                 "orientation=1 railimage= railstyle=0 showvaluetip=-1 sliderimage= value=0";
    Slider_Model m;
    m.setControlSize({110, 20});
    EXPECT_EQ(Stored(m.WriteProperties()), "_extentx=2910 _extenty=529" + defaults);

    // clang-format off
    const QVariantMap changed{
        {"enabled", 0}, {"backcolor", 0x00FF8000}, {"mousepointer", 99}, {"mouseicon", "img_vol_on"},
        {"max", 40}, {"min", -20}, {"value", -7}, {"orientation", 0}, {"railstyle", 1},
        {"sliderimage", "img_sliderimage2"}, {"railimage", "img_sliderrail_3.jpg"}, {"showvaluetip", 0},
        {"_extentx", 3969}, {"_extenty", 635}};
    // Out of range: the default, the value kept in the range; text booleans and signed colours read.
    const QVariantMap odd{
        {"max", "abc"}, {"value", 50}, {"orientation", 7}, {"enabled", "0"}, {"showvaluetip", "-1"},
        {"backcolor", -2147483633}, {"mousepointer", 40000}};
    // clang-format on
    m.ReadProperties(changed);
    EXPECT_EQ(Stored(m.WriteProperties()), Stored(changed));
    EXPECT_EQ(m.controlSize(), QSize(150, 24));
    m.ReadProperties({}); // no extent stored: the size stays
    EXPECT_EQ(Stored(m.WriteProperties()), "_extentx=3969 _extenty=635" + defaults);
    m.ReadProperties(odd);
    EXPECT_EQ(Stored(m.WriteProperties()), "_extentx=3969 _extenty=635 backcolor=2147483663 enabled=0 max=10 "
                                           "min=0 mouseicon= mousepointer=0 orientation=1 railimage= "
                                           "railstyle=0 showvaluetip=-1 sliderimage= value=10");
}

TEST(SliderCtrl, MouseAndKeysEndToEndWithAndWithoutTheTip) {
    for (const auto& [orientation, tip] : {std::pair{0, true}, std::pair{1, false}}) {
        SCOPED_TRACE(testing::Message() << "orientation " << orientation << " tip " << tip);
        std::string log; // before the control, which may still signal while it goes
        Slider_Ctrl s;
        ASSERT_TRUE(s.setOrientation(orientation));
        s.setShowValueTip(tip);
        const bool vertical = orientation == 1;
        QPixmap knob(vertical ? QSize(20, 10) : QSize(10, 20));
        knob.fill(Qt::red);
        s.setSliderImage(knob);
        s.resize(vertical ? QSize(20, 110) : QSize(110, 20));
        s.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&s));
        Record(s, log);
        const auto tipText = [&s] {
            const frmSliderCtrl* w = s.tipWindow();
            return w && w->isVisible() ? w->lblTip()->text().toStdString() : "";
        };
        QTest::mousePress(&s, Qt::LeftButton, {}, Along(orientation, 55));
        EXPECT_EQ(tipText(), tip ? "5" : "");
        QTest::mouseMove(&s, Along(orientation, 300));
        EXPECT_EQ(tipText(), tip ? "10" : "");
        QTest::mouseRelease(&s, Qt::LeftButton, {}, Along(orientation, 300)); // outside: no Click
        EXPECT_EQ(s.tipWindow(), nullptr);
        EXPECT_FALSE(s.setValue(11));
        QTest::keyClick(&s, Qt::Key_Up); // keys take the same set path
        EXPECT_EQ(s.Value(), 9);
        EXPECT_EQ(log, "Change Down1 Change MaxReached Up1 Change");
    }
}

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
