// A line to a device for the view layer: opened, read and written on a
// thread of its own, so that a slow connection or a busy line never holds
// the window. What happens on the line comes back as signals, delivered on
// the thread the object lives on.
#pragma once
#include <QByteArray>
#include <QObject>
#include <QString>
#include <atomic>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "link/link.h"

namespace qx {

struct LineChoice {
    enum Kind { Serial, TcpClient, TcpServer };
    Kind What = Serial;
    link::SerialSettings Port;
    std::string Host = link::LoopbackAddress;  // the device, or the address a server listens on
    uint16_t TcpPort = 0;
};

class LiveLine : public QObject {
    Q_OBJECT

public:
    explicit LiveLine(QObject* parent = nullptr);
    // Closes the line and waits for its thread.
    ~LiveLine() override;

    // Opens the line on its thread and returns at once: opened() or
    // failed() follows. A line that is open is closed first.
    void Open(const LineChoice& choice);
    // Queues the bytes; written() follows when the line took them.
    void Write(std::vector<uint8_t> bytes);
    void Close();
    bool Running() const { return thread_.joinable() && !stop_; }

signals:
    void opened(const QString& name);
    void received(const QByteArray& bytes);
    void written(const QByteArray& bytes);
    // The line failed or was closed by the other side; it is no longer open.
    void failed(const QString& why);

private:
    void run(LineChoice choice);

    std::thread thread_;
    std::atomic<bool> stop_ = false;
    std::mutex mutex_;
    std::deque<std::vector<uint8_t>> outbox_;
};

}  // namespace qx
