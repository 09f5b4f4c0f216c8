#include "Globals.h"
#include "Registry_Mod.h"
#include "Skin_Icons.h"
#include "Skin_Theme.h"

#include <QDir>
#include <QFile>
#include <QIcon>
#include <QImage>
#include <QSet>
#include <QTemporaryDir>

#include <unistd.h>

#include <gtest/gtest.h>

using namespace morvane;

namespace {

QImage imageOf(const QIcon& icon, int size = 32) {
    return icon.pixmap(size).toImage().convertToFormat(QImage::Format_ARGB32);
}

// Number of visible pixels and their mean colour.
struct Ink {
    int count = 0;
    double r = 0, g = 0, b = 0;
};

Ink inkOf(const QImage& image, int minAlpha = 200) {
    Ink ink;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QRgb px = image.pixel(x, y);
            if (qAlpha(px) < minAlpha) continue;
            ++ink.count;
            ink.r += qRed(px), ink.g += qGreen(px), ink.b += qBlue(px);
        }
    if (ink.count) ink.r /= ink.count, ink.g /= ink.count, ink.b /= ink.count;
    return ink;
}

// Each test starts from the dark theme and no desktop icon theme, so our own drawings are shown.
class SkinIcons : public testing::Test {
protected:
    void SetUp() override {
        m_iconTheme = QIcon::themeName();
        m_searchPaths = QIcon::themeSearchPaths();
        QIcon::setThemeName(QStringLiteral("morvane-no-such-theme"));
        Theme_No = 2;
        Skin_ClearCache();
    }
    void TearDown() override {
        QIcon::setThemeSearchPaths(m_searchPaths);
        QIcon::setThemeName(m_iconTheme);
        Theme_No = 2;
        Skin_ClearCache();
    }
    QString m_iconTheme;
    QStringList m_searchPaths;
};

} // namespace

TEST_F(SkinIcons, EveryRoleOfTheImageListHasAVisibleIcon) {
    const QStringList roles = Skin_Roles();
    ASSERT_EQ(roles.size(), 71);
    EXPECT_EQ(roles.first(), "img_addfile");
    EXPECT_EQ(roles.last(), "img_gplus");
    EXPECT_EQ(roles.indexOf("img_silderrail_4"), roles.indexOf("img_sliderrail_3") + 1);
    EXPECT_TRUE(roles.contains("img_dragmedia") && roles.contains("img_list_icons"));
    EXPECT_EQ(QSet<QString>(roles.begin(), roles.end()).size(), roles.size());
    for (int theme : {1, 2}) {
        Theme_No = theme;
        for (const QString& role : roles) {
            const QIcon icon = Skin_Icon(role);
            ASSERT_FALSE(icon.isNull()) << role.toStdString();
            EXPECT_GT(inkOf(imageOf(icon), 64).count, 8) << role.toStdString() << " theme " << theme;
        }
    }
    // An unknown role still gets something to show.
    EXPECT_GT(inkOf(imageOf(Skin_Icon("img_no_such_role"))).count, 0);
}

TEST_F(SkinIcons, RolesThatMatterLookDifferentAndRepeatedCallsAreCached) {
    const QStringList roles = {"img_addfile",      "img_removefile",    "img_clearall",  "img_convert",
                               "img_stop",         "img_pause",         "img_resume",    "img_continue",
                               "img_completed",    "img_browse",        "img_search",    "img_favorite_on",
                               "img_favorite_off", "img_setting",       "img_menu",      "img_closeform",
                               "img_trim_gray",    "img_trim_selected", "img_switch_on", "img_switch_off"};
    for (int i = 0; i < roles.size(); ++i)
        for (int j = i + 1; j < roles.size(); ++j)
            EXPECT_NE(imageOf(Skin_Icon(roles[i])), imageOf(Skin_Icon(roles[j])))
                << roles[i].toStdString() << " vs " << roles[j].toStdString();

    const qint64 key = Skin_Icon("img_convert").cacheKey();
    EXPECT_EQ(Skin_Icon("img_convert").cacheKey(), key);
    Skin_ClearCache();
    EXPECT_NE(Skin_Icon("img_convert").cacheKey(), key);
}

TEST_F(SkinIcons, GlyphColourFollowsTheThemeAndFixedTonesDoNot) {
    Theme_No = 1;
    const Ink light = inkOf(imageOf(Skin_Icon("img_analyzer")));
    const Ink lightConvert = inkOf(imageOf(Skin_Icon("img_convert")));
    Theme_No = 2;
    Skin_ClearCache();
    const Ink dark = inkOf(imageOf(Skin_Icon("img_analyzer")));
    const Ink darkConvert = inkOf(imageOf(Skin_Icon("img_convert")));
    EXPECT_LT(light.g, 100);
    EXPECT_GT(dark.g, 200);
    // The accent is the same blue on both grounds.
    EXPECT_GT(lightConvert.b, 200);
    EXPECT_LT(lightConvert.r, 40);
    EXPECT_NEAR(lightConvert.b, darkConvert.b, 1);
    EXPECT_NEAR(lightConvert.g, darkConvert.g, 1);
}

TEST_F(SkinIcons, StateIconsCycleAndMarkTheOutcome) {
    for (int image : {0, -1, 15, 100})
        EXPECT_TRUE(Skin_StateIcon(image).isNull()) << image;
    QList<QImage> frames;
    for (int image = 1; image <= 14; ++image) {
        ASSERT_FALSE(Skin_StateIcon(image).isNull()) << image;
        frames << imageOf(Skin_StateIcon(image), 24);
        EXPECT_GT(inkOf(frames.last()).count, 8) << image;
    }
    // Every frame of the cycle differs from the one before, the last from the first too.
    for (int i = 0; i < 9; ++i)
        EXPECT_NE(frames[i], frames[(i + 1) % 9]) << i + 1;
    for (int i = 9; i < 14; ++i)
        for (int j = i + 1; j < 14; ++j)
            EXPECT_NE(frames[i], frames[j]);
    const Ink done = inkOf(frames[9]), failed = inkOf(frames[10]), running = inkOf(frames[0]);
    EXPECT_GT(done.g, done.r + 60);
    EXPECT_GT(failed.r, failed.g + 60);
    EXPECT_GT(running.b, running.r + 100);
}

TEST_F(SkinIcons, DropHintPictureHasTheAskedSizeAndAClearGround) {
    for (QSize size : {QSize(320, 200), QSize(120, 240), QSize(48, 48)}) {
        const QImage picture =
            Skin_Picture("img_dragmedia", size).toImage().convertToFormat(QImage::Format_ARGB32);
        ASSERT_EQ(picture.size(), size);
        EXPECT_GT(inkOf(picture).count, size.width() / 2);
        EXPECT_EQ(qAlpha(picture.pixel(0, 0)), 0);
        EXPECT_EQ(qAlpha(picture.pixel(size.width() / 2, size.height() / 8)), 0);
    }
    // Any other role is its glyph at that size, sharp rather than scaled up.
    const QPixmap big = Skin_Picture("img_setting", QSize(96, 64));
    EXPECT_EQ(big.size(), QSize(96, 64));
    EXPECT_GT(inkOf(big.toImage().convertToFormat(QImage::Format_ARGB32)).count, 300);
    EXPECT_TRUE(Skin_Picture("img_dragmedia", QSize()).isNull());
}

TEST_F(SkinIcons, StoreNumbersMapToTheirRoles) {
    EXPECT_EQ(Skin_StoreIcon(5).cacheKey(), Skin_Icon("img_convert").cacheKey());
    EXPECT_EQ(Skin_StoreIcon(7).cacheKey(), Skin_Icon("img_pause").cacheKey());
    EXPECT_EQ(Skin_StoreIcon(34).cacheKey(), Skin_Icon("img_resume").cacheKey());
    EXPECT_EQ(Skin_StoreIcon(10).cacheKey(), Skin_Icon("img_warning").cacheKey());
    const QIcon placeholder = Skin_StoreIcon(99);
    EXPECT_FALSE(placeholder.isNull());
    EXPECT_EQ(Skin_StoreIcon(0).cacheKey(), placeholder.cacheKey());
    ASSERT_FALSE(Skin_StoreIcon(41).isNull());
    EXPECT_NE(imageOf(Skin_StoreIcon(41)), imageOf(placeholder));
    for (int n : {5, 7, 34, 10})
        EXPECT_NE(imageOf(Skin_StoreIcon(41)), imageOf(Skin_StoreIcon(n))) << n;
}

TEST_F(SkinIcons, DesktopThemeIconsAreUsedOnlyWhereTheyStayLegible) {
    QIcon::setThemeSearchPaths({QStringLiteral("/usr/share/icons")});
    QIcon::setThemeName(QStringLiteral("Adwaita"));
    if (!QIcon::hasThemeIcon(QStringLiteral("list-add"))) GTEST_SKIP() << "no Adwaita icon theme";
    // Adwaita's grey magnifier suits the light ground and would vanish on the dark one; its white disc
    // is the other way round.
    Theme_No = 1;
    EXPECT_EQ(Skin_Icon("img_search").name(), "edit-find");
    EXPECT_TRUE(Skin_Icon("img_add_dvd").name().isEmpty());
    Theme_No = 2;
    const QIcon dark = Skin_Icon("img_search");
    EXPECT_TRUE(dark.name().isEmpty());
    EXPECT_GT(inkOf(imageOf(dark)).g, 200);
    EXPECT_EQ(Skin_Icon("img_add_dvd").name(), "media-optical");
    // A role without a standard name is ours whatever the theme.
    Theme_No = 1;
    EXPECT_TRUE(Skin_Icon("img_convert").name().isEmpty());
}

// The theme's sheet: built in, with the user's additions from the skin folder after it; a folder or
// sheet that cannot be read, and built-in sheets that are missing, say why.
TEST(SkinTheme, SheetsComeBuiltInWithTheUsersAdditions) {
    const QString savedData = Folder_Data;
    QTemporaryDir data;
    ASSERT_TRUE(data.isValid());
    Folder_Data = data.path() + QLatin1Char('/');

    QString light, dark;
    ASSERT_EQ(Theme_StyleSheet(1, light), Theme_Ok);
    ASSERT_EQ(Theme_StyleSheet(2, dark), Theme_Ok);
    EXPECT_NE(light, dark);
    for (const QString& sheet : {light, dark}) {
        EXPECT_TRUE(sheet.contains(QLatin1String("QToolButton#GroupButton:checked")));
        EXPECT_TRUE(sheet.contains(QLatin1String("QPushButton[panelTab=\"true\"]:checked")));
    }
    QString none;
    EXPECT_EQ(Theme_StyleSheet(3, none), Theme_Missing);
    EXPECT_TRUE(none.isEmpty());

    // Additions of the user's own apply to their theme only.
    QDir().mkpath(Folder_Data + "Skin/Dark");
    QFile user(Folder_Data + "Skin/Dark/style.qss");
    ASSERT_TRUE(user.open(QIODevice::WriteOnly));
    user.write("QLabel { color: #123456; }\n");
    user.close();
    QString withUser;
    ASSERT_EQ(Theme_StyleSheet(2, withUser), Theme_Ok);
    EXPECT_TRUE(withUser.startsWith(dark));
    EXPECT_TRUE(withUser.endsWith(QLatin1String("QLabel { color: #123456; }\n")));
    ASSERT_EQ(Theme_StyleSheet(1, light), Theme_Ok);
    EXPECT_FALSE(light.contains(QLatin1String("#123456")));

    // A folder that may not be read (meaningless for root, who reads anything).
    if (geteuid() != 0) {
        QFile::setPermissions(Folder_Data + "Skin/Dark", QFileDevice::Permissions());
        QString denied;
        EXPECT_EQ(Theme_StyleSheet(2, denied), Theme_Denied);
        QFile::setPermissions(Folder_Data + "Skin/Dark",
                              QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    }

    // Built-in sheets that are not there, or empty.
    QTemporaryDir root;
    Theme_SetSheetRoot(root.path() + QLatin1Char('/'));
    QString missing;
    EXPECT_EQ(Theme_StyleSheet(1, missing), Theme_Missing);
    QFile empty(root.filePath("dark.qss"));
    ASSERT_TRUE(empty.open(QIODevice::WriteOnly));
    empty.close();
    EXPECT_EQ(Theme_StyleSheet(2, missing), Theme_Missing);
    Theme_SetSheetRoot(QStringLiteral(":/skin/"));
    Folder_Data = savedData;
}
