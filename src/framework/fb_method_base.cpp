#include "framework/fb_method_base.h"

#include "framework/runtime_catalogue.h"
#include "framework/shared_helpers.h"

namespace qx {

FBMethodBase::FBMethodBase(FBMethodInfo info) : info_(std::move(info)) {}

void FBMethodBase::itfFBMethod_InitProperties(itfFBFather& pFather) {
    title_ = info_.Title;
    description_ = info_.Description;
    methodID_ = pFather.itfFBFather_FatherID() + info_.MethodNumber;
    methodName_ = GetText(info_.MethodNameText);
    fatherTitle_ = pFather.itfFBFather_Title();
    fatherName_ = pFather.itfFBFather_FatherName();
    fatherInstanceType_ = pFather.itfFBFather_InstanceType();
    visbleInCout_ = inOperandCount_ = info_.VisbleInCout;
    visbleOutCout_ = outOperandCount_ = info_.VisbleOutCout;
    hexFileVersion_ = 100;
    isEnableInEnableOut_ = true;
    LoadFBImages(methodID_, menuIcon_, ladderImage_, ladderImageSelected_);
    newOperandsForFindOnly();
}

void FBMethodBase::itfFBMethod_Init(InstancesPtr pFBserver) {
    instances_ = std::move(pFBserver);
    requiredInstances().AttachMethod(methodID_);
}

void FBMethodBase::itfFBMethod_CreateDummyOperands() {
    isNew_ = true;
    inOperands_ = newCollection<OperandPtr>();
    outOperands_ = newCollection<OperandPtr>();
    visbleInOperands_ = newCollection<OperandPtr>();
    visbleOutOperands_ = newCollection<OperandPtr>();
    int32_t key = 0;
    for (const auto& slot : info_.OutOperandSpecs) {
        auto operand = newOperand();
        operand->IsNew(true);
        operand->OperandMode(1);
        operand->OperandType(slot.TypeAtCreation);
        operand->OperandDescription(GetText(slot.TextNumber));
        outOperands_->Add(operand, std::to_wstring(++key));
        if (slot.Visible) visbleOutOperands_->Add(operand);
    }
}

void FBMethodBase::applyOperandSpec(clsOperand& operand, const OperandSpec& slot) {
    for (int32_t type : slot.AllowedTypes) operand.AddAllowedType(1, type, true);
    if (IsExtendedOperandsEnabled())
        for (int32_t type : slot.ExtendedTypes) operand.AddAllowedType(1, type, true);
    std::wstring text = GetText(slot.TextNumber);
    operand.OperandCaption(text);
    operand.OperandTitle(text);
}

void FBMethodBase::itfFBMethod_BuildOperands() {
    visbleInOperands_ = newCollection<OperandPtr>();
    visbleOutOperands_ = newCollection<OperandPtr>();
    int32_t index = 0;
    for (const auto& slot : info_.OutOperandSpecs) {
        // A host that gives fewer operands than the table meets the collection's error here.
        OperandPtr operand = outOperandAt(*this, ++index);
        applyOperandSpec(*operand, slot);
        if (slot.Visible) visbleOutOperands_->Add(operand);
    }
}

void FBMethodBase::itfFBMethod_BinaryOperands(const Bytes& value) {
    if (info_.HasBinaryImage) binaryOperands_ = value;
}

void FBMethodBase::itfFBMethod_FatherInstanceNum(int32_t value) {
    fatherInstanceNum_ = value;
    std::wstring name;
    if (instances_) instances_->GetInstanceName(value, name);
    fatherInstanceName_ = name;
}

void FBMethodBase::itfFBMethod_Execute(VariantArray& pParams) {
    if (pParams.empty() || !pParams[0].Is<std::wstring>()) return;
    const std::wstring& command = pParams[0].Get<std::wstring>();
    if (command == L"FB Method Not Allowed On BUSBAR") {
        // Only an array whose upper bound is exactly 1 gets the answer.
        if (info_.AnswersBusBar && pParams.size() == 2) pParams[1] = true;
    } else if (command == L"ReplaceFindOnlyOperand" && pParams.size() >= 5) {
        replaceFindOnlyOperand(pParams[1].ToI4(), pParams[2].ToI4(), pParams[3].ToI4(), pParams[4].ToI4());
    }
}

void FBMethodBase::replaceFindOnlyOperand(int32_t, int32_t, int32_t, int32_t) {}

OperandPtr outOperandAt(itfFBMethod& method, int32_t index) {
    OperandCollectionPtr operands = method.itfFBMethod_OutOperands();
    if (!operands) raiseError(err::InvalidProcedureCall);
    OperandPtr operand = operands->Item(index);
    if (!operand) raiseError(err::ObjectNotSet);
    return operand;
}

}  // namespace qx
