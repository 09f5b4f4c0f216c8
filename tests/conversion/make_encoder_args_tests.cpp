#include "Make_EncoderArgs.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
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

struct BuildCase {
    const char* name;
    std::function<void(EncoderParams&)> edit;
    const char* expected;
};

void expectBuilds(const std::vector<BuildCase>& cases) {
    for (const BuildCase& c : cases) {
        EncoderParams p = typical();
        c.edit(p);
        EXPECT_EQ(Make_EncoderArgs(p), QString::fromUtf8(c.expected)) << c.name;
    }
}

TEST(MakeEncoderArgs, TextsOfTypicalAndEdgeRecords) {
    constexpr std::int32_t minInt = std::numeric_limits<std::int32_t>::min();
    expectBuilds(
        {
            {"typical", [](EncoderParams&) {},
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},

            // Audio and video switched off.
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

            // Channels and audio bitrate.
            {"mono", [](EncoderParams& p) { p.Channels = 0; },
             R"x(-VideoOutputHook  -ac 1 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},
            {"six channels", [](EncoderParams& p) { p.Channels = 2; },
             R"x(-VideoOutputHook  -ac 6 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},
            {"no channels chosen", [](EncoderParams& p) { p.Channels = -1; },
             R"x(-VideoOutputHook  -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},
            {"channel index 3", [](EncoderParams& p) { p.Channels = 3; },
             R"x(-VideoOutputHook  -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},
            {"AMR at 12.2",
             [](EncoderParams& p) {
                 p.AudioCodec = "AMR ACELP";
                 p.AudioBitrate = "12.2";
                 p.SampleRate = "8000";
                 p.Channels = 0;
             },
             R"x(-VideoOutputHook  -ac 1 -ar 8000 -ab 12k -acodec libopencore_amrnb -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},
            {"audio bitrate tie rounds to even", [](EncoderParams& p) { p.AudioBitrate = "12.5"; },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 12k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},
            {"empty audio bitrate", [](EncoderParams& p) { p.AudioBitrate = ""; },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 64k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},
            {"audio bitrate over 16 bits", [](EncoderParams& p) { p.AudioBitrate = "40000"; },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 64k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},

            // Video bitrate: given, guarded, or estimated.
            {"video bitrate over 16 bits", [](EncoderParams& p) { p.VideoBitrate = "40000"; },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 200k -vcodec libx264 -t 10 -vf " scale=640:360")x"},
            {"video bitrate no number", [](EncoderParams& p) { p.VideoBitrate = "fast"; },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 200k -vcodec libx264 -t 10 -vf " scale=640:360")x"},
            {"estimate 69673 for 3840 x 2160 is guarded to 200",
             [](EncoderParams& p) {
                 p.OutWidth = 3840;
                 p.OutHeight = 2160;
                 p.FrameRateText = "30 fps";
                 p.Quality = 4;
                 p.VideoBitrate = "";
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 30 -aspect 1.78 -vb 200k -vcodec libx264 -t 10 -vf " scale=3840:2160")x"},
            {"estimate for 1920 x 1080",
             [](EncoderParams& p) {
                 p.OutWidth = 1920;
                 p.OutHeight = 1080;
                 p.FrameRateText = "30 fps";
                 p.Quality = 4;
                 p.VideoBitrate = "";
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 30 -aspect 1.78 -vb 17418k -vcodec libx264 -t 10 -vf " scale=1920:1080")x"},
            {"estimate at width 400 uses factor 3",
             [](EncoderParams& p) {
                 p.OutWidth = 400;
                 p.OutHeight = 360;
                 p.Quality = 1;
                 p.VideoBitrate = "";
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 756k -vcodec libx264 -t 10 -vf " scale=400:360")x"},
            {"estimate at width 500 uses factor 1",
             [](EncoderParams& p) {
                 p.OutWidth = 500;
                 p.OutHeight = 360;
                 p.Quality = 1;
                 p.VideoBitrate = "";
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 315k -vcodec libx264 -t 10 -vf " scale=500:360")x"},
            {"estimate from the source size when the output size is kept",
             [](EncoderParams& p) {
                 p.OutWidth = 0;
                 p.OutHeight = 0;
                 p.VideoBitrate = "";
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 3226k -vcodec libx264 -t 10 -vf " scale=1280:720")x"},

            // Frame rate.
            {"29.97 counts 30", [](EncoderParams& p) { p.FrameRateText = "29.97 fps"; },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 30 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},
            {"23.976 counts 24", [](EncoderParams& p) { p.FrameRateText = "23.976 fps"; },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 24 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},
            {"12.5 rounds to even", [](EncoderParams& p) { p.FrameRateText = "12.5 fps"; },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 12 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},
            {"fps without a blank", [](EncoderParams& p) { p.FrameRateText = "30fps"; },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 30 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},
            {"FPS in capitals is no number", [](EncoderParams& p) { p.FrameRateText = "30 FPS"; }, "-1"},
            {"a dash is no number", [](EncoderParams& p) { p.FrameRateText = "-"; }, "-1"},
            {"a dash is no number without video either",
             [](EncoderParams& p) {
                 p.FrameRateText = "-";
                 p.VideoCodec = "No Video";
             },
             "-1"},
            {"original 120 fps is written as 30",
             [](EncoderParams& p) {
                 p.FrameRateText = "Original";
                 p.SrcFrameRate = 120;
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 30 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},
            {"original 100 fps is written as 30",
             [](EncoderParams& p) {
                 p.FrameRateText = "Original";
                 p.SrcFrameRate = 100;
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 30 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},
            {"original 99 fps stays",
             [](EncoderParams& p) {
                 p.FrameRateText = "Original";
                 p.SrcFrameRate = 99;
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 99 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},

            // Merge: the first item's rate, size and aspect.
            {"merge keeps the first item's 120 fps",
             [](EncoderParams& p) {
                 p.FrameRateText = "Original";
                 p.SrcFrameRate = 120;
                 p.IsMerge = true;
                 p.MergeWidth = 1920;
                 p.MergeHeight = 1080;
                 p.MergeFrameRate = 120;
                 p.MergeAspect = "1.5";
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 120 -aspect 1.5 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},
            {"merge takes the first item's size when one side is kept",
             [](EncoderParams& p) {
                 p.OutHeight = 0;
                 p.FrameRateText = "Original";
                 p.VideoBitrate = "";
                 p.IsMerge = true;
                 p.MergeWidth = 1920;
                 p.MergeHeight = 1080;
                 p.MergeFrameRate = 30;
                 p.MergeAspect = "1.78";
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 30 -aspect 1.78 -vb 6967k -vcodec libx264 -t 10 -vf " scale=1920:1080")x"},
            {"merge leaves a chosen rate and aspect",
             [](EncoderParams& p) {
                 p.AspectMode = "16:9";
                 p.IsMerge = true;
                 p.MergeWidth = 1920;
                 p.MergeHeight = 1080;
                 p.MergeFrameRate = 120;
                 p.MergeAspect = "1.5";
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 16:9 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},

            // Aspect modes and the size text.
            {"4:3", [](EncoderParams& p) { p.AspectMode = "4:3"; },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 4:3 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},
            {"unknown aspect mode leaves the aspect empty", [](EncoderParams& p) { p.AspectMode = "Custom"; },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect  -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},
            {"PanScan at 0 x 0 takes the edited size",
             [](EncoderParams& p) {
                 p.AspectMode = "PanScan";
                 p.OutWidth = 0;
                 p.OutHeight = 0;
                 p.EditedWidth = 1200;
                 p.EditedHeight = 720;
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.67 -vb 1000k -vcodec libx264 -t 10 -vf " scale=1200:720")x"},
            {"Smart Fit with an output size takes the source ratio",
             [](EncoderParams& p) {
                 p.AspectMode = "Smart Fit";
                 p.SrcWidth = 720;
                 p.SrcHeight = 480;
                 p.EditedWidth = 700;
                 p.EditedHeight = 480;
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.5 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},
            {"FullScreen at 0 x 0 on a zero edited height",
             [](EncoderParams& p) {
                 p.AspectMode = "FullScreen";
                 p.OutWidth = 0;
                 p.OutHeight = 0;
                 p.EditedHeight = 0;
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.1 -vb 1000k -vcodec libx264 -t 10 -vf " scale=1280:0")x"},
            {"one kept side is not 0:0", [](EncoderParams& p) { p.OutWidth = 0; },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=0:360")x"},

            {"deinterlace", [](EncoderParams& p) { p.Deinterlace = "1"; }, R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -deinterlace -t 10 -vf " scale=640:360")x"},

            // Trim.
            {"trim end not set with a start",
             [](EncoderParams& p) {
                 p.TrimStartLow = "1500000";
                 p.TrimEndLow = "-1";
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -vf " scale=640:360")x"},
            {"trim end empty", [](EncoderParams& p) { p.TrimEndLow = ""; },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -vf " scale=640:360")x"},
            {"trim length is end less start",
             [](EncoderParams& p) {
                 p.TrimStartLow = "1500000";
                 p.TrimEndLow = "4000000";
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 2.5 -vf " scale=640:360")x"},

            // Crop and pad.
            {"pad of 5 becomes 4", [](EncoderParams& p) { p.PadLeft = 5; },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf "pad=1284:720:4:0:black, scale=640:360")x"},
            {"pad of 1 becomes none", [](EncoderParams& p) { p.PadLeft = 1; },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},
            {"crop alone",
             [](EncoderParams& p) {
                 p.CropTop = 10;
                 p.CropBottom = 20;
                 p.CropLeft = 30;
                 p.CropRight = 40;
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf "crop=1210:690:30:10, scale=640:360")x"},
            {"pad works on the cropped picture",
             [](EncoderParams& p) {
                 p.CropTop = 10;
                 p.CropBottom = 20;
                 p.CropLeft = 30;
                 p.CropRight = 40;
                 p.PadTop = 8;
                 p.PadBottom = 8;
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf "crop=1210:690:30:10,pad=1210:706:0:8:black, scale=640:360")x"},
            {"negative crop is not clamped",
             [](EncoderParams& p) {
                 p.CropTop = -2;
                 p.CropLeft = 2;
                 p.PadTop = 4;
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf "crop=1278:722:2:-2,pad=1278:726:0:4:black, scale=640:360")x"},
            {"extra filter goes last", [](EncoderParams& p) { p.ExtraFilter = "hflip"; },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360,hflip")x"},

            // Negative pads: cut to the source proportion instead.
            {"vertical cut",
             [](EncoderParams& p) {
                 p.CropLeft = 160;
                 p.CropRight = 160;
                 p.PadTop = -10;
                 p.PadBottom = -10;
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf "crop=960:540:160:90, scale=640:360")x"},
            {"vertical cut halves round to even",
             [](EncoderParams& p) {
                 p.CropTop = 1;
                 p.CropRight = 4;
                 p.PadTop = -1;
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf "crop=1276:718:0:2, scale=640:360")x"},
            {"horizontal cut",
             [](EncoderParams& p) {
                 p.CropTop = 90;
                 p.CropBottom = 90;
                 p.PadLeft = -8;
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf "crop=960:540:160:90, scale=640:360")x"},
            {"horizontal cut after the vertical one",
             [](EncoderParams& p) {
                 p.CropLeft = 160;
                 p.CropRight = 160;
                 p.PadTop = -4;
                 p.PadRight = -4;
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf "crop=960:540:160:90, scale=640:360")x"},
            {"vertical cut with a pad on the sides",
             [](EncoderParams& p) {
                 p.CropLeft = 100;
                 p.PadBottom = -2;
                 p.PadLeft = 6;
                 p.PadRight = 6;
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf "crop=1180:664:100:28,pad=1192:664:6:0:black, scale=640:360")x"},

            // Run-time errors.
            {"vertical cut of a zero width divides by zero",
             [](EncoderParams& p) {
                 p.SrcWidth = 0;
                 p.PadTop = -2;
             },
             "-1"},
            {"horizontal cut of a zero height divides by zero",
             [](EncoderParams& p) {
                 p.SrcHeight = 0;
                 p.PadLeft = -2;
             },
             "-1"},
            {"crop overflow",
             [](EncoderParams& p) {
                 p.CropTop = 1;
                 p.CropLeft = minInt;
             },
             "-1"},
            {"pad overflow", [](EncoderParams& p) { p.PadRight = std::numeric_limits<std::int32_t>::max(); },
             "-1"},

            // Codecs chosen by the output size or format.
            {"DV at 720 x 480",
             [](EncoderParams& p) {
                 p.VideoCodec = "DV - Digital Video Format";
                 p.OutWidth = 720;
                 p.OutHeight = 480;
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -target ntsc-dv -vcodec dvvideo -t 10 -vf " scale=720:480")x"},
            {"DV at 720 x 576",
             [](EncoderParams& p) {
                 p.VideoCodec = "DV - Digital Video Format";
                 p.OutWidth = 720;
                 p.OutHeight = 576;
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -target pal-dv -vcodec dvvideo -t 10 -vf " scale=720:576")x"},
            {"DV at another size", [](EncoderParams& p) { p.VideoCodec = "DV - Digital Video Format"; },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -t 10 -vf " scale=640:360")x"},
            {"DV with the output size kept",
             [](EncoderParams& p) {
                 p.VideoCodec = "DV - Digital Video Format";
                 p.OutWidth = 0;
                 p.OutHeight = 0;
                 p.EditedWidth = 720;
                 p.EditedHeight = 480;
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -t 10 -vf " scale=720:480")x"},
            {"DV at the first item's size under a merge",
             [](EncoderParams& p) {
                 p.VideoCodec = "DV - Digital Video Format";
                 p.OutWidth = 0;
                 p.OutHeight = 0;
                 p.IsMerge = true;
                 p.MergeWidth = 720;
                 p.MergeHeight = 576;
                 p.MergeAspect = "1.25";
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.25 -vb 1000k -target pal-dv -vcodec dvvideo -t 10 -vf " scale=720:576")x"},
            {"uncompressed GIF",
             [](EncoderParams& p) {
                 p.VideoCodec = "Uncompressed";
                 p.Format = "GIF";
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -pix_fmt rgb24 -t 10 -vf " scale=640:360")x"},
            {"uncompressed AVI",
             [](EncoderParams& p) {
                 p.VideoCodec = "Uncompressed";
                 p.Format = "AVI";
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -vcodec rawvideo -t 10 -vf " scale=640:360")x"},
            {"uncompressed in lower case avi",
             [](EncoderParams& p) {
                 p.VideoCodec = "Uncompressed";
                 p.Format = "avi";
             },
             R"x(-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -r 25 -aspect 1.78 -vb 1000k -t 10 -vf " scale=640:360")x"},
        });
}

struct CodecCase {
    const char* label;
    const char* bitDepth;
    const char* expected;
};

TEST(MakeEncoderArgs, EveryAudioCodecLabel) {
    const std::vector<CodecCase> cases = {
        {"MPEG-2/4", "16 bit", "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libfaac -vn -t 10"},
        {"AAC", "16 bit", "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec aac -vn -t 10"},
        {"MP3", "16 bit", "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libmp3lame -vn -t 10"},
        {"MP2", "16 bit", "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec mp2 -vn -t 10"},
        {"Ogg Vorbis", "16 bit", "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libvorbis -vn -t 10"},
        {"IMA ADPCM", "16 bit", "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec adpcm_ima_wav -vn -t 10"},
        {"IMA_ADPCM", "16 bit", "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec adpcm_ima_wav -vn -t 10"},
        {"AMR ACELP", "16 bit",
         "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libopencore_amrnb -vn -t 10"},
        {"CCITT A-law", "16 bit", "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec pcm_alaw -vn -t 10"},
        {"CCITT u-law", "16 bit", "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec pcm_mulaw -vn -t 10"},
        {"AC3", "16 bit", "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec ac3 -vn -t 10"},
        {"WMA", "16 bit", "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec wmav2 -vn -t 10"},
        {"RealAudio 3.0 (dnet)", "16 bit",
         "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec ac3 -vn -t 10"},
        {"Microsoft ADPCM", "16 bit",
         "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec adpcm_ms -vn -t 10"},
        {"FLAC", "16 bit", "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec flac -vn -t 10"},
        {"MS GSM 6.10", "16 bit", "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec libgsm_ms -vn -t 10"},
        {"PCM little-endian", "8 bit", "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec pcm_u8 -vn -t 10"},
        {"PCM little-endian", "16 bit",
         "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec pcm_s16le -vn -t 10"},
        {"PCM little-endian", "24 bit",
         "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec pcm_s24le -vn -t 10"},
        {"PCM little-endian", "32 bit",
         "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec pcm_s32le -vn -t 10"},
        {"PCM little-endian", "64 bit", "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -vn -t 10"},
        {"PCM big-endian", "8 bit", "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec pcm_s8 -vn -t 10"},
        {"PCM big-endian", "16 bit",
         "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec pcm_s16be -vn -t 10"},
        {"PCM big-endian", "24 bit",
         "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec pcm_s24be -vn -t 10"},
        {"PCM big-endian", "32 bit",
         "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -acodec pcm_s32be -vn -t 10"},
        {"PCM big-endian", "", "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -vn -t 10"},
        {"mp3", "16 bit", "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -vn -t 10"},
        {"Opus", "16 bit", "-VideoOutputHook  -ac 2 -ar 44100 -ab 128k -vn -t 10"},
    };
    for (const CodecCase& c : cases) {
        EncoderParams p = typical();
        p.VideoCodec = "No Video";
        p.AudioCodec = c.label;
        p.BitDepth = c.bitDepth;
        EXPECT_EQ(Make_EncoderArgs(p), QString::fromUtf8(c.expected)) << c.label << " " << c.bitDepth;
    }
}

TEST(MakeEncoderArgs, EveryVideoCodecLabel) {
    const std::vector<CodecCase> cases = {
        {"MPEG-1", "",
         R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k -vcodec mpeg1video -t 10 -vf " scale=640:360")x"},
        {"MPEG-2", "",
         R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k -vcodec mpeg2video -t 10 -vf " scale=640:360")x"},
        {"MPEG4 (DivX/Xvid compatible)", "",
         R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k -pix_fmt yuvj420p -vcodec mpeg4 -t 10 -vf " scale=640:360")x"},
        {"H.263 FLV Video", "",
         R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k -vcodec flv -t 10 -vf " scale=640:360")x"},
        {"H.264", "",
         R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k -vcodec libx264 -t 10 -vf " scale=640:360")x"},
        {"IBM Motion JPEG", "",
         R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k -vcodec mjpeg -t 10 -vf " scale=640:360")x"},
        {"Sorenson Video 1", "",
         R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k -vcodec svq1 -t 10 -vf " scale=640:360")x"},
        {"Intel ITU H.263", "",
         R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k -vcodec h263p -t 10 -vf " scale=640:360")x"},
        {"H.263", "",
         R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k -vcodec h263 -t 10 -vf " scale=640:360")x"},
        {"VP8", "",
         R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k -vcodec libvpx -t 10 -vf " scale=640:360")x"},
        {"Huffman Lossless", "",
         R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k -vcodec huffyuv -t 10 -vf " scale=640:360")x"},
        {"Microsoft MPEG4 V2", "",
         R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k -vcodec msmpeg4v2 -t 10 -vf " scale=640:360")x"},
        {"Microsoft MPEG4 V3", "",
         R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k -vcodec msmpeg4v3 -t 10 -vf " scale=640:360")x"},
        {"Xvid MPEG4", "",
         R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k -vcodec mpeg4 -vtag xvid -t 10 -vf " scale=640:360")x"},
        {"DivX MPEG4", "",
         R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k -vcodec mpeg4 -vtag DivX -t 10 -vf " scale=640:360")x"},
        {"RealVideo", "",
         R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k -vcodec rv20 -t 10 -vf " scale=640:360")x"},
        {"Windows Media Video V7", "",
         R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k -vcodec wmv1 -t 10 -vf " scale=640:360")x"},
        {"Windows Media Video V8", "",
         R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k -vcodec wmv2 -t 10 -vf " scale=640:360")x"},
        {"Theora", "",
         R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k -vcodec libtheora -t 10 -vf " scale=640:360")x"},
        {"Uncompressed", "",
         R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k -t 10 -vf " scale=640:360")x"},
        {"h.264", "", R"x(-VideoOutputHook  -an  -r 25 -aspect 1.78 -vb 1000k -t 10 -vf " scale=640:360")x"},
    };
    for (const CodecCase& c : cases) {
        EncoderParams p = typical();
        p.AudioCodec = "No Audio";
        p.VideoCodec = c.label;
        EXPECT_EQ(Make_EncoderArgs(p), QString::fromUtf8(c.expected)) << c.label;
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
