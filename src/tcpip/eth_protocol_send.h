// clsEthProtocolSend: the TCP/IP Send operation, the serial Send over a
// socket, with one flag operand on the block ("send message succeeded"). Its
// image is a clsEthProtocolSendSrv's.
#pragma once
#include <cstdint>

#include "framework/fb_method_base.h"

namespace qx {

class clsEthProtocolSend : public FBMethodBase {
public:
    clsEthProtocolSend();

    void itfFBMethod_EditOperands() override;

protected:
    // Makes the image follow a moved operand. The operand of the block is the
    // host's to move; the image alone changes.
    void replaceFindOnlyOperand(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress, int32_t pNewOpAddress) override;
};

}  // namespace qx
