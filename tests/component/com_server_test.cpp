// The server's own logic, linked in: identifiers, class lookup, results of
// failing calls, and the counts that decide unloading.
#include "component/com_server.h"

#include <gtest/gtest.h>

#include <clocale>
#include <memory>
#include <new>
#include <set>
#include <stdexcept>
#include <string>

#include "message/editor_hooks.h"
#include "message/protocol_cs_var.h"
#include "platform/basics/runtime_error.h"
#include "sets/set_editor_hooks.h"

namespace qx {
namespace {

TEST(Guid, TextIsUpperCaseWithBraces) {
    EXPECT_EQ(guidToText(CLSID_clsGate), "{12D70566-D97F-4E2E-A8C9-65E0DBDC60E6}");
    EXPECT_EQ(guidToText(IID_IUnknown), "{00000000-0000-0000-C000-000000000046}");
}

TEST(Guid, ReadingAcceptsEitherCaseWithOrWithoutBraces) {
    EXPECT_EQ(guidFromText("{12d70566-d97f-4e2e-a8c9-65e0dbdc60e6}"), CLSID_clsGate);
    EXPECT_EQ(guidFromText("12D70566-D97F-4E2E-A8C9-65E0DBDC60E6"), CLSID_clsGate);
    for (const auto& cls : PublicClasses) EXPECT_EQ(guidFromText(guidToText(cls.CLSID)), cls.CLSID);
}

TEST(Guid, ReadingRefusesMalformedText) {
    EXPECT_EQ(guidFromText(""), std::nullopt);
    EXPECT_EQ(guidFromText("{12D70566-D97F-4E2E-A8C9-65E0DBDC60E}"), std::nullopt);
    EXPECT_EQ(guidFromText("{12D70566xD97F-4E2E-A8C9-65E0DBDC60E6}"), std::nullopt);
    EXPECT_EQ(guidFromText("{12D70566-D97F-4E2E-A8C9-65E0DBDC60EG}"), std::nullopt);
    EXPECT_EQ(guidFromText("(12D70566-D97F-4E2E-A8C9-65E0DBDC60E6)"), std::nullopt);
}

TEST(PublicClasses, AreTheElevenClassesWithDistinctIdentifiers) {
    std::set<std::string> identifiers;
    std::set<std::wstring> names;
    for (const auto& cls : PublicClasses) {
        identifiers.insert(guidToText(cls.CLSID));
        names.insert(cls.Name);
    }
    EXPECT_EQ(std::size(PublicClasses), 11u);
    EXPECT_EQ(identifiers.size(), 11u);
    EXPECT_EQ(names, (std::set<std::wstring>{L"clsGate", L"clsProtocolFather", L"clsProtocolConfig", L"clsProtocolSend",
                                             L"clsProtocolscan", L"clsProtocolResetBuffer", L"clsProtocolCopyToBuffer",
                                             L"clsEthProtocolFather", L"clsEthProtocolConfig", L"clsEthProtocolSend",
                                             L"clsEthProtocolScan"}));
}

TEST(PublicClasses, AreFoundByIdentifierAndByProgID) {
    EXPECT_EQ(findPublicClass(CLSID_clsEthProtocolSend)->Name, std::wstring(L"clsEthProtocolSend"));
    EXPECT_EQ(findPublicClass(IID_IUnknown), nullptr);
    EXPECT_EQ(findPublicClassByProgID(L"QXFBCOM2.CLSGATE"), findPublicClass(CLSID_clsGate));
    EXPECT_EQ(findPublicClassByProgID(L"QxFBCom2.clsGate.1"), nullptr);
    EXPECT_EQ(progIDOf(*findPublicClass(CLSID_clsProtocolscan)), L"QxFBCom2.clsProtocolscan");
}

TEST(PublicClasses, ProgIDsFoldTheCaseOfAsciiLettersOnlyInEveryLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* locale : {"C.UTF-8", "C"}) {
        SCOPED_TRACE(locale);
        if (!std::setlocale(LC_ALL, locale)) {
            ADD_FAILURE() << "no locale " << locale;
            continue;
        }
        // U+0130, a capital I with a dot, lowers to 'i' outside ASCII rules.
        EXPECT_EQ(findPublicClassByProgID(L"QxFBCom2.clsProtocolConf\u0130g"), nullptr);
        EXPECT_EQ(findPublicClassByProgID(L"QxFBCom2.clsProtocolConf\u0131g"), nullptr);
        EXPECT_EQ(findPublicClassByProgID(L"qxfbcom2.CLSPROTOCOLCONFIG"), findPublicClass(CLSID_clsProtocolConfig));
        GUID clsid{};
        EXPECT_EQ(serverCLSIDFromProgID(L"QxFBCom2.clsProtocolConf\u0130g", &clsid), CO_E_CLASSSTRING);
    }
    std::setlocale(LC_ALL, before.c_str());
}

HRESULT resultOf(const std::function<void()>& f) {
    try {
        f();
    } catch (...) {
        return hresultFromCurrentException();
    }
    return S_OK;
}

TEST(ServerResults, RuntimeErrorBecomesAControlFacilityCode) {
    EXPECT_EQ(resultOf([] { raiseError(err::TypeMismatch); }), static_cast<HRESULT>(0x800A000Du));
    EXPECT_EQ(resultOf([] { raiseError(err::FileNotFound); }), static_cast<HRESULT>(0x800A0035u));
}

TEST(ServerResults, OutOfMemoryAndAnythingElseHaveTheirCodes) {
    EXPECT_EQ(resultOf([] { throw std::bad_alloc(); }), E_OUTOFMEMORY);
    EXPECT_EQ(resultOf([] { throw std::logic_error("x"); }), E_FAIL);
    EXPECT_EQ(resultOf([] { throw 42; }), E_FAIL);
}

TEST(ServerCounts, FactoriesHandlesAndLocksAreCountedInAndOut) {
    const int64_t before = serverObjectCount();
    void* pv = nullptr;
    ASSERT_EQ(serverGetClassObject(&CLSID_clsGate, &IID_IClassFactory, &pv), S_OK);
    auto* factory = static_cast<IClassFactory*>(pv);
    EXPECT_EQ(serverObjectCount(), before + 1);
    void* object = nullptr;
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_itfFBGate, &object), S_OK);
    EXPECT_EQ(serverObjectCount(), before + 2);
    EXPECT_EQ(serverCanUnloadNow(), S_FALSE);
    EXPECT_EQ(factory->LockServer(1), S_OK);
    EXPECT_EQ(serverLockCount(), 1);
    EXPECT_EQ(factory->LockServer(0), S_OK);
    // More unlocks than locks do not go below zero.
    EXPECT_EQ(factory->LockServer(0), S_OK);
    EXPECT_EQ(serverLockCount(), 0);
    auto gate = objectFromHandle<itfFBGate>(static_cast<IUnknown*>(object));
    ASSERT_NE(gate, nullptr);
    EXPECT_EQ(gate->itfFBGate_GateID(), 170000);
    static_cast<IUnknown*>(object)->Release();
    factory->Release();
    EXPECT_EQ(serverObjectCount(), before);
    EXPECT_EQ(serverCanUnloadNow(), S_FALSE);  // the gate itself still lives
    gate.reset();
    EXPECT_EQ(serverCanUnloadNow(), S_OK);
}

TEST(ServerResults, NullArgumentsAreRefusedWithoutTouchingAnything) {
    void* pv = reinterpret_cast<void*>(1);
    EXPECT_EQ(serverGetClassObject(&CLSID_clsGate, nullptr, &pv), E_INVALIDARG);
    EXPECT_EQ(pv, nullptr);
    EXPECT_EQ(serverGetClassObject(&CLSID_clsGate, &IID_IClassFactory, nullptr), E_POINTER);
    GUID clsid{};
    EXPECT_EQ(serverCLSIDFromProgID(nullptr, &clsid), E_POINTER);
}

TEST(ClassObjects, TheFirstOneInstallsTheFieldEditorsForTheSets) {
    ScopedEditorHooks hooks;
    editorHooks().EndOfMessage = nullptr;
    void* pv = nullptr;
    ASSERT_EQ(serverGetClassObject(&CLSID_clsProtocolSend, &IID_IClassFactory, &pv), S_OK);
    static_cast<IClassFactory*>(pv)->Release();
    EXPECT_TRUE(static_cast<bool>(editorHooks().EndOfMessage));
}

TEST(ClassObjects, AHookTheHostSetBeforeTheFirstClassObjectStays) {
    ScopedEditorHooks hooks;
    int32_t hostCalls = 0;
    editorHooks().Field = nullptr;
    editorHooks().EndOfMessage = [&](std::shared_ptr<clsProtocolCSVar>, int32_t&) {
        ++hostCalls;
        return false;
    };
    for (const GUID* clsid : {&CLSID_clsProtocolSend, &CLSID_clsProtocolscan, &CLSID_clsGate}) {
        void* pv = nullptr;
        ASSERT_EQ(serverGetClassObject(clsid, &IID_IClassFactory, &pv), S_OK);
        static_cast<IClassFactory*>(pv)->Release();
    }
    // The empty hook was filled; the host's own one is still the one that runs.
    EXPECT_TRUE(static_cast<bool>(editorHooks().Field));
    int32_t type = 1;
    EXPECT_FALSE(runEndOfMessageEditor(std::make_shared<clsProtocolCSVar>(), type));
    EXPECT_EQ(hostCalls, 1);
}

TEST(ClassObjects, TheFirstOneInstallsTheMessageEditorsForTheSets) {
    ScopedMessageEditorHooks hooks;
    messageEditorHooks() = MessageEditorHooks{};
    void* pv = nullptr;
    ASSERT_EQ(serverGetClassObject(&CLSID_clsProtocolSend, &IID_IClassFactory, &pv), S_OK);
    static_cast<IClassFactory*>(pv)->Release();
    EXPECT_TRUE(static_cast<bool>(messageEditorHooks().SendAdvanced));
}

TEST(ClassObjects, ASendAdvancedEditorTheHostSetBeforehandStays) {
    ScopedMessageEditorHooks hooks;
    int32_t hostCalls = 0;
    messageEditorHooks().SendAdvanced = [&](OperandPtr, OperandPtr, int32_t& count, bool& confirmed) {
        ++hostCalls;
        count = 2;
        confirmed = true;
    };
    void* pv = nullptr;
    ASSERT_EQ(serverGetClassObject(&CLSID_clsProtocolSend, &IID_IClassFactory, &pv), S_OK);
    static_cast<IClassFactory*>(pv)->Release();
    int32_t count = 0;
    bool confirmed = false;
    runSendAdvancedEditor(std::make_shared<clsOperand>(), std::make_shared<clsOperand>(), count, confirmed);
    EXPECT_EQ(hostCalls, 1);
    EXPECT_EQ(count, 2);
    EXPECT_TRUE(confirmed);
}

}  // namespace
}  // namespace qx
