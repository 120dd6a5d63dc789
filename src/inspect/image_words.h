// The words of an image's numbers, as the dialogs show them: the numeric
// formats of the field dialog, the checksum's lists, the end of message,
// the frame characters, and texts of the ANSI code page made readable.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qx::words {

// 3 "Decimal ASCII: Fixed Length": a number with the dialog's text; the
// number alone when the text is empty.
std::string numbered(int64_t value, std::string_view text);
// 0 (no ETX): a number with a remark.
std::string remarked(int64_t value, std::string_view remark);

// A text of the image in quotes, a control character by its name ("<CR>"),
// any other byte as the character of the ANSI code page.
std::string quoted(const uint8_t* bytes, size_t count);
// One character: 'A', or the name of a control character.
std::string character(uint8_t byte);

// The format code of a numeric Send record (byte 1).
std::string_view sendFormat(int32_t code);
// The format code of a numeric Scan record (byte 0), when it is no stream.
std::string_view scanFormat(int32_t code);
// The dialog's VarFormat of a numeric Scan field, 0 to 4.
std::string_view scanVarFormat(int32_t varFormat);
// LeadingZeros of a numeric Send field.
std::string_view leading(int32_t value);
// The record code of CopyBytesFormat: bytes a linked element becomes.
std::string sendCopyBytes(int32_t code);
std::string scanCopyBytes(int32_t code);
// The Copy buffer's format: received bytes that make one element.
std::string copyBufferFormat(int32_t format);

// The checksum's lists, by record code or value.
std::string_view checksumFormat(int32_t code);
std::string_view calculation(int32_t type);
std::string_view modulus(int32_t type);

// 1 "ETX", 2 "Checksum & ETX", 3 "ETX & Checksum".
std::string endOfMessage(int32_t type);
std::string dateFormat(int32_t type);
std::string timeFormat(int32_t type);
// "COM1" to "COM3".
std::string comPort(int32_t port);

// An operand type byte: constants are named as such.
std::string operandType(int32_t type);

// "1 byte", "12 bytes".
std::string bytes(size_t count);

}  // namespace qx::words
