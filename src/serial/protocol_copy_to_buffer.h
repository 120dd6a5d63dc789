// clsProtocolCopyToBuffer: the serial Copy buffer operation, which copies the
// receive buffer into a vector of controller operands, a fixed number of
// received bytes (the copy format: 1, 2 or 4) into each element. It is
// allowed on the bus bar and ignores every command.
#pragma once
#include <cstdint>

#include "framework/fb_method_base.h"

namespace qx {

// The data of one edit of a Copy buffer: the copy format, and the image.
class clsProtocolCopyToBufferSrv {
public:
    // The length of the image that BinaryData writes.
    static constexpr size_t ImageSize = 2;
    // The image is always two bytes: the format, then 0. A format that does
    // not fit its byte is error 6.
    Bytes BinaryData() const;
    // Takes byte 0 as the format, whatever the length; an empty image is error 9.
    void BinaryData(const Bytes& value);

    // Shows the dialog modally on the destination, item 1 of OutOperands;
    // true on OK, and only then does the format change.
    bool Edit(itfFBMethod& pMethod, InstancesPtr pInstances);

    // Received bytes per destination element; 0 while none is chosen.
    int32_t CopyFormat() const { return copyFormat_; }
    void CopyFormat(int32_t value) { copyFormat_ = value; }

private:
    itfFBMethod* method_ = nullptr;
    InstancesPtr instances_;
    int32_t copyFormat_ = 0;
};

class clsProtocolCopyToBuffer : public FBMethodBase {
public:
    clsProtocolCopyToBuffer();

    // The common edit through clsProtocolCopyToBufferSrv.
    void itfFBMethod_EditOperands() override;
    void itfFBMethod_Execute(VariantArray& pParams) override;
};

}  // namespace qx
