#include "Enc5.h"
#include "Encrypt_Mod.h"

#include <gtest/gtest.h>

using namespace morvane;

namespace {

const QString Passphrase = QStringLiteral("Will not open the box!");

class CipherFrontTest : public ::testing::Test {
protected:
    void SetUp() override {
        StopProcessing = false;
        ASSERT_TRUE(m_cipher.Set_Password(Passphrase));
    }
    void TearDown() override { StopProcessing = false; }

    QByteArray encrypted(Enc5& cipher, const QByteArray& plain) {
        QByteArray bytes = plain;
        EXPECT_TRUE(cipher.EncryptString(bytes));
        return bytes;
    }

    Enc5 m_cipher;
};

TEST_F(CipherFrontTest, StartsWithTheDefaultsAndAClearFlag) {
    StopProcessing = true;
    Enc5 fresh;
    EXPECT_FALSE(fresh.StopProcessing());
    EXPECT_EQ(fresh.KeyLength(), 128);
    EXPECT_EQ(fresh.BlockSize(), 128);
    EXPECT_EQ(fresh.CipherRounds(), 1);
    EXPECT_EQ(fresh.HashMethod(), 0);
    EXPECT_EQ(fresh.CipherMethod(), 0);
    EXPECT_TRUE(fresh.Password().isEmpty());
}

TEST_F(CipherFrontTest, SameTextGivesSameLongerOutputAndRoundTrips) {
    const QByteArray plain = "\"Name\",\"Value\"";
    m_cipher.Set_CipherRounds(5);
    const QByteArray first = encrypted(m_cipher, plain);
    const QByteArray second = encrypted(m_cipher, plain);
    EXPECT_EQ(first, second);
    EXPECT_EQ(first.size(), plain.size() + 8);

    QByteArray back = first;
    ASSERT_TRUE(m_cipher.DecryptString(back));
    EXPECT_EQ(back, plain);
    EXPECT_FALSE(m_cipher.StopProcessing());
}

TEST_F(CipherFrontTest, KeyLength8ActsAs128) {
    const QByteArray plain = "some catalogue line";
    m_cipher.Set_KeyLength(128);
    const QByteArray with128 = encrypted(m_cipher, plain);
    m_cipher.Set_KeyLength(8);
    EXPECT_EQ(encrypted(m_cipher, plain), with128);
    m_cipher.Set_KeyLength(256);
    EXPECT_NE(encrypted(m_cipher, plain), with128);
}

TEST_F(CipherFrontTest, FailuresSetTheFlag) {
    QByteArray empty;
    EXPECT_FALSE(m_cipher.EncryptString(empty));
    EXPECT_TRUE(StopProcessing);

    // Once set, the flag fails the next call until someone clears it, and the bytes stay.
    QByteArray bytes = "text";
    EXPECT_FALSE(m_cipher.DecryptString(bytes));
    EXPECT_EQ(bytes, "text");
    m_cipher.Set_StopProcessing(false);
    EXPECT_TRUE(m_cipher.EncryptString(bytes));

    Enc5 other;
    other.Set_Password(Passphrase);
    other.Set_CipherMethod(1);
    QByteArray unsupported = "text";
    EXPECT_FALSE(other.EncryptString(unsupported));
    EXPECT_TRUE(StopProcessing);
}

TEST_F(CipherFrontTest, PasswordLengthIsCheckedAtSetAndAtUse) {
    // 50 characters are refused and the previous password stays.
    EXPECT_FALSE(m_cipher.Set_Password(QString(50, QLatin1Char('p'))));
    EXPECT_EQ(m_cipher.Password(), Passphrase.toUtf8());

    // 49 pass both checks; surrounding spaces do not count.
    Enc5 longest;
    EXPECT_TRUE(
        longest.Set_Password(QStringLiteral("  ") + QString(49, QLatin1Char('p')) + QStringLiteral(" ")));
    EXPECT_EQ(longest.Password().size(), 49);
    QByteArray bytes = "abc";
    EXPECT_TRUE(longest.EncryptString(bytes));

    // 7 are taken at set but fail at use, where 8 bytes are the least.
    Enc5 shortest;
    EXPECT_TRUE(shortest.Set_Password(QStringLiteral("seven77")));
    bytes = "abc";
    EXPECT_FALSE(shortest.EncryptString(bytes));
    EXPECT_EQ(bytes, "abc");
    EXPECT_TRUE(StopProcessing);
    EXPECT_FALSE(shortest.Set_Password(QStringLiteral("six666")));

    // The use check counts bytes: 30 two-byte characters pass at set and fail at use.
    Enc5 wide;
    EXPECT_TRUE(wide.Set_Password(QString(30, QChar(0x00E9))));
    bytes = "abc";
    EXPECT_FALSE(wide.EncryptString(bytes));
}

TEST_F(CipherFrontTest, HashMethodChangesTheKeyAndProgressIsPassedOn) {
    const QByteArray plain = "some catalogue line";
    const QByteArray sha256Key = encrypted(m_cipher, plain);
    m_cipher.Set_HashMethod(1);
    int last = -1;
    m_cipher.Set_CipherProgress([&last](int percent) { last = percent; });
    QByteArray bytes = encrypted(m_cipher, plain);
    EXPECT_NE(bytes, sha256Key);
    EXPECT_EQ(last, 100);
    ASSERT_TRUE(m_cipher.DecryptString(bytes));
    EXPECT_EQ(bytes, plain);

    m_cipher.Set_HashMethod(7); // no such hash here
    bytes = plain;
    EXPECT_FALSE(m_cipher.EncryptString(bytes));
}

} // namespace
