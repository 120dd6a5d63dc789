// The TCP/IP Scan dialog driven as a person drives it: no framing and no
// terminator, the five links with the address vector of five integers, the
// chain that offers them on a fresh Scan, OK's five conditions, the checks of
// OK in their order, the way the TCP/IP Scan set reaches this dialog, and the
// operation's EditOperands through it.
#include "editors/frm_eth_protocol_scan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "framework/shared_helpers.h"
#include "platform/host/host_services.h"
#include "scan_dialog_bench.h"

namespace qx {
namespace {

using test::memoryChoice;

class FrmEthProtocolScanTest : public ::testing::Test, public test::EthScanDialogBench {
public:
    // The five links of a fresh Scan, as the person picks them when the
    // dialog offers them by itself.
    void queueFiveLinks() {
        driver.QueuePick(memoryChoice(1, 10, L"Received"));
        driver.QueuePick(memoryChoice(3, 20, L"Bytes"));
        driver.QueuePick(memoryChoice(3, 21, L"Index"));
        driver.QueuePick(memoryChoice(3, 22, L"Sender"));
        driver.QueuePick(memoryChoice(3, 30, L"Address"));
    }

    // The operation's own EditOperands with the person's actions.
    void editOperands(std::function<void(frmEthProtocolScan&)> script) {
        shown = false;
        driver.QueueDialog(
            scriptFor<frmEthProtocolScan>([this, script = std::move(script)](frmEthProtocolScan& dialog) {
                shown = true;
                script(dialog);
            }));
        scan->itfFBMethod_EditOperands();
    }

    std::vector<Label*> displays(frmEthProtocolScan& dialog) {
        return {&dialog.lbOpFail, &dialog.lblOpReceived, &dialog.lbOpMessageNum, &dialog.lbIpListIndex,
                &dialog.lbIpStartOfVector};
    }
};

// --- The form ---

TEST_F(FrmEthProtocolScanTest, TheDialogHasItsCaptionsFiveLinksAndNoFramingControls) {
    linked();
    edit([](frmEthProtocolScan& dialog) {
        EXPECT_EQ(dialog.Name(), L"frmEthProtocolScan");
        EXPECT_EQ(dialog.Caption(), L"Protocol: TCP/IP Scan");
        EXPECT_EQ(dialog.FlgScan.Name(), L"FlgScan");
        EXPECT_EQ(dialog.abScan.Name(), L"abScan");
        EXPECT_EQ(dialog.FlgScan.Cols(), 502);
        EXPECT_EQ(dialog.Label1.Caption(), L"Message Received:");
        EXPECT_EQ(dialog.Label3.Caption(), L"Number of Bytes received:");
        EXPECT_EQ(dialog.Label2.Caption(), L"Index of Received Message:");
        EXPECT_EQ(dialog.Label6.Caption(), L"Index of IP:");
        EXPECT_EQ(dialog.Label5.Caption(), L"IP Start of Vector, 5 Integers");
        for (CommandButton* link : {&dialog.cmdFailLink, &dialog.cmdOpReceived, &dialog.cmdOpMessageNum,
                                    &dialog.cmdIpListIndex, &dialog.cmdIpStartOfVector})
            EXPECT_EQ(link->ToolTipText(), L"Link Operand to Variable");
        std::vector<std::wstring> names;
        for (const Control* control : dialog.Controls()) names.push_back(control->Name());
        for (const wchar_t* framing :
             {L"ckSTX", L"cbSTXLength", L"flgSTX", L"flgETX", L"cbETXLength", L"opEndOfText", L"opMessageLength",
              L"opSilenceTime", L"cbMessageLength", L"cbSilenceTime", L"cmdAdvanced", L"lbETXEndOfMsg", L"Frame4"})
            EXPECT_EQ(std::count(names.begin(), names.end(), framing), 0) << std::wstring(framing);
        for (const wchar_t* own :
             {L"FlgScan", L"abScan", L"cbInstanceName", L"lbOpFail", L"cmdFailLink", L"lblOpReceived", L"cmdOpReceived",
              L"lbOpMessageNum", L"cmdOpMessageNum", L"lbIpListIndex", L"cmdIpListIndex", L"lbIpStartOfVector",
              L"cmdIpStartOfVector", L"cmdOK", L"cmdCancel", L"cmdHelp", L"SSPanel1"})
            EXPECT_EQ(std::count(names.begin(), names.end(), own), 1) << std::wstring(own);
    });
    EXPECT_TRUE(shown);
}

TEST_F(FrmEthProtocolScanTest, AStoredScanShowsItsFiveLinksAndOKIsOn) {
    linked();
    messages({L"A"});
    edit([&](frmEthProtocolScan& dialog) {
        const std::vector<Label*> labels = displays(dialog);
        for (int32_t k = 1; k <= 5; ++k) {
            EXPECT_EQ(labels[k - 1]->Caption(), GetOperandDisplayText(*operand(k))) << k;
            EXPECT_FALSE(labels[k - 1]->Caption().empty()) << k;
        }
        EXPECT_TRUE(dialog.cmdOK.Enabled());
        // Nothing is offered by itself when every link is made.
        EXPECT_EQ(driver.PendingPicks(), 0u);
        EXPECT_EQ(dialog.ActiveControl(), &dialog.FlgScan);
        dialog.cmdOK.UserClick();
    });
    EXPECT_TRUE(confirmed);
    EXPECT_TRUE(context->Messages.empty());
}

TEST_F(FrmEthProtocolScanTest, ANewSetHasNoMessageLengthAndTheLengthColumnStillWorks) {
    linked();
    EXPECT_EQ(set->MessageLengthValue(), 0);
    edit([&](frmEthProtocolScan& dialog) {
        type(dialog.FlgScan, L"W+");
        dialog.FlgScan.UserClick(0, 1);
        dialog.FlgScan.UserDropDown();
        dialog.FlgScan.UserPickComboItem(9);
        EXPECT_EQ(dialog.FlgScan.TextMatrix(0, 1), L"9");
        dialog.cmdOK.UserClick();
    });
    EXPECT_TRUE(confirmed);
    EXPECT_EQ(set->GetMessage(1)->MessageLength(), 9);
    EXPECT_EQ(set->GetMessage(1)->MessageString().substr(0, 3), L"W+ ");
    EXPECT_EQ(set->MessageLengthValue(), 0);
    EXPECT_EQ(set->ScanETXLength(), 0);
    EXPECT_EQ(set->SilenceTimeValue(), 0);
}

// --- The set reaches this dialog ---

TEST_F(FrmEthProtocolScanTest, TheTCPIPSetOpensThisDialogAndTheSerialSetTheSerialOne) {
    linked();
    messages({L"A"});
    EXPECT_TRUE(edit([](frmEthProtocolScan& dialog) { dialog.cmdOK.UserClick(); }));

    clsProtocolScanSrv serial;
    bool serialShown = false;
    driver.QueueDialog(scriptFor<frmProtocolScan>([&](frmProtocolScan& dialog) {
        serialShown = true;
        dialog.cmdCancel.UserClick();
    }));
    EXPECT_FALSE(serial.Edit(*scan, instances));
    EXPECT_TRUE(serialShown);
    EXPECT_EQ(driver.PendingDialogs(), 0u);
}

TEST_F(FrmEthProtocolScanTest, WithoutAnEditorTheTCPIPSetRaises91NamingItsHook) {
    linked();
    messageEditorHooks().EthScanEdit = nullptr;
    const RuntimeError error = test::raisedError([&] { set->Edit(*scan, instances); });
    EXPECT_EQ(error.Number(), 91);
    EXPECT_NE(error.Description().find(L"installMessageEditors()"), std::wstring::npos);
    EXPECT_NE(error.Description().find(L"EthScanEdit"), std::wstring::npos);
    EXPECT_NE(error.Description().find(L"TCP/IP Scan dialog"), std::wstring::npos);
    EXPECT_EQ(driver.PendingDialogs(), 0u);
}

TEST_F(FrmEthProtocolScanTest, InstallMessageEditorsKeepsAHostsOwnTCPIPScanEditor) {
    linked();
    int32_t calls = 0;
    messageEditorHooks().EthScanEdit = [&](clsEthProtocolScanSrv&, itfFBMethod&, InstancesPtr, bool& pConfirmed) {
        ++calls;
        pConfirmed = true;
    };
    installMessageEditors();
    EXPECT_TRUE(set->Edit(*scan, instances));
    EXPECT_EQ(calls, 1);
}

TEST_F(FrmEthProtocolScanTest, WithoutInstancesHostMessage140IsShownAndNothingIsPicked) {
    makeNew();
    queueFiveLinks();
    EXPECT_FALSE(edit([](frmEthProtocolScan&) {}));
    EXPECT_FALSE(shown);
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{140});
    EXPECT_EQ(driver.PendingPicks(), 5u);
}

// --- The first activation ---

TEST_F(FrmEthProtocolScanTest, ANewScanOffersItsFiveLinksInOrderAndTheVectorReservesFive) {
    fresh();
    driver.QueuePick(memoryChoice(1, 10));
    driver.QueuePick(memoryChoice(3, 20));
    driver.QueuePick(memoryChoice(3, 21));
    driver.QueuePick(memoryChoice(3, 22));
    int32_t vectorAtPick = 0;
    driver.QueuePick([&](clsOperand& picked) {
        vectorAtPick = picked.OperandVectorLength();
        test::linkOperand(picked, 3, 30);
        return true;
    });
    edit([&](frmEthProtocolScan& dialog) {
        EXPECT_EQ(driver.PendingPicks(), 0u);
        EXPECT_FALSE(dialog.FirstActivation);
        const std::vector<int32_t> addresses{10, 20, 21, 22, 30};
        const std::vector<Label*> labels = displays(dialog);
        for (int32_t k = 1; k <= 5; ++k) {
            EXPECT_EQ(operand(k)->OperandAddress(), addresses[k - 1]) << k;
            EXPECT_EQ(labels[k - 1]->Caption(), GetOperandDisplayText(*operand(k))) << k;
        }
        EXPECT_TRUE(dialog.cmdOK.Enabled());
        EXPECT_EQ(dialog.ActiveControl(), &dialog.FlgScan);
        // Coming to the front again offers nothing.
        driver.QueuePick(memoryChoice(1, 99));
        dialog.Activate();
        EXPECT_EQ(driver.PendingPicks(), 1u);
        EXPECT_EQ(operand(1)->OperandAddress(), 10);
    });
    EXPECT_EQ(vectorAtPick, frmEthProtocolScan::AddressVectorLength);
    EXPECT_EQ(operand(5)->OperandVectorLength(), 5);
    // The other links are single integers.
    for (int32_t k = 1; k <= 4; ++k) EXPECT_EQ(operand(k)->OperandVectorLength(), 1) << k;
}

TEST_F(FrmEthProtocolScanTest, CancelingThePickerAtItemThreeEndsTheChainAndOKStaysOff) {
    fresh();
    driver.QueuePick(memoryChoice(1, 10));
    driver.QueuePick(memoryChoice(3, 20));
    driver.QueuePickCancel();
    driver.QueuePick(memoryChoice(3, 22));
    driver.QueuePick(memoryChoice(3, 30));
    edit([&](frmEthProtocolScan& dialog) {
        // Items 4 and 5 were never asked for.
        EXPECT_EQ(driver.PendingPicks(), 2u);
        EXPECT_FALSE(operand(1)->IsNew());
        EXPECT_FALSE(operand(2)->IsNew());
        for (int32_t k = 3; k <= 5; ++k) EXPECT_TRUE(operand(k)->IsNew()) << k;
        EXPECT_FALSE(dialog.cmdOK.Enabled());
        EXPECT_TRUE(dialog.lbIpListIndex.Caption().empty());
        EXPECT_TRUE(dialog.lbIpStartOfVector.Caption().empty());
        // A later activation does nothing at all.
        dialog.cmdHelp.SetFocus();
        dialog.Activate();
        EXPECT_EQ(driver.PendingPicks(), 2u);
        EXPECT_EQ(dialog.ActiveControl(), &dialog.cmdHelp);
    });
}

TEST_F(FrmEthProtocolScanTest, WithOneLinkMadeTheChainDoesNotRunAndEachActivationFocusesTheGrid) {
    fresh();
    test::linkOperand(*operand(4), 3, 22);
    driver.QueuePick(memoryChoice(1, 10));
    edit([&](frmEthProtocolScan& dialog) {
        EXPECT_EQ(driver.PendingPicks(), 1u);
        EXPECT_TRUE(dialog.FirstActivation);
        EXPECT_EQ(dialog.ActiveControl(), &dialog.FlgScan);
        dialog.cmdHelp.SetFocus();
        dialog.Activate();
        EXPECT_EQ(dialog.ActiveControl(), &dialog.FlgScan);
        EXPECT_FALSE(dialog.cmdOK.Enabled());
    });
}

// --- Links and OK's conditions ---

TEST_F(FrmEthProtocolScanTest, OKWaitsForEachOfTheFiveLinks) {
    linked();
    for (int32_t open = 1; open <= 5; ++open) {
        operand(open)->IsNew(true);
        edit([&](frmEthProtocolScan& dialog) {
            EXPECT_EQ(dialog.cbInstanceName.ListIndex(), 0) << open;
            EXPECT_FALSE(dialog.cmdOK.Enabled()) << open;
            // The chain needs all five open; one open item is linked by hand.
            EXPECT_TRUE(dialog.FirstActivation) << open;
            driver.QueuePick(memoryChoice(open == 1 ? 1 : 3, 40 + open));
            displays(dialog)[open - 1]->UserDoubleClick();
            EXPECT_TRUE(dialog.cmdOK.Enabled()) << open;
        });
    }
}

TEST_F(FrmEthProtocolScanTest, EachOpenLinkIsNamedByItsCaptionWhileOKIsOff) {
    linked();
    std::vector<std::wstring> problems;
    for (int32_t open = 1; open <= 5; ++open) {
        operand(open)->IsNew(true);
        edit([&](frmEthProtocolScan& dialog) {
            problems.push_back(dialog.inputProblem());
            driver.QueuePick(memoryChoice(open == 1 ? 1 : 3, 40 + open));
            displays(dialog)[open - 1]->UserDoubleClick();
            EXPECT_EQ(dialog.inputProblem(), L"") << open;
        });
    }
    EXPECT_EQ(problems, (std::vector<std::wstring>{L"\"Message Received\" must be linked: press ...",
                                                   L"\"Number of Bytes received\" must be linked: press ...",
                                                   L"\"Index of Received Message\" must be linked: press ...",
                                                   L"\"Index of IP\" must be linked: press ...",
                                                   L"\"IP Start of Vector, 5 Integers\" must be linked: press ..."}));
}

TEST_F(FrmEthProtocolScanTest, EachLinkIsReachedByItsButtonAndByItsLabel) {
    linked();
    edit([&](frmEthProtocolScan& dialog) {
        const std::vector<CommandButton*> buttons{&dialog.cmdFailLink, &dialog.cmdOpReceived, &dialog.cmdOpMessageNum,
                                                  &dialog.cmdIpListIndex, &dialog.cmdIpStartOfVector};
        const std::vector<Label*> labels = displays(dialog);
        for (int32_t k = 1; k <= 5; ++k) {
            const int32_t type = k == 1 ? 1 : 3;
            driver.QueuePick(memoryChoice(type, 100 + 10 * k));
            buttons[k - 1]->UserClick();
            EXPECT_EQ(operand(k)->OperandAddress(), 100 + 10 * k) << k;
            driver.QueuePick(memoryChoice(type, 200 + 10 * k));
            labels[k - 1]->UserDoubleClick();
            EXPECT_EQ(operand(k)->OperandAddress(), 200 + 10 * k) << k;
            EXPECT_EQ(labels[k - 1]->Caption(), GetOperandDisplayText(*operand(k))) << k;
        }
        EXPECT_EQ(driver.PendingPicks(), 0u);
    });
}

TEST_F(FrmEthProtocolScanTest, LinkingTheAddressVectorTwiceSetsItsLengthBothTimes) {
    linked();
    edit([&](frmEthProtocolScan& dialog) {
        std::vector<int32_t> lengths;
        const auto pickAt = [&](int32_t address) {
            driver.QueuePick([&lengths, address](clsOperand& picked) {
                lengths.push_back(picked.OperandVectorLength());
                test::linkOperand(picked, 3, address);
                // The picker may change it; the next link must set it again.
                picked.OperandVectorLength(1);
                return true;
            });
        };
        pickAt(40);
        dialog.cmdIpStartOfVector.UserClick();
        pickAt(50);
        dialog.lbIpStartOfVector.UserDoubleClick();
        EXPECT_EQ(lengths, (std::vector<int32_t>{5, 5}));
        EXPECT_EQ(operand(5)->OperandAddress(), 50);
    });
}

TEST_F(FrmEthProtocolScanTest, ACanceledPickKeepsTheLabelAndTheLink) {
    linked();
    edit([&](frmEthProtocolScan& dialog) {
        const std::wstring before = dialog.lbIpListIndex.Caption();
        driver.QueuePickCancel();
        dialog.cmdIpListIndex.UserClick();
        EXPECT_EQ(dialog.lbIpListIndex.Caption(), before);
        EXPECT_EQ(operand(4)->OperandAddress(), 22);
        EXPECT_TRUE(dialog.cmdOK.Enabled());
    });
}

// --- OK ---

TEST_F(FrmEthProtocolScanTest, NothingToDownloadGivesHostMessage148) {
    linked();
    edit([](frmEthProtocolScan& dialog) {
        dialog.cmdOK.UserClick();
        EXPECT_TRUE(dialog.Visible());
        dialog.cmdCancel.UserClick();
    });
    EXPECT_FALSE(confirmed);
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{148});
}

TEST_F(FrmEthProtocolScanTest, AnEmptyMessageBeforeAUsedOneGivesHostMessage144WithItsGridNumber) {
    linked();
    messages({L"A", L"", L"C"});
    edit([](frmEthProtocolScan& dialog) { dialog.cmdOK.UserClick(); });
    EXPECT_FALSE(confirmed);
    ASSERT_EQ(shownMessages(), std::vector<int32_t>{144});
    EXPECT_EQ(context->Messages[0].Params, std::vector<std::wstring>{L"1"});
}

TEST_F(FrmEthProtocolScanTest, NoTerminatorIsAskedForAndALongFixedTextRunGivesTheProtocolBox) {
    linked();
    messages({L"A", std::wstring(256, L'x')});
    edit([](frmEthProtocolScan& dialog) { dialog.cmdOK.UserClick(); });
    EXPECT_FALSE(confirmed);
    ASSERT_EQ(context->Messages.size(), 1u);
    const ShownMessage& box = context->Messages[0];
    EXPECT_EQ(box.Number, 0);
    EXPECT_EQ(box.Title, L"PROTOCOL");
    // The box counts messages as the grid's rows do, from 0.
    EXPECT_EQ(box.Text,
              L"Message number: 1 is not legal.\r\nA message segment which contains fixed text may not exceed 255 "
              L"characters.");
}

TEST_F(FrmEthProtocolScanTest, ClearAllAsksHostMessage147AndReloadsTheGrid) {
    linked();
    messages({L"A", L"B"});
    edit([&](frmEthProtocolScan& dialog) {
        dialog.abScan.UserClickTool(tools::ID_ClearAll);
        EXPECT_EQ(dialog.FlgScan.Rows(), 1);
        EXPECT_EQ(set->NumberOfMessages(), 1);
    });
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{147});
    EXPECT_FALSE(static_cast<bool>(set->OnMessagesCleared));
}

TEST_F(FrmEthProtocolScanTest, HelpShowsTheFamilysHelp) {
    linked();
    edit([](frmEthProtocolScan& dialog) { dialog.cmdHelp.UserClick(); });
    EXPECT_EQ(instances->HelpShown, std::vector<int32_t>{170200});
}

// --- EditOperands of the TCP/IP Scan operation ---

TEST_F(FrmEthProtocolScanTest, ANewScanConfirmedWritesTheImageOfWhatWasTypedAndLinksItsFiveOperands) {
    const int32_t config = fresh();
    queueFiveLinks();
    editOperands([](frmEthProtocolScan& dialog) {
        type(dialog.FlgScan, L"ACK");
        dialog.cmdOK.UserClick();
    });
    EXPECT_TRUE(shown);
    EXPECT_FALSE(scan->itfFBMethod_IsCanceled());
    EXPECT_FALSE(scan->itfFBMethod_IsNew());
    EXPECT_EQ(scan->itfFBMethod_FatherInstanceNum(), config);
    EXPECT_EQ(operand(5)->OperandAddress(), 30);
    EXPECT_EQ(operand(5)->OperandVectorLength(), 5);

    clsEthProtocolScanSrv direct;
    direct.GetMessage(1)->MessageString(padded(L"ACK"));
    EXPECT_EQ(scan->itfFBMethod_BinaryOperands(), direct.BinaryData());
    EXPECT_EQ(scan->itfFBMethod_OperandsForFindOnly()->Count(), 0);
    // The block shows items 1 and 3 only.
    EXPECT_EQ(scan->itfFBMethod_VisbleOutOperands()->Count(), 2);
    EXPECT_EQ(scan->itfFBMethod_OutOperands()->Count(), 5);
}

TEST_F(FrmEthProtocolScanTest, CancelKeepsTheImageByteForByteAndTheLinksMadeInTheDialog) {
    clsEthProtocolScanSrv stored;
    stored.GetMessage(1)->MessageString(padded(L"PING"));
    const Bytes image = stored.BinaryData();
    reopenWith(test::storedOperands({test::linkedOperand(1, 10), test::linkedOperand(3, 20), test::linkedOperand(3, 21),
                                     test::linkedOperand(3, 22), test::linkedOperand(3, 30)}),
               image);
    EXPECT_FALSE(scan->itfFBMethod_IsNew());
    editOperands([&](frmEthProtocolScan& dialog) {
        EXPECT_EQ(dialog.FlgScan.TextMatrix(0, 2), L"P");
        type(dialog.FlgScan, L"XYZ");
        driver.QueuePick(memoryChoice(3, 60));
        dialog.cmdIpStartOfVector.UserClick();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_TRUE(scan->itfFBMethod_IsCanceled());
    EXPECT_EQ(scan->itfFBMethod_BinaryOperands(), image);
    EXPECT_EQ(operand(5)->OperandAddress(), 60);
}

TEST_F(FrmEthProtocolScanTest, WithoutInstancesTheEditIsCanceledAndNoDialogIsShown) {
    makeNew();
    editOperands([](frmEthProtocolScan&) {});
    EXPECT_FALSE(shown);
    EXPECT_TRUE(scan->itfFBMethod_IsCanceled());
    EXPECT_TRUE(scan->itfFBMethod_IsNew());
    EXPECT_TRUE(scan->itfFBMethod_BinaryOperands().empty());
    EXPECT_EQ(shownMessages(), std::vector<int32_t>{140});
}

}  // namespace
}  // namespace qx
