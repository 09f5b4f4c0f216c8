// Owning handles for the libav objects of the reader and the encoder engine, and the error text helper.
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavfilter/avfilter.h>
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
#include <libavutil/error.h>
#include <libavutil/frame.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <memory>
#include <string>

namespace morvane::libav {

struct InputCloser {
    void operator()(AVFormatContext* c) const { avformat_close_input(&c); }
};
struct OutputCloser {
    void operator()(AVFormatContext* c) const {
        if (c && c->pb && !(c->oformat->flags & AVFMT_NOFILE)) avio_closep(&c->pb);
        avformat_free_context(c);
    }
};
struct CodecCloser {
    void operator()(AVCodecContext* c) const { avcodec_free_context(&c); }
};
struct FrameFreer {
    void operator()(AVFrame* f) const { av_frame_free(&f); }
};
struct PacketFreer {
    void operator()(AVPacket* p) const { av_packet_free(&p); }
};
struct GraphFreer {
    void operator()(AVFilterGraph* g) const { avfilter_graph_free(&g); }
};
struct SwsFreer {
    void operator()(SwsContext* s) const { sws_freeContext(s); }
};
struct SwrFreer {
    void operator()(SwrContext* s) const { swr_free(&s); }
};
struct InOutFreer {
    void operator()(AVFilterInOut* io) const { avfilter_inout_free(&io); }
};
struct DictFreer {
    void operator()(AVDictionary* d) const { av_dict_free(&d); }
};

using InputPtr = std::unique_ptr<AVFormatContext, InputCloser>;
using OutputPtr = std::unique_ptr<AVFormatContext, OutputCloser>;
using CodecPtr = std::unique_ptr<AVCodecContext, CodecCloser>;
using FramePtr = std::unique_ptr<AVFrame, FrameFreer>;
using PacketPtr = std::unique_ptr<AVPacket, PacketFreer>;
using GraphPtr = std::unique_ptr<AVFilterGraph, GraphFreer>;
using SwsPtr = std::unique_ptr<SwsContext, SwsFreer>;
using SwrPtr = std::unique_ptr<SwrContext, SwrFreer>;
using InOutPtr = std::unique_ptr<AVFilterInOut, InOutFreer>;
using DictPtr = std::unique_ptr<AVDictionary, DictFreer>;

inline std::string errorText(int code) {
    char buf[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, buf, sizeof buf);
    return buf;
}

} // namespace morvane::libav
