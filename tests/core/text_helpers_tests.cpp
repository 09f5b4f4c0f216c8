#include "Globals.h"
#include "mMain.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

using namespace morvane;

TEST(TextHelpers, FormatSecondsShortAndLong) {
    struct Case {
        std::int32_t seconds;
        const char* shortText;
        const char* longText;
    };
    const Case cases[] = {
        {0, "00:00:00", "0 seconds"},
        {1, "00:00:01", "1 second"},
        {7, "00:00:07", "7 seconds"},
        {60, "00:01:00", "1 minute and 0 seconds"},
        {65, "00:01:05", "1 minute and 5 seconds"},
        {125, "00:02:05", "2 minutes and 5 seconds"},
        {3600, "01:00:00", "1 hour, 0 minutes, and 0 seconds"},
        {3725, "01:02:05", "1 hour, 2 minutes, and 5 seconds"},
        {7261, "02:01:01", "2 hours, 1 minute, and 1 second"},
        {360000, "100:00:00", "100 hours, 0 minutes, and 0 seconds"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Format_Seconds(c.seconds, false), QString::fromLatin1(c.shortText)) << c.seconds;
        EXPECT_EQ(Format_Seconds(c.seconds, true), QString::fromLatin1(c.longText)) << c.seconds;
    }
}

TEST(TextHelpers, FormatTimeCode) {
    EXPECT_EQ(Format_TimeCode(-1), "00:00:00.000");
    EXPECT_EQ(Format_TimeCode(std::numeric_limits<std::int64_t>::min()), "00:00:00.000");
    EXPECT_EQ(Format_TimeCode(0), "00:00:00.000");
    EXPECT_EQ(Format_TimeCode(1234567), "00:00:01.234");
    EXPECT_EQ(Format_TimeCode(3723500000LL), "01:02:03.500");
    EXPECT_EQ(Format_TimeCode(360000LL * 1000000), "100:00:00.000");
    // The milliseconds are cut, not rounded: 999.9 ms stays 999.
    EXPECT_EQ(Format_TimeCode(999999), "00:00:00.999");
    EXPECT_DOUBLE_EQ(Time_ToSeconds(1500000), 1.5);
}

TEST(TextHelpers, ParseIntOrKeepsTheSixteenBitGuard) {
    struct Case {
        const char* text;
        std::int32_t fallback;
        std::int32_t expected;
    };
    const Case cases[] = {
        {"32768", 200, 200}, {"32767", 200, 32767}, {"-32768", 7, -32768}, {"-32769", 7, 7},
        {"2.5", 0, 2},       {"3.5", 0, 4},         {"-2.5", 0, -2},       {"0.5", 9, 0},
        {"32767.5", 1, 1},   {"32767.4", 1, 32767}, {"", 64, 64},          {"   ", 64, 64},
        {" 12 ", 0, 12},     {"12abc", 5, 5},       {"abc", 5, 5},         {"nan", 5, 5},
        {"inf", 5, 5},       {"40000", 200, 200},   {"12.2", 64, 12},      {"128", 64, 128},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Parse_IntOr(QString::fromLatin1(c.text), c.fallback), c.expected) << '"' << c.text << '"';
}

TEST(TextHelpers, RoundingAndDoubleText) {
    EXPECT_EQ(Round_HalfEven(0.5), 0.0);
    EXPECT_EQ(Round_HalfEven(1.5), 2.0);
    EXPECT_EQ(Round_HalfEven(2.5), 2.0);
    EXPECT_EQ(Round_HalfEven(-1.5), -2.0);
    EXPECT_EQ(Round_HalfEven(-2.5), -2.0);
    EXPECT_EQ(Round_HalfEven(2.4999), 2.0);
    EXPECT_EQ(Round_HalfEven(69672.7), 69673.0);

    EXPECT_EQ(Format_Double(1.5), "1.5");
    EXPECT_EQ(Format_Double(0.0001), "0.0001");
    EXPECT_EQ(Format_Double(1e-7), "0.0000001");
    EXPECT_EQ(Format_Double(100.0), "100");
    EXPECT_EQ(Format_Double(-2.25), "-2.25");
    EXPECT_EQ(Format_Double(-0.0), "0");
    EXPECT_EQ(Format_Double(0.1 + 0.2), "0.30000000000000004");
    EXPECT_EQ(Format_Double(1e21), "1000000000000000000000");
}

TEST(TextHelpers, TimePairsHoldSignedMicroseconds) {
    EXPECT_EQ(Time_FromPair(0, static_cast<std::int32_t>(0x80000000u)),
              std::numeric_limits<std::int64_t>::min());
    for (const std::int64_t value :
         {0LL, 1234567LL, -1LL, 5000000000LL, -5000000000LL, 0x7fffffffLL, 0x80000000LL})
        EXPECT_EQ(Time_FromPair(Time_Low(value), Time_High(value)), value) << value;
    EXPECT_EQ(Time_Low(5000000000LL), 705032704);
    EXPECT_EQ(Time_High(5000000000LL), 1);
    EXPECT_EQ(Time_High(-1), -1);
}

TEST(TextHelpers, KeyFilters) {
    struct Case {
        int key;
        const char* box;
        int caret;
        int expected;
    };
    const Case numberCases[] = {
        {'5', "12", 2, '5'}, {'0', "", 0, '0'}, {'9', "", 0, '9'},  {8, "12", 2, 8}, {0, "", 0, 0},
        {'-', "12", 0, '-'}, {'-', "12", 1, 0}, {'-', "-12", 0, 0}, {'a', "", 0, 0}, {'.', "1", 1, 0},
        {' ', "", 0, 0},     {'/', "", 0, 0},   {':', "", 0, 0},    {13, "1", 1, 0},
    };
    for (const Case& c : numberCases) {
        int key = c.key;
        EXPECT_EQ(Filter_NumberKey(key, QString::fromLatin1(c.box), c.caret), c.expected) << c.key << c.box;
        EXPECT_EQ(key, c.expected);
    }
    for (const int refused : {34, 42, 47, 58, 60, 62, 63, 92, 124}) {
        int key = refused;
        EXPECT_EQ(Filter_FileNameKey(key), 0) << refused;
        EXPECT_EQ(key, 0);
    }
    for (const int allowed :
         {int('a'), int('Z'), int('0'), int(' '), int('.'), int('-'), int('_'), int('('), 8}) {
        int key = allowed;
        EXPECT_EQ(Filter_FileNameKey(key), allowed);
    }
}

TEST(TextHelpers, TrimTakesSpacesOnly) {
    EXPECT_EQ(Trim_Spaces("  a b  "), "a b");
    EXPECT_EQ(Trim_Spaces("\ta\t"), "\ta\t");
    EXPECT_EQ(Trim_Spaces("    "), "");
    EXPECT_EQ(Trim_Spaces(""), "");
}

TEST(TextHelpers, ShowMessageGoesThroughTheHandlerAndKeepsATrail) {
    QStringList seen;
    Set_MessageHandler([&](const QString& text, int flags, const QString& title, const QString& detail) {
        seen << QStringLiteral("%1|%2|%3|%4").arg(text).arg(flags).arg(title, detail);
        return ID_NO;
    });
    Msg_Trail.clear();
    EXPECT_EQ(Show_Message("Failed", MB_YESNO | MB_ICONQUESTION, "Title", " more"), ID_NO);
    EXPECT_EQ(Show_Message("Second", MB_OK, QString()), ID_NO);
    EXPECT_EQ(seen, QStringList({"Failed|36|Title| more", "Second|0||"}));
    EXPECT_EQ(Msg_Trail, "(Failed more)(Second)");

    // Without a window the text goes to standard error and the first button answers.
    Set_MessageHandler(nullptr);
    EXPECT_EQ(Show_Message("Question", MB_YESNO, QString()), ID_YES);
    EXPECT_EQ(Show_Message("Note", MB_OKCANCEL, QString()), ID_OK);
    Msg_Trail.clear();
}
