// The binary text field of a Send message: the controller sends one of two
// texts by the state of a linked bit. The field reserves room for the longer
// one; its record, with both texts, lies in the message's data area.
#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "message/field_state.h"

namespace qx {

class clsProtocolBinaryVar : public FieldState {
public:
    clsProtocolBinaryVar();

    // itfProtocolVar
    void SetVarBinData(Bytes& pBinaryData, int32_t pVarTblIndex) override;
    Bytes GetVarBinData(int32_t pVarTblIndex) override;
    VarPtr GetReplica() override;
    void AddOperandsToFindOnlyCollection(OperandCollection& pOperandsForFindOnly) override;
    int32_t GetVarSegmentType() override;
    void ReplaceOperands(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress, int32_t pNewOpAddress) override;

    using FieldState::Length;

    // A choice of the field dialog only; no record holds it.
    int32_t DefaultDisplay() const { return defaultDisplay_; }
    void DefaultDisplay(int32_t value) { defaultDisplay_ = value; }
    OperandPtr LikedOperand() const { return likedOperand_; }
    void LikedOperand(OperandPtr value) { likedOperand_ = std::move(value); }
    // Writing either text recomputes Length.
    std::wstring TextFor0() const { return textFor0_; }
    void TextFor0(const std::wstring& value);
    std::wstring TextFor1() const { return textFor1_; }
    void TextFor1(const std::wstring& value);

    // The record before its two texts.
    static constexpr int32_t RecordHeaderSize = 18;

private:
    void recomputeLength();

    OperandPtr likedOperand_;
    std::wstring textFor0_;
    std::wstring textFor1_;
    int32_t defaultDisplay_ = 0;
};

using BinaryVarPtr = std::shared_ptr<clsProtocolBinaryVar>;

}  // namespace qx
