// EditAdvanced of the Send sets through the message editors' hook: the
// editor works on the set's own operand objects and gets a copy of the
// count, which the set takes over only when the editor confirms. A stand-in
// editor plays the dialog here; the dialog itself is tested with the editors.
#include <gtest/gtest.h>

#include <memory>

#include "platform/host/host_context.h"
#include "sets/send_set.h"
#include "sets/set_editor_hooks.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

class SendAdvancedEditTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    ScopedMessageEditorHooks hooks;

    OperandPtr seenDestination;
    OperandPtr seenWhenOn;
    int32_t seenCount = -1;
    int32_t calls = 0;

    // An editor that links both operands, sets the count to newCount and
    // answers confirmed.
    void installEditor(int32_t newCount, bool confirmed) {
        messageEditorHooks().SendAdvanced = [this, newCount, confirmed](OperandPtr destination, OperandPtr whenOn,
                                                                        int32_t& count, bool& isConfirmed) {
            ++calls;
            seenDestination = destination;
            seenWhenOn = whenOn;
            seenCount = count;
            test::linkOperand(*destination, 5, 300);
            test::linkOperand(*whenOn, 1, 12);
            count = newCount;
            isConfirmed = confirmed;
        };
    }
};

TEST_F(SendAdvancedEditTest, WithoutAnEditorItIsError91AndTheErrorSaysHowToInstallOne) {
    messageEditorHooks() = MessageEditorHooks{};
    clsProtocolSendSrv set;
    set.CopyBytesCount(2);
    RuntimeError error = test::raisedError([&] { set.EditAdvanced(); });
    EXPECT_EQ(error.Number(), 91);
    EXPECT_EQ(error.Source(), L"QxFBCom2");
    EXPECT_EQ(error.Description(),
              L"No Send advanced dialog is installed: a program that links QxFBCom2::core itself must call "
              L"qx::installMessageEditors() from editors/message_editors.h once before editing the copy after the "
              L"ETX, or set qx::messageEditorHooks().SendAdvanced to an editor of its own.");
    EXPECT_EQ(set.CopyBytesCount(), 2);
}

TEST_F(SendAdvancedEditTest, TheEditorGetsTheSetsOwnOperandObjectsAndItsCount) {
    installEditor(1, false);
    clsProtocolSendSrv set;
    set.CopyBytesCount(4);
    set.EditAdvanced();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(seenDestination, set.OpCopyDestination());
    EXPECT_EQ(seenWhenOn, set.OpCopyWhenOn());
    EXPECT_EQ(seenCount, 4);
}

TEST_F(SendAdvancedEditTest, AConfirmedEditTakesTheCount) {
    installEditor(2, true);
    clsProtocolSendSrv set;
    set.EditAdvanced();
    EXPECT_EQ(set.CopyBytesCount(), 2);
    EXPECT_EQ(set.OpCopyDestination()->OperandAddress(), 300);
    EXPECT_EQ(set.OpCopyWhenOn()->OperandAddress(), 12);
}

TEST_F(SendAdvancedEditTest, AConfirmedCountOf0TurnsTheCopyOff) {
    installEditor(0, true);
    clsProtocolSendSrv set;
    set.CopyBytesCount(4);
    set.EditAdvanced();
    EXPECT_EQ(set.CopyBytesCount(), 0);
}

TEST_F(SendAdvancedEditTest, ACancelledEditKeepsTheCountButTheLinksMadeOnTheOperandsStay) {
    installEditor(4, false);
    clsProtocolSendSrv set;
    set.CopyBytesCount(1);
    set.EditAdvanced();
    EXPECT_EQ(set.CopyBytesCount(), 1);
    EXPECT_FALSE(set.OpCopyDestination()->IsNew());
    EXPECT_EQ(set.OpCopyDestination()->OperandType(), 5);
    EXPECT_EQ(set.OpCopyDestination()->OperandAddress(), 300);
    EXPECT_FALSE(set.OpCopyWhenOn()->IsNew());
    EXPECT_EQ(set.OpCopyWhenOn()->OperandAddress(), 12);
}

TEST_F(SendAdvancedEditTest, TheOperandObjectsAreNotReplaced) {
    installEditor(2, true);
    clsProtocolSendSrv set;
    const OperandPtr destination = set.OpCopyDestination();
    const OperandPtr whenOn = set.OpCopyWhenOn();
    set.EditAdvanced();
    EXPECT_EQ(set.OpCopyDestination(), destination);
    EXPECT_EQ(set.OpCopyWhenOn(), whenOn);
}

TEST_F(SendAdvancedEditTest, AConfirmedEditCarriesIntoTheImage) {
    installEditor(2, true);
    clsProtocolSendSrv edited, expected;
    edited.EditAdvanced();
    expected.CopyBytesCount(2);
    test::linkOperand(*expected.OpCopyDestination(), 5, 300);
    test::linkOperand(*expected.OpCopyWhenOn(), 1, 12);
    EXPECT_EQ(edited.BinaryData(), expected.BinaryData());
}

}  // namespace
}  // namespace qx
