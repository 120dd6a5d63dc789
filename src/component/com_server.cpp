#include "component/com_server.h"

#include <atomic>
#include <cctype>
#include <cstdio>
#include <new>
#include <vector>

#include "component/gate.h"
#include "component/registry.h"
#include "editors/message_editors.h"
#include "field_editors/field_editors.h"
#include "platform/basics/ansi.h"
#include "platform/basics/ascii_case.h"
#include "platform/basics/object_count.h"
#include "platform/basics/runtime_error.h"
#include "serial/protocol_config.h"
#include "serial/protocol_copy_to_buffer.h"
#include "serial/protocol_father.h"
#include "serial/protocol_reset_buffer.h"
#include "serial/protocol_scan.h"
#include "serial/protocol_send.h"
#include "tcpip/eth_protocol_config.h"
#include "tcpip/eth_protocol_father.h"
#include "tcpip/eth_protocol_scan.h"
#include "tcpip/eth_protocol_send.h"

namespace qx {

namespace {

std::atomic<int64_t> serverObjects{0};
std::atomic<int64_t> serverLocks{0};

// Counts a factory or handle in and out of the server's objects.
class ServerObject {
protected:
    ServerObject() { ++serverObjects; }
    ~ServerObject() { --serverObjects; }
    ServerObject(const ServerObject&) = delete;
    ServerObject& operator=(const ServerObject&) = delete;
};

// One library object behind the reference count the host sees.
template <class T>
class ObjectHandle final : public IObjectRef<T>, private ServerObject {
public:
    explicit ObjectHandle(std::shared_ptr<T> object) : object_(std::move(object)) {}

    HRESULT QueryInterface(const GUID& riid, void** ppvObject) override {
        if (!ppvObject) return E_POINTER;
        *ppvObject = nullptr;
        if (riid == IID_IUnknown)
            *ppvObject = static_cast<IUnknown*>(this);
        else if (riid == interfaceIdOf<T>())
            *ppvObject = static_cast<IObjectRef<T>*>(this);
        else
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    uint32_t AddRef() override { return ++references_; }
    uint32_t Release() override {
        uint32_t left = --references_;
        if (left == 0) delete this;
        return left;
    }
    std::shared_ptr<T> Object() override { return object_; }

private:
    ~ObjectHandle() = default;
    std::atomic<uint32_t> references_{1};
    std::shared_ptr<T> object_;
};

template <class T, class Class>
IUnknown* makeHandle() {
    return new ObjectHandle<T>(std::make_shared<Class>());
}

struct Creator {
    const wchar_t* Name;
    IUnknown* (*Make)();
};

// How each public class is made; PublicClasses (com_abi.h) names them.
const Creator creators[] = {
    {L"clsGate", &makeHandle<itfFBGate, clsGate>},
    {L"clsProtocolFather", &makeHandle<itfFBFather, clsProtocolFather>},
    {L"clsEthProtocolFather", &makeHandle<itfFBFather, clsEthProtocolFather>},
    {L"clsProtocolConfig", &makeHandle<itfFBMethod, clsProtocolConfig>},
    {L"clsProtocolSend", &makeHandle<itfFBMethod, clsProtocolSend>},
    {L"clsProtocolscan", &makeHandle<itfFBMethod, clsProtocolscan>},
    {L"clsProtocolResetBuffer", &makeHandle<itfFBMethod, clsProtocolResetBuffer>},
    {L"clsProtocolCopyToBuffer", &makeHandle<itfFBMethod, clsProtocolCopyToBuffer>},
    {L"clsEthProtocolConfig", &makeHandle<itfFBMethod, clsEthProtocolConfig>},
    {L"clsEthProtocolSend", &makeHandle<itfFBMethod, clsEthProtocolSend>},
    {L"clsEthProtocolScan", &makeHandle<itfFBMethod, clsEthProtocolScan>},
};

static_assert(std::size(creators) == std::size(PublicClasses), "every public class needs a creator");

const Creator* creatorOf(const PublicClass& cls) {
    for (const auto& creator : creators)
        if (std::wstring(creator.Name) == cls.Name) return &creator;
    return nullptr;
}

class ClassFactory final : public IClassFactory, private ServerObject {
public:
    explicit ClassFactory(const PublicClass& cls) : class_(cls) {}

    HRESULT QueryInterface(const GUID& riid, void** ppvObject) override {
        if (!ppvObject) return E_POINTER;
        *ppvObject = nullptr;
        if (riid == IID_IUnknown)
            *ppvObject = static_cast<IUnknown*>(this);
        else if (riid == IID_IClassFactory)
            *ppvObject = static_cast<IClassFactory*>(this);
        else
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    uint32_t AddRef() override { return ++references_; }
    uint32_t Release() override {
        uint32_t left = --references_;
        if (left == 0) delete this;
        return left;
    }

    HRESULT CreateInstance(IUnknown* pUnkOuter, const GUID& riid, void** ppvObject) override {
        if (!ppvObject) return E_POINTER;
        *ppvObject = nullptr;
        if (pUnkOuter) return CLASS_E_NOAGGREGATION;
        try {
            const Creator* creator = creatorOf(class_);
            if (!creator) return CLASS_E_CLASSNOTAVAILABLE;
            IUnknown* handle = creator->Make();
            HRESULT hr = handle->QueryInterface(riid, ppvObject);
            handle->Release();
            return hr;
        } catch (...) {
            return hresultFromCurrentException();
        }
    }

    HRESULT LockServer(int32_t fLock) override {
        if (fLock)
            ++serverLocks;
        else if (serverLocks > 0)
            --serverLocks;
        return S_OK;
    }

private:
    ~ClassFactory() = default;
    std::atomic<uint32_t> references_{1};
    const PublicClass& class_;
};

std::string clsidSection(const PublicClass& cls) { return "CLSID\\" + guidToText(cls.CLSID); }

// The entries serverRegister writes, as (section, key) with their values.
struct RegistryEntry {
    std::string Section, Key, Value;
};

std::vector<RegistryEntry> registryEntries(const std::string& libraryPath) {
    std::vector<RegistryEntry> entries;
    for (const auto& cls : PublicClasses) {
        const std::string progId = toUtf8(progIDOf(cls));
        const std::string clsid = clsidSection(cls);
        entries.push_back({clsid, "Class", toUtf8(cls.Name)});
        entries.push_back({clsid, "ProgID", progId});
        entries.push_back({clsid, "InprocServer32", libraryPath});
        entries.push_back({clsid, "ThreadingModel", "Apartment"});
        entries.push_back({progId, "CLSID", guidToText(cls.CLSID)});
    }
    return entries;
}

}  // namespace

const PublicClass* findPublicClass(const GUID& clsid) {
    for (const auto& cls : PublicClasses)
        if (cls.CLSID == clsid) return &cls;
    return nullptr;
}

const PublicClass* findPublicClassByProgID(const std::wstring& progId) {
    for (const auto& cls : PublicClasses)
        if (sameIgnoringAsciiCase(progIDOf(cls), progId)) return &cls;
    return nullptr;
}

std::wstring progIDOf(const PublicClass& cls) { return std::wstring(ProgIDPrefix) + cls.Name; }

std::string guidToText(const GUID& guid) {
    char text[39];
    std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", guid.Data1, guid.Data2,
                  guid.Data3, guid.Data4[0], guid.Data4[1], guid.Data4[2], guid.Data4[3], guid.Data4[4], guid.Data4[5],
                  guid.Data4[6], guid.Data4[7]);
    return text;
}

std::optional<GUID> guidFromText(const std::string& text) {
    std::string body = text;
    if (body.size() == 38 && body.front() == '{' && body.back() == '}') body = body.substr(1, 36);
    if (body.size() != 36) return std::nullopt;
    std::string hex;
    for (size_t i = 0; i < body.size(); ++i) {
        char c = body[i];
        if (i == 8 || i == 13 || i == 18 || i == 23) {
            if (c != '-') return std::nullopt;
            continue;
        }
        if (!std::isxdigit(static_cast<unsigned char>(c))) return std::nullopt;
        hex += c;
    }
    auto number = [&](size_t from, size_t digits) { return std::stoull(hex.substr(from, digits), nullptr, 16); };
    GUID guid{};
    guid.Data1 = static_cast<uint32_t>(number(0, 8));
    guid.Data2 = static_cast<uint16_t>(number(8, 4));
    guid.Data3 = static_cast<uint16_t>(number(12, 4));
    for (size_t i = 0; i < 8; ++i) guid.Data4[i] = static_cast<uint8_t>(number(16 + 2 * i, 2));
    return guid;
}

HRESULT serverGetClassObject(const GUID* rclsid, const GUID* riid, void** ppv) {
    if (!ppv) return E_POINTER;
    *ppv = nullptr;
    if (!rclsid || !riid) return E_INVALIDARG;
    try {
        // Every object of the component is made through here, so the sets
        // find their dialogs whichever class the host asks for first. Only
        // empty hooks are filled: a host's own editors stay.
        installFieldEditors();
        installMessageEditors();
        const PublicClass* cls = findPublicClass(*rclsid);
        if (!cls) return CLASS_E_CLASSNOTAVAILABLE;
        auto* factory = new ClassFactory(*cls);
        HRESULT hr = factory->QueryInterface(*riid, ppv);
        factory->Release();
        return hr;
    } catch (...) {
        return hresultFromCurrentException();
    }
}

HRESULT serverCanUnloadNow() {
    return liveObjectCount() == 0 && serverObjects == 0 && serverLocks == 0 ? S_OK : S_FALSE;
}

HRESULT serverCLSIDFromProgID(const wchar_t* progId, GUID* clsid) {
    if (!progId || !clsid) return E_POINTER;
    try {
        const PublicClass* cls = findPublicClassByProgID(progId);
        if (!cls) return CO_E_CLASSSTRING;
        *clsid = cls->CLSID;
        return S_OK;
    } catch (...) {
        return hresultFromCurrentException();
    }
}

HRESULT serverRegister(const std::string& libraryPath) {
    try {
        const std::string path = registryFilePath();
        if (path.empty()) return SELFREG_E_CLASS;
        RegistryFile file = RegistryFile::load(path);
        for (const auto& entry : registryEntries(libraryPath)) file.setValue(entry.Section, entry.Key, entry.Value);
        file.save(path);
        return S_OK;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return SELFREG_E_CLASS;
    }
}

HRESULT serverUnregister() {
    try {
        const std::string path = registryFilePath();
        if (path.empty()) return SELFREG_E_CLASS;
        RegistryFile file = RegistryFile::load(path);
        bool changed = false;
        for (const auto& entry : registryEntries("")) changed = file.removeValue(entry.Section, entry.Key) || changed;
        if (changed) file.save(path);
        return S_OK;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return SELFREG_E_CLASS;
    }
}

int64_t serverObjectCount() { return serverObjects; }
int64_t serverLockCount() { return serverLocks; }

HRESULT hresultFromCurrentException() {
    try {
        throw;
    } catch (const RuntimeError& e) {
        return FACILITY_CONTROL_BASE | static_cast<HRESULT>(e.Number() & 0xFFFF);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_FAIL;
    }
}

}  // namespace qx
