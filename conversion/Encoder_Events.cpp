// The encoder's events: how one task ends, how the whole queue ends, and what follows it.
#include "VideoConverter_Mods.h"

#include "Folders_Mods.h"
#include "Globals.h"
#include "Output_File.h"
#include "Report_List.h"
#include "mMain.h"

namespace morvane {

namespace {

const QString kFailedStatus = QStringLiteral("Unsuccessful!");
const QString kDiskFullWords = QStringLiteral("No space left on device");
const QString kInvalidDataWords = QStringLiteral("Invalid data found when processing input");

} // namespace

void VideoConverter::OnPreviewBitmap(int task, int width, int height, const QByteArray& bgra) {
    (void)task;
    if (guarded()) return;
    m_host.Show_PreviewBitmap(width, height, bgra);
}

void VideoConverter::OnTerminate(int task, bool finished, bool failed, const QString& message) {
    if (Closing) return;
    // An end that comes after held ones waits its turn behind them.
    m_heldEnds.push_back({task, finished, failed, message});
    Release_HeldEvents();
}

void VideoConverter::Release_HeldEvents() {
    while (!guarded() && !m_heldEnds.empty()) {
        const HeldEnd e = m_heldEnds.front();
        m_heldEnds.erase(m_heldEnds.begin());
        if (e.task == -1)
            queueEnded();
        else if (e.task >= 0)
            taskEnded(e.task, e.finished, e.failed, e.message);
    }
}

void VideoConverter::taskEnded(int task, bool finished, bool failed, const QString& message) {
    const int row = rowOfTask(task);
    if (row < 0 || row >= m_table.rows()) return;
    if (finished) {
        Progress_Base += 100;
        Set_RowState(m_table, row, true, State_Done);
        m_endedRows.insert(row);
        m_host.Scroll_ToRow(row);
        const QString wanted = m_table.text(row, FileCol::ConvertedFileName);
        // The name was taken while the task ran: the output took the next free one.
        QString landed = m_encoder.LandedPath(task);
        const QString format = listText(List_Extension).toUpper();
        if (format == QLatin1String("M4B") || format == QLatin1String("M4R")) {
            if (landed.isEmpty()) landed = wanted.chopped(3) + QStringLiteral("M4A");
            std::string moved, error;
            if (Rename_Free(landed.toStdString(), wanted.toStdString(), moved, error)) {
                landed = QString::fromStdString(moved);
            } else {
                Set_RowState(m_table, row, true, State_Failed);
                m_table.setText(row, FileCol::ErrMsg, QString::fromStdString(error));
                m_table.redraw();
            }
        }
        if (!landed.isEmpty() && landed != wanted) m_table.setText(row, FileCol::ConvertedFileName, landed);
        if (row + 1 < m_table.rows()) {
            m_table.selectRow(row + 1);
            m_host.Show_InputFileInfo(row + 1);
        }
        m_host.Clear_HookOutput();
    }
    if (failed) {
        m_table.setText(row, FileCol::Status, kFailedStatus + QLatin1Char(' '));
        m_table.setText(row, FileCol::ErrMsg, message);
        m_table.redraw();
        setElapsedTimer(false);
        Status_Header.clear();
        // Two failures concern every task alike, so they end the queue; any other one lets it run on.
        if (message.contains(kDiskFullWords)) {
            Stop();
            letMessagesThrough();
            Show_Message(QStringLiteral("The disk in the destination folder is full.\n\n\"") +
                             Txt_OutputPath + QLatin1Char('"'),
                         MB_ICONEXCLAMATION, QStringLiteral("Attention!"));
        } else if (message.contains(kInvalidDataWords)) {
            Stop();
            letMessagesThrough();
            Show_Message(
                QStringLiteral("Please change the format parameters or use one of the preset profiles."),
                MB_ICONEXCLAMATION, QStringLiteral("Attention!"));
        } else {
            Set_RowState(m_table, row, true, State_Failed);
            m_endedRows.insert(row);
        }
        m_table.selectRow(row);
        m_host.Show_InputFileInfo(row);
        m_host.Focus_List();
        m_host.Clear_HookOutput();
    }
}

int VideoConverter::failedRows() const {
    int count = 0;
    for (int r = 0; r < m_table.rows(); ++r)
        if (Trim_Spaces(m_table.text(r, FileCol::Status)) == kFailedStatus) ++count;
    return count;
}

void VideoConverter::queueEnded() {
    Current_Job = -1;
    m_encoder.ClearTasks();
    Set_ConvertButton(Conversion_Idle);
    ProgressBar_Total.Scrolling = Scrolling_Normal;
    ProgressBar_Total.Visible = false;
    m_host.Set_MainState(0, true);
    m_host.Set_AcceptDrops(true);
    letMessagesThrough();

    if (Test_Running) return;

    if (Shutdown_After == 0) {
        Report_Clear();
        for (int r = 0; r < m_table.rows(); ++r)
            if (Trim_Spaces(m_table.text(r, FileCol::Status)) == kFailedStatus)
                Report_Add(m_table.text(r, FileCol::FileName), m_table.text(r, FileCol::ErrMsg));
        if (!Report_Entries().isEmpty()) {
            const int windowState = m_host.Window_State();
            if (m_host.Tray_Animating() && windowState == Window_Normal) {
                m_host.Tray_StopAnimation();
                m_host.Tray_SetTip(QString());
                m_host.Restore_FromTray();
            } else if (windowState == Window_Minimized) {
                m_host.Set_WindowState(Window_Normal);
            }
            // A merge with a hole is worthless. Only what this run made goes: a failed row's name may
            // hold a file of the user's.
            if (mergeChecked())
                for (int r = 0; r < m_table.rows(); ++r) {
                    const QString output = m_table.text(r, FileCol::ConvertedFileName);
                    if (!output.isEmpty() &&
                        Trim_Spaces(m_table.text(r, FileCol::Status)) == QLatin1String("Done"))
                        Delete_File(output);
                }
            Report_Show(QStringLiteral("Conversion Reports"), QStringLiteral("Can not convert these files!"));
        }
    }

    setElapsedTimer(false);
    Status_Header.clear();

    if (!Stop_Requested && failedRows() == 0) {
        const bool merged = !mergeChecked() || !Merge_Requested || Merge_Requested();
        if (merged) {
            if (m_table.rows() > 0) {
                const QList<int>& selected = m_table.selectedRows();
                m_table.selectRow(selected.isEmpty() ? 0 : selected.first());
            }
            m_host.Focus_List();
            if (Shutdown_After == 1) {
                m_host.Run_Shutdown(kShutdownCommand);
                m_host.Unload_Main();
                return;
            }
            postConversion();
        }
    }
    m_host.Clear_HookOutput();
}

void VideoConverter::postConversion() {
    const int windowState = m_host.Window_State();
    const bool inTray = m_host.Tray_Animating();
    if ((windowState == Window_Normal || windowState == Window_Maximized) && !inTray && !Stop_Requested)
        m_host.Show_Completion();
    if (windowState == Window_Minimized) m_host.Show_Popup(250, 5000, 255);
    if (inTray && windowState == Window_Normal) {
        m_host.Show_Popup(250, 5000, 255);
        m_host.Tray_StopAnimation();
        m_host.Tray_SetDoneIcon();
        m_host.Tray_SetTip(QStringLiteral("Conversion is completed! - ") + PRODUCT_NAME);
    }
}

} // namespace morvane
