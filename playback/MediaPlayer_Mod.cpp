#include "MediaPlayer_Mod.h"

#include "Globals.h"
#include "Image_Convert.h"
#include "mMain.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QRandomGenerator>

#include <cmath>

namespace morvane {

namespace {
const QString kPlayerTitle = QStringLiteral("Player");
} // namespace

MediaPlayer::MediaPlayer(FFPlayer& player) : m_player(player) {
    LetEventsRun = [] { QCoreApplication::processEvents(); };
    m_player.setEvents(this);
}

MediaPlayer::~MediaPlayer() {
    m_player.setEvents(nullptr);
}

void MediaPlayer::panelChanged() {
    if (PlayerOwnerForm && PlayerOwnerForm->changed) PlayerOwnerForm->changed();
}

void MediaPlayer::Player_Command(int mode, const PlayerOptions& options) {
    switch (mode) {
    case PlayerMode_OpenAndPlay: {
        if (!m_player.IsReady() && !m_player.Initialize(false, Folder_Libs)) {
            Show_Message(m_player.LastError(), MB_ICONCRITICAL, kPlayerTitle);
            return;
        }
        m_player.setDeinterlace(true);
        // The overlay text would join the filter; it is always empty, so the filter stands.
        m_player.setVideoWindow(options.ShowVideo ? options.WindowHandle : nullptr);
        m_player.setVolume(options.VolumeByRef);
        m_player.Open(options.FileName, options.Position, !options.ShowVideo);
        if (options.AudioStream >= 0) m_player.setAudioStream(options.AudioStream);
        if (options.SubtitleStream >= 0) {
            m_player.setSubtitleEnable(1);
            m_player.setSubtitleStream(options.SubtitleStream);
        }
        m_player.setAspect(options.Aspect);
        break;
    }
    case PlayerMode_Start:
        if (m_player.GetFrame().isNull())
            Player_Command(PlayerMode_OpenAndPlay, options);
        else
            m_player.TogglePause();
        break;
    case PlayerMode_TogglePause:
        m_player.TogglePause();
        break;
    case PlayerMode_Stop:
        m_player.Stop(true);
        if (LetEventsRun) LetEventsRun();
        break;
    case PlayerMode_Step:
        m_player.Step();
        break;
    default:
        break;
    }
}

void MediaPlayer::Seek_Preview(int barValue) {
    if (BarGuard || !PlayerOwnerForm || PlayerOwnerForm->barMax <= 0) return;
    PlayerOwnerForm->barValue = barValue;
    const double target =
        static_cast<double>(barValue) * static_cast<double>(ClipDuration) / PlayerOwnerForm->barMax;
    m_player.Seek(static_cast<std::int64_t>(std::llround(target)));
}

void MediaPlayer::Reset_Panel() {
    if (!PlayerOwnerForm) return;
    PlayerOwnerForm->lbl_PlayTime = QStringLiteral("00:00:00");
    PlayerOwnerForm->lbl_PlayTimeTag = QStringLiteral("00:00:00.000");
    BarGuard = true;
    PlayerOwnerForm->barValue = 0;
    BarGuard = false;
    panelChanged();
}

void MediaPlayer::Opened(std::int64_t durationUs) {
    // A duration the file does not tell comes as -1, which the halves of a time pair store as 0.
    ClipDuration = durationUs < 0 ? 0 : durationUs;
    PlayPosition = 0;
    if (!PlayerOwnerForm) return;
    PlayerOwnerForm->lbl_PlayTotal = Format_TimeCode(ClipDuration).left(8);
    PlayerOwnerForm->lbl_PlayTime = QStringLiteral("00:00:00");
    PlayerOwnerForm->lbl_PlayTimeTag = QStringLiteral("00:00:00.000");
    PlayerOwnerForm->barMax = std::max(PlayerOwnerForm->barWidth, 1);
    BarGuard = true;
    PlayerOwnerForm->barValue = 0;
    BarGuard = false;
    panelChanged();
}

void MediaPlayer::Position(std::int64_t timeUs) {
    PlayPosition = timeUs;
    if (!PlayerOwnerForm) return;
    const QString text = Format_TimeCode(timeUs);
    PlayerOwnerForm->lbl_PlayTime = text.left(8);
    PlayerOwnerForm->lbl_PlayTimeTag = text;
    if (timeUs > 0 && ClipDuration != 0) {
        const double share = Time_ToSeconds(timeUs) / Time_ToSeconds(ClipDuration);
        const double position = std::trunc(share * PlayerOwnerForm->barMax);
        const int value =
            static_cast<int>(std::clamp(position, 0.0, static_cast<double>(PlayerOwnerForm->barMax)));
        if (value != PlayerOwnerForm->barValue) {
            BarGuard = true;
            PlayerOwnerForm->barValue = value;
            BarGuard = false;
        }
    }
    panelChanged();
}

void MediaPlayer::State(int state) {
    if (state != PlayerState_EndOfStream && state != PlayerState_EndedByError) return;
    if (m_player.VideoWindow()) m_player.Redraw();
    if (EditWindowOpen) {
        if (EditWindow_StopPlayer) EditWindow_StopPlayer();
    } else if (PlayerWindowOpen) {
        if (PlayerWindow_StopPlayer) PlayerWindow_StopPlayer();
    }
}

bool PlayPause_Click(MediaPlayer& media, PlayerButtons& buttons, const PlayerOptions& options) {
    if (buttons.playTag == QLatin1String("Pause")) {
        media.Player_Command(PlayerMode_TogglePause, options);
        const bool paused = media.player().PlayState() == PlayerState_Paused;
        buttons.playImage = paused ? QStringLiteral("img_player_play") : QStringLiteral("img_player_pause");
        media.PlayerFlag = paused ? 0 : 1;
        return true;
    }
    if (!QFile::exists(options.FileName)) {
        Show_Message(options.FileName + QLatin1Char('\n') + QStringLiteral("File not found!"),
                     MB_ICONEXCLAMATION, kPlayerTitle);
        return false;
    }
    media.Player_Command(PlayerMode_Stop, options);
    media.Player_Command(PlayerMode_OpenAndPlay, options);
    if (!media.player().LastError().isEmpty()) {
        Show_Message(media.player().LastError(), MB_ICONEXCLAMATION, kPlayerTitle);
        media.Player_Command(PlayerMode_Stop, options);
        return false;
    }
    media.PlayerFlag = -1;
    buttons.playImage = QStringLiteral("img_player_pause");
    buttons.playTag = QStringLiteral("Pause");
    media.PlayerFlag = 0;
    buttons.stopEnabled = true;
    return true;
}

void Stop_Click(MediaPlayer& media, PlayerButtons& buttons) {
    media.Player_Command(PlayerMode_Stop, {});
    buttons.playTag = QStringLiteral("Play");
    buttons.playImage = QStringLiteral("img_player_play");
    buttons.stopEnabled = false;
    media.PlayerFlag = 2;
    media.Reset_Panel();
}

void Mute_Click(MediaPlayer& media, PlayerButtons& buttons) {
    if (buttons.muteTag == QLatin1String("On")) {
        media.player().setMute(true);
        buttons.muteTag = QStringLiteral("Off");
        buttons.muteImage = QStringLiteral("img_vol_off");
        return;
    }
    buttons.muteTag = QStringLiteral("On");
    buttons.muteImage = QStringLiteral("img_vol_on");
    if (buttons.volume == 0) Volume_Change(media, buttons, buttons.volumeMax);
    media.player().setMute(false);
}

void Volume_Change(MediaPlayer& media, PlayerButtons& buttons, int value) {
    buttons.volume = std::clamp(value, 0, std::max(buttons.volumeMax, 0));
    media.player().setVolume(static_cast<std::int16_t>(buttons.volume));
    buttons.muteTag = buttons.volume == 0 ? QStringLiteral("Off") : QStringLiteral("On");
    buttons.muteImage = buttons.volume == 0 ? QStringLiteral("img_vol_off") : QStringLiteral("img_vol_on");
}

void AudioSubTitle_Choose(MediaPlayer& media, const PlayerOptions& options, int combo, const QString& text) {
    const int id = Parse_IntOr(text.section(QLatin1Char(':'), 0, 0).trimmed(), -1);
    FFPlayer& player = media.player();
    if (combo == 0) {
        player.setAudioStream(id);
        return;
    }
    const std::int64_t kept = media.PlayPosition;
    media.Player_Command(PlayerMode_Stop, {});
    PlayerOptions o = options;
    o.Position = kept;
    o.SubtitleStream = id;
    media.Player_Command(PlayerMode_OpenAndPlay, o);
    player.setSubtitleEnable(1);
    player.setSubtitleStream(id);
    player.Seek(kept);
}

QString Snapshot_Name(const QString& playTimeTag) {
    QString position = playTimeTag;
    return QStringLiteral("Snapshot-") + position.replace(QLatin1Char(':'), QLatin1Char('.'));
}

bool Save_Snapshot(const QImage& frame, int type, const QString& target, const QString& tempFolder,
                   QString* error) {
    const auto failWith = [error](const QString& text) {
        if (error) *error = text;
        return false;
    };
    if (ImageTypeExtension(type).isEmpty())
        return failWith(QStringLiteral("Unknown picture type %1.").arg(type));
    if (frame.isNull()) return failWith(QStringLiteral("There is no picture to capture."));
    const QDir folder(tempFolder.isEmpty() ? QDir::tempPath() : tempFolder);
    QString temporary;
    do {
        const int number = QRandomGenerator::global()->bounded(1, 10001);
        temporary = folder.filePath(QStringLiteral("temp_%1.bmp").arg(number));
    } while (QFile::exists(temporary));
    if (!frame.save(temporary, "BMP")) {
        QFile::remove(temporary);
        return failWith(QStringLiteral("writing '%1': the picture could not be saved").arg(temporary));
    }
    const ImageConvertResult result = ImageConvert1(temporary, type, target);
    QFile::remove(temporary);
    if (!result.ok) return failWith(result.error);
    return true;
}

} // namespace morvane
