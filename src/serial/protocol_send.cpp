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

void clsProtocolSend::itfFBMethod_EditOperands() { editThroughMessageSet<clsProtocolSendSrv>(); }

void clsProtocolSend::replaceFindOnlyOperand(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress,
                                             int32_t pNewOpAddress) {
    replaceInMessageSetImage<clsProtocolSendSrv>(pOpNetID, pOpType, pOpAddress, pNewOpAddress);
}

}  // namespace qx
