// The serial Scan operation as the host sees it: its identity, its three
// block operands, the bus-bar answer, and "ReplaceFindOnlyOperand", which
// makes the stored Scan image follow a moved operand and leaves the block's
// operands to the host.
#include "serial/protocol_scan.h"

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

// A Scan as the host drives it, with a fresh host context and the host's
// instances double.
struct ScanBench : test::OperationBench<clsProtocolscan> {
    std::shared_ptr<clsProtocolscan>& scan = operation;

    ScanBench() : OperationBench(170100, L"Line1") {}

    // A stored Scan whose three operands are linked to bit 5, MI 5 and MI 5.
    OperandCollectionPtr reopen(const Bytes& image) {
        return reopenWith(test::storedOperands({linkedOperand(1, 5), linkedOperand(3, 5), linkedOperand(3, 5)}), image);
    }
};

// Two messages, no frame, version 0, message length terminator 1. Message 1
// is a numeric field linked to MI 5 with its decimal point at MI 6; message 2
// is the text "OK" and a numeric field linked to MI 8 with its decimal point
// at MI 5.
const Bytes kTwoMessages = concat({
    {1, 0, 0, 0},                               // 0: end of message "ETX", masks, version 0
    zeros(8),                                   // 4: start and end characters
    {0, 0},                                     // 12: lengths
    {1, 0, 0, 0},                               // 14: message length 1, silence 0
    {1, 0},                                     // 18: always 1
    test::kDefaultChecksum,                     // 20: end-of-message checksum
    {2, 0},                                     // 34: N = 2
    {40, 0, 68, 0},                             // 36: message 1 at 40, message 2 at 68
    {1, 0, 6, 0},                               // 40: one segment, no flags, length 6
    test::scanNumericEntry(0, 5, 6),            // 44: numeric at 0, MI 5, point MI 6
    {2, 1, 8, 0},                               // 68: two segments, fixed text, length 8
    concat({{0, 0, 0, 0, 120, 0}, zeros(18)}),  // 72: text at 0, block at 120
    test::scanNumericEntry(2, 8, 5),            // 96: numeric at 2, MI 8, point MI 5
    {0, 0, 2, 0, 'O', 'K'},                     // 120: "OK"
});

constexpr size_t kFirstFieldAddress = 48 + 6;
constexpr size_t kFirstPointAddress = 48 + 14;
constexpr size_t kSecondFieldAddress = 100 + 6;
constexpr size_t kSecondPointAddress = 100 + 14;

TEST(ProtocolScanImage, HandWrittenTwoMessageImageHasTheLengthOfItsLayout) {
    // Guards the hand-written image itself: 36 + 4 + 28 + 52 + 6, already even.
    EXPECT_EQ(kTwoMessages.size(), 126u);
}

// --- Identity and operands ---

TEST(ProtocolScan, InitPropertiesGivesTheScanIdentity) {
    ScanBench bench;
    auto& scan = *bench.scan;
    EXPECT_EQ(scan.MethodNumber(), 2);
    EXPECT_EQ(scan.itfFBMethod_Title(), L"SCAN");
    EXPECT_EQ(scan.itfFBMethod_Description(),
              L"Checks if messages contained within the Scan have been received via the COM port in the linked "
              L"Configuration");
    EXPECT_EQ(scan.itfFBMethod_MethodID(), 170102);
    EXPECT_EQ(scan.itfFBMethod_MethodName(), GetText(216));
    EXPECT_EQ(scan.itfFBMethod_VisbleInCout(), 0);
    EXPECT_EQ(scan.itfFBMethod_VisbleOutCout(), 3);
    EXPECT_EQ(scan.itfFBMethod_HexFileVersion(), 100);
    EXPECT_TRUE(scan.itfFBMethod_IsEnableInEnableOut());
    EXPECT_FALSE(scan.itfFBMethod_IsNew());
    EXPECT_TRUE(scan.itfFBMethod_BinaryOperands().empty());
    EXPECT_EQ(bench.instances->AttachedMethods, std::vector<int32_t>{170102});
}

TEST(ProtocolScan, DummyOperandsAreAFlagAndTwoMisAllVisible) {
    ScanBench bench;
    bench.makeNew();
    EXPECT_TRUE(bench.scan->itfFBMethod_IsNew());
    EXPECT_EQ(bench.scan->itfFBMethod_InOperands()->Count(), 0);
    EXPECT_EQ(bench.scan->itfFBMethod_VisbleInOperands()->Count(), 0);
    auto out = bench.scan->itfFBMethod_OutOperands();
    auto visible = bench.scan->itfFBMethod_VisbleOutOperands();
    ASSERT_EQ(out->Count(), 3);
    ASSERT_EQ(visible->Count(), 3);
    const int32_t types[] = {1, 3, 3};
    const int32_t texts[] = {31, 32, 33};
    for (int32_t i = 1; i <= 3; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(out->KeyAt(i), std::to_wstring(i));
        EXPECT_EQ(out->Item(i)->OperandType(), types[i - 1]);
        EXPECT_EQ(out->Item(i)->OperandMode(), 1);
        EXPECT_TRUE(out->Item(i)->IsNew());
        EXPECT_EQ(out->Item(i)->OperandDescription(), GetText(texts[i - 1]));
        EXPECT_EQ(visible->Item(i), out->Item(i));
    }
}

TEST(ProtocolScan, BuildOperandsAllowsTheBaseTypesAndSetsCaptions) {
    ScanBench bench;
    bench.makeNew();
    EXPECT_EQ(bench.operand(1)->AllowedTypes(), (std::vector<AllowedType>{{1, 1, true}}));
    EXPECT_EQ(bench.operand(2)->AllowedTypes(), (std::vector<AllowedType>{{1, 3, true}}));
    EXPECT_EQ(bench.operand(3)->AllowedTypes(), (std::vector<AllowedType>{{1, 3, true}}));
    const int32_t texts[] = {31, 32, 33};
    for (int32_t i = 1; i <= 3; ++i) {
        EXPECT_EQ(bench.operand(i)->OperandCaption(), GetText(texts[i - 1]));
        EXPECT_EQ(bench.operand(i)->OperandTitle(), GetText(texts[i - 1]));
    }
}

TEST(ProtocolScan, BuildOperandsAddsTheExtendedTwinsWhenEnabled) {
    ScanBench bench;
    bench.context->ExtendedOperands = true;
    bench.makeNew();
    EXPECT_EQ(bench.operand(1)->AllowedTypes(), (std::vector<AllowedType>{{1, 1, true}, {1, 64, true}}));
    EXPECT_EQ(bench.operand(2)->AllowedTypes(), (std::vector<AllowedType>{{1, 3, true}, {1, 65, true}}));
    EXPECT_EQ(bench.operand(3)->AllowedTypes(), (std::vector<AllowedType>{{1, 3, true}, {1, 65, true}}));
}

TEST(ProtocolScan, ReopenShowsTheHostsThreeOperandsInOrder) {
    ScanBench bench;
    auto out = bench.reopen(kTwoMessages);
    EXPECT_FALSE(bench.scan->itfFBMethod_IsNew());
    EXPECT_EQ(bench.scan->itfFBMethod_OutOperands(), out);
    auto visible = bench.scan->itfFBMethod_VisbleOutOperands();
    ASSERT_EQ(visible->Count(), 3);
    for (int32_t i = 1; i <= 3; ++i) EXPECT_EQ(visible->Item(i), out->Item(i));
    // The constraints come back without being stored.
    EXPECT_EQ(out->Item(1)->AllowedTypes(), (std::vector<AllowedType>{{1, 1, true}}));
    EXPECT_EQ(out->Item(3)->OperandCaption(), GetText(33));
    EXPECT_EQ(bench.scan->itfFBMethod_FatherInstanceName(), L"Line1");
}

TEST(ProtocolScan, BuildOperandsAfterAReopenWithTwoOperandsFailsWithTheCollectionsError) {
    ScanBench bench;
    auto out = std::make_shared<OperandCollection>();
    out->Add(linkedOperand(1, 5), L"1");
    out->Add(linkedOperand(3, 5), L"2");
    bench.letBlocks(out, kTwoMessages);
    EXPECT_EQ(runtimeErrorOf([&] { bench.scan->itfFBMethod_BuildOperands(); }), 5);
}

TEST(ProtocolScan, BuildOperandsWithoutAnyOperandCollectionFailsWithTheCollectionsError) {
    ScanBench bench;
    bench.scan->itfFBMethod_BinaryOperands(kTwoMessages);
    EXPECT_EQ(runtimeErrorOf([&] { bench.scan->itfFBMethod_BuildOperands(); }), 5);
}

TEST(ProtocolScan, AdditionalDataAndInstanceDataStayEmpty) {
    ScanBench bench;
    bench.reopen(kTwoMessages);
    bench.scan->itfFBMethod_AdditionalData(Bytes{1, 2, 3});
    EXPECT_TRUE(bench.scan->itfFBMethod_AdditionalData().empty());
    EXPECT_TRUE(bench.scan->itfFBMethod_InstanceData().empty());
    EXPECT_EQ(bench.scan->itfFBMethod_BinaryOperands(), kTwoMessages);
}

// --- Execute: the bus bar ---

TEST(ProtocolScan, BusBarQuestionIsAnsweredForUpperBoundOne) {
    ScanBench bench;
    VariantArray params{Variant(L"FB Method Not Allowed On BUSBAR"), Variant(false)};
    bench.scan->itfFBMethod_Execute(params);
    EXPECT_EQ(params[1], Variant(true));
}

TEST(ProtocolScan, BusBarQuestionWithAnotherUpperBoundGetsNoAnswer) {
    ScanBench bench;
    VariantArray three{Variant(L"FB Method Not Allowed On BUSBAR"), Variant(false), Variant(false)};
    bench.scan->itfFBMethod_Execute(three);
    EXPECT_EQ(three[1], Variant(false));
    EXPECT_EQ(three[2], Variant(false));
}

// --- Execute: ReplaceFindOnlyOperand ---

TEST(ProtocolScan, ReplaceMovesTheFieldOperandAndTheDecimalPointOperandLinkedToTheOperand) {
    ScanBench bench;
    bench.reopen(kTwoMessages);

    bench.replace(0, 3, 5, 9);

    Bytes expected = kTwoMessages;
    expected[kFirstFieldAddress] = 9;
    expected[kSecondPointAddress] = 9;
    EXPECT_EQ(bench.scan->itfFBMethod_BinaryOperands(), expected);
    EXPECT_EQ(bench.scan->itfFBMethod_BinaryOperands()[kFirstPointAddress], 6);
    EXPECT_EQ(bench.scan->itfFBMethod_BinaryOperands()[kSecondFieldAddress], 8);
}

TEST(ProtocolScan, ReplaceLeavesTheBlocksOperandsToTheHost) {
    ScanBench bench;
    auto out = bench.reopen(kTwoMessages);
    auto visible = bench.scan->itfFBMethod_VisbleOutOperands();

    bench.replace(0, 3, 5, 9);
    bench.replace(0, 1, 5, 9);

    EXPECT_EQ(bench.scan->itfFBMethod_OutOperands(), out);
    EXPECT_EQ(bench.scan->itfFBMethod_VisbleOutOperands(), visible);
    ASSERT_EQ(out->Count(), 3);
    for (int32_t i = 1; i <= 3; ++i) EXPECT_EQ(out->Item(i)->OperandAddress(), 5);
    EXPECT_EQ(bench.scan->itfFBMethod_OperandsForFindOnly()->Count(), 0);
}

TEST(ProtocolScan, ImageThatDoesNotMatchIsWrittenBackUnchanged) {
    ScanBench bench;
    bench.reopen(kTwoMessages);

    bench.replace(2, 3, 5, 9);  // another network
    bench.replace(0, 1, 5, 9);  // another type: the block's flag, not in the image
    bench.replace(0, 3, 7, 9);  // an address nothing in the image has

    EXPECT_EQ(bench.scan->itfFBMethod_BinaryOperands(), kTwoMessages);
}

TEST(ProtocolScan, ReplaceOnANewScanKeepsTheEmptyImage) {
    ScanBench bench;
    bench.makeNew();

    bench.replace(0, 3, 5, 9);

    EXPECT_TRUE(bench.scan->itfFBMethod_BinaryOperands().empty());
    EXPECT_TRUE(bench.scan->itfFBMethod_IsNew());
}

TEST(ProtocolScan, ReplaceOnAnImageCutShortRaisesTheReadersErrorAndKeepsTheImage) {
    ScanBench bench;
    const Bytes cut(kTwoMessages.begin(), kTwoMessages.begin() + 100);
    bench.reopen(cut);

    EXPECT_EQ(runtimeErrorOf([&] { bench.replace(0, 3, 5, 9); }), 9);
    EXPECT_EQ(bench.scan->itfFBMethod_BinaryOperands(), cut);
}

// --- Execute: what gets no answer ---

TEST(ProtocolScan, OtherCommandsAndBadArraysDoNothing) {
    ScanBench bench;
    bench.reopen(kTwoMessages);
    VariantArray other{Variant(L"Replace"), Variant(0), Variant(3), Variant(5), Variant(9)};
    bench.scan->itfFBMethod_Execute(other);
    VariantArray tooShort{Variant(L"ReplaceFindOnlyOperand"), Variant(0), Variant(3)};
    bench.scan->itfFBMethod_Execute(tooShort);
    VariantArray empty;
    bench.scan->itfFBMethod_Execute(empty);
    VariantArray noText{Variant(true), Variant(false)};
    bench.scan->itfFBMethod_Execute(noText);

    EXPECT_EQ(other, (VariantArray{Variant(L"Replace"), Variant(0), Variant(3), Variant(5), Variant(9)}));
    EXPECT_EQ(tooShort.size(), 3u);
    EXPECT_TRUE(empty.empty());
    EXPECT_EQ(noText, (VariantArray{Variant(true), Variant(false)}));
    EXPECT_EQ(bench.scan->itfFBMethod_BinaryOperands(), kTwoMessages);
}

}  // namespace
}  // namespace qx
