// The pieces that the Send and Scan images share: the fixed-text block, the
// frame characters with their "typed" bit masks, the even alignment of
// blocks, the copy of a field's record into the image, and the canvas on
// which a reader lays a message out again, position by position.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "message/protocol_message.h"
#include "platform/basics/bytes.h"
#include "sets/frame_char.h"

namespace qx {

// The version byte of an image written now: 1 when the extended operands are on.
int32_t currentImageVersion();

// Room for an image of 255 messages up to the last 16-bit offset, and the
// last message behind it: an image is reserved once and never moves.
inline constexpr size_t ImageReserve = 65536 + 4096;

// Appends the fixed-text block of a text run at the position: 0, 0, L, 0
// and the L bytes of the run. More than 255 positions, or a control
// character that is not a byte, is an overflow. Gives the position behind it.
size_t appendFixedText(ByteWriter& writer, size_t position, const clsProtocolMessage& message, const SegmentSpan& run);

// Blocks start at even offsets: an odd position grows the image by a byte.
void alignEven(ByteWriter& writer, size_t& position);
// Grows the image by the block and copies it to the position; gives the
// position behind it.
size_t appendBlock(ByteWriter& writer, size_t position, const Bytes& block);
// Copies the first size bytes of a field's record to the offset; a record
// that is shorter than its slot is as wrong as a short image.
void copyRecord(ByteWriter& writer, size_t offset, const Bytes& record, size_t size);

// Bit I set when entry I was typed.
uint8_t asciiMask(const FrameChars& chars);
void writeFrameValues(ByteWriter& writer, size_t offset, const FrameChars& chars);
// Values from the image; ByAscii is set where the mask has the bit and left
// as it was where it has not.
void readFrame(const ByteReader& reader, int64_t maskOffset, int64_t valuesOffset, FrameChars& chars);

// The settings a checksum record depends on, written before each read or write.
void prepareChecksum(itfProtocolVar& checksum, int32_t methodType, int32_t actualMethodType, int32_t version,
                     bool isVar);

// Lays a fresh message (blank text, no control characters, no field) out
// again from its segments, keeping the running position Q at which the next
// segment starts. Nothing may land outside the message's 500 positions: a
// lying image raises RuntimeError(9) here rather than building a broken
// message.
class MessageCanvas {
public:
    explicit MessageCanvas(clsProtocolMessage& message) : message_(message) {}
    // The fixed-text block at the offset: a value of 32 or more is a
    // character, a smaller one a control character.
    void readFixedText(const ByteReader& reader, int64_t blockOffset);
    // The field starts at Q and Q moves behind it.
    void placeField(VarPtr field);

private:
    clsProtocolMessage& message_;
    int32_t position_ = 0;
};

}  // namespace qx
