// A TCP/IP Send set, an operation with the block's one flag operand and the
// host's instances, with the message and field editors installed and a
// scripted person, for the tests of the TCP/IP Send dialog.
#pragma once
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "editors/frm_eth_protocol_send.h"
#include "editors/message_editors.h"
#include "field_editors/field_editors.h"
#include "framework/fb_method_base.h"
#include "message/editor_hooks.h"
#include "message/protocol_message.h"
#include "platform/controls/form.h"
#include "platform/host/fb_instances_double.h"
#include "platform/host/host_context.h"
#include "sets/send_set.h"
#include "sets/set_editor_hooks.h"
#include "support/test_helpers.h"

namespace qx::test {

// The TCP/IP Send operation as far as the dialog asks it: method id 170203
// and item 1 of OutOperands, the flag "Send Message succeeded".
class EthSendMethodStub : public FBMethodBase {
public:
    EthSendMethodStub()
        : FBMethodBase(FBMethodInfo{3,
                                    L"STUB",
                                    L"",
                                    0,
                                    0,
                                    1,
                                    true,
                                    false,
                                    {{.TypeAtCreation = 1,
                                      .AllowedTypes = {1},
                                      .ExtendedTypes = {64},
                                      .TextNumber = 597,
                                      .Visible = true}}}) {
        FatherStub father(170200);
        itfFBMethod_InitProperties(father);
        itfFBMethod_CreateDummyOperands();
        itfFBMethod_BuildOperands();
        setIsNew(false);
    }
    void itfFBMethod_EditOperands() override {}
    // Just placed in a net: new, the flag unlinked.
    void makeNew() {
        itfFBMethod_CreateDummyOperands();
        itfFBMethod_BuildOperands();
    }
    clsOperand& succeeded() { return *itfFBMethod_OutOperands()->Item(1); }
    // The flag of a stored Send, linked to bit 12.
    void linkSucceeded() {
        linkOperand(succeeded(), 1, 12);
        succeeded().OperandMode(1);
        succeeded().OperandDescription(L"SentOK");
    }
};

class EthSendDialogBench {
public:
    static constexpr int32_t Positions = clsProtocolMessage::MaxPositions;

    ScopedHostContext context;
    ScriptedModalDriver& driver = *context->Script();
    ScopedMessageEditorHooks messageHooks;
    ScopedEditorHooks fieldHooks;
    std::shared_ptr<FBInstancesDouble> instances = std::make_shared<FBInstancesDouble>();
    EthSendMethodStub method;
    std::unique_ptr<clsEthProtocolSendSrv> set;
    bool confirmed = false;
    bool shown = false;

    EthSendDialogBench() {
        messageEditorHooks() = MessageEditorHooks{};
        installMessageEditors();
        installFieldEditors();
        method.itfFBMethod_Init(instances);
        set = std::make_unique<clsEthProtocolSendSrv>();
    }

    static std::wstring padded(const std::wstring& text) {
        return text + std::wstring(static_cast<size_t>(Positions) - text.size(), L' ');
    }

    // A Send of a stored project linked to the Config "Socket1" (and others
    // after it, when named), its flag linked; returns the Config's number.
    int32_t stored(const std::vector<std::wstring>& names = {L"Socket1"}) {
        int32_t first = 0;
        for (const std::wstring& name : names) {
            const int32_t number = instances->Seed(name);
            if (first == 0) first = number;
        }
        method.itfFBMethod_FatherInstanceNum(first);
        method.linkSucceeded();
        return first;
    }

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

    bool edit(std::function<void(frmEthProtocolSend&)> script) {
        shown = false;
        driver.QueueDialog(
            scriptFor<frmEthProtocolSend>([this, script = std::move(script)](frmEthProtocolSend& dialog) {
                shown = true;
                script(dialog);
            }));
        confirmed = set->Edit(method, instances);
        return confirmed;
    }

    static void type(Grid& grid, const std::wstring& text) {
        for (wchar_t ch : text) grid.UserKeyPress(static_cast<int32_t>(ch));
    }

    std::vector<int32_t> shownMessages() {
        std::vector<int32_t> numbers;
        for (const auto& message : context->Messages) numbers.push_back(message.Number);
        return numbers;
    }
};

}  // namespace qx::test
