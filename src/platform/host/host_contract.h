// The contracts between the host IDE and the library: the gate, a family, an
// operation, and the host's side of a family's instances.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/basics/bytes.h"
#include "platform/basics/collection.h"
#include "platform/basics/variant.h"
#include "platform/host/host_context.h"
#include "platform/host/operand.h"

namespace qx {

class itfFBGate;
class itfFBFather;
class itfFBMethod;

using OperandCollection = Collection<OperandPtr>;
using OperandCollectionPtr = std::shared_ptr<OperandCollection>;
using FatherPtr = std::shared_ptr<itfFBFather>;
using MethodPtr = std::shared_ptr<itfFBMethod>;
using FatherCollectionPtr = CollectionPtr<FatherPtr>;
using MethodCollectionPtr = CollectionPtr<MethodPtr>;

struct FBInstanceRecord {
    int32_t InstanceNum = 0;
    std::wstring InstanceName;
};

// The runtime files of one version, as the host downloads them.
struct FBHexFileDetails {
    Bytes FBs;
    Bytes Jmp;
    int32_t FBsSize = 0;
    int32_t MinBiosVersion = 0;
    int32_t RealTimeMemorySize = 0;
};

class itfFBGate {
public:
    virtual ~itfFBGate() = default;
    virtual FatherCollectionPtr itfFBGate_GetFathersCollection() = 0;
    virtual int32_t itfFBGate_GateID() = 0;
    virtual FatherPtr itfFBGate_GetFatherObject(int32_t FatherID) = 0;
    virtual void itfFBGate_PrintFB(const Variant& argument) = 0;
    virtual void itfFBGate_Execute(const Variant& argument) = 0;
};

class itfFBFather {
public:
    virtual ~itfFBFather() = default;
    virtual MethodCollectionPtr itfFBFather_GetFBmethodsCollection() = 0;
    virtual MethodPtr itfFBFather_GetFBMethodObject(int32_t FBMethodID) = 0;
    virtual std::wstring itfFBFather_FatherName() = 0;
    virtual std::wstring itfFBFather_Title() = 0;
    virtual std::wstring itfFBFather_Description() = 0;
    virtual int32_t itfFBFather_FatherID() = 0;
    virtual int32_t itfFBFather_InstanceType() = 0;
    virtual std::vector<int32_t> itfFBFather_HexFileVersionsList() = 0;
    virtual int32_t itfFBFather_CurrentHexFileVersion() = 0;
    virtual PicturePtr itfFBFather_MenuIcon() = 0;
    virtual Bytes itfFBFather_AdditionalData() = 0;
    virtual void itfFBFather_AdditionalData(const Bytes& value) = 0;
    virtual FBHexFileDetails itfFBFather_GetHexFileDetails(int32_t HexFileVersion) = 0;
    virtual void itfFBFather_InitProperties(itfFBGate& pGate) = 0;
    virtual void itfFBFather_PrintFB(const Variant& argument) = 0;
    virtual void itfFBFather_Execute(const Variant& argument) = 0;
};

class itfFBInstances;

class itfFBMethod {
public:
    virtual ~itfFBMethod() = default;
    virtual std::wstring itfFBMethod_Description() = 0;
    virtual std::wstring itfFBMethod_Title() = 0;
    virtual std::wstring itfFBMethod_MethodName() = 0;
    virtual int32_t itfFBMethod_MethodID() = 0;
    virtual bool itfFBMethod_IsCanceled() = 0;
    virtual void itfFBMethod_IsCanceled(bool value) = 0;
    virtual bool itfFBMethod_IsNew() = 0;
    virtual OperandCollectionPtr itfFBMethod_InOperands() = 0;
    virtual void itfFBMethod_InOperands(OperandCollectionPtr value) = 0;
    virtual OperandCollectionPtr itfFBMethod_OutOperands() = 0;
    virtual void itfFBMethod_OutOperands(OperandCollectionPtr value) = 0;
    virtual int32_t itfFBMethod_VisbleInCout() = 0;
    virtual int32_t itfFBMethod_VisbleOutCout() = 0;
    virtual OperandCollectionPtr itfFBMethod_VisbleInOperands() = 0;
    virtual OperandCollectionPtr itfFBMethod_VisbleOutOperands() = 0;
    virtual OperandCollectionPtr itfFBMethod_OperandsForFindOnly() = 0;
    virtual PicturePtr itfFBMethod_LadderImage() = 0;
    virtual PicturePtr itfFBMethod_LadderImageSelected() = 0;
    virtual PicturePtr itfFBMethod_MenuIcon() = 0;
    virtual bool itfFBMethod_IsEnableInEnableOut() = 0;
    virtual bool itfFBMethod_IsConducting() = 0;
    virtual void itfFBMethod_IsConducting(bool value) = 0;
    virtual void itfFBMethod_BuildOperands() = 0;
    virtual void itfFBMethod_CreateDummyOperands() = 0;
    virtual void itfFBMethod_EditOperands() = 0;
    virtual Bytes itfFBMethod_AdditionalData() = 0;
    virtual void itfFBMethod_AdditionalData(const Bytes& value) = 0;
    virtual Bytes itfFBMethod_InstanceData() = 0;
    virtual Bytes itfFBMethod_BinaryOperands() = 0;
    virtual void itfFBMethod_BinaryOperands(const Bytes& value) = 0;
    virtual std::wstring itfFBMethod_FatherTitle() = 0;
    virtual int32_t itfFBMethod_HexFileVersion() = 0;
    virtual void itfFBMethod_HexFileVersion(int32_t value) = 0;
    virtual int32_t itfFBMethod_FatherInstanceNum() = 0;
    virtual void itfFBMethod_FatherInstanceNum(int32_t value) = 0;
    virtual std::wstring itfFBMethod_FatherInstanceName() = 0;
    virtual int32_t itfFBMethod_FatherInstanceType() = 0;
    virtual void itfFBMethod_Init(std::shared_ptr<itfFBInstances> pFBserver) = 0;
    virtual void itfFBMethod_InitProperties(itfFBFather& pFather) = 0;
    virtual void itfFBMethod_Delete() = 0;
    virtual std::wstring itfFBMethod_FatherName() = 0;
    virtual void itfFBMethod_FatherName(const std::wstring& value) = 0;
    virtual void itfFBMethod_PrintFB(const Variant& argument) = 0;
    virtual void itfFBMethod_Execute(VariantArray& pParams) = 0;
};

// The host's side of a family's instances (one instance is one named Config).
class itfFBInstances {
public:
    virtual ~itfFBInstances() = default;
    virtual void AttachMethod(int32_t MethodID) = 0;
    // The array is empty (and IsEmpty true) when there is no instance.
    virtual void GetInstances(bool& IsEmpty, std::vector<FBInstanceRecord>& Instances) = 0;
    virtual void GetInstanceName(int32_t InstanceNum, std::wstring& InstanceName) = 0;
    virtual void GetInstanceData(int32_t InstanceNum, Bytes& Data) = 0;
    virtual void SetInstanceData(int32_t InstanceNum, Bytes& Data) = 0;
    // The host's own modal picker of a Config; it sets FatherInstanceNum and IsCanceled.
    virtual void SelectInstance(itfFBMethod& Method) = 0;
    virtual void AddInstance(FBInstanceRecord& Record) = 0;
    virtual void DeleteInstance(int32_t InstanceNum) = 0;
    virtual void UpdateInstance(FBInstanceRecord& Record) = 0;
    virtual void ShowFBHelp(int32_t id) = 0;
};

using InstancesPtr = std::shared_ptr<itfFBInstances>;

}  // namespace qx
