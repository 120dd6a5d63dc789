#include "message/protocol_numeric_var.h"

#include <array>

#include "framework/shared_helpers.h"

namespace qx {

namespace {

// The record's format byte of the stream form; the ASCII form uses 1 to 4.
constexpr int32_t StreamCode = 5;

int32_t asciiFormatCode(int32_t varFormat, int32_t prefixSignFormat) {
    if (varFormat == 1) return 4;
    switch (prefixSignFormat) {
        case 0:
            return 1;
        case 1:
            return 3;
        case 2:
            return 2;
        default:
            return 0;
    }
}

}  // namespace

clsProtocolNumericVar::clsProtocolNumericVar()
    // The default Length of 5 is deliberately not recomputed here.
    : FieldState(5), likedOperand_(newFieldOperand({3, 5, 4, 6, 36, 16}, {65, 66, 67}, 3)) {}

void clsProtocolNumericVar::BeforePoint(int32_t value) {
    beforePoint_ = value;
    recomputeLength();
}

void clsProtocolNumericVar::AfterPoint(int32_t value) {
    afterPoint_ = value;
    recomputeLength();
}

void clsProtocolNumericVar::PrefixSignFormat(int32_t value) {
    prefixSignFormat_ = value;
    recomputeLength();
}

void clsProtocolNumericVar::VectorLength(int32_t value) {
    vectorLength_ = value;
    recomputeLength();
}

void clsProtocolNumericVar::VarFormat(int32_t value) {
    varFormat_ = value;
    recomputeLength();
}

void clsProtocolNumericVar::StreamVectorLength(int32_t value) {
    streamVectorLength_ = value;
    recomputeLength();
}

void clsProtocolNumericVar::StreamLengthAddress(int32_t value) {
    streamLengthAddress_ = value;
    recomputeLength();
}

void clsProtocolNumericVar::CopyBytesFormat(int32_t value) {
    copyBytesFormat_ = value;
    recomputeLength();
}

void clsProtocolNumericVar::StreamForm(int32_t value) {
    streamForm_ = value;
    recomputeLength();
}

void clsProtocolNumericVar::recomputeLength() {
    if (streamForm_ == 1) {
        // An indirect count is known only at run time; the field holds one position.
        if (streamLengthAddress_ > -1)
            length_ = 1;
        else
            length_ = streamVectorLength_ * copyBytesPerElement(copyBytesFormat_);
    } else if (streamForm_ == 0) {
        if (varFormat_ != 0) {
            length_ = beforePoint_ * vectorLength_;
        } else {
            int32_t element = beforePoint_;
            if (afterPoint_ > 0) element += afterPoint_ + 1;
            length_ = element * vectorLength_;
            if (prefixSignFormat_ != 0) length_ += vectorLength_;  // one sign for each element
        }
    } else {
        length_ = 0;
    }
}

Bytes clsProtocolNumericVar::GetVarBinData(int32_t) {
    Bytes record(RecordSize, 0);
    ByteWriter out(record);
    out.u8(0, leadingZeros_);
    if (streamForm_ == 1) {
        const bool indirect = streamLengthAddress_ > -1;
        out.u8(1, StreamCode);
        out.u8(2, indirect ? 0 : streamVectorLength_);
        out.u8(3, copyBytesRecordCode(copyBytesFormat_));
        if (indirect) out.u16(5, streamLengthAddress_);
    } else {
        out.u8(1, asciiFormatCode(varFormat_, prefixSignFormat_));
        out.u8(2, vectorLength_);
        out.u8(3, beforePoint_);
        out.u8(4, afterPoint_);
    }
    out.u8(7, likedOperand_->OperandType());
    out.low16(9, likedOperand_->OperandAddress());
    return record;
}

void clsProtocolNumericVar::SetVarBinData(Bytes& pBinaryData, int32_t pVarTblIndex) {
    // The record stands right behind the segment's type byte at the index.
    const ByteReader in(pBinaryData);
    const int64_t at = static_cast<int64_t>(pVarTblIndex) + 1;
    std::array<uint8_t, RecordSize> rec{};
    for (int32_t i = 0; i < RecordSize; ++i) rec[i] = in.u8(at + i);

    if (rec[0] <= 2) leadingZeros_ = rec[0];
    if (rec[1] != StreamCode) {
        streamForm_ = 0;
        switch (rec[1]) {
            case 1:
                varFormat_ = 0;
                prefixSignFormat_ = 0;
                break;
            case 3:
                varFormat_ = 0;
                prefixSignFormat_ = 1;
                break;
            case 2:
                varFormat_ = 0;
                prefixSignFormat_ = 2;
                break;
            case 4:
                varFormat_ = 1;
                break;
            default:
                break;
        }
        vectorLength_ = rec[2];
        beforePoint_ = rec[3];
        afterPoint_ = rec[4];
    } else {
        streamForm_ = 1;
        streamVectorLength_ = rec[2];
        copyBytesFormat_ = copyBytesFormatOfCode(rec[3], copyBytesFormat_);
        // A count of 0 is the mark of an indirect count.
        if (streamVectorLength_ < 1) {
            streamVectorLength_ = 1;
            streamLengthAddress_ = rec[5] | (rec[6] << 8);
        }
    }
    loadOperandLink(*likedOperand_, rec[7], rec[9] | (rec[10] << 8), true);
    recomputeLength();
}

VarPtr clsProtocolNumericVar::GetReplica() {
    auto copy = std::make_shared<clsProtocolNumericVar>();
    copy->startPosition_ = startPosition_;
    copy->isSelected_ = isSelected_;
    copy->isCanceled_ = isCanceled_;
    copy->likedOperand_ = CloneOperand(*likedOperand_);
    copy->streamForm_ = streamForm_;
    copy->varFormat_ = varFormat_;
    copy->beforePoint_ = beforePoint_;
    copy->afterPoint_ = afterPoint_;
    copy->prefixSignFormat_ = prefixSignFormat_;
    copy->leadingZeros_ = leadingZeros_;
    copy->vectorLength_ = vectorLength_;
    copy->streamVectorLength_ = streamVectorLength_;
    copy->streamLengthAddress_ = streamLengthAddress_;
    copy->copyBytesFormat_ = copyBytesFormat_;
    // Length as it stands, also when it was written directly.
    copy->length_ = length_;
    return copy;
}

void clsProtocolNumericVar::AddOperandsToFindOnlyCollection(OperandCollection& pOperandsForFindOnly) {
    if (likedOperand_->IsNew()) return;
    addLinkedOperand(pOperandsForFindOnly, likedOperand_);
    // The operand of an indirect count at address 0 is not listed: only addresses above 0 are.
    if (streamLengthAddress_ > 0) {
        OperandPtr count = newOperand();
        count->OperandType(3);
        count->OperandAddress(streamLengthAddress_);
        pOperandsForFindOnly.Add(count, std::to_wstring(pOperandsForFindOnly.Count() + 1));
    }
}

int32_t clsProtocolNumericVar::GetVarSegmentType() { return segment::SendNumeric; }

void clsProtocolNumericVar::ReplaceOperands(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress,
                                            int32_t pNewOpAddress) {
    // StreamLengthAddress is a plain address and is not rewritten.
    replaceOperandAddress(*likedOperand_, pOpNetID, pOpType, pOpAddress, pNewOpAddress);
}

}  // namespace qx
