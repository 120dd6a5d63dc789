// The single-line text box model. Setting Text from code raises Change when
// the text differs, like the real control; MaxLength limits only what a
// person types or pastes, never what code sets.
#pragma once
#include <cstdint>
#include <functional>
#include <string>

#include "platform/controls/control.h"

namespace qx {

class TextBox : public Control {
public:
    explicit TextBox(std::wstring name);

    const std::wstring& Text() const { return text_; }
    // Puts the caret before the first character.
    void Text(const std::wstring& value);
    // 0 is no limit.
    int32_t MaxLength() const { return maxLength_; }
    void MaxLength(int32_t value);
    // A locked box shows its text but takes no typing.
    bool Locked() const { return locked_; }
    void Locked(bool value);
    int32_t SelStart() const { return selStart_; }
    // Clamped to the text; clears the selection's length.
    void SelStart(int32_t value);
    int32_t SelLength() const { return selLength_; }
    // Clamped to what lies after SelStart.
    void SelLength(int32_t value);
    std::wstring SelText() const;
    // Replaces the selection, from code: no limit applies.
    void SelText(const std::wstring& value);

    // Selects everything and types the text one key stroke at a time, so the
    // key preview, KeyPress and Change run for each character, and strokes
    // beyond MaxLength are refused. An empty text erases the selection.
    void UserType(const std::wstring& text);
    // Replaces the selection with the text in one go, cut to what MaxLength
    // leaves room for: one Change.
    void UserPaste(const std::wstring& text);
    void UserSelectAll();

    std::function<void()> OnChange;

protected:
    void keyAction(int32_t KeyAscii) override;

private:
    // Replaces the selection and leaves the caret after the new text.
    void replaceSelection(const std::wstring& value);
    // How many characters a person may still add in place of the selection.
    size_t roomForUser() const;
    void setText(std::wstring value, int32_t caret);

    std::wstring text_;
    int32_t maxLength_ = 0;
    bool locked_ = false;
    int32_t selStart_ = 0;
    int32_t selLength_ = 0;
};

}  // namespace qx
