#include "platform/controls/toolbar.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/basics/runtime_error.h"
#include "platform/controls/combo_box.h"
#include "platform/controls/controls.h"
#include "platform/controls/grid.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

using test::runtimeErrorOf;

// A toolbar laid out as a message dialog's: a docked band with a label and a
// list among its buttons, and three popup bands.
class ToolBarTest : public ::testing::Test {
protected:
    ToolBar abSend{L"abSend"};
    ComboBox cbInstanceName{L"cbInstanceName"};
    Grid FlgSend{L"FlgSend"};
    std::vector<std::wstring> clicked;
    std::vector<std::string> heard;

    void SetUp() override {
        ToolBand& main = abSend.AddBand(L"MainToolBar", ToolBand::Kind::Docked);
        main.AddLabel(L"lblSelectName", L"Select Name : ");
        main.AddControl(L"cbInstanceName", cbInstanceName);
        main.AddSeparator();
        main.AddTool(L"ID_Cut", L"Cut message", L"Cut message", L"edit-cut");
        main.AddTool(L"ID_Copy", L"Copy message");
        main.AddTool(L"ID_Paste", L"Paste message");
        main.AddTool(L"ID_ClearAll", L"Clear All Messages", L"Clear All");
        ToolBand& empty = abSend.AddBand(L"popEmptyArea", ToolBand::Kind::Popup);
        empty.AddTool(L"ID_Cut", L"Cut message");
        empty.AddTool(L"ID_Paste", L"Paste message");
        empty.AddTool(L"ID_NewVar", L"Create\\Edit new var");
        abSend.AddBand(L"popOnVar", ToolBand::Kind::Popup).AddTool(L"ID_EditVar", L"Properties...");
        abSend.AddBand(L"popOnControlChar", ToolBand::Kind::Popup)
            .AddTool(L"ID_DeleteControlChar", L"Delete Control Char");
        abSend.OnToolClick = [this](const std::wstring& ToolId) { clicked.push_back(ToolId); };
        abSend.Subscribe([this](std::string_view property) { heard.emplace_back(property); });
    }
};

TEST_F(ToolBarTest, BandsAreFoundByNameAndKeepTheirKindAndOrder) {
    EXPECT_EQ(abSend.BandCount(), 4);
    EXPECT_EQ(abSend.BandAt(0).Name(), L"MainToolBar");
    EXPECT_FALSE(abSend.Bands(L"MainToolBar").IsPopup());
    EXPECT_EQ(abSend.Bands(L"popOnVar").Type(), ToolBand::Kind::Popup);
    EXPECT_EQ(abSend.FindBand(L"popNowhere"), nullptr);
    EXPECT_EQ(runtimeErrorOf([&] { (void)abSend.Bands(L"popNowhere"); }), err::InvalidProcedureCall);
    EXPECT_EQ(runtimeErrorOf([&] { (void)abSend.BandAt(4); }), err::SubscriptOutOfRange);
    EXPECT_EQ(runtimeErrorOf([&] { abSend.AddBand(L"popOnVar", ToolBand::Kind::Popup); }), 457);
}

TEST_F(ToolBarTest, ToolsKeepTheirCaptionTooltipIconAndPlace) {
    const ToolBand& main = abSend.Bands(L"MainToolBar");
    EXPECT_EQ(main.ToolCount(), 7);
    const Tool& cut = main.Tools(L"ID_Cut");
    EXPECT_EQ(cut.Type(), Tool::Kind::Button);
    EXPECT_EQ(cut.Caption(), L"Cut message");
    EXPECT_EQ(cut.ToolTipText(), L"Cut message");
    EXPECT_EQ(cut.Icon(), L"edit-cut");
    EXPECT_TRUE(cut.Enabled());
    EXPECT_EQ(main.Tools(L"ID_ClearAll").ToolTipText(), L"Clear All");
    EXPECT_EQ(main.ToolAt(0).Type(), Tool::Kind::Label);
    EXPECT_EQ(main.ToolAt(0).Caption(), L"Select Name : ");
    EXPECT_EQ(main.ToolAt(1).Custom(), &cbInstanceName);
    EXPECT_EQ(main.ToolAt(2).Type(), Tool::Kind::Separator);
    EXPECT_EQ(main.ToolAt(2).Custom(), nullptr);
    EXPECT_EQ(runtimeErrorOf([&] { (void)main.Tools(L"ID_NewVar"); }), err::InvalidProcedureCall);
    EXPECT_EQ(runtimeErrorOf([&] { (void)main.ToolAt(7); }), err::SubscriptOutOfRange);
    EXPECT_EQ(runtimeErrorOf([&] { abSend.Bands(L"MainToolBar").AddTool(L"ID_Cut", L"again"); }), 457);
}

TEST_F(ToolBarTest, TheSameIdInTwoBandsIsTwoToolsWithTheirOwnState) {
    abSend.Bands(L"MainToolBar").Tools(L"ID_Paste").Enabled(false);
    EXPECT_FALSE(abSend.Bands(L"MainToolBar").Tools(L"ID_Paste").Enabled());
    EXPECT_TRUE(abSend.Bands(L"popEmptyArea").Tools(L"ID_Paste").Enabled());
}

TEST_F(ToolBarTest, ChangingAToolTellsToolsOnceAndOnlyWhenItChanges) {
    Tool& paste = abSend.Bands(L"MainToolBar").Tools(L"ID_Paste");
    paste.Enabled(false);
    paste.Enabled(false);
    paste.Caption(L"Paste");
    paste.ToolTipText(L"Paste");
    paste.Icon(L"edit-paste");
    paste.Visible(false);
    EXPECT_EQ(heard, (std::vector<std::string>{"Tools", "Tools", "Tools", "Tools", "Tools"}));
    abSend.Bands(L"popOnVar").AddTool(L"ID_DeleteVar", L"Delete Var");
    EXPECT_EQ(heard.size(), 6u);
}

TEST_F(ToolBarTest, AClickOnAButtonReportsItsId) {
    abSend.UserClickTool(L"ID_Copy");
    abSend.UserClickTool(L"ID_Cut");
    EXPECT_EQ(clicked, (std::vector<std::wstring>{L"ID_Copy", L"ID_Cut"}));
}

TEST_F(ToolBarTest, ADisabledOrHiddenToolTakesNoClick) {
    abSend.Bands(L"MainToolBar").Tools(L"ID_Paste").Enabled(false);
    abSend.UserClickTool(L"ID_Paste");
    abSend.Bands(L"MainToolBar").Tools(L"ID_Copy").Visible(false);
    abSend.UserClickTool(L"ID_Copy");
    EXPECT_TRUE(clicked.empty());
    abSend.Bands(L"MainToolBar").Tools(L"ID_Paste").Enabled(true);
    abSend.UserClickTool(L"ID_Paste");
    EXPECT_EQ(clicked, (std::vector<std::wstring>{L"ID_Paste"}));
}

TEST_F(ToolBarTest, ADisabledToolbarOrHiddenBandTakesNoClick) {
    abSend.Enabled(false);
    abSend.UserClickTool(L"ID_Copy");
    abSend.Enabled(true);
    abSend.Bands(L"MainToolBar").Visible(false);
    abSend.UserClickTool(L"ID_Copy");
    EXPECT_TRUE(clicked.empty());
}

TEST_F(ToolBarTest, OnlyButtonsOfDockedBandsCanBeClicked) {
    abSend.UserClickTool(L"lblSelectName");
    abSend.UserClickTool(L"cbInstanceName");
    abSend.UserClickTool(L"ID_NewVar");  // in a popup band only
    abSend.UserClickTool(L"ID_Nothing");
    EXPECT_TRUE(clicked.empty());
}

TEST_F(ToolBarTest, APopupOpensAtTheMousePointerOrAtAPlaceOverAControl) {
    EXPECT_EQ(abSend.OpenPopup(), nullptr);
    abSend.Bands(L"popOnVar").PopupMenu();
    ASSERT_NE(abSend.OpenPopup(), nullptr);
    EXPECT_EQ(abSend.OpenPopup()->Band->Name(), L"popOnVar");
    EXPECT_EQ(abSend.OpenPopup()->Over, nullptr);
    abSend.Bands(L"popEmptyArea").PopupMenu(FlgSend, 1245, 600);
    EXPECT_EQ(abSend.OpenPopup()->Band->Name(), L"popEmptyArea");
    EXPECT_EQ(abSend.OpenPopup()->Over, &FlgSend);
    EXPECT_EQ(abSend.OpenPopup()->X, 1245);
    EXPECT_EQ(abSend.OpenPopup()->Y, 600);
    EXPECT_EQ(heard, (std::vector<std::string>{"Popup", "Popup"}));
    EXPECT_TRUE(clicked.empty());
}

TEST_F(ToolBarTest, ADockedBandIsNoPopup) {
    EXPECT_EQ(runtimeErrorOf([&] { abSend.Bands(L"MainToolBar").PopupMenu(); }), err::InvalidProcedureCall);
    EXPECT_EQ(abSend.OpenPopup(), nullptr);
}

TEST_F(ToolBarTest, PickingAToolOfTheOpenPopupClosesItThenReportsTheTool) {
    abSend.Bands(L"popOnVar").PopupMenu(FlgSend, 0, 0);
    bool openWhenTold = true;
    abSend.OnToolClick = [&](const std::wstring& ToolId) {
        clicked.push_back(ToolId);
        openWhenTold = abSend.OpenPopup() != nullptr;
    };
    abSend.UserPickPopupTool(L"ID_EditVar");
    EXPECT_EQ(clicked, (std::vector<std::wstring>{L"ID_EditVar"}));
    EXPECT_FALSE(openWhenTold);
    EXPECT_EQ(abSend.OpenPopup(), nullptr);
    EXPECT_EQ(heard, (std::vector<std::string>{"Popup", "Popup"}));
}

TEST_F(ToolBarTest, OnlyEnabledToolsOfTheOpenPopupCanBePicked) {
    abSend.UserPickPopupTool(L"ID_EditVar");  // nothing is open
    abSend.Bands(L"popEmptyArea").Tools(L"ID_Paste").Enabled(false);
    abSend.Bands(L"popEmptyArea").PopupMenu();
    abSend.UserPickPopupTool(L"ID_EditVar");  // of another band
    abSend.UserPickPopupTool(L"ID_Paste");
    EXPECT_TRUE(clicked.empty());
    ASSERT_NE(abSend.OpenPopup(), nullptr);
    abSend.UserPickPopupTool(L"ID_NewVar");
    EXPECT_EQ(clicked, (std::vector<std::wstring>{L"ID_NewVar"}));
}

TEST_F(ToolBarTest, ADismissedPopupReportsNothing) {
    abSend.Bands(L"popOnControlChar").PopupMenu();
    abSend.UserDismissPopup();
    EXPECT_EQ(abSend.OpenPopup(), nullptr);
    abSend.UserPickPopupTool(L"ID_DeleteControlChar");
    abSend.UserDismissPopup();
    EXPECT_TRUE(clicked.empty());
    EXPECT_EQ(heard, (std::vector<std::string>{"Popup", "Popup"}));
}

TEST_F(ToolBarTest, AClickOnTheToolbarClosesAnOpenPopupFirst) {
    abSend.Bands(L"popOnVar").PopupMenu();
    abSend.UserClickTool(L"ID_Copy");
    EXPECT_EQ(abSend.OpenPopup(), nullptr);
    EXPECT_EQ(clicked, (std::vector<std::wstring>{L"ID_Copy"}));
}

TEST_F(ToolBarTest, AHandlerMayOpenAnotherPopup) {
    abSend.OnToolClick = [this](const std::wstring& ToolId) {
        clicked.push_back(ToolId);
        abSend.Bands(L"popEmptyArea").PopupMenu();
    };
    abSend.Bands(L"popOnVar").PopupMenu();
    abSend.UserPickPopupTool(L"ID_EditVar");
    ASSERT_NE(abSend.OpenPopup(), nullptr);
    EXPECT_EQ(abSend.OpenPopup()->Band->Name(), L"popEmptyArea");
}

TEST_F(ToolBarTest, TheMenuFontIsKeptApartFromTheToolbarFont) {
    Font big{L"Arial", 12};
    abSend.MenuFont(big);
    EXPECT_EQ(abSend.MenuFont(), big);
    EXPECT_EQ(abSend.Font(), Font{});
    EXPECT_EQ(heard, (std::vector<std::string>{"MenuFont"}));
}

TEST_F(ToolBarTest, AControlInABandStaysTheDialogsOwn) {
    cbInstanceName.AddItem(L"Config1", 4);
    cbInstanceName.ListIndex(0);
    EXPECT_EQ(abSend.Bands(L"MainToolBar").Tools(L"cbInstanceName").Custom()->Name(), L"cbInstanceName");
    EXPECT_EQ(cbInstanceName.Text(), L"Config1");
    EXPECT_TRUE(clicked.empty());
}

}  // namespace
}  // namespace qx
