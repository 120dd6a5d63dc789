// The message grid: a whole message set edited in one grid, one row a
// message, one cell a character position. Written once for the four message
// dialogs; each owns a MessageGridEditor bound to its grid (FlgSend or
// FlgScan) and its toolbar (abSend or abScan). Every key and click goes into
// the row's clsProtocolMessage as one operation, and the row is then painted
// again from the message: the grid holds nothing that is ever read back.
//
// The editor installs the grid's event handlers itself. The dialog keeps the
// toolbar's ToolClick: it hands each tool to runCaretCommand first and runs
// the message commands (cut, copy, paste, insert, append, delete, clear all)
// on its set, refreshing with swapRow or rebuildAfter.
//
// Painting writes cells by their address and never moves the current cell,
// so that a view does not scroll while a row is painted; the current cell
// moves only where the editor puts the caret. Every handler and command sets
// IgnoreGridEvents while it works on the grid and puts back what it found,
// so that the moves it makes itself raise nothing; the right button sets it
// only after it has made the clicked cell current, so that the change of row
// runs first. The right button's popups open at the mouse pointer.
#pragma once
#include <cstdint>
#include <functional>
#include <string>

#include "message/protocol_message.h"
#include "platform/controls/grid.h"
#include "platform/controls/toolbar.h"

namespace qx {

enum class MessageGridKind {
    Send,  // FlgSend: 501 columns, text from column 1
    Scan,  // FlgScan: 502 columns, column 1 the message's MessageLength, text from column 2
};

// Where the messages come from: the Send or Scan set, or a TCP/IP twin.
// Numbers are 1-based, as the sets count.
struct MessageSource {
    std::function<int32_t()> NumberOfMessages;
    std::function<MessagePtr(int32_t pMessageNumber)> GetMessage;
};

// The source of any set that has NumberOfMessages and GetMessage; the set
// must outlive the editor's use of the source.
template <class Set>
MessageSource messageSourceOf(Set& set) {
    return {[&set] { return set.NumberOfMessages(); },
            [&set](int32_t pMessageNumber) { return set.GetMessage(pMessageNumber); }};
}

class MessageGridEditor {
public:
    static constexpr int32_t SendCols = 501;
    static constexpr int32_t ScanCols = 502;
    // Column 1 of FlgScan: the message's MessageLength, picked from a list.
    static constexpr int32_t LengthColumn = 1;
    static constexpr int32_t NumberColumnWidth = 345;
    static constexpr int32_t LengthColumnWidth = 795;
    static constexpr int32_t TextColumnWidth = 300;
    static constexpr uint32_t NumberBackColor = 0x623685;
    static constexpr uint32_t NumberForeColor = 0x80000018;
    static constexpr uint32_t LengthBackColor = 0xC0E0FF;
    static constexpr uint32_t LengthForeColor = 0;
    static constexpr uint32_t SelectedBackColor = 0x8000000D;
    static constexpr uint32_t SelectedForeColor = 0x8000000E;
    static constexpr uint32_t ControlCharBackColor = 255;
    static constexpr uint32_t ControlCharForeColor = 0xFFFFFF;
    // Key codes the grid's handlers look at.
    static constexpr int32_t KeyBackspace = 8;

    // Binds to the grid (its fixed number column, no header row, and all its
    // event handlers) and to the toolbar whose popup bands the right button
    // opens; buildMessageToolBar makes them. Both outlive the editor.
    MessageGridEditor(MessageGridKind kind, Grid& grid, ToolBar& toolBar, MessageSource source = {});
    ~MessageGridEditor();
    MessageGridEditor(const MessageGridEditor&) = delete;
    MessageGridEditor& operator=(const MessageGridEditor&) = delete;

    MessageGridKind Kind() const { return kind_; }
    Grid& grid() const { return grid_; }
    // 1 in FlgSend, 2 in FlgScan.
    int32_t FirstTextColumn() const { return firstTextColumn_; }
    // The dialog's set, given in its Edit and dropped when it closes.
    void setSource(MessageSource source) { source_ = std::move(source); }
    int32_t NumberOfMessages() const;
    // The message of a 1-based number; nullptr without a source.
    MessagePtr GetMessage(int32_t pMessageNumber) const;

    // State of the editor. The dialog reads IgnoreGridEvents in the handlers
    // of its lists and check boxes, and sets it around its own loading.
    MessagePtr CurrentMessage;
    bool IgnoreGridEvents = false;
    int32_t CaretWidth = 0;
    int32_t CaretHeight = 0;
    int32_t CaretX = 0;
    int32_t CaretY = 0;
    float ScaleX = 1.0F;
    float ScaleY = 1.0F;

    // Takes ScaleX and ScaleY from GetDeviceCaps (88 and 90) / 96; a dialog
    // calls it at the end of its load.
    void takeDeviceScale();

    // The editor's operations. Rows are 1-based where a message goes with
    // them, 0-based in SelectMessageRow, as the dialogs count.
    int32_t ColumnToPosition(int32_t column) const { return column - firstTextColumn_; }
    // twips / 15 * ScaleX, cut toward zero; the vertical measures use it too.
    int32_t TwipsToPixels(int32_t twips) const;
    void BuildMessageGrid();
    void ClearMessageRow(int32_t row, const MessagePtr& message);
    void PaintMessageRow(int32_t row, const MessagePtr& message);
    void PaintAllMessages();
    void SelectMessageRow(int32_t row);
    void InitCaret();
    void UpdateCaret();
    // The reset, which the set's ClearAll calls through the dialog: the first
    // message current, the grid built and painted anew, the caret on row 0.
    void Reload();

    // The three grades of refresh. Row refresh paints the current row from
    // CurrentMessage; row swap first takes the row's message from the set
    // again, after the set has replaced it (cut, paste).
    void refreshRow();
    void swapRow();
    // Where the caret lands after a full rebuild.
    enum class LandingRow {
        SameRow,  // the row the caret was on, or the last one when that is gone
        NextRow,  // the row below it
        LastRow,
    };
    // The full rebuild of a command that changes the number of messages:
    // runs the set's operation with the current message number (row + 1);
    // when it reports a change, builds and paints every row with redrawing
    // off and puts the caret in its column on the landing row. Answers what
    // the operation reported; on false the grid stays as it was.
    bool rebuildAfter(const std::function<bool(int32_t pMessageNumber)>& operation, LandingRow landing);

    // The commands on the caret position. runCaretCommand runs the one the
    // tool id names and answers true, or answers false for any other tool.
    // With the caret on FlgScan's length column, which is no position, each
    // but ID_DeleteVar beeps and does nothing.
    bool runCaretCommand(const std::wstring& toolId);
    // ID_NewVar and ID_EditVar: the field under the caret edited, or a new one there.
    void editVarAtCaret();
    // ID_DeleteVar: the selected field's cells become blanks.
    void deleteSelectedVar();
    // ID_ControlChar: a code from the control-character selector into the
    // cell; on a field it only unselects.
    void controlCharAtCaret();
    // ID_DeleteControlChar: the control character gone, its blank stays.
    void deleteControlCharAtCaret();

    // The grid's events, installed on the grid by the constructor.
    void Grid_AfterRowColChange(int32_t OldRow, int32_t OldCol, int32_t NewRow, int32_t NewCol);
    void Grid_KeyPress(int32_t& KeyAscii);
    void Grid_KeyDown(int32_t& KeyCode, int32_t Shift);
    void Grid_Click();
    void Grid_DblClick();
    void Grid_MouseMove(int32_t Button, int32_t Shift, float X, float Y);
    void Grid_MouseUp(int32_t Button, int32_t Shift, float X, float Y);
    // FlgScan: a number picked in the length column's list.
    void Grid_ComboCloseUp(int32_t Row, int32_t Col, bool& FinishEdit);

private:
    // Sets IgnoreGridEvents for a scope and puts back what it was.
    class IgnoreScope {
    public:
        explicit IgnoreScope(bool& flag) : flag_(flag), saved_(flag) { flag_ = true; }
        ~IgnoreScope() { flag_ = saved_; }
        IgnoreScope(const IgnoreScope&) = delete;
        IgnoreScope& operator=(const IgnoreScope&) = delete;

    private:
        bool& flag_;
        bool saved_;
    };
    bool isScan() const { return kind_ == MessageGridKind::Scan; }
    // The current row's 1-based message number.
    int32_t currentRowNumber() const { return grid_.Row() + 1; }
    // FlgScan: the length column is editable exactly while it is current.
    void followLengthColumn();
    void unbind();

    MessageGridKind kind_;
    Grid& grid_;
    ToolBar& toolBar_;
    MessageSource source_;
    int32_t cols_;
    int32_t firstTextColumn_;
};

}  // namespace qx
