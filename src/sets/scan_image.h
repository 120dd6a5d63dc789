// The Scan image: the table by which the controller recognises a received
// message. A header of 36 bytes, a table of message offsets, and the
// messages, each with its summary, a segment table that keeps each
// segment's position and the fields' 20-byte records, and its fixed-text
// blocks. No spare byte: the length is the end of the last message rounded
// up to even. Little-endian, offsets absolute and 16-bit.
#pragma once
#include "platform/basics/bytes.h"

namespace qx {

class clsProtocolScanSrv;

// Writes the image of the set. A value that does not fit its byte, or an
// offset past 65,535, raises RuntimeError(6) and no image comes out.
Bytes writeScanImage(clsProtocolScanSrv& set);

// Loads the image into the set. Reads go through ByteReader: anything short
// or lying raises RuntimeError(9); an unknown segment type creates nothing.
void readScanImage(clsProtocolScanSrv& set, const Bytes& image);

}  // namespace qx
