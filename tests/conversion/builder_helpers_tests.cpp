#include "Make_EncoderArgs.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

namespace morvane {
namespace {

TEST(TimeArgs, SeekAndDurationTexts) {
    struct Seek {
        const char* low;
        const char* high;
        const char* expected;
    };
    const std::vector<Seek> seeks = {
        {"1500000", "0", " -ss 1.5"},
        {"100", "0", " -ss 0.0001"},
        {"0", "0", " -ss 0"},
        {"7000000", "0", " -ss 7"},
        {"", "0", ""},
        {"-1", "0", ""},
        {"-1", "-1", ""},
        {"0", "1", " -ss 4294.967296"},
        {"-1294967296", "0", " -ss 3000"}, // a low word above 2^31 is stored negative
        {"4294967295", "0", ""},           // no 32-bit number
        {"abc", "0", ""},
        {"1000000", "", ""},
    };
    for (const Seek& s : seeks)
        EXPECT_EQ(Make_SeekArgs(s.low, s.high), QString::fromLatin1(s.expected)) << s.low << " " << s.high;

    struct Duration {
        const char* startLow;
        const char* startHigh;
        const char* endLow;
        const char* endHigh;
        const char* expected;
    };
    const std::vector<Duration> durations = {
        {"1500000", "0", "4000000", "0", " -t 2.5"},
        {"0", "0", "100", "0", " -t 0.0001"},
        {"1100000", "0", "3300000", "0", " -t 2.2"},
        {"0", "0", "0", "1", " -t 4294.967296"},
        {"2000000", "0", "1000000", "0", " -t -1"},
        {"1500000", "0", "-1", "0", ""},
        {"1500000", "0", "", "0", ""},
        {"0", "0", "12x", "0", ""},
    };
    for (const Duration& d : durations)
        EXPECT_EQ(Make_DurationArgs(d.startLow, d.startHigh, d.endLow, d.endHigh),
                  QString::fromLatin1(d.expected))
            << d.startLow << " " << d.endLow;
}

TEST(Filters, CropAndPadTexts) {
    struct Crop {
        std::int32_t width, height, top, bottom, left, right;
        const char* expected;
    };
    const std::vector<Crop> crops = {
        {1280, 720, 0, 0, 0, 0, ""},
        {1280, 720, -1, -5, 0, -2, ""},
        {1280, 720, 10, 20, 30, 40, "crop=1210:690:30:10"},
        {1280, 720, 0, 0, 0, 1, "crop=1279:720:0:0"},
        {1280, 720, -2, 0, 2, 0, "crop=1278:722:2:-2"},
    };
    for (const Crop& c : crops)
        EXPECT_EQ(Make_CropFilter(c.width, c.height, c.top, c.bottom, c.left, c.right), c.expected)
            << c.expected;
    EXPECT_THROW(Make_CropFilter(1280, 720, 1, 0, std::numeric_limits<std::int32_t>::min(), 0), RunTimeError);

    struct Pad {
        std::int32_t cropTop, cropBottom, cropLeft, cropRight;
        std::int32_t padTop, padBottom, padLeft, padRight;
        const char* expected;
        std::int32_t widthAfter, heightAfter;
    };
    const std::vector<Pad> pads = {
        {0, 0, 0, 0, 0, 0, 0, 0, "", 1280, 720},
        {0, 0, 0, 0, 0, 0, 5, 0, "pad=1284:720:4:0:black", 1280, 720},
        {0, 0, 0, 0, 1, 1, 1, 1, "", 1280, 720},
        {10, 10, 20, 20, 1, 1, 1, 1, "", 1240, 700}, // reduced even when no pad is left
        {10, 10, 20, 20, 6, 6, 0, 0, "pad=1240:712:0:6:black", 1240, 700},
        {-4, 0, 0, 0, 0, 0, 4, 4, "pad=1288:720:4:0:black", 1280, 720}, // no positive crop, no reduction
        {0, 0, 0, 0, -3, 3, 0, 0, "pad=1280:720:0:-2:black", 1280, 720},
        {0, 0, 0, 0, -3, -7, -1, 0, "", 1280, 720},
    };
    for (const Pad& c : pads) {
        std::int32_t width = 1280;
        std::int32_t height = 720;
        EXPECT_EQ(Make_PadFilter(width, height, c.cropTop, c.cropBottom, c.cropLeft, c.cropRight, c.padTop,
                                 c.padBottom, c.padLeft, c.padRight, "black"),
                  c.expected)
            << c.expected;
        EXPECT_EQ(width, c.widthAfter) << c.expected;
        EXPECT_EQ(height, c.heightAfter) << c.expected;
    }
}

TEST(Filters, ChainJoinsWithCommas) {
    Filter_Chain = "";
    Add_Filter("");
    EXPECT_EQ(Filter_Chain, "");
    Add_Filter("crop=10:10:0:0");
    Add_Filter("");
    Add_Filter(" scale=640:360");
    Add_Filter("hflip");
    EXPECT_EQ(Filter_Chain, "crop=10:10:0:0, scale=640:360,hflip");
    Filter_Chain = "";
}

TEST(Aspect, RatioAndStoredText) {
    struct Ratio {
        std::int32_t width, height;
        const char* expected;
    };
    const std::vector<Ratio> ratios = {
        {1280, 720, "1.78"}, {720, 480, "1.5"}, {640, 480, "1.33"}, {1000, 1000, "1"}, {1, 8, "0.12"},
        {3, 8, "0.38"},      {-16, 9, "-1.78"}, {0, 100, "0"},      {100, 0, "1.1"},   {0, 0, "1.1"},
    };
    for (const Ratio& r : ratios)
        EXPECT_EQ(Aspect_Ratio(r.width, r.height), r.expected) << r.width << " " << r.height;

    struct Text {
        std::int32_t width, height, numerator, denominator;
        double ratio;
        const char* expected;
    };
    const std::vector<Text> texts = {
        {720, 576, 5, 4, 0, "1.25"},
        {640, 480, 4, 3, 0, "1.33"},
        {100, 100, 2, 1, 0, "1.41"},
        {720, 480, 3, 2, 0, "1.50"},
        {500, 300, 5, 3, 0, "1.66"},
        {1920, 1080, 16, 9, 0, "1.78"},
        {1920, 1080, 16, 9, 1.7777, "1.78"},
        {1280, 720, 0, 0, 1.77, "1.77"},
        {704, 576, 5, 4, 1.85, "1.85"}, // a known ratio overrides the fraction
        {720, 480, 0, 0, 1.5, "1.50"},
        {720, 480, 0, 0, 1.17, "1.17"},
        {720, 480, 0, 0, 1.37, "1.37"},
        {720, 480, 0, 0, 2.349, "2.35"},
        {720, 480, 0, 0, 2.39, "2.39"},
        {720, 480, 0, 0, 2.4, "2.4"},
        {100, 100, 2, 1, 1.0, "1.41"}, // an unknown ratio keeps the fraction's text
        {720, 576, 0, 0, 1.222, "1.25"},
        {2, 1, 0, 0, 2.0, "2"},
        {1, 0, 0, 0, 0, "1.1"},
        {1280, 720, 0, 0, std::numeric_limits<double>::infinity(), "1.1"},
    };
    for (const Text& t : texts)
        EXPECT_EQ(Aspect_Text(t.width, t.height, t.numerator, t.denominator, t.ratio), t.expected)
            << t.width << "x" << t.height << " " << t.numerator << ":" << t.denominator << " " << t.ratio;
}

TEST(FitSize, DerivedSides) {
    struct Fit {
        std::int32_t sourceWidth, sourceHeight, targetWidth, targetHeight, expected;
    };
    const std::vector<Fit> fits = {
        {1280, 720, 640, -1, 360}, {1280, 720, -1, 360, 640},
        {1280, 720, -1, -1, -2}, // the width rule wins: -1 / 720 x 1280
        {1280, 720, 640, 360, 0},  {3, 2, 1, -1, 1},
        {4, 1, 2, -1, 0}, // 0.5 rounds to even
        {4, 3, 2, -1, 2}, // 1.5 rounds to even
        {1280, 0, 640, -1, 0},
    };
    for (const Fit& f : fits)
        EXPECT_EQ(Fit_Size(f.sourceWidth, f.sourceHeight, f.targetWidth, f.targetHeight), f.expected)
            << f.sourceWidth << "x" << f.sourceHeight << " " << f.targetWidth << "x" << f.targetHeight;

    EXPECT_THROW(Fit_Size(0, 720, 640, -1), RunTimeError);
    EXPECT_THROW(Fit_Size(1280, 0, -1, 360), RunTimeError);
    EXPECT_THROW(Fit_Size(0, 0, 0, -1), RunTimeError);
    EXPECT_THROW(Fit_Size(1, std::numeric_limits<std::int32_t>::max(), 2, -1), RunTimeError);
}

} // namespace
} // namespace morvane
