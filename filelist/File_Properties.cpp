#include "File_Properties.h"

#include "CheckedMath.h"
#include "File_Names.h"
#include "Library_List.h"
#include "mMain.h"

#include <QFileInfo>
#include <QLocale>
#include <QMimeDatabase>

#include <cmath>
#include <vector>

#include <unistd.h>

namespace morvane {

const PropertyTexts& Property_Captions() {
    static const PropertyTexts captions = {
        QStringLiteral("Name :"),       QStringLiteral("Extension :"),    QStringLiteral("Type :"),
        QStringLiteral("Size :"),       QStringLiteral("Created :"),      QStringLiteral("Accessed :"),
        QStringLiteral("Modified :"),   QStringLiteral("Attributes :"),   QStringLiteral("Duration :"),
        QStringLiteral("Codec :"),      QStringLiteral("Frame Size :"),   QStringLiteral("Bit Rate :"),
        QStringLiteral("Frame Rate :"), QStringLiteral("Aspect Ratio :"), QStringLiteral("Codec :"),
        QStringLiteral("Bit Rate :"),   QStringLiteral("Sample Rate :"),  QStringLiteral("Channel(s) :"),
        QStringLiteral("Title :"),      QStringLiteral("Comment :"),      QStringLiteral("Author :"),
        QStringLiteral("Album :"),      QStringLiteral("Year :"),         QStringLiteral("Track :"),
        QStringLiteral("Genre :"),      QStringLiteral("Copyright :"),
    };
    return captions;
}

bool Is_NotAvailable(const QString& text) {
    const QString t = Trim_Spaces(text);
    return t.isEmpty() || t == QLatin1String("0") || t == QLatin1String("x") ||
           t == QLatin1String("-1 x -1") || t == QLatin1String("-1") || t == QLatin1String("1:1");
}

namespace {

// Rounds half away from zero, as a "0.00" format mask does, not half to even.
QString fixedPoint(long double value, int decimals) {
    const long double scale = std::pow(10.0L, decimals);
    return QString::number(static_cast<double>(std::round(value * scale) / scale), 'f', decimals);
}

// A long double holds every 64-bit byte count exactly, and dividing by 1024 only moves the exponent,
// so the unit and the rounding see the exact value.
QString sizeText(long double value, const QString& plain) {
    if (value < 1024) return plain + QStringLiteral(" bytes");
    static const std::array<QString, 8> units = {
        QStringLiteral(" kB"), QStringLiteral(" MB"), QStringLiteral(" GB"), QStringLiteral(" TB"),
        QStringLiteral(" PB"), QStringLiteral(" EB"), QStringLiteral(" ZB"), QStringLiteral(" YB")};
    for (std::size_t i = 0; i < units.size(); ++i) {
        int decimals = -1;
        if (value < 10240)
            decimals = 2;
        else if (value < 102400)
            decimals = 1;
        else if (value < 1024000 || i + 1 == units.size()) // no unit past YB: whole YB
            decimals = 0;
        if (decimals >= 0) return fixedPoint(value / 1024, decimals) + units[i];
        value /= 1024;
    }
    return {};
}

// The mask "###,###,###,###,###": every place is optional, so zero shows no digit at all.
QString groupedBytes(qint64 bytes) {
    if (bytes == 0) return {};
    return QLocale(QLocale::English, QLocale::UnitedStates).toString(bytes);
}

void setIfAvailable(QString& text, const QString& suffix) {
    if (text != QLatin1String("Not Available")) text += suffix;
}

bool inGroup(uint gid) {
    if (gid == ::getegid()) return true;
    const int count = ::getgroups(0, nullptr);
    if (count <= 0) return false;
    std::vector<gid_t> groups(static_cast<std::size_t>(count));
    const int got = ::getgroups(count, groups.data());
    for (int i = 0; i < got; ++i)
        if (groups[static_cast<std::size_t>(i)] == gid) return true;
    return false;
}

// The write bit of the class this user falls in. Root may write anyway, but a file without its
// write bits is still meant to be left alone, so the bits decide and not access(2).
bool readOnly(const QFileInfo& info) {
    const QFile::Permissions bits = info.permissions();
    if (info.ownerId() == ::geteuid()) return !(bits & QFile::WriteOwner);
    if (inGroup(info.groupId())) return !(bits & QFile::WriteGroup);
    return !(bits & QFile::WriteOther);
}

QString permissionText(QFile::Permissions bits) {
    static const std::array<std::pair<QFile::Permission, char>, 9> order = {{
        {QFile::ReadOwner, 'r'},
        {QFile::WriteOwner, 'w'},
        {QFile::ExeOwner, 'x'},
        {QFile::ReadGroup, 'r'},
        {QFile::WriteGroup, 'w'},
        {QFile::ExeGroup, 'x'},
        {QFile::ReadOther, 'r'},
        {QFile::WriteOther, 'w'},
        {QFile::ExeOther, 'x'},
    }};
    QString text;
    for (const auto& [bit, letter] : order)
        text += QLatin1Char(bits & bit ? letter : '-');
    return text;
}

void fillFromDisk(const QString& path, PropertyTexts& v) {
    const QFileInfo info(path);
    if (path.isEmpty() || !info.exists()) return;
    v[Prop_Type] = File_TypeText(path);
    v[Prop_Size] = Format_FileSize(info.size()) + QStringLiteral(" (") + groupedBytes(info.size()) +
                   QStringLiteral(" bytes)");
    v[Prop_Created] = Format_FileTime(info.birthTime());
    v[Prop_Accessed] = Format_FileTime(info.lastRead());
    v[Prop_Modified] = Format_FileTime(info.lastModified());
    v[Prop_Attributes] = File_Attributes(path);
}

} // namespace

QString Format_FileSize(qint64 bytes) {
    return sizeText(static_cast<long double>(bytes), QString::number(bytes));
}

QString Format_FileSize(const QString& value) {
    bool whole = false;
    const qint64 bytes = value.trimmed().toLongLong(&whole);
    if (whole) return Format_FileSize(bytes);
    try {
        const double number = textToNumber(value);
        return sizeText(number, Format_Double(number));
    } catch (const RunTimeError&) {
        return {};
    }
}

QString Format_FileTime(const QDateTime& time) {
    if (!time.isValid()) return {};
    return QLocale::c().toString(time.toLocalTime(), QStringLiteral("dddd, MMMM dd, yyyy, hh:mm:ss AP"));
}

QString File_TypeText(const QString& path) {
    const QMimeType type = QMimeDatabase().mimeTypeForFile(path, QMimeDatabase::MatchExtension);
    if (type.isValid() && !type.isDefault() && !type.comment().isEmpty()) return type.comment();
    const QString extension = File_ExtensionName(path).toUpper();
    return extension.isEmpty() ? QStringLiteral("File") : extension + QStringLiteral(" File");
}

QString File_Attributes(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists()) return {};
    QString words;
    if (info.fileName().startsWith(QLatin1Char('.'))) words += QStringLiteral("Hidden,");
    if (readOnly(info)) words += QStringLiteral("Read-only,");
    if (words.isEmpty()) words += QStringLiteral("Normal,");
    const QString owner = info.owner().isEmpty() ? QString::number(info.ownerId()) : info.owner();
    words += permissionText(info.permissions()) + QStringLiteral(",Owner: ") + owner;
    return words.replace(QLatin1Char(','), QStringLiteral(", "));
}

FileProperties Read_Properties(const FileViewMain& table, int row) {
    FileProperties p;
    PropertyTexts& v = p.values;
    if (row >= 0 && row < table.rows()) {
        p.fileName = table.text(row, FileCol::FileName);
        p.path = table.text(row, FileCol::FilePath) + p.fileName;
        p.thumbnail = Trim_Spaces(table.text(row, FileCol::Thumbnail));

        v[Prop_Name] = File_BaseName(p.fileName);
        v[Prop_Extension] = File_ExtensionName(p.fileName).toUpper();
        fillFromDisk(p.path, v);
        v[Prop_Duration] = table.text(row, FileCol::Duration);

        // The reader leaves its own zeros in the cells of a stream that isn't there; the flags decide.
        if (table.boolValue(row, FileCol::VideoStream)) {
            v[Prop_VideoCodec] = table.text(row, FileCol::VideoCodecName);
            v[Prop_FrameSize] = table.text(row, FileCol::VideoWidth) + QStringLiteral(" x ") +
                                table.text(row, FileCol::VideoHeight);
            v[Prop_VideoBitRate] = Bitrate_Label(table.text(row, FileCol::VideoBitRate));
            v[Prop_FrameRate] = table.text(row, FileCol::VideoFrameRateNumerator);
            v[Prop_Aspect] = Aspect_Label(table.text(row, FileCol::VideoSampleAspectRatio));
        }
        if (table.boolValue(row, FileCol::AudioStream)) {
            v[Prop_AudioCodec] = table.text(row, FileCol::AudioCodecName);
            v[Prop_AudioBitRate] = Bitrate_Label(table.text(row, FileCol::AudioBitRate));
            v[Prop_SampleRate] = table.text(row, FileCol::AudioSampleRate);
            v[Prop_Channels] = Channels_Label(table.text(row, FileCol::AudioChannels));
        }
        for (int i = Prop_Title; i < Prop_Count; ++i)
            v[i] = table.text(row, FileCol::FileTitle + (i - Prop_Title));
    }

    for (QString& text : v)
        if (Is_NotAvailable(text)) text = QStringLiteral("Not Available");
    // Units only after the walk, so that "-1 pixels" or "0 Hz" never shows.
    setIfAvailable(v[Prop_FrameSize], QStringLiteral(" pixels"));
    setIfAvailable(v[Prop_FrameRate], QStringLiteral(" frames/second"));
    setIfAvailable(v[Prop_SampleRate], QStringLiteral(" Hz"));
    return p;
}

} // namespace morvane
