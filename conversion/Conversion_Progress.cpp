// Progress of a running queue: the item's cell, the total bar with its text, the marquee of a
// silent encoder, and the elapsed time in the header of the status column.
#include "VideoConverter_Mods.h"

#include "mMain.h"

#include <cmath>
#include <limits>

namespace morvane {

void VideoConverter::OnProgress(int task, qint64 positionUs, qint64 durationUs) {
    if (guarded() || Get_ConversionState() == Conversion_Idle) return;
    Progress_Tick = 1;
    const int row = rowOfTask(task);
    if (row < 0) return;
    const double duration = Time_ToSeconds(durationUs);
    if (duration <= 0) {
        Set_RowProgress(m_table, row, FileCol::Status, 0);
        return;
    }
    const double q = std::trunc(Time_ToSeconds(positionUs) * 100.0 / duration);
    if (q < 100) {
        const int percent =
            static_cast<int>(std::max(q, static_cast<double>(std::numeric_limits<int>::min())));
        ProgressBar_Total.Value = percent + Progress_Base;
        const int tasks = m_encoder.TaskCount();
        if (tasks > 0) {
            const double overall = static_cast<double>(ProgressBar_Total.Value) / tasks;
            ProgressBar_Total.Text =
                overall < 0 ? QStringLiteral("0%") : QString::number(std::floor(overall + 0.5), 'f', 0) + '%';
        }
        Set_RowProgress(m_table, row, FileCol::Status, percent);
    } else {
        // An item never reads 100 before it has ended.
        Set_RowProgress(m_table, row, FileCol::Status, 99);
    }
    Set_RowState(m_table, row, true, State_Converting);
    if (task != -1) Current_Job = task;
}

void VideoConverter::Timer_ConversionElapsed_Tick() {
    if (Elapsed_Seconds < std::numeric_limits<std::int32_t>::max()) ++Elapsed_Seconds;
    Status_Header = QStringLiteral("Elapsed: ") + Format_Seconds(Elapsed_Seconds, false);
    if (Progress_Tick < 1) return;
    if (Progress_Tick < std::numeric_limits<std::int16_t>::max()) ++Progress_Tick;
    if (Progress_Tick < 3) {
        if (ProgressBar_Total.Scrolling != Scrolling_Normal) ProgressBar_Total.Scrolling = Scrolling_Normal;
    } else if (ProgressBar_Total.Scrolling != Scrolling_Marquee) {
        ProgressBar_Total.Text = QStringLiteral("Processing...");
        ProgressBar_Total.Scrolling = Scrolling_Marquee;
    }
}

} // namespace morvane
