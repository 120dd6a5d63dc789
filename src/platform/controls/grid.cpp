#include "platform/controls/grid.h"

#include <algorithm>
#include <utility>

#include "platform/basics/runtime_error.h"

namespace qx {

namespace {
constexpr int32_t keyEnter = 13;
constexpr int32_t keyEscape = 27;
}  // namespace

std::vector<std::wstring> splitComboList(const std::wstring& list) {
    std::vector<std::wstring> items;
    size_t start = !list.empty() && list.front() == L'|' ? 1 : 0;
    while (start < list.size()) {
        const size_t bar = list.find(L'|', start);
        if (bar == std::wstring::npos) {
            items.push_back(list.substr(start));
            break;
        }
        items.push_back(list.substr(start, bar - start));
        start = bar + 1;
    }
    return items;
}

Grid::Grid(std::wstring name) : Control(std::move(name), colour::Window, colour::WindowText) {}

size_t Grid::indexOf(int32_t row, int32_t col) const {
    if (row < 0 || row >= rows_ || col < 0 || col >= cols_) raiseError(err::InvalidPropertyArrayIndex);
    return static_cast<size_t>(row) * static_cast<size_t>(cols_) + static_cast<size_t>(col);
}

Grid::Cell& Grid::cell(int32_t row, int32_t col) { return cells_[indexOf(row, col)]; }

const Grid::Cell& Grid::cell(int32_t row, int32_t col) const { return cells_[indexOf(row, col)]; }

void Grid::checkCol(int32_t col) const {
    if (col < 0 || col >= cols_) raiseError(err::InvalidPropertyArrayIndex);
}

void Grid::checkRow(int32_t row) const {
    if (row < 0 || row >= rows_) raiseError(err::InvalidPropertyArrayIndex);
}

std::wstring Grid::textOf(const Cell& target) const {
    if (target.Flags & Cell::Pooled) return pool_[target.Slot];
    return std::wstring(target.Chars.data(), target.Length);
}

bool Grid::hasText(const Cell& target, const std::wstring& value) const {
    if (target.Flags & Cell::Pooled) return pool_[target.Slot] == value;
    return value.size() == target.Length && std::equal(value.begin(), value.end(), target.Chars.begin());
}

void Grid::setText(Cell& target, const std::wstring& value) {
    if (value.size() <= Cell::InlineChars) {
        if (target.Flags & Cell::Pooled) {
            pool_[target.Slot].clear();
            pool_[target.Slot].shrink_to_fit();
            freeSlots_.push_back(target.Slot);
            target.Flags &= static_cast<uint8_t>(~Cell::Pooled);
            target.Slot = 0;
        }
        std::copy(value.begin(), value.end(), target.Chars.begin());
        target.Length = static_cast<uint8_t>(value.size());
        return;
    }
    if (!(target.Flags & Cell::Pooled)) {
        if (freeSlots_.empty()) {
            target.Slot = static_cast<uint32_t>(pool_.size());
            pool_.emplace_back();
        } else {
            target.Slot = freeSlots_.back();
            freeSlots_.pop_back();
        }
        target.Flags |= Cell::Pooled;
        target.Length = 0;
    }
    pool_[target.Slot] = value;
}

void Grid::clearCell(Cell& target) {
    if (target.Flags & Cell::Pooled) {
        pool_[target.Slot].clear();
        pool_[target.Slot].shrink_to_fit();
        freeSlots_.push_back(target.Slot);
    }
    target = Cell{};
}

void Grid::notifyCells(std::string_view property, int32_t row) {
    if (!redraw_) return;
    changedRow_ = row;
    notify(property);
    changedRow_ = -1;
}

void Grid::Redraw(bool value) {
    if (redraw_ == value) return;
    redraw_ = value;
    notify("Redraw");
}

void Grid::resize(int32_t rows, int32_t cols) {
    if (rows < 0 || cols < 0) raiseError(err::InvalidPropertyValue);
    if (editing_) FinishEditing();
    if (cols == cols_) {
        // The rows stay where they are: only those that go are emptied.
        for (auto it = cells_.begin() + static_cast<std::ptrdiff_t>(std::min(rows, rows_)) * cols; it != cells_.end();
             ++it)
            clearCell(*it);
        cells_.resize(static_cast<size_t>(rows) * static_cast<size_t>(cols));
    } else {
        std::vector<Cell> cells(static_cast<size_t>(rows) * static_cast<size_t>(cols));
        for (int32_t r = 0; r < rows_; ++r)
            for (int32_t c = 0; c < cols_; ++c) {
                Cell& old = cell(r, c);
                if (r < rows && c < cols)
                    cells[static_cast<size_t>(r) * static_cast<size_t>(cols) + static_cast<size_t>(c)] = old;
                else
                    clearCell(old);
            }
        cells_ = std::move(cells);
    }
    rows_ = rows;
    cols_ = cols;
    colWidths_.resize(static_cast<size_t>(cols), 0);
    colAlignments_.resize(static_cast<size_t>(cols), AlignGeneral);
    colComboLists_.resize(static_cast<size_t>(cols));
    rowHeights_.resize(static_cast<size_t>(rows), DefaultRowHeight);
    if (pool_.size() > 0 && freeSlots_.size() == pool_.size()) {
        pool_.clear();
        freeSlots_.clear();
    }
    clampCurrentCell();
    notifyCells("Cells");
}

void Grid::Rows(int32_t value) { resize(value, cols_); }
void Grid::Cols(int32_t value) { resize(rows_, value); }

void Grid::FixedRows(int32_t value) {
    if (value < 0) raiseError(err::InvalidPropertyValue);
    fixedRows_ = value;
    clampCurrentCell();
    notifyCells("Cells");
}

void Grid::FixedCols(int32_t value) {
    if (value < 0) raiseError(err::InvalidPropertyValue);
    fixedCols_ = value;
    clampCurrentCell();
    notifyCells("Cells");
}

void Grid::clampCurrentCell() {
    if (rows_ <= fixedRows_ || cols_ <= fixedCols_) {
        row_ = col_ = -1;
    } else {
        row_ = std::clamp(row_, fixedRows_, rows_ - 1);
        col_ = std::clamp(col_, fixedCols_, cols_ - 1);
    }
    notifyCells("Current");
}

std::wstring Grid::TextMatrix(int32_t row, int32_t col) const { return textOf(cell(row, col)); }

void Grid::TextMatrix(int32_t row, int32_t col, const std::wstring& value) {
    Cell& target = cell(row, col);
    if (hasText(target, value)) return;
    setText(target, value);
    notifyCells("Text", row);
}

int32_t Grid::ColWidth(int32_t col) const {
    checkCol(col);
    return colWidths_[static_cast<size_t>(col)];
}

void Grid::ColWidth(int32_t col, int32_t twips) {
    checkCol(col);
    if (twips < 0) raiseError(err::InvalidPropertyValue);
    colWidths_[static_cast<size_t>(col)] = twips;
    notifyCells("ColWidth");
}

int32_t Grid::RowHeight(int32_t row) const {
    checkRow(row);
    return rowHeights_[static_cast<size_t>(row)];
}

void Grid::RowHeight(int32_t row, int32_t twips) {
    checkRow(row);
    if (twips < 0) raiseError(err::InvalidPropertyValue);
    if (rowHeights_[static_cast<size_t>(row)] == twips) return;
    rowHeights_[static_cast<size_t>(row)] = twips;
    notifyCells("RowHeight");
}

int32_t Grid::ColAlignment(int32_t col) const {
    checkCol(col);
    return colAlignments_[static_cast<size_t>(col)];
}

void Grid::ColAlignment(int32_t col, int32_t value) {
    checkCol(col);
    if (value < AlignLeftTop || value > AlignGeneral) raiseError(err::InvalidPropertyValue);
    if (colAlignments_[static_cast<size_t>(col)] == value) return;
    colAlignments_[static_cast<size_t>(col)] = value;
    notifyCells("ColAlignment");
}

uint32_t Grid::CellBackColor(int32_t row, int32_t col) const {
    const Cell& target = cell(row, col);
    if (target.Flags & Cell::HasBackColor) return target.BackColor;
    return IsFixed(row, col) ? colour::ButtonFace : BackColor();
}

void Grid::CellBackColor(int32_t row, int32_t col, uint32_t colour) {
    Cell& target = cell(row, col);
    target.BackColor = colour;
    target.Flags |= Cell::HasBackColor;
    notifyCells("Text", row);
}

uint32_t Grid::CellForeColor(int32_t row, int32_t col) const {
    const Cell& target = cell(row, col);
    if (target.Flags & Cell::HasForeColor) return target.ForeColor;
    return IsFixed(row, col) ? colour::ButtonText : ForeColor();
}

void Grid::CellForeColor(int32_t row, int32_t col, uint32_t colour) {
    Cell& target = cell(row, col);
    target.ForeColor = colour;
    target.Flags |= Cell::HasForeColor;
    notifyCells("Text", row);
}

void Grid::ClearRow(int32_t row, int32_t fromCol) {
    const size_t first = indexOf(row, fromCol);
    const size_t end = first + static_cast<size_t>(cols_ - fromCol);
    bool changed = false;
    for (size_t i = first; i < end; ++i) {
        Cell& target = cells_[i];
        if (target.Flags == 0 && target.Length == 0) continue;
        clearCell(target);
        changed = true;
    }
    if (changed) notifyCells("Text", row);
}

int32_t Grid::CellLeft(int32_t row, int32_t col) const {
    indexOf(row, col);
    int32_t left = 0;
    for (int32_t c = 0; c < col; ++c) left += colWidths_[static_cast<size_t>(c)];
    return left;
}

int32_t Grid::CellTop(int32_t row, int32_t col) const {
    indexOf(row, col);
    int32_t top = 0;
    for (int32_t r = 0; r < row; ++r) top += rowHeights_[static_cast<size_t>(r)];
    return top;
}

int32_t Grid::CellWidth(int32_t row, int32_t col) const {
    indexOf(row, col);
    return colWidths_[static_cast<size_t>(col)];
}

int32_t Grid::CellHeight(int32_t row, int32_t col) const {
    indexOf(row, col);
    return rowHeights_[static_cast<size_t>(row)];
}

int32_t Grid::CellLeft() const { return CellLeft(row_, col_); }
int32_t Grid::CellTop() const { return CellTop(row_, col_); }
int32_t Grid::CellWidth() const { return CellWidth(row_, col_); }
int32_t Grid::CellHeight() const { return CellHeight(row_, col_); }

void Grid::AddItem(const std::wstring& tabbedText, int32_t index) {
    if (index < -1 || index > rows_) raiseError(err::InvalidPropertyArrayIndex);
    if (editing_) FinishEditing();
    int32_t at = index < 0 ? rows_ : index;
    std::vector<Cell> row(static_cast<size_t>(cols_));
    size_t start = 0;
    for (size_t c = 0; c < row.size() && start <= tabbedText.size(); ++c) {
        size_t tab = tabbedText.find(L'\t', start);
        setText(row[c], tabbedText.substr(start, tab == std::wstring::npos ? std::wstring::npos : tab - start));
        if (tab == std::wstring::npos) break;
        start = tab + 1;
    }
    cells_.insert(cells_.begin() + static_cast<std::ptrdiff_t>(at) * cols_, row.begin(), row.end());
    rowHeights_.insert(rowHeights_.begin() + at, DefaultRowHeight);
    ++rows_;
    if (row_ >= at) ++row_;
    clampCurrentCell();
    notifyCells("Cells");
}

void Grid::RemoveItem(int32_t row) {
    if (row < fixedRows_ || row >= rows_) raiseError(err::InvalidPropertyArrayIndex);
    if (editing_) FinishEditing();
    auto first = cells_.begin() + static_cast<std::ptrdiff_t>(row) * cols_;
    for (auto it = first; it != first + cols_; ++it) clearCell(*it);
    cells_.erase(first, first + cols_);
    rowHeights_.erase(rowHeights_.begin() + row);
    --rows_;
    if (row_ > row) --row_;
    clampCurrentCell();
    notifyCells("Cells");
}

void Grid::Select(int32_t row, int32_t col) {
    if (row < fixedRows_ || row >= rows_ || col < fixedCols_ || col >= cols_)
        raiseError(err::InvalidPropertyArrayIndex);
    moveTo(row, col);
}

void Grid::moveTo(int32_t row, int32_t col) {
    if (row == row_ && col == col_) return;
    if (editing_) FinishEditing();
    const int32_t oldRow = row_, oldCol = col_;
    row_ = row;
    col_ = col;
    notifyCells("Current");
    if (OnRowColChange) OnRowColChange();
    if (OnAfterRowColChange) OnAfterRowColChange(oldRow, oldCol, row, col);
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

void Grid::PageRows(int32_t value) {
    if (value < 1) raiseError(err::InvalidPropertyValue);
    pageRows_ = value;
}

void Grid::ExtendLastCol(bool value) {
    if (extendLastCol_ == value) return;
    extendLastCol_ = value;
    notify("ExtendLastCol");
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

const std::wstring& Grid::ColComboList(int32_t col) const {
    checkCol(col);
    return colComboLists_[static_cast<size_t>(col)];
}

void Grid::ColComboList(int32_t col, const std::wstring& value) {
    checkCol(col);
    if (colComboLists_[static_cast<size_t>(col)] == value) return;
    colComboLists_[static_cast<size_t>(col)] = value;
    notifyCells("ColComboList");
}

std::vector<std::wstring> Grid::ComboItems() const {
    if (col_ < 0) return {};
    const std::wstring& list = comboList_.empty() ? colComboLists_[static_cast<size_t>(col_)] : comboList_;
    if (list == EllipsisButton) return {};
    return splitComboList(list);
}

void Grid::closeEditor() {
    editing_ = false;
    editText_.clear();
    notify("Editing");
}

void Grid::FinishEditing() {
    if (!editing_) return;
    int32_t row = row_, col = col_;
    // The text stays readable as EditText while AfterEdit runs.
    editing_ = false;
    notify("Editing");
    TextMatrix(row, col, editText_);
    if (OnAfterEdit) OnAfterEdit(row, col);
    if (!editing_) editText_.clear();
}

void Grid::setMouseCell(int32_t row, int32_t col) {
    const bool inside = row >= 0 && row < rows_ && col >= 0 && col < cols_;
    mouseRow_ = inside ? row : -1;
    mouseCol_ = inside ? col : -1;
}

float Grid::mouseX() const {
    if (mouseCol_ < 0) return -1.0F;
    return static_cast<float>(CellLeft(mouseRow_, mouseCol_)) +
           static_cast<float>(colWidths_[static_cast<size_t>(mouseCol_)]) / 2.0F;
}

float Grid::mouseY() const {
    if (mouseRow_ < 0) return -1.0F;
    return static_cast<float>(CellTop(mouseRow_, mouseCol_)) +
           static_cast<float>(rowHeights_[static_cast<size_t>(mouseRow_)]) / 2.0F;
}

void Grid::UserClick(int32_t row, int32_t col) {
    if (row < 0 || row >= rows_ || col < 0 || col >= cols_ || !beginUserAction()) return;
    SetFocus();
    setMouseCell(row, col);
    if (!IsFixed(row, col)) {
        // A click on the current cell asks again, so that its button shows.
        if (row == row_ && col == col_)
            askBeforeEdit();
        else
            moveTo(row, col);
    }
    if (OnMouseUp) OnMouseUp(LeftButton, 0, mouseX(), mouseY());
    if (OnClick) OnClick();
}

void Grid::UserDoubleClick(int32_t row, int32_t col) {
    if (row < 0 || row >= rows_ || col < 0 || col >= cols_ || !beginUserAction()) return;
    SetFocus();
    setMouseCell(row, col);
    if (OnDblClick) OnDblClick();
    if (editable_ && !editing_ && !IsFixed(row, col) && row == row_ && col == col_) EditCell();
}

void Grid::UserMoveTo(int32_t row, int32_t col) {
    if (IsFixed(row, col) || row >= rows_ || col >= cols_ || !beginUserAction()) return;
    SetFocus();
    moveTo(row, col);
}

void Grid::UserMouseMove(int32_t row, int32_t col, int32_t Button, int32_t Shift) {
    if (!CanAct()) return;
    setMouseCell(row, col);
    if (OnMouseMove) OnMouseMove(Button, Shift, mouseX(), mouseY());
}

void Grid::UserMouseUp(int32_t Button, int32_t row, int32_t col, int32_t Shift) {
    if (!beginUserAction()) return;
    SetFocus();
    setMouseCell(row, col);
    if (OnMouseUp) OnMouseUp(Button, Shift, mouseX(), mouseY());
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
    if (OnChangeEdit) OnChangeEdit();
}

void Grid::UserDropDown() {
    if (row_ < 0 || !editable_ || editing_ || ComboItems().empty() || !beginUserAction()) return;
    EditCell();
}

void Grid::UserPickComboItem(int32_t index) {
    if (row_ < 0 || !beginUserAction()) return;
    const std::vector<std::wstring> items = ComboItems();
    if (index < 0 || static_cast<size_t>(index) >= items.size()) return;
    if (!editing_ && editable_) EditCell();
    if (!editing_) return;
    const int32_t row = row_, col = col_;
    if (editText_ != items[static_cast<size_t>(index)]) {
        editText_ = items[static_cast<size_t>(index)];
        notify("EditText");
        if (OnChangeEdit) OnChangeEdit();
    }
    bool finish = true;
    if (OnComboCloseUp) OnComboCloseUp(row, col, finish);
    if (finish && editing_ && row == row_ && col == col_) FinishEditing();
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

void Grid::keyDownAction(int32_t KeyCode, int32_t Shift) {
    if (row_ < 0) return;
    const bool ctrl = (Shift & keys::CtrlMask) != 0;
    int32_t row = row_, col = col_;
    switch (KeyCode) {
        case keys::Left:
            col = std::max(fixedCols_, col - 1);
            break;
        case keys::Right:
            col = std::min(cols_ - 1, col + 1);
            break;
        case keys::Up:
            row = std::max(fixedRows_, row - 1);
            break;
        case keys::Down:
            row = std::min(rows_ - 1, row + 1);
            break;
        case keys::Home:
            col = fixedCols_;
            if (ctrl) row = fixedRows_;
            break;
        case keys::End:
            col = cols_ - 1;
            if (ctrl) row = rows_ - 1;
            break;
        case keys::PageUp:
            row = std::max(fixedRows_, row - pageRows_);
            break;
        case keys::PageDown:
            row = std::min(rows_ - 1, row + pageRows_);
            break;
        default:
            return;
    }
    moveTo(row, col);
}

}  // namespace qx
