// clsProtocolscan: the serial Scan operation, which looks for the messages of
// its set in what the linked Config's COM port has received.
#pragma once
#include "framework/fb_method_base.h"

namespace qx {

class clsProtocolscan : public FBMethodBase {
public:
    clsProtocolscan();

    void itfFBMethod_EditOperands() override;
};

}  // namespace qx
