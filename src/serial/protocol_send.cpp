#include "serial/protocol_send.h"

#include "sets/send_set.h"

namespace qx {

namespace {
FBMethodInfo sendInfo() {
    return FBMethodInfo{
        .MethodNumber = 3,
        .Title = L"SEND",
        .Description =
            L"Sends messages contained within the Send operation via the COM port in the linked "
            L"Configuration",
        .MethodNameText = 221,
        .VisbleInCout = 0,
        .VisbleOutCout = 0,
        .HasBinaryImage = true,
        .AnswersBusBar = true,
        .OutOperandSpecs = {},
    };
}
}  // namespace

clsProtocolSend::clsProtocolSend() : FBMethodBase(sendInfo()) {}

// The dialog-driven edit arrives with the message editors.
void clsProtocolSend::itfFBMethod_EditOperands() {}

void clsProtocolSend::replaceFindOnlyOperand(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress,
                                             int32_t pNewOpAddress) {
    // A Send that no edit has confirmed yet has no image and so no link to
    // follow. Loading the empty array would only raise the reader's error 9,
    // and writing a default set back would give the host an image that the
    // user never confirmed; the operation stays without one.
    Bytes image = itfFBMethod_BinaryOperands();
    if (image.empty()) return;
    // A broken image raises the reader's error before anything is stored, so
    // the operation keeps the image it had.
    clsProtocolSendSrv srv;
    srv.BinaryData(image);
    srv.ReplaceOperands(pOpNetID, pOpType, pOpAddress, pNewOpAddress);
    setBinaryOperands(srv.BinaryData());
}

}  // namespace qx
