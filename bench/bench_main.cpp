// The benchmark program's own main: it runs what the command line selects
// as benchmark_main would, and exits with 1 when a benchmark threw (see
// registerGuarded), so that a smoke run in CI fails instead of printing
// figures of nothing.
#include <benchmark/benchmark.h>

#include <cstdio>

#include "bench_support.h"

int main(int argc, char** argv) {
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
