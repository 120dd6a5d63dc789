#include "runtime_model/scan_recognizer.h"

#include <algorithm>
#include <optional>

#include "message/protocol_cs_var.h"
#include "message/protocol_message.h"
#include "message/protocol_scan_numeric_var.h"
#include "runtime_model/field_codes.h"
#include "runtime_model/frame_stream.h"
#include "sets/scan_set.h"

namespace qx::model {

namespace {

constexpr int32_t EndChecksumThenEtx = 2;
constexpr int32_t EndEtxThenChecksum = 3;

using ByteView = std::span<const uint8_t>;

std::wstring shown(uint8_t byte) {
    if (byte >= 0x20 && byte < 0x7F) return std::wstring(L"\"") + static_cast<wchar_t>(byte) + L"\"";
    static const wchar_t* const hex = L"0123456789ABCDEF";
    return std::wstring{hex[byte >> 4], hex[byte & 0xF]};
}

std::wstring shown(ByteView bytes) {
    std::wstring text;
    for (uint8_t byte : bytes) text += (text.empty() ? L"" : L" ") + shown(byte);
    return text;
}

std::vector<uint8_t> frameChars(const FrameChars& chars, int32_t length) {
    std::vector<uint8_t> out;
    for (int32_t i = 0; i < length && i < static_cast<int32_t>(chars.size()); ++i)
        out.push_back(chars[static_cast<size_t>(i)].Value);
    return out;
}

// Frame characters are one to four bytes: a plain loop beats a call to memcmp.
bool startsWith(ByteView bytes, size_t at, const std::vector<uint8_t>& pattern) {
    if (at > bytes.size() || bytes.size() - at < pattern.size()) return false;
    for (size_t i = 0; i < pattern.size(); ++i)
        if (bytes[at + i] != pattern[i]) return false;
    return true;
}

std::optional<size_t> find(ByteView bytes, size_t from, const std::vector<uint8_t>& pattern) {
    if (pattern.empty()) return from;
    const uint8_t first = pattern.front();
    for (size_t at = from; at + pattern.size() <= bytes.size(); ++at)
        if (bytes[at] == first && startsWith(bytes, at, pattern)) return at;
    return std::nullopt;
}

int32_t hexDigit(uint8_t c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

struct Number {
    int64_t Value = 0;
    int32_t DecimalPlaces = 0;
    bool HasPoint = false;
};

// Decimal text: an optional sign in front, blanks before the digits (the
// leading spaces of a fixed width), digits and at most one point. The value
// is the number without its point; the digits behind the point count as the
// decimal places.
std::optional<Number> parseDecimal(ByteView text, bool signAllowed) {
    Number number;
    bool negative = false, digits = false;
    size_t i = 0;
    if (signAllowed && i < text.size() && (text[i] == '+' || text[i] == '-' || text[i] == ' ')) {
        negative = text[i] == '-';
        ++i;
    }
    while (i < text.size() && text[i] == ' ' && !digits) ++i;
    for (; i < text.size(); ++i) {
        const uint8_t c = text[i];
        if (c == '.' && !number.HasPoint) {
            number.HasPoint = true;
            continue;
        }
        if (c < '0' || c > '9') return std::nullopt;
        digits = true;
        // Beyond 18 digits the value no longer fits; the model refuses it.
        if (number.Value > 99'999'999'999'999'999) return std::nullopt;
        number.Value = number.Value * 10 + (c - '0');
        if (number.HasPoint) ++number.DecimalPlaces;
    }
    if (!digits) return std::nullopt;
    if (negative) number.Value = -number.Value;
    return number;
}

}  // namespace

struct CompiledSegment {
    bool IsText = true;
    int32_t StartPosition = 0;
    std::vector<uint8_t> Text;
    // The field, kept alive here, and what it is, found once.
    VarPtr Field;
    const clsProtocolScanNumericVar* Numeric = nullptr;
    const clsProtocolCSVar* Checksum = nullptr;
    // The first byte of the text that follows a field, where a field of no
    // fixed length ends.
    std::optional<uint8_t> Next;
};

struct CompiledMessage {
    int32_t Number = 0;
    int32_t Length = 0;
    std::vector<CompiledSegment> Segments;
    size_t NumericFields = 0;
};

namespace {

// The fixed text a message begins with, for the index; at most this long.
constexpr size_t LeadingKey = 16;

// FNV-1a over the leading text.
uint64_t leadingHash(ByteView text) {
    uint64_t hash = 0xcbf29ce484222325ull;
    for (uint8_t byte : text) hash = (hash ^ byte) * 0x100000001b3ull;
    return hash;
}

CompiledMessage compile(const clsProtocolMessage& message, int32_t number) {
    CompiledMessage out{number, message.MessageLength(), {}};
    std::vector<SegmentSpan> spans;
    message.segmentSpans(spans);
    for (const SegmentSpan& span : spans) {
        CompiledSegment segment;
        segment.StartPosition = span.StartPosition;
        if (span.SegmentKind == MessageSegment::TextKind) {
            segment.Text.resize(static_cast<size_t>(span.Count));
            message.textBytes(span.StartPosition, span.Count, segment.Text.data());
        } else {
            segment.IsText = false;
            segment.Field = span.Var;
            segment.Numeric = dynamic_cast<const clsProtocolScanNumericVar*>(span.Var.get());
            segment.Checksum = dynamic_cast<const clsProtocolCSVar*>(span.Var.get());
            if (segment.Numeric) ++out.NumericFields;
        }
        if (segment.IsText && !out.Segments.empty() && !out.Segments.back().IsText)
            out.Segments.back().Next = segment.Text.front();
        out.Segments.push_back(std::move(segment));
    }
    return out;
}

class MessageMatcher {
public:
    MessageMatcher(const CompiledMessage& message, ByteView frame, size_t begin, size_t end,
                   const ChecksumTable& checksums)
        : message_(message), frame_(frame), begin_(begin), at_(begin), end_(end), checksums_(checksums) {}

    // True when the whole message part matches; otherwise why says where not.
    bool run(std::vector<ReceivedField>& fields, std::wstring& why) {
        // The reasons are put into words only on the way out of a mismatch:
        // most frames meet most messages only to be turned away.
        const auto name = [this] { return L"message " + std::to_wstring(message_.Number); };
        if (message_.Length > 0 && end_ - begin_ != static_cast<size_t>(message_.Length)) {
            why = name() + L": " + std::to_wstring(message_.Length) + L" bytes expected, " +
                  std::to_wstring(end_ - begin_) + L" received";
            return false;
        }
        for (const CompiledSegment& segment : message_.Segments) {
            if (segment.IsText) {
                for (size_t i = 0; i < segment.Text.size(); ++i) {
                    if (at_ < end_ && frame_[at_] == segment.Text[i]) {
                        ++at_;
                        continue;
                    }
                    why = name() + L", position " + std::to_wstring(segment.StartPosition + static_cast<int32_t>(i)) +
                          L": " + shown(segment.Text[i]) + L" expected, " +
                          (at_ < end_ ? shown(frame_[at_]) + L" received" : std::wstring(L"the message ended"));
                    return false;
                }
                continue;
            }
            bool matched = true;
            if (segment.Numeric) {
                if (fields.empty()) fields.reserve(message_.NumericFields);
                ReceivedField field;
                field.Position = segment.StartPosition;
                field.Offset = at_;
                matched = numericField(*segment.Numeric, segment.Next, field, why);
                field.Length = at_ - field.Offset;
                if (matched) fields.push_back(std::move(field));
            } else if (segment.Checksum) {
                matched = checksumField(*segment.Checksum, why);
            }
            if (!matched) {
                why = name() + L", field at position " + std::to_wstring(segment.StartPosition) + L": " + why;
                return false;
            }
        }
        if (at_ != end_) {
            why = name() + L": " + std::to_wstring(end_ - at_) + L" bytes more than the message holds, from " +
                  shown(frame_[at_]);
            return false;
        }
        return true;
    }

private:
    bool take(size_t count, ByteView& out, std::wstring& why) {
        if (end_ - at_ < count) {
            why = std::to_wstring(count) + L" bytes expected, " + std::to_wstring(end_ - at_) + L" left";
            return false;
        }
        out = frame_.subspan(at_, count);
        at_ += count;
        return true;
    }

    // The bytes up to the next fixed byte of the message, or to its end.
    ByteView takeUntil(std::optional<uint8_t> next, bool numberOnly) {
        size_t stop = at_;
        while (stop < end_ && !(next && frame_[stop] == *next)) {
            const uint8_t c = frame_[stop];
            if (numberOnly && !((c >= '0' && c <= '9') || c == '.' || ((c == '+' || c == '-') && stop == at_))) break;
            ++stop;
        }
        ByteView out = frame_.subspan(at_, stop - at_);
        at_ = stop;
        return out;
    }

    bool numericField(const clsProtocolScanNumericVar& field, std::optional<uint8_t> next, ReceivedField& out,
                      std::wstring& why) {
        const OperandPtr operand = field.LikedOperand();
        out.OperandType = operand ? operand->OperandType() : 0;
        out.OperandAddress = operand ? operand->OperandAddress() : 0;
        if (field.StreamForm() == 1) {
            const StreamElement element = streamElementOf(field.CopyBytesFormat());
            ByteView bytes;
            if (field.VarFormat() == 4) {
                bytes = takeUntil(next, false);
                if (bytes.size() % static_cast<size_t>(element.Bytes) != 0) {
                    why = std::to_wstring(bytes.size()) + L" stream bytes are no whole number of elements of " +
                          std::to_wstring(element.Bytes);
                    return false;
                }
            } else if (!take(static_cast<size_t>(std::max(0, field.StreamVectorLength())) *
                                 static_cast<size_t>(element.Bytes),
                             bytes, why)) {
                return false;
            }
            for (size_t i = 0; i + static_cast<size_t>(element.Bytes) <= bytes.size();
                 i += static_cast<size_t>(element.Bytes))
                out.Values.push_back(readElement(element, bytes.subspan(i, static_cast<size_t>(element.Bytes))));
            // "Add Null To The End Of The Stream": the model stores a 0 behind the last element.
            if (field.AddNullToEndOfStream()) out.Values.push_back(0);
            return true;
        }
        const bool sign = field.PrefixSignFormat() != 0;
        if (field.VarFormat() == 1) {
            const ByteView text = takeUntil(next, true);
            return decimal(field, text, sign, out, why);
        }
        out.Values.reserve(static_cast<size_t>(std::max(1, field.VectorLength())));
        for (int32_t i = 0; i < std::max(1, field.VectorLength()); ++i) {
            ByteView text;
            if (field.VarFormat() == 2) {
                if (!take(static_cast<size_t>(std::max(0, field.BeforePoint())), text, why)) return false;
                uint64_t value = 0;
                for (uint8_t c : text) {
                    const int32_t digit = hexDigit(c);
                    if (digit < 0) {
                        why = L"a hexadecimal digit expected, " + shown(c) + L" received";
                        return false;
                    }
                    value = value * 16 + static_cast<uint64_t>(digit);
                }
                out.Values.push_back(static_cast<int64_t>(value));
                continue;
            }
            if (!take(static_cast<size_t>(std::max(0, field.BeforePoint()) + (sign ? 1 : 0)), text, why)) return false;
            if (!decimal(field, text, sign, out, why)) return false;
        }
        return true;
    }

    static bool decimal(const clsProtocolScanNumericVar& field, ByteView text, bool sign, ReceivedField& out,
                        std::wstring& why) {
        const std::optional<Number> number = parseDecimal(text, sign);
        if (!number) {
            why = L"a number expected, " + (text.empty() ? std::wstring(L"nothing") : shown(text)) + L" received";
            return false;
        }
        out.Values.push_back(number->Value);
        const OperandPtr point = field.DecimalPointOperand();
        if (point && !point->IsNew()) {
            out.HasDecimalPlaces = true;
            out.DecimalPointType = point->OperandType();
            out.DecimalPointAddress = point->OperandAddress();
            out.DecimalPlaces = number->DecimalPlaces;
        }
        return true;
    }

    bool checksumField(const clsProtocolCSVar& checksum, std::wstring& why) {
        const uint64_t value = checksumValue(checksum, frame_.subspan(0, at_), begin_, checksums_);
        const std::vector<uint8_t> expected = checksumBytes(checksum, value, checksums_);
        ByteView received;
        if (!take(expected.size(), received, why)) return false;
        if (!std::equal(expected.begin(), expected.end(), received.begin())) {
            why = L"checksum " + shown(expected) + L" expected, " + shown(received) + L" received";
            return false;
        }
        return true;
    }

    const CompiledMessage& message_;
    ByteView frame_;
    size_t begin_;
    size_t at_;
    size_t end_;
    const ChecksumTable& checksums_;
};

const clsProtocolCSVar* endChecksumOf(const clsProtocolScanSrv& set) {
    if (set.ScanETXLength() == 0) return nullptr;
    const int32_t type = set.EndOfScanMessageType();
    if (type != EndChecksumThenEtx && type != EndEtxThenChecksum) return nullptr;
    return dynamic_cast<const clsProtocolCSVar*>(set.ScanChecksum().get());
}

}  // namespace

ScanMatcher::ScanMatcher(const clsProtocolScanSrv& set, const ChecksumTable& checksums)
    : set_(set),
      checksums_(checksums),
      stx_(frameChars(set.ScanSTXChars(), set.ScanSTXLength())),
      etx_(frameChars(set.ScanETXChars(), set.ScanETXLength())) {
    for (int32_t number = 1; number <= set.NumberOfMessages(); ++number) {
        const MessagePtr message = set.GetMessage(number);
        if (!message || message->IsEmpty()) continue;
        messages_.push_back(compile(*message, number));
        const CompiledMessage& compiled = messages_.back();
        const size_t index = messages_.size() - 1;
        if (compiled.Segments.empty() || !compiled.Segments.front().IsText) {
            beginWithField_.push_back(index);
            continue;
        }
        const std::vector<uint8_t>& text = compiled.Segments.front().Text;
        const size_t length = std::min(text.size(), LeadingKey);
        byLeadingText_[leadingHash(ByteView(text).subspan(0, length))].push_back(index);
        if (std::find(leadingLengths_.begin(), leadingLengths_.end(), length) == leadingLengths_.end())
            leadingLengths_.push_back(length);
    }
}

ScanMatcher::~ScanMatcher() = default;

bool ScanMatcher::frameParts(std::span<const uint8_t> frame, size_t& begin, size_t& end, std::wstring& why) const {
    if (!startsWith(frame, 0, stx_)) {
        why = L"the start characters " + shown(stx_) + L" expected";
        return false;
    }
    const clsProtocolCSVar* checksum = endChecksumOf(set_);
    const size_t checksumSize = checksum ? checksumWidth(*checksum) : 0;
    if (frame.size() < stx_.size() + etx_.size() + checksumSize) {
        why = L"a frame of " + std::to_wstring(frame.size()) + L" bytes is too short for its frame";
        return false;
    }
    begin = stx_.size();
    end = frame.size() - etx_.size() - checksumSize;
    const bool checksumFirst = checksum && set_.EndOfScanMessageType() == EndChecksumThenEtx;
    const size_t etxAt = checksumFirst ? end + checksumSize : end;
    if (!startsWith(frame, etxAt, etx_)) {
        why = L"the end characters " + shown(etx_) + L" expected at byte " + std::to_wstring(etxAt);
        return false;
    }
    if (checksum) {
        const size_t at = checksumFirst ? end : end + etx_.size();
        const std::vector<uint8_t> expected = checksumBytes(
            *checksum, checksumValue(*checksum, frame.subspan(0, at), stx_.size(), checksums_), checksums_);
        const ByteView received = frame.subspan(at, checksumSize);
        if (!std::equal(expected.begin(), expected.end(), received.begin())) {
            why = L"the end-of-message checksum " + shown(expected) + L" expected, " + shown(received) + L" received";
            return false;
        }
    }
    return true;
}

std::span<const size_t> ScanMatcher::candidates(std::span<const uint8_t> message, std::vector<size_t>& buffer) const {
    // The common case, every message beginning with text of one length:
    // the bucket itself, already in order.
    if (beginWithField_.empty() && leadingLengths_.size() == 1) {
        if (message.size() < leadingLengths_.front()) return {};
        const auto at = byLeadingText_.find(leadingHash(message.subspan(0, leadingLengths_.front())));
        return at == byLeadingText_.end() ? std::span<const size_t>() : std::span<const size_t>(at->second);
    }
    buffer.assign(beginWithField_.begin(), beginWithField_.end());
    for (size_t length : leadingLengths_) {
        if (message.size() < length) continue;
        const auto at = byLeadingText_.find(leadingHash(message.subspan(0, length)));
        if (at != byLeadingText_.end()) buffer.insert(buffer.end(), at->second.begin(), at->second.end());
    }
    std::sort(buffer.begin(), buffer.end());
    return buffer;
}

Recognition ScanMatcher::Recognize(std::span<const uint8_t> frame) const {
    Recognition out;
    out.BytesReceived = frame.size();
    size_t begin = 0, end = 0;
    std::wstring why;
    if (!frameParts(frame, begin, end, why)) {
        out.WhyNot.push_back(std::move(why));
        return out;
    }
    // One buffer a thread: a capture has many frames.
    thread_local std::vector<size_t> buffer;
    for (size_t index : candidates(frame.subspan(begin, end - begin), buffer)) {
        std::vector<ReceivedField> fields;
        if (MessageMatcher(messages_[index], frame, begin, end, checksums_).run(fields, why)) {
            out.MessageNumber = messages_[index].Number;
            out.MessageBegin = begin;
            out.MessageEnd = end;
            out.Fields = std::move(fields);
            return out;
        }
    }
    // No match: every message says why, in order.
    if (messages_.empty()) out.WhyNot.push_back(L"the Scan has no message to match");
    for (const CompiledMessage& message : messages_) {
        std::vector<ReceivedField> fields;
        if (!MessageMatcher(message, frame, begin, end, checksums_).run(fields, why)) out.WhyNot.push_back(why);
    }
    return out;
}

std::vector<int32_t> ScanMatcher::AllMatches(std::span<const uint8_t> frame) const {
    std::vector<int32_t> numbers;
    size_t begin = 0, end = 0;
    std::wstring why;
    if (!frameParts(frame, begin, end, why)) return numbers;
    for (const CompiledMessage& message : messages_) {
        std::vector<ReceivedField> fields;
        if (MessageMatcher(message, frame, begin, end, checksums_).run(fields, why)) numbers.push_back(message.Number);
    }
    return numbers;
}

Recognition recognizeFrame(const clsProtocolScanSrv& set, std::span<const uint8_t> frame,
                           const ChecksumTable& checksums) {
    return ScanMatcher(set, checksums).Recognize(frame);
}

FrameCutter::FrameCutter(const clsProtocolScanSrv& set)
    : stx_(frameChars(set.ScanSTXChars(), set.ScanSTXLength())),
      etx_(frameChars(set.ScanETXChars(), set.ScanETXLength())),
      checksum_(endChecksumOf(set)),
      checksumBeforeEtx_(checksum_ && set.EndOfScanMessageType() == EndChecksumThenEtx),
      behindEtx_(checksum_ && !checksumBeforeEtx_ ? checksumWidth(*checksum_) : 0),
      messageLength_(etx_.empty() ? static_cast<size_t>(std::max(0, set.MessageLengthValue())) : 0) {}

size_t FrameCutter::MaxFrameBytes() const {
    const size_t message = messageLength_ ? messageLength_ : 4 * static_cast<size_t>(clsProtocolMessage::MaxPositions);
    return stx_.size() + message + etx_.size() + (checksum_ ? checksumWidth(*checksum_) : 0);
}

FrameCutter::Cut FrameCutter::Next(std::span<const uint8_t> bytes, size_t at) const {
    while (at < bytes.size()) {
        const std::optional<size_t> start = find(bytes, at, stx_);
        if (!start) return {};
        size_t frameEnd = 0;
        if (!etx_.empty()) {
            const std::optional<size_t> end = find(bytes, *start + stx_.size(), etx_);
            if (!end) return {Cut::Partial, *start, 0};
            // A new start before the end: the frame before it was cut off.
            if (!stx_.empty()) {
                const std::optional<size_t> restart = find(bytes, *start + 1, stx_);
                if (restart && *restart < *end) {
                    at = *restart;
                    continue;
                }
            }
            frameEnd = *end + etx_.size() + behindEtx_;
        } else {
            frameEnd = *start + stx_.size() + messageLength_;
        }
        if (frameEnd > bytes.size()) return {Cut::Partial, *start, 0};
        return {Cut::Frame, *start, frameEnd};
    }
    return {};
}

std::vector<FrameSpan> splitFrames(const clsProtocolScanSrv& set, std::span<const uint8_t> capture, size_t* leftOver) {
    std::vector<FrameSpan> frames;
    const FrameCutter cutter(set);
    const auto done = [&](size_t rest) {
        if (leftOver) *leftOver = rest;
        return frames;
    };
    if (cutter.EndsBySilence()) {
        // A silence ends the message: the bytes alone do not show where.
        if (!capture.empty()) frames.push_back({0, capture.size(), 0});
        return done(0);
    }
    // Where the bytes that belong to no frame begin: behind the last frame.
    size_t at = 0;
    while (at < capture.size()) {
        const FrameCutter::Cut cut = cutter.Next(capture, at);
        if (cut.What == FrameCutter::Cut::Nothing) return done(capture.size() - at);
        if (cut.What == FrameCutter::Cut::Partial) return done(capture.size() - cut.Begin);
        frames.push_back({cut.Begin, cut.End - cut.Begin, cut.Begin - at});
        at = cut.End;
    }
    return done(0);
}

}  // namespace qx::model
