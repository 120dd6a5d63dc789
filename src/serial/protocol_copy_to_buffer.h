// clsProtocolCopyToBuffer: the serial Copy buffer operation, which copies the
// receive buffer into a vector of controller operands. It is allowed on the
// bus bar and ignores every command.
#pragma once
#include "framework/fb_method_base.h"

namespace qx {

class clsProtocolCopyToBuffer : public FBMethodBase {
public:
    clsProtocolCopyToBuffer();

    void itfFBMethod_EditOperands() override;
    void itfFBMethod_Execute(VariantArray& pParams) override;
};

}  // namespace qx
