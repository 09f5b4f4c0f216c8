// The playing layer over libmpv. One object owns one mpv core and its software render context.
//
// Threads: every public call runs on the thread that made the object (the main thread). mpv's wakeup
// callback queues one call that drains the core's events there. Frames are rendered on a render
// thread of our own, which calls nothing of libmpv but the render functions, so that no call of the
// main thread can wait on it; a finished frame is handed to the main thread by a queued call, and the
// surface gets the newest one (older ones that it had no time for are skipped).
#pragma once

#include "FFPlayer.h"

#include <QObject>

#include <atomic>
#include <memory>

struct mpv_handle;
struct mpv_event;
struct mpv_render_context;

namespace morvane {

class MpvRenderThread;
struct MpvFrameBuffer;

struct MpvPlayerOptions {
    QString audioOutput;   // mpv's "ao"; "" lets mpv choose, "null" for tests and benchmarks
    int openWaitMs = 3000; // how long Open waits for the file to open
    bool softwareDecoding = true;
};

// The words of libavfilter for a filter chain that it cannot parse, "" for a good one.
QString Check_FilterChain(const QString& chain);

class MpvPlayer final : public QObject, public FFPlayer {
public:
    using Options = MpvPlayerOptions;

    explicit MpvPlayer(Options options = {}, QObject* parent = nullptr);
    ~MpvPlayer() override;

    bool IsReady() const override { return m_handle != nullptr; }
    bool Initialize(bool force, const QString& path) override;
    QString LastError() const override { return m_lastError; }
    void setEvents(FFPlayerEvents* events) override { m_events = events; }

    void Open(const QString& file, std::int64_t positionUs, bool hidden) override;
    void TogglePause() override;
    void Stop(bool hard) override;
    void Step() override;
    void Seek(std::int64_t timeUs) override;
    QImage GetFrame() override;

    int FrameWidth() const override;
    int FrameHeight() const override;
    int PlayState() const override;
    std::int16_t Volume() const override { return m_volume; }
    void setVolume(std::int16_t volume) override;
    bool Mute() const override { return m_mute; }
    void setMute(bool mute) override;
    int AudioStream() const override;
    void setAudioStream(int id) override;
    int SubtitleStream() const override;
    void setSubtitleStream(int id) override;
    void setSubtitleEnable(int enable) override;
    QList<PlayerTrack> Tracks() const override;
    QString VideoFilter() const override { return m_videoFilter; }
    void setVideoFilter(const QString& chain) override;
    bool Deinterlace() const override { return m_deinterlace; }
    void setDeinterlace(bool on) override;
    float Aspect() const override { return m_aspect; }
    void setAspect(float aspect) override;
    PlayerSurface* VideoWindow() const override { return m_surface; }
    void setVideoWindow(PlayerSurface* surface) override;
    void Redraw() override;
    void Release() override;

    // Frames the engine dropped or decoded too late since the file opened; for benchmarks.
    std::int64_t DroppedFrames() const;
    // The file's position in microseconds, -1 without one.
    std::int64_t PositionUs() const { return m_positionUs; }

private:
    static void onWakeup(void* self);
    void drainEvents();
    void handleEvent(const mpv_event& event);
    void presentFrame();
    void updateRenderTarget();
    bool command(std::initializer_list<const char*> args);
    void fail(const QString& text);

    Options m_options;
    mpv_handle* m_handle = nullptr;
    mpv_render_context* m_render = nullptr;
    std::unique_ptr<MpvRenderThread> m_renderer;
    std::atomic<bool> m_drainPosted{false};
    FFPlayerEvents* m_events = nullptr;
    PlayerSurface* m_surface = nullptr;
    std::unique_ptr<MpvFrameBuffer> m_shownBuffer; // swapped with the render thread's ready frame
    QImage m_shown;                                // wraps m_shownBuffer: what the surface shows

    QString m_lastError;
    QString m_file;
    QString m_videoFilter;
    std::int64_t m_entry = -1; // playlist entry of the file opened last
    std::int64_t m_positionUs = -1;
    std::int16_t m_volume = 100;
    bool m_mute = false;
    bool m_deinterlace = false;
    float m_aspect = 0;
    bool m_hidden = false;
    bool m_loading = false;
    bool m_loaded = false;
    bool m_paused = false;
    bool m_eof = false;
    bool m_openFailed = false;
};

} // namespace morvane
