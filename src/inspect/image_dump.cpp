#include "inspect/image_dump.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "inspect/image_words.h"
#include "message/field_state.h"
#include "message/itf_protocol_var.h"
#include "message/protocol_binary_var.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_date_var.h"
#include "message/protocol_list_text_var.h"
#include "message/protocol_message.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "message/protocol_time_var.h"
#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "serial/protocol_config.h"
#include "serial/protocol_copy_to_buffer.h"
#include "sets/image_layout.h"
#include "tcpip/mdl_eth_protocol.h"

namespace qx {

namespace {

using words::numbered;
using words::remarked;

// Offsets inside the field records, by record byte. The records of types 3
// to 6 of a Send message begin at entry byte 1, those of a Scan message at
// entry byte 4; binary and list records lie in the data area.
namespace send_numeric {
constexpr size_t LeadingZeros = 0;
constexpr size_t Format = 1;
constexpr size_t VectorLength = 2;  // StreamVectorLength in the stream form
constexpr size_t BeforePoint = 3;   // the CopyBytesFormat code in the stream form
constexpr size_t AfterPoint = 4;
constexpr size_t StreamLengthAddress = 5;
constexpr size_t OperandType = 7;
constexpr size_t OperandAddress = 9;
constexpr uint8_t StreamCode = 5;
}  // namespace send_numeric

namespace scan_numeric {
constexpr size_t Format = 0;
constexpr size_t VectorLength = 1;  // StreamVectorLength in the stream form
constexpr size_t BeforePoint = 2;   // the CopyBytesFormat code in the stream form
constexpr size_t OperandType = 4;
constexpr size_t OperandAddress = 6;
constexpr size_t DecimalPointType = 12;  // AddNullToEndOfStream in the stream form
constexpr size_t DecimalPointAddress = 14;
constexpr uint8_t HexCode = 4;
constexpr uint8_t StreamCode = 5;
}  // namespace scan_numeric

// A checksum's content, from the record byte S on (S is 1 in a 17-byte
// record, 0 in a 20-byte one); the image headers keep these 14 bytes.
namespace checksum {
constexpr size_t FormatView = 0;
constexpr size_t CSLength = 2;
constexpr size_t STXInCS = 3;
constexpr size_t OffsetFromForward = 6;
constexpr size_t OffsetTillBackwards = 7;
constexpr size_t CalculationType = 8;
constexpr size_t ModulusType = 9;
constexpr size_t SpecialAddition = 10;
constexpr size_t SA_FromValue = 11;
constexpr size_t SA_ToValue = 12;
constexpr size_t SA_AddedValue = 13;
constexpr size_t ContentSize = 14;
}  // namespace checksum

// A binary text record and a list record, by offset in the record.
namespace text_record {
constexpr size_t Kind = 0;
constexpr size_t OperandType = 2;
constexpr size_t OperandAddress = 4;
constexpr size_t Text0Offset = 10;
constexpr size_t Text0Length = 12;
constexpr size_t Text1Offset = 14;
constexpr size_t Text1Length = 16;
constexpr size_t ListCount = 10;
constexpr size_t ListAlignment = 11;
constexpr size_t ListEntrySize = 4;
constexpr uint8_t BinaryKind = 2;
constexpr uint8_t ListKind = 3;
}  // namespace text_record

// Date and time records hold their format in record byte 1.
constexpr size_t dateTimeFormat = 1;

std::string str(int64_t value) { return std::to_string(value); }

// Walks an image and builds its tree. Every read goes through the reader;
// need() comes first wherever the image might be short, so that the error
// says where and what.
class Walk {
public:
    explicit Walk(const Bytes& image)
        : image_(image), reader_(image), nodeBudget_(64 + 8 * image.size()), byteBudget_(64 + 2 * image.size()) {}

    size_t size() const { return image_.size(); }

    [[noreturn]] void fail(size_t offset, const std::string& text) const {
        throw RuntimeError(err::SubscriptOutOfRange, L"QxFBCom2",
                           fromUtf8("offset " + str(static_cast<int64_t>(offset)) + ": " + text));
    }

    // what: "a field record", "the header"...
    void need(size_t offset, size_t count, const std::string& what) const {
        const size_t total = image_.size();
        if (offset <= total && count <= total - offset) return;
        const std::string left = offset <= total ? words::bytes(total - offset) + " left"
                                                 : "the image ends at " + str(static_cast<int64_t>(total));
        fail(offset, what + " of " + words::bytes(count) + " expected, " + left);
    }

    uint8_t u8(size_t offset) const { return reader_.u8(static_cast<int64_t>(offset)); }
    uint16_t u16(size_t offset) const { return reader_.u16(static_cast<int64_t>(offset)); }
    uint32_t u32(size_t offset) const { return reader_.u32(static_cast<int64_t>(offset)); }
    bool allZero(size_t offset, size_t length) const {
        for (uint8_t b : reader_.block(static_cast<int64_t>(offset), length))
            if (b != 0) return false;
        return true;
    }

    // A new range; its bytes must lie inside the image.
    DumpNode node(size_t offset, size_t length, std::string name, std::string value = {}, bool layout = false) {
        need(offset, length, name);
        if (++nodes_ > nodeBudget_)
            fail(offset, "more ranges than an image of " + words::bytes(image_.size()) +
                             " can hold: messages or records are shared");
        return DumpNode{offset, length, std::move(name), std::move(value), layout, {}};
    }

    // A range without children.
    void leaf(DumpNode& parent, size_t offset, size_t length, std::string name, std::string value,
              bool layout = false) {
        DumpNode n = node(offset, length, std::move(name), std::move(value), layout);
        described_ += length;
        if (described_ > byteBudget_)
            fail(offset, "more bytes described than an image of " + words::bytes(image_.size()) +
                             " holds: messages or records are shared");
        end_ = std::max(end_, offset + length);
        parent.Children.push_back(std::move(n));
    }

    // Bytes that are always 0 and never read.
    void reserved(DumpNode& parent, size_t offset, size_t length) {
        leaf(parent, offset, length, "reserved", allZero(offset, length) ? "0" : "not 0 (never read)", true);
    }

    void add(DumpNode& parent, DumpNode child) {
        end_ = std::max(end_, child.Offset + child.Length);
        parent.Children.push_back(std::move(child));
    }

    // A text of a record, closed by a byte 0 within 255 characters; gives
    // its length without the 0.
    size_t recordText(size_t offset, const std::string& name) const {
        need(offset, 1, name + ", a text closed by a byte 0,");
        const size_t limit = std::min(image_.size() - offset, MaxRecordTextLength + 1);
        for (size_t i = 0; i < limit; ++i)
            if (u8(offset + i) == 0) return i;
        fail(offset, name + ", a text of at most " + str(MaxRecordTextLength) +
                         " characters closed by a byte 0, expected; no byte 0 within " + words::bytes(limit));
    }

    std::string quoted(size_t offset, size_t count) const {
        return words::quoted(reader_.block(static_cast<int64_t>(offset), count).data(), count);
    }

    // The furthest byte described so far.
    size_t end() const { return end_; }

private:
    const Bytes& image_;
    ByteReader reader_;
    size_t nodeBudget_;
    size_t byteBudget_;
    size_t nodes_ = 0;
    size_t described_ = 0;
    size_t end_ = 0;
};

// The end of the furthest range under the node.
size_t subtreeEnd(const DumpNode& node) {
    size_t end = node.Offset + node.Length;
    for (const DumpNode& child : node.Children) end = std::max(end, subtreeEnd(child));
    return end;
}

std::string operandLink(int32_t type, int32_t address) { return "type " + str(type) + ", address " + str(address); }

// The 14 bytes of a checksum's content from offset c.
void checksumContent(Walk& w, DumpNode& parent, size_t c, int32_t version) {
    using namespace checksum;
    const uint8_t format = w.u8(c + FormatView);
    std::string formatText = numbered(format, words::checksumFormat(format));
    if (words::checksumFormat(format).empty()) formatText = remarked(format, "no format code: FormatView stays");
    w.leaf(parent, c + FormatView, 1, "FormatView", formatText);
    w.reserved(parent, c + FormatView + 1, 1);
    w.leaf(parent, c + CSLength, 1, "CSLength", str(w.u8(c + CSLength)));
    const uint8_t stx = w.u8(c + STXInCS);
    if (version != 0)
        w.leaf(parent, c + STXInCS, 1, "STXInCS",
               stx != 0 ? numbered(stx, "Include STX in Checksum calculation") : remarked(stx, "STX not included"));
    else
        w.leaf(parent, c + STXInCS, 1, "STXInCS",
               remarked(stx, "not in an image of version 0: the reader takes the old default"));
    w.reserved(parent, c + STXInCS + 1, 2);
    w.leaf(parent, c + OffsetFromForward, 1, "OffsetFromForward", str(w.u8(c + OffsetFromForward)));
    w.leaf(parent, c + OffsetTillBackwards, 1, "OffsetTillBackwards", str(w.u8(c + OffsetTillBackwards)));
    const uint8_t calc = w.u8(c + CalculationType);
    w.leaf(parent, c + CalculationType, 1, "CalculationType", numbered(calc, words::calculation(calc)));
    const uint8_t mod = w.u8(c + ModulusType);
    w.leaf(parent, c + ModulusType, 1, "ModulusType", numbered(mod, words::modulus(mod)));
    const uint8_t special = w.u8(c + SpecialAddition);
    std::string specialText = special == 1   ? numbered(special, "Advanced: Set Limits")
                              : special == 0 ? remarked(special, "off")
                                             : remarked(special, "off: only 1 turns it on");
    w.leaf(parent, c + SpecialAddition, 1, "SpecialAddition", specialText);
    const char* names[] = {"SA_FromValue", "SA_ToValue", "SA_AddedValue"};
    for (size_t i = 0; i < 3; ++i) {
        const uint8_t value = w.u8(c + SA_FromValue + i);
        w.leaf(parent, c + SA_FromValue + i, 1, names[i],
               special == 1 || value == 0 ? str(value) : remarked(value, "not read: SpecialAddition off"));
    }
}

std::string checksumSummary(Walk& w, size_t c) {
    const uint8_t calc = w.u8(c + checksum::CalculationType);
    const std::string_view name = words::calculation(calc);
    return (name.empty() ? "calculation " + str(calc) : std::string(name)) + ", " +
           words::bytes(w.u8(c + checksum::CSLength));
}

// The four start or end characters, with the mask of those typed.
void frameChars(Walk& w, DumpNode& parent, size_t valuesOffset, uint8_t mask, uint8_t inUse, const std::string& side,
                const std::string& name) {
    std::string summary;
    for (size_t i = 0; i < image_layout::FrameCharCount && i < inUse; ++i) {
        if (i) summary += " ";
        summary += words::character(w.u8(valuesOffset + i));
    }
    if (inUse == 0) summary = "none in use";
    DumpNode group = w.node(valuesOffset, image_layout::FrameCharCount, name, summary);
    for (size_t i = 0; i < image_layout::FrameCharCount; ++i) {
        const uint8_t value = w.u8(valuesOffset + i);
        std::string text =
            str(value) + " " + words::character(value) + ((mask >> i) & 1 ? ", typed" : ", from the selector");
        if (i >= inUse) text += ", not in use";
        w.leaf(group, valuesOffset + i, 1, side + " character " + str(static_cast<int64_t>(i + 1)), text);
    }
    w.add(parent, std::move(group));
}

std::string maskText(uint8_t mask) {
    std::string typed;
    for (size_t i = 0; i < 8; ++i)
        if ((mask >> i) & 1) typed += (typed.empty() ? "" : ", ") + str(static_cast<int64_t>(i + 1));
    return typed.empty() ? remarked(mask, "none typed") : remarked(mask, "typed: " + typed);
}

std::string versionText(uint8_t version) {
    if (version == 0) return "0";
    if (version == 1) return remarked(version, "extended operands");
    return remarked(version, "not 0 or 1: read as a version other than 0");
}

// Where the reader places the next segment, and the check that it stays
// within the message's 500 positions.
struct Positions {
    int32_t Q = 0;
    void place(Walk& w, size_t offset, int32_t length, const std::string& what) {
        if (length < 0 || length > clsProtocolMessage::MaxPositions - Q)
            w.fail(offset, what + " of " + str(length) + " positions at position " + str(Q) + " runs past position " +
                               str(clsProtocolMessage::MaxPositions - 1));
        Q += length;
    }
};

// A fixed-text block at D: 0, 0, L, 0 and the L values.
DumpNode textBlock(Walk& w, size_t d, int32_t& count) {
    using namespace image_layout;
    w.need(d, FixedTextHeader, "a fixed-text block");
    count = w.u8(d + FixedTextCount);
    w.need(d + FixedTextHeader, static_cast<size_t>(count), "the values of a fixed text");
    DumpNode block = w.node(d, FixedTextHeader + static_cast<size_t>(count), "text block", "", true);
    w.reserved(block, d, 2);
    w.leaf(block, d + FixedTextCount, 1, "count", str(count), true);
    w.reserved(block, d + FixedTextCount + 1, 1);
    w.leaf(block, d + FixedTextHeader, static_cast<size_t>(count), "text",
           w.quoted(d + FixedTextHeader, static_cast<size_t>(count)));
    return block;
}

// A text of a binary or list record, with its byte 0.
void recordTextLeaf(Walk& w, DumpNode& parent, size_t offset, size_t length, const std::string& name) {
    w.leaf(parent, offset, length + 1, name, w.quoted(offset, length));
}

// ---------------------------------------------------------------- Send image

// The field's Length as the reader's field object gives it: set as the
// reader sets it, with no operand registered anywhere.
int32_t sendNumericLength(uint8_t format, uint8_t vector, uint8_t before, uint8_t after, uint8_t copyCode) {
    clsProtocolNumericVar field;
    if (format != send_numeric::StreamCode) {
        field.StreamForm(0);
        if (format == 1 || format == 2 || format == 3) {
            field.VarFormat(0);
            field.PrefixSignFormat(format == 1 ? 0 : format == 3 ? 1 : 2);
        } else if (format == 4) {
            field.VarFormat(1);
        }
        field.VectorLength(vector);
        field.BeforePoint(before);
        field.AfterPoint(after);
    } else {
        field.StreamForm(1);
        field.StreamVectorLength(vector);
        field.CopyBytesFormat(copyBytesFormatOfCode(copyCode, field.CopyBytesFormat()));
        if (vector < 1) {
            field.StreamVectorLength(1);
            field.StreamLengthAddress(0);
        }
    }
    return field.Length();
}

// A numeric record of a Send message at R.
int32_t sendNumericRecord(Walk& w, DumpNode& seg, size_t r, std::string& summary) {
    using namespace send_numeric;
    const uint8_t lz = w.u8(r + LeadingZeros);
    const uint8_t format = w.u8(r + Format);
    const uint8_t vector = w.u8(r + VectorLength);
    const uint8_t before = w.u8(r + BeforePoint);
    const uint8_t after = w.u8(r + AfterPoint);
    w.leaf(seg, r + LeadingZeros, 1, "LeadingZeros",
           words::leading(lz).empty() ? remarked(lz, "not 0 to 2: the reader keeps No Leading")
                                      : numbered(lz, words::leading(lz)));
    std::string_view formatName = words::sendFormat(format);
    w.leaf(seg, r + Format, 1, "format",
           formatName.empty() ? remarked(format, "no format code: the reader keeps Decimal ASCII")
                              : numbered(format, formatName));
    if (format == StreamCode) {
        w.leaf(seg, r + VectorLength, 1, "StreamVectorLength",
               vector == 0 ? remarked(vector, "indirect count") : str(vector));
        const std::string copy = words::sendCopyBytes(before);
        w.leaf(seg, r + BeforePoint, 1, "CopyBytesFormat",
               copy.empty() ? remarked(before, "no code: the reader keeps 1 byte") : numbered(before, copy));
        w.reserved(seg, r + AfterPoint, 1);
        if (vector == 0)
            w.leaf(seg, r + StreamLengthAddress, 2, "StreamLengthAddress", str(w.u16(r + StreamLengthAddress)));
        else
            w.reserved(seg, r + StreamLengthAddress, 2);
        summary = "numeric, " + std::string(formatName) + ", " +
                  (vector == 0 ? "count at address " + str(w.u16(r + StreamLengthAddress)) : str(vector) + " elements");
    } else {
        w.leaf(seg, r + VectorLength, 1, "VectorLength", str(vector));
        w.leaf(seg, r + BeforePoint, 1, "BeforePoint", str(before));
        w.leaf(seg, r + AfterPoint, 1, "AfterPoint", str(after));
        w.reserved(seg, r + AfterPoint + 1, 2);
        summary = "numeric, " + std::string(formatName.empty() ? "Decimal ASCII" : formatName);
    }
    w.leaf(seg, r + OperandType, 1, "LikedOperand type", words::operandType(w.u8(r + OperandType)));
    w.reserved(seg, r + OperandType + 1, 1);
    w.leaf(seg, r + OperandAddress, 2, "LikedOperand address", str(w.u16(r + OperandAddress)));
    w.reserved(seg, r + OperandAddress + 2, send_layout::InlineRecordSize - OperandAddress - 2);
    summary += ", operand " + operandLink(w.u8(r + OperandType), w.u16(r + OperandAddress));
    return sendNumericLength(format, vector, before, after, before);
}

// Binary text record at D; gives the field's length.
int32_t binaryRecord(Walk& w, DumpNode& seg, size_t d, std::string& summary) {
    using namespace text_record;
    w.need(d, clsProtocolBinaryVar::RecordHeaderSize, "a binary text record");
    DumpNode rec = w.node(d, clsProtocolBinaryVar::RecordHeaderSize, "binary text record");
    const uint8_t kind = w.u8(d + Kind);
    w.leaf(rec, d + Kind, 1, "record kind",
           kind == BinaryKind ? str(kind) : remarked(kind, "written as 2, never read"));
    w.reserved(rec, d + Kind + 1, 1);
    w.leaf(rec, d + OperandType, 1, "LikedOperand type", words::operandType(w.u8(d + OperandType)));
    w.reserved(rec, d + OperandType + 1, 1);
    w.leaf(rec, d + OperandAddress, 2, "LikedOperand address", str(w.u16(d + OperandAddress)));
    w.reserved(rec, d + OperandAddress + 2, Text0Offset - OperandAddress - 2);
    const size_t offset0 = w.u16(d + Text0Offset);
    const size_t length0 = w.recordText(offset0, "TextFor0");
    // The reader takes the second text from behind the first one's byte 0;
    // the stored offset and both lengths are for the controller.
    const size_t offset1 = offset0 + length0 + 1;
    const size_t length1 = w.recordText(offset1, "TextFor1");
    const size_t stored1 = w.u16(d + Text1Offset);
    w.leaf(rec, d + Text0Offset, 2, "TextFor0 offset", str(static_cast<int64_t>(offset0)), true);
    w.leaf(rec, d + Text0Length, 1, "TextFor0 length", str(w.u8(d + Text0Length)), true);
    w.reserved(rec, d + Text0Length + 1, 1);
    w.leaf(rec, d + Text1Offset, 2, "TextFor1 offset",
           stored1 == offset1 ? str(static_cast<int64_t>(stored1))
                              : remarked(static_cast<int64_t>(stored1), "never read: the reader takes TextFor1 from " +
                                                                            str(static_cast<int64_t>(offset1))),
           true);
    w.leaf(rec, d + Text1Length, 1, "TextFor1 length", str(w.u8(d + Text1Length)), true);
    w.reserved(rec, d + Text1Length + 1, 1);
    recordTextLeaf(w, rec, offset0, length0, "TextFor0");
    recordTextLeaf(w, rec, offset1, length1, "TextFor1");
    summary = "binary text, TextFor0 " + w.quoted(offset0, length0) + ", TextFor1 " + w.quoted(offset1, length1) +
              ", operand " + operandLink(w.u8(d + OperandType), w.u16(d + OperandAddress));
    w.add(seg, std::move(rec));
    // The field is as long as its longer text.
    return static_cast<int32_t>(std::max(length0, length1));
}

// List of texts record at D; gives the field's length.
int32_t listRecord(Walk& w, DumpNode& seg, size_t d, std::string& summary) {
    using namespace text_record;
    w.need(d, clsProtocolistTextVar::RecordHeaderSize, "a list of texts record");
    const uint8_t count = w.u8(d + ListCount);
    if (count == 0) w.fail(d + ListCount, "a count of 1 to 255 texts expected, 0 found");
    const size_t tableSize = ListEntrySize * count;
    w.need(d + clsProtocolistTextVar::RecordHeaderSize, tableSize, "the table of " + str(count) + " texts");
    DumpNode rec = w.node(d, clsProtocolistTextVar::RecordHeaderSize + tableSize, "list of texts record");
    const uint8_t kind = w.u8(d + Kind);
    w.leaf(rec, d + Kind, 1, "record kind", kind == ListKind ? str(kind) : remarked(kind, "written as 3, never read"));
    w.reserved(rec, d + Kind + 1, 1);
    w.leaf(rec, d + OperandType, 1, "LikedOperand type", words::operandType(w.u8(d + OperandType)));
    w.reserved(rec, d + OperandType + 1, 1);
    w.leaf(rec, d + OperandAddress, 2, "LikedOperand address", str(w.u16(d + OperandAddress)));
    w.reserved(rec, d + OperandAddress + 2, ListCount - OperandAddress - 2);
    w.leaf(rec, d + ListCount, 1, "number of texts", str(count));
    const uint8_t alignment = w.u8(d + ListAlignment);
    w.leaf(rec, d + ListAlignment, 1, "AlignmentStringSize",
           alignment == 0 ? remarked(alignment, "as long as the longest text") : str(alignment));
    size_t longest = 0;
    std::vector<std::pair<size_t, size_t>> texts;
    for (size_t i = 0; i < count; ++i) {
        const size_t entry = d + clsProtocolistTextVar::RecordHeaderSize + ListEntrySize * i;
        const std::string name = "text " + str(static_cast<int64_t>(i + 1));
        const size_t offset = w.u16(entry);
        w.leaf(rec, entry, 2, name + " offset", str(static_cast<int64_t>(offset)), true);
        w.leaf(rec, entry + 2, 1, name + " length", str(w.u8(entry + 2)), true);
        w.reserved(rec, entry + 3, 1);
        texts.emplace_back(offset, w.recordText(offset, name));
        longest = std::max(longest, texts.back().second);
    }
    summary = "list of " + str(count) + " texts:";
    for (size_t i = 0; i < texts.size(); ++i) {
        recordTextLeaf(w, rec, texts[i].first, texts[i].second, "text " + str(static_cast<int64_t>(i + 1)));
        summary += (i ? ", " : " ") + w.quoted(texts[i].first, texts[i].second);
    }
    summary += ", operand " + operandLink(w.u8(d + OperandType), w.u16(d + OperandAddress));
    w.add(seg, std::move(rec));
    return alignment >= 1 ? alignment : static_cast<int32_t>(longest);
}

void sendMessage(Walk& w, DumpNode& root, int32_t number, size_t p, int32_t version) {
    using namespace send_layout;
    const std::string name = "message " + str(number);
    w.need(p, MessageHeaderSize, "the header of " + name);
    const size_t count = w.u8(p);
    w.need(p + MessageHeaderSize, SegmentEntrySize * count,
           "the segment table of " + name + " (" + str(static_cast<int64_t>(count)) +
               (count == 1 ? " entry)" : " entries)"));
    DumpNode msg = w.node(p, MessageHeaderSize + SegmentEntrySize * count, name);
    w.leaf(msg, p, 1, "number of segments", str(static_cast<int64_t>(count)));
    w.reserved(msg, p + 1, MessageHeaderSize - 1);
    Positions at;
    for (size_t i = 0; i < count; ++i) {
        const size_t e = p + MessageHeaderSize + SegmentEntrySize * i;
        const uint8_t type = w.u8(e);
        const std::string where = " at position " + str(at.Q);
        DumpNode seg = w.node(e, SegmentEntrySize, "segment");
        int32_t length = 0;
        std::string summary;
        switch (type) {
            case segment::SendText: {
                const size_t d = w.u16(e + BlockOffset);
                w.leaf(seg, e, 1, "type", numbered(type, "fixed text"));
                w.reserved(seg, e + 1, 1);
                w.leaf(seg, e + BlockOffset, 2, "block offset", str(static_cast<int64_t>(d)), true);
                w.reserved(seg, e + BlockOffset + 2, SegmentEntrySize - BlockOffset - 2);
                DumpNode block = textBlock(w, d, length);
                summary = w.quoted(d + image_layout::FixedTextHeader, static_cast<size_t>(length));
                seg.Name = "text" + where;
                at.place(w, d + image_layout::FixedTextCount, length, "a fixed text");
                w.add(seg, std::move(block));
                break;
            }
            case segment::SendBinary:
            case segment::SendList: {
                const size_t d = w.u16(e + BlockOffset);
                w.leaf(seg, e, 1, "type",
                       numbered(type, type == segment::SendBinary ? "binary text" : "list of texts"));
                w.reserved(seg, e + 1, 1);
                w.leaf(seg, e + BlockOffset, 2, "record offset", str(static_cast<int64_t>(d)), true);
                w.reserved(seg, e + BlockOffset + 2, SegmentEntrySize - BlockOffset - 2);
                length =
                    type == segment::SendBinary ? binaryRecord(w, seg, d, summary) : listRecord(w, seg, d, summary);
                seg.Name = "field" + where;
                at.place(w, e, length, "a field");
                break;
            }
            case segment::SendDate:
            case segment::SendTime: {
                const bool date = type == segment::SendDate;
                const size_t r = e + InlineRecord;
                const uint8_t format = w.u8(r + dateTimeFormat);
                w.leaf(seg, e, 1, "type", numbered(type, date ? "date" : "time"));
                w.reserved(seg, r, dateTimeFormat);
                const std::string text = date ? words::dateFormat(format) : words::timeFormat(format);
                w.leaf(seg, r + dateTimeFormat, 1, date ? "DateFormatType" : "TimeFormatType",
                       text.empty() ? remarked(format, "no format: 0 positions") : numbered(format, text));
                w.reserved(seg, r + dateTimeFormat + 1, InlineRecordSize - dateTimeFormat - 1);
                if (date) {
                    clsProtocolDateVar field;
                    field.DateFormatType(format);
                    length = field.Length();
                } else {
                    clsProtocolTimeVar field;
                    field.TimeFormatType(format);
                    length = field.Length();
                }
                summary = std::string(date ? "date" : "time") + (text.empty() ? "" : " " + text);
                seg.Name = "field" + where;
                at.place(w, e, length, "a field");
                break;
            }
            case segment::SendNumeric:
                w.leaf(seg, e, 1, "type", numbered(type, "numeric"));
                length = sendNumericRecord(w, seg, e + InlineRecord, summary);
                seg.Name = "field" + where;
                at.place(w, e, length, "a field");
                break;
            case segment::Checksum: {
                const size_t r = e + InlineRecord;
                w.leaf(seg, e, 1, "type", numbered(type, "checksum"));
                w.reserved(seg, r, 1);
                checksumContent(w, seg, r + 1, version);
                w.reserved(seg, r + 1 + checksum::ContentSize, InlineRecordSize - 1 - checksum::ContentSize);
                clsProtocolCSVar field;
                field.CSLength(w.u8(r + 1 + checksum::CSLength));
                length = field.Length();
                summary = "checksum, " + checksumSummary(w, r + 1);
                seg.Name = "field" + where;
                at.place(w, e, length, "a field");
                break;
            }
            default:
                w.leaf(seg, e, 1, "type", remarked(type, "unknown: the reader creates nothing"));
                w.leaf(seg, e + 1, SegmentEntrySize - 1, "entry", "never read", true);
                seg.Name = "unknown segment" + where;
                break;
        }
        if (type != segment::SendText && length >= 0 && type <= segment::Checksum)
            summary += ", " + str(length) + (length == 1 ? " position" : " positions");
        seg.Value = summary;
        w.add(msg, std::move(seg));
    }
    const size_t end = subtreeEnd(msg);
    msg.Value = words::bytes(end - p) + ", " + str(static_cast<int64_t>(count)) +
                (count == 1 ? " segment, " : " segments, ") + str(at.Q) + " positions";
    msg.Length = end - p;
    w.add(root, std::move(msg));
}

std::string endOfMessageText(uint8_t type, uint8_t etxLength) {
    if (type == 0) return remarked(type, etxLength == 0 ? "no ETX: loads as 1 \"ETX\"" : "loads as 1 \"ETX\"");
    const std::string text = words::endOfMessage(type);
    return text.empty() ? remarked(type, "not 1 to 3") : numbered(type, text);
}

void sendCopyOperand(Walk& w, DumpNode& header, size_t typeOffset, size_t addressOffset, const std::string& name,
                     uint8_t copyCount) {
    const uint8_t type = w.u8(typeOffset);
    w.leaf(header, typeOffset, 1, name + " type",
           copyCount == 0 ? remarked(type, "not read: CopyBytesCount 0") : words::operandType(type));
    w.reserved(header, typeOffset + 1, addressOffset - typeOffset - 1);
    w.leaf(header, addressOffset, 2, name + " address", str(w.u16(addressOffset)));
    w.reserved(header, addressOffset + 2, typeOffset + send_layout::CopyOperandSize - addressOffset - 2);
}

DumpNode sendHeader(Walk& w, int32_t& version, size_t& messages) {
    using namespace send_layout;
    w.need(0, HeaderSize, "the header");
    DumpNode header = w.node(0, HeaderSize, "header");
    const uint8_t numberType = w.u8(MessageNumberType);
    w.leaf(
        header, MessageNumberType, 1, "OpMessageNumber type",
        numberType == 0 ? remarked(numberType, "none: the reader keeps the operand") : words::operandType(numberType));
    w.reserved(header, MessageNumberType + 1, MessageNumberBlock - MessageNumberType - 1);
    switch (numberType) {
        case 34:
        case 37:
        case 35:
        case 38: {
            const bool isSigned = numberType == 34 || numberType == 37;
            const uint32_t raw = w.u32(MessageNumberBlock);
            const int64_t value = isSigned ? static_cast<int64_t>(static_cast<int32_t>(raw)) : raw;
            w.leaf(header, MessageNumberBlock, 4, "OpMessageNumber value", str(value));
            w.leaf(header, MessageNumberBlock + 4, 2, "OpMessageNumber constant address",
                   remarked(w.u16(MessageNumberBlock + 4), "a new one at each load"), true);
            break;
        }
        default:
            w.leaf(header, MessageNumberBlock, 2, "OpMessageNumber address", str(w.u16(MessageNumberBlock)));
            w.reserved(header, MessageNumberBlock + 2, MessageNumberBlockSize - 2);
            break;
    }
    const uint8_t copyCount = w.u8(CopyBytesCount);
    sendCopyOperand(w, header, CopyDestinationType, CopyDestinationAddress, "OpCopyDestination", copyCount);
    sendCopyOperand(w, header, CopyWhenOnType, CopyWhenOnAddress, "OpCopyWhenOn", copyCount);
    version = w.u8(Version);
    w.leaf(header, Version, 1, "image version", versionText(static_cast<uint8_t>(version)));
    const uint8_t stxLength = w.u8(STXLength);
    const uint8_t etxLength = w.u8(ETXLength);
    w.leaf(header, EndOfMessageType, 1, "EndOfSendMessageType", endOfMessageText(w.u8(EndOfMessageType), etxLength));
    const uint8_t stxMask = w.u8(STXMask);
    const uint8_t etxMask = w.u8(ETXMask);
    w.leaf(header, STXMask, 1, "STX typed mask", maskText(stxMask));
    w.leaf(header, ETXMask, 1, "ETX typed mask", maskText(etxMask));
    frameChars(w, header, STXValues, stxMask, stxLength, "STX", "SendSTXChars");
    frameChars(w, header, ETXValues, etxMask, etxLength, "ETX", "SendETXChars");
    w.leaf(header, STXLength, 1, "SendSTXLength", str(stxLength));
    w.leaf(header, ETXLength, 1, "SendETXLength", str(etxLength));
    const uint8_t marker = w.u8(Marker);
    w.leaf(header, Marker, 1, "marker",
           remarked(marker, marker == 1 ? "always 1, never read" : "written as 1, never read"), true);
    w.reserved(header, Marker + 1, ChecksumFirstByte - Marker - 1);
    DumpNode sum = w.node(ChecksumFirstByte, ChecksumBytes, "SendChecksum", checksumSummary(w, ChecksumFirstByte));
    checksumContent(w, sum, ChecksumFirstByte, version);
    w.add(header, std::move(sum));
    w.leaf(header, CopyBytesCount, 1, "CopyBytesCount",
           copyCount == 0 ? remarked(copyCount, "no copy after the ETX") : str(copyCount));
    w.reserved(header, CopyBytesCount + 1, 1);
    messages = w.u8(MessageCount);
    w.leaf(header, MessageCount, 1, "number of messages", str(static_cast<int64_t>(messages)));
    w.reserved(header, MessageCount + 1, 1);
    return header;
}

// The table of message offsets at the given offset; gives the offsets.
std::vector<size_t> messageTable(Walk& w, DumpNode& root, size_t offset, size_t count) {
    std::vector<size_t> offsets;
    if (count == 0) return offsets;
    w.need(offset, image_layout::OffsetSize * count,
           "the table of " + str(static_cast<int64_t>(count)) + " message offsets");
    DumpNode table = w.node(offset, image_layout::OffsetSize * count, "message offsets", "", true);
    for (size_t i = 0; i < count; ++i) {
        const size_t at = offset + image_layout::OffsetSize * i;
        offsets.push_back(w.u16(at));
        w.leaf(table, at, image_layout::OffsetSize, "message " + str(static_cast<int64_t>(i + 1)),
               str(static_cast<int64_t>(offsets.back())), true);
    }
    w.add(root, std::move(table));
    return offsets;
}

void walkSend(Walk& w, DumpNode& root) {
    int32_t version = 0;
    size_t count = 0;
    w.add(root, sendHeader(w, version, count));
    const std::vector<size_t> offsets = messageTable(w, root, send_layout::HeaderSize, count);
    for (size_t i = 0; i < offsets.size(); ++i) sendMessage(w, root, static_cast<int32_t>(i + 1), offsets[i], version);
    // The writer leaves at least one spare byte behind the last message and
    // makes the length even.
    const size_t end = w.end();
    w.need(end, 1, "the spare byte behind the last message");
    if (w.size() % 2 != 0) w.fail(w.size(), "a Send image of even length expected, the image ends at an odd offset");
}

// ---------------------------------------------------------------- Scan image

int32_t scanVarFormatOf(uint8_t type, uint8_t format) {
    int32_t varFormat = 0;
    switch (type) {
        case segment::ScanNumericFree:
            varFormat = 1;
            break;
        case segment::ScanStreamFixed:
            varFormat = 3;
            break;
        case segment::ScanStreamFree:
            varFormat = 4;
            break;
        default:
            break;
    }
    if (format == scan_numeric::HexCode) varFormat = 2;
    return varFormat;
}

int32_t scanNumericLength(uint8_t type, uint8_t format, uint8_t vector, uint8_t second) {
    clsProtocolScanNumericVar field;
    field.VarFormat(scanVarFormatOf(type, format));
    if (format == scan_numeric::StreamCode) {
        field.StreamForm(1);
        field.StreamVectorLength(vector);
        field.CopyBytesFormat(copyBytesFormatOfCode(second, field.CopyBytesFormat()));
    } else {
        if (format == 1 || format == 2 || format == 3) field.PrefixSignFormat(format == 1 ? 0 : format == 3 ? 1 : 2);
        field.VectorLength(vector);
        field.BeforePoint(second);
    }
    return field.Length();
}

int32_t scanNumericRecord(Walk& w, DumpNode& seg, size_t r, uint8_t type, std::string& summary) {
    using namespace scan_numeric;
    const uint8_t format = w.u8(r + Format);
    const uint8_t vector = w.u8(r + VectorLength);
    const uint8_t second = w.u8(r + BeforePoint);
    const std::string_view formatName = words::scanFormat(format);
    w.leaf(seg, r + Format, 1, "format",
           formatName.empty() ? remarked(format, "no format code: the reader keeps Positive & Negative (+,-)")
                              : numbered(format, formatName));
    const bool stream = format == StreamCode;
    if (stream) {
        w.leaf(seg, r + VectorLength, 1, "StreamVectorLength", str(vector));
        const std::string copy = words::scanCopyBytes(second);
        w.leaf(seg, r + BeforePoint, 1, "CopyBytesFormat",
               copy.empty() ? remarked(second, "no code: the reader keeps 1 byte") : numbered(second, copy));
    } else {
        w.leaf(seg, r + VectorLength, 1, "VectorLength", str(vector));
        w.leaf(seg, r + BeforePoint, 1, "BeforePoint", str(second));
    }
    w.reserved(seg, r + BeforePoint + 1, 1);
    w.leaf(seg, r + OperandType, 1, "LikedOperand type", words::operandType(w.u8(r + OperandType)));
    w.reserved(seg, r + OperandType + 1, 1);
    w.leaf(seg, r + OperandAddress, 2, "LikedOperand address", str(w.u16(r + OperandAddress)));
    w.reserved(seg, r + OperandAddress + 2, DecimalPointType - OperandAddress - 2);
    const uint8_t extra = w.u8(r + DecimalPointType);
    if (stream) {
        w.leaf(seg, r + DecimalPointType, 1, "AddNullToEndOfStream",
               extra == 1   ? numbered(extra, "Add Null To The End Of The Stream")
               : extra == 0 ? remarked(extra, "no null added")
                            : remarked(extra, "no null added: only 1 adds it"));
        w.reserved(seg, r + DecimalPointType + 1, scan_layout::RecordSize - DecimalPointType - 1);
    } else {
        w.leaf(seg, r + DecimalPointType, 1, "DecimalPointOperand type",
               extra == 0 ? remarked(extra, "not linked") : words::operandType(extra));
        w.reserved(seg, r + DecimalPointType + 1, 1);
        if (extra != 0)
            w.leaf(seg, r + DecimalPointAddress, 2, "DecimalPointOperand address", str(w.u16(r + DecimalPointAddress)));
        else
            w.reserved(seg, r + DecimalPointAddress, 2);
        w.reserved(seg, r + DecimalPointAddress + 2, scan_layout::RecordSize - DecimalPointAddress - 2);
    }
    const int32_t varFormat = scanVarFormatOf(type, format);
    summary = "numeric, " +
              (stream ? std::string(words::scanVarFormat(type == segment::ScanStreamFixed ? 3 : 4))
                      : std::string(words::scanVarFormat(varFormat))) +
              ", operand " + operandLink(w.u8(r + OperandType), w.u16(r + OperandAddress));
    return scanNumericLength(type, format, vector, second);
}

std::string scanTypeText(uint8_t type) {
    switch (type) {
        case segment::ScanText:
            return numbered(type, "fixed text");
        case segment::ScanNumericFixed:
            return numbered(type, "numeric of fixed length");
        case segment::ScanNumericFree:
            return numbered(type, "numeric of no fixed length");
        case segment::ScanChecksum:
            return numbered(type, "checksum");
        case segment::ScanStreamFixed:
            return numbered(type, "stream of fixed length");
        case segment::ScanStreamFree:
            return numbered(type, "stream of no fixed length");
        default:
            return remarked(type, "unknown: the reader creates nothing");
    }
}

std::string flagsText(uint8_t flags) {
    std::string text;
    if (flags & scan_layout::FlagConstText) text = "fixed text";
    if (flags & scan_layout::FlagChecksumField) text += text.empty() ? "checksum field" : ", checksum field";
    if (flags & ~(scan_layout::FlagConstText | scan_layout::FlagChecksumField))
        text += text.empty() ? "unknown bits" : ", unknown bits";
    return remarked(flags, text.empty() ? "no fixed text, no checksum field" : text);
}

void scanMessage(Walk& w, DumpNode& root, int32_t number, size_t p, int32_t version, int32_t frameLength) {
    using namespace scan_layout;
    const std::string name = "message " + str(number);
    w.need(p, MessageHeaderSize, "the header of " + name);
    const size_t count = w.u8(p);
    w.need(p + MessageHeaderSize, SegmentEntrySize * count,
           "the segment table of " + name + " (" + str(static_cast<int64_t>(count)) +
               (count == 1 ? " entry)" : " entries)"));
    DumpNode msg = w.node(p, MessageHeaderSize + SegmentEntrySize * count, name);
    w.leaf(msg, p, 1, "number of segments", str(static_cast<int64_t>(count)));
    w.leaf(msg, p + MessageFlags, 1, "flags", flagsText(w.u8(p + MessageFlags)));
    const uint8_t expected = w.u8(p + MessageExpectedLength);
    w.leaf(msg, p + MessageExpectedLength, 1, "expected length",
           remarked(expected, "MessageLength " + str(std::max(expected - frameLength, 0)) + " with a frame of " +
                                  str(frameLength)));
    w.reserved(msg, p + MessageExpectedLength + 1, 1);
    Positions at;
    for (size_t i = 0; i < count; ++i) {
        const size_t e = p + MessageHeaderSize + SegmentEntrySize * i;
        const uint8_t type = w.u8(e + SegmentType);
        const std::string where = " at position " + str(at.Q);
        DumpNode seg = w.node(e, SegmentEntrySize, "segment");
        const uint16_t stored = w.u16(e);
        w.leaf(seg, e, 2, "StartPosition",
               stored == at.Q ? str(stored) : remarked(stored, "never read: the reader places it at " + str(at.Q)));
        w.leaf(seg, e + SegmentType, 1, "type", scanTypeText(type));
        w.reserved(seg, e + SegmentType + 1, 1);
        const size_t r = e + RecordOffset;
        int32_t length = 0;
        std::string summary;
        switch (type) {
            case segment::ScanText: {
                const size_t d = w.u16(r);
                w.leaf(seg, r, 2, "block offset", str(static_cast<int64_t>(d)), true);
                w.reserved(seg, r + 2, RecordSize - 2);
                DumpNode block = textBlock(w, d, length);
                summary = w.quoted(d + image_layout::FixedTextHeader, static_cast<size_t>(length));
                seg.Name = "text" + where;
                at.place(w, d + image_layout::FixedTextCount, length, "a fixed text");
                w.add(seg, std::move(block));
                break;
            }
            case segment::ScanNumericFixed:
            case segment::ScanNumericFree:
            case segment::ScanStreamFixed:
            case segment::ScanStreamFree:
                length = scanNumericRecord(w, seg, r, type, summary);
                seg.Name = "field" + where;
                at.place(w, e, length, "a field");
                break;
            case segment::ScanChecksum: {
                checksumContent(w, seg, r, version);
                w.reserved(seg, r + checksum::ContentSize, RecordSize - checksum::ContentSize);
                clsProtocolCSVar field;
                field.CSLength(w.u8(r + checksum::CSLength));
                length = field.Length();
                summary = "checksum, " + checksumSummary(w, r);
                seg.Name = "field" + where;
                at.place(w, e, length, "a field");
                break;
            }
            default:
                w.leaf(seg, r, RecordSize, "entry", "never read", true);
                seg.Name = "unknown segment" + where;
                break;
        }
        if (type != segment::ScanText && type <= segment::ScanStreamFree)
            summary += ", " + str(length) + (length == 1 ? " position" : " positions");
        seg.Value = summary;
        w.add(msg, std::move(seg));
    }
    const size_t end = subtreeEnd(msg);
    msg.Value = words::bytes(end - p) + ", " + str(static_cast<int64_t>(count)) +
                (count == 1 ? " segment, " : " segments, ") + str(at.Q) + " positions";
    msg.Length = end - p;
    w.add(root, std::move(msg));
}

DumpNode scanHeader(Walk& w, int32_t& version, size_t& messages, int32_t& frameLength) {
    using namespace scan_layout;
    w.need(0, HeaderSize, "the header");
    DumpNode header = w.node(0, HeaderSize, "header");
    const uint8_t stxLength = w.u8(STXLength);
    const uint8_t etxLength = w.u8(ETXLength);
    frameLength = stxLength + etxLength;
    w.leaf(header, EndOfMessageType, 1, "EndOfScanMessageType", endOfMessageText(w.u8(EndOfMessageType), etxLength));
    const uint8_t stxMask = w.u8(STXMask);
    const uint8_t etxMask = w.u8(ETXMask);
    w.leaf(header, STXMask, 1, "STX typed mask", maskText(stxMask));
    w.leaf(header, ETXMask, 1, "ETX typed mask", maskText(etxMask));
    version = w.u8(Version);
    w.leaf(header, Version, 1, "image version", versionText(static_cast<uint8_t>(version)));
    frameChars(w, header, STXValues, stxMask, stxLength, "STX", "ScanSTXChars");
    frameChars(w, header, ETXValues, etxMask, etxLength, "ETX", "ScanETXChars");
    w.leaf(header, STXLength, 1, "ScanSTXLength", str(stxLength));
    w.leaf(header, ETXLength, 1, "ScanETXLength", str(etxLength));
    w.leaf(header, MessageLengthValue, 2, "MessageLengthValue", str(w.u16(MessageLengthValue)));
    w.leaf(header, SilenceTimeValue, 2, "SilenceTimeValue", remarked(w.u16(SilenceTimeValue), "ms"));
    const uint8_t marker = w.u8(Marker);
    w.leaf(header, Marker, 1, "marker",
           remarked(marker, marker == 1 ? "always 1, never read" : "written as 1, never read"), true);
    w.reserved(header, Marker + 1, ChecksumFirstByte - Marker - 1);
    DumpNode sum = w.node(ChecksumFirstByte, ChecksumBytes, "ScanChecksum", checksumSummary(w, ChecksumFirstByte));
    checksumContent(w, sum, ChecksumFirstByte, version);
    w.add(header, std::move(sum));
    messages = w.u8(MessageCount);
    w.leaf(header, MessageCount, 1, "number of messages", str(static_cast<int64_t>(messages)));
    w.reserved(header, MessageCount + 1, 1);
    return header;
}

void walkScan(Walk& w, DumpNode& root) {
    int32_t version = 0;
    int32_t frameLength = 0;
    size_t count = 0;
    w.add(root, scanHeader(w, version, count, frameLength));
    const std::vector<size_t> offsets = messageTable(w, root, scan_layout::HeaderSize, count);
    for (size_t i = 0; i < offsets.size(); ++i)
        scanMessage(w, root, static_cast<int32_t>(i + 1), offsets[i], version, frameLength);
    // The writer rounds the length up to even.
    if (w.size() % 2 != 0) w.fail(w.size(), "a Scan image of even length expected, the image ends at an odd offset");
}

// ------------------------------------------------- the small images

void walkConfig(Walk& w, DumpNode& root) {
    w.need(0, clsProtocolConfigSrv::ImageSize, "a Config image");
    const uint8_t port = w.u8(0);
    const std::string name = words::comPort(port);
    w.leaf(root, 0, 1, "COM port",
           name.empty() ? remarked(port, "not COM1 to COM3: the dialog selects COM1") : numbered(port, name));
    w.reserved(root, 1, 1);
}

void walkCopyBuffer(Walk& w, DumpNode& root) {
    w.need(0, clsProtocolCopyToBufferSrv::ImageSize, "a Copy buffer image");
    const uint8_t format = w.u8(0);
    const std::string text = words::copyBufferFormat(format);
    w.leaf(root, 0, 1, "copy format",
           format == 0    ? remarked(format, "not chosen")
           : text.empty() ? remarked(format, "not 1, 2 or 4: no list item")
                          : numbered(format, text));
    w.reserved(root, 1, 1);
}

std::string ipText(uint32_t value) {
    std::string text;
    for (int shift = 0; shift < 32; shift += 8) {
        if (shift) text += '.';
        text += str((value >> shift) & 0xFF);
    }
    return text;
}

// One parameter of an address record; gives its text.
std::string addressParam(Walk& w, DumpNode& record, size_t offset, const std::string& name, bool ip) {
    DumpNode param = w.node(offset, eth::AddressParamSize, name);
    const uint8_t flag = w.u8(offset + eth::ParamFlagOffset);
    std::string text;
    if (flag == 0) {
        w.leaf(param, offset + eth::ParamFlagOffset, 1, "kind", remarked(flag, "linked to an MI"));
        w.reserved(param, offset + eth::ParamFlagOffset + 1, eth::ParamValueOffset - eth::ParamFlagOffset - 1);
        const uint16_t address = w.u16(offset + eth::ParamValueOffset);
        w.leaf(param, offset + eth::ParamValueOffset, 2, "MI address", str(address));
        w.reserved(param, offset + eth::ParamValueOffset + 2, eth::AddressParamSize - eth::ParamValueOffset - 2);
        text = "MI " + str(address) + (ip ? " to " + str(address + 3) : "");
    } else {
        w.leaf(
            param, offset + eth::ParamFlagOffset, 1, "kind",
            flag == eth::ParamConstantFlag ? remarked(flag, "constant") : remarked(flag, "constant: any flag but 0"));
        w.reserved(param, offset + eth::ParamFlagOffset + 1, eth::ParamValueOffset - eth::ParamFlagOffset - 1);
        const uint32_t value = w.u32(offset + eth::ParamValueOffset);
        text = value == 0 ? "none" : ip ? ipText(value) : str(static_cast<int32_t>(value));
        w.leaf(param, offset + eth::ParamValueOffset, 4, "Value", value == 0 ? remarked(0, "not used") : text);
    }
    param.Value = text;
    w.add(record, std::move(param));
    return text;
}

void walkAddressTable(Walk& w, DumpNode& root) {
    w.need(0, eth::TableHeaderSize, "the header of an address table");
    const uint8_t version = w.u8(eth::TableVersionOffset);
    const size_t count = w.u8(eth::TableCountOffset);
    w.need(eth::TableHeaderSize, count * eth::AddressRecordSize,
           "the " + str(static_cast<int64_t>(count)) + " address records");
    w.leaf(root, eth::TableVersionOffset, 1, "format version",
           version == eth::AddressTableVersion ? str(version) : remarked(version, "written as 100, never read"));
    w.leaf(root, eth::TableCountOffset, 1, "number of records",
           count == static_cast<size_t>(eth::AddressCount) ? str(static_cast<int64_t>(count))
                                                           : remarked(static_cast<int64_t>(count), "written as 16"));
    for (size_t i = 0; i < count; ++i) {
        const size_t at = eth::TableHeaderSize + i * eth::AddressRecordSize;
        DumpNode record = w.node(at, eth::AddressRecordSize, "address " + str(static_cast<int64_t>(i)));
        const uint8_t used = w.u8(at + eth::RecordUsedOffset);
        w.leaf(record, at + eth::RecordUsedOffset, 1, "IpAddress used",
               used == 1   ? remarked(used, "yes")
               : used == 0 ? remarked(used, "no")
                           : remarked(used, "never read"));
        w.reserved(record, at + eth::RecordUsedOffset + 1, eth::RecordIpAddressOffset - eth::RecordUsedOffset - 1);
        const std::string ip = addressParam(w, record, at + eth::RecordIpAddressOffset, "IpAddress", true);
        const std::string port = addressParam(w, record, at + eth::RecordPortOffset, "Port", false);
        const size_t d = at + eth::RecordDescriptionOffset;
        const std::string description = w.quoted(d, eth::DescriptionLength);
        w.leaf(record, d, eth::DescriptionLength, "Description", description);
        record.Value = "IP " + ip + ", port " + port + ", " + description;
        w.add(root, std::move(record));
    }
}

// The ranges no leaf describes: alignment padding, the spare byte, bytes
// behind the image's end that no reader looks at.
void describeGaps(Walk& w, DumpNode& root) {
    std::vector<std::pair<size_t, size_t>> ranges;
    std::vector<const DumpNode*> stack{&root};
    while (!stack.empty()) {
        const DumpNode* n = stack.back();
        stack.pop_back();
        if (n->Children.empty() && n != &root) ranges.emplace_back(n->Offset, n->Offset + n->Length);
        for (const DumpNode& child : n->Children) stack.push_back(&child);
    }
    std::sort(ranges.begin(), ranges.end());
    std::vector<DumpNode> gaps;
    size_t covered = 0;
    auto gap = [&](size_t from, size_t to) {
        if (from >= to) return;
        DumpNode n = w.node(from, to - from, "unused", "", true);
        n.Value = w.allZero(from, to - from) ? "0 (never read)" : "not 0 (never read)";
        gaps.push_back(std::move(n));
    };
    for (const auto& [from, to] : ranges) {
        gap(covered, from);
        covered = std::max(covered, to);
    }
    gap(covered, w.size());
    for (DumpNode& n : gaps) root.Children.push_back(std::move(n));
    std::stable_sort(root.Children.begin(), root.Children.end(),
                     [](const DumpNode& a, const DumpNode& b) { return a.Offset < b.Offset; });
}

// Send and Scan images: the fixed bytes every image of the kind has.
bool fitsSend(const Bytes& image) {
    using namespace send_layout;
    if (image.size() < HeaderSize + 2 || image.size() % 2 != 0) return false;
    if (image[Marker] != 1 || image[Marker + 1] != 0 || image[CopyBytesCount + 1] != 0 || image[MessageCount + 1] != 0)
        return false;
    const size_t count = image[MessageCount];
    const size_t first = HeaderSize + image_layout::OffsetSize * count;
    if (image.size() < first + 1) return false;
    return count == 0 || static_cast<size_t>(image[HeaderSize] | (image[HeaderSize + 1] << 8)) == first;
}

bool fitsScan(const Bytes& image) {
    using namespace scan_layout;
    if (image.size() < HeaderSize || image.size() % 2 != 0) return false;
    if (image[Marker] != 1 || image[Marker + 1] != 0 || image[MessageCount + 1] != 0) return false;
    const size_t count = image[MessageCount];
    const size_t first = HeaderSize + image_layout::OffsetSize * count;
    if (count == 0) return image.size() == HeaderSize;
    if (image.size() < first) return false;
    return static_cast<size_t>(image[HeaderSize] | (image[HeaderSize + 1] << 8)) == first;
}

bool fitsAddressTable(const Bytes& image) {
    return image.size() >= eth::TableHeaderSize && image[eth::TableVersionOffset] == eth::AddressTableVersion &&
           image.size() == eth::TableHeaderSize + image[eth::TableCountOffset] * eth::AddressRecordSize;
}

[[noreturn]] void notRecognised(const std::string& why) {
    throw RuntimeError(err::InvalidFileFormat, L"QxFBCom2",
                       fromUtf8("not an image of a known kind: " + why + "; name its kind"));
}

}  // namespace

std::string_view imageKindName(ImageKind kind) {
    switch (kind) {
        case ImageKind::Send:
            return "send";
        case ImageKind::Scan:
            return "scan";
        case ImageKind::Config:
            return "config";
        case ImageKind::CopyBuffer:
            return "copy";
        case ImageKind::AddressTable:
            return "address";
    }
    return "";
}

std::optional<ImageKind> imageKindOf(std::string_view name) {
    for (ImageKind kind :
         {ImageKind::Send, ImageKind::Scan, ImageKind::Config, ImageKind::CopyBuffer, ImageKind::AddressTable})
        if (imageKindName(kind) == name) return kind;
    return std::nullopt;
}

std::string_view imageKindTitle(ImageKind kind) {
    switch (kind) {
        case ImageKind::Send:
            return "Send image";
        case ImageKind::Scan:
            return "Scan image";
        case ImageKind::Config:
            return "Config image";
        case ImageKind::CopyBuffer:
            return "Copy buffer image";
        case ImageKind::AddressTable:
            return "TCP/IP address table";
    }
    return "";
}

Recognition recogniseImage(const Bytes& image) {
    if (fitsAddressTable(image) && image.size() == eth::TableHeaderSize)
        return Recognition{ImageKind::AddressTable, false};
    if (image.size() == clsProtocolConfigSrv::ImageSize) {
        const uint8_t first = image[0];
        if (image[1] != 0) notRecognised("a 2-byte image whose byte 1 is not 0");
        const bool config = !words::comPort(first).empty();
        const bool copy = first == 0 || !words::copyBufferFormat(first).empty();
        if (config) return Recognition{ImageKind::Config, copy};
        if (copy) return Recognition{ImageKind::CopyBuffer, false};
        notRecognised("a 2-byte image with " + str(first) +
                      " in byte 0, neither a COM port (1 to 3) nor a copy format (0, 1, 2 or 4)");
    }
    const bool address = fitsAddressTable(image);
    const bool send = fitsSend(image);
    const bool scan = fitsScan(image);
    if (address + send + scan > 1)
        notRecognised("a " + words::bytes(image.size()) + " image that fits more than one layout");
    if (address) return Recognition{ImageKind::AddressTable, false};
    if (send) return Recognition{ImageKind::Send, false};
    if (scan) return Recognition{ImageKind::Scan, false};
    notRecognised("an image of " + words::bytes(image.size()) + " fits no layout");
}

ImageDump dumpImage(const Bytes& image, std::optional<ImageKind> kind) {
    ImageDump dump;
    dump.Image = image;
    if (kind) {
        dump.Kind = *kind;
        dump.Source = KindSource::Named;
    } else {
        const Recognition found = recogniseImage(image);
        dump.Kind = found.Kind;
        dump.Source = found.Ambiguous ? KindSource::Ambiguous : KindSource::Recognised;
    }
    Walk w(dump.Image);
    dump.Root =
        DumpNode{0, image.size(), std::string(imageKindTitle(dump.Kind)), words::bytes(image.size()), false, {}};
    switch (dump.Kind) {
        case ImageKind::Send:
            walkSend(w, dump.Root);
            break;
        case ImageKind::Scan:
            walkScan(w, dump.Root);
            break;
        case ImageKind::Config:
            walkConfig(w, dump.Root);
            break;
        case ImageKind::CopyBuffer:
            walkCopyBuffer(w, dump.Root);
            break;
        case ImageKind::AddressTable:
            walkAddressTable(w, dump.Root);
            break;
    }
    describeGaps(w, dump.Root);
    return dump;
}

std::string hexText(const Bytes& image, size_t offset, size_t length) {
    static const char digits[] = "0123456789ABCDEF";
    std::string text;
    if (offset > image.size()) return text;
    length = std::min(length, image.size() - offset);
    text.reserve(length * 3);
    for (size_t i = 0; i < length; ++i) {
        if (i) text += ' ';
        text += digits[image[offset + i] >> 4];
        text += digits[image[offset + i] & 0xF];
    }
    return text;
}

std::string dumpText(const ImageDump& dump) {
    std::string out = dump.Root.Name + ", " + dump.Root.Value;
    if (dump.Source == KindSource::Recognised) out += " (recognised by its content)";
    if (dump.Source == KindSource::Ambiguous)
        out += " (recognised by its content; a Copy buffer image looks the same: --kind copy reads it as one)";
    out += "\noffset length\n";
    struct Item {
        const DumpNode* Node;
        size_t Depth;
    };
    std::vector<Item> stack;
    for (auto it = dump.Root.Children.rbegin(); it != dump.Root.Children.rend(); ++it) stack.push_back({&*it, 0});
    char numbers[32];
    while (!stack.empty()) {
        const Item item = stack.back();
        stack.pop_back();
        const DumpNode& n = *item.Node;
        std::snprintf(numbers, sizeof numbers, "%6zu %6zu  ", n.Offset, n.Length);
        out += numbers;
        out.append(2 * item.Depth, ' ');
        out += n.Name;
        if (!n.Value.empty()) out += ": " + n.Value;
        if (n.Children.empty() && n.Length > 0) out += "  [" + hexText(dump.Image, n.Offset, n.Length) + "]";
        out += '\n';
        for (auto it = n.Children.rbegin(); it != n.Children.rend(); ++it) stack.push_back({&*it, item.Depth + 1});
    }
    return out;
}

}  // namespace qx
