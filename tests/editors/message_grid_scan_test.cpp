// FlgScan: the length column before the text, Home, Delete and characters
// on it, its drop-down list of lengths, and the tooltip beside it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "editors/message_grid_form.h"

namespace qx::test {
namespace {

class ScanGridTest : public MessageGridTestBase {
protected:
    void SetUp() override {
        load(MessageGridKind::Scan, {L"OK", L"ERR"});
        message(1).MessageLength(7);
        editor().IgnoreGridEvents = true;
        editor().PaintAllMessages();
        editor().IgnoreGridEvents = false;
    }
};

TEST_F(ScanGridTest, HasALengthColumnBeforeTheTextFromColumnTwo) {
    EXPECT_EQ(grid().Cols(), 502);
    EXPECT_EQ(editor().FirstTextColumn(), 2);
    EXPECT_EQ(grid().ColWidth(0), 345);
    EXPECT_EQ(grid().ColWidth(1), 795);
    EXPECT_EQ(grid().ColWidth(2), 300);
    EXPECT_EQ(grid().ColWidth(501), 300);
    EXPECT_EQ(grid().ColAlignment(0), Grid::AlignCenterCenter);
    EXPECT_EQ(grid().ColAlignment(1), Grid::AlignGeneral);
    EXPECT_EQ(grid().ColAlignment(2), Grid::AlignCenterCenter);
    EXPECT_EQ(grid().ColAlignment(501), Grid::AlignCenterCenter);
    EXPECT_EQ(cells(0, 0, 3), L"OK ");
    EXPECT_EQ(cell(0, 499), L" ");
}

TEST_F(ScanGridTest, TheLengthColumnShowsEachMessagesLengthInItsColours) {
    EXPECT_EQ(grid().TextMatrix(0, 1), L"0");
    EXPECT_EQ(grid().TextMatrix(1, 1), L"7");
    for (int32_t r = 0; r < 2; ++r) {
        EXPECT_EQ(grid().CellBackColor(r, 1), 0xC0E0FFu);
        EXPECT_EQ(grid().CellForeColor(r, 1), 0u);
    }
}

TEST_F(ScanGridTest, TheLengthColumnOffersTheNumbersZeroToFiveHundred) {
    const std::wstring& list = grid().ColComboList(1);
    EXPECT_EQ(list.substr(0, 6), L"0|1|2|");
    EXPECT_EQ(list.substr(list.size() - 8), L"499|500|");
    const std::vector<std::wstring> items = splitComboList(list);
    ASSERT_EQ(items.size(), 501u);
    EXPECT_EQ(items[250], L"250");
}

TEST_F(ScanGridTest, TheCaretStartsOnTheFirstTextColumn) {
    EXPECT_EQ(grid().Col(), 2);
    EXPECT_EQ(editor().CaretX, (345 + 795) / 15);
    EXPECT_EQ(editor().CaretWidth, 4);
    EXPECT_EQ(editor().CaretHeight, 20);
    EXPECT_FALSE(grid().Editable());
}

TEST_F(ScanGridTest, TheLengthColumnIsEditableExactlyWhileItIsCurrent) {
    grid().UserClick(1, 1);
    EXPECT_TRUE(grid().Editable());
    EXPECT_EQ(context->Caret.X, 345 / 15);
    grid().UserKeyDown(keys::Right);
    EXPECT_FALSE(grid().Editable());
    grid().UserKeyDown(keys::Left);
    EXPECT_TRUE(grid().Editable());
}

TEST_F(ScanGridTest, PickingALengthWritesMessageLengthAndPaintsTheRow) {
    grid().UserClick(0, 1);
    grid().UserDropDown();
    ASSERT_TRUE(grid().IsEditing());
    grid().UserPickComboItem(12);
    EXPECT_EQ(message(0).MessageLength(), 12);
    EXPECT_EQ(grid().TextMatrix(0, 1), L"12");
    EXPECT_FALSE(grid().IsEditing());
    EXPECT_EQ(message(1).MessageLength(), 7);
    grid().UserPickComboItem(0);
    EXPECT_EQ(message(0).MessageLength(), 0);
    EXPECT_EQ(grid().TextMatrix(0, 1), L"0");
}

TEST_F(ScanGridTest, HomeGoesToColumnTwoNeverToTheLengthColumn) {
    moveTo(1, 30);
    grid().UserKeyDown(keys::Home);
    EXPECT_EQ(grid().Col(), 2);
    EXPECT_EQ(context->Caret.X, (345 + 795) / 15);
    EXPECT_EQ(context->Caret.Y, 20);
    grid().UserClick(1, 1);
    grid().UserKeyDown(keys::Home);
    EXPECT_EQ(grid().Col(), 2);
    EXPECT_FALSE(grid().Editable());
}

TEST_F(ScanGridTest, DeleteOnTheLengthColumnDoesNothing) {
    grid().UserClick(0, 1);
    grid().UserKeyDown(keys::Delete);
    EXPECT_EQ(messageText(0, 3), L"OK ");
    EXPECT_EQ(context->BeepCount, 0);
    moveTo(0, 0);
    grid().UserKeyDown(keys::Delete);
    EXPECT_EQ(messageText(0, 3), L"K  ");
}

TEST_F(ScanGridTest, ACharacterOrBackspaceOnTheLengthColumnBeeps) {
    grid().UserClick(0, 1);
    type(L"Z");
    grid().UserKeyPress(8);
    EXPECT_EQ(context->BeepCount, 2);
    EXPECT_EQ(messageText(0, 3), L"OK ");
    EXPECT_EQ(grid().Col(), 1);
}

TEST_F(ScanGridTest, BackspaceOnTheFirstTextColumnBeeps) {
    moveTo(0, 0);
    grid().UserKeyPress(8);
    EXPECT_EQ(context->BeepCount, 1);
    EXPECT_EQ(messageText(0, 3), L"OK ");
}

TEST_F(ScanGridTest, TypingWorksFromColumnTwoToTheLastCell) {
    moveTo(1, 0);
    type(L">");
    EXPECT_EQ(messageText(1, 5), L">ERR ");
    EXPECT_EQ(caretPosition(), 1);
    EXPECT_EQ(grid().TextMatrix(1, 1), L"7");
    moveTo(1, 499);
    type(L"Q");
    EXPECT_EQ(grid().Col(), 501);
    EXPECT_EQ(message(1).MessageString()[499], L'Q');
}

TEST_F(ScanGridTest, ADoubleClickOnTheLengthColumnBeepsAndOpensNoSelector) {
    grid().UserClick(0, 1);
    bool opened = false;
    pickControlChar(1, &opened);
    grid().UserDoubleClick(0, 1);
    EXPECT_EQ(context->BeepCount, 1);
    EXPECT_FALSE(opened);
    EXPECT_EQ(driver.PendingDialogs(), 1u);
}

TEST_F(ScanGridTest, TheTooltipStartsAtIndexZeroOnColumnTwoAndIsEmptyBeforeIt) {
    grid().UserMouseMove(0, 2);
    EXPECT_EQ(grid().ToolTipText(), L"Index: 0");
    grid().UserMouseMove(0, 1);
    EXPECT_EQ(grid().ToolTipText(), L"");
    grid().UserMouseMove(1, 501);
    EXPECT_EQ(grid().ToolTipText(), L"Index: 499");
    grid().UserMouseMove(1, 0);
    EXPECT_EQ(grid().ToolTipText(), L"");
}

TEST_F(ScanGridTest, TheRightButtonOnTheLengthColumnBeeps) {
    grid().UserMouseUp(Grid::RightButton, 0, 1);
    EXPECT_EQ(context->BeepCount, 1);
    EXPECT_EQ(popupBand(), "");
}

TEST_F(ScanGridTest, CaretCommandsFromTheToolbarOnTheLengthColumnBeep) {
    grid().UserClick(1, 1);
    bar().UserClickTool(tools::ID_NewVar);
    bar().UserClickTool(tools::ID_ControlChar);
    EXPECT_TRUE(editor().runCaretCommand(tools::ID_DeleteControlChar));
    EXPECT_EQ(context->BeepCount, 3);
    EXPECT_EQ(message(1).NumberOfVars(), 0);
}

TEST_F(ScanGridTest, InitCaretKeepsCurrentMessageInFlgScan) {
    moveTo(1, 4);
    editor().IgnoreGridEvents = true;
    editor().InitCaret();
    editor().IgnoreGridEvents = false;
    EXPECT_EQ(grid().Row(), 0);
    EXPECT_EQ(grid().Col(), 2);
    EXPECT_EQ(editor().CurrentMessage.get(), &message(1));
}

TEST_F(ScanGridTest, AControlCharacterPaintsFromColumnTwo) {
    addControlChar(0, 0, 0x06);
    EXPECT_EQ(grid().TextMatrix(0, 2), L"06");
    EXPECT_EQ(grid().CellBackColor(0, 2), 255u);
    EXPECT_EQ(grid().TextMatrix(0, 1), L"0");
    EXPECT_EQ(grid().CellBackColor(0, 1), 0xC0E0FFu);
}

}  // namespace
}  // namespace qx::test
