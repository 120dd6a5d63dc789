// A Scan operation with its operands (three serial, five TCP/IP), a Scan set
// as the operation's edit would build it, and the host's instances, with the
// message and field editors installed and a scripted person, for the tests
// of the Scan dialogs: fill the set, link what a stored Scan links, queue
// the person's actions and picks, run the dialog.
#pragma once
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "editors/frm_eth_protocol_scan.h"
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
#include "tcpip/eth_protocol_scan.h"

namespace qx::test {

template <class Operation, class Set, class Dialog>
class ScanDialogBenchOf : public OperationBench<Operation> {
public:
    static constexpr int32_t Positions = clsProtocolMessage::MaxPositions;

    using OperationBench<Operation>::context;
    using OperationBench<Operation>::instances;
    using OperationBench<Operation>::operand;
    using OperationBench<Operation>::makeNew;
    ScriptedModalDriver& driver = *context->Script();
    ScopedMessageEditorHooks messageHooks;
    ScopedEditorHooks fieldHooks;
    std::shared_ptr<Operation>& scan = this->operation;
    std::unique_ptr<Set> set = std::make_unique<Set>();
    bool confirmed = false;
    bool shown = false;

    explicit ScanDialogBenchOf(int32_t fatherID) : OperationBench<Operation>(fatherID, L"Line1") {
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

    // A placed Scan whose operands are linked: the flag 10 (type 1), MI 20,
    // (when third) MI 21, and on a TCP/IP Scan MI 22 and the vector MI 30.
    int32_t linked(bool third = true) {
        const int32_t config = fresh();
        linkOperand(*operand(1), 1, 10);
        linkOperand(*operand(2), 3, 20);
        if (third) linkOperand(*operand(3), 3, 21);
        if (scan->itfFBMethod_OutOperands()->Count() == 5) {
            linkOperand(*operand(4), 3, 22);
            linkOperand(*operand(5), 3, 30);
        }
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
    bool edit(std::function<void(Dialog&)> script) { return editOn(*scan, std::move(script)); }
    bool editOn(itfFBMethod& method, std::function<void(Dialog&)> script) {
        shown = false;
        driver.QueueDialog(scriptFor<Dialog>([this, script = std::move(script)](Dialog& dialog) {
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

struct ScanDialogBench : ScanDialogBenchOf<clsProtocolscan, clsProtocolScanSrv, frmProtocolScan> {
    ScanDialogBench() : ScanDialogBenchOf(170100) {}
};

struct EthScanDialogBench : ScanDialogBenchOf<clsEthProtocolScan, clsEthProtocolScanSrv, frmEthProtocolScan> {
    EthScanDialogBench() : ScanDialogBenchOf(170200) {}
};

}  // namespace qx::test
