// qxfb's command line as a whole: the list of commands in qxfb --help, each
// command's own --help, and the usage errors that stop a command before it
// reads or writes anything (exit status 2, the word at fault named).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "apps/cli_run.h"
#include "component/built_paths.h"
#include "support/scratch_files.h"

namespace qx {
namespace {

class QxfbCommandLineTest : public ::testing::Test {
protected:
    std::string program = paths::builtCli();
    test::ScratchFolder scratch{"qxfb_command_line_test"};

    test::CliRun run(const std::string& arguments) { return test::runCli(program, arguments, scratch.path()); }
};

const std::vector<std::string> Commands = {"demo", "classes", "register", "unregister", "project",  "dump",
                                           "diff", "export",  "import",   "preview",    "loopback", "decode"};

TEST_F(QxfbCommandLineTest, HelpListsEveryCommandWithWhatItDoes) {
    const test::CliRun help = run("--help");
    ASSERT_EQ(help.status, 0) << help.err;
    const size_t list = help.out.find("\nCommands:\n");
    const size_t details = help.out.find("\nThe commands in detail:\n");
    ASSERT_NE(list, std::string::npos) << help.out;
    ASSERT_NE(details, std::string::npos) << help.out;
    const std::string commands = help.out.substr(list, details - list);
    for (const std::string& command : Commands) {
        const size_t at = commands.find("\n  " + command + " ");
        ASSERT_NE(at, std::string::npos) << command << " is not listed:\n" << commands;
        const size_t end = commands.find('\n', at + 1);
        // A description follows the name on its line.
        EXPECT_GT(end - at, 30u) << commands.substr(at, end - at);
    }
    const test::CliRun project = run("project --help");
    EXPECT_EQ(project.status, 0);
    EXPECT_NE(project.out.find("\n  info "), std::string::npos) << project.out;
    EXPECT_NE(project.out.find("\n  bundle "), std::string::npos) << project.out;
    EXPECT_EQ(run("help").out, help.out);
    EXPECT_EQ(run("-h").out, help.out);
}

TEST_F(QxfbCommandLineTest, EveryCommandHasItsOwnHelp) {
    for (const std::string& command : Commands) {
        const test::CliRun help = run(command + " --help");
        EXPECT_EQ(help.status, 0) << command;
        EXPECT_EQ(help.err, "") << command;
        EXPECT_NE(help.out.find("Usage: qxfb " + command), std::string::npos) << help.out;
        EXPECT_EQ(help.out.find("The commands in detail"), std::string::npos) << command;
    }
    EXPECT_NE(run("project bundle --help").out.find("--app-folder-from-project"), std::string::npos);
}

TEST_F(QxfbCommandLineTest, PreviewHelpNamesItsArgumentAndOptions) {
    const test::CliRun help = run("preview --help");
    ASSERT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("Usage: qxfb preview [OPTIONS] SEND\n"), std::string::npos) << help.out;
    for (const char* option : {"--message N", "--values FILE", "--clock TIME", "--crc16 R", "-h,--help"})
        EXPECT_NE(help.out.find(option), std::string::npos) << option << " in\n" << help.out;
    EXPECT_NE(help.out.find("1 to 255"), std::string::npos) << help.out;
}

TEST_F(QxfbCommandLineTest, AnUnknownOptionIsAUsageErrorThatNamesIt) {
    for (const std::string& arguments :
         {std::string("preview send.img --frobnicate"), std::string("dump x.bin --frobnicate 3"),
          std::string("project bundle p.qxfbproj out --frobnicate"), std::string("classes --frobnicate")}) {
        const test::CliRun bad = run(arguments);
        EXPECT_EQ(bad.status, 2) << arguments;
        EXPECT_EQ(bad.out, "") << arguments;
        EXPECT_EQ(bad.err, "qxfb: unknown option --frobnicate\nTry 'qxfb --help'.\n") << arguments;
    }
}

TEST_F(QxfbCommandLineTest, AWholeNumberOptionRefusesAnythingElse) {
    for (const std::string value : {"x", "2.5", "3k", "", "0", "256"}) {
        const test::CliRun bad = run("preview send.img --message '" + value + "'");
        EXPECT_EQ(bad.status, 2) << value;
        EXPECT_EQ(bad.out, "") << value;
        EXPECT_EQ(bad.err,
                  "qxfb: --message: \"" + value + "\" is not a whole number from 1 to 255\nTry 'qxfb --help'.\n")
            << value;
    }
    const test::CliRun baud = run("loopback send.img scan.img --baud fast");
    EXPECT_EQ(baud.status, 2);
    EXPECT_EQ(baud.err, "qxfb: --baud: \"fast\" is not a whole number from 50 to 10000000\nTry 'qxfb --help'.\n");
}

TEST_F(QxfbCommandLineTest, AChoiceOptionRefusesAWordOutsideItsList) {
    const test::CliRun bad = run("dump x.bin --kind picture");
    EXPECT_EQ(bad.status, 2);
    EXPECT_NE(bad.err.find("--kind: picture not in {send,scan,config,copy,address}"), std::string::npos) << bad.err;
    EXPECT_EQ(run("decode scan.img --hex 00 --crc16 xmodem").status, 2);
}

TEST_F(QxfbCommandLineTest, MissingOrExtraArgumentsAreUsageErrorsInWords) {
    const auto err = [this](const std::string& arguments) {
        const test::CliRun bad = run(arguments);
        EXPECT_EQ(bad.status, 2) << arguments;
        return bad.err;
    };
    EXPECT_EQ(err(""), "qxfb: no command given\nTry 'qxfb --help'.\n");
    EXPECT_EQ(err("compile"), "qxfb: unknown command compile\nTry 'qxfb --help'.\n");
    EXPECT_EQ(err("project"), "qxfb: project needs a command: info or bundle or export\nTry 'qxfb --help'.\n");
    EXPECT_EQ(err("project compile x"), "qxfb: unknown project command compile\nTry 'qxfb --help'.\n");
    EXPECT_EQ(err("loopback send.img"), "qxfb: loopback needs a Send image and a Scan image\nTry 'qxfb --help'.\n");
    EXPECT_EQ(err("dump a.bin b.bin"), "qxfb: unexpected argument b.bin\nTry 'qxfb --help'.\n");
    EXPECT_EQ(err("decode scan.img capture.bin --hex 00"), "qxfb: CAPTURE excludes --hex\nTry 'qxfb --help'.\n");
    EXPECT_EQ(err("'unknown\x1b[31m'"), "qxfb: unknown command unknown\\e[31m\nTry 'qxfb --help'.\n");
}

}  // namespace
}  // namespace qx
