// A framing grid on its own: the cells it paints and the bytes it stores for
// typed keys, Backspace, Delete and a code picked in the selector.
#include "editors/framing_grid.h"

#include <gtest/gtest.h>

#include <vector>

#include "field_editors/frm_protocol_hex_selector.h"
#include "platform/controls/form.h"
#include "platform/host/host_context.h"

namespace qx {
namespace {

struct Stored {
    int32_t Index;
    uint8_t Value;
    bool IsChar;
    bool operator==(const Stored&) const = default;
};

class FramingGridTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    Grid grid{L"flgSendSTX"};
    bool ignore = false;
    std::vector<Stored> stored;
    FramingGrid framing{grid, ignore, [this](int32_t i, uint8_t v, bool c) { stored.push_back({i, v, c}); }};

    void press(int32_t key) { framing.KeyPress(key); }
};

TEST_F(FramingGridTest, ItStartsAsOneRowOfOneCentredCellWithoutFixedCells) {
    EXPECT_EQ(grid.Rows(), 1);
    EXPECT_EQ(grid.Cols(), 1);
    EXPECT_EQ(grid.FixedRows(), 0);
    EXPECT_EQ(grid.FixedCols(), 0);
    EXPECT_EQ(grid.ColWidth(0), 400);
    EXPECT_EQ(grid.ColAlignment(0), Grid::AlignCenterCenter);
    // Every byte's cell keeps its width; a plain grid widens its last one.
    EXPECT_FALSE(grid.ExtendLastCol());
    EXPECT_TRUE(Grid(L"other").ExtendLastCol());
    EXPECT_EQ(grid.Row(), 0);
    EXPECT_EQ(grid.Col(), 0);
}

TEST_F(FramingGridTest, KeysStoreTypedBytesAndMoveWithinTheRow) {
    FramingGrid::SetFramingColumns(grid, 3);
    press('A');
    press(' ');
    press('B');
    press('C');
    EXPECT_EQ(grid.TextMatrix(0, 0), L"A");
    EXPECT_EQ(grid.TextMatrix(0, 1), L"");
    EXPECT_EQ(grid.TextMatrix(0, 2), L"C");
    EXPECT_EQ(grid.Col(), 2);
    press(8);
    EXPECT_EQ(grid.TextMatrix(0, 2), L"");
    EXPECT_EQ(grid.Col(), 1);
    int32_t del = keys::Delete;
    grid.Col(0);
    framing.KeyDown(del, 0);
    EXPECT_EQ(grid.TextMatrix(0, 0), L"");
    EXPECT_EQ(stored,
              (std::vector<Stored>{{0, 'A', true}, {2, 'B', true}, {2, 'C', true}, {2, 0, true}, {0, 0, true}}));
}

TEST_F(FramingGridTest, KeysAreIgnoredWhileTheDialogSaysSoButTheSelectorIsNot) {
    ignore = true;
    press('A');
    int32_t del = keys::Delete;
    framing.KeyDown(del, 0);
    EXPECT_TRUE(stored.empty());
    context->Script()->QueueDialog(scriptFor<frmProtocolHexSelector>([](frmProtocolHexSelector& dialog) {
        dialog.flgLowChars.UserClick(0x1B + 1, 0);
        dialog.cmdOk.UserClick();
    }));
    framing.DblClick();
    EXPECT_EQ(grid.TextMatrix(0, 0), L"1B");
    EXPECT_EQ(grid.CellBackColor(0, 0), FramingGrid::HexBackColor);
    EXPECT_EQ(stored, (std::vector<Stored>{{0, 0x1B, false}}));
}

TEST_F(FramingGridTest, FillShowsTypedBytesAsCharactersPickedOnesAsHexAndATypedZeroAsNothing) {
    FramingGrid::SetFramingColumns(grid, 4);
    FrameChars bytes{FrameChar{'x', true}, FrameChar{0x0D, false}, FrameChar{0, true}, FrameChar{0, false}};
    FramingGrid::FillFramingGrid(grid, bytes, 4);
    EXPECT_EQ(grid.TextMatrix(0, 0), L"x");
    EXPECT_EQ(grid.TextMatrix(0, 1), L"0D");
    EXPECT_EQ(grid.TextMatrix(0, 2), L"");
    EXPECT_EQ(grid.TextMatrix(0, 3), L"00");
    EXPECT_EQ(grid.CellBackColor(0, 3), FramingGrid::HexBackColor);
    EXPECT_FALSE(FramingGrid::CellsFilled(grid, 4));
    EXPECT_TRUE(FramingGrid::CellsFilled(grid, 2));
    FramingGrid::ClearFramingGrid(grid);
    EXPECT_EQ(grid.TextMatrix(0, 1), L"");
    EXPECT_NE(grid.CellBackColor(0, 1), FramingGrid::HexBackColor);
}

}  // namespace
}  // namespace qx
