#include "tcpip/eth_protocol_scan.h"

#include "sets/scan_set.h"

namespace qx {

namespace {
FBMethodInfo ethScanInfo() {
    return FBMethodInfo{
        .MethodNumber = 2,
        .Title = L"SCAN",
        .Description =
            L"Checks if messages contained within the Scan have been received via the Ethernet port in "
            L"the linked Configuration",
        .MethodNameText = 216,
        .VisbleInCout = 0,
        .VisbleOutCout = 2,
        .HasBinaryImage = true,
        .AnswersBusBar = true,
        .OutOperandSpecs =
            {
                // Message received.
                {.TypeAtCreation = 1, .AllowedTypes = {1}, .ExtendedTypes = {64}, .TextNumber = 616, .Visible = true},
                // Number of bytes received.
                {.TypeAtCreation = 3, .AllowedTypes = {3}, .ExtendedTypes = {65}, .TextNumber = 32, .Visible = false},
                // Index of the received message.
                {.TypeAtCreation = 3, .AllowedTypes = {3}, .ExtendedTypes = {65}, .TextNumber = 33, .Visible = true},
                // Index into the address table.
                {.TypeAtCreation = 3, .AllowedTypes = {3}, .ExtendedTypes = {65}, .TextNumber = 595, .Visible = false},
                // First of five integers: an address with its port.
                {.TypeAtCreation = 3, .AllowedTypes = {3}, .ExtendedTypes = {65}, .TextNumber = 615, .Visible = false},
            },
    };
}
}  // namespace

clsEthProtocolScan::clsEthProtocolScan() : FBMethodBase(ethScanInfo()) {}

void clsEthProtocolScan::itfFBMethod_EditOperands() { editThroughMessageSet<clsEthProtocolScanSrv>(); }

void clsEthProtocolScan::replaceFindOnlyOperand(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress,
                                                int32_t pNewOpAddress) {
    replaceInMessageSetImage<clsEthProtocolScanSrv>(pOpNetID, pOpType, pOpAddress, pNewOpAddress);
}

}  // namespace qx
