#include "Make_EncoderArgs.h"

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <limits>
#include <tuple>
#include <utility>
#include <vector>

namespace morvane {
namespace {

// H.264 with MP3 from a 1280 x 720 source at 25 fps, scaled to 640 x 360, trimmed to its first ten
// seconds, nothing cropped or padded.
EncoderParams typical() {
    EncoderParams p;
    p.SrcWidth = 1280;
    p.SrcHeight = 720;
    p.SrcFrameRate = 25;
    p.SrcAspect = "1.78";
    p.OutWidth = 640;
    p.OutHeight = 360;
    p.FrameRateText = "25 fps";
    p.AspectMode = "Original";
    p.VideoCodec = "H.264";
    p.VideoBitrate = "1000";
    p.Quality = 2;
    p.AudioCodec = "MP3";
    p.Format = "MP4";
    p.Channels = 1;
    p.AudioBitrate = "128";
    p.SampleRate = "44100";
    p.BitDepth = "16 bit";
    p.EditedWidth = 1280;
    p.EditedHeight = 720;
    p.PadColor = "black";
    p.TrimStartLow = "0";
    p.TrimStartHigh = "0";
    p.TrimEndLow = "10000000";
    p.TrimEndHigh = "0";
    p.Deinterlace = "0";
    return p;
}

constexpr const char* kTypical =
    R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x";

// The typical record's text with some of its parts replaced; each part stands in it once.
QString typicalWith(std::initializer_list<std::pair<QString, QString>> changes) {
    QString text = QString::fromUtf8(kTypical);
    for (const auto& [part, replacement] : changes) {
        EXPECT_EQ(QString::fromUtf8(kTypical).count(part), 1) << part.toStdString();
        text.replace(part, replacement);
    }
    return text;
}

using Edit = std::function<void(EncoderParams&)>;
struct BuildCase {
    const char* name;
    Edit edit;
    const char* expected;
};

void expectBuilds(const std::vector<BuildCase>& cases) {
    for (const BuildCase& c : cases) {
        EncoderParams p = typical();
        c.edit(p);
        EXPECT_EQ(Make_EncoderArgs(p), QString::fromUtf8(c.expected)) << c.name;
    }
}

TEST(MakeEncoderArgs, StreamSwitchesTrimDeinterlaceAndExtraFilter) {
    expectBuilds({
        {"typical", [](EncoderParams&) {}, kTypical},
        {"no audio", [](EncoderParams& p) { p.AudioCodec = "No Audio"; },
         R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},
        {"no video", [](EncoderParams& p) { p.VideoCodec = "No Video"; },
         R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -vn -t 10)x"},
        {"neither",
         [](EncoderParams& p) {
             p.AudioCodec = "No Audio";
             p.VideoCodec = "No Video";
         },
         R"x(-VideoOutputHook  -an  -vn -t 10)x"},
        {"no video ignores a negative pad on a zero width",
         [](EncoderParams& p) {
             p.VideoCodec = "No Video";
             p.SrcWidth = 0;
             p.PadTop = -2;
         },
         R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -vn -t 10)x"},
        {"deinterlace", [](EncoderParams& p) { p.Deinterlace = "1"; },
         R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -deinterlace -t 10 -vf " scale=640:360")x"},
        {"trim end not set with a start",
         [](EncoderParams& p) {
             p.TrimStartLow = "1500000";
             p.TrimEndLow = "-1";
         },
         R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -vf " scale=640:360")x"},
        {"trim length is end less start",
         [](EncoderParams& p) {
             p.TrimStartLow = "1500000";
             p.TrimEndLow = "4000000";
         },
         R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 2.5 -vf " scale=640:360")x"},
        {"extra filter goes last", [](EncoderParams& p) { p.ExtraFilter = "hflip"; },
         R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360,hflip")x"},
    });
}

TEST(MakeEncoderArgs, ChannelsRateAndAudioBitrate) {
    struct Case {
        std::int32_t channels;
        const char *bitrate, *sampleRate, *written;
    };
    const Case cases[] = {
        {0, "128", "44100", "-ac 1 -ar 44100 -ab 128k"},
        {2, "128", "44100", "-ac 6 -ar 44100 -ab 128k"},
        {-1, "128", "44100", "-ar 44100 -ab 128k"}, // no channel count chosen
        {3, "128", "44100", "-ar 44100 -ab 128k"},
        {0, "12.2", "8000", "-ac 1 -ar 8000 -ab 12k"},
        {1, "12.5", "44100", "-ac 2 -ar 44100 -ab 12k"}, // a tie rounds to even
        {1, "", "44100", "-ac 2 -ar 44100 -ab 64k"},
        {1, "40000", "44100", "-ac 2 -ar 44100 -ab 64k"}, // over 16 bits
    };
    for (const Case& c : cases) {
        EncoderParams p = typical();
        p.Channels = c.channels;
        p.AudioBitrate = c.bitrate;
        p.SampleRate = c.sampleRate;
        EXPECT_EQ(Make_EncoderArgs(p), typicalWith({{"-ac 2 -ar 44100 -ab 128k", c.written}})) << c.written;
    }
}

TEST(MakeEncoderArgs, FrameRateIsRoundedAndHighSourceRatesWrittenAs30) {
    struct Case {
        const char* text;
        std::int32_t source;
        const char* written;
    };
    for (const Case& c :
         {Case{"29.97 fps", 25, "-r 30"}, Case{"23.976 fps", 25, "-r 24"}, Case{"12.5 fps", 25, "-r 12"},
          Case{"30fps", 25, "-r 30"}, Case{"Original", 100, "-r 30"}, Case{"Original", 99, "-r 99"}}) {
        EncoderParams p = typical();
        p.FrameRateText = c.text;
        p.SrcFrameRate = c.source;
        EXPECT_EQ(Make_EncoderArgs(p), typicalWith({{"-r 25", c.written}})) << c.text << " " << c.source;
    }
}

TEST(MakeEncoderArgs, VideoBitrateGivenGuardedOrEstimated) {
    struct Case {
        std::int32_t width, height;
        const char* rate;
        std::int32_t quality;
        const char *bitrate, *video, *size;
    };
    const Case cases[] = {
        {640, 360, "25 fps", 2, "40000", "-r 25 -aspect 1.78 -vb 200k", "640:360"}, // over 16 bits
        {640, 360, "25 fps", 2, "fast", "-r 25 -aspect 1.78 -vb 200k", "640:360"},
        {3840, 2160, "30 fps", 4, "", "-r 30 -aspect 1.78 -vb 200k", "3840:2160"}, // 69673 guarded
        {1920, 1080, "30 fps", 4, "", "-r 30 -aspect 1.78 -vb 17418k", "1920:1080"},
        {400, 360, "25 fps", 1, "", "-r 25 -aspect 1.78 -vb 756k", "400:360"}, // factor 3
        {500, 360, "25 fps", 1, "", "-r 25 -aspect 1.78 -vb 315k", "500:360"}, // factor 1
        {0, 0, "25 fps", 2, "", "-r 25 -aspect 1.78 -vb 3226k", "1280:720"},   // from the source size
        {3840, 2160, "60 fps", 4, "30000", "-r 60 -aspect 1.78 -vb 30000k", "3840:2160"}, // a 4K row's top
        {1920, 1080, "60 fps", 4, "", "-r 60 -aspect 1.78 -vb 200k", "1920:1080"},        // 34836 guarded
    };
    for (const Case& c : cases) {
        EncoderParams p = typical();
        p.OutWidth = c.width;
        p.OutHeight = c.height;
        p.FrameRateText = c.rate;
        p.Quality = c.quality;
        p.VideoBitrate = c.bitrate;
        EXPECT_EQ(Make_EncoderArgs(p),
                  typicalWith({{"-r 25 -aspect 1.78 -vb 1000k", c.video}, {"640:360", c.size}}))
            << c.width << "x" << c.height << " " << c.bitrate;
    }
}

TEST(MakeEncoderArgs, AspectModesAndKeptSizes) {
    struct Case {
        const char* mode;
        std::int32_t outWidth, outHeight, srcWidth, srcHeight, editedWidth, editedHeight;
        const char *aspect, *size;
    };
    const Case cases[] = {
        {"4:3", 640, 360, 1280, 720, 1280, 720, "-aspect 4:3", "640:360"},
        {"Custom", 640, 360, 1280, 720, 1280, 720, "-aspect ", "640:360"}, // unknown: empty
        {"PanScan", 0, 0, 1280, 720, 1200, 720, "-aspect 1.67", "1200:720"},
        {"Smart Fit", 640, 360, 720, 480, 700, 480, "-aspect 1.5", "640:360"}, // the source's ratio
        {"FullScreen", 0, 0, 1280, 720, 1280, 0, "-aspect 1.1", "1280:0"},
        {"Original", 0, 360, 1280, 720, 1280, 720, "-aspect 1.78", "0:360"}, // one kept side is not 0:0
    };
    for (const Case& c : cases) {
        EncoderParams p = typical();
        p.AspectMode = c.mode;
        p.OutWidth = c.outWidth;
        p.OutHeight = c.outHeight;
        p.SrcWidth = c.srcWidth;
        p.SrcHeight = c.srcHeight;
        p.EditedWidth = c.editedWidth;
        p.EditedHeight = c.editedHeight;
        EXPECT_EQ(Make_EncoderArgs(p), typicalWith({{"-aspect 1.78", c.aspect}, {"640:360", c.size}}))
            << c.mode;
    }
}

TEST(MakeEncoderArgs, MergeTakesTheFirstItemsRateSizeAndAspect) {
    // The first item's values stand in for "Original" and for a kept side; chosen values stay.
    struct Case {
        const char *rate, *aspect, *bitrate, *codec;
        std::int32_t srcRate, outWidth, outHeight, mergeWidth, mergeHeight, mergeRate;
        const char *mergeAspect, *video, *size;
    };
    const char* dv = "DV - Digital Video Format";
    const Case cases[] = {
        // 120 fps from the first item, not the source's rate capped at 30.
        {"Original", "Original", "1000", "H.264", 120, 640, 360, 1920, 1080, 120, "1.5",
         "-r 120 -aspect 1.5 -vb 1000k -vcodec libx264", "640:360"},
        {"Original", "Original", "", "H.264", 25, 640, 0, 1920, 1080, 30, "1.78",
         "-r 30 -aspect 1.78 -vb 6967k -vcodec libx264", "1920:1080"},
        {"25 fps", "16:9", "1000", "H.264", 25, 640, 360, 1920, 1080, 120, "1.5",
         "-r 25 -aspect 16:9 -vb 1000k -vcodec libx264", "640:360"},
        {"25 fps", "Original", "1000", dv, 25, 0, 0, 720, 576, 0, "1.25",
         "-r 25 -aspect 1.25 -vb 1000k -target pal-dv -vcodec dvvideo", "720:576"},
    };
    for (const Case& c : cases) {
        EncoderParams p = typical();
        p.FrameRateText = c.rate;
        p.AspectMode = c.aspect;
        p.VideoBitrate = c.bitrate;
        p.VideoCodec = c.codec;
        p.SrcFrameRate = c.srcRate;
        p.OutWidth = c.outWidth;
        p.OutHeight = c.outHeight;
        p.IsMerge = true;
        p.MergeWidth = c.mergeWidth;
        p.MergeHeight = c.mergeHeight;
        p.MergeFrameRate = c.mergeRate;
        p.MergeAspect = c.mergeAspect;
        EXPECT_EQ(Make_EncoderArgs(p), typicalWith({{"-r 25 -aspect 1.78 -vb 1000k -vcodec libx264", c.video},
                                                    {"640:360", c.size}}))
            << c.video;
    }
}

TEST(MakeEncoderArgs, CropPadAndCutsToTheSourceProportion) {
    struct Case {
        std::tuple<std::int32_t, std::int32_t, std::int32_t, std::int32_t> crop,
            pad; // top, bottom, left, right
        const char* filters;
    };
    const Case cases[] = {
        {{0, 0, 0, 0}, {0, 0, 5, 0}, "pad=1284:720:4:0:black, scale=640:360"}, // a pad of 5 becomes 4
        {{10, 20, 30, 40}, {0, 0, 0, 0}, "crop=1210:690:30:10, scale=640:360"},
        {{10, 20, 30, 40}, {8, 8, 0, 0}, "crop=1210:690:30:10,pad=1210:706:0:8:black, scale=640:360"},
        {{-2, 0, 2, 0},
         {4, 0, 0, 0},
         "crop=1278:722:2:-2,pad=1278:726:0:4:black, scale=640:360"}, // not clamped
        // Negative pads cut the picture instead.
        {{0, 0, 160, 160}, {-10, -10, 0, 0}, "crop=960:540:160:90, scale=640:360"},
        {{1, 0, 0, 4}, {-1, 0, 0, 0}, "crop=1276:718:0:2, scale=640:360"}, // halves round to even
        {{90, 90, 0, 0}, {0, 0, -8, 0}, "crop=960:540:160:90, scale=640:360"},
        {{0, 0, 160, 160}, {-4, 0, 0, -4}, "crop=960:540:160:90, scale=640:360"}, // across after down
        {{0, 0, 100, 0}, {0, -2, 6, 6}, "crop=1180:664:100:28,pad=1192:664:6:0:black, scale=640:360"},
    };
    for (const Case& c : cases) {
        EncoderParams p = typical();
        std::tie(p.CropTop, p.CropBottom, p.CropLeft, p.CropRight) = c.crop;
        std::tie(p.PadTop, p.PadBottom, p.PadLeft, p.PadRight) = c.pad;
        EXPECT_EQ(Make_EncoderArgs(p), typicalWith({{" scale=640:360", c.filters}})) << c.filters;
    }
}

TEST(MakeEncoderArgs, CodecsChosenByOutputSizeOrFormat) {
    struct Case {
        const char *codec, *format;
        std::int32_t outWidth, outHeight, editedWidth, editedHeight;
        const char *written, *size;
    };
    const char* dv = "DV - Digital Video Format";
    const Case cases[] = {
        {dv, "MP4", 720, 480, 1280, 720, " -target ntsc-dv -vcodec dvvideo", "720:480"},
        {dv, "MP4", 720, 576, 1280, 720, " -target pal-dv -vcodec dvvideo", "720:576"},
        {dv, "MP4", 640, 360, 1280, 720, "", "640:360"},
        {dv, "MP4", 0, 0, 720, 480, "", "720:480"}, // the output size decides, not the edited one
        {"Uncompressed", "GIF", 640, 360, 1280, 720, " -pix_fmt rgb24", "640:360"},
        {"Uncompressed", "AVI", 640, 360, 1280, 720, " -vcodec rawvideo", "640:360"},
        {"Uncompressed", "avi", 640, 360, 1280, 720, "", "640:360"},
        // HEVC carries Apple's tag in the MPEG-4 family only; Matroska and WebM have no such tags.
        {"H.265/HEVC", "MOV", 640, 360, 1280, 720, " -vcodec libx265 -vtag hvc1", "640:360"},
        {"H.265/HEVC", "MKV", 640, 360, 1280, 720, " -vcodec libx265", "640:360"},
        {"H.265/HEVC", "mp4", 640, 360, 1280, 720, " -vcodec libx265", "640:360"},
    };
    for (const Case& c : cases) {
        EncoderParams p = typical();
        p.VideoCodec = c.codec;
        p.Format = c.format;
        p.OutWidth = c.outWidth;
        p.OutHeight = c.outHeight;
        p.EditedWidth = c.editedWidth;
        p.EditedHeight = c.editedHeight;
        EXPECT_EQ(Make_EncoderArgs(p), typicalWith({{" -vcodec libx264", c.written}, {"640:360", c.size}}))
            << c.codec << " " << c.format << " " << c.outWidth << "x" << c.outHeight;
    }
}

TEST(MakeEncoderArgs, RunTimeErrorsGiveMinusOne) {
    const std::pair<const char*, Edit> cases[] = {
        {"FPS in capitals is no number", [](EncoderParams& p) { p.FrameRateText = "30 FPS"; }},
        {"a dash is no number", [](EncoderParams& p) { p.FrameRateText = "-"; }},
        {"a dash is no number without video either",
         [](EncoderParams& p) {
             p.FrameRateText = "-";
             p.VideoCodec = "No Video";
         }},
        {"vertical cut of a zero width divides by zero",
         [](EncoderParams& p) {
             p.SrcWidth = 0;
             p.PadTop = -2;
         }},
        {"horizontal cut of a zero height divides by zero",
         [](EncoderParams& p) {
             p.SrcHeight = 0;
             p.PadLeft = -2;
         }},
        {"crop overflow",
         [](EncoderParams& p) {
             p.CropTop = 1;
             p.CropLeft = std::numeric_limits<std::int32_t>::min();
         }},
        {"pad overflow", [](EncoderParams& p) { p.PadRight = std::numeric_limits<std::int32_t>::max(); }},
    };
    for (const auto& [name, edit] : cases) {
        EncoderParams p = typical();
        edit(p);
        EXPECT_EQ(Make_EncoderArgs(p), "-1") << name;
    }
}

struct CodecCase {
    const char *label, *bitDepth, *written;
};

TEST(MakeEncoderArgs, EveryAudioCodecLabel) {
    const CodecCase cases[] = {{"MPEG-2/4", "16 bit", " -acodec libfaac"},
                               {"AAC", "16 bit", " -acodec aac"},
                               {"MP3", "16 bit", " -acodec libmp3lame"},
                               {"MP2", "16 bit", " -acodec mp2"},
                               {"Ogg Vorbis", "16 bit", " -acodec libvorbis"},
                               {"IMA ADPCM", "16 bit", " -acodec adpcm_ima_wav"},
                               {"IMA_ADPCM", "16 bit", " -acodec adpcm_ima_wav"},
                               {"AMR ACELP", "16 bit", " -acodec libopencore_amrnb"},
                               {"CCITT A-law", "16 bit", " -acodec pcm_alaw"},
                               {"CCITT u-law", "16 bit", " -acodec pcm_mulaw"},
                               {"AC3", "16 bit", " -acodec ac3"},
                               {"WMA", "16 bit", " -acodec wmav2"},
                               {"RealAudio 3.0 (dnet)", "16 bit", " -acodec ac3"},
                               {"Microsoft ADPCM", "16 bit", " -acodec adpcm_ms"},
                               {"FLAC", "16 bit", " -acodec flac"},
                               {"MS GSM 6.10", "16 bit", " -acodec libgsm_ms"},
                               {"PCM little-endian", "8 bit", " -acodec pcm_u8"},
                               {"PCM little-endian", "16 bit", " -acodec pcm_s16le"},
                               {"PCM little-endian", "24 bit", " -acodec pcm_s24le"},
                               {"PCM little-endian", "32 bit", " -acodec pcm_s32le"},
                               {"PCM little-endian", "64 bit", ""},
                               {"PCM big-endian", "8 bit", " -acodec pcm_s8"},
                               {"PCM big-endian", "16 bit", " -acodec pcm_s16be"},
                               {"PCM big-endian", "24 bit", " -acodec pcm_s24be"},
                               {"PCM big-endian", "32 bit", " -acodec pcm_s32be"},
                               {"PCM big-endian", "", ""},
                               {"mp3", "16 bit", ""},
                               {"Opus", "16 bit", " -acodec libopus"},
                               {"opus", "16 bit", ""}};
    for (const CodecCase& c : cases) {
        EncoderParams p = typical();
        p.VideoCodec = "No Video";
        p.AudioCodec = c.label;
        p.BitDepth = c.bitDepth;
        EXPECT_EQ(Make_EncoderArgs(p),
                  QStringLiteral("-VideoOutputHook  -ac 2 -ar 44100 -ab 128k%1 -vn -t 10").arg(c.written))
            << c.label << " " << c.bitDepth;
    }
}

TEST(MakeEncoderArgs, EveryVideoCodecLabel) {
    const std::pair<const char*, const char*> cases[] = {
        {"MPEG-1", " -vcodec mpeg1video"},
        {"MPEG-2", " -vcodec mpeg2video"},
        {"MPEG4 (DivX/Xvid compatible)", " -pix_fmt yuvj420p -vcodec mpeg4"},
        {"H.263 FLV Video", " -vcodec flv"},
        {"H.264", " -vcodec libx264"},
        {"IBM Motion JPEG", " -vcodec mjpeg"},
        {"Sorenson Video 1", " -vcodec svq1"},
        {"Intel ITU H.263", " -vcodec h263p"},
        {"H.263", " -vcodec h263"},
        {"VP8", " -vcodec libvpx"},
        {"Huffman Lossless", " -vcodec huffyuv"},
        {"Microsoft MPEG4 V2", " -vcodec msmpeg4v2"},
        {"Microsoft MPEG4 V3", " -vcodec msmpeg4v3"},
        {"Xvid MPEG4", " -vcodec mpeg4 -vtag xvid"},
        {"DivX MPEG4", " -vcodec mpeg4 -vtag DivX"},
        {"RealVideo", " -vcodec rv20"},
        {"Windows Media Video V7", " -vcodec wmv1"},
        {"Windows Media Video V8", " -vcodec wmv2"},
        {"Theora", " -vcodec libtheora"},
        {"H.265/HEVC", " -vcodec libx265 -vtag hvc1"},
        {"VP9", " -vcodec libvpx-vp9 -deadline good -cpu-used 4 -row-mt 1"},
        {"AV1", " -vcodec libsvtav1 -preset 8"},
        {"Uncompressed", ""},
        {"h.264", ""}};
    for (const auto& [label, written] : cases) {
        EncoderParams p = typical();
        p.AudioCodec = "No Audio";
        p.VideoCodec = label;
        EXPECT_EQ(Make_EncoderArgs(p),
                  QStringLiteral(
                      R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k%1 -t 10 -vf " scale=640:360")x")
                      .arg(written))
            << label;
    }
}

TEST(MakeEncoderArgs, ProcessWideTexts) {
    EncoderParams p = typical();
    p.Format = "GIF";
    p.CropTop = 10;
    p.CropBottom = 20;
    p.CropLeft = 30;
    p.CropRight = 40;
    Make_EncoderArgs(p);
    EXPECT_EQ(Output_Format, "GIF");
    EXPECT_EQ(Filter_Chain, "crop=1210:690:30:10, scale=640:360");

    // The next build starts from an empty chain; without video it stays empty.
    p.VideoCodec = "No Video";
    p.Format = "MP3";
    Make_EncoderArgs(p);
    EXPECT_EQ(Output_Format, "MP3");
    EXPECT_EQ(Filter_Chain, "");
}

} // namespace
} // namespace morvane
