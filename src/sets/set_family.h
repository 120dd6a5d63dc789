// Which family a message set belongs to. The TCP/IP sets keep the serial
// ones' messages and image layout, but open their own dialogs (no framing)
// and differ in a few defaults and allowed types.
#pragma once

namespace qx {

enum class SetFamily { Serial, Ethernet };

}  // namespace qx
