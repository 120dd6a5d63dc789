#include "runtime_model/send_renderer.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "message/protocol_binary_var.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_date_var.h"
#include "message/protocol_list_text_var.h"
#include "message/protocol_message.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_time_var.h"
#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "runtime_model/field_codes.h"
#include "sets/send_set.h"

namespace qx::model {

namespace {

// The end of message: 1 the end characters alone, 2 the checksum and then
// the end characters, 3 the end characters and then the checksum.
constexpr int32_t EndChecksumThenEtx = 2;
constexpr int32_t EndEtxThenChecksum = 3;

class Writer {
public:
    explicit Writer(RenderedMessage& out) : out_(out) {}
    void byte(uint8_t value, ByteOrigin::Kind kind, int32_t position = -1) {
        out_.Bytes.push_back(value);
        out_.Origins.push_back({kind, position});
    }
    void text(const std::string& bytes, ByteOrigin::Kind kind, int32_t position) {
        for (char c : bytes) byte(static_cast<uint8_t>(c), kind, position);
    }
    size_t size() const { return out_.Bytes.size(); }
    void note(std::wstring text) { out_.Notes.push_back(std::move(text)); }
    const std::vector<uint8_t>& bytes() const { return out_.Bytes; }

private:
    RenderedMessage& out_;
};

int64_t valueOf(const OperandPtr& operand, const OperandValues& values, int32_t offset = 0) {
    if (!operand || operand->IsNew()) return 0;
    return values.Get(operand->OperandType(), operand->OperandAddress() + offset);
}

std::string digits(uint64_t value, int32_t base) {
    static const char* const symbols = "0123456789ABCDEF";
    std::string out;
    do {
        out.insert(out.begin(), symbols[value % static_cast<uint64_t>(base)]);
        value /= static_cast<uint64_t>(base);
    } while (value != 0);
    return out;
}

// A number of the field's width: a wider one keeps its lowest digits (the
// model's choice; a note says so); a narrower one is padded as LeadingZeros
// says, or sent as it is with "No Leading".
std::string fitted(std::string number, int32_t width, int32_t leading, Writer& writer, int32_t position) {
    if (width > 0 && static_cast<int32_t>(number.size()) > width) {
        writer.note(L"position " + std::to_wstring(position) + L": " + std::to_wstring(number.size()) +
                    L" digits cut to " + std::to_wstring(width));
        number.erase(0, number.size() - static_cast<size_t>(width));
    }
    if (leading != 0 && static_cast<int32_t>(number.size()) < width)
        number.insert(0, static_cast<size_t>(width) - number.size(), leading == 1 ? '0' : ' ');
    return number;
}

// Decimal text: the value is an integer with AfterPoint implied decimals
// ("+00012.34" for 1234, five before and two after the point, leading
// zeros). The sign: "+" or "-" with PrefixSignFormat 1, "-" alone with 2
// (a positive number then has no sign character), none with 0.
std::string decimalText(const clsProtocolNumericVar& field, int64_t value, Writer& writer, int32_t position) {
    const bool negative = value < 0;
    uint64_t magnitude = negative ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
    uint64_t scale = 1;
    for (int32_t i = 0; i < field.AfterPoint(); ++i) scale *= 10;
    std::string text =
        fitted(digits(magnitude / scale, 10), field.BeforePoint(), field.LeadingZeros(), writer, position);
    if (field.AfterPoint() > 0) {
        std::string fraction = digits(magnitude % scale, 10);
        fraction.insert(0, static_cast<size_t>(field.AfterPoint()) - fraction.size(), '0');
        text += "." + fraction;
    }
    if (field.PrefixSignFormat() == 1) text.insert(text.begin(), negative ? '-' : '+');
    if (field.PrefixSignFormat() == 2 && negative) text.insert(text.begin(), '-');
    return text;
}

// Hexadecimal text of BeforePoint digits; a negative value is sent as its
// two's complement cut to those digits.
std::string hexText(const clsProtocolNumericVar& field, int64_t value, Writer& writer, int32_t position) {
    const int32_t width = field.BeforePoint();
    uint64_t bits = static_cast<uint64_t>(value);
    if (width > 0 && width < 16) bits &= (uint64_t{1} << (4 * width)) - 1;
    return fitted(digits(bits, 16), width, field.LeadingZeros(), writer, position);
}

void renderNumeric(const clsProtocolNumericVar& field, int32_t position, const OperandValues& values, Writer& writer) {
    if (field.StreamForm() == 1) {
        int64_t count = field.StreamVectorLength();
        if (field.StreamLengthAddress() > -1) count = values.Get(3, field.StreamLengthAddress());
        if (count < 0 || count > 255) {
            writer.note(L"position " + std::to_wstring(position) + L": a stream count of " + std::to_wstring(count) +
                        L" sends nothing");
            return;
        }
        const StreamElement element = streamElementOf(field.CopyBytesFormat());
        std::vector<uint8_t> bytes;
        for (int32_t i = 0; i < count; ++i) appendElement(element, valueOf(field.LikedOperand(), values, i), bytes);
        for (uint8_t byte : bytes) writer.byte(byte, ByteOrigin::Field, position);
        return;
    }
    for (int32_t i = 0; i < std::max(1, field.VectorLength()); ++i) {
        const int64_t value = valueOf(field.LikedOperand(), values, i);
        writer.text(field.VarFormat() == 1 ? hexText(field, value, writer, position)
                                           : decimalText(field, value, writer, position),
                    ByteOrigin::Field, position);
    }
}

std::string twoDigits(int32_t value) {
    return std::string{static_cast<char>('0' + value / 10 % 10), static_cast<char>('0' + value % 10)};
}

std::string dateText(int32_t format, const ModelClock& clock) {
    static const char* const shortDays[] = {"SUN", "MON", "TUE", "WED", "THU", "FRI", "SAT"};
    static const char* const longDays[] = {"SUNDAY",   "MONDAY", "TUESDAY", "WEDNESDAY",
                                           "THURSDAY", "FRIDAY", "SATURDAY"};
    const int32_t weekday = ((clock.Weekday % 7) + 7) % 7;
    switch (format) {
        case 2:
            return shortDays[weekday];
        case 3: {
            std::string day = longDays[weekday];
            day.resize(9, ' ');
            return day;
        }
        case 4:
            return twoDigits(clock.Day) + "/" + twoDigits(clock.Month);
        case 5:
            return twoDigits(clock.Month) + "/" + twoDigits(clock.Day);
        case 6:
            return twoDigits(clock.Day) + "/" + twoDigits(clock.Month) + "/" + twoDigits(clock.Year % 100);
        case 7:
            return twoDigits(clock.Month) + "/" + twoDigits(clock.Day) + "/" + twoDigits(clock.Year % 100);
        default:
            return {};
    }
}

std::string timeText(int32_t format, const ModelClock& clock) {
    std::string text = twoDigits(clock.Hour) + ":" + twoDigits(clock.Minute);
    if (format == 1) text += ":" + twoDigits(clock.Second);
    return format == 0 || format == 1 ? text : std::string{};
}

void renderChecksum(const clsProtocolCSVar& checksum, size_t afterStart, const ChecksumTable& table,
                    ByteOrigin::Kind kind, int32_t position, Writer& writer) {
    const uint64_t value = checksumValue(checksum, writer.bytes(), afterStart, table);
    for (uint8_t byte : checksumBytes(checksum, value, table)) writer.byte(byte, kind, position);
}

}  // namespace

RenderedMessage renderSendMessage(const clsProtocolSendSrv& set, int32_t messageNumber, const OperandValues& values,
                                  const ModelClock& clock, const ChecksumTable& checksums) {
    if (messageNumber < 1 || messageNumber > set.NumberOfMessages()) raiseError(err::SubscriptOutOfRange);
    const MessagePtr message = set.GetMessage(messageNumber);
    RenderedMessage out;
    Writer writer(out);
    const FrameChars start = set.SendSTXChars();
    for (int32_t i = 0; i < set.SendSTXLength() && i < static_cast<int32_t>(start.size()); ++i)
        writer.byte(start[static_cast<size_t>(i)].Value, ByteOrigin::Start);
    const size_t afterStart = writer.size();

    if (!message->IsEmpty()) {
        std::vector<SegmentSpan> spans;
        message->segmentSpans(spans);
        for (const SegmentSpan& span : spans) {
            if (span.SegmentKind == MessageSegment::TextKind) {
                std::vector<uint8_t> bytes(static_cast<size_t>(span.Count));
                message->textBytes(span.StartPosition, span.Count, bytes.data());
                const clsProtocolMessage::ControlCharArray controls = message->ControlChars();
                for (int32_t i = 0; i < span.Count; ++i) {
                    const int32_t position = span.StartPosition + i;
                    const bool control = controls[static_cast<size_t>(position)] != clsProtocolMessage::NoControlChar;
                    writer.byte(bytes[static_cast<size_t>(i)], control ? ByteOrigin::ControlChar : ByteOrigin::Text,
                                position);
                }
                continue;
            }
            const int32_t position = span.StartPosition;
            if (auto* numeric = dynamic_cast<clsProtocolNumericVar*>(span.Var.get())) {
                renderNumeric(*numeric, position, values, writer);
            } else if (auto* binary = dynamic_cast<clsProtocolBinaryVar*>(span.Var.get())) {
                const bool on = valueOf(binary->LikedOperand(), values) != 0;
                writer.text(toAnsi(on ? binary->TextFor1() : binary->TextFor0()), ByteOrigin::Field, position);
            } else if (auto* list = dynamic_cast<clsProtocolistTextVar*>(span.Var.get())) {
                const std::vector<std::wstring> texts = list->Texts();
                const int64_t index = valueOf(list->LikedOperand(), values);
                std::string text;
                if (index >= 0 && index < static_cast<int64_t>(texts.size())) {
                    text = toAnsi(texts[static_cast<size_t>(index)]);
                } else {
                    writer.note(L"position " + std::to_wstring(position) + L": the list has no text " +
                                std::to_wstring(index) + L"; nothing is sent for it");
                }
                // A fixed size pads with blanks or cuts, as the model reads it.
                if (list->AlignmentStringSize() > 0) text.resize(static_cast<size_t>(list->AlignmentStringSize()), ' ');
                writer.text(text, ByteOrigin::Field, position);
            } else if (auto* date = dynamic_cast<clsProtocolDateVar*>(span.Var.get())) {
                writer.text(dateText(date->DateFormatType(), clock), ByteOrigin::Field, position);
            } else if (auto* time = dynamic_cast<clsProtocolTimeVar*>(span.Var.get())) {
                writer.text(timeText(time->TimeFormatType(), clock), ByteOrigin::Field, position);
            } else if (auto* checksum = dynamic_cast<clsProtocolCSVar*>(span.Var.get())) {
                renderChecksum(*checksum, afterStart, checksums, ByteOrigin::Field, position, writer);
            }
        }
    }

    if (set.SendETXLength() > 0) {
        const auto* checksum = dynamic_cast<const clsProtocolCSVar*>(set.SendChecksum().get());
        const FrameChars end = set.SendETXChars();
        const auto etx = [&] {
            for (int32_t i = 0; i < set.SendETXLength() && i < static_cast<int32_t>(end.size()); ++i)
                writer.byte(end[static_cast<size_t>(i)].Value, ByteOrigin::End);
        };
        const auto sum = [&] {
            if (!checksum) return;
            renderChecksum(*checksum, afterStart, checksums, ByteOrigin::EndChecksum, -1, writer);
        };
        if (set.EndOfSendMessageType() == EndChecksumThenEtx) sum();
        etx();
        if (set.EndOfSendMessageType() == EndEtxThenChecksum) sum();
    }
    return out;
}

}  // namespace qx::model
