// A framing grid of the serial Send and Scan dialogs (flgSendSTX,
// flgSendETX, flgSTX, flgETX): one row of one to four cells, each a start or
// end byte, given either as one typed character on white or as two
// hexadecimal digits on red picked from the control-character selector. An
// empty cell is a byte not given yet. The dialog hands the grid's key and
// double-click events to its FramingGrid, which stores each byte through the
// set's operation (SetSendSTXValue and its kin) and paints the cell.
#pragma once
#include <cstdint>
#include <functional>
#include <string>

#include "platform/controls/grid.h"
#include "sets/frame_char.h"

namespace qx {

class FramingGrid {
public:
    static constexpr int32_t ColumnWidth = 400;
    static constexpr uint32_t CharBackColor = 0xFFFFFF;
    static constexpr uint32_t HexBackColor = 255;
    static constexpr int32_t KeyBackspace = 8;
    static constexpr int32_t KeyBlank = 32;

    // Writes byte pIndex of the set's frame: value and whether it was typed.
    using StoreByte = std::function<void(int32_t pIndex, uint8_t pValue, bool pIsChar)>;

    // ignoreEvents is the dialog's IgnoreGridEvents: the keys are not
    // handled while it is set; the double-click does not look at it. Sets
    // the grid to one row without fixed cells and one column.
    FramingGrid(Grid& grid, const bool& ignoreEvents, StoreByte store);

    Grid& grid() const { return grid_; }

    // n columns of ColumnWidth, centred; current column 0.
    static void SetFramingColumns(Grid& grid, int32_t n);
    // Cells 0 to n - 1 from the stored bytes: a typed byte as its character
    // (a typed 0 is a cleared cell and shows nothing), a picked one as two
    // hexadecimal digits on red.
    static void FillFramingGrid(Grid& grid, const FrameChars& bytes, int32_t n);
    // Every cell empty, with no colour of its own.
    static void ClearFramingGrid(Grid& grid);
    // Whether cells 0 to length - 1 all hold something.
    static bool CellsFilled(const Grid& grid, int32_t length);
    static std::wstring hexText(uint8_t value);

    // A character goes into the current cell and the caret moves right
    // within the row; a blank only moves; Backspace empties the cell and
    // moves left.
    void KeyPress(int32_t& KeyAscii);
    // Delete empties the current cell.
    void KeyDown(int32_t& KeyCode, int32_t Shift);
    // The control-character selector on the current cell.
    void DblClick();

private:
    void putChar(int32_t column, uint8_t value);
    void clearCell(int32_t column);

    Grid& grid_;
    const bool& ignoreEvents_;
    StoreByte store_;
};

}  // namespace qx
