// The SHA-2 family as the hash front uses it: SHA-224 (method 0) and SHA-256 (method 1), written from
// the published standard. Main thread; long inputs yield through Cipher_Yield and stop on
// StopProcessing.
#pragma once

#include <QByteArray>

namespace morvane {

class Enc2 {
public:
    int HashRounds() const { return m_hashRounds; }
    // 1 to 10; any other value becomes 1.
    void Set_HashRounds(int rounds);
    int HashMethod() const { return m_hashMethod; }
    // 0 to 5; any other value becomes 1.
    void Set_HashMethod(int method);

    // The digest as lowercase hexadecimal text, in bytes: 56 digits for SHA-224, 64 for SHA-256.
    // Each round past the first hashes the digest text of the round before. Methods 2 to 5 have no
    // algorithm here, and a stopped run has no digest: both give an empty array.
    QByteArray HashString(const QByteArray& bytes) const;

private:
    int m_hashRounds = 1;
    int m_hashMethod = 1;
};

} // namespace morvane
