#include "message/protocol_scan_numeric_var.h"

#include <array>

#include "framework/shared_helpers.h"

namespace qx {

namespace {

constexpr int32_t HexCode = 4;
constexpr int32_t StreamCode = 5;

int32_t prefixCode(int32_t prefixSignFormat) {
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

clsProtocolScanNumericVar::clsProtocolScanNumericVar()
    // The default Length of 5 is deliberately not recomputed here.
    : FieldState(5),
      likedOperand_(newFieldOperand({3, 5, 16}, {65, 66, 67}, 3)),
      extendedOperands_(IsExtendedOperandsEnabled()) {}

const OperandPtr& clsProtocolScanNumericVar::decimalPoint() const {
    if (!decimalPointOperand_) decimalPointOperand_ = newFieldOperand({3, 5, 16}, {65, 66, 67}, 3, extendedOperands_);
    return decimalPointOperand_;
}

void clsProtocolScanNumericVar::BeforePoint(int32_t value) {
    beforePoint_ = value;
    recomputeLength();
}

void clsProtocolScanNumericVar::AfterPoint(int32_t value) {
    afterPoint_ = value;
    recomputeLength();
}

void clsProtocolScanNumericVar::PrefixSignFormat(int32_t value) {
    prefixSignFormat_ = value;
    recomputeLength();
}

void clsProtocolScanNumericVar::VectorLength(int32_t value) {
    vectorLength_ = value;
    recomputeLength();
}

void clsProtocolScanNumericVar::VarFormat(int32_t value) {
    varFormat_ = value;
    recomputeLength();
}

void clsProtocolScanNumericVar::StreamVectorLength(int32_t value) {
    streamVectorLength_ = value;
    recomputeLength();
}

void clsProtocolScanNumericVar::CopyBytesFormat(int32_t value) {
    copyBytesFormat_ = value;
    recomputeLength();
}

void clsProtocolScanNumericVar::StreamForm(int32_t value) {
    streamForm_ = value;
    recomputeLength();
}

void clsProtocolScanNumericVar::recomputeLength() {
    if (streamForm_ == 1) {
        length_ = streamVectorLength_ * copyBytesPerElement(copyBytesFormat_);
    } else if (streamForm_ == 0 && varFormat_ == 0) {
        length_ = beforePoint_ * vectorLength_;
        if (prefixSignFormat_ != 0) length_ += vectorLength_;
    } else if (streamForm_ == 0 && varFormat_ == 1) {
        // A field of no fixed length takes one position, whatever it receives.
        length_ = 1;
    } else if (streamForm_ == 0 && varFormat_ == 2) {
        length_ = beforePoint_ * vectorLength_;
    } else {
        length_ = 0;
    }
}

std::wstring clsProtocolScanNumericVar::displayString() {
    return std::wstring(static_cast<size_t>(length_ > 0 ? length_ : 0), wchar_t(0));
}

Bytes clsProtocolScanNumericVar::GetVarBinData(int32_t) {
    Bytes record(RecordSize, 0);
    ByteWriter out(record);
    if (streamForm_ == 1) {
        out.u8(0, StreamCode);
        out.u8(1, streamVectorLength_);
        out.u8(2, copyBytesRecordCode(copyBytesFormat_));
    } else {
        out.u8(0, varFormat_ == 2 ? HexCode : prefixCode(prefixSignFormat_));
        out.u8(1, vectorLength_);
        out.u8(2, beforePoint_);
    }
    out.u8(4, likedOperand_->OperandType());
    out.low16(6, likedOperand_->OperandAddress());
    if (streamForm_ == 1) {
        out.u8(12, addNullToEndOfStream_ ? 1 : 0);
    } else if (decimalPointOperand_ && !decimalPointOperand_->IsNew()) {
        out.u8(12, decimalPointOperand_->OperandType());
        out.low16(14, decimalPointOperand_->OperandAddress());
    }
    return record;
}

void clsProtocolScanNumericVar::SetVarBinData(Bytes& pBinaryData, int32_t pVarTblIndex) {
    // The index is that of the segment's type byte; the record begins two bytes behind it.
    const ByteReader in(pBinaryData);
    const int64_t typeAt = pVarTblIndex;
    const uint8_t type = in.u8(typeAt);
    std::array<uint8_t, RecordSize> rec{};
    for (int32_t i = 0; i < RecordSize; ++i) rec[i] = in.u8(typeAt + 2 + i);

    switch (type) {
        case segment::ScanNumericFixed:
            varFormat_ = 0;
            break;
        case segment::ScanNumericFree:
            varFormat_ = 1;
            break;
        case segment::ScanStreamFixed:
            varFormat_ = 3;
            break;
        case segment::ScanStreamFree:
            varFormat_ = 4;
            break;
        default:
            break;
    }
    if (rec[0] == HexCode) {
        varFormat_ = 2;
        vectorLength_ = rec[1];
        beforePoint_ = rec[2];
    } else if (rec[0] == StreamCode) {
        streamForm_ = 1;
        streamVectorLength_ = rec[1];
        copyBytesFormat_ = copyBytesFormatOfCode(rec[2], copyBytesFormat_);
    } else {
        switch (rec[0]) {
            case 1:
                prefixSignFormat_ = 0;
                break;
            case 3:
                prefixSignFormat_ = 1;
                break;
            case 2:
                prefixSignFormat_ = 2;
                break;
            default:
                break;
        }
        vectorLength_ = rec[1];
        beforePoint_ = rec[2];
    }
    // Unlike the Send field, a Scan field registers neither operand.
    loadOperandLink(*likedOperand_, rec[4], rec[6] | (rec[7] << 8), false);
    if (streamForm_ == 1) {
        if (rec[12] == 1) addNullToEndOfStream_ = true;
    } else if (rec[12] != 0) {
        loadOperandLink(*decimalPoint(), rec[12], rec[14] | (rec[15] << 8), false);
    }
    recomputeLength();
}

VarPtr clsProtocolScanNumericVar::GetReplica() {
    auto copy = std::make_shared<clsProtocolScanNumericVar>();
    copy->startPosition_ = startPosition_;
    copy->isSelected_ = isSelected_;
    copy->isCanceled_ = isCanceled_;
    copy->likedOperand_ = CloneOperand(*likedOperand_);
    copy->extendedOperands_ = extendedOperands_;
    if (decimalPointOperand_) copy->decimalPointOperand_ = CloneOperand(*decimalPointOperand_);
    copy->streamForm_ = streamForm_;
    copy->varFormat_ = varFormat_;
    copy->beforePoint_ = beforePoint_;
    copy->afterPoint_ = afterPoint_;
    copy->prefixSignFormat_ = prefixSignFormat_;
    copy->leadingZeros_ = leadingZeros_;
    copy->vectorLength_ = vectorLength_;
    copy->streamVectorLength_ = streamVectorLength_;
    copy->copyBytesFormat_ = copyBytesFormat_;
    copy->addNullToEndOfStream_ = addNullToEndOfStream_;
    copy->length_ = length_;
    return copy;
}

void clsProtocolScanNumericVar::AddOperandsToFindOnlyCollection(OperandCollection& pOperandsForFindOnly) {
    addLinkedOperand(pOperandsForFindOnly, likedOperand_);
    addLinkedOperand(pOperandsForFindOnly, decimalPointOperand_);
}

int32_t clsProtocolScanNumericVar::GetVarSegmentType() {
    // The type follows VarFormat alone; the dialog keeps it at 3 or 4 in the stream form.
    switch (varFormat_) {
        case 0:
            return segment::ScanNumericFixed;
        case 1:
            return segment::ScanNumericFree;
        case 2:
            return segment::ScanNumericFixed;
        case 3:
            return segment::ScanStreamFixed;
        case 4:
            return segment::ScanStreamFree;
        default:
            return segment::ScanText;
    }
}

void clsProtocolScanNumericVar::ReplaceOperands(int32_t pOpNetID, int32_t pOpType, int32_t pOpAddress,
                                                int32_t pNewOpAddress) {
    replaceOperandAddress(*likedOperand_, pOpNetID, pOpType, pOpAddress, pNewOpAddress);
    if (decimalPointOperand_)
        replaceOperandAddress(*decimalPointOperand_, pOpNetID, pOpType, pOpAddress, pNewOpAddress);
}

}  // namespace qx
