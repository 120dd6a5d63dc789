// A folder of files written whole or not at all, for the download bundle and
// the project's export: the files go into a fresh hidden folder beside the
// target, each synced to the disk, and the folder is renamed into place when
// whole. The target shows every file or none, and of two writers into one
// folder the second fails instead of mixing its files with the first's. A
// writer that fails, or is dropped before publish(), removes its folder.
#pragma once
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "platform/basics/bytes.h"
#include "platform/basics/runtime_error.h"

namespace qx {

struct BundleFile {
    std::string Path;  // relative to the folder, '/'-separated
    uint64_t Size = 0;
    std::string Sha256;  // 64 lowercase hexadecimal digits
    bool operator==(const BundleFile&) const = default;
};

class FolderWriter {
public:
    // kind names the folder in messages ("bundle folder \"out\" is not
    // empty"), source is the errors' source. The folder must be missing
    // (its parents are made) or empty; a symbolic link stands for the folder
    // it points to. Raises RuntimeError 75 otherwise, before anything is
    // written.
    FolderWriter(std::string kind, std::wstring source, const std::string& folder);
    ~FolderWriter();
    FolderWriter(const FolderWriter&) = delete;
    FolderWriter& operator=(const FolderWriter&) = delete;

    // Writes the whole file (at most one folder deep) or raises a
    // RuntimeError naming the file, the action and the cause.
    const BundleFile& write(const std::string& relative, const uint8_t* data, size_t size);
    const BundleFile& write(const std::string& relative, const Bytes& bytes) {
        return write(relative, bytes.data(), bytes.size());
    }
    const BundleFile& write(const std::string& relative, const std::string& text) {
        return write(relative, reinterpret_cast<const uint8_t*>(text.data()), text.size());
    }

    // The folder, whole and on the disk, renamed into place.
    void publish();

    // Every file written, in the order written.
    std::vector<BundleFile>& files() { return files_; }

private:
    [[noreturn]] void failFolder(const std::string& folder, const std::string& cause,
                                 int32_t number = err::PathFileAccessError) const;
    [[noreturn]] void failFolderWith(const std::string& folder, const std::string& action, int error) const;
    [[noreturn]] void failFile(const std::string& path, const std::string& action, int error) const;
    bool isEmptyFolder(const std::string& folder) const;
    std::string targetOf(const std::string& folder) const;
    void syncFolder(const std::string& folder, const std::string& named) const;
    void makeWorkFolder();

    std::string kind_;
    std::wstring source_;
    // folder_: as the caller named it, for messages; target_: where it goes.
    std::string folder_, target_, parent_, work_;
    bool published_ = false;
    std::set<std::string> made_;
    std::vector<BundleFile> files_;
};

}  // namespace qx
