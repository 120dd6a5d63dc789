#include "serial/protocol_scan.h"

#include <memory>

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

void clsProtocolscan::itfFBMethod_EditOperands() {
    auto srv = std::make_unique<clsProtocolScanSrv>();
    newOperandsForFindOnly();
    if (!itfFBMethod_IsNew()) srv->BinaryData(itfFBMethod_BinaryOperands());

    // The dialog links the three OutOperands in place and writes the chosen
    // Config into the operation at once: both stay after a Cancel.
    if (srv->Edit(*this, Instances())) {
        itfFBMethod_IsCanceled(false);
        setBinaryOperands(srv->BinaryData());
    } else {
        itfFBMethod_IsCanceled(true);
    }

    srv.reset();
    if (!itfFBMethod_IsCanceled()) setIsNew(false);
}

void clsProtocolscan::replaceFindOnlyOperand(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress,
                                             int32_t pNewOpAddress) {
    // A Scan that no edit has confirmed yet has no image and so no link to
    // follow; loading the empty array would only raise the reader's error 9,
    // and a default set written back would be an image the user never
    // confirmed. The operation stays without one.
    Bytes image = itfFBMethod_BinaryOperands();
    if (image.empty()) return;
    // A broken image raises the reader's error before anything is stored.
    clsProtocolScanSrv srv;
    srv.BinaryData(image);
    srv.ReplaceOperands(pOpNetID, pOpType, pOpAddress, pNewOpAddress);
    setBinaryOperands(srv.BinaryData());
}

}  // namespace qx
