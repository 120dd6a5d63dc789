#include "sets/scan_image.h"

#include <algorithm>
#include <utility>

#include "message/protocol_cs_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "platform/basics/object_arena.h"
#include "platform/basics/runtime_error.h"
#include "sets/image_blocks.h"
#include "sets/scan_set.h"

namespace qx {

namespace {

// Header offsets.
constexpr size_t kEndOfMessageType = 0;
constexpr size_t kSTXMask = 1;
constexpr size_t kETXMask = 2;
constexpr size_t kVersion = 3;
constexpr size_t kSTXValues = 4;
constexpr size_t kETXValues = 8;
constexpr size_t kSTXLength = 12;
constexpr size_t kETXLength = 13;
constexpr size_t kMessageLengthValue = 14;
constexpr size_t kSilenceTimeValue = 16;
// Always 1, and never read back.
constexpr size_t kMarker = 18;
// Record bytes 1 to 14 of the end-of-message checksum lie from 20; its
// reader is given the index two below the first of them.
constexpr size_t kChecksumRecordIndex = 19;
constexpr size_t kChecksumFirstByte = 20;
constexpr size_t kChecksumBytes = 14;
constexpr int32_t kChecksumReadIndex = 18;
constexpr size_t kMessageCount = 34;
constexpr size_t kHeaderSize = 36;

// A message: S, the flags, the expected length with the frame, a zero byte,
// then 24 bytes a segment.
constexpr size_t kMessageHeaderSize = 4;
constexpr size_t kSegmentEntrySize = 24;
// Field records lie in the entry from its byte 4.
constexpr size_t kRecordOffset = 4;
constexpr size_t kRecordSize = 20;

// For the controller only; the reader does not look at them.
constexpr uint8_t kFlagConstText = 1;
constexpr uint8_t kFlagChecksumField = 2;

bool containsText(const std::vector<SegmentSpan>& segments) {
    for (const SegmentSpan& segment : segments)
        if (segment.SegmentKind == MessageSegment::TextKind) return true;
    return false;
}

void writeMessage(ByteWriter& writer, size_t& position, clsProtocolMessage& message, int32_t frameLength,
                  int32_t version, std::vector<SegmentSpan>& segments) {
    message.segmentSpans(segments);
    size_t count = segments.size();
    uint8_t flags = 0;
    if (containsText(segments)) flags |= kFlagConstText;
    if (message.IsMessageContainCSFields()) flags |= kFlagChecksumField;
    // Unlike the Send image there is no spare byte: the message header lies
    // behind the current end until the image grows.
    writer.grow(kMessageHeaderSize + kSegmentEntrySize * count);
    writer.u8(position, static_cast<int64_t>(count));
    writer.u8(position + 1, flags);
    writer.u8(position + 2, static_cast<int64_t>(message.MessageLength()) + frameLength);
    size_t data = position + kMessageHeaderSize + kSegmentEntrySize * count;
    for (size_t i = 0; i < count; ++i) {
        const SegmentSpan& segment = segments[i];
        size_t entry = position + kMessageHeaderSize + kSegmentEntrySize * i;
        writer.u16(entry, segment.StartPosition);
        int32_t type = segment::ScanText;
        if (segment.SegmentKind == MessageSegment::VarKind) {
            prepareChecksum(*segment.Var, method_type::Scan, method_type::Scan, version, true);
            type = segment.Var->GetVarSegmentType();
            // A checksum answers its Send number; the Scan table knows it as 3.
            if (type == segment::Checksum) type = segment::ScanChecksum;
        }
        writer.u8(entry + 2, type);
        switch (type) {
            case segment::ScanText:
                alignEven(writer, data);
                writer.u16(entry + kRecordOffset, static_cast<int64_t>(data));
                data = appendFixedText(writer, data, message, segment);
                break;
            case segment::ScanNumericFixed:
            case segment::ScanNumericFree:
            case segment::ScanChecksum:
            case segment::ScanStreamFixed:
            case segment::ScanStreamFree:
                copyRecord(writer, entry + kRecordOffset,
                           segment.Var->GetVarBinData(static_cast<int32_t>(entry + kRecordOffset)), kRecordSize);
                break;
            default:
                break;
        }
    }
    position = data;
}

void readMessage(Bytes& image, const ByteReader& reader, int64_t offset, clsProtocolMessage& message,
                 int32_t frameLength, int32_t version) {
    int32_t count = reader.u8(offset);
    message.MessageLength(std::max(reader.u8(offset + 2) - frameLength, 0));
    MessageCanvas canvas(message);
    for (int32_t i = 0; i < count; ++i) {
        int64_t entry = offset + static_cast<int64_t>(kMessageHeaderSize + kSegmentEntrySize * static_cast<size_t>(i));
        // The stored position is not read: the run of segments decides it.
        int64_t typeIndex = entry + 2;
        VarPtr field;
        switch (reader.u8(typeIndex)) {
            case segment::ScanText:
                canvas.readFixedText(reader, reader.u16(entry + kRecordOffset));
                break;
            case segment::ScanNumericFixed:
            case segment::ScanNumericFree:
            case segment::ScanStreamFixed:
            case segment::ScanStreamFree:
                field = makeShared<clsProtocolScanNumericVar>();
                field->SetVarBinData(image, static_cast<int32_t>(typeIndex));
                break;
            case segment::ScanChecksum:
                field = makeShared<clsProtocolCSVar>();
                prepareChecksum(*field, method_type::Scan, method_type::Scan, version, true);
                field->SetVarBinData(image, static_cast<int32_t>(typeIndex));
                break;
            default:
                // A type this reader does not know creates nothing, and the position stays.
                break;
        }
        if (field) canvas.placeField(std::move(field));
    }
}

}  // namespace

Bytes writeScanImage(clsProtocolScanSrv& set) {
    int32_t count = set.GetNumberOfMessagesToDownload().ToI4();
    int32_t version = currentImageVersion();

    Bytes image;
    image.reserve(ImageReserve);
    image.resize(kHeaderSize + 2 * static_cast<size_t>(count), 0);
    ByteWriter writer(image);
    writer.u8(kEndOfMessageType, set.EndOfScanMessageType());
    writer.u8(kSTXMask, asciiMask(set.ScanSTXChars()));
    writer.u8(kETXMask, asciiMask(set.ScanETXChars()));
    writer.u8(kVersion, version);
    writeFrameValues(writer, kSTXValues, set.ScanSTXChars());
    writeFrameValues(writer, kETXValues, set.ScanETXChars());
    writer.u8(kSTXLength, set.ScanSTXLength());
    writer.u8(kETXLength, set.ScanETXLength());
    writer.low16(kMessageLengthValue, set.MessageLengthValue());
    writer.low16(kSilenceTimeValue, set.SilenceTimeValue());
    writer.u8(kMarker, 1);

    itfProtocolVar& checksum = *set.ScanChecksum();
    prepareChecksum(checksum, method_type::Send, method_type::Scan, version, false);
    Bytes record = checksum.GetVarBinData(static_cast<int32_t>(kChecksumRecordIndex));
    if (record.size() < 1 + kChecksumBytes) raiseError(err::SubscriptOutOfRange);
    writer.copy(kChecksumFirstByte, record.data() + 1, kChecksumBytes);

    writer.u8(kMessageCount, count);

    int32_t frameLength = set.ScanSTXLength() + set.ScanETXLength();
    size_t position = kHeaderSize + 2 * static_cast<size_t>(count);
    std::vector<SegmentSpan> segments;
    for (int32_t number = 1; number <= count; ++number) {
        alignEven(writer, position);
        writer.u16(kHeaderSize + 2 * static_cast<size_t>(number - 1), static_cast<int64_t>(position));
        writeMessage(writer, position, *set.GetMessage(number), frameLength, version, segments);
    }
    if (image.size() % 2 != 0) writer.grow(1);
    return image;
}

void readScanImage(clsProtocolScanSrv& set, const Bytes& source) {
    // The fields take the image by reference; they read a copy of it.
    Bytes image = source;
    ByteReader reader(image);

    set.EndOfScanMessageType(reader.u8(kEndOfMessageType));
    int32_t version = reader.u8(kVersion);
    set.ImageVersion(version);
    FrameChars stx = set.ScanSTXChars();
    FrameChars etx = set.ScanETXChars();
    readFrame(reader, kSTXMask, kSTXValues, stx);
    readFrame(reader, kETXMask, kETXValues, etx);
    for (int32_t i = 0; i < static_cast<int32_t>(stx.size()); ++i) {
        set.SetScanSTXValue(i, stx[static_cast<size_t>(i)].Value, stx[static_cast<size_t>(i)].ByAscii);
        set.SetScanETXValue(i, etx[static_cast<size_t>(i)].Value, etx[static_cast<size_t>(i)].ByAscii);
    }
    set.ScanSTXLength(reader.u8(kSTXLength));
    set.ScanETXLength(reader.u8(kETXLength));
    set.MessageLengthValue(reader.u16(kMessageLengthValue));
    set.SilenceTimeValue(reader.u16(kSilenceTimeValue));

    itfProtocolVar& checksum = *set.ScanChecksum();
    prepareChecksum(checksum, method_type::Send, method_type::Scan, version, false);
    checksum.SetVarBinData(image, kChecksumReadIndex);

    int32_t count = reader.u8(kMessageCount);
    int32_t frameLength = set.ScanSTXLength() + set.ScanETXLength();
    set.ResetMessages(std::max(count, 1));
    ScopedObjectArena fieldMemory;
    for (int32_t number = 1; number <= count; ++number) {
        int64_t offset = reader.u16(static_cast<int64_t>(kHeaderSize) + 2 * (number - 1));
        readMessage(image, reader, offset, *set.GetMessage(number), frameLength, version);
    }
}

}  // namespace qx
