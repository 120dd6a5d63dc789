// A serial Send set, the operation that edits it and the host's instances,
// with the message and field editors installed and a scripted person, for
// the tests of the Send dialog: fill the set as a stored Send would hold it,
// queue the person's actions, run the dialog.
#pragma once
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "editors/frm_protocol_send.h"
#include "editors/message_editors.h"
#include "editors/message_toolbar.h"
#include "field_editors/field_editors.h"
#include "field_editors/frm_protocol_hex_selector.h"
#include "message/editor_hooks.h"
#include "message/protocol_message.h"
#include "platform/controls/form.h"
#include "platform/host/fb_instances_double.h"
#include "platform/host/host_context.h"
#include "sets/send_set.h"
#include "sets/set_editor_hooks.h"
#include "support/test_helpers.h"

namespace qx::test {

// The Send operation as far as the dialog asks it: method id 170103, the
// host's instances, new or not.
class SendMethodStub : public MethodStub {
public:
    SendMethodStub() : MethodStub(170100, 3) {}
    void makeNew() { itfFBMethod_CreateDummyOperands(); }
};

class SendDialogBench {
public:
    static constexpr int32_t Positions = clsProtocolMessage::MaxPositions;

    ScopedHostContext context;
    ScriptedModalDriver& driver = *context->Script();
    ScopedMessageEditorHooks messageHooks;
    ScopedEditorHooks fieldHooks;
    std::shared_ptr<FBInstancesDouble> instances = std::make_shared<FBInstancesDouble>();
    SendMethodStub method;
    std::unique_ptr<clsProtocolSendSrv> set;
    bool confirmed = false;
    bool shown = false;

    SendDialogBench() {
        messageEditorHooks() = MessageEditorHooks{};
        installMessageEditors();
        installFieldEditors();
        method.itfFBMethod_Init(instances);
        set = std::make_unique<clsProtocolSendSrv>();
    }

    static std::wstring padded(const std::wstring& text) {
        return text + std::wstring(static_cast<size_t>(Positions) - text.size(), L' ');
    }

    // A Send of a stored project linked to the Config "Line1" (and others
    // after it, when named); returns the number of the linked one.
    int32_t linkedTo(const std::vector<std::wstring>& names = {L"Line1"}) {
        int32_t first = 0;
        for (const std::wstring& name : names) {
            const int32_t number = instances->Seed(name);
            if (first == 0) first = number;
        }
        method.itfFBMethod_FatherInstanceNum(first);
        return first;
    }

    // Messages with these texts, as the set holds them.
    void messages(const std::vector<std::wstring>& texts) {
        for (size_t i = 1; i < texts.size(); ++i) set->AppendMessage();
        for (size_t i = 0; i < texts.size(); ++i)
            set->GetMessage(static_cast<int32_t>(i) + 1)->MessageString(padded(texts[i]));
    }

    // The message number linked to MI 5, as a stored Send with several messages has it.
    void linkedMessageNumber() {
        linkOperand(*set->OpMessageNumber(), 3, 5);
        set->OpMessageNumber()->OperandMode(1);
        set->OpMessageNumber()->OperandDescription(L"Choice");
    }

    // Runs the set's Edit with the person's actions on the dialog.
    bool edit(std::function<void(frmProtocolSend&)> script) {
        shown = false;
        driver.QueueDialog(scriptFor<frmProtocolSend>([this, script = std::move(script)](frmProtocolSend& dialog) {
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

    // The person in the control-character selector picks the code and OK, or cancels.
    void pickControlChar(int32_t code) {
        driver.QueueDialog(scriptFor<frmProtocolHexSelector>([code](frmProtocolHexSelector& dialog) {
            dialog.flgLowChars.UserClick(code + 1, 0);
            dialog.cmdOk.UserClick();
        }));
    }
    void cancelControlChar() {
        driver.QueueDialog(scriptFor<frmProtocolHexSelector>([](frmProtocolHexSelector& dialog) {
            dialog.flgLowChars.UserClick(5, 0);
            dialog.cmdCancel.UserClick();
        }));
    }

    std::vector<int32_t> shownMessages() {
        std::vector<int32_t> numbers;
        for (const auto& message : context->Messages) numbers.push_back(message.Number);
        return numbers;
    }

    // The texts of a row's cells from position 0, count of them.
    static std::wstring rowText(const Grid& grid, int32_t row, int32_t count) {
        std::wstring text;
        for (int32_t p = 0; p < count; ++p) text += grid.TextMatrix(row, p + 1);
        return text;
    }
    static std::wstring framingText(const Grid& grid) {
        std::wstring text;
        for (int32_t c = 0; c < grid.Cols(); ++c) text += L"[" + grid.TextMatrix(0, c) + L"]";
        return text;
    }
};

}  // namespace qx::test
