// The keyed constants: values that differ between builds (names, version, endpoints, folders, one
// limit), compiled in as one enciphered block and read by key. Main thread, before any window.
#pragma once

#include <QString>

namespace morvane {

// The enciphered block as the build compiled it in (hexadecimal text).
QString Constant_Block();

// The value of the key in the compiled block. A missing key or an empty value is a broken build:
// it says "KEY not found!" and ends the program at once.
QString Constant_Get(const QString& key);

// The same over any enciphered block, for the tool and for tests; "" when the key is missing.
QString Constant_Find(const QString& enciphered, const QString& key);

} // namespace morvane
