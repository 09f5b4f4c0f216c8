#include "Cli_Settings.h"

#include "Preset_Mods.h"

#include <QStringList>

#include <array>

namespace morvane {

namespace {

struct ListField {
    const char* name;
    int list;
};

constexpr std::array<ListField, 11> kListFields = {{
    {"video-codec", List_VideoCodec},
    {"frame-size", List_FrameSize},
    {"frame-rate", List_FrameRate},
    {"extension", List_Extension},
    {"audio-codec", List_AudioCodec},
    {"sample-rate", List_SampleRate},
    {"audio-bitrate", List_AudioBitrate},
    {"channels", List_Channels},
    {"sample-size", List_SampleSize},
    {"aspect", List_Aspect},
    {"video-bitrate", List_VideoBitrate},
}};

// The item the value names: its exact text ignoring case, or the text with its unit left off
// ("44100" for "44100 Hz", "128" for "128 kbps").
qsizetype findItem(const ValueList& list, const QString& value) {
    for (qsizetype i = 0; i < list.count(); ++i) {
        const QString& text = list.items().at(i).text;
        if (text.compare(value, Qt::CaseInsensitive) == 0 ||
            text.startsWith(value + QLatin1Char(' '), Qt::CaseInsensitive))
            return i;
    }
    return -1;
}

QString offered(const ValueList& list) {
    QStringList texts;
    for (const ValueListItem& item : list.items())
        texts << item.text;
    return texts.isEmpty() ? QStringLiteral("this preset offers no values here")
                           : QStringLiteral("choose one of: ") + texts.join(QStringLiteral(", "));
}

QString selectIn(FormatSetting& settings, int list, const QString& value) {
    ValueList& target = settings.Combo_OutputFile.at(static_cast<size_t>(list));
    const qsizetype index = findItem(target, value);
    if (index < 0) return QStringLiteral("\"%1\" is not offered; %2").arg(value, offered(target));
    if (!target.enabled) return QStringLiteral("the preset fixes this value");
    settings.selectListIndex(list, index);
    return QString();
}

// A number typed into a box, after "Custom" has shown the boxes, as a user would do it; the box keeps
// it within its limits, and `clamped` tells what it kept instead.
QString typeNumber(FormatSetting& settings, int list, SpinField& box, const QString& value,
                   QString& clamped) {
    bool ok = false;
    const int number = value.toInt(&ok);
    if (!ok || number < 0) return QStringLiteral("needs a whole number");
    const qsizetype custom =
        findItem(settings.Combo_OutputFile.at(static_cast<size_t>(list)), QStringLiteral("Custom"));
    if (custom >= 0 && settings.Combo_OutputFile.at(static_cast<size_t>(list)).enabled)
        settings.selectListIndex(list, custom);
    if (!box.enabled) return QStringLiteral("the preset fixes this value");
    settings.boxChanged(box, QString::number(number));
    settings.boxLeft(box);
    if (box.text != QString::number(number))
        clamped = QStringLiteral("%1 is beyond this preset's limits, %2 used").arg(number).arg(box.text);
    return QString();
}

} // namespace

QString Cli_SetFields() {
    QStringList names;
    for (const ListField& field : kListFields)
        names << QLatin1String(field.name);
    names << QStringLiteral("width") << QStringLiteral("height") << QStringLiteral("quality");
    return names.join(QStringLiteral(", "));
}

QString Cli_ApplySet(FormatSetting& settings, const QString& field, const QString& value, QString& clamped) {
    clamped.clear();
    const QString name = field.toLower();
    if (name == QLatin1String("width"))
        return typeNumber(settings, List_FrameSize, settings.Txt_OutputVideoWidth, value, clamped);
    if (name == QLatin1String("height"))
        return typeNumber(settings, List_FrameSize, settings.Txt_OutputVideoHeight, value, clamped);
    if (name == QLatin1String("quality")) {
        for (const int radio : {Quality_High, Quality_Standard, Quality_SmallSize}) {
            if (Quality_Text(radio).compare(value, Qt::CaseInsensitive) != 0) continue;
            if (!settings.qualityEnabled) return QStringLiteral("the preset fixes this value");
            settings.setQuality(radio);
            return QString();
        }
        return QStringLiteral("choose one of: High, Standard, SmallSize");
    }
    for (const ListField& each : kListFields) {
        if (name != QLatin1String(each.name)) continue;
        // A plain number for the video bitrate is typed into its box when the list has no such item.
        if (each.list == List_VideoBitrate &&
            findItem(settings.Combo_OutputFile[List_VideoBitrate], value) < 0 && value.toInt() > 0)
            return typeNumber(settings, List_VideoBitrate, settings.Txt_OutputVideoBitrate, value, clamped);
        return selectIn(settings, each.list, value);
    }
    return QStringLiteral("unknown field; fields are ") + Cli_SetFields();
}

void Cli_ApplyPreset(FormatSetting& settings, OutputBrowser& browser, const CatalogueTable& presets,
                     qsizetype row) {
    settings.Preset_Apply(row);
    const QString maker = Cell_Get(presets, row, QStringLiteral("Maker"));
    if (maker == QLatin1String("VideoFormat"))
        browser.PanelActive = Panel_VideoFormats;
    else if (maker == QLatin1String("AudioFormat"))
        browser.PanelActive = Panel_AudioFormats;
    else if (maker == QLatin1String("WebFormat"))
        browser.PanelActive = Panel_WebFormats;
    else
        browser.PanelActive = Panel_Devices;
}

} // namespace morvane
