// qxfb's project commands, run as a user runs them on a project file that
// the project store wrote.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "apps/cli_run.h"
#include "component/built_paths.h"
#include "platform/basics/ansi.h"
#include "project/project_file.h"
#include "project/sha256.h"
#include "support/scratch_files.h"
#include "support/stored_link.h"

namespace qx {
namespace {

namespace fs = std::filesystem;

using test::readFile;

using test::CliRun;
using test::shellQuoted;

std::string sha256Of(const std::string& bytes) {
    return sha256Hex(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
}

using test::storedLink;

// A serial Config with both status operands linked, a Send with a constant
// and an operand not linked yet, a net with nothing in it, two instances.
Project sampleProject() {
    Project project;
    project.Settings.ExtendedOperands = true;
    StoredOperation config;
    config.MethodID = 170101;
    config.FatherInstanceNum = 1;
    config.BinaryOperands = {0x02, 0x00};
    config.OutOperands = {storedLink(L"1", L"Function in progress", 1, 10, L"Protocol busy"),
                          storedLink(L"2", L"Status", 3, 20, L"Protocol status")};
    StoredOperation send;
    send.MethodID = 170103;
    send.FatherInstanceNum = 1;
    send.IsConducting = true;
    send.BinaryOperands = {0x01, 0x02, 0x03, 0x04, 0x05};
    StoredOperand message = storedLink(L"1", L"Message", 34, 5, L"Message number");
    message.Mode = 2;
    message.HasValue = true;
    message.ConstantValue = 70000;
    StoredOperand trigger;
    trigger.Key = L"2";
    trigger.Caption = L"Trigger";
    trigger.Type = 1;
    send.InOperands = {message, trigger};
    project.Nets = {LadderNet{L"Start", {config}}, LadderNet{L"", {send}}, LadderNet{L"empty net", {}}};
    project.Instances = {{170100, 1, L"Printer", {0x10, 0x20, 0x30}}, {170100, 2, L"Sc\u00e4le", {}}};
    project.Constants = {{5, 34, 70000}};
    project.Links = {{1, 10, 1, 3, 1}, {3, 20, 1, 3, 1}, {34, 5, 2, 3, 1}};
    project.NextConstantAddress = 6;
    return project;
}

class QxfbProjectTest : public ::testing::Test {
protected:
    void SetUp() override {
        program = paths::builtCli();
        ASSERT_FALSE(program.empty()) << "QXFB_CLI names the program under test";
        saveProject(projectFile.string(), sampleProject());
    }

    CliRun run(const std::string& arguments) { return test::runCli(program, arguments, folder); }

    std::string program;
    test::ScratchFolder scratch{"qxfb_project_cli_test"};
    const fs::path folder = scratch.path();
    const fs::path projectFile = folder / "plant.qxfbproj";
    const fs::path bundle = folder / "out" / "bundle";
};

TEST_F(QxfbProjectTest, InfoShowsSettingsNetsOperandsInstancesAndTables) {
    const CliRun info = run("project info " + shellQuoted(projectFile.string()));
    ASSERT_EQ(info.status, 0) << info.err;
    EXPECT_EQ(info.err, "");
    const std::vector<std::string> expected = {
        "Project: " + projectFile.string(),
        "ExtendedOperands: on",
        "AppFolder: (the component's own)",
        "Net 1: Start",
        "  Operation 1: MethodID 170101  HexFileVersion 100  FatherInstanceNum 1  BinaryOperands 2 bytes",
        "    InOperands: none",
        "    OutOperands:",
        "      1  Function in progress  MB 10 : Protocol busy",
        "      2  Status  MI 20 : Protocol status",
        "Net 2",
        "  Operation 1: MethodID 170103  HexFileVersion 100  FatherInstanceNum 1  BinaryOperands 5 bytes  conducting",
        "    InOperands:",
        "      1  Message  7 : Message number",
        "      2  Trigger  not linked",
        "    OutOperands: none",
        "Net 3: empty net",
        "  no operations",
        "Instances:",
        "  FatherID 170100  InstanceNum 1  Printer  Data 3 bytes",
        "  FatherID 170100  InstanceNum 2  Sc\xC3\xA4le  Data 0 bytes",
        "Constants: 1",
        "Links: 3",
    };
    EXPECT_EQ(info.lines(), expected) << info.out;
}

TEST_F(QxfbProjectTest, InfoShowsTheProjectsAppFolder) {
    Project project = sampleProject();
    project.Settings.ExtendedOperands = false;
    project.Settings.AppFolder = L"/opt/rungs/bin";
    project.Nets.clear();
    project.Instances.clear();
    saveProject(projectFile.string(), project);
    const CliRun info = run("project info " + shellQuoted(projectFile.string()));
    ASSERT_EQ(info.status, 0) << info.err;
    const std::vector<std::string> expected = {"Project: " + projectFile.string(),
                                               "ExtendedOperands: off",
                                               "AppFolder: /opt/rungs/bin",
                                               "Instances: none",
                                               "Constants: 1",
                                               "Links: 3"};
    EXPECT_EQ(info.lines(), expected);
}

TEST_F(QxfbProjectTest, BundleWritesTheImagesInstancesAndTheFamilysRuntimeFiles) {
    const CliRun run1 = run("project bundle " + shellQuoted(projectFile.string()) + " " + shellQuoted(bundle.string()));
    ASSERT_EQ(run1.status, 0) << run1.err;
    EXPECT_EQ(run1.err, "");
    const fs::path rt = fs::path(paths::sourceTree()) / "runtime/FB_Lib/RT";
    const std::string fbs = readFile(rt / "170100V100.FBs"), jmp = readFile(rt / "170100V100.Jmp");
    ASSERT_FALSE(fbs.empty());
    EXPECT_EQ(readFile(bundle / "runtime/170100V100.FBs"), fbs);
    EXPECT_EQ(readFile(bundle / "runtime/170100V100.Jmp"), jmp);
    EXPECT_FALSE(fs::exists(bundle / "runtime/170200V100.FBs"));
    EXPECT_EQ(readFile(bundle / "operations/net001_op001_170101.bin"), std::string("\x02\x00", 2));
    EXPECT_EQ(readFile(bundle / "operations/net002_op001_170103.bin"), "\x01\x02\x03\x04\x05");
    EXPECT_EQ(readFile(bundle / "instances/170100_0001.bin"), "\x10\x20\x30");
    EXPECT_EQ(fs::file_size(bundle / "instances/170100_0002.bin"), 0u);

    const std::string manifest = readFile(bundle / "manifest.json");
    EXPECT_NE(manifest.find("{\"path\": \"runtime/170100V100.FBs\", \"size\": " + std::to_string(fbs.size()) +
                            ", \"sha256\": \"" + sha256Of(fbs) +
                            "\", \"kind\": \"runtime-code\", \"FatherID\": 170100, \"HexFileVersion\": 100, "
                            "\"MinBiosVersion\": 310, \"RealTimeMemorySize\": 2048}"),
              std::string::npos)
        << manifest;
    EXPECT_NE(manifest.find("{\"path\": \"runtime/170100V100.Jmp\", \"size\": " + std::to_string(jmp.size()) +
                            ", \"sha256\": \"" + sha256Of(jmp) +
                            "\", \"kind\": \"runtime-jump\", \"FatherID\": 170100, \"HexFileVersion\": 100, "
                            "\"MinBiosVersion\": 310, \"RealTimeMemorySize\": 2048}"),
              std::string::npos)
        << manifest;
    EXPECT_NE(manifest.find("\"Name\": \"Sc\xC3\xA4le\"}"), std::string::npos);

    const std::vector<std::string> lines = run1.lines();
    ASSERT_EQ(lines.size(), 11u) << run1.out;
    EXPECT_EQ(lines[0], "Project: " + projectFile.string());
    EXPECT_EQ(lines[3],
              "  operations/net001_op001_170101.bin  2 bytes  "
              "99be5efb88ca2013bd8e4eb035fd42d5245468fe9afa70d8ba9c1c419a48c4e8");
    EXPECT_EQ(lines[7], "  runtime/170100V100.FBs  " + std::to_string(fbs.size()) + " bytes  " + sha256Of(fbs));
    EXPECT_EQ(lines[9], "  manifest.json  " + std::to_string(manifest.size()) + " bytes  " + sha256Of(manifest));
    EXPECT_EQ(lines[10], "Bundle: 7 files in " + bundle.string());
}

TEST_F(QxfbProjectTest, BundleReadsTheRuntimeFilesFromTheProjectsAppFolderUnlessTold) {
    Project project = sampleProject();
    project.Settings.AppFolder = fromUtf8((folder / "nowhere" / "bin").string());
    saveProject(projectFile.string(), project);
    const CliRun fails =
        run("project bundle " + shellQuoted(projectFile.string()) + " " + shellQuoted(bundle.string()));
    EXPECT_EQ(fails.status, 1);
    EXPECT_NE(fails.out.find("Application folder: " + (folder / "nowhere" / "bin").string() + "\n"), std::string::npos);
    EXPECT_NE(fails.err.find("qxfb: the runtime files of family 170100, version 100 cannot be read"), std::string::npos)
        << fails.err;
    EXPECT_TRUE(!fs::exists(bundle) || fs::is_empty(bundle));
    EXPECT_FALSE(fs::exists(bundle / "manifest.json"));

    const std::string appFolder = (fs::path(paths::sourceTree()) / "runtime/bin").string();
    fs::remove_all(bundle);
    const CliRun told = run("project bundle " + shellQuoted(projectFile.string()) + " " + shellQuoted(bundle.string()) +
                            " --app-folder " + shellQuoted(appFolder));
    ASSERT_EQ(told.status, 0) << told.err;
    EXPECT_NE(told.out.find("Application folder: " + appFolder + "\n"), std::string::npos);
    EXPECT_TRUE(fs::exists(bundle / "manifest.json"));
}

TEST_F(QxfbProjectTest, BundleRefusesAFolderThatIsNotEmpty) {
    fs::create_directories(bundle);
    test::writeFile(bundle / "old.bin", "old");
    const CliRun refused =
        run("project bundle " + shellQuoted(projectFile.string()) + " " + shellQuoted(bundle.string()));
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.err, "qxfb: bundle folder \"" + bundle.string() + "\" is not empty\n");
    EXPECT_EQ(readFile(bundle / "old.bin"), "old");
    EXPECT_FALSE(fs::exists(bundle / "manifest.json"));
}

TEST_F(QxfbProjectTest, AMissingProjectFileFailsWithItsName) {
    const fs::path missing = folder / "missing.qxfbproj";
    const CliRun info = run("project info " + shellQuoted(missing.string()));
    EXPECT_EQ(info.status, 1);
    EXPECT_EQ(info.out, "");
    EXPECT_EQ(info.err, "qxfb: project file \"" + missing.string() + "\": not found\n");
    const CliRun bundled = run("project bundle " + shellQuoted(missing.string()) + " " + shellQuoted(bundle.string()));
    EXPECT_EQ(bundled.status, 1);
    EXPECT_EQ(bundled.err, "qxfb: project file \"" + missing.string() + "\": not found\n");
    EXPECT_FALSE(fs::exists(bundle));
}

TEST_F(QxfbProjectTest, BadUsageIsAUsageError) {
    const std::string file = shellQuoted(projectFile.string());
    const CliRun noFolder = run("project bundle " + file);
    EXPECT_EQ(noFolder.status, 2);
    EXPECT_EQ(noFolder.out, "");
    EXPECT_NE(noFolder.err.find("project bundle needs a project file and a folder"), std::string::npos);
    EXPECT_EQ(run("project").status, 2);
    EXPECT_EQ(run("project info").status, 2);
    EXPECT_EQ(run("project info " + file + " extra").status, 2);
    EXPECT_EQ(run("project info " + file + " --component x.so").status, 2);
    EXPECT_EQ(run("project bundle " + file + " a b").status, 2);
    EXPECT_EQ(run("project compile " + file).status, 2);
    EXPECT_EQ(run("classes extra").status, 2);
    EXPECT_FALSE(fs::exists(bundle));
}

TEST_F(QxfbProjectTest, HelpExplainsTheProjectCommands) {
    const CliRun help = run("--help");
    EXPECT_EQ(help.status, 0);
    for (const char* expected : {"qxfb project info FILE",
                                 "qxfb project bundle FILE DIR [--component PATH] "
                                 "[--app-folder DIR]",
                                 "manifest.json", "Bundle: N files in DIR"})
        EXPECT_NE(help.out.find(expected), std::string::npos) << expected;
}

}  // namespace
}  // namespace qx
