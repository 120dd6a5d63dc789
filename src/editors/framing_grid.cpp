#include "editors/framing_grid.h"

#include <utility>

#include "field_editors/frm_protocol_hex_selector.h"
#include "platform/basics/ansi.h"
#include "platform/controls/control.h"

namespace qx {

namespace {
// The byte of a key: an ANSI code as it is, a wider character mapped.
uint8_t byteOfKey(int32_t KeyAscii) {
    if (KeyAscii >= 0 && KeyAscii <= 0xFF) return static_cast<uint8_t>(KeyAscii);
    return toAnsiByte(static_cast<wchar_t>(KeyAscii));
}
}  // namespace

FramingGrid::FramingGrid(Grid& grid, const bool& ignoreEvents, StoreByte store)
    : grid_(grid), ignoreEvents_(ignoreEvents), store_(std::move(store)) {
    grid_.FixedRows(0);
    grid_.FixedCols(0);
    grid_.Rows(1);
    // Each byte has a cell of its own size, also the last.
    grid_.ExtendLastCol(false);
    SetFramingColumns(grid_, 1);
}

std::wstring FramingGrid::hexText(uint8_t value) {
    static constexpr wchar_t digits[] = L"0123456789ABCDEF";
    return {digits[value >> 4], digits[value & 0xF]};
}

void FramingGrid::SetFramingColumns(Grid& grid, int32_t n) {
    grid.Cols(n);
    for (int32_t c = 0; c < n; ++c) {
        grid.ColWidth(c, ColumnWidth);
        grid.ColAlignment(c, Grid::AlignCenterCenter);
    }
    if (grid.Rows() > 0 && n > 0) grid.Col(0);
}

void FramingGrid::FillFramingGrid(Grid& grid, const FrameChars& bytes, int32_t n) {
    for (int32_t i = 0; i < n && i < static_cast<int32_t>(bytes.size()) && i < grid.Cols(); ++i) {
        const FrameChar& byte = bytes[static_cast<size_t>(i)];
        if (byte.ByAscii) {
            grid.TextMatrix(0, i, byte.Value == 0 ? std::wstring() : std::wstring(1, fromAnsiByte(byte.Value)));
        } else {
            grid.TextMatrix(0, i, hexText(byte.Value));
            grid.CellBackColor(0, i, HexBackColor);
        }
    }
}

void FramingGrid::ClearFramingGrid(Grid& grid) {
    if (grid.Rows() > 0 && grid.Cols() > 0) grid.ClearRow(0, 0);
}

bool FramingGrid::CellsFilled(const Grid& grid, int32_t length) {
    for (int32_t c = 0; c < length; ++c)
        if (c >= grid.Cols() || grid.Rows() < 1 || grid.TextMatrix(0, c).empty()) return false;
    return true;
}

void FramingGrid::putChar(int32_t column, uint8_t value) {
    grid_.TextMatrix(0, column, std::wstring(1, fromAnsiByte(value)));
    grid_.CellBackColor(0, column, CharBackColor);
    store_(column, value, true);
}

void FramingGrid::clearCell(int32_t column) {
    grid_.TextMatrix(0, column, L"");
    grid_.CellBackColor(0, column, CharBackColor);
    store_(column, 0, true);
}

void FramingGrid::KeyPress(int32_t& KeyAscii) {
    if (ignoreEvents_) return;
    const int32_t column = grid_.Col();
    const int32_t last = grid_.Cols() - 1;
    if (grid_.Row() < 0 || column < 0) return;
    if (KeyAscii == KeyBlank) {
        // A blank can't be typed as a byte: it only moves on.
        if (column < last) grid_.Col(column + 1);
        return;
    }
    if (KeyAscii == KeyBackspace) {
        clearCell(column);
        if (column > 0) grid_.Col(column - 1);
        return;
    }
    putChar(column, byteOfKey(KeyAscii));
    if (column < last) grid_.Col(column + 1);
}

void FramingGrid::KeyDown(int32_t& KeyCode, int32_t Shift) {
    (void)Shift;
    if (ignoreEvents_ || KeyCode != keys::Delete) return;
    const int32_t column = grid_.Col();
    if (grid_.Row() < 0 || column < 0) return;
    clearCell(column);
}

void FramingGrid::DblClick() {
    const int32_t column = grid_.Col();
    if (grid_.Row() < 0 || column < 0) return;
    uint8_t value = 0;
    if (!frmProtocolHexSelector().Edit(value, frmProtocolHexSelector::LowCharsTable)) return;
    store_(column, value, false);
    grid_.TextMatrix(0, column, hexText(value));
    grid_.CellBackColor(0, column, HexBackColor);
}

}  // namespace qx
