// The slider: value rules, knob placement, drags and the stored form on the model; the widget driven
// by the mouse end to end.
#include "Slider_Ctrl.h"
#include "Slider_Model.h"
#include "frmSliderCtrl.h"

#include <QApplication>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

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

// The text of the visible tip window, "" without one.
std::string TipText(const Slider_Ctrl& s) {
    const frmSliderCtrl* tip = s.tipWindow();
    return tip && tip->isVisible() ? tip->lblTip()->text().toStdString() : "";
}

} // namespace

TEST(SliderModel, SetValueRaisesChangeThenTheEndReachedOrRefuses) {
    struct Case {
        int min, max, from, to, code, after;
        const char* log;
    } cases[] = {
        {0, 10, 0, 5, 0, 5, "Change"},
        {0, 10, 0, 10, 0, 10, "Change MaxReached"},
        {0, 10, 5, 0, 0, 0, "Change MinReached"},
        {0, 10, 5, 5, 0, 5, ""},
        {0, 10, 5, 11, 380, 5, ""},
        {0, 10, 5, -1, 380, 5, ""},
        {10, 0, 5, 10, 0, 10, "Change MinReached"}, // a backward range: Min is the larger end
        {10, 0, 5, 11, 380, 5, ""},
        {INT_MIN, INT_MAX, 0, INT_MIN, 0, INT_MIN, "Change MinReached"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.min << ".." << c.max << " " << c.from << "->" << c.to);
        Slider_Model m;
        Shape(m, Slider_Model::kHorizontal);
        m.setRange(c.min, c.max);
        ASSERT_EQ(m.setValue(c.from), 0);
        const QRect knob = m.knobRect();
        std::string log;
        Record(m, log);
        EXPECT_EQ(m.setValue(c.to), c.code);
        EXPECT_EQ(m.Value(), c.after);
        EXPECT_EQ(log, c.log);
        EXPECT_EQ(m.knobRect() == knob, c.after == c.from);
    }
}

TEST(SliderModel, NewEndsMoveAValueLeftOutside) {
    struct Case {
        int value, min, max, after;
        const char* log;
    } cases[] = {
        {8, 0, 5, 5, "Change MaxReached"},
        {2, 3, 10, 3, "Change MinReached"},
        {5, 3, 3, 3, "Change MaxReached MinReached"},
        {5, 10, 0, 5, ""},
        {5, 0, 100, 5, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.log);
        Slider_Model m;
        Shape(m, Slider_Model::kHorizontal);
        m.setValue(c.value);
        std::string log;
        Record(m, log);
        m.setRange(c.min, c.max);
        EXPECT_EQ(m.Value(), c.after);
        EXPECT_EQ(log, c.log);
        EXPECT_EQ(m.knobRect().left(), m.knobOffsetOf(c.after));
    }
}

TEST(SliderModel, KnobIsPlacedFromTheValue) {
    struct Case {
        int orientation, min, max, value;
        QSize control, knob;
        QRect expected;
    } cases[] = {
        {0, 0, 10, 0, {110, 20}, {10, 20}, {0, 0, 10, 20}},
        {0, 0, 10, 5, {110, 20}, {10, 20}, {50, 0, 10, 20}},
        {0, 0, 10, 10, {110, 20}, {10, 20}, {100, 0, 10, 20}},
        {0, 0, 3, 2, {110, 20}, {10, 20}, {67, 0, 10, 20}},   // 66.7 rounds up
        {0, 0, 10, 5, {110, 30}, {10, 10}, {50, 10, 10, 10}}, // centred across
        {1, 0, 10, 5, {20, 110}, {20, 10}, {0, 50, 20, 10}},
        {1, 10, 0, 7, {20, 110}, {20, 10}, {0, 30, 20, 10}}, // backward range
        {0, 3, 3, 3, {110, 20}, {10, 20}, {0, 0, 10, 20}},   // Min == Max: the start
        {0, INT_MIN, INT_MAX, 0, {110, 20}, {10, 20}, {50, 0, 10, 20}},
        {0, INT_MIN, INT_MAX, INT_MAX, {110, 20}, {10, 20}, {100, 0, 10, 20}},
        {0, 0, 10, 5, {8, 20}, {10, 20}, {0, 0, 10, 20}}, // rail shorter than the knob
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.orientation << " " << c.min << ".." << c.max << " " << c.value);
        Slider_Model m;
        m.setOrientation(c.orientation);
        m.setRange(c.min, c.max);
        m.setValue(c.value);
        m.setControlSize(c.control);
        m.setKnobSize(c.knob);
        EXPECT_EQ(m.knobRect(), c.expected);
    }
}

TEST(SliderModel, DragRoundsThePlaceBackToTheNearestValueTiesToEven) {
    struct Case {
        int min, max, travel, start, offset, value;
    } cases[] = {
        {0, 10, 100, 0, 25, 2},
        {0, 10, 100, 0, 35, 4},
        {0, 10, 100, 0, 24, 2},
        {0, 10, 100, 0, 26, 3},
        {-5, 5, 100, 0, 25, -2},
        {-5, 5, 100, 0, 15, -4},
        {10, 0, 100, 5, 25, 8},
        {0, 1000, 100, 0, 33, 330},
        {INT_MIN, INT_MAX, 100, 0, 50, 0},
        {INT_MIN, INT_MAX, 100, 0, 100, INT_MAX},
        {0, 10, 0, 4, 50, 4}, // no travel: the value stays
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.min << ".." << c.max << " at " << c.offset);
        Slider_Model m;
        Shape(m, Slider_Model::kHorizontal, c.travel);
        m.setRange(c.min, c.max);
        m.setValue(c.start);
        // Grip the knob 5 pixels in, then carry it to the offset.
        const QPoint grip = m.knobRect().topLeft() + QPoint(5, 5);
        m.mousePress(grip, Qt::LeftButton);
        m.mouseMove(QPoint(c.offset + 5, 5));
        EXPECT_EQ(m.Value(), c.value);
        EXPECT_EQ(m.knobRect().left(), std::min(c.offset, c.travel)); // where the pointer put it
    }
}

TEST(SliderModel, MouseDragsTheKnobAndRaisesItsEvents) {
    // Scripts: P/R press left/right, M move, U/S release left/right, each at a place along the rail
    // of 100 pixels (range 0..10, knob 10 pixels).
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

TEST(SliderModel, StoredPropertiesKeepDefaultsAndRoundTrip) {
    Slider_Model fresh;
    fresh.setControlSize({110, 20});
    const QVariantMap defaults = fresh.WriteProperties();
    const std::pair<const char*, const char*> expected[] = {
        {"enabled", "-1"},     {"backcolor", "2147483663"},
        {"mousepointer", "0"}, {"mouseicon", ""},
        {"max", "10"},         {"min", "0"},
        {"value", "0"},        {"orientation", "1"},
        {"railstyle", "0"},    {"sliderimage", ""},
        {"railimage", ""},     {"showvaluetip", "-1"},
        {"_extentx", "2910"},  {"_extenty", "529"},
    };
    EXPECT_EQ(defaults.size(), int(std::size(expected)));
    for (const auto& [key, text] : expected)
        EXPECT_EQ(defaults.value(key).toString().toStdString(), text) << key;

    Slider_Model changed;
    changed.setEnabled(false);
    changed.setBackColor(0x00FF8000);
    changed.setMousePointer(99);
    changed.setMouseIcon("img_vol_on");
    changed.setRange(-20, 40);
    changed.setValue(-7);
    changed.setOrientation(0);
    changed.setRailStyle(1);
    changed.setSliderImage("img_sliderimage2");
    changed.setRailImage("img_sliderrail_3.jpg");
    changed.setShowValueTip(false);
    changed.setControlSize({150, 24});
    Slider_Model read;
    read.ReadProperties(changed.WriteProperties());
    EXPECT_EQ(read.WriteProperties(), changed.WriteProperties());
    EXPECT_EQ(read.controlSize(), QSize(150, 24));

    // Missing or unusable entries take the defaults; text booleans and signed colours read as stored.
    read.ReadProperties({{"max", "abc"},
                         {"value", 50},
                         {"orientation", 7},
                         {"enabled", "0"},
                         {"showvaluetip", "-1"},
                         {"backcolor", -2147483633},
                         {"mousepointer", 40000}});
    const QVariantMap odd = read.WriteProperties();
    EXPECT_EQ(odd.value("max"), 10);
    EXPECT_EQ(odd.value("value"), 10); // kept inside the range
    EXPECT_EQ(odd.value("orientation"), 1);
    EXPECT_EQ(odd.value("enabled"), 0);
    EXPECT_EQ(odd.value("showvaluetip"), -1);
    EXPECT_EQ(odd.value("backcolor").toUInt(), Slider_Model::kFaceColour);
    EXPECT_EQ(odd.value("mousepointer"), 0);
    EXPECT_EQ(odd.value("railimage"), "");
    EXPECT_EQ(read.controlSize(), QSize(150, 24)); // no extent stored: the size stays
}

TEST(SliderCtrl, MouseDragEndToEndWithAndWithoutTheTip) {
    struct Case {
        int orientation;
        bool tip;
    } cases[] = {{0, true}, {1, false}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "orientation " << c.orientation << " tip " << c.tip);
        Slider_Ctrl s;
        ASSERT_TRUE(s.setOrientation(c.orientation));
        s.setShowValueTip(c.tip);
        const bool vertical = c.orientation == 1;
        QPixmap knob(vertical ? QSize(20, 10) : QSize(10, 20));
        knob.fill(Qt::red);
        s.setSliderImage(knob);
        s.resize(vertical ? QSize(20, 110) : QSize(110, 20));
        s.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&s));
        QSignalSpy change(&s, &Slider_Ctrl::Change), max(&s, &Slider_Ctrl::MaxReached),
            click(&s, &Slider_Ctrl::Click), down(&s, &Slider_Ctrl::MouseDown), up(&s, &Slider_Ctrl::MouseUp);

        QTest::mousePress(&s, Qt::LeftButton, {}, Along(c.orientation, 55));
        EXPECT_EQ(s.Value(), 5);
        EXPECT_EQ(change.size(), 1);
        EXPECT_EQ(down.size(), 1);
        EXPECT_EQ(TipText(s), c.tip ? "5" : "");

        QTest::mouseMove(&s, Along(c.orientation, 300));
        EXPECT_EQ(s.Value(), 10);
        EXPECT_EQ(max.size(), 1);
        EXPECT_EQ(TipText(s), c.tip ? "10" : "");

        QTest::mouseRelease(&s, Qt::LeftButton, {}, Along(c.orientation, 300));
        EXPECT_EQ(click.size(), 0); // released outside
        ASSERT_EQ(up.size(), 1);
        EXPECT_EQ(up.at(0).at(0).value<Qt::MouseButton>(), Qt::LeftButton);
        EXPECT_EQ(s.tipWindow(), nullptr); // unloaded

        EXPECT_FALSE(s.setValue(11));
        QTest::keyClick(&s, Qt::Key_Up); // keys take the same set path
        EXPECT_EQ(s.Value(), 9);
        EXPECT_EQ(change.size(), 3);
    }
}

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
