// Shared helpers of the application core: time texts, the guarded number parse, key filters and the
// message box wrapper. Pure functions of their arguments, apart from Show_Message, which goes
// through the handler that the front end installs. Main thread only.
#pragma once

#include <QString>

#include <cstdint>
#include <functional>

namespace morvane {

// Spaces only, as the stored texts are trimmed everywhere; tabs and line breaks stay.
QString Trim_Spaces(const QString& text);

// Rounds to nearest, ties to even: the one rounding rule of the program.
double Round_HalfEven(double value);

// "hh:mm:ss", hours at least two digits; with longForm an English phrase (Format_SecondsLong).
QString Format_Seconds(std::int32_t seconds, bool longForm);
QString Format_SecondsLong(const QString& hms);
// "hh:mm:ss.mmm" of a microsecond count; a negative count reads "00:00:00.000".
QString Format_TimeCode(std::int64_t microseconds);
double Time_ToSeconds(std::int64_t microseconds);

// The signed 64-bit microsecond count held as two 32-bit words; Low 0 with High 0x80000000 is "no value".
std::int64_t Time_FromPair(std::int32_t low, std::int32_t high);
std::int32_t Time_Low(std::int64_t microseconds);
std::int32_t Time_High(std::int64_t microseconds);

// The text as a 16-bit integer (fractions rounded half to even), or the default on any failure.
std::int32_t Parse_IntOr(const QString& text, std::int32_t defaultValue);

// Double as the shortest plain decimal text with "." (no exponent), as argument texts need it.
QString Format_Double(double value);

// Key filters of the text boxes; both return the key code, 0 for a refused key.
int Filter_NumberKey(int& keyCode, const QString& boxText, int caretPosition);
int Filter_FileNameKey(int& keyCode);

// Message box flags and answers, with the values the stored texts and callers use.
enum MessageFlags : int {
    MB_OK = 0,
    MB_OKCANCEL = 1,
    MB_YESNOCANCEL = 3,
    MB_YESNO = 4,
    MB_ICONCRITICAL = 16,
    MB_ICONQUESTION = 32,
    MB_ICONEXCLAMATION = 48,
    MB_ICONINFORMATION = 64,
};
enum MessageAnswer : int { ID_OK = 1, ID_CANCEL = 2, ID_YES = 6, ID_NO = 7 };

// Shows a box through the installed handler and appends "(" + text + detail + ")" to Msg_Trail.
int Show_Message(const QString& text, int flags, const QString& title, const QString& detail = QString());

// What Show_Message shows on: a window front end installs a message box, a terminal prints.
// Without a handler the text goes to standard error and the answer is the box's first button.
using MessageHandler =
    std::function<int(const QString& text, int flags, const QString& title, const QString& detail)>;
void Set_MessageHandler(MessageHandler handler);

} // namespace morvane
