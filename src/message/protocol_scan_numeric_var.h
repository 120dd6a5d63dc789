// The numeric field of a Scan message: how the controller takes characters
// or raw bytes of a received message into a linked operand (or a vector of
// them). Its record is 20 bytes in the Scan segment table.
#pragma once
#include <cstdint>
#include <memory>

#include "message/field_state.h"

namespace qx {

class clsProtocolScanNumericVar : public FieldState {
public:
    clsProtocolScanNumericVar();

    // itfProtocolVar
    void SetVarBinData(Bytes& pBinaryData, int32_t pVarTblIndex) override;
    Bytes GetVarBinData(int32_t pVarTblIndex) override;
    VarPtr GetReplica() override;
    void AddOperandsToFindOnlyCollection(OperandCollection& pOperandsForFindOnly) override;
    int32_t GetVarSegmentType() override;
    void ReplaceOperands(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress, int32_t pNewOpAddress) override;

    using FieldState::Length;

    bool AddNullToEndOfStream() const { return addNullToEndOfStream_; }
    void AddNullToEndOfStream(bool value) { addNullToEndOfStream_ = value; }
    // Kept and copied only: no record holds it.
    int32_t LeadingZeros() const { return leadingZeros_; }
    void LeadingZeros(int32_t value) { leadingZeros_ = value; }
    OperandPtr LikedOperand() const { return likedOperand_; }
    void LikedOperand(OperandPtr value) { likedOperand_ = std::move(value); }
    OperandPtr DecimalPointOperand() const { return decimalPoint(); }
    void DecimalPointOperand(OperandPtr value) { decimalPointOperand_ = std::move(value); }
    int32_t BeforePoint() const { return beforePoint_; }
    void BeforePoint(int32_t value);
    // Kept and copied; it counts neither in Length nor in the record.
    int32_t AfterPoint() const { return afterPoint_; }
    void AfterPoint(int32_t value);
    int32_t PrefixSignFormat() const { return prefixSignFormat_; }
    void PrefixSignFormat(int32_t value);
    int32_t VectorLength() const { return vectorLength_; }
    void VectorLength(int32_t value);
    // 0 decimal fixed, 1 decimal free, 2 hex, 3 stream fixed, 4 stream free.
    int32_t VarFormat() const { return varFormat_; }
    void VarFormat(int32_t value);
    int32_t StreamVectorLength() const { return streamVectorLength_; }
    void StreamVectorLength(int32_t value);
    int32_t CopyBytesFormat() const { return copyBytesFormat_; }
    void CopyBytesFormat(int32_t value);
    int32_t StreamForm() const { return streamForm_; }
    void StreamForm(int32_t value);

    static constexpr int32_t RecordSize = 20;

protected:
    // A display code that nothing sets: Length characters of code 0.
    std::wstring displayString() override;

private:
    void recomputeLength();

    // Made when first asked for or loaded, with the host's setting as it was
    // when the field was made: most fields never link one.
    const OperandPtr& decimalPoint() const;

    OperandPtr likedOperand_;
    mutable OperandPtr decimalPointOperand_;
    bool extendedOperands_;
    int32_t streamForm_ = 0;
    int32_t varFormat_ = 0;
    int32_t beforePoint_ = 5;
    int32_t afterPoint_ = 0;
    int32_t prefixSignFormat_ = 1;
    int32_t leadingZeros_ = 0;
    int32_t vectorLength_ = 1;
    int32_t streamVectorLength_ = 1;
    int32_t copyBytesFormat_ = 0;
    bool addNullToEndOfStream_ = false;
};

using ScanNumericVarPtr = std::shared_ptr<clsProtocolScanNumericVar>;

}  // namespace qx
