#include "message/protocol_date_var.h"

#include <gtest/gtest.h>

#include "message/protocol_message.h"
#include "message_test_support.h"
#include "platform/host/host_context.h"

namespace qx {
namespace {

using test::runtimeErrorOf;

class DateVarTest : public ::testing::Test {
protected:
    ScopedHostContext context;
};

TEST_F(DateVarTest, NewFieldIsDDMMYYOfLength8) {
    clsProtocolDateVar field;
    EXPECT_EQ(field.DateFormatType(), 6);
    EXPECT_EQ(field.Length(), 8);
    EXPECT_EQ(field.StartPosition(), 0);
    EXPECT_FALSE(field.IsSelected());
    EXPECT_FALSE(field.IsCanceled());
    EXPECT_EQ(field.GetVarSegmentType(), 3);
}

TEST_F(DateVarTest, LengthIsTheLengthOfTheFormatText) {
    const std::pair<int32_t, int32_t> lengths[] = {{2, 3}, {3, 9}, {4, 5}, {5, 5}, {6, 8}, {7, 8}};
    for (auto [format, length] : lengths) {
        clsProtocolDateVar field;
        field.DateFormatType(format);
        EXPECT_EQ(field.Length(), length) << "format " << format;
    }
}

TEST_F(DateVarTest, FormatsBelow2OrAbove7HaveLengthZero) {
    for (int32_t format : {0, 1, 8, -1}) {
        clsProtocolDateVar field;
        field.DateFormatType(format);
        EXPECT_EQ(field.Length(), 0) << "format " << format;
    }
}

TEST_F(DateVarTest, RecordIs17BytesWithTheFormatInByte1) {
    clsProtocolDateVar field;
    field.DateFormatType(4);
    const Bytes expected{0, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(field.GetVarBinData(777), expected);
}

TEST_F(DateVarTest, FormatAboveAByteOverflows) {
    clsProtocolDateVar field;
    field.DateFormatType(256);
    EXPECT_EQ(runtimeErrorOf([&] { field.GetVarBinData(0); }), err::Overflow);
}

TEST_F(DateVarTest, LoadReadsTheFormatTwoBytesBehindTheTypeByte) {
    Bytes image = test::sendTableImage(3, Bytes{0, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 64);
    clsProtocolDateVar field;
    field.SetVarBinData(image, 64);
    EXPECT_EQ(field.DateFormatType(), 3);
    EXPECT_EQ(field.Length(), 9);
}

TEST_F(DateVarTest, FieldRoundTripsThroughTheSegmentTable) {
    clsProtocolDateVar field;
    field.DateFormatType(7);
    Bytes image = test::sendTableImage(3, field.GetVarBinData(83), 82);
    clsProtocolDateVar loaded;
    loaded.SetVarBinData(image, 82);
    EXPECT_EQ(loaded.DateFormatType(), 7);
    EXPECT_EQ(loaded.Length(), 8);
}

TEST_F(DateVarTest, ShortRecordRaisesSubscriptError) {
    Bytes image{3, 0};
    clsProtocolDateVar field;
    EXPECT_EQ(runtimeErrorOf([&] { field.SetVarBinData(image, 0); }), err::SubscriptOutOfRange);
    EXPECT_EQ(field.DateFormatType(), 6);
}

TEST_F(DateVarTest, ReplicaCopiesSelectionLengthFormatAndPosition) {
    clsProtocolDateVar field;
    field.DateFormatType(2);
    field.StartPosition(40);
    field.IsSelected(true);
    field.Length(11);
    auto replica = std::dynamic_pointer_cast<clsProtocolDateVar>(field.GetReplica());
    ASSERT_TRUE(replica);
    EXPECT_EQ(replica->DateFormatType(), 2);
    EXPECT_EQ(replica->StartPosition(), 40);
    EXPECT_TRUE(replica->IsSelected());
    EXPECT_EQ(replica->Length(), 11);
    EXPECT_NE(replica.get(), &field);
}

TEST_F(DateVarTest, HasNoOperandToListOrReplace) {
    clsProtocolDateVar field;
    OperandCollection found;
    field.AddOperandsToFindOnlyCollection(found);
    EXPECT_EQ(found.Count(), 0);
    field.ReplaceOperands(0, 3, 0, 1);
    EXPECT_EQ(field.GetVarBinData(0), (Bytes{0, 6, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(DateVarTest, ALongDateFormatMovesWhatFollowsByNinePositions) {
    // The message makes room for a new field with InsertBlanks at the click
    // position and then puts the field in.
    clsProtocolMessage message;
    message.InsertChar(0, L"A");
    message.InsertChar(1, L"B");
    message.AddControlChar(2, 13);
    auto date = std::make_shared<clsProtocolDateVar>();
    date->DateFormatType(3);
    date->StartPosition(1);
    message.InsertBlanks(1, date->Length());
    message.AddVar(date);
    EXPECT_EQ(message.MessageString().substr(0, 12), L"A         B ");
    EXPECT_EQ(message.ControlChars()[11], 13);
    EXPECT_EQ(message.ControlChars()[2], -1);
    EXPECT_TRUE(message.HitTest(9));
    EXPECT_FALSE(message.HitTest(10));
}

}  // namespace
}  // namespace qx
