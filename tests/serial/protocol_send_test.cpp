// The serial Send operation as the host sees it: its identity, its empty
// operand lists, the bus-bar answer, and "ReplaceFindOnlyOperand", which
// makes the stored Send image follow a moved operand.
#include "serial/protocol_send.h"

#include <gtest/gtest.h>

#include <memory>

#include "framework/runtime_catalogue.h"
#include "support/image_parts.h"
#include "support/operation_bench.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

using test::concat;
using test::runtimeErrorOf;
using test::zeros;

// A Send as the host drives it, with a fresh host context and the host's
// instances double.
struct SendBench : test::OperationBench<clsProtocolSend> {
    std::shared_ptr<clsProtocolSend>& send = operation;

    SendBench() : OperationBench(170100, L"Line1") {}

    // A Send of a stored project: the Lets of its blocks, then BuildOperands.
    void reopen(const Bytes& image) { reopenWith(std::make_shared<OperandCollection>(), image); }
};

// Two messages. The message number is linked to MI 5; the copy after ETX is
// on (two bytes) to MI 5, with the done bit 5. Message 1 is a numeric field
// linked to MI 5; message 2 is the text "OK" and a numeric field linked to
// MI 6. Version 0, no frame.
const Bytes kTwoMessages = concat({
    {3, 0, 5, 0, 0, 0, 0, 0},             // 0: message number, MI 5
    {3, 0, 5, 0, 0, 0, 0, 0},             // 8: copy destination, MI 5
    {1, 0, 5, 0, 0, 0, 0, 0},             // 16: copy done, bit 5
    {0, 0, 0, 0},                         // 24: version, end of message, masks
    zeros(8),                             // 28: start and end characters
    {0, 0, 1, 0},                         // 36: lengths, always 1
    test::kDefaultChecksum,               // 40: end-of-message checksum
    {2, 0, 2, 0},                         // 54: copy count 2, N = 2
    {62, 0, 84, 0},                       // 58: message 1 at 62, message 2 at 84
    {1, 0, 0, 0},                         // 62: one segment
    test::sendNumericEntry(5),            // 66: numeric, MI 5
    {2, 0, 0, 0},                         // 84: two segments
    concat({{0, 0, 124, 0}, zeros(14)}),  // 88: fixed text at 124
    test::sendNumericEntry(6),            // 106: numeric, MI 6
    {0, 0, 2, 0, 'O', 'K'},               // 124: "OK"
    {0, 0},                               // 130: the spare byte and the even end
});

// Where the addresses of kTwoMessages lie.
constexpr size_t kMessageNumberAddress = 2;
constexpr size_t kCopyDestinationAddress = 10;
constexpr size_t kCopyDoneAddress = 18;
constexpr size_t kFirstFieldAddress = 66 + 10;
constexpr size_t kSecondFieldAddress = 106 + 10;

TEST(ProtocolSendImage, HandWrittenTwoMessageImageHasTheLengthOfItsLayout) {
    // Guards the hand-written image itself: 58 + 4 + 22 + 40 + 6, made even.
    EXPECT_EQ(kTwoMessages.size(), 132u);
}

// --- Identity and operands ---

TEST(ProtocolSend, InitPropertiesGivesTheSendIdentity) {
    SendBench bench;
    auto& send = *bench.send;
    EXPECT_EQ(send.MethodNumber(), 3);
    EXPECT_EQ(send.itfFBMethod_Title(), L"SEND");
    EXPECT_EQ(send.itfFBMethod_Description(),
              L"Sends messages contained within the Send operation via the COM port in the linked Configuration");
    EXPECT_EQ(send.itfFBMethod_MethodID(), 170103);
    EXPECT_EQ(send.itfFBMethod_MethodName(), GetText(221));
    EXPECT_EQ(send.itfFBMethod_VisbleInCout(), 0);
    EXPECT_EQ(send.itfFBMethod_VisbleOutCout(), 0);
    EXPECT_EQ(send.itfFBMethod_HexFileVersion(), 100);
    EXPECT_EQ(send.itfFBMethod_FatherTitle(), L"STUB");
    EXPECT_TRUE(send.itfFBMethod_IsEnableInEnableOut());
    EXPECT_FALSE(send.itfFBMethod_IsNew());
    EXPECT_FALSE(send.itfFBMethod_IsCanceled());
    EXPECT_EQ(send.itfFBMethod_FatherInstanceNum(), 0);
    EXPECT_TRUE(send.itfFBMethod_BinaryOperands().empty());
    ASSERT_NE(send.itfFBMethod_OperandsForFindOnly(), nullptr);
    EXPECT_EQ(send.itfFBMethod_OperandsForFindOnly()->Count(), 0);
    EXPECT_EQ(bench.instances->AttachedMethods, std::vector<int32_t>{170103});
}

TEST(ProtocolSend, CreateDummyOperandsMakesTheSendNewWithoutAnyOperand) {
    SendBench bench;
    bench.send->itfFBMethod_CreateDummyOperands();
    EXPECT_TRUE(bench.send->itfFBMethod_IsNew());
    for (const auto& collection :
         {bench.send->itfFBMethod_InOperands(), bench.send->itfFBMethod_OutOperands(),
          bench.send->itfFBMethod_VisbleInOperands(), bench.send->itfFBMethod_VisbleOutOperands()}) {
        ASSERT_NE(collection, nullptr);
        EXPECT_EQ(collection->Count(), 0);
    }
    EXPECT_TRUE(bench.send->itfFBMethod_BinaryOperands().empty());
}

TEST(ProtocolSend, CreateDummyOperandsReplacesTheCollectionsTheHostGave) {
    SendBench bench;
    auto hostOut = std::make_shared<OperandCollection>();
    hostOut->Add(newOperand(), L"1");
    bench.send->itfFBMethod_OutOperands(hostOut);
    bench.send->itfFBMethod_CreateDummyOperands();
    EXPECT_NE(bench.send->itfFBMethod_OutOperands(), hostOut);
    EXPECT_EQ(bench.send->itfFBMethod_OutOperands()->Count(), 0);
    EXPECT_EQ(hostOut->Count(), 1);
}

TEST(ProtocolSend, BuildOperandsGivesNewEmptyVisibleCollections) {
    SendBench bench;
    bench.makeNew();
    auto visibleIn = bench.send->itfFBMethod_VisbleInOperands();
    auto visibleOut = bench.send->itfFBMethod_VisbleOutOperands();
    bench.send->itfFBMethod_BuildOperands();
    EXPECT_NE(bench.send->itfFBMethod_VisbleInOperands(), visibleIn);
    EXPECT_NE(bench.send->itfFBMethod_VisbleOutOperands(), visibleOut);
    EXPECT_EQ(bench.send->itfFBMethod_VisbleInOperands()->Count(), 0);
    EXPECT_EQ(bench.send->itfFBMethod_VisbleOutOperands()->Count(), 0);
}

TEST(ProtocolSend, ReopenKeepsTheBlocksAndLeavesTheSendNotNew) {
    SendBench bench;
    bench.reopen(kTwoMessages);
    EXPECT_FALSE(bench.send->itfFBMethod_IsNew());
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), kTwoMessages);
    EXPECT_EQ(bench.send->itfFBMethod_FatherInstanceName(), L"Line1");
    EXPECT_EQ(bench.send->itfFBMethod_VisbleOutOperands()->Count(), 0);
    EXPECT_EQ(bench.send->itfFBMethod_OutOperands()->Count(), 0);
}

TEST(ProtocolSend, AdditionalDataAndInstanceDataStayEmpty) {
    SendBench bench;
    bench.reopen(kTwoMessages);
    bench.send->itfFBMethod_AdditionalData(Bytes{1, 2, 3});
    EXPECT_TRUE(bench.send->itfFBMethod_AdditionalData().empty());
    EXPECT_TRUE(bench.send->itfFBMethod_InstanceData().empty());
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), kTwoMessages);
}

// --- Execute: the bus bar ---

TEST(ProtocolSend, BusBarQuestionIsAnsweredForUpperBoundOne) {
    SendBench bench;
    VariantArray params{Variant(L"FB Method Not Allowed On BUSBAR"), Variant(false)};
    bench.send->itfFBMethod_Execute(params);
    EXPECT_EQ(params[1], Variant(true));
}

TEST(ProtocolSend, BusBarQuestionWithAnotherUpperBoundGetsNoAnswer) {
    SendBench bench;
    VariantArray three{Variant(L"FB Method Not Allowed On BUSBAR"), Variant(false), Variant(false)};
    bench.send->itfFBMethod_Execute(three);
    EXPECT_EQ(three, (VariantArray{Variant(L"FB Method Not Allowed On BUSBAR"), Variant(false), Variant(false)}));
    VariantArray alone{Variant(L"FB Method Not Allowed On BUSBAR")};
    bench.send->itfFBMethod_Execute(alone);
    EXPECT_EQ(alone, VariantArray{Variant(L"FB Method Not Allowed On BUSBAR")});
}

TEST(ProtocolSend, BusBarCommandInAnotherCaseIsNotTheCommand) {
    SendBench bench;
    VariantArray params{Variant(L"fb method not allowed on busbar"), Variant(false)};
    bench.send->itfFBMethod_Execute(params);
    EXPECT_EQ(params[1], Variant(false));
}

// --- Execute: ReplaceFindOnlyOperand ---

TEST(ProtocolSend, ReplaceMovesMessageNumberCopyDestinationAndFieldLinkedToTheOperand) {
    SendBench bench;
    bench.reopen(kTwoMessages);

    bench.replace(0, 3, 5, 9);

    Bytes expected = kTwoMessages;
    expected[kMessageNumberAddress] = 9;
    expected[kCopyDestinationAddress] = 9;
    expected[kFirstFieldAddress] = 9;
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), expected);
}

TEST(ProtocolSend, ReplaceLeavesOperandsOfAnotherTypeOrAddressAlone) {
    SendBench bench;
    bench.reopen(kTwoMessages);

    // The copy-done bit has address 5 too, but it is a bit; the second field is MI 6.
    bench.replace(0, 3, 5, 300);

    Bytes image = bench.send->itfFBMethod_BinaryOperands();
    ASSERT_EQ(image.size(), kTwoMessages.size());
    EXPECT_EQ(image[kCopyDoneAddress], 5);
    EXPECT_EQ(image[kSecondFieldAddress], 6);
    // A new address above 255 takes both bytes of its place.
    EXPECT_EQ(image[kMessageNumberAddress], 300 & 0xFF);
    EXPECT_EQ(image[kMessageNumberAddress + 1], 300 >> 8);
    EXPECT_EQ(image[kFirstFieldAddress], 300 & 0xFF);
    EXPECT_EQ(image[kFirstFieldAddress + 1], 300 >> 8);
}

TEST(ProtocolSend, ReplaceOfTheCopyDoneBitMovesOnlyThatBit) {
    SendBench bench;
    bench.reopen(kTwoMessages);

    bench.replace(0, 1, 5, 7);

    Bytes expected = kTwoMessages;
    expected[kCopyDoneAddress] = 7;
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), expected);
}

TEST(ProtocolSend, ImageThatDoesNotMatchIsWrittenBackUnchanged) {
    SendBench bench;
    bench.reopen(kTwoMessages);

    bench.replace(1, 3, 5, 9);  // another network
    bench.replace(0, 5, 5, 9);  // another type
    bench.replace(0, 3, 4, 9);  // another address

    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), kTwoMessages);
}

TEST(ProtocolSend, ReplaceWritesTheImageInTheCurrentVersion) {
    SendBench bench;
    bench.context->ExtendedOperands = true;
    bench.reopen(kTwoMessages);

    bench.replace(0, 3, 77, 78);

    // An old image comes back as version 1. Its end-of-message checksum did
    // not count the STX, and still does not.
    Bytes expected = kTwoMessages;
    expected[24] = 1;
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), expected);
}

TEST(ProtocolSend, ReplaceTakesItsArgumentsAsNumbersOfAnyVariant) {
    SendBench bench;
    bench.reopen(kTwoMessages);
    VariantArray params{Variant(L"ReplaceFindOnlyOperand"), Variant(L"0"), Variant(int64_t{3}), Variant(5.0),
                        Variant(L" 9 ")};

    bench.send->itfFBMethod_Execute(params);

    Bytes expected = kTwoMessages;
    expected[kMessageNumberAddress] = 9;
    expected[kCopyDestinationAddress] = 9;
    expected[kFirstFieldAddress] = 9;
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), expected);
}

TEST(ProtocolSend, ReplaceOnANewSendKeepsTheEmptyImage) {
    SendBench bench;
    bench.makeNew();

    bench.replace(0, 3, 5, 9);

    EXPECT_TRUE(bench.send->itfFBMethod_BinaryOperands().empty());
    EXPECT_TRUE(bench.send->itfFBMethod_IsNew());
}

TEST(ProtocolSend, ReplaceOnAnImageCutShortRaisesTheReadersErrorAndKeepsTheImage) {
    SendBench bench;
    const Bytes cut(kTwoMessages.begin(), kTwoMessages.begin() + 70);
    bench.reopen(cut);

    EXPECT_EQ(runtimeErrorOf([&] { bench.replace(0, 3, 5, 9); }), 9);
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), cut);
}

TEST(ProtocolSend, ReplaceLeavesTheOperandListsAlone) {
    SendBench bench;
    bench.reopen(kTwoMessages);
    auto out = bench.send->itfFBMethod_OutOperands();
    auto findOnly = bench.send->itfFBMethod_OperandsForFindOnly();

    bench.replace(0, 3, 5, 9);

    EXPECT_EQ(bench.send->itfFBMethod_OutOperands(), out);
    EXPECT_EQ(out->Count(), 0);
    EXPECT_EQ(bench.send->itfFBMethod_OperandsForFindOnly(), findOnly);
    EXPECT_EQ(findOnly->Count(), 0);
}

// --- Execute: what gets no answer ---

TEST(ProtocolSend, OtherCommandsDoNothing) {
    SendBench bench;
    bench.reopen(kTwoMessages);
    VariantArray params{Variant(L"ReplaceOperand"), Variant(0), Variant(3), Variant(5), Variant(9)};
    const VariantArray before = params;
    bench.send->itfFBMethod_Execute(params);
    EXPECT_EQ(params, before);
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), kTwoMessages);
}

TEST(ProtocolSend, ReplaceWithTooFewArgumentsDoesNothing) {
    SendBench bench;
    bench.reopen(kTwoMessages);
    VariantArray params{Variant(L"ReplaceFindOnlyOperand"), Variant(0), Variant(3), Variant(5)};
    bench.send->itfFBMethod_Execute(params);
    EXPECT_EQ(params.size(), 4u);
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), kTwoMessages);
}

TEST(ProtocolSend, ArrayWithoutACommandTextDoesNothing) {
    SendBench bench;
    bench.reopen(kTwoMessages);
    VariantArray empty;
    bench.send->itfFBMethod_Execute(empty);
    EXPECT_TRUE(empty.empty());
    VariantArray number{Variant(5), Variant(false)};
    bench.send->itfFBMethod_Execute(number);
    EXPECT_EQ(number, (VariantArray{Variant(5), Variant(false)}));
    VariantArray nothing{Variant(), Variant(0), Variant(3), Variant(5), Variant(9)};
    bench.send->itfFBMethod_Execute(nothing);
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), kTwoMessages);
}

}  // namespace
}  // namespace qx
