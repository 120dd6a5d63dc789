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

TEST_F(GridTest, RowsThatGoAndComeBackAreEmptyAndTheOthersKeepTheirTextsAndColours) {
    grid.TextMatrix(1, 1, L"a long text");
    grid.TextMatrix(3, 1, L"another long text");
    grid.CellBackColor(3, 2, 255);
    grid.Rows(2);
    grid.Rows(4);
    EXPECT_EQ(grid.TextMatrix(1, 1), L"a long text");
    EXPECT_EQ(grid.TextMatrix(0, 2), L"0,2");
    EXPECT_EQ(grid.TextMatrix(3, 1), L"");
    EXPECT_EQ(grid.TextMatrix(2, 0), L"");
    EXPECT_EQ(grid.CellBackColor(3, 2), grid.BackColor());
    // The same shape again changes nothing.
    grid.Rows(4);
    EXPECT_EQ(grid.TextMatrix(1, 1), L"a long text");
    EXPECT_EQ(grid.TextMatrix(1, 2), L"1,2");
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

// A grid shaped as a message grid: no header row, a fixed number column and
// one cell per character position.
class MessageGridTest : public ::testing::Test {
protected:
    static constexpr int32_t rows = 255, cols = 502;
    Grid grid{L"FlgScan"};
    std::vector<std::string> events;

    void SetUp() override {
        grid.FixedRows(0);
        grid.FixedCols(1);
        grid.Rows(rows);
        grid.Cols(cols);
        grid.ColWidth(0, 345);
        grid.ColWidth(1, 795);
        for (int32_t c = 2; c < cols; ++c) grid.ColWidth(c, 300);
    }
    void log(const std::string& text) { events.push_back(text); }
};

TEST_F(MessageGridTest, ZeroFixedRowsPutsTheCurrentCellOnRowZero) {
    EXPECT_EQ(grid.FixedRows(), 0);
    EXPECT_EQ(grid.Row(), 0);
    EXPECT_EQ(grid.Col(), 1);
    grid.Select(0, 501);
    EXPECT_EQ(grid.Col(), 501);
    EXPECT_FALSE(grid.IsFixed(0, 1));
    EXPECT_TRUE(grid.IsFixed(0, 0));
}

TEST_F(MessageGridTest, EveryCellKeepsItsOwnTextAcrossTheWholeGrid) {
    for (int32_t r = 0; r < rows; ++r)
        for (int32_t c = 0; c < cols; ++c)
            grid.TextMatrix(r, c, std::wstring(1, static_cast<wchar_t>(L'A' + (r + c) % 26)));
    EXPECT_EQ(grid.TextMatrix(0, 0), L"A");
    EXPECT_EQ(grid.TextMatrix(254, 501), std::wstring(1, static_cast<wchar_t>(L'A' + (254 + 501) % 26)));
    EXPECT_EQ(grid.TextMatrix(100, 2), std::wstring(1, static_cast<wchar_t>(L'A' + 102 % 26)));
}

TEST_F(MessageGridTest, TextsOfAnyLengthReadBackAsWritten) {
    grid.TextMatrix(3, 1, L"500");
    grid.TextMatrix(3, 2, L"a longer text than a cell holds");
    grid.TextMatrix(3, 3, L"");
    EXPECT_EQ(grid.TextMatrix(3, 1), L"500");
    EXPECT_EQ(grid.TextMatrix(3, 2), L"a longer text than a cell holds");
    grid.TextMatrix(3, 2, L"7F");
    EXPECT_EQ(grid.TextMatrix(3, 2), L"7F");
    grid.TextMatrix(3, 2, L"long again, and longer still");
    EXPECT_EQ(grid.TextMatrix(3, 2), L"long again, and longer still");
    EXPECT_EQ(grid.TextMatrix(3, 3), L"");
}

TEST_F(MessageGridTest, LongTextsMoveWithTheirRowsAndSurviveAResize) {
    grid.TextMatrix(5, 4, L"field number twelve");
    grid.TextMatrix(6, 4, L"another long one");
    grid.RemoveItem(5);
    EXPECT_EQ(grid.TextMatrix(5, 4), L"another long one");
    grid.AddItem(L"0\tfirst long cell text\tx", 0);
    EXPECT_EQ(grid.TextMatrix(0, 1), L"first long cell text");
    EXPECT_EQ(grid.TextMatrix(6, 4), L"another long one");
    grid.Cols(10);
    EXPECT_EQ(grid.TextMatrix(6, 4), L"another long one");
    grid.TextMatrix(1, 9, L"a new long text in a freed place");
    EXPECT_EQ(grid.TextMatrix(1, 9), L"a new long text in a freed place");
    EXPECT_EQ(grid.TextMatrix(6, 4), L"another long one");
}

TEST_F(MessageGridTest, ClearRowFromAColumnEmptiesTextAndColoursToTheLastColumnOnly) {
    for (int32_t c = 0; c < cols; ++c) {
        grid.TextMatrix(7, c, L"x");
        grid.CellBackColor(7, c, 255);
        grid.CellForeColor(7, c, 0xFFFFFF);
    }
    grid.TextMatrix(7, 300, L"a text longer than three");
    grid.TextMatrix(8, 2, L"y");
    grid.ClearRow(7, 2);
    EXPECT_EQ(grid.TextMatrix(7, 1), L"x");
    EXPECT_EQ(grid.CellBackColor(7, 1), 255u);
    EXPECT_EQ(grid.TextMatrix(7, 2), L"");
    EXPECT_EQ(grid.TextMatrix(7, 300), L"");
    EXPECT_EQ(grid.TextMatrix(7, 501), L"");
    EXPECT_EQ(grid.CellBackColor(7, 2), colour::Window);
    EXPECT_EQ(grid.CellForeColor(7, 501), colour::WindowText);
    EXPECT_EQ(grid.CellBackColor(7, 0), 255u);
    EXPECT_EQ(grid.TextMatrix(8, 2), L"y");
}

TEST_F(MessageGridTest, ClearRowTellsObserversOnceAboutThatRow) {
    for (int32_t c = 1; c < cols; ++c) grid.TextMatrix(9, c, L"z");
    std::vector<std::pair<std::string, int32_t>> heard;
    grid.Subscribe([&](std::string_view property) { heard.emplace_back(property, grid.ChangedRow()); });
    grid.ClearRow(9, 1);
    EXPECT_EQ(heard, (std::vector<std::pair<std::string, int32_t>>{{"Text", 9}}));
    grid.ClearRow(9, 1);
    EXPECT_EQ(heard.size(), 1u);
    EXPECT_EQ(grid.ChangedRow(), -1);
}

TEST_F(MessageGridTest, ClearRowOutsideTheGridIsError381) {
    EXPECT_EQ(runtimeErrorOf([&] { grid.ClearRow(255, 1); }), err::InvalidPropertyArrayIndex);
    EXPECT_EQ(runtimeErrorOf([&] { grid.ClearRow(0, 502); }), err::InvalidPropertyArrayIndex);
    EXPECT_EQ(runtimeErrorOf([&] { grid.ClearRow(-1, 0); }), err::InvalidPropertyArrayIndex);
}

TEST_F(MessageGridTest, ACellTextChangeTellsItsRow) {
    std::vector<int32_t> rowsHeard;
    grid.Subscribe([&](std::string_view property) {
        if (property == "Text") rowsHeard.push_back(grid.ChangedRow());
    });
    grid.TextMatrix(12, 40, L"Q");
    grid.CellBackColor(13, 40, 255);
    grid.CellForeColor(14, 40, 0);
    EXPECT_EQ(rowsHeard, (std::vector<int32_t>{12, 13, 14}));
}

TEST_F(MessageGridTest, WhileRedrawIsOffViewsHearNothingAndOneRedrawWhenItIsOn) {
    std::vector<std::string> heard;
    grid.Subscribe([&](std::string_view property) { heard.emplace_back(property); });
    grid.Redraw(false);
    EXPECT_FALSE(grid.Redraw());
    grid.Rows(3);
    grid.Cols(501);
    grid.TextMatrix(0, 1, L"A");
    grid.CellBackColor(0, 1, 255);
    grid.ColWidth(1, 300);
    grid.ColAlignment(1, Grid::AlignCenterCenter);
    grid.ClearRow(0, 1);
    grid.Select(2, 5);
    EXPECT_EQ(heard, (std::vector<std::string>{"Redraw"}));
    grid.Redraw(true);
    EXPECT_TRUE(grid.Redraw());
    EXPECT_EQ(heard, (std::vector<std::string>{"Redraw", "Redraw"}));
    grid.Redraw(true);
    EXPECT_EQ(heard.size(), 2u);
    grid.TextMatrix(0, 1, L"B");
    EXPECT_EQ(heard.back(), "Text");
}

TEST_F(MessageGridTest, EventsStillComeWhileRedrawIsOff) {
    grid.OnRowColChange = [this] { log("RowColChange"); };
    grid.Redraw(false);
    grid.Select(1, 2);
    EXPECT_EQ(events, (std::vector<std::string>{"RowColChange"}));
    EXPECT_EQ(grid.Row(), 1);
}

TEST_F(MessageGridTest, CellGeometryIsInTwipsFromTheGridsTopLeft) {
    grid.Select(0, 1);
    EXPECT_EQ(grid.CellLeft(), 345);
    EXPECT_EQ(grid.CellTop(), 0);
    EXPECT_EQ(grid.CellWidth(), 795);
    EXPECT_EQ(grid.CellHeight(), Grid::DefaultRowHeight);
    EXPECT_EQ(Grid::DefaultRowHeight, 300);
    grid.Select(3, 4);
    EXPECT_EQ(grid.CellLeft(), 345 + 795 + 300 + 300);
    EXPECT_EQ(grid.CellTop(), 3 * 300);
    EXPECT_EQ(grid.CellWidth(), 300);
    EXPECT_EQ(grid.CellLeft(0, 0), 0);
    EXPECT_EQ(grid.CellLeft(10, 501), 345 + 795 + 499 * 300);
    EXPECT_EQ(grid.CellTop(254, 0), 254 * 300);
}

TEST_F(MessageGridTest, RowHeightsShapeTheTopsOfTheRowsBelow) {
    grid.RowHeight(0, 400);
    grid.RowHeight(1, 250);
    EXPECT_EQ(grid.RowHeight(0), 400);
    EXPECT_EQ(grid.RowHeight(2), 300);
    EXPECT_EQ(grid.CellTop(2, 3), 650);
    EXPECT_EQ(grid.CellHeight(1, 3), 250);
    grid.AddItem(L"", 0);
    EXPECT_EQ(grid.RowHeight(0), 300);
    EXPECT_EQ(grid.RowHeight(1), 400);
    EXPECT_EQ(runtimeErrorOf([&] { grid.RowHeight(0, -1); }), err::InvalidPropertyValue);
    EXPECT_EQ(runtimeErrorOf([&] { (void)grid.RowHeight(256); }), err::InvalidPropertyArrayIndex);
}

TEST_F(MessageGridTest, GeometryOfACellOutsideTheGridIsError381) {
    EXPECT_EQ(runtimeErrorOf([&] { (void)grid.CellLeft(0, 502); }), err::InvalidPropertyArrayIndex);
    EXPECT_EQ(runtimeErrorOf([&] { (void)grid.CellTop(255, 0); }), err::InvalidPropertyArrayIndex);
    Grid empty(L"g");
    EXPECT_EQ(runtimeErrorOf([&] { (void)empty.CellLeft(); }), err::InvalidPropertyArrayIndex);
}

TEST_F(MessageGridTest, ColumnsStartAlignedGeneralAndTakeAnyOfTheTenAlignments) {
    EXPECT_EQ(grid.ColAlignment(0), Grid::AlignGeneral);
    grid.ColAlignment(0, Grid::AlignCenterCenter);
    EXPECT_EQ(grid.ColAlignment(0), 4);
    EXPECT_EQ(grid.ColAlignment(1), Grid::AlignGeneral);
    EXPECT_EQ(runtimeErrorOf([&] { grid.ColAlignment(1, 10); }), err::InvalidPropertyValue);
    EXPECT_EQ(runtimeErrorOf([&] { grid.ColAlignment(502, 4); }), err::InvalidPropertyArrayIndex);
}

TEST_F(MessageGridTest, AMoveReportsTheOldAndTheNewCellBetweenRowColChangeAndSelChange) {
    grid.OnRowColChange = [this] { log("RowColChange"); };
    grid.OnSelChange = [this] { log("SelChange"); };
    grid.OnAfterRowColChange = [this](int32_t OldRow, int32_t OldCol, int32_t NewRow, int32_t NewCol) {
        log("AfterRowColChange " + std::to_string(OldRow) + "," + std::to_string(OldCol) + " -> " +
            std::to_string(NewRow) + "," + std::to_string(NewCol));
    };
    grid.Select(4, 10);
    EXPECT_EQ(events, (std::vector<std::string>{"RowColChange", "AfterRowColChange 0,1 -> 4,10", "SelChange"}));
}

TEST_F(MessageGridTest, AHandlerOfTheMoveMayMoveAgainAndTheGridEndsWhereItWasSent) {
    std::vector<std::string> moves;
    grid.OnAfterRowColChange = [&](int32_t OldRow, int32_t OldCol, int32_t NewRow, int32_t NewCol) {
        moves.push_back(std::to_string(OldRow) + "," + std::to_string(OldCol) + "->" + std::to_string(NewRow) + "," +
                        std::to_string(NewCol));
        if (NewCol < 2) grid.Col(2);
    };
    grid.Select(3, 1);
    EXPECT_EQ(grid.Row(), 3);
    EXPECT_EQ(grid.Col(), 2);
    EXPECT_EQ(moves, (std::vector<std::string>{"0,1->3,1", "3,1->3,2"}));
}

TEST_F(MessageGridTest, ArrowKeysMoveTheCurrentCellInsideTheScrollableCells) {
    grid.Select(1, 2);
    grid.UserKeyDown(keys::Right);
    EXPECT_EQ(grid.Col(), 3);
    grid.UserKeyDown(keys::Left);
    grid.UserKeyDown(keys::Left);
    EXPECT_EQ(grid.Col(), 1);
    grid.UserKeyDown(keys::Left);
    EXPECT_EQ(grid.Col(), 1);  // the number column is fixed
    grid.UserKeyDown(keys::Down);
    EXPECT_EQ(grid.Row(), 2);
    grid.UserKeyDown(keys::Up);
    grid.UserKeyDown(keys::Up);
    grid.UserKeyDown(keys::Up);
    EXPECT_EQ(grid.Row(), 0);
}

TEST_F(MessageGridTest, HomeAndEndGoToTheFirstAndLastColumnAndWithCtrlToTheFirstAndLastRow) {
    grid.Select(5, 200);
    grid.UserKeyDown(keys::End);
    EXPECT_EQ(grid.Col(), 501);
    EXPECT_EQ(grid.Row(), 5);
    grid.UserKeyDown(keys::Home);
    EXPECT_EQ(grid.Col(), 1);
    EXPECT_EQ(grid.Row(), 5);
    grid.UserKeyDown(keys::End, keys::CtrlMask);
    EXPECT_EQ(grid.Row(), 254);
    EXPECT_EQ(grid.Col(), 501);
    grid.UserKeyDown(keys::Home, keys::CtrlMask);
    EXPECT_EQ(grid.Row(), 0);
    EXPECT_EQ(grid.Col(), 1);
}

TEST_F(MessageGridTest, PageKeysMoveByPageRowsAndStopAtTheEdges) {
    EXPECT_EQ(grid.PageRows(), 10);
    grid.PageRows(100);
    grid.Select(20, 7);
    grid.UserKeyDown(keys::PageDown);
    EXPECT_EQ(grid.Row(), 120);
    grid.UserKeyDown(keys::PageDown);
    grid.UserKeyDown(keys::PageDown);
    EXPECT_EQ(grid.Row(), 254);
    grid.UserKeyDown(keys::PageUp);
    EXPECT_EQ(grid.Row(), 154);
    grid.PageRows(200);
    grid.UserKeyDown(keys::PageUp);
    EXPECT_EQ(grid.Row(), 0);
    EXPECT_EQ(grid.Col(), 7);
    EXPECT_EQ(runtimeErrorOf([&] { grid.PageRows(0); }), err::InvalidPropertyValue);
}

TEST_F(MessageGridTest, KeyDownHearsTheKeyFirstAndAKeyCodeSetToZeroIsSwallowed) {
    grid.Select(2, 9);
    grid.OnKeyDown = [this](int32_t& KeyCode, int32_t Shift) {
        log("KeyDown " + std::to_string(KeyCode) + " " + std::to_string(Shift));
        if (KeyCode == keys::Home) {
            grid.Col(2);
            KeyCode = 0;
        }
    };
    grid.UserKeyDown(keys::Home, keys::ShiftMask);
    EXPECT_EQ(grid.Col(), 2);
    grid.UserKeyDown(keys::End);
    EXPECT_EQ(grid.Col(), 501);
    EXPECT_EQ(events, (std::vector<std::string>{"KeyDown 36 1", "KeyDown 35 0"}));
}

TEST_F(MessageGridTest, KeysThatMoveNothingOnlyRaiseKeyDown) {
    grid.Select(2, 9);
    grid.OnKeyDown = [this](int32_t& KeyCode, int32_t) { log("KeyDown " + std::to_string(KeyCode)); };
    grid.OnRowColChange = [this] { log("RowColChange"); };
    grid.UserKeyDown(keys::Delete);
    grid.UserKeyDown(65);
    EXPECT_EQ(events, (std::vector<std::string>{"KeyDown 46", "KeyDown 65"}));
    EXPECT_EQ(grid.Col(), 9);
}

TEST_F(MessageGridTest, AMoveByKeyRaisesTheChangedCellEvent) {
    grid.Select(0, 1);
    grid.OnAfterRowColChange = [this](int32_t OldRow, int32_t OldCol, int32_t NewRow, int32_t NewCol) {
        log(std::to_string(OldRow) + "," + std::to_string(OldCol) + "->" + std::to_string(NewRow) + "," +
            std::to_string(NewCol));
    };
    grid.UserKeyDown(keys::Down);
    grid.UserKeyDown(keys::Right);
    grid.UserKeyDown(keys::Up);
    EXPECT_EQ(events, (std::vector<std::string>{"0,1->1,1", "1,1->1,2", "1,2->0,2"}));
}

TEST_F(MessageGridTest, ADisabledGridTakesNoKeysAndNoMouse) {
    std::vector<std::string> heard;
    grid.OnKeyDown = [&](int32_t&, int32_t) { heard.push_back("KeyDown"); };
    grid.OnMouseMove = [&](int32_t, int32_t, float, float) { heard.push_back("MouseMove"); };
    grid.OnMouseUp = [&](int32_t, int32_t, float, float) { heard.push_back("MouseUp"); };
    grid.Enabled(false);
    grid.UserKeyDown(keys::Right);
    grid.UserMouseMove(3, 3);
    grid.UserMouseUp(Grid::RightButton, 3, 3);
    EXPECT_TRUE(heard.empty());
    EXPECT_EQ(grid.Col(), 1);
    EXPECT_EQ(grid.MouseRow(), -1);
}

TEST_F(MessageGridTest, MouseMoveSetsTheMouseCellThenRaisesMouseMove) {
    std::vector<std::string> moves;
    grid.OnMouseMove = [&](int32_t Button, int32_t Shift, float X, float Y) {
        moves.push_back(std::to_string(grid.MouseRow()) + "," + std::to_string(grid.MouseCol()) + " b" +
                        std::to_string(Button) + " s" + std::to_string(Shift) + " x" + std::to_string(int(X)) + " y" +
                        std::to_string(int(Y)));
    };
    grid.UserMouseMove(2, 2);
    grid.UserMouseMove(0, 0, Grid::LeftButton, keys::ShiftMask);
    grid.UserMouseMove(-1, -1);
    grid.UserMouseMove(300, 4);
    EXPECT_EQ(moves, (std::vector<std::string>{"2,2 b0 s0 x1290 y750", "0,0 b1 s1 x172 y150", "-1,-1 b0 s0 x-1 y-1",
                                               "-1,-1 b0 s0 x-1 y-1"}));
    EXPECT_EQ(grid.Row(), 0);  // the current cell stays
}

TEST_F(MessageGridTest, TheRightButtonRaisesMouseUpWithButton2AndLeavesTheCurrentCell) {
    grid.OnMouseUp = [this](int32_t Button, int32_t, float, float) {
        log("MouseUp " + std::to_string(Button) + " at " + std::to_string(grid.MouseRow()) + "," +
            std::to_string(grid.MouseCol()));
    };
    grid.OnClick = [this] { log("Click"); };
    grid.UserMouseUp(Grid::RightButton, 4, 20);
    EXPECT_EQ(events, (std::vector<std::string>{"MouseUp 2 at 4,20"}));
    EXPECT_EQ(grid.Row(), 0);
    EXPECT_EQ(grid.Col(), 1);
    grid.UserMouseUp(Grid::RightButton, -1, -1);
    EXPECT_EQ(events.back(), "MouseUp 2 at -1,-1");
}

TEST_F(MessageGridTest, ALeftClickMovesThenRaisesMouseUpWithButton1ThenClick) {
    grid.OnRowColChange = [this] { log("RowColChange"); };
    grid.OnMouseUp = [this](int32_t Button, int32_t, float, float) { log("MouseUp " + std::to_string(Button)); };
    grid.OnClick = [this] { log("Click"); };
    grid.UserClick(6, 6);
    EXPECT_EQ(events, (std::vector<std::string>{"RowColChange", "MouseUp 1", "Click"}));
}

TEST_F(MessageGridTest, TheToolTipTextIsTheGridsOwnAndTellsObservers) {
    std::vector<std::string> heard;
    grid.Subscribe([&](std::string_view property) { heard.emplace_back(property); });
    grid.OnMouseMove = [this](int32_t, int32_t, float, float) {
        grid.ToolTipText(grid.MouseCol() >= 2 ? L"Index: " + std::to_wstring(grid.MouseCol() - 2) : L"");
    };
    grid.UserMouseMove(0, 2);
    EXPECT_EQ(grid.ToolTipText(), L"Index: 0");
    grid.UserMouseMove(0, 1);
    EXPECT_EQ(grid.ToolTipText(), L"");
    EXPECT_EQ(heard, (std::vector<std::string>{"ToolTipText", "ToolTipText"}));
}

TEST(GridWindow, EveryControlHasAWindowHandleOfItsOwn) {
    Grid first(L"FlgSend");
    Grid second(L"FlgScan");
    EXPECT_NE(first.hWnd(), 0);
    EXPECT_NE(second.hWnd(), 0);
    EXPECT_NE(first.hWnd(), second.hWnd());
}

TEST(GridComboList, SplittingAListTextGivesItsItemsWithoutTheClosingBar) {
    EXPECT_EQ(splitComboList(L"0|1|2|"), (std::vector<std::wstring>{L"0", L"1", L"2"}));
    EXPECT_EQ(splitComboList(L"a|b"), (std::vector<std::wstring>{L"a", L"b"}));
    EXPECT_EQ(splitComboList(L"|x|y"), (std::vector<std::wstring>{L"x", L"y"}));
    EXPECT_EQ(splitComboList(L"a||b|"), (std::vector<std::wstring>{L"a", L"", L"b"}));
    EXPECT_TRUE(splitComboList(L"").empty());
}

// Column 1 of a Scan message grid: a drop-down of the lengths 0 to 500.
class LengthColumnTest : public MessageGridTest {
protected:
    void SetUp() override {
        MessageGridTest::SetUp();
        std::wstring list;
        for (int32_t n = 0; n <= 500; ++n) list += std::to_wstring(n) + L"|";
        grid.ColComboList(1, list);
        for (int32_t r = 0; r < 3; ++r) grid.TextMatrix(r, 1, L"0");
        grid.OnAfterRowColChange = [this](int32_t, int32_t, int32_t, int32_t NewCol) { grid.Editable(NewCol == 1); };
        grid.OnChangeEdit = [this] { log("ChangeEdit " + std::to_string(std::stoi(grid.EditText()))); };
        grid.OnComboCloseUp = [this](int32_t Row, int32_t Col, bool& FinishEdit) {
            log("ComboCloseUp " + std::to_string(Row) + "," + std::to_string(Col) + (FinishEdit ? " finish" : ""));
        };
        grid.OnAfterEdit = [this](int32_t Row, int32_t Col) {
            log("AfterEdit " + std::to_string(Row) + "," + std::to_string(Col) + " " +
                std::to_string(std::stoi(grid.EditText())));
        };
        grid.Select(1, 5);
    }
};

TEST_F(LengthColumnTest, TheColumnListIsKeptAsGivenAndOnlyItsColumnOffersItems) {
    EXPECT_EQ(grid.ColComboList(1).substr(0, 8), L"0|1|2|3|");
    EXPECT_EQ(grid.ColComboList(1).substr(grid.ColComboList(1).size() - 4), L"500|");
    EXPECT_EQ(grid.ColComboList(2), L"");
    EXPECT_TRUE(grid.ComboItems().empty());
    grid.Col(1);
    const std::vector<std::wstring> items = grid.ComboItems();
    ASSERT_EQ(items.size(), 501u);
    EXPECT_EQ(items.front(), L"0");
    EXPECT_EQ(items.back(), L"500");
}

TEST_F(LengthColumnTest, PickingANumberGivesTheEditTextToChangeEditCloseUpAndAfterEdit) {
    grid.UserClick(1, 1);
    EXPECT_TRUE(grid.Editable());
    events.clear();
    grid.UserPickComboItem(42);
    EXPECT_EQ(events, (std::vector<std::string>{"ChangeEdit 42", "ComboCloseUp 1,1 finish", "AfterEdit 1,1 42"}));
    EXPECT_EQ(grid.TextMatrix(1, 1), L"42");
    EXPECT_FALSE(grid.IsEditing());
    EXPECT_EQ(grid.EditText(), L"");
}

TEST_F(LengthColumnTest, ComboCloseUpMayKeepTheEditorOpen) {
    grid.OnComboCloseUp = [](int32_t, int32_t, bool& FinishEdit) { FinishEdit = false; };
    grid.UserClick(2, 1);
    grid.UserPickComboItem(7);
    EXPECT_TRUE(grid.IsEditing());
    EXPECT_EQ(grid.EditText(), L"7");
    EXPECT_EQ(grid.TextMatrix(2, 1), L"0");
    grid.UserEndEdit();
    EXPECT_EQ(grid.TextMatrix(2, 1), L"7");
}

TEST_F(LengthColumnTest, PickingTheNumberTheCellShowsChangesNothingButStillEndsTheEdit) {
    grid.UserClick(0, 1);
    events.clear();
    grid.UserPickComboItem(0);
    EXPECT_EQ(events, (std::vector<std::string>{"ComboCloseUp 0,1 finish", "AfterEdit 0,1 0"}));
}

TEST_F(LengthColumnTest, NoPickOutsideTheListOrInAColumnWithoutOne) {
    grid.UserClick(1, 1);
    events.clear();
    grid.UserPickComboItem(501);
    grid.UserPickComboItem(-1);
    grid.UserClick(1, 3);
    events.clear();
    grid.UserPickComboItem(3);
    EXPECT_TRUE(events.empty());
    EXPECT_EQ(grid.TextMatrix(1, 3), L"");
    EXPECT_EQ(grid.TextMatrix(1, 1), L"0");
}

TEST_F(LengthColumnTest, AGridThatIsNotEditableOpensNoDropDown) {
    grid.OnAfterRowColChange = nullptr;
    grid.Editable(false);
    grid.UserClick(1, 1);
    grid.UserPickComboItem(9);
    EXPECT_TRUE(events.empty());
    EXPECT_EQ(grid.TextMatrix(1, 1), L"0");
}

TEST_F(LengthColumnTest, TheCellsOwnComboListWinsOverTheColumns) {
    grid.Col(1);
    grid.ComboList(L"8|16|");
    EXPECT_EQ(grid.ComboItems(), (std::vector<std::wstring>{L"8", L"16"}));
    grid.ComboList(Grid::EllipsisButton);
    EXPECT_TRUE(grid.ComboItems().empty());
}

TEST_F(LengthColumnTest, OpeningTheDropDownStartsTheEditorOnlyWhereThereIsAList) {
    grid.OnBeforeEdit = [this](int32_t Row, int32_t Col, bool&) {
        log("BeforeEdit " + std::to_string(Row) + "," + std::to_string(Col));
    };
    grid.UserClick(1, 1);
    events.clear();
    grid.UserDropDown();
    EXPECT_TRUE(grid.IsEditing());
    EXPECT_EQ(grid.EditText(), L"0");
    EXPECT_EQ(events, (std::vector<std::string>{"BeforeEdit 1,1"}));
    grid.UserPickComboItem(3);
    EXPECT_EQ(grid.TextMatrix(1, 1), L"3");
    grid.UserClick(1, 4);
    grid.Editable(true);
    grid.UserDropDown();
    EXPECT_FALSE(grid.IsEditing());
}

TEST_F(LengthColumnTest, TypingRaisesChangeEditWithTheNewText) {
    grid.UserClick(1, 1);
    events.clear();
    grid.UserType(L"12");
    EXPECT_EQ(events, (std::vector<std::string>{"ChangeEdit 12"}));
    EXPECT_EQ(grid.EditText(), L"12");
}

}  // namespace
}  // namespace qx
