#include <gtest/gtest.h>

#include "framework/shared_helpers.h"
#include "platform/controls/combo_box.h"
#include "platform/controls/controls.h"
#include "platform/controls/form.h"
#include "platform/controls/text_box.h"

namespace qx {
namespace {

TEST(FindComboIndex, GivesTheIndexOfTheItemWithThatItemData) {
    ComboBox combo(L"cbPort");
    combo.AddItem(L"COM1", 1);
    combo.AddItem(L"COM2", 2);
    combo.AddItem(L"COM3", 3);
    EXPECT_EQ(FindComboIndex(combo, 3), 2);
    EXPECT_EQ(FindComboIndex(combo, 2), 1);
}

TEST(FindComboIndex, TakesTheFirstOfEqualItemData) {
    ComboBox combo(L"cb");
    combo.AddItem(L"a", 5);
    combo.AddItem(L"b", 7);
    combo.AddItem(L"c", 7);
    EXPECT_EQ(FindComboIndex(combo, 7), 1);
}

TEST(FindComboIndex, UnknownItemDataGivesZeroSoTheFirstItemGetsSelected) {
    ComboBox combo(L"cb");
    combo.AddItem(L"a", 10);
    combo.AddItem(L"b", 20);
    int32_t index = FindComboIndex(combo, 99);
    EXPECT_EQ(index, 0);
    combo.ListIndex(index);
    EXPECT_EQ(combo.Text(), L"a");
}

TEST(FindComboIndex, EmptyListGivesZero) {
    ComboBox combo(L"cb");
    EXPECT_EQ(FindComboIndex(combo, 1), 0);
}

// A control of the kind that has no font, such as a timer.
class FontlessControl : public Control {
public:
    FontlessControl() : Control(L"tmrPoll", colour::ButtonFace, colour::ButtonText) {}
    bool HasFont() const override { return false; }
};

class FontForm : public Form {
public:
    FontForm() : Form(L"frmFont") { addControls({&lblName, &tmrPoll, &txtName, &cbList}); }
    Label lblName{L"lblName"};
    FontlessControl tmrPoll;
    TextBox txtName{L"txtName"};
    ComboBox cbList{L"cbList"};
};

TEST(ApplyDialogFont, GivesTheFormAndEveryControlTheHostsFont) {
    ScopedHostContext context;
    context->AppFont = qx::Font{L"Segoe UI", 9};
    FontForm form;
    ApplyDialogFont(form);
    EXPECT_EQ(form.Font(), (qx::Font{L"Segoe UI", 9}));
    EXPECT_EQ(form.lblName.Font(), (qx::Font{L"Segoe UI", 9}));
    EXPECT_EQ(form.txtName.Font(), (qx::Font{L"Segoe UI", 9}));
    EXPECT_EQ(form.cbList.Font(), (qx::Font{L"Segoe UI", 9}));
}

TEST(ApplyDialogFont, ControlWithoutAFontIsSkippedAndTheRestStillGetIt) {
    ScopedHostContext context;
    context->AppFont = qx::Font{L"Verdana", 11};
    FontForm form;
    EXPECT_NO_THROW(ApplyDialogFont(form));
    // The controls after the fontless one in the list got the font too.
    EXPECT_EQ(form.txtName.Font().Name, L"Verdana");
    EXPECT_EQ(form.cbList.Font().Size, 11);
}

}  // namespace
}  // namespace qx
