#include "framework/families.h"

#include <utility>

#include "framework/runtime_catalogue.h"

namespace qx {

FBFatherBase::FBFatherBase(FamilyWords words) : words_(std::move(words)) {}

void FBFatherBase::itfFBFather_InitProperties(itfFBGate& pGate) {
    familyNumber_ = words_.FamilyNumber;
    fatherID_ = pGate.itfFBGate_GateID() + 100 * familyNumber_;
    fatherName_ = words_.FatherName;
    title_ = words_.Title;
    description_ = GetText(words_.DescriptionText);
    instanceType_ = words_.InstanceType;
    PicturePtr ladderImage, ladderImageSelected;  // a family has no ladder pictures to keep
    LoadFBImages(fatherID_, menuIcon_, ladderImage, ladderImageSelected);
    currentHexFileVersion_ = ReadCurrentHexFileVersion(fatherID_);
    hexFileVersionsList_ = ReadHexFileVersionsList(fatherID_);
}

MethodPtr FBFatherBase::itfFBFather_GetFBMethodObject(int32_t FBMethodID) {
    MethodPtr method = createMethod(FBMethodID % 100);
    if (method) method->itfFBMethod_InitProperties(*this);
    return method;
}

MethodCollectionPtr FBFatherBase::itfFBFather_GetFBmethodsCollection() {
    auto methods = newCollection<MethodPtr>();
    for (int32_t methodNumber = 1; methodNumber <= words_.MethodCount; ++methodNumber) {
        MethodPtr method = createMethod(methodNumber);
        method->itfFBMethod_InitProperties(*this);
        methods->Add(method, std::to_wstring(method->itfFBMethod_MethodID()));
    }
    return methods;
}

FBHexFileDetails FBFatherBase::itfFBFather_GetHexFileDetails(int32_t HexFileVersion) {
    return srvGetHexFileDetails(fatherID_, HexFileVersion);
}

}  // namespace qx
