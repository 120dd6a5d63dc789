// clsProtocolSend: the serial Send operation, which sends a message of its
// set over the linked Config's COM port. It has no operand on the block.
#pragma once
#include "framework/fb_method_base.h"

namespace qx {

class clsProtocolSend : public FBMethodBase {
public:
    clsProtocolSend();

    void itfFBMethod_EditOperands() override;
};

}  // namespace qx
