// The base of every dialog: its caption, icon and font, the controls it
// holds, and its life as the host's forms live it: loaded once (Form_Load),
// shown, activated (Form_Activate, again each time it becomes the active
// dialog), hidden, and unloaded through Form_QueryUnload and Form_Unload.
// A person closes it through the control box (UserClose) or presses keys on
// it (UserKeyPress); the modal driver runs it. A person who acts on one of
// its controls (a click, a key, typing) first ends a cell edit that is open
// in any other control, so that the grid's AfterEdit has run before the
// control's own event: OK takes the text still being typed into a cell.
#pragma once
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/controls/control.h"
#include "platform/host/host_context.h"

namespace qx {

class Form : public Observable {
public:
    // Why a form is being unloaded, as Form_QueryUnload hears it.
    static constexpr int32_t vbFormControlMenu = 0;
    static constexpr int32_t vbFormCode = 1;

    explicit Form(std::wstring name);
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;
    virtual ~Form() = default;

    const std::wstring& Name() const { return name_; }
    const std::wstring& Caption() const { return caption_; }
    void Caption(const std::wstring& value);
    const PicturePtr& Icon() const { return icon_; }
    void Icon(PicturePtr value);
    qx::Font Font() const { return font_; }
    void Font(const qx::Font& value);
    // The window's height in twips; 0 leaves the view its own.
    int32_t Height() const { return height_; }
    void Height(int32_t twips);
    bool KeyPreview() const { return keyPreview_; }
    void KeyPreview(bool value) { keyPreview_ = value; }

    // In the order they were added.
    const std::vector<Control*>& Controls() const { return controls_; }
    Control* ActiveControl() const { return activeControl_; }

    bool IsLoaded() const { return loaded_; }
    bool Visible() const { return visible_; }
    // Runs Form_Load the first time only.
    void Load();
    // Loads when needed.
    void Show();
    void Hide();
    void Activate();
    // Unload from code; false when Form_QueryUnload or Form_Unload refused.
    bool Unload();

    // The control box's close button.
    void UserClose();
    // A key stroke on the form: to the focused control when there is one
    // (through the key preview), else to Form_KeyPress.
    void UserKeyPress(int32_t KeyAscii);

    // Events of the form, as its dialog handles them.
    virtual void Form_Load() {}
    virtual void Form_Activate() {}
    // By default the close box acts as the click closeBoxActsAs gave, if any.
    virtual void Form_QueryUnload(int32_t& Cancel, int32_t UnloadMode);
    virtual void Form_Unload(int32_t& Cancel) { (void)Cancel; }
    virtual void Form_KeyPress(int32_t& KeyAscii) { (void)KeyAscii; }
    // Seen before the focused control's KeyDown while the form previews keys.
    virtual void Form_KeyDown(int32_t& KeyCode, int32_t Shift) {
        (void)KeyCode;
        (void)Shift;
    }

protected:
    // The close box acts as this click (a dialog's Cancel button) and the form
    // stays loaded until the code that showed it is done with it.
    void closeBoxActsAs(std::function<void()> click) { closeBox_ = std::move(click); }
    // Places the dialog's member controls on the form, in tab order.
    void addControls(std::initializer_list<Control*> controls);
    // The same for a group of controls that a part of the dialog owns.
    void addControls(const std::vector<Control*>& controls);

private:
    friend class Control;
    bool unload(int32_t mode);
    // Before a person acts on actor: every other control ends its edit.
    void endEditsBefore(const Control& actor);

    std::wstring name_;
    std::wstring caption_;
    PicturePtr icon_;
    qx::Font font_;
    bool keyPreview_ = false;
    int32_t height_ = 0;
    std::function<void()> closeBox_;
    bool loaded_ = false;
    bool visible_ = false;
    std::vector<Control*> controls_;
    Control* activeControl_ = nullptr;
};

// A dialog script for ScriptedModalDriver::QueueDialog that expects a dialog
// of class F; any other dialog is a broken test and fails loudly.
template <class F>
ScriptedModalDriver::DialogScript scriptFor(std::function<void(F&)> script) {
    return [script = std::move(script)](Form& form) {
        auto* dialog = dynamic_cast<F*>(&form);
        if (!dialog) throw std::logic_error("the script was meant for another dialog");
        script(*dialog);
    };
}

}  // namespace qx
