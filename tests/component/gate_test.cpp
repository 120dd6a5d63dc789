#include "component/gate.h"

#include <gtest/gtest.h>

#include "framework/temp_runtime_folder.h"
#include "platform/basics/object_count.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_context.h"
#include "serial/protocol_father.h"
#include "support/test_helpers.h"
#include "tcpip/eth_protocol_father.h"

namespace qx {
namespace {

using test::runtimeErrorOf;
using test::TempRuntimeFolder;

TEST(Gate, GateIDIs170000) {
    ScopedHostContext context;
    clsGate gate;
    EXPECT_EQ(gate.itfFBGate_GateID(), 170000);
}

TEST(Gate, FatherObjectOf170100IsTheInitialisedSerialFamily) {
    ScopedHostContext context;
    clsGate gate;
    FatherPtr father = gate.itfFBGate_GetFatherObject(170100);
    ASSERT_NE(std::dynamic_pointer_cast<clsProtocolFather>(father), nullptr);
    EXPECT_EQ(father->itfFBFather_FatherID(), 170100);
    EXPECT_EQ(father->itfFBFather_FatherName(), L"Protocol");
    EXPECT_EQ(father->itfFBFather_CurrentHexFileVersion(), 100);
    EXPECT_TRUE(context->Reports.empty());
}

TEST(Gate, FatherObjectOf170200IsTheInitialisedTcpIpFamily) {
    ScopedHostContext context;
    clsGate gate;
    FatherPtr father = gate.itfFBGate_GetFatherObject(170200);
    ASSERT_NE(std::dynamic_pointer_cast<clsEthProtocolFather>(father), nullptr);
    EXPECT_EQ(father->itfFBFather_FatherID(), 170200);
    EXPECT_EQ(father->itfFBFather_Title(), L"P. TCP/IP");
    EXPECT_EQ(father->itfFBFather_HexFileVersionsList(), (std::vector<int32_t>{100}));
}

TEST(Gate, UnknownFatherIDGivesNothingAndRaisesNothing) {
    ScopedHostContext context;
    clsGate gate;
    for (int32_t id : {170000, 170300, 170101, 0, -170100, 270100}) {
        FatherPtr father;
        EXPECT_NO_THROW(father = gate.itfFBGate_GetFatherObject(id)) << id;
        EXPECT_EQ(father, nullptr) << id;
    }
    EXPECT_TRUE(context->Reports.empty());
}

TEST(Gate, EveryRequestMakesANewFamily) {
    ScopedHostContext context;
    clsGate gate;
    FatherPtr first = gate.itfFBGate_GetFatherObject(170100);
    FatherPtr second = gate.itfFBGate_GetFatherObject(170100);
    ASSERT_NE(first, nullptr);
    EXPECT_NE(first, second);
}

TEST(Gate, FathersCollectionHoldsSerialThenTcpIpKeyedByFatherID) {
    ScopedHostContext context;
    clsGate gate;
    FatherCollectionPtr fathers = gate.itfFBGate_GetFathersCollection();
    ASSERT_NE(fathers, nullptr);
    ASSERT_EQ(fathers->Count(), 2);
    EXPECT_EQ(fathers->KeyAt(1), L"170100");
    EXPECT_EQ(fathers->KeyAt(2), L"170200");
    EXPECT_NE(std::dynamic_pointer_cast<clsProtocolFather>(fathers->Item(1)), nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<clsEthProtocolFather>(fathers->Item(2)), nullptr);
    EXPECT_EQ(fathers->Item(L"170200")->itfFBFather_FatherID(), 170200);
    EXPECT_EQ(fathers->Item(L"170100")->itfFBFather_Description(), L"User-defined protocol over a serial COM port");
}

TEST(Gate, FathersCollectionIsNewAtEveryCall) {
    ScopedHostContext context;
    clsGate gate;
    FatherCollectionPtr first = gate.itfFBGate_GetFathersCollection();
    FatherCollectionPtr second = gate.itfFBGate_GetFathersCollection();
    EXPECT_NE(first, second);
    EXPECT_NE(first->Item(1), second->Item(1));
}

TEST(Gate, MissingCurrentHexFileVersionLeavesNoCollectionAfterTheReport) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeFamily(170100);
    folder.writeIni(170200, "HexFilesVersionsList=100\r\n");
    clsGate gate;
    FatherCollectionPtr fathers;
    EXPECT_EQ(runtimeErrorOf([&] { fathers = gate.itfFBGate_GetFathersCollection(); }), err::TypeMismatch);
    EXPECT_EQ(fathers, nullptr);
    ASSERT_EQ(context->Reports.size(), 1u);
    EXPECT_EQ(context->Reports[0].Name, L"KeyNotFount");
    EXPECT_EQ(context->Reports[0].Text,
              L"Function block ini file key not found: \r\nFatherID: 170200\r\nKey: CurrentHexFileVersion");
}

TEST(Gate, MissingIniFileMakesGetFatherObjectFailAfterTheReport) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    clsGate gate;
    FatherPtr father;
    EXPECT_EQ(runtimeErrorOf([&] { father = gate.itfFBGate_GetFatherObject(170100); }), err::TypeMismatch);
    EXPECT_EQ(father, nullptr);
    ASSERT_EQ(context->Reports.size(), 1u);
    EXPECT_EQ(context->Reports[0].Procedure, L"ReadFromIni");
}

TEST(Gate, PrintAndExecuteDoNothing) {
    ScopedHostContext context;
    clsGate gate;
    EXPECT_NO_THROW(gate.itfFBGate_PrintFB(Variant(int32_t{1})));
    EXPECT_NO_THROW(gate.itfFBGate_Execute(Variant(L"anything")));
    EXPECT_TRUE(context->Reports.empty());
    EXPECT_TRUE(context->Messages.empty());
}

TEST(Gate, GateAndFamiliesAreCountedAsLiveObjects) {
    ScopedHostContext context;
    const int64_t before = liveObjectCount();
    {
        auto gate = std::make_shared<clsGate>();
        EXPECT_EQ(liveObjectCount(), before + 1);
        FatherPtr father = gate->itfFBGate_GetFatherObject(170200);
        // The family and the menu icon it holds.
        ASSERT_NE(father->itfFBFather_MenuIcon(), nullptr);
        EXPECT_EQ(liveObjectCount(), before + 3);
    }
    EXPECT_EQ(liveObjectCount(), before);
}

}  // namespace
}  // namespace qx
