#include "EncoderOptions.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace morvane {
namespace {

EncoderOptions parsed(const char* text) {
    EncoderOptions o;
    std::string error;
    EXPECT_TRUE(Parse_EncoderOptions(text, o, error)) << text << ": " << error;
    return o;
}

TEST(EncoderOptions, ReadsTheBuildersTexts) {
    struct Case {
        const char* text;
        std::function<void(const EncoderOptions&)> check;
    };
    const std::vector<Case> cases = {
        {R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf "crop=1270:710:4:6,pad=1280:720:0:0:black, scale=640:360")x",
         [](const EncoderOptions& o) {
             EXPECT_TRUE(o.videoHook);
             EXPECT_EQ(o.channels, 2);
             EXPECT_EQ(o.sampleRate, 44100);
             EXPECT_EQ(o.audioBitrate, 128000);
             EXPECT_EQ(o.audioCodec, "libmp3lame");
             EXPECT_EQ(o.frameRate.num, 25);
             EXPECT_EQ(o.frameRate.den, 1);
             EXPECT_EQ(o.aspect.num * 100, 178 * o.aspect.den);
             EXPECT_EQ(o.videoBitrate, 1000000);
             EXPECT_EQ(o.videoCodec, "libx264");
             EXPECT_EQ(o.durationUs, 10000000);
             EXPECT_EQ(o.videoFilters, "crop=1270:710:4:6,pad=1280:720:0:0:black, scale=640:360");
             EXPECT_FALSE(o.noAudio || o.noVideo || o.deinterlace);
         }},
        // No audio: the two blanks around -an; a 16:9 ratio; a fraction of a second.
        {R"x(-VideoOutputHook  -an  -r 30 -aspect 16:9 -vb 200k -vcodec libx264 -t 2.5 -vf " scale=640:360")x",
         [](const EncoderOptions& o) {
             EXPECT_TRUE(o.noAudio);
             EXPECT_EQ(o.aspect.num, 16);
             EXPECT_EQ(o.aspect.den, 9);
             EXPECT_EQ(o.durationUs, 2500000);
             EXPECT_EQ(o.videoFilters, " scale=640:360");
         }},
        {"-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -vn -t 10",
         [](const EncoderOptions& o) {
             EXPECT_TRUE(o.noVideo);
             EXPECT_TRUE(o.videoFilters.empty());
         }},
        // An unknown source aspect leaves the value empty: the source's ratio stands.
        {R"x(-VideoOutputHook  -ar 44100 -ab 64k -acodec libmp3lame -r 25 -aspect  -vb 1000k -vcodec libx264)x",
         [](const EncoderOptions& o) {
             EXPECT_FALSE(o.aspect.isSet());
             EXPECT_EQ(o.channels, 0);
             EXPECT_EQ(o.videoBitrate, 1000000);
         }},
        {"-VideoOutputHook  -ac 2 -ar 48000 -ab 128k -acodec ac3 -r 30 -aspect 1.5 -vb 200k -target ntsc-dv "
         "-vcodec dvvideo -deinterlace",
         [](const EncoderOptions& o) {
             EXPECT_EQ(o.target, DvTarget::Ntsc);
             EXPECT_EQ(o.videoCodec, "dvvideo");
             EXPECT_TRUE(o.deinterlace);
         }},
        {"-VideoOutputHook  -an  -r 25 -aspect 1.33 -vb 800k -pix_fmt yuvj420p -vcodec mpeg4 -target pal-dv",
         [](const EncoderOptions& o) {
             EXPECT_EQ(o.pixelFormat, "yuvj420p");
             EXPECT_EQ(o.target, DvTarget::Pal);
         }},
        {"-vcodec mpeg4 -vtag xvid -r 30000/1001",
         [](const EncoderOptions& o) {
             EXPECT_EQ(o.videoTag, 0x64697678u); // 'x' 'v' 'i' 'd', first byte lowest
             EXPECT_EQ(o.frameRate.num, 30000);
             EXPECT_EQ(o.frameRate.den, 1001);
             EXPECT_FALSE(o.videoHook);
         }},
        // Order does not matter, and neither do extra blanks.
        {"   -t 00:01:02.5   -ab 96000 -VideoOutputHook",
         [](const EncoderOptions& o) {
             EXPECT_EQ(o.durationUs, 62500000);
             EXPECT_EQ(o.audioBitrate, 96000);
             EXPECT_TRUE(o.videoHook);
         }},
    };
    for (const Case& c : cases)
        c.check(parsed(c.text));
}

TEST(EncoderOptions, RefusesWithTheOptionAndValueAtFault) {
    struct Case {
        const char* text;
        const char* error;
    };
    const std::vector<Case> cases = {
        {"-VideoOutputHook -threads 2", "Unrecognized option 'threads'"},
        {"-vcodec libx265 -crf 20", "Unrecognized option 'crf'"}, // only the options the builder writes
        {"-ab 128x", "Invalid value '128x' for option '-ab'"},
        {"-vb -5k", "Invalid value '-5k' for option '-vb'"},
        {"-vb k", "Invalid value 'k' for option '-vb'"},
        {"-ac 0", "Invalid value '0' for option '-ac'"},
        {"-ar 44.1k", "Invalid value '44.1k' for option '-ar'"},
        {"-r fast", "Invalid value 'fast' for option '-r'"},
        {"-aspect 0:9", "Invalid value '0:9' for option '-aspect'"},
        {"-pix_fmt yuv999", "Invalid value 'yuv999' for option '-pix_fmt'"},
        {"-vtag xv", "Invalid value 'xv' for option '-vtag'"},
        {"-target vcd", "Invalid value 'vcd' for option '-target'"},
        {"-t abc", "Invalid value 'abc' for option '-t'"},
        {"-t 0", "Invalid value '0' for option '-t'"},
        {R"(-vf " ")", "Invalid value ' ' for option '-vf'"},
        {R"(-vf "scale=1:1)", "Unterminated quote in the argument text"},
        {"-vcodec", "Missing argument for option 'vcodec'"},
        {"libx264", "Unexpected argument 'libx264'"},
        {"-an -vn", "Output has neither audio nor video (-an and -vn)"},
        {"-1", "Unexpected argument '-1'"},
    };
    for (const Case& c : cases) {
        EncoderOptions o;
        std::string error;
        EXPECT_FALSE(Parse_EncoderOptions(c.text, o, error)) << c.text;
        EXPECT_EQ(error, c.error) << c.text;
    }
}

TEST(EncoderOptions, InputOptionsHoldOnlyTheSeek) {
    InputOptions in;
    std::string error;
    ASSERT_TRUE(Parse_InputOptions("", in, error));
    EXPECT_EQ(in.seekUs, 0);
    ASSERT_TRUE(Parse_InputOptions(" -ss 12.345678", in, error));
    EXPECT_EQ(in.seekUs, 12345678);
    ASSERT_TRUE(Parse_InputOptions(" -ss 0.000001", in, error));
    EXPECT_EQ(in.seekUs, 1);

    EXPECT_FALSE(Parse_InputOptions(" -ss", in, error));
    EXPECT_EQ(error, "Missing argument for option 'ss'");
    EXPECT_FALSE(Parse_InputOptions(" -ss x", in, error));
    EXPECT_EQ(error, "Invalid value 'x' for option '-ss'");
    EXPECT_FALSE(Parse_InputOptions(" -t 3", in, error));
    EXPECT_EQ(error, "Unrecognized input option 't'");
}

} // namespace
} // namespace morvane
