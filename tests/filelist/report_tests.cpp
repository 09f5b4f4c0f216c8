#include "Report_List.h"

#include <gtest/gtest.h>

using namespace morvane;

namespace {

struct RecordingSink : ReportSink {
    QList<ReportForm> shown;
    void Show_Report(const ReportForm& form) override { shown.append(form); }
};

class Report : public ::testing::Test {
protected:
    void SetUp() override {
        Report_Clear();
        Set_ReportSink(&sink);
    }
    void TearDown() override {
        Set_ReportSink(nullptr);
        Report_Clear();
    }
    RecordingSink sink;
};

} // namespace

TEST_F(Report, EmptyReportShowsNothing) {
    Report_Show(QStringLiteral("Failed"), QStringLiteral("Failed to import files!"));
    EXPECT_TRUE(sink.shown.isEmpty());
}

TEST_F(Report, OrdinaryReportTakesTheGivenWords) {
    Report_Add(QStringLiteral("a.mp4"), QStringLiteral("File not found!"));
    Report_Add(QStringLiteral("b.mp4"), QString());
    Report_Show(QStringLiteral("Conversion Reports"), QStringLiteral("Can not convert these files!"));
    ASSERT_EQ(sink.shown.size(), 1);
    const ReportForm& form = sink.shown.first();
    EXPECT_FALSE(form.protectedMedia);
    EXPECT_EQ(form.caption, QStringLiteral("Conversion Reports"));
    EXPECT_EQ(form.message, QStringLiteral("Can not convert these files!"));
    EXPECT_EQ(form.messageSize, 12);
    EXPECT_EQ(form.icon, 10);
    EXPECT_EQ(form.entries.size(), 2);
    EXPECT_EQ(Report_Entries().size(), 2); // showing doesn't clear; closing does
}

TEST_F(Report, OneProtectedEntryMakesTheWholeReportProtected) {
    for (int i = 0; i < 10; ++i)
        Report_Add(QStringLiteral("f%1.vob").arg(i),
                   i == 6 ? QStringLiteral("  Invalid data found when processing input  ")
                          : QStringLiteral("Unknown error"));
    Report_Show(QStringLiteral("Failed"), QStringLiteral("Failed to import files!"));
    ASSERT_EQ(sink.shown.size(), 1);
    const ReportForm& form = sink.shown.first();
    EXPECT_TRUE(form.protectedMedia);
    EXPECT_EQ(form.caption, QStringLiteral("DRM Protection"));
    EXPECT_EQ(form.message, QStringLiteral("These files are copy-protected and can not be converted."));
    EXPECT_EQ(form.messageSize, 10);
    EXPECT_EQ(form.icon, 41);
    EXPECT_EQ(form.iconSize, 3);
    EXPECT_EQ(form.entries.size(), 10); // the list isn't filtered

    // Only the failure text counts, and case matters.
    Report_Clear();
    Report_Add(QStringLiteral("Invalid data found when processing input"), QStringLiteral("x"));
    Report_Add(QStringLiteral("b"), QStringLiteral("invalid data found when processing input"));
    ReportForm other;
    ASSERT_TRUE(Report_Form(QStringLiteral("Failed"), QStringLiteral("m"), other));
    EXPECT_FALSE(other.protectedMedia);
}

TEST(ReportSend, TextStopsAfterPassingTheLimitAndDropsHashes) {
    const QString longText(2000, QLatin1Char('x'));
    EXPECT_EQ(Report_SendText({{QStringLiteral("big.mp4"), longText}}, 1, 2, 77),
              QStringLiteral("inputfailed,12big.mp4,") + longText + QStringLiteral(",@@77"));

    EXPECT_EQ(Report_SendText({{QStringLiteral(" #1 clip#.mp4"), QStringLiteral("bad #data")}}, 3, 0, 1000),
              QStringLiteral("inputfailed,301 clip.mp4,bad data,@@1000"));

    // 1000-character entries: the second passes 1800 and stays, the third is left out.
    const QList<ReportEntry> three = {{QString(995, QLatin1Char('a')), QStringLiteral("e1")},
                                      {QString(995, QLatin1Char('b')), QStringLiteral("e2")},
                                      {QStringLiteral("c"), QStringLiteral("e3")}};
    const QString sent = Report_SendText(three, 1, 0, 5);
    EXPECT_TRUE(sent.contains(QStringLiteral("e2,@@5")));
    EXPECT_FALSE(sent.contains(QStringLiteral("e3")));

    for (int i = 0; i < 200; ++i) {
        const int n = Report_RandomNumber();
        ASSERT_GE(n, 1);
        ASSERT_LE(n, 1000);
    }
}
