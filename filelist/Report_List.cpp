#include "Report_List.h"

#include "mMain.h"

#include <QRandomGenerator>

namespace morvane {

namespace {

constexpr qsizetype kSendLimit = 1800;

QList<ReportEntry>& entries() {
    static QList<ReportEntry> list;
    return list;
}

ReportSink*& sink() {
    static ReportSink* current = nullptr;
    return current;
}

} // namespace

void Set_ReportSink(ReportSink* reportSink) {
    sink() = reportSink;
}

void Report_Clear() {
    entries().clear();
}

void Report_Add(const QString& fileName, const QString& message) {
    entries().append(ReportEntry{fileName, message});
}

const QList<ReportEntry>& Report_Entries() {
    return entries();
}

bool Report_Form(const QString& caption, const QString& message, ReportForm& form) {
    bool protectedMedia = false;
    for (const ReportEntry& entry : entries())
        if (Trim_Spaces(entry.second).contains(kProtectedMediaText)) protectedMedia = true;
    if (entries().isEmpty()) return false;

    form = ReportForm{};
    form.protectedMedia = protectedMedia;
    form.entries = entries();
    if (protectedMedia) {
        form.caption = QStringLiteral("DRM Protection");
        form.message = QStringLiteral("These files are copy-protected and can not be converted.");
        form.messageSize = 10;
        form.icon = 41;
        form.iconSize = 3;
    } else {
        form.caption = caption;
        form.message = message;
        form.messageSize = 12;
        form.icon = 10;
    }
    return true;
}

void Report_Show(const QString& caption, const QString& message) {
    ReportForm form;
    if (!Report_Form(caption, message, form)) return;
    if (sink() != nullptr) sink()->Show_Report(form);
}

QString Report_SendText(const QList<ReportEntry>& list, int majorVersion, int minorVersion, int randomValue) {
    QString text;
    for (const ReportEntry& entry : list) {
        text += entry.text + QLatin1Char(',') + entry.second + QLatin1Char(',');
        if (text.size() > kSendLimit) break;
    }
    text.remove(QLatin1Char('#'));
    return QStringLiteral("inputfailed,") + QString::number(majorVersion) + QString::number(minorVersion) +
           Trim_Spaces(text) + QStringLiteral("@@") + QString::number(randomValue);
}

int Report_RandomNumber() {
    return static_cast<int>(QRandomGenerator::global()->bounded(1000)) + 1;
}

} // namespace morvane
