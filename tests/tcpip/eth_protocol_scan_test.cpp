// The TCP/IP Scan operation as the host sees it: five out operands of which
// the block shows the first and the third, the reopen path, the bus-bar
// answer, and "ReplaceFindOnlyOperand" on its image, which has the serial
// Scan format.
#include "tcpip/eth_protocol_scan.h"

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

constexpr int32_t kTypes[] = {1, 3, 3, 3, 3};
constexpr int32_t kTexts[] = {616, 32, 33, 595, 615};

// The stored project of a TCP/IP Scan names hex-file version 101.
struct EthScanBench : test::OperationBench<clsEthProtocolScan> {
    std::shared_ptr<clsEthProtocolScan>& scan = operation;

    EthScanBench() : OperationBench(170200, L"Socket1", 101) {}

    // The first count operands of a stored Scan, linked to MI 5 (the flag to
    // bit 5) and keyed as the host stores them.
    static OperandCollectionPtr storedOperands(int32_t count) {
        auto out = std::make_shared<OperandCollection>();
        for (int32_t i = 1; i <= count; ++i) out->Add(linkedOperand(kTypes[i - 1], 5), std::to_wstring(i));
        return out;
    }

    OperandCollectionPtr reopen(const Bytes& image) { return reopenWith(storedOperands(5), image); }
};

// Two messages, no frame, version 0, the TCP/IP message length 0 and a
// silence of 300 ms. Message 1 is a numeric field on MI 5 with its decimal
// point on MI 6; message 2 the text "OK" and a numeric field on MI 8 with
// its decimal point on MI 5.
const Bytes kTwoMessages = concat({
    {1, 0, 0, 0},                               // 0: end of message "ETX", masks, version 0
    zeros(8),                                   // 4: start and end characters
    {0, 0},                                     // 12: lengths
    {0, 0, 0x2C, 0x01},                         // 14: message length 0, silence 300
    {1, 0},                                     // 18: always 1
    test::kDefaultChecksum,                     // 20: end-of-message checksum
    {2, 0},                                     // 34: N = 2
    {40, 0, 68, 0},                             // 36: message 1 at 40, message 2 at 68
    {1, 0, 6, 0},                               // 40: one segment, no flags, length 6
    test::scanNumericEntry(0, 5, 6),            // 44: numeric at 0
    {2, 1, 8, 0},                               // 68: two segments, fixed text, length 8
    concat({{0, 0, 0, 0, 120, 0}, zeros(18)}),  // 72: text at 0, block at 120
    test::scanNumericEntry(2, 8, 5),            // 96: numeric at 2
    {0, 0, 2, 0, 'O', 'K'},                     // 120: "OK"
});

constexpr size_t kFirstFieldAddress = 48 + 6;
constexpr size_t kSecondPointAddress = 100 + 14;

TEST(EthProtocolScanImage, HandWrittenTwoMessageImageHasTheLengthOfItsLayout) { EXPECT_EQ(kTwoMessages.size(), 126u); }

// --- Identity and operands ---

TEST(EthProtocolScan, InitPropertiesGivesTheTcpIpScanIdentity) {
    EthScanBench bench;
    auto& scan = *bench.scan;
    EXPECT_EQ(scan.MethodNumber(), 2);
    EXPECT_EQ(scan.itfFBMethod_Title(), L"SCAN");
    EXPECT_EQ(scan.itfFBMethod_Description(),
              L"Checks if messages contained within the Scan have been received via the Ethernet port in the "
              L"linked Configuration");
    EXPECT_EQ(scan.itfFBMethod_MethodID(), 170202);
    EXPECT_EQ(scan.itfFBMethod_MethodName(), GetText(216));
    EXPECT_EQ(scan.itfFBMethod_VisbleInCout(), 0);
    EXPECT_EQ(scan.itfFBMethod_VisbleOutCout(), 2);
    EXPECT_EQ(scan.itfFBMethod_HexFileVersion(), 100);
    EXPECT_TRUE(scan.itfFBMethod_IsEnableInEnableOut());
    EXPECT_FALSE(scan.itfFBMethod_IsNew());
    EXPECT_TRUE(scan.itfFBMethod_BinaryOperands().empty());
    EXPECT_EQ(bench.instances->AttachedMethods, std::vector<int32_t>{170202});
}

TEST(EthProtocolScan, DummyOperandsAreFiveOfWhichTheFirstAndTheThirdAreVisible) {
    EthScanBench bench;
    bench.makeNew();
    EXPECT_TRUE(bench.scan->itfFBMethod_IsNew());
    EXPECT_EQ(bench.scan->itfFBMethod_InOperands()->Count(), 0);
    EXPECT_EQ(bench.scan->itfFBMethod_VisbleInOperands()->Count(), 0);
    auto out = bench.scan->itfFBMethod_OutOperands();
    ASSERT_EQ(out->Count(), 5);
    for (int32_t i = 1; i <= 5; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(out->KeyAt(i), std::to_wstring(i));
        EXPECT_EQ(out->Item(i)->OperandType(), kTypes[i - 1]);
        EXPECT_EQ(out->Item(i)->OperandMode(), 1);
        EXPECT_TRUE(out->Item(i)->IsNew());
        EXPECT_EQ(out->Item(i)->OperandDescription(), GetText(kTexts[i - 1]));
    }
    auto visible = bench.scan->itfFBMethod_VisbleOutOperands();
    ASSERT_EQ(visible->Count(), 2);
    EXPECT_EQ(visible->Item(1), out->Item(1));
    EXPECT_EQ(visible->Item(2), out->Item(3));
}

TEST(EthProtocolScan, BuildOperandsSetsTypesAndCaptionsOnAllFive) {
    EthScanBench bench;
    bench.makeNew();
    auto out = bench.scan->itfFBMethod_OutOperands();
    for (int32_t i = 1; i <= 5; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(out->Item(i)->AllowedTypes(), (std::vector<AllowedType>{{1, kTypes[i - 1], true}}));
        EXPECT_EQ(out->Item(i)->OperandCaption(), GetText(kTexts[i - 1]));
        EXPECT_EQ(out->Item(i)->OperandTitle(), GetText(kTexts[i - 1]));
    }
}

TEST(EthProtocolScan, BuildOperandsAddsTheExtendedTwinsWhenEnabled) {
    EthScanBench bench;
    bench.context->ExtendedOperands = true;
    bench.makeNew();
    auto out = bench.scan->itfFBMethod_OutOperands();
    EXPECT_EQ(out->Item(1)->AllowedTypes(), (std::vector<AllowedType>{{1, 1, true}, {1, 64, true}}));
    for (int32_t i = 2; i <= 5; ++i)
        EXPECT_EQ(out->Item(i)->AllowedTypes(), (std::vector<AllowedType>{{1, 3, true}, {1, 65, true}}));
}

TEST(EthProtocolScan, AfterAReopenTwoAreVisibleAndFiveStandInTableOrder) {
    EthScanBench bench;
    auto stored = EthScanBench::storedOperands(5);
    std::vector<OperandPtr> given;
    for (int32_t i = 1; i <= 5; ++i) given.push_back(stored->Item(i));
    bench.letBlocks(stored, kTwoMessages);

    bench.scan->itfFBMethod_BuildOperands();

    EXPECT_FALSE(bench.scan->itfFBMethod_IsNew());
    auto out = bench.scan->itfFBMethod_OutOperands();
    EXPECT_EQ(out, stored);
    ASSERT_EQ(out->Count(), 5);
    for (int32_t i = 1; i <= 5; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(out->Item(i), given[static_cast<size_t>(i - 1)]);
        EXPECT_EQ(out->KeyAt(i), std::to_wstring(i));
        EXPECT_EQ(out->Item(i)->OperandCaption(), GetText(kTexts[i - 1]));
        EXPECT_EQ(out->Item(i)->AllowedTypes(), (std::vector<AllowedType>{{1, kTypes[i - 1], true}}));
    }
    auto visible = bench.scan->itfFBMethod_VisbleOutOperands();
    ASSERT_EQ(visible->Count(), 2);
    EXPECT_EQ(visible->Item(1), given[0]);
    EXPECT_EQ(visible->Item(2), given[2]);
    EXPECT_EQ(bench.scan->itfFBMethod_BinaryOperands(), kTwoMessages);
    EXPECT_EQ(bench.scan->itfFBMethod_HexFileVersion(), 101);
    EXPECT_EQ(bench.scan->itfFBMethod_FatherInstanceName(), L"Socket1");
}

TEST(EthProtocolScan, BuildOperandsAfterAReopenWithFewerThanFiveFailsWithTheCollectionsError) {
    EthScanBench bench;
    // Three operands are enough for a serial Scan but not for this one.
    bench.letBlocks(EthScanBench::storedOperands(3), kTwoMessages);
    EXPECT_EQ(runtimeErrorOf([&] { bench.scan->itfFBMethod_BuildOperands(); }), 5);
}

TEST(EthProtocolScan, AdditionalDataAndInstanceDataStayEmpty) {
    EthScanBench bench;
    bench.reopen(kTwoMessages);
    bench.scan->itfFBMethod_AdditionalData(Bytes{4, 4});
    EXPECT_TRUE(bench.scan->itfFBMethod_AdditionalData().empty());
    EXPECT_TRUE(bench.scan->itfFBMethod_InstanceData().empty());
}

// --- Execute ---

TEST(EthProtocolScan, BusBarQuestionIsAnsweredForUpperBoundOneOnly) {
    EthScanBench bench;
    VariantArray params{Variant(L"FB Method Not Allowed On BUSBAR"), Variant(false)};
    bench.scan->itfFBMethod_Execute(params);
    EXPECT_EQ(params[1], Variant(true));
    VariantArray alone{Variant(L"FB Method Not Allowed On BUSBAR")};
    bench.scan->itfFBMethod_Execute(alone);
    EXPECT_EQ(alone.size(), 1u);
}

TEST(EthProtocolScan, ReplaceMovesTheFieldOperandAndTheDecimalPointOperandButNotTheFiveOperands) {
    EthScanBench bench;
    auto out = bench.reopen(kTwoMessages);

    bench.replace(0, 3, 5, 9);

    Bytes expected = kTwoMessages;
    expected[kFirstFieldAddress] = 9;
    expected[kSecondPointAddress] = 9;
    EXPECT_EQ(bench.scan->itfFBMethod_BinaryOperands(), expected);
    EXPECT_EQ(bench.scan->itfFBMethod_OutOperands(), out);
    for (int32_t i = 1; i <= 5; ++i) EXPECT_EQ(out->Item(i)->OperandAddress(), 5);
    EXPECT_EQ(bench.scan->itfFBMethod_VisbleOutOperands()->Count(), 2);
}

TEST(EthProtocolScan, ImageThatDoesNotMatchIsWrittenBackUnchanged) {
    EthScanBench bench;
    bench.reopen(kTwoMessages);

    bench.replace(1, 3, 5, 9);
    bench.replace(0, 1, 5, 9);
    bench.replace(0, 3, 300, 9);

    EXPECT_EQ(bench.scan->itfFBMethod_BinaryOperands(), kTwoMessages);
}

TEST(EthProtocolScan, ReplaceOnANewScanKeepsTheEmptyImage) {
    EthScanBench bench;
    bench.makeNew();

    bench.replace(0, 3, -1, 9);

    EXPECT_TRUE(bench.scan->itfFBMethod_BinaryOperands().empty());
    EXPECT_TRUE(bench.scan->itfFBMethod_IsNew());
    for (int32_t i = 1; i <= 5; ++i) EXPECT_EQ(bench.scan->itfFBMethod_OutOperands()->Item(i)->OperandAddress(), -1);
}

TEST(EthProtocolScan, ReplaceOnAnImageCutShortRaisesTheReadersErrorAndKeepsTheImage) {
    EthScanBench bench;
    const Bytes cut(kTwoMessages.begin(), kTwoMessages.begin() + 60);
    bench.reopen(cut);

    EXPECT_EQ(runtimeErrorOf([&] { bench.replace(0, 3, 5, 9); }), 9);
    EXPECT_EQ(bench.scan->itfFBMethod_BinaryOperands(), cut);
}

TEST(EthProtocolScan, OtherCommandsAndBadArraysDoNothing) {
    EthScanBench bench;
    bench.reopen(kTwoMessages);
    VariantArray other{Variant(L"ReplaceFindOnlyOperands"), Variant(0), Variant(3), Variant(5), Variant(9)};
    bench.scan->itfFBMethod_Execute(other);
    VariantArray tooShort{Variant(L"ReplaceFindOnlyOperand"), Variant(0), Variant(3), Variant(5)};
    bench.scan->itfFBMethod_Execute(tooShort);
    VariantArray noText{Variant(int64_t{1}), Variant(false)};
    bench.scan->itfFBMethod_Execute(noText);

    EXPECT_EQ(other[4], Variant(9));
    EXPECT_EQ(tooShort.size(), 4u);
    EXPECT_EQ(noText, (VariantArray{Variant(int64_t{1}), Variant(false)}));
    EXPECT_EQ(bench.scan->itfFBMethod_BinaryOperands(), kTwoMessages);
}

}  // namespace
}  // namespace qx
