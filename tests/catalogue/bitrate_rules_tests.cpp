#include "Bitrate_Rules.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <vector>

namespace morvane {
namespace {

TEST(AutoVideoBitrate, Estimates) {
    struct Case {
        std::int32_t width, height;
        const char* rate;
        std::int32_t quality, unit, expected;
    };
    const std::vector<Case> cases = {
        {1920, 1080, "30 fps", 4, 1, 17418},
        {1920, 1080, "30 fps", 4, 0, 17418240},
        {3840, 2160, "30 fps", 4, 1, 69673},
        {320, 240, "Original", 2, 1, 516}, // 24 fps, factor 2 + 2 under a width of 500
        {320, 240, "Original", 0, 1, 258}, // no quality chosen still gets 2
        {499, 100, "10 fps", 1, 0, 104790},
        {500, 100, "10 fps", 1, 0, 35000},
        {1920, 1080, "29.97 fps", 4, 1, 17418},
        {1920, 1080, "23.976 fps", 4, 1, 13935},
        {1920, 1080, "-", 4, 1, 13935},
        {1920, 1080, "30 FPS", 4, 1, 17418}, // " fps" goes whatever its case
        {1920, 1080, "60", 4, 1, 34836},
        {500, 300, "25 fps", 1, 1, 262}, // 262.5 rounds to even
        {500, 300, "25 fps", 1, 0, 262500},
        {100, 50, "5 fps", 0, 1, 4}, // 3.5 rounds to even
        {3840, 2160, "60 fps", 4, 1, 139346},
        {1920, 1080, "50 fps", 2, 1, 14515},
        // Run-time errors.
        {3840, 2160, "120 fps", 4, 1, 1500}, // 3,981,312,000 overflows 32 bits
        {7680, 4320, "60 fps", 4, 1, 1500},
        {65536, 65536, "1 fps", 0, 1, 1500}, // overflow before the factor of 0 would clear it
        {1920, 1080, "30fps", 4, 1, 1500},
        {1920, 1080, "fast", 4, 1, 1500},
        {1920, 1080, "", 4, 1, 1500},
        {1920, 1080, "99999999999 fps", 4, 1, 1500},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Auto_VideoBitrate(c.width, c.height, c.rate, c.quality, c.unit), c.expected)
            << c.width << "x" << c.height << " " << c.rate << " q" << c.quality << " u" << c.unit;
}

TEST(VideoBitrateList, BoundsAndLadder) {
    struct Bounds {
        std::int32_t width, height, maxRate, upper, lower;
    };
    const std::vector<Bounds> bounds = {
        {0, 0, 50000, 50000, 564}, // 720 x 560 at 20 fps, factor 1
        {0, 0, 564, 564, 0},
        {0, 0, 565, 565, 564},
        {1920, 1080, 50000, 34836, 2903},
        {1920, 1080, 20000, 20000, 2903},
        {64, 64, 50000, 103, 17},
        {16, 16, 50000, 6, 1},
        // The 4K rows stop at 30000, the ladder's last step that the builder's 16-bit guard lets by.
        {3840, 2160, 30000, 30000, 11612},
        {1080, 1920, 30000, 30000, 2903},
    };
    for (const Bounds& b : bounds) {
        EXPECT_EQ(Bitrate_Upper(b.width, b.height, b.maxRate), b.upper) << b.width << "x" << b.height;
        EXPECT_EQ(Bitrate_Lower(b.width, b.height, b.maxRate), b.lower) << b.width << "x" << b.height;
    }

    struct List {
        std::int32_t width, height, maxRate;
        const char* expected;
    };
    const std::vector<List> lists = {
        {0, 0, 0, "-;"},
        {1920, 1080, 0, "-;"},
        {0, 0, 50000,
         "Smart Fit;768 kbps;900 kbps;1000 kbps;1200 kbps;1500 kbps;2000 kbps;3000 kbps;4000 kbps;6000 kbps;"
         "8000 kbps;10000 kbps;12000 kbps;15000 kbps;30000 kbps;35000 kbps;40000 kbps;50000 kbps;Custom;"},
        {0, 0, 768, "Smart Fit;768 kbps;Custom;"},
        {0, 0, 500, "Smart Fit;16 kbps;32 kbps;64 kbps;96 kbps;128 kbps;256 kbps;384 kbps;Custom;"},
        {1920, 1080, 50000,
         "Smart Fit;3000 kbps;4000 kbps;6000 kbps;8000 kbps;10000 kbps;12000 kbps;15000 kbps;30000 kbps;"
         "Custom;"},
        {64, 64, 50000, "Smart Fit;32 kbps;64 kbps;96 kbps;Custom;"},
        {16, 16, 50000, "Smart Fit;Custom;"},
        {3840, 2160, 30000, "Smart Fit;12000 kbps;15000 kbps;30000 kbps;Custom;"},
    };
    for (const List& l : lists)
        EXPECT_EQ(VideoBitrate_List(l.width, l.height, l.maxRate), l.expected)
            << l.width << "x" << l.height << " " << l.maxRate;
}

// The lists of the audio table, as the preset dialog shows them.
const std::array<const char*, 39> L = {
    "",
    "8 kbps;16 kbps;24 kbps;32 kbps;40 kbps;48 kbps;",
    "8 kbps;16 kbps;24 kbps;32 kbps;40 kbps;48 kbps;56 kbps;64 kbps;",
    "8 kbps;16 kbps;24 kbps;32 kbps;40 kbps;48 kbps;56 kbps;64 kbps;80 kbps;96 kbps;",
    "8 kbps;16 kbps;24 kbps;32 kbps;40 kbps;48 kbps;56 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;",
    "8 kbps;16 kbps;24 kbps;32 kbps;40 kbps;48 kbps;56 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;144 "
    "kbps;",
    "8 kbps;16 kbps;24 kbps;32 kbps;40 kbps;48 kbps;56 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;"
    "144 kbps;160 kbps;",
    "16 kbps;32 kbps;48 kbps;64 kbps;80 kbps;96 kbps;",
    "16 kbps;32 kbps;48 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;",
    "16 kbps;32 kbps;48 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;192 kbps;",
    "16 kbps;32 kbps;48 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;192 kbps;224 kbps;256 kbps;",
    "16 kbps;32 kbps;48 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;192 kbps;224 kbps;256 kbps;"
    "288 kbps;",
    "16 kbps;32 kbps;48 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;192 kbps;224 kbps;256 kbps;"
    "288 kbps;320 kbps;",
    "48 kbps;96 kbps;144 kbps;192 kbps;240 kbps;288 kbps;",
    "48 kbps;96 kbps;144 kbps;192 kbps;240 kbps;288 kbps;336 kbps;384 kbps;",
    "48 kbps;96 kbps;144 kbps;192 kbps;240 kbps;288 kbps;336 kbps;384 kbps;480 kbps;576 kbps;",
    "48 kbps;96 kbps;144 kbps;192 kbps;240 kbps;288 kbps;336 kbps;384 kbps;480 kbps;576 kbps;672 kbps;"
    "768 kbps;",
    "48 kbps;96 kbps;144 kbps;192 kbps;240 kbps;288 kbps;336 kbps;384 kbps;480 kbps;576 kbps;672 kbps;"
    "768 kbps;864 kbps;",
    "48 kbps;96 kbps;144 kbps;192 kbps;240 kbps;288 kbps;336 kbps;384 kbps;480 kbps;576 kbps;672 kbps;"
    "768 kbps;864 kbps;960 kbps;",
    "16 kbps;24 kbps;32 kbps;40 kbps;48 kbps;56 kbps;64 kbps;80 kbps;",
    "24 kbps;32 kbps;40 kbps;48 kbps;56 kbps;64 kbps;80 kbps;",
    "32 kbps;40 kbps;48 kbps;56 kbps;64 kbps;80 kbps;",
    "32 kbps;40 kbps;48 kbps;56 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;144 kbps;160 kbps;",
    "48 kbps;56 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;144 kbps;160 kbps;",
    "32 kbps;48 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;",
    "48 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;",
    "64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;",
    "64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;192 kbps;224 kbps;256 kbps;288 kbps;320 kbps;",
    "96 kbps;112 kbps;128 kbps;160 kbps;192 kbps;224 kbps;256 kbps;288 kbps;320 kbps;",
    "32 kbps;48 kbps;56 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;",
    "64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;192 kbps;224 kbps;256 kbps;320 kbps;",
    "8 kbps;16 kbps;24 kbps;32 kbps;40 kbps;",
    "16 kbps;24 kbps;32 kbps;40 kbps;48 kbps;",
    "16 kbps;24 kbps;32 kbps;40 kbps;48 kbps;56 kbps;64 kbps;80 kbps;96 kbps;",
    "16 kbps;32 kbps;48 kbps;64 kbps;80 kbps;",
    "32 kbps;48 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;192 kbps;",
    "48 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;192 kbps;224 kbps;256 kbps;288 kbps;320 "
    "kbps;",
    "32 kbps;48 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;192 kbps;224 kbps;256 kbps;288 kbps;"
    "320 kbps;",
    "4.75 kbps;5.15 kbps;5.90 kbps;6.70 kbps;7.40 kbps;7.95 kbps;10.2 kbps;12.2 kbps;",
};

const std::array<const char*, 9> kRates = {"8000 Hz",  "11025 Hz", "12000 Hz", "16000 Hz", "22050 Hz",
                                           "24000 Hz", "32000 Hz", "44100 Hz", "48000 Hz"};

TEST(AudioBitrateList, EveryCellOfTheGrid) {
    struct Row {
        const char* codec;
        const char* channels;
        std::array<int, 9> lists; // 0 for the empty list
    };
    const std::vector<Row> rows = {
        {"MPEG-2/4", "Mono", {1, 2, 2, 3, 4, 5, 6, 6, 6}},
        {"AAC", "Mono", {1, 2, 2, 3, 4, 5, 6, 6, 6}},
        {"MPEG-2/4", "Stereo", {7, 8, 8, 9, 10, 11, 12, 12, 12}},
        {"AAC", "Stereo", {7, 8, 8, 9, 10, 11, 12, 12, 12}},
        {"MPEG-2/4", "5.1 Surround", {13, 14, 14, 15, 16, 17, 18, 18, 18}},
        {"AAC", "5.1 Surround", {0, 0, 0, 0, 0, 0, 0, 0, 0}},
        {"MP3", "Mono", {19, 20, 20, 20, 21, 21, 22, 23, 23}},
        {"AC3", "Mono", {19, 20, 20, 20, 21, 21, 22, 23, 23}},
        {"MP3", "Stereo", {24, 25, 25, 25, 26, 26, 27, 28, 28}},
        {"AC3", "Stereo", {24, 25, 25, 25, 26, 26, 27, 28, 28}},
        {"MP3", "5.1 Surround", {0, 0, 0, 0, 0, 0, 0, 0, 0}},
        {"MP2", "Mono", {0, 0, 0, 0, 21, 21, 29, 29, 29}},
        {"MP2", "Stereo", {0, 0, 0, 0, 26, 26, 30, 30, 30}},
        {"MP2", "5.1 Surround", {0, 0, 0, 0, 0, 0, 0, 0, 0}},
        {"Ogg Vorbis", "Mono", {31, 32, 32, 33, 19, 19, 22, 22, 22}},
        {"Ogg Vorbis", "Stereo", {34, 7, 7, 35, 24, 24, 36, 36, 36}},
        {"Ogg Vorbis", "5.1 Surround", {0, 0, 0, 0, 0, 0, 0, 0, 0}},
        {"RealAudio 3.0 (dnet)", "Mono", {37, 37, 37, 37, 37, 37, 37, 37, 37}},
        {"WMA", "5.1 Surround", {37, 37, 37, 37, 37, 37, 37, 37, 37}},
        {"AMR ACELP", "Stereo", {38, 38, 38, 38, 38, 38, 38, 38, 38}},
        {" MP3 ", "Mono", {19, 20, 20, 20, 21, 21, 22, 23, 23}}, // the codec is trimmed
        {"mp3", "Mono", {0, 0, 0, 0, 0, 0, 0, 0, 0}},
        {"MP3", "mono", {0, 0, 0, 0, 0, 0, 0, 0, 0}},
    };
    for (const Row& row : rows)
        for (std::size_t i = 0; i < kRates.size(); ++i)
            EXPECT_EQ(AudioBitrate_List(row.codec, kRates[i], row.channels, "16 bit"),
                      QString::fromLatin1(L[static_cast<std::size_t>(row.lists[i])]))
                << row.codec << " / " << row.channels << " / " << kRates[i];

    // A rate outside the table, or a rate text without its unit, has no list.
    EXPECT_EQ(AudioBitrate_List("MP3", "96000 Hz", "Stereo", "16 bit"), "");
    EXPECT_EQ(AudioBitrate_List("MP3", "44100", "Stereo", "16 bit"), "");
    // The Ogg Vorbis lists at 16000 Hz reach higher than at 22050 Hz.
    EXPECT_EQ(AudioBitrate_List("Ogg Vorbis", "16000 Hz", "Mono", ""), L[33]);
    EXPECT_EQ(AudioBitrate_List("Ogg Vorbis", "22050 Hz", "Mono", ""), L[19]);
}

TEST(AudioBitrateList, ComputedAndFixedCodecs) {
    struct Case {
        const char* codec;
        const char* rate;
        const char* channels;
        const char* size;
        const char* expected;
    };
    const std::vector<Case> cases = {
        {"PCM little-endian", "48000 Hz", "5.1 Surround", "32 bit", "9216 kbps;"},
        {"PCM little-endian", "44100 Hz", "Stereo", "16 bit", "1408 kbps;"},
        {"PCM little-endian", "8000 Hz", "Mono", "8 bit", "64 kbps;"},
        {"PCM big-endian", "11025 Hz", "Stereo", "24 bit", "528 kbps;"},
        {"PCM big-endian", "12000 Hz", "Mono", "16 bit", "192 kbps;"},
        {"PCM big-endian", "16000 Hz", "Mono", "8 bit", "128 kbps;"},
        {"PCM little-endian", "22050 Hz", "Mono", "8 bit", "176 kbps;"},
        {"PCM little-endian", "24000 Hz", "Mono", "8 bit", "192 kbps;"},
        {"PCM little-endian", "32000 Hz", "Mono", "8 bit", "256 kbps;"},
        {"PCM little-endian", "44100 Hz", "Stereo", "12 bit", "0 kbps;"},
        {"PCM little-endian", "96000 Hz", "Stereo", "16 bit", "0 kbps;"},
        {"PCM big-endian", "44100 Hz", "Quad", "16 bit", "0 kbps;"},
        {"CCITT A-law", "8000 Hz", "Mono", "", "64 kbps;"},
        {"CCITT u-law", "48000 Hz", "5.1 Surround", "", "2304 kbps;"},
        {"CCITT u-law", "22050 Hz", "Stereo", "", "352 kbps;"},
        {"IMA ADPCM", "8000 Hz", "Mono", "", "32 kbps;"},
        {"IMA ADPCM", "11025 Hz", "Mono", "", "44 kbps;"},
        {"IMA ADPCM", "12000 Hz", "Stereo", "", "88 kbps;"},
        {"IMA ADPCM", "16000 Hz", "Mono", "", "64 kbps;"},
        {"IMA ADPCM", "22050 Hz", "Mono", "", "88 kbps;"},
        {"IMA ADPCM", "24000 Hz", "Stereo", "", "176 kbps;"},
        {"IMA ADPCM", "32000 Hz", "Mono", "", "128 kbps;"},
        {"IMA ADPCM", "44100 Hz", "Mono", "", "176 kbps;"},
        {"IMA ADPCM", "48000 Hz", "5.1 Surround", "", "1056 kbps;"},
        {"IMA_ADPCM", "8000 Hz", "Mono", "", "32 kbps;"},
        {"IMA_ADPCM", "11025 Hz", "Mono", "", "44 kbps;"},
        {"IMA_ADPCM", "22050 Hz", "Mono", "", "88 kbps;"},
        {"IMA_ADPCM", "44100 Hz", "Mono", "", "176 kbps;"},
        {"Microsoft ADPCM", "8000 Hz", "Stereo", "", "64 kbps;"},
        {"Microsoft ADPCM", "11025 Hz", "Stereo", "", "88 kbps;"},
        {"Microsoft ADPCM", "22050 Hz", "Stereo", "", "176 kbps;"},
        {"Microsoft ADPCM", "44100 Hz", "Stereo", "", "325 kbps;"},
        {"Microsoft ADPCM", "48000 Hz", "Stereo", "", ""},
        {"IMA_ADPCM", "12000 Hz", "Mono", "", ""},
        {"IMA_ADPCM", "44100 Hz", "5.1 Surround", "", ""},
        {"MS GSM 6.10", "8000 Hz", "Mono", "", "13 kbps;"},
        {"MS GSM 6.10", "44100 Hz", "5.1 Surround", "", "13 kbps;"},
        {"FLAC", "96000 Hz", "Stereo", "24 bit", "768 kbps;"},
        {"WMA", "96000 Hz", "Quad", "",
         "32 kbps;48 kbps;64 kbps;80 kbps;96 kbps;112 kbps;128 kbps;160 kbps;"
         "192 kbps;224 kbps;256 kbps;288 kbps;320 kbps;"},
        {"No Audio", "-", "-", "-", "-;"},
        {"No Audio", "44100 Hz", "Stereo", "16 bit", ""},
        {"Opus", "48000 Hz", "Stereo", "16 bit",
         "32 kbps;48 kbps;64 kbps;96 kbps;128 kbps;160 kbps;192 kbps;256 kbps;"},
        {"Opus", "48000 Hz", "Mono", "", "32 kbps;48 kbps;64 kbps;96 kbps;128 kbps;"},
        {"Opus", "44100 Hz", "Stereo", "16 bit", ""}, // Opus is offered at 48 kHz alone
        {"Opus", "48000 Hz", "5.1 Surround", "16 bit", ""},
        {"", "48000 Hz", "Stereo", "16 bit", ""},
    };
    for (const Case& c : cases)
        EXPECT_EQ(AudioBitrate_List(c.codec, c.rate, c.channels, c.size), c.expected)
            << c.codec << " / " << c.rate << " / " << c.channels << " / " << c.size;
}

} // namespace
} // namespace morvane
