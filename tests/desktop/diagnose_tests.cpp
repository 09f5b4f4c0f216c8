// The test bench's runs over a small catalogue with a host whose "conversion" fails by a rule, and its
// window driven by clicks.
#include "CatalogueTestKit.h"
#include "Diagnose_Mod.h"
#include "frmDiagnose.h"

#include "Bitrate_Rules.h"
#include "Globals.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QMap>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSet>

#include <gtest/gtest.h>

#include <functional>

using namespace morvane;
using namespace morvane::testkit;

namespace {

void fillCatalogue(Catalogue& catalogue) {
    const QString video = "#//UseFrameLib//UseFPSLib//UseAspectRatioLib//avi;//1920//1080//12000//#//#//#";
    addRows(
        catalogue.ReportControl_FormatMain, kFormatColumns,
        {"AVI//Xvid MPEG4//" + video, "AVI//H.264//" + video,
         "AVI//#//PCM little-endian//#//#//#//#//0//0//0//22050 Hz;44100 Hz;//Mono;Stereo;//8 bit;16 bit;",
         "AVI//#//MP3//#//#//#//#//0//0//0//44100 Hz;48000 Hz;//Stereo;//16 bit;",
         "AVI//#//No Audio//#//#//#//#//0//0//0//-;//-;//-;"});
    const QString head = "//AVI//AVI//VideoFormat//Video//a//a//No//";
    const QString size = "//640//480//25 fps//Standard//Smart Fit//avi//4:3//";
    addRows(catalogue.ReportControl_PresetMain, kPresetColumns,
            {"1//AVI Xvid" + head + "Xvid MPEG4//MP3" + size + "44100 Hz//Stereo//16 bit//128 kbps",
             "2//AVI PCM" + head + "H.264//PCM little-endian" + size + "44100 Hz//Stereo//16 bit//1411 kbps",
             "3//AVI Silent" + head + "H.264//No Audio" + size + "-//-//-//-"});
}

// The converter as the loop sees it: a start turns "converting", the next yield ends the queue with
// record 0 failed when `fails` says so for the values then selected.
class FakeBench : public DiagnoseHost {
public:
    explicit FakeBench(FormatSetting& settings) : m_settings(settings) {}

    void StartTesting() override {
        runningSeen = runningSeen && Test_Running;
        QStringList values;
        for (const int list : {List_VideoCodec, List_AudioCodec, List_Channels, List_SampleRate,
                               List_SampleSize, List_AudioBitrate})
            values << text(list);
        started << values;
        state = 1;
        if (onStart) onStart();
    }
    int Get_ConversionState() override { return state; }
    void Wait_Events() override {
        runningSeen = runningSeen && Test_Running;
        if (state == 0) return;
        state = 0;
        statuses = QStringList(records, QStringLiteral("Done"));
        if (records > 0 && fails && fails(*this)) statuses[0] = QStringLiteral("Unsuccessful! ");
    }
    bool Test_Cancelled() override { return cancelled && cancelled(); }
    void Stop_Testing() override {
        ++stops;
        state = 0;
    }
    int Record_Count() override { return records; }
    QString Record_Status(int row) override { return statuses.value(row); }
    QList<qsizetype> Preset_Rows() override { return {1, 2, 3}; }
    void Preset_Apply(qsizetype row) override {
        m_settings.Preset_Apply(row);
        m_name = QStringList{"", "AVI Xvid", "AVI PCM", "AVI Silent"}.value(row);
    }
    FormatSetting& Settings() override { return m_settings; }
    QString Preset_Name() override { return m_name; }
    void Test_Failed(const QString& name, const QList<DiagnoseValue>& values) override {
        lines << Diagnose_ResultLine(name, values);
        if (window) window->Add_Result(lines.last());
    }

    QString text(int list) const {
        return m_settings.Combo_OutputFile.at(static_cast<size_t>(list)).selectedText();
    }

    int records = 1;
    int state = 0;
    int stops = 0;
    bool runningSeen = true;
    QStringList statuses;
    QList<QStringList> started; // per start: video, audio codec, channels, rate, size, audio bitrate
    QStringList lines;
    std::function<bool(const FakeBench&)> fails;
    std::function<bool()> cancelled;
    std::function<void()> onStart;
    frmDiagnose* window = nullptr;

private:
    FormatSetting& m_settings;
    QString m_name;
};

class DiagnoseBench : public ::testing::Test {
protected:
    void SetUp() override {
        fillCatalogue(catalogue);
        bench.Preset_Apply(1);
    }
    Catalogue catalogue;
    FormatSetting settings{catalogue};
    FakeBench bench{settings};
};

} // namespace

TEST_F(DiagnoseBench, EachRunWritesItsFailedStepsOnlyWithExactlyOneRecord) {
    const auto codec = [](const char* name) {
        return [name](const FakeBench& b) { return b.text(List_VideoCodec) == name; };
    };
    const auto pcm = [](const FakeBench& b) { return b.text(List_AudioCodec) == "PCM little-endian"; };
    const auto mp3At128 = [](const FakeBench& b) {
        return b.text(List_AudioCodec) == "MP3" && b.text(List_AudioBitrate) == "128 kbps";
    };
    const QStringList mp3Lines = {
        "AVI Xvid   Audio Codec:MP3   Channels:Stereo   Sample Rate:44100 Hz   Sample Size:16 bit   "
        "Audio Bitrate:128 kbps\r\n",
        "AVI Xvid   Audio Codec:MP3   Channels:Stereo   Sample Rate:48000 Hz   Sample Size:16 bit   "
        "Audio Bitrate:128 kbps\r\n"};
    struct Case {
        int test;
        std::function<bool(const FakeBench&)> fails;
        int steps;
        QStringList lines; // with one record
    };
    const Case cases[] = {
        {Test_Preset, pcm, 3, {"AVI PCM   Maker:VideoFormat   Keyword:AVI\r\n"}},
        {Test_VideoCodecOnly, codec("H.264"), 2, {"AVI Xvid   Video Codec:H.264\r\n"}},
        {Test_AudioAll, mp3At128, -1, mp3Lines},
    };
    for (const Case& c : cases)
        for (const int records : {1, 0, 2}) {
            SCOPED_TRACE(testing::Message() << "test " << c.test << ", records " << records);
            FakeBench fresh(settings);
            fresh.Preset_Apply(1);
            fresh.records = records;
            fresh.fails = c.fails;
            const DiagnoseSummary summary = Diagnose_Run(fresh, c.test);
            EXPECT_FALSE(Test_Running);
            EXPECT_TRUE(fresh.runningSeen);
            EXPECT_FALSE(summary.cancelled);
            if (c.steps >= 0) {
                EXPECT_EQ(summary.steps, c.steps);
            }
            EXPECT_EQ(fresh.started.size(), summary.steps);
            EXPECT_EQ(fresh.lines, records == 1 ? c.lines : QStringList());
            EXPECT_EQ(summary.failed, fresh.lines.size());
        }
}

TEST_F(DiagnoseBench, AudioAllVisitsEveryCombinationOnceWithTheListsRefilled) {
    for (const bool sizesShown : {true, false}) {
        SCOPED_TRACE(sizesShown ? "sample sizes shown" : "sample sizes hidden");
        FakeBench run(settings);
        run.Preset_Apply(1);
        settings.Combo_OutputFile[List_SampleSize].visible = sizesShown;
        Diagnose_Run(run, Test_AudioAll);

        // What the format table offers, with the bitrates that each combination's rule offers.
        QSet<QStringList> expected;
        const auto offer = [&](const QString& codec, const QStringList& channels, const QStringList& rates,
                               const QStringList& sizes) {
            for (const QString& ch : channels)
                for (const QString& rate : rates)
                    for (const QString& size : sizesShown ? sizes : QStringList{"16 bit"})
                        for (const QString& bitrate :
                             Split_SemicolonList(AudioBitrate_List(codec, rate, ch, size)))
                            expected.insert({codec, ch, rate, size, bitrate});
        };
        offer("PCM little-endian", {"Mono", "Stereo"}, {"22050 Hz", "44100 Hz"}, {"8 bit", "16 bit"});
        offer("MP3", {"Stereo"}, {"44100 Hz", "48000 Hz"}, {"16 bit"});
        offer("No Audio", {"-"}, {"-"}, {"-"});
        if (!sizesShown) { // the hidden list stays as each codec's refill left it
            expected.remove({"No Audio", "-", "-", "16 bit", "-"});
            expected.insert({"No Audio", "-", "-", "-", "-"});
        }

        QSet<QStringList> visited;
        for (const QStringList& s : run.started) {
            EXPECT_EQ(s.at(0), "Xvid MPEG4");
            EXPECT_FALSE(visited.contains(s.mid(1))) << s.join('|').toStdString();
            visited.insert(s.mid(1));
        }
        EXPECT_EQ(visited, expected);
        EXPECT_EQ(run.started.size(), expected.size());
        // No restore: the last tested values stay.
        EXPECT_EQ(run.text(List_AudioCodec), "No Audio");
    }
}

TEST_F(DiagnoseBench, ACancelledRunStopsTheConversionOnceAndEnds) {
    bool cancel = false;
    bench.cancelled = [&] { return cancel; };
    bench.onStart = [&] { cancel = bench.started.size() == 2; };
    const DiagnoseSummary summary = Diagnose_Run(bench, Test_Preset);
    EXPECT_TRUE(summary.cancelled);
    EXPECT_EQ(summary.steps, 2);
    EXPECT_EQ(bench.started.size(), 2);
    EXPECT_EQ(bench.stops, 1);
    EXPECT_FALSE(Test_Running);
}

TEST_F(DiagnoseBench, WindowRunsTestsKeepsTheLogOnlyWhenTickedAndEndsARunOnClose) {
    auto owned = std::make_unique<FakeBench>(settings);
    FakeBench& host = *owned;
    host.Preset_Apply(1);
    host.fails = [](const FakeBench& b) { return b.text(List_VideoCodec) == "H.264"; };
    frmDiagnose window(std::move(owned));
    host.window = &window;
    host.cancelled = [&] { return window.Cancel_Requested(); };
    window.show();

    window.Cmd_Test(2)->click();
    EXPECT_EQ(window.Txt_TestResult()->toPlainText(), "AVI Xvid   Video Codec:H.264\n");
    EXPECT_EQ(window.Cmd_Test(1)->text(), "Test Preset");
    EXPECT_TRUE(window.Cmd_Test(1)->isEnabled());

    window.Diagnose_Log("not kept");
    EXPECT_EQ(window.txtLog()->toPlainText(), "");
    window.Chk_EngLog()->setChecked(true);
    window.Diagnose_Log("first");
    window.Diagnose_Log("second");
    EXPECT_EQ(window.txtLog()->toPlainText(), "first\nsecond\n");
    EXPECT_TRUE(window.txtLog()->textCursor().atEnd());
    window.Cmd_ClearLog()->click();
    EXPECT_EQ(window.txtLog()->toPlainText(), "");

    window.Command1()->click();
    EXPECT_EQ(window.Text1()->text(), "not available");
    window.Show_ResultLine("frame=  10 time=00:00:01.00", "00:00:01.00");
    EXPECT_EQ(window.Txt_Time()->text(), "00:00:01.00");

    // Closed during the first preset: the run stops there and the window only hides.
    host.started.clear();
    host.onStart = [&] { window.close(); };
    window.Cmd_Test(1)->click();
    EXPECT_EQ(host.started.size(), 1);
    EXPECT_EQ(host.stops, 1);
    EXPECT_FALSE(window.Running());
    EXPECT_FALSE(window.isVisible());
    EXPECT_FALSE(Test_Running);
}
