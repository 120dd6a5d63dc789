// The time field of a Send message: the controller writes its current time
// in the chosen format. It has no operand; its 17-byte record holds the
// format number alone.
#pragma once
#include <cstdint>
#include <memory>

#include "message/field_state.h"

namespace qx {

class clsProtocolTimeVar : public FieldState {
public:
    clsProtocolTimeVar();

    // itfProtocolVar
    void SetVarBinData(Bytes& pBinaryData, int32_t pVarTblIndex) override;
    Bytes GetVarBinData(int32_t pVarTblIndex) override;
    VarPtr GetReplica() override;
    void AddOperandsToFindOnlyCollection(OperandCollection& pOperandsForFindOnly) override;
    int32_t GetVarSegmentType() override;
    void ReplaceOperands(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress, int32_t pNewOpAddress) override;

    using FieldState::Length;

    // 0 or 1; writing it makes Length the length of its format text (0 for any other number).
    int32_t TimeFormatType() const { return timeFormatType_; }
    void TimeFormatType(int32_t value);

    static constexpr int32_t RecordSize = 17;

private:
    int32_t timeFormatType_ = 0;
};

using TimeVarPtr = std::shared_ptr<clsProtocolTimeVar>;

}  // namespace qx
