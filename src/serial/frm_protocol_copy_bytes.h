// The Copy buffer dialog: the Config instance, the destination operand and
// the copy format, whose choices depend on the destination's type. The format
// is edited on the caller's copy; the instance is set on the operation at the
// click and the operand link on the operation's own operand, so both outlive
// a Cancel.
#pragma once
#include <cstdint>
#include <string>

#include "platform/controls/combo_box.h"
#include "platform/controls/controls.h"
#include "platform/controls/form.h"
#include "platform/host/host_contract.h"

namespace qx {

class frmProtocolCopyBytes : public Form {
public:
    frmProtocolCopyBytes();

    // Fills the instance list and runs the dialog modally; true on OK, and
    // only then is pCopyBytesToFormat set. False without a dialog when the
    // family has no Config instance.
    bool Edit(int32_t& pCopyBytesToFormat, OperandPtr pOperand, const std::wstring& pCaption,
              itfFBMethod& pCopyBufferMethod, InstancesPtr pFBserver);

    Label lblInstanceName{L"lblInstanceName"};
    ComboBox cbInstanceName{L"cbInstanceName"};
    Label lblCopyBytes{L"lblCopyBytes"};
    ComboBox cbCopyBytes{L"cbCopyBytes"};
    Label lbOpCaption{L"lbOpCaption"};
    Label lbOperand{L"lbOperand"};
    CommandButton cmdOperand{L"cmdOperand"};
    CommandButton cmdOk{L"cmdOk"};
    CommandButton cmdCancel{L"cmdCancel"};

    void Form_Load() override;
    void Form_KeyPress(int32_t& KeyAscii) override;

    // What keeps OK disabled, as the field and its rule; empty when OK is
    // enabled. For the person, beside the button.
    std::wstring inputProblem() const;
    void cbInstanceName_Click();
    void cbCopyBytes_Click();
    void cmdOperand_Click();
    void lbOperand_Click();
    void cmdOk_Click();
    void cmdCancel_Click();

    // Set while the dialog refills cbCopyBytes after a link, so that its
    // own selection does not count as the person's choice.
    bool IgnoreListEvents = false;

private:
    // The operand to link; error 91 when the caller gave none.
    clsOperand& destination() const;
    // The formats the destination's type can take, each with its number as item data.
    void fillCopyBytes(int32_t operandType);
    // Selects the item of the current format; nothing when the list lacks it.
    void selectFormat();
    void linkOperand();
    void updateCmdOk();
    void endDialog(bool result);

    OperandPtr operand_;
    itfFBMethod* method_ = nullptr;
    InstancesPtr instances_;
    std::wstring caption_;
    int32_t format_ = 0;
    bool result_ = false;
};

}  // namespace qx
