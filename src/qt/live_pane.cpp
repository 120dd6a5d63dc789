#include "qt/live_pane.h"

#include <QBoxLayout>
#include <QDateTime>
#include <QFile>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QSaveFile>
#include <QScrollBar>

#include "editors/scan_message_dialog.h"
#include "editors/send_message_dialog.h"
#include "platform/basics/runtime_error.h"
#include "qt/view_checksums.h"
#include "qt/wire_bytes.h"
#include "runtime_model/frame_stream.h"
#include "runtime_model/scan_recognizer.h"
#include "runtime_model/send_renderer.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"

namespace qx {

namespace {

// The log keeps its last lines; a long session never fills the memory.
constexpr int MaxLogBlocks = 5000;
// How often a frame that waits for its end is looked at, to cut it when its time is up.
constexpr int IdleMs = 100;

QString now() { return QTime::currentTime().toString(QStringLiteral("HH:mm:ss.zzz")); }

std::span<const uint8_t> bytesOf(const QByteArray& bytes) {
    return {reinterpret_cast<const uint8_t*>(bytes.constData()), static_cast<size_t>(bytes.size())};
}

}  // namespace

LivePane::LivePane(Source source, QWidget* parent)
    : QDialog(parent),
      source_(std::move(source)),
      kind_(new QComboBox(this)),
      settings_(new QStackedWidget(this)),
      port_(new QComboBox(this)),
      baud_(new QComboBox(this)),
      dataBits_(new QComboBox(this)),
      parity_(new QComboBox(this)),
      stopBits_(new QComboBox(this)),
      flow_(new QComboBox(this)),
      address_(new QLineEdit(this)),
      connect_(new QPushButton(tr("Connect"), this)),
      status_(new QLabel(tr("Not connected."), this)),
      sendMessage_(new QPushButton(tr("Send current message"), this)),
      hex_(new QLineEdit(this)),
      sendHex_(new QPushButton(tr("Send bytes"), this)),
      log_(new QTextEdit(this)),
      save_(new QPushButton(tr("Save capture..."), this)),
      load_(new QPushButton(tr("Load capture..."), this)),
      clear_(new QPushButton(tr("Clear"), this)) {
    setWindowTitle(source_.Send ? tr("Live line - Send") : tr("Live line - Scan"));
    kind_->setObjectName(QStringLiteral("lineKind"));
    port_->setObjectName(QStringLiteral("port"));
    address_->setObjectName(QStringLiteral("address"));
    hex_->setObjectName(QStringLiteral("bytes"));
    buildLine();
    auto* layout = new QVBoxLayout(this);
    auto* line = new QHBoxLayout;
    line->addWidget(new QLabel(tr("Line:"), this));
    line->addWidget(kind_);
    line->addWidget(settings_, 1);
    line->addWidget(connect_);
    layout->addLayout(line);
    layout->addWidget(status_);
    auto* send = new QHBoxLayout;
    send->addWidget(sendMessage_);
    send->addWidget(new QLabel(tr("Bytes (hex):"), this));
    send->addWidget(hex_, 1);
    send->addWidget(sendHex_);
    layout->addLayout(send);
    layout->addWidget(log_, 1);
    auto* files = new QHBoxLayout;
    files->addWidget(save_);
    files->addWidget(load_);
    files->addStretch(1);
    files->addWidget(clear_);
    layout->addLayout(files);

    sendMessage_->setVisible(static_cast<bool>(source_.Send));
    sendMessage_->setToolTip(tr("The grid's current message as the wire preview shows it, every operand 0"));
    hex_->setPlaceholderText(QStringLiteral("02 57 0D 0A 03"));
    log_->setReadOnly(true);
    log_->document()->setMaximumBlockCount(MaxLogBlocks);
    QFont fixed(QStringLiteral("monospace"));
    fixed.setStyleHint(QFont::TypeWriter);
    log_->setFont(fixed);
    // Enter is no key of this window: no button presses itself on it.
    for (QPushButton* button : findChildren<QPushButton*>()) button->setAutoDefault(false);

    connect(connect_, &QPushButton::clicked, this, [this] { connected_ || line_.Running() ? Disconnect() : Connect(); });
    connect(sendMessage_, &QPushButton::clicked, this, [this] { SendMessage(); });
    connect(sendHex_, &QPushButton::clicked, this, [this] { SendHex(hex_->text()); });
    connect(hex_, &QLineEdit::returnPressed, this, [this] { SendHex(hex_->text()); });
    connect(save_, &QPushButton::clicked, this, [this] {
        const QString path = QFileDialog::getSaveFileName(this, tr("Save capture"), QString(), tr("Captures (*.bin)"));
        if (!path.isEmpty()) SaveCapture(path);
    });
    connect(load_, &QPushButton::clicked, this, [this] {
        const QString path = QFileDialog::getOpenFileName(this, tr("Load capture"));
        if (!path.isEmpty()) LoadCapture(path);
    });
    connect(clear_, &QPushButton::clicked, this, &LivePane::ClearLog);
    connect(&line_, &LiveLine::opened, this, &LivePane::onOpened);
    connect(&line_, &LiveLine::received, this, &LivePane::onReceived);
    connect(&line_, &LiveLine::written, this, &LivePane::onWritten);
    connect(&line_, &LiveLine::failed, this, &LivePane::onFailed);
    connect(&idle_, &QTimer::timeout, this, &LivePane::onIdle);
    updateButtons();
    resize(820, 520);
}

LivePane::~LivePane() { line_.Close(); }

void LivePane::buildLine() {
    kind_->addItems({tr("Serial port"), tr("TCP connection"), tr("TCP server")});
    auto* serial = new QWidget(settings_);
    auto* serialRow = new QHBoxLayout(serial);
    serialRow->setContentsMargins(0, 0, 0, 0);
    port_->setEditable(true);
    port_->setMinimumContentsLength(14);
    fillPorts();
    for (int baud : {1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200}) baud_->addItem(QString::number(baud));
    baud_->setCurrentText(QStringLiteral("9600"));
    dataBits_->addItems({QStringLiteral("7"), QStringLiteral("8")});
    dataBits_->setCurrentText(QStringLiteral("8"));
    parity_->addItems({tr("none"), tr("odd"), tr("even")});
    stopBits_->addItems({QStringLiteral("1"), QStringLiteral("2")});
    flow_->addItems({tr("none"), tr("hardware"), tr("software")});
    serialRow->addWidget(port_, 1);
    for (auto [label, box] : {std::pair{tr("Baud"), baud_}, {tr("Data bits"), dataBits_}, {tr("Parity"), parity_},
                              {tr("Stop bits"), stopBits_}, {tr("Flow"), flow_}}) {
        serialRow->addWidget(new QLabel(label, serial));
        serialRow->addWidget(box);
    }
    auto* tcp = new QWidget(settings_);
    auto* tcpRow = new QHBoxLayout(tcp);
    tcpRow->setContentsMargins(0, 0, 0, 0);
    tcpRow->addWidget(address_, 1);
    settings_->addWidget(serial);
    settings_->addWidget(tcp);
    connect(kind_, &QComboBox::currentIndexChanged, this, [this](int index) {
        settings_->setCurrentIndex(index == 0 ? 0 : 1);
        // A device to connect to, or the port a server listens on (on 127.0.0.1).
        address_->setPlaceholderText(index == 1 ? QStringLiteral("192.168.1.10:502") : QStringLiteral("5020"));
    });
    address_->setPlaceholderText(QStringLiteral("192.168.1.10:502"));
}

void LivePane::fillPorts() {
    port_->clear();
    for (const std::string& path : link::serialPorts()) port_->addItem(QString::fromStdString(path));
}

std::optional<LineChoice> LivePane::choice() {
    LineChoice line;
    const int kind = kind_->currentIndex();
    if (kind == 0) {
        line.What = LineChoice::Serial;
        line.Port.Device = port_->currentText().trimmed().toStdString();
        if (line.Port.Device.empty()) {
            showStatus(tr("Choose a serial port, or type its device (/dev/ttyUSB0)."));
            return std::nullopt;
        }
        line.Port.Baud = baud_->currentText().toInt();
        line.Port.DataBits = dataBits_->currentText().toInt();
        link::parityFromName(parity_->currentText().toStdString(), line.Port.ParityBit);
        line.Port.StopBits = stopBits_->currentText().toInt();
        link::flowFromName(flow_->currentText().toStdString(), line.Port.Flow);
        return line;
    }
    const QString text = address_->text().trimmed();
    if (kind == 1) {
        line.What = LineChoice::TcpClient;
        std::string error;
        if (!link::parseHostPort(text.toStdString(), line.Host, line.TcpPort, error)) {
            showStatus(tr("The device's address: %1").arg(QString::fromStdString(error)));
            return std::nullopt;
        }
        return line;
    }
    line.What = LineChoice::TcpServer;
    bool ok = false;
    const uint port = text.toUInt(&ok);
    if (!ok || port > 65535) {
        showStatus(tr("The port to listen on is a whole number from 0 to 65535, not \"%1\".").arg(text));
        return std::nullopt;
    }
    line.TcpPort = static_cast<uint16_t>(port);
    return line;
}

void LivePane::Connect() {
    const std::optional<LineChoice> line = choice();
    if (!line) return;
    stream_.reset();
    if (const clsProtocolScanSrv* scan = source_.Scan ? source_.Scan() : nullptr) {
        try {
            stream_ = std::make_unique<model::FrameStream>(*scan);
        } catch (const RuntimeError& e) {
            logNote(tr("Received bytes are shown as they come: %1").arg(QString::fromStdWString(e.Description())));
        }
    }
    showStatus(tr("Connecting..."));
    line_.Open(*line);
    updateButtons();
}

void LivePane::Disconnect() {
    line_.Close();
    if (stream_) {
        stream_->Flush([this](const model::StreamFrame& frame) { logReceivedFrame(now(), frame.Bytes, tr("cut")); });
    }
    idle_.stop();
    if (connected_) logNote(tr("Disconnected."));
    connected_ = false;
    showStatus(tr("Not connected."));
    updateButtons();
}

void LivePane::onOpened(const QString& name) {
    connected_ = true;
    showStatus(tr("Connected to %1.").arg(name));
    logNote(tr("Connected to %1.").arg(name));
    if (stream_) idle_.start(IdleMs);
    updateButtons();
}

void LivePane::onFailed(const QString& why) {
    connected_ = false;
    line_.Close();
    idle_.stop();
    showStatus(why);
    logNote(why);
    updateButtons();
}

void LivePane::updateButtons() {
    const bool busy = connected_ || line_.Running();
    connect_->setText(busy ? tr("Disconnect") : tr("Connect"));
    kind_->setEnabled(!busy);
    settings_->setEnabled(!busy);
    sendMessage_->setEnabled(connected_);
    sendHex_->setEnabled(connected_);
}

void LivePane::showStatus(const QString& text) { status_->setText(text); }

bool LivePane::SendMessage() {
    const clsProtocolSendSrv* set = source_.Send ? source_.Send() : nullptr;
    const int32_t message = source_.Message ? source_.Message() : 0;
    if (!connected_ || !set) {
        logNote(connected_ ? tr("There is no message to send.") : tr("Connect first."));
        return false;
    }
    model::RenderedMessage out;
    try {
        out = model::renderSendMessage(*set, message, model::OperandValues{}, model::ModelClock{}, viewChecksumTable());
    } catch (const RuntimeError& e) {
        logNote(tr("Message %1 cannot be sent: %2").arg(message - 1).arg(QString::fromStdWString(e.Description())));
        return false;
    }
    lastSent_ = QByteArray(reinterpret_cast<const char*>(out.Bytes.data()), static_cast<qsizetype>(out.Bytes.size()));
    lastSentMessage_ = message;
    line_.Write(out.Bytes);
    return true;
}

bool LivePane::SendHex(const QString& hex) {
    const std::optional<std::vector<uint8_t>> bytes = hexBytes(hex);
    if (!bytes || bytes->empty()) {
        logNote(tr("Pairs of hexadecimal digits are needed, as in 02 57 0D 0A 03."));
        return false;
    }
    if (!connected_) {
        logNote(tr("Connect first."));
        return false;
    }
    line_.Write(*bytes);
    return true;
}

void LivePane::onWritten(const QByteArray& bytes) {
    // The rendered message keeps its colours; other bytes are shown plain.
    if (bytes == lastSent_ && lastSentMessage_ > 0) {
        const clsProtocolSendSrv* set = source_.Send ? source_.Send() : nullptr;
        try {
            if (!set) raiseError(err::ObjectNotSet);
            const model::RenderedMessage out = model::renderSendMessage(
                *set, lastSentMessage_, model::OperandValues{}, model::ModelClock{}, viewChecksumTable());
            if (out.Bytes.size() == static_cast<size_t>(bytes.size())) {
                logFrame(tr("%1 sent message %2, %3 bytes").arg(now()).arg(lastSentMessage_ - 1).arg(bytes.size()),
                         bytesOf(bytes), sentKinds(out));
                return;
            }
        } catch (const RuntimeError&) {
        }
    }
    logFrame(tr("%1 sent %2 bytes").arg(now()).arg(bytes.size()), bytesOf(bytes), {});
}

void LivePane::onReceived(const QByteArray& bytes) {
    if (capture_.size() + bytes.size() <= MaxCaptureBytes) capture_ += bytes;
    if (!stream_) {
        logFrame(tr("%1 received %2 bytes").arg(now()).arg(bytes.size()), bytesOf(bytes), {});
        return;
    }
    stream_->Feed(bytesOf(bytes), model::FrameStream::Clock::now(), [this](const model::StreamFrame& frame) {
        logReceivedFrame(now(), frame.Bytes, frame.EndedBy == model::FrameEnd::Timeout ? tr("cut") : QString());
        if (frame.SkippedBefore) logNote(tr("%1 bytes before it belonged to no frame.").arg(frame.SkippedBefore));
    });
}

void LivePane::onIdle() {
    if (!stream_) return;
    stream_->Idle(model::FrameStream::Clock::now(), [this](const model::StreamFrame& frame) {
        if (frame.EndedBy == model::FrameEnd::TooLong) {
            logNote(tr("A frame of more than %1 bytes was dropped.").arg(frame.DroppedBytes));
            return;
        }
        logReceivedFrame(now(), frame.Bytes, frame.EndedBy == model::FrameEnd::Timeout ? tr("cut") : QString());
    });
}

void LivePane::logReceivedFrame(const QString& when, std::span<const uint8_t> frame, const QString& how) {
    const clsProtocolScanSrv* scan = source_.Scan ? source_.Scan() : nullptr;
    const QString head = tr("%1 received %2 bytes%3").arg(when).arg(frame.size()).arg(how.isEmpty() ? QString() : ", " + how);
    if (!scan) {
        logFrame(head, frame, {});
        return;
    }
    try {
        const model::Recognition got = model::recognizeFrame(*scan, frame, viewChecksumTable());
        if (got.MessageNumber == 0) {
            QStringList why;
            for (const QString& line : whyNotLines(got)) why << QStringLiteral("    ") + line;
            logFrame(head + tr(": no message"), frame, {}, why);
        } else {
            logFrame(head + ": " + decodedText(got), frame, receivedKinds(frame, got));
        }
    } catch (const RuntimeError& e) {
        logFrame(head, frame, {}, {QString::fromStdWString(e.Description())});
    }
}

void LivePane::logFrame(const QString& head, std::span<const uint8_t> bytes,
                        std::span<const model::ByteOrigin::Kind> kinds, const QStringList& details) {
    const WireText shown = wireText(bytes, kinds);
    QString html = QStringLiteral("<b>%1</b><br>&nbsp;&nbsp;%2<br>&nbsp;&nbsp;%3")
                       .arg(head.toHtmlEscaped(), shown.HexHtml, shown.TextHtml);
    for (const QString& line : details) html += QStringLiteral("<br>") + line.toHtmlEscaped().replace(' ', "&nbsp;");
    log_->append(html);
    log_->verticalScrollBar()->setValue(log_->verticalScrollBar()->maximum());
}

void LivePane::logNote(const QString& text) { log_->append(QStringLiteral("<i>%1</i>").arg(text.toHtmlEscaped())); }

void LivePane::ClearLog() {
    log_->clear();
    capture_.clear();
}

bool LivePane::SaveCapture(const QString& path) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(capture_) != capture_.size() || !file.commit()) {
        logNote(tr("%1 cannot be saved: %2").arg(path, file.errorString()));
        return false;
    }
    logNote(tr("%1 bytes received saved to %2.").arg(capture_.size()).arg(path));
    return true;
}

bool LivePane::LoadCapture(const QString& path) {
    QFile file(path);
    if (file.size() > MaxCaptureBytes) {
        logNote(tr("%1 has %2 bytes, more than the %3 a capture may have.").arg(path).arg(file.size()).arg(MaxCaptureBytes));
        return false;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        logNote(tr("%1 cannot be read: %2").arg(path, file.errorString()));
        return false;
    }
    const QByteArray data = file.readAll();
    const std::span<const uint8_t> bytes = bytesOf(data);
    logNote(tr("%1: %2 bytes.").arg(path).arg(data.size()));
    const clsProtocolScanSrv* scan = source_.Scan ? source_.Scan() : nullptr;
    if (!scan) {
        logFrame(tr("from the file"), bytes, {});
        return true;
    }
    try {
        size_t leftOver = 0;
        for (const model::FrameSpan& frame : model::splitFrames(*scan, bytes, &leftOver))
            logReceivedFrame(tr("byte %1:").arg(frame.Offset), bytes.subspan(frame.Offset, frame.Length), QString());
        if (leftOver) logNote(tr("%1 bytes at the end make no complete frame.").arg(leftOver));
    } catch (const RuntimeError& e) {
        logNote(tr("The Scan cannot decode it: %1").arg(QString::fromStdWString(e.Description())));
    }
    return true;
}

void addLiveLine(Form& form, QWidget& window) {
    auto* send = dynamic_cast<SendMessageDialog*>(&form);
    auto* scan = dynamic_cast<ScanMessageDialog*>(&form);
    if (!send && !scan) return;
    auto* messages = window.findChild<QGroupBox*>(QStringLiteral("SSPanel1"));
    auto* layout = messages ? qobject_cast<QBoxLayout*>(messages->layout()) : nullptr;
    if (!layout) return;
    // Outside an edit a dialog raises error 91 for its set: the line then has none.
    LivePane::Source source;
    if (send) {
        source.Send = [send]() -> const clsProtocolSendSrv* {
            try {
                return &send->sendSet();
            } catch (const RuntimeError&) {
                return nullptr;
            }
        };
        source.Message = [send] { return send->grid().Row() + 1; };
    } else {
        source.Scan = [scan]() -> const clsProtocolScanSrv* {
            try {
                return &scan->scanSet();
            } catch (const RuntimeError&) {
                return nullptr;
            }
        };
    }
    auto* button = new QPushButton(QObject::tr("Live line..."), messages);
    button->setObjectName(QStringLiteral("liveLine"));
    button->setAutoDefault(false);
    auto* row = new QHBoxLayout;
    row->addStretch(1);
    row->addWidget(button);
    layout->addLayout(row);
    auto* pane = new LivePane(std::move(source), &window);
    pane->setObjectName(QStringLiteral("livePane"));
    QObject::connect(button, &QPushButton::clicked, pane, [pane] {
        pane->show();
        pane->raise();
    });
}

}  // namespace qx
