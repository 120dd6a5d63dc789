#include "editors/message_grid.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cwctype>
#include <exception>
#include <string>
#include <utility>

#include "editors/message_toolbar.h"
#include "field_editors/frm_protocol_hex_selector.h"
#include "platform/basics/ansi.h"
#include "platform/host/host_services.h"

namespace qx {

namespace {

constexpr int32_t logPixelsX = 88;
constexpr int32_t logPixelsY = 90;
constexpr int32_t twipsPerPixelAt96 = 15;
constexpr double dpiOfOneScale = 96.0;
// The caret is a fifth of a cell wide.
constexpr double caretWidthShare = 5.0;

// Rounds to the nearest whole number, a tie to the even one.
double roundHalfEven(double value) {
    const double floor = std::floor(value);
    const double rest = value - floor;
    if (rest > 0.5) return floor + 1.0;
    if (rest < 0.5) return floor;
    return std::fmod(floor, 2.0) == 0.0 ? floor : floor + 1.0;
}

// A character code as the grid hands it: an ANSI code, or a wider one as it is.
std::wstring characterOf(int32_t code) {
    if (code >= 0 && code <= 0xFF) return std::wstring(1, fromAnsiByte(static_cast<uint8_t>(code)));
    return std::wstring(1, static_cast<wchar_t>(code));
}

// The decimal text of a number; std::to_wstring goes through swprintf,
// which a row's fifty field numbers would feel.
std::wstring decimalOf(int32_t number) {
    wchar_t digits[12];
    wchar_t* end = digits + 12;
    wchar_t* at = end;
    uint32_t value = number < 0 ? 0U - static_cast<uint32_t>(number) : static_cast<uint32_t>(number);
    do {
        *--at = static_cast<wchar_t>(L'0' + value % 10);
        value /= 10;
    } while (value != 0);
    if (number < 0) *--at = L'-';
    return std::wstring(at, end);
}

// Two upper-case hexadecimal digits, with a leading zero.
std::wstring hexOf(int32_t code) {
    static constexpr wchar_t digits[] = L"0123456789ABCDEF";
    std::wstring text;
    uint32_t value = static_cast<uint32_t>(code);
    do {
        text.insert(text.begin(), digits[value % 16]);
        value /= 16;
    } while (value != 0);
    if (text.size() < 2) text.insert(text.begin(), L'0');
    return text;
}

// The whole number at the start of a text (blanks and a sign allowed); 0
// when there is none.
int32_t wholeNumberOf(const std::wstring& text) {
    size_t i = 0;
    while (i < text.size() && std::iswspace(text[i])) ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == L'-' || text[i] == L'+')) negative = text[i++] == L'-';
    int64_t value = 0;
    for (; i < text.size() && text[i] >= L'0' && text[i] <= L'9'; ++i) {
        value = value * 10 + (text[i] - L'0');
        if (value > INT32_MAX) return 0;
    }
    return static_cast<int32_t>(negative ? -value : value);
}

// The list of column 1 of FlgScan: "0|1|...|500|".
const std::wstring& lengthList() {
    static const std::wstring list = [] {
        std::wstring text;
        for (int32_t n = 0; n <= clsProtocolMessage::MaxPositions; ++n) text += decimalOf(n) + L'|';
        return text;
    }();
    return list;
}

}  // namespace

MessageGridEditor::MessageGridEditor(MessageGridKind kind, Grid& grid, ToolBar& toolBar, MessageSource source)
    : kind_(kind),
      grid_(grid),
      toolBar_(toolBar),
      source_(std::move(source)),
      cols_(kind == MessageGridKind::Scan ? ScanCols : SendCols),
      firstTextColumn_(kind == MessageGridKind::Scan ? 2 : 1) {
    // A fixed number column and no header row.
    grid_.FixedRows(0);
    grid_.FixedCols(1);
    grid_.OnAfterRowColChange = [this](int32_t OldRow, int32_t OldCol, int32_t NewRow, int32_t NewCol) {
        Grid_AfterRowColChange(OldRow, OldCol, NewRow, NewCol);
    };
    grid_.OnKeyPress = [this](int32_t& KeyAscii) { Grid_KeyPress(KeyAscii); };
    grid_.OnKeyDown = [this](int32_t& KeyCode, int32_t Shift) { Grid_KeyDown(KeyCode, Shift); };
    grid_.OnClick = [this] { Grid_Click(); };
    grid_.OnDblClick = [this] { Grid_DblClick(); };
    grid_.OnMouseMove = [this](int32_t Button, int32_t Shift, float X, float Y) {
        Grid_MouseMove(Button, Shift, X, Y);
    };
    grid_.OnMouseUp = [this](int32_t Button, int32_t Shift, float X, float Y) { Grid_MouseUp(Button, Shift, X, Y); };
    if (isScan())
        grid_.OnComboCloseUp = [this](int32_t Row, int32_t Col, bool& FinishEdit) {
            Grid_ComboCloseUp(Row, Col, FinishEdit);
        };
}

MessageGridEditor::~MessageGridEditor() { unbind(); }

void MessageGridEditor::unbind() {
    grid_.OnAfterRowColChange = nullptr;
    grid_.OnKeyPress = nullptr;
    grid_.OnKeyDown = nullptr;
    grid_.OnClick = nullptr;
    grid_.OnDblClick = nullptr;
    grid_.OnMouseMove = nullptr;
    grid_.OnMouseUp = nullptr;
    if (isScan()) grid_.OnComboCloseUp = nullptr;
}

int32_t MessageGridEditor::NumberOfMessages() const {
    return source_.NumberOfMessages ? source_.NumberOfMessages() : 0;
}

MessagePtr MessageGridEditor::GetMessage(int32_t pMessageNumber) const {
    return source_.GetMessage ? source_.GetMessage(pMessageNumber) : nullptr;
}

void MessageGridEditor::takeDeviceScale() {
    ScaleX = static_cast<float>(GetDeviceCaps(logPixelsX) / dpiOfOneScale);
    ScaleY = static_cast<float>(GetDeviceCaps(logPixelsY) / dpiOfOneScale);
}

int32_t MessageGridEditor::TwipsToPixels(int32_t twips) const {
    return static_cast<int32_t>(static_cast<double>(twips) / twipsPerPixelAt96 * static_cast<double>(ScaleX));
}

// --- Building and painting ---

void MessageGridEditor::BuildMessageGrid() {
    const int32_t rows = NumberOfMessages();
    grid_.Rows(rows);
    grid_.Cols(cols_);
    if (isScan()) grid_.ColComboList(LengthColumn, lengthList());
    for (int32_t r = 0; r < rows; ++r) {
        grid_.TextMatrix(r, 0, decimalOf(r));
        grid_.CellBackColor(r, 0, NumberBackColor);
        grid_.CellForeColor(r, 0, NumberForeColor);
        if (isScan()) {
            grid_.CellBackColor(r, LengthColumn, LengthBackColor);
            grid_.CellForeColor(r, LengthColumn, LengthForeColor);
        }
    }
    grid_.ColWidth(0, NumberColumnWidth);
    grid_.ColAlignment(0, Grid::AlignCenterCenter);
    for (int32_t c = 1; c < cols_; ++c) {
        grid_.ColWidth(c, isScan() && c == LengthColumn ? LengthColumnWidth : TextColumnWidth);
        // The length column keeps the grid's own alignment.
        if (!(isScan() && c == LengthColumn)) grid_.ColAlignment(c, Grid::AlignCenterCenter);
    }
}

void MessageGridEditor::ClearMessageRow(int32_t row, const MessagePtr& message) {
    (void)message;
    if (row < 1 || row > grid_.Rows()) return;
    grid_.ClearRow(row - 1, firstTextColumn_);
}

void MessageGridEditor::PaintMessageRow(int32_t row, const MessagePtr& message) {
    ClearMessageRow(row, message);
    if (!message || row < 1 || row > grid_.Rows()) return;
    const int32_t r = row - 1;
    if (isScan()) grid_.TextMatrix(r, LengthColumn, decimalOf(message->MessageLength()));

    const std::wstring text = message->MessageString();
    const int32_t shown = std::min<int32_t>(static_cast<int32_t>(text.size()), cols_ - firstTextColumn_);
    std::wstring cellText(1, L' ');
    for (int32_t i = 0; i < shown; ++i) {
        cellText[0] = text[static_cast<size_t>(i)];
        grid_.TextMatrix(r, firstTextColumn_ + i, cellText);
    }

    // The texts a field answers are not shown; kept across fields so that
    // answering them costs no allocation after the first.
    std::wstring display, toolTip;
    for (int32_t i = 1; i <= message->NumberOfVars(); ++i) {
        int32_t start = 0, length = 0;
        bool selected = false;
        uint32_t back = 0, fore = 0;
        message->GetVarPropsAt(i, start, length, selected, display, toolTip, back, fore);
        if (selected) {
            back = SelectedBackColor;
            fore = SelectedForeColor;
        }
        const std::wstring number = decimalOf(i);
        for (int32_t c = start + firstTextColumn_; c < start + firstTextColumn_ + length; ++c) {
            if (c < firstTextColumn_ || c >= cols_) continue;
            grid_.CellBackColor(r, c, back);
            grid_.CellForeColor(r, c, fore);
            grid_.TextMatrix(r, c, number);
        }
    }

    const clsProtocolMessage::ControlCharArray controlChars = message->ControlChars();
    for (int32_t p = 0; p < clsProtocolMessage::MaxPositions; ++p) {
        const int32_t code = controlChars[static_cast<size_t>(p)];
        if (code < 0 || p + firstTextColumn_ >= cols_) continue;
        const int32_t c = p + firstTextColumn_;
        grid_.TextMatrix(r, c, hexOf(code));
        grid_.CellBackColor(r, c, ControlCharBackColor);
        grid_.CellForeColor(r, c, ControlCharForeColor);
    }
}

void MessageGridEditor::PaintAllMessages() {
    const int32_t count = NumberOfMessages();
    for (int32_t r = 1; r <= count; ++r) {
        const MessagePtr message = GetMessage(r);
        ClearMessageRow(r, message);
        PaintMessageRow(r, message);
    }
}

void MessageGridEditor::SelectMessageRow(int32_t row) {
    if (row < 0 || row >= grid_.Rows()) return;
    grid_.Row(row);
    CurrentMessage = GetMessage(row + 1);
}

// --- The caret ---

void MessageGridEditor::InitCaret() {
    if (grid_.Rows() < 1) return;
    // FlgScan moves to row 0 and keeps CurrentMessage, which its callers have
    // just set to the first message.
    if (isScan())
        grid_.Row(0);
    else
        SelectMessageRow(0);
    grid_.Col(firstTextColumn_);
    followLengthColumn();
    CaretWidth = TwipsToPixels(static_cast<int32_t>(roundHalfEven(grid_.CellWidth() / caretWidthShare)));
    CaretHeight = TwipsToPixels(grid_.CellHeight());
    UpdateCaret();
}

void MessageGridEditor::UpdateCaret() {
    if (grid_.Row() < 0 || grid_.Col() < 0) return;
    CaretX = TwipsToPixels(grid_.CellLeft());
    CaretY = TwipsToPixels(grid_.CellTop());
    CreateCaret(grid_.hWnd(), 0, CaretWidth, CaretHeight);
    SetCaretPos(CaretX, CaretY);
    ShowCaret(grid_.hWnd());
}

void MessageGridEditor::followLengthColumn() {
    if (isScan()) grid_.Editable(grid_.Col() == LengthColumn);
}

// --- Refresh ---

void MessageGridEditor::Reload() {
    IgnoreScope ignore(IgnoreGridEvents);
    CurrentMessage = NumberOfMessages() > 0 ? GetMessage(1) : nullptr;
    BuildMessageGrid();
    PaintAllMessages();
    InitCaret();
}

void MessageGridEditor::refreshRow() {
    IgnoreScope ignore(IgnoreGridEvents);
    PaintMessageRow(currentRowNumber(), CurrentMessage);
}

void MessageGridEditor::swapRow() {
    if (currentRowNumber() < 1) return;
    IgnoreScope ignore(IgnoreGridEvents);
    CurrentMessage = GetMessage(currentRowNumber());
    PaintMessageRow(currentRowNumber(), CurrentMessage);
}

bool MessageGridEditor::rebuildAfter(const std::function<bool(int32_t pMessageNumber)>& operation, LandingRow landing) {
    const int32_t row = grid_.Row();
    const int32_t col = grid_.Col();
    if (!operation || !operation(row + 1)) return false;
    IgnoreScope ignore(IgnoreGridEvents);
    grid_.Redraw(false);
    BuildMessageGrid();
    PaintAllMessages();
    grid_.Redraw(true);
    const int32_t last = grid_.Rows() - 1;
    int32_t target = row;
    if (landing == LandingRow::NextRow) target = row + 1;
    if (landing == LandingRow::LastRow || target > last) target = last;
    if (target < 0) target = 0;
    SelectMessageRow(target);
    if (col >= 0 && col < grid_.Cols() && !grid_.IsFixed(target, col)) grid_.Col(col);
    followLengthColumn();
    UpdateCaret();
    grid_.SetFocus();
    return true;
}

// --- Commands on the caret position ---

bool MessageGridEditor::runCaretCommand(const std::wstring& toolId) {
    if (toolId == tools::ID_NewVar || toolId == tools::ID_EditVar)
        editVarAtCaret();
    else if (toolId == tools::ID_DeleteVar)
        deleteSelectedVar();
    else if (toolId == tools::ID_ControlChar)
        controlCharAtCaret();
    else if (toolId == tools::ID_DeleteControlChar)
        deleteControlCharAtCaret();
    else
        return false;
    return true;
}

void MessageGridEditor::editVarAtCaret() {
    if (grid_.Col() < firstTextColumn_ || !CurrentMessage) {
        systemBeep();
        return;
    }
    IgnoreScope ignore(IgnoreGridEvents);
    if (CurrentMessage->EditVar(ColumnToPosition(grid_.Col()))) PaintMessageRow(currentRowNumber(), CurrentMessage);
}

void MessageGridEditor::deleteSelectedVar() {
    if (!CurrentMessage) return;
    IgnoreScope ignore(IgnoreGridEvents);
    CurrentMessage->DeleteSelectedVar();
    ClearMessageRow(currentRowNumber(), CurrentMessage);
    PaintMessageRow(currentRowNumber(), CurrentMessage);
}

void MessageGridEditor::controlCharAtCaret() {
    // Only the main toolbar reaches this with the caret on FlgScan's length
    // column, which is no position.
    if (grid_.Col() < firstTextColumn_ || !CurrentMessage) {
        systemBeep();
        return;
    }
    const int32_t position = ColumnToPosition(grid_.Col());
    if (CurrentMessage->HitTest(position)) {
        // A field is never overwritten by a control character.
        IgnoreScope ignore(IgnoreGridEvents);
        CurrentMessage->UnSelectAllVars();
        PaintMessageRow(currentRowNumber(), CurrentMessage);
        return;
    }
    uint8_t value = 0;
    if (!frmProtocolHexSelector().Edit(value, frmProtocolHexSelector::LowCharsTable)) return;
    IgnoreScope ignore(IgnoreGridEvents);
    CurrentMessage->AddControlChar(position, value);
    PaintMessageRow(currentRowNumber(), CurrentMessage);
}

void MessageGridEditor::deleteControlCharAtCaret() {
    if (grid_.Col() < firstTextColumn_ || !CurrentMessage) {
        systemBeep();
        return;
    }
    IgnoreScope ignore(IgnoreGridEvents);
    CurrentMessage->DeleteControlChar(ColumnToPosition(grid_.Col()));
    ClearMessageRow(currentRowNumber(), CurrentMessage);
    PaintMessageRow(currentRowNumber(), CurrentMessage);
}

// --- The grid's events ---

void MessageGridEditor::Grid_AfterRowColChange(int32_t OldRow, int32_t OldCol, int32_t NewRow, int32_t NewCol) {
    (void)OldCol;
    if (IgnoreGridEvents) return;
    if (isScan()) grid_.Editable(NewCol == LengthColumn);
    if (NewCol < 1) {
        // The caret never rests on the number column.
        IgnoreScope ignore(IgnoreGridEvents);
        grid_.Col(firstTextColumn_);
        followLengthColumn();
    }
    if (OldRow != NewRow) {
        // Leaving a row drops its selection; CurrentMessage follows the row.
        IgnoreScope ignore(IgnoreGridEvents);
        if (CurrentMessage) CurrentMessage->UnSelectAllVars();
        if (OldRow >= 0) PaintMessageRow(OldRow + 1, CurrentMessage);
        SelectMessageRow(NewRow);
    }
    UpdateCaret();
}

void MessageGridEditor::Grid_KeyPress(int32_t& KeyAscii) {
    if (IgnoreGridEvents || !CurrentMessage) return;
    IgnoreScope ignore(IgnoreGridEvents);
    const int32_t col = grid_.Col();
    if (KeyAscii != KeyBackspace) {
        if (col < firstTextColumn_) {
            systemBeep();
            return;
        }
        if (col < grid_.Cols() - 1) {
            CurrentMessage->InsertChar(ColumnToPosition(col), characterOf(KeyAscii));
            grid_.Col(col + 1);
        } else {
            // The last cell: the character overwrites position 499, the caret stays.
            CurrentMessage->InsertChar(clsProtocolMessage::MaxPositions, characterOf(KeyAscii));
        }
    } else {
        if (col < firstTextColumn_ + 1) {
            systemBeep();
            return;
        }
        grid_.Col(col - 1);
        CurrentMessage->DeleteByPosition(ColumnToPosition(col - 1));
    }
    PaintMessageRow(currentRowNumber(), CurrentMessage);
    UpdateCaret();
}

void MessageGridEditor::Grid_KeyDown(int32_t& KeyCode, int32_t Shift) {
    (void)Shift;
    if (IgnoreGridEvents || !CurrentMessage) return;
    IgnoreScope ignore(IgnoreGridEvents);
    if (KeyCode == keys::Delete) {
        // On FlgScan's length column, Delete does nothing.
        if (grid_.Col() < firstTextColumn_) return;
        CurrentMessage->DeleteByPosition(ColumnToPosition(grid_.Col()));
        PaintMessageRow(currentRowNumber(), CurrentMessage);
    } else if (KeyCode == keys::Home && isScan()) {
        // Home goes to the first text column, never to the length column.
        grid_.Col(firstTextColumn_);
        followLengthColumn();
        UpdateCaret();
        KeyCode = 0;
    }
}

void MessageGridEditor::Grid_Click() {
    if (IgnoreGridEvents || !CurrentMessage) return;
    IgnoreScope ignore(IgnoreGridEvents);
    CurrentMessage->HitTest(ColumnToPosition(grid_.Col()));
    PaintMessageRow(currentRowNumber(), CurrentMessage);
}

void MessageGridEditor::Grid_DblClick() {
    if (IgnoreGridEvents || !CurrentMessage) return;
    if (grid_.Col() < firstTextColumn_) {
        systemBeep();
        return;
    }
    const int32_t position = ColumnToPosition(grid_.Col());
    if (CurrentMessage->HitTest(position)) {
        IgnoreScope ignore(IgnoreGridEvents);
        CurrentMessage->EditVar(position);
    } else {
        controlCharAtCaret();
    }
    IgnoreScope ignore(IgnoreGridEvents);
    PaintMessageRow(currentRowNumber(), CurrentMessage);
}

void MessageGridEditor::Grid_MouseMove(int32_t Button, int32_t Shift, float X, float Y) {
    (void)Button;
    (void)Shift;
    (void)X;
    (void)Y;
    if (IgnoreGridEvents) return;
    try {
        const int32_t col = grid_.MouseCol();
        const int32_t row = grid_.MouseRow();
        if (col >= firstTextColumn_ && row >= 0)
            grid_.ToolTipText(L"Index: " + decimalOf(ColumnToPosition(col)));
        else
            grid_.ToolTipText(L"");
    } catch (const std::exception&) {
        // A tooltip is never worth an error.
    }
}

void MessageGridEditor::Grid_MouseUp(int32_t Button, int32_t Shift, float X, float Y) {
    (void)Shift;
    (void)X;
    (void)Y;
    if (IgnoreGridEvents || Button != Grid::RightButton) return;
    const int32_t row = grid_.MouseRow();
    const int32_t col = grid_.MouseCol();
    if (col < firstTextColumn_ || row < 0) {
        systemBeep();
        return;
    }
    // The cell becomes current as by a click: the row change runs first.
    grid_.Select(row, col);
    if (!CurrentMessage) return;
    IgnoreScope ignore(IgnoreGridEvents);
    const int32_t position = ColumnToPosition(col);
    if (CurrentMessage->HitTest(position)) {
        PaintMessageRow(currentRowNumber(), CurrentMessage);
        toolBar_.Bands(tools::popOnVar).PopupMenu();
    } else if (CurrentMessage->ControlCharHitTest(position)) {
        toolBar_.Bands(tools::popOnControlChar).PopupMenu();
    } else {
        PaintMessageRow(currentRowNumber(), CurrentMessage);
        toolBar_.Bands(tools::popEmptyArea).PopupMenu();
    }
}

void MessageGridEditor::Grid_ComboCloseUp(int32_t Row, int32_t Col, bool& FinishEdit) {
    (void)FinishEdit;
    if (IgnoreGridEvents || !CurrentMessage || Col != LengthColumn || Row != grid_.Row()) return;
    IgnoreScope ignore(IgnoreGridEvents);
    CurrentMessage->MessageLength(wholeNumberOf(grid_.EditText()));
    PaintMessageRow(currentRowNumber(), CurrentMessage);
}

}  // namespace qx
