#include "sets/scan_image.h"

#include <algorithm>
#include <utility>

#include "message/protocol_cs_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "platform/basics/object_arena.h"
#include "platform/basics/runtime_error.h"
#include "sets/image_blocks.h"
#include "sets/image_layout.h"
#include "sets/scan_set.h"

namespace qx {

namespace {

using namespace scan_layout;

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
    if (containsText(segments)) flags |= FlagConstText;
    if (message.IsMessageContainCSFields()) flags |= FlagChecksumField;
    // Unlike the Send image there is no spare byte: the message header lies
    // behind the current end until the image grows.
    writer.grow(MessageHeaderSize + SegmentEntrySize * count);
    writer.u8(position, static_cast<int64_t>(count));
    writer.u8(position + 1, flags);
    writer.u8(position + 2, static_cast<int64_t>(message.MessageLength()) + frameLength);
    size_t data = position + MessageHeaderSize + SegmentEntrySize * count;
    for (size_t i = 0; i < count; ++i) {
        const SegmentSpan& segment = segments[i];
        size_t entry = position + MessageHeaderSize + SegmentEntrySize * i;
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
                writer.u16(entry + RecordOffset, static_cast<int64_t>(data));
                data = appendFixedText(writer, data, message, segment);
                break;
            case segment::ScanNumericFixed:
            case segment::ScanNumericFree:
            case segment::ScanChecksum:
            case segment::ScanStreamFixed:
            case segment::ScanStreamFree:
                copyRecord(writer, entry + RecordOffset,
                           segment.Var->GetVarBinData(static_cast<int32_t>(entry + RecordOffset)), RecordSize);
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
        int64_t entry = offset + static_cast<int64_t>(MessageHeaderSize + SegmentEntrySize * static_cast<size_t>(i));
        // The stored position is not read: the run of segments decides it.
        int64_t typeIndex = entry + 2;
        VarPtr field;
        switch (reader.u8(typeIndex)) {
            case segment::ScanText:
                canvas.readFixedText(reader, reader.u16(entry + RecordOffset));
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
    image.resize(HeaderSize + 2 * static_cast<size_t>(count), 0);
    ByteWriter writer(image);
    writer.u8(EndOfMessageType, set.EndOfScanMessageType());
    writer.u8(STXMask, asciiMask(set.ScanSTXChars()));
    writer.u8(ETXMask, asciiMask(set.ScanETXChars()));
    writer.u8(Version, version);
    writeFrameValues(writer, STXValues, set.ScanSTXChars());
    writeFrameValues(writer, ETXValues, set.ScanETXChars());
    writer.u8(STXLength, set.ScanSTXLength());
    writer.u8(ETXLength, set.ScanETXLength());
    writer.low16(MessageLengthValue, set.MessageLengthValue());
    writer.low16(SilenceTimeValue, set.SilenceTimeValue());
    writer.u8(Marker, 1);

    itfProtocolVar& checksum = *set.ScanChecksum();
    prepareChecksum(checksum, method_type::Send, method_type::Scan, version, false);
    Bytes record = checksum.GetVarBinData(static_cast<int32_t>(ChecksumRecordIndex));
    if (record.size() < 1 + ChecksumBytes) raiseError(err::SubscriptOutOfRange);
    writer.copy(ChecksumFirstByte, record.data() + 1, ChecksumBytes);

    writer.u8(MessageCount, count);

    int32_t frameLength = set.ScanSTXLength() + set.ScanETXLength();
    size_t position = HeaderSize + 2 * static_cast<size_t>(count);
    std::vector<SegmentSpan> segments;
    for (int32_t number = 1; number <= count; ++number) {
        alignEven(writer, position);
        writer.u16(HeaderSize + 2 * static_cast<size_t>(number - 1), static_cast<int64_t>(position));
        writeMessage(writer, position, *set.GetMessage(number), frameLength, version, segments);
    }
    if (image.size() % 2 != 0) writer.grow(1);
    return image;
}

void readScanImage(clsProtocolScanSrv& set, const Bytes& source) {
    // The fields take the image by reference; they read a copy of it.
    Bytes image = source;
    ByteReader reader(image);

    set.EndOfScanMessageType(reader.u8(EndOfMessageType));
    int32_t version = reader.u8(Version);
    set.ImageVersion(version);
    FrameChars stx = set.ScanSTXChars();
    FrameChars etx = set.ScanETXChars();
    readFrame(reader, STXMask, STXValues, stx);
    readFrame(reader, ETXMask, ETXValues, etx);
    for (int32_t i = 0; i < static_cast<int32_t>(stx.size()); ++i) {
        set.SetScanSTXValue(i, stx[static_cast<size_t>(i)].Value, stx[static_cast<size_t>(i)].ByAscii);
        set.SetScanETXValue(i, etx[static_cast<size_t>(i)].Value, etx[static_cast<size_t>(i)].ByAscii);
    }
    set.ScanSTXLength(reader.u8(STXLength));
    set.ScanETXLength(reader.u8(ETXLength));
    set.MessageLengthValue(reader.u16(MessageLengthValue));
    set.SilenceTimeValue(reader.u16(SilenceTimeValue));

    itfProtocolVar& checksum = *set.ScanChecksum();
    prepareChecksum(checksum, method_type::Send, method_type::Scan, version, false);
    checksum.SetVarBinData(image, ChecksumReadIndex);

    int32_t count = reader.u8(MessageCount);
    int32_t frameLength = set.ScanSTXLength() + set.ScanETXLength();
    set.ResetMessages(std::max(count, 1));
    ScopedObjectArena fieldMemory;
    for (int32_t number = 1; number <= count; ++number) {
        int64_t offset = reader.u16(static_cast<int64_t>(HeaderSize) + 2 * (number - 1));
        readMessage(image, reader, offset, *set.GetMessage(number), frameLength, version);
    }
}

}  // namespace qx
