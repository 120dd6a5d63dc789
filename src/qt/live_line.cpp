#include "qt/live_line.h"

#include <atomic>
#include <deque>
#include <mutex>

#include "platform/basics/runtime_error.h"

namespace qx {

namespace {

// How long a read waits before the thread looks for bytes to write and for
// the order to stop: the delay of a write, and of closing, at most.
constexpr link::Milliseconds Poll{20};

QByteArray bytesOf(const uint8_t* data, size_t size) {
    return QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
}

}  // namespace

// What the line's thread and its owner share. The thread may outlive the
// owner (a connection under way is not waited for), so it signals only
// through owner, which Close clears under the lock.
struct LiveLine::Shared {
    std::mutex mutex;
    LiveLine* owner = nullptr;
    std::deque<std::vector<uint8_t>> outbox;
    std::atomic<bool> stop = false;
    std::atomic<bool> opening = true;

    template <class Signal>
    void tell(Signal&& signal) {
        const std::lock_guard lock(mutex);
        if (owner) signal(*owner);
    }
};

LiveLine::LiveLine(QObject* parent) : QObject(parent) {}

LiveLine::~LiveLine() { Close(); }

bool LiveLine::Running() const { return shared_ && !shared_->stop; }

void LiveLine::Open(const LineChoice& choice) {
    Close();
    shared_ = std::make_shared<Shared>();
    shared_->owner = this;
    thread_ = std::thread(&LiveLine::run, shared_, choice);
}

void LiveLine::Write(std::vector<uint8_t> bytes) {
    if (!shared_) return;
    const std::lock_guard lock(shared_->mutex);
    shared_->outbox.push_back(std::move(bytes));
}

void LiveLine::Close() {
    if (!shared_) return;
    {
        const std::lock_guard lock(shared_->mutex);
        shared_->owner = nullptr;
        shared_->outbox.clear();
    }
    shared_->stop = true;
    // A line in its read loop stops within one poll; a connection under way
    // may take its whole time limit, which the window does not wait for.
    if (shared_->opening)
        thread_.detach();
    else
        thread_.join();
    shared_.reset();
}

void LiveLine::run(std::shared_ptr<Shared> shared, LineChoice choice) {
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
        shared->opening = false;
        const QString name = QString::fromStdString(line->Name());
        shared->tell([&](LiveLine& owner) { emit owner.opened(name); });
        std::vector<uint8_t> buffer(4096);
        while (!shared->stop) {
            std::deque<std::vector<uint8_t>> out;
            {
                const std::lock_guard lock(shared->mutex);
                out.swap(shared->outbox);
            }
            for (const std::vector<uint8_t>& bytes : out) {
                line->write(bytes);
                shared->tell([&](LiveLine& owner) { emit owner.written(bytesOf(bytes.data(), bytes.size())); });
            }
            const link::ReadResult got = line->read(buffer, Poll);
            if (got.Status == link::ReadStatus::Data) {
                shared->tell([&](LiveLine& owner) { emit owner.received(bytesOf(buffer.data(), got.Count)); });
            } else if (got.Status == link::ReadStatus::Closed && choice.What != LineChoice::TcpServer) {
                // A server waits for its next peer by itself; a device that hung up is told.
                shared->stop = true;
                shared->tell([&](LiveLine& owner) { emit owner.failed(tr("%1 was closed by the other side.").arg(name)); });
            }
        }
        line->close();
    } catch (const RuntimeError& e) {
        shared->opening = false;
        shared->stop = true;
        const QString why = QString::fromStdWString(e.Description());
        shared->tell([&](LiveLine& owner) { emit owner.failed(why); });
    }
}

}  // namespace qx
