// The example frames of resources/examples/frames, read from their text
// forms: each Send set renders the published bytes of its frame (written out
// here by hand), and the matching Scan set recognises those bytes and gives
// each field's value.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "inspect/text_form.h"
#include "platform/host/host_context.h"
#include "runtime_model/scan_recognizer.h"
#include "runtime_model/send_renderer.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"

namespace qx::model {
namespace {

namespace fs = std::filesystem;
using Wire = std::vector<uint8_t>;

// The folder of the examples: QXFB_SOURCE_DIR when it names the source tree,
// else found from this file's name, which the compiler cache may have made
// relative to the build folder (the one above this program's).
fs::path framesFolder() {
    const fs::path inTree = "resources/examples/frames";
    if (const char* tree = std::getenv("QXFB_SOURCE_DIR"); tree && *tree) return fs::path(tree) / inTree;
    const fs::path self = fs::path(__FILE__);
    std::error_code error;
    const fs::path buildFolder = fs::read_symlink("/proc/self/exe", error).parent_path().parent_path();
    for (const fs::path& file : {self, buildFolder / self, fs::current_path() / self}) {
        const fs::path folder = file.parent_path().parent_path().parent_path() / inTree;
        if (fs::is_directory(folder, error)) return folder.lexically_normal();
    }
    return inTree;
}

std::string readText(const std::string& name) {
    std::ifstream in(framesFolder() / name, std::ios::binary);
    EXPECT_TRUE(in) << (framesFolder() / name);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// Modbus reads "CRC-16" as CRC-16/MODBUS, its low byte first.
ChecksumTable modbusChecksums() {
    ChecksumTable table = ChecksumTable::Default();
    table.Definition(3, {"CRC-16/MODBUS", ChecksumRule::Crc, 16, 0x8005, 0xFFFF, true, true, 0, 0x4B37, true});
    return table;
}

class ExampleFramesTest : public ::testing::Test {
protected:
    ScopedHostContext context;

    Wire rendered(const std::string& name, const ChecksumTable& checksums = ChecksumTable::Default()) {
        const std::unique_ptr<clsProtocolSendSrv> set = textform::importSendSet(readText(name));
        EXPECT_EQ(set->NumberOfMessages(), 1);
        return renderSendMessage(*set, 1, OperandValues{}, ModelClock{}, checksums).Bytes;
    }
    Recognition recognised(const std::string& name, const Wire& bytes,
                           const ChecksumTable& checksums = ChecksumTable::Default()) {
        const std::unique_ptr<clsProtocolScanSrv> set = textform::importScanSet(readText(name));
        const std::vector<FrameSpan> frames = splitFrames(*set, bytes);
        EXPECT_EQ(frames.size(), 1u);
        if (!frames.empty()) {
            EXPECT_EQ(frames[0].Offset, 0u);
            EXPECT_EQ(frames[0].Length, bytes.size());
        }
        return recognizeFrame(*set, bytes, checksums);
    }
};

// ":010300000002FA" CR LF: slave 1 reads two holding registers from 0; the
// LRC FA as two hexadecimal characters.
const Wire ModbusAscii{0x3A, 0x30, 0x31, 0x30, 0x33, 0x30, 0x30, 0x30, 0x30,
                       0x30, 0x30, 0x30, 0x32, 0x46, 0x41, 0x0D, 0x0A};
// Slave 1 reads ten holding registers from 0; CRC-16/MODBUS CDC5, low byte first.
const Wire ModbusRtu{0x01, 0x03, 0x00, 0x00, 0x00, 0x0A, 0xC5, 0xCD};
// "$GPGLL,5300.97914,N,00259.98174,E,125926,A*28" CR LF: the exclusive or of
// everything between "$" and "*" is 28.
const Wire NmeaGll{0x24, 0x47, 0x50, 0x47, 0x4C, 0x4C, 0x2C, 0x35, 0x33, 0x30, 0x30, 0x2E, 0x39, 0x37, 0x39, 0x31,
                   0x34, 0x2C, 0x4E, 0x2C, 0x30, 0x30, 0x32, 0x35, 0x39, 0x2E, 0x39, 0x38, 0x31, 0x37, 0x34, 0x2C,
                   0x45, 0x2C, 0x31, 0x32, 0x35, 0x39, 0x32, 0x36, 0x2C, 0x41, 0x2A, 0x32, 0x38, 0x0D, 0x0A};

TEST_F(ExampleFramesTest, TheModbusAsciiRequestRendersWithItsLrc) {
    EXPECT_EQ(rendered("modbus-ascii-send.json"), ModbusAscii);
}

TEST_F(ExampleFramesTest, TheModbusRtuRequestRendersWithItsCrcLowByteFirst) {
    EXPECT_EQ(rendered("modbus-rtu-send.json", modbusChecksums()), ModbusRtu);
}

TEST_F(ExampleFramesTest, TheNmeaSentenceRendersWithItsXorAsTwoHexDigits) {
    EXPECT_EQ(rendered("nmea-gpgll-send.json"), NmeaGll);
}

TEST_F(ExampleFramesTest, TheModbusAsciiScanTakesTheStartAndTheCount) {
    const Recognition got = recognised("modbus-ascii-scan.json", ModbusAscii);
    ASSERT_EQ(got.MessageNumber, 1) << (got.WhyNot.empty() ? L"" : got.WhyNot[0]);
    ASSERT_EQ(got.Fields.size(), 2u);
    EXPECT_EQ(got.Fields[0].OperandAddress, 100);
    EXPECT_EQ(got.Fields[0].Values, std::vector<int64_t>{0});
    EXPECT_EQ(got.Fields[1].OperandAddress, 101);
    EXPECT_EQ(got.Fields[1].Values, std::vector<int64_t>{2});
    Wire bad = ModbusAscii;
    bad[14] = 'B';
    EXPECT_EQ(recognised("modbus-ascii-scan.json", bad).MessageNumber, 0);
}

TEST_F(ExampleFramesTest, TheModbusRtuScanTakesTheStartAndTheCount) {
    const Recognition got = recognised("modbus-rtu-scan.json", ModbusRtu, modbusChecksums());
    ASSERT_EQ(got.MessageNumber, 1) << (got.WhyNot.empty() ? L"" : got.WhyNot[0]);
    ASSERT_EQ(got.Fields.size(), 1u);
    EXPECT_EQ(got.Fields[0].OperandAddress, 100);
    EXPECT_EQ(got.Fields[0].Values, (std::vector<int64_t>{0, 10}));
    // The same bytes fail the CRC as CRC-16/ARC reads it.
    EXPECT_EQ(recognised("modbus-rtu-scan.json", ModbusRtu).MessageNumber, 0);
}

TEST_F(ExampleFramesTest, TheNmeaScanTakesLatitudeLongitudeAndTime) {
    const Recognition got = recognised("nmea-gpgll-scan.json", NmeaGll);
    ASSERT_EQ(got.MessageNumber, 1) << (got.WhyNot.empty() ? L"" : got.WhyNot[0]);
    ASSERT_EQ(got.Fields.size(), 3u);
    EXPECT_EQ(got.Fields[0].Values, std::vector<int64_t>{530097914});
    EXPECT_TRUE(got.Fields[0].HasDecimalPlaces);
    EXPECT_EQ(got.Fields[0].DecimalPlaces, 5);
    EXPECT_EQ(got.Fields[1].Values, std::vector<int64_t>{25998174});
    EXPECT_EQ(got.Fields[1].DecimalPlaces, 5);
    EXPECT_EQ(got.Fields[2].Values, std::vector<int64_t>{125926});
    EXPECT_FALSE(got.Fields[2].HasDecimalPlaces);
}

}  // namespace
}  // namespace qx::model
