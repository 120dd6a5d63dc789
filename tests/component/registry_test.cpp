// The registry file's editing: what it changes and, above all, what it keeps;
// and its saving: through links, with the mode and owner of the file it
// replaces, never leaving a temporary behind.
#include "component/registry.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <vector>

#include "component/built_paths.h"
#include "component/com_server.h"
#include "support/scratch_files.h"

namespace qx {
namespace {

namespace fs = std::filesystem;

const std::string Bom = "\xEF\xBB\xBF";

using test::readFile;
using test::writeFile;

// The names in a folder, to see that no temporary file was left there.
std::vector<std::string> namesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

mode_t modeOf(const fs::path& path) {
    struct stat info {};
    EXPECT_EQ(::stat(path.c_str(), &info), 0) << path;
    return info.st_mode & 07777;
}

// A folder of its own for each test, removed afterwards.
class RegistryFolder : public ::testing::Test {
protected:
    test::ScratchFolder scratch{"qxfb_registry"};
    const fs::path folder = scratch.path();
};

// AddressSanitizer needs the whole address space for its shadow memory.
#if defined(__SANITIZE_ADDRESS__)
#define QXFB_TEST_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QXFB_TEST_ASAN 1
#endif
#endif

// Runs body in a child process that a blocking read cannot hang nor a
// runaway one exhaust the machine with; its exit status, or 128 + the signal
// that ended it.
int inGuardedChild(const std::function<int()>& body) {
    pid_t child = fork();
    if (child == 0) {
        alarm(10);
#ifndef QXFB_TEST_ASAN
        const rlimit memory{1u << 30, 1u << 30};
        setrlimit(RLIMIT_AS, &memory);
#endif
        int code = 99;  // whatever escapes body must not run the rest of the tests in the child
        try {
            code = body();
        } catch (...) {
        }
        _exit(code);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// Sets the C locale for one test, and the one before back.
class ScopedLocale {
public:
    explicit ScopedLocale(const char* name) : before_(std::setlocale(LC_ALL, nullptr)) {
        active_ = std::setlocale(LC_ALL, name) != nullptr;
    }
    ~ScopedLocale() { std::setlocale(LC_ALL, before_.c_str()); }
    bool active() const { return active_; }

private:
    std::string before_;
    bool active_ = false;
};

TEST(RegistryFile, ReadsValuesOfASectionWithoutRegardToCase) {
    auto file = RegistryFile::fromText("[One]\nKey=first\n[Two]\nkey = second \n");
    EXPECT_EQ(file.value("one", "KEY"), "first");
    EXPECT_EQ(file.value("Two", "Key"), "second");
    EXPECT_EQ(file.value("Three", "Key"), std::nullopt);
    EXPECT_EQ(file.sections(), (std::vector<std::string>{"One", "Two"}));
}

TEST(RegistryFile, TextOfAnUntouchedFileIsTheTextItWasGiven) {
    for (const std::string& text : std::vector<std::string>{
             "; comment\n\n[A]\nx=1\n# other comment\nnot a key line\n[B]\n", "[A]\nx=1", "[A]\r\nx=1\r\n",
             "[A]\r\nx=1", "[A]\nx=1\r\n\r\n[B]\n", Bom + "[A]\nx=1\n", Bom, "", "\n", "\r\n", "x\r", "\n\n\r\r\n"})
        EXPECT_EQ(RegistryFile::fromText(text).text(), text);
}

TEST(RegistryFile, SetValueReplacesAValueWhereItStands) {
    auto file = RegistryFile::fromText("[A]\nx=1\ny=2\n");
    file.setValue("a", "X", "9");
    EXPECT_EQ(file.text(), "[A]\nX=9\ny=2\n");
}

TEST(RegistryFile, SetValueOfTheValueAlreadyThereLeavesTheLineAsItIs) {
    const std::string text = "[A]\n  x = 1 \ny=2\n";
    auto file = RegistryFile::fromText(text);
    file.setValue("A", "X", "1");
    EXPECT_EQ(file.text(), text);
}

TEST(RegistryFile, SetValueAddsAKeyAtTheEndOfItsSectionBeforeTheBlankLines) {
    auto file = RegistryFile::fromText("[A]\nx=1\n\n[B]\nz=3\n");
    file.setValue("A", "y", "2");
    EXPECT_EQ(file.text(), "[A]\nx=1\ny=2\n\n[B]\nz=3\n");
}

TEST(RegistryFile, SetValueAddsANewSectionAfterABlankLineOfItsOwn) {
    auto file = RegistryFile::fromText("[A]\nx=1\n");
    file.setValue("B", "y", "2");
    EXPECT_EQ(file.text(), "[A]\nx=1\n\n[B]\ny=2\n");
    // The blank line comes even after one that is there, so that removing the
    // section takes exactly what adding it brought.
    auto spaced = RegistryFile::fromText("[A]\nx=1\n\n");
    spaced.setValue("B", "y", "2");
    EXPECT_EQ(spaced.text(), "[A]\nx=1\n\n\n[B]\ny=2\n");
    auto empty = RegistryFile::fromText("");
    empty.setValue("B", "y", "2");
    EXPECT_EQ(empty.text(), "[B]\ny=2\n");
}

TEST(RegistryFile, AFileWithoutAFinalNewlineKeepsHavingNone) {
    auto file = RegistryFile::fromText("[A]\nx=1");
    file.setValue("A", "y", "2");
    EXPECT_EQ(file.text(), "[A]\nx=1\ny=2");
    file.setValue("B", "z", "3");
    EXPECT_EQ(file.text(), "[A]\nx=1\ny=2\n\n[B]\nz=3");
    EXPECT_TRUE(file.removeValue("B", "z"));
    EXPECT_TRUE(file.removeValue("A", "y"));
    EXPECT_EQ(file.text(), "[A]\nx=1");
}

TEST(RegistryFile, NewLinesTakeTheEndingMostLinesOfTheFileHave) {
    auto file = RegistryFile::fromText("[A]\r\nx=1\r\n; note\n[C]\r\n");
    file.setValue("A", "y", "2");
    file.setValue("B", "z", "3");
    EXPECT_EQ(file.text(), "[A]\r\nx=1\r\n; note\ny=2\r\n[C]\r\n\r\n[B]\r\nz=3\r\n");
}

TEST(RegistryFile, AReplacedLineKeepsItsOwnEnding) {
    auto file = RegistryFile::fromText("[A]\nx=1\r\ny=2\n");
    file.setValue("A", "x", "9");
    file.setValue("A", "y", "8");
    EXPECT_EQ(file.text(), "[A]\nx=9\r\ny=8\n");
}

TEST(RegistryFile, AByteOrderMarkHidesNoSectionAndStaysAsItIs) {
    auto file = RegistryFile::fromText(Bom + "[A]\nx=1\n");
    EXPECT_EQ(file.sections(), (std::vector<std::string>{"A"}));
    EXPECT_TRUE(file.hasSection("a"));
    EXPECT_EQ(file.value("A", "x"), "1");
    file.setValue("A", "y", "2");
    EXPECT_EQ(file.text(), Bom + "[A]\nx=1\ny=2\n");
    EXPECT_TRUE(file.removeValue("A", "y"));
    EXPECT_TRUE(file.removeValue("A", "x"));
    EXPECT_EQ(file.text(), Bom);
}

TEST(RegistryFile, NamesFoldTheCaseOfAsciiLettersOnlyInEveryLocale) {
    // An 8-bit locale is where a byte outside ASCII would fold; it is tried
    // when the machine has one.
    for (const char* locale : {"C", "C.UTF-8", "en_US.ISO-8859-1"}) {
        ScopedLocale scoped(locale);
        if (!scoped.active()) continue;
        SCOPED_TRACE(locale);
        auto file = RegistryFile::fromText("[Caf\xC9]\nK\xC9Y=1\n[D\xC4\xB0R]\nk=2\n[CamelCase]\nKey=3\n");
        EXPECT_EQ(file.value("Caf\xE9", "K\xC9Y"), std::nullopt);
        EXPECT_EQ(file.value("Caf\xC9", "k\xE9y"), std::nullopt);
        EXPECT_EQ(file.value("Caf\xC9", "k\xC9y"), "1");
        EXPECT_EQ(file.value("dir", "k"), std::nullopt);
        EXPECT_EQ(file.value("d\xC4\xB0r", "K"), "2");
        EXPECT_EQ(file.value("CAMELcase", "kEY"), "3");
        EXPECT_FALSE(file.hasSection("caf\xE9"));
    }
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

TEST(RegistryFile, RemoveValueDropsALastSectionWithTheOneBlankLineBeforeIt) {
    auto file = RegistryFile::fromText("[A]\na=1\n\n\n[B]\nx=1\n");
    EXPECT_TRUE(file.removeValue("B", "x"));
    EXPECT_EQ(file.text(), "[A]\na=1\n\n");
}

TEST(RegistryFile, RemoveValueOfAMissingKeyChangesNothing) {
    const std::string text = "[A]\na=1\n";
    auto file = RegistryFile::fromText(text);
    EXPECT_FALSE(file.removeValue("A", "b"));
    EXPECT_FALSE(file.removeValue("Z", "a"));
    EXPECT_EQ(file.text(), text);
}

TEST(RegistryFile, RemoveValueTakesOnlyTheLineSetValueWrites) {
    // setValue writes to the first occurrence of a section; a second one is
    // someone else's, keys of the same name included.
    auto file = RegistryFile::fromText("[A]\nx=1\n[B]\nb=1\n[A]\nx=2\nFoo=bar\n");
    EXPECT_TRUE(file.removeValue("A", "x"));
    EXPECT_EQ(file.text(), "[B]\nb=1\n[A]\nx=2\nFoo=bar\n");
}

TEST(RegistryFile, RemovingWhatWasAddedGivesBackTheText) {
    for (const std::string& text : std::vector<std::string>{"[A]\nx=1\n", "[A]\r\nx=1\r\n", "[A]\nx=1", "[A]\r\nx=1",
                                                            "; c\n\n[A]\n# d\nx=1\n\n\n", Bom + "[A]\r\nx=1\r\n", "",
                                                            "\n", "[A]\nx=1\r\n\n[Z]\r\nz=1"}) {
        SCOPED_TRACE(::testing::PrintToString(text));
        auto file = RegistryFile::fromText(text);
        file.setValue("A", "added", "1");
        file.setValue("New", "key", "2");
        file.setValue("Newer", "key", "3");
        EXPECT_TRUE(file.removeValue("New", "key"));
        EXPECT_TRUE(file.removeValue("A", "added"));
        EXPECT_TRUE(file.removeValue("Newer", "key"));
        EXPECT_EQ(file.text(), text);
    }
}

TEST_F(RegistryFolder, SaveAndLoadRoundTripThroughTheDiskAndLeaveNoTemporary) {
    fs::path path = folder / "sub" / "registry.ini";
    RegistryFile::fromText("[A]\nx=1\n").save(path.string());
    EXPECT_EQ(RegistryFile::load(path.string()).text(), "[A]\nx=1\n");
    RegistryFile::fromText("[A]\nx=2\n").save(path.string());
    EXPECT_EQ(RegistryFile::load(path.string()).text(), "[A]\nx=2\n");
    EXPECT_EQ(namesIn(folder / "sub"), std::vector<std::string>{"registry.ini"});
    EXPECT_EQ(RegistryFile::load((folder / "missing.ini").string()).text(), "");
}

TEST_F(RegistryFolder, SaveWritesThroughASymbolicLinkToItsTarget) {
    fs::create_directories(folder / "real");
    writeFile(folder / "real" / "target.ini", "[Other]\na=1\n");
    fs::create_symlink("real/target.ini", folder / "registry.ini");
    RegistryFile::fromText("[A]\nx=1\n").save((folder / "registry.ini").string());
    EXPECT_TRUE(fs::is_symlink(folder / "registry.ini"));
    EXPECT_EQ(fs::read_symlink(folder / "registry.ini"), "real/target.ini");
    EXPECT_EQ(readFile(folder / "real" / "target.ini"), "[A]\nx=1\n");
    EXPECT_EQ(namesIn(folder / "real"), std::vector<std::string>{"target.ini"});
}

TEST_F(RegistryFolder, SaveFollowsAChainOfLinksEachRelativeToItsOwnFolder) {
    fs::create_directories(folder / "a");
    fs::create_directories(folder / "b");
    fs::create_directories(folder / "c");
    writeFile(folder / "c" / "target.ini", "old\n");
    fs::create_symlink(folder / "b" / "second", folder / "a" / "first");
    fs::create_symlink("../c/target.ini", folder / "b" / "second");
    RegistryFile::fromText("new\n").save((folder / "a" / "first").string());
    EXPECT_TRUE(fs::is_symlink(folder / "a" / "first"));
    EXPECT_TRUE(fs::is_symlink(folder / "b" / "second"));
    EXPECT_EQ(readFile(folder / "c" / "target.ini"), "new\n");
}

TEST_F(RegistryFolder, SaveThroughADanglingLinkCreatesItsTarget) {
    fs::create_symlink("made/target.ini", folder / "registry.ini");
    RegistryFile::fromText("[A]\nx=1\n").save((folder / "registry.ini").string());
    EXPECT_TRUE(fs::is_symlink(folder / "registry.ini"));
    EXPECT_EQ(readFile(folder / "made" / "target.ini"), "[A]\nx=1\n");
}

TEST_F(RegistryFolder, SaveRefusesALoopOfLinks) {
    fs::create_symlink("two", folder / "one");
    fs::create_symlink("one", folder / "two");
    EXPECT_THROW(RegistryFile::fromText("x\n").save((folder / "one").string()), std::runtime_error);
    EXPECT_EQ(namesIn(folder), (std::vector<std::string>{"one", "two"}));
}

TEST_F(RegistryFolder, SaveKeepsTheModeOfTheFileItReplaces) {
    for (mode_t mode : {0600, 0640, 0664, 0200}) {
        SCOPED_TRACE(mode);
        const fs::path path = folder / "registry.ini";
        writeFile(path, "old\n");
        ASSERT_EQ(::chmod(path.c_str(), mode), 0);
        RegistryFile::fromText("new\n").save(path.string());
        EXPECT_EQ(readFile(path), "new\n");
        EXPECT_EQ(modeOf(path), mode);
        fs::remove(path);
    }
}

TEST_F(RegistryFolder, SaveRefusesAFileNoOneMayWriteEvenThoughItsFolderAllowsIt) {
    // Root could write it all the same; the refusal is for everyone.
    for (mode_t mode : {0444, 0400, 0555}) {
        SCOPED_TRACE(mode);
        const fs::path path = folder / "registry.ini";
        writeFile(path, "old\n");
        ASSERT_EQ(::chmod(path.c_str(), mode), 0);
        EXPECT_THROW(RegistryFile::fromText("new\n").save(path.string()), std::runtime_error);
        EXPECT_EQ(modeOf(path), mode);
        ASSERT_EQ(::chmod(path.c_str(), 0600), 0);
        EXPECT_EQ(readFile(path), "old\n");
        EXPECT_EQ(namesIn(folder), std::vector<std::string>{"registry.ini"});
        fs::remove(path);
    }
}

TEST_F(RegistryFolder, SaveKeepsTheOwnerOfTheFileItReplaces) {
    if (geteuid() != 0) GTEST_SKIP() << "giving a file to another user needs root";
    const fs::path path = folder / "registry.ini";
    writeFile(path, "old\n");
    ASSERT_EQ(::chown(path.c_str(), 4321, 4322), 0);
    RegistryFile::fromText("new\n").save(path.string());
    struct stat info {};
    ASSERT_EQ(::stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_uid, 4321u);
    EXPECT_EQ(info.st_gid, 4322u);
}

TEST_F(RegistryFolder, ANewFileGets0644LessTheUmask) {
    const mode_t before = ::umask(0);
    RegistryFile::fromText("x\n").save((folder / "open.ini").string());
    ::umask(077);
    RegistryFile::fromText("x\n").save((folder / "private.ini").string());
    ::umask(before);
    EXPECT_EQ(modeOf(folder / "open.ini"), 0644u);
    EXPECT_EQ(modeOf(folder / "private.ini"), 0600u);
}

TEST_F(RegistryFolder, SaveRefusesToReplaceWhatIsNoRegularFile) {
    ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
    fs::create_symlink("fifo", folder / "registry.ini");
    fs::create_directories(folder / "folder.ini");
    EXPECT_THROW(RegistryFile::fromText("x\n").save((folder / "registry.ini").string()), std::runtime_error);
    EXPECT_THROW(RegistryFile::fromText("x\n").save((folder / "folder.ini").string()), std::runtime_error);
    EXPECT_TRUE(fs::is_fifo(folder / "fifo"));
    EXPECT_TRUE(fs::is_symlink(folder / "registry.ini"));
    EXPECT_TRUE(fs::is_directory(folder / "folder.ini"));
    EXPECT_EQ(namesIn(folder), (std::vector<std::string>{"fifo", "folder.ini", "registry.ini"}));
}

TEST_F(RegistryFolder, AFailedSaveLeavesTheFileAsItWasAndNoTemporary) {
    const fs::path path = folder / "registry.ini";
    writeFile(path, "old\n");
    // A file size limit makes the write fail half way.
    int status = inGuardedChild([&] {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit size{8, 8};
        setrlimit(RLIMIT_FSIZE, &size);
        try {
            RegistryFile::fromText("[A]\nthis is longer than eight bytes\n").save(path.string());
        } catch (const std::runtime_error&) {
            return 0;
        }
        return 1;
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(readFile(path), "old\n");
    EXPECT_EQ(namesIn(folder), std::vector<std::string>{"registry.ini"});
}

TEST_F(RegistryFolder, LoadReadsOnlyARegularFileAndAtOnce) {
    ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
    fs::create_symlink("/dev/zero", folder / "zero");
    fs::create_directories(folder / "folder");
    writeFile(folder / "large", std::string(2 * 1024 * 1024, 'x'));
    for (const char* name : {"fifo", "zero", "folder", "large"}) {
        SCOPED_TRACE(name);
        const std::string path = (folder / name).string();
        EXPECT_EQ(inGuardedChild([&] {
                      try {
                          RegistryFile::load(path);
                      } catch (const std::runtime_error&) {
                          return 0;
                      }
                      return 1;
                  }),
                  0);
    }
    EXPECT_TRUE(fs::is_fifo(folder / "fifo"));
}

// Sets or clears environment variables for one test and puts them back.
class ScopedEnvironment {
public:
    ~ScopedEnvironment() {
        for (const auto& [name, value] : saved_)
            if (value)
                setenv(name.c_str(), value->c_str(), 1);
            else
                unsetenv(name.c_str());
    }
    void set(const std::string& name, const char* value) {
        if (!saved_.count(name)) {
            const char* old = std::getenv(name.c_str());
            saved_[name] = old ? std::optional<std::string>(old) : std::nullopt;
        }
        if (value)
            setenv(name.c_str(), value, 1);
        else
            unsetenv(name.c_str());
    }

private:
    std::map<std::string, std::optional<std::string>> saved_;
};

TEST(RegistryFilePath, ExplicitPathWinsThenXdgConfigHomeThenHome) {
    ScopedEnvironment environment;
    environment.set("QXFB_REGISTRY", "/tmp/explicit.ini");
    environment.set("XDG_CONFIG_HOME", "/tmp/xdg");
    environment.set("HOME", "/tmp/home");
    EXPECT_EQ(registryFilePath(), "/tmp/explicit.ini");
    environment.set("QXFB_REGISTRY", nullptr);
    EXPECT_EQ(registryFilePath(), "/tmp/xdg/QxFBCom2/registry.ini");
    environment.set("XDG_CONFIG_HOME", "");
    EXPECT_EQ(registryFilePath(), "/tmp/home/.config/QxFBCom2/registry.ini");
}

TEST(RegistryFilePath, IsEmptyRatherThanInTheCurrentFolderWhenNothingNamesAPlace) {
    ScopedEnvironment environment;
    for (const char* value : {static_cast<const char*>(nullptr), ""}) {
        environment.set("QXFB_REGISTRY", value);
        environment.set("XDG_CONFIG_HOME", value);
        environment.set("HOME", value);
        EXPECT_EQ(registryFilePath(), "");
    }
    // Relative folders would be the current folder's too.
    environment.set("XDG_CONFIG_HOME", "config");
    environment.set("HOME", "home");
    EXPECT_EQ(registryFilePath(), "");
    environment.set("HOME", "/tmp/home");
    EXPECT_EQ(registryFilePath(), "/tmp/home/.config/QxFBCom2/registry.ini");
}

// Registration as the entry points do it, on a file of this test's folder.
class Registration : public RegistryFolder {
protected:
    void SetUp() override {
        RegistryFolder::SetUp();
        file = folder / "registry.ini";
        environment.set("QXFB_REGISTRY", file.c_str());
    }
    fs::path file;
    ScopedEnvironment environment;
    const std::string library = "/opt/qxfb/lib/libQxFBCom2.so";
};

TEST_F(Registration, RegisterThenUnregisterGivesBackTheFileByteForByte) {
    const std::string foreign = "[CLSID\\{00000000-1111-2222-3333-444444444444}]\nProgID=Other.Thing\n";
    const std::string crlfForeign = "[CLSID\\{00000000-1111-2222-3333-444444444444}]\r\nProgID=Other.Thing\r\n";
    for (const std::string& text : std::vector<std::string>{
             foreign, crlfForeign, foreign.substr(0, foreign.size() - 1), crlfForeign.substr(0, crlfForeign.size() - 2),
             "; users' registry\n\n# kept\n" + foreign + "\n; end\n\n\n", Bom + foreign, Bom + crlfForeign,
             "[A]\r\na=1\n\n[B]\nb=1\r\n", std::string()}) {
        SCOPED_TRACE(::testing::PrintToString(text));
        writeFile(file, text);
        ASSERT_EQ(serverRegister(library), S_OK);
        const std::string registered = readFile(file);
        EXPECT_NE(registered.find("ProgID=QxFBCom2.clsGate"), std::string::npos);
        ASSERT_EQ(serverRegister(library), S_OK);
        EXPECT_EQ(readFile(file), registered);
        ASSERT_EQ(serverUnregister(), S_OK);
        EXPECT_EQ(readFile(file), text);
    }
}

TEST_F(Registration, ACrlfFileGetsCrlfLinesOnly) {
    writeFile(file, "; mine\r\n[Other]\r\na=1\r\n");
    ASSERT_EQ(serverRegister(library), S_OK);
    const std::string registered = readFile(file);
    EXPECT_NE(registered.find("[QxFBCom2.clsGate]\r\nCLSID={12D70566-D97F-4E2E-A8C9-65E0DBDC60E6}\r\n"),
              std::string::npos);
    EXPECT_EQ(std::count(registered.begin(), registered.end(), '\n'),
              std::count(registered.begin(), registered.end(), '\r'));
}

TEST_F(Registration, UnregisterLeavesAFileItCreatedEmpty) {
    // An empty file cannot tell whether it was there before, and reads as a
    // missing one; unregistering never removes the file.
    ASSERT_EQ(serverRegister(library), S_OK);
    ASSERT_EQ(serverUnregister(), S_OK);
    EXPECT_TRUE(fs::is_regular_file(file));
    EXPECT_EQ(readFile(file), "");
}

TEST_F(Registration, UnregisterKeepsASecondSectionOfOursWithWhatItHolds) {
    writeFile(file, "[Other]\na=1\n");
    ASSERT_EQ(serverRegister(library), S_OK);
    const std::string duplicate =
        "\n[CLSID\\{12D70566-D97F-4E2E-A8C9-65E0DBDC60E6}]\nFoo=bar\nThreadingModel=Both\n\n[QxFBCom2.clsGate]\n"
        "CLSID={00000000-0000-0000-0000-000000000000}\n";
    writeFile(file, readFile(file) + duplicate);
    ASSERT_EQ(serverUnregister(), S_OK);
    EXPECT_EQ(readFile(file), "[Other]\na=1\n" + duplicate);
}

TEST_F(Registration, RegisterWritesThroughALinkAndKeepsTheMode) {
    fs::create_directories(folder / "real");
    writeFile(folder / "real" / "registry.ini", "[Other]\na=1\n");
    ASSERT_EQ(::chmod((folder / "real" / "registry.ini").c_str(), 0600), 0);
    fs::create_symlink("real/registry.ini", file);
    ASSERT_EQ(serverRegister(library), S_OK);
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(RegistryFile::load((folder / "real" / "registry.ini").string()).value("QxFBCom2.clsGate", "CLSID"),
              "{12D70566-D97F-4E2E-A8C9-65E0DBDC60E6}");
    EXPECT_EQ(modeOf(folder / "real" / "registry.ini"), 0600u);
    ASSERT_EQ(serverUnregister(), S_OK);
    EXPECT_EQ(readFile(folder / "real" / "registry.ini"), "[Other]\na=1\n");
    EXPECT_EQ(namesIn(folder / "real"), std::vector<std::string>{"registry.ini"});
}

TEST_F(Registration, ConcurrentRegistrationsAllSucceedAndLeaveACompleteFile) {
    writeFile(file, "[Other]\na=1\n");
    ASSERT_EQ(serverRegister(library), S_OK);
    const std::string expected = readFile(file);
    writeFile(file, "[Other]\na=1\n");

    constexpr int threads = 16, rounds = 15;
    std::vector<HRESULT> results(threads * rounds, E_FAIL);
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t)
        workers.emplace_back([&, t] {
            for (int r = 0; r < rounds; ++r) results[t * rounds + r] = serverRegister(library);
        });
    for (auto& worker : workers) worker.join();

    EXPECT_EQ(std::count(results.begin(), results.end(), S_OK), threads * rounds);
    EXPECT_EQ(readFile(file), expected);
    auto registered = RegistryFile::load(file.string());
    for (const auto& cls : PublicClasses)
        EXPECT_EQ(registered.value("CLSID\\" + guidToText(cls.CLSID), "InprocServer32"), library);
    EXPECT_EQ(namesIn(folder), std::vector<std::string>{"registry.ini"});
}

TEST_F(Registration, WhatIsNoRegularFileIsRefusedAtOnceAndLeftAlone) {
    ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
    fs::create_symlink("/dev/zero", folder / "zero");
    fs::create_directories(folder / "folder");
    for (const char* name : {"fifo", "zero", "folder"}) {
        SCOPED_TRACE(name);
        environment.set("QXFB_REGISTRY", (folder / name).c_str());
        EXPECT_EQ(inGuardedChild([&] { return serverRegister(library) == SELFREG_E_CLASS ? 0 : 1; }), 0);
        EXPECT_EQ(inGuardedChild([&] { return serverUnregister() == SELFREG_E_CLASS ? 0 : 1; }), 0);
    }
    EXPECT_TRUE(fs::is_fifo(folder / "fifo"));
    EXPECT_EQ(fs::read_symlink(folder / "zero"), "/dev/zero");
    EXPECT_TRUE(fs::is_empty(folder / "folder"));
    EXPECT_EQ(namesIn(folder), (std::vector<std::string>{"fifo", "folder", "zero"}));
}

TEST_F(Registration, AFileNoOneMayWriteIsRefusedAndLeftAlone) {
    writeFile(file, "[Other]\na=1\n");
    ASSERT_EQ(::chmod(file.c_str(), 0444), 0);
    EXPECT_EQ(serverRegister(library), SELFREG_E_CLASS);
    EXPECT_EQ(readFile(file), "[Other]\na=1\n");
    EXPECT_EQ(modeOf(file), 0444u);
}

TEST_F(Registration, FailsWhenNothingNamesAPlaceForTheFile) {
    environment.set("QXFB_REGISTRY", nullptr);
    environment.set("XDG_CONFIG_HOME", nullptr);
    environment.set("HOME", "");
    struct BackToTheCurrentFolder {
        ~BackToTheCurrentFolder() { fs::current_path(path); }
        fs::path path = fs::current_path();
    } back;
    fs::current_path(folder);
    EXPECT_EQ(serverRegister(library), SELFREG_E_CLASS);
    EXPECT_EQ(serverUnregister(), SELFREG_E_CLASS);
    EXPECT_THROW(RegistryFile::fromText("x\n").save(""), std::runtime_error);
    // The entry point of the built component answers the same.
    void* component = dlopen(paths::builtComponent().c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(component, nullptr) << dlerror();
    auto registerServer = reinterpret_cast<DllRegisterServerFn>(dlsym(component, "DllRegisterServer"));
    auto unregisterServer = reinterpret_cast<DllUnregisterServerFn>(dlsym(component, "DllUnregisterServer"));
    ASSERT_NE(registerServer, nullptr);
    ASSERT_NE(unregisterServer, nullptr);
    EXPECT_EQ(registerServer(), SELFREG_E_CLASS);
    EXPECT_EQ(unregisterServer(), SELFREG_E_CLASS);
    dlclose(component);
    EXPECT_TRUE(fs::is_empty(folder));
}

}  // namespace
}  // namespace qx
