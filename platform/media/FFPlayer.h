// The playing layer as the player logic sees it: open a file, play, pause, step, seek, grab the
// current frame, choose streams, filter the live picture. One object owns one playing engine; the
// preview, the edit window and the player window take turns with it.
//
// Times are signed 64-bit microsecond counts. Every call and every event is on the main thread: the
// engine's own threads reach it through queued calls. Nothing throws; a failure leaves its words in
// LastError().
#pragma once

#include <QImage>
#include <QList>
#include <QSize>
#include <QString>

#include <cstdint>

namespace morvane {

// Values of PlayState() and of the State event.
enum PlayerState : int {
    PlayerState_Stopped = 0,
    PlayerState_Paused = 1,
    PlayerState_Ended = 2, // PlayState() only: at the end of the file, last frame kept
    PlayerState_Playing = 3,
    PlayerState_EndOfStream = 4,  // State event: the file played to its end
    PlayerState_EndedByError = 5, // State event: the file stopped on an error; see LastError()
};

// The events. Opened gives -1 for a duration the file does not tell.
class FFPlayerEvents {
public:
    virtual ~FFPlayerEvents() = default;
    virtual void Opened(std::int64_t durationUs) = 0;
    virtual void Position(std::int64_t timeUs) = 0;
    virtual void State(int state) = 0;
};

// Where the live picture goes (VideoWindow). The player renders at surfaceSize(), the picture
// letterboxed to the display aspect, and hands each frame over; the image stays valid until the next
// presentFrame() or until the player stops or is released.
class PlayerSurface {
public:
    virtual ~PlayerSurface() = default;
    virtual QSize surfaceSize() const = 0;
    virtual void presentFrame(const QImage& frame) = 0;
    // The picture is gone (stopped, or a file without video): draw the empty picture.
    virtual void clearFrame() = 0;
};

// An audio or subtitle track of the open file. `id` is the number AudioStream and SubtitleStream take.
struct PlayerTrack {
    bool audio = true;
    int id = -1;
    QString title; // "1: eng, aac (2 ch)"
};

class FFPlayer {
public:
    virtual ~FFPlayer() = default;

    virtual bool IsReady() const = 0;
    // Starts the engine. `force` starts it again when it runs. `path` is a library folder; unused here.
    virtual bool Initialize(bool force, const QString& path) = 0;
    virtual QString LastError() const = 0;
    virtual void setEvents(FFPlayerEvents* events) = 0;

    // Loads the file and plays it from the position. Returns once the file is open or has failed
    // (LastError set, State 5), or after a short limit, the file then going on loading. `hidden`
    // plays without drawing.
    virtual void Open(const QString& file, std::int64_t positionUs, bool hidden) = 0;
    virtual void TogglePause() = 0;
    virtual void Stop(bool hard) = 0;
    virtual void Step() = 0; // one frame forward, paused after it
    virtual void Seek(std::int64_t timeUs) = 0;
    // The current frame at the video's own size, after the video filter: BGRA bytes (QImage RGB32).
    // A null image when stopped or when the file has no picture.
    virtual QImage GetFrame() = 0;

    virtual int FrameWidth() const = 0;
    virtual int FrameHeight() const = 0;
    virtual int PlayState() const = 0;
    virtual std::int16_t Volume() const = 0;
    virtual void setVolume(std::int16_t volume) = 0; // 0 to 100
    virtual bool Mute() const = 0;
    virtual void setMute(bool mute) = 0;
    virtual int AudioStream() const = 0; // -1 is none
    virtual void setAudioStream(int id) = 0;
    virtual int SubtitleStream() const = 0;
    virtual void setSubtitleStream(int id) = 0;
    virtual void setSubtitleEnable(int enable) = 0;
    virtual QList<PlayerTrack> Tracks() const = 0;
    // A filter chain in FFmpeg's dialect ("hflip,eq=brightness=0.1"); "" for none. A chain that
    // the engine refuses leaves the picture unfiltered and its words in LastError().
    virtual QString VideoFilter() const = 0;
    virtual void setVideoFilter(const QString& chain) = 0;
    virtual bool Deinterlace() const = 0;
    virtual void setDeinterlace(bool on) = 0;
    // Display aspect (width / height) to show the picture with; 0 or less keeps the file's own.
    virtual float Aspect() const = 0;
    virtual void setAspect(float aspect) = 0;
    virtual PlayerSurface* VideoWindow() const = 0;
    virtual void setVideoWindow(PlayerSurface* surface) = 0;
    // The surface changed its size: draw the current picture again at the new size.
    virtual void Redraw() = 0;
    virtual void Release() = 0;
};

} // namespace morvane
