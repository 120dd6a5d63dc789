#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/controls/controls.h"
#include "platform/controls/form.h"
#include "platform/controls/text_box.h"
#include "platform/host/host_context.h"

namespace qx {
namespace {

// A dialog that logs its events and ends through its own buttons.
class LoggingForm : public Form {
public:
    explicit LoggingForm(std::vector<std::string>& log, std::wstring name = L"frmLogging")
        : Form(std::move(name)), log_(log) {
        addControls({&txtValue, &cmdOk, &cmdCancel});
        cmdOk.OnClick = [this] {
            log_.push_back("cmdOk_Click");
            result = true;
            Hide();
        };
        cmdCancel.OnClick = [this] {
            log_.push_back("cmdCancel_Click");
            result = false;
            Hide();
        };
    }

    void Form_Load() override { log_.push_back("Form_Load"); }
    void Form_Activate() override {
        log_.push_back("Form_Activate");
        if (hideOnActivate) Hide();
    }
    void Form_QueryUnload(int32_t& Cancel, int32_t UnloadMode) override {
        log_.push_back("Form_QueryUnload " + std::to_string(UnloadMode));
        if (refuseUnload)
            Cancel = 1;
        else if (cancelThroughButton && UnloadMode == vbFormControlMenu) {
            Cancel = 1;
            cmdCancel.OnClick();
        }
    }
    void Form_Unload(int32_t&) override { log_.push_back("Form_Unload"); }
    void Form_KeyPress(int32_t& KeyAscii) override { log_.push_back("Form_KeyPress " + std::to_string(KeyAscii)); }

    TextBox txtValue{L"txtValue"};
    CommandButton cmdOk{L"cmdOk"};
    CommandButton cmdCancel{L"cmdCancel"};
    bool result = false;
    bool hideOnActivate = false;
    bool refuseUnload = false;
    bool cancelThroughButton = false;

private:
    std::vector<std::string>& log_;
};

class ModalDriverTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    ScriptedModalDriver& driver = *context->Script();
    std::vector<std::string> log;
};

TEST_F(ModalDriverTest, LoadsShowsActivatesThenRunsTheScript) {
    LoggingForm form(log);
    driver.QueueDialog([&](Form& shown) {
        EXPECT_EQ(&shown, &form);
        EXPECT_TRUE(shown.IsLoaded());
        EXPECT_TRUE(shown.Visible());
        log.push_back("script");
        form.cmdOk.UserClick();
    });
    driver.ShowModal(form);
    EXPECT_EQ(log, (std::vector<std::string>{"Form_Load", "Form_Activate", "script", "cmdOk_Click"}));
    EXPECT_FALSE(form.Visible());
    EXPECT_TRUE(form.IsLoaded());
    EXPECT_TRUE(form.result);
    EXPECT_EQ(driver.PendingDialogs(), 0u);
}

TEST_F(ModalDriverTest, AlreadyLoadedFormIsNotLoadedAgain) {
    LoggingForm form(log);
    form.Load();
    driver.QueueDialog([&](Form&) { form.cmdOk.UserClick(); });
    driver.ShowModal(form);
    EXPECT_EQ(std::count(log.begin(), log.end(), "Form_Load"), 1);
}

TEST_F(ModalDriverTest, UnscriptedDialogIsClosedThroughTheControlBox) {
    LoggingForm form(log);
    form.cancelThroughButton = true;
    driver.ShowModal(form);
    EXPECT_EQ(log, (std::vector<std::string>{"Form_Load", "Form_Activate", "Form_QueryUnload 0", "cmdCancel_Click"}));
    EXPECT_FALSE(form.Visible());
    EXPECT_FALSE(form.result);
}

TEST_F(ModalDriverTest, ScriptThatLeavesTheDialogOpenEndsInTheControlBox) {
    LoggingForm form(log);
    driver.QueueDialog([&](Form&) { form.txtValue.UserType(L"abc"); });
    driver.ShowModal(form);
    // Nothing refused the close, so the form is unloaded as the control box would.
    EXPECT_EQ(log.back(), "Form_Unload");
    EXPECT_FALSE(form.Visible());
    EXPECT_FALSE(form.IsLoaded());
}

TEST_F(ModalDriverTest, DialogThatRefusesToCloseStillEnds) {
    LoggingForm form(log);
    form.refuseUnload = true;
    driver.ShowModal(form);
    EXPECT_EQ(log.back(), "Form_QueryUnload 0");
    EXPECT_FALSE(form.Visible());
    EXPECT_TRUE(form.IsLoaded());
}

TEST_F(ModalDriverTest, ScriptOfADialogThatEndedWhileActivatingIsUsedUp) {
    LoggingForm first(log, L"frmFirst");
    first.hideOnActivate = true;
    bool firstScriptRan = false;
    driver.QueueDialog([&](Form&) { firstScriptRan = true; });
    driver.QueueDialog([&](Form& shown) { EXPECT_EQ(shown.Name(), L"frmSecond"); });
    driver.ShowModal(first);
    EXPECT_FALSE(firstScriptRan);
    EXPECT_EQ(driver.PendingDialogs(), 1u);
}

TEST_F(ModalDriverTest, NestedDialogTakesTheNextScriptAndReactivatesTheOneBelow) {
    LoggingForm outer(log, L"frmOuter");
    std::vector<std::string> innerLog;
    LoggingForm inner(innerLog, L"frmInner");
    driver.QueueDialog([&](Form&) {
        log.push_back("outer script");
        driver.ShowModal(inner);
        log.push_back("back in outer");
        outer.cmdOk.UserClick();
    });
    driver.QueueDialog([&](Form&) { inner.cmdOk.UserClick(); });
    driver.ShowModal(outer);
    EXPECT_EQ(log, (std::vector<std::string>{"Form_Load", "Form_Activate", "outer script", "Form_Activate",
                                             "back in outer", "cmdOk_Click"}));
    EXPECT_TRUE(inner.result);
    EXPECT_TRUE(outer.result);
}

TEST_F(ModalDriverTest, TypedScriptRefusesAnotherDialog) {
    LoggingForm form(log);
    class OtherForm : public Form {
    public:
        OtherForm() : Form(L"frmOther") {}
    };
    driver.QueueDialog(scriptFor<OtherForm>([](OtherForm&) {}));
    EXPECT_THROW(driver.ShowModal(form), std::logic_error);
}

TEST_F(ModalDriverTest, TypedScriptGetsItsDialog) {
    LoggingForm form(log);
    driver.QueueDialog(scriptFor<LoggingForm>([](LoggingForm& dialog) { dialog.cmdOk.UserClick(); }));
    driver.ShowModal(form);
    EXPECT_TRUE(form.result);
}

// --- Form life ---

TEST_F(ModalDriverTest, FormLoadRunsOnce) {
    LoggingForm form(log);
    form.Load();
    form.Show();
    form.Load();
    EXPECT_EQ(log, std::vector<std::string>{"Form_Load"});
    EXPECT_TRUE(form.Visible());
}

TEST_F(ModalDriverTest, UnloadFromCodeAsksWithTheCodeMode) {
    LoggingForm form(log);
    form.Show();
    EXPECT_TRUE(form.Unload());
    EXPECT_EQ(log, (std::vector<std::string>{"Form_Load", "Form_QueryUnload 1", "Form_Unload"}));
    EXPECT_FALSE(form.IsLoaded());
    EXPECT_FALSE(form.Visible());
}

TEST_F(ModalDriverTest, RefusedUnloadKeepsTheFormLoadedAndVisible) {
    LoggingForm form(log);
    form.Show();
    form.refuseUnload = true;
    EXPECT_FALSE(form.Unload());
    EXPECT_TRUE(form.IsLoaded());
    EXPECT_TRUE(form.Visible());
}

TEST_F(ModalDriverTest, ControlBoxOnAHiddenFormDoesNothing) {
    LoggingForm form(log);
    form.Load();
    form.UserClose();
    EXPECT_EQ(log, std::vector<std::string>{"Form_Load"});
}

TEST_F(ModalDriverTest, KeyOnAFormWithoutFocusGoesToFormKeyPress) {
    LoggingForm form(log);
    form.UserKeyPress(27);
    EXPECT_EQ(log, std::vector<std::string>{"Form_KeyPress 27"});
}

TEST_F(ModalDriverTest, KeyOnAFocusedControlIsPreviewedOnlyWithKeyPreview) {
    LoggingForm form(log);
    form.txtValue.SetFocus();
    form.UserKeyPress(L'a');
    EXPECT_TRUE(log.empty());
    form.KeyPreview(true);
    form.UserKeyPress(L'b');
    EXPECT_EQ(log, std::vector<std::string>{"Form_KeyPress 98"});
    EXPECT_EQ(form.txtValue.Text(), L"ab");
}

TEST_F(ModalDriverTest, FormPropertiesNotifyObservers) {
    LoggingForm form(log);
    std::vector<std::string> heard;
    form.Subscribe([&](std::string_view property) { heard.emplace_back(property); });
    form.Caption(L"Title");
    form.Font(qx::Font{L"Arial", 9});
    form.Icon(std::make_shared<Picture>());
    form.Show();
    form.Hide();
    EXPECT_EQ(heard, (std::vector<std::string>{"Caption", "Font", "Icon", "Loaded", "Visible", "Visible"}));
    EXPECT_EQ(form.Caption(), L"Title");
    EXPECT_EQ(form.Font().Name, L"Arial");
    ASSERT_NE(form.Icon(), nullptr);
}

TEST_F(ModalDriverTest, FormListsItsControlsInOrderAndOwnsThem) {
    LoggingForm form(log);
    ASSERT_EQ(form.Controls().size(), 3u);
    EXPECT_EQ(form.Controls()[0], &form.txtValue);
    EXPECT_EQ(form.Controls()[2], &form.cmdCancel);
    EXPECT_EQ(form.cmdOk.Parent(), &form);
}

}  // namespace
}  // namespace qx
