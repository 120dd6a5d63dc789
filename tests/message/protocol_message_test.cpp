#include "message/protocol_message.h"

#include <gtest/gtest.h>

#include <vector>

#include "message/protocol_binary_var.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_date_var.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_time_var.h"
#include "message_test_support.h"
#include "platform/host/host_context.h"

namespace qx {
namespace {

using test::linkOperand;
using test::runtimeErrorOf;

class MessageTest : public ::testing::Test {
protected:
    ScopedHostContext context;

    // A field of the given span; a date field stands for any field here.
    static std::shared_ptr<clsProtocolDateVar> field(int32_t start, int32_t length) {
        auto var = std::make_shared<clsProtocolDateVar>();
        var->StartPosition(start);
        var->Length(length);
        return var;
    }

    static void type(clsProtocolMessage& message, int32_t at, const std::wstring& text) {
        for (wchar_t ch : text) message.InsertChar(at++, std::wstring(1, ch));
    }
};

TEST_F(MessageTest, NewMessageIs500BlanksWithoutControlCharacters) {
    clsProtocolMessage message;
    EXPECT_EQ(message.MessageString(), std::wstring(500, L' '));
    const auto controls = message.ControlChars();
    for (int32_t code : controls) EXPECT_EQ(code, -1);
    EXPECT_EQ(message.NumberOfVars(), 0);
    EXPECT_EQ(message.MessageLength(), 0);
    EXPECT_EQ(message.MethodType(), 0);
    EXPECT_TRUE(message.IsEmpty());
}

TEST_F(MessageTest, ReceiveBitIsAnUnlinkedBitOperand) {
    clsProtocolMessage message;
    const OperandPtr bit = message.ReceiveBit();
    ASSERT_TRUE(bit);
    EXPECT_EQ(test::allowedTypes(*bit), std::vector<int32_t>{1});
    EXPECT_EQ(bit->OperandType(), 1);
    EXPECT_EQ(bit->OperandMode(), 1);
    EXPECT_TRUE(bit->IsNew());
    EXPECT_EQ(bit->OperandFormat(), 3);
    EXPECT_EQ(message.ReceiveBit().get(), bit.get());
    EXPECT_EQ(message.GetReceiveBitAsString(), L"");
}

TEST_F(MessageTest, ReceiveBitOffersType64WithExtendedOperands) {
    context->ExtendedOperands = true;
    clsProtocolMessage message;
    EXPECT_EQ(test::allowedTypes(*message.ReceiveBit()), (std::vector<int32_t>{1, 64}));
}

TEST_F(MessageTest, EditReceiveBitRunsThePickerAndAnswersTheDisplayText) {
    clsProtocolMessage message;
    context->Script()->QueuePick(OperandChoice{1, 1, 5, 0, L"Start"});
    EXPECT_EQ(message.EditReceiveBit(), L"MB 5 : Start");
    EXPECT_EQ(message.ReceiveBit()->OperandAddress(), 5);
    EXPECT_FALSE(message.ReceiveBit()->IsNew());
    EXPECT_EQ(message.GetReceiveBitAsString(), L"MB 5 : Start");
}

TEST_F(MessageTest, EditReceiveBitCanceledLeavesItUnlinked) {
    clsProtocolMessage message;
    context->Script()->QueuePickCancel();
    EXPECT_EQ(message.EditReceiveBit(), L"");
    EXPECT_TRUE(message.ReceiveBit()->IsNew());
}

TEST_F(MessageTest, MessageStringIsStoredAsGiven) {
    clsProtocolMessage message;
    message.MessageString(L"short");
    EXPECT_EQ(message.MessageString(), L"short");
}

TEST_F(MessageTest, InsertCharPushesTextAndDropsTheLastCharacter) {
    clsProtocolMessage message;
    std::wstring text(500, L' ');
    text[0] = L'A';
    text[1] = L'B';
    text[499] = L'Z';
    message.MessageString(text);
    message.InsertChar(1, L"x");
    const std::wstring after = message.MessageString();
    EXPECT_EQ(after.size(), 500u);
    EXPECT_EQ(after.substr(0, 3), L"AxB");
    EXPECT_EQ(after[499], L' ');
}

TEST_F(MessageTest, InsertCharAt500OverwritesTheLastPositionAndMovesNothing) {
    clsProtocolMessage message;
    message.InsertChar(0, L"A");
    message.AddControlChar(10, 2);
    auto var = field(20, 3);
    message.AddVar(var);
    message.InsertChar(500, L"Q");
    EXPECT_EQ(message.MessageString()[0], L'A');
    EXPECT_EQ(message.MessageString()[499], L'Q');
    EXPECT_EQ(message.MessageString().size(), 500u);
    EXPECT_EQ(message.ControlChars()[10], 2);
    EXPECT_EQ(var->StartPosition(), 20);
}

TEST_F(MessageTest, InsertCharMovesControlCharactersWithTheText) {
    clsProtocolMessage message;
    message.AddControlChar(5, 13);
    message.AddControlChar(499, 10);
    message.InsertChar(5, L"x");
    const auto controls = message.ControlChars();
    EXPECT_EQ(controls[5], -1);
    EXPECT_EQ(controls[6], 13);
    EXPECT_EQ(controls[499], -1);  // the entry at 499 falls off
    EXPECT_EQ(message.MessageString()[5], L'x');
}

TEST_F(MessageTest, InsertingAFieldOfLength5At100MovesFieldsAndControlCharactersBehindIt) {
    clsProtocolMessage message;
    auto before = field(90, 10);  // ends at 99
    auto at = field(100, 2);
    auto later = field(150, 4);
    message.AddVar(before);
    message.AddVar(at);
    message.AddVar(later);
    message.AddControlChar(120, 3);
    message.AddControlChar(99, 4);
    message.InsertBlanks(100, 5);
    EXPECT_EQ(before->StartPosition(), 90);
    EXPECT_EQ(at->StartPosition(), 105);
    EXPECT_EQ(later->StartPosition(), 155);
    EXPECT_EQ(message.ControlChars()[99], 4);
    EXPECT_EQ(message.ControlChars()[120], -1);
    EXPECT_EQ(message.ControlChars()[125], 3);
}

TEST_F(MessageTest, TypingInsideAFieldMovesOnlyWhatStartsAtOrBehindIt) {
    clsProtocolMessage message;
    auto spanning = field(10, 5);
    auto behind = field(15, 1);
    message.AddVar(spanning);
    message.AddVar(behind);
    message.InsertChar(12, L"x");
    EXPECT_EQ(spanning->StartPosition(), 10);
    EXPECT_EQ(behind->StartPosition(), 16);
}

TEST_F(MessageTest, InsertingAt0WithAFieldAt499OfLength1BeepsAndRemovesIt) {
    clsProtocolMessage message;
    auto first = field(0, 2);
    auto last = std::make_shared<clsProtocolCSVar>();
    last->StartPosition(499);
    message.AddVar(first);
    message.AddVar(last);
    message.InsertChar(0, L"A");
    EXPECT_EQ(context->BeepCount, 1);
    ASSERT_EQ(message.NumberOfVars(), 1);
    EXPECT_EQ(message.GetVar(1).get(), first.get());
    EXPECT_EQ(first->StartPosition(), 1);
}

TEST_F(MessageTest, AFieldEndingExactlyAt500AfterInsertStays) {
    clsProtocolMessage message;
    auto last = field(495, 4);
    message.AddVar(last);
    message.InsertChar(0, L"A");
    EXPECT_EQ(context->BeepCount, 0);
    EXPECT_EQ(message.NumberOfVars(), 1);
    EXPECT_EQ(last->StartPosition(), 496);
}

TEST_F(MessageTest, InsertBlanksAtTheSamePositionCountTimes) {
    clsProtocolMessage message;
    type(message, 0, L"AB");
    message.InsertBlanks(1, 3);
    EXPECT_EQ(message.MessageString().substr(0, 6), L"A   B ");
}

TEST_F(MessageTest, DeletingAnyPositionUnderAFieldBeepsAndChangesNothing) {
    clsProtocolMessage message;
    type(message, 0, L"abc");
    auto var = field(10, 3);
    auto behind = field(20, 1);
    message.AddVar(var);
    message.AddVar(behind);
    message.AddControlChar(30, 7);
    const std::wstring text = message.MessageString();
    for (int32_t p = 10; p <= 12; ++p) message.DeleteByPosition(p);
    EXPECT_EQ(context->BeepCount, 3);
    EXPECT_EQ(message.MessageString(), text);
    EXPECT_EQ(var->StartPosition(), 10);
    EXPECT_EQ(behind->StartPosition(), 20);
    EXPECT_EQ(message.ControlChars()[30], 7);
}

TEST_F(MessageTest, DeletingRightAfterAFieldMovesEverythingBehindOneLeft) {
    clsProtocolMessage message;
    auto var = field(10, 3);
    auto behind = field(20, 1);
    message.AddVar(var);
    message.AddVar(behind);
    std::wstring text = message.MessageString();
    text[13] = L'x';
    text[14] = L'y';
    message.MessageString(text);
    message.AddControlChar(30, 7);
    message.DeleteByPosition(13);
    EXPECT_EQ(context->BeepCount, 0);
    EXPECT_EQ(var->StartPosition(), 10);
    EXPECT_EQ(behind->StartPosition(), 19);
    EXPECT_EQ(message.MessageString()[13], L'y');
    EXPECT_EQ(message.MessageString()[499], L' ');
    EXPECT_EQ(message.MessageString().size(), 500u);
    EXPECT_EQ(message.ControlChars()[29], 7);
    EXPECT_EQ(message.ControlChars()[30], -1);
}

TEST_F(MessageTest, DeletingAt0WithControlCharactersUpTo499LeavesTheLastCodeTwice) {
    clsProtocolMessage message;
    clsProtocolMessage::ControlCharArray controls;
    for (int32_t i = 0; i < 500; ++i) controls[i] = i % 32;
    message.ControlChars(controls);
    message.DeleteByPosition(0);
    const auto after = message.ControlChars();
    EXPECT_EQ(after[0], 1);
    EXPECT_EQ(after[497], 498 % 32);
    EXPECT_EQ(after[498], 499 % 32);
    EXPECT_EQ(after[499], 499 % 32);
}

TEST_F(MessageTest, DeletingAt499ClearsOnlyThatEntry) {
    clsProtocolMessage message;
    message.AddControlChar(498, 5);
    message.AddControlChar(499, 6);
    std::wstring text = message.MessageString();
    text[499] = L'Z';
    message.MessageString(text);
    message.DeleteByPosition(499);
    EXPECT_EQ(message.ControlChars()[498], 5);
    EXPECT_EQ(message.ControlChars()[499], -1);
    EXPECT_EQ(message.MessageString()[499], L' ');
    EXPECT_EQ(message.MessageString().size(), 500u);
}

TEST_F(MessageTest, PositionsOutsideTheRowRaiseSubscriptError) {
    clsProtocolMessage message;
    EXPECT_EQ(runtimeErrorOf([&] { message.DeleteByPosition(500); }), err::SubscriptOutOfRange);
    EXPECT_EQ(runtimeErrorOf([&] { message.InsertChar(501, L"x"); }), err::SubscriptOutOfRange);
    EXPECT_EQ(runtimeErrorOf([&] { message.AddControlChar(-1, 2); }), err::SubscriptOutOfRange);
    EXPECT_EQ(runtimeErrorOf([&] { message.ControlCharHitTest(500); }), err::SubscriptOutOfRange);
    EXPECT_EQ(message.MessageString(), std::wstring(500, L' '));
}

TEST_F(MessageTest, DeleteSelectedVarLeavesBlanksThatBecomeFixedText) {
    clsProtocolMessage message;
    auto var = field(2, 3);
    message.AddVar(var);
    type(message, 5, L"Z");
    var->IsSelected(true);
    message.DeleteSelectedVar();
    EXPECT_EQ(message.NumberOfVars(), 0);
    const auto segments = message.GetSegments();
    ASSERT_EQ(segments.size(), 1u);
    EXPECT_EQ(segments[0].SegmentKind, 0);
    EXPECT_EQ(segments[0].StartPosition, 0);
    EXPECT_EQ(segments[0].Chars, (std::vector<int32_t>{32, 32, 32, 32, 32, 'Z'}));
}

TEST_F(MessageTest, DeleteSelectedVarRemovesOnlyTheFirstSelected) {
    clsProtocolMessage message;
    auto a = field(0, 1);
    auto b = field(1, 1);
    auto c = field(2, 1);
    message.AddVar(a);
    message.AddVar(b);
    message.AddVar(c);
    b->IsSelected(true);
    c->IsSelected(true);
    message.DeleteSelectedVar();
    ASSERT_EQ(message.NumberOfVars(), 2);
    EXPECT_EQ(message.GetVar(1).get(), a.get());
    EXPECT_EQ(message.GetVar(2).get(), c.get());
    message.UnSelectAllVars();
    message.DeleteSelectedVar();
    EXPECT_EQ(message.NumberOfVars(), 2);
    EXPECT_FALSE(c->IsSelected());
}

TEST_F(MessageTest, AddControlCharOverwritesTextAndMovesNothing) {
    clsProtocolMessage message;
    type(message, 0, L"ABC");
    message.AddControlChar(1, 2);
    EXPECT_EQ(message.MessageString().substr(0, 4), L"A C ");
    EXPECT_EQ(message.ControlChars()[1], 2);
    EXPECT_TRUE(message.ControlCharHitTest(1));
    EXPECT_FALSE(message.ControlCharHitTest(0));
}

TEST_F(MessageTest, ControlCharacterZeroCountsAsOne) {
    clsProtocolMessage message;
    message.AddControlChar(3, 0);
    EXPECT_TRUE(message.ControlCharHitTest(3));
    EXPECT_EQ(message.GetLastControlCharEnd(), 4);
}

TEST_F(MessageTest, DeleteControlCharLeavesTheBlank) {
    clsProtocolMessage message;
    message.AddControlChar(3, 27);
    type(message, 4, L"X");
    message.DeleteControlChar(3);
    EXPECT_FALSE(message.ControlCharHitTest(3));
    const auto segments = message.GetSegments();
    ASSERT_EQ(segments.size(), 1u);
    EXPECT_EQ(segments[0].Chars, (std::vector<int32_t>{32, 32, 32, 32, 'X'}));
}

TEST_F(MessageTest, IsEmptyIsFalseForOneControlCharacterAloneOrTextOrAField) {
    clsProtocolMessage control;
    control.AddControlChar(0, 13);
    EXPECT_FALSE(control.IsEmpty());
    clsProtocolMessage text;
    type(text, 200, L"x");
    EXPECT_FALSE(text.IsEmpty());
    clsProtocolMessage withField;
    withField.AddVar(field(0, 1));
    EXPECT_FALSE(withField.IsEmpty());
    clsProtocolMessage blanks;
    blanks.InsertBlanks(0, 10);
    EXPECT_TRUE(blanks.IsEmpty());
}

TEST_F(MessageTest, TwoLettersAndAControlCharacterAt5GiveOneSegmentOfSixValues) {
    clsProtocolMessage message;
    type(message, 0, L"AB");
    message.AddControlChar(5, 13);
    const auto segments = message.GetSegments();
    ASSERT_EQ(segments.size(), 1u);
    EXPECT_EQ(segments[0].SegmentKind, 0);
    EXPECT_EQ(segments[0].StartPosition, 0);
    EXPECT_FALSE(segments[0].Var);
    EXPECT_EQ(segments[0].Chars, (std::vector<int32_t>{65, 66, 32, 32, 32, 13}));
}

TEST_F(MessageTest, GetSegmentsOfAnEmptyMessageRaisesSubscriptError) {
    clsProtocolMessage message;
    EXPECT_EQ(runtimeErrorOf([&] { message.GetSegments(); }), err::SubscriptOutOfRange);
    EXPECT_EQ(runtimeErrorOf([&] { message.IsMessageContainConstText(); }), err::SubscriptOutOfRange);
}

TEST_F(MessageTest, SegmentsAlternateTextAndFieldsAndShareTheFields) {
    clsProtocolMessage message;
    type(message, 0, L"T=");
    auto first = field(2, 3);
    auto second = field(5, 2);
    message.AddVar(first);
    message.AddVar(second);
    type(message, 7, L"\u00e9");
    message.AddControlChar(9, 3);
    const auto segments = message.GetSegments();
    ASSERT_EQ(segments.size(), 4u);
    EXPECT_EQ(segments[0].SegmentKind, 0);
    EXPECT_EQ(segments[0].Chars, (std::vector<int32_t>{'T', '='}));
    EXPECT_EQ(segments[1].SegmentKind, 1);
    EXPECT_EQ(segments[1].Var.get(), first.get());
    EXPECT_EQ(segments[1].StartPosition, 2);
    EXPECT_TRUE(segments[1].Chars.empty());
    EXPECT_EQ(segments[2].SegmentKind, 1);
    EXPECT_EQ(segments[2].Var.get(), second.get());
    EXPECT_EQ(segments[2].StartPosition, 5);
    EXPECT_EQ(segments[3].SegmentKind, 0);
    EXPECT_EQ(segments[3].StartPosition, 7);
    EXPECT_EQ(segments[3].Chars, (std::vector<int32_t>{0xE9, 32, 3}));
}

TEST_F(MessageTest, TrailingBlanksBelongToNoSegment) {
    clsProtocolMessage message;
    message.AddVar(field(0, 4));
    type(message, 4, L"ok");
    message.InsertBlanks(6, 3);
    const auto segments = message.GetSegments();
    ASSERT_EQ(segments.size(), 2u);
    EXPECT_EQ(segments[1].Chars, (std::vector<int32_t>{'o', 'k'}));

    clsProtocolMessage onlyField;
    onlyField.AddVar(field(3, 4));
    const auto fieldOnly = onlyField.GetSegments();
    ASSERT_EQ(fieldOnly.size(), 2u);
    EXPECT_EQ(fieldOnly[0].Chars, (std::vector<int32_t>{32, 32, 32}));  // leading blanks are text
    EXPECT_EQ(fieldOnly[1].SegmentKind, 1);
}

TEST_F(MessageTest, SegmentSpansAreTheSegmentsWithoutTheirCharacters) {
    clsProtocolMessage message;
    type(message, 0, L"T=");
    auto first = field(2, 3);
    message.AddVar(first);
    type(message, 5, L"\u00e9x");
    message.AddControlChar(8, 3);
    std::vector<SegmentSpan> spans{{1, 99, 99, first}};  // what was in the list goes
    message.segmentSpans(spans);
    ASSERT_EQ(spans.size(), 3u);
    EXPECT_EQ(spans[0].SegmentKind, 0);
    EXPECT_EQ(spans[0].StartPosition, 0);
    EXPECT_EQ(spans[0].Count, 2);
    EXPECT_FALSE(spans[0].Var);
    EXPECT_EQ(spans[1].SegmentKind, 1);
    EXPECT_EQ(spans[1].StartPosition, 2);
    EXPECT_EQ(spans[1].Count, 0);
    EXPECT_EQ(spans[1].Var.get(), first.get());
    EXPECT_EQ(spans[2].StartPosition, 5);
    EXPECT_EQ(spans[2].Count, 4);

    const auto segments = message.GetSegments();
    ASSERT_EQ(segments.size(), spans.size());
    for (size_t i = 0; i < spans.size(); ++i) {
        if (spans[i].SegmentKind != 0) continue;
        std::vector<uint8_t> bytes(static_cast<size_t>(spans[i].Count));
        message.textBytes(spans[i].StartPosition, spans[i].Count, bytes.data());
        EXPECT_EQ(std::vector<int32_t>(bytes.begin(), bytes.end()), segments[i].Chars) << i;
    }
}

TEST_F(MessageTest, TextBytesGiveControlCodesAnsiBytesAndBlanksPastAShortText) {
    clsProtocolMessage message;
    message.MessageString(L"A\u20AC");  // stored as given: two characters only
    message.AddControlChar(3, 0);
    std::vector<uint8_t> bytes(5, 0xEE);
    message.textBytes(0, 5, bytes.data());
    EXPECT_EQ(bytes, (std::vector<uint8_t>{'A', 0x80, ' ', 0, ' '}));
    message.textBytes(499, 1, bytes.data());
    EXPECT_EQ(bytes[0], ' ');
}

TEST_F(MessageTest, TextBytesRefuseARangeOutsideTheRowAndACodeThatIsNoByte) {
    clsProtocolMessage message;
    std::vector<uint8_t> bytes(600);
    EXPECT_EQ(runtimeErrorOf([&] { message.textBytes(-1, 2, bytes.data()); }), err::SubscriptOutOfRange);
    EXPECT_EQ(runtimeErrorOf([&] { message.textBytes(499, 2, bytes.data()); }), err::SubscriptOutOfRange);
    EXPECT_EQ(runtimeErrorOf([&] { message.textBytes(0, 501, bytes.data()); }), err::SubscriptOutOfRange);
    message.AddControlChar(7, 256);
    EXPECT_EQ(runtimeErrorOf([&] { message.textBytes(0, 8, bytes.data()); }), err::Overflow);
    message.AddControlChar(7, -2);
    EXPECT_EQ(runtimeErrorOf([&] { message.textBytes(0, 8, bytes.data()); }), err::Overflow);
    message.AddControlChar(7, 255);
    message.textBytes(0, 8, bytes.data());
    EXPECT_EQ(bytes[7], 255);
}

TEST_F(MessageTest, SetTextBytesPutsCharactersAndControlCodesAtTheirPositions) {
    clsProtocolMessage message;
    const uint8_t values[] = {'H', 0x80, 13, 31, 32, 0xFF};
    message.setTextBytes(10, values, 6);
    EXPECT_EQ(message.MessageString().substr(8, 10), std::wstring(L"  H\u20AC   \u00FF  "));
    const auto controls = message.ControlChars();
    EXPECT_EQ(controls[11], -1);
    EXPECT_EQ(controls[12], 13);
    EXPECT_EQ(controls[13], 31);
    EXPECT_EQ(controls[14], -1);
    EXPECT_EQ(controls[9], -1);
    std::vector<uint8_t> back(6);
    message.textBytes(10, 6, back.data());
    EXPECT_EQ(back, std::vector<uint8_t>(std::begin(values), std::end(values)));

    EXPECT_EQ(runtimeErrorOf([&] { message.setTextBytes(495, values, 6); }), err::SubscriptOutOfRange);
    EXPECT_EQ(runtimeErrorOf([&] { message.setTextBytes(-1, values, 1); }), err::SubscriptOutOfRange);

    clsProtocolMessage shortText;
    shortText.MessageString(L"ab");
    shortText.setTextBytes(4, values, 1);
    EXPECT_EQ(shortText.MessageString(), L"ab  H" + std::wstring(495, L' '));
}

TEST_F(MessageTest, IsMessageContainConstTextAsksTheSegments) {
    clsProtocolMessage onlyField;
    onlyField.AddVar(field(0, 4));
    EXPECT_FALSE(onlyField.IsMessageContainConstText());
    onlyField.AddControlChar(4, 2);
    EXPECT_TRUE(onlyField.IsMessageContainConstText());
}

TEST_F(MessageTest, IsMessageContainCSFieldsLooksForAChecksumField) {
    clsProtocolMessage message;
    message.AddVar(field(0, 2));
    EXPECT_FALSE(message.IsMessageContainCSFields());
    auto cs = std::make_shared<clsProtocolCSVar>();
    cs->StartPosition(2);
    message.AddVar(cs);
    EXPECT_TRUE(message.IsMessageContainCSFields());
}

TEST_F(MessageTest, HitTestSelectsTheFieldUnderThePositionOnly) {
    clsProtocolMessage message;
    auto a = field(0, 3);
    auto b = field(5, 2);
    message.AddVar(a);
    message.AddVar(b);
    a->IsSelected(true);
    EXPECT_TRUE(message.HitTest(6));
    EXPECT_FALSE(a->IsSelected());
    EXPECT_TRUE(b->IsSelected());
    EXPECT_FALSE(message.HitTest(4));
    EXPECT_FALSE(a->IsSelected());
    EXPECT_FALSE(b->IsSelected());
}

TEST_F(MessageTest, GetVarByStartPositionAnswersTheLastMatchOrNothing) {
    clsProtocolMessage message;
    auto a = field(4, 1);
    auto b = field(4, 1);
    message.AddVar(a);
    message.AddVar(b);
    EXPECT_EQ(message.GetVarByStartPosition(4).get(), b.get());
    EXPECT_EQ(message.GetVarByStartPosition(5), nullptr);
}

TEST_F(MessageTest, GetVarAndLastStartRaiseTheCollectionErrorOnABadIndex) {
    clsProtocolMessage message;
    EXPECT_EQ(runtimeErrorOf([&] { message.GetLastVarStartPosition(); }), err::InvalidProcedureCall);
    EXPECT_EQ(runtimeErrorOf([&] { message.GetVar(1); }), err::InvalidProcedureCall);
    message.AddVar(field(3, 1));
    message.AddVar(field(9, 1));
    EXPECT_EQ(message.GetLastVarStartPosition(), 9);
    EXPECT_EQ(runtimeErrorOf([&] { message.GetVar(0); }), err::InvalidProcedureCall);
    EXPECT_EQ(runtimeErrorOf([&] { message.GetVar(3); }), err::InvalidProcedureCall);
}

TEST_F(MessageTest, AddVarAppendsAsItIs) {
    clsProtocolMessage message;
    auto later = field(10, 1);
    auto earlier = field(2, 1);
    message.AddVar(later);
    message.AddVar(earlier);
    EXPECT_EQ(message.NumberOfVars(), 2);
    EXPECT_EQ(message.GetVar(1).get(), later.get());
    EXPECT_EQ(message.GetVar(2).get(), earlier.get());
    EXPECT_EQ(message.MessageString(), std::wstring(500, L' '));
}

TEST_F(MessageTest, LastControlCharEndAndControlCharsAfterAPosition) {
    clsProtocolMessage message;
    EXPECT_EQ(message.GetLastControlCharEnd(), -1);
    EXPECT_FALSE(message.IsControlCharsExistAfterPosition(0));
    message.AddControlChar(7, 1);
    message.AddControlChar(499, 4);
    EXPECT_EQ(message.GetLastControlCharEnd(), 500);
    EXPECT_TRUE(message.IsControlCharsExistAfterPosition(499));
    message.DeleteControlChar(499);
    EXPECT_EQ(message.GetLastControlCharEnd(), 8);
    EXPECT_TRUE(message.IsControlCharsExistAfterPosition(7));
    EXPECT_FALSE(message.IsControlCharsExistAfterPosition(8));
}

TEST_F(MessageTest, ControlCharsGoInAndOutAsCopies) {
    clsProtocolMessage message;
    auto controls = message.ControlChars();
    controls[3] = 9;
    EXPECT_EQ(message.ControlChars()[3], -1);
    message.ControlChars(controls);
    controls[3] = 10;
    EXPECT_EQ(message.ControlChars()[3], 9);
}

TEST_F(MessageTest, GetVarPropsAtAnswersThatFieldsProperties) {
    clsProtocolMessage message;
    message.AddVar(field(0, 2));
    auto cs = std::make_shared<clsProtocolCSVar>();
    cs->StartPosition(2);
    cs->CSLength(2);
    cs->IsSelected(true);
    message.AddVar(cs);
    int32_t start = 0, length = 0;
    bool selected = false;
    std::wstring display, tip;
    uint32_t back = 0, fore = 1;
    message.GetVarPropsAt(2, start, length, selected, display, tip, back, fore);
    EXPECT_EQ(start, 2);
    EXPECT_EQ(length, 2);
    EXPECT_TRUE(selected);
    EXPECT_EQ(back, 0xFFC0C0u);
    EXPECT_EQ(fore, 0u);
    EXPECT_EQ(runtimeErrorOf([&] { message.GetVarPropsAt(3, start, length, selected, display, tip, back, fore); }),
              err::InvalidProcedureCall);
}

TEST_F(MessageTest, ReplicaSharesNoFieldAndNoOperand) {
    clsProtocolMessage message;
    type(message, 0, L"Hi");
    message.AddControlChar(2, 13);
    message.MessageLength(40);
    message.MethodType(1);
    linkOperand(*message.ReceiveBit(), 1, 4);
    auto numeric = std::make_shared<clsProtocolNumericVar>();
    numeric->StartPosition(3);
    numeric->BeforePoint(3);
    linkOperand(*numeric->LikedOperand(), 3, 12);
    auto time = std::make_shared<clsProtocolTimeVar>();
    time->StartPosition(10);
    message.AddVar(numeric);
    message.AddVar(time);

    const MessagePtr replica = message.GetReplica();
    ASSERT_TRUE(replica);
    EXPECT_EQ(replica->MessageString(), message.MessageString());
    EXPECT_EQ(replica->ControlChars(), message.ControlChars());
    EXPECT_EQ(replica->MessageLength(), 40);
    EXPECT_EQ(replica->MethodType(), 1);
    EXPECT_NE(replica->ReceiveBit().get(), message.ReceiveBit().get());
    EXPECT_EQ(replica->ReceiveBit()->OperandAddress(), 4);
    ASSERT_EQ(replica->NumberOfVars(), 2);
    auto numericCopy = std::dynamic_pointer_cast<clsProtocolNumericVar>(replica->GetVar(1));
    ASSERT_TRUE(numericCopy);
    EXPECT_NE(numericCopy.get(), numeric.get());
    EXPECT_NE(numericCopy->LikedOperand().get(), numeric->LikedOperand().get());
    EXPECT_EQ(numericCopy->LikedOperand()->OperandAddress(), 12);
    EXPECT_EQ(numericCopy->StartPosition(), 3);
    EXPECT_EQ(numericCopy->Length(), 4);
    auto timeCopy = std::dynamic_pointer_cast<clsProtocolTimeVar>(replica->GetVar(2));
    ASSERT_TRUE(timeCopy);
    EXPECT_NE(timeCopy.get(), time.get());

    replica->InsertChar(0, L"x");
    EXPECT_EQ(numeric->StartPosition(), 3);
    EXPECT_EQ(message.MessageString().substr(0, 2), L"Hi");
}

TEST_F(MessageTest, FindOnlyCollectsTheOperandsOfEveryFieldInOrder) {
    clsProtocolMessage message;
    auto numeric = std::make_shared<clsProtocolNumericVar>();
    linkOperand(*numeric->LikedOperand(), 3, 1);
    auto date = field(5, 8);
    auto binary = std::make_shared<clsProtocolBinaryVar>();
    binary->StartPosition(13);
    linkOperand(*binary->LikedOperand(), 1, 2);
    message.AddVar(numeric);
    message.AddVar(date);
    message.AddVar(binary);
    OperandCollection found;
    message.AddOperandsToFindOnlyCollection(found);
    ASSERT_EQ(found.Count(), 2);
    EXPECT_EQ(found.Item(L"1").get(), numeric->LikedOperand().get());
    EXPECT_EQ(found.Item(L"2").get(), binary->LikedOperand().get());
}

TEST_F(MessageTest, ReplaceOperandsReachesEveryField) {
    clsProtocolMessage message;
    auto a = std::make_shared<clsProtocolNumericVar>();
    auto b = std::make_shared<clsProtocolNumericVar>();
    linkOperand(*a->LikedOperand(), 3, 7);
    linkOperand(*b->LikedOperand(), 3, 7);
    message.AddVar(a);
    message.AddVar(b);
    message.ReplaceOperands(0, 3, 7, 8);
    EXPECT_EQ(a->LikedOperand()->OperandAddress(), 8);
    EXPECT_EQ(b->LikedOperand()->OperandAddress(), 8);
}

TEST_F(MessageTest, ATextLongerThanTheRowIsKeptAsGivenAndOnlyItsRowIsRead) {
    clsProtocolMessage message;
    const std::wstring given = std::wstring(499, L'a') + L"bcd";
    message.MessageString(given);
    EXPECT_EQ(message.MessageString(), given);
    EXPECT_FALSE(message.IsEmpty());
    std::vector<uint8_t> bytes(2);
    message.textBytes(498, 2, bytes.data());
    EXPECT_EQ(bytes, (std::vector<uint8_t>{'a', 'b'}));
    // Characters past the row make the trimmed text longer than the row.
    EXPECT_EQ(runtimeErrorOf([&] { message.GetSegments(); }), err::SubscriptOutOfRange);

    // Typing into it keeps the typed character and the first 499 behind it.
    message.InsertChar(0, L"x");
    EXPECT_EQ(message.MessageString(), L"x" + std::wstring(499, L'a'));
    message.MessageString(given);
    message.DeleteByPosition(0);
    EXPECT_EQ(message.MessageString(), std::wstring(498, L'a') + L"bcd ");
    message.AddControlChar(1, 2);
    EXPECT_EQ(message.MessageString().substr(0, 3), L"a a");
}

TEST_F(MessageTest, AShortTextGrowsOnlyAsTypingAndDeletingMakeIt) {
    clsProtocolMessage message;
    message.MessageString(L"ab");
    message.InsertChar(1, L"xy");
    EXPECT_EQ(message.MessageString(), L"axyb");
    message.DeleteByPosition(0);
    EXPECT_EQ(message.MessageString(), L"xyb ");
    message.DeleteByPosition(10);
    EXPECT_EQ(message.MessageString(), L"xyb  ");
    message.InsertChar(500, L"z");  // behind a short text: nothing to overwrite
    EXPECT_EQ(message.MessageString(), L"xyb  ");
}

TEST_F(MessageTest, AWholeRowTypedAndDeletedInPlaceGivesWhatTheTextRulesGive) {
    clsProtocolMessage message;
    std::wstring text(500, L' ');
    for (size_t i = 0; i < text.size(); ++i) text[i] = static_cast<wchar_t>(L'A' + i % 26);
    message.MessageString(text);
    message.InsertChar(3, L"#");
    EXPECT_EQ(message.MessageString(), text.substr(0, 3) + L"#" + text.substr(3, 496));
    message.DeleteByPosition(3);
    EXPECT_EQ(message.MessageString(), text.substr(0, 499) + L" ");
    message.DeleteByPosition(499);
    EXPECT_EQ(message.MessageString(), text.substr(0, 499) + L" ");
    message.InsertChar(499, L"!");
    EXPECT_EQ(message.MessageString(), text.substr(0, 499) + L"!");
}

TEST_F(MessageTest, SetTextBytesOfPlainAsciiTakesTheCharactersAsTheyAre) {
    clsProtocolMessage message;
    const uint8_t values[] = {'H', 'i', 13, '~', ' ', 0};
    message.setTextBytes(0, values, 6);
    EXPECT_EQ(message.MessageString().substr(0, 7), L"Hi ~   ");
    const auto controls = message.ControlChars();
    EXPECT_EQ(controls[2], 13);
    EXPECT_EQ(controls[5], 0);
    EXPECT_EQ(controls[3], -1);
    EXPECT_EQ(controls[4], -1);
}

TEST_F(MessageTest, ManyFieldsKeepTheirOrderThroughAddAndRemove) {
    clsProtocolMessage message;
    std::vector<std::shared_ptr<clsProtocolDateVar>> fields;
    for (int32_t i = 0; i < 50; ++i) {
        fields.push_back(field(i * 9, 9));
        message.AddVar(fields.back());
    }
    ASSERT_EQ(message.NumberOfVars(), 50);
    for (int32_t i = 1; i <= 50; ++i) EXPECT_EQ(message.GetVar(i).get(), fields[static_cast<size_t>(i - 1)].get());
    EXPECT_EQ(message.GetLastVarStartPosition(), 49 * 9);
    // The 1st and then the 49th are removed through the selection.
    fields[0]->IsSelected(true);
    message.DeleteSelectedVar();
    fields[49]->IsSelected(true);
    message.DeleteSelectedVar();
    ASSERT_EQ(message.NumberOfVars(), 48);
    EXPECT_EQ(message.GetVar(1).get(), fields[1].get());
    EXPECT_EQ(message.GetVar(48).get(), fields[48].get());
    EXPECT_EQ(runtimeErrorOf([&] { message.GetVar(49); }), err::InvalidProcedureCall);

    clsProtocolMessage few;
    for (int32_t i = 0; i < 3; ++i) few.AddVar(field(i * 5, 5));
    few.GetVar(2)->IsSelected(true);
    few.DeleteSelectedVar();
    ASSERT_EQ(few.NumberOfVars(), 2);
    EXPECT_EQ(few.GetVar(2)->StartPosition(), 10);
    EXPECT_EQ(runtimeErrorOf([&] { few.GetVar(0); }), err::InvalidProcedureCall);
}

TEST_F(MessageTest, TheReceiveBitTakesTheSettingAsItWasWhenTheMessageWasMade) {
    clsProtocolMessage plain;
    context->ExtendedOperands = true;
    clsProtocolMessage extended;
    EXPECT_EQ(test::allowedTypes(*plain.ReceiveBit()), (std::vector<int32_t>{1}));
    context->ExtendedOperands = false;
    EXPECT_EQ(test::allowedTypes(*extended.ReceiveBit()), (std::vector<int32_t>{1, 64}));
    // A replica of a message whose bit nobody asked for offers the same.
    const MessagePtr replica = extended.GetReplica();
    EXPECT_EQ(test::allowedTypes(*replica->ReceiveBit()), (std::vector<int32_t>{1, 64}));
    EXPECT_EQ(extended.GetReceiveBitAsString(), L"");
}

}  // namespace
}  // namespace qx
