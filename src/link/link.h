// A line to a device: a serial port, a TCP client or a TCP server with one
// peer at a time, each behind the same small interface. Writes send every
// byte or fail; reads wait at most the time given and say whether bytes came,
// the time ran out or the other side closed. Every failure is a RuntimeError
// whose description names the port or address and the cause in words
// ("cannot open /dev/ttyUSB0: No such file or directory"). The I/O library
// stays inside link.cpp: this header is standard C++ only.
#pragma once
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace qx::link {

using Milliseconds = std::chrono::milliseconds;

enum class ReadStatus {
    Data,     // Count bytes are in the buffer
    Timeout,  // nothing came in the time given
    Closed,   // the other side closed the line (or, for a server, no peer is left)
};

struct ReadResult {
    ReadStatus Status = ReadStatus::Timeout;
    size_t Count = 0;
};

// One line. Not for use by two threads at once; two links may live on two
// threads.
class Link {
public:
    virtual ~Link() = default;
    Link() = default;
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

    // "/dev/ttyUSB0", "127.0.0.1:5020", as errors name it.
    virtual std::string Name() const = 0;
    // Sends all the bytes, waiting at most WriteTimeout for the line to take them.
    virtual void write(std::span<const uint8_t> bytes) = 0;
    // Waits at most timeout for bytes; never more than buffer.size() of them.
    virtual ReadResult read(std::span<uint8_t> buffer, Milliseconds timeout) = 0;
    // Opens the line again after it closed: the device once more, a new
    // connection to the same address, or (a server) waits for the next peer.
    // A failure to reopen is a RuntimeError as on opening.
    virtual void reopen() = 0;
    // Closes the line; reads then give Closed. Closing twice does nothing.
    virtual void close() = 0;

    Milliseconds WriteTimeout{5000};
};

enum class Parity { None, Odd, Even };
enum class FlowControl { None, Hardware, Software };

// A controller's COM settings.
struct SerialSettings {
    std::string Device;  // "/dev/ttyUSB0"
    int32_t Baud = 9600;
    int32_t DataBits = 8;  // 7 or 8
    Parity ParityBit = Parity::None;
    int32_t StopBits = 1;  // 1 or 2
    FlowControl Flow = FlowControl::None;
};

// "none", "odd", "even"; "none", "hardware", "software"; false for another word.
bool parityFromName(const std::string& name, Parity& parity);
bool flowFromName(const std::string& name, FlowControl& flow);
const char* nameOf(Parity parity);
const char* nameOf(FlowControl flow);
// "9600 8N1, no flow control"
std::string describe(const SerialSettings& settings);

// The serial ports the system knows, as device paths, sorted: on Linux the
// entries of the tty class (ttyClass) that a driver stands behind (a USB
// adapter, a built-in UART), USB and ACM devices first. Pseudo-terminals
// and consoles are not listed; a person may still name any device.
std::vector<std::string> serialPorts(const std::string& ttyClass = "/sys/class/tty");

// "host:port" with a port of 1 to 65535 ("[::1]:502" for an IPv6 address);
// false with the reason in error.
bool parseHostPort(const std::string& text, std::string& host, uint16_t& port, std::string& error);

// Opens the device with the settings; a setting the device refuses fails
// the open with the setting named.
std::unique_ptr<Link> openSerial(const SerialSettings& settings);

// Connects to host:port, waiting at most timeout.
std::unique_ptr<Link> connectTcp(const std::string& host, uint16_t port, Milliseconds timeout = Milliseconds(5000));

// A server: listens on address:port (port 0: one the system chooses) and
// serves one peer at a time. A read without a peer first waits for one, in
// the same time; a read after the peer left gives Closed once, and the next
// read waits for the next peer. Writing without a peer fails.
class TcpServer : public Link {
public:
    // The port it listens on, also when the system chose it.
    virtual uint16_t Port() const = 0;
    virtual bool HasPeer() const = 0;
    // Waits at most timeout for a peer; true when one is connected.
    virtual bool waitForPeer(Milliseconds timeout) = 0;
};

// Listens on 127.0.0.1 unless another address is asked for.
inline constexpr const char* LoopbackAddress = "127.0.0.1";
std::unique_ptr<TcpServer> listenTcp(uint16_t port, const std::string& address = LoopbackAddress);

}  // namespace qx::link
