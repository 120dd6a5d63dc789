#include "serial/frm_protocol_copy_bytes.h"

#include <vector>

#include "framework/runtime_catalogue.h"
#include "framework/shared_helpers.h"
#include "platform/basics/runtime_error.h"

namespace qx {

namespace {
// A label's caption as the name of its field: no colon, no double blanks.
std::wstring fieldName(std::wstring caption) {
    for (size_t at; (at = caption.find(L"  ")) != std::wstring::npos;) caption.erase(at, 1);
    while (!caption.empty() && (caption.back() == L' ' || caption.back() == L':')) caption.pop_back();
    return caption;
}
constexpr int32_t keyEscape = 27;
constexpr int32_t iconPicture = 302;
constexpr int32_t messageNoConfig = 140;
constexpr int32_t messageConfigGone = 141;

int32_t countOf(const OperandCollectionPtr& operands) { return operands ? operands->Count() : 0; }

// Index of the first item with this item data; -1, not FindComboIndex's 0,
// so that a value the list lacks selects nothing.
int32_t indexOfItemData(const ComboBox& combo, int32_t itemData) {
    for (int32_t i = 0; i < combo.ListCount(); ++i)
        if (combo.ItemData(i) == itemData) return i;
    return -1;
}
}  // namespace

frmProtocolCopyBytes::frmProtocolCopyBytes() : Form(L"frmProtocolCopyBytes") {
    addControls({&lblInstanceName, &cbInstanceName, &lblCopyBytes, &cbCopyBytes, &lbOpCaption, &lbOperand, &cmdOperand,
                 &cmdOk, &cmdCancel});
    Caption(L"Copy To Buffer");
    KeyPreview(true);
    lblInstanceName.Caption(L"Select Name : ");
    lblCopyBytes.Caption(L"Copy Format :");
    cmdOperand.Caption(L"...");
    cmdOperand.ToolTipText(L"Link Operand to Variable");
    cmdOk.Caption(L"OK");
    cmdCancel.Caption(L"Cancel");

    cbInstanceName.OnClick = [this] { cbInstanceName_Click(); };
    cbCopyBytes.OnClick = [this] { cbCopyBytes_Click(); };
    lbOperand.OnClick = [this] { lbOperand_Click(); };
    cmdOperand.OnClick = [this] { cmdOperand_Click(); };
    cmdOk.OnClick = [this] { cmdOk_Click(); };
    cmdCancel.OnClick = [this] { cmdCancel_Click(); };
    closeBoxActsAs([this] { cmdCancel_Click(); });
}

bool frmProtocolCopyBytes::Edit(int32_t& pCopyBytesToFormat, OperandPtr pOperand, const std::wstring& pCaption,
                                itfFBMethod& pCopyBufferMethod, InstancesPtr pFBserver) {
    operand_ = std::move(pOperand);
    method_ = &pCopyBufferMethod;
    instances_ = std::move(pFBserver);
    caption_ = pCaption;
    format_ = pCopyBytesToFormat;
    result_ = false;

    bool isEmpty = true;
    std::vector<FBInstanceRecord> instances;
    objectOf(instances_).GetInstances(isEmpty, instances);
    if (isEmpty || instances.empty()) {
        ShowMessage(messageNoConfig);
        return false;
    }

    if (instances.size() == 1) {
        bool taken = false;
        if (method_->itfFBMethod_IsNew()) {
            method_->itfFBMethod_FatherInstanceNum(instances.front().InstanceNum);
            taken = true;
        } else {
            taken = method_->itfFBMethod_FatherInstanceNum() == instances.front().InstanceNum;
        }
        // With nothing to link there would be nothing left to ask; a Copy
        // buffer always has its destination, so this never ends its edit.
        if (taken && countOf(method_->itfFBMethod_InOperands()) + countOf(method_->itfFBMethod_OutOperands()) == 0)
            return false;
    }

    for (const FBInstanceRecord& record : instances) cbInstanceName.AddItem(record.InstanceName, record.InstanceNum);
    // Selecting raises the click, which sets the same number again.
    cbInstanceName.ListIndex(indexOfItemData(cbInstanceName, method_->itfFBMethod_FatherInstanceNum()));
    if (!method_->itfFBMethod_IsNew() && cbInstanceName.ListIndex() < 0) ShowMessage(messageConfigGone);

    host().Driver->ShowModal(*this);
    Unload();
    if (result_) pCopyBytesToFormat = format_;
    return result_;
}

clsOperand& frmProtocolCopyBytes::destination() const { return objectOf(operand_); }

void frmProtocolCopyBytes::Form_Load() {
    Icon(GetDialogIcon(iconPicture));
    ApplyDialogFont(*this);
    fillCopyBytes(destination().OperandType());
    lbOpCaption.Caption(caption_);
    lbOperand.Caption(GetOperandDisplayText(destination()));
    if (format_ > 0) selectFormat();
    updateCmdOk();
}

void frmProtocolCopyBytes::fillCopyBytes(int32_t operandType) {
    cbCopyBytes.Clear();
    for (int32_t count : copyByteCountsFor(operandType))
        cbCopyBytes.AddItem(L"Convert " + std::to_wstring(count) + L" Receive Bytes to ONE Linked Element", count);
}

void frmProtocolCopyBytes::selectFormat() { cbCopyBytes.ListIndex(indexOfItemData(cbCopyBytes, format_)); }

void frmProtocolCopyBytes::linkOperand() {
    destination().EditOperand();
    lbOperand.Caption(GetOperandDisplayText(destination()));
    const int32_t type = destination().OperandType();
    // A word register takes no four-byte elements.
    if ((type == 3 || type == 65) && format_ == 4) format_ = 1;
    IgnoreListEvents = true;
    fillCopyBytes(type);
    selectFormat();
    IgnoreListEvents = false;
    updateCmdOk();
}

void frmProtocolCopyBytes::cmdOperand_Click() { linkOperand(); }
void frmProtocolCopyBytes::lbOperand_Click() { linkOperand(); }

void frmProtocolCopyBytes::cbCopyBytes_Click() {
    if (IgnoreListEvents) return;
    format_ = cbCopyBytes.ItemData(cbCopyBytes.ListIndex());
    updateCmdOk();
}

void frmProtocolCopyBytes::cbInstanceName_Click() {
    // Set on the operation at once: a Cancel does not take it back.
    method_->itfFBMethod_FatherInstanceNum(cbInstanceName.ItemData(cbInstanceName.ListIndex()));
    updateCmdOk();
}

void frmProtocolCopyBytes::updateCmdOk() {
    cmdOk.Enabled(cbInstanceName.ListIndex() >= 0 && !destination().IsNew() && format_ > 0 &&
                  method_->itfFBMethod_FatherInstanceNum() >= 1);
}

std::wstring frmProtocolCopyBytes::inputProblem() const {
    if (cbInstanceName.ListIndex() < 0 || method_->itfFBMethod_FatherInstanceNum() < 1)
        return L"\"" + fieldName(lblInstanceName.Caption()) + L"\" must be chosen from the list";
    if (destination().IsNew()) return L"\"" + fieldName(lbOpCaption.Caption()) + L"\" must be linked: press ...";
    if (format_ <= 0) return L"\"" + fieldName(lblCopyBytes.Caption()) + L"\" must be chosen from the list";
    return L"";
}

void frmProtocolCopyBytes::cmdOk_Click() { endDialog(true); }

void frmProtocolCopyBytes::cmdCancel_Click() { endDialog(false); }

void frmProtocolCopyBytes::Form_KeyPress(int32_t& KeyAscii) {
    if (KeyAscii == keyEscape) cmdCancel_Click();
}

void frmProtocolCopyBytes::endDialog(bool result) {
    result_ = result;
    Hide();
}

}  // namespace qx
