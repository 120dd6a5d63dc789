// Where things lie in the Send and Scan images: the offsets and sizes that
// the writers and readers of both images go by, and that the inspector
// annotates. Offsets of the headers are absolute; the others are relative to
// the message, the segment entry or the block they name.
#pragma once
#include <cstddef>
#include <cstdint>

namespace qx {

// Shared by both images.
namespace image_layout {
// A fixed-text block: 0, 0, the count of values, 0, then the values.
inline constexpr size_t FixedTextHeader = 4;
inline constexpr size_t FixedTextCount = 2;
// Four start and four end characters, whichever of them are in use.
inline constexpr size_t FrameCharCount = 4;
// Offsets in the image are 16-bit and blocks start at even offsets.
inline constexpr size_t OffsetSize = 2;
}  // namespace image_layout

namespace send_layout {
// Header offsets.
inline constexpr size_t MessageNumberType = 0;
inline constexpr size_t MessageNumberBlock = 2;
inline constexpr size_t MessageNumberBlockSize = 6;
inline constexpr size_t CopyDestinationType = 8;
inline constexpr size_t CopyDestinationAddress = 10;
inline constexpr size_t CopyWhenOnType = 16;
inline constexpr size_t CopyWhenOnAddress = 18;
// Each copy operand takes 8 bytes: type, 0, address, four zero bytes.
inline constexpr size_t CopyOperandSize = 8;
inline constexpr size_t Version = 24;
inline constexpr size_t EndOfMessageType = 25;
inline constexpr size_t STXMask = 26;
inline constexpr size_t ETXMask = 27;
inline constexpr size_t STXValues = 28;
inline constexpr size_t ETXValues = 32;
inline constexpr size_t STXLength = 36;
inline constexpr size_t ETXLength = 37;
// Always 1, and never read back.
inline constexpr size_t Marker = 38;
// Record bytes 1 to 14 of the end-of-message checksum lie from 40; its
// reader is given the index two below the first of them.
inline constexpr size_t ChecksumRecordIndex = 39;
inline constexpr size_t ChecksumFirstByte = 40;
inline constexpr size_t ChecksumBytes = 14;
inline constexpr int32_t ChecksumReadIndex = 38;
inline constexpr size_t CopyBytesCount = 54;
inline constexpr size_t MessageCount = 56;
inline constexpr size_t HeaderSize = 58;

// A message: S, three zero bytes, then 18 bytes a segment.
inline constexpr size_t MessageHeaderSize = 4;
inline constexpr size_t SegmentEntrySize = 18;
// Types 0 to 2 keep the offset of their data block at this entry byte.
inline constexpr size_t BlockOffset = 2;
// Records of types 3 to 6 lie in the entry itself, from its byte 1.
inline constexpr size_t InlineRecord = 1;
inline constexpr size_t InlineRecordSize = 17;
}  // namespace send_layout

namespace scan_layout {
// Header offsets.
inline constexpr size_t EndOfMessageType = 0;
inline constexpr size_t STXMask = 1;
inline constexpr size_t ETXMask = 2;
inline constexpr size_t Version = 3;
inline constexpr size_t STXValues = 4;
inline constexpr size_t ETXValues = 8;
inline constexpr size_t STXLength = 12;
inline constexpr size_t ETXLength = 13;
inline constexpr size_t MessageLengthValue = 14;
inline constexpr size_t SilenceTimeValue = 16;
// Always 1, and never read back.
inline constexpr size_t Marker = 18;
// Record bytes 1 to 14 of the end-of-message checksum lie from 20; its
// reader is given the index two below the first of them.
inline constexpr size_t ChecksumRecordIndex = 19;
inline constexpr size_t ChecksumFirstByte = 20;
inline constexpr size_t ChecksumBytes = 14;
inline constexpr int32_t ChecksumReadIndex = 18;
inline constexpr size_t MessageCount = 34;
inline constexpr size_t HeaderSize = 36;

// A message: S, the flags, the expected length with the frame, a zero byte,
// then 24 bytes a segment.
inline constexpr size_t MessageHeaderSize = 4;
inline constexpr size_t MessageFlags = 1;
inline constexpr size_t MessageExpectedLength = 2;
inline constexpr size_t SegmentEntrySize = 24;
// Entry bytes 0 and 1 hold the segment's position, byte 2 its type.
inline constexpr size_t SegmentType = 2;
// Field records lie in the entry from its byte 4; a text keeps the offset
// of its block there.
inline constexpr size_t RecordOffset = 4;
inline constexpr size_t RecordSize = 20;

// For the controller only; the reader does not look at them.
inline constexpr uint8_t FlagConstText = 1;
inline constexpr uint8_t FlagChecksumField = 2;
}  // namespace scan_layout

}  // namespace qx
