// Bytes of the wire as people read and type them.
#include "runtime_model/wire_text.h"

#include <gtest/gtest.h>

namespace qx::model {
namespace {

using Bytes = std::vector<uint8_t>;

TEST(WireText, BytesAreShownInHexAndAsTextWithControlCharactersNamed) {
    const Bytes bytes{0x02, 'W', 0x0D, 0x0A, 0x7F, 0xC5, 0x00, 0x1F};
    EXPECT_EQ(hexLine(bytes), "02 57 0D 0A 7F C5 00 1F");
    EXPECT_EQ(textLine(bytes), "<STX>W<CR><LF><7F><C5><NUL><US>");
    EXPECT_EQ(hexLine(Bytes{}), "");
}

TEST(WireText, TypedHexadecimalDigitsAreReadInPairsAndAnythingElseIsRefused) {
    EXPECT_EQ(parseHex("02 57 0d,0A:03\n\tff"), (Bytes{0x02, 0x57, 0x0D, 0x0A, 0x03, 0xFF}));
    EXPECT_EQ(parseHex("0257"), (Bytes{0x02, 0x57}));
    EXPECT_EQ(parseHex(""), Bytes{});
    EXPECT_FALSE(parseHex("5"));
    EXPECT_FALSE(parseHex("0x02"));
    EXPECT_FALSE(parseHex("02 5G"));
}

}  // namespace
}  // namespace qx::model
