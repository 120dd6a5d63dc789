#include "platform/basics/variant.h"

#include <gtest/gtest.h>

#include "platform/basics/runtime_error.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

using test::runtimeErrorOf;

TEST(Variant, EmptyCountsAsZero) {
    Variant v;
    EXPECT_TRUE(v.IsEmpty());
    EXPECT_EQ(v.ToI4(), 0);
    EXPECT_EQ(v.ToText(), L"");
}

TEST(Variant, BooleanIsMinusOneAtANumericBoundary) {
    EXPECT_EQ(Variant(true).ToI4(), -1);
    EXPECT_EQ(Variant(false).ToI4(), 0);
    EXPECT_TRUE(Variant(int32_t{5}).ToBool());
}

TEST(Variant, TextConvertsToNumberOrIsTypeMismatch) {
    EXPECT_EQ(Variant(L" 100 ").ToI4(), 100);
    EXPECT_EQ(textToI4(L"-7"), -7);
    EXPECT_EQ(runtimeErrorOf([] { textToI4(L""); }), 13);
    EXPECT_EQ(runtimeErrorOf([] { textToI4(L"12a"); }), 13);
    EXPECT_EQ(runtimeErrorOf([] { textToI4(L"99999999999"); }), 6);
}

TEST(Variant, EqualityComparesKindAndValue) {
    EXPECT_EQ(Variant(int32_t{1}), Variant(int32_t{1}));
    EXPECT_FALSE(Variant(int32_t{1}) == Variant(int64_t{1}));
    EXPECT_EQ(Variant(L"x"), Variant(std::wstring(L"x")));
}

}  // namespace
}  // namespace qx
