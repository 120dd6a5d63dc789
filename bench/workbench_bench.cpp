// The workbench with a project of 500 operations: reopening every operation
// through the component (GetFBMethodObject, Init, the Lets of its blocks,
// BuildOperands), and the time from a new window to its first paint with
// the project open. The component is loaded as the workbench loads it.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <QApplication>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "bench_support.h"
#include "platform/basics/ansi.h"
#include "project/project_file.h"
#include "project_sample.h"
#include "workbench_window.h"

namespace qx::bench {
namespace {

constexpr int32_t PlantOperations = 500;

// The component and its host, made once for the whole run.
struct Plant {
    Plant() {
        if (!component.Load(QXFB_BUILT_COMPONENT)) throw std::runtime_error(component.Error());
        host = std::make_unique<WorkbenchHost>(component);
        host->Context().AppFolder = fromUtf8(QXFB_SOURCE_TREE "/runtime/bin");
        file = (std::filesystem::temp_directory_path() / ("qxfb_bench_" + std::to_string(::getpid()) + ".qxfbproj"))
                   .string();
        std::filesystem::remove(file);
        saveProject(file, project);
    }
    ~Plant() { std::filesystem::remove(file); }
    LoadedComponent component;
    std::unique_ptr<WorkbenchHost> host;
    Project project = sampleProject(PlantOperations);
    std::string file;
};

Plant& plant() {
    static Plant made;
    return made;
}

void BM_WorkbenchReopen500(benchmark::State& state) {
    Plant& p = plant();
    for (auto _ : state) {
        if (!p.host->Open(p.project).empty()) throw std::logic_error("an operation was not reopened");
    }
    // BuildOperands gives the links their captions and allowed types anew;
    // the images and the instances must come back as they were.
    const Project reopened = p.host->ToProject();
    for (size_t n = 0; n < p.project.Nets.size(); ++n)
        for (size_t i = 0; i < p.project.Nets[n].Operations.size(); ++i)
            if (reopened.Nets.at(n).Operations.at(i).BinaryOperands != p.project.Nets[n].Operations[i].BinaryOperands)
                throw std::logic_error("a reopened image differs");
    if (reopened.Instances != p.project.Instances) throw std::logic_error("the reopened instances differ");
    state.counters["operations"] = PlantOperations;
}

void BM_WorkbenchOpenFileAndShow500(benchmark::State& state) {
    Plant& p = plant();
    for (auto _ : state) {
        WorkbenchWindow window(*p.host);
        if (!window.OpenFile(QString::fromStdString(p.file))) throw std::runtime_error("the project did not open");
        window.show();
        // The first paint: the window is on screen with every block.
        QApplication::processEvents();
        benchmark::DoNotOptimize(window.grab());
    }
    p.host->Clear();
    state.counters["operations"] = PlantOperations;
}

}  // namespace

QXFB_BENCHMARK(BM_WorkbenchReopen500)->Unit(benchmark::kMillisecond);
QXFB_BENCHMARK(BM_WorkbenchOpenFileAndShow500)->Unit(benchmark::kMillisecond);

}  // namespace qx::bench
