// The Scan message set: what it keeps beside the messages, the question of
// messages without fixed text, and where it differs from the Send set.
#include "sets/scan_set.h"

#include <gtest/gtest.h>

#include "message/protocol_cs_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "platform/host/fb_instances_double.h"
#include "platform/host/host_context.h"
#include "sets/set_test_support.h"

namespace qx {
namespace {

using test::putText;

VarPtr numericField(int32_t start) {
    auto field = std::make_shared<clsProtocolScanNumericVar>();
    field->StartPosition(start);
    return field;
}

std::wstring textOf(clsProtocolScanSrv& set, int32_t number) {
    std::wstring text = set.GetMessage(number)->MessageString();
    return text.substr(0, text.find_last_not_of(L' ') + 1);
}

TEST(ScanSet, NewSetHasOneEmptyScanMessageAndItsInitialTerminators) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    EXPECT_EQ(set.NumberOfMessages(), 1);
    EXPECT_TRUE(set.GetMessage(1)->IsEmpty());
    EXPECT_EQ(set.GetMessage(1)->MethodType(), 1);
    EXPECT_TRUE(set.GetNumberOfMessagesToDownload().IsEmpty());
    EXPECT_EQ(set.GetEmptyMessageNumber(), 0);
    EXPECT_EQ(set.MessageLengthValue(), 1);
    EXPECT_EQ(set.SilenceTimeValue(), 0);
    EXPECT_EQ(set.EndOfScanMessageType(), 1);
    EXPECT_EQ(set.ScanSTXLength(), 0);
    EXPECT_EQ(set.ScanETXLength(), 0);
    EXPECT_EQ(set.ScanSTXChars(), FrameChars{});
    EXPECT_EQ(set.ScanETXChars(), FrameChars{});
    EXPECT_EQ(set.ImageVersion(), 0);
    ASSERT_NE(std::dynamic_pointer_cast<clsProtocolCSVar>(set.ScanChecksum()), nullptr);
}

TEST(EthScanSet, MessageLengthValueStartsAtZero) {
    ScopedHostContext host;
    clsEthProtocolScanSrv set;
    EXPECT_EQ(set.MessageLengthValue(), 0);
    EXPECT_EQ(set.SilenceTimeValue(), 0);
    EXPECT_EQ(set.GetMessage(1)->MethodType(), 1);
}

TEST(ScanSet, NewMessagesOfEveryOperationAreScanMessages) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    putText(*set.GetMessage(1), 0, L"A");
    set.AppendMessage();
    set.InsertMessage(1);
    set.InsertMessageBefore(1);
    set.CutMessage(2);
    for (int32_t number = 1; number <= set.NumberOfMessages(); ++number)
        EXPECT_EQ(set.GetMessage(number)->MethodType(), 1) << number;
}

TEST(ScanSet, WithoutConstTextFindsAFirstMessageOfOnlyANumericField) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    set.AppendMessage();
    set.GetMessage(1)->AddVar(numericField(0));
    putText(*set.GetMessage(2), 0, L"OK");
    EXPECT_EQ(set.GetMessageNumberWithOutConstText(), Variant(int32_t{1}));
}

TEST(ScanSet, WithoutConstTextDoesNotLookAtTheLastMessage) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    set.AppendMessage();
    putText(*set.GetMessage(1), 0, L"OK");
    set.GetMessage(2)->AddVar(numericField(0));
    EXPECT_EQ(set.GetMessageNumberWithOutConstText(), Variant(int32_t{0}));
}

TEST(ScanSet, WithoutConstTextOfASingleNumericMessageIsZeroBecauseTheRangeIsEmpty) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    set.GetMessage(1)->AddVar(numericField(0));
    EXPECT_EQ(set.GetMessageNumberWithOutConstText(), Variant(int32_t{0}));
}

TEST(ScanSet, MessageOfOnlyAControlCharacterCountsAsHavingFixedText) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    set.AppendMessage();
    set.GetMessage(1)->AddControlChar(0, 6);
    putText(*set.GetMessage(2), 0, L"OK");
    EXPECT_EQ(set.GetMessageNumberWithOutConstText(), Variant(int32_t{0}));
}

TEST(ScanSet, ClearAllKeepsTerminatorsFrameAndChecksum) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    set.AppendMessage();
    putText(*set.GetMessage(2), 0, L"X");
    set.MessageLengthValue(12);
    set.SilenceTimeValue(300);
    set.ScanSTXLength(1);
    set.SetScanSTXValue(0, 2, false);
    set.ScanETXLength(1);
    set.SetScanETXValue(0, 3, false);
    set.EndOfScanMessageType(2);
    auto checksum = set.ScanChecksum();
    int32_t cleared = 0;
    set.OnMessagesCleared = [&] { ++cleared; };

    set.ClearAll();

    EXPECT_EQ(cleared, 1);
    EXPECT_EQ(set.NumberOfMessages(), 1);
    EXPECT_TRUE(set.GetMessage(1)->IsEmpty());
    EXPECT_EQ(set.GetMessage(1)->MethodType(), 1);
    EXPECT_EQ(set.MessageLengthValue(), 12);
    EXPECT_EQ(set.SilenceTimeValue(), 300);
    EXPECT_EQ(set.ScanSTXLength(), 1);
    EXPECT_EQ(set.ScanSTXChars()[0], (FrameChar{2, false}));
    EXPECT_EQ(set.ScanETXLength(), 1);
    EXPECT_EQ(set.ScanETXChars()[0], (FrameChar{3, false}));
    EXPECT_EQ(set.EndOfScanMessageType(), 2);
    EXPECT_EQ(set.ScanChecksum(), checksum);
}

TEST(ScanSet, ClearScanETXZeroesTheEndCharactersAndResetsTheEndOfMessageButKeepsTheLength) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    set.ScanETXLength(2);
    set.SetScanETXValue(1, 0x0A, false);
    set.EndOfScanMessageType(3);
    set.ClearScanETX();
    EXPECT_EQ(set.ScanETXChars(), FrameChars{});
    EXPECT_EQ(set.EndOfScanMessageType(), 1);
    EXPECT_EQ(set.ScanETXLength(), 2);
}

TEST(ScanSet, ClearScanSTXZeroesTheStartCharactersAndKeepsTheLength) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    set.ScanSTXLength(4);
    set.SetScanSTXValue(3, 'S', true);
    set.EndOfScanMessageType(2);
    set.ClearScanSTX();
    EXPECT_EQ(set.ScanSTXChars(), FrameChars{});
    EXPECT_EQ(set.ScanSTXLength(), 4);
    EXPECT_EQ(set.EndOfScanMessageType(), 2);
}

TEST(ScanSet, FrameSettersRefuseAnIndexOutsideTheFour) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    set.SetScanSTXValue(2, 0x41, true);
    EXPECT_EQ(set.ScanSTXChars()[2], (FrameChar{0x41, true}));
    EXPECT_EQ(test::runtimeErrorOf([&] { set.SetScanETXValue(4, 1, false); }), err::SubscriptOutOfRange);
}

TEST(ScanSet, InitScanChecksumPutsBackTheDefaultsButTheAddedValue) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    auto checksum = std::dynamic_pointer_cast<clsProtocolCSVar>(set.ScanChecksum());
    checksum->STXInCS(true);
    checksum->CSLength(4);
    checksum->SA_AddedValue(7);
    set.InitScanChecksum();
    EXPECT_FALSE(checksum->STXInCS());
    EXPECT_EQ(checksum->CSLength(), 1);
    EXPECT_EQ(checksum->Length(), 1);
    EXPECT_EQ(checksum->SA_AddedValue(), 7);
}

TEST(ScanSet, ReplaceOperandsReachesTheMessagesFields) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    auto field = std::make_shared<clsProtocolScanNumericVar>();
    test::linkOperand(*field->LikedOperand(), 5, 20);
    set.GetMessage(1)->AddVar(field);
    set.ReplaceOperands(0, 5, 20, 21);
    EXPECT_EQ(field->LikedOperand()->OperandAddress(), 21);
}

TEST(ScanSet, OperandsForFindOnlyAreThoseOfTheMessagesOnly) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    set.AppendMessage();
    auto first = std::make_shared<clsProtocolScanNumericVar>();
    test::linkOperand(*first->LikedOperand(), 3, 1);
    auto second = std::make_shared<clsProtocolScanNumericVar>();
    test::linkOperand(*second->LikedOperand(), 3, 2);
    set.GetMessage(1)->AddVar(first);
    set.GetMessage(2)->AddVar(second);
    OperandCollection found;
    set.AddOperandsToFindOnly(found);
    ASSERT_EQ(found.Count(), 2);
    EXPECT_EQ(found.Item(L"1"), first->LikedOperand());
    EXPECT_EQ(found.Item(L"2"), second->LikedOperand());
}

TEST(ScanSet, ListOperationsBehaveAsInTheSendSet) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    putText(*set.GetMessage(1), 0, L"A");
    while (set.NumberOfMessages() < 255) ASSERT_TRUE(set.AppendMessage());
    EXPECT_FALSE(set.AppendMessage());
    ASSERT_EQ(host->Messages.size(), 1u);
    EXPECT_EQ(host->Messages[0].Number, 154);
    EXPECT_EQ(host->Messages[0].Params, std::vector<std::wstring>{L"255"});
    set.CopyMessage(1);
    set.PasteMessage(255);
    EXPECT_EQ(set.NumberOfMessages(), 255);
    EXPECT_EQ(textOf(set, 255), L"A");
    EXPECT_EQ(set.GetNumberOfMessagesToDownload(), Variant(int32_t{255}));
    EXPECT_EQ(set.GetEmptyMessageNumber(), 2);
    host->Script()->QueueAnswer(1);
    EXPECT_TRUE(set.DeleteMessage(1));
    EXPECT_EQ(host->Messages.back().Number, 157);
    EXPECT_EQ(set.NumberOfMessages(), 254);
}

TEST(ScanSet, CutTheOnlyMessageLeavesOneEmptyMessage) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    putText(*set.GetMessage(1), 0, L"A");
    set.CutMessage(1);
    EXPECT_EQ(set.NumberOfMessages(), 1);
    EXPECT_TRUE(set.GetMessage(1)->IsEmpty());
}

TEST(ScanSet, LongFixedTextIsFound) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    putText(*set.GetMessage(1), 0, std::wstring(256, L'y'));
    EXPECT_EQ(set.GetMessageNumberWithLongSegment(), 1);
}

TEST(ScanSet, ShowHelpAsksForTheFamilysHelp) {
    ScopedHostContext host;
    clsProtocolScanSrv set;
    test::MethodStub method(170100, 2);
    auto instances = std::make_shared<FBInstancesDouble>();
    set.SetHostObjects(&method, instances);
    set.ShowHelp();
    EXPECT_EQ(instances->HelpShown, std::vector<int32_t>{170100});
}

}  // namespace
}  // namespace qx
