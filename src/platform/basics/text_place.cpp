#include "platform/basics/text_place.h"

#include <algorithm>
#include <cstdint>

namespace qx {

std::string lineAndColumn(std::string_view text, size_t offset) {
    offset = std::min(offset, text.size());
    size_t line = 1, column = 1;
    for (size_t i = 0; i < offset; ++i) {
        if (text[i] == '\n') {
            ++line;
            column = 1;
        } else if ((static_cast<uint8_t>(text[i]) & 0xC0) != 0x80) {
            ++column;
        }
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

std::string jsonFaultReason(const std::string& what) {
    const size_t at = what.find("at line");
    const size_t reason = at == std::string::npos ? what.find("] ") : what.find(": ", at);
    return reason == std::string::npos ? what : what.substr(reason + 2);
}

}  // namespace qx
