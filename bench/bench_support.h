// What the benchmarks share: sets of 255 messages whose images come as close
// to the 65535 bytes of 16-bit offsets as the layout allows, a full message
// (500 positions, 50 fields, control characters), and the reference every
// benchmark is measured against: a memcpy of the same number of bytes, timed
// in the same run, reported as the counter "ratio_to_memcpy".
#pragma once
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "message/protocol_message.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"

namespace qx::bench {

inline constexpr size_t LargestImage = 65535;

// Registers a benchmark whose exceptions end it with SkipWithError, so that
// the run goes on, the failure is printed under its name, and the program
// exits with 1 (bench_main.cpp) instead of terminating.
benchmark::internal::Benchmark* registerGuarded(const char* name, void (*body)(benchmark::State&));
// How many guarded benchmarks threw in this run.
int failedBenchmarks();

#define QXFB_BENCHMARK(body)                                                                 \
    [[maybe_unused]] static ::benchmark::internal::Benchmark* const qxfb_registered_##body = \
        ::qx::bench::registerGuarded(#body, body)

// The CPU time of the calling thread. The machine is shared, so both sides
// of a ratio are taken in CPU time: waiting for a core counts in neither.
struct ThreadCpuClock {
    using duration = std::chrono::nanoseconds;
    using rep = duration::rep;
    using period = duration::period;
    using time_point = std::chrono::time_point<ThreadCpuClock>;
    static constexpr bool is_steady = true;
    static time_point now() noexcept;
};

// Allocations of the calling thread through operator new since it started.
uint64_t allocationCount();

// CPU nanoseconds one memcpy of size bytes takes on this machine now: the
// best of a few rounds of many copies.
double memcpyNanoseconds(size_t size);

// Times the loop of a benchmark in thread CPU time, leaving out what the
// benchmark excludes itself (restoring a message between batches), and sets
// the counters: image_bytes, memcpy_ns, op_ns, ratio_to_memcpy and
// allocs_per_op.
class CopyRatio {
public:
    // modelBytes, when given, adds the ratio to a memcpy of the model the
    // operation walks (model_bytes, model_memcpy_ns, ratio_to_model_memcpy):
    // the floor of an operation that must pass over every position once.
    CopyRatio(benchmark::State& state, size_t imageBytes, size_t modelBytes = 0);
    void start() {
        allocationsAtStart_ = allocationCount();
        start_ = Clock::now();
    }
    // Brackets work of the loop that is not the operation measured.
    void pause() { pausedAt_ = Clock::now(); }
    void resume() { excluded_ += Clock::now() - pausedAt_; }
    void finish();

private:
    using Clock = ThreadCpuClock;
    benchmark::State& state_;
    size_t imageBytes_;
    double copyNs_;
    size_t modelBytes_;
    double modelCopyNs_;
    Clock::time_point start_;
    Clock::time_point pausedAt_;
    Clock::duration excluded_{};
    uint64_t allocationsAtStart_ = 0;
};

// 255 messages of text runs with control characters and three fields each
// (decimal numeric, date, stream numeric; in a Scan decimal, checksum,
// stream), spread over all 500 positions; the text runs are as long as the
// image allows below 65535 bytes.
std::unique_ptr<clsProtocolSendSrv> denseSendSet();
std::unique_ptr<clsProtocolScanSrv> denseScanSet();

// A Send message using all 500 positions: a run of 25 text positions, then
// 50 times a numeric field of 4 positions and 5 of text, then 25 of text.
// Every fifth text position holds a control character.
MessagePtr fullMessage();
// Positions at 0 that an InsertChar or DeleteByPosition can take on the
// full message before a field would leave it or come to lie at 0.
inline constexpr int32_t FullMessageSlack = 25;

// The bytes the messages of a set hold: 500 wide characters and 500 control
// codes each.
template <class Set>
size_t modelBytesOf(const Set& set) {
    size_t bytes = 0;
    for (int32_t m = 1; m <= set.NumberOfMessages(); ++m)
        bytes +=
            set.GetMessage(m)->MessageString().size() * sizeof(wchar_t) + sizeof(clsProtocolMessage::ControlCharArray);
    return bytes;
}

// The size of the Send image of a set holding only that message.
size_t sendImageSizeOf(const clsProtocolMessage& message);

}  // namespace qx::bench
