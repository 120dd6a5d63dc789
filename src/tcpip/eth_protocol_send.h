// clsEthProtocolSend: the TCP/IP Send operation, the serial Send over a
// socket, with one flag operand on the block.
#pragma once
#include "framework/fb_method_base.h"

namespace qx {

class clsEthProtocolSend : public FBMethodBase {
public:
    clsEthProtocolSend();

    void itfFBMethod_EditOperands() override;
};

}  // namespace qx
