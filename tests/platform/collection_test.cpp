#include "platform/basics/collection.h"

#include <gtest/gtest.h>

#include <string>

namespace qx {
namespace {

std::wstring joined(const Collection<std::wstring>& c) {
    std::wstring out;
    for (const auto& s : c) out += s;
    return out;
}

TEST(Collection, IsOneBasedAndKeyedWithoutRegardToCase) {
    Collection<std::wstring> c;
    c.Add(L"a", L"170101");
    c.Add(L"b", L"Key");
    EXPECT_EQ(c.Count(), 2);
    EXPECT_EQ(c.Item(1), L"a");
    EXPECT_EQ(c.Item(L"KEY"), L"b");
    EXPECT_EQ(c.KeyAt(1), L"170101");
}

TEST(Collection, AddsBeforeAndAfterAPlace) {
    Collection<std::wstring> c;
    c.Add(L"a");
    c.Add(L"c");
    c.Add(L"b", L"", 2);
    c.Add(L"d", L"", std::nullopt, 3);
    EXPECT_EQ(joined(c), L"abcd");
}

TEST(Collection, BadIndexOrKeyIsInvalidProcedureCall) {
    Collection<std::wstring> c;
    c.Add(L"a", L"k");
    for (int32_t index : {0, 2, -1}) {
        try {
            c.Item(index);
            FAIL() << index;
        } catch (const RuntimeError& e) {
            EXPECT_EQ(e.Number(), 5);
        }
    }
    EXPECT_THROW(c.Item(L"nope"), RuntimeError);
    EXPECT_THROW(c.Remove(3), RuntimeError);
    EXPECT_THROW(c.Add(L"b", L"K"), RuntimeError);
    EXPECT_EQ(c.Count(), 1);
}

TEST(Collection, RemovesByIndexAndKey) {
    Collection<std::wstring> c;
    c.Add(L"a", L"x");
    c.Add(L"b", L"y");
    c.Add(L"c");
    c.Remove(L"y");
    c.Remove(1);
    EXPECT_EQ(joined(c), L"c");
}

}  // namespace
}  // namespace qx
