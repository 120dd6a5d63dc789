// The part of the field contract that every field class answers alike.
#include "message/field_state.h"

#include <gtest/gtest.h>

#include "message/protocol_binary_var.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_date_var.h"
#include "message/protocol_list_text_var.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "message/protocol_time_var.h"
#include "platform/host/host_context.h"

namespace qx {
namespace {

template <class T>
class FieldContractTest : public ::testing::Test {
protected:
    ScopedHostContext context;
};

using FieldClasses = ::testing::Types<clsProtocolNumericVar, clsProtocolScanNumericVar, clsProtocolBinaryVar,
                                      clsProtocolistTextVar, clsProtocolDateVar, clsProtocolTimeVar, clsProtocolCSVar>;
TYPED_TEST_SUITE(FieldContractTest, FieldClasses);

TYPED_TEST(FieldContractTest, HitTestOfLengthZeroIsFalseEverywhere) {
    TypeParam field;
    field.StartPosition(10);
    field.Length(0);
    for (int32_t p = -1; p <= 500; ++p) EXPECT_FALSE(field.HitTest(p)) << p;
}

TYPED_TEST(FieldContractTest, HitTestCoversStartToStartPlusLengthMinusOne) {
    TypeParam field;
    field.StartPosition(10);
    field.Length(3);
    EXPECT_FALSE(field.HitTest(9));
    EXPECT_TRUE(field.HitTest(10));
    EXPECT_TRUE(field.HitTest(12));
    EXPECT_FALSE(field.HitTest(13));
}

TYPED_TEST(FieldContractTest, CommonStateIsStoredAndReturned) {
    TypeParam field;
    field.StartPosition(42);
    field.IsSelected(true);
    field.IsCanceled(true);
    field.PositionInBinArray(77);
    EXPECT_EQ(field.StartPosition(), 42);
    EXPECT_TRUE(field.IsSelected());
    EXPECT_TRUE(field.IsCanceled());
    EXPECT_EQ(field.PositionInBinArray(), 77);
}

TYPED_TEST(FieldContractTest, ShiftAndGetVarPropsHaveNoEffect) {
    TypeParam field;
    field.StartPosition(5);
    const int32_t length = field.Length();
    field.Shift(1);
    field.Shift(-1);
    int32_t start = -7, len = -7;
    bool selected = true;
    std::wstring display = L"unchanged", tip = L"unchanged";
    field.GetVarProps(start, len, selected, display, tip);
    EXPECT_EQ(start, -7);
    EXPECT_EQ(len, -7);
    EXPECT_TRUE(selected);
    EXPECT_EQ(display, L"unchanged");
    EXPECT_EQ(tip, L"unchanged");
    EXPECT_EQ(field.StartPosition(), 5);
    EXPECT_EQ(field.Length(), length);
}

TYPED_TEST(FieldContractTest, GetVarPropsEXAnswersPlaceSelectionTipAndColours) {
    TypeParam field;
    field.StartPosition(8);
    field.Length(2);
    field.IsSelected(true);
    int32_t start = 0, length = 0;
    bool selected = false;
    std::wstring display = L"x", tip;
    uint32_t back = 0, fore = 7;
    field.GetVarPropsEX(start, length, selected, display, tip, back, fore);
    EXPECT_EQ(start, 8);
    EXPECT_EQ(length, 2);
    EXPECT_TRUE(selected);
    EXPECT_EQ(tip, L"Need to implement the ToolTip");
    EXPECT_EQ(fore, 0u);
    if constexpr (std::is_same_v<TypeParam, clsProtocolCSVar>) {
        EXPECT_EQ(back, 0xFFC0C0u);
    } else {
        EXPECT_EQ(back, 0x8000000Fu);
    }
    if constexpr (std::is_same_v<TypeParam, clsProtocolScanNumericVar>) {
        EXPECT_EQ(display, std::wstring(2, wchar_t(0)));
    } else {
        EXPECT_EQ(display, L"");
    }
    field.IsSelected(false);
    field.GetVarPropsEX(start, length, selected, display, tip, back, fore);
    EXPECT_FALSE(selected);
}

TYPED_TEST(FieldContractTest, ImageWritesOtherThanTheChecksumsAreIgnored) {
    TypeParam field;
    const Bytes before = field.GetVarBinData(0);
    itfProtocolVar& asField = field;
    asField.MethodType(1);
    asField.ActualMethodType(1);
    asField.VERSION(1);
    asField.IsVar(true);
    if constexpr (std::is_same_v<TypeParam, clsProtocolCSVar>) {
        EXPECT_EQ(field.GetVarBinData(0).size(), 20u);  // the checksum keeps them
    } else {
        EXPECT_EQ(field.GetVarBinData(0), before);
    }
}

TEST(FieldSegmentTypes, EachClassAnswersItsNumber) {
    ScopedHostContext context;
    EXPECT_EQ(clsProtocolBinaryVar().GetVarSegmentType(), 1);
    EXPECT_EQ(clsProtocolistTextVar().GetVarSegmentType(), 2);
    EXPECT_EQ(clsProtocolDateVar().GetVarSegmentType(), 3);
    EXPECT_EQ(clsProtocolTimeVar().GetVarSegmentType(), 4);
    EXPECT_EQ(clsProtocolNumericVar().GetVarSegmentType(), 5);
    EXPECT_EQ(clsProtocolCSVar().GetVarSegmentType(), 6);
    EXPECT_EQ(clsProtocolScanNumericVar().GetVarSegmentType(), 1);
}

}  // namespace
}  // namespace qx
