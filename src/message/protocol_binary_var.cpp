#include "message/protocol_binary_var.h"

#include <algorithm>

#include "framework/shared_helpers.h"

namespace qx {

namespace {
constexpr int32_t RecordKind = 2;
}

clsProtocolBinaryVar::clsProtocolBinaryVar()
    : FieldState(0), likedOperand_(newFieldOperand({9, 1, 10, 2, 11}, {64}, 1)) {}

void clsProtocolBinaryVar::TextFor0(const std::wstring& value) {
    textFor0_ = value;
    recomputeLength();
}

void clsProtocolBinaryVar::TextFor1(const std::wstring& value) {
    textFor1_ = value;
    recomputeLength();
}

void clsProtocolBinaryVar::recomputeLength() {
    length_ = static_cast<int32_t>(std::max(textFor0_.size(), textFor1_.size()));
}

Bytes clsProtocolBinaryVar::GetVarBinData(int32_t pVarTblIndex) {
    const Bytes text0 = ansiBytes(textFor0_);
    const Bytes text1 = ansiBytes(textFor1_);
    const size_t at0 = RecordHeaderSize;
    const size_t at1 = at0 + text0.size() + 1;
    Bytes record(at1 + text1.size() + 1, 0);
    ByteWriter out(record);
    out.u8(0, RecordKind);
    out.u8(2, likedOperand_->OperandType());
    out.low16(4, likedOperand_->OperandAddress());
    // The controller finds each text by its absolute offset in the image.
    // An offset beyond 16 bits does not fit: no image rather than a corrupt one.
    out.u16(10, static_cast<int64_t>(pVarTblIndex) + static_cast<int64_t>(at0));
    out.u8(12, static_cast<int64_t>(text0.size()));
    out.u16(14, static_cast<int64_t>(pVarTblIndex) + static_cast<int64_t>(at1));
    out.u8(16, static_cast<int64_t>(text1.size()));
    out.copy(at0, text0);
    out.copy(at1, text1);
    return record;
}

void clsProtocolBinaryVar::SetVarBinData(Bytes& pBinaryData, int32_t pVarTblIndex) {
    const ByteReader in(pBinaryData);
    const int64_t at = pVarTblIndex;
    const uint8_t operandType = in.u8(at + 2);
    const uint16_t operandAddress = in.u16(at + 4);
    // The second text follows the first one's byte 0; its own offset and both lengths are not read.
    const int64_t offset0 = in.u16(at + 10);
    const Bytes text0 = in.untilZero(offset0, MaxRecordTextLength);
    const Bytes text1 = in.untilZero(offset0 + static_cast<int64_t>(text0.size()) + 1, MaxRecordTextLength);

    loadOperandLink(*likedOperand_, operandType, operandAddress, true);
    textFor0_ = ansiText(text0);
    textFor1_ = ansiText(text1);
    recomputeLength();
}

VarPtr clsProtocolBinaryVar::GetReplica() {
    auto copy = std::make_shared<clsProtocolBinaryVar>();
    copy->startPosition_ = startPosition_;
    copy->isSelected_ = isSelected_;
    copy->isCanceled_ = isCanceled_;
    copy->likedOperand_ = CloneOperand(*likedOperand_);
    copy->textFor0_ = textFor0_;
    copy->textFor1_ = textFor1_;
    copy->defaultDisplay_ = defaultDisplay_;
    copy->length_ = length_;
    return copy;
}

void clsProtocolBinaryVar::AddOperandsToFindOnlyCollection(OperandCollection& pOperandsForFindOnly) {
    addLinkedOperand(pOperandsForFindOnly, likedOperand_);
}

int32_t clsProtocolBinaryVar::GetVarSegmentType() { return segment::SendBinary; }

void clsProtocolBinaryVar::ReplaceOperands(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress,
                                           int32_t pNewOpAddress) {
    replaceOperandAddress(*likedOperand_, pOpNetID, pOpType, pOpAddress, pNewOpAddress);
}

}  // namespace qx
