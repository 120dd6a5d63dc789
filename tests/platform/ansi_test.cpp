#include "platform/basics/ansi.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <random>
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

TEST(Utf8, ValidSequencesOfEveryLengthAreDecoded) {
    EXPECT_EQ(fromUtf8("A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"), std::wstring(L"A\u00E9\u20AC") + wchar_t(0x1F600));
}

TEST(Utf8, ALatin1FolderNameSurvivesByteForByte) {
    const std::string path = "/opt/caf\xE9/bin";
    const std::wstring text = fromUtf8(path);
    EXPECT_EQ(text, std::wstring(L"/opt/caf") + wchar_t(0xDCE9) + L"/bin");
    EXPECT_EQ(toUtf8(text), path);
}

TEST(Utf8, InvalidBytesNeverSwallowWhatFollows) {
    // A lead byte without its continuation bytes takes only itself.
    EXPECT_EQ(fromUtf8("\xE2"
                       "A"),
              (std::wstring{wchar_t(0xDCE2), L'A'}));
    EXPECT_EQ(fromUtf8("\xF0\x9F"
                       "ok"),
              (std::wstring{wchar_t(0xDCF0), wchar_t(0xDC9F), L'o', L'k'}));
    // Truncated at the end, overlong, a surrogate, past U+10FFFF, a lone continuation byte.
    for (const std::string bad :
         {"\xE2\x82", "\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\x80", "\xFF\xFE"}) {
        const std::wstring text = fromUtf8(bad);
        EXPECT_EQ(text.size(), bad.size()) << bad;
        for (size_t i = 0; i < bad.size(); ++i) EXPECT_EQ(uint32_t(text[i]), 0xDC00u + uint8_t(bad[i])) << i;
        EXPECT_EQ(toUtf8(text), bad);
    }
}

TEST(Utf8, AnyBytesGoThereAndBackUnchanged) {
    std::mt19937 random(20261122);
    // Bytes drawn mostly from the upper half, with valid sequences among them.
    const std::string pieces[] = {"a",    "/",    "\xC3\xA9",    "\xE2\x82\xAC", "\xF0\x9F\x98\x80",
                                  "\xE9", "\x80", "\xED\xB2\x80"};
    for (int round = 0; round < 5000; ++round) {
        std::string bytes;
        const int length = static_cast<int>(random() % 12);
        for (int i = 0; i < length; ++i) {
            if (random() % 2)
                bytes += pieces[random() % std::size(pieces)];
            else
                bytes.push_back(static_cast<char>(random() % 256));
        }
        ASSERT_EQ(toUtf8(fromUtf8(bytes)), bytes) << round;
    }
}

}  // namespace
}  // namespace qx
