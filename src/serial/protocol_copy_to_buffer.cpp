#include "serial/protocol_copy_to_buffer.h"

namespace qx {

namespace {
FBMethodInfo copyToBufferInfo() {
    return FBMethodInfo{
        4,
        L"COPY BUFFER",
        L"Copies whatever information is in the receive buffer at the time the operation is called.",
        219,
        0,
        1,
        true,
        false,
        {
            {3, {3, 5, 16}, {65, 66, 67}, 29, true},  // copy destination
        },
    };
}
}  // namespace

clsProtocolCopyToBuffer::clsProtocolCopyToBuffer() : FBMethodBase(copyToBufferInfo()) {}

// The copy-format dialog comes later; until then an edit changes nothing.
void clsProtocolCopyToBuffer::itfFBMethod_EditOperands() {}

void clsProtocolCopyToBuffer::itfFBMethod_Execute(VariantArray&) {}

}  // namespace qx
