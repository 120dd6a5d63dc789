#include "project/download_bundle.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <tuple>
#include <utility>

#include "framework/runtime_catalogue.h"
#include "platform/basics/ansi.h"
#include "platform/basics/file_reader.h"
#include "platform/basics/runtime_error.h"

namespace qx {

namespace {

constexpr const wchar_t* Source = L"QxFBCom2 download bundle";

std::string numbered(const char* format, int32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, format, static_cast<int>(value));
    return text;
}

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
    FolderWriter writer("bundle", Source, folder);
    checkKeys(project);

    // Every family and version in use, asked for before the first file is
    // written: the family reads them from disk and may fail.
    std::map<std::pair<int32_t, int32_t>, FBHexFileDetails> runtime;
    for (const LadderNet& net : project.Nets)
        for (const StoredOperation& operation : net.Operations)
            runtime.emplace(std::pair(operation.FatherID(), operation.HexFileVersion), FBHexFileDetails{});
    if (!runtime.empty() && !runtimeFiles) raiseError(err::ObjectNotSet, Source);
    for (auto& [pair, details] : runtime) details = runtimeFiles(pair.first, pair.second);

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
    writer.write(BundleManifestName, manifest);
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
