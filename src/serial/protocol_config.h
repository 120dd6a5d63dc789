// The serial Config operation: a named instance of the protocol, bound to one
// COM port of the controller and to two operands (function in progress,
// status). The operation keeps only its two-byte image; the instance's name
// lives in the host's instance record.
#pragma once
#include <cstdint>
#include <string>

#include "framework/fb_method_base.h"

namespace qx {

// The data of one edit of a Config: name and port, and the image.
class clsProtocolConfigSrv {
public:
    // The length of the image that BinaryData writes.
    static constexpr size_t ImageSize = 2;
    // The image is always two bytes: the port, then 0.
    Bytes BinaryData() const;
    // Takes byte 0 as the port, whatever the length; an empty image is error 9.
    void BinaryData(const Bytes& value);

    // False for an empty name, and for a name that another instance already
    // has (case counts); an instance may keep its own name.
    bool IsInstanceNameLegal() const;
    // Shows the dialog modally; true on OK.
    bool Edit(itfFBMethod& pMethod, InstancesPtr pInstances);
    void ShowHelp() const;

    const std::wstring& InstanceName() const { return instanceName_; }
    void InstanceName(const std::wstring& value) { instanceName_ = value; }
    int32_t ComPort() const { return comPort_; }
    void ComPort(int32_t value) { comPort_ = value; }

private:
    InstancesPtr instances_;
    itfFBMethod* method_ = nullptr;
    std::wstring instanceName_;
    int32_t comPort_ = 1;
};

class clsProtocolConfig : public FBMethodBase {
public:
    clsProtocolConfig();

    // The common edit, plus the instance: a new Config adds one to the host
    // before the dialog, and OK stores the possibly changed name back. A
    // canceled new Config leaves its instance for the host to remove.
    void itfFBMethod_EditOperands() override;
};

}  // namespace qx
