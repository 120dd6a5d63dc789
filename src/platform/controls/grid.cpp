#include "platform/controls/grid.h"

#include <algorithm>

#include "platform/basics/runtime_error.h"

namespace qx {

namespace {
constexpr int32_t keyEnter = 13;
constexpr int32_t keyEscape = 27;
}  // namespace

Grid::Grid(std::wstring name) : Control(std::move(name), colour::Window, colour::WindowText) {}

size_t Grid::indexOf(int32_t row, int32_t col) const {
    if (row < 0 || row >= rows_ || col < 0 || col >= cols_) raiseError(err::InvalidPropertyArrayIndex);
    return static_cast<size_t>(row) * static_cast<size_t>(cols_) + static_cast<size_t>(col);
}

Grid::Cell& Grid::cell(int32_t row, int32_t col) { return cells_[indexOf(row, col)]; }

const Grid::Cell& Grid::cell(int32_t row, int32_t col) const { return cells_[indexOf(row, col)]; }

void Grid::resize(int32_t rows, int32_t cols) {
    if (rows < 0 || cols < 0) raiseError(err::InvalidPropertyValue);
    if (editing_) FinishEditing();
    std::vector<Cell> cells(static_cast<size_t>(rows) * static_cast<size_t>(cols));
    for (int32_t r = 0; r < std::min(rows, rows_); ++r)
        for (int32_t c = 0; c < std::min(cols, cols_); ++c)
            cells[static_cast<size_t>(r) * static_cast<size_t>(cols) + static_cast<size_t>(c)] = std::move(cell(r, c));
    cells_ = std::move(cells);
    rows_ = rows;
    cols_ = cols;
    colWidths_.resize(static_cast<size_t>(cols), 0);
    clampCurrentCell();
    notify("Cells");
}

void Grid::Rows(int32_t value) { resize(value, cols_); }
void Grid::Cols(int32_t value) { resize(rows_, value); }

void Grid::FixedRows(int32_t value) {
    if (value < 0) raiseError(err::InvalidPropertyValue);
    fixedRows_ = value;
    clampCurrentCell();
    notify("Cells");
}

void Grid::FixedCols(int32_t value) {
    if (value < 0) raiseError(err::InvalidPropertyValue);
    fixedCols_ = value;
    clampCurrentCell();
    notify("Cells");
}

void Grid::clampCurrentCell() {
    if (rows_ <= fixedRows_ || cols_ <= fixedCols_) {
        row_ = col_ = -1;
    } else {
        row_ = std::clamp(row_, fixedRows_, rows_ - 1);
        col_ = std::clamp(col_, fixedCols_, cols_ - 1);
    }
    notify("Current");
}

const std::wstring& Grid::TextMatrix(int32_t row, int32_t col) const { return cell(row, col).Text; }

void Grid::TextMatrix(int32_t row, int32_t col, const std::wstring& value) {
    Cell& target = cell(row, col);
    if (target.Text == value) return;
    target.Text = value;
    notify("Text");
}

int32_t Grid::ColWidth(int32_t col) const {
    if (col < 0 || col >= cols_) raiseError(err::InvalidPropertyArrayIndex);
    return colWidths_[static_cast<size_t>(col)];
}

void Grid::ColWidth(int32_t col, int32_t twips) {
    if (col < 0 || col >= cols_) raiseError(err::InvalidPropertyArrayIndex);
    if (twips < 0) raiseError(err::InvalidPropertyValue);
    colWidths_[static_cast<size_t>(col)] = twips;
    notify("ColWidth");
}

uint32_t Grid::CellBackColor(int32_t row, int32_t col) const {
    const Cell& target = cell(row, col);
    if (target.BackColor) return *target.BackColor;
    return IsFixed(row, col) ? colour::ButtonFace : BackColor();
}

void Grid::CellBackColor(int32_t row, int32_t col, uint32_t colour) {
    cell(row, col).BackColor = colour;
    notify("Text");
}

uint32_t Grid::CellForeColor(int32_t row, int32_t col) const {
    const Cell& target = cell(row, col);
    if (target.ForeColor) return *target.ForeColor;
    return IsFixed(row, col) ? colour::ButtonText : ForeColor();
}

void Grid::CellForeColor(int32_t row, int32_t col, uint32_t colour) {
    cell(row, col).ForeColor = colour;
    notify("Text");
}

void Grid::AddItem(const std::wstring& tabbedText, int32_t index) {
    if (index < -1 || index > rows_) raiseError(err::InvalidPropertyArrayIndex);
    if (editing_) FinishEditing();
    int32_t at = index < 0 ? rows_ : index;
    std::vector<Cell> row(static_cast<size_t>(cols_));
    size_t start = 0;
    for (size_t c = 0; c < row.size() && start <= tabbedText.size(); ++c) {
        size_t tab = tabbedText.find(L'\t', start);
        row[c].Text = tabbedText.substr(start, tab == std::wstring::npos ? std::wstring::npos : tab - start);
        if (tab == std::wstring::npos) break;
        start = tab + 1;
    }
    cells_.insert(cells_.begin() + static_cast<std::ptrdiff_t>(at) * cols_, std::make_move_iterator(row.begin()),
                  std::make_move_iterator(row.end()));
    ++rows_;
    if (row_ >= at) ++row_;
    clampCurrentCell();
    notify("Cells");
}

void Grid::RemoveItem(int32_t row) {
    if (row < fixedRows_ || row >= rows_) raiseError(err::InvalidPropertyArrayIndex);
    if (editing_) FinishEditing();
    auto first = cells_.begin() + static_cast<std::ptrdiff_t>(row) * cols_;
    cells_.erase(first, first + cols_);
    --rows_;
    if (row_ > row) --row_;
    clampCurrentCell();
    notify("Cells");
}

void Grid::Select(int32_t row, int32_t col) {
    if (row < fixedRows_ || row >= rows_ || col < fixedCols_ || col >= cols_)
        raiseError(err::InvalidPropertyArrayIndex);
    moveTo(row, col);
}

void Grid::moveTo(int32_t row, int32_t col) {
    if (row == row_ && col == col_) return;
    if (editing_) FinishEditing();
    row_ = row;
    col_ = col;
    notify("Current");
    if (OnRowColChange) OnRowColChange();
    if (OnSelChange) OnSelChange();
    askBeforeEdit();
}

void Grid::askBeforeEdit() {
    // The answer only shapes the editor here; nothing is being edited yet.
    if (!editable_ || row_ < 0 || !OnBeforeEdit) return;
    bool cancel = false;
    OnBeforeEdit(row_, col_, cancel);
}

void Grid::MouseIcon(PicturePtr value) {
    mouseIcon_ = std::move(value);
    notify("MouseIcon");
}

void Grid::SelectionMode(int32_t value) {
    if (value != SelectionFree && value != SelectionByRow) raiseError(err::InvalidPropertyValue);
    if (selectionMode_ == value) return;
    selectionMode_ = value;
    notify("SelectionMode");
}

void Grid::EditCell() {
    if (row_ < 0) return;
    if (editing_) FinishEditing();
    bool cancel = false;
    if (OnBeforeEdit) OnBeforeEdit(row_, col_, cancel);
    if (cancel) return;
    if (OnStartEdit) OnStartEdit(row_, col_, cancel);
    if (cancel) return;
    editing_ = true;
    editText_ = TextMatrix(row_, col_);
    notify("Editing");
}

void Grid::EditMaxLength(int32_t value) {
    if (value < 0) raiseError(err::InvalidPropertyValue);
    editMaxLength_ = value;
    notify("EditMaxLength");
}

void Grid::ComboList(const std::wstring& value) {
    if (comboList_ == value) return;
    comboList_ = value;
    notify("ComboList");
}

void Grid::closeEditor() {
    editing_ = false;
    editText_.clear();
    notify("Editing");
}

void Grid::FinishEditing() {
    if (!editing_) return;
    int32_t row = row_, col = col_;
    std::wstring text = editText_;
    closeEditor();
    TextMatrix(row, col, text);
    if (OnAfterEdit) OnAfterEdit(row, col);
}

void Grid::UserClick(int32_t row, int32_t col) {
    if (row < 0 || row >= rows_ || col < 0 || col >= cols_ || !beginUserAction()) return;
    SetFocus();
    mouseRow_ = row;
    mouseCol_ = col;
    if (!IsFixed(row, col)) {
        // A click on the current cell asks again, so that its button shows.
        if (row == row_ && col == col_)
            askBeforeEdit();
        else
            moveTo(row, col);
    }
    if (OnClick) OnClick();
}

void Grid::UserDoubleClick(int32_t row, int32_t col) {
    if (row < 0 || row >= rows_ || col < 0 || col >= cols_ || !beginUserAction()) return;
    SetFocus();
    mouseRow_ = row;
    mouseCol_ = col;
    if (OnDblClick) OnDblClick();
    if (editable_ && !editing_ && !IsFixed(row, col) && row == row_ && col == col_) EditCell();
}

void Grid::UserMoveTo(int32_t row, int32_t col) {
    if (IsFixed(row, col) || row >= rows_ || col >= cols_ || !beginUserAction()) return;
    SetFocus();
    moveTo(row, col);
}

void Grid::UserType(const std::wstring& text) {
    if (!beginUserAction()) return;
    if (!editing_ && editable_) EditCell();
    if (!editing_) return;
    std::wstring typed = text;
    if (editMaxLength_ > 0 && typed.size() > static_cast<size_t>(editMaxLength_))
        typed.resize(static_cast<size_t>(editMaxLength_));
    if (typed == editText_) return;
    editText_ = std::move(typed);
    notify("EditText");
}

void Grid::UserEndEdit() {
    if (beginUserAction()) FinishEditing();
}

void Grid::UserCancelEdit() {
    if (beginUserAction() && editing_) closeEditor();
}

void Grid::UserCellButtonClick() {
    if (row_ < 0 || comboList_ != EllipsisButton || !beginUserAction()) return;
    if (OnCellButtonClick) OnCellButtonClick(row_, col_);
}

void Grid::endEditForOtherControl() { FinishEditing(); }

void Grid::keyAction(int32_t KeyAscii) {
    if (KeyAscii == keyEnter) FinishEditing();
    if (KeyAscii == keyEscape && editing_) closeEditor();
}

}  // namespace qx
