// The family "Protocol" (serial COM port) with the table of its operations.
#pragma once
#include "framework/families.h"

namespace qx {

// The family "Protocol", FatherID 170100: Config, Scan, Send, Copy buffer, Buffer reset.
class clsProtocolFather : public FBFatherBase {
public:
    clsProtocolFather();

protected:
    MethodPtr createMethod(int32_t methodNumber) const override;
};

}  // namespace qx
