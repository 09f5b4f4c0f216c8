#include "Input_FileInfo.h"

#include "Library_List.h"
#include "mMain.h"

#include <QLocale>

namespace morvane {

const InfoTexts& Info_Captions() {
    static const InfoTexts captions = {
        QStringLiteral("File"),          QStringLiteral("Duration"),   QStringLiteral("Size"),
        QStringLiteral("Video codec"),   QStringLiteral("Frame size"), QStringLiteral("Frame rate"),
        QStringLiteral("Video bitrate"), QStringLiteral("Aspect"),     QStringLiteral("Audio codec"),
        QStringLiteral("Sample rate"),   QStringLiteral("Channels"),
    };
    return captions;
}

InfoTexts Info_Empty() {
    InfoTexts texts;
    texts[Info_AudioCodec] = QStringLiteral("-");
    return texts;
}

namespace {

// The size cell keeps only the low word of the byte count; read it as unsigned.
QString sizeText(const FileViewMain& table, int row) {
    const auto bytes = static_cast<std::uint32_t>(table.longValue(row, FileCol::FileSize));
    return QLocale::c().formattedDataSize(static_cast<qint64>(bytes), 1, QLocale::DataSizeTraditionalFormat);
}

} // namespace

InfoTexts Info_Texts(const FileViewMain& table, int row) {
    if (row < 0 || row >= table.rows()) return Info_Empty();
    InfoTexts t;
    t[Info_FileName] = table.text(row, FileCol::FileName);
    t[Info_Duration] = table.text(row, FileCol::Duration);
    t[Info_FileSize] = sizeText(table, row);

    const bool video = table.boolValue(row, FileCol::VideoStream);
    const bool audio = table.boolValue(row, FileCol::AudioStream);
    t[Info_VideoCodec] = video ? table.text(row, FileCol::VideoCodecName) : QStringLiteral("-");
    const QString width = table.text(row, FileCol::VideoWidth);
    const QString height = table.text(row, FileCol::VideoHeight);
    t[Info_FrameSize] = (width == QLatin1String("-1") && height == QLatin1String("-1"))
                            ? QStringLiteral("Not Available")
                            : width + QStringLiteral(" x ") + height + QStringLiteral(" pixels");
    t[Info_FrameRate] = table.text(row, FileCol::VideoFrameRateNumerator) + QStringLiteral(" frames/second");
    t[Info_VideoBitrate] = Bitrate_Label(table.text(row, FileCol::VideoBitRate));
    const QString aspect = table.text(row, FileCol::VideoSampleAspectRatio).trimmed();
    t[Info_Aspect] =
        aspect.isEmpty() || aspect == QLatin1String("0") ? QStringLiteral("1:1") : Aspect_Label(aspect);

    t[Info_AudioCodec] = audio ? table.text(row, FileCol::AudioCodecName) : QStringLiteral("-");
    t[Info_SampleRate] = table.text(row, FileCol::AudioSampleRate) + QStringLiteral(" Hz");
    t[Info_Channels] = Channels_Label(table.text(row, FileCol::AudioChannels));
    if (!audio) {
        t[Info_SampleRate] = QStringLiteral("-");
        t[Info_Channels] = QStringLiteral("-");
        t[Info_AudioCodec] = QStringLiteral("-");
    }
    return t;
}

} // namespace morvane
