// The model's checksum calculations: every code of the default table gives
// its published check value over "123456789", the rules of their own hold
// on frames computed by hand, and real frames of public protocols carry the
// checksum the model computes.
#include "runtime_model/checksum_catalogue.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/basics/runtime_error.h"
#include "support/test_helpers.h"

namespace qx::model {
namespace {

std::vector<uint8_t> ascii(const std::string& text) { return {text.begin(), text.end()}; }

TEST(ChecksumCatalogue, EveryDefaultCodeGivesItsCheckValueOver123456789) {
    const ChecksumTable table = ChecksumTable::Default();
    const std::vector<uint8_t> text = ascii("123456789");
    // The published check values, written out here rather than read back
    // from the table.
    const std::vector<uint32_t> expected{0xDD, 0x31, 0xBB3D, 0xF4, 0x23, 0x31C3, 0x2189, 0x29B1, 0xE5CC, 0xE3};
    for (int32_t code = FirstCalculationCode; code <= LastCalculationCode; ++code) {
        EXPECT_EQ(table.Compute(code, text), expected[static_cast<size_t>(code - 1)]) << code;
        EXPECT_EQ(table.Definition(code).Check, expected[static_cast<size_t>(code - 1)]) << code;
    }
}

TEST(ChecksumCatalogue, TheDefaultTableNamesTheCatalogueEntries) {
    const ChecksumTable table = ChecksumTable::Default();
    EXPECT_EQ(table.Definition(3).Name, "CRC-16/ARC");
    EXPECT_EQ(table.Definition(4).Name, "CRC-8/SMBUS");
    EXPECT_EQ(table.Definition(6).Name, "CRC-16/XMODEM");
    EXPECT_EQ(table.Definition(7).Name, "CRC-16/KERMIT");
    EXPECT_EQ(table.Definition(8).Name, "CRC-16/IBM-3740");
    EXPECT_EQ(table.Definition(9).Name, "CRC-16/SPI-FUJITSU");
    EXPECT_EQ(calculationName(5), L"2's COMPLEMENT");
    EXPECT_EQ(calculationName(10), L"LRC");
}

TEST(ChecksumCatalogue, OtherCatalogueEntriesComputeTheirPublishedChecks) {
    // CRC-16/MODBUS, CRC-32/ISO-HDLC and CRC-8/MAXIM-DOW, to hold the CRC
    // engine against reflected, 32-bit and final-XOR definitions too.
    const std::vector<uint8_t> text = ascii("123456789");
    EXPECT_EQ(computeChecksum({"CRC-16/MODBUS", ChecksumRule::Crc, 16, 0x8005, 0xFFFF, true, true, 0, 0x4B37}, text),
              0x4B37u);
    EXPECT_EQ(computeChecksum({"CRC-32/ISO-HDLC", ChecksumRule::Crc, 32, 0x04C11DB7, 0xFFFFFFFF, true, true, 0xFFFFFFFF,
                               0xCBF43926},
                              text),
              0xCBF43926u);
    EXPECT_EQ(computeChecksum({"CRC-8/MAXIM-DOW", ChecksumRule::Crc, 8, 0x31, 0, true, true, 0, 0xA1}, text), 0xA1u);
    EXPECT_EQ(computeChecksum({"SUM-16", ChecksumRule::Sum, 16, 0, 0, false, false, 0, 0}, text), 0x1DDu);
}

TEST(ChecksumCatalogue, TheModbusAsciiLrcOfAPublishedFrame) {
    // Read two holding registers from slave 1: ":010300000002FA", whose LRC
    // FA covers the text between the colon and the LRC.
    const ChecksumTable table = ChecksumTable::Default();
    EXPECT_EQ(table.Compute(10, ascii("010300000002")), 0xFAu);
    // The colon and line ends are no hexadecimal digits and count for nothing.
    EXPECT_EQ(table.Compute(10, ascii(":010300000002\r\n")), 0xFAu);
}

TEST(ChecksumCatalogue, AModbusRtuFrameCarriesItsCrc16Modbus) {
    // Slave 1, function 3, start 0, count 10: 01 03 00 00 00 0A C5 CD (the
    // CRC low byte first).
    const std::vector<uint8_t> frame{0x01, 0x03, 0x00, 0x00, 0x00, 0x0A};
    const uint32_t value =
        computeChecksum({"CRC-16/MODBUS", ChecksumRule::Crc, 16, 0x8005, 0xFFFF, true, true, 0, 0x4B37}, frame);
    EXPECT_EQ(value & 0xFF, 0xC5u);
    EXPECT_EQ(value >> 8, 0xCDu);
}

TEST(ChecksumCatalogue, SumAndTwosComplementOfAShortFrameByHand) {
    const ChecksumTable table = ChecksumTable::Default();
    const std::vector<uint8_t> frame{0x02, 0x41, 0xFF, 0x03};  // sum 0x145
    EXPECT_EQ(table.Compute(1, frame), 0x45u);
    EXPECT_EQ(table.Compute(5, frame), 0xBBu);
    EXPECT_EQ(table.Compute(2, frame), 0x02u ^ 0x41u ^ 0xFFu ^ 0x03u);
    EXPECT_EQ(table.Compute(1, {}), 0u);
    EXPECT_EQ(table.Compute(5, {}), 0u);
}

TEST(ChecksumCatalogue, AProjectMayChangeWhatACodeStandsFor) {
    ChecksumTable table = ChecksumTable::Default();
    table.Definition(3, {"CRC-16/MODBUS", ChecksumRule::Crc, 16, 0x8005, 0xFFFF, true, true, 0, 0x4B37});
    EXPECT_EQ(table.Compute(3, ascii("123456789")), 0x4B37u);
    EXPECT_EQ(table.Definition(3).Name, "CRC-16/MODBUS");
    EXPECT_EQ(ChecksumTable::Default().Definition(3).Name, "CRC-16/ARC");
}

TEST(ChecksumCatalogue, CodesOutsideOneToTenAndBadWidthsRaise) {
    ChecksumTable table = ChecksumTable::Default();
    for (int32_t code : {0, 11, -1}) {
        EXPECT_EQ(test::raisedError([&] { table.Definition(code); }).Number(), 9) << code;
        EXPECT_EQ(test::raisedError([&] { calculationName(code); }).Number(), 9) << code;
    }
    EXPECT_EQ(test::raisedError([] {
                  computeChecksum({"bad", ChecksumRule::Crc, 33, 1, 0, false, false, 0, 0}, std::vector<uint8_t>{1});
              }).Number(),
              5);
}

TEST(ChecksumCatalogue, EveryKnownDefinitionIsSoundAndGivesItsPublishedCheck) {
    // The published check values of the entries beyond the default table,
    // written out here; the default table's are held above.
    const std::map<std::string, uint32_t> published{
        {"CRC-16/MODBUS", 0x4B37},    {"CRC-16/IBM-SDLC", 0x906E}, {"CRC-16/USB", 0xB4C8},
        {"CRC-16/MAXIM-DOW", 0x44C2}, {"CRC-16/DNP", 0xEA82},      {"CRC-16/UMTS", 0xFEE8},
        {"CRC-16/GENIBUS", 0xD64E},   {"CRC-8/MAXIM-DOW", 0xA1},   {"CRC-8/AUTOSAR", 0xDF},
        {"CRC-8/CDMA2000", 0xDA},     {"SUM-16", 0x01DD}};
    std::set<std::string> names;
    for (const ChecksumDefinition& known : knownChecksums()) {
        EXPECT_EQ(checksumProblem(known), "") << known.Name;
        EXPECT_TRUE(names.insert(known.Name).second) << known.Name;
        EXPECT_EQ(computeChecksum(known, ascii("123456789")), known.Check) << known.Name;
        if (published.count(known.Name)) {
            EXPECT_EQ(known.Check, published.at(known.Name)) << known.Name;
        }
    }
    EXPECT_EQ(names.size(), 10 + published.size());
    // Modbus RTU sends its CRC low byte first; the others keep the default.
    for (const ChecksumDefinition& known : knownChecksums())
        EXPECT_EQ(known.LowByteFirst, known.Name == "CRC-16/MODBUS") << known.Name;
}

TEST(ChecksumCatalogue, AnUnsoundDefinitionIsToldInWords) {
    ChecksumDefinition d = ChecksumTable::Default().Definition(3);
    EXPECT_EQ(checksumProblem(d), "");
    d.Polynomial = 0x18005;
    EXPECT_EQ(checksumProblem(d), "the polynomial 0x18005 is wider than 16 bits");
    d = ChecksumTable::Default().Definition(3);
    d.Init = 0x10000;
    EXPECT_EQ(checksumProblem(d), "the initial value 0x10000 is wider than 16 bits");
    d = ChecksumTable::Default().Definition(3);
    d.XorOut = 0x1FFFF;
    EXPECT_EQ(checksumProblem(d), "the final XOR 0x1FFFF is wider than 16 bits");
    d = ChecksumTable::Default().Definition(3);
    d.Width = 0;
    EXPECT_EQ(checksumProblem(d), "a CRC is 1 to 32 bits wide, not 0");
    d = ChecksumTable::Default().Definition(3);
    d.Check = 0x1234;
    EXPECT_EQ(checksumProblem(d), "its check value 0x1234 is not what it gives over \"123456789\" (0xBB3D)");
    EXPECT_EQ(checksumParameterProblem(d), "");
    d.Name.clear();
    EXPECT_EQ(checksumProblem(d), "it has no name");
    d = ChecksumTable::Default().Definition(1);
    d.Width = 12;
    EXPECT_EQ(checksumProblem(d), "a sum is 8, 16 or 32 bits wide, not 12");
    d = ChecksumTable::Default().Definition(2);
    d.Width = 16;
    EXPECT_EQ(checksumProblem(d), "this rule is 8 bits wide, not 16");
    d.Rule = static_cast<ChecksumRule>(9);
    EXPECT_EQ(checksumProblem(d), "its rule is unknown");
}

}  // namespace
}  // namespace qx::model
