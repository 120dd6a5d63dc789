// Frames from a live line. FrameCutter finds where a Scan set's frames
// begin and end in bytes (the start characters, then the end characters and
// a checksum behind them, or the message length); splitFrames cuts a whole
// capture with it, and FrameStream cuts bytes as they arrive, chunk by
// chunk: a frame split across reads waits for its rest, frames glued
// together come out one by one, bytes between frames are skipped and
// counted, a frame begun and not finished in time is reported as cut, and a
// set that ends its messages by a silence has its frames ended by the gaps
// between arrivals. Memory stays bounded: what waits is at most one frame,
// and a frame longer than the set allows is dropped and counted.
#pragma once
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace qx {
class clsProtocolScanSrv;
class clsProtocolCSVar;
}  // namespace qx

namespace qx::model {

class FrameCutter {
public:
    explicit FrameCutter(const clsProtocolScanSrv& set);

    const std::vector<uint8_t>& Stx() const { return stx_; }
    const std::vector<uint8_t>& Etx() const { return etx_; }
    // The end-of-message checksum when the end of message puts one beside
    // the end characters; null otherwise.
    const clsProtocolCSVar* EndChecksum() const { return checksum_; }
    bool ChecksumBeforeEtx() const { return checksumBeforeEtx_; }
    // No end characters and no message length: only a silence ends a frame.
    bool EndsBySilence() const { return etx_.empty() && messageLength_ == 0; }
    // The longest frame the set can receive: the frame characters and the
    // message length, or without one 500 positions of up to 4 bytes each
    // (a stream field of no fixed length takes more bytes than positions).
    size_t MaxFrameBytes() const;

    struct Cut {
        enum Kind {
            Frame,    // a whole frame, [Begin, End)
            Partial,  // a frame begins at Begin and is not whole yet
            Nothing,  // no frame begins from the place given on
        };
        Kind What = Nothing;
        size_t Begin = 0;
        size_t End = 0;
    };
    // The next frame from at on. A frame whose start characters come again
    // before its end was cut off: the later start begins the frame.
    Cut Next(std::span<const uint8_t> bytes, size_t at) const;

private:
    std::vector<uint8_t> stx_, etx_;
    const clsProtocolCSVar* checksum_ = nullptr;
    bool checksumBeforeEtx_ = false;
    size_t behindEtx_ = 0;
    size_t messageLength_ = 0;
};

enum class FrameEnd {
    Terminator,  // the end characters (and checksum), or the message length
    Silence,     // the line fell silent, for a set that ends its frames so
    Timeout,     // a frame begun and not finished in time: cut
    TooLong,     // a frame longer than the set allows, dropped: no bytes
};

struct StreamFrame {
    // Valid only while the sink runs.
    std::span<const uint8_t> Bytes;
    FrameEnd EndedBy = FrameEnd::Terminator;
    // Bytes since the frame before that belonged to no frame.
    size_t SkippedBefore = 0;
    // For a dropped frame, how many bytes it had when it was dropped.
    size_t DroppedBytes = 0;
    // When its last byte came.
    std::chrono::steady_clock::time_point LastByte;
};

struct FrameStreamOptions {
    // A frame begun and not whole this long after its last byte is cut.
    std::chrono::milliseconds CutAfter{500};
    // For a set ended by a silence: the gap that ends a frame; 0 takes the
    // set's silence time (at least 1 ms).
    std::chrono::milliseconds Silence{0};
    // 0 takes FrameCutter::MaxFrameBytes.
    size_t MaxFrameBytes = 0;
};

class FrameStream {
public:
    using Clock = std::chrono::steady_clock;
    using TimePoint = Clock::time_point;
    using Sink = std::function<void(const StreamFrame&)>;

    explicit FrameStream(const clsProtocolScanSrv& set, FrameStreamOptions options = {});

    // Bytes received at the time given (times never go back).
    void Feed(std::span<const uint8_t> chunk, TimePoint at, const Sink& sink);
    // Nothing came until now: ends what waits when its time is up.
    void Idle(TimePoint now, const Sink& sink);
    // The line closed: ends what waits at once.
    void Flush(const Sink& sink);
    // When Idle will end what waits; nothing when nothing waits.
    std::optional<TimePoint> Deadline() const;

    size_t Pending() const { return buffer_.size() - head_; }
    // The most bytes the stream ever held at once.
    size_t HighWater() const { return highWater_; }
    size_t MaxFrameBytes() const { return maxFrame_; }
    size_t Frames() const { return frames_; }
    size_t CutFrames() const { return cut_; }
    size_t DroppedFrames() const { return dropped_; }
    size_t SkippedBytes() const { return skippedTotal_; }

private:
    void cut(TimePoint at, const Sink& sink);
    void endPending(const Sink& sink);
    void deliver(std::span<const uint8_t> bytes, FrameEnd how, TimePoint at, const Sink& sink);
    void skip(size_t count);

    FrameCutter cutter_;
    std::chrono::milliseconds waitLimit_;
    size_t maxFrame_;
    std::vector<uint8_t> buffer_;
    size_t head_ = 0;
    TimePoint last_{};
    size_t skipped_ = 0;
    size_t highWater_ = 0, frames_ = 0, cut_ = 0, dropped_ = 0, skippedTotal_ = 0;
};

}  // namespace qx::model
