#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "platform/host/host_services.h"

namespace qx {
namespace {

class PrivateProfile : public ::testing::Test {
protected:
    void SetUp() override {
        path_ = std::filesystem::temp_directory_path() / ("qxfb_profile_" + std::to_string(::getpid()) + ".ini");
        std::ofstream(path_) << "; comment\n[170100]\nCurrentHexFileVersion = 100\nQuoted=\"a b\"\n[other]\nKey=2\n";
    }
    void TearDown() override { std::filesystem::remove(path_); }
    std::string read(const std::string& section, const std::string& key, uint32_t size = 255) {
        std::string buffer(255, ' ');
        GetPrivateProfileStringA(section, key, "NO RESULT", buffer, size, path_.string());
        return buffer.substr(0, buffer.find('\0'));
    }
    std::filesystem::path path_;
};

TEST_F(PrivateProfile, ReadsTheKeyOfItsSection) {
    EXPECT_EQ(read("170100", "CurrentHexFileVersion"), "100");
    EXPECT_EQ(read("170100", "currenthexfileversion"), "100");
    EXPECT_EQ(read("other", "Key"), "2");
    EXPECT_EQ(read("170100", "Quoted"), "a b");
}

TEST_F(PrivateProfile, MissingKeyOrFileGivesTheDefault) {
    EXPECT_EQ(read("170100", "Key"), "NO RESULT");
    std::string buffer(255, ' ');
    GetPrivateProfileStringA("s", "k", "NO RESULT", buffer, 255, "/nonexistent/x.ini");
    EXPECT_EQ(buffer.substr(0, 10), std::string("NO RESULT") + '\0');
}

TEST_F(PrivateProfile, ValueIsCutToTheBufferLessItsNul) { EXPECT_EQ(read("170100", "CurrentHexFileVersion", 3), "10"); }

TEST_F(PrivateProfile, BlanksBehindTheNulStayInTheBuffer) {
    std::string buffer(255, ' ');
    uint32_t n = GetPrivateProfileStringA("170100", "CurrentHexFileVersion", "", buffer, 255, path_.string());
    EXPECT_EQ(n, 3u);
    EXPECT_EQ(buffer.size(), 255u);
    EXPECT_EQ(buffer[3], '\0');
    EXPECT_EQ(buffer[4], ' ');
}

TEST(IniText, AByteOrderMarkDoesNotHideTheFirstSection) {
    EXPECT_EQ(findIniValue("\xEF\xBB\xBF[170100]\r\nKey=1\r\n", "170100", "Key"), "1");
}

TEST(IniText, NamesFoldTheCaseOfAsciiLettersOnly) {
    EXPECT_EQ(findIniValue("[Sect]\nKEY=1\n", "sECT", "key"), "1");
    // Latin-1 capital and small e with acute are different names in any locale.
    EXPECT_EQ(findIniValue("[s]\n\xC9=1\n", "s", "\xE9"), std::nullopt);
    EXPECT_EQ(findIniValue("[s]\n\xC9=1\n", "s", "\xC9"), "1");
}

TEST(IniText, TheFirstKeyOfTheSectionWinsAndOtherSectionsAreNotLookedAt) {
    const std::string ini = "[a]\nk=1\n[b]\nk=2\n[a]\nk=3\n";
    EXPECT_EQ(findIniValue(ini, "a", "k"), "1");
    EXPECT_EQ(findIniValue(ini, "b", "k"), "2");
    EXPECT_EQ(findIniValue(ini, "c", "k"), std::nullopt);
    EXPECT_EQ(findIniValue("k=0\n", "", "k"), "0");  // a key before any section belongs to the nameless one
}

}  // namespace
}  // namespace qx
