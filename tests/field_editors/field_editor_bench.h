// The fixture of the field editors' tests: a fresh host context with the
// scripted person, the field editors installed in hooks that are put back
// afterwards, and the end-of-message dialog run on a checksum.
#pragma once
#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "field_editors/field_editors.h"
#include "field_editors/frm_protocol_config_advanced.h"
#include "field_editors/frm_protocol_hex_selector.h"
#include "message/editor_hooks.h"
#include "message/protocol_cs_var.h"
#include "platform/host/host_context.h"

namespace qx::test {

class FieldEditorTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    ScriptedModalDriver& driver = *context->Script();
    ScopedEditorHooks hooks;

    FieldEditorTest() { installFieldEditors(); }

    void onDialog(std::function<void(frmProtocolConfigAdvanced&)> script) {
        driver.QueueDialog(scriptFor<frmProtocolConfigAdvanced>(std::move(script)));
    }
    // The selector's person: clicks the row of code and presses OK.
    void onSelectorPick(int32_t code) {
        driver.QueueDialog(scriptFor<frmProtocolHexSelector>([code](frmProtocolHexSelector& selector) {
            selector.flgLowChars.UserClick(code + 1, 0);
            selector.cmdOk.UserClick();
        }));
    }
    // Runs the end-of-message dialog on checksum with the script; the result.
    bool edit(const CSVarPtr& checksum, int32_t& endOfMessage, std::function<void(frmProtocolConfigAdvanced&)> script) {
        onDialog(std::move(script));
        return frmProtocolConfigAdvanced().Edit(checksum, endOfMessage);
    }
};

}  // namespace qx::test
