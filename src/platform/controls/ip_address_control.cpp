#include "platform/controls/ip_address_control.h"

namespace qx {

namespace {
constexpr size_t fieldCount = 4;
constexpr size_t fieldDigits = 3;
constexpr int fieldMaximum = 255;

// What the entry keeps of typed text: digits and up to three dots, three
// digits a field.
std::wstring acceptedText(const std::wstring& typed) {
    std::wstring kept;
    size_t dots = 0, digits = 0;
    for (wchar_t ch : typed) {
        if (ch == L'.' && dots + 1 < fieldCount) {
            ++dots;
            digits = 0;
            kept += ch;
        } else if (ch >= L'0' && ch <= L'9' && digits < fieldDigits) {
            ++digits;
            kept += ch;
        }
    }
    return kept;
}
}  // namespace

IPAddressControl::IPAddressControl(std::wstring name) : Control(std::move(name), colour::Window, colour::WindowText) {}

void IPAddressControl::Text(const std::wstring& value) {
    if (value == text_) return;
    text_ = value;
    notify("Text");
    if (OnChange) OnChange();
}

bool IPAddressControl::IsValid() const {
    size_t fields = 0, digits = 0;
    int value = 0;
    for (size_t i = 0; i <= text_.size(); ++i) {
        wchar_t ch = i < text_.size() ? text_[i] : L'.';
        if (ch == L'.') {
            if (digits == 0 || value > fieldMaximum) return false;
            ++fields;
            digits = 0;
            value = 0;
        } else if (ch >= L'0' && ch <= L'9' && digits < fieldDigits) {
            ++digits;
            value = value * 10 + (ch - L'0');
        } else {
            return false;
        }
    }
    return fields == fieldCount;
}

void IPAddressControl::UserType(const std::wstring& text) {
    if (!beginUserAction()) return;
    SetFocus();
    Text(acceptedText(text));
}

}  // namespace qx
