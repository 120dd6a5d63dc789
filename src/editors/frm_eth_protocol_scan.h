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
    Label Label6{L"Label6"};
    Label lbIpListIndex{L"lbIpListIndex"};
    CommandButton cmdIpListIndex{L"cmdIpListIndex"};
    Label Label5{L"Label5"};
    Label lbIpStartOfVector{L"lbIpStartOfVector"};
    CommandButton cmdIpStartOfVector{L"cmdIpStartOfVector"};

    void cmdIpListIndex_Click() { linkItem(4); }
    void lbIpListIndex_DblClick() { linkItem(4); }
    void cmdIpStartOfVector_Click() { linkItem(5); }
    void lbIpStartOfVector_DblClick() { linkItem(5); }

    // Something to download (148), no empty message before a used one
    // (144), no fixed-text run above 255 characters; in that order.
    bool ValidateMessages() override;

protected:
    void LoadDialog() override;
    // The picker reserves five consecutive integers for item 5, each time.
    void prepareLink(int32_t k, clsOperand& operand) override;
};

}  // namespace qx
