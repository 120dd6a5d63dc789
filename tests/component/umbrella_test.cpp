// The umbrella header: it compiles on its own, brings the library's classes,
// and names every header of the source tree outside the view layer.
// clang-format off
#include <qxfbcom2/qxfbcom2.h>  // first, so that it has to stand on its own
// clang-format on

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>

#include "component/built_paths.h"

namespace {

namespace fs = std::filesystem;

TEST(UmbrellaHeader, BringsTheGateTheFamiliesAndTheComponentAbi) {
    qx::clsGate gate;
    EXPECT_EQ(gate.itfFBGate_GateID(), 170000);
    EXPECT_EQ(sizeof(qx::GUID), 16u);
    EXPECT_EQ(std::size(qx::PublicClasses), 11u);
}

TEST(UmbrellaHeader, IncludesEveryHeaderUnderSrc) {
    std::ifstream in(QXFB_UMBRELLA_HEADER);
    ASSERT_TRUE(in) << QXFB_UMBRELLA_HEADER;
    std::ostringstream content;
    content << in.rdbuf();
    const std::string umbrella = content.str();
    const fs::path src = fs::path(qx::paths::sourceTree()) / "src";
    int headers = 0;
    for (const auto& entry : fs::recursive_directory_iterator(src)) {
        if (entry.path().extension() != ".h") continue;
        const std::string relative = fs::relative(entry.path(), src).generic_string();
        if (std::regex_search(relative, std::regex("(^|/)(qt|views|project)/"))) continue;
        std::ifstream header(entry.path());
        std::string line;
        bool usesQt = false;
        while (std::getline(header, line))
            if (std::regex_search(line, std::regex("^\\s*#\\s*include\\s*<Q"))) usesQt = true;
        if (usesQt) continue;
        ++headers;
        EXPECT_NE(umbrella.find("#include \"" + relative + "\"\n"), std::string::npos) << relative;
    }
    EXPECT_GT(headers, 20);
}

}  // namespace
