// A runtime folder of its own for one test: a temporary tree with bin/ (the
// host's application folder) and FB_Lib/RT/ beside it. The current host
// context points at it while the object lives, and the tree is removed after.
#pragma once
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/basics/ansi.h"
#include "platform/basics/bytes.h"
#include "platform/host/host_context.h"

namespace qx::test {

class TempRuntimeFolder {
public:
    TempRuntimeFolder() {
        static std::atomic<int> counter{0};
        root_ = std::filesystem::temp_directory_path() /
                ("qxfb_rt_" + std::to_string(::getpid()) + "_" + std::to_string(counter++));
        std::filesystem::remove_all(root_);
        std::filesystem::create_directories(root_ / "bin");
        std::filesystem::create_directories(rt());
        host().AppFolder = fromUtf8((root_ / "bin").string());
    }
    ~TempRuntimeFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(root_, ignored);
    }
    TempRuntimeFolder(const TempRuntimeFolder&) = delete;
    TempRuntimeFolder& operator=(const TempRuntimeFolder&) = delete;

    std::filesystem::path rt() const { return root_ / "FB_Lib" / "RT"; }

    void writeText(const std::string& name, const std::string& text) const {
        std::ofstream out(rt() / name, std::ios::binary | std::ios::trunc);
        out << text;
    }
    void writeBytes(const std::string& name, const Bytes& bytes) const {
        std::ofstream out(rt() / name, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    // An ini file with one section, named by the family, holding the given lines.
    void writeIni(int32_t fatherID, const std::string& lines) const {
        writeText(std::to_string(fatherID) + ".ini", "[" + std::to_string(fatherID) + "]\r\n" + lines);
    }
    // A complete family: ini with version 100, code and jump files.
    void writeFamily(int32_t fatherID, const Bytes& code = {1, 2, 3}, const Bytes& jump = {4, 5}) const {
        writeIni(fatherID,
                 "CurrentHexFileVersion=100\r\nHexFilesVersionsList=100\r\n"
                 "Version100_MinBiosVersion=7\r\nVersion100_RealTimeMemorySize=512\r\n");
        writeBytes(std::to_string(fatherID) + "V100.FBs", code);
        writeBytes(std::to_string(fatherID) + "V100.Jmp", jump);
    }
    void remove(const std::string& name) const { std::filesystem::remove(rt() / name); }

private:
    std::filesystem::path root_;
};

}  // namespace qx::test
