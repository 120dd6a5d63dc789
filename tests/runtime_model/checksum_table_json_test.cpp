// The checksum table's JSON: written out whole, read back to the same table,
// a code left out keeps its default, and every fault is named by its place.
#include "runtime_model/checksum_table_json.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "support/test_helpers.h"

namespace qx::model {
namespace {

std::string faultOf(const std::string& json) {
    const RuntimeError e = test::raisedError([&] { checksumTableFromJson(json); });
    EXPECT_EQ(e.Number(), 321);
    return toUtf8(e.Description());
}

std::string withCode3(const std::string& members) {
    return R"j({"format": "qxfbcom2-checksum-table", "version": 1, "codes": [{"code": 3, )j" + members + "}]}";
}

TEST(ChecksumTableJson, TheDefaultTableIsWrittenAsAPersonReadsIt) {
    const std::string json = checksumTableToJson(ChecksumTable::Default());
    EXPECT_EQ(json.substr(0, 84),
              "{\n  \"format\": \"qxfbcom2-checksum-table\",\n  \"version\": 1,\n  \"codes\": [\n    {\"code\": 1");
    EXPECT_NE(json.find(R"j({"code": 3, "list name": "CRC-16", "name": "CRC-16/ARC", "rule": "crc", "width": 16, )j"
                        R"j("polynomial": "0x8005", "init": "0x0000", "reflect in": true, "reflect out": true, )j"
                        R"j("xor out": "0x0000", "check": "0xBB3D", "byte order": "high first"},)j"),
              std::string::npos)
        << json;
    EXPECT_NE(json.find(R"j({"code": 10, "list name": "LRC", "name": "LRC (Modbus ASCII)", "rule": "lrc of hex text", )j"
                        R"j("width": 8, "check": "0xE3", "byte order": "high first"})j"),
              std::string::npos)
        << json;
    EXPECT_EQ(json.substr(json.size() - 8), "}\n  ]\n}\n");
}

TEST(ChecksumTableJson, EveryKnownDefinitionOnEveryCodeComesBackTheSame) {
    for (const ChecksumDefinition& known : knownChecksums()) {
        ChecksumTable table = ChecksumTable::Default();
        for (int32_t code = FirstCalculationCode; code <= LastCalculationCode; ++code) table.Definition(code, known);
        EXPECT_EQ(checksumTableFromJson(checksumTableToJson(table)), table) << known.Name;
    }
}

TEST(ChecksumTableJson, ACodeLeftOutKeepsItsDefaultAndTheCheckMayBeLeftOut) {
    const ChecksumTable table = checksumTableFromJson(
        withCode3(R"j("name": "CRC-16/MODBUS", "rule": "crc", "width": 16, "polynomial": 32773, "init": "0xffff", )j"
                  R"j("reflect in": true, "reflect out": true, "byte order": "low first")j"));
    const ChecksumDefinition& modbus = table.Definition(3);
    EXPECT_EQ(modbus.Name, "CRC-16/MODBUS");
    EXPECT_EQ(modbus.Polynomial, 0x8005u);
    EXPECT_EQ(modbus.Init, 0xFFFFu);
    EXPECT_EQ(modbus.Check, 0x4B37u);
    EXPECT_TRUE(modbus.LowByteFirst);
    for (int32_t code : {1, 2, 4, 5, 6, 7, 8, 9, 10})
        EXPECT_EQ(table.Definition(code), ChecksumTable::Default().Definition(code)) << code;
}

TEST(ChecksumTableJson, JsonThatDoesNotParseIsPlacedByLineAndColumn) {
    EXPECT_EQ(
        faultOf(
            "{\n  \"format\": \"qxfbcom2-checksum-table\",\n  \"version\": 1,\n  \"codes\": [\n    {\"code\": }\n]}"),
        "line 5, column 14: not JSON: syntax error while parsing value - unexpected '}'; expected '[', '{', "
        "or a literal");
    EXPECT_EQ(faultOf(""),
              "line 1, column 1: not JSON: syntax error while parsing value - unexpected end of input; "
              "expected '[', '{', or a literal");
}

TEST(ChecksumTableJson, ANumberTooLargeForAnyTypeIsRefusedInWordsNotThrownThrough) {
    EXPECT_EQ(faultOf("{\"version\": 1E400}"), "line 1, column 17: not JSON: number overflow parsing '1E400'");
    EXPECT_EQ(faultOf("22020088E41594"), "line 1, column 14: not JSON: number overflow parsing '22020088E41594'");
}

TEST(ChecksumTableJson, EveryBrokenRuleNamesTheCodeAndTheKey) {
    EXPECT_EQ(faultOf("[]"), "the checksum table: an object expected");
    EXPECT_EQ(faultOf(R"j({"format": "other", "version": 1, "codes": []})j"),
              "the checksum table: \"format\" must be \"qxfbcom2-checksum-table\"");
    EXPECT_EQ(faultOf(R"j({"format": "qxfbcom2-checksum-table", "version": 2, "codes": []})j"),
              "the checksum table: \"version\" must be 1");
    EXPECT_EQ(faultOf(R"j({"format": "qxfbcom2-checksum-table", "version": 1})j"),
              "the checksum table: \"codes\" is missing");
    EXPECT_EQ(faultOf(R"j({"format": "qxfbcom2-checksum-table", "version": 1, "codes": [{"code": 11}]})j"),
              "codes[0]: \"code\" must be a whole number from 1 to 10");
    EXPECT_EQ(faultOf(R"j({"format": "qxfbcom2-checksum-table", "version": 1, "codes": [)j"
                      R"j({"code": 1, "name": "SUM-8", "rule": "sum", "width": 8}, {"code": 1}]})j"),
              "codes[1]: code 1 is given twice");
    EXPECT_EQ(faultOf(withCode3(R"j("name": "X", "rule": "md5", "width": 16)j")),
              "code 3: \"rule\" must be \"crc\", \"sum\", \"xor\", \"two's complement\" or \"lrc of hex text\"");
    EXPECT_EQ(faultOf(withCode3(R"j("name": "X", "rule": "crc", "width": 16)j")), "code 3: \"polynomial\" is missing");
    EXPECT_EQ(faultOf(withCode3(R"j("name": "X", "rule": "crc", "width": 16, "polynomial": "8005")j")),
              "code 3: \"polynomial\" must be a number from 0 to 4294967295 or \"0x\" and hexadecimal digits");
    EXPECT_EQ(faultOf(withCode3(R"j("name": "X", "rule": "crc", "width": 16, "polynomial": "0x18005")j")),
              "code 3: the polynomial 0x18005 is wider than 16 bits");
    EXPECT_EQ(faultOf(withCode3(R"j("name": "X", "rule": "crc", "width": 16, "polynomial": 1, "reflect in": 1)j")),
              "code 3: \"reflect in\" must be true or false");
    EXPECT_EQ(faultOf(withCode3(R"j("name": "X", "rule": "sum", "width": 8, "byte order": "middle")j")),
              "code 3: \"byte order\" must be \"low first\" or \"high first\"");
    EXPECT_EQ(faultOf(withCode3(R"j("name": "CRC-16/ARC", "rule": "crc", "width": 16, "polynomial": "0x8005", )j"
                                R"j("reflect in": true, "reflect out": true, "check": "0xBB3E")j")),
              "code 3: its check value 0xBB3E is not what it gives over \"123456789\" (0xBB3D)");
    EXPECT_EQ(faultOf(withCode3(R"j("name": 5, "rule": "sum", "width": 8)j")), "code 3: \"name\" must be a string");
}

}  // namespace
}  // namespace qx::model
