#include "serial/protocol_reset_buffer.h"

namespace qx {

namespace {
FBMethodInfo resetBufferInfo() {
    return FBMethodInfo{
        5,
        L"BUFFER RST",
        L"To receive new messages, you must clear the communication buffer by using this operation",
        220,
        0,
        0,
        false,
        false,
        {},
    };
}
}  // namespace

clsProtocolResetBuffer::clsProtocolResetBuffer() : FBMethodBase(resetBufferInfo()) {}

void clsProtocolResetBuffer::itfFBMethod_EditOperands() {
    // The host's dialog sets FatherInstanceNum and IsCanceled on this object.
    requiredInstances().SelectInstance(*this);
    if (!itfFBMethod_IsCanceled()) setIsNew(false);
}

// Allowed on the bus bar: no command gets an answer.
void clsProtocolResetBuffer::itfFBMethod_Execute(VariantArray&) {}

}  // namespace qx
