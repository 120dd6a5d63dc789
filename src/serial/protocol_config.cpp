#include "serial/protocol_config.h"

#include <memory>
#include <vector>

#include "platform/basics/bytes.h"
#include "platform/basics/runtime_error.h"
#include "serial/frm_protocol_config.h"

namespace qx {

namespace {
constexpr size_t imageSize = clsProtocolConfigSrv::ImageSize;

FBMethodInfo configInfo() {
    return FBMethodInfo{
        .MethodNumber = 1,
        .Title = L"CONFIG",
        .Description =
            L"Each operation is linked to a Configuration, which determines which COM port is used for "
            L"Send and Scan operations",
        .MethodNameText = 203,
        .VisbleInCout = 0,
        .VisbleOutCout = 2,
        .HasBinaryImage = true,
        .AnswersBusBar = true,
        .OutOperandSpecs =
            {
                {.TypeAtCreation = 1, .AllowedTypes = {1}, .ExtendedTypes = {64}, .TextNumber = 24, .Visible = true},
                {.TypeAtCreation = 3, .AllowedTypes = {3}, .ExtendedTypes = {65}, .TextNumber = 34, .Visible = true},
            },
    };
}
}  // namespace

Bytes clsProtocolConfigSrv::BinaryData() const {
    Bytes image(imageSize, 0);
    ByteWriter writer(image);
    writer.u8(0, comPort_);
    writer.u8(1, 0);
    if (writer.size() % 2 != 0) writer.grow(1);
    return image;
}

void clsProtocolConfigSrv::BinaryData(const Bytes& value) { comPort_ = ByteReader(value).u8(0); }

bool clsProtocolConfigSrv::IsInstanceNameLegal() const {
    if (instanceName_.empty()) return false;
    bool isEmpty = true;
    std::vector<FBInstanceRecord> instances;
    objectOf(instances_).GetInstances(isEmpty, instances);
    if (isEmpty) return true;
    int32_t own = objectOf(method_).itfFBMethod_FatherInstanceNum();
    for (const auto& record : instances)
        if (record.InstanceName == instanceName_ && record.InstanceNum != own) return false;
    return true;
}

bool clsProtocolConfigSrv::Edit(itfFBMethod& pMethod, InstancesPtr pInstances) {
    method_ = &pMethod;
    instances_ = std::move(pInstances);
    frmProtocolConfig dialog;
    return dialog.Edit(*this, pMethod);
}

void clsProtocolConfigSrv::ShowHelp() const {
    objectOf(instances_).ShowFBHelp((objectOf(method_).itfFBMethod_MethodID() / 100) * 100);
}

clsProtocolConfig::clsProtocolConfig() : FBMethodBase(configInfo()) {}

void clsProtocolConfig::itfFBMethod_EditOperands() {
    auto srv = std::make_unique<clsProtocolConfigSrv>();
    newOperandsForFindOnly();
    if (!itfFBMethod_IsNew()) {
        srv->InstanceName(itfFBMethod_FatherInstanceName());
        srv->BinaryData(itfFBMethod_BinaryOperands());
    } else {
        // The image stays the default: port 1.
        FBInstanceRecord added;
        requiredInstances().AddInstance(added);
        srv->InstanceName(added.InstanceName);
        itfFBMethod_FatherInstanceNum(added.InstanceNum);
    }

    if (srv->Edit(*this, Instances())) {
        itfFBMethod_IsCanceled(false);
        setBinaryOperands(srv->BinaryData());
        FBInstanceRecord record{itfFBMethod_FatherInstanceNum(), srv->InstanceName()};
        // The host may renumber the instance.
        requiredInstances().UpdateInstance(record);
        itfFBMethod_FatherInstanceNum(record.InstanceNum);
    } else {
        itfFBMethod_IsCanceled(true);
    }

    srv.reset();
    if (!itfFBMethod_IsCanceled()) setIsNew(false);
}

}  // namespace qx
