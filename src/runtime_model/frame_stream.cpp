#include "runtime_model/frame_stream.h"

#include <algorithm>

#include "sets/scan_set.h"

namespace qx::model {

namespace {

std::chrono::milliseconds waitLimitOf(const FrameCutter& cutter, const clsProtocolScanSrv& set,
                                      const FrameStreamOptions& options) {
    if (!cutter.EndsBySilence()) return options.CutAfter;
    if (options.Silence.count() > 0) return options.Silence;
    return std::chrono::milliseconds(std::max(1, set.SilenceTimeValue()));
}

}  // namespace

FrameStream::FrameStream(const clsProtocolScanSrv& set, FrameStreamOptions options)
    : cutter_(set),
      waitLimit_(waitLimitOf(cutter_, set, options)),
      maxFrame_(options.MaxFrameBytes ? options.MaxFrameBytes : cutter_.MaxFrameBytes()) {
    buffer_.reserve(maxFrame_ + 4096);
}

void FrameStream::deliver(std::span<const uint8_t> bytes, FrameEnd how, TimePoint at, const Sink& sink) {
    StreamFrame frame;
    frame.Bytes = bytes;
    frame.EndedBy = how;
    frame.SkippedBefore = skipped_;
    frame.LastByte = at;
    skipped_ = 0;
    if (how == FrameEnd::Timeout) ++cut_;
    ++frames_;
    sink(frame);
}

void FrameStream::skip(size_t count) {
    skipped_ += count;
    skippedTotal_ += count;
    head_ += count;
}

void FrameStream::Feed(std::span<const uint8_t> chunk, TimePoint at, const Sink& sink) {
    if (Pending() != 0 && at - last_ >= waitLimit_) endPending(sink);
    // Only what waits is moved to the front: at most one frame.
    buffer_.erase(buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(head_));
    head_ = 0;
    buffer_.insert(buffer_.end(), chunk.begin(), chunk.end());
    highWater_ = std::max(highWater_, buffer_.size());
    last_ = at;
    cut(at, sink);
}

void FrameStream::cut(TimePoint at, const Sink& sink) {
    const std::span<const uint8_t> bytes(buffer_);
    if (cutter_.EndsBySilence()) {
        if (Pending() > maxFrame_) {
            StreamFrame dropped;
            dropped.EndedBy = FrameEnd::TooLong;
            dropped.DroppedBytes = Pending();
            dropped.LastByte = at;
            ++dropped_;
            head_ = buffer_.size();
            sink(dropped);
        }
        return;
    }
    for (;;) {
        const FrameCutter::Cut next = cutter_.Next(bytes, head_);
        if (next.What == FrameCutter::Cut::Frame) {
            skip(next.Begin - head_);
            head_ = next.End;
            deliver(bytes.subspan(next.Begin, next.End - next.Begin), FrameEnd::Terminator, at, sink);
            continue;
        }
        if (next.What == FrameCutter::Cut::Nothing) {
            // The last bytes may be the first of the start characters.
            const size_t keep = std::min(Pending(), cutter_.Stx().empty() ? 0 : cutter_.Stx().size() - 1);
            skip(Pending() - keep);
            return;
        }
        skip(next.Begin - head_);
        if (Pending() <= maxFrame_) return;
        // Too long for the set: dropped. Without start characters all that
        // waits goes; else its start, and the search goes on behind it.
        StreamFrame dropped;
        dropped.EndedBy = FrameEnd::TooLong;
        dropped.DroppedBytes = Pending();
        dropped.LastByte = at;
        dropped.SkippedBefore = skipped_;
        skipped_ = 0;
        ++dropped_;
        head_ = cutter_.Stx().empty() ? buffer_.size() : head_ + cutter_.Stx().size();
        sink(dropped);
    }
}

void FrameStream::endPending(const Sink& sink) {
    const std::span<const uint8_t> bytes(buffer_);
    if (cutter_.EndsBySilence()) {
        const size_t from = head_;
        head_ = buffer_.size();
        deliver(bytes.subspan(from), FrameEnd::Silence, last_, sink);
    } else {
        const FrameCutter::Cut next = cutter_.Next(bytes, head_);
        if (next.What == FrameCutter::Cut::Partial) {
            skip(next.Begin - head_);
            head_ = buffer_.size();
            deliver(bytes.subspan(next.Begin), FrameEnd::Timeout, last_, sink);
        } else {
            skip(Pending());
        }
    }
    buffer_.clear();
    head_ = 0;
}

void FrameStream::Idle(TimePoint now, const Sink& sink) {
    if (Pending() != 0 && now - last_ >= waitLimit_) endPending(sink);
}

void FrameStream::Flush(const Sink& sink) {
    if (Pending() != 0) endPending(sink);
}

std::optional<FrameStream::TimePoint> FrameStream::Deadline() const {
    if (Pending() == 0) return std::nullopt;
    return last_ + waitLimit_;
}

}  // namespace qx::model
