// Pieces of hand-written Send and Scan images that many tests lay out: the
// end-of-message checksum at its defaults and the segment entry of a plain
// numeric field. Each is written out byte by byte from the image layout.
#pragma once
#include <cstdint>

#include "support/test_helpers.h"

namespace qx::test {

// Bytes 1 to 14 of the end-of-message checksum at its defaults: decimal text,
// one byte long, SUM-8, modulus 256, no STX in it.
inline const Bytes kDefaultChecksum{1, 0, 1, 0, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0};

// A Send segment entry: type 5, then the record of a decimal with sign, one
// element, five digits, linked to an MI.
inline Bytes sendNumericEntry(uint8_t address) { return {5, 0, 3, 1, 5, 0, 0, 0, 3, 0, address, 0, 0, 0, 0, 0, 0, 0}; }

// A Scan segment entry: position, type 1, and the record of a decimal with
// sign, one element, five digits, with the linked MI and the decimal-point MI.
inline Bytes scanNumericEntry(uint8_t position, uint8_t address, uint8_t decimalPointAddress) {
    return concat(
        {{position, 0, 1, 0}, {3, 1, 5, 0, 3, 0, address, 0, 0, 0, 0, 0, 3, 0, decimalPointAddress, 0, 0, 0, 0, 0}});
}

}  // namespace qx::test
