// The checksum table as JSON, for a person to read, keep beside a project's
// text forms and give to the command line: format "qxfbcom2-checksum-table",
// version 1, one object per code with the definition's parameters by name.
//
//   {"format": "qxfbcom2-checksum-table", "version": 1, "codes": [
//     {"code": 3, "list name": "CRC-16", "name": "CRC-16/MODBUS", "rule": "crc",
//      "width": 16, "polynomial": "0x8005", "init": "0xFFFF", "reflect in": true,
//      "reflect out": true, "xor out": "0x0000", "check": "0x4B37",
//      "byte order": "low first"}]}
//
// A code the text leaves out keeps the default table's definition.
#pragma once
#include <string>
#include <string_view>

#include "runtime_model/checksum_catalogue.h"

namespace qx::model {

inline constexpr std::string_view ChecksumTableFormat = "qxfbcom2-checksum-table";

// All ten codes, indented by two, ending with a line break.
std::string checksumTableToJson(const ChecksumTable& table);

// Anything that is not such a text, or a definition that checksumProblem
// finds unsound, raises RuntimeError(321) with the place: "line L, column
// C: " for JSON that does not parse, the code and the key otherwise.
ChecksumTable checksumTableFromJson(std::string_view json);

}  // namespace qx::model
