// Fuzz target of the project file reader: the input is a whole file. The
// reader may refuse it only with a RuntimeError, of any number; a project it
// loads is saved to a file of its own, which must load back equal to it.
// Anything else ends the process with abort(), so that libFuzzer and the
// corpus replay both stop on it; an exception that is not a RuntimeError is
// left to escape.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include "fuzz_finding.h"
#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "project/project_file.h"

using qx::fuzz::finding;

namespace {

namespace fs = std::filesystem;

// The files of this process: the input as a file, and the save of what it loaded.
struct ScratchFiles {
    fs::path folder;
    std::string input;
    std::string saved;
};

ScratchFiles makeScratchFiles() {
    ScratchFiles made;
    made.folder = fs::temp_directory_path() / ("qxfb_fuzz_project_file." + std::to_string(::getpid()));
    fs::create_directories(made.folder);
    made.input = (made.folder / "input.qxfbproj").string();
    made.saved = (made.folder / "saved.qxfbproj").string();
    return made;
}

const ScratchFiles& scratch();

void removeScratchFolder() {
    std::error_code ignored;
    fs::remove_all(scratch().folder, ignored);
}

// A folder of its own per process, so that parallel fuzzers never share a
// file; it goes when the process exits normally.
const ScratchFiles& scratch() {
    static const ScratchFiles files = makeScratchFiles();
    // Registered once the files exist, so that it runs before they are destroyed.
    [[maybe_unused]] static const bool removedAtExit = std::atexit(removeScratchFolder) == 0;
    return files;
}

// The file and what SQLite may keep beside it: a journal or WAL left by one
// input must not change how the next one reads.
void removeWithCompanions(const std::string& file) {
    for (const char* suffix : {"", "-journal", "-wal", "-shm"}) ::unlink((file + suffix).c_str());
}

void writeInput(const std::string& file, const uint8_t* data, size_t size) {
    removeWithCompanions(file);
    std::FILE* out = std::fopen(file.c_str(), "wb");
    bool written = out && (size == 0 || std::fwrite(data, 1, size, out) == size);
    if (out && std::fclose(out) != 0) written = false;
    if (!written) {
        std::fprintf(stderr, "cannot write %s\n", file.c_str());
        std::abort();
    }
}

[[noreturn]] void unexpectedError(const char* step, const qx::RuntimeError& error) {
    finding(std::string(step) + " raised RuntimeError(" + std::to_string(error.Number()) +
            "): " + qx::toUtf8(error.Description()));
}

// The first part of two projects that differs, to say where a round trip went wrong.
const char* firstDifference(const qx::Project& a, const qx::Project& b) {
    if (!(a.Settings == b.Settings)) return "settings";
    if (a.NextConstantAddress != b.NextConstantAddress) return "next constant address";
    if (a.Nets != b.Nets) return "nets";
    if (a.Instances != b.Instances) return "instances";
    if (a.Constants != b.Constants) return "constants";
    if (a.Links != b.Links) return "links";
    return "nothing";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const ScratchFiles& files = scratch();
    writeInput(files.input, data, size);

    qx::Project loaded;
    try {
        loaded = qx::loadProject(files.input);
    } catch (const qx::RuntimeError&) {
        return 0;
    }

    removeWithCompanions(files.saved);
    try {
        qx::saveProject(files.saved, loaded);
    } catch (const qx::RuntimeError& error) {
        unexpectedError("saving a loaded project", error);
    }
    qx::Project again;
    try {
        again = qx::loadProject(files.saved);
    } catch (const qx::RuntimeError& error) {
        unexpectedError("loading the saved project", error);
    }
    if (!(again == loaded))
        finding(std::string("a loaded project does not load back equal, first in its ") +
                firstDifference(loaded, again));
    return 0;
}
