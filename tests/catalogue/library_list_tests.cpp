#include "Library_List.h"

#include <gtest/gtest.h>

#include <vector>

namespace morvane {
namespace {

TEST(LibraryList, ValueLibraries) {
    EXPECT_EQ(Library_List(1),
              "Original;80 x 60;96 x 72;128 x 96;160 x 120;176 x 120;176 x 144;192 x 144;240 x 180;240 x 160;"
              "320 x 200;320 x 240;352 x 288;480 x 320;640 x 360;640 x 480;720 x 480;720 x 576;768 x 576;"
              "800 x 480;854 x 480;960 x 540;960 x 640;1024 x 576;1024 x 600;1280 x 720;1440 x 1080;"
              "1920 x 1080;2560 x 1440;3840 x 2160;1080 x 1920;Custom;");
    EXPECT_EQ(Library_List(2),
              "Original;1 fps;2 fps;3 fps;5 fps;10 fps;12 fps;15 fps;20 fps;23.976 fps;24 fps;"
              "25 fps;29.97 fps;30 fps;50 fps;60 fps;");
    EXPECT_EQ(Library_List(3), "Smart Fit;4:3;16:9;Original;");
    EXPECT_EQ(Library_List(0), "");
    EXPECT_EQ(Library_List(4), "");
}

TEST(LibraryList, DialogFilters) {
    EXPECT_EQ(Filter_Image(), "PNG - Portable Network Graphics File |*.png|JPG - JPEG File |*.jpg|"
                              "GIF - CompuServe GIF File |*.gif|BMP - Windows Bitmap File |*.bmp|"
                              "TIF - Tag Image File |*.tif");
    EXPECT_EQ(Filter_Video(),
              "3GPP Files (*.3gp;*.3gpp)|*.3gp;*.3gpp;|"
              "3GPP2 Files (*.3gp2;*.3g2;*.3gpp2;)|*.3gp2;*.3g2;*.3gpp2;|"
              "Apple Video Files (*.m4v)|*.m4v;|"
              "Audio Video Interleave Files (*.avi;*.ivf;*.div;*.divx)|*.avi;*.ivf;*.div;*.divx;|"
              "AVCHD Files (*.mts;*.m2ts)|*.mts;*.m2ts;|"
              "Anime Music Video Files (*.amv)|*.amv;|"
              "Blu-ray (*.m2ts)|*.m2ts;|"
              "Digital Video Files (*.dv)|*.dv;|"
              "Flash Video Files (*.flv;*.f4v)|*.flv;*.f4v;|"
              "FLIC Files (*.flc;*.fli)|*.flc;*.fli;|"
              "Matroska Video (*.mkv)|*.mkv;|"
              "MPEG Video Files (*.mpg;*.mpeg;*.mpa;*.dat;*.vob)|*.mpg;*.mpeg;*.mpa;*.dat;*.vob;|"
              "MPEG4 Video Files (*.mp4;*.m4v)|*.mp4;*.m4v;|"
              "MXF Files (*.mxf)|*.mxf;|"
              "Microsoft Digital Video Files (*.dvr-ms)|*.dvr-ms;|"
              "Nullsoft Stream Video Files (*.nsv)|*.nsv;|"
              "OGV Files (*.ogv)|*.ogv;|"
              "Quick Time Files (*.mov;*.qt)|*.mov;*.qt;|"
              "Real Media Files (*.rm;*.rmvb)|*.rm;*.rmvb;|"
              "Raw h.264 Video Files (*.h264)|*.h264;|"
              "Tivo Video Files (*.tivo)|*.tivo;|"
              "Unprotected VOB Files (*.vob)|*.vob;|"
              "Video CD Files (*.dat)|*.dat;|"
              "Video Transport Stream Files (*.ts;*.tp;*.trp)|*.ts;*.tp;*.trp;|"
              "VRO Files (*.vro)|*.vro;|"
              "Windows Media Files (*.wmv;*.asf)|*.wmv;*.asf;|"
              "Windows Recorded TV Show Files (*.wtv)|*.wtv;|"
              "WebM Files (*.webm)|*.webm;");
}

TEST(Labels, InformationPanelTexts) {
    struct Case {
        const char* value;
        const char* expected;
    };
    const std::vector<Case> bitrates = {
        {"-1", "-1"},
        {"0", "0"},
        {" 0 ", " 0 "},
        {"128000", "128 kbps"},
        {"128999", "128 kbps"},
        {" 1500000 ", "1500 kbps"},
        {"999", "0 kbps"},
        {"-1500", "-1 kbps"},
        {"12.2", "0 kbps"},
        {"", ""},
        {"n/a", ""},
    };
    for (const Case& c : bitrates)
        EXPECT_EQ(Bitrate_Label(c.value), c.expected) << '"' << c.value << '"';

    const std::vector<Case> channels = {
        {"-1", "-1"},
        {"0", "0"},
        {"1", "1 Channel (Mono)"},
        {"2", "2 Channels (Stereo)"},
        {"6", "6 Channels"},
        {" 8 ", "8 Channels"},
    };
    for (const Case& c : channels)
        EXPECT_EQ(Channels_Label(c.value), c.expected) << '"' << c.value << '"';

    const std::vector<Case> aspects = {
        {"1.17", "1.17:1 - (Academy Scope)"},
        {"1.25", "1.25:1 - (5:4)"},
        {"1.33", "1.33:1 - (4:3)"},
        {"1.37", "1.37:1 - (Academy ratio)"},
        {"1.41", "1.41:1 - (2:1)"},
        {"1.5", "1.50:1 - (3:2)"},
        {"1.66", "1.66:1 - (5:3)  Super 16mm"},
        {"1.77", "1.77:1 - (16:9)  Widescreen"},
        {"1.78", "1.78:1 - (16:9)  Widescreen"},
        {"1.85", "1.85:1 - (35mm Standard)"},
        {"2.35", "2.35:1 - (35mm Anamorphic post-1970)"},
        {"2.39", "2.39:1 - (35mm Anamorphic post-1970)"},
        {"2.4", "2.40:1 - (Widescreen Cinema Standard)"},
        {"1.50", "1.50:1"}, // the stored text of 3:2 is not the table's "1.5"
        {"2.40", "2.40:1"},
        {"1,33", "1.33:1"},
        {"1.1", "1.1:1"},
        {"", ":1"},
    };
    for (const Case& c : aspects)
        EXPECT_EQ(Aspect_Label(c.value), c.expected) << '"' << c.value << '"';
}

} // namespace
} // namespace morvane
