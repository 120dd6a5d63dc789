#include "message/protocol_numeric_var.h"

#include <gtest/gtest.h>

#include "message_test_support.h"
#include "platform/host/host_context.h"

namespace qx {
namespace {

using test::linkOperand;
using test::runtimeErrorOf;

class NumericVarTest : public ::testing::Test {
protected:
    ScopedHostContext context;
};

TEST_F(NumericVarTest, NewFieldStartsFromItsDefaults) {
    clsProtocolNumericVar field;
    EXPECT_EQ(field.StartPosition(), 0);
    EXPECT_EQ(field.Length(), 5);
    EXPECT_FALSE(field.IsSelected());
    EXPECT_FALSE(field.IsCanceled());
    EXPECT_EQ(field.PositionInBinArray(), 0);
    EXPECT_EQ(field.StreamForm(), 0);
    EXPECT_EQ(field.VarFormat(), 0);
    EXPECT_EQ(field.BeforePoint(), 5);
    EXPECT_EQ(field.AfterPoint(), 0);
    EXPECT_EQ(field.PrefixSignFormat(), 1);
    EXPECT_EQ(field.LeadingZeros(), 0);
    EXPECT_EQ(field.VectorLength(), 1);
    EXPECT_EQ(field.StreamVectorLength(), 1);
    EXPECT_EQ(field.StreamLengthAddress(), -1);
    EXPECT_EQ(field.CopyBytesFormat(), 0);
    EXPECT_EQ(field.GetVarSegmentType(), 5);
}

TEST_F(NumericVarTest, LinkedOperandOffersWordAndLongTypesInOrder) {
    clsProtocolNumericVar field;
    const OperandPtr op = field.LikedOperand();
    ASSERT_TRUE(op);
    EXPECT_EQ(test::allowedTypes(*op), (std::vector<int32_t>{3, 5, 4, 6, 36, 16}));
    EXPECT_EQ(op->OperandType(), 3);
    EXPECT_EQ(op->OperandMode(), 1);
    EXPECT_TRUE(op->IsNew());
    EXPECT_EQ(op->OperandFormat(), 3);
}

TEST_F(NumericVarTest, ExtendedOperandsAddTypes65To67) {
    context->ExtendedOperands = true;
    clsProtocolNumericVar field;
    EXPECT_EQ(test::allowedTypes(*field.LikedOperand()), (std::vector<int32_t>{3, 5, 4, 6, 36, 16, 65, 66, 67}));
}

TEST_F(NumericVarTest, DefaultLengthIsNotRecomputedUntilASettingChanges) {
    clsProtocolNumericVar field;
    // Five digits with a sign would be 6; the new field still reads 5.
    EXPECT_EQ(field.Length(), 5);
    field.LeadingZeros(2);
    EXPECT_EQ(field.Length(), 5);
    field.BeforePoint(5);
    EXPECT_EQ(field.Length(), 6);
}

TEST_F(NumericVarTest, DecimalVectorWithPointAndSignIs27Long) {
    clsProtocolNumericVar field;
    field.BeforePoint(5);
    field.AfterPoint(2);
    field.VectorLength(3);
    field.PrefixSignFormat(2);
    EXPECT_EQ(field.Length(), 27);
}

TEST_F(NumericVarTest, DecimalWithoutPrefixCountsNoSign) {
    clsProtocolNumericVar field;
    field.PrefixSignFormat(0);
    field.BeforePoint(4);
    field.VectorLength(2);
    EXPECT_EQ(field.Length(), 8);
    field.AfterPoint(1);
    EXPECT_EQ(field.Length(), 12);
}

TEST_F(NumericVarTest, HexFieldIgnoresAfterPointAndPrefixInLength) {
    clsProtocolNumericVar field;
    field.VarFormat(1);
    field.BeforePoint(4);
    field.AfterPoint(2);
    field.PrefixSignFormat(1);
    field.VectorLength(2);
    EXPECT_EQ(field.Length(), 8);
}

TEST_F(NumericVarTest, HexRecordStoresCode4WithTheAfterPointItHolds) {
    clsProtocolNumericVar field;
    field.VarFormat(1);
    field.BeforePoint(4);
    field.AfterPoint(2);
    linkOperand(*field.LikedOperand(), 3, 0x0102);
    const Bytes expected{0, 4, 1, 4, 2, 0, 0, 3, 0, 0x02, 0x01, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(field.GetVarBinData(0), expected);
}

TEST_F(NumericVarTest, StreamLengthIsVectorTimesBytesPerElement) {
    const std::pair<int32_t, int32_t> bytesPerElement[] = {{0, 1}, {1, 2}, {3, 3}, {2, 4}, {5, 4}, {4, 0}, {6, 0}};
    for (auto [format, bytes] : bytesPerElement) {
        clsProtocolNumericVar field;
        field.StreamForm(1);
        field.StreamVectorLength(3);
        field.CopyBytesFormat(format);
        EXPECT_EQ(field.Length(), 3 * bytes) << "CopyBytesFormat " << format;
    }
}

TEST_F(NumericVarTest, IndirectCountTakesOnePosition) {
    clsProtocolNumericVar field;
    field.StreamForm(1);
    field.StreamVectorLength(10);
    field.CopyBytesFormat(2);
    EXPECT_EQ(field.Length(), 40);
    field.StreamLengthAddress(0);
    EXPECT_EQ(field.Length(), 1);
}

TEST_F(NumericVarTest, UnknownStreamFormHasLengthZero) {
    clsProtocolNumericVar field;
    field.StreamForm(2);
    EXPECT_EQ(field.Length(), 0);
}

TEST_F(NumericVarTest, WritingLengthStoresTheValueAsItIs) {
    clsProtocolNumericVar field;
    field.Length(42);
    EXPECT_EQ(field.Length(), 42);
    field.LeadingZeros(1);
    EXPECT_EQ(field.Length(), 42);
    field.VectorLength(1);
    EXPECT_EQ(field.Length(), 6);
}

TEST_F(NumericVarTest, AsciiRecordLaysOutEveryByte) {
    clsProtocolNumericVar field;
    field.LeadingZeros(1);
    field.PrefixSignFormat(2);
    field.VectorLength(3);
    field.BeforePoint(5);
    field.AfterPoint(2);
    linkOperand(*field.LikedOperand(), 5, 0x1234);
    const Bytes expected{1, 2, 3, 5, 2, 0, 0, 5, 0, 0x34, 0x12, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(field.GetVarBinData(1234), expected);
}

TEST_F(NumericVarTest, AsciiFormatCodeFollowsThePrefix) {
    const std::pair<int32_t, uint8_t> codes[] = {{0, 1}, {1, 3}, {2, 2}};
    for (auto [prefix, code] : codes) {
        clsProtocolNumericVar field;
        field.PrefixSignFormat(prefix);
        EXPECT_EQ(field.GetVarBinData(0)[1], code) << "prefix " << prefix;
    }
}

TEST_F(NumericVarTest, RecordKeepsTheLow16BitsOfTheOperandAddress) {
    clsProtocolNumericVar field;
    linkOperand(*field.LikedOperand(), 16, 0x12345);
    const Bytes record = field.GetVarBinData(0);
    EXPECT_EQ(record[7], 16);
    EXPECT_EQ(record[9], 0x45);
    EXPECT_EQ(record[10], 0x23);
}

TEST_F(NumericVarTest, StreamRecordWithDirectCount) {
    clsProtocolNumericVar field;
    field.StreamForm(1);
    field.StreamVectorLength(7);
    field.CopyBytesFormat(3);
    field.LeadingZeros(2);
    field.BeforePoint(9);  // kept, but not in the stream record
    linkOperand(*field.LikedOperand(), 6, 300);
    const Bytes expected{2, 5, 7, 3, 0, 0, 0, 6, 0, 0x2C, 0x01, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(field.GetVarBinData(0), expected);
}

TEST_F(NumericVarTest, StreamRecordCodesCrossValues2And3) {
    const std::pair<int32_t, uint8_t> codes[] = {{0, 1}, {1, 2}, {3, 3}, {2, 4}, {5, 5}};
    for (auto [format, code] : codes) {
        clsProtocolNumericVar field;
        field.StreamForm(1);
        field.CopyBytesFormat(format);
        EXPECT_EQ(field.GetVarBinData(0)[3], code) << "CopyBytesFormat " << format;
    }
}

TEST_F(NumericVarTest, StreamRecordWithIndirectCountStoresItsAddress) {
    clsProtocolNumericVar field;
    field.StreamForm(1);
    field.StreamVectorLength(7);
    field.CopyBytesFormat(1);
    field.StreamLengthAddress(0x0203);
    linkOperand(*field.LikedOperand(), 3, 10);
    const Bytes expected{0, 5, 0, 2, 0, 0x03, 0x02, 3, 0, 10, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(field.GetVarBinData(0), expected);
}

TEST_F(NumericVarTest, ValuesAboveAByteOverflowWhileTheRecordIsBuilt) {
    {
        clsProtocolNumericVar field;
        field.VectorLength(256);
        EXPECT_EQ(runtimeErrorOf([&] { field.GetVarBinData(0); }), err::Overflow);
    }
    {
        clsProtocolNumericVar field;
        field.BeforePoint(256);
        EXPECT_EQ(runtimeErrorOf([&] { field.GetVarBinData(0); }), err::Overflow);
    }
    {
        clsProtocolNumericVar field;
        field.AfterPoint(256);
        EXPECT_EQ(runtimeErrorOf([&] { field.GetVarBinData(0); }), err::Overflow);
    }
    {
        clsProtocolNumericVar field;
        field.AfterPoint(255);
        field.VectorLength(255);
        EXPECT_EQ(field.GetVarBinData(0)[4], 255);
    }
}

TEST_F(NumericVarTest, LoadReadsTheRecordBehindTheTypeByte) {
    const Bytes record{2, 3, 4, 6, 1, 0, 0, 5, 0, 0x10, 0x00, 0, 0, 0, 0, 0, 0};
    Bytes image = test::sendTableImage(5, record, 64);
    clsProtocolNumericVar field;
    field.SetVarBinData(image, 64);
    EXPECT_EQ(field.LeadingZeros(), 2);
    EXPECT_EQ(field.StreamForm(), 0);
    EXPECT_EQ(field.VarFormat(), 0);
    EXPECT_EQ(field.PrefixSignFormat(), 1);
    EXPECT_EQ(field.VectorLength(), 4);
    EXPECT_EQ(field.BeforePoint(), 6);
    EXPECT_EQ(field.AfterPoint(), 1);
    EXPECT_EQ(field.LikedOperand()->OperandType(), 5);
    EXPECT_EQ(field.LikedOperand()->OperandAddress(), 16);
    EXPECT_EQ(field.Length(), (6 + 2) * 4 + 4);
}

TEST_F(NumericVarTest, LoadMapsTheFormatCodes) {
    struct Case {
        uint8_t code;
        int32_t varFormat, prefix;
    };
    const Case cases[] = {{1, 0, 0}, {3, 0, 1}, {2, 0, 2}, {4, 1, 1}};
    for (const Case& c : cases) {
        Bytes image = test::sendTableImage(5, Bytes{0, c.code, 1, 5, 0, 0, 0, 3, 0, 1, 0, 0, 0, 0, 0, 0, 0}, 10);
        clsProtocolNumericVar field;
        field.SetVarBinData(image, 10);
        EXPECT_EQ(field.VarFormat(), c.varFormat) << int(c.code);
        EXPECT_EQ(field.PrefixSignFormat(), c.prefix) << int(c.code);
    }
}

TEST_F(NumericVarTest, LoadTakesOnlyLeadingZeros0To2) {
    Bytes image = test::sendTableImage(5, Bytes{3, 3, 1, 5, 0, 0, 0, 3, 0, 1, 0, 0, 0, 0, 0, 0, 0}, 10);
    clsProtocolNumericVar field;
    field.SetVarBinData(image, 10);
    EXPECT_EQ(field.LeadingZeros(), 0);
}

TEST_F(NumericVarTest, LoadRegistersAnOperandTheHostDoesNotKnow) {
    Bytes image = test::sendTableImage(5, Bytes{0, 3, 1, 5, 0, 0, 0, 3, 0, 7, 0, 0, 0, 0, 0, 0, 0}, 10);
    clsProtocolNumericVar field;
    field.SetVarBinData(image, 10);
    EXPECT_TRUE(context->Operands.IsRegistered(3, 7));
    EXPECT_EQ(context->Operands.LinkCount(3, 7), 1);
    EXPECT_FALSE(field.LikedOperand()->IsNew());

    clsProtocolNumericVar again;
    again.SetVarBinData(image, 10);
    EXPECT_EQ(context->Operands.LinkCount(3, 7), 1);
}

TEST_F(NumericVarTest, StreamVectorLengthZeroIsReadAsIndirectCount) {
    Bytes image = test::sendTableImage(5, Bytes{0, 5, 0, 4, 0, 0x21, 0x00, 3, 0, 9, 0, 0, 0, 0, 0, 0, 0}, 20);
    clsProtocolNumericVar field;
    field.SetVarBinData(image, 20);
    EXPECT_EQ(field.StreamForm(), 1);
    EXPECT_EQ(field.StreamVectorLength(), 1);
    EXPECT_EQ(field.StreamLengthAddress(), 0x21);
    EXPECT_EQ(field.CopyBytesFormat(), 2);
    EXPECT_EQ(field.Length(), 1);
}

TEST_F(NumericVarTest, DirectStreamCountLoadsWithoutAnAddress) {
    Bytes image = test::sendTableImage(5, Bytes{0, 5, 6, 2, 0, 0x21, 0x00, 3, 0, 9, 0, 0, 0, 0, 0, 0, 0}, 20);
    clsProtocolNumericVar field;
    field.SetVarBinData(image, 20);
    EXPECT_EQ(field.StreamVectorLength(), 6);
    EXPECT_EQ(field.StreamLengthAddress(), -1);
    EXPECT_EQ(field.CopyBytesFormat(), 1);
    EXPECT_EQ(field.Length(), 12);
}

TEST_F(NumericVarTest, IndirectCountAtAddressZeroRoundTripsButIsNotListed) {
    clsProtocolNumericVar field;
    field.StreamForm(1);
    field.StreamLengthAddress(0);
    linkOperand(*field.LikedOperand(), 3, 4);
    Bytes image = test::sendTableImage(5, field.GetVarBinData(65), 64);
    clsProtocolNumericVar loaded;
    loaded.SetVarBinData(image, 64);
    EXPECT_EQ(loaded.StreamLengthAddress(), 0);
    EXPECT_EQ(loaded.Length(), 1);

    OperandCollection found;
    loaded.AddOperandsToFindOnlyCollection(found);
    ASSERT_EQ(found.Count(), 1);
    EXPECT_EQ(found.Item(1).get(), loaded.LikedOperand().get());
}

TEST_F(NumericVarTest, FindOnlyListsTheOperandAndTheIndirectCount) {
    clsProtocolNumericVar field;
    field.StreamForm(1);
    field.StreamLengthAddress(12);
    linkOperand(*field.LikedOperand(), 5, 100);
    OperandCollection found;
    found.Add(newOperand(), L"1");
    field.AddOperandsToFindOnlyCollection(found);
    ASSERT_EQ(found.Count(), 3);
    EXPECT_EQ(found.Item(L"2").get(), field.LikedOperand().get());
    EXPECT_EQ(found.Item(L"3")->OperandType(), 3);
    EXPECT_EQ(found.Item(L"3")->OperandAddress(), 12);
}

TEST_F(NumericVarTest, UnlinkedOperandListsNothingNotEvenTheIndirectCount) {
    clsProtocolNumericVar field;
    field.StreamForm(1);
    field.StreamLengthAddress(12);
    OperandCollection found;
    field.AddOperandsToFindOnlyCollection(found);
    EXPECT_EQ(found.Count(), 0);
}

TEST_F(NumericVarTest, ReplaceOperandsMovesAMatchingLinkOnly) {
    clsProtocolNumericVar field;
    field.StreamForm(1);
    field.StreamLengthAddress(10);
    linkOperand(*field.LikedOperand(), 3, 10, 2);
    field.ReplaceOperands(1, 3, 10, 50);  // other network
    EXPECT_EQ(field.LikedOperand()->OperandAddress(), 10);
    field.ReplaceOperands(2, 5, 10, 50);  // other type
    EXPECT_EQ(field.LikedOperand()->OperandAddress(), 10);
    field.ReplaceOperands(2, 3, 11, 50);  // other address
    EXPECT_EQ(field.LikedOperand()->OperandAddress(), 10);
    field.ReplaceOperands(2, 3, 10, 50);
    EXPECT_EQ(field.LikedOperand()->OperandAddress(), 50);
    EXPECT_EQ(field.StreamLengthAddress(), 10);
}

TEST_F(NumericVarTest, ReplicaCopiesEverySettingAndClonesTheOperand) {
    clsProtocolNumericVar field;
    field.StartPosition(33);
    field.IsSelected(true);
    field.IsCanceled(true);
    field.VarFormat(1);
    field.BeforePoint(7);
    field.AfterPoint(3);
    field.PrefixSignFormat(2);
    field.LeadingZeros(1);
    field.VectorLength(2);
    field.StreamVectorLength(4);
    field.StreamLengthAddress(9);
    field.CopyBytesFormat(5);
    field.Length(99);
    linkOperand(*field.LikedOperand(), 6, 77, 1);

    auto replica = std::dynamic_pointer_cast<clsProtocolNumericVar>(field.GetReplica());
    ASSERT_TRUE(replica);
    EXPECT_EQ(replica->StartPosition(), 33);
    EXPECT_TRUE(replica->IsSelected());
    EXPECT_TRUE(replica->IsCanceled());
    EXPECT_EQ(replica->StreamForm(), 0);
    EXPECT_EQ(replica->VarFormat(), 1);
    EXPECT_EQ(replica->BeforePoint(), 7);
    EXPECT_EQ(replica->AfterPoint(), 3);
    EXPECT_EQ(replica->PrefixSignFormat(), 2);
    EXPECT_EQ(replica->LeadingZeros(), 1);
    EXPECT_EQ(replica->VectorLength(), 2);
    EXPECT_EQ(replica->StreamVectorLength(), 4);
    EXPECT_EQ(replica->StreamLengthAddress(), 9);
    EXPECT_EQ(replica->CopyBytesFormat(), 5);
    EXPECT_EQ(replica->Length(), 99);
    ASSERT_NE(replica->LikedOperand().get(), field.LikedOperand().get());
    EXPECT_EQ(replica->LikedOperand()->OperandType(), 6);
    EXPECT_EQ(replica->LikedOperand()->OperandAddress(), 77);
    EXPECT_EQ(replica->LikedOperand()->OperandNetID(), 1);
    replica->LikedOperand()->OperandAddress(5);
    EXPECT_EQ(field.LikedOperand()->OperandAddress(), 77);
}

TEST_F(NumericVarTest, AsciiFieldRoundTripsThroughTheSegmentTable) {
    clsProtocolNumericVar field;
    field.LeadingZeros(2);
    field.VarFormat(0);
    field.PrefixSignFormat(0);
    field.VectorLength(2);
    field.BeforePoint(6);
    field.AfterPoint(3);
    linkOperand(*field.LikedOperand(), 36, 500);
    Bytes image = test::sendTableImage(5, field.GetVarBinData(83), 82);
    clsProtocolNumericVar loaded;
    loaded.SetVarBinData(image, 82);
    EXPECT_EQ(loaded.LeadingZeros(), 2);
    EXPECT_EQ(loaded.StreamForm(), 0);
    EXPECT_EQ(loaded.VarFormat(), 0);
    EXPECT_EQ(loaded.PrefixSignFormat(), 0);
    EXPECT_EQ(loaded.VectorLength(), 2);
    EXPECT_EQ(loaded.BeforePoint(), 6);
    EXPECT_EQ(loaded.AfterPoint(), 3);
    EXPECT_EQ(loaded.LikedOperand()->OperandType(), 36);
    EXPECT_EQ(loaded.LikedOperand()->OperandAddress(), 500);
    EXPECT_EQ(loaded.Length(), field.Length());
    EXPECT_EQ(loaded.GetVarBinData(83), field.GetVarBinData(83));
}

TEST_F(NumericVarTest, StreamFieldLosesItsAsciiSettingsInARoundTrip) {
    clsProtocolNumericVar field;
    field.VarFormat(1);
    field.PrefixSignFormat(2);
    field.VectorLength(3);
    field.BeforePoint(8);
    field.AfterPoint(2);
    field.StreamForm(1);
    field.StreamVectorLength(5);
    field.CopyBytesFormat(2);
    linkOperand(*field.LikedOperand(), 5, 1);
    Bytes image = test::sendTableImage(5, field.GetVarBinData(0), 60);
    clsProtocolNumericVar loaded;
    loaded.SetVarBinData(image, 60);
    EXPECT_EQ(loaded.StreamForm(), 1);
    EXPECT_EQ(loaded.StreamVectorLength(), 5);
    EXPECT_EQ(loaded.CopyBytesFormat(), 2);
    EXPECT_EQ(loaded.Length(), 20);
    EXPECT_EQ(loaded.VarFormat(), 0);
    EXPECT_EQ(loaded.PrefixSignFormat(), 1);
    EXPECT_EQ(loaded.VectorLength(), 1);
    EXPECT_EQ(loaded.BeforePoint(), 5);
    EXPECT_EQ(loaded.AfterPoint(), 0);
}

TEST_F(NumericVarTest, ShortRecordRaisesSubscriptErrorAndLeavesTheFieldAsItWas) {
    Bytes image{5, 1, 3, 1, 5, 0, 0, 0, 3, 0, 7};  // cut after record byte 9
    clsProtocolNumericVar field;
    EXPECT_EQ(runtimeErrorOf([&] { field.SetVarBinData(image, 0); }), err::SubscriptOutOfRange);
    EXPECT_EQ(field.LeadingZeros(), 0);
    EXPECT_EQ(field.BeforePoint(), 5);
    EXPECT_EQ(field.Length(), 5);
    Bytes empty;
    EXPECT_EQ(runtimeErrorOf([&] { field.SetVarBinData(empty, 0); }), err::SubscriptOutOfRange);
    Bytes whole(40, 0);
    EXPECT_EQ(runtimeErrorOf([&] { field.SetVarBinData(whole, -3); }), err::SubscriptOutOfRange);
}

}  // namespace
}  // namespace qx
