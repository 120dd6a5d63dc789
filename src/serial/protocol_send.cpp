#include "serial/protocol_send.h"

namespace qx {

namespace {
FBMethodInfo sendInfo() {
    return FBMethodInfo{
        3,
        L"SEND",
        L"Sends messages contained within the Send operation via the COM port in the linked Configuration",
        221,
        0,
        0,
        true,
        true,
        {},
    };
}
}  // namespace

clsProtocolSend::clsProtocolSend() : FBMethodBase(sendInfo()) {}

// The Send dialog and its message set come later; until then an edit changes nothing.
void clsProtocolSend::itfFBMethod_EditOperands() {}

}  // namespace qx
