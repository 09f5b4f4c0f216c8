#include "Encrypt_Data.h"
#include "Encrypt_Mod.h"

#include <gtest/gtest.h>

using namespace morvane;

namespace {

const QString Block = QStringLiteral("\"COMPANY_NAME\",\"Acme Soft\"\r\n"
                                     "\"LINK_HOMEPAGE1\",\"https://example.org/a,b\"\r\n"
                                     "\"NOTE\",\" padded \"\r\n"
                                     "\"PRODUCT_NAME\",\"Morvane\"\r\n"
                                     "\"FOLDER_DATA\",\"Morvane/Data\"");

TEST(ConstantLookup, FindsTheFirstLineThatQuotesTheKey) {
    EXPECT_EQ(Constant_Lookup(Block, QStringLiteral("COMPANY_NAME")), QStringLiteral("Acme Soft"));
    EXPECT_EQ(Constant_Lookup(Block, QStringLiteral("product_name")), QStringLiteral("Morvane"));
    // Commas go, and the rest is not trimmed.
    EXPECT_EQ(Constant_Lookup(Block, QStringLiteral("LINK_HOMEPAGE1")),
              QStringLiteral("https://example.org/ab"));
    EXPECT_EQ(Constant_Lookup(Block, QStringLiteral("NOTE")), QStringLiteral(" padded "));
    // The last line needs no line end; a key only part of another key is not found.
    EXPECT_EQ(Constant_Lookup(Block, QStringLiteral("FOLDER_DATA")), QStringLiteral("Morvane/Data"));
    EXPECT_EQ(Constant_Lookup(Block, QStringLiteral("FOLDER")), QString());
    EXPECT_EQ(Constant_Lookup(Block, QStringLiteral("FAVORITE_MAX")), QString());
    EXPECT_EQ(Constant_Lookup(QString(), QStringLiteral("FAVORITE_MAX")), QString());
}

TEST(ConstantLookup, AnEarlierQuotedValueWins) {
    const QString block = QStringLiteral("\"NOTE\",\"see PRODUCT_ID below\"\r\n"
                                         "\"ALIAS\",\"product_id\"\r\n"
                                         "\"PRODUCT_ID\",\"mv\"\r\n"
                                         "\"HOME\",\"my Home page\"");
    // Unquoted key text does not match; a value that quotes the key does, and gives its line.
    EXPECT_EQ(Constant_Lookup(block, QStringLiteral("PRODUCT_ID")), QStringLiteral("ALIAS"));
    // The key's text goes from the value too, in any case.
    EXPECT_EQ(Constant_Lookup(block, QStringLiteral("HOME")), QStringLiteral("my  page"));
    // Only CR LF ends a line: a bare LF keeps both entries in one.
    EXPECT_EQ(
        Constant_Lookup(QStringLiteral("\"A_KEY\",\"one\"\n\"B_KEY\",\"two\""), QStringLiteral("B_KEY")),
        QStringLiteral("A_KEYone\ntwo"));
}

TEST(ConstantLookup, ReadsAnEncipheredBlock) {
    Catalogue_Passphrase = QStringLiteral("Will not open the box!");
    EXPECT_EQ(Constant_Lookup(Line_Decipher(Line_Encipher(Block)), QStringLiteral("company_name")),
              QStringLiteral("Acme Soft"));
    Catalogue_Passphrase.clear();
}

} // namespace
