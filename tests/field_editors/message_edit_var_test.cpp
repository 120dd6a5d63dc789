// A message creates and changes its fields through the field dialog, as the
// message editors do on a double click: the dialog is played by a scripted
// person, the message's checks and messages are asserted.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "field_editors/field_editors.h"
#include "field_editors/frm_protocol_vars.h"
#include "message/editor_hooks.h"
#include "message/protocol_cs_var.h"
#include "message/protocol_date_var.h"
#include "message/protocol_message.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "message/protocol_time_var.h"
#include "platform/host/host_context.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

using test::runtimeErrorOf;

class MessageEditVarTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    ScopedEditorHooks hooks;
    ScriptedModalDriver& driver = *context->Script();
    clsProtocolMessage message;

    void SetUp() override {
        installFieldEditors();
        message.MessageString(padded(L"ABCDEFGHIJ"));
    }
    static std::wstring padded(const std::wstring& text) {
        return text + std::wstring(clsProtocolMessage::MaxPositions - text.size(), L' ');
    }
    void onDialog(std::function<void(frmProtocolVars&)> script) {
        driver.QueueDialog(scriptFor<frmProtocolVars>(std::move(script)));
    }
    // A new field at the position: the person takes the time tab with "HH:MM:SS", OK.
    bool addTime(int32_t position, int32_t format = 1) {
        onDialog([format](frmProtocolVars& dialog) {
            dialog.tbSMSVars.UserSelect(9);
            dialog.cbTimeFormatType.UserSelect(format);
            dialog.cmdOk.UserClick();
        });
        return message.EditVar(position);
    }
    std::vector<int32_t> shownMessages() {
        std::vector<int32_t> numbers;
        for (const auto& shown : context->Messages) numbers.push_back(shown.Number);
        return numbers;
    }
};

TEST_F(MessageEditVarTest, WithoutTheFieldEditorsAFieldCannotBeEdited) {
    editorHooks().Field = nullptr;
    EXPECT_EQ(runtimeErrorOf([&] { message.EditVar(2); }), 91);
    EXPECT_EQ(message.NumberOfVars(), 0);
}

TEST_F(MessageEditVarTest, ANewFieldPushesWhatFollowsByItsLength) {
    EXPECT_TRUE(addTime(2));
    ASSERT_EQ(message.NumberOfVars(), 1);
    auto time = std::dynamic_pointer_cast<clsProtocolTimeVar>(message.GetVar(1));
    ASSERT_NE(time, nullptr);
    EXPECT_EQ(time->StartPosition(), 2);
    EXPECT_EQ(time->Length(), 8);
    EXPECT_FALSE(time->IsCanceled());
    EXPECT_EQ(message.MessageString(), padded(L"AB        CDEFGHIJ"));
}

TEST_F(MessageEditVarTest, ANewFieldGoesBeforeTheFirstFieldBehindIt) {
    addTime(6, 0);  // HH:MM at 6: "ABCDEF" + 5 + "GHIJ"
    addTime(1, 0);  // at 1, before it
    ASSERT_EQ(message.NumberOfVars(), 2);
    EXPECT_EQ(message.GetVar(1)->StartPosition(), 1);
    EXPECT_EQ(message.GetVar(2)->StartPosition(), 11);
    EXPECT_EQ(message.MessageString(), padded(L"A     BCDEF     GHIJ"));
}

TEST_F(MessageEditVarTest, AFieldThatGrowsPushesWhatFollowsAndOneThatShrinksLeavesBlanks) {
    addTime(2, 0);   // 5 positions at 2
    addTime(12, 0);  // a second field behind it, at 12
    onDialog([](frmProtocolVars& dialog) {
        dialog.cbTimeFormatType.UserSelect(1);  // 8 positions
        dialog.cmdOk.UserClick();
    });
    EXPECT_TRUE(message.EditVar(3));
    EXPECT_EQ(message.GetVar(1)->Length(), 8);
    EXPECT_EQ(message.GetVar(1)->StartPosition(), 2);
    EXPECT_EQ(message.GetVar(2)->StartPosition(), 15);
    const std::wstring grown = message.MessageString();

    onDialog([](frmProtocolVars& dialog) {
        dialog.cbTimeFormatType.UserSelect(0);  // back to 5
        dialog.cmdOk.UserClick();
    });
    EXPECT_TRUE(message.EditVar(2));
    EXPECT_EQ(message.GetVar(1)->Length(), 5);
    EXPECT_EQ(message.GetVar(2)->StartPosition(), 15);
    EXPECT_EQ(message.MessageString(), grown);
}

TEST_F(MessageEditVarTest, CancelChangesNothing) {
    addTime(2, 0);
    const VarPtr before = message.GetVar(1);
    const std::wstring text = message.MessageString();
    onDialog([](frmProtocolVars& dialog) {
        dialog.cbTimeFormatType.UserSelect(1);
        dialog.tbSMSVars.UserSelect(8);
        dialog.cmdCancel.UserClick();
    });
    EXPECT_TRUE(message.EditVar(2));
    EXPECT_EQ(message.GetVar(1), before);
    EXPECT_EQ(std::dynamic_pointer_cast<clsProtocolTimeVar>(before)->TimeFormatType(), 0);
    EXPECT_EQ(message.MessageString(), text);
    EXPECT_TRUE(shownMessages().empty());
}

TEST_F(MessageEditVarTest, ACanceledNewFieldLeavesTheMessage) {
    onDialog([](frmProtocolVars& dialog) { dialog.cmdCancel.UserClick(); });
    EXPECT_TRUE(message.EditVar(4));
    EXPECT_EQ(message.NumberOfVars(), 0);
    EXPECT_EQ(message.MessageString(), padded(L"ABCDEFGHIJ"));
}

TEST_F(MessageEditVarTest, AFieldOfLengthZeroIsRefusedSilently) {
    onDialog([](frmProtocolVars& dialog) {
        dialog.tbSMSVars.UserSelect(1);  // binary texts, both empty
        dialog.cmdCancel.UserClick();
    });
    EXPECT_FALSE(message.EditVar(4));
    EXPECT_EQ(message.NumberOfVars(), 0);
    EXPECT_TRUE(shownMessages().empty());
}

TEST_F(MessageEditVarTest, AFieldChangingKindKeepsItsPlace) {
    addTime(3, 0);
    addTime(20, 0);
    onDialog([](frmProtocolVars& dialog) {
        dialog.tbSMSVars.UserSelect(7);
        dialog.Checksum.cbCSLength.UserSelect(1);  // 2 bytes
        dialog.cmdOk.UserClick();
    });
    EXPECT_TRUE(message.EditVar(3));
    ASSERT_EQ(message.NumberOfVars(), 2);
    auto checksum = std::dynamic_pointer_cast<clsProtocolCSVar>(message.GetVar(1));
    ASSERT_NE(checksum, nullptr);
    EXPECT_EQ(checksum->StartPosition(), 3);
    EXPECT_EQ(checksum->Length(), 2);
    EXPECT_EQ(message.GetVar(2)->StartPosition(), 20);
}

TEST_F(MessageEditVarTest, TheFiftyFirstFieldIsRefusedWith160AndNoDialog) {
    for (int32_t i = 0; i < clsProtocolMessage::MaxVars; ++i) {
        auto field = std::make_shared<clsProtocolTimeVar>();
        field->StartPosition(i * 5);
        message.AddVar(field);
    }
    EXPECT_FALSE(message.EditVar(260));
    ASSERT_EQ(context->Messages.size(), 1u);
    EXPECT_EQ(context->Messages[0].Number, 160);
    EXPECT_EQ(context->Messages[0].Params, (std::vector<std::wstring>{L"50"}));
    EXPECT_EQ(message.NumberOfVars(), 50);
}

TEST_F(MessageEditVarTest, ANewFieldEndingPastTheLastPositionIsRefusedWith159) {
    EXPECT_TRUE(addTime(495));
    EXPECT_EQ(shownMessages(), (std::vector<int32_t>{159}));
    EXPECT_TRUE(context->Messages[0].Params.empty());
    EXPECT_EQ(message.NumberOfVars(), 0);
    EXPECT_EQ(message.MessageString(), padded(L"ABCDEFGHIJ"));
}

TEST_F(MessageEditVarTest, AnExistingFieldGrowingPastTheLastPositionIsRefusedWith159) {
    addTime(494, 0);  // 494 + 5 = 499
    const VarPtr before = message.GetVar(1);
    onDialog([](frmProtocolVars& dialog) {
        dialog.cbTimeFormatType.UserSelect(1);
        dialog.cmdOk.UserClick();
    });
    EXPECT_TRUE(message.EditVar(494));
    EXPECT_EQ(shownMessages(), (std::vector<int32_t>{159}));
    EXPECT_EQ(message.GetVar(1), before);
    EXPECT_EQ(before->Length(), 5);
}

TEST_F(MessageEditVarTest, AFieldLongerThan500IsRefusedWith158) {
    onDialog([](frmProtocolVars& dialog) {
        dialog.SendNumeric.cbVectorLength.UserSelect(99);  // 100 elements of six positions
        dialog.cmdCancel.UserClick();
    });
    EXPECT_FALSE(message.EditVar(0));
    ASSERT_EQ(context->Messages.size(), 1u);
    EXPECT_EQ(context->Messages[0].Number, 158);
    EXPECT_EQ(context->Messages[0].Params, (std::vector<std::wstring>{L"500"}));
    EXPECT_EQ(message.NumberOfVars(), 0);
}

TEST_F(MessageEditVarTest, ANewFieldOfAScanIsAScanNumericFieldLinkedInTheDialog) {
    message.MethodType(method_type::Scan);
    driver.QueuePick(OperandChoice{1, 3, 70, 0, L"", 0});
    driver.QueuePick(OperandChoice{1, 3, 71, 0, L"", 0});
    int32_t tab = 0;
    onDialog([&](frmProtocolVars& dialog) {
        tab = dialog.tbSMSVars.SelectedTab();
        dialog.cmdLink.UserClick();
        dialog.ScanNumeric.cmdDecimalPointOp.UserClick();
        dialog.cmdOk.UserClick();
    });
    EXPECT_TRUE(message.EditVar(1));
    EXPECT_EQ(tab, 5);
    ASSERT_EQ(message.NumberOfVars(), 1);
    auto scan = std::dynamic_pointer_cast<clsProtocolScanNumericVar>(message.GetVar(1));
    ASSERT_NE(scan, nullptr);
    EXPECT_EQ(scan->StartPosition(), 1);
    EXPECT_EQ(scan->LikedOperand()->OperandAddress(), 70);
    EXPECT_EQ(scan->DecimalPointOperand()->OperandAddress(), 71);
}

TEST_F(MessageEditVarTest, TheEditedFieldIsAReplicaAndTheOriginalStaysUntilOk) {
    addTime(2, 0);
    const VarPtr before = message.GetVar(1);
    onDialog([&](frmProtocolVars& dialog) {
        EXPECT_NE(dialog.CurrentVar, before);
        dialog.cbTimeFormatType.UserSelect(1);
        EXPECT_EQ(std::dynamic_pointer_cast<clsProtocolTimeVar>(before)->TimeFormatType(), 0);
        dialog.cmdOk.UserClick();
    });
    message.EditVar(2);
    EXPECT_NE(message.GetVar(1), before);
    EXPECT_EQ(std::dynamic_pointer_cast<clsProtocolTimeVar>(message.GetVar(1))->TimeFormatType(), 1);
}

// --- The checksum tab of the field dialog ---

TEST_F(MessageEditVarTest, TheChecksumTabFollowsTheExtendedOperandsForItsStxBox) {
    auto field = std::make_shared<clsProtocolCSVar>();
    field->STXInCS(true);
    bool enabled = true, checked = true;
    onDialog([&](frmProtocolVars& dialog) {
        enabled = dialog.Checksum.chkSTXInCS.Enabled();
        checked = dialog.Checksum.chkSTXInCS.Value() == CheckBox::Checked;
        dialog.cmdCancel.UserClick();
    });
    int32_t send = 0;
    frmProtocolVars().Edit(field, send);
    EXPECT_FALSE(enabled);
    EXPECT_FALSE(checked);

    context->ExtendedOperands = true;
    auto extended = std::make_shared<clsProtocolCSVar>();
    extended->STXInCS(true);
    onDialog([&](frmProtocolVars& dialog) {
        enabled = dialog.Checksum.chkSTXInCS.Enabled();
        checked = dialog.Checksum.chkSTXInCS.Value() == CheckBox::Checked;
        dialog.cmdCancel.UserClick();
    });
    frmProtocolVars().Edit(extended, send);
    EXPECT_TRUE(enabled);
    EXPECT_TRUE(checked);
}

TEST_F(MessageEditVarTest, TheChecksumTabWritesItsListsToTheCandidate) {
    auto field = std::make_shared<clsProtocolCSVar>();
    onDialog([](frmProtocolVars& dialog) {
        dialog.Checksum.cbCSCalcType.UserSelect(1);    // XOR-8
        dialog.Checksum.cbCSFromFwr.UserSelect(2);     // 2
        dialog.Checksum.cbCSFormatView.UserSelect(1);  // Hex as ASCII
        dialog.cmdOk.UserClick();
    });
    int32_t send = 0;
    VarPtr result = frmProtocolVars().Edit(field, send);
    auto checksum = std::dynamic_pointer_cast<clsProtocolCSVar>(result);
    ASSERT_NE(checksum, nullptr);
    EXPECT_EQ(checksum, field);
    EXPECT_EQ(checksum->CalculationType(), 2);
    EXPECT_EQ(checksum->OffsetFromForward(), 2);
    EXPECT_EQ(checksum->FormatView(), 1);
    EXPECT_FALSE(checksum->IsCanceled());
}

}  // namespace
}  // namespace qx
