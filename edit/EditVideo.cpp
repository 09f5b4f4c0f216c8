#include "EditVideo.h"

#include "Effects_Mods.h"
#include "FileList_Mods.h"
#include "FileViewMain.h"
#include "Globals.h"
#include "Preview_Frame.h"
#include "mMain.h"

#include <QStringList>

#include <algorithm>

namespace morvane {

namespace {

const QString kSwitchOn = QStringLiteral("img_switch_on");
const QString kSwitchOff = QStringLiteral("img_switch_off");

// A time pair's half as stored: decimal text. Nothing for an empty or unusable cell.
std::optional<std::int32_t> halfOf(const QString& text) {
    bool ok = false;
    const qlonglong value = text.trimmed().toLongLong(&ok);
    if (!ok || value < INT32_MIN || value > UINT32_MAX) return std::nullopt;
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

} // namespace

std::array<std::int32_t, 4> Trim_Halves(std::int64_t trimStart, std::int64_t trimEnd) {
    std::int32_t startLow = Time_Low(trimStart), startHigh = Time_High(trimStart);
    const std::int32_t endLow = Time_Low(trimEnd), endHigh = Time_High(trimEnd);
    if (startLow == endLow) startLow = 0;
    if (startHigh == endHigh) startHigh = 0;
    return {startLow, startHigh, endLow, endHigh};
}

bool Is_Edited(const EditColumns& v, std::int32_t clipLow, std::int32_t clipHigh) {
    const auto halves = Trim_Halves(v.TrimStart, v.TrimEnd);
    const bool plain = v.Crop.Top == 0 && v.Crop.Bottom == 0 && v.Crop.Left == 0 && v.Crop.Right == 0 &&
                       halves[0] == 0 && halves[1] == 0 && halves[2] == clipLow && halves[3] == clipHigh &&
                       v.Effects.trimmed().isEmpty() && v.Deinterlace && v.AspectMode == kAspectOriginal;
    return !plain;
}

QRect Fit_Preview(QSize area, std::int32_t width, std::int32_t height) {
    if (area.isEmpty() || width <= 0 || height <= 0) return {};
    int w = area.width();
    int h = static_cast<int>(static_cast<std::int64_t>(w) * height / width);
    if (h > area.height()) {
        h = area.height();
        w = static_cast<int>(static_cast<std::int64_t>(h) * width / height);
    }
    w = std::max(w, 1);
    h = std::max(h, 1);
    return {(area.width() - w) / 2, (area.height() - h) / 2, w, h};
}

EditVideo::EditVideo(FileViewMain& table, MediaPlayer& media, int row)
    : trim(trimHost()), Info_Row(row), m_table(table), m_media(media) {
    m_media.EditWindow_StopPlayer = [this] { EditWindow_StopPlayer(); };
    m_media.PlayerOwnerForm = &panel;
    // The player's position moves the trim bar, as it moves the play bar of the other windows.
    panel.changed = [this] {
        trim.Position(m_media.PlayPosition);
        notifyPicture();
    };
}

EditVideo::~EditVideo() {
    if (!m_unloaded) Form_Unload();
    m_media.EditWindow_StopPlayer = nullptr;
}

TrimHost EditVideo::trimHost() {
    TrimHost host;
    host.playState = [this] { return m_media.player().PlayState(); };
    host.pressPlay = [this] { Cmd_Player_Click(0); };
    host.pressStop = [this] { Cmd_Player_Click(1); };
    host.seek = [this](std::int64_t time) {
        // A seek on a stopped player opens the file there, so the picture at that time shows.
        if (m_media.player().PlayState() == PlayerState_Stopped) {
            playFrom(time);
            notify();
        } else {
            m_media.player().Seek(time);
        }
    };
    host.step = [this] { m_media.Player_Command(PlayerMode_Step, options()); };
    host.letEventsRun = [this] {
        if (m_media.LetEventsRun) m_media.LetEventsRun();
    };
    host.playerFlag = [this] { return m_media.PlayerFlag; };
    return host;
}

PlayerOptions EditVideo::options() const {
    PlayerOptions o;
    o.FileName = FilePath;
    o.Position = m_media.PlayPosition;
    o.Aspect = SourceAspect;
    o.VolumeByRef = static_cast<std::int16_t>(buttons.volume);
    // The picture is drawn from the frames the preview timer takes; the player draws nowhere.
    o.WindowHandle = nullptr;
    return o;
}

void EditVideo::notifyPicture() {
    if (pictureChanged) pictureChanged();
}

void EditVideo::notify() {
    if (changed) changed();
}

bool EditVideo::Dirty() const {
    return m_dirty || trim.Dirty || crop.Dirty || effects.Dirty;
}

void EditVideo::Clear_Dirty() {
    m_dirty = trim.Dirty = crop.Dirty = effects.Dirty = false;
}

void EditVideo::Layout_Preview(QSize previewArea) {
    const QRect fitted = Fit_Preview(previewArea, SourceWidth, SourceHeight);
    const QSize size = fitted.isEmpty() ? previewArea : fitted.size();
    if (size != previewSize) {
        // The rectangle keeps its margins in source pixels across the new scale.
        const std::optional<StoredCrop> kept =
            previewSize.isEmpty() ? std::nullopt : crop.Stored_Crop(SourceWidth, SourceHeight);
        previewSize = size;
        crop.Set_Bounds(size.width(), size.height());
        if (kept)
            crop.Restore_CropRect(SourceWidth, SourceHeight, *kept);
        else
            crop.Set_CropRect(0, 0, 0, 0);
    }
    // The output frame is 16:9 in the whole area; the aspect chosen places the preview's frame in it.
    m_previewArea = previewArea;
    outputShape = Fit_Preview(previewArea, 16, 9);
    previewFrame = crop.PreviewFrameRect(outputShape, previewArea);
}

void EditVideo::Form_Load(QSize previewArea) {
    FilePath =
        (m_table.text(Info_Row, FileCol::FilePath) + m_table.text(Info_Row, FileCol::FileName)).trimmed();
    SourceWidth = Parse_IntOr(m_table.text(Info_Row, FileCol::VideoWidth), 0);
    SourceHeight = Parse_IntOr(m_table.text(Info_Row, FileCol::VideoHeight), 0);
    SourceAspect = m_table.text(Info_Row, FileCol::VideoSampleAspectRatio).trimmed().toFloat();
    Txt_CropOriginalSize = QStringLiteral("%1 x %2").arg(SourceWidth).arg(SourceHeight);
    Layout_Preview(previewArea);
    buttons.volume = buttons.volumeMax;
    Cmd_Tab_Click(CurrentTab);
    notify();
}

bool EditVideo::Form_Activate() {
    if (Activated) return true;
    const auto refuse = [this] {
        Show_Message(FilePath + QStringLiteral(" is not editable!"), MB_ICONEXCLAMATION,
                     QStringLiteral("Sorry!"));
        if (closeWindow) closeWindow();
        return false;
    };
    effects.Txt_EffectsStr = m_table.text(Info_Row, FileCol::Filters).trimmed();
    effects.MarkButtonSelected(0);
    if (!effects.Apply_EffectsText(effects.Txt_EffectsStr)) return refuse();
    Clear_Dirty();

    trim.lbl_SelectedTime = QStringLiteral("00:00:00");
    trim.lbl_SelectedTimeTag = QStringLiteral("0");
    buttons.playTag = QStringLiteral("Play");
    buttons.muteTag = QStringLiteral("On");

    const auto pair = [this](int low, int high) -> std::optional<std::int64_t> {
        const auto l = halfOf(m_table.text(Info_Row, low));
        const auto h = halfOf(m_table.text(Info_Row, high));
        if (!l || !h) return std::nullopt;
        return Time_FromPair(*l, *h);
    };
    const std::optional<std::int64_t> clip = pair(FileCol::FileDurationLow, FileCol::FileDurationHigh);
    if (!clip || *clip <= 0) return refuse();
    // A trim that was never set is the whole clip.
    const std::int64_t start = pair(FileCol::TrimStartLow, FileCol::TrimStartHigh).value_or(0);
    const std::int64_t end = pair(FileCol::TrimEndLow, FileCol::TrimEndHigh).value_or(*clip);
    if (trim.BarMax <= 0) trim.BarMax = 1000;
    if (!trim.Setup(*clip, trim.BarMax, std::max<std::int64_t>(start, 0), end > 0 ? end : *clip))
        return refuse();
    panel.barWidth = trim.BarMax;
    Activated = true;
    timers.WaitToPlay = true;
    setDeinterlace(m_table.text(Info_Row, FileCol::Deinterlacing).trimmed() == QLatin1String("1") ? 1 : 0);
    Clear_Dirty();
    notify();
    return true;
}

void EditVideo::Timer_WaitToPlay_Tick() {
    timers.WaitToPlay = false;
    m_media.player().setAspect(SourceAspect);
    trim.Cmd_Trim_Click(2);
    StoredCrop stored;
    stored.Top = Parse_IntOr(m_table.text(Info_Row, FileCol::CropTop), 0);
    stored.Bottom = Parse_IntOr(m_table.text(Info_Row, FileCol::CropBottom), 0);
    stored.Left = Parse_IntOr(m_table.text(Info_Row, FileCol::CropLeft), 0);
    stored.Right = Parse_IntOr(m_table.text(Info_Row, FileCol::CropRight), 0);
    crop.Restore_CropRect(SourceWidth, SourceHeight, stored);
    const QString word = m_table.text(Info_Row, FileCol::NewAspectRatio).trimmed();
    for (std::size_t i = 0; i < kAspectButtons.size(); ++i)
        if (word == QLatin1String(kAspectButtons[i].word)) Cmd_AspectRatio_Click(static_cast<int>(i));
    crop.Show_CropHandles(true);
    Clear_Dirty();
    notify();
}

void EditVideo::Cmd_Tab_Click(int index) {
    if (index < 0 || index >= kTabs) return;
    Pic_Preview[static_cast<std::size_t>(index)] = QImage();
    CurrentTab = index;
    m_dirty = true; // as every control of the window; the opening clears it after its own press
    // The crop labels follow the rectangle only while its tab shows.
    timers.GetCropInfo = index == 1;
    if (index == 1) Timer_GetCropInfo_Tick();
    notify();
}

EditColumns EditVideo::Current_Values() const {
    EditColumns v;
    v.TrimStart = trim.TrimStart;
    v.TrimEnd = trim.TrimEnd;
    v.Crop = crop.Stored_Crop(SourceWidth, SourceHeight)
                 .value_or(StoredCrop{0, 0, 0, 0, SourceWidth, SourceHeight});
    v.PadTop = crop.PadTop;
    v.PadBottom = crop.PadBottom;
    v.PadLeft = crop.PadLeft;
    v.PadRight = crop.PadRight;
    v.Effects = effects.Txt_EffectsStr;
    v.Deinterlace = Chk_Deinterlace == 1;
    v.AspectMode = crop.AspectMode;
    v.AspectText = crop.AspectText.trimmed();
    return v;
}

void EditVideo::Save_EditValues() {
    const EditColumns v = Current_Values();
    const int row = Info_Row;
    const auto halves = Trim_Halves(v.TrimStart, v.TrimEnd);
    const std::int32_t clipLow = halfOf(m_table.text(row, FileCol::FileDurationLow)).value_or(0);
    const std::int32_t clipHigh = halfOf(m_table.text(row, FileCol::FileDurationHigh)).value_or(0);
    m_table.setEditMark(row, Is_Edited(v, clipLow, clipHigh) ? kEditMarkImage : 0);
    // The list shows the length that will be converted.
    m_table.setText(
        row, FileCol::Duration,
        Format_TimeCode(Time_FromPair(halves[2], halves[3]) - Time_FromPair(halves[0], halves[1])).left(8));
    m_table.setText(row, FileCol::SrcDuration, trim.lbl_SelectedTimeTag);
    m_table.setText(row, FileCol::TrimStartLow, QString::number(halves[0]));
    m_table.setText(row, FileCol::TrimStartHigh, QString::number(halves[1]));
    m_table.setText(row, FileCol::TrimEndLow, QString::number(halves[2]));
    m_table.setText(row, FileCol::TrimEndHigh, QString::number(halves[3]));
    m_table.setText(row, FileCol::CropTop, QString::number(v.Crop.Top));
    m_table.setText(row, FileCol::CropBottom, QString::number(v.Crop.Bottom));
    m_table.setText(row, FileCol::CropLeft, QString::number(v.Crop.Left));
    m_table.setText(row, FileCol::CropRight, QString::number(v.Crop.Right));
    m_table.setText(row, FileCol::PadTop, QString::number(v.PadTop));
    m_table.setText(row, FileCol::PadBottom, QString::number(v.PadBottom));
    m_table.setText(row, FileCol::PadLeft, QString::number(v.PadLeft));
    m_table.setText(row, FileCol::PadRight, QString::number(v.PadRight));
    m_table.setText(row, FileCol::PadColor, QStringLiteral("black"));
    m_table.setLong(row, FileCol::CropWidth, v.Crop.Width);
    m_table.setLong(row, FileCol::CropHeight, v.Crop.Height);
    m_table.setText(row, FileCol::Filters, v.Effects);
    m_table.setText(row, FileCol::Deinterlacing, v.Deinterlace ? QStringLiteral("1") : QStringLiteral("0"));
    m_table.setText(row, FileCol::NewAspectRatio, v.AspectText);
    Update_Totals(m_table);
    // "No Effect" names no play filter: the live picture keeps its filter.
    effects.Apply_PlayFilter(QStringLiteral("No Effect"));
    Clear_Dirty();
}

void EditVideo::Cmd_Panels_Click(int index) {
    if (index == 0) {
        Save_EditValues();
    } else if (index == 1) {
        if (Dirty() && Show_Message(QStringLiteral("Do you want to save changes?"),
                                    MB_YESNO | MB_ICONQUESTION, PRODUCT_NAME) == ID_YES)
            Save_EditValues();
        Clear_Dirty();
    } else {
        return;
    }
    if (closeWindow) closeWindow();
}

void EditVideo::Form_QueryUnload() {
    if (Dirty() && Show_Message(QStringLiteral("Do you want to save changes?"), MB_YESNO | MB_ICONQUESTION,
                                PRODUCT_NAME) == ID_YES)
        Save_EditValues();
    Clear_Dirty();
    Form_Unload();
}

void EditVideo::Form_Unload() {
    if (m_unloaded) return;
    m_unloaded = true;
    FFPlayer& player = m_media.player();
    m_media.Player_Command(PlayerMode_Stop, {});
    player.setMute(false);
    player.setVolume(static_cast<std::int16_t>(buttons.volumeMax));
    player.setVideoFilter(QString());
    if (m_media.LetEventsRun) m_media.LetEventsRun();
    EditWindowOpen = false;
    if (m_media.PlayerOwnerForm == &panel) m_media.PlayerOwnerForm = nullptr;
    if (activateMain) activateMain();
    trim.Timer_PlaySelected = false;
    timers = {};
    notify();
}

void EditVideo::clearPreviews() {
    // The last frame itself stays, so that the crop rectangle still has a picture under it.
    for (QImage& picture : Pic_Preview)
        picture = QImage();
}

void EditVideo::Cmd_Player_Click(int index) {
    switch (index) {
    case 0:
        // After a stop or the end of the file, play starts again at the selection's start.
        playFrom(buttons.playTag == QLatin1String("Pause") ? m_media.PlayPosition : trim.TrimStart);
        break;
    case 1:
        Stop_Click(m_media, buttons);
        trim.lbl_PlayTime = QStringLiteral("00:00:00");
        trim.BarGuard = true;
        trim.BarValue = 0;
        trim.BarGuard = false;
        playControlsEnabled = false;
        trim.Timer_PlaySelected = false;
        timers.GetPreview = false;
        clearPreviews();
        break;
    case 2:
        Mute_Click(m_media, buttons);
        break;
    default:
        return;
    }
    m_dirty = true;
    notify();
}

bool EditVideo::playFrom(std::int64_t position) {
    PlayerOptions o = options();
    o.Position = position;
    const bool opening = buttons.playTag != QLatin1String("Pause");
    if (!PlayPause_Click(m_media, buttons, o)) return false;
    if (opening) m_media.player().setVideoFilter(QString(effects.PlayFilter).remove(QLatin1Char('"')));
    playControlsEnabled = true;
    timers.GetPreview = true;
    return true;
}

void EditVideo::Slider_MPVolume_Change(int value) {
    Volume_Change(m_media, buttons, value);
    notify();
}

void EditVideo::setDeinterlace(int value) {
    Chk_Deinterlace = value == 1 ? 1 : 0;
    crop.DeinterlaceOn = Chk_Deinterlace == 1;
    m_media.player().setDeinterlace(Chk_Deinterlace == 1);
    Switch_DeinterlaceImage = Chk_Deinterlace == 1 ? kSwitchOn : kSwitchOff;
}

void EditVideo::Chk_Deinterlace_Click(int value) {
    setDeinterlace(value);
    m_dirty = true;
    notify();
}

void EditVideo::Combo_AudioSubTitle_Click(int combo, const QString& text) {
    AudioSubTitle_Choose(m_media, options(), combo, text);
    m_dirty = true;
    notify();
}

void EditVideo::Cmd_AspectRatio_Click(int index) {
    crop.Cmd_AspectRatio_Click(index);
    previewFrame = crop.PreviewFrameRect(outputShape, m_previewArea);
    crop.Dirty = true;
    notify();
}

void EditVideo::Cmd_Reset_Click(int index) {
    switch (index) {
    case 0:
        trim.Cmd_Reset0();
        break;
    case 1:
        crop.Cmd_Reset1();
        previewFrame = crop.PreviewFrameRect(outputShape, m_previewArea);
        setDeinterlace(crop.DeinterlaceOn ? 1 : 0);
        break;
    case 2:
    case 3:
        effects.Cmd_Reset(index);
        break;
    default:
        return;
    }
    m_dirty = true;
    notify();
}

void EditVideo::Timer_GetPreview_Tick() {
    if (CurrentTab < 0 || CurrentTab >= kTabs) return;
    const QImage frame = m_media.player().GetFrame();
    if (frame.isNull()) return; // a stopped player has no frame: the picture stays as it was
    Pic_CaptureTmp = frame;
    QImage& picture = Pic_Preview[static_cast<std::size_t>(CurrentTab)];
    if (Draw_PreviewFrame(crop, frame, previewFrame.size(), SourceAspect, effects.Txt_EffectsStr, picture,
                          m_frameSeed++))
        notifyPicture();
}

void EditVideo::Timer_GetCropInfo_Tick() {
    if (const std::optional<CropInfo> info = crop.Timer_GetCropInfo(SourceWidth, SourceHeight))
        cropInfo = *info;
}

} // namespace morvane
