// The Numeric and Stream tabs of the field dialog driven as a person drives
// them: what each list offers by format and operand width, what it writes,
// the reset rules, the rows each format shows, the stream count and the
// decimal point operand.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "field_editors/frm_protocol_vars.h"
#include "framework/shared_helpers.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_date_var.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "platform/host/host_context.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

using Items = std::vector<std::pair<std::wstring, int32_t>>;

Items itemsOf(const ComboBox& combo) {
    Items items;
    for (int32_t i = 0; i < combo.ListCount(); ++i) items.emplace_back(combo.List(i), combo.ItemData(i));
    return items;
}

Items numbered(int32_t first, int32_t last) {
    Items items;
    for (int32_t n = first; n <= last; ++n) items.emplace_back(std::to_wstring(n), n);
    return items;
}

using test::linkOperand;
using test::memoryChoice;

NumericVarPtr sendField(int32_t operandType = 3) {
    auto field = std::make_shared<clsProtocolNumericVar>();
    field->LikedOperand()->OperandType(operandType);
    return field;
}

std::shared_ptr<clsProtocolScanNumericVar> scanField(int32_t operandType = 3) {
    auto field = std::make_shared<clsProtocolScanNumericVar>();
    field->LikedOperand()->OperandType(operandType);
    return field;
}

const Items wordSendBytes{{L"Convert ONE Linked Element to 1 Send Bytes", 0},
                          {L"Convert ONE Linked Element to 2 Send Bytes", 1}};
const Items longSendBytes{{L"Convert ONE Linked Element to 1 Send Bytes", 0},
                          {L"Convert ONE Linked Element to 2 Send Bytes", 1},
                          {L"Convert ONE Linked Element to 3 Send Bytes", 3},
                          {L"Convert ONE Linked Element to 4 Send Bytes", 2}};
const Items floatSendBytes{{L"Convert ONE Linked Element to 4 Send Bytes (Big)", 2},
                           {L"Convert ONE Linked Element to 4 Send Bytes (Small)", 5}};
const Items wordReceiveBytes{{L"Convert 1 Receive Bytes to ONE Linked Element", 0},
                             {L"Convert 2 Receive Bytes to ONE Linked Element", 1}};
const Items longReceiveBytes{{L"Convert 1 Receive Bytes to ONE Linked Element", 0},
                             {L"Convert 2 Receive Bytes to ONE Linked Element", 1},
                             {L"Convert 3 Receive Bytes to ONE Linked Element", 3},
                             {L"Convert 4 Receive Bytes to ONE Linked Element", 2}};
const Items floatReceiveBytes{{L"Convert 4 Receive Bytes to ONE Linked Element (Big)", 2},
                              {L"Convert 4 Receive Bytes to ONE Linked Element (Small)", 5}};

Items sendBytes(int32_t last) {
    Items items;
    for (int32_t n = 1; n <= last; ++n)
        items.emplace_back(L"Convert ONE Linked Element to " + std::to_wstring(n) + L" Send Bytes", n);
    return items;
}

class NumericTabsTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    ScriptedModalDriver& driver = *context->Script();

    VarPtr edit(VarPtr field, int32_t methodType, std::function<void(frmProtocolVars&)> script) {
        driver.QueueDialog(scriptFor<frmProtocolVars>(std::move(script)));
        return frmProtocolVars().Edit(std::move(field), methodType);
    }
    VarPtr send(VarPtr field, std::function<void(SendNumericPanel&, frmProtocolVars&)> script) {
        return edit(std::move(field), 0, [&](frmProtocolVars& dialog) {
            script(dialog.SendNumeric, dialog);
            if (dialog.Visible()) dialog.cmdCancel.UserClick();
        });
    }
    VarPtr scan(VarPtr field, std::function<void(ScanNumericPanel&, frmProtocolVars&)> script) {
        return edit(std::move(field), 1, [&](frmProtocolVars& dialog) {
            script(dialog.ScanNumeric, dialog);
            if (dialog.Visible()) dialog.cmdCancel.UserClick();
        });
    }
};

// --- Send: the lists ---

TEST_F(NumericTabsTest, ANewSendFieldShowsDecimalWithItsDefaultsAndTheWordLists) {
    auto field = sendField();
    send(field, [](SendNumericPanel& panel, frmProtocolVars&) {
        EXPECT_EQ(panel.cbVarFormat.Text(), L"Decimal ASCII");
        EXPECT_EQ(panel.cbBefore.Text(), L"5");
        EXPECT_EQ(panel.cbAfter.Text(), L"0");
        EXPECT_EQ(panel.cbPrefixSignFormat.Text(), L"Positive & Negative (+,-)");
        EXPECT_EQ(panel.cbLeading.Text(), L"No Leading");
        EXPECT_EQ(panel.cbVectorLength.Text(), L"1");
        EXPECT_EQ(itemsOf(panel.cbBefore), numbered(1, 5));
        EXPECT_EQ(itemsOf(panel.cbAfter), numbered(0, 4));
        EXPECT_EQ(itemsOf(panel.cbBinaryFormat), sendBytes(2));
        EXPECT_EQ(itemsOf(panel.cbCopyBytes), wordSendBytes);
        EXPECT_TRUE(panel.fFormat.Visible());
        EXPECT_FALSE(panel.cbHexFormat.Visible());
        EXPECT_FALSE(panel.cbBinaryFormat.Visible());
    });
    EXPECT_EQ(field->BeforePoint(), 5);
    EXPECT_EQ(field->AfterPoint(), 0);
}

TEST_F(NumericTabsTest, TheSendListsOfferTheirItemsWithTheirNumbers) {
    send(sendField(), [](SendNumericPanel& panel, frmProtocolVars&) {
        EXPECT_EQ(itemsOf(panel.cbVarFormat), (Items{{L"Decimal ASCII", 0}, {L"Hex as ASCII", 1}}));
        EXPECT_EQ(itemsOf(panel.cbPrefixSignFormat),
                  (Items{{L"Positive & Negative (+,-)", 1}, {L"Negative Only (-)", 2}, {L"No Prefix", 0}}));
        EXPECT_EQ(itemsOf(panel.cbLeading), (Items{{L"No Leading", 0}, {L"Leading Zeros", 1}, {L"Leading Spaces", 2}}));
        EXPECT_EQ(itemsOf(panel.cbVectorLength), numbered(1, 100));
        EXPECT_EQ(itemsOf(panel.cbSteamVector), numbered(1, 255));
        EXPECT_EQ(itemsOf(panel.cbHexFormat), sendBytes(8));
        EXPECT_EQ(panel.lbVectorLength.Caption(), L"Vector Length : ");
        EXPECT_EQ(panel.lbPrefixSignFormat.Caption(), L"Prefix Format : ");
        EXPECT_EQ(panel.lbLeading.Caption(), L"Leading Type : ");
        EXPECT_EQ(panel.lbBefore.Caption(), L"Decimal Point : ");
        EXPECT_EQ(panel.lbHexFormat.Caption(), L"Send as : ");
        EXPECT_EQ(panel.fFormat.Caption(), L"Format");
        EXPECT_EQ(panel.fVectorLength.Caption(), L"Vector Length");
        EXPECT_EQ(panel.opDirect.Caption(), L"Direct:");
        EXPECT_EQ(panel.opInDirect.Caption(), L"Indirect:");
        EXPECT_EQ(panel.cmdInDirect.ToolTipText(), L"Link Operand to Variable");
    });
}

TEST_F(NumericTabsTest, OnLoadTheWidthOfTheOperandDecidesTheSendLists) {
    struct Case {
        int32_t Type;
        int32_t LastBefore, LastAfter, BinaryBytes;
        Items CopyBytes;
    };
    for (const Case& c :
         {Case{3, 5, 4, 2, wordSendBytes}, Case{4, 5, 4, 2, wordSendBytes}, Case{65, 5, 4, 2, wordSendBytes},
          Case{5, 10, 10, 4, longSendBytes}, Case{6, 10, 10, 4, longSendBytes}, Case{16, 10, 10, 4, longSendBytes},
          Case{36, 10, 10, 4, longSendBytes}, Case{66, 10, 10, 4, longSendBytes}, Case{67, 10, 10, 4, longSendBytes},
          Case{7, 10, 10, 4, floatSendBytes}, Case{99, 10, 10, 4, longSendBytes}}) {
        auto field = sendField(c.Type);
        if (c.Type == 7) field->CopyBytesFormat(2);
        send(field, [&](SendNumericPanel& panel, frmProtocolVars&) {
            EXPECT_EQ(itemsOf(panel.cbBefore), numbered(1, c.LastBefore)) << c.Type;
            EXPECT_EQ(itemsOf(panel.cbAfter), numbered(0, c.LastAfter)) << c.Type;
            EXPECT_EQ(itemsOf(panel.cbBinaryFormat), sendBytes(c.BinaryBytes)) << c.Type;
            EXPECT_EQ(itemsOf(panel.cbCopyBytes), c.CopyBytes) << c.Type;
        });
    }
}

TEST_F(NumericTabsTest, LoadingAWordFieldClipsDigitsBeforeThePointToFive) {
    auto field = sendField(3);
    field->BeforePoint(8);
    std::wstring shown;
    send(field, [&](SendNumericPanel& panel, frmProtocolVars&) { shown = panel.cbBefore.Text(); });
    EXPECT_EQ(shown, L"5");
    EXPECT_EQ(field->BeforePoint(), 5);
}

TEST_F(NumericTabsTest, TheSendLoadResetsTheCopyBytesTheWidthCannotHold) {
    struct Case {
        int32_t Type, Before, After;
    };
    for (const Case& c : {Case{3, 3, 0}, Case{3, 2, 0}, Case{3, 1, 1}, Case{5, 3, 3}, Case{5, 2, 2}, Case{7, 1, 2},
                          Case{7, 0, 2}, Case{7, 5, 5}, Case{7, 2, 2}}) {
        auto field = sendField(c.Type);
        field->StreamForm(1);
        field->CopyBytesFormat(c.Before);
        int32_t shown = -1;
        send(field, [&](SendNumericPanel& panel, frmProtocolVars&) {
            shown = panel.cbCopyBytes.ItemData(panel.cbCopyBytes.ListIndex());
        });
        EXPECT_EQ(field->CopyBytesFormat(), c.After) << c.Type << " " << c.Before;
        EXPECT_EQ(shown, c.After) << c.Type << " " << c.Before;
    }
}

TEST_F(NumericTabsTest, EachSendFormatShowsItsOwnRowsOnLoad) {
    auto hex = sendField(5);
    hex->VarFormat(1);
    hex->BeforePoint(6);
    send(hex, [](SendNumericPanel& panel, frmProtocolVars& dialog) {
        EXPECT_FALSE(panel.fFormat.Visible());
        EXPECT_TRUE(panel.cbHexFormat.Visible());
        EXPECT_FALSE(panel.cbBinaryFormat.Visible());
        EXPECT_EQ(panel.cbHexFormat.ItemData(panel.cbHexFormat.ListIndex()), 6);
        EXPECT_EQ(panel.cbVarFormat.Text(), L"Hex as ASCII");
        EXPECT_EQ(dialog.Height(), 3300);
    });
    auto binary = sendField(5);
    binary->VarFormat(2);
    binary->BeforePoint(3);
    send(binary, [](SendNumericPanel& panel, frmProtocolVars&) {
        EXPECT_FALSE(panel.fFormat.Visible());
        EXPECT_FALSE(panel.cbHexFormat.Visible());
        EXPECT_TRUE(panel.cbBinaryFormat.Visible());
        EXPECT_EQ(panel.cbBinaryFormat.ItemData(panel.cbBinaryFormat.ListIndex()), 3);
        // Binary is not offered: the list stands on its first item.
        EXPECT_EQ(panel.cbVarFormat.ListIndex(), 0);
    });
    EXPECT_EQ(binary->VarFormat(), 2);
    auto decimal = sendField(5);
    decimal->BeforePoint(7);
    decimal->AfterPoint(3);
    send(decimal, [](SendNumericPanel& panel, frmProtocolVars& dialog) {
        EXPECT_TRUE(panel.fFormat.Visible());
        EXPECT_EQ(panel.cbBefore.Text(), L"7");
        EXPECT_EQ(panel.cbAfter.Text(), L"3");
        EXPECT_EQ(dialog.Height(), 4650);
    });
}

TEST_F(NumericTabsTest, EverySendListWritesItsNumber) {
    auto field = sendField(5);
    VarPtr result = send(field, [](SendNumericPanel& panel, frmProtocolVars& dialog) {
        panel.cbVectorLength.UserSelect(41);
        panel.cbPrefixSignFormat.UserSelect(1);
        panel.cbLeading.UserSelect(2);
        panel.cbBefore.UserSelect(8);
        panel.cbAfter.UserSelect(6);
        dialog.tbSMSVars.UserSelect(3);
        panel.cbCopyBytes.UserSelect(2);
        panel.cbSteamVector.UserSelect(199);
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(field->VectorLength(), 42);
    EXPECT_EQ(field->PrefixSignFormat(), 2);
    EXPECT_EQ(field->LeadingZeros(), 2);
    EXPECT_EQ(field->BeforePoint(), 9);
    EXPECT_EQ(field->AfterPoint(), 6);
    EXPECT_EQ(field->CopyBytesFormat(), 3);
    EXPECT_EQ(field->StreamVectorLength(), 200);
    EXPECT_EQ(result, field);

    auto hex = sendField(5);
    hex->VarFormat(1);
    send(hex, [](SendNumericPanel& panel, frmProtocolVars&) { panel.cbHexFormat.UserSelect(7); });
    EXPECT_EQ(hex->BeforePoint(), 8);
    auto binary = sendField(5);
    binary->VarFormat(2);
    send(binary, [](SendNumericPanel& panel, frmProtocolVars&) { panel.cbBinaryFormat.UserSelect(3); });
    EXPECT_EQ(binary->BeforePoint(), 4);
}

TEST_F(NumericTabsTest, HiddenSendPanelsTakeNoAction) {
    auto field = sendField(5);
    send(field, [](SendNumericPanel& panel, frmProtocolVars& dialog) {
        dialog.tbSMSVars.UserSelect(8);
        panel.cbVectorLength.UserSelect(9);
        panel.cbSteamVector.UserSelect(9);
    });
    EXPECT_EQ(field->VectorLength(), 1);
    EXPECT_EQ(field->StreamVectorLength(), 1);
}

// --- Send: type rules after a link ---

TEST_F(NumericTabsTest, LinkingAWordClipsBeforeThePointAndLeavesAfterThePointOnTheField) {
    auto field = sendField(5);
    field->BeforePoint(8);
    field->AfterPoint(7);
    driver.QueuePick(memoryChoice(3, 10));
    send(field, [](SendNumericPanel& panel, frmProtocolVars& dialog) {
        EXPECT_EQ(panel.cbBefore.Text(), L"8");
        dialog.cmdLink.UserClick();
        EXPECT_EQ(itemsOf(panel.cbBefore), numbered(1, 5));
        EXPECT_EQ(itemsOf(panel.cbAfter), numbered(0, 4));
        EXPECT_EQ(panel.cbBefore.Text(), L"5");
        EXPECT_EQ(panel.cbAfter.ListIndex(), 0);
        EXPECT_EQ(itemsOf(panel.cbCopyBytes), wordSendBytes);
    });
    EXPECT_EQ(field->BeforePoint(), 5);
    EXPECT_EQ(field->AfterPoint(), 7);
}

TEST_F(NumericTabsTest, LinkingALongWidensTheSendLists) {
    auto field = sendField(3);
    driver.QueuePick(memoryChoice(16, 10));
    send(field, [](SendNumericPanel& panel, frmProtocolVars& dialog) {
        dialog.cmdLink.UserClick();
        EXPECT_EQ(itemsOf(panel.cbBefore), numbered(1, 10));
        EXPECT_EQ(itemsOf(panel.cbAfter), numbered(0, 10));
        EXPECT_EQ(itemsOf(panel.cbCopyBytes), longSendBytes);
        EXPECT_EQ(panel.cbBefore.Text(), L"5");
    });
}

TEST_F(NumericTabsTest, ASendFloatStaysSmallWhenAnotherFloatIsLinked) {
    auto field = sendField(7);
    field->StreamForm(1);
    field->CopyBytesFormat(5);
    linkOperand(*field->LikedOperand(), 7, 4);
    driver.QueuePick(memoryChoice(7, 8));
    send(field, [](SendNumericPanel& panel, frmProtocolVars& dialog) {
        dialog.cmdLink.UserClick();
        EXPECT_EQ(itemsOf(panel.cbCopyBytes), floatSendBytes);
        EXPECT_EQ(panel.cbCopyBytes.Text(), L"Convert ONE Linked Element to 4 Send Bytes (Small)");
    });
    EXPECT_EQ(field->CopyBytesFormat(), 5);
    EXPECT_EQ(field->LikedOperand()->OperandAddress(), 8);
}

TEST_F(NumericTabsTest, LinkingSendWidthsAppliesTheCopyBytesResets) {
    struct Case {
        int32_t From, Type, Before, After;
    };
    for (const Case& c : {Case{5, 3, 2, 0}, Case{5, 4, 3, 0}, Case{5, 6, 3, 3}, Case{5, 7, 1, 2}, Case{7, 5, 5, 5}}) {
        auto field = sendField(c.From);
        field->StreamForm(1);
        field->CopyBytesFormat(c.Before);
        driver.QueuePick(memoryChoice(c.Type, 1));
        send(field, [](SendNumericPanel&, frmProtocolVars& dialog) { dialog.cmdLink.UserClick(); });
        EXPECT_EQ(field->CopyBytesFormat(), c.After) << c.Type << " " << c.Before;
    }
}

TEST_F(NumericTabsTest, ALinkOfNoKnownWidthLeavesTheSendListsAsTheyStand) {
    auto field = sendField(3);
    field->StreamForm(1);
    driver.QueuePick(memoryChoice(15, 1));
    send(field, [](SendNumericPanel& panel, frmProtocolVars& dialog) {
        dialog.cmdLink.UserClick();
        EXPECT_EQ(itemsOf(panel.cbBefore), numbered(1, 5));
        EXPECT_EQ(itemsOf(panel.cbCopyBytes), wordSendBytes);
    });
}

TEST_F(NumericTabsTest, LinkingABinaryFieldRefillsItsListAndStartsAtOneByte) {
    auto field = sendField(3);
    field->VarFormat(2);
    field->BeforePoint(2);
    driver.QueuePick(memoryChoice(5, 1));
    send(field, [](SendNumericPanel& panel, frmProtocolVars& dialog) {
        EXPECT_EQ(itemsOf(panel.cbBinaryFormat), sendBytes(2));
        dialog.cmdLink.UserClick();
        EXPECT_EQ(itemsOf(panel.cbBinaryFormat), sendBytes(4));
        EXPECT_EQ(panel.cbBinaryFormat.ListIndex(), 0);
    });
    EXPECT_EQ(field->BeforePoint(), 1);
}

// --- Send: a change of format ---

TEST_F(NumericTabsTest, DecimalToHexAndBackSetsTwoDigitsEachTimeAndResizes) {
    auto field = sendField(5);
    field->AfterPoint(3);
    field->LeadingZeros(1);
    std::vector<int32_t> heights;
    send(field, [&](SendNumericPanel& panel, frmProtocolVars& dialog) {
        panel.cbBefore.UserSelect(3);
        panel.cbPrefixSignFormat.UserSelect(1);
        panel.cbVarFormat.UserSelect(1);
        heights.push_back(dialog.Height());
        EXPECT_EQ(field->VarFormat(), 1);
        EXPECT_EQ(field->BeforePoint(), 2);
        EXPECT_EQ(field->AfterPoint(), 0);
        EXPECT_EQ(field->LeadingZeros(), 0);
        EXPECT_EQ(field->PrefixSignFormat(), 0);
        EXPECT_EQ(panel.cbHexFormat.ItemData(panel.cbHexFormat.ListIndex()), 2);
        EXPECT_EQ(panel.cbLeading.Text(), L"No Leading");
        EXPECT_EQ(panel.cbPrefixSignFormat.Text(), L"No Prefix");
        EXPECT_TRUE(panel.cbHexFormat.Visible());
        EXPECT_FALSE(panel.fFormat.Visible());
        panel.cbHexFormat.UserSelect(5);
        EXPECT_EQ(field->BeforePoint(), 6);
        panel.cbVarFormat.UserSelect(0);
        heights.push_back(dialog.Height());
        EXPECT_EQ(panel.cbBefore.Text(), L"2");
        EXPECT_EQ(panel.cbAfter.Text(), L"0");
        EXPECT_EQ(panel.cbPrefixSignFormat.Text(), L"Positive & Negative (+,-)");
        EXPECT_TRUE(panel.fFormat.Visible());
        EXPECT_FALSE(panel.cbHexFormat.Visible());
        EXPECT_EQ(dialog.StripHeight(), 3525);
    });
    EXPECT_EQ(heights, (std::vector<int32_t>{3300, 4650}));
    EXPECT_EQ(field->VarFormat(), 0);
    EXPECT_EQ(field->BeforePoint(), 2);
    EXPECT_EQ(field->PrefixSignFormat(), 1);
    EXPECT_EQ(field->LeadingZeros(), 0);
}

TEST_F(NumericTabsTest, ReturningToDecimalLeavesTheLeadingTypeAsItStands) {
    auto field = sendField(5);
    send(field, [&](SendNumericPanel& panel, frmProtocolVars&) {
        panel.cbVarFormat.UserSelect(1);
        EXPECT_EQ(field->LeadingZeros(), 0);
        field->LeadingZeros(2);
        panel.cbVarFormat.UserSelect(0);
    });
    EXPECT_EQ(field->LeadingZeros(), 2);
}

TEST_F(NumericTabsTest, AChangeOfSendFormatRunsTheTypeRulesOfTheLinkedOperand) {
    auto field = sendField(3);
    send(field, [&](SendNumericPanel& panel, frmProtocolVars&) {
        field->CopyBytesFormat(3);
        field->BeforePoint(9);
        panel.cbVarFormat.UserSelect(1);
        EXPECT_EQ(itemsOf(panel.cbCopyBytes), wordSendBytes);
        EXPECT_EQ(itemsOf(panel.cbBefore), numbered(1, 5));
    });
    EXPECT_EQ(field->CopyBytesFormat(), 0);
    EXPECT_EQ(field->BeforePoint(), 2);
}

// --- Send: the stream count ---

TEST_F(NumericTabsTest, ADirectStreamOpensWithTheVectorListEnabled) {
    auto field = sendField(5);
    field->StreamForm(1);
    field->StreamVectorLength(12);
    send(field, [](SendNumericPanel& panel, frmProtocolVars& dialog) {
        EXPECT_EQ(dialog.Height(), 4050);
        EXPECT_TRUE(panel.opDirect.Value());
        EXPECT_FALSE(panel.opInDirect.Value());
        EXPECT_TRUE(panel.cbSteamVector.Enabled());
        EXPECT_FALSE(panel.cmdInDirect.Enabled());
        EXPECT_FALSE(panel.lbInDirect.Enabled());
        EXPECT_EQ(panel.cbSteamVector.Text(), L"12");
    });
    EXPECT_EQ(field->StreamLengthAddress(), -1);
}

TEST_F(NumericTabsTest, AnIndirectStreamOpensWithTheCountButtonEnabled) {
    auto field = sendField(5);
    field->StreamForm(1);
    field->StreamLengthAddress(30);
    send(field, [](SendNumericPanel& panel, frmProtocolVars&) {
        EXPECT_TRUE(panel.opInDirect.Value());
        EXPECT_FALSE(panel.opDirect.Value());
        EXPECT_FALSE(panel.cbSteamVector.Enabled());
        EXPECT_TRUE(panel.cmdInDirect.Enabled());
        EXPECT_TRUE(panel.lbInDirect.Enabled());
    });
    EXPECT_EQ(field->StreamLengthAddress(), 30);
    EXPECT_EQ(field->Length(), 1);
}

TEST_F(NumericTabsTest, IndirectChosenWithNoOperandLeavesTheFieldDirect) {
    auto field = sendField(5);
    field->StreamForm(1);
    linkOperand(*field->LikedOperand(), 5, 2);
    VarPtr result = send(field, [](SendNumericPanel& panel, frmProtocolVars& dialog) {
        panel.opInDirect.UserClick();
        EXPECT_FALSE(panel.cbSteamVector.Enabled());
        EXPECT_TRUE(panel.cmdInDirect.Enabled());
        dialog.cmdOk.UserClick();
    });
    EXPECT_FALSE(result->IsCanceled());
    EXPECT_EQ(field->StreamLengthAddress(), -1);
}

TEST_F(NumericTabsTest, TheCountOperandIsATypeThreeLinkThatWritesItsAddress) {
    auto field = sendField(5);
    field->StreamForm(1);
    std::vector<AllowedType> offered;
    int32_t typeAsked = 0, addressAsked = 0;
    driver.QueuePick([&](clsOperand& operand) {
        offered = operand.AllowedTypes();
        typeAsked = operand.OperandType();
        addressAsked = operand.OperandAddress();
        operand.OperandAddress(20);
        return true;
    });
    driver.QueuePickCancel();
    driver.QueuePick(memoryChoice(3, 33));
    std::wstring shown, afterCancel, afterLabel, afterDirect;
    send(field, [&](SendNumericPanel& panel, frmProtocolVars&) {
        panel.opInDirect.UserClick();
        panel.cmdInDirect.UserClick();
        shown = panel.lbInDirect.Caption();
        panel.cmdInDirect.UserClick();
        afterCancel = panel.lbInDirect.Caption();
        EXPECT_EQ(field->StreamLengthAddress(), 20);
        panel.lbInDirect.UserClick();
        afterLabel = panel.lbInDirect.Caption();
        EXPECT_EQ(field->StreamLengthAddress(), 33);
        panel.opDirect.UserClick();
        afterDirect = panel.lbInDirect.Caption();
        EXPECT_TRUE(panel.cbSteamVector.Enabled());
        EXPECT_FALSE(panel.cmdInDirect.Enabled());
    });
    EXPECT_EQ(offered, (std::vector<AllowedType>{{1, 3, true}}));
    EXPECT_EQ(typeAsked, 3);
    EXPECT_EQ(addressAsked, -1);
    OperandPtr at20 = newOperand();
    linkOperand(*at20, 3, 20);
    EXPECT_EQ(shown, GetOperandDisplayText(*at20));
    EXPECT_EQ(afterCancel, shown);
    OperandPtr at33 = newOperand();
    linkOperand(*at33, 3, 33);
    EXPECT_EQ(afterLabel, GetOperandDisplayText(*at33));
    EXPECT_EQ(afterDirect, L"");
    EXPECT_EQ(field->StreamLengthAddress(), -1);
}

TEST_F(NumericTabsTest, TheCountPickerStartsFromTheAddressOfTheField) {
    auto field = sendField(5);
    field->StreamForm(1);
    field->StreamLengthAddress(30);
    int32_t addressAsked = 0;
    driver.QueuePick([&](clsOperand& operand) {
        addressAsked = operand.OperandAddress();
        return false;
    });
    send(field, [](SendNumericPanel& panel, frmProtocolVars&) { panel.cmdInDirect.UserClick(); });
    EXPECT_EQ(addressAsked, 30);
    EXPECT_EQ(field->StreamLengthAddress(), 30);
}

TEST_F(NumericTabsTest, SendValuesStayOnTheCandidateAcrossTabs) {
    auto field = sendField(5);
    linkOperand(*field->LikedOperand(), 5, 2);
    VarPtr result = send(field, [](SendNumericPanel& panel, frmProtocolVars& dialog) {
        panel.cbVectorLength.UserSelect(2);
        dialog.tbSMSVars.UserSelect(3);
        panel.cbSteamVector.UserSelect(6);
        dialog.tbSMSVars.UserSelect(8);
        dialog.tbSMSVars.UserSelect(2);
        EXPECT_EQ(panel.cbVectorLength.Text(), L"3");
        EXPECT_EQ(panel.cbSteamVector.Text(), L"7");
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(result, field);
    EXPECT_FALSE(result->IsCanceled());
    EXPECT_EQ(field->VectorLength(), 3);
    EXPECT_EQ(field->StreamVectorLength(), 7);
    EXPECT_EQ(field->StreamForm(), 0);
}

TEST_F(NumericTabsTest, TheSendPanelsAreFilledForAFieldOfAnotherClass) {
    auto date = std::make_shared<clsProtocolDateVar>();
    VarPtr result = edit(date, 0, [](frmProtocolVars& dialog) {
        dialog.tbSMSVars.UserSelect(2);
        dialog.SendNumeric.cbVarFormat.UserSelect(1);
        dialog.cmdCancel.UserClick();
    });
    auto numeric = std::dynamic_pointer_cast<clsProtocolNumericVar>(result);
    ASSERT_NE(numeric, nullptr);
    EXPECT_EQ(numeric->VarFormat(), 1);
    EXPECT_EQ(numeric->BeforePoint(), 2);
}

// --- Scan: the lists ---

TEST_F(NumericTabsTest, TheScanListsOfferTheirItemsWithTheirNumbers) {
    scan(scanField(), [](ScanNumericPanel& panel, frmProtocolVars&) {
        EXPECT_EQ(
            itemsOf(panel.cbScanVarFormat),
            (Items{{L"Decimal ASCII: Fixed Length", 0}, {L"Decimal ASCII: No Fixed Length", 1}, {L"Hex as Ascii", 2}}));
        EXPECT_EQ(itemsOf(panel.cbScanPrefixSignFormat),
                  (Items{{L"Positive & Negative (+,-)", 1}, {L"Negative Only (-)", 2}, {L"No Prefix", 0}}));
        EXPECT_EQ(itemsOf(panel.cbScanVectorLength), numbered(1, 100));
        EXPECT_EQ(itemsOf(panel.cbScanLength), numbered(1, 10));
        EXPECT_EQ(itemsOf(panel.cbScanStream), numbered(1, 255));
        Items hex;
        for (int32_t n = 1; n <= 8; ++n)
            hex.emplace_back(L"Convert " + std::to_wstring(n) + L" Receive Bytes to ONE Linked Element", n);
        EXPECT_EQ(itemsOf(panel.cbScanHexLength), hex);
        EXPECT_EQ(itemsOf(panel.cbScanCopyBytes), wordReceiveBytes);
        EXPECT_EQ(panel.cbScanVarFormat.ListIndex(), 0);
        EXPECT_EQ(panel.cbScanLength.Text(), L"5");
        EXPECT_EQ(panel.cbScanPrefixSignFormat.Text(), L"Positive & Negative (+,-)");
        EXPECT_EQ(panel.lbScanVectorLength.Caption(), L"Vector Length : ");
        EXPECT_EQ(panel.lbScanPrefix.Caption(), L"Prefix Sign Format : ");
        EXPECT_EQ(panel.lbScanLength.Caption(), L"Length : ");
        EXPECT_EQ(panel.lbDecimalPoint.Caption(), L"Decimal Point");
        EXPECT_EQ(panel.lbScanCopyBytes.Caption(), L"Format : ");
        EXPECT_EQ(panel.lbScanStream.Caption(), L"Vector Length : ");
        EXPECT_EQ(panel.ckSteamFixLen.Caption(), L"Stream Fixed Length");
        EXPECT_EQ(panel.ckAddNullToStream.Caption(), L"Add Null To The End Of The Stream");
    });
}

TEST_F(NumericTabsTest, OnLoadTheWidthOfTheOperandDecidesTheScanCopyBytesList) {
    for (const auto& [type, items] : std::vector<std::pair<int32_t, Items>>{{3, wordReceiveBytes},
                                                                            {65, wordReceiveBytes},
                                                                            {5, longReceiveBytes},
                                                                            {16, longReceiveBytes},
                                                                            {67, longReceiveBytes},
                                                                            {7, floatReceiveBytes},
                                                                            {99, longReceiveBytes}}) {
        auto field = scanField(type);
        field->StreamForm(1);
        // Structured bindings are captured by copy: not every compiler takes them in a lambda.
        const int32_t operandType = type;
        const Items expected = items;
        scan(field, [&](ScanNumericPanel& panel, frmProtocolVars&) {
            EXPECT_EQ(itemsOf(panel.cbScanCopyBytes), expected) << operandType;
        });
    }
}

TEST_F(NumericTabsTest, TheScanLoadResetsNothing) {
    auto word = scanField(3);
    word->StreamForm(1);
    word->VarFormat(4);
    word->CopyBytesFormat(3);
    scan(word, [](ScanNumericPanel& panel, frmProtocolVars&) { EXPECT_EQ(panel.cbScanCopyBytes.ListIndex(), 0); });
    EXPECT_EQ(word->CopyBytesFormat(), 3);
    auto small = scanField(7);
    small->StreamForm(1);
    small->VarFormat(4);
    small->CopyBytesFormat(5);
    scan(small, [](ScanNumericPanel& panel, frmProtocolVars&) {
        EXPECT_EQ(panel.cbScanCopyBytes.Text(), L"Convert 4 Receive Bytes to ONE Linked Element (Small)");
    });
    EXPECT_EQ(small->CopyBytesFormat(), 5);
}

TEST_F(NumericTabsTest, EachScanFormatShowsItsOwnRowsOnLoad) {
    struct Shown {
        bool Frame, Prefix, Length, Vector, Hex, Point;
        bool operator==(const Shown&) const = default;
    };
    auto shownOf = [](ScanNumericPanel& p) {
        return Shown{p.fScanFormat.Visible(),
                     p.lbScanPrefix.Visible(),
                     p.cbScanLength.Visible() && p.lbScanLength.Visible(),
                     p.cbScanVectorLength.Visible() && p.lbScanVectorLength.Visible(),
                     p.cbScanHexLength.Visible(),
                     p.lbDecimalPoint.Visible() && p.lbDecimalPointOp.Visible() && p.cmdDecimalPointOp.Visible()};
    };
    std::vector<Shown> seen;
    std::vector<int32_t> heights;
    for (int32_t format : {0, 1, 2, 4}) {
        auto field = scanField();
        field->VarFormat(format);
        field->BeforePoint(7);
        if (format == 4) field->StreamForm(1);
        scan(field, [&](ScanNumericPanel& panel, frmProtocolVars& dialog) {
            seen.push_back(shownOf(panel));
            heights.push_back(dialog.Height());
            EXPECT_EQ(panel.ckSteamFixLen.Value(), CheckBox::Unchecked);
        });
        EXPECT_EQ(field->BeforePoint(), 7);
    }
    EXPECT_EQ(seen, (std::vector<Shown>{{true, true, true, true, false, true},
                                        {true, true, false, false, false, true},
                                        {false, true, true, true, true, true},
                                        {true, true, true, true, false, true}}));
    EXPECT_EQ(heights, (std::vector<int32_t>{4950, 4950, 4300, 3550}));
}

TEST_F(NumericTabsTest, AFixedStreamOpensWithItsBoxChecked) {
    auto field = scanField();
    field->StreamForm(1);
    field->VarFormat(3);
    field->AddNullToEndOfStream(true);
    scan(field, [](ScanNumericPanel& panel, frmProtocolVars& dialog) {
        EXPECT_EQ(dialog.tbSMSVars.SelectedTab(), 6);
        EXPECT_EQ(panel.ckSteamFixLen.Value(), CheckBox::Checked);
        EXPECT_EQ(panel.ckAddNullToStream.Value(), CheckBox::Checked);
    });
    EXPECT_EQ(field->VarFormat(), 3);
    EXPECT_TRUE(field->AddNullToEndOfStream());
}

TEST_F(NumericTabsTest, EveryScanListAndBoxWritesItsValue) {
    auto field = scanField(5);
    scan(field, [&](ScanNumericPanel& panel, frmProtocolVars& dialog) {
        panel.cbScanVectorLength.UserSelect(9);
        panel.cbScanPrefixSignFormat.UserSelect(2);
        panel.cbScanLength.UserSelect(6);
        EXPECT_EQ(field->BeforePoint(), 7);
        dialog.tbSMSVars.UserSelect(6);
        panel.cbScanStream.UserSelect(99);
        panel.cbScanCopyBytes.UserSelect(3);
        panel.ckSteamFixLen.UserClick();
        EXPECT_EQ(field->VarFormat(), 3);
        panel.ckSteamFixLen.UserClick();
        EXPECT_EQ(field->VarFormat(), 4);
        panel.ckAddNullToStream.UserClick();
        EXPECT_TRUE(field->AddNullToEndOfStream());
        panel.ckAddNullToStream.UserClick();
        EXPECT_FALSE(field->AddNullToEndOfStream());
        panel.ckAddNullToStream.UserClick();
    });
    EXPECT_EQ(field->VectorLength(), 10);
    EXPECT_EQ(field->PrefixSignFormat(), 0);
    EXPECT_EQ(field->StreamVectorLength(), 100);
    EXPECT_EQ(field->CopyBytesFormat(), 2);
    EXPECT_TRUE(field->AddNullToEndOfStream());

    auto hex = scanField(5);
    hex->VarFormat(2);
    scan(hex, [](ScanNumericPanel& panel, frmProtocolVars&) { panel.cbScanHexLength.UserSelect(5); });
    EXPECT_EQ(hex->BeforePoint(), 6);
}

// --- Scan: a change of format ---

TEST_F(NumericTabsTest, AChangeOfScanFormatSetsTheLengthShowsItsRowsAndResizes) {
    auto field = scanField(3);
    field->BeforePoint(7);
    linkOperand(*field->LikedOperand(), 3, 1);
    std::vector<int32_t> heights;
    std::vector<bool> ok;
    scan(field, [&](ScanNumericPanel& panel, frmProtocolVars& dialog) {
        ok.push_back(dialog.cmdOk.Enabled());
        panel.cbScanVarFormat.UserSelect(2);
        heights.push_back(dialog.Height());
        ok.push_back(dialog.cmdOk.Enabled());
        EXPECT_EQ(field->BeforePoint(), 2);
        EXPECT_EQ(panel.cbScanHexLength.ItemData(panel.cbScanHexLength.ListIndex()), 2);
        EXPECT_FALSE(panel.fScanFormat.Visible());
        EXPECT_TRUE(panel.cbScanHexLength.Visible());
        panel.cbScanVarFormat.UserSelect(1);
        heights.push_back(dialog.Height());
        ok.push_back(dialog.cmdOk.Enabled());
        EXPECT_EQ(field->BeforePoint(), 2);
        EXPECT_EQ(field->Length(), 1);
        EXPECT_TRUE(panel.fScanFormat.Visible());
        EXPECT_FALSE(panel.cbScanLength.Visible());
        EXPECT_FALSE(panel.cbScanVectorLength.Visible());
        EXPECT_FALSE(panel.cbScanHexLength.Visible());
        panel.cbScanVarFormat.UserSelect(0);
        heights.push_back(dialog.Height());
        EXPECT_EQ(field->BeforePoint(), 5);
        EXPECT_EQ(panel.cbScanLength.Text(), L"5");
        EXPECT_TRUE(panel.cbScanLength.Visible());
        EXPECT_TRUE(panel.cbScanVectorLength.Visible());
        EXPECT_TRUE(panel.lbDecimalPointOp.Visible());
    });
    EXPECT_EQ(heights, (std::vector<int32_t>{4300, 4950, 4950}));
    // A linked field opens with OK enabled; the rule runs from the first change on.
    EXPECT_EQ(ok, (std::vector<bool>{true, true, false}));
    EXPECT_EQ(field->VarFormat(), 0);
}

TEST_F(NumericTabsTest, AChangeOfScanFormatRunsTheCopyBytesRuleOfTheLinkedOperand) {
    auto field = scanField(3);
    scan(field, [&](ScanNumericPanel& panel, frmProtocolVars&) {
        field->CopyBytesFormat(2);
        panel.cbScanVarFormat.UserSelect(1);
        EXPECT_EQ(itemsOf(panel.cbScanCopyBytes), wordReceiveBytes);
    });
    EXPECT_EQ(field->CopyBytesFormat(), 0);
}

// --- Scan: type rules after a link ---

TEST_F(NumericTabsTest, AScanFloatFallsBackToBigWhenAnotherFloatIsLinked) {
    auto field = scanField(7);
    field->StreamForm(1);
    field->VarFormat(4);
    field->CopyBytesFormat(5);
    linkOperand(*field->LikedOperand(), 7, 4);
    driver.QueuePick(memoryChoice(7, 8));
    scan(field, [](ScanNumericPanel& panel, frmProtocolVars& dialog) {
        dialog.cmdLink.UserClick();
        EXPECT_EQ(itemsOf(panel.cbScanCopyBytes), floatReceiveBytes);
        EXPECT_EQ(panel.cbScanCopyBytes.ListIndex(), 0);
    });
    EXPECT_EQ(field->CopyBytesFormat(), 2);
}

TEST_F(NumericTabsTest, LinkingScanWidthsAppliesTheCopyBytesResets) {
    struct Case {
        int32_t From, Type, Before, After;
        Items List;
    };
    for (const Case& c : {Case{5, 3, 2, 0, wordReceiveBytes}, Case{5, 65, 3, 0, wordReceiveBytes},
                          Case{5, 3, 1, 1, wordReceiveBytes}, Case{3, 5, 3, 3, longReceiveBytes},
                          Case{3, 7, 1, 2, floatReceiveBytes}, Case{3, 15, 1, 1, wordReceiveBytes}}) {
        auto field = scanField(c.From);
        field->StreamForm(1);
        field->VarFormat(4);
        field->CopyBytesFormat(c.Before);
        driver.QueuePick(memoryChoice(c.Type, 1));
        scan(field, [&](ScanNumericPanel& panel, frmProtocolVars& dialog) {
            dialog.cmdLink.UserClick();
            EXPECT_EQ(itemsOf(panel.cbScanCopyBytes), c.List) << c.Type;
        });
        EXPECT_EQ(field->CopyBytesFormat(), c.After) << c.Type << " " << c.Before;
    }
}

TEST_F(NumericTabsTest, AScanLinkLeavesTheLengthListsAlone) {
    auto field = scanField(3);
    field->BeforePoint(9);
    driver.QueuePick(memoryChoice(5, 1));
    scan(field, [](ScanNumericPanel& panel, frmProtocolVars& dialog) {
        dialog.cmdLink.UserClick();
        EXPECT_EQ(itemsOf(panel.cbScanLength), numbered(1, 10));
        EXPECT_EQ(panel.cbScanLength.Text(), L"9");
        EXPECT_EQ(itemsOf(panel.cbScanCopyBytes), longReceiveBytes);
    });
    EXPECT_EQ(field->BeforePoint(), 9);
}

// --- Scan: the decimal point ---

TEST_F(NumericTabsTest, TheDecimalPointLinkShowsItselfAndCompletesTheScanOkRule) {
    auto field = scanField(3);
    driver.QueuePick(memoryChoice(3, 5));
    driver.QueuePickCancel();
    driver.QueuePick(memoryChoice(3, 6));
    std::vector<bool> ok;
    std::wstring shown;
    VarPtr result = scan(field, [&](ScanNumericPanel& panel, frmProtocolVars& dialog) {
        ok.push_back(dialog.cmdOk.Enabled());
        dialog.cmdLink.UserClick();
        ok.push_back(dialog.cmdOk.Enabled());
        panel.cmdDecimalPointOp.UserClick();
        ok.push_back(dialog.cmdOk.Enabled());
        EXPECT_EQ(panel.lbDecimalPointOp.Caption(), L"");
        panel.lbDecimalPointOp.UserClick();
        ok.push_back(dialog.cmdOk.Enabled());
        shown = panel.lbDecimalPointOp.Caption();
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(ok, (std::vector<bool>{false, false, false, true}));
    EXPECT_EQ(shown, GetOperandDisplayText(*field->DecimalPointOperand()));
    EXPECT_EQ(field->DecimalPointOperand()->OperandAddress(), 6);
    EXPECT_FALSE(result->IsCanceled());
}

TEST_F(NumericTabsTest, ALinkedDecimalPointShowsOnLoad) {
    auto field = scanField(3);
    linkOperand(*field->DecimalPointOperand(), 3, 12);
    linkOperand(*field->LikedOperand(), 3, 11);
    std::wstring shown;
    bool ok = false;
    scan(field, [&](ScanNumericPanel& panel, frmProtocolVars& dialog) {
        shown = panel.lbDecimalPointOp.Caption();
        ok = dialog.cmdOk.Enabled();
    });
    EXPECT_EQ(shown, GetOperandDisplayText(*field->DecimalPointOperand()));
    EXPECT_TRUE(ok);
}

// --- Scan: tabs ---

TEST_F(NumericTabsTest, TheScanNumericTabTakesTheFormatItsListShows) {
    auto field = scanField(3);
    field->VarFormat(2);
    std::vector<int32_t> formats;
    scan(field, [&](ScanNumericPanel& panel, frmProtocolVars& dialog) {
        dialog.tbSMSVars.UserSelect(6);
        formats.push_back(field->VarFormat());
        panel.ckSteamFixLen.UserClick();
        formats.push_back(field->VarFormat());
        dialog.tbSMSVars.UserSelect(5);
        formats.push_back(field->VarFormat());
        EXPECT_EQ(dialog.Height(), 4300);
        dialog.tbSMSVars.UserSelect(6);
        // Still checked, yet the stream tab sets a free length.
        EXPECT_EQ(panel.ckSteamFixLen.Value(), CheckBox::Checked);
        formats.push_back(field->VarFormat());
        EXPECT_EQ(dialog.Height(), 3550);
    });
    EXPECT_EQ(formats, (std::vector<int32_t>{4, 3, 2, 4}));
}

TEST_F(NumericTabsTest, ScanValuesStayOnTheCandidateAcrossTabs) {
    auto field = scanField(3);
    linkOperand(*field->LikedOperand(), 3, 1);
    VarPtr result = scan(field, [](ScanNumericPanel& panel, frmProtocolVars& dialog) {
        panel.cbScanVarFormat.UserSelect(2);
        panel.cbScanHexLength.UserSelect(3);
        dialog.tbSMSVars.UserSelect(6);
        panel.cbScanStream.UserSelect(4);
        dialog.tbSMSVars.UserSelect(7);
        dialog.tbSMSVars.UserSelect(5);
        EXPECT_EQ(panel.cbScanVarFormat.ItemData(panel.cbScanVarFormat.ListIndex()), 2);
        EXPECT_EQ(panel.cbScanHexLength.ItemData(panel.cbScanHexLength.ListIndex()), 4);
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(result, field);
    EXPECT_FALSE(result->IsCanceled());
    EXPECT_EQ(field->VarFormat(), 2);
    EXPECT_EQ(field->BeforePoint(), 4);
    EXPECT_EQ(field->StreamVectorLength(), 5);
    EXPECT_EQ(field->StreamForm(), 0);
}

TEST_F(NumericTabsTest, AScanChecksumHasItsNumericTabFilled) {
    VarPtr result = edit(std::make_shared<clsProtocolCSVar>(), 1, [](frmProtocolVars& dialog) {
        dialog.tbSMSVars.UserSelect(5);
        dialog.ScanNumeric.cbScanVarFormat.UserSelect(2);
        dialog.cmdCancel.UserClick();
    });
    auto numeric = std::dynamic_pointer_cast<clsProtocolScanNumericVar>(result);
    ASSERT_NE(numeric, nullptr);
    EXPECT_EQ(numeric->VarFormat(), 2);
    EXPECT_EQ(numeric->BeforePoint(), 2);
}

// --- Values the lists do not hold ---

TEST_F(NumericTabsTest, AValueNoListHoldsShowsTheFirstItemAndStaysOnTheField) {
    auto sendSide = sendField(5);
    sendSide->VectorLength(150);
    sendSide->LeadingZeros(7);
    sendSide->StreamVectorLength(300);
    send(sendSide, [](SendNumericPanel& panel, frmProtocolVars&) {
        EXPECT_EQ(panel.cbVectorLength.Text(), L"1");
        EXPECT_EQ(panel.cbLeading.Text(), L"No Leading");
        EXPECT_EQ(panel.cbSteamVector.Text(), L"1");
    });
    EXPECT_EQ(sendSide->VectorLength(), 150);
    EXPECT_EQ(sendSide->LeadingZeros(), 7);
    EXPECT_EQ(sendSide->StreamVectorLength(), 300);

    auto scanSide = scanField(5);
    scanSide->BeforePoint(12);
    scanSide->VectorLength(101);
    scan(scanSide, [](ScanNumericPanel& panel, frmProtocolVars&) {
        EXPECT_EQ(panel.cbScanLength.Text(), L"1");
        EXPECT_EQ(panel.cbScanHexLength.ListIndex(), 0);
        EXPECT_EQ(panel.cbScanVectorLength.Text(), L"1");
    });
    EXPECT_EQ(scanSide->BeforePoint(), 12);
    EXPECT_EQ(scanSide->VectorLength(), 101);
}

TEST_F(NumericTabsTest, TheSendDialogTakesTheHeightOfTheFormatAndTheForm) {
    auto field = sendField(5);
    field->VarFormat(2);
    std::vector<int32_t> heights;
    send(field, [&](SendNumericPanel& panel, frmProtocolVars& dialog) {
        heights.push_back(dialog.Height());
        dialog.tbSMSVars.UserSelect(3);
        heights.push_back(dialog.Height());
        dialog.tbSMSVars.UserSelect(2);
        heights.push_back(dialog.Height());
        panel.cbVarFormat.UserSelect(0);
        heights.push_back(dialog.Height());
        panel.cbVarFormat.UserSelect(1);
        heights.push_back(dialog.Height());
    });
    EXPECT_EQ(heights, (std::vector<int32_t>{3300, 4050, 3300, 4650, 3300}));
}

}  // namespace
}  // namespace qx
