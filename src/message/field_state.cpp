#include "message/field_state.h"

#include "framework/shared_helpers.h"
#include "message/editor_hooks.h"
#include "platform/basics/ansi.h"

namespace qx {

bool FieldState::HitTest(int32_t pPosition) {
    // A field of Length 0 covers nothing, since the end lies before the start.
    return startPosition_ <= pPosition && pPosition <= startPosition_ + length_ - 1;
}

void FieldState::GetVarProps(int32_t&, int32_t&, bool&, std::wstring&, std::wstring&) {}

void FieldState::GetVarPropsEX(int32_t& pStartPosition, int32_t& pLength, bool& pIsSelected,
                               std::wstring& pDisplayString, std::wstring& pToolTipText, uint32_t& pVarBackColor,
                               uint32_t& pVarForeColor) {
    pStartPosition = startPosition_;
    pLength = length_;
    pIsSelected = isSelected_;
    pDisplayString = displayString();
    // The placeholder wording is the system's own and stays so.
    pToolTipText = L"Need to implement the ToolTip";
    pVarBackColor = backColor();
    pVarForeColor = FieldForeColor;
}

void FieldState::Shift(int32_t) {}

VarPtr FieldState::EditVar(int32_t pMethodType) {
    int32_t methodType = pMethodType;
    return runFieldEditor(GetReplica(), methodType);
}

OperandPtr newFieldOperand(std::initializer_list<int32_t> types, std::initializer_list<int32_t> extendedTypes,
                           int32_t operandType) {
    return newFieldOperand(types, extendedTypes, operandType, IsExtendedOperandsEnabled());
}

OperandPtr newFieldOperand(std::initializer_list<int32_t> types, std::initializer_list<int32_t> extendedTypes,
                           int32_t operandType, bool extendedOperands) {
    OperandPtr operand = newOperand();
    for (int32_t t : types) operand->AddAllowedType(1, t, true);
    if (extendedOperands)
        for (int32_t t : extendedTypes) operand->AddAllowedType(1, t, true);
    operand->OperandType(operandType);
    operand->OperandMode(1);
    operand->IsNew(true);
    operand->OperandFormat(3);
    return operand;
}

void addLinkedOperand(OperandCollection& collection, const OperandPtr& operand) {
    if (!operand || operand->IsNew()) return;
    collection.Add(operand, std::to_wstring(collection.Count() + 1));
}

void replaceOperandAddress(clsOperand& operand, int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress,
                           int32_t pNewOpAddress) {
    if (operand.OperandType() == pOpType && operand.OperandAddress() == pOpAddress &&
        operand.OperandNetID() == pOpNetID)
        operand.OperandAddress(pNewOpAddress);
}

void loadOperandLink(clsOperand& operand, int32_t operandType, int32_t operandAddress, bool registerIt) {
    operand.OperandType(operandType);
    operand.OperandAddress(operandAddress);
    // The dialog accepts a field only with its operand linked, so whatever a
    // record names was a link; the host's search must list it again.
    operand.IsNew(false);
    if (registerIt && !operand.IsRegistered()) {
        operand.OperandMode(1);
        operand.RegisterOperand();
    }
}

Bytes ansiBytes(const std::wstring& text) {
    Bytes out;
    out.reserve(text.size());
    for (wchar_t ch : text) out.push_back(toAnsiByte(ch));
    return out;
}

std::wstring ansiText(const Bytes& bytes) {
    std::wstring out;
    out.reserve(bytes.size());
    for (uint8_t b : bytes) out.push_back(fromAnsiByte(b));
    return out;
}

int32_t copyBytesPerElement(int32_t copyBytesFormat) {
    switch (copyBytesFormat) {
        case 0:
            return 1;
        case 1:
            return 2;
        case 3:
            return 3;
        case 2:
            return 4;
        case 5:
            return 4;
        default:
            return 0;
    }
}

int32_t copyBytesRecordCode(int32_t copyBytesFormat) {
    switch (copyBytesFormat) {
        case 0:
            return 1;
        case 1:
            return 2;
        case 3:
            return 3;
        case 2:
            return 4;
        case 5:
            return 5;
        default:
            return 0;
    }
}

int32_t copyBytesFormatOfCode(int32_t code, int32_t fallback) {
    switch (code) {
        case 1:
            return 0;
        case 2:
            return 1;
        case 3:
            return 3;
        case 4:
            return 2;
        case 5:
            return 5;
        default:
            return fallback;
    }
}

}  // namespace qx
