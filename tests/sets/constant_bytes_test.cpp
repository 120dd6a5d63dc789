// The conversions of a constant's value to the four bytes of the Send image
// and back, with the reports they make when a value does not fit.
#include "sets/constant_bytes.h"

#include <gtest/gtest.h>

#include "platform/host/host_context.h"
#include "sets/set_test_support.h"

namespace qx {
namespace {

constexpr int64_t kScale = 10000;

OperandPtr constant(int32_t type, int64_t value) {
    auto operand = newOperand();
    operand->OperandMode(2);
    operand->OperandType(type);
    operand->OperandConstantValue(value * kScale);
    return operand;
}

TEST(ConstantToBytes, IntegerConstantGivesItsValueAsSigned32Bit) {
    ScopedHostContext host;
    Bytes bytes;
    EXPECT_TRUE(ConstantToBytes(*constant(37, 5), bytes));
    EXPECT_EQ(bytes, (Bytes{0x05, 0x00, 0x00, 0x00}));
    EXPECT_TRUE(ConstantToBytes(*constant(34, -2), bytes));
    EXPECT_EQ(bytes, (Bytes{0xFE, 0xFF, 0xFF, 0xFF}));
    EXPECT_TRUE(host->Reports.empty());
}

TEST(ConstantToBytes, LongConstantAboveSigned32BitGoesThroughTheUnsignedBytes) {
    ScopedHostContext host;
    Bytes bytes;
    // 4000000000 is 0xEE6B2800.
    EXPECT_TRUE(ConstantToBytes(*constant(35, 4000000000LL), bytes));
    EXPECT_EQ(bytes, (Bytes{0x00, 0x28, 0x6B, 0xEE}));
}

TEST(ConstantToBytes, NegativeLongConstantGivesSignedBytes) {
    ScopedHostContext host;
    Bytes bytes;
    EXPECT_TRUE(ConstantToBytes(*constant(38, -1), bytes));
    EXPECT_EQ(bytes, (Bytes{0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST(ConstantToBytes, MemoryOperandAnswersFalseAndNoBytes) {
    ScopedHostContext host;
    auto operand = newOperand();
    operand->OperandType(3);
    operand->OperandAddress(7);
    Bytes bytes{1, 2, 3};
    EXPECT_FALSE(ConstantToBytes(*operand, bytes));
    EXPECT_TRUE(bytes.empty());
    operand->OperandType(15);
    EXPECT_FALSE(ConstantToBytes(*operand, bytes));
}

TEST(ConstantToBytes, FractionOfIntegerConstantRoundsHalfToEven) {
    ScopedHostContext host;
    auto operand = constant(37, 0);
    Bytes bytes;
    operand->OperandConstantValue(25000);  // 2.5
    ConstantToBytes(*operand, bytes);
    EXPECT_EQ(bytes, (Bytes{0x02, 0x00, 0x00, 0x00}));
    operand->OperandConstantValue(35000);  // 3.5
    ConstantToBytes(*operand, bytes);
    EXPECT_EQ(bytes, (Bytes{0x04, 0x00, 0x00, 0x00}));
    operand->OperandConstantValue(-16000);  // -1.6
    ConstantToBytes(*operand, bytes);
    EXPECT_EQ(bytes, (Bytes{0xFE, 0xFF, 0xFF, 0xFF}));
}

TEST(ConstantToBytes, IntegerConstantOutsideSigned32BitIsOverflow) {
    ScopedHostContext host;
    Bytes bytes;
    EXPECT_EQ(test::runtimeErrorOf([&] { ConstantToBytes(*constant(37, 2147483648LL), bytes); }), err::Overflow);
}

TEST(CurrencyTo4Bytes, ZeroAndPositiveValuesAreLowestByteFirst) {
    ScopedHostContext host;
    EXPECT_EQ(CurrencyTo4Bytes(0), (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(CurrencyTo4Bytes(0x01020304LL * kScale), (Bytes{0x04, 0x03, 0x02, 0x01}));
}

TEST(CurrencyTo4Bytes, NegativeValueBecomesSigned32BitBytes) {
    ScopedHostContext host;
    EXPECT_EQ(CurrencyTo4Bytes(-256 * kScale), (Bytes{0x00, 0xFF, 0xFF, 0xFF}));
}

TEST(PrvPositiveCurrencyTo4Bytes, LargestUnsigned32BitValueFits) {
    ScopedHostContext host;
    EXPECT_EQ(prvPositiveCurrencyTo4Bytes(0xFFFFFFFFLL * kScale), (Bytes{0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_TRUE(host->Reports.empty());
}

TEST(PrvPositiveCurrencyTo4Bytes, FractionIsDropped) {
    ScopedHostContext host;
    EXPECT_EQ(prvPositiveCurrencyTo4Bytes(2579999), (Bytes{0x01, 0x01, 0x00, 0x00}));  // 257.9999
}

TEST(PrvPositiveCurrencyTo4Bytes, ValueAboveUnsigned32BitIsReportedAndGivesZeros) {
    ScopedHostContext host;
    EXPECT_EQ(prvPositiveCurrencyTo4Bytes(0x100000000LL * kScale), (Bytes{0, 0, 0, 0}));
    ASSERT_EQ(host->Reports.size(), 1u);
    const ErrorReport& report = host->Reports[0];
    EXPECT_EQ(report.Name, L"ErrHandler");
    EXPECT_EQ(report.Number, 6);
    EXPECT_EQ(report.Text, L"Overflow");
    EXPECT_EQ(report.Source, L"QxHmDnl1");
    EXPECT_EQ(report.Module, L"mdlHMIDownload");
    EXPECT_EQ(report.Procedure, L"prvPositiveCurrencyTo4Bytes");
    EXPECT_EQ(report.Severity, 16);
}

TEST(ConstantToBytes, LongConstantTooLargeStillAnswersTrueAfterTheReport) {
    ScopedHostContext host;
    Bytes bytes;
    EXPECT_TRUE(ConstantToBytes(*constant(38, 0x100000001LL), bytes));
    EXPECT_EQ(bytes, (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(host->Reports.size(), 1u);
}

TEST(FourBytesToCurrency, ReadsUnsignedLowestByteFirst) {
    ScopedHostContext host;
    EXPECT_EQ(FourBytesToCurrency(Bytes{0x01, 0x02, 0x03, 0x04}), 0x04030201LL * kScale);
    EXPECT_EQ(FourBytesToCurrency(Bytes{0xFF, 0xFF, 0xFF, 0xFF}), 4294967295LL * kScale);
    EXPECT_TRUE(host->Reports.empty());
}

TEST(FourBytesToCurrency, ArrayOfAnotherLengthIsReportedWithTheHostHelpersNamesAndGivesZero) {
    ScopedHostContext host;
    EXPECT_EQ(FourBytesToCurrency(Bytes{1, 2, 3}), 0);
    ASSERT_EQ(host->Reports.size(), 1u);
    const ErrorReport& report = host->Reports[0];
    EXPECT_EQ(report.Name, L"ErrHandler");
    EXPECT_EQ(report.Number, 0x80040006LL);
    EXPECT_EQ(report.Text,
              L"Array for conversion from currency to bytes should be exactly 4 bytes long.\r\n"
              L"Actually recieved 3 bytes");
    EXPECT_EQ(report.Source, L"QxUtGlb1");
    EXPECT_EQ(report.Module, L"clsCurrencyToBytes");
    EXPECT_EQ(report.Procedure, L"CurrencyTo4Bytes");
    EXPECT_EQ(report.Severity, 16);

    EXPECT_EQ(FourBytesToCurrency(Bytes{1, 2, 3, 4, 5}), 0);
    ASSERT_EQ(host->Reports.size(), 2u);
    EXPECT_EQ(host->Reports[1].Text,
              L"Array for conversion from currency to bytes should be exactly 4 bytes long.\r\n"
              L"Actually recieved 5 bytes");
}

TEST(FourBytesToCurrency, NegativeLongWrittenAsSignedComesBackUnsigned) {
    ScopedHostContext host;
    EXPECT_EQ(FourBytesToCurrency(CurrencyTo4Bytes(-1 * kScale)), 4294967295LL * kScale);
}

}  // namespace
}  // namespace qx
