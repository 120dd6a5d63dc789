// The live line of a Send or Scan dialog: a window beside the dialog that
// puts the current Send message on a serial port or a TCP connection (with
// sample values, every operand 0) and shows the traffic, sent and received
// frames in hexadecimal and as text, each byte coloured by what made it and
// each received frame decoded against the Scan. What arrives is kept as a
// capture that a file can take and that qxfb decode reads; a capture file
// can be loaded and decoded here as well. The line runs on a thread of its
// own: the window never waits for it.
#pragma once
#include <QByteArray>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QTextEdit>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>
#include <span>

#include "qt/live_line.h"
#include "runtime_model/send_renderer.h"

namespace qx {

class Form;
class clsProtocolSendSrv;
class clsProtocolScanSrv;
namespace model {
class FrameStream;
}

class LivePane : public QDialog {
    Q_OBJECT

public:
    // Each set is asked for when it is needed; nullptr when the dialog has
    // none (a Send dialog has no Scan) or is outside an edit.
    struct Source {
        std::function<const clsProtocolSendSrv*()> Send;
        std::function<const clsProtocolScanSrv*()> Scan;
        // The grid's current message, 1-based.
        std::function<int32_t()> Message;
    };
    LivePane(Source source, QWidget* parent = nullptr);
    ~LivePane() override;

    // Opens the line that the widgets describe; the answer comes later, in
    // Status() and in the log.
    void Connect();
    void Disconnect();
    // Sends the grid's current message; false, with the reason in the log,
    // when there is no line or no message to send.
    bool SendMessage();
    // Sends the bytes of pairs of hexadecimal digits.
    bool SendHex(const QString& hex);
    // Writes the bytes received so far into the file, for qxfb decode.
    bool SaveCapture(const QString& path);
    // Decodes a capture file into the log.
    bool LoadCapture(const QString& path);
    void ClearLog();

    QString Status() const { return status_->text(); }
    QString LogText() const { return log_->toPlainText(); }
    const QByteArray& Capture() const { return capture_; }
    bool Connected() const { return connected_; }

private:
    void buildLine();
    void fillPorts();
    std::optional<LineChoice> choice();
    void showStatus(const QString& text);
    void updateButtons();
    void onOpened(const QString& name);
    void onReceived(const QByteArray& bytes);
    void onWritten(const QByteArray& bytes);
    void onFailed(const QString& why);
    void onIdle();
    // One line of the log: the time, the direction, what the frame is, its
    // bytes in hexadecimal and as text, and the lines that explain it.
    void logFrame(const QString& head, std::span<const uint8_t> bytes, std::span<const model::ByteOrigin::Kind> kinds,
                  const QStringList& details = {});
    void logNote(const QString& text);
    // A received frame against the Scan: what it is, coloured by its fields.
    void logReceivedFrame(const QString& when, std::span<const uint8_t> frame, const QString& how);

    Source source_;
    LiveLine line_;
    bool connected_ = false;
    std::unique_ptr<model::FrameStream> stream_;
    QTimer idle_;
    QByteArray capture_;
    QByteArray lastSent_;
    int32_t lastSentMessage_ = 0;

    QComboBox* kind_;
    QStackedWidget* settings_;
    QComboBox* port_;
    QComboBox* baud_;
    QComboBox* dataBits_;
    QComboBox* parity_;
    QComboBox* stopBits_;
    QComboBox* flow_;
    QLineEdit* address_;
    QPushButton* connect_;
    QLabel* status_;
    QPushButton* sendMessage_;
    QLineEdit* hex_;
    QPushButton* sendHex_;
    QTextEdit* log_;
    QPushButton* save_;
    QPushButton* load_;
    QPushButton* clear_;
};

// Adds a "Live line..." button to the window of a Send or Scan dialog
// (serial or TCP/IP), under its message grid, that opens the dialog's live
// line; other forms get none.
void addLiveLine(Form& form, QWidget& window);

}  // namespace qx
