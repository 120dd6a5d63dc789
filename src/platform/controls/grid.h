// The grid model: cells addressed by row and column, fixed header rows and
// columns, a current cell, and a cell editor that code or a person starts.
// Moving the current cell raises RowColChange, AfterRowColChange (with the
// old and the new cell), then SelChange, also from code; an editable grid
// then asks BeforeEdit about the new cell, so that a dialog can set the
// editor's limit and button before anyone types. An edit in progress is
// committed (AfterEdit) before the current cell moves, and before a person
// acts on another control of the form.
//
// Geometry is logical and in twips: a cell's left is the sum of the widths of
// the columns before it, its top the sum of the heights of the rows above;
// scrolling is the view's business. A cell keeps a text of up to three
// characters inside itself, so that a grid of many one-character cells (a
// message grid of 255 rows by 502 columns) costs no allocation per cell.
#pragma once
#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/controls/control.h"

namespace qx {

// The items of a drop-down list text "a|b|c|": split at the bars; a bar at
// the end closes the last item and adds none, a bar at the start (which marks
// a list one may also type into) is no item either.
std::vector<std::wstring> splitComboList(const std::wstring& list);

class Grid : public Control {
public:
    // A cell's ComboList that puts an ellipsis button into the cell.
    static constexpr const wchar_t* EllipsisButton = L"...";

    // Alignments of a column's cells, horizontal then vertical.
    static constexpr int32_t AlignLeftTop = 0, AlignLeftCenter = 1, AlignLeftBottom = 2;
    static constexpr int32_t AlignCenterTop = 3, AlignCenterCenter = 4, AlignCenterBottom = 5;
    static constexpr int32_t AlignRightTop = 6, AlignRightCenter = 7, AlignRightBottom = 8;
    // Text to the left, numbers to the right: what a column starts with.
    static constexpr int32_t AlignGeneral = 9;

    // The height of a row until it is given one.
    static constexpr int32_t DefaultRowHeight = 300;

    // Buttons of MouseMove and MouseUp.
    static constexpr int32_t LeftButton = 1, RightButton = 2, MiddleButton = 4;

    explicit Grid(std::wstring name);

    int32_t Rows() const { return rows_; }
    // New rows are empty; the current cell stays within the grid.
    void Rows(int32_t value);
    int32_t Cols() const { return cols_; }
    void Cols(int32_t value);
    int32_t FixedRows() const { return fixedRows_; }
    void FixedRows(int32_t value);
    int32_t FixedCols() const { return fixedCols_; }
    void FixedCols(int32_t value);
    bool IsFixed(int32_t row, int32_t col) const { return row < fixedRows_ || col < fixedCols_; }

    // A cell outside the grid is error 381.
    std::wstring TextMatrix(int32_t row, int32_t col) const;
    void TextMatrix(int32_t row, int32_t col, const std::wstring& value);
    // In twips; 0 until set.
    int32_t ColWidth(int32_t col) const;
    void ColWidth(int32_t col, int32_t twips);
    // In twips; DefaultRowHeight until set.
    int32_t RowHeight(int32_t row) const;
    void RowHeight(int32_t row, int32_t twips);
    // One of the Align constants; anything else is error 380.
    int32_t ColAlignment(int32_t col) const;
    void ColAlignment(int32_t col, int32_t value);
    // A cell's own colours; without them, fixed cells are button face and the others take the grid's.
    uint32_t CellBackColor(int32_t row, int32_t col) const;
    void CellBackColor(int32_t row, int32_t col, uint32_t colour);
    uint32_t CellForeColor(int32_t row, int32_t col) const;
    void CellForeColor(int32_t row, int32_t col, uint32_t colour);
    // Empties the cells of the row from column fromCol to the last: their
    // text and their own colours. One "Text" notification for the row.
    void ClearRow(int32_t row, int32_t fromCol);

    // The current cell's place and size in twips; error 381 without one.
    int32_t CellLeft() const;
    int32_t CellTop() const;
    int32_t CellWidth() const;
    int32_t CellHeight() const;
    // The same for any cell.
    int32_t CellLeft(int32_t row, int32_t col) const;
    int32_t CellTop(int32_t row, int32_t col) const;
    int32_t CellWidth(int32_t row, int32_t col) const;
    int32_t CellHeight(int32_t row, int32_t col) const;

    // While off, the grid tells its views nothing about its cells, current
    // cell and columns, so nothing is painted; switching it on tells them
    // "Redraw" once, after which a view shows everything anew. Switching it
    // off is told as "Redraw" too, so that a view can stop painting.
    bool Redraw() const { return redraw_; }
    void Redraw(bool value);
    // The row that the "Text" being told is about, or -1 when it may be any.
    int32_t ChangedRow() const { return changedRow_; }

    // Appends a row, or puts it before row index; the text fills its cells
    // from column 0, split at tabs.
    void AddItem(const std::wstring& tabbedText, int32_t index = -1);
    // A fixed row or one outside the grid is error 381.
    void RemoveItem(int32_t row);

    int32_t Row() const { return row_; }
    int32_t Col() const { return col_; }
    // Moving to a cell outside the scrollable part is error 381.
    void Row(int32_t value) { Select(value, col_); }
    void Col(int32_t value) { Select(row_, value); }
    void Select(int32_t row, int32_t col);
    // The cell under the mouse: where it last moved, was pressed or released;
    // -1 outside the cells.
    int32_t MouseRow() const { return mouseRow_; }
    int32_t MouseCol() const { return mouseCol_; }
    PicturePtr MouseIcon() const { return mouseIcon_; }
    void MouseIcon(PicturePtr value);
    // How many rows Page Up and Page Down move; a view sets what it shows.
    int32_t PageRows() const { return pageRows_; }
    // Below 1 is error 380.
    void PageRows(int32_t value);

    // What a view highlights of the current cell: the cell alone, or its whole row.
    static constexpr int32_t SelectionFree = 0;
    static constexpr int32_t SelectionByRow = 1;
    int32_t SelectionMode() const { return selectionMode_; }
    // Anything but the two modes is error 380.
    void SelectionMode(int32_t value);

    // Whether a view widens the last column to fill its width; a grid of
    // cells of one size (a row of frame bytes) keeps every column as it is.
    bool ExtendLastCol() const { return extendLastCol_; }
    void ExtendLastCol(bool value);

    bool Editable() const { return editable_; }
    void Editable(bool value) { editable_ = value; }
    // Starts the cell editor on the current cell unless BeforeEdit cancels.
    void EditCell();
    bool IsEditing() const { return editing_; }
    // The editor's text, while it is open and during AfterEdit.
    const std::wstring& EditText() const { return editText_; }
    // What a person may type into the editor; 0 is no limit.
    int32_t EditMaxLength() const { return editMaxLength_; }
    void EditMaxLength(int32_t value);
    // For the current cell: EllipsisButton, a list text, or empty.
    const std::wstring& ComboList() const { return comboList_; }
    void ComboList(const std::wstring& value);
    // A drop-down list for every cell of a column, as a list text
    // ("0|1|2|"); empty is none. The current cell's own ComboList wins.
    const std::wstring& ColComboList(int32_t col) const;
    void ColComboList(int32_t col, const std::wstring& value);
    // The items that the editor of the current cell offers; none for an
    // ellipsis button or a cell without a list.
    std::vector<std::wstring> ComboItems() const;
    // Writes the editor's text into the cell and raises AfterEdit.
    void FinishEditing();

    // A click on a cell: a scrollable cell becomes current (an editable grid
    // asks BeforeEdit also when it already was), then MouseUp with the left
    // button, then Click.
    void UserClick(int32_t row, int32_t col);
    // DblClick; an editable grid then edits the cell.
    void UserDoubleClick(int32_t row, int32_t col);
    // The arrow keys: the cell becomes current, without a click.
    void UserMoveTo(int32_t row, int32_t col);
    // The mouse over a cell (-1 for outside the cells): MouseRow and
    // MouseCol follow, then MouseMove.
    void UserMouseMove(int32_t row, int32_t col, int32_t Button = 0, int32_t Shift = 0);
    // A button released over a cell (-1 for outside): MouseRow and MouseCol
    // follow, then MouseUp. The current cell stays: only a left click
    // (UserClick) moves it.
    void UserMouseUp(int32_t Button, int32_t row, int32_t col, int32_t Shift = 0);
    // Replaces the editor's text, cut to EditMaxLength; an editable grid
    // not yet editing starts the editor first. Raises ChangeEdit.
    void UserType(const std::wstring& text);
    // A person opens the drop-down of the current cell: an editable grid
    // whose current cell offers ComboItems starts the editor (BeforeEdit,
    // StartEdit), which shows them.
    void UserDropDown();
    // Picks item index of ComboItems in the drop-down of the current cell:
    // an editable grid not yet editing starts the editor, the editor's text
    // becomes the item (ChangeEdit), ComboCloseUp is asked, and unless it
    // says otherwise the edit is finished (AfterEdit).
    void UserPickComboItem(int32_t index);
    // Enter ends the edit; Escape drops it and leaves the cell as it was.
    void UserEndEdit();
    void UserCancelEdit();
    // The ellipsis button of the current cell.
    void UserCellButtonClick();

    std::function<void()> OnRowColChange;
    std::function<void(int32_t OldRow, int32_t OldCol, int32_t NewRow, int32_t NewCol)> OnAfterRowColChange;
    std::function<void()> OnSelChange;
    std::function<void()> OnClick;
    std::function<void()> OnDblClick;
    // X and Y are twips at the middle of the cell, -1 outside the cells.
    std::function<void(int32_t Button, int32_t Shift, float X, float Y)> OnMouseMove;
    std::function<void(int32_t Button, int32_t Shift, float X, float Y)> OnMouseUp;
    std::function<void(int32_t Row, int32_t Col, bool& Cancel)> OnBeforeEdit;
    std::function<void(int32_t Row, int32_t Col, bool& Cancel)> OnStartEdit;
    std::function<void()> OnChangeEdit;
    std::function<void(int32_t Row, int32_t Col, bool& FinishEdit)> OnComboCloseUp;
    std::function<void(int32_t Row, int32_t Col)> OnAfterEdit;
    std::function<void(int32_t Row, int32_t Col)> OnCellButtonClick;

protected:
    void keyAction(int32_t KeyAscii) override;
    void endEditForOtherControl() override;
    // The arrows, Home, End (with Ctrl: also the first or last row) and the
    // page keys move the current cell.
    void keyDownAction(int32_t KeyCode, int32_t Shift) override;

private:
    // A text of up to InlineChars characters lies in the cell; a longer one
    // in the grid's pool, by its slot.
    struct Cell {
        static constexpr uint8_t InlineChars = 3;
        static constexpr uint8_t HasBackColor = 1, HasForeColor = 2, Pooled = 4;
        std::array<wchar_t, InlineChars> Chars{};
        uint32_t BackColor = 0;
        uint32_t ForeColor = 0;
        uint32_t Slot = 0;
        uint8_t Length = 0;
        uint8_t Flags = 0;
    };
    // Error 381 outside the grid.
    size_t indexOf(int32_t row, int32_t col) const;
    Cell& cell(int32_t row, int32_t col);
    const Cell& cell(int32_t row, int32_t col) const;
    std::wstring textOf(const Cell& cell) const;
    bool hasText(const Cell& cell, const std::wstring& value) const;
    void setText(Cell& cell, const std::wstring& value);
    // Gives a pooled text's slot back; the cell is then empty.
    void clearCell(Cell& cell);
    void checkCol(int32_t col) const;
    void checkRow(int32_t row) const;
    void resize(int32_t rows, int32_t cols);
    // Keeps the current cell inside the scrollable part after a change of shape.
    void clampCurrentCell();
    void moveTo(int32_t row, int32_t col);
    void askBeforeEdit();
    void closeEditor();
    void setMouseCell(int32_t row, int32_t col);
    float mouseX() const;
    float mouseY() const;
    // Tells views about cells, unless redrawing is off.
    void notifyCells(std::string_view property, int32_t row = -1);

    std::vector<Cell> cells_;
    std::vector<std::wstring> pool_;
    std::vector<uint32_t> freeSlots_;
    std::vector<int32_t> colWidths_;
    std::vector<int32_t> colAlignments_;
    std::vector<std::wstring> colComboLists_;
    std::vector<int32_t> rowHeights_;
    int32_t rows_ = 0, cols_ = 0;
    int32_t fixedRows_ = 1, fixedCols_ = 1;
    int32_t row_ = -1, col_ = -1;
    int32_t mouseRow_ = -1, mouseCol_ = -1;
    int32_t pageRows_ = 10;
    PicturePtr mouseIcon_;
    int32_t selectionMode_ = SelectionFree;
    bool extendLastCol_ = true;
    bool redraw_ = true;
    int32_t changedRow_ = -1;
    bool editable_ = false;
    bool editing_ = false;
    std::wstring editText_;
    int32_t editMaxLength_ = 0;
    std::wstring comboList_;
};

}  // namespace qx
