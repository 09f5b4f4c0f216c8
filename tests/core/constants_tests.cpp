#include "TempHome.h"

#include "Constant_Get.h"
#include "Encrypt_Mod.h"
#include "Folders_Mods.h"
#include "Globals.h"
#include "Sub_Main.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <gtest/gtest.h>

using namespace morvane;

TEST(KeyedConstants, TheCompiledBlockHoldsEveryKey) {
    Catalogue_Passphrase = QString::fromLatin1(Catalogue_PassphraseText);
    const QString block = Constant_Block();
    EXPECT_FALSE(block.contains("Morvane")); // enciphered, not plain
    const char* keys[] = {"COMPANY_NAME",     "PRODUCT_NAME",         "PRODUCT_VERSION",
                          "PRODUCT_ID",       "REGISTRY_PRODUCT",     "LINK_HOMEPAGE1",
                          "LINK_HOMEPAGE2",   "LINK_CHECKUPDATE",     "LINK_CONTACT_US",
                          "LINK_SEND_REPORT", "CLIPBOARD_ID",         "FAVORITE_MAX",
                          "FOLDER_DATA",      "FOLDER_TEMP",          "FOLDER_USER_PRESET",
                          "FILE_USER_PRESET", "FOLDER_USER_FAVORITE", "FILE_USER_FAVORITE"};
    for (const char* key : keys)
        EXPECT_FALSE(Constant_Get(QLatin1String(key)).isEmpty()) << key;
    EXPECT_EQ(Constant_Get("PRODUCT_NAME"), "Morvane");
    EXPECT_EQ(Constant_Get("product_name"), "Morvane");
    EXPECT_TRUE(Constant_Get("LINK_CHECKUPDATE").contains("PRODUCTNAME"));
    EXPECT_TRUE(Constant_Get("LINK_CHECKUPDATE").contains("VERSION"));
    bool ok = false;
    EXPECT_GT(Constant_Get("FAVORITE_MAX").toShort(&ok), 0);
    EXPECT_TRUE(ok);
    // The temporary and user folders are relative paths closed by a separator.
    for (const char* key : {"FOLDER_TEMP", "FOLDER_USER_PRESET", "FOLDER_USER_FAVORITE"}) {
        const QString folder = Constant_Get(QLatin1String(key));
        EXPECT_TRUE(folder.endsWith('/')) << key;
        EXPECT_FALSE(folder.startsWith('/')) << key;
    }
    EXPECT_EQ(Constant_Find(block, "NO_SUCH_KEY"), "");
    EXPECT_EQ(Constant_Find("", "PRODUCT_NAME"), "");
    EXPECT_EQ(Constant_Find("not hex at all", "PRODUCT_NAME"), "");
}

TEST(KeyedConstantsDeathTest, AMissingKeyEndsTheProgramWithItsName) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    Catalogue_Passphrase = QString::fromLatin1(Catalogue_PassphraseText);
    EXPECT_EXIT(Constant_Get("NO_SUCH_KEY"), ::testing::ExitedWithCode(1), "NO_SUCH_KEY not found!");
}

TEST(StartSequence, SubMainFillsTheGlobalsAndFolders) {
    TempHome home;
    const QString videos = home.make("Videos");
    int argc = 1;
    char name[] = "core_tests";
    char* argv[] = {name, nullptr};
    QCoreApplication app(argc, argv);
    Catalogue_Passphrase.clear();

    ASSERT_TRUE(Sub_Main());
    EXPECT_EQ(Catalogue_Passphrase, "Will not open the box!");
    EXPECT_EQ(PRODUCT_NAME, "Morvane");
    EXPECT_FALSE(COMPANY_NAME.isEmpty());
    EXPECT_FALSE(PRODUCT_VERSION.isEmpty());
    EXPECT_FALSE(LINK_SEND_REPORT.isEmpty());
    EXPECT_GT(FAVORITE_MAX, 0);
    const QString appData = home.path() + "/.local/share/";
    EXPECT_EQ(Folder_Data, appData + Constant_Get("FOLDER_DATA"));
    // The process works in a folder of its own inside the shared temporary folder.
    EXPECT_TRUE(Folder_Temp.startsWith(appData + Constant_Get("FOLDER_TEMP") + "run-"))
        << Folder_Temp.toStdString();
    EXPECT_TRUE(Folder_Temp.endsWith('/'));
    EXPECT_EQ(Folder_UserPreset, appData + Constant_Get("FOLDER_USER_PRESET"));
    EXPECT_EQ(Folder_UserFavorite, appData + Constant_Get("FOLDER_USER_FAVORITE"));
    EXPECT_EQ(File_UserPreset, Constant_Get("FILE_USER_PRESET"));
    EXPECT_EQ(File_AnalyzerReports, Folder_Temp + "analyzer-reports.tmp");
    EXPECT_TRUE(Folder_Preset.endsWith("/Preset/"));
    EXPECT_TRUE(Folder_Libs.endsWith("/Libs"));
    EXPECT_TRUE(QFileInfo(Folder_Data).isDir());
    EXPECT_TRUE(QFileInfo(Folder_Temp).isDir());
    // The user folders are made before their first write, not at start.
    EXPECT_FALSE(QFileInfo::exists(Folder_UserPreset));
    EXPECT_EQ(Path_Output, videos);
}
