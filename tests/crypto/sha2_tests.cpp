#include "Enc2.h"
#include "Enc4.h"
#include "Encrypt_Mod.h"

#include <QCryptographicHash>

#include <gtest/gtest.h>

using namespace morvane;

namespace {

QByteArray patterned(qsizetype size) {
    QByteArray bytes(size, '\0');
    for (qsizetype k = 0; k < size; ++k)
        bytes[k] = static_cast<char>((k * 131 + 7) & 0xff);
    return bytes;
}

QByteArray reference(const QByteArray& bytes, QCryptographicHash::Algorithm algorithm) {
    return QCryptographicHash::hash(bytes, algorithm).toHex();
}

class Sha2Test : public ::testing::Test {
protected:
    void SetUp() override { StopProcessing = false; }
    void TearDown() override {
        Set_CipherYield(nullptr);
        StopProcessing = false;
    }
};

// Every length up to 200 crosses the padding borders at 55/56 and 64 bytes, and their multiples.
TEST_F(Sha2Test, MatchesTheStandardOnEveryLengthUpTo200) {
    Enc2 sha224;
    sha224.Set_HashMethod(0);
    Enc2 sha256;
    sha256.Set_HashMethod(1);
    for (qsizetype size = 0; size <= 200; ++size) {
        const QByteArray input = patterned(size);
        EXPECT_EQ(sha224.HashString(input), reference(input, QCryptographicHash::Sha224)) << size;
        EXPECT_EQ(sha256.HashString(input), reference(input, QCryptographicHash::Sha256)) << size;
    }
}

TEST_F(Sha2Test, MatchesTheStandardOnOneMegabyte) {
    const QByteArray input = patterned(1024 * 1024 + 3);
    Enc2 sha;
    EXPECT_EQ(sha.HashString(input), reference(input, QCryptographicHash::Sha256));
    sha.Set_HashMethod(0);
    EXPECT_EQ(sha.HashString(input), reference(input, QCryptographicHash::Sha224));
}

TEST_F(Sha2Test, PropertiesFallBackWhenOutOfRange) {
    Enc2 sha;
    EXPECT_EQ(sha.HashMethod(), 1);
    EXPECT_EQ(sha.HashRounds(), 1);
    sha.Set_HashMethod(6);
    EXPECT_EQ(sha.HashMethod(), 1);
    sha.Set_HashMethod(-1);
    EXPECT_EQ(sha.HashMethod(), 1);
    sha.Set_HashRounds(11);
    EXPECT_EQ(sha.HashRounds(), 1);
    sha.Set_HashRounds(10);
    EXPECT_EQ(sha.HashRounds(), 10);

    // Methods without an algorithm give no digest rather than a wrong one.
    sha.Set_HashMethod(3);
    EXPECT_TRUE(sha.HashString("abc").isEmpty());
}

TEST_F(Sha2Test, ExtraRoundsHashTheDigestText) {
    Enc2 sha;
    sha.Set_HashRounds(3);
    QByteArray expected = "abc";
    for (int round = 0; round < 3; ++round)
        expected = reference(expected, QCryptographicHash::Sha256);
    EXPECT_EQ(sha.HashString("abc"), expected);
}

TEST_F(Sha2Test, HashFrontPicksTheMethodAndChecksRounds) {
    Enc4 hash;
    EXPECT_EQ(hash.HashMethod(), 0);
    EXPECT_EQ(hash.HashRounds(), 1);
    const QByteArray digest = hash.HashString("Will not open the box!");
    EXPECT_EQ(digest, reference("Will not open the box!", QCryptographicHash::Sha256));
    EXPECT_EQ(digest.size(), 64);
    EXPECT_EQ(digest, digest.toLower());

    hash.Set_HashMethod(1);
    EXPECT_EQ(hash.HashString("abc"), reference("abc", QCryptographicHash::Sha224));
    hash.Set_HashMethod(2);
    EXPECT_TRUE(hash.HashString("abc").isEmpty());

    // The rounds range depends on the method set at that moment.
    hash.Set_HashMethod(0);
    hash.Set_HashRounds(11);
    EXPECT_EQ(hash.HashRounds(), 1);
    hash.Set_HashMethod(23);
    hash.Set_HashRounds(10);
    EXPECT_EQ(hash.HashRounds(), 10);
    hash.Set_HashMethod(13);
    hash.Set_HashRounds(2);
    EXPECT_EQ(hash.HashRounds(), 3);
    hash.Set_HashRounds(15);
    EXPECT_EQ(hash.HashRounds(), 15);
    hash.Set_HashRounds(16);
    EXPECT_EQ(hash.HashRounds(), 3);
}

TEST_F(Sha2Test, StopDuringALongHashGivesNoDigest) {
    int yields = 0;
    Set_CipherYield([&yields] {
        if (++yields == 3) StopProcessing = true;
    });
    Enc4 hash;
    EXPECT_TRUE(hash.HashString(patterned(1024 * 1024)).isEmpty());
    EXPECT_EQ(yields, 3);
    EXPECT_TRUE(hash.StopProcessing());
}

} // namespace
