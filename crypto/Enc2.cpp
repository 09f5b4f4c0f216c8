#include "Enc2.h"

#include "Enc3.h"
#include "Encrypt_Mod.h"

#include <array>
#include <cstdint>
#include <optional>

namespace morvane {

namespace {

using Word = std::int32_t;
using State = std::array<Word, 8>;

constexpr qsizetype BlockBytes = 64;

constexpr std::array<std::uint32_t, 64> RoundConstants = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2,
};

constexpr std::array<std::uint32_t, 8> Initial224 = {0xc1059ed8, 0x367cd507, 0x3070dd17, 0xf70e5939,
                                                     0xffc00b31, 0x68581511, 0x64f98fa7, 0xbefa4fa4};
constexpr std::array<std::uint32_t, 8> Initial256 = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                                     0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};

Word rotr(Word x, int n) {
    return Enc3::w32Rotate(x, -n);
}
Word shr(Word x, int n) {
    return Enc3::w32Shift(x, -n);
}
Word add(Word a, Word b) {
    return Enc3::UnsignedAdd(a, b);
}

void compress(State& h, const char* block) {
    std::array<Word, 64> w{};
    for (int t = 0; t < 16; ++t) {
        const auto* p = reinterpret_cast<const unsigned char*>(block + 4 * t);
        w[t] = static_cast<Word>(std::uint32_t{p[0]} << 24 | std::uint32_t{p[1]} << 16 |
                                 std::uint32_t{p[2]} << 8 | std::uint32_t{p[3]});
    }
    for (int t = 16; t < 64; ++t) {
        const Word s0 = rotr(w[t - 15], 7) ^ rotr(w[t - 15], 18) ^ shr(w[t - 15], 3);
        const Word s1 = rotr(w[t - 2], 17) ^ rotr(w[t - 2], 19) ^ shr(w[t - 2], 10);
        w[t] = add(add(w[t - 16], s0), add(w[t - 7], s1));
    }
    State v = h;
    for (int t = 0; t < 64; ++t) {
        const Word a = v[0];
        const Word e = v[4];
        const Word sum1 = rotr(e, 6) ^ rotr(e, 11) ^ rotr(e, 25);
        const Word choose = (e & v[5]) ^ (~e & v[6]);
        const Word t1 = add(add(add(v[7], sum1), add(choose, static_cast<Word>(RoundConstants[t]))), w[t]);
        const Word sum0 = rotr(a, 2) ^ rotr(a, 13) ^ rotr(a, 22);
        const Word majority = (a & v[1]) ^ (a & v[2]) ^ (v[1] & v[2]);
        const Word t2 = add(sum0, majority);
        v = {add(t1, t2), v[0], v[1], v[2], add(v[3], t1), v[4], v[5], v[6]};
    }
    for (int k = 0; k < 8; ++k)
        h[k] = add(h[k], v[k]);
}

// One pass of the hash; nothing when StopProcessing cut it short.
std::optional<State> digest(const QByteArray& bytes, const std::array<std::uint32_t, 8>& initial) {
    State h{};
    for (int k = 0; k < 8; ++k)
        h[k] = static_cast<Word>(initial[k]);

    const qsizetype whole = bytes.size() / BlockBytes * BlockBytes;
    for (qsizetype at = 0; at < whole; at += BlockBytes) {
        if (at % Cipher_YieldInterval == 0 && at > 0) {
            Cipher_Yield();
            if (StopProcessing) return std::nullopt;
        }
        compress(h, bytes.constData() + at);
    }

    // Padding: 0x80, zeros up to 56 bytes modulo 64, then the bit length in 16 hexadecimal digits
    // (64 bits, most significant first).
    QByteArray tail = bytes.mid(whole);
    tail.append(static_cast<char>(0x80));
    while (tail.size() % BlockBytes != 56)
        tail.append('\0');
    const std::uint64_t bitLength = static_cast<std::uint64_t>(bytes.size()) * 8;
    for (int shift = 56; shift >= 0; shift -= 8)
        tail.append(static_cast<char>((bitLength >> shift) & 0xff));
    for (qsizetype at = 0; at < tail.size(); at += BlockBytes)
        compress(h, tail.constData() + at);
    return h;
}

QByteArray lowerHex(const State& h, int words) {
    QByteArray raw;
    for (int k = 0; k < words; ++k) {
        const auto value = static_cast<std::uint32_t>(h[k]);
        for (int shift = 24; shift >= 0; shift -= 8)
            raw.append(static_cast<char>((value >> shift) & 0xff));
    }
    return raw.toHex();
}

} // namespace

void Enc2::Set_HashRounds(int rounds) {
    m_hashRounds = (rounds >= 1 && rounds <= 10) ? rounds : 1;
}

void Enc2::Set_HashMethod(int method) {
    m_hashMethod = (method >= 0 && method <= 5) ? method : 1;
}

QByteArray Enc2::HashString(const QByteArray& bytes) const {
    if (m_hashMethod != 0 && m_hashMethod != 1) return {};
    const bool is224 = m_hashMethod == 0;
    QByteArray text = bytes;
    for (int round = 0; round < m_hashRounds; ++round) {
        if (StopProcessing) return {};
        const std::optional<State> h = digest(text, is224 ? Initial224 : Initial256);
        if (!h) return {};
        text = lowerHex(*h, is224 ? 7 : 8);
    }
    return text;
}

} // namespace morvane
