#include "Diagnose_Mod.h"

#include "Globals.h"

#include <QEventLoop>
#include <QTimer>

#include <functional>

namespace morvane {

// A short wait in the event loop: the engine's events come in, and no core spins while the step runs.
void DiagnoseHost::Wait_Events() {
    QEventLoop loop;
    QTimer::singleShot(20, &loop, &QEventLoop::quit);
    loop.exec();
}

namespace {

const QString kFailedStatus = QStringLiteral("Unsuccessful!");
const QString kGap = QStringLiteral("   ");

class TestRun {
public:
    explicit TestRun(DiagnoseHost& host) : m_host(host), m_settings(host.Settings()) {}

    void audioAll() {
        auto& lists = m_settings.Combo_OutputFile;
        // The bitrates are offered by codec, channels, rate and size together, so they are the
        // innermost loop: every other change refills them.
        const auto bitrates = [&] {
            return eachItem(List_AudioBitrate, [&] {
                QList<DiagnoseValue> values{value("Audio Codec", List_AudioCodec),
                                            value("Channels", List_Channels),
                                            value("Sample Rate", List_SampleRate)};
                if (lists[List_SampleSize].visible) values << value("Sample Size", List_SampleSize);
                values << value("Audio Bitrate", List_AudioBitrate);
                return step(values);
            });
        };
        eachItem(List_AudioCodec, [&] {
            return eachItem(List_Channels, [&] {
                return eachItem(List_SampleRate, [&] {
                    return lists[List_SampleSize].visible ? eachItem(List_SampleSize, bitrates) : bitrates();
                });
            });
        });
    }

    void videoCodecOnly() {
        eachItem(List_VideoCodec, [&] { return step({value("Video Codec", List_VideoCodec)}); });
    }

    void presets() {
        for (const qsizetype row : m_host.Preset_Rows()) {
            if (m_host.Test_Cancelled()) {
                cancel();
                break;
            }
            m_host.Preset_Apply(row);
            if (!step({{QStringLiteral("Maker"), m_settings.Txt_Maker},
                       {QStringLiteral("Keyword"), m_settings.Txt_Keyword}}))
                break;
        }
    }

    DiagnoseSummary summary;

private:
    DiagnoseValue value(const char* label, int list) const {
        return {QString::fromLatin1(label),
                m_settings.Combo_OutputFile.at(static_cast<size_t>(list)).selectedText()};
    }

    // Each item of the list selected in turn as a click selects it, so that the lists hanging on it
    // refill; a list that takes no click (disabled, empty) is tested once as it stands. False once
    // the run is cancelled.
    bool eachItem(int list, const std::function<bool()>& inner) {
        const ValueList& items = m_settings.Combo_OutputFile.at(static_cast<size_t>(list));
        if (!items.enabled || items.count() == 0) return inner();
        for (qsizetype i = 0; i < items.count(); ++i) {
            m_settings.selectListIndex(list, i);
            if (!inner()) return false;
        }
        return true;
    }

    bool step(const QList<DiagnoseValue>& values) {
        if (m_host.Test_Cancelled()) return cancel();
        ++summary.steps;
        m_host.StartTesting();
        while (m_host.Get_ConversionState() != 0) {
            if (m_host.Test_Cancelled()) return cancel();
            m_host.Wait_Events();
        }
        if (m_host.Record_Count() == 1 && m_host.Record_Status(0).trimmed() == kFailedStatus) {
            ++summary.failed;
            m_host.Test_Failed(m_host.Preset_Name(), values);
        }
        m_host.Step_Ended();
        return true;
    }

    bool cancel() {
        summary.cancelled = true;
        if (m_host.Get_ConversionState() != 0) m_host.Stop_Testing();
        return false;
    }

    DiagnoseHost& m_host;
    FormatSetting& m_settings;
};

} // namespace

DiagnoseSummary Diagnose_Run(DiagnoseHost& host, int test) {
    TestRun run(host);
    Test_Running = true;
    switch (test) {
    case Test_AudioAll:
        run.audioAll();
        break;
    case Test_Preset:
        run.presets();
        break;
    case Test_VideoCodecOnly:
        run.videoCodecOnly();
        break;
    default:
        break;
    }
    Test_Running = false;
    return run.summary;
}

QString Diagnose_ResultLine(const QString& name, const QList<DiagnoseValue>& values) {
    QString line = name;
    for (const DiagnoseValue& v : values)
        line += kGap + v.label + QLatin1Char(':') + v.value;
    return line + QStringLiteral("\r\n");
}

} // namespace morvane
