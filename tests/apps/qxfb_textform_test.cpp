// qxfb export and import, run as a user runs them: a Send and a Scan image
// to their text form and back to the same bytes, the kind found without
// --kind, and the words and exit status for bad input.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <random>
#include <string>

#include "apps/cli_run.h"
#include "component/built_paths.h"
#include "platform/host/host_context.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"
#include "support/random_sets.h"
#include "support/scratch_files.h"

namespace qx {
namespace {

namespace fs = std::filesystem;

class QxfbTextFormTest : public ::testing::Test {
protected:
    std::string program = paths::builtCli();
    test::ScratchFolder scratch{"qxfb_textform_test"};
    const fs::path folder = scratch.path();

    test::CliRun run(const std::string& arguments) { return test::runCli(program, arguments, folder); }
    std::string file(const std::string& name) { return test::shellQuoted((folder / name).string()); }
    void writeImage(const std::string& name, const Bytes& image) {
        test::writeFile(folder / name, std::string(image.begin(), image.end()));
    }
    Bytes readImage(const std::string& name) {
        const std::string bytes = test::readFile(folder / name);
        return Bytes(bytes.begin(), bytes.end());
    }
};

// With several messages the message number is an operand, and the image
// has no place of a constant in it: it comes back byte for byte.
TEST_F(QxfbTextFormTest, ASendImageGoesToItsTextAndBackToTheSameBytes) {
    Bytes image;
    {
        ScopedHostContext host;
        host->ExtendedOperands = true;
        clsProtocolSendSrv set;
        std::mt19937 random(7);
        test::fillRandomSendSet(set, random, {.MinMessages = 3, .MaxMessages = 6});
        set.OpMessageNumber()->OperandType(3);
        set.OpMessageNumber()->OperandAddress(40);
        image = set.BinaryData();
    }
    writeImage("send.bin", image);
    const test::CliRun exported = run("export " + file("send.bin"));
    ASSERT_EQ(exported.status, 0) << exported.err;
    EXPECT_NE(exported.out.find("\"kind\": \"send\""), std::string::npos);
    EXPECT_NE(exported.out.find("\"imageVersion\": 1"), std::string::npos);
    test::writeFile(folder / "send.json", exported.out);
    const test::CliRun imported = run("import " + file("send.json") + " -o " + file("again.bin"));
    ASSERT_EQ(imported.status, 0) << imported.err;
    EXPECT_EQ(readImage("again.bin"), image);
}

TEST_F(QxfbTextFormTest, AScanImageIsRecognisedAndComesBackTheSame) {
    Bytes image;
    {
        ScopedHostContext host;
        clsProtocolScanSrv set;
        std::mt19937 random(11);
        test::fillRandomScanSet(set, random, {.MinMessages = 2});
        image = set.BinaryData();
    }
    writeImage("scan.bin", image);
    const test::CliRun exported = run("export " + file("scan.bin"));
    ASSERT_EQ(exported.status, 0) << exported.err;
    EXPECT_NE(exported.out.find("\"kind\": \"scan\""), std::string::npos);
    EXPECT_EQ(run("export --kind scan " + file("scan.bin")).out, exported.out);
    test::writeFile(folder / "scan.json", exported.out);
    ASSERT_EQ(run("import " + file("scan.json") + " -o " + file("again.bin")).status, 0);
    EXPECT_EQ(readImage("again.bin"), image);
}

TEST_F(QxfbTextFormTest, AnInvalidTextIsReportedWithFileLineAndColumn) {
    test::writeFile(folder / "bad.json",
                    "{\n  \"format\": \"qxfbcom2-message-set\",\n  \"version\": 1,\n"
                    "  \"kind\": \"send\",\n  \"imageVersion\": 0,\n  \"start\": 3\n}\n");
    const test::CliRun result = run("import " + file("bad.json") + " -o " + file("out.bin"));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err,
              "qxfb: " + (folder / "bad.json").string() + ": line 6, column 12: \"start\" must be an object\n");
    EXPECT_FALSE(fs::exists(folder / "out.bin"));
}

TEST_F(QxfbTextFormTest, UsageErrorsExitWithTwo) {
    EXPECT_EQ(run("export").status, 2);
    EXPECT_EQ(run("export a.bin --kind both").status, 2);
    EXPECT_EQ(run("import a.json").status, 2);
    EXPECT_EQ(run("import a.json -o").status, 2);
    const test::CliRun missing = run("export " + file("none.bin"));
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.err.find("cannot read"), std::string::npos);
}

}  // namespace
}  // namespace qx
