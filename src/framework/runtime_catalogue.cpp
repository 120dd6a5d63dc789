#include "framework/runtime_catalogue.h"

#include <utility>

#include "platform/basics/ansi.h"
#include "platform/basics/file_reader.h"
#include "platform/basics/runtime_error.h"
#include "platform/basics/variant.h"
#include "platform/host/host_services.h"
#include "platform/host/resources.h"

namespace qx {

namespace {

constexpr int64_t kKeyNotFoundNumber = 0x80040000;
constexpr int64_t kFileNotFoundNumber = 0x800402A6;
constexpr int32_t kReportSeverity = 16;
constexpr int32_t kIniBufferSize = 255;
const std::wstring kComponentName = L"QxFBCom2";
const std::wstring kModuleName = L"mdlGlobal";
const std::wstring kNoResult = L"NO RESULT";
const std::wstring kNewLine = L"\r\n";

void report(const std::wstring& name, int64_t number, const std::wstring& text, const std::wstring& procedure) {
    clsErrorReporter().Report({name, number, text, kComponentName, kModuleName, procedure, kReportSeverity});
}

// The file is there but cannot be read.
[[noreturn]] void raiseFileAccessError() {
    throw RuntimeError(err::PathFileAccessError, kComponentName, L"Path/File access error");
}

std::string fileSystemPath(const std::wstring& path) { return toUtf8(path); }

std::wstring iniFileName(int32_t FatherID) { return RuntimeFolder() + std::to_wstring(FatherID) + L".ini"; }

// Blanks only, at both ends; other white space stays.
std::string trimBlanks(const std::string& text) {
    size_t begin = text.find_first_not_of(' ');
    if (begin == std::string::npos) return "";
    size_t end = text.find_last_not_of(' ');
    return text.substr(begin, end - begin + 1);
}

// Reads a runtime file whole into an array from 0 to its length - 1. Only a
// regular file is read; one past the limit of runtime files (its size would
// not even fit the I4 of the details beyond 2 GiB) is an overflow.
Bytes readWholeFile(const std::wstring& fileName) {
    FileContent file = readRegularFile(fileSystemPath(fileName), file_limit::Runtime);
    switch (file.Status) {
        case FileReadStatus::Ok:
            break;
        case FileReadStatus::Missing:
            raiseError(err::FileNotFound);
        case FileReadStatus::TooLarge:
            raiseError(err::Overflow);
        case FileReadStatus::NotRegular:
        case FileReadStatus::Unreadable:
            raiseFileAccessError();
    }
    // An empty file cannot size an array from 0 to -1: that is a subscript
    // out of range, which the caller raises again unchanged.
    if (file.Data.empty()) raiseError(err::SubscriptOutOfRange);
    return std::move(file.Data);
}

std::vector<std::wstring> splitText(const std::wstring& text, wchar_t separator) {
    std::vector<std::wstring> parts;
    size_t start = 0;
    for (size_t at = text.find(separator); at != std::wstring::npos; at = text.find(separator, start)) {
        parts.push_back(text.substr(start, at - start));
        start = at + 1;
    }
    parts.push_back(text.substr(start));
    return parts;
}

}  // namespace

std::wstring RuntimeFolder() { return clsAppPaths().AppPath() + L"/../FB_Lib/RT/"; }

std::wstring runtimeFileName(int32_t FatherID, int32_t Version, const std::wstring& extension) {
    return std::to_wstring(FatherID) + L"V" + std::to_wstring(Version) + extension;
}

std::wstring ReadFromIni(int32_t FatherID, const std::wstring& Key) {
    try {
        std::string path = fileSystemPath(iniFileName(FatherID));
        std::string buffer(kIniBufferSize, ' ');
        GetPrivateProfileStringA(std::to_string(FatherID), toAnsi(Key), toAnsi(kNoResult), buffer, kIniBufferSize,
                                 path);
        std::string value = trimBlanks(buffer);
        // What remains ends in the NUL that the call wrote after the value.
        if (value.empty()) raiseError(err::InvalidProcedureCall);
        value.pop_back();
        std::wstring result = fromAnsi(value);
        if (result != kNoResult) return result;
    } catch (const std::exception&) {
        // Any run-time error here is reported as a missing key.
    }
    report(L"KeyNotFount", kKeyNotFoundNumber,
           L"Function block ini file key not found: " + kNewLine + L"FatherID: " + std::to_wstring(FatherID) +
               kNewLine + L"Key: " + Key,
           L"ReadFromIni");
    return L"";
}

int32_t ReadCurrentHexFileVersion(int32_t FatherID) {
    return textToI4(ReadFromIni(FatherID, L"CurrentHexFileVersion"));
}

std::vector<int32_t> ReadHexFileVersionsList(int32_t FatherID) {
    std::vector<std::wstring> parts = splitText(ReadFromIni(FatherID, L"HexFilesVersionsList"), L';');
    std::vector<int32_t> versions(parts.size());
    for (size_t i = 0; i < parts.size(); ++i) versions[i] = textToI4(parts[i]);
    return versions;
}

FBHexFileDetails srvGetHexFileDetails(int32_t FatherID, int32_t Version) {
    std::wstring codeFile = RuntimeFolder() + runtimeFileName(FatherID, Version, L".FBs");
    std::wstring jumpFile = RuntimeFolder() + runtimeFileName(FatherID, Version, L".Jmp");
    FBHexFileDetails details;
    try {
        details.FBs = readWholeFile(codeFile);
        details.Jmp = readWholeFile(jumpFile);
    } catch (const RuntimeError& error) {
        if (error.Number() != err::FileNotFound) throw;
        report(L"FileNotFount", kFileNotFoundNumber,
               L"Function block RT files not found: " + kNewLine + L"FatherID: " + std::to_wstring(FatherID) +
                   kNewLine + L"Version: " + std::to_wstring(Version),
               L"srvGetHexFileDetails");
        // Whatever was read of the code file is dropped with the rest.
        FBHexFileDetails missing;
        missing.FBs = Bytes{0, 0};
        missing.Jmp = Bytes{0, 0};
        return missing;
    }
    details.FBsSize = static_cast<int32_t>(details.FBs.size());
    const std::wstring prefix = L"Version" + std::to_wstring(Version);
    details.MinBiosVersion = textToI4(ReadFromIni(FatherID, prefix + L"_MinBiosVersion"));
    details.RealTimeMemorySize = textToI4(ReadFromIni(FatherID, prefix + L"_RealTimeMemorySize"));
    return details;
}

void LoadFBImages(int32_t identifier, PicturePtr& MenuIcon, PicturePtr& LadderImage, PicturePtr& LadderImageSelected) {
    const std::string id = std::to_string(identifier);
    // Each picture on its own: one that fails to load leaves only itself empty.
    auto load = [](const std::string& name) -> PicturePtr {
        try {
            return loadBitmapResource(name);
        } catch (const std::exception&) {
            return nullptr;
        }
    };
    MenuIcon = load("MENU_ICON_" + id);
    LadderImage = load("LADDER_IMAGE_" + id);
    LadderImageSelected = load("LADDER_IMAGE_SELECTED_" + id);
}

std::wstring GetText(int32_t N) { return clsTextTable().GetText(N); }

int32_t ShowMessage(int32_t N, const std::vector<std::wstring>& params) {
    ShownMessage message;
    message.Number = N;
    message.Params = params;
    message.Text = clsTextTable().GetMessageText(N, params);
    message.Answer = host().Driver->AnswerMessage(message);
    host().Messages.push_back(message);
    return message.Answer;
}

}  // namespace qx
