#include "message/protocol_date_var.h"

#include "framework/shared_helpers.h"

namespace qx {

// "DD/MM/YY", the default format 6, is 8 positions long.
clsProtocolDateVar::clsProtocolDateVar() : FieldState(8) {}

void clsProtocolDateVar::DateFormatType(int32_t value) {
    dateFormatType_ = value;
    length_ = static_cast<int32_t>(dateFormatView(value).size());
}

Bytes clsProtocolDateVar::GetVarBinData(int32_t) {
    Bytes record(RecordSize, 0);
    ByteWriter(record).u8(1, dateFormatType_);
    return record;
}

void clsProtocolDateVar::SetVarBinData(Bytes& pBinaryData, int32_t pVarTblIndex) {
    // Record byte 1 lies two bytes behind the segment's type byte.
    DateFormatType(ByteReader(pBinaryData).u8(static_cast<int64_t>(pVarTblIndex) + 2));
}

VarPtr clsProtocolDateVar::GetReplica() {
    auto copy = std::make_shared<clsProtocolDateVar>();
    copy->isSelected_ = isSelected_;
    copy->length_ = length_;
    copy->dateFormatType_ = dateFormatType_;
    copy->startPosition_ = startPosition_;
    return copy;
}

void clsProtocolDateVar::AddOperandsToFindOnlyCollection(OperandCollection&) {}

int32_t clsProtocolDateVar::GetVarSegmentType() { return segment::SendDate; }

void clsProtocolDateVar::ReplaceOperands(int32_t, int32_t, int32_t, int32_t) {}

}  // namespace qx
