// clsProtocolResetBuffer: the serial Buffer reset operation. It has no image,
// no operand and no dialog of its own: the Config it clears is all it holds,
// and the host's own picker chooses it.
#pragma once
#include "framework/fb_method_base.h"

namespace qx {

class clsProtocolResetBuffer : public FBMethodBase {
public:
    clsProtocolResetBuffer();

    void itfFBMethod_EditOperands() override;
    void itfFBMethod_Execute(VariantArray& pParams) override;
};

}  // namespace qx
