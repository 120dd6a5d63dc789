// The sets' end-of-message operations through the editor hook: the editor
// gets a replica and a copy of the number, and the set takes both only when
// the editor answers true. A stand-in editor plays the dialog here; the
// dialog itself is tested with the field editors.
#include <gtest/gtest.h>

#include <memory>

#include "message/editor_hooks.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_numeric_var.h"
#include "platform/host/host_context.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

class EndOfMessageEditTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    ScopedEditorHooks hooks;

    std::shared_ptr<clsProtocolCSVar> seen;
    int32_t seenType = 0;
    int32_t calls = 0;

    // An editor that sets length 4 and type 3 on what it gets, and answers accepted.
    void installEditor(bool accepted) {
        editorHooks().EndOfMessage = [this, accepted](std::shared_ptr<clsProtocolCSVar> checksum, int32_t& type) {
            ++calls;
            seen = checksum;
            seenType = type;
            checksum->CSLength(4);
            type = 3;
            return accepted;
        };
    }
};

TEST_F(EndOfMessageEditTest, WithoutAnEditorTheSendOperationIsError91AndSaysWhy) {
    editorHooks().EndOfMessage = nullptr;
    clsProtocolSendSrv set;
    RuntimeError error = test::raisedError([&] { set.EditSendETXAdvanced(); });
    EXPECT_EQ(error.Number(), 91);
    EXPECT_NE(error.Description().find(L"installFieldEditors"), std::wstring::npos);
}

TEST_F(EndOfMessageEditTest, WithoutAnEditorTheErrorSaysWhatIsMissingAndHowToInstallIt) {
    editorHooks() = EditorHooks{};
    clsProtocolScanSrv set;
    RuntimeError error = test::raisedError([&] { set.EditScanETXAdvanced(); });
    EXPECT_EQ(error.Number(), 91);
    EXPECT_EQ(error.Source(), L"QxFBCom2");
    EXPECT_EQ(error.Description(),
              L"No end-of-message editor dialog is installed: a program that links QxFBCom2::core itself must call "
              L"qx::installFieldEditors() from field_editors/field_editors.h once before editing the end of a "
              L"message, or set qx::editorHooks().EndOfMessage to an editor of its own.");
}

TEST_F(EndOfMessageEditTest, WithoutAnEditorTheScanOperationIsError91) {
    editorHooks().EndOfMessage = nullptr;
    clsProtocolScanSrv set;
    EXPECT_EQ(test::runtimeErrorOf([&] { set.EditScanETXAdvanced(); }), 91);
}

TEST_F(EndOfMessageEditTest, TheEditorGetsAReplicaOfTheSendChecksumAndTheSetsNumber) {
    installEditor(false);
    clsProtocolSendSrv set;
    auto original = std::dynamic_pointer_cast<clsProtocolCSVar>(set.SendChecksum());
    original->CalculationType(6);
    original->SA_AddedValue(9);
    set.EndOfSendMessageType(2);
    set.EditSendETXAdvanced();
    ASSERT_EQ(calls, 1);
    ASSERT_NE(seen, nullptr);
    EXPECT_NE(seen, original);
    EXPECT_EQ(seen->CalculationType(), 6);
    EXPECT_EQ(seen->SA_AddedValue(), 9);
    EXPECT_EQ(seenType, 2);
}

TEST_F(EndOfMessageEditTest, ARefusedSendEditLeavesTheChecksumAndTheNumber) {
    installEditor(false);
    clsProtocolSendSrv set;
    VarPtr before = set.SendChecksum();
    set.EditSendETXAdvanced();
    EXPECT_EQ(set.SendChecksum(), before);
    EXPECT_EQ(std::dynamic_pointer_cast<clsProtocolCSVar>(before)->CSLength(), 1);
    EXPECT_EQ(set.EndOfSendMessageType(), 1);
}

TEST_F(EndOfMessageEditTest, AnAcceptedSendEditPutsTheReplicaAndTheNumberInPlace) {
    installEditor(true);
    clsProtocolSendSrv set;
    VarPtr before = set.SendChecksum();
    set.EditSendETXAdvanced();
    EXPECT_EQ(set.SendChecksum(), seen);
    EXPECT_NE(set.SendChecksum(), before);
    EXPECT_EQ(std::dynamic_pointer_cast<clsProtocolCSVar>(set.SendChecksum())->CSLength(), 4);
    EXPECT_EQ(set.EndOfSendMessageType(), 3);
}

TEST_F(EndOfMessageEditTest, TheScanTwinWorksOnScanChecksumAndItsNumber) {
    installEditor(false);
    clsProtocolScanSrv set;
    set.EndOfScanMessageType(2);
    VarPtr before = set.ScanChecksum();
    set.EditScanETXAdvanced();
    EXPECT_EQ(seenType, 2);
    EXPECT_EQ(set.ScanChecksum(), before);
    EXPECT_EQ(set.EndOfScanMessageType(), 2);

    installEditor(true);
    set.EditScanETXAdvanced();
    EXPECT_EQ(set.ScanChecksum(), seen);
    EXPECT_EQ(set.EndOfScanMessageType(), 3);
}

TEST_F(EndOfMessageEditTest, AChecksumOfAnotherClassIsError13AndNoneIsError91) {
    installEditor(true);
    clsProtocolSendSrv set;
    set.SendChecksum(std::make_shared<clsProtocolNumericVar>());
    EXPECT_EQ(test::runtimeErrorOf([&] { set.EditSendETXAdvanced(); }), 13);
    set.SendChecksum(nullptr);
    EXPECT_EQ(test::runtimeErrorOf([&] { set.EditSendETXAdvanced(); }), 91);
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(set.EndOfSendMessageType(), 1);
}

TEST_F(EndOfMessageEditTest, ScopedHooksPutBackWhatWasInstalled) {
    installEditor(true);
    {
        ScopedEditorHooks inner;
        editorHooks().EndOfMessage = nullptr;
    }
    ASSERT_TRUE(static_cast<bool>(editorHooks().EndOfMessage));
    clsProtocolSendSrv set;
    set.EditSendETXAdvanced();
    EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace qx
