#include "platform/controls/tab_strip.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/controls/controls.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

using test::runtimeErrorOf;

class TabStripTest : public ::testing::Test {
protected:
    TabStrip strip{L"tbStrip"};
    Frame first{L"panel1"}, second{L"panel2"}, third{L"panel3"};
    std::vector<int32_t> clicks;

    void SetUp() override {
        strip.AddTab(L"Binary Text", &first);
        strip.AddTab(L"Numeric", &second);
        strip.AddTab(L"Stream", &third);
        strip.OnClick = [this](int32_t tab) { clicks.push_back(tab); };
    }
};

TEST_F(TabStripTest, TabsAreNumberedFromOneWithTheirCaptions) {
    EXPECT_EQ(strip.Tabs(), 3);
    EXPECT_EQ(strip.TabCaption(1), L"Binary Text");
    EXPECT_EQ(strip.TabCaption(3), L"Stream");
    EXPECT_EQ(strip.TabPanel(2), &second);
    EXPECT_EQ(strip.SelectedTab(), 0);
    EXPECT_EQ(runtimeErrorOf([&] { (void)strip.TabCaption(0); }), err::InvalidPropertyArrayIndex);
    EXPECT_EQ(runtimeErrorOf([&] { strip.SelectedTab(4); }), err::InvalidPropertyArrayIndex);
}

TEST_F(TabStripTest, NoPanelShowsBeforeATabIsSelected) {
    EXPECT_FALSE(first.Visible());
    EXPECT_FALSE(second.Visible());
}

TEST_F(TabStripTest, SelectingFromCodeRaisesClickWithTheNewTabAndShowsItsPanelOnly) {
    strip.SelectedTab(2);
    EXPECT_EQ(clicks, (std::vector<int32_t>{2}));
    EXPECT_FALSE(first.Visible());
    EXPECT_TRUE(second.Visible());
    EXPECT_FALSE(third.Visible());
    strip.SelectedTab(2);
    EXPECT_EQ(clicks.size(), 1u);
}

TEST_F(TabStripTest, AHiddenTabTakesNoClickButCodeMaySelectIt) {
    strip.TabVisible(3, false);
    EXPECT_FALSE(strip.TabVisible(3));
    strip.UserSelect(3);
    EXPECT_EQ(strip.SelectedTab(), 0);
    strip.SelectedTab(3);
    EXPECT_EQ(strip.SelectedTab(), 3);
    EXPECT_TRUE(third.Visible());
}

TEST_F(TabStripTest, APersonSelectsAVisibleTab) {
    strip.UserSelect(1);
    EXPECT_EQ(strip.SelectedTab(), 1);
    EXPECT_EQ(clicks, (std::vector<int32_t>{1}));
    strip.UserSelect(0);
    strip.UserSelect(9);
    EXPECT_EQ(strip.SelectedTab(), 1);
}

TEST_F(TabStripTest, ADisabledStripTakesNoClick) {
    strip.Enabled(false);
    strip.UserSelect(2);
    EXPECT_EQ(strip.SelectedTab(), 0);
}

TEST_F(TabStripTest, ObserversHearTheTabsAndTheSelection) {
    std::vector<std::string> heard;
    strip.Subscribe([&](std::string_view property) { heard.emplace_back(property); });
    strip.TabVisible(1, false);
    strip.SelectedTab(2);
    EXPECT_EQ(heard, (std::vector<std::string>{"Tabs", "SelectedTab"}));
}

}  // namespace
}  // namespace qx
