#include "message/protocol_scan_numeric_var.h"

#include <gtest/gtest.h>

#include "message_test_support.h"
#include "platform/host/host_context.h"

namespace qx {
namespace {

using test::linkOperand;
using test::runtimeErrorOf;

class ScanNumericVarTest : public ::testing::Test {
protected:
    ScopedHostContext context;
};

TEST_F(ScanNumericVarTest, NewFieldStartsFromItsDefaults) {
    clsProtocolScanNumericVar field;
    EXPECT_EQ(field.StartPosition(), 0);
    EXPECT_EQ(field.Length(), 5);
    EXPECT_FALSE(field.IsSelected());
    EXPECT_FALSE(field.IsCanceled());
    EXPECT_EQ(field.StreamForm(), 0);
    EXPECT_EQ(field.VarFormat(), 0);
    EXPECT_EQ(field.BeforePoint(), 5);
    EXPECT_EQ(field.AfterPoint(), 0);
    EXPECT_EQ(field.PrefixSignFormat(), 1);
    EXPECT_EQ(field.LeadingZeros(), 0);
    EXPECT_EQ(field.VectorLength(), 1);
    EXPECT_EQ(field.StreamVectorLength(), 1);
    EXPECT_EQ(field.CopyBytesFormat(), 0);
    EXPECT_FALSE(field.AddNullToEndOfStream());
    EXPECT_EQ(field.GetVarSegmentType(), 1);
}

TEST_F(ScanNumericVarTest, BothOperandsAreCreatedAlike) {
    clsProtocolScanNumericVar field;
    for (const OperandPtr& op : {field.LikedOperand(), field.DecimalPointOperand()}) {
        ASSERT_TRUE(op);
        EXPECT_EQ(test::allowedTypes(*op), (std::vector<int32_t>{3, 5, 16}));
        EXPECT_EQ(op->OperandType(), 3);
        EXPECT_EQ(op->OperandMode(), 1);
        EXPECT_TRUE(op->IsNew());
        EXPECT_EQ(op->OperandFormat(), 3);
    }
    EXPECT_NE(field.LikedOperand().get(), field.DecimalPointOperand().get());
}

TEST_F(ScanNumericVarTest, ExtendedOperandsAddTypes65To67ToBoth) {
    context->ExtendedOperands = true;
    clsProtocolScanNumericVar field;
    EXPECT_EQ(test::allowedTypes(*field.LikedOperand()), (std::vector<int32_t>{3, 5, 16, 65, 66, 67}));
    EXPECT_EQ(test::allowedTypes(*field.DecimalPointOperand()), (std::vector<int32_t>{3, 5, 16, 65, 66, 67}));
}

TEST_F(ScanNumericVarTest, NoFixedLengthTakesOnePositionWhateverBeforePoint) {
    clsProtocolScanNumericVar field;
    field.BeforePoint(5);
    field.VarFormat(1);
    EXPECT_EQ(field.Length(), 1);
    field.BeforePoint(9);
    field.VectorLength(4);
    EXPECT_EQ(field.Length(), 1);
}

TEST_F(ScanNumericVarTest, FixedDecimalCountsSignsButNotAfterPoint) {
    clsProtocolScanNumericVar field;
    field.VectorLength(3);
    field.BeforePoint(4);
    field.PrefixSignFormat(2);
    EXPECT_EQ(field.Length(), 15);
    field.AfterPoint(3);
    EXPECT_EQ(field.Length(), 15);
    field.PrefixSignFormat(0);
    EXPECT_EQ(field.Length(), 12);
}

TEST_F(ScanNumericVarTest, HexLengthIsDigitsTimesVector) {
    clsProtocolScanNumericVar field;
    field.VarFormat(2);
    field.BeforePoint(4);
    field.VectorLength(3);
    EXPECT_EQ(field.Length(), 12);
}

TEST_F(ScanNumericVarTest, StreamLengthIsVectorTimesBytesPerElement) {
    const std::pair<int32_t, int32_t> bytesPerElement[] = {{0, 1}, {1, 2}, {3, 3}, {2, 4}, {5, 4}, {4, 0}};
    for (auto [format, bytes] : bytesPerElement) {
        clsProtocolScanNumericVar field;
        field.StreamForm(1);
        field.StreamVectorLength(2);
        field.CopyBytesFormat(format);
        EXPECT_EQ(field.Length(), 2 * bytes) << "CopyBytesFormat " << format;
    }
}

TEST_F(ScanNumericVarTest, AsciiFormWithStreamVarFormatHasLengthZero) {
    clsProtocolScanNumericVar field;
    field.VarFormat(3);
    EXPECT_EQ(field.Length(), 0);
    clsProtocolScanNumericVar other;
    other.StreamForm(2);
    EXPECT_EQ(other.Length(), 0);
}

TEST_F(ScanNumericVarTest, SegmentTypeFollowsVarFormatAlone) {
    const std::pair<int32_t, int32_t> types[] = {{0, 1}, {1, 2}, {2, 1}, {3, 4}, {4, 5}, {5, 0}, {-1, 0}};
    for (auto [varFormat, type] : types) {
        clsProtocolScanNumericVar field;
        field.VarFormat(varFormat);
        EXPECT_EQ(field.GetVarSegmentType(), type) << "VarFormat " << varFormat;
    }
}

TEST_F(ScanNumericVarTest, StreamFormWithVarFormat0AnswersSegmentType1) {
    clsProtocolScanNumericVar field;
    field.StreamForm(1);
    EXPECT_EQ(field.GetVarSegmentType(), 1);
}

TEST_F(ScanNumericVarTest, DisplayStringIsLengthCharactersOfCodeZero) {
    clsProtocolScanNumericVar field;
    field.VarFormat(2);
    field.BeforePoint(3);
    int32_t start = -1, length = -1;
    bool selected = true;
    std::wstring display, tip;
    uint32_t back = 0, fore = 1;
    field.GetVarPropsEX(start, length, selected, display, tip, back, fore);
    EXPECT_EQ(length, 3);
    EXPECT_EQ(display, std::wstring(3, wchar_t(0)));
    EXPECT_EQ(tip, L"Need to implement the ToolTip");
    EXPECT_EQ(back, 0x8000000Fu);
    EXPECT_EQ(fore, 0u);
}

TEST_F(ScanNumericVarTest, AsciiRecordWithLinkedDecimalPointOperand) {
    clsProtocolScanNumericVar field;
    field.PrefixSignFormat(2);
    field.VectorLength(3);
    field.BeforePoint(4);
    field.AfterPoint(2);    // not stored
    field.LeadingZeros(1);  // not stored
    linkOperand(*field.LikedOperand(), 5, 0x0302);
    linkOperand(*field.DecimalPointOperand(), 3, 0x0504);
    const Bytes expected{2, 3, 4, 0, 5, 0, 0x02, 0x03, 0, 0, 0, 0, 3, 0, 0x04, 0x05, 0, 0, 0, 0};
    EXPECT_EQ(field.GetVarBinData(999), expected);
}

TEST_F(ScanNumericVarTest, AsciiRecordLeavesAnUnlinkedDecimalPointOperandOut) {
    clsProtocolScanNumericVar field;
    field.PrefixSignFormat(0);
    linkOperand(*field.LikedOperand(), 3, 1);
    const Bytes expected{1, 1, 5, 0, 3, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(field.GetVarBinData(0), expected);
}

TEST_F(ScanNumericVarTest, HexRecordStoresCode4) {
    clsProtocolScanNumericVar field;
    field.VarFormat(2);
    field.PrefixSignFormat(2);
    field.BeforePoint(6);
    linkOperand(*field.LikedOperand(), 16, 0x10000 + 7);
    const Bytes expected{4, 1, 6, 0, 16, 0, 7, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(field.GetVarBinData(0), expected);
}

TEST_F(ScanNumericVarTest, StreamRecordStoresNullFlagAndNotTheDecimalPointOperand) {
    clsProtocolScanNumericVar field;
    field.StreamForm(1);
    field.VarFormat(3);
    field.StreamVectorLength(9);
    field.CopyBytesFormat(2);
    field.AddNullToEndOfStream(true);
    linkOperand(*field.LikedOperand(), 5, 40);
    linkOperand(*field.DecimalPointOperand(), 3, 41);
    const Bytes expected{5, 9, 4, 0, 5, 0, 40, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(field.GetVarBinData(0), expected);
}

TEST_F(ScanNumericVarTest, ValuesAboveAByteOverflowWhileTheRecordIsBuilt) {
    clsProtocolScanNumericVar field;
    field.BeforePoint(300);
    EXPECT_EQ(runtimeErrorOf([&] { field.GetVarBinData(0); }), err::Overflow);
    clsProtocolScanNumericVar stream;
    stream.StreamForm(1);
    stream.StreamVectorLength(256);
    EXPECT_EQ(runtimeErrorOf([&] { stream.GetVarBinData(0); }), err::Overflow);
}

TEST_F(ScanNumericVarTest, LoadTakesVarFormatFromTheTypeByte) {
    const std::pair<uint8_t, int32_t> types[] = {{1, 0}, {2, 1}, {4, 3}, {5, 4}};
    for (auto [type, varFormat] : types) {
        Bytes image = test::scanTableImage(type, Bytes{3, 1, 5, 0, 3, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 42);
        clsProtocolScanNumericVar field;
        field.SetVarBinData(image, 44);
        EXPECT_EQ(field.VarFormat(), varFormat) << "type " << int(type);
    }
}

TEST_F(ScanNumericVarTest, LoadReadsAnAsciiRecordTwoBytesBehindTheType) {
    Bytes image =
        test::scanTableImage(1, Bytes{2, 3, 4, 0, 5, 0, 0x02, 0x03, 0, 0, 0, 0, 3, 0, 0x04, 0x05, 0, 0, 0, 0}, 42);
    clsProtocolScanNumericVar field;
    field.SetVarBinData(image, 44);
    EXPECT_EQ(field.StreamForm(), 0);
    EXPECT_EQ(field.VarFormat(), 0);
    EXPECT_EQ(field.PrefixSignFormat(), 2);
    EXPECT_EQ(field.VectorLength(), 3);
    EXPECT_EQ(field.BeforePoint(), 4);
    EXPECT_EQ(field.LikedOperand()->OperandType(), 5);
    EXPECT_EQ(field.LikedOperand()->OperandAddress(), 0x0302);
    EXPECT_EQ(field.DecimalPointOperand()->OperandType(), 3);
    EXPECT_EQ(field.DecimalPointOperand()->OperandAddress(), 0x0504);
    EXPECT_FALSE(field.DecimalPointOperand()->IsNew());
    EXPECT_EQ(field.Length(), 15);
}

TEST_F(ScanNumericVarTest, LoadMapsThePrefixCodes) {
    const std::pair<uint8_t, int32_t> codes[] = {{1, 0}, {3, 1}, {2, 2}};
    for (auto [code, prefix] : codes) {
        Bytes image = test::scanTableImage(1, Bytes{code, 1, 5, 0, 3, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 0);
        clsProtocolScanNumericVar field;
        field.SetVarBinData(image, 2);
        EXPECT_EQ(field.PrefixSignFormat(), prefix) << int(code);
    }
}

TEST_F(ScanNumericVarTest, LoadReadsHexAndStreamRecords) {
    Bytes hex = test::scanTableImage(1, Bytes{4, 2, 3, 0, 3, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 0);
    clsProtocolScanNumericVar hexField;
    hexField.SetVarBinData(hex, 2);
    EXPECT_EQ(hexField.VarFormat(), 2);
    EXPECT_EQ(hexField.VectorLength(), 2);
    EXPECT_EQ(hexField.BeforePoint(), 3);
    EXPECT_EQ(hexField.Length(), 6);

    Bytes stream = test::scanTableImage(5, Bytes{5, 6, 3, 0, 3, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0}, 0);
    clsProtocolScanNumericVar streamField;
    streamField.SetVarBinData(stream, 2);
    EXPECT_EQ(streamField.StreamForm(), 1);
    EXPECT_EQ(streamField.VarFormat(), 4);
    EXPECT_EQ(streamField.StreamVectorLength(), 6);
    EXPECT_EQ(streamField.CopyBytesFormat(), 3);
    EXPECT_TRUE(streamField.AddNullToEndOfStream());
    EXPECT_EQ(streamField.Length(), 18);
    EXPECT_EQ(streamField.GetVarSegmentType(), 5);
}

TEST_F(ScanNumericVarTest, LoadRegistersNeitherOperand) {
    Bytes image = test::scanTableImage(1, Bytes{3, 1, 5, 0, 3, 0, 8, 0, 0, 0, 0, 0, 5, 0, 9, 0, 0, 0, 0, 0}, 0);
    clsProtocolScanNumericVar field;
    field.SetVarBinData(image, 2);
    EXPECT_FALSE(context->Operands.IsRegistered(3, 8));
    EXPECT_FALSE(context->Operands.IsRegistered(5, 9));
}

TEST_F(ScanNumericVarTest, AfterPointAndLeadingZerosAreAtDefaultsAfterALoad) {
    clsProtocolScanNumericVar field;
    field.AfterPoint(3);
    field.LeadingZeros(2);
    linkOperand(*field.LikedOperand(), 3, 1);
    Bytes image = test::scanTableImage(static_cast<uint8_t>(field.GetVarSegmentType()), field.GetVarBinData(0), 42);
    clsProtocolScanNumericVar loaded;
    loaded.SetVarBinData(image, 44);
    EXPECT_EQ(loaded.AfterPoint(), 0);
    EXPECT_EQ(loaded.LeadingZeros(), 0);
}

TEST_F(ScanNumericVarTest, AddNullSurvivesARoundTripOnlyInTheStreamForm) {
    clsProtocolScanNumericVar stream;
    stream.StreamForm(1);
    stream.VarFormat(4);
    stream.AddNullToEndOfStream(true);
    Bytes streamImage =
        test::scanTableImage(static_cast<uint8_t>(stream.GetVarSegmentType()), stream.GetVarBinData(0), 42);
    clsProtocolScanNumericVar loadedStream;
    loadedStream.SetVarBinData(streamImage, 44);
    EXPECT_TRUE(loadedStream.AddNullToEndOfStream());

    clsProtocolScanNumericVar ascii;
    ascii.AddNullToEndOfStream(true);
    Bytes asciiImage =
        test::scanTableImage(static_cast<uint8_t>(ascii.GetVarSegmentType()), ascii.GetVarBinData(0), 42);
    clsProtocolScanNumericVar loadedAscii;
    loadedAscii.SetVarBinData(asciiImage, 44);
    EXPECT_FALSE(loadedAscii.AddNullToEndOfStream());
}

TEST_F(ScanNumericVarTest, LinkedDecimalPointOperandSurvivesOnlyInTheAsciiForm) {
    clsProtocolScanNumericVar ascii;
    linkOperand(*ascii.DecimalPointOperand(), 5, 33);
    Bytes asciiImage =
        test::scanTableImage(static_cast<uint8_t>(ascii.GetVarSegmentType()), ascii.GetVarBinData(0), 42);
    clsProtocolScanNumericVar loadedAscii;
    loadedAscii.SetVarBinData(asciiImage, 44);
    EXPECT_FALSE(loadedAscii.DecimalPointOperand()->IsNew());
    EXPECT_EQ(loadedAscii.DecimalPointOperand()->OperandType(), 5);
    EXPECT_EQ(loadedAscii.DecimalPointOperand()->OperandAddress(), 33);

    clsProtocolScanNumericVar stream;
    stream.StreamForm(1);
    stream.VarFormat(3);
    linkOperand(*stream.DecimalPointOperand(), 5, 33);
    Bytes streamImage =
        test::scanTableImage(static_cast<uint8_t>(stream.GetVarSegmentType()), stream.GetVarBinData(0), 42);
    clsProtocolScanNumericVar loadedStream;
    loadedStream.SetVarBinData(streamImage, 44);
    EXPECT_TRUE(loadedStream.DecimalPointOperand()->IsNew());
    EXPECT_EQ(loadedStream.DecimalPointOperand()->OperandType(), 3);
}

TEST_F(ScanNumericVarTest, StreamFieldRoundTripsItsStreamSettings) {
    clsProtocolScanNumericVar field;
    field.StreamForm(1);
    field.VarFormat(3);
    field.StreamVectorLength(12);
    field.CopyBytesFormat(5);
    linkOperand(*field.LikedOperand(), 16, 0x0FFF);
    Bytes image = test::scanTableImage(static_cast<uint8_t>(field.GetVarSegmentType()), field.GetVarBinData(0), 66);
    clsProtocolScanNumericVar loaded;
    loaded.SetVarBinData(image, 68);
    EXPECT_EQ(loaded.StreamForm(), 1);
    EXPECT_EQ(loaded.VarFormat(), 3);
    EXPECT_EQ(loaded.StreamVectorLength(), 12);
    EXPECT_EQ(loaded.CopyBytesFormat(), 5);
    EXPECT_EQ(loaded.Length(), 48);
    EXPECT_EQ(loaded.LikedOperand()->OperandType(), 16);
    EXPECT_EQ(loaded.LikedOperand()->OperandAddress(), 0x0FFF);
    EXPECT_EQ(loaded.GetVarBinData(0), field.GetVarBinData(0));
}

TEST_F(ScanNumericVarTest, NoFixedLengthFieldRoundTrips) {
    clsProtocolScanNumericVar field;
    field.VarFormat(1);
    field.BeforePoint(7);
    field.VectorLength(2);
    Bytes image = test::scanTableImage(static_cast<uint8_t>(field.GetVarSegmentType()), field.GetVarBinData(0), 42);
    clsProtocolScanNumericVar loaded;
    loaded.SetVarBinData(image, 44);
    EXPECT_EQ(loaded.VarFormat(), 1);
    EXPECT_EQ(loaded.BeforePoint(), 7);
    EXPECT_EQ(loaded.VectorLength(), 2);
    EXPECT_EQ(loaded.Length(), 1);
}

TEST_F(ScanNumericVarTest, FindOnlyListsEachLinkedOperand) {
    clsProtocolScanNumericVar field;
    OperandCollection none;
    field.AddOperandsToFindOnlyCollection(none);
    EXPECT_EQ(none.Count(), 0);

    linkOperand(*field.DecimalPointOperand(), 3, 2);
    OperandCollection one;
    field.AddOperandsToFindOnlyCollection(one);
    ASSERT_EQ(one.Count(), 1);
    EXPECT_EQ(one.Item(L"1").get(), field.DecimalPointOperand().get());

    linkOperand(*field.LikedOperand(), 3, 1);
    OperandCollection both;
    field.AddOperandsToFindOnlyCollection(both);
    ASSERT_EQ(both.Count(), 2);
    EXPECT_EQ(both.Item(L"1").get(), field.LikedOperand().get());
    EXPECT_EQ(both.Item(L"2").get(), field.DecimalPointOperand().get());
}

TEST_F(ScanNumericVarTest, ReplaceOperandsTestsBothOperands) {
    clsProtocolScanNumericVar field;
    linkOperand(*field.LikedOperand(), 3, 10);
    linkOperand(*field.DecimalPointOperand(), 3, 10);
    field.ReplaceOperands(0, 3, 10, 20);
    EXPECT_EQ(field.LikedOperand()->OperandAddress(), 20);
    EXPECT_EQ(field.DecimalPointOperand()->OperandAddress(), 20);
    linkOperand(*field.DecimalPointOperand(), 5, 20);
    field.ReplaceOperands(0, 5, 20, 30);
    EXPECT_EQ(field.LikedOperand()->OperandAddress(), 20);
    EXPECT_EQ(field.DecimalPointOperand()->OperandAddress(), 30);
}

TEST_F(ScanNumericVarTest, ReplicaClonesBothOperandsAndCopiesEverythingElse) {
    clsProtocolScanNumericVar field;
    field.StartPosition(12);
    field.IsSelected(true);
    field.IsCanceled(true);
    field.StreamForm(1);
    field.VarFormat(4);
    field.BeforePoint(3);
    field.AfterPoint(2);
    field.PrefixSignFormat(0);
    field.LeadingZeros(2);
    field.VectorLength(6);
    field.StreamVectorLength(8);
    field.CopyBytesFormat(1);
    field.AddNullToEndOfStream(true);
    linkOperand(*field.LikedOperand(), 5, 1);
    linkOperand(*field.DecimalPointOperand(), 16, 2);

    auto replica = std::dynamic_pointer_cast<clsProtocolScanNumericVar>(field.GetReplica());
    ASSERT_TRUE(replica);
    EXPECT_EQ(replica->StartPosition(), 12);
    EXPECT_TRUE(replica->IsSelected());
    EXPECT_TRUE(replica->IsCanceled());
    EXPECT_EQ(replica->StreamForm(), 1);
    EXPECT_EQ(replica->VarFormat(), 4);
    EXPECT_EQ(replica->BeforePoint(), 3);
    EXPECT_EQ(replica->AfterPoint(), 2);
    EXPECT_EQ(replica->PrefixSignFormat(), 0);
    EXPECT_EQ(replica->LeadingZeros(), 2);
    EXPECT_EQ(replica->VectorLength(), 6);
    EXPECT_EQ(replica->StreamVectorLength(), 8);
    EXPECT_EQ(replica->CopyBytesFormat(), 1);
    EXPECT_TRUE(replica->AddNullToEndOfStream());
    EXPECT_EQ(replica->Length(), 16);
    EXPECT_NE(replica->LikedOperand().get(), field.LikedOperand().get());
    EXPECT_NE(replica->DecimalPointOperand().get(), field.DecimalPointOperand().get());
    EXPECT_EQ(replica->LikedOperand()->OperandAddress(), 1);
    EXPECT_EQ(replica->DecimalPointOperand()->OperandType(), 16);
    EXPECT_EQ(replica->DecimalPointOperand()->OperandAddress(), 2);
}

TEST_F(ScanNumericVarTest, TheDecimalPointOperandTakesTheSettingAsItWasWhenTheFieldWasMade) {
    context->ExtendedOperands = true;
    clsProtocolScanNumericVar extended;
    context->ExtendedOperands = false;
    clsProtocolScanNumericVar plain;
    context->ExtendedOperands = true;
    EXPECT_EQ(test::allowedTypes(*plain.DecimalPointOperand()), (std::vector<int32_t>{3, 5, 16}));
    context->ExtendedOperands = false;
    // A replica of a field whose operand nobody asked for offers the same.
    auto replica = std::dynamic_pointer_cast<clsProtocolScanNumericVar>(extended.GetReplica());
    ASSERT_TRUE(replica);
    EXPECT_EQ(test::allowedTypes(*replica->DecimalPointOperand()), (std::vector<int32_t>{3, 5, 16, 65, 66, 67}));
    EXPECT_EQ(test::allowedTypes(*extended.DecimalPointOperand()), (std::vector<int32_t>{3, 5, 16, 65, 66, 67}));
    EXPECT_EQ(extended.DecimalPointOperand().get(), extended.DecimalPointOperand().get());
}

TEST_F(ScanNumericVarTest, AnUntouchedDecimalPointOperandIsLeftOutOfRecordListAndReplace) {
    clsProtocolScanNumericVar field;
    linkOperand(*field.LikedOperand(), 3, 10);
    const Bytes record = field.GetVarBinData(0);
    EXPECT_EQ(record[12], 0);
    OperandCollection found;
    field.AddOperandsToFindOnlyCollection(found);
    EXPECT_EQ(found.Count(), 1);
    field.ReplaceOperands(0, 3, 10, 20);
    EXPECT_EQ(field.LikedOperand()->OperandAddress(), 20);
    EXPECT_TRUE(field.DecimalPointOperand()->IsNew());
    EXPECT_EQ(field.DecimalPointOperand()->OperandAddress(), -1);
}

TEST_F(ScanNumericVarTest, ShortRecordRaisesSubscriptError) {
    Bytes image(2 + 2 + 15, 0);  // entry cut before record byte 15
    image[2] = 1;
    clsProtocolScanNumericVar field;
    EXPECT_EQ(runtimeErrorOf([&] { field.SetVarBinData(image, 2); }), err::SubscriptOutOfRange);
    EXPECT_EQ(field.VarFormat(), 0);
    EXPECT_EQ(field.Length(), 5);
}

}  // namespace
}  // namespace qx
