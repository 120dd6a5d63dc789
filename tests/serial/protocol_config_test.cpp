#include "serial/protocol_config.h"

#include <gtest/gtest.h>

#include "framework/runtime_catalogue.h"
#include "platform/basics/runtime_error.h"
#include "serial/config_bench.h"

namespace qx {
namespace {

using testing_config::ConfigBench;

int32_t errorNumberOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const RuntimeError& e) {
        return e.Number();
    }
    return 0;
}

// --- The Srv object and its image ---

TEST(ProtocolConfigSrv, NewObjectWritesPortOneAndAZero) {
    clsProtocolConfigSrv srv;
    EXPECT_EQ(srv.ComPort(), 1);
    EXPECT_EQ(srv.BinaryData(), (Bytes{0x01, 0x00}));
}

TEST(ProtocolConfigSrv, ImageOfPortTwoIsWrittenBackTheSame) {
    clsProtocolConfigSrv srv;
    srv.BinaryData(Bytes{0x02, 0x00});
    EXPECT_EQ(srv.ComPort(), 2);
    EXPECT_EQ(srv.BinaryData(), (Bytes{0x02, 0x00}));
}

TEST(ProtocolConfigSrv, ImageIsAlwaysTwoBytes) {
    clsProtocolConfigSrv srv;
    for (int32_t port : {1, 2, 3, 255}) {
        srv.ComPort(port);
        EXPECT_EQ(srv.BinaryData(), (Bytes{static_cast<uint8_t>(port), 0x00}));
    }
}

TEST(ProtocolConfigSrv, ReaderTakesByteZeroAloneWhateverTheLength) {
    clsProtocolConfigSrv one;
    one.BinaryData(Bytes{0x03});
    EXPECT_EQ(one.ComPort(), 3);
    clsProtocolConfigSrv longer;
    longer.BinaryData(Bytes{0x02, 0x07, 0xFF, 0xFF});
    EXPECT_EQ(longer.ComPort(), 2);
    EXPECT_EQ(longer.BinaryData(), (Bytes{0x02, 0x00}));
}

TEST(ProtocolConfigSrv, EmptyImageIsSubscriptOutOfRangeAndKeepsThePort) {
    clsProtocolConfigSrv srv;
    srv.ComPort(3);
    EXPECT_EQ(errorNumberOf([&] { srv.BinaryData(Bytes{}); }), 9);
    EXPECT_EQ(srv.ComPort(), 3);
}

TEST(ProtocolConfigSrv, UnknownPortByteIsKept) {
    clsProtocolConfigSrv srv;
    srv.BinaryData(Bytes{0x09, 0x00});
    EXPECT_EQ(srv.ComPort(), 9);
    EXPECT_EQ(srv.BinaryData(), (Bytes{0x09, 0x00}));
}

TEST(ProtocolConfigSrv, PortThatDoesNotFitItsByteIsAnOverflow) {
    clsProtocolConfigSrv srv;
    srv.ComPort(256);
    EXPECT_EQ(errorNumberOf([&] { (void)srv.BinaryData(); }), 6);
    srv.ComPort(-1);
    EXPECT_EQ(errorNumberOf([&] { (void)srv.BinaryData(); }), 6);
}

// --- The operation's face ---

TEST(ProtocolConfig, InitPropertiesFillsTheConfigFields) {
    ConfigBench bench;
    auto& config = *bench.config;
    EXPECT_EQ(config.MethodNumber(), 1);
    EXPECT_EQ(config.itfFBMethod_Title(), L"CONFIG");
    EXPECT_EQ(config.itfFBMethod_Description(),
              L"Each operation is linked to a Configuration, which determines which COM port is used for Send and "
              L"Scan operations");
    EXPECT_EQ(config.itfFBMethod_MethodID(), 170101);
    EXPECT_EQ(config.itfFBMethod_MethodName(), GetText(203));
    EXPECT_EQ(config.itfFBMethod_VisbleInCout(), 0);
    EXPECT_EQ(config.itfFBMethod_VisbleOutCout(), 2);
    EXPECT_EQ(config.itfFBMethod_HexFileVersion(), 100);
    EXPECT_EQ(config.itfFBMethod_FatherTitle(), L"PROTOCOL");
    EXPECT_EQ(config.itfFBMethod_FatherName(), L"Protocol");
    EXPECT_EQ(config.itfFBMethod_FatherInstanceType(), 2);
    EXPECT_TRUE(config.itfFBMethod_IsEnableInEnableOut());
    EXPECT_FALSE(config.itfFBMethod_IsNew());
    EXPECT_TRUE(config.itfFBMethod_BinaryOperands().empty());
    EXPECT_EQ(bench.instances->AttachedMethods, std::vector<int32_t>{170101});
}

TEST(ProtocolConfig, DummyOperandsAreAFlagAndAnMi) {
    ConfigBench bench;
    bench.makeNew();
    auto out = bench.config->itfFBMethod_OutOperands();
    ASSERT_EQ(out->Count(), 2);
    EXPECT_EQ(out->KeyAt(1), L"1");
    EXPECT_EQ(out->KeyAt(2), L"2");
    EXPECT_EQ(out->Item(1)->OperandType(), 1);
    EXPECT_EQ(out->Item(2)->OperandType(), 3);
    EXPECT_TRUE(out->Item(1)->IsNew());
    EXPECT_TRUE(out->Item(2)->IsNew());
    EXPECT_EQ(out->Item(1)->OperandDescription(), GetText(24));
    EXPECT_EQ(out->Item(2)->OperandDescription(), GetText(34));
    EXPECT_EQ(bench.config->itfFBMethod_InOperands()->Count(), 0);
    EXPECT_EQ(bench.config->itfFBMethod_VisbleOutOperands()->Count(), 2);
    EXPECT_TRUE(bench.config->itfFBMethod_IsNew());
}

TEST(ProtocolConfig, BuildOperandsAllowsTheBaseTypesOnly) {
    ConfigBench bench;
    bench.makeNew();
    EXPECT_EQ(bench.operand(1)->AllowedTypes(), (std::vector<AllowedType>{{1, 1, true}}));
    EXPECT_EQ(bench.operand(2)->AllowedTypes(), (std::vector<AllowedType>{{1, 3, true}}));
    EXPECT_EQ(bench.operand(1)->OperandCaption(), GetText(24));
    EXPECT_EQ(bench.operand(2)->OperandTitle(), GetText(34));
}

TEST(ProtocolConfig, BuildOperandsAddsTheExtendedTwinsWhenEnabled) {
    ConfigBench bench;
    bench.context->ExtendedOperands = true;
    bench.makeNew();
    EXPECT_EQ(bench.operand(1)->AllowedTypes(), (std::vector<AllowedType>{{1, 1, true}, {1, 64, true}}));
    EXPECT_EQ(bench.operand(2)->AllowedTypes(), (std::vector<AllowedType>{{1, 3, true}, {1, 65, true}}));
}

TEST(ProtocolConfig, BusBarQuestionIsAnsweredForUpperBoundOne) {
    ConfigBench bench;
    VariantArray params{Variant(L"FB Method Not Allowed On BUSBAR"), Variant(false)};
    bench.config->itfFBMethod_Execute(params);
    EXPECT_EQ(params[1], Variant(true));
}

TEST(ProtocolConfig, BusBarQuestionWithAnotherUpperBoundGetsNoAnswer) {
    ConfigBench bench;
    VariantArray three{Variant(L"FB Method Not Allowed On BUSBAR"), Variant(false), Variant(false)};
    bench.config->itfFBMethod_Execute(three);
    EXPECT_EQ(three[1], Variant(false));
    EXPECT_EQ(three[2], Variant(false));
    VariantArray alone{Variant(L"FB Method Not Allowed On BUSBAR")};
    bench.config->itfFBMethod_Execute(alone);
    EXPECT_EQ(alone.size(), 1u);
}

TEST(ProtocolConfig, OtherCommandsDoNothing) {
    ConfigBench bench;
    bench.reopen(L"Line1", Bytes{2, 0});
    VariantArray params{Variant(L"ReplaceFindOnlyOperand"), Variant(0), Variant(1), Variant(10), Variant(11)};
    bench.config->itfFBMethod_Execute(params);
    EXPECT_EQ(bench.config->itfFBMethod_BinaryOperands(), (Bytes{2, 0}));
    EXPECT_EQ(params[4], Variant(11));
}

TEST(ProtocolConfig, AdditionalDataLetChangesNothing) {
    ConfigBench bench;
    bench.reopen(L"Line1", Bytes{2, 0});
    bench.config->itfFBMethod_AdditionalData(Bytes{1, 2, 3});
    EXPECT_TRUE(bench.config->itfFBMethod_AdditionalData().empty());
    EXPECT_TRUE(bench.config->itfFBMethod_InstanceData().empty());
    EXPECT_EQ(bench.config->itfFBMethod_BinaryOperands(), (Bytes{2, 0}));
}

// --- EditOperands ---

TEST(ProtocolConfigEdit, NewConfigAddsAnInstanceBeforeTheDialog) {
    ConfigBench bench;
    bench.makeNew();
    std::wstring shownName;
    int32_t numberDuringEdit = 0;
    bench.onDialog([&](frmProtocolConfig& dialog) {
        shownName = dialog.txtInstanceName.Text();
        numberDuringEdit = bench.config->itfFBMethod_FatherInstanceNum();
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_EQ(bench.instances->Count(), 1u);
    EXPECT_EQ(shownName, L"Config1");
    EXPECT_EQ(numberDuringEdit, 1);
}

TEST(ProtocolConfigEdit, OkOnANewConfigStoresTheImageAndTheName) {
    ConfigBench bench;
    bench.makeNew();
    bench.driver.QueuePick(testing_config::memoryChoice(1, 100, L"Busy"));
    bench.driver.QueuePick(testing_config::memoryChoice(3, 200, L"State"));
    bench.onDialog([](frmProtocolConfig& dialog) {
        dialog.txtInstanceName.UserType(L"Printer");
        dialog.cbComport.UserSelect(2);
        dialog.cmdOk.UserClick();
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_FALSE(bench.config->itfFBMethod_IsCanceled());
    EXPECT_FALSE(bench.config->itfFBMethod_IsNew());
    EXPECT_EQ(bench.config->itfFBMethod_BinaryOperands(), (Bytes{0x03, 0x00}));
    std::wstring stored;
    bench.instances->GetInstanceName(1, stored);
    EXPECT_EQ(stored, L"Printer");
    EXPECT_EQ(bench.config->itfFBMethod_FatherInstanceName(), L"Printer");
    EXPECT_EQ(bench.operand(1)->OperandAddress(), 100);
    EXPECT_EQ(bench.operand(2)->OperandAddress(), 200);
}

TEST(ProtocolConfigEdit, OkStoresTheNumberTheHostGaveBack) {
    ConfigBench bench;
    bench.reopen(L"Line1", Bytes{1, 0});
    bench.instances->RenumberOnUpdate = 7;
    bench.onDialog([](frmProtocolConfig& dialog) { dialog.cmdOk.UserClick(); });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_EQ(bench.config->itfFBMethod_FatherInstanceNum(), 7);
    EXPECT_EQ(bench.config->itfFBMethod_FatherInstanceName(), L"Line1");
    EXPECT_TRUE(bench.instances->Has(7));
    EXPECT_FALSE(bench.instances->Has(1));
}

TEST(ProtocolConfigEdit, CanceledNewConfigStaysNewAndCanceledAndLeavesItsInstance) {
    ConfigBench bench;
    bench.makeNew();
    bench.onDialog([](frmProtocolConfig& dialog) { dialog.cmdCancel.UserClick(); });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_TRUE(bench.config->itfFBMethod_IsNew());
    EXPECT_TRUE(bench.config->itfFBMethod_IsCanceled());
    EXPECT_TRUE(bench.config->itfFBMethod_BinaryOperands().empty());
    // Removing it is the host's business.
    EXPECT_EQ(bench.instances->Count(), 1u);
    EXPECT_TRUE(bench.instances->Deleted.empty());
}

TEST(ProtocolConfigEdit, SecondEditAfterACanceledNewOneStartsFromAnEmptySrvObject) {
    ConfigBench bench;
    bench.makeNew();
    bench.onDialog([](frmProtocolConfig& dialog) {
        dialog.cbComport.UserSelect(2);
        dialog.txtInstanceName.UserType(L"Changed");
        dialog.cmdCancel.UserClick();
    });
    bench.config->itfFBMethod_EditOperands();
    std::wstring port, name;
    bench.onDialog([&](frmProtocolConfig& dialog) {
        port = dialog.cbComport.Text();
        name = dialog.txtInstanceName.Text();
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_EQ(port, L"COM1");
    // Still new, so it asks the host for another instance.
    EXPECT_EQ(name, L"Config2");
    EXPECT_EQ(bench.instances->Count(), 2u);
    EXPECT_TRUE(bench.config->itfFBMethod_IsNew());
}

TEST(ProtocolConfigEdit, ExistingConfigShowsItsStoredNameAndPort) {
    ConfigBench bench;
    bench.reopen(L"Line1", Bytes{0x02, 0x00});
    std::wstring port, name;
    bench.onDialog([&](frmProtocolConfig& dialog) {
        port = dialog.cbComport.Text();
        name = dialog.txtInstanceName.Text();
        dialog.cmdOk.UserClick();
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_EQ(port, L"COM2");
    EXPECT_EQ(name, L"Line1");
    EXPECT_EQ(bench.config->itfFBMethod_BinaryOperands(), (Bytes{0x02, 0x00}));
    EXPECT_EQ(bench.instances->Count(), 1u);
}

TEST(ProtocolConfigEdit, CancelOnAnExistingConfigKeepsTheImageButNewOperandLinks) {
    ConfigBench bench;
    int32_t number = bench.reopen(L"Line1", Bytes{0x02, 0x00});
    bench.driver.QueuePick(testing_config::memoryChoice(1, 77, L"Other"));
    bench.onDialog([](frmProtocolConfig& dialog) {
        dialog.cbComport.UserSelect(0);
        dialog.txtInstanceName.UserType(L"Renamed");
        dialog.cmdFailLink.UserClick();
        dialog.cmdCancel.UserClick();
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_TRUE(bench.config->itfFBMethod_IsCanceled());
    EXPECT_FALSE(bench.config->itfFBMethod_IsNew());
    EXPECT_EQ(bench.config->itfFBMethod_BinaryOperands(), (Bytes{0x02, 0x00}));
    std::wstring stored;
    bench.instances->GetInstanceName(number, stored);
    EXPECT_EQ(stored, L"Line1");
    EXPECT_EQ(bench.operand(1)->OperandAddress(), 77);
    EXPECT_EQ(bench.operand(1)->OperandDescription(), L"Other");
}

TEST(ProtocolConfigEdit, UnscriptedDialogEndsAsCanceled) {
    ConfigBench bench;
    bench.reopen(L"Line1", Bytes{0x03, 0x00});
    bench.config->itfFBMethod_EditOperands();
    EXPECT_TRUE(bench.config->itfFBMethod_IsCanceled());
    EXPECT_EQ(bench.config->itfFBMethod_BinaryOperands(), (Bytes{0x03, 0x00}));
}

TEST(ProtocolConfigEdit, EveryEditStartsAFreshFindOnlyCollection) {
    ConfigBench bench;
    bench.reopen(L"Line1", Bytes{0x01, 0x00});
    auto before = bench.config->itfFBMethod_OperandsForFindOnly();
    before->Add(newOperand());
    bench.config->itfFBMethod_EditOperands();
    auto after = bench.config->itfFBMethod_OperandsForFindOnly();
    EXPECT_NE(after, before);
    EXPECT_EQ(after->Count(), 0);
}

TEST(ProtocolConfigEdit, EmptyStoredImageOfAnExistingConfigIsSubscriptOutOfRange) {
    ConfigBench bench;
    bench.reopen(L"Line1", Bytes{});
    EXPECT_EQ(errorNumberOf([&] { bench.config->itfFBMethod_EditOperands(); }), 9);
    EXPECT_EQ(bench.driver.PendingDialogs(), 0u);
}

}  // namespace
}  // namespace qx
