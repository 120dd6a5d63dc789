#include "platform/controls/text_box.h"

#include <algorithm>

#include "platform/basics/runtime_error.h"

namespace qx {

namespace {
constexpr int32_t keyBackspace = 8;
constexpr int32_t firstPrintable = 32;
}  // namespace

TextBox::TextBox(std::wstring name) : Control(std::move(name), colour::Window, colour::WindowText) {}

void TextBox::setText(std::wstring value, int32_t caret) {
    bool changed = value != text_;
    text_ = std::move(value);
    selStart_ = std::clamp(caret, 0, static_cast<int32_t>(text_.size()));
    selLength_ = 0;
    if (!changed) return;
    notify("Text");
    if (OnChange) OnChange();
}

void TextBox::Text(const std::wstring& value) {
    if (value == text_) return;
    setText(value, 0);
}

void TextBox::MaxLength(int32_t value) {
    if (value < 0) raiseError(err::InvalidPropertyValue);
    maxLength_ = value;
    notify("MaxLength");
}

void TextBox::Locked(bool value) {
    if (locked_ == value) return;
    locked_ = value;
    notify("Locked");
}

void TextBox::SelStart(int32_t value) {
    if (value < 0) raiseError(err::InvalidPropertyValue);
    selStart_ = std::min(value, static_cast<int32_t>(text_.size()));
    selLength_ = 0;
    notify("SelStart");
}

void TextBox::SelLength(int32_t value) {
    if (value < 0) raiseError(err::InvalidPropertyValue);
    selLength_ = std::min(value, static_cast<int32_t>(text_.size()) - selStart_);
    notify("SelLength");
}

std::wstring TextBox::SelText() const {
    return text_.substr(static_cast<size_t>(selStart_), static_cast<size_t>(selLength_));
}

void TextBox::SelText(const std::wstring& value) { replaceSelection(value); }

void TextBox::replaceSelection(const std::wstring& value) {
    std::wstring next = text_;
    next.replace(static_cast<size_t>(selStart_), static_cast<size_t>(selLength_), value);
    setText(std::move(next), selStart_ + static_cast<int32_t>(value.size()));
}

size_t TextBox::roomForUser() const {
    if (maxLength_ == 0) return std::wstring::npos;
    size_t kept = text_.size() - static_cast<size_t>(selLength_);
    size_t limit = static_cast<size_t>(maxLength_);
    return kept >= limit ? 0 : limit - kept;
}

void TextBox::keyAction(int32_t KeyAscii) {
    if (locked_) return;
    if (KeyAscii == keyBackspace) {
        if (selLength_ == 0) {
            if (selStart_ == 0) return;
            --selStart_;
            selLength_ = 1;
        }
        replaceSelection(L"");
        return;
    }
    // Other control codes (enter, escape ...) type nothing in a one-line box.
    if (KeyAscii < firstPrintable) return;
    if (roomForUser() == 0) return;
    replaceSelection(std::wstring(1, static_cast<wchar_t>(KeyAscii)));
}

void TextBox::UserType(const std::wstring& text) {
    if (locked_ || !beginUserAction()) return;
    SetFocus();
    UserSelectAll();
    if (text.empty()) {
        UserKeyPress(keyBackspace);
        return;
    }
    for (wchar_t ch : text) UserKeyPress(static_cast<int32_t>(ch));
}

void TextBox::UserPaste(const std::wstring& text) {
    if (locked_ || !beginUserAction()) return;
    SetFocus();
    replaceSelection(text.substr(0, roomForUser()));
}

void TextBox::UserSelectAll() {
    if (!beginUserAction()) return;
    selStart_ = 0;
    selLength_ = static_cast<int32_t>(text_.size());
    notify("SelStart");
    notify("SelLength");
}

}  // namespace qx
