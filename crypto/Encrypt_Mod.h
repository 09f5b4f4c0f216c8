// The line cipher that every table file and the keyed constant block go through, and the
// hexadecimal text forms of its bytes. Main thread only; each call makes its own cipher object.
#pragma once

#include <QByteArray>
#include <QString>

#include <atomic>

namespace morvane {

// Passphrase of the line cipher. Set once, first thing at start, before any line is ciphered.
inline QString Catalogue_Passphrase;

// One process-wide cancel flag, read by every cipher and hash object; a failed operation sets it.
extern std::atomic<bool> StopProcessing;

// Enciphers one line: uppercase hexadecimal, two digits for each byte of the enciphered text.
QString Line_Encipher(const QString& text);
// Turns such a line back into text. A line that does not decipher gives garbled text, never an error.
QString Line_Decipher(const QString& hexText);

// Two uppercase digits for each byte.
QString Bytes_ToHex(const QByteArray& bytes);
// Trimmed, an optional "&H" dropped; empty gives no bytes, an odd length two zero bytes.
QByteArray Hex_ToBytes(const QString& hexText);

} // namespace morvane
