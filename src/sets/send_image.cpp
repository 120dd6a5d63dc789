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
#include "sets/image_layout.h"
#include "sets/send_set.h"

namespace qx {

namespace {

using namespace send_layout;

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
    writer.u8(MessageNumberType, operand.OperandType());
    Bytes value;
    if (ConstantToBytes(operand, value)) {
        writer.copy(MessageNumberBlock, value);
        writer.low16(MessageNumberBlock + 4, operand.OperandAddress());
    } else {
        writer.low16(MessageNumberBlock, operand.OperandAddress());
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
    writer.grow(MessageHeaderSize + SegmentEntrySize * count);
    size_t data = position + MessageHeaderSize + SegmentEntrySize * count;
    for (size_t i = 0; i < count; ++i) {
        const SegmentSpan& segment = segments[i];
        size_t entry = position + MessageHeaderSize + SegmentEntrySize * i;
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
                           InlineRecordSize);
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
            operand.OperandAddress(reader.u16(MessageNumberBlock + 4));
            if (operandType == 34 || operandType == 37) {
                operand.OperandConstantValue(static_cast<int64_t>(reader.i32(MessageNumberBlock)) * 10000);
            } else {
                Bytes value(4);
                for (size_t i = 0; i < value.size(); ++i)
                    value[i] = reader.u8(static_cast<int64_t>(MessageNumberBlock + i));
                operand.OperandConstantValue(FourBytesToCurrency(value));
            }
            int32_t address = 0;
            operand.AllocateConstantAddress(address);
            operand.OperandAddress(address);
            operand.OperandMode(kConstantMode);
            break;
        }
        default:
            loadMemoryLink(operand, operandType, reader.u16(MessageNumberBlock), true);
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
        int64_t entry = offset + static_cast<int64_t>(MessageHeaderSize + SegmentEntrySize * static_cast<size_t>(i));
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
    image.resize(HeaderSize + 2 * static_cast<size_t>(count) + 1, 0);
    ByteWriter writer(image);
    writeMessageNumberBlock(writer, *set.OpMessageNumber());
    if (set.CopyBytesCount() >= 1) {
        writeOperandLink(writer, CopyDestinationType, CopyDestinationAddress, *set.OpCopyDestination());
        writeOperandLink(writer, CopyWhenOnType, CopyWhenOnAddress, *set.OpCopyWhenOn());
    }
    writer.u8(Version, version);
    writer.u8(EndOfMessageType, set.SendETXLength() == 0 ? 0 : set.EndOfSendMessageType());
    writer.u8(STXMask, asciiMask(set.SendSTXChars()));
    writer.u8(ETXMask, asciiMask(set.SendETXChars()));
    writeFrameValues(writer, STXValues, set.SendSTXChars());
    writeFrameValues(writer, ETXValues, set.SendETXChars());
    writer.u8(STXLength, set.SendSTXLength());
    writer.u8(ETXLength, set.SendETXLength());
    writer.u8(Marker, 1);

    itfProtocolVar& checksum = *set.SendChecksum();
    prepareChecksum(checksum, method_type::Send, method_type::Send, version, false);
    Bytes record = checksum.GetVarBinData(static_cast<int32_t>(ChecksumRecordIndex));
    if (record.size() < 1 + ChecksumBytes) raiseError(err::SubscriptOutOfRange);
    writer.copy(ChecksumFirstByte, record.data() + 1, ChecksumBytes);

    writer.u8(CopyBytesCount, set.CopyBytesCount());
    writer.u8(MessageCount, count);

    size_t position = HeaderSize + 2 * static_cast<size_t>(count);
    std::vector<SegmentSpan> segments;
    for (int32_t number = 1; number <= count; ++number) {
        alignEven(writer, position);
        writer.u16(HeaderSize + 2 * static_cast<size_t>(number - 1), static_cast<int64_t>(position));
        writeMessage(writer, position, *set.GetMessage(number), version, segments);
    }
    if (image.size() % 2 != 0) writer.grow(1);
    return image;
}

void readSendImage(clsProtocolSendSrv& set, const Bytes& source) {
    // The fields take the image by reference; they read a copy of it.
    Bytes image = source;
    ByteReader reader(image);

    int32_t messageNumberType = reader.u8(MessageNumberType);
    if (messageNumberType != 0) {
        clsOperand& operand = *set.OpMessageNumber();
        operand.OperandType(messageNumberType);
        readMessageNumberBlock(reader, operand, messageNumberType);
    }

    set.CopyBytesCount(reader.u8(CopyBytesCount));
    if (set.CopyBytesCount() >= 1) {
        loadMemoryLink(*set.OpCopyDestination(), reader.u8(CopyDestinationType), reader.u16(CopyDestinationAddress),
                       false);
        loadMemoryLink(*set.OpCopyWhenOn(), reader.u8(CopyWhenOnType), reader.u16(CopyWhenOnAddress), false);
    }

    int32_t version = reader.u8(Version);
    set.ImageVersion(version);
    int32_t endOfMessage = reader.u8(EndOfMessageType);
    set.EndOfSendMessageType(endOfMessage == 0 ? 1 : endOfMessage);

    FrameChars stx = set.SendSTXChars();
    FrameChars etx = set.SendETXChars();
    readFrame(reader, STXMask, STXValues, stx);
    readFrame(reader, ETXMask, ETXValues, etx);
    for (int32_t i = 0; i < static_cast<int32_t>(stx.size()); ++i) {
        set.SetSendSTXValue(i, stx[static_cast<size_t>(i)].Value, stx[static_cast<size_t>(i)].ByAscii);
        set.SetSendETXValue(i, etx[static_cast<size_t>(i)].Value, etx[static_cast<size_t>(i)].ByAscii);
    }
    set.SendSTXLength(reader.u8(STXLength));
    set.SendETXLength(reader.u8(ETXLength));

    itfProtocolVar& checksum = *set.SendChecksum();
    prepareChecksum(checksum, method_type::Send, method_type::Send, version, false);
    checksum.SetVarBinData(image, ChecksumReadIndex);

    int32_t count = reader.u8(MessageCount);
    set.ResetMessages(std::max(count, 1));
    size_t textBudget = image.size();
    ScopedObjectArena fieldMemory;
    for (int32_t number = 1; number <= count; ++number) {
        int64_t offset = reader.u16(static_cast<int64_t>(HeaderSize) + 2 * (number - 1));
        readMessage(image, reader, offset, *set.GetMessage(number), version, textBudget);
    }
}

}  // namespace qx
