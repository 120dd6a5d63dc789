// EditOperands of the TCP/IP Send operation, the whole road: the operation
// builds a TCP/IP Send set from its image (or a new one), the set opens the
// TCP/IP Send dialog, a scripted person edits, and on OK the operation takes
// the set's image. Images are compared with one built directly on a
// clsEthProtocolSendSrv holding the same content. The block's flag is the
// operation's own operand: the dialog links it in place.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "editors/frm_eth_protocol_send.h"
#include "editors/message_editors.h"
#include "editors/message_toolbar.h"
#include "field_editors/field_editors.h"
#include "framework/shared_helpers.h"
#include "message/editor_hooks.h"
#include "message/protocol_message.h"
#include "platform/controls/form.h"
#include "sets/send_set.h"
#include "sets/set_editor_hooks.h"
#include "support/operation_bench.h"
#include "support/test_helpers.h"
#include "tcpip/eth_protocol_send.h"

namespace qx {
namespace {

using test::memoryChoice;

std::wstring padded(const std::wstring& text) {
    return text + std::wstring(static_cast<size_t>(clsProtocolMessage::MaxPositions) - text.size(), L' ');
}

void type(Grid& grid, const std::wstring& text) {
    for (wchar_t ch : text) grid.UserKeyPress(static_cast<int32_t>(ch));
}

struct EthSendEditBench : test::OperationBench<clsEthProtocolSend> {
    ScriptedModalDriver& driver = *context->Script();
    ScopedMessageEditorHooks messageHooks;
    ScopedEditorHooks fieldHooks;
    std::shared_ptr<clsEthProtocolSend>& send = operation;
    bool shown = false;

    EthSendEditBench() : OperationBench(170200, L"Socket1") {
        messageEditorHooks() = MessageEditorHooks{};
        installMessageEditors();
        installFieldEditors();
    }

    void editOperands(std::function<void(frmEthProtocolSend&)> script) {
        shown = false;
        driver.QueueDialog(
            scriptFor<frmEthProtocolSend>([this, script = std::move(script)](frmEthProtocolSend& dialog) {
                shown = true;
                script(dialog);
            }));
        send->itfFBMethod_EditOperands();
    }

    clsOperand& flag() { return *operand(1); }

    // A stored TCP/IP Send whose flag is linked to bit 5.
    void reopen(const Bytes& image) { reopenWith(test::storedOperands({test::linkedOperand(1, 5)}), image); }
};

// A stored TCP/IP Send: a Modbus-ASCII-style read request and a write
// request, the message number linked to MI 5.
Bytes storedImage() {
    ScopedHostContext scratch;
    clsEthProtocolSendSrv set;
    set.AppendMessage();
    set.GetMessage(1)->MessageString(padded(L":010300000002FA\r\n"));
    set.GetMessage(2)->MessageString(padded(L":01060001000AEE\r\n"));
    test::linkOperand(*set.OpMessageNumber(), 3, 5);
    set.OpMessageNumber()->OperandMode(1);
    return set.BinaryData();
}

TEST(EthProtocolSendEditOperands, ANewSendLinksItsFlagFirstAndConfirmedWritesTheImageOfWhatWasTyped) {
    EthSendEditBench bench;
    bench.makeNew();
    const int32_t config = bench.instances->Seed(L"Socket1");
    const int32_t next = bench.context->Operands.NextConstantAddress();
    bench.driver.QueuePick(memoryChoice(1, 17, L"Sent"));
    bench.editOperands([&](frmEthProtocolSend& dialog) {
        EXPECT_EQ(bench.driver.PendingPicks(), 0u);
        type(dialog.FlgSend, L"GET\r\n");
        dialog.cmdOK.UserClick();
    });
    EXPECT_TRUE(bench.shown);
    EXPECT_FALSE(bench.send->itfFBMethod_IsCanceled());
    EXPECT_FALSE(bench.send->itfFBMethod_IsNew());
    EXPECT_EQ(bench.send->itfFBMethod_FatherInstanceNum(), config);
    EXPECT_FALSE(bench.flag().IsNew());
    EXPECT_EQ(bench.flag().OperandType(), 1);
    EXPECT_EQ(bench.flag().OperandAddress(), 17);

    clsEthProtocolSendSrv direct;
    direct.GetMessage(1)->MessageString(padded(L"GET\r\n"));
    // The dialog took one constant address for the single message's number,
    // and writing the image takes the next one.
    bench.context->Operands.NextConstantAddress(next + 1);
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), direct.BinaryData());
    // The flag is on the block, not in the image: the search gets nothing.
    EXPECT_EQ(bench.send->itfFBMethod_OperandsForFindOnly()->Count(), 0);
}

TEST(EthProtocolSendEditOperands, ANewSendCanceledStaysNewWithoutAnImageButKeepsItsFlagLink) {
    EthSendEditBench bench;
    bench.makeNew();
    bench.instances->Seed(L"Socket1");
    bench.driver.QueuePick(memoryChoice(1, 17));
    bench.editOperands([](frmEthProtocolSend& dialog) {
        type(dialog.FlgSend, L"abc");
        dialog.cmdCancel.UserClick();
    });
    EXPECT_TRUE(bench.send->itfFBMethod_IsCanceled());
    EXPECT_TRUE(bench.send->itfFBMethod_IsNew());
    EXPECT_TRUE(bench.send->itfFBMethod_BinaryOperands().empty());
    EXPECT_EQ(bench.send->itfFBMethod_FatherInstanceNum(), 1);
    EXPECT_FALSE(bench.flag().IsNew());
    EXPECT_EQ(bench.flag().OperandAddress(), 17);

    // A second edit starts from an empty set and, the flag being linked,
    // opens no picker.
    bench.driver.QueuePick(memoryChoice(1, 30));
    bench.editOperands([&](frmEthProtocolSend& dialog) {
        EXPECT_EQ(dialog.FlgSend.TextMatrix(0, 1), L" ");
        EXPECT_EQ(dialog.lbOpMsgsucceeded.Caption(), GetOperandDisplayText(bench.flag()));
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(bench.driver.PendingPicks(), 1u);
    EXPECT_TRUE(bench.send->itfFBMethod_IsNew());
}

TEST(EthProtocolSendEditOperands, WithoutInstancesTheEditIsCanceledAndNoDialogIsShown) {
    EthSendEditBench bench;
    bench.makeNew();
    bench.editOperands([](frmEthProtocolSend&) {});
    EXPECT_FALSE(bench.shown);
    EXPECT_TRUE(bench.send->itfFBMethod_IsCanceled());
    EXPECT_TRUE(bench.send->itfFBMethod_IsNew());
    ASSERT_EQ(bench.context->Messages.size(), 1u);
    EXPECT_EQ(bench.context->Messages[0].Number, 140);
}

TEST(EthProtocolSendEditOperands, AStoredSendIsLoadedIntoTheDialog) {
    EthSendEditBench bench;
    bench.reopen(storedImage());
    bench.editOperands([&](frmEthProtocolSend& dialog) {
        ASSERT_EQ(dialog.FlgSend.Rows(), 2);
        EXPECT_EQ(dialog.FlgSend.TextMatrix(0, 1), L":");
        EXPECT_EQ(dialog.FlgSend.TextMatrix(1, 5), L"6");
        EXPECT_FALSE(dialog.lbOpMsgNumToSend.Caption().empty());
        EXPECT_EQ(dialog.lbOpMsgsucceeded.Caption(), GetOperandDisplayText(bench.flag()));
        EXPECT_EQ(dialog.cbInstanceName.ListIndex(), 0);
        EXPECT_TRUE(dialog.cmdOK.Enabled());
        dialog.cmdCancel.UserClick();
    });
    EXPECT_TRUE(bench.shown);
}

TEST(EthProtocolSendEditOperands, CancelKeepsTheImageByteForByteAndTheFlagLinkMadeInTheDialog) {
    EthSendEditBench bench;
    const Bytes stored = storedImage();
    bench.reopen(stored);
    // A confirmed edit first, so that the search holds the link.
    bench.editOperands([](frmEthProtocolSend& dialog) { dialog.cmdOK.UserClick(); });
    ASSERT_EQ(bench.send->itfFBMethod_OperandsForFindOnly()->Count(), 1);
    const Bytes before = bench.send->itfFBMethod_BinaryOperands();

    bench.editOperands([&](frmEthProtocolSend& dialog) {
        type(dialog.FlgSend, L"XYZ");
        dialog.abSend.UserClickTool(tools::ID_AppendMsg);
        bench.driver.QueuePick(memoryChoice(3, 9));
        dialog.cmdOpMsgNumToSend.UserClick();
        bench.driver.QueuePick(memoryChoice(1, 44, L"Moved"));
        dialog.cmdOpMsgsucceeded.UserClick();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_TRUE(bench.send->itfFBMethod_IsCanceled());
    EXPECT_FALSE(bench.send->itfFBMethod_IsNew());
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), before);
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), stored);
    EXPECT_EQ(bench.send->itfFBMethod_OperandsForFindOnly()->Count(), 0);
    // The flag lives in the operation, not in the scratch set.
    EXPECT_EQ(bench.flag().OperandAddress(), 44);
    EXPECT_EQ(bench.send->itfFBMethod_OutOperands()->Count(), 1);
}

TEST(EthProtocolSendEditOperands, AConfirmedEditOfAStoredSendWritesItsImageAndListsItsLinks) {
    EthSendEditBench bench;
    bench.reopen(storedImage());
    bench.editOperands([&](frmEthProtocolSend& dialog) {
        dialog.FlgSend.UserClick(1, 16);
        type(dialog.FlgSend, L"!");
        bench.driver.QueuePick(memoryChoice(3, 8, L"Which"));
        dialog.cmdOpMsgNumToSend.UserClick();
        dialog.cmdOK.UserClick();
    });
    EXPECT_FALSE(bench.send->itfFBMethod_IsCanceled());

    clsEthProtocolSendSrv direct;
    direct.AppendMessage();
    direct.GetMessage(1)->MessageString(padded(L":010300000002FA\r\n"));
    direct.GetMessage(2)->MessageString(padded(L":01060001000AEE!\r\n"));
    test::linkOperand(*direct.OpMessageNumber(), 3, 8);
    direct.OpMessageNumber()->OperandMode(1);
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), direct.BinaryData());

    OperandCollection& found = *bench.send->itfFBMethod_OperandsForFindOnly();
    ASSERT_EQ(found.Count(), 1);
    EXPECT_EQ(found.Item(1)->OperandType(), 3);
    EXPECT_EQ(found.Item(1)->OperandAddress(), 8);
}

}  // namespace
}  // namespace qx
