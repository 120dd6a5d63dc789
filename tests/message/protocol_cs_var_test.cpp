#include "message/protocol_cs_var.h"

#include <gtest/gtest.h>

#include "message_test_support.h"
#include "platform/host/host_context.h"

namespace qx {
namespace {

using test::runtimeErrorOf;

class CSVarTest : public ::testing::Test {
protected:
    ScopedHostContext context;
};

// Every setting given a value of its own, as a field in a message.
void fill(clsProtocolCSVar& cs) {
    cs.FormatView(1);
    cs.CSLength(2);
    cs.OffsetFromForward(3);
    cs.OffsetTillBackwards(4);
    cs.CalculationType(6);
    cs.ModulusType(2);
    cs.SpecialAddition(true);
    cs.SA_FromValue(10);
    cs.SA_ToValue(20);
    cs.SA_AddedValue(30);
    cs.STXInCS(true);
}

TEST_F(CSVarTest, NewChecksumStartsFromItsDefaults) {
    clsProtocolCSVar cs;
    EXPECT_EQ(cs.StartPosition(), 0);
    EXPECT_EQ(cs.Length(), 1);
    EXPECT_FALSE(cs.IsSelected());
    EXPECT_FALSE(cs.IsCanceled());
    EXPECT_EQ(cs.CSLength(), 1);
    EXPECT_EQ(cs.FormatView(), 0);
    EXPECT_EQ(cs.CalculationType(), 1);
    EXPECT_EQ(cs.ModulusType(), 1);
    EXPECT_EQ(cs.OffsetFromForward(), 0);
    EXPECT_EQ(cs.OffsetTillBackwards(), 0);
    EXPECT_FALSE(cs.STXInCS());
    EXPECT_FALSE(cs.SpecialAddition());
    EXPECT_EQ(cs.SA_FromValue(), 0);
    EXPECT_EQ(cs.SA_ToValue(), 0);
    EXPECT_EQ(cs.SA_AddedValue(), 0);
    EXPECT_EQ(cs.VERSION(), 0);
    EXPECT_FALSE(cs.IsVar());
    EXPECT_EQ(cs.MethodType(), 0);
    EXPECT_EQ(cs.ActualMethodType(), 0);
    EXPECT_EQ(cs.GetVarSegmentType(), 6);
}

TEST_F(CSVarTest, AnswersLightBlueBackColour) {
    clsProtocolCSVar cs;
    int32_t start = -1, length = -1;
    bool selected = true;
    std::wstring display = L"x", tip;
    uint32_t back = 0, fore = 1;
    cs.GetVarPropsEX(start, length, selected, display, tip, back, fore);
    EXPECT_EQ(back, 0xFFC0C0u);
    EXPECT_EQ(fore, 0u);
    EXPECT_EQ(display, L"");
    EXPECT_EQ(length, 1);
}

TEST_F(CSVarTest, CSLengthSetsLengthAtOnce) {
    clsProtocolCSVar cs;
    cs.CSLength(4);
    EXPECT_EQ(cs.Length(), 4);
}

TEST_F(CSVarTest, SendRecordIs17BytesStartingAtByte1) {
    clsProtocolCSVar cs;
    fill(cs);
    cs.VERSION(1);
    cs.MethodType(0);
    const Bytes expected{0, 4, 0, 2, 1, 0, 0, 3, 4, 6, 2, 1, 10, 20, 30, 0, 0};
    EXPECT_EQ(cs.GetVarBinData(123), expected);
}

TEST_F(CSVarTest, ScanRecordIs20BytesStartingAtByte0) {
    clsProtocolCSVar cs;
    fill(cs);
    cs.VERSION(1);
    cs.MethodType(1);
    const Bytes expected{4, 0, 2, 1, 0, 0, 3, 4, 6, 2, 1, 10, 20, 30, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(cs.GetVarBinData(0), expected);
    cs.MethodType(7);
    EXPECT_EQ(cs.GetVarBinData(0), expected);
}

TEST_F(CSVarTest, FormatViewRecordCodesAreThoseOfTheNumericRecord) {
    const std::pair<int32_t, uint8_t> codes[] = {{0, 1}, {1, 4}, {2, 5}, {3, 0}};
    for (auto [view, code] : codes) {
        clsProtocolCSVar cs;
        cs.FormatView(view);
        EXPECT_EQ(cs.GetVarBinData(0)[1], code) << "FormatView " << view;
    }
}

TEST_F(CSVarTest, Version0WritesNoSTXChoice) {
    clsProtocolCSVar cs;
    cs.STXInCS(true);
    cs.VERSION(0);
    EXPECT_EQ(cs.GetVarBinData(0)[4], 0);
    cs.VERSION(1);
    EXPECT_EQ(cs.GetVarBinData(0)[4], 1);
}

TEST_F(CSVarTest, WithoutSpecialAdditionTheLimitsAreZeroInTheRecord) {
    clsProtocolCSVar cs;
    cs.SA_FromValue(5);
    cs.SA_ToValue(6);
    cs.SA_AddedValue(7);
    const Bytes expected{0, 1, 0, 1, 0, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(cs.GetVarBinData(0), expected);
}

TEST_F(CSVarTest, ValuesAboveAByteOverflowWhileTheRecordIsBuilt) {
    auto overflowsWith = [](auto set) {
        clsProtocolCSVar cs;
        cs.SpecialAddition(true);
        set(cs);
        return runtimeErrorOf([&] { cs.GetVarBinData(0); });
    };
    EXPECT_EQ(overflowsWith([](clsProtocolCSVar& cs) { cs.CSLength(256); }), err::Overflow);
    EXPECT_EQ(overflowsWith([](clsProtocolCSVar& cs) { cs.OffsetFromForward(256); }), err::Overflow);
    EXPECT_EQ(overflowsWith([](clsProtocolCSVar& cs) { cs.OffsetTillBackwards(256); }), err::Overflow);
    EXPECT_EQ(overflowsWith([](clsProtocolCSVar& cs) { cs.CalculationType(256); }), err::Overflow);
    EXPECT_EQ(overflowsWith([](clsProtocolCSVar& cs) { cs.ModulusType(256); }), err::Overflow);
    EXPECT_EQ(overflowsWith([](clsProtocolCSVar& cs) { cs.SA_FromValue(256); }), err::Overflow);
    EXPECT_EQ(overflowsWith([](clsProtocolCSVar& cs) { cs.SA_ToValue(256); }), err::Overflow);
    EXPECT_EQ(overflowsWith([](clsProtocolCSVar& cs) { cs.SA_AddedValue(256); }), err::Overflow);
    EXPECT_EQ(overflowsWith([](clsProtocolCSVar& cs) { cs.SA_AddedValue(255); }), test::kNoRuntimeError);
}

TEST_F(CSVarTest, LoadReadsTwoBytesBehindTheIndex) {
    context->ExtendedOperands = true;
    // A Send table entry: type 6 at 64, record byte 1 (content byte S) at 66.
    Bytes image = test::sendTableImage(6, Bytes{0, 5, 0, 3, 1, 0, 0, 9, 8, 10, 3, 1, 1, 2, 3, 0, 0}, 64);
    clsProtocolCSVar cs;
    cs.VERSION(1);
    cs.SetVarBinData(image, 64);
    EXPECT_EQ(cs.FormatView(), 2);
    EXPECT_EQ(cs.CSLength(), 3);
    EXPECT_EQ(cs.Length(), 3);
    EXPECT_TRUE(cs.STXInCS());
    EXPECT_EQ(cs.OffsetFromForward(), 9);
    EXPECT_EQ(cs.OffsetTillBackwards(), 8);
    EXPECT_EQ(cs.CalculationType(), 10);
    EXPECT_EQ(cs.ModulusType(), 3);
    EXPECT_TRUE(cs.SpecialAddition());
    EXPECT_EQ(cs.SA_FromValue(), 1);
    EXPECT_EQ(cs.SA_ToValue(), 2);
    EXPECT_EQ(cs.SA_AddedValue(), 3);
}

TEST_F(CSVarTest, AnUnknownFormatCodeKeepsTheFormatViewTheObjectHad) {
    Bytes image = test::sendTableImage(6, Bytes{0, 2, 0, 1, 0, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0}, 10);
    clsProtocolCSVar cs;
    cs.FormatView(1);
    cs.SetVarBinData(image, 10);
    EXPECT_EQ(cs.FormatView(), 1);
}

TEST_F(CSVarTest, WithoutTheSpecialAdditionMarkTheLimitsStayAsTheyAre) {
    Bytes image = test::sendTableImage(6, Bytes{0, 1, 0, 1, 0, 0, 0, 0, 0, 1, 1, 0, 9, 9, 9, 0, 0}, 10);
    clsProtocolCSVar cs;
    cs.SpecialAddition(true);
    cs.SA_FromValue(4);
    cs.SA_ToValue(5);
    cs.SA_AddedValue(6);
    cs.SetVarBinData(image, 10);
    EXPECT_TRUE(cs.SpecialAddition());
    EXPECT_EQ(cs.SA_FromValue(), 4);
    EXPECT_EQ(cs.SA_ToValue(), 5);
    EXPECT_EQ(cs.SA_AddedValue(), 6);
}

TEST_F(CSVarTest, LengthAlwaysEqualsCSLengthAfterALoad) {
    Bytes image = test::sendTableImage(6, Bytes{0, 1, 0, 4, 0, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0}, 10);
    clsProtocolCSVar cs;
    cs.Length(9);
    cs.SetVarBinData(image, 10);
    EXPECT_EQ(cs.CSLength(), 4);
    EXPECT_EQ(cs.Length(), 4);
}

TEST_F(CSVarTest, STXInCSIsFalseWithoutExtendedOperands) {
    Bytes image = test::sendTableImage(6, Bytes{0, 1, 0, 1, 1, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0}, 10);
    clsProtocolCSVar cs;
    cs.VERSION(1);
    cs.IsVar(true);
    cs.STXInCS(true);
    cs.SetVarBinData(image, 10);
    EXPECT_FALSE(cs.STXInCS());
}

TEST_F(CSVarTest, STXInCSOfAVersion1ImageComesFromItsByte) {
    context->ExtendedOperands = true;
    Bytes with = test::sendTableImage(6, Bytes{0, 1, 0, 1, 2, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0}, 10);
    Bytes without = test::sendTableImage(6, Bytes{0, 1, 0, 1, 0, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0}, 10);
    clsProtocolCSVar cs;
    cs.VERSION(1);
    cs.SetVarBinData(with, 10);
    EXPECT_TRUE(cs.STXInCS());
    cs.IsVar(true);
    cs.SetVarBinData(without, 10);
    EXPECT_FALSE(cs.STXInCS());
}

TEST_F(CSVarTest, STXInCSOfAVersion0ImageFollowsTheOldControllerBehaviour) {
    context->ExtendedOperands = true;
    // The byte is set, but a version 0 image has no such byte: it is not read.
    Bytes image = test::sendTableImage(6, Bytes{0, 1, 0, 1, 1, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0}, 10);
    struct Case {
        int32_t actualMethodType;
        bool isVar;
        bool expected;
    };
    const Case cases[] = {{0, true, true},  {0, false, false}, {1, true, false},
                          {1, false, true}, {2, true, false},  {2, false, false}};
    for (const Case& c : cases) {
        clsProtocolCSVar cs;
        cs.VERSION(0);
        cs.ActualMethodType(c.actualMethodType);
        cs.IsVar(c.isVar);
        cs.SetVarBinData(image, 10);
        EXPECT_EQ(cs.STXInCS(), c.expected) << c.actualMethodType << " " << c.isVar;
    }
}

TEST_F(CSVarTest, FieldRoundTripsThroughTheSendSegmentTable) {
    context->ExtendedOperands = true;
    clsProtocolCSVar cs;
    fill(cs);
    cs.MethodType(0);
    cs.ActualMethodType(0);
    cs.VERSION(1);
    cs.IsVar(true);
    Bytes image = test::sendTableImage(6, cs.GetVarBinData(0), 64);
    clsProtocolCSVar loaded;
    loaded.MethodType(0);
    loaded.ActualMethodType(0);
    loaded.VERSION(1);
    loaded.IsVar(true);
    loaded.SetVarBinData(image, 64);
    EXPECT_EQ(loaded.FormatView(), 1);
    EXPECT_EQ(loaded.CSLength(), 2);
    EXPECT_EQ(loaded.Length(), 2);
    EXPECT_EQ(loaded.OffsetFromForward(), 3);
    EXPECT_EQ(loaded.OffsetTillBackwards(), 4);
    EXPECT_EQ(loaded.CalculationType(), 6);
    EXPECT_EQ(loaded.ModulusType(), 2);
    EXPECT_TRUE(loaded.SpecialAddition());
    EXPECT_EQ(loaded.SA_FromValue(), 10);
    EXPECT_EQ(loaded.SA_ToValue(), 20);
    EXPECT_EQ(loaded.SA_AddedValue(), 30);
    EXPECT_TRUE(loaded.STXInCS());
}

TEST_F(CSVarTest, FieldRoundTripsThroughTheScanSegmentTable) {
    context->ExtendedOperands = true;
    clsProtocolCSVar cs;
    fill(cs);
    cs.MethodType(1);
    cs.ActualMethodType(1);
    cs.VERSION(1);
    cs.IsVar(true);
    // The Scan image stores a checksum as type 3; the reader gets the type byte's index.
    Bytes image = test::scanTableImage(3, cs.GetVarBinData(0), 42);
    clsProtocolCSVar loaded;
    loaded.MethodType(1);
    loaded.ActualMethodType(1);
    loaded.VERSION(1);
    loaded.IsVar(true);
    loaded.SetVarBinData(image, 44);
    EXPECT_EQ(loaded.FormatView(), 1);
    EXPECT_EQ(loaded.CSLength(), 2);
    EXPECT_EQ(loaded.CalculationType(), 6);
    EXPECT_EQ(loaded.SA_AddedValue(), 30);
    EXPECT_TRUE(loaded.STXInCS());
    EXPECT_EQ(loaded.GetVarSegmentType(), 6);
}

TEST_F(CSVarTest, EndOfMessageChecksumRoundTripsThroughTheHeader) {
    context->ExtendedOperands = true;
    clsProtocolCSVar cs;
    fill(cs);
    cs.VERSION(1);
    const Bytes record = cs.GetVarBinData(0);
    // The header holds record bytes 1 to 14 at offset 40; the reader gets 38.
    Bytes image(58, 0);
    std::copy(record.begin() + 1, record.begin() + 15, image.begin() + 40);
    clsProtocolCSVar loaded;
    loaded.VERSION(1);
    loaded.SetVarBinData(image, 38);
    EXPECT_EQ(loaded.FormatView(), 1);
    EXPECT_EQ(loaded.CSLength(), 2);
    EXPECT_EQ(loaded.OffsetFromForward(), 3);
    EXPECT_EQ(loaded.ModulusType(), 2);
    EXPECT_EQ(loaded.SA_AddedValue(), 30);
    EXPECT_TRUE(loaded.STXInCS());
}

TEST_F(CSVarTest, Version0ImageLosesTheSTXChoice) {
    context->ExtendedOperands = true;
    clsProtocolCSVar cs;
    cs.STXInCS(true);
    cs.VERSION(0);
    cs.IsVar(false);
    Bytes image = test::sendTableImage(6, cs.GetVarBinData(0), 10);
    clsProtocolCSVar loaded;
    loaded.VERSION(0);
    loaded.IsVar(false);
    loaded.ActualMethodType(0);
    loaded.SetVarBinData(image, 10);
    EXPECT_FALSE(loaded.STXInCS());
}

TEST_F(CSVarTest, SpecialAdditionOffComesBackWithZeroLimits) {
    clsProtocolCSVar cs;
    cs.SA_FromValue(1);
    cs.SA_ToValue(2);
    cs.SA_AddedValue(3);
    Bytes image = test::sendTableImage(6, cs.GetVarBinData(0), 10);
    clsProtocolCSVar loaded;
    loaded.SetVarBinData(image, 10);
    EXPECT_FALSE(loaded.SpecialAddition());
    EXPECT_EQ(loaded.SA_FromValue(), 0);
    EXPECT_EQ(loaded.SA_ToValue(), 0);
    EXPECT_EQ(loaded.SA_AddedValue(), 0);
}

TEST_F(CSVarTest, ShortRecordRaisesSubscriptError) {
    Bytes image(10 + 15, 0);  // the content reaches index + 15
    clsProtocolCSVar cs;
    cs.CSLength(3);
    EXPECT_EQ(runtimeErrorOf([&] { cs.SetVarBinData(image, 10); }), err::SubscriptOutOfRange);
    EXPECT_EQ(cs.CSLength(), 3);
    Bytes enough(10 + 16, 0);
    enough[10 + 4] = 2;
    cs.SetVarBinData(enough, 10);
    EXPECT_EQ(cs.CSLength(), 2);
}

TEST_F(CSVarTest, InitChecksumResetsAllButTheAddedValueAndTheMethodTypes) {
    clsProtocolCSVar cs;
    fill(cs);
    cs.StartPosition(7);
    cs.IsSelected(true);
    cs.IsCanceled(true);
    cs.VERSION(1);
    cs.IsVar(true);
    cs.MethodType(1);
    cs.ActualMethodType(1);
    cs.SA_AddedValue(7);
    cs.InitChecksum();
    EXPECT_FALSE(cs.STXInCS());
    EXPECT_EQ(cs.SA_AddedValue(), 7);
    EXPECT_EQ(cs.MethodType(), 1);
    EXPECT_EQ(cs.ActualMethodType(), 1);
    EXPECT_EQ(cs.SA_FromValue(), 0);
    EXPECT_EQ(cs.SA_ToValue(), 0);
    EXPECT_FALSE(cs.SpecialAddition());
    EXPECT_EQ(cs.CSLength(), 1);
    EXPECT_EQ(cs.Length(), 1);
    EXPECT_EQ(cs.FormatView(), 0);
    EXPECT_EQ(cs.CalculationType(), 1);
    EXPECT_EQ(cs.ModulusType(), 1);
    EXPECT_EQ(cs.OffsetFromForward(), 0);
    EXPECT_EQ(cs.OffsetTillBackwards(), 0);
    EXPECT_EQ(cs.VERSION(), 0);
    EXPECT_FALSE(cs.IsVar());
    EXPECT_EQ(cs.StartPosition(), 0);
    EXPECT_FALSE(cs.IsSelected());
    EXPECT_FALSE(cs.IsCanceled());
}

TEST_F(CSVarTest, ReplicaCopiesAllButTheMethodTypes) {
    clsProtocolCSVar cs;
    fill(cs);
    cs.StartPosition(11);
    cs.IsSelected(true);
    cs.IsCanceled(true);
    cs.VERSION(1);
    cs.IsVar(true);
    cs.MethodType(1);
    cs.ActualMethodType(1);
    auto replica = std::dynamic_pointer_cast<clsProtocolCSVar>(cs.GetReplica());
    ASSERT_TRUE(replica);
    EXPECT_EQ(replica->FormatView(), 1);
    EXPECT_EQ(replica->CSLength(), 2);
    EXPECT_EQ(replica->Length(), 2);
    EXPECT_EQ(replica->OffsetFromForward(), 3);
    EXPECT_EQ(replica->OffsetTillBackwards(), 4);
    EXPECT_EQ(replica->CalculationType(), 6);
    EXPECT_EQ(replica->ModulusType(), 2);
    EXPECT_TRUE(replica->SpecialAddition());
    EXPECT_EQ(replica->SA_FromValue(), 10);
    EXPECT_EQ(replica->SA_ToValue(), 20);
    EXPECT_EQ(replica->SA_AddedValue(), 30);
    EXPECT_TRUE(replica->STXInCS());
    EXPECT_EQ(replica->VERSION(), 1);
    EXPECT_TRUE(replica->IsVar());
    EXPECT_EQ(replica->StartPosition(), 11);
    EXPECT_TRUE(replica->IsSelected());
    EXPECT_TRUE(replica->IsCanceled());
    EXPECT_EQ(replica->MethodType(), 0);
    EXPECT_EQ(replica->ActualMethodType(), 0);
}

TEST_F(CSVarTest, HasNoOperandToListOrReplace) {
    clsProtocolCSVar cs;
    OperandCollection found;
    cs.AddOperandsToFindOnlyCollection(found);
    EXPECT_EQ(found.Count(), 0);
    const Bytes before = cs.GetVarBinData(0);
    cs.ReplaceOperands(0, 3, 0, 1);
    EXPECT_EQ(cs.GetVarBinData(0), before);
}

}  // namespace
}  // namespace qx
