#include "framework/families.h"

#include <utility>

#include "framework/runtime_catalogue.h"
#include "serial/protocol_config.h"
#include "serial/protocol_copy_to_buffer.h"
#include "serial/protocol_reset_buffer.h"
#include "serial/protocol_scan.h"
#include "serial/protocol_send.h"
#include "tcpip/eth_protocol_config.h"
#include "tcpip/eth_protocol_scan.h"
#include "tcpip/eth_protocol_send.h"

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

clsProtocolFather::clsProtocolFather() : FBFatherBase({1, L"Protocol", L"PROTOCOL", 328, 2, 5}) {}

MethodPtr clsProtocolFather::createMethod(int32_t methodNumber) const {
    switch (methodNumber) {
        case 1:
            return std::make_shared<clsProtocolConfig>();
        case 2:
            return std::make_shared<clsProtocolscan>();
        case 3:
            return std::make_shared<clsProtocolSend>();
        case 4:
            return std::make_shared<clsProtocolCopyToBuffer>();
        case 5:
            return std::make_shared<clsProtocolResetBuffer>();
        default:
            return nullptr;
    }
}

clsEthProtocolFather::clsEthProtocolFather() : FBFatherBase({2, L"Protocol TCP/IP", L"P. TCP/IP", 593, 3, 3}) {}

MethodPtr clsEthProtocolFather::createMethod(int32_t methodNumber) const {
    switch (methodNumber) {
        case 1:
            return std::make_shared<clsEthProtocolConfig>();
        case 2:
            return std::make_shared<clsEthProtocolScan>();
        case 3:
            return std::make_shared<clsEthProtocolSend>();
        default:
            return nullptr;
    }
}

}  // namespace qx
