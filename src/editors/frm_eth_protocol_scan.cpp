#include "editors/frm_eth_protocol_scan.h"

#include <utility>

#include "sets/scan_set.h"

namespace qx {

frmEthProtocolScan::frmEthProtocolScan()
    : ScanMessageDialog(L"frmEthProtocolScan", L"Protocol: TCP/IP Scan"), abScan(toolBar()), FlgScan(grid()) {
    addControls({&SSPanel1});
    SSPanel1.Caption(L"Protocol Messages");
    FlgScan.Container(&SSPanel1);
    Label1.Caption(L"Message Received:");
    addLink(4, Label6, lbIpListIndex, cmdIpListIndex, L"Index of IP:");
    addLink(5, Label5, lbIpStartOfVector, cmdIpStartOfVector, L"IP Start of Vector, 5 Integers");
    requireLinks(5);
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

// No terminator to choose over a socket.
bool frmEthProtocolScan::ValidateMessages() { return checkMessages() && checkLongSegments(); }

}  // namespace qx
