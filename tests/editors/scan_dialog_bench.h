// A serial Scan operation with its three operands, a Scan set as the
// operation's edit would build it, and the host's instances, with the
// message and field editors installed and a scripted person, for the tests
// of the Scan dialog: fill the set, link what a stored Scan links, queue the
// person's actions and picks, run the dialog.
#pragma once
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "editors/frm_protocol_scan.h"
#include "editors/message_editors.h"
#include "editors/message_toolbar.h"
#include "field_editors/field_editors.h"
#include "message/editor_hooks.h"
#include "message/protocol_message.h"
#include "platform/controls/form.h"
#include "platform/host/host_context.h"
#include "serial/protocol_scan.h"
#include "sets/scan_set.h"
#include "sets/set_editor_hooks.h"
#include "support/operation_bench.h"
#include "support/test_helpers.h"

namespace qx::test {

class ScanDialogBench : public OperationBench<clsProtocolscan> {
public:
    static constexpr int32_t Positions = clsProtocolMessage::MaxPositions;

    ScriptedModalDriver& driver = *context->Script();
    ScopedMessageEditorHooks messageHooks;
    ScopedEditorHooks fieldHooks;
    std::shared_ptr<clsProtocolscan>& scan = operation;
    std::unique_ptr<clsProtocolScanSrv> set = std::make_unique<clsProtocolScanSrv>();
    bool confirmed = false;
    bool shown = false;

    ScanDialogBench() : OperationBench(170100, L"Line1") {
        messageEditorHooks() = MessageEditorHooks{};
        installMessageEditors();
        installFieldEditors();
    }

    // A Scan just placed in a net, with the Config "Line1" its sole
    // instance; the three operands are open.
    int32_t fresh() {
        makeNew();
        return instances->Seed(L"Line1");
    }

    // A placed Scan whose operands are linked: the flag 10 (type 1), MI 20 and
    // (when third) MI 21.
    int32_t linked(bool third = true) {
        const int32_t config = fresh();
        linkOperand(*operand(1), 1, 10);
        linkOperand(*operand(2), 3, 20);
        if (third) linkOperand(*operand(3), 3, 21);
        return config;
    }

    static std::wstring padded(const std::wstring& text) {
        return text + std::wstring(static_cast<size_t>(Positions) - text.size(), L' ');
    }

    // Messages with these texts, as the set holds them.
    void messages(const std::vector<std::wstring>& texts) {
        for (size_t i = 1; i < texts.size(); ++i) set->AppendMessage();
        for (size_t i = 0; i < texts.size(); ++i)
            set->GetMessage(static_cast<int32_t>(i) + 1)->MessageString(padded(texts[i]));
    }

    // Runs the set's Edit with the person's actions on the dialog.
    bool edit(std::function<void(frmProtocolScan&)> script) { return editOn(*scan, std::move(script)); }
    bool editOn(itfFBMethod& method, std::function<void(frmProtocolScan&)> script) {
        shown = false;
        driver.QueueDialog(scriptFor<frmProtocolScan>([this, script = std::move(script)](frmProtocolScan& dialog) {
            shown = true;
            script(dialog);
        }));
        confirmed = set->Edit(method, instances);
        return confirmed;
    }

    // The person types into a grid, one key at a time.
    static void type(Grid& grid, const std::wstring& text) {
        for (wchar_t ch : text) grid.UserKeyPress(static_cast<int32_t>(ch));
    }

    std::vector<int32_t> shownMessages() {
        std::vector<int32_t> numbers;
        for (const auto& message : context->Messages) numbers.push_back(message.Number);
        return numbers;
    }

    static std::wstring framingText(const Grid& grid) {
        std::wstring text;
        for (int32_t c = 0; c < grid.Cols(); ++c) text += L"[" + grid.TextMatrix(0, c) + L"]";
        return text;
    }
};

}  // namespace qx::test
