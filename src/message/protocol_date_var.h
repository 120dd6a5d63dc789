// The date field of a Send message: the controller writes its current date
// in the chosen format. It has no operand; its 17-byte record holds the
// format number alone.
#pragma once
#include <cstdint>
#include <memory>

#include "message/field_state.h"

namespace qx {

class clsProtocolDateVar : public FieldState {
public:
    clsProtocolDateVar();

    // itfProtocolVar
    void SetVarBinData(Bytes& pBinaryData, int32_t pVarTblIndex) override;
    Bytes GetVarBinData(int32_t pVarTblIndex) override;
    VarPtr GetReplica() override;
    void AddOperandsToFindOnlyCollection(OperandCollection& pOperandsForFindOnly) override;
    int32_t GetVarSegmentType() override;
    void ReplaceOperands(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress, int32_t pNewOpAddress) override;

    using FieldState::Length;

    // 2 to 7; writing it makes Length the length of its format text (0 for any other number).
    int32_t DateFormatType() const { return dateFormatType_; }
    void DateFormatType(int32_t value);

    static constexpr int32_t RecordSize = 17;

private:
    int32_t dateFormatType_ = 6;
};

using DateVarPtr = std::shared_ptr<clsProtocolDateVar>;

}  // namespace qx
