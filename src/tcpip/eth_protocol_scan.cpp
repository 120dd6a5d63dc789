#include "tcpip/eth_protocol_scan.h"

namespace qx {

namespace {
FBMethodInfo ethScanInfo() {
    return FBMethodInfo{
        2,
        L"SCAN",
        L"Checks if messages contained within the Scan have been received via the Ethernet port in the linked "
        L"Configuration",
        216,
        0,
        2,
        true,
        true,
        {
            {1, {1}, {64}, 616, true},   // message received
            {3, {3}, {65}, 32, false},   // number of bytes received
            {3, {3}, {65}, 33, true},    // index of the received message
            {3, {3}, {65}, 595, false},  // index into the address table
            {3, {3}, {65}, 615, false},  // first of five integers: address and port
        },
    };
}
}  // namespace

clsEthProtocolScan::clsEthProtocolScan() : FBMethodBase(ethScanInfo()) {}

// The Scan dialog and its message set come later; until then an edit changes nothing.
void clsEthProtocolScan::itfFBMethod_EditOperands() {}

}  // namespace qx
