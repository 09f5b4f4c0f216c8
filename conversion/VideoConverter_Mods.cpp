#include "VideoConverter_Mods.h"

#include "Folders_Mods.h"
#include "Output_Names.h"
#include "Registry_Mod.h"
#include "mMain.h"

#include <algorithm>

namespace morvane {

namespace {

QString selectedListText(const FormatSetting& settings, int list) {
    return settings.Combo_OutputFile.at(static_cast<std::size_t>(list)).selectedText();
}

std::int32_t qualityNumber(int radio) {
    switch (radio) {
    case Quality_High:
        return 4;
    case Quality_Standard:
        return 2;
    default:
        return 1; // Small size, and no choice at all
    }
}

} // namespace

VideoConverter::VideoConverter(FileViewMain& table, FormatSetting& settings, OutputBrowser& browser,
                               EncoderEngine& encoder, ConversionHost& host, bool realTimer)
    : m_table(table), m_settings(settings), m_browser(browser), m_encoder(encoder), m_host(host) {
    m_encoder.SetListener(this);
    m_encoder.SetVideoHook([this](const HookFrame& frame) { Hook_OutputFrame(m_taskEffects, frame); });
    m_encoder.SetVideoHookActive([this](int task) { return m_taskEffects.Active(task); });
    if (realTimer) {
        m_timer = std::make_unique<QTimer>();
        m_timer->setInterval(1000);
        QObject::connect(m_timer.get(), &QTimer::timeout, [this] { Timer_ConversionElapsed_Tick(); });
    }
}

VideoConverter::~VideoConverter() {
    if (m_encoder.Listener() == this) m_encoder.SetListener(nullptr);
}

int VideoConverter::Get_ConversionState() const {
    bool ok = false;
    const int state = Cmd_Convert.Tag.toInt(&ok);
    return ok && state >= Conversion_Idle && state <= Conversion_Paused ? state : Conversion_Idle;
}

void VideoConverter::Set_ConvertButton(int state) {
    static const char* const captions[] = {"Convert Now", "Pause", "Resume"};
    static const int icons[] = {5, 7, 34};
    if (state < Conversion_Idle || state > Conversion_Paused) return;
    Cmd_Convert.Tag = QString::number(state);
    Cmd_Convert.Caption = QString::fromLatin1(captions[state]);
    Cmd_Convert.Width = state == Conversion_Idle ? 4110 : 2980;
    Cmd_Convert.Icon = icons[state];
}

QString VideoConverter::listText(int list) const {
    return morvane::selectedListText(m_settings, list);
}

bool VideoConverter::mergeChecked() const {
    return m_browser.mergeChecked;
}

void VideoConverter::setElapsedTimer(bool on) {
    m_elapsedOn = on;
    if (!m_timer) return;
    if (on)
        m_timer->start();
    else
        m_timer->stop();
}

void VideoConverter::letMessagesThrough() {
    Yield_Events();
}

void VideoConverter::closeWait() {
    if (!m_waitOpen) return;
    m_waitOpen = false;
    m_host.Wait_Close();
}

QString VideoConverter::Output_Folder() const {
    const QString folder = Trim_Spaces(Txt_OutputPath);
    return folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/');
}

VideoConverter::RowJob VideoConverter::Prepare_Row(int row, const QSet<QString>& taken) const {
    const FileViewMain& t = m_table;
    RowJob job;
    EncoderParams& p = job.params;
    job.effects = t.text(row, FileCol::Filters);
    p.SrcWidth = t.longValue(row, FileCol::VideoWidth);
    p.SrcHeight = t.longValue(row, FileCol::VideoHeight);
    p.SrcFrameRate = t.longValue(row, FileCol::VideoFrameRateNumerator);
    p.SrcAspect = t.text(row, FileCol::VideoSampleAspectRatio);
    p.OutWidth = m_settings.widthValue();
    p.OutHeight = m_settings.heightValue();
    p.FrameRateText = selectedListText(m_settings, List_FrameRate);
    p.AspectMode = t.text(row, FileCol::NewAspectRatio);
    p.VideoCodec = selectedListText(m_settings, List_VideoCodec);
    p.VideoBitrate = selectedListText(m_settings, List_VideoBitrate) == QLatin1String("Smart Fit")
                         ? QString()
                         : m_settings.Txt_OutputVideoBitrate.text;
    p.Quality = qualityNumber(m_settings.Radio_Quality);
    p.AudioCodec = selectedListText(m_settings, List_AudioCodec);
    p.Format = selectedListText(m_settings, List_Extension).toUpper();
    p.Channels = static_cast<std::int32_t>(m_settings.Combo_OutputFile[List_Channels].selectedIndex());
    p.AudioBitrate = selectedListText(m_settings, List_AudioBitrate).remove(QStringLiteral("kbps")).trimmed();
    p.SampleRate = selectedListText(m_settings, List_SampleRate).remove(QStringLiteral("Hz")).trimmed();
    p.BitDepth = selectedListText(m_settings, List_SampleSize);
    p.CropTop = t.longValue(row, FileCol::CropTop);
    p.CropBottom = t.longValue(row, FileCol::CropBottom);
    p.CropLeft = t.longValue(row, FileCol::CropLeft);
    p.CropRight = t.longValue(row, FileCol::CropRight);
    p.EditedWidth = t.longValue(row, FileCol::CropWidth);
    p.EditedHeight = t.longValue(row, FileCol::CropHeight);
    p.PadTop = t.longValue(row, FileCol::PadTop);
    p.PadBottom = t.longValue(row, FileCol::PadBottom);
    p.PadLeft = t.longValue(row, FileCol::PadLeft);
    p.PadRight = t.longValue(row, FileCol::PadRight);
    p.PadColor = t.text(row, FileCol::PadColor);
    p.IsMerge = mergeChecked();
    if (p.IsMerge) {
        p.MergeWidth = t.longValue(0, FileCol::VideoWidth);
        p.MergeHeight = t.longValue(0, FileCol::VideoHeight);
        p.MergeFrameRate = t.longValue(0, FileCol::VideoFrameRateNumerator);
        p.MergeAspect = t.text(0, FileCol::VideoSampleAspectRatio);
    }
    p.TrimStartLow = t.text(row, FileCol::TrimStartLow);
    p.TrimStartHigh = t.text(row, FileCol::TrimStartHigh);
    p.TrimEndLow = t.text(row, FileCol::TrimEndLow);
    p.TrimEndHigh = t.text(row, FileCol::TrimEndHigh);
    p.Deinterlace = t.text(row, FileCol::Deinterlacing);

    job.arguments = Make_EncoderArgs(p); // sets Output_Format
    job.inputPath = t.text(row, FileCol::FilePath) + t.text(row, FileCol::FileName);
    job.seek = Make_SeekArgs(p.TrimStartLow, p.TrimStartHigh);

    const QString baseName = t.text(row, FileCol::Name) + QLatin1Char('.') + t.text(row, FileCol::Format);
    // A source is never its own output and two items never share one, whatever the naming rule.
    job.outputPath = Batch_OutputName(Replace_Extension(Output_Folder() + baseName, Output_Format),
                                      job.inputPath, taken, Output_NameMode == 1);
    job.encoderPath = job.outputPath;
    const QString last3 = job.outputPath.right(3).toUpper();
    // The encoder writes the .M4A that these really are; the finished file gets the wanted name.
    if (last3 == QLatin1String("M4B") || last3 == QLatin1String("M4R"))
        job.encoderPath = job.outputPath.chopped(3) + QStringLiteral("M4A");
    return job;
}

namespace {
QSet<QString> batchInputs(const FileViewMain& t) {
    QSet<QString> keys;
    for (int r = 0; r < t.rows(); ++r)
        keys.insert(Path_Key(t.text(r, FileCol::FilePath) + t.text(r, FileCol::FileName)));
    return keys;
}
} // namespace

QList<VideoConverter::RowJob> VideoConverter::Prepare_All() const {
    QSet<QString> taken = batchInputs(m_table);
    QList<RowJob> jobs;
    for (int row = 0; row < m_table.rows(); ++row) {
        jobs.append(Prepare_Row(row, taken));
        taken.insert(Path_Key(jobs.last().outputPath));
        taken.insert(Path_Key(jobs.last().encoderPath));
    }
    return jobs;
}

int VideoConverter::rowOfTask(int task) const {
    return task >= 0 && task < static_cast<int>(m_taskRows.size())
               ? m_taskRows[static_cast<std::size_t>(task)]
               : -1;
}

void VideoConverter::rowFailed(int row, const QString& message) {
    Set_RowState(m_table, row, true, State_Failed);
    m_table.setText(row, FileCol::Status, QStringLiteral("Unsuccessful! "));
    m_table.setText(row, FileCol::ErrMsg, message);
    m_endedRows.insert(row);
}

void VideoConverter::Cmd_ConvertPressed() {
    switch (Get_ConversionState()) {
    case Conversion_Idle:
        Start();
        break;
    case Conversion_Converting:
        Pause();
        break;
    default:
        Resume();
        break;
    }
}

void VideoConverter::Start() {
    Stop_Requested = false;
    m_host.Set_AcceptDrops(false);
    QString folderProblem;
    const QString typed = Txt_OutputPath;
    const bool ensured = Ensure_OutputFolder(Txt_OutputPath, folderProblem);
    if (Txt_OutputPath != typed) m_host.Show_OutputPath(Txt_OutputPath);
    if (!ensured) {
        // Without a word the user could not tell a typo from a folder they may not write to.
        if (!folderProblem.isEmpty())
            Show_Message(folderProblem.left(1).toUpper() + folderProblem.mid(1) + QLatin1Char('.'),
                         MB_ICONEXCLAMATION, QStringLiteral("Attention!"));
        m_host.Focus_OutputPath();
        m_host.Set_AcceptDrops(true);
        return;
    }
    Set_ConvertButton(Conversion_Converting);

    m_encoder.Stop(false);
    m_encoder.ClearTasks();
    m_host.Clear_Preview();
    m_encoder.SetPreviewEnabled(Preview_Enabled);
    m_host.Show_InputFileInfo(m_table.selectedRows().isEmpty() ? -1 : m_table.selectedRows().first());

    for (int r = 0; r < m_table.rows(); ++r)
        Set_RowState(m_table, r, true, State_Ready); // also clears the status text and the failure text
    m_table.redraw();

    const bool prepared = prepareQueue();

    closeWait();
    Progress_Base = 0;
    ProgressBar_Total.Maximum = m_encoder.TaskCount() * 100;
    ProgressBar_Total.Value = 0;
    ProgressBar_Total.Text.clear();
    ProgressBar_Total.Visible = true;
    ProgressBar_Total.Scrolling = Scrolling_Normal;
    m_host.Scroll_ToRow(0);

    if (prepared) {
        m_host.Set_MainState(1, true);
        m_encoder.Start(chkThreadMode ? Parse_IntOr(txtThreadCount, 1) : 0);
        Elapsed_Seconds = 0;
        setElapsedTimer(true);
        return; // drops stay refused until the queue ends
    }
    m_encoder.ClearTasks();
    Set_ConvertButton(Conversion_Idle);
    m_host.Set_MainState(0, true);
    ProgressBar_Total.Visible = false;
    m_host.Set_AcceptDrops(true);
}

// False when the preparation was broken off by Cancel on the wait window. A row that cannot be queued
// goes into the report instead, and the others are queued all the same.
bool VideoConverter::prepareQueue() {
    Abort_Preparation = false;
    m_taskRows.clear();
    m_endedRows.clear();
    const int rows = m_table.rows();
    m_host.Wait_Show(rows - 1, QStringLiteral("Preparing for conversion..."));
    m_waitOpen = true;
    letMessagesThrough();

    const QList<RowJob> jobs = Prepare_All();
    TaskEffects::Lists effects;
    for (int row = 0; row < rows; ++row) {
        const RowJob& job = jobs.at(row);
        m_table.setText(row, FileCol::ConvertedFileName, job.outputPath);

        // The .M4A detour is our own name: it never replaces a file that stands there.
        m_encoder.SetOverwrite(Output_NameMode != 1 && job.encoderPath == job.outputPath);
        const int task = m_encoder.AddInput(job.inputPath, job.seek);
        if (task < 0) {
            rowFailed(row, m_encoder.LastErrorMessage());
        } else if (m_encoder.AddOutput(task, job.encoderPath, job.arguments) < 0) {
            m_encoder.RemoveInput(task);
            rowFailed(row, m_encoder.LastErrorMessage());
        } else {
            if (static_cast<int>(m_taskRows.size()) <= task)
                m_taskRows.resize(static_cast<std::size_t>(task) + 1, -1);
            m_taskRows[static_cast<std::size_t>(task)] = row;
            effects.resize(m_taskRows.size());
            effects[static_cast<std::size_t>(task)] = job.effects.toStdString();
        }
        if (m_waitOpen)
            m_host.Wait_Step(QString::number(row + 1) + QStringLiteral(" of ") + QString::number(rows) +
                                 QStringLiteral(" files"),
                             row);
        letMessagesThrough();
        if (Abort_Preparation) break;
    }
    m_taskEffects.Publish(std::move(effects));
    return !Abort_Preparation;
}

void VideoConverter::Pause() {
    Set_ConvertButton(Conversion_Paused);
    m_encoder.Pause();
    setElapsedTimer(false);
}

void VideoConverter::Resume() {
    Set_ConvertButton(Conversion_Converting);
    m_encoder.Resume();
    setElapsedTimer(true);
}

void VideoConverter::Stop() {
    const int job = rowOfTask(Current_Job);
    Cmd_Convert.Enabled = false;
    Cmd_StopEnabled = false;
    setElapsedTimer(true); // the header goes on counting while the tasks end

    Stop_Requested = true;
    m_encoder.Stop(true); // the final OnTerminate may run in here; Stop_Requested keeps it quiet
    letMessagesThrough();

    Cmd_Convert.Enabled = true;
    Cmd_StopEnabled = true;
    Set_ConvertButton(Conversion_Idle);
    ProgressBar_Total.Value = 0;
    ProgressBar_Total.Text.clear();
    ProgressBar_Total.Scrolling = Scrolling_Normal;
    m_host.Set_MainState(0, m_table.rows() > 0); // in state 0 the flag says whether the list has items
    Current_Job = -1;
    m_encoder.ClearTasks();
    letMessagesThrough();

    // The engine leaves nothing of an unfinished task, so no file is deleted here: whatever stands
    // under a canceled row's name was there before the run. Finished outputs stay.
    for (int r = 0; r < m_table.rows(); ++r)
        if (!m_endedRows.contains(r)) Set_RowState(m_table, r, true, State_Canceled);

    setElapsedTimer(false);
    Status_Header.clear();
    m_table.redraw();
    if (m_table.rows() > 0) {
        const int row = std::min(std::max(job, 0), m_table.rows() - 1);
        m_table.selectRow(row);
        m_host.Show_InputFileInfo(row);
    }
}

} // namespace morvane
