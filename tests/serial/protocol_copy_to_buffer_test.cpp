#include "serial/protocol_copy_to_buffer.h"

#include <gtest/gtest.h>

#include "framework/runtime_catalogue.h"
#include "framework/shared_helpers.h"
#include "platform/basics/runtime_error.h"
#include "serial/copy_buffer_bench.h"

namespace qx {
namespace {

using test::runtimeErrorOf;
using testing_copy::CopyBufferBench;
using testing_copy::memoryChoice;

// --- The Srv object and its image ---

TEST(ProtocolCopyToBufferSrv, NewObjectHasNoFormatAndWritesTwoZeros) {
    clsProtocolCopyToBufferSrv srv;
    EXPECT_EQ(srv.CopyFormat(), 0);
    EXPECT_EQ(srv.BinaryData(), (Bytes{0x00, 0x00}));
}

TEST(ProtocolCopyToBufferSrv, ImageIsTheFormatThenAZero) {
    clsProtocolCopyToBufferSrv srv;
    srv.CopyFormat(1);
    EXPECT_EQ(srv.BinaryData(), (Bytes{0x01, 0x00}));
    srv.CopyFormat(2);
    EXPECT_EQ(srv.BinaryData(), (Bytes{0x02, 0x00}));
    srv.CopyFormat(4);
    EXPECT_EQ(srv.BinaryData(), (Bytes{0x04, 0x00}));
}

TEST(ProtocolCopyToBufferSrv, ImageOfFormatTwoIsReadAndWrittenBackTheSame) {
    clsProtocolCopyToBufferSrv srv;
    srv.BinaryData(Bytes{0x02, 0x00});
    EXPECT_EQ(srv.CopyFormat(), 2);
    EXPECT_EQ(srv.BinaryData(), (Bytes{0x02, 0x00}));
}

TEST(ProtocolCopyToBufferSrv, ReaderTakesByteZeroAloneWhateverTheLength) {
    clsProtocolCopyToBufferSrv one;
    one.BinaryData(Bytes{0x04});
    EXPECT_EQ(one.CopyFormat(), 4);
    EXPECT_EQ(one.BinaryData(), (Bytes{0x04, 0x00}));

    clsProtocolCopyToBufferSrv longer;
    longer.BinaryData(Bytes{0x01, 0x07, 0xFF, 0xFF});
    EXPECT_EQ(longer.CopyFormat(), 1);
    EXPECT_EQ(longer.BinaryData(), (Bytes{0x01, 0x00}));
}

TEST(ProtocolCopyToBufferSrv, SecondByteIsIgnoredByTheReader) {
    clsProtocolCopyToBufferSrv srv;
    srv.BinaryData(Bytes{0x02, 0x04});
    EXPECT_EQ(srv.CopyFormat(), 2);
    EXPECT_EQ(srv.BinaryData(), (Bytes{0x02, 0x00}));
}

TEST(ProtocolCopyToBufferSrv, FormatOutsideTheOfferedOnesIsKept) {
    clsProtocolCopyToBufferSrv srv;
    srv.BinaryData(Bytes{0x03, 0x00});
    EXPECT_EQ(srv.CopyFormat(), 3);
    EXPECT_EQ(srv.BinaryData(), (Bytes{0x03, 0x00}));
}

TEST(ProtocolCopyToBufferSrv, EmptyImageIsSubscriptOutOfRangeAndKeepsTheFormat) {
    clsProtocolCopyToBufferSrv srv;
    srv.CopyFormat(2);
    EXPECT_EQ(runtimeErrorOf([&] { srv.BinaryData(Bytes{}); }), err::SubscriptOutOfRange);
    EXPECT_EQ(srv.CopyFormat(), 2);
}

TEST(ProtocolCopyToBufferSrv, FormatThatDoesNotFitItsByteIsAnOverflow) {
    clsProtocolCopyToBufferSrv srv;
    srv.CopyFormat(256);
    EXPECT_EQ(runtimeErrorOf([&] { (void)srv.BinaryData(); }), err::Overflow);
    srv.CopyFormat(-1);
    EXPECT_EQ(runtimeErrorOf([&] { (void)srv.BinaryData(); }), err::Overflow);
}

TEST(ProtocolCopyToBufferSrv, EditChangesTheFormatOnOkOnly) {
    CopyBufferBench bench;
    bench.reopen(Bytes{0x02, 0x00});
    clsProtocolCopyToBufferSrv srv;
    srv.CopyFormat(2);
    bench.onDialog([](frmProtocolCopyBytes& dialog) {
        dialog.cbCopyBytes.UserSelect(2);
        dialog.cmdCancel.UserClick();
    });
    EXPECT_FALSE(srv.Edit(*bench.copy, bench.instances));
    EXPECT_EQ(srv.CopyFormat(), 2);

    bench.onDialog([](frmProtocolCopyBytes& dialog) {
        dialog.cbCopyBytes.UserSelect(2);
        dialog.cmdOk.UserClick();
    });
    EXPECT_TRUE(srv.Edit(*bench.copy, bench.instances));
    EXPECT_EQ(srv.CopyFormat(), 4);
}

TEST(ProtocolCopyToBufferSrv, EditGivesTheDialogTheDestinationAndItsLabel) {
    CopyBufferBench bench;
    bench.reopen(Bytes{0x01, 0x00}, 16, 77);
    clsProtocolCopyToBufferSrv srv;
    std::wstring caption, operand;
    bench.onDialog([&](frmProtocolCopyBytes& dialog) {
        caption = dialog.lbOpCaption.Caption();
        operand = dialog.lbOperand.Caption();
    });
    srv.Edit(*bench.copy, bench.instances);
    EXPECT_EQ(caption, L"Copy to : ");
    EXPECT_EQ(operand, GetOperandDisplayText(*bench.operand(1)));
    EXPECT_NE(operand.find(L"77"), std::wstring::npos);
}

TEST(ProtocolCopyToBufferSrv, EditWithoutADestinationIsAnError) {
    CopyBufferBench bench;
    bench.copy->itfFBMethod_OutOperands(std::make_shared<OperandCollection>());
    clsProtocolCopyToBufferSrv srv;
    EXPECT_EQ(runtimeErrorOf([&] { srv.Edit(*bench.copy, bench.instances); }), err::InvalidProcedureCall);
    EXPECT_EQ(bench.driver.PendingDialogs(), 0u);
}

// --- The operation's face ---

TEST(ProtocolCopyToBuffer, InitPropertiesFillsTheCopyBufferFields) {
    CopyBufferBench bench;
    auto& copy = *bench.copy;
    EXPECT_EQ(copy.MethodNumber(), 4);
    EXPECT_EQ(copy.itfFBMethod_Title(), L"COPY BUFFER");
    EXPECT_EQ(copy.itfFBMethod_Description(),
              L"Copies whatever information is in the receive buffer at the time the operation is called.");
    EXPECT_EQ(copy.itfFBMethod_MethodID(), 170104);
    EXPECT_EQ(copy.itfFBMethod_MethodName(), GetText(219));
    EXPECT_EQ(copy.itfFBMethod_VisbleInCout(), 0);
    EXPECT_EQ(copy.itfFBMethod_VisbleOutCout(), 1);
    EXPECT_EQ(copy.itfFBMethod_HexFileVersion(), 100);
    EXPECT_TRUE(copy.itfFBMethod_IsEnableInEnableOut());
    EXPECT_FALSE(copy.itfFBMethod_IsNew());
    EXPECT_FALSE(copy.itfFBMethod_IsCanceled());
    EXPECT_EQ(copy.itfFBMethod_FatherInstanceNum(), 0);
    EXPECT_TRUE(copy.itfFBMethod_BinaryOperands().empty());
    EXPECT_EQ(bench.instances->AttachedMethods, std::vector<int32_t>{170104});
}

TEST(ProtocolCopyToBuffer, DummyOperandIsOneNewMiDestination) {
    CopyBufferBench bench;
    bench.copy->itfFBMethod_CreateDummyOperands();
    auto out = bench.copy->itfFBMethod_OutOperands();
    ASSERT_EQ(out->Count(), 1);
    EXPECT_EQ(out->KeyAt(1), L"1");
    const clsOperand& destination = *out->Item(1);
    EXPECT_TRUE(destination.IsNew());
    EXPECT_EQ(destination.OperandMode(), 1);
    EXPECT_EQ(destination.OperandType(), 3);
    EXPECT_EQ(destination.OperandDescription(), GetText(29));
    EXPECT_EQ(bench.copy->itfFBMethod_InOperands()->Count(), 0);
    EXPECT_EQ(bench.copy->itfFBMethod_VisbleInOperands()->Count(), 0);
    ASSERT_EQ(bench.copy->itfFBMethod_VisbleOutOperands()->Count(), 1);
    EXPECT_EQ(bench.copy->itfFBMethod_VisbleOutOperands()->Item(1), out->Item(1));
    EXPECT_TRUE(bench.copy->itfFBMethod_IsNew());
}

TEST(ProtocolCopyToBuffer, BuildOperandsAllowsAnMiAndTheLongRegisters) {
    CopyBufferBench bench;
    bench.makeNew();
    const clsOperand& destination = *bench.operand(1);
    EXPECT_EQ(destination.AllowedTypes(), (std::vector<AllowedType>{{1, 3, true}, {1, 5, true}, {1, 16, true}}));
    EXPECT_EQ(destination.OperandCaption(), GetText(29));
    EXPECT_EQ(destination.OperandTitle(), GetText(29));
    EXPECT_EQ(bench.copy->itfFBMethod_VisbleInOperands()->Count(), 0);
    ASSERT_EQ(bench.copy->itfFBMethod_VisbleOutOperands()->Count(), 1);
    EXPECT_EQ(bench.copy->itfFBMethod_VisbleOutOperands()->Item(1), bench.operand(1));
}

TEST(ProtocolCopyToBuffer, BuildOperandsAddsTheExtendedTwinsWhenEnabled) {
    CopyBufferBench bench;
    bench.context->ExtendedOperands = true;
    bench.makeNew();
    EXPECT_EQ(bench.operand(1)->AllowedTypes(),
              (std::vector<AllowedType>{
                  {1, 3, true}, {1, 5, true}, {1, 16, true}, {1, 65, true}, {1, 66, true}, {1, 67, true}}));
}

TEST(ProtocolCopyToBuffer, BuildOperandsBringsTheConstraintsBackAfterAReopen) {
    CopyBufferBench bench;
    bench.reopen(Bytes{0x02, 0x00}, 16, 9);
    const clsOperand& destination = *bench.operand(1);
    EXPECT_EQ(destination.AllowedTypes(), (std::vector<AllowedType>{{1, 3, true}, {1, 5, true}, {1, 16, true}}));
    EXPECT_EQ(destination.OperandCaption(), GetText(29));
    EXPECT_EQ(destination.OperandTitle(), GetText(29));
    EXPECT_EQ(destination.OperandType(), 16);
    ASSERT_EQ(bench.copy->itfFBMethod_VisbleOutOperands()->Count(), 1);
    EXPECT_FALSE(bench.copy->itfFBMethod_IsNew());
}

TEST(ProtocolCopyToBuffer, BusBarQuestionGetsNoAnswer) {
    CopyBufferBench bench;
    VariantArray params{Variant(L"FB Method Not Allowed On BUSBAR"), Variant(false)};
    bench.copy->itfFBMethod_Execute(params);
    EXPECT_EQ(params[1], Variant(false));
}

TEST(ProtocolCopyToBuffer, ReplaceFindOnlyOperandLeavesTheImage) {
    CopyBufferBench bench;
    bench.reopen(Bytes{0x02, 0x00});
    bench.replace(0, 5, 40, 41);
    EXPECT_EQ(bench.image(), (Bytes{0x02, 0x00}));
    EXPECT_EQ(bench.operand(1)->OperandAddress(), 40);
}

TEST(ProtocolCopyToBuffer, BinaryOperandsLetIsStoredAsGiven) {
    CopyBufferBench bench;
    bench.copy->itfFBMethod_BinaryOperands(Bytes{0x04, 0x00, 0x01});
    EXPECT_EQ(bench.image(), (Bytes{0x04, 0x00, 0x01}));
}

// --- EditOperands ---

TEST(ProtocolCopyToBufferEdit, NoConfigInstanceShowsMessage140WithoutADialogAndCancels) {
    CopyBufferBench bench;
    bench.makeNew();
    bench.onDialog([](frmProtocolCopyBytes& dialog) { dialog.cmdOk.UserClick(); });
    bench.copy->itfFBMethod_EditOperands();
    EXPECT_EQ(bench.messageNumbers(), std::vector<int32_t>{140});
    EXPECT_EQ(bench.driver.PendingDialogs(), 1u);
    EXPECT_TRUE(bench.copy->itfFBMethod_IsCanceled());
    EXPECT_TRUE(bench.copy->itfFBMethod_IsNew());
    EXPECT_TRUE(bench.image().empty());
    EXPECT_EQ(bench.copy->itfFBMethod_FatherInstanceNum(), 0);
    EXPECT_EQ(bench.context->BeepCount, 0);
}

TEST(ProtocolCopyToBufferEdit, NoConfigInstanceLeavesAStoredImageAsItWas) {
    CopyBufferBench bench;
    int32_t number = bench.reopen(Bytes{0x02, 0x00});
    bench.instances->DeleteInstance(number);
    bench.onDialog([](frmProtocolCopyBytes& dialog) { dialog.cmdOk.UserClick(); });
    bench.copy->itfFBMethod_EditOperands();
    EXPECT_EQ(bench.messageNumbers(), std::vector<int32_t>{140});
    EXPECT_EQ(bench.driver.PendingDialogs(), 1u);
    EXPECT_TRUE(bench.copy->itfFBMethod_IsCanceled());
    EXPECT_FALSE(bench.copy->itfFBMethod_IsNew());
    EXPECT_EQ(bench.image(), (Bytes{0x02, 0x00}));
}

TEST(ProtocolCopyToBufferEdit, OkOnANewOperationStoresTheImageAndClearsIsNew) {
    CopyBufferBench bench;
    int32_t config = bench.instances->Seed(L"Line1");
    bench.makeNew();
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        bench.driver.QueuePick(memoryChoice(5, 40, L"Target"));
        dialog.cmdOperand.UserClick();
        dialog.cbCopyBytes.UserSelect(2);
        dialog.cmdOk.UserClick();
    });
    EXPECT_TRUE(bench.accepted());
    EXPECT_FALSE(bench.copy->itfFBMethod_IsNew());
    EXPECT_EQ(bench.image(), (Bytes{0x04, 0x00}));
    EXPECT_EQ(bench.copy->itfFBMethod_FatherInstanceNum(), config);
    EXPECT_EQ(bench.copy->itfFBMethod_FatherInstanceName(), L"Line1");
    EXPECT_EQ(bench.operand(1)->OperandType(), 5);
    EXPECT_EQ(bench.operand(1)->OperandAddress(), 40);
    EXPECT_TRUE(bench.context->Messages.empty());
}

TEST(ProtocolCopyToBufferEdit, OkWithoutAChangeWritesTheStoredFormatBack) {
    CopyBufferBench bench;
    bench.reopen(Bytes{0x02, 0x00});
    bench.edit([](frmProtocolCopyBytes& dialog) { dialog.cmdOk.UserClick(); });
    EXPECT_TRUE(bench.accepted());
    EXPECT_EQ(bench.image(), (Bytes{0x02, 0x00}));
}

TEST(ProtocolCopyToBufferEdit, StoredImageIsReadByByteZeroAlone) {
    CopyBufferBench bench;
    bench.reopen(Bytes{0x04, 0x09, 0x09});
    int32_t shown = -1;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        shown = dialog.cbCopyBytes.ListIndex();
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(shown, 2);
    EXPECT_EQ(bench.image(), (Bytes{0x04, 0x00}));
}

TEST(ProtocolCopyToBufferEdit, CancelKeepsBinaryOperands) {
    CopyBufferBench bench;
    bench.reopen(Bytes{0x02, 0x00});
    bench.edit([](frmProtocolCopyBytes& dialog) {
        dialog.cbCopyBytes.UserSelect(0);
        dialog.cmdCancel.UserClick();
    });
    EXPECT_TRUE(bench.copy->itfFBMethod_IsCanceled());
    EXPECT_FALSE(bench.copy->itfFBMethod_IsNew());
    EXPECT_EQ(bench.image(), (Bytes{0x02, 0x00}));
}

TEST(ProtocolCopyToBufferEdit, CanceledNewOperationStaysNewWithoutAnImage) {
    CopyBufferBench bench;
    bench.instances->Seed(L"Line1");
    bench.makeNew();
    bench.edit([](frmProtocolCopyBytes& dialog) {
        dialog.cbCopyBytes.UserSelect(1);
        dialog.cmdCancel.UserClick();
    });
    EXPECT_TRUE(bench.copy->itfFBMethod_IsCanceled());
    EXPECT_TRUE(bench.copy->itfFBMethod_IsNew());
    EXPECT_TRUE(bench.image().empty());
}

TEST(ProtocolCopyToBufferEdit, SecondEditAfterACanceledNewOneStartsWithoutAFormat) {
    CopyBufferBench bench;
    bench.instances->Seed(L"Line1");
    bench.makeNew();
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        bench.driver.QueuePick(memoryChoice(5, 40, L"Target"));
        dialog.cmdOperand.UserClick();
        dialog.cbCopyBytes.UserSelect(1);
        dialog.cmdCancel.UserClick();
    });
    int32_t shown = 0;
    bool okEnabled = true;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        shown = dialog.cbCopyBytes.ListIndex();
        okEnabled = dialog.cmdOk.Enabled();
    });
    EXPECT_EQ(shown, -1);
    EXPECT_FALSE(okEnabled);
    EXPECT_TRUE(bench.copy->itfFBMethod_IsNew());
}

TEST(ProtocolCopyToBufferEdit, OperandsForFindOnlyIsAFreshEmptyCollection) {
    CopyBufferBench bench;
    bench.reopen(Bytes{0x02, 0x00});
    OperandCollectionPtr before = bench.copy->itfFBMethod_OperandsForFindOnly();
    bench.edit([](frmProtocolCopyBytes& dialog) { dialog.cmdOk.UserClick(); });
    OperandCollectionPtr after = bench.copy->itfFBMethod_OperandsForFindOnly();
    ASSERT_NE(after, nullptr);
    EXPECT_NE(after, before);
    EXPECT_EQ(after->Count(), 0);
}

TEST(ProtocolCopyToBufferEdit, StoredOperationWithAnEmptyImageIsSubscriptOutOfRangeBeforeAnyDialog) {
    CopyBufferBench bench;
    bench.reopen(Bytes{});
    bench.onDialog([](frmProtocolCopyBytes& dialog) { dialog.cmdOk.UserClick(); });
    EXPECT_EQ(runtimeErrorOf([&] { bench.copy->itfFBMethod_EditOperands(); }), err::SubscriptOutOfRange);
    EXPECT_EQ(bench.driver.PendingDialogs(), 1u);
    EXPECT_TRUE(bench.image().empty());
}

TEST(ProtocolCopyToBufferEdit, EditBeforeInitIsAnObjectNotSetError) {
    ScopedHostContext context;
    clsProtocolCopyToBuffer copy;
    testing_config::SerialFatherStub father;
    copy.itfFBMethod_InitProperties(father);
    copy.itfFBMethod_CreateDummyOperands();
    EXPECT_EQ(runtimeErrorOf([&] { copy.itfFBMethod_EditOperands(); }), err::ObjectNotSet);
    EXPECT_TRUE(context->Messages.empty());
}

}  // namespace
}  // namespace qx
