// The Scan image, byte for byte: the header with its terminators, the
// message summaries, the segment table with positions and 20-byte records,
// and what a load makes of them again.
#include "sets/scan_image.h"

#include <gtest/gtest.h>

#include "message/protocol_cs_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "platform/basics/ansi.h"
#include "platform/host/host_context.h"
#include "sets/scan_set.h"
#include "sets/set_test_support.h"
#include "support/image_forger.h"
#include "support/image_parts.h"

namespace qx {
namespace {

using test::concat;
using test::putText;
using test::zeros;

// A header of a new serial Scan set (message length 1) with N messages.
Bytes scanHeader(uint8_t count) {
    return concat({{1, 0, 0, 0},              // 0 end of message "ETX", 1..2 typed masks, 3 version
                   zeros(8),                  // 4..11 start and end characters
                   {0, 0, 1, 0, 0, 0, 1, 0},  // 12..13 lengths, 14 message length, 16 silence, 18 always 1
                   test::kDefaultChecksum,    // 20..33
                   {count, 0}});              // 34 N
}

// A numeric field of five decimal digits with a sign into MI 7: type 1.
const Bytes kNumericRecord{3, 1, 5, 0, 3, 0, 7, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};

std::shared_ptr<clsProtocolScanNumericVar> linkedNumeric(int32_t start) {
    auto field = std::make_shared<clsProtocolScanNumericVar>();
    test::linkOperand(*field->LikedOperand(), 3, 7);
    field->StartPosition(start);
    return field;
}

std::shared_ptr<clsProtocolCSVar> checksumField(int32_t start) {
    auto field = std::make_shared<clsProtocolCSVar>();
    field->CSLength(2);
    field->CalculationType(3);
    field->StartPosition(start);
    return field;
}

const Bytes kTwoLettersAndControl13{
    1,  0, 0, 0,                                                     // 0: "ETX", masks, version 0
    0,  0, 0, 0, 0,  0,  0,  0,                                      // 4: STX and ETX characters
    0,  0, 1, 0, 0,  0,                                              // 12: lengths, message length 1, silence 0
    1,  0,                                                           // 18: always 1
    1,  0, 1, 0, 0,  0,  0,  0, 1, 1, 0, 0, 0, 0,                    // 20: end-of-message checksum
    1,  0,                                                           // 34: N = 1
    38, 0,                                                           // 36: message 1 at 38
    1,  1, 0, 0,                                                     // 38: one segment, fixed text, length 0
    0,  0, 0, 0, 66, 0,  0,  0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,  // 42: position 0, type 0, text at 66
    0,  0, 0, 0,                                                     //     rest of the entry
    0,  0, 3, 0, 65, 66, 13,                                         // 66: A, B, control 13
    0,                                                               // 73: the length is even
};

void setTwoLettersAndControl13(clsProtocolScanSrv& set) {
    putText(*set.GetMessage(1), 0, L"AB");
    set.GetMessage(1)->AddControlChar(2, 13);
}

TEST(ScanImage, TwoLettersAndAControlCharacterMakeA74ByteImage) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    setTwoLettersAndControl13(set);
    EXPECT_EQ(set.BinaryData(), kTwoLettersAndControl13);
}

TEST(ScanImage, TwoLettersAndAControlCharacterLoadAndWriteBackTheSameBytes) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    set.BinaryData(kTwoLettersAndControl13);
    ASSERT_EQ(set.NumberOfMessages(), 1);
    auto message = set.GetMessage(1);
    EXPECT_EQ(message->MessageString(), L"AB" + std::wstring(498, L' '));
    EXPECT_EQ(message->ControlChars()[2], 13);
    EXPECT_EQ(message->MessageLength(), 0);
    EXPECT_EQ(message->MethodType(), 1);
    EXPECT_EQ(set.BinaryData(), kTwoLettersAndControl13);
}

TEST(EthScanImage, SameLayoutAsTheSerialImageWithItsOwnMessageLength) {
    ScopedHostContext host;
    clsEthProtocolScanSrv set;
    setTwoLettersAndControl13(set);
    Bytes expected = kTwoLettersAndControl13;
    expected[14] = 0;  // MessageLengthValue starts at 0
    EXPECT_EQ(set.BinaryData(), expected);
}

TEST(ScanImage, NoMessageToDownloadGivesExactly36BytesWhichLoadAsOneEmptyMessage) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    Bytes image = set.BinaryData();
    EXPECT_EQ(image, scanHeader(0));
    ASSERT_EQ(image.size(), 36u);

    clsProtocolScanSrv loaded;
    loaded.AppendMessage();
    putText(*loaded.GetMessage(1), 0, L"OLD");
    loaded.BinaryData(image);
    ASSERT_EQ(loaded.NumberOfMessages(), 1);
    EXPECT_TRUE(loaded.GetMessage(1)->IsEmpty());
    EXPECT_EQ(loaded.GetMessage(1)->MethodType(), 1);
}

TEST(ScanImage, HasNoSpareByteWhenTheLastMessageEndsEven) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    putText(*set.GetMessage(1), 0, L"AB");
    const Bytes expected = concat({
        scanHeader(1),
        {38, 0},
        {1, 1, 0, 0},
        {0, 0, 0, 0, 66, 0},
        zeros(18),
        {0, 0, 2, 0, 65, 66},  // 66: ends at 72, and so does the image
    });
    EXPECT_EQ(set.BinaryData(), expected);
}

TEST(ScanImage, MessageLengthValueKeepsItsLow16Bits) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    setTwoLettersAndControl13(set);
    set.MessageLengthValue(70000);
    set.SilenceTimeValue(0x10203);
    Bytes image = set.BinaryData();
    EXPECT_EQ(Bytes(image.begin() + 14, image.begin() + 18), (Bytes{0x70, 0x11, 0x03, 0x02}));

    clsProtocolScanSrv loaded;
    loaded.BinaryData(image);
    EXPECT_EQ(loaded.MessageLengthValue(), 4464);
    EXPECT_EQ(loaded.SilenceTimeValue(), 0x0203);
}

TEST(ScanImage, ChecksumFieldIsStoredAsType3AndComesBackAsAChecksumAnswering6) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    set.GetMessage(1)->AddVar(checksumField(0));
    const Bytes expected = concat({
        scanHeader(1),
        {38, 0},
        {1, 2, 0, 0},  // 38: one segment; flags: a checksum field, no fixed text
        {0, 0, 3, 0},  // 42: position 0, type 3
        {1, 0, 2, 0, 0, 0, 0, 0, 3, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},  // 46: decimal, 2 bytes, CRC-16
    });
    Bytes image = set.BinaryData();
    EXPECT_EQ(image, expected);

    clsProtocolScanSrv loaded;
    loaded.BinaryData(image);
    ASSERT_EQ(loaded.GetMessage(1)->NumberOfVars(), 1);
    auto field = std::dynamic_pointer_cast<clsProtocolCSVar>(loaded.GetMessage(1)->GetVar(1));
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->GetVarSegmentType(), 6);
    EXPECT_EQ(field->CSLength(), 2);
    EXPECT_EQ(field->CalculationType(), 3);
    EXPECT_EQ(field->Length(), 2);
    EXPECT_EQ(loaded.BinaryData(), image);
}

TEST(ScanImage, MessageLengthIsStoredWithTheFrameAndLoadedWithout) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    setTwoLettersAndControl13(set);
    set.ScanSTXLength(2);
    set.ScanETXLength(1);
    set.GetMessage(1)->MessageLength(10);
    Bytes image = set.BinaryData();
    EXPECT_EQ(image[40], 13);

    clsProtocolScanSrv loaded;
    loaded.BinaryData(image);
    EXPECT_EQ(loaded.GetMessage(1)->MessageLength(), 10);
}

TEST(ScanImage, StoredLengthBelowTheFrameLoadsAs0) {
    ScopedHostContext host;
    test::ImageForger forged(kTwoLettersAndControl13);
    forged.u8(12, 2).u8(13, 1).u8(40, 2);
    clsProtocolScanSrv set;
    set.BinaryData(forged.image());
    EXPECT_EQ(set.GetMessage(1)->MessageLength(), 0);
}

TEST(ScanImage, MessageLengthWithTheFrameAbove255IsAnOverflow) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    setTwoLettersAndControl13(set);
    set.ScanSTXLength(4);
    set.ScanETXLength(2);
    set.GetMessage(1)->MessageLength(249);
    EXPECT_EQ(set.BinaryData()[40], 255);
    set.GetMessage(1)->MessageLength(250);
    EXPECT_EQ(test::runtimeErrorOf([&] { set.BinaryData(); }), err::Overflow);
}

TEST(ScanImage, MessageOfOnlyANumericFieldHasFlags0) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    set.GetMessage(1)->AddVar(linkedNumeric(0));
    const Bytes expected = concat({
        scanHeader(1),
        {38, 0},
        {1, 0, 0, 0},  // 38: one segment, flags 0
        {0, 0, 1, 0},  // 42: position 0, type 1
        kNumericRecord,
    });
    EXPECT_EQ(set.BinaryData(), expected);
}

TEST(ScanImage, MessageOfTextAndAChecksumFieldHasFlags3) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    putText(*set.GetMessage(1), 0, L"AB");
    set.GetMessage(1)->AddVar(checksumField(2));
    Bytes image = set.BinaryData();
    EXPECT_EQ(image[38], 2);
    EXPECT_EQ(image[39], 3);
}

TEST(ScanImage, SegmentsKeepTheirPositionsAndTextBlocksFollowTheTable) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    auto message = set.GetMessage(1);
    putText(*message, 0, L"AB");
    message->AddVar(linkedNumeric(2));  // a new field keeps its length of 5
    putText(*message, 7, L"C");
    const Bytes expected = concat({
        scanHeader(1),
        {38, 0},
        {3, 1, 0, 0},  // 38: three segments, fixed text
        {0, 0, 0, 0, 114, 0},
        zeros(18),  // 42: position 0, text at 114
        {2, 0, 1, 0},
        kNumericRecord,  // 66: position 2, numeric
        {7, 0, 0, 0, 120, 0},
        zeros(18),             // 90: position 7, text at 120
        {0, 0, 2, 0, 65, 66},  // 114: AB
        {0, 0, 1, 0, 67},      // 120: C
        {0},                   // 125: the length is even
    });
    EXPECT_EQ(set.BinaryData(), expected);
}

TEST(ScanImage, FrameAndEndOfMessageAreStoredAsTheyAre) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    setTwoLettersAndControl13(set);
    set.ScanSTXLength(1);
    set.SetScanSTXValue(0, 'S', true);
    set.SetScanETXValue(3, 0x04, false);
    set.SetScanETXValue(2, 'E', true);
    set.EndOfScanMessageType(3);
    Bytes image = set.BinaryData();
    EXPECT_EQ(Bytes(image.begin(), image.begin() + 14),
              (Bytes{3, 0b0001, 0b0100, 0, 'S', 0, 0, 0, 0, 0, 'E', 0x04, 1, 0}));

    clsProtocolScanSrv loaded;
    loaded.BinaryData(image);
    EXPECT_EQ(loaded.EndOfScanMessageType(), 3);
    EXPECT_EQ(loaded.ScanSTXChars(), set.ScanSTXChars());
    EXPECT_EQ(loaded.ScanETXChars(), set.ScanETXChars());
    EXPECT_EQ(loaded.ScanSTXLength(), 1);
    EXPECT_EQ(loaded.ScanETXLength(), 0);
}

TEST(ScanImage, ExtendedOperandsWriteVersion1AndTheEndChecksumsSTXFlag) {
    ScopedHostContext host;
    host->ExtendedOperands = true;
    clsProtocolScanSrv set;
    setTwoLettersAndControl13(set);
    std::dynamic_pointer_cast<clsProtocolCSVar>(set.ScanChecksum())->STXInCS(true);
    Bytes image = set.BinaryData();
    EXPECT_EQ(image[3], 1);
    EXPECT_EQ(image[23], 1);

    clsProtocolScanSrv loaded;
    loaded.BinaryData(image);
    EXPECT_EQ(loaded.ImageVersion(), 1);
    EXPECT_TRUE(std::dynamic_pointer_cast<clsProtocolCSVar>(loaded.ScanChecksum())->STXInCS());
}

TEST(ScanImage, Version0ImageFillsTheSTXFlagsTheOtherWayRoundFromASend) {
    ScopedHostContext host;
    host->ExtendedOperands = true;
    clsProtocolScanSrv source;
    source.GetMessage(1)->AddVar(checksumField(0));
    host->ExtendedOperands = false;
    Bytes old = source.BinaryData();
    ASSERT_EQ(old[3], 0);

    host->ExtendedOperands = true;
    clsProtocolScanSrv set;
    set.BinaryData(old);
    // An old Scan counted the STX in the end of message but not in a field.
    EXPECT_TRUE(std::dynamic_pointer_cast<clsProtocolCSVar>(set.ScanChecksum())->STXInCS());
    auto field = std::dynamic_pointer_cast<clsProtocolCSVar>(set.GetMessage(1)->GetVar(1));
    ASSERT_NE(field, nullptr);
    EXPECT_FALSE(field->STXInCS());
    Bytes upgraded = set.BinaryData();
    EXPECT_EQ(upgraded[3], 1);
    EXPECT_EQ(upgraded[23], 1);
}

TEST(ScanImage, FixedTextOf256CharactersIsAnOverflow) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    putText(*set.GetMessage(1), 0, std::wstring(256, L'z'));
    EXPECT_EQ(test::runtimeErrorOf([&] { set.BinaryData(); }), err::Overflow);
}

TEST(ScanImage, ControlCharacterOf200ComesBackAsTheCharacterOfThatCode) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    set.GetMessage(1)->AddControlChar(0, 200);
    clsProtocolScanSrv loaded;
    loaded.BinaryData(set.BinaryData());
    EXPECT_EQ(loaded.GetMessage(1)->MessageString()[0], fromAnsiByte(200));
    EXPECT_EQ(loaded.GetMessage(1)->ControlChars()[0], -1);
}

// Every numeric form of a Scan field, with text, control characters, a
// checksum field and a frame around them.
void fillEveryFieldKind(clsProtocolScanSrv& set) {
    set.ScanSTXLength(1);
    set.SetScanSTXValue(0, 0x02, false);
    set.ScanETXLength(1);
    set.SetScanETXValue(0, 0x03, false);
    set.EndOfScanMessageType(2);
    set.MessageLengthValue(40);
    set.SilenceTimeValue(250);
    auto endChecksum = std::dynamic_pointer_cast<clsProtocolCSVar>(set.ScanChecksum());
    endChecksum->CalculationType(10);
    endChecksum->SpecialAddition(true);
    endChecksum->SA_FromValue(2);
    endChecksum->SA_ToValue(9);
    endChecksum->SA_AddedValue(1);
    set.AppendMessage();
    set.AppendMessage();

    auto first = set.GetMessage(1);
    first->MessageLength(30);
    putText(*first, 0, L"V=");
    auto fixed = std::make_shared<clsProtocolScanNumericVar>();
    test::linkOperand(*fixed->LikedOperand(), 5, 10);
    test::linkOperand(*fixed->DecimalPointOperand(), 3, 11);
    fixed->VectorLength(2);
    fixed->BeforePoint(3);
    fixed->StartPosition(2);
    first->AddVar(fixed);
    first->AddControlChar(10, 27);
    auto free = std::make_shared<clsProtocolScanNumericVar>();
    test::linkOperand(*free->LikedOperand(), 3, 12);
    free->VarFormat(1);
    free->PrefixSignFormat(2);
    free->StartPosition(11);
    first->AddVar(free);
    auto hex = std::make_shared<clsProtocolScanNumericVar>();
    test::linkOperand(*hex->LikedOperand(), 16, 13);
    hex->VarFormat(2);
    hex->BeforePoint(4);
    hex->StartPosition(12);
    first->AddVar(hex);

    auto second = set.GetMessage(2);
    auto stream = std::make_shared<clsProtocolScanNumericVar>();
    test::linkOperand(*stream->LikedOperand(), 5, 14);
    stream->StreamForm(1);
    stream->VarFormat(3);
    stream->StreamVectorLength(3);
    stream->CopyBytesFormat(1);
    stream->AddNullToEndOfStream(true);
    stream->StartPosition(1);
    putText(*second, 0, L"#");
    second->AddVar(stream);
    auto freeStream = std::make_shared<clsProtocolScanNumericVar>();
    test::linkOperand(*freeStream->LikedOperand(), 3, 15);
    freeStream->StreamForm(1);
    freeStream->VarFormat(4);
    freeStream->CopyBytesFormat(5);
    freeStream->StartPosition(7);
    second->AddVar(freeStream);
    auto checksum = checksumField(11);
    checksum->FormatView(1);
    second->AddVar(checksum);
    second->AddControlChar(13, 13);

    putText(*set.GetMessage(3), 0, L"LAST");
}

TEST(ScanImage, EveryFieldKindRoundTripsToTheSameBytes) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    fillEveryFieldKind(set);
    Bytes image = set.BinaryData();

    clsProtocolScanSrv loaded;
    loaded.BinaryData(image);
    EXPECT_EQ(loaded.BinaryData(), image);

    ASSERT_EQ(loaded.NumberOfMessages(), 3);
    for (int32_t number = 1; number <= 3; ++number) {
        auto original = set.GetMessage(number);
        auto back = loaded.GetMessage(number);
        EXPECT_EQ(back->MessageString(), original->MessageString()) << number;
        EXPECT_EQ(back->ControlChars(), original->ControlChars()) << number;
        EXPECT_EQ(back->MessageLength(), original->MessageLength()) << number;
        ASSERT_EQ(back->NumberOfVars(), original->NumberOfVars()) << number;
        for (int32_t v = 1; v <= back->NumberOfVars(); ++v) {
            EXPECT_EQ(back->GetVar(v)->StartPosition(), original->GetVar(v)->StartPosition());
            EXPECT_EQ(back->GetVar(v)->Length(), original->GetVar(v)->Length());
            EXPECT_EQ(back->GetVar(v)->GetVarSegmentType(), original->GetVar(v)->GetVarSegmentType());
        }
    }
    // The segment types in the table: 1, 2, 1 in the first message; 4, 5, 3 in the second.
    int64_t first = image[36] | (image[37] << 8);
    EXPECT_EQ(image[first + 4 + 24 * 1 + 2], 1);
    EXPECT_EQ(image[first + 4 + 24 * 3 + 2], 2);
    EXPECT_EQ(image[first + 4 + 24 * 4 + 2], 1);
    int64_t second = image[38] | (image[39] << 8);
    EXPECT_EQ(image[second + 4 + 24 * 1 + 2], 4);
    EXPECT_EQ(image[second + 4 + 24 * 2 + 2], 5);
    EXPECT_EQ(image[second + 4 + 24 * 3 + 2], 3);

    auto fixed = std::dynamic_pointer_cast<clsProtocolScanNumericVar>(loaded.GetMessage(1)->GetVar(1));
    ASSERT_NE(fixed, nullptr);
    EXPECT_EQ(fixed->DecimalPointOperand()->OperandAddress(), 11);
    auto stream = std::dynamic_pointer_cast<clsProtocolScanNumericVar>(loaded.GetMessage(2)->GetVar(1));
    ASSERT_NE(stream, nullptr);
    EXPECT_TRUE(stream->AddNullToEndOfStream());
    auto endChecksum = std::dynamic_pointer_cast<clsProtocolCSVar>(loaded.ScanChecksum());
    EXPECT_EQ(endChecksum->CalculationType(), 10);
    EXPECT_EQ(endChecksum->SA_ToValue(), 9);
    EXPECT_EQ(loaded.MessageLengthValue(), 40);
    EXPECT_EQ(loaded.SilenceTimeValue(), 250);
    EXPECT_EQ(loaded.EndOfScanMessageType(), 2);
}

TEST(ScanImage, EveryFieldKindRoundTripsWithExtendedOperandsToo) {
    ScopedHostContext host;
    host->ExtendedOperands = true;
    clsEthProtocolScanSrv set;
    fillEveryFieldKind(set);
    Bytes image = set.BinaryData();
    EXPECT_EQ(image[3], 1);
    clsEthProtocolScanSrv loaded;
    loaded.BinaryData(image);
    EXPECT_EQ(loaded.BinaryData(), image);
}

TEST(ScanImage, TheStoredPositionIsNotReadTheRunOfSegmentsDecides) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    set.GetMessage(1)->AddVar(checksumField(0));
    test::ImageForger forged(set.BinaryData());
    forged.u16(42, 300);
    clsProtocolScanSrv loaded;
    loaded.BinaryData(forged.image());
    EXPECT_EQ(loaded.GetMessage(1)->GetVar(1)->StartPosition(), 0);
}

}  // namespace
}  // namespace qx
