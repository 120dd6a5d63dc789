// Files for the tests that touch the disk: a folder of its own for each test,
// and whole files read and written as bytes.
#pragma once
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <system_error>

namespace qx::test {

inline std::string readFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

inline void writeFile(const std::filesystem::path& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
}

// A fresh folder in the temporary folder, named after the prefix, the process
// and the running test, so that tests running at once never share one;
// removed with all it holds when the test ends.
class ScratchFolder {
public:
    explicit ScratchFolder(const std::string& prefix)
        : path_(std::filesystem::temp_directory_path() /
                (prefix + "_" + std::to_string(::getpid()) + "_" + runningTestName())) {
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    // A parameterized test's name holds a '/', which would make a subfolder.
    static std::string runningTestName() {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        std::string name = info ? info->name() : "outside_a_test";
        for (char& c : name)
            if (c == '/') c = '_';
        return name;
    }

    std::filesystem::path path_;
};

}  // namespace qx::test
