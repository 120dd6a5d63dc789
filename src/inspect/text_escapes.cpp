#include "inspect/text_escapes.h"

#include <array>
#include <cstdio>

#include "platform/basics/ansi.h"

namespace qx::textform {

namespace {

constexpr std::array<std::string_view, 32> kControlNames{
    "NUL", "SOH", "STX", "ETX", "EOT", "ENQ", "ACK", "BEL", "BS",  "HT", "LF",  "VT",  "FF", "CR", "SO", "SI",
    "DLE", "DC1", "DC2", "DC3", "DC4", "NAK", "SYN", "ETB", "CAN", "EM", "SUB", "ESC", "FS", "GS", "RS", "US"};

// A byte shows as itself when the code page gives it a visible character of
// its own: not DEL, not the five holes of Windows-1252 (which stand for
// U+0081 and the like), not the no-break and soft hyphen that look like
// something else.
bool showsAsItself(uint8_t byte) {
    if (byte < 32 || byte == '<' || byte == 0x7F) return false;
    if (byte < 0x7F) return true;
    const wchar_t ch = fromAnsiByte(byte);
    if (ch >= 0x80 && ch <= 0x9F) return false;
    if (ch == 0xA0 || ch == 0xAD) return false;
    return toAnsiByte(ch) == byte;
}

void appendUtf8(std::string& out, uint32_t code) {
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        out += static_cast<char>(0xE0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

// One UTF-8 character at the offset; false for a malformed sequence.
bool nextUtf8(std::string_view text, size_t& at, uint32_t& code) {
    const auto byte = [&](size_t i) { return static_cast<uint8_t>(text[i]); };
    const uint8_t first = byte(at);
    size_t length = 0;
    if (first < 0x80) {
        code = first;
        length = 1;
    } else if ((first & 0xE0) == 0xC0) {
        code = first & 0x1F;
        length = 2;
    } else if ((first & 0xF0) == 0xE0) {
        code = first & 0x0F;
        length = 3;
    } else if ((first & 0xF8) == 0xF0) {
        code = first & 0x07;
        length = 4;
    } else {
        return false;
    }
    if (length > text.size() - at) return false;
    for (size_t i = 1; i < length; ++i) {
        if ((byte(at + i) & 0xC0) != 0x80) return false;
        code = (code << 6) | (byte(at + i) & 0x3F);
    }
    static constexpr std::array<uint32_t, 5> least{0, 0, 0x80, 0x800, 0x10000};
    if (code < least[length] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return false;
    at += length;
    return true;
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

}  // namespace

std::string_view controlName(int32_t code) {
    if (code < 0 || code >= static_cast<int32_t>(kControlNames.size())) return {};
    return kControlNames[static_cast<size_t>(code)];
}

std::string escapeBytes(const std::vector<uint8_t>& values) {
    std::string out;
    out.reserve(values.size());
    for (uint8_t byte : values) {
        if (byte < 32) {
            out += '<';
            out += controlName(byte);
            out += '>';
        } else if (byte == '<') {
            out += "<LT>";
        } else if (showsAsItself(byte)) {
            appendUtf8(out, static_cast<uint32_t>(fromAnsiByte(byte)));
        } else {
            char hex[8];
            std::snprintf(hex, sizeof hex, "<0x%02X>", byte);
            out += hex;
        }
    }
    return out;
}

bool unescapeBytes(std::string_view text, std::vector<uint8_t>& values, std::string& error, size_t& offset) {
    values.clear();
    size_t at = 0;
    while (at < text.size()) {
        offset = at;
        if (text[at] == '<') {
            const size_t close = text.find('>', at + 1);
            if (close == std::string_view::npos) {
                error = "a \"<\" opens an escape that no \">\" closes (a literal \"<\" is written \"<LT>\")";
                return false;
            }
            const std::string_view name = text.substr(at + 1, close - at - 1);
            int32_t value = -1;
            if (name == "LT") value = '<';
            for (int32_t code = 0; code < 32 && value < 0; ++code)
                if (name == controlName(code)) value = code;
            if (value < 0 && name.size() == 4 && name[0] == '0' && (name[1] == 'x' || name[1] == 'X') &&
                hexDigit(name[2]) >= 0 && hexDigit(name[3]) >= 0)
                value = hexDigit(name[2]) * 16 + hexDigit(name[3]);
            if (value < 0) {
                error = "unknown escape \"<" + std::string(name) +
                        ">\": escapes are the control names <NUL> to <US>, <LT> and <0xHH>";
                return false;
            }
            values.push_back(static_cast<uint8_t>(value));
            at = close + 1;
            continue;
        }
        uint32_t code = 0;
        if (!nextUtf8(text, at, code)) {
            error = "the text is not valid UTF-8";
            return false;
        }
        if (code > 0xFFFF) {
            error = "a character outside the Windows-1252 code page";
            return false;
        }
        const uint8_t byte = toAnsiByte(static_cast<wchar_t>(code));
        if (fromAnsiByte(byte) != static_cast<wchar_t>(code)) {
            error = "a character outside the Windows-1252 code page";
            return false;
        }
        values.push_back(byte);
    }
    return true;
}

}  // namespace qx::textform
