#include "qt/live_line.h"

#include <chrono>

#include "platform/basics/runtime_error.h"

namespace qx {

namespace {

// How long a read waits before the thread looks for bytes to write and for
// the order to stop: the delay of a write, and of closing, at most.
constexpr link::Milliseconds Poll{20};

}  // namespace

LiveLine::LiveLine(QObject* parent) : QObject(parent) {}

LiveLine::~LiveLine() { Close(); }

void LiveLine::Open(const LineChoice& choice) {
    Close();
    stop_ = false;
    thread_ = std::thread([this, choice] { run(choice); });
}

void LiveLine::Write(std::vector<uint8_t> bytes) {
    const std::lock_guard lock(mutex_);
    outbox_.push_back(std::move(bytes));
}

void LiveLine::Close() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
    const std::lock_guard lock(mutex_);
    outbox_.clear();
}

void LiveLine::run(LineChoice choice) {
    try {
        std::unique_ptr<link::Link> line;
        switch (choice.What) {
            case LineChoice::Serial:
                line = link::openSerial(choice.Port);
                break;
            case LineChoice::TcpClient:
                line = link::connectTcp(choice.Host, choice.TcpPort);
                break;
            case LineChoice::TcpServer:
                line = link::listenTcp(choice.TcpPort, choice.Host);
                break;
        }
        emit opened(QString::fromStdString(line->Name()));
        std::vector<uint8_t> buffer(4096);
        while (!stop_) {
            std::deque<std::vector<uint8_t>> out;
            {
                const std::lock_guard lock(mutex_);
                out.swap(outbox_);
            }
            for (const std::vector<uint8_t>& bytes : out) {
                line->write(bytes);
                emit written(QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())));
            }
            const link::ReadResult got = line->read(buffer, Poll);
            if (got.Status == link::ReadStatus::Data) {
                emit received(QByteArray(reinterpret_cast<const char*>(buffer.data()), static_cast<qsizetype>(got.Count)));
            } else if (got.Status == link::ReadStatus::Closed && choice.What != LineChoice::TcpServer) {
                // A server waits for its next peer by itself; a device that hung up is told.
                emit failed(tr("%1 was closed by the other side.").arg(QString::fromStdString(line->Name())));
                stop_ = true;
            }
        }
        line->close();
    } catch (const RuntimeError& e) {
        emit failed(QString::fromStdWString(e.Description()));
        stop_ = true;
    }
}

}  // namespace qx
