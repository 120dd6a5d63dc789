// The end-of-message dialog with its checksum panel, driven as a person
// would: opening on each end of message, the lists and what they write, the
// reload after "ETX", the limits through the control-character selector, the
// rule of chkSTXInCS, and the ways out.
#include "field_editors/frm_protocol_config_advanced.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "field_editor_bench.h"
#include "platform/basics/runtime_error.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

constexpr int32_t keyEscape = 27;

std::vector<std::wstring> textsOf(const ComboBox& list) {
    std::vector<std::wstring> texts;
    for (int32_t i = 0; i < list.ListCount(); ++i) texts.push_back(list.List(i));
    return texts;
}
std::vector<int32_t> numbersOf(const ComboBox& list) {
    std::vector<int32_t> numbers;
    for (int32_t i = 0; i < list.ListCount(); ++i) numbers.push_back(list.ItemData(i));
    return numbers;
}
std::vector<std::wstring> counting(int32_t first, int32_t last) {
    std::vector<std::wstring> texts;
    for (int32_t n = first; n <= last; ++n) texts.push_back(std::to_wstring(n));
    return texts;
}

// A checksum with every setting away from its default.
CSVarPtr changedChecksum() {
    auto checksum = std::make_shared<clsProtocolCSVar>();
    checksum->OffsetFromForward(3);
    checksum->OffsetTillBackwards(2);
    checksum->CalculationType(3);
    checksum->ModulusType(2);
    checksum->CSLength(2);
    checksum->FormatView(1);
    checksum->STXInCS(true);
    checksum->SpecialAddition(true);
    checksum->SA_FromValue(2);
    checksum->SA_ToValue(3);
    checksum->SA_AddedValue(7);
    return checksum;
}

// What the panel shows, read while the dialog is open.
struct Shown {
    std::wstring endOfMsg, fromFwr, fromBwr, calcType, modulus, length, format;
    int32_t stx = -1, special = -1;
    bool stxEnabled = false, specialEnabled = false, frameEnabled = false, listsEnabled = false, rowsEnabled = false;
    std::wstring fromVal, toVal, addedVal;
    int32_t fromFwrCount = 0;
};

Shown shownBy(frmProtocolConfigAdvanced& dialog) {
    ChecksumPanel& p = dialog.Panel;
    Shown s;
    s.endOfMsg = dialog.cbEndOfMsg.Text();
    s.fromFwr = p.cbCSFromFwr.Text();
    s.fromBwr = p.cbCSFromBwr.Text();
    s.calcType = p.cbCSCalcType.Text();
    s.modulus = p.cbCSModulusType.Text();
    s.length = p.cbCSLength.Text();
    s.format = p.cbCSFormatView.Text();
    s.stx = p.chkSTXInCS.Value();
    s.special = p.ckSpecialAddition.Value();
    s.stxEnabled = p.chkSTXInCS.Enabled();
    s.specialEnabled = p.ckSpecialAddition.Enabled();
    s.frameEnabled = dialog.fCSConfig.Enabled();
    s.listsEnabled = true;
    for (Control* c : std::vector<Control*>{&p.lbCSFromFwr, &p.cbCSFromFwr, &p.lbCSFromBwr, &p.cbCSFromBwr,
                                            &p.lbCSCalcType, &p.cbCSCalcType, &p.lbCSModulusType, &p.cbCSModulusType,
                                            &p.lbCSLength, &p.cbCSLength, &p.lbCSFormatView, &p.cbCSFormatView})
        s.listsEnabled = s.listsEnabled && c->Enabled();
    int32_t rowsOn = 0;
    for (Control* c : std::vector<Control*>{&p.lbCSSAFromVal, &p.lbtxtCSSAFromVal, &p.cmdCSSAFromVal, &p.lbCSSAToVal,
                                            &p.lbtxtCSSAToVal, &p.cmdCSSAToVal, &p.lbCSSAAddedVal, &p.lbtxtCSSAAddedVal,
                                            &p.cmdCSSAAddedVal})
        rowsOn += c->Enabled() ? 1 : 0;
    EXPECT_TRUE(rowsOn == 0 || rowsOn == 9) << "the nine go together";
    s.rowsEnabled = rowsOn == 9;
    s.fromVal = p.lbtxtCSSAFromVal.Caption();
    s.toVal = p.lbtxtCSSAToVal.Caption();
    s.addedVal = p.lbtxtCSSAAddedVal.Caption();
    s.fromFwrCount = p.cbCSFromFwr.ListCount();
    return s;
}

class EndOfMessageDialogTest : public test::FieldEditorTest {
protected:
    void SetUp() override { context->ExtendedOperands = true; }
};

TEST_F(EndOfMessageDialogTest, OpensWithItsCaptionIconLabelsAndButtons) {
    std::wstring caption, endLabel, frame, ok, cancel, stx, special;
    std::vector<std::wstring> labels, rowLabels, buttons, tips;
    bool hasIcon = false;
    auto checksum = std::make_shared<clsProtocolCSVar>();
    int32_t end = 2;
    edit(checksum, end, [&](frmProtocolConfigAdvanced& dialog) {
        ChecksumPanel& p = dialog.Panel;
        caption = dialog.Caption();
        hasIcon = dialog.Icon() != nullptr;
        endLabel = dialog.lbEndOfMsg.Caption();
        frame = dialog.fCSConfig.Caption();
        ok = dialog.cmdOk.Caption();
        cancel = dialog.cmdCancel.Caption();
        for (Label* l :
             {&p.lbCSFromFwr, &p.lbCSFromBwr, &p.lbCSCalcType, &p.lbCSModulusType, &p.lbCSLength, &p.lbCSFormatView})
            labels.push_back(l->Caption());
        for (Label* l : {&p.lbCSSAFromVal, &p.lbCSSAToVal, &p.lbCSSAAddedVal}) rowLabels.push_back(l->Caption());
        for (CommandButton* b : {&p.cmdCSSAFromVal, &p.cmdCSSAToVal, &p.cmdCSSAAddedVal}) {
            buttons.push_back(b->Caption());
            tips.push_back(b->ToolTipText());
        }
        stx = p.chkSTXInCS.Caption();
        special = p.ckSpecialAddition.Caption();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(caption, L"End Of Message Format");
    EXPECT_TRUE(hasIcon);
    EXPECT_EQ(endLabel, L"End Of Message Format :");
    EXPECT_EQ(frame, L"Checksum Configuration");
    EXPECT_EQ(ok, L"OK");
    EXPECT_EQ(cancel, L"Cancel");
    EXPECT_EQ(labels, (std::vector<std::wstring>{L"Calculate Offset From (Forward) : ",
                                                 L"Calculate Offset Till (Backwards) : ", L"Calculation Type :",
                                                 L"Modulus Method :", L"Checksum Length In Bytes :", L"Format :"}));
    EXPECT_EQ(rowLabels, (std::vector<std::wstring>{L"From Value :", L"To Value :", L"Add Value :"}));
    EXPECT_EQ(buttons, (std::vector<std::wstring>(3, L"...")));
    EXPECT_EQ(tips, (std::vector<std::wstring>(3, L"Link Operand to Variable")));
    EXPECT_EQ(stx, L"Include STX in Checksum calculation");
    EXPECT_EQ(special, L"Advanced: Set Limits");
}

TEST_F(EndOfMessageDialogTest, EveryListHasItsItemsWithTheirNumbers) {
    std::vector<std::vector<std::wstring>> texts;
    std::vector<std::vector<int32_t>> numbers;
    auto checksum = std::make_shared<clsProtocolCSVar>();
    int32_t end = 2;
    edit(checksum, end, [&](frmProtocolConfigAdvanced& dialog) {
        ChecksumPanel& p = dialog.Panel;
        for (ComboBox* list : {&dialog.cbEndOfMsg, &p.cbCSFromFwr, &p.cbCSFromBwr, &p.cbCSCalcType, &p.cbCSModulusType,
                               &p.cbCSLength, &p.cbCSFormatView}) {
            texts.push_back(textsOf(*list));
            numbers.push_back(numbersOf(*list));
        }
        dialog.cmdCancel.UserClick();
    });
    ASSERT_EQ(texts.size(), 7u);
    EXPECT_EQ(texts[0], (std::vector<std::wstring>{L"ETX", L"Checksum & ETX", L"ETX & Checksum"}));
    EXPECT_EQ(numbers[0], (std::vector<int32_t>{1, 2, 3}));
    EXPECT_EQ(texts[1], counting(0, 15));
    EXPECT_EQ(numbers[1], (std::vector<int32_t>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}));
    EXPECT_EQ(texts[2], counting(0, 15));
    EXPECT_EQ(numbers[2], numbers[1]);
    EXPECT_EQ(texts[3],
              (std::vector<std::wstring>{L"SUM-8", L"XOR-8", L"CRC-8", L"CRC-16", L"2's COMPLEMENT", L"CRC-CCITT1",
                                         L"CRC-CCITT2", L"CRC-CCITT3", L"CRC-CCITT4", L"LRC"}));
    EXPECT_EQ(numbers[3], (std::vector<int32_t>{1, 2, 4, 3, 5, 6, 7, 8, 9, 10}));
    EXPECT_EQ(texts[4], (std::vector<std::wstring>{L"256 (100H)", L"65536 (10000H)", L"32 bit"}));
    EXPECT_EQ(numbers[4], (std::vector<int32_t>{1, 2, 3}));
    EXPECT_EQ(texts[5], counting(1, 5));
    EXPECT_EQ(numbers[5], (std::vector<int32_t>{1, 2, 3, 4, 5}));
    EXPECT_EQ(texts[6], (std::vector<std::wstring>{L"Decimal ASCII", L"Hex as ASCII", L"Binary"}));
    EXPECT_EQ(numbers[6], (std::vector<int32_t>{0, 1, 2}));
}

TEST_F(EndOfMessageDialogTest, AChecksumOpensEnabledWithEverySettingShown) {
    Shown shown;
    int32_t end = 3;
    edit(changedChecksum(), end, [&](frmProtocolConfigAdvanced& dialog) {
        shown = shownBy(dialog);
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(shown.endOfMsg, L"ETX & Checksum");
    EXPECT_EQ(shown.fromFwr, L"3");
    EXPECT_EQ(shown.fromBwr, L"2");
    EXPECT_EQ(shown.calcType, L"CRC-16");
    EXPECT_EQ(shown.modulus, L"65536 (10000H)");
    EXPECT_EQ(shown.length, L"2");
    EXPECT_EQ(shown.format, L"Hex as ASCII");
    EXPECT_EQ(shown.stx, CheckBox::Checked);
    EXPECT_EQ(shown.special, CheckBox::Checked);
    EXPECT_TRUE(shown.frameEnabled);
    EXPECT_TRUE(shown.listsEnabled);
    EXPECT_TRUE(shown.stxEnabled);
    EXPECT_TRUE(shown.specialEnabled);
    EXPECT_TRUE(shown.rowsEnabled);
    EXPECT_EQ(shown.fromVal, L"2");
    EXPECT_EQ(shown.toVal, L"3");
    EXPECT_EQ(shown.addedVal, L"7");
    EXPECT_EQ(shown.fromFwrCount, 16);
}

TEST_F(EndOfMessageDialogTest, OpeningWritesNothingAndShowsNoMessageEvenForLRC) {
    auto checksum = changedChecksum();
    checksum->CalculationType(10);
    auto before = std::dynamic_pointer_cast<clsProtocolCSVar>(checksum->GetReplica());
    int32_t end = 2;
    std::wstring calcType;
    edit(checksum, end, [&](frmProtocolConfigAdvanced& dialog) {
        calcType = dialog.Panel.cbCSCalcType.Text();
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(calcType, L"LRC");
    EXPECT_TRUE(context->Messages.empty());
    EXPECT_EQ(checksum->GetVarBinData(0), before->GetVarBinData(0));
    EXPECT_EQ(checksum->SA_AddedValue(), 7);
}

TEST_F(EndOfMessageDialogTest, WithETXOnOpeningThePanelIsDisabledButFilledAndPositioned) {
    Shown shown;
    int32_t end = 1;
    edit(changedChecksum(), end, [&](frmProtocolConfigAdvanced& dialog) {
        shown = shownBy(dialog);
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(shown.endOfMsg, L"ETX");
    EXPECT_FALSE(shown.frameEnabled);
    EXPECT_FALSE(shown.listsEnabled);
    EXPECT_FALSE(shown.stxEnabled);
    EXPECT_FALSE(shown.specialEnabled);
    // The limits are on, so the load enables their rows inside the disabled frame.
    EXPECT_TRUE(shown.rowsEnabled);
    EXPECT_EQ(shown.fromFwr, L"3");
    EXPECT_EQ(shown.fromBwr, L"2");
    EXPECT_EQ(shown.calcType, L"CRC-16");
    EXPECT_EQ(shown.modulus, L"65536 (10000H)");
    EXPECT_EQ(shown.length, L"2");
    EXPECT_EQ(shown.format, L"Hex as ASCII");
    EXPECT_EQ(shown.stx, CheckBox::Checked);
    EXPECT_EQ(shown.special, CheckBox::Checked);
    EXPECT_EQ(shown.addedVal, L"7");
}

TEST_F(EndOfMessageDialogTest, WithETXOnOpeningNoPanelControlTakesAClick) {
    auto checksum = std::make_shared<clsProtocolCSVar>();
    int32_t end = 1;
    edit(checksum, end, [&](frmProtocolConfigAdvanced& dialog) {
        dialog.Panel.cbCSLength.UserSelect(3);
        dialog.Panel.chkSTXInCS.UserClick();
        dialog.Panel.ckSpecialAddition.UserClick();
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(checksum->CSLength(), 1);
    EXPECT_FALSE(checksum->STXInCS());
    EXPECT_FALSE(checksum->SpecialAddition());
}

TEST_F(EndOfMessageDialogTest, EachListWritesItsNumberToItsProperty) {
    auto checksum = std::make_shared<clsProtocolCSVar>();
    int32_t end = 2;
    bool accepted = edit(checksum, end, [](frmProtocolConfigAdvanced& dialog) {
        ChecksumPanel& p = dialog.Panel;
        p.cbCSFromFwr.UserSelect(7);
        p.cbCSFromBwr.UserSelect(15);
        p.cbCSCalcType.UserSelect(2);
        p.cbCSModulusType.UserSelect(2);
        p.cbCSLength.UserSelect(4);
        p.cbCSFormatView.UserSelect(2);
        dialog.cmdOk.UserClick();
    });
    EXPECT_TRUE(accepted);
    EXPECT_EQ(checksum->OffsetFromForward(), 7);
    EXPECT_EQ(checksum->OffsetTillBackwards(), 15);
    EXPECT_EQ(checksum->CalculationType(), 4);  // "CRC-8", third in the list
    EXPECT_EQ(checksum->ModulusType(), 3);
    EXPECT_EQ(checksum->CSLength(), 5);
    EXPECT_EQ(checksum->Length(), 5);
    EXPECT_EQ(checksum->FormatView(), 2);
    EXPECT_TRUE(context->Messages.empty());
}

TEST_F(EndOfMessageDialogTest, ChoosingLRCShowsMessage477AndTheChoiceStands) {
    auto checksum = std::make_shared<clsProtocolCSVar>();
    int32_t end = 2;
    edit(checksum, end, [](frmProtocolConfigAdvanced& dialog) {
        dialog.Panel.cbCSCalcType.UserSelect(9);
        dialog.cmdOk.UserClick();
    });
    ASSERT_EQ(context->Messages.size(), 1u);
    EXPECT_EQ(context->Messages[0].Number, 477);
    EXPECT_TRUE(context->Messages[0].Params.empty());
    EXPECT_EQ(checksum->CalculationType(), 10);
}

TEST_F(EndOfMessageDialogTest, ChoosingETXWipesTheChecksumAndGoingBackShowsTheDefaults) {
    auto checksum = changedChecksum();
    int32_t end = 2;
    Shown afterETX, afterBack, afterTick;
    bool specialAfterETX = true;
    edit(checksum, end, [&](frmProtocolConfigAdvanced& dialog) {
        dialog.cbEndOfMsg.UserSelect(0);
        afterETX = shownBy(dialog);
        specialAfterETX = checksum->SpecialAddition();
        dialog.cbEndOfMsg.UserSelect(1);
        afterBack = shownBy(dialog);
        dialog.Panel.ckSpecialAddition.UserClick();
        afterTick = shownBy(dialog);
        dialog.cmdCancel.UserClick();
    });
    EXPECT_FALSE(specialAfterETX);
    EXPECT_EQ(afterETX.endOfMsg, L"ETX");
    EXPECT_FALSE(afterETX.frameEnabled);
    EXPECT_FALSE(afterETX.listsEnabled);
    EXPECT_FALSE(afterETX.stxEnabled);
    EXPECT_FALSE(afterETX.specialEnabled);
    EXPECT_FALSE(afterETX.rowsEnabled);
    EXPECT_EQ(afterETX.fromFwr, L"0");
    EXPECT_EQ(afterETX.calcType, L"SUM-8");

    EXPECT_EQ(afterBack.endOfMsg, L"Checksum & ETX");
    EXPECT_TRUE(afterBack.frameEnabled);
    EXPECT_TRUE(afterBack.listsEnabled);
    EXPECT_TRUE(afterBack.stxEnabled);
    EXPECT_TRUE(afterBack.specialEnabled);
    EXPECT_FALSE(afterBack.rowsEnabled);
    EXPECT_EQ(afterBack.fromFwr, L"0");
    EXPECT_EQ(afterBack.fromBwr, L"0");
    EXPECT_EQ(afterBack.calcType, L"SUM-8");
    EXPECT_EQ(afterBack.modulus, L"256 (100H)");
    EXPECT_EQ(afterBack.length, L"1");
    EXPECT_EQ(afterBack.format, L"Decimal ASCII");
    EXPECT_EQ(afterBack.stx, CheckBox::Unchecked);
    EXPECT_EQ(afterBack.special, CheckBox::Unchecked);
    EXPECT_EQ(afterBack.addedVal, L"");

    // InitChecksum kept the added value and reset the two others.
    EXPECT_TRUE(afterTick.rowsEnabled);
    EXPECT_EQ(afterTick.fromVal, L"0");
    EXPECT_EQ(afterTick.toVal, L"0");
    EXPECT_EQ(afterTick.addedVal, L"7");

    EXPECT_EQ(end, 2);
    EXPECT_EQ(checksum->OffsetFromForward(), 0);
    EXPECT_EQ(checksum->CalculationType(), 1);
    EXPECT_EQ(checksum->CSLength(), 1);
    EXPECT_FALSE(checksum->STXInCS());
    EXPECT_EQ(checksum->SA_FromValue(), 0);
    EXPECT_EQ(checksum->SA_AddedValue(), 7);
}

TEST_F(EndOfMessageDialogTest, EachETXReloadAddsSixteenOffsetsAndPositioningFindsTheFirst) {
    auto checksum = std::make_shared<clsProtocolCSVar>();
    int32_t end = 2;
    std::vector<int32_t> counts;
    int32_t indexAfter = -1;
    std::vector<std::wstring> texts;
    edit(checksum, end, [&](frmProtocolConfigAdvanced& dialog) {
        ComboBox& list = dialog.Panel.cbCSFromFwr;
        counts.push_back(list.ListCount());
        dialog.cbEndOfMsg.UserSelect(0);
        counts.push_back(list.ListCount());
        dialog.cbEndOfMsg.UserSelect(1);
        dialog.cbEndOfMsg.UserSelect(0);
        counts.push_back(list.ListCount());
        dialog.cbEndOfMsg.UserSelect(2);
        // The same offset from the second copy of the list.
        list.UserSelect(16 + 9);
        dialog.cbEndOfMsg.UserSelect(2);
        indexAfter = list.ListIndex();
        texts = textsOf(list);
        counts.push_back(dialog.Panel.cbCSFromBwr.ListCount());
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(counts, (std::vector<int32_t>{16, 32, 48, 16}));
    ASSERT_EQ(texts.size(), 48u);
    EXPECT_EQ(texts[16], L"0");
    EXPECT_EQ(texts[47], L"15");
    EXPECT_EQ(indexAfter, 25);
    EXPECT_EQ(checksum->OffsetFromForward(), 9);
    EXPECT_EQ(end, 3);
}

TEST_F(EndOfMessageDialogTest, APositioningAfterAReloadLandsOnTheFirstCopy) {
    auto checksum = changedChecksum();
    int32_t end = 2;
    int32_t indexAfterReload = -1;
    edit(checksum, end, [&](frmProtocolConfigAdvanced& dialog) {
        dialog.cbEndOfMsg.UserSelect(0);
        indexAfterReload = dialog.Panel.cbCSFromFwr.ListIndex();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(indexAfterReload, 0);
}

TEST_F(EndOfMessageDialogTest, UntickingAndTickingTheLimitsAgainShowsTheOldValues) {
    auto checksum = changedChecksum();
    int32_t end = 2;
    Shown unticked, ticked;
    bool specialWhenUnticked = true;
    edit(checksum, end, [&](frmProtocolConfigAdvanced& dialog) {
        dialog.Panel.ckSpecialAddition.UserClick();
        unticked = shownBy(dialog);
        specialWhenUnticked = checksum->SpecialAddition();
        dialog.Panel.ckSpecialAddition.UserClick();
        ticked = shownBy(dialog);
        dialog.cmdOk.UserClick();
    });
    EXPECT_FALSE(specialWhenUnticked);
    EXPECT_EQ(unticked.special, CheckBox::Unchecked);
    EXPECT_FALSE(unticked.rowsEnabled);
    EXPECT_EQ(unticked.fromVal, L"");
    EXPECT_EQ(unticked.toVal, L"");
    EXPECT_EQ(unticked.addedVal, L"");
    EXPECT_EQ(ticked.special, CheckBox::Checked);
    EXPECT_TRUE(ticked.rowsEnabled);
    EXPECT_EQ(ticked.fromVal, L"2");
    EXPECT_EQ(ticked.toVal, L"3");
    EXPECT_EQ(ticked.addedVal, L"7");
    EXPECT_TRUE(checksum->SpecialAddition());
    EXPECT_EQ(checksum->SA_FromValue(), 2);
    EXPECT_EQ(checksum->SA_ToValue(), 3);
    EXPECT_EQ(checksum->SA_AddedValue(), 7);
}

TEST_F(EndOfMessageDialogTest, WithoutLimitsTheRowsOpenDisabledAndBlank) {
    Shown shown;
    int32_t end = 2;
    edit(std::make_shared<clsProtocolCSVar>(), end, [&](frmProtocolConfigAdvanced& dialog) {
        shown = shownBy(dialog);
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(shown.special, CheckBox::Unchecked);
    EXPECT_FALSE(shown.rowsEnabled);
    EXPECT_EQ(shown.fromVal, L"");
    EXPECT_EQ(shown.toVal, L"");
    EXPECT_EQ(shown.addedVal, L"");
}

TEST_F(EndOfMessageDialogTest, EachLimitButtonSetsItsValueThroughTheLowTableOfTheSelector) {
    auto checksum = std::make_shared<clsProtocolCSVar>();
    int32_t end = 2;
    Shown shown;
    int32_t selectorRows = 0;
    onDialog([&](frmProtocolConfigAdvanced& dialog) {
        dialog.Panel.ckSpecialAddition.UserClick();
        dialog.Panel.cmdCSSAFromVal.UserClick();
        dialog.Panel.cmdCSSAToVal.UserClick();
        dialog.Panel.cmdCSSAAddedVal.UserClick();
        shown = shownBy(dialog);
        dialog.cmdOk.UserClick();
    });
    driver.QueueDialog(scriptFor<frmProtocolHexSelector>([&](frmProtocolHexSelector& selector) {
        selectorRows = selector.flgLowChars.Rows();
        selector.flgLowChars.UserClick(3, 0);
        selector.cmdOk.UserClick();
    }));
    onSelectorPick(3);
    onSelectorPick(31);
    EXPECT_TRUE(frmProtocolConfigAdvanced().Edit(checksum, end));
    EXPECT_EQ(selectorRows, 33);
    EXPECT_EQ(shown.fromVal, L"2");
    EXPECT_EQ(shown.toVal, L"3");
    EXPECT_EQ(shown.addedVal, L"31");
    EXPECT_TRUE(checksum->SpecialAddition());
    EXPECT_EQ(checksum->SA_FromValue(), 2);
    EXPECT_EQ(checksum->SA_ToValue(), 3);
    EXPECT_EQ(checksum->SA_AddedValue(), 31);
    EXPECT_EQ(driver.PendingDialogs(), 0u);
}

TEST_F(EndOfMessageDialogTest, AClickOnAValueActsAsItsButton) {
    auto checksum = std::make_shared<clsProtocolCSVar>();
    int32_t end = 2;
    onDialog([](frmProtocolConfigAdvanced& dialog) {
        dialog.Panel.ckSpecialAddition.UserClick();
        dialog.Panel.lbtxtCSSAFromVal.UserClick();
        dialog.Panel.lbtxtCSSAToVal.UserClick();
        dialog.Panel.lbtxtCSSAAddedVal.UserClick();
        dialog.cmdOk.UserClick();
    });
    onSelectorPick(16);
    onSelectorPick(17);
    onSelectorPick(18);
    frmProtocolConfigAdvanced().Edit(checksum, end);
    EXPECT_EQ(checksum->SA_FromValue(), 16);
    EXPECT_EQ(checksum->SA_ToValue(), 17);
    EXPECT_EQ(checksum->SA_AddedValue(), 18);
}

TEST_F(EndOfMessageDialogTest, TheSelectorIsNotPresetAndItsCancelKeepsTheLimit) {
    auto checksum = changedChecksum();
    int32_t end = 2;
    std::wstring fromShown, toShown;
    int32_t selectorRow = 0;
    onDialog([&](frmProtocolConfigAdvanced& dialog) {
        dialog.Panel.cmdCSSAFromVal.UserClick();
        dialog.Panel.cmdCSSAToVal.UserClick();
        fromShown = dialog.Panel.lbtxtCSSAFromVal.Caption();
        toShown = dialog.Panel.lbtxtCSSAToVal.Caption();
        dialog.cmdOk.UserClick();
    });
    // OK at once gives code 0, not the field's 2.
    driver.QueueDialog(scriptFor<frmProtocolHexSelector>([&](frmProtocolHexSelector& selector) {
        selectorRow = selector.flgLowChars.Row();
        selector.cmdOk.UserClick();
    }));
    driver.QueueDialog(scriptFor<frmProtocolHexSelector>([](frmProtocolHexSelector& selector) {
        selector.flgLowChars.UserClick(10, 0);
        selector.cmdCancel.UserClick();
    }));
    frmProtocolConfigAdvanced().Edit(checksum, end);
    EXPECT_EQ(selectorRow, 1);
    EXPECT_EQ(fromShown, L"0");
    EXPECT_EQ(toShown, L"3");
    EXPECT_EQ(checksum->SA_FromValue(), 0);
    EXPECT_EQ(checksum->SA_ToValue(), 3);
}

TEST_F(EndOfMessageDialogTest, TheSTXBoxWritesItsValueWithEachClick) {
    auto checksum = std::make_shared<clsProtocolCSVar>();
    int32_t end = 3;
    bool afterFirst = false, afterSecond = true;
    edit(checksum, end, [&](frmProtocolConfigAdvanced& dialog) {
        dialog.Panel.chkSTXInCS.UserClick();
        afterFirst = checksum->STXInCS();
        dialog.Panel.chkSTXInCS.UserClick();
        afterSecond = checksum->STXInCS();
        dialog.Panel.chkSTXInCS.UserClick();
        dialog.cmdOk.UserClick();
    });
    EXPECT_TRUE(afterFirst);
    EXPECT_FALSE(afterSecond);
    EXPECT_TRUE(checksum->STXInCS());
}

// The rows of the chkSTXInCS rule that concern this dialog.
struct STXCase {
    bool extended;
    int32_t endOfMessage;
    bool stxInCS;
    bool enabled, checked, stxAfter;
};

class EndOfMessageSTXRule : public test::FieldEditorTest, public ::testing::WithParamInterface<STXCase> {};

TEST_P(EndOfMessageSTXRule, OpensTheSTXBoxAsTheCapabilityAndTheEndOfMessageSay) {
    const STXCase c = GetParam();
    context->ExtendedOperands = c.extended;
    auto checksum = std::make_shared<clsProtocolCSVar>();
    checksum->STXInCS(c.stxInCS);
    int32_t end = c.endOfMessage;
    bool enabled = !c.enabled;
    int32_t value = -1;
    edit(checksum, end, [&](frmProtocolConfigAdvanced& dialog) {
        enabled = dialog.Panel.chkSTXInCS.Enabled();
        value = dialog.Panel.chkSTXInCS.Value();
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(enabled, c.enabled);
    EXPECT_EQ(value, c.checked ? CheckBox::Checked : CheckBox::Unchecked);
    EXPECT_EQ(checksum->STXInCS(), c.stxAfter);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, EndOfMessageSTXRule,
    ::testing::Values(STXCase{true, 2, true, true, true, true}, STXCase{true, 3, true, true, true, true},
                      STXCase{true, 2, false, true, false, false}, STXCase{true, 1, true, false, true, true},
                      STXCase{true, 1, false, false, false, false}, STXCase{false, 1, true, false, false, false},
                      STXCase{false, 2, true, false, false, false}, STXCase{false, 3, true, false, false, false}));

TEST_F(EndOfMessageDialogTest, ChoosingAChecksumEnablesTheSTXBoxEvenWithoutTheCapability) {
    context->ExtendedOperands = false;
    auto checksum = std::make_shared<clsProtocolCSVar>();
    int32_t end = 1;
    bool enabledOnOpening = true, enabledAfterChoice = false;
    edit(checksum, end, [&](frmProtocolConfigAdvanced& dialog) {
        enabledOnOpening = dialog.Panel.chkSTXInCS.Enabled();
        dialog.cbEndOfMsg.UserSelect(2);
        enabledAfterChoice = dialog.Panel.chkSTXInCS.Enabled();
        dialog.Panel.chkSTXInCS.UserClick();
        dialog.cmdOk.UserClick();
    });
    EXPECT_FALSE(enabledOnOpening);
    EXPECT_TRUE(enabledAfterChoice);
    EXPECT_TRUE(checksum->STXInCS());
    EXPECT_EQ(end, 3);
}

TEST_F(EndOfMessageDialogTest, EnablingLeavesTheLimitRowsAsTheirBoxLeftThem) {
    int32_t end = 1;
    Shown withLimits, withoutLimits;
    edit(changedChecksum(), end, [&](frmProtocolConfigAdvanced& dialog) {
        dialog.cbEndOfMsg.UserSelect(1);
        withLimits = shownBy(dialog);
        dialog.cmdCancel.UserClick();
    });
    end = 1;
    edit(std::make_shared<clsProtocolCSVar>(), end, [&](frmProtocolConfigAdvanced& dialog) {
        dialog.cbEndOfMsg.UserSelect(1);
        withoutLimits = shownBy(dialog);
        dialog.cmdCancel.UserClick();
    });
    EXPECT_TRUE(withLimits.frameEnabled);
    EXPECT_TRUE(withLimits.rowsEnabled);
    EXPECT_EQ(withLimits.fromVal, L"2");
    EXPECT_TRUE(withoutLimits.frameEnabled);
    EXPECT_TRUE(withoutLimits.listsEnabled);
    EXPECT_FALSE(withoutLimits.rowsEnabled);
}

TEST_F(EndOfMessageDialogTest, OkAcceptsAndHandsBackTheNumber) {
    auto checksum = std::make_shared<clsProtocolCSVar>();
    int32_t end = 1;
    bool accepted = edit(checksum, end, [](frmProtocolConfigAdvanced& dialog) {
        dialog.cbEndOfMsg.UserSelect(1);
        dialog.cmdOk.UserClick();
    });
    EXPECT_TRUE(accepted);
    EXPECT_EQ(end, 2);
}

TEST_F(EndOfMessageDialogTest, CancelEscapeAndTheCloseBoxRefuseButStillHandBackTheNumber) {
    const std::vector<std::function<void(frmProtocolConfigAdvanced&)>> ways = {
        [](frmProtocolConfigAdvanced& dialog) { dialog.cmdCancel.UserClick(); },
        [](frmProtocolConfigAdvanced& dialog) { dialog.UserKeyPress(keyEscape); },
        [](frmProtocolConfigAdvanced& dialog) { dialog.Panel.cbCSLength.UserKeyPress(keyEscape); },
        [](frmProtocolConfigAdvanced& dialog) { dialog.UserClose(); },
    };
    for (size_t i = 0; i < ways.size(); ++i) {
        auto checksum = std::make_shared<clsProtocolCSVar>();
        int32_t end = 1;
        bool accepted = edit(checksum, end, [&](frmProtocolConfigAdvanced& dialog) {
            dialog.cbEndOfMsg.UserSelect(2);
            dialog.Panel.cbCSLength.UserSelect(1);
            ways[i](dialog);
        });
        EXPECT_FALSE(accepted) << i;
        EXPECT_EQ(end, 3) << i;
        EXPECT_EQ(checksum->CSLength(), 2) << i;
    }
}

TEST_F(EndOfMessageDialogTest, EditKeepsNoReferenceToTheChecksum) {
    auto checksum = std::make_shared<clsProtocolCSVar>();
    frmProtocolConfigAdvanced dialog;
    int32_t end = 2;
    onDialog([](frmProtocolConfigAdvanced& d) { d.cmdOk.UserClick(); });
    dialog.Edit(checksum, end);
    EXPECT_EQ(checksum.use_count(), 1);
    EXPECT_EQ(dialog.Candidate(), nullptr);
    EXPECT_EQ(dialog.Panel.Candidate(), nullptr);
}

TEST_F(EndOfMessageDialogTest, ASecondEditOfTheSameDialogStartsWithSixteenOffsets) {
    frmProtocolConfigAdvanced dialog;
    auto checksum = std::make_shared<clsProtocolCSVar>();
    int32_t end = 2, count = 0;
    onDialog([](frmProtocolConfigAdvanced& d) { d.cmdOk.UserClick(); });
    dialog.Edit(checksum, end);
    onDialog([&](frmProtocolConfigAdvanced& d) {
        count = d.Panel.cbCSFromFwr.ListCount();
        d.cmdOk.UserClick();
    });
    dialog.Edit(checksum, end);
    EXPECT_EQ(count, 16);
}

TEST_F(EndOfMessageDialogTest, TheRecordFieldsOfTheImageAreLeftAlone) {
    auto checksum = std::make_shared<clsProtocolCSVar>();
    checksum->MethodType(1);
    checksum->ActualMethodType(1);
    checksum->VERSION(4);
    checksum->IsVar(true);
    int32_t end = 2;
    edit(checksum, end, [](frmProtocolConfigAdvanced& dialog) {
        dialog.Panel.cbCSLength.UserSelect(2);
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(checksum->MethodType(), 1);
    EXPECT_EQ(checksum->ActualMethodType(), 1);
    EXPECT_EQ(checksum->VERSION(), 4);
    EXPECT_TRUE(checksum->IsVar());
}

TEST_F(EndOfMessageDialogTest, NoChecksumIsError91) {
    int32_t end = 2;
    EXPECT_EQ(test::runtimeErrorOf([&] { frmProtocolConfigAdvanced().Edit(nullptr, end); }), 91);
}

}  // namespace
}  // namespace qx
