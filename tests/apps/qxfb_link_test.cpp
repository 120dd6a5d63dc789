// qxfb send, listen and simulate, run as a user runs them, against
// pseudo-terminals and a TCP server of the test: the bytes send puts on the
// line, the frames listen prints (text and JSON), a simulated device
// answering qxfb send, and the words of their errors.
#include <gtest/gtest.h>
#include <poll.h>

#include <atomic>
#include <filesystem>
#include <future>
#include <nlohmann/json.hpp>
#include <thread>

#include "apps/cli_run.h"
#include "component/built_paths.h"
#include "inspect/text_form.h"
#include "link/link.h"
#include "link/link_fixtures.h"
#include "platform/host/host_context.h"
#include "support/scratch_files.h"

namespace qx {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test::PtyBridge;
using test::TwinFrame;
using test::Wire;

class QxfbLinkTest : public ::testing::Test {
protected:
    ScopedHostContext host;
    std::string program = paths::builtCli();
    test::ScratchFolder scratch{"qxfb_link_test"};
    const fs::path folder = scratch.path();
    clsProtocolSendSrv send;
    clsProtocolScanSrv scan;

    QxfbLinkTest() {
        test::fillTwinSets(send, scan, 5);
        test::writeFile(folder / "send.json", textform::exportSendSet(send));
        test::writeFile(folder / "scan.json", textform::exportScanSet(scan));
    }

    std::string file(const std::string& name) { return test::shellQuoted((folder / name).string()); }
    test::CliRun run(const std::string& arguments) { return test::runCli(program, arguments, folder); }
    // Runs qxfb in the background, its output in a folder of its own.
    std::future<test::CliRun> start(const std::string& arguments, const std::string& name) {
        const fs::path own = folder / name;
        fs::create_directories(own);
        return std::async(std::launch::async, [this, arguments, own] { return test::runCli(program, arguments, own); });
    }
};

TEST_F(QxfbLinkTest, SendPutsEachMessageOnTheSerialPortAsTheModelRendersIt) {
    test::PtyPair pty;
    ASSERT_TRUE(pty.ok());
    test::writeFile(folder / "values.txt", "MI 102 = -250\nMI 402 = 31\n");
    const Wire expected = test::renderTwin(send, {2, -250, 31});
    const test::CliRun sent = run("send " + file("send.json") + " --message 2 --values " + file("values.txt") +
                                  " --serial " + pty.path() + " --baud 115200");
    EXPECT_EQ(sent.status, 0) << sent.err;
    EXPECT_EQ(pty.read(expected.size()), expected);
    const std::vector<std::string> lines = sent.lines();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0], "Sent message 2 to " + pty.path() + " (115200 8N1, no flow control): 21 bytes");
    EXPECT_EQ(lines[1], "  hex:  02 52 30 30 32 2C 2D 30 30 32 35 30 2C 2B 30 30 30 33 31 0D 0A");
    EXPECT_EQ(lines[2], "  text: <STX>R002,-00250,+00031<CR><LF>");
}

TEST_F(QxfbLinkTest, ListenPrintsEachFrameAsJsonAndConnectsAgainWhenTheDeviceHangsUp) {
    const std::unique_ptr<link::TcpServer> device = link::listenTcp(0);
    auto listening = start("listen " + file("scan.json") + " --tcp 127.0.0.1:" + std::to_string(device->Port()) +
                               " --json --count 4 --timeout 20000 --frame-timeout 200",
                           "listen");
    ASSERT_TRUE(device->waitForPeer(20000ms));
    const Wire one = test::renderTwin(send, {1, 12, -3}), two = test::renderTwin(send, {3, -99999, 99999});
    // Noise, a frame in two pieces glued to the next, then half a frame and the device hangs up.
    device->write(test::joined({Wire{'x', 'y'}, Wire(one.begin(), one.begin() + 4)}));
    std::this_thread::sleep_for(20ms);
    device->write(test::joined({Wire(one.begin() + 4, one.end()), two, Wire(two.begin(), two.begin() + 5)}));
    std::this_thread::sleep_for(100ms);
    device->reopen();
    ASSERT_TRUE(device->waitForPeer(20000ms));
    device->write(test::renderTwin(send, {5, 0, 7}));
    const test::CliRun heard = listening.get();
    EXPECT_EQ(heard.status, 0) << heard.err;
    const std::vector<std::string> lines = heard.lines();
    ASSERT_EQ(lines.size(), 4u) << heard.out;
    std::vector<nlohmann::json> frames;
    for (const std::string& line : lines) frames.push_back(nlohmann::json::parse(line));
    EXPECT_EQ(frames[0]["message"], 1);
    EXPECT_EQ(frames[0]["skippedBefore"], 2);
    EXPECT_EQ(frames[0]["text"], "<STX>R001,+00012,-00003<CR><LF>");
    EXPECT_EQ(frames[0]["fields"][0]["operand"], "MI 101");
    EXPECT_EQ(frames[0]["fields"][0]["values"], nlohmann::json::array({12}));
    EXPECT_EQ(frames[0]["fields"][1]["operand"], "MI 401");
    EXPECT_EQ(frames[0]["fields"][1]["values"], nlohmann::json::array({-3}));
    EXPECT_EQ(frames[1]["message"], 3);
    EXPECT_EQ(frames[1]["fields"][1]["values"], nlohmann::json::array({99999}));
    EXPECT_EQ(frames[2]["end"], "timeout");
    EXPECT_EQ(frames[2]["bytes"], "02 52 30 30 33");
    EXPECT_FALSE(frames[2].contains("message"));
    EXPECT_EQ(frames[3]["message"], 5);
    EXPECT_EQ(frames[3]["end"], "terminator");
    EXPECT_NE(heard.err.find("closed; opening it again"), std::string::npos) << heard.err;
}

TEST_F(QxfbLinkTest, ListenSaysWhyAFrameMatchedNoMessageOnOneLine) {
    const std::unique_ptr<link::TcpServer> device = link::listenTcp(0);
    auto listening = start("listen " + file("scan.json") + " --tcp 127.0.0.1:" + std::to_string(device->Port()) +
                               " --count 1 --timeout 20000",
                           "listen");
    ASSERT_TRUE(device->waitForPeer(20000ms));
    device->write(Wire{0x02, 'R', '0', '0', '9', 0x0D, 0x0A});
    const test::CliRun heard = listening.get();
    EXPECT_EQ(heard.status, 0) << heard.err;
    ASSERT_EQ(heard.lines().size(), 1u);
    const std::string line = heard.lines()[0];
    EXPECT_NE(line.find("  no message: <STX>R009<CR><LF>  message 1, position 3: \"1\" expected, \"9\" received; "),
              std::string::npos)
        << line;
}

TEST_F(QxfbLinkTest, TheSimulatorAnswersARequestThatQxfbSendsWithItsRulesMessage) {
    PtyBridge line;
    ASSERT_TRUE(line.a.ok() && line.b.ok());
    test::writeFile(folder / "rules.json",
                    R"({"rules": [
  {"when": 4, "answer": 1, "values": {"MI 101": {"field": 2}, "MI 401": 42}},
  {"when": 2, "answer": 3}
]})");
    test::writeFile(folder / "values.txt", "MI 104 = 17\nMI 404 = -5\n");
    auto answers =
        start("listen " + file("scan.json") + " --serial " + line.b.path() + " --count 1 --timeout 20000", "listen");
    auto device = start("simulate --send " + file("send.json") + " --scan " + file("scan.json") + " --rules " +
                            file("rules.json") + " --serial " + line.a.path() + " --count 1 --timeout 20000",
                        "simulate");
    std::this_thread::sleep_for(200ms);
    const test::CliRun sent =
        run("send " + file("send.json") + " --message 4 --values " + file("values.txt") + " --serial " + line.b.path());
    EXPECT_EQ(sent.status, 0) << sent.err;
    const test::CliRun played = device.get();
    EXPECT_EQ(played.status, 0) << played.err;
    ASSERT_EQ(played.lines().size(), 1u) << played.out;
    EXPECT_NE(played.lines()[0].find("message 4: <STX>R004,+00017,-00005<CR><LF>  MI 104 = 17  MI 404 = -5  -> "
                                     "message 1: <STX>R001,-00005,+00042<CR><LF>"),
              std::string::npos)
        << played.out;
    const test::CliRun heard = answers.get();
    EXPECT_EQ(heard.status, 0) << heard.err;
    ASSERT_EQ(heard.lines().size(), 1u) << heard.out;
    EXPECT_NE(heard.lines()[0].find("  message 1: <STX>R001,-00005,+00042<CR><LF>  MI 101 = -5  MI 401 = 42"),
              std::string::npos)
        << heard.out;
}

// The worked example of the README: a weighing scale played by simulate
// answers "W" with its weight, which listen decodes on the other end.
TEST_F(QxfbLinkTest, TheScaleExampleAnswersTheWeighRequestWithTheWeightOfItsRule) {
    PtyBridge line;
    ASSERT_TRUE(line.a.ok() && line.b.ok());
    const auto example = [](const std::string& name) {
        return test::shellQuoted((fs::path(paths::sourceTree()) / "resources/examples/scale" / name).string());
    };
    auto heard = start("listen " + example("reply-scan.json") + " --serial " + line.b.path() +
                           " --count 1 --timeout 20000",
                       "listen");
    auto device = start("simulate --send " + example("reply-send.json") + " --scan " + example("request-scan.json") +
                            " --rules " + example("rules.json") + " --serial " + line.a.path() +
                            " --count 1 --timeout 20000",
                        "simulate");
    std::this_thread::sleep_for(200ms);
    const test::CliRun sent = run("send " + example("request-send.json") + " --message 1 --serial " + line.b.path());
    EXPECT_EQ(sent.status, 0) << sent.err;
    EXPECT_EQ(sent.lines().at(1), "  hex:  57 0D 0A");
    const test::CliRun played = device.get();
    EXPECT_EQ(played.status, 0) << played.err;
    ASSERT_EQ(played.lines().size(), 1u) << played.out;
    EXPECT_NE(played.lines()[0].find("  message 1: W<CR><LF>  -> message 1: ST,+00012.34kg<CR><LF>"),
              std::string::npos)
        << played.out;
    const test::CliRun reply = heard.get();
    EXPECT_EQ(reply.status, 0) << reply.err;
    ASSERT_EQ(reply.lines().size(), 1u) << reply.out;
    EXPECT_NE(reply.lines()[0].find("  message 1: ST,+00012.34kg<CR><LF>  MI 100 = 1234; MI 101 = 2 decimal places"),
              std::string::npos)
        << reply.out;
}

TEST_F(QxfbLinkTest, AMissingDeviceARefusedConnectionAndABadRuleFileAreToldInWords) {
    const test::CliRun missing = run("send " + file("send.json") + " --message 1 --serial /dev/ttyQXFB-none");
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.err, "qxfb: cannot open /dev/ttyQXFB-none: No such file or directory\n");
    uint16_t port = 0;
    {
        const std::unique_ptr<link::TcpServer> gone = link::listenTcp(0);
        port = gone->Port();
    }
    const test::CliRun refused =
        run("listen " + file("scan.json") + " --tcp 127.0.0.1:" + std::to_string(port) + " --count 1");
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.err, "qxfb: cannot connect to 127.0.0.1:" + std::to_string(port) + ": Connection refused\n");
    const test::CliRun noLine = run("send " + file("send.json") + " --message 1");
    EXPECT_EQ(noLine.status, 2);
    EXPECT_EQ(noLine.err.substr(0, noLine.err.find('\n')), "qxfb: send needs a line: --serial DEV or --tcp HOST:PORT");
    const test::CliRun badPort = run("send " + file("send.json") + " --message 1 --tcp plant:0");
    EXPECT_EQ(badPort.status, 2);
    EXPECT_NE(badPort.err.find("the port must be a number from 1 to 65535"), std::string::npos) << badPort.err;

    const auto simulate = [&](const std::string& rules) {
        test::writeFile(folder / "rules.json", rules);
        return run("simulate --send " + file("send.json") + " --scan " + file("scan.json") + " --rules " +
                   file("rules.json") + " --serial /dev/ttyQXFB-none");
    };
    const std::string rules = (folder / "rules.json").string();
    EXPECT_EQ(
        simulate("{\"rules\": [\n  {\"when\": 1 \"answer\": 1}\n]}\n").err,
        "qxfb: " + rules + ":2:21: syntax error while parsing object - unexpected string literal; expected '}'\n");
    EXPECT_EQ(simulate("{\"rules\": [\n  {\"when\": 1, \"answr\": 1}\n]}\n").err,
              "qxfb: " + rules + ":2:15: unknown key \"answr\" in a rule (\"when\", \"answer\", \"values\")\n");
    EXPECT_EQ(simulate("{\"rules\": [\n  {\"when\": 6, \"answer\": 1}\n]}\n").err,
              "qxfb: " + rules + ":2:12: \"when\" (a message of the Scan) must be a whole number from 1 to 5, not 6\n");
    EXPECT_EQ(simulate("{\"rules\": [{\"when\": 1, \"answer\": 1,\n  \"values\": {\"XX 3\": 1}}]}").err,
              "qxfb: " + rules + ":2:14: \"XX 3\" is no operand (\"MI 20\": a type and an address)\n");
    EXPECT_EQ(simulate("{\"rules\": [{\"when\": 1, \"answer\": 1,\n  \"values\": {\"MI 3\": {\"field\": 0}}}]}").err,
              "qxfb: " + rules + ":2:32: \"field\" must be a whole number from 1 to 500, not 0\n");
    // A number too large for any type is refused in words, not thrown through.
    const test::CliRun huge = simulate("{\"rules\": [{\"when\": 1E400}]}");
    EXPECT_EQ(huge.status, 1);
    EXPECT_EQ(huge.err, "qxfb: " + rules + ": number overflow parsing '1E400'\n");
}

}  // namespace
}  // namespace qx
