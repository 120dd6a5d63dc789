// The end-of-message dialog opened by the message sets' own operations,
// through the hook that installFieldEditors fills.
#include <gtest/gtest.h>

#include "field_editor_bench.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"

namespace qx {
namespace {

class EndOfMessageOnSetsTest : public test::FieldEditorTest {};

CSVarPtr checksumOf(const VarPtr& var) { return std::dynamic_pointer_cast<clsProtocolCSVar>(var); }

TEST_F(EndOfMessageOnSetsTest, InstallingTheFieldEditorsFillsTheHookAndAgainChangesNothing) {
    editorHooks().EndOfMessage = nullptr;
    installFieldEditors();
    installFieldEditors();
    EXPECT_TRUE(static_cast<bool>(editorHooks().EndOfMessage));
    clsProtocolSendSrv set;
    onDialog([](frmProtocolConfigAdvanced& dialog) { dialog.cmdCancel.UserClick(); });
    set.EditSendETXAdvanced();
    EXPECT_EQ(driver.PendingDialogs(), 0u);
}

TEST_F(EndOfMessageOnSetsTest, CancelAfterWipingWithETXLeavesTheSendSetUntouched) {
    clsProtocolSendSrv set;
    set.EndOfSendMessageType(2);
    VarPtr before = set.SendChecksum();
    checksumOf(before)->CalculationType(8);
    checksumOf(before)->SpecialAddition(true);
    checksumOf(before)->SA_FromValue(4);
    const Bytes record = before->GetVarBinData(0);
    std::wstring shownAfterBack;
    onDialog([&](frmProtocolConfigAdvanced& dialog) {
        dialog.cbEndOfMsg.UserSelect(0);
        dialog.cbEndOfMsg.UserSelect(1);
        shownAfterBack = dialog.Panel.cbCSCalcType.Text();
        dialog.cmdCancel.UserClick();
    });
    set.EditSendETXAdvanced();
    EXPECT_EQ(shownAfterBack, L"SUM-8");
    EXPECT_EQ(set.SendChecksum(), before);
    EXPECT_EQ(before->GetVarBinData(0), record);
    EXPECT_EQ(checksumOf(before)->CalculationType(), 8);
    EXPECT_EQ(checksumOf(before)->SA_FromValue(), 4);
    EXPECT_EQ(set.EndOfSendMessageType(), 2);
}

TEST_F(EndOfMessageOnSetsTest, OkReplacesTheSendChecksumByTheEditedReplicaAndTakesTheNumber) {
    clsProtocolSendSrv set;
    VarPtr before = set.SendChecksum();
    onDialog([](frmProtocolConfigAdvanced& dialog) {
        dialog.cbEndOfMsg.UserSelect(1);
        dialog.Panel.cbCSCalcType.UserSelect(3);
        dialog.Panel.cbCSLength.UserSelect(1);
        dialog.cmdOk.UserClick();
    });
    set.EditSendETXAdvanced();
    ASSERT_NE(set.SendChecksum(), before);
    EXPECT_EQ(checksumOf(set.SendChecksum())->CalculationType(), 3);
    EXPECT_EQ(checksumOf(set.SendChecksum())->CSLength(), 2);
    EXPECT_EQ(checksumOf(before)->CalculationType(), 1);
    EXPECT_EQ(set.EndOfSendMessageType(), 2);
}

TEST_F(EndOfMessageOnSetsTest, OkReplacesTheScanChecksumAndItsNumber) {
    clsProtocolScanSrv set;
    VarPtr before = set.ScanChecksum();
    onDialog([](frmProtocolConfigAdvanced& dialog) {
        dialog.cbEndOfMsg.UserSelect(2);
        dialog.Panel.cbCSFormatView.UserSelect(2);
        dialog.cmdOk.UserClick();
    });
    set.EditScanETXAdvanced();
    ASSERT_NE(set.ScanChecksum(), before);
    EXPECT_EQ(checksumOf(set.ScanChecksum())->FormatView(), 2);
    EXPECT_EQ(set.EndOfScanMessageType(), 3);
}

TEST_F(EndOfMessageOnSetsTest, CancelLeavesTheScanSetUntouched) {
    clsProtocolScanSrv set;
    VarPtr before = set.ScanChecksum();
    onDialog([](frmProtocolConfigAdvanced& dialog) {
        dialog.cbEndOfMsg.UserSelect(2);
        dialog.Panel.cbCSFormatView.UserSelect(2);
        dialog.UserClose();
    });
    set.EditScanETXAdvanced();
    EXPECT_EQ(set.ScanChecksum(), before);
    EXPECT_EQ(checksumOf(before)->FormatView(), 0);
    EXPECT_EQ(set.EndOfScanMessageType(), 1);
}

TEST_F(EndOfMessageOnSetsTest, AnAcceptedEditCarriesIntoTheImage) {
    clsProtocolSendSrv edited, expected;
    onDialog([](frmProtocolConfigAdvanced& dialog) {
        dialog.cbEndOfMsg.UserSelect(1);
        dialog.Panel.cbCSCalcType.UserSelect(1);
        dialog.cmdOk.UserClick();
    });
    edited.EditSendETXAdvanced();
    checksumOf(expected.SendChecksum())->CalculationType(2);
    expected.EndOfSendMessageType(2);
    EXPECT_EQ(edited.BinaryData(), expected.BinaryData());
}

}  // namespace
}  // namespace qx
