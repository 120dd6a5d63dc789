#include "tcpip/eth_protocol_send.h"

#include <memory>

#include "sets/send_set.h"

namespace qx {

namespace {
FBMethodInfo ethSendInfo() {
    return FBMethodInfo{
        .MethodNumber = 3,
        .Title = L"SEND TCP",
        .Description =
            L"Sends messages contained within the Send operation via the Ethernet port in the linked "
            L"Configuration",
        .MethodNameText = 608,
        .VisbleInCout = 0,
        .VisbleOutCout = 1,
        .HasBinaryImage = true,
        .AnswersBusBar = true,
        .OutOperandSpecs =
            {
                // Send message succeeded.
                {.TypeAtCreation = 1, .AllowedTypes = {1}, .ExtendedTypes = {64}, .TextNumber = 597, .Visible = true},
            },
    };
}
}  // namespace

clsEthProtocolSend::clsEthProtocolSend() : FBMethodBase(ethSendInfo()) {}

void clsEthProtocolSend::itfFBMethod_EditOperands() {
    auto srv = std::make_unique<clsEthProtocolSendSrv>();
    newOperandsForFindOnly();
    if (!itfFBMethod_IsNew()) srv->BinaryData(itfFBMethod_BinaryOperands());

    // The set fills OperandsForFindOnly itself on OK. The Config chosen in
    // the dialog and the link of the block operand are in the operation
    // already, whichever way the dialog ends.
    if (srv->Edit(*this, Instances())) {
        itfFBMethod_IsCanceled(false);
        setBinaryOperands(srv->BinaryData());
    } else {
        itfFBMethod_IsCanceled(true);
    }

    srv.reset();
    if (!itfFBMethod_IsCanceled()) setIsNew(false);
}

void clsEthProtocolSend::replaceFindOnlyOperand(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress,
                                                int32_t pNewOpAddress) {
    // As the serial Send: an operation that no edit has confirmed has no
    // image and no link to follow, and is given no default image here.
    Bytes image = itfFBMethod_BinaryOperands();
    if (image.empty()) return;
    // A broken image raises the reader's error before anything is stored.
    clsEthProtocolSendSrv srv;
    srv.BinaryData(image);
    srv.ReplaceOperands(pOpNetID, pOpType, pOpAddress, pNewOpAddress);
    setBinaryOperands(srv.BinaryData());
}

}  // namespace qx
