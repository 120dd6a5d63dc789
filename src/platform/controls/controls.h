// The small control models of the dialogs: label, command button, frame,
// check box and option button. Setting a check box's value, or an option
// button to true, raises Click as the real controls do, also from code.
#pragma once
#include <cstdint>
#include <functional>
#include <string>

#include "platform/controls/control.h"

namespace qx {

// A control with a caption of its own.
class CaptionedControl : public Control {
public:
    const std::wstring& Caption() const { return caption_; }
    void Caption(const std::wstring& value);

protected:
    using Control::Control;

private:
    std::wstring caption_;
};

class Label : public CaptionedControl {
public:
    explicit Label(std::wstring name);
    void UserClick();
    // Raises DblClick alone: the clicks of a double-click reach the label as
    // clicks of their own first, from the view, as with the host's labels.
    void UserDoubleClick();
    std::function<void()> OnClick;
    std::function<void()> OnDblClick;
};

class CommandButton : public CaptionedControl {
public:
    explicit CommandButton(std::wstring name);
    void UserClick();
    std::function<void()> OnClick;

protected:
    // Space and Enter press a focused button.
    void keyAction(int32_t KeyAscii) override;
};

class Frame : public CaptionedControl {
public:
    explicit Frame(std::wstring name);
};

class CheckBox : public CaptionedControl {
public:
    static constexpr int32_t Unchecked = 0, Checked = 1, Grayed = 2;

    explicit CheckBox(std::wstring name);
    int32_t Value() const { return value_; }
    // Raises Click when the value changes; anything but 0, 1, 2 is error 380.
    void Value(int32_t value);
    // Checked becomes unchecked, unchecked or grayed becomes checked.
    void UserClick();
    std::function<void()> OnClick;

protected:
    void keyAction(int32_t KeyAscii) override;

private:
    int32_t value_ = Unchecked;
};

// Option buttons of one form that sit in the same container make a group:
// setting one true sets the others false, and only the one set raises Click.
class OptionButton : public CaptionedControl {
public:
    explicit OptionButton(std::wstring name);
    bool Value() const { return value_; }
    void Value(bool value);
    void UserClick();
    std::function<void()> OnClick;

private:
    void setValueSilently(bool value);
    bool value_ = false;
};

}  // namespace qx
