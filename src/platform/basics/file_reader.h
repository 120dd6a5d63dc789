// Whole-file reads for every file the library opens (the runtime ini, the
// runtime files, the registry file): regular files only, each kind within a
// size limit of its own, and never a call that blocks, so that a FIFO, a
// device or a huge file named in their place is answered at once.
#pragma once
#include <cstdint>
#include <string>

#include "platform/basics/bytes.h"

namespace qx {

enum class FileReadStatus {
    Ok,
    Missing,     // nothing at the path (or a folder of it is missing)
    NotRegular,  // a folder, FIFO, device or socket
    TooLarge,    // more bytes than the limit
    Unreadable,  // there, but opening or reading it failed
};

struct FileContent {
    FileReadStatus Status = FileReadStatus::Unreadable;
    Bytes Data;
    // The size the file had when it was opened; set also for TooLarge.
    uint64_t Size = 0;
};

// The limits of the kinds of files the library reads.
namespace file_limit {
inline constexpr uint64_t Ini = 512 * 1024;
inline constexpr uint64_t Registry = 1024 * 1024;
inline constexpr uint64_t Runtime = 64 * 1024 * 1024;
}  // namespace file_limit

// Reads the file at path (bytes as the system takes them) whole when it is
// a regular file of at most limit bytes. A file that grows past the limit
// while it is read is TooLarge; one that shrinks gives what it still had.
FileContent readRegularFile(const std::string& path, uint64_t limit);

}  // namespace qx
