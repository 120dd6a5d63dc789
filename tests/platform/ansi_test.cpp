#include "platform/basics/ansi.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

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

TEST(Ansi, BlockFormsAgreeWithOneCharacterAtATime) {
    std::wstring every;
    for (int b = 0; b < 256; ++b) every.push_back(fromAnsiByte(static_cast<uint8_t>(b)));
    // Unmappable characters among them, and characters below 256 that the
    // code page has no byte for (0x80 is the euro sign's byte, not U+0080).
    every += L"\u4E2D\u0080\u009F\uFFFF";
    std::vector<uint8_t> bytes(every.size());
    toAnsiBytes(every, bytes.data());
    for (size_t i = 0; i < every.size(); ++i) EXPECT_EQ(bytes[i], toAnsiByte(every[i])) << i;
    EXPECT_EQ(bytes[256], '?');
    EXPECT_EQ(bytes[257], '?');

    std::wstring back(256, L'\0');
    fromAnsiBytes(bytes.data(), 256, back.data());
    EXPECT_EQ(back, every.substr(0, 256));
    EXPECT_EQ(ansiToWideTable()[0x80], L'\u20AC');
}

TEST(Ansi, PlainAsciiBlockIsItsOwnBytes) {
    const std::wstring text = L"Hello, 7-bit world\r\n";
    std::vector<uint8_t> bytes(text.size());
    toAnsiBytes(text, bytes.data());
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "Hello, 7-bit world\r\n");
    toAnsiBytes(L"", bytes.data());  // nothing to write
    EXPECT_EQ(toAnsi(L"\u20AC1"), std::string("\x80"
                                              "1"));
    EXPECT_EQ(fromAnsi(std::string("\x80"
                                   "1")),
              L"\u20AC1");
}

TEST(Ansi, UnmappableCharacterBecomesQuestionMark) { EXPECT_EQ(toAnsiByte(L'\u4E2D'), '?'); }

TEST(Ansi, Utf8RoundTrip) {
    std::wstring text = L"Caf\u00E9 \u20AC";
    EXPECT_EQ(toUtf8(text), "Caf\xC3\xA9 \xE2\x82\xAC");
    EXPECT_EQ(fromUtf8(toUtf8(text)), text);
}

}  // namespace
}  // namespace qx
