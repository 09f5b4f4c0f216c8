// The failure report: the files that failed to import or convert, each with its failure text. The
// list lives here; a window (or a terminal) shows it through a ReportSink, which also disables and
// later re-enables the main window. Main thread only.
#pragma once

#include <QList>
#include <QString>

namespace morvane {

struct ReportEntry {
    QString text;   // the file name
    QString second; // the failure text
};

// What the window shows for one Report_Show: caption, message with its font size, icon.
struct ReportForm {
    QString caption;
    QString message;
    int messageSize = 12;
    int icon = 10;    // index in the shared icon store
    int iconSize = 0; // 3 for the protected-files form, 0 leaves the store's default
    bool protectedMedia = false;
    QList<ReportEntry> entries; // all entries, unfiltered
};

class ReportSink {
public:
    virtual ~ReportSink() = default;
    // Disables the main window and shows the form over it, without blocking.
    virtual void Show_Report(const ReportForm& form) = 0;
};

// The sink that Report_Show uses; nullptr (the default) shows nothing.
void Set_ReportSink(ReportSink* sink);

// The decoder's words for a file it can't read; a report that holds them is about protected media.
inline const QString kProtectedMediaText = QStringLiteral("Invalid data found when processing input");

void Report_Clear();
void Report_Add(const QString& fileName, const QString& message);
const QList<ReportEntry>& Report_Entries();

// The form for the current entries, or nothing (false) when the list is empty.
bool Report_Form(const QString& caption, const QString& message, ReportForm& form);
void Report_Show(const QString& caption, const QString& message);

// The text appended to the report endpoint: entries as "name,text," until the text passes 1800
// characters (the entry that passes stays), "#" removed, framed as
// "inputfailed," + major + minor + trimmed text + "@@" + randomValue.
QString Report_SendText(const QList<ReportEntry>& entries, int majorVersion, int minorVersion,
                        int randomValue);
// The whole part of a random number in 1 to 1000.
int Report_RandomNumber();

} // namespace morvane
