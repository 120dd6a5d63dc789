#include "qt/input_problem.h"

#include <QBoxLayout>
#include <QPushButton>

#include "editors/frm_protocol_send_advanced.h"
#include "editors/message_dialog.h"
#include "platform/controls/form.h"
#include "qt/qt_text.h"
#include "serial/frm_protocol_config.h"
#include "serial/frm_protocol_copy_bytes.h"
#include "tcpip/frm_eth_address_param.h"
#include "tcpip/frm_eth_protocol_config.h"

namespace qx {

namespace {
// What the dialog of that form says about its OK button, if it says anything.
template <class Dialog>
std::function<std::wstring()> askIf(Form& form) {
    auto* dialog = dynamic_cast<Dialog*>(&form);
    if (!dialog) return nullptr;
    return [dialog] { return dialog->inputProblem(); };
}

std::function<std::wstring()> problemOf(Form& form) {
    for (auto ask : {askIf<frmEthProtocolConfig>, askIf<frmEthAddressParam>, askIf<frmProtocolConfig>,
                     askIf<frmProtocolCopyBytes>, askIf<frmProtocolSendAdvanced>, askIf<MessageDialog>})
        if (auto problem = ask(form)) return problem;
    return nullptr;
}
}  // namespace

InputProblemLine::InputProblemLine(std::function<std::wstring()> problem, const std::vector<Control*>& watched,
                                   QWidget* ok, QWidget* parent)
    : QLabel(parent), problem_(std::move(problem)), ok_(ok) {
    setObjectName(QStringLiteral("inputProblem"));
    setWordWrap(true);
    QPalette red = palette();
    red.setColor(QPalette::WindowText, QColor(0xC0, 0x00, 0x00));
    setPalette(red);
    // Any change may be the one that mends or breaks an entry: a key typed,
    // an option chosen, a link made in the picker, a cell filled.
    for (Control* control : watched)
        subscriptions_.emplace_back(control, control->Subscribe([this](std::string_view) { Refresh(); }));
    setVisible(false);
    Refresh();
}

InputProblemLine::~InputProblemLine() {
    for (const auto& [control, token] : subscriptions_) control->Unsubscribe(token);
}

void InputProblemLine::Refresh() {
    const QString words = toQString(problem_());
    if (words == text()) return;
    setText(words);
    // No empty row while all is well: the dialog keeps the look it had.
    setVisible(!words.isEmpty());
    if (ok_) ok_->setToolTip(words);
}

void addInputProblemLine(Form& form, QWidget& window) {
    std::function<std::wstring()> problem = problemOf(form);
    if (!problem) return;
    auto* layout = qobject_cast<QBoxLayout*>(window.layout());
    if (!layout) return;
    QWidget* ok = window.findChild<QPushButton*>(QStringLiteral("cmdOK"));
    if (!ok) ok = window.findChild<QPushButton*>(QStringLiteral("cmdOk"));
    // Under the fields, right above the row of buttons.
    int at = layout->count();
    for (int i = 0; i < layout->count(); ++i)
        if (QLayout* row = layout->itemAt(i)->layout(); row && row->objectName() == QLatin1String("buttonsLayout"))
            at = i;
    layout->insertWidget(at, new InputProblemLine(std::move(problem), form.Controls(), ok, &window));
}

}  // namespace qx
