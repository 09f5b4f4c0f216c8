#include "Transcoder.h"

#include "Hook_Convert.h"
#include "LibavHandles.h"

extern "C" {
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/channel_layout.h>
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <vector>

namespace morvane {

void TaskControl::pause() {
    std::lock_guard lock(m_mutex);
    m_paused = true;
}

void TaskControl::resume() {
    {
        std::lock_guard lock(m_mutex);
        m_paused = false;
    }
    m_cv.notify_all();
}

void TaskControl::stop() {
    {
        std::lock_guard lock(m_mutex);
        m_stopped = true;
    }
    m_cv.notify_all();
}

void TaskControl::reset() {
    std::lock_guard lock(m_mutex);
    m_paused = false;
    m_stopped = false;
}

bool TaskControl::checkpoint() {
    if (m_stopped) return false;
    std::unique_lock lock(m_mutex);
    m_cv.wait(lock, [this] { return !m_paused || m_stopped; });
    return !m_stopped;
}

const AVCodec* Find_Encoder(const std::string& name, AVMediaType type, std::string& error) {
    // The builder still names the long-gone libfaac; the native encoder does the same job.
    const std::string wanted = name == "libfaac" ? "aac" : name;
    const AVCodec* codec = avcodec_find_encoder_by_name(wanted.c_str());
    if (!codec) {
        if (const AVCodecDescriptor* d = avcodec_descriptor_get_by_name(wanted.c_str()))
            codec = avcodec_find_encoder(d->id);
    }
    if (!codec) {
        error = "Unknown encoder '" + name + "'";
        return nullptr;
    }
    if (codec->type != type) {
        error = "Encoder '" + name + "' is not a" + (type == AVMEDIA_TYPE_VIDEO ? " video" : "n audio") +
                " encoder";
        return nullptr;
    }
    return codec;
}

bool Check_Output(const std::string& outputPath, const EncoderOptions& options, std::string& error) {
    if (!av_guess_format(nullptr, outputPath.c_str(), nullptr)) {
        error = "Unable to find a suitable output format for '" + outputPath + "'";
        return false;
    }
    if (!options.noVideo && !options.videoCodec.empty() &&
        !Find_Encoder(options.videoCodec, AVMEDIA_TYPE_VIDEO, error))
        return false;
    if (!options.noAudio && !options.audioCodec.empty() &&
        !Find_Encoder(options.audioCodec, AVMEDIA_TYPE_AUDIO, error))
        return false;
    return true;
}

namespace {

using namespace libav;

std::string seconds(std::int64_t us) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%.6f", static_cast<double>(us) / AV_TIME_BASE);
    return buf;
}

// The encoder's stream-wide data (its buffer model above all) belongs to the stream: the MPEG program
// muxer sizes its buffers by it, and without it it underflows them.
int copySideData(const AVCodecContext* e, AVStream* st) {
    for (int i = 0; i < e->nb_coded_side_data; ++i) {
        const AVPacketSideData& sd = e->coded_side_data[i];
        std::uint8_t* dst = av_stream_new_side_data(st, sd.type, sd.size);
        if (!dst) return AVERROR(ENOMEM);
        std::memcpy(dst, sd.data, sd.size);
    }
    return 0;
}

// The encoder-private options that this encoder knows, as the ffmpeg program picks them for each of
// its streams: an option of the encoder's own class, or a generic one meant for its kind of media.
// The rest are not for this encoder and stay out.
DictPtr encoderOptions(const AVCodec* codec, const EncoderOptions& options) {
    const int flags = AV_OPT_FLAG_ENCODING_PARAM |
                      (codec->type == AVMEDIA_TYPE_VIDEO ? AV_OPT_FLAG_VIDEO_PARAM : AV_OPT_FLAG_AUDIO_PARAM);
    const AVClass* generic = avcodec_get_class();
    const AVClass* own = codec->priv_class;
    AVDictionary* dict = nullptr;
    for (const auto& [name, value] : options.codecOptions) {
        const bool known = av_opt_find(&generic, name.c_str(), nullptr, flags, AV_OPT_SEARCH_FAKE_OBJ) ||
                           (own && av_opt_find(&own, name.c_str(), nullptr, flags, AV_OPT_SEARCH_FAKE_OBJ));
        if (known) av_dict_set(&dict, name.c_str(), value.c_str(), 0);
    }
    return DictPtr(dict);
}

int openEncoder(AVCodecContext* e, const AVCodec* codec, const EncoderOptions& options) {
    AVDictionary* dict = encoderOptions(codec, options).release();
    const int r = avcodec_open2(e, codec, &dict);
    const DictPtr unused(dict); // the encoder takes what it knows and leaves the rest here
    return r;
}

struct OutStream {
    bool video = false;
    AVStream* in = nullptr;
    CodecPtr dec;
    CodecPtr enc;
    GraphPtr graph;
    AVFilterContext* src = nullptr;
    AVFilterContext* sink = nullptr;
    AVStream* out = nullptr;
    std::int64_t inOffset = 0; // subtracted from decoded timestamps: output time 0 is the seek point
    bool sinkDone = false;     // the graph has ended (end of -t or of the input)
    bool flushed = false;
    std::int64_t endPts = AV_NOPTS_VALUE; // end of the last decoded frame, in input stream time

    // What the graph's source was set up for. Decoded frames that differ (a stream whose size, rate or
    // layout changes midway) are converted to it first, since the graph cannot change on the fly.
    int srcWidth = 0, srcHeight = 0, srcFormat = -1;
    int srcRate = 0, srcChannels = 0;
    std::uint64_t srcMask = 0; // 0: not a native-order layout
    SwsPtr toSource;
    SwrPtr resampleToSource;
    int adaptRate = 0, adaptFormat = -1, adaptChannels = 0; // what resampleToSource was made for
    std::uint64_t adaptMask = 0;
};

class Transcoder {
public:
    Transcoder(const TranscodeJob& job, TaskControl& control, const TranscodeCallbacks& callbacks)
        : m_job(job), m_opt(job.options), m_control(control), m_cb(callbacks) {}

    TranscodeResult run() {
        TranscodeResult r;
        bool ok = openInput() && openOutput() && transcode();
        if (ok && m_writesPart)
            ok = m_part.commit(m_job.outputPath, m_job.replaceable, r.landedPath, m_error);
        if (!ok) m_part.discard();                // a failed or stopped task leaves nothing behind
        if (!ok && m_control.stopped()) return r; // a stop is neither success nor failure
        if (ok && !m_writesPart) r.landedPath = m_job.outputPath;
        r.finished = ok;
        r.failed = !ok;
        r.message = ok ? std::string() : m_error;
        return r;
    }

private:
    bool fail(const std::string& what, int err) {
        m_error = what + ": " + errorText(err);
        return false;
    }
    bool failText(const std::string& text) {
        m_error = text;
        return false;
    }

    static int interruptCallback(void* opaque) {
        return static_cast<TaskControl*>(opaque)->stopped() ? 1 : 0;
    }

    bool openInput() {
        AVFormatContext* raw = avformat_alloc_context();
        if (!raw) return fail("opening input '" + m_job.inputPath + "'", AVERROR(ENOMEM));
        raw->interrupt_callback = {&Transcoder::interruptCallback, &m_control};
        int r = avformat_open_input(&raw, m_job.inputPath.c_str(), nullptr, nullptr);
        if (r < 0) return fail("opening input '" + m_job.inputPath + "'", r);
        m_in.reset(raw);
        if ((r = avformat_find_stream_info(m_in.get(), nullptr)) < 0)
            return fail("reading stream information of '" + m_job.inputPath + "'", r);

        const std::int64_t start = m_in->start_time == AV_NOPTS_VALUE ? 0 : m_in->start_time;
        if (m_job.input.seekUs > 0) {
            const std::int64_t ts = start + m_job.input.seekUs;
            // Lands on a key frame at or before the point; trim drops what comes before it.
            if ((r = avformat_seek_file(m_in.get(), -1, INT64_MIN, ts, ts, 0)) < 0)
                av_log(nullptr, AV_LOG_WARNING, "seeking '%s': %s\n", m_job.inputPath.c_str(),
                       errorText(r).c_str());
        }
        if (m_in->duration != AV_NOPTS_VALUE && m_in->duration > 0)
            m_durationUs = std::max<std::int64_t>(0, m_in->duration - m_job.input.seekUs);
        if (m_opt.durationUs > 0 && (m_durationUs == 0 || m_opt.durationUs < m_durationUs))
            m_durationUs = m_opt.durationUs;
        m_startUs = start + m_job.input.seekUs;
        if (m_durationUs > 0) {
            // A length guessed from the bit rate may be far off; one read from timestamps is not.
            const double factor = m_in->duration_estimation_method == AVFMT_DURATION_FROM_BITRATE
                                      ? 5 * kRunawayFactor
                                      : kRunawayFactor;
            m_runawayUs = std::max(static_cast<std::int64_t>(static_cast<double>(m_durationUs) * factor),
                                   m_durationUs + kRunawayMarginUs);
        }
        return true;
    }

    // Formats such as MPEG-TS may jump in time (a cut in a broadcast, a damaged byte). As the ffmpeg
    // program does, a jump of more than 10 s from where a stream should be is taken out of this and
    // every later timestamp of the file; elsewhere a timestamp absurdly far off is dropped.
    void fixTimestamps(AVPacket* pkt) {
        constexpr std::int64_t kJumpUs = 10 * std::int64_t{AV_TIME_BASE};
        constexpr std::int64_t kAbsurdUs = 30 * 3600 * std::int64_t{AV_TIME_BASE};
        if (pkt->stream_index < 0 || pkt->stream_index >= static_cast<int>(m_clocks.size())) return;
        const AVStream* st = m_in->streams[pkt->stream_index];
        StreamClock& c = m_clocks[pkt->stream_index];
        const bool discontinuous = m_in->iformat->flags & AVFMT_TS_DISCONT;
        const AVRational tb = st->time_base;
        if (m_jumpOffsetUs != 0) {
            const std::int64_t offset = av_rescale_q(m_jumpOffsetUs, AV_TIME_BASE_Q, tb);
            if (pkt->dts != AV_NOPTS_VALUE) pkt->dts += offset;
            if (pkt->pts != AV_NOPTS_VALUE) pkt->pts += offset;
        }
        if (pkt->dts == AV_NOPTS_VALUE) return;
        std::int64_t dtsUs = av_rescale_q_rnd(
            pkt->dts, tb, AV_TIME_BASE_Q, static_cast<AVRounding>(AV_ROUND_NEAR_INF | AV_ROUND_PASS_MINMAX));
        std::int64_t delta = 0;
        bool jumped = false;
        if (c.nextDtsUs != AV_NOPTS_VALUE) {
            delta = dtsUs - c.nextDtsUs;
            if (discontinuous) {
                jumped = std::llabs(delta) > kJumpUs || dtsUs + AV_TIME_BASE / 10 < c.lastDtsUs;
            } else if (std::llabs(delta) > kAbsurdUs) {
                pkt->dts = AV_NOPTS_VALUE;
                if (pkt->pts != AV_NOPTS_VALUE &&
                    std::llabs(av_rescale_q(pkt->pts, tb, AV_TIME_BASE_Q) - c.nextDtsUs) > kAbsurdUs)
                    pkt->pts = AV_NOPTS_VALUE;
                return;
            }
        } else if (discontinuous && m_lastTsUs != AV_NOPTS_VALUE) {
            delta = dtsUs - m_lastTsUs;
            jumped = std::llabs(delta) > kJumpUs;
        }
        if (jumped) {
            m_jumpOffsetUs -= delta;
            av_log(nullptr, AV_LOG_WARNING, "'%s': timestamps of stream #%d jump by %.3f s; taken out\n",
                   m_job.inputPath.c_str(), pkt->stream_index, static_cast<double>(delta) / AV_TIME_BASE);
            const std::int64_t back = av_rescale_q(delta, AV_TIME_BASE_Q, tb);
            pkt->dts -= back;
            if (pkt->pts != AV_NOPTS_VALUE) pkt->pts -= back;
            dtsUs -= delta;
        }
        m_lastTsUs = dtsUs;
        c.lastDtsUs = dtsUs;
        std::int64_t durationUs = pkt->duration > 0 ? av_rescale_q(pkt->duration, tb, AV_TIME_BASE_Q) : 0;
        if (durationUs == 0 && st->codecpar->codec_type == AVMEDIA_TYPE_VIDEO) {
            const AVRational rate = av_guess_frame_rate(m_in.get(), const_cast<AVStream*>(st), nullptr);
            if (rate.num > 0 && rate.den > 0) durationUs = av_rescale_q(1, av_inv_q(rate), AV_TIME_BASE_Q);
        }
        c.nextDtsUs = dtsUs + durationUs;
    }

    bool openDecoder(OutStream& s, int index) {
        s.in = m_in->streams[index];
        const AVCodec* dec = avcodec_find_decoder(s.in->codecpar->codec_id);
        if (!dec)
            return failText("No decoder for stream #" + std::to_string(index) + " of '" + m_job.inputPath +
                            "'");
        s.dec.reset(avcodec_alloc_context3(dec));
        int r = avcodec_parameters_to_context(s.dec.get(), s.in->codecpar);
        if (r < 0) return fail("setting up the decoder", r);
        s.dec->pkt_timebase = s.in->time_base;
        s.dec->thread_count = m_cb.codecThreads;
        if ((r = avcodec_open2(s.dec.get(), dec, nullptr)) < 0) return fail("opening the decoder", r);
        s.inOffset = av_rescale_q(m_startUs, AV_TIME_BASE_Q, s.in->time_base);
        return true;
    }

    // Links source and sink through a chain given as text; the libavfilter parser skips the
    // leading blank the builder leaves in -vf.
    bool linkGraph(OutStream& s, const std::string& chain) {
        InOutPtr outputs(avfilter_inout_alloc());
        InOutPtr inputs(avfilter_inout_alloc());
        outputs->name = av_strdup("in");
        outputs->filter_ctx = s.src;
        inputs->name = av_strdup("out");
        inputs->filter_ctx = s.sink;
        AVFilterInOut* o = outputs.release();
        AVFilterInOut* i = inputs.release();
        int r = avfilter_graph_parse_ptr(s.graph.get(), chain.c_str(), &i, &o, nullptr);
        avfilter_inout_free(&i);
        avfilter_inout_free(&o);
        if (r < 0) return fail("setting up the filters '" + chain + "'", r);
        if ((r = avfilter_graph_config(s.graph.get(), nullptr)) < 0)
            return fail("setting up the filters '" + chain + "'", r);
        return true;
    }

    std::string trimArgs() const {
        std::string a = "start=0";
        if (m_opt.durationUs > 0) a += ":end=" + seconds(m_opt.durationUs);
        return a;
    }

    bool setupVideo(int index, const AVCodec* codec) {
        OutStream s;
        s.video = true;
        if (!openDecoder(s, index)) return false;
        const AVCodecContext* d = s.dec.get();
        AVRational inRate = av_guess_frame_rate(m_in.get(), s.in, nullptr);
        if (inRate.num <= 0 || inRate.den <= 0) inRate = {25, 1};
        const AVRational sar = d->sample_aspect_ratio.num > 0 ? d->sample_aspect_ratio : AVRational{1, 1};

        const DvSettings dv = Dv_Settings(m_opt.target);
        AVRational rate = inRate;
        if (m_opt.target != DvTarget::None)
            rate = {dv.frameRate.num, dv.frameRate.den};
        else if (m_opt.frameRate.isSet())
            rate = {m_opt.frameRate.num, m_opt.frameRate.den};
        if (codec->supported_framerates)
            rate = codec->supported_framerates[av_find_nearest_q_idx(rate, codec->supported_framerates)];

        AVPixelFormat fmt = d->pix_fmt;
        if (m_opt.target != DvTarget::None)
            fmt = av_get_pix_fmt(dv.pixelFormat);
        else if (!m_opt.pixelFormat.empty())
            fmt = av_get_pix_fmt(m_opt.pixelFormat.c_str());
        if (codec->pix_fmts) {
            bool listed = false;
            for (const AVPixelFormat* p = codec->pix_fmts; *p != AV_PIX_FMT_NONE; ++p)
                listed = listed || *p == fmt;
            if (!listed) fmt = avcodec_find_best_pix_fmt_of_list(codec->pix_fmts, fmt, 0, nullptr);
        }
        // The MJPEG encoder takes the limited-range formats only under a non-standard mode; it gets the
        // full-range ones, as the ffmpeg program gives it.
        if (codec->id == AV_CODEC_ID_MJPEG) {
            if (fmt == AV_PIX_FMT_YUV420P)
                fmt = AV_PIX_FMT_YUVJ420P;
            else if (fmt == AV_PIX_FMT_YUV422P)
                fmt = AV_PIX_FMT_YUVJ422P;
            else if (fmt == AV_PIX_FMT_YUV444P)
                fmt = AV_PIX_FMT_YUVJ444P;
        }

        s.srcWidth = d->width;
        s.srcHeight = d->height;
        s.srcFormat = d->pix_fmt;
        char args[256];
        std::snprintf(args, sizeof args,
                      "video_size=%dx%d:pix_fmt=%d:time_base=%d/%d:pixel_aspect=%d/%d:frame_rate=%d/%d",
                      d->width, d->height, d->pix_fmt, s.in->time_base.num, s.in->time_base.den, sar.num,
                      sar.den, inRate.num, inRate.den);
        const auto makeGraph = [&](const std::string& chain) {
            s.graph.reset(avfilter_graph_alloc());
            int r = avfilter_graph_create_filter(&s.src, avfilter_get_by_name("buffer"), "in", args, nullptr,
                                                 s.graph.get());
            if (r < 0) return fail("setting up the video source", r);
            if ((r = avfilter_graph_create_filter(&s.sink, avfilter_get_by_name("buffersink"), "out", nullptr,
                                                  nullptr, s.graph.get())) < 0)
                return fail("setting up the video sink", r);
            return linkGraph(s, chain);
        };

        std::string chain = "trim=" + trimArgs();
        if (m_opt.deinterlace) chain += ",yadif";
        if (!m_opt.videoFilters.empty()) chain += "," + m_opt.videoFilters;
        if (m_opt.target != DvTarget::None)
            chain += ",scale=" + std::to_string(dv.width) + ":" + std::to_string(dv.height);
        const std::string tail = ",fps=" + std::to_string(rate.num) + "/" + std::to_string(rate.den) +
                                 ",format=" + av_get_pix_fmt_name(fmt);
        if (!makeGraph(chain + tail)) return false;
        // Pictures whose colour planes are halved need sizes in whole steps (libx264 refuses an odd
        // 4:2:0 picture): the last column or row goes, which no one sees.
        if (const AVPixFmtDescriptor* desc = av_pix_fmt_desc_get(fmt)) {
            const int w = av_buffersink_get_w(s.sink);
            const int h = av_buffersink_get_h(s.sink);
            const int stepW = (1 << desc->log2_chroma_w) - 1;
            const int stepH = (1 << desc->log2_chroma_h) - 1;
            if ((w & stepW) || (h & stepH)) {
                const int evenW = w & ~stepW;
                const int evenH = h & ~stepH;
                if (evenW <= 0 || evenH <= 0)
                    return failText("The picture of '" + m_job.inputPath + "' is too small to encode (" +
                                    std::to_string(w) + "x" + std::to_string(h) + ")");
                av_log(nullptr, AV_LOG_WARNING, "'%s': %dx%d rounded down to %dx%d for %s\n",
                       m_job.inputPath.c_str(), w, h, evenW, evenH, av_get_pix_fmt_name(fmt));
                if (!makeGraph(chain + ",crop=" + std::to_string(evenW) + ":" + std::to_string(evenH) +
                               ":0:0" + tail))
                    return false;
            }
        }

        s.enc.reset(avcodec_alloc_context3(codec));
        AVCodecContext* e = s.enc.get();
        e->width = av_buffersink_get_w(s.sink);
        e->height = av_buffersink_get_h(s.sink);
        e->pix_fmt = static_cast<AVPixelFormat>(av_buffersink_get_format(s.sink));
        e->framerate = rate;
        e->time_base = av_inv_q(rate);
        e->sample_aspect_ratio = av_buffersink_get_sample_aspect_ratio(s.sink);
        if (m_opt.aspect.isSet())
            e->sample_aspect_ratio =
                av_mul_q(AVRational{m_opt.aspect.num, m_opt.aspect.den}, AVRational{e->height, e->width});
        // Some encoders round the ratio to what their bitstream holds; the container keeps the exact one.
        const AVRational wantedSar = e->sample_aspect_ratio;
        if (m_opt.videoBitrate > 0) e->bit_rate = m_opt.videoBitrate;
        // The library's default is one thread; the ffmpeg program asks for one per core, as we do.
        e->thread_count = m_cb.codecThreads;
        if (m_out->oformat->flags & AVFMT_GLOBALHEADER) e->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        int r = openEncoder(e, codec, m_opt);
        if (r < 0) return fail("opening the video encoder '" + std::string(codec->name) + "'", r);

        s.out = avformat_new_stream(m_out.get(), nullptr);
        if (!s.out || (r = avcodec_parameters_from_context(s.out->codecpar, e)) < 0)
            return fail("adding the video stream", s.out ? r : AVERROR(ENOMEM));
        if ((r = copySideData(e, s.out)) < 0) return fail("adding the video stream", r);
        s.out->time_base = e->time_base;
        s.out->avg_frame_rate = rate;
        s.out->sample_aspect_ratio = wantedSar;
        if (m_opt.videoTag) s.out->codecpar->codec_tag = m_opt.videoTag;
        m_streams.push_back(std::move(s));
        m_byInput[index] = static_cast<int>(m_streams.size()) - 1;
        return true;
    }

    bool setupAudio(int index, const AVCodec* codec) {
        OutStream s;
        if (!openDecoder(s, index)) return false;
        const AVCodecContext* d = s.dec.get();
        AVChannelLayout inLayout{};
        if (d->ch_layout.order == AV_CHANNEL_ORDER_UNSPEC || d->ch_layout.nb_channels == 0)
            av_channel_layout_default(&inLayout, std::max(1, d->ch_layout.nb_channels));
        else
            av_channel_layout_copy(&inLayout, &d->ch_layout);

        const DvSettings dv = Dv_Settings(m_opt.target);
        int rate = m_opt.target != DvTarget::None ? dv.sampleRate
                   : m_opt.sampleRate > 0         ? m_opt.sampleRate
                                                  : d->sample_rate;
        if (codec->supported_samplerates) {
            int best = codec->supported_samplerates[0];
            for (const int* p = codec->supported_samplerates; *p; ++p)
                if (std::abs(*p - rate) < std::abs(best - rate)) best = *p;
            rate = best;
        }
        const int channels = m_opt.target != DvTarget::None ? dv.channels
                             : m_opt.channels > 0           ? m_opt.channels
                                                            : inLayout.nb_channels;
        AVChannelLayout layout{};
        av_channel_layout_default(&layout, channels);
        if (codec->ch_layouts) {
            bool listed = false;
            for (const AVChannelLayout* p = codec->ch_layouts; p->nb_channels; ++p)
                listed = listed || av_channel_layout_compare(p, &layout) == 0;
            if (!listed) {
                const AVChannelLayout* pick = codec->ch_layouts;
                for (const AVChannelLayout* p = codec->ch_layouts; p->nb_channels; ++p)
                    if (p->nb_channels == channels) {
                        pick = p;
                        break;
                    }
                av_channel_layout_uninit(&layout);
                av_channel_layout_copy(&layout, pick);
            }
        }
        AVSampleFormat sfmt = d->sample_fmt;
        if (codec->sample_fmts) {
            bool listed = false;
            for (const AVSampleFormat* p = codec->sample_fmts; *p != AV_SAMPLE_FMT_NONE; ++p)
                listed = listed || *p == sfmt;
            if (!listed) sfmt = codec->sample_fmts[0];
        }

        s.enc.reset(avcodec_alloc_context3(codec));
        AVCodecContext* e = s.enc.get();
        e->sample_rate = rate;
        e->sample_fmt = sfmt;
        av_channel_layout_copy(&e->ch_layout, &layout);
        e->time_base = {1, rate};
        if (m_opt.audioBitrate > 0) e->bit_rate = m_opt.audioBitrate;
        e->thread_count = m_cb.codecThreads;
        if (m_out->oformat->flags & AVFMT_GLOBALHEADER) e->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        int r = openEncoder(e, codec, m_opt);
        if (r < 0) {
            av_channel_layout_uninit(&inLayout);
            av_channel_layout_uninit(&layout);
            return fail("opening the audio encoder '" + std::string(codec->name) + "'", r);
        }

        char inDesc[128] = {}, outDesc[128] = {};
        av_channel_layout_describe(&inLayout, inDesc, sizeof inDesc);
        av_channel_layout_describe(&e->ch_layout, outDesc, sizeof outDesc);
        s.srcRate = d->sample_rate;
        s.srcFormat = d->sample_fmt;
        s.srcChannels = inLayout.nb_channels;
        s.srcMask = inLayout.order == AV_CHANNEL_ORDER_NATIVE ? inLayout.u.mask : 0;
        av_channel_layout_uninit(&inLayout);
        av_channel_layout_uninit(&layout);

        s.graph.reset(avfilter_graph_alloc());
        char args[512];
        std::snprintf(args, sizeof args, "time_base=%d/%d:sample_rate=%d:sample_fmt=%s:channel_layout=%s",
                      s.in->time_base.num, s.in->time_base.den, d->sample_rate,
                      av_get_sample_fmt_name(d->sample_fmt), inDesc);
        if ((r = avfilter_graph_create_filter(&s.src, avfilter_get_by_name("abuffer"), "in", args, nullptr,
                                              s.graph.get())) < 0)
            return fail("setting up the audio source", r);
        if ((r = avfilter_graph_create_filter(&s.sink, avfilter_get_by_name("abuffersink"), "out", nullptr,
                                              nullptr, s.graph.get())) < 0)
            return fail("setting up the audio sink", r);
        const std::string chain = "atrim=" + trimArgs() +
                                  ",aresample,aformat=sample_fmts=" + av_get_sample_fmt_name(sfmt) +
                                  ":sample_rates=" + std::to_string(rate) + ":channel_layouts=" + outDesc;
        if (!linkGraph(s, chain)) return false;
        // Encoders with a fixed frame size (AAC, MP3, AC-3...) take exactly that many samples.
        if (e->frame_size > 0 && !(codec->capabilities & AV_CODEC_CAP_VARIABLE_FRAME_SIZE))
            av_buffersink_set_frame_size(s.sink, static_cast<unsigned>(e->frame_size));

        s.out = avformat_new_stream(m_out.get(), nullptr);
        if (!s.out || (r = avcodec_parameters_from_context(s.out->codecpar, e)) < 0)
            return fail("adding the audio stream", s.out ? r : AVERROR(ENOMEM));
        if ((r = copySideData(e, s.out)) < 0) return fail("adding the audio stream", r);
        s.out->time_base = e->time_base;
        m_streams.push_back(std::move(s));
        m_byInput[index] = static_cast<int>(m_streams.size()) - 1;
        return true;
    }

    const AVCodec* outputCodec(const std::string& name, AVMediaType type, AVCodecID fallback) {
        if (!name.empty()) return Find_Encoder(name, type, m_error);
        return fallback == AV_CODEC_ID_NONE ? nullptr : avcodec_find_encoder(fallback);
    }

    bool openOutput() {
        AVFormatContext* raw = nullptr;
        int r = avformat_alloc_output_context2(&raw, nullptr, nullptr, m_job.outputPath.c_str());
        if (r < 0 || !raw)
            return failText("Unable to find a suitable output format for '" + m_job.outputPath + "'");
        m_out.reset(raw);
        m_out->interrupt_callback = {&Transcoder::interruptCallback, &m_control};
        m_byInput.assign(m_in->nb_streams, -1);
        m_clocks.assign(m_in->nb_streams, StreamClock{});

        if (!m_opt.noVideo) {
            const int index = av_find_best_stream(m_in.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
            if (index >= 0 && !(m_in->streams[index]->disposition & AV_DISPOSITION_ATTACHED_PIC)) {
                const AVCodec* c =
                    outputCodec(m_opt.videoCodec, AVMEDIA_TYPE_VIDEO, m_out->oformat->video_codec);
                if (!c && !m_opt.videoCodec.empty()) return false;
                if (c && !setupVideo(index, c)) return false;
            }
        }
        if (!m_opt.noAudio) {
            const int index = av_find_best_stream(m_in.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
            if (index >= 0) {
                const AVCodec* c =
                    outputCodec(m_opt.audioCodec, AVMEDIA_TYPE_AUDIO, m_out->oformat->audio_codec);
                if (!c && !m_opt.audioCodec.empty()) return false;
                if (c && !setupAudio(index, c)) return false;
            }
        }
        if (m_streams.empty())
            return failText("Output file '" + m_job.outputPath + "' does not contain any stream");

        if (!(m_out->oformat->flags & AVFMT_NOFILE)) {
            // A device or pipe under the name is written as it is; a file only ever gets a finished
            // output, moved into place at the end.
            const FileIdentity target = File_Identity(m_job.outputPath);
            m_writesPart = !target.exists || target.regular;
            if (m_writesPart && !m_part.create(m_job.outputPath, m_error)) return false;
            const std::string& path = m_writesPart ? m_part.path() : m_job.outputPath;
            if ((r = avio_open2(&m_out->pb, path.c_str(), AVIO_FLAG_WRITE, &m_out->interrupt_callback,
                                nullptr)) < 0)
                return fail("opening output '" + m_job.outputPath + "'", r);
        }
        if ((r = avformat_write_header(m_out.get(), nullptr)) < 0)
            return fail("writing the header of '" + m_job.outputPath + "'", r);
        return true;
    }

    bool transcode() {
        PacketPtr pkt(av_packet_alloc());
        m_frame.reset(av_frame_alloc());
        m_filtered.reset(av_frame_alloc());
        m_adapted.reset(av_frame_alloc());
        m_packet.reset(av_packet_alloc());
        if (!pkt || !m_frame || !m_filtered || !m_adapted || !m_packet)
            return fail("allocating", AVERROR(ENOMEM));
        m_lastReport = std::chrono::steady_clock::now();

        while (true) {
            if (!m_control.checkpoint()) return false;
            if (std::all_of(m_streams.begin(), m_streams.end(),
                            [](const OutStream& s) { return s.sinkDone; }))
                break;
            int r = av_read_frame(m_in.get(), pkt.get());
            if (r == AVERROR_EOF) break;
            if (r < 0) {
                if (m_control.stopped()) return false;
                return fail("reading '" + m_job.inputPath + "'", r);
            }
            fixTimestamps(pkt.get());
            const int at =
                pkt->stream_index < static_cast<int>(m_byInput.size()) ? m_byInput[pkt->stream_index] : -1;
            const bool ok = at < 0 || m_streams[at].sinkDone || decode(m_streams[at], pkt.get());
            av_packet_unref(pkt.get());
            if (!ok) return false;
            reportProgress(false);
        }
        for (OutStream& s : m_streams) {
            if (!s.sinkDone && !decode(s, nullptr)) return false;
            if (!encode(s, nullptr)) return false;
        }
        int r = av_write_trailer(m_out.get());
        if (r >= 0 && m_out->pb) r = m_out->pb->error;
        if (r >= 0 && m_out->pb && !(m_out->oformat->flags & AVFMT_NOFILE)) r = avio_closep(&m_out->pb);
        if (r < 0) return fail("writing '" + m_job.outputPath + "'", r);
        reportProgress(true);
        return true;
    }

    // Sends one packet (null: the end) through decoder and filters.
    bool decode(OutStream& s, const AVPacket* pkt) {
        int r = avcodec_send_packet(s.dec.get(), pkt);
        if (r < 0 && r != AVERROR_EOF) {
            // A damaged packet costs its frames, not the task, as with the ffmpeg program.
            av_log(nullptr, AV_LOG_WARNING, "decoding '%s': %s\n", m_job.inputPath.c_str(),
                   errorText(r).c_str());
            if (pkt) return true;
        }
        while (true) {
            if (m_control.stopped()) return false;
            r = avcodec_receive_frame(s.dec.get(), m_frame.get());
            if (r == AVERROR(EAGAIN)) return true;
            if (r == AVERROR_EOF) break;
            if (r < 0) {
                av_log(nullptr, AV_LOG_WARNING, "decoding '%s': %s\n", m_job.inputPath.c_str(),
                       errorText(r).c_str());
                if (pkt) return true;
                break;
            }
            const std::int64_t ts = m_frame->best_effort_timestamp;
            m_frame->pts = ts == AV_NOPTS_VALUE ? AV_NOPTS_VALUE : ts - s.inOffset;
            if (m_frame->pts != AV_NOPTS_VALUE) s.endPts = m_frame->pts + frameDuration(s, m_frame.get());
            AVFrame* in = m_frame.get();
            if (!matchesSource(s, in)) {
                if (!toSource(s, in)) return false;
                in = m_adapted.get();
            }
            // A resampler may hold back all of a short frame.
            r = in->nb_samples > 0 || s.video ? av_buffersrc_add_frame_flags(s.src, in, 0) : 0;
            av_frame_unref(m_frame.get());
            av_frame_unref(m_adapted.get());
            if (r < 0 && r != AVERROR_EOF) return fail("filtering", r);
            if (!drain(s)) return false;
            if (s.sinkDone) return true;
        }
        // Closing at the end time of the last frame lets fps keep that frame for its full duration.
        if ((r = av_buffersrc_close(s.src, s.endPts, AV_BUFFERSRC_FLAG_PUSH)) < 0 && r != AVERROR_EOF)
            return fail("filtering", r);
        return drain(s);
    }

    static bool matchesSource(const OutStream& s, const AVFrame* f) {
        if (s.video) return f->width == s.srcWidth && f->height == s.srcHeight && f->format == s.srcFormat;
        return f->sample_rate == s.srcRate && f->format == s.srcFormat &&
               f->ch_layout.nb_channels == s.srcChannels &&
               (f->ch_layout.order != AV_CHANNEL_ORDER_NATIVE || s.srcMask == 0 ||
                f->ch_layout.u.mask == s.srcMask);
    }

    // Converts a frame into m_adapted in the format the graph's source was set up for: pictures are
    // scaled back to the first size (as the ffmpeg program does), sound is resampled.
    bool toSource(OutStream& s, const AVFrame* f) {
        AVFrame* a = m_adapted.get();
        a->format = s.srcFormat;
        int r = 0;
        if (s.video) {
            s.toSource.reset(sws_getCachedContext(s.toSource.release(), f->width, f->height,
                                                  static_cast<AVPixelFormat>(f->format), s.srcWidth,
                                                  s.srcHeight, static_cast<AVPixelFormat>(s.srcFormat),
                                                  SWS_BICUBIC, nullptr, nullptr, nullptr));
            if (!s.toSource) return failText("No conversion for a picture that changed its size or format");
            a->width = s.srcWidth;
            a->height = s.srcHeight;
            if ((r = av_frame_get_buffer(a, 0)) < 0) return fail("converting a changed picture", r);
            sws_scale(s.toSource.get(), f->data, f->linesize, 0, f->height, a->data, a->linesize);
            return av_frame_copy_props(a, f) >= 0 || fail("converting a changed picture", AVERROR(ENOMEM));
        }
        const std::uint64_t mask = f->ch_layout.order == AV_CHANNEL_ORDER_NATIVE ? f->ch_layout.u.mask : 0;
        if (!s.resampleToSource || f->sample_rate != s.adaptRate || f->format != s.adaptFormat ||
            f->ch_layout.nb_channels != s.adaptChannels || mask != s.adaptMask) {
            // One context per incoming format; the few samples it holds back at a change are dropped.
            AVChannelLayout target{};
            if (s.srcMask)
                av_channel_layout_from_mask(&target, s.srcMask);
            else
                av_channel_layout_default(&target, s.srcChannels);
            AVChannelLayout incoming{};
            av_channel_layout_copy(&incoming, &f->ch_layout);
            SwrContext* swr = nullptr;
            r = swr_alloc_set_opts2(&swr, &target, static_cast<AVSampleFormat>(s.srcFormat), s.srcRate,
                                    &incoming, static_cast<AVSampleFormat>(f->format), f->sample_rate, 0,
                                    nullptr);
            av_channel_layout_uninit(&target);
            av_channel_layout_uninit(&incoming);
            s.resampleToSource.reset(swr);
            if (r < 0 || (r = swr_init(swr)) < 0) return fail("resampling changed sound", r);
            s.adaptRate = f->sample_rate;
            s.adaptFormat = f->format;
            s.adaptChannels = f->ch_layout.nb_channels;
            s.adaptMask = mask;
        }
        if ((r = av_frame_copy_props(a, f)) < 0) return fail("resampling changed sound", r);
        a->sample_rate = s.srcRate;
        if (s.srcMask)
            av_channel_layout_from_mask(&a->ch_layout, s.srcMask);
        else
            av_channel_layout_default(&a->ch_layout, s.srcChannels);
        if ((r = swr_convert_frame(s.resampleToSource.get(), a, f)) < 0)
            return fail("resampling changed sound", r);
        return true;
    }

    std::int64_t frameDuration(const OutStream& s, const AVFrame* f) const {
        if (f->pkt_duration > 0) return f->pkt_duration;
        if (!s.video && f->sample_rate > 0)
            return av_rescale_q(f->nb_samples, AVRational{1, f->sample_rate}, s.in->time_base);
        const AVRational rate = av_guess_frame_rate(m_in.get(), s.in, nullptr);
        return rate.num > 0 ? av_rescale_q(1, av_inv_q(rate), s.in->time_base) : 0;
    }

    bool drain(OutStream& s) {
        while (true) {
            // One packet can release hours of frames (a rate filter filling a gap): keep listening.
            if (!m_control.checkpoint()) return false;
            const int r = av_buffersink_get_frame(s.sink, m_filtered.get());
            if (r == AVERROR(EAGAIN)) return true;
            if (r == AVERROR_EOF) {
                s.sinkDone = true;
                return true;
            }
            if (r < 0) return fail("filtering", r);
            const AVRational tb = av_buffersink_get_time_base(s.sink);
            if (m_filtered->pts != AV_NOPTS_VALUE) {
                m_positionUs = std::max(m_positionUs, av_rescale_q(m_filtered->pts, tb, AV_TIME_BASE_Q));
                m_filtered->pts = av_rescale_q(m_filtered->pts, tb, s.enc->time_base);
            }
            if (m_runawayUs > 0 && m_positionUs > m_runawayUs) {
                av_frame_unref(m_filtered.get());
                return failText("The output of '" + m_job.inputPath + "' runs far past the input's length (" +
                                seconds(m_positionUs) + " s of " + seconds(m_durationUs) +
                                " s): its timestamps are damaged");
            }
            m_filtered->pict_type = AV_PICTURE_TYPE_NONE;
            const bool hookWanted =
                s.video && m_opt.videoHook && m_cb.hook && (!m_cb.hookActive || m_cb.hookActive(m_cb.task));
            bool ok = !hookWanted || applyHook(m_filtered.get());
            if (s.video) ++m_videoFrames;
            ok = ok && (!s.video || sendPreview(s, m_filtered.get()));
            ok = ok && encode(s, m_filtered.get());
            av_frame_unref(m_filtered.get());
            if (!ok) return false;
            reportProgress(false);
        }
    }

    // Round trip through BGRA for the hook, back into the frame's own format and buffer.
    bool applyHook(AVFrame* f) {
        const auto fmt = static_cast<AVPixelFormat>(f->format);
        if (!m_bgra || m_bgra->width != f->width || m_bgra->height != f->height) {
            m_bgra.reset(av_frame_alloc());
            m_bgra->format = AV_PIX_FMT_BGRA;
            m_bgra->width = f->width;
            m_bgra->height = f->height;
            if (const int r = av_frame_get_buffer(m_bgra.get(), 0); r < 0) return fail("hook buffer", r);
        }
        // Even 4:2:0 comes back through our own pass; only other layouts need the scaler's way back.
        const bool ownWayBack = fmt == AV_PIX_FMT_YUV420P && f->width % 2 == 0 && f->height % 2 == 0;
        m_toBgra.reset(sws_getCachedContext(m_toBgra.release(), f->width, f->height, fmt, f->width, f->height,
                                            AV_PIX_FMT_BGRA, SWS_BICUBIC, nullptr, nullptr, nullptr));
        if (!ownWayBack)
            m_fromBgra.reset(sws_getCachedContext(m_fromBgra.release(), f->width, f->height, AV_PIX_FMT_BGRA,
                                                  f->width, f->height, fmt, SWS_BICUBIC, nullptr, nullptr,
                                                  nullptr));
        if (!m_toBgra || (!ownWayBack && !m_fromBgra))
            return failText("No conversion between BGRA and " + std::string(av_get_pix_fmt_name(fmt)));
        if (const int r = av_frame_make_writable(f); r < 0) return fail("hook", r);
        sws_scale(m_toBgra.get(), f->data, f->linesize, 0, f->height, m_bgra->data, m_bgra->linesize);
        m_cb.hook(
            HookFrame{m_cb.task, m_videoFrames, f->width, f->height, m_bgra->linesize[0], m_bgra->data[0]});
        if (ownWayBack)
            Bgra_ToYuv420(m_bgra->data[0], m_bgra->linesize[0], f->width, f->height, f->data[0],
                          f->linesize[0], f->data[1], f->linesize[1], f->data[2], f->linesize[2]);
        else
            sws_scale(m_fromBgra.get(), m_bgra->data, m_bgra->linesize, 0, f->height, f->data, f->linesize);
        return true;
    }

    // A downscaled BGRA copy, after the hook so that the preview shows its effects.
    bool sendPreview(const OutStream& s, const AVFrame* f) {
        if (!m_cb.preview || !m_cb.previewEnabled || !m_cb.previewEnabled->load()) return true;
        const auto now = std::chrono::steady_clock::now();
        if (m_lastPreview && now - *m_lastPreview < std::chrono::milliseconds(m_cb.previewIntervalMs))
            return true;
        m_lastPreview = now;
        // The encoder's ratio is the one -aspect set.
        const AVRational sar =
            s.enc->sample_aspect_ratio.num > 0 ? s.enc->sample_aspect_ratio : AVRational{1, 1};
        const int w = std::max(2, std::min(m_cb.previewWidth, f->width));
        const int h = std::max(
            2, static_cast<int>(std::lround(static_cast<double>(w) * f->height / (f->width * av_q2d(sar)))));
        m_toPreview.reset(sws_getCachedContext(m_toPreview.release(), f->width, f->height,
                                               static_cast<AVPixelFormat>(f->format), w, h, AV_PIX_FMT_BGRA,
                                               SWS_BILINEAR, nullptr, nullptr, nullptr));
        if (!m_toPreview) return true; // no preview for this format; the output is unaffected
        m_previewBits.resize(static_cast<std::size_t>(w) * h * 4);
        std::uint8_t* dst[4] = {m_previewBits.data(), nullptr, nullptr, nullptr};
        const int dstStride[4] = {w * 4, 0, 0, 0};
        sws_scale(m_toPreview.get(), f->data, f->linesize, 0, f->height, dst, dstStride);
        m_cb.preview(w, h, w * 4, m_previewBits.data());
        return true;
    }

    bool encode(OutStream& s, const AVFrame* frame) {
        if (!frame) {
            if (s.flushed) return true;
            s.flushed = true;
        }
        int r = avcodec_send_frame(s.enc.get(), frame);
        if (r < 0 && r != AVERROR_EOF) return fail("encoding", r);
        while (true) {
            if (m_control.stopped()) return false;
            r = avcodec_receive_packet(s.enc.get(), m_packet.get());
            if (r == AVERROR(EAGAIN) || r == AVERROR_EOF) return true;
            if (r < 0) return fail("encoding", r);
            av_packet_rescale_ts(m_packet.get(), s.enc->time_base, s.out->time_base);
            m_packet->stream_index = s.out->index;
            r = av_interleaved_write_frame(m_out.get(), m_packet.get());
            if (r < 0) return fail("writing '" + m_job.outputPath + "'", r);
        }
    }

    void reportProgress(bool last) {
        if (!m_cb.progress) return;
        const auto now = std::chrono::steady_clock::now();
        if (!last && now - m_lastReport < std::chrono::milliseconds(m_cb.progressIntervalMs)) return;
        m_lastReport = now;
        m_cb.progress(m_positionUs, m_durationUs);
    }

    const TranscodeJob& m_job;
    const EncoderOptions& m_opt;
    TaskControl& m_control;
    const TranscodeCallbacks& m_cb;

    InputPtr m_in;
    OutputPtr m_out;
    std::vector<OutStream> m_streams;
    std::vector<int> m_byInput; // input stream index -> m_streams index, or -1
    struct StreamClock {
        std::int64_t nextDtsUs = AV_NOPTS_VALUE; // where the stream's next packet should be
        std::int64_t lastDtsUs = AV_NOPTS_VALUE;
    };
    std::vector<StreamClock> m_clocks; // by input stream index
    std::int64_t m_lastTsUs = AV_NOPTS_VALUE;
    std::int64_t m_jumpOffsetUs = 0; // taken out of every timestamp after a jump
    std::int64_t m_runawayUs = 0;    // an output position past this ends the task; 0: no limit
    FramePtr m_frame, m_filtered, m_bgra, m_adapted;
    std::int64_t m_videoFrames = 0; // video frames handed on so far: the hook's frame numbers
    PacketPtr m_packet;
    SwsPtr m_toBgra, m_fromBgra, m_toPreview;
    std::vector<std::uint8_t> m_previewBits;
    std::optional<std::chrono::steady_clock::time_point> m_lastPreview;

    PartFile m_part;
    bool m_writesPart = false;

    std::int64_t m_startUs = 0;
    std::int64_t m_durationUs = 0;
    std::int64_t m_positionUs = 0;
    std::chrono::steady_clock::time_point m_lastReport;
    std::string m_error;
};

} // namespace

TranscodeResult Run_Transcode(const TranscodeJob& job, TaskControl& control,
                              const TranscodeCallbacks& callbacks) {
    Transcoder t(job, control, callbacks);
    return t.run();
}

} // namespace morvane
