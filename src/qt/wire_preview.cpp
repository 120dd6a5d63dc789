#include "qt/wire_preview.h"

#include <QBoxLayout>
#include <QGroupBox>
#include <QTimer>
#include <utility>

#include "editors/send_message_dialog.h"
#include "platform/basics/runtime_error.h"
#include "qt/view_checksums.h"
#include "qt/wire_bytes.h"
#include "runtime_model/send_renderer.h"
#include "sets/send_set.h"

namespace qx {

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
    const WireText shown = wireText(out.Bytes, sentKinds(out));
    hex_ = shown.Hex;
    text_ = shown.Text;
    // The grid beside the pane counts its rows from 0; the model from 1.
    title_->setText(tr("Message %1 on the wire, %2 bytes, every operand 0:").arg(message - 1).arg(out.Bytes.size()));
    bytes_->setText(shown.HexHtml + QStringLiteral("<br>") + shown.TextHtml);
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
