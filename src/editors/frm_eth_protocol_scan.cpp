#include "editors/frm_eth_protocol_scan.h"

#include <utility>

#include "sets/scan_set.h"

namespace qx {

namespace {
const wchar_t* const linkToolTip = L"Link Operand to Variable";
}  // namespace

frmEthProtocolScan::frmEthProtocolScan()
    : ScanMessageDialog(L"frmEthProtocolScan", L"Protocol: TCP/IP Scan"), abScan(toolBar()), FlgScan(grid()) {
    addControls({&SSPanel1, &Label1, &lbOpFail, &cmdFailLink, &Label3, &lblOpReceived, &cmdOpReceived, &Label2,
                 &lbOpMessageNum, &cmdOpMessageNum, &Label6, &lbIpListIndex, &cmdIpListIndex, &Label5,
                 &lbIpStartOfVector, &cmdIpStartOfVector});
    SSPanel1.Caption(L"Protocol Messages");
    FlgScan.Container(&SSPanel1);
    Label1.Caption(L"Message Received:");
    Label3.Caption(L"Number of Bytes received:");
    Label2.Caption(L"Index of Received Message:");
    Label6.Caption(L"Index of IP:");
    Label5.Caption(L"IP Start of Vector, 5 Integers");
    for (CommandButton* link : {&cmdFailLink, &cmdOpReceived, &cmdOpMessageNum, &cmdIpListIndex, &cmdIpStartOfVector}) {
        link->Caption(L"...");
        link->ToolTipText(linkToolTip);
    }
    cmdFailLink.OnClick = [this] { cmdFailLink_Click(); };
    lbOpFail.OnDblClick = [this] { lbOpFail_DblClick(); };
    cmdOpReceived.OnClick = [this] { cmdOpReceived_Click(); };
    lblOpReceived.OnDblClick = [this] { lblOpReceived_DblClick(); };
    cmdOpMessageNum.OnClick = [this] { cmdOpMessageNum_Click(); };
    lbOpMessageNum.OnDblClick = [this] { lbOpMessageNum_DblClick(); };
    cmdIpListIndex.OnClick = [this] { cmdIpListIndex_Click(); };
    lbIpListIndex.OnDblClick = [this] { lbIpListIndex_DblClick(); };
    cmdIpStartOfVector.OnClick = [this] { cmdIpStartOfVector_Click(); };
    lbIpStartOfVector.OnDblClick = [this] { lbIpStartOfVector_DblClick(); };
    defineLinks({&lbOpFail, &lblOpReceived, &lbOpMessageNum, &lbIpListIndex, &lbIpStartOfVector}, 5);
}

void frmEthProtocolScan::Edit(clsEthProtocolScanSrv& pScanSrv, itfFBMethod& pFBMethod, InstancesPtr pFBInstances,
                              bool& pConfirmed) {
    editScan(pScanSrv, pFBMethod, std::move(pFBInstances), pConfirmed);
}

void frmEthProtocolScan::LoadDialog() {
    loadMessagesAndLinks();
    gridEditor().IgnoreGridEvents = false;
    UpdateOKEnabled();
}

void frmEthProtocolScan::prepareLink(int32_t k, clsOperand& operand) {
    if (k == 5) operand.OperandVectorLength(AddressVectorLength);
}

void frmEthProtocolScan::cmdFailLink_Click() { linkItem(1); }
void frmEthProtocolScan::lbOpFail_DblClick() { linkItem(1); }
void frmEthProtocolScan::cmdOpReceived_Click() { linkItem(2); }
void frmEthProtocolScan::lblOpReceived_DblClick() { linkItem(2); }
void frmEthProtocolScan::cmdOpMessageNum_Click() { linkItem(3); }
void frmEthProtocolScan::lbOpMessageNum_DblClick() { linkItem(3); }
void frmEthProtocolScan::cmdIpListIndex_Click() { linkItem(4); }
void frmEthProtocolScan::lbIpListIndex_DblClick() { linkItem(4); }
void frmEthProtocolScan::cmdIpStartOfVector_Click() { linkItem(5); }
void frmEthProtocolScan::lbIpStartOfVector_DblClick() { linkItem(5); }

// No terminator to choose over a socket.
bool frmEthProtocolScan::ValidateMessages() { return checkMessages() && checkLongSegments(); }

}  // namespace qx
