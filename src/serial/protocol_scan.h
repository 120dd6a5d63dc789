// clsProtocolscan: the serial Scan operation, which looks for the messages of
// its set in what the linked Config's COM port has received. Three flag and
// register operands stand on the block; the field links live in its image,
// which is a clsProtocolScanSrv's.
#pragma once
#include <cstdint>

#include "framework/fb_method_base.h"

namespace qx {

class clsProtocolscan : public FBMethodBase {
public:
    clsProtocolscan();

    void itfFBMethod_EditOperands() override;

protected:
    // Makes the image follow a moved operand. The operands of the block are
    // the host's to move; the image alone changes.
    void replaceFindOnlyOperand(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress, int32_t pNewOpAddress) override;
};

}  // namespace qx
