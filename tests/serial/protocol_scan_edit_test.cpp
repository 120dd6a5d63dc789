// EditOperands of the serial Scan operation, the whole road: the operation
// builds a Scan set from its image (or a new one), the set opens the Scan
// dialog, a scripted person edits and links, and on OK the operation takes
// the set's image. The three links live on the operation's own operands, so
// a Cancel keeps them. Images are compared with one built directly on a
// clsProtocolScanSrv holding the same content.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "editors/frm_protocol_scan.h"
#include "editors/message_editors.h"
#include "editors/message_toolbar.h"
#include "field_editors/field_editors.h"
#include "message/editor_hooks.h"
#include "message/protocol_message.h"
#include "platform/controls/form.h"
#include "serial/protocol_scan.h"
#include "sets/scan_set.h"
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

struct ScanEditBench : test::OperationBench<clsProtocolscan> {
    ScriptedModalDriver& driver = *context->Script();
    ScopedMessageEditorHooks messageHooks;
    ScopedEditorHooks fieldHooks;
    std::shared_ptr<clsProtocolscan>& scan = operation;
    bool shown = false;

    ScanEditBench() : OperationBench(170100, L"Line1") {
        messageEditorHooks() = MessageEditorHooks{};
        installMessageEditors();
        installFieldEditors();
    }

    void editOperands(std::function<void(frmProtocolScan&)> script) {
        shown = false;
        driver.QueueDialog(scriptFor<frmProtocolScan>([this, script = std::move(script)](frmProtocolScan& dialog) {
            shown = true;
            script(dialog);
        }));
        scan->itfFBMethod_EditOperands();
    }

    // The three links of a fresh Scan, as the person picks them when the
    // dialog offers them by itself.
    void queueThreeLinks() {
        driver.QueuePick(memoryChoice(1, 10, L"Done"));
        driver.QueuePick(memoryChoice(3, 20, L"Count"));
        driver.QueuePick(memoryChoice(3, 21, L"Index"));
    }

    OperandCollectionPtr reopenStored(const Bytes& image) {
        return reopenWith(
            test::storedOperands({test::linkedOperand(1, 10), test::linkedOperand(3, 20), test::linkedOperand(3, 21)}),
            image);
    }
};

// A stored Scan: a scale's "ST" and "US" replies ended by CR LF, STX 0x02,
// ETX 0x0D 0x0A.
Bytes storedImage() {
    ScopedHostContext scratch;
    clsProtocolScanSrv set;
    set.AppendMessage();
    set.GetMessage(1)->MessageString(padded(L"ST"));
    set.GetMessage(2)->MessageString(padded(L"US"));
    set.MessageLengthValue(0);
    set.ScanSTXLength(1);
    set.SetScanSTXValue(0, 0x02, false);
    set.ScanETXLength(2);
    set.SetScanETXValue(0, 0x0D, false);
    set.SetScanETXValue(1, 0x0A, false);
    return set.BinaryData();
}

TEST(ProtocolScanEditOperands, ANewScanConfirmedWritesTheImageOfWhatWasTypedAndLinksItsOperands) {
    ScanEditBench bench;
    bench.makeNew();
    const int32_t config = bench.instances->Seed(L"Line1");
    bench.queueThreeLinks();
    bench.editOperands([](frmProtocolScan& dialog) {
        type(dialog.FlgScan, L"OK");
        dialog.opEndOfText.UserClick();
        dialog.flgETX.UserKeyPress('#');
        dialog.cmdOK.UserClick();
    });
    EXPECT_TRUE(bench.shown);
    EXPECT_FALSE(bench.scan->itfFBMethod_IsCanceled());
    EXPECT_FALSE(bench.scan->itfFBMethod_IsNew());
    EXPECT_EQ(bench.scan->itfFBMethod_FatherInstanceNum(), config);
    EXPECT_EQ(bench.operand(1)->OperandAddress(), 10);
    EXPECT_EQ(bench.operand(2)->OperandAddress(), 20);
    EXPECT_EQ(bench.operand(3)->OperandAddress(), 21);

    clsProtocolScanSrv direct;
    direct.GetMessage(1)->MessageString(padded(L"OK"));
    direct.MessageLengthValue(0);
    direct.ScanETXLength(1);
    direct.SetScanETXValue(0, '#', true);
    EXPECT_EQ(bench.scan->itfFBMethod_BinaryOperands(), direct.BinaryData());
    // The block's operands are the host's; the search gets the messages' only.
    EXPECT_EQ(bench.scan->itfFBMethod_OperandsForFindOnly()->Count(), 0);
}

TEST(ProtocolScanEditOperands, ANewScanCanceledStaysNewWithoutAnImageButKeepsItsLinks) {
    ScanEditBench bench;
    bench.makeNew();
    bench.instances->Seed(L"Line1");
    bench.queueThreeLinks();
    bench.editOperands([](frmProtocolScan& dialog) {
        type(dialog.FlgScan, L"abc");
        dialog.cmdCancel.UserClick();
    });
    EXPECT_TRUE(bench.scan->itfFBMethod_IsCanceled());
    EXPECT_TRUE(bench.scan->itfFBMethod_IsNew());
    EXPECT_TRUE(bench.scan->itfFBMethod_BinaryOperands().empty());
    for (int32_t k = 1; k <= 3; ++k) EXPECT_FALSE(bench.operand(k)->IsNew()) << k;
    EXPECT_EQ(bench.operand(2)->OperandAddress(), 20);
}

TEST(ProtocolScanEditOperands, WithoutInstancesTheEditIsCanceledAndNoDialogIsShown) {
    ScanEditBench bench;
    bench.makeNew();
    bench.editOperands([](frmProtocolScan&) {});
    EXPECT_FALSE(bench.shown);
    EXPECT_TRUE(bench.scan->itfFBMethod_IsCanceled());
    EXPECT_TRUE(bench.scan->itfFBMethod_IsNew());
    ASSERT_EQ(bench.context->Messages.size(), 1u);
    EXPECT_EQ(bench.context->Messages[0].Number, 140);
}

TEST(ProtocolScanEditOperands, AStoredScanIsLoadedIntoTheDialog) {
    ScanEditBench bench;
    bench.reopenStored(storedImage());
    bench.editOperands([&](frmProtocolScan& dialog) {
        ASSERT_EQ(dialog.FlgScan.Rows(), 2);
        EXPECT_EQ(dialog.FlgScan.TextMatrix(1, 2), L"U");
        EXPECT_EQ(dialog.ckSTX.Value(), CheckBox::Checked);
        EXPECT_EQ(dialog.flgSTX.TextMatrix(0, 0), L"02");
        EXPECT_TRUE(dialog.opEndOfText.Value());
        EXPECT_EQ(dialog.flgETX.TextMatrix(0, 1), L"0A");
        EXPECT_FALSE(dialog.lbOpFail.Caption().empty());
        EXPECT_TRUE(dialog.cmdOK.Enabled());
        // A stored Scan's links are not offered again.
        EXPECT_EQ(bench.driver.PendingPicks(), 0u);
        dialog.cmdCancel.UserClick();
    });
    EXPECT_TRUE(bench.shown);
}

TEST(ProtocolScanEditOperands, CancelKeepsTheImageByteForByteAndTheLinksMadeInTheDialog) {
    ScanEditBench bench;
    const Bytes stored = storedImage();
    bench.reopenStored(stored);
    bench.editOperands([&](frmProtocolScan& dialog) {
        type(dialog.FlgScan, L"XYZ");
        dialog.ckSTX.UserClick();
        dialog.opSilenceTime.UserClick();
        dialog.abScan.UserClickTool(tools::ID_AppendMsg);
        bench.driver.QueuePick(memoryChoice(3, 33, L"Other"));
        dialog.cmdOpReceived.UserClick();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_TRUE(bench.scan->itfFBMethod_IsCanceled());
    EXPECT_FALSE(bench.scan->itfFBMethod_IsNew());
    EXPECT_EQ(bench.scan->itfFBMethod_BinaryOperands(), stored);
    EXPECT_EQ(bench.scan->itfFBMethod_OperandsForFindOnly()->Count(), 0);
    // The link lives on the operation's operand: the Cancel keeps it.
    EXPECT_EQ(bench.operand(2)->OperandAddress(), 33);
}

TEST(ProtocolScanEditOperands, AConfirmedEditOfAStoredScanWritesItsImage) {
    ScanEditBench bench;
    bench.reopenStored(storedImage());
    bench.editOperands([&](frmProtocolScan& dialog) {
        dialog.FlgScan.UserClick(1, 4);
        type(dialog.FlgScan, L"!");
        dialog.opSilenceTime.UserClick();
        dialog.cbSilenceTime.UserSelect(2);
        dialog.cmdOK.UserClick();
    });
    EXPECT_FALSE(bench.scan->itfFBMethod_IsCanceled());

    clsProtocolScanSrv direct;
    direct.AppendMessage();
    direct.GetMessage(1)->MessageString(padded(L"ST"));
    direct.GetMessage(2)->MessageString(padded(L"US!"));
    direct.MessageLengthValue(0);
    direct.SilenceTimeValue(20);
    direct.ScanSTXLength(1);
    direct.SetScanSTXValue(0, 0x02, false);
    EXPECT_EQ(bench.scan->itfFBMethod_BinaryOperands(), direct.BinaryData());
}

TEST(ProtocolScanEditOperands, A255MessageScanTypedThroughTheGridHasTheImageOfTheSameSetBuiltDirectly) {
    ScanEditBench bench;
    bench.makeNew();
    bench.instances->Seed(L"Line1");
    bench.queueThreeLinks();
    auto textOf = [](int32_t n) { return L"R" + std::to_wstring(n) + L","; };
    auto lengthOf = [](int32_t n) { return n % 40; };
    bench.editOperands([&](frmProtocolScan& dialog) {
        for (int32_t n = 1; n < 255; ++n) dialog.abScan.UserClickTool(tools::ID_AppendMsg);
        ASSERT_EQ(dialog.FlgScan.Rows(), 255);
        for (int32_t row = 0; row < 255; ++row) {
            dialog.FlgScan.UserClick(row, 2);
            type(dialog.FlgScan, textOf(row));
            dialog.FlgScan.UserClick(row, 1);
            dialog.FlgScan.UserDropDown();
            dialog.FlgScan.UserPickComboItem(lengthOf(row));
        }
        dialog.ckSTX.UserClick();
        dialog.flgSTX.UserKeyPress('@');
        dialog.opEndOfText.UserClick();
        dialog.cbETXLength.UserSelect(1);
        dialog.flgETX.UserKeyPress('k');
        dialog.flgETX.UserKeyPress('g');
        dialog.cmdOK.UserClick();
    });
    ASSERT_FALSE(bench.scan->itfFBMethod_IsCanceled());

    clsProtocolScanSrv direct;
    for (int32_t n = 1; n < 255; ++n) direct.AppendMessage();
    for (int32_t row = 0; row < 255; ++row) {
        direct.GetMessage(row + 1)->MessageString(padded(textOf(row)));
        direct.GetMessage(row + 1)->MessageLength(lengthOf(row));
    }
    direct.MessageLengthValue(0);
    direct.ScanSTXLength(1);
    direct.SetScanSTXValue(0, '@', true);
    direct.ScanETXLength(2);
    direct.SetScanETXValue(0, 'k', true);
    direct.SetScanETXValue(1, 'g', true);
    const Bytes image = bench.scan->itfFBMethod_BinaryOperands();
    EXPECT_EQ(image, direct.BinaryData());
    EXPECT_GT(image.size(), 255u * 4u);
}

}  // namespace
}  // namespace qx
