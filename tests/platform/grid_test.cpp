#include "platform/controls/grid.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/basics/runtime_error.h"
#include "platform/controls/form.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

using test::runtimeErrorOf;

// A grid of a header row, an index column and two text columns, with a log of its events.
class GridTest : public ::testing::Test {
protected:
    Grid grid{L"vsfGrid"};
    std::vector<std::string> events;

    void SetUp() override {
        grid.Cols(3);
        grid.Rows(4);
        for (int32_t r = 0; r < 4; ++r)
            for (int32_t c = 0; c < 3; ++c) grid.TextMatrix(r, c, std::to_wstring(r) + L"," + std::to_wstring(c));
        grid.OnRowColChange = [this] { log("RowColChange"); };
        grid.OnSelChange = [this] { log("SelChange"); };
        grid.OnClick = [this] { log("Click"); };
        grid.OnDblClick = [this] { log("DblClick"); };
        grid.OnBeforeEdit = [this](int32_t r, int32_t c, bool& cancel) {
            log("BeforeEdit", r, c);
            cancel = cancelEdit;
        };
        grid.OnStartEdit = [this](int32_t r, int32_t c, bool&) { log("StartEdit", r, c); };
        grid.OnAfterEdit = [this](int32_t r, int32_t c) { log("AfterEdit", r, c); };
        grid.OnCellButtonClick = [this](int32_t r, int32_t c) { log("CellButtonClick", r, c); };
    }
    void log(const std::string& name, int32_t r = -1, int32_t c = -1) {
        events.push_back(r < 0 ? name : name + " " + std::to_string(r) + "," + std::to_string(c));
    }
    bool cancelEdit = false;
};

TEST_F(GridTest, ANewGridHasOneFixedRowAndColumnAndStartsOnTheFirstScrollableCell) {
    Grid fresh(L"g");
    EXPECT_EQ(fresh.FixedRows(), 1);
    EXPECT_EQ(fresh.FixedCols(), 1);
    EXPECT_EQ(fresh.Row(), -1);
    fresh.Cols(3);
    fresh.Rows(2);
    EXPECT_EQ(fresh.Row(), 1);
    EXPECT_EQ(fresh.Col(), 1);
    EXPECT_EQ(fresh.TextMatrix(1, 2), L"");
}

TEST_F(GridTest, SelectionModeIsFreeOrByRowAndAnyOtherIsError380) {
    EXPECT_EQ(grid.SelectionMode(), Grid::SelectionFree);
    std::vector<std::string> told;
    grid.Subscribe([&](std::string_view property) { told.emplace_back(property); });
    grid.SelectionMode(Grid::SelectionByRow);
    EXPECT_EQ(grid.SelectionMode(), Grid::SelectionByRow);
    EXPECT_EQ(told, (std::vector<std::string>{"SelectionMode"}));
    EXPECT_EQ(runtimeErrorOf([&] { grid.SelectionMode(2); }), 380);
    EXPECT_EQ(grid.SelectionMode(), Grid::SelectionByRow);
}

TEST_F(GridTest, ResizingKeepsTheTextOfCellsThatStay) {
    grid.Rows(6);
    grid.Cols(4);
    EXPECT_EQ(grid.TextMatrix(3, 2), L"3,2");
    EXPECT_EQ(grid.TextMatrix(5, 3), L"");
    grid.Rows(2);
    EXPECT_EQ(grid.Rows(), 2);
    EXPECT_EQ(grid.TextMatrix(1, 1), L"1,1");
    EXPECT_EQ(runtimeErrorOf([&] { (void)grid.TextMatrix(2, 0); }), err::InvalidPropertyArrayIndex);
}

TEST_F(GridTest, ShrinkingBelowTheCurrentRowMovesItToTheLastRow) {
    grid.Select(3, 2);
    grid.Rows(3);
    EXPECT_EQ(grid.Row(), 2);
    grid.Rows(1);
    EXPECT_EQ(grid.Row(), -1);
}

TEST_F(GridTest, CellsOutsideTheGridAreError381) {
    EXPECT_EQ(runtimeErrorOf([&] { grid.TextMatrix(-1, 0, L"x"); }), err::InvalidPropertyArrayIndex);
    EXPECT_EQ(runtimeErrorOf([&] { grid.TextMatrix(0, 3, L"x"); }), err::InvalidPropertyArrayIndex);
    EXPECT_EQ(runtimeErrorOf([&] { grid.ColWidth(3, 10); }), err::InvalidPropertyArrayIndex);
    EXPECT_EQ(runtimeErrorOf([&] { grid.Rows(-1); }), err::InvalidPropertyValue);
}

TEST_F(GridTest, MovingTheCurrentCellFromCodeRaisesRowColChangeThenSelChange) {
    grid.Row(2);
    EXPECT_EQ(events, (std::vector<std::string>{"RowColChange", "SelChange"}));
    events.clear();
    grid.Row(2);
    EXPECT_TRUE(events.empty());
    EXPECT_EQ(runtimeErrorOf([&] { grid.Row(0); }), err::InvalidPropertyArrayIndex);
    EXPECT_EQ(runtimeErrorOf([&] { grid.Col(0); }), err::InvalidPropertyArrayIndex);
}

TEST_F(GridTest, AnEditableGridAsksBeforeEditWhenTheCurrentCellMoves) {
    grid.Editable(true);
    grid.Select(3, 2);
    EXPECT_EQ(events, (std::vector<std::string>{"RowColChange", "SelChange", "BeforeEdit 3,2"}));
    EXPECT_FALSE(grid.IsEditing());
}

TEST_F(GridTest, AClickOnAScrollableCellMovesThereBeforeTheClick) {
    grid.UserClick(2, 1);
    EXPECT_EQ(grid.Row(), 2);
    EXPECT_EQ(grid.MouseRow(), 2);
    EXPECT_EQ(grid.MouseCol(), 1);
    EXPECT_EQ(events, (std::vector<std::string>{"RowColChange", "SelChange", "Click"}));
}

TEST_F(GridTest, AClickOnTheCurrentCellOfAnEditableGridAsksBeforeEditAgain) {
    grid.Editable(true);
    grid.UserClick(1, 1);
    EXPECT_EQ(events, (std::vector<std::string>{"BeforeEdit 1,1", "Click"}));
}

TEST_F(GridTest, AClickOnAFixedCellLeavesTheCurrentCell) {
    grid.UserClick(0, 2);
    EXPECT_EQ(grid.Row(), 1);
    EXPECT_EQ(grid.MouseRow(), 0);
    EXPECT_EQ(events, (std::vector<std::string>{"Click"}));
}

TEST_F(GridTest, ArrowKeysMoveWithoutAClick) {
    grid.UserMoveTo(3, 1);
    EXPECT_EQ(grid.Row(), 3);
    EXPECT_EQ(events, (std::vector<std::string>{"RowColChange", "SelChange"}));
    grid.UserMoveTo(0, 1);
    grid.UserMoveTo(4, 1);
    EXPECT_EQ(grid.Row(), 3);
}

TEST_F(GridTest, ADisabledGridTakesNoUserAction) {
    grid.Enabled(false);
    grid.UserClick(2, 2);
    grid.UserDoubleClick(2, 2);
    EXPECT_EQ(grid.Row(), 1);
    EXPECT_TRUE(events.empty());
}

TEST_F(GridTest, EditCellAsksBeforeEditAndStartEditThenEditsTheCellText) {
    grid.EditCell();
    EXPECT_TRUE(grid.IsEditing());
    EXPECT_EQ(grid.EditText(), L"1,1");
    EXPECT_EQ(events, (std::vector<std::string>{"BeforeEdit 1,1", "StartEdit 1,1"}));
}

TEST_F(GridTest, BeforeEditMayRefuseTheEditor) {
    cancelEdit = true;
    grid.EditCell();
    EXPECT_FALSE(grid.IsEditing());
    EXPECT_EQ(events, (std::vector<std::string>{"BeforeEdit 1,1"}));
}

TEST_F(GridTest, TypingIsCutToEditMaxLengthAndEnterCommitsWithAfterEdit) {
    grid.EditMaxLength(12);
    grid.EditCell();
    grid.UserType(L"A description too long");
    EXPECT_EQ(grid.EditText(), L"A descriptio");
    EXPECT_EQ(grid.TextMatrix(1, 1), L"1,1");
    grid.UserKeyPress(13);
    EXPECT_FALSE(grid.IsEditing());
    EXPECT_EQ(grid.TextMatrix(1, 1), L"A descriptio");
    EXPECT_EQ(events.back(), "AfterEdit 1,1");
}

TEST_F(GridTest, EscapeDropsTheEditAndLeavesTheCell) {
    grid.EditCell();
    grid.UserType(L"new");
    grid.UserKeyPress(27);
    EXPECT_FALSE(grid.IsEditing());
    EXPECT_EQ(grid.TextMatrix(1, 1), L"1,1");
    EXPECT_NE(events.back(), "AfterEdit 1,1");
}

TEST_F(GridTest, TypingIntoAnEditableGridStartsTheEditor) {
    grid.Editable(true);
    grid.UserType(L"typed");
    EXPECT_TRUE(grid.IsEditing());
    grid.UserEndEdit();
    EXPECT_EQ(grid.TextMatrix(1, 1), L"typed");
}

TEST_F(GridTest, TypingIntoAGridThatIsNotEditableDoesNothing) {
    grid.UserType(L"typed");
    EXPECT_FALSE(grid.IsEditing());
    EXPECT_EQ(grid.TextMatrix(1, 1), L"1,1");
}

TEST_F(GridTest, MovingAwayCommitsTheEditBeforeTheMove) {
    grid.EditCell();
    grid.UserType(L"kept");
    events.clear();
    grid.UserClick(3, 2);
    EXPECT_EQ(grid.TextMatrix(1, 1), L"kept");
    EXPECT_EQ(events, (std::vector<std::string>{"AfterEdit 1,1", "RowColChange", "SelChange", "Click"}));
}

TEST_F(GridTest, ADoubleClickOnTheCurrentCellOfAnEditableGridEdits) {
    grid.Editable(true);
    grid.UserClick(2, 2);
    events.clear();
    grid.UserDoubleClick(2, 2);
    EXPECT_TRUE(grid.IsEditing());
    EXPECT_EQ(events.front(), "DblClick");
    EXPECT_EQ(grid.MouseRow(), 2);
}

TEST_F(GridTest, ADoubleClickOnAReadOnlyGridOnlyRaisesDblClick) {
    grid.UserDoubleClick(2, 1);
    EXPECT_FALSE(grid.IsEditing());
    EXPECT_EQ(events, (std::vector<std::string>{"DblClick"}));
    EXPECT_EQ(grid.MouseRow(), 2);
}

TEST_F(GridTest, TheEllipsisButtonReportsItsCell) {
    grid.UserCellButtonClick();
    EXPECT_TRUE(events.empty());
    grid.ComboList(Grid::EllipsisButton);
    grid.Select(2, 2);
    events.clear();
    grid.UserCellButtonClick();
    EXPECT_EQ(events, (std::vector<std::string>{"CellButtonClick 2,2"}));
}

TEST_F(GridTest, AddItemAppendsOrInsertsASplitRow) {
    grid.AddItem(L"4\tfour\textra\tignored");
    EXPECT_EQ(grid.Rows(), 5);
    EXPECT_EQ(grid.TextMatrix(4, 0), L"4");
    EXPECT_EQ(grid.TextMatrix(4, 1), L"four");
    EXPECT_EQ(grid.TextMatrix(4, 2), L"extra");
    grid.Select(2, 1);
    grid.AddItem(L"x", 1);
    EXPECT_EQ(grid.TextMatrix(1, 0), L"x");
    EXPECT_EQ(grid.TextMatrix(1, 1), L"");
    EXPECT_EQ(grid.TextMatrix(2, 0), L"1,0");
    EXPECT_EQ(grid.Row(), 3);  // the current row follows its line
}

TEST_F(GridTest, RemoveItemTakesTheRowAndKeepsTheCurrentCellInside) {
    grid.Select(3, 1);
    grid.RemoveItem(3);
    EXPECT_EQ(grid.Rows(), 3);
    EXPECT_EQ(grid.Row(), 2);
    EXPECT_EQ(grid.TextMatrix(2, 0), L"2,0");
    grid.RemoveItem(1);
    EXPECT_EQ(grid.TextMatrix(1, 0), L"2,0");
    EXPECT_EQ(runtimeErrorOf([&] { grid.RemoveItem(0); }), err::InvalidPropertyArrayIndex);
    EXPECT_EQ(runtimeErrorOf([&] { grid.RemoveItem(2); }), err::InvalidPropertyArrayIndex);
}

TEST_F(GridTest, FixedCellsArePaintedAsButtonsUnlessTheyHaveTheirOwnColour) {
    EXPECT_EQ(grid.CellBackColor(0, 1), colour::ButtonFace);
    EXPECT_EQ(grid.CellBackColor(1, 0), colour::ButtonFace);
    EXPECT_EQ(grid.CellBackColor(1, 1), colour::Window);
    EXPECT_EQ(grid.CellForeColor(1, 1), colour::WindowText);
    grid.CellBackColor(1, 1, 0x0000FF);
    grid.CellForeColor(0, 0, 0x123456);
    EXPECT_EQ(grid.CellBackColor(1, 1), 0x0000FFu);
    EXPECT_EQ(grid.CellForeColor(0, 0), 0x123456u);
}

TEST_F(GridTest, ColumnWidthsAreKept) {
    grid.ColWidth(1, 5895);
    EXPECT_EQ(grid.ColWidth(1), 5895);
    EXPECT_EQ(grid.ColWidth(2), 0);
}

TEST_F(GridTest, ObserversHearStructureTextCurrentCellAndEditor) {
    std::vector<std::string> heard;
    grid.Subscribe([&](std::string_view property) { heard.emplace_back(property); });
    grid.TextMatrix(1, 1, L"t");
    grid.Row(2);
    grid.AddItem(L"");
    grid.EditCell();
    grid.UserType(L"e");
    EXPECT_EQ(heard, (std::vector<std::string>{"Text", "Current", "Current", "Cells", "Editing", "EditText"}));
}

}  // namespace
}  // namespace qx
