#include "tcpip/eth_protocol_config.h"

namespace qx {

namespace {
FBMethodInfo ethConfigInfo() {
    return FBMethodInfo{
        1,
        L"CONFIG",
        L"Each operation is linked to a Configuration, which determines which Socket is used for Send and Scan "
        L"operations",
        203,
        1,
        1,
        false,
        true,
        {
            {3, {3}, {65}, 34, true},  // status
        },
    };
}
}  // namespace

// For now the socket constant on the left side, the instance image and the
// dialog are not here: the operation makes and builds its status operand only.
clsEthProtocolConfig::clsEthProtocolConfig() : FBMethodBase(ethConfigInfo()) {}

void clsEthProtocolConfig::itfFBMethod_EditOperands() {}

}  // namespace qx
