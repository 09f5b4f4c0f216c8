// The Trim tab as a model, against a fake player that records what it is asked. The usual rig is a
// 10 s clip on a 500-pixel bar at left 20: one second is 50 positions, one position 0.02 s.
#include "Trim_Mods.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <tuple>

using namespace morvane;

namespace {

constexpr std::int64_t kSec = 1000000;
constexpr int L = 20;
constexpr int kStop = TrimHost::kStopped, kPause = TrimHost::kPaused, kEnd = TrimHost::kEnded, kPlay = 3;

// Left edges of the two handles on the bar, TrimStart, TrimEnd.
using Points = std::tuple<int, int, std::int64_t, std::int64_t>;

struct FakePlayer {
    int state = kStop;
    std::int32_t flag = 2;
    QString calls; // "play, seek 2000000"
    std::int64_t lastSeek = 0;
    TrimBar* bar = nullptr; // letting events run reports the last seek as the position

    void record(const QString& call) { calls += (calls.isEmpty() ? "" : ", ") + call; }
    TrimHost host() {
        TrimHost h;
        h.playState = [this] { return state; };
        h.pressPlay = [this] { record("play"), state = state == kPlay ? kPause : kPlay; };
        h.pressStop = [this] { record("stop"), state = kStop; };
        h.seek = [this](std::int64_t t) { record(QStringLiteral("seek %1").arg(t)), lastSeek = t; };
        h.step = [this] { record("step"); };
        h.letEventsRun = [this] { bar->Position(lastSeek); };
        h.playerFlag = [this] { return flag; };
        return h;
    }
};

struct Rig {
    FakePlayer fake;
    TrimBar bar{fake.host()};
    Rig(std::int64_t start, std::int64_t end, int state = kStop) {
        fake.bar = &bar;
        fake.state = state;
        bar.BarLeft = L;
        EXPECT_TRUE(bar.Setup(10 * kSec, 500, start, end));
    }
    int left(int handle) const { return bar.TrimPoint_Image[handle].Left - L; }
    Points points() const { return {left(0), left(1), bar.TrimStart, bar.TrimEnd}; }
};

} // namespace

TEST(TrimSetup, LeastGapIsOneSecondOfTheRoundedClipLength) {
    // Clip, bar width, positions per second, -1 for nothing to trim. Under a second rounds up to one,
    // 2.5 s to even (2); a clip longer than the bar is wide has no least gap.
    const std::tuple<std::int64_t, int, int> cases[] = {
        {10 * kSec, 500, 50}, {600000, 500, 500}, {2500000, 500, 250},  {1000 * kSec, 500, 0},
        {500000, 500, -1},    {0, 500, -1},       {-3 * kSec, 500, -1}, {10 * kSec, 0, -1},
    };
    for (const auto& [clip, barMax, perSecond] : cases) {
        TrimBar bar;
        EXPECT_EQ(bar.Setup(clip, barMax, 0, clip) ? bar.BarUnitsPerSecond : -1, perSecond) << clip;
    }
}

TEST(TrimSetup, HandlesStandAtTheStoredTimesUntilTheReset) {
    // Opening never changes the stored times; the handles keep on the bar and a second apart.
    const std::tuple<std::int64_t, std::int64_t, int, int> cases[] = {
        {0, 10 * kSec, 0, 500},
        {2019999, 8 * kSec, 100, 400},  // positions are truncated
        {9750000, 10 * kSec, 450, 500}, // too near the end for a second's gap
        {6 * kSec, 6500000, 300, 350},  // shorter than a second: the end stands off
        {0, 400000, 0, 50},             // ... and never pushes the start
        {0, 12 * kSec, 0, 500},         // a stored time past the clip stays on the bar
    };
    for (const auto& [start, end, left0, left1] : cases) {
        Rig r(start, end);
        EXPECT_EQ(r.points(), Points(left0, left1, start, end));
        EXPECT_FALSE(r.bar.Dirty);
        r.bar.TrimPoint_Image[1].Left = L + 20; // as a stopped-short drag may leave it
        r.bar.Cmd_Reset0();
        EXPECT_EQ(r.points(), Points(0, 500, 0, 10 * kSec)) << start;
        EXPECT_EQ(r.bar.lbl_SelectedTime, "00:00:10");
        EXPECT_TRUE(r.bar.Dirty);
        EXPECT_EQ(r.fake.calls, "");
    }
}

TEST(TrimTimes, CurrencyTextHasFourPlacesOfTenThousandMicroseconds) {
    const std::pair<const char*, std::optional<std::int64_t>> texts[] = {
        {"0.0000", 0},       {"150.0000", 1500000}, {"123.4567", 1234567}, {"0.0099", 99},
        {"-1.0000", -10000}, {"150", 1500000},      {"0,5", 5000},         {"", {}},
        {"1.23456", {}},     {"abc", {}},           {"1.2.3", {}},         {"-", {}},
    };
    for (const auto& [text, us] : texts) {
        EXPECT_EQ(Time_FromCurrencyText(text), us) << text;
        if (us && QString(text).contains('.')) {
            EXPECT_EQ(Time_ToCurrencyText(*us), text);
        }
    }
}

TEST(TrimTimes, CaptionsAndTags) {
    // Start, end; selected caption and tag, start and end captions, end tag.
    const std::tuple<std::int64_t, std::int64_t, QStringList> cases[] = {
        {0, 2500000, {"00:00:02", "2.50", "00:00:00", "00:00:02", "250.0000"}}, // ties to even
        {0, 3500000, {"00:00:04", "3.50", "00:00:00", "00:00:04", "350.0000"}},
        {3725 * kSec, 3725600000, {"00:00:01", "0.60", "01:02:05", "01:02:06", "372560.0000"}},
    };
    for (const auto& [start, end, texts] : cases) {
        TrimBar bar;
        ASSERT_TRUE(bar.Setup(3 * 3600 * kSec, 500, start, end));
        EXPECT_EQ((QStringList{bar.lbl_SelectedTime, bar.lbl_SelectedTimeTag, bar.Txt_TrimStartTime,
                               bar.Txt_TrimEndTime, bar.Txt_TrimEndTimeTag}),
                  texts);
    }
    Rig r(2 * kSec, 8 * kSec); // the range lies between the handles' facing edges
    EXPECT_EQ(r.bar.Trim_Range.Left, L + 100 + TrimBar::kHandleWidth);
    EXPECT_EQ(r.bar.Trim_Range.Width, 300 - TrimBar::kHandleWidth);
}

TEST(TrimSeek, BarPositionsSeekExactTimesAndPlayerTimesOnlyMoveTheBar) {
    const std::tuple<std::int64_t, int, int, std::int64_t> cases[] = {
        {10 * kSec, 500, 250, 5 * kSec}, {1000001, 2, 1, 500000}, // ties go to even
        {1000003, 2, 1, 500002},         {3 * kSec, 7, 3, 1285714}, {36000 * kSec, 999, 333, 12000 * kSec},
        {10 * kSec, 500, -1, 0}, // no time before the clip
    };
    for (const auto& [clip, barMax, position, time] : cases) {
        FakePlayer fake;
        TrimBar bar(fake.host());
        ASSERT_TRUE(bar.Setup(clip, barMax, 0, clip));
        bar.Timer_PlaySelected = true;
        bar.Seek_Preview(position);
        EXPECT_EQ(fake.calls, QStringLiteral("seek %1").arg(time)) << clip;
        EXPECT_FALSE(bar.Timer_PlaySelected);
    }
    // The program's own moves do not seek; the player's times truncate, and 0 leaves the bar.
    Rig r(0, 10 * kSec);
    r.bar.BarGuard = true;
    r.bar.Seek_Preview(100);
    r.bar.Timer_PlaySelected = true;
    for (const auto& [time, value] :
         {std::pair<std::int64_t, int>{5019999, 250}, {20000, 1}, {0, 1}, {11 * kSec, 500}}) {
        r.bar.Position(time);
        EXPECT_EQ(r.bar.BarValue, value) << time;
    }
    EXPECT_EQ(r.bar.lbl_PlayTime, "00:00:11");
    EXPECT_EQ(r.fake.calls, "");
    EXPECT_TRUE(r.bar.Timer_PlaySelected);
}

TEST(TrimSetPoint, ButtonsSetAPointAtTheBarPushingTheOtherHandle) {
    // The user moves the bar (a seek), then: 0 start here, 1 end here, 3 and 4 end a frame on or back.
    struct Case {
        int state, value, button;
        const char* calls;
        Points after;
        std::pair<int, int> tags;
    } cases[] = {
        {kStop, 200, 0, "play", {200, 400, 4 * kSec, 8 * kSec}, {200, 400}},
        // A second short of the end pushes the end all the way to the clip's end.
        {kEnd, 350, 0, "play", {350, 500, 7 * kSec, 10 * kSec}, {350, 500}},
        {kPause, 480, 0, "", {450, 500, 9600000, 10 * kSec}, {480, 500}},
        {kPlay, 300, 1, "", {100, 300, 2 * kSec, 6 * kSec}, {100, 300}},
        {kPlay, 149, 1, "", {0, 149, 0, 2980000}, {0, 149}},
        {kPlay, 20, 1, "", {0, 50, 0, 20000}, {0, 20}}, // within the first second: one position's time
        {kPlay, 300, 3, "step", {100, 300, 2 * kSec, 6 * kSec}, {100, 300}},
        {kStop, 300, 3, "seek 2000000, step, play", {100, 300, 2 * kSec, 6 * kSec}, {100, 300}},
        {kPlay, 300, 4, "seek 5980000", {100, 300, 2 * kSec, 5980000}, {100, 300}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "button " << c.button << " at " << c.value);
        Rig r(2 * kSec, 8 * kSec, c.state);
        r.bar.ProgressBar_Play_Change(c.value);
        r.fake.calls.clear();
        r.bar.Cmd_Trim_Click(c.button);
        EXPECT_EQ(r.fake.calls, c.calls);
        EXPECT_EQ(r.points(), c.after);
        EXPECT_EQ(std::pair(r.bar.TrimPoint_Image[0].Tag.toInt(), r.bar.TrimPoint_Image[1].Tag.toInt()),
                  c.tags);
        EXPECT_TRUE(r.bar.Dirty);
    }
}

TEST(TrimDrag, StopsASecondShortOfTheOtherHandleAndTheReleasePausesUnlessResumed) {
    // The times stay; the release pauses again unless the player was resumed (1) or opening (-1).
    const std::tuple<int, int, std::int32_t, int, int, const char*> cases[] = {
        {0, 100, 2, 200, 400, "seek 2000000, seek 4000000, seek 4000000, play"},
        {0, -500, -1, 0, 400, "seek 2000000, seek 0, seek 0"},
        {0, 500, 1, 350, 400, "seek 2000000, seek 7000000"}, // stopped short: no seek on the move
        {1, -500, 0, 100, 150, "seek 8000000, seek 3000000, play"},
        {1, 500, 2, 100, 500, "seek 8000000, seek 10000000, seek 10000000, play"},
    };
    for (const auto& [handle, dx, flag, left0, left1, calls] : cases) {
        SCOPED_TRACE(testing::Message() << "handle " << handle << " by " << dx);
        Rig r(2 * kSec, 8 * kSec, kPlay);
        r.fake.flag = flag;
        r.bar.TrimPoint_MouseDown(handle);
        r.bar.TrimPoint_MouseMove(handle, dx);
        r.bar.TrimPoint_MouseUp(handle);
        EXPECT_EQ(r.fake.calls, calls);
        EXPECT_EQ(r.points(), Points(left0, left1, 2 * kSec, 8 * kSec));
        EXPECT_TRUE(r.bar.Dirty);
    }
}

TEST(TrimStep, StepsWithinTheirBounds) {
    // Side, button (0 later, 1 earlier), start, end; the stepped time (-1 refused), that handle's left.
    const std::tuple<bool, int, std::int64_t, std::int64_t, std::int64_t, int> cases[] = {
        {true, 0, 2 * kSec, 8 * kSec, 2100000, 105},
        {true, 1, 2 * kSec, 8 * kSec, 1900000, 95},
        {true, 0, 7900000, 8 * kSec, 8 * kSec, 395}, // the time reaches the end, the handle stops short
        {true, 0, 7950000, 8 * kSec, -1, 397},
        {true, 0, 8 * kSec, 8 * kSec, -1, 400},
        {true, 1, 100000, 8 * kSec, 0, 0},
        {true, 1, 50000, 8 * kSec, -1, 2},
        {false, 0, 2 * kSec, 8 * kSec, 9 * kSec, 450},
        {false, 0, 2 * kSec, 9 * kSec, 10 * kSec, 500},
        {false, 0, 2 * kSec, 9500000, -1, 475},
        {false, 1, 2 * kSec, 3 * kSec, 2 * kSec, 150},
        {false, 1, 2 * kSec, 2500000, -1, 150},
    };
    for (const auto& [startSide, index, start, end, result, left] : cases) {
        SCOPED_TRACE(testing::Message() << startSide << " " << index << " " << start << " " << end);
        Rig r(start, end);
        r.bar.Timer_PlaySelected = true;
        startSide ? r.bar.Cmd_TrimStartTime_Click(index) : r.bar.Cmd_TrimEndTime_Click(index);
        const bool moved = result >= 0;
        EXPECT_EQ(r.bar.TrimStart, startSide && moved ? result : start);
        EXPECT_EQ(r.bar.TrimEnd, !startSide && moved ? result : end);
        EXPECT_EQ(r.left(startSide ? 0 : 1), left);
        EXPECT_EQ(r.fake.calls, moved ? QStringLiteral("play, seek %1").arg(result) : "");
        EXPECT_EQ(r.bar.Dirty, moved);
        EXPECT_EQ(r.bar.Timer_PlaySelected, !moved);
    }
}

TEST(TrimPlay, PlaysTheSelectionFromTheStartHandleAndPausesAtItsEnd) {
    const std::tuple<int, std::int64_t, const char*> cases[] = {
        {kStop, 0, "seek 2000000"},
        {kPause, 3999999, "seek 2000000, play"},
        // Running: restarted and paused, so that the play begins at the start handle.
        {kPlay, 3 * kSec, "stop, play, play, seek 2000000, play"},
        // At the end the player has ended: a stop and a start first; then the tick pauses.
        {kEnd, 4 * kSec, "stop, play, stop, play, play, seek 2000000, play, play, seek 4000000"},
    };
    for (const auto& [state, position, calls] : cases) {
        Rig r(2 * kSec, 4 * kSec, state);
        r.bar.Position(position);
        r.bar.Cmd_Trim_Click(2);
        EXPECT_TRUE(r.bar.Timer_PlaySelected) << state;
        r.bar.Timer_PlaySelected_Tick();
        EXPECT_EQ(r.fake.calls, calls) << state;
        EXPECT_EQ(r.bar.Timer_PlaySelected, position < 4 * kSec) << state;
        EXPECT_EQ(r.points(), Points(100, 200, 2 * kSec, 4 * kSec));
    }
}
