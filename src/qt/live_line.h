// A line to a device for the view layer: opened, read and written on a
// thread of its own, so that a slow connection or a busy line never holds
// the window. What happens on the line comes back as signals, delivered on
// the thread the object lives on.
#pragma once
#include <QByteArray>
#include <QObject>
#include <QString>
#include <cstdint>
#include <memory>
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
    ~LiveLine() override;

    // Opens the line on its thread and returns at once: opened() or
    // failed() follows. A line that is open is closed first.
    void Open(const LineChoice& choice);
    // Queues the bytes; written() follows when the line took them.
    void Write(std::vector<uint8_t> bytes);
    // Closes the line; no signal of it comes after. A connection still
    // under way is left to give up on its own thread: Close never waits
    // for it.
    void Close();
    bool Running() const;

signals:
    void opened(const QString& name);
    void received(const QByteArray& bytes);
    void written(const QByteArray& bytes);
    // The line failed or was closed by the other side; it is no longer open.
    void failed(const QString& why);

private:
    struct Shared;
    static void run(std::shared_ptr<Shared> shared, LineChoice choice);

    std::shared_ptr<Shared> shared_;
    std::thread thread_;
};

}  // namespace qx
