#include "platform/controls/toolbar.h"

#include <utility>

#include "platform/basics/runtime_error.h"

namespace qx {

namespace {
constexpr int32_t keyAlreadyAssociated = 457;
}  // namespace

Tool::Tool(ToolBar& owner, Kind kind, std::wstring id, std::wstring caption)
    : owner_(owner), kind_(kind), id_(std::move(id)), caption_(std::move(caption)) {}

void Tool::changed() { owner_.toolsChanged(); }

void Tool::Caption(const std::wstring& value) {
    if (caption_ == value) return;
    caption_ = value;
    changed();
}

void Tool::ToolTipText(const std::wstring& value) {
    if (toolTipText_ == value) return;
    toolTipText_ = value;
    changed();
}

void Tool::Enabled(bool value) {
    if (enabled_ == value) return;
    enabled_ = value;
    changed();
}

void Tool::Visible(bool value) {
    if (visible_ == value) return;
    visible_ = value;
    changed();
}

void Tool::Icon(const std::wstring& value) {
    if (icon_ == value) return;
    icon_ = value;
    changed();
}

ToolBand::ToolBand(ToolBar& owner, std::wstring name, Kind kind) : owner_(owner), name_(std::move(name)), kind_(kind) {}

void ToolBand::Visible(bool value) {
    if (visible_ == value) return;
    visible_ = value;
    owner_.toolsChanged();
}

Tool& ToolBand::add(std::unique_ptr<Tool> tool) {
    if (!tool->Id().empty() && FindTool(tool->Id())) raiseError(keyAlreadyAssociated);
    tools_.push_back(std::move(tool));
    owner_.toolsChanged();
    return *tools_.back();
}

Tool& ToolBand::AddTool(const std::wstring& id, const std::wstring& caption, const std::wstring& toolTipText,
                        const std::wstring& icon) {
    std::unique_ptr<Tool> tool(new Tool(owner_, Tool::Kind::Button, id, caption));
    tool->toolTipText_ = toolTipText;
    tool->icon_ = icon;
    return add(std::move(tool));
}

Tool& ToolBand::AddLabel(const std::wstring& id, const std::wstring& caption) {
    return add(std::unique_ptr<Tool>(new Tool(owner_, Tool::Kind::Label, id, caption)));
}

Tool& ToolBand::AddControl(const std::wstring& id, Control& control) {
    std::unique_ptr<Tool> tool(new Tool(owner_, Tool::Kind::Control, id, L""));
    tool->custom_ = &control;
    return add(std::move(tool));
}

Tool& ToolBand::AddSeparator() { return add(std::unique_ptr<Tool>(new Tool(owner_, Tool::Kind::Separator, L"", L""))); }

Tool& ToolBand::ToolAt(int32_t index) const {
    if (index < 0 || index >= ToolCount()) raiseError(err::SubscriptOutOfRange);
    return *tools_[static_cast<size_t>(index)];
}

Tool* ToolBand::FindTool(const std::wstring& id) const {
    if (id.empty()) return nullptr;
    for (const auto& tool : tools_)
        if (tool->Id() == id) return tool.get();
    return nullptr;
}

Tool& ToolBand::Tools(const std::wstring& id) const {
    Tool* tool = FindTool(id);
    if (!tool) raiseError(err::InvalidProcedureCall);
    return *tool;
}

void ToolBand::PopupMenu() {
    if (!IsPopup()) raiseError(err::InvalidProcedureCall);
    owner_.openPopup(PopupPlace{this, nullptr, 0, 0});
}

void ToolBand::PopupMenu(const Control& over, int32_t X, int32_t Y) {
    if (!IsPopup()) raiseError(err::InvalidProcedureCall);
    owner_.openPopup(PopupPlace{this, &over, X, Y});
}

ToolBar::ToolBar(std::wstring name) : Control(std::move(name), colour::ButtonFace, colour::ButtonText) {}

ToolBand& ToolBar::AddBand(const std::wstring& name, ToolBand::Kind kind) {
    if (FindBand(name)) raiseError(keyAlreadyAssociated);
    bands_.push_back(std::unique_ptr<ToolBand>(new ToolBand(*this, name, kind)));
    toolsChanged();
    return *bands_.back();
}

ToolBand& ToolBar::BandAt(int32_t index) const {
    if (index < 0 || index >= BandCount()) raiseError(err::SubscriptOutOfRange);
    return *bands_[static_cast<size_t>(index)];
}

ToolBand* ToolBar::FindBand(const std::wstring& name) const {
    for (const auto& band : bands_)
        if (band->Name() == name) return band.get();
    return nullptr;
}

ToolBand& ToolBar::Bands(const std::wstring& name) const {
    ToolBand* band = FindBand(name);
    if (!band) raiseError(err::InvalidProcedureCall);
    return *band;
}

void ToolBar::MenuFont(const qx::Font& value) {
    if (menuFont_ == value) return;
    menuFont_ = value;
    notify("MenuFont");
}

void ToolBar::openPopup(const PopupPlace& place) {
    popup_ = place;
    notify("Popup");
}

void ToolBar::closePopup() {
    if (!popup_) return;
    popup_.reset();
    notify("Popup");
}

void ToolBar::UserClickTool(const std::wstring& id) {
    closePopup();
    if (!beginUserAction()) return;
    for (const auto& band : bands_) {
        if (band->IsPopup() || !band->Visible()) continue;
        const Tool* tool = band->FindTool(id);
        if (!tool || tool->Type() != Tool::Kind::Button) continue;
        if (!tool->Enabled() || !tool->Visible()) return;
        // A handler may rebuild the bands: the id goes out as a copy.
        const std::wstring clicked = id;
        if (OnToolClick) OnToolClick(clicked);
        return;
    }
}

void ToolBar::UserPickPopupTool(const std::wstring& id) {
    if (!popup_ || !beginUserAction()) return;
    const Tool* tool = popup_->Band->FindTool(id);
    if (!tool || tool->Type() != Tool::Kind::Button || !tool->Enabled() || !tool->Visible()) return;
    const std::wstring picked = id;
    closePopup();
    if (OnToolClick) OnToolClick(picked);
}

void ToolBar::UserDismissPopup() { closePopup(); }

}  // namespace qx
