#include "platform/controls/tab_strip.h"

#include "platform/basics/runtime_error.h"

namespace qx {

TabStrip::TabStrip(std::wstring name) : Control(std::move(name), colour::ButtonFace, colour::ButtonText) {}

void TabStrip::AddTab(const std::wstring& caption, Control* panel) {
    tabs_.push_back({caption, true, panel});
    if (panel) panel->Visible(Tabs() == selected_);
    notify("Tabs");
}

const TabStrip::Tab& TabStrip::tabAt(int32_t tab) const {
    if (tab < 1 || tab > Tabs()) raiseError(err::InvalidPropertyArrayIndex);
    return tabs_[static_cast<size_t>(tab - 1)];
}

const std::wstring& TabStrip::TabCaption(int32_t tab) const { return tabAt(tab).Caption; }

bool TabStrip::TabVisible(int32_t tab) const { return tabAt(tab).Visible; }

void TabStrip::TabVisible(int32_t tab, bool value) {
    tabAt(tab);
    Tab& target = tabs_[static_cast<size_t>(tab - 1)];
    if (target.Visible == value) return;
    target.Visible = value;
    notify("Tabs");
}

Control* TabStrip::TabPanel(int32_t tab) const { return tabAt(tab).Panel; }

void TabStrip::showPanels() {
    for (int32_t tab = 1; tab <= Tabs(); ++tab)
        if (Control* panel = tabs_[static_cast<size_t>(tab - 1)].Panel) panel->Visible(tab == selected_);
}

void TabStrip::SelectedTab(int32_t tab) {
    tabAt(tab);
    if (tab == selected_) return;
    selected_ = tab;
    showPanels();
    notify("SelectedTab");
    if (OnClick) OnClick(tab);
}

void TabStrip::UserSelect(int32_t tab) {
    if (tab < 1 || tab > Tabs() || !TabVisible(tab) || !beginUserAction()) return;
    SetFocus();
    SelectedTab(tab);
}

}  // namespace qx
