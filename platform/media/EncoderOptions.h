// The option dialect of the encoder's argument text, read into plain values.
//
// The text is what the argument builder writes: the hook switch, audio and video options in any order,
// a duration and a quoted filter chain, e.g.
//   -VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k
//   -vcodec libx264 -t 10 -vf " scale=640:360"
// Parsing is pure text work: whether an encoder exists is decided by the engine, not here.
// Safe to call from any thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace morvane {

struct Rational {
    int num = 0;
    int den = 0;
    bool isSet() const { return num > 0 && den > 0; }
};

// A DV standard as the `ffmpeg` program's -target sets it up.
enum class DvTarget { None, Ntsc, Pal };

struct EncoderOptions {
    bool videoHook = false; // -VideoOutputHook: every output frame passes the BGRA hook

    // Audio; 0 or "" keeps the source's value or the container's default codec.
    bool noAudio = false;          // -an
    int channels = 0;              // -ac
    int sampleRate = 0;            // -ar, hertz
    std::int64_t audioBitrate = 0; // -ab, bits per second
    std::string audioCodec;        // -acodec, an encoder or codec name

    // Video.
    bool noVideo = false;          // -vn
    Rational frameRate;            // -r
    Rational aspect;               // -aspect, display aspect ratio; unset keeps the source's
    std::int64_t videoBitrate = 0; // -vb, bits per second
    std::string videoCodec;        // -vcodec
    std::string pixelFormat;       // -pix_fmt, a libavutil pixel format name
    std::uint32_t videoTag = 0;    // -vtag, as a little-endian four-character code
    DvTarget target = DvTarget::None;
    bool deinterlace = false; // -deinterlace: a deinterlacer ahead of the filter chain
    std::string videoFilters; // -vf, as given (the builder's chain starts with a blank)

    // Encoder-private options (-preset, -row-mt, -deadline, -cpu-used), names without the dash, in
    // order. As with the ffmpeg program, each goes to every encoder of the output that knows it.
    std::vector<std::pair<std::string, std::string>> codecOptions;

    std::int64_t durationUs = -1; // -t; -1 means to the end of the input
};

struct InputOptions {
    std::int64_t seekUs = 0; // -ss; an accurate seek, frames before it are decoded and dropped
};

// Both return false and set `error` to one line naming the option and the value at fault.
bool Parse_EncoderOptions(std::string_view text, EncoderOptions& out, std::string& error);
bool Parse_InputOptions(std::string_view text, InputOptions& out, std::string& error);

// The fixed settings of a DV target: frame size, pixel format, rate and audio.
struct DvSettings {
    int width;
    int height;
    const char* pixelFormat;
    Rational frameRate;
    int sampleRate;
    int channels;
};
DvSettings Dv_Settings(DvTarget target);

} // namespace morvane
