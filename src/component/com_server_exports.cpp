// The C entry points of libQxFBCom2.so. Everything else in the library is
// hidden; these only prepare the component's own host context and hand over
// to platform/com_server, and no exception leaves them.
#include <dlfcn.h>

#include <cstdlib>
#include <mutex>
#include <string>

#include "component/com_server.h"
#include "platform/basics/ansi.h"
#include "platform/host/host_context.h"

namespace {

// The component's host context starts with the application folder baked in
// at build time (runtime/bin of the source tree); $QXFB_APP_FOLDER, read at
// the first call into the component, replaces it. A host may change it
// afterwards through QxFBCom2_HostContext().
void prepareHostContext() noexcept {
    static std::once_flag once;
    try {
        std::call_once(once, [] {
            const char* folder = std::getenv("QXFB_APP_FOLDER");
            if (folder && *folder) qx::host().AppFolder = qx::fromUtf8(folder);
        });
    } catch (...) {
        // The context stays as it is; a family will report the missing runtime files.
    }
}

// The path of this shared library as the loader found it.
std::string componentPath() {
    static const char anchor = 0;
    Dl_info info{};
    if (!dladdr(&anchor, &info) || !info.dli_fname || !*info.dli_fname) return "";
    char* resolved = realpath(info.dli_fname, nullptr);
    if (!resolved) return info.dli_fname;
    std::string path(resolved);
    std::free(resolved);
    return path;
}

}  // namespace

extern "C" {

qx::HRESULT DllGetClassObject(const qx::GUID* rclsid, const qx::GUID* riid, void** ppv) {
    prepareHostContext();
    return qx::serverGetClassObject(rclsid, riid, ppv);
}

qx::HRESULT DllCanUnloadNow() { return qx::serverCanUnloadNow(); }

qx::HRESULT DllRegisterServer() {
    try {
        std::string path = componentPath();
        if (path.empty()) return qx::SELFREG_E_CLASS;
        return qx::serverRegister(path);
    } catch (...) {
        return qx::SELFREG_E_CLASS;
    }
}

qx::HRESULT DllUnregisterServer() { return qx::serverUnregister(); }

qx::HRESULT QxFBCom2_CLSIDFromProgID(const wchar_t* progId, qx::GUID* clsid) {
    return qx::serverCLSIDFromProgID(progId, clsid);
}

qx::HostContext* QxFBCom2_HostContext() {
    prepareHostContext();
    try {
        return &qx::host();
    } catch (...) {
        return nullptr;
    }
}

}  // extern "C"
