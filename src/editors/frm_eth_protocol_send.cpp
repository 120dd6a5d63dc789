#include "editors/frm_eth_protocol_send.h"

#include <utility>

#include "framework/shared_helpers.h"
#include "sets/send_set.h"

namespace qx {

namespace {
// A label's caption as the name of its field: no colon, no double blanks.
std::wstring fieldName(std::wstring caption) {
    for (size_t at; (at = caption.find(L"  ")) != std::wstring::npos;) caption.erase(at, 1);
    while (!caption.empty() && (caption.back() == L' ' || caption.back() == L':')) caption.pop_back();
    return caption;
}
const wchar_t* const linkToolTip = L"Link Operand to Variable";
}  // namespace

frmEthProtocolSend::frmEthProtocolSend()
    : SendMessageDialog(L"frmEthProtocolSend", L"Protocol: TCP/IP Send"), abSend(toolBar()), FlgSend(grid()) {
    addControls({&SSPanel1, &Label2, &lbOpMsgsucceeded, &cmdOpMsgsucceeded});
    SSPanel1.Caption(L"Protocol Messages");
    FlgSend.Container(&SSPanel1);
    Label2.Caption(L"Send Message succeeded:");
    cmdOpMsgsucceeded.Caption(L"...");
    cmdOpMsgsucceeded.ToolTipText(linkToolTip);
    cmdOpMsgsucceeded.OnClick = [this] { cmdOpMsgsucceeded_Click(); };
    lbOpMsgsucceeded.OnDblClick = [this] { lbOpMsgsucceeded_DblClick(); };
}

void frmEthProtocolSend::Edit(clsEthProtocolSendSrv& pSendSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances,
                              bool& pConfirmed) {
    pConfirmed = false;
    if (!beginSendEdit(pSendSrv, pFBMethod, std::move(pFBInstances))) {
        dropReferences();
        Unload();
        return;
    }
    pConfirmed = runModal();
}

OperandPtr frmEthProtocolSend::succeededOperand() const {
    itfFBMethod* fb = methodOrNull();
    if (!fb) return nullptr;
    OperandCollectionPtr out = fb->itfFBMethod_OutOperands();
    if (!out || out->Count() < 1) return nullptr;
    return out->Item(1);
}

// --- Loading ---

void frmEthProtocolSend::loadOwnControls() { FirstActivation = true; }

void frmEthProtocolSend::LoadDialog() {
    loadMessagesAndLink();
    const OperandPtr succeeded = succeededOperand();
    lbOpMsgsucceeded.Caption(succeeded ? GetOperandDisplayText(*succeeded) : L"");
    gridEditor().IgnoreGridEvents = false;
    UpdateOKEnabled();
}

// --- Links ---

void frmEthProtocolSend::linkSucceeded() {
    const OperandPtr succeeded = succeededOperand();
    if (!succeeded) return;
    linkOperand(*succeeded, lbOpMsgsucceeded);
}

void frmEthProtocolSend::cmdOpMsgsucceeded_Click() { linkSucceeded(); }
void frmEthProtocolSend::lbOpMsgsucceeded_DblClick() { linkSucceeded(); }

// --- OK ---

void frmEthProtocolSend::UpdateOKEnabled() {
    SendMessageDialog::UpdateOKEnabled();
    const OperandPtr succeeded = succeededOperand();
    if (!succeeded || succeeded->IsNew()) cmdOK.Enabled(false);
}

std::wstring frmEthProtocolSend::inputProblem() const {
    std::wstring problem = SendMessageDialog::inputProblem();
    const OperandPtr succeeded = succeededOperand();
    if (problem.empty() && (!succeeded || succeeded->IsNew()))
        problem = L"\"" + fieldName(Label2.Caption()) + L"\" must be linked: press ...";
    return problem;
}

bool frmEthProtocolSend::ValidateMessages() { return checkMessages() && checkLongSegments(); }

// --- Activation ---

void frmEthProtocolSend::Form_Activate() {
    if (!FirstActivation || !FlgSend.Visible() || !FlgSend.Enabled()) return;
    const OperandPtr succeeded = succeededOperand();
    // A new Send leads the person to its flag once; a linked one never.
    if (succeeded && succeeded->IsNew()) {
        FirstActivation = false;
        linkSucceeded();
    }
    gridEditor().UpdateCaret();
    FlgSend.SetFocus();
}

}  // namespace qx
