// The Send image: the byte array that a Send operation stores and that the
// controller runs from. A header of 58 bytes, a table of message offsets,
// the messages with their segment tables and data blocks, and at least one
// spare byte at the end; the length is always even. Little-endian, offsets
// absolute and 16-bit.
#pragma once
#include "platform/basics/bytes.h"

namespace qx {

class clsProtocolSendSrv;

// Writes the image of the set. With one message to download the message
// number operand becomes the constant 0 first; clearHasValue says whether
// that also clears its HasValue (the serial family does, the TCP/IP one
// does not). A value that does not fit its byte raises RuntimeError(6), and
// so does an offset past 65,535: the format cannot say it, and an image that
// would reload differently is never written.
Bytes writeSendImage(clsProtocolSendSrv& set, bool clearHasValue);

// Loads the image into the set. Reads go through ByteReader: anything short
// or lying raises RuntimeError(9); an unknown segment type creates nothing.
// Texts end within 255 bytes, and all texts loaded together never exceed the
// image, so a record that many fields share cannot make a load run away.
void readSendImage(clsProtocolSendSrv& set, const Bytes& image);

}  // namespace qx
