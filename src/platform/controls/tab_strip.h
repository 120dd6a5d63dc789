// The tab strip model: numbered tabs (from 1) with captions, each of which
// can be hidden, and the selected one. Selecting a tab, from code or by a
// person, raises Click with the new tab's number when the selection changes;
// a tab may carry the panel shown while it is selected.
#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/controls/control.h"

namespace qx {

class TabStrip : public Control {
public:
    explicit TabStrip(std::wstring name);

    // Appends a tab; the panel, if given, is visible exactly while its tab is selected.
    void AddTab(const std::wstring& caption, Control* panel = nullptr);
    int32_t Tabs() const { return static_cast<int32_t>(tabs_.size()); }
    // A tab outside 1 .. Tabs is error 381.
    const std::wstring& TabCaption(int32_t tab) const;
    bool TabVisible(int32_t tab) const;
    // Hiding the selected tab leaves the selection where it is.
    void TabVisible(int32_t tab, bool value);
    Control* TabPanel(int32_t tab) const;

    // 0 before any tab is selected.
    int32_t SelectedTab() const { return selected_; }
    // Raises Click(NewTab) when the selection changes; a hidden tab may be selected from code.
    void SelectedTab(int32_t tab);
    // A person clicks a tab: only a visible one takes the click.
    void UserSelect(int32_t tab);

    std::function<void(int32_t NewTab)> OnClick;

private:
    struct Tab {
        std::wstring Caption;
        bool Visible = true;
        Control* Panel = nullptr;
    };
    const Tab& tabAt(int32_t tab) const;
    void showPanels();

    std::vector<Tab> tabs_;
    int32_t selected_ = 0;
};

}  // namespace qx
