// The message grid under the mouse and the commands on the caret position:
// selecting fields, the field dialog and the control-character selector,
// tooltips, the right button's popups and what their tools do.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "editors/message_grid_form.h"

namespace qx::test {
namespace {

constexpr uint32_t fieldBack = 0x8000000F;
constexpr uint32_t fieldFore = 0;
constexpr uint32_t highlightBack = 0x8000000D;
constexpr uint32_t highlightFore = 0x8000000E;

class GridMouseTest : public MessageGridTestBase {
protected:
    void SetUp() override { load(MessageGridKind::Send, {L"ABCDEFGHIJ", L"KLMNO"}); }
};

// --- Click ---

TEST_F(GridMouseTest, ClickingAFieldsThirdCellSelectsTheWholeField) {
    addTimeField(0, 3);  // cells 3 to 7
    moveTo(0, 5);
    EXPECT_TRUE(message(0).GetVar(1)->IsSelected());
    for (int32_t p = 3; p <= 7; ++p) {
        EXPECT_EQ(cell(0, p), L"1") << p;
        EXPECT_EQ(back(0, p), highlightBack) << p;
        EXPECT_EQ(fore(0, p), highlightFore) << p;
    }
    EXPECT_EQ(back(0, 8), colour::Window);
    EXPECT_EQ(cell(0, 8), L"D");
}

TEST_F(GridMouseTest, ClickingElsewhereUnselectsTheFieldAndPaintsItInItsOwnColours) {
    addTimeField(0, 3);
    moveTo(0, 5);
    moveTo(0, 0);
    EXPECT_FALSE(message(0).GetVar(1)->IsSelected());
    for (int32_t p = 3; p <= 7; ++p) {
        EXPECT_EQ(back(0, p), fieldBack) << p;
        EXPECT_EQ(fore(0, p), fieldFore) << p;
    }
}

TEST_F(GridMouseTest, FieldNumbersRunFromOneInPositionOrderAndDropAfterADeletion) {
    addTimeField(0, 20);  // added first, lies last
    addTimeField(0, 0);
    addTimeField(0, 10);
    ASSERT_EQ(message(0).NumberOfVars(), 3);
    // The first field was pushed by the two in front of it.
    EXPECT_EQ(message(0).GetVar(3)->StartPosition(), 30);
    EXPECT_EQ(cell(0, 0), L"1");
    EXPECT_EQ(cell(0, 10), L"2");
    EXPECT_EQ(cell(0, 30), L"3");
    moveTo(0, 11);
    grid().UserMouseUp(Grid::RightButton, 0, 11 + first());
    ASSERT_EQ(popupBand(), "popOnVar");
    bar().UserPickPopupTool(tools::ID_DeleteVar);
    EXPECT_EQ(message(0).NumberOfVars(), 2);
    EXPECT_EQ(cell(0, 0), L"1");
    EXPECT_EQ(cells(0, 10, 5), L"     ");  // blanks, nothing closes up
    EXPECT_EQ(back(0, 10), colour::Window);
    EXPECT_EQ(cell(0, 30), L"2");
    EXPECT_EQ(message(0).GetVar(2)->StartPosition(), 30);
}

TEST_F(GridMouseTest, MovingToAnotherRowAndBackLeavesNoFieldSelected) {
    addTimeField(0, 3);
    moveTo(0, 4);
    ASSERT_TRUE(message(0).GetVar(1)->IsSelected());
    grid().UserKeyDown(keys::Down);
    EXPECT_FALSE(message(0).GetVar(1)->IsSelected());
    EXPECT_EQ(back(0, 4), fieldBack);
    grid().UserKeyDown(keys::Up);
    EXPECT_FALSE(message(0).GetVar(1)->IsSelected());
    EXPECT_EQ(back(0, 4), fieldBack);
    EXPECT_EQ(editor().CurrentMessage.get(), &message(0));
}

TEST_F(GridMouseTest, AMoveInsideTheRowKeepsTheSelectedField) {
    addTimeField(0, 3);
    moveTo(0, 4);
    grid().UserKeyDown(keys::Right);
    grid().UserKeyDown(keys::Right);
    EXPECT_TRUE(message(0).GetVar(1)->IsSelected());
    EXPECT_EQ(back(0, 3), highlightBack);
}

// --- Double click ---

TEST_F(GridMouseTest, DoubleClickingABlankCellOpensTheSelectorAndConfirmingPutsARedCell) {
    moveTo(1, 7);
    bool opened = false;
    pickControlChar(2, &opened);
    grid().UserDoubleClick(1, 7 + first());
    EXPECT_TRUE(opened);
    EXPECT_EQ(message(1).ControlChars()[7], 2);
    EXPECT_EQ(cell(1, 7), L"02");
    EXPECT_EQ(back(1, 7), 255u);
    EXPECT_EQ(fore(1, 7), 0xFFFFFFu);
    EXPECT_EQ(caretPosition(), 7);
}

TEST_F(GridMouseTest, ConfirmingOnTextOverwritesTheCellAndMovesNothing) {
    addControlChar(0, 2, 0x0A);
    EXPECT_EQ(messageText(0, 10), L"AB DEFGHIJ");
    EXPECT_EQ(cells(0, 0, 4), L"AB0AD");
}

TEST_F(GridMouseTest, CancellingTheSelectorChangesNothing) {
    moveTo(1, 7);
    bool opened = false;
    cancelControlChar(&opened);
    grid().UserDoubleClick(1, 7 + first());
    EXPECT_TRUE(opened);
    EXPECT_EQ(message(1).ControlChars()[7], -1);
    EXPECT_EQ(cell(1, 7), L" ");
    EXPECT_EQ(back(1, 7), colour::Window);
}

TEST_F(GridMouseTest, DoubleClickingAControlCharacterOpensTheSelectorAndCanReplaceIt) {
    addControlChar(0, 4, 0x02);
    bool opened = false;
    pickControlChar(0x1F, &opened);
    grid().UserDoubleClick(0, 4 + first());
    EXPECT_TRUE(opened);
    EXPECT_EQ(message(0).ControlChars()[4], 0x1F);
    EXPECT_EQ(cell(0, 4), L"1F");
}

TEST_F(GridMouseTest, DoubleClickingAFieldOpensTheFieldDialogOnIt) {
    addTimeField(0, 3, 0);
    moveTo(0, 6);
    int32_t tab = 0;
    driver.QueueDialog(scriptFor<frmProtocolVars>([&tab](frmProtocolVars& dialog) {
        tab = dialog.tbSMSVars.SelectedTab();
        dialog.cbTimeFormatType.UserSelect(1);  // HH:MM:SS, three positions longer
        dialog.cmdOk.UserClick();
    }));
    grid().UserDoubleClick(0, 6 + first());
    EXPECT_EQ(tab, 9);
    ASSERT_EQ(message(0).NumberOfVars(), 1);
    EXPECT_EQ(message(0).GetVar(1)->Length(), 8);
    EXPECT_EQ(cells(0, 0, 12), L"ABC11111111D");
    EXPECT_EQ(driver.PendingDialogs(), 0u);
}

// --- Tooltips ---

TEST_F(GridMouseTest, TheTooltipNamesThePositionUnderTheMouse) {
    grid().UserMouseMove(0, 1);
    EXPECT_EQ(grid().ToolTipText(), L"Index: 0");
    grid().UserMouseMove(1, 500);
    EXPECT_EQ(grid().ToolTipText(), L"Index: 499");
    grid().UserMouseMove(1, 0);
    EXPECT_EQ(grid().ToolTipText(), L"");
    grid().UserMouseMove(0, 30);
    grid().UserMouseMove(-1, -1);
    EXPECT_EQ(grid().ToolTipText(), L"");
}

// --- Right button ---

TEST_F(GridMouseTest, TheRightButtonOutsideTheCellsOrOnTheNumberColumnBeeps) {
    grid().UserMouseUp(Grid::RightButton, -1, -1);
    grid().UserMouseUp(Grid::RightButton, 1, 0);
    EXPECT_EQ(context->BeepCount, 2);
    EXPECT_EQ(popupBand(), "");
    EXPECT_EQ(grid().Row(), 0);
}

TEST_F(GridMouseTest, TheRightButtonOnAFieldSelectsItMovesTheCaretAndOffersTheFieldPopup) {
    addTimeField(1, 1);
    moveTo(0, 0);
    grid().UserMouseUp(Grid::RightButton, 1, 3 + first());
    EXPECT_EQ(grid().Row(), 1);
    EXPECT_EQ(caretPosition(), 3);
    EXPECT_EQ(context->Caret.Y, 20);
    EXPECT_EQ(editor().CurrentMessage.get(), &message(1));
    EXPECT_TRUE(message(1).GetVar(1)->IsSelected());
    EXPECT_EQ(back(1, 1), highlightBack);
    EXPECT_EQ(popupBand(), "popOnVar");
    EXPECT_FALSE(editor().IgnoreGridEvents);
}

TEST_F(GridMouseTest, TheFieldPopupsPropertiesEditsTheField) {
    addTimeField(1, 1);
    grid().UserMouseUp(Grid::RightButton, 1, 2 + first());
    driver.QueueDialog(scriptFor<frmProtocolVars>([](frmProtocolVars& dialog) {
        dialog.cbTimeFormatType.UserSelect(1);
        dialog.cmdOk.UserClick();
    }));
    bar().UserPickPopupTool(tools::ID_EditVar);
    EXPECT_EQ(message(1).GetVar(1)->Length(), 8);
    EXPECT_EQ(cells(1, 0, 10), L"K11111111L");
}

TEST_F(GridMouseTest, TheRightButtonOnAControlCharacterOffersItsPopupAndDeleteLeavesTheBlank) {
    addControlChar(0, 5, 0x04);
    grid().UserMouseUp(Grid::RightButton, 0, 5 + first());
    EXPECT_EQ(popupBand(), "popOnControlChar");
    bar().UserPickPopupTool(tools::ID_DeleteControlChar);
    EXPECT_EQ(message(0).ControlChars()[5], -1);
    EXPECT_EQ(cell(0, 5), L" ");
    EXPECT_EQ(back(0, 5), colour::Window);
    EXPECT_EQ(messageText(0, 10), L"ABCDE GHIJ");
}

TEST_F(GridMouseTest, TheRightButtonOnAControlCharacterDoesNotRepaintTheRow) {
    addTimeField(0, 3);
    addControlChar(0, 12, 0x05);
    moveTo(0, 4);
    ASSERT_EQ(back(0, 4), highlightBack);
    int32_t painted = 0;
    grid().Subscribe([&](std::string_view property) { painted += property == "Text"; });
    grid().UserMouseUp(Grid::RightButton, 0, 12 + first());
    EXPECT_EQ(popupBand(), "popOnControlChar");
    // The hit test unselected the field in the message; the grid shows it until the next paint.
    EXPECT_FALSE(message(0).GetVar(1)->IsSelected());
    EXPECT_EQ(back(0, 4), highlightBack);
    EXPECT_EQ(painted, 0);
}

TEST_F(GridMouseTest, NoMouseEventIsHandledWhileIgnoreGridEventsIsSet) {
    addTimeField(0, 3);
    editor().IgnoreGridEvents = true;
    moveTo(0, 4);
    grid().UserMouseMove(0, 9);
    grid().UserMouseUp(Grid::RightButton, 0, 4 + first());
    grid().UserMouseUp(Grid::RightButton, -1, -1);
    bool opened = false;
    pickControlChar(1, &opened);
    grid().UserDoubleClick(0, 20 + first());
    EXPECT_FALSE(message(0).GetVar(1)->IsSelected());
    EXPECT_EQ(back(0, 4), fieldBack);
    EXPECT_EQ(grid().ToolTipText(), L"");
    EXPECT_EQ(popupBand(), "");
    EXPECT_EQ(context->BeepCount, 0);
    EXPECT_FALSE(opened);
    EXPECT_EQ(driver.PendingDialogs(), 1u);
}

TEST_F(GridMouseTest, TheRightButtonOnABlankCellUnselectsAllAndOffersTheEmptyAreaPopup) {
    addTimeField(0, 3);
    moveTo(0, 3);
    grid().UserMouseUp(Grid::RightButton, 0, 20 + first());
    EXPECT_FALSE(message(0).GetVar(1)->IsSelected());
    EXPECT_EQ(back(0, 3), fieldBack);
    EXPECT_EQ(popupBand(), "popEmptyArea");
    EXPECT_EQ(caretPosition(), 20);
}

TEST_F(GridMouseTest, TheEmptyAreaPopupsNewVarStartsAFieldAtTheCaret) {
    grid().UserMouseUp(Grid::RightButton, 0, 2 + first());
    acceptTimeField(0);
    bar().UserPickPopupTool(tools::ID_NewVar);
    ASSERT_EQ(message(0).NumberOfVars(), 1);
    EXPECT_EQ(message(0).GetVar(1)->StartPosition(), 2);
    EXPECT_EQ(cells(0, 0, 10), L"AB11111CDE");
    EXPECT_EQ(back(0, 2), fieldBack);
}

// --- Commands on the caret position ---

TEST_F(GridMouseTest, ControlCharOnAFieldOpensNoDialogAndOnlyUnselects) {
    addTimeField(0, 3);
    moveTo(0, 4);
    bool opened = false;
    pickControlChar(1, &opened);
    bar().UserClickTool(tools::ID_ControlChar);
    EXPECT_FALSE(opened);
    EXPECT_EQ(driver.PendingDialogs(), 1u);
    EXPECT_FALSE(message(0).GetVar(1)->IsSelected());
    EXPECT_EQ(back(0, 4), fieldBack);
    EXPECT_EQ(message(0).ControlChars()[4], -1);
}

TEST_F(GridMouseTest, ControlCharFromTheToolbarPutsTheCodeAtTheCaret) {
    moveTo(1, 8);
    pickControlChar(0x0D);
    bar().UserClickTool(tools::ID_ControlChar);
    EXPECT_EQ(cell(1, 8), L"0D");
    EXPECT_FALSE(editor().IgnoreGridEvents);
}

TEST_F(GridMouseTest, NewVarOnAnExistingFieldEditsIt) {
    addTimeField(0, 3);
    moveTo(0, 5);
    driver.QueueDialog(scriptFor<frmProtocolVars>([](frmProtocolVars& dialog) { dialog.cmdCancel.UserClick(); }));
    bar().UserClickTool(tools::ID_NewVar);
    EXPECT_EQ(message(0).NumberOfVars(), 1);
    EXPECT_EQ(driver.PendingDialogs(), 0u);
}

// --- Failures ---

TEST_F(GridMouseTest, AFieldThatWouldPassTheLastPositionIsRefusedWithHostMessage159) {
    addTimeField(1, 496);  // 496 + 5 = 501
    EXPECT_EQ(shownMessages(), (std::vector<int32_t>{159}));
    EXPECT_EQ(message(1).NumberOfVars(), 0);
    EXPECT_EQ(cells(1, 490, 10), L"          ");
}

TEST_F(GridMouseTest, TheFiftyFirstFieldIsRefusedWithHostMessage160) {
    for (int32_t i = 0; i < 50; ++i) addTimeField(1, i * 5);
    ASSERT_EQ(message(1).NumberOfVars(), 50);
    EXPECT_EQ(cell(1, 245), L"50");
    const std::wstring before = message(1).MessageString();
    moveTo(1, 300);
    bar().UserClickTool(tools::ID_NewVar);
    EXPECT_EQ(shownMessages(), (std::vector<int32_t>{160}));
    EXPECT_EQ(context->Messages.at(0).Params, (std::vector<std::wstring>{L"50"}));
    EXPECT_EQ(message(1).NumberOfVars(), 50);
    EXPECT_EQ(message(1).MessageString(), before);
    EXPECT_EQ(cell(1, 300), L" ");
}

}  // namespace
}  // namespace qx::test
