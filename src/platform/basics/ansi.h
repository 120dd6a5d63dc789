// Text conversions at the edges of the library: the ANSI code page of the
// images (Windows-1252, one byte a character) and UTF-8 for the console.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qx {

// One byte for one character; a character the code page cannot hold gives '?'.
uint8_t toAnsiByte(wchar_t ch);
std::string toAnsi(const std::wstring& text);
wchar_t fromAnsiByte(uint8_t byte);
std::wstring fromAnsi(const std::string& bytes);
// Block forms for the image code: count characters or bytes, one for one,
// through the same tables.
void toAnsiBytes(std::wstring_view text, uint8_t* out);
void fromAnsiBytes(const uint8_t* bytes, size_t count, wchar_t* out);
// The character of each byte, for loops that convert and do more at once.
const std::array<wchar_t, 256>& ansiToWideTable();

// UTF-8 of the system's texts and file names. Bytes that are not valid
// UTF-8 come in as U+DC80 to U+DCFF, one a byte, and go out as the same
// bytes, so that toUtf8(fromUtf8(b)) == b for any bytes b.
std::string toUtf8(const std::wstring& text);
std::wstring fromUtf8(const std::string& text);

}  // namespace qx
