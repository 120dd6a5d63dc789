// The in-process server behind the component's C entry points: the class
// factories of the public classes, the handles they give out, the counts that
// decide whether the component may be unloaded, and the registration of the
// classes in the registry file. Nothing here lets an exception out: every
// function answers with an HRESULT.
#pragma once
#include <cstdint>
#include <optional>
#include <string>

#include "component/com_abi.h"

namespace qx {

// The public class with this identifier, or with this ProgID
// ("QxFBCom2.<class>", any case); nullptr when there is none.
const PublicClass* findPublicClass(const GUID& clsid);
const PublicClass* findPublicClassByProgID(const std::wstring& progId);
std::wstring progIDOf(const PublicClass& cls);

// "{12D70566-D97F-4E2E-A8C9-65E0DBDC60E6}"; the reading accepts either case
// and the braces may be left out.
std::string guidToText(const GUID& guid);
std::optional<GUID> guidFromText(const std::string& text);

// The work of the entry points of the same names.
HRESULT serverGetClassObject(const GUID* rclsid, const GUID* riid, void** ppv);
HRESULT serverCanUnloadNow();
HRESULT serverCLSIDFromProgID(const wchar_t* progId, GUID* clsid);
// Records every public class with libraryPath as its server in the registry
// file (registryFilePath()), keeping the file's other entries.
HRESULT serverRegister(const std::string& libraryPath);
// Removes exactly the entries serverRegister writes.
HRESULT serverUnregister();

// Factories and handles alive, and LockServer locks held.
int64_t serverObjectCount();
int64_t serverLockCount();

// The HRESULT for the exception in flight; call only inside a catch block.
HRESULT hresultFromCurrentException();

}  // namespace qx
