// The TCP/IP Send operation as the host sees it: the serial Send again, but
// with one flag operand on the block. "ReplaceFindOnlyOperand" rewrites the
// image, whose format is the serial one, and never the block's operand.
#include "tcpip/eth_protocol_send.h"

#include <gtest/gtest.h>

#include <memory>

#include "framework/runtime_catalogue.h"
#include "support/image_parts.h"
#include "support/operation_bench.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

using test::concat;
using test::linkedOperand;
using test::runtimeErrorOf;
using test::zeros;

struct EthSendBench : test::OperationBench<clsEthProtocolSend> {
    std::shared_ptr<clsEthProtocolSend>& send = operation;

    EthSendBench() : OperationBench(170200, L"Socket1") {}

    // A stored TCP/IP Send whose flag is linked to bit 5.
    OperandCollectionPtr reopen(const Bytes& image) {
        return reopenWith(test::storedOperands({linkedOperand(1, 5)}), image);
    }
};

// Two messages. The message number is linked to MI 5; the copy after ETX
// (three bytes) goes to MI 6 and sets bit 5. Message 1 is a numeric field
// linked to MI 5, message 2 the text "OK" and a numeric field linked to MI 7.
const Bytes kTwoMessages = concat({
    {3, 0, 5, 0, 0, 0, 0, 0},             // 0: message number, MI 5
    {3, 0, 6, 0, 0, 0, 0, 0},             // 8: copy destination, MI 6
    {1, 0, 5, 0, 0, 0, 0, 0},             // 16: copy done, bit 5
    {0, 0, 0, 0},                         // 24: version, end of message, masks
    zeros(8),                             // 28: start and end characters
    {0, 0, 1, 0},                         // 36: lengths, always 1
    test::kDefaultChecksum,               // 40: end-of-message checksum
    {3, 0, 2, 0},                         // 54: copy count 3, N = 2
    {62, 0, 84, 0},                       // 58: message 1 at 62, message 2 at 84
    {1, 0, 0, 0},                         // 62: one segment
    test::sendNumericEntry(5),            // 66: numeric, MI 5
    {2, 0, 0, 0},                         // 84: two segments
    concat({{0, 0, 124, 0}, zeros(14)}),  // 88: fixed text at 124
    test::sendNumericEntry(7),            // 106: numeric, MI 7
    {0, 0, 2, 0, 'O', 'K'},               // 124: "OK"
    {0, 0},                               // 130: the spare byte and the even end
});

constexpr size_t kMessageNumberAddress = 2;
constexpr size_t kCopyDestinationAddress = 10;
constexpr size_t kCopyDoneAddress = 18;
constexpr size_t kFirstFieldAddress = 66 + 10;

TEST(EthProtocolSendImage, HandWrittenTwoMessageImageHasTheLengthOfItsLayout) { EXPECT_EQ(kTwoMessages.size(), 132u); }

// --- Identity and operands ---

TEST(EthProtocolSend, InitPropertiesGivesTheTcpIpSendIdentity) {
    EthSendBench bench;
    auto& send = *bench.send;
    EXPECT_EQ(send.MethodNumber(), 3);
    EXPECT_EQ(send.itfFBMethod_Title(), L"SEND TCP");
    EXPECT_EQ(send.itfFBMethod_Description(),
              L"Sends messages contained within the Send operation via the Ethernet port in the linked "
              L"Configuration");
    EXPECT_EQ(send.itfFBMethod_MethodID(), 170203);
    EXPECT_EQ(send.itfFBMethod_MethodName(), GetText(608));
    EXPECT_EQ(send.itfFBMethod_VisbleInCout(), 0);
    EXPECT_EQ(send.itfFBMethod_VisbleOutCout(), 1);
    EXPECT_EQ(send.itfFBMethod_HexFileVersion(), 100);
    EXPECT_TRUE(send.itfFBMethod_IsEnableInEnableOut());
    EXPECT_FALSE(send.itfFBMethod_IsNew());
    EXPECT_TRUE(send.itfFBMethod_BinaryOperands().empty());
    EXPECT_EQ(bench.instances->AttachedMethods, std::vector<int32_t>{170203});
}

TEST(EthProtocolSend, DummyOperandIsOneVisibleFlag) {
    EthSendBench bench;
    bench.makeNew();
    EXPECT_TRUE(bench.send->itfFBMethod_IsNew());
    EXPECT_EQ(bench.send->itfFBMethod_InOperands()->Count(), 0);
    EXPECT_EQ(bench.send->itfFBMethod_VisbleInOperands()->Count(), 0);
    auto out = bench.send->itfFBMethod_OutOperands();
    ASSERT_EQ(out->Count(), 1);
    EXPECT_EQ(out->KeyAt(1), L"1");
    EXPECT_EQ(out->Item(1)->OperandType(), 1);
    EXPECT_EQ(out->Item(1)->OperandMode(), 1);
    EXPECT_TRUE(out->Item(1)->IsNew());
    EXPECT_EQ(out->Item(1)->OperandDescription(), GetText(597));
    auto visible = bench.send->itfFBMethod_VisbleOutOperands();
    ASSERT_EQ(visible->Count(), 1);
    EXPECT_EQ(visible->Item(1), out->Item(1));
}

TEST(EthProtocolSend, BuildOperandsAllowsABitAndSetsTheCaption) {
    EthSendBench bench;
    bench.makeNew();
    auto flag = bench.send->itfFBMethod_OutOperands()->Item(1);
    EXPECT_EQ(flag->AllowedTypes(), (std::vector<AllowedType>{{1, 1, true}}));
    EXPECT_EQ(flag->OperandCaption(), GetText(597));
    EXPECT_EQ(flag->OperandTitle(), GetText(597));
}

TEST(EthProtocolSend, BuildOperandsAddsTheExtendedBitWhenEnabled) {
    EthSendBench bench;
    bench.context->ExtendedOperands = true;
    bench.makeNew();
    EXPECT_EQ(bench.send->itfFBMethod_OutOperands()->Item(1)->AllowedTypes(),
              (std::vector<AllowedType>{{1, 1, true}, {1, 64, true}}));
}

TEST(EthProtocolSend, ReopenShowsTheHostsFlag) {
    EthSendBench bench;
    auto out = bench.reopen(kTwoMessages);
    EXPECT_FALSE(bench.send->itfFBMethod_IsNew());
    auto visible = bench.send->itfFBMethod_VisbleOutOperands();
    ASSERT_EQ(visible->Count(), 1);
    EXPECT_EQ(visible->Item(1), out->Item(1));
    EXPECT_EQ(out->Item(1)->OperandCaption(), GetText(597));
    EXPECT_EQ(bench.send->itfFBMethod_FatherInstanceName(), L"Socket1");
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), kTwoMessages);
}

TEST(EthProtocolSend, BuildOperandsAfterAReopenWithoutTheFlagFailsWithTheCollectionsError) {
    EthSendBench bench;
    bench.letBlocks(std::make_shared<OperandCollection>(), kTwoMessages);
    EXPECT_EQ(runtimeErrorOf([&] { bench.send->itfFBMethod_BuildOperands(); }), 5);
}

TEST(EthProtocolSend, AdditionalDataAndInstanceDataStayEmpty) {
    EthSendBench bench;
    bench.reopen(kTwoMessages);
    bench.send->itfFBMethod_AdditionalData(Bytes{9});
    EXPECT_TRUE(bench.send->itfFBMethod_AdditionalData().empty());
    EXPECT_TRUE(bench.send->itfFBMethod_InstanceData().empty());
}

// --- Execute ---

TEST(EthProtocolSend, BusBarQuestionIsAnsweredForUpperBoundOneOnly) {
    EthSendBench bench;
    VariantArray params{Variant(L"FB Method Not Allowed On BUSBAR"), Variant(false)};
    bench.send->itfFBMethod_Execute(params);
    EXPECT_EQ(params[1], Variant(true));
    VariantArray three{Variant(L"FB Method Not Allowed On BUSBAR"), Variant(false), Variant(false)};
    bench.send->itfFBMethod_Execute(three);
    EXPECT_EQ(three[1], Variant(false));
}

TEST(EthProtocolSend, ReplaceMovesMessageNumberAndFieldLinkedToTheOperand) {
    EthSendBench bench;
    bench.reopen(kTwoMessages);

    bench.replace(0, 3, 5, 9);

    Bytes expected = kTwoMessages;
    expected[kMessageNumberAddress] = 9;
    expected[kFirstFieldAddress] = 9;
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), expected);
}

TEST(EthProtocolSend, ReplaceMovesTheCopyOperandsInTheImageButNotTheBlocksFlag) {
    EthSendBench bench;
    auto out = bench.reopen(kTwoMessages);

    bench.replace(0, 1, 5, 11);
    bench.replace(0, 3, 6, 12);

    Bytes expected = kTwoMessages;
    expected[kCopyDoneAddress] = 11;
    expected[kCopyDestinationAddress] = 12;
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), expected);
    EXPECT_EQ(bench.send->itfFBMethod_OutOperands(), out);
    EXPECT_EQ(out->Item(1)->OperandType(), 1);
    EXPECT_EQ(out->Item(1)->OperandAddress(), 5);
}

TEST(EthProtocolSend, ImageThatDoesNotMatchIsWrittenBackUnchanged) {
    EthSendBench bench;
    bench.reopen(kTwoMessages);

    bench.replace(3, 3, 5, 9);
    bench.replace(0, 16, 5, 9);
    bench.replace(0, 3, 8, 9);

    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), kTwoMessages);
}

TEST(EthProtocolSend, ReplaceOnANewSendKeepsTheEmptyImage) {
    EthSendBench bench;
    bench.makeNew();

    bench.replace(0, 1, -1, 9);

    EXPECT_TRUE(bench.send->itfFBMethod_BinaryOperands().empty());
    EXPECT_TRUE(bench.send->itfFBMethod_IsNew());
    EXPECT_EQ(bench.send->itfFBMethod_OutOperands()->Item(1)->OperandAddress(), -1);
}

TEST(EthProtocolSend, ReplaceOnAnImageCutShortRaisesTheReadersErrorAndKeepsTheImage) {
    EthSendBench bench;
    const Bytes cut(kTwoMessages.begin(), kTwoMessages.begin() + 57);
    bench.reopen(cut);

    EXPECT_EQ(runtimeErrorOf([&] { bench.replace(0, 3, 5, 9); }), 9);
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), cut);
}

TEST(EthProtocolSend, OtherCommandsAndBadArraysDoNothing) {
    EthSendBench bench;
    bench.reopen(kTwoMessages);
    VariantArray other{Variant(L"PrintFB"), Variant(0), Variant(3), Variant(5), Variant(9)};
    bench.send->itfFBMethod_Execute(other);
    VariantArray tooShort{Variant(L"ReplaceFindOnlyOperand")};
    bench.send->itfFBMethod_Execute(tooShort);
    VariantArray empty;
    bench.send->itfFBMethod_Execute(empty);

    EXPECT_EQ(other, (VariantArray{Variant(L"PrintFB"), Variant(0), Variant(3), Variant(5), Variant(9)}));
    EXPECT_EQ(tooShort.size(), 1u);
    EXPECT_TRUE(empty.empty());
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), kTwoMessages);
}

}  // namespace
}  // namespace qx
