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
#include <set>
#include <tuple>
#include <utility>

#include "framework/runtime_catalogue.h"
#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "project/sha256.h"

namespace qx {

namespace {

constexpr const wchar_t* Source = L"QxFBCom2 download bundle";

[[noreturn]] void failFolder(const std::string& folder, const std::string& cause) {
    throw RuntimeError(err::PathFileAccessError, Source, fromUtf8("bundle folder \"" + folder + "\" " + cause));
}

[[noreturn]] void failFile(const std::string& path, int error) {
    int32_t number = err::PathFileAccessError;
    if (error == ENOSPC || error == EDQUOT) number = err::DiskFull;
    if (error == EIO) number = err::DeviceIOError;
    if (error == EACCES || error == EPERM || error == EROFS) number = err::PermissionDenied;
    throw RuntimeError(number, Source,
                       fromUtf8("bundle file \"" + path + "\": cannot be written (" + std::strerror(error) + ")"));
}

// The folder as the bundle needs it: there and empty. A folder with anything
// in it is refused rather than mixed with, so that a bundle holds only what
// its manifest lists.
void prepareFolder(const std::string& folder) {
    if (folder.empty()) failFolder(folder, "cannot be used: the path is empty");
    struct stat info {};
    if (::stat(folder.c_str(), &info) != 0) {
        const int error = errno;
        if (error != ENOENT) failFolder(folder, std::string("cannot be used (") + std::strerror(error) + ")");
        std::error_code ec;
        std::filesystem::create_directories(folder, ec);
        if (ec) failFolder(folder, "cannot be created (" + ec.message() + ")");
        return;
    }
    if (!S_ISDIR(info.st_mode)) failFolder(folder, "is not a folder");
    DIR* dir = ::opendir(folder.c_str());
    if (!dir) failFolder(folder, std::string("cannot be read (") + std::strerror(errno) + ")");
    bool empty = true;
    while (const dirent* entry = ::readdir(dir)) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
            empty = false;
            break;
        }
    }
    ::closedir(dir);
    if (!empty) failFolder(folder, "is not empty");
}

std::string numbered(const char* format, int32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, format, static_cast<int>(value));
    return text;
}

class BundleWriter {
public:
    explicit BundleWriter(std::string folder) : folder_(std::move(folder)) {}

    // Writes the whole file or raises; a file cut short is removed.
    const BundleFile& write(const std::string& relative, const uint8_t* data, size_t size) {
        const std::string path = folder_ + "/" + relative;
        if (const size_t slash = relative.find('/'); slash != std::string::npos) {
            const std::string sub = folder_ + "/" + relative.substr(0, slash);
            // An error here shows again, with the file's name, when it is opened.
            if (made_.insert(sub).second) ::mkdir(sub.c_str(), 0777);
        }
        // O_EXCL: never write through or over anything that appeared meanwhile.
        const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOCTTY, 0666);
        if (fd < 0) failFile(path, errno);
        size_t done = 0;
        while (done < size) {
            const ssize_t n = ::write(fd, data + done, size - done);
            if (n < 0) {
                if (errno == EINTR) continue;
                const int error = errno;
                ::close(fd);
                ::unlink(path.c_str());
                failFile(path, error);
            }
            done += static_cast<size_t>(n);
        }
        // On the disk before the manifest names it.
        if (::fsync(fd) != 0 || ::close(fd) != 0) {
            const int error = errno;
            ::unlink(path.c_str());
            failFile(path, error);
        }
        files_.push_back({relative, size, sha256Hex(data, size)});
        return files_.back();
    }

    // The last file, whose presence says that the bundle is whole: written
    // under another name and renamed, so that it is there whole or not at all.
    const BundleFile& publish(const std::string& relative, const uint8_t* data, size_t size) {
        const std::string part = relative + ".part";
        write(part, data, size);
        // The names of the files in the subfolders are on the disk too.
        for (const std::string& sub : made_) syncFolder(sub);
        const std::string from = folder_ + "/" + part, to = folder_ + "/" + relative;
        if (::rename(from.c_str(), to.c_str()) != 0) {
            const int error = errno;
            ::unlink(from.c_str());
            failFile(to, error);
        }
        syncFolder(folder_);
        files_.back().Path = relative;
        return files_.back();
    }

    const BundleFile& write(const std::string& relative, const Bytes& bytes) {
        return write(relative, bytes.data(), bytes.size());
    }

    std::vector<BundleFile>& files() { return files_; }

private:
    static void syncFolder(const std::string& folder) {
        if (const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); fd >= 0) {
            ::fsync(fd);
            ::close(fd);
        }
    }

    std::string folder_;
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

}  // namespace

std::string jsonString(const std::wstring& text) {
    std::string out = "\"";
    char escape[8];
    for (wchar_t wc : text) {
        const auto c = static_cast<uint32_t>(wc);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c == '\n') {
            out += "\\n";
        } else if (c == '\r') {
            out += "\\r";
        } else if (c == '\t') {
            out += "\\t";
        } else if (c < 0x20 || (c >= 0xD800 && c <= 0xDFFF)) {
            // A surrogate on its own (a byte of a file name that was not
            // UTF-8) has no UTF-8 form; JSON can still say which one it was.
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
            out += escape;
        } else if (c > 0x10FFFF) {
            out += "\\ufffd";
        } else {
            out += toUtf8(std::wstring(1, wc));
        }
    }
    return out + "\"";
}

std::vector<BundleFile> writeDownloadBundle(const Project& project, const std::string& folder,
                                            const RuntimeFilesOf& runtimeFiles) {
    prepareFolder(folder);

    // Every family and version in use, asked for before the first file is
    // written: the family reads them from disk and may fail.
    std::map<std::pair<int32_t, int32_t>, FBHexFileDetails> runtime;
    for (const LadderNet& net : project.Nets)
        for (const StoredOperation& operation : net.Operations)
            runtime.emplace(std::pair(operation.FatherID(), operation.HexFileVersion), FBHexFileDetails{});
    if (!runtime.empty() && !runtimeFiles) raiseError(err::ObjectNotSet, Source);
    for (auto& [pair, details] : runtime) details = runtimeFiles(pair.first, pair.second);

    BundleWriter writer(folder);
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

    std::string manifest = "{\n  \"format\": \"QxFBCom2 download bundle\",\n  \"version\": 1,\n  \"files\": [";
    manifest += lines.empty() ? "]\n}\n" : "\n" + lines + "\n  ]\n}\n";
    writer.publish(BundleManifestName, reinterpret_cast<const uint8_t*>(manifest.data()), manifest.size());
    return std::move(writer.files());
}

RuntimeFilesOf runtimeFilesFrom(itfFBGate& gate, HostContext& context) {
    return [&gate, &context](int32_t FatherID, int32_t HexFileVersion) {
        const std::wstring which =
            L"family " + std::to_wstring(FatherID) + L", version " + std::to_wstring(HexFileVersion);
        const size_t reports = context.Reports.size();
        FatherPtr father;
        FBHexFileDetails details;
        try {
            // Making the family already reads its ini file.
            father = gate.itfFBGate_GetFatherObject(FatherID);
            if (father) details = father->itfFBFather_GetHexFileDetails(HexFileVersion);
        } catch (const RuntimeError& e) {
            throw RuntimeError(e.Number(), e.Source(),
                               L"the runtime files of " + which + L" cannot be read: " + e.Description());
        }
        if (!father) throw RuntimeError(err::InvalidProcedureCall, Source, L"the component has no " + which);
        if (context.Reports.size() != reports)
            throw RuntimeError(err::FileNotFound, Source,
                               L"the runtime files of " + which + L" cannot be read from " + context.RuntimeFolder());
        return details;
    };
}

}  // namespace qx
