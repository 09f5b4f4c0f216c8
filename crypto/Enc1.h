// The stream cipher: the key is expanded, turned into a 256-byte permutation, and the data passes
// several rounds of ArcFour over it; an enciphered length trailer of 8 bytes goes behind the data.
// Main thread; long runs yield through Cipher_Yield and stop on StopProcessing.
#pragma once

#include <QByteArray>

#include <array>
#include <cstdint>
#include <functional>

namespace morvane {

class Enc1 {
public:
    using ProgressHandler = std::function<void(int percent)>;
    using KeyBox = std::array<std::uint8_t, 256>;

    int KeyLength() const { return m_keyLength; }
    // Bits: 128 to 448 in steps of 32, or 512 to 1024 in steps of 64; any other value becomes 128.
    void Set_KeyLength(int bits);
    int EncryptRounds() const { return m_encryptRounds; }
    // 1 to 10; any other value becomes 1.
    void Set_EncryptRounds(int rounds);
    const QByteArray& Password() const { return m_password; }
    void Set_Password(const QByteArray& bytes) { m_password = bytes; }

    // Raised with the percentage of work done, 0 first and 100 last.
    void Set_CipherProgress(ProgressHandler handler) { m_cipherProgress = std::move(handler); }

    // Enciphers (data + 8-byte trailer) or deciphers in place; true on success. Fails without a
    // password, on empty data, on a stop, and when deciphering a trailer that does not fit: the
    // array then holds what it held at that point.
    bool ArcFour_String(QByteArray& bytes, bool encrypt);

    // KeyLength / 8 key bytes: the password's first bytes, the rest taken from the password's
    // permutation at the same positions.
    static QByteArray EvaluateKey(const QByteArray& password, int keyLength);
    // The key-mixed permutation of 0..255; rounds clamped to 15..99. An empty key gives 0..255.
    static KeyBox Make_Permutation(const QByteArray& key, int rounds);
    // XORs each byte with a position-dependent value, rounds (clamped to 2..10) times; its own inverse.
    static void Scramble_Bytes(QByteArray& bytes, int rounds);

private:
    bool streamCore(QByteArray& data, const KeyBox& box) const;
    void reportProgress(int percent) const;

    int m_keyLength = 128;
    int m_encryptRounds = 1;
    QByteArray m_password;
    ProgressHandler m_cipherProgress;
};

} // namespace morvane
