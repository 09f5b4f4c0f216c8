// The engine against the ffmpeg program: every codec row of the argument builder that this FFmpeg can
// encode, and the edits the builder writes, converted by both from the same generated clip; the stream
// properties of the two outputs are read back with libavformat and compared.
//
// With MORVANE_CONFORMANCE_SUBSET set in the environment the table runs a representative subset, one
// row per family of encoders, for slow builds. The whole table takes about 10 s in a Debug build and
// about as long under AddressSanitizer (the FFmpeg libraries themselves are not instrumented).
#include "FFEncoder.h"
#include "LibavHandles.h"
#include "Make_EncoderArgs.h"
#include "Transcoder.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace morvane {
namespace {

using namespace libav;

constexpr double kClipSeconds = 1.0;
constexpr double kClipRate = 25.0;

bool runShell(const std::string& cmd) {
    return std::system(cmd.c_str()) == 0;
}

std::string shellQuoted(const std::string& s) {
    std::string q = "'";
    for (char c : s)
        q += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return q + "'";
}

struct Props {
    bool opened = false;
    std::string videoCodec, pixelFormat, audioCodec;
    int width = 0, height = 0, sampleRate = 0, channels = 0, videoFrames = 0;
    double frameRate = 0, displayAspect = 0, duration = 0;
    std::uint32_t videoTag = 0;
};

Props probe(const std::string& path) {
    Props p;
    AVFormatContext* raw = nullptr;
    if (avformat_open_input(&raw, path.c_str(), nullptr, nullptr) < 0) return p;
    InputPtr in(raw);
    if (avformat_find_stream_info(in.get(), nullptr) < 0) return p;
    p.opened = true;
    p.duration = in->duration > 0 ? static_cast<double>(in->duration) / AV_TIME_BASE : 0;
    int video = -1;
    for (unsigned i = 0; i < in->nb_streams; ++i) {
        AVStream* st = in->streams[i];
        const AVCodecParameters* c = st->codecpar;
        if (c->codec_type == AVMEDIA_TYPE_VIDEO) {
            video = static_cast<int>(i);
            p.videoCodec = avcodec_get_name(c->codec_id);
            p.pixelFormat = c->format >= 0 ? av_get_pix_fmt_name(static_cast<AVPixelFormat>(c->format)) : "";
            p.width = c->width;
            p.height = c->height;
            p.videoTag = c->codec_tag;
            p.frameRate = av_q2d(av_guess_frame_rate(in.get(), st, nullptr));
            AVRational sar = av_guess_sample_aspect_ratio(in.get(), st, nullptr);
            if (sar.num == 0) sar = {1, 1};
            p.displayAspect = c->height > 0 ? av_q2d(sar) * c->width / c->height : 0;
        } else if (c->codec_type == AVMEDIA_TYPE_AUDIO) {
            p.audioCodec = avcodec_get_name(c->codec_id);
            p.sampleRate = c->sample_rate;
            p.channels = c->ch_layout.nb_channels;
        }
    }
    PacketPtr pkt(av_packet_alloc());
    while (video >= 0 && av_read_frame(in.get(), pkt.get()) >= 0) {
        if (pkt->stream_index == video) ++p.videoFrames;
        av_packet_unref(pkt.get());
    }
    return p;
}

// The same job in the ffmpeg program's own spelling of our dialect.
std::string ffmpegCommand(const std::string& input, const std::string& seek, const std::string& args,
                          const std::string& output) {
    std::vector<std::string> tokens;
    for (std::size_t i = 0; i < args.size();) {
        if (args[i] == ' ') {
            ++i;
            continue;
        }
        std::string t;
        while (i < args.size() && args[i] != ' ') {
            if (args[i] == '"') {
                const std::size_t close = args.find('"', i + 1);
                t += args.substr(i + 1, close - i - 1);
                i = close + 1;
            } else {
                t += args[i++];
            }
        }
        tokens.push_back(t);
    }
    std::string opts, chain;
    bool deinterlace = false;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const std::string& t = tokens[i];
        const bool hasValue = i + 1 < tokens.size() && tokens[i + 1].rfind('-', 0) != 0;
        if (t == "-VideoOutputHook") continue;
        if (t == "-deinterlace") {
            deinterlace = true;
            continue;
        }
        if (t == "-an" || t == "-vn") {
            opts += " " + t;
            continue;
        }
        if (!hasValue) continue; // "-aspect" without a value keeps the source's
        const std::string& v = tokens[++i];
        static const std::pair<const char*, const char*> renamed[] = {
            {"-ab", "-b:a"}, {"-vb", "-b:v"}, {"-acodec", "-c:a"}, {"-vcodec", "-c:v"}, {"-vtag", "-tag:v"}};
        std::string name = t;
        for (const auto& [ours, theirs] : renamed)
            if (t == ours) name = theirs;
        if (name == "-vf")
            chain = v;
        else
            opts += " " + name + " " + shellQuoted(name == "-c:a" && v == "libfaac" ? "aac" : v);
    }
    if (deinterlace) chain = chain.empty() ? "yadif" : "yadif," + chain;
    if (!chain.empty()) opts += " -vf " + shellQuoted(chain);
    return "ffmpeg -nostdin -loglevel error -y" + seek + " -i " + shellQuoted(input) + opts + " " +
           shellQuoted(output);
}

// H.264 into MP4 from the 176x144 clip at its own size and rate, no edits; each case changes a part.
EncoderParams baseParams() {
    EncoderParams p;
    p.SrcWidth = 176;
    p.SrcHeight = 144;
    p.SrcFrameRate = 25;
    p.SrcAspect = "1.22";
    p.OutWidth = 0;
    p.OutHeight = 0;
    p.FrameRateText = "25 fps";
    p.AspectMode = "Original";
    p.VideoCodec = "H.264";
    p.VideoBitrate = "300";
    p.Quality = 2;
    p.AudioCodec = "AAC";
    p.Format = "MP4";
    p.Channels = 1;
    p.AudioBitrate = "128";
    p.SampleRate = "44100";
    p.BitDepth = "16 bit";
    p.EditedWidth = 176;
    p.EditedHeight = 144;
    p.PadColor = "black";
    p.Deinterlace = "0";
    return p;
}

struct Case {
    std::string name;
    std::string extension;
    std::function<void(EncoderParams&)> edit;
    bool inSubset = false; // runs under the sanitizers too
};

std::function<void(EncoderParams&)> video(const char* label, const char* audio, const char* format) {
    return [=](EncoderParams& p) {
        p.VideoCodec = label;
        p.AudioCodec = audio;
        p.Format = format;
    };
}

std::function<void(EncoderParams&)> audioOnly(const char* label, const char* format,
                                              const char* rate = "44100", int channels = 1,
                                              const char* bitDepth = "16 bit") {
    return [=](EncoderParams& p) {
        p.VideoCodec = "No Video";
        p.AudioCodec = label;
        p.Format = format;
        p.SampleRate = rate;
        p.Channels = channels;
        p.BitDepth = bitDepth;
    };
}

// Today's slow encoders get 5 frames of 64 x 64, and sound at 48 kHz as Opus needs.
std::function<void(EncoderParams&)> tiny(const char* label, const char* audio, const char* format) {
    return [=](EncoderParams& p) {
        video(label, audio, format)(p);
        p.OutWidth = p.OutHeight = 64;
        p.SampleRate = "48000";
        p.TrimEndLow = "200000";
        p.TrimEndHigh = "0";
    };
}

std::vector<Case> allCases() {
    std::vector<Case> cases = {
        // Each video row in a container of its own, with the sound that container usually carries.
        {"MPEG-1", "mpg", video("MPEG-1", "MP2", "MPG"), true},
        {"MPEG-2", "mpg", video("MPEG-2", "MP2", "MPG")},
        {"MPEG4", "avi", video("MPEG4 (DivX/Xvid compatible)", "MP3", "AVI"), true},
        {"FLV", "flv", video("H.263 FLV Video", "MP3", "FLV")},
        {"H.264", "mp4", video("H.264", "AAC", "MP4"), true},
        {"MJPEG", "avi", video("IBM Motion JPEG", "PCM little-endian", "AVI")},
        {"SVQ1", "mov", video("Sorenson Video 1", "PCM big-endian", "MOV")},
        {"H.263+", "avi", video("Intel ITU H.263", "IMA ADPCM", "AVI")},
        {"H.263", "3gp",
         [](EncoderParams& p) {
             video("H.263", "AAC", "3GP")(p);
             p.SampleRate = "8000";
             p.Channels = 0;
             p.AudioBitrate = "12";
         }},
        {"VP8", "webm", video("VP8", "Ogg Vorbis", "WEBM")},
        {"HuffYUV", "avi", video("Huffman Lossless", "PCM little-endian", "AVI")},
        {"MS MPEG4 V2", "avi", video("Microsoft MPEG4 V2", "Microsoft ADPCM", "AVI")},
        {"MS MPEG4 V3", "avi", video("Microsoft MPEG4 V3", "CCITT A-law", "AVI")},
        {"Xvid", "avi", video("Xvid MPEG4", "CCITT u-law", "AVI"), true},
        {"DivX", "avi", video("DivX MPEG4", "MP3", "AVI")},
        {"RealVideo", "rm", video("RealVideo", "RealAudio 3.0 (dnet)", "RM")},
        {"WMV7", "wmv", video("Windows Media Video V7", "WMA", "WMV")},
        {"WMV8", "wmv", video("Windows Media Video V8", "WMA", "WMV"), true},
        {"Theora", "ogv", video("Theora", "Ogg Vorbis", "OGV")},
        {"H.265 hvc1", "mp4", tiny("H.265/HEVC", "AAC", "MP4"), true},
        {"H.265", "mkv", tiny("H.265/HEVC", "Opus", "MKV")},
        {"VP9", "webm", tiny("VP9", "Opus", "WEBM"), true},
        {"AV1", "mp4", tiny("AV1", "AAC", "MP4")},
        {"Uncompressed GIF", "gif", video("Uncompressed", "No Audio", "GIF"), true},
        {"Uncompressed AVI", "avi", video("Uncompressed", "PCM little-endian", "AVI")},
        {"NTSC DV", "dv",
         [](EncoderParams& p) {
             video("DV - Digital Video Format", "PCM little-endian", "DV")(p);
             p.OutWidth = 720;
             p.OutHeight = 480;
         },
         true},
        {"PAL DV", "dv",
         [](EncoderParams& p) {
             video("DV - Digital Video Format", "PCM little-endian", "DV")(p);
             p.OutWidth = 720;
             p.OutHeight = 576;
         }},

        // Each audio row alone, in a container that holds it.
        {"MPEG-2/4 AAC", "m4a", audioOnly("MPEG-2/4", "M4A")},
        {"AAC", "m4a", audioOnly("AAC", "M4A"), true},
        {"MP3", "mp3", audioOnly("MP3", "MP3"), true},
        {"MP2", "mp2", audioOnly("MP2", "MP2")},
        {"Vorbis", "ogg", audioOnly("Ogg Vorbis", "OGG"), true},
        {"IMA ADPCM", "wav", audioOnly("IMA ADPCM", "WAV")},
        {"IMA_ADPCM", "wav", audioOnly("IMA_ADPCM", "WAV")},
        {"AMR", "amr",
         [](EncoderParams& p) {
             audioOnly("AMR ACELP", "AMR", "8000", 0)(p);
             p.AudioBitrate = "12.2";
         }},
        {"A-law", "wav", audioOnly("CCITT A-law", "WAV")},
        {"u-law", "wav", audioOnly("CCITT u-law", "WAV")},
        {"AC3", "ac3", audioOnly("AC3", "AC3", "48000", 2), true},
        {"WMA", "wma", audioOnly("WMA", "WMA")},
        {"RealAudio", "ac3", audioOnly("RealAudio 3.0 (dnet)", "AC3", "48000")},
        {"MS ADPCM", "wav", audioOnly("Microsoft ADPCM", "WAV")},
        {"FLAC", "flac", audioOnly("FLAC", "FLAC"), true},
        {"Opus", "opus", audioOnly("Opus", "OPUS", "48000"), true},
        {"GSM", "wav",
         [](EncoderParams& p) {
             audioOnly("MS GSM 6.10", "WAV", "8000", 0)(p);
             p.AudioBitrate = "13";
         }},
        {"PCM LE 8", "wav", audioOnly("PCM little-endian", "WAV", "44100", 1, "8 bit"), true},
        {"PCM LE 16", "wav", audioOnly("PCM little-endian", "WAV", "44100", 1, "16 bit")},
        {"PCM LE 24", "wav", audioOnly("PCM little-endian", "WAV", "44100", 1, "24 bit")},
        {"PCM LE 32", "wav", audioOnly("PCM little-endian", "WAV", "44100", 1, "32 bit")},
        {"PCM BE 8", "aiff", audioOnly("PCM big-endian", "AIFF", "44100", 1, "8 bit")},
        {"PCM BE 16", "aiff", audioOnly("PCM big-endian", "AIFF", "44100", 1, "16 bit")},
        {"PCM BE 24", "aiff", audioOnly("PCM big-endian", "AIFF", "44100", 1, "24 bit"), true},
        {"PCM BE 32", "aiff", audioOnly("PCM big-endian", "AIFF", "44100", 1, "32 bit")},

        // The edits, on the base H.264 job.
        {"trim", "mp4",
         [](EncoderParams& p) {
             p.TrimStartLow = "200000";
             p.TrimStartHigh = "0";
             p.TrimEndLow = "700000";
             p.TrimEndHigh = "0";
         },
         true},
        {"crop", "mp4",
         [](EncoderParams& p) {
             p.CropTop = 8;
             p.CropBottom = 8;
             p.CropLeft = 16;
             p.CropRight = 12;
         },
         true},
        {"pad", "mp4",
         [](EncoderParams& p) {
             p.PadTop = 8;
             p.PadBottom = 8;
             p.PadLeft = 4;
         }},
        {"scale", "mp4",
         [](EncoderParams& p) {
             p.OutWidth = 128;
             p.OutHeight = 96;
         }},
        {"aspect 16:9", "mp4", [](EncoderParams& p) { p.AspectMode = "16:9"; }, true},
        {"aspect left empty", "mp4", [](EncoderParams& p) { p.AspectMode = "Custom"; }},
        {"frame rate", "mp4", [](EncoderParams& p) { p.FrameRateText = "15 fps"; }, true},
        {"deinterlace", "mp4", [](EncoderParams& p) { p.Deinterlace = "1"; }, true},
        {"no audio", "mp4", [](EncoderParams& p) { p.AudioCodec = "No Audio"; }, true},
        {"no video", "mp3", audioOnly("MP3", "MP3")},
    };
    return cases;
}

bool subsetOnly() {
    return std::getenv("MORVANE_CONFORMANCE_SUBSET") != nullptr;
}

// Error lines of the libraries while the engine runs: a muxer complaining (a buffer underflow of the
// MPEG program stream, say) is a fault even when the file comes out.
struct ErrorLog {
    static void callback(void*, int level, const char* fmt, va_list vl) {
        if (level > AV_LOG_ERROR) return;
        char line[512];
        std::vsnprintf(line, sizeof line, fmt, vl);
        std::lock_guard lock(mutex);
        if (lines.size() < 20) lines.push_back(line);
        ++count;
    }
    static inline std::mutex mutex;
    static inline std::vector<std::string> lines;
    static inline int count = 0;
};

struct Job {
    std::string name;
    std::string args;
    std::string seek;
    std::string ours;
    std::string theirs;
    std::string missingEncoder; // set when this FFmpeg build has none for the row
};

class ConformanceTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        s_dir = new QTemporaryDir();
        // 176x144 (an H.263 size) at 25 fps, with a 440 Hz stereo tone at 48 kHz.
        s_clip = s_dir->filePath("clip.mkv").toStdString();
        s_clipMade = runShell("ffmpeg -nostdin -loglevel error -y -f lavfi -i "
                              "testsrc2=size=176x144:rate=25:duration=1 -f lavfi -i "
                              "sine=frequency=440:sample_rate=48000:duration=1 -ac 2 -c:v mpeg4 -q:v 2 "
                              "-c:a pcm_s16le " +
                              shellQuoted(s_clip));
    }
    static void TearDownTestSuite() {
        delete s_dir;
        s_dir = nullptr;
    }
    static std::string path(const std::string& name) {
        return s_dir->filePath(QString::fromStdString(name)).toStdString();
    }

    static QTemporaryDir* s_dir;
    static std::string s_clip;
    static bool s_clipMade;
};
QTemporaryDir* ConformanceTest::s_dir = nullptr;
std::string ConformanceTest::s_clip;
bool ConformanceTest::s_clipMade = false;

std::string missingEncoder(const std::string& args) {
    EncoderOptions o;
    std::string error;
    if (!Parse_EncoderOptions(args, o, error)) return {};
    if (!o.noVideo && !o.videoCodec.empty() && !Find_Encoder(o.videoCodec, AVMEDIA_TYPE_VIDEO, error))
        return o.videoCodec;
    if (!o.noAudio && !o.audioCodec.empty() && !Find_Encoder(o.audioCodec, AVMEDIA_TYPE_AUDIO, error))
        return o.audioCodec;
    return {};
}

TEST_F(ConformanceTest, EveryCodecRowAndEditAgreesWithTheFfmpegProgram) {
    ASSERT_TRUE(s_clipMade);
    const bool subset = subsetOnly();
    std::vector<Job> jobs;
    int n = 0;
    for (const Case& c : allCases()) {
        if (subset && !c.inSubset) continue;
        EncoderParams p = baseParams();
        c.edit(p);
        Job j;
        j.name = c.name;
        j.args = Make_EncoderArgs(p).toStdString();
        j.seek = Make_SeekArgs(p.TrimStartLow, p.TrimStartHigh).toStdString();
        j.ours = path("ours" + std::to_string(n) + "." + c.extension);
        j.theirs = path("theirs" + std::to_string(n) + "." + c.extension);
        j.missingEncoder = missingEncoder(j.args);
        ASSERT_NE(j.args, "-1") << c.name;
        jobs.push_back(j);
        ++n;
    }

    // The ffmpeg program works through its share on a thread of its own while the engine runs.
    std::vector<char> theirsMade(jobs.size(), 0);
    std::thread reference([&] {
        for (std::size_t i = 0; i < jobs.size(); ++i)
            if (jobs[i].missingEncoder.empty())
                theirsMade[i] = runShell(ffmpegCommand(s_clip, jobs[i].seek, jobs[i].args, jobs[i].theirs));
    });

    FFEncoder enc;
    std::vector<int> taskOf(jobs.size(), -1);
    std::vector<int> result(jobs.size(), 0); // 1 finished, -1 not
    std::vector<std::string> messages(jobs.size());
    bool ended = false;
    QObject::connect(&enc, &FFEncoder::OnTerminate,
                     [&](int task, bool finished, bool, const QString& message) {
                         if (task == -1) {
                             ended = true;
                             return;
                         }
                         for (std::size_t i = 0; i < jobs.size(); ++i)
                             if (taskOf[i] == task) {
                                 result[i] = finished ? 1 : -1;
                                 messages[i] = message.toStdString();
                             }
                     });
    for (std::size_t i = 0; i < jobs.size(); ++i) {
        const int task = enc.AddInput(QString::fromStdString(s_clip), QString::fromStdString(jobs[i].seek));
        ASSERT_GE(task, 0);
        const int added =
            enc.AddOutput(task, QString::fromStdString(jobs[i].ours), QString::fromStdString(jobs[i].args));
        if (!jobs[i].missingEncoder.empty()) {
            // A row this build cannot encode is refused up front, with the encoder named.
            EXPECT_LT(added, 0) << jobs[i].name;
            EXPECT_EQ(enc.LastErrorMessage().toStdString(),
                      "Unknown encoder '" + jobs[i].missingEncoder + "'");
            enc.RemoveInput(task);
            continue;
        }
        ASSERT_EQ(added, 0) << jobs[i].name << ": " << enc.LastErrorMessage().toStdString();
        taskOf[i] = task;
    }
    QEventLoop loop;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        if (ended) loop.quit();
    });
    poll.start(10);
    QTimer::singleShot(170000, &loop, &QEventLoop::quit);
    av_log_set_callback(&ErrorLog::callback);
    ASSERT_TRUE(enc.Start(1));
    loop.exec();
    av_log_set_callback(av_log_default_callback);
    reference.join();
    ASSERT_TRUE(ended);
    EXPECT_EQ(ErrorLog::count, 0) << testing::PrintToString(ErrorLog::lines);

    int compared = 0;
    for (std::size_t i = 0; i < jobs.size(); ++i) {
        const Job& j = jobs[i];
        if (!j.missingEncoder.empty()) continue;
        SCOPED_TRACE(j.name + ": " + j.args);
        ASSERT_EQ(result[i], 1) << messages[i];
        ASSERT_TRUE(theirsMade[i]) << ffmpegCommand(s_clip, j.seek, j.args, j.theirs);
        const Props ours = probe(j.ours);
        const Props theirs = probe(j.theirs);
        ASSERT_TRUE(ours.opened);
        ASSERT_TRUE(theirs.opened);
        ++compared;

        EXPECT_EQ(ours.videoCodec, theirs.videoCodec);
        EXPECT_EQ(ours.videoTag, theirs.videoTag);
        EXPECT_EQ(ours.pixelFormat, theirs.pixelFormat);
        EXPECT_EQ(ours.width, theirs.width);
        EXPECT_EQ(ours.height, theirs.height);
        EXPECT_NEAR(ours.frameRate, theirs.frameRate, 0.01);
        EXPECT_NEAR(ours.displayAspect, theirs.displayAspect, 0.01);
        EXPECT_EQ(ours.audioCodec, theirs.audioCodec);
        EXPECT_EQ(ours.sampleRate, theirs.sampleRate);
        EXPECT_EQ(ours.channels, theirs.channels);

        EncoderOptions o;
        std::string error;
        ASSERT_TRUE(Parse_EncoderOptions(j.args, o, error));
        const double expected = o.durationUs > 0 ? static_cast<double>(o.durationUs) / 1e6 : kClipSeconds;
        const bool rateChanged = !ours.videoCodec.empty() && std::abs(ours.frameRate - kClipRate) > 0.01;
        if (rateChanged) {
            // On a frame rate change the ffmpeg 5.1 program writes 1 or 2 extra copies of the last frame
            // from its own rate logic (its fps filter does not); our frames must span the expected
            // length instead, within one frame.
            EXPECT_NEAR(ours.videoFrames / ours.frameRate, expected, 1.0 / ours.frameRate + 1e-6)
                << ours.videoFrames << " frames";
        } else {
            const double frame = ours.videoCodec.empty() ? 1.0 / kClipRate : 1.0 / ours.frameRate;
            EXPECT_NEAR(ours.duration, theirs.duration, frame + 1e-6);
            EXPECT_NEAR(ours.videoFrames, theirs.videoFrames, 1);
        }
    }
    EXPECT_GT(compared, subset ? 10 : 40);
}

} // namespace
} // namespace morvane
