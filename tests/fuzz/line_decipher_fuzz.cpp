// Line_Decipher over arbitrary text, and the line cipher's round trip for the same text.
#include "Encrypt_Mod.h"
#include "FuzzSupport.h"

using namespace morvane;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Catalogue_Passphrase = QString::fromLatin1(Catalogue_PassphraseText);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    StopProcessing = false;
    const QString plain = Line_Decipher(text);
    fuzz::require(!plain.contains(QChar(u'\0')));

    // Any text without a NUL comes back from its enciphered line unchanged.
    if (!text.isEmpty() && !text.contains(QChar(u'\0'))) {
        StopProcessing = false;
        const QString line = Line_Encipher(text);
        fuzz::require(!StopProcessing);
        fuzz::require(Line_Decipher(line) == text);
    }
    return 0;
}
