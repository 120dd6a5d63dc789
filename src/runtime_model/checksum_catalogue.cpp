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

ChecksumDefinition crc16(std::string name, uint32_t init, bool reflected, uint32_t polynomial, uint32_t check,
                         uint32_t xorOut = 0) {
    return ChecksumDefinition{std::move(name), ChecksumRule::Crc, 16,     polynomial, init,
                              reflected,       reflected,         xorOut, check};
}

ChecksumDefinition crc8(std::string name, uint32_t init, bool reflected, uint32_t polynomial, uint32_t check,
                        uint32_t xorOut = 0) {
    return ChecksumDefinition{std::move(name), ChecksumRule::Crc, 8,      polynomial, init,
                              reflected,       reflected,         xorOut, check};
}

std::string hex(uint32_t value) {
    static const char digits[] = "0123456789ABCDEF";
    std::string text;
    do {
        text.insert(text.begin(), digits[value % 16]);
        value /= 16;
    } while (value != 0);
    return "0x" + text;
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

std::string checksumParameterProblem(const ChecksumDefinition& d) {
    if (d.Name.empty()) return "it has no name";
    if (d.Name.size() > 64) return "its name is longer than 64 characters";
    switch (d.Rule) {
        case ChecksumRule::Crc:
            if (d.Width < 1 || d.Width > 32) return "a CRC is 1 to 32 bits wide, not " + std::to_string(d.Width);
            if (d.Polynomial > mask(d.Width))
                return "the polynomial " + hex(d.Polynomial) + " is wider than " + std::to_string(d.Width) + " bits";
            if (d.Init > mask(d.Width))
                return "the initial value " + hex(d.Init) + " is wider than " + std::to_string(d.Width) + " bits";
            if (d.XorOut > mask(d.Width))
                return "the final XOR " + hex(d.XorOut) + " is wider than " + std::to_string(d.Width) + " bits";
            break;
        case ChecksumRule::Sum:
            if (d.Width != 8 && d.Width != 16 && d.Width != 32)
                return "a sum is 8, 16 or 32 bits wide, not " + std::to_string(d.Width);
            break;
        case ChecksumRule::Xor:
        case ChecksumRule::TwosComplement:
        case ChecksumRule::LrcOfHexText:
            if (d.Width != 8) return "this rule is 8 bits wide, not " + std::to_string(d.Width);
            break;
        default:
            return "its rule is unknown";
    }
    return {};
}

uint32_t checkValueOf(const ChecksumDefinition& definition) {
    static const std::string text = "123456789";
    return computeChecksum(definition, std::span(reinterpret_cast<const uint8_t*>(text.data()), text.size()));
}

std::string checksumProblem(const ChecksumDefinition& d) {
    std::string problem = checksumParameterProblem(d);
    if (!problem.empty()) return problem;
    const uint32_t got = checkValueOf(d);
    if (got != d.Check)
        return "its check value " + hex(d.Check) + " is not what it gives over \"123456789\" (" + hex(got) + ")";
    return {};
}

const std::vector<ChecksumDefinition>& knownChecksums() {
    static const std::vector<ChecksumDefinition> known = [] {
        const ChecksumTable defaults = ChecksumTable::Default();
        std::vector<ChecksumDefinition> list;
        for (int32_t code = FirstCalculationCode; code <= LastCalculationCode; ++code)
            list.push_back(defaults.Definition(code));
        ChecksumDefinition modbus = crc16("CRC-16/MODBUS", 0xFFFF, true, 0x8005, 0x4B37);
        modbus.LowByteFirst = true;
        list.push_back(modbus);
        list.push_back(crc16("CRC-16/IBM-SDLC", 0xFFFF, true, 0x1021, 0x906E, 0xFFFF));
        list.push_back(crc16("CRC-16/USB", 0xFFFF, true, 0x8005, 0xB4C8, 0xFFFF));
        list.push_back(crc16("CRC-16/MAXIM-DOW", 0x0000, true, 0x8005, 0x44C2, 0xFFFF));
        list.push_back(crc16("CRC-16/DNP", 0x0000, true, 0x3D65, 0xEA82, 0xFFFF));
        list.push_back(crc16("CRC-16/UMTS", 0x0000, false, 0x8005, 0xFEE8));
        list.push_back(crc16("CRC-16/GENIBUS", 0xFFFF, false, 0x1021, 0xD64E, 0xFFFF));
        list.push_back(crc8("CRC-8/MAXIM-DOW", 0x00, true, 0x31, 0xA1));
        list.push_back(crc8("CRC-8/AUTOSAR", 0xFF, false, 0x2F, 0xDF, 0xFF));
        list.push_back(crc8("CRC-8/CDMA2000", 0xFF, false, 0x9B, 0xDA));
        list.push_back({"SUM-16", ChecksumRule::Sum, 16, 0, 0, false, false, 0, 0x01DD});
        return list;
    }();
    return known;
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
