// A small form as the message dialogs will be: a grid named FlgSend or
// FlgScan, the toolbar with the message bands, a plain list of messages as
// the message source, and the editor bound to them, loaded as a dialog's
// Edit and LoadDialog load it. The toolbar's clicks go to the editor's
// commands on the caret position; the test runs the message commands.
#pragma once
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "editors/message_grid.h"
#include "editors/message_toolbar.h"
#include "field_editors/field_editors.h"
#include "field_editors/frm_protocol_hex_selector.h"
#include "field_editors/frm_protocol_vars.h"
#include "message/editor_hooks.h"
#include "message/protocol_message.h"
#include "platform/controls/form.h"
#include "platform/host/host_context.h"

namespace qx::test {

class MessageGridForm : public Form {
public:
    explicit MessageGridForm(MessageGridKind kind)
        : Form(L"frmMessageGridTest"),
          grid(kind == MessageGridKind::Scan ? L"FlgScan" : L"FlgSend"),
          bar(kind == MessageGridKind::Scan ? L"abScan" : L"abSend"),
          editor(kind, grid, bar) {
        addControls({&bar, &grid});
        buildMessageToolBar(bar);
        bar.OnToolClick = [this](const std::wstring& id) {
            clicked.push_back(id);
            editor.runCaretCommand(id);
        };
        editor.setSource({[this] { return static_cast<int32_t>(messages.size()); },
                          [this](int32_t n) { return messages.at(static_cast<size_t>(n - 1)); }});
    }

    Grid grid;
    ToolBar bar;
    MessageGridEditor editor;
    std::vector<MessagePtr> messages;
    std::vector<std::wstring> clicked;
};

class MessageGridTestBase : public ::testing::Test {
protected:
    static constexpr int32_t Positions = clsProtocolMessage::MaxPositions;

    ScopedHostContext context;
    ScopedEditorHooks hooks;
    ScriptedModalDriver& driver = *context->Script();
    std::unique_ptr<MessageGridForm> form;

    static std::wstring padded(const std::wstring& text) {
        return text + std::wstring(static_cast<size_t>(Positions) - text.size(), L' ');
    }

    // Messages with these texts, the grid built and painted as a dialog loads.
    void load(MessageGridKind kind, const std::vector<std::wstring>& texts) {
        installFieldEditors();
        form = std::make_unique<MessageGridForm>(kind);
        for (const std::wstring& text : texts) {
            auto message = std::make_shared<clsProtocolMessage>();
            message->MethodType(kind == MessageGridKind::Scan ? 1 : 0);
            message->MessageString(padded(text));
            form->messages.push_back(message);
        }
        MessageGridEditor& editor = form->editor;
        editor.CurrentMessage = editor.GetMessage(1);
        editor.IgnoreGridEvents = true;
        editor.BuildMessageGrid();
        editor.takeDeviceScale();
        editor.PaintAllMessages();
        editor.InitCaret();
        editor.IgnoreGridEvents = false;
        context->CaretCalls.clear();
    }

    Grid& grid() { return form->grid; }
    MessageGridEditor& editor() { return form->editor; }
    ToolBar& bar() { return form->bar; }
    clsProtocolMessage& message(int32_t row) { return *form->messages.at(static_cast<size_t>(row)); }
    int32_t first() { return editor().FirstTextColumn(); }
    // The cell of a position.
    std::wstring cell(int32_t row, int32_t position) { return grid().TextMatrix(row, position + first()); }
    uint32_t back(int32_t row, int32_t position) { return grid().CellBackColor(row, position + first()); }
    uint32_t fore(int32_t row, int32_t position) { return grid().CellForeColor(row, position + first()); }
    // The texts of count cells from a position, one character each where the cell holds one.
    std::wstring cells(int32_t row, int32_t position, int32_t count) {
        std::wstring text;
        for (int32_t p = position; p < position + count; ++p) text += cell(row, p);
        return text;
    }
    std::wstring messageText(int32_t row, int32_t count) { return message(row).MessageString().substr(0, count); }
    void moveTo(int32_t row, int32_t position) { grid().UserClick(row, position + first()); }
    int32_t caretPosition() { return editor().ColumnToPosition(grid().Col()); }
    void type(const std::wstring& text) {
        for (wchar_t ch : text) grid().UserKeyPress(static_cast<int32_t>(ch));
    }

    // The person in the control-character selector clicks the row of the
    // code and OK, or cancels; opened records that the dialog was shown.
    void pickControlChar(int32_t code, bool* opened = nullptr) {
        driver.QueueDialog(scriptFor<frmProtocolHexSelector>([code, opened](frmProtocolHexSelector& dialog) {
            if (opened) *opened = true;
            dialog.flgLowChars.UserClick(code + 1, 0);
            dialog.cmdOk.UserClick();
        }));
    }
    void cancelControlChar(bool* opened = nullptr) {
        driver.QueueDialog(scriptFor<frmProtocolHexSelector>([opened](frmProtocolHexSelector& dialog) {
            if (opened) *opened = true;
            dialog.flgLowChars.UserClick(5, 0);
            dialog.cmdCancel.UserClick();
        }));
    }
    // The person in the field dialog takes the time tab, "HH:MM" (5
    // positions) or "HH:MM:SS" (8), and OK.
    void acceptTimeField(int32_t format = 0) {
        driver.QueueDialog(scriptFor<frmProtocolVars>([format](frmProtocolVars& dialog) {
            dialog.tbSMSVars.UserSelect(9);
            dialog.cbTimeFormatType.UserSelect(format);
            dialog.cmdOk.UserClick();
        }));
    }
    // A new time field at the position through ID_NewVar of the toolbar.
    void addTimeField(int32_t row, int32_t position, int32_t format = 0) {
        moveTo(row, position);
        acceptTimeField(format);
        bar().UserClickTool(tools::ID_NewVar);
    }
    // A control character through a double click on the cell.
    void addControlChar(int32_t row, int32_t position, int32_t code) {
        moveTo(row, position);
        pickControlChar(code);
        grid().UserDoubleClick(row, position + first());
    }
    std::vector<int32_t> shownMessages() {
        std::vector<int32_t> numbers;
        for (const auto& shown : context->Messages) numbers.push_back(shown.Number);
        return numbers;
    }
    std::string popupBand() {
        const PopupPlace* place = bar().OpenPopup();
        if (!place) return "";
        std::string name;
        for (wchar_t ch : place->Band->Name()) name += static_cast<char>(ch);
        return name;
    }
};

}  // namespace qx::test
