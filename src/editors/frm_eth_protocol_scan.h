// The TCP/IP Scan dialog: the messages a TCP/IP Scan waits for in FlgScan
// (column 1 each message's length), the Config it listens on, and the links
// of its five operands: the flag "Message Received", the number of bytes,
// the index of the message, the index of the sender in the address table,
// and the sender's address with its port as a vector of five integers. A
// message over a socket has no framing and no terminator. All five links
// are required before OK.
#pragma once
#include <cstdint>

#include "editors/scan_message_dialog.h"
#include "platform/controls/controls.h"
#include "platform/controls/grid.h"
#include "platform/controls/toolbar.h"

namespace qx {

class clsEthProtocolScanSrv;

class frmEthProtocolScan : public ScanMessageDialog {
public:
    // The number of integers that item 5 names: four of the address, one
    // of the port.
    static constexpr int32_t AddressVectorLength = 5;

    frmEthProtocolScan();

    // As ScanMessageDialog::editScan: LoadDialog, the modal run, and
    // pConfirmed := DialogResult, unless there is nothing to offer.
    void Edit(clsEthProtocolScanSrv& pScanSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances, bool& pConfirmed);

    ToolBar& abScan;
    Frame SSPanel1{L"SSPanel1"};
    Grid& FlgScan;
    Label Label1{L"Label1"};
    Label lbOpFail{L"lbOpFail"};
    CommandButton cmdFailLink{L"cmdFailLink"};
    Label Label3{L"Label3"};
    Label lblOpReceived{L"lblOpReceived"};
    CommandButton cmdOpReceived{L"cmdOpReceived"};
    Label Label2{L"Label2"};
    Label lbOpMessageNum{L"lbOpMessageNum"};
    CommandButton cmdOpMessageNum{L"cmdOpMessageNum"};
    Label Label6{L"Label6"};
    Label lbIpListIndex{L"lbIpListIndex"};
    CommandButton cmdIpListIndex{L"cmdIpListIndex"};
    Label Label5{L"Label5"};
    Label lbIpStartOfVector{L"lbIpStartOfVector"};
    CommandButton cmdIpStartOfVector{L"cmdIpStartOfVector"};

    void cmdFailLink_Click();
    void lbOpFail_DblClick();
    void cmdOpReceived_Click();
    void lblOpReceived_DblClick();
    void cmdOpMessageNum_Click();
    void lbOpMessageNum_DblClick();
    void cmdIpListIndex_Click();
    void lbIpListIndex_DblClick();
    void cmdIpStartOfVector_Click();
    void lbIpStartOfVector_DblClick();

    // Something to download (148), no empty message before a used one
    // (144), no fixed-text run above 255 characters; in that order.
    bool ValidateMessages() override;

protected:
    void LoadDialog() override;
    // The picker reserves five consecutive integers for item 5, each time.
    void prepareLink(int32_t k, clsOperand& operand) override;
};

}  // namespace qx
