#include "serial/protocol_scan.h"

#include "sets/scan_set.h"

namespace qx {

namespace {
FBMethodInfo scanInfo() {
    return FBMethodInfo{
        .MethodNumber = 2,
        .Title = L"SCAN",
        .Description =
            L"Checks if messages contained within the Scan have been received via the COM port in the "
            L"linked Configuration",
        .MethodNameText = 216,
        .VisbleInCout = 0,
        .VisbleOutCout = 3,
        .HasBinaryImage = true,
        .AnswersBusBar = true,
        .OutOperandSpecs =
            {
                // Session complete.
                {.TypeAtCreation = 1, .AllowedTypes = {1}, .ExtendedTypes = {64}, .TextNumber = 31, .Visible = true},
                // Number of bytes received.
                {.TypeAtCreation = 3, .AllowedTypes = {3}, .ExtendedTypes = {65}, .TextNumber = 32, .Visible = true},
                // Index of the received message.
                {.TypeAtCreation = 3, .AllowedTypes = {3}, .ExtendedTypes = {65}, .TextNumber = 33, .Visible = true},
            },
    };
}
}  // namespace

clsProtocolscan::clsProtocolscan() : FBMethodBase(scanInfo()) {}

void clsProtocolscan::itfFBMethod_EditOperands() { editThroughMessageSet<clsProtocolScanSrv>(); }

void clsProtocolscan::replaceFindOnlyOperand(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress,
                                             int32_t pNewOpAddress) {
    replaceInMessageSetImage<clsProtocolScanSrv>(pOpNetID, pOpType, pOpAddress, pNewOpAddress);
}

}  // namespace qx
