// The IP address entry model: four decimal fields separated by dots. It
// takes digits and dots only, at most three digits a field and four fields;
// IsValid tells whether all four fields are filled with 0 to 255. Setting
// Text from code raises Change when the text differs.
#pragma once
#include <functional>
#include <string>

#include "platform/controls/control.h"

namespace qx {

class IPAddressControl : public Control {
public:
    explicit IPAddressControl(std::wstring name);

    // Dotted form; empty when nothing is entered.
    const std::wstring& Text() const { return text_; }
    void Text(const std::wstring& value);
    bool IsValid() const;

    // Replaces the whole entry with what a person types: characters the
    // control does not take are refused, one Change at the end.
    void UserType(const std::wstring& text);

    std::function<void()> OnChange;

private:
    std::wstring text_;
};

}  // namespace qx
