// The C entry points of libQxFBCom2.so. Everything else in the library is
// hidden; these only prepare the component's own host context and hand over
// to platform/com_server, and no exception leaves them.
#include <dlfcn.h>

#include <cstdlib>
#include <mutex>
#include <string>

#include "component/com_server.h"
#include "component/default_app_folder.h"
#include "platform/basics/ansi.h"
#include "platform/host/host_context.h"

// Set by src/CMakeLists.txt for the component.
#ifndef QXFB_INSTALLED_APP_FOLDER
#define QXFB_INSTALLED_APP_FOLDER ""
#endif

namespace {

// The path of this shared library as the loader found it, symbolic links resolved.
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

// The component's host context gets its application folder at the first call
// into the component: $QXFB_APP_FOLDER when set, else the built-in default. A
// host may change it afterwards through QxFBCom2_HostContext().
//
// One build makes one library for both places, the build tree and the
// install prefix, so the library tells them apart by what lies beside it:
// the installed one finds the runtime folder that `cmake --install` put at
// QXFB_INSTALLED_APP_FOLDER (relative to the library's folder, computed at
// configure time from the library and data folders) and uses it; the one in
// the build tree finds none there and keeps the folder the core's host
// context starts with, runtime/bin of the source tree, which the tests rely on.
void prepareHostContext() noexcept {
    static std::once_flag once;
    try {
        std::call_once(once, [] {
            qx::HostContext& context = qx::host();
            const char* folder = std::getenv("QXFB_APP_FOLDER");
            if (folder && *folder) {
                context.AppFolder = qx::fromUtf8(folder);
                return;
            }
            context.AppFolder = qx::fromUtf8(
                qx::defaultAppFolder(componentPath(), QXFB_INSTALLED_APP_FOLDER, qx::toUtf8(context.AppFolder)));
        });
    } catch (...) {
        // The context stays as it is; a family will report the missing runtime files.
    }
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
