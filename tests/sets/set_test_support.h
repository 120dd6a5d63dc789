// Helpers of the message set tests: the shared test helpers, and writing text
// into a message as typing would leave it.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

#include "message/protocol_message.h"
#include "support/test_helpers.h"

namespace qx::test {

// Puts the text at the position of the message's 500 characters.
inline void putText(clsProtocolMessage& message, int32_t position, const std::wstring& text) {
    std::wstring all = message.MessageString();
    all.replace(static_cast<size_t>(position), text.size(), text);
    message.MessageString(all);
}

}  // namespace qx::test
