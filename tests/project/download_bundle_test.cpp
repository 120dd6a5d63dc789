#include "project/download_bundle.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <filesystem>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "project/child_process.h"
#include "project/project_file.h"
#include "project/sha256.h"
#include "support/scratch_files.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

namespace fs = std::filesystem;

using test::readFile;
using test::writeFile;

Bytes bytesOf(const std::string& text) { return Bytes(text.begin(), text.end()); }

StoredOperation operation(int32_t methodId, int32_t instanceNum, Bytes image) {
    StoredOperation op;
    op.MethodID = methodId;
    op.FatherInstanceNum = instanceNum;
    op.BinaryOperands = std::move(image);
    return op;
}

// Two nets: a serial Config and Send, then a Buffer reset with no image and
// a TCP/IP Config; an instance of each family.
Project sampleProject() {
    Project project;
    project.Nets = {
        LadderNet{L"Start", {operation(170101, 1, {0x02, 0x00}), operation(170103, 1, {0x01, 0x41, 0x42, 0x0D, 0xFF})}},
        LadderNet{L"", {operation(170105, 1, {}), operation(170201, 2, {0x01, 0x00, 0x07})}}};
    project.Instances = {{170100, 1, L"Printer", {0x10, 0x20, 0x30}}, {170200, 2, L"Cell", {0xAA}}};
    return project;
}

// A family's runtime files as known text, counting what was asked.
struct FakeRuntime {
    std::map<std::pair<int32_t, int32_t>, int> calls;

    RuntimeFilesOf function() {
        return [this](int32_t fatherId, int32_t version) {
            ++calls[{fatherId, version}];
            const std::string tail = std::to_string(fatherId) + " V" + std::to_string(version) + "\n";
            FBHexFileDetails details;
            details.FBs = bytesOf("FBs " + tail);
            details.Jmp = bytesOf("Jmp " + tail);
            details.FBsSize = static_cast<int32_t>(details.FBs.size());
            details.MinBiosVersion = fatherId == 170100 ? 310 : 320;
            details.RealTimeMemorySize = fatherId == 170100 ? 2048 : 4096;
            return details;
        };
    }
};

const char* const SampleManifest = R"({
  "format": "QxFBCom2 download bundle",
  "version": 1,
  "files": [
    {"path": "operations/net001_op001_170101.bin", "size": 2, "sha256": "99be5efb88ca2013bd8e4eb035fd42d5245468fe9afa70d8ba9c1c419a48c4e8", "kind": "operation", "net": 1, "position": 1, "FatherID": 170100, "MethodID": 170101, "HexFileVersion": 100, "FatherInstanceNum": 1},
    {"path": "operations/net001_op002_170103.bin", "size": 5, "sha256": "be3a23145eecd5fcfb7e1f469068bdc0e86bde560d662bc23209bb92ff79a98e", "kind": "operation", "net": 1, "position": 2, "FatherID": 170100, "MethodID": 170103, "HexFileVersion": 100, "FatherInstanceNum": 1},
    {"path": "operations/net002_op001_170105.bin", "size": 0, "sha256": "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855", "kind": "operation", "net": 2, "position": 1, "FatherID": 170100, "MethodID": 170105, "HexFileVersion": 100, "FatherInstanceNum": 1},
    {"path": "operations/net002_op002_170201.bin", "size": 3, "sha256": "cc16a44529d2b5a92d014d63669540ce2f7dd654d97971b0b3b60edc44d457a7", "kind": "operation", "net": 2, "position": 2, "FatherID": 170200, "MethodID": 170201, "HexFileVersion": 100, "FatherInstanceNum": 2},
    {"path": "instances/170100_0001.bin", "size": 3, "sha256": "8e1336ab78ebe687fd8056a37f2d3b0c32f4cf8fa8b691b653800fa693d570b9", "kind": "instance", "FatherID": 170100, "InstanceNum": 1, "Name": "Printer"},
    {"path": "instances/170200_0002.bin", "size": 1, "sha256": "bceef655b5a034911f1c3718ce056531b45ef03b4c7b1f15629e867294011a7d", "kind": "instance", "FatherID": 170200, "InstanceNum": 2, "Name": "Cell"},
    {"path": "runtime/170100V100.FBs", "size": 16, "sha256": "a69c016299f5bb93189d269f7a9ce21a5dda9faddcbd11bcea30589209d91f75", "kind": "runtime-code", "FatherID": 170100, "HexFileVersion": 100, "MinBiosVersion": 310, "RealTimeMemorySize": 2048},
    {"path": "runtime/170100V100.Jmp", "size": 16, "sha256": "25ba993cc8c71ab168e25f64a9a53b6bcf61f9f4e0249c351efb1287292b2ffa", "kind": "runtime-jump", "FatherID": 170100, "HexFileVersion": 100, "MinBiosVersion": 310, "RealTimeMemorySize": 2048},
    {"path": "runtime/170200V100.FBs", "size": 16, "sha256": "b222608855afb0b67e1fc0c408d04224802d82b894c4f128e0d3d213a32ca7e4", "kind": "runtime-code", "FatherID": 170200, "HexFileVersion": 100, "MinBiosVersion": 320, "RealTimeMemorySize": 4096},
    {"path": "runtime/170200V100.Jmp", "size": 16, "sha256": "bcdb2b899d2dfad577a32f41288af02220ebe3f1cf9d029752e43c94cc306303", "kind": "runtime-jump", "FatherID": 170200, "HexFileVersion": 100, "MinBiosVersion": 320, "RealTimeMemorySize": 4096}
  ]
}
)";

// The names in a folder, sorted.
std::vector<std::string> namesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

class DownloadBundleTest : public ::testing::Test {
protected:
    test::ScratchFolder scratch{"qxfb_bundle_test"};
    const fs::path folder = scratch.path() / "bundle";
    FakeRuntime runtime;
};

TEST_F(DownloadBundleTest, WritesEveryImageInstanceAndRuntimeFileByteForByte) {
    writeDownloadBundle(sampleProject(), folder.string(), runtime.function());
    EXPECT_EQ(readFile(folder / "operations/net001_op001_170101.bin"), std::string("\x02\x00", 2));
    EXPECT_EQ(readFile(folder / "operations/net001_op002_170103.bin"),
              "\x01"
              "AB\x0D\xFF");
    EXPECT_TRUE(fs::is_regular_file(folder / "operations/net002_op001_170105.bin"));
    EXPECT_EQ(fs::file_size(folder / "operations/net002_op001_170105.bin"), 0u);
    EXPECT_EQ(readFile(folder / "operations/net002_op002_170201.bin"), std::string("\x01\x00\x07", 3));
    EXPECT_EQ(readFile(folder / "instances/170100_0001.bin"), "\x10\x20\x30");
    EXPECT_EQ(readFile(folder / "instances/170200_0002.bin"), "\xAA");
    EXPECT_EQ(readFile(folder / "runtime/170100V100.FBs"), "FBs 170100 V100\n");
    EXPECT_EQ(readFile(folder / "runtime/170100V100.Jmp"), "Jmp 170100 V100\n");
    EXPECT_EQ(readFile(folder / "runtime/170200V100.FBs"), "FBs 170200 V100\n");
    EXPECT_EQ(readFile(folder / "runtime/170200V100.Jmp"), "Jmp 170200 V100\n");
    size_t count = 0;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) count += entry.is_regular_file();
    EXPECT_EQ(count, 11u);
}

TEST_F(DownloadBundleTest, ManifestListsEveryFileWithItsMeaning) {
    writeDownloadBundle(sampleProject(), folder.string(), runtime.function());
    EXPECT_EQ(readFile(folder / "manifest.json"), SampleManifest);
}

TEST_F(DownloadBundleTest, ReturnsTheFilesAsWrittenWithTheManifestLast) {
    const std::vector<BundleFile> files = writeDownloadBundle(sampleProject(), folder.string(), runtime.function());
    ASSERT_EQ(files.size(), 11u);
    EXPECT_EQ(files[0].Path, "operations/net001_op001_170101.bin");
    EXPECT_EQ(files[4].Path, "instances/170100_0001.bin");
    EXPECT_EQ(files[9].Path, "runtime/170200V100.Jmp");
    EXPECT_EQ(files[10].Path, "manifest.json");
    EXPECT_EQ(files[10].Size, std::string(SampleManifest).size());
    const std::string manifest = readFile(folder / "manifest.json");
    for (const BundleFile& file : files) {
        SCOPED_TRACE(file.Path);
        const std::string bytes = readFile(folder / file.Path);
        EXPECT_EQ(file.Size, bytes.size());
        EXPECT_EQ(file.Sha256, sha256Hex(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()));
        if (file.Path != "manifest.json") {
            EXPECT_NE(manifest.find("{\"path\": \"" + file.Path + "\", \"size\": " + std::to_string(file.Size) +
                                    ", \"sha256\": \"" + file.Sha256 + "\""),
                      std::string::npos);
        }
    }
}

TEST_F(DownloadBundleTest, AsksForEachFamilyAndVersionOnce) {
    Project project = sampleProject();
    StoredOperation newer = operation(170102, 1, {0x05});
    newer.HexFileVersion = 101;
    project.Nets[1].Operations.push_back(newer);
    const std::vector<BundleFile> files = writeDownloadBundle(project, folder.string(), runtime.function());
    const std::map<std::pair<int32_t, int32_t>, int> expected = {
        {{170100, 100}, 1}, {{170100, 101}, 1}, {{170200, 100}, 1}};
    EXPECT_EQ(runtime.calls, expected);
    EXPECT_EQ(readFile(folder / "runtime/170100V101.Jmp"), "Jmp 170100 V101\n");
    EXPECT_EQ(files.size(), 14u);
}

TEST_F(DownloadBundleTest, AMissingFolderIsMadeWithItsParents) {
    const fs::path deep = scratch.path() / "a" / "b" / "c";
    writeDownloadBundle(sampleProject(), deep.string(), runtime.function());
    EXPECT_EQ(readFile(deep / "manifest.json"), SampleManifest);
}

TEST_F(DownloadBundleTest, AFolderNamedWithASlashAtItsEndIsThatFolder) {
    writeDownloadBundle(sampleProject(), folder.string() + "/", runtime.function());
    EXPECT_EQ(readFile(folder / "manifest.json"), SampleManifest);
    EXPECT_EQ(namesIn(scratch.path()), std::vector<std::string>{"bundle"});
    const fs::path other = scratch.path() / "other";
    fs::create_directory(other);
    writeDownloadBundle(sampleProject(), (other / "." / "").string(), runtime.function());
    EXPECT_EQ(readFile(other / "manifest.json"), SampleManifest);
    EXPECT_EQ(namesIn(scratch.path()), (std::vector<std::string>{"bundle", "other"}));
}

TEST_F(DownloadBundleTest, AnEmptyExistingFolderIsUsed) {
    fs::create_directories(folder);
    writeDownloadBundle(sampleProject(), folder.string(), runtime.function());
    EXPECT_EQ(readFile(folder / "manifest.json"), SampleManifest);
}

TEST_F(DownloadBundleTest, AFolderWithAnythingInItIsRefusedAndLeftAlone) {
    fs::create_directories(folder);
    writeFile(folder / ".hidden", "keep");
    const RuntimeError e =
        test::raisedError([&] { writeDownloadBundle(sampleProject(), folder.string(), runtime.function()); });
    EXPECT_EQ(e.Number(), err::PathFileAccessError);
    EXPECT_EQ(toUtf8(e.Description()), "bundle folder \"" + folder.string() + "\" is not empty");
    EXPECT_TRUE(runtime.calls.empty());
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
    EXPECT_EQ(names, std::vector<std::string>{".hidden"});
    EXPECT_EQ(readFile(folder / ".hidden"), "keep");
}

TEST_F(DownloadBundleTest, APathThatIsARegularFileIsRefused) {
    writeFile(folder, "not a folder");
    const RuntimeError e =
        test::raisedError([&] { writeDownloadBundle(sampleProject(), folder.string(), runtime.function()); });
    EXPECT_EQ(e.Number(), err::PathFileAccessError);
    EXPECT_EQ(toUtf8(e.Description()), "bundle folder \"" + folder.string() + "\" is not a folder");
    EXPECT_EQ(readFile(folder), "not a folder");
    const fs::path below = folder / "bundle";
    const RuntimeError under =
        test::raisedError([&] { writeDownloadBundle(Project{}, below.string(), runtime.function()); });
    EXPECT_EQ(under.Number(), err::PathFileAccessError);
    EXPECT_EQ(toUtf8(under.Description()), "bundle folder \"" + below.string() + "\" cannot be used (Not a directory)");
}

TEST_F(DownloadBundleTest, NamesAreEscapedForJson) {
    Project project;
    project.Instances = {{170100, 7, L"K\u00fchl \"A\\B\" \u20ac\t\x01", {}}};
    writeDownloadBundle(project, folder.string(), runtime.function());
    const std::string manifest = readFile(folder / "manifest.json");
    const std::string name = "\"Name\": \"K\xC3\xBChl \\\"A\\\\B\\\" \xE2\x82\xAC\\t\\u0001\"}";
    EXPECT_NE(manifest.find(name), std::string::npos) << manifest;
}

TEST(JsonStringTest, EscapesQuotesBackslashesAndControlsAndKeepsLettersAsUtf8) {
    EXPECT_EQ(jsonString(L""), "\"\"");
    EXPECT_EQ(jsonString(L"a\"b\\c/d"), "\"a\\\"b\\\\c/d\"");
    EXPECT_EQ(jsonString(L"\n\r\t\x1f\x7f"), "\"\\n\\r\\t\\u001f\x7f\"");
    EXPECT_EQ(jsonString(L"\u00e9\U0001F600"), "\"\xC3\xA9\xF0\x9F\x98\x80\"");
    // A byte of a name that was not UTF-8 has no UTF-8 form of its own.
    EXPECT_EQ(jsonString(fromUtf8("x\xFFy")), "\"x\xEF\xBF\xBDy\"");
}

TEST_F(DownloadBundleTest, AnEmptyProjectGivesAnEmptyManifestOnly) {
    const std::vector<BundleFile> files = writeDownloadBundle(Project{}, folder.string(), runtime.function());
    ASSERT_EQ(files.size(), 1u);
    EXPECT_EQ(readFile(folder / "manifest.json"),
              "{\n  \"format\": \"QxFBCom2 download bundle\",\n  \"version\": 1,\n  \"files\": []\n}\n");
    EXPECT_TRUE(runtime.calls.empty());
}

TEST_F(DownloadBundleTest, AFamilyThatFailsLeavesNothingBehind) {
    const fs::path deep = scratch.path() / "a" / "bundle";
    const RuntimeError e = test::raisedError([&] {
        writeDownloadBundle(sampleProject(), deep.string(), [](int32_t, int32_t) -> FBHexFileDetails {
            throw RuntimeError(err::FileNotFound, L"test", L"no runtime files");
        });
    });
    EXPECT_EQ(e.Number(), err::FileNotFound);
    EXPECT_FALSE(fs::exists(scratch.path() / "a"));
    EXPECT_TRUE(fs::is_empty(scratch.path()));
}

TEST_F(DownloadBundleTest, AFileThatCannotBeWrittenIsNamedWithTheCauseAndNothingStays) {
    // Files of at most 3 bytes: the second image, of 5 bytes, fails.
    const std::string answer = test::inChild([&] {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{3, 3};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        writeDownloadBundle(sampleProject(), folder.string(), runtime.function());
        return std::string("written");
    });
    EXPECT_EQ(answer, "RuntimeError 75: bundle file \"" + (folder / "operations/net001_op002_170103.bin").string() +
                          "\": cannot be written (File too large)");
    EXPECT_TRUE(fs::is_empty(scratch.path()));
}

TEST_F(DownloadBundleTest, AKeyTwiceIsNamedBeforeAnythingIsWritten) {
    Project project = sampleProject();
    project.Instances.push_back(project.Instances[0]);  // the same family and number twice
    const RuntimeError e =
        test::raisedError([&] { writeDownloadBundle(project, folder.string(), runtime.function()); });
    EXPECT_EQ(e.Number(), err::InvalidProcedureCall);
    EXPECT_EQ(toUtf8(e.Description()), "the project holds the instance 170100/1 twice; its bundle is not written");
    EXPECT_TRUE(runtime.calls.empty());
    EXPECT_FALSE(fs::exists(folder));
}

// One of two projects with files of other names, so that two bundles of them
// would not clash on any name but the manifest's.
Project racer(int which) {
    Project project;
    project.Nets = {LadderNet{L"", {operation(which ? 170103 : 170101, 1, Bytes(3000, static_cast<uint8_t>(which)))}}};
    for (int32_t i = 1; i <= 20; ++i)
        project.Instances.push_back({which ? 170200 : 170100, i, L"", Bytes(500, static_cast<uint8_t>(i))});
    return project;
}

TEST_F(DownloadBundleTest, OfTwoProcessesRacingIntoOneFolderOneWinsWholeAndTheOtherFails) {
    for (int round = 0; round < 40; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const fs::path target = scratch.path() / ("race" + std::to_string(round));
        if (round % 2) fs::create_directory(target);  // an empty folder there, or none
        int start[2];
        ASSERT_EQ(::pipe(start), 0);
        int answers[2][2];
        pid_t children[2];
        for (int which = 0; which < 2; ++which) {
            ASSERT_EQ(::pipe(answers[which]), 0);
            children[which] = ::fork();
            if (children[which] == 0) {
                ::close(start[1]);
                char go;
                // Both start when the parent closes the pipe.
                [[maybe_unused]] const ssize_t ignored = ::read(start[0], &go, 1);
                std::string answer = "written";
                try {
                    writeDownloadBundle(racer(which), target.string(), FakeRuntime().function());
                } catch (const RuntimeError& e) {
                    answer = toUtf8(e.Description());
                }
                [[maybe_unused]] const ssize_t sent = ::write(answers[which][1], answer.data(), answer.size());
                ::_exit(0);
            }
            ::close(answers[which][1]);
        }
        ::close(start[0]);
        ::close(start[1]);
        std::string said[2];
        for (int which = 0; which < 2; ++which) {
            char buffer[1024];
            for (ssize_t n; (n = ::read(answers[which][0], buffer, sizeof buffer)) > 0;)
                said[which].append(buffer, static_cast<size_t>(n));
            ::close(answers[which][0]);
            int status = 0;
            ::waitpid(children[which], &status, 0);
        }
        const int winner = said[0] == "written" ? 0 : 1;
        EXPECT_EQ(said[winner], "written");
        const std::string lost = said[1 - winner];
        EXPECT_TRUE(lost == "bundle folder \"" + target.string() + "\" is not empty" ||
                    lost == "bundle folder \"" + target.string() +
                                "\" was filled by another writer while this bundle was written; this one is not kept")
            << lost;
        // The folder holds the winner's files and nothing else.
        const fs::path other = scratch.path() / ("alone" + std::to_string(round));
        writeDownloadBundle(racer(winner), other.string(), FakeRuntime().function());
        EXPECT_EQ(readFile(target / "manifest.json"), readFile(other / "manifest.json"));
        EXPECT_EQ(namesIn(target / "instances"), namesIn(other / "instances"));
        EXPECT_EQ(namesIn(target / "operations"), namesIn(other / "operations"));
        fs::remove_all(other);
    }
    // No folder of a loser is left beside the targets.
    for (const std::string& name : namesIn(scratch.path())) EXPECT_EQ(name.rfind("race", 0), 0u) << name;
}

TEST_F(DownloadBundleTest, ADanglingSymbolicLinkIsNamedAsSuch) {
    fs::create_symlink(scratch.path() / "gone", folder);
    const RuntimeError e =
        test::raisedError([&] { writeDownloadBundle(sampleProject(), folder.string(), runtime.function()); });
    EXPECT_EQ(e.Number(), err::PathFileAccessError);
    EXPECT_EQ(toUtf8(e.Description()), "bundle folder \"" + folder.string() + "\" is a symbolic link to \"" +
                                           (scratch.path() / "gone").string() + "\", which does not exist");
    EXPECT_FALSE(fs::exists(scratch.path() / "gone"));
}

TEST_F(DownloadBundleTest, ASymbolicLinkToAnEmptyFolderGetsTheBundleInThatFolder) {
    fs::create_directory(scratch.path() / "real");
    fs::create_symlink(scratch.path() / "real", folder);
    writeDownloadBundle(sampleProject(), folder.string(), runtime.function());
    EXPECT_TRUE(fs::is_symlink(folder));
    EXPECT_EQ(readFile(scratch.path() / "real" / "manifest.json"), SampleManifest);
}

TEST_F(DownloadBundleTest, AParentThatCannotBeMadeIsNamedWithTheCause) {
    const fs::path deep = scratch.path() / "locked" / "sub" / "bundle";
    fs::create_directory(scratch.path() / "locked");
    const test::ReadOnlyFolder readOnly(scratch.path() / "locked");
    const std::string answer = test::inChild([&] {
        if (std::string cannot = test::becomeNobody(); !cannot.empty()) return cannot;
        writeDownloadBundle(sampleProject(), deep.string(), FakeRuntime().function());
        return std::string("written");
    });
    if (answer.rfind(test::ChildCannot, 0) == 0) GTEST_SKIP() << answer;
    EXPECT_EQ(answer, "RuntimeError 70: bundle folder \"" + deep.string() + "\" cannot be created: its parent \"" +
                          (scratch.path() / "locked" / "sub").string() + "\" cannot be made (Permission denied)");
    EXPECT_FALSE(fs::exists(scratch.path() / "locked" / "sub"));
}

TEST_F(DownloadBundleTest, AReadOnlyFileSystemIsNamedAsTheCause) {
    const fs::path mount = scratch.path() / "mnt";
    fs::create_directory(mount);
    const std::string answer = test::inChild([&] {
        if (std::string cannot = test::mountPrivateTmpfs(mount.string(), MS_RDONLY, "size=1m"); !cannot.empty())
            return cannot;
        writeDownloadBundle(sampleProject(), (mount / "bundle").string(), FakeRuntime().function());
        return std::string("written");
    });
    if (answer.rfind(test::ChildCannot, 0) == 0) GTEST_SKIP() << answer;
    EXPECT_EQ(answer, "RuntimeError 70: bundle folder \"" + (mount / "bundle").string() + "\" cannot be created in \"" +
                          mount.string() + "\" (Read-only file system)");
}

TEST_F(DownloadBundleTest, NoInodeLeftIsNamedAsTheCauseAndNothingStays) {
    const fs::path mount = scratch.path() / "mnt";
    fs::create_directory(mount);
    const std::string answer = test::inChild([&] {
        // The root, the work folder, the operations folder and two files.
        if (std::string cannot = test::mountPrivateTmpfs(mount.string(), 0, "size=1m,nr_inodes=5"); !cannot.empty())
            return cannot;
        std::string result = "written";
        try {
            writeDownloadBundle(sampleProject(), (mount / "bundle").string(), FakeRuntime().function());
        } catch (const RuntimeError& e) {
            result = "RuntimeError " + std::to_string(e.Number()) + ": " + toUtf8(e.Description());
        }
        return result + (fs::is_empty(mount) ? "; nothing stays" : "; something stays");
    });
    if (answer.rfind(test::ChildCannot, 0) == 0) GTEST_SKIP() << answer;
    EXPECT_EQ(answer, "RuntimeError 61: bundle file \"" +
                          (mount / "bundle/operations/net002_op001_170105.bin").string() +
                          "\": cannot be created (No space left on device); nothing stays");
}

TEST_F(DownloadBundleTest, TheRuntimeFolderIsRecordedInTheManifest) {
    writeDownloadBundle(sampleProject(), folder.string(), runtime.function(), L"/opt/rungs/FB_Lib/RT/");
    const std::string manifest = readFile(folder / "manifest.json");
    const std::string opening =
        "{\n  \"format\": \"QxFBCom2 download bundle\",\n  \"version\": 1,\n  \"runtimeFolder\": "
        "\"/opt/rungs/FB_Lib/RT/\",\n  \"files\": [\n";
    EXPECT_EQ(manifest.substr(0, opening.size()), opening);
    const nlohmann::json parsed = nlohmann::json::parse(manifest);
    EXPECT_EQ(parsed["runtimeFolder"], "/opt/rungs/FB_Lib/RT/");
    EXPECT_EQ(parsed["files"].size(), 10u);  // every file but the manifest
}

TEST_F(DownloadBundleTest, ANameThatIsNotUtf8GivesValidUtf8Json) {
    Project project;
    project.Instances = {{170100, 7, fromUtf8("M\xFCller \xE2\x82"), {}}};
    writeDownloadBundle(project, folder.string(), runtime.function());
    const std::string manifest = readFile(folder / "manifest.json");
    EXPECT_EQ(manifest.find("\\udc"), std::string::npos) << manifest;
    EXPECT_NE(manifest.find("\"Name\": \"M\xEF\xBF\xBDller \xEF\xBF\xBD\xEF\xBF\xBD\"}"), std::string::npos)
        << manifest;
    const nlohmann::json parsed = nlohmann::json::parse(manifest);  // throws on invalid UTF-8
    EXPECT_EQ(parsed["files"][0]["Name"], "M\xEF\xBF\xBDller \xEF\xBF\xBD\xEF\xBF\xBD");
}

}  // namespace
}  // namespace qx
