// A playing layer that plays nothing: it records the calls and keeps the state that the player logic
// reads back, so that the windows' logic is tested without an engine.
#pragma once

#include "FFPlayer.h"

#include <QImage>
#include <QStringList>

namespace morvane {

struct FakePlayer : FFPlayer {
    bool ready = true, initWorks = true;
    QString error, opened;
    QStringList calls;
    QImage frame;
    int state = PlayerState_Stopped, redraws = 0;
    std::int16_t volume = 100;
    bool mute = false;
    int audio = 1, subtitle = -1;
    std::int64_t seekedTo = -1;
    PlayerSurface* surface = nullptr;
    FFPlayerEvents* events = nullptr;

    bool IsReady() const override { return ready; }
    bool Initialize(bool, const QString&) override {
        calls << "init";
        ready = initWorks;
        if (!initWorks) error = "no engine here";
        return initWorks;
    }
    QString LastError() const override { return error; }
    void setEvents(FFPlayerEvents* e) override { events = e; }
    void Open(const QString& file, std::int64_t at, bool) override {
        calls << QString("open %1 %2").arg(file).arg(at);
        opened = file;
        if (error.isEmpty()) state = PlayerState_Playing;
    }
    void TogglePause() override {
        calls << "toggle";
        state = state == PlayerState_Paused ? PlayerState_Playing : PlayerState_Paused;
    }
    void Stop(bool) override {
        calls << "stop";
        state = PlayerState_Stopped;
    }
    void Step() override { calls << "step"; }
    void Seek(std::int64_t t) override { seekedTo = t; }
    QImage GetFrame() override { return state == PlayerState_Stopped ? QImage() : frame; }
    int FrameWidth() const override { return frame.width(); }
    int FrameHeight() const override { return frame.height(); }
    int PlayState() const override { return state; }
    std::int16_t Volume() const override { return volume; }
    void setVolume(std::int16_t v) override { volume = v; }
    bool Mute() const override { return mute; }
    void setMute(bool m) override { mute = m; }
    int AudioStream() const override { return audio; }
    void setAudioStream(int id) override { audio = id; }
    int SubtitleStream() const override { return subtitle; }
    void setSubtitleStream(int id) override { subtitle = id; }
    void setSubtitleEnable(int) override {}
    QList<PlayerTrack> Tracks() const override { return {}; }
    QString VideoFilter() const override { return {}; }
    void setVideoFilter(const QString&) override {}
    bool Deinterlace() const override { return true; }
    void setDeinterlace(bool) override {}
    float Aspect() const override { return 0; }
    void setAspect(float) override {}
    PlayerSurface* VideoWindow() const override { return surface; }
    void setVideoWindow(PlayerSurface* s) override { surface = s; }
    void Redraw() override { ++redraws; }
    void Release() override {}
};

} // namespace morvane
