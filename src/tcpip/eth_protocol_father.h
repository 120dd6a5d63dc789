// The family "Protocol TCP/IP" (Ethernet socket) with the table of its operations.
#pragma once
#include "framework/families.h"

namespace qx {

// The family "Protocol TCP/IP", FatherID 170200: Config, Scan, Send.
class clsEthProtocolFather : public FBFatherBase {
public:
    clsEthProtocolFather();

protected:
    MethodPtr createMethod(int32_t methodNumber) const override;
};

}  // namespace qx
