// Where in a text a reader stopped, and why, in words a person can act on.
#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace qx {

// "line 3, column 7" of the byte at offset; columns count characters of
// UTF-8, not bytes.
std::string lineAndColumn(std::string_view text, size_t offset);

// The reason of a JSON parser's complaint without its own view of the place:
// "[json.exception.parse_error.101] parse error at line 1, column 2: syntax
// error ..." gives "syntax error ...".
std::string jsonFaultReason(const std::string& what);

}  // namespace qx
