// Every public member of the gate, both families and all eight operations,
// called with null or empty arguments and out of the order a host keeps:
// each call either succeeds or raises a RuntimeError, and never crashes. A
// call the host makes on nothing raises 91, as the host's own runtime does.
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "component/gate.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/fb_instances_double.h"
#include "platform/host/host_context.h"
#include "serial/frm_protocol_config.h"
#include "serial/protocol_config.h"
#include "serial/protocol_copy_to_buffer.h"
#include "serial/protocol_father.h"
#include "serial/protocol_reset_buffer.h"
#include "serial/protocol_scan.h"
#include "serial/protocol_send.h"
#include "support/test_helpers.h"
#include "tcpip/eth_protocol_config.h"
#include "tcpip/eth_protocol_father.h"
#include "tcpip/eth_protocol_scan.h"
#include "tcpip/eth_protocol_send.h"

namespace qx {
namespace {

using test::kNoRuntimeError;
using test::runtimeErrorOf;

constexpr int32_t kObjectNotSet = 91;
const wchar_t* const kMissingAppFolder = L"/nonexistent/qxfb/bin";

OperandCollectionPtr collectionOf(std::vector<OperandPtr> operands) {
    auto collection = newCollection<OperandPtr>();
    int32_t key = 0;
    for (auto& operand : operands) collection->Add(operand, std::to_wstring(++key));
    return collection;
}

// Operands as a stored project gives them back: linked, not new.
OperandCollectionPtr linkedOperands() {
    std::vector<OperandPtr> operands;
    for (int32_t i = 0; i < 5; ++i) {
        auto operand = newOperand();
        test::linkOperand(*operand, i == 0 ? 1 : 3, 100 + i);
        operands.push_back(operand);
    }
    return collectionOf(operands);
}

// ---------------------------------------------------------------- operations

struct OperationClass {
    const char* Name;
    int32_t FatherID;
    std::function<MethodPtr()> Make;
};

template <class T>
OperationClass operation(const char* name, int32_t fatherID) {
    return {name, fatherID, [] { return std::make_shared<T>(); }};
}

const std::vector<OperationClass>& operationClasses() {
    static const std::vector<OperationClass> classes{
        operation<clsProtocolConfig>("clsProtocolConfig", 170100),
        operation<clsProtocolSend>("clsProtocolSend", 170100),
        operation<clsProtocolscan>("clsProtocolscan", 170100),
        operation<clsProtocolResetBuffer>("clsProtocolResetBuffer", 170100),
        operation<clsProtocolCopyToBuffer>("clsProtocolCopyToBuffer", 170100),
        operation<clsEthProtocolConfig>("clsEthProtocolConfig", 170200),
        operation<clsEthProtocolSend>("clsEthProtocolSend", 170200),
        operation<clsEthProtocolScan>("clsEthProtocolScan", 170200),
    };
    return classes;
}

// One operation with what a host gives it, in a context of its own.
struct OperationBench {
    explicit OperationBench(const OperationClass& cls)
        : gate(std::make_shared<clsGate>()),
          father(gate->itfFBGate_GetFatherObject(cls.FatherID)),
          instances(std::make_shared<FBInstancesDouble>()),
          method(cls.Make()) {}

    ScopedHostContext context;
    std::shared_ptr<clsGate> gate;
    FatherPtr father;
    std::shared_ptr<FBInstancesDouble> instances;
    MethodPtr method;
};

// A named step on a bench: a state to bring it to, or a call to make on it.
template <class Bench>
struct Step {
    std::string Name;
    std::function<void(Bench&)> Run;
};

using OperationStep = Step<OperationBench>;

// Where the operation stands when the call comes.
const std::vector<OperationStep>& operationStates() {
    static const std::vector<OperationStep> states{
        {"constructed only", [](OperationBench&) {}},
        {"properties only", [](OperationBench& b) { b.method->itfFBMethod_InitProperties(*b.father); }},
        {"properties from a family never initialised",
         [](OperationBench& b) {
             clsProtocolFather bare;
             b.method->itfFBMethod_InitProperties(bare);
         }},
        {"Init before InitProperties", [](OperationBench& b) { b.method->itfFBMethod_Init(b.instances); }},
        {"initialised",
         [](OperationBench& b) {
             b.method->itfFBMethod_InitProperties(*b.father);
             b.method->itfFBMethod_Init(b.instances);
         }},
        {"Init given nothing",
         [](OperationBench& b) {
             b.method->itfFBMethod_InitProperties(*b.father);
             EXPECT_EQ(runtimeErrorOf([&] { b.method->itfFBMethod_Init(nullptr); }), kObjectNotSet);
         }},
        {"dummy operands without Init",
         [](OperationBench& b) {
             b.method->itfFBMethod_InitProperties(*b.father);
             b.method->itfFBMethod_CreateDummyOperands();
         }},
        {"the whole new order",
         [](OperationBench& b) {
             b.method->itfFBMethod_InitProperties(*b.father);
             b.method->itfFBMethod_Init(b.instances);
             b.method->itfFBMethod_CreateDummyOperands();
             b.method->itfFBMethod_BuildOperands();
         }},
        {"blocks let before InitProperties, no Init",
         [](OperationBench& b) {
             b.method->itfFBMethod_OutOperands(linkedOperands());
             b.method->itfFBMethod_InOperands(newCollection<OperandPtr>());
             b.method->itfFBMethod_BinaryOperands(Bytes{2, 0});
             b.method->itfFBMethod_FatherInstanceNum(1);
             b.method->itfFBMethod_InitProperties(*b.father);
         }},
        {"operand collections let to nothing",
         [](OperationBench& b) {
             b.method->itfFBMethod_InitProperties(*b.father);
             b.method->itfFBMethod_Init(b.instances);
             b.method->itfFBMethod_CreateDummyOperands();
             b.method->itfFBMethod_InOperands(nullptr);
             b.method->itfFBMethod_OutOperands(nullptr);
         }},
        {"empty operand collections",
         [](OperationBench& b) {
             b.method->itfFBMethod_InitProperties(*b.father);
             b.method->itfFBMethod_Init(b.instances);
             b.method->itfFBMethod_InOperands(newCollection<OperandPtr>());
             b.method->itfFBMethod_OutOperands(newCollection<OperandPtr>());
         }},
        {"collections of nothing",
         [](OperationBench& b) {
             b.method->itfFBMethod_InitProperties(*b.father);
             b.method->itfFBMethod_Init(b.instances);
             b.method->itfFBMethod_BinaryOperands(Bytes{2, 0});
             b.method->itfFBMethod_InOperands(collectionOf({nullptr}));
             b.method->itfFBMethod_OutOperands(collectionOf({nullptr, nullptr, nullptr, nullptr, nullptr}));
         }},
    };
    return states;
}

// A person who presses Help in whatever dialog comes up.
void queueHelp(OperationBench& b) {
    b.context->Script()->QueueDialog([](Form& form) {
        if (auto* config = dynamic_cast<frmProtocolConfig*>(&form)) config->cmdHelp.UserClick();
    });
}

// A person who names the instance and presses OK; the host's own picker of a
// Config picks the first.
void queueNameAndOk(OperationBench& b) {
    b.context->Script()->QueueDialog([](Form& form) {
        if (auto* config = dynamic_cast<frmProtocolConfig*>(&form)) {
            config->txtInstanceName.UserType(L"Line");
            config->cmdOk.UserClick();
        }
    });
    b.instances->SelectScript = [](itfFBMethod& m) { m.itfFBMethod_FatherInstanceNum(1); };
}

VariantArray params(std::initializer_list<Variant> values) { return VariantArray(values); }

void execute(OperationBench& b, VariantArray values) { b.method->itfFBMethod_Execute(values); }

// Every public member of itfFBMethod, with null, empty and odd arguments.
const std::vector<OperationStep>& operationCalls() {
    static const std::vector<OperationStep> calls{
        {"Description", [](OperationBench& b) { b.method->itfFBMethod_Description(); }},
        {"Title", [](OperationBench& b) { b.method->itfFBMethod_Title(); }},
        {"MethodName", [](OperationBench& b) { b.method->itfFBMethod_MethodName(); }},
        {"MethodID", [](OperationBench& b) { b.method->itfFBMethod_MethodID(); }},
        {"IsCanceled", [](OperationBench& b) { b.method->itfFBMethod_IsCanceled(); }},
        {"IsCanceled let", [](OperationBench& b) { b.method->itfFBMethod_IsCanceled(true); }},
        {"IsNew", [](OperationBench& b) { b.method->itfFBMethod_IsNew(); }},
        {"InOperands", [](OperationBench& b) { b.method->itfFBMethod_InOperands(); }},
        {"InOperands let nothing", [](OperationBench& b) { b.method->itfFBMethod_InOperands(nullptr); }},
        {"InOperands let empty",
         [](OperationBench& b) { b.method->itfFBMethod_InOperands(newCollection<OperandPtr>()); }},
        {"OutOperands", [](OperationBench& b) { b.method->itfFBMethod_OutOperands(); }},
        {"OutOperands let nothing", [](OperationBench& b) { b.method->itfFBMethod_OutOperands(nullptr); }},
        {"OutOperands let empty",
         [](OperationBench& b) { b.method->itfFBMethod_OutOperands(newCollection<OperandPtr>()); }},
        {"VisbleInCout", [](OperationBench& b) { b.method->itfFBMethod_VisbleInCout(); }},
        {"VisbleOutCout", [](OperationBench& b) { b.method->itfFBMethod_VisbleOutCout(); }},
        {"VisbleInOperands", [](OperationBench& b) { b.method->itfFBMethod_VisbleInOperands(); }},
        {"VisbleOutOperands", [](OperationBench& b) { b.method->itfFBMethod_VisbleOutOperands(); }},
        {"OperandsForFindOnly", [](OperationBench& b) { b.method->itfFBMethod_OperandsForFindOnly(); }},
        {"LadderImage", [](OperationBench& b) { b.method->itfFBMethod_LadderImage(); }},
        {"LadderImageSelected", [](OperationBench& b) { b.method->itfFBMethod_LadderImageSelected(); }},
        {"MenuIcon", [](OperationBench& b) { b.method->itfFBMethod_MenuIcon(); }},
        {"IsEnableInEnableOut", [](OperationBench& b) { b.method->itfFBMethod_IsEnableInEnableOut(); }},
        {"IsConducting", [](OperationBench& b) { b.method->itfFBMethod_IsConducting(); }},
        {"IsConducting let", [](OperationBench& b) { b.method->itfFBMethod_IsConducting(true); }},
        {"BuildOperands", [](OperationBench& b) { b.method->itfFBMethod_BuildOperands(); }},
        {"CreateDummyOperands", [](OperationBench& b) { b.method->itfFBMethod_CreateDummyOperands(); }},
        {"EditOperands", [](OperationBench& b) { b.method->itfFBMethod_EditOperands(); }},
        {"EditOperands with Help",
         [](OperationBench& b) {
             queueHelp(b);
             b.method->itfFBMethod_EditOperands();
         }},
        {"EditOperands with a name and OK",
         [](OperationBench& b) {
             queueNameAndOk(b);
             b.method->itfFBMethod_EditOperands();
         }},
        {"AdditionalData", [](OperationBench& b) { b.method->itfFBMethod_AdditionalData(); }},
        {"AdditionalData let empty", [](OperationBench& b) { b.method->itfFBMethod_AdditionalData(Bytes{}); }},
        {"InstanceData", [](OperationBench& b) { b.method->itfFBMethod_InstanceData(); }},
        {"BinaryOperands", [](OperationBench& b) { b.method->itfFBMethod_BinaryOperands(); }},
        {"BinaryOperands let empty", [](OperationBench& b) { b.method->itfFBMethod_BinaryOperands(Bytes{}); }},
        {"BinaryOperands let one byte", [](OperationBench& b) { b.method->itfFBMethod_BinaryOperands(Bytes{0xFF}); }},
        {"FatherTitle", [](OperationBench& b) { b.method->itfFBMethod_FatherTitle(); }},
        {"HexFileVersion", [](OperationBench& b) { b.method->itfFBMethod_HexFileVersion(); }},
        {"HexFileVersion let zero", [](OperationBench& b) { b.method->itfFBMethod_HexFileVersion(0); }},
        {"FatherInstanceNum", [](OperationBench& b) { b.method->itfFBMethod_FatherInstanceNum(); }},
        {"FatherInstanceNum let unknown", [](OperationBench& b) { b.method->itfFBMethod_FatherInstanceNum(-1); }},
        {"FatherInstanceName", [](OperationBench& b) { b.method->itfFBMethod_FatherInstanceName(); }},
        {"FatherInstanceType", [](OperationBench& b) { b.method->itfFBMethod_FatherInstanceType(); }},
        {"Init nothing",
         [](OperationBench& b) {
             EXPECT_EQ(runtimeErrorOf([&] { b.method->itfFBMethod_Init(nullptr); }), kObjectNotSet);
         }},
        {"Init", [](OperationBench& b) { b.method->itfFBMethod_Init(b.instances); }},
        {"InitProperties", [](OperationBench& b) { b.method->itfFBMethod_InitProperties(*b.father); }},
        {"InitProperties with a missing app folder",
         [](OperationBench& b) {
             b.context->AppFolder = kMissingAppFolder;
             b.method->itfFBMethod_InitProperties(*b.father);
         }},
        {"Delete", [](OperationBench& b) { b.method->itfFBMethod_Delete(); }},
        {"FatherName", [](OperationBench& b) { b.method->itfFBMethod_FatherName(); }},
        {"FatherName let empty", [](OperationBench& b) { b.method->itfFBMethod_FatherName(L""); }},
        {"PrintFB", [](OperationBench& b) { b.method->itfFBMethod_PrintFB(Variant()); }},
        {"Execute nothing", [](OperationBench& b) { execute(b, {}); }},
        {"Execute empty command", [](OperationBench& b) { execute(b, params({Variant()})); }},
        {"Execute bus bar alone", [](OperationBench& b) { execute(b, params({L"FB Method Not Allowed On BUSBAR"})); }},
        {"Execute bus bar",
         [](OperationBench& b) {
             execute(b, params({L"FB Method Not Allowed On BUSBAR", Variant()}));
         }},
        {"Execute replace alone", [](OperationBench& b) { execute(b, params({L"ReplaceFindOnlyOperand"})); }},
        {"Execute replace with empties",
         [](OperationBench& b) {
             execute(b, params({L"ReplaceFindOnlyOperand", Variant(), Variant(), Variant(), Variant()}));
         }},
        {"Execute replace with text",
         [](OperationBench& b) {
             execute(b, params({L"ReplaceFindOnlyOperand", L"x", L"", L"y", L"z"}));
         }},
    };
    return calls;
}

// The parameter is the call; it is made twice in a row, in every state of every operation.
class OperationCallOrder : public ::testing::TestWithParam<size_t> {};

TEST_P(OperationCallOrder, SucceedsOrRaisesARuntimeError) {
    const OperationStep& call = operationCalls()[GetParam()];
    for (const auto& cls : operationClasses()) {
        for (const auto& state : operationStates()) {
            SCOPED_TRACE(std::string(cls.Name) + ", " + state.Name + ", " + call.Name);
            OperationBench bench(cls);
            ASSERT_NE(bench.father, nullptr);
            state.Run(bench);
            for (int time = 0; time < 2; ++time) {
                const int32_t number = runtimeErrorOf([&] { call.Run(bench); });
                EXPECT_TRUE(number == kNoRuntimeError || number > 0) << number;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EveryMember, OperationCallOrder, ::testing::Range<size_t>(0, operationCalls().size()),
                         [](const ::testing::TestParamInfo<size_t>& info) {
                             return test::testNameOf(operationCalls()[info.param].Name);
                         });

// What the host's runtime answers for a member call on nothing.
TEST(OperationCallOrder, InitWithNothingIsAnObjectNotSetErrorForEveryOperation) {
    for (const auto& cls : operationClasses()) {
        SCOPED_TRACE(cls.Name);
        OperationBench bench(cls);
        bench.method->itfFBMethod_InitProperties(*bench.father);
        try {
            bench.method->itfFBMethod_Init(nullptr);
            ADD_FAILURE() << "no error";
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.Number(), 91);
            EXPECT_EQ(error.Description(), L"Object variable or With block variable not set");
            EXPECT_EQ(error.Source(), L"QxFBCom2");
        }
        // The operation stays usable: a later Init with the host's side attaches it.
        bench.method->itfFBMethod_Init(bench.instances);
        EXPECT_EQ(bench.instances->AttachedMethods, (std::vector<int32_t>{bench.method->itfFBMethod_MethodID()}));
    }
}

TEST(OperationCallOrder, InitTwiceAttachesTwice) {
    OperationBench bench(operationClasses()[0]);
    bench.method->itfFBMethod_InitProperties(*bench.father);
    bench.method->itfFBMethod_Init(bench.instances);
    bench.method->itfFBMethod_Init(bench.instances);
    EXPECT_EQ(bench.instances->AttachedMethods, (std::vector<int32_t>{170101, 170101}));
}

TEST(OperationCallOrder, EditingANewSerialConfigBeforeInitIsAnObjectNotSetError) {
    OperationBench bench(operationClasses()[0]);
    bench.method->itfFBMethod_InitProperties(*bench.father);
    bench.method->itfFBMethod_CreateDummyOperands();
    EXPECT_EQ(runtimeErrorOf([&] { bench.method->itfFBMethod_EditOperands(); }), kObjectNotSet);
    // Nothing was shown to the person.
    EXPECT_EQ(bench.context->Script()->PendingDialogs(), 0u);
    EXPECT_TRUE(bench.method->itfFBMethod_IsNew());
}

TEST(OperationCallOrder, HelpOrOkOfAStoredSerialConfigBeforeInitIsAnObjectNotSetError) {
    for (auto* person : {&queueHelp, &queueNameAndOk}) {
        OperationBench bench(operationClasses()[0]);
        bench.method->itfFBMethod_OutOperands(linkedOperands());
        bench.method->itfFBMethod_BinaryOperands(Bytes{2, 0});
        bench.method->itfFBMethod_InitProperties(*bench.father);
        person(bench);
        EXPECT_EQ(runtimeErrorOf([&] { bench.method->itfFBMethod_EditOperands(); }), kObjectNotSet);
        EXPECT_EQ(bench.context->Script()->PendingDialogs(), 0u);
        // A person who only cancels needs nothing of the host.
        EXPECT_EQ(runtimeErrorOf([&] { bench.method->itfFBMethod_EditOperands(); }), kNoRuntimeError);
        EXPECT_TRUE(bench.method->itfFBMethod_IsCanceled());
    }
}

TEST(OperationCallOrder, EditingASerialConfigWithoutItsOperandsIsAnError) {
    OperationBench bench(operationClasses()[0]);
    bench.method->itfFBMethod_InitProperties(*bench.father);
    bench.method->itfFBMethod_Init(bench.instances);
    bench.method->itfFBMethod_BinaryOperands(Bytes{2, 0});
    // No collection reads as an empty one, as BuildOperands answers it.
    EXPECT_EQ(runtimeErrorOf([&] { bench.method->itfFBMethod_EditOperands(); }), err::InvalidProcedureCall);
    bench.method->itfFBMethod_OutOperands(collectionOf({nullptr, nullptr}));
    EXPECT_EQ(runtimeErrorOf([&] { bench.method->itfFBMethod_EditOperands(); }), kObjectNotSet);
}

TEST(OperationCallOrder, BuildingOperandsThatAreNothingIsAnObjectNotSetError) {
    for (const auto& cls : operationClasses()) {
        SCOPED_TRACE(cls.Name);
        OperationBench bench(cls);
        bench.method->itfFBMethod_InitProperties(*bench.father);
        bench.method->itfFBMethod_OutOperands(collectionOf({nullptr, nullptr, nullptr, nullptr, nullptr}));
        const bool hasOperands = bench.method->itfFBMethod_VisbleOutCout() > 0;
        EXPECT_EQ(runtimeErrorOf([&] { bench.method->itfFBMethod_BuildOperands(); }),
                  hasOperands ? kObjectNotSet : kNoRuntimeError);
    }
}

TEST(OperationCallOrder, ResettingTheBufferBeforeInitIsAnObjectNotSetError) {
    OperationBench bench(operationClasses()[3]);
    bench.method->itfFBMethod_InitProperties(*bench.father);
    EXPECT_EQ(runtimeErrorOf([&] { bench.method->itfFBMethod_EditOperands(); }), kObjectNotSet);
}

// ---------------------------------------------------------------- families

struct FamilyClass {
    const char* Name;
    std::function<FatherPtr()> Make;
};

const std::vector<FamilyClass>& familyClasses() {
    static const std::vector<FamilyClass> classes{
        {"clsProtocolFather", [] { return std::make_shared<clsProtocolFather>(); }},
        {"clsEthProtocolFather", [] { return std::make_shared<clsEthProtocolFather>(); }},
    };
    return classes;
}

struct FamilyBench {
    explicit FamilyBench(const FamilyClass& cls) : gate(std::make_shared<clsGate>()), father(cls.Make()) {}
    ScopedHostContext context;
    std::shared_ptr<clsGate> gate;
    FatherPtr father;
};

using FamilyStep = Step<FamilyBench>;

const std::vector<FamilyStep>& familyStates() {
    static const std::vector<FamilyStep> states{
        {"constructed only", [](FamilyBench&) {}},
        {"initialised", [](FamilyBench& b) { b.father->itfFBFather_InitProperties(*b.gate); }},
        {"initialised, then the runtime folder went away",
         [](FamilyBench& b) {
             b.father->itfFBFather_InitProperties(*b.gate);
             b.context->AppFolder = kMissingAppFolder;
         }},
        {"without a runtime folder", [](FamilyBench& b) { b.context->AppFolder = kMissingAppFolder; }},
    };
    return states;
}

const std::vector<FamilyStep>& familyCalls() {
    static const std::vector<FamilyStep> calls{
        {"GetFBmethodsCollection", [](FamilyBench& b) { b.father->itfFBFather_GetFBmethodsCollection(); }},
        {"GetFBMethodObject",
         [](FamilyBench& b) {
             for (int32_t id : {0, -1, 1, 99, 170101, 170105, 170203, INT_MIN, INT_MAX})
                 b.father->itfFBFather_GetFBMethodObject(id);
         }},
        {"FatherName", [](FamilyBench& b) { b.father->itfFBFather_FatherName(); }},
        {"Title", [](FamilyBench& b) { b.father->itfFBFather_Title(); }},
        {"Description", [](FamilyBench& b) { b.father->itfFBFather_Description(); }},
        {"FatherID", [](FamilyBench& b) { b.father->itfFBFather_FatherID(); }},
        {"InstanceType", [](FamilyBench& b) { b.father->itfFBFather_InstanceType(); }},
        {"HexFileVersionsList", [](FamilyBench& b) { b.father->itfFBFather_HexFileVersionsList(); }},
        {"CurrentHexFileVersion", [](FamilyBench& b) { b.father->itfFBFather_CurrentHexFileVersion(); }},
        {"MenuIcon", [](FamilyBench& b) { b.father->itfFBFather_MenuIcon(); }},
        {"AdditionalData", [](FamilyBench& b) { b.father->itfFBFather_AdditionalData(); }},
        {"AdditionalData let empty", [](FamilyBench& b) { b.father->itfFBFather_AdditionalData(Bytes{}); }},
        {"GetHexFileDetails",
         [](FamilyBench& b) {
             for (int32_t version : {0, -1, 100, INT_MIN, INT_MAX}) {
                 const int32_t number = runtimeErrorOf([&] { b.father->itfFBFather_GetHexFileDetails(version); });
                 EXPECT_TRUE(number == kNoRuntimeError || number > 0) << version;
             }
         }},
        {"InitProperties", [](FamilyBench& b) { b.father->itfFBFather_InitProperties(*b.gate); }},
        {"PrintFB", [](FamilyBench& b) { b.father->itfFBFather_PrintFB(Variant()); }},
        {"Execute", [](FamilyBench& b) { b.father->itfFBFather_Execute(Variant()); }},
    };
    return calls;
}

class FamilyCallOrder : public ::testing::TestWithParam<size_t> {};

TEST_P(FamilyCallOrder, SucceedsOrRaisesARuntimeError) {
    const FamilyStep& call = familyCalls()[GetParam()];
    for (const auto& cls : familyClasses()) {
        for (const auto& state : familyStates()) {
            SCOPED_TRACE(std::string(cls.Name) + ", " + state.Name + ", " + call.Name);
            FamilyBench bench(cls);
            const int32_t prepared = runtimeErrorOf([&] { state.Run(bench); });
            EXPECT_TRUE(prepared == kNoRuntimeError || prepared > 0) << prepared;
            for (int time = 0; time < 2; ++time) {
                const int32_t number = runtimeErrorOf([&] { call.Run(bench); });
                EXPECT_TRUE(number == kNoRuntimeError || number > 0) << number;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EveryMember, FamilyCallOrder, ::testing::Range<size_t>(0, familyCalls().size()),
                         [](const ::testing::TestParamInfo<size_t>& info) {
                             return test::testNameOf(familyCalls()[info.param].Name);
                         });

// ---------------------------------------------------------------- the gate

TEST(GateCallOrder, EveryMemberSucceedsOrRaisesARuntimeError) {
    for (const wchar_t* folder : {L"", kMissingAppFolder}) {
        ScopedHostContext context;
        if (*folder) context->AppFolder = folder;
        clsGate gate;
        const bool missing = *folder != L'\0';
        SCOPED_TRACE(missing ? "missing runtime folder" : "runtime folder");
        EXPECT_EQ(gate.itfFBGate_GateID(), 170000);
        EXPECT_EQ(runtimeErrorOf([&] { gate.itfFBGate_GetFathersCollection(); }),
                  missing ? err::TypeMismatch : kNoRuntimeError);
        for (int32_t id : {0, -1, 170000, 170101, INT_MIN, INT_MAX})
            EXPECT_EQ(gate.itfFBGate_GetFatherObject(id), nullptr) << id;
        for (int32_t id : {170100, 170200})
            EXPECT_EQ(runtimeErrorOf([&] { gate.itfFBGate_GetFatherObject(id); }),
                      missing ? err::TypeMismatch : kNoRuntimeError);
        EXPECT_NO_THROW(gate.itfFBGate_PrintFB(Variant()));
        EXPECT_NO_THROW(gate.itfFBGate_Execute(Variant()));
    }
}

}  // namespace
}  // namespace qx
