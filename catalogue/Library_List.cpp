#include "Library_List.h"

#include "CheckedMath.h"
#include "mMain.h"

#include <QRegularExpression>

#include <array>
#include <cmath>
#include <utility>

namespace morvane {

namespace {

// The sizes past 1920 x 1080 come last, the upright phone picture after them; a format offers only
// the sizes within its bounds.
constexpr std::array<const char*, 32> kFrameSizes = {
    "Original",    "80 x 60",     "96 x 72",     "128 x 96",   "160 x 120",  "176 x 120",   "176 x 144",
    "192 x 144",   "240 x 180",   "240 x 160",   "320 x 200",  "320 x 240",  "352 x 288",   "480 x 320",
    "640 x 360",   "640 x 480",   "720 x 480",   "720 x 576",  "768 x 576",  "800 x 480",   "854 x 480",
    "960 x 540",   "960 x 640",   "1024 x 576",  "1024 x 600", "1280 x 720", "1440 x 1080", "1920 x 1080",
    "2560 x 1440", "3840 x 2160", "1080 x 1920", "Custom"};

constexpr std::array<const char*, 16> kFrameRates = {
    "Original", "1 fps",      "2 fps",  "3 fps",  "5 fps",     "10 fps", "12 fps", "15 fps",
    "20 fps",   "23.976 fps", "24 fps", "25 fps", "29.97 fps", "30 fps", "50 fps", "60 fps"};

constexpr std::array<const char*, 4> kAspectRatios = {"Smart Fit", "4:3", "16:9", "Original"};

// The video rows of the open dialog's filter, without its first "All Supported Video Files" row.
constexpr std::array<const char*, 28> kVideoFilters = {
    "3GPP Files (*.3gp;*.3gpp)|*.3gp;*.3gpp;|",
    "3GPP2 Files (*.3gp2;*.3g2;*.3gpp2;)|*.3gp2;*.3g2;*.3gpp2;|",
    "Apple Video Files (*.m4v)|*.m4v;|",
    "Audio Video Interleave Files (*.avi;*.ivf;*.div;*.divx)|*.avi;*.ivf;*.div;*.divx;|",
    "AVCHD Files (*.mts;*.m2ts)|*.mts;*.m2ts;|",
    "Anime Music Video Files (*.amv)|*.amv;|",
    "Blu-ray (*.m2ts)|*.m2ts;|",
    "Digital Video Files (*.dv)|*.dv;|",
    "Flash Video Files (*.flv;*.f4v)|*.flv;*.f4v;|",
    "FLIC Files (*.flc;*.fli)|*.flc;*.fli;|",
    "Matroska Video (*.mkv)|*.mkv;|",
    "MPEG Video Files (*.mpg;*.mpeg;*.mpa;*.dat;*.vob)|*.mpg;*.mpeg;*.mpa;*.dat;*.vob;|",
    "MPEG4 Video Files (*.mp4;*.m4v)|*.mp4;*.m4v;|",
    "MXF Files (*.mxf)|*.mxf;|",
    "Microsoft Digital Video Files (*.dvr-ms)|*.dvr-ms;|",
    "Nullsoft Stream Video Files (*.nsv)|*.nsv;|",
    "OGV Files (*.ogv)|*.ogv;|",
    "Quick Time Files (*.mov;*.qt)|*.mov;*.qt;|",
    "Real Media Files (*.rm;*.rmvb)|*.rm;*.rmvb;|",
    "Raw h.264 Video Files (*.h264)|*.h264;|",
    "Tivo Video Files (*.tivo)|*.tivo;|",
    "Unprotected VOB Files (*.vob)|*.vob;|",
    "Video CD Files (*.dat)|*.dat;|",
    "Video Transport Stream Files (*.ts;*.tp;*.trp)|*.ts;*.tp;*.trp;|",
    "VRO Files (*.vro)|*.vro;|",
    "Windows Media Files (*.wmv;*.asf)|*.wmv;*.asf;|",
    "Windows Recorded TV Show Files (*.wtv)|*.wtv;|",
    "WebM Files (*.webm)|*.webm;",
};

constexpr std::array<const char*, 5> kImageFilters = {
    "PNG - Portable Network Graphics File |*.png|", "JPG - JPEG File |*.jpg|",
    "GIF - CompuServe GIF File |*.gif|", "BMP - Windows Bitmap File |*.bmp|", "TIF - Tag Image File |*.tif"};

template <std::size_t N>
QString joinLibrary(const std::array<const char*, N>& entries) {
    QString list;
    for (const char* entry : entries) {
        const QString item = Trim_Spaces(QString::fromLatin1(entry));
        if (!item.isEmpty()) list += item + QLatin1Char(';');
    }
    return list;
}

template <std::size_t N>
QString concatenate(const std::array<const char*, N>& entries) {
    QString text;
    for (const char* entry : entries)
        text += QLatin1String(entry);
    return text;
}

} // namespace

QString Library_List(int kind) {
    switch (kind) {
    case 1:
        return joinLibrary(kFrameSizes);
    case 2:
        return joinLibrary(kFrameRates);
    case 3:
        return joinLibrary(kAspectRatios);
    default:
        return QString();
    }
}

QString Filter_Video() {
    return concatenate(kVideoFilters);
}

QString Filter_Image() {
    return concatenate(kImageFilters);
}

QString Qt_DialogFilter(const QString& windowsFilter) {
    const QStringList parts = windowsFilter.split(QLatin1Char('|'));
    QStringList rows;
    static const QRegularExpression trailingPatterns(QStringLiteral("\\s*\\([^()]*\\)\\s*$"));
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString description = parts.at(i);
        description.remove(trailingPatterns);
        QStringList patterns = parts.at(i + 1).split(QLatin1Char(';'), Qt::SkipEmptyParts);
        for (QString& p : patterns)
            p = p.trimmed();
        rows << description.trimmed() + QStringLiteral(" (") + patterns.join(QLatin1Char(' ')) +
                    QLatin1Char(')');
    }
    return rows.join(QStringLiteral(";;"));
}

QString Bitrate_Label(const QString& value) {
    const QString trimmed = Trim_Spaces(value);
    if (trimmed == QLatin1String("-1") || trimmed == QLatin1String("0")) return value;
    try {
        return Format_Double(std::trunc(textToNumber(trimmed) / 1000.0)) + QStringLiteral(" kbps");
    } catch (const RunTimeError&) {
        return QString();
    }
}

QString Channels_Label(const QString& value) {
    const QString trimmed = Trim_Spaces(value);
    if (trimmed == QLatin1String("-1") || trimmed == QLatin1String("0")) return value;
    if (trimmed == QLatin1String("1")) return QStringLiteral("1 Channel (Mono)");
    if (trimmed == QLatin1String("2")) return QStringLiteral("2 Channels (Stereo)");
    return trimmed + QStringLiteral(" Channels");
}

QString Aspect_Label(const QString& value) {
    static const std::array<std::pair<const char*, const char*>, 13> labels = {{
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
    }};
    QString label = value + QStringLiteral(":1");
    for (const auto& [text, name] : labels)
        if (value == QLatin1String(text)) {
            label = QString::fromLatin1(name);
            break;
        }
    return label.replace(QLatin1Char(','), QLatin1Char('.'));
}

} // namespace morvane
