#include "project/folder_writer.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <random>

#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "project/sha256.h"

namespace qx {

namespace {

// The run-time error number of a system error.
int32_t numberOf(int error) {
    switch (error) {
        case ENOSPC:
        case EDQUOT:
            return err::DiskFull;
        case EIO:
            return err::DeviceIOError;
        case EACCES:
        case EPERM:
        case EROFS:
            return err::PermissionDenied;
        default:
            return err::PathFileAccessError;
    }
}

// The path whole and without "." or ".." or a slash at its end, so that its
// last part names the folder itself and its parent is the folder it is in.
std::string plainPath(const std::string& path) {
    std::error_code ec;
    std::string plain = std::filesystem::absolute(path, ec).lexically_normal().string();
    if (ec) plain = path;
    while (plain.size() > 1 && plain.back() == '/') plain.pop_back();
    return plain;
}

}  // namespace

FolderWriter::FolderWriter(std::string kind, std::wstring source, const std::string& folder)
    : kind_(std::move(kind)), source_(std::move(source)), folder_(folder), target_(targetOf(folder)) {}

FolderWriter::~FolderWriter() {
    if (!work_.empty() && !published_) {
        std::error_code ignored;
        std::filesystem::remove_all(work_, ignored);
    }
}

void FolderWriter::failFolder(const std::string& folder, const std::string& cause, int32_t number) const {
    throw RuntimeError(number, source_, fromUtf8(kind_ + " folder \"" + folder + "\" " + cause));
}

// The folder, the action that failed on it, and the system's words for why.
void FolderWriter::failFolderWith(const std::string& folder, const std::string& action, int error) const {
    failFolder(folder, action + " (" + std::strerror(error) + ")", numberOf(error));
}

void FolderWriter::failFile(const std::string& path, const std::string& action, int error) const {
    throw RuntimeError(numberOf(error), source_,
                       fromUtf8(kind_ + " file \"" + path + "\": " + action + " (" + std::strerror(error) + ")"));
}

bool FolderWriter::isEmptyFolder(const std::string& folder) const {
    DIR* dir = ::opendir(folder.c_str());
    if (!dir) failFolderWith(folder, "cannot be read", errno);
    bool empty = true;
    while (const dirent* entry = ::readdir(dir)) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
            empty = false;
            break;
        }
    }
    ::closedir(dir);
    return empty;
}

// The folder the files go to, as it must be: missing, or an empty folder;
// a symbolic link stands for the folder it points to. Gives the path the
// finished folder is renamed to. A folder with anything in it is refused
// rather than mixed with, so that it holds only what this writer wrote.
std::string FolderWriter::targetOf(const std::string& folder) const {
    if (folder.empty()) failFolder(folder, "cannot be used: the path is empty");
    struct stat info {};
    if (::lstat(folder.c_str(), &info) != 0) {
        if (errno != ENOENT) failFolderWith(folder, "cannot be used", errno);
        return plainPath(folder);
    }
    std::string target = folder;
    if (S_ISLNK(info.st_mode)) {
        std::error_code ec;
        const std::filesystem::path to = std::filesystem::read_symlink(folder, ec);
        if (::stat(folder.c_str(), &info) != 0) {
            if (errno == ENOENT)
                failFolder(folder, "is a symbolic link to \"" + to.string() + "\", which does not exist");
            failFolderWith(folder, "cannot be used: the symbolic link to \"" + to.string() + "\" cannot be followed",
                           errno);
        }
        // The bundle replaces the folder the link points to, not the link.
        target = std::filesystem::canonical(folder, ec).string();
        if (ec) failFolder(folder, "cannot be used: the symbolic link cannot be followed (" + ec.message() + ")");
    }
    if (!S_ISDIR(info.st_mode)) failFolder(folder, "is not a folder");
    if (!isEmptyFolder(target)) failFolder(folder, "is not empty");
    return plainPath(target);
}

void FolderWriter::syncFolder(const std::string& folder, const std::string& named) const {
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) failFolderWith(named, "cannot be opened to be synced to the disk", errno);
    if (::fsync(fd) != 0) {
        const int error = errno;
        ::close(fd);
        failFolderWith(named, "cannot be synced to the disk", error);
    }
    ::close(fd);
}

const BundleFile& FolderWriter::write(const std::string& relative, const uint8_t* data, size_t size) {
    if (work_.empty()) makeWorkFolder();
    const std::string path = work_ + "/" + relative, shown = folder_ + "/" + relative;
    if (const size_t slash = relative.find('/'); slash != std::string::npos) {
        const std::string sub = relative.substr(0, slash);
        if (made_.insert(sub).second && ::mkdir((work_ + "/" + sub).c_str(), 0777) != 0)
            failFolderWith(folder_ + "/" + sub, "cannot be created", errno);
    }
    // O_EXCL: never write through or over anything.
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOCTTY, 0666);
    if (fd < 0) failFile(shown, "cannot be created", errno);
    size_t done = 0;
    while (done < size) {
        const ssize_t n = ::write(fd, data + done, size - done);
        if (n < 0) {
            if (errno == EINTR) continue;
            const int error = errno;
            ::close(fd);
            failFile(shown, "cannot be written", error);
        }
        done += static_cast<size_t>(n);
    }
    // On the disk before the manifest names it.
    if (::fsync(fd) != 0) {
        const int error = errno;
        ::close(fd);
        failFile(shown, "cannot be synced to the disk", error);
    }
    if (::close(fd) != 0) failFile(shown, "cannot be written", errno);
    files_.push_back({relative, size, sha256Hex(data, size)});
    return files_.back();
}

void FolderWriter::publish() {
    if (work_.empty()) makeWorkFolder();
    for (const std::string& sub : made_) syncFolder(work_ + "/" + sub, folder_ + "/" + sub);
    syncFolder(work_, folder_);
    // Onto a missing name, or over an empty folder; a folder that another
    // writer filled meanwhile is not empty, and the rename fails.
    if (::rename(work_.c_str(), target_.c_str()) != 0) {
        const int error = errno;
        if (error == ENOTEMPTY || error == EEXIST)
            failFolder(folder_,
                       "was filled by another writer while this " + kind_ + " was written; this one is not kept");
        failFolderWith(folder_, "cannot be put in place", error);
    }
    published_ = true;
    syncFolder(parent_, parent_);
}

// The target's parents, made when missing, and a fresh folder in the
// nearest, named after the target and hidden.
void FolderWriter::makeWorkFolder() {
    const std::filesystem::path target(target_);
    parent_ = target.has_parent_path() ? target.parent_path().string() : ".";
    std::error_code ec;
    std::filesystem::create_directories(parent_, ec);
    if (ec) failFolderWith(folder_, "cannot be created: its parent \"" + parent_ + "\" cannot be made", ec.value());
    // mkdir rather than mkdtemp, so that the folder gets the permissions
    // the umask gives, as the target would have.
    std::random_device random;
    for (int attempt = 0;; ++attempt) {
        char suffix[32];
        std::snprintf(suffix, sizeof suffix, ".part-%d-%08x", static_cast<int>(::getpid()),
                      static_cast<unsigned>(random()));
        const std::string name = parent_ + "/." + target.filename().string() + suffix;
        if (::mkdir(name.c_str(), 0777) == 0) {
            work_ = name;
            return;
        }
        if (errno != EEXIST || attempt == 100)
            failFolderWith(folder_, "cannot be created in \"" + parent_ + "\"", errno);
    }
}

}  // namespace qx
