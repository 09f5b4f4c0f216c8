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
constexpr int kPlaying = 3;

// Left edges of the two handles on the bar, TrimStart, TrimEnd.
using Points = std::tuple<int, int, std::int64_t, std::int64_t>;

struct FakePlayer {
    int state = TrimHost::kStopped;
    std::int32_t flag = 2;
    QStringList calls;
    std::int64_t lastSeek = 0;
    TrimBar* bar = nullptr; // letting events run reports the last seek as the position

    TrimHost host() {
        TrimHost h;
        h.playState = [this] { return state; };
        h.pressPlay = [this] { calls << "play", state = state == kPlaying ? TrimHost::kPaused : kPlaying; };
        h.pressStop = [this] { calls << "stop", state = TrimHost::kStopped; };
        h.seek = [this](std::int64_t t) { calls << QStringLiteral("seek %1").arg(t), lastSeek = t; };
        h.step = [this] { calls << "step"; };
        h.letEventsRun = [this] { bar->Position(lastSeek); };
        h.playerFlag = [this] { return flag; };
        return h;
    }
};

struct Rig {
    FakePlayer fake;
    TrimBar bar{fake.host()};
    Rig(std::int64_t start, std::int64_t end, int state = TrimHost::kStopped) {
        fake.bar = &bar;
        fake.state = state;
        bar.BarLeft = L;
        EXPECT_TRUE(bar.Setup(10 * kSec, 500, start, end));
    }
    int left(int handle) const { return bar.TrimPoint_Image[handle].Left - L; }
    Points points() const { return {left(0), left(1), bar.TrimStart, bar.TrimEnd}; }
};

QString seek(std::int64_t time) {
    return QStringLiteral("seek %1").arg(time);
}

} // namespace

TEST(TrimSetup, ScaleComesFromTheRoundedClipLength) {
    const std::tuple<std::int64_t, int, int, double> good[] = {
        {10 * kSec, 500, 50, 2.0},
        {600000, 500, 500, 0.12},    // shorter than a second rounds to one
        {2500000, 500, 250, 0.5},    // 2.5 s rounds to even: 2
        {1000 * kSec, 500, 0, 200.0} // longer than the bar is wide: no least gap
    };
    for (const auto& [clip, barMax, perSecond, cy] : good) {
        TrimBar bar;
        ASSERT_TRUE(bar.Setup(clip, barMax, 0, clip)) << clip;
        EXPECT_EQ(bar.BarUnitsPerSecond, perSecond) << clip;
        EXPECT_DOUBLE_EQ(bar.CyPerBarUnit, cy) << clip;
    }
    const std::pair<std::int64_t, int> bad[] = {{500000, 500}, {0, 500}, {-3 * kSec, 500}, {10 * kSec, 0}};
    for (const auto& [clip, barMax] : bad)
        EXPECT_FALSE(TrimBar().Setup(clip, barMax, 0, clip)) << clip;
}

TEST(TrimSetup, HandlesStandAtTheStoredTimesWhichStay) {
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
        EXPECT_TRUE(r.fake.calls.isEmpty());
    }
}

TEST(TrimTimes, CurrencyTextHasFourPlacesOfTenThousandMicroseconds) {
    const std::pair<std::int64_t, const char*> texts[] = {
        {0, "0.0000"}, {1500000, "150.0000"}, {1234567, "123.4567"}, {99, "0.0099"}, {-10000, "-1.0000"}};
    for (const auto& [us, text] : texts) {
        EXPECT_EQ(Time_ToCurrencyText(us), text);
        EXPECT_EQ(Time_FromCurrencyText(text), us);
    }
    EXPECT_EQ(Time_FromCurrencyText("150"), 1500000);
    EXPECT_EQ(Time_FromCurrencyText("0,5"), 5000);
    for (const char* bad : {"", "1.23456", "abc", "1.2.3", "-"})
        EXPECT_EQ(Time_FromCurrencyText(bad), std::nullopt) << bad;
}

TEST(TrimTimes, CaptionsAndTags) {
    // Start, end; selected caption and tag, start and end captions, end tag.
    const std::tuple<std::int64_t, std::int64_t, QStringList> cases[] = {
        {0, 2500000, {"00:00:02", "2.50", "00:00:00", "00:00:02", "250.0000"}}, // ties to even
        {0, 3500000, {"00:00:04", "3.50", "00:00:00", "00:00:04", "350.0000"}},
        {3725 * kSec, 3725600000, {"00:00:01", "0.60", "01:02:05", "01:02:06", "372560.0000"}},
        {0, 0, {"00:00:00", "0.00", "00:00:00", "00:00:00", "0.0000"}},
    };
    for (const auto& [start, end, texts] : cases) {
        TrimBar bar;
        ASSERT_TRUE(bar.Setup(3 * 3600 * kSec, 500, start, end));
        EXPECT_EQ((QStringList{bar.lbl_SelectedTime, bar.lbl_SelectedTimeTag, bar.Txt_TrimStartTime,
                               bar.Txt_TrimEndTime, bar.Txt_TrimEndTimeTag}),
                  texts);
        EXPECT_EQ(bar.lbl_PlayTime, bar.lbl_SelectedTime);
        EXPECT_EQ(bar.Txt_TrimStartTimeTag, Time_ToCurrencyText(start));
    }
    Rig r(2 * kSec, 8 * kSec); // the range lies between the handles' facing edges
    EXPECT_EQ(r.bar.Trim_Range.Left, L + 100 + TrimBar::kHandleWidth);
    EXPECT_EQ(r.bar.Trim_Range.Width, 300 - TrimBar::kHandleWidth);
}

TEST(TrimSeek, ExactTimeOfABarPosition) {
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
        EXPECT_EQ(bar.SeekTime, time) << clip;
        EXPECT_EQ(fake.calls, QStringList{seek(time)});
        EXPECT_FALSE(bar.Timer_PlaySelected);
    }
    Rig r(0, 10 * kSec); // the program's own bar moves do not seek
    r.bar.BarGuard = true;
    r.bar.Seek_Preview(100);
    EXPECT_EQ(r.bar.SeekTime, 0);
    EXPECT_TRUE(r.fake.calls.isEmpty());
}

TEST(TrimSeek, PlayerPositionMovesTheBarOnly) {
    // Truncated; a position of 0 leaves the bar; past the clip stays on the bar.
    const std::pair<std::int64_t, int> moves[] = {{5019999, 250}, {20000, 1}, {0, 1}, {11 * kSec, 500}};
    Rig r(0, 10 * kSec);
    r.bar.Timer_PlaySelected = true;
    for (const auto& [time, value] : moves) {
        r.bar.Position(time);
        EXPECT_EQ(r.bar.BarValue, value) << time;
        EXPECT_EQ(r.bar.PlayPosition, time);
    }
    EXPECT_EQ(r.bar.lbl_PlayTime, "00:00:11");
    EXPECT_TRUE(r.fake.calls.isEmpty());
    EXPECT_TRUE(r.bar.Timer_PlaySelected);
}

TEST(TrimSetPoint, StartAtThePositionPushesTheEndToTheClipEnd) {
    const std::tuple<int, int, Points, QStringList> cases[] = {
        {100, TrimHost::kStopped, {100, 200, 2 * kSec, 4 * kSec}, {"play"}},
        {150, kPlaying, {150, 500, 3 * kSec, 10 * kSec}, {}}, // a second short of the end pushes too
        {300, kPlaying, {300, 500, 6 * kSec, 10 * kSec}, {}},
        {480, TrimHost::kPaused, {450, 500, 9600000, 10 * kSec}, {}},
    };
    for (const auto& [value, state, after, calls] : cases) {
        Rig r(0, 4 * kSec, state);
        r.bar.ProgressBar_Play_Change(value);
        r.fake.calls.clear();
        r.bar.Cmd_Trim_Click(0);
        EXPECT_EQ(r.fake.calls, calls) << value;
        EXPECT_EQ(r.points(), after) << value;
        EXPECT_EQ(r.bar.TrimPoint_Image[0].Tag, QString::number(value));
        EXPECT_EQ(r.bar.TrimPoint_Image[1].Tag, QString::number(std::get<1>(after))); // a grab seeks there
        EXPECT_TRUE(r.bar.Dirty);
    }
}

TEST(TrimSetPoint, EndBeforeTheStartPushesTheStartToTheBeginning) {
    const std::pair<int, Points> cases[] = {
        {400, {300, 400, 6 * kSec, 8 * kSec}},
        {100, {0, 100, 0, 2 * kSec}},
        {20, {0, 50, 0, 20000}}, // within the first second: one bar position's time
    };
    for (const auto& [value, after] : cases) {
        Rig r(6 * kSec, 10 * kSec, kPlaying);
        r.bar.ProgressBar_Play_Change(value);
        r.bar.Cmd_Trim_Click(1);
        EXPECT_EQ(r.points(), after) << value;
        EXPECT_EQ(r.bar.TrimPoint_Image[0].Tag, QString::number(std::get<0>(after))); // play starts there
    }
}

TEST(TrimSetPoint, FrameStepsSetTheEnd) {
    const std::tuple<int, int, QStringList, std::int64_t> cases[] = {
        {3, kPlaying, {"step"}, 0}, // the end takes the last seek, here none
        {3, TrimHost::kStopped, {"seek 2000000", "step", "play"}, 0},
        {4, kPlaying, {"seek 5980000"}, 5980000},
    };
    for (const auto& [index, state, calls, end] : cases) {
        Rig r(2 * kSec, 10 * kSec, state);
        r.bar.Position(6 * kSec);
        r.bar.Cmd_Trim_Click(index);
        EXPECT_EQ(r.fake.calls, calls) << index;
        EXPECT_EQ(r.points(), Points(100, 300, 2 * kSec, end)) << index;
    }
}

TEST(TrimDrag, StopsOneSecondShortOfTheOtherHandleWithoutPushing) {
    // The times stay: the dragged handle's takes the seek made before the move, the other's never moves.
    const std::tuple<int, int, int, int, QStringList> cases[] = {
        {0, 100, 200, 400, {"seek 2000000", "seek 4000000"}},
        {0, -500, 0, 400, {"seek 2000000", "seek 0"}},
        {0, 500, 350, 400, {"seek 2000000"}}, // stopped short: no seek
        {1, -500, 100, 150, {"seek 8000000"}},
        {1, 500, 100, 500, {"seek 8000000", "seek 10000000"}},
    };
    for (const auto& [handle, dx, left0, left1, calls] : cases) {
        Rig r(2 * kSec, 8 * kSec, kPlaying);
        r.bar.TrimPoint_MouseDown(handle);
        r.bar.TrimPoint_MouseMove(handle, dx);
        EXPECT_EQ(r.fake.calls, calls) << handle << " " << dx;
        EXPECT_EQ(r.points(), Points(left0, left1, 2 * kSec, 8 * kSec)) << handle << " " << dx;
        EXPECT_TRUE(r.bar.Dirty);
    }
}

TEST(TrimDrag, ReleaseSeeksToTheHandleAndPausesUnlessResumed) {
    const std::pair<std::int32_t, bool> flags[] = {{-1, false}, {0, true}, {1, false}, {2, true}};
    for (const auto& [flag, presses] : flags) {
        Rig r(2 * kSec, 8 * kSec, kPlaying);
        r.fake.flag = flag;
        r.bar.TrimPoint_MouseUp(1);
        EXPECT_EQ(r.fake.calls,
                  presses ? QStringList({"seek 8000000", "play"}) : QStringList{"seek 8000000"});
    }
}

TEST(TrimStep, StepsWithinTheirBounds) {
    // Start side or end, button, start, end, the stepped time (-1: refused), its handle's left edge.
    const std::tuple<bool, int, std::int64_t, std::int64_t, std::int64_t, int> cases[] = {
        {true, 0, 2 * kSec, 8 * kSec, 2100000, 105},
        {true, 1, 2 * kSec, 8 * kSec, 1900000, 95},
        {true, 0, 7900000, 8 * kSec, 8 * kSec, 395}, // the time reaches the end, the handle stops short
        {true, 0, 7950000, 8 * kSec, -1, 0},
        {true, 0, 8 * kSec, 8 * kSec, -1, 0},
        {true, 1, 100000, 8 * kSec, 0, 0},
        {true, 1, 50000, 8 * kSec, -1, 0},
        {false, 0, 2 * kSec, 8 * kSec, 9 * kSec, 450},
        {false, 0, 2 * kSec, 9 * kSec, 10 * kSec, 500},
        {false, 0, 2 * kSec, 9500000, -1, 0},
        {false, 1, 2 * kSec, 3 * kSec, 2 * kSec, 150},
        {false, 1, 2 * kSec, 2500000, -1, 0},
    };
    for (const auto& [startSide, index, start, end, result, left] : cases) {
        SCOPED_TRACE(testing::Message() << startSide << " " << index << " " << start << " " << end);
        Rig r(start, end);
        r.bar.Timer_PlaySelected = true;
        startSide ? r.bar.Cmd_TrimStartTime_Click(index) : r.bar.Cmd_TrimEndTime_Click(index);
        const bool refused = result < 0;
        EXPECT_EQ(r.bar.TrimStart, startSide && !refused ? result : start);
        EXPECT_EQ(r.bar.TrimEnd, !startSide && !refused ? result : end);
        EXPECT_EQ(r.bar.Dirty, !refused);
        EXPECT_EQ(r.bar.Timer_PlaySelected, refused);
        if (refused) {
            EXPECT_TRUE(r.fake.calls.isEmpty());
            continue;
        }
        EXPECT_EQ(r.fake.calls, (QStringList{"play", seek(result)}));
        EXPECT_EQ(r.left(startSide ? 0 : 1), left);
        EXPECT_EQ(startSide ? r.bar.Txt_TrimStartTimeTag : r.bar.Txt_TrimEndTimeTag,
                  Time_ToCurrencyText(result));
    }
}

TEST(TrimPlay, PlaysTheSelectionFromTheStartHandle) {
    const std::tuple<int, std::int64_t, QStringList> cases[] = {
        {TrimHost::kStopped, 0, {"seek 2000000"}},
        {TrimHost::kPaused, 3 * kSec, {"seek 2000000", "play"}},
        {kPlaying, 3 * kSec, {"stop", "play", "play", "seek 2000000", "play"}},
        {TrimHost::kEnded, 4 * kSec, {"stop", "play", "stop", "play", "play", "seek 2000000", "play"}},
    };
    for (const auto& [state, position, calls] : cases) {
        Rig r(2 * kSec, 4 * kSec, state);
        r.bar.Position(position);
        r.bar.Cmd_Trim_Click(2);
        EXPECT_EQ(r.fake.calls, calls) << state;
        EXPECT_TRUE(r.bar.Timer_PlaySelected);
        EXPECT_EQ(r.points(), Points(100, 200, 2 * kSec, 4 * kSec));
    }
}

TEST(TrimPlay, PausesAtTheEnd) {
    const std::pair<std::int64_t, bool> ticks[] = {{3999999, false}, {4 * kSec, true}, {5 * kSec, true}};
    for (const auto& [position, pauses] : ticks) {
        Rig r(2 * kSec, 4 * kSec, kPlaying);
        r.bar.Timer_PlaySelected = true;
        r.bar.Position(position);
        r.bar.Timer_PlaySelected_Tick();
        EXPECT_EQ(r.bar.Timer_PlaySelected, !pauses) << position;
        EXPECT_EQ(r.fake.calls, pauses ? QStringList({"play", "seek 4000000"}) : QStringList()) << position;
        EXPECT_EQ(r.fake.state, pauses ? TrimHost::kPaused : kPlaying);
    }
}

TEST(TrimReset, BackToTheWholeClip) {
    const std::pair<std::int64_t, std::int64_t> trims[] = {
        {2 * kSec, 4 * kSec}, {0, 400000}, {9750000, 10 * kSec}};
    for (const auto& [start, end] : trims) {
        Rig r(start, end);
        r.bar.TrimPoint_Image[1].Left = L + 20; // as a stopped-short drag may leave it
        r.bar.Cmd_Reset0();
        EXPECT_EQ(r.points(), Points(0, 500, 0, 10 * kSec)) << start;
        EXPECT_EQ(r.bar.lbl_SelectedTime, "00:00:10");
        EXPECT_EQ(r.bar.Txt_TrimEndTimeTag, "1000.0000");
        EXPECT_TRUE(r.bar.Dirty);
        EXPECT_TRUE(r.fake.calls.isEmpty());
    }
}
