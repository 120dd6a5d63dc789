#include "serial/protocol_scan.h"

namespace qx {

namespace {
FBMethodInfo scanInfo() {
    return FBMethodInfo{
        2,
        L"SCAN",
        L"Checks if messages contained within the Scan have been received via the COM port in the linked Configuration",
        216,
        0,
        3,
        true,
        true,
        {
            {1, {1}, {64}, 31, true},  // session complete
            {3, {3}, {65}, 32, true},  // number of bytes received
            {3, {3}, {65}, 33, true},  // index of the received message
        },
    };
}
}  // namespace

clsProtocolscan::clsProtocolscan() : FBMethodBase(scanInfo()) {}

// The Scan dialog and its message set come later; until then an edit changes nothing.
void clsProtocolscan::itfFBMethod_EditOperands() {}

}  // namespace qx
