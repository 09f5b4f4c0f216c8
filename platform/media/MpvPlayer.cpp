#include "MpvPlayer.h"

#include <mpv/client.h>
#include <mpv/render.h>

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavutil/error.h>
}

#include <QElapsedTimer>
#include <QFileInfo>
#include <QMetaObject>

#include <algorithm>
#include <clocale>
#include <cmath>
#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace morvane {

namespace {

// Property names in one place.
constexpr const char* kTimePos = "time-pos";
constexpr const char* kPause = "pause";
constexpr const char* kEofReached = "eof-reached";
constexpr const char* kDuration = "duration";

} // namespace

// A 64-byte aligned BGRA buffer, as mpv's software renderer likes it.
struct MpvFrameBuffer {
    std::unique_ptr<uchar, decltype(&std::free)> bits{nullptr, &std::free};
    int width = 0;
    int height = 0;
    std::size_t stride = 0;

    void ensure(int w, int h) {
        if (bits && w == width && h == height) return;
        stride = (static_cast<std::size_t>(w) * 4 + 63) / 64 * 64;
        const std::size_t bytes = stride * static_cast<std::size_t>(h);
        bits.reset(static_cast<uchar*>(std::aligned_alloc(64, bytes > 0 ? bytes : 64)));
        width = w;
        height = h;
    }
    // mpv leaves the fourth byte undefined; Qt's RGB32 wants it opaque.
    void makeOpaque() {
        for (int y = 0; y < height; ++y) {
            auto* row = reinterpret_cast<std::uint32_t*>(bits.get() + stride * y);
            for (int x = 0; x < width; ++x)
                row[x] |= 0xff000000u;
        }
    }
};

namespace {

QString errorText(int code) {
    return QString::fromUtf8(mpv_error_string(code));
}

QString avErrorText(int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return QString::fromUtf8(text);
}

std::int64_t toMicroseconds(double seconds) {
    if (!std::isfinite(seconds)) return -1;
    return static_cast<std::int64_t>(std::llround(seconds * 1e6));
}

} // namespace

// Renders on its own thread. It sleeps until mpv says a frame is due or the main thread asks for a
// redraw, renders at the target size into the back buffer and swaps it with the ready one.
class MpvRenderThread {
public:
    MpvRenderThread(mpv_render_context* render, MpvPlayer* owner, std::function<void()> present)
        : m_render(render), m_owner(owner), m_present(std::move(present)) {
        mpv_render_context_set_update_callback(m_render, &MpvRenderThread::onUpdate, this);
        m_thread = std::thread([this] { run(); });
    }
    ~MpvRenderThread() {
        {
            std::lock_guard lock(m_mutex);
            m_quit = true;
        }
        m_wake.notify_one();
        m_thread.join();
        mpv_render_context_set_update_callback(m_render, nullptr, nullptr);
    }

    // Main thread: the size to render at; an empty size consumes frames without drawing them.
    void setTarget(QSize size) {
        {
            std::lock_guard lock(m_mutex);
            m_target = size;
            m_redraw = true;
        }
        m_wake.notify_one();
    }
    void requestRedraw() {
        {
            std::lock_guard lock(m_mutex);
            m_redraw = true;
        }
        m_wake.notify_one();
    }
    // Main thread: the newest finished frame, swapped into `shown`; false when none came since.
    bool takeFrame(MpvFrameBuffer& shown) {
        std::lock_guard lock(m_mutex);
        m_presentPosted = false;
        if (!m_fresh) return false;
        std::swap(shown, m_ready);
        m_fresh = false;
        return true;
    }

private:
    static void onUpdate(void* self) {
        auto* t = static_cast<MpvRenderThread*>(self);
        {
            std::lock_guard lock(t->m_mutex);
            t->m_update = true;
        }
        t->m_wake.notify_one();
    }

    void run() {
        for (;;) {
            QSize target;
            bool redraw = false;
            {
                std::unique_lock lock(m_mutex);
                m_wake.wait(lock, [this] { return m_quit || m_update || m_redraw; });
                if (m_quit) return;
                redraw = m_redraw;
                m_update = m_redraw = false;
                target = m_target;
            }
            const std::uint64_t flags = mpv_render_context_update(m_render);
            if (!(flags & MPV_RENDER_UPDATE_FRAME) && !redraw) continue;
            const bool skip = target.isEmpty();
            m_back.ensure(skip ? 16 : target.width(), skip ? 16 : target.height());
            int size[2] = {m_back.width, m_back.height};
            char format[] = "bgr0";
            std::size_t stride = m_back.stride;
            int skipRendering = skip ? 1 : 0;
            int block = 0;
            mpv_render_param params[] = {
                {MPV_RENDER_PARAM_SW_SIZE, size},
                {MPV_RENDER_PARAM_SW_FORMAT, format},
                {MPV_RENDER_PARAM_SW_STRIDE, &stride},
                {MPV_RENDER_PARAM_SW_POINTER, m_back.bits.get()},
                {MPV_RENDER_PARAM_SKIP_RENDERING, &skipRendering},
                {MPV_RENDER_PARAM_BLOCK_FOR_TARGET_TIME, &block},
                {MPV_RENDER_PARAM_INVALID, nullptr},
            };
            if (mpv_render_context_render(m_render, params) < 0 || skip) continue;
            m_back.makeOpaque();
            bool post = false;
            {
                std::lock_guard lock(m_mutex);
                std::swap(m_back, m_ready);
                m_fresh = true;
                post = !m_presentPosted;
                m_presentPosted = true;
            }
            if (post) QMetaObject::invokeMethod(m_owner, m_present, Qt::QueuedConnection);
        }
    }

    mpv_render_context* m_render;
    MpvPlayer* m_owner;
    std::function<void()> m_present;
    std::thread m_thread;

    std::mutex m_mutex; // guards everything below except m_back, which only the render thread uses
    std::condition_variable m_wake;
    bool m_quit = false;
    bool m_update = false;
    bool m_redraw = false;
    bool m_presentPosted = false;
    bool m_fresh = false;
    QSize m_target;
    MpvFrameBuffer m_ready;
    MpvFrameBuffer m_back;
};

QString Check_FilterChain(const QString& chain) {
    if (chain.trimmed().isEmpty()) return {};
    std::unique_ptr<AVFilterGraph, void (*)(AVFilterGraph*)> graph(
        avfilter_graph_alloc(), [](AVFilterGraph* g) { avfilter_graph_free(&g); });
    AVFilterInOut* inputs = nullptr;
    AVFilterInOut* outputs = nullptr;
    const int rc = graph ? avfilter_graph_parse2(graph.get(), chain.toUtf8().constData(), &inputs, &outputs)
                         : AVERROR(ENOMEM);
    avfilter_inout_free(&inputs);
    avfilter_inout_free(&outputs);
    return rc < 0 ? avErrorText(rc) : QString();
}

MpvPlayer::MpvPlayer(Options options, QObject* parent)
    : QObject(parent), m_options(std::move(options)), m_shownBuffer(std::make_unique<MpvFrameBuffer>()) {}

MpvPlayer::~MpvPlayer() {
    Release();
}

bool MpvPlayer::Initialize(bool force, const QString& path) {
    (void)path;
    if (m_handle && !force) return true;
    Release();
    m_lastError.clear();
    // mpv refuses to start unless numbers are read and written with a "." mark.
    std::setlocale(LC_NUMERIC, "C");
    m_handle = mpv_create();
    if (!m_handle) {
        fail(QStringLiteral("The player engine could not be created."));
        return false;
    }
    const std::pair<const char*, QByteArray> settings[] = {
        {"config", "no"},
        {"terminal", "no"},
        {"input-default-bindings", "no"},
        {"input-vo-keyboard", "no"},
        {"osc", "no"},
        {"load-stats-overlay", "no"},
        {"load-osd-console", "no"},
        {"load-auto-profiles", "no"},
        {"load-scripts", "no"},
        {"ytdl", "no"},
        {"vo", "libmpv"},
        {"idle", "yes"},
        {"keep-open", "yes"},
        {"video-timing-offset", "0"},
        {"hwdec", m_options.softwareDecoding ? "no" : "auto-safe"},
        {"audio-client-name", "Morvane"},
        {"ao", m_options.audioOutput.toUtf8()},
    };
    for (const auto& setting : settings)
        if (!setting.second.isEmpty())
            mpv_set_option_string(m_handle, setting.first, setting.second.constData());
    if (const int rc = mpv_initialize(m_handle); rc < 0) {
        fail(QStringLiteral("The player engine could not start: %1").arg(errorText(rc)));
        mpv_terminate_destroy(m_handle);
        m_handle = nullptr;
        return false;
    }
    mpv_render_param params[] = {
        {MPV_RENDER_PARAM_API_TYPE, const_cast<char*>(MPV_RENDER_API_TYPE_SW)},
        {MPV_RENDER_PARAM_INVALID, nullptr},
    };
    if (const int rc = mpv_render_context_create(&m_render, m_handle, params); rc < 0) {
        fail(QStringLiteral("The player engine could not draw: %1").arg(errorText(rc)));
        mpv_terminate_destroy(m_handle);
        m_handle = nullptr;
        m_render = nullptr;
        return false;
    }
    mpv_observe_property(m_handle, 0, kTimePos, MPV_FORMAT_DOUBLE);
    mpv_observe_property(m_handle, 0, kPause, MPV_FORMAT_FLAG);
    mpv_observe_property(m_handle, 0, kEofReached, MPV_FORMAT_FLAG);
    m_renderer = std::make_unique<MpvRenderThread>(m_render, this, [this] { presentFrame(); });
    updateRenderTarget();
    mpv_set_wakeup_callback(m_handle, &MpvPlayer::onWakeup, this);
    setVolume(m_volume);
    setMute(m_mute);
    return true;
}

void MpvPlayer::Release() {
    if (!m_handle) return;
    mpv_set_wakeup_callback(m_handle, nullptr, nullptr);
    m_renderer.reset();
    m_shown = QImage();
    if (m_surface) m_surface->clearFrame();
    mpv_render_context_free(m_render);
    m_render = nullptr;
    mpv_terminate_destroy(m_handle);
    m_handle = nullptr;
    m_loaded = m_loading = m_paused = m_eof = false;
    m_positionUs = -1;
}

void MpvPlayer::fail(const QString& text) {
    m_lastError = text;
}

bool MpvPlayer::command(std::initializer_list<const char*> args) {
    if (!m_handle) return false;
    std::vector<const char*> list(args);
    list.push_back(nullptr);
    const int rc = mpv_command(m_handle, list.data());
    if (rc < 0) fail(QStringLiteral("%1: %2").arg(QString::fromUtf8(list[0]), errorText(rc)));
    return rc >= 0;
}

void MpvPlayer::onWakeup(void* self) {
    auto* player = static_cast<MpvPlayer*>(self);
    if (!player->m_drainPosted.exchange(true))
        QMetaObject::invokeMethod(
            player, [player] { player->drainEvents(); }, Qt::QueuedConnection);
}

void MpvPlayer::drainEvents() {
    m_drainPosted = false;
    while (m_handle) {
        const mpv_event* event = mpv_wait_event(m_handle, 0);
        if (event->event_id == MPV_EVENT_NONE) break;
        handleEvent(*event);
    }
}

void MpvPlayer::handleEvent(const mpv_event& event) {
    switch (event.event_id) {
    case MPV_EVENT_START_FILE:
        m_entry = static_cast<const mpv_event_start_file*>(event.data)->playlist_entry_id;
        break;
    case MPV_EVENT_FILE_LOADED: {
        m_loading = false;
        m_loaded = true;
        m_eof = false;
        double seconds = -1;
        const bool known = mpv_get_property(m_handle, kDuration, MPV_FORMAT_DOUBLE, &seconds) >= 0;
        if (m_events) m_events->Opened(known ? toMicroseconds(seconds) : -1);
        if (m_events) m_events->State(m_paused ? PlayerState_Paused : PlayerState_Playing);
        break;
    }
    case MPV_EVENT_END_FILE: {
        const auto* end = static_cast<const mpv_event_end_file*>(event.data);
        if (end->playlist_entry_id != m_entry) break; // a file that an Open replaced
        const bool wasLoaded = m_loaded;
        m_loaded = m_loading = m_eof = false;
        m_positionUs = -1;
        m_shown = QImage();
        if (m_surface) m_surface->clearFrame();
        if (end->reason == MPV_END_FILE_REASON_ERROR) {
            m_openFailed = !wasLoaded;
            fail(QStringLiteral("%1\n%2").arg(QFileInfo(m_file).fileName(), errorText(end->error)));
            if (m_events) m_events->State(PlayerState_EndedByError);
        } else if (end->reason == MPV_END_FILE_REASON_EOF) {
            if (m_events) m_events->State(PlayerState_EndOfStream);
        } else if (m_events) {
            m_events->State(PlayerState_Stopped);
        }
        break;
    }
    case MPV_EVENT_PROPERTY_CHANGE: {
        const auto* property = static_cast<const mpv_event_property*>(event.data);
        if (std::strcmp(property->name, kTimePos) == 0) {
            if (property->format != MPV_FORMAT_DOUBLE || !m_loaded) break;
            m_positionUs = toMicroseconds(*static_cast<double*>(property->data));
            if (m_events && m_positionUs >= 0) m_events->Position(m_positionUs);
        } else if (std::strcmp(property->name, kPause) == 0 && property->format == MPV_FORMAT_FLAG) {
            const bool paused = *static_cast<int*>(property->data) != 0;
            if (paused == m_paused) break;
            m_paused = paused;
            if (m_loaded && !m_eof && m_events)
                m_events->State(paused ? PlayerState_Paused : PlayerState_Playing);
        } else if (std::strcmp(property->name, kEofReached) == 0 && property->format == MPV_FORMAT_FLAG) {
            const bool eof = *static_cast<int*>(property->data) != 0;
            if (eof == m_eof) break;
            m_eof = eof;
            if (eof && m_loaded && m_events) m_events->State(PlayerState_EndOfStream);
        }
        break;
    }
    default:
        break;
    }
}

void MpvPlayer::presentFrame() {
    if (!m_renderer || !m_renderer->takeFrame(*m_shownBuffer)) return;
    // The buffer the surface showed until now belongs to the render thread again: the surface gets
    // the new frame or lets go of the picture, never keeps the old one.
    const MpvFrameBuffer& b = *m_shownBuffer;
    const bool show = m_loaded && !m_hidden && m_surface;
    m_shown =
        show ? QImage(b.bits.get(), b.width, b.height, static_cast<qsizetype>(b.stride), QImage::Format_RGB32)
             : QImage();
    if (!m_surface) return;
    if (show)
        m_surface->presentFrame(m_shown);
    else
        m_surface->clearFrame();
}

void MpvPlayer::updateRenderTarget() {
    if (!m_renderer) return;
    const QSize size = m_surface && !m_hidden ? m_surface->surfaceSize() : QSize();
    m_renderer->setTarget(size.isValid() && size.width() > 0 && size.height() > 0 ? size : QSize());
}

void MpvPlayer::setVideoWindow(PlayerSurface* surface) {
    if (m_surface && m_surface != surface) m_surface->clearFrame();
    m_surface = surface;
    m_shown = QImage();
    updateRenderTarget();
}

void MpvPlayer::Redraw() {
    updateRenderTarget();
}

void MpvPlayer::Open(const QString& file, std::int64_t positionUs, bool hidden) {
    if (!m_handle) {
        fail(QStringLiteral("The player engine is not started."));
        return;
    }
    m_lastError.clear();
    m_file = file;
    m_hidden = hidden;
    m_loaded = m_eof = m_openFailed = false;
    m_loading = true;
    m_positionUs = -1;
    m_entry = -1;
    updateRenderTarget();
    mpv_set_property_string(m_handle, kPause, "no");
    m_paused = false;
    const QByteArray path = file.toUtf8();
    const QByteArray start =
        QStringLiteral("start=%1")
            .arg(static_cast<double>(std::max<std::int64_t>(positionUs, 0)) / 1e6, 0, 'f', 6)
            .toUtf8();
    if (!command({"loadfile", path.constData(), "replace", start.constData()})) {
        m_loading = false;
        return;
    }
    // Wait for our file to open or fail, so that the caller can read LastError at once. The events
    // met on the way are handled as the queued drain would handle them.
    QElapsedTimer clock;
    clock.start();
    while (m_handle && m_loading && !m_openFailed) {
        const qint64 left = m_options.openWaitMs - clock.elapsed();
        if (left <= 0) break;
        const mpv_event* event = mpv_wait_event(m_handle, static_cast<double>(left) / 1000.0);
        if (event->event_id != MPV_EVENT_NONE) handleEvent(*event);
    }
}

void MpvPlayer::TogglePause() {
    if (!m_handle || !m_loaded) return;
    if (m_eof) {
        // At the end, play again from the start, as a user expects of the play button.
        command({"seek", "0", "absolute+exact"});
        mpv_set_property_string(m_handle, kPause, "no");
        return;
    }
    command({"cycle", kPause});
    // The callers read PlayState at once: take the new value now rather than at its event.
    int paused = m_paused ? 1 : 0;
    mpv_get_property(m_handle, kPause, MPV_FORMAT_FLAG, &paused);
    if ((paused != 0) == m_paused) return;
    m_paused = paused != 0;
    if (m_events) m_events->State(m_paused ? PlayerState_Paused : PlayerState_Playing);
}

void MpvPlayer::Stop(bool hard) {
    (void)hard; // mpv stops at once either way
    if (!m_handle) return;
    m_loading = false;
    command({"stop"});
}

void MpvPlayer::Step() {
    if (m_loaded) command({"frame-step"});
}

void MpvPlayer::Seek(std::int64_t timeUs) {
    if (!m_loaded) return;
    const QByteArray target =
        QByteArray::number(static_cast<double>(std::max<std::int64_t>(timeUs, 0)) / 1e6, 'f', 6);
    command({"seek", target.constData(), "absolute+exact"});
}

QImage MpvPlayer::GetFrame() {
    if (!m_handle || !m_loaded) return {};
    const char* args[] = {"screenshot-raw", "video", nullptr};
    mpv_node result;
    if (mpv_command_ret(m_handle, args, &result) < 0) return {};
    QImage image;
    if (result.format == MPV_FORMAT_NODE_MAP) {
        std::int64_t w = 0, h = 0, stride = 0;
        const mpv_byte_array* data = nullptr;
        QByteArray format;
        const mpv_node_list* map = result.u.list;
        for (int i = 0; i < map->num; ++i) {
            const char* key = map->keys[i];
            const mpv_node& value = map->values[i];
            if (value.format == MPV_FORMAT_INT64) {
                if (!std::strcmp(key, "w"))
                    w = value.u.int64;
                else if (!std::strcmp(key, "h"))
                    h = value.u.int64;
                else if (!std::strcmp(key, "stride"))
                    stride = value.u.int64;
            } else if (value.format == MPV_FORMAT_STRING && !std::strcmp(key, "format")) {
                format = value.u.string;
            } else if (value.format == MPV_FORMAT_BYTE_ARRAY && !std::strcmp(key, "data")) {
                data = value.u.ba;
            }
        }
        const bool fits = data && w > 0 && h > 0 && stride >= w * 4 &&
                          static_cast<std::int64_t>(data->size) >= stride * (h - 1) + w * 4;
        if (fits && (format == "bgr0" || format == "bgra")) {
            image = QImage(static_cast<int>(w), static_cast<int>(h), QImage::Format_RGB32);
            for (int y = 0; y < image.height(); ++y) {
                const auto* from = static_cast<const std::uint32_t*>(data->data) + y * (stride / 4);
                auto* to = reinterpret_cast<std::uint32_t*>(image.scanLine(y));
                for (int x = 0; x < image.width(); ++x)
                    to[x] = from[x] | 0xff000000u;
            }
        }
    }
    mpv_free_node_contents(&result);
    return image;
}

int MpvPlayer::FrameWidth() const {
    std::int64_t value = 0;
    if (!m_loaded || mpv_get_property(m_handle, "width", MPV_FORMAT_INT64, &value) < 0) return 0;
    return static_cast<int>(value);
}

int MpvPlayer::FrameHeight() const {
    std::int64_t value = 0;
    if (!m_loaded || mpv_get_property(m_handle, "height", MPV_FORMAT_INT64, &value) < 0) return 0;
    return static_cast<int>(value);
}

int MpvPlayer::PlayState() const {
    if (!m_loaded) return PlayerState_Stopped;
    if (m_eof) return PlayerState_Ended;
    return m_paused ? PlayerState_Paused : PlayerState_Playing;
}

void MpvPlayer::setVolume(std::int16_t volume) {
    m_volume = std::clamp<std::int16_t>(volume, 0, 100);
    if (!m_handle) return;
    double value = m_volume;
    mpv_set_property(m_handle, "volume", MPV_FORMAT_DOUBLE, &value);
}

void MpvPlayer::setMute(bool mute) {
    m_mute = mute;
    if (!m_handle) return;
    int value = mute ? 1 : 0;
    mpv_set_property(m_handle, "mute", MPV_FORMAT_FLAG, &value);
}

namespace {
int trackProperty(mpv_handle* handle, const char* name) {
    if (!handle) return -1;
    char* text = mpv_get_property_string(handle, name);
    if (!text) return -1;
    bool ok = false;
    const int id = QByteArray(text).toInt(&ok);
    mpv_free(text);
    return ok ? id : -1;
}

void setTrack(mpv_handle* handle, const char* name, int id) {
    if (!handle) return;
    const QByteArray value = id < 0 ? QByteArray("no") : QByteArray::number(id);
    mpv_set_property_string(handle, name, value.constData());
}
} // namespace

int MpvPlayer::AudioStream() const {
    return trackProperty(m_handle, "aid");
}
void MpvPlayer::setAudioStream(int id) {
    setTrack(m_handle, "aid", id);
}
int MpvPlayer::SubtitleStream() const {
    return trackProperty(m_handle, "sid");
}
void MpvPlayer::setSubtitleStream(int id) {
    setTrack(m_handle, "sid", id);
}

void MpvPlayer::setSubtitleEnable(int enable) {
    if (m_handle) mpv_set_property_string(m_handle, "sub-visibility", enable ? "yes" : "no");
}

QList<PlayerTrack> MpvPlayer::Tracks() const {
    QList<PlayerTrack> tracks;
    if (!m_handle) return tracks;
    mpv_node list;
    if (mpv_get_property(m_handle, "track-list", MPV_FORMAT_NODE, &list) < 0) return tracks;
    if (list.format == MPV_FORMAT_NODE_ARRAY) {
        for (int i = 0; i < list.u.list->num; ++i) {
            const mpv_node& entry = list.u.list->values[i];
            if (entry.format != MPV_FORMAT_NODE_MAP) continue;
            QString type, lang, title, codec;
            std::int64_t id = -1, channels = 0;
            for (int k = 0; k < entry.u.list->num; ++k) {
                const char* key = entry.u.list->keys[k];
                const mpv_node& value = entry.u.list->values[k];
                if (value.format == MPV_FORMAT_STRING) {
                    const QString text = QString::fromUtf8(value.u.string);
                    if (!std::strcmp(key, "type"))
                        type = text;
                    else if (!std::strcmp(key, "lang"))
                        lang = text;
                    else if (!std::strcmp(key, "title"))
                        title = text;
                    else if (!std::strcmp(key, "codec"))
                        codec = text;
                } else if (value.format == MPV_FORMAT_INT64) {
                    if (!std::strcmp(key, "id"))
                        id = value.u.int64;
                    else if (!std::strcmp(key, "demux-channel-count"))
                        channels = value.u.int64;
                }
            }
            if (type != QLatin1String("audio") && type != QLatin1String("sub")) continue;
            PlayerTrack track;
            track.audio = type == QLatin1String("audio");
            track.id = static_cast<int>(id);
            track.title = QStringLiteral("%1: %2").arg(id).arg(lang.isEmpty() ? QStringLiteral("und") : lang);
            if (!codec.isEmpty()) track.title += QStringLiteral(", ") + codec;
            if (channels > 0) track.title += QStringLiteral(" (%1 ch)").arg(channels);
            if (!title.isEmpty()) track.title += QStringLiteral(" ") + title;
            tracks.append(track);
        }
    }
    mpv_free_node_contents(&list);
    return tracks;
}

void MpvPlayer::setVideoFilter(const QString& chain) {
    if (!m_handle) {
        m_videoFilter = chain;
        return;
    }
    // mpv builds the graph later, on its own thread, and drops a bad one quietly; parse it here first so
    // that the caller hears of it.
    const QString refused = Check_FilterChain(chain);
    const QByteArray value = chain.isEmpty() ? QByteArray() : ("lavfi=[" + chain.toUtf8() + "]");
    const int rc = refused.isEmpty() ? mpv_set_property_string(m_handle, "vf", value.constData())
                                     : MPV_ERROR_OPTION_ERROR;
    if (rc < 0) {
        fail(QStringLiteral("The video filter \"%1\" was refused: %2")
                 .arg(chain, refused.isEmpty() ? errorText(rc) : refused));
        mpv_set_property_string(m_handle, "vf", "");
        m_videoFilter.clear();
        return;
    }
    m_videoFilter = chain;
}

void MpvPlayer::setDeinterlace(bool on) {
    m_deinterlace = on;
    if (m_handle) mpv_set_property_string(m_handle, "deinterlace", on ? "yes" : "no");
}

void MpvPlayer::setAspect(float aspect) {
    m_aspect = std::isfinite(aspect) && aspect > 0 ? aspect : 0;
    if (!m_handle) return;
    const QByteArray value =
        m_aspect > 0 ? QByteArray::number(static_cast<double>(m_aspect), 'f', 6) : QByteArray("no");
    mpv_set_property_string(m_handle, "video-aspect-override", value.constData());
}

std::int64_t MpvPlayer::DroppedFrames() const {
    std::int64_t total = 0;
    for (const char* name : {"frame-drop-count", "decoder-frame-drop-count"}) {
        std::int64_t value = 0;
        if (m_handle && mpv_get_property(m_handle, name, MPV_FORMAT_INT64, &value) >= 0) total += value;
    }
    return total;
}

} // namespace morvane
