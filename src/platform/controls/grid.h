// The grid model: cells addressed by row and column, fixed header rows and
// columns, a current cell, and a cell editor that code or a person starts.
// Moving the current cell raises RowColChange, then SelChange, also from
// code; an editable grid then asks BeforeEdit about the new cell, so that a
// dialog can set the editor's limit and button before anyone types. An edit
// in progress is committed (AfterEdit) before the current cell moves, and
// before a person acts on another control of the form.
#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/controls/control.h"

namespace qx {

class Grid : public Control {
public:
    // A cell's ComboList that puts an ellipsis button into the cell.
    static constexpr const wchar_t* EllipsisButton = L"...";

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
    const std::wstring& TextMatrix(int32_t row, int32_t col) const;
    void TextMatrix(int32_t row, int32_t col, const std::wstring& value);
    // In twips; 0 until set.
    int32_t ColWidth(int32_t col) const;
    void ColWidth(int32_t col, int32_t twips);
    // A cell's own colours; without them, fixed cells are button face and the others take the grid's.
    uint32_t CellBackColor(int32_t row, int32_t col) const;
    void CellBackColor(int32_t row, int32_t col, uint32_t colour);
    uint32_t CellForeColor(int32_t row, int32_t col) const;
    void CellForeColor(int32_t row, int32_t col, uint32_t colour);

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
    // Where the last click or double click landed.
    int32_t MouseRow() const { return mouseRow_; }
    int32_t MouseCol() const { return mouseCol_; }
    PicturePtr MouseIcon() const { return mouseIcon_; }
    void MouseIcon(PicturePtr value);

    // What a view highlights of the current cell: the cell alone, or its whole row.
    static constexpr int32_t SelectionFree = 0;
    static constexpr int32_t SelectionByRow = 1;
    int32_t SelectionMode() const { return selectionMode_; }
    // Anything but the two modes is error 380.
    void SelectionMode(int32_t value);

    bool Editable() const { return editable_; }
    void Editable(bool value) { editable_ = value; }
    // Starts the cell editor on the current cell unless BeforeEdit cancels.
    void EditCell();
    bool IsEditing() const { return editing_; }
    const std::wstring& EditText() const { return editText_; }
    // What a person may type into the editor; 0 is no limit.
    int32_t EditMaxLength() const { return editMaxLength_; }
    void EditMaxLength(int32_t value);
    // For the current cell: EllipsisButton or empty.
    const std::wstring& ComboList() const { return comboList_; }
    void ComboList(const std::wstring& value);
    // Writes the editor's text into the cell and raises AfterEdit.
    void FinishEditing();

    // A click on a cell: a scrollable cell becomes current (an editable grid
    // asks BeforeEdit also when it already was), then Click.
    void UserClick(int32_t row, int32_t col);
    // DblClick; an editable grid then edits the cell.
    void UserDoubleClick(int32_t row, int32_t col);
    // The arrow keys: the cell becomes current, without a click.
    void UserMoveTo(int32_t row, int32_t col);
    // Replaces the editor's text, cut to EditMaxLength; an editable grid
    // not yet editing starts the editor first.
    void UserType(const std::wstring& text);
    // Enter ends the edit; Escape drops it and leaves the cell as it was.
    void UserEndEdit();
    void UserCancelEdit();
    // The ellipsis button of the current cell.
    void UserCellButtonClick();

    std::function<void()> OnRowColChange;
    std::function<void()> OnSelChange;
    std::function<void()> OnClick;
    std::function<void()> OnDblClick;
    std::function<void(int32_t Row, int32_t Col, bool& Cancel)> OnBeforeEdit;
    std::function<void(int32_t Row, int32_t Col, bool& Cancel)> OnStartEdit;
    std::function<void(int32_t Row, int32_t Col)> OnAfterEdit;
    std::function<void(int32_t Row, int32_t Col)> OnCellButtonClick;

protected:
    void keyAction(int32_t KeyAscii) override;
    void endEditForOtherControl() override;

private:
    struct Cell {
        std::wstring Text;
        std::optional<uint32_t> BackColor;
        std::optional<uint32_t> ForeColor;
    };
    // Error 381 outside the grid.
    size_t indexOf(int32_t row, int32_t col) const;
    Cell& cell(int32_t row, int32_t col);
    const Cell& cell(int32_t row, int32_t col) const;
    void resize(int32_t rows, int32_t cols);
    // Keeps the current cell inside the scrollable part after a change of shape.
    void clampCurrentCell();
    void moveTo(int32_t row, int32_t col);
    void askBeforeEdit();
    void closeEditor();

    std::vector<Cell> cells_;
    std::vector<int32_t> colWidths_;
    int32_t rows_ = 0, cols_ = 0;
    int32_t fixedRows_ = 1, fixedCols_ = 1;
    int32_t row_ = -1, col_ = -1;
    int32_t mouseRow_ = -1, mouseCol_ = -1;
    PicturePtr mouseIcon_;
    int32_t selectionMode_ = SelectionFree;
    bool editable_ = false;
    bool editing_ = false;
    std::wstring editText_;
    int32_t editMaxLength_ = 0;
    std::wstring comboList_;
};

}  // namespace qx
