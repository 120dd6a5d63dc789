// The component as a stand-alone host holds it: libQxFBCom2.so opened with
// dlopen and reached only through its exported entry points, as the ladder
// IDE reaches it. Shared by the hosts of this project (the CLI, the
// workbench).
#pragma once
#include <memory>
#include <string>

#include "component/com_abi.h"

namespace qx {

class LoadedComponent {
public:
    LoadedComponent() = default;
    // Unloads only when the component agrees (DllCanUnloadNow).
    ~LoadedComponent();
    LoadedComponent(const LoadedComponent&) = delete;
    LoadedComponent& operator=(const LoadedComponent&) = delete;

    // Opens the component at path; false with Error() set when it is no
    // regular file, cannot be loaded or lacks an entry point.
    bool Load(const std::string& path);

    // A new object of the class named by its ProgID, as the interface T;
    // nullptr with Error() set when any step fails.
    template <class T>
    std::shared_ptr<T> Create(const std::wstring& progId) {
        IUnknown* handle = createHandle(progId);
        if (!handle) return nullptr;
        std::shared_ptr<T> object = objectFromHandle<T>(handle);
        handle->Release();
        if (!object) error_ = "QueryInterface failed with " + hresultText(E_NOINTERFACE);
        return object;
    }

    const std::string& Path() const { return path_; }
    // Why the last Load or Create failed.
    const std::string& Error() const { return error_; }

    DllGetClassObjectFn GetClassObject = nullptr;
    DllCanUnloadNowFn CanUnloadNow = nullptr;
    DllRegisterServerFn RegisterServer = nullptr;
    DllUnregisterServerFn UnregisterServer = nullptr;
    CLSIDFromProgIDFn CLSIDFromProgID = nullptr;
    HostContextFn Context = nullptr;

    static std::string hresultText(HRESULT hr);

private:
    IUnknown* createHandle(const std::wstring& progId);

    void* handle_ = nullptr;
    std::string path_;
    std::string error_;
};

// The component a host finds by default: the one installed in the library
// folder beside the program's, else the one of the build that made it.
std::string defaultComponentPath();

// The folder of the running program.
std::string executableFolder();

}  // namespace qx
