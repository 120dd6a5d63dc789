// The benchmark program's own main: it runs what the command line selects
// as benchmark_main would, and exits with 1 when a benchmark threw (see
// registerGuarded), so that a smoke run in CI fails instead of printing
// figures of nothing.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <new>

#include "bench_support.h"

#ifdef QXFB_BENCH_WITH_QT
#include <QApplication>
#endif

// Every allocation of a thread is counted, so that a benchmark can show how
// many its operation makes (the counter allocs_per_op); the benchmarks time
// the calling thread alone, and count it alone.
namespace {
thread_local uint64_t allocations = 0;
}  // namespace

uint64_t qx::bench::allocationCount() { return allocations; }

void* operator new(size_t size) {
    ++allocations;
    if (void* p = std::malloc(size ? size : 1)) return p;
    throw std::bad_alloc();
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, size_t) noexcept { std::free(p); }

int main(int argc, char** argv) {
#ifdef QXFB_BENCH_WITH_QT
    // The workbench's benchmarks show their windows offscreen unless told otherwise.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
#endif
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    const int failed = qx::bench::failedBenchmarks();
    if (failed > 0) {
        std::fprintf(stderr, "%d benchmark(s) failed\n", failed);
        return 1;
    }
    return 0;
}
