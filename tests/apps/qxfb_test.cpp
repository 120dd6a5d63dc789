// The built qxfb program, run as a user runs it: its output, its errors on
// standard error, its exit status.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "apps/cli_run.h"
#include "component/built_paths.h"
#include "message/protocol_message.h"
#include "message/protocol_scan_numeric_var.h"
#include "platform/host/host_context.h"
#include "sets/scan_set.h"
#include "support/scratch_files.h"
#include "support/test_helpers.h"

namespace {

namespace fs = std::filesystem;

using qx::test::readFile;

using qx::test::CliRun;
using qx::test::shellQuoted;

class QxfbTest : public ::testing::Test {
protected:
    void SetUp() override {
        program = qx::paths::builtCli();
        ASSERT_FALSE(program.empty()) << "QXFB_CLI names the program under test";
    }

    CliRun run(const std::string& arguments, const std::string& environment = "", const fs::path& current = {}) {
        return qx::test::runCli(program, arguments, folder, environment, current);
    }

    std::string program;
    qx::test::ScratchFolder scratch{"qxfb_cli_test"};
    const fs::path folder = scratch.path();
};

TEST_F(QxfbTest, DemoEndsWithTheImageOfTheNewConfigOnCom2) {
    CliRun demo = run("demo");
    EXPECT_EQ(demo.status, 0) << demo.err;
    EXPECT_EQ(demo.lastLine(), "BinaryOperands: 02 00");
    EXPECT_EQ(demo.err, "");
}

TEST_F(QxfbTest, DemoListsBothFamiliesWithEveryOperationAndTheirVersions) {
    CliRun demo = run("demo");
    ASSERT_EQ(demo.status, 0) << demo.err;
    for (const char* expected :
         {"Gate: QxFBCom2.clsGate {12D70566-D97F-4E2E-A8C9-65E0DBDC60E6}, GateID 170000\n",
          "Family 170100 PROTOCOL (Protocol)\n", "Family 170200 P. TCP/IP (Protocol TCP/IP)\n",
          "  CurrentHexFileVersion: 100\n", "  HexFileVersionsList: 100\n", "FatherID 170100  MethodID 170101  CONFIG",
          "FatherID 170100  MethodID 170102  SCAN", "FatherID 170100  MethodID 170103  SEND",
          "FatherID 170100  MethodID 170104  COPY BUFFER", "FatherID 170100  MethodID 170105  BUFFER RST",
          "FatherID 170200  MethodID 170201  CONFIG", "FatherID 170200  MethodID 170202  SCAN",
          "FatherID 170200  MethodID 170203  SEND TCP",
          "Each operation is linked to a Configuration, which determines which COM port is used for Send and Scan "
          "operations\n"})
        EXPECT_NE(demo.out.find(expected), std::string::npos) << expected;
    const std::string fbs = readFile(fs::path(qx::paths::sourceTree()) / "runtime/FB_Lib/RT/170100V100.FBs");
    EXPECT_NE(demo.out.find("Runtime files of version 100: FBs " + std::to_string(fbs.size()) + " bytes"),
              std::string::npos);
}

TEST_F(QxfbTest, DemoShowsTheBlocksOfTheNewConfig) {
    CliRun demo = run("demo");
    ASSERT_EQ(demo.status, 0) << demo.err;
    for (const char* expected :
         {"  Person: chooses COM2 in cbComport, presses OK\n", "  InOperands: none\n",
          "    1  Function in progress  MB 10 : Protocol busy\n", "    2  Status  MI 20 : Protocol status\n",
          "  FatherInstanceNum: 1\n", "  FatherInstanceName: Config1\n", "  HexFileVersion: 100\n"})
        EXPECT_NE(demo.out.find(expected), std::string::npos) << expected << "\n" << demo.out;
}

TEST_F(QxfbTest, DemoPlaysACopyBufferAndPrintsItsImage) {
    CliRun demo = run("demo");
    ASSERT_EQ(demo.status, 0) << demo.err;
    for (const char* expected :
         {"  Person: Config Config1 is chosen already\n", "    1  Copy to  MI 30 : Received words\n",
          "  Person: chooses \"Convert 2 Receive Bytes to ONE Linked Element\", presses OK\n",
          "\nCopy buffer image: 02 00\nBinaryOperands: 02 00\n"})
        EXPECT_NE(demo.out.find(expected), std::string::npos) << expected << "\n" << demo.out;
}

TEST_F(QxfbTest, DemoPlaysASerialSendThroughItsDialogAndPrintsItsImageSize) {
    CliRun demo = run("demo");
    ASSERT_EQ(demo.status, 0) << demo.err;
    for (const char* expected : {"\nNew serial Send\n", "  Person: types W and places CR LF in message 0\n",
                                 "  Person: appends message 1: T, a numeric field linked to MI 12, CR LF\n",
                                 "  Person: STX 02, ETX 03, end of message ETX\n",
                                 "  Person: links the message number to MI 5 : Request, presses OK\n",
                                 "    1  Message number  MI 5 : Request\n", "    2    MI 12 : Tare\n"})
        EXPECT_NE(demo.out.find(expected), std::string::npos) << expected << "\n" << demo.out;
    const size_t at = demo.out.find("\nSend image bytes: ");
    ASSERT_NE(at, std::string::npos) << demo.out;
    // Two messages with their fields, the frame and the checksum make more than a header.
    EXPECT_GT(std::stoi(demo.out.substr(at + 19)), 100);
}

// The Scan the demo's person makes, built directly on a Scan set: "W" CR LF;
// "T", five digits with a sign into MI 53 (decimal point into MI 54), CR LF;
// STX 02; the end of text ETX 03.
size_t demoScanImageSize() {
    qx::ScopedHostContext context;
    qx::clsProtocolScanSrv set;
    set.AppendMessage();
    const std::wstring blank(qx::clsProtocolMessage::MaxPositions, L' ');
    qx::clsProtocolMessage& weigh = *set.GetMessage(1);
    weigh.MessageString(L"W" + blank.substr(1));
    weigh.AddControlChar(1, 13);
    weigh.AddControlChar(2, 10);
    qx::clsProtocolMessage& tare = *set.GetMessage(2);
    tare.MessageString(L"T" + blank.substr(1));
    auto number = std::make_shared<qx::clsProtocolScanNumericVar>();
    number->StartPosition(1);
    number->BeforePoint(5);
    qx::test::linkOperand(*number->LikedOperand(), 3, 53);
    qx::test::linkOperand(*number->DecimalPointOperand(), 3, 54);
    tare.AddVar(number);
    const int32_t end = number->StartPosition() + number->Length();
    tare.AddControlChar(end, 13);
    tare.AddControlChar(end + 1, 10);
    set.MessageLengthValue(0);
    set.ScanSTXLength(1);
    set.SetScanSTXValue(0, 0x02, false);
    set.ScanETXLength(1);
    set.SetScanETXValue(0, 0x03, false);
    return set.BinaryData().size();
}

TEST_F(QxfbTest, DemoPlaysASerialScanThatReceivesTheSendAndPrintsItsImageSize) {
    CliRun demo = run("demo");
    ASSERT_EQ(demo.status, 0) << demo.err;
    for (const char* expected :
         {"\nNew serial Scan\n",
          "  Person: Config Config1 is chosen already; links MB 50 : Request received, MI 51 : Request bytes, MI 52 : "
          "Request index\n",
          "  Person: STX 02, terminator ETX 03, presses OK\n", "    1  Session complete  MB 50 : Request received\n",
          "  OperandsForFindOnly:\n    1    MI 53 : Tare in\n    2    MI 54 : Tare decimals\n"})
        EXPECT_NE(demo.out.find(expected), std::string::npos) << expected << "\n" << demo.out;
    const size_t send = demo.out.find("\nSend image bytes: ");
    const size_t at = demo.out.find("\nScan image bytes: ");
    ASSERT_NE(at, std::string::npos) << demo.out;
    EXPECT_LT(send, at);
    EXPECT_EQ(std::stoul(demo.out.substr(at + 19)), demoScanImageSize());
    EXPECT_EQ(demo.lastLine(), "BinaryOperands: 02 00");
}

TEST_F(QxfbTest, DemoPlaysATcpIpConfigAndPrintsItsAddressTable) {
    CliRun demo = run("demo");
    ASSERT_EQ(demo.status, 0) << demo.err;
    // Address 0: used, IP 192.168.1.10 and port 502 as constants; address 1:
    // used, IP from MI 100 and port from MI 104; the others as a new table has them.
    for (const char* expected :
         {"    1  Socket  #1\n", "    1  Status  MI 21 : Ethernet status\n", "  FatherInstanceName: Plant\n",
          "Address table (418 bytes): 64 10\n",
          "   0: 01 00 01 00 C0 A8 01 0A 01 00 F6 01 00 00 41 64 64 72 65 73 73 20 30 20 20 20\n",
          "   1: 01 00 00 00 64 00 00 00 00 00 68 00 00 00 41 64 64 72 65 73 73 20 31 20 20 20\n",
          "  15: 00 00 01 00 00 00 00 00 01 00 20 4E 00 00 41 64 64 72 65 73 73 20 31 35 20 20\n",
          "        MI 100 : Remote IP\n        MI 104 : Remote port\n"})
        EXPECT_NE(demo.out.find(expected), std::string::npos) << expected << "\n" << demo.out;
}

TEST_F(QxfbTest, HelpExplainsEveryCommandAndOption) {
    CliRun help = run("--help");
    EXPECT_EQ(help.status, 0);
    for (const char* expected : {"qxfb demo [--component PATH] [--app-folder DIR]", "qxfb classes", "qxfb register",
                                 "qxfb unregister", "qxfb --help", "DllRegisterServer", "DllUnregisterServer",
                                 "BinaryOperands: 02 00", "QXFB_APP_FOLDER", "QXFB_REGISTRY", "Exit status"})
        EXPECT_NE(help.out.find(expected), std::string::npos) << expected;
}

TEST_F(QxfbTest, UnknownCommandOrOptionIsAUsageError) {
    CliRun bogus = run("bogus");
    EXPECT_EQ(bogus.status, 2);
    EXPECT_EQ(bogus.out, "");
    EXPECT_NE(bogus.err.find("unknown command bogus"), std::string::npos);
    EXPECT_EQ(run("demo --bogus").status, 2);
    EXPECT_EQ(run("").status, 2);
    EXPECT_EQ(run("demo --component").status, 2);
}

TEST_F(QxfbTest, DemoWithoutRuntimeFilesReportsOnStandardErrorAndFails) {
    CliRun demo = run("demo --app-folder " + shellQuoted((folder / "nowhere" / "bin").string()));
    EXPECT_EQ(demo.status, 1);
    EXPECT_NE(demo.err.find("KeyNotFount"), std::string::npos) << demo.err;
    EXPECT_NE(demo.err.find("run-time error 13"), std::string::npos) << demo.err;
    EXPECT_EQ(demo.out.find("BinaryOperands"), std::string::npos);
}

TEST_F(QxfbTest, DemoTakesTheAppFolderOfTheEnvironment) {
    CliRun demo = run("demo", "QXFB_APP_FOLDER=" + shellQuoted((folder / "elsewhere" / "bin").string()));
    EXPECT_EQ(demo.status, 1);
    EXPECT_NE(demo.out.find("Application folder: " + (folder / "elsewhere" / "bin").string()), std::string::npos);
}

TEST_F(QxfbTest, AMissingComponentFailsWithItsPath) {
    CliRun demo = run("demo --component " + shellQuoted((folder / "libNothing.so").string()));
    EXPECT_EQ(demo.status, 1);
    EXPECT_EQ(demo.err, "qxfb: cannot load the component \"" + (folder / "libNothing.so").string() +
                            "\": No such file or directory\n");
}

TEST_F(QxfbTest, AnEmptyComponentPathIsNamedAsSuch) {
    CliRun demo = run("demo --component ''");
    EXPECT_EQ(demo.status, 1);
    EXPECT_EQ(demo.err, "qxfb: cannot load the component \"\": the path is empty\n");
}

TEST_F(QxfbTest, AComponentThatIsNoRegularFileFailsAtOnce) {
    ASSERT_EQ(::mkfifo((folder / "fifo.so").c_str(), 0600), 0);
    fs::create_directories(folder / "folder.so");
    for (const fs::path& path : {folder / "fifo.so", folder / "folder.so", fs::path("/dev/zero")}) {
        SCOPED_TRACE(path);
        CliRun classes = run("classes --component " + shellQuoted(path.string()));
        EXPECT_EQ(classes.status, 1);
        EXPECT_EQ(classes.err, "qxfb: cannot load the component \"" + path.string() + "\": not a regular file\n");
    }
}

TEST_F(QxfbTest, AComponentNamedWithoutAFolderIsTheFileOfTheCurrentFolder) {
    fs::copy_file(qx::paths::builtComponent(), folder / "libQxFBCom2.so");
    CliRun classes = run("classes --component libQxFBCom2.so", "", folder);
    ASSERT_EQ(classes.status, 0) << classes.err;
    EXPECT_EQ(classes.lines().size(), 11u);
    // Not a library that the loader would find on its search path.
    CliRun missing = run("classes --component libc.so.6", "", folder);
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.err, "qxfb: cannot load the component \"libc.so.6\": No such file or directory\n");
}

TEST_F(QxfbTest, ClassesListsTheElevenProgIDsWithTheirIdentifiers) {
    CliRun classes = run("classes");
    ASSERT_EQ(classes.status, 0) << classes.err;
    auto lines = classes.lines();
    ASSERT_EQ(lines.size(), 11u);
    EXPECT_EQ(lines[0], "{12D70566-D97F-4E2E-A8C9-65E0DBDC60E6}  QxFBCom2.clsGate");
    EXPECT_EQ(lines[10].substr(40), "QxFBCom2.clsEthProtocolScan");
}

TEST_F(QxfbTest, RegisterAndUnregisterLeaveForeignEntriesAlone) {
    const fs::path registry = folder / "registry.ini";
    const std::string foreign = "[Other.Thing]\nCLSID={00000000-1111-2222-3333-444444444444}\n";
    std::ofstream(registry, std::ios::binary) << foreign;
    const std::string environment = "QXFB_REGISTRY=" + shellQuoted(registry.string());

    CliRun reg = run("register", environment);
    ASSERT_EQ(reg.status, 0) << reg.err;
    EXPECT_NE(reg.out.find("DllRegisterServer: registered 11 classes"), std::string::npos);
    const std::string registered = readFile(registry);
    EXPECT_EQ(registered.rfind(foreign, 0), 0u);
    EXPECT_NE(registered.find("ProgID=QxFBCom2.clsProtocolCopyToBuffer\n"), std::string::npos);

    CliRun unreg = run("unregister", environment);
    ASSERT_EQ(unreg.status, 0) << unreg.err;
    EXPECT_EQ(readFile(registry), foreign);
}

TEST_F(QxfbTest, RegisterIntoAnUnwritablePlaceFails) {
    std::ofstream(folder / "plain_file") << "x";
    CliRun reg = run("register", "QXFB_REGISTRY=" + shellQuoted((folder / "plain_file" / "registry.ini").string()));
    EXPECT_EQ(reg.status, 1);
    EXPECT_NE(reg.err.find("DllRegisterServer failed with 0x80040201"), std::string::npos) << reg.err;
}

}  // namespace
