#include "serial/protocol_send.h"

#include <memory>

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

void clsProtocolSend::itfFBMethod_EditOperands() {
    auto srv = std::make_unique<clsProtocolSendSrv>();
    newOperandsForFindOnly();
    if (!itfFBMethod_IsNew()) srv->BinaryData(itfFBMethod_BinaryOperands());

    // The set fills OperandsForFindOnly itself on OK. The Config chosen in
    // the dialog is in the operation already, whichever way it ends.
    if (srv->Edit(*this, Instances())) {
        itfFBMethod_IsCanceled(false);
        setBinaryOperands(srv->BinaryData());
    } else {
        itfFBMethod_IsCanceled(true);
    }

    srv.reset();
    if (!itfFBMethod_IsCanceled()) setIsNew(false);
}

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
