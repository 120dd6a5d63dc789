// EditOperands of the serial Send operation, the whole road: the operation
// builds a Send set from its image (or a new one), the set opens the Send
// dialog, a scripted person edits, and on OK the operation takes the set's
// image and the operands it links. Images are compared with one built
// directly on a clsProtocolSendSrv holding the same content.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "editors/frm_protocol_send.h"
#include "editors/message_editors.h"
#include "editors/message_toolbar.h"
#include "field_editors/field_editors.h"
#include "message/editor_hooks.h"
#include "message/protocol_message.h"
#include "platform/controls/form.h"
#include "serial/protocol_send.h"
#include "sets/send_set.h"
#include "sets/set_editor_hooks.h"
#include "support/operation_bench.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

using test::memoryChoice;

std::wstring padded(const std::wstring& text) {
    return text + std::wstring(static_cast<size_t>(clsProtocolMessage::MaxPositions) - text.size(), L' ');
}

void type(Grid& grid, const std::wstring& text) {
    for (wchar_t ch : text) grid.UserKeyPress(static_cast<int32_t>(ch));
}

struct SendEditBench : test::OperationBench<clsProtocolSend> {
    ScriptedModalDriver& driver = *context->Script();
    ScopedMessageEditorHooks messageHooks;
    ScopedEditorHooks fieldHooks;
    std::shared_ptr<clsProtocolSend>& send = operation;
    bool shown = false;

    SendEditBench() : OperationBench(170100, L"Line1") {
        messageEditorHooks() = MessageEditorHooks{};
        installMessageEditors();
        installFieldEditors();
    }

    void editOperands(std::function<void(frmProtocolSend&)> script) {
        shown = false;
        driver.QueueDialog(scriptFor<frmProtocolSend>([this, script = std::move(script)](frmProtocolSend& dialog) {
            shown = true;
            script(dialog);
        }));
        send->itfFBMethod_EditOperands();
    }
};

// A stored Send: "W" CR LF to ask a scale for its weight and "Z" CR LF to
// zero it, the message number linked to MI 5, STX none, ETX 0x03.
Bytes storedImage() {
    ScopedHostContext scratch;
    clsProtocolSendSrv set;
    set.AppendMessage();
    set.GetMessage(1)->MessageString(padded(L"W\r\n"));
    set.GetMessage(2)->MessageString(padded(L"Z\r\n"));
    test::linkOperand(*set.OpMessageNumber(), 3, 5);
    set.OpMessageNumber()->OperandMode(1);
    set.SendETXLength(1);
    set.SetSendETXValue(0, 0x03, false);
    return set.BinaryData();
}

TEST(ProtocolSendEditOperands, ANewSendConfirmedWritesTheImageOfWhatWasTyped) {
    SendEditBench bench;
    bench.makeNew();
    const int32_t config = bench.instances->Seed(L"Line1");
    const int32_t next = bench.context->Operands.NextConstantAddress();
    bench.editOperands([](frmProtocolSend& dialog) {
        type(dialog.FlgSend, L"W\r\n");
        dialog.ckSendETX.UserClick();
        dialog.flgSendETX.UserKeyPress('#');
        dialog.cmdOK.UserClick();
    });
    EXPECT_TRUE(bench.shown);
    EXPECT_FALSE(bench.send->itfFBMethod_IsCanceled());
    EXPECT_FALSE(bench.send->itfFBMethod_IsNew());
    EXPECT_EQ(bench.send->itfFBMethod_FatherInstanceNum(), config);

    clsProtocolSendSrv direct;
    direct.GetMessage(1)->MessageString(padded(L"W\r\n"));
    direct.SendETXLength(1);
    direct.SetSendETXValue(0, '#', true);
    // The dialog took one constant address for the single message's number,
    // and writing the image takes the next one.
    bench.context->Operands.NextConstantAddress(next + 1);
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), direct.BinaryData());
    // The constant 0 of a single message is no link for the host's search.
    EXPECT_EQ(bench.send->itfFBMethod_OperandsForFindOnly()->Count(), 0);
}

TEST(ProtocolSendEditOperands, ANewSendCanceledStaysNewWithoutAnImage) {
    SendEditBench bench;
    bench.makeNew();
    bench.instances->Seed(L"Line1");
    bench.editOperands([](frmProtocolSend& dialog) {
        type(dialog.FlgSend, L"abc");
        dialog.cmdCancel.UserClick();
    });
    EXPECT_TRUE(bench.send->itfFBMethod_IsCanceled());
    EXPECT_TRUE(bench.send->itfFBMethod_IsNew());
    EXPECT_TRUE(bench.send->itfFBMethod_BinaryOperands().empty());
    // The sole instance was taken all the same.
    EXPECT_EQ(bench.send->itfFBMethod_FatherInstanceNum(), 1);

    // A second edit starts from an empty set again.
    bench.editOperands([](frmProtocolSend& dialog) {
        EXPECT_EQ(dialog.FlgSend.TextMatrix(0, 1), L" ");
        dialog.cmdCancel.UserClick();
    });
    EXPECT_TRUE(bench.send->itfFBMethod_IsNew());
}

TEST(ProtocolSendEditOperands, WithoutInstancesTheEditIsCanceledAndNoDialogIsShown) {
    SendEditBench bench;
    bench.makeNew();
    bench.editOperands([](frmProtocolSend&) {});
    EXPECT_FALSE(bench.shown);
    EXPECT_TRUE(bench.send->itfFBMethod_IsCanceled());
    EXPECT_TRUE(bench.send->itfFBMethod_IsNew());
    ASSERT_EQ(bench.context->Messages.size(), 1u);
    EXPECT_EQ(bench.context->Messages[0].Number, 140);
}

TEST(ProtocolSendEditOperands, AStoredSendIsLoadedIntoTheDialog) {
    SendEditBench bench;
    bench.reopenWith(std::make_shared<OperandCollection>(), storedImage());
    bench.editOperands([](frmProtocolSend& dialog) {
        ASSERT_EQ(dialog.FlgSend.Rows(), 2);
        EXPECT_EQ(dialog.FlgSend.TextMatrix(1, 1), L"Z");
        EXPECT_EQ(dialog.ckSendETX.Value(), CheckBox::Checked);
        EXPECT_EQ(dialog.flgSendETX.TextMatrix(0, 0), L"03");
        EXPECT_FALSE(dialog.lbOpMsgNumToSend.Caption().empty());
        EXPECT_EQ(dialog.cbInstanceName.ListIndex(), 0);
        EXPECT_TRUE(dialog.cmdOK.Enabled());
        dialog.cmdCancel.UserClick();
    });
    EXPECT_TRUE(bench.shown);
}

TEST(ProtocolSendEditOperands, CancelLeavesTheImageByteForByteAndEmptiesTheFindOnlyOperands) {
    SendEditBench bench;
    const Bytes stored = storedImage();
    bench.reopenWith(std::make_shared<OperandCollection>(), stored);
    // A confirmed edit first, so that the search holds the link.
    bench.editOperands([](frmProtocolSend& dialog) { dialog.cmdOK.UserClick(); });
    ASSERT_EQ(bench.send->itfFBMethod_OperandsForFindOnly()->Count(), 1);
    const Bytes before = bench.send->itfFBMethod_BinaryOperands();

    bench.editOperands([](frmProtocolSend& dialog) {
        type(dialog.FlgSend, L"XYZ");
        dialog.ckSendSTX.UserClick();
        dialog.flgSendSTX.UserKeyPress('<');
        dialog.abSend.UserClickTool(tools::ID_AppendMsg);
        dialog.ckSendETX.UserClick();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_TRUE(bench.send->itfFBMethod_IsCanceled());
    EXPECT_FALSE(bench.send->itfFBMethod_IsNew());
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), before);
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), stored);
    EXPECT_EQ(bench.send->itfFBMethod_OperandsForFindOnly()->Count(), 0);
}

TEST(ProtocolSendEditOperands, AConfirmedEditOfAStoredSendWritesItsImageAndListsItsLinks) {
    SendEditBench bench;
    bench.reopenWith(std::make_shared<OperandCollection>(), storedImage());
    bench.editOperands([&](frmProtocolSend& dialog) {
        dialog.FlgSend.UserClick(1, 2);
        type(dialog.FlgSend, L"!");
        bench.driver.QueuePick(memoryChoice(3, 8, L"Which"));
        dialog.cmdOpMsgNumToSend.UserClick();
        dialog.cmdOK.UserClick();
    });
    EXPECT_FALSE(bench.send->itfFBMethod_IsCanceled());

    clsProtocolSendSrv direct;
    direct.AppendMessage();
    direct.GetMessage(1)->MessageString(padded(L"W\r\n"));
    direct.GetMessage(2)->MessageString(padded(L"Z!\r\n"));
    test::linkOperand(*direct.OpMessageNumber(), 3, 8);
    direct.OpMessageNumber()->OperandMode(1);
    direct.SendETXLength(1);
    direct.SetSendETXValue(0, 0x03, false);
    EXPECT_EQ(bench.send->itfFBMethod_BinaryOperands(), direct.BinaryData());

    OperandCollection& found = *bench.send->itfFBMethod_OperandsForFindOnly();
    ASSERT_EQ(found.Count(), 1);
    EXPECT_EQ(found.Item(1)->OperandType(), 3);
    EXPECT_EQ(found.Item(1)->OperandAddress(), 8);
}

TEST(ProtocolSendEditOperands, A255MessageSendTypedThroughTheGridHasTheImageOfTheSameSetBuiltDirectly) {
    SendEditBench bench;
    bench.makeNew();
    bench.instances->Seed(L"Line1");
    auto textOf = [](int32_t n) { return L"M" + std::to_wstring(n) + L"\r"; };
    bench.editOperands([&](frmProtocolSend& dialog) {
        for (int32_t n = 1; n < 255; ++n) dialog.abSend.UserClickTool(tools::ID_AppendMsg);
        ASSERT_EQ(dialog.FlgSend.Rows(), 255);
        for (int32_t row = 0; row < 255; ++row) {
            dialog.FlgSend.UserClick(row, 1);
            type(dialog.FlgSend, textOf(row));
        }
        bench.driver.QueuePick(memoryChoice(3, 40, L"Index"));
        dialog.cmdOpMsgNumToSend.UserClick();
        dialog.ckSendSTX.UserClick();
        dialog.flgSendSTX.UserKeyPress('@');
        dialog.cmdOK.UserClick();
    });
    ASSERT_FALSE(bench.send->itfFBMethod_IsCanceled());

    clsProtocolSendSrv direct;
    for (int32_t n = 1; n < 255; ++n) direct.AppendMessage();
    for (int32_t row = 0; row < 255; ++row) direct.GetMessage(row + 1)->MessageString(padded(textOf(row)));
    test::linkOperand(*direct.OpMessageNumber(), 3, 40);
    direct.OpMessageNumber()->OperandMode(1);
    direct.SendSTXLength(1);
    direct.SetSendSTXValue(0, '@', true);
    const Bytes image = bench.send->itfFBMethod_BinaryOperands();
    EXPECT_EQ(image, direct.BinaryData());
    // The count of messages is the byte after the copy count.
    EXPECT_GT(image.size(), 255u * 4u);
}

}  // namespace
}  // namespace qx
