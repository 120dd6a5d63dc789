// The checksum panel on its own, in a host form as the field dialog's tab
// will hold it: its controls and where they sit, the fill that grows
// cbCSFromFwr, the host's loading flag, the enabling, and both hosts' rows
// of the rule for chkSTXInCS.
#include "field_editors/checksum_panel.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "field_editor_bench.h"
#include "platform/controls/form.h"

namespace qx {
namespace {

// A form that holds the panel inside a frame, as a tab of the field dialog would.
class PanelHost : public Form {
public:
    PanelHost() : Form(L"PanelHost") {
        addControls({&tab});
        addControls(Panel.Controls());
        Panel.Container(&tab);
    }
    bool IsLoading = false;
    Frame tab{L"tab"};
    ChecksumPanel Panel{IsLoading};
};

class ChecksumPanelTest : public test::FieldEditorTest {
protected:
    PanelHost host;
    ChecksumPanel& panel = host.Panel;
    CSVarPtr checksum = std::make_shared<clsProtocolCSVar>();

    void SetUp() override {
        panel.Candidate(checksum);
        host.Show();
    }
    // Fill and load as a host does it.
    void load() {
        host.IsLoading = true;
        panel.FillLists();
        panel.ShowCandidate();
        host.IsLoading = false;
    }
};

TEST_F(ChecksumPanelTest, OwnsItsTwentyFourControlsWithTheirNames) {
    std::vector<std::wstring> names;
    for (Control* control : panel.Controls()) names.push_back(control->Name());
    EXPECT_EQ(names, (std::vector<std::wstring>{
                         L"lbCSFromFwr",      L"cbCSFromFwr",       L"lbCSFromBwr",       L"cbCSFromBwr",
                         L"lbCSCalcType",     L"cbCSCalcType",      L"lbCSModulusType",   L"cbCSModulusType",
                         L"lbCSLength",       L"cbCSLength",        L"lbCSFormatView",    L"cbCSFormatView",
                         L"chkSTXInCS",       L"ckSpecialAddition", L"fSpecialAddition",  L"lbCSSAFromVal",
                         L"lbtxtCSSAFromVal", L"cmdCSSAFromVal",    L"lbCSSAToVal",       L"lbtxtCSSAToVal",
                         L"cmdCSSAToVal",     L"lbCSSAAddedVal",    L"lbtxtCSSAAddedVal", L"cmdCSSAAddedVal"}));
    EXPECT_EQ(host.Controls().size(), 25u);
    for (Control* control : panel.Controls()) EXPECT_EQ(control->Parent(), &host);
}

TEST_F(ChecksumPanelTest, TheLimitRowsSitInTheirFrameAndTheRestInTheHostsContainer) {
    for (Control* control : panel.Controls()) {
        const std::wstring& name = control->Name();
        const bool row = name.find(L"CSSA") != std::wstring::npos;
        EXPECT_EQ(control->Container(), row ? static_cast<Control*>(&panel.fSpecialAddition) : &host.tab)
            << std::string(name.begin(), name.end());
    }
}

TEST_F(ChecksumPanelTest, EachFillAddsSixteenOffsetsToTheForwardListOnly) {
    panel.FillLists();
    panel.FillLists();
    panel.FillLists();
    EXPECT_EQ(panel.cbCSFromFwr.ListCount(), 48);
    EXPECT_EQ(panel.cbCSFromBwr.ListCount(), 16);
    EXPECT_EQ(panel.cbCSCalcType.ListCount(), 10);
    EXPECT_EQ(panel.cbCSModulusType.ListCount(), 3);
    EXPECT_EQ(panel.cbCSLength.ListCount(), 5);
    EXPECT_EQ(panel.cbCSFormatView.ListCount(), 3);
}

TEST_F(ChecksumPanelTest, UnknownNumbersPositionTheListsOnTheirFirstItem) {
    checksum->CalculationType(42);
    checksum->CSLength(9);
    checksum->OffsetFromForward(-3);
    load();
    EXPECT_EQ(panel.cbCSCalcType.ListIndex(), 0);
    EXPECT_EQ(panel.cbCSLength.ListIndex(), 0);
    EXPECT_EQ(panel.cbCSFromFwr.ListIndex(), 0);
    // Positioning wrote nothing back.
    EXPECT_EQ(checksum->CalculationType(), 42);
    EXPECT_EQ(checksum->CSLength(), 9);
}

TEST_F(ChecksumPanelTest, WhileTheHostLoadsTheListsAndTheLimitBoxWriteNothing) {
    load();
    host.IsLoading = true;
    panel.cbCSLength.UserSelect(4);
    panel.cbCSCalcType.UserSelect(9);
    panel.ckSpecialAddition.UserClick();
    host.IsLoading = false;
    EXPECT_EQ(checksum->CSLength(), 1);
    EXPECT_EQ(checksum->CalculationType(), 1);
    EXPECT_FALSE(checksum->SpecialAddition());
    EXPECT_FALSE(panel.cmdCSSAFromVal.Enabled());
    EXPECT_TRUE(context->Messages.empty());
}

TEST_F(ChecksumPanelTest, TheSTXBoxWritesEvenWhileTheHostLoads) {
    load();
    host.IsLoading = true;
    panel.chkSTXInCS.UserClick();
    host.IsLoading = false;
    EXPECT_TRUE(checksum->STXInCS());
}

TEST_F(ChecksumPanelTest, TheLimitBoxHandlerRestoresTheLoadingFlag) {
    load();
    panel.ckSpecialAddition.UserClick();
    EXPECT_FALSE(host.IsLoading);
    EXPECT_TRUE(checksum->SpecialAddition());
    EXPECT_TRUE(panel.lbtxtCSSAAddedVal.Enabled());
    EXPECT_EQ(panel.lbtxtCSSAAddedVal.Caption(), L"0");
}

TEST_F(ChecksumPanelTest, DisablingTakesEveryControlButTheLimitFrameAndEnablingLeavesTheRows) {
    checksum->SpecialAddition(true);
    load();
    panel.Enable(false);
    for (Control* control : panel.Controls())
        EXPECT_EQ(control->Enabled(), control == &panel.fSpecialAddition)
            << std::string(control->Name().begin(), control->Name().end());
    panel.Enable(true);
    for (Control* control : panel.Controls()) {
        const bool row = control->Name().find(L"CSSA") != std::wstring::npos;
        EXPECT_EQ(control->Enabled(), !row) << std::string(control->Name().begin(), control->Name().end());
    }
}

struct RuleCase {
    ChecksumPanelHost host;
    bool extended;
    int32_t endOfMessage;
    bool stxInCS;
    bool enabled, checked, stxAfter;
};

class STXInCSRule : public test::FieldEditorTest, public ::testing::WithParamInterface<RuleCase> {};

TEST_P(STXInCSRule, EnablesAndChecksTheBoxAsTheTableSays) {
    const RuleCase c = GetParam();
    PanelHost host;
    auto checksum = std::make_shared<clsProtocolCSVar>();
    checksum->STXInCS(c.stxInCS);
    host.Panel.Candidate(checksum);
    host.Show();
    host.IsLoading = true;
    host.Panel.FillLists();
    host.Panel.ShowCandidate();
    host.Panel.LoadSTXInCS(c.host, c.extended, c.endOfMessage);
    host.IsLoading = false;
    EXPECT_EQ(host.Panel.chkSTXInCS.Enabled(), c.enabled);
    EXPECT_EQ(host.Panel.chkSTXInCS.Value(), c.checked ? CheckBox::Checked : CheckBox::Unchecked);
    EXPECT_EQ(checksum->STXInCS(), c.stxAfter);
}

using H = ChecksumPanelHost;
INSTANTIATE_TEST_SUITE_P(FieldDialog, STXInCSRule,
                         ::testing::Values(RuleCase{H::FieldDialog, true, 0, true, true, true, true},
                                           RuleCase{H::FieldDialog, true, 0, false, true, false, false},
                                           // The end-of-message number does not count here.
                                           RuleCase{H::FieldDialog, true, 1, true, true, true, true},
                                           RuleCase{H::FieldDialog, false, 0, true, false, false, false},
                                           RuleCase{H::FieldDialog, false, 0, false, false, false, false}));
INSTANTIATE_TEST_SUITE_P(EndOfMessageDialog, STXInCSRule,
                         ::testing::Values(RuleCase{H::EndOfMessageDialog, true, 2, true, true, true, true},
                                           RuleCase{H::EndOfMessageDialog, true, 3, false, true, false, false},
                                           RuleCase{H::EndOfMessageDialog, true, 1, true, false, true, true},
                                           RuleCase{H::EndOfMessageDialog, false, 1, true, false, false, false},
                                           RuleCase{H::EndOfMessageDialog, false, 2, true, false, false, false},
                                           RuleCase{H::EndOfMessageDialog, false, 3, true, false, false, false}));

TEST_F(ChecksumPanelTest, ABoxCheckedBeforeWithoutTheCapabilityIsUncheckedByTheRule) {
    load();
    panel.chkSTXInCS.Value(CheckBox::Checked);
    ASSERT_TRUE(checksum->STXInCS());
    panel.LoadSTXInCS(ChecksumPanelHost::FieldDialog, false, 0);
    EXPECT_EQ(panel.chkSTXInCS.Value(), CheckBox::Unchecked);
    EXPECT_FALSE(checksum->STXInCS());
}

}  // namespace
}  // namespace qx
