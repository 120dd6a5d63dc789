// The TCP/IP Config dialog: the instance's name, its operands (socket and
// status) and the table of 16 remote addresses. Unlike the serial Config it
// works on the operation and the host directly: a new instance is added to
// the host before the dialog shows and deleted again on Cancel, and OK writes
// the address table into the instance's data.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "platform/controls/controls.h"
#include "platform/controls/form.h"
#include "platform/controls/grid.h"
#include "platform/controls/text_box.h"
#include "platform/host/host_contract.h"
#include "tcpip/mdl_eth_protocol.h"

namespace qx {

class frmEthProtocolConfig : public Form {
public:
    frmEthProtocolConfig();

    // Runs the dialog; the method's IsCanceled tells how it ended. On OK,
    // FindOnlyOperands holds the MIs of the address table, IP before port.
    void EditOperands(itfFBMethod& pMethod, InstancesPtr pFBserver, OperandCollectionPtr& FindOnlyOperands);

    Label lblName{L"lblName"};
    TextBox txtInstanceName{L"txtInstanceName"};
    Grid vsfOperands{L"vsfOperands"};
    Frame fraAddresses{L"fraAddresses"};
    Grid vsfSlaves{L"vsfSlaves"};
    CommandButton cmdClearLink{L"cmdClearLink"};
    CommandButton cmdOK{L"cmdOK"};
    CommandButton cmdCancel{L"cmdCancel"};
    CommandButton cmdHelp{L"cmdHelp"};

    void Form_Activate() override;
    void txtInstanceName_Change();
    void txtInstanceName_GotFocus();
    void vsfOperands_DblClick();
    void vsfSlaves_BeforeEdit(int32_t Row, int32_t Col, bool& Cancel);
    void vsfSlaves_StartEdit(int32_t Row, int32_t Col, bool& Cancel);
    void vsfSlaves_Click();
    void vsfSlaves_AfterEdit(int32_t Row, int32_t Col);
    void vsfSlaves_CellButtonClick(int32_t Row, int32_t Col);
    void cmdClearLink_Click();
    void cmdOK_Click();
    void cmdCancel_Click();
    void cmdHelp_Click();

    // What keeps OK disabled, or would make it refuse, as the field and its
    // rule ("Name must not be empty"); empty when OK would be taken. For the
    // person, beside the button.
    std::wstring inputProblem() const;

    // The address table as the dialog holds it.
    const std::vector<EthAddress>& AddressTable() const { return table_; }

private:
    void fillOperandsGrid();
    void showOperandRow(int32_t row);
    void fillAddressGrid();
    void editOperandOfRow(int32_t row);
    void updateCmdOK();
    void updateCmdClearLink();
    EthAddress& recordOfRow(int32_t row);

    itfFBMethod* method_ = nullptr;
    InstancesPtr instances_;
    std::vector<EthAddress> table_;
    // vsfOperands row r shows rowOperands_[r - 1].
    std::vector<OperandPtr> rowOperands_;
    bool isFirstActivate_ = true;
};

}  // namespace qx
