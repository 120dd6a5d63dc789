// Two benchmarks that exist only when QXFB_BENCH_SELF_TEST is set: one that
// throws and one behind it. A CTest runs them to prove that a throwing
// benchmark fails the program with exit code 1 while the others still run.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <stdexcept>

#include "bench_support.h"

namespace qx::bench {
namespace {

void BM_GuardSelfTestThrows(benchmark::State& state) {
    for (auto _ : state) throw std::runtime_error("thrown on purpose by the self-test");
}

void BM_GuardSelfTestRunsAfter(benchmark::State& state) {
    int value = 0;
    for (auto _ : state) benchmark::DoNotOptimize(++value);
}

const bool registered = [] {
    if (!std::getenv("QXFB_BENCH_SELF_TEST")) return false;
    registerGuarded("BM_GuardSelfTestThrows", BM_GuardSelfTestThrows);
    registerGuarded("BM_GuardSelfTestRunsAfter", BM_GuardSelfTestRunsAfter);
    return true;
}();

}  // namespace
}  // namespace qx::bench
