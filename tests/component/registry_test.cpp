// The registry file's editing: what it changes and, above all, what it keeps.
#include "component/registry.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace qx {
namespace {

TEST(RegistryFile, ReadsValuesOfASectionWithoutRegardToCase) {
    auto file = RegistryFile::fromText("[One]\nKey=first\n[Two]\nkey = second \n");
    EXPECT_EQ(file.value("one", "KEY"), "first");
    EXPECT_EQ(file.value("Two", "Key"), "second");
    EXPECT_EQ(file.value("Three", "Key"), std::nullopt);
    EXPECT_EQ(file.sections(), (std::vector<std::string>{"One", "Two"}));
}

TEST(RegistryFile, TextOfAnUntouchedFileIsTheTextItWasGiven) {
    const std::string text = "; comment\n\n[A]\nx=1\n# other comment\nnot a key line\n[B]\n";
    EXPECT_EQ(RegistryFile::fromText(text).text(), text);
    EXPECT_EQ(RegistryFile::fromText("[A]\nx=1").text(), "[A]\nx=1");
}

TEST(RegistryFile, SetValueReplacesAValueWhereItStands) {
    auto file = RegistryFile::fromText("[A]\nx=1\ny=2\n");
    file.setValue("a", "X", "9");
    EXPECT_EQ(file.text(), "[A]\nX=9\ny=2\n");
}

TEST(RegistryFile, SetValueAddsAKeyAtTheEndOfItsSectionBeforeTheBlankLines) {
    auto file = RegistryFile::fromText("[A]\nx=1\n\n[B]\nz=3\n");
    file.setValue("A", "y", "2");
    EXPECT_EQ(file.text(), "[A]\nx=1\ny=2\n\n[B]\nz=3\n");
}

TEST(RegistryFile, SetValueAddsANewSectionAfterABlankLine) {
    auto file = RegistryFile::fromText("[A]\nx=1");
    file.setValue("B", "y", "2");
    EXPECT_EQ(file.text(), "[A]\nx=1\n\n[B]\ny=2\n");
    auto empty = RegistryFile::fromText("");
    empty.setValue("B", "y", "2");
    EXPECT_EQ(empty.text(), "[B]\ny=2\n");
}

TEST(RegistryFile, RemoveValueKeepsASectionThatHoldsOtherLines) {
    auto file = RegistryFile::fromText("[A]\nx=1\n; note\n");
    EXPECT_TRUE(file.removeValue("A", "x"));
    EXPECT_EQ(file.text(), "[A]\n; note\n");
}

TEST(RegistryFile, RemoveValueDropsASectionLeftEmptyAndKeepsTheSeparatorOfTheNext) {
    auto file = RegistryFile::fromText("[A]\na=1\n\n[B]\nx=1\n\n[C]\nc=1\n");
    EXPECT_TRUE(file.removeValue("B", "x"));
    EXPECT_EQ(file.text(), "[A]\na=1\n\n[C]\nc=1\n");
}

TEST(RegistryFile, RemoveValueDropsALastSectionWithTheBlankLinesBeforeIt) {
    auto file = RegistryFile::fromText("[A]\na=1\n\n\n[B]\nx=1\n");
    EXPECT_TRUE(file.removeValue("B", "x"));
    EXPECT_EQ(file.text(), "[A]\na=1\n");
}

TEST(RegistryFile, RemoveValueOfAMissingKeyChangesNothing) {
    const std::string text = "[A]\na=1\n";
    auto file = RegistryFile::fromText(text);
    EXPECT_FALSE(file.removeValue("A", "b"));
    EXPECT_FALSE(file.removeValue("Z", "a"));
    EXPECT_EQ(file.text(), text);
}

TEST(RegistryFile, RemoveValueTakesTheKeyFromEveryOccurrenceOfTheSection) {
    auto file = RegistryFile::fromText("[A]\nx=1\n[B]\nb=1\n[A]\nx=2\n");
    EXPECT_TRUE(file.removeValue("A", "x"));
    EXPECT_EQ(file.text(), "[B]\nb=1\n");
}

TEST(RegistryFile, SaveAndLoadRoundTripThroughTheDisk) {
    namespace fs = std::filesystem;
    fs::path folder = fs::temp_directory_path() / "qxfb_registry_roundtrip";
    fs::remove_all(folder);
    fs::path path = folder / "sub" / "registry.ini";
    auto file = RegistryFile::fromText("[A]\nx=1\n");
    file.save(path.string());
    EXPECT_EQ(RegistryFile::load(path.string()).text(), "[A]\nx=1\n");
    EXPECT_FALSE(fs::exists(path.string() + ".tmp"));
    EXPECT_EQ(RegistryFile::load((folder / "missing.ini").string()).text(), "");
    fs::remove_all(folder);
}

TEST(RegistryFilePath, ExplicitPathWinsThenXdgConfigHomeThenHome) {
    const char* savedRegistry = std::getenv("QXFB_REGISTRY");
    const char* savedXdg = std::getenv("XDG_CONFIG_HOME");
    const char* savedHome = std::getenv("HOME");
    std::string registry = savedRegistry ? savedRegistry : "", xdg = savedXdg ? savedXdg : "",
                home = savedHome ? savedHome : "";

    setenv("QXFB_REGISTRY", "/tmp/explicit.ini", 1);
    setenv("XDG_CONFIG_HOME", "/tmp/xdg", 1);
    setenv("HOME", "/tmp/home", 1);
    EXPECT_EQ(registryFilePath(), "/tmp/explicit.ini");
    unsetenv("QXFB_REGISTRY");
    EXPECT_EQ(registryFilePath(), "/tmp/xdg/QxFBCom2/registry.ini");
    setenv("XDG_CONFIG_HOME", "", 1);
    EXPECT_EQ(registryFilePath(), "/tmp/home/.config/QxFBCom2/registry.ini");

    auto restore = [](const char* name, const char* saved, const std::string& value) {
        if (saved)
            setenv(name, value.c_str(), 1);
        else
            unsetenv(name);
    };
    restore("QXFB_REGISTRY", savedRegistry, registry);
    restore("XDG_CONFIG_HOME", savedXdg, xdg);
    restore("HOME", savedHome, home);
}

}  // namespace
}  // namespace qx
