// The text form (JSON) of an operation that holds a message set: a Send or a
// Scan of either family. The project file keeps it beside the image and the
// project's export writes it, so that a person can read and diff the
// messages; the image stays what the controller gets.
#pragma once
#include <optional>
#include <string>

#include "project/project.h"

namespace qx {

// Which set an operation holds, if any.
enum class MessageSetKind { None, Send, Scan };
MessageSetKind messageSetKindOf(const StoredOperation& operation);

// The text form of the operation's image, read in a host context of its own
// with the project's extended operands; nothing for an operation that holds
// no message set or an image that does not read.
std::optional<std::string> textFormOf(const StoredOperation& operation, bool extendedOperands);

}  // namespace qx
