#include "platform/basics/file_reader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace qx {

namespace {

// Closes the descriptor on every way out.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) ::close(fd_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd_; }

private:
    int fd_;
};

FileContent withStatus(FileReadStatus status, uint64_t size = 0) {
    FileContent content;
    content.Status = status;
    content.Size = size;
    return content;
}

}  // namespace

FileContent readRegularFile(const std::string& path, uint64_t limit) {
    // O_NONBLOCK: opening a FIFO with no writer would otherwise wait for one.
    Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    if (file.get() < 0)
        return withStatus(errno == ENOENT || errno == ENOTDIR ? FileReadStatus::Missing : FileReadStatus::Unreadable);
    struct stat info {};
    if (::fstat(file.get(), &info) != 0) return withStatus(FileReadStatus::Unreadable);
    if (!S_ISREG(info.st_mode)) return withStatus(FileReadStatus::NotRegular);
    const auto size = static_cast<uint64_t>(info.st_size);
    if (size > limit) return withStatus(FileReadStatus::TooLarge, size);

    FileContent content = withStatus(FileReadStatus::Ok, size);
    // One byte more than the size, to see a file that grew since fstat.
    content.Data.resize(static_cast<size_t>(size) + 1);
    size_t filled = 0;
    while (filled < content.Data.size()) {
        const ssize_t got = ::read(file.get(), content.Data.data() + filled, content.Data.size() - filled);
        if (got < 0) {
            if (errno == EINTR) continue;
            return withStatus(FileReadStatus::Unreadable, size);
        }
        if (got == 0) break;
        filled += static_cast<size_t>(got);
        if (filled == content.Data.size() && filled <= limit)
            content.Data.resize(std::min<uint64_t>(limit, filled * 2) + 1);
        if (filled > limit) return withStatus(FileReadStatus::TooLarge, filled);
    }
    content.Data.resize(filled);
    return content;
}

}  // namespace qx
