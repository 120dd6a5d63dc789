// The Send advanced dialog: the copy of the bytes that follow the ETX into a
// linked vector of operands, the bit that the copy sets when done, and how
// many bytes one element gives. The Send dialog opens it through EditAdvanced
// of the serial Send set. Both operands are edited in place, on the set's own
// objects; only the count depends on how the dialog is left.
#pragma once
#include <cstdint>

#include "platform/controls/combo_box.h"
#include "platform/controls/controls.h"
#include "platform/controls/form.h"
#include "platform/host/operand.h"

namespace qx {

class frmProtocolSendAdvanced : public Form {
public:
    frmProtocolSendAdvanced();

    // Keeps both operands, takes pCopyBytesCount as CopyBytesCount and shows
    // the dialog modally; then writes CopyBytesCount back into
    // pCopyBytesCount, whichever way the dialog was left, and sets pConfirmed
    // to DialogResult. A missing operand is RuntimeError(91). The dialog
    // holds on to neither operand afterwards.
    void Edit(OperandPtr pOpCopyDestination, OperandPtr pOpCopyWhenOn, int32_t& pCopyBytesCount, bool& pConfirmed);

    CheckBox ckCopyBytes{L"ckCopyBytes"};
    Label lbCopyBit{L"lbCopyBit"};
    Label lbOPCopyBytesBit{L"lbOPCopyBytesBit"};
    CommandButton cmdOPCopyBytesBit{L"cmdOPCopyBytesBit"};
    Label lbCopyDestination{L"lbCopyDestination"};
    Label lbOpCopyBytesTo{L"lbOpCopyBytesTo"};
    CommandButton cmdOpCopyBytesTo{L"cmdOpCopyBytesTo"};
    Label lbFormat{L"lbFormat"};
    ComboBox cbCopyBytes{L"cbCopyBytes"};
    CommandButton cmdOK{L"cmdOK"};
    CommandButton cmdCancel{L"cmdCancel"};

    // The working count: 0 is copy off, otherwise 1, 2 or 4 bytes per element.
    int32_t CopyBytesCount = 0;
    // True when the dialog was left by OK.
    bool DialogResult = false;
    // Set while the dialog itself fills or sets cbCopyBytes, so that its own
    // selection is not taken as the person's choice.
    bool IgnoreListEvents = false;

    void Form_Load() override;
    void Form_KeyPress(int32_t& KeyAscii) override;
    void ckCopyBytes_Click();
    void cbCopyBytes_Click();
    void cmdOPCopyBytesBit_Click();
    void lbOPCopyBytesBit_DblClick();
    void cmdOpCopyBytesTo_Click();
    void lbOpCopyBytesTo_DblClick();
    void cmdOK_Click();
    void cmdCancel_Click();

    // Enables or disables the eight controls of the copy below ckCopyBytes.
    void SetCopyControlsEnabled(bool on);
    // The formats the destination's type offers, each with its byte count as
    // item data: 1 and 2 for the word types 3 and 65, also 4 for 5, 16, 66
    // and 67, none for any other type.
    void FillFormatList();
    // After a new destination link, by its type: a word type turns a count
    // of 4 into 1 and selects the count's item when there is a count; a long
    // type selects the count's item, the first one for a count of 0 (which
    // stays 0); any other type selects nothing.
    void SelectFormat();
    // OK needs a count and both operands linked; the check box is not asked.
    void UpdateOKEnabled();
    // What keeps OK disabled, as the field and its rule; empty when OK is
    // enabled. For the person, beside the button.
    std::wstring inputProblem() const;

private:
    clsOperand& destination() const;
    clsOperand& whenOn() const;
    void linkCopyWhenOn();
    void linkCopyDestination();
    void endDialog(bool result);

    OperandPtr opCopyDestination_;
    OperandPtr opCopyWhenOn_;
};

}  // namespace qx
