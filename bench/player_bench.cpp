// Plays one clip through the playing layer into a window, as the player window does, and prints what
// it cost: time from Open to the first frame drawn, frames drawn, frames the engine dropped, and the
// process's CPU time over the wall time. bench/player_vs_mpv.sh runs it beside the mpv program.
//
//   bench_player CLIP [--size WxH] [--seconds N]
#include "MpvPlayer.h"
#include "VideoSurface.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <sys/resource.h>

#include <cstdio>

using namespace morvane;

namespace {

// Counts what reaches the screen: frames handed over, and paints of a new frame.
class CountingSurface : public VideoSurface {
public:
    QElapsedTimer clock;
    qint64 firstFrameMs = -1;
    int presented = 0;
    int painted = 0;
    void presentFrame(const QImage& frame) override {
        if (firstFrameMs < 0) firstFrameMs = clock.elapsed();
        ++presented;
        m_fresh = true;
        VideoSurface::presentFrame(frame);
    }

protected:
    void paintEvent(QPaintEvent* event) override {
        VideoSurface::paintEvent(event);
        if (m_fresh) ++painted;
        m_fresh = false;
    }

private:
    bool m_fresh = false;
};

double cpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

struct Events : FFPlayerEvents {
    bool ended = false;
    void Opened(std::int64_t) override {}
    void Position(std::int64_t) override {}
    void State(int state) override {
        if (state == PlayerState_EndOfStream || state == PlayerState_EndedByError) ended = true;
    }
};

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 2) {
        std::fprintf(stderr, "usage: bench_player CLIP [--size WxH] [--seconds N]\n");
        return 2;
    }
    QSize size(1920, 1080);
    int seconds = 0;
    for (int i = 2; i + 1 < args.size(); i += 2) {
        if (args[i] == "--size")
            size = QSize(args[i + 1].section('x', 0, 0).toInt(), args[i + 1].section('x', 1).toInt());
        if (args[i] == "--seconds") seconds = args[i + 1].toInt();
    }

    CountingSurface surface;
    surface.resize(size);
    surface.show();
    MpvPlayerOptions options;
    options.audioOutput = QStringLiteral("null");
    MpvPlayer player(options);
    Events events;
    player.setEvents(&events);
    surface.setPlayer(&player);
    if (!player.Initialize(false, {})) {
        std::fprintf(stderr, "%s\n", qPrintable(player.LastError()));
        return 1;
    }
    player.setVideoWindow(&surface);
    QCoreApplication::processEvents();

    const double cpuBefore = cpuSeconds();
    QElapsedTimer wall;
    wall.start();
    surface.clock.start();
    player.Open(args[1], 0, false);
    if (!player.LastError().isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(player.LastError()));
        return 1;
    }
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        if (events.ended || (seconds > 0 && wall.elapsed() >= seconds * 1000)) app.quit();
    });
    poll.start(20);
    app.exec();
    const double wallSeconds = static_cast<double>(wall.elapsed()) / 1000.0;
    const double cpu = cpuSeconds() - cpuBefore;
    std::printf("open_to_first_frame_ms %lld\nframes_presented %d\nframes_painted %d\ndropped %lld\n"
                "cpu_seconds %.2f\nwall_seconds %.2f\ncpu_share %.2f\n",
                static_cast<long long>(surface.firstFrameMs), surface.presented, surface.painted,
                static_cast<long long>(player.DroppedFrames()), cpu, wallSeconds, cpu / wallSeconds);
    player.setVideoWindow(nullptr);
    player.Release();
    return 0;
}
