// Names that compare without regard to the case of ASCII letters, and only of
// those, the same in every locale: a fold of other letters (U+0130 to 'i',
// say) would make a match depend on where the program runs.
#pragma once
#include <string_view>

namespace qx {

template <class Char>
constexpr Char asciiLower(Char c) {
    return c >= Char('A') && c <= Char('Z') ? static_cast<Char>(c - Char('A') + Char('a')) : c;
}

template <class Char>
constexpr bool sameIgnoringAsciiCase(std::basic_string_view<Char> a, std::basic_string_view<Char> b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (asciiLower(a[i]) != asciiLower(b[i])) return false;
    return true;
}

constexpr bool sameIgnoringAsciiCase(std::string_view a, std::string_view b) {
    return sameIgnoringAsciiCase<char>(a, b);
}
constexpr bool sameIgnoringAsciiCase(std::wstring_view a, std::wstring_view b) {
    return sameIgnoringAsciiCase<wchar_t>(a, b);
}

}  // namespace qx
