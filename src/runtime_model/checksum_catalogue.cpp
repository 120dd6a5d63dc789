#include "runtime_model/checksum_catalogue.h"

#include <utility>

#include "platform/basics/runtime_error.h"

namespace qx::model {

namespace {

uint32_t mask(int32_t width) { return width >= 32 ? 0xFFFFFFFFu : (1u << width) - 1u; }

uint32_t reflect(uint32_t value, int32_t width) {
    uint32_t out = 0;
    for (int32_t bit = 0; bit < width; ++bit)
        if (value & (1u << bit)) out |= 1u << (width - 1 - bit);
    return out;
}

// The plain bitwise CRC: frames are short, and the model must be easy to
// hold against a published definition.
uint32_t crc(const ChecksumDefinition& d, std::span<const uint8_t> bytes) {
    const uint32_t top = 1u << (d.Width - 1);
    uint32_t value = d.Init & mask(d.Width);
    for (uint8_t byte : bytes) {
        const uint32_t in = d.ReflectIn ? reflect(byte, 8) : byte;
        for (int32_t bit = 7; bit >= 0; --bit) {
            const bool feedback = ((value & top) != 0) != (((in >> bit) & 1u) != 0);
            value = (value << 1) & mask(d.Width);
            if (feedback) value ^= d.Polynomial & mask(d.Width);
        }
    }
    if (d.ReflectOut) value = reflect(value, d.Width);
    return (value ^ d.XorOut) & mask(d.Width);
}

int32_t hexValue(uint8_t c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

uint32_t lrcOfHexText(std::span<const uint8_t> bytes) {
    uint32_t sum = 0;
    int32_t high = -1;
    for (uint8_t c : bytes) {
        const int32_t digit = hexValue(c);
        if (digit < 0) continue;
        if (high < 0) {
            high = digit;
        } else {
            sum += static_cast<uint32_t>(high * 16 + digit);
            high = -1;
        }
    }
    if (high >= 0) sum += static_cast<uint32_t>(high);
    return (0x100u - (sum & 0xFFu)) & 0xFFu;
}

ChecksumDefinition crc16(std::string name, uint32_t init, bool reflected, uint32_t polynomial, uint32_t check) {
    return ChecksumDefinition{std::move(name), ChecksumRule::Crc, 16, polynomial, init, reflected, reflected, 0, check};
}

}  // namespace

uint32_t computeChecksum(const ChecksumDefinition& definition, std::span<const uint8_t> bytes) {
    switch (definition.Rule) {
        case ChecksumRule::Crc:
            if (definition.Width < 1 || definition.Width > 32) raiseError(err::InvalidProcedureCall);
            return crc(definition, bytes);
        case ChecksumRule::Sum: {
            uint32_t sum = 0;
            for (uint8_t byte : bytes) sum += byte;
            return sum & mask(definition.Width);
        }
        case ChecksumRule::Xor: {
            uint32_t value = 0;
            for (uint8_t byte : bytes) value ^= byte;
            return value;
        }
        case ChecksumRule::TwosComplement: {
            uint32_t sum = 0;
            for (uint8_t byte : bytes) sum += byte;
            return (0x100u - (sum & 0xFFu)) & 0xFFu;
        }
        case ChecksumRule::LrcOfHexText:
            return lrcOfHexText(bytes);
    }
    raiseError(err::InvalidProcedureCall);
}

std::wstring calculationName(int32_t code) {
    static const wchar_t* const names[] = {L"SUM-8",          L"XOR-8",      L"CRC-16",     L"CRC-8",
                                           L"2's COMPLEMENT", L"CRC-CCITT1", L"CRC-CCITT2", L"CRC-CCITT3",
                                           L"CRC-CCITT4",     L"LRC"};
    if (code < FirstCalculationCode || code > LastCalculationCode) raiseError(err::SubscriptOutOfRange);
    return names[code - 1];
}

ChecksumTable ChecksumTable::Default() {
    ChecksumTable table;
    table.definitions_ = {
        ChecksumDefinition{"SUM-8", ChecksumRule::Sum, 8, 0, 0, false, false, 0, 0xDD},
        ChecksumDefinition{"XOR-8", ChecksumRule::Xor, 8, 0, 0, false, false, 0, 0x31},
        crc16("CRC-16/ARC", 0x0000, true, 0x8005, 0xBB3D),
        ChecksumDefinition{"CRC-8/SMBUS", ChecksumRule::Crc, 8, 0x07, 0x00, false, false, 0, 0xF4},
        ChecksumDefinition{"two's complement of SUM-8", ChecksumRule::TwosComplement, 8, 0, 0, false, false, 0, 0x23},
        crc16("CRC-16/XMODEM", 0x0000, false, 0x1021, 0x31C3),
        crc16("CRC-16/KERMIT", 0x0000, true, 0x1021, 0x2189),
        crc16("CRC-16/IBM-3740", 0xFFFF, false, 0x1021, 0x29B1),
        crc16("CRC-16/SPI-FUJITSU", 0x1D0F, false, 0x1021, 0xE5CC),
        // "123456789" read as the hexadecimal pairs 12 34 56 78 and a lone 9.
        ChecksumDefinition{"LRC (Modbus ASCII)", ChecksumRule::LrcOfHexText, 8, 0, 0, false, false, 0, 0xE3},
    };
    return table;
}

const ChecksumDefinition& ChecksumTable::Definition(int32_t code) const {
    if (code < FirstCalculationCode || code > LastCalculationCode) raiseError(err::SubscriptOutOfRange);
    return definitions_[static_cast<size_t>(code - 1)];
}

void ChecksumTable::Definition(int32_t code, ChecksumDefinition definition) {
    if (code < FirstCalculationCode || code > LastCalculationCode) raiseError(err::SubscriptOutOfRange);
    definitions_[static_cast<size_t>(code - 1)] = std::move(definition);
}

}  // namespace qx::model
