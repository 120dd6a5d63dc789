// clsEthProtocolConfig: the TCP/IP Config operation, one named instance of the
// protocol with its socket, its status operand and the address table that
// Send and Scan refer to by index. The table belongs to the instance, so the
// operation has no image of its own: it hands out the instance's image as
// it was when FatherInstanceNum was last set.
#pragma once
#include "framework/fb_method_base.h"

namespace qx {

class clsEthProtocolConfig : public FBMethodBase {
public:
    clsEthProtocolConfig();

    // Adds the socket, a constant from the constant table, on the left side.
    void itfFBMethod_CreateDummyOperands() override;
    // The socket may be any of the four sockets of the constant list only.
    void itfFBMethod_BuildOperands() override;
    Bytes itfFBMethod_InstanceData() override { return instanceData_; }
    using FBMethodBase::itfFBMethod_FatherInstanceNum;
    // Also fetches the instance's address table.
    void itfFBMethod_FatherInstanceNum(int32_t value) override;
    // The dialog works on the operation and the host directly; OK makes the
    // operation's find-only operands the MIs of the address table.
    void itfFBMethod_EditOperands() override;

private:
    Bytes instanceData_;
};

}  // namespace qx
