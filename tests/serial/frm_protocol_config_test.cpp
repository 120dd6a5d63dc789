#include "serial/frm_protocol_config.h"

#include <gtest/gtest.h>

#include "framework/shared_helpers.h"
#include "serial/config_bench.h"

namespace qx {
namespace {

using testing_config::ConfigBench;
using testing_config::memoryChoice;

class FrmProtocolConfigTest : public ::testing::Test {
protected:
    ConfigBench bench;

    // Runs an edit of a Config of a stored project with the given person's actions.
    void editExisting(std::function<void(frmProtocolConfig&)> script, const Bytes& image = Bytes{0x01, 0x00}) {
        bench.reopen(L"Line1", image);
        bench.onDialog(std::move(script));
        bench.config->itfFBMethod_EditOperands();
    }
    bool accepted() { return !bench.config->itfFBMethod_IsCanceled(); }
    std::vector<int32_t> messageNumbers() {
        std::vector<int32_t> numbers;
        for (const auto& message : bench.context->Messages) numbers.push_back(message.Number);
        return numbers;
    }
};

// --- Load ---

TEST_F(FrmProtocolConfigTest, LoadFillsTheFormAndItsControls) {
    bench.context->AppFont = qx::Font{L"Segoe UI", 9};
    bench.context->NameLimits[22] = 12;
    editExisting([](frmProtocolConfig& dialog) {
        EXPECT_EQ(dialog.Caption(), L"Protocol Configuration");
        EXPECT_NE(dialog.Icon(), nullptr);
        EXPECT_EQ(dialog.Font().Name, L"Segoe UI");
        EXPECT_EQ(dialog.txtInstanceName.Font().Name, L"Segoe UI");
        EXPECT_EQ(dialog.cmdHelp.Font().Name, L"Segoe UI");
        EXPECT_TRUE(dialog.KeyPreview());
        ASSERT_EQ(dialog.cbComport.ListCount(), 3);
        EXPECT_EQ(dialog.cbComport.List(0), L"COM1");
        EXPECT_EQ(dialog.cbComport.List(1), L"COM2");
        EXPECT_EQ(dialog.cbComport.List(2), L"COM3");
        EXPECT_EQ(dialog.cbComport.ItemData(0), 1);
        EXPECT_EQ(dialog.cbComport.ItemData(1), 2);
        EXPECT_EQ(dialog.cbComport.ItemData(2), 3);
        EXPECT_EQ(dialog.txtInstanceName.Text(), L"Line1");
        EXPECT_EQ(dialog.txtInstanceName.MaxLength(), 12);
        EXPECT_EQ(dialog.lblName.Caption(), L"Name :");
        EXPECT_EQ(dialog.lblComport.Caption(), L"Com Port :");
        EXPECT_EQ(dialog.lblOpFail.Caption(), L"Function in progress :");
        EXPECT_EQ(dialog.lblStatusOp.Caption(), L"Status :");
        EXPECT_EQ(dialog.cmdFailLink.ToolTipText(), L"Link Operand to Variable");
        EXPECT_EQ(dialog.cmdStatusOp.ToolTipText(), L"Link Operand to Variable");
        EXPECT_EQ(dialog.cmdCancel.Caption(), L"Cancel");
        EXPECT_EQ(dialog.cmdHelp.Caption(), L"Help");
        EXPECT_FALSE(dialog.IsLoading);
    });
}

TEST_F(FrmProtocolConfigTest, LabelsShowTheLinkedOperands) {
    std::wstring fail, status;
    editExisting([&](frmProtocolConfig& dialog) {
        fail = dialog.lbOpFail.Caption();
        status = dialog.lbStatusOp.Caption();
    });
    EXPECT_EQ(fail, GetOperandDisplayText(*bench.operand(1)));
    EXPECT_EQ(status, GetOperandDisplayText(*bench.operand(2)));
    EXPECT_FALSE(fail.empty());
}

TEST_F(FrmProtocolConfigTest, ANewConfigShowsPortCom1) {
    bench.makeNew();
    std::wstring port;
    bench.onDialog([&](frmProtocolConfig& dialog) { port = dialog.cbComport.Text(); });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_EQ(port, L"COM1");
}

TEST_F(FrmProtocolConfigTest, ImageOfPortTwoSelectsCom2AndIsWrittenBackTheSame) {
    int32_t index = -1;
    editExisting(
        [&](frmProtocolConfig& dialog) {
            index = dialog.cbComport.ListIndex();
            dialog.cmdOk.UserClick();
        },
        Bytes{0x02, 0x00});
    EXPECT_EQ(index, 1);
    EXPECT_TRUE(accepted());
    EXPECT_EQ(bench.config->itfFBMethod_BinaryOperands(), (Bytes{0x02, 0x00}));
}

TEST_F(FrmProtocolConfigTest, UnknownPortSelectsTheFirstItemButStaysUntilAClick) {
    std::wstring port;
    editExisting(
        [&](frmProtocolConfig& dialog) {
            port = dialog.cbComport.Text();
            dialog.cmdOk.UserClick();
        },
        Bytes{0x09, 0x00});
    EXPECT_EQ(port, L"COM1");
    EXPECT_EQ(bench.config->itfFBMethod_BinaryOperands(), (Bytes{0x09, 0x00}));
}

TEST_F(FrmProtocolConfigTest, ClickingTheShownFirstItemStoresItsPort) {
    editExisting(
        [](frmProtocolConfig& dialog) {
            dialog.cbComport.UserSelect(0);
            dialog.cmdOk.UserClick();
        },
        Bytes{0x09, 0x00});
    EXPECT_EQ(bench.config->itfFBMethod_BinaryOperands(), (Bytes{0x01, 0x00}));
}

TEST_F(FrmProtocolConfigTest, ChoosingAPortStoresItsItemData) {
    editExisting([](frmProtocolConfig& dialog) {
        dialog.cbComport.UserSelect(2);
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(bench.config->itfFBMethod_BinaryOperands(), (Bytes{0x03, 0x00}));
}

TEST_F(FrmProtocolConfigTest, StoredNameWithAForbiddenCharacterIsShownAsItIs) {
    int32_t number = bench.instances->Seed(L"Old|Name");
    bench.reopen(L"unused", Bytes{1, 0});
    bench.config->itfFBMethod_FatherInstanceNum(number);
    std::wstring shown;
    bench.onDialog([&](frmProtocolConfig& dialog) { shown = dialog.txtInstanceName.Text(); });
    bench.config->itfFBMethod_EditOperands();
    // The guard is on while the dialog fills itself.
    EXPECT_EQ(shown, L"Old|Name");
    EXPECT_EQ(bench.context->BeepCount, 0);
}

// --- Operands ---

TEST_F(FrmProtocolConfigTest, FirstActivationWalksANewConfigThroughBothLinks) {
    bench.makeNew();
    bench.driver.QueuePick(memoryChoice(1, 100, L"Busy"));
    bench.driver.QueuePick(memoryChoice(3, 200, L"State"));
    bool okEnabled = false;
    std::wstring fail, status;
    bench.onDialog([&](frmProtocolConfig& dialog) {
        okEnabled = dialog.cmdOk.Enabled();
        fail = dialog.lbOpFail.Caption();
        status = dialog.lbStatusOp.Caption();
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_EQ(bench.driver.PendingPicks(), 0u);
    EXPECT_TRUE(okEnabled);
    EXPECT_EQ(fail, GetOperandDisplayText(*bench.operand(1)));
    EXPECT_EQ(status, GetOperandDisplayText(*bench.operand(2)));
    EXPECT_EQ(bench.operand(1)->OperandAddress(), 100);
    EXPECT_EQ(bench.operand(2)->OperandAddress(), 200);
}

TEST_F(FrmProtocolConfigTest, CanceledFirstPickSkipsTheSecond) {
    bench.makeNew();
    bench.driver.QueuePickCancel();
    bench.driver.QueuePick(memoryChoice(3, 200, L"State"));
    bool okEnabled = true;
    bench.onDialog([&](frmProtocolConfig& dialog) { okEnabled = dialog.cmdOk.Enabled(); });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_EQ(bench.driver.PendingPicks(), 1u);
    EXPECT_FALSE(okEnabled);
    EXPECT_TRUE(bench.operand(2)->IsNew());
}

TEST_F(FrmProtocolConfigTest, NoWalkWhenAnOperandIsAlreadyLinked) {
    bench.driver.QueuePick(memoryChoice(1, 100, L"Busy"));
    editExisting([](frmProtocolConfig&) {});
    EXPECT_EQ(bench.driver.PendingPicks(), 1u);
}

TEST_F(FrmProtocolConfigTest, TheWalkRunsOnTheFirstActivationOnly) {
    bench.makeNew();
    bench.driver.QueuePickCancel();
    bench.driver.QueuePick(memoryChoice(1, 100, L"Busy"));
    bench.onDialog([](frmProtocolConfig& dialog) { dialog.Activate(); });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_EQ(bench.driver.PendingPicks(), 1u);
}

TEST_F(FrmProtocolConfigTest, OkStaysDisabledUntilBothOperandsAreLinked) {
    bench.makeNew();
    bench.driver.QueuePickCancel();  // the walk at activation
    std::vector<bool> okStates;
    bench.onDialog([&](frmProtocolConfig& dialog) {
        okStates.push_back(dialog.cmdOk.Enabled());
        dialog.cmdOk.UserClick();  // does nothing while disabled
        okStates.push_back(dialog.Visible());
        bench.driver.QueuePick(memoryChoice(1, 100, L"Busy"));
        dialog.cmdFailLink.UserClick();
        okStates.push_back(dialog.cmdOk.Enabled());
        bench.driver.QueuePick(memoryChoice(3, 200, L"State"));
        dialog.cmdStatusOp.UserClick();
        okStates.push_back(dialog.cmdOk.Enabled());
        dialog.cmdOk.UserClick();
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_EQ(okStates, (std::vector<bool>{false, true, false, true}));
    EXPECT_TRUE(accepted());
    EXPECT_TRUE(bench.context->Messages.empty());
}

TEST_F(FrmProtocolConfigTest, EachReasonOkIsOffOrRefusesIsNamedUntilAllIsWell) {
    bench.makeNew();
    bench.driver.QueuePickCancel();  // the walk at activation
    std::vector<std::wstring> problems;
    std::vector<bool> okStates;
    bench.onDialog([&](frmProtocolConfig& dialog) {
        problems.push_back(dialog.inputProblem());
        okStates.push_back(dialog.cmdOk.Enabled());
        bench.driver.QueuePick(memoryChoice(1, 100, L"Busy"));
        dialog.cmdFailLink.UserClick();
        problems.push_back(dialog.inputProblem());
        okStates.push_back(dialog.cmdOk.Enabled());
        bench.driver.QueuePick(memoryChoice(3, 200, L"State"));
        dialog.cmdStatusOp.UserClick();
        problems.push_back(dialog.inputProblem());
        okStates.push_back(dialog.cmdOk.Enabled());
        // OK is on, but refuses an empty name with its message.
        dialog.txtInstanceName.UserType(L"");
        problems.push_back(dialog.inputProblem());
        dialog.txtInstanceName.UserType(L"Line");
        problems.push_back(dialog.inputProblem());
        dialog.cmdOk.UserClick();
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_EQ(problems, (std::vector<std::wstring>{L"\"Function in progress\" must be linked: press ...",
                                                   L"\"Status\" must be linked: press ...", L"",
                                                   L"Name must not be empty", L""}));
    EXPECT_EQ(okStates, (std::vector<bool>{false, false, true}));
    EXPECT_TRUE(accepted());
}

TEST_F(FrmProtocolConfigTest, ClickingTheLabelsLinksTheOperandsToo) {
    bench.makeNew();
    bench.driver.QueuePickCancel();
    std::wstring fail, status;
    bench.onDialog([&](frmProtocolConfig& dialog) {
        bench.driver.QueuePick(memoryChoice(1, 5, L"Busy"));
        dialog.lbOpFail.UserClick();
        bench.driver.QueuePick(memoryChoice(3, 6, L"State"));
        dialog.lbStatusOp.UserClick();
        fail = dialog.lbOpFail.Caption();
        status = dialog.lbStatusOp.Caption();
        dialog.cmdOk.UserClick();
    });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_TRUE(accepted());
    EXPECT_EQ(bench.operand(1)->OperandAddress(), 5);
    EXPECT_EQ(bench.operand(2)->OperandAddress(), 6);
    EXPECT_EQ(fail, GetOperandDisplayText(*bench.operand(1)));
    EXPECT_EQ(status, GetOperandDisplayText(*bench.operand(2)));
}

TEST_F(FrmProtocolConfigTest, CanceledPickerLeavesTheLabelAsItWas) {
    std::wstring before, after;
    editExisting([&](frmProtocolConfig& dialog) {
        before = dialog.lbStatusOp.Caption();
        bench.driver.QueuePickCancel();
        dialog.cmdStatusOp.UserClick();
        after = dialog.lbStatusOp.Caption();
    });
    EXPECT_EQ(after, before);
    EXPECT_EQ(bench.operand(2)->OperandAddress(), 20);
}

// --- Name ---

class ForbiddenCharacter : public FrmProtocolConfigTest, public ::testing::WithParamInterface<wchar_t> {};

TEST_P(ForbiddenCharacter, PastingATextThatHoldsItEmptiesTheField) {
    std::wstring pasted = std::wstring(L"ab") + GetParam() + L"cd";
    std::wstring after;
    editExisting([&](frmProtocolConfig& dialog) {
        dialog.txtInstanceName.SelStart(5);
        dialog.txtInstanceName.UserPaste(pasted);
        after = dialog.txtInstanceName.Text();
    });
    EXPECT_EQ(after, L"");
    EXPECT_EQ(bench.context->BeepCount, 1);
}

TEST_P(ForbiddenCharacter, TypingItLosesTheWholeInput) {
    std::wstring after;
    editExisting([&](frmProtocolConfig& dialog) {
        dialog.txtInstanceName.SelStart(5);
        dialog.txtInstanceName.UserKeyPress(static_cast<int32_t>(GetParam()));
        after = dialog.txtInstanceName.Text();
    });
    EXPECT_EQ(after, L"");
    EXPECT_EQ(bench.context->BeepCount, 1);
}

INSTANTIATE_TEST_SUITE_P(ApostropheTildePipeQuote, ForbiddenCharacter, ::testing::Values(L'\'', L'~', L'|', L'"'));

TEST_F(FrmProtocolConfigTest, TypingGoesOnAfterTheFieldWasCleared) {
    std::wstring after;
    editExisting([&](frmProtocolConfig& dialog) {
        dialog.txtInstanceName.UserType(L"ab~cd");
        after = dialog.txtInstanceName.Text();
    });
    EXPECT_EQ(after, L"cd");
    EXPECT_EQ(bench.context->BeepCount, 1);
}

TEST_F(FrmProtocolConfigTest, OrdinaryTextIsKeptWithoutABeep) {
    std::wstring after;
    editExisting([&](frmProtocolConfig& dialog) {
        dialog.txtInstanceName.UserSelectAll();
        dialog.txtInstanceName.UserPaste(L"Line 2-b");
        after = dialog.txtInstanceName.Text();
    });
    EXPECT_EQ(after, L"Line 2-b");
    EXPECT_EQ(bench.context->BeepCount, 0);
}

TEST_F(FrmProtocolConfigTest, TypedNameIsCutAtTheInstanceNameLimit) {
    bench.context->NameLimits[22] = 6;
    std::wstring after;
    editExisting([&](frmProtocolConfig& dialog) {
        dialog.txtInstanceName.UserType(L"ABCDEFGHIJ");
        after = dialog.txtInstanceName.Text();
    });
    EXPECT_EQ(after, L"ABCDEF");
}

TEST_F(FrmProtocolConfigTest, EmptyNameShowsMessage152AndTheDialogStays) {
    bool stillOpen = false;
    editExisting([&](frmProtocolConfig& dialog) {
        dialog.txtInstanceName.UserType(L"");
        dialog.cmdOk.UserClick();
        stillOpen = dialog.Visible();
        dialog.txtInstanceName.UserType(L"Line9");
        dialog.cmdOk.UserClick();
    });
    EXPECT_TRUE(stillOpen);
    EXPECT_EQ(messageNumbers(), std::vector<int32_t>{152});
    EXPECT_TRUE(accepted());
    std::wstring stored;
    bench.instances->GetInstanceName(bench.config->itfFBMethod_FatherInstanceNum(), stored);
    EXPECT_EQ(stored, L"Line9");
}

TEST_F(FrmProtocolConfigTest, NameOfAnotherInstanceShowsMessage153AndTheDialogStays) {
    bench.instances->Seed(L"Taken");
    bool stillOpen = false;
    editExisting([&](frmProtocolConfig& dialog) {
        dialog.txtInstanceName.UserType(L"Taken");
        dialog.cmdOk.UserClick();
        stillOpen = dialog.Visible();
    });
    EXPECT_TRUE(stillOpen);
    EXPECT_EQ(messageNumbers(), std::vector<int32_t>{153});
    EXPECT_FALSE(accepted());
}

TEST_F(FrmProtocolConfigTest, RenamingToItsOwnNameIsLegal) {
    bench.instances->Seed(L"Other");
    editExisting([](frmProtocolConfig& dialog) {
        dialog.txtInstanceName.UserType(L"Line1");
        dialog.cmdOk.UserClick();
    });
    EXPECT_TRUE(accepted());
    EXPECT_TRUE(bench.context->Messages.empty());
}

TEST_F(FrmProtocolConfigTest, NamesDifferingInCaseAreDifferentNames) {
    bench.instances->Seed(L"Taken");
    editExisting([](frmProtocolConfig& dialog) {
        dialog.txtInstanceName.UserType(L"TAKEN");
        dialog.cmdOk.UserClick();
    });
    EXPECT_TRUE(accepted());
    EXPECT_TRUE(bench.context->Messages.empty());
}

TEST_F(FrmProtocolConfigTest, NameIsLegalWhenTheHostHasNoInstances) {
    // A Config whose instance the host no longer lists.
    bench.reopen(L"Line1", Bytes{1, 0});
    bench.instances->DeleteInstance(1);
    bench.onDialog([](frmProtocolConfig& dialog) { dialog.cmdOk.UserClick(); });
    bench.config->itfFBMethod_EditOperands();
    EXPECT_TRUE(accepted());
    EXPECT_TRUE(bench.context->Messages.empty());
}

// --- Ending the dialog ---

TEST_F(FrmProtocolConfigTest, CancelButtonEndsWithFalse) {
    editExisting([](frmProtocolConfig& dialog) { dialog.cmdCancel.UserClick(); });
    EXPECT_FALSE(accepted());
}

TEST_F(FrmProtocolConfigTest, EscapeEndsWithFalseFromAnyControl) {
    bool hidden = false;
    editExisting([&](frmProtocolConfig& dialog) {
        dialog.txtInstanceName.UserType(L"New");
        dialog.txtInstanceName.UserKeyPress(27);
        hidden = !dialog.Visible();
    });
    EXPECT_TRUE(hidden);
    EXPECT_FALSE(accepted());
    std::wstring stored;
    bench.instances->GetInstanceName(1, stored);
    EXPECT_EQ(stored, L"Line1");
}

TEST_F(FrmProtocolConfigTest, EscapeOnTheFormItselfEndsWithFalse) {
    bool hidden = false;
    editExisting([&](frmProtocolConfig& dialog) {
        dialog.UserKeyPress(27);
        hidden = !dialog.Visible();
    });
    EXPECT_TRUE(hidden);
    EXPECT_FALSE(accepted());
}

TEST_F(FrmProtocolConfigTest, ControlBoxEndsWithFalse) {
    bool hidden = false;
    editExisting([&](frmProtocolConfig& dialog) {
        dialog.cbComport.UserSelect(2);
        dialog.UserClose();
        hidden = !dialog.Visible();
    });
    EXPECT_TRUE(hidden);
    EXPECT_FALSE(accepted());
    EXPECT_EQ(bench.config->itfFBMethod_BinaryOperands(), (Bytes{0x01, 0x00}));
}

TEST_F(FrmProtocolConfigTest, HelpShowsTheFamilysHelp) {
    editExisting([](frmProtocolConfig& dialog) {
        dialog.cmdHelp.UserClick();
        EXPECT_TRUE(dialog.Visible());
    });
    EXPECT_EQ(bench.instances->HelpShown, std::vector<int32_t>{170100});
}

TEST_F(FrmProtocolConfigTest, DialogIsUnloadedAfterTheEdit) {
    frmProtocolConfig* seen = nullptr;
    bool loadedAtEnd = true;
    editExisting([&](frmProtocolConfig& dialog) {
        seen = &dialog;
        dialog.Subscribe([&](std::string_view property) {
            if (property == "Loaded") loadedAtEnd = dialog.IsLoaded();
        });
        dialog.cmdOk.UserClick();
    });
    ASSERT_NE(seen, nullptr);
    EXPECT_FALSE(loadedAtEnd);
}

}  // namespace
}  // namespace qx
