// qxfb's project commands, run as a user runs them on a project file that
// the project store wrote.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "apps/cli_run.h"
#include "component/built_paths.h"
#include "platform/basics/ansi.h"
#include "platform/host/host_services.h"
#include "project/project_file.h"
#include "project/sha256.h"
#include "runtime_model/checksum_table_json.h"
#include "support/scratch_files.h"
#include "support/sqlite_files.h"
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

    const std::string runtimeFolder =
        (fs::path(paths::sourceTree()) / "runtime/FB_Lib/RT/").lexically_normal().string();
    EXPECT_NE(manifest.find("\n  \"runtimeFolder\": \"" + runtimeFolder + "\",\n"), std::string::npos) << manifest;

    const std::vector<std::string> lines = run1.lines();
    ASSERT_EQ(lines.size(), 12u) << run1.out;
    EXPECT_EQ(lines[0], "Project: " + projectFile.string());
    EXPECT_EQ(lines[2], "Application folder: " + (fs::path(paths::sourceTree()) / "runtime/bin").string() +
                            " (the component's own)");
    EXPECT_EQ(lines[3], "Runtime folder: " + runtimeFolder);
    EXPECT_EQ(lines[4],
              "  operations/net001_op001_170101.bin  2 bytes  "
              "99be5efb88ca2013bd8e4eb035fd42d5245468fe9afa70d8ba9c1c419a48c4e8");
    EXPECT_EQ(lines[8], "  runtime/170100V100.FBs  " + std::to_string(fbs.size()) + " bytes  " + sha256Of(fbs));
    EXPECT_EQ(lines[10], "  manifest.json  " + std::to_string(manifest.size()) + " bytes  " + sha256Of(manifest));
    EXPECT_EQ(lines[11], "Bundle: 7 files in " + bundle.string());
}

// The last line of a program's errors: the component echoes its own reports before it.
std::string lastLineOf(const std::string& text) {
    std::string trimmed = text;
    if (!trimmed.empty() && trimmed.back() == '\n') trimmed.pop_back();
    const size_t newline = trimmed.rfind('\n');
    return newline == std::string::npos ? trimmed : trimmed.substr(newline + 1);
}

TEST_F(QxfbProjectTest, BundleTakesTheComponentsRuntimeFolderUnlessToldToTakeTheProjects) {
    Project project = sampleProject();
    const fs::path nowhere = folder / "nowhere" / "bin";
    project.Settings.AppFolder = fromUtf8(nowhere.string());
    saveProject(projectFile.string(), project);
    const std::string arguments =
        "project bundle " + shellQuoted(projectFile.string()) + " " + shellQuoted(bundle.string());
    const CliRun own = run(arguments);
    ASSERT_EQ(own.status, 0) << own.err;
    const std::string componentFolder = (fs::path(paths::sourceTree()) / "runtime/bin").string();
    EXPECT_NE(own.out.find("Application folder: " + componentFolder +
                           " (the component's own)\n"
                           "  The project names the application folder " +
                           nowhere.string() + "; --app-folder-from-project uses it\n"),
              std::string::npos)
        << own.out;
    EXPECT_TRUE(fs::exists(bundle / "manifest.json"));

    fs::remove_all(bundle);
    const CliRun fromProject = run(arguments + " --app-folder-from-project");
    EXPECT_EQ(fromProject.status, 1);
    EXPECT_NE(fromProject.out.find("Application folder: " + nowhere.string() +
                                   " (the project's, with --app-folder-from-project)\n"),
              std::string::npos)
        << fromProject.out;
    EXPECT_EQ(lastLineOf(fromProject.err), "qxfb: the runtime files of family 170100, version 100 cannot be read: \"" +
                                               (folder / "nowhere/FB_Lib/RT/170100.ini").string() +
                                               "\" does not exist (run-time error 13: Type mismatch)");
    EXPECT_FALSE(fs::exists(bundle));

    const fs::path given = folder / "given" / "bin";
    const CliRun told = run(arguments + " --app-folder " + shellQuoted(componentFolder));
    ASSERT_EQ(told.status, 0) << told.err;
    EXPECT_NE(told.out.find("Application folder: " + componentFolder + " (given with --app-folder)\n"),
              std::string::npos);
    EXPECT_EQ(run(arguments + " --app-folder x --app-folder-from-project").status, 2);
    EXPECT_EQ(run("project info " + shellQuoted(projectFile.string()) + " --app-folder-from-project").status, 2);
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

TEST_F(QxfbProjectTest, InfoShowsControlCharactersEscapedAndBytesThatAreNotUtf8AsHex) {
    Project project;
    project.Nets = {LadderNet{fromUtf8("red \x1b[31mALARM\x1b[0m\r\n\x07 \xe2\x80\xa8 \xc2\x9b x\\y"), {}}};
    project.Instances = {{170100, 1, L"M" + fromUtf8("\xFC") + L"ller" + std::wstring(1, L'\0') + L"z\u202e", {}}};
    saveProject(projectFile.string(), project);
    const CliRun info = run("project info " + shellQuoted(projectFile.string()));
    ASSERT_EQ(info.status, 0) << info.err;
    const std::vector<std::string> lines = info.lines();
    ASSERT_EQ(lines.size(), 9u) << info.out;
    EXPECT_EQ(lines[3], "Net 1: red \\e[31mALARM\\e[0m\\r\\n\\x07 \\u2028 \\u009b x\\\\y");
    EXPECT_EQ(lines[6], "  FatherID 170100  InstanceNum 1  M\\xfcller\\x00z\\u202e  Data 0 bytes");
    for (char c : info.out) EXPECT_TRUE(c == '\n' || static_cast<uint8_t>(c) >= 0x20) << int(c);
}

TEST_F(QxfbProjectTest, ErrorsShowNamesFromTheFileEscaped) {
    test::runSql(projectFile, "CREATE VIEW \"v\x1b]0;owned\x07\" AS SELECT 1;");
    const CliRun info = run("project info " + shellQuoted(projectFile.string()));
    EXPECT_EQ(info.status, 1);
    EXPECT_EQ(info.err, "qxfb: project file \"" + projectFile.string() +
                            "\": is not a project file of this program (the view v\\e]0;owned\\x07 is not of a "
                            "project)\n");
}

// Runs qxfb with its standard output going to target, a device.
CliRun runInto(const std::string& program, const std::string& arguments, const fs::path& scratch,
               const std::string& target) {
    const fs::path err = scratch / "stderr";
    const std::string command = "timeout 60 " + shellQuoted(program) + " " + arguments + " </dev/null >" + target +
                                " 2>" + shellQuoted(err.string());
    CliRun result;
    const int raw = std::system(command.c_str());
    result.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    result.err = readFile(err);
    return result;
}

TEST_F(QxfbProjectTest, AFailedWriteToStandardOutputFailsTheCommand) {
    if (!fs::exists("/dev/full")) GTEST_SKIP() << "no /dev/full";
    const CliRun info = runInto(program, "project info " + shellQuoted(projectFile.string()), folder, "/dev/full");
    EXPECT_EQ(info.status, 1);
    EXPECT_EQ(info.err, "qxfb: standard output cannot be written (No space left on device)\n");
    const CliRun bundled =
        runInto(program, "project bundle " + shellQuoted(projectFile.string()) + " " + shellQuoted(bundle.string()),
                folder, "/dev/full");
    EXPECT_EQ(bundled.status, 1);
    EXPECT_EQ(bundled.err, "qxfb: standard output cannot be written (No space left on device)\n");
    EXPECT_EQ(runInto(program, "--help", folder, "/dev/full").status, 1);
    EXPECT_EQ(runInto(program, "project info " + shellQuoted(projectFile.string()), folder, "/dev/null").status, 0);
}

TEST_F(QxfbProjectTest, InfoOfAFileColonNameShowsThatFileAndNotTheDecoy) {
    Project named;
    named.Nets = {LadderNet{L"the file named", {}}};
    saveProject((folder / "file:plant.qxfbproj").string(), named);
    const CliRun info = test::runCli(program, "project info file:plant.qxfbproj", folder, "", folder);
    ASSERT_EQ(info.status, 0) << info.err;
    EXPECT_EQ(info.lines()[3], "Net 1: the file named");
}

TEST_F(QxfbProjectTest, AHostileSchemaIsRefusedAtOnceByInfoAndBundle) {
    test::runSql(
        projectFile,
        "WITH RECURSIVE n(i) AS (SELECT 10 UNION ALL SELECT i + 1 FROM n WHERE i < 3009)"
        " INSERT INTO instances SELECT 170100, i, 'x', x'00' FROM n;"
        "PRAGMA writable_schema = ON; UPDATE sqlite_schema SET sql = replace(sql, 'data BLOB NOT NULL',"
        " 'data BLOB NOT NULL CHECK(length(hex(zeroblob(20000000 + length(data)))) > 0)') WHERE name = 'instances';");
    const std::string refused = "qxfb: project file \"" + projectFile.string() +
                                "\": is not a project file of this program (the table instances is not the one this "
                                "program writes)\n";
    const auto start = std::chrono::steady_clock::now();
    const CliRun info = run("project info " + shellQuoted(projectFile.string()));
    EXPECT_EQ(info.status, 1);
    EXPECT_EQ(info.err, refused);
    const CliRun bundled =
        run("project bundle " + shellQuoted(projectFile.string()) + " " + shellQuoted(bundle.string()));
    EXPECT_EQ(bundled.status, 1);
    EXPECT_EQ(bundled.err, refused);
    EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), 5.0);
    EXPECT_FALSE(fs::exists(bundle));
}

TEST_F(QxfbProjectTest, InstancesWithoutTheirKeyAreRefusedAndNoBundleIsStarted) {
    test::runSql(projectFile,
                 "CREATE TABLE copy AS SELECT * FROM instances; DROP TABLE instances;"
                 "CREATE TABLE instances(father_id INTEGER NOT NULL, instance_num INTEGER NOT NULL, name TEXT NOT NULL,"
                 " data BLOB NOT NULL) STRICT;"
                 "INSERT INTO instances SELECT * FROM copy; INSERT INTO instances SELECT * FROM copy;"
                 "DROP TABLE copy;");
    const std::string refused = "qxfb: project file \"" + projectFile.string() +
                                "\": is not a project file of this program (the table instances is not the one this "
                                "program writes)\n";
    const CliRun info = run("project info " + shellQuoted(projectFile.string()));
    EXPECT_EQ(info.status, 1);
    EXPECT_EQ(info.out, "");
    EXPECT_EQ(info.err, refused);
    const CliRun bundled =
        run("project bundle " + shellQuoted(projectFile.string()) + " " + shellQuoted(bundle.string()));
    EXPECT_EQ(bundled.status, 1);
    EXPECT_EQ(bundled.err, refused);
    EXPECT_FALSE(fs::exists(bundle));
}

TEST_F(QxfbProjectTest, ARuntimeFileThatCannotBeReadIsNamedWithFamilyVersionAndCause) {
    const fs::path app = folder / "app";
    const fs::path rt = app / "FB_Lib" / "RT";
    fs::create_directories(app / "bin");
    fs::create_directories(rt);
    fs::copy(fs::path(paths::sourceTree()) / "runtime/FB_Lib/RT", rt);
    const std::string arguments = "project bundle " + shellQuoted(projectFile.string()) + " " +
                                  shellQuoted(bundle.string()) + " --app-folder " + shellQuoted((app / "bin").string());
    const std::string family = "qxfb: the runtime files of family 170100, version 100 cannot be read: \"";

    test::writeFile(rt / "170100V100.FBs", "");
    CliRun failed = run(arguments);
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(lastLineOf(failed.err),
              family + (rt / "170100V100.FBs").string() + "\" is empty (run-time error 9: Subscript out of range)");

    fs::remove(rt / "170100V100.FBs");
    fs::create_directory(rt / "170100V100.FBs");
    failed = run(arguments);
    EXPECT_EQ(lastLineOf(failed.err), family + (rt / "170100V100.FBs").string() +
                                          "\" is not a regular file (run-time error 75: Path/File access error)");

    fs::remove(rt / "170100V100.FBs");
    fs::copy_file(fs::path(paths::sourceTree()) / "runtime/FB_Lib/RT/170100V100.FBs", rt / "170100V100.FBs");
    std::string ini = readFile(rt / "170100.ini");
    ini.replace(ini.find("MinBiosVersion=310"), 18, "MinBiosVersion=3x0");
    test::writeFile(rt / "170100.ini", ini);
    failed = run(arguments);
    EXPECT_EQ(lastLineOf(failed.err), family + (rt / "170100.ini").string() +
                                          "\" holds a value that is no number for version 100 (run-time error 13: Type "
                                          "mismatch)");

    ini.replace(ini.find("Version100_MinBiosVersion=3x0"), 29, "");
    test::writeFile(rt / "170100.ini", ini);
    failed = run(arguments);
    EXPECT_EQ(lastLineOf(failed.err),
              family + (rt / "170100.ini").string() +
                  "\" has no value for Version100_MinBiosVersion (run-time error 13: Type mismatch)");
    EXPECT_FALSE(fs::exists(bundle));
}

}  // namespace
}  // namespace qx

namespace qx {
namespace {

// project export: a real Send image (the Modbus ASCII example, imported)
// next to the sample's operations. Its text form is what export gives for
// the image; project.json says where each operation's messages are, and the
// rest in words and hexadecimal.
TEST_F(QxfbProjectTest, ExportWritesTheProjectAsJsonFilesAPersonCanKeep) {
    const std::string example =
        (fs::path(paths::sourceTree()) / "resources/examples/frames/modbus-ascii-send.json").string();
    const std::string sendFile = shellQuoted((folder / "send.bin").string());
    ASSERT_EQ(run("import " + shellQuoted(example) + " -o " + sendFile).status, 0);
    Project project = sampleProject();
    project.Settings.ExtendedOperands = false;
    const std::string image = readFile(folder / "send.bin");
    project.Nets[1].Operations[0].BinaryOperands.assign(image.begin(), image.end());
    saveProject(projectFile.string(), project);

    const fs::path out = folder / "out" / "json";
    const CliRun exported =
        run("project export " + shellQuoted(projectFile.string()) + " " + shellQuoted(out.string()));
    ASSERT_EQ(exported.status, 0) << exported.err;
    EXPECT_EQ(exported.lastLine(), "Export: 3 files in " + out.string());
    EXPECT_EQ(readFile(out / "messages/net002_op001_send.json"), run("export " + sendFile).out);
    EXPECT_EQ(readFile(out / "checksums.json"), model::checksumTableToJson(model::ChecksumTable::Default()));

    const nlohmann::json json = nlohmann::json::parse(readFile(out / "project.json"));
    EXPECT_EQ(json["format"], "qxfbcom2-project-export");
    EXPECT_EQ(json["version"], 1);
    EXPECT_EQ(json["settings"]["checksums"], "checksums.json");
    const auto& config = json["nets"][0]["operations"][0];
    EXPECT_EQ(config["MethodID"], 170101);
    EXPECT_EQ(config["image"], "02 00");
    EXPECT_EQ(config["outputs"][0]["operand"], "MB 10");
    EXPECT_EQ(config["outputs"][0]["description"], "Protocol busy");
    const auto& send = json["nets"][1]["operations"][0];
    EXPECT_EQ(send["messages"], "messages/net002_op001_send.json");
    EXPECT_FALSE(send.contains("image"));
    EXPECT_EQ(send["inputs"][0]["constant"], 70000);
    EXPECT_EQ(json["instances"][1]["name"], "Sc\u00e4le");
    EXPECT_EQ(json["instances"][0]["data"], "10 20 30");
    EXPECT_EQ(json["constants"][0]["type"], toUtf8(clsOperandTypeNames().GetName(34)));

    // Whole or nothing: a folder that is not empty is refused.
    const CliRun again = run("project export " + shellQuoted(projectFile.string()) + " " + shellQuoted(out.string()));
    EXPECT_EQ(again.status, 1);
    EXPECT_EQ(again.err, "qxfb: export folder \"" + out.string() + "\" is not empty\n");
}

}  // namespace
}  // namespace qx
