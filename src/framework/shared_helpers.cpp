#include "framework/shared_helpers.h"

#include "platform/basics/runtime_error.h"
#include "platform/host/host_services.h"

namespace qx {

std::wstring GetOperandDisplayText(const clsOperand& operand) {
    const bool isNew = operand.IsNew();
    const int32_t operandType = operand.OperandType();
    // An unlinked memory slot shows nothing; a constant always shows its value.
    if (isNew && !IsConstantOperandType(operandType)) return L"";
    switch (operandType) {
        case 34:
        case 35:
            return operand.OperandValueText() + L" : " + operand.OperandDescription();
        case 37:
        case 38:
            return L"#" + operand.OperandValueText();
        default:
            return clsOperandTypeNames().GetName(operandType) + L" " + std::to_wstring(operand.OperandAddress()) +
                   L" : " + operand.OperandDescription();
    }
}

OperandPtr CloneOperand(const clsOperand& operand) {
    OperandPtr copy = newOperand();
    copy->OperandType(operand.OperandType());
    copy->OperandAddress(operand.OperandAddress());
    copy->OperandNetID(operand.OperandNetID());
    copy->SetOperandState(operand.GetOperandState());
    // A registered link takes its mode and format from the host's table.
    if (!copy->IsRegistered()) {
        copy->OperandMode(operand.OperandMode());
        copy->OperandFormat(operand.OperandFormat());
    }
    return copy;
}

bool IsConstantOperandType(int32_t operandType) {
    switch (operandType) {
        case 15:
        case 34:
        case 35:
        case 37:
        case 38:
            return true;
        default:
            return false;
    }
}

void EditOperandChecked(OperandPtr& operand) {
    if (!operand) raiseError(err::ObjectNotSet);
    const int32_t oldAddress = operand->OperandAddress();
    const int32_t oldNetID = operand->OperandNetID();
    const int32_t oldType = operand->OperandType();
    if (IsConstantOperandType(oldType)) operand->OperandMode(2);
    operand->EditOperand();
    if (operand->IsEditCanceled()) return;
    if (operand->OperandAddress() == oldAddress && operand->OperandNetID() == oldNetID &&
        operand->OperandType() == oldType)
        return;
    // The host drops the old link from its table through a stand-alone copy of it.
    OperandPtr old = newOperand();
    old->OperandAddress(oldAddress);
    old->OperandNetID(oldNetID);
    old->OperandType(oldType);
    (void)old->IsRegistered();
    old->ReleaseOperand();
}

std::vector<int32_t> copyByteCountsFor(int32_t operandType) {
    switch (operandType) {
        case 3:
        case 65:
            return {1, 2};
        case 5:
        case 16:
        case 66:
        case 67:
            return {1, 2, 4};
        default:
            return {};
    }
}

bool hasForbiddenNameCharacter(const std::wstring& name) { return name.find_first_of(L"'~|\"") != std::wstring::npos; }

bool IsExtendedOperandsEnabled() { return clsEnvironment().IsExtendedOperandsEnabled(); }

PicturePtr GetDialogIcon(int32_t N) { return clsPictureTable().GetPicture(N); }

float GetDpiScaleX() { return static_cast<float>(GetDeviceCaps(88) / 96.0); }

float GetDpiScaleY() { return static_cast<float>(GetDeviceCaps(90) / 96.0); }

std::wstring GetEndOfMessageText(int32_t type) {
    switch (type) {
        case 1:
            return L"ETX";
        case 2:
            return L"Checksum & ETX";
        case 3:
            return L"ETX & Checksum";
        default:
            return L"";
    }
}

std::wstring_view dateFormatView(int32_t type) {
    switch (type) {
        case 2:
            return L"DDD";
        case 3:
            return L"DDDDDDDDD";
        case 4:
            return L"DD/MM";
        case 5:
            return L"MM/DD";
        case 6:
            return L"DD/MM/YY";
        case 7:
            return L"MM/DD/YY";
        default:
            return L"";
    }
}

std::wstring_view timeFormatView(int32_t type) {
    switch (type) {
        case 0:
            return L"HH:MM";
        case 1:
            return L"HH:MM:SS";
        default:
            return L"";
    }
}

std::wstring GetDateFormatText(int32_t type) { return std::wstring(dateFormatView(type)); }

std::wstring GetTimeFormatText(int32_t type) { return std::wstring(timeFormatView(type)); }

}  // namespace qx
