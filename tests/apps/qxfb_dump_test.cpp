// qxfb dump and qxfb diff, run as a user runs them on image files: the
// listing, the JSON, the exit statuses, and the errors of broken images.
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "apps/cli_run.h"
#include "component/built_paths.h"
#include "platform/host/host_context.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"
#include "support/scratch_files.h"

namespace qx {
namespace {

namespace fs = std::filesystem;

using test::CliRun;
using test::shellQuoted;

// A Send of one message, "AB" and a control character 13, as the writer
// makes it: the worked example of the image, 90 bytes.
Bytes sendImage(const std::wstring& text = L"AB") {
    ScopedHostContext context;
    clsProtocolSendSrv set;
    std::wstring row(500, L' ');
    row.replace(0, text.size(), text);
    set.GetMessage(1)->MessageString(row);
    set.GetMessage(1)->AddControlChar(static_cast<int32_t>(text.size()), 13);
    return set.BinaryData();
}

Bytes scanImage() {
    ScopedHostContext context;
    clsProtocolScanSrv set;
    std::wstring row(500, L' ');
    row.replace(0, 2, L"OK");
    set.GetMessage(1)->MessageString(row);
    return set.BinaryData();
}

class QxfbInspectTest : public ::testing::Test {
protected:
    void SetUp() override {
        program = paths::builtCli();
        ASSERT_FALSE(program.empty()) << "QXFB_CLI names the program under test";
    }

    std::string file(const std::string& name, const Bytes& bytes) {
        const fs::path path = folder / name;
        test::writeFile(path, std::string(bytes.begin(), bytes.end()));
        return shellQuoted(path.string());
    }

    CliRun run(const std::string& arguments) { return test::runCli(program, arguments, folder); }

    std::string program;
    test::ScratchFolder scratch{"qxfb_inspect_cli_test"};
    const fs::path folder = scratch.path();
};

TEST_F(QxfbInspectTest, DumpListsTheImageRangeByRange) {
    const CliRun dump = run("dump " + file("send.bin", sendImage()));
    ASSERT_EQ(dump.status, 0) << dump.err;
    EXPECT_EQ(dump.err, "");
    const std::vector<std::string> lines = dump.lines();
    ASSERT_GT(lines.size(), 60u);
    EXPECT_EQ(lines[0], "Send image, 90 bytes (recognised by its content)");
    EXPECT_EQ(lines[1], "offset length");
    EXPECT_EQ(lines[2], "     0     58  header");
    EXPECT_NE(std::find(lines.begin(), lines.end(), "    64     18    text at position 0: \"AB<CR>\""), lines.end());
    EXPECT_NE(std::find(lines.begin(), lines.end(), "    86      3        text: \"AB<CR>\"  [41 42 0D]"), lines.end());
    EXPECT_EQ(lines.back(), "    89      1  unused: 0 (never read)  [00]");
}

TEST_F(QxfbInspectTest, DumpWritesTheSameTreeAsJson) {
    const CliRun dump = run("dump --json " + file("scan.bin", scanImage()));
    ASSERT_EQ(dump.status, 0) << dump.err;
    const nlohmann::json json = nlohmann::json::parse(dump.out);
    EXPECT_EQ(json.at("kind"), "scan");
    EXPECT_EQ(json.at("size"), 72);
    EXPECT_EQ(json.at("root").at("children")[0].at("name"), "header");
    EXPECT_EQ(json.at("root").at("children")[0].at("children")[0].at("name"), "EndOfScanMessageType");
    EXPECT_EQ(json.at("root").at("children")[0].at("children")[0].at("value"), "1 \"ETX\"");
}

TEST_F(QxfbInspectTest, KindCanBeNamed) {
    const std::string image = file("two.bin", {2, 0});
    const CliRun config = run("dump " + image);
    ASSERT_EQ(config.status, 0) << config.err;
    EXPECT_EQ(config.lines().at(2), "     0      1  COM port: 2 \"COM2\"  [02]");
    const CliRun copy = run("dump --kind copy " + image);
    ASSERT_EQ(copy.status, 0) << copy.err;
    EXPECT_EQ(copy.lines().at(0), "Copy buffer image, 2 bytes");
    EXPECT_EQ(copy.lines().at(2),
              "     0      1  copy format: 2 \"Convert 2 Receive Bytes to ONE Linked Element\"  [02]");
}

TEST_F(QxfbInspectTest, BrokenImageFailsWithTheOffset) {
    Bytes cut = sendImage();
    cut.resize(70);
    const CliRun dump = run("dump --kind send " + file("cut.bin", cut));
    EXPECT_EQ(dump.status, 1);
    EXPECT_EQ(dump.out, "");
    EXPECT_NE(dump.err.find("cut.bin: offset 64: the segment table of message 1 (1 entry) of 18 bytes expected, "
                            "6 bytes left"),
              std::string::npos)
        << dump.err;
    const CliRun unknown = run("dump " + file("odd.bin", {1, 2, 3}));
    EXPECT_EQ(unknown.status, 1);
    EXPECT_NE(unknown.err.find("not an image of a known kind"), std::string::npos) << unknown.err;
    const CliRun missing = run("dump " + shellQuoted((folder / "missing.bin").string()));
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.err.find("cannot be read"), std::string::npos) << missing.err;
}

TEST_F(QxfbInspectTest, FileWithoutEndIsNotReadWhole) {
    const CliRun dump = run("dump /dev/zero");
    EXPECT_EQ(dump.status, 1);
    EXPECT_NE(dump.err.find("/dev/zero: more than 1048576 bytes"), std::string::npos) << dump.err;
}

TEST_F(QxfbInspectTest, DumpUsageErrorsExitWith2) {
    for (const std::string& arguments :
         std::vector<std::string>{"dump", "dump --kind", "dump --kind nothing x.bin", "dump --frobnicate x.bin",
                                  "dump a.bin b.bin", "diff a.bin", "diff --json a.bin b.bin"}) {
        const CliRun bad = run(arguments);
        EXPECT_EQ(bad.status, 2) << arguments;
        EXPECT_NE(bad.err.find("Try 'qxfb --help'."), std::string::npos) << arguments << ": " << bad.err;
    }
}

TEST_F(QxfbInspectTest, DiffOfEqualImagesSaysNothingAndExitsWith0) {
    const Bytes image = sendImage();
    const CliRun diff = run("diff " + file("a.bin", image) + " " + file("b.bin", image));
    EXPECT_EQ(diff.status, 0) << diff.err;
    EXPECT_EQ(diff.out, "");
}

TEST_F(QxfbInspectTest, DiffNamesWhatChangedAndExitsWith1) {
    const CliRun diff = run("diff " + file("a.bin", sendImage(L"AB")) + " " + file("b.bin", sendImage(L"AC")));
    EXPECT_EQ(diff.status, 1) << diff.err;
    EXPECT_EQ(diff.lines(),
              std::vector<std::string>{"message 1, text at position 0, text block: text \"AB<CR>\" -> \"AC<CR>\""});
}

TEST_F(QxfbInspectTest, DiffOfDifferentKindsOrBrokenImagesExitsWith2) {
    const CliRun kinds = run("diff " + file("send.bin", sendImage()) + " " + file("scan.bin", scanImage()));
    EXPECT_EQ(kinds.status, 2);
    EXPECT_NE(kinds.err.find("only images of one kind can be compared"), std::string::npos) << kinds.err;
    Bytes cut = sendImage();
    cut.resize(80);
    const CliRun broken = run("diff --kind send " + file("a.bin", sendImage()) + " " + file("cut.bin", cut));
    EXPECT_EQ(broken.status, 2);
    EXPECT_NE(broken.err.find("cut.bin: offset"), std::string::npos) << broken.err;
}

TEST_F(QxfbInspectTest, DiffReadsAnAmbiguousImageAsTheOtherOnesKind) {
    const CliRun diff = run("diff " + file("a.bin", {2, 0}) + " " + file("b.bin", {4, 0}));
    EXPECT_EQ(diff.status, 1) << diff.err;
    EXPECT_EQ(diff.lines(), std::vector<std::string>{
                                "copy format 2 \"Convert 2 Receive Bytes to ONE Linked Element\" -> 4 \"Convert 4 "
                                "Receive Bytes to ONE Linked Element\""});
}

TEST_F(QxfbInspectTest, HelpNamesBothCommands) {
    const CliRun help = run("--help");
    ASSERT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("qxfb dump FILE [--kind KIND] [--json]"), std::string::npos);
    EXPECT_NE(help.out.find("qxfb diff A B [--kind KIND]"), std::string::npos);
}

}  // namespace
}  // namespace qx
