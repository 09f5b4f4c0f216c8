#include "Enc1.h"

#include "Encrypt_Mod.h"

#include <algorithm>

namespace morvane {

namespace {

constexpr std::array<int, 20> ValidKeyLengths = {128, 160, 192, 224, 256, 288, 320, 352, 384, 416,
                                                 448, 512, 576, 640, 704, 768, 832, 896, 960, 1024};
constexpr int KeyBoxRounds = 25;
constexpr int TrailerBytes = 8;
constexpr int TrailerRounds = 5;
constexpr qint64 FixedPointScale = 10000; // four decimal places

QByteArray trailerOf(qint64 value) {
    QByteArray bytes(TrailerBytes, '\0');
    for (int b = 0; b < TrailerBytes; ++b)
        bytes[b] = static_cast<char>((static_cast<quint64>(value) >> (8 * b)) & 0xff);
    return bytes;
}

qint64 valueOf(const QByteArray& trailer) {
    quint64 value = 0;
    for (int b = TrailerBytes - 1; b >= 0; --b)
        value = (value << 8) | static_cast<unsigned char>(trailer[b]);
    return static_cast<qint64>(value);
}

// A non-negative fixed-point number as a whole number, to nearest, ties to even.
qint64 roundHalfEven(qint64 fixed) {
    qint64 whole = fixed / FixedPointScale;
    const qint64 rest = fixed % FixedPointScale;
    if (rest > FixedPointScale / 2 || (rest == FixedPointScale / 2 && whole % 2 != 0)) ++whole;
    return whole;
}

} // namespace

void Enc1::Set_KeyLength(int bits) {
    const bool valid =
        std::find(ValidKeyLengths.begin(), ValidKeyLengths.end(), bits) != ValidKeyLengths.end();
    m_keyLength = valid ? bits : 128;
}

void Enc1::Set_EncryptRounds(int rounds) {
    m_encryptRounds = (rounds >= 1 && rounds <= 10) ? rounds : 1;
}

QByteArray Enc1::EvaluateKey(const QByteArray& password, int keyLength) {
    const qsizetype n = keyLength / 8;
    QByteArray key = password.left(n);
    if (password.size() < n) {
        const KeyBox box = Make_Permutation(password, KeyBoxRounds);
        for (qsizetype k = password.size(); k < n; ++k)
            key.append(static_cast<char>(box[static_cast<size_t>(k % 256)]));
    }
    return key;
}

Enc1::KeyBox Enc1::Make_Permutation(const QByteArray& key, int rounds) {
    rounds = std::clamp(rounds, 15, 99);
    KeyBox s{};
    KeyBox k{};
    for (int i = 0; i < 256; ++i) {
        s[i] = static_cast<std::uint8_t>(i);
        k[i] = key.isEmpty() ? 0 : static_cast<std::uint8_t>(key[i % key.size()]);
    }
    if (key.isEmpty()) return s;
    unsigned j = 7;
    for (int round = 0; round < rounds; ++round) {
        j = (k[j] + j + s[j]) & 0xff;
        for (int i = 0; i < 256; ++i) {
            const std::uint8_t t = s[i];
            j = (t + j) & 0xff;
            s[i] = s[j];
            s[j] = t;
        }
    }
    return s;
}

void Enc1::Scramble_Bytes(QByteArray& bytes, int rounds) {
    rounds = std::clamp(rounds, 2, 10);
    // The table T[i] = i of the scrambling step, indexed by (position + offset) modulo 256.
    const qsizetype offset = ((bytes.size() - 1 + rounds) % 256 + 256) % 256;
    for (int round = 0; round < rounds; ++round)
        for (qsizetype p = 0; p < bytes.size(); ++p)
            bytes[p] = static_cast<char>(static_cast<unsigned char>(bytes[p]) ^ ((p + offset) & 0xff));
}

void Enc1::reportProgress(int percent) const {
    if (m_cipherProgress) m_cipherProgress(percent);
}

bool Enc1::streamCore(QByteArray& data, const KeyBox& box) const {
    const qsizetype size = data.size();
    const qint64 total = static_cast<qint64>(size) * m_encryptRounds;
    qint64 done = 0;
    auto* bytes = reinterpret_cast<unsigned char*>(data.data());
    // i and j run on across rounds while the box starts afresh, so that each round differs.
    unsigned i = 0;
    unsigned j = 0;
    reportProgress(0);
    for (int round = 0; round < m_encryptRounds; ++round) {
        KeyBox s = box;
        for (qsizetype start = 0; start < size; start += Cipher_YieldInterval) {
            const qsizetype end = std::min(size, start + Cipher_YieldInterval);
            for (qsizetype k = start; k < end; ++k) {
                i = (i + 1) & 0xff;
                j = (s[i] + j) & 0xff;
                std::swap(s[i], s[j]);
                bytes[k] ^= s[(s[i] + s[j]) & 0xff];
            }
            done += end - start;
            Cipher_Yield();
            if (StopProcessing) return false;
            reportProgress(static_cast<int>(done * 100 / total));
        }
    }
    return true;
}

bool Enc1::ArcFour_String(QByteArray& bytes, bool encrypt) {
    if (m_password.isEmpty()) return false;
    const KeyBox box = Make_Permutation(EvaluateKey(m_password, m_keyLength), KeyBoxRounds);
    if (StopProcessing) return false;

    if (encrypt) {
        if (bytes.isEmpty()) return false;
        QByteArray trailer = trailerOf(static_cast<qint64>(bytes.size() - 1) * FixedPointScale);
        Scramble_Bytes(trailer, TrailerRounds);
        if (!streamCore(bytes, box)) return false;
        bytes.append(trailer);
        return true;
    }

    if (bytes.size() <= TrailerBytes) return false;
    QByteArray trailer = bytes.right(TrailerBytes);
    bytes.chop(TrailerBytes);
    Scramble_Bytes(trailer, TrailerRounds);
    const qint64 fixed = valueOf(trailer);
    if (!streamCore(bytes, box)) return false;
    if (fixed < 0) return false;
    const qint64 highest = roundHalfEven(fixed);
    if (highest >= bytes.size()) return false;
    bytes.truncate(highest + 1);
    return true;
}

} // namespace morvane
