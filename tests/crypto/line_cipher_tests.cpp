#include "Encrypt_Mod.h"

#include <gtest/gtest.h>

using namespace morvane;

namespace {

class LineCipherTest : public ::testing::Test {
protected:
    void SetUp() override {
        Catalogue_Passphrase = QStringLiteral("Will not open the box!");
        StopProcessing = false;
    }
    void TearDown() override {
        Catalogue_Passphrase.clear();
        StopProcessing = false;
    }
};

// Known answers, computed apart from this code from the algorithm's description.
TEST_F(LineCipherTest, KnownAnswers) {
    struct Vector {
        QString text;
        QString hex;
    };
    const Vector vectors[] = {
        {QStringLiteral("A"), QStringLiteral("CD0C0D0E0F10111213")},
        {QStringLiteral("Hello, world"), QStringLiteral("B493842B82DD88F70A7A03B9BCA00F0F10111213")},
        {QStringLiteral("\"Name\",\"Value\",\"Removable\""),
         QStringLiteral("1513A4C77336EB5FA87189B9B17BB48CFE97C63D38570A3FEBDD9CDD0D0F10111213")},
        {QStringLiteral("Grüße, 日本語 — ok"),
         QStringLiteral("463F5E970B477EC59B9652230DE9118B619F277AA37BD6EE028CA40D0F10111213")},
        {QString(40, QLatin1Char('x')), QStringLiteral("B689DA08747F31B11E284809D2C674F5CC2FAD5B959C27023729F"
                                                       "5B458ED5CB5A41BBDB0F1FB64107CFE0B0F10111213")},
    };
    for (const Vector& v : vectors) {
        EXPECT_EQ(Line_Encipher(v.text), v.hex) << v.text.toStdString();
        EXPECT_EQ(Line_Decipher(v.hex), v.text) << v.text.toStdString();
        EXPECT_FALSE(StopProcessing);
    }
}

TEST_F(LineCipherTest, RoundTripsAnyLine) {
    const QString texts[] = {
        QStringLiteral("x"),
        QStringLiteral("\"COMPANY_NAME\",\"Acme, Inc.\""),
        QStringLiteral("\"a\"\",\"b\",,\"\",\"c\""),
        QStringLiteral("日本語 🎬 Ünïcödé"),
        QStringLiteral("  spaces kept inside the cipher  "),
        QString(255, QLatin1Char('q')),
        QString(256, QLatin1Char('q')),
        QString(257, QLatin1Char('q')),
    };
    for (const QString& text : texts) {
        const QString hex = Line_Encipher(text);
        EXPECT_EQ(hex.size(), 2 * (text.toUtf8().size() + 8));
        EXPECT_EQ(hex, hex.toUpper());
        EXPECT_EQ(Line_Decipher(hex), text);
    }

    QString longLine;
    for (int k = 0; longLine.size() < 100 * 1024; ++k)
        longLine += QStringLiteral("\"field %1\",\"ÿ\",").arg(k);
    EXPECT_EQ(Line_Decipher(Line_Encipher(longLine)), longLine);
}

TEST_F(LineCipherTest, EnciphersOnlyWhatItCan) {
    EXPECT_EQ(Line_Encipher(QString()), QString());
    EXPECT_TRUE(StopProcessing);

    // Each call starts afresh, whatever the flag says.
    EXPECT_EQ(Line_Encipher(QStringLiteral("A")), QStringLiteral("CD0C0D0E0F10111213"));
    EXPECT_FALSE(StopProcessing);

    // A passphrase the cipher refuses leaves the line as it is, cut at its first NUL.
    Catalogue_Passphrase = QStringLiteral("short");
    EXPECT_EQ(Line_Encipher(QStringLiteral("plain")), QStringLiteral("plain"));
    EXPECT_TRUE(StopProcessing);
    EXPECT_EQ(Line_Encipher(QStringLiteral("one") + QChar(u'\0') + QStringLiteral("two")),
              QStringLiteral("one"));
}

TEST_F(LineCipherTest, HexTextForms) {
    EXPECT_EQ(Bytes_ToHex(QByteArray("\x00\x0f\xab\xff", 4)), QStringLiteral("000FABFF"));
    EXPECT_EQ(Hex_ToBytes(QStringLiteral("000FABFF")), QByteArray("\x00\x0f\xab\xff", 4));
    EXPECT_EQ(Hex_ToBytes(QStringLiteral("  &h0fab \r\n")), QByteArray("\x0f\xab", 2));
    EXPECT_EQ(Hex_ToBytes(QStringLiteral("&H0FAB")), QByteArray("\x0f\xab", 2));
    EXPECT_EQ(Hex_ToBytes(QStringLiteral("0fab")), QByteArray("\x0f\xab", 2));
    EXPECT_TRUE(Hex_ToBytes(QString()).isEmpty());
    EXPECT_TRUE(Hex_ToBytes(QStringLiteral("&H")).isEmpty());
    EXPECT_TRUE(Hex_ToBytes(QStringLiteral("   ")).isEmpty());
    EXPECT_EQ(Hex_ToBytes(QStringLiteral("ABC")), QByteArray(2, '\0'));
    EXPECT_EQ(Hex_ToBytes(QStringLiteral("&HABCDE")), QByteArray(2, '\0'));
    // A pair that is not hexadecimal: the value of its leading digit, or 0.
    EXPECT_EQ(Hex_ToBytes(QStringLiteral("1GG1zz7F")), QByteArray("\x01\x00\x00\x7f", 4));
}

TEST_F(LineCipherTest, DeciphersDamagedLinesToSomeText) {
    const QString hex = Line_Encipher(QStringLiteral("Hello, world"));

    EXPECT_EQ(Line_Decipher(QStringLiteral("&h") + hex.toLower()), QStringLiteral("Hello, world"));
    EXPECT_EQ(Line_Decipher(QStringLiteral("  ") + hex + QStringLiteral("\r\n")),
              QStringLiteral("Hello, world"));

    // Odd length: two zero bytes, which fail and read as nothing.
    EXPECT_EQ(Line_Decipher(hex.left(hex.size() - 1)), QString());
    EXPECT_TRUE(StopProcessing);
    EXPECT_EQ(Line_Decipher(QString()), QString());

    // Too short to hold a trailer: the bytes are read as they are.
    EXPECT_EQ(Line_Decipher(QStringLiteral("4142434445464748")), QStringLiteral("ABCDEFGH"));
    EXPECT_TRUE(StopProcessing);

    // A line cut short at its front gives garbled text and a set flag, never a crash.
    const QString truncated = Line_Decipher(hex.mid(2));
    EXPECT_NE(truncated, QStringLiteral("Hello, world"));
    EXPECT_TRUE(StopProcessing);

    // A damaged trailer fails, yet the data in front of it has been deciphered all the same.
    QString badTrailer = hex;
    badTrailer.replace(hex.size() - 2, 2, QStringLiteral("93"));
    EXPECT_EQ(Line_Decipher(badTrailer), QStringLiteral("Hello, world"));
    EXPECT_TRUE(StopProcessing);

    // Nine pairs of no digits: nine zero bytes, one of them data, deciphering to no valid UTF-8.
    EXPECT_EQ(Line_Decipher(QStringLiteral("&H") + QString(18, QLatin1Char('Z'))), QStringLiteral("\uFFFD"));
    EXPECT_TRUE(StopProcessing);
}

} // namespace
