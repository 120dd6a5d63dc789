#include "platform/controls/controls.h"

#include "platform/basics/runtime_error.h"
#include "platform/controls/form.h"

namespace qx {

namespace {
constexpr int32_t keyEnter = 13;
constexpr int32_t keySpace = 32;
}  // namespace

void CaptionedControl::Caption(const std::wstring& value) {
    if (caption_ == value) return;
    caption_ = value;
    notify("Caption");
}

Label::Label(std::wstring name) : CaptionedControl(std::move(name), colour::ButtonFace, colour::ButtonText) {}

void Label::UserClick() {
    if (beginUserAction() && OnClick) OnClick();
}

void Label::UserDoubleClick() {
    if (beginUserAction() && OnDblClick) OnDblClick();
}

CommandButton::CommandButton(std::wstring name)
    : CaptionedControl(std::move(name), colour::ButtonFace, colour::ButtonText) {}

void CommandButton::UserClick() {
    if (!beginUserAction()) return;
    SetFocus();
    if (OnClick) OnClick();
}

void CommandButton::keyAction(int32_t KeyAscii) {
    if ((KeyAscii == keySpace || KeyAscii == keyEnter) && OnClick) OnClick();
}

Frame::Frame(std::wstring name) : CaptionedControl(std::move(name), colour::ButtonFace, colour::ButtonText) {}

CheckBox::CheckBox(std::wstring name) : CaptionedControl(std::move(name), colour::ButtonFace, colour::ButtonText) {}

void CheckBox::Value(int32_t value) {
    if (value < Unchecked || value > Grayed) raiseError(err::InvalidPropertyValue);
    if (value_ == value) return;
    value_ = value;
    notify("Value");
    if (OnClick) OnClick();
}

void CheckBox::UserClick() {
    if (!beginUserAction()) return;
    SetFocus();
    Value(value_ == Checked ? Unchecked : Checked);
}

void CheckBox::keyAction(int32_t KeyAscii) {
    if (KeyAscii == keySpace) Value(value_ == Checked ? Unchecked : Checked);
}

OptionButton::OptionButton(std::wstring name)
    : CaptionedControl(std::move(name), colour::ButtonFace, colour::ButtonText) {}

void OptionButton::setValueSilently(bool value) {
    if (value_ == value) return;
    value_ = value;
    notify("Value");
}

void OptionButton::Value(bool value) {
    if (value_ == value) return;
    if (value && Parent()) {
        for (Control* control : Parent()->Controls()) {
            auto* other = dynamic_cast<OptionButton*>(control);
            if (other && other != this && other->Container() == Container()) other->setValueSilently(false);
        }
    }
    setValueSilently(value);
    if (value && OnClick) OnClick();
}

void OptionButton::UserClick() {
    if (!beginUserAction()) return;
    SetFocus();
    Value(true);
}

}  // namespace qx
