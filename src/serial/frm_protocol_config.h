// The Config dialog: the instance's name, its COM port and the links of its
// two operands. It edits a Srv object that is dropped on Cancel; operand
// links are made on the operation's own operands and so outlive a Cancel.
#pragma once
#include <cstdint>
#include <string>

#include "platform/controls/combo_box.h"
#include "platform/controls/controls.h"
#include "platform/controls/form.h"
#include "platform/controls/text_box.h"
#include "platform/host/host_contract.h"

namespace qx {

class clsProtocolConfigSrv;

class frmProtocolConfig : public Form {
public:
    frmProtocolConfig();

    // Runs the dialog modally; true when it ended with a valid OK.
    bool Edit(clsProtocolConfigSrv& pConfigSrv, itfFBMethod& pConfigMethod);

    Label lblName{L"lblName"};
    TextBox txtInstanceName{L"txtInstanceName"};
    Label lblComport{L"lblComport"};
    ComboBox cbComport{L"cbComport"};
    Label lblOpFail{L"lblOpFail"};
    Label lbOpFail{L"lbOpFail"};
    CommandButton cmdFailLink{L"cmdFailLink"};
    Label lblStatusOp{L"lblStatusOp"};
    Label lbStatusOp{L"lbStatusOp"};
    CommandButton cmdStatusOp{L"cmdStatusOp"};
    CommandButton cmdOk{L"cmdOk"};
    CommandButton cmdCancel{L"cmdCancel"};
    CommandButton cmdHelp{L"cmdHelp"};

    void Form_Load() override;
    void Form_Activate() override;
    void Form_KeyPress(int32_t& KeyAscii) override;

    // What keeps OK disabled, or would make it refuse, as the field and its
    // rule; empty when OK would be taken. For the person, beside the button.
    std::wstring inputProblem() const;
    void cmdOk_Click();
    void cmdCancel_Click();
    void cmdHelp_Click();
    void cbComport_Click();
    void txtInstanceName_Change();
    void cmdFailLink_Click();
    void lbOpFail_Click();
    void cmdStatusOp_Click();
    void lbStatusOp_Click();

    // Guards the handlers against the changes the dialog makes itself.
    bool IsLoading = false;

private:
    OperandPtr operand(int32_t index) const;
    // Runs the picker on an operand and shows the link if one was made.
    void linkOperand(int32_t index, Label& display);
    void updateCmdOk();
    void endDialog(bool result);

    clsProtocolConfigSrv* srv_ = nullptr;
    itfFBMethod* method_ = nullptr;
    bool isFirstActivate_ = false;
    bool result_ = false;
};

}  // namespace qx
