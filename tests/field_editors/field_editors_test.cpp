// installFieldEditors and the hooks a host installs itself: the field
// editors fill only the hooks nobody has set, so a host's own editor stays
// whether it came before them or after.
#include "field_editors/field_editors.h"

#include <gtest/gtest.h>

#include <memory>

#include "message/editor_hooks.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_date_var.h"
#include "platform/controls/form.h"
#include "platform/host/host_context.h"

namespace qx {
namespace {

class FieldEditorsInstallTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    ScriptedModalDriver& driver = *context->Script();
    ScopedEditorHooks hooks;
    int32_t hostFieldCalls = 0;
    int32_t hostEndCalls = 0;

    FieldEditorsInstallTest() { editorHooks() = EditorHooks{}; }

    void setHostFieldEditor() {
        editorHooks().Field = [this](VarPtr pVar, int32_t&) {
            ++hostFieldCalls;
            return pVar;
        };
    }
    void setHostEndOfMessageEditor() {
        editorHooks().EndOfMessage = [this](std::shared_ptr<clsProtocolCSVar>, int32_t&) {
            ++hostEndCalls;
            return true;
        };
    }
    // Runs the field hook and the end-of-message hook once each.
    void runBothHooks() {
        int32_t methodType = 0;
        runFieldEditor(std::make_shared<clsProtocolDateVar>(), methodType);
        int32_t type = 1;
        runEndOfMessageEditor(std::make_shared<clsProtocolCSVar>(), type);
    }
};

TEST_F(FieldEditorsInstallTest, AFieldEditorSetByTheHostBeforehandStaysAndOnlyTheEmptyHookIsFilled) {
    setHostFieldEditor();
    installFieldEditors();
    ASSERT_TRUE(static_cast<bool>(editorHooks().EndOfMessage));
    // The host's field editor answers; the end of message opens the library's dialog.
    driver.QueueDialog([](Form& dialog) {
        EXPECT_EQ(dialog.Name(), L"frmProtocolConfigAdvanced");
        dialog.Hide();
    });
    runBothHooks();
    EXPECT_EQ(hostFieldCalls, 1);
    EXPECT_EQ(driver.PendingDialogs(), 0u);
}

TEST_F(FieldEditorsInstallTest, AnEndOfMessageEditorSetByTheHostBeforehandStaysAndOnlyTheEmptyHookIsFilled) {
    setHostEndOfMessageEditor();
    installFieldEditors();
    ASSERT_TRUE(static_cast<bool>(editorHooks().Field));
    driver.QueueDialog([](Form& dialog) {
        EXPECT_EQ(dialog.Name(), L"frmProtocolVars");
        dialog.Hide();
    });
    runBothHooks();
    EXPECT_EQ(hostEndCalls, 1);
    EXPECT_EQ(driver.PendingDialogs(), 0u);
}

TEST_F(FieldEditorsInstallTest, BothHooksOfTheHostSurviveAnyNumberOfInstalls) {
    setHostFieldEditor();
    setHostEndOfMessageEditor();
    installFieldEditors();
    installFieldEditors();
    runBothHooks();
    EXPECT_EQ(hostFieldCalls, 1);
    EXPECT_EQ(hostEndCalls, 1);
    EXPECT_EQ(driver.PendingDialogs(), 0u);
}

TEST_F(FieldEditorsInstallTest, AHostHookSetAfterTheInstallReplacesTheLibrarysDialog) {
    installFieldEditors();
    setHostFieldEditor();
    setHostEndOfMessageEditor();
    installFieldEditors();
    runBothHooks();
    EXPECT_EQ(hostFieldCalls, 1);
    EXPECT_EQ(hostEndCalls, 1);
}

}  // namespace
}  // namespace qx
