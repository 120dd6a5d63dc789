// How the text form writes the bytes of fixed text, field texts and frame
// characters: printable characters as themselves (UTF-8 of their
// Windows-1252 character), the control codes 0 to 31 by their names in
// angle brackets ("<NUL>" to "<US>", as the control-character selector
// names them), a literal "<" as "<LT>", and every other byte that has no
// visible character of its own as "<0xHH>".
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qx::textform {

// The name of a control code 0 to 31 without brackets ("STX"); empty above.
std::string_view controlName(int32_t code);

// The escaped text of byte values 0 to 255.
std::string escapeBytes(const std::vector<uint8_t>& values);

// The byte values of an escaped text. On failure, false, with the rule
// broken in error and the byte offset in the text where it was found.
bool unescapeBytes(std::string_view text, std::vector<uint8_t>& values, std::string& error, size_t& offset);

}  // namespace qx::textform
