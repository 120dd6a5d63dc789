// The Send advanced dialog driven as a person would, through EditAdvanced of
// the serial Send set: opening with the copy off and on, the check box and
// its deliberately loose tie to OK, the format list by the destination's
// type, both links by button and by double-click, and the ways out with what
// they leave in the set.
#include "editors/frm_protocol_send_advanced.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "framework/shared_helpers.h"
#include "platform/basics/runtime_error.h"
#include "send_advanced_bench.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

using test::FormatItem;
using test::formatItemsOf;
using test::memoryChoice;
using test::sendBytes1;
using test::sendBytes2;
using test::sendBytes4;

constexpr int32_t keyEscape = 27;

const std::vector<FormatItem> wordFormats{{sendBytes1, 1}, {sendBytes2, 2}};
const std::vector<FormatItem> longFormats{{sendBytes1, 1}, {sendBytes2, 2}, {sendBytes4, 4}};

// What a person saw in the dialog at one moment.
struct Seen {
    int32_t Checked = -1;
    // How many of the eight controls of the copy are enabled; they go together.
    int32_t CopyControlsEnabled = -1;
    std::wstring BitText;
    std::wstring DestinationText;
    std::vector<FormatItem> Formats;
    int32_t FormatIndex = -2;
    int32_t CopyBytesCount = -1;
    bool OkEnabled = false;
    bool IgnoreListEvents = true;
};

Seen look(const frmProtocolSendAdvanced& dialog) {
    Seen seen;
    seen.Checked = dialog.ckCopyBytes.Value();
    seen.CopyControlsEnabled = 0;
    for (const Control* control : std::vector<const Control*>{
             &dialog.lbCopyBit, &dialog.lbOPCopyBytesBit, &dialog.cmdOPCopyBytesBit, &dialog.lbCopyDestination,
             &dialog.lbOpCopyBytesTo, &dialog.cmdOpCopyBytesTo, &dialog.lbFormat, &dialog.cbCopyBytes})
        seen.CopyControlsEnabled += control->Enabled() ? 1 : 0;
    seen.BitText = dialog.lbOPCopyBytesBit.Caption();
    seen.DestinationText = dialog.lbOpCopyBytesTo.Caption();
    seen.Formats = formatItemsOf(dialog.cbCopyBytes);
    seen.FormatIndex = dialog.cbCopyBytes.ListIndex();
    seen.CopyBytesCount = dialog.CopyBytesCount;
    seen.OkEnabled = dialog.cmdOK.Enabled();
    seen.IgnoreListEvents = dialog.IgnoreListEvents;
    return seen;
}

class SendAdvancedDialogTest : public ::testing::Test {
protected:
    test::SendAdvancedBench bench;

    // Opens the dialog on the set as it stands and gives what the person saw on arrival.
    Seen opened() {
        Seen seen;
        bench.edit([&](frmProtocolSendAdvanced& dialog) { seen = look(dialog); });
        return seen;
    }
};

// --- Opening ---

TEST_F(SendAdvancedDialogTest, OpensWithItsCaptionIconFontLabelsButtonsAndTooltips) {
    bench.context->AppFont = qx::Font{L"Segoe UI", 9};
    bench.edit([](frmProtocolSendAdvanced& dialog) {
        EXPECT_EQ(dialog.Name(), L"frmProtocolSendAdvanced");
        EXPECT_EQ(dialog.Caption(), L"Advanced...");
        EXPECT_NE(dialog.Icon(), nullptr);
        EXPECT_EQ(dialog.Font().Name, L"Segoe UI");
        EXPECT_EQ(dialog.cbCopyBytes.Font().Name, L"Segoe UI");
        EXPECT_EQ(dialog.lbOpCopyBytesTo.Font().Name, L"Segoe UI");
        EXPECT_TRUE(dialog.KeyPreview());
        EXPECT_EQ(dialog.ckCopyBytes.Caption(), L"Send Data Destination");
        // Two blanks in both, as they stand.
        EXPECT_EQ(dialog.lbCopyBit.Caption(), L"Copy  Bytes when ON :");
        EXPECT_EQ(dialog.lbCopyDestination.Caption(), L"Copy  to :");
        EXPECT_EQ(dialog.lbFormat.Caption(), L"Copy Format : ");
        EXPECT_EQ(dialog.cmdOPCopyBytesBit.ToolTipText(), L"Link Operand to Variable");
        EXPECT_EQ(dialog.cmdOpCopyBytesTo.ToolTipText(), L"Link Operand to Variable");
        EXPECT_EQ(dialog.cmdOK.Caption(), L"OK");
        EXPECT_EQ(dialog.cmdCancel.Caption(), L"Cancel");
    });
}

TEST_F(SendAdvancedDialogTest, EveryControlSitsOnTheFormInTabOrder) {
    std::vector<std::wstring> names;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        for (const Control* control : dialog.Controls()) names.push_back(control->Name());
    });
    EXPECT_EQ(names, (std::vector<std::wstring>{L"ckCopyBytes", L"lbCopyBit", L"lbOPCopyBytesBit", L"cmdOPCopyBytesBit",
                                                L"lbCopyDestination", L"lbOpCopyBytesTo", L"cmdOpCopyBytesTo",
                                                L"lbFormat", L"cbCopyBytes", L"cmdOK", L"cmdCancel"}));
}

TEST_F(SendAdvancedDialogTest, ANewSetOpensWithTheCopyOffEverythingBelowDisabledAndOkOff) {
    Seen seen = opened();
    EXPECT_EQ(seen.Checked, CheckBox::Unchecked);
    EXPECT_EQ(seen.CopyControlsEnabled, 0);
    EXPECT_EQ(seen.BitText, L"");
    EXPECT_EQ(seen.DestinationText, L"");
    // The unlinked destination is an MI: its two formats, none chosen.
    EXPECT_EQ(seen.Formats, wordFormats);
    EXPECT_EQ(seen.FormatIndex, -1);
    EXPECT_EQ(seen.CopyBytesCount, 0);
    EXPECT_FALSE(seen.OkEnabled);
    EXPECT_FALSE(seen.IgnoreListEvents);
}

TEST_F(SendAdvancedDialogTest, CopyOffWithLinkedOperandsShowsNoTextsAndKeepsOkOff) {
    bench.storedCopy(0);
    Seen seen = opened();
    EXPECT_EQ(seen.Checked, CheckBox::Unchecked);
    EXPECT_EQ(seen.CopyControlsEnabled, 0);
    EXPECT_EQ(seen.BitText, L"");
    EXPECT_EQ(seen.DestinationText, L"");
    EXPECT_EQ(seen.Formats, longFormats);
    EXPECT_EQ(seen.FormatIndex, -1);
    EXPECT_FALSE(seen.OkEnabled);
}

TEST_F(SendAdvancedDialogTest, OpeningWithACountOf2AndALinkedDestinationShowsBothLabelsAndSelectsTheSecondItem) {
    bench.storedCopy(2, 5, 300);
    Seen seen = opened();
    EXPECT_EQ(seen.Checked, CheckBox::Checked);
    EXPECT_EQ(seen.CopyControlsEnabled, 8);
    EXPECT_EQ(seen.BitText, L"MB 12 : Done");
    EXPECT_EQ(seen.DestinationText, L"ML 300 : Target");
    EXPECT_EQ(seen.BitText, GetOperandDisplayText(bench.whenOn()));
    EXPECT_EQ(seen.DestinationText, GetOperandDisplayText(bench.destination()));
    EXPECT_EQ(seen.Formats, longFormats);
    EXPECT_EQ(seen.FormatIndex, 1);
    EXPECT_EQ(seen.CopyBytesCount, 2);
    EXPECT_TRUE(seen.OkEnabled);
    EXPECT_FALSE(seen.IgnoreListEvents);
}

TEST_F(SendAdvancedDialogTest, OpeningSelectsTheItemOfEachCountByItsItemData) {
    for (const auto& [count, index] : std::vector<std::pair<int32_t, int32_t>>{{1, 0}, {2, 1}, {4, 2}}) {
        bench.storedCopy(count, 16);
        EXPECT_EQ(opened().FormatIndex, index) << count;
    }
}

TEST_F(SendAdvancedDialogTest, OpeningWithACountOf4OnAWordDestinationShowsTheFirstItemAndKeepsTheCount) {
    // FindComboIndex gives 0 for the missing item; the count is fitted only
    // when the destination is linked anew.
    bench.storedCopy(4, 3);
    Seen seen = opened();
    EXPECT_EQ(seen.Formats, wordFormats);
    EXPECT_EQ(seen.FormatIndex, 0);
    EXPECT_EQ(seen.CopyBytesCount, 4);
    EXPECT_TRUE(seen.OkEnabled);
}

TEST_F(SendAdvancedDialogTest, ACopyOnWithoutItsBitLinkedOpensWithOkOff) {
    test::linkOperand(bench.destination(), 5, 300);
    bench.set->CopyBytesCount(1);
    Seen seen = opened();
    EXPECT_EQ(seen.Checked, CheckBox::Checked);
    EXPECT_EQ(seen.CopyControlsEnabled, 8);
    EXPECT_EQ(seen.BitText, L"");
    EXPECT_EQ(seen.FormatIndex, 0);
    EXPECT_FALSE(seen.OkEnabled);
}

TEST_F(SendAdvancedDialogTest, ACopyOnWithoutItsDestinationLinkedOpensWithOkOff) {
    test::linkOperand(bench.whenOn(), 1, 12);
    bench.set->CopyBytesCount(2);
    Seen seen = opened();
    EXPECT_EQ(seen.DestinationText, L"");
    EXPECT_EQ(seen.Formats, wordFormats);
    EXPECT_EQ(seen.FormatIndex, 1);
    EXPECT_FALSE(seen.OkEnabled);
}

// --- The format list by the destination's type ---

class WordDestination : public SendAdvancedDialogTest, public ::testing::WithParamInterface<int32_t> {};

TEST_P(WordDestination, OffersOneAndTwoBytes) {
    bench.storedCopy(2, GetParam());
    Seen seen = opened();
    EXPECT_EQ(seen.Formats, wordFormats);
    EXPECT_EQ(seen.FormatIndex, 1);
}

INSTANTIATE_TEST_SUITE_P(MiAndItsExtendedTwin, WordDestination, ::testing::Values(3, 65));

class LongDestination : public SendAdvancedDialogTest, public ::testing::WithParamInterface<int32_t> {};

TEST_P(LongDestination, OffersOneTwoAndFourBytes) {
    bench.storedCopy(4, GetParam());
    Seen seen = opened();
    EXPECT_EQ(seen.Formats, longFormats);
    EXPECT_EQ(seen.FormatIndex, 2);
}

INSTANTIATE_TEST_SUITE_P(LongRegistersAndTheirExtendedTwins, LongDestination, ::testing::Values(5, 16, 66, 67));

class DestinationWithoutFormats : public SendAdvancedDialogTest, public ::testing::WithParamInterface<int32_t> {};

TEST_P(DestinationWithoutFormats, OffersNothingAndAStoredCountSelectsNothing) {
    bench.storedCopy(2, GetParam());
    Seen seen = opened();
    EXPECT_TRUE(seen.Formats.empty());
    EXPECT_EQ(seen.FormatIndex, -1);
    EXPECT_EQ(seen.CopyBytesCount, 2);
    EXPECT_EQ(seen.Checked, CheckBox::Checked);
}

INSTANTIATE_TEST_SUITE_P(OtherTypes, DestinationWithoutFormats, ::testing::Values(1, 4, 7, 15, 37, 64));

TEST_F(SendAdvancedDialogTest, AnUnlinkedDestinationOfATypeWithoutItemsLeavesTheListEmptyAndOkStaysOff) {
    bench.destination().OperandType(7);
    Seen afterCheck, afterBit, afterCancelledPick;
    bool stillOpen = false;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        dialog.ckCopyBytes.UserClick();
        afterCheck = look(dialog);
        bench.driver.QueuePick(memoryChoice(1, 20, L"Done"));
        dialog.cmdOPCopyBytesBit.UserClick();
        afterBit = look(dialog);
        bench.driver.QueuePickCancel();
        dialog.cmdOpCopyBytesTo.UserClick();
        afterCancelledPick = look(dialog);
        dialog.cmdOK.UserClick();
        stillOpen = dialog.Visible();
    });
    EXPECT_TRUE(afterCheck.Formats.empty());
    EXPECT_EQ(afterCheck.CopyControlsEnabled, 8);
    EXPECT_FALSE(afterCheck.OkEnabled);
    EXPECT_EQ(afterBit.BitText, L"MB 20 : Done");
    EXPECT_FALSE(afterBit.OkEnabled);
    EXPECT_TRUE(afterCancelledPick.Formats.empty());
    EXPECT_EQ(afterCancelledPick.FormatIndex, -1);
    EXPECT_EQ(afterCancelledPick.DestinationText, L"");
    EXPECT_FALSE(afterCancelledPick.OkEnabled);
    EXPECT_TRUE(stillOpen);
    EXPECT_EQ(bench.set->CopyBytesCount(), 0);
    EXPECT_TRUE(bench.destination().IsNew());
}

// --- The check box ---

TEST_F(SendAdvancedDialogTest, CheckingEnablesTheEightControlsAndDoesNothingElse) {
    bench.storedCopy(0);
    Seen before, after;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        before = look(dialog);
        dialog.ckCopyBytes.UserClick();
        after = look(dialog);
    });
    EXPECT_EQ(after.Checked, CheckBox::Checked);
    EXPECT_EQ(after.CopyControlsEnabled, 8);
    // No item is chosen, the linked operands show no text, OK is not looked at.
    EXPECT_EQ(after.FormatIndex, -1);
    EXPECT_EQ(after.BitText, L"");
    EXPECT_EQ(after.DestinationText, L"");
    EXPECT_EQ(after.CopyBytesCount, 0);
    EXPECT_FALSE(after.OkEnabled);
    EXPECT_EQ(after.Formats, before.Formats);
}

TEST_F(SendAdvancedDialogTest, UncheckingACompleteCopyClearsCountChoiceAndTextsButKeepsTheLinksAndOk) {
    bench.storedCopy(2);
    Seen seen;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        dialog.ckCopyBytes.UserClick();
        seen = look(dialog);
    });
    EXPECT_EQ(seen.Checked, CheckBox::Unchecked);
    EXPECT_EQ(seen.CopyControlsEnabled, 0);
    EXPECT_EQ(seen.CopyBytesCount, 0);
    EXPECT_EQ(seen.FormatIndex, -1);
    EXPECT_EQ(seen.Formats, longFormats);
    EXPECT_EQ(seen.BitText, L"");
    EXPECT_EQ(seen.DestinationText, L"");
    EXPECT_TRUE(seen.OkEnabled);
    EXPECT_FALSE(seen.IgnoreListEvents);
    EXPECT_FALSE(bench.destination().IsNew());
    EXPECT_FALSE(bench.whenOn().IsNew());
}

TEST_F(SendAdvancedDialogTest, UncheckingAndOkTurnsTheCopyOffWhileTheLinksStay) {
    bench.storedCopy(4);
    bench.edit([](frmProtocolSendAdvanced& dialog) {
        dialog.ckCopyBytes.UserClick();
        dialog.cmdOK.UserClick();
    });
    EXPECT_EQ(bench.set->CopyBytesCount(), 0);
    EXPECT_EQ(bench.destination().OperandAddress(), 300);
    EXPECT_EQ(bench.whenOn().OperandAddress(), 12);
}

TEST_F(SendAdvancedDialogTest, UncheckedAndCheckedAgainTheCountIs0AndOkKeepsItsStateUntilTheListChanges) {
    bench.storedCopy(2);
    Seen rechecked, chosen;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        dialog.ckCopyBytes.UserClick();
        dialog.ckCopyBytes.UserClick();
        rechecked = look(dialog);
        dialog.cbCopyBytes.UserSelect(2);
        chosen = look(dialog);
        dialog.cmdOK.UserClick();
    });
    EXPECT_EQ(rechecked.Checked, CheckBox::Checked);
    EXPECT_EQ(rechecked.CopyControlsEnabled, 8);
    EXPECT_EQ(rechecked.CopyBytesCount, 0);
    EXPECT_EQ(rechecked.FormatIndex, -1);
    EXPECT_EQ(rechecked.BitText, L"");
    EXPECT_EQ(rechecked.DestinationText, L"");
    EXPECT_TRUE(rechecked.OkEnabled);
    EXPECT_EQ(chosen.CopyBytesCount, 4);
    EXPECT_EQ(chosen.FormatIndex, 2);
    EXPECT_TRUE(chosen.OkEnabled);
    EXPECT_EQ(bench.set->CopyBytesCount(), 4);
}

TEST_F(SendAdvancedDialogTest, OkRightAfterCheckingAgainConfirmsACountOf0) {
    bench.storedCopy(2);
    bench.edit([](frmProtocolSendAdvanced& dialog) {
        dialog.ckCopyBytes.UserClick();
        dialog.ckCopyBytes.UserClick();
        dialog.cmdOK.UserClick();
    });
    EXPECT_EQ(bench.set->CopyBytesCount(), 0);
}

TEST_F(SendAdvancedDialogTest, TheCheckBoxTakesTheSpaceKey) {
    bench.storedCopy(2);
    Seen seen;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        dialog.ckCopyBytes.SetFocus();
        dialog.ckCopyBytes.UserKeyPress(' ');
        seen = look(dialog);
    });
    EXPECT_EQ(seen.Checked, CheckBox::Unchecked);
    EXPECT_EQ(seen.CopyBytesCount, 0);
}

// --- The format list ---

TEST_F(SendAdvancedDialogTest, ChoosingAnItemSetsTheCountToItsItemDataAndOkFollows) {
    bench.storedCopy(0, 16);
    std::vector<int32_t> counts;
    std::vector<bool> oks;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        dialog.ckCopyBytes.UserClick();
        for (int32_t i : {2, 0, 1}) {
            dialog.cbCopyBytes.UserSelect(i);
            counts.push_back(dialog.CopyBytesCount);
            oks.push_back(dialog.cmdOK.Enabled());
        }
        dialog.cmdOK.UserClick();
    });
    EXPECT_EQ(counts, (std::vector<int32_t>{4, 1, 2}));
    EXPECT_EQ(oks, (std::vector<bool>{true, true, true}));
    EXPECT_EQ(bench.set->CopyBytesCount(), 2);
}

TEST_F(SendAdvancedDialogTest, ChoosingAnItemWithoutTheBitLinkedLeavesOkOff) {
    test::linkOperand(bench.destination(), 5, 300);
    Seen seen;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        dialog.ckCopyBytes.UserClick();
        dialog.cbCopyBytes.UserSelect(1);
        seen = look(dialog);
    });
    EXPECT_EQ(seen.CopyBytesCount, 2);
    EXPECT_FALSE(seen.OkEnabled);
}

TEST_F(SendAdvancedDialogTest, TheDialogsOwnChoicesOfAnItemRaiseNoCountChangeOnlyAPersonsDo) {
    // Every selection the dialog makes in code happens with IgnoreListEvents set.
    bench.storedCopy(4, 5);
    std::vector<bool> ignoredAtEachSelection;
    bench.onDialog([&](frmProtocolSendAdvanced& dialog) {
        bench.driver.QueuePick(memoryChoice(3, 40, L"Word"));
        dialog.cmdOpCopyBytesTo.UserClick();
        dialog.ckCopyBytes.UserClick();
    });
    frmProtocolSendAdvanced dialog;
    dialog.cbCopyBytes.Subscribe([&](std::string_view property) {
        if (property == "ListIndex" && dialog.cbCopyBytes.ListIndex() >= 0)
            ignoredAtEachSelection.push_back(dialog.IgnoreListEvents);
    });
    int32_t count = bench.set->CopyBytesCount();
    bool confirmed = true;
    dialog.Edit(bench.set->OpCopyDestination(), bench.set->OpCopyWhenOn(), count, confirmed);
    // Selected at opening, and again after the new link.
    EXPECT_EQ(ignoredAtEachSelection, (std::vector<bool>{true, true}));
    EXPECT_FALSE(dialog.IgnoreListEvents);
}

// --- The bit's link ---

TEST_F(SendAdvancedDialogTest, LinkingTheBitShowsItsTextAndOkComesOnWhenAllIsSet) {
    test::linkOperand(bench.destination(), 5, 300);
    bench.set->CopyBytesCount(1);
    Seen before, after;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        before = look(dialog);
        bench.driver.QueuePick(memoryChoice(1, 77, L"Copied"));
        dialog.cmdOPCopyBytesBit.UserClick();
        after = look(dialog);
        dialog.cmdOK.UserClick();
    });
    EXPECT_FALSE(before.OkEnabled);
    EXPECT_EQ(after.BitText, L"MB 77 : Copied");
    EXPECT_EQ(after.BitText, GetOperandDisplayText(bench.whenOn()));
    EXPECT_TRUE(after.OkEnabled);
    EXPECT_EQ(bench.whenOn().OperandAddress(), 77);
    EXPECT_EQ(bench.set->CopyBytesCount(), 1);
}

TEST_F(SendAdvancedDialogTest, EachReasonOkIsOffIsNamedUntilAllIsSet) {
    std::vector<std::wstring> problems;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        problems.push_back(dialog.inputProblem());
        dialog.ckCopyBytes.UserClick();
        problems.push_back(dialog.inputProblem());
        dialog.cbCopyBytes.UserSelect(0);
        problems.push_back(dialog.inputProblem());
        bench.driver.QueuePick(memoryChoice(3, 300, L"Target"));
        dialog.cmdOpCopyBytesTo.UserClick();
        problems.push_back(dialog.inputProblem());
        bench.driver.QueuePick(memoryChoice(1, 77, L"Copied"));
        dialog.cmdOPCopyBytesBit.UserClick();
        problems.push_back(dialog.inputProblem());
        EXPECT_TRUE(dialog.cmdOK.Enabled());
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(problems, (std::vector<std::wstring>{L"\"Send Data Destination\" must be checked and filled in",
                                                   L"\"Copy Format\" must be chosen from the list",
                                                   L"\"Copy to\" must be linked: press ...",
                                                   L"\"Copy Bytes when ON\" must be linked: press ...", L""}));
}

TEST_F(SendAdvancedDialogTest, ADoubleClickOnTheBitsLabelLinksToo) {
    bench.storedCopy(2);
    std::wstring text;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        bench.driver.QueuePick(memoryChoice(1, 5, L"Other bit"));
        dialog.lbOPCopyBytesBit.UserDoubleClick();
        text = dialog.lbOPCopyBytesBit.Caption();
    });
    EXPECT_EQ(bench.driver.PendingPicks(), 0u);
    EXPECT_EQ(text, L"MB 5 : Other bit");
    EXPECT_EQ(bench.whenOn().OperandAddress(), 5);
}

TEST_F(SendAdvancedDialogTest, ASingleClickOnTheLabelsOpensNoPicker) {
    bench.storedCopy(2);
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        bench.driver.QueuePick(memoryChoice(1, 5));
        dialog.lbOPCopyBytesBit.UserClick();
        dialog.lbOpCopyBytesTo.UserClick();
    });
    EXPECT_EQ(bench.driver.PendingPicks(), 1u);
    EXPECT_EQ(bench.whenOn().OperandAddress(), 12);
}

TEST_F(SendAdvancedDialogTest, WithTheCopyOffTheLinksCannotBeReached) {
    bench.storedCopy(0);
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        bench.driver.QueuePick(memoryChoice(1, 5));
        dialog.cmdOPCopyBytesBit.UserClick();
        dialog.lbOPCopyBytesBit.UserDoubleClick();
        dialog.cmdOpCopyBytesTo.UserClick();
        dialog.lbOpCopyBytesTo.UserDoubleClick();
    });
    EXPECT_EQ(bench.driver.PendingPicks(), 1u);
}

TEST_F(SendAdvancedDialogTest, ACancelledPickerOnAnUnlinkedBitLeavesItsLabelEmptyAndOkOff) {
    test::linkOperand(bench.destination(), 5, 300);
    bench.set->CopyBytesCount(2);
    Seen seen;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        bench.driver.QueuePickCancel();
        dialog.cmdOPCopyBytesBit.UserClick();
        seen = look(dialog);
    });
    EXPECT_EQ(seen.BitText, L"");
    EXPECT_FALSE(seen.OkEnabled);
    EXPECT_TRUE(bench.whenOn().IsNew());
}

TEST_F(SendAdvancedDialogTest, ACancelledPickerOnALinkedBitShowsItsTextAgain) {
    // Unchecking cleared the text; the link is still there and shows again.
    bench.storedCopy(2);
    Seen seen;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        dialog.ckCopyBytes.UserClick();
        dialog.ckCopyBytes.UserClick();
        bench.driver.QueuePickCancel();
        dialog.cmdOPCopyBytesBit.UserClick();
        seen = look(dialog);
    });
    EXPECT_EQ(seen.BitText, L"MB 12 : Done");
    EXPECT_EQ(seen.DestinationText, L"");
    // A link looks at OK, and the count is 0 since the unchecking.
    EXPECT_FALSE(seen.OkEnabled);
}

TEST_F(SendAdvancedDialogTest, ThePickerOffersTheBitOnlyBitTypes) {
    std::vector<AllowedType> offered;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        dialog.ckCopyBytes.UserClick();
        bench.driver.QueuePick([&](clsOperand& operand) {
            offered = operand.AllowedTypes();
            return false;
        });
        dialog.cmdOPCopyBytesBit.UserClick();
    });
    ASSERT_EQ(offered.size(), 1u);
    EXPECT_EQ(offered[0].Mode, 1);
    EXPECT_EQ(offered[0].OperandType, 1);
}

// --- The destination's link ---

TEST_F(SendAdvancedDialogTest, ChangingTheDestinationFrom32BitTo16BitWithACountOf4ChangesTheCountTo1AndShowsThatItem) {
    bench.storedCopy(4, 5);
    Seen before, after;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        before = look(dialog);
        bench.driver.QueuePick(memoryChoice(3, 40, L"Word"));
        dialog.cmdOpCopyBytesTo.UserClick();
        after = look(dialog);
        dialog.cmdOK.UserClick();
    });
    EXPECT_EQ(before.FormatIndex, 2);
    EXPECT_EQ(after.DestinationText, L"MI 40 : Word");
    EXPECT_EQ(after.Formats, wordFormats);
    EXPECT_EQ(after.FormatIndex, 0);
    EXPECT_EQ(after.CopyBytesCount, 1);
    EXPECT_TRUE(after.OkEnabled);
    EXPECT_EQ(bench.set->CopyBytesCount(), 1);
    EXPECT_EQ(bench.destination().OperandType(), 3);
}

TEST_F(SendAdvancedDialogTest, ChangingTheDestinationToTheExtendedWordTypeAlsoTurns4Into1) {
    bench.storedCopy(4, 66);
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        bench.driver.QueuePick(memoryChoice(65, 40, L"Word"));
        dialog.cmdOpCopyBytesTo.UserClick();
        dialog.cmdOK.UserClick();
    });
    EXPECT_EQ(bench.set->CopyBytesCount(), 1);
}

TEST_F(SendAdvancedDialogTest, ChangingTheDestinationFrom16BitTo32BitKeepsTheCountAndSelectsItsItem) {
    bench.storedCopy(2, 3);
    Seen after;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        bench.driver.QueuePick(memoryChoice(16, 8, L"Double"));
        dialog.lbOpCopyBytesTo.UserDoubleClick();
        after = look(dialog);
    });
    EXPECT_EQ(after.DestinationText, L"DW 8 : Double");
    EXPECT_EQ(after.Formats, longFormats);
    EXPECT_EQ(after.FormatIndex, 1);
    EXPECT_EQ(after.CopyBytesCount, 2);
    EXPECT_EQ(bench.driver.PendingPicks(), 0u);
}

TEST_F(SendAdvancedDialogTest, ALongDestinationWithACountOf0ShowsTheFirstItemWhileTheCountStays0AndOkStaysOff) {
    test::linkOperand(bench.whenOn(), 1, 12);
    Seen linked, chosen;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        dialog.ckCopyBytes.UserClick();
        bench.driver.QueuePick(memoryChoice(5, 300, L"Target"));
        dialog.cmdOpCopyBytesTo.UserClick();
        linked = look(dialog);
        // Choosing the item that shows already is a change of the list.
        dialog.cbCopyBytes.UserSelect(0);
        chosen = look(dialog);
        dialog.cmdOK.UserClick();
    });
    EXPECT_EQ(linked.Formats, longFormats);
    EXPECT_EQ(linked.FormatIndex, 0);
    EXPECT_EQ(linked.CopyBytesCount, 0);
    EXPECT_FALSE(linked.OkEnabled);
    EXPECT_EQ(chosen.CopyBytesCount, 1);
    EXPECT_TRUE(chosen.OkEnabled);
    EXPECT_EQ(bench.set->CopyBytesCount(), 1);
}

TEST_F(SendAdvancedDialogTest, AWordDestinationWithACountOf0SelectsNothing) {
    Seen linked;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        dialog.ckCopyBytes.UserClick();
        bench.driver.QueuePick(memoryChoice(3, 40, L"Word"));
        dialog.cmdOpCopyBytesTo.UserClick();
        linked = look(dialog);
    });
    EXPECT_EQ(linked.Formats, wordFormats);
    EXPECT_EQ(linked.FormatIndex, -1);
    EXPECT_EQ(linked.CopyBytesCount, 0);
}

TEST_F(SendAdvancedDialogTest, ACancelledPickerOnTheDestinationRefillsTheListAndKeepsTheChoice) {
    bench.storedCopy(4, 16);
    Seen after;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        bench.driver.QueuePickCancel();
        dialog.cmdOpCopyBytesTo.UserClick();
        after = look(dialog);
    });
    EXPECT_EQ(after.Formats, longFormats);
    EXPECT_EQ(after.FormatIndex, 2);
    EXPECT_EQ(after.CopyBytesCount, 4);
    EXPECT_EQ(after.DestinationText, L"DW 300 : Target");
    EXPECT_TRUE(after.OkEnabled);
    EXPECT_EQ(bench.destination().OperandType(), 16);
}

TEST_F(SendAdvancedDialogTest, ThePickerOffersTheDestinationItsAllowedTypes) {
    std::vector<int32_t> types;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        dialog.ckCopyBytes.UserClick();
        bench.driver.QueuePick([&](clsOperand& operand) {
            for (const AllowedType& allowed : operand.AllowedTypes()) types.push_back(allowed.OperandType);
            return false;
        });
        dialog.cmdOpCopyBytesTo.UserClick();
    });
    EXPECT_EQ(types, (std::vector<int32_t>{3, 5, 16, 65, 66, 67}));
}

// --- Leaving ---

TEST_F(SendAdvancedDialogTest, OkConfirmsAndTheSetTakesTheCount) {
    bench.storedCopy(1, 5);
    bench.edit([](frmProtocolSendAdvanced& dialog) {
        dialog.cbCopyBytes.UserSelect(2);
        dialog.cmdOK.UserClick();
    });
    EXPECT_EQ(bench.set->CopyBytesCount(), 4);
}

TEST_F(SendAdvancedDialogTest, CancelTakesBackOnlyTheCountAndTheNewLinksStay) {
    bench.storedCopy(4, 5);
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        bench.driver.QueuePick(memoryChoice(3, 41, L"Word"));
        dialog.cmdOpCopyBytesTo.UserClick();
        bench.driver.QueuePick(memoryChoice(1, 99, L"Bit"));
        dialog.cmdOPCopyBytesBit.UserClick();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(bench.set->CopyBytesCount(), 4);
    EXPECT_EQ(bench.destination().OperandType(), 3);
    EXPECT_EQ(bench.destination().OperandAddress(), 41);
    EXPECT_EQ(bench.whenOn().OperandAddress(), 99);
}

TEST_F(SendAdvancedDialogTest, EscapeCancels) {
    bench.storedCopy(2, 5);
    bool closed = false;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        dialog.cbCopyBytes.UserSelect(0);
        dialog.UserKeyPress(keyEscape);
        closed = !dialog.Visible();
    });
    EXPECT_TRUE(closed);
    EXPECT_EQ(bench.set->CopyBytesCount(), 2);
}

TEST_F(SendAdvancedDialogTest, EscapeOnTheFocusedListCancelsToo) {
    bench.storedCopy(2, 5);
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        dialog.cbCopyBytes.UserSelect(2);
        dialog.cbCopyBytes.SetFocus();
        dialog.cbCopyBytes.UserKeyPress(keyEscape);
    });
    EXPECT_EQ(bench.set->CopyBytesCount(), 2);
}

TEST_F(SendAdvancedDialogTest, TheCloseBoxCancels) {
    bench.storedCopy(2, 5);
    bool closed = false;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        dialog.cbCopyBytes.UserSelect(2);
        dialog.UserClose();
        closed = !dialog.Visible();
    });
    EXPECT_TRUE(closed);
    EXPECT_EQ(bench.set->CopyBytesCount(), 2);
}

TEST_F(SendAdvancedDialogTest, APersonWhoWalksAwayCancels) {
    bench.storedCopy(2, 5);
    bench.edit([](frmProtocolSendAdvanced& dialog) { dialog.cbCopyBytes.UserSelect(0); });
    EXPECT_EQ(bench.set->CopyBytesCount(), 2);
}

TEST_F(SendAdvancedDialogTest, ADisabledOkDoesNotLeave) {
    bool stillOpen = false;
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        dialog.cmdOK.UserClick();
        stillOpen = dialog.Visible();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_TRUE(stillOpen);
}

TEST_F(SendAdvancedDialogTest, NoMessageAndNoBeepWhateverThePersonDoes) {
    bench.storedCopy(2, 5);
    bench.edit([&](frmProtocolSendAdvanced& dialog) {
        dialog.ckCopyBytes.UserClick();
        dialog.cmdOK.UserClick();
        dialog.ckCopyBytes.UserClick();
        bench.driver.QueuePick(memoryChoice(3, 1));
        dialog.cmdOpCopyBytesTo.UserClick();
        dialog.cmdOK.UserClick();
    });
    EXPECT_TRUE(bench.context->Messages.empty());
    EXPECT_EQ(bench.context->BeepCount, 0);
}

// --- Edit of the dialog itself ---

TEST_F(SendAdvancedDialogTest, EditWritesTheCountBackWhicheverWayTheDialogIsLeft) {
    bench.storedCopy(2, 5);
    int32_t count = 2;
    bool confirmed = true;
    bench.onDialog([](frmProtocolSendAdvanced& dialog) {
        dialog.cbCopyBytes.UserSelect(2);
        dialog.cmdCancel.UserClick();
    });
    frmProtocolSendAdvanced().Edit(bench.set->OpCopyDestination(), bench.set->OpCopyWhenOn(), count, confirmed);
    EXPECT_EQ(count, 4);
    EXPECT_FALSE(confirmed);

    bench.onDialog([](frmProtocolSendAdvanced& dialog) {
        dialog.cbCopyBytes.UserSelect(0);
        dialog.cmdOK.UserClick();
    });
    frmProtocolSendAdvanced().Edit(bench.set->OpCopyDestination(), bench.set->OpCopyWhenOn(), count, confirmed);
    EXPECT_EQ(count, 1);
    EXPECT_TRUE(confirmed);
}

TEST_F(SendAdvancedDialogTest, EditWorksOnTheOperandObjectsGivenAndKeepsNoneOfThemAfterwards) {
    OperandPtr destination = bench.set->OpCopyDestination();
    OperandPtr whenOn = bench.set->OpCopyWhenOn();
    const long before = destination.use_count();
    frmProtocolSendAdvanced dialog;
    long during = 0;
    bench.onDialog([&](frmProtocolSendAdvanced& shown) {
        during = destination.use_count();
        shown.ckCopyBytes.UserClick();
        bench.driver.QueuePick(memoryChoice(16, 2));
        shown.cmdOpCopyBytesTo.UserClick();
    });
    int32_t count = 0;
    bool confirmed = false;
    dialog.Edit(destination, whenOn, count, confirmed);
    EXPECT_GT(during, before);
    EXPECT_EQ(destination.use_count(), before);
    EXPECT_EQ(whenOn.use_count(), before);
    EXPECT_EQ(bench.set->OpCopyDestination()->OperandType(), 16);
    EXPECT_FALSE(dialog.IsLoaded());
}

TEST_F(SendAdvancedDialogTest, EditWithoutAnOperandIsError91AndShowsNothing) {
    int32_t count = 2;
    bool confirmed = true;
    frmProtocolSendAdvanced dialog;
    int32_t shown = 0;
    dialog.Subscribe([&](std::string_view property) {
        if (property == "Visible" && dialog.Visible()) ++shown;
    });
    EXPECT_EQ(test::runtimeErrorOf([&] { dialog.Edit(nullptr, bench.set->OpCopyWhenOn(), count, confirmed); }), 91);
    EXPECT_EQ(test::runtimeErrorOf([&] { dialog.Edit(bench.set->OpCopyDestination(), nullptr, count, confirmed); }),
              91);
    EXPECT_EQ(shown, 0);
    EXPECT_EQ(count, 2);
    EXPECT_TRUE(confirmed);
}

TEST_F(SendAdvancedDialogTest, ADialogUsedASecondTimeOpensAsAFreshOne) {
    bench.storedCopy(2, 5);
    frmProtocolSendAdvanced dialog;
    int32_t count = 2;
    bool confirmed = false;
    bench.onDialog([](frmProtocolSendAdvanced& shown) { shown.cmdOK.UserClick(); });
    dialog.Edit(bench.set->OpCopyDestination(), bench.set->OpCopyWhenOn(), count, confirmed);
    Seen second;
    count = 0;
    bench.onDialog([&](frmProtocolSendAdvanced& shown) { second = look(shown); });
    dialog.Edit(bench.set->OpCopyDestination(), bench.set->OpCopyWhenOn(), count, confirmed);
    EXPECT_EQ(second.Checked, CheckBox::Unchecked);
    EXPECT_EQ(second.CopyControlsEnabled, 0);
    EXPECT_EQ(second.BitText, L"");
    EXPECT_EQ(second.DestinationText, L"");
    EXPECT_EQ(second.FormatIndex, -1);
    EXPECT_FALSE(second.OkEnabled);
    EXPECT_EQ(count, 0);
    EXPECT_FALSE(confirmed);
}

}  // namespace
}  // namespace qx
