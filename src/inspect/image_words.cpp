#include "inspect/image_words.h"

#include <array>

#include "framework/shared_helpers.h"
#include "platform/basics/ansi.h"

namespace qx::words {

namespace {

constexpr std::array<std::string_view, 32> controlNames = {
    "NUL", "SOH", "STX", "ETX", "EOT", "ENQ", "ACK", "BEL", "BS",  "HT", "LF",  "VT",  "FF", "CR", "SO", "SI",
    "DLE", "DC1", "DC2", "DC3", "DC4", "NAK", "SYN", "ETB", "CAN", "EM", "SUB", "ESC", "FS", "GS", "RS", "US"};

constexpr uint8_t firstPrintable = 32;
constexpr uint8_t deleteCode = 127;

std::string sendBytesText(int32_t n) { return "Convert ONE Linked Element to " + std::to_string(n) + " Send Bytes"; }
std::string receiveBytesText(int32_t n) {
    return "Convert " + std::to_string(n) + " Receive Bytes to ONE Linked Element";
}

}  // namespace

std::string numbered(int64_t value, std::string_view text) {
    std::string out = std::to_string(value);
    if (!text.empty()) out += " \"" + std::string(text) + "\"";
    return out;
}

std::string remarked(int64_t value, std::string_view remark) {
    return std::to_string(value) + " (" + std::string(remark) + ")";
}

std::string character(uint8_t byte) {
    if (byte < firstPrintable) return "<" + std::string(controlNames[byte]) + ">";
    if (byte == deleteCode) return "<DEL>";
    return toUtf8(std::wstring(1, fromAnsiByte(byte)));
}

std::string quoted(const uint8_t* bytes, size_t count) {
    std::string out = "\"";
    for (size_t i = 0; i < count; ++i) out += character(bytes[i]);
    return out + "\"";
}

std::string_view sendFormat(int32_t code) {
    switch (code) {
        case 1:
            return "Decimal ASCII, No Prefix";
        case 2:
            return "Decimal ASCII, Negative Only (-)";
        case 3:
            return "Decimal ASCII, Positive & Negative (+,-)";
        case 4:
            return "Hex as ASCII";
        case 5:
            return "Binary stream";
        default:
            return "";
    }
}

std::string_view scanFormat(int32_t code) {
    switch (code) {
        case 1:
            return "No Prefix";
        case 2:
            return "Negative Only (-)";
        case 3:
            return "Positive & Negative (+,-)";
        case 4:
            return "Hex as Ascii";
        case 5:
            return "Binary stream";
        default:
            return "";
    }
}

std::string_view scanVarFormat(int32_t varFormat) {
    switch (varFormat) {
        case 0:
            return "Decimal ASCII: Fixed Length";
        case 1:
            return "Decimal ASCII: No Fixed Length";
        case 2:
            return "Hex as Ascii";
        case 3:
            return "Stream Fixed Length";
        case 4:
            return "Stream, no fixed length";
        default:
            return "";
    }
}

std::string_view leading(int32_t value) {
    switch (value) {
        case 0:
            return "No Leading";
        case 1:
            return "Leading Zeros";
        case 2:
            return "Leading Spaces";
        default:
            return "";
    }
}

std::string sendCopyBytes(int32_t code) {
    switch (code) {
        case 1:
        case 2:
        case 3:
            return sendBytesText(code);
        case 4:
            return sendBytesText(4) + " (Big)";
        case 5:
            return sendBytesText(4) + " (Small)";
        default:
            return "";
    }
}

std::string scanCopyBytes(int32_t code) {
    switch (code) {
        case 1:
        case 2:
        case 3:
            return receiveBytesText(code);
        case 4:
            return receiveBytesText(4) + " (Big)";
        case 5:
            return receiveBytesText(4) + " (Small)";
        default:
            return "";
    }
}

std::string copyBufferFormat(int32_t format) {
    switch (format) {
        case 1:
        case 2:
        case 4:
            return receiveBytesText(format);
        default:
            return "";
    }
}

std::string_view checksumFormat(int32_t code) {
    switch (code) {
        case 1:
            return "Decimal ASCII";
        case 4:
            return "Hex as ASCII";
        case 5:
            return "Binary";
        default:
            return "";
    }
}

std::string_view calculation(int32_t type) {
    switch (type) {
        case 1:
            return "SUM-8";
        case 2:
            return "XOR-8";
        case 3:
            return "CRC-16";
        case 4:
            return "CRC-8";
        case 5:
            return "2's COMPLEMENT";
        case 6:
            return "CRC-CCITT1";
        case 7:
            return "CRC-CCITT2";
        case 8:
            return "CRC-CCITT3";
        case 9:
            return "CRC-CCITT4";
        case 10:
            return "LRC";
        default:
            return "";
    }
}

std::string_view modulus(int32_t type) {
    switch (type) {
        case 1:
            return "256 (100H)";
        case 2:
            return "65536 (10000H)";
        case 3:
            return "32 bit";
        default:
            return "";
    }
}

std::string endOfMessage(int32_t type) { return toUtf8(GetEndOfMessageText(type)); }
std::string dateFormat(int32_t type) { return toUtf8(GetDateFormatText(type)); }
std::string timeFormat(int32_t type) { return toUtf8(GetTimeFormatText(type)); }

std::string comPort(int32_t port) { return port >= 1 && port <= 3 ? "COM" + std::to_string(port) : ""; }

std::string operandType(int32_t type) {
    switch (type) {
        case 34:
        case 37:
            return remarked(type, "constant");
        case 35:
        case 38:
            return remarked(type, "constant, unsigned");
        default:
            return std::to_string(type);
    }
}

std::string bytes(size_t count) { return std::to_string(count) + (count == 1 ? " byte" : " bytes"); }

}  // namespace qx::words
