#include "Enc1.h"
#include "Encrypt_Mod.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using namespace morvane;

namespace {

QByteArray patterned(qsizetype size) {
    QByteArray bytes(size, '\0');
    for (qsizetype k = 0; k < size; ++k)
        bytes[k] = static_cast<char>((k * 37 + 11) & 0xff);
    return bytes;
}

class StreamCipherTest : public ::testing::Test {
protected:
    void SetUp() override {
        StopProcessing = false;
        m_cipher.Set_Password("0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef");
    }
    void TearDown() override {
        Set_CipherYield(nullptr);
        StopProcessing = false;
    }
    Enc1 m_cipher;
};

TEST_F(StreamCipherTest, KeyLengthAndRoundsFallBack) {
    EXPECT_EQ(m_cipher.KeyLength(), 128);
    EXPECT_EQ(m_cipher.EncryptRounds(), 1);
    for (int bits : {8, 0, 129, 480, 1000, 1088, -128}) {
        m_cipher.Set_KeyLength(1024);
        m_cipher.Set_KeyLength(bits);
        EXPECT_EQ(m_cipher.KeyLength(), 128) << bits;
    }
    for (int bits : {160, 224, 448, 512, 576, 1024}) {
        m_cipher.Set_KeyLength(bits);
        EXPECT_EQ(m_cipher.KeyLength(), bits);
    }
    for (int rounds : {0, 11, -1}) {
        m_cipher.Set_EncryptRounds(5);
        m_cipher.Set_EncryptRounds(rounds);
        EXPECT_EQ(m_cipher.EncryptRounds(), 1) << rounds;
    }
    m_cipher.Set_EncryptRounds(10);
    EXPECT_EQ(m_cipher.EncryptRounds(), 10);
}

TEST_F(StreamCipherTest, ScramblingTwiceGivesTheBytesBack) {
    for (qsizetype size : {1, 8, 255, 256, 300}) {
        for (int rounds : {0, 2, 5, 10, 50}) {
            const QByteArray original = patterned(size);
            QByteArray bytes = original;
            Enc1::Scramble_Bytes(bytes, rounds);
            // An even count of rounds cancels itself out; the clamp makes 0 into 2 and 50 into 10.
            if (rounds == 5) {
                EXPECT_NE(bytes, original);
            }
            Enc1::Scramble_Bytes(bytes, rounds);
            EXPECT_EQ(bytes, original) << size << " " << rounds;
        }
    }
}

TEST_F(StreamCipherTest, KeyIsThePasswordPrefixOrPaddedFromItsPermutation) {
    const QByteArray longPassword = patterned(64);
    EXPECT_EQ(Enc1::EvaluateKey(longPassword, 128), longPassword.left(16));
    EXPECT_EQ(Enc1::EvaluateKey(longPassword, 512), longPassword);

    const QByteArray key = Enc1::EvaluateKey(longPassword, 1024);
    ASSERT_EQ(key.size(), 128);
    EXPECT_EQ(key.left(64), longPassword);
    const Enc1::KeyBox box = Enc1::Make_Permutation(longPassword, 25);
    EXPECT_EQ(static_cast<unsigned char>(key[64]), box[64]);
    EXPECT_EQ(static_cast<unsigned char>(key[127]), box[127]);

    // Whatever the key, the box is a permutation of 0..255, and the round count is clamped.
    std::vector<bool> seen(256, false);
    for (std::uint8_t value : box)
        seen[value] = true;
    EXPECT_EQ(std::count(seen.begin(), seen.end(), true), 256);
    EXPECT_EQ(Enc1::Make_Permutation(longPassword, 1), Enc1::Make_Permutation(longPassword, 15));
    EXPECT_EQ(Enc1::Make_Permutation(longPassword, 500), Enc1::Make_Permutation(longPassword, 99));
    EXPECT_NE(Enc1::Make_Permutation(longPassword, 15), Enc1::Make_Permutation(longPassword, 16));
}

TEST_F(StreamCipherTest, RoundTripsAcrossSizesAndRounds) {
    for (int rounds = 1; rounds <= 10; ++rounds) {
        m_cipher.Set_EncryptRounds(rounds);
        for (qsizetype size : {1, 2, 255, 256, 257, 70000}) {
            const QByteArray original = patterned(size);
            QByteArray bytes = original;
            ASSERT_TRUE(m_cipher.ArcFour_String(bytes, true));
            EXPECT_EQ(bytes.size(), size + 8);
            if (size > 2) {
                EXPECT_NE(bytes.left(size), original);
            }
            ASSERT_TRUE(m_cipher.ArcFour_String(bytes, false)) << size << " " << rounds;
            EXPECT_EQ(bytes, original) << size << " " << rounds;
        }
    }
}

TEST_F(StreamCipherTest, RoundsAreNotARepeatedPlainCipher) {
    // Were i and j reset per round, two rounds would cancel out and give the plain bytes back.
    m_cipher.Set_EncryptRounds(2);
    const QByteArray original = patterned(100);
    QByteArray bytes = original;
    ASSERT_TRUE(m_cipher.ArcFour_String(bytes, true));
    EXPECT_NE(bytes.left(100), original);
}

TEST_F(StreamCipherTest, DecipheringCutsToTheTrailerOrFails) {
    // Bytes slipped in before the trailer decipher to something and are cut off again. With one
    // round only: later rounds start where the earlier ones left i and j, so after the length.
    QByteArray padded = "Hello, table";
    ASSERT_TRUE(m_cipher.ArcFour_String(padded, true));
    padded.insert(padded.size() - 8, QByteArray(5, 'x'));
    ASSERT_TRUE(m_cipher.ArcFour_String(padded, false));
    EXPECT_EQ(padded, "Hello, table");

    m_cipher.Set_EncryptRounds(3);
    QByteArray sealed = "Hello, table";
    ASSERT_TRUE(m_cipher.ArcFour_String(sealed, true));
    QByteArray grown = sealed;
    grown.insert(sealed.size() - 8, QByteArray(5, 'x'));
    ASSERT_TRUE(m_cipher.ArcFour_String(grown, false));
    EXPECT_EQ(grown.size(), 12);
    EXPECT_NE(grown, "Hello, table");

    // A trailer that promises more than there is fails, and leaves the deciphered data uncut.
    QByteArray shortened = sealed;
    shortened.remove(0, 1);
    EXPECT_FALSE(m_cipher.ArcFour_String(shortened, false));
    EXPECT_EQ(shortened.size(), sealed.size() - 9);

    QByteArray negative = sealed;
    negative[negative.size() - 1] = static_cast<char>(negative[negative.size() - 1] ^ 0x80);
    EXPECT_FALSE(m_cipher.ArcFour_String(negative, false));
    EXPECT_EQ(negative, "Hello, table");

    // Eight bytes or fewer hold no data at all; they stay as they were.
    QByteArray tiny = sealed.right(8);
    EXPECT_FALSE(m_cipher.ArcFour_String(tiny, false));
    EXPECT_EQ(tiny, sealed.right(8));
}

TEST_F(StreamCipherTest, FailsWithoutDataOrPassword) {
    QByteArray empty;
    EXPECT_FALSE(m_cipher.ArcFour_String(empty, true));
    Enc1 keyless;
    QByteArray bytes = "data";
    EXPECT_FALSE(keyless.ArcFour_String(bytes, true));
    EXPECT_EQ(bytes, "data");
}

TEST_F(StreamCipherTest, YieldsCoarselyReportsProgressAndStops) {
    int yields = 0;
    Set_CipherYield([&yields] { ++yields; });
    std::vector<int> progress;
    m_cipher.Set_CipherProgress([&progress](int percent) { progress.push_back(percent); });
    m_cipher.Set_EncryptRounds(2);

    // 200 KiB: four slices of at most 64 KiB per round.
    QByteArray bytes = patterned(200 * 1024);
    ASSERT_TRUE(m_cipher.ArcFour_String(bytes, true));
    EXPECT_EQ(yields, 8);
    ASSERT_FALSE(progress.empty());
    EXPECT_EQ(progress.front(), 0);
    EXPECT_EQ(progress.back(), 100);
    EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));

    // A stop requested from the event queue ends the run with a failure and no trailer.
    Set_CipherYield([] { StopProcessing = true; });
    QByteArray stopped = patterned(200 * 1024);
    EXPECT_FALSE(m_cipher.ArcFour_String(stopped, true));
    EXPECT_EQ(stopped.size(), 200 * 1024);

    // A flag already set fails before any byte changes.
    const QByteArray original = patterned(10);
    QByteArray untouched = original;
    EXPECT_FALSE(m_cipher.ArcFour_String(untouched, true));
    EXPECT_EQ(untouched, original);
}

} // namespace
