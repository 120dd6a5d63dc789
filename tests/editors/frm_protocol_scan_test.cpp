// The serial Scan dialog driven as a person drives it: the instance list and
// its stop on an operation without operands, the three operand links and the
// chain that offers them on a fresh Scan, the terminators and their lists,
// the start and end of text, OK's checks in their order, the toolbar, and
// closing.
#include "editors/frm_protocol_scan.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "framework/shared_helpers.h"
#include "platform/host/host_services.h"
#include "scan_dialog_bench.h"

namespace qx {
namespace {

using test::memoryChoice;
using test::ScanDialogBench;

constexpr uint32_t kWhite = 0xFFFFFF;
constexpr uint32_t kGrey = 0x8000000B;

class FrmProtocolScanTest : public ::testing::Test, public ScanDialogBench {};

// --- Edit, the instance list and the operands ---

TEST_F(FrmProtocolScanTest, TheDialogShowsItsCaptionsAndNames) {
    linked();
    edit([](frmProtocolScan& dialog) {
        EXPECT_EQ(dialog.Name(), L"frmProtocolScan");
        EXPECT_EQ(dialog.Caption(), L"Protocol Scan");
        EXPECT_EQ(dialog.FlgScan.Name(), L"FlgScan");
        EXPECT_EQ(dialog.abScan.Name(), L"abScan");
        EXPECT_EQ(dialog.FlgScan.Cols(), 502);
        EXPECT_EQ(dialog.ckSTX.Caption(), L"Start Of Text (STX)");
        EXPECT_EQ(dialog.Frame4.Caption(), L"Terminators");
        EXPECT_EQ(dialog.opEndOfText.Caption(), L"End Of Text (ETX)");
        EXPECT_EQ(dialog.opMessageLength.Caption(), L"Message Length");
        EXPECT_EQ(dialog.opSilenceTime.Caption(), L"Silence: Duration (mS)");
        EXPECT_EQ(dialog.cmdAdvanced.Caption(), L"End Of Message");
        EXPECT_EQ(dialog.Label1.Caption(), L"Session Complete:");
        EXPECT_EQ(dialog.Label3.Caption(), L"Number of Bytes received:");
        EXPECT_EQ(dialog.Label2.Caption(), L"Index of Received Message:");
        for (CommandButton* link : {&dialog.cmdFailLink, &dialog.cmdOpReceived, &dialog.cmdOpMessageNum})
            EXPECT_EQ(link->ToolTipText(), L"Link Operand to Variable");
        EXPECT_EQ(dialog.opEndOfText.Container(), &dialog.Frame4);
        EXPECT_EQ(dialog.cbMessageLength.Container(), &dialog.Frame3);
        EXPECT_EQ(dialog.cbSilenceTime.Container(), &dialog.Frame5);
        EXPECT_EQ(dialog.flgETX.Container(), &dialog.Frame2);
        EXPECT_EQ(dialog.flgSTX.Container(), &dialog.Frame1);
    });
    EXPECT_TRUE(shown);
}

TEST_F(FrmProtocolScanTest, WithoutInstancesHostMessage140IsShownAndTheDialogIsNot) {
    makeNew();
    EXPECT_FALSE(edit([](frmProtocolScan&) {}));
    EXPECT_FALSE(shown);
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{140});
}

TEST_F(FrmProtocolScanTest, ASoleInstanceOnAnOperationWithoutOperandsShowsNothing) {
    test::MethodStub bare(170100, 2);
    bare.itfFBMethod_Init(instances);
    bare.itfFBMethod_CreateDummyOperands();
    const int32_t only = instances->Seed(L"Line1");
    EXPECT_FALSE(editOn(bare, [](frmProtocolScan&) {}));
    EXPECT_FALSE(shown);
    EXPECT_EQ(bare.itfFBMethod_FatherInstanceNum(), only);
    EXPECT_TRUE(context->Messages.empty());
    EXPECT_FALSE(static_cast<bool>(set->OnMessagesCleared));
}

TEST_F(FrmProtocolScanTest, TwoInstancesOnAnOperationWithoutOperandsShowTheDialog) {
    test::MethodStub bare(170100, 2);
    bare.itfFBMethod_Init(instances);
    bare.itfFBMethod_CreateDummyOperands();
    instances->Seed(L"Line1");
    instances->Seed(L"Line2");
    editOn(bare, [](frmProtocolScan& dialog) {
        EXPECT_EQ(dialog.cbInstanceName.ListCount(), 2);
        EXPECT_EQ(dialog.GetOperandCount(), 0);
        EXPECT_FALSE(dialog.cmdOK.Enabled());
    });
    EXPECT_TRUE(shown);
}

TEST_F(FrmProtocolScanTest, TheOperandCountIsInPlusOut) {
    linked();
    edit([](frmProtocolScan& dialog) {
        EXPECT_EQ(dialog.GetOperandCount(), 3);
        EXPECT_TRUE(dialog.SoleInstance());
        EXPECT_EQ(dialog.cbInstanceName.ListIndex(), 0);
    });
}

TEST_F(FrmProtocolScanTest, AnOldScanWhoseConfigIsGoneGetsHostMessage141) {
    reopenWith(
        test::storedOperands({test::linkedOperand(1, 10), test::linkedOperand(3, 20), test::linkedOperand(3, 21)}),
        set->BinaryData());
    instances->Seed(L"Other");
    scan->itfFBMethod_FatherInstanceNum(99);
    edit([](frmProtocolScan& dialog) {
        EXPECT_EQ(dialog.cbInstanceName.ListIndex(), -1);
        EXPECT_FALSE(dialog.cmdOK.Enabled());
    });
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{141});
}

TEST_F(FrmProtocolScanTest, LinkedOperandsShowTheirTextsAndOKIsOn) {
    linked();
    edit([&](frmProtocolScan& dialog) {
        EXPECT_EQ(dialog.lbOpFail.Caption(), GetOperandDisplayText(*operand(1)));
        EXPECT_EQ(dialog.lblOpReceived.Caption(), GetOperandDisplayText(*operand(2)));
        EXPECT_EQ(dialog.lbOpMessageNum.Caption(), GetOperandDisplayText(*operand(3)));
        EXPECT_FALSE(dialog.lbOpFail.Caption().empty());
        EXPECT_TRUE(dialog.cmdOK.Enabled());
    });
}

// --- The first activation ---

TEST_F(FrmProtocolScanTest, WithANewScanThePickerOpensByItselfThreeTimes) {
    fresh();
    driver.QueuePick(memoryChoice(1, 10, L"Done"));
    driver.QueuePick(memoryChoice(3, 20, L"Count"));
    driver.QueuePick(memoryChoice(3, 21, L"Index"));
    edit([&](frmProtocolScan& dialog) {
        EXPECT_EQ(driver.PendingPicks(), 0u);
        EXPECT_FALSE(dialog.FirstActivation);
        EXPECT_EQ(operand(1)->OperandAddress(), 10);
        EXPECT_EQ(operand(2)->OperandAddress(), 20);
        EXPECT_EQ(operand(3)->OperandAddress(), 21);
        EXPECT_EQ(dialog.lbOpFail.Caption(), GetOperandDisplayText(*operand(1)));
        EXPECT_EQ(dialog.lblOpReceived.Caption(), GetOperandDisplayText(*operand(2)));
        EXPECT_EQ(dialog.lbOpMessageNum.Caption(), GetOperandDisplayText(*operand(3)));
        EXPECT_TRUE(dialog.cmdOK.Enabled());
        EXPECT_EQ(dialog.ActiveControl(), &dialog.FlgScan);
    });
}

TEST_F(FrmProtocolScanTest, TheFirstCancelInThePickerEndsTheChain) {
    fresh();
    driver.QueuePick(memoryChoice(1, 10));
    driver.QueuePickCancel();
    driver.QueuePick(memoryChoice(3, 21));
    edit([&](frmProtocolScan& dialog) {
        // The third pick was never asked for.
        EXPECT_EQ(driver.PendingPicks(), 1u);
        EXPECT_FALSE(operand(1)->IsNew());
        EXPECT_TRUE(operand(2)->IsNew());
        EXPECT_TRUE(operand(3)->IsNew());
        EXPECT_FALSE(dialog.cmdOK.Enabled());
        // A later activation does nothing at all.
        dialog.cmdHelp.SetFocus();
        dialog.Activate();
        EXPECT_EQ(driver.PendingPicks(), 1u);
        EXPECT_EQ(dialog.ActiveControl(), &dialog.cmdHelp);
    });
}

TEST_F(FrmProtocolScanTest, WithOneOperandLinkedTheChainDoesNotRunAndEachActivationFocusesTheGrid) {
    fresh();
    test::linkOperand(*operand(3), 3, 21);
    driver.QueuePick(memoryChoice(1, 10));
    edit([&](frmProtocolScan& dialog) {
        EXPECT_EQ(driver.PendingPicks(), 1u);
        EXPECT_TRUE(dialog.FirstActivation);
        EXPECT_EQ(dialog.ActiveControl(), &dialog.FlgScan);
        dialog.cmdHelp.SetFocus();
        dialog.Activate();
        EXPECT_EQ(dialog.ActiveControl(), &dialog.FlgScan);
        EXPECT_EQ(driver.PendingPicks(), 1u);
    });
}

// --- Links and OK's conditions ---

TEST_F(FrmProtocolScanTest, OKWaitsForTheFirstTwoOperandsButNotTheThird) {
    fresh();
    test::linkOperand(*operand(3), 3, 21);
    edit([&](frmProtocolScan& dialog) {
        EXPECT_FALSE(dialog.cmdOK.Enabled());
        driver.QueuePick(memoryChoice(1, 10));
        dialog.cmdFailLink.UserClick();
        EXPECT_EQ(dialog.lbOpFail.Caption(), GetOperandDisplayText(*operand(1)));
        EXPECT_FALSE(dialog.cmdOK.Enabled());
        driver.QueuePick(memoryChoice(3, 20));
        dialog.lblOpReceived.UserDoubleClick();
        EXPECT_TRUE(dialog.cmdOK.Enabled());
    });
    set = std::make_unique<clsProtocolScanSrv>();
    operand(3)->IsNew(true);
    edit([&](frmProtocolScan& dialog) { EXPECT_TRUE(dialog.cmdOK.Enabled()); });
}

TEST_F(FrmProtocolScanTest, EachLinkIsReachedByItsButtonAndByItsLabel) {
    linked();
    edit([&](frmProtocolScan& dialog) {
        driver.QueuePick(memoryChoice(3, 30));
        dialog.cmdOpMessageNum.UserClick();
        EXPECT_EQ(operand(3)->OperandAddress(), 30);
        driver.QueuePick(memoryChoice(3, 31));
        dialog.lbOpMessageNum.UserDoubleClick();
        EXPECT_EQ(operand(3)->OperandAddress(), 31);
        EXPECT_EQ(dialog.lbOpMessageNum.Caption(), GetOperandDisplayText(*operand(3)));
        driver.QueuePick(memoryChoice(1, 11));
        dialog.lbOpFail.UserDoubleClick();
        EXPECT_EQ(operand(1)->OperandAddress(), 11);
        driver.QueuePick(memoryChoice(3, 22));
        dialog.cmdOpReceived.UserClick();
        EXPECT_EQ(operand(2)->OperandAddress(), 22);
        EXPECT_EQ(dialog.lblOpReceived.Caption(), GetOperandDisplayText(*operand(2)));
    });
}

TEST_F(FrmProtocolScanTest, ACanceledPickKeepsTheLabel) {
    linked();
    edit([&](frmProtocolScan& dialog) {
        const std::wstring before = dialog.lbOpFail.Caption();
        driver.QueuePickCancel();
        dialog.cmdFailLink.UserClick();
        EXPECT_EQ(dialog.lbOpFail.Caption(), before);
        EXPECT_EQ(operand(1)->OperandAddress(), 10);
    });
}

TEST_F(FrmProtocolScanTest, ALinkMadeInTheDialogStaysAfterCancel) {
    fresh();
    driver.QueuePick(memoryChoice(1, 10));
    driver.QueuePick(memoryChoice(3, 20));
    driver.QueuePickCancel();
    edit([](frmProtocolScan& dialog) { dialog.cmdCancel.UserClick(); });
    EXPECT_FALSE(confirmed);
    EXPECT_FALSE(operand(1)->IsNew());
    EXPECT_EQ(operand(1)->OperandAddress(), 10);
    EXPECT_FALSE(operand(2)->IsNew());
    EXPECT_EQ(operand(2)->OperandAddress(), 20);
    EXPECT_TRUE(operand(3)->IsNew());
}

// --- Loading the terminators ---

TEST_F(FrmProtocolScanTest, ANewSetOpensWithAMessageLengthOfOne) {
    linked();
    edit([&](frmProtocolScan& dialog) {
        EXPECT_TRUE(dialog.opMessageLength.Value());
        EXPECT_FALSE(dialog.opEndOfText.Value());
        EXPECT_FALSE(dialog.opSilenceTime.Value());
        EXPECT_TRUE(dialog.cbMessageLength.Enabled());
        EXPECT_EQ(dialog.cbMessageLength.BackColor(), kWhite);
        EXPECT_EQ(dialog.cbMessageLength.ListIndex(), 0);
        EXPECT_FALSE(dialog.cbSilenceTime.Enabled());
        EXPECT_EQ(dialog.cbSilenceTime.BackColor(), kGrey);
        EXPECT_FALSE(dialog.flgETX.Enabled());
        EXPECT_FALSE(dialog.cmdAdvanced.Enabled());
        EXPECT_EQ(dialog.lbETXEndOfMsg.Caption(), L"");
        EXPECT_TRUE(dialog.ckSTX.Enabled());
        EXPECT_EQ(dialog.ckSTX.Value(), CheckBox::Unchecked);
        EXPECT_FALSE(dialog.flgSTX.Enabled());
        for (OptionButton* option : {&dialog.opEndOfText, &dialog.opMessageLength, &dialog.opSilenceTime})
            EXPECT_TRUE(option->Enabled());
    });
    EXPECT_EQ(set->MessageLengthValue(), 1);
}

TEST_F(FrmProtocolScanTest, TheListsHoldTheirItems) {
    linked();
    edit([&](frmProtocolScan& dialog) {
        ASSERT_EQ(dialog.cbMessageLength.ListCount(), 500);
        EXPECT_EQ(dialog.cbMessageLength.List(0), L"1");
        EXPECT_EQ(dialog.cbMessageLength.ItemData(499), 500);
        ASSERT_EQ(dialog.cbSTXLength.ListCount(), 4);
        EXPECT_EQ(dialog.cbETXLength.ItemData(3), 4);
        // 10 to 2000 in steps of 5.
        ASSERT_EQ(dialog.cbSilenceTime.ListCount(), 399);
        EXPECT_EQ(dialog.cbSilenceTime.ItemData(0), 10);
        EXPECT_EQ(dialog.cbSilenceTime.ItemData(1), 15);
        EXPECT_EQ(dialog.cbSilenceTime.List(398), L"2000");
    });
}

TEST_F(FrmProtocolScanTest, WithExtendedOperandsTheSilenceListStartsAtOne) {
    context->ExtendedOperands = true;
    linked();
    edit([&](frmProtocolScan& dialog) {
        ASSERT_EQ(dialog.cbSilenceTime.ListCount(), 408);
        EXPECT_EQ(dialog.cbSilenceTime.ItemData(0), 1);
        EXPECT_EQ(dialog.cbSilenceTime.ItemData(8), 9);
        EXPECT_EQ(dialog.cbSilenceTime.ItemData(9), 10);
        dialog.opSilenceTime.UserClick();
        EXPECT_EQ(dialog.cbSilenceTime.ListIndex(), 9);
    });
    EXPECT_EQ(set->SilenceTimeValue(), 10);
}

TEST_F(FrmProtocolScanTest, AStoredEndOfTextShowsItsBytesAndItsEndOfMessage) {
    linked();
    set->MessageLengthValue(0);
    set->ScanETXLength(2);
    set->SetScanETXValue(0, 0x0D, false);
    set->SetScanETXValue(1, 'k', true);
    set->EndOfScanMessageType(2);
    set->ScanSTXLength(1);
    set->SetScanSTXValue(0, 0x02, false);
    edit([&](frmProtocolScan& dialog) {
        EXPECT_TRUE(dialog.opEndOfText.Value());
        EXPECT_FALSE(dialog.opMessageLength.Value());
        EXPECT_FALSE(dialog.cbMessageLength.Enabled());
        EXPECT_EQ(dialog.cbMessageLength.ListIndex(), -1);
        EXPECT_TRUE(dialog.flgETX.Enabled());
        EXPECT_EQ(dialog.flgETX.BackColor(), kWhite);
        EXPECT_EQ(dialog.cbETXLength.ListIndex(), 1);
        EXPECT_EQ(framingText(dialog.flgETX), L"[0D][k]");
        EXPECT_TRUE(dialog.cmdAdvanced.Enabled());
        EXPECT_EQ(dialog.lbETXEndOfMsg.Caption(), L"Checksum & ETX");
        EXPECT_EQ(dialog.ckSTX.Value(), CheckBox::Checked);
        EXPECT_EQ(framingText(dialog.flgSTX), L"[02]");
        EXPECT_EQ(dialog.cbSTXLength.ListIndex(), 0);
    });
}

TEST_F(FrmProtocolScanTest, AStoredSilenceTimeIsShownOnItsItem) {
    linked();
    set->MessageLengthValue(0);
    set->SilenceTimeValue(50);
    edit([&](frmProtocolScan& dialog) {
        EXPECT_TRUE(dialog.opSilenceTime.Value());
        EXPECT_TRUE(dialog.cbSilenceTime.Enabled());
        EXPECT_EQ(dialog.cbSilenceTime.BackColor(), kWhite);
        EXPECT_EQ(dialog.cbSilenceTime.List(dialog.cbSilenceTime.ListIndex()), L"50");
    });
    EXPECT_EQ(set->SilenceTimeValue(), 50);
}

TEST_F(FrmProtocolScanTest, AStoredSilenceTimeNotInTheListSelectsTheFirstItemAndStaysUntilPicked) {
    linked();
    messages({L"A"});
    set->MessageLengthValue(0);
    set->SilenceTimeValue(12);
    edit([&](frmProtocolScan& dialog) {
        EXPECT_EQ(dialog.cbSilenceTime.ListIndex(), 0);
        EXPECT_EQ(set->SilenceTimeValue(), 12);
        dialog.cmdOK.UserClick();
        EXPECT_FALSE(dialog.Visible());
    });
    EXPECT_TRUE(confirmed);
    EXPECT_EQ(set->SilenceTimeValue(), 12);
    edit([&](frmProtocolScan& dialog) {
        dialog.cbSilenceTime.UserSelect(2);
        EXPECT_EQ(set->SilenceTimeValue(), 20);
    });
}

// --- Choosing a terminator ---

TEST_F(FrmProtocolScanTest, ChoosingEndOfTextStartsWithOneEmptyByteAndForgetsTheLength) {
    linked();
    set->MessageLengthValue(40);
    edit([&](frmProtocolScan& dialog) {
        dialog.opEndOfText.UserClick();
        EXPECT_EQ(set->MessageLengthValue(), 0);
        EXPECT_EQ(set->SilenceTimeValue(), 0);
        EXPECT_EQ(set->ScanETXLength(), 1);
        EXPECT_FALSE(dialog.opMessageLength.Value());
        EXPECT_FALSE(dialog.cbMessageLength.Enabled());
        EXPECT_EQ(dialog.cbMessageLength.BackColor(), kGrey);
        EXPECT_EQ(dialog.cbMessageLength.ListIndex(), -1);
        EXPECT_TRUE(dialog.flgETX.Enabled());
        EXPECT_EQ(dialog.flgETX.Cols(), 1);
        EXPECT_EQ(framingText(dialog.flgETX), L"[]");
        EXPECT_EQ(dialog.cbETXLength.ListIndex(), 0);
        EXPECT_EQ(dialog.cbETXLength.BackColor(), kWhite);
        EXPECT_TRUE(dialog.lbETXEndOfMsg.Enabled());
        EXPECT_EQ(dialog.lbETXEndOfMsg.BackColor(), kWhite);
        EXPECT_EQ(dialog.lbETXEndOfMsg.Caption(), L"ETX");
        EXPECT_TRUE(dialog.cmdAdvanced.Enabled());
        EXPECT_EQ(dialog.ActiveControl(), &dialog.flgETX);
        dialog.flgETX.UserKeyPress('!');
        EXPECT_EQ(set->ScanETXChars()[0].Value, '!');
    });
}

TEST_F(FrmProtocolScanTest, ChoosingMessageLengthAfterEndOfTextWipesTheBytesAndGoingBackGivesOneEmptyCell) {
    linked();
    set->MessageLengthValue(0);
    set->ScanETXLength(3);
    for (int32_t i = 0; i < 3; ++i) set->SetScanETXValue(i, static_cast<uint8_t>('a' + i), true);
    set->EndOfScanMessageType(3);
    edit([&](frmProtocolScan& dialog) {
        dialog.opMessageLength.UserClick();
        EXPECT_FALSE(dialog.opEndOfText.Value());
        EXPECT_EQ(set->ScanETXLength(), 0);
        EXPECT_EQ(set->ScanETXChars()[0].Value, 0);
        EXPECT_EQ(set->ScanETXChars()[2].Value, 0);
        EXPECT_EQ(set->EndOfScanMessageType(), 1);
        EXPECT_EQ(set->MessageLengthValue(), 1);
        EXPECT_EQ(dialog.cbMessageLength.ListIndex(), 0);
        EXPECT_FALSE(dialog.flgETX.Enabled());
        EXPECT_EQ(dialog.flgETX.BackColor(), kGrey);
        EXPECT_EQ(dialog.cbETXLength.ListIndex(), -1);
        EXPECT_EQ(dialog.lbETXEndOfMsg.Caption(), L"");
        EXPECT_FALSE(dialog.cmdAdvanced.Enabled());
        dialog.cbMessageLength.UserSelect(24);
        EXPECT_EQ(set->MessageLengthValue(), 25);

        dialog.opEndOfText.UserClick();
        EXPECT_EQ(set->MessageLengthValue(), 0);
        EXPECT_EQ(framingText(dialog.flgETX), L"[]");
        EXPECT_EQ(set->ScanETXLength(), 1);
    });
}

TEST_F(FrmProtocolScanTest, ChoosingSilenceSetsTenMillisecondsAtOnce) {
    linked();
    edit([&](frmProtocolScan& dialog) {
        dialog.opSilenceTime.UserClick();
        EXPECT_EQ(set->SilenceTimeValue(), 10);
        EXPECT_EQ(set->MessageLengthValue(), 0);
        EXPECT_EQ(dialog.cbSilenceTime.ListIndex(), 0);
        EXPECT_EQ(dialog.cbSilenceTime.List(0), L"10");
        EXPECT_TRUE(dialog.cbSilenceTime.Enabled());
        EXPECT_FALSE(dialog.cbMessageLength.Enabled());
        dialog.cbSilenceTime.UserSelect(4);
        EXPECT_EQ(set->SilenceTimeValue(), 30);
        // Back to a length forgets the silence and starts at 1.
        dialog.opMessageLength.UserClick();
        EXPECT_EQ(set->SilenceTimeValue(), 0);
        EXPECT_EQ(dialog.cbSilenceTime.ListIndex(), -1);
        EXPECT_EQ(set->MessageLengthValue(), 1);
    });
}

TEST_F(FrmProtocolScanTest, ANewETXLengthWipesTheBytesAndTheEndOfMessage) {
    linked();
    set->MessageLengthValue(0);
    set->ScanETXLength(1);
    set->SetScanETXValue(0, 0x03, false);
    set->EndOfScanMessageType(3);
    edit([&](frmProtocolScan& dialog) {
        EXPECT_EQ(dialog.lbETXEndOfMsg.Caption(), L"ETX & Checksum");
        dialog.cbETXLength.UserSelect(2);
        EXPECT_EQ(set->ScanETXLength(), 3);
        EXPECT_EQ(framingText(dialog.flgETX), L"[][][]");
        EXPECT_EQ(set->ScanETXChars()[0].Value, 0);
        EXPECT_EQ(set->EndOfScanMessageType(), 1);
        EXPECT_EQ(dialog.lbETXEndOfMsg.Caption(), L"ETX");
    });
}

TEST_F(FrmProtocolScanTest, StartOfTextIsCheckedSizedAndUnchecked) {
    linked();
    edit([&](frmProtocolScan& dialog) {
        dialog.ckSTX.UserClick();
        EXPECT_EQ(set->ScanSTXLength(), 1);
        EXPECT_TRUE(dialog.flgSTX.Enabled());
        EXPECT_EQ(dialog.cbSTXLength.ListIndex(), 0);
        EXPECT_EQ(dialog.ActiveControl(), &dialog.flgSTX);
        dialog.cbSTXLength.UserSelect(1);
        EXPECT_EQ(set->ScanSTXLength(), 2);
        type(dialog.flgSTX, L"AB");
        EXPECT_EQ(framingText(dialog.flgSTX), L"[A][B]");
        EXPECT_EQ(set->ScanSTXChars()[1].Value, 'B');
        dialog.ckSTX.UserClick();
        EXPECT_EQ(set->ScanSTXLength(), 0);
        EXPECT_EQ(set->ScanSTXChars()[0].Value, 0);
        EXPECT_FALSE(dialog.flgSTX.Enabled());
        EXPECT_EQ(dialog.flgSTX.BackColor(), kGrey);
        EXPECT_EQ(dialog.cbSTXLength.ListIndex(), -1);
    });
}

TEST_F(FrmProtocolScanTest, TheEndOfMessageButtonEditsTheFormAndShowsItsText) {
    linked();
    set->MessageLengthValue(0);
    set->ScanETXLength(1);
    set->SetScanETXValue(0, 0x03, false);
    editorHooks().EndOfMessage = [](std::shared_ptr<clsProtocolCSVar>, int32_t& type) {
        type = 2;
        return true;
    };
    edit([&](frmProtocolScan& dialog) {
        EXPECT_EQ(dialog.lbETXEndOfMsg.Caption(), L"ETX");
        dialog.cmdAdvanced.UserClick();
        EXPECT_EQ(set->EndOfScanMessageType(), 2);
        EXPECT_EQ(dialog.lbETXEndOfMsg.Caption(), L"Checksum & ETX");
    });
}

// --- OK's checks, in their order ---

TEST_F(FrmProtocolScanTest, NothingToDownloadGivesHostMessage148) {
    linked();
    edit([](frmProtocolScan& dialog) {
        dialog.cmdOK.UserClick();
        EXPECT_TRUE(dialog.Visible());
        dialog.cmdCancel.UserClick();
    });
    EXPECT_FALSE(confirmed);
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{148});
}

TEST_F(FrmProtocolScanTest, AnEmptyMessageBeforeAUsedOneGivesHostMessage144WithItsGridNumber) {
    linked();
    messages({L"", L"B"});
    edit([](frmProtocolScan& dialog) { dialog.cmdOK.UserClick(); });
    EXPECT_FALSE(confirmed);
    ASSERT_EQ(shownMessages(), std::vector<int32_t>{144});
    EXPECT_EQ(context->Messages[0].Params, std::vector<std::wstring>{L"0"});
}

TEST_F(FrmProtocolScanTest, AnEmptySTXCellGivesHostMessage149BeforeTheETXCheck) {
    linked();
    messages({L"A"});
    edit([](frmProtocolScan& dialog) {
        dialog.ckSTX.UserClick();
        dialog.cbSTXLength.UserSelect(1);
        dialog.flgSTX.UserKeyPress('x');
        dialog.opEndOfText.UserClick();
        dialog.cmdOK.UserClick();
        EXPECT_TRUE(dialog.Visible());
    });
    EXPECT_FALSE(confirmed);
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{149});
}

TEST_F(FrmProtocolScanTest, AnEmptyETXCellGivesHostMessage150) {
    linked();
    messages({L"A"});
    edit([](frmProtocolScan& dialog) {
        dialog.opEndOfText.UserClick();
        dialog.cmdOK.UserClick();
        EXPECT_TRUE(dialog.Visible());
        dialog.flgETX.UserKeyPress('#');
        dialog.cmdOK.UserClick();
    });
    EXPECT_TRUE(confirmed);
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{150});
}

TEST_F(FrmProtocolScanTest, AScanWithNoTerminatorCannotBeClosedWithOK) {
    linked();
    messages({L"A"});
    set->MessageLengthValue(0);
    edit([](frmProtocolScan& dialog) {
        for (OptionButton* option : {&dialog.opEndOfText, &dialog.opMessageLength, &dialog.opSilenceTime})
            EXPECT_FALSE(option->Value());
        dialog.cmdOK.UserClick();
        EXPECT_TRUE(dialog.Visible());
        EXPECT_FALSE(dialog.DialogResult);
        dialog.opSilenceTime.UserClick();
        dialog.cmdOK.UserClick();
    });
    EXPECT_TRUE(confirmed);
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{151});
}

TEST_F(FrmProtocolScanTest, ALongFixedTextRunGivesTheProtocolBoxLast) {
    linked();
    messages({L"A", std::wstring(256, L'x')});
    set->MessageLengthValue(0);
    edit([](frmProtocolScan& dialog) {
        dialog.cmdOK.UserClick();
        dialog.opMessageLength.UserClick();
        dialog.cmdOK.UserClick();
    });
    EXPECT_FALSE(confirmed);
    ASSERT_EQ(context->Messages.size(), 2u);
    EXPECT_EQ(context->Messages[0].Number, 151);
    const ShownMessage& box = context->Messages[1];
    EXPECT_EQ(box.Number, 0);
    EXPECT_EQ(box.Title, L"PROTOCOL");
    EXPECT_EQ(box.Text,
              L"Message number: 1 is not legal.\r\nA message segment which contains fixed text may not exceed 255 "
              L"characters.");
}

// --- The toolbar and the grid ---

TEST_F(FrmProtocolScanTest, ClearAllAsksHostMessage147AndReloadsTheGrid) {
    linked();
    messages({L"A", L"B", L"C"});
    set->MessageLengthValue(7);
    edit([&](frmProtocolScan& dialog) {
        driver.QueueAnswer(2);
        dialog.abScan.UserClickTool(tools::ID_ClearAll);
        EXPECT_EQ(dialog.FlgScan.Rows(), 3);
        dialog.abScan.UserClickTool(tools::ID_ClearAll);
        EXPECT_EQ(dialog.FlgScan.Rows(), 1);
        EXPECT_EQ(set->NumberOfMessages(), 1);
        EXPECT_EQ(set->MessageLengthValue(), 7);
    });
    EXPECT_EQ(shownMessages(), (std::vector<int32_t>{147, 147}));
    EXPECT_FALSE(static_cast<bool>(set->OnMessagesCleared));
}

TEST_F(FrmProtocolScanTest, MessageCommandsRebuildTheGridAndLeaveTheLinksAlone) {
    linked();
    messages({L"A"});
    edit([&](frmProtocolScan& dialog) {
        const std::wstring third = dialog.lbOpMessageNum.Caption();
        dialog.abScan.UserClickTool(tools::ID_AppendMsg);
        dialog.abScan.UserClickTool(tools::ID_AppendMsg);
        EXPECT_EQ(dialog.FlgScan.Rows(), 3);
        EXPECT_EQ(dialog.FlgScan.Row(), 2);
        dialog.abScan.UserClickTool(tools::ID_DeleteMsg);
        EXPECT_EQ(dialog.FlgScan.Rows(), 2);
        EXPECT_EQ(dialog.lbOpMessageNum.Caption(), third);
        EXPECT_TRUE(dialog.cmdOK.Enabled());
    });
    EXPECT_EQ(set->NumberOfMessages(), 2);
}

TEST_F(FrmProtocolScanTest, TheLengthColumnAndTheTextReachTheSet) {
    linked();
    edit([&](frmProtocolScan& dialog) {
        type(dialog.FlgScan, L"OK");
        dialog.FlgScan.UserClick(0, 1);
        dialog.FlgScan.UserDropDown();
        dialog.FlgScan.UserPickComboItem(12);
        EXPECT_EQ(dialog.FlgScan.TextMatrix(0, 1), L"12");
    });
    EXPECT_EQ(set->GetMessage(1)->MessageLength(), 12);
    EXPECT_EQ(set->GetMessage(1)->MessageString().substr(0, 3), L"OK ");
}

TEST_F(FrmProtocolScanTest, The256thMessageIsRefusedWithHostMessage154) {
    linked();
    messages(std::vector<std::wstring>(255, L"X"));
    edit([&](frmProtocolScan& dialog) {
        dialog.abScan.UserClickTool(tools::ID_AppendMsg);
        EXPECT_EQ(dialog.FlgScan.Rows(), 255);
    });
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{154});
}

// --- Closing ---

TEST_F(FrmProtocolScanTest, EscapeAndTheCloseBoxCancel) {
    linked();
    edit([](frmProtocolScan& dialog) {
        int32_t key = MessageDialog::KeyEscape;
        dialog.Form_KeyPress(key);
        EXPECT_FALSE(dialog.Visible());
    });
    EXPECT_FALSE(confirmed);
}

TEST_F(FrmProtocolScanTest, OKClosesUnloadedAndHoldingNothing) {
    linked();
    messages({L"A"});
    frmProtocolScan dialog;
    driver.QueueDialog(
        scriptFor<frmProtocolScan>([&](frmProtocolScan& shownDialog) { shownDialog.cmdOK.UserClick(); }));
    bool ok = false;
    dialog.Edit(*set, *scan, instances, ok);
    EXPECT_TRUE(ok);
    EXPECT_FALSE(dialog.IsLoaded());
    EXPECT_FALSE(static_cast<bool>(set->OnMessagesCleared));
    EXPECT_EQ(dialog.gridEditor().CurrentMessage, nullptr);
}

TEST_F(FrmProtocolScanTest, HelpShowsTheFamilysHelp) {
    linked();
    edit([](frmProtocolScan& dialog) { dialog.cmdHelp.UserClick(); });
    EXPECT_EQ(instances->HelpShown, std::vector<int32_t>{170100});
}

TEST_F(FrmProtocolScanTest, WithoutAnInstalledEditorEditRaisesError91NamingTheInstall) {
    messageEditorHooks() = MessageEditorHooks{};
    linked();
    const RuntimeError error = test::raisedError([&] { set->Edit(*scan, instances); });
    EXPECT_EQ(error.Number(), 91);
    EXPECT_NE(error.Description().find(L"installMessageEditors"), std::wstring::npos);
}

}  // namespace
}  // namespace qx
