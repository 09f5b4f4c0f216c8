#include "Encrypt_Mod.h"

#include "Enc5.h"

namespace morvane {

std::atomic<bool> StopProcessing{false};

namespace {

CipherYield yieldHandler;

// The line cipher's fixed setting. KeyLength 8 is not a valid length and the stream cipher turns it
// into 128, a 16-byte key; it stays 8 so that existing files keep deciphering.
void configureLineCipher(Enc5& cipher) {
    cipher.Set_StopProcessing(false);
    cipher.Set_Password(Catalogue_Passphrase);
    cipher.Set_HashMethod(0);
    cipher.Set_CipherMethod(0);
    cipher.Set_KeyLength(8);
    cipher.Set_BlockSize(128);
    cipher.Set_CipherRounds(5);
}

bool isHexText(const QString& text) {
    for (const QChar c : text) {
        const char16_t u = c.unicode();
        if (!((u >= '0' && u <= '9') || (u >= 'A' && u <= 'F') || (u >= 'a' && u <= 'f'))) return false;
    }
    return true;
}

int hexDigit(QChar c) {
    const char16_t u = c.unicode();
    if (u >= '0' && u <= '9') return u - '0';
    if (u >= 'A' && u <= 'F') return u - 'A' + 10;
    if (u >= 'a' && u <= 'f') return u - 'a' + 10;
    return -1;
}

QString cutAtNul(QString text) {
    const qsizetype nul = text.indexOf(QChar(u'\0'));
    if (nul >= 0) text.truncate(nul);
    return text;
}

} // namespace

void Set_CipherYield(CipherYield yield) {
    yieldHandler = std::move(yield);
}

void Cipher_Yield() {
    // A copy, so that a handler may replace itself while it runs.
    if (const CipherYield handler = yieldHandler) handler();
}

QString Bytes_ToHex(const QByteArray& bytes) {
    return QString::fromLatin1(bytes.toHex().toUpper());
}

QByteArray Hex_ToBytes(const QString& hexText) {
    QString digits = hexText.trimmed();
    if (digits.startsWith(QStringLiteral("&H"), Qt::CaseInsensitive)) digits.remove(0, 2);
    if (digits.isEmpty()) return {};
    if (digits.size() % 2 != 0) return QByteArray(2, '\0');
    QByteArray bytes(digits.size() / 2, '\0');
    for (qsizetype k = 0; k < bytes.size(); ++k) {
        const int high = hexDigit(digits[2 * k]);
        const int low = hexDigit(digits[2 * k + 1]);
        const int value = high < 0 ? 0 : (low < 0 ? high : high * 16 + low);
        bytes[k] = static_cast<char>(value);
    }
    return bytes;
}

QString Line_Encipher(const QString& text) {
    Enc5 cipher;
    configureLineCipher(cipher);
    QByteArray bytes = text.toUtf8();
    QString result;
    if (cipher.EncryptString(bytes)) {
        result = Bytes_ToHex(bytes).trimmed();
        if (!isHexText(result)) {
            result.clear();
            StopProcessing = true;
        }
    } else {
        // The line goes out as it came in, and StopProcessing stays as the cipher left it: set.
        result = text;
    }
    return cutAtNul(result);
}

QString Line_Decipher(const QString& hexText) {
    Enc5 cipher;
    configureLineCipher(cipher);
    QByteArray bytes = Hex_ToBytes(hexText);
    // A failure leaves in the array what it held at that point, and that is turned into text too.
    cipher.DecryptString(bytes);
    return cutAtNul(QString::fromUtf8(bytes));
}

} // namespace morvane
