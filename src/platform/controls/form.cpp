#include "platform/controls/form.h"

#include "platform/basics/runtime_error.h"

namespace qx {

Form::Form(std::wstring name) : name_(std::move(name)) {}

void Form::Caption(const std::wstring& value) {
    if (caption_ == value) return;
    caption_ = value;
    notify("Caption");
}

void Form::Icon(PicturePtr value) {
    icon_ = std::move(value);
    notify("Icon");
}

void Form::Font(const qx::Font& value) {
    if (font_ == value) return;
    font_ = value;
    notify("Font");
}

void Form::Height(int32_t twips) {
    if (twips < 0) raiseError(err::InvalidPropertyValue);
    if (height_ == twips) return;
    height_ = twips;
    notify("Height");
}

void Form::addControls(std::initializer_list<Control*> controls) { addControls(std::vector<Control*>(controls)); }

void Form::addControls(const std::vector<Control*>& controls) {
    for (Control* control : controls) {
        control->parent_ = this;
        controls_.push_back(control);
    }
}

void Form::endEditsBefore(const Control& actor) {
    for (Control* control : controls_)
        if (control != &actor) control->endEditForOtherControl();
}

void Form::Load() {
    if (loaded_) return;
    // The form counts as loaded while its Load event runs, as the host's do.
    loaded_ = true;
    notify("Loaded");
    Form_Load();
}

void Form::Show() {
    Load();
    if (visible_) return;
    visible_ = true;
    notify("Visible");
}

void Form::Hide() {
    if (!visible_) return;
    visible_ = false;
    notify("Visible");
}

void Form::Activate() { Form_Activate(); }

void Form::Form_QueryUnload(int32_t& Cancel, int32_t UnloadMode) {
    if (UnloadMode != vbFormControlMenu || !closeBox_) return;
    Cancel = 1;
    closeBox_();
}

bool Form::unload(int32_t mode) {
    if (!loaded_) return true;
    int32_t cancel = 0;
    Form_QueryUnload(cancel, mode);
    if (cancel != 0) return false;
    Form_Unload(cancel);
    if (cancel != 0) return false;
    Hide();
    loaded_ = false;
    activeControl_ = nullptr;
    notify("Loaded");
    return true;
}

bool Form::Unload() { return unload(vbFormCode); }

void Form::UserClose() {
    if (!visible_) return;
    unload(vbFormControlMenu);
}

void Form::UserKeyPress(int32_t KeyAscii) {
    if (activeControl_) {
        activeControl_->UserKeyPress(KeyAscii);
        return;
    }
    Form_KeyPress(KeyAscii);
}

}  // namespace qx
