// Editing a full message (500 positions, 50 fields, control characters):
// typing and deleting at position 0, which moves every field and control
// character, and cutting it into segments. Each is set against a memcpy of
// the Send image of that one message.
#include <benchmark/benchmark.h>

#include <string>

#include "bench_support.h"
#include "platform/host/host_context.h"

namespace qx::bench {
namespace {

// InsertChar and DeleteByPosition change the message they work on; it is put
// back from a replica before it could lose a field or refuse the key, and
// that is left out of the time.
template <class Edit>
void editAtZero(benchmark::State& state, Edit edit) {
    ScopedHostContext host;
    const MessagePtr full = fullMessage();
    CopyRatio ratio(state, sendImageSizeOf(*full));
    MessagePtr message = full->GetReplica();
    int32_t done = 0;
    ratio.start();
    for (auto _ : state) {
        if (done == FullMessageSlack) {
            state.PauseTiming();
            ratio.pause();
            message = full->GetReplica();
            done = 0;
            ratio.resume();
            state.ResumeTiming();
        }
        edit(*message);
        ++done;
    }
    ratio.finish();
    state.counters["fields"] = message->NumberOfVars();
    state.counters["beeps"] = host->BeepCount;
}

void BM_InsertCharFullMessage(benchmark::State& state) {
    const std::wstring typed = L"X";
    editAtZero(state, [&](clsProtocolMessage& message) { message.InsertChar(0, typed); });
}

void BM_DeleteByPositionFullMessage(benchmark::State& state) {
    editAtZero(state, [](clsProtocolMessage& message) { message.DeleteByPosition(0); });
}

void BM_GetSegmentsFullMessage(benchmark::State& state) {
    ScopedHostContext host;
    const MessagePtr full = fullMessage();
    CopyRatio ratio(state, sendImageSizeOf(*full));
    ratio.start();
    size_t segments = 0;
    for (auto _ : state) {
        auto cut = full->GetSegments();
        segments = cut.size();
        benchmark::DoNotOptimize(cut.data());
    }
    ratio.finish();
    state.counters["segments"] = static_cast<double>(segments);
}

QXFB_BENCHMARK(BM_InsertCharFullMessage);
QXFB_BENCHMARK(BM_DeleteByPositionFullMessage);
QXFB_BENCHMARK(BM_GetSegmentsFullMessage);

}  // namespace
}  // namespace qx::bench
