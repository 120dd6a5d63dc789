// Small functions that the dialogs and the message model share.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/host/host_context.h"
#include "platform/host/operand.h"

namespace qx {

class Form;
class ComboBox;

// The text a dialog shows for an operand link.
std::wstring GetOperandDisplayText(const clsOperand& operand);
// A deep copy that shares nothing with the original.
OperandPtr CloneOperand(const clsOperand& operand);
// True for the constant types 15, 34, 35, 37, 38.
bool IsConstantOperandType(int32_t operandType);
// Runs the picker; a link that changed is released from the host's table
// through a stand-alone copy of the old identity.
void EditOperandChecked(OperandPtr& operand);
bool IsExtendedOperandsEnabled();
// Whether the name holds a character the host cannot store in an instance
// name: ' ~ | ".
bool hasForbiddenNameCharacter(const std::wstring& name);
// The byte counts one linked element may take or give when bytes are copied
// between a message and a vector of operands: 1 and 2 for a word register
// (types 3, 65), 1, 2 and 4 for a long one (5, 16, 66, 67), none otherwise.
std::vector<int32_t> copyByteCountsFor(int32_t operandType);
// Index of the first item with this item data; 0 when there is none.
int32_t FindComboIndex(const ComboBox& combo, int32_t itemData);
// Gives a form and every control on it the host's font.
void ApplyDialogFont(Form& form);
PicturePtr GetDialogIcon(int32_t N);
// Horizontal and vertical pixels per inch over 96.
float GetDpiScaleX();
float GetDpiScaleY();
std::wstring GetEndOfMessageText(int32_t type);
std::wstring GetDateFormatText(int32_t type);
std::wstring GetTimeFormatText(int32_t type);
// The same texts as views of constants, for a field that needs only their
// length (a loaded image sets one per date or time field).
std::wstring_view dateFormatView(int32_t type);
std::wstring_view timeFormatView(int32_t type);

}  // namespace qx
