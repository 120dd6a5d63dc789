// The application folder a component starts with when neither the host nor
// $QXFB_APP_FOLDER names one: the installed runtime folder found relative to
// the library, else the source tree's.
#include "component/default_app_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "support/scratch_files.h"

namespace qx {
namespace {

namespace fs = std::filesystem;

TEST(InstalledAppFolder, TakesTheRelativePathFromTheFolderOfTheLibrary) {
    EXPECT_EQ(installedAppFolder("/opt/qxfb/lib/libQxFBCom2.so", "../share/QxFBCom2/bin"),
              "/opt/qxfb/share/QxFBCom2/bin");
    EXPECT_EQ(installedAppFolder("/usr/lib/x86_64-linux-gnu/libQxFBCom2.so", "../../share/QxFBCom2/bin"),
              "/usr/share/QxFBCom2/bin");
    EXPECT_EQ(installedAppFolder("/moved/prefix/lib64/libQxFBCom2.so", "../share/QxFBCom2/bin"),
              "/moved/prefix/share/QxFBCom2/bin");
}

TEST(InstalledAppFolder, IsEmptyWithoutALibraryOrARelativePath) {
    EXPECT_EQ(installedAppFolder("", "../share/QxFBCom2/bin"), "");
    EXPECT_EQ(installedAppFolder("/opt/qxfb/lib/libQxFBCom2.so", ""), "");
    EXPECT_EQ(installedAppFolder("libQxFBCom2.so", "../share/QxFBCom2/bin"), "");
}

// A prefix in a temporary folder, with the library file and, when asked, the
// runtime folder of an install.
class DefaultAppFolderTest : public ::testing::Test {
protected:
    void SetUp() override {
        fs::create_directories(prefix / "lib");
        test::writeFile(prefix / "lib" / "libQxFBCom2.so", "not a library");
    }

    std::string library() const { return (prefix / "lib" / "libQxFBCom2.so").string(); }

    test::ScratchFolder scratch{"qxfb_default_app_folder"};
    const fs::path prefix = scratch.path();
    const std::string relative = "../share/QxFBCom2/bin";
    const std::string sourceTree = "/src/qxfbcom2/runtime/bin";
};

TEST_F(DefaultAppFolderTest, AnInstalledLibraryUsesTheRuntimeFolderOfItsPrefix) {
    fs::create_directories(prefix / "share" / "QxFBCom2" / "bin");
    fs::create_directories(prefix / "share" / "QxFBCom2" / "FB_Lib" / "RT");
    EXPECT_EQ(defaultAppFolder(library(), relative, sourceTree), (prefix / "share" / "QxFBCom2" / "bin").string());
}

TEST_F(DefaultAppFolderTest, AnInstallNeedsBothTheApplicationFolderAndTheRuntimeFolder) {
    // The families read <application folder>/../FB_Lib/RT/, which the system
    // resolves only when the application folder itself is there.
    fs::create_directories(prefix / "share" / "QxFBCom2" / "bin");
    EXPECT_EQ(defaultAppFolder(library(), relative, sourceTree), sourceTree);
    fs::remove_all(prefix / "share" / "QxFBCom2" / "bin");
    fs::create_directories(prefix / "share" / "QxFBCom2" / "FB_Lib" / "RT");
    EXPECT_EQ(defaultAppFolder(library(), relative, sourceTree), sourceTree);
}

TEST_F(DefaultAppFolderTest, ALibraryInTheBuildTreeKeepsTheSourceTreeFolder) {
    EXPECT_EQ(defaultAppFolder(library(), relative, sourceTree), sourceTree);
    // A file where the runtime folder would be is no runtime folder.
    fs::create_directories(prefix / "share" / "QxFBCom2" / "FB_Lib");
    std::ofstream(prefix / "share" / "QxFBCom2" / "FB_Lib" / "RT") << "x";
    EXPECT_EQ(defaultAppFolder(library(), relative, sourceTree), sourceTree);
}

TEST_F(DefaultAppFolderTest, WithoutTheLibraryPathTheSourceTreeFolderStays) {
    fs::create_directories(prefix / "share" / "QxFBCom2" / "FB_Lib" / "RT");
    EXPECT_EQ(defaultAppFolder("", relative, sourceTree), sourceTree);
    EXPECT_EQ(defaultAppFolder(library(), "", sourceTree), sourceTree);
}

}  // namespace
}  // namespace qx
