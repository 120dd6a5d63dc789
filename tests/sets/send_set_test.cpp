// The Send message set: its state at creation, its operands, the list
// operations with their questions and limits, the frame setters and the
// operand services for the host.
#include "sets/send_set.h"

#include <gtest/gtest.h>

#include "framework/runtime_catalogue.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_numeric_var.h"
#include "platform/host/fb_instances_double.h"
#include "platform/host/host_context.h"
#include "sets/set_test_support.h"

namespace qx {
namespace {

using test::putText;

std::vector<AllowedType> allowed(std::initializer_list<std::pair<int32_t, int32_t>> types) {
    std::vector<AllowedType> out;
    for (auto [mode, type] : types) out.push_back({mode, type, true});
    return out;
}

void fill(clsProtocolSendSrv& set, int32_t number, const std::wstring& text) {
    putText(*set.GetMessage(number), 0, text);
}

std::wstring textOf(clsProtocolSendSrv& set, int32_t number) {
    std::wstring text = set.GetMessage(number)->MessageString();
    return text.substr(0, text.find_last_not_of(L' ') + 1);
}

TEST(SendSet, NewSetHasOneEmptyMessageAndNothingToDownload) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    EXPECT_EQ(set.NumberOfMessages(), 1);
    EXPECT_TRUE(set.GetMessage(1)->IsEmpty());
    EXPECT_EQ(set.GetMessage(1)->MethodType(), 0);
    EXPECT_TRUE(set.GetNumberOfMessagesToDownload().IsEmpty());
    EXPECT_EQ(set.GetEmptyMessageNumber(), 0);
    EXPECT_EQ(set.GetMessageNumberWithLongSegment(), 0);
    EXPECT_EQ(set.ClipboardMessage(), nullptr);
}

TEST(SendSet, NewSetStartsWithItsInitialFrameAndSettings) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    EXPECT_EQ(set.EndOfSendMessageType(), 1);
    EXPECT_EQ(set.SendSTXLength(), 0);
    EXPECT_EQ(set.SendETXLength(), 0);
    EXPECT_EQ(set.SendSTXChars(), FrameChars{});
    EXPECT_EQ(set.SendETXChars(), FrameChars{});
    EXPECT_EQ(set.CopyBytesCount(), 0);
    EXPECT_EQ(set.ImageVersion(), 0);
    ASSERT_NE(std::dynamic_pointer_cast<clsProtocolCSVar>(set.SendChecksum()), nullptr);
}

TEST(SendSet, OperandsAreCreatedNewWithTheirModesTypesAndCaptions) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    const auto& number = *set.OpMessageNumber();
    EXPECT_TRUE(number.IsNew());
    EXPECT_EQ(number.OperandMode(), 2);
    EXPECT_EQ(number.OperandType(), 37);
    EXPECT_EQ(number.OperandCaption(), GetText(28));
    EXPECT_EQ(number.OperandTitle(), GetText(28));
    const auto& destination = *set.OpCopyDestination();
    EXPECT_TRUE(destination.IsNew());
    EXPECT_EQ(destination.OperandMode(), 1);
    EXPECT_EQ(destination.OperandType(), 3);
    EXPECT_EQ(destination.OperandCaption(), GetText(28));
    const auto& whenOn = *set.OpCopyWhenOn();
    EXPECT_TRUE(whenOn.IsNew());
    EXPECT_EQ(whenOn.OperandMode(), 1);
    EXPECT_EQ(whenOn.OperandType(), 1);
    EXPECT_EQ(whenOn.OperandCaption(), GetText(30));
    EXPECT_EQ(whenOn.OperandTitle(), GetText(30));
}

TEST(SendSet, AllowedTypesWithoutExtendedOperands) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    EXPECT_EQ(set.OpMessageNumber()->AllowedTypes(), allowed({{1, 3}, {2, 34}, {2, 37}}));
    EXPECT_EQ(set.OpCopyDestination()->AllowedTypes(), allowed({{1, 3}, {1, 5}, {1, 16}}));
    EXPECT_EQ(set.OpCopyWhenOn()->AllowedTypes(), allowed({{1, 1}}));
}

TEST(SendSet, AllowedTypesWithExtendedOperandsPutTheExtendedMessageNumberSecond) {
    ScopedHostContext host;
    host->ExtendedOperands = true;
    clsProtocolSendSrv set;
    EXPECT_EQ(set.OpMessageNumber()->AllowedTypes(), allowed({{1, 3}, {1, 65}, {2, 34}, {2, 37}}));
    EXPECT_EQ(set.OpCopyDestination()->AllowedTypes(), allowed({{1, 3}, {1, 5}, {1, 16}, {1, 65}, {1, 66}, {1, 67}}));
    EXPECT_EQ(set.OpCopyWhenOn()->AllowedTypes(), allowed({{1, 1}}));
}

TEST(EthSendSet, AllowedTypesWithExtendedOperandsPutTheExtendedMessageNumberLastAndAllowTheExtendedBit) {
    ScopedHostContext host;
    host->ExtendedOperands = true;
    clsEthProtocolSendSrv set;
    EXPECT_EQ(set.OpMessageNumber()->AllowedTypes(), allowed({{1, 3}, {2, 34}, {2, 37}, {1, 65}}));
    EXPECT_EQ(set.OpCopyDestination()->AllowedTypes(), allowed({{1, 3}, {1, 5}, {1, 16}, {1, 65}, {1, 66}, {1, 67}}));
    EXPECT_EQ(set.OpCopyWhenOn()->AllowedTypes(), allowed({{1, 1}, {1, 64}}));
}

TEST(EthSendSet, AllowedTypesWithoutExtendedOperandsAreThoseOfTheSerialSet) {
    ScopedHostContext host;
    clsEthProtocolSendSrv set;
    EXPECT_EQ(set.OpMessageNumber()->AllowedTypes(), allowed({{1, 3}, {2, 34}, {2, 37}}));
    EXPECT_EQ(set.OpCopyWhenOn()->AllowedTypes(), allowed({{1, 1}}));
}

TEST(SendSet, FilledMessagesOneAndThreeGiveThreeToDownloadAndGapTwo) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    set.AppendMessage();
    set.AppendMessage();
    set.AppendMessage();
    fill(set, 1, L"A");
    fill(set, 3, L"C");
    EXPECT_EQ(set.GetNumberOfMessagesToDownload(), Variant(int32_t{3}));
    EXPECT_EQ(set.GetEmptyMessageNumber(), 2);
}

TEST(SendSet, MessageWithOnlyAControlCharacterCountsForDownload) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    set.GetMessage(1)->AddControlChar(4, 13);
    EXPECT_EQ(set.GetNumberOfMessagesToDownload(), Variant(int32_t{1}));
}

TEST(SendSet, GetMessageGivesTheMessageItself) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    fill(set, 1, L"X");
    EXPECT_EQ(set.GetMessage(1), set.GetMessage(1));
    EXPECT_EQ(textOf(set, 1), L"X");
}

TEST(SendSet, PasteWithEmptyClipboardDoesNothing) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    fill(set, 1, L"KEEP");
    auto before = set.GetMessage(1);
    set.PasteMessage(1);
    EXPECT_EQ(set.NumberOfMessages(), 1);
    EXPECT_EQ(set.GetMessage(1), before);
    EXPECT_EQ(textOf(set, 1), L"KEEP");
}

TEST(SendSet, CopyLeavesAReplicaThatPastesAnyNumberOfTimes) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    set.AppendMessage();
    set.AppendMessage();
    fill(set, 1, L"HELLO");
    set.CopyMessage(1);
    ASSERT_NE(set.ClipboardMessage(), nullptr);
    EXPECT_NE(set.ClipboardMessage(), set.GetMessage(1));
    set.PasteMessage(2);
    set.PasteMessage(3);
    EXPECT_EQ(set.NumberOfMessages(), 3);
    EXPECT_EQ(textOf(set, 2), L"HELLO");
    EXPECT_EQ(textOf(set, 3), L"HELLO");
    EXPECT_NE(set.GetMessage(2), set.GetMessage(3));
    EXPECT_NE(set.GetMessage(2), set.ClipboardMessage());
    // The copy is a replica: changing the original later changes nothing pasted.
    fill(set, 1, L"OTHER");
    EXPECT_EQ(textOf(set, 2), L"HELLO");
}

TEST(SendSet, PasteInTheMiddleReplacesThatMessageInPlace) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    set.AppendMessage();
    set.AppendMessage();
    fill(set, 1, L"ONE");
    fill(set, 2, L"TWO");
    fill(set, 3, L"THREE");
    set.CopyMessage(3);
    set.PasteMessage(2);
    EXPECT_EQ(set.NumberOfMessages(), 3);
    EXPECT_EQ(textOf(set, 1), L"ONE");
    EXPECT_EQ(textOf(set, 2), L"THREE");
    EXPECT_EQ(textOf(set, 3), L"THREE");
}

TEST(SendSet, PasteAtTheLastPlaceKeepsTheCountAndLandsLast) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    set.AppendMessage();
    fill(set, 1, L"FIRST");
    fill(set, 2, L"SECOND");
    set.CopyMessage(1);
    set.PasteMessage(2);
    EXPECT_EQ(set.NumberOfMessages(), 2);
    EXPECT_EQ(textOf(set, 1), L"FIRST");
    EXPECT_EQ(textOf(set, 2), L"FIRST");
}

TEST(SendSet, CutTheOnlyMessageLeavesOneEmptyMessageAndTheClipboardFull) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    fill(set, 1, L"CUT");
    set.CutMessage(1);
    EXPECT_EQ(set.NumberOfMessages(), 1);
    EXPECT_TRUE(set.GetMessage(1)->IsEmpty());
    EXPECT_EQ(set.GetMessage(1)->MethodType(), 0);
    ASSERT_NE(set.ClipboardMessage(), nullptr);
    set.PasteMessage(1);
    EXPECT_EQ(textOf(set, 1), L"CUT");
}

TEST(SendSet, CutInTheMiddleLeavesAnEmptyMessageAtThatPlace) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    set.AppendMessage();
    set.AppendMessage();
    fill(set, 1, L"A");
    fill(set, 2, L"B");
    fill(set, 3, L"C");
    set.CutMessage(2);
    EXPECT_EQ(set.NumberOfMessages(), 3);
    EXPECT_EQ(textOf(set, 1), L"A");
    EXPECT_TRUE(set.GetMessage(2)->IsEmpty());
    EXPECT_EQ(textOf(set, 3), L"C");
}

TEST(SendSet, AppendAddsAnEmptyMessageAtTheEnd) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    fill(set, 1, L"A");
    EXPECT_TRUE(set.AppendMessage());
    EXPECT_EQ(set.NumberOfMessages(), 2);
    EXPECT_TRUE(set.GetMessage(2)->IsEmpty());
    EXPECT_TRUE(host->Messages.empty());
}

TEST(SendSet, The256thMessageIsRefusedWithMessage154AndParameter255) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    while (set.NumberOfMessages() < 255) ASSERT_TRUE(set.AppendMessage());
    EXPECT_TRUE(host->Messages.empty());
    EXPECT_FALSE(set.AppendMessage());
    EXPECT_EQ(set.NumberOfMessages(), 255);
    ASSERT_EQ(host->Messages.size(), 1u);
    EXPECT_EQ(host->Messages[0].Number, 154);
    EXPECT_EQ(host->Messages[0].Params, std::vector<std::wstring>{L"255"});
}

TEST(SendSet, InsertionsIntoAFullSetAreRefusedWithoutAsking) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    while (set.NumberOfMessages() < 255) set.AppendMessage();
    EXPECT_EQ(set.InsertMessageBefore(1), Variant(false));
    EXPECT_FALSE(set.InsertMessage(1));
    EXPECT_EQ(set.NumberOfMessages(), 255);
    ASSERT_EQ(host->Messages.size(), 2u);
    EXPECT_EQ(host->Messages[0].Number, 154);
    EXPECT_EQ(host->Messages[0].Params, std::vector<std::wstring>{L"255"});
    EXPECT_EQ(host->Messages[1].Number, 154);
}

TEST(SendSet, AFullSetCanStillBePastedInto) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    fill(set, 1, L"COPY");
    while (set.NumberOfMessages() < 255) set.AppendMessage();
    set.CopyMessage(1);
    set.PasteMessage(255);
    set.PasteMessage(100);
    EXPECT_EQ(set.NumberOfMessages(), 255);
    EXPECT_EQ(textOf(set, 255), L"COPY");
    EXPECT_EQ(textOf(set, 100), L"COPY");
    EXPECT_TRUE(host->Messages.empty());
}

TEST(SendSet, InsertBeforeAsks155AndAddsBeforeOnYes) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    set.AppendMessage();
    fill(set, 1, L"A");
    fill(set, 2, L"B");
    host->Script()->QueueAnswer(1);
    EXPECT_EQ(set.InsertMessageBefore(2), Variant(true));
    ASSERT_EQ(host->Messages.size(), 1u);
    EXPECT_EQ(host->Messages[0].Number, 155);
    EXPECT_EQ(set.NumberOfMessages(), 3);
    EXPECT_EQ(textOf(set, 1), L"A");
    EXPECT_TRUE(set.GetMessage(2)->IsEmpty());
    EXPECT_EQ(textOf(set, 3), L"B");
}

TEST(SendSet, InsertBeforeAnsweredNoChangesNothing) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    fill(set, 1, L"A");
    host->Script()->QueueAnswer(2);
    EXPECT_EQ(set.InsertMessageBefore(1), Variant(false));
    EXPECT_EQ(set.NumberOfMessages(), 1);
    EXPECT_EQ(textOf(set, 1), L"A");
}

TEST(SendSet, InsertAsks156AndAddsBehindOnYes) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    set.AppendMessage();
    fill(set, 1, L"A");
    fill(set, 2, L"B");
    host->Script()->QueueAnswer(1);
    EXPECT_TRUE(set.InsertMessage(1));
    ASSERT_EQ(host->Messages.size(), 1u);
    EXPECT_EQ(host->Messages[0].Number, 156);
    EXPECT_EQ(set.NumberOfMessages(), 3);
    EXPECT_EQ(textOf(set, 1), L"A");
    EXPECT_TRUE(set.GetMessage(2)->IsEmpty());
    EXPECT_EQ(textOf(set, 3), L"B");
}

TEST(SendSet, InsertBehindTheLastMessageAppends) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    fill(set, 1, L"A");
    EXPECT_TRUE(set.InsertMessage(1));
    EXPECT_EQ(set.NumberOfMessages(), 2);
    EXPECT_TRUE(set.GetMessage(2)->IsEmpty());
}

TEST(SendSet, InsertAnsweredNoChangesNothing) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    host->Script()->QueueAnswer(0);
    EXPECT_FALSE(set.InsertMessage(1));
    EXPECT_EQ(set.NumberOfMessages(), 1);
}

TEST(SendSet, DeleteAsks157AndMovesTheFollowingMessagesDown) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    set.AppendMessage();
    set.AppendMessage();
    fill(set, 1, L"A");
    fill(set, 2, L"B");
    fill(set, 3, L"C");
    host->Script()->QueueAnswer(1);
    EXPECT_TRUE(set.DeleteMessage(2));
    ASSERT_EQ(host->Messages.size(), 1u);
    EXPECT_EQ(host->Messages[0].Number, 157);
    EXPECT_EQ(set.NumberOfMessages(), 2);
    EXPECT_EQ(textOf(set, 1), L"A");
    EXPECT_EQ(textOf(set, 2), L"C");
}

TEST(SendSet, DeletingTheOnlyMessageLeavesOneEmptyMessage) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    fill(set, 1, L"ONLY");
    EXPECT_TRUE(set.DeleteMessage(1));
    EXPECT_EQ(set.NumberOfMessages(), 1);
    EXPECT_TRUE(set.GetMessage(1)->IsEmpty());
    EXPECT_EQ(set.GetMessage(1)->MethodType(), 0);
}

TEST(SendSet, DeleteAnsweredNoChangesNothing) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    fill(set, 1, L"ONLY");
    host->Script()->QueueAnswer(2);
    EXPECT_FALSE(set.DeleteMessage(1));
    EXPECT_EQ(textOf(set, 1), L"ONLY");
}

TEST(SendSet, ClearAllLeavesOneEmptyMessageAndKeepsFrameOperandsAndClipboard) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    set.AppendMessage();
    fill(set, 1, L"A");
    fill(set, 2, L"B");
    set.CopyMessage(2);
    set.SendSTXLength(1);
    set.SetSendSTXValue(0, 2, false);
    set.SendETXLength(2);
    set.SetSendETXValue(1, 3, true);
    set.EndOfSendMessageType(3);
    set.CopyBytesCount(4);
    test::linkOperand(*set.OpMessageNumber(), 3, 12);
    int32_t cleared = 0;
    set.OnMessagesCleared = [&] { ++cleared; };

    set.ClearAll();

    EXPECT_EQ(cleared, 1);
    EXPECT_EQ(set.NumberOfMessages(), 1);
    EXPECT_TRUE(set.GetMessage(1)->IsEmpty());
    EXPECT_EQ(set.SendSTXLength(), 1);
    EXPECT_EQ(set.SendSTXChars()[0], (FrameChar{2, false}));
    EXPECT_EQ(set.SendETXLength(), 2);
    EXPECT_EQ(set.SendETXChars()[1], (FrameChar{3, true}));
    EXPECT_EQ(set.EndOfSendMessageType(), 3);
    EXPECT_EQ(set.CopyBytesCount(), 4);
    EXPECT_EQ(set.OpMessageNumber()->OperandAddress(), 12);
    ASSERT_NE(set.ClipboardMessage(), nullptr);
    set.PasteMessage(1);
    EXPECT_EQ(textOf(set, 1), L"B");
}

TEST(SendSet, ClearSendETXZeroesTheEndCharactersAndResetsTheEndOfMessageButKeepsTheLength) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    set.SendETXLength(3);
    set.SetSendETXValue(0, 0x03, false);
    set.SetSendETXValue(2, 'X', true);
    set.EndOfSendMessageType(2);
    set.SetSendSTXValue(0, 0x02, false);
    set.ClearSendETX();
    EXPECT_EQ(set.SendETXChars(), FrameChars{});
    EXPECT_EQ(set.EndOfSendMessageType(), 1);
    EXPECT_EQ(set.SendETXLength(), 3);
    EXPECT_EQ(set.SendSTXChars()[0], (FrameChar{0x02, false}));
}

TEST(SendSet, ClearSendSTXZeroesTheStartCharactersAndKeepsTheLength) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    set.SendSTXLength(2);
    set.SetSendSTXValue(1, 'S', true);
    set.EndOfSendMessageType(3);
    set.ClearSendSTX();
    EXPECT_EQ(set.SendSTXChars(), FrameChars{});
    EXPECT_EQ(set.SendSTXLength(), 2);
    EXPECT_EQ(set.EndOfSendMessageType(), 3);
}

TEST(SendSet, FrameSettersWriteValueAndFlagAndRefuseAnIndexOutsideTheFour) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    set.SetSendSTXValue(3, 0x7F, true);
    set.SetSendETXValue(0, 0x0D, false);
    EXPECT_EQ(set.SendSTXChars()[3], (FrameChar{0x7F, true}));
    EXPECT_EQ(set.SendETXChars()[0], (FrameChar{0x0D, false}));
    EXPECT_EQ(test::runtimeErrorOf([&] { set.SetSendSTXValue(4, 1, true); }), err::SubscriptOutOfRange);
    EXPECT_EQ(test::runtimeErrorOf([&] { set.SetSendETXValue(-1, 1, true); }), err::SubscriptOutOfRange);
}

TEST(SendSet, FrameArraysAreHandedOutAsCopies) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    FrameChars copy = set.SendSTXChars();
    copy[0].Value = 9;
    EXPECT_EQ(set.SendSTXChars()[0].Value, 0);
}

TEST(SendSet, LongFixedTextIsFoundOnlyAbove255Characters) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    set.AppendMessage();
    fill(set, 1, L"A");
    fill(set, 2, std::wstring(255, L'x'));
    EXPECT_EQ(set.GetMessageNumberWithLongSegment(), 0);
    fill(set, 2, std::wstring(256, L'x'));
    EXPECT_EQ(set.GetMessageNumberWithLongSegment(), 2);
}

TEST(SendSet, LongFixedTextBehindTheLastMessageToDownloadIsNotLookedAt) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    fill(set, 1, std::wstring(300, L'x'));
    EXPECT_EQ(set.GetMessageNumberWithLongSegment(), 1);
    set.GetMessage(1)->MessageString(std::wstring(500, L' '));
    EXPECT_EQ(set.GetMessageNumberWithLongSegment(), 0);
}

TEST(SendSet, ReplaceOperandsMovesMatchingOperandsOfTheSetAndOfTheMessages) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    test::linkOperand(*set.OpMessageNumber(), 3, 7, 1);
    test::linkOperand(*set.OpCopyDestination(), 3, 7, 1);
    test::linkOperand(*set.OpCopyWhenOn(), 1, 7, 1);
    auto field = std::make_shared<clsProtocolNumericVar>();
    test::linkOperand(*field->LikedOperand(), 3, 7, 1);
    set.GetMessage(1)->AddVar(field);

    set.ReplaceOperands(1, 3, 7, 40);

    EXPECT_EQ(set.OpMessageNumber()->OperandAddress(), 40);
    EXPECT_EQ(set.OpCopyDestination()->OperandAddress(), 40);
    EXPECT_EQ(set.OpCopyWhenOn()->OperandAddress(), 7);  // another type
    EXPECT_EQ(field->LikedOperand()->OperandAddress(), 40);
}

TEST(SendSet, ReplaceOperandsLeavesAnOperandOfAnotherNetworkAlone) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    test::linkOperand(*set.OpMessageNumber(), 3, 7, 2);
    set.ReplaceOperands(1, 3, 7, 40);
    EXPECT_EQ(set.OpMessageNumber()->OperandAddress(), 7);
}

TEST(SendSet, OperandsForFindOnlyAreTheLinkedSetOperandsThenThoseOfEveryMessage) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    set.AppendMessage();
    test::linkOperand(*set.OpMessageNumber(), 3, 1);
    test::linkOperand(*set.OpCopyWhenOn(), 1, 2);
    auto field = std::make_shared<clsProtocolNumericVar>();
    test::linkOperand(*field->LikedOperand(), 5, 3);
    set.GetMessage(2)->AddVar(field);

    OperandCollection found;
    set.AddOperandsToFindOnly(found);

    ASSERT_EQ(found.Count(), 3);
    EXPECT_EQ(found.Item(L"1"), set.OpMessageNumber());
    EXPECT_EQ(found.Item(L"2"), set.OpCopyWhenOn());
    EXPECT_EQ(found.Item(L"3"), field->LikedOperand());
}

TEST(SendSet, OperandsForFindOnlyContinueTheKeysOfAFilledCollection) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    test::linkOperand(*set.OpCopyDestination(), 5, 9);
    OperandCollection found;
    found.Add(newOperand(), L"1");
    set.AddOperandsToFindOnly(found);
    ASSERT_EQ(found.Count(), 2);
    EXPECT_EQ(found.KeyAt(2), L"2");
    EXPECT_EQ(found.Item(2), set.OpCopyDestination());
}

TEST(SendSet, ShowHelpAsksForTheFamilysHelp) {
    ScopedHostContext host;
    clsEthProtocolSendSrv set;
    test::MethodStub method(170200, 3);
    auto instances = std::make_shared<FBInstancesDouble>();
    set.SetHostObjects(&method, instances);
    set.ShowHelp();
    EXPECT_EQ(instances->HelpShown, std::vector<int32_t>{170200});
}

TEST(SendSet, ShowHelpWithoutAnEditShowsNothing) {
    ScopedHostContext host;
    clsProtocolSendSrv set;
    set.ShowHelp();
    EXPECT_TRUE(host->Help.empty());
}

}  // namespace
}  // namespace qx
