#include "editors/frm_protocol_send_advanced.h"

#include <initializer_list>
#include <utility>

#include "framework/shared_helpers.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_context.h"

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
const wchar_t* const linkToolTip = L"Link Operand to Variable";
}  // namespace

frmProtocolSendAdvanced::frmProtocolSendAdvanced() : Form(L"frmProtocolSendAdvanced") {
    addControls({&ckCopyBytes, &lbCopyBit, &lbOPCopyBytesBit, &cmdOPCopyBytesBit, &lbCopyDestination, &lbOpCopyBytesTo,
                 &cmdOpCopyBytesTo, &lbFormat, &cbCopyBytes, &cmdOK, &cmdCancel});
    Caption(L"Advanced...");
    KeyPreview(true);
    ckCopyBytes.Caption(L"Send Data Destination");
    // Both captions with two blanks stand as the host has them.
    lbCopyBit.Caption(L"Copy  Bytes when ON :");
    lbCopyDestination.Caption(L"Copy  to :");
    lbFormat.Caption(L"Copy Format : ");
    cmdOPCopyBytesBit.Caption(L"...");
    cmdOPCopyBytesBit.ToolTipText(linkToolTip);
    cmdOpCopyBytesTo.Caption(L"...");
    cmdOpCopyBytesTo.ToolTipText(linkToolTip);
    cmdOK.Caption(L"OK");
    cmdCancel.Caption(L"Cancel");

    ckCopyBytes.OnClick = [this] { ckCopyBytes_Click(); };
    cbCopyBytes.OnClick = [this] { cbCopyBytes_Click(); };
    cmdOPCopyBytesBit.OnClick = [this] { cmdOPCopyBytesBit_Click(); };
    lbOPCopyBytesBit.OnDblClick = [this] { lbOPCopyBytesBit_DblClick(); };
    cmdOpCopyBytesTo.OnClick = [this] { cmdOpCopyBytesTo_Click(); };
    lbOpCopyBytesTo.OnDblClick = [this] { lbOpCopyBytesTo_DblClick(); };
    cmdOK.OnClick = [this] { cmdOK_Click(); };
    cmdCancel.OnClick = [this] { cmdCancel_Click(); };
    closeBoxActsAs([this] { cmdCancel_Click(); });
}

void frmProtocolSendAdvanced::Edit(OperandPtr pOpCopyDestination, OperandPtr pOpCopyWhenOn, int32_t& pCopyBytesCount,
                                   bool& pConfirmed) {
    objectOf(pOpCopyDestination);
    objectOf(pOpCopyWhenOn);
    // A dialog used once before starts as a fresh one: unchecking clears
    // what the last edit left in the labels and the list.
    ckCopyBytes.Value(CheckBox::Unchecked);
    opCopyDestination_ = std::move(pOpCopyDestination);
    opCopyWhenOn_ = std::move(pOpCopyWhenOn);
    CopyBytesCount = pCopyBytesCount;
    DialogResult = false;
    host().Driver->ShowModal(*this);
    Unload();
    pCopyBytesCount = CopyBytesCount;
    pConfirmed = DialogResult;
    opCopyDestination_.reset();
    opCopyWhenOn_.reset();
}

clsOperand& frmProtocolSendAdvanced::destination() const { return objectOf(opCopyDestination_); }
clsOperand& frmProtocolSendAdvanced::whenOn() const { return objectOf(opCopyWhenOn_); }

void frmProtocolSendAdvanced::Form_Load() {
    Icon(GetDialogIcon(iconPicture));
    ApplyDialogFont(*this);
    IgnoreListEvents = true;
    FillFormatList();
    SetCopyControlsEnabled(false);
    if (CopyBytesCount > 0) {
        SetCopyControlsEnabled(true);
        ckCopyBytes.Value(CheckBox::Checked);
        lbOPCopyBytesBit.Caption(GetOperandDisplayText(whenOn()));
        lbOpCopyBytesTo.Caption(GetOperandDisplayText(destination()));
        // FindComboIndex gives 0 for a count the list lacks (4 on a word
        // destination): the first item shows while the count stays. Only a
        // type without items, which no allowed destination has, has no item 0.
        if (cbCopyBytes.ListCount() > 0) cbCopyBytes.ListIndex(FindComboIndex(cbCopyBytes, CopyBytesCount));
    }
    UpdateOKEnabled();
    IgnoreListEvents = false;
}

void frmProtocolSendAdvanced::SetCopyControlsEnabled(bool on) {
    for (Control* control :
         std::initializer_list<Control*>{&lbCopyBit, &lbOPCopyBytesBit, &cmdOPCopyBytesBit, &lbCopyDestination,
                                         &lbOpCopyBytesTo, &cmdOpCopyBytesTo, &lbFormat, &cbCopyBytes})
        control->Enabled(on);
}

void frmProtocolSendAdvanced::FillFormatList() {
    cbCopyBytes.Clear();
    for (int32_t count : copyByteCountsFor(destination().OperandType()))
        cbCopyBytes.AddItem(L"Convert ONE Linked Element to " + std::to_wstring(count) + L" Send Bytes", count);
}

void frmProtocolSendAdvanced::SelectFormat() {
    switch (destination().OperandType()) {
        case 3:
        case 65:
            // A word register has no item for four bytes.
            if (CopyBytesCount == 4) CopyBytesCount = 1;
            if (CopyBytesCount > 0) cbCopyBytes.ListIndex(FindComboIndex(cbCopyBytes, CopyBytesCount));
            break;
        case 5:
        case 16:
        case 66:
        case 67:
            // With a count of 0 this shows the first item while the count
            // stays 0: OK stays off until the person changes the list.
            cbCopyBytes.ListIndex(FindComboIndex(cbCopyBytes, CopyBytesCount));
            break;
        default:
            break;
    }
}

void frmProtocolSendAdvanced::UpdateOKEnabled() {
    cmdOK.Enabled(CopyBytesCount != 0 && !destination().IsNew() && !whenOn().IsNew());
}

std::wstring frmProtocolSendAdvanced::inputProblem() const {
    if (CopyBytesCount == 0) {
        if (ckCopyBytes.Value() != CheckBox::Checked)
            return L"\"" + ckCopyBytes.Caption() + L"\" must be checked and filled in";
        return L"\"" + fieldName(lbFormat.Caption()) + L"\" must be chosen from the list";
    }
    if (destination().IsNew()) return L"\"" + fieldName(lbCopyDestination.Caption()) + L"\" must be linked: press ...";
    if (whenOn().IsNew()) return L"\"" + fieldName(lbCopyBit.Caption()) + L"\" must be linked: press ...";
    return L"";
}

void frmProtocolSendAdvanced::ckCopyBytes_Click() {
    // OK is left as it is either way: unchecking a complete copy keeps OK
    // on, and OK then confirms a count of 0, which turns the copy off.
    if (ckCopyBytes.Value() == CheckBox::Checked) {
        SetCopyControlsEnabled(true);
        return;
    }
    CopyBytesCount = 0;
    IgnoreListEvents = true;
    cbCopyBytes.ListIndex(-1);
    IgnoreListEvents = false;
    SetCopyControlsEnabled(false);
    // The operands keep their links; only their texts go.
    lbOPCopyBytesBit.Caption(L"");
    lbOpCopyBytesTo.Caption(L"");
}

void frmProtocolSendAdvanced::cbCopyBytes_Click() {
    if (IgnoreListEvents) return;
    const int32_t index = cbCopyBytes.ListIndex();
    if (index < 0) return;
    CopyBytesCount = cbCopyBytes.ItemData(index);
    UpdateOKEnabled();
}

void frmProtocolSendAdvanced::linkCopyWhenOn() {
    whenOn().EditOperand();
    if (!whenOn().IsNew()) lbOPCopyBytesBit.Caption(GetOperandDisplayText(whenOn()));
    UpdateOKEnabled();
}

void frmProtocolSendAdvanced::linkCopyDestination() {
    destination().EditOperand();
    if (!destination().IsNew()) lbOpCopyBytesTo.Caption(GetOperandDisplayText(destination()));
    // The type may have changed, and the formats with it.
    FillFormatList();
    IgnoreListEvents = true;
    SelectFormat();
    IgnoreListEvents = false;
    UpdateOKEnabled();
}

void frmProtocolSendAdvanced::cmdOPCopyBytesBit_Click() { linkCopyWhenOn(); }
void frmProtocolSendAdvanced::lbOPCopyBytesBit_DblClick() { linkCopyWhenOn(); }
void frmProtocolSendAdvanced::cmdOpCopyBytesTo_Click() { linkCopyDestination(); }
void frmProtocolSendAdvanced::lbOpCopyBytesTo_DblClick() { linkCopyDestination(); }

void frmProtocolSendAdvanced::cmdOK_Click() { endDialog(true); }

void frmProtocolSendAdvanced::cmdCancel_Click() { endDialog(false); }

void frmProtocolSendAdvanced::Form_KeyPress(int32_t& KeyAscii) {
    if (KeyAscii == keyEscape) cmdCancel_Click();
}

void frmProtocolSendAdvanced::endDialog(bool result) {
    DialogResult = result;
    Hide();
}

}  // namespace qx
