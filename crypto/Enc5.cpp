#include "Enc5.h"

#include "Enc1.h"
#include "Enc4.h"
#include "Encrypt_Mod.h"

namespace morvane {

namespace {

// Both forms of the length check: the text at set (its length plus 1) and the stored bytes at use.
bool textLengthPasses(qsizetype length) {
    return length + 1 >= 8 && length + 1 < 51;
}
bool storedLengthPasses(qsizetype count) {
    return count >= 8 && count < 51;
}

} // namespace

Enc5::Enc5() {
    morvane::StopProcessing = false;
}

bool Enc5::StopProcessing() const {
    return morvane::StopProcessing;
}

void Enc5::Set_StopProcessing(bool stop) {
    morvane::StopProcessing = stop;
}

bool Enc5::Set_Password(const QString& text) {
    const QString trimmed = text.trimmed();
    if (!textLengthPasses(trimmed.size())) return false;
    m_password = trimmed.toUtf8();
    return true;
}

bool Enc5::EncryptString(QByteArray& bytes) {
    return run(bytes, true);
}

bool Enc5::DecryptString(QByteArray& bytes) {
    return run(bytes, false);
}

bool Enc5::run(QByteArray& bytes, bool encrypt) {
    const auto fail = [] {
        morvane::StopProcessing = true;
        return false;
    };
    if (morvane::StopProcessing || bytes.isEmpty()) return fail();
    if (!storedLengthPasses(m_password.size())) return fail();

    Enc4 hash;
    hash.Set_HashMethod(m_hashMethod);
    const QByteArray keyText = hash.HashString(m_password);
    if (keyText.isEmpty() || m_cipherMethod != 0) return fail();

    Enc1 cipher;
    cipher.Set_KeyLength(m_keyLength);
    cipher.Set_EncryptRounds(m_cipherRounds);
    cipher.Set_Password(keyText);
    if (m_cipherProgress) cipher.Set_CipherProgress(m_cipherProgress);
    if (!cipher.ArcFour_String(bytes, encrypt)) return fail();
    return true;
}

} // namespace morvane
