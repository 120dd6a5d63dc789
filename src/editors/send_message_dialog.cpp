#include "editors/send_message_dialog.h"

#include <utility>

#include "framework/shared_helpers.h"
#include "platform/basics/runtime_error.h"
#include "sets/send_set.h"

namespace qx {

namespace {
// A label's caption as the name of its field: no colon, no double blanks.
std::wstring fieldName(std::wstring caption) {
    for (size_t at; (at = caption.find(L"  ")) != std::wstring::npos;) caption.erase(at, 1);
    while (!caption.empty() && (caption.back() == L' ' || caption.back() == L':')) caption.pop_back();
    return caption;
}
constexpr int32_t constantMode = 2;
constexpr int32_t constantType = 37;
constexpr int32_t memoryMode = 1;
constexpr int32_t memoryWordType = 3;
const wchar_t* const linkToolTip = L"Link Operand to Variable";
}  // namespace

SendMessageDialog::SendMessageDialog(std::wstring formName, std::wstring caption)
    : MessageDialog(std::move(formName), std::move(caption), MessageGridKind::Send, L"FlgSend", L"abSend",
                    ClearAllMessage) {
    addControls({&lblMessageNum, &lbOpMsgNumToSend, &cmdOpMsgNumToSend});
    lblMessageNum.Caption(L"Send Message number :");
    cmdOpMsgNumToSend.Caption(L"...");
    cmdOpMsgNumToSend.ToolTipText(linkToolTip);
    cmdOpMsgNumToSend.OnClick = [this] { cmdOpMsgNumToSend_Click(); };
    lbOpMsgNumToSend.OnDblClick = [this] { lbOpMsgNumToSend_DblClick(); };
}

clsProtocolSendSrv& SendMessageDialog::sendSet() const {
    if (!set_) raiseError(err::ObjectNotSet);
    return *set_;
}

bool SendMessageDialog::beginSendEdit(clsProtocolSendSrv& pSendSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances) {
    set_ = &pSendSrv;
    beginEdit(messageSourceOf(pSendSrv), messageSetOpsOf(pSendSrv), pFBMethod, std::move(pFBInstances));
    // ClearAll of the set rebuilds this dialog's grid while it is open.
    pSendSrv.OnMessagesCleared = [this] { Reload(); };
    return loadInstancesForEdit();
}

void SendMessageDialog::dropReferences() {
    if (set_) set_->OnMessagesCleared = nullptr;
    set_ = nullptr;
    MessageDialog::dropReferences();
}

void SendMessageDialog::showLink(bool visible) {
    lblMessageNum.Visible(visible);
    lbOpMsgNumToSend.Visible(visible);
    cmdOpMsgNumToSend.Visible(visible);
}

void SendMessageDialog::loadMessagesAndLink() {
    MessageGridEditor& editor = gridEditor();
    editor.IgnoreGridEvents = true;
    editor.PaintAllMessages();
    editor.InitCaret();
    clsOperand& link = *sendSet().OpMessageNumber();
    if (grid().Rows() == 1) {
        SingleMessageMode = true;
        showLink(false);
        if (link.IsNew()) {
            link.OperandConstantValue(0);
            int32_t address = 0;
            link.AllocateConstantAddress(address);
            link.OperandAddress(address);
        }
    } else {
        SingleMessageMode = false;
        showLink(true);
    }
    lbOpMsgNumToSend.Caption(GetOperandDisplayText(link));
}

void SendMessageDialog::EditMessageNumberLink() {
    clsOperand& link = *sendSet().OpMessageNumber();
    const int64_t constantValue = link.OperandConstantValue();
    link.EditOperand();
    if (IsConstantOperandType(link.OperandType())) {
        if (!link.IsEditCanceled()) {
            link.ReleaseOperand();
            lbOpMsgNumToSend.Caption(GetOperandDisplayText(link));
        } else {
            link.OperandConstantValue(constantValue);
        }
    } else if (!link.IsNew()) {
        lbOpMsgNumToSend.Caption(GetOperandDisplayText(link));
    }
    UpdateOKEnabled();
}

void SendMessageDialog::cmdOpMsgNumToSend_Click() { EditMessageNumberLink(); }
void SendMessageDialog::lbOpMsgNumToSend_DblClick() { EditMessageNumberLink(); }

void SendMessageDialog::UpdateOKEnabled() {
    MessageDialog::UpdateOKEnabled();
    if (grid().Rows() >= 2 && lbOpMsgNumToSend.Caption().empty()) cmdOK.Enabled(false);
}

std::wstring SendMessageDialog::inputProblem() const {
    std::wstring problem = MessageDialog::inputProblem();
    if (problem.empty() && grid().Rows() >= 2 && lbOpMsgNumToSend.Caption().empty())
        problem = L"\"" + fieldName(lblMessageNum.Caption()) + L"\" must be linked: press ...";
    return problem;
}

void SendMessageDialog::AfterMessageCountChanged() {
    const int32_t rows = grid().Rows();
    clsOperand& link = *sendSet().OpMessageNumber();
    if (rows == 1 && !SingleMessageMode) {
        // A single message needs no choice: the constant 0.
        link.OperandMode(constantMode);
        link.OperandType(constantType);
        link.OperandConstantValue(0);
        link.HasValue(false);
        int32_t address = 0;
        link.AllocateConstantAddress(address);
        link.OperandAddress(address);
        SingleMessageMode = true;
    }
    if (rows == 1) showLink(false);
    if (rows > 1 && SingleMessageMode) {
        // Now the person has to link the number.
        link.OperandType(memoryWordType);
        link.OperandMode(memoryMode);
        link.IsNew(true);
        showLink(true);
        lbOpMsgNumToSend.Caption(L"");
        SingleMessageMode = false;
    }
    UpdateOKEnabled();
}

bool SendMessageDialog::checkMessages() { return checkMessagesToDownload(NoMessagesMessage) && checkNoEmptyMessage(); }

}  // namespace qx
