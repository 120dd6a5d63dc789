// The links carry bytes unchanged: every message of a Send set goes out over
// a pseudo-terminal (at 9600 and 115200 baud) and over TCP on 127.0.0.1
// exactly as the model renders it. Serial settings reach the port; reads
// time out, see the other side close, and a client and a server come back;
// errors name the port or address and the cause in words.
#include "link/link.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <random>
#include <thread>

#include "link/link_fixtures.h"
#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_context.h"
#include "support/random_sets.h"
#include "support/scratch_files.h"

namespace qx {
namespace {

using namespace std::chrono_literals;
using test::Wire;

std::string descriptionOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const RuntimeError& e) {
        return toUtf8(e.Description());
    }
    return "no error";
}

// Every message of a random Send set with random operand values, rendered.
std::vector<Wire> renderedMessages(uint32_t seed) {
    clsProtocolSendSrv set;
    std::mt19937 random(seed);
    test::RandomSetShape shape;
    shape.MinMessages = 20;
    shape.MaxMessages = 40;
    test::fillRandomSendSet(set, random, shape);
    model::OperandValues values;
    for (int32_t address = 0; address < 1000; ++address)
        values.Set(3, address, static_cast<int64_t>(random() % 200000) - 100000);
    std::vector<Wire> out;
    for (int32_t n = 1; n <= set.NumberOfMessages(); ++n) {
        if (set.GetMessage(n)->IsEmpty()) continue;
        out.push_back(
            model::renderSendMessage(set, n, values, model::ModelClock{}, model::ChecksumTable::Default()).Bytes);
    }
    return out;
}

class SerialLinkTest : public ::testing::TestWithParam<int32_t> {
protected:
    ScopedHostContext host;
};

TEST_P(SerialLinkTest, EveryMessageOfASendSetGoesOutByteExact) {
    test::PtyPair pty;
    ASSERT_TRUE(pty.ok());
    link::SerialSettings settings;
    settings.Device = pty.path();
    settings.Baud = GetParam();
    const std::unique_ptr<link::Link> line = link::openSerial(settings);
    termios now{};
    ASSERT_EQ(::tcgetattr(pty.device(), &now), 0);
    EXPECT_EQ(::cfgetospeed(&now), GetParam() == 9600 ? B9600 : B115200);
    const std::vector<Wire> messages = renderedMessages(static_cast<uint32_t>(GetParam()));
    ASSERT_GE(messages.size(), 20u);
    for (const Wire& message : messages) {
        line->write(message);
        EXPECT_EQ(pty.read(message.size()), message);
    }
    // And the other way.
    for (const Wire& message : messages) {
        ASSERT_TRUE(pty.write(message));
        EXPECT_EQ(test::readExactly(*line, message.size()), message);
    }
}

INSTANTIATE_TEST_SUITE_P(Bauds, SerialLinkTest, ::testing::Values(9600, 115200));

TEST(SerialLink, TheControllersSettingsReachThePort) {
    test::PtyPair pty;
    ASSERT_TRUE(pty.ok());
    link::SerialSettings settings{pty.path(), 19200, 8, link::Parity::Even, 2, link::FlowControl::Hardware};
    const std::unique_ptr<link::Link> line = link::openSerial(settings);
    termios now{};
    ASSERT_EQ(::tcgetattr(pty.device(), &now), 0);
    EXPECT_EQ(::cfgetospeed(&now), B19200);
    EXPECT_EQ(now.c_cflag & CSIZE, static_cast<tcflag_t>(CS8));
    // A pseudo-terminal keeps no parity (it carries no bits); the rest it keeps.
    EXPECT_TRUE(now.c_cflag & CSTOPB);
    EXPECT_TRUE(now.c_cflag & CRTSCTS);
    EXPECT_EQ(link::describe(settings), "19200 8E2, hardware flow control (RTS/CTS)");
    line->close();
    settings.ParityBit = link::Parity::Odd;
    settings.Flow = link::FlowControl::Software;
    const std::unique_ptr<link::Link> again = link::openSerial(settings);
    ASSERT_EQ(::tcgetattr(pty.device(), &now), 0);
    EXPECT_TRUE(now.c_iflag & IXON);
    EXPECT_FALSE(now.c_cflag & CRTSCTS);
    again->close();
    // A pseudo-terminal carries 8 data bits only; a port that refuses 7 says so.
    settings.DataBits = 7;
    const std::string seven = descriptionOf([&] { link::openSerial(settings); });
    if (seven != "no error") {
        EXPECT_EQ(seven.rfind("cannot set " + pty.path() + " to 7 data bits: ", 0), 0u) << seven;
    }
}

TEST(SerialLink, AReadWithNothingToReadTimesOutAndAClosedOtherSideIsClosed) {
    test::PtyPair pty;
    ASSERT_TRUE(pty.ok());
    const std::unique_ptr<link::Link> line = link::openSerial({pty.path()});
    std::vector<uint8_t> buffer(16);
    EXPECT_EQ(line->read(buffer, 20ms).Status, link::ReadStatus::Timeout);
    ASSERT_TRUE(pty.write({'h', 'i'}));
    const link::ReadResult got = line->read(buffer, 2000ms);
    EXPECT_EQ(got.Status, link::ReadStatus::Data);
    EXPECT_EQ(Wire(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(got.Count)), (Wire{'h', 'i'}));
    pty.closeController();
    EXPECT_EQ(line->read(buffer, 2000ms).Status, link::ReadStatus::Closed);
    line->close();
    EXPECT_EQ(line->read(buffer, 20ms).Status, link::ReadStatus::Closed);
}

TEST(SerialLink, AMissingDeviceOrARateThePortRefusesIsNamedWithItsCause) {
    EXPECT_EQ(descriptionOf([] { link::openSerial({"/dev/ttyQXFB-none"}); }),
              "cannot open /dev/ttyQXFB-none: No such file or directory");
    try {
        link::openSerial({"/dev/ttyQXFB-none"});
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.Number(), err::FileNotFound);
    }
    test::PtyPair pty;
    ASSERT_TRUE(pty.ok());
    EXPECT_EQ(descriptionOf([&] {
                  link::openSerial({pty.path(), 12345});
              }),
              "cannot set " + pty.path() + " to 12345 baud: Invalid argument");
}

// A server on a port the system chose, and a client of it.
struct TcpPair {
    std::unique_ptr<link::TcpServer> server = link::listenTcp(0);
    std::unique_ptr<link::Link> client = link::connectTcp("127.0.0.1", server->Port());
};

TEST(SerialLink, ThePortsListedAreTheTtysWithADeviceBehindThemUsbFirst) {
    test::ScratchFolder scratch{"link_serial_ports"};
    const std::filesystem::path tty = scratch.path() / "tty";
    for (const char* name : {"ttyS10", "ttyS2", "ttyUSB0", "ttyACM1", "tty0", "console", "ttyS0"}) {
        std::filesystem::create_directories(tty / name);
        // Virtual terminals and consoles have no device behind them.
        if (std::string(name) != "tty0" && std::string(name) != "console")
            std::filesystem::create_directories(tty / name / "device");
    }
    EXPECT_EQ(link::serialPorts(tty.string()),
              (std::vector<std::string>{"/dev/ttyACM1", "/dev/ttyUSB0", "/dev/ttyS0", "/dev/ttyS2", "/dev/ttyS10"}));
    EXPECT_TRUE(link::serialPorts((scratch.path() / "missing").string()).empty());
}

TEST(TcpLink, EveryMessageOfASendSetGoesOutByteExactBothWays) {
    ScopedHostContext host;
    TcpPair pair;
    ASSERT_TRUE(pair.server->waitForPeer(5000ms));
    const std::vector<Wire> messages = renderedMessages(3);
    for (const Wire& message : messages) {
        pair.client->write(message);
        EXPECT_EQ(test::readExactly(*pair.server, message.size()), message);
        pair.server->write(message);
        EXPECT_EQ(test::readExactly(*pair.client, message.size()), message);
    }
}

TEST(TcpLink, TheServerListensOnTheLoopbackUnlessToldOtherwise) {
    const std::unique_ptr<link::TcpServer> server = link::listenTcp(0);
    EXPECT_EQ(server->Name(), "127.0.0.1:" + std::to_string(server->Port()));
    EXPECT_FALSE(server->HasPeer());
    std::vector<uint8_t> buffer(8);
    EXPECT_EQ(server->read(buffer, 20ms).Status, link::ReadStatus::Timeout);
    EXPECT_EQ(descriptionOf([&] { server->write(Wire{1}); }),
              "cannot write to " + server->Name() + ": no peer is connected");
    EXPECT_EQ(descriptionOf([] { link::listenTcp(0, "plant"); }),
              "cannot listen on plant:0: \"plant\" is no IP address");
    EXPECT_EQ(descriptionOf([&] { link::listenTcp(server->Port()); }),
              "cannot listen on " + server->Name() + ": Address already in use");
}

TEST(TcpLink, APeerThatLeavesIsClosedOnceAndTheNextPeerIsServed) {
    TcpPair pair;
    std::vector<uint8_t> buffer(8);
    pair.client->write(Wire{'a'});
    EXPECT_EQ(test::readExactly(*pair.server, 1), Wire{'a'});
    pair.client->close();
    EXPECT_EQ(pair.server->read(buffer, 2000ms).Status, link::ReadStatus::Closed);
    EXPECT_FALSE(pair.server->HasPeer());
    // The client comes back: a new connection to the same address.
    pair.client->reopen();
    pair.client->write(Wire{'b'});
    EXPECT_EQ(test::readExactly(*pair.server, 1), Wire{'b'});
    // The server drops its peer; the client sees it closed and connects again.
    pair.server->reopen();
    EXPECT_EQ(pair.client->read(buffer, 2000ms).Status, link::ReadStatus::Closed);
    pair.client->reopen();
    pair.client->write(Wire{'c'});
    EXPECT_EQ(test::readExactly(*pair.server, 1), Wire{'c'});
}

TEST(TcpLink, ARefusedConnectionAndABadAddressAreNamedWithTheirCause) {
    uint16_t port = 0;
    {
        const std::unique_ptr<link::TcpServer> gone = link::listenTcp(0);
        port = gone->Port();
    }
    EXPECT_EQ(descriptionOf([&] { link::connectTcp("127.0.0.1", port); }),
              "cannot connect to 127.0.0.1:" + std::to_string(port) + ": Connection refused");
    std::string host, error;
    uint16_t parsed = 0;
    EXPECT_TRUE(link::parseHostPort("[::1]:502", host, parsed, error));
    EXPECT_EQ(host, "::1");
    EXPECT_EQ(parsed, 502);
    EXPECT_FALSE(link::parseHostPort("plant:70000", host, parsed, error));
    EXPECT_EQ(error, "\"plant:70000\": the port must be a number from 1 to 65535");
    EXPECT_FALSE(link::parseHostPort("plant", host, parsed, error));
    EXPECT_EQ(error, "\"plant\" is not HOST:PORT");
}

}  // namespace
}  // namespace qx
