// The binary contract between a host and the in-process component: class and
// interface identifiers, result codes, the reference-counted base interface,
// the class factory, the handle through which a host reaches a library
// object, and the C entry points that libQxFBCom2.so exports. A host needs
// only this header (and the interfaces of platform/host/host_contract.h).
#pragma once
#include <cstdint>
#include <memory>

#include "platform/host/host_contract.h"

namespace qx {

using HRESULT = int32_t;

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001u);
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002u);
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003u);
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005u);
inline constexpr HRESULT E_UNEXPECTED = static_cast<HRESULT>(0x8000FFFFu);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000Eu);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057u);
inline constexpr HRESULT CLASS_E_NOAGGREGATION = static_cast<HRESULT>(0x80040110u);
inline constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = static_cast<HRESULT>(0x80040111u);
inline constexpr HRESULT CO_E_CLASSSTRING = static_cast<HRESULT>(0x800401F3u);
inline constexpr HRESULT SELFREG_E_CLASS = static_cast<HRESULT>(0x80040201u);
// A run-time error N of the library, raised while an object was made, comes
// back as 0x800A0000 + N (the control facility, as the host's runtime does).
inline constexpr HRESULT FACILITY_CONTROL_BASE = static_cast<HRESULT>(0x800A0000u);

inline constexpr bool SUCCEEDED(HRESULT hr) { return hr >= 0; }
inline constexpr bool FAILED(HRESULT hr) { return hr < 0; }

// A class or interface identifier, laid out as the 16 bytes of a UUID.
struct GUID {
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
    bool operator==(const GUID&) const = default;
};
static_assert(sizeof(GUID) == 16);

inline constexpr GUID IID_IUnknown{0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
inline constexpr GUID IID_IClassFactory{0x00000001, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
inline constexpr GUID IID_itfFBGate{0x9fb491c5, 0x57a8, 0x4f44, {0x81, 0x6d, 0x4f, 0x90, 0x37, 0x1d, 0xb0, 0xb4}};
inline constexpr GUID IID_itfFBFather{0x96cf410b, 0xb464, 0x4c25, {0xbe, 0xe7, 0xc6, 0x99, 0xbb, 0xb5, 0xf4, 0xde}};
inline constexpr GUID IID_itfFBMethod{0x179a829f, 0x5f62, 0x4ad5, {0xa8, 0x6a, 0x30, 0x67, 0x2b, 0x16, 0x19, 0xe7}};

inline constexpr GUID CLSID_clsGate{0x12d70566, 0xd97f, 0x4e2e, {0xa8, 0xc9, 0x65, 0xe0, 0xdb, 0xdc, 0x60, 0xe6}};
inline constexpr GUID CLSID_clsProtocolFather{
    0x91593330, 0x5ecd, 0x4615, {0x96, 0x8c, 0xfb, 0xc8, 0x03, 0x54, 0xfd, 0xda}};
inline constexpr GUID CLSID_clsProtocolConfig{
    0xbefa9625, 0xabbc, 0x4586, {0x90, 0x56, 0xf1, 0x78, 0x74, 0xc1, 0x1b, 0x88}};
inline constexpr GUID CLSID_clsProtocolSend{
    0xf580ca28, 0x1d59, 0x4e52, {0x9b, 0x0d, 0x64, 0x8d, 0xa3, 0xfe, 0xfa, 0x73}};
inline constexpr GUID CLSID_clsProtocolscan{
    0x297a23a1, 0x6101, 0x4941, {0xb4, 0x98, 0x0e, 0xa9, 0x8e, 0xfd, 0x07, 0xd2}};
inline constexpr GUID CLSID_clsProtocolResetBuffer{
    0x569d9382, 0x781c, 0x4ed0, {0xb4, 0xca, 0xff, 0xcf, 0x20, 0x0b, 0x46, 0x3a}};
inline constexpr GUID CLSID_clsProtocolCopyToBuffer{
    0xe1cde751, 0x1e40, 0x4140, {0xa0, 0x90, 0x08, 0x62, 0x09, 0x12, 0x42, 0x2e}};
inline constexpr GUID CLSID_clsEthProtocolFather{
    0x7598f277, 0xc647, 0x48c7, {0x94, 0xc8, 0xf4, 0x61, 0x53, 0x8b, 0x86, 0xab}};
inline constexpr GUID CLSID_clsEthProtocolConfig{
    0x79f1476f, 0xd5a2, 0x4606, {0xa5, 0xf4, 0x34, 0x42, 0xf4, 0x17, 0x72, 0x62}};
inline constexpr GUID CLSID_clsEthProtocolSend{
    0xd1007edb, 0x9095, 0x46b4, {0x87, 0x0c, 0x0f, 0xf8, 0xb6, 0x73, 0xfa, 0x84}};
inline constexpr GUID CLSID_clsEthProtocolScan{
    0x7954e570, 0xcdfb, 0x4c3b, {0x89, 0x5b, 0x0f, 0x19, 0xf7, 0xf2, 0x73, 0x6e}};

// Which library interface a public class hands out.
enum class ComInterface { Gate, Father, Method };

struct PublicClass {
    const wchar_t* Name;  // the class name; its ProgID is "QxFBCom2." + Name
    GUID CLSID;
    ComInterface Interface;
};

inline constexpr const wchar_t* ProgIDPrefix = L"QxFBCom2.";

// Every class a host can create, in the order they are registered.
inline constexpr PublicClass PublicClasses[] = {
    {L"clsGate", CLSID_clsGate, ComInterface::Gate},
    {L"clsProtocolFather", CLSID_clsProtocolFather, ComInterface::Father},
    {L"clsProtocolConfig", CLSID_clsProtocolConfig, ComInterface::Method},
    {L"clsProtocolSend", CLSID_clsProtocolSend, ComInterface::Method},
    {L"clsProtocolscan", CLSID_clsProtocolscan, ComInterface::Method},
    {L"clsProtocolResetBuffer", CLSID_clsProtocolResetBuffer, ComInterface::Method},
    {L"clsProtocolCopyToBuffer", CLSID_clsProtocolCopyToBuffer, ComInterface::Method},
    {L"clsEthProtocolFather", CLSID_clsEthProtocolFather, ComInterface::Father},
    {L"clsEthProtocolConfig", CLSID_clsEthProtocolConfig, ComInterface::Method},
    {L"clsEthProtocolSend", CLSID_clsEthProtocolSend, ComInterface::Method},
    {L"clsEthProtocolScan", CLSID_clsEthProtocolScan, ComInterface::Method},
};

// The base of every interface the component hands across its entry points.
class IUnknown {
public:
    virtual HRESULT QueryInterface(const GUID& riid, void** ppvObject) = 0;
    virtual uint32_t AddRef() = 0;
    virtual uint32_t Release() = 0;

protected:
    ~IUnknown() = default;
};

class IClassFactory : public IUnknown {
public:
    // pUnkOuter must be null (no aggregation). riid is IID_IUnknown or the
    // IID of the library interface the class implements.
    virtual HRESULT CreateInstance(IUnknown* pUnkOuter, const GUID& riid, void** ppvObject) = 0;
    // A nonzero fLock keeps the component loaded until a matching unlock.
    virtual HRESULT LockServer(int32_t fLock) = 0;

protected:
    ~IClassFactory() = default;
};

// The handle that CreateInstance gives for a library object implementing T:
// QueryInterface with the IID of T (or IID_IUnknown) gives this interface.
// Host and component share the C++ ABI, so the object itself comes back as a
// shared pointer; it stays alive as long as the host holds that pointer, also
// after the handle is released.
template <class T>
class IObjectRef : public IUnknown {
public:
    virtual std::shared_ptr<T> Object() = 0;

protected:
    ~IObjectRef() = default;
};

template <class T>
constexpr GUID interfaceIdOf();
template <>
constexpr GUID interfaceIdOf<itfFBGate>() {
    return IID_itfFBGate;
}
template <>
constexpr GUID interfaceIdOf<itfFBFather>() {
    return IID_itfFBFather;
}
template <>
constexpr GUID interfaceIdOf<itfFBMethod>() {
    return IID_itfFBMethod;
}

// For hosts: the library object behind a handle, as T; nullptr when the
// handle is null or its object does not implement T. The handle keeps its
// own reference.
template <class T>
std::shared_ptr<T> objectFromHandle(IUnknown* handle) {
    if (!handle) return nullptr;
    void* ref = nullptr;
    if (FAILED(handle->QueryInterface(interfaceIdOf<T>(), &ref)) || !ref) return nullptr;
    auto* typed = static_cast<IObjectRef<T>*>(ref);
    std::shared_ptr<T> object = typed->Object();
    typed->Release();
    return object;
}

// The exported entry points, as a host that dlopens the component sees them.
using DllGetClassObjectFn = HRESULT (*)(const GUID* rclsid, const GUID* riid, void** ppv);
using DllCanUnloadNowFn = HRESULT (*)();
using DllRegisterServerFn = HRESULT (*)();
using DllUnregisterServerFn = HRESULT (*)();
// "QxFBCom2.clsGate" (any case) to its class identifier; CO_E_CLASSSTRING
// for a name that is no public class.
using CLSIDFromProgIDFn = HRESULT (*)(const wchar_t* progId, GUID* clsid);
// The component's own host context, for stand-alone hosts and tests that
// play the person or set the application folder inside the component.
using HostContextFn = HostContext* (*)();

}  // namespace qx

#define QXFB_COM_EXPORT __attribute__((visibility("default")))

extern "C" {
QXFB_COM_EXPORT qx::HRESULT DllGetClassObject(const qx::GUID* rclsid, const qx::GUID* riid, void** ppv);
QXFB_COM_EXPORT qx::HRESULT DllCanUnloadNow();
QXFB_COM_EXPORT qx::HRESULT DllRegisterServer();
QXFB_COM_EXPORT qx::HRESULT DllUnregisterServer();
QXFB_COM_EXPORT qx::HRESULT QxFBCom2_CLSIDFromProgID(const wchar_t* progId, qx::GUID* clsid);
QXFB_COM_EXPORT qx::HostContext* QxFBCom2_HostContext();
}
