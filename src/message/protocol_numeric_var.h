// The numeric field of a Send message: how the controller turns the value of
// a linked operand (or a vector of them) into characters or raw bytes. The
// controller gets this description as a 17-byte record in the segment table.
#pragma once
#include <cstdint>
#include <memory>

#include "message/field_state.h"

namespace qx {

class clsProtocolNumericVar : public FieldState {
public:
    clsProtocolNumericVar();

    // itfProtocolVar
    void SetVarBinData(Bytes& pBinaryData, int32_t pVarTblIndex) override;
    Bytes GetVarBinData(int32_t pVarTblIndex) override;
    VarPtr GetReplica() override;
    void AddOperandsToFindOnlyCollection(OperandCollection& pOperandsForFindOnly) override;
    int32_t GetVarSegmentType() override;
    void ReplaceOperands(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress, int32_t pNewOpAddress) override;

    using FieldState::Length;

    // Writing LeadingZeros leaves Length as it is; every other setting below recomputes it.
    int32_t LeadingZeros() const { return leadingZeros_; }
    void LeadingZeros(int32_t value) { leadingZeros_ = value; }
    OperandPtr LikedOperand() const { return likedOperand_; }
    void LikedOperand(OperandPtr value) { likedOperand_ = std::move(value); }
    int32_t BeforePoint() const { return beforePoint_; }
    void BeforePoint(int32_t value);
    int32_t AfterPoint() const { return afterPoint_; }
    void AfterPoint(int32_t value);
    int32_t PrefixSignFormat() const { return prefixSignFormat_; }
    void PrefixSignFormat(int32_t value);
    int32_t VectorLength() const { return vectorLength_; }
    void VectorLength(int32_t value);
    int32_t VarFormat() const { return varFormat_; }
    void VarFormat(int32_t value);
    int32_t StreamVectorLength() const { return streamVectorLength_; }
    void StreamVectorLength(int32_t value);
    // -1: the count is direct; otherwise the address of a type 3 operand holding it.
    int32_t StreamLengthAddress() const { return streamLengthAddress_; }
    void StreamLengthAddress(int32_t value);
    int32_t CopyBytesFormat() const { return copyBytesFormat_; }
    void CopyBytesFormat(int32_t value);
    int32_t StreamForm() const { return streamForm_; }
    void StreamForm(int32_t value);

    static constexpr int32_t RecordSize = 17;

private:
    void recomputeLength();

    OperandPtr likedOperand_;
    int32_t streamForm_ = 0;
    int32_t varFormat_ = 0;
    int32_t beforePoint_ = 5;
    int32_t afterPoint_ = 0;
    int32_t prefixSignFormat_ = 1;
    int32_t leadingZeros_ = 0;
    int32_t vectorLength_ = 1;
    int32_t streamVectorLength_ = 1;
    int32_t streamLengthAddress_ = -1;
    int32_t copyBytesFormat_ = 0;
};

using NumericVarPtr = std::shared_ptr<clsProtocolNumericVar>;

}  // namespace qx
