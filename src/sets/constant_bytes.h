// How a constant operand's value becomes the four bytes of the Send image's
// message-number block and back. The host gives a constant's value as a
// fixed-point number scaled by 10000 (int64_t holding value times 10000).
#pragma once
#include <cstdint>

#include "platform/basics/bytes.h"
#include "platform/host/operand.h"

namespace qx {

// Types 34 and 37: the value as signed 32-bit; types 35 and 38: through
// CurrencyTo4Bytes. Both answer true. Any other type answers false and
// leaves pBytes empty.
bool ConstantToBytes(const clsOperand& pOperand, Bytes& pBytes);
// A value of 0 or more goes through prvPositiveCurrencyTo4Bytes; a negative
// one becomes the bytes of a signed 32-bit number.
Bytes CurrencyTo4Bytes(int64_t pValue);
// Lowest byte first. A value above 0xFFFFFFFF does not fit: it is reported
// through clsErrorReporter and gives four zero bytes.
Bytes prvPositiveCurrencyTo4Bytes(int64_t pValue);
// The unsigned value of four bytes, lowest first, scaled by 10000. Another
// length is reported through clsErrorReporter and gives 0.
int64_t FourBytesToCurrency(const Bytes& pBytes);

}  // namespace qx
