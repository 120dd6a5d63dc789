#include "project/download_bundle.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <tuple>
#include <utility>

#include "framework/runtime_catalogue.h"
#include "platform/basics/ansi.h"
#include "platform/basics/file_reader.h"
#include "platform/basics/runtime_error.h"
#include "project/sha256.h"

namespace qx {

namespace {

constexpr const wchar_t* Source = L"QxFBCom2 download bundle";

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

[[noreturn]] void failFolder(const std::string& folder, const std::string& cause,
                             int32_t number = err::PathFileAccessError) {
    throw RuntimeError(number, Source, fromUtf8("bundle folder \"" + folder + "\" " + cause));
}

// The folder, the action that failed on it, and the system's words for why.
[[noreturn]] void failFolderWith(const std::string& folder, const std::string& action, int error) {
    failFolder(folder, action + " (" + std::strerror(error) + ")", numberOf(error));
}

[[noreturn]] void failFile(const std::string& path, const std::string& action, int error) {
    throw RuntimeError(numberOf(error), Source,
                       fromUtf8("bundle file \"" + path + "\": " + action + " (" + std::strerror(error) + ")"));
}

bool isEmptyFolder(const std::string& folder) {
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

// The path whole and without "." or ".." or a slash at its end, so that its
// last part names the folder itself and its parent is the folder it is in.
std::string plainPath(const std::string& path) {
    std::error_code ec;
    std::string plain = std::filesystem::absolute(path, ec).lexically_normal().string();
    if (ec) plain = path;
    while (plain.size() > 1 && plain.back() == '/') plain.pop_back();
    return plain;
}

// The folder the bundle goes to, as it must be: missing, or an empty folder;
// a symbolic link stands for the folder it points to. Gives the path the
// finished bundle is renamed to. A folder with anything in it is refused
// rather than mixed with, so that a bundle holds only what its manifest lists.
std::string targetOf(const std::string& folder) {
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

void syncFolder(const std::string& folder, const std::string& named) {
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) failFolderWith(named, "cannot be opened to be synced to the disk", errno);
    if (::fsync(fd) != 0) {
        const int error = errno;
        ::close(fd);
        failFolderWith(named, "cannot be synced to the disk", error);
    }
    ::close(fd);
}

std::string numbered(const char* format, int32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, format, static_cast<int>(value));
    return text;
}

// Writes the bundle into a fresh folder of its own beside the target and
// renames that folder into place at the end: the target shows the whole
// bundle or nothing, and of two writers into one folder the second fails
// instead of mixing its files with the first's. A writer that fails removes
// its folder.
class BundleWriter {
public:
    // folder: as the caller named it, for messages; target: where it goes.
    BundleWriter(std::string folder, std::string target) : folder_(std::move(folder)), target_(std::move(target)) {}
    ~BundleWriter() {
        if (!work_.empty() && !published_) {
            std::error_code ignored;
            std::filesystem::remove_all(work_, ignored);
        }
    }
    BundleWriter(const BundleWriter&) = delete;
    BundleWriter& operator=(const BundleWriter&) = delete;

    // Writes the whole file or raises.
    const BundleFile& write(const std::string& relative, const uint8_t* data, size_t size) {
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

    const BundleFile& write(const std::string& relative, const Bytes& bytes) {
        return write(relative, bytes.data(), bytes.size());
    }

    // The folder, whole and on the disk, renamed into place.
    void publish() {
        if (work_.empty()) makeWorkFolder();
        for (const std::string& sub : made_) syncFolder(work_ + "/" + sub, folder_ + "/" + sub);
        syncFolder(work_, folder_);
        // Onto a missing name, or over an empty folder; a folder that another
        // writer filled meanwhile is not empty, and the rename fails.
        if (::rename(work_.c_str(), target_.c_str()) != 0) {
            const int error = errno;
            if (error == ENOTEMPTY || error == EEXIST)
                failFolder(folder_, "was filled by another writer while this bundle was written; this one is not kept");
            failFolderWith(folder_, "cannot be put in place", error);
        }
        published_ = true;
        syncFolder(parent_, parent_);
    }

    std::vector<BundleFile>& files() { return files_; }

private:
    // The target's parents, made when missing, and a fresh folder in the
    // nearest, named after the target and hidden.
    void makeWorkFolder() {
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

    std::string folder_, target_, parent_, work_;
    bool published_ = false;
    std::set<std::string> made_;
    std::vector<BundleFile> files_;
};

void field(std::string& out, const char* name, const std::string& jsonValue) {
    out += ", \"";
    out += name;
    out += "\": ";
    out += jsonValue;
}

void field(std::string& out, const char* name, int64_t value) { field(out, name, std::to_string(value)); }

// The opening of a file's line in the manifest: path, size, checksum, kind.
std::string entry(const BundleFile& file, const char* kind) {
    return "    {\"path\": " + jsonString(fromUtf8(file.Path)) + ", \"size\": " + std::to_string(file.Size) +
           ", \"sha256\": \"" + file.Sha256 + "\", \"kind\": \"" + kind + "\"";
}

// A key the project holds twice would give two files of one name: named
// before anything is written.
void checkKeys(const Project& project) {
    std::set<std::pair<int32_t, int32_t>> instances;
    for (const StoredInstance& instance : project.Instances)
        if (!instances.emplace(instance.FatherID, instance.InstanceNum).second)
            throw RuntimeError(err::InvalidProcedureCall, Source,
                               fromUtf8("the project holds the instance " + std::to_string(instance.FatherID) + "/" +
                                        std::to_string(instance.InstanceNum) + " twice; its bundle is not written"));
}

}  // namespace

std::string jsonString(const std::wstring& text) {
    // Valid UTF-8 only: a character with no UTF-8 form (a byte of a name that
    // was not UTF-8 comes in as a lone surrogate) is the replacement character.
    std::string utf8;
    utf8.reserve(text.size());
    for (const wchar_t wc : text) {
        const auto c = static_cast<uint32_t>(wc);
        utf8 +=
            (c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF ? std::string("\xEF\xBF\xBD") : toUtf8(std::wstring(1, wc));
    }
    return nlohmann::json(utf8).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::vector<BundleFile> writeDownloadBundle(const Project& project, const std::string& folder,
                                            const RuntimeFilesOf& runtimeFiles, const std::wstring& runtimeFolder) {
    const std::string target = targetOf(folder);
    checkKeys(project);

    // Every family and version in use, asked for before the first file is
    // written: the family reads them from disk and may fail.
    std::map<std::pair<int32_t, int32_t>, FBHexFileDetails> runtime;
    for (const LadderNet& net : project.Nets)
        for (const StoredOperation& operation : net.Operations)
            runtime.emplace(std::pair(operation.FatherID(), operation.HexFileVersion), FBHexFileDetails{});
    if (!runtime.empty() && !runtimeFiles) raiseError(err::ObjectNotSet, Source);
    for (auto& [pair, details] : runtime) details = runtimeFiles(pair.first, pair.second);

    BundleWriter writer(folder, target);
    std::string lines;
    auto addLine = [&lines](const std::string& line) {
        if (!lines.empty()) lines += ",\n";
        lines += line + "}";
    };

    for (size_t n = 0; n < project.Nets.size(); ++n) {
        const auto& operations = project.Nets[n].Operations;
        for (size_t i = 0; i < operations.size(); ++i) {
            const StoredOperation& operation = operations[i];
            const std::string name = "operations/net" + numbered("%03d", static_cast<int32_t>(n + 1)) + "_op" +
                                     numbered("%03d", static_cast<int32_t>(i + 1)) + "_" +
                                     std::to_string(operation.MethodID) + ".bin";
            std::string line = entry(writer.write(name, operation.BinaryOperands), "operation");
            field(line, "net", static_cast<int64_t>(n + 1));
            field(line, "position", static_cast<int64_t>(i + 1));
            field(line, "FatherID", operation.FatherID());
            field(line, "MethodID", operation.MethodID);
            field(line, "HexFileVersion", operation.HexFileVersion);
            field(line, "FatherInstanceNum", operation.FatherInstanceNum);
            addLine(line);
        }
    }
    for (const StoredInstance& instance : project.Instances) {
        const std::string name =
            "instances/" + std::to_string(instance.FatherID) + "_" + numbered("%04d", instance.InstanceNum) + ".bin";
        std::string line = entry(writer.write(name, instance.Data), "instance");
        field(line, "FatherID", instance.FatherID);
        field(line, "InstanceNum", instance.InstanceNum);
        field(line, "Name", jsonString(instance.Name));
        addLine(line);
    }
    for (const auto& [pair, details] : runtime) {
        for (const auto& [extension, bytes, kind] :
             {std::tuple(L".FBs", &details.FBs, "runtime-code"), std::tuple(L".Jmp", &details.Jmp, "runtime-jump")}) {
            // Named as in the runtime folder.
            const std::string name = "runtime/" + toUtf8(runtimeFileName(pair.first, pair.second, extension));
            std::string line = entry(writer.write(name, *bytes), kind);
            field(line, "FatherID", pair.first);
            field(line, "HexFileVersion", pair.second);
            field(line, "MinBiosVersion", details.MinBiosVersion);
            field(line, "RealTimeMemorySize", details.RealTimeMemorySize);
            addLine(line);
        }
    }

    std::string manifest = "{\n  \"format\": \"QxFBCom2 download bundle\",\n  \"version\": 1,\n";
    if (!runtimeFolder.empty()) manifest += "  \"runtimeFolder\": " + jsonString(runtimeFolder) + ",\n";
    manifest += "  \"files\": [";
    manifest += lines.empty() ? "]\n}\n" : "\n" + lines + "\n  ]\n}\n";
    writer.write(BundleManifestName, reinterpret_cast<const uint8_t*>(manifest.data()), manifest.size());
    writer.publish();
    return std::move(writer.files());
}

namespace {

// What is wrong with one file the family reads, looked at on the disk; empty
// when nothing is.
std::string problemOf(const std::string& path, uint64_t limit) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) return errno == ENOENT ? "does not exist" : std::strerror(errno);
    if (!S_ISREG(info.st_mode)) return "is not a regular file";
    if (static_cast<uint64_t>(info.st_size) > limit)
        return "is larger than such a file can be (" + std::to_string(info.st_size) + " bytes)";
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) return std::string("cannot be opened (") + std::strerror(errno) + ")";
    ::close(fd);
    return info.st_size == 0 ? "is empty" : "";
}

// Which file of a family's runtime files failed and why. The family's own
// error names neither ("Type mismatch"): its runtime files and its ini file
// are looked at in the order it reads them.
std::string whichFileFailed(const HostContext& context, int32_t FatherID, int32_t HexFileVersion,
                            size_t reportsBefore) {
    const std::string folder = std::filesystem::path(toUtf8(context.RuntimeFolder())).lexically_normal().string();
    const std::string ini = folder + std::to_string(FatherID) + ".ini";
    if (std::string problem = problemOf(ini, file_limit::Ini); !problem.empty()) return "\"" + ini + "\" " + problem;
    for (const wchar_t* extension : {L".FBs", L".Jmp"}) {
        const std::string path = folder + toUtf8(runtimeFileName(FatherID, HexFileVersion, extension));
        if (std::string problem = problemOf(path, file_limit::Runtime); !problem.empty())
            return "\"" + path + "\" " + problem;
    }
    // The family reports a key its ini file lacks; its report names the key.
    for (size_t i = reportsBefore; i < context.Reports.size(); ++i) {
        const std::wstring& text = context.Reports[i].Text;
        if (const size_t key = text.rfind(L"Key: "); key != std::wstring::npos)
            return "\"" + ini + "\" has no value for " + toUtf8(text.substr(key + 5));
    }
    return "\"" + ini + "\" holds a value that is no number for version " + std::to_string(HexFileVersion);
}

}  // namespace

RuntimeFilesOf runtimeFilesFrom(itfFBGate& gate, HostContext& context) {
    return [&gate, &context](int32_t FatherID, int32_t HexFileVersion) {
        const std::string which = "family " + std::to_string(FatherID) + ", version " + std::to_string(HexFileVersion);
        const size_t reports = context.Reports.size();
        FatherPtr father;
        FBHexFileDetails details;
        try {
            // Making the family already reads its ini file.
            father = gate.itfFBGate_GetFatherObject(FatherID);
            if (father) details = father->itfFBFather_GetHexFileDetails(HexFileVersion);
        } catch (const RuntimeError& e) {
            throw RuntimeError(e.Number(), e.Source(),
                               fromUtf8("the runtime files of " + which + " cannot be read: " +
                                        whichFileFailed(context, FatherID, HexFileVersion, reports) +
                                        " (run-time error " + std::to_string(e.Number()) + ": ") +
                                   e.Description() + L")");
        }
        if (!father) throw RuntimeError(err::InvalidProcedureCall, Source, fromUtf8("the component has no " + which));
        if (context.Reports.size() != reports)
            throw RuntimeError(err::FileNotFound, Source,
                               fromUtf8("the runtime files of " + which + " cannot be read: " +
                                        whichFileFailed(context, FatherID, HexFileVersion, reports)));
        return details;
    };
}

}  // namespace qx
