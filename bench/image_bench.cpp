// Writing and reading the Send and Scan images of sets of 255 messages whose
// images come close to 65535 bytes, each against a memcpy of the image and
// one of the model behind it (about 1 MB), which both directions pass over.
// A read includes creating the set it loads into, as an operation does.
#include <benchmark/benchmark.h>

#include "bench_support.h"
#include "platform/host/host_context.h"

namespace qx::bench {
namespace {

template <class Set>
void writeImage(benchmark::State& state, std::unique_ptr<Set> (*makeSet)()) {
    ScopedHostContext host;
    auto set = makeSet();
    CopyRatio ratio(state, set->BinaryData().size(), modelBytesOf(*set));
    ratio.start();
    for (auto _ : state) {
        Bytes image = set->BinaryData();
        benchmark::DoNotOptimize(image.data());
    }
    ratio.finish();
    state.counters["messages"] = set->NumberOfMessages();
}

template <class Set>
void readImage(benchmark::State& state, std::unique_ptr<Set> (*makeSet)()) {
    ScopedHostContext host;
    const auto model = makeSet();
    const Bytes image = model->BinaryData();
    CopyRatio ratio(state, image.size(), modelBytesOf(*model));
    ratio.start();
    for (auto _ : state) {
        Set set;
        set.BinaryData(image);
        benchmark::DoNotOptimize(&set);
    }
    ratio.finish();
}

void BM_SendImageWrite(benchmark::State& state) { writeImage<clsProtocolSendSrv>(state, denseSendSet); }
void BM_SendImageRead(benchmark::State& state) { readImage<clsProtocolSendSrv>(state, denseSendSet); }
void BM_ScanImageWrite(benchmark::State& state) { writeImage<clsProtocolScanSrv>(state, denseScanSet); }
void BM_ScanImageRead(benchmark::State& state) { readImage<clsProtocolScanSrv>(state, denseScanSet); }

QXFB_BENCHMARK(BM_SendImageWrite)->Unit(benchmark::kMicrosecond);
QXFB_BENCHMARK(BM_SendImageRead)->Unit(benchmark::kMicrosecond);
QXFB_BENCHMARK(BM_ScanImageWrite)->Unit(benchmark::kMicrosecond);
QXFB_BENCHMARK(BM_ScanImageRead)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace qx::bench
