// The Send image, byte for byte: the header, the message table, the segment
// tables and data blocks, and what a load makes of them again.
#include "sets/send_image.h"

#include <gtest/gtest.h>

#include "message/protocol_binary_var.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_date_var.h"
#include "message/protocol_list_text_var.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_time_var.h"
#include "platform/basics/ansi.h"
#include "platform/basics/object_count.h"
#include "platform/host/host_context.h"
#include "sets/send_set.h"
#include "sets/set_test_support.h"
#include "support/image_parts.h"

namespace qx {
namespace {

using test::concat;
using test::putText;
using test::zeros;

// The message number forced to the constant 0; the host's first constant address is 1.
const Bytes kSingleMessageNumber{37, 0, 0, 0, 0, 0, 1, 0};

// A header with its message-number block given, copy off, no frame,
// version 0, the default checksum and N messages.
Bytes sendHeader(const Bytes& messageNumberBlock, uint8_t count) {
    return concat({messageNumberBlock,      // 0..7
                   zeros(16),               // 8..23: copy destination and copy done, copy off
                   {0, 0, 0, 0},            // 24 version, 25 end of message, 26..27 typed masks
                   zeros(8),                // 28..35 start and end characters
                   {0, 0, 1, 0},            // 36..37 lengths, 38 always 1, 39
                   test::kDefaultChecksum,  // 40..53
                   {0, 0, count, 0}});      // 54 copy count, 56 N
}

Bytes numericRecord(uint8_t operandType, uint8_t address) {
    // Decimal with sign, one element, five digits, no point.
    return {0, 3, 1, 5, 0, 0, 0, operandType, 0, address, 0, 0, 0, 0, 0, 0, 0};
}

std::shared_ptr<clsProtocolNumericVar> linkedNumeric(int32_t start, int32_t address) {
    auto field = std::make_shared<clsProtocolNumericVar>();
    test::linkOperand(*field->LikedOperand(), 3, address);
    field->StartPosition(start);
    return field;
}

void setTwoLettersAndControl13(clsProtocolSendSrv& set) {
    putText(*set.GetMessage(1), 0, L"AB");
    set.GetMessage(1)->AddControlChar(2, 13);
}

const Bytes kTwoLettersAndControl13{
    37, 0, 0,  0, 0,  0,  1,  0,                                // 0: constant 0 of type 37, constant address 1
    0,  0, 0,  0, 0,  0,  0,  0,                                // 8: copy destination, copy off
    0,  0, 0,  0, 0,  0,  0,  0,                                // 16: copy done, copy off
    0,  0, 0,  0,                                               // 24: version, end of message, masks
    0,  0, 0,  0, 0,  0,  0,  0,                                // 28: STX and ETX characters
    0,  0, 1,  0,                                               // 36: lengths, always 1
    1,  0, 1,  0, 0,  0,  0,  0, 1, 1, 0, 0, 0, 0,              // 40: end-of-message checksum
    0,  0, 1,  0,                                               // 54: copy count, N = 1
    60, 0,                                                      // 58: message 1 at 60
    1,  0, 0,  0,                                               // 60: one segment
    0,  0, 82, 0, 0,  0,  0,  0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,  // 64: fixed text at 82
    0,  0, 3,  0, 65, 66, 13,                                   // 82: A, B, control 13
    0,                                                          // 89: the spare byte
};

TEST(SendImage, TwoLettersAndAControlCharacterMakeA90ByteImage) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    setTwoLettersAndControl13(set);
    EXPECT_EQ(set.BinaryData(), kTwoLettersAndControl13);
}

TEST(SendImage, TwoLettersAndAControlCharacterLoadAsTheMessageTheyCameFrom) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    set.BinaryData(kTwoLettersAndControl13);
    ASSERT_EQ(set.NumberOfMessages(), 1);
    auto message = set.GetMessage(1);
    EXPECT_EQ(message->MessageString(), L"AB" + std::wstring(498, L' '));
    auto controls = message->ControlChars();
    EXPECT_EQ(controls[2], 13);
    EXPECT_EQ(std::count(controls.begin(), controls.end(), -1), 499);
    EXPECT_EQ(message->NumberOfVars(), 0);
    EXPECT_EQ(set.OpMessageNumber()->OperandType(), 37);
    EXPECT_EQ(set.OpMessageNumber()->OperandMode(), 2);
    EXPECT_EQ(set.OpMessageNumber()->OperandConstantValue(), 0);
    EXPECT_EQ(set.EndOfSendMessageType(), 1);
    EXPECT_EQ(set.ImageVersion(), 0);
    // The load took constant address 1 for the message number, and the next
    // write takes a new one: everything else comes out the same.
    Bytes rewritten = kTwoLettersAndControl13;
    rewritten[6] = 2;
    EXPECT_EQ(set.BinaryData(), rewritten);
}

TEST(SendImage, NoMessageToDownloadGivesA60ByteImageWhichLoadsAsOneEmptyMessage) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    // The message number is the unlinked constant of a new set: value 0, address -1.
    const Bytes expected = concat({sendHeader({37, 0, 0, 0, 0, 0, 0xFF, 0xFF}, 0), {0, 0}});
    Bytes image = set.BinaryData();
    ASSERT_EQ(image.size(), 60u);
    EXPECT_EQ(image, expected);
    EXPECT_EQ(image[56], 0);

    clsProtocolSendSrv loaded;
    loaded.AppendMessage();
    putText(*loaded.GetMessage(2), 0, L"OLD");
    loaded.BinaryData(image);
    ASSERT_EQ(loaded.NumberOfMessages(), 1);
    EXPECT_TRUE(loaded.GetMessage(1)->IsEmpty());
    EXPECT_EQ(loaded.GetMessage(1)->MethodType(), 0);
}

TEST(SendImage, SingleMessageForcesTheMessageNumberToTheConstantZero) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    auto number = set.OpMessageNumber();
    number->OperandMode(1);
    test::linkOperand(*number, 3, 7);
    number->HasValue(true);
    number->OperandConstantValue(90000);
    putText(*set.GetMessage(1), 0, L"X");

    Bytes image = set.BinaryData();

    EXPECT_EQ(Bytes(image.begin(), image.begin() + 8), kSingleMessageNumber);
    EXPECT_EQ(number->OperandType(), 37);
    EXPECT_EQ(number->OperandAddress(), 1);
    EXPECT_EQ(number->OperandConstantValue(), 0);
    EXPECT_FALSE(number->HasValue());
}

TEST(SendImage, EachWriteOfASingleMessageTakesANewConstantAddress) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    putText(*set.GetMessage(1), 0, L"X");
    set.BinaryData();
    Bytes second = set.BinaryData();
    EXPECT_EQ(second[6], 2);
    EXPECT_EQ(set.OpMessageNumber()->OperandAddress(), 2);
}

TEST(EthSendImage, SingleMessageForcesTheConstantZeroButKeepsHasValue) {
    ScopedHostContext host;
    clsEthProtocolSendSrv set;
    auto number = set.OpMessageNumber();
    test::linkOperand(*number, 3, 7);
    number->HasValue(true);
    putText(*set.GetMessage(1), 0, L"X");

    Bytes image = set.BinaryData();

    EXPECT_EQ(Bytes(image.begin(), image.begin() + 8), kSingleMessageNumber);
    EXPECT_EQ(number->OperandType(), 37);
    EXPECT_EQ(number->OperandConstantValue(), 0);
    EXPECT_TRUE(number->HasValue());
}

TEST(EthSendImage, SameLayoutAsTheSerialImage) {
    ScopedHostContext host;
    clsEthProtocolSendSrv set;
    setTwoLettersAndControl13(set);
    EXPECT_EQ(set.BinaryData(), kTwoLettersAndControl13);
}

TEST(SendImage, TwoMessagesWithAMemoryMessageNumberHoldItsAddressAndZeros) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    test::linkOperand(*set.OpMessageNumber(), 3, 0x0105);
    set.OpMessageNumber()->OperandMode(1);
    set.AppendMessage();
    putText(*set.GetMessage(1), 0, L"A");
    putText(*set.GetMessage(2), 0, L"B");

    const Bytes expected = concat({
        sendHeader({3, 0, 0x05, 0x01, 0, 0, 0, 0}, 2),
        {62, 0, 90, 0},  // 58: messages at 62 and 90
        {1, 0, 0, 0},    // 62: one segment
        {0, 0, 84, 0},
        zeros(14),         // 66: fixed text at 84
        {0, 0, 1, 0, 65},  // 84: A
        {0},               // 89: makes the next message start even
        {1, 0, 0, 0},      // 90: one segment
        {0, 0, 112, 0},
        zeros(14),         // 94: fixed text at 112
        {0, 0, 1, 0, 66},  // 112: B
        {0},               // 117: the spare byte
    });
    Bytes image = set.BinaryData();
    EXPECT_EQ(image, expected);
    EXPECT_EQ(set.OpMessageNumber()->OperandType(), 3);
    EXPECT_EQ(set.OpMessageNumber()->OperandAddress(), 0x0105);
}

TEST(SendImage, MemoryMessageNumberLoadsLinkedAndRegistered) {
    ScopedHostContext host;
    clsProtocolSendSrv source;
    test::linkOperand(*source.OpMessageNumber(), 3, 0x0105);
    source.AppendMessage();
    putText(*source.GetMessage(1), 0, L"A");
    putText(*source.GetMessage(2), 0, L"B");
    Bytes image = source.BinaryData();

    clsProtocolSendSrv set;
    set.BinaryData(image);
    auto number = set.OpMessageNumber();
    EXPECT_EQ(number->OperandType(), 3);
    EXPECT_EQ(number->OperandAddress(), 0x0105);
    EXPECT_EQ(number->OperandMode(), 1);
    EXPECT_FALSE(number->IsNew());
    EXPECT_TRUE(number->IsRegistered());
    EXPECT_EQ(set.NumberOfMessages(), 2);
}

TEST(SendImage, OddFixedTextIsPaddedSoThatTheNextTextBlockStartsEven) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    auto message = set.GetMessage(1);
    putText(*message, 0, L"ABC");
    message->AddVar(linkedNumeric(3, 9));
    putText(*message, 8, L"DE");

    const Bytes expected = concat({
        sendHeader(kSingleMessageNumber, 1),
        {60, 0},       // 58
        {3, 0, 0, 0},  // 60: three segments
        {0, 0, 118, 0},
        zeros(14),  // 64: fixed text at 118
        {5},
        numericRecord(3, 9),  // 82: numeric field, record in the entry
        {0, 0, 126, 0},
        zeros(14),                 // 100: fixed text at 126
        {0, 0, 3, 0, 65, 66, 67},  // 118: ABC
        {0},                       // 125: padding
        {0, 0, 2, 0, 68, 69},      // 126: DE
        {0},                       // 132: the spare byte
        {0},                       // 133: the image length is even
    });
    EXPECT_EQ(set.BinaryData(), expected);
}

TEST(SendImage, OddFixedTextIsPaddedSoThatABinaryTextRecordStartsEven) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    auto message = set.GetMessage(1);
    putText(*message, 0, L"ABC");
    auto field = std::make_shared<clsProtocolBinaryVar>();
    test::linkOperand(*field->LikedOperand(), 1, 5);
    field->TextFor0(L"NO");
    field->TextFor1(L"YES");
    field->StartPosition(3);
    message->AddVar(field);

    const Bytes expected = concat({
        sendHeader(kSingleMessageNumber, 1),
        {60, 0},       // 58
        {2, 0, 0, 0},  // 60: two segments
        {0, 0, 100, 0},
        zeros(14),  // 64: fixed text at 100
        {1, 0, 108, 0},
        zeros(14),                                // 82: binary text record at 108
        {0, 0, 3, 0, 65, 66, 67},                 // 100: ABC
        {0},                                      // 107: padding
        {2,   0,   1, 0,   5,   0,   0, 0, 0, 0,  // 108: record, bit operand 1/5
         126, 0,   2, 0,   129, 0,   3, 0,        //      texts at 126 (2) and 129 (3)
         'N', 'O', 0, 'Y', 'E', 'S', 0},          // 126
        {0},                                      // 133: the spare byte
    });
    EXPECT_EQ(set.BinaryData(), expected);
}

TEST(SendImage, MessageOfOneNumericFieldAndNoTextIs22Bytes) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    set.GetMessage(1)->AddVar(linkedNumeric(0, 9));

    const Bytes expected = concat({
        sendHeader(kSingleMessageNumber, 1),
        {60, 0},       // 58
        {1, 0, 0, 0},  // 60: one segment
        {5},
        numericRecord(3, 9),  // 64: numeric field; the message ends at 82
        {0},                  // 82: the spare byte
        {0},                  // 83: the image length is even
    });
    Bytes image = set.BinaryData();
    EXPECT_EQ(image, expected);
    EXPECT_EQ(image.size() - 2 - 60, 22u);
}

TEST(SendImage, WithoutEndCharactersTheEndOfMessageIsStoredAs0AndLoadsAs1) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    setTwoLettersAndControl13(set);
    set.EndOfSendMessageType(3);
    Bytes image = set.BinaryData();
    EXPECT_EQ(image[25], 0);

    clsProtocolSendSrv loaded;
    loaded.EndOfSendMessageType(2);
    loaded.BinaryData(image);
    EXPECT_EQ(loaded.EndOfSendMessageType(), 1);
}

TEST(SendImage, WithEndCharactersTheEndOfMessageIsStoredAndLoaded) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    setTwoLettersAndControl13(set);
    set.SendETXLength(1);
    set.SetSendETXValue(0, 3, false);
    set.EndOfSendMessageType(3);
    Bytes image = set.BinaryData();
    EXPECT_EQ(image[25], 3);

    clsProtocolSendSrv loaded;
    loaded.BinaryData(image);
    EXPECT_EQ(loaded.EndOfSendMessageType(), 3);
}

TEST(SendImage, CopyOffLeavesBytes8To23ZeroAndTheOperandsAsCreated) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    setTwoLettersAndControl13(set);
    test::linkOperand(*set.OpCopyDestination(), 5, 10);
    test::linkOperand(*set.OpCopyWhenOn(), 1, 20);
    Bytes image = set.BinaryData();
    EXPECT_EQ(Bytes(image.begin() + 8, image.begin() + 24), zeros(16));
    EXPECT_EQ(image[54], 0);

    clsProtocolSendSrv loaded;
    loaded.BinaryData(image);
    EXPECT_EQ(loaded.CopyBytesCount(), 0);
    EXPECT_EQ(loaded.OpCopyDestination()->OperandType(), 3);
    EXPECT_EQ(loaded.OpCopyDestination()->OperandAddress(), -1);
    EXPECT_TRUE(loaded.OpCopyDestination()->IsNew());
    EXPECT_EQ(loaded.OpCopyWhenOn()->OperandType(), 1);
    EXPECT_EQ(loaded.OpCopyWhenOn()->OperandAddress(), -1);
    EXPECT_TRUE(loaded.OpCopyWhenOn()->IsNew());
}

TEST(SendImage, CopyOnStoresBothOperandsAndTheCount) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    setTwoLettersAndControl13(set);
    test::linkOperand(*set.OpCopyDestination(), 5, 0x0210);
    test::linkOperand(*set.OpCopyWhenOn(), 1, 20);
    set.CopyBytesCount(4);
    Bytes image = set.BinaryData();
    EXPECT_EQ(Bytes(image.begin() + 8, image.begin() + 24),
              (Bytes{5, 0, 0x10, 0x02, 0, 0, 0, 0, 1, 0, 20, 0, 0, 0, 0, 0}));
    EXPECT_EQ(image[54], 4);

    clsProtocolSendSrv loaded;
    loaded.BinaryData(image);
    EXPECT_EQ(loaded.CopyBytesCount(), 4);
    EXPECT_EQ(loaded.OpCopyDestination()->OperandType(), 5);
    EXPECT_EQ(loaded.OpCopyDestination()->OperandAddress(), 0x0210);
    EXPECT_FALSE(loaded.OpCopyDestination()->IsNew());
    EXPECT_TRUE(loaded.OpCopyDestination()->IsRegistered());
    EXPECT_EQ(loaded.OpCopyWhenOn()->OperandType(), 1);
    EXPECT_EQ(loaded.OpCopyWhenOn()->OperandAddress(), 20);
    EXPECT_TRUE(loaded.OpCopyWhenOn()->IsRegistered());
}

TEST(SendImage, CopyCountAbove255IsAnOverflow) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    setTwoLettersAndControl13(set);
    set.CopyBytesCount(256);
    EXPECT_EQ(test::runtimeErrorOf([&] { set.BinaryData(); }), err::Overflow);
}

TEST(SendImage, FrameCharactersLengthsAndTypedMasks) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    setTwoLettersAndControl13(set);
    set.SendSTXLength(2);
    set.SetSendSTXValue(0, 0x02, false);
    set.SetSendSTXValue(1, 'A', true);
    set.SendETXLength(1);
    set.SetSendETXValue(0, 0x03, false);
    set.EndOfSendMessageType(2);
    Bytes image = set.BinaryData();
    EXPECT_EQ(Bytes(image.begin() + 25, image.begin() + 38), (Bytes{2, 0b10, 0, 0x02, 'A', 0, 0, 0x03, 0, 0, 0, 2, 1}));

    clsProtocolSendSrv loaded;
    loaded.BinaryData(image);
    EXPECT_EQ(loaded.SendSTXChars(), (FrameChars{FrameChar{0x02, false}, FrameChar{'A', true}, {}, {}}));
    EXPECT_EQ(loaded.SendETXChars(), (FrameChars{FrameChar{0x03, false}, {}, {}, {}}));
    EXPECT_EQ(loaded.SendSTXLength(), 2);
    EXPECT_EQ(loaded.SendETXLength(), 1);
    EXPECT_EQ(loaded.EndOfSendMessageType(), 2);
}

TEST(SendImage, AClearTypedBitLeavesTheEntrysFlagAsItWas) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    set.SetSendSTXValue(0, 0x40, true);
    set.BinaryData(kTwoLettersAndControl13);
    EXPECT_EQ(set.SendSTXChars()[0], (FrameChar{0, true}));
}

TEST(SendImage, FrameLengthAbove255IsAnOverflow) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    setTwoLettersAndControl13(set);
    set.SendSTXLength(256);
    EXPECT_EQ(test::runtimeErrorOf([&] { set.BinaryData(); }), err::Overflow);
}

TEST(SendImage, TextControlCharacterAndDateFieldComeBackAtTheirPositions) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    auto message = set.GetMessage(1);
    putText(*message, 0, L"AB");
    message->AddControlChar(2, 13);
    auto date = std::make_shared<clsProtocolDateVar>();
    date->StartPosition(3);
    message->AddVar(date);
    putText(*message, 11, L"Z");
    Bytes image = set.BinaryData();

    clsProtocolSendSrv loaded;
    loaded.BinaryData(image);
    auto back = loaded.GetMessage(1);
    EXPECT_EQ(back->MessageString(), message->MessageString());
    EXPECT_EQ(back->ControlChars(), message->ControlChars());
    ASSERT_EQ(back->NumberOfVars(), 1);
    auto loadedDate = std::dynamic_pointer_cast<clsProtocolDateVar>(back->GetVar(1));
    ASSERT_NE(loadedDate, nullptr);
    EXPECT_EQ(loadedDate->StartPosition(), 3);
    EXPECT_EQ(loadedDate->Length(), 8);
    // Constant addresses 1 (write) and 2 (load) are taken; the rewrite takes 3.
    Bytes rewritten = image;
    rewritten[6] = 3;
    EXPECT_EQ(loaded.BinaryData(), rewritten);
}

TEST(SendImage, ControlCharacterOf200ComesBackAsTheCharacterOfThatCode) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    set.GetMessage(1)->AddControlChar(0, 200);
    Bytes image = set.BinaryData();
    EXPECT_EQ(image[86], 200);

    clsProtocolSendSrv loaded;
    loaded.BinaryData(image);
    auto message = loaded.GetMessage(1);
    EXPECT_EQ(message->MessageString()[0], fromAnsiByte(200));
    EXPECT_EQ(message->ControlChars()[0], -1);
}

TEST(SendImage, FixedTextOf255CharactersFitsAnd256IsAnOverflow) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    putText(*set.GetMessage(1), 0, std::wstring(255, L'x'));
    Bytes image = set.BinaryData();
    EXPECT_EQ(image[84], 255);
    putText(*set.GetMessage(1), 0, std::wstring(256, L'x'));
    EXPECT_EQ(test::runtimeErrorOf([&] { set.BinaryData(); }), err::Overflow);
}

TEST(SendImage, AnEmptyMessageInsideTheRangeFailsTheWriter) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    set.AppendMessage();
    set.AppendMessage();
    putText(*set.GetMessage(1), 0, L"A");
    putText(*set.GetMessage(3), 0, L"C");
    EXPECT_EQ(test::runtimeErrorOf([&] { set.BinaryData(); }), err::SubscriptOutOfRange);
}

TEST(SendImage, TrailingEmptyMessagesAreNotWritten) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    setTwoLettersAndControl13(set);
    set.AppendMessage();
    set.AppendMessage();
    EXPECT_EQ(set.BinaryData(), kTwoLettersAndControl13);
}

TEST(SendImage, ExtendedOperandsWriteVersion1AndTheSTXFlagOfTheChecksum) {
    ScopedHostContext host;
    host->ExtendedOperands = true;
    clsProtocolSendSrv set;
    setTwoLettersAndControl13(set);
    std::dynamic_pointer_cast<clsProtocolCSVar>(set.SendChecksum())->STXInCS(true);
    Bytes image = set.BinaryData();
    EXPECT_EQ(image[24], 1);
    EXPECT_EQ(Bytes(image.begin() + 40, image.begin() + 54), (Bytes{1, 0, 1, 1, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0}));

    clsProtocolSendSrv loaded;
    loaded.BinaryData(image);
    EXPECT_EQ(loaded.ImageVersion(), 1);
    EXPECT_TRUE(std::dynamic_pointer_cast<clsProtocolCSVar>(loaded.SendChecksum())->STXInCS());
}

TEST(SendImage, Version0ImageFillsTheSTXFlagsByDefaultAndUpgradesOnTheNextWrite) {
    ScopedHostContext host;
    host->ExtendedOperands = true;
    // One message of a checksum field, written as an old image: no STX byte.
    const Bytes old = concat({
        sendHeader(kSingleMessageNumber, 1),
        {60, 0},
        {1, 0, 0, 0},
        {6, 0, 1, 0, 1, 0, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0},  // 64: checksum field, decimal, one byte
        {0, 0},
    });
    clsProtocolSendSrv set;
    set.BinaryData(old);
    EXPECT_EQ(set.ImageVersion(), 0);
    // An old Send counted the STX in a field but not in the end of message.
    EXPECT_FALSE(std::dynamic_pointer_cast<clsProtocolCSVar>(set.SendChecksum())->STXInCS());
    auto field = std::dynamic_pointer_cast<clsProtocolCSVar>(set.GetMessage(1)->GetVar(1));
    ASSERT_NE(field, nullptr);
    EXPECT_TRUE(field->STXInCS());

    Bytes upgraded = set.BinaryData();
    EXPECT_EQ(upgraded[24], 1);
    EXPECT_EQ(upgraded[64], 6);
    EXPECT_EQ(upgraded[68], 1);  // entry byte 1 is record byte 0: the STX flag is record byte 4
}

TEST(SendImage, LongConstantMessageNumberIsStoredUnsignedAndLoadsAsItsValue) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    auto number = set.OpMessageNumber();
    number->OperandType(35);
    number->OperandAddress(0x0304);
    number->OperandConstantValue(4000000000LL * 10000);
    set.AppendMessage();
    putText(*set.GetMessage(1), 0, L"A");
    putText(*set.GetMessage(2), 0, L"B");
    Bytes image = set.BinaryData();
    EXPECT_EQ(Bytes(image.begin(), image.begin() + 8), (Bytes{35, 0, 0x00, 0x28, 0x6B, 0xEE, 0x04, 0x03}));

    clsProtocolSendSrv loaded;
    loaded.BinaryData(image);
    auto back = loaded.OpMessageNumber();
    EXPECT_EQ(back->OperandType(), 35);
    EXPECT_EQ(back->OperandMode(), 2);
    EXPECT_EQ(back->OperandConstantValue(), 4000000000LL * 10000);
    // A stored constant gets a new place in the host's constant table.
    EXPECT_EQ(back->OperandAddress(), 1);
}

TEST(SendImage, NegativeIntegerConstantMessageNumberRoundTrips) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    auto number = set.OpMessageNumber();
    number->OperandType(34);
    number->OperandAddress(9);
    number->OperandConstantValue(-5 * 10000);
    set.AppendMessage();
    putText(*set.GetMessage(1), 0, L"A");
    putText(*set.GetMessage(2), 0, L"B");
    Bytes image = set.BinaryData();
    EXPECT_EQ(Bytes(image.begin(), image.begin() + 8), (Bytes{34, 0, 0xFB, 0xFF, 0xFF, 0xFF, 9, 0}));

    clsProtocolSendSrv loaded;
    loaded.BinaryData(image);
    EXPECT_EQ(loaded.OpMessageNumber()->OperandType(), 34);
    EXPECT_EQ(loaded.OpMessageNumber()->OperandConstantValue(), -50000);
    EXPECT_EQ(loaded.OpMessageNumber()->OperandMode(), 2);
}

TEST(SendImage, NegativeLongConstantIsStoredSignedAndComesBackUnsigned) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    auto number = set.OpMessageNumber();
    number->OperandType(38);
    number->OperandAddress(2);
    number->OperandConstantValue(-1 * 10000);
    set.AppendMessage();
    putText(*set.GetMessage(1), 0, L"A");
    putText(*set.GetMessage(2), 0, L"B");
    Bytes image = set.BinaryData();
    EXPECT_EQ(Bytes(image.begin(), image.begin() + 8), (Bytes{38, 0, 0xFF, 0xFF, 0xFF, 0xFF, 2, 0}));

    clsProtocolSendSrv loaded;
    loaded.BinaryData(image);
    EXPECT_EQ(loaded.OpMessageNumber()->OperandConstantValue(), 4294967295LL * 10000);
}

TEST(SendImage, MessageNumberTypeByte0LeavesTheOperandAsItIs) {
    ScopedHostContext host;
    Bytes image = kTwoLettersAndControl13;
    image[0] = 0;
    clsProtocolSendSrv set;
    test::linkOperand(*set.OpMessageNumber(), 3, 44);
    set.BinaryData(image);
    EXPECT_EQ(set.OpMessageNumber()->OperandType(), 3);
    EXPECT_EQ(set.OpMessageNumber()->OperandAddress(), 44);
}

TEST(SendImage, LoadReplacesEveryMessageAndKeepsTheClipboard) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    set.AppendMessage();
    set.AppendMessage();
    putText(*set.GetMessage(3), 0, L"GONE");
    set.CopyMessage(3);
    set.BinaryData(kTwoLettersAndControl13);
    EXPECT_EQ(set.NumberOfMessages(), 1);
    ASSERT_NE(set.ClipboardMessage(), nullptr);
    EXPECT_EQ(set.ClipboardMessage()->MessageString().substr(0, 4), L"GONE");
}

// A message of every Send field kind between texts and control characters.
void fillEveryFieldKind(clsProtocolSendSrv& set) {
    set.AppendMessage();
    set.SendSTXLength(1);
    set.SetSendSTXValue(0, 0x02, false);
    set.SendETXLength(2);
    set.SetSendETXValue(0, 0x0D, false);
    set.SetSendETXValue(1, 'x', true);
    set.EndOfSendMessageType(3);
    auto endChecksum = std::dynamic_pointer_cast<clsProtocolCSVar>(set.SendChecksum());
    endChecksum->CalculationType(3);
    endChecksum->ModulusType(2);
    endChecksum->CSLength(2);
    endChecksum->FormatView(1);
    endChecksum->OffsetFromForward(1);
    endChecksum->OffsetTillBackwards(2);
    test::linkOperand(*set.OpMessageNumber(), 3, 77);
    test::linkOperand(*set.OpCopyDestination(), 16, 300);
    test::linkOperand(*set.OpCopyWhenOn(), 1, 301);
    set.CopyBytesCount(12);

    auto first = set.GetMessage(1);
    putText(*first, 0, L"T=");
    auto binary = std::make_shared<clsProtocolBinaryVar>();
    test::linkOperand(*binary->LikedOperand(), 1, 40);
    binary->TextFor0(L"OFF");
    binary->TextFor1(L"ON");
    binary->StartPosition(2);
    first->AddVar(binary);
    first->AddControlChar(5, 9);
    auto list = std::make_shared<clsProtocolistTextVar>();
    test::linkOperand(*list->LikedOperand(), 3, 41);
    list->Texts({L"RED", L"GREEN", L"BLUE"});
    list->StartPosition(6);
    first->AddVar(list);
    auto date = std::make_shared<clsProtocolDateVar>();
    date->DateFormatType(3);
    date->StartPosition(11);
    first->AddVar(date);
    auto time = std::make_shared<clsProtocolTimeVar>();
    time->TimeFormatType(1);
    time->StartPosition(20);
    first->AddVar(time);
    putText(*first, 28, L" ");
    first->AddControlChar(29, 10);

    auto second = set.GetMessage(2);
    auto hex = std::make_shared<clsProtocolNumericVar>();
    test::linkOperand(*hex->LikedOperand(), 5, 42);
    hex->VarFormat(1);
    hex->BeforePoint(4);
    hex->VectorLength(2);
    hex->StartPosition(0);
    second->AddVar(hex);
    auto stream = std::make_shared<clsProtocolNumericVar>();
    test::linkOperand(*stream->LikedOperand(), 16, 43);
    stream->StreamForm(1);
    stream->CopyBytesFormat(5);
    stream->StreamLengthAddress(12);
    stream->StartPosition(8);
    second->AddVar(stream);
    auto checksum = std::make_shared<clsProtocolCSVar>();
    checksum->CSLength(4);
    checksum->FormatView(2);
    checksum->SpecialAddition(true);
    checksum->SA_FromValue(1);
    checksum->SA_ToValue(200);
    checksum->SA_AddedValue(3);
    checksum->StartPosition(9);
    second->AddVar(checksum);
    putText(*second, 13, L"END");
}

TEST(SendImage, EveryFieldKindRoundTripsToTheSameBytes) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    fillEveryFieldKind(set);
    Bytes image = set.BinaryData();

    clsProtocolSendSrv loaded;
    loaded.BinaryData(image);
    EXPECT_EQ(loaded.BinaryData(), image);

    ASSERT_EQ(loaded.NumberOfMessages(), 2);
    for (int32_t number = 1; number <= 2; ++number) {
        auto original = set.GetMessage(number);
        auto back = loaded.GetMessage(number);
        EXPECT_EQ(back->MessageString(), original->MessageString()) << number;
        EXPECT_EQ(back->ControlChars(), original->ControlChars()) << number;
        ASSERT_EQ(back->NumberOfVars(), original->NumberOfVars()) << number;
        for (int32_t v = 1; v <= back->NumberOfVars(); ++v) {
            EXPECT_EQ(back->GetVar(v)->StartPosition(), original->GetVar(v)->StartPosition());
            EXPECT_EQ(back->GetVar(v)->Length(), original->GetVar(v)->Length());
            EXPECT_EQ(back->GetVar(v)->GetVarSegmentType(), original->GetVar(v)->GetVarSegmentType());
        }
    }
    auto binary = std::dynamic_pointer_cast<clsProtocolBinaryVar>(loaded.GetMessage(1)->GetVar(1));
    ASSERT_NE(binary, nullptr);
    EXPECT_EQ(binary->TextFor0(), L"OFF");
    EXPECT_EQ(binary->TextFor1(), L"ON");
    auto list = std::dynamic_pointer_cast<clsProtocolistTextVar>(loaded.GetMessage(1)->GetVar(2));
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->Texts(), (std::vector<std::wstring>{L"RED", L"GREEN", L"BLUE"}));
    auto time = std::dynamic_pointer_cast<clsProtocolTimeVar>(loaded.GetMessage(1)->GetVar(4));
    ASSERT_NE(time, nullptr);
    EXPECT_EQ(time->TimeFormatType(), 1);
    auto stream = std::dynamic_pointer_cast<clsProtocolNumericVar>(loaded.GetMessage(2)->GetVar(2));
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(stream->StreamForm(), 1);
    EXPECT_EQ(stream->StreamLengthAddress(), 12);
    auto checksum = std::dynamic_pointer_cast<clsProtocolCSVar>(loaded.GetMessage(2)->GetVar(3));
    ASSERT_NE(checksum, nullptr);
    EXPECT_EQ(checksum->SA_ToValue(), 200);
    auto endChecksum = std::dynamic_pointer_cast<clsProtocolCSVar>(loaded.SendChecksum());
    EXPECT_EQ(endChecksum->CalculationType(), 3);
    EXPECT_EQ(endChecksum->CSLength(), 2);
    EXPECT_EQ(loaded.CopyBytesCount(), 12);
    EXPECT_EQ(loaded.OpCopyDestination()->OperandAddress(), 300);
    EXPECT_EQ(loaded.OpMessageNumber()->OperandAddress(), 77);
    EXPECT_EQ(loaded.SendETXChars(), set.SendETXChars());
    EXPECT_EQ(loaded.EndOfSendMessageType(), 3);
}

TEST(SendImage, EveryFieldKindRoundTripsWithExtendedOperandsToo) {
    ScopedHostContext host;
    host->ExtendedOperands = true;
    clsEthProtocolSendSrv set;
    fillEveryFieldKind(set);
    Bytes image = set.BinaryData();
    EXPECT_EQ(image[24], 1);
    clsEthProtocolSendSrv loaded;
    loaded.BinaryData(image);
    EXPECT_EQ(loaded.BinaryData(), image);
}

TEST(SendImage, LengthIsAlwaysEvenWithASpareByteBehindTheLastMessage) {
    ScopedHostContext host;
    for (int32_t length = 1; length <= 8; ++length) {
        clsProtocolSendSrv set;
        putText(*set.GetMessage(1), 0, std::wstring(static_cast<size_t>(length), L'q'));
        Bytes image = set.BinaryData();
        // The message ends at 82 + 4 + length.
        size_t end = 82 + 4 + static_cast<size_t>(length);
        EXPECT_EQ(image.size() % 2, 0u) << length;
        EXPECT_GT(image.size(), end) << length;
        EXPECT_EQ(image.size(), end % 2 == 0 ? end + 2 : end + 1) << length;
    }
}

TEST(SendImage, LoadedMessagesAndFieldsOutliveTheSetTheyWereLoadedInto) {
    ScopedHostContext host;
    clsProtocolSendSrv source;
    source.AppendMessage();
    source.AppendMessage();
    putText(*source.GetMessage(1), 0, L"A");
    putText(*source.GetMessage(2), 0, L"AB");
    source.GetMessage(2)->AddVar(linkedNumeric(2, 9));
    putText(*source.GetMessage(3), 0, L"Z");
    const Bytes image = source.BinaryData();

    MessagePtr second;
    OperandPtr operand;
    const int64_t before = liveObjectCount();
    {
        clsProtocolSendSrv loaded;
        loaded.BinaryData(image);
        ASSERT_EQ(loaded.NumberOfMessages(), 3);
        second = loaded.GetMessage(2);
        auto numeric = std::dynamic_pointer_cast<clsProtocolNumericVar>(second->GetVar(1));
        ASSERT_TRUE(numeric);
        operand = numeric->LikedOperand();
    }
    EXPECT_EQ(second->MessageString().substr(0, 3), L"AB ");
    ASSERT_EQ(second->NumberOfVars(), 1);
    EXPECT_EQ(second->GetVar(1)->StartPosition(), 2);
    EXPECT_EQ(operand->OperandType(), 3);
    EXPECT_EQ(operand->OperandAddress(), 9);
    // What is still held keeps the component loaded.
    EXPECT_GT(liveObjectCount(), before);
    second.reset();
    operand.reset();
    EXPECT_EQ(liveObjectCount(), before);
}

}  // namespace
}  // namespace qx
