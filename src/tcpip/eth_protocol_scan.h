// clsEthProtocolScan: the TCP/IP Scan operation, the serial Scan over a
// socket. It has five out operands, of which the block shows the first and
// the third; the others are linked in its dialog only.
#pragma once
#include "framework/fb_method_base.h"

namespace qx {

class clsEthProtocolScan : public FBMethodBase {
public:
    clsEthProtocolScan();

    void itfFBMethod_EditOperands() override;
};

}  // namespace qx
