// Lookup in the deciphered keyed constant block: lines of "KEY","VALUE" joined by CR LF.
#pragma once

#include <QString>

namespace morvane {

// The value of the first line that quotes the key (case ignored), with every occurrence of the key,
// every comma and every double quote removed; "" when no line quotes it.
QString Constant_Lookup(const QString& plainBlock, const QString& key);

} // namespace morvane
