// A host that unloads the component as soon as DllCanUnloadNow lets it. The
// component is reached through dlopen only: the core linked into this program
// counts its own objects, not the component's.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "component/built_paths.h"
#include "component/com_abi.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

namespace fs = std::filesystem;

// A private copy of the built component: dlclose unloads it even when
// another test of this program keeps the built one open.
class ComponentCopy {
public:
    ComponentCopy() {
        folder_ = fs::temp_directory_path() / ("qxfb_unload_" + std::to_string(getpid()));
        fs::create_directories(folder_);
        path_ = folder_ / "libQxFBCom2.so";
        fs::copy_file(paths::builtComponent(), path_, fs::copy_options::overwrite_existing);
    }
    ~ComponentCopy() {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }
    ComponentCopy(const ComponentCopy&) = delete;
    ComponentCopy& operator=(const ComponentCopy&) = delete;
    std::string path() const { return path_.string(); }

private:
    fs::path folder_, path_;
};

// One object of one kind that the component hands out, held as a host holds it.
using Held = std::shared_ptr<const void>;

// A COM pointer held until the host lets it go.
Held holdCom(IUnknown* object) {
    return Held(object, [](const void* p) { static_cast<IUnknown*>(const_cast<void*>(p))->Release(); });
}

class Host {
public:
    explicit Host(std::string path) : path_(std::move(path)) {}
    ~Host() {
        if (library_) dlclose(library_);
    }

    void load() {
        library_ = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library_, nullptr) << dlerror();
        getClassObject_ = reinterpret_cast<DllGetClassObjectFn>(dlsym(library_, "DllGetClassObject"));
        canUnloadNow_ = reinterpret_cast<DllCanUnloadNowFn>(dlsym(library_, "DllCanUnloadNow"));
        auto context = reinterpret_cast<HostContextFn>(dlsym(library_, "QxFBCom2_HostContext"));
        ASSERT_NE(getClassObject_, nullptr);
        ASSERT_NE(canUnloadNow_, nullptr);
        ASSERT_NE(context, nullptr);
        const std::string appFolder = paths::sourceTree() + "/runtime/bin";
        context()->AppFolder = std::wstring(appFolder.begin(), appFolder.end());
    }
    bool loaded() const { return library_ != nullptr; }
    HRESULT canUnloadNow() const { return canUnloadNow_(); }

    // What a host does when DllCanUnloadNow says yes.
    void unload() {
        ASSERT_EQ(dlclose(library_), 0) << dlerror();
        library_ = nullptr;
        // Nothing else holds the copy open, so its code is really gone now.
        void* still = dlopen(path_.c_str(), RTLD_NOW | RTLD_NOLOAD);
        EXPECT_EQ(still, nullptr);
        if (still) dlclose(still);
    }

    IClassFactory* factory(const GUID& clsid) {
        void* pv = nullptr;
        EXPECT_EQ(getClassObject_(&clsid, &IID_IClassFactory, &pv), S_OK);
        return static_cast<IClassFactory*>(pv);
    }
    IUnknown* handle(const GUID& clsid) {
        IClassFactory* f = factory(clsid);
        if (!f) return nullptr;
        void* pv = nullptr;
        EXPECT_EQ(f->CreateInstance(nullptr, IID_IUnknown, &pv), S_OK);
        f->Release();
        return static_cast<IUnknown*>(pv);
    }

private:
    std::string path_;
    void* library_ = nullptr;
    DllGetClassObjectFn getClassObject_ = nullptr;
    DllCanUnloadNowFn canUnloadNow_ = nullptr;
};

// One object of every kind a host can get, in the order it gets them.
std::vector<std::pair<std::string, Held>> holdOneOfEveryKind(Host& host) {
    std::vector<std::pair<std::string, Held>> held;
    held.emplace_back("class factory", holdCom(host.factory(CLSID_clsGate)));
    IUnknown* handle = host.handle(CLSID_clsGate);
    held.emplace_back("handle", holdCom(handle));
    std::shared_ptr<itfFBGate> gate = objectFromHandle<itfFBGate>(handle);
    held.emplace_back("gate", gate);
    FatherCollectionPtr fathers = gate->itfFBGate_GetFathersCollection();
    held.emplace_back("families collection", fathers);
    FatherPtr father = gate->itfFBGate_GetFatherObject(170200);
    held.emplace_back("family", father);
    IUnknown* familyHandle = host.handle(CLSID_clsProtocolFather);
    held.emplace_back("family made by its factory", objectFromHandle<itfFBFather>(familyHandle));
    if (familyHandle) familyHandle->Release();
    held.emplace_back("family menu icon", father->itfFBFather_MenuIcon());
    held.emplace_back("operations collection", father->itfFBFather_GetFBmethodsCollection());
    MethodPtr method = father->itfFBFather_GetFBMethodObject(170202);
    held.emplace_back("operation", method);
    method->itfFBMethod_CreateDummyOperands();
    method->itfFBMethod_BuildOperands();
    held.emplace_back("in operands", method->itfFBMethod_InOperands());
    OperandCollectionPtr out = method->itfFBMethod_OutOperands();
    held.emplace_back("out operands", out);
    held.emplace_back("visible in operands", method->itfFBMethod_VisbleInOperands());
    held.emplace_back("visible out operands", method->itfFBMethod_VisbleOutOperands());
    held.emplace_back("operands for find only", method->itfFBMethod_OperandsForFindOnly());
    held.emplace_back("operand", out && out->Count() > 0 ? out->Item(1) : nullptr);
    // The library has no ladder bitmaps: LadderImage comes back empty and the
    // menu icon stands for every picture.
    held.emplace_back("operation menu icon", method->itfFBMethod_MenuIcon());
    return held;
}

std::vector<std::string> kindNames() {
    return {"class factory",
            "handle",
            "gate",
            "families collection",
            "family",
            "family made by its factory",
            "family menu icon",
            "operations collection",
            "operation",
            "in operands",
            "out operands",
            "visible in operands",
            "visible out operands",
            "operands for find only",
            "operand",
            "operation menu icon"};
}

ComponentCopy& componentCopy() {
    static ComponentCopy copy;
    return copy;
}

// The parameter is the kind that the host lets go last.
class Unload : public ::testing::TestWithParam<std::string> {};

TEST_P(Unload, EachKindAloneKeepsTheComponentAndTheHostUnloadsOnlyAfterTheLast) {
    Host host(componentCopy().path());
    for (int round = 1; round <= 2; ++round) {
        SCOPED_TRACE("load " + std::to_string(round));
        host.load();
        ASSERT_TRUE(host.loaded());
        ASSERT_EQ(host.canUnloadNow(), S_OK);

        auto held = holdOneOfEveryKind(host);
        ASSERT_EQ(held.size(), kindNames().size());
        for (size_t i = 0; i < held.size(); ++i) {
            EXPECT_EQ(held[i].first, kindNames()[i]);
            ASSERT_NE(held[i].second, nullptr) << held[i].first;
        }
        EXPECT_EQ(host.canUnloadNow(), S_FALSE);

        // The chosen kind goes last; the others one at a time before it.
        std::stable_partition(held.begin(), held.end(), [&](const auto& h) { return h.first != GetParam(); });
        for (auto& [kind, object] : held) {
            object.reset();
            const bool last = &object == &held.back().second;
            const HRESULT answer = host.canUnloadNow();
            EXPECT_EQ(answer, last ? S_OK : S_FALSE)
                << "after releasing " << kind << ", " << GetParam() << " still held";
            // The host takes the answer at its word, as soon as it comes.
            if (answer == S_OK) host.unload();
        }
        ASSERT_FALSE(host.loaded());
    }
}

INSTANTIATE_TEST_SUITE_P(HeldLast, Unload, ::testing::ValuesIn(kindNames()),
                         [](const ::testing::TestParamInfo<std::string>& info) {
                             return test::testNameOf(info.param);
                         });

}  // namespace
}  // namespace qx
