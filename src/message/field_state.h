// What every field of a message keeps in the same way: its place, its length,
// its selection and cancel marks, and the small operations of the field
// interface that act on them alone. Each field class derives from it and
// adds its own settings and record; nothing of a record lives here.
#pragma once
#include <cstdint>
#include <initializer_list>
#include <string>

#include "message/itf_protocol_var.h"
#include "platform/host/operand.h"

namespace qx {

class FieldState : public itfProtocolVar {
public:
    void PositionInBinArray(int32_t value) override { positionInBinArray_ = value; }
    int32_t PositionInBinArray() override { return positionInBinArray_; }
    int32_t Length() override { return length_; }
    // Stores the value as it is; a setting written afterwards recomputes it.
    void Length(int32_t value) { length_ = value; }
    bool IsCanceled() override { return isCanceled_; }
    void IsCanceled(bool value) override { isCanceled_ = value; }
    // Moves nothing else: the message moves its fields.
    void StartPosition(int32_t value) override { startPosition_ = value; }
    int32_t StartPosition() override { return startPosition_; }
    bool HitTest(int32_t pPosition) override;
    void IsSelected(bool value) override { isSelected_ = value; }
    bool IsSelected() override { return isSelected_; }
    // The grid reads GetVarPropsEX; this older form answers nothing.
    void GetVarProps(int32_t& pStartPosition, int32_t& pLength, bool& pIsSelected, std::wstring& pDisplayString,
                     std::wstring& pToolTipText) override;
    void GetVarPropsEX(int32_t& pStartPosition, int32_t& pLength, bool& pIsSelected, std::wstring& pDisplayString,
                       std::wstring& pToolTipText, uint32_t& pVarBackColor, uint32_t& pVarForeColor) override;
    // Fields never move themselves.
    void Shift(int32_t pDirection) override;
    // Every field class alike: a replica goes to the field dialog.
    VarPtr EditVar(int32_t pMethodType) override;
    // Only the checksum keeps these; every other field ignores them.
    void MethodType(int32_t) override {}
    void VERSION(int32_t) override {}
    void IsVar(bool) override {}
    void ActualMethodType(int32_t) override {}

protected:
    explicit FieldState(int32_t initialLength) : length_(initialLength) {}

    virtual std::wstring displayString() { return std::wstring(); }
    virtual uint32_t backColor() const { return FieldBackColor; }

    int32_t startPosition_ = 0;
    int32_t length_;
    bool isSelected_ = false;
    bool isCanceled_ = false;
    int32_t positionInBinArray_ = 0;
};

// A field's operand as the picker must offer it: mode 1 with the given types
// in order, then the extended types when the host has them switched on.
OperandPtr newFieldOperand(std::initializer_list<int32_t> types, std::initializer_list<int32_t> extendedTypes,
                           int32_t operandType);
// The same with the setting given: as it was when the field was made.
OperandPtr newFieldOperand(std::initializer_list<int32_t> types, std::initializer_list<int32_t> extendedTypes,
                           int32_t operandType, bool extendedOperands);
// Adds the operand under the key count + 1 when it is linked.
void addLinkedOperand(OperandCollection& collection, const OperandPtr& operand);
// Moves the operand to pNewOpAddress when its identity is the one given.
void replaceOperandAddress(clsOperand& operand, int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress,
                           int32_t pNewOpAddress);
// A record always names a link, so the operand loaded from it is linked.
void loadOperandLink(clsOperand& operand, int32_t operandType, int32_t operandAddress, bool registerIt);

// Texts in records: one ANSI byte a character, closed by a byte 0.
// A text of a record holds at most 255 characters: its length lies in one byte.
inline constexpr size_t MaxRecordTextLength = 255;
Bytes ansiBytes(const std::wstring& text);
std::wstring ansiText(const Bytes& bytes);

// The element sizes of the stream form, shared by the Send and Scan numeric
// fields. The property values 2 and 3 are crossed against their record codes.
int32_t copyBytesPerElement(int32_t copyBytesFormat);  // 0 outside the table
int32_t copyBytesRecordCode(int32_t copyBytesFormat);  // 0 outside the table
// The property value of a record code; a code outside the table gives fallback.
int32_t copyBytesFormatOfCode(int32_t code, int32_t fallback);

}  // namespace qx
