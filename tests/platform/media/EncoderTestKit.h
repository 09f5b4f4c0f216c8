// What the engine's tests share: an event recorder that runs the event loop to the queue's end, and
// the properties of a media file read back with libavformat.
#pragma once

#include "FFEncoder.h"
#include "LibavHandles.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <QEventLoop>
#include <QString>
#include <QTimer>

#include <string>
#include <vector>

namespace morvane {

using namespace libav;

struct Event {
    bool terminate = false;
    int task = 0;
    qint64 position = 0;
    qint64 duration = 0;
    bool finished = false;
    bool failed = false;
    QString message;
};

// Records the events of an encoder and runs the event loop until the queue's end.
class Recorder {
public:
    explicit Recorder(FFEncoder& encoder) : m_encoder(encoder) {
        QObject::connect(&encoder, &FFEncoder::OnProgress, [this](int task, qint64 pos, qint64 dur) {
            events.push_back({false, task, pos, dur, false, false, {}});
        });
        QObject::connect(&encoder, &FFEncoder::OnTerminate,
                         [this](int task, bool finished, bool failed, const QString& message) {
                             events.push_back({true, task, 0, 0, finished, failed, message});
                         });
    }
    bool waitForEnd(int timeoutMs = 60000) {
        QEventLoop loop;
        QObject::connect(&m_encoder, &FFEncoder::OnTerminate, &loop, [&loop](int task) {
            if (task == -1) loop.quit();
        });
        QTimer::singleShot(timeoutMs, &loop, &QEventLoop::quit);
        if (!ended()) loop.exec();
        return ended();
    }
    bool ended() const { return !events.empty() && events.back().terminate && events.back().task == -1; }
    const Event* terminateOf(int task) const {
        for (const Event& e : events)
            if (e.terminate && e.task == task) return &e;
        return nullptr;
    }
    std::vector<Event> events;

private:
    FFEncoder& m_encoder;
};

inline void spin(int ms) {
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

struct Props {
    std::string videoCodec, pixelFormat, audioCodec;
    int width = 0, height = 0, sampleRate = 0, channels = 0;
    double frameRate = 0, duration = 0, displayAspect = 0;
    std::uint32_t videoTag = 0;
};

inline Props probe(const QString& path) {
    Props p;
    AVFormatContext* raw = nullptr;
    if (avformat_open_input(&raw, path.toUtf8().constData(), nullptr, nullptr) < 0) return p;
    InputPtr in(raw);
    if (avformat_find_stream_info(in.get(), nullptr) < 0) return p;
    p.duration = in->duration > 0 ? static_cast<double>(in->duration) / AV_TIME_BASE : 0;
    for (unsigned i = 0; i < in->nb_streams; ++i) {
        const AVStream* st = in->streams[i];
        const AVCodecParameters* c = st->codecpar;
        if (c->codec_type == AVMEDIA_TYPE_VIDEO) {
            p.videoCodec = avcodec_get_name(c->codec_id);
            p.pixelFormat = c->format >= 0 ? av_get_pix_fmt_name(static_cast<AVPixelFormat>(c->format)) : "";
            p.width = c->width;
            p.height = c->height;
            p.videoTag = c->codec_tag;
            p.frameRate = av_q2d(av_guess_frame_rate(in.get(), const_cast<AVStream*>(st), nullptr));
            AVRational sar = av_guess_sample_aspect_ratio(in.get(), const_cast<AVStream*>(st), nullptr);
            if (sar.num == 0) sar = {1, 1};
            p.displayAspect = av_q2d(sar) * c->width / c->height;
        } else if (c->codec_type == AVMEDIA_TYPE_AUDIO) {
            p.audioCodec = avcodec_get_name(c->codec_id);
            p.sampleRate = c->sample_rate;
            p.channels = c->ch_layout.nb_channels;
        }
    }
    return p;
}

} // namespace morvane
