// Where a reader stopped in a text, and a JSON parser's reason without its
// own view of the place.
#include "platform/basics/text_place.h"

#include <gtest/gtest.h>

namespace qx {
namespace {

TEST(TextPlace, LinesCountFromOneAndColumnsCountCharactersNotBytes) {
    EXPECT_EQ(lineAndColumn("abc", 0), "line 1, column 1");
    EXPECT_EQ(lineAndColumn("ab\ncd", 4), "line 2, column 2");
    // "é" is two bytes of UTF-8 and one column.
    EXPECT_EQ(lineAndColumn("\xC3\xA9x", 2), "line 1, column 2");
    EXPECT_EQ(lineAndColumn("ab", 99), "line 1, column 3");
}

TEST(TextPlace, AJsonComplaintKeepsItsReasonOnly) {
    EXPECT_EQ(jsonFaultReason("[json.exception.parse_error.101] parse error at line 1, column 2: syntax error while "
                              "parsing value - unexpected '}'"),
              "syntax error while parsing value - unexpected '}'");
    EXPECT_EQ(jsonFaultReason("[json.exception.out_of_range.406] number overflow parsing '1E400'"),
              "number overflow parsing '1E400'");
    EXPECT_EQ(jsonFaultReason("no brackets"), "no brackets");
}

}  // namespace
}  // namespace qx
