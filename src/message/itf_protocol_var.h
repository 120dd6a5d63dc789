// The interface of every field of a message. A message and the message sets
// know fields only through it: they place a field, ask its length, ask it
// for its record of an image, and give it its record back on load.
#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "platform/basics/bytes.h"
#include "platform/host/host_contract.h"

namespace qx {

class itfProtocolVar;
using VarPtr = std::shared_ptr<itfProtocolVar>;

// Field kinds by the number a field has in an image.
namespace segment {
// Send image
inline constexpr int32_t SendText = 0;
inline constexpr int32_t SendBinary = 1;
inline constexpr int32_t SendList = 2;
inline constexpr int32_t SendDate = 3;
inline constexpr int32_t SendTime = 4;
inline constexpr int32_t SendNumeric = 5;
inline constexpr int32_t Checksum = 6;
// Scan image
inline constexpr int32_t ScanText = 0;
inline constexpr int32_t ScanNumericFixed = 1;
inline constexpr int32_t ScanNumericFree = 2;
inline constexpr int32_t ScanChecksum = 3;
inline constexpr int32_t ScanStreamFixed = 4;
inline constexpr int32_t ScanStreamFree = 5;
}  // namespace segment

// The side of a message set: 0 Send, 1 Scan.
namespace method_type {
inline constexpr int32_t Send = 0;
inline constexpr int32_t Scan = 1;
}  // namespace method_type

// Display colours (OLE colours).
inline constexpr uint32_t FieldBackColor = 0x8000000F;  // system colour of a button face
inline constexpr uint32_t ChecksumBackColor = 0xFFC0C0;
inline constexpr uint32_t FieldForeColor = 0;

class itfProtocolVar {
public:
    virtual ~itfProtocolVar() = default;
    // Loads the field from the image at that index, then recomputes Length.
    virtual void SetVarBinData(Bytes& pBinaryData, int32_t pVarTblIndex) = 0;
    // The field's record; the index is where the record will lie in the image.
    virtual Bytes GetVarBinData(int32_t pVarTblIndex) = 0;
    virtual void PositionInBinArray(int32_t value) = 0;
    virtual int32_t PositionInBinArray() = 0;
    virtual int32_t Length() = 0;
    virtual bool IsCanceled() = 0;
    virtual void IsCanceled(bool value) = 0;
    virtual void StartPosition(int32_t value) = 0;
    virtual int32_t StartPosition() = 0;
    virtual bool HitTest(int32_t pPosition) = 0;
    virtual void IsSelected(bool value) = 0;
    virtual bool IsSelected() = 0;
    virtual void GetVarProps(int32_t& pStartPosition, int32_t& pLength, bool& pIsSelected, std::wstring& pDisplayString,
                             std::wstring& pToolTipText) = 0;
    virtual void GetVarPropsEX(int32_t& pStartPosition, int32_t& pLength, bool& pIsSelected,
                               std::wstring& pDisplayString, std::wstring& pToolTipText, uint32_t& pVarBackColor,
                               uint32_t& pVarForeColor) = 0;
    virtual void Shift(int32_t pDirection) = 0;
    virtual VarPtr GetReplica() = 0;
    // Gives a replica of the field to the field dialog and answers what the
    // dialog returns: perhaps a field of another class, with IsCanceled set
    // on Cancel. The field itself stays as it was.
    virtual VarPtr EditVar(int32_t pMethodType) = 0;
    virtual void AddOperandsToFindOnlyCollection(OperandCollection& pOperandsForFindOnly) = 0;
    virtual int32_t GetVarSegmentType() = 0;
    virtual void MethodType(int32_t value) = 0;
    virtual void ReplaceOperands(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress, int32_t pNewOpAddress) = 0;
    virtual void VERSION(int32_t value) = 0;
    virtual void IsVar(bool value) = 0;
    virtual void ActualMethodType(int32_t value) = 0;
};

}  // namespace qx
