// Where the tests of the built programs find them: the component, the qxfb
// host and the source tree. The environment (QXFB_COMPONENT, QXFB_CLI,
// QXFB_SOURCE_DIR) wins; else the paths the build compiled in.
#pragma once
#include <cstdlib>
#include <string>

#ifndef QXFB_BUILT_COMPONENT
#define QXFB_BUILT_COMPONENT ""
#endif
#ifndef QXFB_BUILT_CLI
#define QXFB_BUILT_CLI ""
#endif
#ifndef QXFB_SOURCE_TREE
#define QXFB_SOURCE_TREE ""
#endif

namespace qx::paths {

inline std::string environmentOr(const char* name, const char* fallback) {
    const char* value = std::getenv(name);
    return value && *value ? value : fallback;
}

inline std::string builtComponent() { return environmentOr("QXFB_COMPONENT", QXFB_BUILT_COMPONENT); }
inline std::string builtCli() { return environmentOr("QXFB_CLI", QXFB_BUILT_CLI); }
inline std::string sourceTree() { return environmentOr("QXFB_SOURCE_DIR", QXFB_SOURCE_TREE); }

}  // namespace qx::paths
