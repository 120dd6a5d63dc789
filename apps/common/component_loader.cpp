#include "component_loader.h"

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "platform/basics/ansi.h"

namespace qx {

namespace {

// Why the file at path cannot be a component, or nothing: dlopen would block
// on a FIFO until a writer comes and read a device without end, so only a
// regular file goes to it.
std::string faultOfComponentFile(const std::string& path) {
    if (path.empty()) return "the path is empty";
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) return std::strerror(errno);
    if (!S_ISREG(info.st_mode)) return "not a regular file";
    return "";
}

}  // namespace

std::string LoadedComponent::hresultText(HRESULT hr) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(hr));
    return text;
}

LoadedComponent::~LoadedComponent() {
    if (handle_ && CanUnloadNow && CanUnloadNow() == S_OK) dlclose(handle_);
}

bool LoadedComponent::Load(const std::string& path) {
    path_ = path;
    if (const std::string fault = faultOfComponentFile(path); !fault.empty()) {
        error_ = "cannot load the component \"" + path + "\": " + fault;
        return false;
    }
    // A name without a slash names a file of the current folder, as any path
    // on a command line does, and not one that dlopen searches for.
    const std::string file = path.find('/') == std::string::npos ? "./" + path : path;
    handle_ = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle_) {
        error_ = "cannot load the component \"" + path + "\": " + dlerror();
        return false;
    }
    GetClassObject = reinterpret_cast<DllGetClassObjectFn>(dlsym(handle_, "DllGetClassObject"));
    CanUnloadNow = reinterpret_cast<DllCanUnloadNowFn>(dlsym(handle_, "DllCanUnloadNow"));
    RegisterServer = reinterpret_cast<DllRegisterServerFn>(dlsym(handle_, "DllRegisterServer"));
    UnregisterServer = reinterpret_cast<DllUnregisterServerFn>(dlsym(handle_, "DllUnregisterServer"));
    CLSIDFromProgID = reinterpret_cast<CLSIDFromProgIDFn>(dlsym(handle_, "QxFBCom2_CLSIDFromProgID"));
    Context = reinterpret_cast<HostContextFn>(dlsym(handle_, "QxFBCom2_HostContext"));
    if (!GetClassObject || !CanUnloadNow || !RegisterServer || !UnregisterServer || !CLSIDFromProgID || !Context) {
        error_ = path + " does not export the entry points of the component";
        return false;
    }
    return true;
}

IUnknown* LoadedComponent::createHandle(const std::wstring& progId) {
    if (!CLSIDFromProgID) {
        error_ = "no component is loaded";
        return nullptr;
    }
    GUID clsid{};
    HRESULT hr = CLSIDFromProgID(progId.c_str(), &clsid);
    if (FAILED(hr)) {
        error_ = "CLSIDFromProgID(" + toUtf8(progId) + ") failed with " + hresultText(hr);
        return nullptr;
    }
    void* pv = nullptr;
    hr = GetClassObject(&clsid, &IID_IClassFactory, &pv);
    if (FAILED(hr)) {
        error_ = "DllGetClassObject failed with " + hresultText(hr);
        return nullptr;
    }
    auto* factory = static_cast<IClassFactory*>(pv);
    void* handle = nullptr;
    hr = factory->CreateInstance(nullptr, IID_IUnknown, &handle);
    factory->Release();
    if (FAILED(hr)) {
        error_ = "CreateInstance failed with " + hresultText(hr);
        return nullptr;
    }
    return static_cast<IUnknown*>(handle);
}

std::string executableFolder() {
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path - 1);
    if (length <= 0) return ".";
    path[length] = 0;
    return std::filesystem::path(path).parent_path().string();
}

// The installed one comes first, so that an installed host never loads the
// component of a build tree still on the machine.
std::string defaultComponentPath() {
    std::error_code ec;
    const std::string installed = executableFolder() + "/" + QXFB_INSTALLED_COMPONENT;
    if (std::filesystem::exists(installed, ec)) return installed;
    const std::string built = QXFB_BUILT_COMPONENT;
    if (!built.empty() && std::filesystem::exists(built, ec)) return built;
    return installed;
}

}  // namespace qx
