// The model's wire bytes of Send messages, each frame written out by hand:
// fixed text and control characters, numbers in decimal and hexadecimal
// text and as streams, binary and list texts, date and time, the frame and
// the end-of-message checksum in its three orders, checksum fields, offsets
// and limits.
#include "runtime_model/send_renderer.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "message/protocol_binary_var.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_date_var.h"
#include "message/protocol_list_text_var.h"
#include "message/protocol_message.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_time_var.h"
#include "platform/host/host_context.h"
#include "sets/send_set.h"
#include "support/test_helpers.h"

namespace qx::model {
namespace {

using Wire = std::vector<uint8_t>;

Wire ascii(const std::string& text) { return {text.begin(), text.end()}; }
Wire operator+(Wire a, const Wire& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

class SendRendererTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    clsProtocolSendSrv set;
    OperandValues values;
    ModelClock clock{2026, 11, 24, 2, 9, 5, 7};
    ChecksumTable checksums = ChecksumTable::Default();

    clsProtocolMessage& message(int32_t number = 1) {
        while (set.NumberOfMessages() < number) set.AppendMessage();
        return *set.GetMessage(number);
    }
    // Fixed text from position 0; the rest of the row blank.
    clsProtocolMessage& text(const std::wstring& fixed, int32_t number = 1) {
        clsProtocolMessage& m = message(number);
        m.MessageString(fixed + std::wstring(clsProtocolMessage::MaxPositions - fixed.size(), L' '));
        return m;
    }
    template <class Field>
    std::shared_ptr<Field> place(clsProtocolMessage& m, int32_t position) {
        auto field = std::make_shared<Field>();
        field->StartPosition(position);
        m.AddVar(field);
        return field;
    }
    std::shared_ptr<clsProtocolNumericVar> number(clsProtocolMessage& m, int32_t position, int32_t address) {
        auto field = place<clsProtocolNumericVar>(m, position);
        test::linkOperand(*field->LikedOperand(), 3, address);
        return field;
    }
    clsProtocolCSVar& endChecksum() { return dynamic_cast<clsProtocolCSVar&>(*set.SendChecksum()); }
    void frame(uint8_t stx, const Wire& etx, int32_t endType = 1) {
        set.SendSTXLength(1);
        set.SetSendSTXValue(0, stx, false);
        set.SendETXLength(static_cast<int32_t>(etx.size()));
        for (size_t i = 0; i < etx.size(); ++i) set.SetSendETXValue(static_cast<int32_t>(i), etx[i], false);
        set.EndOfSendMessageType(endType);
    }
    RenderedMessage render(int32_t number = 1) { return renderSendMessage(set, number, values, clock, checksums); }
    Wire bytes(int32_t number = 1) { return render(number).Bytes; }
};

TEST_F(SendRendererTest, FixedTextAndControlCharactersInTheirFrame) {
    clsProtocolMessage& m = text(L"W");
    m.AddControlChar(1, 13);
    m.AddControlChar(2, 10);
    frame(0x02, {0x03});
    const RenderedMessage out = render();
    EXPECT_EQ(out.Bytes, (Wire{0x02, 'W', 0x0D, 0x0A, 0x03}));
    ASSERT_EQ(out.Origins.size(), 5u);
    EXPECT_EQ(out.Origins[0].What, ByteOrigin::Start);
    EXPECT_EQ(out.Origins[1].What, ByteOrigin::Text);
    EXPECT_EQ(out.Origins[1].Position, 0);
    EXPECT_EQ(out.Origins[2].What, ByteOrigin::ControlChar);
    EXPECT_EQ(out.Origins[3].Position, 2);
    EXPECT_EQ(out.Origins[4].What, ByteOrigin::End);
    EXPECT_TRUE(out.Notes.empty());
}

TEST_F(SendRendererTest, WithoutStartOrEndCharactersTheMessageGoesAlone) {
    text(L"PING");
    EXPECT_EQ(bytes(), ascii("PING"));
}

TEST_F(SendRendererTest, ADecimalNumberWithSignAndWithoutLeadingCharacters) {
    clsProtocolMessage& m = text(L"T");
    // Five digits, "+" or "-", no leading characters; a new field keeps the
    // room of five positions until a setting changes.
    auto field = number(m, 1, 12);
    m.AddControlChar(1 + field->Length(), 13);
    values.Set(3, 12, 1234);
    EXPECT_EQ(bytes(), ascii("T+1234\r"));
    values.Set(3, 12, -7);
    EXPECT_EQ(bytes(), ascii("T-7\r"));
}

TEST_F(SendRendererTest, ADecimalNumberWithLeadingZerosAndImpliedDecimals) {
    clsProtocolMessage& m = message();
    auto field = number(m, 0, 12);
    field->AfterPoint(2);
    field->LeadingZeros(1);
    values.Set(3, 12, -1234);
    EXPECT_EQ(bytes(), ascii("-00012.34"));
    field->PrefixSignFormat(2);  // "-" only
    values.Set(3, 12, 5);
    EXPECT_EQ(bytes(), ascii("00000.05"));
    field->LeadingZeros(2);
    field->PrefixSignFormat(0);
    values.Set(3, 12, -98765);
    EXPECT_EQ(bytes(), ascii("  987.65"));
}

TEST_F(SendRendererTest, ATooWideNumberKeepsItsLowestDigitsAndSaysSo) {
    clsProtocolMessage& m = message();
    auto field = number(m, 0, 12);
    field->BeforePoint(3);
    field->PrefixSignFormat(0);
    values.Set(3, 12, 123456);
    const RenderedMessage out = render();
    EXPECT_EQ(out.Bytes, ascii("456"));
    ASSERT_EQ(out.Notes.size(), 1u);
    EXPECT_EQ(out.Notes[0], L"position 0: 6 digits cut to 3");
}

TEST_F(SendRendererTest, AVectorSendsConsecutiveOperandsInTheSameFormat) {
    clsProtocolMessage& m = message();
    auto field = number(m, 0, 40);
    field->BeforePoint(2);
    field->PrefixSignFormat(0);
    field->LeadingZeros(1);
    field->VectorLength(3);
    values.Set(3, 40, 1);
    values.Set(3, 41, 22);
    values.Set(3, 42, 3);
    EXPECT_EQ(bytes(), ascii("012203"));
}

TEST_F(SendRendererTest, HexadecimalTextHasItsDigitsAndNegativesAsTwosComplement) {
    clsProtocolMessage& m = message();
    auto field = number(m, 0, 12);
    field->VarFormat(1);
    field->BeforePoint(4);
    field->LeadingZeros(1);
    values.Set(3, 12, 255);
    EXPECT_EQ(bytes(), ascii("00FF"));
    values.Set(3, 12, -1);
    EXPECT_EQ(bytes(), ascii("FFFF"));
    field->LeadingZeros(0);
    values.Set(3, 12, 0xAB);
    EXPECT_EQ(bytes(), ascii("AB"));
}

TEST_F(SendRendererTest, StreamsSendTheirBytesInTheOrderOfTheirForm) {
    clsProtocolMessage& m = message();
    auto field = number(m, 0, 20);
    field->StreamForm(1);
    field->StreamVectorLength(2);
    field->CopyBytesFormat(1);  // two bytes an element
    values.Set(3, 20, 0x1234);
    values.Set(3, 21, 0x0506);
    EXPECT_EQ(bytes(), (Wire{0x12, 0x34, 0x05, 0x06}));
    field->StreamVectorLength(1);
    field->CopyBytesFormat(5);  // four bytes, the least significant first
    values.Set(3, 20, 0x01020304);
    EXPECT_EQ(bytes(), (Wire{0x04, 0x03, 0x02, 0x01}));
    field->CopyBytesFormat(2);  // four bytes, the most significant first
    EXPECT_EQ(bytes(), (Wire{0x01, 0x02, 0x03, 0x04}));
    field->CopyBytesFormat(3);  // three bytes
    EXPECT_EQ(bytes(), (Wire{0x02, 0x03, 0x04}));
    field->CopyBytesFormat(0);  // one byte
    EXPECT_EQ(bytes(), (Wire{0x04}));
}

TEST_F(SendRendererTest, AnIndirectStreamCountComesFromItsOperand) {
    clsProtocolMessage& m = message();
    auto field = number(m, 0, 20);
    field->StreamForm(1);
    field->StreamLengthAddress(30);
    values.Set(3, 30, 3);
    for (int32_t i = 0; i < 3; ++i) values.Set(3, 20 + i, 0x41 + i);
    EXPECT_EQ(bytes(), ascii("ABC"));
    values.Set(3, 30, 0);
    EXPECT_EQ(bytes(), Wire{});
}

TEST_F(SendRendererTest, ABinaryTextFollowsItsBit) {
    clsProtocolMessage& m = message();
    auto field = place<clsProtocolBinaryVar>(m, 0);
    field->TextFor0(L"OFF");
    field->TextFor1(L"ON");
    test::linkOperand(*field->LikedOperand(), 1, 5);
    EXPECT_EQ(bytes(), ascii("OFF"));
    values.Set(1, 5, 1);
    EXPECT_EQ(bytes(), ascii("ON"));
}

TEST_F(SendRendererTest, AListTextIsChosenByItsIndexAndFittedToAFixedSize) {
    clsProtocolMessage& m = message();
    auto field = place<clsProtocolistTextVar>(m, 0);
    field->Texts({L"A", L"BB", L"CCCCCC"});
    test::linkOperand(*field->LikedOperand(), 3, 7);
    values.Set(3, 7, 1);
    EXPECT_EQ(bytes(), ascii("BB"));
    field->AlignmentStringSize(4);
    EXPECT_EQ(bytes(), ascii("BB  "));
    values.Set(3, 7, 2);
    EXPECT_EQ(bytes(), ascii("CCCC"));
    values.Set(3, 7, 9);
    const RenderedMessage out = render();
    EXPECT_EQ(out.Bytes, ascii("    "));
    ASSERT_EQ(out.Notes.size(), 1u);
    EXPECT_EQ(out.Notes[0], L"position 0: the list has no text 9; nothing is sent for it");
}

TEST_F(SendRendererTest, DateAndTimeComeFromTheClockInTheirFormats) {
    clsProtocolMessage& m = message();
    auto date = place<clsProtocolDateVar>(m, 0);
    auto time = place<clsProtocolTimeVar>(m, 8);
    time->TimeFormatType(1);
    EXPECT_EQ(bytes(), ascii("24/11/2609:05:07"));
    const std::vector<std::pair<int32_t, std::string>> dates{{2, "TUE"},   {3, "TUESDAY  "}, {4, "24/11"},
                                                             {5, "11/24"}, {6, "24/11/26"},  {7, "11/24/26"}};
    time->TimeFormatType(0);
    for (const auto& [format, expected] : dates) {
        date->DateFormatType(format);
        time->StartPosition(date->Length());
        EXPECT_EQ(bytes(), ascii(expected + "09:05")) << format;
    }
}

TEST_F(SendRendererTest, AModbusAsciiRequestEndsWithItsLrcAndCrLf) {
    // ":010300000002FA" CR LF: start ":", the LRC as two hexadecimal
    // characters, then the end characters.
    text(L"010300000002");
    frame(':', {0x0D, 0x0A}, 2);
    clsProtocolCSVar& checksum = endChecksum();
    checksum.CalculationType(10);
    checksum.FormatView(1);
    checksum.CSLength(2);
    const RenderedMessage out = render();
    EXPECT_EQ(out.Bytes, ascii(":010300000002FA\r\n"));
    EXPECT_EQ(out.Origins[13].What, ByteOrigin::EndChecksum);
    EXPECT_EQ(out.Origins[15].What, ByteOrigin::End);
}

TEST_F(SendRendererTest, TheEndChecksumAfterTheEndCharactersCoversThem) {
    // "ETX & Checksum": the exclusive or of everything behind the start
    // character, the end character included, as one binary byte.
    text(L"AB");
    frame(0x02, {0x03}, 3);
    clsProtocolCSVar& checksum = endChecksum();
    checksum.CalculationType(2);
    checksum.FormatView(2);
    EXPECT_EQ(bytes(), (Wire{0x02, 'A', 'B', 0x03, 'A' ^ 'B' ^ 0x03}));
    checksum.STXInCS(true);
    EXPECT_EQ(bytes(), (Wire{0x02, 'A', 'B', 0x03, 0x02 ^ 'A' ^ 'B' ^ 0x03}));
}

TEST_F(SendRendererTest, ACrc16InBinaryHasTheMostSignificantByteFirst) {
    text(L"123456789");
    frame(0x02, {0x03}, 2);
    clsProtocolCSVar& checksum = endChecksum();
    checksum.CalculationType(3);  // CRC-16/ARC, check BB3D
    checksum.ModulusType(2);
    checksum.FormatView(2);
    checksum.CSLength(2);
    EXPECT_EQ(bytes(), (Wire{0x02} + ascii("123456789") + Wire{0xBB, 0x3D, 0x03}));
    checksum.FormatView(0);  // decimal text of five digits: 47933
    checksum.CSLength(5);
    EXPECT_EQ(bytes(), (Wire{0x02} + ascii("123456789") + ascii("47933") + Wire{0x03}));
}

TEST_F(SendRendererTest, OffsetsLeaveBytesOutAtBothEndsAndLimitsAddTheirValue) {
    text(L"123456789");
    frame(0x02, {0x03}, 2);
    clsProtocolCSVar& checksum = endChecksum();
    checksum.CalculationType(1);  // SUM-8
    checksum.FormatView(2);
    checksum.OffsetFromForward(1);
    checksum.OffsetTillBackwards(1);
    // '2' to '8': 0x32 + ... + 0x38 = 7 * 0x35 = 0x173.
    EXPECT_EQ(bytes(), (Wire{0x02} + ascii("123456789") + Wire{0x73, 0x03}));
    checksum.SpecialAddition(true);
    checksum.SA_FromValue(0x70);
    checksum.SA_ToValue(0x7F);
    checksum.SA_AddedValue(0x10);
    EXPECT_EQ(bytes(), (Wire{0x02} + ascii("123456789") + Wire{0x83, 0x03}));
    checksum.SA_FromValue(0x00);
    checksum.SA_ToValue(0x1F);
    EXPECT_EQ(bytes(), (Wire{0x02} + ascii("123456789") + Wire{0x73, 0x03}));
}

TEST_F(SendRendererTest, AChecksumFieldCoversTheMessageBeforeIt) {
    clsProtocolMessage& m = text(L"AB");
    auto checksum = place<clsProtocolCSVar>(m, 2);
    checksum->CalculationType(2);
    checksum->FormatView(1);
    checksum->CSLength(2);
    m.AddControlChar(4, 13);
    frame(0x02, {0x03});
    EXPECT_EQ(bytes(), (Wire{0x02, 'A', 'B', '0', '3', 0x0D, 0x03}));
}

TEST_F(SendRendererTest, AModbusRtuRequestWithItsCrcLowByteFirst) {
    // Slave 1 reads ten holding registers from 0: 01 03 00 00 00 0A C5 CD.
    // The project reads "CRC-16" as CRC-16/MODBUS, low byte first.
    checksums.Definition(
        3, {"CRC-16/MODBUS", ChecksumRule::Crc, 16, 0x8005, 0xFFFF, true, true, 0, 0x4B37, /*LowByteFirst=*/true});
    clsProtocolMessage& m = message();
    const Wire request{0x01, 0x03, 0x00, 0x00, 0x00, 0x0A};
    for (size_t i = 0; i < request.size(); ++i) m.AddControlChar(static_cast<int32_t>(i), request[i]);
    auto crc = place<clsProtocolCSVar>(m, 6);
    crc->CalculationType(3);
    crc->ModulusType(2);
    crc->FormatView(2);
    crc->CSLength(2);
    EXPECT_EQ(bytes(), (Wire{0x01, 0x03, 0x00, 0x00, 0x00, 0x0A, 0xC5, 0xCD}));
}

TEST_F(SendRendererTest, AnNmeaSentenceCarriesItsXorAsTwoHexDigits) {
    // "$GPGLL,5300.97914,N,00259.98174,E,125926,A*28" CR LF: the exclusive
    // or of everything between "$" and "*".
    const std::wstring body = L"GPGLL,5300.97914,N,00259.98174,E,125926,A*";
    clsProtocolMessage& m = text(body);
    auto checksum = place<clsProtocolCSVar>(m, static_cast<int32_t>(body.size()));
    checksum->CalculationType(2);
    checksum->FormatView(1);
    checksum->CSLength(2);
    checksum->OffsetTillBackwards(1);
    m.AddControlChar(static_cast<int32_t>(body.size()) + 2, 13);
    m.AddControlChar(static_cast<int32_t>(body.size()) + 3, 10);
    set.SendSTXLength(1);
    set.SetSendSTXValue(0, '$', true);
    EXPECT_EQ(bytes(), ascii("$GPGLL,5300.97914,N,00259.98174,E,125926,A*28\r\n"));
}

TEST_F(SendRendererTest, AMessageNumberOutOfRangeRaises9) {
    text(L"A");
    EXPECT_EQ(test::raisedError([&] { render(0); }).Number(), 9);
    EXPECT_EQ(test::raisedError([&] { render(2); }).Number(), 9);
}

}  // namespace
}  // namespace qx::model
