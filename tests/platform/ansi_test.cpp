#include "platform/basics/ansi.h"

#include <gtest/gtest.h>

namespace qx {
namespace {

TEST(Ansi, AsciiIsOneByteACharacter) { EXPECT_EQ(toAnsi(L"AB\r"), std::string("AB\r")); }

TEST(Ansi, WindowsCodePageSpecialsRoundTrip) {
    EXPECT_EQ(toAnsiByte(L'\u20AC'), 0x80);  // euro sign
    EXPECT_EQ(toAnsiByte(L'\u00E9'), 0xE9);
    EXPECT_EQ(fromAnsiByte(0x80), L'\u20AC');
    EXPECT_EQ(fromAnsiByte(200), L'\u00C8');
    for (int b = 0; b < 256; ++b) EXPECT_EQ(toAnsiByte(fromAnsiByte(static_cast<uint8_t>(b))), b);
}

TEST(Ansi, UnmappableCharacterBecomesQuestionMark) { EXPECT_EQ(toAnsiByte(L'\u4E2D'), '?'); }

TEST(Ansi, Utf8RoundTrip) {
    std::wstring text = L"Caf\u00E9 \u20AC";
    EXPECT_EQ(toUtf8(text), "Caf\xC3\xA9 \xE2\x82\xAC");
    EXPECT_EQ(fromUtf8(toUtf8(text)), text);
}

}  // namespace
}  // namespace qx
