// The list-of-texts field of a Send message: the value of a linked operand
// picks one text of a list, and the controller sends it. Its record, with
// every text, lies in the message's data area.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "message/field_state.h"

namespace qx {

class clsProtocolistTextVar : public FieldState {
public:
    clsProtocolistTextVar();

    // itfProtocolVar
    void SetVarBinData(Bytes& pBinaryData, int32_t pVarTblIndex) override;
    Bytes GetVarBinData(int32_t pVarTblIndex) override;
    VarPtr GetReplica() override;
    void AddOperandsToFindOnlyCollection(OperandCollection& pOperandsForFindOnly) override;
    int32_t GetVarSegmentType() override;
    void ReplaceOperands(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress, int32_t pNewOpAddress) override;

    using FieldState::Length;

    // 0: the field is as long as its longest text; 1 or more fixes its length.
    // Writing it leaves Length as it is until the texts are written.
    int32_t AlignmentStringSize() const { return alignmentStringSize_; }
    void AlignmentStringSize(int32_t value) { alignmentStringSize_ = value; }
    // The whole list goes in and out as a copy; writing it recomputes Length.
    std::vector<std::wstring> Texts() const { return texts_; }
    void Texts(const std::vector<std::wstring>& value);
    // A choice of the field dialog only; no record holds it.
    int32_t DefaultDisplay() const { return defaultDisplay_; }
    void DefaultDisplay(int32_t value) { defaultDisplay_ = value; }
    OperandPtr LikedOperand() const { return likedOperand_; }
    void LikedOperand(OperandPtr value) { likedOperand_ = std::move(value); }

    // The record before its table of text entries.
    static constexpr int32_t RecordHeaderSize = 12;

private:
    void recomputeLength();

    OperandPtr likedOperand_;
    std::vector<std::wstring> texts_{std::wstring()};
    int32_t alignmentStringSize_ = 0;
    int32_t defaultDisplay_ = 0;
};

using ListTextVarPtr = std::shared_ptr<clsProtocolistTextVar>;

}  // namespace qx
