// The encoder's events: how one task ends, how the whole queue ends, and what follows it.
#include "VideoConverter_Mods.h"

#include "Folders_Mods.h"
#include "Globals.h"
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
    if (guarded()) return;
    if (task == -1)
        queueEnded();
    else if (task >= 0)
        taskEnded(task, finished, failed, message);
}

void VideoConverter::taskEnded(int task, bool finished, bool failed, const QString& message) {
    if (task >= m_table.rows()) return;
    if (finished) {
        Progress_Base += 100;
        Set_RowState(m_table, task, true, State_Done);
        m_host.Scroll_ToRow(task);
        const QString format = listText(List_Extension).toUpper();
        if (format == QLatin1String("M4B") || format == QLatin1String("M4R")) {
            const QString wanted = m_table.text(task, FileCol::ConvertedFileName);
            const QString error = Move_File(wanted.chopped(3) + QStringLiteral("M4A"), wanted);
            if (!error.isEmpty()) {
                Set_RowState(m_table, task, true, State_Failed);
                m_table.setText(task, FileCol::ErrMsg, error);
                m_table.redraw();
            }
        }
        if (task + 1 < m_table.rows()) {
            m_table.selectRow(task + 1);
            showInputFileInfo(task + 1);
        }
        m_host.Clear_HookOutput();
    }
    if (failed) {
        m_table.setText(task, FileCol::Status, kFailedStatus + QLatin1Char(' '));
        m_table.setText(task, FileCol::ErrMsg, message);
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
            Set_RowState(m_table, task, true, State_Failed);
        }
        m_table.selectRow(task);
        showInputFileInfo(task);
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
            // A merge with a hole is worthless.
            if (mergeChecked())
                for (int r = 0; r < m_table.rows(); ++r) {
                    const QString output = m_table.text(r, FileCol::ConvertedFileName);
                    if (!output.isEmpty()) Delete_File(output);
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
