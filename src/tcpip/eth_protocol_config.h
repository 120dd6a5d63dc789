// clsEthProtocolConfig: the TCP/IP Config operation, one named instance of the
// protocol with its socket, its status operand and the address table that
// Send and Scan refer to by index. The table belongs to the instance, so the
// operation has no image of its own.
#pragma once
#include "framework/fb_method_base.h"

namespace qx {

class clsEthProtocolConfig : public FBMethodBase {
public:
    clsEthProtocolConfig();

    void itfFBMethod_EditOperands() override;
};

}  // namespace qx
