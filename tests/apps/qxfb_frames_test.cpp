// The example frames of resources/examples/frames through qxfb: a Modbus
// ASCII and a Modbus RTU request and an NMEA GLL sentence, each a Send set in
// its text form with a Scan set that receives it. preview prints the
// published bytes; decode, fed those bytes, names the message and what each
// field received.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "apps/cli_run.h"
#include "component/built_paths.h"
#include "project/project_file.h"
#include "support/scratch_files.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

namespace fs = std::filesystem;

// The published frames, byte by byte.
const std::vector<uint8_t> ModbusAscii = {':', '0', '1', '0', '3', '0', '0',  '0', '0',
                                          '0', '0', '0', '2', 'F', 'A', 0x0D, 0x0A};
const std::vector<uint8_t> ModbusRtu = {0x01, 0x03, 0x00, 0x00, 0x00, 0x0A, 0xC5, 0xCD};
const std::vector<uint8_t> NmeaGll = {'$', 'G', 'P', 'G', 'L', 'L', ',', '5', '3', '0', '0', '.', '9', '7',  '9', '1',
                                      '4', ',', 'N', ',', '0', '0', '2', '5', '9', '.', '9', '8', '1', '7',  '4', ',',
                                      'E', ',', '1', '2', '5', '9', '2', '6', ',', 'A', '*', '2', '8', 0x0D, 0x0A};

std::string hex(const std::vector<uint8_t>& bytes) {
    std::string text;
    char byte[4];
    for (uint8_t value : bytes) {
        std::snprintf(byte, sizeof byte, "%02X", value);
        text += (text.empty() ? "" : " ") + std::string(byte);
    }
    return text;
}

class QxfbFramesTest : public ::testing::Test {
protected:
    std::string program = paths::builtCli();
    test::ScratchFolder scratch{"qxfb_frames_test"};

    test::CliRun run(const std::string& arguments) {
        return test::runCli(program, arguments, scratch.path(), "", scratch.path());
    }
    static std::string frame(const std::string& name) {
        return test::shellQuoted((fs::path(paths::sourceTree()) / "resources/examples/frames" / name).string());
    }
    // decode of the bytes against the Scan set: its lines.
    std::vector<std::string> decoded(const std::string& scan, const std::vector<uint8_t>& bytes,
                                     const std::string& options = "") {
        const test::CliRun out = run("decode " + frame(scan) + " --hex '" + hex(bytes) + "'" + options);
        EXPECT_EQ(out.status, 0) << out.out << out.err;
        return out.lines();
    }
};

TEST_F(QxfbFramesTest, PreviewOfTheModbusAsciiRequestPrintsItsPublishedBytes) {
    const test::CliRun out = run("preview " + frame("modbus-ascii-send.json"));
    ASSERT_EQ(out.status, 0) << out.err;
    EXPECT_EQ(out.out, "Message 1: 17 bytes\n  hex:  " + hex(ModbusAscii) + "\n  text: :010300000002FA<CR><LF>\n");
}

TEST_F(QxfbFramesTest, PreviewOfTheModbusRtuRequestPrintsItsPublishedBytesWithTheModbusCrc) {
    const test::CliRun out = run("preview " + frame("modbus-rtu-send.json") + " --crc16 modbus");
    ASSERT_EQ(out.status, 0) << out.err;
    EXPECT_EQ(out.lines().at(1), "  hex:  " + hex(ModbusRtu));
    // Read as CRC-16/ARC, the code gives other bytes: the reading matters.
    EXPECT_EQ(run("preview " + frame("modbus-rtu-send.json")).lines().at(1), "  hex:  01 03 00 00 00 0A D6 C5");
}

TEST_F(QxfbFramesTest, PreviewOfTheNmeaSentencePrintsItsPublishedBytes) {
    const test::CliRun out = run("preview " + frame("nmea-gpgll-send.json"));
    ASSERT_EQ(out.status, 0) << out.err;
    EXPECT_EQ(out.lines().at(0), "Message 1: 47 bytes");
    EXPECT_EQ(out.lines().at(1), "  hex:  " + hex(NmeaGll));
}

// A project whose table reads "CRC-16" as CRC-16/MODBUS gives the published
// frame without --crc16, from the project file or from its exported table.
TEST_F(QxfbFramesTest, TheChecksumTableOfAProjectOrOfItsExportGivesTheModbusRtuFrame) {
    Project project;
    const std::vector<model::ChecksumDefinition>& known = model::knownChecksums();
    const auto modbus =
        std::find_if(known.begin(), known.end(), [](const auto& d) { return d.Name == "CRC-16/MODBUS"; });
    ASSERT_NE(modbus, known.end());
    project.Settings.Checksums.Definition(3, *modbus);
    const fs::path file = scratch.path() / "rtu.qxfbproj";
    saveProject(file.string(), project);
    EXPECT_EQ(run("preview " + frame("modbus-rtu-send.json") + " --checksums rtu.qxfbproj").lines().at(1),
              "  hex:  " + hex(ModbusRtu));
    ASSERT_EQ(run("project export rtu.qxfbproj out").status, 0);
    EXPECT_EQ(run("preview " + frame("modbus-rtu-send.json") + " --checksums out/checksums.json").lines().at(1),
              "  hex:  " + hex(ModbusRtu));
    EXPECT_EQ(decoded("modbus-rtu-scan.json", ModbusRtu, " --checksums out/checksums.json"),
              decoded("modbus-rtu-scan.json", ModbusRtu, " --crc16 modbus"));
}

TEST_F(QxfbFramesTest, ABadChecksumTableIsNamedWithItsFault) {
    test::writeFile(scratch.path() / "bad.json",
                    "{\"format\": \"qxfbcom2-checksum-table\", \"version\": 1,\n \"codes\": [}");
    const test::CliRun out = run("preview " + frame("modbus-rtu-send.json") + " --checksums bad.json");
    EXPECT_EQ(out.status, 1);
    EXPECT_EQ(out.err,
              "qxfb: bad.json: line 2, column 12: not JSON: syntax error while parsing value - unexpected "
              "'}'; expected '[', '{', or a literal\n");
    const test::CliRun both = run("preview " + frame("modbus-rtu-send.json") + " --checksums bad.json --crc16 modbus");
    EXPECT_EQ(both.status, 2);
}

TEST_F(QxfbFramesTest, DecodeOfTheModbusAsciiRequestGivesTheStartAndTheCount) {
    EXPECT_EQ(decoded("modbus-ascii-scan.json", ModbusAscii),
              (std::vector<std::string>{"Frame at 0 (17 bytes): :010300000002FA<CR><LF>",
                                        "  message 1, 17 bytes received", "  field at position 4: MI 100 = 0",
                                        "  field at position 8: MI 101 = 2", "1 frames, 1 recognised"}));
}

TEST_F(QxfbFramesTest, DecodeOfTheModbusRtuRequestGivesTheStartAndTheCount) {
    EXPECT_EQ(decoded("modbus-rtu-scan.json", ModbusRtu, " --crc16 modbus"),
              (std::vector<std::string>{"Frame at 0 (8 bytes): <SOH><ETX><NUL><NUL><NUL><LF><C5><CD>",
                                        "  message 1, 8 bytes received",
                                        "  field at position 2: MI 100 = 0, MI 101 = 10", "1 frames, 1 recognised"}));
}

TEST_F(QxfbFramesTest, DecodeOfTheNmeaSentenceGivesPositionAndTime) {
    EXPECT_EQ(decoded("nmea-gpgll-scan.json", NmeaGll),
              (std::vector<std::string>{"Frame at 0 (47 bytes): $GPGLL,5300.97914,N,00259.98174,E,125926,A*28<CR><LF>",
                                        "  message 1, 47 bytes received",
                                        "  field at position 6: MI 100 = 530097914; MI 101 = 5 decimal places",
                                        "  field at position 10: MI 102 = 25998174; MI 103 = 5 decimal places",
                                        "  field at position 14: MI 104 = 125926", "1 frames, 1 recognised"}));
}

TEST_F(QxfbFramesTest, AFrameWithAWrongChecksumIsRecognisedByNoMessage) {
    std::vector<uint8_t> bad = NmeaGll;
    bad[44] = '9';  // "*29"
    const test::CliRun out = run("decode " + frame("nmea-gpgll-scan.json") + " --hex '" + hex(bad) + "'");
    EXPECT_EQ(out.status, 1);
    EXPECT_NE(out.out.find("  no message\n"), std::string::npos) << out.out;
    EXPECT_NE(out.out.find("checksum \"2\" \"8\" expected, \"2\" \"9\" received"), std::string::npos) << out.out;
}

TEST_F(QxfbFramesTest, EachSendSetIsTakenByItsScanSet) {
    for (const std::string& name :
         {std::string("modbus-ascii"), std::string("modbus-rtu"), std::string("nmea-gpgll")}) {
        const test::CliRun out =
            run("loopback " + frame(name + "-send.json") + " " + frame(name + "-scan.json") + " --crc16 modbus");
        EXPECT_EQ(out.status, 0) << name << ": " << out.out << out.err;
        EXPECT_EQ(out.lastLine(), "Loopback clean") << name;
    }
}

}  // namespace
}  // namespace qx
