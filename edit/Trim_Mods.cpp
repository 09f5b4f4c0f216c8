#include "Trim_Mods.h"

#include "mMain.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace morvane {

namespace {

constexpr std::int64_t kUsPerCurrencyUnit = 10000;

// a x p / m rounded half to even, without a detour through floating point; a >= 0, 0 <= p <= m, m > 0.
std::int64_t mulDivHalfEven(std::int64_t a, std::int64_t p, std::int64_t m) {
    std::int64_t result = (a / m) * p; // cannot exceed a, as p <= m
    const std::int64_t rp = (a % m) * p;
    result += rp / m;
    const std::int64_t rem = rp % m;
    if (2 * rem > m || (2 * rem == m && (result & 1) != 0)) ++result;
    return result;
}

// "hh:mm:ss" of seconds rounded to whole ones. A negative length would read "00:00:-3"; it shows as
// zero instead.
QString clockText(double seconds) {
    const double whole = std::max(0.0, Round_HalfEven(seconds));
    return Format_Seconds(static_cast<std::int32_t>(std::min(whole, 2147483647.0)), false);
}

} // namespace

QString Time_ToCurrencyText(std::int64_t microseconds) {
    const bool negative = microseconds < 0;
    const auto magnitude =
        negative ? 0 - static_cast<std::uint64_t>(microseconds) : static_cast<std::uint64_t>(microseconds);
    return (negative ? QStringLiteral("-") : QString()) + QString::number(magnitude / kUsPerCurrencyUnit) +
           QLatin1Char('.') +
           QStringLiteral("%1").arg(magnitude % kUsPerCurrencyUnit, 4, 10, QLatin1Char('0'));
}

std::optional<std::int64_t> Time_FromCurrencyText(const QString& text) {
    QString t = text.trimmed();
    t.replace(QLatin1Char(','), QLatin1Char('.'));
    bool negative = false;
    if (t.startsWith(QLatin1Char('-')) || t.startsWith(QLatin1Char('+'))) {
        negative = t.startsWith(QLatin1Char('-'));
        t.remove(0, 1);
    }
    const qsizetype dot = t.indexOf(QLatin1Char('.'));
    const QString whole = dot < 0 ? t : t.left(dot);
    QString fraction = dot < 0 ? QString() : t.mid(dot + 1);
    // Four places are all a currency value has; fourteen whole digits keep the microseconds in 64 bits.
    if (whole.isEmpty() || whole.size() > 14 || fraction.size() > 4) return std::nullopt;
    const auto isDigits = [](const QString& s) {
        return std::all_of(s.begin(), s.end(), [](QChar c) { return c.isDigit() && c.unicode() < 128; });
    };
    if (!isDigits(whole) || !isDigits(fraction)) return std::nullopt;
    while (fraction.size() < 4)
        fraction += QLatin1Char('0');
    const std::int64_t value = whole.toLongLong() * kUsPerCurrencyUnit + fraction.toLongLong();
    return negative ? -value : value;
}

TrimBar::TrimBar(TrimHost host) : m_host(std::move(host)) {}

int TrimBar::state() const {
    return m_host.playState ? m_host.playState() : 0;
}

void TrimBar::play() {
    if (m_host.pressPlay) m_host.pressPlay();
}

void TrimBar::stop() {
    if (m_host.pressStop) m_host.pressStop();
}

void TrimBar::seekPlayer(std::int64_t time) {
    if (m_host.seek) m_host.seek(time);
}

int TrimBar::barPositionOf(std::int64_t time) const {
    const double position =
        std::trunc(Time_ToSeconds(time) / Time_ToSeconds(ClipDuration) * static_cast<double>(BarMax));
    // A stored time outside the clip keeps its handle on the bar.
    return static_cast<int>(std::clamp(position, static_cast<double>(BarMin), static_cast<double>(BarMax)));
}

bool TrimBar::Setup(std::int64_t clipDuration, int barMax, std::int64_t trimStart, std::int64_t trimEnd) {
    // The bar's scale divides by the clip's whole seconds and by the bar's width; either being 0 (or
    // a negative length) leaves nothing to trim.
    const double seconds = Round_HalfEven(Time_ToSeconds(clipDuration));
    if (barMax <= 0 || seconds <= 0) return false;

    PlayPosition = 0;
    SeekTime = 0;
    ClipDuration = clipDuration;
    BarMax = barMax;
    CyPerBarUnit = static_cast<double>(clipDuration) / static_cast<double>(kUsPerCurrencyUnit) / barMax;
    BarUnitsPerSecond =
        static_cast<std::int32_t>(barMax / static_cast<std::int64_t>(std::min(seconds, 9.0e18)));
    BarGuard = true;
    BarValue = BarMin;
    BarGuard = false;

    TrimStart = trimStart;
    TrimEnd = trimEnd;
    TrimPoint_Image[0].Left = BarLeft + BarMin;
    TrimPoint_Image[1].Left = BarLeft + BarMax;
    placeAtTimes();
    return true;
}

void TrimBar::placeAtTimes() {
    const int start = barPositionOf(TrimStart);
    const int end = barPositionOf(TrimEnd);
    // The tags hold the positions even where a handle has to stand a second off its time.
    TrimPoint_Image[0].Tag = QString::number(start);
    TrimPoint_Image[1].Tag = QString::number(end);
    // Opening must not change the stored trim. The start may push the end handle (the times stay);
    // the end may not push, as a push near the clip's beginning replaces the end time whatever
    // keepTimes says.
    Set_TrimPoints(start, -1, true, true, false);
    Set_TrimPoints(-1, end, true, false, false);
}

void TrimBar::Set_TrimPoints(int start, int end, bool keepTimes, bool mayPush, bool seek) {
    // A handle that stops short of the other skips the rest and goes straight to the captions.
    const bool goOn = start == -1 || placeStart(start, keepTimes, mayPush, seek);
    if (goOn && end != -1) placeEnd(end, keepTimes, mayPush, seek);
    showTimes();
}

bool TrimBar::placeStart(int start, bool keepTimes, bool mayPush, bool seek) {
    const int L = BarLeft;
    const int g = BarUnitsPerSecond;
    Handle& h0 = TrimPoint_Image[0];
    Handle& h1 = TrimPoint_Image[1];
    if (L + start + g < h1.Left) {
        h0.Left = L + start;
    } else if (!mayPush) {
        h0.Left = h1.Left - g;
        if (!keepTimes) TrimStart = SeekTime;
        return false;
    } else {
        // Pushed: the end goes all the way to the clip's end, not just one second on.
        h1.Left = L + BarMax;
        h1.Tag = QString::number(BarMax);
        if (!keepTimes) TrimEnd = ClipDuration;
        h0.Left = L + start + g < h1.Left ? L + start : L + BarMax - g;
    }
    if (!keepTimes) TrimStart = SeekTime;
    h0.Tag = QString::number(start);
    if (seek) Seek_Preview(start);
    return true;
}

bool TrimBar::placeEnd(int end, bool keepTimes, bool mayPush, bool seek) {
    const int L = BarLeft;
    const int g = BarUnitsPerSecond;
    Handle& h0 = TrimPoint_Image[0];
    Handle& h1 = TrimPoint_Image[1];
    if (end >= h0.Left - L + g) {
        h1.Left = L + end;
        if (!keepTimes) TrimEnd = SeekTime;
    } else if (!mayPush) {
        h1.Left = h0.Left + g;
        if (!keepTimes) TrimEnd = SeekTime;
        return false;
    } else {
        // Pushed: the start goes back to the clip's beginning.
        h0.Left = L + BarMin;
        h0.Tag = QString::number(BarMin);
        if (!keepTimes) TrimStart = 0;
        if (end >= h0.Left - L + g) {
            h1.Left = L + end;
            if (!keepTimes) TrimEnd = SeekTime;
        } else {
            // Too close to the beginning for a second's gap: the end becomes one bar position's worth
            // of time, whatever keepTimes says.
            h1.Left = L + BarMin + g;
            TrimEnd = static_cast<std::int64_t>(Round_HalfEven(CyPerBarUnit * kUsPerCurrencyUnit));
        }
    }
    h1.Tag = QString::number(end);
    if (seek) Seek_Preview(end);
    return true;
}

void TrimBar::showTimes() {
    const Handle& h0 = TrimPoint_Image[0];
    const int right0 = h0.Left + h0.Width;
    Trim_Range.Left = right0;
    // Handles closer than their width overlap; the range then has nothing to show.
    Trim_Range.Width = std::max(0, TrimPoint_Image[1].Left - right0);

    const double length = Time_ToSeconds(TrimEnd) - Time_ToSeconds(TrimStart);
    lbl_SelectedTime = clockText(length);
    lbl_SelectedTimeTag = QString::number(length, 'f', 2);
    lbl_PlayTime = lbl_SelectedTime;
    Txt_TrimStartTime = clockText(Time_ToSeconds(TrimStart));
    Txt_TrimStartTimeTag = Time_ToCurrencyText(TrimStart);
    Txt_TrimEndTime = clockText(Time_ToSeconds(TrimEnd));
    Txt_TrimEndTimeTag = Time_ToCurrencyText(TrimEnd);
}

void TrimBar::Seek_Preview(int position) {
    Timer_PlaySelected = false;
    if (BarGuard || BarMax <= 0) return;
    // A step back from the bar's start asks for position -1; the clip has no time before 0.
    position = std::clamp(position, BarMin, BarMax);
    SeekTime = mulDivHalfEven(std::max<std::int64_t>(ClipDuration, 0), position, BarMax);
    seekPlayer(SeekTime);
}

void TrimBar::ProgressBar_Play_Change(int value) {
    BarValue = value;
    Seek_Preview(value);
}

void TrimBar::Position(std::int64_t time) {
    PlayPosition = time;
    lbl_PlayTime = Format_TimeCode(time).left(8);
    if (time <= 0 || ClipDuration == 0 || BarMax <= 0) return;
    const int value = barPositionOf(time);
    if (value == BarValue) return;
    BarGuard = true;
    BarValue = value;
    BarGuard = false;
}

void TrimBar::Cmd_Trim_Click(int index) {
    switch (index) {
    case 0:
    case 1: {
        const int s = state();
        if (s == TrimHost::kStopped || s == TrimHost::kEnded) play();
        if (index == 0)
            Set_TrimPoints(BarValue, -1, false, true, false);
        else
            Set_TrimPoints(-1, BarValue, false, true, false);
        Dirty = true;
        break;
    }
    case 2:
        playSelection();
        break;
    case 3:
    case 4: {
        const int s = state();
        if (s <= TrimHost::kStopped || s == TrimHost::kEnded) {
            seekPlayer(TrimStart);
            if (state() == TrimHost::kPaused) play();
        }
        if (index == 3) {
            if (m_host.step) m_host.step();
        } else {
            Seek_Preview(BarValue - 1);
        }
        Cmd_Trim_Click(1);
        break;
    }
    default:
        break;
    }
}

void TrimBar::seekToStartHandle() {
    Set_TrimPoints(TrimPoint_Image[0].Tag.toInt(), -1, true, false, true);
}

void TrimBar::playSelection() {
    Timer_PlaySelected = false;
    // At or past the end the player has ended; a stop and a new start bring it back.
    if (!(Time_ToSeconds(TrimEnd) > Time_ToSeconds(PlayPosition))) {
        stop();
        play();
    }
    const int s = state();
    if (s == TrimHost::kStopped || s == TrimHost::kEnded || s == TrimHost::kPaused) {
        seekToStartHandle();
        if (s == TrimHost::kPaused) play();
    } else {
        // Running: restart, pause, seek, resume, so that the play begins at the start handle.
        stop();
        play();
        play();
        seekToStartHandle();
        play();
    }
    Timer_PlaySelected = true;
}

void TrimBar::Timer_PlaySelected_Tick() {
    if (!Timer_PlaySelected) return;
    if (Time_ToSeconds(PlayPosition) < Time_ToSeconds(TrimEnd)) return;
    Timer_PlaySelected = false;
    play(); // pauses
    seekPlayer(TrimEnd);
}

void TrimBar::stepTime(bool startSide, std::int64_t delta) {
    const auto start = Time_FromCurrencyText(Txt_TrimStartTimeTag);
    const auto end = Time_FromCurrencyText(Txt_TrimEndTimeTag);
    if (!start || !end) return;
    const std::int64_t value = (startSide ? *start : *end) + delta;
    const bool outOfBounds = startSide ? (delta > 0 ? value > *end : value < 0)
                                       : (delta > 0 ? value > ClipDuration : value < *start);
    if (outOfBounds) return;

    Timer_PlaySelected = false;
    const int s = state();
    if (s == TrimHost::kStopped || s == TrimHost::kEnded) play();
    (startSide ? Txt_TrimStartTimeTag : Txt_TrimEndTimeTag) = Time_ToCurrencyText(value);
    // The stepped time is what the trim takes: Set_TrimPoints reads it from SeekTime.
    SeekTime = value;
    seekPlayer(value);
    if (m_host.letEventsRun) m_host.letEventsRun();
    if (startSide)
        Set_TrimPoints(BarValue, -1, false, false, false);
    else
        Set_TrimPoints(-1, BarValue, false, false, false);
    Dirty = true;
}

void TrimBar::Cmd_TrimStartTime_Click(int index) {
    stepTime(true, index == 0 ? kStartStep : -kStartStep);
}

void TrimBar::Cmd_TrimEndTime_Click(int index) {
    stepTime(false, index == 0 ? kEndStep : -kEndStep);
}

void TrimBar::TrimPoint_MouseDown(int index) {
    const int s = state();
    if (s == TrimHost::kStopped || s == TrimHost::kEnded) play();
    Seek_Preview(TrimPoint_Image[index & 1].Tag.toInt());
}

void TrimBar::TrimPoint_MouseMove(int index, int dx) {
    const Handle& h = TrimPoint_Image[index & 1];
    const int left = std::clamp(h.Left + dx, BarLeft + BarMin, BarLeft + BarMax);
    // Both handles stand at their own position by their left edge, so the position is the left edge
    // on the bar for either; an offset by the width for the end handle would make it creep by its
    // width on every move.
    const int position = left - BarLeft;
    if (index == 0)
        Set_TrimPoints(position, -1, false, false, true);
    else
        Set_TrimPoints(-1, position, false, false, true);
    Dirty = true;
}

void TrimBar::TrimPoint_MouseUp(int index) {
    Seek_Preview(TrimPoint_Image[index & 1].Left - BarLeft);
    const std::int32_t flag = m_host.playerFlag ? m_host.playerFlag() : 2;
    // Unless the user had the player running, the press puts it back in pause.
    if (flag != 1 && flag != -1) play();
}

void TrimBar::Cmd_Reset0() {
    TrimEnd = ClipDuration;
    TrimStart = 0;
    if (BarMax > 0 && ClipDuration > 0) {
        placeAtTimes();
    } else {
        showTimes();
    }
    Dirty = true;
}

} // namespace morvane
