#include "message/protocol_cs_var.h"

#include <array>

#include "framework/shared_helpers.h"

namespace qx {

namespace {

int32_t formatViewCode(int32_t formatView) {
    switch (formatView) {
        case 0:
            return 1;  // decimal text
        case 1:
            return 4;  // hex text
        case 2:
            return 5;  // raw bytes
        default:
            return 0;
    }
}

}  // namespace

clsProtocolCSVar::clsProtocolCSVar() : FieldState(1) {}

void clsProtocolCSVar::CSLength(int32_t value) {
    csLength_ = value;
    length_ = value;
}

void clsProtocolCSVar::InitChecksum() {
    // SA_AddedValue, MethodType and ActualMethodType keep what they hold.
    startPosition_ = 0;
    isSelected_ = false;
    isCanceled_ = false;
    csLength_ = 1;
    length_ = 1;
    formatView_ = 0;
    calculationType_ = 1;
    modulusType_ = 1;
    offsetFromForward_ = 0;
    offsetTillBackwards_ = 0;
    stxInCS_ = false;
    specialAddition_ = false;
    saFromValue_ = 0;
    saToValue_ = 0;
    version_ = 0;
    isVar_ = false;
}

Bytes clsProtocolCSVar::GetVarBinData(int32_t) {
    // A Send record has one leading byte more, so that in both images the
    // content lands two bytes behind the index the reader gets.
    const bool send = methodType_ == 0;
    const size_t s = send ? 1 : 0;
    Bytes record(send ? SendRecordSize : ScanRecordSize, 0);
    ByteWriter out(record);
    out.u8(s, formatViewCode(formatView_));
    out.u8(s + 2, csLength_);
    // An image of version 0 has no room for the STX choice.
    out.u8(s + 3, version_ != 0 && stxInCS_ ? 1 : 0);
    out.u8(s + 6, offsetFromForward_);
    out.u8(s + 7, offsetTillBackwards_);
    out.u8(s + 8, calculationType_);
    out.u8(s + 9, modulusType_);
    if (specialAddition_) {
        out.u8(s + 10, 1);
        out.u8(s + 11, saFromValue_);
        out.u8(s + 12, saToValue_);
        out.u8(s + 13, saAddedValue_);
    }
    return record;
}

void clsProtocolCSVar::SetVarBinData(Bytes& pBinaryData, int32_t pVarTblIndex) {
    const ByteReader in(pBinaryData);
    const int64_t at = pVarTblIndex;
    // Bytes P + 2 to P + 15 hold the content; read them all before anything changes.
    std::array<uint8_t, 16> rec{};
    for (int64_t i = 2; i < 16; ++i) rec[i] = in.u8(at + i);

    switch (rec[2]) {
        case 1:
            formatView_ = 0;
            break;
        case 4:
            formatView_ = 1;
            break;
        case 5:
            formatView_ = 2;
            break;
        default:
            break;
    }
    csLength_ = rec[4];
    if (!IsExtendedOperandsEnabled()) {
        stxInCS_ = false;
    } else if (version_ != 0) {
        stxInCS_ = rec[5] != 0;
    } else {
        // An image of version 0 has no such byte: the controller counted the STX
        // in a message's checksum of a Send and in the end-of-message checksum of a Scan.
        if (actualMethodType_ == 0)
            stxInCS_ = isVar_;
        else if (actualMethodType_ == 1)
            stxInCS_ = !isVar_;
        else
            stxInCS_ = false;
    }
    offsetFromForward_ = rec[8];
    offsetTillBackwards_ = rec[9];
    calculationType_ = rec[10];
    modulusType_ = rec[11];
    if (rec[12] == 1) {
        specialAddition_ = true;
        saFromValue_ = rec[13];
        saToValue_ = rec[14];
        saAddedValue_ = rec[15];
    }
    length_ = csLength_;
}

VarPtr clsProtocolCSVar::GetReplica() {
    // MethodType and ActualMethodType are not copied: the image code writes them each time.
    auto copy = std::make_shared<clsProtocolCSVar>();
    copy->startPosition_ = startPosition_;
    copy->isSelected_ = isSelected_;
    copy->isCanceled_ = isCanceled_;
    copy->csLength_ = csLength_;
    copy->formatView_ = formatView_;
    copy->calculationType_ = calculationType_;
    copy->modulusType_ = modulusType_;
    copy->offsetFromForward_ = offsetFromForward_;
    copy->offsetTillBackwards_ = offsetTillBackwards_;
    copy->stxInCS_ = stxInCS_;
    copy->specialAddition_ = specialAddition_;
    copy->saFromValue_ = saFromValue_;
    copy->saToValue_ = saToValue_;
    copy->saAddedValue_ = saAddedValue_;
    copy->version_ = version_;
    copy->isVar_ = isVar_;
    copy->length_ = length_;
    return copy;
}

void clsProtocolCSVar::AddOperandsToFindOnlyCollection(OperandCollection&) {}

int32_t clsProtocolCSVar::GetVarSegmentType() { return segment::Checksum; }

void clsProtocolCSVar::ReplaceOperands(int32_t, int32_t, int32_t, int32_t) {}

}  // namespace qx
