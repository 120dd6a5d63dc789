// What the Send renderer and the Scan recognizer read alike from a field's
// settings: the bytes of a stream element and their order, and a checksum
// field's value and its form on the wire.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "runtime_model/checksum_catalogue.h"

namespace qx {
class clsProtocolCSVar;
}

namespace qx::model {

// The bytes of one stream element by CopyBytesFormat: 2, 3 and "Big" 4
// bytes go the most significant first, "Small" 4 bytes the least first.
struct StreamElement {
    int32_t Bytes = 1;
    bool LowByteFirst = false;
};
StreamElement streamElementOf(int32_t copyBytesFormat);
void appendElement(const StreamElement& element, int64_t value, std::vector<uint8_t>& out);
int64_t readElement(const StreamElement& element, std::span<const uint8_t> bytes);

// The checksum of a field or of the end of message over the bytes before it,
// `frame` being everything so far and `afterStart` where the message begins
// behind the start characters. The model reads "Offset From (Forward)" as
// bytes skipped at the front and "Offset Till (Backwards)" as bytes left out
// at the back, "Include STX" as counting the start characters too, the
// modulus as cutting the result to 8, 16 or 32 bits, and "Set Limits" as
// adding its value to a result between From and To (both included).
uint64_t checksumValue(const clsProtocolCSVar& checksum, std::span<const uint8_t> frame, size_t afterStart,
                       const ChecksumTable& table);
// The value as it goes on the wire: CSLength decimal or hexadecimal
// characters (the lowest digits, zeros in front), or CSLength bytes in the
// order of the calculation's definition.
std::vector<uint8_t> checksumBytes(const clsProtocolCSVar& checksum, uint64_t value, const ChecksumTable& table);
// How many bytes the checksum takes on the wire.
size_t checksumWidth(const clsProtocolCSVar& checksum);

}  // namespace qx::model
