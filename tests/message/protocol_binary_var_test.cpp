#include "message/protocol_binary_var.h"

#include <gtest/gtest.h>

#include "message_test_support.h"
#include "platform/host/host_context.h"

namespace qx {
namespace {

using test::linkOperand;
using test::runtimeErrorOf;

class BinaryVarTest : public ::testing::Test {
protected:
    ScopedHostContext context;
};

TEST_F(BinaryVarTest, NewFieldStartsFromItsDefaults) {
    clsProtocolBinaryVar field;
    EXPECT_EQ(field.StartPosition(), 0);
    EXPECT_EQ(field.Length(), 0);
    EXPECT_FALSE(field.IsSelected());
    EXPECT_FALSE(field.IsCanceled());
    EXPECT_EQ(field.TextFor0(), L"");
    EXPECT_EQ(field.TextFor1(), L"");
    EXPECT_EQ(field.DefaultDisplay(), 0);
    EXPECT_EQ(field.GetVarSegmentType(), 1);
}

TEST_F(BinaryVarTest, LinkedOperandOffersTheBitTypesInOrder) {
    clsProtocolBinaryVar field;
    const OperandPtr op = field.LikedOperand();
    EXPECT_EQ(test::allowedTypes(*op), (std::vector<int32_t>{9, 1, 10, 2, 11}));
    EXPECT_EQ(op->OperandType(), 1);
    EXPECT_EQ(op->OperandMode(), 1);
    EXPECT_TRUE(op->IsNew());
    EXPECT_EQ(op->OperandFormat(), 3);
}

TEST_F(BinaryVarTest, ExtendedOperandsAddType64) {
    context->ExtendedOperands = true;
    clsProtocolBinaryVar field;
    EXPECT_EQ(test::allowedTypes(*field.LikedOperand()), (std::vector<int32_t>{9, 1, 10, 2, 11, 64}));
}

TEST_F(BinaryVarTest, LengthIsTheLongerText) {
    clsProtocolBinaryVar field;
    field.TextFor0(L"OFF");
    EXPECT_EQ(field.Length(), 3);
    field.TextFor1(L"ON");
    EXPECT_EQ(field.Length(), 3);
    field.TextFor1(L"RUNNING");
    EXPECT_EQ(field.Length(), 7);
    field.Length(2);
    EXPECT_EQ(field.Length(), 2);
}

TEST_F(BinaryVarTest, TwoEmptyTextsGiveLengthZeroAndA20ByteRecord) {
    clsProtocolBinaryVar field;
    field.TextFor0(L"");
    field.TextFor1(L"");
    linkOperand(*field.LikedOperand(), 9, 0x0A0B);
    EXPECT_EQ(field.Length(), 0);
    // clang-format off
    const Bytes expected{2, 0, 9, 0, 0x0B, 0x0A, 0, 0, 0, 0,  // kind, operand
                         18, 0, 0, 0, 19, 0, 0, 0,            // offsets 0 + 18 and 0 + 19, lengths 0
                         0, 0};                               // two empty texts
    // clang-format on                               // two empty texts
    EXPECT_EQ(field.GetVarBinData(0), expected);
}

TEST_F(BinaryVarTest, RecordOfTwoAndThreeCharactersIs25BytesWithAbsoluteOffsets) {
    clsProtocolBinaryVar field;
    field.TextFor0(L"NO");
    field.TextFor1(L"YES");
    linkOperand(*field.LikedOperand(), 1, 0x0123);
    EXPECT_EQ(field.Length(), 3);
    // clang-format off
    const Bytes expected{2, 0, 1, 0, 0x23, 0x01, 0, 0, 0, 0,  // kind, operand
                         100 + 18, 0, 2, 0,                   // TextFor0 at index + 18, 2 characters
                         100 + 21, 0, 3, 0,                   // TextFor1 at index + 21, 3 characters
                         'N', 'O', 0, 'Y', 'E', 'S', 0};
    // clang-format on
    const Bytes record = field.GetVarBinData(100);
    EXPECT_EQ(record.size(), 25u);
    EXPECT_EQ(record, expected);
}

TEST_F(BinaryVarTest, OffsetsAreSixteenBitLittleEndian) {
    clsProtocolBinaryVar field;
    field.TextFor0(L"A");
    const Bytes record = field.GetVarBinData(0x0300);
    EXPECT_EQ(record[10], 0x12);
    EXPECT_EQ(record[11], 0x03);
    EXPECT_EQ(record[14], 0x14);
    EXPECT_EQ(record[15], 0x03);
}

TEST_F(BinaryVarTest, TextsAreWrittenAsAnsiBytes) {
    clsProtocolBinaryVar field;
    field.TextFor0(L"\u00e9\u20ac");  // é and the euro sign of the ANSI code page
    field.TextFor1(L"\u4e2d");        // not in the code page
    const Bytes record = field.GetVarBinData(0);
    EXPECT_EQ(record[18], 0xE9);
    EXPECT_EQ(record[19], 0x80);
    EXPECT_EQ(record[20], 0);
    EXPECT_EQ(record[21], '?');
}

TEST_F(BinaryVarTest, TextOver255CharactersOverflows) {
    clsProtocolBinaryVar field;
    field.TextFor1(std::wstring(256, L'x'));
    EXPECT_EQ(runtimeErrorOf([&] { field.GetVarBinData(0); }), err::Overflow);
    field.TextFor1(std::wstring(255, L'x'));
    EXPECT_EQ(field.GetVarBinData(0).size(), 18u + 1 + 256);
}

TEST_F(BinaryVarTest, LoadFollowsTheFirstOffsetAndReadsTheSecondTextBehindIt) {
    // The offset at 14 and both lengths lie; the reader does not use them.
    Bytes image(40, 0xEE);
    const Bytes record{2, 0, 2, 0, 0x05, 0x00, 0, 0, 0, 0, 24, 0, 9, 0, 200, 0, 9, 0};
    std::copy(record.begin(), record.end(), image.begin() + 6);
    const Bytes texts{'L', 'O', 0, 'H', 'I', 'G', 'H', 0};
    std::copy(texts.begin(), texts.end(), image.begin() + 24);
    clsProtocolBinaryVar field;
    field.SetVarBinData(image, 6);
    EXPECT_EQ(field.TextFor0(), L"LO");
    EXPECT_EQ(field.TextFor1(), L"HIGH");
    EXPECT_EQ(field.Length(), 4);
    EXPECT_EQ(field.LikedOperand()->OperandType(), 2);
    EXPECT_EQ(field.LikedOperand()->OperandAddress(), 5);
    EXPECT_FALSE(field.LikedOperand()->IsNew());
    EXPECT_TRUE(context->Operands.IsRegistered(2, 5));
}

TEST_F(BinaryVarTest, FieldRoundTripsThroughTheDataArea) {
    clsProtocolBinaryVar field;
    field.TextFor0(L"Pump off");
    field.TextFor1(L"Pump \u00e9");
    field.DefaultDisplay(1);
    linkOperand(*field.LikedOperand(), 10, 0x0203);
    const size_t at = 82;  // data blocks begin at even offsets
    Bytes image = test::dataAreaImage(field.GetVarBinData(at), at);
    clsProtocolBinaryVar loaded;
    loaded.SetVarBinData(image, at);
    EXPECT_EQ(loaded.TextFor0(), L"Pump off");
    EXPECT_EQ(loaded.TextFor1(), L"Pump \u00e9");
    EXPECT_EQ(loaded.Length(), 8);
    EXPECT_EQ(loaded.LikedOperand()->OperandType(), 10);
    EXPECT_EQ(loaded.LikedOperand()->OperandAddress(), 0x0203);
    EXPECT_EQ(loaded.DefaultDisplay(), 0);
    EXPECT_EQ(loaded.GetVarBinData(at), field.GetVarBinData(at));
}

TEST_F(BinaryVarTest, ATextHoldingAZeroByteCannotRoundTrip) {
    clsProtocolBinaryVar field;
    field.TextFor0(std::wstring(L"A\0B", 3));
    field.TextFor1(L"C");
    Bytes image = test::dataAreaImage(field.GetVarBinData(10), 10);
    clsProtocolBinaryVar loaded;
    loaded.SetVarBinData(image, 10);
    EXPECT_EQ(loaded.TextFor0(), L"A");
    EXPECT_EQ(loaded.TextFor1(), L"B");
}

TEST_F(BinaryVarTest, AnOffsetOutsideTheImageRaisesSubscriptError) {
    clsProtocolBinaryVar field;
    field.TextFor0(L"AB");
    Bytes image = test::dataAreaImage(field.GetVarBinData(10), 10);
    image[10 + 10] = 0xF0;  // the first text now lies far behind the end
    clsProtocolBinaryVar loaded;
    EXPECT_EQ(runtimeErrorOf([&] { loaded.SetVarBinData(image, 10); }), err::SubscriptOutOfRange);
    EXPECT_EQ(loaded.TextFor0(), L"");
    EXPECT_TRUE(loaded.LikedOperand()->IsNew());
}

TEST_F(BinaryVarTest, AnUnterminatedTextRaisesSubscriptError) {
    Bytes image{2, 0, 1, 0, 1, 0, 0, 0, 0, 0, 18, 0, 2, 0, 21, 0, 3, 0, 'A', 'B', 0, 'C', 'D'};
    clsProtocolBinaryVar field;
    EXPECT_EQ(runtimeErrorOf([&] { field.SetVarBinData(image, 0); }), err::SubscriptOutOfRange);
    Bytes cut{2, 0, 1, 0, 1};
    EXPECT_EQ(runtimeErrorOf([&] { field.SetVarBinData(cut, 0); }), err::SubscriptOutOfRange);
}

TEST_F(BinaryVarTest, ReplicaCopiesEveryPropertyAndClonesTheOperand) {
    clsProtocolBinaryVar field;
    field.StartPosition(4);
    field.IsSelected(true);
    field.IsCanceled(true);
    field.TextFor0(L"a");
    field.TextFor1(L"bcd");
    field.DefaultDisplay(1);
    linkOperand(*field.LikedOperand(), 11, 3);
    auto replica = std::dynamic_pointer_cast<clsProtocolBinaryVar>(field.GetReplica());
    ASSERT_TRUE(replica);
    EXPECT_EQ(replica->StartPosition(), 4);
    EXPECT_TRUE(replica->IsSelected());
    EXPECT_TRUE(replica->IsCanceled());
    EXPECT_EQ(replica->TextFor0(), L"a");
    EXPECT_EQ(replica->TextFor1(), L"bcd");
    EXPECT_EQ(replica->DefaultDisplay(), 1);
    EXPECT_EQ(replica->Length(), 3);
    EXPECT_NE(replica->LikedOperand().get(), field.LikedOperand().get());
    EXPECT_EQ(replica->LikedOperand()->OperandType(), 11);
    EXPECT_EQ(replica->LikedOperand()->OperandAddress(), 3);
}

TEST_F(BinaryVarTest, FindOnlyAndReplaceWorkOnTheLinkedOperand) {
    clsProtocolBinaryVar field;
    OperandCollection none;
    field.AddOperandsToFindOnlyCollection(none);
    EXPECT_EQ(none.Count(), 0);

    linkOperand(*field.LikedOperand(), 1, 8, 3);
    OperandCollection found;
    found.Add(newOperand(), L"1");
    found.Add(newOperand(), L"2");
    field.AddOperandsToFindOnlyCollection(found);
    ASSERT_EQ(found.Count(), 3);
    EXPECT_EQ(found.Item(L"3").get(), field.LikedOperand().get());

    field.ReplaceOperands(0, 1, 8, 9);
    EXPECT_EQ(field.LikedOperand()->OperandAddress(), 8);
    field.ReplaceOperands(3, 1, 8, 9);
    EXPECT_EQ(field.LikedOperand()->OperandAddress(), 9);
}

}  // namespace
}  // namespace qx
