// clsEthProtocolScan: the TCP/IP Scan operation, the serial Scan over a
// socket. It has five out operands, of which the block shows the first and
// the third; the others (bytes received, the address-table index and the
// five-integer address with port) are linked in its dialog only. Its image
// is a clsEthProtocolScanSrv's.
#pragma once
#include <cstdint>

#include "framework/fb_method_base.h"

namespace qx {

class clsEthProtocolScan : public FBMethodBase {
public:
    clsEthProtocolScan();

    void itfFBMethod_EditOperands() override;

protected:
    // Makes the image follow a moved operand. The five operands are the
    // host's to move; the image alone changes.
    void replaceFindOnlyOperand(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress, int32_t pNewOpAddress) override;
};

}  // namespace qx
