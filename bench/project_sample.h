// A project as a plant keeps it, for the benchmarks of the project file and
// the workbench: nets of ten operations, serial Configs with their two links
// and instances, Sends and Scans with images of a few kilobytes (5 to 20
// messages with fields, made by the random set generator).
#pragma once
#include <cstdint>

#include "project/project.h"

namespace qx::bench {

Project sampleProject(int32_t operations);

}  // namespace qx::bench
