// The toolbar model: named bands of tools. A band is shown docked as a
// toolbar, or it is a popup band that code opens as a context menu at a
// place (PopupMenu) and that a person then picks a tool from or dismisses.
// Whichever band a tool was in, a click reports the tool by its id through
// ToolClick. A tool's state belongs to its band: the same id in two bands
// is two tools, each with its own caption and enabled state.
//
// Observers hear "Tools" when a band or a tool is added or changed and
// "Popup" when a popup opens or closes.
#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/controls/control.h"

namespace qx {

class ToolBar;
class ToolBand;

class Tool {
public:
    // A button raises ToolClick; a label only shows its caption; a control
    // tool carries a control of the dialog (a list, say) into the band; a
    // separator is a gap.
    enum class Kind { Button, Label, Control, Separator };

    Tool(const Tool&) = delete;
    Tool& operator=(const Tool&) = delete;

    const std::wstring& Id() const { return id_; }
    Kind Type() const { return kind_; }
    const std::wstring& Caption() const { return caption_; }
    void Caption(const std::wstring& value);
    const std::wstring& ToolTipText() const { return toolTipText_; }
    void ToolTipText(const std::wstring& value);
    bool Enabled() const { return enabled_; }
    void Enabled(bool value);
    bool Visible() const { return visible_; }
    void Visible(bool value);
    // A picture name for a view to map, from the common icon naming
    // ("edit-cut", "edit-copy"); empty shows the caption alone.
    const std::wstring& Icon() const { return icon_; }
    void Icon(const std::wstring& value);
    // The control a control tool carries; nullptr for the other kinds.
    qx::Control* Custom() const { return custom_; }

private:
    friend class ToolBand;
    Tool(ToolBar& owner, Kind kind, std::wstring id, std::wstring caption);
    void changed();

    ToolBar& owner_;
    Kind kind_;
    std::wstring id_;
    std::wstring caption_;
    std::wstring toolTipText_;
    std::wstring icon_;
    bool enabled_ = true;
    bool visible_ = true;
    qx::Control* custom_ = nullptr;
};

class ToolBand {
public:
    enum class Kind { Docked, Popup };

    ToolBand(const ToolBand&) = delete;
    ToolBand& operator=(const ToolBand&) = delete;

    const std::wstring& Name() const { return name_; }
    Kind Type() const { return kind_; }
    bool IsPopup() const { return kind_ == Kind::Popup; }
    // A hidden docked band shows no tools and takes no clicks.
    bool Visible() const { return visible_; }
    void Visible(bool value);

    // Tools go in in the order they are added. An id that the band already
    // holds is error 457.
    Tool& AddTool(const std::wstring& id, const std::wstring& caption, const std::wstring& toolTipText = L"",
                  const std::wstring& icon = L"");
    Tool& AddLabel(const std::wstring& id, const std::wstring& caption);
    // The control stays the dialog's; the band only shows it in its place.
    Tool& AddControl(const std::wstring& id, Control& control);
    // Separators have no id and are never found by one.
    Tool& AddSeparator();

    int32_t ToolCount() const { return static_cast<int32_t>(tools_.size()); }
    // By place, from 0; outside is error 9.
    Tool& ToolAt(int32_t index) const;
    // By id; an unknown one is error 5.
    Tool& Tools(const std::wstring& id) const;
    Tool* FindTool(const std::wstring& id) const;

    // Opens this popup band as a context menu at the mouse pointer, or at
    // X, Y (twips, from the top left) over a control of the dialog. It stays
    // open until a person picks a tool or dismisses it, or another popup
    // opens. A docked band is error 5.
    void PopupMenu();
    void PopupMenu(const Control& over, int32_t X, int32_t Y);

private:
    friend class ToolBar;
    ToolBand(ToolBar& owner, std::wstring name, Kind kind);
    Tool& add(std::unique_ptr<Tool> tool);

    ToolBar& owner_;
    std::wstring name_;
    Kind kind_;
    bool visible_ = true;
    std::vector<std::unique_ptr<Tool>> tools_;
};

// Where a popup band is open.
struct PopupPlace {
    const ToolBand* Band = nullptr;
    // nullptr: at the mouse pointer; else at X, Y twips over this control.
    const Control* Over = nullptr;
    int32_t X = 0;
    int32_t Y = 0;
};

class ToolBar : public Control {
public:
    explicit ToolBar(std::wstring name);

    // A band name that the toolbar already holds is error 457.
    ToolBand& AddBand(const std::wstring& name, ToolBand::Kind kind);
    int32_t BandCount() const { return static_cast<int32_t>(bands_.size()); }
    // By place, from 0; outside is error 9.
    ToolBand& BandAt(int32_t index) const;
    // By name; an unknown one is error 5.
    ToolBand& Bands(const std::wstring& name) const;
    ToolBand* FindBand(const std::wstring& name) const;

    // The font of the popup menus; Font is that of the docked bands.
    qx::Font MenuFont() const { return menuFont_; }
    void MenuFont(const qx::Font& value);

    // The popup that is open, nullptr when none.
    const PopupPlace* OpenPopup() const { return popup_ ? &*popup_ : nullptr; }

    // A person clicks a button of a docked band: ToolClick with its id,
    // unless the tool, its band or the toolbar is disabled or hidden. An
    // open popup closes first, as a click elsewhere closes it.
    void UserClickTool(const std::wstring& id);
    // A person picks a button of the open popup: the popup closes, then
    // ToolClick with its id. Nothing happens for a tool that is not in the
    // open popup or is disabled.
    void UserPickPopupTool(const std::wstring& id);
    // The popup closes with no tool picked (Escape, a click elsewhere).
    void UserDismissPopup();

    std::function<void(const std::wstring& ToolId)> OnToolClick;

private:
    friend class Tool;
    friend class ToolBand;
    void toolsChanged() { notify("Tools"); }
    void openPopup(const PopupPlace& place);
    void closePopup();

    std::vector<std::unique_ptr<ToolBand>> bands_;
    qx::Font menuFont_;
    std::optional<PopupPlace> popup_;
};

}  // namespace qx
