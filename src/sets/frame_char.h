// One start or end character of a message frame, as the Send and Scan sets
// keep them: up to four on each side of a message.
#pragma once
#include <array>
#include <cstdint>

#include "platform/basics/runtime_error.h"

namespace qx {

struct FrameChar {
    uint8_t Value = 0;
    // True when the user typed the character (or cleared the cell), false when
    // it came from the control-character selector; the dialog shows the first
    // kind as a character and the second as two hex digits.
    bool ByAscii = false;
    bool operator==(const FrameChar&) const = default;
};

// Entries 0 to 3; how many are in use is kept beside them.
using FrameChars = std::array<FrameChar, 4>;

// Writes both parts of entry pIndex; an index outside 0 to 3 is RuntimeError(9).
inline void setFrameChar(FrameChars& chars, int32_t pIndex, uint8_t pValue, bool pByAscii) {
    if (pIndex < 0 || pIndex >= static_cast<int32_t>(chars.size())) raiseError(err::SubscriptOutOfRange);
    chars[static_cast<size_t>(pIndex)] = FrameChar{pValue, pByAscii};
}

}  // namespace qx
