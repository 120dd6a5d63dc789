// Edit of the serial Send set through the message editors' hook: the editor
// gets the set itself and the host objects, the set answers what the editor
// answered, and only a confirmed edit fills the method's OperandsForFindOnly.
// A stand-in editor plays the dialog here; the dialog is tested with the editors.
#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "message/protocol_message.h"
#include "platform/host/fb_instances_double.h"
#include "platform/host/host_context.h"
#include "sets/send_set.h"
#include "sets/set_editor_hooks.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

class SendSetEditTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    ScopedMessageEditorHooks hooks;
    std::shared_ptr<FBInstancesDouble> instances = std::make_shared<FBInstancesDouble>();
    test::MethodStub method{170100, 3};
    clsProtocolSendSrv set;

    clsProtocolSendSrv* seenSet = nullptr;
    itfFBMethod* seenMethod = nullptr;
    InstancesPtr seenInstances;
    int32_t calls = 0;

    SendSetEditTest() {
        messageEditorHooks() = MessageEditorHooks{};
        method.itfFBMethod_Init(instances);
    }

    void installEditor(bool confirmed, std::function<void(clsProtocolSendSrv&)> edits = {}) {
        messageEditorHooks().SendEdit = [this, confirmed, edits](clsProtocolSendSrv& pSendSrv, itfFBMethod& pFBMethod,
                                                                 InstancesPtr pFBInstances, bool& pConfirmed) {
            ++calls;
            seenSet = &pSendSrv;
            seenMethod = &pFBMethod;
            seenInstances = pFBInstances;
            if (edits) edits(pSendSrv);
            pConfirmed = confirmed;
        };
    }

    void newFindOnly() { method.itfFBMethod_CreateDummyOperands(); }
};

TEST_F(SendSetEditTest, WithoutAnEditorItIsError91AndTheErrorSaysHowToInstallOne) {
    RuntimeError error = test::raisedError([&] { set.Edit(method, instances); });
    EXPECT_EQ(error.Number(), 91);
    EXPECT_EQ(error.Source(), L"QxFBCom2");
    EXPECT_EQ(error.Description(),
              L"No Send dialog is installed: a program that links QxFBCom2::core itself must call "
              L"qx::installMessageEditors() from editors/message_editors.h once before editing a Send operation, "
              L"or set qx::messageEditorHooks().SendEdit to an editor of its own.");
}

TEST_F(SendSetEditTest, TheEditorGetsTheSetItselfAndTheHostObjects) {
    installEditor(false);
    EXPECT_FALSE(set.Edit(method, instances));
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(seenSet, &set);
    EXPECT_EQ(seenMethod, &method);
    EXPECT_EQ(seenInstances, instances);
}

TEST_F(SendSetEditTest, HelpDuringTheEditShowsTheFamilysHelpAndTheSetKeepsNoHostObjectAfterwards) {
    installEditor(true, [](clsProtocolSendSrv& pSendSrv) { pSendSrv.ShowHelp(); });
    newFindOnly();
    EXPECT_TRUE(set.Edit(method, instances));
    EXPECT_EQ(instances->HelpShown, std::vector<int32_t>{170100});
    set.ShowHelp();
    EXPECT_EQ(instances->HelpShown.size(), 1u);
}

TEST_F(SendSetEditTest, ACanceledEditAddsNothingToTheFindOnlyOperands) {
    installEditor(false, [](clsProtocolSendSrv& pSendSrv) { test::linkOperand(*pSendSrv.OpCopyWhenOn(), 1, 12); });
    newFindOnly();
    EXPECT_FALSE(set.Edit(method, instances));
    EXPECT_EQ(method.itfFBMethod_OperandsForFindOnly()->Count(), 0);
}

TEST_F(SendSetEditTest, AConfirmedEditAddsTheLinkedOperandsOfTheSetThenThoseOfTheMessages) {
    installEditor(true, [](clsProtocolSendSrv& pSendSrv) {
        test::linkOperand(*pSendSrv.OpMessageNumber(), 3, 5);
        test::linkOperand(*pSendSrv.OpCopyWhenOn(), 1, 12);
    });
    newFindOnly();
    EXPECT_TRUE(set.Edit(method, instances));
    OperandCollection& found = *method.itfFBMethod_OperandsForFindOnly();
    ASSERT_EQ(found.Count(), 2);
    EXPECT_EQ(found.Item(1), set.OpMessageNumber());
    EXPECT_EQ(found.Item(2), set.OpCopyWhenOn());
    EXPECT_EQ(found.Item(L"2"), set.OpCopyWhenOn());
}
}  // namespace
}  // namespace qx
