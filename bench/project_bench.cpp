// The project file: saving a project of 500 operations over its file (what
// Save does once the project has one) and opening it again.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "bench_support.h"
#include "project/project_file.h"
#include "project_sample.h"

namespace qx::bench {
namespace {

constexpr int32_t PlantOperations = 500;

std::string scratchProject(const char* name) {
    return (std::filesystem::temp_directory_path() /
            ("qxfb_bench_" + std::to_string(::getpid()) + "_" + name + ".qxfbproj"))
        .string();
}

void setCounters(benchmark::State& state, const std::string& file, const Project& project) {
    size_t imageBytes = 0;
    for (const LadderNet& net : project.Nets)
        for (const StoredOperation& operation : net.Operations) imageBytes += operation.BinaryOperands.size();
    state.counters["operations"] = PlantOperations;
    state.counters["image_bytes"] = static_cast<double>(imageBytes);
    state.counters["file_bytes"] = static_cast<double>(std::filesystem::file_size(file));
}

void BM_ProjectSave500(benchmark::State& state) {
    const Project project = sampleProject(PlantOperations);
    const std::string file = scratchProject("save");
    std::filesystem::remove(file);
    saveProject(file, project);
    for (auto _ : state) saveProject(file, project);
    setCounters(state, file, project);
    std::filesystem::remove(file);
}

void BM_ProjectOpen500(benchmark::State& state) {
    const Project project = sampleProject(PlantOperations);
    const std::string file = scratchProject("open");
    std::filesystem::remove(file);
    saveProject(file, project);
    for (auto _ : state) benchmark::DoNotOptimize(loadProject(file));
    if (loadProject(file) != project) throw std::logic_error("the project did not load back as saved");
    setCounters(state, file, project);
    std::filesystem::remove(file);
}

}  // namespace

QXFB_BENCHMARK(BM_ProjectSave500)->Unit(benchmark::kMillisecond);
QXFB_BENCHMARK(BM_ProjectOpen500)->Unit(benchmark::kMillisecond);

}  // namespace qx::bench
