// The line cipher that every table file and the keyed constant block go through, and the
// hexadecimal text forms of its bytes. Main thread only; each call makes its own cipher object.
#pragma once

#include <QByteArray>
#include <QString>

#include <atomic>
#include <functional>

namespace morvane {

// Passphrase of the line cipher. Set once, first thing at start, before any line is ciphered.
inline QString Catalogue_Passphrase;
// The text it is set to; the build's table tool enciphers with the same one.
inline constexpr char Catalogue_PassphraseText[] = "Will not open the box!";

// One process-wide cancel flag, read by every cipher and hash object; a failed operation sets it.
extern std::atomic<bool> StopProcessing;

// Long cipher and hash runs give the event queue a turn through this hook (none by default), each
// Cipher_YieldInterval bytes and at the end of each round; a handler there may set StopProcessing.
// The front end installs one that lets messages through; a second call entering through it is
// not guarded against.
using CipherYield = std::function<void()>;
void Set_CipherYield(CipherYield yield);
void Cipher_Yield();
inline constexpr qsizetype Cipher_YieldInterval = 64 * 1024;

// Enciphers one line: uppercase hexadecimal, two digits for each byte of the enciphered text (UTF-8).
// When the cipher fails (an empty line, a passphrase it refuses) the line comes back as it is, cut at
// its first NUL, with StopProcessing set.
QString Line_Encipher(const QString& text);
// Turns such a line back into text, cut at its first NUL. A line that does not decipher gives
// whatever the cipher held when it failed, as text, with StopProcessing set; never an error.
QString Line_Decipher(const QString& hexText);

// Two uppercase digits for each byte.
QString Bytes_ToHex(const QByteArray& bytes);
// Trimmed, an optional "&H" dropped; empty gives no bytes, an odd length two zero bytes. A pair that
// is not hexadecimal gives the value of its leading hexadecimal digit, 0 if it has none ("1G" is 1).
QByteArray Hex_ToBytes(const QString& hexText);

} // namespace morvane
