#include "TempHome.h"

#include "Folders_Mods.h"
#include "Globals.h"
#include "Registry_Mod.h"
#include "Work_Folder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

using namespace morvane;

namespace {
void touch(const QString& path) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("x");
}
} // namespace

class FoldersTest : public ::testing::Test {
protected:
    void SetUp() override {
        REGISTRY_PRODUCT = QStringLiteral("morvane-test/settings");
        Folder_Data = home.path() + "/.local/share/morvane/";
        Folder_Temp = Folder_Data + "temp/";
    }
    TempHome home;
};

TEST_F(FoldersTest, SpecialFoldersAreTheUserFoldersThatExist) {
    EXPECT_EQ(Get_SpecialFolder(CSIDL_MYVIDEO), "");
    EXPECT_EQ(Get_SpecialFolder(CSIDL_PERSONAL), "");
    // No desktop folder: the home stands in for it.
    EXPECT_EQ(Get_SpecialFolder(CSIDL_DESKTOP), home.path() + '/');
    EXPECT_EQ(Get_SpecialFolder(CSIDL_APPDATA), home.path() + "/.local/share/");
    EXPECT_EQ(Get_SpecialFolder(12345), "");

    const QString videos = home.make("Videos");
    const QString documents = home.make("Documents");
    const QString pictures = home.make("Pictures");
    const QString desktop = home.make("Desktop");
    EXPECT_EQ(Get_SpecialFolder(CSIDL_MYVIDEO), videos);
    EXPECT_EQ(Get_SpecialFolder(CSIDL_PERSONAL), documents);
    EXPECT_EQ(Get_SpecialFolder(CSIDL_MYPICTURES), pictures);
    EXPECT_EQ(Get_SpecialFolder(CSIDL_DESKTOP), desktop);
}

TEST_F(FoldersTest, InitFoldersFallsBackFolderByFolder) {
    const QString videos = home.make("Videos");
    const QString pictures = home.make("Pictures");
    Init_Folders();
    EXPECT_TRUE(QFileInfo(Folder_Data).isDir());
    EXPECT_TRUE(QFileInfo(Folder_Temp).isDir());
    EXPECT_EQ(Path_Input, videos);
    EXPECT_EQ(Path_LastDisc, videos);
    EXPECT_EQ(Path_Output, videos);
    EXPECT_EQ(Path_Capture, pictures); // pictures first, never videos

    // Without videos and pictures the documents folder serves, then the desktop.
    QDir(videos).removeRecursively();
    QDir(pictures).removeRecursively();
    const QString documents = home.make("Documents");
    Init_Folders();
    EXPECT_EQ(Path_Output, documents);
    EXPECT_EQ(Path_Capture, documents);
    QDir(documents).removeRecursively();
    Init_Folders();
    EXPECT_EQ(Path_Input, home.path() + '/');
}

TEST_F(FoldersTest, StoredFoldersWinWhileTheyExist) {
    const QString videos = home.make("Videos");
    const QString stored = home.make("My Output");
    const QString input = home.make("In");
    ASSERT_TRUE(Write_Setting(REGISTRY_PRODUCT, "OutputPath", stored));
    ASSERT_TRUE(Write_Setting(REGISTRY_PRODUCT, "InputPath", "  " + input + "  "));
    ASSERT_TRUE(Write_Setting(REGISTRY_PRODUCT, "CapturePath", home.path() + "/gone/"));
    Init_Folders();
    EXPECT_EQ(Path_Output, stored);
    EXPECT_EQ(Path_Input, input);
    EXPECT_EQ(Path_LastDisc, input);
    EXPECT_EQ(Path_Capture, home.path() + '/'); // no pictures, documents or desktop: the home

    // A stored folder that is gone falls back, and the setting stays as it was.
    QDir(stored).removeRecursively();
    Init_Folders();
    EXPECT_EQ(Path_Output, videos);
    EXPECT_EQ(Read_Setting(REGISTRY_PRODUCT, "OutputPath"), stored);
}

TEST_F(FoldersTest, EnsureOutputFolderCreatesOneLevelOnlyAndSaysWhyNot) {
    const QString documents = home.make("Documents");
    touch(home.path() + "/a-file");
    const QString root = home.path();
    const struct {
        QString box;
        bool made;
        QString reason; // "" when made
    } cases[] = {
        {"   ", true, ""},
        {root + "/new-folder", true, ""},
        {root + "/missing/parent", false,
         "the folder above the output folder '" + root + "/missing/parent' does not exist"},
        {root + "/a-file", false, "the output folder '" + root + "/a-file' is a file"},
        {root + "/a-file/inside", false,
         "cannot make the output folder '" + root + "/a-file/inside': Not a directory"},
    };
    for (const auto& c : cases) {
        QString box = c.box;
        QString reason = "stale";
        EXPECT_EQ(Ensure_OutputFolder(box, reason), c.made) << c.box.toStdString();
        EXPECT_EQ(reason, c.reason);
        EXPECT_EQ(QFileInfo(box).isDir(), c.made) << c.box.toStdString();
    }
    QString box = "";
    QString reason;
    Ensure_OutputFolder(box, reason);
    EXPECT_EQ(box, documents);

    QDir(documents).removeRecursively();
    box.clear();
    EXPECT_TRUE(Ensure_OutputFolder(box, reason)); // no documents folder: the desktop, here the home
    EXPECT_EQ(box, home.path() + '/');
    EXPECT_EQ(Default_OutputFolder(), box);
}

TEST_F(FoldersTest, MoveAndDeleteFiles) {
    const QString source = home.path() + "/clip.mp4";
    const QString target = home.path() + "/renamed.mp4";
    touch(source);
    EXPECT_EQ(Move_File(source, target), "");
    EXPECT_FALSE(QFileInfo::exists(source));
    EXPECT_TRUE(QFileInfo::exists(target));

    // Failures come back as the system's words, and nothing is overwritten.
    touch(source);
    EXPECT_NE(Move_File(source, target), "");
    EXPECT_TRUE(QFileInfo::exists(source));
    EXPECT_NE(Move_File(home.path() + "/nothing.mp4", home.path() + "/x.mp4"), "");

    QFile::setPermissions(target, QFileDevice::ReadOwner);
    Delete_File(target);
    EXPECT_FALSE(QFileInfo::exists(target));
    Delete_File(home.path() + "/never-there");
}

TEST_F(FoldersTest, ClearTempPicturesTakesOnlyBitmaps) {
    QDir().mkpath(Folder_Temp);
    touch(Folder_Temp + "thumb1.bmp");
    touch(Folder_Temp + "thumb2.BMP");
    touch(Folder_Temp + "format.dat");
    Clear_TempPictures();
    EXPECT_FALSE(QFileInfo::exists(Folder_Temp + "thumb1.bmp"));
    EXPECT_FALSE(QFileInfo::exists(Folder_Temp + "thumb2.BMP"));
    EXPECT_TRUE(QFileInfo::exists(Folder_Temp + "format.dat"));

    Folder_Temp = home.path() + "/no-such-temp/";
    Clear_TempPictures();
}

TEST_F(FoldersTest, DeletingALinkLeavesItsTargetAlone) {
    const QString target = home.path() + "/keep.txt";
    touch(target);
    QFile::setPermissions(target, QFileDevice::ReadOwner);
    const QString link = home.path() + "/link.txt";
    ASSERT_TRUE(QFile::link(target, link));
    Delete_File(link);
    EXPECT_FALSE(QFileInfo(link).isSymLink());
    EXPECT_TRUE(QFileInfo::exists(target));
    EXPECT_EQ(QFile::permissions(target) & QFileDevice::WriteOwner, QFileDevice::Permissions());
    // A dangling link goes too.
    ASSERT_TRUE(QFile::link(home.path() + "/nowhere", link));
    Delete_File(link);
    EXPECT_FALSE(QFileInfo(link).isSymLink());
}

TEST_F(FoldersTest, EachProcessWorksInAFolderOfItsOwnAndDeadOnesAreCleared) {
    const QString shared = home.path() + "/shared/";
    // A folder left by a killed process (its lock free) and one of a live process (lock held).
    for (const char* name : {"run-1-dead", "run-2-live"}) {
        QDir().mkpath(shared + name);
        touch(shared + name + "/.lock");
        touch(shared + name + "/file.txt");
    }
    const int held = ::open((shared + "run-2-live/.lock").toUtf8().constData(), O_RDONLY);
    ASSERT_EQ(flock(held, LOCK_EX | LOCK_NB), 0);

    const QString mine = Work_Folder_Open(shared);
    ASSERT_TRUE(mine.startsWith(shared + "run-")) << mine.toStdString();
    EXPECT_TRUE(QFileInfo(mine).isDir());
    EXPECT_EQ(Work_Folder_Open(shared), mine); // one per process
    EXPECT_FALSE(QFileInfo::exists(shared + "run-1-dead"));
    EXPECT_TRUE(QFileInfo::exists(shared + "run-2-live/file.txt"));
    touch(mine + "catalogue.dat");
    Work_Folder_Close();
    EXPECT_FALSE(QFileInfo::exists(mine));
    ::close(held);
}
