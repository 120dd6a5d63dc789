// The message grid of FlgSend: its shape, what each cell shows, the caret,
// and typing, Backspace and Delete going into the message.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "editors/message_grid_form.h"

namespace qx::test {
namespace {

class SendGridTest : public MessageGridTestBase {
protected:
    void SetUp() override { load(MessageGridKind::Send, {L"HELLO", L"", L"WORLD"}); }
};

// --- Shape and painting ---

TEST_F(SendGridTest, HasARowPerMessageAndANumberColumnBeforeFiveHundredTextColumns) {
    EXPECT_EQ(grid().Rows(), 3);
    EXPECT_EQ(grid().Cols(), 501);
    EXPECT_EQ(grid().FixedRows(), 0);
    EXPECT_EQ(grid().FixedCols(), 1);
    EXPECT_EQ(editor().FirstTextColumn(), 1);
    EXPECT_EQ(grid().ColWidth(0), 345);
    EXPECT_EQ(grid().ColWidth(1), 300);
    EXPECT_EQ(grid().ColWidth(500), 300);
    for (int32_t c : {0, 1, 250, 500}) EXPECT_EQ(grid().ColAlignment(c), Grid::AlignCenterCenter) << c;
}

TEST_F(SendGridTest, NumberColumnCountsFromZeroInItsColours) {
    for (int32_t r = 0; r < 3; ++r) {
        EXPECT_EQ(grid().TextMatrix(r, 0), std::to_wstring(r));
        EXPECT_EQ(grid().CellBackColor(r, 0), 0x623685u);
        EXPECT_EQ(grid().CellForeColor(r, 0), 0x80000018u);
    }
}

TEST_F(SendGridTest, EachCellShowsOnePositionAndAnEmptyMessageIsFiveHundredBlanks) {
    EXPECT_EQ(cells(0, 0, 6), L"HELLO ");
    EXPECT_EQ(cells(2, 0, 5), L"WORLD");
    for (int32_t p = 0; p < Positions; ++p) ASSERT_EQ(cell(1, p), L" ") << p;
    EXPECT_EQ(back(0, 0), colour::Window);
    EXPECT_EQ(fore(0, 0), colour::WindowText);
}

TEST_F(SendGridTest, StartsWithTheFirstMessageCurrentOnRowZeroAtPositionZero) {
    EXPECT_EQ(grid().Row(), 0);
    EXPECT_EQ(grid().Col(), 1);
    EXPECT_EQ(editor().CurrentMessage.get(), &message(0));
}

// --- The caret ---

TEST_F(SendGridTest, CaretIsAFifthOfACellWideAndACellHighAtTheCellsLeftEdge) {
    EXPECT_EQ(editor().ScaleX, 1.0F);
    EXPECT_EQ(editor().ScaleY, 1.0F);
    EXPECT_EQ(context->DeviceCapsAsked, (std::vector<int32_t>{88, 90}));
    EXPECT_EQ(editor().CaretWidth, 4);
    EXPECT_EQ(editor().CaretHeight, 20);
    EXPECT_EQ(editor().CaretX, 23);  // 345 twips
    EXPECT_EQ(editor().CaretY, 0);
    const CaretState expected{grid().hWnd(), 0, 4, 20, 23, 0, true};
    EXPECT_EQ(context->Caret, expected);
}

TEST_F(SendGridTest, EveryCaretUpdateCreatesSetsAndShowsTheCaret) {
    grid().UserKeyDown(keys::Down);
    const std::string hWnd = std::to_string(grid().hWnd());
    EXPECT_EQ(context->CaretCalls, (std::vector<std::string>{"CreateCaret(" + hWnd + ", 0, 4, 20)",
                                                             "SetCaretPos(23, 20)", "ShowCaret(" + hWnd + ")"}));
}

TEST_F(SendGridTest, TheCaretFollowsArrowsAndClicks) {
    grid().UserKeyDown(keys::Right);
    EXPECT_EQ(context->Caret.X, 43);
    moveTo(2, 10);
    EXPECT_EQ(context->Caret.X, (345 + 10 * 300) / 15);
    EXPECT_EQ(context->Caret.Y, 40);
    grid().UserKeyDown(keys::End);
    EXPECT_EQ(context->Caret.X, (345 + 499 * 300) / 15);
}

TEST(SendGridScale, AtOneHundredTwentyDotsPerInchTheCaretScalesByOneAndAQuarter) {
    ScopedHostContext context;
    context->DpiX = 120;
    context->DpiY = 144;
    MessageGridForm form(MessageGridKind::Send);
    form.messages.push_back(std::make_shared<clsProtocolMessage>());
    form.editor.CurrentMessage = form.messages[0];
    form.editor.BuildMessageGrid();
    form.editor.takeDeviceScale();
    form.editor.IgnoreGridEvents = true;
    form.editor.PaintAllMessages();
    form.editor.InitCaret();
    EXPECT_EQ(form.editor.ScaleX, 1.25F);
    EXPECT_EQ(form.editor.ScaleY, 1.5F);
    EXPECT_EQ(form.editor.CaretWidth, 5);    // 60 twips
    EXPECT_EQ(form.editor.CaretHeight, 25);  // by ScaleX too
    EXPECT_EQ(form.editor.CaretX, 28);       // 345 / 15 * 1.25 = 28.75, cut
    EXPECT_EQ(form.editor.TwipsToPixels(-345), -28);
}

// --- Typing ---

TEST_F(SendGridTest, ATypedCharacterIsInsertedAtTheCaretAndTheCaretMovesOn) {
    moveTo(0, 2);
    type(L"x");
    EXPECT_EQ(messageText(0, 7), L"HExLLO ");
    EXPECT_EQ(cells(0, 0, 7), L"HExLLO ");
    EXPECT_EQ(caretPosition(), 3);
    EXPECT_EQ(context->Caret.X, (345 + 3 * 300) / 15);
    EXPECT_EQ(grid().TextMatrix(0, 0), L"0");
}

TEST_F(SendGridTest, OnTheLastCellEachCharacterReplacesItAndTheCaretStays) {
    moveTo(0, 499);
    type(L"XY");
    EXPECT_EQ(message(0).MessageString()[499], L'Y');
    EXPECT_EQ(message(0).MessageString()[498], L' ');
    EXPECT_EQ(cell(0, 499), L"Y");
    EXPECT_EQ(grid().Col(), 500);
    EXPECT_EQ(context->Caret.X, (345 + 499 * 300) / 15);
    EXPECT_EQ(messageText(0, 5), L"HELLO");
}

TEST_F(SendGridTest, TypingAtZeroIntoAFullMessageDropsTheLastCharacter) {
    std::wstring full;
    for (int32_t p = 0; p < Positions; ++p) full += static_cast<wchar_t>(L'a' + p % 26);
    message(1).MessageString(full);
    moveTo(1, 0);
    type(L"Z");
    EXPECT_EQ(message(1).MessageString(), L"Z" + full.substr(0, 499));
    EXPECT_EQ(cell(1, 499), std::wstring(1, full[498]));
    EXPECT_EQ(caretPosition(), 1);
}

TEST_F(SendGridTest, CharactersAreNotFilteredAndComeInAsAnsi) {
    moveTo(1, 0);
    grid().UserKeyPress(9);
    grid().UserKeyPress(13);
    grid().UserKeyPress(0x80);
    grid().UserKeyPress(0xE9);
    EXPECT_EQ(messageText(1, 4), std::wstring(L"\t\r\u20AC\u00E9"));
    EXPECT_EQ(caretPosition(), 4);
    EXPECT_EQ(context->BeepCount, 0);
}

TEST_F(SendGridTest, BackspaceDeletesTheCharacterBeforeTheCaret) {
    moveTo(0, 3);
    grid().UserKeyPress(8);
    EXPECT_EQ(messageText(0, 5), L"HELO ");
    EXPECT_EQ(cells(0, 0, 5), L"HELO ");
    EXPECT_EQ(caretPosition(), 2);
    EXPECT_EQ(context->Caret.X, (345 + 2 * 300) / 15);
}

TEST_F(SendGridTest, BackspaceOnTheFirstPositionBeepsAndChangesNothing) {
    moveTo(0, 0);
    context->CaretCalls.clear();
    grid().UserKeyPress(8);
    EXPECT_EQ(context->BeepCount, 1);
    EXPECT_EQ(messageText(0, 5), L"HELLO");
    EXPECT_EQ(caretPosition(), 0);
    EXPECT_TRUE(context->CaretCalls.empty());
}

TEST_F(SendGridTest, DeleteRemovesTheCharacterAtTheCaretAndTheCaretStays) {
    moveTo(0, 1);
    grid().UserKeyDown(keys::Delete);
    EXPECT_EQ(messageText(0, 5), L"HLLO ");
    EXPECT_EQ(cells(0, 0, 5), L"HLLO ");
    EXPECT_EQ(caretPosition(), 1);
}

TEST_F(SendGridTest, HomeInFlgSendIsTheGridsOwnAndReachesColumnOne) {
    moveTo(2, 40);
    grid().UserKeyDown(keys::Home);
    EXPECT_EQ(grid().Col(), 1);
    EXPECT_EQ(context->Caret.X, 23);
}

TEST_F(SendGridTest, InitCaretMakesTheFirstMessageCurrentInFlgSend) {
    moveTo(2, 4);
    editor().IgnoreGridEvents = true;
    editor().InitCaret();
    editor().IgnoreGridEvents = false;
    EXPECT_EQ(grid().Row(), 0);
    EXPECT_EQ(grid().Col(), 1);
    EXPECT_EQ(editor().CurrentMessage.get(), &message(0));
    EXPECT_EQ(context->Caret.X, 23);
    EXPECT_EQ(context->Caret.Y, 0);
}

TEST_F(SendGridTest, OnlyTheCaretCommandsAreTheEditors) {
    for (const wchar_t* id : {tools::ID_Cut, tools::ID_Copy, tools::ID_Paste, tools::ID_InsertBefore,
                              tools::ID_InsertMsg, tools::ID_AppendMsg, tools::ID_DeleteMsg, tools::ID_ClearAll})
        EXPECT_FALSE(editor().runCaretCommand(id));
    EXPECT_EQ(grid().Rows(), 3);
    EXPECT_EQ(context->BeepCount, 0);
}

TEST_F(SendGridTest, NoKeyIsHandledWhileIgnoreGridEventsIsSet) {
    moveTo(0, 0);
    editor().IgnoreGridEvents = true;
    type(L"Q");
    grid().UserKeyDown(keys::Delete);
    EXPECT_EQ(messageText(0, 5), L"HELLO");
    EXPECT_EQ(caretPosition(), 0);
}

TEST_F(SendGridTest, ARowChangeMakesThatRowsMessageCurrent) {
    grid().UserKeyDown(keys::Down);
    grid().UserKeyDown(keys::Down);
    EXPECT_EQ(grid().Row(), 2);
    EXPECT_EQ(editor().CurrentMessage.get(), &message(2));
    type(L"!");
    EXPECT_EQ(messageText(2, 6), L"!WORLD");
    EXPECT_EQ(messageText(0, 5), L"HELLO");
}

// --- Control characters under the keys ---

TEST_F(SendGridTest, TypingOnAControlCharacterPushesItRight) {
    addControlChar(0, 2, 3);
    ASSERT_EQ(cell(0, 2), L"03");
    moveTo(0, 2);
    type(L"-");
    EXPECT_EQ(message(0).ControlChars()[3], 3);
    EXPECT_EQ(message(0).ControlChars()[2], -1);
    EXPECT_EQ(cells(0, 0, 4), L"HE-03");
    EXPECT_EQ(back(0, 3), 255u);
    EXPECT_EQ(back(0, 2), colour::Window);
}

TEST_F(SendGridTest, DeleteAndBackspaceRemoveAControlCharacterAsACharacter) {
    addControlChar(0, 1, 2);
    moveTo(0, 1);
    grid().UserKeyDown(keys::Delete);
    EXPECT_EQ(message(0).ControlChars()[1], -1);
    EXPECT_EQ(messageText(0, 5), L"HLLO ");
    EXPECT_EQ(cells(0, 0, 4), L"HLLO");
    addControlChar(0, 1, 2);
    moveTo(0, 2);
    grid().UserKeyPress(8);
    EXPECT_EQ(message(0).ControlChars()[1], -1);
    EXPECT_EQ(cells(0, 0, 4), L"HLO ");
    EXPECT_EQ(back(0, 1), colour::Window);
    EXPECT_EQ(context->BeepCount, 0);
}

TEST_F(SendGridTest, AControlCharacterAtTheLastPositionStandsTwiceAfterADeletionBeforeIt) {
    addControlChar(1, 499, 0x1B);
    moveTo(1, 0);
    grid().UserKeyDown(keys::Delete);
    EXPECT_EQ(message(1).ControlChars()[498], 0x1B);
    EXPECT_EQ(message(1).ControlChars()[499], 0x1B);
    EXPECT_EQ(cell(1, 498), L"1B");
    EXPECT_EQ(cell(1, 499), L"1B");
    EXPECT_EQ(back(1, 498), 255u);
    EXPECT_EQ(back(1, 499), 255u);
    EXPECT_EQ(fore(1, 498), 0xFFFFFFu);
}

// --- Fields under the keys ---

TEST_F(SendGridTest, TypingOnAFieldsFirstCellMovesTheFieldRight) {
    addTimeField(0, 2);  // "HE" + 5 + "LLO"
    ASSERT_EQ(message(0).NumberOfVars(), 1);
    moveTo(0, 2);
    type(L"+");
    EXPECT_EQ(message(0).GetVar(1)->StartPosition(), 3);
    EXPECT_EQ(cells(0, 0, 9), L"HE+11111L");
    EXPECT_EQ(caretPosition(), 3);
}

TEST_F(SendGridTest, TypingOnALaterCellOfAFieldGoesUnderItAndTheFieldStays) {
    addTimeField(0, 2);
    moveTo(0, 4);
    type(L"#");
    EXPECT_EQ(message(0).GetVar(1)->StartPosition(), 2);
    EXPECT_EQ(message(0).MessageString()[4], L'#');
    EXPECT_EQ(cells(0, 0, 8), L"HE11111 ");  // the hidden character moved the blanks and text behind it
    EXPECT_EQ(messageText(0, 11), L"HE  #   LLO");
    EXPECT_EQ(caretPosition(), 5);
}

TEST_F(SendGridTest, DeleteOnAFieldBeepsAndDeletesNothing) {
    addTimeField(0, 2);
    moveTo(0, 4);
    const std::wstring before = message(0).MessageString();
    grid().UserKeyDown(keys::Delete);
    EXPECT_EQ(context->BeepCount, 1);
    EXPECT_EQ(message(0).MessageString(), before);
    EXPECT_EQ(message(0).GetVar(1)->StartPosition(), 2);
}

TEST_F(SendGridTest, BackspaceRightAfterAFieldBeepsMovesOntoItsLastCellAndDeletesNothing) {
    addTimeField(0, 2);  // cells 2 to 6
    moveTo(0, 7);
    const std::wstring before = message(0).MessageString();
    grid().UserKeyPress(8);
    EXPECT_EQ(context->BeepCount, 1);
    EXPECT_EQ(caretPosition(), 6);
    EXPECT_EQ(context->Caret.X, (345 + 6 * 300) / 15);
    EXPECT_EQ(message(0).MessageString(), before);
    EXPECT_EQ(cells(0, 0, 10), L"HE11111LLO");
}

TEST_F(SendGridTest, AFieldPushedPastTheLastPositionIsRemovedWithABeep) {
    addTimeField(1, 495);  // ends exactly at 500
    ASSERT_EQ(message(1).NumberOfVars(), 1);
    moveTo(1, 0);
    type(L"a");
    EXPECT_EQ(context->BeepCount, 1);
    EXPECT_EQ(message(1).NumberOfVars(), 0);
    EXPECT_EQ(cells(1, 495, 5), L"     ");
    EXPECT_EQ(back(1, 497), colour::Window);
}

}  // namespace
}  // namespace qx::test
