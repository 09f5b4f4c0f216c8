#include "Sub_Main.h"

#include "Constant_Get.h"
#include "Encrypt_Mod.h"
#include "Folders_Mods.h"
#include "Globals.h"
#include "Work_Folder.h"

#include <QCoreApplication>

namespace morvane {

bool Sub_Main() {
    Catalogue_Passphrase = QString::fromLatin1(Catalogue_PassphraseText);

    COMPANY_NAME = Constant_Get(QStringLiteral("COMPANY_NAME"));
    PRODUCT_NAME = Constant_Get(QStringLiteral("PRODUCT_NAME"));
    PRODUCT_VERSION = Constant_Get(QStringLiteral("PRODUCT_VERSION"));
    PRODUCT_ID = Constant_Get(QStringLiteral("PRODUCT_ID"));
    REGISTRY_PRODUCT = Constant_Get(QStringLiteral("REGISTRY_PRODUCT"));
    LINK_HOMEPAGE1 = Constant_Get(QStringLiteral("LINK_HOMEPAGE1"));
    LINK_CHECKUPDATE = Constant_Get(QStringLiteral("LINK_CHECKUPDATE"));
    LINK_CONTACT_US = Constant_Get(QStringLiteral("LINK_CONTACT_US"));
    LINK_SEND_REPORT = Constant_Get(QStringLiteral("LINK_SEND_REPORT"));
    bool ok = false;
    const int favoriteMax = Constant_Get(QStringLiteral("FAVORITE_MAX")).toShort(&ok);
    if (!ok) return false; // a limit that is no 16-bit number ends the start silently
    FAVORITE_MAX = favoriteMax;

    Folder_Data = Get_SpecialFolder(CSIDL_APPDATA) + Constant_Get(QStringLiteral("FOLDER_DATA"));
    // The shared temporary folder holds one working folder per process; ours is what the program
    // calls its temporary folder from here on.
    const QString sharedTemp = Get_SpecialFolder(CSIDL_APPDATA) + Constant_Get(QStringLiteral("FOLDER_TEMP"));
    Folder_Temp = Work_Folder_Open(sharedTemp);
    if (Folder_Temp.isEmpty()) Folder_Temp = sharedTemp;

    const QString program = Program_Folder();
    Folder_Preset = program + QStringLiteral("Preset/");
    Folder_UserPreset = Get_SpecialFolder(CSIDL_APPDATA) + Constant_Get(QStringLiteral("FOLDER_USER_PRESET"));
    Folder_UserFavorite =
        Get_SpecialFolder(CSIDL_APPDATA) + Constant_Get(QStringLiteral("FOLDER_USER_FAVORITE"));
    File_UserPreset = Constant_Get(QStringLiteral("FILE_USER_PRESET"));
    File_UserFavorite = Constant_Get(QStringLiteral("FILE_USER_FAVORITE"));

    File_AnalyzerReports = Folder_Temp + QStringLiteral("analyzer-reports.tmp");
    Folder_Libs = program + QStringLiteral("Libs");

    Init_Folders();
    QCoreApplication::processEvents();
    return true;
}

} // namespace morvane
