// The dialog of one address parameter: an IP address or a port, either a
// constant typed in or the MI that holds it at run time. It works on the
// caller's copy and hands it back on OK only.
#pragma once
#include <cstdint>

#include "platform/controls/controls.h"
#include "platform/controls/form.h"
#include "platform/controls/ip_address_control.h"
#include "platform/controls/text_box.h"
#include "tcpip/mdl_eth_protocol.h"

namespace qx {

class frmEthAddressParam : public Form {
public:
    frmEthAddressParam();

    // Kind 1 is an IP address, 2 a port.
    void Edit(AddressParam& pParam, int32_t pKind, bool& pCanceled);

    OptionButton optConst{L"optConst"};
    OptionButton optMI{L"optMI"};
    IPAddressControl ctlIPAddress{L"ctlIPAddress"};
    TextBox txtConstValueEx{L"txtConstValueEx"};
    Label lblMI{L"lblMI"};
    CommandButton cmdMI{L"cmdMI"};
    CommandButton cmdOK{L"cmdOK"};
    CommandButton cmdCancel{L"cmdCancel"};

    void Form_Load() override;
    void optConst_Click();
    void optMI_Click();
    void cmdMI_Click();
    void lblMI_Click();
    void cmdOK_Click();
    void cmdCancel_Click();

    // What keeps OK disabled, as the entry and its rule ("Port must be 1 to
    // 32767"); empty when OK is enabled. For the person, beside the button.
    std::wstring inputProblem() const;

    // Guards the option handlers while the dialog sets itself up.
    bool IsLoading = false;

private:
    void clearParam();
    void refresh();
    void updateCmdOK();
    bool isEntryAcceptable() const;

    AddressParam param_;
    int32_t kind_ = eth::AddressKindIP;
    bool canceled_ = true;
};

}  // namespace qx
