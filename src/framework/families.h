// What the two function-block families do alike. A family hands out its
// operations by MethodID and the runtime files of its versions; it keeps
// nothing but what its InitProperties computed. The families themselves
// stand beside their operations: clsProtocolFather in serial/,
// clsEthProtocolFather in tcpip/.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "platform/basics/object_count.h"
#include "platform/host/host_contract.h"

namespace qx {

// What both families do alike; a family is told by its number and its words.
class FBFatherBase : public itfFBFather, protected CountedObject {
public:
    MethodCollectionPtr itfFBFather_GetFBmethodsCollection() override;
    // Only the last two digits of the id count; nothing for an unknown number.
    MethodPtr itfFBFather_GetFBMethodObject(int32_t FBMethodID) override;
    std::wstring itfFBFather_FatherName() override { return fatherName_; }
    std::wstring itfFBFather_Title() override { return title_; }
    std::wstring itfFBFather_Description() override { return description_; }
    int32_t itfFBFather_FatherID() override { return fatherID_; }
    int32_t itfFBFather_InstanceType() override { return instanceType_; }
    std::vector<int32_t> itfFBFather_HexFileVersionsList() override { return hexFileVersionsList_; }
    int32_t itfFBFather_CurrentHexFileVersion() override { return currentHexFileVersion_; }
    PicturePtr itfFBFather_MenuIcon() override { return menuIcon_; }
    Bytes itfFBFather_AdditionalData() override { return {}; }
    void itfFBFather_AdditionalData(const Bytes&) override {}
    FBHexFileDetails itfFBFather_GetHexFileDetails(int32_t HexFileVersion) override;
    // Reads the runtime ini at this moment; a missing key ends it with a type mismatch.
    void itfFBFather_InitProperties(itfFBGate& pGate) override;
    void itfFBFather_PrintFB(const Variant&) override {}
    void itfFBFather_Execute(const Variant&) override {}

    int32_t FamilyNumber() const { return familyNumber_; }

protected:
    struct FamilyWords {
        int32_t FamilyNumber;
        std::wstring FatherName;
        std::wstring Title;
        int32_t DescriptionText;
        int32_t InstanceType;
        int32_t MethodCount;  // method numbers 1 to MethodCount exist
    };
    explicit FBFatherBase(FamilyWords words);
    // A new, not yet initialised operation of this method number; nullptr for none.
    virtual MethodPtr createMethod(int32_t methodNumber) const = 0;

private:
    FamilyWords words_;
    int32_t familyNumber_ = 0;
    int32_t fatherID_ = 0;
    std::wstring fatherName_, title_, description_;
    int32_t instanceType_ = 0;
    PicturePtr menuIcon_;
    int32_t currentHexFileVersion_ = 0;
    std::vector<int32_t> hexFileVersionsList_;
};

}  // namespace qx
