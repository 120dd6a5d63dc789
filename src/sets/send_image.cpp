#include "sets/send_image.h"

#include <algorithm>
#include <utility>

#include "message/protocol_binary_var.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_date_var.h"
#include "message/protocol_list_text_var.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_time_var.h"
#include "platform/basics/object_arena.h"
#include "platform/basics/runtime_error.h"
#include "sets/constant_bytes.h"
#include "sets/image_blocks.h"
#include "sets/send_set.h"

namespace qx {

namespace {

// Header offsets.
constexpr size_t kMessageNumberType = 0;
constexpr size_t kMessageNumberBlock = 2;
constexpr size_t kCopyDestinationType = 8;
constexpr size_t kCopyDestinationAddress = 10;
constexpr size_t kCopyWhenOnType = 16;
constexpr size_t kCopyWhenOnAddress = 18;
constexpr size_t kVersion = 24;
constexpr size_t kEndOfMessageType = 25;
constexpr size_t kSTXMask = 26;
constexpr size_t kETXMask = 27;
constexpr size_t kSTXValues = 28;
constexpr size_t kETXValues = 32;
constexpr size_t kSTXLength = 36;
constexpr size_t kETXLength = 37;
// Always 1, and never read back.
constexpr size_t kMarker = 38;
// Record bytes 1 to 14 of the end-of-message checksum lie from 40; its
// reader is given the index two below the first of them.
constexpr size_t kChecksumRecordIndex = 39;
constexpr size_t kChecksumFirstByte = 40;
constexpr size_t kChecksumBytes = 14;
constexpr int32_t kChecksumReadIndex = 38;
constexpr size_t kCopyBytesCount = 54;
constexpr size_t kMessageCount = 56;
constexpr size_t kHeaderSize = 58;

// A message: S, three zero bytes, then 18 bytes a segment.
constexpr size_t kMessageHeaderSize = 4;
constexpr size_t kSegmentEntrySize = 18;
// Records of types 3 to 6 lie in the entry itself, from its byte 1.
constexpr size_t kInlineRecordSize = 17;

constexpr int32_t kConstantMode = 2;
constexpr int32_t kMemoryMode = 1;

// The message number is selected by nothing when there is one message: it
// becomes the constant 0, the operand itself changed.
void forceSingleMessage(clsOperand& operand, bool clearHasValue) {
    operand.OperandType(37);
    int32_t address = 0;
    operand.AllocateConstantAddress(address);
    operand.OperandAddress(address);
    operand.OperandConstantValue(0);
    if (clearHasValue) operand.HasValue(false);
}

// Constants hold their value in bytes 0 to 3 and their table address in 4
// to 5; any other operand its address in 0 to 1. Addresses are cut to 16 bits
// as in the field records, so an unlinked operand (-1) gives FF FF.
void writeMessageNumberBlock(ByteWriter& writer, const clsOperand& operand) {
    writer.u8(kMessageNumberType, operand.OperandType());
    Bytes value;
    if (ConstantToBytes(operand, value)) {
        writer.copy(kMessageNumberBlock, value);
        writer.low16(kMessageNumberBlock + 4, operand.OperandAddress());
    } else {
        writer.low16(kMessageNumberBlock, operand.OperandAddress());
    }
}

void writeOperandLink(ByteWriter& writer, size_t typeOffset, size_t addressOffset, const clsOperand& operand) {
    writer.u8(typeOffset, operand.OperandType());
    writer.low16(addressOffset, operand.OperandAddress());
}

void writeMessage(ByteWriter& writer, size_t& position, clsProtocolMessage& message, int32_t version,
                  std::vector<SegmentSpan>& segments) {
    message.segmentSpans(segments);
    size_t count = segments.size();
    writer.u8(position, static_cast<int64_t>(count));
    writer.grow(kMessageHeaderSize + kSegmentEntrySize * count);
    size_t data = position + kMessageHeaderSize + kSegmentEntrySize * count;
    for (size_t i = 0; i < count; ++i) {
        const SegmentSpan& segment = segments[i];
        size_t entry = position + kMessageHeaderSize + kSegmentEntrySize * i;
        int32_t type = segment::SendText;
        if (segment.SegmentKind == MessageSegment::VarKind) {
            prepareChecksum(*segment.Var, method_type::Send, method_type::Send, version, true);
            type = segment.Var->GetVarSegmentType();
        }
        writer.u8(entry, type);
        switch (type) {
            case segment::SendText:
                alignEven(writer, data);
                writer.u16(entry + 2, static_cast<int64_t>(data));
                data = appendFixedText(writer, data, message, segment);
                break;
            case segment::SendBinary:
            case segment::SendList:
                // These records hold absolute offsets of their texts, so they are
                // told where they will lie.
                alignEven(writer, data);
                writer.u16(entry + 2, static_cast<int64_t>(data));
                data = appendBlock(writer, data, segment.Var->GetVarBinData(static_cast<int32_t>(data)));
                break;
            case segment::SendDate:
            case segment::SendTime:
            case segment::SendNumeric:
            case segment::Checksum:
                copyRecord(writer, entry + 1, segment.Var->GetVarBinData(static_cast<int32_t>(entry + 1)),
                           kInlineRecordSize);
                break;
            default:
                break;
        }
    }
    position = data;
}

// A memory operand named by the image is linked; the host's table learns it
// when it does not know it yet.
void loadMemoryLink(clsOperand& operand, int32_t operandType, int32_t operandAddress, bool setMemoryMode) {
    operand.OperandType(operandType);
    operand.OperandAddress(operandAddress);
    operand.IsNew(false);
    if (!operand.IsRegistered()) {
        if (setMemoryMode) operand.OperandMode(kMemoryMode);
        operand.RegisterOperand();
    }
}

// The type is already written. A stored constant is read as a value only:
// it gets a new place in the host's constant table at each load.
void readMessageNumberBlock(const ByteReader& reader, clsOperand& operand, int32_t operandType) {
    switch (operandType) {
        case 34:
        case 37:
        case 35:
        case 38: {
            operand.OperandAddress(reader.u16(kMessageNumberBlock + 4));
            if (operandType == 34 || operandType == 37) {
                operand.OperandConstantValue(static_cast<int64_t>(reader.i32(kMessageNumberBlock)) * 10000);
            } else {
                Bytes value(4);
                for (size_t i = 0; i < value.size(); ++i)
                    value[i] = reader.u8(static_cast<int64_t>(kMessageNumberBlock + i));
                operand.OperandConstantValue(FourBytesToCurrency(value));
            }
            int32_t address = 0;
            operand.AllocateConstantAddress(address);
            operand.OperandAddress(address);
            operand.OperandMode(kConstantMode);
            break;
        }
        default:
            loadMemoryLink(operand, operandType, reader.u16(kMessageNumberBlock), true);
            break;
    }
}

// Characters of the texts a binary or list field loaded. An image that the
// writer made stores each text once, so all of them together never exceed
// the image; records that a lying image shares between many fields would.
size_t loadedTextSize(itfProtocolVar& field) {
    if (auto* binary = dynamic_cast<clsProtocolBinaryVar*>(&field))
        return binary->TextFor0().size() + binary->TextFor1().size();
    size_t size = 0;
    if (auto* list = dynamic_cast<clsProtocolistTextVar*>(&field))
        for (const auto& text : list->Texts()) size += text.size();
    return size;
}

void spendTextBudget(size_t& budget, itfProtocolVar& field) {
    size_t size = loadedTextSize(field);
    if (size > budget) raiseError(err::SubscriptOutOfRange);
    budget -= size;
}

void readMessage(Bytes& image, const ByteReader& reader, int64_t offset, clsProtocolMessage& message, int32_t version,
                 size_t& textBudget) {
    int32_t count = reader.u8(offset);
    MessageCanvas canvas(message);
    for (int32_t i = 0; i < count; ++i) {
        int64_t entry = offset + static_cast<int64_t>(kMessageHeaderSize + kSegmentEntrySize * static_cast<size_t>(i));
        VarPtr field;
        switch (reader.u8(entry)) {
            case segment::SendText:
                canvas.readFixedText(reader, reader.u16(entry + 2));
                break;
            case segment::SendBinary:
                field = makeShared<clsProtocolBinaryVar>();
                field->SetVarBinData(image, reader.u16(entry + 2));
                spendTextBudget(textBudget, *field);
                break;
            case segment::SendList:
                field = makeShared<clsProtocolistTextVar>();
                field->SetVarBinData(image, reader.u16(entry + 2));
                spendTextBudget(textBudget, *field);
                break;
            case segment::SendNumeric:
                field = makeShared<clsProtocolNumericVar>();
                field->SetVarBinData(image, static_cast<int32_t>(entry));
                break;
            case segment::SendDate:
                field = makeShared<clsProtocolDateVar>();
                field->SetVarBinData(image, static_cast<int32_t>(entry));
                break;
            case segment::SendTime:
                field = makeShared<clsProtocolTimeVar>();
                field->SetVarBinData(image, static_cast<int32_t>(entry));
                break;
            case segment::Checksum:
                field = makeShared<clsProtocolCSVar>();
                prepareChecksum(*field, method_type::Send, method_type::Send, version, true);
                field->SetVarBinData(image, static_cast<int32_t>(entry));
                break;
            default:
                // A type this reader does not know creates nothing, and the position stays.
                break;
        }
        if (field) canvas.placeField(std::move(field));
    }
}

}  // namespace

Bytes writeSendImage(clsProtocolSendSrv& set, bool clearHasValue) {
    int32_t count = set.GetNumberOfMessagesToDownload().ToI4();
    if (count == 1) forceSingleMessage(*set.OpMessageNumber(), clearHasValue);
    int32_t version = currentImageVersion();

    // One byte more than the header and the table need: the spare byte
    // travels behind the last message.
    Bytes image;
    image.reserve(ImageReserve);
    image.resize(kHeaderSize + 2 * static_cast<size_t>(count) + 1, 0);
    ByteWriter writer(image);
    writeMessageNumberBlock(writer, *set.OpMessageNumber());
    if (set.CopyBytesCount() >= 1) {
        writeOperandLink(writer, kCopyDestinationType, kCopyDestinationAddress, *set.OpCopyDestination());
        writeOperandLink(writer, kCopyWhenOnType, kCopyWhenOnAddress, *set.OpCopyWhenOn());
    }
    writer.u8(kVersion, version);
    writer.u8(kEndOfMessageType, set.SendETXLength() == 0 ? 0 : set.EndOfSendMessageType());
    writer.u8(kSTXMask, asciiMask(set.SendSTXChars()));
    writer.u8(kETXMask, asciiMask(set.SendETXChars()));
    writeFrameValues(writer, kSTXValues, set.SendSTXChars());
    writeFrameValues(writer, kETXValues, set.SendETXChars());
    writer.u8(kSTXLength, set.SendSTXLength());
    writer.u8(kETXLength, set.SendETXLength());
    writer.u8(kMarker, 1);

    itfProtocolVar& checksum = *set.SendChecksum();
    prepareChecksum(checksum, method_type::Send, method_type::Send, version, false);
    Bytes record = checksum.GetVarBinData(static_cast<int32_t>(kChecksumRecordIndex));
    if (record.size() < 1 + kChecksumBytes) raiseError(err::SubscriptOutOfRange);
    writer.copy(kChecksumFirstByte, record.data() + 1, kChecksumBytes);

    writer.u8(kCopyBytesCount, set.CopyBytesCount());
    writer.u8(kMessageCount, count);

    size_t position = kHeaderSize + 2 * static_cast<size_t>(count);
    std::vector<SegmentSpan> segments;
    for (int32_t number = 1; number <= count; ++number) {
        alignEven(writer, position);
        writer.u16(kHeaderSize + 2 * static_cast<size_t>(number - 1), static_cast<int64_t>(position));
        writeMessage(writer, position, *set.GetMessage(number), version, segments);
    }
    if (image.size() % 2 != 0) writer.grow(1);
    return image;
}

void readSendImage(clsProtocolSendSrv& set, const Bytes& source) {
    // The fields take the image by reference; they read a copy of it.
    Bytes image = source;
    ByteReader reader(image);

    int32_t messageNumberType = reader.u8(kMessageNumberType);
    if (messageNumberType != 0) {
        clsOperand& operand = *set.OpMessageNumber();
        operand.OperandType(messageNumberType);
        readMessageNumberBlock(reader, operand, messageNumberType);
    }

    set.CopyBytesCount(reader.u8(kCopyBytesCount));
    if (set.CopyBytesCount() >= 1) {
        loadMemoryLink(*set.OpCopyDestination(), reader.u8(kCopyDestinationType), reader.u16(kCopyDestinationAddress),
                       false);
        loadMemoryLink(*set.OpCopyWhenOn(), reader.u8(kCopyWhenOnType), reader.u16(kCopyWhenOnAddress), false);
    }

    int32_t version = reader.u8(kVersion);
    set.ImageVersion(version);
    int32_t endOfMessage = reader.u8(kEndOfMessageType);
    set.EndOfSendMessageType(endOfMessage == 0 ? 1 : endOfMessage);

    FrameChars stx = set.SendSTXChars();
    FrameChars etx = set.SendETXChars();
    readFrame(reader, kSTXMask, kSTXValues, stx);
    readFrame(reader, kETXMask, kETXValues, etx);
    for (int32_t i = 0; i < static_cast<int32_t>(stx.size()); ++i) {
        set.SetSendSTXValue(i, stx[static_cast<size_t>(i)].Value, stx[static_cast<size_t>(i)].ByAscii);
        set.SetSendETXValue(i, etx[static_cast<size_t>(i)].Value, etx[static_cast<size_t>(i)].ByAscii);
    }
    set.SendSTXLength(reader.u8(kSTXLength));
    set.SendETXLength(reader.u8(kETXLength));

    itfProtocolVar& checksum = *set.SendChecksum();
    prepareChecksum(checksum, method_type::Send, method_type::Send, version, false);
    checksum.SetVarBinData(image, kChecksumReadIndex);

    int32_t count = reader.u8(kMessageCount);
    set.ResetMessages(std::max(count, 1));
    size_t textBudget = image.size();
    ScopedObjectArena fieldMemory;
    for (int32_t number = 1; number <= count; ++number) {
        int64_t offset = reader.u16(static_cast<int64_t>(kHeaderSize) + 2 * (number - 1));
        readMessage(image, reader, offset, *set.GetMessage(number), version, textBudget);
    }
}

}  // namespace qx
