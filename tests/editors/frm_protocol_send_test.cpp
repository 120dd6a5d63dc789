// The serial Send dialog driven as a person drives it: the instance list,
// the message number link and its single-message rule, the toolbar's
// message commands, the framing controls and grids, OK's checks in their
// order, closing and activation.
#include "editors/frm_protocol_send.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "editors/frm_protocol_send_advanced.h"
#include "framework/shared_helpers.h"
#include "platform/host/host_services.h"
#include "send_dialog_bench.h"

namespace qx {
namespace {

using test::memoryChoice;
using test::SendDialogBench;

class FrmProtocolSendTest : public ::testing::Test, public SendDialogBench {
protected:
    // The message number as the dialog leaves it when a second message
    // comes: an open memory link.
    void unlinkedMessageNumber() {
        clsOperand& link = *set->OpMessageNumber();
        link.OperandMode(1);
        link.OperandType(3);
        link.IsNew(true);
    }
};

TEST_F(FrmProtocolSendTest, SeveralMessagesOfANewSetShowItsConstantNumber) {
    linkedTo();
    messages({L"A", L"B"});
    edit([](frmProtocolSend& dialog) {
        EXPECT_TRUE(dialog.lbOpMsgNumToSend.Visible());
        EXPECT_EQ(dialog.lbOpMsgNumToSend.Caption(), L"#0");
        EXPECT_TRUE(dialog.cmdOK.Enabled());
    });
}

constexpr uint32_t kWhite = 0xFFFFFF;
constexpr uint32_t kGrey = 0x8000000B;
constexpr uint32_t kRed = 255;

// --- Edit and the instance list ---

TEST_F(FrmProtocolSendTest, WithoutInstancesHostMessage140IsShownAndTheDialogIsNot) {
    method.makeNew();
    EXPECT_FALSE(edit([](frmProtocolSend&) {}));
    EXPECT_FALSE(shown);
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{140});
    EXPECT_EQ(driver.PendingDialogs(), 1u);
}

TEST_F(FrmProtocolSendTest, ANewSendTakesASoleInstanceByItselfAndOKIsOn) {
    method.makeNew();
    const int32_t only = instances->Seed(L"Line1");
    edit([&](frmProtocolSend& dialog) {
        EXPECT_EQ(method.itfFBMethod_FatherInstanceNum(), only);
        ASSERT_EQ(dialog.cbInstanceName.ListCount(), 1);
        EXPECT_EQ(dialog.cbInstanceName.ListIndex(), 0);
        EXPECT_EQ(dialog.cbInstanceName.List(0), L"Line1");
        EXPECT_EQ(dialog.cbInstanceName.ItemData(0), only);
        EXPECT_TRUE(dialog.SoleInstance());
        EXPECT_TRUE(dialog.cmdOK.Enabled());
    });
    EXPECT_TRUE(shown);
    EXPECT_TRUE(context->Messages.empty());
}

TEST_F(FrmProtocolSendTest, ANewSendWithSeveralInstancesStartsWithNoneChosenAndOKOff) {
    method.makeNew();
    instances->Seed(L"Line1");
    const int32_t second = instances->Seed(L"Line2");
    edit([&](frmProtocolSend& dialog) {
        EXPECT_EQ(dialog.cbInstanceName.ListCount(), 2);
        EXPECT_EQ(dialog.cbInstanceName.ListIndex(), -1);
        EXPECT_FALSE(dialog.cmdOK.Enabled());
        dialog.cbInstanceName.UserSelect(1);
        EXPECT_EQ(method.itfFBMethod_FatherInstanceNum(), second);
        EXPECT_TRUE(dialog.cmdOK.Enabled());
    });
    EXPECT_TRUE(context->Messages.empty());
}

TEST_F(FrmProtocolSendTest, AnOldSendWhoseConfigIsGoneGetsHostMessage141AndOKWaitsForAName) {
    instances->Seed(L"Line1");
    method.itfFBMethod_FatherInstanceNum(99);
    edit([&](frmProtocolSend& dialog) {
        EXPECT_EQ(dialog.cbInstanceName.ListIndex(), -1);
        EXPECT_FALSE(dialog.cmdOK.Enabled());
        dialog.cbInstanceName.UserSelect(0);
        EXPECT_TRUE(dialog.cmdOK.Enabled());
    });
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{141});
}

TEST_F(FrmProtocolSendTest, AnOldSendWithASoleInstanceThatIsNotItsOwnKeepsItsNumber) {
    instances->Seed(L"Line1");
    method.itfFBMethod_FatherInstanceNum(7);
    edit([](frmProtocolSend& dialog) { EXPECT_FALSE(dialog.SoleInstance()); });
    EXPECT_EQ(method.itfFBMethod_FatherInstanceNum(), 7);
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{141});
}

TEST_F(FrmProtocolSendTest, TheChosenConfigStaysInTheOperationAfterCancel) {
    const int32_t first = linkedTo({L"Line1", L"Line2"});
    edit([&](frmProtocolSend& dialog) {
        EXPECT_EQ(dialog.cbInstanceName.ListIndex(), 0);
        dialog.cbInstanceName.UserSelect(1);
        dialog.cmdCancel.UserClick();
    });
    EXPECT_FALSE(confirmed);
    EXPECT_EQ(method.itfFBMethod_FatherInstanceNum(), first + 1);
    EXPECT_EQ(method.itfFBMethod_FatherInstanceName(), L"Line2");
}

TEST_F(FrmProtocolSendTest, TheDialogShowsItsCaptionsAndTheToolbarCarriesTheInstanceList) {
    linkedTo();
    edit([](frmProtocolSend& dialog) {
        EXPECT_EQ(dialog.Caption(), L"Protocol Send");
        EXPECT_EQ(dialog.SSPanel1.Caption(), L"Protocol Messages");
        EXPECT_EQ(dialog.ckSendSTX.Caption(), L"Start Of Text (STX)");
        EXPECT_EQ(dialog.ckSendETX.Caption(), L"End Of Text (ETX)");
        EXPECT_EQ(dialog.lbSendSTXLength.Caption(), L"Length :");
        EXPECT_EQ(dialog.lbSendETXLength.Caption(), L"Length :");
        EXPECT_EQ(dialog.lbSendSTX.Caption(), L"STX :");
        EXPECT_EQ(dialog.lbSendETX.Caption(), L"ETX :");
        EXPECT_EQ(dialog.cmdSendAdvanced.Caption(), L"End Of Message");
        EXPECT_EQ(dialog.lblMessageNum.Caption(), L"Send Message number :");
        EXPECT_EQ(dialog.cmdOpMsgNumToSend.ToolTipText(), L"Link Operand to Variable");
        EXPECT_EQ(dialog.cmdAdvanced.Caption(), L"Advanced...");
        EXPECT_EQ(dialog.cmdCancel.Caption(), L"Cancel");
        EXPECT_EQ(dialog.cmdHelp.Caption(), L"Help");
        EXPECT_EQ(dialog.FlgSend.Name(), L"FlgSend");
        EXPECT_EQ(dialog.abSend.Name(), L"abSend");
        Tool* list = dialog.abSend.Bands(tools::MainToolBar).FindTool(L"cbInstanceName");
        ASSERT_NE(list, nullptr);
        EXPECT_EQ(list->Custom(), &dialog.cbInstanceName);
        EXPECT_EQ(dialog.cbSendSTXLength.ListCount(), 4);
        EXPECT_EQ(dialog.cbSendETXLength.List(3), L"4");
        EXPECT_EQ(dialog.cbSendETXLength.ItemData(3), 4);
        EXPECT_EQ(dialog.abSend.Font(), dialog.Font());
        EXPECT_EQ(dialog.abSend.MenuFont(), dialog.Font());
        ASSERT_TRUE(dialog.Icon());
        EXPECT_EQ(dialog.Icon()->Pixels, GetDialogIcon(302)->Pixels);
    });
}

// --- Loading ---

TEST_F(FrmProtocolSendTest, TheGridShowsEveryMessageOfTheSet) {
    linkedTo();
    messages({L"W\r\n", L"", L"PRINT"});
    linkedMessageNumber();
    edit([](frmProtocolSend& dialog) {
        ASSERT_EQ(dialog.FlgSend.Rows(), 3);
        EXPECT_EQ(dialog.FlgSend.Cols(), 501);
        EXPECT_EQ(rowText(dialog.FlgSend, 0, 3), L"W\r\n");
        EXPECT_EQ(rowText(dialog.FlgSend, 2, 6), L"PRINT ");
        EXPECT_EQ(dialog.FlgSend.TextMatrix(2, 0), L"2");
        EXPECT_EQ(dialog.FlgSend.Row(), 0);
        EXPECT_EQ(dialog.FlgSend.Col(), 1);
    });
}

TEST_F(FrmProtocolSendTest, OneMessageHidesTheLinkMakesTheNumberTheConstant0AndOKNeedsOnlyAnInstance) {
    linkedTo();
    clsOperand& link = *set->OpMessageNumber();
    edit([&](frmProtocolSend& dialog) {
        EXPECT_TRUE(dialog.SingleMessageMode);
        EXPECT_FALSE(dialog.lblMessageNum.Visible());
        EXPECT_FALSE(dialog.lbOpMsgNumToSend.Visible());
        EXPECT_FALSE(dialog.cmdOpMsgNumToSend.Visible());
        EXPECT_EQ(link.OperandConstantValue(), 0);
        EXPECT_GE(link.OperandAddress(), 1);
        EXPECT_EQ(dialog.lbOpMsgNumToSend.Caption(), GetOperandDisplayText(link));
        EXPECT_EQ(dialog.lbOpMsgNumToSend.Caption(), L"#0");
        EXPECT_TRUE(dialog.cmdOK.Enabled());
    });
}

TEST_F(FrmProtocolSendTest, SeveralMessagesShowTheLinkWithItsText) {
    linkedTo();
    messages({L"A", L"B"});
    linkedMessageNumber();
    edit([&](frmProtocolSend& dialog) {
        EXPECT_FALSE(dialog.SingleMessageMode);
        EXPECT_TRUE(dialog.lblMessageNum.Visible());
        EXPECT_TRUE(dialog.lbOpMsgNumToSend.Visible());
        EXPECT_TRUE(dialog.cmdOpMsgNumToSend.Visible());
        EXPECT_EQ(dialog.lbOpMsgNumToSend.Caption(), GetOperandDisplayText(*set->OpMessageNumber()));
        EXPECT_FALSE(dialog.lbOpMsgNumToSend.Caption().empty());
        EXPECT_TRUE(dialog.cmdOK.Enabled());
    });
}

TEST_F(FrmProtocolSendTest, SeveralMessagesWithoutALinkKeepOKOff) {
    linkedTo();
    messages({L"A", L"B"});
    unlinkedMessageNumber();
    edit([](frmProtocolSend& dialog) {
        EXPECT_EQ(dialog.lbOpMsgNumToSend.Caption(), L"");
        EXPECT_FALSE(dialog.cmdOK.Enabled());
    });
}

TEST_F(FrmProtocolSendTest, WithoutFramingEveryFramingControlIsOffAndGrey) {
    linkedTo();
    edit([](frmProtocolSend& dialog) {
        for (CheckBox* check : {&dialog.ckSendSTX, &dialog.ckSendETX}) {
            EXPECT_EQ(check->Value(), CheckBox::Unchecked);
            EXPECT_TRUE(check->Enabled());
        }
        for (Control* control : std::initializer_list<Control*>{
                 &dialog.lbSendSTXLength, &dialog.cbSendSTXLength, &dialog.lbSendSTX, &dialog.flgSendSTX,
                 &dialog.lbSendETXLength, &dialog.cbSendETXLength, &dialog.lbSendETX, &dialog.flgSendETX,
                 &dialog.cmdSendAdvanced, &dialog.lbSendETXEndOfMsg})
            EXPECT_FALSE(control->Enabled()) << std::string(control->Name().begin(), control->Name().end());
        for (Control* control :
             std::initializer_list<Control*>{&dialog.cbSendSTXLength, &dialog.flgSendSTX, &dialog.cbSendETXLength,
                                             &dialog.flgSendETX, &dialog.lbSendETXEndOfMsg})
            EXPECT_EQ(control->BackColor(), kGrey);
        EXPECT_EQ(dialog.lbSendETXEndOfMsg.Caption(), L"");
        EXPECT_EQ(dialog.cbSendSTXLength.ListIndex(), -1);
        EXPECT_EQ(dialog.flgSendSTX.Cols(), 1);
        EXPECT_EQ(dialog.flgSendSTX.Rows(), 1);
    });
}

TEST_F(FrmProtocolSendTest, StoredFramingIsShownTypedBytesAsCharactersPickedOnesAsHexOnRed) {
    linkedTo();
    set->SendSTXLength(2);
    set->SetSendSTXValue(0, 'A', true);
    set->SetSendSTXValue(1, 0x02, false);
    set->SendETXLength(3);
    set->SetSendETXValue(0, 0x0D, false);
    set->SetSendETXValue(1, 0x0A, false);
    set->SetSendETXValue(2, '#', true);
    set->EndOfSendMessageType(2);
    edit([](frmProtocolSend& dialog) {
        EXPECT_EQ(dialog.ckSendSTX.Value(), CheckBox::Checked);
        EXPECT_EQ(dialog.cbSendSTXLength.ListIndex(), 1);
        EXPECT_TRUE(dialog.flgSendSTX.Enabled());
        EXPECT_EQ(dialog.flgSendSTX.BackColor(), kWhite);
        EXPECT_EQ(dialog.cbSendSTXLength.BackColor(), kWhite);
        EXPECT_EQ(framingText(dialog.flgSendSTX), L"[A][02]");
        EXPECT_EQ(dialog.flgSendSTX.ColWidth(0), 400);
        EXPECT_EQ(dialog.flgSendSTX.ColAlignment(1), Grid::AlignCenterCenter);
        EXPECT_NE(dialog.flgSendSTX.CellBackColor(0, 0), kRed);
        EXPECT_EQ(dialog.flgSendSTX.CellBackColor(0, 1), kRed);
        EXPECT_EQ(dialog.ckSendETX.Value(), CheckBox::Checked);
        EXPECT_EQ(dialog.cbSendETXLength.ListIndex(), 2);
        EXPECT_EQ(framingText(dialog.flgSendETX), L"[0D][0A][#]");
        EXPECT_TRUE(dialog.cmdSendAdvanced.Enabled());
        EXPECT_TRUE(dialog.lbSendETXEndOfMsg.Enabled());
        EXPECT_EQ(dialog.lbSendETXEndOfMsg.BackColor(), kWhite);
        EXPECT_EQ(dialog.lbSendETXEndOfMsg.Caption(), L"Checksum & ETX");
        EXPECT_FALSE(dialog.gridEditor().IgnoreGridEvents);
    });
    // Loading stored nothing.
    EXPECT_EQ(set->SendSTXLength(), 2);
    EXPECT_EQ(set->SendETXChars()[1], (FrameChar{0x0A, false}));
}

// --- The message number link ---

TEST_F(FrmProtocolSendTest, AppendingASecondMessageShowsTheLinkEmptyAndTurnsOKOffDeletingItHidesItAgain) {
    linkedTo();
    edit([&](frmProtocolSend& dialog) {
        dialog.abSend.UserClickTool(tools::ID_AppendMsg);
        EXPECT_EQ(dialog.FlgSend.Rows(), 2);
        EXPECT_FALSE(dialog.SingleMessageMode);
        EXPECT_TRUE(dialog.lbOpMsgNumToSend.Visible());
        EXPECT_EQ(dialog.lbOpMsgNumToSend.Caption(), L"");
        EXPECT_TRUE(set->OpMessageNumber()->IsNew());
        EXPECT_EQ(set->OpMessageNumber()->OperandType(), 3);
        EXPECT_EQ(set->OpMessageNumber()->OperandMode(), 1);
        EXPECT_FALSE(dialog.cmdOK.Enabled());

        dialog.abSend.UserClickTool(tools::ID_DeleteMsg);
        EXPECT_EQ(dialog.FlgSend.Rows(), 1);
        EXPECT_TRUE(dialog.SingleMessageMode);
        EXPECT_FALSE(dialog.lbOpMsgNumToSend.Visible());
        EXPECT_EQ(set->OpMessageNumber()->OperandMode(), 2);
        EXPECT_EQ(set->OpMessageNumber()->OperandType(), 37);
        EXPECT_EQ(set->OpMessageNumber()->OperandConstantValue(), 0);
        EXPECT_FALSE(set->OpMessageNumber()->HasValue());
        EXPECT_TRUE(dialog.cmdOK.Enabled());
    });
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{157});
}

TEST_F(FrmProtocolSendTest, TheInstanceListAndTheMessageNumberLinkAreNamedWhileOKIsOff) {
    method.makeNew();
    instances->Seed(L"Line1");
    instances->Seed(L"Line2");
    std::vector<std::wstring> problems;
    edit([&](frmProtocolSend& dialog) {
        problems.push_back(dialog.inputProblem());
        dialog.cbInstanceName.UserSelect(1);
        problems.push_back(dialog.inputProblem());
        dialog.abSend.UserClickTool(tools::ID_AppendMsg);
        problems.push_back(dialog.inputProblem());
        EXPECT_FALSE(dialog.cmdOK.Enabled());
        dialog.abSend.UserClickTool(tools::ID_DeleteMsg);
        problems.push_back(dialog.inputProblem());
        EXPECT_TRUE(dialog.cmdOK.Enabled());
    });
    EXPECT_EQ(problems, (std::vector<std::wstring>{L"A Config instance must be chosen from the list", L"",
                                                   L"\"Send Message number\" must be linked: press ...", L""}));
}

TEST_F(FrmProtocolSendTest, LinkingTheMessageNumberShowsItsTextAndTurnsOKOn) {
    linkedTo();
    edit([&](frmProtocolSend& dialog) {
        dialog.abSend.UserClickTool(tools::ID_AppendMsg);
        driver.QueuePick(memoryChoice(3, 7, L"Sel"));
        dialog.cmdOpMsgNumToSend.UserClick();
        EXPECT_EQ(dialog.lbOpMsgNumToSend.Caption(), GetOperandDisplayText(*set->OpMessageNumber()));
        EXPECT_NE(dialog.lbOpMsgNumToSend.Caption().find(L"7 : Sel"), std::wstring::npos);
        EXPECT_TRUE(dialog.cmdOK.Enabled());
    });
}

TEST_F(FrmProtocolSendTest, ADoubleClickOnTheLinkTextOpensThePickerToo) {
    linkedTo();
    messages({L"A", L"B"});
    edit([&](frmProtocolSend& dialog) {
        driver.QueuePick(memoryChoice(3, 9, L"Other"));
        dialog.lbOpMsgNumToSend.UserDoubleClick();
        EXPECT_EQ(driver.PendingPicks(), 0u);
        EXPECT_EQ(set->OpMessageNumber()->OperandAddress(), 9);
        EXPECT_TRUE(dialog.cmdOK.Enabled());
    });
}

TEST_F(FrmProtocolSendTest, ACanceledPickerLeavesAnUnlinkedNumberEmpty) {
    linkedTo();
    messages({L"A", L"B"});
    unlinkedMessageNumber();
    edit([&](frmProtocolSend& dialog) {
        driver.QueuePickCancel();
        dialog.cmdOpMsgNumToSend.UserClick();
        EXPECT_EQ(dialog.lbOpMsgNumToSend.Caption(), L"");
        EXPECT_FALSE(dialog.cmdOK.Enabled());
    });
}

TEST_F(FrmProtocolSendTest, AConstantPickedIsReleasedAndShownACanceledOneGetsItsValueBack) {
    linkedTo();
    messages({L"A", L"B", L"C"});
    clsOperand& link = *set->OpMessageNumber();
    link.OperandConstantValue(20000);
    link.IsNew(false);
    edit([&](frmProtocolSend& dialog) {
        // The person types 1 into the constant, then cancels.
        driver.QueuePick([](clsOperand& operand) {
            operand.OperandConstantValue(10000);
            return false;
        });
        dialog.cmdOpMsgNumToSend.UserClick();
        EXPECT_EQ(link.OperandConstantValue(), 20000);
        // Now the person confirms 1.
        driver.QueuePick([](clsOperand& operand) {
            operand.OperandConstantValue(10000);
            return true;
        });
        dialog.cmdOpMsgNumToSend.UserClick();
        EXPECT_EQ(link.OperandConstantValue(), 10000);
        EXPECT_EQ(dialog.lbOpMsgNumToSend.Caption(), L"#1");
        EXPECT_TRUE(dialog.cmdOK.Enabled());
    });
}

// --- Toolbar ---

TEST_F(FrmProtocolSendTest, ClearAllLeavesOneRowAndTheLinkVisibleWithItsOldText) {
    linkedTo();
    messages({L"A", L"B", L"C"});
    linkedMessageNumber();
    edit([&](frmProtocolSend& dialog) {
        const std::wstring oldText = dialog.lbOpMsgNumToSend.Caption();
        dialog.FlgSend.UserClick(2, 1);
        dialog.abSend.UserClickTool(tools::ID_ClearAll);
        EXPECT_EQ(dialog.FlgSend.Rows(), 1);
        EXPECT_EQ(set->NumberOfMessages(), 1);
        EXPECT_EQ(rowText(dialog.FlgSend, 0, 1), L" ");
        EXPECT_EQ(dialog.FlgSend.Row(), 0);
        EXPECT_TRUE(dialog.lbOpMsgNumToSend.Visible());
        EXPECT_EQ(dialog.lbOpMsgNumToSend.Caption(), oldText);
        EXPECT_FALSE(dialog.SingleMessageMode);
        EXPECT_EQ(dialog.ActiveControl(), &dialog.FlgSend);
    });
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{142});
}

TEST_F(FrmProtocolSendTest, ClearAllAnsweredNoChangesNothingButFocusesTheGrid) {
    linkedTo();
    messages({L"A", L"B"});
    edit([&](frmProtocolSend& dialog) {
        driver.QueueAnswer(2);
        dialog.cmdOpMsgNumToSend.SetFocus();
        dialog.abSend.UserClickTool(tools::ID_ClearAll);
        EXPECT_EQ(dialog.FlgSend.Rows(), 2);
        EXPECT_EQ(set->NumberOfMessages(), 2);
        EXPECT_EQ(dialog.ActiveControl(), &dialog.FlgSend);
    });
}

TEST_F(FrmProtocolSendTest, PasteBeforeAnyCopyChangesNothingAndAPasteReplacesARowWithoutAQuestion) {
    linkedTo();
    messages({L"ONE", L"TWO"});
    linkedMessageNumber();
    edit([&](frmProtocolSend& dialog) {
        dialog.FlgSend.UserClick(1, 1);
        dialog.abSend.UserClickTool(tools::ID_Paste);
        EXPECT_EQ(rowText(dialog.FlgSend, 1, 3), L"TWO");
        dialog.abSend.Bands(tools::MainToolBar).Tools(tools::ID_Paste).Enabled(false);
        dialog.FlgSend.UserClick(0, 1);
        dialog.abSend.UserClickTool(tools::ID_Copy);
        EXPECT_TRUE(dialog.abSend.Bands(tools::MainToolBar).Tools(tools::ID_Paste).Enabled());
        dialog.FlgSend.UserClick(1, 2);
        dialog.abSend.UserClickTool(tools::ID_Paste);
        EXPECT_EQ(dialog.FlgSend.Rows(), 2);
        EXPECT_EQ(rowText(dialog.FlgSend, 1, 3), L"ONE");
        EXPECT_EQ(set->GetMessage(2)->MessageString().substr(0, 3), L"ONE");
        EXPECT_NE(set->GetMessage(2), set->GetMessage(1));
    });
    EXPECT_TRUE(context->Messages.empty());
}

TEST_F(FrmProtocolSendTest, CuttingTheOnlyMessageLeavesOneBlankRowAndOKThenGivesHostMessage143) {
    linkedTo();
    messages({L"W"});
    edit([&](frmProtocolSend& dialog) {
        dialog.abSend.Bands(tools::MainToolBar).Tools(tools::ID_Paste).Enabled(false);
        dialog.abSend.UserClickTool(tools::ID_Cut);
        EXPECT_TRUE(dialog.abSend.Bands(tools::MainToolBar).Tools(tools::ID_Paste).Enabled());
        EXPECT_EQ(dialog.FlgSend.Rows(), 1);
        EXPECT_EQ(rowText(dialog.FlgSend, 0, 1), L" ");
        EXPECT_TRUE(set->GetMessage(1)->IsEmpty());
        dialog.cmdOK.UserClick();
        EXPECT_TRUE(dialog.Visible());
        EXPECT_EQ(dialog.ActiveControl(), &dialog.FlgSend);
        // The cut message comes back.
        dialog.abSend.UserClickTool(tools::ID_Paste);
        EXPECT_EQ(rowText(dialog.FlgSend, 0, 1), L"W");
        dialog.cmdOK.UserClick();
    });
    EXPECT_TRUE(confirmed);
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{143});
}

TEST_F(FrmProtocolSendTest, InsertCommandsAskAndLandOnTheNewRowAppendLandsOnTheLast) {
    linkedTo();
    messages({L"A", L"B", L"C"});
    linkedMessageNumber();
    edit([&](frmProtocolSend& dialog) {
        dialog.FlgSend.UserClick(1, 3);
        dialog.abSend.UserClickTool(tools::ID_InsertBefore);
        EXPECT_EQ(dialog.FlgSend.Rows(), 4);
        EXPECT_EQ(dialog.FlgSend.Row(), 1);
        EXPECT_EQ(dialog.FlgSend.Col(), 3);
        EXPECT_EQ(rowText(dialog.FlgSend, 1, 1), L" ");
        EXPECT_EQ(rowText(dialog.FlgSend, 2, 1), L"B");
        EXPECT_EQ(dialog.FlgSend.TextMatrix(3, 0), L"3");

        dialog.abSend.UserClickTool(tools::ID_InsertMsg);
        EXPECT_EQ(dialog.FlgSend.Rows(), 5);
        EXPECT_EQ(dialog.FlgSend.Row(), 2);
        EXPECT_EQ(rowText(dialog.FlgSend, 3, 1), L"B");

        dialog.FlgSend.UserClick(0, 1);
        dialog.abSend.UserClickTool(tools::ID_AppendMsg);
        EXPECT_EQ(dialog.FlgSend.Rows(), 6);
        EXPECT_EQ(dialog.FlgSend.Row(), 5);
        // Several messages before and after: the link stays as it was.
        EXPECT_FALSE(dialog.lbOpMsgNumToSend.Caption().empty());
        EXPECT_TRUE(dialog.cmdOK.Enabled());
    });
    EXPECT_EQ(shownMessages(), (std::vector<int32_t>{155, 156}));
}

TEST_F(FrmProtocolSendTest, ADeclinedInsertOrDeleteLeavesTheGridAsItWas) {
    linkedTo();
    messages({L"A", L"B"});
    linkedMessageNumber();
    edit([&](frmProtocolSend& dialog) {
        dialog.FlgSend.UserClick(1, 1);
        driver.QueueAnswer(2);
        dialog.abSend.UserClickTool(tools::ID_InsertMsg);
        driver.QueueAnswer(2);
        dialog.abSend.UserClickTool(tools::ID_DeleteMsg);
        EXPECT_EQ(dialog.FlgSend.Rows(), 2);
        EXPECT_EQ(set->NumberOfMessages(), 2);
        EXPECT_EQ(rowText(dialog.FlgSend, 1, 1), L"B");
        EXPECT_EQ(dialog.FlgSend.Row(), 1);
        EXPECT_FALSE(dialog.lbOpMsgNumToSend.Caption().empty());
    });
    EXPECT_EQ(shownMessages(), (std::vector<int32_t>{156, 157}));
}

TEST_F(FrmProtocolSendTest, DeletingTheLastRowLandsOnTheNewLastRow) {
    linkedTo();
    messages({L"A", L"B", L"C"});
    linkedMessageNumber();
    edit([&](frmProtocolSend& dialog) {
        dialog.FlgSend.UserClick(2, 2);
        dialog.abSend.UserClickTool(tools::ID_DeleteMsg);
        EXPECT_EQ(dialog.FlgSend.Rows(), 2);
        EXPECT_EQ(dialog.FlgSend.Row(), 1);
        EXPECT_EQ(dialog.FlgSend.Col(), 2);
        EXPECT_EQ(rowText(dialog.FlgSend, 1, 1), L"B");
        dialog.FlgSend.UserClick(0, 1);
        dialog.abSend.UserClickTool(tools::ID_DeleteMsg);
        EXPECT_EQ(dialog.FlgSend.Row(), 0);
        EXPECT_EQ(rowText(dialog.FlgSend, 0, 1), L"B");
    });
}

TEST_F(FrmProtocolSendTest, The256thMessageIsRefusedWithHostMessage154) {
    linkedTo();
    std::vector<std::wstring> texts(255, L"X");
    messages(texts);
    linkedMessageNumber();
    edit([&](frmProtocolSend& dialog) {
        dialog.abSend.UserClickTool(tools::ID_AppendMsg);
        EXPECT_EQ(dialog.FlgSend.Rows(), 255);
        dialog.abSend.UserClickTool(tools::ID_InsertBefore);
        EXPECT_EQ(set->NumberOfMessages(), 255);
        EXPECT_FALSE(dialog.lbOpMsgNumToSend.Caption().empty());
    });
    EXPECT_EQ(shownMessages(), (std::vector<int32_t>{154, 154}));
}

TEST_F(FrmProtocolSendTest, PopupCommandsRunAsTheToolbarsDo) {
    linkedTo();
    messages({L"A", L"B"});
    linkedMessageNumber();
    edit([&](frmProtocolSend& dialog) {
        dialog.FlgSend.UserClick(0, 1);
        dialog.abSend.Bands(tools::popEmptyArea).PopupMenu();
        dialog.abSend.UserPickPopupTool(tools::ID_AppendMsg);
        EXPECT_EQ(dialog.FlgSend.Rows(), 3);
        EXPECT_EQ(dialog.FlgSend.Row(), 2);
    });
}

TEST_F(FrmProtocolSendTest, TypingIntoTheGridGoesIntoTheSetsMessage) {
    linkedTo();
    edit([&](frmProtocolSend& dialog) {
        type(dialog.FlgSend, L"W\r\n");
        EXPECT_EQ(rowText(dialog.FlgSend, 0, 3), L"W\r\n");
        EXPECT_EQ(dialog.FlgSend.Col(), 4);
        dialog.cmdOK.UserClick();
    });
    EXPECT_TRUE(confirmed);
    EXPECT_EQ(set->GetMessage(1)->MessageString().substr(0, 4), L"W\r\n ");
}

// --- Framing ---

TEST_F(FrmProtocolSendTest, CheckingSTXOffersOneByteUncheckingClearsIt) {
    linkedTo();
    edit([&](frmProtocolSend& dialog) {
        dialog.ckSendSTX.UserClick();
        EXPECT_TRUE(dialog.flgSendSTX.Enabled());
        EXPECT_TRUE(dialog.cbSendSTXLength.Enabled());
        EXPECT_TRUE(dialog.lbSendSTX.Enabled());
        EXPECT_TRUE(dialog.lbSendSTXLength.Enabled());
        EXPECT_EQ(dialog.flgSendSTX.BackColor(), kWhite);
        EXPECT_EQ(dialog.cbSendSTXLength.BackColor(), kWhite);
        EXPECT_EQ(dialog.cbSendSTXLength.ListIndex(), 0);
        EXPECT_EQ(set->SendSTXLength(), 1);
        EXPECT_EQ(dialog.flgSendSTX.Cols(), 1);
        EXPECT_EQ(dialog.ActiveControl(), &dialog.flgSendSTX);
        EXPECT_FALSE(dialog.gridEditor().IgnoreGridEvents);

        type(dialog.flgSendSTX, L"@");
        EXPECT_EQ(set->SendSTXChars()[0], (FrameChar{'@', true}));
        dialog.ckSendSTX.UserClick();
        EXPECT_FALSE(dialog.flgSendSTX.Enabled());
        EXPECT_EQ(dialog.flgSendSTX.BackColor(), kGrey);
        EXPECT_EQ(dialog.cbSendSTXLength.ListIndex(), -1);
        EXPECT_EQ(set->SendSTXLength(), 0);
        EXPECT_EQ(set->SendSTXChars()[0], FrameChar{});
        EXPECT_EQ(framingText(dialog.flgSendSTX), L"[]");
    });
}

TEST_F(FrmProtocolSendTest, CheckingETXShowsTheEndOfMessageUncheckingEmptiesIt) {
    linkedTo();
    set->EndOfSendMessageType(3);
    edit([&](frmProtocolSend& dialog) {
        dialog.ckSendETX.UserClick();
        EXPECT_TRUE(dialog.cmdSendAdvanced.Enabled());
        EXPECT_TRUE(dialog.lbSendETXEndOfMsg.Enabled());
        EXPECT_EQ(dialog.lbSendETXEndOfMsg.BackColor(), kWhite);
        EXPECT_EQ(dialog.lbSendETXEndOfMsg.Caption(), L"ETX & Checksum");
        EXPECT_EQ(set->SendETXLength(), 1);
        EXPECT_EQ(dialog.cbSendETXLength.ListIndex(), 0);
        EXPECT_EQ(dialog.ActiveControl(), &dialog.flgSendETX);

        dialog.ckSendETX.UserClick();
        EXPECT_FALSE(dialog.cmdSendAdvanced.Enabled());
        EXPECT_FALSE(dialog.lbSendETXEndOfMsg.Enabled());
        EXPECT_EQ(dialog.lbSendETXEndOfMsg.Caption(), L"");
        EXPECT_EQ(dialog.lbSendETXEndOfMsg.BackColor(), kGrey);
        EXPECT_EQ(set->SendETXLength(), 0);
        // Clearing the end characters puts the end of message back to "ETX".
        dialog.ckSendETX.UserClick();
        EXPECT_EQ(dialog.lbSendETXEndOfMsg.Caption(), GetEndOfMessageText(set->EndOfSendMessageType()));
    });
}

TEST_F(FrmProtocolSendTest, TypedBytesGoIntoTheCellsABlankOnlyMovesOnBackspaceAndDeleteClear) {
    linkedTo();
    edit([&](frmProtocolSend& dialog) {
        dialog.ckSendSTX.UserClick();
        dialog.cbSendSTXLength.UserSelect(3);
        EXPECT_EQ(dialog.flgSendSTX.Cols(), 4);
        EXPECT_EQ(set->SendSTXLength(), 4);
        type(dialog.flgSendSTX, L"a b");
        EXPECT_EQ(framingText(dialog.flgSendSTX), L"[a][][b][]");
        EXPECT_EQ(dialog.flgSendSTX.Col(), 3);
        EXPECT_EQ(set->SendSTXChars()[0], (FrameChar{'a', true}));
        EXPECT_EQ(set->SendSTXChars()[1], FrameChar{});
        EXPECT_EQ(set->SendSTXChars()[2], (FrameChar{'b', true}));
        type(dialog.flgSendSTX, L"cd");
        // The last cell keeps the caret: d overwrote c there.
        EXPECT_EQ(framingText(dialog.flgSendSTX), L"[a][][b][d]");
        EXPECT_EQ(dialog.flgSendSTX.Col(), 3);
        type(dialog.flgSendSTX, L"  ");
        EXPECT_EQ(dialog.flgSendSTX.Col(), 3);

        dialog.flgSendSTX.UserKeyPress(8);
        EXPECT_EQ(framingText(dialog.flgSendSTX), L"[a][][b][]");
        EXPECT_EQ(set->SendSTXChars()[3], (FrameChar{0, true}));
        EXPECT_EQ(dialog.flgSendSTX.Col(), 2);
        dialog.flgSendSTX.UserKeyDown(keys::Delete);
        EXPECT_EQ(framingText(dialog.flgSendSTX), L"[a][][][]");
        EXPECT_EQ(set->SendSTXChars()[2], (FrameChar{0, true}));
        EXPECT_EQ(dialog.flgSendSTX.Col(), 2);
        dialog.flgSendSTX.UserClick(0, 0);
        dialog.flgSendSTX.UserKeyPress(8);
        EXPECT_EQ(dialog.flgSendSTX.Col(), 0);
        EXPECT_EQ(framingText(dialog.flgSendSTX), L"[][][][]");
    });
}

TEST_F(FrmProtocolSendTest, ADoubleClickPutsAPickedCodeAsHexOnRedACancelChangesNothing) {
    linkedTo();
    edit([&](frmProtocolSend& dialog) {
        dialog.ckSendETX.UserClick();
        dialog.cbSendETXLength.UserSelect(1);
        dialog.flgSendETX.UserClick(0, 1);
        pickControlChar(0x0A);
        dialog.flgSendETX.UserDoubleClick(0, 1);
        EXPECT_EQ(framingText(dialog.flgSendETX), L"[][0A]");
        EXPECT_EQ(dialog.flgSendETX.CellBackColor(0, 1), kRed);
        EXPECT_EQ(set->SendETXChars()[1], (FrameChar{0x0A, false}));
        cancelControlChar();
        dialog.flgSendETX.UserDoubleClick(0, 1);
        EXPECT_EQ(framingText(dialog.flgSendETX), L"[][0A]");
        EXPECT_EQ(set->SendETXChars()[1], (FrameChar{0x0A, false}));
        // A typed character over it is white again.
        type(dialog.flgSendETX, L"Z");
        EXPECT_EQ(dialog.flgSendETX.CellBackColor(0, 1), kWhite);
        EXPECT_EQ(set->SendETXChars()[1], (FrameChar{'Z', true}));
    });
    EXPECT_EQ(driver.PendingDialogs(), 0u);
}

TEST_F(FrmProtocolSendTest, AHexByteAndATypedByteOfTheSameValueDifferInTheCellAndTheFlag) {
    linkedTo();
    edit([&](frmProtocolSend& dialog) {
        dialog.ckSendSTX.UserClick();
        dialog.cbSendSTXLength.UserSelect(1);
        dialog.flgSendSTX.UserKeyPress(2);
        pickControlChar(2);
        dialog.flgSendSTX.UserDoubleClick(0, 1);
        EXPECT_EQ(dialog.flgSendSTX.TextMatrix(0, 0), std::wstring(1, wchar_t{2}));
        EXPECT_EQ(dialog.flgSendSTX.TextMatrix(0, 1), L"02");
        EXPECT_NE(dialog.flgSendSTX.CellBackColor(0, 0), kRed);
        EXPECT_EQ(dialog.flgSendSTX.CellBackColor(0, 1), kRed);
        EXPECT_EQ(set->SendSTXChars()[0], (FrameChar{2, true}));
        EXPECT_EQ(set->SendSTXChars()[1], (FrameChar{2, false}));
    });
}

TEST_F(FrmProtocolSendTest, AChangeOfLengthWipesEveryByteAlsoThoseThatStillFit) {
    linkedTo();
    set->SendETXLength(2);
    set->SetSendETXValue(0, 0x0D, false);
    set->SetSendETXValue(1, 0x0A, false);
    set->EndOfSendMessageType(2);
    edit([&](frmProtocolSend& dialog) {
        dialog.cbSendETXLength.UserSelect(2);
        EXPECT_EQ(set->SendETXLength(), 3);
        EXPECT_EQ(framingText(dialog.flgSendETX), L"[][][]");
        EXPECT_EQ(dialog.flgSendETX.CellBackColor(0, 0), kWhite);
        EXPECT_EQ(set->SendETXChars()[0], FrameChar{});
        EXPECT_EQ(set->EndOfSendMessageType(), 1);
        EXPECT_EQ(dialog.lbSendETXEndOfMsg.Caption(), L"ETX");
        EXPECT_EQ(dialog.ActiveControl(), &dialog.flgSendETX);
    });
}

TEST_F(FrmProtocolSendTest, EndOfMessageButtonEditsTheFormAndShowsItsText) {
    linkedTo();
    set->SendETXLength(1);
    set->SetSendETXValue(0, 0x03, false);
    editorHooks().EndOfMessage = [](std::shared_ptr<clsProtocolCSVar>, int32_t& type) {
        type = 3;
        return true;
    };
    edit([&](frmProtocolSend& dialog) {
        EXPECT_EQ(dialog.lbSendETXEndOfMsg.Caption(), L"ETX");
        dialog.cmdSendAdvanced.UserClick();
        EXPECT_EQ(set->EndOfSendMessageType(), 3);
        EXPECT_EQ(dialog.lbSendETXEndOfMsg.Caption(), L"ETX & Checksum");
    });
}

TEST_F(FrmProtocolSendTest, KeysInAFramingGridAreNotHandledWhileGridEventsAreIgnored) {
    linkedTo();
    edit([&](frmProtocolSend& dialog) {
        dialog.ckSendSTX.UserClick();
        dialog.gridEditor().IgnoreGridEvents = true;
        type(dialog.flgSendSTX, L"Q");
        dialog.gridEditor().IgnoreGridEvents = false;
        EXPECT_EQ(framingText(dialog.flgSendSTX), L"[]");
        EXPECT_EQ(set->SendSTXChars()[0], FrameChar{});
    });
}

// --- OK and its checks ---

TEST_F(FrmProtocolSendTest, AnEmptyMessageBeforeAUsedOneIsHostMessage144WithTheGridsNumber) {
    linkedTo();
    messages({L"A", L"", L"C", L""});
    linkedMessageNumber();
    edit([&](frmProtocolSend& dialog) {
        dialog.cmdOK.UserClick();
        EXPECT_TRUE(dialog.Visible());
    });
    EXPECT_FALSE(confirmed);
    ASSERT_EQ(shownMessages(), std::vector<int32_t>{144});
    EXPECT_EQ(context->Messages[0].Params, std::vector<std::wstring>{L"1"});
}

TEST_F(FrmProtocolSendTest, TrailingEmptyMessagesAreLegal) {
    linkedTo();
    messages({L"A", L"B", L""});
    linkedMessageNumber();
    edit([](frmProtocolSend& dialog) { dialog.cmdOK.UserClick(); });
    EXPECT_TRUE(confirmed);
    EXPECT_TRUE(context->Messages.empty());
}

TEST_F(FrmProtocolSendTest, AnSTXCellLeftEmptyIsRefusedWith145EvenWhenBackspaceStoredAZero) {
    linkedTo();
    messages({L"A"});
    edit([&](frmProtocolSend& dialog) {
        dialog.ckSendSTX.UserClick();
        dialog.cbSendSTXLength.UserSelect(2);
        type(dialog.flgSendSTX, L"xyz");
        dialog.flgSendSTX.UserClick(0, 1);
        dialog.flgSendSTX.UserKeyPress(8);
        EXPECT_EQ(set->SendSTXChars()[1], (FrameChar{0, true}));
        dialog.cmdOK.UserClick();
        EXPECT_TRUE(dialog.Visible());
        EXPECT_EQ(dialog.ActiveControl(), &dialog.FlgSend);
        dialog.flgSendSTX.UserClick(0, 1);
        type(dialog.flgSendSTX, L"Y");
        dialog.cmdOK.UserClick();
    });
    EXPECT_TRUE(confirmed);
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{145});
}

TEST_F(FrmProtocolSendTest, AnETXCellLeftEmptyIsRefusedWith146) {
    linkedTo();
    messages({L"A"});
    edit([&](frmProtocolSend& dialog) {
        dialog.ckSendETX.UserClick();
        dialog.cmdOK.UserClick();
        EXPECT_TRUE(dialog.Visible());
        dialog.cmdCancel.UserClick();
    });
    EXPECT_FALSE(confirmed);
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{146});
}

TEST_F(FrmProtocolSendTest, TheChecksRunInTheirOrderAndStopAtTheFirstFault) {
    linkedTo();
    messages({L"", L""});
    linkedMessageNumber();
    // One cell on each side, cleared as Backspace clears.
    set->SendSTXLength(1);
    set->SetSendSTXValue(0, 0, true);
    set->SendETXLength(1);
    set->SetSendETXValue(0, 0, true);
    edit([&](frmProtocolSend& dialog) {
        EXPECT_EQ(framingText(dialog.flgSendSTX), L"[]");
        dialog.cmdOK.UserClick();  // nothing to download: 143
        dialog.FlgSend.UserClick(1, 1);
        type(dialog.FlgSend, L"B");
        dialog.cmdOK.UserClick();  // message 0 empty: 144
        dialog.FlgSend.UserClick(0, 1);
        type(dialog.FlgSend, L"A");
        dialog.cmdOK.UserClick();  // STX: 145
        dialog.flgSendSTX.UserClick(0, 0);
        type(dialog.flgSendSTX, L"<");
        dialog.cmdOK.UserClick();  // ETX: 146
        dialog.flgSendETX.UserClick(0, 0);
        type(dialog.flgSendETX, L">");
        dialog.cmdOK.UserClick();
    });
    EXPECT_TRUE(confirmed);
    EXPECT_EQ(shownMessages(), (std::vector<int32_t>{143, 144, 145, 146}));
}

TEST_F(FrmProtocolSendTest, ALongFixedTextIsRefusedWithTheProtocolMessageBox) {
    linkedTo();
    messages({L"A", std::wstring(256, L'x')});
    linkedMessageNumber();
    edit([](frmProtocolSend& dialog) {
        dialog.cmdOK.UserClick();
        EXPECT_TRUE(dialog.Visible());
    });
    EXPECT_FALSE(confirmed);
    ASSERT_EQ(context->Messages.size(), 1u);
    const ShownMessage& box = context->Messages[0];
    EXPECT_EQ(box.Number, 0);
    EXPECT_EQ(box.Title, L"PROTOCOL");
    EXPECT_EQ(box.Style, vbExclamation);
    EXPECT_EQ(box.Text,
              L"Message number: 1 is not legal.\r\nA message segment which contains fixed text may not exceed 255 "
              L"characters.");
}

// --- Closing, activation, buttons ---

TEST_F(FrmProtocolSendTest, EscapeCancelsEvenFromTheGridAndTypesNothing) {
    linkedTo();
    edit([&](frmProtocolSend& dialog) {
        dialog.FlgSend.UserKeyPress(27);
        EXPECT_FALSE(dialog.Visible());
        EXPECT_FALSE(dialog.DialogResult);
    });
    EXPECT_FALSE(confirmed);
    EXPECT_TRUE(set->GetMessage(1)->IsEmpty());
}

TEST_F(FrmProtocolSendTest, TheCloseBoxCancels) {
    linkedTo();
    messages({L"A"});
    edit([](frmProtocolSend& dialog) { dialog.UserClose(); });
    EXPECT_FALSE(confirmed);
}

TEST_F(FrmProtocolSendTest, OKAfterAFailedCheckAndCancelAnswersFalse) {
    linkedTo();
    edit([](frmProtocolSend& dialog) {
        dialog.cmdOK.UserClick();
        EXPECT_FALSE(dialog.DialogResult);
        dialog.cmdCancel.UserClick();
    });
    EXPECT_FALSE(confirmed);
}

TEST_F(FrmProtocolSendTest, ActivationPutsTheCaretAndTheFocusOnTheGrid) {
    linkedTo();
    messages({L"A"});
    frmProtocolSend dialog;
    driver.QueueDialog(scriptFor<frmProtocolSend>([&](frmProtocolSend& shownDialog) {
        EXPECT_EQ(shownDialog.ActiveControl(), &shownDialog.FlgSend);
        EXPECT_EQ(context->Caret.Window, shownDialog.FlgSend.hWnd());
        EXPECT_TRUE(context->Caret.Shown);
        shownDialog.cmdHelp.SetFocus();
        context->CaretCalls.clear();
        shownDialog.Activate();
        EXPECT_EQ(shownDialog.ActiveControl(), &shownDialog.FlgSend);
        EXPECT_FALSE(context->CaretCalls.empty());
        shownDialog.cmdOK.UserClick();
    }));
    bool ok = false;
    dialog.Edit(*set, method, instances, ok);
    EXPECT_TRUE(ok);
    EXPECT_TRUE(dialog.DialogResult);
    // Closed and unloaded, holding on to nothing.
    EXPECT_FALSE(dialog.IsLoaded());
    EXPECT_FALSE(static_cast<bool>(set->OnMessagesCleared));
    EXPECT_EQ(dialog.gridEditor().CurrentMessage, nullptr);
    EXPECT_EQ(dialog.gridEditor().NumberOfMessages(), 0);
}

TEST_F(FrmProtocolSendTest, HelpShowsTheFamilysHelp) {
    linkedTo();
    edit([](frmProtocolSend& dialog) { dialog.cmdHelp.UserClick(); });
    EXPECT_EQ(instances->HelpShown, std::vector<int32_t>{170100});
}

TEST_F(FrmProtocolSendTest, AdvancedOpensTheSendAdvancedDialog) {
    linkedTo();
    bool advanced = false;
    edit([&](frmProtocolSend& dialog) {
        driver.QueueDialog(scriptFor<frmProtocolSendAdvanced>([&](frmProtocolSendAdvanced& inner) {
            advanced = true;
            inner.cmdCancel.UserClick();
        }));
        dialog.cmdAdvanced.UserClick();
        EXPECT_TRUE(dialog.Visible());
    });
    EXPECT_TRUE(advanced);
}

TEST_F(FrmProtocolSendTest, ClearAllOfTheSetReloadsTheOpenDialogOnly) {
    linkedTo();
    messages({L"A", L"B"});
    linkedMessageNumber();
    edit([&](frmProtocolSend& dialog) {
        dialog.FlgSend.UserClick(1, 3);
        set->ClearAll();
        EXPECT_EQ(dialog.FlgSend.Rows(), 1);
        EXPECT_EQ(dialog.FlgSend.Row(), 0);
        EXPECT_EQ(dialog.FlgSend.Col(), 1);
        EXPECT_EQ(dialog.gridEditor().CurrentMessage, set->GetMessage(1));
    });
    EXPECT_FALSE(static_cast<bool>(set->OnMessagesCleared));
}

}  // namespace
}  // namespace qx
