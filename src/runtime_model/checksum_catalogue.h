// The checksum calculations of the model. An image names a calculation by
// its code (1 to 10, as the checksum field's list shows them); which exact
// calculation the controller runs for a code is not written down in the
// image, so the model keeps a table from code to a full definition that a
// project may change. The default table is the model's best reading of the
// names; every definition is checked against its published check value.
#pragma once
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace qx::model {

// How a definition computes. A CRC is given by its parameters; the others
// are rules of their own.
enum class ChecksumRule {
    Crc,
    // The sum of the bytes, cut to the checksum's width.
    Sum,
    // The exclusive or of the bytes.
    Xor,
    // The two's complement of the 8-bit sum of the bytes.
    TwosComplement,
    // The two's complement of the 8-bit sum of the byte values that the
    // pairs of hexadecimal digits of the text stand for, as serial-line
    // Modbus ASCII defines its LRC. Characters that are not hexadecimal
    // digits are skipped; an odd digit at the end counts as its own value.
    LrcOfHexText,
};

struct ChecksumDefinition {
    // The catalogue name, e.g. "CRC-16/ARC".
    std::string Name;
    ChecksumRule Rule = ChecksumRule::Crc;
    // Bits of the result, 8 or 16 (up to 32 for a CRC).
    int32_t Width = 8;
    uint32_t Polynomial = 0;
    uint32_t Init = 0;
    bool ReflectIn = false;
    bool ReflectOut = false;
    uint32_t XorOut = 0;
    // The result over the ASCII text "123456789", as the catalogue publishes it.
    uint32_t Check = 0;
    // How a checksum in binary form goes on the wire: the least significant
    // byte first (as Modbus RTU sends its CRC) or the most significant.
    bool LowByteFirst = false;
    bool operator==(const ChecksumDefinition&) const = default;
};

// Runs a definition over bytes; the result has the definition's width.
uint32_t computeChecksum(const ChecksumDefinition& definition, std::span<const uint8_t> bytes);

// What makes a definition unusable, in words ("the polynomial 0x11021 is
// wider than 16 bits"); empty when it is sound: a name, a width its rule
// allows (a CRC 1 to 32 bits, a sum 8, 16 or 32, the others 8) and values
// that fit the width. checksumProblem also wants the check value to be what
// the definition gives over "123456789".
std::string checksumParameterProblem(const ChecksumDefinition& definition);
std::string checksumProblem(const ChecksumDefinition& definition);
// What the definition gives over "123456789"; its parameters must be sound.
uint32_t checkValueOf(const ChecksumDefinition& definition);

// The definitions a person can choose from for a code: the default table's
// and other well-known ones of at most 16 bits, each with its published
// check value.
const std::vector<ChecksumDefinition>& knownChecksums();

// The ten calculation codes of a checksum field and their list texts.
inline constexpr int32_t FirstCalculationCode = 1;
inline constexpr int32_t LastCalculationCode = 10;
std::wstring calculationName(int32_t code);

// Code to definition, for one project.
class ChecksumTable {
public:
    // The model's reading of the ten codes: "SUM-8" the 8-bit sum, "XOR-8"
    // the exclusive or, "CRC-16" CRC-16/ARC, "CRC-8" CRC-8/SMBUS, "2's
    // COMPLEMENT" the two's complement of the 8-bit sum, "CRC-CCITT1" to
    // "CRC-CCITT4" CRC-16/XMODEM, CRC-16/KERMIT, CRC-16/IBM-3740 and
    // CRC-16/SPI-FUJITSU, "LRC" the Modbus ASCII LRC over hexadecimal text.
    static ChecksumTable Default();

    // A code out of 1 to 10 raises RuntimeError(9), as an index out of range.
    const ChecksumDefinition& Definition(int32_t code) const;
    void Definition(int32_t code, ChecksumDefinition definition);
    uint32_t Compute(int32_t code, std::span<const uint8_t> bytes) const {
        return computeChecksum(Definition(code), bytes);
    }

    bool operator==(const ChecksumTable&) const = default;

private:
    std::array<ChecksumDefinition, LastCalculationCode> definitions_;
};

}  // namespace qx::model
