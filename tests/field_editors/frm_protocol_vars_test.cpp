// The field dialog driven as a person drives it: its candidates, its tabs,
// the link row, the OK rule and the way out; and the binary, list, date and
// time tabs.
#include "field_editors/frm_protocol_vars.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "framework/shared_helpers.h"
#include "message/protocol_binary_var.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_date_var.h"
#include "message/protocol_list_text_var.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "message/protocol_time_var.h"
#include "platform/host/host_context.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

template <class Field>
std::shared_ptr<Field> fieldAt(int32_t position) {
    auto field = std::make_shared<Field>();
    field->StartPosition(position);
    return field;
}

using test::linkOperand;
using test::memoryChoice;

class FieldDialogTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    ScriptedModalDriver& driver = *context->Script();

    // Runs the dialog on the field for Send (0) or Scan (1) with the person's actions.
    VarPtr edit(VarPtr field, int32_t methodType, std::function<void(frmProtocolVars&)> script) {
        driver.QueueDialog(scriptFor<frmProtocolVars>(std::move(script)));
        return frmProtocolVars().Edit(std::move(field), methodType);
    }
};

// --- Opening ---

TEST_F(FieldDialogTest, ANewFieldOfAScanArrivesAsAScanNumericFieldOnTab5) {
    bool sendCandidatesExist = true;
    int32_t tab = 0, kind = 0;
    std::wstring caption;
    std::vector<bool> visible;
    VarPtr result = edit(fieldAt<clsProtocolNumericVar>(12), 1, [&](frmProtocolVars& dialog) {
        tab = dialog.tbSMSVars.SelectedTab();
        kind = dialog.CurrentKind;
        caption = dialog.Caption();
        sendCandidatesExist = dialog.NumericCandidate || dialog.DateCandidate || dialog.TimeCandidate;
        for (int32_t t = 1; t <= 9; ++t) visible.push_back(dialog.tbSMSVars.TabVisible(t));
        dialog.cmdCancel.UserClick();
    });
    auto scan = std::dynamic_pointer_cast<clsProtocolScanNumericVar>(result);
    ASSERT_NE(scan, nullptr);
    EXPECT_EQ(scan->StartPosition(), 12);
    EXPECT_TRUE(scan->IsCanceled());
    EXPECT_EQ(tab, 5);
    EXPECT_EQ(kind, field_kind::ScanNumeric);
    EXPECT_EQ(caption, L"Protocol Scan Variables");
    EXPECT_FALSE(sendCandidatesExist);
    EXPECT_EQ(visible, (std::vector<bool>{false, false, false, false, true, true, true, false, false}));
}

TEST_F(FieldDialogTest, ASendDialogHidesTheScanTabs) {
    std::vector<bool> visible;
    std::wstring caption;
    edit(fieldAt<clsProtocolNumericVar>(0), 0, [&](frmProtocolVars& dialog) {
        caption = dialog.Caption();
        for (int32_t t = 1; t <= 9; ++t) visible.push_back(dialog.tbSMSVars.TabVisible(t));
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(caption, L"Protocol Send Variables");
    EXPECT_EQ(visible, (std::vector<bool>{true, true, true, true, false, false, true, true, true}));
}

TEST_F(FieldDialogTest, AChecksumOfAScanOpensOnTab7WithAScanNumericCandidate) {
    int32_t tab = 0;
    bool scanCandidate = false, okEnabled = false, linkRowShown = true;
    edit(fieldAt<clsProtocolCSVar>(3), 1, [&](frmProtocolVars& dialog) {
        tab = dialog.tbSMSVars.SelectedTab();
        scanCandidate = dialog.ScanNumericCandidate && dialog.ScanNumericCandidate->StartPosition() == 3;
        okEnabled = dialog.cmdOk.Enabled();
        linkRowShown = dialog.lblLink.Visible() || dialog.cmdLink.Visible() || dialog.lblOpData.Visible();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(tab, 7);
    EXPECT_TRUE(scanCandidate);
    EXPECT_TRUE(okEnabled);
    EXPECT_FALSE(linkRowShown);
}

TEST_F(FieldDialogTest, ANewNumericFieldOpensWithOkDisabledAndDateTimeAndChecksumWithOkEnabled) {
    auto okOf = [&](VarPtr field) {
        bool ok = false, linkRow = false;
        edit(std::move(field), 0, [&](frmProtocolVars& dialog) {
            ok = dialog.cmdOk.Enabled();
            linkRow = dialog.cmdLink.Visible();
            dialog.cmdCancel.UserClick();
        });
        return std::pair{ok, linkRow};
    };
    EXPECT_EQ(okOf(fieldAt<clsProtocolNumericVar>(0)), (std::pair{false, true}));
    EXPECT_EQ(okOf(fieldAt<clsProtocolDateVar>(0)), (std::pair{true, false}));
    EXPECT_EQ(okOf(fieldAt<clsProtocolTimeVar>(0)), (std::pair{true, false}));
    EXPECT_EQ(okOf(fieldAt<clsProtocolCSVar>(0)), (std::pair{true, false}));
}

TEST_F(FieldDialogTest, ALinkedFieldShowsItsLinkAndOpensWithOkEnabled) {
    auto field = fieldAt<clsProtocolNumericVar>(0);
    linkOperand(*field->LikedOperand(), 3, 40);
    std::wstring shown;
    bool ok = false;
    edit(field, 0, [&](frmProtocolVars& dialog) {
        shown = dialog.lblOpData.Caption();
        ok = dialog.cmdOk.Enabled();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(shown, GetOperandDisplayText(*field->LikedOperand()));
    EXPECT_TRUE(ok);
}

TEST_F(FieldDialogTest, EachClassOpensOnItsTabWithTheCandidatesOfItsRow) {
    struct Case {
        VarPtr Field;
        int32_t Tab;
        int32_t Kind;
    };
    auto stream = fieldAt<clsProtocolNumericVar>(0);
    stream->StreamForm(1);
    for (const Case& c : {Case{fieldAt<clsProtocolBinaryVar>(0), 1, field_kind::Binary},
                          Case{fieldAt<clsProtocolNumericVar>(0), 2, field_kind::SendNumeric}, Case{stream, 3, 8},
                          Case{fieldAt<clsProtocolistTextVar>(0), 4, field_kind::List},
                          Case{fieldAt<clsProtocolCSVar>(0), 7, field_kind::Checksum},
                          Case{fieldAt<clsProtocolDateVar>(0), 8, field_kind::Date},
                          Case{fieldAt<clsProtocolTimeVar>(0), 9, field_kind::Time}}) {
        int32_t tab = 0, kind = 0;
        bool currentIsGiven = false;
        edit(c.Field, 0, [&](frmProtocolVars& dialog) {
            tab = dialog.tbSMSVars.SelectedTab();
            kind = dialog.CurrentKind;
            currentIsGiven = dialog.CurrentVar == c.Field;
            dialog.cmdCancel.UserClick();
        });
        EXPECT_EQ(tab, c.Tab);
        EXPECT_EQ(kind, c.Kind);
        EXPECT_TRUE(currentIsGiven) << c.Tab;
    }
}

TEST_F(FieldDialogTest, TheFormTakesItsIconAndTheTextLimits) {
    bool icon = false;
    int32_t limit0 = 0, limit1 = 0;
    edit(fieldAt<clsProtocolBinaryVar>(0), 0, [&](frmProtocolVars& dialog) {
        icon = dialog.Icon() && dialog.Icon()->Pixels.at(0) == 401 % 256;
        limit0 = dialog.txtText0.MaxLength();
        limit1 = dialog.txtText1.MaxLength();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_TRUE(icon);
    EXPECT_EQ(limit0, 500);
    EXPECT_EQ(limit1, 500);
}

// --- Tabs and candidates ---

TEST_F(FieldDialogTest, CancelReturnsTheCandidateUnderTheLastTabWithIsCanceled) {
    VarPtr result = edit(fieldAt<clsProtocolNumericVar>(7), 0, [](frmProtocolVars& dialog) {
        dialog.tbSMSVars.UserSelect(8);
        dialog.cmdCancel.UserClick();
    });
    auto date = std::dynamic_pointer_cast<clsProtocolDateVar>(result);
    ASSERT_NE(date, nullptr);
    EXPECT_TRUE(date->IsCanceled());
    EXPECT_EQ(date->StartPosition(), 7);
}

TEST_F(FieldDialogTest, OkReturnsTheCandidateUnderTheSelectedTab) {
    VarPtr result = edit(fieldAt<clsProtocolNumericVar>(7), 0, [](frmProtocolVars& dialog) {
        dialog.tbSMSVars.UserSelect(9);
        dialog.cbTimeFormatType.UserSelect(1);
        dialog.cmdOk.UserClick();
    });
    auto time = std::dynamic_pointer_cast<clsProtocolTimeVar>(result);
    ASSERT_NE(time, nullptr);
    EXPECT_FALSE(time->IsCanceled());
    EXPECT_EQ(time->TimeFormatType(), 1);
}

TEST_F(FieldDialogTest, ValuesStayOnTheirCandidateWhenTheTabsChangeForthAndBack) {
    std::wstring backText;
    VarPtr result = edit(fieldAt<clsProtocolBinaryVar>(0), 0, [&](frmProtocolVars& dialog) {
        dialog.txtText0.UserType(L"OFF");
        dialog.tbSMSVars.UserSelect(8);
        dialog.cbDateFormatType.UserSelect(3);  // "MM/DD"
        dialog.tbSMSVars.UserSelect(1);
        backText = dialog.BinaryCandidate->TextFor0();
        dialog.tbSMSVars.UserSelect(8);
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(backText, L"OFF");
    auto date = std::dynamic_pointer_cast<clsProtocolDateVar>(result);
    ASSERT_NE(date, nullptr);
    EXPECT_EQ(date->DateFormatType(), 5);
}

TEST_F(FieldDialogTest, NoLinkIsCarriedFromOneCandidateToAnother) {
    auto field = fieldAt<clsProtocolNumericVar>(0);
    linkOperand(*field->LikedOperand(), 3, 40);
    bool listOk = true;
    std::wstring shown = L"x";
    edit(field, 0, [&](frmProtocolVars& dialog) {
        dialog.tbSMSVars.UserSelect(4);
        listOk = dialog.cmdOk.Enabled();
        shown = dialog.lblOpData.Caption();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_FALSE(listOk);
    EXPECT_EQ(shown, L"");
}

TEST_F(FieldDialogTest, AFloatLinkedOnTheScanStreamTabIsLostOnTheScanNumericTab) {
    auto field = fieldAt<clsProtocolScanNumericVar>(0);
    field->StreamForm(1);
    linkOperand(*field->LikedOperand(), 7, 10);
    bool okOnStream = false, okOnNumeric = true;
    VarPtr result = edit(field, 1, [&](frmProtocolVars& dialog) {
        okOnStream = dialog.cmdOk.Enabled();
        dialog.tbSMSVars.UserSelect(5);
        okOnNumeric = dialog.cmdOk.Enabled();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_TRUE(okOnStream);
    EXPECT_FALSE(okOnNumeric);
    EXPECT_EQ(field->LikedOperand()->OperandType(), 3);
    EXPECT_TRUE(field->LikedOperand()->IsNew());
    EXPECT_EQ(field->StreamForm(), 0);
}

TEST_F(FieldDialogTest, TheLinkOfTheSendStreamTabSurvivesTheMoveToTheNumericTab) {
    auto field = fieldAt<clsProtocolNumericVar>(0);
    field->StreamForm(1);
    linkOperand(*field->LikedOperand(), 7, 10);
    bool ok = false;
    edit(field, 0, [&](frmProtocolVars& dialog) {
        dialog.tbSMSVars.UserSelect(2);
        ok = dialog.cmdOk.Enabled();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_TRUE(ok);
    EXPECT_EQ(field->LikedOperand()->OperandType(), 7);
    EXPECT_FALSE(field->LikedOperand()->IsNew());
    EXPECT_EQ(field->StreamForm(), 0);
}

TEST_F(FieldDialogTest, TheScanStreamTabSetsFormat4WhateverItWas) {
    auto field = fieldAt<clsProtocolScanNumericVar>(0);
    field->StreamForm(1);
    field->VarFormat(3);
    edit(field, 1, [](frmProtocolVars& dialog) {
        dialog.tbSMSVars.UserSelect(5);
        dialog.tbSMSVars.UserSelect(6);
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(field->StreamForm(), 1);
    EXPECT_EQ(field->VarFormat(), 4);
}

TEST_F(FieldDialogTest, TheScanNumericOkRuleWantsTheDecimalPointLinkedUnlessTheFormatIsHex) {
    auto field = fieldAt<clsProtocolScanNumericVar>(0);
    field->StreamForm(1);
    linkOperand(*field->LikedOperand(), 3, 10);
    bool okWithoutPoint = true, okHex = false;
    edit(field, 1, [&](frmProtocolVars& dialog) {
        dialog.tbSMSVars.UserSelect(5);
        okWithoutPoint = dialog.cmdOk.Enabled();
        dialog.cmdCancel.UserClick();
    });
    field->VarFormat(2);
    field->StreamForm(1);
    edit(field, 1, [&](frmProtocolVars& dialog) {
        dialog.tbSMSVars.UserSelect(5);
        okHex = dialog.cmdOk.Enabled();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_FALSE(okWithoutPoint);
    EXPECT_TRUE(okHex);
}

// --- The link row ---

TEST_F(FieldDialogTest, LinkingAllowsFloatsOnTheStreamTabsOnly) {
    auto field = fieldAt<clsProtocolNumericVar>(0);
    std::vector<bool> floatAllowed;
    driver.QueuePick([&](clsOperand& operand) {
        floatAllowed.push_back(operand.IsTypeAllowed(1, 7));
        return false;
    });
    driver.QueuePick([&](clsOperand& operand) {
        floatAllowed.push_back(operand.IsTypeAllowed(1, 7));
        return false;
    });
    edit(field, 0, [](frmProtocolVars& dialog) {
        dialog.cmdLink.UserClick();
        dialog.tbSMSVars.UserSelect(3);
        dialog.lblOpData.UserClick();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(floatAllowed, (std::vector<bool>{false, true}));
}

TEST_F(FieldDialogTest, ALinkEnablesOkAndShowsTheOperandAndACanceledPickChangesNothing) {
    auto field = fieldAt<clsProtocolNumericVar>(0);
    driver.QueuePickCancel();
    driver.QueuePick(memoryChoice(3, 55));
    bool okAfterCancel = true, okAfterLink = false;
    std::wstring shown;
    VarPtr result = edit(field, 0, [&](frmProtocolVars& dialog) {
        dialog.cmdLink.UserClick();
        okAfterCancel = dialog.cmdOk.Enabled();
        dialog.cmdLink.UserClick();
        okAfterLink = dialog.cmdOk.Enabled();
        shown = dialog.lblOpData.Caption();
        dialog.cmdOk.UserClick();
    });
    EXPECT_FALSE(okAfterCancel);
    EXPECT_TRUE(okAfterLink);
    EXPECT_EQ(shown, GetOperandDisplayText(*field->LikedOperand()));
    EXPECT_EQ(field->LikedOperand()->OperandAddress(), 55);
    EXPECT_FALSE(result->IsCanceled());
}

// --- Sizes and the way out ---

TEST_F(FieldDialogTest, TheDialogTakesTheHeightItsPanelNeeds) {
    struct Seen {
        int32_t Dialog, Strip, Top;
        bool operator==(const Seen&) const = default;
    };
    std::vector<Seen> seen;
    auto record = [&](frmProtocolVars& dialog) {
        seen.push_back({dialog.Height(), dialog.StripHeight(), dialog.ButtonRowTop()});
    };
    edit(fieldAt<clsProtocolNumericVar>(0), 0, [&](frmProtocolVars& dialog) {
        record(dialog);                  // numeric, decimal
        dialog.tbSMSVars.UserSelect(3);  // stream
        record(dialog);
        dialog.tbSMSVars.UserSelect(7);  // checksum
        record(dialog);
        dialog.tbSMSVars.UserSelect(4);  // list
        record(dialog);
        dialog.tbSMSVars.UserSelect(8);  // date
        record(dialog);
        dialog.cmdCancel.UserClick();
    });
    auto scan = fieldAt<clsProtocolScanNumericVar>(0);
    edit(scan, 1, [&](frmProtocolVars& dialog) {
        record(dialog);                  // Scan numeric, format 0
        dialog.tbSMSVars.UserSelect(6);  // Scan stream
        record(dialog);
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(seen, (std::vector<Seen>{{4650, 3525, 3540},
                                       {4050, 2875, 2890},
                                       {6460, 5335, 5350},
                                       {4125, 2985, 3000},
                                       {2940, 1815, 1830},
                                       {4950, 3825, 3840},
                                       {3550, 2375, 2390}}));
}

TEST_F(FieldDialogTest, EscapeAndTheCloseBoxCancel) {
    VarPtr byKey = edit(fieldAt<clsProtocolDateVar>(0), 0, [](frmProtocolVars& dialog) { dialog.UserKeyPress(27); });
    VarPtr byBox = edit(fieldAt<clsProtocolDateVar>(0), 0, [](frmProtocolVars& dialog) { dialog.UserClose(); });
    EXPECT_TRUE(byKey->IsCanceled());
    EXPECT_TRUE(byBox->IsCanceled());
}

// --- Tab 1: binary texts ---

TEST_F(FieldDialogTest, BinaryTextsLoseTheirTrailingBlanksAndBlanksAloneEnableOk) {
    auto field = fieldAt<clsProtocolBinaryVar>(0);
    linkOperand(*field->LikedOperand(), 1, 5);
    bool okEmpty = true, okBlanks = false;
    VarPtr result = edit(field, 0, [&](frmProtocolVars& dialog) {
        dialog.tbSMSVars.UserSelect(8);
        dialog.tbSMSVars.UserSelect(1);
        okEmpty = dialog.cmdOk.Enabled();
        dialog.txtText0.UserType(L"   ");
        okBlanks = dialog.cmdOk.Enabled();
        dialog.txtText1.UserType(L"ON  ");
        dialog.cmdOk.UserClick();
    });
    EXPECT_FALSE(okEmpty);
    EXPECT_TRUE(okBlanks);
    EXPECT_EQ(field->TextFor0(), L"");
    EXPECT_EQ(field->TextFor1(), L"ON");
    EXPECT_FALSE(result->IsCanceled());
}

TEST_F(FieldDialogTest, TheBinaryTabKeepsTheTextLastInHand) {
    auto field = fieldAt<clsProtocolBinaryVar>(0);
    field->TextFor0(L"OFF");
    field->TextFor1(L"ON");
    field->DefaultDisplay(1);
    std::wstring focused, shown0;
    edit(field, 0, [&](frmProtocolVars& dialog) {
        focused = dialog.ActiveControl() ? dialog.ActiveControl()->Name() : L"";
        shown0 = dialog.txtText0.Text();
        dialog.txtText0.SetFocus();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(focused, L"txtText1");
    EXPECT_EQ(shown0, L"OFF");
    EXPECT_EQ(field->DefaultDisplay(), 0);
}

// --- Tab 4: list of texts ---

TEST_F(FieldDialogTest, TheListTabShowsOneNumberedLinePerTextAndEditsTheLastLineInHand) {
    auto field = fieldAt<clsProtocolistTextVar>(0);
    field->Texts({L"Stop", L"Run", L"Fault"});
    field->DefaultDisplay(1);
    std::vector<std::wstring> cells;
    int32_t row = 0, limit = 0;
    bool editing = false;
    edit(field, 0, [&](frmProtocolVars& dialog) {
        for (int32_t r = 0; r < dialog.flgListTexts.Rows(); ++r)
            cells.push_back(dialog.flgListTexts.TextMatrix(r, 0) + L"|" + dialog.flgListTexts.TextMatrix(r, 1));
        row = dialog.flgListTexts.Row();
        editing = dialog.flgListTexts.IsEditing();
        limit = dialog.flgListTexts.EditMaxLength();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(cells, (std::vector<std::wstring>{L"|Text", L"0|Stop", L"1|Run", L"2|Fault"}));
    EXPECT_EQ(row, 2);
    EXPECT_TRUE(editing);
    EXPECT_EQ(limit, 500);
}

TEST_F(FieldDialogTest, TextsTypedIntoTheGridReachTheFieldOnOkOnly) {
    auto field = fieldAt<clsProtocolistTextVar>(0);
    linkOperand(*field->LikedOperand(), 3, 8);
    std::vector<std::wstring> whileOpen;
    VarPtr result = edit(field, 0, [&](frmProtocolVars& dialog) {
        dialog.flgListTexts.UserType(L"Idle");
        dialog.cmndNewVLT.UserClick();
        dialog.flgListTexts.UserType(L"Busy");
        dialog.cmndNewVLT.UserClick();
        dialog.flgListTexts.UserType(L"Error");
        whileOpen = dialog.ListCandidate->Texts();
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(whileOpen, (std::vector<std::wstring>{L""}));
    EXPECT_EQ(field->Texts(), (std::vector<std::wstring>{L"Idle", L"Busy", L"Error"}));
    EXPECT_EQ(field->DefaultDisplay(), 2);
    EXPECT_FALSE(result->IsCanceled());
}

TEST_F(FieldDialogTest, CancelLeavesTheTextsAsTheyWereLoaded) {
    auto field = fieldAt<clsProtocolistTextVar>(0);
    field->Texts({L"A", L"B"});
    edit(field, 0, [](frmProtocolVars& dialog) {
        dialog.flgListTexts.UserType(L"changed");
        dialog.cmdDeleteVLT.UserClick();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(field->Texts(), (std::vector<std::wstring>{L"A", L"B"}));
}

TEST_F(FieldDialogTest, DeleteLineRenumbersAndTheLastLineStays) {
    auto field = fieldAt<clsProtocolistTextVar>(0);
    field->Texts({L"A", L"B", L"C"});
    linkOperand(*field->LikedOperand(), 3, 8);
    std::vector<std::wstring> numbers;
    int32_t rowsAtEnd = 0;
    edit(field, 0, [&](frmProtocolVars& dialog) {
        dialog.flgListTexts.UserClick(1, 1);
        dialog.cmdDeleteVLT.UserClick();
        for (int32_t r = 1; r < dialog.flgListTexts.Rows(); ++r)
            numbers.push_back(dialog.flgListTexts.TextMatrix(r, 0));
        dialog.cmdDeleteVLT.UserClick();
        dialog.cmdDeleteVLT.UserClick();
        rowsAtEnd = dialog.flgListTexts.Rows();
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(numbers, (std::vector<std::wstring>{L"0", L"1"}));
    EXPECT_EQ(rowsAtEnd, 2);
    EXPECT_EQ(field->Texts(), (std::vector<std::wstring>{L"B"}));
}

TEST_F(FieldDialogTest, DefineLengthTakesTheLongestTextAndUncheckingClearsIt) {
    auto field = fieldAt<clsProtocolistTextVar>(0);
    field->Texts({L"abc", std::wstring(120, L'x')});
    int32_t withLongText = 0, afterUncheck = -1;
    std::wstring shown;
    bool listShown = false, listAfterUncheck = true;
    edit(field, 0, [&](frmProtocolVars& dialog) {
        dialog.ckListTextAlign.UserClick();
        withLongText = dialog.ListCandidate->AlignmentStringSize();
        shown = dialog.cbListTextAlign.Text();
        listShown = dialog.cbListTextAlign.Visible();
        dialog.ckListTextAlign.UserClick();
        afterUncheck = dialog.ListCandidate->AlignmentStringSize();
        listAfterUncheck = dialog.cbListTextAlign.Visible();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(withLongText, 120);
    EXPECT_EQ(shown, L"1");
    EXPECT_TRUE(listShown);
    EXPECT_EQ(afterUncheck, 0);
    EXPECT_FALSE(listAfterUncheck);
}

TEST_F(FieldDialogTest, DefineLengthWithOnlyEmptyTextsWritesZeroAndShowsOne) {
    auto field = fieldAt<clsProtocolistTextVar>(0);
    int32_t written = -1;
    std::wstring shown;
    bool checked = false;
    edit(field, 0, [&](frmProtocolVars& dialog) {
        dialog.flgListTexts.UserCancelEdit();
        dialog.ckListTextAlign.UserClick();
        written = dialog.ListCandidate->AlignmentStringSize();
        shown = dialog.cbListTextAlign.Text();
        checked = dialog.ckListTextAlign.Value() == CheckBox::Checked;
        dialog.cbListTextAlign.UserSelect(9);
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(written, 0);
    EXPECT_EQ(shown, L"1");
    EXPECT_TRUE(checked);
    EXPECT_EQ(field->AlignmentStringSize(), 10);
}

TEST_F(FieldDialogTest, AListWithALinkAndOnlyEmptyTextsCanBeAccepted) {
    auto field = fieldAt<clsProtocolistTextVar>(0);
    linkOperand(*field->LikedOperand(), 3, 8);
    bool ok = false;
    edit(field, 0, [&](frmProtocolVars& dialog) {
        ok = dialog.cmdOk.Enabled();
        dialog.cmdOk.UserClick();
    });
    EXPECT_TRUE(ok);
}

TEST_F(FieldDialogTest, AStoredLengthChecksTheBoxAndPositionsTheList) {
    auto field = fieldAt<clsProtocolistTextVar>(0);
    field->AlignmentStringSize(12);
    bool checked = false, listShown = false;
    std::wstring shown;
    edit(field, 0, [&](frmProtocolVars& dialog) {
        checked = dialog.ckListTextAlign.Value() == CheckBox::Checked;
        listShown = dialog.cbListTextAlign.Visible();
        shown = dialog.cbListTextAlign.Text();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_TRUE(checked);
    EXPECT_TRUE(listShown);
    EXPECT_EQ(shown, L"12");
    EXPECT_EQ(field->AlignmentStringSize(), 12);
}

// --- Tabs 8 and 9 ---

TEST_F(FieldDialogTest, TheDateAndTimeListsOfferTheirFormatsWithTheirNumbers) {
    auto field = fieldAt<clsProtocolDateVar>(0);
    field->DateFormatType(6);
    std::vector<std::pair<std::wstring, int32_t>> dates, times;
    std::wstring shown;
    edit(field, 0, [&](frmProtocolVars& dialog) {
        for (int32_t i = 0; i < dialog.cbDateFormatType.ListCount(); ++i)
            dates.emplace_back(dialog.cbDateFormatType.List(i), dialog.cbDateFormatType.ItemData(i));
        for (int32_t i = 0; i < dialog.cbTimeFormatType.ListCount(); ++i)
            times.emplace_back(dialog.cbTimeFormatType.List(i), dialog.cbTimeFormatType.ItemData(i));
        shown = dialog.cbDateFormatType.Text();
        dialog.cbDateFormatType.UserSelect(0);
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(dates,
              (std::vector<std::pair<std::wstring, int32_t>>{
                  {L"DDD", 2}, {L"DDDDDDDDD", 3}, {L"DD/MM", 4}, {L"MM/DD", 5}, {L"DD/MM/YY", 6}, {L"MM/DD/YY", 7}}));
    EXPECT_EQ(times, (std::vector<std::pair<std::wstring, int32_t>>{{L"HH:MM", 0}, {L"HH:MM:SS", 1}}));
    EXPECT_EQ(shown, L"DD/MM/YY");
    EXPECT_EQ(field->DateFormatType(), 2);
}

}  // namespace
}  // namespace qx
