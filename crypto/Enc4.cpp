#include "Enc4.h"

#include "Enc2.h"
#include "Encrypt_Mod.h"

namespace morvane {

bool Enc4::StopProcessing() const {
    return morvane::StopProcessing;
}

void Enc4::Set_StopProcessing(bool stop) {
    morvane::StopProcessing = stop;
}

void Enc4::Set_HashRounds(int rounds) {
    const bool shortMethod =
        (m_hashMethod >= 0 && m_hashMethod <= 12) || (m_hashMethod >= 20 && m_hashMethod <= 23);
    if (shortMethod)
        m_hashRounds = (rounds >= 1 && rounds <= 10) ? rounds : 1;
    else
        m_hashRounds = (rounds >= 3 && rounds <= 15) ? rounds : 3;
}

QByteArray Enc4::HashString(const QByteArray& bytes) const {
    Enc2 sha;
    switch (m_hashMethod) {
    case 0:
        sha.Set_HashMethod(1);
        break;
    case 1:
        sha.Set_HashMethod(0);
        break;
    default:
        return {};
    }
    sha.Set_HashRounds(m_hashRounds);
    QByteArray result = sha.HashString(bytes);
    if (!result.isEmpty() && m_hashProgress) m_hashProgress(100);
    return result;
}

} // namespace morvane
