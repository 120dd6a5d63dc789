#include "sets/image_blocks.h"

#include "framework/shared_helpers.h"
#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"

namespace qx {

namespace {
constexpr int32_t kFirstPrintable = 32;
}  // namespace

int32_t currentImageVersion() { return IsExtendedOperandsEnabled() ? 1 : 0; }

Bytes fixedTextBlock(const std::vector<int32_t>& chars) {
    Bytes block(4 + chars.size(), 0);
    ByteWriter writer(block);
    writer.u8(2, static_cast<int64_t>(chars.size()));
    for (size_t i = 0; i < chars.size(); ++i) writer.u8(4 + i, chars[i]);
    return block;
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

MessageCanvas::MessageCanvas() : text_(clsProtocolMessage::MaxPositions, L' ') {
    controls_.fill(clsProtocolMessage::NoControlChar);
}

void MessageCanvas::readFixedText(const ByteReader& reader, int64_t blockOffset) {
    int32_t count = reader.u8(blockOffset + 2);
    for (int32_t i = 0; i < count; ++i) {
        uint8_t value = reader.u8(blockOffset + 4 + i);
        if (position_ >= clsProtocolMessage::MaxPositions) raiseError(err::SubscriptOutOfRange);
        if (value >= kFirstPrintable)
            text_[static_cast<size_t>(position_)] = fromAnsiByte(value);
        else
            controls_[static_cast<size_t>(position_)] = value;
        ++position_;
    }
}

void MessageCanvas::placeField(clsProtocolMessage& message, const VarPtr& field) {
    int32_t length = field->Length();
    if (length < 0 || length > clsProtocolMessage::MaxPositions - position_) raiseError(err::SubscriptOutOfRange);
    field->StartPosition(position_);
    message.AddVar(field);
    position_ += length;
}

void MessageCanvas::storeInto(clsProtocolMessage& message) const {
    message.MessageString(text_);
    message.ControlChars(controls_);
}

}  // namespace qx
