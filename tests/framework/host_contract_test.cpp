// The operations' face towards the host: identity, operand tables, blocks and
// commands, as every operation of both families shows them.
#include "platform/host/host_contract.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "component/gate.h"
#include "platform/basics/object_count.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/fb_instances_double.h"
#include "platform/host/host_context.h"
#include "serial/protocol_copy_to_buffer.h"
#include "serial/protocol_reset_buffer.h"
#include "serial/protocol_scan.h"
#include "serial/protocol_send.h"
#include "tcpip/eth_protocol_config.h"
#include "tcpip/eth_protocol_scan.h"
#include "tcpip/eth_protocol_send.h"

namespace qx {
namespace {

// Text numbers read as "T<n>", so that a test can see which number was used.
void markTextNumbers(HostContext& context) {
    for (int32_t n : {24, 29, 31, 32, 33, 34, 203, 216, 219, 220, 221, 595, 597, 608, 615, 616})
        context.TextOverrides[n] = L"T" + std::to_wstring(n);
}

MethodPtr methodOf(int32_t methodID) {
    clsGate gate;
    FatherPtr father = gate.itfFBGate_GetFatherObject((methodID / 100) * 100);
    return father ? father->itfFBFather_GetFBMethodObject(methodID) : nullptr;
}

struct Identity {
    int32_t MethodID;
    std::wstring Title;
    std::wstring Description;
    std::wstring MethodName;
    int32_t VisbleInCout;
    int32_t VisbleOutCout;
    std::wstring FatherTitle;
    std::wstring FatherName;
    int32_t FatherInstanceType;
    bool HasMenuIcon;
};

const std::vector<Identity>& shellIdentities() {
    static const std::vector<Identity> table{
        {170102, L"SCAN",
         L"Checks if messages contained within the Scan have been received via the COM port in the linked "
         L"Configuration",
         L"T216", 0, 3, L"PROTOCOL", L"Protocol", 2, true},
        {170103, L"SEND",
         L"Sends messages contained within the Send operation via the COM port in the linked Configuration", L"T221", 0,
         0, L"PROTOCOL", L"Protocol", 2, false},
        {170104, L"COPY BUFFER",
         L"Copies whatever information is in the receive buffer at the time the operation is called.", L"T219", 0, 1,
         L"PROTOCOL", L"Protocol", 2, false},
        {170105, L"BUFFER RST",
         L"To receive new messages, you must clear the communication buffer by using this operation", L"T220", 0, 0,
         L"PROTOCOL", L"Protocol", 2, false},
        {170201, L"CONFIG",
         L"Each operation is linked to a Configuration, which determines which Socket is used for Send and Scan "
         L"operations",
         L"T203", 1, 1, L"P. TCP/IP", L"Protocol TCP/IP", 3, true},
        {170202, L"SCAN",
         L"Checks if messages contained within the Scan have been received via the Ethernet port in the linked "
         L"Configuration",
         L"T216", 0, 2, L"P. TCP/IP", L"Protocol TCP/IP", 3, true},
        {170203, L"SEND TCP",
         L"Sends messages contained within the Send operation via the Ethernet port in the linked Configuration",
         L"T608", 0, 1, L"P. TCP/IP", L"Protocol TCP/IP", 3, false},
    };
    return table;
}

TEST(OperationShells, InitPropertiesGivesEachOperationItsIdentity) {
    ScopedHostContext context;
    markTextNumbers(*context);
    for (const Identity& expected : shellIdentities()) {
        SCOPED_TRACE(expected.MethodID);
        MethodPtr method = methodOf(expected.MethodID);
        ASSERT_NE(method, nullptr);
        EXPECT_EQ(method->itfFBMethod_MethodID(), expected.MethodID);
        EXPECT_EQ(method->itfFBMethod_Title(), expected.Title);
        EXPECT_EQ(method->itfFBMethod_Description(), expected.Description);
        EXPECT_EQ(method->itfFBMethod_MethodName(), expected.MethodName);
        EXPECT_EQ(method->itfFBMethod_VisbleInCout(), expected.VisbleInCout);
        EXPECT_EQ(method->itfFBMethod_VisbleOutCout(), expected.VisbleOutCout);
        EXPECT_EQ(method->itfFBMethod_FatherTitle(), expected.FatherTitle);
        EXPECT_EQ(method->itfFBMethod_FatherName(), expected.FatherName);
        EXPECT_EQ(method->itfFBMethod_FatherInstanceType(), expected.FatherInstanceType);
        EXPECT_EQ(method->itfFBMethod_HexFileVersion(), 100);
        EXPECT_TRUE(method->itfFBMethod_IsEnableInEnableOut());
        EXPECT_EQ(method->itfFBMethod_MenuIcon() != nullptr, expected.HasMenuIcon);
        EXPECT_EQ(method->itfFBMethod_LadderImage(), nullptr);
        EXPECT_EQ(method->itfFBMethod_LadderImageSelected(), nullptr);
    }
}

TEST(OperationShells, FieldsNotSetByInitPropertiesStartEmpty) {
    ScopedHostContext context;
    for (const Identity& expected : shellIdentities()) {
        SCOPED_TRACE(expected.MethodID);
        MethodPtr method = methodOf(expected.MethodID);
        EXPECT_FALSE(method->itfFBMethod_IsNew());
        EXPECT_FALSE(method->itfFBMethod_IsCanceled());
        EXPECT_FALSE(method->itfFBMethod_IsConducting());
        EXPECT_EQ(method->itfFBMethod_FatherInstanceNum(), 0);
        EXPECT_EQ(method->itfFBMethod_FatherInstanceName(), L"");
        EXPECT_TRUE(method->itfFBMethod_BinaryOperands().empty());
        EXPECT_TRUE(method->itfFBMethod_InstanceData().empty());
        EXPECT_EQ(method->itfFBMethod_InOperands(), nullptr);
        EXPECT_EQ(method->itfFBMethod_OutOperands(), nullptr);
        EXPECT_EQ(method->itfFBMethod_VisbleInOperands(), nullptr);
        EXPECT_EQ(method->itfFBMethod_VisbleOutOperands(), nullptr);
        ASSERT_NE(method->itfFBMethod_OperandsForFindOnly(), nullptr);
        EXPECT_EQ(method->itfFBMethod_OperandsForFindOnly()->Count(), 0);
    }
}

TEST(OperationShells, InitAttachesTheMethodIDAtTheHost) {
    ScopedHostContext context;
    auto instances = std::make_shared<FBInstancesDouble>();
    MethodPtr method = methodOf(170202);
    method->itfFBMethod_Init(instances);
    EXPECT_EQ(instances->AttachedMethods, (std::vector<int32_t>{170202}));
}

TEST(OperationShells, FatherInstanceNumLetFetchesTheInstanceName) {
    ScopedHostContext context;
    auto instances = std::make_shared<FBInstancesDouble>();
    int32_t number = instances->Seed(L"Line A");
    MethodPtr method = methodOf(170105);
    method->itfFBMethod_Init(instances);
    method->itfFBMethod_FatherInstanceNum(number);
    EXPECT_EQ(method->itfFBMethod_FatherInstanceNum(), number);
    EXPECT_EQ(method->itfFBMethod_FatherInstanceName(), L"Line A");
}

// One row of an operation's out-operand table.
struct OutRow {
    int32_t TypeAtCreation;
    std::wstring Text;
    std::vector<int32_t> Allowed;
    std::vector<int32_t> Extended;
    bool Visible;
};

const std::vector<OutRow>& outTable(int32_t methodID) {
    static const std::vector<OutRow> scan{
        {1, L"T31", {1}, {64}, true}, {3, L"T32", {3}, {65}, true}, {3, L"T33", {3}, {65}, true}};
    static const std::vector<OutRow> copy{{3, L"T29", {3, 5, 16}, {65, 66, 67}, true}};
    static const std::vector<OutRow> ethConfig{{3, L"T34", {3}, {65}, true}};
    static const std::vector<OutRow> ethScan{{1, L"T616", {1}, {64}, true},
                                             {3, L"T32", {3}, {65}, false},
                                             {3, L"T33", {3}, {65}, true},
                                             {3, L"T595", {3}, {65}, false},
                                             {3, L"T615", {3}, {65}, false}};
    static const std::vector<OutRow> ethSend{{1, L"T597", {1}, {64}, true}};
    static const std::vector<OutRow> none;
    switch (methodID) {
        case 170102:
            return scan;
        case 170104:
            return copy;
        case 170201:
            return ethConfig;
        case 170202:
            return ethScan;
        case 170203:
            return ethSend;
        default:
            return none;
    }
}

std::vector<AllowedType> allowedOf(const OutRow& row, bool extended) {
    std::vector<AllowedType> allowed;
    for (int32_t type : row.Allowed) allowed.push_back({1, type, true});
    if (extended)
        for (int32_t type : row.Extended) allowed.push_back({1, type, true});
    return allowed;
}

// The TCP/IP Config's socket is the one in operand of any operation.
int32_t socketsOf(int32_t methodId) { return methodId == 170201 ? 1 : 0; }

TEST(OperationShells, CreateDummyOperandsMakesTheOperandsOfTheTableInOrder) {
    ScopedHostContext context;
    markTextNumbers(*context);
    for (const Identity& identity : shellIdentities()) {
        SCOPED_TRACE(identity.MethodID);
        MethodPtr method = methodOf(identity.MethodID);
        method->itfFBMethod_CreateDummyOperands();
        const auto& table = outTable(identity.MethodID);
        EXPECT_TRUE(method->itfFBMethod_IsNew());
        ASSERT_NE(method->itfFBMethod_InOperands(), nullptr);
        EXPECT_EQ(method->itfFBMethod_InOperands()->Count(), socketsOf(identity.MethodID));
        ASSERT_NE(method->itfFBMethod_VisbleInOperands(), nullptr);
        EXPECT_EQ(method->itfFBMethod_VisbleInOperands()->Count(), socketsOf(identity.MethodID));
        OperandCollectionPtr out = method->itfFBMethod_OutOperands();
        ASSERT_NE(out, nullptr);
        ASSERT_EQ(out->Count(), static_cast<int32_t>(table.size()));
        std::vector<OperandPtr> visible;
        for (int32_t i = 1; i <= out->Count(); ++i) {
            const OutRow& row = table[static_cast<size_t>(i - 1)];
            const OperandPtr& operand = out->Item(i);
            EXPECT_EQ(out->KeyAt(i), std::to_wstring(i));
            EXPECT_TRUE(operand->IsNew());
            EXPECT_EQ(operand->OperandMode(), 1);
            EXPECT_EQ(operand->OperandType(), row.TypeAtCreation);
            EXPECT_EQ(operand->OperandDescription(), row.Text);
            if (row.Visible) visible.push_back(operand);
        }
        OperandCollectionPtr shown = method->itfFBMethod_VisbleOutOperands();
        ASSERT_NE(shown, nullptr);
        ASSERT_EQ(shown->Count(), static_cast<int32_t>(visible.size()));
        for (int32_t i = 1; i <= shown->Count(); ++i) EXPECT_EQ(shown->Item(i), visible[static_cast<size_t>(i - 1)]);
    }
}

TEST(OperationShells, SendAndBufferResetMakeEmptyCollectionsAndNoOperand) {
    ScopedHostContext context;
    for (int32_t id : {170103, 170105}) {
        SCOPED_TRACE(id);
        MethodPtr method = methodOf(id);
        method->itfFBMethod_CreateDummyOperands();
        method->itfFBMethod_BuildOperands();
        for (const auto& collection :
             {method->itfFBMethod_InOperands(), method->itfFBMethod_OutOperands(),
              method->itfFBMethod_VisbleInOperands(), method->itfFBMethod_VisbleOutOperands()}) {
            ASSERT_NE(collection, nullptr);
            EXPECT_EQ(collection->Count(), 0);
        }
    }
}

TEST(OperationShells, CreateDummyOperandsReplacesTheCollectionsWithNewOnes) {
    ScopedHostContext context;
    MethodPtr method = methodOf(170102);
    method->itfFBMethod_CreateDummyOperands();
    OperandCollectionPtr firstOut = method->itfFBMethod_OutOperands();
    OperandCollectionPtr firstIn = method->itfFBMethod_InOperands();
    method->itfFBMethod_CreateDummyOperands();
    EXPECT_NE(method->itfFBMethod_OutOperands(), firstOut);
    EXPECT_NE(method->itfFBMethod_InOperands(), firstIn);
    EXPECT_EQ(method->itfFBMethod_OutOperands()->Count(), 3);
}

void expectBuiltByTable(bool extended) {
    ScopedHostContext context;
    markTextNumbers(*context);
    context->ExtendedOperands = extended;
    for (const Identity& identity : shellIdentities()) {
        SCOPED_TRACE(identity.MethodID);
        MethodPtr method = methodOf(identity.MethodID);
        method->itfFBMethod_CreateDummyOperands();
        OperandCollectionPtr visibleBefore = method->itfFBMethod_VisbleOutOperands();
        method->itfFBMethod_BuildOperands();
        EXPECT_NE(method->itfFBMethod_VisbleOutOperands(), visibleBefore);
        const auto& table = outTable(identity.MethodID);
        OperandCollectionPtr out = method->itfFBMethod_OutOperands();
        ASSERT_EQ(out->Count(), static_cast<int32_t>(table.size()));
        int32_t visibleCount = 0;
        for (int32_t i = 1; i <= out->Count(); ++i) {
            const OutRow& row = table[static_cast<size_t>(i - 1)];
            const OperandPtr& operand = out->Item(i);
            EXPECT_EQ(operand->AllowedTypes(), allowedOf(row, extended)) << "operand " << i;
            EXPECT_EQ(operand->OperandCaption(), row.Text);
            EXPECT_EQ(operand->OperandTitle(), row.Text);
            if (row.Visible) {
                ++visibleCount;
                EXPECT_EQ(method->itfFBMethod_VisbleOutOperands()->Item(visibleCount), operand);
            }
        }
        EXPECT_EQ(method->itfFBMethod_VisbleOutOperands()->Count(), visibleCount);
        EXPECT_EQ(method->itfFBMethod_VisbleOutCout(), visibleCount);
        EXPECT_EQ(method->itfFBMethod_VisbleInOperands()->Count(), socketsOf(identity.MethodID));
    }
}

TEST(OperationShells, BuildOperandsSetsTypesCaptionsAndTitlesWithExtendedTypesOff) { expectBuiltByTable(false); }

TEST(OperationShells, BuildOperandsAddsTheExtendedTwinsWhenTheyAreOn) { expectBuiltByTable(true); }

TEST(OperationShells, TcpIpScanAfterReopenShowsTwoOfItsFiveOperandsInOrder) {
    ScopedHostContext context;
    auto instances = std::make_shared<FBInstancesDouble>();
    // What the host stored with the project: five links, in table order.
    auto stored = newCollection<OperandPtr>();
    std::vector<OperandPtr> links;
    for (int32_t i = 1; i <= 5; ++i) {
        OperandPtr operand = newOperand();
        operand->IsNew(false);
        operand->OperandType(i == 1 ? 1 : 3);
        operand->OperandAddress(100 + i);
        stored->Add(operand, std::to_wstring(i));
        links.push_back(operand);
    }
    MethodPtr scan = methodOf(170202);
    scan->itfFBMethod_Init(instances);
    scan->itfFBMethod_InOperands(newCollection<OperandPtr>());
    scan->itfFBMethod_OutOperands(stored);
    scan->itfFBMethod_BuildOperands();
    EXPECT_FALSE(scan->itfFBMethod_IsNew());
    EXPECT_EQ(scan->itfFBMethod_OutOperands(), stored);
    ASSERT_EQ(scan->itfFBMethod_OutOperands()->Count(), 5);
    for (int32_t i = 1; i <= 5; ++i)
        EXPECT_EQ(scan->itfFBMethod_OutOperands()->Item(i), links[static_cast<size_t>(i - 1)]);
    OperandCollectionPtr shown = scan->itfFBMethod_VisbleOutOperands();
    ASSERT_EQ(shown->Count(), 2);
    EXPECT_EQ(shown->Item(1), links[0]);
    EXPECT_EQ(shown->Item(2), links[2]);
    EXPECT_EQ(links[4]->AllowedTypes(), (std::vector<AllowedType>{{1, 3, true}}));
}

TEST(OperationShells, BuildOperandsWithFewerOperandsThanTheTableFailsWithTheCollectionsError) {
    ScopedHostContext context;
    for (int32_t id : {170102, 170104, 170202, 170203}) {
        SCOPED_TRACE(id);
        MethodPtr method = methodOf(id);
        auto stored = newCollection<OperandPtr>();
        for (size_t i = 1; i < outTable(id).size(); ++i) stored->Add(newOperand(), std::to_wstring(i));
        method->itfFBMethod_OutOperands(stored);
        try {
            method->itfFBMethod_BuildOperands();
            ADD_FAILURE() << "no error";
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.Number(), err::InvalidProcedureCall);
        }
    }
}

bool answersBusBar(int32_t methodID) {
    return methodID == 170102 || methodID == 170103 || methodID == 170201 || methodID == 170202 || methodID == 170203;
}

TEST(OperationShells, BusBarQuestionIsAnsweredOnlyWithUpperBoundExactlyOne) {
    ScopedHostContext context;
    for (const Identity& identity : shellIdentities()) {
        SCOPED_TRACE(identity.MethodID);
        MethodPtr method = methodOf(identity.MethodID);
        VariantArray exact{Variant(L"FB Method Not Allowed On BUSBAR"), Variant(false)};
        method->itfFBMethod_Execute(exact);
        EXPECT_EQ(exact[1], Variant(answersBusBar(identity.MethodID)));

        VariantArray longer{Variant(L"FB Method Not Allowed On BUSBAR"), Variant(false), Variant(false)};
        method->itfFBMethod_Execute(longer);
        EXPECT_EQ(longer[1], Variant(false));
        EXPECT_EQ(longer[2], Variant(false));

        VariantArray shorter{Variant(L"FB Method Not Allowed On BUSBAR")};
        method->itfFBMethod_Execute(shorter);
        EXPECT_EQ(shorter.size(), 1u);
    }
}

TEST(OperationShells, OtherCommandsGetNoAnswer) {
    ScopedHostContext context;
    for (const Identity& identity : shellIdentities()) {
        SCOPED_TRACE(identity.MethodID);
        MethodPtr method = methodOf(identity.MethodID);
        VariantArray other{Variant(L"Something Else"), Variant(false)};
        method->itfFBMethod_Execute(other);
        EXPECT_EQ(other[1], Variant(false));
        VariantArray empty;
        method->itfFBMethod_Execute(empty);
        EXPECT_TRUE(empty.empty());
    }
}

TEST(OperationShells, AdditionalDataLetChangesNothingAndGetStaysEmpty) {
    ScopedHostContext context;
    for (const Identity& identity : shellIdentities()) {
        SCOPED_TRACE(identity.MethodID);
        MethodPtr method = methodOf(identity.MethodID);
        method->itfFBMethod_AdditionalData(Bytes{1, 2, 3});
        EXPECT_TRUE(method->itfFBMethod_AdditionalData().empty());
        EXPECT_TRUE(method->itfFBMethod_BinaryOperands().empty());
        EXPECT_TRUE(method->itfFBMethod_InstanceData().empty());
    }
}

TEST(OperationShells, BinaryOperandsAreKeptOnlyByOperationsWithAnImage) {
    ScopedHostContext context;
    for (const Identity& identity : shellIdentities()) {
        SCOPED_TRACE(identity.MethodID);
        MethodPtr method = methodOf(identity.MethodID);
        method->itfFBMethod_BinaryOperands(Bytes{4, 0});
        const bool hasImage = identity.MethodID != 170105 && identity.MethodID != 170201;
        EXPECT_EQ(method->itfFBMethod_BinaryOperands(), hasImage ? (Bytes{4, 0}) : Bytes());
    }
}

TEST(OperationShells, HexFileVersionAndConductingAreStoredAsGiven) {
    ScopedHostContext context;
    MethodPtr method = methodOf(170203);
    method->itfFBMethod_HexFileVersion(101);
    method->itfFBMethod_IsConducting(true);
    method->itfFBMethod_FatherName(L"Renamed");
    EXPECT_EQ(method->itfFBMethod_HexFileVersion(), 101);
    EXPECT_TRUE(method->itfFBMethod_IsConducting());
    EXPECT_EQ(method->itfFBMethod_FatherName(), L"Renamed");
}

TEST(ProtocolResetBuffer, EditWithTheHostsDialogConfirmedChoosesTheConfigAndClearsIsNew) {
    ScopedHostContext context;
    auto instances = std::make_shared<FBInstancesDouble>();
    int32_t number = instances->Seed(L"Port 1");
    instances->SelectScript = [number](itfFBMethod& method) {
        method.itfFBMethod_FatherInstanceNum(number);
        method.itfFBMethod_IsCanceled(false);
    };
    MethodPtr reset = methodOf(170105);
    reset->itfFBMethod_Init(instances);
    reset->itfFBMethod_CreateDummyOperands();
    OperandCollectionPtr findOnly = reset->itfFBMethod_OperandsForFindOnly();
    reset->itfFBMethod_BuildOperands();
    reset->itfFBMethod_EditOperands();
    EXPECT_EQ(instances->SelectCalls, 1);
    EXPECT_FALSE(reset->itfFBMethod_IsNew());
    EXPECT_FALSE(reset->itfFBMethod_IsCanceled());
    EXPECT_EQ(reset->itfFBMethod_FatherInstanceNum(), number);
    EXPECT_EQ(reset->itfFBMethod_FatherInstanceName(), L"Port 1");
    EXPECT_EQ(reset->itfFBMethod_OperandsForFindOnly(), findOnly);
    EXPECT_TRUE(reset->itfFBMethod_BinaryOperands().empty());
}

TEST(ProtocolResetBuffer, EditWithTheHostsDialogCanceledKeepsIsNew) {
    ScopedHostContext context;
    auto instances = std::make_shared<FBInstancesDouble>();
    instances->Seed(L"Port 1");
    instances->SelectScript = [](itfFBMethod& method) { method.itfFBMethod_IsCanceled(true); };
    MethodPtr reset = methodOf(170105);
    reset->itfFBMethod_Init(instances);
    reset->itfFBMethod_CreateDummyOperands();
    reset->itfFBMethod_EditOperands();
    EXPECT_TRUE(reset->itfFBMethod_IsNew());
    EXPECT_TRUE(reset->itfFBMethod_IsCanceled());
    EXPECT_EQ(reset->itfFBMethod_FatherInstanceNum(), 0);
}

TEST(ProtocolResetBuffer, HostThatLeavesIsCanceledAloneCountsAsConfirmed) {
    ScopedHostContext context;
    auto instances = std::make_shared<FBInstancesDouble>();
    MethodPtr reset = methodOf(170105);
    reset->itfFBMethod_Init(instances);
    reset->itfFBMethod_CreateDummyOperands();
    reset->itfFBMethod_EditOperands();
    EXPECT_EQ(instances->SelectCalls, 1);
    EXPECT_FALSE(reset->itfFBMethod_IsNew());
}

TEST(ProtocolResetBuffer, CanceledAfterAnEarlierCancelStaysCanceledWhenTheHostSaysNothing) {
    ScopedHostContext context;
    auto instances = std::make_shared<FBInstancesDouble>();
    instances->SelectScript = [](itfFBMethod& method) { method.itfFBMethod_IsCanceled(true); };
    MethodPtr reset = methodOf(170105);
    reset->itfFBMethod_Init(instances);
    reset->itfFBMethod_CreateDummyOperands();
    reset->itfFBMethod_EditOperands();
    instances->SelectScript = nullptr;
    reset->itfFBMethod_EditOperands();
    EXPECT_TRUE(reset->itfFBMethod_IsCanceled());
    EXPECT_TRUE(reset->itfFBMethod_IsNew());
}

TEST(OperationShells, EveryOperationIsCountedAsALiveObject) {
    ScopedHostContext context;
    const int64_t before = liveObjectCount();
    {
        clsProtocolscan scan;
        clsProtocolSend send;
        clsProtocolCopyToBuffer copy;
        clsProtocolResetBuffer reset;
        clsEthProtocolConfig config;
        clsEthProtocolSend ethSend;
        clsEthProtocolScan ethScan;
        EXPECT_EQ(liveObjectCount(), before + 7);
    }
    EXPECT_EQ(liveObjectCount(), before);
}

}  // namespace
}  // namespace qx
