#include "platform/controls/controls.h"

#include <gtest/gtest.h>

#include <cwctype>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/basics/runtime_error.h"
#include "platform/controls/combo_box.h"
#include "platform/controls/form.h"
#include "platform/controls/text_box.h"
#include "support/test_helpers.h"

namespace qx {
namespace {

using test::runtimeErrorOf;

// A form that holds one control of each kind and logs its key preview.
class PanelForm : public Form {
public:
    PanelForm() : Form(L"frmPanel") {
        addControls({&fraGroup, &txtName, &cbList, &ckOption, &opA, &opB, &opOther, &cmdGo, &lblInfo});
        opOther.Container(&fraGroup);
    }
    void Form_KeyPress(int32_t& KeyAscii) override {
        previewed.push_back(KeyAscii);
        if (KeyAscii == swallow) KeyAscii = 0;
    }

    Frame fraGroup{L"fraGroup"};
    TextBox txtName{L"txtName"};
    ComboBox cbList{L"cbList"};
    CheckBox ckOption{L"ckOption"};
    OptionButton opA{L"opA"};
    OptionButton opB{L"opB"};
    OptionButton opOther{L"opOther"};
    CommandButton cmdGo{L"cmdGo"};
    Label lblInfo{L"lblInfo"};
    std::vector<int32_t> previewed;
    int32_t swallow = -1;
};

// --- TextBox ---

TEST(TextBoxModel, SettingTextFromCodeRaisesChangeOnce) {
    TextBox box(L"txt");
    int changes = 0;
    box.OnChange = [&] { ++changes; };
    box.Text(L"abc");
    EXPECT_EQ(box.Text(), L"abc");
    EXPECT_EQ(changes, 1);
}

TEST(TextBoxModel, SettingTheSameTextRaisesNoChange) {
    TextBox box(L"txt");
    box.Text(L"abc");
    int changes = 0;
    box.OnChange = [&] { ++changes; };
    box.Text(L"abc");
    EXPECT_EQ(changes, 0);
}

TEST(TextBoxModel, CodeIsNotLimitedByMaxLength) {
    TextBox box(L"txt");
    box.MaxLength(3);
    box.Text(L"abcdef");
    EXPECT_EQ(box.Text(), L"abcdef");
}

TEST(TextBoxModel, SettingTextPutsTheCaretAtTheStart) {
    TextBox box(L"txt");
    box.Text(L"abc");
    box.SelStart(2);
    box.Text(L"wxyz");
    EXPECT_EQ(box.SelStart(), 0);
    EXPECT_EQ(box.SelLength(), 0);
}

TEST(TextBoxModel, UserTypeReplacesTheWholeTextAndRaisesChangePerCharacter) {
    TextBox box(L"txt");
    box.Text(L"old");
    std::vector<std::wstring> seen;
    box.OnChange = [&] { seen.push_back(box.Text()); };
    box.UserType(L"new");
    EXPECT_EQ(box.Text(), L"new");
    EXPECT_EQ(seen, (std::vector<std::wstring>{L"n", L"ne", L"new"}));
    EXPECT_EQ(box.SelStart(), 3);
}

TEST(TextBoxModel, UserTypeStopsAtMaxLength) {
    TextBox box(L"txt");
    box.MaxLength(4);
    box.UserType(L"abcdefgh");
    EXPECT_EQ(box.Text(), L"abcd");
}

TEST(TextBoxModel, UserTypeOfNothingEmptiesTheBox) {
    TextBox box(L"txt");
    box.Text(L"abc");
    box.UserType(L"");
    EXPECT_EQ(box.Text(), L"");
}

TEST(TextBoxModel, UserPasteReplacesTheSelectionWithOneChange) {
    TextBox box(L"txt");
    box.Text(L"abcdef");
    box.SelStart(2);
    box.SelLength(2);
    int changes = 0;
    box.OnChange = [&] { ++changes; };
    box.UserPaste(L"XYZ");
    EXPECT_EQ(box.Text(), L"abXYZef");
    EXPECT_EQ(box.SelStart(), 5);
    EXPECT_EQ(changes, 1);
}

TEST(TextBoxModel, UserPasteIsCutToTheRoomMaxLengthLeaves) {
    TextBox box(L"txt");
    box.MaxLength(5);
    box.Text(L"abc");
    box.SelStart(3);
    box.UserPaste(L"12345");
    EXPECT_EQ(box.Text(), L"abc12");
}

TEST(TextBoxModel, UserPasteIntoAFullBoxChangesNothing) {
    TextBox box(L"txt");
    box.MaxLength(3);
    box.Text(L"abc");
    box.SelStart(3);
    int changes = 0;
    box.OnChange = [&] { ++changes; };
    box.UserPaste(L"d");
    EXPECT_EQ(box.Text(), L"abc");
    EXPECT_EQ(changes, 0);
}

TEST(TextBoxModel, BackspaceErasesTheCharacterBeforeTheCaret) {
    TextBox box(L"txt");
    box.Text(L"abc");
    box.SelStart(2);
    box.UserKeyPress(8);
    EXPECT_EQ(box.Text(), L"ac");
    EXPECT_EQ(box.SelStart(), 1);
}

TEST(TextBoxModel, BackspaceErasesTheSelection) {
    TextBox box(L"txt");
    box.Text(L"abcdef");
    box.SelStart(1);
    box.SelLength(3);
    box.UserKeyPress(8);
    EXPECT_EQ(box.Text(), L"aef");
}

TEST(TextBoxModel, BackspaceAtTheStartDoesNothing) {
    TextBox box(L"txt");
    box.Text(L"abc");
    int changes = 0;
    box.OnChange = [&] { ++changes; };
    box.UserKeyPress(8);
    EXPECT_EQ(box.Text(), L"abc");
    EXPECT_EQ(changes, 0);
}

TEST(TextBoxModel, ControlCodesTypeNothing) {
    TextBox box(L"txt");
    box.Text(L"abc");
    box.UserKeyPress(13);
    box.UserKeyPress(27);
    EXPECT_EQ(box.Text(), L"abc");
}

TEST(TextBoxModel, SelStartIsClampedAndClearsTheSelectionLength) {
    TextBox box(L"txt");
    box.Text(L"abc");
    box.SelLength(2);
    box.SelStart(10);
    EXPECT_EQ(box.SelStart(), 3);
    EXPECT_EQ(box.SelLength(), 0);
}

TEST(TextBoxModel, SelLengthIsClampedToWhatFollowsTheCaret) {
    TextBox box(L"txt");
    box.Text(L"abcdef");
    box.SelStart(4);
    box.SelLength(10);
    EXPECT_EQ(box.SelLength(), 2);
    EXPECT_EQ(box.SelText(), L"ef");
}

TEST(TextBoxModel, NegativeSelectionValuesAreInvalidPropertyValues) {
    TextBox box(L"txt");
    EXPECT_EQ(runtimeErrorOf([&] { box.SelStart(-1); }), 380);
    EXPECT_EQ(runtimeErrorOf([&] { box.SelLength(-1); }), 380);
    EXPECT_EQ(runtimeErrorOf([&] { box.MaxLength(-1); }), 380);
}

TEST(TextBoxModel, SelTextFromCodeIgnoresMaxLength) {
    TextBox box(L"txt");
    box.MaxLength(2);
    box.Text(L"ab");
    box.SelStart(2);
    box.SelText(L"cd");
    EXPECT_EQ(box.Text(), L"abcd");
}

TEST(TextBoxModel, KeyPressHandlerCanSwallowAKey) {
    TextBox box(L"txt");
    box.OnKeyPress = [](int32_t& key) {
        if (key == L'x') key = 0;
    };
    box.UserType(L"axb");
    EXPECT_EQ(box.Text(), L"ab");
}

TEST(TextBoxModel, KeyPressHandlerCanChangeAKey) {
    TextBox box(L"txt");
    box.OnKeyPress = [](int32_t& key) { key = static_cast<int32_t>(std::towupper(static_cast<wint_t>(key))); };
    box.UserType(L"ab");
    EXPECT_EQ(box.Text(), L"AB");
}

TEST(TextBoxModel, DisabledBoxTakesNoUserInput) {
    TextBox box(L"txt");
    box.Text(L"abc");
    box.Enabled(false);
    box.UserType(L"xyz");
    box.UserPaste(L"q");
    box.UserKeyPress(8);
    EXPECT_EQ(box.Text(), L"abc");
}

TEST(TextBoxModel, LockedBoxTakesNoTypingButCodeStillSetsIt) {
    TextBox box(L"txt");
    box.Locked(true);
    box.UserType(L"xyz");
    EXPECT_EQ(box.Text(), L"");
    box.Text(L"code");
    EXPECT_EQ(box.Text(), L"code");
}

TEST(TextBoxModel, DisabledBoxStillRaisesChangeWhenCodeSetsIt) {
    TextBox box(L"txt");
    box.Enabled(false);
    int changes = 0;
    box.OnChange = [&] { ++changes; };
    box.Text(L"abc");
    EXPECT_EQ(changes, 1);
}

TEST(TextBoxModel, FormWithKeyPreviewSeesKeysBeforeTheBox) {
    PanelForm form;
    form.KeyPreview(true);
    form.swallow = L'b';
    form.txtName.UserType(L"abc");
    EXPECT_EQ(form.previewed, (std::vector<int32_t>{L'a', L'b', L'c'}));
    EXPECT_EQ(form.txtName.Text(), L"ac");
}

TEST(TextBoxModel, FormWithoutKeyPreviewSeesNoKeys) {
    PanelForm form;
    form.txtName.UserType(L"abc");
    EXPECT_TRUE(form.previewed.empty());
    EXPECT_EQ(form.txtName.Text(), L"abc");
}

// --- ComboBox ---

TEST(ComboBoxModel, ItemsKeepTheirTextAndItemData) {
    ComboBox combo(L"cb");
    combo.AddItem(L"one", 10);
    EXPECT_EQ(combo.NewIndex(), 0);
    combo.AddItem(L"two", 20);
    EXPECT_EQ(combo.NewIndex(), 1);
    EXPECT_EQ(combo.ListCount(), 2);
    EXPECT_EQ(combo.List(1), L"two");
    EXPECT_EQ(combo.ItemData(0), 10);
    EXPECT_EQ(combo.ItemData(1), 20);
    combo.ItemData(1, 99);
    EXPECT_EQ(combo.ItemData(1), 99);
}

TEST(ComboBoxModel, StartsWithoutAChoice) {
    ComboBox combo(L"cb");
    combo.AddItem(L"one", 1);
    EXPECT_EQ(combo.ListIndex(), -1);
    EXPECT_EQ(combo.Text(), L"");
}

TEST(ComboBoxModel, SettingListIndexRaisesClick) {
    ComboBox combo(L"cb");
    combo.AddItem(L"one", 1);
    combo.AddItem(L"two", 2);
    std::vector<int32_t> clicks;
    combo.OnClick = [&] { clicks.push_back(combo.ListIndex()); };
    combo.ListIndex(1);
    EXPECT_EQ(clicks, std::vector<int32_t>{1});
    EXPECT_EQ(combo.Text(), L"two");
}

TEST(ComboBoxModel, SettingTheSameListIndexRaisesClickAgain) {
    ComboBox combo(L"cb");
    combo.AddItem(L"one", 1);
    combo.ListIndex(0);
    int clicks = 0;
    combo.OnClick = [&] { ++clicks; };
    combo.ListIndex(0);
    EXPECT_EQ(clicks, 1);
}

TEST(ComboBoxModel, ClearingTheChoiceRaisesNoClick) {
    ComboBox combo(L"cb");
    combo.AddItem(L"one", 1);
    combo.ListIndex(0);
    int clicks = 0;
    combo.OnClick = [&] { ++clicks; };
    combo.ListIndex(-1);
    EXPECT_EQ(clicks, 0);
    EXPECT_EQ(combo.Text(), L"");
}

TEST(ComboBoxModel, ListIndexOutsideTheListIsAnInvalidPropertyValueAndKeepsTheChoice) {
    ComboBox combo(L"cb");
    combo.AddItem(L"one", 1);
    combo.ListIndex(0);
    EXPECT_EQ(runtimeErrorOf([&] { combo.ListIndex(1); }), 380);
    EXPECT_EQ(runtimeErrorOf([&] { combo.ListIndex(-2); }), 380);
    EXPECT_EQ(combo.ListIndex(), 0);
}

TEST(ComboBoxModel, BadItemIndexIsAnInvalidArrayIndex) {
    ComboBox combo(L"cb");
    combo.AddItem(L"one", 1);
    EXPECT_EQ(runtimeErrorOf([&] { (void)combo.ItemData(1); }), 381);
    EXPECT_EQ(runtimeErrorOf([&] { (void)combo.ItemData(-1); }), 381);
    EXPECT_EQ(runtimeErrorOf([&] { (void)combo.List(5); }), 381);
    EXPECT_EQ(runtimeErrorOf([&] { combo.ItemData(2, 0); }), 381);
}

TEST(ComboBoxModel, ClearEmptiesTheListWithoutClick) {
    ComboBox combo(L"cb");
    combo.AddItem(L"one", 1);
    combo.ListIndex(0);
    int clicks = 0;
    combo.OnClick = [&] { ++clicks; };
    combo.Clear();
    EXPECT_EQ(combo.ListCount(), 0);
    EXPECT_EQ(combo.ListIndex(), -1);
    EXPECT_EQ(clicks, 0);
}

TEST(ComboBoxModel, RemovingAnItemBeforeTheChoiceKeepsTheChosenItem) {
    PanelForm form;
    form.cbList.AddItem(L"one", 1);
    form.cbList.AddItem(L"two", 2);
    form.cbList.AddItem(L"three", 3);
    form.cbList.ListIndex(2);
    form.cbList.RemoveItem(0);
    EXPECT_EQ(form.cbList.ListIndex(), 1);
    EXPECT_EQ(form.cbList.Text(), L"three");
    form.cbList.RemoveItem(1);
    EXPECT_EQ(form.cbList.ListIndex(), -1);
}

TEST(ComboBoxModel, UserSelectRaisesClick) {
    PanelForm form;
    form.cbList.AddItem(L"one", 1);
    form.cbList.AddItem(L"two", 2);
    int clicks = 0;
    form.cbList.OnClick = [&] { ++clicks; };
    form.cbList.UserSelect(1);
    EXPECT_EQ(form.cbList.ListIndex(), 1);
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(form.ActiveControl(), &form.cbList);
}

TEST(ComboBoxModel, UserSelectOnADisabledListDoesNothing) {
    ComboBox combo(L"cb");
    combo.AddItem(L"one", 1);
    combo.Enabled(false);
    int clicks = 0;
    combo.OnClick = [&] { ++clicks; };
    combo.UserSelect(0);
    EXPECT_EQ(combo.ListIndex(), -1);
    EXPECT_EQ(clicks, 0);
}

// --- CheckBox ---

TEST(CheckBoxModel, SettingValueRaisesClickWhenItChanges) {
    CheckBox box(L"ck");
    int clicks = 0;
    box.OnClick = [&] { ++clicks; };
    box.Value(CheckBox::Checked);
    box.Value(CheckBox::Checked);
    box.Value(CheckBox::Grayed);
    EXPECT_EQ(box.Value(), 2);
    EXPECT_EQ(clicks, 2);
}

TEST(CheckBoxModel, ValueOutsideZeroToTwoIsAnInvalidPropertyValue) {
    CheckBox box(L"ck");
    EXPECT_EQ(runtimeErrorOf([&] { box.Value(3); }), 380);
    EXPECT_EQ(runtimeErrorOf([&] { box.Value(-1); }), 380);
    EXPECT_EQ(box.Value(), 0);
}

TEST(CheckBoxModel, UserClickTogglesAndGrayedBecomesChecked) {
    CheckBox box(L"ck");
    int clicks = 0;
    box.OnClick = [&] { ++clicks; };
    box.UserClick();
    EXPECT_EQ(box.Value(), 1);
    box.UserClick();
    EXPECT_EQ(box.Value(), 0);
    box.Value(CheckBox::Grayed);
    box.UserClick();
    EXPECT_EQ(box.Value(), 1);
    EXPECT_EQ(clicks, 4);
}

TEST(CheckBoxModel, SpaceKeyToggles) {
    CheckBox box(L"ck");
    box.UserKeyPress(32);
    EXPECT_EQ(box.Value(), 1);
}

TEST(CheckBoxModel, UserClickOnADisabledBoxDoesNothing) {
    CheckBox box(L"ck");
    box.Enabled(false);
    int clicks = 0;
    box.OnClick = [&] { ++clicks; };
    box.UserClick();
    EXPECT_EQ(box.Value(), 0);
    EXPECT_EQ(clicks, 0);
}

// --- OptionButton ---

TEST(OptionButtonModel, SettingTrueRaisesClickAndClearsTheOthersOfItsContainer) {
    PanelForm form;
    std::vector<std::wstring> clicks;
    form.opA.OnClick = [&] { clicks.push_back(L"A"); };
    form.opB.OnClick = [&] { clicks.push_back(L"B"); };
    form.opOther.Value(true);
    form.opA.Value(true);
    form.opB.Value(true);
    EXPECT_FALSE(form.opA.Value());
    EXPECT_TRUE(form.opB.Value());
    // The one in the frame is another group.
    EXPECT_TRUE(form.opOther.Value());
    EXPECT_EQ(clicks, (std::vector<std::wstring>{L"A", L"B"}));
}

TEST(OptionButtonModel, SettingFalseRaisesNoClick) {
    OptionButton option(L"op");
    option.Value(true);
    int clicks = 0;
    option.OnClick = [&] { ++clicks; };
    option.Value(false);
    EXPECT_FALSE(option.Value());
    EXPECT_EQ(clicks, 0);
}

TEST(OptionButtonModel, UserClickSelectsOnceAndAgainRaisesNothing) {
    PanelForm form;
    int clicks = 0;
    form.opA.OnClick = [&] { ++clicks; };
    form.opA.UserClick();
    form.opA.UserClick();
    EXPECT_TRUE(form.opA.Value());
    EXPECT_EQ(clicks, 1);
}

TEST(OptionButtonModel, OptionInADisabledFrameTakesNoClick) {
    PanelForm form;
    form.fraGroup.Enabled(false);
    form.opOther.UserClick();
    EXPECT_FALSE(form.opOther.Value());
    EXPECT_FALSE(form.opOther.CanAct());
    EXPECT_TRUE(form.opA.CanAct());
}

// --- CommandButton and Label ---

TEST(CommandButtonModel, UserClickRaisesClickAndTakesTheFocus) {
    PanelForm form;
    int clicks = 0;
    form.cmdGo.OnClick = [&] { ++clicks; };
    form.cmdGo.UserClick();
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(form.ActiveControl(), &form.cmdGo);
}

TEST(CommandButtonModel, DisabledOrHiddenButtonIgnoresUserClick) {
    CommandButton button(L"cmd");
    int clicks = 0;
    button.OnClick = [&] { ++clicks; };
    button.Enabled(false);
    button.UserClick();
    button.Enabled(true);
    button.Visible(false);
    button.UserClick();
    EXPECT_EQ(clicks, 0);
}

TEST(CommandButtonModel, EnterAndSpacePressAFocusedButton) {
    PanelForm form;
    int clicks = 0;
    form.cmdGo.OnClick = [&] { ++clicks; };
    form.cmdGo.SetFocus();
    form.UserKeyPress(13);
    form.UserKeyPress(32);
    form.UserKeyPress(L'a');
    EXPECT_EQ(clicks, 2);
}

TEST(LabelModel, UserClickRaisesClickUnlessDisabled) {
    Label label(L"lbl");
    int clicks = 0;
    label.OnClick = [&] { ++clicks; };
    label.UserClick();
    label.Enabled(false);
    label.UserClick();
    EXPECT_EQ(clicks, 1);
}

TEST(LabelModel, UserDoubleClickRaisesDblClickAloneUnlessDisabled) {
    Label label(L"lbl");
    int clicks = 0;
    int doubleClicks = 0;
    label.OnClick = [&] { ++clicks; };
    label.OnDblClick = [&] { ++doubleClicks; };
    label.UserDoubleClick();
    label.Enabled(false);
    label.UserDoubleClick();
    EXPECT_EQ(doubleClicks, 1);
    EXPECT_EQ(clicks, 0);
}

TEST(LabelModel, UserDoubleClickWithoutAHandlerDoesNothing) {
    Label label(L"lbl");
    int clicks = 0;
    label.OnClick = [&] { ++clicks; };
    label.UserDoubleClick();
    EXPECT_EQ(clicks, 0);
}

// --- Common properties and observers ---

TEST(ControlModel, StartsEnabledAndVisibleWithSystemColours) {
    TextBox box(L"txtName");
    Label label(L"lblName");
    EXPECT_EQ(box.Name(), L"txtName");
    EXPECT_TRUE(box.Enabled());
    EXPECT_TRUE(box.Visible());
    EXPECT_EQ(box.BackColor(), 0x80000005u);
    EXPECT_EQ(box.ForeColor(), 0x80000008u);
    EXPECT_EQ(label.BackColor(), 0x8000000Fu);
    EXPECT_EQ(label.ForeColor(), 0x80000012u);
}

TEST(ControlModel, ObserversHearEachPropertyThatChanged) {
    PanelForm form;
    std::vector<std::string> heard;
    form.cmdGo.Subscribe([&](std::string_view property) { heard.emplace_back(property); });
    form.cmdGo.Caption(L"Go");
    form.cmdGo.Enabled(false);
    form.cmdGo.Enabled(false);
    form.cmdGo.ToolTipText(L"tip");
    form.cmdGo.Font(qx::Font{L"Arial", 10});
    form.cmdGo.BackColor(0xFF);
    form.cmdGo.ForeColor(0xFF00);
    form.cmdGo.Visible(false);
    EXPECT_EQ(heard, (std::vector<std::string>{"Caption", "Enabled", "ToolTipText", "Font", "BackColor", "ForeColor",
                                               "Visible"}));
    EXPECT_EQ(form.cmdGo.Caption(), L"Go");
    EXPECT_EQ(form.cmdGo.ToolTipText(), L"tip");
    EXPECT_EQ(form.cmdGo.Font().Name, L"Arial");
}

TEST(ControlModel, ObserversHearTheChangeBeforeTheEvent) {
    TextBox box(L"txt");
    std::vector<std::string> order;
    box.Subscribe([&](std::string_view property) { order.emplace_back(property); });
    box.OnChange = [&] { order.emplace_back("Change"); };
    box.Text(L"a");
    EXPECT_EQ(order, (std::vector<std::string>{"Text", "Change"}));
}

TEST(ControlModel, UnsubscribedObserverHearsNothingMore) {
    ComboBox combo(L"cb");
    int heard = 0;
    int token = combo.Subscribe([&](std::string_view) { ++heard; });
    combo.AddItem(L"one", 1);
    combo.Unsubscribe(token);
    combo.AddItem(L"two", 2);
    EXPECT_EQ(heard, 1);
}

TEST(ControlModel, ObserverMayUnsubscribeAnotherWhileBeingTold) {
    Label label(L"lbl");
    int second = 0;
    int secondToken = 0;
    label.Subscribe([&](std::string_view) { label.Unsubscribe(secondToken); });
    secondToken = label.Subscribe([&](std::string_view) { ++second; });
    label.Caption(L"x");
    EXPECT_EQ(second, 0);
}

TEST(ControlModel, ObserverMayUnsubscribeItselfWhileBeingToldAndTheOthersStillHear) {
    Label label(L"lbl");
    std::vector<std::string> heard;
    int firstToken = 0;
    firstToken = label.Subscribe([&](std::string_view property) {
        heard.push_back("first " + std::string(property));
        label.Unsubscribe(firstToken);
        // Its captures are still there after it went away.
        heard.push_back("first still runs");
    });
    label.Subscribe([&](std::string_view property) { heard.push_back("second " + std::string(property)); });
    label.Caption(L"x");
    label.Enabled(false);
    EXPECT_EQ(heard,
              (std::vector<std::string>{"first Caption", "first still runs", "second Caption", "second Enabled"}));
}

TEST(ControlModel, ObserverSubscribedWhileAChangeIsToldHearsTheNextChangeOnly) {
    Label label(L"lbl");
    std::vector<std::string> heard;
    bool subscribed = false;
    label.Subscribe([&](std::string_view property) {
        heard.push_back("first " + std::string(property));
        if (subscribed) return;
        subscribed = true;
        // Enough new observers to move the list while this one runs.
        for (int n = 0; n < 64; ++n) label.Subscribe([](std::string_view) {});
        label.Subscribe([&](std::string_view later) { heard.push_back("late " + std::string(later)); });
        heard.push_back("first after subscribing " + std::string(property));
    });
    label.Caption(L"x");
    EXPECT_EQ(heard, (std::vector<std::string>{"first Caption", "first after subscribing Caption"}));
    label.Enabled(false);
    EXPECT_EQ(heard, (std::vector<std::string>{"first Caption", "first after subscribing Caption", "first Enabled",
                                               "late Enabled"}));
}

TEST(ControlModel, AChangeMadeWhileAnotherIsToldIsToldToEveryObserverFirst) {
    Label label(L"lbl");
    std::vector<std::string> heard;
    label.Subscribe([&](std::string_view property) {
        heard.push_back("first " + std::string(property));
        if (property == "Caption") label.Enabled(false);
    });
    label.Subscribe([&](std::string_view property) { heard.push_back("second " + std::string(property)); });
    label.Caption(L"x");
    EXPECT_EQ(heard, (std::vector<std::string>{"first Caption", "first Enabled", "second Enabled", "second Caption"}));
}

TEST(ControlModel, ObserverUnsubscribedDuringAnInnerChangeMissesTheRestOfTheOuterOne) {
    Label label(L"lbl");
    std::vector<std::string> heard;
    int thirdToken = 0;
    label.Subscribe([&](std::string_view property) {
        if (property == "Caption") label.Enabled(false);
    });
    label.Subscribe([&](std::string_view property) {
        heard.push_back("second " + std::string(property));
        if (property == "Enabled") label.Unsubscribe(thirdToken);
    });
    thirdToken = label.Subscribe([&](std::string_view property) { heard.push_back("third " + std::string(property)); });
    label.Caption(L"x");
    EXPECT_EQ(heard, (std::vector<std::string>{"second Enabled", "second Caption"}));
    label.Visible(false);
    EXPECT_EQ(heard, (std::vector<std::string>{"second Enabled", "second Caption", "second Visible"}));
}

TEST(ControlModel, AnObserverThatThrowsLeavesTheListWorking) {
    Label label(L"lbl");
    std::vector<std::string> heard;
    int secondToken = 0;
    int thrower = 0;
    thrower = label.Subscribe([&](std::string_view) {
        label.Unsubscribe(secondToken);
        label.Unsubscribe(thrower);
        throw std::runtime_error("observer failed");
    });
    secondToken =
        label.Subscribe([&](std::string_view property) { heard.push_back("second " + std::string(property)); });
    label.Subscribe([&](std::string_view property) { heard.push_back("third " + std::string(property)); });
    EXPECT_THROW(label.Caption(L"x"), std::runtime_error);
    EXPECT_TRUE(heard.empty());
    // Both went away for good; a token unsubscribed now is gone at once.
    label.Enabled(false);
    EXPECT_EQ(heard, (std::vector<std::string>{"third Enabled"}));
    int fourth = 0;
    const int fourthToken = label.Subscribe([&](std::string_view) { ++fourth; });
    label.Unsubscribe(fourthToken);
    label.Visible(false);
    EXPECT_EQ(fourth, 0);
    EXPECT_EQ(heard, (std::vector<std::string>{"third Enabled", "third Visible"}));
}

class FontlessControl : public Control {
public:
    FontlessControl() : Control(L"tmrTick", colour::ButtonFace, colour::ButtonText) {}
    bool HasFont() const override { return false; }
};

TEST(ControlModel, ControlWithoutAFontRefusesTheFontProperty) {
    FontlessControl control;
    EXPECT_EQ(runtimeErrorOf([&] { (void)control.Font(); }), 438);
    EXPECT_EQ(runtimeErrorOf([&] { control.Font(qx::Font{}); }), 438);
}

}  // namespace
}  // namespace qx
