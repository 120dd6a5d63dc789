// The TCP/IP Send dialog driven as a person drives it: no framing, the link
// of the block's flag "Send Message succeeded" and its run at the first
// activation, OK's four conditions, the three checks of OK in their order,
// and the way the TCP/IP Send set reaches this dialog.
#include "editors/frm_eth_protocol_send.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "editors/frm_protocol_send.h"
#include "editors/message_toolbar.h"
#include "eth_send_dialog_bench.h"
#include "framework/shared_helpers.h"
#include "platform/host/host_services.h"

namespace qx {
namespace {

using test::memoryChoice;

class FrmEthProtocolSendTest : public ::testing::Test, public test::EthSendDialogBench {};

// --- The form ---

TEST_F(FrmEthProtocolSendTest, TheDialogHasItsCaptionTheFlagLinkAndNoFramingControls) {
    stored();
    messages({L"A"});
    edit([](frmEthProtocolSend& dialog) {
        EXPECT_EQ(dialog.Caption(), L"Protocol: TCP/IP Send");
        EXPECT_EQ(dialog.Label2.Caption(), L"Send Message succeeded:");
        EXPECT_EQ(dialog.cmdOpMsgsucceeded.ToolTipText(), L"Link Operand to Variable");
        EXPECT_EQ(dialog.cmdOpMsgNumToSend.ToolTipText(), L"Link Operand to Variable");
        EXPECT_EQ(dialog.SSPanel1.Caption(), L"Protocol Messages");
        std::vector<std::wstring> names;
        for (const Control* control : dialog.Controls()) names.push_back(control->Name());
        for (const wchar_t* framing :
             {L"ckSendSTX", L"ckSendETX", L"cbSendSTXLength", L"cbSendETXLength", L"flgSendSTX", L"flgSendETX",
              L"cmdSendAdvanced", L"lbSendETXEndOfMsg", L"cmdAdvanced", L"Frame8", L"Frame9"})
            EXPECT_EQ(std::count(names.begin(), names.end(), framing), 0) << std::wstring(framing);
        for (const wchar_t* own :
             {L"FlgSend", L"abSend", L"cbInstanceName", L"lblMessageNum", L"lbOpMsgNumToSend", L"cmdOpMsgNumToSend",
              L"Label2", L"lbOpMsgsucceeded", L"cmdOpMsgsucceeded", L"cmdOK", L"cmdCancel", L"cmdHelp", L"SSPanel1"})
            EXPECT_EQ(std::count(names.begin(), names.end(), own), 1) << std::wstring(own);
    });
    EXPECT_TRUE(shown);
}

TEST_F(FrmEthProtocolSendTest, AStoredSendShowsItsFlagLinkAndOKIsOn) {
    stored();
    messages({L"A"});
    edit([&](frmEthProtocolSend& dialog) {
        EXPECT_EQ(dialog.lbOpMsgsucceeded.Caption(), GetOperandDisplayText(method.succeeded()));
        EXPECT_FALSE(dialog.lbOpMsgsucceeded.Caption().empty());
        EXPECT_TRUE(dialog.cmdOK.Enabled());
        dialog.cmdOK.UserClick();
    });
    EXPECT_TRUE(confirmed);
}

// --- The set reaches this dialog ---

TEST_F(FrmEthProtocolSendTest, TheTCPIPSetOpensThisDialogAndTheSerialSetTheSerialOne) {
    stored();
    messages({L"A"});
    EXPECT_TRUE(edit([](frmEthProtocolSend& dialog) { dialog.cmdOK.UserClick(); }));

    clsProtocolSendSrv serial;
    bool serialShown = false;
    driver.QueueDialog(scriptFor<frmProtocolSend>([&](frmProtocolSend& dialog) {
        serialShown = true;
        dialog.cmdCancel.UserClick();
    }));
    EXPECT_FALSE(serial.Edit(method, instances));
    EXPECT_TRUE(serialShown);
}

TEST_F(FrmEthProtocolSendTest, WithoutAnEditorTheTCPIPSetRaises91NamingInstallMessageEditors) {
    stored();
    messageEditorHooks().EthSendEdit = nullptr;
    const RuntimeError error = test::raisedError([&] { set->Edit(method, instances); });
    EXPECT_EQ(error.Number(), 91);
    EXPECT_NE(error.Description().find(L"installMessageEditors()"), std::wstring::npos);
    EXPECT_NE(error.Description().find(L"EthSendEdit"), std::wstring::npos);
    EXPECT_EQ(driver.PendingDialogs(), 0u);
}

TEST_F(FrmEthProtocolSendTest, InstallMessageEditorsKeepsAHostsOwnTCPIPEditor) {
    stored();
    int32_t calls = 0;
    messageEditorHooks().EthSendEdit = [&](clsEthProtocolSendSrv&, itfFBMethod&, InstancesPtr, bool& pConfirmed) {
        ++calls;
        pConfirmed = true;
    };
    installMessageEditors();
    EXPECT_TRUE(set->Edit(method, instances));
    EXPECT_EQ(calls, 1);
}

TEST_F(FrmEthProtocolSendTest, WithoutInstancesHostMessage140IsShownAndTheDialogIsNot) {
    method.makeNew();
    driver.QueuePick(memoryChoice(1, 3));
    EXPECT_FALSE(edit([](frmEthProtocolSend&) {}));
    EXPECT_FALSE(shown);
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{140});
    // No activation, so no picker.
    EXPECT_EQ(driver.PendingPicks(), 1u);
    EXPECT_TRUE(method.succeeded().IsNew());
}

// --- The first activation ---

TEST_F(FrmEthProtocolSendTest, ANewSendOpensThePickerOnItsFlagByItselfOnce) {
    method.makeNew();
    instances->Seed(L"Socket1");
    driver.QueuePick(memoryChoice(1, 21, L"Sent"));
    edit([&](frmEthProtocolSend& dialog) {
        EXPECT_EQ(driver.PendingPicks(), 0u);
        EXPECT_FALSE(method.succeeded().IsNew());
        EXPECT_EQ(method.succeeded().OperandAddress(), 21);
        EXPECT_EQ(dialog.lbOpMsgsucceeded.Caption(), GetOperandDisplayText(method.succeeded()));
        EXPECT_FALSE(dialog.FirstActivation);
        EXPECT_EQ(dialog.ActiveControl(), &dialog.FlgSend);
        EXPECT_TRUE(dialog.cmdOK.Enabled());
        // Coming to the front again opens nothing.
        driver.QueuePick(memoryChoice(1, 30));
        dialog.Activate();
        EXPECT_EQ(driver.PendingPicks(), 1u);
        EXPECT_EQ(method.succeeded().OperandAddress(), 21);
        type(dialog.FlgSend, L"Go");
        dialog.cmdOK.UserClick();
    });
    EXPECT_TRUE(confirmed);
}

TEST_F(FrmEthProtocolSendTest, ACanceledFirstPickerIsNotOpenedAgainAndOKStaysOff) {
    method.makeNew();
    instances->Seed(L"Socket1");
    driver.QueuePickCancel();
    edit([&](frmEthProtocolSend& dialog) {
        EXPECT_EQ(driver.PendingPicks(), 0u);
        EXPECT_TRUE(method.succeeded().IsNew());
        EXPECT_EQ(dialog.lbOpMsgsucceeded.Caption(), L"");
        EXPECT_FALSE(dialog.FirstActivation);
        EXPECT_FALSE(dialog.cmdOK.Enabled());
        driver.QueuePick(memoryChoice(1, 30));
        dialog.Activate();
        EXPECT_EQ(driver.PendingPicks(), 1u);
        // The button is the way now.
        dialog.cmdOpMsgsucceeded.UserClick();
        EXPECT_EQ(driver.PendingPicks(), 0u);
        EXPECT_EQ(dialog.lbOpMsgsucceeded.Caption(), GetOperandDisplayText(method.succeeded()));
        EXPECT_TRUE(dialog.cmdOK.Enabled());
        dialog.cmdCancel.UserClick();
    });
    EXPECT_FALSE(confirmed);
}

TEST_F(FrmEthProtocolSendTest, AnOpenSucceededLinkIsNamedWhileOKIsOff) {
    method.makeNew();
    instances->Seed(L"Socket1");
    driver.QueuePickCancel();
    std::wstring open, linked = L"?";
    edit([&](frmEthProtocolSend& dialog) {
        open = dialog.inputProblem();
        driver.QueuePick(memoryChoice(1, 30));
        dialog.cmdOpMsgsucceeded.UserClick();
        linked = dialog.inputProblem();
        EXPECT_TRUE(dialog.cmdOK.Enabled());
    });
    EXPECT_EQ(open, L"\"Send Message succeeded\" must be linked: press ...");
    EXPECT_EQ(linked, L"");
}

TEST_F(FrmEthProtocolSendTest, ALinkedFlagOpensNoPickerAndEachActivationPutsTheCaretBack) {
    stored();
    messages({L"A"});
    driver.QueuePick(memoryChoice(1, 30));
    edit([&](frmEthProtocolSend& dialog) {
        EXPECT_EQ(driver.PendingPicks(), 1u);
        EXPECT_TRUE(dialog.FirstActivation);
        EXPECT_EQ(dialog.ActiveControl(), &dialog.FlgSend);
        dialog.cmdOK.SetFocus();
        dialog.Activate();
        EXPECT_EQ(dialog.ActiveControl(), &dialog.FlgSend);
        EXPECT_EQ(driver.PendingPicks(), 1u);
    });
}

// --- The flag's link ---

TEST_F(FrmEthProtocolSendTest, TheButtonAndADoubleClickOnTheLabelLinkTheFlag) {
    stored();
    messages({L"A"});
    edit([&](frmEthProtocolSend& dialog) {
        driver.QueuePick(memoryChoice(1, 40, L"Done"));
        dialog.cmdOpMsgsucceeded.UserClick();
        EXPECT_EQ(method.succeeded().OperandAddress(), 40);
        EXPECT_EQ(dialog.lbOpMsgsucceeded.Caption(), GetOperandDisplayText(method.succeeded()));
        driver.QueuePick(memoryChoice(1, 41, L"Again"));
        dialog.lbOpMsgsucceeded.UserDoubleClick();
        EXPECT_EQ(driver.PendingPicks(), 0u);
        EXPECT_EQ(method.succeeded().OperandAddress(), 41);
        EXPECT_EQ(dialog.lbOpMsgsucceeded.Caption(), GetOperandDisplayText(method.succeeded()));
    });
}

TEST_F(FrmEthProtocolSendTest, ACanceledPickerOnALinkedFlagKeepsItsLinkAndText) {
    stored();
    messages({L"A"});
    edit([&](frmEthProtocolSend& dialog) {
        const std::wstring before = dialog.lbOpMsgsucceeded.Caption();
        driver.QueuePickCancel();
        dialog.cmdOpMsgsucceeded.UserClick();
        EXPECT_EQ(method.succeeded().OperandAddress(), 12);
        EXPECT_EQ(dialog.lbOpMsgsucceeded.Caption(), before);
        EXPECT_TRUE(dialog.cmdOK.Enabled());
    });
}

// --- OK's conditions ---

TEST_F(FrmEthProtocolSendTest, OneMessageHidesTheNumberLinkAndStillNeedsTheFlag) {
    method.makeNew();
    instances->Seed(L"Socket1");
    driver.QueuePickCancel();
    edit([&](frmEthProtocolSend& dialog) {
        EXPECT_TRUE(dialog.SingleMessageMode);
        EXPECT_FALSE(dialog.lblMessageNum.Visible());
        EXPECT_FALSE(dialog.lbOpMsgNumToSend.Visible());
        EXPECT_FALSE(dialog.cmdOpMsgNumToSend.Visible());
        // A Config is chosen, the number needs nothing: only the flag is missing.
        EXPECT_EQ(dialog.cbInstanceName.ListIndex(), 0);
        EXPECT_FALSE(dialog.cmdOK.Enabled());
        // A click on the disabled button does nothing.
        dialog.cmdOK.UserClick();
        EXPECT_TRUE(dialog.Visible());
        driver.QueuePick(memoryChoice(1, 3));
        dialog.cmdOpMsgsucceeded.UserClick();
        EXPECT_TRUE(dialog.cmdOK.Enabled());
        type(dialog.FlgSend, L"X");
        dialog.cmdOK.UserClick();
    });
    EXPECT_TRUE(confirmed);
}

TEST_F(FrmEthProtocolSendTest, ASecondMessageShowsTheNumberLinkEmptyAndOKWaitsForBothLinks) {
    stored();
    messages({L"A"});
    edit([&](frmEthProtocolSend& dialog) {
        EXPECT_TRUE(dialog.cmdOK.Enabled());
        dialog.abSend.UserClickTool(tools::ID_AppendMsg);
        EXPECT_FALSE(dialog.SingleMessageMode);
        EXPECT_TRUE(dialog.lbOpMsgNumToSend.Visible());
        EXPECT_EQ(dialog.lbOpMsgNumToSend.Caption(), L"");
        EXPECT_FALSE(dialog.cmdOK.Enabled());
        driver.QueuePick(memoryChoice(3, 7, L"Sel"));
        dialog.cmdOpMsgNumToSend.UserClick();
        EXPECT_TRUE(dialog.cmdOK.Enabled());
        dialog.abSend.UserClickTool(tools::ID_DeleteMsg);
        EXPECT_TRUE(dialog.SingleMessageMode);
        EXPECT_FALSE(dialog.lbOpMsgNumToSend.Visible());
        EXPECT_TRUE(dialog.cmdOK.Enabled());
    });
}

TEST_F(FrmEthProtocolSendTest, WithSeveralConfigsANewSendWaitsForAChoiceAsWellAsTheFlag) {
    method.makeNew();
    instances->Seed(L"Socket1");
    const int32_t second = instances->Seed(L"Socket2");
    driver.QueuePick(memoryChoice(1, 3));
    edit([&](frmEthProtocolSend& dialog) {
        EXPECT_FALSE(method.succeeded().IsNew());
        EXPECT_EQ(dialog.cbInstanceName.ListIndex(), -1);
        EXPECT_FALSE(dialog.cmdOK.Enabled());
        dialog.cbInstanceName.UserSelect(1);
        EXPECT_EQ(method.itfFBMethod_FatherInstanceNum(), second);
        EXPECT_TRUE(dialog.cmdOK.Enabled());
    });
}

TEST_F(FrmEthProtocolSendTest, ALostConfigIsHostMessage141AndOKWaitsForAChoice) {
    stored();
    method.itfFBMethod_FatherInstanceNum(99);
    messages({L"A"});
    edit([&](frmEthProtocolSend& dialog) {
        EXPECT_EQ(dialog.cbInstanceName.ListIndex(), -1);
        EXPECT_FALSE(dialog.cmdOK.Enabled());
        dialog.cbInstanceName.UserSelect(0);
        EXPECT_TRUE(dialog.cmdOK.Enabled());
    });
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{141});
}

TEST_F(FrmEthProtocolSendTest, ClearAllAsks142AndLeavesOneRowWithTheLinksAsTheyWere) {
    stored();
    messages({L"A", L"B", L"C"});
    linkedMessageNumber();
    edit([&](frmEthProtocolSend& dialog) {
        const std::wstring number = dialog.lbOpMsgNumToSend.Caption();
        const std::wstring flag = dialog.lbOpMsgsucceeded.Caption();
        dialog.abSend.UserClickTool(tools::ID_ClearAll);
        EXPECT_EQ(dialog.FlgSend.Rows(), 1);
        EXPECT_EQ(set->NumberOfMessages(), 1);
        // No AfterMessageCountChanged after a ClearAll.
        EXPECT_TRUE(dialog.lbOpMsgNumToSend.Visible());
        EXPECT_EQ(dialog.lbOpMsgNumToSend.Caption(), number);
        EXPECT_EQ(dialog.lbOpMsgsucceeded.Caption(), flag);
        EXPECT_EQ(dialog.ActiveControl(), &dialog.FlgSend);
    });
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{142});
}

TEST_F(FrmEthProtocolSendTest, TheDialogLoadsWithTheSendIconTheDialogFontAndTheListOnTheToolbar) {
    stored();
    messages({L"A"});
    edit([](frmEthProtocolSend& dialog) {
        ASSERT_TRUE(dialog.Icon());
        EXPECT_EQ(dialog.Icon()->Pixels, GetDialogIcon(302)->Pixels);
        EXPECT_EQ(dialog.abSend.Font(), dialog.Font());
        EXPECT_EQ(dialog.abSend.MenuFont(), dialog.Font());
        Tool* list = dialog.abSend.Bands(tools::MainToolBar).FindTool(L"cbInstanceName");
        ASSERT_NE(list, nullptr);
        EXPECT_EQ(list->Custom(), &dialog.cbInstanceName);
        EXPECT_EQ(dialog.cbInstanceName.List(0), L"Socket1");
    });
}

// --- OK's checks ---

TEST_F(FrmEthProtocolSendTest, TheChecksRun143Then144ThenTheLongSegmentBoxAndStopAtTheFirst) {
    stored();
    messages({L"", L"", L""});
    linkedMessageNumber();
    edit([&](frmEthProtocolSend& dialog) {
        dialog.cmdOK.UserClick();  // nothing to download: 143
        EXPECT_TRUE(dialog.Visible());
        EXPECT_EQ(dialog.ActiveControl(), &dialog.FlgSend);
        dialog.FlgSend.UserClick(1, 1);
        type(dialog.FlgSend, L"B");
        dialog.cmdOK.UserClick();  // message 0 empty: 144
        EXPECT_TRUE(dialog.Visible());
        dialog.FlgSend.UserClick(0, 1);
        type(dialog.FlgSend, std::wstring(256, L'x'));
        dialog.cmdOK.UserClick();  // a fixed text of 256: the box
        EXPECT_TRUE(dialog.Visible());
        dialog.cmdCancel.UserClick();
    });
    EXPECT_FALSE(confirmed);
    ASSERT_EQ(shownMessages(), (std::vector<int32_t>{143, 144, 0}));
    EXPECT_EQ(context->Messages[1].Params, std::vector<std::wstring>{L"0"});
    const ShownMessage& box = context->Messages[2];
    EXPECT_EQ(box.Title, L"PROTOCOL");
    EXPECT_EQ(box.Style, vbExclamation);
    EXPECT_EQ(box.Text,
              L"Message number: 0 is not legal.\r\nA message segment which contains fixed text may not exceed 255 "
              L"characters.");
}

TEST_F(FrmEthProtocolSendTest, ALongSegmentAfterAnEmptyMessageIsReportedAs144First) {
    stored();
    messages({L"", std::wstring(256, L'x')});
    linkedMessageNumber();
    edit([](frmEthProtocolSend& dialog) { dialog.cmdOK.UserClick(); });
    EXPECT_FALSE(confirmed);
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{144});
}

TEST_F(FrmEthProtocolSendTest, TrailingEmptyMessagesAreLegal) {
    stored();
    messages({L"A", L"B", L""});
    linkedMessageNumber();
    edit([](frmEthProtocolSend& dialog) { dialog.cmdOK.UserClick(); });
    EXPECT_TRUE(confirmed);
    EXPECT_TRUE(context->Messages.empty());
}

// --- Closing ---

TEST_F(FrmEthProtocolSendTest, EscapeCancelsAndTheFlagLinkMadeInTheDialogStays) {
    method.makeNew();
    instances->Seed(L"Socket1");
    driver.QueuePick(memoryChoice(1, 21));
    edit([](frmEthProtocolSend& dialog) {
        type(dialog.FlgSend, L"Z");
        dialog.UserKeyPress(27);
    });
    EXPECT_FALSE(confirmed);
    // The flag is the operation's own operand, not the scratch set's.
    EXPECT_FALSE(method.succeeded().IsNew());
    EXPECT_EQ(method.succeeded().OperandAddress(), 21);
}

}  // namespace
}  // namespace qx
