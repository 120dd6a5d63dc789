// A Send and a Scan held against each other: a pair made to match is clean,
// and an ambiguous pair, an end character inside a stream or a binary text,
// a Send message nobody takes and too short a silence each give their
// warning.
#include "runtime_model/loopback.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "message/protocol_binary_var.h"
#include "message/protocol_message.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "platform/host/host_context.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"
#include "support/test_helpers.h"

namespace qx::model {
namespace {

std::wstring row(const std::wstring& fixed) {
    return fixed + std::wstring(clsProtocolMessage::MaxPositions - fixed.size(), L' ');
}

class LoopbackTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    clsProtocolSendSrv send;
    clsProtocolScanSrv scan;
    OperandValues values;
    ChecksumTable checksums = ChecksumTable::Default();

    LoopbackTest() {
        scan.MessageLengthValue(0);
        for (auto* frame : {&send}) {
            frame->SendSTXLength(1);
            frame->SetSendSTXValue(0, 0x02, false);
            frame->SendETXLength(1);
            frame->SetSendETXValue(0, 0x03, false);
        }
        scan.ScanSTXLength(1);
        scan.SetScanSTXValue(0, 0x02, false);
        scan.ScanETXLength(1);
        scan.SetScanETXValue(0, 0x03, false);
    }
    clsProtocolMessage& sendText(const std::wstring& text, int32_t number) {
        while (send.NumberOfMessages() < number) send.AppendMessage();
        send.GetMessage(number)->MessageString(row(text));
        return *send.GetMessage(number);
    }
    clsProtocolMessage& scanText(const std::wstring& text, int32_t number) {
        while (scan.NumberOfMessages() < number) scan.AppendMessage();
        scan.GetMessage(number)->MessageString(row(text));
        return *scan.GetMessage(number);
    }
    LoopbackReport run(int32_t baud = 9600) { return loopback(send, scan, baud, values, ModelClock{}, checksums); }
};

TEST_F(LoopbackTest, APairMadeToMatchIsClean) {
    sendText(L"W", 1);
    clsProtocolMessage& tare = sendText(L"T", 2);
    auto number = std::make_shared<clsProtocolNumericVar>();
    number->StartPosition(1);
    test::linkOperand(*number->LikedOperand(), 3, 12);
    tare.AddVar(number);
    scanText(L"W", 1);
    clsProtocolMessage& received = scanText(L"T", 2);
    auto field = std::make_shared<clsProtocolScanNumericVar>();
    field->StartPosition(1);
    field->VarFormat(1);
    test::linkOperand(*field->LikedOperand(), 3, 40);
    received.AddVar(field);
    values.Set(3, 12, 77);
    const LoopbackReport report = run();
    ASSERT_EQ(report.Lines.size(), 2u);
    EXPECT_EQ(report.Lines[0].Bytes, (std::vector<uint8_t>{0x02, 'W', 0x03}));
    EXPECT_EQ(report.Lines[0].ScanMessages, std::vector<int32_t>{1});
    EXPECT_EQ(report.Lines[1].ScanMessages, std::vector<int32_t>{2});
    EXPECT_TRUE(report.Warnings.empty());
    EXPECT_TRUE(report.Clean());
}

TEST_F(LoopbackTest, AFrameTwoScanMessagesTakeIsAmbiguous) {
    sendText(L"A1", 1);
    scanText(L"A1", 1);
    clsProtocolMessage& any = scanText(L"A", 2);
    auto field = std::make_shared<clsProtocolScanNumericVar>();
    field->StartPosition(1);
    field->VarFormat(1);
    any.AddVar(field);
    const LoopbackReport report = run();
    ASSERT_EQ(report.Lines.size(), 1u);
    EXPECT_EQ(report.Lines[0].ScanMessages, (std::vector<int32_t>{1, 2}));
    EXPECT_EQ(report.Warnings,
              std::vector<std::wstring>{
                  L"Send message 1 is taken by more than one Scan message: 1, 2; the first of them wins"});
    EXPECT_FALSE(report.Clean());
}

TEST_F(LoopbackTest, AnEndCharacterInsideAStreamOrABinaryTextIsWarnedAbout) {
    clsProtocolMessage& stream = sendText(L"S", 1);
    auto bytes = std::make_shared<clsProtocolNumericVar>();
    bytes->StartPosition(1);
    bytes->StreamForm(1);
    stream.AddVar(bytes);
    clsProtocolMessage& flag = sendText(L"F", 2);
    auto binary = std::make_shared<clsProtocolBinaryVar>();
    binary->StartPosition(1);
    binary->TextFor0(L"off");
    binary->TextFor1(std::wstring(L"on") + wchar_t(0x03));
    flag.AddVar(binary);
    clsProtocolMessage& received = scanText(L"S", 1);
    auto field = std::make_shared<clsProtocolScanNumericVar>();
    field->StartPosition(1);
    field->StreamForm(1);
    field->VarFormat(3);
    received.AddVar(field);
    scanText(L"Foff", 2);
    const LoopbackReport report = run();
    EXPECT_EQ(report.Lines.at(0).ScanMessages, std::vector<int32_t>{1});
    EXPECT_EQ(report.Lines.at(1).ScanMessages, std::vector<int32_t>{2});
    EXPECT_EQ(report.Warnings,
              (std::vector<std::wstring>{
                  L"Send message 1, field at position 1: a stream can carry the end character 03, which ends the "
                  L"frame early",
                  L"Send message 2, field at position 1: the text \"on\x03\" holds the end character 03",
                  L"Scan message 1, field at position 1: a stream can receive the end character 03, which ends the "
                  L"frame early"}));
}

TEST_F(LoopbackTest, ASendMessageNoScanMessageTakesSaysWhyNot) {
    sendText(L"PING", 1);
    scanText(L"PONG", 1);
    const LoopbackReport report = run();
    ASSERT_EQ(report.Lines.size(), 1u);
    EXPECT_TRUE(report.Lines[0].ScanMessages.empty());
    EXPECT_EQ(report.Lines[0].WhyNot,
              std::vector<std::wstring>{L"message 1, position 1: \"O\" expected, \"I\" received"});
    EXPECT_EQ(report.Warnings, std::vector<std::wstring>{L"Send message 1 is taken by no Scan message"});
}

TEST_F(LoopbackTest, ASilenceShorterThanOneAndAHalfCharactersIsWarnedAbout) {
    sendText(L"A", 1);
    scanText(L"A", 1);
    scan.ScanSTXLength(0);
    scan.ScanETXLength(0);
    send.SendSTXLength(0);
    send.SendETXLength(0);
    scan.SilenceTimeValue(10);
    EXPECT_TRUE(run(9600).Clean());
    // At 1200 baud 1.5 characters of 11 bits take 13.75 ms.
    EXPECT_EQ(run(1200).Warnings,
              std::vector<std::wstring>{L"a silence of 10 ms is shorter than 1.5 characters at 1200 baud (13.75 ms): a "
                                        L"pause inside a frame can end it"});
}

}  // namespace
}  // namespace qx::model
