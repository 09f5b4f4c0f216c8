// Hash front: picks the hash by method and hands back the digest as lowercase hexadecimal text in
// bytes. Main thread; reads and writes the process-wide StopProcessing.
#pragma once

#include <QByteArray>

#include <functional>

namespace morvane {

class Enc4 {
public:
    using ProgressHandler = std::function<void(int percent)>;

    bool StopProcessing() const;
    void Set_StopProcessing(bool stop);

    int HashMethod() const { return m_hashMethod; }
    void Set_HashMethod(int method) { m_hashMethod = method; }
    int HashRounds() const { return m_hashRounds; }
    // Checked against the method set at the time: 1 to 10 for methods 0-12 and 20-23 (else 1),
    // 3 to 15 for any other method (else 3).
    void Set_HashRounds(int rounds);

    // Raised with 100 when a digest is done.
    void Set_HashProgress(ProgressHandler handler) { m_hashProgress = std::move(handler); }

    // Method 0 is SHA-256 and method 1 SHA-224; other methods have no algorithm here and give an
    // empty array, as does a stopped run.
    QByteArray HashString(const QByteArray& bytes) const;

private:
    int m_hashMethod = 0;
    int m_hashRounds = 1;
    ProgressHandler m_hashProgress;
};

} // namespace morvane
