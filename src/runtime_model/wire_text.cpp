#include "runtime_model/wire_text.h"

namespace qx::model {

namespace {

const char* const controlNames[32] = {"NUL", "SOH", "STX", "ETX", "EOT", "ENQ", "ACK", "BEL", "BS",  "HT",  "LF",
                                      "VT",  "FF",  "CR",  "SO",  "SI",  "DLE", "DC1", "DC2", "DC3", "DC4", "NAK",
                                      "SYN", "ETB", "CAN", "EM",  "SUB", "ESC", "FS",  "GS",  "RS",  "US"};
const char* const hexDigits = "0123456789ABCDEF";

int digitOf(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

std::string hexLine(std::span<const uint8_t> bytes) {
    std::string text;
    text.reserve(bytes.size() * 3);
    for (uint8_t value : bytes) {
        if (!text.empty()) text += ' ';
        text += hexDigits[value >> 4];
        text += hexDigits[value & 15];
    }
    return text;
}

std::string byteText(uint8_t byte) {
    if (byte < 32) return "<" + std::string(controlNames[byte]) + ">";
    if (byte < 127) return std::string(1, static_cast<char>(byte));
    return std::string{'<', hexDigits[byte >> 4], hexDigits[byte & 15], '>'};
}

std::string textLine(std::span<const uint8_t> bytes) {
    std::string text;
    for (uint8_t value : bytes) text += byteText(value);
    return text;
}

std::optional<std::vector<uint8_t>> parseHex(std::string_view text) {
    std::vector<uint8_t> bytes;
    int high = -1;
    for (char c : text) {
        if (c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == ',' || c == ':') continue;
        const int digit = digitOf(c);
        if (digit < 0) return std::nullopt;
        if (high < 0) {
            high = digit;
        } else {
            bytes.push_back(static_cast<uint8_t>(high * 16 + digit));
            high = -1;
        }
    }
    if (high >= 0) return std::nullopt;
    return bytes;
}

}  // namespace qx::model
