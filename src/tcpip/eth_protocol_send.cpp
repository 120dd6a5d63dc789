#include "tcpip/eth_protocol_send.h"

namespace qx {

namespace {
FBMethodInfo ethSendInfo() {
    return FBMethodInfo{
        3,
        L"SEND TCP",
        L"Sends messages contained within the Send operation via the Ethernet port in the linked Configuration",
        608,
        0,
        1,
        true,
        true,
        {
            {1, {1}, {64}, 597, true},  // send message succeeded
        },
    };
}
}  // namespace

clsEthProtocolSend::clsEthProtocolSend() : FBMethodBase(ethSendInfo()) {}

// The Send dialog and its message set come later; until then an edit changes nothing.
void clsEthProtocolSend::itfFBMethod_EditOperands() {}

}  // namespace qx
