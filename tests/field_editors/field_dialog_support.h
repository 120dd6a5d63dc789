// Helpers of the field dialog tests: a person's operand choice and a link
// made as a stored field holds it.
#pragma once
#include <cstdint>

#include "platform/host/host_context.h"
#include "platform/host/operand.h"

namespace qx::test {

// A memory operand as the picker gives it.
inline OperandChoice memory(int32_t type, int32_t address) {
    OperandChoice choice;
    choice.OperandType = type;
    choice.OperandAddress = address;
    return choice;
}

// Links the operand as a field of an image has it linked.
inline void link(clsOperand& operand, int32_t type, int32_t address) {
    operand.OperandType(type);
    operand.OperandAddress(address);
    operand.IsNew(false);
}

}  // namespace qx::test
