// installMessageEditors and the hooks a host installs itself: the message
// editors fill only the hooks nobody has set, so a host's own editor stays
// whether it came before them or after.
#include "editors/message_editors.h"

#include <gtest/gtest.h>

#include <memory>

#include "platform/controls/form.h"
#include "platform/host/fb_instances_double.h"
#include "platform/host/host_context.h"
#include "sets/send_set.h"
#include "sets/set_editor_hooks.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

class MessageEditorsInstallTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    ScriptedModalDriver& driver = *context->Script();
    ScopedMessageEditorHooks hooks;
    int32_t hostCalls = 0;

    MessageEditorsInstallTest() { messageEditorHooks() = MessageEditorHooks{}; }

    void setHostSendAdvancedEditor() {
        messageEditorHooks().SendAdvanced = [this](OperandPtr, OperandPtr, int32_t& count, bool& confirmed) {
            ++hostCalls;
            count = 4;
            confirmed = true;
        };
    }
};

TEST_F(MessageEditorsInstallTest, InstallingFillsTheEmptyHookWithTheLibrarysDialog) {
    installMessageEditors();
    ASSERT_TRUE(static_cast<bool>(messageEditorHooks().SendAdvanced));
    std::wstring shown;
    driver.QueueDialog([&](Form& dialog) {
        shown = dialog.Name();
        dialog.Hide();
    });
    clsProtocolSendSrv set;
    set.EditAdvanced();
    EXPECT_EQ(shown, L"frmProtocolSendAdvanced");
    EXPECT_EQ(driver.PendingDialogs(), 0u);
}

TEST_F(MessageEditorsInstallTest, InstallingTwiceChangesNothing) {
    installMessageEditors();
    installMessageEditors();
    int32_t dialogs = 0;
    driver.QueueDialog([&](Form& dialog) {
        ++dialogs;
        dialog.Hide();
    });
    clsProtocolSendSrv set;
    set.EditAdvanced();
    EXPECT_EQ(dialogs, 1);
}

TEST_F(MessageEditorsInstallTest, AnEditorSetByTheHostBeforehandStays) {
    setHostSendAdvancedEditor();
    installMessageEditors();
    installMessageEditors();
    clsProtocolSendSrv set;
    set.EditAdvanced();
    EXPECT_EQ(hostCalls, 1);
    EXPECT_EQ(set.CopyBytesCount(), 4);
    EXPECT_EQ(driver.PendingDialogs(), 0u);
}

TEST_F(MessageEditorsInstallTest, AnEditorSetByTheHostAfterTheInstallReplacesTheLibrarysDialog) {
    installMessageEditors();
    setHostSendAdvancedEditor();
    installMessageEditors();
    clsProtocolSendSrv set;
    set.EditAdvanced();
    EXPECT_EQ(hostCalls, 1);
}

TEST_F(MessageEditorsInstallTest, AnEmptiedHookIsFilledAgainByTheNextInstall) {
    installMessageEditors();
    setHostSendAdvancedEditor();
    messageEditorHooks().SendAdvanced = nullptr;
    installMessageEditors();
    driver.QueueDialog([](Form& dialog) { dialog.Hide(); });
    clsProtocolSendSrv set;
    set.EditAdvanced();
    EXPECT_EQ(hostCalls, 0);
    EXPECT_EQ(driver.PendingDialogs(), 0u);
}

TEST_F(MessageEditorsInstallTest, TheScopedGuardPutsTheHooksBack) {
    installMessageEditors();
    {
        ScopedMessageEditorHooks inner;
        messageEditorHooks().SendAdvanced = nullptr;
    }
    EXPECT_TRUE(static_cast<bool>(messageEditorHooks().SendAdvanced));
}

TEST_F(MessageEditorsInstallTest, InstallingFillsTheSendHookWithTheSendDialog) {
    installMessageEditors();
    ASSERT_TRUE(static_cast<bool>(messageEditorHooks().SendEdit));
    auto instances = std::make_shared<FBInstancesDouble>();
    instances->Seed(L"Line1");
    test::MethodStub method(170100, 3);
    method.itfFBMethod_Init(instances);
    std::wstring shown;
    driver.QueueDialog([&](Form& dialog) {
        shown = dialog.Name();
        dialog.Hide();
    });
    clsProtocolSendSrv set;
    EXPECT_FALSE(set.Edit(method, instances));
    EXPECT_EQ(shown, L"frmProtocolSend");
}

TEST_F(MessageEditorsInstallTest, ASendEditorSetByTheHostStaysAndTheEmptyScanHookIsFilled) {
    int32_t calls = 0;
    messageEditorHooks().SendEdit = [&](clsProtocolSendSrv&, itfFBMethod&, InstancesPtr, bool& confirmed) {
        ++calls;
        confirmed = true;
    };
    installMessageEditors();
    EXPECT_TRUE(static_cast<bool>(messageEditorHooks().ScanEdit));
    test::MethodStub method(170100, 3);
    clsProtocolSendSrv set;
    EXPECT_TRUE(set.Edit(method, nullptr));
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(driver.PendingDialogs(), 0u);
}

}  // namespace
}  // namespace qx
