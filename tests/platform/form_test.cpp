// The form's rule for a cell edit in progress: a person who acts on any other
// control of the form first ends it, so that the grid's AfterEdit has run
// before that control's event does.
#include "platform/controls/form.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/controls/combo_box.h"
#include "platform/controls/controls.h"
#include "platform/controls/grid.h"
#include "platform/controls/ip_address_control.h"
#include "platform/controls/tab_strip.h"
#include "platform/controls/text_box.h"
#include "platform/controls/toolbar.h"

namespace qx {
namespace {

// Two editable grids and one control of every other kind, each event logged
// with what the first grid's cell (1, 1) holds at that moment.
class EditingForm : public Form {
public:
    EditingForm() : Form(L"frmEditing") {
        addControls(
            {&grdFirst, &grdSecond, &txtName, &cbList, &ckOption, &opA, &tabs, &ctlIP, &cmdGo, &cmdOff, &lblInfo, &abTools});
        for (Grid* grid : {&grdFirst, &grdSecond}) {
            grid->Cols(3);
            grid->Rows(3);
            grid->Editable(true);
        }
        grdFirst.TextMatrix(1, 1, L"old");
        cbList.AddItem(L"one");
        tabs.AddTab(L"A");
        tabs.AddTab(L"B");
        cmdOff.Enabled(false);

        grdFirst.OnAfterEdit = [this](int32_t r, int32_t c) {
            log("grdFirst_AfterEdit " + std::to_string(r) + "," + std::to_string(c));
        };
        grdSecond.OnAfterEdit = [this](int32_t, int32_t) { log("grdSecond_AfterEdit"); };
        txtName.OnChange = [this] { log("txtName_Change"); };
        cbList.OnClick = [this] { log("cbList_Click"); };
        ckOption.OnClick = [this] { log("ckOption_Click"); };
        opA.OnClick = [this] { log("opA_Click"); };
        tabs.OnClick = [this](int32_t) { log("tabs_Click"); };
        cmdGo.OnClick = [this] { log("cmdGo_Click"); };
        cmdOff.OnClick = [this] { log("cmdOff_Click"); };
        lblInfo.OnClick = [this] { log("lblInfo_Click"); };
        abTools.AddBand(L"MainToolBar", ToolBand::Kind::Docked).AddTool(L"ID_Go", L"Go");
        abTools.AddBand(L"popMenu", ToolBand::Kind::Popup).AddTool(L"ID_Go", L"Go");
        abTools.OnToolClick = [this](const std::wstring&) { log("abTools_ToolClick"); };
        grdSecond.OnMouseUp = [this](int32_t, int32_t, float, float) { log("grdSecond_MouseUp"); };
        grdSecond.OnKeyDown = [this](int32_t&, int32_t) { log("grdSecond_KeyDown"); };
        Show();
    }

    // The first grid's cell (1, 1) in its editor, "Pump" typed and no Enter.
    void typePump() {
        grdFirst.UserClick(1, 1);
        grdFirst.UserType(L"Pump");
        events.clear();
    }

    void log(const std::string& event) {
        const std::wstring& cell = grdFirst.TextMatrix(1, 1);
        events.push_back(event + " [" + std::string(cell.begin(), cell.end()) + "]");
    }

    Grid grdFirst{L"grdFirst"};
    Grid grdSecond{L"grdSecond"};
    TextBox txtName{L"txtName"};
    ComboBox cbList{L"cbList"};
    CheckBox ckOption{L"ckOption"};
    OptionButton opA{L"opA"};
    TabStrip tabs{L"tabs"};
    IPAddressControl ctlIP{L"ctlIP"};
    CommandButton cmdGo{L"cmdGo"};
    CommandButton cmdOff{L"cmdOff"};
    Label lblInfo{L"lblInfo"};
    ToolBar abTools{L"abTools"};
    std::vector<std::string> events;
};

TEST(FormCellEdit, AClickOnAButtonEndsTheOpenCellEditBeforeTheButtonActs) {
    EditingForm form;
    form.typePump();
    ASSERT_TRUE(form.grdFirst.IsEditing());
    form.cmdGo.UserClick();
    EXPECT_FALSE(form.grdFirst.IsEditing());
    EXPECT_EQ(form.grdFirst.TextMatrix(1, 1), L"Pump");
    EXPECT_EQ(form.events, (std::vector<std::string>{"grdFirst_AfterEdit 1,1 [Pump]", "cmdGo_Click [Pump]"}));
}

TEST(FormCellEdit, EveryOtherKindOfControlEndsItFirstToo) {
    const std::vector<std::pair<std::string, std::function<void(EditingForm&)>>> actions = {
        {"txtName_Change", [](EditingForm& f) { f.txtName.UserType(L"x"); }},
        {"txtName_Change", [](EditingForm& f) { f.txtName.UserPaste(L"x"); }},
        {"cbList_Click", [](EditingForm& f) { f.cbList.UserSelect(0); }},
        {"ckOption_Click", [](EditingForm& f) { f.ckOption.UserClick(); }},
        {"opA_Click", [](EditingForm& f) { f.opA.UserClick(); }},
        {"tabs_Click", [](EditingForm& f) { f.tabs.UserSelect(2); }},
        {"lblInfo_Click", [](EditingForm& f) { f.lblInfo.UserClick(); }},
        {"abTools_ToolClick", [](EditingForm& f) { f.abTools.UserClickTool(L"ID_Go"); }},
        {"abTools_ToolClick",
         [](EditingForm& f) {
             f.abTools.Bands(L"popMenu").PopupMenu();
             f.abTools.UserPickPopupTool(L"ID_Go");
         }},
        {"grdSecond_MouseUp", [](EditingForm& f) { f.grdSecond.UserMouseUp(2, 1, 1, 0); }},
        {"grdSecond_KeyDown", [](EditingForm& f) { f.grdSecond.UserKeyDown(keys::Down, 0); }},
    };
    for (const auto& [event, act] : actions) {
        EditingForm form;
        form.typePump();
        act(form);
        EXPECT_EQ(form.events, (std::vector<std::string>{"grdFirst_AfterEdit 1,1 [Pump]", event + " [Pump]"})) << event;
    }
    EditingForm form;
    form.typePump();
    form.ctlIP.UserType(L"10.0.0.1");
    EXPECT_EQ(form.events, (std::vector<std::string>{"grdFirst_AfterEdit 1,1 [Pump]"}));
    EXPECT_EQ(form.ctlIP.Text(), L"10.0.0.1");
}

TEST(FormCellEdit, AKeyOnAnotherControlEndsItBeforeTheKeyActs) {
    EditingForm form;
    form.typePump();
    // Enter on a focused button presses it.
    form.cmdGo.UserKeyPress(13);
    EXPECT_EQ(form.events, (std::vector<std::string>{"grdFirst_AfterEdit 1,1 [Pump]", "cmdGo_Click [Pump]"}));
}

TEST(FormCellEdit, AnActionOnAnotherGridEndsTheFirstGridsEdit) {
    EditingForm form;
    form.typePump();
    form.grdSecond.UserClick(2, 2);
    EXPECT_FALSE(form.grdFirst.IsEditing());
    // A click releases the button over the cell first.
    EXPECT_EQ(form.events, (std::vector<std::string>{"grdFirst_AfterEdit 1,1 [Pump]", "grdSecond_MouseUp [Pump]"}));
}

TEST(FormCellEdit, TheGridsOwnActionsKeepTheirOwnRules) {
    EditingForm form;
    form.typePump();
    // More typing goes on in the same editor; Escape drops the edit without AfterEdit.
    form.grdFirst.UserType(L"Pumps");
    EXPECT_TRUE(form.grdFirst.IsEditing());
    EXPECT_EQ(form.grdFirst.EditText(), L"Pumps");
    form.grdFirst.UserCancelEdit();
    EXPECT_EQ(form.grdFirst.TextMatrix(1, 1), L"old");
    EXPECT_TRUE(form.events.empty());
}

TEST(FormCellEdit, ACodeChangeOfAnotherControlLeavesTheEditOpen) {
    EditingForm form;
    form.typePump();
    form.txtName.Text(L"from code");
    form.ckOption.Value(CheckBox::Checked);
    EXPECT_TRUE(form.grdFirst.IsEditing());
    EXPECT_EQ(form.grdFirst.TextMatrix(1, 1), L"old");
    EXPECT_EQ(form.events, (std::vector<std::string>{"txtName_Change [old]", "ckOption_Click [old]"}));
}

TEST(FormCellEdit, AClickOnADisabledButtonDoesNothingAndTheEditStaysOpen) {
    EditingForm form;
    form.typePump();
    form.cmdOff.UserClick();
    EXPECT_TRUE(form.grdFirst.IsEditing());
    EXPECT_EQ(form.grdFirst.EditText(), L"Pump");
    EXPECT_TRUE(form.events.empty());
}

TEST(FormCellEdit, AnAfterEditThatDisablesTheButtonStopsTheClick) {
    EditingForm form;
    form.grdFirst.OnAfterEdit = [&](int32_t, int32_t) {
        form.log("grdFirst_AfterEdit");
        form.cmdGo.Enabled(false);
    };
    form.typePump();
    form.cmdGo.UserClick();
    EXPECT_EQ(form.events, (std::vector<std::string>{"grdFirst_AfterEdit [Pump]"}));
}

}  // namespace
}  // namespace qx
