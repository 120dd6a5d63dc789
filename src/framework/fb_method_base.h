// What every operation class of both families holds and does alike: the
// fields set by InitProperties, the operand collections, the blocks, the
// order of calls. An operation describes itself with an FBMethodInfo and its
// operands with OperandSpecs; the classes add only what is their own.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/basics/object_count.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_contract.h"

namespace qx {

// One operand slot of an operation, in OutOperands order.
struct OperandSpec {
    int32_t TypeAtCreation;
    std::vector<int32_t> AllowedTypes;   // mode 1, always
    std::vector<int32_t> ExtendedTypes;  // mode 1, when extended operands are on
    int32_t TextNumber;
    bool Visible;
};

struct FBMethodInfo {
    int32_t MethodNumber;
    std::wstring Title;
    std::wstring Description;
    int32_t MethodNameText;
    int32_t VisbleInCout;
    int32_t VisbleOutCout;
    bool HasBinaryImage;  // false: BinaryOperands reads empty and ignores a Let
    bool AnswersBusBar;   // answers "FB Method Not Allowed On BUSBAR"
    std::vector<OperandSpec> OutOperandSpecs;
};

class FBMethodBase : public itfFBMethod, protected CountedObject {
public:
    explicit FBMethodBase(FBMethodInfo info);

    std::wstring itfFBMethod_Description() override { return description_; }
    std::wstring itfFBMethod_Title() override { return title_; }
    std::wstring itfFBMethod_MethodName() override { return methodName_; }
    int32_t itfFBMethod_MethodID() override { return methodID_; }
    bool itfFBMethod_IsCanceled() override { return isCanceled_; }
    void itfFBMethod_IsCanceled(bool value) override { isCanceled_ = value; }
    bool itfFBMethod_IsNew() override { return isNew_; }
    OperandCollectionPtr itfFBMethod_InOperands() override { return inOperands_; }
    void itfFBMethod_InOperands(OperandCollectionPtr value) override { inOperands_ = std::move(value); }
    OperandCollectionPtr itfFBMethod_OutOperands() override { return outOperands_; }
    void itfFBMethod_OutOperands(OperandCollectionPtr value) override { outOperands_ = std::move(value); }
    int32_t itfFBMethod_VisbleInCout() override { return visbleInCout_; }
    int32_t itfFBMethod_VisbleOutCout() override { return visbleOutCout_; }
    OperandCollectionPtr itfFBMethod_VisbleInOperands() override { return visbleInOperands_; }
    OperandCollectionPtr itfFBMethod_VisbleOutOperands() override { return visbleOutOperands_; }
    OperandCollectionPtr itfFBMethod_OperandsForFindOnly() override { return operandsForFindOnly_; }
    PicturePtr itfFBMethod_LadderImage() override { return ladderImage_; }
    PicturePtr itfFBMethod_LadderImageSelected() override { return ladderImageSelected_; }
    PicturePtr itfFBMethod_MenuIcon() override { return menuIcon_; }
    bool itfFBMethod_IsEnableInEnableOut() override { return isEnableInEnableOut_; }
    bool itfFBMethod_IsConducting() override { return isConducting_; }
    void itfFBMethod_IsConducting(bool value) override { isConducting_ = value; }
    // Fills the visible collections from OutOperands and sets the allowed types.
    void itfFBMethod_BuildOperands() override;
    // Makes the operation new, with fresh operands of the slot table.
    void itfFBMethod_CreateDummyOperands() override;
    Bytes itfFBMethod_AdditionalData() override { return {}; }
    void itfFBMethod_AdditionalData(const Bytes&) override {}
    Bytes itfFBMethod_InstanceData() override { return {}; }
    Bytes itfFBMethod_BinaryOperands() override { return binaryOperands_; }
    void itfFBMethod_BinaryOperands(const Bytes& value) override;
    std::wstring itfFBMethod_FatherTitle() override { return fatherTitle_; }
    int32_t itfFBMethod_HexFileVersion() override { return hexFileVersion_; }
    void itfFBMethod_HexFileVersion(int32_t value) override { hexFileVersion_ = value; }
    int32_t itfFBMethod_FatherInstanceNum() override { return fatherInstanceNum_; }
    // Also fetches the instance's name from the host.
    void itfFBMethod_FatherInstanceNum(int32_t value) override;
    std::wstring itfFBMethod_FatherInstanceName() override { return fatherInstanceName_; }
    int32_t itfFBMethod_FatherInstanceType() override { return fatherInstanceType_; }
    void itfFBMethod_Init(InstancesPtr pFBserver) override;
    void itfFBMethod_InitProperties(itfFBFather& pFather) override;
    void itfFBMethod_Delete() override {}
    std::wstring itfFBMethod_FatherName() override { return fatherName_; }
    void itfFBMethod_FatherName(const std::wstring& value) override { fatherName_ = value; }
    void itfFBMethod_PrintFB(const Variant&) override {}
    void itfFBMethod_Execute(VariantArray& pParams) override;

    int32_t MethodNumber() const { return info_.MethodNumber; }
    const InstancesPtr& Instances() const { return instances_; }

protected:
    // The host's side of the instances that Init gave; error 91 without one.
    itfFBInstances& requiredInstances() const { return objectOf(instances_); }
    // "ReplaceFindOnlyOperand": the operations with a message set rewrite their image.
    virtual void replaceFindOnlyOperand(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress, int32_t pNewOpAddress);
    // Sets the allowed types, caption and title of one out operand by its slot.
    static void applyOperandSpec(clsOperand& operand, const OperandSpec& slot);
    void newOperandsForFindOnly() { operandsForFindOnly_ = newCollection<OperandPtr>(); }
    void setIsNew(bool value) { isNew_ = value; }
    void setBinaryOperands(Bytes value) { binaryOperands_ = std::move(value); }
    const FBMethodInfo& info() const { return info_; }

    // EditOperands of the operations whose image is a message set (the
    // Send and Scan of both families). The set is built from the image
    // unless the operation is new, and its dialog runs on it; OK takes the
    // set's image back (the set fills OperandsForFindOnly itself), Cancel
    // leaves the image as it was. The Config chosen in the dialog and the
    // links of the operation's own operands are made in the operation at
    // once, so they stay after a Cancel.
    template <class MessageSet>
    void editThroughMessageSet() {
        MessageSet set;
        newOperandsForFindOnly();
        if (!itfFBMethod_IsNew()) set.BinaryData(itfFBMethod_BinaryOperands());
        const bool confirmed = set.Edit(*this, Instances());
        itfFBMethod_IsCanceled(!confirmed);
        if (confirmed) {
            setBinaryOperands(set.BinaryData());
            setIsNew(false);
        }
    }

    // "ReplaceFindOnlyOperand" of the same operations: the image follows a
    // moved operand, which the host moves itself. An operation that no edit
    // has confirmed has no image and so no link to follow; it gets no
    // default image here. A broken image raises the reader's error before
    // anything is stored.
    template <class MessageSet>
    void replaceInMessageSetImage(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress, int32_t pNewOpAddress) {
        const Bytes image = itfFBMethod_BinaryOperands();
        if (image.empty()) return;
        MessageSet set;
        set.BinaryData(image);
        set.ReplaceOperands(pOpNetID, pOpType, pOpAddress, pNewOpAddress);
        setBinaryOperands(set.BinaryData());
    }

    OperandCollectionPtr inOperands_, outOperands_, visbleInOperands_, visbleOutOperands_, operandsForFindOnly_;

private:
    FBMethodInfo info_;
    std::wstring title_, description_, methodName_, fatherTitle_, fatherName_, fatherInstanceName_;
    int32_t methodID_ = 0;
    int32_t fatherInstanceType_ = 0;
    int32_t visbleInCout_ = 0, visbleOutCout_ = 0;
    // Kept beside the visible counts and read by nobody.
    int32_t inOperandCount_ = 0, outOperandCount_ = 0;
    int32_t hexFileVersion_ = 0;
    int32_t fatherInstanceNum_ = 0;
    bool isEnableInEnableOut_ = false;
    bool isCanceled_ = false;
    bool isNew_ = false;
    bool isConducting_ = false;
    PicturePtr menuIcon_, ladderImage_, ladderImageSelected_;
    InstancesPtr instances_;
    Bytes binaryOperands_;
};

// The out operand at a 1-based place, never nothing: a missing collection
// reads as an empty one (the collection's error 5), an empty place is error 91.
OperandPtr outOperandAt(itfFBMethod& method, int32_t index);

}  // namespace qx
