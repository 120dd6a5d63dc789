#include <gtest/gtest.h>

#include "component/gate.h"
#include "framework/temp_runtime_folder.h"
#include "platform/basics/object_count.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_context.h"
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

using test::runtimeErrorOf;
using test::TempRuntimeFolder;

std::shared_ptr<clsProtocolFather> serialFamily() {
    clsGate gate;
    auto father = std::make_shared<clsProtocolFather>();
    father->itfFBFather_InitProperties(gate);
    return father;
}

std::shared_ptr<clsEthProtocolFather> tcpIpFamily() {
    clsGate gate;
    auto father = std::make_shared<clsEthProtocolFather>();
    father->itfFBFather_InitProperties(gate);
    return father;
}

// A gate that answers another id, to show that a family builds its own from it.
class OtherGate : public itfFBGate {
public:
    FatherCollectionPtr itfFBGate_GetFathersCollection() override { return nullptr; }
    int32_t itfFBGate_GateID() override { return 250000; }
    FatherPtr itfFBGate_GetFatherObject(int32_t) override { return nullptr; }
    void itfFBGate_PrintFB(const Variant&) override {}
    void itfFBGate_Execute(const Variant&) override {}
};

template <class T>
bool isA(const MethodPtr& method) {
    return std::dynamic_pointer_cast<T>(method) != nullptr;
}

TEST(ProtocolFather, InitPropertiesFillsTheFieldsOfTheSerialFamily) {
    ScopedHostContext context;
    context->TextOverrides[328] = L"words of 328";
    auto father = serialFamily();
    EXPECT_EQ(father->FamilyNumber(), 1);
    EXPECT_EQ(father->itfFBFather_FatherID(), 170100);
    EXPECT_EQ(father->itfFBFather_FatherName(), L"Protocol");
    EXPECT_EQ(father->itfFBFather_Title(), L"PROTOCOL");
    EXPECT_EQ(father->itfFBFather_Description(), L"words of 328");
    EXPECT_EQ(father->itfFBFather_InstanceType(), 2);
    EXPECT_EQ(father->itfFBFather_CurrentHexFileVersion(), 100);
    EXPECT_EQ(father->itfFBFather_HexFileVersionsList(), (std::vector<int32_t>{100}));
    ASSERT_NE(father->itfFBFather_MenuIcon(), nullptr);
    EXPECT_EQ(father->itfFBFather_MenuIcon()->Width, 16);
    EXPECT_TRUE(context->Reports.empty());
}

TEST(EthProtocolFather, InitPropertiesFillsTheFieldsOfTheTcpIpFamily) {
    ScopedHostContext context;
    context->TextOverrides[593] = L"words of 593";
    auto father = tcpIpFamily();
    EXPECT_EQ(father->FamilyNumber(), 2);
    EXPECT_EQ(father->itfFBFather_FatherID(), 170200);
    EXPECT_EQ(father->itfFBFather_FatherName(), L"Protocol TCP/IP");
    EXPECT_EQ(father->itfFBFather_Title(), L"P. TCP/IP");
    EXPECT_EQ(father->itfFBFather_Description(), L"words of 593");
    EXPECT_EQ(father->itfFBFather_InstanceType(), 3);
    EXPECT_EQ(father->itfFBFather_CurrentHexFileVersion(), 100);
    EXPECT_EQ(father->itfFBFather_HexFileVersionsList(), (std::vector<int32_t>{100}));
    ASSERT_NE(father->itfFBFather_MenuIcon(), nullptr);
}

TEST(ProtocolFather, FatherIDIsTheGatesIDPlus100TimesTheFamilyNumber) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeFamily(250100);
    folder.writeFamily(250200);
    OtherGate gate;
    clsProtocolFather serial;
    serial.itfFBFather_InitProperties(gate);
    clsEthProtocolFather tcpIp;
    tcpIp.itfFBFather_InitProperties(gate);
    EXPECT_EQ(serial.itfFBFather_FatherID(), 250100);
    EXPECT_EQ(tcpIp.itfFBFather_FatherID(), 250200);
}

TEST(ProtocolFather, InitPropertiesReadsTheIniAtThatMoment) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeFamily(170100);
    auto first = serialFamily();
    folder.writeIni(170100, "CurrentHexFileVersion=101\r\nHexFilesVersionsList=100;101\r\n");
    auto second = serialFamily();
    EXPECT_EQ(first->itfFBFather_CurrentHexFileVersion(), 100);
    EXPECT_EQ(first->itfFBFather_HexFileVersionsList(), (std::vector<int32_t>{100}));
    EXPECT_EQ(second->itfFBFather_CurrentHexFileVersion(), 101);
    EXPECT_EQ(second->itfFBFather_HexFileVersionsList(), (std::vector<int32_t>{100, 101}));
}

TEST(ProtocolFather, MissingCurrentHexFileVersionFailsWithTypeMismatchAfterOneReport) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeIni(170100, "HexFilesVersionsList=100\r\n");
    clsGate gate;
    clsProtocolFather father;
    EXPECT_EQ(runtimeErrorOf([&] { father.itfFBFather_InitProperties(gate); }), err::TypeMismatch);
    ASSERT_EQ(context->Reports.size(), 1u);
    EXPECT_EQ(context->Reports[0].Name, L"KeyNotFount");
    EXPECT_EQ(context->Reports[0].Text,
              L"Function block ini file key not found: \r\nFatherID: 170100\r\nKey: CurrentHexFileVersion");
    // The fields before the failing one in table order were filled.
    EXPECT_EQ(father.itfFBFather_FatherID(), 170100);
    EXPECT_EQ(father.itfFBFather_Title(), L"PROTOCOL");
    EXPECT_NE(father.itfFBFather_MenuIcon(), nullptr);
    EXPECT_TRUE(father.itfFBFather_HexFileVersionsList().empty());
}

TEST(EthProtocolFather, MissingVersionsListFailsWithTypeMismatchAfterOneReport) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeIni(170200, "CurrentHexFileVersion=100\r\n");
    clsGate gate;
    clsEthProtocolFather father;
    EXPECT_EQ(runtimeErrorOf([&] { father.itfFBFather_InitProperties(gate); }), err::TypeMismatch);
    ASSERT_EQ(context->Reports.size(), 1u);
    EXPECT_EQ(context->Reports[0].Text,
              L"Function block ini file key not found: \r\nFatherID: 170200\r\nKey: HexFilesVersionsList");
    EXPECT_EQ(father.itfFBFather_CurrentHexFileVersion(), 100);
}

TEST(ProtocolFather, MethodObjectsOfTheSerialFamilyByMethodNumber) {
    ScopedHostContext context;
    auto father = serialFamily();
    EXPECT_TRUE(isA<clsProtocolConfig>(father->itfFBFather_GetFBMethodObject(170101)));
    EXPECT_TRUE(isA<clsProtocolscan>(father->itfFBFather_GetFBMethodObject(170102)));
    EXPECT_TRUE(isA<clsProtocolSend>(father->itfFBFather_GetFBMethodObject(170103)));
    EXPECT_TRUE(isA<clsProtocolCopyToBuffer>(father->itfFBFather_GetFBMethodObject(170104)));
    EXPECT_TRUE(isA<clsProtocolResetBuffer>(father->itfFBFather_GetFBMethodObject(170105)));
}

TEST(ProtocolFather, OnlyTheLastTwoDigitsOfTheMethodIDCount) {
    ScopedHostContext context;
    auto father = serialFamily();
    MethodPtr reset = father->itfFBFather_GetFBMethodObject(170205);
    ASSERT_TRUE(isA<clsProtocolResetBuffer>(reset));
    EXPECT_EQ(reset->itfFBMethod_MethodID(), 170105);
    EXPECT_TRUE(isA<clsProtocolscan>(father->itfFBFather_GetFBMethodObject(2)));
}

TEST(ProtocolFather, UnknownMethodNumberGivesNothingWithoutError) {
    ScopedHostContext context;
    auto father = serialFamily();
    for (int32_t id : {170206, 170100, 170106, 170199, 170000, 0, -170101})
        EXPECT_EQ(father->itfFBFather_GetFBMethodObject(id), nullptr) << id;
    EXPECT_TRUE(context->Reports.empty());
}

TEST(EthProtocolFather, MethodObjectsOfTheTcpIpFamilyAreOneToThreeOnly) {
    ScopedHostContext context;
    auto father = tcpIpFamily();
    EXPECT_TRUE(isA<clsEthProtocolConfig>(father->itfFBFather_GetFBMethodObject(170201)));
    EXPECT_TRUE(isA<clsEthProtocolScan>(father->itfFBFather_GetFBMethodObject(170202)));
    EXPECT_TRUE(isA<clsEthProtocolSend>(father->itfFBFather_GetFBMethodObject(170203)));
    EXPECT_EQ(father->itfFBFather_GetFBMethodObject(170104), nullptr);
    EXPECT_EQ(father->itfFBFather_GetFBMethodObject(170204), nullptr);
    EXPECT_EQ(father->itfFBFather_GetFBMethodObject(170205), nullptr);
    EXPECT_EQ(father->itfFBFather_GetFBMethodObject(170200), nullptr);
    MethodPtr send = father->itfFBFather_GetFBMethodObject(170103);
    ASSERT_TRUE(isA<clsEthProtocolSend>(send));
    EXPECT_EQ(send->itfFBMethod_MethodID(), 170203);
}

TEST(ProtocolFather, MethodObjectArrivesInitialisedByTheFamily) {
    ScopedHostContext context;
    context->TextOverrides[216] = L"words of 216";
    auto father = serialFamily();
    MethodPtr scan = father->itfFBFather_GetFBMethodObject(170102);
    ASSERT_NE(scan, nullptr);
    EXPECT_EQ(scan->itfFBMethod_MethodID(), 170102);
    EXPECT_EQ(scan->itfFBMethod_MethodName(), L"words of 216");
    EXPECT_EQ(scan->itfFBMethod_FatherTitle(), L"PROTOCOL");
    EXPECT_EQ(scan->itfFBMethod_FatherName(), L"Protocol");
    EXPECT_EQ(scan->itfFBMethod_FatherInstanceType(), 2);
    ASSERT_NE(scan->itfFBMethod_OperandsForFindOnly(), nullptr);
    EXPECT_EQ(scan->itfFBMethod_OperandsForFindOnly()->Count(), 0);
}

TEST(ProtocolFather, NewOperationStartsAtVersion100WhateverTheCurrentVersion) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeIni(170100, "CurrentHexFileVersion=205\r\nHexFilesVersionsList=100;205\r\n");
    auto father = serialFamily();
    EXPECT_EQ(father->itfFBFather_CurrentHexFileVersion(), 205);
    EXPECT_EQ(father->itfFBFather_GetFBMethodObject(170103)->itfFBMethod_HexFileVersion(), 100);
}

TEST(ProtocolFather, EveryRequestMakesANewOperation) {
    ScopedHostContext context;
    auto father = serialFamily();
    EXPECT_NE(father->itfFBFather_GetFBMethodObject(170103), father->itfFBFather_GetFBMethodObject(170103));
}

TEST(ProtocolFather, MethodsCollectionIsKeyedByMethodIDInMethodNumberOrder) {
    ScopedHostContext context;
    auto father = serialFamily();
    MethodCollectionPtr methods = father->itfFBFather_GetFBmethodsCollection();
    ASSERT_NE(methods, nullptr);
    ASSERT_EQ(methods->Count(), 5);
    const wchar_t* keys[] = {L"170101", L"170102", L"170103", L"170104", L"170105"};
    for (int32_t i = 1; i <= 5; ++i) {
        EXPECT_EQ(methods->KeyAt(i), keys[i - 1]);
        EXPECT_EQ(methods->Item(i)->itfFBMethod_MethodID(), 170100 + i);
    }
    EXPECT_TRUE(isA<clsProtocolConfig>(methods->Item(L"170101")));
    EXPECT_TRUE(isA<clsProtocolscan>(methods->Item(L"170102")));
    EXPECT_TRUE(isA<clsProtocolSend>(methods->Item(L"170103")));
    EXPECT_TRUE(isA<clsProtocolCopyToBuffer>(methods->Item(L"170104")));
    EXPECT_TRUE(isA<clsProtocolResetBuffer>(methods->Item(L"170105")));
    EXPECT_FALSE(methods->Contains(L"1"));
}

TEST(EthProtocolFather, MethodsCollectionHoldsConfigScanSendKeyedByMethodID) {
    ScopedHostContext context;
    auto father = tcpIpFamily();
    MethodCollectionPtr methods = father->itfFBFather_GetFBmethodsCollection();
    ASSERT_EQ(methods->Count(), 3);
    EXPECT_EQ(methods->KeyAt(1), L"170201");
    EXPECT_EQ(methods->KeyAt(2), L"170202");
    EXPECT_EQ(methods->KeyAt(3), L"170203");
    EXPECT_TRUE(isA<clsEthProtocolConfig>(methods->Item(1)));
    EXPECT_TRUE(isA<clsEthProtocolScan>(methods->Item(2)));
    EXPECT_TRUE(isA<clsEthProtocolSend>(methods->Item(3)));
    EXPECT_EQ(methods->Item(3)->itfFBMethod_Title(), L"SEND TCP");
}

TEST(ProtocolFather, HexFileDetailsAreTheRuntimeFilesOfTheFamilysVersion) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeFamily(170100, {0xA1, 0xB2, 0xC3, 0xD4}, {0x01});
    auto father = serialFamily();
    FBHexFileDetails details = father->itfFBFather_GetHexFileDetails(100);
    EXPECT_EQ(details.FBs, (Bytes{0xA1, 0xB2, 0xC3, 0xD4}));
    EXPECT_EQ(details.Jmp, (Bytes{0x01}));
    EXPECT_EQ(details.FBsSize, 4);
    EXPECT_EQ(details.MinBiosVersion, 7);
    EXPECT_EQ(details.RealTimeMemorySize, 512);
}

TEST(EthProtocolFather, HexFileDetailsOfAMissingVersionReportTheFamilysID) {
    ScopedHostContext context;
    TempRuntimeFolder folder;
    folder.writeFamily(170200);
    auto father = tcpIpFamily();
    FBHexFileDetails details = father->itfFBFather_GetHexFileDetails(300);
    EXPECT_EQ(details.FBs, (Bytes{0, 0}));
    ASSERT_EQ(context->Reports.size(), 1u);
    EXPECT_EQ(context->Reports[0].Text, L"Function block RT files not found: \r\nFatherID: 170200\r\nVersion: 300");
}

TEST(ProtocolFather, AdditionalDataLetChangesNothing) {
    ScopedHostContext context;
    auto father = serialFamily();
    father->itfFBFather_AdditionalData(Bytes{1, 2, 3});
    EXPECT_TRUE(father->itfFBFather_AdditionalData().empty());
}

TEST(ProtocolFather, PrintAndExecuteDoNothing) {
    ScopedHostContext context;
    auto father = tcpIpFamily();
    EXPECT_NO_THROW(father->itfFBFather_PrintFB(Variant(int32_t{3})));
    EXPECT_NO_THROW(father->itfFBFather_Execute(Variant(L"FB Method Not Allowed On BUSBAR")));
    EXPECT_EQ(father->itfFBFather_FatherID(), 170200);
}

TEST(ProtocolFather, FamilyIsCountedAsALiveObject) {
    ScopedHostContext context;
    const int64_t before = liveObjectCount();
    {
        clsProtocolFather father;
        EXPECT_EQ(liveObjectCount(), before + 1);
    }
    EXPECT_EQ(liveObjectCount(), before);
}

}  // namespace
}  // namespace qx
