// A serial Send set with the message editors installed and a scripted
// person, for the tests of the Send advanced dialog: set up the copy the set
// starts with, queue the person's actions, run EditAdvanced.
#pragma once
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "editors/frm_protocol_send_advanced.h"
#include "editors/message_editors.h"
#include "platform/controls/form.h"
#include "platform/host/host_context.h"
#include "sets/send_set.h"
#include "sets/set_editor_hooks.h"
#include "support/test_helpers.h"

namespace qx::test {

inline const std::wstring sendBytes1 = L"Convert ONE Linked Element to 1 Send Bytes";
inline const std::wstring sendBytes2 = L"Convert ONE Linked Element to 2 Send Bytes";
inline const std::wstring sendBytes4 = L"Convert ONE Linked Element to 4 Send Bytes";

struct FormatItem {
    std::wstring Text;
    int32_t Data;
    bool operator==(const FormatItem&) const = default;
};

inline std::vector<FormatItem> formatItemsOf(const ComboBox& combo) {
    std::vector<FormatItem> items;
    for (int32_t i = 0; i < combo.ListCount(); ++i) items.push_back({combo.List(i), combo.ItemData(i)});
    return items;
}

inline std::ostream& operator<<(std::ostream& out, const FormatItem& item) {
    return out << std::string(item.Text.begin(), item.Text.end()) << " (" << item.Data << ")";
}

class SendAdvancedBench {
public:
    ScopedHostContext context;
    ScriptedModalDriver& driver = *context->Script();
    ScopedMessageEditorHooks hooks;
    std::unique_ptr<clsProtocolSendSrv> set;

    // The set is made after the host's switch for the extended types is on,
    // so that its destination allows them.
    explicit SendAdvancedBench(bool extendedOperands = true) {
        context->ExtendedOperands = extendedOperands;
        messageEditorHooks() = MessageEditorHooks{};
        installMessageEditors();
        set = std::make_unique<clsProtocolSendSrv>();
    }

    clsOperand& destination() { return *set->OpCopyDestination(); }
    clsOperand& whenOn() { return *set->OpCopyWhenOn(); }

    // A set whose copy was stored complete: the destination linked to an
    // operand of that type, the bit to MB 12, and the count.
    void storedCopy(int32_t count, int32_t destinationType = 5, int32_t address = 300) {
        linkOperand(destination(), destinationType, address);
        destination().OperandDescription(L"Target");
        linkOperand(whenOn(), 1, 12);
        whenOn().OperandDescription(L"Done");
        set->CopyBytesCount(count);
    }

    void onDialog(std::function<void(frmProtocolSendAdvanced&)> script) {
        driver.QueueDialog(scriptFor<frmProtocolSendAdvanced>(std::move(script)));
    }

    // Runs EditAdvanced of the set with the given person's actions.
    void edit(std::function<void(frmProtocolSendAdvanced&)> script) {
        onDialog(std::move(script));
        set->EditAdvanced();
        EXPECT_EQ(driver.PendingDialogs(), 0u) << "the dialog was not shown";
    }
};

}  // namespace qx::test
