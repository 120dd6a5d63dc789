// The benchmark program's own main: it runs what the command line selects
// as benchmark_main would, and exits with 1 when any benchmark reported an
// error (a benchmark that threw is reported as one by registerGuarded), so
// that a smoke run in CI fails instead of printing figures of nothing.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <vector>

namespace {

class FailureCountingReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs)
            if (run.error_occurred) ++failures;
        ConsoleReporter::ReportRuns(runs);
    }
    int failures = 0;
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    FailureCountingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    if (reporter.failures > 0) {
        std::fprintf(stderr, "%d benchmark(s) failed\n", reporter.failures);
        return 1;
    }
    return 0;
}
