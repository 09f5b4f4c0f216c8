// Cipher front: hashes the password to a key text and runs the stream cipher with it. Main thread;
// reads and writes the process-wide StopProcessing, and a failed operation leaves it set.
#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

namespace morvane {

class Enc5 {
public:
    using ProgressHandler = std::function<void(int percent)>;

    // A new cipher starts with StopProcessing clear; the flag is shared, so this clears it for all.
    Enc5();

    bool StopProcessing() const;
    void Set_StopProcessing(bool stop);

    // Passed on to the stream cipher, which checks it.
    int KeyLength() const { return m_keyLength; }
    void Set_KeyLength(int bits) { m_keyLength = bits; }
    // Stored only; the stream cipher has no blocks.
    int BlockSize() const { return m_blockSize; }
    void Set_BlockSize(int size) { m_blockSize = size; }
    // Passed on to the stream cipher as its rounds, which it checks.
    int CipherRounds() const { return m_cipherRounds; }
    void Set_CipherRounds(int rounds) { m_cipherRounds = rounds; }
    // Passed on to the hash front.
    int HashMethod() const { return m_hashMethod; }
    void Set_HashMethod(int method) { m_hashMethod = method; }
    // 0 is the stream cipher; there is no other cipher, and any other value makes every operation fail.
    int CipherMethod() const { return m_cipherMethod; }
    void Set_CipherMethod(int method) { m_cipherMethod = method; }

    // Trimmed, and stored as UTF-8 bytes when 7 to 49 characters long; otherwise nothing is stored
    // and false comes back. Use wants 8 to 50 bytes, so 7 characters are taken here and fail later.
    bool Set_Password(const QString& text);
    const QByteArray& Password() const { return m_password; }

    // The stream cipher's progress, passed on.
    void Set_CipherProgress(ProgressHandler handler) { m_cipherProgress = std::move(handler); }

    // Replace the bytes in place; true on success. A failure sets StopProcessing.
    bool EncryptString(QByteArray& bytes);
    bool DecryptString(QByteArray& bytes);

private:
    bool run(QByteArray& bytes, bool encrypt);

    int m_keyLength = 128;
    int m_blockSize = 128;
    int m_cipherRounds = 1;
    int m_hashMethod = 0;
    int m_cipherMethod = 0;
    QByteArray m_password;
    ProgressHandler m_cipherProgress;
};

} // namespace morvane
