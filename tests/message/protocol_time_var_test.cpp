#include "message/protocol_time_var.h"

#include <gtest/gtest.h>

#include "message_test_support.h"
#include "platform/host/host_context.h"

namespace qx {
namespace {

using test::runtimeErrorOf;

class TimeVarTest : public ::testing::Test {
protected:
    ScopedHostContext context;
};

TEST_F(TimeVarTest, NewFieldIsHHMMOfLength5) {
    clsProtocolTimeVar field;
    EXPECT_EQ(field.TimeFormatType(), 0);
    EXPECT_EQ(field.Length(), 5);
    EXPECT_EQ(field.StartPosition(), 0);
    EXPECT_FALSE(field.IsSelected());
    EXPECT_FALSE(field.IsCanceled());
    EXPECT_EQ(field.GetVarSegmentType(), 4);
}

TEST_F(TimeVarTest, LengthIsTheLengthOfTheFormatText) {
    clsProtocolTimeVar field;
    field.TimeFormatType(1);
    EXPECT_EQ(field.Length(), 8);
    field.TimeFormatType(0);
    EXPECT_EQ(field.Length(), 5);
    field.TimeFormatType(2);
    EXPECT_EQ(field.Length(), 0);
    field.TimeFormatType(-1);
    EXPECT_EQ(field.Length(), 0);
}

TEST_F(TimeVarTest, RecordIs17BytesWithTheFormatInByte1) {
    clsProtocolTimeVar field;
    field.TimeFormatType(1);
    const Bytes expected{0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(field.GetVarBinData(5), expected);
}

TEST_F(TimeVarTest, FormatAboveAByteOverflows) {
    clsProtocolTimeVar field;
    field.TimeFormatType(300);
    EXPECT_EQ(runtimeErrorOf([&] { field.GetVarBinData(0); }), err::Overflow);
}

TEST_F(TimeVarTest, LoadReadsTheFormatTwoBytesBehindTheTypeByte) {
    Bytes image = test::sendTableImage(4, Bytes{0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 100);
    clsProtocolTimeVar field;
    field.SetVarBinData(image, 100);
    EXPECT_EQ(field.TimeFormatType(), 1);
    EXPECT_EQ(field.Length(), 8);
}

TEST_F(TimeVarTest, FieldRoundTripsThroughTheSegmentTable) {
    clsProtocolTimeVar field;
    field.TimeFormatType(1);
    Bytes image = test::sendTableImage(4, field.GetVarBinData(65), 64);
    clsProtocolTimeVar loaded;
    loaded.SetVarBinData(image, 64);
    EXPECT_EQ(loaded.TimeFormatType(), 1);
    EXPECT_EQ(loaded.Length(), 8);
}

TEST_F(TimeVarTest, ShortRecordRaisesSubscriptError) {
    Bytes image{4, 0};
    clsProtocolTimeVar field;
    EXPECT_EQ(runtimeErrorOf([&] { field.SetVarBinData(image, 0); }), err::SubscriptOutOfRange);
    EXPECT_EQ(runtimeErrorOf([&] { field.SetVarBinData(image, -3); }), err::SubscriptOutOfRange);
    EXPECT_EQ(field.TimeFormatType(), 0);
}

TEST_F(TimeVarTest, ReplicaCopiesSelectionLengthFormatAndPosition) {
    clsProtocolTimeVar field;
    field.TimeFormatType(1);
    field.StartPosition(3);
    field.IsSelected(true);
    auto replica = std::dynamic_pointer_cast<clsProtocolTimeVar>(field.GetReplica());
    ASSERT_TRUE(replica);
    EXPECT_EQ(replica->TimeFormatType(), 1);
    EXPECT_EQ(replica->StartPosition(), 3);
    EXPECT_TRUE(replica->IsSelected());
    EXPECT_EQ(replica->Length(), 8);
}

TEST_F(TimeVarTest, HasNoOperandToListOrReplace) {
    clsProtocolTimeVar field;
    OperandCollection found;
    field.AddOperandsToFindOnlyCollection(found);
    EXPECT_EQ(found.Count(), 0);
    field.ReplaceOperands(0, 3, 0, 1);
    EXPECT_EQ(field.GetVarBinData(0)[1], 0);
}

}  // namespace
}  // namespace qx
