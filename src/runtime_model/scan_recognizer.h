// The model's recognition of received bytes against a Scan set: a capture
// is cut into frames by the set's terminator, and each frame is held against
// the messages of the set in order. A match gives the message number, the
// bytes received and the value of every field; no match gives, for each
// message, where and why it did not match. Like the renderer, the model
// reads the settings as their names say (scan_recognizer.cpp states each
// choice).
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "runtime_model/checksum_catalogue.h"

namespace qx {
class clsProtocolScanSrv;
}

namespace qx::model {

// What one field received: the values for its operand and the following
// ones of a vector, and for a number with a decimal point the digits behind
// it, which go to the field's decimal-point operand.
struct ReceivedField {
    int32_t Position = 0;
    // Where in the frame the field's bytes stand.
    size_t Offset = 0;
    size_t Length = 0;
    int32_t OperandType = 0;
    int32_t OperandAddress = 0;
    std::vector<int64_t> Values;
    bool HasDecimalPlaces = false;
    int32_t DecimalPointType = 0;
    int32_t DecimalPointAddress = 0;
    int32_t DecimalPlaces = 0;
};

struct Recognition {
    // 1-based; 0 when no message matched.
    int32_t MessageNumber = 0;
    // The bytes of the frame, start and end characters included.
    size_t BytesReceived = 0;
    // With a match, the message between the frame's start characters and
    // its end characters (with the end-of-message checksum): [MessageBegin,
    // MessageEnd) of the frame.
    size_t MessageBegin = 0;
    size_t MessageEnd = 0;
    std::vector<ReceivedField> Fields;
    // Without a match: one line for each message, "message 2, position 3:
    // "A" expected, "B" received".
    std::vector<std::wstring> WhyNot;
};

struct CompiledMessage;

// A Scan set made ready for many frames: each message's segments once, and
// an index from the fixed text a message begins with to the messages, so
// that a frame is held only against the messages it can be. The set's
// fields are shared, not copied; a change to the set needs a new matcher.
class ScanMatcher {
public:
    ScanMatcher(const clsProtocolScanSrv& set, const ChecksumTable& checksums);
    ~ScanMatcher();
    ScanMatcher(const ScanMatcher&) = delete;
    ScanMatcher& operator=(const ScanMatcher&) = delete;

    // Holds one frame (start characters, message, end characters and
    // checksum as the set frames them) against the messages to download, in
    // order; the first that matches wins.
    Recognition Recognize(std::span<const uint8_t> frame) const;
    // Every message that the frame matches, in order; for warnings about
    // messages that cannot be told apart.
    std::vector<int32_t> AllMatches(std::span<const uint8_t> frame) const;

private:
    bool frameParts(std::span<const uint8_t> frame, size_t& begin, size_t& end, std::wstring& why) const;
    // The messages a frame can be, in order; in the buffer, which the caller
    // reuses, or in the index itself.
    std::span<const size_t> candidates(std::span<const uint8_t> message, std::vector<size_t>& buffer) const;

    const clsProtocolScanSrv& set_;
    const ChecksumTable& checksums_;
    std::vector<uint8_t> stx_, etx_;
    std::vector<CompiledMessage> messages_;
    // By a hash of the leading text: a collision only adds a candidate, which
    // the match itself then turns away.
    std::unordered_map<uint64_t, std::vector<size_t>> byLeadingText_;
    std::vector<size_t> leadingLengths_;
    // Messages that begin with a field: every frame is held against them.
    std::vector<size_t> beginWithField_;
};

// One frame against a set, through a matcher made for it.
Recognition recognizeFrame(const clsProtocolScanSrv& set, std::span<const uint8_t> frame,
                           const ChecksumTable& checksums);

// A frame found in a capture, by its place.
struct FrameSpan {
    size_t Offset = 0;
    size_t Length = 0;
    // Bytes before it that belonged to no frame (noise, a cut frame).
    size_t SkippedBefore = 0;
};

// Cuts a capture into frames by the set's terminator: the end characters
// (and a checksum behind them when the end of message puts it there), or
// the message length counted behind the start characters. A set that ends
// its messages by a silence cannot be cut from bytes alone: the whole
// capture is one frame. Bytes after the last complete frame are left over
// (the caller may hold them for the next read).
std::vector<FrameSpan> splitFrames(const clsProtocolScanSrv& set, std::span<const uint8_t> capture,
                                   size_t* leftOver = nullptr);

}  // namespace qx::model
