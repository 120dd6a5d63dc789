// Text forms written by hand against images built by hand from the
// documented layout, the exact text of a small set, the escapes, and the
// errors of the import with their line and column.
#include "inspect/text_form.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

#include "message/protocol_message.h"
#include "message/protocol_numeric_var.h"
#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_context.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"
#include "inspect/text_escapes.h"

namespace qx {
namespace {

const std::string kNoFrame =
    R"j({"length": 0, "characters": [{"char": "<NUL>", "typed": false}, {"char": "<NUL>", "typed": false}, )j"
    R"j({"char": "<NUL>", "typed": false}, {"char": "<NUL>", "typed": false}]})j";
const std::string kDefaultChecksum =
    R"j({"formatView": "Decimal ASCII", "csLength": 1, "calculationType": "SUM-8", "modulusType": "256 (100H)", )j"
    R"j("offsetFromForward": 0, "offsetTillBackwards": 0, "stxInChecksum": false})j";

std::string sendText(const std::string& messages) {
    return R"j({"format": "qxfbcom2-message-set", "version": 1, "kind": "send", "imageVersion": 0, "start": )j" +
           kNoFrame + R"j(, "end": )j" + kNoFrame + R"j(, "endOfMessage": "ETX", "checksum": )j" + kDefaultChecksum +
           R"j(, "messageNumber": {"type": "#I", "constant": 0}, "copyAfterEtx": {"bytes": 0}, "messages": )j" +
           messages + "}";
}

std::string scanText(const std::string& messages) {
    return R"j({"format": "qxfbcom2-message-set", "version": 1, "kind": "scan", "imageVersion": 0, "start": )j" +
           kNoFrame + R"j(, "end": )j" + kNoFrame + R"j(, "endOfMessage": "ETX", "checksum": )j" + kDefaultChecksum +
           R"j(, "messageLength": 1, "silenceTime": 0, "messages": )j" + messages + "}";
}

// The header of a Send image of one message, no frame, the default
// end-of-message checksum, no copy: the message number is the constant 0
// (type 37), whose place in the host's constant table (offsets 6 and 7) each
// writer gives anew and the test leaves out.
Bytes sendHeaderOfOneMessage(size_t size) {
    Bytes image(size, 0);
    image[0] = 37;
    image[38] = 1;
    image[40] = 1;  // checksum "Decimal ASCII", record code 1
    image[42] = 1;  // CSLength
    image[48] = 1;  // "SUM-8"
    image[49] = 1;  // "256 (100H)"
    image[56] = 1;  // one message
    image[58] = 60;
    return image;
}

Bytes withoutConstantPlace(Bytes image) {
    image.at(6) = image.at(7) = 0;
    return image;
}

std::string importError(const std::string& text, bool scan = false) {
    try {
        if (scan)
            textform::importScanSet(text);
        else
            textform::importSendSet(text);
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.Number(), err::InvalidFileFormat);
        return toUtf8(e.Description());
    }
    return "accepted";
}

TEST(TextForm, ASendMessageOfTextAndAControlCharacterGivesTheDocumentedImage) {
    ScopedHostContext host;
    auto set = textform::importSendSet(sendText(R"j([{"number": 1, "segments": ["AB<CR>"]}])j"));
    Bytes expected = sendHeaderOfOneMessage(90);
    expected[60] = 1;  // one segment
    expected[64] = 0;  // fixed text
    expected[66] = 82;
    const uint8_t block[] = {0, 0, 3, 0, 65, 66, 13};
    std::copy(std::begin(block), std::end(block), expected.begin() + 82);
    EXPECT_EQ(withoutConstantPlace(set->BinaryData()), expected);
}

TEST(TextForm, ASendMessageWithANumericFieldGivesTheDocumentedImage) {
    ScopedHostContext host;
    auto set = textform::importSendSet(sendText(
        R"j([{"number": 1, "segments": ["T", {"field": "numeric", "operand": {"type": "MI", "address": 300}, )j"
        R"j("form": "ASCII", "leadingZeros": "Leading Zeros", "varFormat": "Decimal ASCII", "beforePoint": 5, )j"
        R"j("afterPoint": 0, "prefixSignFormat": "Positive & Negative (+,-)", "vectorLength": 1}, "<CR><LF>"]}])j"));
    EXPECT_EQ(set->GetMessage(1)->GetVar(1)->StartPosition(), 1);
    EXPECT_EQ(set->GetMessage(1)->GetVar(1)->Length(), 6);
    Bytes expected = sendHeaderOfOneMessage(132);
    expected[60] = 3;
    // Text "T" at 118.
    expected[64] = 0;
    expected[66] = 118;
    const uint8_t first[] = {0, 0, 1, 0, 'T'};
    std::copy(std::begin(first), std::end(first), expected.begin() + 118);
    // The numeric record stands in the entry from its byte 1: leading zeros,
    // sign code 3, vector 1, 5 digits, no decimals, type MI (3), address 300.
    expected[82] = 5;
    const uint8_t record[] = {1, 3, 1, 5, 0, 0, 0, 3, 0, 300 & 0xFF, 300 >> 8};
    std::copy(std::begin(record), std::end(record), expected.begin() + 83);
    // CR LF from the next even offset, 124.
    expected[100] = 0;
    expected[102] = 124;
    const uint8_t second[] = {0, 0, 2, 0, 13, 10};
    std::copy(std::begin(second), std::end(second), expected.begin() + 124);
    EXPECT_EQ(withoutConstantPlace(set->BinaryData()), expected);
}

TEST(TextForm, AScanMessageGivesTheDocumentedImage) {
    ScopedHostContext host;
    auto set = textform::importScanSet(scanText(R"j([{"number": 1, "length": 0, "segments": ["AB<CR>"]}])j"));
    Bytes expected(74, 0);
    expected[0] = 1;   // "ETX"
    expected[14] = 1;  // message length terminator
    expected[18] = 1;
    expected[20] = 1;  // checksum: decimal, CSLength 1, SUM-8, 256
    expected[22] = 1;
    expected[28] = 1;
    expected[29] = 1;
    expected[34] = 1;
    expected[36] = 38;
    const uint8_t message[] = {1, 1, 0, 0, /* entry */ 0, 0, 0, 0, 66};
    std::copy(std::begin(message), std::end(message), expected.begin() + 38);
    const uint8_t block[] = {0, 0, 3, 0, 65, 66, 13};
    std::copy(std::begin(block), std::end(block), expected.begin() + 66);
    EXPECT_EQ(set->BinaryData(), expected);
}

TEST(TextForm, AScanNumericFieldStandsWithItsPositionAndRecord) {
    ScopedHostContext host;
    auto set = textform::importScanSet(scanText(
        R"j([{"number": 1, "length": 12, "segments": ["V=", {"field": "numeric", "operand": {"type": "ML", )j"
        R"j("address": 20}, "form": "ASCII", "varFormat": "Hex as Ascii", "beforePoint": 4, "vectorLength": 2, )j"
        R"j("decimalPointOperand": {"type": "MI", "address": 7}}]}])j"));
    const Bytes image = set->BinaryData();
    ASSERT_EQ(image.size(), 36u + 2 + 4 + 48 + 6);
    const uint8_t message[] = {2, 1, 12, 0};
    EXPECT_TRUE(std::equal(std::begin(message), std::end(message), image.begin() + 38));
    // Entry 2 at 66: position 2, type 1, record: hex code 4, vector 2,
    // 4 digits, ML (5) at 20, decimal point MI (3) at 7.
    const uint8_t entry[] = {2, 0, 1, 0, 4, 2, 4, 0, 5, 0, 20, 0, 0, 0, 0, 0, 3, 0, 7, 0, 0, 0, 0, 0};
    EXPECT_TRUE(std::equal(std::begin(entry), std::end(entry), image.begin() + 66));
}

// The exact text of a small set, as a person would read it in a diff.
TEST(TextForm, ASmallSendSetHasThisText) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    auto message = set.GetMessage(1);
    message->InsertChar(0, L"A");
    message->InsertChar(1, L"<");
    message->InsertChar(2, L" ");
    message->InsertChar(3, L"B");
    message->AddControlChar(4, 13);
    set.SetSendSTXValue(0, 2, false);
    set.SendSTXLength(1);
    set.BinaryData();
    const std::string text = textform::exportSendSet(set);
    EXPECT_EQ(text, R"j({
  "format": "qxfbcom2-message-set",
  "version": 1,
  "kind": "send",
  "imageVersion": 0,
  "start": {
    "length": 1,
    "characters": [
      {"char": "<STX>", "typed": false},
      {"char": "<NUL>", "typed": false},
      {"char": "<NUL>", "typed": false},
      {"char": "<NUL>", "typed": false}
    ]
  },
  "end": {
    "length": 0,
    "characters": [
      {"char": "<NUL>", "typed": false},
      {"char": "<NUL>", "typed": false},
      {"char": "<NUL>", "typed": false},
      {"char": "<NUL>", "typed": false}
    ]
  },
  "endOfMessage": "ETX",
  "checksum": {
    "formatView": "Decimal ASCII",
    "csLength": 1,
    "calculationType": "SUM-8",
    "modulusType": "256 (100H)",
    "offsetFromForward": 0,
    "offsetTillBackwards": 0,
    "stxInChecksum": false
  },
  "messageNumber": {"type": "#I", "constant": 0},
  "copyAfterEtx": {"bytes": 0},
  "messages": [{"number": 1, "segments": ["A<LT> B<CR>"]}]
}
)j");
}

TEST(TextForm, BlanksInsideTextAndBetweenFieldsSurvive) {
    ScopedHostContext host;
    const std::string text =
        sendText(R"j([{"number": 1, "segments": ["  A  B  ", {"field": "date", "dateFormatType": "DD/MM/YY"}, "   ", )j"
                 R"j({"field": "time", "timeFormatType": "HH:MM:SS"}, " <CR>"]}])j");
    auto set = textform::importSendSet(text);
    const std::wstring row = set->GetMessage(1)->MessageString();
    EXPECT_EQ(row.substr(0, 8), L"  A  B  ");
    EXPECT_EQ(set->GetMessage(1)->GetVar(2)->StartPosition(), 8 + 8 + 3);
    const Bytes image = set->BinaryData();
    clsProtocolSendSrv loaded;
    loaded.BinaryData(image);
    const std::string again = textform::exportSendSet(loaded);
    EXPECT_NE(again.find(R"j("  A  B  ")j"), std::string::npos) << again;
    EXPECT_NE(again.find(R"j("   ")j"), std::string::npos) << again;
    EXPECT_NE(again.find(R"j(" <CR>")j"), std::string::npos) << again;
}

TEST(TextForm, EscapesNameControlCodesTheLessThanSignAndBytesWithoutACharacter) {
    EXPECT_EQ(textform::escapeBytes({0, 2, 13, 10, 31}), "<NUL><STX><CR><LF><US>");
    EXPECT_EQ(textform::escapeBytes({'<', 'a', '>'}), "<LT>a>");
    EXPECT_EQ(textform::escapeBytes({0x7F, 0x81, 0xA0, 0xE9, 0x80}), "<0x7F><0x81><0xA0>\xC3\xA9\xE2\x82\xAC");
    for (int value = 0; value < 256; ++value) {
        std::vector<uint8_t> back;
        std::string error;
        size_t offset = 0;
        ASSERT_TRUE(textform::unescapeBytes(textform::escapeBytes({static_cast<uint8_t>(value)}), back, error, offset))
            << value << ": " << error;
        EXPECT_EQ(back, std::vector<uint8_t>{static_cast<uint8_t>(value)});
    }
}

TEST(TextForm, AHexEscapeOfAPrintableByteIsThatCharacter) {
    ScopedHostContext host;
    auto set = textform::importSendSet(sendText(R"j([{"number": 1, "segments": ["<0x41><0x0D>"]}])j"));
    EXPECT_EQ(set->GetMessage(1)->MessageString().substr(0, 1), L"A");
    EXPECT_EQ(set->GetMessage(1)->ControlChars()[1], 13);
}

TEST(TextForm, ErrorsTellLineColumnAndRule) {
    ScopedHostContext host;
    EXPECT_EQ(importError("{\n  \"format\": 5,\n"),
              "line 3, column 1: not JSON: syntax error while parsing object key - unexpected end of input; expected "
              "string literal");
    const std::string wrongKind = sendText("[]");
    EXPECT_EQ(importError(wrongKind, true), "line 1, column 58: \"kind\" must be \"scan\" here, not \"send\"");
    std::string badEscape = sendText("[{\"number\": 1,\n \"segments\": [\"A<XY>\"]}]");
    EXPECT_EQ(importError(badEscape),
              "line 2, column 15: entry 0 of \"segments\": unknown escape \"<XY>\": escapes are the control names "
              "<NUL> to <US>, <LT> and <0xHH>");
    std::string unknownMember = sendText(R"j([{"number": 1, "segments": [], "colour": 3}])j");
    EXPECT_NE(importError(unknownMember).find("\"colour\" is no member of a Send message"), std::string::npos);
    std::string badNumber = sendText(R"j([{"number": 2, "segments": []}])j");
    EXPECT_NE(importError(badNumber).find("messages are numbered 1, 2, 3 in order"), std::string::npos);
    std::string tooLong = sendText(R"j([{"number": 1, "segments": [")j" + std::string(501, 'x') + R"j("]}])j");
    EXPECT_NE(importError(tooLong).find("passes its 500 positions"), std::string::npos);
    std::string scanField =
        scanText(R"j([{"number": 1, "length": 0, "segments": [{"field": "date", "dateFormatType": 6}]}])j");
    EXPECT_NE(importError(scanField, true).find("a Scan field is \"numeric\" or \"checksum\""), std::string::npos);
    std::string badType = sendText(
        R"j([{"number": 1, "segments": [{"field": "binary", "operand": {"type": "QQ", "address": 1}, "textFor0": "a", )j"
        R"j("textFor1": "b"}]}])j");
    EXPECT_NE(importError(badType).find("must name an operand type"), std::string::npos);
}

TEST(TextForm, TheImageVersionMustBeTheOneTheHostWrites) {
    ScopedHostContext host;
    host->ExtendedOperands = true;
    const std::string error = importError(sendText("[]"));
    EXPECT_NE(error.find("the text is for an image of version 0, and this host writes version 1"), std::string::npos)
        << error;
}

// An unsigned constant goes into bytes 2 to 5 as its 32 bits.
TEST(TextForm, AnUnsignedConstantMessageNumberKeepsItsValue) {
    ScopedHostContext host;
    std::string text = sendText(R"j([{"number": 1, "segments": ["A"]}, {"number": 2, "segments": ["B"]}])j");
    text.replace(text.find(R"j({"type": "#I", "constant": 0})j"), 29, R"j({"type": "#L", "constant": 4000000000})j");
    auto set = textform::importSendSet(text);
    const Bytes image = set->BinaryData();
    EXPECT_EQ(image[0], 38);
    const uint32_t value = image[2] | (image[3] << 8) | (image[4] << 16) | (static_cast<uint32_t>(image[5]) << 24);
    EXPECT_EQ(value, 4000000000u);
    EXPECT_NE(textform::exportSendSet(*set).find(R"j("messageNumber": {"type": "#L", "constant": 4000000000})j"),
              std::string::npos);
}

// A gap before the last message is a set the Send dialog refuses; its text
// imports, and its image fails as the set's own would.
TEST(TextForm, AnEmptyMessageBeforeTheLastOneImportsAndHasNoImage) {
    ScopedHostContext host;
    auto set =
        textform::importSendSet(sendText(R"j([{"number": 1, "segments": []}, {"number": 2, "segments": ["B"]}])j"));
    EXPECT_EQ(set->GetEmptyMessageNumber(), 1);
    EXPECT_THROW(set->BinaryData(), RuntimeError);
    EXPECT_NE(textform::exportSendSet(*set).find(R"j({"number": 1, "segments": []})j"), std::string::npos);
}

TEST(TextForm, PeekTellsTheKindAndImageVersion) {
    auto header = textform::peekHeader(R"j({"kind": "scan", "imageVersion": 1})j");
    ASSERT_TRUE(header);
    EXPECT_EQ(header->Kind, "scan");
    EXPECT_EQ(header->ImageVersion, 1);
    EXPECT_FALSE(textform::peekHeader("not json"));
}

}  // namespace
}  // namespace qx
