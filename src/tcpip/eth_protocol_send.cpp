#include "tcpip/eth_protocol_send.h"

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

void clsEthProtocolSend::itfFBMethod_EditOperands() { editThroughMessageSet<clsEthProtocolSendSrv>(); }

void clsEthProtocolSend::replaceFindOnlyOperand(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress,
                                                int32_t pNewOpAddress) {
    replaceInMessageSetImage<clsEthProtocolSendSrv>(pOpNetID, pOpType, pOpAddress, pNewOpAddress);
}

}  // namespace qx
