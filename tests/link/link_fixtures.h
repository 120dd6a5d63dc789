// What the link tests share: pseudo-terminal pairs (and two of them joined), and a reader that takes
// exactly a given number of bytes from a link or a descriptor; and the twin
// sets, whose frames carry numbers to check.
#pragma once
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "link/link.h"
#include "support/twin_sets.h"

namespace qx::test {

using Wire = std::vector<uint8_t>;

inline Wire joined(std::initializer_list<Wire> parts) {
    Wire out;
    for (const Wire& part : parts) out.insert(out.end(), part.begin(), part.end());
    return out;
}

// A pseudo-terminal pair in raw mode: the test holds the controller side,
// the link opens the other by its path. The test keeps that side open too,
// so that the pair lives while the link closes and opens it again.
class PtyPair {
public:
    PtyPair() {
        char name[256] = {};
        if (::openpty(&controller_, &device_, name, nullptr, nullptr) != 0) return;
        path_ = name;
        for (int fd : {controller_, device_}) {
            termios raw{};
            ::tcgetattr(fd, &raw);
            ::cfmakeraw(&raw);
            ::tcsetattr(fd, TCSANOW, &raw);
        }
    }
    ~PtyPair() {
        closeController();
        if (device_ >= 0) ::close(device_);
    }
    PtyPair(const PtyPair&) = delete;
    PtyPair& operator=(const PtyPair&) = delete;

    bool ok() const { return controller_ >= 0 && !path_.empty(); }
    const std::string& path() const { return path_; }
    int controller() const { return controller_; }
    int device() const { return device_; }
    void closeController() {
        if (controller_ >= 0) ::close(controller_);
        controller_ = -1;
    }

    // Writes all bytes to the controller side.
    bool write(const Wire& bytes) const {
        for (size_t at = 0; at < bytes.size();) {
            const ssize_t n = ::write(controller_, bytes.data() + at, bytes.size() - at);
            if (n <= 0) return false;
            at += static_cast<size_t>(n);
        }
        return true;
    }
    // Reads count bytes from the controller side, waiting at most a few seconds.
    Wire read(size_t count) const {
        Wire out;
        const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (out.size() < count && std::chrono::steady_clock::now() < until) {
            pollfd ready{controller_, POLLIN, 0};
            if (::poll(&ready, 1, 100) <= 0) continue;
            uint8_t buffer[4096];
            const ssize_t n = ::read(controller_, buffer, std::min(sizeof buffer, count - out.size()));
            if (n <= 0) break;
            out.insert(out.end(), buffer, buffer + n);
        }
        return out;
    }

private:
    int controller_ = -1, device_ = -1;
    std::string path_;
};

// Reads exactly count bytes from a link, waiting at most a few seconds in all.
inline Wire readExactly(link::Link& line, size_t count) {
    Wire out;
    std::vector<uint8_t> buffer(4096);
    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (out.size() < count && std::chrono::steady_clock::now() < until) {
        const link::ReadResult got = line.read(
            std::span(buffer).subspan(0, std::min(buffer.size(), count - out.size())), std::chrono::milliseconds(100));
        if (got.Status == link::ReadStatus::Closed) break;
        out.insert(out.end(), buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(got.Count));
    }
    return out;
}

// Two pseudo-terminal pairs joined controller to controller, as socat joins
// two: what one link writes on the first device the other reads on the second.
class PtyBridge {
public:
    PtyBridge() {
        thread_ = std::thread([this] {
            while (!stop_) {
                pollfd ready[2] = {{a.controller(), POLLIN, 0}, {b.controller(), POLLIN, 0}};
                if (::poll(ready, 2, 20) <= 0) continue;
                for (int i = 0; i < 2; ++i) {
                    if (!(ready[i].revents & POLLIN)) continue;
                    uint8_t buffer[4096];
                    const ssize_t n = ::read(ready[i].fd, buffer, sizeof buffer);
                    if (n > 0) (i == 0 ? b : a).write(Wire(buffer, buffer + n));
                }
            }
        });
    }
    ~PtyBridge() {
        stop_ = true;
        thread_.join();
    }
    test::PtyPair a, b;

private:
    std::atomic<bool> stop_ = false;
    std::thread thread_;
};

}  // namespace qx::test
