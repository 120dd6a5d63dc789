// Bytes of the wire as people read and type them: "02 41 03" and
// "<STX>A<ETX>", and pairs of hexadecimal digits typed or pasted.
#pragma once
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qx::model {

// "02 41 03"
std::string hexLine(std::span<const uint8_t> bytes);
// Printable ASCII as it is, control characters named ("<STX>"), other bytes as "<hex>".
std::string byteText(uint8_t byte);
std::string textLine(std::span<const uint8_t> bytes);
// Pairs of hexadecimal digits, with blanks, line breaks, commas or colons
// between them; nothing for any other text or an odd digit at the end.
std::optional<std::vector<uint8_t>> parseHex(std::string_view text);

}  // namespace qx::model
