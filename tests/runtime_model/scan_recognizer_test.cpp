// The model's recognition of received bytes: frames held against the
// messages of a Scan set (fixed text, numbers in their forms, streams,
// checksums, the length column), the reasons given when nothing matches,
// captures cut into frames by each terminator, and the renderer's frames
// recognised by a Scan made to match.
#include "runtime_model/scan_recognizer.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "message/protocol_cs_var.h"
#include "message/protocol_message.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "platform/host/host_context.h"
#include "runtime_model/send_renderer.h"
#include "sets/scan_set.h"
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

class ScanRecognizerTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    clsProtocolScanSrv set;
    ChecksumTable checksums = ChecksumTable::Default();

    ScanRecognizerTest() { set.MessageLengthValue(0); }

    clsProtocolMessage& text(const std::wstring& fixed, int32_t number = 1) {
        while (set.NumberOfMessages() < number) set.AppendMessage();
        clsProtocolMessage& m = *set.GetMessage(number);
        m.MessageString(fixed + std::wstring(clsProtocolMessage::MaxPositions - fixed.size(), L' '));
        return m;
    }
    std::shared_ptr<clsProtocolScanNumericVar> number(clsProtocolMessage& m, int32_t position, int32_t address) {
        auto field = std::make_shared<clsProtocolScanNumericVar>();
        field->StartPosition(position);
        test::linkOperand(*field->LikedOperand(), 3, address);
        m.AddVar(field);
        return field;
    }
    // Fixed text written behind a field, from its position on.
    static void after(clsProtocolMessage& m, int32_t position, const std::wstring& fixed) {
        std::wstring row = m.MessageString();
        row.replace(static_cast<size_t>(position), fixed.size(), fixed);
        m.MessageString(row);
    }
    void frame(const Wire& stx, const Wire& etx, int32_t endType = 1) {
        set.ScanSTXLength(static_cast<int32_t>(stx.size()));
        for (size_t i = 0; i < stx.size(); ++i) set.SetScanSTXValue(static_cast<int32_t>(i), stx[i], false);
        set.ScanETXLength(static_cast<int32_t>(etx.size()));
        for (size_t i = 0; i < etx.size(); ++i) set.SetScanETXValue(static_cast<int32_t>(i), etx[i], false);
        set.EndOfScanMessageType(endType);
    }
    Recognition recognize(const Wire& bytes) { return recognizeFrame(set, bytes, checksums); }
};

TEST_F(ScanRecognizerTest, AScaleReplyGivesItsMessageAndWeight) {
    // STX "ST," a sign and five digits, "kg", CR LF.
    clsProtocolMessage& m = text(L"ST,");
    auto weight = number(m, 3, 12);
    after(m, 3 + weight->Length(), L"kg");
    frame({0x02}, {0x0D, 0x0A});
    const Recognition got = recognize(Wire{0x02} + ascii("ST,+00012kg") + Wire{0x0D, 0x0A});
    EXPECT_EQ(got.MessageNumber, 1);
    EXPECT_EQ(got.BytesReceived, 14u);
    ASSERT_EQ(got.Fields.size(), 1u);
    EXPECT_EQ(got.Fields[0].Position, 3);
    EXPECT_EQ(got.Fields[0].OperandType, 3);
    EXPECT_EQ(got.Fields[0].OperandAddress, 12);
    EXPECT_EQ(got.Fields[0].Values, std::vector<int64_t>{12});
    EXPECT_FALSE(got.Fields[0].HasDecimalPlaces);
    // Where the message and the field stand in the frame: "+00012" from byte 4.
    EXPECT_EQ(got.MessageBegin, 1u);
    EXPECT_EQ(got.MessageEnd, 12u);
    EXPECT_EQ(got.Fields[0].Offset, 4u);
    EXPECT_EQ(got.Fields[0].Length, 6u);
    EXPECT_TRUE(got.WhyNot.empty());
    // Leading blanks and a minus.
    EXPECT_EQ(recognize(Wire{0x02} + ascii("ST,-   42kg") + Wire{0x0D, 0x0A}).Fields[0].Values,
              std::vector<int64_t>{-42});
}

TEST_F(ScanRecognizerTest, ADecimalPointGoesToTheDecimalPointOperand) {
    clsProtocolMessage& m = text(L"W");
    auto weight = number(m, 1, 12);
    weight->BeforePoint(6);
    test::linkOperand(*weight->DecimalPointOperand(), 3, 13);
    const Recognition got = recognize(ascii("W+012.34"));
    ASSERT_EQ(got.MessageNumber, 1);
    EXPECT_EQ(got.Fields[0].Values, std::vector<int64_t>{1234});
    EXPECT_TRUE(got.Fields[0].HasDecimalPlaces);
    EXPECT_EQ(got.Fields[0].DecimalPointAddress, 13);
    EXPECT_EQ(got.Fields[0].DecimalPlaces, 2);
}

TEST_F(ScanRecognizerTest, NoMatchSaysForEachMessageWhereAndWhy) {
    text(L"OK");
    text(L"ER", 2);
    EXPECT_EQ(recognize(ascii("ER")).MessageNumber, 2);
    const Recognition got = recognize(ascii("OX"));
    EXPECT_EQ(got.MessageNumber, 0);
    EXPECT_EQ(got.WhyNot, (std::vector<std::wstring>{L"message 1, position 1: \"K\" expected, \"X\" received",
                                                     L"message 2, position 0: \"E\" expected, \"O\" received"}));
    EXPECT_EQ(recognize(ascii("O")).WhyNot[0], L"message 1, position 1: \"K\" expected, the message ended");
    EXPECT_EQ(recognize(ascii("OK!")).WhyNot[0], L"message 1: 1 bytes more than the message holds, from \"!\"");
}

TEST_F(ScanRecognizerTest, MessagesBeginningWithAFieldOrWithTextsOfOtherLengthsAreAllTried) {
    clsProtocolMessage& bare = text(L"");
    auto value = number(bare, 0, 20);
    value->VarFormat(1);
    text(L"OK", 2);
    text(L"ERROR", 3);
    text(L"ER", 4);
    const ScanMatcher matcher(set, checksums);
    EXPECT_EQ(matcher.Recognize(ascii("OK")).MessageNumber, 2);
    EXPECT_EQ(matcher.Recognize(ascii("ER")).MessageNumber, 4);
    EXPECT_EQ(matcher.Recognize(ascii("ERROR")).MessageNumber, 3);
    const Recognition number = matcher.Recognize(ascii("-17"));
    EXPECT_EQ(number.MessageNumber, 1);
    EXPECT_EQ(number.Fields.at(0).Values, std::vector<int64_t>{-17});
    EXPECT_EQ(matcher.AllMatches(ascii("OK")), std::vector<int32_t>{2});
    // Nothing matches: all four say why, in order.
    EXPECT_EQ(matcher.Recognize(ascii("E")).WhyNot.size(), 4u);
}

TEST_F(ScanRecognizerTest, AScanWithoutMessagesSaysSo) {
    const Recognition got = recognize(ascii("A"));
    EXPECT_EQ(got.MessageNumber, 0);
    EXPECT_EQ(got.WhyNot, std::vector<std::wstring>{L"the Scan has no message to match"});
}

TEST_F(ScanRecognizerTest, ANumberOfNoFixedLengthEndsAtTheNextFixedByte) {
    clsProtocolMessage& m = text(L"T");
    auto value = number(m, 1, 20);
    value->VarFormat(1);
    m.AddControlChar(2, 13);
    EXPECT_EQ(recognize(ascii("T-45\r")).Fields.at(0).Values, std::vector<int64_t>{-45});
    EXPECT_EQ(recognize(ascii("T7\r")).Fields.at(0).Values, std::vector<int64_t>{7});
    const Recognition got = recognize(ascii("T\r"));
    EXPECT_EQ(got.MessageNumber, 0);
    EXPECT_EQ(got.WhyNot.at(0), L"message 1, field at position 1: a number expected, nothing received");
    EXPECT_EQ(recognize(ascii("T4x\r")).WhyNot.at(0), L"message 1, position 2: 0D expected, \"x\" received");
}

TEST_F(ScanRecognizerTest, HexadecimalTextAndVectors) {
    clsProtocolMessage& m = text(L"H");
    auto value = number(m, 1, 20);
    value->VarFormat(2);
    value->BeforePoint(4);
    value->VectorLength(2);
    const Recognition got = recognize(ascii("H00FFa0b1"));
    ASSERT_EQ(got.MessageNumber, 1) << (got.WhyNot.empty() ? L"" : got.WhyNot[0]);
    EXPECT_EQ(got.Fields[0].Values, (std::vector<int64_t>{0xFF, 0xA0B1}));
    EXPECT_EQ(recognize(ascii("H00FG0000")).WhyNot.at(0),
              L"message 1, field at position 1: a hexadecimal digit expected, \"G\" received");
}

TEST_F(ScanRecognizerTest, StreamsOfFixedAndOfFreeLength) {
    clsProtocolMessage& m = text(L"S");
    auto stream = number(m, 1, 20);
    stream->StreamForm(1);
    stream->VarFormat(3);
    stream->StreamVectorLength(2);
    stream->CopyBytesFormat(1);
    EXPECT_EQ(recognize(Wire{'S', 0x12, 0x34, 0x05, 0x06}).Fields.at(0).Values, (std::vector<int64_t>{0x1234, 0x0506}));
    EXPECT_EQ(recognize(Wire{'S', 0x12, 0x34}).WhyNot.at(0),
              L"message 1, field at position 1: 4 bytes expected, 2 left");

    // Free length up to CR, least significant byte first, a 0 behind.
    clsProtocolMessage& free = text(L"F", 2);
    auto bytes = number(free, 1, 30);
    bytes->StreamForm(1);
    bytes->VarFormat(4);
    bytes->CopyBytesFormat(5);
    bytes->AddNullToEndOfStream(true);
    free.AddControlChar(1 + bytes->Length(), 13);
    const Recognition got = recognize(Wire{'F', 0x04, 0x03, 0x02, 0x01, 0x0D});
    ASSERT_EQ(got.MessageNumber, 2) << got.WhyNot.at(1);
    EXPECT_EQ(got.Fields[0].Values, (std::vector<int64_t>{0x01020304, 0}));
    EXPECT_EQ(recognize(Wire{'F', 0x01, 0x02, 0x0D}).WhyNot.at(1),
              L"message 2, field at position 1: 2 stream bytes are no whole number of elements of 4");
}

TEST_F(ScanRecognizerTest, TheEndChecksumIsCheckedBeforeAnyMessage) {
    // A Modbus ASCII reply: ":" "0103020007" LRC CR LF.
    text(L"0103020007");
    frame({':'}, {0x0D, 0x0A}, 2);
    auto& checksum = dynamic_cast<clsProtocolCSVar&>(*set.ScanChecksum());
    checksum.CalculationType(10);
    checksum.FormatView(1);
    checksum.CSLength(2);
    // 01 + 03 + 02 + 00 + 07 = 0x0D; its two's complement F3.
    EXPECT_EQ(recognize(ascii(":0103020007F3\r\n")).MessageNumber, 1);
    const Recognition bad = recognize(ascii(":0103020007F4\r\n"));
    EXPECT_EQ(bad.MessageNumber, 0);
    EXPECT_EQ(bad.WhyNot,
              std::vector<std::wstring>{L"the end-of-message checksum \"F\" \"3\" expected, \"F\" \"4\" received"});
    EXPECT_EQ(recognize(ascii(";0103020007F3\r\n")).WhyNot,
              std::vector<std::wstring>{L"the start characters \":\" expected"});
    EXPECT_EQ(recognize(ascii(":0103020007F3\r\r")).WhyNot,
              std::vector<std::wstring>{L"the end characters 0D 0A expected at byte 13"});
}

TEST_F(ScanRecognizerTest, AChecksumFieldIsCheckedWhereItStands) {
    clsProtocolMessage& m = text(L"AB");
    auto checksum = std::make_shared<clsProtocolCSVar>();
    checksum->StartPosition(2);
    checksum->CalculationType(2);
    checksum->FormatView(1);
    checksum->CSLength(2);
    m.AddVar(checksum);
    EXPECT_EQ(recognize(ascii("AB03")).MessageNumber, 1);
    EXPECT_EQ(recognize(ascii("AB04")).WhyNot.at(0),
              L"message 1, field at position 2: checksum \"0\" \"3\" expected, \"0\" \"4\" received");
}

TEST_F(ScanRecognizerTest, TheLengthColumnRefusesAMessageOfAnotherLength) {
    clsProtocolMessage& m = text(L"R");
    auto value = number(m, 1, 20);
    value->VarFormat(1);
    m.MessageLength(4);
    EXPECT_EQ(recognize(ascii("R123")).MessageNumber, 1);
    EXPECT_EQ(recognize(ascii("R12")).WhyNot.at(0), L"message 1: 4 bytes expected, 3 received");
}

TEST_F(ScanRecognizerTest, ACaptureIsCutByItsEndCharactersWithNoiseAndACutFrame) {
    text(L"A");
    frame({0x02}, {0x03});
    // Noise, a frame, a frame cut off by a new start, a frame, half a frame.
    const Wire capture{'x', 'y', 0x02, 'A', 0x03, 0x02, 'A', 0x02, 'A', 0x03, 0x02, 'A'};
    size_t leftOver = 99;
    const std::vector<FrameSpan> frames = splitFrames(set, capture, &leftOver);
    ASSERT_EQ(frames.size(), 2u);
    EXPECT_EQ(frames[0].Offset, 2u);
    EXPECT_EQ(frames[0].Length, 3u);
    EXPECT_EQ(frames[0].SkippedBefore, 2u);
    EXPECT_EQ(frames[1].Offset, 7u);
    EXPECT_EQ(frames[1].Length, 3u);
    EXPECT_EQ(frames[1].SkippedBefore, 2u);
    EXPECT_EQ(leftOver, 2u);
}

TEST_F(ScanRecognizerTest, ACaptureIsCutByTheMessageLengthOrLeftWholeForASilence) {
    text(L"AB");
    frame({0x02}, {});
    set.MessageLengthValue(2);
    size_t leftOver = 0;
    const std::vector<FrameSpan> frames = splitFrames(set, Wire{0x02, 'A', 'B', 0x02, 'C', 'D', 0x02}, &leftOver);
    ASSERT_EQ(frames.size(), 2u);
    EXPECT_EQ(frames[1].Offset, 3u);
    EXPECT_EQ(frames[1].Length, 3u);
    EXPECT_EQ(leftOver, 1u);
    set.MessageLengthValue(0);
    set.SilenceTimeValue(10);
    const std::vector<FrameSpan> whole = splitFrames(set, Wire{0x02, 'A', 'B'});
    ASSERT_EQ(whole.size(), 1u);
    EXPECT_EQ(whole[0].Length, 3u);
}

TEST_F(ScanRecognizerTest, AChecksumBehindTheEndCharactersBelongsToTheFrame) {
    text(L"AB");
    frame({0x02}, {0x03}, 3);
    auto& checksum = dynamic_cast<clsProtocolCSVar&>(*set.ScanChecksum());
    checksum.CalculationType(2);
    checksum.FormatView(2);
    const Wire one{0x02, 'A', 'B', 0x03, 'A' ^ 'B' ^ 0x03};
    const std::vector<FrameSpan> frames = splitFrames(set, one + one);
    ASSERT_EQ(frames.size(), 2u);
    EXPECT_EQ(frames[0].Length, 5u);
    EXPECT_EQ(recognize(one).MessageNumber, 1);
}

TEST_F(ScanRecognizerTest, WhatTheRendererSendsAMatchingScanRecognises) {
    clsProtocolSendSrv send;
    clsProtocolMessage& request = *send.GetMessage(1);
    request.MessageString(L"T" + std::wstring(499, L' '));
    auto tare = std::make_shared<clsProtocolNumericVar>();
    tare->StartPosition(1);
    tare->LeadingZeros(1);
    test::linkOperand(*tare->LikedOperand(), 3, 12);
    request.AddVar(tare);
    request.AddControlChar(1 + tare->Length(), 13);
    send.SendSTXLength(1);
    send.SetSendSTXValue(0, 0x02, false);
    send.SendETXLength(1);
    send.SetSendETXValue(0, 0x03, false);
    OperandValues values;
    values.Set(3, 12, -250);
    const Wire wire = renderSendMessage(send, 1, values, ModelClock{}, checksums).Bytes;

    clsProtocolMessage& expected = text(L"T");
    auto received = number(expected, 1, 40);
    expected.AddControlChar(1 + received->Length(), 13);
    frame({0x02}, {0x03});
    const std::vector<FrameSpan> frames = splitFrames(set, wire);
    ASSERT_EQ(frames.size(), 1u);
    const Recognition got = recognize(wire);
    ASSERT_EQ(got.MessageNumber, 1) << got.WhyNot.at(0);
    EXPECT_EQ(got.Fields[0].Values, std::vector<int64_t>{-250});
    EXPECT_EQ(got.Fields[0].OperandAddress, 40);
}

TEST_F(ScanRecognizerTest, AnyBytesGiveAnAnswerAndNeverReadOutside) {
    clsProtocolMessage& m = text(L"ST,");
    auto weight = number(m, 3, 12);
    weight->VarFormat(1);
    after(m, 4, L"kg");
    frame({0x02}, {0x0D, 0x0A}, 2);
    auto& checksum = dynamic_cast<clsProtocolCSVar&>(*set.ScanChecksum());
    checksum.CalculationType(3);
    checksum.FormatView(2);
    checksum.CSLength(2);
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        Wire bytes(static_cast<size_t>(random() % 24));
        for (uint8_t& byte : bytes)
            byte = static_cast<uint8_t>(random() % 4 == 0 ? "\x02ST,kg\r\n+-09"[random() % 13] : random());
        const Recognition got = recognize(bytes);
        EXPECT_EQ(got.BytesReceived, bytes.size());
        EXPECT_TRUE(got.MessageNumber == 1 || !got.WhyNot.empty());
        size_t leftOver = 0;
        size_t covered = 0;
        for (const FrameSpan& span : splitFrames(set, bytes, &leftOver)) {
            EXPECT_LE(span.Offset + span.Length, bytes.size());
            covered = span.Offset + span.Length;
        }
        EXPECT_LE(covered + leftOver, bytes.size());
    }
}

}  // namespace
}  // namespace qx::model
