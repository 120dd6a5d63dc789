// Runs the built qxfb as a user runs it, from a shell: its output, its errors
// on standard error, its exit status.
#pragma once
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "support/scratch_files.h"

namespace qx::test {

inline std::string shellQuoted(const std::string& text) {
    std::string out = "'";
    for (char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

struct CliRun {
    int status = -1;
    std::string out, err;

    std::vector<std::string> lines() const {
        std::vector<std::string> result;
        std::istringstream in(out);
        for (std::string line; std::getline(in, line);) result.push_back(line);
        return result;
    }
    std::string lastLine() const {
        auto all = lines();
        return all.empty() ? "" : all.back();
    }
};

// Runs the program with the arguments, environment assignments first
// ("NAME=value"), in the folder current when one is given; its output goes
// through files in scratch. A program that hangs fails after a minute
// instead of holding the test.
inline CliRun runCli(const std::string& program, const std::string& arguments, const std::filesystem::path& scratch,
                     const std::string& environment = "", const std::filesystem::path& current = {}) {
    const std::filesystem::path out = scratch / "stdout", err = scratch / "stderr";
    std::string command = "timeout 60 env " + environment + " " + shellQuoted(program) + " " + arguments +
                          " </dev/null >" + shellQuoted(out.string()) + " 2>" + shellQuoted(err.string());
    if (!current.empty()) command = "cd " + shellQuoted(current.string()) + " && " + command;
    CliRun result;
    const int raw = std::system(command.c_str());
    result.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    result.out = readFile(out);
    result.err = readFile(err);
    return result;
}

}  // namespace qx::test
