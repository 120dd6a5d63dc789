// clsProtocolSend: the serial Send operation, which sends a message of its
// set over the linked Config's COM port. It has no operand on the block: all
// its links live inside its image, which is a clsProtocolSendSrv's.
#pragma once
#include <cstdint>

#include "framework/fb_method_base.h"

namespace qx {

class clsProtocolSend : public FBMethodBase {
public:
    clsProtocolSend();

    void itfFBMethod_EditOperands() override;

protected:
    // Makes the image follow a moved operand. The image alone changes.
    void replaceFindOnlyOperand(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress, int32_t pNewOpAddress) override;
};

}  // namespace qx
