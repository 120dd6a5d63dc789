#include "sets/image_blocks.h"

#include <span>
#include <utility>

#include "framework/shared_helpers.h"
#include "platform/basics/runtime_error.h"

namespace qx {

namespace {
// 0, 0, the count of positions, 0.
constexpr size_t kFixedTextHeader = 4;
}  // namespace

int32_t currentImageVersion() { return IsExtendedOperandsEnabled() ? 1 : 0; }

size_t appendFixedText(ByteWriter& writer, size_t position, const clsProtocolMessage& message, const SegmentSpan& run) {
    const size_t count = static_cast<size_t>(run.Count);
    writer.grow(kFixedTextHeader + count);
    writer.u8(position + 2, run.Count);
    message.textBytes(run.StartPosition, run.Count, writer.block(position + kFixedTextHeader, count).data());
    return position + kFixedTextHeader + count;
}

void alignEven(ByteWriter& writer, size_t& position) {
    if (position % 2 == 0) return;
    writer.grow(1);
    ++position;
}

size_t appendBlock(ByteWriter& writer, size_t position, const Bytes& block) {
    writer.grow(block.size());
    writer.copy(position, block);
    return position + block.size();
}

void copyRecord(ByteWriter& writer, size_t offset, const Bytes& record, size_t size) {
    if (record.size() < size) raiseError(err::SubscriptOutOfRange);
    writer.copy(offset, record.data(), size);
}

uint8_t asciiMask(const FrameChars& chars) {
    uint8_t mask = 0;
    for (size_t i = 0; i < chars.size(); ++i)
        if (chars[i].ByAscii) mask = static_cast<uint8_t>(mask | (1u << i));
    return mask;
}

void writeFrameValues(ByteWriter& writer, size_t offset, const FrameChars& chars) {
    for (size_t i = 0; i < chars.size(); ++i) writer.u8(offset + i, chars[i].Value);
}

void readFrame(const ByteReader& reader, int64_t maskOffset, int64_t valuesOffset, FrameChars& chars) {
    uint8_t mask = reader.u8(maskOffset);
    for (size_t i = 0; i < chars.size(); ++i) {
        if (mask & (1u << i)) chars[i].ByAscii = true;
        chars[i].Value = reader.u8(valuesOffset + static_cast<int64_t>(i));
    }
}

void prepareChecksum(itfProtocolVar& checksum, int32_t methodType, int32_t actualMethodType, int32_t version,
                     bool isVar) {
    checksum.MethodType(methodType);
    checksum.ActualMethodType(actualMethodType);
    checksum.VERSION(version);
    checksum.IsVar(isVar);
}

void MessageCanvas::readFixedText(const ByteReader& reader, int64_t blockOffset) {
    const int32_t count = reader.u8(blockOffset + 2);
    const std::span<const uint8_t> values = reader.block(blockOffset + kFixedTextHeader, static_cast<size_t>(count));
    // A run past position 499 is refused there, as a subscript error.
    message_.setTextBytes(position_, values.data(), count);
    position_ += count;
}

void MessageCanvas::placeField(VarPtr field) {
    int32_t length = field->Length();
    if (length < 0 || length > clsProtocolMessage::MaxPositions - position_) raiseError(err::SubscriptOutOfRange);
    field->StartPosition(position_);
    message_.AddVar(std::move(field));
    position_ += length;
}

}  // namespace qx
