// The layers of the source tree, from the ground up, and the rule that no
// include runs from a lower layer to a higher one. A folder that is in no
// layer fails the test too, so that a new folder has to be placed.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "component/built_paths.h"

namespace {

namespace fs = std::filesystem;

// Longest prefix first where one folder lies inside another.
const std::vector<std::pair<std::string, int>> layers = {
    {"platform/basics/", 0},    // errors, variants, collections, byte cursors, text conversion
    {"platform/host/", 1},      // the host's interface declarations and its stand-ins
    {"platform/controls/", 1},  // control models and the modal driver
    {"link/", 1},               // serial ports and sockets: standard C++ and Asio, no sets, no model
    {"framework/", 2},
    {"message/", 3},
    {"sets/", 4},
    {"serial/", 5},
    {"tcpip/", 5},
    {"editors/", 5},
    {"field_editors/", 5},
    {"component/", 6},
    {"inspect/", 6},
    {"qt/", 7},
    {"project/", 7},
    {"runtime_model/", 5},  // the model of the controller's runtime, over the sets
};

int layerOf(const std::string& path) {
    for (const auto& [prefix, layer] : layers)
        if (path.rfind(prefix, 0) == 0) return layer;
    return -1;
}

TEST(Layers, EveryFolderOfTheLibraryHasALayer) {
    const fs::path src = fs::path(qx::paths::sourceTree()) / "src";
    int files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(src)) {
        if (!entry.is_regular_file()) continue;
        const std::string relative = fs::relative(entry.path(), src).generic_string();
        if (relative == "CMakeLists.txt") continue;
        ++files;
        EXPECT_GE(layerOf(relative), 0) << relative;
    }
    EXPECT_GT(files, 50);
}

TEST(Layers, NoIncludeRunsFromALowerLayerToAHigherOne) {
    const fs::path src = fs::path(qx::paths::sourceTree()) / "src";
    const std::regex include(R"re(^\s*#\s*include\s*"([^"]+)")re");
    int includes = 0;
    for (const auto& entry : fs::recursive_directory_iterator(src)) {
        const std::string extension = entry.path().extension().string();
        if (extension != ".h" && extension != ".cpp") continue;
        const std::string relative = fs::relative(entry.path(), src).generic_string();
        const int own = layerOf(relative);
        std::ifstream in(entry.path());
        std::string line;
        std::smatch match;
        while (std::getline(in, line)) {
            if (!std::regex_search(line, match, include)) continue;
            const std::string target = match[1];
            const int layer = layerOf(target);
            if (layer < 0) continue;  // a file of a generated or outside folder
            ++includes;
            EXPECT_LE(layer, own) << relative << " includes " << target;
        }
    }
    EXPECT_GT(includes, 100);
}

// The link library carries bytes: it knows no message set and no model of
// the runtime, so that any program can use it; the programs join them.
TEST(Layers, TheLinkLibraryIncludesOnlyItselfAndThePlatformBasics) {
    const fs::path src = fs::path(qx::paths::sourceTree()) / "src" / "link";
    const std::regex include(R"re(^\s*#\s*include\s*"([^"]+)")re");
    int includes = 0;
    for (const auto& entry : fs::directory_iterator(src)) {
        std::ifstream in(entry.path());
        std::string line;
        std::smatch match;
        while (std::getline(in, line)) {
            if (!std::regex_search(line, match, include)) continue;
            const std::string target = match[1];
            ++includes;
            EXPECT_TRUE(target.rfind("link/", 0) == 0 || target.rfind("platform/basics/", 0) == 0)
                << entry.path().filename().string() << " includes " << target;
        }
    }
    EXPECT_GE(includes, 3);
}

}  // namespace
