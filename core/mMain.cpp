#include "mMain.h"

#include "Globals.h"

#include <QTextStream>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

namespace morvane {

namespace {
MessageHandler& messageHandler() {
    static MessageHandler handler;
    return handler;
}

QString twoDigits(std::int64_t value) {
    return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0'));
}
} // namespace

QString Trim_Spaces(const QString& text) {
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last && text.at(first) == QLatin1Char(' '))
        ++first;
    while (last > first && text.at(last - 1) == QLatin1Char(' '))
        --last;
    return text.mid(first, last - first);
}

double Round_HalfEven(double value) {
    const double floor = std::floor(value);
    const double diff = value - floor;
    if (diff > 0.5) return floor + 1.0;
    if (diff < 0.5) return floor;
    return std::fmod(floor, 2.0) == 0.0 ? floor : floor + 1.0;
}

QString Format_Seconds(std::int32_t seconds, bool longForm) {
    const std::int32_t hours = seconds / 3600;
    const std::int32_t minutes = seconds / 60 - hours * 60;
    const std::int32_t secs = seconds % 60;
    const QString text =
        twoDigits(hours) + QLatin1Char(':') + twoDigits(minutes) + QLatin1Char(':') + twoDigits(secs);
    return longForm ? Format_SecondsLong(text) : text;
}

QString Format_SecondsLong(const QString& hms) {
    const qsizetype colon = hms.indexOf(QLatin1Char(':'));
    if (colon < 0 || hms.size() < colon + 3 || hms.size() < 2) return hms;
    QString phrase;
    const int hours = hms.left(colon).toInt();
    if (hours != 0)
        phrase = QString::number(hours) + QStringLiteral(" hour") +
                 (hours > 1 ? QStringLiteral("s") : QString()) + QStringLiteral(", ");
    const QString minutesText = hms.mid(colon + 1, 2);
    if (minutesText != QStringLiteral("00")) {
        const int minutes = minutesText.toInt();
        const bool hadSomething = !phrase.isEmpty();
        phrase += QString::number(minutes) +
                  (minutes == 1 ? QStringLiteral(" minute") : QStringLiteral(" minutes"));
        phrase += hadSomething ? QStringLiteral(", and ") : QStringLiteral(" and ");
    } else if (hours != 0) {
        phrase += QStringLiteral("0 minutes, and ");
    }
    const int secs = hms.right(2).toInt();
    phrase +=
        QString::number(secs) + QStringLiteral(" second") + (secs == 1 ? QString() : QStringLiteral("s"));
    return phrase;
}

double Time_ToSeconds(std::int64_t microseconds) {
    return static_cast<double>(microseconds) / 1000000.0;
}

QString Format_TimeCode(std::int64_t microseconds) {
    const double t = Time_ToSeconds(microseconds);
    if (t < 0) return QStringLiteral("00:00:00.000");
    const auto whole = static_cast<std::int64_t>(t);
    const auto millis = static_cast<std::int64_t>((t - static_cast<double>(whole)) * 1000.0);
    return twoDigits(whole / 3600) + QLatin1Char(':') + twoDigits((whole / 60) % 60) + QLatin1Char(':') +
           twoDigits(whole % 60) + QLatin1Char('.') +
           QStringLiteral("%1").arg(millis, 3, 10, QLatin1Char('0'));
}

std::int64_t Time_FromPair(std::int32_t low, std::int32_t high) {
    const auto bits = (static_cast<std::uint64_t>(static_cast<std::uint32_t>(high)) << 32) |
                      static_cast<std::uint64_t>(static_cast<std::uint32_t>(low));
    return static_cast<std::int64_t>(bits);
}

std::int32_t Time_Low(std::int64_t microseconds) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(microseconds)));
}

std::int32_t Time_High(std::int64_t microseconds) {
    return static_cast<std::int32_t>(
        static_cast<std::uint32_t>(static_cast<std::uint64_t>(microseconds) >> 32));
}

std::int32_t Parse_IntOr(const QString& text, std::int32_t defaultValue) {
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty()) return defaultValue;
    bool ok = false;
    const double value = trimmed.toDouble(&ok);
    if (!ok || !std::isfinite(value)) return defaultValue;
    const double rounded = Round_HalfEven(value);
    if (rounded < -32768.0 || rounded > 32767.0) return defaultValue;
    return static_cast<std::int32_t>(rounded);
}

QString Format_Double(double value) {
    if (value == 0.0 || !std::isfinite(value)) return QStringLiteral("0");
    std::array<char, 400> buffer{};
    const auto result =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed);
    return QString::fromLatin1(buffer.data(), result.ptr - buffer.data());
}

int Filter_NumberKey(int& keyCode, const QString& boxText, int caretPosition) {
    const bool digit = keyCode >= 48 && keyCode <= 57;
    const bool minus = keyCode == 45 && caretPosition == 0 && !boxText.contains(QLatin1Char('-'));
    if (!(keyCode == 8 || keyCode == 0 || digit || minus)) keyCode = 0;
    return keyCode;
}

int Filter_FileNameKey(int& keyCode) {
    switch (keyCode) {
    case 34:
    case 42:
    case 47:
    case 58:
    case 60:
    case 62:
    case 63:
    case 92:
    case 124:
        keyCode = 0;
        break;
    default:
        break;
    }
    return keyCode;
}

void Set_MessageHandler(MessageHandler handler) {
    messageHandler() = std::move(handler);
}

int Show_Message(const QString& text, int flags, const QString& title, const QString& detail) {
    int answer = ID_OK;
    if (messageHandler()) {
        answer = messageHandler()(text, flags, title, detail);
    } else {
        QTextStream err(stderr);
        err << (title.isEmpty() ? QString() : title + QStringLiteral(": ")) << text
            << (detail.isEmpty() ? QString() : QStringLiteral(" ") + detail) << Qt::endl;
        const int buttons = flags & 7;
        answer = (buttons == MB_YESNO || buttons == MB_YESNOCANCEL) ? ID_YES : ID_OK;
    }
    Msg_Trail += QStringLiteral("(") + text + detail + QStringLiteral(")");
    return answer;
}

} // namespace morvane
