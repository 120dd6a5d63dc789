#include "qt/wire_preview.h"

#include <QBoxLayout>
#include <QGroupBox>
#include <QTimer>
#include <utility>

#include "editors/send_message_dialog.h"
#include "platform/basics/runtime_error.h"
#include "qt/view_checksums.h"
#include "runtime_model/send_renderer.h"
#include "sets/send_set.h"

namespace qx {

namespace {

const char* const controlNames[32] = {"NUL", "SOH", "STX", "ETX", "EOT", "ENQ", "ACK", "BEL", "BS",  "HT",  "LF",
                                      "VT",  "FF",  "CR",  "SO",  "SI",  "DLE", "DC1", "DC2", "DC3", "DC4", "NAK",
                                      "SYN", "ETB", "CAN", "EM",  "SUB", "ESC", "FS",  "GS",  "RS",  "US"};

QString textOf(uint8_t byte) {
    if (byte < 32) return QStringLiteral("<%1>").arg(QLatin1String(controlNames[byte]));
    if (byte < 127) return QString(QChar(byte));
    return QStringLiteral("<%1>").arg(byte, 2, 16, QLatin1Char('0')).toUpper();
}

// The grid's colours: control characters red, fields button-face grey, a
// checksum light blue; fixed text on the window's own colour.
QString colourOf(model::ByteOrigin::Kind kind) {
    switch (kind) {
        case model::ByteOrigin::Start:
        case model::ByteOrigin::End:
        case model::ByteOrigin::ControlChar:
            return QStringLiteral("#ff0000;color:#ffffff");
        case model::ByteOrigin::Field:
            return QStringLiteral("#d4d0c8");
        case model::ByteOrigin::EndChecksum:
            return QStringLiteral("#c0c0ff");
        case model::ByteOrigin::Text:
            break;
    }
    return {};
}

QString span(const QString& content, model::ByteOrigin::Kind kind) {
    const QString colour = colourOf(kind);
    const QString escaped = content.toHtmlEscaped();
    return colour.isEmpty() ? escaped : QStringLiteral("<span style=\"background:%1\">%2</span>").arg(colour, escaped);
}

}  // namespace

WirePreview::WirePreview(Source source, const std::vector<Control*>& watched, QWidget* parent)
    : QWidget(parent), source_(std::move(source)), title_(new QLabel(this)), bytes_(new QLabel(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(title_);
    layout->addWidget(bytes_);
    bytes_->setTextFormat(Qt::RichText);
    bytes_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    bytes_->setWordWrap(true);
    QFont fixed(QStringLiteral("monospace"));
    fixed.setStyleHint(QFont::TypeWriter);
    bytes_->setFont(fixed);
    for (Control* control : watched)
        subscriptions_.emplace_back(control, control->Subscribe([this](std::string_view) { schedule(); }));
    Refresh();
}

WirePreview::~WirePreview() {
    for (const auto& [control, token] : subscriptions_) control->Unsubscribe(token);
}

void WirePreview::schedule() {
    if (pending_) return;
    pending_ = true;
    QTimer::singleShot(0, this, [this] { Refresh(); });
}

void WirePreview::Refresh() {
    pending_ = false;
    hex_.clear();
    text_.clear();
    const clsProtocolSendSrv* set = source_.Set();
    const int32_t message = source_.Message();
    model::RenderedMessage out;
    try {
        if (!set) raiseError(err::ObjectNotSet);
        out = model::renderSendMessage(*set, message, model::OperandValues{}, model::ModelClock{}, viewChecksumTable());
    } catch (const RuntimeError& e) {
        // Outside an edit, or a message the set does not have: nothing to show.
        title_->setText(tr("Wire bytes: none (%1)").arg(QString::fromStdWString(e.Description())));
        bytes_->clear();
        return;
    }
    // Bytes of one origin in a row share one span: the label lays out a few
    // runs, not a span for every byte.
    QString hexHtml, textHtml, hexRun, textRun;
    auto runKind = model::ByteOrigin::Text;
    const auto closeRun = [&] {
        hexHtml += span(hexRun, runKind);
        textHtml += span(textRun, runKind);
        hexRun.clear();
        textRun.clear();
    };
    for (size_t i = 0; i < out.Bytes.size(); ++i) {
        const uint8_t byte = out.Bytes[i];
        const auto kind = out.Origins[i].What;
        if (kind != runKind && !hexRun.isEmpty()) closeRun();
        runKind = kind;
        const QString hex = QStringLiteral("%1").arg(byte, 2, 16, QLatin1Char('0')).toUpper();
        const QString separator = i ? QStringLiteral(" ") : QString();
        hex_ += separator + hex;
        text_ += textOf(byte);
        if (hexRun.isEmpty()) hexHtml += separator;
        hexRun += (hexRun.isEmpty() ? QString() : QStringLiteral(" ")) + hex;
        textRun += textOf(byte);
    }
    if (!hexRun.isEmpty()) closeRun();
    title_->setText(tr("Message %1 on the wire, %2 bytes, every operand 0:").arg(message).arg(out.Bytes.size()));
    bytes_->setText(hexHtml + QStringLiteral("<br>") + textHtml);
}

void addWirePreview(Form& form, QWidget& window) {
    auto* dialog = dynamic_cast<SendMessageDialog*>(&form);
    if (!dialog) return;
    auto* messages = window.findChild<QGroupBox*>(QStringLiteral("SSPanel1"));
    auto* layout = messages ? qobject_cast<QBoxLayout*>(messages->layout()) : nullptr;
    if (!layout) return;
    // Outside an edit the dialog raises error 91 for its set: the pane then shows nothing.
    WirePreview::Source source{[dialog]() -> const clsProtocolSendSrv* {
                                   try {
                                       return &dialog->sendSet();
                                   } catch (const RuntimeError&) {
                                       return nullptr;
                                   }
                               },
                               [dialog] { return dialog->grid().Row() + 1; }};
    // Every control of the dialog: typing in the grid, the frame, the end of message.
    layout->addWidget(new WirePreview(std::move(source), dialog->Controls(), messages));
}

}  // namespace qx
