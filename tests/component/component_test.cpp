// The built component as a host meets it: loaded with dlopen, reached only
// through its exported entry points, class factories and handles.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "component/built_paths.h"
#include "component/com_abi.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/fb_instances_double.h"
#include "platform/host/host_context.h"
#include "serial/frm_protocol_config.h"
#include "support/scratch_files.h"

namespace qx {
namespace {

namespace fs = std::filesystem;

std::string appFolder() { return paths::sourceTree() + "/runtime/bin"; }

using test::readFile;
using test::writeFile;

// The component, loaded once for the whole program as a host loads it.
class Component {
public:
    Component() {
        // The component reads its application folder at the first call into it.
        setenv("QXFB_APP_FOLDER", appFolder().c_str(), 1);
        handle = dlopen(paths::builtComponent().c_str(), RTLD_NOW | RTLD_LOCAL);
        if (!handle) return;
        GetClassObject = reinterpret_cast<DllGetClassObjectFn>(dlsym(handle, "DllGetClassObject"));
        CanUnloadNow = reinterpret_cast<DllCanUnloadNowFn>(dlsym(handle, "DllCanUnloadNow"));
        RegisterServer = reinterpret_cast<DllRegisterServerFn>(dlsym(handle, "DllRegisterServer"));
        UnregisterServer = reinterpret_cast<DllUnregisterServerFn>(dlsym(handle, "DllUnregisterServer"));
        CLSIDFromProgID = reinterpret_cast<CLSIDFromProgIDFn>(dlsym(handle, "QxFBCom2_CLSIDFromProgID"));
        Context = reinterpret_cast<HostContextFn>(dlsym(handle, "QxFBCom2_HostContext"));
    }

    void* handle = nullptr;
    DllGetClassObjectFn GetClassObject = nullptr;
    DllCanUnloadNowFn CanUnloadNow = nullptr;
    DllRegisterServerFn RegisterServer = nullptr;
    DllUnregisterServerFn UnregisterServer = nullptr;
    CLSIDFromProgIDFn CLSIDFromProgID = nullptr;
    HostContextFn Context = nullptr;
};

Component& component() {
    static Component instance;
    return instance;
}

class ComponentTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(component().handle, nullptr) << dlerror();
        ASSERT_NE(component().GetClassObject, nullptr);
        c = &component();
    }
    void TearDown() override {
        // Every test releases what it made: the component must be unloadable again.
        EXPECT_EQ(c->CanUnloadNow(), S_OK);
    }

    IClassFactory* factoryOf(const GUID& clsid) {
        void* pv = nullptr;
        EXPECT_EQ(c->GetClassObject(&clsid, &IID_IClassFactory, &pv), S_OK);
        return static_cast<IClassFactory*>(pv);
    }

    // What a host does to make one object of a public class.
    template <class T>
    std::shared_ptr<T> create(const GUID& clsid) {
        IClassFactory* factory = factoryOf(clsid);
        if (!factory) return nullptr;
        void* pv = nullptr;
        HRESULT hr = factory->CreateInstance(nullptr, interfaceIdOf<T>(), &pv);
        factory->Release();
        if (hr != S_OK || !pv) return nullptr;
        auto* ref = static_cast<IObjectRef<T>*>(pv);
        std::shared_ptr<T> object = ref->Object();
        ref->Release();
        return object;
    }

    Component* c = nullptr;
};

TEST_F(ComponentTest, ExportsTheEntryPointsWithCLinkage) {
    EXPECT_NE(c->CanUnloadNow, nullptr);
    EXPECT_NE(c->RegisterServer, nullptr);
    EXPECT_NE(c->UnregisterServer, nullptr);
    EXPECT_NE(c->CLSIDFromProgID, nullptr);
    EXPECT_NE(c->Context, nullptr);
    // The core inside stays hidden: no C++ symbol of the library leaks out.
    EXPECT_EQ(dlsym(c->handle, "_ZN2qx15liveObjectCountEv"), nullptr);
    EXPECT_EQ(dlsym(c->handle, "_ZN2qx4hostEv"), nullptr);
}

TEST_F(ComponentTest, GateMadeThroughItsClassFactoryHasGateID170000) {
    auto gate = create<itfFBGate>(CLSID_clsGate);
    ASSERT_NE(gate, nullptr);
    EXPECT_EQ(gate->itfFBGate_GateID(), 170000);
}

TEST_F(ComponentTest, ComponentContextTakesItsAppFolderFromTheEnvironment) {
    HostContext* context = c->Context();
    ASSERT_NE(context, nullptr);
    const std::string folder = appFolder();
    EXPECT_EQ(context->AppFolder, std::wstring(folder.begin(), folder.end()));
    // The component has a context of its own, not the one of this program.
    EXPECT_NE(context, &host());
}

TEST_F(ComponentTest, GateWalksToEveryOperationOfBothFamilies) {
    const std::map<int32_t, std::vector<std::pair<int32_t, std::wstring>>> expected{
        {170100,
         {{170101, L"CONFIG"},
          {170102, L"SCAN"},
          {170103, L"SEND"},
          {170104, L"COPY BUFFER"},
          {170105, L"BUFFER RST"}}},
        {170200, {{170201, L"CONFIG"}, {170202, L"SCAN"}, {170203, L"SEND TCP"}}},
    };
    auto gate = create<itfFBGate>(CLSID_clsGate);
    ASSERT_NE(gate, nullptr);
    auto fathers = gate->itfFBGate_GetFathersCollection();
    ASSERT_NE(fathers, nullptr);
    ASSERT_EQ(fathers->Count(), 2);
    EXPECT_EQ(fathers->KeyAt(1), L"170100");
    EXPECT_EQ(fathers->KeyAt(2), L"170200");
    for (const auto& [fatherID, methods] : expected) {
        FatherPtr father = fathers->Item(std::to_wstring(fatherID));
        EXPECT_EQ(father->itfFBFather_FatherID(), fatherID);
        auto collection = father->itfFBFather_GetFBmethodsCollection();
        ASSERT_NE(collection, nullptr);
        ASSERT_EQ(collection->Count(), static_cast<int32_t>(methods.size()));
        for (size_t i = 0; i < methods.size(); ++i) {
            const auto& [methodID, title] = methods[i];
            const int32_t index = static_cast<int32_t>(i + 1);
            EXPECT_EQ(collection->KeyAt(index), std::to_wstring(methodID));
            EXPECT_EQ(collection->Item(index)->itfFBMethod_MethodID(), methodID);
            EXPECT_EQ(collection->Item(index)->itfFBMethod_Title(), title);
            MethodPtr method = father->itfFBFather_GetFBMethodObject(methodID);
            ASSERT_NE(method, nullptr) << methodID;
            EXPECT_EQ(method->itfFBMethod_MethodID(), methodID);
            EXPECT_EQ(method->itfFBMethod_Title(), title);
            EXPECT_FALSE(method->itfFBMethod_Description().empty());
        }
    }
    EXPECT_EQ(gate->itfFBGate_GetFatherObject(170200)->itfFBFather_GetFBMethodObject(170104), nullptr);
}

TEST_F(ComponentTest, FamiliesReadTheirVersionsAndRuntimeFilesFromTheAppFolder) {
    auto gate = create<itfFBGate>(CLSID_clsGate);
    ASSERT_NE(gate, nullptr);
    const fs::path runtime = fs::path(paths::sourceTree()) / "runtime" / "FB_Lib" / "RT";
    for (int32_t fatherID : {170100, 170200}) {
        FatherPtr father = gate->itfFBGate_GetFatherObject(fatherID);
        ASSERT_NE(father, nullptr);
        int32_t version = father->itfFBFather_CurrentHexFileVersion();
        EXPECT_GT(version, 0);
        auto versions = father->itfFBFather_HexFileVersionsList();
        ASSERT_FALSE(versions.empty());
        FBHexFileDetails details = father->itfFBFather_GetHexFileDetails(version);
        const std::string stem = std::to_string(fatherID) + "V" + std::to_string(version);
        const std::string fbs = readFile(runtime / (stem + ".FBs"));
        const std::string jmp = readFile(runtime / (stem + ".Jmp"));
        EXPECT_EQ(details.FBsSize, static_cast<int32_t>(fbs.size()));
        EXPECT_EQ(std::string(details.FBs.begin(), details.FBs.end()), fbs);
        EXPECT_EQ(std::string(details.Jmp.begin(), details.Jmp.end()), jmp);
    }
}

TEST_F(ComponentTest, CanUnloadNowIsFalseWhileAnyObjectLives) {
    EXPECT_EQ(c->CanUnloadNow(), S_OK);
    auto gate = create<itfFBGate>(CLSID_clsGate);
    ASSERT_NE(gate, nullptr);
    EXPECT_EQ(c->CanUnloadNow(), S_FALSE);
    FatherPtr father = gate->itfFBGate_GetFatherObject(170100);
    MethodPtr method = father->itfFBFather_GetFBMethodObject(170103);
    gate.reset();
    father.reset();
    // One operation alone still holds the component.
    EXPECT_EQ(c->CanUnloadNow(), S_FALSE);
    method.reset();
    EXPECT_EQ(c->CanUnloadNow(), S_OK);
}

TEST_F(ComponentTest, CanUnloadNowIsFalseWhileAFactoryOrHandleOrLockLives) {
    IClassFactory* factory = factoryOf(CLSID_clsGate);
    ASSERT_NE(factory, nullptr);
    EXPECT_EQ(c->CanUnloadNow(), S_FALSE);
    void* pv = nullptr;
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, &pv), S_OK);
    EXPECT_EQ(factory->LockServer(1), S_OK);
    factory->Release();
    EXPECT_EQ(c->CanUnloadNow(), S_FALSE);
    static_cast<IUnknown*>(pv)->Release();
    // The lock alone keeps the component.
    EXPECT_EQ(c->CanUnloadNow(), S_FALSE);
    factory = factoryOf(CLSID_clsGate);
    EXPECT_EQ(factory->LockServer(0), S_OK);
    factory->Release();
    EXPECT_EQ(c->CanUnloadNow(), S_OK);
}

TEST_F(ComponentTest, EveryPublicClassIsMadeByItsCLSIDBehindItsInterface) {
    auto gate = create<itfFBGate>(CLSID_clsGate);
    ASSERT_NE(gate, nullptr);
    auto serial = create<itfFBFather>(CLSID_clsProtocolFather);
    auto tcpip = create<itfFBFather>(CLSID_clsEthProtocolFather);
    ASSERT_NE(serial, nullptr);
    ASSERT_NE(tcpip, nullptr);
    serial->itfFBFather_InitProperties(*gate);
    tcpip->itfFBFather_InitProperties(*gate);
    EXPECT_EQ(serial->itfFBFather_FatherID(), 170100);
    EXPECT_EQ(tcpip->itfFBFather_FatherID(), 170200);

    const std::vector<std::tuple<GUID, itfFBFather*, int32_t>> methods{
        {CLSID_clsProtocolConfig, serial.get(), 170101},      {CLSID_clsProtocolscan, serial.get(), 170102},
        {CLSID_clsProtocolSend, serial.get(), 170103},        {CLSID_clsProtocolCopyToBuffer, serial.get(), 170104},
        {CLSID_clsProtocolResetBuffer, serial.get(), 170105}, {CLSID_clsEthProtocolConfig, tcpip.get(), 170201},
        {CLSID_clsEthProtocolScan, tcpip.get(), 170202},      {CLSID_clsEthProtocolSend, tcpip.get(), 170203},
    };
    for (const auto& [clsid, father, methodID] : methods) {
        auto method = create<itfFBMethod>(clsid);
        ASSERT_NE(method, nullptr) << methodID;
        method->itfFBMethod_InitProperties(*father);
        EXPECT_EQ(method->itfFBMethod_MethodID(), methodID);
    }
}

TEST_F(ComponentTest, AHandleAnswersOnlyTheInterfaceOfItsClass) {
    IClassFactory* factory = factoryOf(CLSID_clsProtocolConfig);
    ASSERT_NE(factory, nullptr);
    void* pv = reinterpret_cast<void*>(1);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_itfFBGate, &pv), E_NOINTERFACE);
    EXPECT_EQ(pv, nullptr);
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_IUnknown, &pv), S_OK);
    auto* handle = static_cast<IUnknown*>(pv);
    EXPECT_EQ(objectFromHandle<itfFBGate>(handle), nullptr);
    EXPECT_EQ(objectFromHandle<itfFBFather>(handle), nullptr);
    auto method = objectFromHandle<itfFBMethod>(handle);
    EXPECT_NE(method, nullptr);
    void* same = nullptr;
    ASSERT_EQ(handle->QueryInterface(IID_IUnknown, &same), S_OK);
    EXPECT_EQ(same, pv);
    EXPECT_EQ(handle->Release(), 1u);
    EXPECT_EQ(handle->Release(), 0u);
    factory->Release();
    method.reset();
}

TEST_F(ComponentTest, CreateInstanceRefusesAggregationAndANullOut) {
    IClassFactory* factory = factoryOf(CLSID_clsGate);
    ASSERT_NE(factory, nullptr);
    void* pv = nullptr;
    EXPECT_EQ(factory->CreateInstance(factory, IID_itfFBGate, &pv), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(pv, nullptr);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_itfFBGate, nullptr), E_POINTER);
    factory->Release();
}

TEST_F(ComponentTest, UnknownCLSIDGivesClassNotAvailable) {
    const GUID unknown{0x01234567, 0x89ab, 0xcdef, {1, 2, 3, 4, 5, 6, 7, 8}};
    void* pv = reinterpret_cast<void*>(1);
    EXPECT_EQ(c->GetClassObject(&unknown, &IID_IClassFactory, &pv), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(pv, nullptr);
}

TEST_F(ComponentTest, GetClassObjectAnswersOnlyTheFactoryInterfaces) {
    void* pv = reinterpret_cast<void*>(1);
    EXPECT_EQ(c->GetClassObject(&CLSID_clsGate, &IID_itfFBGate, &pv), E_NOINTERFACE);
    EXPECT_EQ(pv, nullptr);
    EXPECT_EQ(c->GetClassObject(&CLSID_clsGate, &IID_IClassFactory, nullptr), E_POINTER);
    EXPECT_EQ(c->GetClassObject(nullptr, &IID_IClassFactory, &pv), E_INVALIDARG);
    ASSERT_EQ(c->GetClassObject(&CLSID_clsGate, &IID_IUnknown, &pv), S_OK);
    static_cast<IUnknown*>(pv)->Release();
}

TEST_F(ComponentTest, ProgIDGivesTheClassIdentifierInAnyCase) {
    GUID clsid{};
    ASSERT_EQ(c->CLSIDFromProgID(L"QxFBCom2.clsGate", &clsid), S_OK);
    EXPECT_EQ(clsid, CLSID_clsGate);
    ASSERT_EQ(c->CLSIDFromProgID(L"qxfbcom2.CLSPROTOCOLSCAN", &clsid), S_OK);
    EXPECT_EQ(clsid, CLSID_clsProtocolscan);
    for (const auto& cls : PublicClasses) {
        std::wstring progId = std::wstring(L"QxFBCom2.") + cls.Name;
        ASSERT_EQ(c->CLSIDFromProgID(progId.c_str(), &clsid), S_OK);
        EXPECT_EQ(clsid, cls.CLSID);
    }
    // The gate found by name is the same class as the one found by identifier.
    ASSERT_EQ(c->CLSIDFromProgID(L"QxFBCom2.clsGate", &clsid), S_OK);
    auto gate = create<itfFBGate>(clsid);
    ASSERT_NE(gate, nullptr);
    EXPECT_EQ(gate->itfFBGate_GateID(), 170000);
}

TEST_F(ComponentTest, UnknownProgIDGivesClassStringError) {
    GUID clsid{};
    EXPECT_EQ(c->CLSIDFromProgID(L"QxFBCom2.clsNothing", &clsid), CO_E_CLASSSTRING);
    EXPECT_EQ(c->CLSIDFromProgID(L"clsGate", &clsid), CO_E_CLASSSTRING);
    EXPECT_EQ(c->CLSIDFromProgID(L"", &clsid), CO_E_CLASSSTRING);
    EXPECT_EQ(c->CLSIDFromProgID(nullptr, &clsid), E_POINTER);
    EXPECT_EQ(c->CLSIDFromProgID(L"QxFBCom2.clsGate", nullptr), E_POINTER);
}

TEST_F(ComponentTest, MissingRuntimeFilesReachTheHostsCallAsTypeMismatch) {
    HostContext* context = c->Context();
    ASSERT_NE(context, nullptr);
    const std::wstring saved = context->AppFolder;
    const size_t reportsBefore = context->Reports.size();
    context->AppFolder = L"/nonexistent/qxfb/bin";
    auto gate = create<itfFBGate>(CLSID_clsGate);
    ASSERT_NE(gate, nullptr);
    int32_t number = 0;
    try {
        gate->itfFBGate_GetFathersCollection();
    } catch (const RuntimeError& e) {
        number = e.Number();
    }
    context->AppFolder = saved;
    EXPECT_EQ(number, err::TypeMismatch);
    ASSERT_GT(context->Reports.size(), reportsBefore);
    EXPECT_EQ(context->Reports[reportsBefore].Name, L"KeyNotFount");
    context->Reports.resize(reportsBefore);
}

TEST_F(ComponentTest, NewSerialConfigPlayedInTheComponentsContextStoresCom2) {
    HostContext* context = c->Context();
    ASSERT_NE(context, nullptr);
    ScriptedModalDriver* person = context->Script();
    ASSERT_NE(person, nullptr);
    person->QueuePick(OperandChoice{1, 1, 100, 0, L"busy"});
    person->QueuePick(OperandChoice{1, 3, 200, 0, L"status"});
    std::wstring shownPort;
    person->QueueDialog([&](Form& form) {
        auto& dialog = dynamic_cast<frmProtocolConfig&>(form);
        dialog.cbComport.UserSelect(1);
        shownPort = dialog.cbComport.Text();
        dialog.cmdOk.UserClick();
    });

    auto instances = std::make_shared<FBInstancesDouble>();
    auto gate = create<itfFBGate>(CLSID_clsGate);
    ASSERT_NE(gate, nullptr);
    MethodPtr config = gate->itfFBGate_GetFatherObject(170100)->itfFBFather_GetFBMethodObject(170101);
    ASSERT_NE(config, nullptr);
    config->itfFBMethod_Init(instances);
    config->itfFBMethod_CreateDummyOperands();
    config->itfFBMethod_BuildOperands();
    config->itfFBMethod_EditOperands();

    EXPECT_EQ(shownPort, L"COM2");
    EXPECT_FALSE(config->itfFBMethod_IsCanceled());
    EXPECT_FALSE(config->itfFBMethod_IsNew());
    EXPECT_EQ(config->itfFBMethod_BinaryOperands(), (Bytes{0x02, 0x00}));
    EXPECT_EQ(config->itfFBMethod_FatherInstanceNum(), 1);
    EXPECT_EQ(config->itfFBMethod_FatherInstanceName(), L"Config1");
    auto out = config->itfFBMethod_OutOperands();
    ASSERT_EQ(out->Count(), 2);
    EXPECT_EQ(out->Item(1)->OperandAddress(), 100);
    EXPECT_EQ(out->Item(2)->OperandType(), 3);
    EXPECT_EQ(out->Item(2)->OperandAddress(), 200);
    EXPECT_EQ(person->PendingPicks(), 0u);
    EXPECT_EQ(person->PendingDialogs(), 0u);
    EXPECT_EQ(instances->AttachedMethods, (std::vector<int32_t>{170101}));
}

// A registry file of a machine that already holds entries of other components.
const char* foreignRegistry =
    "; registry of this user\n"
    "[CLSID\\{00000000-1111-2222-3333-444444444444}]\n"
    "ProgID=Other.Thing\n"
    "InprocServer32=/opt/other/libother.so\n"
    "\n"
    "[Other.Thing]\n"
    "CLSID={00000000-1111-2222-3333-444444444444}\n";

class RegistrationTest : public ComponentTest {
protected:
    void SetUp() override {
        ComponentTest::SetUp();
        file = folder / "registry.ini";
        setenv("QXFB_REGISTRY", file.c_str(), 1);
    }
    void TearDown() override {
        unsetenv("QXFB_REGISTRY");
        ComponentTest::TearDown();
    }
    test::ScratchFolder scratch{"qxfb_component_registry"};
    const fs::path folder = scratch.path();
    fs::path file;
};

TEST_F(RegistrationTest, RegisterWritesEveryClassWithProgIDAndLibraryPath) {
    ASSERT_EQ(c->RegisterServer(), S_OK);
    const std::string text = readFile(file);
    const std::string library = fs::canonical(paths::builtComponent()).string();
    EXPECT_NE(text.find("[CLSID\\{12D70566-D97F-4E2E-A8C9-65E0DBDC60E6}]\n"
                        "Class=clsGate\n"
                        "ProgID=QxFBCom2.clsGate\n"
                        "InprocServer32=" +
                        library +
                        "\n"
                        "ThreadingModel=Apartment\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("[QxFBCom2.clsGate]\nCLSID={12D70566-D97F-4E2E-A8C9-65E0DBDC60E6}\n"), std::string::npos);
    for (const auto& cls : PublicClasses) {
        std::string name(cls.Name, cls.Name + std::wcslen(cls.Name));
        EXPECT_NE(text.find("[QxFBCom2." + name + "]\n"), std::string::npos) << name;
        EXPECT_NE(text.find("ProgID=QxFBCom2." + name + "\n"), std::string::npos) << name;
    }
}

TEST_F(RegistrationTest, RegisterKeepsForeignEntriesAndUnregisterRestoresTheFile) {
    writeFile(file, foreignRegistry);
    ASSERT_EQ(c->RegisterServer(), S_OK);
    std::string registered = readFile(file);
    EXPECT_EQ(registered.substr(0, std::string(foreignRegistry).size()), foreignRegistry);
    EXPECT_NE(registered.find("[QxFBCom2.clsEthProtocolScan]"), std::string::npos);
    // Registering again changes nothing.
    ASSERT_EQ(c->RegisterServer(), S_OK);
    EXPECT_EQ(readFile(file), registered);
    ASSERT_EQ(c->UnregisterServer(), S_OK);
    EXPECT_EQ(readFile(file), foreignRegistry);
}

TEST_F(RegistrationTest, UnregisterKeepsAForeignKeyInsideAClassSection) {
    ASSERT_EQ(c->RegisterServer(), S_OK);
    std::string text = readFile(file);
    const std::string header = "[QxFBCom2.clsGate]\n";
    text.insert(text.find(header) + header.size(), "Comment=added by an administrator\n");
    writeFile(file, text);
    ASSERT_EQ(c->UnregisterServer(), S_OK);
    EXPECT_EQ(readFile(file), "[QxFBCom2.clsGate]\nComment=added by an administrator\n");
}

TEST_F(RegistrationTest, RegisterMakesTheMissingFolder) {
    file = folder / "deeper" / "still" / "registry.ini";
    setenv("QXFB_REGISTRY", file.c_str(), 1);
    ASSERT_EQ(c->RegisterServer(), S_OK);
    EXPECT_TRUE(fs::exists(file));
}

TEST_F(RegistrationTest, UnregisterWithoutAFileSucceedsAndWritesNothing) {
    ASSERT_EQ(c->UnregisterServer(), S_OK);
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(RegistrationTest, AnUnwritableRegistryGivesSelfRegistrationError) {
    writeFile(folder / "plain_file", "x");
    file = folder / "plain_file" / "registry.ini";
    setenv("QXFB_REGISTRY", file.c_str(), 1);
    EXPECT_EQ(c->RegisterServer(), SELFREG_E_CLASS);
}

}  // namespace
}  // namespace qx
