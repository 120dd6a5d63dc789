#include "message/protocol_time_var.h"

#include "framework/shared_helpers.h"

namespace qx {

// "HH:MM", the default format 0, is 5 positions long.
clsProtocolTimeVar::clsProtocolTimeVar() : FieldState(5) {}

void clsProtocolTimeVar::TimeFormatType(int32_t value) {
    timeFormatType_ = value;
    length_ = static_cast<int32_t>(timeFormatView(value).size());
}

Bytes clsProtocolTimeVar::GetVarBinData(int32_t) {
    Bytes record(RecordSize, 0);
    ByteWriter(record).u8(1, timeFormatType_);
    return record;
}

void clsProtocolTimeVar::SetVarBinData(Bytes& pBinaryData, int32_t pVarTblIndex) {
    // Record byte 1 lies two bytes behind the segment's type byte.
    TimeFormatType(ByteReader(pBinaryData).u8(static_cast<int64_t>(pVarTblIndex) + 2));
}

VarPtr clsProtocolTimeVar::GetReplica() {
    auto copy = std::make_shared<clsProtocolTimeVar>();
    copy->isSelected_ = isSelected_;
    copy->length_ = length_;
    copy->timeFormatType_ = timeFormatType_;
    copy->startPosition_ = startPosition_;
    return copy;
}

void clsProtocolTimeVar::AddOperandsToFindOnlyCollection(OperandCollection&) {}

int32_t clsProtocolTimeVar::GetVarSegmentType() { return segment::SendTime; }

void clsProtocolTimeVar::ReplaceOperands(int32_t, int32_t, int32_t, int32_t) {}

}  // namespace qx
