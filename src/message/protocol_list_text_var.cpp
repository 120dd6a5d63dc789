#include "message/protocol_list_text_var.h"

#include <algorithm>

#include "framework/shared_helpers.h"

namespace qx {

namespace {
constexpr int32_t RecordKind = 3;
constexpr int32_t EntrySize = 4;
}  // namespace

clsProtocolistTextVar::clsProtocolistTextVar() : FieldState(0), likedOperand_(newFieldOperand({3, 5}, {65, 66}, 3)) {}

void clsProtocolistTextVar::Texts(const std::vector<std::wstring>& value) {
    texts_ = value;
    recomputeLength();
}

void clsProtocolistTextVar::recomputeLength() {
    if (alignmentStringSize_ >= 1) {
        length_ = alignmentStringSize_;
        return;
    }
    size_t longest = 0;
    for (const auto& text : texts_) longest = std::max(longest, text.size());
    length_ = static_cast<int32_t>(longest);
}

Bytes clsProtocolistTextVar::GetVarBinData(int32_t pVarTblIndex) {
    const size_t count = texts_.size();
    std::vector<Bytes> texts;
    texts.reserve(count);
    size_t size = RecordHeaderSize + EntrySize * count;
    for (const auto& text : texts_) {
        texts.push_back(ansiBytes(text));
        size += texts.back().size() + 1;
    }
    Bytes record(size, 0);
    ByteWriter out(record);
    out.u8(0, RecordKind);
    out.u8(2, likedOperand_->OperandType());
    out.low16(4, likedOperand_->OperandAddress());
    out.u8(10, static_cast<int64_t>(count));
    out.u8(11, alignmentStringSize_);
    size_t textAt = RecordHeaderSize + EntrySize * count;
    for (size_t i = 0; i < count; ++i) {
        const size_t entry = RecordHeaderSize + EntrySize * i;
        // The controller finds each text by its absolute offset in the image;
        // one beyond 16 bits does not fit, and no record comes out.
        out.u16(entry, static_cast<int64_t>(pVarTblIndex) + static_cast<int64_t>(textAt));
        out.u8(entry + 2, static_cast<int64_t>(texts[i].size()));
        out.copy(textAt, texts[i]);
        textAt += texts[i].size() + 1;
    }
    return record;
}

void clsProtocolistTextVar::SetVarBinData(Bytes& pBinaryData, int32_t pVarTblIndex) {
    const ByteReader in(pBinaryData);
    const int64_t at = pVarTblIndex;
    const uint8_t operandType = in.u8(at + 2);
    const uint16_t operandAddress = in.u16(at + 4);
    const uint8_t count = in.u8(at + 10);
    // An empty list is an invalid array range: the writer never makes one.
    if (count == 0) raiseError(err::SubscriptOutOfRange);
    const uint8_t alignment = in.u8(at + 11);
    std::vector<std::wstring> texts;
    texts.reserve(count);
    for (int64_t i = 0; i < count; ++i) {
        // The length byte of the entry is not read: the text ends at its byte 0.
        const uint16_t offset = in.u16(at + RecordHeaderSize + EntrySize * i);
        texts.push_back(ansiText(in.untilZero(offset, MaxRecordTextLength)));
    }

    loadOperandLink(*likedOperand_, operandType, operandAddress, true);
    texts_ = std::move(texts);
    alignmentStringSize_ = alignment;
    recomputeLength();
}

VarPtr clsProtocolistTextVar::GetReplica() {
    auto copy = std::make_shared<clsProtocolistTextVar>();
    copy->startPosition_ = startPosition_;
    copy->isSelected_ = isSelected_;
    copy->isCanceled_ = isCanceled_;
    copy->likedOperand_ = CloneOperand(*likedOperand_);
    copy->texts_ = texts_;
    copy->alignmentStringSize_ = alignmentStringSize_;
    copy->defaultDisplay_ = defaultDisplay_;
    copy->length_ = length_;
    return copy;
}

void clsProtocolistTextVar::AddOperandsToFindOnlyCollection(OperandCollection& pOperandsForFindOnly) {
    addLinkedOperand(pOperandsForFindOnly, likedOperand_);
}

int32_t clsProtocolistTextVar::GetVarSegmentType() { return segment::SendList; }

void clsProtocolistTextVar::ReplaceOperands(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress,
                                            int32_t pNewOpAddress) {
    replaceOperandAddress(*likedOperand_, pOpNetID, pOpType, pOpAddress, pNewOpAddress);
}

}  // namespace qx
