#include "Skin_Theme.h"

#include "Globals.h"
#include "Skin_Icons.h"
#include "mMain.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>

namespace morvane {

namespace {

QString g_sheetRoot = QStringLiteral(":/skin/");

// Reads a sheet; a permission failure is told apart from a missing or empty file.
int readSheet(const QString& path, QString& text) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return file.error() == QFileDevice::PermissionsError ? Theme_Denied : Theme_Missing;
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) return Theme_Missing;
    text = QString::fromUtf8(bytes);
    return Theme_Ok;
}

QPalette lightPalette() {
    QPalette p;
    p.setColor(QPalette::Window, QColor(0xf3, 0xf4, 0xf6));
    p.setColor(QPalette::WindowText, QColor(0x20, 0x22, 0x25));
    p.setColor(QPalette::Base, Qt::white);
    p.setColor(QPalette::AlternateBase, QColor(0xf7, 0xf8, 0xfa));
    p.setColor(QPalette::Text, QColor(0x20, 0x22, 0x25));
    p.setColor(QPalette::Button, QColor(0xfb, 0xfb, 0xfc));
    p.setColor(QPalette::ButtonText, QColor(0x20, 0x22, 0x25));
    p.setColor(QPalette::Highlight, QColor(0x00, 0x7a, 0xff));
    p.setColor(QPalette::HighlightedText, Qt::white);
    p.setColor(QPalette::ToolTipBase, QColor(0xff, 0xff, 0xf0));
    p.setColor(QPalette::ToolTipText, Qt::black);
    p.setColor(QPalette::PlaceholderText, QColor(0x6b, 0x70, 0x78));
    p.setColor(QPalette::Disabled, QPalette::Text, QColor(0xa0, 0xa4, 0xaa));
    p.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0xa0, 0xa4, 0xaa));
    p.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0xa0, 0xa4, 0xaa));
    return p;
}

QPalette darkPalette() {
    QPalette p;
    p.setColor(QPalette::Window, QColor(0x2b, 0x2d, 0x31));
    p.setColor(QPalette::WindowText, QColor(0xe6, 0xe6, 0xe6));
    p.setColor(QPalette::Base, QColor(0x1f, 0x21, 0x24));
    p.setColor(QPalette::AlternateBase, QColor(0x26, 0x28, 0x2c));
    p.setColor(QPalette::Text, QColor(0xe6, 0xe6, 0xe6));
    p.setColor(QPalette::Button, QColor(0x36, 0x39, 0x3e));
    p.setColor(QPalette::ButtonText, QColor(0xe6, 0xe6, 0xe6));
    p.setColor(QPalette::Highlight, QColor(0x00, 0x7a, 0xff));
    p.setColor(QPalette::HighlightedText, Qt::white);
    p.setColor(QPalette::ToolTipBase, QColor(0x36, 0x39, 0x3e));
    p.setColor(QPalette::ToolTipText, QColor(0xe6, 0xe6, 0xe6));
    p.setColor(QPalette::PlaceholderText, QColor(0x9a, 0x9e, 0xa6));
    p.setColor(QPalette::Light, QColor(0x45, 0x48, 0x4e));
    p.setColor(QPalette::Midlight, QColor(0x3a, 0x3d, 0x42));
    p.setColor(QPalette::Mid, QColor(0x30, 0x32, 0x36));
    p.setColor(QPalette::Dark, QColor(0x18, 0x19, 0x1b));
    p.setColor(QPalette::Shadow, Qt::black);
    p.setColor(QPalette::Disabled, QPalette::Text, QColor(0x70, 0x74, 0x7a));
    p.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x70, 0x74, 0x7a));
    p.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x70, 0x74, 0x7a));
    return p;
}

} // namespace

int Theme_StyleSheet(int themeNo, QString& styleSheet) {
    styleSheet.clear();
    if (themeNo != 1 && themeNo != 2) return Theme_Missing;
    QString builtIn;
    const int result = readSheet(
        g_sheetRoot + (themeNo == 1 ? QStringLiteral("light.qss") : QStringLiteral("dark.qss")), builtIn);
    if (result != Theme_Ok) return result;
    if (builtIn.trimmed().isEmpty()) return Theme_Missing;
    styleSheet = builtIn;

    const QString folder =
        Folder_Data + (themeNo == 1 ? QStringLiteral("Skin/Light/") : QStringLiteral("Skin/Dark/"));
    const QFileInfo folderInfo(folder);
    if (Folder_Data.isEmpty() || !folderInfo.exists()) return Theme_Ok;
    if (!folderInfo.isReadable() || !folderInfo.isExecutable()) return Theme_Denied;
    const QString userSheet = folder + QStringLiteral("style.qss");
    if (!QFileInfo::exists(userSheet)) return Theme_Ok;
    QString additions;
    const int userResult = readSheet(userSheet, additions);
    if (userResult != Theme_Ok) return userResult;
    styleSheet += QLatin1Char('\n') + additions;
    return Theme_Ok;
}

int Apply_Theme(QApplication& app, int themeNo) {
    if (themeNo != 1 && themeNo != 2) return Theme_Ok;
    Folder_Skin = Folder_Data + (themeNo == 1 ? QStringLiteral("Skin/Light/") : QStringLiteral("Skin/Dark/"));
    if (app.style()->name().compare(QLatin1String("fusion"), Qt::CaseInsensitive) != 0)
        app.setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    app.setPalette(themeNo == 1 ? lightPalette() : darkPalette());
    Skin_ClearCache();
    QString sheet;
    const int result = Theme_StyleSheet(themeNo, sheet);
    if (result == Theme_Ok) app.setStyleSheet(sheet);
    return result;
}

void Theme_ShowFailure(int result) {
    if (result == Theme_Ok) return;
    if (result == Theme_Denied) {
        Show_Message(QStringLiteral("You have been denied permission to access this folder."),
                     MB_OK | MB_ICONEXCLAMATION, QStringLiteral("Error in loading..."));
        return;
    }
    Show_Message(
        QStringLiteral(
            "Missing or corrupted resource files.\nPlease re-install the program to solve this problem."),
        MB_OK | MB_ICONEXCLAMATION, QStringLiteral("Sorry!"));
}

void Theme_SetSheetRoot(const QString& root) {
    g_sheetRoot = root;
}

} // namespace morvane
