// The links on standalone Asio. Each link owns an io_context and runs it on
// the calling thread only while one of its calls waits, so that a read or a
// write with a time limit looks synchronous to the caller and no thread of
// the link's own is needed. This is the only file that parses Asio.
#include "link/link.h"

#include <asio/connect.hpp>
#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/serial_port.hpp>
#include <asio/write.hpp>
#include <cerrno>

#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"

namespace qx::link {

namespace {

using Clock = std::chrono::steady_clock;
using asio::ip::tcp;

[[noreturn]] void fail(int32_t number, const std::string& text) {
    throw RuntimeError(number, L"QxFBCom2.link", fromUtf8(text));
}

// The error number that fits a system error best.
int32_t numberOf(const asio::error_code& ec) {
    if (ec == asio::error::no_such_device || ec.value() == ENOENT) return err::FileNotFound;
    if (ec == asio::error::access_denied || ec.value() == EPERM) return err::PermissionDenied;
    return err::DeviceIOError;
}

// Runs the context until done or until the time runs out; then cancels the
// operation and runs until its handler has run (it may still bring what it
// waited for). False when the time ran out.
template <class Cancel>
bool runFor(asio::io_context& io, const bool& done, Milliseconds timeout, Cancel cancel) {
    io.restart();
    const Clock::time_point deadline = Clock::now() + timeout;
    while (!done && io.run_one_until(deadline) != 0) {
    }
    if (done) return true;
    cancel();
    io.restart();
    while (!done && io.run_one() != 0) {
    }
    return false;
}

bool closedBy(const asio::error_code& ec) {
    // A pseudo-terminal whose other side is gone reads as an I/O error.
    return ec == asio::error::eof || ec == asio::error::connection_reset || ec == asio::error::connection_aborted ||
           ec == asio::error::broken_pipe || ec == asio::error::not_connected || ec == asio::error::bad_descriptor ||
           ec.value() == EIO;
}

template <class Stream>
ReadResult readSome(asio::io_context& io, Stream& stream, std::span<uint8_t> buffer, Milliseconds timeout,
                    const std::string& name) {
    bool done = false;
    asio::error_code ec;
    size_t count = 0;
    stream.async_read_some(asio::buffer(buffer.data(), buffer.size()), [&](const asio::error_code& e, size_t n) {
        ec = e;
        count = n;
        done = true;
    });
    runFor(io, done, timeout, [&] {
        asio::error_code ignored;
        stream.cancel(ignored);
    });
    if (count > 0) return {ReadStatus::Data, count};
    if (!ec || ec == asio::error::operation_aborted) return {ReadStatus::Timeout, 0};
    if (closedBy(ec)) return {ReadStatus::Closed, 0};
    fail(err::DeviceIOError, "cannot read from " + name + ": " + ec.message());
}

template <class Stream>
void writeAll(asio::io_context& io, Stream& stream, std::span<const uint8_t> bytes, Milliseconds timeout,
              const std::string& name) {
    bool done = false;
    asio::error_code ec;
    asio::async_write(stream, asio::buffer(bytes.data(), bytes.size()), [&](const asio::error_code& e, size_t) {
        ec = e;
        done = true;
    });
    const bool inTime = runFor(io, done, timeout, [&] {
        asio::error_code ignored;
        stream.cancel(ignored);
    });
    if (!inTime && ec == asio::error::operation_aborted)
        fail(err::DeviceIOError,
             "cannot write to " + name + ": the line took nothing for " + std::to_string(timeout.count()) + " ms");
    if (ec) fail(err::DeviceIOError, "cannot write to " + name + ": " + ec.message());
}

class SerialLink final : public Link {
public:
    explicit SerialLink(const SerialSettings& settings) : settings_(settings) { open(); }

    std::string Name() const override { return settings_.Device; }
    void write(std::span<const uint8_t> bytes) override {
        if (!port_.is_open()) fail(err::DeviceIOError, "cannot write to " + Name() + ": the port is closed");
        writeAll(io_, port_, bytes, WriteTimeout, Name());
    }
    ReadResult read(std::span<uint8_t> buffer, Milliseconds timeout) override {
        if (!port_.is_open()) return {ReadStatus::Closed, 0};
        return readSome(io_, port_, buffer, timeout, Name());
    }
    void reopen() override {
        close();
        open();
    }
    void close() override {
        asio::error_code ignored;
        port_.close(ignored);
    }

private:
    void open() {
        const std::string& device = settings_.Device;
        asio::error_code ec;
        port_.open(device, ec);
        if (ec) fail(numberOf(ec), "cannot open " + device + ": " + ec.message());
        const auto set = [&](const auto& option, const std::string& what) {
            port_.set_option(option, ec);
            if (!ec) return;
            close();
            fail(err::DeviceIOError, "cannot set " + device + " to " + what + ": " + ec.message());
        };
        set(asio::serial_port_base::baud_rate(static_cast<unsigned>(settings_.Baud)),
            std::to_string(settings_.Baud) + " baud");
        if (settings_.DataBits != 7 && settings_.DataBits != 8)
            fail(err::InvalidProcedureCall, "cannot set " + device + " to " + std::to_string(settings_.DataBits) +
                                                " data bits: 7 or 8 are possible");
        set(asio::serial_port_base::character_size(static_cast<unsigned>(settings_.DataBits)),
            std::to_string(settings_.DataBits) + " data bits");
        using P = asio::serial_port_base::parity;
        set(P(settings_.ParityBit == Parity::Odd    ? P::odd
              : settings_.ParityBit == Parity::Even ? P::even
                                                    : P::none),
            std::string(nameOf(settings_.ParityBit)) + " parity");
        using S = asio::serial_port_base::stop_bits;
        set(S(settings_.StopBits == 2 ? S::two : S::one), std::to_string(settings_.StopBits) + " stop bits");
        using F = asio::serial_port_base::flow_control;
        set(F(settings_.Flow == FlowControl::Hardware   ? F::hardware
              : settings_.Flow == FlowControl::Software ? F::software
                                                        : F::none),
            std::string(nameOf(settings_.Flow)) + " flow control");
    }

    SerialSettings settings_;
    asio::io_context io_;
    asio::serial_port port_{io_};
};

std::string endpointName(const std::string& host, uint16_t port) {
    return (host.find(':') != std::string::npos ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

class TcpClientLink final : public Link {
public:
    TcpClientLink(std::string host, uint16_t port, Milliseconds timeout)
        : host_(std::move(host)), port_(port), timeout_(timeout) {
        connect();
    }

    std::string Name() const override { return endpointName(host_, port_); }
    void write(std::span<const uint8_t> bytes) override {
        if (!socket_.is_open()) fail(err::DeviceIOError, "cannot write to " + Name() + ": the connection is closed");
        writeAll(io_, socket_, bytes, WriteTimeout, Name());
    }
    ReadResult read(std::span<uint8_t> buffer, Milliseconds timeout) override {
        if (!socket_.is_open()) return {ReadStatus::Closed, 0};
        return readSome(io_, socket_, buffer, timeout, Name());
    }
    void reopen() override {
        close();
        connect();
    }
    void close() override {
        asio::error_code ignored;
        socket_.shutdown(tcp::socket::shutdown_both, ignored);
        socket_.close(ignored);
    }

private:
    void connect() {
        asio::error_code ec;
        tcp::resolver resolver(io_);
        const tcp::resolver::results_type endpoints = resolver.resolve(host_, std::to_string(port_), ec);
        if (ec) fail(err::DeviceIOError, "cannot connect to " + Name() + ": " + ec.message());
        bool done = false;
        asio::async_connect(socket_, endpoints, [&](const asio::error_code& e, const tcp::endpoint&) {
            ec = e;
            done = true;
        });
        const bool inTime = runFor(io_, done, timeout_, [&] {
            asio::error_code ignored;
            socket_.close(ignored);
        });
        if (!inTime && ec == asio::error::operation_aborted)
            fail(err::DeviceIOError,
                 "cannot connect to " + Name() + ": no answer in " + std::to_string(timeout_.count()) + " ms");
        if (ec) {
            asio::error_code ignored;
            socket_.close(ignored);
            fail(err::DeviceIOError, "cannot connect to " + Name() + ": " + ec.message());
        }
        socket_.set_option(tcp::no_delay(true), ec);
    }

    std::string host_;
    uint16_t port_;
    Milliseconds timeout_;
    asio::io_context io_;
    tcp::socket socket_{io_};
};

class TcpServerLink final : public TcpServer {
public:
    TcpServerLink(uint16_t port, const std::string& address) : address_(address), port_(port) {
        asio::error_code ec;
        const asio::ip::address ip = asio::ip::make_address(address, ec);
        if (ec)
            fail(err::InvalidProcedureCall, "cannot listen on " + Name() + ": \"" + address + "\" is no IP address");
        const tcp::endpoint endpoint(ip, port);
        const auto check = [&] {
            if (!ec) return;
            const std::string cause = ec.message();
            acceptor_.close(ec);
            fail(numberOf(ec), "cannot listen on " + Name() + ": " + cause);
        };
        acceptor_.open(endpoint.protocol(), ec);
        check();
        acceptor_.set_option(tcp::acceptor::reuse_address(true), ec);
        check();
        acceptor_.bind(endpoint, ec);
        check();
        acceptor_.listen(asio::socket_base::max_listen_connections, ec);
        check();
        port_ = acceptor_.local_endpoint(ec).port();
    }

    std::string Name() const override { return endpointName(address_, port_); }
    uint16_t Port() const override { return port_; }
    bool HasPeer() const override { return peer_.is_open(); }

    bool waitForPeer(Milliseconds timeout) override {
        if (peer_.is_open()) return true;
        if (!acceptor_.is_open()) return false;
        bool done = false;
        asio::error_code ec;
        acceptor_.async_accept(peer_, [&](const asio::error_code& e) {
            ec = e;
            done = true;
        });
        runFor(io_, done, timeout, [&] {
            asio::error_code ignored;
            acceptor_.cancel(ignored);
        });
        if (ec == asio::error::operation_aborted) return false;
        if (ec) fail(err::DeviceIOError, "cannot accept a peer on " + Name() + ": " + ec.message());
        peer_.set_option(tcp::no_delay(true), ec);
        return true;
    }

    void write(std::span<const uint8_t> bytes) override {
        if (!peer_.is_open()) fail(err::DeviceIOError, "cannot write to " + Name() + ": no peer is connected");
        try {
            writeAll(io_, peer_, bytes, WriteTimeout, Name());
        } catch (const RuntimeError&) {
            dropPeer();
            throw;
        }
    }

    ReadResult read(std::span<uint8_t> buffer, Milliseconds timeout) override {
        if (!acceptor_.is_open()) return {ReadStatus::Closed, 0};
        const Clock::time_point deadline = Clock::now() + timeout;
        if (!waitForPeer(timeout)) return {ReadStatus::Timeout, 0};
        const auto left = std::chrono::duration_cast<Milliseconds>(deadline - Clock::now());
        const ReadResult got = readSome(io_, peer_, buffer, std::max(left, Milliseconds(0)), Name());
        if (got.Status == ReadStatus::Closed) dropPeer();
        return got;
    }

    void reopen() override { dropPeer(); }
    void close() override {
        dropPeer();
        asio::error_code ignored;
        acceptor_.close(ignored);
    }

private:
    void dropPeer() {
        asio::error_code ignored;
        peer_.shutdown(tcp::socket::shutdown_both, ignored);
        peer_.close(ignored);
    }

    std::string address_;
    uint16_t port_;
    asio::io_context io_;
    tcp::acceptor acceptor_{io_};
    tcp::socket peer_{io_};
};

}  // namespace

std::unique_ptr<Link> openSerial(const SerialSettings& settings) { return std::make_unique<SerialLink>(settings); }

std::unique_ptr<Link> connectTcp(const std::string& host, uint16_t port, Milliseconds timeout) {
    return std::make_unique<TcpClientLink>(host, port, timeout);
}

std::unique_ptr<TcpServer> listenTcp(uint16_t port, const std::string& address) {
    return std::make_unique<TcpServerLink>(port, address);
}

}  // namespace qx::link
