#include "platform/host/host_context.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "platform/host/host_services.h"

namespace qx {
namespace {

TEST(HostContext, AMessageBoxIsAnsweredByTheScriptAndRecordedAsNumber0WithItsTitleAndStyle) {
    ScopedHostContext context;
    context->Script()->QueueAnswer(2);
    EXPECT_EQ(MsgBox(L"Line one.\r\nLine two.", vbExclamation, L"PROTOCOL"), 2);
    ASSERT_EQ(context->Messages.size(), 1u);
    const ShownMessage& box = context->Messages[0];
    EXPECT_EQ(box.Number, 0);
    EXPECT_EQ(box.Text, L"Line one.\r\nLine two.");
    EXPECT_EQ(box.Title, L"PROTOCOL");
    EXPECT_EQ(box.Style, 48);
    EXPECT_EQ(box.Answer, 2);
    EXPECT_TRUE(box.Params.empty());
}

TEST(HostContext, ScopedContextReplacesAndRestores) {
    HostContext* outer = &host();
    {
        ScopedHostContext context;
        EXPECT_EQ(&host(), &*context);
        host().BeepCount = 3;
        host().ExtendedOperands = true;
    }
    EXPECT_EQ(&host(), outer);
    ScopedHostContext fresh;
    EXPECT_EQ(host().BeepCount, 0);
    EXPECT_FALSE(host().ExtendedOperands);
}

TEST(HostContext, RuntimeFolderHangsBelowTheApplicationFolder) {
    ScopedHostContext context;
    context->AppFolder = L"/opt/ide/bin";
    EXPECT_EQ(context->RuntimeFolder(), L"/opt/ide/bin/../FB_Lib/RT/");
}

TEST(HostContext, ScriptedAnswersComeInOrderThenTheDefault) {
    ScopedHostContext context;
    auto* script = context->Script();
    script->QueueAnswer(2);
    EXPECT_EQ(script->AnswerMessage({}), 2);
    EXPECT_EQ(script->AnswerMessage({}), 1);
    script->DefaultAnswer = 7;
    EXPECT_EQ(script->AnswerMessage({}), 7);
}

TEST(OperandTable, LinksAreCountedPerTypeAndAddress) {
    OperandTable table;
    EXPECT_FALSE(table.IsRegistered(3, 5));
    EXPECT_EQ(table.Find(3, 5), nullptr);
    table.Register(3, 5, 1, 2);
    table.Register(3, 5, 1, 4);
    table.Register(5, 3, 2, 0);
    EXPECT_EQ(table.LinkCount(3, 5), 2);
    EXPECT_EQ(table.LinkCount(5, 3), 1);
    EXPECT_EQ(table.LinkCount(3, 6), 0);
    // The newest registration gives the mode and the format.
    ASSERT_NE(table.Find(3, 5), nullptr);
    EXPECT_EQ(table.Find(3, 5)->Format, 4);
    EXPECT_EQ(table.Find(5, 3)->Mode, 2);
    // Negative types and addresses are identities like any other.
    table.Register(-1, -1, 1, 0);
    EXPECT_TRUE(table.IsRegistered(-1, -1));
    EXPECT_FALSE(table.IsRegistered(-1, 0));
}

TEST(OperandTable, ALinkReleasedToNothingIsGoneUntilRegisteredAgain) {
    OperandTable table;
    table.Register(3, 5, 1, 2);
    table.Release(3, 5);
    EXPECT_FALSE(table.IsRegistered(3, 5));
    EXPECT_EQ(table.LinkCount(3, 5), 0);
    table.Release(3, 5);  // nothing to release: stays at nothing
    table.Release(9, 9);
    EXPECT_EQ(table.LinkCount(3, 5), 0);
    table.Register(3, 5, 2, 7);
    EXPECT_EQ(table.LinkCount(3, 5), 1);
    EXPECT_EQ(table.Find(3, 5)->Mode, 2);
    EXPECT_EQ(table.Find(3, 5)->Format, 7);
}

TEST(OperandTable, ThousandsOfLinksAreAllFound) {
    OperandTable table;
    for (int32_t address = 0; address < 5000; ++address) table.Register(3 + address % 3, address, 1, address % 5);
    for (int32_t address = 0; address < 5000; ++address) {
        const OperandTable::Entry* entry = table.Find(3 + address % 3, address);
        ASSERT_NE(entry, nullptr) << address;
        EXPECT_EQ(entry->Count, 1);
        EXPECT_EQ(entry->Format, address % 5);
        EXPECT_FALSE(table.IsRegistered(3 + (address + 1) % 3, address));
    }
}

TEST(HostServices, BeepIsCounted) {
    ScopedHostContext context;
    systemBeep();
    systemBeep();
    EXPECT_EQ(context->BeepCount, 2);
}

TEST(HostServices, TheBeepSoundsThroughTheModalDriver) {
    struct Listener : ScriptedModalDriver {
        void Beep() override { ++heard; }
        int heard = 0;
    };
    ScopedHostContext context;
    auto listener = std::make_shared<Listener>();
    context->Driver = listener;
    systemBeep();
    EXPECT_EQ(listener->heard, 1);
    EXPECT_EQ(context->BeepCount, 1);
}

TEST(HostServices, ErrorReporterRecordsEveryReport) {
    ScopedHostContext context;
    clsErrorReporter().Report({L"Name", 0x80040000, L"text", L"src", L"mod", L"proc", 16});
    ASSERT_EQ(context->Reports.size(), 1u);
    EXPECT_EQ(context->Reports[0].Name, L"Name");
    EXPECT_EQ(context->Reports[0].Severity, 16);
}

TEST(HostServices, TypeNamesAndLimits) {
    ScopedHostContext context;
    EXPECT_EQ(clsOperandTypeNames().GetName(3), L"MI");
    EXPECT_EQ(clsNameLimits().Item(22), 20);
    context->NameLimits[22] = 8;
    EXPECT_EQ(clsNameLimits().Item(22), 8);
    EXPECT_FALSE(clsEnvironment().IsExtendedOperandsEnabled());
    context->ExtendedOperands = true;
    EXPECT_TRUE(clsEnvironment().IsExtendedOperandsEnabled());
}

TEST(HostServices, MessageTextFillsParameters) {
    ScopedHostContext context;
    EXPECT_EQ(clsTextTable().GetMessageText(154, {L"255"}), L"A set holds at most 255 messages.");
    context->TextOverrides[24] = L"Busy";
    EXPECT_EQ(clsTextTable().GetText(24), L"Busy");
}

// A desktop host shows a message that ends with a question mark with Yes
// and No: the questions of the message dialogs must read as questions, and
// every message they show has words of its own.
TEST(HostServices, TheMessageDialogsQuestionsAskAndTheirMessagesHaveWords) {
    ScopedHostContext context;
    for (int32_t question : {142, 147, 155, 156, 157}) {
        const std::wstring text = clsTextTable().GetMessageText(question, {});
        ASSERT_FALSE(text.empty()) << question;
        EXPECT_EQ(text.back(), L'?') << question;
    }
    for (int32_t number = 140; number <= 160; ++number)
        EXPECT_NE(clsTextTable().GetMessageText(number, {}), L"Message " + std::to_wstring(number));
    EXPECT_EQ(clsTextTable().GetMessageText(144, {L"3"}),
              L"Message 3 is empty; only messages at the end of the list may be empty.");
    EXPECT_NE(clsTextTable().GetMessageText(151, {}).back(), L'?');
}

TEST(HostServices, DeviceCapsAnswersPixelsPerInch) {
    ScopedHostContext context;
    context->DpiX = 120;
    EXPECT_EQ(GetDeviceCaps(88), 120);
    EXPECT_EQ(GetDeviceCaps(90), 96);
    EXPECT_EQ(GetDeviceCaps(12), 0);
}

TEST(HostServices, DeviceCapsRecordsEachIndexAsked) {
    ScopedHostContext context;
    context->DpiY = 144;
    EXPECT_EQ(GetDeviceCaps(90), 144);
    (void)GetDeviceCaps(88);
    EXPECT_EQ(context->DeviceCapsAsked, (std::vector<int32_t>{90, 88}));
}

TEST(HostServices, ThereIsNoCaretUntilOneIsCreated) {
    ScopedHostContext context;
    EXPECT_EQ(context->Caret, CaretState{});
    EXPECT_FALSE(SetCaretPos(4, 5));
    EXPECT_FALSE(ShowCaret(7));
    EXPECT_EQ(context->Caret, CaretState{});
    EXPECT_EQ(context->CaretCalls, (std::vector<std::string>{"SetCaretPos(4, 5)", "ShowCaret(7)"}));
}

TEST(HostServices, CreateMoveAndShowLeaveTheCaretOfTheWindowWhereItWasPut) {
    ScopedHostContext context;
    EXPECT_TRUE(CreateCaret(0x10002, 0, 4, 20));
    EXPECT_EQ(context->Caret, (CaretState{0x10002, 0, 4, 20, 0, 0, false}));
    EXPECT_TRUE(SetCaretPos(43, 20));
    EXPECT_FALSE(context->Caret.Shown);
    EXPECT_TRUE(ShowCaret(0x10002));
    EXPECT_EQ(context->Caret, (CaretState{0x10002, 0, 4, 20, 43, 20, true}));
    EXPECT_EQ(context->CaretCalls,
              (std::vector<std::string>{"CreateCaret(65538, 0, 4, 20)", "SetCaretPos(43, 20)", "ShowCaret(65538)"}));
}

TEST(HostServices, EachCreateCaretReplacesTheLastCaretHiddenAtTheOrigin) {
    ScopedHostContext context;
    CreateCaret(11, 0, 4, 20);
    SetCaretPos(80, 40);
    ShowCaret(11);
    CreateCaret(13, 0, 5, 25);
    EXPECT_EQ(context->Caret, (CaretState{13, 0, 5, 25, 0, 0, false}));
}

TEST(HostServices, OnlyTheWindowThatOwnsTheCaretCanShowIt) {
    ScopedHostContext context;
    CreateCaret(11, 0, 4, 20);
    EXPECT_FALSE(ShowCaret(13));
    EXPECT_FALSE(context->Caret.Shown);
    EXPECT_TRUE(ShowCaret(0));
    EXPECT_TRUE(context->Caret.Shown);
}

TEST(HostServices, CaretListenersHearEachChangeUntilTheyLeave) {
    ScopedHostContext context;
    std::vector<CaretState> heard;
    const int32_t token = context->SubscribeCaret([&] { heard.push_back(host().Caret); });
    CreateCaret(11, 0, 4, 20);
    SetCaretPos(8, 0);
    ShowCaret(11);
    ShowCaret(11);  // already shown: nothing changed
    ASSERT_EQ(heard.size(), 3u);
    EXPECT_EQ(heard[1], (CaretState{11, 0, 4, 20, 8, 0, false}));
    EXPECT_TRUE(heard[2].Shown);
    context->UnsubscribeCaret(token);
    SetCaretPos(12, 0);
    EXPECT_EQ(heard.size(), 3u);
    EXPECT_EQ(context->Caret.X, 12);
}

TEST(HostServices, ValueTextOfFixedPointConstants) {
    clsOperandFormats formats;
    EXPECT_EQ(formats.GetValueText(37, 3, 70000), L"7");
    EXPECT_EQ(formats.GetValueText(37, 3, -15000), L"-1.5");
    EXPECT_EQ(formats.GetValueText(37, 3, 12345), L"1.2345");
}

}  // namespace
}  // namespace qx
